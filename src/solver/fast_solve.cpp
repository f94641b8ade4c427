#include "solver/fast_solve.hpp"

#include <suitesparse/amd.h>
#include <suitesparse/klu.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "model/fault.hpp"
#include "solver/sparse.hpp"

namespace velm {

// KLU's state and the structure it was analysed for, 0-based. KLU works on
// compressed columns, its row indices ascending within a column: the rows are
// taken as they come, checked, and turned into columns.
struct FastSolveWork::State {
    klu_common common{};
    klu_symbolic* symbolic = nullptr;
    klu_numeric* numeric = nullptr;
    int n = 0;
    double fresh_rcond = 0.0;          // KLU's reciprocal pivot ratio after the last fresh factorisation
    std::vector<int> starts, columns;  // the structure of the analysis
    std::vector<int> next_starts, next_columns;  // the structure of this solve
    std::vector<double> values, rhs, residual, kept;
    std::vector<int> seen;             // the row that last held each column
    std::vector<int> row_at;           // where each row stands in the matrix KLU sees (empty: where it is)
    std::vector<int> order;            // the pivot order of the paired diagonal
    std::vector<int> col_starts, col_rows;  // A by columns, for KLU
    std::vector<double> col_values;

    // KLU's own threshold (0.001): a diagonal entry of at least that part of
    // its column's largest is kept as pivot, which keeps the fill of the
    // order; plain partial pivoting fills a 15,000-unknown grid forty times
    // more. The accuracy given up is won back by iterative refinement.
    State() { klu_defaults(&common); }
    int at(int row) const { return row_at.empty() ? row : row_at[static_cast<std::size_t>(row)]; }
    ~State() { release(); }
    void release() {
        if (numeric != nullptr) klu_free_numeric(&numeric, &common);
        if (symbolic != nullptr) klu_free_symbolic(&symbolic, &common);
    }
};

FastSolveWork::FastSolveWork() : state(std::make_unique<State>()) {}
FastSolveWork::~FastSolveWork() = default;
FastSolveWork::FastSolveWork(FastSolveWork&&) noexcept = default;
FastSolveWork& FastSolveWork::operator=(FastSolveWork&&) noexcept = default;

namespace {

// The pivot threshold taken when the solution of a factorisation by the
// order's small threshold misses kFastSolveBackwardLimit.
constexpr double kSafePivotTolerance = 0.1;

// The storage checks of SolveMatrix, row by row and within a row from its
// last entry to its first; the rows are copied 0-based beside the structure
// that was analysed. Storage faults are thus found before any elimination.
int take_rows(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA, int n,
              FastSolveWork::State& s) {
    const std::size_t stored = std::min(A.size(), JA.size());
    s.seen.assign(static_cast<std::size_t>(n) + 1, 0);
    s.next_starts.assign(1, 0);
    s.next_columns.clear();
    s.values.clear();
    for (int k = 1; k <= n; ++k) {
        const int begin = IA[static_cast<std::size_t>(k)], end = IA[static_cast<std::size_t>(k) + 1];
        if (begin < 1 || begin >= end || static_cast<std::size_t>(end) > stored) return kSolveBadRow;
        for (int j = end - 1; j >= begin; --j) {
            const int col = JA[static_cast<std::size_t>(j)];
            if (col < 1 || col > n) return kSolveBadRow;
            if (s.seen[static_cast<std::size_t>(col)] == k) return kSolveDuplicateColumn;
            s.seen[static_cast<std::size_t>(col)] = k;
        }
        for (int j = begin; j < end; ++j) {
            s.next_columns.push_back(JA[static_cast<std::size_t>(j)] - 1);
            s.values.push_back(checked(A[static_cast<std::size_t>(j)]));
        }
        s.next_starts.push_back(static_cast<int>(s.next_columns.size()));
    }
    return kSolveOk;
}

// The rows of this solve as columns, each row at its place: counted, then
// filled row by row, so the row indices of each column come out ascending
// when the rows stand where they are.
void to_columns(FastSolveWork::State& s, int n) {
    const auto un = static_cast<std::size_t>(n);
    s.col_starts.assign(un + 1, 0);
    for (const int c : s.columns) ++s.col_starts[static_cast<std::size_t>(c) + 1];
    for (std::size_t c = 0; c < un; ++c) s.col_starts[c + 1] += s.col_starts[c];
    s.seen.assign(s.col_starts.begin(), s.col_starts.end() - 1);  // next free place of each column
    s.col_rows.resize(s.columns.size());
    s.col_values.resize(s.columns.size());
    for (std::size_t r = 0; r < un; ++r) {
        const int place = s.at(static_cast<int>(r));
        for (int j = s.starts[r]; j < s.starts[r + 1]; ++j) {
            const auto k = static_cast<std::size_t>(j);
            const auto slot = static_cast<std::size_t>(s.seen[static_cast<std::size_t>(s.columns[k])]++);
            s.col_rows[slot] = place;
            s.col_values[slot] = s.values[k];
        }
    }
    if (s.row_at.empty()) return;
    for (std::size_t c = 0; c < un; ++c) {  // KLU wants the rows of a column ascending
        const auto b = static_cast<std::ptrdiff_t>(s.col_starts[c]), e = static_cast<std::ptrdiff_t>(s.col_starts[c + 1]);
        for (std::ptrdiff_t i = b + 1; i < e; ++i)  // columns hold a handful of entries
            for (std::ptrdiff_t k = i; k > b && s.col_rows[static_cast<std::size_t>(k - 1)] > s.col_rows[static_cast<std::size_t>(k)]; --k) {
                std::swap(s.col_rows[static_cast<std::size_t>(k - 1)], s.col_rows[static_cast<std::size_t>(k)]);
                std::swap(s.col_values[static_cast<std::size_t>(k - 1)], s.col_values[static_cast<std::size_t>(k)]);
            }
    }
}

// A place for every row, so that the diagonal KLU orders is the pivot that
// keeps the fill low: each given pair (a row and the unknown it alone
// determines) on the diagonal, and every other row paired with a column of
// the system that remains once the paired unknowns are eliminated (its own
// columns, each paired column standing for the other columns of its row),
// by augmenting paths (a maximum bipartite matching, Duff, ACM TOMS 7(3),
// 1981). For a network this puts each node balance against its node's
// pressure: the order then eliminates the line flows first and leaves the
// nodes' pressures coupled as the nodes are, the fill of the heads
// formulation. False when some row finds no column.
bool pair_rows(FastSolveWork::State& s, int n, int paired_rows, int paired_col) {
    const auto un = static_cast<std::size_t>(n);
    std::vector<int> row_of(un, -1), col_of(un, -1);
    std::vector<char> given(un, 0), single(un, 0);
    auto row_has = [&s](int r, int c) {
        for (int j = s.starts[static_cast<std::size_t>(r)]; j < s.starts[static_cast<std::size_t>(r) + 1]; ++j)
            if (s.columns[static_cast<std::size_t>(j)] == c) return true;
        return false;
    };
    // A row of one entry can take no other column: it comes before the pairs.
    for (int r = 0; r < n; ++r) {
        const auto b = s.starts[static_cast<std::size_t>(r)];
        if (s.starts[static_cast<std::size_t>(r) + 1] - b != 1) continue;
        const int c = s.columns[static_cast<std::size_t>(b)];
        if (row_of[static_cast<std::size_t>(c)] >= 0) continue;
        row_of[static_cast<std::size_t>(c)] = r;
        col_of[static_cast<std::size_t>(r)] = c;
        single[static_cast<std::size_t>(r)] = 1;
    }
    for (int r = 0; r < std::min(paired_rows, n); ++r) {
        const int c = paired_col + r;
        if (c < 0 || c >= n || col_of[static_cast<std::size_t>(r)] >= 0 || row_of[static_cast<std::size_t>(c)] >= 0 ||
            !row_has(r, c))
            continue;
        row_of[static_cast<std::size_t>(c)] = r;
        col_of[static_cast<std::size_t>(r)] = c;
        given[static_cast<std::size_t>(r)] = 1;
    }
    // The columns each other row may take.
    std::vector<int> adj_start(un + 1, 0), adj;
    for (std::size_t r = 0; r < un; ++r) {
        adj_start[r] = static_cast<int>(adj.size());
        if (given[r]) continue;
        for (int j = s.starts[r]; j < s.starts[r + 1]; ++j) {
            const int c = s.columns[static_cast<std::size_t>(j)];
            const int h = row_of[static_cast<std::size_t>(c)];
            if (h < 0 || !given[static_cast<std::size_t>(h)]) {
                adj.push_back(c);
                continue;
            }
            for (int k = s.starts[static_cast<std::size_t>(h)]; k < s.starts[static_cast<std::size_t>(h) + 1]; ++k)
                if (s.columns[static_cast<std::size_t>(k)] != c) adj.push_back(s.columns[static_cast<std::size_t>(k)]);
        }
    }
    adj_start[un] = static_cast<int>(adj.size());
    auto free_col = [&](int c) { return row_of[static_cast<std::size_t>(c)] < 0; };
    // A free column at once where there is one, then augmenting paths.
    for (std::size_t r = 0; r < un; ++r)
        if (col_of[r] < 0)
            for (int k = adj_start[r]; k < adj_start[r + 1]; ++k)
                if (const int c = adj[static_cast<std::size_t>(k)]; free_col(c)) {
                    row_of[static_cast<std::size_t>(c)] = static_cast<int>(r);
                    col_of[r] = c;
                    break;
                }
    std::vector<int> visited(un, -1), rows, pos, via;
    for (int r0 = 0; r0 < n; ++r0) {
        if (col_of[static_cast<std::size_t>(r0)] >= 0) continue;
        rows.assign(1, r0);
        pos.assign(1, adj_start[static_cast<std::size_t>(r0)]);
        via.assign(1, -1);
        bool found = false;
        while (!rows.empty() && !found) {
            const auto top = rows.size() - 1;
            const int r = rows[top];
            if (pos[top] == adj_start[static_cast<std::size_t>(r) + 1]) {
                rows.pop_back();
                pos.pop_back();
                via.pop_back();
                continue;
            }
            const int c = adj[static_cast<std::size_t>(pos[top]++)];
            if (visited[static_cast<std::size_t>(c)] == r0) continue;
            visited[static_cast<std::size_t>(c)] = r0;
            const int h = row_of[static_cast<std::size_t>(c)];
            if (h >= 0 && given[static_cast<std::size_t>(h)]) continue;
            if (h >= 0) {
                via[top] = c;
                rows.push_back(h);
                pos.push_back(adj_start[static_cast<std::size_t>(h)]);
                via.push_back(-1);
                continue;
            }
            // Row rows[i] takes via[i]; the last row takes c.
            via[top] = c;
            for (std::size_t i = 0; i <= top; ++i) {
                row_of[static_cast<std::size_t>(via[i])] = rows[i];
                col_of[static_cast<std::size_t>(rows[i])] = via[i];
            }
            found = true;
        }
        if (!found) return false;
    }
    // The order: rows of one entry (no fill), then the given pairs (the
    // fill of each is its row's few columns), then the rest by minimum
    // degree (AMD) on the pattern that remains, made symmetric.
    s.order.clear();
    for (int r = 0; r < n; ++r)
        if (single[static_cast<std::size_t>(r)]) s.order.push_back(col_of[static_cast<std::size_t>(r)]);
    for (int r = 0; r < n; ++r)
        if (given[static_cast<std::size_t>(r)]) s.order.push_back(col_of[static_cast<std::size_t>(r)]);
    std::vector<int> local(un, -1), rest;
    for (int r = 0; r < n; ++r)
        if (!single[static_cast<std::size_t>(r)] && !given[static_cast<std::size_t>(r)]) {
            local[static_cast<std::size_t>(col_of[static_cast<std::size_t>(r)])] = static_cast<int>(rest.size());
            rest.push_back(r);
        }
    if (!rest.empty()) {
        std::vector<int> ap(1, 0), ai, perm(rest.size());
        for (const int r : rest) {
            for (int k = adj_start[static_cast<std::size_t>(r)]; k < adj_start[static_cast<std::size_t>(r) + 1]; ++k)
                if (const int l = local[static_cast<std::size_t>(adj[static_cast<std::size_t>(k)])]; l >= 0) ai.push_back(l);
            ap.push_back(static_cast<int>(ai.size()));
        }
        if (amd_order(static_cast<int>(rest.size()), ap.data(), ai.data(), perm.data(), nullptr, nullptr) < AMD_OK)
            return false;
        for (const int l : perm) s.order.push_back(col_of[static_cast<std::size_t>(rest[static_cast<std::size_t>(l)])]);
    }
    s.row_at = std::move(col_of);
    return true;
}

// The largest |b - A x| over the rows, kept in s.residual (the structure of
// this solve is in starts and columns by now). With backward given, also the
// componentwise backward error of x (Oettli and Prager, 1964): the largest
// |b - A x| of a row against |A| |x| + |b| of that row.
double residual_of(const std::vector<double>& B, int n, FastSolveWork::State& s, double* backward = nullptr) {
    double largest = 0.0, worst = 0.0;
    for (int r = 0; r < n; ++r) {
        const double b = B[static_cast<std::size_t>(r) + 1];
        double sum = b, scale = std::fabs(b);
        for (int j = s.starts[static_cast<std::size_t>(r)]; j < s.starts[static_cast<std::size_t>(r) + 1]; ++j) {
            const double term = s.values[static_cast<std::size_t>(j)] * s.rhs[static_cast<std::size_t>(s.columns[static_cast<std::size_t>(j)])];
            sum -= term;
            scale += std::fabs(term);
        }
        s.residual[static_cast<std::size_t>(s.at(r))] = sum;
        largest = std::max(largest, std::fabs(sum));
        if (scale > 0.0) worst = std::max(worst, std::fabs(sum) / scale);
    }
    if (backward != nullptr) *backward = worst;
    return largest;
}

// A componentwise backward error this small is rounding alone: a
// refinement step cannot make the solution the exact one of a nearer system.
constexpr double kRoundingBackward = 2.0 * std::numeric_limits<double>::epsilon();

// Iterative refinement (Wilkinson): the residual of the solution in s.rhs is
// solved for with the same factors and added, while that shrinks it and the
// backward error is above rounding, at most three times. Returns the
// backward error of the solution kept.
double refine(const std::vector<double>& B, int n, FastSolveWork::State& s) {
    s.residual.resize(static_cast<std::size_t>(n));
    double backward = 0.0;
    double last = residual_of(B, n, s, &backward);
    for (int step = 0; step < 3 && last > 0.0 && backward > kRoundingBackward; ++step) {
        s.kept = s.rhs;
        if (klu_solve(s.symbolic, s.numeric, n, 1, s.residual.data(), &s.common) == 0) break;
        for (std::size_t k = 0; k < s.rhs.size(); ++k) s.rhs[k] += s.residual[k];
        double now_backward = 0.0;
        const double now = residual_of(B, n, s, &now_backward);
        if (!(now < last)) {
            std::swap(s.rhs, s.kept);
            break;
        }
        last = now;
        backward = now_backward;
    }
    return backward;
}

// The numeric factors of the new values: with the pivots of the last
// factorisation while they stay sound (the reciprocal pivot ratio no worse
// than a thousandth of what a fresh factorisation gave), else afresh with
// pivoting. The values of the rows move little from one iteration to the next.
bool factor(FastSolveWork::State& s) {
    if (s.numeric != nullptr &&
        klu_refactor(s.col_starts.data(), s.col_rows.data(), s.col_values.data(), s.symbolic, s.numeric, &s.common) &&
        klu_rcond(s.symbolic, s.numeric, &s.common) && s.common.rcond >= 1e-3 * s.fresh_rcond)
        return true;
    if (s.numeric != nullptr) klu_free_numeric(&s.numeric, &s.common);
    s.numeric = klu_factor(s.col_starts.data(), s.col_rows.data(), s.col_values.data(), s.symbolic, &s.common);
    if (s.numeric == nullptr) return false;
    s.fresh_rcond = klu_rcond(s.symbolic, s.numeric, &s.common) ? s.common.rcond : 0.0;
    return true;
}

// Entries of L and U of the last factorisation.
double factor_entries(const FastSolveWork::State& s) {
    return s.numeric != nullptr ? static_cast<double>(s.numeric->lnz) + static_cast<double>(s.numeric->unz) : 0.0;
}

// Factors the values of this solve and solves, refined, into s.rhs; the
// backward error of the solution in backward.
int factor_solve_refine(const std::vector<double>& B, int n, FastSolveWork& work, bool fresh, double& backward) {
    FastSolveWork::State& s = *work.state;
    for (int r = 0; r < n; ++r) s.rhs[static_cast<std::size_t>(s.at(r))] = checked(B[static_cast<std::size_t>(r) + 1]);
    if (fresh && s.numeric != nullptr) klu_free_numeric(&s.numeric, &s.common);
    if (!factor(s)) return kSolveNoPivot;
    work.factor_entries = factor_entries(s);
    if (klu_solve(s.symbolic, s.numeric, n, 1, s.rhs.data(), &s.common) == 0) return kSolveNoPivot;
    for (const double x : s.rhs) checked(x);  // B changes only when every value is finite
    backward = refine(B, n, s);
    return kSolveOk;
}

int factor_and_solve(std::vector<double>& B, int n, FastSolveWork& work) {
    FastSolveWork::State& s = *work.state;
    s.rhs.resize(static_cast<std::size_t>(n));
    double backward = 0.0;
    int status = factor_solve_refine(B, n, work, false, backward);
    // A small pivot kept for the sake of the fill can let the error grow past
    // what refinement recovers, in a network of lines that differ by many
    // decades. Then the values are factored afresh with threshold partial
    // pivoting at a tenth of each column's largest, kept for the rest of the
    // structure's solves.
    if (status == kSolveOk && backward > kFastSolveBackwardLimit && s.common.tol < kSafePivotTolerance) {
        s.common.tol = kSafePivotTolerance;
        ++work.safe_refactors;
        status = factor_solve_refine(B, n, work, true, backward);
    }
    if (status != kSolveOk) return status;
    std::copy(s.rhs.begin(), s.rhs.end(), B.begin() + 1);
    return kSolveOk;
}

int solve(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
          std::vector<double>& B, int n, FastSolveWork& work) {
    if (n < 0 || IA.size() < static_cast<std::size_t>(n) + 2 || B.size() < static_cast<std::size_t>(n) + 1)
        return kSolveBadRow;
    FastSolveWork::State& s = *work.state;
    const int status = take_rows(A, JA, IA, n, s);
    if (status != kSolveOk) return status;
    const bool fresh = s.symbolic == nullptr || s.n != n || s.next_starts != s.starts || s.next_columns != s.columns;
    if (fresh) {
        s.release();
        std::swap(s.starts, s.next_starts);
        std::swap(s.columns, s.next_columns);
        // With the rows paired, the minimum degree order of A + A' (AMD,
        // Amestoy, Davis and Duff, SIAM J. Matrix Anal. Appl. 17(4), 1996)
        // on the paired diagonal, which stands as it is (no block
        // triangular form, which would pair afresh). Otherwise a block
        // triangular form and the column order of COLAMD (Davis, Gilbert,
        // Larimore and Ng, ACM TOMS 30(3), 2004): the network rows are far
        // from symmetric, and it leaves half the fill of AMD on A + A'.
        work.paired = work.paired_rows > 0 && pair_rows(s, n, work.paired_rows, work.paired_col);
        if (!work.paired) s.row_at.clear();
        s.common.btf = work.paired ? 0 : 1;
        s.common.tol = work.paired ? 1e-12 : 1e-3;
        s.common.ordering = work.paired ? 0 : 1;
        // With an order given KLU has no estimate of the factors and first
        // takes room for initmem times the entries of A in each of L and U
        // (ten by default: 44 MB for a 30,000-line grid whose factors hold
        // 0.5 M entries). Network factors hold about two to three times
        // A's entries each; KLU grows the room when they need more.
        s.common.initmem = work.paired ? 2.0 : 10.0;
    }
    to_columns(s, n);
    if (fresh) {
        s.symbolic = work.paired ? klu_analyze_given(n, s.col_starts.data(), s.col_rows.data(), s.order.data(),
                                                     s.order.data(), &s.common)
                                 : klu_analyze(n, s.col_starts.data(), s.col_rows.data(), &s.common);
        if (s.symbolic == nullptr) return kSolveNoPivot;
        s.n = n;
        ++work.analyses;
    }
    return factor_and_solve(B, n, work);
}

}  // namespace

int FastSolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                    const std::vector<int>& IA, std::vector<double>& B, int n, FastSolveWork& work) {
    if (n == 0) return kSolveOk;
    try {
        return solve(A, JA, IA, B, n, work);
    } catch (const Fault& f) {
        ctx.log_error("Error! In solving matrix = " + fault_text(f));
        return kSolveNoPivot;
    }
}

}  // namespace velm
