// Reducers, expanders, tees and the nozzle losses of boundaries and vessels.
#pragma once

#include <string_view>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Gas expansion factor of a contraction (b = d2/d1) between gauge pressures
// P1 and P2 (kPa), taken absolute, from the isentropic nozzle relation,
// corrected to the downstream pressure; limited to 0.001..1. A liquid
// (LF > 0.9999) gives 1.
double reducer_Y2(RunContext& ctx, const Header& gen, double LF, double P1, double P2, double k, double b);

// Coefficient C of dP = C*W*|W| (kPa, t/h) of one velocity head at a line
// end: the entry loss of a nozzle. end "IN" takes the inlet values of the
// line, anything else the outlet values; P is the gauge pressure of the vessel
// or tank side, kPa.
double Pipe_inlet_W2(RunContext& ctx, const Header& gen, std::string_view end, const Line& line, double P);

}  // namespace velm
