#include "thermo/enthalpy.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/thermo/thermo_fixture.hpp"

namespace velm {
namespace {

using test::Thermo;

double ln_phi_mix(RunContext& ctx, int phase, double T, double P, const Comps& x, const FlashSetup& fs) {
    std::vector<double> phi(fs.comps.size());
    SRK_Fugacity(ctx, phase, T, P, x, fs.comps, fs.kij, phi);
    double g = 0.0;
    for (std::size_t i = 1; i < phi.size(); ++i) g += x[i] * std::log(phi[i]);
    return g;
}

double volume(RunContext& ctx, int phase, double T, double P, const Comps& x, const FlashSetup& fs) {
    const double A = SRK_Amix(ctx, T, P, x, fs.comps, fs.kij);
    const double B = SRK_Bmix(ctx, T, P, x, fs.comps);
    return SRK_Z(ctx, phase, A, B) * kGasConstant * T / P / MixMW(x, fs.comps);  // m3/kg
}

// The SRK departure and the entropy must agree with the fugacity
// coefficients and the volume by the exact relations of thermodynamics:
//   H - H_ig = -R T^2 d(sum x ln phi)/dT            (Gibbs-Helmholtz)
//   (dS/dP)_T = -(dV/dT)_P                          (Maxwell)
//   (dH/dT)_P = T (dS/dT)_P
// by central differences, with and without an interaction coefficient.
TEST(Enthalpy, SrkIsThermodynamicallyConsistentWithTheFugacities) {
    struct Row { const char* what; double T, P; std::vector<double> z; int phase; double kij; };
    const Row rows[] = {
        {"vapour", 300.0, 3000.0, {0.6, 0.4}, kVapor, 0.0},
        {"liquid", 200.0, 3000.0, {0.2, 0.8}, kLiquid, 0.0},
        {"vapour with kij", 300.0, 3000.0, {0.6, 0.4}, kVapor, 0.03},
        {"liquid with kij", 200.0, 3000.0, {0.2, 0.8}, kLiquid, 0.03},
    };
    for (const Row& r : rows) {
        Thermo t({test::kMethane, test::kPropane});
        t.setup.kij[1][2] = t.setup.kij[2][1] = r.kij;
        const auto& fs = t.setup;
        const Comps x = test::fractions(r.z);
        const double mw = MixMW(x, fs.comps);
        const auto H = [&](double T, double P) { return Enthalpy(t.ctx, "SRK", r.phase, T, P, x, fs.comps, fs.kij); };
        const auto S = [&](double T, double P) { return Entropy(t.ctx, "SRK", r.phase, T, P, x, fs.comps, fs.kij); };
        const double dT = 0.01, dP = 0.1;

        const double departure = H(r.T, r.P) - Enthalpy(t.ctx, "Ideal", kVapor, r.T, r.P, x, fs.comps, fs.kij);
        const double dg = (ln_phi_mix(t.ctx, r.phase, r.T + dT, r.P, x, fs) -
                           ln_phi_mix(t.ctx, r.phase, r.T - dT, r.P, x, fs)) / (2.0 * dT);
        EXPECT_NEAR(departure, -kGasConstant * r.T * r.T * dg / mw, 1e-4 * std::abs(departure) + 1e-6) << r.what;

        const double dSdP = (S(r.T, r.P + dP) - S(r.T, r.P - dP)) / (2.0 * dP);
        const double dVdT = (volume(t.ctx, r.phase, r.T + dT, r.P, x, fs) -
                             volume(t.ctx, r.phase, r.T - dT, r.P, x, fs)) / (2.0 * dT);
        EXPECT_NEAR(dSdP, -dVdT, 1e-4 * std::abs(dVdT)) << r.what;

        const double cp = (H(r.T + dT, r.P) - H(r.T - dT, r.P)) / (2.0 * dT);
        const double tdsdt = r.T * (S(r.T + dT, r.P) - S(r.T - dT, r.P)) / (2.0 * dT);
        EXPECT_NEAR(cp, tdsdt, 1e-5 * cp) << r.what;
        EXPECT_TRUE(t.log().empty()) << r.what;
    }
}

TEST(Enthalpy, IdealMethodIsIdealGasLessLatentHeat) {
    Thermo t({test::kMethane, test::kPropane});
    const auto& fs = t.setup;
    const Comps x = test::fractions({0.3, 0.7});
    const auto H = [&](int phase, double T, double P) {
        return Enthalpy(t.ctx, "ideal", phase, T, P, x, fs.comps, fs.kij);
    };
    EXPECT_EQ(H(kVapor, 250.0, 100.0), H(kVapor, 250.0, 5000.0));
    EXPECT_EQ(H(kLiquid, 400.0, 3000.0), H(kVapor, 400.0, 3000.0));  // above both critical temperatures
    const double latent = HeatVap(t.ctx, 250.0, x, fs.comps);
    EXPECT_NEAR(H(kVapor, 250.0, 3000.0) - H(kLiquid, 250.0, 3000.0), latent / MixMW(x, fs.comps), 1e-9);
    // Watson's correction is 1 at the normal boiling point.
    const Comps propane = test::fractions({0.0, 1.0});
    EXPECT_NEAR(HeatVap(t.ctx, fs.comps[2].TBP, propane, fs.comps), fs.comps[2].HVap, 1e-9 * fs.comps[2].HVap);
    // Entropy has no ideal branch: the SRK departure applies under both.
    EXPECT_EQ(Entropy(t.ctx, "Ideal", kLiquid, 250.0, 3000.0, x, fs.comps, fs.kij),
              Entropy(t.ctx, "SRK", kLiquid, 250.0, 3000.0, x, fs.comps, fs.kij));
    EXPECT_EQ(Enthalpy(t.ctx, "PR", kLiquid, 250.0, 3000.0, x, fs.comps, fs.kij), 0.0);
    EXPECT_TRUE(t.log().empty());
}

TEST(Enthalpy, Ws97GivesTheSteamTableValues) {
    // IAPWS R7-97(2012) Table 5: region 1 at 300 K, 3 MPa.
    struct Row { double water; std::vector<std::string> log; };
    const Row rows[] = {
        {1.0, {}},
        {0.9,
         {"Error! Stream not pure water with WS97 enthalpy method.",
          "Error! Stream not pure water with WS97 entropy method."}},
    };
    for (const Row& r : rows) {
        Thermo t({test::kWater, test::kMethane});
        const Comps x = test::fractions({r.water, 1.0 - r.water});
        const auto& fs = t.setup;
        EXPECT_NEAR(Enthalpy(t.ctx, "WS97", kLiquid, 300.0, 3000.0, x, fs.comps, fs.kij), 0.115331273e3, 1e-6);
        EXPECT_NEAR(Entropy(t.ctx, "ws97", kLiquid, 300.0, 3000.0, x, fs.comps, fs.kij), 0.392294792, 1e-8);
        EXPECT_EQ(t.log(), r.log);
    }
}

TEST(Enthalpy, MissingCpIsLoggedByEnthalpyOnly) {
    Thermo t({test::kMethane, test::kPropane});
    t.setup.comps[2].CpA = t.setup.comps[2].CpB = t.setup.comps[2].CpC = 0.0f;
    t.setup.comps[2].CpD = t.setup.comps[2].CpE = 0.0f;
    const Comps x = test::fractions({1.0, 0.0});  // logged even at a zero fraction
    const auto& fs = t.setup;
    Enthalpy(t.ctx, "SRK", kVapor, 300.0, 100.0, x, fs.comps, fs.kij);
    Enthalpy(t.ctx, "Ideal", kVapor, 300.0, 100.0, x, fs.comps, fs.kij);
    Entropy(t.ctx, "SRK", kVapor, 300.0, 100.0, x, fs.comps, fs.kij);
    EXPECT_EQ(t.log(), (std::vector<std::string>{"Error! No ideal Cp coefficients for comp = 2",
                                                 "Error! No ideal Cp coefficients for comp = 2"}));
}

TEST(Enthalpy, HeatCapacityRatio) {
    Thermo t({test::kMethane});
    const Comps x = test::fractions({1.0});
    // Methane, ideal gas at 300 K: Cp = 35.7 J/mol/K (NIST-JANAF), Cp/Cv = 1.303.
    EXPECT_NEAR(CpCv(t.ctx, "Ideal", 300.0, 100.0, x, t.setup.comps, t.setup.kij), 1.303, 0.004);
    // A Cp at or below R has no ratio.
    t.setup.comps[1].CpA = 5.0f;
    t.setup.comps[1].CpB = t.setup.comps[1].CpC = t.setup.comps[1].CpD = t.setup.comps[1].CpE = 0.0f;
    EXPECT_EQ(CpCv(t.ctx, "Ideal", 300.0, 100.0, x, t.setup.comps, t.setup.kij), 0.0);
}

}  // namespace
}  // namespace velm
