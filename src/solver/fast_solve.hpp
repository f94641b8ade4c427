// The fast linear solve of large networks: the same system and the same
// status codes as SolveMatrix, factored by KLU (Davis and Palamadai Natarajan,
// "Algorithm 907: KLU, a direct sparse solver for circuit simulation
// problems", ACM TOMS 37(3), 2010): a block triangular form, an approximate
// minimum degree order of each block, and partial pivoting. The order is found
// once for a structure of rows and kept while the structure stands, so each
// iteration of a case only refactors.
#pragma once

#include <memory>
#include <vector>

#include "model/context.hpp"

namespace velm {

// Systems of this order and above are solved by KLU when the run context
// leaves the choice to the size (LinearSolver::Auto).
inline constexpr int kFastSolveOrder = 400;

// The largest componentwise backward error a fast solve accepts before it
// factors again with safer pivots: a million times the rounding unit.
inline constexpr double kFastSolveBackwardLimit = 1e-10;

// The factorisation kept between solves: the symbolic analysis of the last
// structure and the numeric factors of the last values.
class FastSolveWork {
public:
    FastSolveWork();
    ~FastSolveWork();
    FastSolveWork(const FastSolveWork&) = delete;
    FastSolveWork& operator=(const FastSolveWork&) = delete;
    FastSolveWork(FastSolveWork&&) noexcept;
    FastSolveWork& operator=(FastSolveWork&&) noexcept;

    struct State;
    std::unique_ptr<State> state;
    // Rows 0 .. paired_rows-1 (0-based) each hold the unknown of column
    // paired_col + row with a coefficient that is never zero (the line rows
    // of a network and the flow term of each line). 0 when nothing is known.
    int paired_rows = 0, paired_col = 0;
    int analyses = 0;       // symbolic analyses made, for tests and benchmarks
    int safe_refactors = 0; // factorisations redone with safer pivots, for tests
    bool paired = false;    // whether the last analysis ordered by the pairing
    double factor_entries = 0;  // entries of L and U after the last factorisation
};

// Solves A*x = b as SolveMatrix does (1-based compressed rows, element 0
// unused; B overwritten by the solution on kSolveOk, left as it was
// otherwise), with the same status for the same faults: kSolveBadRow for an
// empty row or storage that does not fit, kSolveDuplicateColumn, kSolveNoPivot
// for a singular system (or a non-finite value, logged as "Error! In solving
// matrix = ..."). The answers agree with SolveMatrix to rounding.
int FastSolveMatrix(RunContext& ctx, const std::vector<double>& A, const std::vector<int>& JA,
                    const std::vector<int>& IA, std::vector<double>& B, int n, FastSolveWork& work);

}  // namespace velm
