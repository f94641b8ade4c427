#include "thermo/transport.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace velm {
namespace {

constexpr double kUnchecked = std::numeric_limits<double>::quiet_NaN();

// The components of the reference table, in its column order: water, methane,
// propane, n-hexane, benzene, nitrogen, hydrogen, helium-4.
constexpr int kIds[] = {0, 10, 13, 15, 20, 27, 3, 2, 6, 0};
constexpr std::size_t kWater = 1, kMethane = 2, kHexane = 4, kNitrogen = 6;

struct Fixture {
    RecordingInteraction ui;
    RunContext ctx{ui};
    std::vector<CompProp> comps;
    std::vector<std::vector<double>> kij;

    Fixture() {
        GetCompData(ctx, CompLibrary{}, kIds, comps, kij);
        ctx.run_active = true;
    }
    std::vector<double> only(std::size_t i, double fraction = 1.0) const {
        std::vector<double> x(comps.size(), 0.0);
        x[i] = fraction;
        return x;
    }
    std::vector<std::string> log() const {
        std::vector<std::string> lines;
        for (std::size_t at = 0; (at = ctx.run_log_text.find("\r\n", at)) != std::string::npos;) {
            at += 2;
            lines.push_back(ctx.run_log_text.substr(at, ctx.run_log_text.find("\r\n", at) - at));
        }
        return lines;
    }
};

// Evaluates one routine of the reference table; extra is the uniform kij,
// the vapor density or PATM, as the table's header says.
double evaluate(Fixture& f, const std::string& routine, double T, double P, double extra, const std::vector<double>& x) {
    for (std::size_t i = 1; i < f.kij.size(); ++i)
        for (std::size_t j = 1; j < f.kij.size(); ++j) f.kij[i][j] = i == j ? 0.0 : extra;
    if (routine == "LiqDensity") return LiqDensity(f.ctx, T, P, x, f.comps, f.kij);
    if (routine == "LiqViscosity") return LiqViscosity(f.ctx, T, P, x, f.comps, extra);
    if (routine == "VapViscosity") return VapViscosity(f.ctx, T, P, x, extra, f.comps);
    if (routine == "VapZ") return VapZ(f.ctx, T, P, x, f.comps, f.kij);
    if (routine == "SurfTension") return SurfTension(f.ctx, T, P, x, f.comps);
    if (routine == "LiqConductivity") return LiqConductivity(f.ctx, T, P, x, f.comps);
    if (routine == "VapConductivity") return VapConductivity(f.ctx, T, P, x, f.comps);
    ADD_FAILURE() << "unknown routine " << routine;
    return 0.0;
}

// Rows of tests/data/transport_reference.csv: the published correlations
// worked independently (1e-9), IAPWS for nearly pure water, and measured
// values within the stated accuracy of each method.
TEST(Transport, AgreesWithTheReferenceTable) {
    std::ifstream in(VELM_TEST_DATA "/transport_reference.csv");
    ASSERT_TRUE(in) << "missing transport_reference.csv";
    Fixture f;
    ASSERT_EQ(f.comps.size(), 9u);
    ASSERT_TRUE(f.log().empty());
    int rows = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#' || line.rfind("routine", 0) == 0) continue;
        std::istringstream cells(line);
        std::vector<std::string> c;
        for (std::string cell; std::getline(cells, cell, ',');) c.push_back(cell);
        ASSERT_EQ(c.size(), 15u) << line;
        std::vector<double> x(9, 0.0);
        for (std::size_t i = 1; i <= 8; ++i) x[i] = std::stod(c[3 + i]);
        const double got = evaluate(f, c[0], std::stod(c[1]), std::stod(c[2]), std::stod(c[3]), x);
        const double expected = std::stod(c[12]);
        EXPECT_LE(std::abs(got / expected - 1.0), std::stod(c[13])) << line << "\n  got " << got;
        ++rows;
    }
    EXPECT_GT(rows, 150);
    EXPECT_TRUE(f.log().empty()) << f.ctx.run_log_text;
    EXPECT_TRUE(f.ui.told.empty());
}

// Missing data and impossible states: the documented default, in the
// program's exact words, and never a failure.
TEST(Transport, MissingDataGivesTheLoggedDefault) {
    struct Row {
        const char* what;
        std::function<double(Fixture&)> run;
        double expected;
        std::vector<std::string> log;
    };
    const auto no_visc = [](Fixture& f) { f.comps[kHexane].ViscType = 0; };
    const Row rows[] = {
        {"liquid viscosity without a correlation is 1.0 cP",
         [&](Fixture& f) { no_visc(f); return LiqViscosity(f.ctx, 300, 101.325, f.only(kHexane), f.comps); }, 1.0,
         {"Error! Liquid viscosity paramaters missing. Assume 1.0."}},
        {"the pressure correction stops at 1e100",
         [&](Fixture& f) { no_visc(f); return LiqViscosity(f.ctx, 300, 3e7, f.only(kHexane), f.comps); }, 1e100,
         {"Error! Liquid viscosity paramaters missing. Assume 1.0.",
          "Error! Liquid viscosity reduce to prevent overflow."}},
        {"vapor viscosity without ZC is 0.01 cP",
         [](Fixture& f) { f.comps[kMethane].ZC = 0; return VapViscosity(f.ctx, 300, 100, f.only(kMethane), 0.0, f.comps); },
         0.01, {"Error! Vapor visc parameters missing. Assume 0.01 cP."}},
        {"an absent component without data says nothing",
         [](Fixture& f) {
             f.comps[kMethane].ZC = 0;
             return VapViscosity(f.ctx, 300, 100, f.only(kNitrogen), 1.1232045670811, f.comps);
         },
         0.018047701790232594, {}},
        {"vapor viscosity without TC estimates it and defaults",
         [](Fixture& f) {
             f.comps[kMethane].TC = 0;
             auto y = f.only(kMethane, 0.5);
             y[kNitrogen] = 0.5;
             return VapViscosity(f.ctx, 300, 100, y, 0.0, f.comps);
         },
         kUnchecked, {"Warning! Critical temperature estimated.", "Error! Vapor visc parameters missing. Assume 0.01 cP."}},
        {"vapor viscosity without PC fails its dense-gas term",
         [](Fixture& f) { f.comps[kMethane].PC = 0; return VapViscosity(f.ctx, 300, 100, f.only(kNitrogen), 1.0, f.comps); },
         0.0, {"Error! Err = 11 : Division by zero"}},
        {"liquid density without LDen counts the others only",
         [](Fixture& f) {
             f.comps[kMethane].LDen = 0;
             auto x = f.only(kHexane);
             return LiqDensity(f.ctx, 298.15, 101.325, x, f.comps, f.kij);
         },
         656.1432987434068, {"Error! Liquid density paramaters missing for component = 2"}},
        {"liquid density without any data",
         [](Fixture& f) {
             CompProp bare = f.comps[kHexane];
             bare.ZC = bare.TC = bare.TBP = 0;
             f.comps = {CompProp{}, bare};
             return LiqDensity(f.ctx, 298.15, 101.325, f.only(1), f.comps, f.kij);
         },
         0.0,
         {"Error! Liquid density paramaters missing for component = 1",
          "Error! Liquid density paramaters missing for component = 1",
          "Error! Critical temperature missing. Assume 500 K.", "Error! Err = 11 : Division by zero"}},
        {"liquid density below the Tait pole keeps the saturated volume",
         [](Fixture& f) { return LiqDensity(f.ctx, 298.15, -1e6, f.only(kHexane), f.comps, f.kij); }, kUnchecked,
         {"Error! Correcting liquid density for pressure."}},
        {"water liquid density outside IAPWS-IF97",
         [](Fixture& f) { return LiqDensity(f.ctx, 300, 2e5, f.only(kWater), f.comps, f.kij); }, 0.0,
         {"Error! Calculating liquid density."}},
        {"water liquid viscosity outside IAPWS-IF97",
         [](Fixture& f) { return LiqViscosity(f.ctx, 300, 2e5, f.only(kWater), f.comps); }, 1.0,
         {"Error! Water liq visc unknown. Assume 1.0."}},
        {"water conductivity outside IAPWS-IF97",
         [](Fixture& f) { return LiqConductivity(f.ctx, 300, 2e5, f.only(kWater), f.comps); }, 1.0,
         {"Error! Water conductivity unknown. Assume 1.0."}},
        {"steam Z outside IAPWS-IF97",
         [](Fixture& f) { return VapZ(f.ctx, 400, 0.05, f.only(kWater), f.comps, f.kij); }, 1.0,
         {"Error! Vapor Z unknown. Assume 1."}},
        {"steam viscosity outside IAPWS-IF97",
         [](Fixture& f) { return VapViscosity(f.ctx, 400, 0.05, f.only(kWater), 0.0, f.comps); }, 0.01,
         {"Error! Steam visc unknown. Assume 0.01."}},
        {"steam conductivity outside IAPWS-IF97",
         [](Fixture& f) { return VapConductivity(f.ctx, 400, 0.05, f.only(kWater), f.comps); }, 0.1,
         {"Error! Steam conductivity unknown. Assume 0.1."}},
        {"surface tension above the pseudocritical temperature",
         [](Fixture& f) { return SurfTension(f.ctx, 600, 5000, f.only(kHexane), f.comps); }, 0.001, {}},
        {"surface tension without PC",
         [](Fixture& f) { f.comps[kHexane].PC = 0; return SurfTension(f.ctx, 300, 100, f.only(kHexane), f.comps); },
         0.0, {"Error! Err = 5 : Invalid procedure call or argument"}},
        {"vapor conductivity of an empty composition",
         [](Fixture& f) { return VapConductivity(f.ctx, 300, 100, std::vector<double>(9, 0.0), f.comps); }, 0.0,
         {"Error! Err = 11 : Division by zero"}},
        {"vapor Z at a NaN temperature",
         [](Fixture& f) { return VapZ(f.ctx, std::nan(""), 100, f.only(kMethane), f.comps, f.kij); }, 0.0,
         {"Error! Err = 5 : Invalid procedure call or argument"}},
    };
    for (const Row& r : rows) {
        Fixture f;
        const double got = r.run(f);
        if (!std::isnan(r.expected)) EXPECT_NEAR(got, r.expected, 1e-7 * std::abs(r.expected)) << r.what;
        else EXPECT_TRUE(std::isfinite(got) && got > 0.0) << r.what << ": " << got;
        EXPECT_EQ(f.log(), r.log) << r.what;
        EXPECT_TRUE(f.ui.told.empty()) << r.what;
    }
}

// Where the method changes: the water test at 0.999, the equation of state
// from 0.95 of the pseudocritical temperature, the clipped temperatures of
// the steam routines, and steam at 100 kPa for water in a vapor mixture.
TEST(Transport, SwitchesMethodAtItsBoundaries) {
    Fixture f;
    const auto& c = f.comps;
    auto water = [&](double w) {
        auto x = f.only(kWater, w);
        x[kMethane] = 1.0 - w;
        return x;
    };
    const double steam_k = LiqConductivity(f.ctx, 300, 500, f.only(kWater), c);
    EXPECT_EQ(LiqConductivity(f.ctx, 300, 500, water(0.9991), c), steam_k);
    EXPECT_LT(LiqConductivity(f.ctx, 300, 500, water(0.999), c), 0.5 * steam_k) << "a mixture at 0.999";

    const double tc = c[kHexane].TC;
    const double t95 = 0.95 * tc;
    ASSERT_EQ(t95 / tc, 0.95);
    const double at = LiqDensity(f.ctx, t95, 3000, f.only(kHexane), c, f.kij);
    const double above = LiqDensity(f.ctx, t95 * (1 + 1e-9), 3000, f.only(kHexane), c, f.kij);
    const double below = LiqDensity(f.ctx, t95 * (1 - 1e-9), 3000, f.only(kHexane), c, f.kij);
    EXPECT_NEAR(at, above, 1e-6 * above);
    EXPECT_GT(std::abs(at / below - 1.0), 0.02) << "the two branches meet at Tr 0.95 only by chance";

    struct Clip { const char* what; std::function<double(double)> fn; double hot, clipped; };
    const Clip clips[] = {
        {"liquid density", [&](double T) { return LiqDensity(f.ctx, T, 25000, f.only(kWater), c, f.kij); }, 700, 646.996},
        {"liquid viscosity", [&](double T) { return LiqViscosity(f.ctx, T, 25000, f.only(kWater), c); }, 700, 647.086},
        {"liquid conductivity", [&](double T) { return LiqConductivity(f.ctx, T, 25000, f.only(kWater), c); }, 700, 646.996},
        {"steam conductivity", [&](double T) { return VapConductivity(f.ctx, T, 25000, f.only(kWater), c); }, 700, 646.996},
        {"surface tension", [&](double T) { return SurfTension(f.ctx, T, 100, f.only(kWater), c); }, 700, 646.996},
        {"ice-cold liquid density", [&](double T) { return LiqDensity(f.ctx, T, 100, f.only(kWater), c, f.kij); }, 250, 273.16},
        {"ice-cold steam viscosity", [&](double T) { return VapViscosity(f.ctx, T, 0.5, f.only(kWater), 0, c); }, 250, 273.16},
    };
    for (const Clip& k : clips) {
        EXPECT_NEAR(k.fn(k.hot), k.fn(k.clipped), 1e-9 * k.fn(k.clipped)) << k.what;
        EXPECT_GT(k.fn(k.clipped), 0.0) << k.what;
    }

    auto y = water(0.2);
    EXPECT_EQ(VapViscosity(f.ctx, 400, 500, y, 3.0, c), VapViscosity(f.ctx, 400, 3000, y, 3.0, c));
    EXPECT_TRUE(f.log().empty()) << f.ctx.run_log_text;
}

}  // namespace
}  // namespace velm
