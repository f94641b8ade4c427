#include "solver/sparse.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

#include "model/fault.hpp"

namespace velm {

namespace {

template <class T>
void ensure_size(std::vector<T>& v, std::size_t size) {
    if (v.size() < size) v.resize(size);
}

// Sizes the work arrays for order n, never shrinking them, and sets the state
// every solve starts from: identity column order, a zero work row with no
// column marked, an empty position set, U empty with room for at least 4*n
// entries. The work row and the set are cleared here because a solve that
// stopped early may leave entries in them.
void prepare(SparseWork& w, int n) {
    const auto m = static_cast<std::size_t>(n);
    const auto words = (m >> 6) + 1;
    const auto summary_words = (m >> 12) + 1;
    ensure_size(w.C, m + 1);
    ensure_size(w.IC, m + 1);
    ensure_size(w.Y, m + 1);
    ensure_size(w.M, m + 1);
    ensure_size(w.S, words);
    ensure_size(w.SW, summary_words);
    ensure_size(w.R, m + 1);
    ensure_size(w.IU, m + 2);
    ensure_size(w.D, m + 1);
    ensure_size(w.JU, 4 * m + 1);
    ensure_size(w.U, 4 * m + 1);
    for (int k = 1; k <= n; ++k) {
        w.C[k] = k;
        w.IC[k] = k;
    }
    std::fill(w.Y.begin(), w.Y.begin() + n + 1, 0.0);
    std::fill(w.M.begin(), w.M.begin() + n + 1, 0);
    std::fill(w.S.begin(), w.S.begin() + static_cast<std::ptrdiff_t>(words), 0);
    std::fill(w.SW.begin(), w.SW.begin() + static_cast<std::ptrdiff_t>(summary_words), 0);
    w.IU[1] = 1;
}

// Makes room for `size` entries of U, at least doubling what there is, so
// that rows filling in one after another cause few reallocations.
void grow_upper(SparseWork& w, std::size_t size) {
    if (w.JU.size() >= size) return;
    const std::size_t grown = std::max(size, 2 * w.JU.size());
    w.JU.resize(grown);
    w.U.resize(grown);
}

constexpr std::uint64_t bit(int b) { return std::uint64_t{1} << (b & 63); }

// The positions of the row being reduced, over the two-level bit set of the
// work arrays (see SparseWork). Every operation keeps SW marking exactly the
// non-zero words of S. The search for the smallest position starts at a
// summary word below which the set is known to be empty; the caller resets it
// for each row, and as positions are only ever added above the last one taken
// out, it only moves up within a row.
class PositionSet {
public:
    PositionSet(SparseWork& w, int n)
        : s_(w.S.data()), sw_(w.SW.data()), summary_words_((n >> 12) + 1), none_(n + 1) {}

    void restart() { from_ = 0; }
    void insert(int p) {
        s_[p >> 6] |= bit(p);
        sw_[p >> 12] |= bit(p >> 6);
    }

    // The smallest position, or n + 1 when the set is empty.
    int smallest() {
        while (sw_[from_] == 0)
            if (++from_ == summary_words_) return none_;
        const int word = (from_ << 6) | std::countr_zero(sw_[from_]);
        return (word << 6) | std::countr_zero(s_[word]);
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
    std::uint64_t* s_;
    std::uint64_t* sw_;
    int summary_words_;
    int none_;
    int from_ = 0;
};

// The elimination and back substitution. Numeric faults are raised as Fault
// by the checked helpers and caught by SolveMatrix.
int solve(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
          std::vector<double>& B, int n, SparseWork& w) {
    if (n < 0 || IA.size() < static_cast<std::size_t>(n) + 2 || B.size() < static_cast<std::size_t>(n) + 1)
        return kSolveBadRow;
    prepare(w, n);
    int* const C = w.C.data();
    int* const IC = w.IC.data();
    double* const Y = w.Y.data();
    int* const M = w.M.data();
    int* const R = w.R.data();
    int* const IU = w.IU.data();
    double* const D = w.D.data();
    PositionSet row(w, n);
    const std::size_t stored = std::min(A.size(), JA.size());

    for (int k = 1; k <= n; ++k) {
        // The row's entries must lie within the arrays; a row the assembly
        // never reached keeps a start of 0 (or ends before it starts).
        row.restart();
        const int row_begin = IA[k];
        const int row_end = IA[k + 1];
        if (row_begin < 1 || row_begin >= row_end || static_cast<std::size_t>(row_end) > stored)
            return kSolveBadRow;

        // Scatter the row into the dense work row, from its last entry to
        // its first, which decides the status of a row that has both a
        // column out of range and a repeated one. M[col] = k marks the
        // columns of row k, so no mark needs clearing between rows.
        for (int j = row_end - 1; j >= row_begin; --j) {
            const int col = JA[j];
            if (col < 1 || col > n) return kSolveBadRow;
            if (M[col] == k) return kSolveDuplicateColumn;
            M[col] = k;
            row.insert(IC[col]);
            Y[col] = A[j];
        }

        // Reduce the row against the rows of U at the positions before k, in
        // ascending order. Row i of U holds only positions beyond i, so fill
        // never lands below the position being eliminated. The work row is
        // kept by column, so that an update needs no position; only a column
        // new to the row is looked up, to enter its position in the set.
        const int* const JU = w.JU.data();
        const double* const U = w.U.data();
        double dk = B[k];
        int i = row.smallest();
        while (i < k) {
            row.take_smallest(i);
            const double lki = -Y[C[i]];
            Y[C[i]] = 0.0;
            dk += lki * D[i];
            const int* const cols_end = JU + IU[i + 1];
            const double* u = U + IU[i];
            for (const int* cols = JU + IU[i]; cols != cols_end; ++cols, ++u) {
                const int col = *cols;
                if (M[col] != k) {
                    M[col] = k;
                    row.insert(IC[col]);
                }
                Y[col] += lki * *u;
            }
            i = row.smallest();
        }
        if (i > n) return kSolveNoPivot;  // nothing left at or beyond k

        // Pivot: the largest magnitude among the remaining positions, taken
        // in ascending order; a later candidate wins only when strictly
        // greater, so a tie keeps the smaller position.
        const int remaining = row.drain(R);
        const int first = R[0];
        int at = 0;
        double largest = std::fabs(Y[C[first]]);
        for (int t = 1; t < remaining; ++t) {
            const double size = std::fabs(Y[C[R[t]]]);
            if (size > largest) {
                largest = size;
                at = t;
            }
        }
        if (largest == 0.0) return kSolveNoPivot;
        const int pivot = R[at];
        const int pivot_col = C[pivot];
        const double inv = checked_div(1.0, checked(Y[pivot_col]));

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
        Y[pivot_col] = 0.0;
        D[k] = checked(dk * inv);

        // Row k of U: the remaining entries divided by the pivot.
        IU[k + 1] = IU[k] + remaining - 1;
        grow_upper(w, static_cast<std::size_t>(IU[k + 1]));
        int* const JUk = w.JU.data();
        double* const Uk = w.U.data();
        int e = IU[k];
        for (int t = 0; t < remaining; ++t) {
            if (t == skip) continue;
            const int col = C[R[t]];
            JUk[e] = col;
            Uk[e] = checked(inv * Y[col]);
            Y[col] = 0.0;
            ++e;
        }
    }

    // Back substitution by position; the value at position k belongs to column C[k].
    const int* const JU = w.JU.data();
    const double* const U = w.U.data();
    for (int k = n; k >= 1; --k) {
        double s = D[k];
        for (int j = IU[k]; j < IU[k + 1]; ++j) s -= U[j] * D[IC[JU[j]]];
        D[k] = checked(s);
        Y[C[k]] = s;
    }
    std::copy(Y + 1, Y + n + 1, B.begin() + 1);
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
