// The equipment dialogs: an OK with nothing changed leaves every kind's
// record as it was, in metric and British units; each rule of a kind refuses
// a record that breaks it with its own words and leaves the project as it
// was; a bad entry is refused by CheckInput's words; typed units land in the
// internal units; names stay unique; case strings keep their letters.
#include "dialogs/dialogs.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <set>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/records.hpp"
#include "model/text.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

const char* const kKinds[] = {"Feed", "Prod", "Line", "Valve", "Check", "Pump", "Comp",
                              "FO",   "HX",   "Misc", "Expand", "Tee", "Junc", "Vessel", "Phase"};

// Two records of each kind, numbered tags, with values a run might leave:
// odd numbers in position 2, case strings of several entries and letters.
template <class R>
void two_of(std::vector<R>& v, const char* tag) {
    v.resize(3, v[0]);
    v[1].NAME[1] = std::string(tag) + "1";
    v[2].NAME[1] = std::string(tag) + "2";
}

struct DialogsTest : ::testing::Test {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    DisplayUnits metric;

    void SetUp() override {
        NewProject(p);
        ReadPipeLib(ctx, p.pipedata);
        two_of(p.lines, "L");
        two_of(p.feeds, "F");
        two_of(p.prods, "TK");
        two_of(p.valves, "CV");
        two_of(p.checks, "Z");
        two_of(p.pumps, "P");
        two_of(p.comps, "C");
        two_of(p.fos, "O");
        two_of(p.hxs, "E");
        two_of(p.miscs, "X");
        two_of(p.expands, "R");
        two_of(p.tees, "T");
        two_of(p.juncs, "J");
        two_of(p.vessels, "V");

        Line& l = p.lines[1];
        l.TFLOW = {"12.5;E;V", -3.2109876543};
        l.LEN = 1.0 / 3.0;
        l.TEMP[1] = 26.700000000000003;
        l.ID.value = 0.10226;
        l.NOTES = "Day \"tank\" line\r\nsecond row";
        Feed& f = p.feeds[1];
        f.PRES = {"120;;E", 98.7654321};
        f.LEVEL1 = "1.5;2";
        Valve& v = p.valves[1];
        v.DP.value = 12.3456789;
        v.PIN = {"250.5;", 250.49999};
        v.ELEV = 0.1 + 0.2;
        Pump& m = p.pumps[1];
        m.DP.spec = "C";
        m.EFFP.spec = "C";
        m.CURQ = {"", "10", "20", "30"};
        m.CURH = {"", "60", "55", "45"};
        m.CUREFF = {"", "0.5", "0.65", "0.6"};
        m.HQ1 = 3;
        m.NPSHR1 = 2;
        Comp& c = p.comps[1];
        c.QACT = {"1234.5", 1234.4999};
        c.CURRPM = {0.0, 3000.0, 2950.0};
        p.vessels[1].LEVL1 = "0.75;1.25";
        p.vessels[1].NOZO[2].dPNoz = 0.123456789;
        p.tees[1].KCM = {"", 0.9876};
        p.hxs[1].Q = {"-1.5e6", -1.5e6};
    }

    // The records of every kind with a dialog, compared whole.
    bool same_records(const Project& a, const Project& b) const {
        return a.lines == b.lines && a.feeds == b.feeds && a.prods == b.prods && a.valves == b.valves &&
               a.checks == b.checks && a.pumps == b.pumps && a.comps == b.comps && a.fos == b.fos &&
               a.hxs == b.hxs && a.miscs == b.miscs && a.expands == b.expands && a.tees == b.tees &&
               a.juncs == b.juncs && a.vessels == b.vessels;
    }
};

TEST_F(DialogsTest, OkWithNothingChangedLeavesEveryKindAsItWas) {
    for (const DisplayUnits& units : {metric, british_units()}) {
        for (const char* kind : kKinds) {
            SCOPED_TRACE(std::string(kind) + " in " + units.set);
            const std::optional<Dialog> d = load_dialog(ctx, p, units, kind, 1);
            ASSERT_TRUE(d.has_value());
            EXPECT_EQ(d->kind, kind);
            std::set<std::string> names;
            Texts all;
            for (const DialogField& f : d->fields) {
                EXPECT_TRUE(names.insert(f.name).second) << "two entries named " << f.name;
                EXPECT_FALSE(f.tab.empty()) << f.name;
                all.emplace_back(f.name, f.text);
            }
            const Project before = p;
            // Every text given back as shown, and none given at all.
            EXPECT_EQ(apply_dialog(ctx, p, units, kind, 1, all), "");
            EXPECT_TRUE(same_records(p, before));
            EXPECT_EQ(apply_dialog(ctx, p, units, kind, 1, {}), "");
            EXPECT_TRUE(same_records(p, before));
        }
    }
    EXPECT_TRUE(ctx.project_dirty);
    EXPECT_TRUE(ui.told.empty()) << ui.told.front();
}

TEST_F(DialogsTest, EachRuleRefusesWithItsWordsAndChangesNothing) {
    struct Row {
        const char* kind;
        std::function<void(Project&)> before;  // the state the typed texts meet
        Texts typed;
        const char* says;  // "" when the record may be written
    };
    const auto none = [](Project&) {};
    const Row rows[] = {
        // A valve with an opening and a Cv is a resistance: its drop is then calculated.
        {"Valve", none, {{"DP", "10"}}, "Specify either Pressure drop OR Cv/K value (for these settings)."},
        {"Valve", none, {{"DP", "10"}, {"OPEN", ""}}, ""},
        {"Valve", none, {{"DP", ";10"}, {"OPEN", "100;"}}, ""},
        {"Valve", none, {{"DP", ";10"}, {"OPEN", "100;50"}}, "Specify either Pressure drop OR Cv/K value (for these settings)."},
        {"Valve", none, {{"DP", "10"}, {"CV", ""}, {"K", "3"}}, "Specify either Pressure drop OR Cv/K value (for these settings)."},
        {"Valve", none, {{"K", "3"}}, "Specify the K, or Cv and %Open, or none."},
        {"Valve", none, {{"K", "3"}, {"CV", ""}}, ""},
        {"Valve", none, {{"TYPE2", "Block"}, {"K", "3"}}, "Specify the K or Cv and %Open, or none."},
        {"FO", none, {{"DP", ""}}, "Pressure drop or Beta ratio required (for these settings)."},
        {"FO", none, {{"DP", ""}, {"DPF", "5"}}, ""},
        {"FO", none, {{"BETA", "0.5"}}, "Specify either Pressure drop OR Beta ratio (for these settings)."},
        {"FO", none, {{"DP", ""}, {"BORE", "50"}}, ""},
        {"HX", none, {{"PRAT1", "20"}, {"DP", ""}, {"PRAT5", "0"}}, "Density required with rating dP."},
        {"HX", none, {{"PRAT1", "20"}, {"DP", ""}, {"PRAT3", "0"}}, "Flow required with rating dP."},
        {"HX", none, {{"DP", ""}}, "Pressure drop or Rating dP required (for these settings)."},
        {"HX", none, {{"PRAT1", "20"}}, "Specify either Pressure drop OR Rating dP (for these settings)."},
        {"HX", none, {{"PRAT1", "20"}, {"DP", ""}}, ""},
        {"Misc", none, {{"PRAT1", "5"}, {"DP", ""}, {"PRAT5", "0"}}, "Density required with rating dP."},
        {"Misc", none, {{"PRAT1", "5"}, {"DP", ""}, {"PRAT3", "0"}}, "Flow required with rating dP."},
        {"Misc", none, {{"DP", ""}}, "Pressure drop, Rating dP, K or L/D value required (for these settings)."},
        {"Misc", none, {{"LD", "30"}}, "Specify either Pressure drop OR K+L/D (for these settings)."},
        {"Misc", none, {{"DP", ""}, {"PRAT1", "5"}, {"K", "1"}}, "Enter rating dP OR equipment K + L/D."},
        {"Misc", none, {{"DP", ""}, {"K", "1"}, {"LD", "30"}}, ""},
        {"Pump", none, {{"DP", "C"}}, "Minimum 2 points required in pump curve."},
        {"Pump", none, {{"NPSHR13", "c"}, {"CURQ1", "10"}, {"CURQ2", "-5"}}, "Minimum 2 points required in pump curve."},
        {"Pump", none, {{"DP", "C"}, {"CURQ1", "10"}, {"CURQ2", "20"}, {"CURH1", "50"}},
         "No pump curve Head for corresponding Flow."},
        {"Pump", none, {{"EFFP", "C"}, {"CURQ1", "10"}, {"CURQ2", "20"}, {"CUREFF1", "0.6"}},
         "No pump curve Efficiency for corresponding Flow."},
        {"Pump", none, {{"NPSHR13", "C"}, {"CURQ1", "10"}, {"CURQ2", "20"}, {"CURNPSH1", "3"}},
         "No pump curve NPSHR for corresponding Flow."},
        {"Pump", none, {{"DP", "C"}, {"CURQ1", "10"}, {"CURQ2", "20"}, {"CURH1", "50"}, {"CURH2", "40"}}, ""},
        {"Pump", none, {{"NPSHAF1", "1"}, {"NPSHAF2", "1"}, {"NPSHA3", "1"}}, "Source must be Vessel OR Tank."},
        {"Pump", none, {{"NPSHAF2", "1"}, {"NPSHA3", "5"}}, "Vessel nozzle must be 1-4."},
        {"Pump", none, {{"NPSHAF2", "1"}, {"NPSHA3", "4"}}, ""},
        {"Comp", none, {{"DP", "C"}, {"CURQ1", "1000"}}, "No curve Head for corresponding Flow."},
        {"Comp", none, {{"EFFC", "C"}, {"CURQ1", "1000"}, {"CURH1", "3000"}}, "No curve Efficiency for corresponding Flow."},
        {"Feed", none, {{"POUT", "300"}}, "Pressure on top of vessel or on flowing pipe ?"},
        {"Feed", none, {{"TYPE", "Vessel"}, {"POUT", "300"}}, ""},
        {"Prod", none, {{"TYPE", "Tank"}, {"PIN", ";30"}, {"PRES", "50;60"}}, "Pressure on top of vessel or on flowing pipe ?"},
        {"Prod", none, {{"PIN", ";30"}, {"PRES", "50;"}}, ""},
        {"Line", none, {{"MAT", "Copper"}}, "Invalid pipe material."},
        {"Line", none, {{"SCH", "41"}}, "Invalid pipe schedule."},
        {"Line", none, {{"SCH", ""}}, "Invalid pipe schedule."},
        {"Line", none, {{"DIA1", "1/2"}, {"SCH", "20"}}, "Invalid diameter/schedule combination."},
        {"Line", none, {{"DIA1", "1/2"}, {"SCH", "ID"}, {"ID", "12"}}, ""},
        {"Line", none, {{"MAT", "Stainless"}, {"SCH", "10S"}, {"DIA1", "6"}}, ""},
        {"Line", none, {{"LF1", ""}}, "Composition and Liquid Fraction is required for every line."},
        {"Line", none, {{"LF1", ""}, {"REFLINE", "2"}}, ""},
        // With components listed for the flash, a line needs its composition.
        {"Line", [](Project& q) { q.gen.COMP[1] = 1; }, {}, "Composition and Liquid Fraction is required for every line."},
        {"Line", [](Project& q) { q.gen.COMP[1] = 1; q.gen.MFLASH = "None"; }, {}, ""},
        {"Line", [](Project& q) { q.gen.COMP[1] = 1; q.lines[2].COMP0[1] = 1.0; }, {}, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.kind) + " expecting " + row.says);
        SetUp();
        row.before(p);
        const Project before = p;
        // Record 2 is as new: the rows meet the kind's defaults.
        EXPECT_EQ(apply_dialog(ctx, p, metric, row.kind, 2, row.typed), row.says);
        if (*row.says) {
            EXPECT_TRUE(same_records(p, before));
        } else {
            EXPECT_FALSE(same_records(p, before) && !row.typed.empty());
        }
    }
}

TEST_F(DialogsTest, BadEntriesAreRefusedByCheckInputInDialogOrder) {
    struct Row {
        const char* kind;
        Texts typed;
        const char* says;
    };
    const Row rows[] = {
        {"Pump", {{"EFFP", "1.5"}}, "Invalid ratio (0 to 1)."},
        {"Pump", {{"EFFS", "2"}, {"ELEV", "200000"}}, "Invalid input (-100 000 to 100 000)."},  // ELEV comes first
        {"Line", {{"TEMP1", "-300"}}, "Invalid input (-273 to 1000 000 000)."},
        {"Line", {{"NAME2", "6\" header"}}, "Invalid text entry (Dbl quotes not allowed)."},
        {"Valve", {{"PIN", "100;-200"}}, "Invalid Pressure (-101 to 100 000 kPag)."},
        {"Valve", {{"PIN", "E"}}, "Error during input checking. Invalid input= E ."},  // no equation on a valve
        {"Valve", {{"CV", "0"}}, "Invalid input (0.00001 to 1000 000 000)."},
        {"Expand", {{"ANGLE", "190"}}, "Invalid angle (0 to 180)."},
        {"Comp", {{"CUREFF4", "abc"}}, "Error during input checking. Invalid input= abc ."},
        // A good entry passes while a later bad one stops the OK, the good one unwritten.
        {"Vessel", {{"PRES", "200"}, {"LF", "1.2"}}, "Invalid ratio (0 to 1)."},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.kind);
        const Project before = p;
        EXPECT_EQ(apply_dialog(ctx, p, metric, row.kind, 1, row.typed), row.says);
        EXPECT_TRUE(same_records(p, before));
    }
    EXPECT_FALSE(ctx.project_dirty);
}

TEST_F(DialogsTest, TypedTextsLandInInternalUnits) {
    DisplayUnits barg;
    barg.pressure = "barg";
    const DisplayUnits uk = british_units();
    struct Row {
        DisplayUnits units;
        const char* kind;
        const char* name;
        const char* typed;
        std::function<std::string(const Project&)> stored;
        std::string expect;
    };
    const auto num = [](double v) { return number_text(v); };
    const Row rows[] = {
        {barg, "Valve", "PIN", "2.5", [](const Project& q) { return q.valves[1].PIN.spec; }, "250"},
        {barg, "Feed", "PRES", "2;;e", [](const Project& q) { return q.feeds[1].PRES.spec; }, "200;;E"},
        {metric, "Feed", "PRES", "100;;E", [](const Project& q) { return q.feeds[1].PRES.spec; }, "100;;E"},
        {metric, "Line", "TFLOW", "4500;v;", [](const Project& q) { return q.lines[1].TFLOW.spec; }, "4.5;V;"},
        {uk, "Line", "TEMP1", "212", [&](const Project& q) { return num(q.lines[1].TEMP[1]); }, "100"},
        {uk, "Line", "LEN", "1000", [&](const Project& q) { return num(q.lines[1].LEN); }, num(1000 * 0.3048)},
        {uk, "Line", "ID", "4", [](const Project& q) { return q.lines[1].ID.spec; }, "0.1016"},
        {uk, "Junc", "PRES", "14.5038", [](const Project& q) { return q.juncs[1].PRES.spec; }, "100"},
        {metric, "Line", "FIT3_2", "2", [&](const Project& q) { return std::to_string(q.lines[1].FIT[3].count); }, "2"},
        {metric, "Line", "FIT11_1", "Strainer", [](const Project& q) { return q.lines[1].FIT[11].name; }, "Strainer    "},
        {metric, "Pump", "NPSHR1", "Single", [](const Project& q) { return std::to_string(q.pumps[1].NPSHR1); }, "1"},
        {metric, "Misc", "VOLBAL", "Yes", [](const Project& q) { return std::to_string(q.miscs[1].VOLBAL); }, "-1"},
        // Four flows make four points of the curve in use.
        {metric, "Pump", "CURQ4", "40", [](const Project& q) { return std::to_string(q.pumps[1].HQ1); }, "4"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.kind) + "." + row.name + " = " + row.typed);
        SetUp();
        const Project before = p;
        Texts typed = {{row.name, row.typed}};
        if (std::string(row.name) == "CURQ4") typed.insert(typed.end(), {{"CURH4", "40"}, {"CUREFF4", "0.5"}});
        ASSERT_EQ(apply_dialog(ctx, p, row.units, row.kind, 1, typed), "");
        const std::string got = row.stored(p);
        const auto a = parse_number(got), b = parse_number(row.expect);
        ASSERT_FALSE(same_records(p, before));
        if (a && b) EXPECT_NEAR(*a, *b, 1e-9 * std::max(1.0, std::abs(*b))) << got;
        else EXPECT_EQ(got, row.expect);
    }
    // The run's value of a pair stays until the next run.
    SetUp();
    ASSERT_EQ(apply_dialog(ctx, p, barg, "Valve", 1, {{"PIN", "3"}}), "");
    EXPECT_EQ(p.valves[1].PIN.value, 250.49999);
}

TEST_F(DialogsTest, NamesStayUniqueWithinAKind) {
    struct Row {
        const char* kind;
        const char* name;
        const char* says;
    };
    const Row rows[] = {
        {"Valve", "CV2", "Error! Equipment number not unique."},
        {"Valve", " cv2 ", "Error! Equipment number not unique."},
        {"Line", "L2", "Error! Line number not unique."},
        {"Vessel", "V2", "Error! Equipment number not unique."},
        {"Valve", "L2", ""},    // another kind may bear it
        {"Pump", "P1", ""},     // its own name
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.kind) + " " + row.name);
        SetUp();
        const Project before = p;
        EXPECT_EQ(apply_dialog(ctx, p, metric, row.kind, 1, {{"NAME1", row.name}}), row.says);
        if (*row.says) {
            EXPECT_TRUE(same_records(p, before));
        }
    }
}

TEST_F(DialogsTest, LoadShowsTheRecordInDisplayUnits) {
    DisplayUnits psig;
    psig.pressure = "psig";
    const Dialog d = *load_dialog(ctx, p, psig, "Feed", 1);
    EXPECT_EQ(d.form, "frmFeed");
    const auto field = [&](const Dialog& dlg, const char* name) {
        for (const DialogField& f : dlg.fields)
            if (f.name == name) return f;
        ADD_FAILURE() << "no entry " << name;
        return DialogField{};
    };
    const DialogField pres = field(d, "PRES");
    EXPECT_TRUE(pres.pair);
    EXPECT_EQ(pres.unit, "psig");
    EXPECT_EQ(pres.unit_class, "pressure");
    EXPECT_EQ(pres.hint, "Specify or leave empty to calculate. Enter E to use equation.");
    EXPECT_NEAR(*parse_number(getting_case_data(pres.text, 1)), 120 * 0.145038, 1e-9);
    EXPECT_EQ(getting_case_data(pres.text, 2), "");
    EXPECT_EQ(getting_case_data(pres.text, 3), "E");
    EXPECT_NEAR(*parse_number(pres.calculated), 98.7654321 * 0.145038, 1e-9);

    const Dialog line = *load_dialog(ctx, p, metric, "Line", 1);
    EXPECT_EQ(field(line, "ID").unit, "mm");
    EXPECT_NEAR(*parse_number(field(line, "ID").calculated), 102.26, 1e-9);
    EXPECT_EQ(field(line, "SCH").choices.back(), "ID");
    EXPECT_EQ(field(line, "MAT").choices, (std::vector<std::string>{"Steel", "Stainless", "PVC"}));
    EXPECT_EQ(field(line, "FIT1_1").text, "Entrance");
    EXPECT_EQ(field(line, "NOTES").text, p.lines[1].NOTES);
    const Dialog pump = *load_dialog(ctx, p, metric, "Pump", 1);
    EXPECT_EQ(field(pump, "NPSHR13").tab, "NPSH");
    EXPECT_EQ(field(pump, "NPSHR1").text, "Double");
    EXPECT_EQ(field(pump, "CURQ2").text, "20");

    EXPECT_FALSE(load_dialog(ctx, p, metric, "Valve", 3).has_value());
    EXPECT_FALSE(load_dialog(ctx, p, metric, "Valve", 0).has_value());
    EXPECT_FALSE(load_dialog(ctx, p, metric, "Symbol", 1).has_value());
    EXPECT_EQ(equation_forms("Prod").back(), "Eqn 5: dP = C1 + C2*W^2, with P=kPa, W=t/h. Prod dP only");
    EXPECT_TRUE(equation_forms("Valve").empty());
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

// A unit box: the texts on show of its quantity change unit, entry by entry,
// temperatures with their offsets; letters and empty entries stay.
TEST(DialogUnitBoxes, ConvertTheTextsOnShow) {
    RecordingInteraction io;
    RunContext ctx(io);
    struct Row {
        const char *text, *cls, *from, *to, *expected;
    };
    for (const Row& r : {Row{"250", "pressure", "kPag", "barg", "2.5"}, Row{"100;;E", "pressure", "kPag", "barg", "1;;E"},
                         Row{"100;C", "temperature", "C", "F", "212;C"}, Row{"-40", "temperature", "C", "F", "-40"},
                         Row{"3", "length", "m", "m", "3"}, Row{"1", "length", "m", "mm", "1000"}})
        EXPECT_EQ(convert_entry(ctx, r.text, r.cls, r.from, r.to), r.expected) << r.text << " " << r.to;
    DisplayUnits u;
    EXPECT_TRUE(set_class_unit(u, "pressure", "psig"));
    EXPECT_EQ(u.pressure, "psig");
    EXPECT_FALSE(set_class_unit(u, "pressure", "furlongs"));
    EXPECT_FALSE(set_class_unit(u, "colour", "red"));
    EXPECT_EQ(u.pressure, "psig");
    EXPECT_TRUE(io.told.empty());
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

// A free drawing object's dialog: shape, text, size and pen, each refused with
// its words when bad and nothing changed.
TEST(SymbolDialog, TakesGoodEntriesAndRefusesBadOnes) {
    Project p;
    NewProject(p);
    p.symbols.push_back(p.symbols[0]);
    const Symbol before = p.symbols[1];
    struct Row {
        std::vector<std::pair<std::string, std::string>> texts;
        std::string says;
    };
    for (const Row& r : {Row{{{"TEXT", "say \"hi\""}}, "Invalid text entry (Dbl quotes not allowed)."},
                         Row{{{"FSIZ", "0"}}, "Error during input checking. Invalid input= 0 ."},
                         Row{{{"TYPE", "Circle"}}, "Error during input checking. Invalid input= Circle ."}}) {
        EXPECT_EQ(apply_symbol_dialog(p, 1, r.texts), r.says);
        EXPECT_EQ(p.symbols[1].TEXT, before.TEXT);
        EXPECT_EQ(p.symbols[1].FSIZ, before.FSIZ);
    }
    EXPECT_EQ(apply_symbol_dialog(p, 1, {{"TYPE", "Box"}, {"TEXT", "Cooling water"}, {"FSIZ", "1.5"}, {"STYLL", "Dotted"}}),
              "");
    EXPECT_EQ(p.symbols[1].TYPE, "Box");
    EXPECT_EQ(p.symbols[1].TEXT, "Cooling water");
    EXPECT_EQ(p.symbols[1].FSIZ, 1.5f);
    EXPECT_EQ(p.symbols[1].STYLL, 1);
    EXPECT_FALSE(load_symbol_dialog(p, 2).has_value());
    EXPECT_EQ(apply_symbol_dialog(p, 0, {}), "No equipment to edit.");
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

// A pseudo component needs its boiling point and standard density; with them
// the estimate fills the other half (decane's values give a decane-like cut).
TEST(PseudoDialog, DemandsBoilingPointAndDensityThenEstimates) {
    RecordingInteraction io;
    RunContext ctx(io);
    Project p;
    NewProject(p);
    ASSERT_EQ(add_pseudo(p), 1);
    EXPECT_EQ(p.pseudos[1].NAME_NUM[1], 9001);
    EXPECT_EQ(apply_pseudo_dialog(ctx, p, 1, {{"NAME", "CUT-1"}, {"TBP", "447.3"}}),
              "Error! Normal boiling point or Std liq density missing for component CUT-1");
    EXPECT_EQ(p.pseudos[1].TBP[1], 0.0f);
    EXPECT_EQ(apply_pseudo_dialog(ctx, p, 1, {{"NAME", "CUT-1"}, {"TBP", "447.3"}, {"DENS", "-1"}}),
              "Error during input checking. Invalid input= -1 .");
    EXPECT_EQ(apply_pseudo_dialog(ctx, p, 1, {{"NAME", "CUT \"A\""}}), "Invalid text entry (Dbl quotes not allowed).");
    ASSERT_EQ(apply_pseudo_dialog(ctx, p, 1, {{"NAME", "CUT-1"}, {"TBP", "447.3"}, {"DENS", "734"}}), "");
    const Pseudo& s = p.pseudos[1];
    EXPECT_EQ(trim(s.NAME_TEXT[1]), "CUT-1");
    EXPECT_NEAR(s.MW[2], 142.3, 15.0);  // decane 142.3
    EXPECT_NEAR(s.TC[2], 617.7, 25.0);  // decane 617.7 K
    const auto d = load_pseudo_dialog(p, 1);
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->fields[2].text, "447.3");
    EXPECT_FALSE(d->fields[4].calculated.empty());  // MW estimated
}

// A pseudo component in the component list stays; deleting another moves the
// later ones up a number, in the component list too, so every place still
// names the component it named.
TEST(PseudoDialog, DeletesOnlyWhatTheComponentListDoesNotUse) {
    Project p;
    NewProject(p);
    for (int k = 0; k < 3; ++k) add_pseudo(p);
    p.pseudos[3].NAME_TEXT[1] = "CUT-C";
    p.gen.COMP[1] = 2;     // a library component
    p.gen.COMP[2] = 9003;  // CUT-C
    EXPECT_EQ(delete_pseudo(p, 3), "Cannot delete pseudo component. Remove from project component list first.");
    EXPECT_EQ(count(p.pseudos), 3);
    EXPECT_EQ(delete_pseudo(p, 4), "No equipment to edit.");
    ASSERT_EQ(delete_pseudo(p, 1), "");
    ASSERT_EQ(count(p.pseudos), 2);
    EXPECT_EQ(p.gen.COMP[1], 2);
    EXPECT_EQ(p.gen.COMP[2], 9002);
    EXPECT_EQ(p.pseudos[2].NAME_TEXT[1], "CUT-C");
    EXPECT_EQ(p.pseudos[2].NAME_NUM[1], 9002);
    EXPECT_EQ(pseudo_names(p), (std::vector<std::string>{"PSEUDO_2", "CUT-C"}));
}

}  // namespace
}  // namespace velm
