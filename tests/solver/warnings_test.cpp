// The warnings after a case: each one's exact words, the record it flags, its
// place in the order, and the list the report prints matching the run log.
#include "solver/warnings.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "solver/results.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

constexpr int32_t kRed = 255;

class Warnings : public ::testing::Test {
protected:
    Warnings() {
        ctx.run_active = true;
        reset();
    }
    void reset() {
        p = Project{};
        p.gen.PATM = 101.325;
        p.color_error = kRed;
        p.lines.resize(1);
    }

    // A liquid line L<n> of 0.1 m, W t/h, from 100 to 90 kPag, with no limits.
    Line& add_line(double W = 0.0) {
        Line l;
        l.NAME[1] = "L" + std::to_string(p.lines.size());
        l.TFLOW.value = W;
        l.ID.value = l.IDH.value = 0.1;
        l.LF = {0.0, 1.0, 1.0, 1.0};
        l.PRES = {0.0, 100.0, 90.0, 95.0};
        l.TPROP = {0.0, 1000.0, 1000.0, 1000.0, 1000.0, 0.0, 1.0};
        l.LEN = 10.0;
        p.lines.push_back(l);
        return p.lines.back();
    }
    template <class R>
    R& add(std::vector<R>& v, const char* name) {
        if (v.empty()) v.resize(1);
        v.emplace_back();
        v.back().NAME[1] = name;
        return v.back();
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

// Each warning of the table, set up on its own: the words in order, and the
// colour of the record afterwards (red when the warning flags it).
TEST_F(Warnings, EachWarningInItsWordsAndFlag) {
    struct Row {
        const char* what;
        std::function<void()> setup;
        std::function<int32_t()> color;
        std::vector<std::string> words;
        bool flagged;
    };
    const std::vector<Row> rows = {
        {"absolute pressure below 0", [&] { add_line(1).PRES[2] = -101.4; },
         [&] { return p.lines[1].COLOR; }, {"Error! Line L1 in/out abs pressure less than 0."}, false},
        {"drop over 40% of a vapour line's inlet", [&] { add_line(5).LF[3] = 0.5; p.lines[1].PRES[2] = 10.0; },
         [&] { return p.lines[1].COLOR; }, {"Warning! Line L1 pressure drop exceeds 40% of inlet."}, false},
        // Backwards the inlet is the drawn outlet: 110 / (101.325 + 90) is above 0.4, 110 / 301.325 is not.
        {"reverse flow takes the outlet as inlet", [&] { add_line(-5).LF[3] = 0.5; p.lines[1].PRES[1] = 200.0; },
         [&] { return p.lines[1].COLOR; }, {"Warning! Line L1 pressure drop exceeds 40% of inlet."}, false},
        {"forward flow, the same drop", [&] { add_line(5).LF[3] = 0.5; p.lines[1].PRES[1] = 200.0; },
         [&] { return p.lines[1].COLOR; }, {}, false},
        {"a liquid line drops freely", [&] { add_line(5).PRES[2] = 0.0; }, [&] { return p.lines[1].COLOR; },
         {}, false},
        {"gradient over its limit, either sign", [&] { Line& l = add_line(-5); l.DPL = -30.0; l.SIZ[2] = 22.6; },
         [&] { return p.lines[1].COLOR; }, {"Warning! Line L1 dP/L exceeds maximum (kPa/100m) = 22.6"}, false},
        // 120 / sqrt(1000) = 3.7947 m/s; 10 / sqrt(1000) = 0.3162 m/s.
        {"velocity over C / sqrt(rho)", [&] { Line& l = add_line(5); l.VEL[3] = -4.0; l.SIZ[6] = 120.0; },
         [&] { return p.lines[1].COLOR; }, {"Warning! Line L1 velocity coef exceeds maximum (m/s) = 3.7947"}, false},
        {"velocity under C / sqrt(rho)", [&] { Line& l = add_line(5); l.VEL[3] = 0.2; l.SIZ[7] = 10.0; },
         [&] { return p.lines[1].COLOR; }, {"Warning! Line L1 velocity coef less than minimum (m/s) = 0.3162"}, false},
        {"end velocities over the maximum",
         [&] { Line& l = add_line(5); l.VEL = {0, 6.0, 7.0, 0, 0}; l.SIZ[4] = 5.0; },
         [&] { return p.lines[1].COLOR; },
         {"Warning! Line L1 inlet velocity exceeds maximum (m/s) = 5.0",
          "Warning! Line L1 outlet velocity exceeds maximum (m/s) = 5.0"}, false},
        // 1.001 * 300 = 300.3: the inlet at 300.2 is within the margin.
        {"outlet past sonic", [&] { add_line(5).VEL = {0, 300.2, 301.0, 0, 300.0}; },
         [&] { return p.lines[1].COLOR; }, {"Error! Line L1 outlet velocity exceeds sonic velocity (m/s) = 300.0"}, true},
        {"shorter than its rise", [&] { add_line(5).ELEV = {0, 2.0, 12.5}; }, [&] { return p.lines[1].COLOR; },
         {"Warning! Line L1 length less than elevation change."}, false},
        {"choked feed", [&] { add(p.feeds, "F1").CHOKE = -1; }, [&] { return p.feeds[1].COLOR; },
         {"Warning! Choked flow through Feed F1"}, true},
        {"choked product", [&] { add(p.prods, "P1").CHOKE = -1; }, [&] { return p.prods[1].COLOR; },
         {"Warning! Choked flow through Product P1"}, true},
        {"valve: drop against the flow, open past 100 %",
         [&] { add_line(5); Valve& v = add(p.valves, "V1"); v.CON = {0, 1, 0}; v.DP.value = -0.5; v.OPEN.value = 101.0; },
         [&] { return p.valves[1].COLOR; },
         {"Warning! Valve V1 has negative dP in direction of flow.", "Warning! Valve V1 more than 100 % open."}, false},
        {"valve fully open", [&] { add(p.valves, "V1").OPEN.value = 100.0; }, [&] { return p.valves[1].COLOR; },
         {}, false},
        {"orifice: drop against reverse flow, bores differ",
         [&] {
             add_line(-5);
             add_line(-5).ID.value = 0.2;
             FO& fo = add(p.fos, "FE1");
             fo.CON = {0, 1, 2};
             fo.DP.value = 0.5;
         },
         [&] { return p.fos[1].COLOR; },
         {"Warning! Flow orifice FE1 has negative dP in direction of flow.",
          "Warning! Flow orifice FE1 inlet and outlet pipe IDs differ."}, false},
        {"vessel: medium layer below the heavy",
         [&] { Vessel& v = add(p.vessels, "D1"); v.LEVH1 = "2"; v.LEVM1 = "1"; v.LEVM3 = 900.0; },
         [&] { return p.vessels[1].COLOR; }, {"Warning! Vessel D1 - Medium level below Heavy level."}, false},
        {"vessel: no medium liquid, no warning",
         [&] { Vessel& v = add(p.vessels, "D1"); v.LEVH1 = "2"; v.LEVM1 = "1"; },
         [&] { return p.vessels[1].COLOR; }, {}, false},
        {"vessel: light layer below the medium, levels of case 2",
         [&] {
             Vessel& v = add(p.vessels, "D1");
             v.LEVH1 = "1";
             v.LEVM1 = "0;3";
             v.LEVL1 = "5;2";
             v.LEVL3 = 800.0;
         },
         [&] { return p.vessels[1].COLOR; }, {"Warning! Vessel D1 - Light level below Medium/Heavy level."}, false},
    };
    for (const Row& r : rows) {
        reset();
        r.setup();
        ctx.case_warnings.clear();
        HydrResulWarnings(ctx, p, 2);
        EXPECT_EQ(take_run_log(ctx), r.words) << r.what;
        EXPECT_EQ(ctx.case_warnings, r.words) << r.what;
        EXPECT_EQ(r.color() == kRed, r.flagged) << r.what;
    }
}

// A line with 0 to 8 wt% vapour is never told: whatever its liquid fraction,
// the test cannot hold.
TEST_F(Warnings, TheFewPerCentVapourLineIsNeverTold) {
    for (double LF : {0.0, 0.5, 0.92, 0.95, 0.999, 1.0, 1.05, 2.0}) {
        Line& l = add_line(5);
        l.LF = {0.0, LF, LF, LF};
        l.PRES[2] = 99.0;  // no other warning on the way
    }
    HydrResulWarnings(ctx, p, 1);
    EXPECT_TRUE(take_run_log(ctx).empty());
}

// Kinds in their order whatever the order of set-up; the list handed to the
// report starts afresh with each case.
TEST_F(Warnings, KindsInOrderAndAFreshListEachCase) {
    Tee& t = add(p.tees, "T1");
    add_line(5);
    add_line(5).ID.value = 0.3;
    t.C[2] = 1;
    t.M[2] = 2;
    add(p.expands, "R1").CHOKE = -1;
    Pump& pump = add(p.pumps, "P1");
    pump.CON = {0, 1, 2};
    pump.DP.value = -2.0;
    pump.NPSHA13.spec = pump.NPSHR13.spec = "3";
    add(p.feeds, "F1").CHOKE = -1;
    p.lines[2].LEN = 0.0;
    p.lines[2].ELEV[2] = 1.0;
    ctx.case_warnings = {"left from the case before"};
    HydrResulFinalSub(ctx, p, 1);
    const std::vector<std::string> expected = {
        "Warning! Line L2 length less than elevation change.",
        "Warning! Choked flow through Feed F1",
        "Warning! Pump P1 has negative head in direction of flow.",
        "Warning! Choked flow through expander R1",
        "Error! Tee T1 manifold pipe IDs differ.",
    };
    EXPECT_EQ(ctx.case_warnings, expected);
    EXPECT_EQ(take_run_log(ctx), expected);
}

}  // namespace
}  // namespace velm
