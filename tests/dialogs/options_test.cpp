// The Options dialogs: an OK with nothing changed leaves the header, the
// templates, the run limits and the settings as they were; a bad entry is
// refused in CheckInput's or the run's words with nothing changed; good
// entries land in internal units and in the settings; component names land
// as numbers; a template's dialog edits element 0 alone.
#include "dialogs/options.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <functional>

#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/records.hpp"
#include "model/settings.hpp"
#include "model/text.hpp"
#include "tests/test_support.hpp"
#include "thermo/components.hpp"

namespace velm {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

const char* const kOptions[] = {
    "mnuOptionsDef",    "mnuOptionsCalcs",   "mnuOptionsCases",   "mnuOptionsTitle",    "mnuOptionsKomp",
    "mnuOptionsLines",  "mnuOptionsFeeds",   "mnuOptionsProducts", "mnuOptionsValves",  "mnuOptionsChecks",
    "mnuOptionsPumps",  "mnuOptionsComp",    "mnuOptionsFO",      "mnuOptionsHX",       "mnuOptionsMisc",
    "mnuOptionsExpand", "mnuOptionsTee",     "mnuOptionsSplit",   "mnuOptionsVessels",
};

struct OptionsTest : ::testing::Test {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    Settings s;
    DisplayUnits metric;
    std::vector<std::string> names;  // the component library, names[k] of number k

    void SetUp() override {
        NewProject(p);
        ReadPipeLib(ctx, p.pipedata);
        p.lines.resize(3, p.lines[0]);
        p.lines[1].NAME[1] = "L1";
        p.lines[2].NAME[1] = "L2";
        p.valves.resize(2, p.valves[0]);
        p.valves[1].NAME[1] = "CV1";
        CompLibrary lib;
        lib.mflash = p.gen.MFLASH;
        GetCompNames(ctx, lib, names);
        ASSERT_GT(names.size(), 6u);
        p.gen.COMP[1] = 2;
        p.gen.COMP[2] = 5;
        // Values no dialog would write, which an unchanged OK must keep.
        p.gen.PATM = 100.0 + 1.0 / 3.0;
        p.gen.MACCEL = "GPSA";
        p.gen.MFLASHK = "ANTOINE";
        p.gen.DWGSIZ = {0.0f, 16000.5f, 11000.25f};
        p.gen.PRJ[4] = fixed_width("  Unit 7, North", 50);
        ctx.max_iter = 37;
        ctx.soserror = 0.0004;
        s.set("Units", "British");
        s.set("MaxIter", "55");
        s.set("MethodFit", "2K");
    }

    // The whole state an Options OK may touch.
    struct State {
        Project p;
        std::vector<std::pair<std::string, std::string>> settings;
        int max_iter;
        double soserror;
    };
    State state() const { return State{p, s.values, ctx.max_iter, ctx.soserror}; }
    void expect_state(const State& was) const {
        EXPECT_TRUE(p.gen == was.p.gen);
        EXPECT_TRUE(p.lines == was.p.lines && p.feeds == was.p.feeds && p.prods == was.p.prods &&
                    p.valves == was.p.valves && p.checks == was.p.checks && p.pumps == was.p.pumps &&
                    p.comps == was.p.comps && p.fos == was.p.fos && p.hxs == was.p.hxs && p.miscs == was.p.miscs &&
                    p.expands == was.p.expands && p.tees == was.p.tees && p.juncs == was.p.juncs &&
                    p.vessels == was.p.vessels);
        EXPECT_EQ(s.values, was.settings);
        EXPECT_EQ(ctx.max_iter, was.max_iter);
        EXPECT_EQ(ctx.soserror, was.soserror);
    }
};

TEST_F(OptionsTest, OkWithNothingChangedLeavesEverythingAsItWas) {
    for (const DisplayUnits& units : {metric, british_units()}) {
        for (const char* name : kOptions) {
            SCOPED_TRACE(std::string(name) + " in " + units.set);
            const std::optional<Dialog> d = load_options_dialog(ctx, p, s, units, name);
            ASSERT_TRUE(d.has_value());
            ASSERT_FALSE(d->fields.empty());
            Texts all;
            for (const DialogField& f : d->fields) all.emplace_back(f.name, f.text);
            const State before = state();
            EXPECT_EQ(apply_options_dialog(ctx, p, s, units, name, all), "");
            expect_state(before);
            EXPECT_EQ(apply_options_dialog(ctx, p, s, units, name, {}), "");
            expect_state(before);
        }
    }
    EXPECT_FALSE(load_options_dialog(ctx, p, s, metric, "mnuOptionsNone").has_value());
    EXPECT_EQ(apply_options_dialog(ctx, p, s, metric, "mnuOptionsNone", {}),
              "Error in OK = 1 : no dialog for mnuOptionsNone.");
    EXPECT_TRUE(ui.told.empty()) << ui.told.front();
}

TEST_F(OptionsTest, BadEntryIsRefusedWithItsWordsAndChangesNothing) {
    const std::string invalid = "Error during input checking. Invalid input= ";
    struct Row {
        const char* name;
        Texts typed;
        std::string says;
    };
    const Row rows[] = {
        {"mnuOptionsDef", {{"PATM", "-1"}}, "Invalid atmosperic pressure."},
        {"mnuOptionsDef", {{"PATM", "abc"}}, invalid + "abc ."},
        // The first bad entry in the dialog's order speaks, although a later one is bad too.
        {"mnuOptionsDef", {{"PRTWID", "0"}, {"PATM", "-5"}}, "Invalid atmosperic pressure."},
        {"mnuOptionsDef", {{"UNITS", "Imperial"}}, invalid + "Imperial ."},
        {"mnuOptionsDef", {{"MAXITER", "0"}, {"UNITS", "British"}}, invalid + "0 ."},
        {"mnuOptionsDef", {{"SOSERROR", "-0.001"}}, invalid + "-0.001 ."},
        {"mnuOptionsDef", {{"DWGGRD2", "25"}}, invalid + "25 ."},
        {"mnuOptionsDef", {{"RPTSIZ4", "12"}}, invalid + "12 ."},
        {"mnuOptionsDef", {{"PRTWID", "101"}}, invalid + "101 ."},
        {"mnuOptionsDef", {{"DWGSTD", "A0 Landscape"}}, invalid + "A0 Landscape ."},
        {"mnuOptionsCalcs", {{"MTP", "Friedel"}}, invalid + "Friedel ."},
        {"mnuOptionsCalcs", {{"MFLASH", "PPP"}}, invalid + "PPP ."},
        {"mnuOptionsCalcs", {{"MACCEL", "GPSA2"}}, invalid + "GPSA2 ."},
        {"mnuOptionsCalcs", {{"MFIT", "2K"}, {"MHDAMP", "1.5"}}, "Invalid ratio (0 to 1)."},
        {"mnuOptionsCases", {{"CASENO", "1;x"}},
         "Error! CASENO = \"1;x\": case \"x\" is not a case number from 1 to 100."},
        {"mnuOptionsCases", {{"CASERPT", "0;99999"}},
         "Error! CASERPT = \"0;99999\": \"99999\" is not a report code from -1 to 16383."},
        {"mnuOptionsTitle", {{"PRJ3", "The \"big\" one"}}, "Invalid text entry (Dbl quotes not allowed)."},
        {"mnuOptionsKomp", {{"COMP3", "Unobtainium"}}, invalid + "Unobtainium ."},
        {"mnuOptionsLines", {{"MAT", "Unobtainium"}}, "Invalid pipe material."},
        {"mnuOptionsValves", {{"ELEV", "200000"}}, "Invalid input (-100 000 to 100 000)."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.typed.front().first + "=" + row.typed.front().second);
        const State before = state();
        ctx.project_dirty = false;
        EXPECT_EQ(apply_options_dialog(ctx, p, s, metric, row.name, row.typed), row.says);
        expect_state(before);
        EXPECT_FALSE(ctx.project_dirty);
    }
}

TEST_F(OptionsTest, GoodEntriesLandInTheHeaderAndTheSettings) {
    struct Row {
        const char* name;
        bool british;
        Texts typed;
        std::function<void(const OptionsTest&)> expect;
    };
    const Row rows[] = {
        {"mnuOptionsCases", false, {{"CASENO", "1;2;3"}, {"CASEDSC", "DESIGN;TURNDOWN;START-UP"}, {"CASERPT", "1;0;-1"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.CASENO, "1;2;3");
             EXPECT_EQ(t.p.gen.CASEDSC, "DESIGN;TURNDOWN;START-UP");
             EXPECT_EQ(t.p.gen.CASERPT, "1;0;-1");
         }},
        {"mnuOptionsCases", false, {{"CASEDLG", "Yes"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.CASEDLG, -1);
             EXPECT_EQ(*t.s.find("iCaseShow"), "-1");
         }},
        // Typed in psig, kept in kPa; the settings keep the internal value.
        {"mnuOptionsDef", true, {{"PATM", "14.5038"}},
         [](const OptionsTest& t) {
             EXPECT_NEAR(t.p.gen.PATM, 100.0, 1e-9);
             EXPECT_NEAR(std::stod(*t.s.find("Patm")), 100.0, 1e-9);
         }},
        // Blank run limits stand for 10 iterations and 0.001.
        {"mnuOptionsDef", false, {{"MAXITER", ""}, {"SOSERROR", " "}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.ctx.max_iter, 10);
             EXPECT_EQ(t.ctx.soserror, 0.001);
             EXPECT_EQ(*t.s.find("MaxIter"), "10");
             EXPECT_EQ(std::stod(*t.s.find("soserror")), 0.001);
         }},
        {"mnuOptionsDef", false, {{"UNITS", "british"}, {"DWGSTD", "a3 landscape"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.UNITS, "British");
             EXPECT_EQ(t.p.gen.DWGSTD, "A3 Landscape");
             EXPECT_EQ(t.p.gen.DWGSIZ[1], 23811.0f);
             EXPECT_EQ(t.p.gen.DWGSIZ[2], 16837.0f);
             EXPECT_EQ(*t.s.find("Units"), "British");
             EXPECT_EQ(*t.s.find("DrawSize"), "A3 Landscape");
             EXPECT_EQ(t.s.find("Patm"), nullptr);  // not touched, not written
         }},
        {"mnuOptionsDef", false, {{"DWGSTD", "Custom"}, {"DWGSIZ1", "20000"}, {"DWGSIZ2", "10000"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.DWGSIZ[1], 20000.0f);
             EXPECT_EQ(t.p.gen.DWGSIZ[2], 10000.0f);
         }},
        {"mnuOptionsCalcs", false, {{"MTP", "beggs-brill"}, {"MFLASHK", "srk"}, {"MDUKF", "Yes"}, {"MHDAMP", "0.5"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.MTP, "Beggs-Brill");
             EXPECT_EQ(t.p.gen.MFLASHK, "SRK");
             EXPECT_EQ(t.p.gen.MDUKF, -1);
             EXPECT_EQ(t.p.gen.MHDAMP, 0.5);
             EXPECT_EQ(*t.s.find("MethodTwoPhaseFlow"), "Beggs-Brill");
             EXPECT_EQ(*t.s.find("MethodFlashK"), "SRK");
             EXPECT_EQ(*t.s.find("MethodDuklerF"), "-1");
             EXPECT_EQ(*t.s.find("gHydrDamp"), "0.5");
             EXPECT_EQ(*t.s.find("MethodFit"), "2K");  // an entry left alone keeps its key
         }},
        // Title lines keep their widths, a long one cut.
        {"mnuOptionsTitle", false, {{"ENG1", "A. Engineer-Smith"}, {"PRJ3", "Tank farm"}},
         [](const OptionsTest& t) {
             EXPECT_EQ(t.p.gen.ENG[1], "A. Enginee");
             EXPECT_EQ(t.p.gen.PRJ[3], fixed_width("Tank farm", 50));
             EXPECT_TRUE(t.s.values.size() == 3u);
         }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.name) + " " + row.typed.front().first + "=" + row.typed.front().second);
        SetUp();
        s.values.clear();
        s.set("MethodFit", "2K");
        s.set("Units", "Metric");
        s.set("MaxIter", "37");
        ASSERT_EQ(apply_options_dialog(ctx, p, s, row.british ? british_units() : metric, row.name, row.typed), "");
        row.expect(*this);
    }
}

TEST_F(OptionsTest, ComponentsShowByNameAndLandAsNumbers) {
    const Dialog d = *load_options_dialog(ctx, p, s, metric, "mnuOptionsKomp");
    ASSERT_EQ(d.fields.size(), 30u);
    EXPECT_EQ(d.fields[0].name, "COMP1");
    EXPECT_EQ(d.fields[29].name, "COMP30");
    EXPECT_EQ(d.fields[0].text, names[2]);
    EXPECT_EQ(d.fields[1].text, names[5]);
    EXPECT_EQ(d.fields[2].text, "");
    ASSERT_FALSE(d.fields[2].choices.empty());
    EXPECT_NE(std::find(d.fields[2].choices.begin(), d.fields[2].choices.end(), names[6]), d.fields[2].choices.end());

    struct Row {
        Texts typed;
        std::vector<int> comps;  // places 1.. after the OK; the rest 0
    };
    std::string lower = names[6];
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const Row rows[] = {
        {{{"COMP3", " " + lower + " "}}, {2, 5, 6}},
        {{{"COMP2", names[3]}}, {2, 3}},
        // An emptied place closes up.
        {{{"COMP1", ""}}, {5}},
        {{{"COMP1", ""}, {"COMP2", ""}}, {}},
        {{{"COMP5", names[4]}}, {2, 5, 4}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed.front().first + "=" + row.typed.front().second);
        p.gen.COMP = {};
        p.gen.COMP[1] = 2;
        p.gen.COMP[2] = 5;
        const Header before = p.gen;
        ASSERT_EQ(apply_options_dialog(ctx, p, s, metric, "mnuOptionsKomp", row.typed), "");
        std::array<int, kMaxComps + 1> want{};
        for (std::size_t k = 0; k < row.comps.size(); ++k) want[k + 1] = row.comps[k];
        EXPECT_EQ(p.gen.COMP, want);
        Header rest = p.gen;
        rest.COMP = before.COMP;
        EXPECT_TRUE(rest == before);
    }
    EXPECT_TRUE(ui.told.empty()) << ui.told.front();
}

TEST_F(OptionsTest, TemplateDialogEditsElementZeroAlone) {
    struct Row {
        const char* name;
        Texts typed;
        std::function<bool(const Project&)> landed;
    };
    const Row rows[] = {
        // The template's name is the prefix of new names, free to equal a record's.
        {"mnuOptionsLines", {{"NAME1", "L1"}, {"LEN", "250"}},
         [](const Project& q) { return q.lines[0].NAME[1] == "L1" && q.lines[0].LEN == 250.0; }},
        {"mnuOptionsValves", {{"NAME1", "PV"}, {"PIN", "300"}},
         [](const Project& q) { return q.valves[0].NAME[1] == "PV" && q.valves[0].PIN.spec == "300"; }},
        {"mnuOptionsFeeds", {{"PRES", "450;E"}}, [](const Project& q) { return q.feeds[0].PRES.spec == "450;E"; }},
        {"mnuOptionsSplit", {{"NAME2", "Header"}}, [](const Project& q) { return q.juncs[0].NAME[2] == "Header"; }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Dialog d = *load_options_dialog(ctx, p, s, metric, row.name);
        EXPECT_EQ(d.index, 0);
        const Project before = p;
        ASSERT_EQ(apply_options_dialog(ctx, p, s, metric, row.name, row.typed), "");
        EXPECT_TRUE(row.landed(p));
        EXPECT_TRUE(p.gen == before.gen);
        for (std::size_t i = 1; i < p.lines.size(); ++i) EXPECT_TRUE(p.lines[i] == before.lines[i]);
        for (std::size_t i = 1; i < p.valves.size(); ++i) EXPECT_TRUE(p.valves[i] == before.valves[i]);
    }
    // The equipment dialogs themselves still refuse the template.
    EXPECT_FALSE(load_dialog(ctx, p, metric, "Valve", 0).has_value());
}

}  // namespace
}  // namespace velm
