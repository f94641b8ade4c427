// Flow orifice, and the two-phase density rule shared by orifices, valves,
// reducers and nozzles.
#pragma once

#include <string_view>

namespace velm {

struct RunContext;

// Isentropic exponent as the expansion formulas take it: 1 becomes 1.000001
// and 0 becomes 1e-06, so that k / (k - 1) and 1 / k stay finite.
double orifice_k(double k);

// 1 / density to use for a restriction, kg/m3^-1. method: "Homogeneous",
// "SumOfArea" or "SumOfCv" (the sum of the phase areas), "Momentum".
// x liquid mass fraction, rhoL and rhoV phase densities (kg/m3), Y the gas
// expansion factor. A single phase takes its own density.
double equivalent_inv_density(RunContext& ctx, std::string_view method, double x, double rhoL, double rhoV, double Y);

}  // namespace velm
