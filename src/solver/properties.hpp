// The property update that runs before every solve.
#pragma once

#include "model/records.hpp"

namespace velm {

struct RunContext;

// First pass: averages, densities, viscosity, diameter, velocities and
// fittings of every line. Second pass (case_no above 0): the equipment's
// static heads, entry losses and choking.
void Hydr_UpdateProperties(RunContext& ctx, Project& p, int iter, int case_no);

// Static head of a liquid column, kPa: sign -1 at a feed or vessel outlet
// nozzle, +1 at a product or vessel inlet nozzle, so that the pressure at a
// low nozzle comes out above the gas pressure. level and heights in m.
double level_head_boundary(const Boundary& b, double level, double sign);
// Three layers (heavy, medium, light) above a vessel nozzle at height E.
double level_head_vessel(const Vessel& v, double E, double sign);

}  // namespace velm
