// Compressors: the rise from a specified value, a head curve, a pressure ratio
// or an inlet volume flow; polytropic head; efficiencies by machine type;
// shaft power. Curves are read and scaled as the pump's (correlations/pump.hpp).
//
// Units: mass flow W t/h (signed); volume flow m3/h at the suction; pressure
// kPa gauge (absolute = PATM + gauge); rise kPa; head m (specific work / g);
// density kg/m3; power kW; efficiencies as fractions 0..1.
//
// Polytropic head of a gas with exponent n from suction P1 to discharge P2
// (absolute), suction density rho1 = P1 MW / (Z R T1):
//   H = P1 / (rho1 g) * n / (n - 1) * ((P2 / P1)^((n - 1) / n) - 1),
// and for n = 1 (isothermal) H = P1 / (rho1 g) * ln(P2 / P1). The exponent is
// the vapour's isentropic exponent k as the line holds it, so the head is the
// ideal (isentropic) head and the losses enter through the efficiency.
#pragma once

#include <span>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// The compressor as the flow meets it (forward: from the inlet line; reverse,
// when the inlet line's flow is below 0: from the outlet line, and the two
// pressures change places).
struct CompWorking {
    double W = 0.0;     // flow of the upstream line, t/h, signed
    double Pin = 0.0;   // suction pressure, kPag
    double Pout = 0.0;  // discharge pressure, kPag
    double Den = 0.0;   // suction density, kg/m3
    double N = 0.0;     // exponent: the suction vapour's k
};

// The compressor's suction state; one without its lines gives zeros.
CompWorking compressor_properties(RunContext& ctx, const Project& p, const Comp& m);

// Curve set-up of a case: flow and head columns from the texts, scaled to the
// speed and impeller in use by the affinity laws; efficiency as it stands.
void comp_curve_scale(RunContext& ctx, Comp& m, int case_no);

// A typical curve through the present point (QACT[2], HQACT[1], EFFC[2]) from
// the typical curve in per cent q, h, eff (the project's CCURQ, CCURH, CCUREFF).
void comp_curve_generate(Comp& m, std::span<const double> q, std::span<const double> h, std::span<const double> eff);

// Head, m, from suction P1 to discharge P2 (both kPag, taken absolute with
// gen.PATM; a zero absolute pressure becomes 1e-07) at suction density
// (kg/m3) and exponent n, times sign (0 counts as +1). 0 when n or the density
// is 0.
double comp_head(RunContext& ctx, const Header& gen, double sign, double P2, double P1, double density, double n);

// Rise, kPa, that a head (m) gives from suction P1 (kPag) at suction density
// (kg/m3) and exponent n: the inverse of comp_head. The head counts as
// sign * head and the rise comes back times sign (0 counts as +1).
double comp_dP_from_head(RunContext& ctx, const Header& gen, double sign, double head, double P1, double density,
                         double n);

// Rise dP13 (kPa) for the case and its coefficient C (out), as Pump_dP13: on
// the head curve when DP reads "C" (min slope MPCURV[2]), else C = 0 and the
// specified rise.
double Comp_dP13(RunContext& ctx, const Project& p, const Comp& m, double& C, int case_no);

// Row of an inlet volume flow specification v (m3/h, QACT of the case):
// X(inlet line) - S * P_up = result, with S (out) = |W| v rho / 1000 / (PATM + Pin)
// and result PATM * S. At P_up = Pin the row reads W = v rho / 1000: the
// mass flow of that volume at the suction, its density following the
// absolute suction pressure while the solver moves it.
double Comp_Vol_Flow(RunContext& ctx, const Project& p, const Comp& m, double& S, int case_no);

// Compressor efficiency of the case, at Q = |QACT[2]| (m3/h, at least 0.001):
// empty, by TYPE ("Centrifugal" 0.768 - 3.55 / (Q/1.699)^0.5, "Axial"
// 0.85 - 1.6 / (Q/1.699)^0.35, with Q/1.699 in ft3/min; "Reciprocating" and
// "Screw" 0.95; others 0.7); "C" from the efficiency column at QACT[2]; else
// the number. Limited to 0.01..1.
double comp_efficiency(RunContext& ctx, const Comp& m, int case_no);

// Shaft efficiency of the case: a number when EFFS gives one; empty, by TYPE:
// "Centrifugal" and "Axial" 0.97, "Screw" 0.7, "Reciprocating" from the
// pressure ratio r (>= 1) of POUT and PIN, 0.57 + 0.13 r up to r = 1.8 and
// 0.926 - 0.5 / r^2.4 above; others 1. Limited to 0.01..1.
double comp_efficiency_shaft(RunContext& ctx, const Header& gen, const Comp& m, int case_no);

// Shaft power, kW, of W (t/h) raised through head (m): 9.81 head W / 3600
// over the efficiencies, or times them when head opposes the flow (the
// machine gives power back). 0 when an efficiency is 0.
double comp_power(double W, double head, double eff, double shaft);

// The compressor's part of the property update before each solve: suction
// state, the curve set-up up to iteration 1, HQACT[1], QACT[2], PRAT[2]
// (absolute pressure ratio, 0 when the absolute suction pressure is not
// positive), EFFC[2], EFFS[2] and POW.
void refresh_comp(RunContext& ctx, Project& p, Comp& m, int iter, int case_no);

// The compressor's warnings (RunContext::warn), in this order: a rise against the
// direction of flow, a line with liquid.
void comp_warnings(RunContext& ctx, const Project& p, Comp& m);

}  // namespace velm
