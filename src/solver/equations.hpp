// User equations: a specification field holding "E" for a case turns its row
// of the network into an equation between the row's own unknown, a line flow
// and an equipment pressure, read from the record's Equation fields (EQN1 the
// equation number, EQN2 the line whose flow it reads, EQN4 and EQN5 the
// equipment and which of its pressures, EQN6..EQN8 the coefficients a, c, n).
//
// Units are the solver's: flows W in t/h, line unknowns X = W*|W|, pressures
// kPa gauge (absolute = gauge + PATM).
#pragma once

#include <string_view>

#include "model/records.hpp"
#include "solver/network.hpp"

namespace velm {

struct RunContext;

// What equipment_var finds: a column of the network, a flow and a pressure.
struct EquipmentVar {
    int col = 0;     // see equipment_var
    double W = 0.0;  // t/h
    double P = 0.0;  // kPa gauge
};

// Finds the record whose NAME[1], trimmed and in capitals, is name trimmed and
// in capitals, and stores its column, flow and pressure in out.
//   index -1: lines only; col is the line's X column, W its flow, P its mean
//     pressure PRES[3].
//   index >= 0: the equipment kinds in column order (feeds, products, valves,
//     check valves, pumps, compressors, exchangers, orifices, misc, expanders,
//     tees, junctions, vessels), the first match. col is the record's first
//     pressure column, so that col + index is its pressure number index
//     counted from 0 (feed: PRES, POUT; product: PIN, PRES; two-port items:
//     PIN, POUT; tee: nozzles 1..3; junction and vessel: PRES); P is that
//     pressure; W the flow of the line on its first port, 0 for none.
// Returns false, out unchanged, when no record has the name or the index is
// beyond the record's pressures.
bool equipment_var(const Project& p, const Columns& cols, std::string_view name, int index, EquipmentVar& out);

// The user equation eqn as one row of the network. On entry col_w, W are the
// X column of the row's line and its flow, and col_p, P the row's own unknown
// and its value (for a line row its X column and flow, for a feed or product
// pressure that pressure column and value). A non-empty EQN2 replaces col_w
// and W0 by that line's; a non-empty EQN4 replaces col_p and P0 by that
// equipment's pressure number EQN5. On return W and P hold the coefficients
// on col_w and col_p, and the result is the right-hand side; the caller adds
// the entry on col_w, and the one on col_p unless the columns are equal.
//   1, flows, W_row - c*W_b = a: col_p back to the row's own column;
//      W = -c/|W0| (1 for W0 = 0), P = 1/|P passed| (1 for 0); rhs a.
//   2, linear, v - c*p = a: col_w becomes the row's own column; W = 1,
//      P = -c; rhs a.
//   3, curve P_abs = c (1 - (W/a)^n): W = sign(a) c / (|a|^n |W0|^(2-n)),
//      1 when W0 or a is 0; P = 1; rhs c - PATM.
//   4, curve in absolute pressure P_abs^2 = c^2 (1 - (W/a)^n), linearised at
//      P0: W = sign(a) c^2 / (|a|^n (P0 + c + PATM) |W0|^(2-n)), 1 when W0, a
//      or P0 + c + PATM is 0; P = 1; rhs c - PATM.
//   5: W = -c, P as passed; rhs a.
// Any other number logs "Error! Equation number invalid." and gives rhs 0.
double equation(RunContext& ctx, const Project& p, const Columns& cols, const Equation& eqn, int& col_w, double& W,
                int& col_p, double& P);

}  // namespace velm
