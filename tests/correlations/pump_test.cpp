#include "correlations/pump.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "model/text.hpp"
#include "tests/correlations/machine_reference.hpp"

namespace velm {
namespace {

constexpr double g = 9.81;  // the program's head equations take g = 9.81 m/s2

using machine_reference::bisect;
using machine_reference::interpolate;
using machine_reference::Point;

// A pump P1 between a suction line 1 and a discharge line 2, one liquid.
class PumpTest : public ::testing::Test {
protected:
    PumpTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = 101.325;
        p.gen.MPCURV = {0.0, -0.1, -10.0};
        p.gen.PCURQ = {0, 0, 20, 40, 60, 80, 90, 100, 110, 120, 130};
        p.gen.PCURH = {0, 120, 119, 118, 115, 110, 105, 100, 95, 88, 80};
        p.gen.PCUREFF = {0, 0, 40, 65, 85, 95, 98, 100, 98, 95, 90};
        p.gen.PCURNPSH = {0, 45, 45, 50, 60, 75, 85, 100, 120, 150, 180};
        p.lines.resize(3);
        p.feeds.resize(2);
        p.vessels.resize(2);
        p.pumps.resize(2);
        Pump& m = pump();
        m.NAME[1] = "P1";
        m.TYPE = "Centrifugal";
        m.CON = {0, 1, 2};
        m.NPSHR1 = 1;
        for (Line& l : p.lines) l.LF = {0.0, 1.0, 1.0, 1.0};
        flow(50.0, 1000.0, 1.5);
    }

    Pump& pump() { return p.pumps[1]; }

    void flow(double W, double rho, double vel) {
        machine_reference::through_lines(p, W, rho);
        for (std::size_t i : {1, 2}) p.lines[i].VEL = {0.0, vel, vel, vel, 0.0};
    }

    void curve(const std::vector<Point>& c) {
        Pump& m = pump();
        m.HQ1 = static_cast<int>(c.size());
        for (std::size_t i = 0; i < c.size(); ++i) {
            m.CURQ[i + 1] = number_text(c[i].Q);
            m.CURH[i + 1] = number_text(c[i].H);
            m.CURNPSH[i + 1] = "3";
        }
    }

    std::string log() const { return ctx.run_log_text; }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

const std::vector<Point> kCurve = {{0, 62}, {40, 61}, {80, 58}, {120, 52}, {160, 43}, {200, 31}};

// The flow the solver settles at, by the rows it is given: the pump row
// POUT - PIN = dP13 - C X against a system whose rise is a + b X (X = W^2).
// The operating point must be the crossing of the curve (scaled by the
// affinity laws) and the system curve, found here by bisection.
TEST_F(PumpTest, OperatingPointIsTheCrossingOfCurveAndSystem) {
    struct Row {
        double static_head, k;  // system head: static_head + k Q^2, m and m/(m3/h)^2
        double rho, speed;      // density, speed in use over the curve's speed
    } rows[] = {{20.0, 0.002, 1000.0, 1.0}, {45.0, 0.0005, 850.0, 1.0}, {5.0, 0.006, 1000.0, 1.0},
                {10.0, 0.001, 998.0, 0.8},  {0.0, 0.0009, 700.0, 1.1}};
    for (const Row& r : rows) {
        Pump& m = pump();
        curve(kCurve);
        m.DP.spec = "C";
        m.CURRPM = {0.0, 2950.0, 2950.0 * r.speed};
        std::vector<Point> scaled;
        for (Point pt : kCurve) scaled.push_back({pt.Q * r.speed, pt.H * r.speed * r.speed});
        const double a = r.rho * g * r.static_head / 1000.0;
        const double b = r.rho * g * r.k * 1000.0 / r.rho * 1000.0 / r.rho / 1000.0;  // kPa per (t/h)^2
        double W = 10.0;
        for (int iter = 1; iter <= 30; ++iter) {
            flow(W, r.rho, 1.0);
            refresh_pump(ctx, p, m, iter, 1);
            double C = 0.0;
            const double dP13 = Pump_dP13(ctx, p, m, C, 1);
            W = std::sqrt((dP13 - a) / (C + b));
        }
        const double Q = bisect([&](double q) { return interpolate(scaled, q) - (r.static_head + r.k * q * q); }, 0.0,
                                scaled.back().Q);
        EXPECT_NEAR(1000.0 * W / r.rho, Q, 0.005 * Q) << r.static_head << " m, k " << r.k;
        EXPECT_NEAR(m.HQACT[3], 1000.0 * W / r.rho, 0.005 * Q);
    }
    EXPECT_EQ(log(), "");
}

// Affinity laws: flow with speed and impeller, head with their squares; NPSHR
// with speed^(4/3) and then (flow ratio)^(2/3). Zero in a pair leaves it alone.
TEST_F(PumpTest, CurveScalesBySpeedAndImpeller) {
    struct Row {
        double n1, n2, D1, D2, q, h, npsh;
    } rows[] = {
        {2950, 1475, 0, 0, 0.5, 0.25, 0.25},
        {0, 0, 0.25, 0.225, 0.9, 0.81, 0.9321697517861577},
        {3000, 3600, 0.3, 0.27, 1.08, 1.1664, 1.3423244425720668},
        {2950, 0, 0.3, 0, 1.0, 1.0, 1.0},  // nothing in use: the curve as entered
    };
    for (const Row& r : rows) {
        Pump& m = pump();
        curve(kCurve);
        m.CURNPSH[3] = "4.5";
        m.CUREFF[3] = "0.7";
        m.CURRPM = {0.0, r.n1, r.n2};
        m.CURDIA = {0.0, r.D1, r.D2};
        pump_curve_scale(ctx, m, 1);
        EXPECT_NEAR(m.CURQ_value[3], 80.0 * r.q, 1e-12);
        EXPECT_NEAR(m.CURH_value[3], 58.0 * r.h, 1e-12);
        EXPECT_NEAR(m.CURNPSH_value[3], 4.5 * r.npsh, 1e-12);
        EXPECT_DOUBLE_EQ(m.CUREFF_value[3], 0.7);
    }
}

// Rated at a fixed rise, a typical curve is generated through the point in
// case 1; specified on that curve, the pump gives back the same rise,
// efficiency and NPSHR at the same flow.
TEST_F(PumpTest, RatedThenSpecifiedOnTheGeneratedCurve) {
    struct Row {
        const char* type;
        double W, rho, dP;
    } rows[] = {{"Centrifugal", 50.0, 1000.0, 250.0}, {"Sundyne", 7.3, 780.0, 1200.0}, {"Centrifugal", 333.0, 1030.0, 95.5}};
    for (const Row& r : rows) {
        ctx.run_log_text.clear();
        Pump& m = pump();
        m = p.pumps[0];
        m.NAME[1] = "P1";
        m.TYPE = r.type;
        m.CON = {0, 1, 2};
        m.NPSHR1 = 1;
        m.NPSHR2 = 2950;
        m.NPSHR3 = 9000;
        m.CURC1 = 1;
        m.DP = {"", r.dP};
        flow(r.W, r.rho, 1.0);
        refresh_pump(ctx, p, m, 1, 1);
        // Hydraulic power rho g Q H over the efficiencies.
        const double Q = r.W * 1000.0 / r.rho, H = 1000.0 * r.dP / (r.rho * g);
        EXPECT_NEAR(m.POW, r.rho * g * (Q / 3600.0) * H / 1000.0 / m.EFFP.value / m.EFFS.value, 1e-9 * m.POW);
        final_pump(ctx, p, m, 1);
        EXPECT_EQ(log(), "\r\nCase 1 Generate typical pump curve for Pump P1");
        const double eff = m.EFFP.value, npshr = m.NPSHR13.value;

        m.DP.spec = m.EFFP.spec = m.NPSHR13.spec = "C";
        refresh_pump(ctx, p, m, 1, 2);
        double C = 0.0;
        EXPECT_NEAR(Pump_dP13(ctx, p, m, C, 2) - C * r.W * r.W, r.dP, 0.001 * r.dP) << r.type;
        EXPECT_NEAR(pump_efficiency(ctx, m, 2), eff, 0.001 * eff);
        EXPECT_NEAR(pump_NPSHR(ctx, m, 2), npshr, 0.001 * npshr);
        EXPECT_EQ(log(), "\r\nCase 1 Generate typical pump curve for Pump P1");
    }
}

// NPSH available against the textbook sum: (source pressure - vapour
// pressure) / rho g + liquid height - friction head + velocity head - margin.
// A vessel is taken at its outlet nozzle (its pressure plus the liquid above
// the nozzle), so the liquid height gives no credit there.
TEST_F(PumpTest, NpshAvailableFromFeedOrVessel) {
    struct Row {
        bool vessel;
        double Ps, level, subcool, loss, vel, rho, margin;
    } rows[] = {{false, 150.0, 3.0, 0.0, 8.0, 1.5, 1000.0, 1.0},
                {false, -20.0, 6.5, 12.0, 2.5, 2.2, 720.0, 0.6},
                {true, 800.0, 2.0, 0.0, 5.0, 1.0, 650.0, 0.0},
                {true, 35.0, 0.5, 40.0, 0.7, 3.1, 990.0, 1.0}};
    for (const Row& r : rows) {
        Pump& m = pump();
        m.NPSHAF = {0, r.vessel ? 0 : 1, r.vessel ? 1 : 0};
        m.NPSHA3 = 2;
        m.NPSHA4 = r.subcool;
        m.NPSHA6 = r.margin;
        p.feeds[1].PRES.value = r.Ps;
        p.vessels[1].PRES.value = r.Ps;
        p.vessels[1].NOZO[2].dPLevel = -r.rho * g * r.level / 1000.0;  // as the vessel holds an outlet's static head
        m.PIN.value = r.Ps + r.rho * g * r.level / 1000.0 - r.loss;
        flow(40.0, r.rho, r.vel);
        const double expected =
            r.subcool * 1000.0 / (r.rho * g) + (r.vessel ? 0.0 : r.level) - r.loss * 1000.0 / (r.rho * g) + r.vel * r.vel / (2 * g) - r.margin;
        EXPECT_NEAR(pump_NPSHA(ctx, p, m, 1), expected, 1e-9) << r.Ps;
        EXPECT_DOUBLE_EQ(m.NPSHA1, r.Ps);
    }
    pump().NPSHA13.spec = "7;4.25";
    EXPECT_DOUBLE_EQ(pump_NPSHA(ctx, p, pump(), 2), 4.25);
    pump().NPSHA13.spec = "";
    flow(-40.0, 1000.0, 1.0);
    EXPECT_EQ(pump_NPSHA(ctx, p, pump(), 1), 0.0);
}

// NPSHR from the Hydraulic Institute's suction specific speed
// S = N sqrt(Q [US gpm per eye]) / NPSHR [ft]^(3/4), with exact unit factors.
TEST_F(PumpTest, NpshRequiredFromSuctionSpecificSpeed) {
    struct Row {
        int N, S, eyes;
        double Q;  // m3/h
    } rows[] = {{2950, 9000, 1, 100.0}, {1480, 11000, 2, 500.0}, {3550, 8500, 1, 20.0}, {990, 13000, 2, 1800.0}};
    for (const Row& r : rows) {
        Pump& m = pump();
        m.NPSHR1 = r.eyes;
        m.NPSHR2 = r.N;
        m.NPSHR3 = r.S;
        m.HQACT[3] = r.Q;
        const double gpm = r.Q * 1000.0 / 3.785411784 / 60.0 / r.eyes;
        const double feet = std::pow(r.N * std::sqrt(gpm) / r.S, 4.0 / 3.0);
        EXPECT_NEAR(pump_NPSHR(ctx, m, 1), feet * 0.3048, 5e-5 * feet * 0.3048) << r.N;
    }
}

// Interpolation on a curve: inside, on a point (the interval after it), off
// either end (flat, with the program's words), too few points.
TEST_F(PumpTest, CurveInterpolation) {
    const double X[] = {0, 0, 50, 100, 150}, Y[] = {0, 80, 78, 70, 55};
    struct Row {
        double x;
        int b;
        double y, slope;
        const char* message;
    } rows[] = {
        {25.0, 4, 79.0, -0.04, ""},
        {50.0, 4, 78.0, -0.16, ""},
        {-5.0, 4, 80.0, 0.0, "\r\nError! Curve interpolation below minimum. Use minimum."},
        {150.0, 4, 55.0, 0.0, "\r\nError! Curve interpolation above maximum. Use maximum."},
        {30.0, 1, 0.0, 0.0, "\r\nError! At least 2 point required for pump curve."},
    };
    for (const Row& r : rows) {
        ctx.run_log_text.clear();
        double slope = 1.0;
        EXPECT_NEAR(y_lin(ctx, r.x, 1, r.b, X, Y, slope), r.y, 1e-12) << r.x;
        EXPECT_NEAR(slope, r.slope, 1e-12) << r.x;
        EXPECT_EQ(log(), r.message) << r.x;
    }
}

// Bad input gives the program's words and a usable number, never a crash.
TEST_F(PumpTest, BadInputIsToldInTheProgramsWords) {
    struct Row {
        std::function<void(Pump&, Project&)> set;
        std::function<double(Pump&)> value;
        double expected;
        std::string message;
    } rows[] = {
        {[](Pump& m, Project&) { m.CURQ[1] = "0"; m.CURH[1] = "60"; m.HQ1 = 1; },
         [&](Pump& m) { double C; Pump_dP13(ctx, p, m, C, 1); return C; }, g * 0.1 / (2 * 50.0),
         "\r\nError! At least 2 point required for pump curve."},
        {[](Pump& m, Project&) { std::swap(m.CURQ[2], m.CURQ[4]); }, [](Pump&) { return 0.0; }, 0.0,
         "\r\nError! Pump P1 curve flows are not in ascending order."},
        // 50 t/h of water is 50 m3/h, past a curve that ends at 40: the last head,
        // and the minimum slope alone.
        {[](Pump& m, Project&) { m.HQ1 = 2; },
         [&](Pump& m) { double C; const double d = Pump_dP13(ctx, p, m, C, 1); return d - C * 2500.0; },
         61.0 * g, "\r\nError! Curve interpolation above maximum. Use maximum."},
        {[](Pump& m, Project&) { m.CURRPM = {0, 0, 1475}; }, [](Pump& m) { return m.CURH_value[2]; }, 61.0,
         "\r\nWarning! Pump P1 curve speed is 0: curve not scaled to the speed in use."},
        {[](Pump& m, Project&) { m.CURDIA = {0, 0, 0.2}; }, [](Pump& m) { return m.CURQ_value[2]; }, 40.0,
         "\r\nWarning! Pump P1 curve impeller is 0: curve not scaled to the impeller in use."},
        {[](Pump& m, Project&) { m.NPSHR13.spec = ""; m.NPSHR3 = 0; m.NPSHR2 = 2950; },
         [&](Pump& m) { return pump_NPSHR(ctx, m, 1); }, 0.0, "\r\nError! In pump NPSHR function = 11 : Division by zero"},
        {[](Pump& m, Project&) { m.NPSHAF = {0, 5, 0}; }, [&](Pump& m) { return pump_NPSHA(ctx, p, m, 1); }, 0.0,
         "\r\nError! Pump P1 suction Feed 5 does not exist."},
        {[](Pump& m, Project&) { m.CON = {0, 0, 7}; }, [&](Pump& m) { return m.HQACT[3]; }, 0.0, ""},
        {[](Pump& m, Project& q) { q.lines[2].LF[3] = 0.98; m.DP.value = -3.0; },
         [&](Pump& m) { pump_warnings(ctx, p, m); return m.COLOR == p.color_error ? 1.0 : 0.0; }, 1.0,
         "\r\nError! Pump P1 inlet or outlet has vapor fraction.\r\nWarning! Pump P1 has negative head in direction of flow."},
    };
    for (const Row& r : rows) {
        ctx.run_log_text.clear();
        p.lines[2].LF[3] = 1.0;
        Pump& m = pump();
        curve(kCurve);
        m.DP.spec = m.NPSHR13.spec = "C";
        m.DP.value = 0.0;
        m.CURRPM = {};
        m.CURDIA = {};
        m.CON = {0, 1, 2};
        m.NPSHAF = {};
        m.COLOR = 0;
        r.set(m, p);
        refresh_pump(ctx, p, m, 1, 1);
        EXPECT_NEAR(r.value(m), r.expected, 1e-9) << r.message;
        EXPECT_EQ(log(), r.message);
    }
}

}  // namespace
}  // namespace velm
