#include "model/number_format.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace velm {
namespace {

TEST(NumberFormat, PatternsAgainstHandWorkedValues) {
    struct Row { const char* pattern; double value; const char* expected; };
    const Row rows[] = {
        // Optional decimals, thousands groups.
        {"#,##0.0##", 1234.5678, "1,234.568"}, {"#,##0.0##", 0.5, "0.5"}, {"#,##0.0##", 1234567.0, "1,234,567.0"},
        {"#,##0.0##", -1234.5, "-1,234.5"}, {"#,##0", 1e15, "1,000,000,000,000,000"}, {"###,##0", 999.5, "1,000"},
        {"###,##0", 0.4, "0"}, {"###0", 1234567.0, "1234567"}, {"###,##0.0#", 12.345, "12.35"},
        {"########0.0###", 0.000049, "0.0"}, {"########0.0###", 0.00005, "0.0001"},
        {"########0.0###", 123456789.0, "123456789.0"}, {"0.0#", 3.0, "3.0"}, {"#.##", 0.5, ".5"},
        // Half away from zero on the decimal digits, not on the binary value.
        {"0.00", 2.675, "2.68"}, {"0.00", -2.675, "-2.68"}, {"0.00", 1.005, "1.01"}, {"0", 0.5, "1"},
        {"0", 2.5, "3"}, {"0", -0.5, "-1"}, {"0.0", 0.05, "0.1"}, {"0.000", 0.0123, "0.012"}, {"0.0", 9.96, "10.0"},
        {"#,##0.0##", -0.00004, "0.0"},  // a value that rounds to zero has no sign
        // Scientific: "E-" signs only a negative exponent, "E+" always.
        {"0.00E-##", 0.000123456, "1.23E-04"}, {"0.00E-##", 123456.0, "1.23E05"}, {"0.00E-##", 999600.0, "1.00E06"},
        {"0.00E-##", 0.0, "0.00E00"}, {"0.00E-##", -0.0015, "-1.50E-03"}, {"0.0##E-##", 1234567.0, "1.235E06"},
        {"0.0##E-##", 1e6, "1.0E06"}, {"0.0##E-##", 1.5e-120, "1.5E-120"}, {"0.0E+00", 0.00042, "4.2E-04"},
        {"0.0E+00", 42.0, "4.2E+01"},
        {"0.0 %", 12.34, "12.3 %"},  // text around the digits stands as it is
    };
    for (const auto& r : rows) EXPECT_EQ(format_number(r.value, r.pattern), r.expected) << r.pattern << " " << r.value;
}

TEST(NumberFormat, DisplayLocaleReading) {
    struct Row { const char* text; bool is_number; double locale_value; double display_value; };
    const Row rows[] = {
        {"1,000.5", true, 1000.5, 1000.5},
        {" 2.5 ", true, 2.5, 2.5},
        {"-1e-05", true, -1e-05, -1e-05},
        {"1,5", true, 15.0, 15.0},  // the comma is a thousands separator here
        {"12abc", false, 0.0, 12.0},
        {"abc", false, 0.0, 0.0},
        {"", false, 0.0, 0.0},
    };
    for (const auto& r : rows) {
        const auto v = read_locale_number(r.text);
        EXPECT_EQ(v.has_value(), r.is_number) << r.text;
        if (v) {
            EXPECT_DOUBLE_EQ(*v, r.locale_value) << r.text;
        }
        EXPECT_DOUBLE_EQ(read_display_number(r.text), r.display_value) << r.text;
    }
}

}  // namespace
}  // namespace velm
