// Control valve: the liquid and gas sizing equations of ISA-75.01.01 /
// IEC 60534-2-1 written as a coefficient of W squared for the network
// solver, the flow coefficient found from a solved drop, the inherent trim
// characteristics, and the valve's refresh and final results within a run.
//
// Units throughout: mass flow W in t/h, signed (positive from the valve's
// inlet line to its outlet line); pressure in kPa gauge (absolute = gen.PATM +
// gauge); pressure drop in kPa; pipe and valve diameters in m (size texts in
// inches); density kg/m3; viscosity cP; opening and relative flow in %; Cv in
// US gal/min of water at 1 psi. xT is the valve's pressure drop ratio factor,
// k the vapour's isentropic exponent, LF the liquid mass fraction.
//
// The flow equation, for liquid and gas alike (ISA's N6 = 2.73 kg/h):
//   W = 0.00273 * Cv * sqrt(Fp * dP / Rinv),
// Rinv the 1 / density of equivalent_inv_density (for a gas 1 / (Y^2 rho1)).
// Fp here is the square of the standard's piping geometry factor Fp: the
// program never takes its root. Two simplifications against the standard, by
// design: a liquid never chokes (no FL, FF), and the gas's choked limit and
// expansion factor use xT of the bare valve, not xTP with the reducers.
//
// Routines that can meet a numeric fault trap it themselves: they log one line
// of their own words with the fault's number and description and return 0
// (false for a flag).
#pragma once

#include <string_view>

#include "correlations/orifice.hpp"
#include "model/records.hpp"

namespace velm {

struct RunContext;

// The working values of a valve: its fluid (RestrictionFluid) and the pipe
// sizes D1 upstream and D2 downstream, m. The sizes are the nominal sizes
// DIA[2] of both lines read as inches when both lines have one, else the
// inside diameters ID[2].
struct ValveFluid : RestrictionFluid {
    double D1 = 0.0, D2 = 0.0;
};
ValveFluid valve_properties(RunContext& ctx, const Project& p, const Valve& v);

// Drop over absolute upstream pressure, |dP / (PATM + P)|; an absolute
// pressure of 0 is taken as 1e-06. dP and P (gauge) in kPa.
double valve_dP_P(RunContext& ctx, const Header& gen, double dP, double P);

// Choked gas flow: x = valve_dP_P >= |k * xT / 1.4| (Fgamma * xT, equality
// included). Never for a liquid (LF > 0.9999; LF = 0.9999 counts as two-phase)
// nor against the flow (dP and W of opposite signs).
bool valve_IsCritical(RunContext& ctx, const Header& gen, double dP, double P, double W, double LF, double k,
                      double xT);

// Expansion factor Y = 1 - x / (3 Fgamma xT), Fgamma = k / 1.4: 1 for a
// liquid, 2/3 when choked (so never below 2/3), 1 when k or xT is 0.
double valve_Y1(RunContext& ctx, const Header& gen, double dP, double P, double W, double LF, double k, double xT);

// The square of the piping geometry factor of a valve of size `size` between
// reducers to pipes D1 upstream and D2 downstream (m), at coefficient Cv:
//   Fp = 1 / (1 + Cv^2 (K1 + K2 + KB1 - KB2) / (2.14e9 d^4)),
// K1 = 0.5 (1 - (d/D1)^2)^2, K2 = (1 - (d/D2)^2)^2, KBi = 1 - (d/Di)^4, d in
// m (ISA's N2 = 890 for d in inches). size: "Inlet line" for d = D1, the
// fractions "1/8", "1/4", "3/8", "1/2", "3/4", or a number of inches (a text
// such as "6" reads as its number). A valve the size of its pipes
// gives 1; a size of 0 is a fault.
double valve_Fp(RunContext& ctx, double Cv, double D1, double D2, std::string_view size);

// Coefficient C of dP = C * W * |W| (kPa, t/h) at the opening OPEN[2] (%) of
// the coefficient CV[2] at full opening, Cv in use = OPEN[2] * CV[2] / 100:
//   C = (1 / 0.00273)^2 * (100 / (OPEN[2] CV[2]))^2 / Fp * Rinv,
// with Y from the last drop DP[2] and Rinv by gen.MCVDEN. A shut valve (CV[2],
// OPEN[2] or Fp of 0) gives 1e8.
double Valve_Cv_W2(RunContext& ctx, const Header& gen, const Valve& v, const ValveFluid& f);

// Coefficient for the row of a choked valve, P_up + PATM = C * W * |W|: the
// flow is that at the critical drop x = k xT / 1.4,
// C = (1 / W) * sqrt((PATM + Pin) * Valve_Cv_W2 / (k xT / 1.4)).
// 1e9 for no flow or k xT <= 0.
double Valve_W2_choked(RunContext& ctx, const Header& gen, const Valve& v, const ValveFluid& f);

// The coefficient at the present opening from the solved drop DP[2] and flow,
// the flow equation above solved for Cv (exactly, since Fp is rational in
// Cv^2); a choked gas takes the critical drop. Stores YIN and FP2. No flow
// (|W| <= 1e-09) gives 0 with Y = Fp = 1. Logs
// "Warning! Valve <name> Cv Calculated differ from Input." when the case has
// a CV and an OPEN entry, the flow exceeds 0.001 t/h and the coefficient at
// full opening differs from the CV entry by more than 0.1 %.
double valve_Cv(RunContext& ctx, const Header& gen, Valve& v, const ValveFluid& f, int case_no);

// Cv of a resistance coefficient K in a pipe of size d (in): Cv = 29.9 d^2 /
// sqrt(K) (Crane TP-410). size as for valve_Fp, with "Inlet line" and an
// empty text standing for D (m). K <= 0 gives 1e6.
double Valve_K(RunContext& ctx, double K, std::string_view size, double D);

// Inherent characteristic: flow in % of full flow at the opening in the text
// (%). "Linear": o. "Equal percentage": 100 e^(3.675 (o - 100) / 100), a
// rangeability of 39.5, or o where that is smaller (so 0 % opening passes
// nothing). "Quick opening": 3 o up to 20 %, then 100.322 - 322000 / o^3.
// Any other name: o.
double valve_char(std::string_view characteristic, std::string_view opening);

// Before each solve of case case_no, iteration iter (from 1): the working
// values; on iteration 1 OPEN[2] from the case's OPEN entry through the trim
// characteristic TYPE; CV[2] from the case's CV entry, or from its K entry by
// Valve_K at the upstream pipe size. Returns the working values for the rows.
ValveFluid refresh_valve(RunContext& ctx, Project& p, Valve& v, int iter, int case_no);

// After the iteration of a case: with an OPEN entry CV[2] = valve_Cv * 100 /
// OPEN[2] (0 at 0 % open); with a CV entry only, CV[2] = the entry and
// OPEN[2] = 100 valve_Cv / CV[2]; with neither, OPEN[2] = 100 and CV[2] =
// valve_Cv. Then DPP[2], when DPP[1] names a line (1..count(p.lines)): the
// change of total pressure from the valve inlet to that line's inlet, kPa,
//   P_line - PIN + rho g (z_line - z_valve) + 6.25439e-05 / rho * (W_line^2 / ID_line^4 - W_in^2 / ID_in^4),
// rho the mean of the two lines' TPROP[3] (velocity heads only when rho and
// both IDs exceed 1e-06), negative for a loss; with
// "Warning! Valve <name> permanent dP calc requires constant density." when
// the two densities differ by more than 3 % of the named line's. Else 0.
void final_valve(RunContext& ctx, Project& p, Valve& v, int case_no);

}  // namespace velm
