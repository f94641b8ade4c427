// Flow orifice (thin or thick plate, quadrant-edge plate, long radius nozzle,
// venturi), the two-phase density rule shared by orifices, valves, reducers
// and nozzles, and the fluid a two-port restriction takes from its lines.
//
// Units throughout: mass flow W in t/h, signed (positive from the record's
// inlet line to its outlet line); pressure in kPa gauge (absolute = gen.PATM +
// gauge); pressure drop in kPa; diameters, bore and plate thickness in m;
// density kg/m3; viscosity cP. LF is the liquid mass fraction (1 all liquid).
// b is the diameter ratio beta = bore / pipe ID (for n holes, the ratio of
// equal total area, sqrt(n) * bore / ID). k is the vapour's isentropic
// exponent.
//
// A restriction meets the network solver as dP = C * W * |W| with dP the
// permanent (unrecovered) loss; the meter equations are written for the
// flange-tap differential, and orifice_dPratio turns one into the other.
//
// Routines that can meet a numeric fault trap it themselves: they log one line
// of their own words with the fault's number and description and return 0
// (false for a flag).
#pragma once

#include <string_view>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// The fluid passing a two-port restriction (valve, orifice), read from its
// lines. The upstream line is the inlet line when that line's W >= 0, else
// the outlet line. Phase data are those of the downstream line's end next to
// the restriction, after the drop; only the pressure and the temperature
// (through the vapour density) come from the upstream side.
struct RestrictionFluid {
    int up = 0, down = 0;  // upstream and downstream line numbers; 0 when a line is missing
    double W = 0.0;        // t/h, TFLOW of the upstream line, signed
    double Pin = 0.0;      // kPa gauge, the record's PIN in forward flow, POUT in reverse
    double LF = 0.0;       // liquid mass fraction
    double DenL = 0.0;     // kg/m3, liquid density
    double DenV = 0.0;     // kg/m3, vapour density at Pin and the upstream temperature
    double ViscL = 0.0;    // cP
    double ViscV = 0.0;    // cP
    double K = 0.0;        // isentropic exponent of the vapour
};

// The fluid of a valve or an orifice. A record without both lines (numbers
// outside 1..count(p.lines)) gets all zeros: no flow, no fluid.
RestrictionFluid restriction_fluid(RunContext& ctx, const Project& p, const TwoPort& r);

// Isentropic exponent as the expansion formulas take it: 1 becomes 1.000001
// and 0 becomes 1e-06, so that k / (k - 1) and 1 / k stay finite.
double orifice_k(double k);

// 1 / density to use for a restriction, kg/m3^-1. method: "Homogeneous",
// "SumOfArea" or "SumOfCv" (the sum of the phase areas), "Momentum".
// x liquid mass fraction, rhoL and rhoV phase densities (kg/m3), Y the gas
// expansion factor. A single phase takes its own density.
double equivalent_inv_density(RunContext& ctx, std::string_view method, double x, double rhoL, double rhoV, double Y);

// ---- Flow orifice ----------------------------------------------------------
// FO.TYPE is one of "ORIFICE", "QUADRANT", "NOZZLE", "VENTURI", compared
// trimmed and in capitals.

// The working values of an orifice: its fluid and D, the inside diameter
// ID[2] of the upstream line, m.
struct OrificeFluid : RestrictionFluid {
    double D = 0.0;
};
OrificeFluid orifice_properties(RunContext& ctx, const Project& p, const FO& fo);

// Beta of holes of one bore (m) in a pipe of ID D (m): sqrt(|holes|) * bore / D,
// limited to 0..1. D = 0 gives 1.
double orifice_beta_from_bore(int holes, double bore, double D);
// Bore of each of the holes, m, for beta b in a pipe of ID D (m):
// b * D / sqrt(|holes|), limited to 0..D. holes <= 0 gives 0.
double orifice_bore(RunContext& ctx, int holes, double b, double D);
// Plate thickness over bore (both m). A bore of 0 logs
// "Error ! Unknown orifice bore. Assume t/d=0." and gives 0.
double orifice_t_d(RunContext& ctx, double thickness, double bore);

// Permanent (unrecovered) loss over the flange-tap differential, by type:
//   ORIFICE, QUADRANT: 1 - 0.24 b - 0.52 b^2 - 0.16 b^3, a polynomial fit
//     within 2.5 % of the ISO 5167-2 relation for a plate (at the
//     Reader-Harris/Gallagher C) for 0.2 <= b <= 0.75;
//   NOZZLE: 1 + 0.014 b - 2.06 b^2 + 1.18 b^3;
//   VENTURI: 0.436 - 0.86 b + 0.59 b^2 (a 15 degree exit cone).
// Never below 1e-06; an unknown type gives 1e-06.
double orifice_dPratio(RunContext& ctx, std::string_view type, double b);

// Discharge coefficient C of the meter equation
//   W = C / sqrt(1 - b^4) * Y * (pi/4) (b D)^2 * sqrt(2 dP rho),
// by type, for 0 <= b < 1 (b^4 >= 1 gives 1):
//   ORIFICE: (0.598 + 0.01 b + 0.518 b^4.425) * sqrt(1 - b^4) * T, a fit of
//     the flow coefficient of a sharp-edged plate at high Reynolds number,
//     above Reader-Harris/Gallagher (ISO 5167-2, flange taps, Re_D =
//     1e5..1e7) by at most 0.9 % for 0.2 <= b <= 0.5 and 3 % up to b = 0.7,
//     with no Reynolds number term. T = 1 for t_d = 0, else
//     1 + 0.33 / (1 + e^(-(t_d - 0.55) / 0.1)): a thick plate's coefficient
//     rises smoothly by up to a third around t/d = 0.55 as the stream
//     reattaches in the bore;
//   QUADRANT: quarter-circle plate, Miller (Flow Measurement Engineering
//     Handbook, 3rd ed., 1996), 0.7746 - 0.1334 b^2.1 + 1.4098 b^8
//     + 0.0675 b^4 / (1 - b^4) + 0.3865 b^3, corner and flange taps alike,
//     no Reynolds number term;
//   NOZZLE: long radius nozzle, ASME MFC-3M, 0.9975 - 6.53 sqrt(b / Re), Re
//     the pipe Reynolds number (1e4..1e7); Re = 0 is a fault;
//   VENTURI: 0.985, the rough-welded sheet-iron convergent of ISO 5167-4.
// An unknown type gives 0.
double orifice_C(RunContext& ctx, std::string_view type, double b, double t_d, double Re);

// Pressure ratio p2/p1 across the flange taps: 1 - (|dP| / Pabs) / dPratio,
// limited to 0..1, with dP (kPa) the permanent loss and Pabs = PATM + P (P
// the upstream gauge pressure, kPa), at least 1e-06.
double orifice_Rf(RunContext& ctx, const Header& gen, std::string_view type, double b, double dP, double P);

// Critical pressure ratio of a nozzle with approach velocity, the root of
//   r^((1-k)/k) + (k-1)/2 * b^4 * r^(2/k) = (k+1)/2
// by substitution from r0 = (2 / (k+1))^(k/(k-1)), at most twenty steps,
// stopping when a step moves r by less than 1e-04 (the last step not taken).
// Without approach velocity (b = 0) it is r0, 0.5283 for k = 1.4.
double orifice_Rc(RunContext& ctx, double b, double k);

// Expansion factor Y of the gas through the meter, limited to 0.001..1; 1 for
// a liquid (LF > 0.9999). Rf the flange pressure ratio, t_d the plate's
// thickness over bore.
//   Thin plate (ORIFICE, t_d < 0.5): the empirical expansibility of ASME
//   MFC-3M-1989 and ISO 5167-1:1991, Y = 1 - (0.41 + 0.35 b^4)(1 - Rf) / k,
//   valid down to Rf = 0.63 (ISO's 0.75 extended); below it the slope steepens
//   by 1.2 k / k2 (k2 = 1.4 for k >= 1.167, else 1.2 k), so Y keeps falling
//   where a thin plate never chokes.
//   Thick plate, quadrant, nozzle, venturi: the isentropic expansibility of
//   ISO 5167-3/-4 with Rf not below the critical ratio orifice_Rc,
//   Y^2 = (1 - b^4) / (1 - b^4 Rf^(2/k)) * k/(k-1) * Rf^(2/k) (1 - Rf^((k-1)/k)) / (1 - Rf).
double orifice_Y1(RunContext& ctx, std::string_view type, double t_d, double LF, double b, double Rf, double k);

// Whether the meter runs choked. Not for a liquid (LF > 0.9999), not against
// the flow (dP and W of opposite signs), never for a thin plate (ORIFICE with
// t_d < 0.5); otherwise when orifice_Rf falls below orifice_Rc. dP permanent
// loss and P upstream gauge pressure, kPa; W t/h.
bool orifice_IsCritical(RunContext& ctx, const Header& gen, std::string_view type, double t_d, double b, double dP,
                        double P, double W, double LF, double k);

// Coefficient C of the permanent loss dP = C * W * |W| (kPa, t/h) at BETA[2]:
//   C = 6.2544e-05 * dPratio * (1 - b^4) / (b^4 C^2 D^4) * Rinv,
// the meter equation above, Rinv = equivalent_inv_density(gen.MFODEN, ...)
// with Y from the last drop DP[2]. BETA[2] = 0 is a blind plate, 1e9; a beta
// above 1 or negative gives 1e-09.
double Orifice_W2(RunContext& ctx, const Header& gen, const FO& fo, const OrificeFluid& f);

// Coefficient for the row of a choked meter, P_up + PATM = C * W * |W|: the
// flow is set by the absolute upstream pressure alone,
// C = (1 / W) * sqrt((PATM + Pin) * Orifice_W2 / (1 - Rc) / dPratio).
// 1e9 for no flow, Rc >= 1 or dPratio <= 0.
double Orifice_W2_choked(RunContext& ctx, const Header& gen, const FO& fo, const OrificeFluid& f);

// Sizes beta from the solved drop DP[2] and flow: the fixed point
// b^4 = 6.2544e-05 * dPratio (1 - b^4) W^2 Rinv / (dPu C^2 D^4), by
// substitution with Aitken's delta-squared acceleration from b = 0.7 (at most
// 500 rounds, stopping when the second difference is within 1e-06); dPu is
// |DP[2]|, or the critical drop when smaller. Stores BETA[2], C, YIN, BORE[2],
// CHOKE and DPF[2] (the flange differential, signed as DP[2]). No flow or no
// drop gives beta 1, C 1, Y 1, the bore D, not choked, DPF 0. Then logs where
// the result differs from the case's entries; a BETA entry "C" keeps its value.
void orifice_beta(RunContext& ctx, const Header& gen, FO& fo, const OrificeFluid& f, int case_no);

// Before each solve of case case_no, iteration iter (from 1): the working
// values, then BETA[2]: an entry "C" leaves it alone; a number sets it on
// iteration 1; a BORE entry gives it from the bore and the upstream line's
// ID; a DPF entry starts it at 0.7 (iteration 1 of a fresh run, or when it is
// 0), else sizes it by orifice_beta. Returns the working values for the rows.
OrificeFluid refresh_orifice(RunContext& ctx, Project& p, FO& fo, int iter, int case_no);

// After the iteration of a case: beta, C, Y, bore and flange differential
// from the solved drop (orifice_beta).
void final_orifice(RunContext& ctx, Project& p, FO& fo, int case_no);

}  // namespace velm
