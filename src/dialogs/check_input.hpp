// The one judge of a value typed into a dialog, asked by every dialog's OK
// before any record changes.
#pragma once

#include <string>
#include <string_view>

namespace velm {

// Empty when value (as typed) is good for the kind of field shown in unit,
// else the message to show: "Text" refuses a double quote; "Ratio" 0 to 1;
// "Temp" in C or F; "Dia" the nominal sizes of the pipe table in inches;
// "Length" and "Elev" in m or ft; "Pres" and "Patm" in barg, kg/cm2g, kPag
// (down to -patm, kPa), mmHg, Pag or psig, "Patm" never negative; "dP" and
// "Flow" below 1e9 in size; "Valve" a Cv; "Angle" 0 to 180; "Method" 1, 2 or
// 3. An empty value is good for every kind that reads a number. A kind or
// unit not known, or a number that does not read, gives "Error during input
// checking. Invalid input= " with the value and " .".
std::string CheckInput(std::string_view kind, std::string_view unit, std::string_view value, double patm = 101.325);

// CheckInput's words for a value that is no good for its field: "Error during
// input checking. Invalid input= " with the value and " .".
std::string invalid_input(std::string_view value);

}  // namespace velm
