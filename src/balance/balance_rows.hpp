// The two linear systems of the balance, in the sparse row form of
// SolveMatrix, and the walk over the lines at a node that both share.
#pragma once

#include <vector>

#include "balance/balance.hpp"

namespace velm {

// A sparse system in 1-based compressed rows: A values, JA columns, IA row
// starts, rhs the right side; rows are added in order.
struct BalanceRows {
    std::vector<double> A{0.0};
    std::vector<int> JA{0};
    std::vector<int> IA{0, 1};
    std::vector<double> rhs{0.0};

    int rows() const { return static_cast<int>(IA.size()) - 2; }
    void add(int column, double value) {
        A.push_back(value);
        JA.push_back(column);
    }
    void end_row(double right) {
        IA.push_back(static_cast<int>(A.size()));
        rhs.push_back(right);
    }
};

// A line at a junction, tee or vessel: its number, whether it hangs on an
// inlet nozzle, whether the fluid enters the node by it (an inlet with flow
// 0 or above, an outlet with negative flow), and its end at the node (2L on
// an inlet nozzle, 2L - 1 on an outlet) in the numbering of the heat system.
struct NodeLine {
    int line = 0;
    bool on_inlet = false;
    bool entering = false;
    int end = 0;
    double flow = 0.0;
};

// The lines of a junction or tee, inlet nozzles first.
std::vector<NodeLine> node_lines(const Project& p, const Junc& j);
std::vector<NodeLine> node_lines(const Project& p, const Tee& t);

// The mole system: c = 0 builds the matrix, and for each row the line whose
// given composition is its right side (0 for a balance row); c above 0 only
// fills the right side for component c.
void Mole_MatrixSetup(RunContext& ctx, const Project& p, const FlashSetup& setup, int c, BalanceRows& rows,
                      std::vector<int>& given);

// The heat system, and the flash types of the line ends it implies.
void Heat_MatrixSetup(RunContext& ctx, Project& p, const BalanceState& state, BalanceRows& rows);

}  // namespace velm
