// Heat and mole balance of the network: weight fractions of every component
// and the enthalpy of every line end carried from the feeds through the
// equipment to the products by two sparse linear systems over the lines, and
// flashes of the vessels and the line ends that turn them into temperatures,
// phase splits and properties.
//
// Units as in the records: flows t/h signed in the line's direction, enthalpy
// kJ/kg, duty kJ/h, temperatures C and pressures kPag on the lines (K and kPa
// absolute at a flash).
#pragma once

#include <array>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"
#include "solver/sparse.hpp"
#include "thermo/flash.hpp"

namespace velm {

// The working state of the balance through a run: the project's components
// and methods, per line the last duty, the last outlet temperature error and
// the count of secant updates (QMem[1..3]), and the solver's work arrays.
struct BalanceState {
    FlashSetup setup;
    std::vector<std::array<double, 4>> QMem;  // QMem[L][1..3]
    SparseWork work;
    double error = 0.0;  // the balance's part of the error of the last pass ("HMB Error")
};

// What HMB_Flash flashes: bit 1 every line end, bit 2 every vessel.
inline constexpr int kFlashLineEnds = 1;
inline constexpr int kFlashVessels = 2;

// Clears the working values (QMem, Line.OUTIN, Line.REFLINE) at the start of a
// run and reads the project's components; starts the simulator's scratch case
// when the flash engine is "HYSYS".
void HMB_Reset(RunContext& ctx, Project& p, BalanceState& state);

// Empty when the network can be balanced, else the first problem found; the
// item with the problem takes the error colour. Flows below 0.0001 t/h are
// set to 0 on the way.
std::string HMB_Check(RunContext& ctx, Project& p, const BalanceState& state);

// Weight fractions of every component in every line (one solve per
// component), the duty of every line, then the enthalpies of the line ends
// (one solve). err gains the change of the line duties / 1000. Returns true
// after a failure (a system that cannot be solved, a trapped fault).
bool MolHeatBalance(RunContext& ctx, Project& p, BalanceState& state, double& err);

// Flashes every vessel (what & kFlashVessels), which sets the composition and
// state of its outlets, and every line end (what & kFlashLineEnds). err gains
// 10^6 times the change of the outlet compositions. A failed flash is logged
// by the flash and leaves its line as it was; returns 0.
int HMB_Flash(RunContext& ctx, Project& p, BalanceState& state, double& err, int what);

// The flash of one end of line L (pos 1 its start, 2 its end) at that end's
// flash type, traced as `trace` asks (kFlashTraceLog: the trace lines and the
// results block in the run log); on success the state, the phase properties
// and the phase compositions are written back to that end, on failure the
// line keeps everything.
bool FlashLineEnd(RunContext& ctx, Project& p, const FlashSetup& setup, int L, int pos, int trace);

// The flash of a line's start (HMB_FlashLine1) or end (HMB_FlashLine2) at its
// flash type, its results written back to that end of the line.
bool HMB_FlashLine1(RunContext& ctx, Project& p, const BalanceState& state, int L);
bool HMB_FlashLine2(RunContext& ctx, Project& p, const BalanceState& state, int L);

// What enters a vessel: the sum of its entering flows (t/h), the mixed
// enthalpy (kJ/kg) and mole fractions of its inlets. An inlet with negative
// flow or no mole weight is left out (logged when ctx is given).
struct VesselFeed {
    double Ftot = 0.0;
    double H = 0.0;
    Comps z{};
};
VesselFeed vessel_feed(RunContext* ctx, const Project& p, const FlashSetup& setup, const Vessel& v);

// Weight fraction of component c in the mole composition x; 0 when the mole
// weight of the mixture is 0.
double GetWt_fractions(int c, const Comps& x, const FlashSetup& setup);

// True when the composition of line L is given rather than solved: on a feed
// with flow 0 or above, on a product with negative flow, on a vessel inlet
// with negative flow, on a vessel outlet with flow 0 or above.
bool IsFixedComp(const Project& p, int L);

// The overall heat transfer coefficient of a line referred to its inside
// diameter, W/m2/K: the user's value, or inner film (Dittus-Boelter form
// 0.027 Re^0.8 Pr^0.333), fouling 2500, wall, insulation and the outside film
// of radiation and natural/forced convection in air, rounds of the outer
// surface temperature tsur (C) until it moves less than 0.01 K.
double Pipe_U(RunContext& ctx, const Line& line, double& tsur);

// The duty of a line, kJ/h, lost to ambient: a tenth of the largest on a
// first pass, then from the exponential approach of the fluid to ambient
// along the line, by secant steps after four updates; never more than
// UA (T1 - TAMB). qmem holds the line's QMem[1..3].
double Pipe_Q(const Line& line, std::array<double, 4>& qmem);

}  // namespace velm
