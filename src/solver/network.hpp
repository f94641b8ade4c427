// The network as one sparse linear system per iteration.
//
// Unknowns: every equipment pressure and, for each line, X = W*|W| (W the mass
// flow in t/h). Every resistance is then linear in its unknown, dP = K*X, with
// K re-evaluated at the last flow: each iteration is a successive substitution
// on a fresh linear system, with no Jacobian. Mass balances at multi-way nodes
// stay linear by dividing X by the last |W|.
#pragma once

#include <vector>

#include "model/records.hpp"
#include "solver/fast_solve.hpp"
#include "solver/sparse.hpp"

namespace velm {

struct RunContext;

// Column bases of each block of unknowns, in their fixed order. Record i of a
// two-pressure block has its columns at base + 2i - 1 and base + 2i; a tee's
// nozzle j at tee + 3(i-1) + j; a junction, vessel or line i at base + i.
struct Columns {
    int feed = 0, prod = 0, valve = 0, check = 0, pump = 0, comp = 0, hx = 0, fo = 0, misc = 0, expand = 0;
    int tee = 0, junc = 0, vessel = 0, line = 0;
    int num_vars = 0;

    explicit Columns(const Project& p);
    Columns() = default;
    static int first(int base, int i) { return base + 2 * i - 1; }
    static int second(int base, int i) { return base + 2 * i; }
};

// One place where a line ends on a piece of equipment.
struct LineEnd {
    int col;           // pressure column of the equipment at that end
    int coef;          // +1 where the line leaves the equipment, -1 where it enters
    int kind;          // what the end is, for elevations and nozzle terms
    int record;        // record number of the equipment
    int port;          // nozzle or side, where the kind has several
    double elevation = 0.0;  // m, of the equipment at that end: fixed for a run
};

// Work arrays of the network, kept between iterations so that a solve does
// not allocate once they have grown to the network's size.
struct Network {
    int NumVars = 0;
    int NumSpecs = 0;
    Columns cols;
    std::vector<double> A, B;
    std::vector<int> JA, IA;
    int entries = 0;
    // Line ends in column order, in compressed form: ends of line i are
    // ends[end_start[i] .. end_start[i+1]-1].
    std::vector<LineEnd> ends;
    std::vector<int> end_start;
    // The lines of each junction's and vessel's balance (the junctions, then
    // the vessels), in the order of the row's entries: those of node k are
    // node_lines[node_start[k] .. node_start[k+1]-1], each a line number,
    // negative where the line leaves the node.
    std::vector<int> node_start, node_lines;
    std::vector<double> flow;  // the flow of each line at this build, t/h
    // The junctions with a pressure and the lines with a flow (other than a
    // vapour split) specified in case spec_case: found when a case is
    // counted, so that a build does not read every record's case strings.
    std::vector<int> pressure_juncs, flow_lines;
    int spec_case = -1;
    bool topology_ready = false;  // the ends are found once per run: the drawing does not change during it
    SparseWork work;
    FastSolveWork fast;
    std::vector<double> last_rhs;  // the right-hand side of the last build (before solving)
    // Newton steps, when the run asks for them, from the second solve of a
    // case: every row is then linear in the flows W about the present ones
    // W0, with X standing for W0|W0| + 2|W0|(W - W0). The balances take
    // X/|W0| with minus the present imbalance as right side, a line's row
    // takes the change of its coefficient with the flow, and the new flow is
    // (W0 + X/|W0|)/2, which the balances hold exactly.
    bool newton_on = false;
};

// Builds the rows of the network for a case (mode 1), or only counts them
// (mode 0). Sets NumVars and NumSpecs.
void Matrix_Setup(RunContext& ctx, Project& p, Network& net, int mode, int case_no);
// The counting pass alone.
void Count_Specs(RunContext& ctx, Project& p, Network& net, int case_no);
// One step of the network solution: build, solve, write back with damping and
// push pressures into the lines. Returns 0, or the solver's status (no record
// changed). err accumulates the change of the unknowns.
int Hydr_Solve(RunContext& ctx, Project& p, Network& net, double& err, int case_no, int iter);

// Structural rows, for the "Specified/Required" count.
int structural_rows(const Project& p);

}  // namespace velm
