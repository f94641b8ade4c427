// Two-phase gas-liquid pipe flow: the slip methods of PipeDP, the liquid
// hold-up correlations, and the momentum density used for acceleration.
//
// Units as in correlations/pipe.hpp: W t/h (signed), diameters and roughness
// m, densities kg/m3, viscosities cP, velocities m/s, pressure drop kPa.
// LF is the liquid mass fraction (1 all liquid); L, the liquid volume
// fraction of a no-slip mixture (LVF), is the no-slip hold-up; Hl is the
// in-situ liquid hold-up (volume fraction of the pipe filled with liquid).
// NFR = vm^2 / (g D) is the mixture Froude number with vm the no-slip mixture
// velocity and g = 9.81 m/s2.
//
// The correlations were fitted to horizontal (Beggs-Brill hold-up: horizontal
// only) and near-horizontal pipe; elevation is charged separately, by the
// density of the static column.
//
// The correlations trap their own numeric faults: one line in the log with
// their own words, the fault's number and description, and 0 as the result.
// The branches of PipeDP below are trapped by PipeDP itself.
#pragma once

#include <string_view>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// Liquid hold-up of Dukler's correlation as charted in the GPSA Engineering
// Data Book, read from curve fits g(y) = c1 y + c2 y^1.5 - c3 y^2 in
// y = |ln L| for Reynolds numbers 100 to 200000; Hl = exp(g). Between two
// curves g is interpolated in ln Re; below Re 100 the curve of 100 holds,
// above 1e6 Hl = L. Never below L. L in (0, 1]; Re the two-phase Reynolds
// number of Dukler (beta times the no-slip one).
double Hld(RunContext& ctx, double L, double Re);

// Hughmark (1962) hold-up: Hl = 1 - (1 - L) K(Z) with
// Z = Re^(1/6) NFR^(1/8) / L^(1/4), Re on the slip viscosity
// Hl muL + (1 - Hl) muV, and K a fit of Hughmark's table (within 0.5 % of it
// for 1.3 <= Z <= 130), K at most 1. Limited to L..1. Valid for
// 0 < L < 1; Hughmark's data reach Z up to about 130.
double Hlh(RunContext& ctx, double L, double Re, double NFR);

// Flanigan (1958) hold-up factor for the static head of two-phase lines:
// 1 / (1 + 1.0151 vsg), vsg the superficial gas velocity in m/s. The
// coefficient 1.0151 and the exponent 1 are this program's form; Flanigan's
// own fit, 1 / (1 + 0.3264 vsg^1.006) with vsg in ft/s, gives 3 % (vsg 1 m/s)
// to 7 % (vsg 10 m/s) less.
constexpr double Hfl(double vsg) { return 1.0 / (1.0 + 1.0151 * vsg); }

// Lockhart and Martinelli (1949) hold-up against the Martinelli parameter X,
// their curve of the liquid fraction read as 1 / sqrt(1 + 21 / X + 1 / X^2);
// 0 for X = 0.
double HLM(RunContext& ctx, double X);

// Beggs and Brill (1973) horizontal hold-up with the flow pattern limits
// L1..L4 of the revised map (Brill and Beggs, Two-Phase Flow in Pipes):
// segregated 0.98 L^0.4846 / NFR^0.0868, intermittent 0.845 L^0.5351 /
// NFR^0.0173, distributed 1.065 L^0.5824 / NFR^0.0609, with blends across the
// transition band L2..L3 and, in this program, across 0.75 L1..L1 and
// 0.75 L4..L4. NFR <= 0 gives L.
double HBB(RunContext& ctx, double L, double NFR);

// Dukler (1964) two-phase friction factor ratio f_tp / f_0 for constant slip:
// with y = -ln L, 1 + y / (1.281 - 0.478 y + 0.444 y^2 - 0.094 y^3 +
// 0.00843 y^4). 1 at L = 1; for 0 < L <= 1.
double Dukler_alpha(RunContext& ctx, double L);

// Dukler (1964) density ratio beta = rho_tp / rho_NS, with
// rho_tp = L^2 rhoL / Hl + (1 - L)^2 rhoV / (1 - Hl) (rhoL at Hl = 1, rhoV at
// Hl = 0); 1 when rhoNS <= 0. beta = 1 exactly when Hl = L (no slip).
double Dukler_beta(RunContext& ctx, double L, double Hl, double rhoL, double rhoV, double rhoNS);

// Beggs and Brill (1973) friction factor ratio f_tp / f_ns = e^S with
// y = L / Hl^2 (1 when Hl = 0): S = ln(2.2 y - 1.2) for 1 < y < 1.2, else
// S = ln y / (-0.0523 + 3.182 ln y - 0.8725 (ln y)^2 + 0.01853 (ln y)^4).
double Beggs_Brill_alpha(RunContext& ctx, double L, double Hl);

// Momentum density of a separated flow, kg/m3, the density with which the
// momentum flux is G^2 / rho_m:
// 1 / rho_m = (1 - LF)^2 / (rhoV (1 - Hl)) + LF^2 / (rhoL Hl).
// rhoV when Hl = 0 or rhoL = 0; rhoL when Hl = 1 or rhoV = 0.
double density_momentum(RunContext& ctx, double LF, double Hl, double rhoV, double rhoL);

// Liquid hold-up by method, for a flow W (t/h) of liquid mass fraction LF in a
// pipe of flow diameter ID, hydraulic diameter IDH and roughness EPS (m):
//   "GPSA": Hld, iterated with Dukler's beta on the Reynolds number;
//   "Hughmark": Hlh, iterated on the slip viscosity;
//   "Flanigan": Hfl of the superficial gas velocity;
//   "Lockhart-Martinelli": HLM of X from the phases flowing alone;
//   "Beggs-Brill": HBB of the mixture Froude number;
//   "Liquid": 1; any other name ("Homogeneous"): the no-slip L.
// A single phase (LF 0 or 1) or a missing phase property gives L. The
// result is never below L nor above 1. An iteration still moving by 0.5 %
// after 100 rounds logs "Error! Liquid holdup for line did not converge."
// and keeps its last value.
double liquid_holdup(RunContext& ctx, std::string_view method, double ID, double IDH, double EPS, double W, double LF,
                     double rhoL, double muL, double rhoV, double muV);

// The two-phase branches of PipeDP, called after its checks (positive density,
// diameters and phase properties, 0.0001 < LF[3] < 0.9999). Each returns the
// coefficient C of dP = C * W * |W| (kPa, W t/h) of the line's length and
// fittings plus acceleration by gen.MACCEL, and stores the results in the
// line; with per_100m, the pressure drop (kPa) of 100 m of straight pipe
// without acceleration, and the line is left as it was.
//
// Dukler (1964) constant-slip method (gen.MTP "Dukler", hold-up by
// gen.MDUKHP) and Beggs and Brill (1973) (gen.MTP "Beggs-Brill", horizontal):
// dP = alpha * beta * K * G^2 / (2 rhoNS), K the resistance coefficient with
// the Darcy factor at beta * Re, rhoNS the no-slip density TPROP[3] and Re on
// the no-slip viscosity TPROP[6]. alpha is the friction factor ratio of the
// method; Beggs-Brill has beta = 1. gen.MDUKF set takes the smooth-pipe
// friction factor, for both.
// Stores DUK[1] = alpha, DUK[2] = beta, HUP = Hl, RE = beta Re.
double dukler_beggs_brill_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                      bool per_100m);

// Lockhart and Martinelli (1949) separated flow (gen.MTP
// "Lockhart-Martinelli": curve fits of their chart) and Chisholm's (1967)
// form of it (gen.MTP "Chisholm": phi_L^2 = 1 + C / X + 1 / X^2, C = 20, 12,
// 10, 5). X^2 is the ratio of the liquid to the gas friction gradient, each
// phase flowing alone; a phase is turbulent at Re >= 2000. For X >= 1 the
// liquid's drop times phi_L^2, otherwise the gas's times phi_G^2. Stores
// LM[1..7] = ReL, fL, phi_L^2, ReG, fG, phi_G^2, X and HUP by
// Lockhart-Martinelli.
double lockhart_martinelli_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                       bool per_100m);

// Chenoweth and Martin (1955): the drop of the whole flow as liquid times a
// multiplier Phi read from their chart in L and Y = (fG rhoL) / (fL rhoV),
// the ratio of the all-gas to the all-liquid friction gradient: Y^(1 +
// sqrt(50 L)) for L < 1e-5, L^-0.8597 for L > 0.1 (where the chart's curves
// merge), a fit in ln Y and ln L between. Stores LM[1..5] = ReL, fL, Phi,
// ReG, fG and LM[7] = Y.
double chenoweth_martin_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                    bool per_100m);

// Acceleration coefficient Cacc (dP = Cacc * W * |W|, kPa, W t/h) of a
// separated flow: the hold-up by method ("Hughmark", "GPSA",
// "Lockhart-Martinelli") at the inlet and at the outlet from the end values
// (LF, LIQDEN, LIQVISC, VAPDEN, VAPVISC [1] and [2]), and
// 2 * 6.254e-05 / ID^4 * |1 / rho_m2 - 1 / rho_m1| between the momentum
// densities of the ends. 0 when a momentum density or ID is not positive.
double pipe_dP_acc_holdup(RunContext& ctx, std::string_view method, const Line& line, double ID, double IDH);

}  // namespace velm
