// Pumps: the head-flow curve read by straight-line interpolation and scaled by
// the affinity laws, the rise handed to the network solver, pump and shaft
// efficiencies, shaft power, and net positive suction head (available and
// required). The curve helpers here also serve the compressor.
//
// Units throughout: mass flow W t/h, signed (positive in the drawn direction,
// inlet line to outlet line); volume flow Q m3/h at the suction; pressure kPa
// gauge; pressure rise kPa; head m of the flowing fluid; density kg/m3;
// velocity m/s; power kW; speed rpm; impeller diameter in any unit (only the
// ratio enters); efficiencies as fractions 0..1.
//
// A curve machine meets the solver in the row PIN - POUT - C * X = -dP13 with
// X = W * |W|: the local curve dP = dP13 - C * W^2 is the tangent to the
// interpolated curve at the present flow, made a little steeper by the
// project's minimum slope MPCURV so that the solver never sees a flat curve.
// At a converged flow the rise lies on the curve itself.
#pragma once

#include <span>
#include <string_view>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/records.hpp"

namespace velm {

inline constexpr double kHeadGravity = 9.81;  // m/s2, as the head equations of the program take it

// The pump as the flow meets it: the upstream line is the inlet line when its
// flow is >= 0, else the outlet line.
struct PumpWorking {
    double W = 0.0;    // flow of the upstream line, t/h, signed
    double Pin = 0.0;  // suction pressure, kPag: PIN forward, POUT in reverse
    double Den = 0.0;  // suction density, kg/m3: the upstream line's density at the pump
    double Vel = 0.0;  // suction velocity, m/s: the upstream line's velocity at the pump
};


// Line n of the project, nullptr when n is not a line.
const Line* machine_line(const Project& p, int n);

// The line through which flow reaches a two-port machine: the inlet line
// CON[1] when its flow is >= 0, else the outlet line CON[2] (reverse is then
// true). nullptr when that line does not exist.
const Line* upstream_line(const Project& p, const TwoPort& m, bool& reverse);

// Suction volume flow, m3/h: 1000 * W / density (W t/h, density kg/m3); 0 when
// density <= 0.
double vol_flow(double W, double density);
// Head, m, of a pressure rise dP (kPa) at density (kg/m3): 1000 * dP / 9.81 /
// density; 0 for a zero density.
double head_from_dP(double dP, double density);
// Pressure rise, kPa, of a head (m) at density (kg/m3): head * 9.81 * density / 1000.
double dP_from_head(double head, double density);
// Shaft power, kW, of a pump moving Q (m3/h) through dP (kPa), hydraulic power
// Q * dP / 3600 over the pump and shaft efficiencies; 0 when either is 0.
double pump_power(double Q, double dP, double eff, double shaft);

// Straight-line interpolation of Y over ascending X, points a..b (1-based, as
// the curve columns are held). The interval is the first point whose X lies
// above x and the one before it, so an x exactly on a point uses the interval
// after it. Outside the curve the result stays flat at the end value with slope
// 0 and a message in the log; fewer than 2 points give 0 with a message; two
// points at one X give the mean of their Y. slope (out) is dY/dX of the
// interval, 0 where the result is flat; a numeric fault gives 0 and slope 0.
double y_lin(RunContext& ctx, double x, int a, int b, std::span<const double> X, std::span<const double> Y,
             double& slope);

// The rise dP13 (kPa) and coefficient C (out, kPa per (t/h)^2) of a curve
// machine at flow W (t/h), from the curve's rise dP (kPa) there and its slope
// dH/dQ (m per m3/h). The slope is made steeper by sign(W) * min_slope; C is
// -9.81 * slope / (2 W), or 0 for a machine at rest (|W| < 1e-06) or one whose
// rise opposes the flow. dP13 = W^2 * C + dP. C is left as it was when a
// numeric fault stops the routine.
double curve_dP13(double W, double dP, double slope, double min_slope, double& C);

// Head (m) on a machine's curve at W (t/h) and suction density (kg/m3), and
// the curve's slope dH/dQ (out, m per m3/h) there.
double curve_head(RunContext& ctx, const Machine& m, double W, double density, double& slope);

// An efficiency limited to 0.01..1.
double limit_efficiency(double e);

// Efficiency of a case entry, limited to 0.01..1: empty, the typical value
// by_type; "C" from the machine's efficiency column at suction flow x (m3/h);
// else the entry's number.
double curve_efficiency(RunContext& ctx, const Machine& m, std::string_view entry, double by_type, double x);

// Reads every curve row of the case (flow, head) and scales it to the speed
// and impeller in use by the affinity laws: with both diameters non-zero,
// Q * D2/D1 and H * (D2/D1)^2; with both speeds non-zero, Q * n2/n1 and
// H * (n2/n1)^2. Row i's unscaled flow goes to q_text[i], and the speed ratio
// applied (1 when none) is returned. A speed or impeller in use given against
// a zero curve basis is not scaled and is told once, with word the kind
// ("Pump ", "Compressor "). Curve flows that fall from one point to the next
// are told too, when uses_curve.
double machine_curve_scale(RunContext& ctx, Machine& m, int case_no, std::string_view word, bool uses_curve,
                           std::span<double> q_text);

// Writes a typical curve through the present point into the curve texts of a
// machine: row i is flow q[i], head h[i] and efficiency eff[i] per cent of Q,
// H and E; the curve then has ten points.
void machine_curve_generate(Machine& m, double Q, double H, double E, std::span<const double> q,
                            std::span<const double> h, std::span<const double> eff);

// The pump's suction state; a pump without its lines gives zeros.
PumpWorking pump_properties(RunContext& ctx, const Project& p, const Pump& m);

// Curve set-up of a case: the numeric columns from the curve texts, scaled by
// the affinity laws (machine_curve_scale); the NPSHR column follows the speed
// as (n2/n1)^(4/3) and then the flow as (Q_scaled/Q_text)^(2/3). Efficiency is
// not scaled.
void pump_curve_scale(RunContext& ctx, Pump& m, int case_no);

// A typical curve through the present point (HQACT[3], HQACT[1], EFFP[2],
// NPSHR13[2]) from the typical curve in per cent q, h, eff, npsh (the
// project's PCURQ, PCURH, PCUREFF, PCURNPSH, points 1..10).
void pump_curve_generate(Pump& m, std::span<const double> q, std::span<const double> h, std::span<const double> eff,
                         std::span<const double> npsh);

// Rise dP13 (kPa) of the pump for the case and its coefficient C (out): on the
// curve when DP reads "C" (see curve_dP13, min slope MPCURV[1]); else C = 0
// and the specified rise.
double Pump_dP13(RunContext& ctx, const Project& p, const Pump& m, double& C, int case_no);

// Pump efficiency of the case: empty, by TYPE at Q = |HQACT[3]|
// ("Centrifugal" 0.8 (1 - 1/(0.05 Q + 1)), "Sundyne" 0.55 (1 - 1/(0.5 Q + 1)),
// "Reciprocating" 0.95, others 0.6); "C" from the efficiency column at
// HQACT[3]; else the number. Limited to 0.01..1.
double pump_efficiency(RunContext& ctx, const Pump& m, int case_no);

// Shaft (driver and transmission) efficiency of the case: a number when EFFS
// gives one; empty, 1, but for a "Reciprocating" pump the mechanical
// efficiency 0.99 - 0.66 / P^0.45 with P the shaft power in hp (at least
// 0.42), five substitutions from a first guess of 0.6. Limited to 0.01..1.
double pump_efficiency_shaft(RunContext& ctx, const Pump& m, int case_no);

// Net positive suction head available, m, for the case: the number of NPSHA13
// when given; else, with forward flow, from the suction source, the Feed
// NPSHAF[1] (Ps its pressure) or else the Vessel NPSHAF[2] (Ps the pressure at
// its outlet nozzle NPSHA[3]: the vessel's pressure plus the liquid head over
// that nozzle, so the liquid above the nozzle gives no credit):
//   (v / eyes)^2 / 2g + 1000 Pin / (rho g) - 1000 (Ps - subcooling) / (rho g) - NPSHA[6],
// the vapour pressure being Ps less the subcooling NPSHA[4]; v, Pin and rho
// those of the suction. Gauge pressures cancel, so PATM does not enter. Stores
// the source's own pressure in NPSHA1. 0 with reverse flow or no source; a
// source that does not exist is told.
double pump_NPSHA(RunContext& ctx, const Project& p, Pump& m, int case_no);

// Net positive suction head required, m, for the case: empty, from the
// suction specific speed S = N sqrt(Q) / NPSHR^(3/4) (N rpm, Q US gpm per eye,
// NPSHR ft; Hydraulic Institute) solved for NPSHR with N = NPSHR[2],
// S = NPSHR[3] and Q = |HQACT[3]| over NPSHR[1] eyes; "C" from the NPSHR
// column at HQACT[3]; else the number.
double pump_NPSHR(RunContext& ctx, const Pump& m, int case_no);

// The pump's part of the property update before each solve: suction state,
// the curve set-up up to iteration 1, HQACT[3] (suction volume flow), HQACT[1]
// (head of DP[2]), EFFP[2], EFFS[2] and POW.
void refresh_pump(RunContext& ctx, Project& p, Pump& m, int iter, int case_no);

// The pump's final results of a case: NPSHR13[2] and NPSHA13[2]; in case 1,
// with CURC1 at 1, a typical curve through the point found (logged as such).
void final_pump(RunContext& ctx, Project& p, Pump& m, int case_no);

// The pump's warnings (RunContext::warn), in this order: a line with vapour (flags the
// pump), a rise against the direction of flow.
void pump_warnings(RunContext& ctx, const Project& p, Pump& m);

}  // namespace velm
