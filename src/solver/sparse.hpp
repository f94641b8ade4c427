// The sparse linear solver of the network iteration and the heat and mole balance.
//
// SolveMatrix solves A*x = b by row-wise Gaussian elimination with column
// pivoting, in the manner of Sherman's NSPIV (ACM TOMS Algorithm 533, 1978):
// rows are eliminated in their natural order, each row is reduced against the
// rows before it through a dense work row and the set of its non-zero
// positions, taken in ascending order, and the largest entry of the reduced
// row is taken as the pivot, so that only the columns are permuted. The
// strictly upper factor U is kept row by row with a unit diagonal implied;
// the forward-reduced right-hand side is kept beside it and back substitution
// gives the solution.
#pragma once

#include <cstdint>
#include <vector>

#include "model/context.hpp"

namespace velm {

// Status of SolveMatrix. The callers treat every non-zero status alike.
inline constexpr int kSolveOk = 0;
inline constexpr int kSolveBadRow = 2;           // a row without entries, or inconsistent storage
inline constexpr int kSolveDuplicateColumn = 3;  // a column twice within one row
inline constexpr int kSolveNoPivot = 4;          // a row without a non-zero pivot (singular)

// Work arrays of SolveMatrix, all 1-based with element 0 unused. They are
// sized on the first call and kept, so that repeated solves of systems of the
// same size allocate nothing; U and JU grow only when the fill demands it.
// After a solve that returned kSolveOk, C, IC, IU, JU, U and D describe the
// factorisation.
//
// Rows are reduced a block at a time, each in a slot of its own, so that the
// rows of U before the block are read once for the block rather than once for
// each row. The positions of a row are kept as a bit set of two levels: bit p
// of S for position p, and bit w of SW for a non-zero word w of S. The
// smallest position is then found in two steps and an insertion costs O(1),
// where a sorted list costs a search through the row, which rows filled to
// hundreds of entries turn into the bulk of the work.
struct SparseWork {
    std::vector<int> C;     // C[k]: the column at position k (positions 1..n)
    std::vector<int> IC;    // IC[j]: the position of column j, the inverse of C
    std::vector<double> Y;  // dense work rows by column, the slots side by side; 0 outside the rows
    std::vector<std::uint64_t> M;   // M[j]: the block and the slots whose rows hold column j
    std::vector<std::uint64_t> S;   // positions of the row in each slot, 64 to a word
    std::vector<std::uint64_t> SW;  // bit w: word w of S is not 0
    std::vector<int> R;     // the positions at and beyond k left in row k, ascending
    std::vector<int> IU;    // IU[k]: first entry of row k of U; IU[n + 1] - 1 entries in all
    std::vector<int> JU;    // columns of the entries of U
    std::vector<double> U;  // values of the strictly upper factor, the pivot divided out
    std::vector<double> D;  // reduced right-hand side by position, then the solution by position
};

// Number of entries of U (original entries plus fill) after a successful solve of order n.
inline int upper_fill(const SparseWork& work, int n) { return n > 0 ? work.IU[n + 1] - 1 : 0; }

// Solves A*x = b for the square sparse system of order n held in 1-based
// compressed-row storage, element 0 of every array unused: A[1..nnz] values,
// JA[1..nnz] their columns (1..n), IA[1..n+1] row starts with IA[n + 1] one
// past the last entry, B[1..n] the right-hand side. On kSolveOk, B holds the
// solution; on any other status B is left as it was.
//
// Returns kSolveOk, kSolveBadRow for a row without entries or storage that
// does not fit the arrays (a column outside 1..n, row starts out of range or
// out of order), kSolveDuplicateColumn, or kSolveNoPivot when a reduced row
// has no non-zero entry. Exact zero is the only test of singularity: a tiny
// pivot is accepted. A numeric fault (overflow, a non-finite value) is logged
// as "Error! In solving matrix = <number> : <description>" and returns
// kSolveNoPivot. n = 0 returns kSolveOk at once.
int SolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                const std::vector<int>& IA, std::vector<double>& B, int n, SparseWork& work);

// The same with work arrays of its own, allocated for this call.
int SolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                const std::vector<int>& IA, std::vector<double>& B, int n);

}  // namespace velm
