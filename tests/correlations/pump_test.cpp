#include "correlations/pump.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "model/project_file.hpp"
#include "model/text.hpp"

namespace velm {
namespace {

constexpr double g = 9.81;  // the program's head equations take g = 9.81 m/s2

struct Point {
    double Q, H;
};
const std::vector<Point> kCurve = {{0, 62}, {40, 61}, {80, 58}, {120, 52}, {160, 43}, {200, 31}};

// A pump P1 between a suction line 1 and a discharge line 2, one liquid.
class PumpTest : public ::testing::Test {
protected:
    PumpTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        NewProject(p);          // the default typical curve and minimum slopes
        p.lines.resize(3);
        p.feeds.resize(2);
        p.vessels.resize(2);
        p.pumps.resize(2);
        flow(50.0, 1000.0, 1.5);
        reset();
    }

    Pump& pump() { return p.pumps[1]; }

    void reset() {
        Pump& m = pump() = p.pumps[0];
        m.NAME[1] = "P1";
        m.CON = {0, 1, 2};
        m.HQ1 = static_cast<int>(kCurve.size());
        for (std::size_t i = 0; i < kCurve.size(); ++i) {
            m.CURQ[i + 1] = number_text(kCurve[i].Q);
            m.CURH[i + 1] = number_text(kCurve[i].H);
        }
        ctx.run_log_text.clear();
    }

    // The far ends of the lines carry nothing: only the ends at the pump may be read.
    void flow(double W, double rho, double vel) {
        for (std::size_t i : {1, 2}) {
            p.lines[i].TFLOW.value = W;
            p.lines[i].TPROP = {0.0, rho, rho, rho, rho, 0.0, 1.0};
            p.lines[i].VEL = {0.0, vel, vel, vel, 0.0};
            p.lines[i].LF = {0.0, 1.0, 1.0, 1.0};
            p.lines[i].TPROP[i] = p.lines[i].VEL[i] = 0.0;
        }
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

// The solver's rows, pump POUT - PIN = dP13 - C X against a system rise
// a + b X (X = W^2), settle where the curve (scaled by the affinity laws,
// interpolated here by the test itself) crosses the system curve, found by
// bisection.
TEST_F(PumpTest, OperatingPointIsTheCrossingOfCurveAndSystem) {
    struct Row {
        double static_head, k, rho, speed;  // system head static_head + k Q^2 (m, Q m3/h); speed in use / curve's
    } rows[] = {{20.0, 0.002, 1000.0, 1.0}, {45.0, 0.0005, 850.0, 1.0}, {10.0, 0.001, 998.0, 0.8},
                {0.0, 0.0009, 700.0, 1.1}};
    for (const Row& r : rows) {
        reset();
        Pump& m = pump();
        m.DP.spec = "C";
        m.CURRPM = {0.0, 2950.0, 2950.0 * r.speed};
        const auto system = [&](double Q) { return r.static_head + r.k * Q * Q; };
        const auto curve = [&](double Q) {
            const double q = Q / r.speed;
            std::size_t i = 1;
            while (i + 1 < kCurve.size() && q > kCurve[i].Q) ++i;
            const Point a = kCurve[i - 1], b = kCurve[i];
            return (a.H + (b.H - a.H) * (q - a.Q) / (b.Q - a.Q)) * r.speed * r.speed;
        };
        double W = 10.0;
        for (int iter = 1; iter <= 30; ++iter) {
            flow(W, r.rho, 1.0);
            refresh_pump(ctx, p, m, iter, 1);
            double C = 0.0;
            const double dP13 = Pump_dP13(ctx, p, m, C, 1);
            const double a = r.rho * g * r.static_head / 1000.0, b = g * r.k * 1000.0 / r.rho;  // kPa, kPa/(t/h)^2
            W = std::sqrt((dP13 - a) / (C + b));
        }
        double lo = 0.0, hi = 200.0 * r.speed;
        for (int i = 0; i < 100; ++i) {
            const double mid = 0.5 * (lo + hi);
            (curve(mid) > system(mid) ? lo : hi) = mid;
        }
        EXPECT_NEAR(1000.0 * W / r.rho, lo, 0.005 * lo) << r.static_head << " m, k " << r.k;
    }
    EXPECT_EQ(ctx.run_log_text, "");
}

// Affinity laws: flow with speed and impeller, head with their squares; NPSHR
// with speed^(4/3) and then (flow ratio)^(2/3). A zero in a pair: not scaled.
TEST_F(PumpTest, CurveScalesBySpeedAndImpeller) {
    struct Row {
        double n1, n2, D1, D2, q, h, npsh;
    } rows[] = {{2950, 1475, 0, 0, 0.5, 0.25, 0.25},
                {0, 0, 0.25, 0.225, 0.9, 0.81, 0.9321697517861577},
                {3000, 3600, 0.3, 0.27, 1.08, 1.1664, 1.3423244425720668},
                {2950, 0, 0.3, 0, 1.0, 1.0, 1.0}};
    for (const Row& r : rows) {
        reset();
        Pump& m = pump();
        m.CURNPSH[3] = "4.5";
        m.CURRPM = {0.0, r.n1, r.n2};
        m.CURDIA = {0.0, r.D1, r.D2};
        pump_curve_scale(ctx, m, 1);
        EXPECT_NEAR(m.CURQ_value[3], 80.0 * r.q, 1e-12);
        EXPECT_NEAR(m.CURH_value[3], 58.0 * r.h, 1e-12);
        EXPECT_NEAR(m.CURNPSH_value[3], 4.5 * r.npsh, 1e-12);
    }
}

// Rated at a fixed rise, the pump gets a typical curve through its point in
// case 1; specified on that curve it gives back the rise, efficiency and
// NPSHR at the same flow.
TEST_F(PumpTest, RatedThenSpecifiedOnTheGeneratedCurve) {
    struct Row {
        const char* type;
        double W, rho, dP;
    } rows[] = {{"Centrifugal", 50.0, 1000.0, 250.0}, {"Sundyne", 7.3, 780.0, 1200.0},
                {"Centrifugal", 333.0, 1030.0, 95.5}};
    for (const Row& r : rows) {
        reset();
        Pump& m = pump();
        m.TYPE = r.type;
        m.CURC1 = 1;
        m.EFFS.spec = "0.95";
        m.DP = {"", r.dP};
        flow(r.W, r.rho, 1.0);
        refresh_pump(ctx, p, m, 1, 1);
        // Shaft power: mass flow (kg/s) times g H, over the efficiencies.
        EXPECT_NEAR(m.POW, r.W / 3.6 * g * m.HQACT[1] / 1000.0 / m.EFFP.value / m.EFFS.value, 1e-9 * m.POW);
        final_pump(ctx, p, m, 1);
        const double eff = m.EFFP.value, npshr = m.NPSHR13.value;
        m.DP.spec = m.EFFP.spec = m.NPSHR13.spec = "C";
        refresh_pump(ctx, p, m, 1, 2);
        double C = 0.0;
        EXPECT_NEAR(Pump_dP13(ctx, p, m, C, 2) - C * r.W * r.W, r.dP, 0.001 * r.dP) << r.type;
        const double slope = -0.05 * m.HQACT[1] / (0.1 * m.HQACT[3]);  // 100 to 110 % flow, 100 to 95 % head
        EXPECT_NEAR(C, -g * (slope - 0.1) / (2.0 * r.W), 1e-9 * C);
        // On the 100 % point the slope is that of the interval after it: to 120 % NPSHR.
        double npsh_slope = 0.0;
        y_lin(ctx, m.HQACT[3], 1, m.HQ1, m.CURQ_value, m.CURNPSH_value, npsh_slope);
        EXPECT_NEAR(npsh_slope, 0.2 * npshr / (0.1 * m.HQACT[3]), 1e-9 * npsh_slope);
        EXPECT_NEAR(pump_efficiency(ctx, m, 2), eff, 0.001 * eff);
        EXPECT_NEAR(pump_NPSHR(ctx, m, 2), npshr, 0.001 * npshr);
        EXPECT_EQ(ctx.run_log_text, "\r\nCase 1 Generate typical pump curve for Pump P1");
    }
}

// NPSH available against the textbook sum (source pressure - vapour pressure)
// / rho g + liquid height - friction head + velocity head - margin. A vessel
// is taken at its outlet nozzle, so the liquid above it gives no credit there.
TEST_F(PumpTest, NpshAvailableFromFeedOrVessel) {
    struct Row {
        bool vessel;
        double Ps, level, subcool, loss, vel, rho, margin;
    } rows[] = {{false, 150.0, 3.0, 0.0, 8.0, 1.5, 1000.0, 1.0},
                {false, -20.0, 6.5, 12.0, 2.5, 2.2, 720.0, 0.6},
                {true, 35.0, 0.5, 40.0, 0.7, 3.1, 990.0, 1.0}};
    for (const Row& r : rows) {
        Pump& m = pump();
        m.NPSHAF = {0, r.vessel ? 0 : 1, r.vessel ? 1 : 0};
        m.NPSHA3 = 2;
        m.NPSHA4 = r.subcool;
        m.NPSHA6 = r.margin;
        p.feeds[1].PRES.value = p.vessels[1].PRES.value = r.Ps;
        p.vessels[1].NOZO[2].dPLevel = -r.rho * g * r.level / 1000.0;  // an outlet's static head, held negative
        m.PIN.value = r.Ps + r.rho * g * r.level / 1000.0 - r.loss;
        flow(40.0, r.rho, r.vel);
        const double head = 1000.0 / (r.rho * g);
        const double expected =
            (r.subcool - r.loss) * head + (r.vessel ? 0.0 : r.level) + r.vel * r.vel / (2 * g) - r.margin;
        EXPECT_NEAR(pump_NPSHA(ctx, p, m, 1), expected, 1e-9) << r.Ps;
    }
    pump().NPSHA13.spec = "7;4.25";
    EXPECT_DOUBLE_EQ(pump_NPSHA(ctx, p, pump(), 2), 4.25);
}

// NPSHR from the suction specific speed S = N sqrt(Q [US gpm per eye]) /
// NPSHR [ft]^(3/4) (Hydraulic Institute), with exact unit factors.
TEST_F(PumpTest, NpshRequiredFromSuctionSpecificSpeed) {
    struct Row {
        int N, S, eyes;
        double Q;  // m3/h
    } rows[] = {{2950, 9000, 1, 100.0}, {1480, 11000, 2, 500.0}, {3550, 8500, 1, 20.0}};
    for (const Row& r : rows) {
        Pump& m = pump();
        m.NPSHR1 = r.eyes;
        m.NPSHR2 = r.N;
        m.NPSHR3 = r.S;
        m.HQACT[3] = r.Q;
        const double gpm = r.Q * 1000.0 / 3.785411784 / 60.0 / r.eyes;
        const double metres = std::pow(r.N * std::sqrt(gpm) / r.S, 4.0 / 3.0) * 0.3048;
        EXPECT_NEAR(pump_NPSHR(ctx, m, 1), metres, 5e-5 * metres) << r.N;
    }
}

// Bad input gives the program's words and a usable number, never a crash.
// Water at 50 t/h is 50 m3/h.
TEST_F(PumpTest, BadInputIsToldInTheProgramsWords) {
    struct Row {
        std::function<void(Pump&)> set;
        std::function<double(Pump&)> value;
        double expected;
        std::string message;
    } rows[] = {
        // One point: no head, and the minimum slope alone.
        {[](Pump& m) { m.HQ1 = 1; }, [&](Pump& m) { double C; Pump_dP13(ctx, p, m, C, 1); return C; },
         g * 0.1 / (2 * 50.0), "\r\nError! At least 2 point required for pump curve."},
        {[](Pump& m) { std::swap(m.CURQ[2], m.CURQ[4]); }, [](Pump&) { return 0.0; }, 0.0,
         "\r\nError! Pump P1 curve flows are not in ascending order."},
        // Past the last point (40 m3/h): the last head.
        {[](Pump& m) { m.HQ1 = 2; }, [&](Pump& m) { double C; return Pump_dP13(ctx, p, m, C, 1) - C * 2500.0; },
         61.0 * g,
         "\r\nError! Curve interpolation above maximum. Use maximum."},
        {[](Pump& m) { m.CURRPM = {0, 0, 1475}; }, [](Pump& m) { return m.CURH_value[2]; }, 61.0,
         "\r\nWarning! Pump P1 curve speed is 0: curve not scaled to the speed in use."},
        {[](Pump& m) { m.CURDIA = {0, 0, 0.2}; }, [](Pump& m) { return m.CURQ_value[2]; }, 40.0,
         "\r\nWarning! Pump P1 curve impeller is 0: curve not scaled to the impeller in use."},
        {[](Pump& m) { m.NPSHR13.spec = ""; m.NPSHR3 = 0; }, [&](Pump& m) { return pump_NPSHR(ctx, m, 1); }, 0.0,
         "\r\nError! In pump NPSHR function = 11 : Division by zero"},
        {[](Pump& m) { m.NPSHAF = {0, 5, 0}; }, [&](Pump& m) { return pump_NPSHA(ctx, p, m, 1); }, 0.0,
         "\r\nError! In pump NPSHA function = 9 : Subscript out of range"},
        {[](Pump& m) { m.NPSHAF = {0, 0, 4}; }, [&](Pump& m) { return pump_NPSHA(ctx, p, m, 1); }, 0.0,
         "\r\nError! In pump NPSHA function = 9 : Subscript out of range"},
        {[](Pump& m) { m.CON = {0, 0, 7}; }, [](Pump& m) { return m.HQACT[3]; }, 0.0, ""},
        {[](Pump& m) { m.DP.value = -3.0; },
         [&](Pump& m) { p.lines[2].LF[3] = 0.98; pump_warnings(ctx, p, m); return m.COLOR == p.color_error; }, 1.0,
         "\r\nError! Pump P1 inlet or outlet has vapor fraction."
         "\r\nWarning! Pump P1 has negative head in direction of flow."},
    };
    for (const Row& r : rows) {
        reset();
        flow(50.0, 1000.0, 1.5);
        Pump& m = pump();
        m.DP.spec = m.NPSHR13.spec = "C";
        r.set(m);
        refresh_pump(ctx, p, m, 1, 1);
        EXPECT_NEAR(r.value(m), r.expected, 1e-9) << r.message;
        EXPECT_EQ(ctx.run_log_text, r.message);
    }
}

}  // namespace
}  // namespace velm
