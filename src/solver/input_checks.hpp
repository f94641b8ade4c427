// Checks of the values a run is given, before it starts: what no network can
// have (a negative length or viscosity, a temperature below absolute zero), a
// case string entry that is not a number, and case lists a run cannot take.
#pragma once

#include <string>

#include "model/records.hpp"

namespace velm {

// The most cases one run takes, and the highest case number.
inline constexpr int kMaxCases = 100;

// "" when CASENO lists at most kMaxCases entries, each empty (case 1) or a
// case number from 1 to kMaxCases; else the message that refuses it.
std::string check_case_list(const std::string& list);

// "" when each entry of CASERPT is a report code: -1 (heading only), 0 (all
// sections) or a mask of the report's sections; else the message.
std::string check_report_codes(const std::string& list);

// "" when the project's values can be run, else the message that refuses
// them, naming the item, the field and the value.
std::string check_input_values(const Project& p);

}  // namespace velm
