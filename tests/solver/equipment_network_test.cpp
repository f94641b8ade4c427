// Networks with equipment: rating and sizing agree, several cases run in
// order, check valves shut against reverse flow, and bad equipment data gets
// its message without stopping the program.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "solver/run.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

struct ExampleRun {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    explicit ExampleRun(const std::string& example) {
        ctx.data_dir = scratch_dir("equipment");
        ctx.soserror = 1e-10;
        ctx.max_iter = 100;
        NewProject(p);
        EXPECT_TRUE(ReadPipeLib(ctx, p.pipedata));
        EXPECT_TRUE(ReadVdf(ctx, p, std::string(VELM_SOURCE_DIR) + "/examples/" + example));
    }
    RunResult run() { return Hydr_Sim(ctx, p); }
    std::string log() const {
        std::ifstream in(ctx.run_file("runlog.txt"), std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        return s.str();
    }
};

TEST(EquipmentNetwork, RatedEquipmentSizedAtItsSolutionGivesBackItsRating) {
    ExampleRun r("pump_loop.vdf");
    r.p.gen.CASENO = "1";
    ASSERT_TRUE(r.run().all_converged());
    // The final results size the valve and the meter at the solved flow and drops.
    EXPECT_NEAR(r.p.valves[1].CV.value, 160.0, 0.001 * 160.0);
    EXPECT_NEAR(r.p.fos[1].BETA.value, 0.55, 0.001 * 0.55);
}

TEST(EquipmentNetwork, AValveSizedForTheRatedDropPassesTheRatedFlow) {
    ExampleRun rated("pump_loop.vdf");
    rated.p.gen.CASENO = "1";
    ASSERT_TRUE(rated.run().all_converged());
    const double W = rated.p.lines[1].TFLOW.value;
    const double dp = rated.p.valves[1].DP.value;
    const double cv_in_force = rated.p.valves[1].CV.value * rated.p.valves[1].OPEN.value / 100.0;

    ExampleRun sized("pump_loop.vdf");
    sized.p.gen.CASENO = "1";
    Valve& v = sized.p.valves[1];
    v.OPEN.spec = "";
    v.CV.spec = "";
    v.DP.spec = std::to_string(dp);
    ASSERT_TRUE(sized.run().all_converged());
    EXPECT_NEAR(sized.p.lines[1].TFLOW.value, W, 0.001 * W);
    EXPECT_NEAR(v.CV.value, cv_in_force, 0.001 * cv_in_force);
    EXPECT_EQ(v.OPEN.value, 100.0);
}

TEST(EquipmentNetwork, CasesRunOneAfterTheOtherFromTheLastState) {
    ExampleRun r("pump_loop.vdf");
    const RunResult res = r.run();
    ASSERT_EQ(res.cases.size(), 2u);
    EXPECT_TRUE(res.all_converged());
    const std::string log = r.log();
    const auto first = log.find("Case 1 Hydraulic solution reached after");
    const auto second = log.find("Case 2 Hydraulic solution reached after");
    EXPECT_NE(first, std::string::npos);
    EXPECT_NE(second, std::string::npos);
    EXPECT_LT(first, second);
    // The valve opens from 55 % to 80 %: more flow in case 2.
    EXPECT_GT(r.p.lines[4].TFLOW.value, 60.0);
}

TEST(EquipmentNetwork, ACheckValveShutsAgainstReverseFlow) {
    ExampleRun r("tee_header.vdf");
    r.p.prods[1].PRES.spec = "600";  // user A above the supply pressure
    const RunResult res = r.run();
    ASSERT_TRUE(res.all_converged()) << res.title;
    EXPECT_LT(std::fabs(r.p.lines[3].TFLOW.value), 0.05);  // t/h: shut but for the solver's leak
    EXPECT_GT(r.p.lines[5].TFLOW.value, 0.0);
}

TEST(EquipmentNetwork, BadEquipmentDataGetsItsMessage) {
    struct Row {
        const char* what;
        const char* example;
        void (*edit)(Project&);
        const char* message;
    };
    const Row rows[] = {
        {"valve given both a drop and a Cv", "pump_loop.vdf",
         [](Project& p) { p.valves[1].DP.spec = "150"; },
         "Case 1 Error! Number of Specs more than Variables."},
        {"pump curve of one point", "pump_loop.vdf", [](Project& p) { p.pumps[1].HQ1 = 1; },
         "Error! At least 2 point required for pump curve."},
        {"pump curve with descending flows", "pump_loop.vdf",
         [](Project& p) { std::swap(p.pumps[1].CURQ[2], p.pumps[1].CURQ[4]); },
         "Error! Pump P-101 curve flows are not in ascending order."},
        {"flow above the last curve point", "pump_loop.vdf",
         [](Project& p) { p.pumps[1].HQ1 = 3; },
         "Error! Curve interpolation above maximum. Use maximum."},
    };
    for (const Row& row : rows) {
        ExampleRun r(row.example);
        r.p.gen.CASENO = "1";
        r.ctx.max_iter = 5;
        row.edit(r.p);
        r.run();
        EXPECT_NE(r.log().find(row.message), std::string::npos) << row.what << "\n" << r.log().substr(0, 600);
    }
}

}  // namespace
}  // namespace velm
