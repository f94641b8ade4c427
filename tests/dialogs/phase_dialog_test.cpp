// The fluid dialog of a line and its Flash: the typed state is flashed in the
// dialog's units, what the flash finds is what OK then writes, the inputs of
// the flash type stay as typed, and every refusal has its words with the
// line as it was. Water at 25 C and 1 atm against IAPWS-IF97 (997.0 kg/m3).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "dialogs/dialogs.hpp"
#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/records.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

using Texts = std::vector<std::pair<std::string, std::string>>;

constexpr int kWaterNumber = 10;  // water in the component library

struct PhaseDialog : ::testing::Test {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    DisplayUnits metric;

    void SetUp() override {
        NewProject(p);
        ReadPipeLib(ctx, p.pipedata);
        p.gen.MFLASH = "Velm";
        p.gen.MFLASHH = "WS97";
        p.gen.COMP[1] = kWaterNumber;
        p.lines.resize(3, p.lines[0]);
        p.lines[1].NAME[1] = "L-1";
        p.lines[2].NAME[1] = "L-2";
        for (Line* l : {&p.lines[1], &p.lines[2]}) {
            l->COMP0[1] = 1.0;
            l->OUTIN = 0;
        }
        ctx.run_active = true;
    }

    static std::string text_of(const Dialog& d, const std::string& name) {
        for (const DialogField& f : d.fields)
            if (f.name == name) return f.text;
        return "(none)";
    }
};

TEST_F(PhaseDialog, ShowsTheProjectsComponentsByNameAndNoOtherPlace) {
    const auto d = load_phase_dialog(ctx, p, metric, 1);
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->form, "frmPhase");
    int places = 0;
    for (const DialogField& f : d->fields)
        if (f.name.rfind("COMP0_", 0) == 0) {
            ++places;
            EXPECT_EQ(f.label, "Water");
        }
    EXPECT_EQ(places, 1);
    for (const DialogField& f : d->fields) {
        if (f.name == "COMPOY0_1") {
            EXPECT_EQ(f.label, "Water, vapour out");
        }
    }
    EXPECT_EQ(std::count_if(d->fields.begin(), d->fields.end(),
                            [](const DialogField& f) { return f.name.rfind("COMPIX0_", 0) == 0; }),
              1);
    EXPECT_EQ(text_of(*d, "FT1"), "0 Temperature and pressure");
}

// Each row flashes a copy of the project with the typed texts: either the
// words of a refusal with the line unchanged, or the state the flash found.
TEST_F(PhaseDialog, FlashTakesTheTypedStateOrRefusesWithItsWords) {
    struct Row {
        const char* what;
        bool british;
        Texts typed;
        void (*prepare)(Project&);
        std::string says;
    };
    const Row rows[] = {
        {"liquid water at 77 F and 0 psig", true, {{"TEMP1", "77"}, {"PRES1", "0"}}, nullptr, ""},
        {"a bad temperature", false, {{"TEMP1", "-300"}}, nullptr, "Invalid input (-273 to 1000 000 000)."},
        {"an engine without this operation", false, {}, [](Project& q) { q.gen.MFLASH = "PPP"; },
         "Error! Flash method does not support this operation."},
        {"a composition that does not sum to 1", false, {{"COMP0_1", "0.5"}}, nullptr,
         "Error! Stream L-1_In flash failed. Input composition <> 1 or No components defined."},
        {"the fluid of another line", false, {{"REFLINE", "2"}}, nullptr, "The fluid of this line is that of line 2."},
        {"no liquid fraction", false, {{"LF1", ""}}, nullptr, "Composition and Liquid Fraction is required for every line."},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        Project q = p;
        if (r.prepare) r.prepare(q);
        const Project before = q;
        const DisplayUnits units = r.british ? british_units() : metric;
        const std::string says = flash_phase_dialog(ctx, q, units, 1, r.typed);
        EXPECT_EQ(says, r.says);
        if (!says.empty()) {
            // Nothing the flash would find reached the line.
            EXPECT_EQ(q.lines[1].H[1], before.lines[1].H[1]);
            EXPECT_EQ(q.lines[1].LIQDEN[1], before.lines[1].LIQDEN[1]);
            continue;
        }
        const Line& l = q.lines[1];
        EXPECT_EQ(l.TEMP[1], 25.0);  // 77 F, as typed: not round-tripped through kelvin
        EXPECT_EQ(l.PRES[1], 0.0);
        EXPECT_EQ(l.LF[1], 1.0);
        EXPECT_NEAR(l.LIQDEN[1], 997.0, 997.0 * 0.01);  // IAPWS-IF97, 298.15 K, 0.101325 MPa
        EXPECT_NEAR(l.LIQVISC[1], 0.89, 0.89 * 0.1);      // IAPWS 2008 viscosity, 0.890 mPa s
        EXPECT_EQ(l.VAPDEN[1], 0.0);
        // The outlet is held with the inlet (OUTIN off): it is not flashed.
        EXPECT_EQ(l.LIQDEN[2], before.lines[1].LIQDEN[2]);
    }
}

TEST_F(PhaseDialog, ASolvedTemperatureComesBackAndOkWritesWhatTheFlashFound) {
    Project q = p;
    ASSERT_EQ(flash_phase_dialog(ctx, q, metric, 1,
                                 {{"FT1", "2 Pressure and liquid fraction"}, {"LF1", "0.5"}, {"PRES1", "0"},
                                  {"OUTIN", "Yes"}, {"FT2", "1 Temperature and pressure"}, {"TEMP2", "150"}, {"PRES2", "0"}}),
              "");
    const Line& l = q.lines[1];
    EXPECT_GT(l.TEMP[1], 95.0);   // the boiling point at 1 atm, from the K-values of the project
    EXPECT_LT(l.TEMP[1], 105.0);
    EXPECT_EQ(l.LF[1], 0.5);
    // The vapour density is the one the run will use: P MW / (Z R T).
    const double rho = (p.gen.PATM + l.PRES[1]) * l.VAPMW[1] / (l.VAPZ[1] * 8.314 * (l.TEMP[1] + 273.15));
    EXPECT_NEAR(l.VAPDEN[1], rho, 1e-9 * rho);
    EXPECT_EQ(l.LF[2], 0.0);  // 150 C at 1 atm is steam
    EXPECT_GT(l.VAPDEN[2], 0.0);
    EXPECT_EQ(l.LIQDEN[2], 0.0);

    // The dialog shows the copy; its texts given to OK on the project write the same numbers.
    const auto shown = load_phase_dialog(ctx, q, metric, 1);
    ASSERT_TRUE(shown.has_value());
    Texts all;
    for (const DialogField& f : shown->fields) all.emplace_back(f.name, f.text);
    ASSERT_EQ(apply_dialog(ctx, p, metric, "Phase", 1, all), "");
    const Line& w = p.lines[1];
    for (int e = 1; e <= 2; ++e) {
        const auto i = static_cast<std::size_t>(e);
        EXPECT_EQ(w.TEMP[i], l.TEMP[i]);
        EXPECT_EQ(w.LF[i], l.LF[i]);
        EXPECT_EQ(w.H[i], l.H[i]);
        EXPECT_EQ(w.LIQDEN[i], l.LIQDEN[i]);
        EXPECT_EQ(w.VAPDEN[i], l.VAPDEN[i]);
        EXPECT_EQ(w.VAPZ[i], l.VAPZ[i]);
    }
    EXPECT_EQ(w.FT[1], 2);
    EXPECT_EQ(p.lines[1].COMPOY0[1], 1.0);  // the phase compositions the flash found are kept too
    EXPECT_EQ(w.COMPIX0[1], 1.0);
    EXPECT_NEAR(w.TOTMW, 18.015, 0.001);  // water
}

// A calculated value given a new text by OK stays as the run left it, and the
// fittings' totals show by their pattern.
TEST(ReadOnlyResults, AreShownAndNeverWritten) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    Project p;
    NewProject(p);
    ReadPipeLib(ctx, p.pipedata);
    p.lines.resize(2, p.lines[0]);
    p.lines[1].LF[1] = 1.0;
    p.lines[1].FITK = 2.345;
    p.pumps.resize(2, p.pumps[0]);
    p.pumps[1].POW = 12.5;
    p.fos.resize(2, p.fos[0]);
    p.fos[1].C = 0.61;
    p.fos[1].CHOKE = -1;
    struct Row {
        const char* kind;
        const char* field;
        std::string shown;
    };
    const Row rows[] = {
        {"Line", "FITK", "2.35"}, {"Pump", "POW", "12.5"}, {"FO", "C", "0.61"}, {"FO", "CHOKE", "Yes"},
        {"Line", "REG1", ""},
    };
    const DisplayUnits units;
    for (const Row& r : rows) {
        SCOPED_TRACE(std::string(r.kind) + " " + r.field);
        const auto d = load_dialog(ctx, p, units, r.kind, 1);
        ASSERT_TRUE(d.has_value());
        bool found = false;
        for (const DialogField& f : d->fields)
            if (f.name == r.field) {
                found = true;
                EXPECT_TRUE(f.readonly);
                EXPECT_EQ(f.text, r.shown);
            }
        EXPECT_TRUE(found);
        const Project before = p;
        EXPECT_EQ(apply_dialog(ctx, p, units, r.kind, 1, {{r.field, "999"}}), "");
        EXPECT_TRUE(p.lines == before.lines && p.pumps == before.pumps && p.fos == before.fos);
    }
}

}  // namespace
}  // namespace velm
