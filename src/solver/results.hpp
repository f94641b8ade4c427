// Final results of a case.
#pragma once

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Runs once after the iteration of each case, converged or not. Fills the
// result fields: of each line the pressure gradient per 100 m, the average
// velocity, the equivalent length of the fittings, the neighbouring sizes and
// the flow regimes (a flagged line goes back to the normal colour first); the
// orifice bores, the valve openings and coefficients with their permanent
// loss, the pumps' NPSH. Then the warnings of the case (HydrResulWarnings).
//
// How the warnings reach the report: every warning and error of this routine
// goes through RunContext::warn, which writes it to the run log and keeps it
// in ctx.case_warnings, emptied here at the start. The run driver writes the
// case's report right after this routine, and the report prints that list
// under "WARNINGS & ERRORS". The list, not the log, is the report's source:
// the log buffer drops the message that triggers its flush to disk, and its
// text mixes the case's iteration progress with the warnings.
void HydrResulFinalSub(RunContext& ctx, Project& p, int case_no);

}  // namespace velm
