// Checks of the values a run is given, before it starts: what no network can
// have (a negative length or viscosity, a temperature below absolute zero), a
// case string entry that is not a number, and case lists a run cannot take.
#pragma once

#include <string>

#include "model/records.hpp"

namespace velm {

// The most cases one run takes, and the highest case number.
inline constexpr int kMaxCases = 100;

// "" when the project's values can be run, else the message that refuses
// them, naming the item, the field and the value.
std::string check_input_values(const Project& p);

}  // namespace velm
