#include "thermo/srk.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/thermo/thermo_fixture.hpp"
#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"

namespace velm {
namespace {

using test::Thermo;

// Compressibility and ln phi against the independent SRK of
// tools/srk_reference.py (same critical constants, kij = 0). The closed-form
// root carries pi as 3.141592654, which puts about 2e-10 into Z and, through
// ln(Z - B) of a dense liquid, up to about 5e-8 into ln phi.
TEST(Srk, CompressibilityAndFugacityMatchTheReferenceTable) {
    const auto z_rows = test::srk_reference("Z");
    const auto phi_rows = test::srk_reference("PHI");
    ASSERT_EQ(z_rows.size(), 9u);
    ASSERT_EQ(phi_rows.size(), z_rows.size());
    for (std::size_t r = 0; r < z_rows.size(); ++r) {
        const auto& zr = z_rows[r];
        Thermo t(zr.ids);
        const Comps x = test::fractions(zr.x);
        const double A = SRK_Amix(t.ctx, zr.T, zr.P, x, t.setup.comps, t.setup.kij);
        const double B = SRK_Bmix(t.ctx, zr.T, zr.P, x, t.setup.comps);
        const double Z = SRK_Z(t.ctx, zr.phase, A, B);
        EXPECT_NEAR(Z, zr.values[0], 1e-9) << zr.system << " " << zr.T << " K " << zr.P << " kPa";

        std::vector<double> phi(t.setup.comps.size());
        EXPECT_NEAR(SRK_Fugacity(t.ctx, zr.phase, zr.T, zr.P, x, t.setup.comps, t.setup.kij, phi), Z, 1e-15);
        for (std::size_t i = 0; i < zr.ids.size(); ++i)
            EXPECT_NEAR(std::log(phi[i + 1]), phi_rows[r].values[i], 1e-7) << zr.system << " component " << i + 1;
        EXPECT_TRUE(t.log().empty());
    }
}

TEST(Srk, RootChoiceTakesSmallestPositiveForLiquidAndLargestForVapour) {
    struct Row { const char* what; double A, B; int phase; double expected; };
    // Z^3 - Z^2 + (A - B - B^2) Z - A B; the first pair has the roots -0.1, 0.2, 0.9.
    const double A3 = 0.01902502637316439, B3 = -0.9461222101321165;
    const Row rows[] = {
        {"three roots -0.1, 0.2, 0.9: the negative root is no liquid", A3, B3, kLiquid, 0.2},
        {"three roots -0.1, 0.2, 0.9", A3, B3, kVapor, 0.9},
        {"double root 0.5 (B = 0: Z (Z - 0.5)^2)", 0.25, 0.0, kVapor, 0.5},
        {"only real root negative: liquid", 1.0, -2.0, kLiquid, 1000000.0},
        {"only real root negative: vapour", 1.0, -2.0, kVapor, 0.0},
        {"ideal gas", 0.0, 0.0, kVapor, 1.0},
    };
    for (const Row& r : rows) {
        RecordingInteraction ui;
        RunContext ctx(ui);
        EXPECT_NEAR(SRK_Z(ctx, r.phase, r.A, r.B), r.expected, 1e-9) << r.what;
    }
    // Arithmetic that fails is no root: the fault travels to the flash that asked.
    RecordingInteraction ui;
    RunContext ctx(ui);
    EXPECT_THROW(SRK_Z(ctx, kVapor, std::nan(""), 0.01), Fault);
    Thermo t({});
    EXPECT_EQ(SRK_Z(t.ctx, 2, A3, B3), 0.0);
    EXPECT_EQ(t.log(), std::vector<std::string>{"Error! Unknown phase for Z. Return 0."});
}

TEST(Srk, MissingCriticalDataFallBackWithTheirMessages) {
    struct Row {
        const char* what;
        double (*fn)(RunContext&);
        double expected;
        const char* message;
    };
    static const auto comp = [](float tbp, float tc, float pc, float acc) {
        CompProp c;
        c.TBP = tbp;
        c.TC = tc;
        c.PC = pc;
        c.Acc = acc;
        return c;
    };
    const Row rows[] = {
        {"Tc from TBP", [](RunContext& c) { return Tred(c, 300.0, 400.0, 0.0); },
         300.0 / (2.7 * std::pow(400.0, 0.9)), "Warning! Critical temperature estimated."},
        {"Tc assumed", [](RunContext& c) { return Tred(c, 300.0, 0.0, 0.0); }, 0.6,
         "Error! Critical temperature missing. Assume 500 K."},
        {"Pc assumed", [](RunContext& c) { return Pred(c, 1000.0, 0.0); }, 0.2,
         "Error! Unknown critical pressure. Assume 50 bara."},
        {"Edmister acentric factor",
         [](RunContext& c) { return SRK_m(c, comp(231.11f, 369.83f, 4248.0f, 0.0f)); },
         0.48 + 1.574 * 0.16255 - 0.176 * 0.16255 * 0.16255, "Warning! Accentric factor estimated."},
        {"acentric factor assumed", [](RunContext& c) { return SRK_m(c, comp(0.0f, 369.83f, 4248.0f, 0.0f)); },
         0.48 + 1.574 * 0.3 - 0.176 * 0.09, "Error! Accentric factor missing. Assume 0.3"},
        {"alpha floored far above Tc",
         [](RunContext& c) { return SRK_Alpha(c, 5000.0, comp(231.11f, 369.83f, 4248.0f, 0.152f)); }, 1e-18,
         nullptr},
    };
    for (const Row& r : rows) {
        Thermo t({});
        // The Edmister estimate for propane is 0.1626 (published 0.152).
        EXPECT_NEAR(r.fn(t.ctx), r.expected, 2e-4 * std::abs(r.expected)) << r.what;
        if (r.message) EXPECT_EQ(t.log(), std::vector<std::string>{r.message}) << r.what;
        else EXPECT_TRUE(t.log().empty()) << r.what;
    }
}

TEST(Srk, VapourPressureByComponentKind) {
    Thermo t({test::kWater, test::kMethane, test::kPropane});
    const auto& c = t.setup.comps;
    CompProp estimated = c[3];
    estimated.AntA = estimated.AntB = 0.0f;
    CompProp bare;
    CompProp water_no_antoine = c[1];
    water_no_antoine.AntA = water_no_antoine.AntB = water_no_antoine.AntC = 0.0f;
    water_no_antoine.AntD = water_no_antoine.AntE = 0.0f;
    struct Row { const char* what; const CompProp& comp; double T, expected, tol; const char* message; };
    const Row rows[] = {
        {"water: IF97 saturation at 373.15 K", c[1], 373.15, Psat97(373.15) * 1000.0, 1e-12, nullptr},
        {"water above the critical point, no Antoine: exp(0)", water_no_antoine, 700.0, 1.0, 1e-12, nullptr},
        {"methane at its normal boiling point", c[2], 111.66, 101.325, 0.01, nullptr},
        {"propane at its normal boiling point", c[3], 231.11, 101.325, 0.01, nullptr},
        {"propane estimated: Pc at Tc", estimated, 369.83, 4248.0, 1e-6, "Warning! Vapor pressure estimated."},
        {"no data", bare, 300.0, 100.0, 0.0, "Error! Vapor pressure missing. Assume 1 bara."},
    };
    for (const Row& r : rows) {
        t.clear_log();
        EXPECT_NEAR(VapPres(t.ctx, r.T, r.comp), r.expected, r.tol * r.expected) << r.what;
        if (r.message) EXPECT_EQ(t.log(), std::vector<std::string>{r.message}) << r.what;
        else EXPECT_TRUE(t.log().empty()) << r.what;
    }
    CompProp pole;
    pole.AntA = 10.0f;
    pole.AntB = -1000.0f;
    pole.AntC = -250.0f;
    t.clear_log();
    EXPECT_EQ(VapPres(t.ctx, 250.0, pole), 0.0);
    EXPECT_EQ(VapPres(t.ctx, -1.0, c[2]), 0.0);
    EXPECT_EQ(t.log(), (std::vector<std::string>{"Error! Err = 11 : Division by zero",
                                                 "Error! Err = 5 : Invalid procedure call or argument"}));
}

TEST(Srk, KvaluesPhaseCountAndChecks) {
    Thermo t({test::kMethane, test::kPropane});
    const auto& comps = t.setup.comps;
    const auto& kij = t.setup.kij;
    std::vector<double> K(comps.size(), -1.0);
    const Comps none{};
    const Comps liquid = test::fractions({0.2, 0.8});
    const Comps vapour = test::fractions({0.9, 0.1});

    // Raoult's law: K = Psat / P, two phases while the mean Tr of x is below 1.
    EXPECT_EQ(Kvalues(t.ctx, 250.0, 1000.0, none, none, "Antoine", comps, kij, K), 2);
    EXPECT_NEAR(K[2], VapPres(t.ctx, 250.0, comps[2]) / 1000.0, 1e-15);
    EXPECT_EQ(Kvalues(t.ctx, 400.0, 1000.0, liquid, none, "ANTOINE", comps, kij, K), 1);

    // SRK: K = phiL / phiV of the two compositions.
    ASSERT_EQ(Kvalues(t.ctx, 250.0, 3000.0, liquid, vapour, "srk", comps, kij, K), 2);
    std::vector<double> phiL(comps.size()), phiV(comps.size());
    SRK_Fugacity(t.ctx, kLiquid, 250.0, 3000.0, liquid, comps, kij, phiL);
    SRK_Fugacity(t.ctx, kVapor, 250.0, 3000.0, vapour, comps, kij, phiV);
    EXPECT_NEAR(K[1], phiL[1] / phiV[1], 1e-12);
    // The same composition in both phases above the critical point: one root.
    EXPECT_EQ(Kvalues(t.ctx, 400.0, 3000.0, vapour, vapour, "SRK", comps, kij, K), 1);
    EXPECT_TRUE(t.log().empty());

    const std::vector<double> before = K;
    EXPECT_EQ(Kvalues(t.ctx, 250.0, 3000.0, liquid, vapour, "PR", comps, kij, K), 0);
    EXPECT_EQ(K, before);
    std::vector<double> short_K(2);
    EXPECT_EQ(Kvalues(t.ctx, 250.0, 3000.0, liquid, vapour, "SRK", comps, kij, short_K), 0);
    std::vector<double> short_phi(2);
    EXPECT_EQ(SRK_Fugacity(t.ctx, kLiquid, 250.0, 3000.0, liquid, comps, kij, short_phi), 0.0);
    EXPECT_EQ(t.log(), (std::vector<std::string>{"Error! Incorrect array sizes for K values.",
                                                 "Error! Incorrect array sizes for fugacity coefficients."}));
    // An empty composition has B = 0: the fugacity faults for the flash to trap.
    EXPECT_THROW(SRK_Fugacity(t.ctx, kVapor, 250.0, 3000.0, none, comps, kij, phiV), Fault);
}

TEST(Srk, PhaseCheckSettlesASinglePhase) {
    struct Row { const char* what; int comp; double T, P; const char* method; double expected; };
    const Row rows[] = {
        {"propane liquid", test::kPropane, 250.0, 1000.0, "SRK", 0.0},
        {"propane vapour beyond the spinodal", test::kPropane, 340.0, 300.0, "SRK", 1.0},
        {"methane above Tc: no spinodal", test::kMethane, 300.0, 5000.0, "SRK", 1.0},
        {"propane liquid, Z below 0.3", test::kPropane, 250.0, 1000.0, "ANTOINE", 0.0},
        {"propane vapour, Z above 0.3", test::kPropane, 340.0, 300.0, "Antoine", 1.0},
        {"unknown method", test::kPropane, 340.0, 300.0, "PR", 0.0},
    };
    for (const Row& r : rows) {
        Thermo t({r.comp});
        const Comps z = test::fractions({1.0});
        EXPECT_EQ(PhaseCheck(t.ctx, r.method, r.T, r.P, z, t.setup.comps, t.setup.kij), r.expected) << r.what;
    }
}

TEST(Srk, PolynomialRootsOfKnownPolynomials) {
    struct Cubic { const char* what; std::array<double, 4> a; int n; std::array<double, 3> roots; };
    const Cubic cubics[] = {
        {"(x - 1)(x - 2)(x - 4)", {-8.0, 14.0, -7.0, 1.0}, 3, {1.0, 2.0, 4.0}},
        {"(x + 0.1)(x - 0.2)(x - 0.9)", {0.018, 0.07, -1.0, 1.0}, 3, {-0.1, 0.2, 0.9}},
        {"x^3 - 8", {-8.0, 0.0, 0.0, 1.0}, 1, {2.0, 0, 0}},
        {"quadratic (x - 1)(x - 4)", {4.0, -5.0, 1.0, 0.0}, 2, {1.0, 4.0, 0}},
        {"linear 2x - 3", {-3.0, 2.0, 0.0, 0.0}, 1, {1.5, 0, 0}},
        {"quadratic without real roots", {1.0, 0.0, 1.0, 0.0}, 0, {0, 0, 0}},
    };
    for (const Cubic& c : cubics) {
        std::array<double, 3> roots{};
        int n = -1;
        CubicRoots(c.a, roots, n);
        ASSERT_EQ(n, c.n) << c.what;
        for (int k = 0; k < n; ++k) EXPECT_NEAR(roots[k], c.roots[k], 1e-9) << c.what;
    }

    struct Quartic { const char* what; std::array<double, 5> a; int n; std::array<double, 4> re; };
    const Quartic quartics[] = {
        {"(x - 1)(x - 2)(x - 3)(x - 4)", {24.0, -50.0, 35.0, -10.0, 1.0}, 4, {1.0, 2.0, 3.0, 4.0}},
        {"(x^2 - 4)(x^2 + 1)", {-4.0, 0.0, -3.0, 0.0, 1.0}, 2, {-2.0, 2.0, 0, 0}},
    };
    for (const Quartic& q : quartics) {
        RecordingInteraction ui;
        RunContext ctx(ui);
        std::array<double, 4> re{}, im{};
        int n = -1;
        QuarticRoots(ctx, q.a, re, im, n);
        ASSERT_EQ(n, q.n) << q.what;
        std::vector<double> real;
        for (int k = 0; k < 4; ++k)
            if (im[k] == 0.0) real.push_back(re[k]);
        std::sort(real.begin(), real.end());
        ASSERT_EQ(real.size(), static_cast<std::size_t>(n)) << q.what;
        for (int k = 0; k < n; ++k) EXPECT_NEAR(real[k], q.re[k], 1e-9) << q.what;
    }
    RecordingInteraction ui;
    RunContext ctx(ui);
    std::array<double, 4> re{}, im{};
    int n = -1;
    QuarticRoots(ctx, {1.0, 2.0, 3.0, 4.0, 0.0}, re, im, n);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(ui.told, std::vector<std::string>{"ERROR: NOT A QUARTIC EQUATION"});
}

TEST(Srk, MixtureHelpers) {
    Thermo t({test::kMethane, test::kWater});
    const auto& comps = t.setup.comps;
    EXPECT_NEAR(MixMW(test::fractions({0.25, 0.75}), comps), 0.25 * 16.043 + 0.75 * 18.015, 1e-5);
    EXPECT_TRUE(IsPureWater(test::fractions({0.0005, 0.9995}), comps));
    EXPECT_FALSE(IsPureWater(test::fractions({0.001, 0.999}), comps));
    EXPECT_EQ(SafeExp(1000.0), std::exp(200.0));
    EXPECT_EQ(SafeExp(-1000.0), std::exp(-200.0));
    EXPECT_EQ(Log10Safe(0.0), 1e-12);
    EXPECT_EQ(Log10Safe(1000.0), 3.0);
}

}  // namespace
}  // namespace velm
