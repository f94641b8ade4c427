// Checks before a run and the start values of the iteration.
#pragma once

#include <string>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Refuses a drawing that cannot form a network: stops at the first fault,
// leaves its text in msg and flags the record.
void CheckConnectivity(Project& p, std::string& msg);
// Start values of a run: pressures, flows, roughness and friction factors
// (re-guessed on a fresh run, kept on a resumed one); bad values are reset.
void HydrInit(RunContext& ctx, Project& p);

}  // namespace velm
