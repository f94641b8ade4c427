// Flow patterns of a two-phase line on five published maps. The pattern is
// reported and drawn; it never enters the pressure drop.
#pragma once

#include <span>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// Even-odd test of the point (x, y) against the polygon of corners (X[i],
// Y[i]), closed from the last corner back to the first. An edge counts when
// one end has Y < y and the other Y >= y, and it crosses the height y
// strictly left of x. X and Y have the same length.
bool point_in_polygon(double x, double y, std::span<const double> X, std::span<const double> Y);

// Classifies a line with 0.0001 < LF[3] < 0.9999 from its liquid and vapour
// flows LVFLOW[1], LVFLOW[2] (t/h), total flow TFLOW, ID, IDH and EPS (m),
// and the average phase properties (LPROP[1], VPROP[1] kg/m3, LPROP[3],
// VPROP[3] cP, LIQSUR[3] dyne/cm):
//   REG[1]  horizontal, Mandhane, Gregory and Aziz (1974), on the
//           superficial velocities in ft/s: "Bubble" (elongated bubble),
//           "Stratified", "Slug", "Wave", "Annular/Mist", "Dispersed";
//   REGA[1] horizontal, Taitel and Dukler (1976), on their X, F and T:
//           "Stratified", "Annular-Dispersed", "Dispersed-Bubble",
//           "Intermittent";
//   REG[2]  vertical upward, Fair (1960), mass flux against the Martinelli
//           parameter: "Bubble", "Slug", "Annular", "Mist";
//   REGA[2] vertical upward, Taitel, Bornea and Dukler (1980): "Annular",
//           "Dispersed-Bubble", "Bubble", "Slug", or "Slug if L/D > n" when
//           slugs form only past an entrance length of n diameters;
//   REG[3]  vertical downward, Golan and Stenning (1969), superficial
//           velocities in m/s: "Plug/Bubble", "Oscillating", "Annular/Mist".
// Every result starts as "-" and stays so for a single-phase line and for a
// map whose inputs are missing (a zero diameter, density or flow).
void pipe_flow_regime(RunContext& ctx, Line& line);

}  // namespace velm
