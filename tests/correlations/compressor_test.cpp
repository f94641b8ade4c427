#include "correlations/compressor.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

#include "model/project_file.hpp"

namespace velm {
namespace {

constexpr double g = 9.81;          // the program's head equations take g = 9.81 m/s2
constexpr double kR = 8314.462618;  // J/(kmol K), CODATA 2018
constexpr double kPatm = 101.325;

// A compressor C1 between a suction line 1 and a discharge line 2, one gas.
class CompressorTest : public ::testing::Test {
protected:
    CompressorTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        NewProject(p);          // PATM 101.325 kPa and the minimum slopes
        p.lines.resize(3);
        p.comps.resize(2);
        comp() = p.comps[0];
        comp().NAME[1] = "C1";
        comp().CON = {0, 1, 2};
    }

    Comp& comp() { return p.comps[1]; }

    // The far ends of the lines carry nothing: only the ends at the compressor may be read.
    void gas(double W, double rho, double k) {
        for (std::size_t i : {1, 2}) {
            p.lines[i].TFLOW.value = W;
            p.lines[i].LF = {0.0, 0.0, 0.0, 0.0};
            p.lines[i].TPROP = {0.0, rho, rho, rho, rho, 0.0, 0.01};
            p.lines[i].VAPK = {0.0, k, k};
            p.lines[i].TPROP[i] = p.lines[i].VAPK[i] = 0.0;
        }
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

// Head against H = Z R T1 / MW * n / (n - 1) * ((P2/P1)^((n-1)/n) - 1) / g with
// n the gas's k (n = 1: Z R T1 / MW * ln(P2/P1) / g); the rise from that head
// gives back the pressures; the suction volume is the real gas's.
TEST_F(CompressorTest, PolytropicHeadAgainstClosedForm) {
    struct Row {
        double T1, P1, P2, MW, Z, n, W;  // C, kPag, kPag, kg/kmol, -, -, t/h
    } rows[] = {{25.0, 0.0, 150.0, 28.96, 1.0, 1.4, 10.0},
                {40.0, 2000.0, 6500.0, 18.2, 0.93, 1.27, 85.0},
                {-20.0, 350.0, 1200.0, 44.01, 0.97, 1.3, 3.5},
                {60.0, 500.0, 900.0, 16.04, 0.99, 1.0, 20.0}};
    for (const Row& r : rows) {
        const double P1 = (r.P1 + kPatm) * 1000.0, ratio = (r.P2 + kPatm) / (r.P1 + kPatm);
        const double ZRT_MW = r.Z * kR * (r.T1 + 273.15) / r.MW;
        const double ln_or_power =
            r.n == 1.0 ? std::log(ratio) : r.n / (r.n - 1.0) * (std::pow(ratio, (r.n - 1.0) / r.n) - 1.0);
        const double H = ZRT_MW * ln_or_power / g;
        Comp& m = comp();
        m.PIN.value = r.P1;
        m.POUT.value = r.P2;
        gas(r.W, P1 / ZRT_MW, r.n);
        refresh_comp(ctx, p, m, 1, 1);
        EXPECT_NEAR(m.HQACT[1], H, 1e-9 * H) << r.MW;
        EXPECT_NEAR(comp_dP_from_head(ctx, p.gen, 1.0, H, r.P1, P1 / ZRT_MW, r.n), r.P2 - r.P1, 1e-9 * r.P2);
        EXPECT_NEAR(m.QACT.value, r.W * 1000.0 * ZRT_MW / P1, 1e-9 * m.QACT.value);
        EXPECT_NEAR(m.PRAT.value, ratio, 1e-12);
    }
    EXPECT_EQ(ctx.run_log_text, "");
}

// A volume flow specification: the row X - S * P_up = result holds at the mass
// flow of that volume at suction density, and the density follows the
// absolute suction pressure when the solver moves it.
TEST_F(CompressorTest, VolumeFlowRow) {
    struct Row {
        double v, rho, Pin, W;  // m3/h, kg/m3, kPag, t/h
    } rows[] = {{5000.0, 1.2, 0.0, 6.0}, {1200.0, 24.5, 2000.0, 30.0}, {800.0, 3.1, 150.0, -2.48}};
    for (const Row& r : rows) {
        Comp& m = comp();
        m.QACT.spec = std::to_string(r.v);
        m.PIN.value = m.POUT.value = r.Pin;
        gas(r.W, r.rho, 1.3);
        double S = 0.0;
        const double rhs = Comp_Vol_Flow(ctx, p, m, S, 1), mass = std::fabs(r.W) * r.v * r.rho / 1000.0;
        EXPECT_NEAR(S * r.Pin + rhs, mass, 1e-12 * mass);
        EXPECT_NEAR(S * (2.0 * r.Pin + 50.0) + rhs, mass * (kPatm + 2.0 * r.Pin + 50.0) / (kPatm + r.Pin), 1e-9 * mass);
    }
}

// Limits and bad input, told in the program's words.
TEST_F(CompressorTest, LimitsAndBadInput) {
    struct Row {
        std::function<void(Comp&)> set;
        std::function<double(Comp&)> value;
        double expected;
        std::string message;
    } rows[] = {
        // A small centrifugal machine: negative by the correlation, so 0.01.
        {[&](Comp&) { p.lines[1].TFLOW.value = 0.012; }, [&](Comp& m) { return comp_efficiency(ctx, m, 1); }, 0.01, ""},
        // Reciprocating at a ratio of exactly 1.8: the straight line.
        {[&](Comp& m) { m.TYPE = "Reciprocating"; p.gen.PATM = 100.0; m.POUT.value = 80.0; },
         [&](Comp& m) { return comp_efficiency_shaft(ctx, p.gen, m, 1); }, 0.57 + 0.13 * 1.8, ""},
        // One point: no head, and the minimum slope alone.
        {[](Comp& m) { m.DP.spec = "C"; m.HQ1 = 1; }, [&](Comp& m) { double C; Comp_dP13(ctx, p, m, C, 1); return C; },
         g * 10.0 / (2 * 10.0), "\r\nError! At least 2 point required for pump curve."},
        {[](Comp&) {}, [&](Comp&) { return comp_head(ctx, p.gen, 1.0, -500.0, 0.0, 1.2, 1.4); }, 0.0,
         "\r\nError! In comp head function= 5 : Invalid procedure call or argument"},
        {[&](Comp& m) { p.lines[2].LF[3] = 0.01; m.DP.value = -2.0; },
         [&](Comp& m) { comp_warnings(ctx, p, m); return 0.0; }, 0.0,
         "\r\nWarning! Compressor C1 has negative head in direction of flow."
         "\r\nError! Compressor C1 inlet or outlet has liquid fraction."},
    };
    for (const Row& r : rows) {
        ctx.run_log_text.clear();
        p.gen.PATM = kPatm;
        gas(10.0, 1.2, 1.4);
        Comp& m = comp();
        m = p.comps[0];
        m.NAME[1] = "C1";
        m.CON = {0, 1, 2};
        m.PIN.value = 0.0;
        m.POUT.value = 100.0;
        r.set(m);
        refresh_comp(ctx, p, m, 1, 1);
        EXPECT_NEAR(r.value(m), r.expected, 1e-12) << r.message;
        EXPECT_EQ(ctx.run_log_text, r.message);
    }
}

}  // namespace
}  // namespace velm
