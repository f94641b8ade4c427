#include "correlations/compressor.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "correlations/pump.hpp"
#include "model/text.hpp"
#include "tests/correlations/machine_reference.hpp"

namespace velm {
namespace {

constexpr double g = 9.81;              // the program's head equations take g = 9.81 m/s2
constexpr double kR = 8314.462618;      // J/(kmol K), CODATA 2018
constexpr double kPatm = 101.325;

// A compressor C1 between a suction line 1 and a discharge line 2, one gas.
class CompressorTest : public ::testing::Test {
protected:
    CompressorTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = kPatm;
        p.gen.MPCURV = {0.0, -0.1, -10.0};
        p.lines.resize(3);
        p.comps.resize(2);
        Comp& m = comp();
        m.NAME[1] = "C1";
        m.TYPE = "Centrifugal";
        m.CON = {0, 1, 2};
        gas(10.0, 1.2, 1.4);
    }

    Comp& comp() { return p.comps[1]; }

    void gas(double W, double rho, double k) {
        machine_reference::through_lines(p, W, rho);
        for (std::size_t i : {1, 2}) {
            p.lines[i].LF = {0.0, 0.0, 0.0, 0.0};
            p.lines[i].VAPK = {0.0, k, k};
        }
    }

    std::string log() const { return ctx.run_log_text; }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

// Polytropic head against H = Z R T1 / MW * n / (n - 1) * ((P2/P1)^((n-1)/n) - 1) / g,
// n the gas's k (n = 1: Z R T1 / MW * ln(P2/P1) / g); the rise from that head
// returns the pressures; the suction volume is that of the real gas.
TEST_F(CompressorTest, PolytropicHeadAgainstClosedForm) {
    struct Row {
        double T1, P1, P2, MW, Z, n, W;  // C, kPag, kPag, kg/kmol, -, -, t/h
    } rows[] = {{25.0, 0.0, 150.0, 28.96, 1.0, 1.4, 10.0},   {40.0, 2000.0, 6500.0, 18.2, 0.93, 1.27, 85.0},
                {-20.0, 350.0, 1200.0, 44.01, 0.97, 1.3, 3.5}, {60.0, 500.0, 900.0, 16.04, 0.99, 1.0, 20.0},
                {30.0, 100.0, 101.0, 2.016, 1.0, 1.41, 0.8}};
    for (const Row& r : rows) {
        const double T = r.T1 + 273.15, P1 = (r.P1 + kPatm) * 1000.0, ratio = (r.P2 + kPatm) / (r.P1 + kPatm);
        const double rho = P1 * r.MW / (r.Z * kR * T);
        const double ZRT_MW = r.Z * kR * T / r.MW;
        const double H = (r.n == 1.0 ? ZRT_MW * std::log(ratio)
                                     : ZRT_MW * r.n / (r.n - 1.0) * (std::pow(ratio, (r.n - 1.0) / r.n) - 1.0)) / g;
        Comp& m = comp();
        m.PIN.value = r.P1;
        m.POUT.value = r.P2;
        gas(r.W, rho, r.n);
        refresh_comp(ctx, p, m, 1, 1);
        EXPECT_NEAR(m.HQACT[1], H, 1e-9 * H) << r.MW;
        EXPECT_NEAR(comp_dP_from_head(ctx, p.gen, 1.0, m.HQACT[1], r.P1, rho, r.n), r.P2 - r.P1, 1e-9 * (r.P2 - r.P1));
        EXPECT_NEAR(m.QACT.value, r.W * 1000.0 * ZRT_MW / P1, 1e-9 * m.QACT.value);
        EXPECT_NEAR(m.PRAT.value, ratio, 1e-12);
    }
    gas(10.0, 1.2, 0.0);  // no exponent: no head
    refresh_comp(ctx, p, comp(), 2, 1);
    EXPECT_EQ(comp().HQACT[1], 0.0);
    EXPECT_EQ(log(), "");
}

// On a head curve against a system rise a + b W^2, the solver's rows settle
// where the curve's rise (the closed-form inverse of the polytropic head)
// meets the system, found here by bisection.
TEST_F(CompressorTest, OperatingPointOnTheHeadCurve) {
    const std::vector<machine_reference::Point> curve = {{0, 9000}, {2000, 8900}, {4000, 8500}, {6000, 7600}, {8000, 6000}};
    const double rho = 1.2, n = 1.4;
    struct Row {
        double a, b;  // kPa, kPa per (t/h)^2
    } rows[] = {{50.0, 2.2}, {100.0, 0.5}, {0.0, 5.0}};
    for (const Row& r : rows) {
        Comp& m = comp();
        m.HQ1 = static_cast<int>(curve.size());
        for (std::size_t i = 0; i < curve.size(); ++i) {
            m.CURQ[i + 1] = number_text(curve[i].Q);
            m.CURH[i + 1] = number_text(curve[i].H);
        }
        m.DP.spec = "C";
        m.PIN.value = 0.0;
        double W = 1.0;
        for (int iter = 1; iter <= 100; ++iter) {
            gas(W, rho, n);
            refresh_comp(ctx, p, m, iter, 1);
            double C = 0.0;
            const double dP13 = Comp_dP13(ctx, p, m, C, 1);
            W = std::sqrt((dP13 - r.a) / (C + r.b));
        }
        const auto rise = [&](double w) {
            const double H = machine_reference::interpolate(curve, 1000.0 * w / rho);
            return kPatm * (std::pow(1.0 + g * H * rho * (n - 1.0) / (1000.0 * kPatm * n), n / (n - 1.0)) - 1.0);
        };
        const double root =
            machine_reference::bisect([&](double w) { return rise(w) - (r.a + r.b * w * w); }, 0.0, 8000.0 * rho / 1000.0);
        EXPECT_NEAR(W, root, 0.005 * root) << r.a << " kPa, " << r.b;
    }
    EXPECT_EQ(log(), "");
}

// A volume flow specification: the row X - S * P_up = result holds at the
// mass flow of that volume at suction density, and the density follows the
// absolute suction pressure when the solver moves it.
TEST_F(CompressorTest, VolumeFlowRow) {
    struct Row {
        double v, rho, Pin, W;  // m3/h, kg/m3, kPag, t/h
    } rows[] = {{5000.0, 1.2, 0.0, 6.0}, {1200.0, 24.5, 2000.0, 30.0}, {800.0, 3.1, 150.0, -2.48}};
    for (const Row& r : rows) {
        Comp& m = comp();
        m.QACT.spec = number_text(r.v);
        m.PIN.value = m.POUT.value = r.Pin;
        gas(r.W, r.rho, 1.3);
        double S = 0.0;
        const double rhs = Comp_Vol_Flow(ctx, p, m, S, 1);
        EXPECT_NEAR(S * r.Pin + rhs, std::fabs(r.W) * r.v * r.rho / 1000.0, 1e-12 * std::fabs(r.W) * r.v * r.rho);
        const double P_up = 2.0 * r.Pin + 50.0;
        EXPECT_NEAR(S * P_up + rhs, std::fabs(r.W) * r.v * r.rho / 1000.0 * (kPatm + P_up) / (kPatm + r.Pin),
                    1e-9 * std::fabs(r.W) * r.v * r.rho);
    }
}

// Efficiencies at their limits, and bad input told in the program's words.
TEST_F(CompressorTest, LimitsAndBadInput) {
    struct Row {
        std::function<void(Comp&, Project&)> set;
        std::function<double(Comp&)> value;
        double expected;
        std::string message;
    } rows[] = {
        // A small centrifugal machine: negative by the correlation, limited to 0.01.
        {[](Comp&, Project& q) { q.lines[1].TFLOW.value = 0.012; }, [&](Comp& m) { return comp_efficiency(ctx, m, 1); }, 0.01,
         ""},
        // Reciprocating: the ratio counts the same either way, and the two
        // branches meet at r = 1.8.
        {[](Comp& m, Project&) { m.TYPE = "Reciprocating"; m.PIN.value = 3 * kPatm - kPatm; m.POUT.value = 0.0; },
         [&](Comp& m) { return comp_efficiency_shaft(ctx, p.gen, m, 1); }, 0.926 - 0.5 / std::pow(3.0, 2.4), ""},
        {[](Comp& m, Project& q) { m.TYPE = "Reciprocating"; q.gen.PATM = 100.0; m.PIN.value = 0.0; m.POUT.value = 80.0; },
         [&](Comp& m) { return comp_efficiency_shaft(ctx, p.gen, m, 1); }, 0.57 + 0.13 * 1.8, ""},
        {[](Comp& m, Project&) { m.DP.spec = "C"; m.HQ1 = 1; m.CURQ[1] = "100"; m.CURH[1] = "5000"; },
         [&](Comp& m) { double C; Comp_dP13(ctx, p, m, C, 1); return C; }, g * 10.0 / (2 * 10.0),
         "\r\nError! At least 2 point required for pump curve."},
        {[](Comp&, Project& q) { q.lines[1].TPROP[2] = 0.0; }, [](Comp& m) { return m.HQACT[1] + m.QACT.value; }, 0.0, ""},
        {[](Comp&, Project&) {}, [&](Comp&) { return comp_head(ctx, p.gen, 1.0, -500.0, 0.0, 1.2, 1.4); }, 0.0,
         "\r\nError! In comp head function= 5 : Invalid procedure call or argument"},
        {[](Comp& m, Project& q) { q.lines[2].LF[3] = 0.01; m.DP.value = -2.0; },
         [&](Comp& m) { comp_warnings(ctx, p, m); return 0.0; }, 0.0,
         "\r\nWarning! Compressor C1 has negative head in direction of flow."
         "\r\nError! Compressor C1 inlet or outlet has liquid fraction."},
    };
    for (const Row& r : rows) {
        ctx.run_log_text.clear();
        p.gen.PATM = kPatm;
        gas(10.0, 1.2, 1.4);
        Comp& m = comp();
        m.TYPE = "Centrifugal";
        m.DP = {"", 0.0};
        m.PIN.value = 0.0;
        m.POUT.value = 100.0;
        r.set(m, p);
        refresh_comp(ctx, p, m, 1, 1);
        EXPECT_NEAR(r.value(m), r.expected, 1e-12) << r.message;
        EXPECT_EQ(log(), r.message);
    }
}

}  // namespace
}  // namespace velm
