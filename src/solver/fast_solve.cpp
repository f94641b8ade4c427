#include "solver/fast_solve.hpp"

#include <suitesparse/klu.h>

#include <algorithm>
#include <cmath>

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
    std::vector<int> col_starts, col_rows;  // A by columns, for KLU
    std::vector<double> col_values;

    // KLU's own threshold (0.001): a diagonal entry of at least that part of
    // its column's largest is kept as pivot, which keeps the fill of the
    // order; plain partial pivoting fills a 15,000-unknown grid forty times
    // more. The accuracy given up is won back by iterative refinement.
    // The column order of COLAMD (Davis, Gilbert, Larimore and Ng, ACM TOMS
    // 30(3), 2004): the network rows are far from symmetric, and it leaves
    // half the fill of AMD on A + A' (a 15,000-unknown grid: 0.67 million
    // entries of L and U against 1.14 million).
    State() {
        klu_defaults(&common);
        common.ordering = 1;
    }
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

// The rows of this solve as columns: counted, then filled row by row, so the
// row indices of each column come out ascending.
void to_columns(FastSolveWork::State& s, int n) {
    const auto un = static_cast<std::size_t>(n);
    s.col_starts.assign(un + 1, 0);
    for (const int c : s.next_columns) ++s.col_starts[static_cast<std::size_t>(c) + 1];
    for (std::size_t c = 0; c < un; ++c) s.col_starts[c + 1] += s.col_starts[c];
    s.seen.assign(s.col_starts.begin(), s.col_starts.end() - 1);  // next free place of each column
    s.col_rows.resize(s.next_columns.size());
    s.col_values.resize(s.next_columns.size());
    for (std::size_t r = 0; r < un; ++r)
        for (int j = s.next_starts[r]; j < s.next_starts[r + 1]; ++j) {
            const auto at = static_cast<std::size_t>(s.seen[static_cast<std::size_t>(s.next_columns[static_cast<std::size_t>(j)])]++);
            s.col_rows[at] = static_cast<int>(r);
            s.col_values[at] = s.values[static_cast<std::size_t>(j)];
        }
}

// The largest |b - A x| over the rows, kept in s.residual (the structure of
// this solve is in starts and columns by now).
double residual_of(const std::vector<double>& B, int n, FastSolveWork::State& s) {
    double largest = 0.0;
    for (int r = 0; r < n; ++r) {
        double sum = B[static_cast<std::size_t>(r) + 1];
        for (int j = s.starts[static_cast<std::size_t>(r)]; j < s.starts[static_cast<std::size_t>(r) + 1]; ++j)
            sum -= s.values[static_cast<std::size_t>(j)] * s.rhs[static_cast<std::size_t>(s.columns[static_cast<std::size_t>(j)])];
        s.residual[static_cast<std::size_t>(r)] = sum;
        largest = std::max(largest, std::fabs(sum));
    }
    return largest;
}

// Iterative refinement (Wilkinson): the residual of the solution in s.rhs is
// solved for with the same factors and added, while that shrinks it, at most
// three times.
void refine(const std::vector<double>& B, int n, FastSolveWork::State& s) {
    s.residual.resize(static_cast<std::size_t>(n));
    double last = residual_of(B, n, s);
    for (int step = 0; step < 3 && last > 0.0; ++step) {
        s.kept = s.rhs;
        if (klu_solve(s.symbolic, s.numeric, n, 1, s.residual.data(), &s.common) == 0) return;
        for (std::size_t k = 0; k < s.rhs.size(); ++k) s.rhs[k] += s.residual[k];
        const double now = residual_of(B, n, s);
        if (!(now < last)) {
            std::swap(s.rhs, s.kept);
            return;
        }
        last = now;
    }
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

int factor_and_solve(std::vector<double>& B, int n, FastSolveWork& work) {
    FastSolveWork::State& s = *work.state;
    s.rhs.assign(B.begin() + 1, B.begin() + 1 + n);
    for (double& b : s.rhs) b = checked(b);
    if (!factor(s)) return kSolveNoPivot;
    work.factor_entries = factor_entries(s);
    if (klu_solve(s.symbolic, s.numeric, n, 1, s.rhs.data(), &s.common) == 0) return kSolveNoPivot;
    for (const double x : s.rhs) checked(x);  // B changes only when every value is finite
    refine(B, n, s);
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
    to_columns(s, n);
    if (s.symbolic == nullptr || s.n != n || s.next_starts != s.starts || s.next_columns != s.columns) {
        s.release();
        std::swap(s.starts, s.next_starts);
        std::swap(s.columns, s.next_columns);
        s.symbolic = klu_analyze(n, s.col_starts.data(), s.col_rows.data(), &s.common);
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
