#include "solver/passive_items.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/context.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

class PassiveItems : public ::testing::Test {
protected:
    PassiveItems() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = 101.325;
        p.lines.resize(1);
    }

    int line(double W, double ID, double LF, double rho) {
        Line l;
        l.TFLOW.value = W;
        l.ID.value = ID;
        l.LF = {0.0, LF, LF, LF};
        l.TPROP = {0.0, rho, rho, rho, rho, 0.0, 1.0};
        p.lines.push_back(l);
        return count(p.lines);
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

TEST_F(PassiveItems, TinyTeeFlowsAreCut) {
    Tee t;
    t.CON = {0, line(9.9e-06, 0.1, 1, 1000), line(-9.9e-06, 0.1, 1, 1000), 0, line(1e-05, 0.1, 1, 1000), 99, 0};
    refresh_tee(ctx, p, t);  // line 99 does not exist and is left alone
    EXPECT_EQ(p.lines[1].TFLOW.value, 0.0);
    EXPECT_EQ(p.lines[2].TFLOW.value, 0.0);
    EXPECT_EQ(p.lines[3].TFLOW.value, 1e-05);
}

// Static head between an exchanger's nozzles, 2 m apart: a liquid always takes
// it; a stream with vapour only against the rise of the flow.
TEST_F(PassiveItems, NozzleStaticHead) {
    struct Row { double W, LF_in, LF_out, rise, DPELEV; };
    const Row rows[] = {
        {10, 1, 1, 2, 2 * 1000 * 9.81 / 1000},   {-10, 1, 1, 2, 2 * 1000 * 9.81 / 1000},
        {10, 0.5, 1, 2, 2 * 1000 * 9.81 / 1000}, {-10, 0.5, 1, 2, 0},
        {10, 1, 0.5, -2, 0},                      {-10, 1, 0.5, -2, -2 * 1000 * 9.81 / 1000},
    };
    for (const Row& r : rows) {
        p.lines.resize(1);
        HX hx;
        hx.NOZI = {0, 0, line(r.W, 0.1, r.LF_in, 900), 1.0};
        hx.NOZO = {0, 0, line(r.W, 0.1, r.LF_out, 1100), 1.0 + r.rise};
        refresh_nozzle_item(ctx, p, hx);
        EXPECT_NEAR(hx.DPELEV, r.DPELEV, 1e-12) << r.W << " " << r.LF_in << " " << r.LF_out << " " << r.rise;
    }
}

TEST_F(PassiveItems, WarningsInExactWords) {
    Check cv;
    cv.NAME[1] = " CK1 ";
    cv.CON = {0, line(-5.0, 0.1, 1, 1000), line(-5.0, 0.1201, 1, 1000)};
    cv.DP.value = 0.5;  // a drop against reverse flow
    warn_check(ctx, p, cv);
    HX hx;
    hx.NAME[1] = "E1";
    hx.NOZI.CON = line(5.0, 0.1, 1, 1000);
    hx.DP.value = -0.1;
    warn_exchanger(ctx, p, hx);
    hx.DP.value = -1e-07;  // within the tolerance
    warn_exchanger(ctx, p, hx);
    Misc m;
    m.NAME[1] = "X1";
    m.NOZI.CON = hx.NOZI.CON;
    m.DP.value = -0.1;
    warn_misc(ctx, p, m);
    Expand e;
    e.NAME[1] = "R1";
    e.CHOKE = -1;
    warn_expander(ctx, e);
    Tee t;
    t.NAME[1] = "T1";
    t.C[2] = 1;
    t.M[2] = 2;
    warn_tee(ctx, p, t);
    t.M[2] = 3;
    warn_tee(ctx, p, t);

    EXPECT_EQ(take_run_log(ctx), (std::vector<std::string>{
                        "Warning! Check valve CK1 has negative dP in direction of flow.",
                        "Warning! Check valve CK1 inlet and outlet pipe IDs differ.",
                        "Warning! Exchanger E1 has negative dP in direction of flow.",
                        "Warning! Miscellaneous equip X1 has negative dP in direction of flow.",
                        "Warning! Choked flow through expander R1",
                        "Error! Tee T1 manifold pipe IDs differ.",
                    }));
}

}  // namespace
}  // namespace velm
