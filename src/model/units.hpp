// Display units, conversion factors and the conversion of numbers and case
// strings between internal and display units.
//
// A factor F(u) says how many u one internal unit makes: shown = internal *
// F(u); between two units, result = value * F(to) / F(from). Gauge and
// absolute pressures share a factor: no atmospheric pressure enters a factor.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velm {

struct RunContext;
struct Header;

// The unit shown for each quantity.
struct DisplayUnits {
    std::string set = "Metric";  // "Metric", "British" or "Custom"
    std::string length = "m";
    std::string diameter = "mm";
    std::string mass_flow = "kg/h";
    std::string liquid_volume_flow = "m3/h";
    std::string gas_volume_flow = "m3/h";
    std::string molar_flow = "kmol/h";
    std::string density = "kg/m3";
    std::string temperature = "C";
    std::string pressure = "kPag";
    std::string head = "m";
    std::string gradient = "kPa/100m";
    std::string velocity = "m/s";
    std::string power = "kW";
    std::string enthalpy = "kJ/kg";
    std::string heat_capacity = "kJ/kg/K";
    std::string duty = "GJ/h";
    std::string duty_per_degree = "kJ/h/K";
    std::string heat_transfer_coefficient = "W/m2/K";
    std::string conductivity = "W/m/K";
};

// Fills the display units from the header's set name (UNITS): "British",
// "Custom" (from UNITS1..UNITS3) or, for any other name, "Metric". The custom
// set has no heat transfer coefficient and conductivity: those keep the units
// of the set in force before.
void SetUnits(DisplayUnits& units, const Header& gen);

// The custom units of a new project: m, m, t/h, m3/h, m3/h, kmol/h; kg/m3, C,
// kPag, m, kPa/100m, m/s; kW, kJ/kg, kJ/kg/K, kJ/h, kJ/h/K.
void set_custom_unit_defaults(Header& gen);

// Factor of a unit, name trimmed and compared exactly; an empty name is 1. A
// name that is not a length, pressure, velocity or energy unit is looked up as
// a flow unit with density 1. Unknown: "Unknown units for <name>", 0.
double get_units(RunContext& ctx, std::string_view name);

// Pressure words of the unit table; a gauge word reads above the atmospheric
// pressure. An absolute word may also carry a closing "a" ("bara", "kPaa").
struct PressureWord {
    const char* name;
    bool gauge;
};
// The word's entry, or nullptr when it names no pressure.
const PressureWord* pressure_word(std::string_view word);
// The words of the table, separated by ", ", for messages.
std::string pressure_word_list();

// True when get_units knows the name (an empty name counts as known).
bool is_known_unit(std::string_view name);

// The custom units of a project whose set is "Custom" (UNITS1..UNITS3) that no
// conversion knows, in their order; the temperature must be "C", "K", "F" or
// "R". Empty for the other sets.
std::vector<std::string> unknown_custom_units(const Header& gen);
// Factor of a flow unit: D is the density (kg/m3) for a volume unit, the
// molecular weight for a standard volume unit; D = 0 gives 1.
double get_units(RunContext& ctx, std::string_view name, double D);

// Temperature between "C", "K", "F" and "R"; any other pair, or the same
// scale twice, returns the value as it stands. A fault (overflow) is logged
// and gives 0.
double UnitsTFunc(RunContext& ctx, double value, std::string_view from, std::string_view to);

// Number modes of converting_units below zero.
inline constexpr int kWriteFileNumbers = -1;      // display locale to file form
inline constexpr int kReadFileNumbers = -2;       // file form (thousands commas dropped)
inline constexpr int kReadEuropeanNumbers = -3;   // decimal comma, "." as thousands

// Converts every entry of a case string. digits >= 0: value * F(to) / F(from),
// all digits for 0, else "#,##0.0" with digits - 1 more "#". Negative digits
// rewrite the number only (modes above). Letters C, E, V and empty entries
// pass through. A fault gives "" and a run log line.
std::string converting_units(RunContext& ctx, std::string_view text, std::string_view from, std::string_view to,
                             int digits);

// value * F(to) / F(from); an unknown unit gives 0 and "Error! In getting
// units = " in the run log, after the lookup's own message.
double convert_value(RunContext& ctx, double value, std::string_view from, std::string_view to);

// value * F(to) / F(from) formatted "#,##0.0" with digits - 1 more "#".
std::string convert_num(RunContext& ctx, double value, std::string_view from, std::string_view to, int digits);
// value * F(to) / F(from) by FormatNum with width 9.
std::string convert_fmt(RunContext& ctx, double value, std::string_view from, std::string_view to, int digits);
// convert_fmt for each entry of a case string, keeping C, E, V and empty entries.
std::string convert_fmt_case(RunContext& ctx, std::string_view text, std::string_view from, std::string_view to,
                             int digits);

// A number for display with about `digits` (1..5) significant figures in at
// most `width` characters; "###" when it cannot fit.
std::string FormatNum(double value, int digits, int width);

// The display pattern "#,##0.0" followed by digits - 1 more "#".
std::string decimals_pattern(int digits);

}  // namespace velm
