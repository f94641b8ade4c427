#include "solver/sparse.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

#include "model/fault.hpp"

namespace velm {

namespace {

// Rows reduced side by side. Each row of U before a block is read once for
// all the rows of the block that need it, not once for each: with the fill
// of a large network the rows of U outgrow the caches, and reading them
// became the bound on the elimination.
constexpr int kBlock = 8;
static_assert(kBlock <= 8, "the slots of a block are marked in one byte");

template <class T>
void ensure_size(std::vector<T>& v, std::size_t size) {
    if (v.size() < size) v.resize(size);
}

std::size_t set_words(int n) { return (static_cast<std::size_t>(n) >> 6) + 1; }
std::size_t summary_words(int n) { return (static_cast<std::size_t>(n) >> 12) + 1; }

// Sizes the work arrays for order n, never shrinking them, and sets the state
// every solve starts from: identity column order, zero work rows with no
// column marked, empty position sets, U empty with room for at least 4*n
// entries. The work rows, marks and sets are cleared here because a solve
// that stopped early may leave entries in them.
void prepare(SparseWork& w, int n) {
    const auto m = static_cast<std::size_t>(n);
    const auto slots = static_cast<std::size_t>(kBlock);
    const std::size_t words = set_words(n) * slots;
    const std::size_t summary = summary_words(n) * slots;
    ensure_size(w.C, m + 1);
    ensure_size(w.IC, m + 1);
    ensure_size(w.Y, (m + 1) * slots);
    ensure_size(w.M, m + 1);
    ensure_size(w.S, words);
    ensure_size(w.SW, summary);
    ensure_size(w.R, m + 1);
    ensure_size(w.IU, m + 2);
    ensure_size(w.D, m + 1);
    ensure_size(w.JU, 4 * m + 1);
    ensure_size(w.U, 4 * m + 1);
    for (int k = 1; k <= n; ++k) {
        w.C[k] = k;
        w.IC[k] = k;
    }
    std::fill_n(w.Y.begin(), (m + 1) * slots, 0.0);
    std::fill_n(w.M.begin(), m + 1, 0);
    std::fill_n(w.S.begin(), words, 0);
    std::fill_n(w.SW.begin(), summary, 0);
    w.IU[1] = 1;
}

// Makes room for `size` entries of U. The capacity at least doubles when it
// runs out, so that rows filling in one after another cause few
// reallocations, but only what is used is initialised.
void grow_upper(SparseWork& w, std::size_t size) {
    if (w.JU.size() >= size) return;
    if (w.JU.capacity() < size) {
        const std::size_t capacity = std::max(size, 2 * w.JU.capacity());
        w.JU.reserve(capacity);
        w.U.reserve(capacity);
    }
    w.JU.resize(size);
    w.U.resize(size);
}

constexpr std::uint64_t bit(int b) { return std::uint64_t{1} << (b & 63); }

// A set of positions 1..n as a bit set of two levels (see SparseWork). Every
// operation keeps the summary marking exactly the non-zero words. The search
// for the smallest position starts at a summary word below which the set is
// known to be empty: restart() puts it back to the bottom, and as long as
// positions are only added above the last one taken out it only moves up.
class PositionSet {
public:
    PositionSet() = default;
    PositionSet(std::uint64_t* s, std::uint64_t* sw, int n)
        : s_(s), sw_(sw), summary_words_(static_cast<int>(summary_words(n))), none_(n + 1) {}

    void restart() { from_ = 0; }
    void insert(int p) {
        s_[p >> 6] |= bit(p);
        sw_[p >> 12] |= bit(p >> 6);
    }

    // The smallest position, or n + 1 when the set is empty.
    int smallest() {
        while (from_ < summary_words_ && sw_[from_] == 0) ++from_;
        if (from_ == summary_words_) return none_;
        const int word = (from_ << 6) | std::countr_zero(sw_[from_]);
        return (word << 6) | std::countr_zero(s_[word]);
    }

    bool contains(int p) const { return (s_[p >> 6] & bit(p)) != 0; }

    // Follows an exchange of positions p and q: whichever of them is in the
    // set takes the other's place.
    void exchange(int p, int q) {
        if (contains(p) == contains(q)) return;
        const int in = contains(p) ? p : q;
        const int word = in >> 6;
        s_[word] &= ~bit(in);
        if (s_[word] == 0) sw_[word >> 6] &= ~bit(word);
        insert(in == p ? q : p);
    }

    // Takes out p, which must be the smallest position.
    void take_smallest(int p) {
        const int word = p >> 6;
        s_[word] &= s_[word] - 1;
        if (s_[word] == 0) sw_[word >> 6] &= ~bit(word);
    }

    // Writes every position to out in ascending order and empties the set;
    // returns how many there were.
    int drain(int* out) {
        int count = 0;
        for (int f = from_; f < summary_words_; ++f) {
            for (std::uint64_t words = sw_[f]; words != 0; words &= words - 1) {
                const int word = (f << 6) | std::countr_zero(words);
                for (std::uint64_t bits = s_[word]; bits != 0; bits &= bits - 1)
                    out[count++] = (word << 6) | std::countr_zero(bits);
                s_[word] = 0;
            }
            sw_[f] = 0;
        }
        return count;
    }

private:
    std::uint64_t* s_ = nullptr;
    std::uint64_t* sw_ = nullptr;
    int summary_words_ = 0;
    int none_ = 0;
    int from_ = 0;
};

// The elimination, a block of kBlock rows at a time. Row first + t of a block
// occupies slot t: its work row, by column, is Y[col * kBlock + t] and its
// positions are the set S of the slot. M[col] tells which rows hold column
// col: the first row of the block in its high bits and a bit for each slot in
// its low byte, so that a block needs no clearing of the last one's marks.
//
// Each row undergoes exactly the operations, in the same order, of being
// eliminated alone: the rows of U at the positions before the block in
// ascending order, shared with the other rows of the block; then the rows of
// U the block itself has made, in order; then its pivot. The column exchange
// of each pivot is carried into the sets of the rows still to come. Errors of
// a row are held back until the rows before it are done, so that the status
// is that of the first row to fail. Numeric faults are raised as Fault by the
// checked helpers and caught by SolveMatrix.
class Elimination {
public:
    Elimination(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
                const std::vector<double>& B, int n, SparseWork& w)
        : A_(A), JA_(JA), IA_(IA), B_(B), n_(n), w_(w), stored_(std::min(A.size(), JA.size())) {
        for (int t = 0; t < kBlock; ++t)
            sets_[t] = PositionSet(w.S.data() + set_words(n) * static_cast<std::size_t>(t),
                                   w.SW.data() + summary_words(n) * static_cast<std::size_t>(t), n);
    }

    int run() {
        for (first_ = 1; first_ <= n_; first_ += kBlock) {
            rows_ = std::min(kBlock, n_ - first_ + 1);
            for (int t = 0; t < rows_; ++t) status_[t] = scatter(t);
            reduce_before_block();
            for (int t = 0; t < rows_; ++t) {
                if (status_[t] != kSolveOk) return status_[t];
                const int status = finish(t);
                if (status != kSolveOk) return status;
            }
        }
        return kSolveOk;
    }

private:
    double& y(int col, int t) { return w_.Y[static_cast<std::size_t>(col) * kBlock + t]; }
    std::uint64_t block_mark() const { return static_cast<std::uint64_t>(first_) << 8; }
    static constexpr std::uint64_t kBlockBits = ~std::uint64_t{0xff};
    bool holds(int col, int t) const {
        return (w_.M[col] & (kBlockBits | bit(t))) == (block_mark() | bit(t));
    }

    // Column col joins row first + t: marked, and its position entered in the
    // slot's set.
    void enter(int col, int t) {
        std::uint64_t& m = w_.M[col];
        if ((m >> 8) != static_cast<std::uint64_t>(first_)) m = block_mark();
        m |= bit(t);
        sets_[t].insert(w_.IC[col]);
    }

    // Scatters row first + t into slot t, from its last entry to its first,
    // which decides the status of a row that has both a column out of range
    // and a repeated one. The row's entries must lie within the arrays; a row
    // the assembly never reached keeps a start of 0 (or ends before it starts).
    int scatter(int t) {
        const int k = first_ + t;
        sets_[t].restart();
        dk_[t] = B_[k];
        const int row_begin = IA_[k];
        const int row_end = IA_[k + 1];
        if (row_begin < 1 || row_begin >= row_end || static_cast<std::size_t>(row_end) > stored_)
            return kSolveBadRow;
        for (int j = row_end - 1; j >= row_begin; --j) {
            const int col = JA_[j];
            if (col < 1 || col > n_) return kSolveBadRow;
            if (holds(col, t)) return kSolveDuplicateColumn;
            enter(col, t);
            y(col, t) = A_[j];
        }
        return kSolveOk;
    }

    // Reduces the rows of the block against the rows of U at the positions
    // before it, each row in ascending order of position. Row i of U holds
    // only positions beyond i, so fill never lands below the position being
    // eliminated, and the smallest position left in any row is the next one
    // to take.
    void reduce_before_block() {
        const int rows = rows_;
        const int none = n_ + 1;
        int next[kBlock];
        for (int t = 0; t < rows; ++t) next[t] = status_[t] == kSolveOk ? sets_[t].smallest() : none;
        for (;;) {
            int i = none;
            for (int t = 0; t < rows; ++t) i = std::min(i, next[t]);
            if (i >= first_) return;
            double lki[kBlock] = {};
            int active[kBlock];
            int count = 0;
            for (int t = 0; t < rows; ++t) {
                if (next[t] != i) continue;
                sets_[t].take_smallest(i);
                double& yi = y(w_.C[i], t);
                lki[t] = -yi;
                yi = 0.0;
                dk_[t] += lki[t] * w_.D[i];
                active[count++] = t;
            }
            if (count == kBlock) {
                update_all(i, lki);
            } else {
                update_some(i, lki, active, count);
            }
            for (int a = 0; a < count; ++a) next[active[a]] = sets_[active[a]].smallest();
        }
    }

    // Y += lki * (row i of U) in every slot; the usual case of a band. The
    // work on the slots of one column is spelt out, so that it needs no loop
    // and the compiler may pair the slots in vector registers.
    void update_all(int i, const double (&lki)[kBlock]) {
        update_all(i, lki, std::make_integer_sequence<int, kBlock>{});
    }

    template <int... T>
    void update_all(int i, const double (&lki)[kBlock], std::integer_sequence<int, T...>) {
        const int* cols = w_.JU.data() + w_.IU[i];
        const int* const cols_end = w_.JU.data() + w_.IU[i + 1];
        const double* u = w_.U.data() + w_.IU[i];
        const std::uint64_t* const M = w_.M.data();
        double* const Y = w_.Y.data();
        const std::uint64_t in_all = block_mark() | ((std::uint64_t{1} << kBlock) - 1);
        const double l[kBlock] = {lki[T]...};
        for (; cols != cols_end; ++cols, ++u) {
            const int col = *cols;
            if (M[col] != in_all) {
                for (int t = 0; t < kBlock; ++t)
                    if (!holds(col, t)) enter(col, t);
            }
            double* const yc = Y + static_cast<std::size_t>(col) * kBlock;
            const double v = *u;
            ((yc[T] += l[T] * v), ...);
        }
    }

    // The same in the slots listed in active only.
    void update_some(int i, const double (&lki)[kBlock], const int (&active)[kBlock], int count) {
        if (count == 1) {
            update_one(i, lki[active[0]], active[0]);
            return;
        }
        std::uint64_t slots = 0;
        for (int a = 0; a < count; ++a) slots |= bit(active[a]);
        const std::uint64_t in_all = block_mark() | slots;
        const std::uint64_t look = kBlockBits | slots;
        const int* cols = w_.JU.data() + w_.IU[i];
        const int* const cols_end = w_.JU.data() + w_.IU[i + 1];
        const double* u = w_.U.data() + w_.IU[i];
        const std::uint64_t* const M = w_.M.data();
        for (; cols != cols_end; ++cols, ++u) {
            const int col = *cols;
            if ((M[col] & look) != in_all) {
                for (int a = 0; a < count; ++a)
                    if (!holds(col, active[a])) enter(col, active[a]);
            }
            double* const yc = w_.Y.data() + static_cast<std::size_t>(col) * kBlock;
            const double v = *u;
            for (int a = 0; a < count; ++a) yc[active[a]] += lki[active[a]] * v;
        }
    }

    // Y += lki * (row i of U) in slot t alone, the usual case of a sparse system.
    void update_one(int i, double lki, int t) {
        const int* cols = w_.JU.data() + w_.IU[i];
        const int* const cols_end = w_.JU.data() + w_.IU[i + 1];
        const double* u = w_.U.data() + w_.IU[i];
        double* const Y = w_.Y.data() + t;
        for (; cols != cols_end; ++cols, ++u) {
            const int col = *cols;
            if (!holds(col, t)) enter(col, t);
            Y[static_cast<std::size_t>(col) * kBlock] += lki * *u;
        }
    }

    // Completes row k = first + t once the rows before it are done: reduces it
    // against the rows of U made since the block began, then takes its pivot
    // and stores it as row k of U.
    int finish(int t) {
        const int k = first_ + t;
        int* const C = w_.C.data();
        int* const IC = w_.IC.data();
        double* const D = w_.D.data();
        int* const IU = w_.IU.data();
        PositionSet& set = sets_[t];
        set.restart();
        int s = set.smallest();
        while (s < k) {
            set.take_smallest(s);
            double& ys = y(C[s], t);
            const double lki = -ys;
            ys = 0.0;
            dk_[t] += lki * D[s];
            update_one(s, lki, t);
            s = set.smallest();
        }
        if (s > n_) return kSolveNoPivot;  // nothing left at or beyond k

        // The positions left, at and beyond k, in ascending order.
        int* const R = w_.R.data();
        const int remaining = set.drain(R);

        // Pivot: the largest magnitude among the remaining positions, taken
        // in ascending order; a later candidate wins only when strictly
        // greater, so a tie keeps the smaller position.
        const int first = R[0];
        int at = 0;
        double largest = std::fabs(y(C[first], t));
        for (int r = 1; r < remaining; ++r) {
            const double size = std::fabs(y(C[R[r]], t));
            if (size > largest) {
                largest = size;
                at = r;
            }
        }
        if (largest == 0.0) return kSolveNoPivot;
        const int pivot = R[at];
        const int pivot_col = C[pivot];
        const double inv = checked_div(1.0, checked(y(pivot_col, t)));

        // Exchange positions k and pivot and leave the pivot out of row k of
        // U. When position k is the first remaining entry, its column moves
        // to the pivot's position and stays in the row at the pivot's rank,
        // so it is k that is left out; otherwise k is not in the row at all
        // and the pivot is left out. The values stay with their columns; the
        // pivot's is spent.
        const int skip = first == k ? 0 : at;
        std::swap(C[k], C[pivot]);
        IC[C[k]] = k;
        IC[C[pivot]] = pivot;
        for (int later = t + 1; later < rows_; ++later) sets_[later].exchange(k, pivot);
        y(pivot_col, t) = 0.0;
        D[k] = checked(dk_[t] * inv);

        // Row k of U: the remaining entries divided by the pivot.
        IU[k + 1] = IU[k] + remaining - 1;
        grow_upper(w_, static_cast<std::size_t>(IU[k + 1]));
        int* const JU = w_.JU.data();
        double* const U = w_.U.data();
        int e = IU[k];
        for (int r = 0; r < remaining; ++r) {
            if (r == skip) continue;
            const int col = C[R[r]];
            double& yc = y(col, t);
            JU[e] = col;
            U[e] = checked(inv * yc);
            yc = 0.0;
            ++e;
        }
        return kSolveOk;
    }

    const std::vector<double>& A_;
    const std::vector<int>& JA_;
    const std::vector<int>& IA_;
    const std::vector<double>& B_;
    const int n_;
    SparseWork& w_;
    const std::size_t stored_;
    int first_ = 1;  // the row in slot 0
    int rows_ = 0;   // rows in the block
    PositionSet sets_[kBlock];
    double dk_[kBlock] = {};   // the reduced right-hand side of each slot's row
    int status_[kBlock] = {};  // the outcome of each slot's scatter
};

// Back substitution by position; the value at position k belongs to column
// C[k]. B is written only once every value has passed.
void back_substitute(std::vector<double>& B, int n, SparseWork& w) {
    const int* const IU = w.IU.data();
    const int* const JU = w.JU.data();
    const double* const U = w.U.data();
    const int* const IC = w.IC.data();
    double* const D = w.D.data();
    for (int k = n; k >= 1; --k) {
        double s = D[k];
        for (int j = IU[k]; j < IU[k + 1]; ++j) s -= U[j] * D[IC[JU[j]]];
        D[k] = checked(s);
    }
    for (int k = 1; k <= n; ++k) B[w.C[k]] = D[k];
}

int solve(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
          std::vector<double>& B, int n, SparseWork& w) {
    if (n < 0 || IA.size() < static_cast<std::size_t>(n) + 2 || B.size() < static_cast<std::size_t>(n) + 1)
        return kSolveBadRow;
    prepare(w, n);
    const int status = Elimination(A, JA, IA, B, n, w).run();
    if (status != kSolveOk) return status;
    back_substitute(B, n, w);
    return kSolveOk;
}

}  // namespace

int SolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                const std::vector<int>& IA, std::vector<double>& B, int n, SparseWork& work) {
    if (n == 0) return kSolveOk;
    try {
        return solve(A, JA, IA, B, n, work);
    } catch (const Fault& f) {
        ctx.log_error("Error! In solving matrix = " + fault_text(f));
        return kSolveNoPivot;
    }
}

int SolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                const std::vector<int>& IA, std::vector<double>& B, int n) {
    SparseWork work;
    return SolveMatrix(ctx, A, JA, IA, B, n, work);
}

}  // namespace velm
