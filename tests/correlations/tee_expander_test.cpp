#include "correlations/tee_expander.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "correlations/pipe.hpp"
#include "model/context.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

constexpr double kPi = 3.14159265358979323846;

class TeeExpanderTest : public ::testing::Test {
protected:
    TeeExpanderTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = 101.325;
        p.lines.resize(1);
        p.tees.resize(2);
        p.expands.resize(2);
    }

    // A liquid line of one density throughout; returns its number.
    int line(double W, double ID, double rho = 1000.0) {
        Line l;
        l.TFLOW.value = W;
        l.ID.value = l.IDH.value = ID;
        l.LF = {0.0, 1.0, 1.0, 1.0};
        l.LIQDEN = {0.0, rho, rho};
        l.TPROP = {0.0, rho, rho, rho, rho, 0.0, 1.0};
        p.lines.push_back(l);
        return count(p.lines);
    }

    // Velocity head 0.5 rho v^2 in kPa of W t/h in a bore D m.
    static double head(double W, double D, double rho) {
        const double v = W / 3.6 / rho / (kPi * D * D / 4.0);
        return 0.5 * rho * v * v / 1000.0;
    }

    std::vector<std::string> messages() { return take_run_log(ctx); }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

// Each flow pattern at the three ports names the legs as its row of the
// naming table. Port codes: 'I' a line ending in the port, W > 0 (in);
// 'i' a line starting from it, W < 0 (in); 'O' a line starting from it,
// W > 0 (out); 'o' a line ending in it, W < 0 (out); '-' no line.
TEST_F(TeeExpanderTest, TeeLegsAreNamedByTheFlowPattern) {
    struct Row { const char* ports; int TYPE, C, M, B; };
    const Row rows[] = {
        {"IIO", 1, 3, 1, 2},  {"II-", 1, 1, 3, 2},  {"OiI", 1, 1, 3, 2},  {"-II", 1, 3, 1, 2},
        {"OIO", -4, 2, 1, 3}, {"IOO", -3, 1, 3, 2}, {"-Oo", -3, 3, 1, 2}, {"OOI", -3, 3, 1, 2},
        {"oO-", -3, 1, 3, 2}, {"IOI", 2, 2, 1, 3},  {"IO-", -3, 1, 3, 2}, {"I-O", -3, 1, 3, 2},
        {"O-I", -3, 3, 1, 2}, {"O-O", 1, 3, 1, 2},
    };
    for (const Row& r : rows) {
        p.lines.resize(1);
        Tee& t = p.tees[1];
        t = Tee{};
        for (int j = 1; j <= 3; ++j) {
            const char code = r.ports[j - 1];
            if (code == '-') continue;
            const int n = line(code == 'I' || code == 'O' ? 5.0 : -5.0, 0.1);
            t.CON[static_cast<std::size_t>(code == 'I' || code == 'o' ? j : j + 3)] = n;
        }
        Tee_W2(ctx, p, t, 1);
        SCOPED_TRACE(r.ports);
        EXPECT_EQ(t.TYPE, r.TYPE);
        EXPECT_EQ(t.C[1], r.C);
        EXPECT_EQ(t.M[1], r.M);
        EXPECT_EQ(t.B[1], r.B);
        // The line of each leg is the one on its port (lines are made in port order).
        auto line_on = [&](int port) {
            int n = 0;
            for (int j = 1; j <= port; ++j) n += r.ports[j - 1] != '-';
            return r.ports[port - 1] == '-' ? 0 : n;
        };
        EXPECT_EQ(t.C[2], line_on(r.C));
        EXPECT_EQ(t.M[2], line_on(r.M));
        EXPECT_EQ(t.B[2], line_on(r.B));
    }
    EXPECT_TRUE(messages().empty());
}

// K of the legs from the flow and area ratios, against values worked by hand
// from the tee formulas; the drop of each leg is K velocity heads of the
// combined line at its density at the tee.
TEST_F(TeeExpanderTest, TeeCoefficientsAndDrops) {
    struct Row {
        const char* ports;            // as above, all lines ending in (I) or starting from (O) their port
        double W[4], ID[4];           // by port
        double SPAC, KM, KB;
    };
    const Row rows[] = {
        // combining, qB 0.4, aB 0.64, aM 1
        {"IIO", {0, 6, 4, 10}, {0, 0.1, 0.08, 0.1}, 0, 0.51184, 0.4507526013565861},
        // combining into port 2, qM 0.7, qB 0.3, aM 0.64, aB 0.36
        {"IOI", {0, 7, 10, 3}, {0, 0.08, 0.1, 0.06}, 0, 1.046826171875, 2.1202160493827162},
        // dividing, qB 0.3, aB 0.25, without and with a neighbour 10 diameters away
        {"IOO", {0, 10, 3, 7}, {0, 0.1, 0.05, 0.1}, 0, -0.0195, 1.5079056603773584},
        {"IOO", {0, 10, 3, 7}, {0, 0.1, 0.05, 0.1}, 10, 0.0107844776991983, 1.5079056603773584},
        {"IOO", {0, 10, 3, 7}, {0, 0.1, 0.05, 0.1}, 31, -0.0195, 1.5079056603773584},
        // dividing out of port 2, qM 0.6, aM 0.64, qB 0.4, aB 0.36
        {"OIO", {0, 6, 10, 4}, {0, 0.08, 0.1, 0.06}, 0, 1.263671875, 1.3703703703703705},
    };
    for (const Row& r : rows) {
        p.lines.resize(1);
        Tee& t = p.tees[1];
        t = Tee{};
        t.SPAC = r.SPAC;
        for (int j = 1; j <= 3; ++j) {
            const int n = line(r.W[j], r.ID[j]);
            Line& l = p.lines[static_cast<std::size_t>(n)];
            l.TPROP[1] = 990.0;  // the combined line's inlet end: density where flow leaves the tee through it
            l.TPROP[2] = 1010.0;
            t.CON[static_cast<std::size_t>(r.ports[j - 1] == 'I' ? j : j + 3)] = n;
        }
        Tee_W2(ctx, p, t, 1);
        SCOPED_TRACE(std::string(r.ports) + " SPAC " + std::to_string(r.SPAC));
        EXPECT_NEAR(t.KCM.value, r.KM, 1e-12);
        EXPECT_NEAR(t.KCB.value, r.KB, 1e-12);
        const double rho = t.TYPE > 0 ? 990.0 : 1010.0;
        EXPECT_EQ(t.C3, rho);
        const double WC = r.W[t.C[1]], DC = r.ID[t.C[1]];
        const double h = head(WC, DC, rho);  // the tees' rounded 6.254e-05 is within 1e-4 of it
        EXPECT_NEAR(t.DPP[static_cast<std::size_t>(t.M[1])], r.KM * h, 1e-4 * std::fabs(r.KM) * h);
        EXPECT_NEAR(t.DPP[static_cast<std::size_t>(t.B[1])], r.KB * h, 1e-4 * r.KB * h);
        EXPECT_EQ(t.DPP[static_cast<std::size_t>(t.C[1])], 0.0);
    }
    EXPECT_TRUE(messages().empty());
}

// At equal bores the run of a combining tee is Crane TP-410's converging 90
// degree tee (fluids.fittings.K_run_converging_Crane, tools/fittings_reference.py);
// an entered K for the case stands in place of the formula.
TEST_F(TeeExpanderTest, TeeMainRunMatchesCraneAndEnteredKWins) {
    const double qB[] = {0.2, 0.5, 0.8}, crane[] = {0.27, 0.525, 0.6000000000000001};
    for (int k = 0; k < 3; ++k) {
        p.lines.resize(1);
        Tee& t = p.tees[1];
        t = Tee{};
        t.CON = {0, line(10.0 * (1.0 - qB[k]), 0.1), line(10.0 * qB[k], 0.1), 0, 0, 0, line(10.0, 0.1)};
        Tee_W2(ctx, p, t, 1);
        EXPECT_NEAR(t.KCM.value, crane[k], 1e-12) << qB[k];
    }
    Tee& t = p.tees[1];
    t.KCM.spec = "0.9;";
    t.KCB.spec = "1.7";
    Tee_W2(ctx, p, t, 1);
    EXPECT_EQ(t.KCM.value, 0.9);
    EXPECT_EQ(t.KCB.value, 1.7);
    EXPECT_NEAR(t.DPP[1], 0.9 * head(10.0, 0.1, 1000.0), 1e-4 * head(10.0, 0.1, 1000.0));
    Tee_W2(ctx, p, t, 2);  // no entry for case 2: the formula again
    EXPECT_NEAR(t.KCM.value, crane[2], 1e-12);
    EXPECT_EQ(t.KCB.value, 1.7);
}

TEST_F(TeeExpanderTest, TeeFaultIsLoggedInItsOwnWords) {
    Tee& t = p.tees[1];
    t.CON = {0, line(6.0, 0.1), line(4.0, 0.1), 0, 0, 0, line(10.0, 0.0)};  // combined line without a bore
    Tee_W2(ctx, p, t, 1);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error! In Tee W2 function = 11 : Division by zero"});
}

TEST_F(TeeExpanderTest, CheckValveAndFixedK) {
    p.checks.resize(2);
    Check& cv = p.checks[1];
    cv.LD = 50.0;
    cv.CON = {0, line(20.0, 0.1), line(20.0, 0.1)};
    p.lines[1].F[2] = 0.017;
    // K = fT * L/D = 0.85 velocity heads of the inlet line.
    EXPECT_NEAR(Check_W2(ctx, p, cv) * 400.0, 0.85 * head(20.0, 0.1, 1000.0), 1e-4 * 0.85 * head(20.0, 0.1, 1000.0));
    p.lines[1].TFLOW.value = p.lines[2].TFLOW.value = -20.0;
    EXPECT_EQ(Check_W2(ctx, p, cv), 1.0e9);
    p.lines[1].TFLOW.value = 20.0;
    p.lines[2].TPROP[1] = 0.0;
    EXPECT_EQ(Check_W2(ctx, p, cv), 0.0);

    // fitting_W2_K takes the side the flow comes from.
    EXPECT_NEAR(fitting_W2_K(ctx, 1.0, 0.1, 0.2, 1000.0, 500.0, 2.0), 6.254e-05 * 2.0 / 1000.0 / 1e-4, 1e-15);
    EXPECT_NEAR(fitting_W2_K(ctx, -1.0, 0.1, 0.2, 1000.0, 500.0, 2.0), 6.254e-05 * 2.0 / 500.0 / 0.0016, 1e-15);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(fitting_W2_K(ctx, 1.0, 0.0, 0.2, 1000.0, 500.0, 2.0), 0.0);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error! In fitting W2 K function = 11 : Division by zero"});
}

TEST_F(TeeExpanderTest, ExchangerAndMiscRatings) {
    p.hxs.resize(2);
    p.miscs.resize(2);
    HX& hx = p.hxs[1];
    hx.NOZI.CON = line(50.0, 0.1, 980.0);
    hx.NOZO.CON = line(50.0, 0.1, 1020.0);
    hx.PRAT1 = "50";
    hx.PRAT3 = 100.0;
    hx.PRAT5 = 1000.0;
    // Rated 50 kPa at 100 t/h and 1000 kg/m3; half the flow at a mean density of 1000.
    EXPECT_NEAR(Exchanger_rating_W2(ctx, p, hx, 1) * 2500.0, 50.0 * std::pow(0.5, 1.8), 1e-12);
    EXPECT_NEAR(Misc_rating_W2(ctx, p, hx, 1) * 2500.0, 50.0 * 0.25, 1e-12);
    p.lines[1].TFLOW.value = 0.0;
    EXPECT_NEAR(Exchanger_rating_W2(ctx, p, hx, 1), 50.0 / 1e4, 1e-15);
    p.lines[2].TPROP[1] = 0.0;
    EXPECT_EQ(Exchanger_rating_W2(ctx, p, hx, 1), 0.0);
    EXPECT_TRUE(messages().empty());
    p.lines[2].TPROP[1] = 1020.0;
    hx.PRAT3 = 0.0;
    EXPECT_EQ(Exchanger_rating_W2(ctx, p, hx, 1), 0.0);
    EXPECT_EQ(messages(), std::vector<std::string>{"Error! In Exchanger rating W2 function = 11 : Division by zero"});

    // Misc by K and L/D: K + fT * L/D at the upstream line, by the direction of flow.
    Misc& m = p.miscs[1];
    m.NOZI.CON = line(30.0, 0.1, 1000.0);
    m.NOZO.CON = line(30.0, 0.15, 800.0);
    m.K = "2;3";
    m.LD = "100";
    p.lines[3].F[2] = 0.02;
    p.lines[4].F[2] = 0.03;
    EXPECT_NEAR(Misc_K_W2(ctx, p, m, 1), 6.254e-05 * 4.0 / 1000.0 / std::pow(0.1, 4), 1e-15);
    EXPECT_NEAR(Misc_K_W2(ctx, p, m, 2), 6.254e-05 * 5.0 / 1000.0 / std::pow(0.1, 4), 1e-15);
    p.lines[3].TFLOW.value = p.lines[4].TFLOW.value = -30.0;
    EXPECT_NEAR(Misc_K_W2(ctx, p, m, 1), 6.254e-05 * 5.0 / 800.0 / std::pow(0.15, 4), 1e-15);
}

// Reducers and expanders on a liquid, against Crane TP-410 and Borda-Carnot
// (fluids.fittings.contraction_conical_Crane and diffuser_sharp,
// tools/fittings_reference.py). The element's drop C*W^2 must equal the
// change of velocity head plus K heads of the small bore.
TEST_F(TeeExpanderTest, ReducersAndExpanders) {
    struct Row {
        double W, D_in, D_out, angle;
        int TYPE;
        double K;
    };
    const double b = 0.0779 / 0.1023, half45 = 22.5 * kPi / 180.0;
    const Row rows[] = {
        {40.0, 0.1023, 0.0779, 30.0, 1, 0.08699204956807668},
        {40.0, 0.1023, 0.0779, 45.0, 1, 0.8 * std::sin(half45) * (1.0 - b * b)},  // 45 takes the first form
        {40.0, 0.1023, 0.0779, 60.0, 1, 0.14854168704658482},
        {40.0, 0.1023, 0.0779, 180.0, 1, 0.21006966839906016},
        {-40.0, 0.0779, 0.1023, 180.0, -1, 0.21006966839906016},  // reverse flow through a drawn expander
        {40.0, 0.0779, 0.1023, 180.0, 2, 0.17651706232516437},
        {40.0, 0.05, 0.1, 180.0, 2, 0.5625},
        {-40.0, 0.1541, 0.1023, 180.0, -2, 0.3128131534009992},
        {40.0, 0.0001, 0.0002, 180.0, 0, 0.0},  // a difference of exactly 0.0001 m is no expander
        {40.0, 0.0002, 0.0001, 180.0, 0, 0.0},  // nor reducer
        {40.0, 0.1, 0.1001, 180.0, 0, 0.0},
        {40.0, 0.1, 0.10011, 180.0, 2, std::pow(1.0 - std::pow(0.1 / 0.10011, 2), 2)},
    };
    for (const Row& r : rows) {
        p.lines.resize(1);
        Expand& e = p.expands[1];
        e = Expand{};
        e.ANGLE = r.angle;
        e.CON = {0, line(r.W, r.D_in), line(r.W, r.D_out)};
        const double C = Expander_Reducer_W2(ctx, p, e);
        SCOPED_TRACE(std::to_string(r.D_in) + " -> " + std::to_string(r.D_out) + " at " + std::to_string(r.angle));
        EXPECT_EQ(e.TYPE, r.TYPE);
        EXPECT_NEAR(e.K, r.K, 1e-12);
        const double D_up = r.W >= 0 ? r.D_in : r.D_out, D_down = r.W >= 0 ? r.D_out : r.D_in;
        const double h_up = head(r.W, D_up, 1000.0), h_down = head(r.W, D_down, 1000.0);
        const double tol = 1e-5 * std::max(h_up, h_down);
        const double loss = r.K * std::max(h_up, h_down);  // K of the small bore
        EXPECT_NEAR(e.DPP, loss, tol);
        if (r.TYPE == 0) {
            EXPECT_EQ(C, 0.0);
            continue;
        }
        EXPECT_NEAR(C * r.W * r.W, h_down - h_up + loss, tol);
    }
    EXPECT_TRUE(messages().empty());
}

TEST_F(TeeExpanderTest, ExpanderChoking) {
    Expand& e = p.expands[1];
    e.ANGLE = 180.0;
    e.CON = {0, line(10.0, 0.05), line(10.0, 0.1)};
    e.PIN.value = 50.0;
    e.DP.value = 20.0;
    Line& up = p.lines[1];
    up.LF[2] = 0.0;
    up.VEL[4] = 290.0;
    up.VEL[2] = 300.0;  // above 1.03 times sonic at the expander
    EXPECT_TRUE(Expander_Reducer_choked(ctx, p, e));
    EXPECT_NEAR(Expander_Reducer_W2_choked(ctx, p, e), std::sqrt(300.0 / 290.0) * (50.0 + 101.325) - 101.325, 1e-9);
    EXPECT_EQ(e.DPP, 20.0);
    up.VEL[2] = 280.0;  // below 0.97 of sonic
    EXPECT_FALSE(Expander_Reducer_choked(ctx, p, e));
    up.VEL[2] = 300.0;
    up.LF[2] = 1.0;  // a liquid end never chokes
    EXPECT_FALSE(Expander_Reducer_choked(ctx, p, e));
    up.LF[2] = 0.0;
    up.VEL[4] = 0.0;
    EXPECT_EQ(Expander_Reducer_W2_choked(ctx, p, e), 0.0);
    EXPECT_EQ(messages(),
              std::vector<std::string>{"Error! In Expander/Reducer W2 choked function = 11 : Division by zero"});
}

}  // namespace
}  // namespace velm
