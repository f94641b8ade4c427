#include "dialogs/check_input.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "model/text.hpp"

namespace velm {

namespace {

// A pressure unit's range, lower limit inclusive and upper exclusive, and
// its message (whose words round three of the limits).
struct PressureRange {
    const char* unit;
    double low, high;
    const char* message;
};

constexpr std::array<PressureRange, 6> kPressures{{
    {"barg", -1.01325, 1000.0, "Invalid Pressure (-1.01 to 1000 barg)."},
    {"kg/cm2g", -1.033, 1000.0, "Invalid Pressure (-1.033 to 1000 kg/cm2g)."},
    {"kPag", 0.0, 100000.0, "Invalid Pressure (-101 to 100 000 kPag)."},  // low: -PATM
    {"mmHg", -760.0, 100000.0, "Invalid Pressure (-760 to 100 000 mmHg)."},
    {"Pag", -101325.0, 100000000.0, "Invalid Pressure (-101 000 to 100 000 000 Pag)."},
    {"psig", -14.696, 100000.0, "Invalid Pressure (-14.7 to 100 000 psig)."},
}};

// Nominal pipe sizes a diameter field takes, inches.
constexpr std::array<double, 18> kNominalSizes{1, 1.5, 2, 3, 4, 6, 8, 10, 12, 14, 16, 18, 20, 24, 26, 28, 30, 36};

constexpr double kHuge = 1000000000.0;

std::string check_pressure(std::string_view unit, double v, double patm, std::string_view value) {
    for (const PressureRange& r : kPressures) {
        if (unit != r.unit) continue;
        const double low = unit == "kPag" ? -patm : r.low;
        return v >= low && v < r.high ? "" : r.message;
    }
    return invalid_input(value);
}

// The test of a numeric kind, or nothing when the kind or unit is not known.
std::optional<std::string> check_number(std::string_view kind, std::string_view unit, double v, double patm,
                                        std::string_view value) {
    const auto unless = [](bool good, const char* message) { return std::string(good ? "" : message); };
    if (kind == "Ratio") return unless(v >= 0.0 && v <= 1.0, "Invalid ratio (0 to 1).");
    if (kind == "Temp" && unit == "C") return unless(v >= -273.0 && v < kHuge, "Invalid input (-273 to 1000 000 000).");
    if (kind == "Temp" && unit == "F") return unless(v >= -460.0 && v < kHuge, "Invalid input (-460 to 1000 000 000).");
    if (kind == "Dia" && unit == "in")
        return unless(std::find(kNominalSizes.begin(), kNominalSizes.end(), v) != kNominalSizes.end(),
                      "Invalid nominal diameter.");
    if (kind == "Length" && (unit == "m" || unit == "ft"))
        return unless(v >= 0.0 && v < kHuge, "Invalid input (0 to 1000 000 000).");
    if (kind == "Elev" && (unit == "m" || unit == "ft"))
        return unless(v > -100000.0 && v < 100000.0, "Invalid input (-100 000 to 100 000).");
    if (kind == "Patm" && v < 0.0) return std::string("Invalid atmosperic pressure.");
    if (kind == "Pres" || kind == "Patm") return check_pressure(unit, v, patm, value);
    if (kind == "dP") return unless(std::abs(v) < kHuge, "Invalid dP (+-1000 000 000).");
    if (kind == "Flow") return unless(std::abs(v) < kHuge, "Invalid Input (+-1000 000 000).");
    if (kind == "Valve" && unit == "Cv") return unless(v >= 0.00001 && v < kHuge, "Invalid input (0.00001 to 1000 000 000).");
    if (kind == "Angle") return unless(v >= 0.0 && v <= 180.0, "Invalid angle (0 to 180).");
    return std::nullopt;
}

}  // namespace

std::string invalid_input(std::string_view value) {
    return "Error during input checking. Invalid input= " + std::string(value) + " .";
}

std::string CheckInput(std::string_view kind, std::string_view unit, std::string_view value, double patm) {
    if (kind == "Text") return value.find('"') == std::string_view::npos ? "" : "Invalid text entry (Dbl quotes not allowed).";
    const std::string text = trim(value);
    if (kind == "Method") {
        const std::optional<double> m = parse_number(text);
        return m && (*m == 1.0 || *m == 2.0 || *m == 3.0) ? "" : "Invalid method (1, 2 or 3).";
    }
    if (text.empty()) return "";
    const std::optional<double> v = parse_number(text);
    if (!v || !std::isfinite(*v)) return invalid_input(value);
    return check_number(kind, unit, *v, patm, value).value_or(invalid_input(value));
}

}  // namespace velm
