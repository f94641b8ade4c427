// Final results of a case.
#pragma once

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Fills the result fields of the lines after the iteration of a case: the
// pressure gradient per 100 m, the average velocity and the equivalent length
// of the fittings.
void HydrResulFinalSub(RunContext& ctx, Project& p, int case_no);

}  // namespace velm
