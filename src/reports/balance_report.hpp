// The heat and mole balance report "resultm.rtf", in the manner of the
// hydraulic report (same document head, section heads and footer):
//   GENERAL        the project file, the components with their numbers and
//                  mole weights, the flash, K-value and enthalpy methods, the
//                  run message
//   STREAMS        one column per line end: temperature, pressure, vapour
//                  fraction, enthalpy, entropy, mole weights, densities,
//                  viscosities, heat capacities, conductivities, surface
//                  tension, Z, Cp/Cv and the mole fractions of each component
//   VESSELS        pressure, liquid fraction, vapour and liquid flows and the
//                  compositions of the two outlets
//   LINE HEAT      duty, overall coefficient, surface and ambient temperature
// Numbers in the project's display units.
#pragma once

#include <string>

#include "model/records.hpp"
#include "thermo/flash.hpp"

namespace velm {

struct RunContext;

// Appends the balance report of the case at position case_ix of CASENO (0
// for a balance-only run) to the file in ctx.data_dir: the rich text head
// when case_ix is 0 or 1. The run message is ctx.run_signal; hmb_error the
// balance's error of its last pass.
void WriteHMBReport(RunContext& ctx, const Project& p, const FlashSetup& setup, double hmb_error, int case_ix,
                    const std::string& file);

}  // namespace velm
