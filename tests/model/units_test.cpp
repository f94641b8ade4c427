#include "model/units.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {
namespace {

struct Fixture {
    RecordingInteraction ui;
    RunContext ctx{ui};
};

// Factors checked against conversions worked from the exact definitions
// (NIST SP 811, Appendix B): 1 ft = 0.3048 m, 1 in = 25.4 mm, 1 lb =
// 0.45359237 kg, 1 psi = 6.894757 kPa, 1 atm = 101.325 kPa, 1 Btu(IT) =
// 1.05505585 kJ, 1 hp = 745.6999 W, 1 US gal = 3.785411784 L, 1 bbl = 42 US gal;
// water columns at 4 C (1 inH2O = 249.082 Pa, 1 mmH2O = 9.80638 Pa). The
// factors are kept rounded, to 5 parts in 100000 at worst (bpd).
TEST(Units, FactorsAgreeWithTheDefinitions) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double lb = 0.45359237, ft = 0.3048, btu = 1.05505585;
    struct Row { const char* unit; double D; double expected; };
    const Row rows[] = {
        {"ft", nan, 1.0 / ft}, {"in", nan, 1.0 / 0.0254}, {"mm", nan, 1000.0}, {"  m  ", nan, 1.0}, {"", nan, 1.0},
        {"lb/ft3", nan, ft * ft * ft / lb}, {"psi/100ft", nan, (1.0 / 6.894757) * (100.0 * ft) / 100.0},
        {"ft/s", nan, 1.0 / ft}, {"ft/min", nan, 60.0 / ft}, {"fpm", nan, 60.0 / ft},
        {"miles/h", nan, 3600.0 / 1609.344}, {"psig", nan, 1.0 / 6.894757}, {"psi", nan, 1.0 / 6.894757},
        {"kPa", nan, 1.0}, {"barg", nan, 0.01}, {"kg/cm2g", nan, 1.0 / 98.0665}, {"atm", nan, 1.0 / 101.325},
        {"mmHg", nan, 760.0 / 101.325}, {"inH2O", nan, 1.0 / 0.249082}, {"mmH2O", nan, 1.0 / 0.00980638},
        {"Pag", nan, 1000.0}, {"lbmol/h", nan, 1.0 / lb}, {"Hp", nan, 1.0 / 0.7456999}, {"Btu/lb", nan, lb / btu},
        {"Btu/lb/F", nan, lb / btu / 1.8}, {"GJ/h", nan, 1e-6}, {"Btu/h", nan, 1.0 / btu},
        {"MMBtu/h", nan, 1e-6 / btu}, {"Btu/h/F", nan, 1.0 / btu / 1.8}, {"Btu/h/ft2/F", nan, 1.0 / 5.678263},
        {"Btu/h/ft/F", nan, 1.0 / 1.730735},
        // The flow table: mass flow, and volume flow per density ("m3/h"
        // through the first table has density 1).
        {"kg/h", nan, 1000.0}, {"lb/h", nan, 1000.0 / lb}, {"klb/d", nan, 24.0 / lb}, {"m3/h", nan, 1000.0},
        {"m3/h", 1000.0, 1.0}, {"m3/h", 0.0, 1.0}, {"m3/min", 500.0, 1000.0 / 500.0 / 60.0},
        {"USGPM", 1000.0, 1000.0 / 3.785411784 / 60.0},
        {"bpd", 850.0, 1000.0 / 850.0 * 24.0 / (42.0 * 0.003785411784)},
        {"ft3/min", 2.0, 1000.0 / 2.0 / (ft * ft * ft) / 60.0}, {"Nm3/h", 28.0, 1000.0 / 28.0 * 22.41},
        {"MMSCFD", 16.0, 20.0848 / 16.0},
    };
    for (const auto& r : rows) {
        Fixture f;
        const double got = std::isnan(r.D) ? get_units(f.ctx, r.unit) : get_units(f.ctx, r.unit, r.D);
        EXPECT_NEAR(got, r.expected, 5e-5 * r.expected) << r.unit << " D=" << r.D;
        EXPECT_TRUE(f.ui.told.empty()) << r.unit;
    }
}

TEST(Units, UnknownNamesAreToldAndGiveZero) {
    struct Row { const char* unit; bool in_run; const char* told; const char* run_log; };
    const Row rows[] = {
        {"MMBtu/h/F", false, "Unknown units for MMBtu/h/F\r\nPress OK to resume.", ""},
        {"kPaa", false, "Unknown units for kPaa\r\nPress OK to resume.", ""},
        {" KPAG ", false, "Unknown units for KPAG\r\nPress OK to resume.", ""},  // compared exactly
        {"kPaa", true, "", "\r\nUnknown units for kPaa"},
    };
    for (const auto& r : rows) {
        Fixture f;
        f.ctx.run_active = r.in_run;
        EXPECT_EQ(get_units(f.ctx, r.unit), 0.0) << r.unit;
        EXPECT_EQ(f.ui.told.empty() ? "" : f.ui.told.back(), r.told) << r.unit;
        EXPECT_EQ(f.ctx.run_log_text, r.run_log) << r.unit;
    }
    Fixture f;  // a density so small that the factor overflows
    EXPECT_EQ(get_units(f.ctx, "m3/h", 1e-320), 0.0);
    ASSERT_EQ(f.ui.told.size(), 1u);
    EXPECT_EQ(f.ui.told[0], "Error! In getting units = 6 : Overflow\r\nPress OK to resume.");
}

TEST(Units, TemperatureScales) {
    struct Row { double t; const char* from; const char* to; double expected; };
    const Row rows[] = {
        {100.0, "C", "C", 100.0},     {100.0, "C", "K", 373.15},    {100.0, "C", "F", 212.0},
        {0.0, "C", "R", 491.67},      {273.15, "K", "C", 0.0},      {300.0, "K", "F", 80.33},
        {100.0, "K", "R", 180.0},     {212.0, "F", "C", 100.0},     {32.0, "F", "K", 273.15},
        {32.0, "F", "R", 491.67},     {491.67, "R", "C", 0.0},      {180.0, "R", "K", 100.0},
        {491.67, "R", "F", 32.0},     {-40.0, "F", "C", -40.0},     {100.0, "C", "X", 100.0},
        {100.0, "c", "F", 100.0},  // names are compared exactly
    };
    Fixture f;
    for (const auto& r : rows) EXPECT_NEAR(UnitsTFunc(f.ctx, r.t, r.from, r.to), r.expected, 1e-9) << r.from << r.to;
    // Every pair there and back returns the value.
    const char* scales[] = {"C", "K", "F", "R"};
    for (const char* a : scales)
        for (const char* b : scales)
            EXPECT_NEAR(UnitsTFunc(f.ctx, UnitsTFunc(f.ctx, 57.3, a, b), b, a), 57.3, 1e-9) << a << b;
    EXPECT_TRUE(f.ui.told.empty());
    EXPECT_EQ(UnitsTFunc(f.ctx, 1e308, "C", "F"), 0.0);
    ASSERT_EQ(f.ui.told.size(), 1u);
    EXPECT_EQ(f.ui.told[0], "Error in UnitsTFunc= 6 : Overflow. Press OK to resume.");
}

TEST(Units, ConvertingCaseStrings) {
    struct Row { const char* text; const char* from; const char* to; int digits; const char* expected; };
    const Row rows[] = {
        {"10;C;;E", "kPag", "psig", 2, "1.45;C;;E"},
        {"100", "kPag", "psig", 0, "14.5038"},
        {"100", "m", "ft", 1, "328.1"},
        {"100;1000", "m", "ft", 3, "328.084;3,280.84"},
        {"1", "t/h", "kg/h", 1, "1,000.0"},
        {" c ; v ;e", "m", "ft", 2, "C;V;E"},
        {";", "m", "ft", 2, ";"},
        // Writing a file: display locale in, neutral form out.
        {"1,234.5;c;;7", "", "", kWriteFileNumbers, "1234.5;C;;7"},
        {"0.00001", "", "", kWriteFileNumbers, "1e-05"},
        // Reading a file: thousands commas dropped; an old European file:
        // points and blanks dropped, the comma is the decimal point.
        {"1,000.5", "", "", kReadFileNumbers, "1000.5"},
        {"1,000.5", "", "", kReadEuropeanNumbers, "1.0005"},
        {"1 234,5", "", "", kReadEuropeanNumbers, "1234.5"},
        // A number too small for a double is 0; text that does not start with
        // a finite number is kept as it stands, for the checks before a run
        // to refuse, and is written back so.
        {"12.5kPa;abc", "", "", kReadFileNumbers, "12.5;abc"},
        {"1e-400;-1E-999;nan;1e400", "", "", kReadFileNumbers, "0;-0;nan;1e400"},
        {"nan;1e400;2,5", "", "", kReadEuropeanNumbers, "nan;1e400;2.5"},
        {"nan;abc;1e400", "", "", kWriteFileNumbers, "nan;abc;1e400"},
    };
    for (const auto& r : rows) {
        Fixture f;
        EXPECT_EQ(converting_units(f.ctx, r.text, r.from, r.to, r.digits), r.expected) << r.text << " " << r.digits;
        EXPECT_TRUE(f.ui.told.empty()) << r.text;
    }
}

TEST(Units, ConvertingToOrFromAnUnknownUnit) {
    Fixture f;
    // The British duty per degree is in no table.
    EXPECT_EQ(converting_units(f.ctx, "5", "kJ/h/K", "MMBtu/h/F", 2), "0.0");
    ASSERT_EQ(f.ui.told.size(), 1u);
    EXPECT_EQ(f.ui.told[0], "Unknown units for MMBtu/h/F\r\nPress OK to resume.");

    Fixture g;
    g.ctx.run_active = true;
    EXPECT_EQ(converting_units(g.ctx, "5;C", "kPaa", "psig", 2), "");
    EXPECT_EQ(g.ctx.run_log_text, "\r\nUnknown units for kPaa\r\nError! In converting units = 11 : Division by zero");

    Fixture h;
    h.ctx.run_active = true;
    EXPECT_EQ(convert_num(h.ctx, 5.0, "kPaa", "psig", 2), "");
    EXPECT_EQ(convert_fmt(h.ctx, 5.0, "kPaa", "psig", 2), "");
    EXPECT_EQ(h.ctx.run_log_text,
              "\r\nUnknown units for kPaa\r\nError! In getting units = 11 : Division by zero"
              "\r\nUnknown units for kPaa\r\nError! In getting units = 11 : Division by zero");
}

TEST(Units, ConvertedNumbersForDisplay) {
    Fixture f;
    EXPECT_EQ(convert_num(f.ctx, 1234.5678, "m", "m", 3), "1,234.568");
    EXPECT_EQ(convert_num(f.ctx, 0.0254, "m", "in", 1), "1.0");
    EXPECT_EQ(convert_num(f.ctx, 2.0, "m", "m", 0), "2.0");
    EXPECT_EQ(convert_fmt(f.ctx, 1234567.0, "", "", 3), "1.235E06");
    EXPECT_EQ(convert_fmt(f.ctx, 100.0, "kPag", "psig", 3), "14.5");
    EXPECT_EQ(convert_fmt_case(f.ctx, "100;C;;5;v", "kPag", "psig", 3), "14.5;C;;0.725;V");
    EXPECT_TRUE(f.ui.told.empty());
}

TEST(Units, FormatNumSignificantFiguresAndWidth) {
    struct Row { double value; int digits; int width; const char* expected; };
    const Row rows[] = {
        {0.00001, 3, 9, "0"},  // below every threshold for 3 figures
        {1234567.0, 3, 9, "1.235E06"}, {1234567.0, 3, 5, "###"},  // a million and above: exponent form
        {0.0, 3, 9, "0"}, {1e-36, 3, 9, "0"}, {-0.00001, 3, 9, "0"}, {999999.9, 3, 9, "1,000,000"},
        {123456.7, 3, 9, "123,457"}, {123456.7, 3, 6, "123457"}, {123456.7, 3, 5, "###"},
        {-1234.5, 3, 9, "-1,235"}, {12.345, 3, 9, "12.3"}, {1.2345, 3, 9, "1.23"}, {0.12345, 3, 9, "0.123"},
        {0.012345, 3, 9, "0.0123"}, {0.012345, 3, 5, "0.012"}, {0.0012345, 3, 9, "0.00123"},
        {0.0012345, 2, 9, "0.0012"}, {0.0012345, 4, 9, "0.001235"}, {0.00012345, 4, 9, "0"},
        {1.23456, 9, 9, "1.2346"}, {1.23456, 0, 9, "1"},  // digits limited to 1..5
        {std::numeric_limits<double>::quiet_NaN(), 3, 9, "###"},
    };
    for (const auto& r : rows)
        EXPECT_EQ(FormatNum(r.value, r.digits, r.width), r.expected) << r.value << " " << r.digits << " " << r.width;
}

TEST(Units, DisplaySets) {
    Header gen;
    set_custom_unit_defaults(gen);
    gen.UNITS2[3] = "barg";
    DisplayUnits u;
    struct Step { const char* set; const char* name; const char* pressure; const char* duty_per_degree; const char* htc; };
    // The custom set keeps the heat transfer and conductivity units of the
    // set before it.
    const Step steps[] = {
        {"British", "British", "psig", "MMBtu/h/F", "Btu/h/ft2/F"},
        {"Custom", "Custom", "barg", "kJ/h/K", "Btu/h/ft2/F"},
        {"Metric", "Metric", "kPag", "kJ/h/K", "W/m2/K"},
        {"Custom", "Custom", "barg", "kJ/h/K", "W/m2/K"},
        {"SI", "Metric", "kPag", "kJ/h/K", "W/m2/K"},
    };
    for (const auto& s : steps) {
        gen.UNITS = s.set;
        SetUnits(u, gen);
        EXPECT_EQ(u.set, s.name) << s.set;
        EXPECT_EQ(u.pressure, s.pressure) << s.set;
        EXPECT_EQ(u.duty_per_degree, s.duty_per_degree) << s.set;
        EXPECT_EQ(u.heat_transfer_coefficient, s.htc) << s.set;
    }
    // Every unit of the three sets has a factor, but the temperatures (which
    // convert by UnitsTFunc) and the British duty per degree.
    for (const char* set : {"Metric", "British", "Custom"}) {
        gen.UNITS = set;
        SetUnits(u, gen);
        for (const std::string* name : {&u.length, &u.diameter, &u.mass_flow, &u.liquid_volume_flow,
                                        &u.gas_volume_flow, &u.molar_flow, &u.density, &u.pressure, &u.head,
                                        &u.gradient, &u.velocity, &u.power, &u.enthalpy, &u.heat_capacity, &u.duty,
                                        &u.duty_per_degree, &u.heat_transfer_coefficient, &u.conductivity}) {
            Fixture f;
            const double factor = get_units(f.ctx, *name);
            EXPECT_EQ(factor > 0.0, *name != "MMBtu/h/F") << set << " " << *name;
        }
    }
}

}  // namespace
}  // namespace velm
