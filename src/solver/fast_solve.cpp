#include "solver/fast_solve.hpp"

#include <suitesparse/klu.h>

#include <algorithm>
#include <cmath>

#include "model/fault.hpp"
#include "solver/sparse.hpp"

namespace velm {

// KLU's state and the structure it was analysed for, 0-based. KLU works on
// compressed columns: the rows of A handed over as columns are A transposed,
// and its transposed solve then solves A x = b.
struct FastSolveWork::State {
    klu_common common{};
    klu_symbolic* symbolic = nullptr;
    klu_numeric* numeric = nullptr;
    int n = 0;
    std::vector<int> starts, columns;  // the structure of the analysis
    std::vector<int> next_starts, next_columns;  // the structure of this solve
    std::vector<double> values, rhs;
    std::vector<int> seen;             // the row that last held each column

    // Plain partial pivoting (a threshold of 1): KLU's default of 0.001 keeps a
    // small diagonal entry for sparsity, which the network rows, whose
    // diagonal may be a far smaller coefficient than the row's largest, do not
    // afford.
    State() {
        klu_defaults(&common);
        common.tol = 1.0;
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

// KLU reads the entries of a column in ascending order: the row just taken is
// sorted by column, values alongside (insertion sort: rows are short).
void sort_row(FastSolveWork::State& s, std::size_t first) {
    int* const col = s.next_columns.data();
    double* const val = s.values.data();
    const std::size_t end = s.next_columns.size();
    for (std::size_t i = first + 1; i < end; ++i) {
        const int c = col[i];
        const double v = val[i];
        std::size_t j = i;
        for (; j > first && col[j - 1] > c; --j) {
            col[j] = col[j - 1];
            val[j] = val[j - 1];
        }
        col[j] = c;
        val[j] = v;
    }
}

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
        const std::size_t first = s.next_columns.size();
        for (int j = begin; j < end; ++j) {
            s.next_columns.push_back(JA[static_cast<std::size_t>(j)] - 1);
            s.values.push_back(checked(A[static_cast<std::size_t>(j)]));
        }
        sort_row(s, first);
        s.next_starts.push_back(static_cast<int>(s.next_columns.size()));
    }
    return kSolveOk;
}

int factor_and_solve(std::vector<double>& B, int n, FastSolveWork& work) {
    FastSolveWork::State& s = *work.state;
    s.rhs.assign(B.begin() + 1, B.begin() + 1 + n);
    for (double& b : s.rhs) b = checked(b);
    if (s.numeric != nullptr) klu_free_numeric(&s.numeric, &s.common);
    // A fresh factorisation with partial pivoting each time: the values of the
    // rows change from one iteration to the next, the order found stays good.
    s.numeric = klu_factor(s.starts.data(), s.columns.data(), s.values.data(), s.symbolic, &s.common);
    if (s.numeric == nullptr) return kSolveNoPivot;
    if (klu_tsolve(s.symbolic, s.numeric, n, 1, s.rhs.data(), &s.common) == 0) return kSolveNoPivot;
    for (const double x : s.rhs) checked(x);  // B changes only when every value is finite
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
    if (s.symbolic == nullptr || s.n != n || s.next_starts != s.starts || s.next_columns != s.columns) {
        s.release();
        std::swap(s.starts, s.next_starts);
        std::swap(s.columns, s.next_columns);
        // Rows as columns of the transpose, pattern only: any order found is
        // one of A's as well.
        s.symbolic = klu_analyze(n, s.starts.data(), s.columns.data(), &s.common);
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
