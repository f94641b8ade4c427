// The run's entry points for the passive items (tees, reducers and expanders,
// check valves, exchangers and miscellaneous equipment): their refresh between
// iterations and their warnings after a case. The coefficients themselves are
// in correlations/tee_expander.
//
// Every routine guards its line numbers (1..count(p.lines)) and allocates
// nothing on the refresh path.
#pragma once

#include <string_view>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// A connected line whose flow is below 1e-05 t/h either way gets exactly 0, so
// that the tee's balance row takes it with +-1 instead of 1/|W|.
void refresh_tee(RunContext& ctx, Project& p, Tee& t);

// CHOKE = -1 when the reducer or expander is choked (Expander_Reducer_choked),
// else 0; the coefficients K, DPP and TYPE are refreshed on the way.
void refresh_expander(RunContext& ctx, Project& p, Expand& e);

// Static pressure change between the nozzles of an exchanger or miscellaneous
// equipment, DPELEV (kPa): H * rho * 9.81 / 1000 with H = NOZO height - NOZI
// height (m) and rho the mean static-head density TPROP[4] of the two lines.
// When either line is not all liquid (LF[3] < 1) and the flow in the outlet
// line does not run uphill (sign(W) * sign(H) <= 0), H = 0: such a stream
// gets no static credit against its flow. 0 when a line is missing.
void refresh_nozzle_item(RunContext& ctx, Project& p, NozzleItem& e);

// Warnings after a case, for one record; name is the record's tag NAME[1],
// trimmed. Flow W is that of the inlet line. Each goes to the run log and to
// the case's warnings (RunContext::warn).
//   "<words><name> has negative dP in direction of flow." when sign(W) * dP
//     < -1e-06 kPa, W the flow of line `inlet`;
void warn_negative_dP(RunContext& ctx, const Project& p, int inlet, double dP, std::string_view words, const Drawn& d);
//   "<words><name> inlet and outlet pipe IDs differ." when the two lines' ID
//     differ by more than 0.01 m.
void warn_bores_differ(RunContext& ctx, const Project& p, int inlet, int outlet, std::string_view words, const Drawn& d);
//   "Warning! Check valve <name> has negative dP in direction of flow."
//     when sign(W) * DP < -1e-06 kPa; then
//   "Warning! Check valve <name> inlet and outlet pipe IDs differ." when the
//     two lines' ID differ by more than 0.01 m.
void warn_check(RunContext& ctx, const Project& p, const Check& cv);
//   "Warning! Exchanger <name> has negative dP in direction of flow."
void warn_exchanger(RunContext& ctx, const Project& p, const HX& hx);
//   "Warning! Miscellaneous equip <name> has negative dP in direction of flow."
void warn_misc(RunContext& ctx, const Project& p, const Misc& m);
//   "Warning! Choked flow through expander <name>" when CHOKE is set.
void warn_expander(RunContext& ctx, const Expand& e);
//   "Error! Tee <name> manifold pipe IDs differ." when the lines of the
//   combined and main legs (C[2], M[2] of the last Tee_W2) differ in ID by
//   more than 0.01 m.
void warn_tee(RunContext& ctx, const Project& p, const Tee& t);

}  // namespace velm
