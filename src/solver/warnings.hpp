// Warnings and errors of a case's final results. Each one names its record,
// goes to the run log and to the case's list (RunContext::warn) that the
// hydraulic report prints under "WARNINGS & ERRORS". Values in the words are
// in internal units, printed "########0.0###". Records that the words call
// flagged get COLOR = p.color_error, so that the drawing shows where the
// trouble lies.
#pragma once

#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/records.hpp"

namespace velm {

// Runs fn on each record in use of v. A numeric fault in one record is told
// as "Error! In HydrResulFinalSub = <n> : <description>" (a case warning too)
// and the next record goes on, so that one bad record costs no other its
// results or warnings.
template <class R, class Fn>
void for_each_final(RunContext& ctx, std::vector<R>& v, Fn&& fn) {
    for (std::size_t i = 1; i < v.size(); ++i) {
        try {
            fn(v[i]);
        } catch (const Fault& f) {
            ctx.warn("Error! In HydrResulFinalSub = " + fault_text(f));
        }
    }
}

// A value as the warnings print it: "########0.0###".
std::string warning_value(double v);

// The warnings of one line, in this order:
//   "Error! Line <name> in/out abs pressure less than 0."   PRES[1] or PRES[2] below -PATM
//   "Warning! Line <name> pressure drop exceeds 40% of inlet."   a line with vapour whose
//       |PRES[1] - PRES[2]| exceeds 0.4 of the absolute inlet pressure (the inlet of the flow)
//   "Warning! Line <name> dP/L exceeds maximum (kPa/100m) = <SIZ[2]>"   |DPL| above SIZ[2]
//   "Warning! Line <name> velocity coef exceeds maximum (m/s) = <SIZ[6]/sqrt(rho)>"
//   "Warning! Line <name> velocity coef less than minimum (m/s) = <SIZ[7]/sqrt(rho)>"
//       the average velocity VEL[3] against the limits C / sqrt(TPROP[3])
//   "Warning! Line <name> inlet velocity exceeds maximum (m/s) = <SIZ[4]>", and "outlet"
//   "Error! Line <name> inlet velocity exceeds sonic velocity (m/s) = <VEL[4]>", and
//       "outlet", when the end velocity passes 1.001 times the sonic velocity; flagged
//   "Warning! Line <name> length less than elevation change."
// A limit of 0 (SIZ[2], SIZ[4], SIZ[6], SIZ[7]) is no limit, as it is for the sizing.
void warn_line(RunContext& ctx, Project& p, Line& l);

// "Warning! Choked flow through Feed <name>" (or "Product") when CHOKE is set; flagged.
void warn_feed(RunContext& ctx, const Project& p, Feed& f);
void warn_prod(RunContext& ctx, const Project& p, Prod& b);

// "Warning! Valve <name> has negative dP in direction of flow.", then
// "Warning! Valve <name> more than 100 % open." when OPEN[2] is above 100.
void warn_valve(RunContext& ctx, const Project& p, const Valve& v);

// "Warning! Flow orifice <name> has negative dP in direction of flow.", then
// "Warning! Flow orifice <name> inlet and outlet pipe IDs differ."
void warn_orifice(RunContext& ctx, const Project& p, const FO& fo);

// The levels of the case, heavy layer at the bottom, medium above it, light on top:
//   "Warning! Vessel <name> - Medium level below Heavy level." when the medium
//       layer has a density (LEVM[3] > 0) and its level lies below the heavy one;
//   "Warning! Vessel <name> - Light level below Medium/Heavy level." when the
//       light layer has a density and its level lies below either.
void warn_vessel(RunContext& ctx, const Vessel& v, int case_no);

// Every warning of the project after a case, kind by kind: lines, feeds,
// products, pumps, compressors, valves, check valves, orifices, exchangers,
// miscellaneous equipment, vessels, reducers and expanders, tees; each
// record's warnings in the order its routine gives (for_each_final).
void HydrResulWarnings(RunContext& ctx, Project& p, int case_no);

}  // namespace velm
