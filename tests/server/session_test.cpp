// The session behind the page: questions that stop a request and change
// nothing, undo and redo, the sheet's JSON, runs on the worker thread.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

#include "drawing/items.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "server/rtf_text.hpp"
#include "server/session.hpp"
#include "server/web_server.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

using Json = nlohmann::json;

bool load(RunContext& ctx, Project& p, const std::string& file) {
    NewProject(p);
    return ReadPipeLib(ctx, p.pipedata, {}) && ReadVdf(ctx, p, file);
}

struct SessionFixture : ::testing::Test {
    std::filesystem::path dir = scratch_dir(::testing::UnitTest::GetInstance()->current_test_info()->name());
    Session session{load, dir / "out"};
    RecordingInteraction quiet;

    void SetUp() override {
        ::setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
        ASSERT_TRUE(session.start(quiet, std::string(VELM_SOURCE_DIR) + "/examples/pump_loop.vdf"));
    }
    Json command(const std::string& name, std::vector<int> answers = {}) {
        RequestInteraction io(std::move(answers));
        Json reply = Json::object();
        EXPECT_TRUE(session.command(io, name, Json::object(), reply));
        reply["told"] = io.told;
        return reply;
    }
    Json item(const Json& sheet, const std::string& kind, int index) {
        for (const Json& i : sheet["items"])
            if (i["kind"] == kind && i["index"] == index) return i;
        return {};
    }
};

// A question without its answer stops the request: the page asks it and sends
// the request again; until then the project stays as it was.
TEST_F(SessionFixture, AQuestionWithoutAnAnswerChangesNothing) {
    command("mnuEditSelectAll");
    const Project before = session.project();
    struct Case {
        std::vector<int> answers;
        int pumps_left;
    };
    for (const Case& c : {Case{{}, 1}, Case{{1}, 1}, Case{{0}, 0}}) {
        RequestInteraction io(c.answers);
        try {
            session.key(io, 46, false, false);
            EXPECT_FALSE(c.answers.empty());
        } catch (const NeedAnswer& q) {
            EXPECT_EQ(q.question, "Delete selected equipment ?");
            EXPECT_EQ(q.choices, (std::vector<std::string>{"Yes", "No"}));
            session.undo_pending();
        }
        EXPECT_EQ(count(session.project().pumps), c.pumps_left) << c.answers.size();
        if (c.pumps_left == 1) {
            EXPECT_TRUE(session.project().lines == before.lines);
        }
    }
    EXPECT_EQ(count(session.project().lines), 0);
}

TEST_F(SessionFixture, UndoAndRedoOfEditsAndNoStepForAHover) {
    const Project start = session.project();
    const Json sheet = session.sheet();
    const Json pump = item(sheet, "Pump", 1);
    const float x = (pump["box"][0].get<float>() + pump["box"][2].get<float>()) / 2;
    const float y = pump["box"][3].get<float>() - 10.0f;
    RequestInteraction io({});
    session.pointer(io, "move", {x, y});
    EXPECT_FALSE(session.sheet()["undo"].get<bool>()) << "a hover is no edit";
    session.pointer(io, "down", {x, y});
    session.pointer(io, "move", {x + 1000.0f, y});
    session.pointer(io, "up", {x + 1000.0f, y});
    const Project moved = session.project();
    EXPECT_EQ(moved.pumps[1].XY[1], start.pumps[1].XY[1] + 1000.0f);
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(session.project().pumps[1].XY, start.pumps[1].XY);
    EXPECT_TRUE(session.redo());
    EXPECT_EQ(session.project().pumps[1].XY, moved.pumps[1].XY);
    EXPECT_FALSE(session.redo());
}

TEST_F(SessionFixture, TheSheetNamesEveryItemWithItsPortsAndLabels) {
    const Json s = session.sheet("Input");
    EXPECT_EQ(s["title"].get<std::string>().rfind("VELM - [", 0), 0u);
    EXPECT_EQ(s["items"].size(), 9u);
    const Json valve = item(s, "Valve", 1);
    EXPECT_EQ(valve["name"], "FV-101");
    EXPECT_EQ(valve["ports"][0][2], 3);  // line 3 ends on the valve's inlet
    EXPECT_EQ(valve["ports"][1][2], 4);
    EXPECT_EQ(valve["labels"], (Json{"FV-101", "Cv=160.0", "Open=55.0;80.0 %"}));
    // Each line's ends sit on the ports that hold it.
    const Json line3 = item(s, "Line", 3);
    EXPECT_EQ(line3["ports"].back()[0], valve["ports"][0][0]);
    EXPECT_EQ(line3["ports"].back()[1], valve["ports"][0][1]);
    EXPECT_EQ(session.sheet("None")["items"][0]["labels"].size(), 0u);
}

TEST_F(SessionFixture, ARunOnTheWorkerThreadHandsItsResultsBack) {
    Json reply = command("mnuRunSimRun");
    EXPECT_TRUE(reply["run"].get<bool>());
    session.join_run();
    const Json state = session.run_state();
    EXPECT_FALSE(state["active"].get<bool>());
    EXPECT_EQ(state["log"].back(), "Runlog - Case 2 solution reached after 6 iterations.");
    EXPECT_GT(session.project().lines[4].TFLOW.value, 70.0);
    const Json s = session.sheet();
    EXPECT_EQ(s["labelMode"], "Result");
    EXPECT_TRUE(s["dirty"].get<bool>());
    reply = command("mnuRunResultsView");
    EXPECT_NE(reply["view"]["text"].get<std::string>().find("PRESSURE PROFILE REPORT"), std::string::npos);
}

// The Flash of the fluid dialog works on a copy: the dialog shows what the
// flash found and the trace, the project keeps its line until OK.
TEST_F(SessionFixture, TheFluidDialogsFlashChangesNothingUntilOk) {
    EXPECT_EQ(command("mnuEditFluid")["told"][0], "Select a line to edit its fluid.");
    ASSERT_TRUE(session.start(quiet, std::string(VELM_SOURCE_DIR) + "/examples/condensate_flash_drum.vdf"));
    const std::vector<Line> before = session.project().lines;
    const Json d = session.phase_flash(1, {{"TEMP1", "150"}, {"PRES1", "100"}});
    ASSERT_TRUE(d.contains("fields")) << d.dump();
    EXPECT_NE(d["log"].get<std::string>().find("Flash - Results"), std::string::npos);
    for (const Json& f : d["fields"]) {
        if (f["name"] == "LF1") {
            EXPECT_EQ(f["text"], "0");  // steam at 150 C and 100 kPag
        }
    }
    EXPECT_TRUE(session.project().lines == before);
    EXPECT_EQ(session.phase_flash(1, {{"COMP0_1", "0.5"}})["message"],
              "Error! Stream C-201_In flash failed. Input composition <> 1 or No components defined.");
    EXPECT_TRUE(session.project().lines == before);
}

TEST_F(SessionFixture, CommandsThatNeedThePageOrDoNotExist) {
    EXPECT_EQ(command("mnuFileOpen", {1})["picker"]["mode"], "open");
    EXPECT_EQ(command("mnuRunLogView")["told"][0], "File not found. Run hydraulics/HMB to create file.");
    EXPECT_EQ(command("mnuFileSaveClip")["told"][1], "Press ALT-PRINT SCREEN before execuring this command.");
    Json reply;
    RequestInteraction io({});
    EXPECT_FALSE(session.command(io, "mnuNoSuchThing", Json::object(), reply));
}

TEST(RtfText, ControlWordsGoAndParagraphsBreak) {
    EXPECT_EQ(rtf_to_text(R"({\rtf1\ansi{\fonttbl{\f0 Courier New;}}{\colortbl;\red0\green0\blue0;}\f0\fs16 A  B\par )"
                          R"(C\'e9\{x\}\page D})"),
              "A  B\nC\xe9{x}\n\f\nD");
}

TEST(Token, ThirtyTwoHexDigitsAndNeverTheSame) {
    const std::string a = new_token(), b = new_token();
    EXPECT_EQ(a.size(), 32u);
    EXPECT_EQ(a.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(a, b);
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

// Every connection names a line that exists, every tee leg and reference too,
// and no line end is at a non-finite place.
void expect_consistent(Session& s, int step) {
    Project& p = s.project();
    const int lines = count(p.lines);
    for_each_item(p, [&](ItemRef r) {
        for (const PortRef& port : item_ports(p, r)) {
            ASSERT_GE(*port.con, 0) << step;
            ASSERT_LE(*port.con, lines) << step << " " << kind_name(r.kind) << " " << r.index;
        }
    });
    for (int L = 1; L <= lines; ++L) {
        const Line& l = p.lines[static_cast<std::size_t>(L)];
        ASSERT_GE(l.BEND, 0) << step;
        ASSERT_LE(l.BEND, kLinePoints - 2) << step;
        ASSERT_GE(l.REFLINE, 0) << step;
        ASSERT_LE(l.REFLINE, lines) << step;
        for (float v : l.XY) ASSERT_TRUE(std::isfinite(v)) << step;
    }
}

// A long run of random presses, moves, releases, double clicks, keys, tools
// and undos on an example keeps the project consistent after every event.
TEST_F(SessionFixture, RandomGesturesKeepEveryReferenceValid) {
    std::mt19937 rng(20261124);
    std::uniform_real_distribution<float> x(-500.0f, 20000.0f), y(-500.0f, 6000.0f);
    const char* types[] = {"down", "move", "move", "up", "dblclick"};
    const int keys[] = {27, 13, 46, 'C', 'V'};
    for (int step = 0; step < 3000; ++step) {
        RequestInteraction io({0, 0, 0});
        const int what = static_cast<int>(rng() % 20);
        try {
            if (what < 14) session.pointer(io, types[rng() % 5], {x(rng), y(rng), 1, rng() % 7 == 0, rng() % 5 == 0});
            else if (what < 16) session.key(io, keys[rng() % 5], false, rng() % 2 == 0);
            else if (what < 18) session.arm_tool(49 + static_cast<int>(rng() % 16));
            else if (what == 18) session.undo();
            else session.redo();
        } catch (const NeedAnswer&) {
            session.undo_pending();
        }
        expect_consistent(session, step);
        if (HasFatalFailure()) return;
    }
}

}  // namespace
}  // namespace velm
