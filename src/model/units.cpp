#include "model/units.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/number_format.hpp"
#include "model/records.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

struct UnitFactor {
    std::string_view name;
    double factor;  // units per internal unit
};

// Factors per internal unit (m, kg/m3, kPa/100m, m/s, kPa, kmol/h, kW, kJ/kg,
// kJ/kg/K, kJ/h, kJ/h/K, W/m2/K, W/m/K). They are the conversion factors of
// NIST Special Publication 811 (2008), Appendix B, kept rounded to the figures
// shown so that a displayed value reads the same in every release. Gauge and
// absolute names share a factor. "Cm/s" and "Cft/s" are the coefficient C of
// a velocity limit C / sqrt(density), whose value in ft/s with lb/ft3 is 0.82
// of the value in m/s with kg/m3.
constexpr UnitFactor kUnitFactors[] = {
    {"ft", 1.0 / 0.3048},       {"in", 1000.0 / 25.4},       {"m", 1.0},
    {"mm", 1000.0},             {"kg/m3", 1.0},              {"lb/ft3", 0.062428},
    {"kPa/100m", 1.0},          {"psi/100ft", 0.0442075},    {"bar/100m", 0.01},
    {"m/s", 1.0},               {"ft/s", 3.28084},           {"m/min", 60.0},
    {"fpm", 196.8504},          {"ft/min", 196.8504},        {"km/h", 3.6},
    {"miles/h", 2.236936292},   {"Cm/s", 1.0},               {"Cft/s", 0.82},
    {"kPag", 1.0},              {"kPa", 1.0},                {"barg", 0.01},
    {"bar", 0.01},              {"kg/cm2g", 0.0101972},      {"kg/cm2", 0.0101972},
    {"mmHg", 7.5006},           {"Pag", 1000.0},             {"Pa", 1000.0},
    {"psig", 0.145038},         {"psi", 0.145038},           {"atm", 0.0098692327},
    {"inH2O", 4.014742},        {"mmH2O", 101.97445},        {"kmol/h", 1.0},
    {"lbmol/h", 2.204623},      {"kW", 1.0},                 {"Hp", 1.341022},
    {"kJ/kg", 1.0},             {"Btu/lb", 0.42992264},      {"kJ/kg/K", 1.0},
    {"kJ/kg/C", 1.0},           {"Btu/lb/F", 0.2388459},     {"Btu/lb/R", 0.2388459},
    {"kJ/h", 1.0},              {"GJ/h", 1e-06},             {"Btu/h", 0.94781712},
    {"MMBtu/h", 9.4781712e-07}, {"kJ/h/K", 1.0},             {"kJ/h/C", 1.0},
    {"Btu/h/F", 0.52656},       {"Btu/h/R", 0.52656},        {"W/m2/K", 1.0},
    {"Btu/h/ft2/F", 0.17611},   {"W/m/K", 1.0},              {"Btu/h/ft/F", 0.5778},
};

struct FlowFactor {
    std::string_view name;
    double factor;  // per t/h; divided by D when per_D
    bool per_D;
};

// Flow units per t/h (NIST SP 811 factors, rounded as shown). Volume units
// are divided by the density D in kg/m3; standard volume units by the
// molecular weight D, through a molar volume of 22.41 m3/kmol (normal:
// 0 C, 101.325 kPa), 23.64 m3/kmol (standard: 15 C) and about 379.6 ft3/lbmol
// (standard: 60 F).
constexpr FlowFactor kFlowFactors[] = {
    {"t/h", 1.0, false},         {"kg/h", 1000.0, false},         {"lb/h", 2204.623, false},
    {"t/d", 24.0, false},        {"klb/h", 2.204623, false},      {"klb/d", 52.910952, false},
    {"m3/h", 1000.0, true},      {"m3/min", 16.666667, true},     {"m3/s", 0.27777778, true},
    {"m3/d", 24000.0, true},     {"USGPM", 4402.868, true},       {"bpd", 150959.69, true},
    {"ft3/h", 35314.663, true},  {"ft3/min", 588.5778, true},     {"ft3/s", 9.809629, true},
    {"ft3/d", 847551.91, true},  {"Nm3/h", 22410.0, true},        {"Sm3/h", 23640.0, true},
    {"kNm3/d", 537.84, true},    {"kSm3/d", 567.36, true},        {"SCFM", 13947.8, true},
    {"SCFH", 836866.0, true},    {"10^3 SCFD", 20084.8, true},    {"MMSCFD", 20.0848, true},
};

std::string without(std::string_view s, std::string_view drop) {
    std::string r;
    for (char c : s)
        if (drop.find(c) == std::string_view::npos) r += c;
    return r;
}

// An entry rewritten in file form: the number its text starts with (number,
// when one) with a decimal point; an entry that does not start with a finite
// number stays as it stands, so that the checks before a run show it and
// refuse it.
std::string file_form(const std::string& entry, std::optional<double> number) {
    return number && std::isfinite(*number) ? number_text(*number) : entry;
}

// One number entry of a case string in the given mode; ff and ft are the
// factors of the two units (used for digits >= 0).
std::string convert_entry(const std::string& entry, double ff, double ft, int digits) {
    if (digits == kReadFileNumbers) return file_form(entry, leading_number_of(without(entry, ",")));
    if (digits == kReadEuropeanNumbers) {
        std::string t = without(entry, " .");
        std::replace(t.begin(), t.end(), ',', '.');
        return file_form(entry, leading_number_of(t));
    }
    if (digits == kWriteFileNumbers) {
        const auto v = read_locale_number(entry);
        return file_form(entry, v ? v : leading_number_of(entry));
    }
    const double v = read_display_number(entry);
    if (digits < 0) return number_text(v);
    const double converted = checked_div(checked(v * ft), ff);
    if (digits == 0) return number_text(converted);
    return format_number(converted, decimals_pattern(digits));
}

// Rebuilds a case string entry by entry: letters C, E, V in capitals, empty
// entries empty, each other entry through `number`.
template <class F>
std::string map_case_entries(std::string_view text, F number) {
    std::string out;
    const int n = case_count(text);
    for (int i = 1; i <= n; ++i) {
        const std::string entry = getting_case_data(text, i);
        const std::string cap = upper(entry);
        if (cap == "C" || cap == "E" || cap == "V") out += cap;
        else if (!cap.empty()) out += number(entry);
        if (i < n) out += ';';
    }
    return out;
}

}  // namespace

void SetUnits(DisplayUnits& u, const Header& gen) {
    const std::string set = trim(gen.UNITS);
    if (set == "British") {
        u = DisplayUnits{.set = "British",
                         .length = "ft",
                         .diameter = "in",
                         .mass_flow = "lb/h",
                         .liquid_volume_flow = "USGPM",
                         .gas_volume_flow = "ft3/min",
                         .molar_flow = "lbmol/h",
                         .density = "lb/ft3",
                         .temperature = "F",
                         .pressure = "psig",
                         .head = "ft",
                         .gradient = "psi/100ft",
                         .velocity = "ft/s",
                         .power = "Hp",
                         .enthalpy = "Btu/lb",
                         .heat_capacity = "Btu/lb/F",
                         .duty = "MMBtu/h",
                         .duty_per_degree = "MMBtu/h/F",
                         .heat_transfer_coefficient = "Btu/h/ft2/F",
                         .conductivity = "Btu/h/ft/F"};
    } else if (set == "Custom") {
        // The heat transfer coefficient and conductivity have no custom
        // entry: they stay as the set before left them.
        u.set = "Custom";
        u.length = gen.UNITS1[1];
        u.diameter = gen.UNITS1[2];
        u.mass_flow = gen.UNITS1[3];
        u.liquid_volume_flow = gen.UNITS1[4];
        u.gas_volume_flow = gen.UNITS1[5];
        u.molar_flow = gen.UNITS1[6];
        u.density = gen.UNITS2[1];
        u.temperature = gen.UNITS2[2];
        u.pressure = gen.UNITS2[3];
        u.head = gen.UNITS2[4];
        u.gradient = gen.UNITS2[5];
        u.velocity = gen.UNITS2[6];
        u.power = gen.UNITS3[1];
        u.enthalpy = gen.UNITS3[2];
        u.heat_capacity = gen.UNITS3[3];
        u.duty = gen.UNITS3[4];
        u.duty_per_degree = gen.UNITS3[5];
    } else {
        u = DisplayUnits{};
    }
}

void set_custom_unit_defaults(Header& gen) {
    gen.UNITS1 = {"", "m", "m", "t/h", "m3/h", "m3/h", "kmol/h"};
    gen.UNITS2 = {"", "kg/m3", "C", "kPag", "m", "kPa/100m", "m/s"};
    gen.UNITS3 = {"", "kW", "kJ/kg", "kJ/kg/K", "kJ/h", "kJ/h/K"};
}

double get_units(RunContext& ctx, std::string_view name) {
    const std::string t = trim(name);
    if (t.empty()) return 1.0;
    for (const auto& u : kUnitFactors)
        if (u.name == t) return u.factor;
    return get_units(ctx, t, 1.0);
}

namespace {
constexpr PressureWord kPressureWords[] = {
    {"kPa", false},    {"kPag", true}, {"bar", false},  {"barg", true},  {"Pa", false},
    {"Pag", true},     {"psi", false}, {"psig", true},  {"kg/cm2", false}, {"kg/cm2g", true},
    {"atm", false},    {"mmHg", false}, {"inH2O", false}, {"mmH2O", false},
};
}  // namespace

const PressureWord* pressure_word(std::string_view word) {
    for (const PressureWord& w : kPressureWords)
        if (word == w.name) return &w;
    if (word.size() > 1 && word.back() == 'a') {
        const PressureWord* w = pressure_word(word.substr(0, word.size() - 1));
        if (w != nullptr && !w->gauge) return w;
    }
    return nullptr;
}

std::string pressure_word_list() {
    std::string list;
    for (const PressureWord& w : kPressureWords) list += (list.empty() ? "" : ", ") + std::string(w.name);
    return list;
}

bool is_known_unit(std::string_view name) {
    const std::string t = trim(name);
    if (t.empty()) return true;
    for (const auto& u : kUnitFactors)
        if (u.name == t) return true;
    for (const auto& u : kFlowFactors)
        if (u.name == t) return true;
    return false;
}

std::vector<std::string> unknown_custom_units(const Header& gen) {
    std::vector<std::string> unknown;
    if (trim(gen.UNITS) != "Custom") return unknown;
    const auto check = [&](const std::string& name, bool temperature) {
        const bool known = temperature ? name == "C" || name == "K" || name == "F" || name == "R" : is_known_unit(name);
        if (!known) unknown.push_back(name);
    };
    for (std::size_t i = 1; i < gen.UNITS1.size(); ++i) check(gen.UNITS1[i], false);
    for (std::size_t i = 1; i < gen.UNITS2.size(); ++i) check(gen.UNITS2[i], i == 2);
    for (std::size_t i = 1; i < gen.UNITS3.size(); ++i) check(gen.UNITS3[i], false);
    return unknown;
}

double get_units(RunContext& ctx, std::string_view name, double D) {
    const std::string t = trim(name);
    if (t.empty()) return 1.0;
    try {
        for (const auto& u : kFlowFactors) {
            if (u.name != t) continue;
            if (!u.per_D || D == 0.0) return u.per_D ? 1.0 : u.factor;
            return checked_div(u.factor, D);
        }
        ctx.log_error("Unknown units for " + t);
        return 0.0;
    } catch (const Fault& f) {
        ctx.log_error("Error! In getting units = " + fault_text(f));
        return 0.0;
    }
}

double UnitsTFunc(RunContext& ctx, double t, std::string_view from, std::string_view to) {
    // Celsius, Kelvin, Fahrenheit and Rankine: K = C + 273.15, F = 1.8 C + 32,
    // R = F + 459.67.
    try {
        if (from == to) return t;
        if (from == "C") {
            if (to == "K") return checked(t + 273.15);
            if (to == "F") return checked(1.8 * t + 32.0);
            if (to == "R") return checked(1.8 * t + 32.0 + 459.67);
        } else if (from == "K") {
            if (to == "C") return checked(t - 273.15);
            if (to == "F") return checked((t - 273.15) * 1.8 + 32.0);
            if (to == "R") return checked(1.8 * t);
        } else if (from == "F") {
            if (to == "C") return checked((t - 32.0) / 1.8);
            if (to == "K") return checked((t - 32.0) / 1.8 + 273.15);
            if (to == "R") return checked(t + 459.67);
        } else if (from == "R") {
            if (to == "C") return checked((t - 459.67 - 32.0) / 1.8);
            if (to == "K") return checked(t / 1.8);
            if (to == "F") return checked(t - 459.67);
        }
        return t;
    } catch (const Fault& f) {
        ctx.ui.tell("Error in UnitsTFunc= " + fault_text(f) + ". Press OK to resume.");
        return 0.0;
    }
}

std::string converting_units(RunContext& ctx, std::string_view text, std::string_view from, std::string_view to,
                             int digits) {
    try {
        double ff = 1.0, ft = 1.0;
        if (digits >= 0) {
            ff = get_units(ctx, from);
            ft = get_units(ctx, to);
        }
        return map_case_entries(text, [&](const std::string& entry) { return convert_entry(entry, ff, ft, digits); });
    } catch (const Fault& f) {
        ctx.log_error("Error! In converting units = " + fault_text(f));
        return "";
    }
}

std::string decimals_pattern(int digits) {
    return "#,##0.0" + std::string(static_cast<std::size_t>(std::max(digits - 1, 0)), '#');
}

namespace {
// value * F(to) / F(from); a unit that is not known makes a fault of the division.
double scaled(RunContext& ctx, double value, std::string_view from, std::string_view to) {
    const double ff = get_units(ctx, from);
    const double ft = get_units(ctx, to);
    return checked_div(checked(value * ft), ff);
}
}  // namespace

double convert_value(RunContext& ctx, double value, std::string_view from, std::string_view to) {
    try {
        return scaled(ctx, value, from, to);
    } catch (const Fault& f) {
        ctx.log_error("Error! In getting units = " + fault_text(f));
        return 0.0;
    }
}

std::string convert_num(RunContext& ctx, double value, std::string_view from, std::string_view to, int digits) {
    try {
        return format_number(scaled(ctx, value, from, to), decimals_pattern(digits));
    } catch (const Fault& f) {
        ctx.log_error("Error! In getting units = " + fault_text(f));
        return "";
    }
}

std::string convert_fmt(RunContext& ctx, double value, std::string_view from, std::string_view to, int digits) {
    try {
        return FormatNum(scaled(ctx, value, from, to), digits, 9);
    } catch (const Fault& f) {
        ctx.log_error("Error! In getting units = " + fault_text(f));
        return "";
    }
}

std::string convert_fmt_case(RunContext& ctx, std::string_view text, std::string_view from, std::string_view to,
                             int digits) {
    try {
        const double ff = get_units(ctx, from);
        const double ft = get_units(ctx, to);
        return map_case_entries(text, [&](const std::string& entry) {
            return FormatNum(checked_div(checked(read_display_number(entry) * ft), ff), digits, 9);
        });
    } catch (const Fault& f) {
        ctx.log_error("Error! In getting units = " + fault_text(f));
        return "";
    }
}

std::string FormatNum(double value, int digits, int width) {
    // Powers of ten 1e-6 .. 1e4, exact as literals, for the thresholds below.
    static constexpr std::array<double, 11> kPow10 = {1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1.0, 1e1, 1e2, 1e3, 1e4};
    const auto p10 = [](int e) { return kPow10[static_cast<std::size_t>(e + 6)]; };
    if (!std::isfinite(value)) return "###";
    const int d = std::clamp(digits, 1, 5);
    const std::size_t w = static_cast<std::size_t>(std::max(width, 0));
    const double a = std::fabs(value);
    const auto fmt = [value](const char* pattern) { return format_number(value, pattern); };
    const auto cut = [w](std::string s) { return s.substr(0, w); };
    std::string r;
    if (a < 1e-35) {
        r = "0";
    } else if (a >= 1000000.0) {
        r = fmt("0.0##E-##");
    } else if (a >= p10(d - 1)) {
        r = fmt("###,##0");
        if (r.size() > w) r = fmt("###0");
    } else if (a >= p10(d - 2)) {
        r = fmt("###,##0.0");
        if (r.size() > w) r = fmt("###0");
    } else if (a >= p10(d - 3)) {
        r = fmt("###,##0.0#");
    } else if (a >= p10(d - 4)) {
        r = fmt("###,##0.00#");
    } else if (a >= p10(d - 5)) {
        r = cut(fmt("###,##0.000#"));
    } else if (a >= p10(d - 6) && d > 2) {
        r = cut(fmt("###,##0.0000#"));
    } else if (a >= p10(d - 7) && d > 3) {
        r = cut(fmt("###,##0.0000##"));
    } else {
        r = "0";
    }
    if (r.size() > w) r = "###";
    return r;
}

}  // namespace velm
