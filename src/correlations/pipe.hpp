// Single-phase pipe flow: Reynolds number, Darcy friction factor, resistance
// coefficient, mixture properties of a line, and the line's coefficient for the
// network solver.
//
// Units throughout: mass flow W in t/h, signed (positive from the line's inlet
// end to its outlet end); pressure in kPa gauge (absolute = gen.PATM + gauge);
// pressure drop in kPa; diameter, length and roughness in m; density kg/m3;
// viscosity cP; temperature C; molecular weight kg/kmol; velocity m/s.
// Liquid fraction LF is a mass fraction (1 all liquid, 0 all vapour).
//
// A line meets the solver as dP = C * W * |W|: PipeDP returns C. With a loss
// coefficient K, dP [kPa] = 6.254e-05 * K * W^2 / (rho * ID^4).
//
// Every routine that can meet a numeric fault traps it itself: it logs one line
// of its own words with the fault's number and description and returns 0.
#pragma once

#include <string_view>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// Rounded constants of the pipe equations; they stay rounded so that results
// do not move with the platform.
inline constexpr double kPipeReynolds = 353.7;    // 4000 / (3.6 pi): Re from t/h, m, cP
inline constexpr double kPipeHead = 6.254e-05;    // (8 / pi^2) / 3.6^2 / 1000: K * rho * v^2 / 2 in kPa from t/h, m
inline constexpr double kPipeLn10 = 2.3026;
inline constexpr double kPipePi = 3.141592654;

// Reynolds number rho * v * IDH / mu with the flow area taken from ID:
// |353.7 * W * IDH / ID^2 / visc|. W t/h, ID and IDH m, visc cP. Never negative;
// 0 when ID or visc is 0.
double Re(RunContext& ctx, double W, double ID, double IDH, double visc);

// Darcy friction factor. D (m) is the hydraulic diameter, EPS (m) the absolute
// roughness.
//   Re = 0 or D = 0: 0.018, so that a line at rest keeps a finite coefficient;
//   Re < 0.1: 640; Re < 2000: Hagen-Poiseuille 64 / Re;
//   2000 <= Re < 3000: straight line from 64 / 2000 to the turbulent value at 3000;
//   Re >= 3000: Colebrook-White, 1/sqrt(f) = -2 log10(EPS/D/3.7 + 2.51/(Re sqrt f)),
//   by a fixed five substitutions from a closed-form start (no convergence test).
// The turbulent form is within 2e-5 (relative) of the exact Colebrook solution
// for 3000 <= Re <= 1e8 and 0 <= EPS/D <= 0.05. EPS = 0 gives the smooth pipe.
double pipe_f(RunContext& ctx, double EPS, double D, double Re);

// Fully turbulent Darcy friction factor, the rough-pipe law of von Karman and
// Nikuradse: 1/sqrt(fT) = 2 log10(D/EPS) + 1.14. EPS and D in m. EPS = 0 or
// D = 0 gives 0.0056.
double pipe_fT(RunContext& ctx, double EPS, double D);

// Total resistance coefficient of a line: fT * FITLD + FITK + f * LEN / IDH.
// Fittings given as L/D are always charged with the fully turbulent factor.
// IDH and LEN in m. IDH = 0 gives 0.
double pipe_K(RunContext& ctx, double IDH, double LEN, double FITLD, double FITK, double f, double fT);

// Mean velocity, m/s, of W (t/h) at density (kg/m3) in a round bore ID (m).
// Never negative; 0 when density or ID is not positive.
double velocity(RunContext& ctx, double W, double density, double ID);

// Liquid volume fraction of a homogeneous mixture of liquid mass fraction LF:
// LF * rhoV / (LF * rhoV + (1 - LF) * rhoL). 1 when LF >= 1 or rhoV <= 0,
// then 0 when LF <= 0 or rhoL <= 0. Densities kg/m3.
double LVF(RunContext& ctx, double LF, double rhoV, double rhoL);

// fraction * liquid + (1 - fraction) * vapour.
constexpr double mix_by_fraction(double fraction, double vapour, double liquid) {
    return fraction * liquid + (1.0 - fraction) * vapour;
}

// Liquid fraction limits: below kVapourLimit a line is vapour, above
// kLiquidLimit liquid, strictly between them two-phase.
inline constexpr double kVapourLimit = 0.0001;
inline constexpr double kLiquidLimit = 0.9999;

constexpr bool is_two_phase(double LF) { return LF > kVapourLimit && LF < kLiquidLimit; }

// Homogeneous (no-slip) density, kg/m3: the phase densities mixed by LVF.
double density(RunContext& ctx, double LF, double rhoV, double rhoL);

// Homogeneous mixture viscosity, cP: the phase viscosities mixed by LVF.
double Viscosity(RunContext& ctx, double LF, double muV, double muL, double rhoV, double rhoL);

// Real-gas density, kg/m3: (PATM + P) * MW / (Z * 8.314 * (T + 273.15)).
// P kPa gauge, T C, MW kg/kmol. 0 when Z <= 0 or T is at or below absolute zero.
double vapor_density(RunContext& ctx, const Header& gen, double Z, double MW, double P, double T);

// e^x with x first limited to [-200, 200], so that it never overflows.
double exp_safe(double x);

// The ways PipeDP can rate a line.
enum class PipeBranch {
    Isothermal,                  // vapour under MCOMP "Isothermal"
    DuklerBeggsBrill,            // two-phase, MTP "Dukler" or "Beggs-Brill"
    LockhartMartinelliChisholm,  // two-phase, MTP "Lockhart-Martinelli" or "Chisholm"
    ChenowethMartin,             // two-phase, MTP "Chenoweth-Martin"
    Homogeneous,                 // everything else: liquid, incompressible vapour, homogeneous two-phase
};

// The first branch that holds, in this order: vapour (LF3 < 0.0001) under
// "Isothermal"; the two-phase methods for 0.0001 < LF3 < 0.9999; homogeneous.
// LF3 of exactly 0.0001 or 0.9999 is homogeneous.
PipeBranch pipe_branch(const Header& gen, double LF3);

// Friction of the whole flow at the trial diameters ID and IDH (m): Reynolds
// number on the mixture viscosity TPROP[6], Darcy factor f with the line's
// roughness, fully turbulent factor fT, and the resistance coefficient K of
// 100 m of straight pipe (per_100m) or of the line's length and fittings.
struct PipeFriction {
    double re, f, fT, K;
};
PipeFriction line_friction(RunContext& ctx, const Line& line, double ID, double IDH, bool per_100m);

// Leaves a rating's results in the line: MTP = method, RE, F[1], F[2], DPACC
// (kPa), HUP; zeroes DUK[1], DUK[2] and LM[1..7], which a two-phase method
// fills in afterwards.
void store_pipe_results(Line& line, const char* method, const PipeFriction& fr, double dpacc, double hup);

// Coefficient C of dP = C * W * |W| (kPa, W t/h) for friction, fittings and
// acceleration of a line, at the trial diameters ID (flow area) and IDH
// (hydraulic), both m; every other input comes from the line's average
// properties.
//   Isothermal vapour: the isothermal compressible flow equation of an ideal
//   gas, dP = 6.254e-05 * (K + 2 ln(rho1/rho2)) * W^2 / (rho_mean * ID^4), rho1
//   the upstream and rho2 the downstream end density, rho_mean their mean. The
//   logarithm is the gas's acceleration; DPACC is 0.
//   Homogeneous: Darcy-Weisbach at the average homogeneous density, plus the
//   acceleration term of gen.MACCEL.
// mode "W2" (or any other): C for the line's length and fittings, and the
// results are stored in the line (MTP, RE, F[1], F[2], DPACC, HUP, DUK, LM).
// mode "dP100": the pressure drop in kPa per 100 m of straight pipe at W,
// without fittings or acceleration; the line is not changed.
//   Two-phase methods (Dukler, Beggs-Brill, Lockhart-Martinelli, Chisholm,
//   Chenoweth-Martin): see correlations/two_phase.hpp.
// Returns 0, with a message, for zero density or diameter and for missing
// phase properties of a two-phase line.
double PipeDP(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH, std::string_view mode);

// The flow exponent d ln C / d ln W of the coefficient C that PipeDP "W2" has
// just given for the line, from the Reynolds number and friction factor it
// left there, where the homogeneous method rates the line: only the friction
// of the straight pipe changes with the flow, f by -1 power of Re in laminar
// flow and by the implicit derivative of Colebrook-White, -2k/(1+k) with
// k = 5.02 / (ln 10 Re (eps/3.7D + 2.51/(Re sqrt f))), in turbulent flow.
// Nothing (NaN) for the other methods and the transition zone (2000 <= Re <
// 3000), where the caller takes a step of the flow instead.
double pipe_flow_exponent(const Header& gen, const Line& line, double ID, double IDH, double C);

// Acceleration coefficient Cacc of dP = Cacc * W * |W|, always a loss (>= 0).
// ID in m (IDH is taken for the hold-up methods). By method:
//   "None": 0;
//   "Log": 2 * 6.254e-05 / ID^4 / rho_avg * |ln(rho1 / rho2)|;
//   "Homogeneous" and any other name: 2 * 6.254e-05 / ID^4 * |1/rho2 - 1/rho1|,
//   the momentum change of a no-slip mixture between the end densities.
//   "Hughmark", "GPSA", "Lockhart-Martinelli": the same between the momentum
//   densities of the two ends with the slip hold-up of that method
//   (pipe_dP_acc_holdup, correlations/two_phase.hpp).
double pipe_dP_acc(RunContext& ctx, std::string_view method, const Line& line, double ID, double IDH);

// Sonic velocity, m/s, of the line's average vapour: "Isothermal"
// sqrt(Z * 8314 * T / MW), "Adiabatic" sqrt(k * Z * 8314 * T / MW), T in K as
// TEMP[3] + 273.1. A line without vapour (MW 0) gets 5000; an unknown method
// gets 5000 and a message.
double pipe_sonic_velocity(RunContext& ctx, std::string_view method, const Line& line);

// Whether the downstream end of the line (in the direction of flow) runs at
// sonic speed, given the calculated drop dPc and the drop needed dPn (kPa).
// Not choked at or below 0.97 of the sonic velocity or for a liquid end
// (LF >= 0.9999); choked when dPc exceeds 1.03 * dPn or the velocity exceeds
// 1.03 of sonic; not choked in between.
bool pipe_is_choked(const Line& line, double dPc, double dPn);

// Gauge pressure, kPa, to take at the choked end of the line:
// sqrt(v / vs) * (P + PATM) - PATM, with v and P of the downstream end. The
// square root damps the correction over successive solver passes.
double pipe_choke_pressure(RunContext& ctx, const Header& gen, const Line& line);

}  // namespace velm
