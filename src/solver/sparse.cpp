#include "solver/sparse.hpp"

#include <algorithm>
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
// every solve starts from: identity column order, a zero work row, U empty
// with room for at least 4*n entries. The work row is cleared here because a
// solve that stopped early may leave values in it.
void prepare(SparseWork& w, int n) {
    const auto m = static_cast<std::size_t>(n);
    ensure_size(w.C, m + 1);
    ensure_size(w.IC, m + 1);
    ensure_size(w.Y, m + 1);
    ensure_size(w.L, m + 2);
    ensure_size(w.IU, m + 2);
    ensure_size(w.D, m + 1);
    ensure_size(w.JU, 4 * m + 1);
    ensure_size(w.U, 4 * m + 1);
    for (int k = 1; k <= n; ++k) {
        w.C[k] = k;
        w.IC[k] = k;
    }
    std::fill(w.Y.begin(), w.Y.begin() + n + 1, 0.0);
    w.IU[1] = 1;
}

// Inserts position c into the ascending linked list L, searching forward from
// the node `from`, which must come before c in the list (the head, n + 1,
// comes before every position; the terminator, also n + 1, after every one).
// Returns false when c is in the list already.
bool list_insert(std::vector<int>& L, int from, int c) {
    int p = from;
    while (L[p] < c) p = L[p];
    if (L[p] == c) return false;
    L[c] = L[p];
    L[p] = c;
    return true;
}

// The elimination and back substitution. Numeric faults are raised as Fault
// by the checked helpers and caught by SolveMatrix.
int solve(const std::vector<double>& A, const std::vector<int>& JA, const std::vector<int>& IA,
          std::vector<double>& B, int n, SparseWork& w) {
    if (n < 0 || IA.size() < static_cast<std::size_t>(n) + 2 || B.size() < static_cast<std::size_t>(n) + 1)
        return kSolveBadRow;
    prepare(w, n);
    auto& C = w.C;
    auto& IC = w.IC;
    auto& Y = w.Y;
    auto& L = w.L;
    auto& IU = w.IU;
    auto& JU = w.JU;
    auto& U = w.U;
    auto& D = w.D;
    const int head = n + 1;  // head and terminator of the list
    const std::size_t stored = std::min(A.size(), JA.size());

    for (int k = 1; k <= n; ++k) {
        // The row's entries must lie within the arrays; a row the assembly
        // never reached keeps a start of 0 (or ends before it starts).
        L[head] = head;
        const int row_begin = IA[k];
        const int row_end = IA[k + 1];
        if (row_begin < 1 || row_begin >= row_end || static_cast<std::size_t>(row_end) > stored)
            return kSolveBadRow;

        // Scatter the row into the dense work row by position, from its last
        // entry to its first, so that a row stored in ascending order finds
        // its place at the head of the list at once.
        for (int j = row_end - 1; j >= row_begin; --j) {
            const int col = JA[j];
            if (col < 1 || col > n) return kSolveBadRow;
            const int c = IC[col];
            if (!list_insert(L, head, c)) return kSolveDuplicateColumn;
            Y[c] = A[j];
        }

        // Reduce the row against the rows of U at the positions before k, in
        // ascending order. A position whose value is 0 may be new to the list;
        // the search for its place starts at the last insertion when it lies
        // beyond it, so that fill arriving in ascending order stays linear.
        double dk = B[k];
        int prev = head;  // the list node before position i
        int i = L[head];
        int last = 0;  // last position inserted by this row, 0 for none
        while (i < k) {
            const double lki = -Y[i];
            Y[i] = 0.0;
            dk += lki * D[i];
            for (int j = IU[i]; j < IU[i + 1]; ++j) {
                const int c = IC[JU[j]];
                if (Y[c] == 0.0) {
                    const int from = (last > i && c > last) ? last : i;
                    if (list_insert(L, from, c)) last = c;
                }
                Y[c] += lki * U[j];
            }
            prev = i;
            i = L[i];
        }
        if (i > n) return kSolveNoPivot;  // nothing left at or beyond k

        // Pivot: the largest magnitude among the remaining positions, taken
        // in ascending order; a later candidate wins only when strictly
        // greater, so a tie keeps the smaller position.
        const int first = i;
        int pivot = first;
        int before_pivot = prev;
        double largest = std::fabs(Y[first]);
        int count = 0;  // remaining entries other than the pivot
        for (int p = first, next = L[first]; next <= n; p = next, next = L[next]) {
            ++count;
            if (std::fabs(Y[next]) > largest) {
                largest = std::fabs(Y[next]);
                pivot = next;
                before_pivot = p;
            }
        }
        if (largest == 0.0) return kSolveNoPivot;
        const double inv = checked_div(1.0, checked(Y[pivot]));

        // Take the pivot out of the list and exchange positions k and pivot.
        // When position k is the first remaining entry its value moves to the
        // pivot's place, which stays listed, so stepping past k removes the
        // pivot in effect; likewise when the pivot itself is first.
        int rest = first;
        if (first == k || first == pivot) {
            rest = L[first];
        } else {
            L[before_pivot] = L[pivot];
        }
        Y[pivot] = Y[k];
        std::swap(C[k], C[pivot]);
        IC[C[k]] = k;
        IC[C[pivot]] = pivot;
        Y[k] = 0.0;
        D[k] = checked(dk * inv);

        // Row k of U: the remaining entries divided by the pivot. U grows only
        // when the fill passes its present size (at least 4*n entries).
        IU[k + 1] = IU[k] + count;
        if (static_cast<std::size_t>(IU[k + 1]) > JU.size()) {
            JU.resize(static_cast<std::size_t>(IU[k + 1]));
            U.resize(static_cast<std::size_t>(IU[k + 1]));
        }
        int e = IU[k];
        for (int p = rest; p <= n; p = L[p]) {
            JU[e] = C[p];
            U[e] = checked(inv * Y[p]);
            Y[p] = 0.0;
            ++e;
        }
    }

    // Back substitution by position; the value at position k belongs to column C[k].
    for (int k = n; k >= 1; --k) {
        double s = D[k];
        for (int j = IU[k]; j < IU[k + 1]; ++j) s -= U[j] * D[IC[JU[j]]];
        D[k] = checked(s);
        Y[C[k]] = s;
    }
    std::copy(Y.begin() + 1, Y.begin() + n + 1, B.begin() + 1);
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
