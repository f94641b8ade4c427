// Loss coefficients of the elements that are neither pipes nor machines nor
// valves: tees, reducers and expanders, check valves, exchangers and
// miscellaneous equipment, and the nozzle losses of boundaries and vessels.
//
// Each routine named ..._W2 returns C of dP = C * W * |W|: dP in kPa, W the
// mass flow in t/h, so C in kPa/(t/h)^2. With a loss coefficient K referred to
// a bore D (m) and a density rho (kg/m3), C = 6.254e-05 * K / (rho * D^4).
// Flows are signed: positive from a line's inlet end to its outlet end; an
// element's inlet line is the one drawn into it. Every routine traps numeric
// faults at its own boundary: one line of its own words with the fault's number
// and description goes to the run log, and the routine returns 0.
#pragma once

#include <string_view>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Coefficient of a closed check valve: a wall for the solver.
inline constexpr double kCheckClosed = 1.0e9;
// Two bores closer than this (m) make no reducer or expander.
inline constexpr double kSameBore = 0.0001;

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

// C of a fixed K referred to the upstream side: for sign >= 0 the bore D1 (m)
// and density rho1 (kg/m3), otherwise D2 and rho2. 0 when either density is
// not positive.
double fitting_W2_K(RunContext& ctx, double sign, double D1, double D2, double rho1, double rho2, double K);

// Check valve: K = fT * L/D (Crane TP-410 check valve data: L/D times the fully
// turbulent friction factor F[2] of the inlet line), referred to the inlet
// line's bore and its density at the valve (TPROP[2]); 0 when either line's
// density at the valve is not positive. Reverse flow in the inlet line closes
// the valve: kCheckClosed.
double Check_W2(RunContext& ctx, const Project& p, const Check& cv);

// Miscellaneous equipment given by K and L/D (case strings, entry case_no):
// K + fT * L/D with fT = F[2] of the upstream line, referred to the upstream
// line's bore and its density at the equipment.
double Misc_K_W2(RunContext& ctx, const Project& p, const Misc& m, int case_no);

// Exchanger rated by one point: drop PRAT1 (kPa, entry case_no) at flow PRAT3
// (t/h) and density PRAT5 (kg/m3). The drop scales with W^1.8, the turbulent
// exponent of shell-and-tube exchangers, and inversely with the mean density
// at the nozzles rhoA = (TPROP[2] of the inlet line + TPROP[1] of the outlet
// line) / 2: C = dP0 * (1/W0)^1.8 * (1/|W|)^0.2 * rho0 / rhoA for |W| > 1e-06,
// dP0 * (1/W0)^2 * rho0 / rhoA at rest. 0 when either density is not positive.
double Exchanger_rating_W2(RunContext& ctx, const Project& p, const NozzleItem& hx, int case_no);

// Miscellaneous equipment rated by one point, as the exchanger but with the
// drop scaling with W^2: C = dP0 * (1/W0)^2 * rho0 / rhoA.
double Misc_rating_W2(RunContext& ctx, const Project& p, const NozzleItem& m, int case_no);

// Tee: names the legs from the directions of flow (TYPE, C[1], M[1], B[1] the
// ports of the combined, main and branch legs, C[2], M[2], B[2] their lines),
// takes the flow ratios qM = |WM/WC|, qB = |WB/WC| and area ratios
// aM = (ID_M/ID_C)^2, aB = (ID_B/ID_C)^2, and sets KCM.value, KCB.value (the K
// of the main and branch legs, referred to the combined flow; an entry in
// KCM.spec or KCB.spec for case_no is taken instead), C3 (the density of the
// tee, kg/m3: the combined line's end at the tee), M3 = qM, B3 = qB and DPP of
// the ports (kPa). TYPE: 1 and 2 combining, -3 and -4 dividing.
//   TYPE 1: K main = 1.55 qB - qB^2 + qB (1 - aB)^2 (at equal bores the Crane
//     TP-410 run of a converging 90 degree tee, after Idelchik);
//     K branch = (0.55 + 0.45 / (1 + 16 aB^4)) (1 + (qB/aB)^2 - (2/aM) qM^2),
//     the bracket being Idelchik's converging-branch momentum form with
//     qM = 1 - qB, the factor before it a fit on the branch area.
//   TYPE 2: K = 0.55 (1 + 1/a^2 + 3/a^2 (q^2 - q)) for each leg.
//   TYPE -3: K main = 0.65 qB (qB - 0.4), plus 0.5 qB e^(-0.16 SPAC) when the
//     next disturbance is 0 < SPAC <= 30 diameters away;
//     K branch = (0.75 + 0.25 / (1 + 36 qB^2)) (1 + 0.6 (qB/aB)^2).
//   TYPE -4: K = 1 + 0.3 (q/a)^2 for each leg.
void Tee_W2(RunContext& ctx, const Project& p, Tee& t, int case_no);

// Reducer or expander between the upstream and downstream lines (by the sign
// of the inlet line's flow), bores D1 and D2 (m). Sets K, DPP (the loss, kPa,
// at the present flow) and TYPE (+-1 reducer, +-2 expander, the sign that of
// the flow; 0 when the bores differ by kSameBore or less, with K, DPP and C 0).
//   Reducer, b = D2/D1, cone angle ANGLE (degrees): Crane TP-410,
//     K = 0.8 sin(ANGLE/2) (1 - b^2) up to 45 degrees, 0.5 sqrt(sin(ANGLE/2))
//     (1 - b^2) above, referred to the small bore; C adds the change of
//     velocity head at the homogeneous density of the downstream end, with the
//     gas expansion factor reducer_Y2.
//   Expander, b = D1/D2: K = (1 - b^2)^2 (Borda-Carnot, referred to the small
//     bore); C is the momentum balance of a sudden enlargement,
//     2 * 6.2544e-05 / D2^2 * (R2/D2^2 - R1/D1^2) with R the momentum
//     inverse densities of the two ends, which holds both the loss and the
//     recovery (negative: the pressure rises).
double Expander_Reducer_W2(RunContext& ctx, const Project& p, Expand& e);

// Choke test of a reducer or expander: the upstream line's end at the element
// runs at sonic speed (pipe_is_choked) with the calculated drop sign(W)*DP and
// the drop W^2 * Expander_Reducer_W2 the flow needs.
bool Expander_Reducer_choked(RunContext& ctx, const Project& p, Expand& e);

// Upstream gauge pressure (kPa) of a choked reducer or expander:
// sqrt(v / vs) * (P + PATM) - PATM, v and vs the velocity and sonic velocity of
// the upstream line at the element, P its pressure there (PIN for forward
// flow, POUT for reverse). Sets DPP = |DP|.
double Expander_Reducer_W2_choked(RunContext& ctx, const Project& p, Expand& e);

}  // namespace velm
