// Label blocks of the sheet: the rows of every kind in both modes against
// rows worked by hand from small records, each line row under its own View
// flag, the flags through the settings file, the placing of the rows, and
// kinds, numbers and modes that name nothing.
#include "drawing/labels.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace velm {
namespace {

using Rows = std::vector<std::string>;

template <class R>
R& add(std::vector<R>& v, const char* name) {
    if (v.empty()) v.emplace_back();
    v.emplace_back();
    v.back().NAME[1] = name;
    return v.back();
}

// One record of every kind with values chosen so that each row reads
// differently; a wrong field or unit shows.
Project labelled_project() {
    Project p;
    Line& l = add(p.lines, "L-1001");
    l.TFLOW = {"40", 40.0};
    l.LVFLOW = {0.0, 36.0, 4.0};
    l.LPROP[1] = 900.0, l.LPROP[3] = 0.8, l.REFLINE = 2;
    l.TEMP = {0.0, 120.0, 80.5, 100.25};
    l.PRES = {0.0, 450.0, 380.0, 415.0};
    l.LF = {0.0, 0.9, 0.85, 0.875};
    l.TPROP[1] = 60.0, l.TPROP[3] = 55.5, l.TPROP[6] = 0.25;
    l.VPROP = {0.0, 12.5, 0.0, 0.012, 0.0, 18.2, 0.95, 1.28};
    l.VEL = {0.0, 3.2, 3.8, 3.5, 300.0};
    l.DPL = 12.345, l.RE = 123456.0, l.DIA = {"", "6", "8"}, l.ID.value = 0.1541, l.SCH = "40", l.LEN = 250.0;
    l.FITK = 3.5, l.FITLD = 120.0, l.EPS.value = 4.57e-5, l.FAC = 1.1, l.ELEV = {0.0, 2.0, 14.0};
    l.REG = {"", "Annular", "Churn", "Slug"};
    l.REGA = {"", "Stratified", "Bubble"};
    l.FT = {0, 1, 3};
    add(p.lines, "L-2");

    Feed& f = add(p.feeds, "FEED-TANK-NORTH");
    f.PRES = {"E", 200.0}, f.POUT = {"", 180.0}, f.DP = {"", 20.0}, f.ELEV = 12.0;
    Prod& pr = add(p.prods, "TK-2");
    pr.PRES = {"0", 0.0}, pr.PIN = {"", 35.5}, pr.DP = {"5", 5.0};

    Valve& v = add(p.valves, "CV-101");
    v.PIN = {"500", 500.0}, v.POUT = {"", 300.0}, v.DP = {"", 200.0}, v.CV = {"120", 85.25}, v.OPEN = {"50", 62.5};
    v.DPP2 = 150.0, v.ELEV = 3.0, v.LBL2 = 100.0f, v.LBL3 = 50.0f;
    Check& c = add(p.checks, "NRV-1");
    c.LD = 50.0, c.PIN.value = 100.0, c.POUT.value = 95.0;
    Pump& pu = add(p.pumps, "P-101A");
    pu.DP = {"C", 350.0}, pu.PIN = {"", 120.0}, pu.POUT = {"", 470.0};
    pu.NPSHA13.value = 8.25, pu.NPSHR13.value = 3.5, pu.ELEV = 0.5;
    Comp& k = add(p.comps, "K-1");
    k.DP = {"C;250", 250.0}, k.PRAT = {"2.5", 2.5}, k.QACT = {"1000", 1000.0};
    FO& o = add(p.fos, "FE-1");
    o.DP = {"20", 20.0}, o.BETA = {"0.6", 0.6}, o.BORE = {"0.0508", 0.0508};
    HX& e = add(p.hxs, "E-101");
    e.PRAT1 = "70", e.DP.value = 40.0, e.NOZI.NozHeight = 1.5, e.NOZO.NozHeight = 4.0;
    Misc& m = add(p.miscs, "X-1");
    m.K = "0.5", m.LD = "20";
    add(p.expands, "R-1").DPP = -2.5;
    Vessel& ve = add(p.vessels, "V-1");
    ve.PRES = {"150", 150.0}, ve.ELEV = 2.0;
    add(p.juncs, "J-1").PRES.value = 80.0;
    Tee& t = add(p.tees, "T-1");
    t.PRES = {0.0, 101.0, 102.0, 103.0}, t.DPP = {0.0, 1.0, -2.0, 3.0};
    return p;
}

ViewFlags all_flags() {
    ViewFlags v;
    Settings s;
    store_view_flags(v, s);
    for (auto& [key, value] : s.values) value = "-1";
    return view_flags(s);
}

DisplayUnits units_of(const char* set) {
    Header g;
    g.UNITS = set;
    DisplayUnits u;
    SetUnits(u, g);
    return u;
}

struct Fixture {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p = labelled_project();
};

// Input rows show only what the user gave, converted; Result rows show the
// values in force under their flags (all on here unless the row says).
TEST(Labels, RowsOfEveryKindInBothModes) {
    const DisplayUnits metric, british = units_of("British"), barg{.pressure = "barg"};
    const ViewFlags cv_only{.Cv = true}, pres_only{.Pres = true};
    struct Row {
        const char* kind;
        const char* mode;
        const DisplayUnits& u;
        ViewFlags view;
        Rows expected;
    };
    const Row rows[] = {
        {"Line", "Input", metric, {}, {"L-1001", "W=40,000.0 kg/h"}},  // t/h shown in kg/h
        {"Line", "Result", metric, default_view_flags(),
         {"L-1001", "Wl=36,000 kg/h", "Wv=4,000 kg/h", "Pi=450.0 kPag", "Po=380.0 kPag"}},
        {"Feed", "Input", metric, {}, {"FEED-TANK-", "P=E"}},
        {"Feed", "Result", metric, all_flags(),
         {"FEED-TANK-", "P=200.0 kPag", "Po=180.0 kPag", "dP=20.0 kPa", "Elev=12.0 m"}},
        {"Feed", "Result", metric, default_view_flags(), {"FEED-TANK-"}},
        {"Prod", "Input", barg, {}, {"TK-2", "P=0.0 barg", "dP=0.05 bar"}},
        {"Prod", "Result", metric, all_flags(), {"TK-2", "P=0 kPag", "Pi=35.5 kPag", "dP=5.00 kPa", "Elev=0 m"}},
        {"Valve", "Input", metric, {}, {"CV-101", "Pi=500.0 kPag", "Cv=120.0", "Open=50.0 %"}},
        {"Valve", "Input", british, {}, {"CV-101", "Pi=72.519 psig", "Cv=120.0", "Open=50.0 %"}},
        {"Valve", "Input", barg, {}, {"CV-101", "Pi=5.0 barg", "Cv=120.0", "Open=50.0 %"}},
        {"Valve", "Result", british, all_flags(),
         {"CV-101", "Pi=72.52 psig", "Po=43.51 psig", "dP=29.01 psi", "dPinlet=21.76 psi", "Elev=9.843 ft",
          "Cv=85.25", "Open=62.5 %"}},
        {"Valve", "Result", metric, cv_only, {"CV-101", "Pi=500.0 kPag", "Po=300.0 kPag", "dP=200.0 kPa", "Cv=85.25", "Open=62.5 %"}},
        {"Check", "Input", metric, {}, {"NRV-1", "L/D=50.0"}},
        {"Check", "Result", metric, pres_only, {"NRV-1", "Pi=100.0 kPag", "Po=95.0 kPag", "dP=0 kPa"}},
        {"Pump", "Input", metric, {}, {"P-101A", "dP=C"}},
        {"Pump", "Result", metric, all_flags(),
         {"P-101A", "Pi=120.0 kPag", "Po=470.0 kPag", "dP=350.0 kPa", "NPSHA=8.25 m", "NPSHR=3.50 m",
          "Elev=0.500 m"}},
        {"Pump", "Result", british, pres_only, {"P-101A", "Pi=17.4 psig", "Po=68.17 psig", "dP=50.76 psi"}},
        {"Comp", "Input", british, {}, {"K-1", "dP=C;36.2595 psi", "Pr=2.5", "Vol=588.5778 ft3/min"}},
        {"Comp", "Result", metric, all_flags(), {"K-1", "Pi=0 kPag", "Po=0 kPag", "dP=250.0 kPa", "Elev=0 m"}},
        {"FO", "Input", british, {}, {"FE-1", "dP=2.9008 psi", "B=0.6", "Bore=2.0 in"}},
        {"FO", "Result", metric, ViewFlags{.Beta = true}, {"FE-1", "Pi=0 kPag", "Po=0 kPag", "dP=20.0 kPa", "B=0.600"}},
        {"HX", "Input", metric, {}, {"E-101", "dPr=70.0 kPa"}},
        {"HX", "Result", metric, ViewFlags{.Elev = true}, {"E-101", "Pi=0 kPag", "Po=0 kPag", "dP=40.0 kPa", "Elevi=1.50 m", "Elevo=4.00 m"}},
        {"Misc", "Input", metric, {}, {"X-1", "K+L/D=0.5+20.0"}},
        {"Expand", "Input", metric, {}, {"R-1", "K=Calc"}},
        {"Expand", "Result", metric, ViewFlags{.dPperm = true}, {"R-1", "Pi=0 kPag", "Po=0 kPag", "dP=0 kPa", "dPperm=-2.50 kPa"}},
        {"Vessel", "Input", metric, {}, {"V-1", "P=150.0 kPag"}},
        {"Vessel", "Result", metric, all_flags(), {"V-1", "P=150.0 kPag", "Elev=2.00 m"}},
        {"Junc", "Input", metric, {}, {"J-1"}},
        {"Junc", "Result", metric, all_flags(), {"J-1", "P=80.0 kPag"}},
        {"Tee", "Input", metric, all_flags(), {"T-1"}},
        {"Tee", "Result", metric, all_flags(),
         {"T-1", "P=101.0 kPag", "P=102.0 kPag", "P=103.0 kPag", "dPperm=1.00 kPa", "dPperm=-2.00 kPa",
          "dPperm=3.00 kPa", "Elev=0 m"}},
    };
    for (const Row& r : rows) {
        Fixture f;
        EXPECT_EQ(LabelRows(f.ctx, f.p, r.u, r.view, r.kind, 1, r.mode), r.expected)
            << r.kind << " " << r.mode << " in " << r.u.pressure;
        EXPECT_TRUE(f.ui.told.empty()) << r.kind << " " << r.mode << ": " << f.ui.told.front();
    }
}

// Each line result row under its own flag, every other flag off; a tweak of
// the line where the row depends on it.
TEST(Labels, LineRowsEachUnderItsFlag) {
    const DisplayUnits metric, british = units_of("British");
    struct Row {
        bool ViewFlags::*flag;
        const DisplayUnits& u;
        void (*tweak)(Line&);
        Rows expected;
    };
    const auto none = [](Line&) {};
    const Row rows[] = {
        {&ViewFlags::Flow, metric, none, {"Wl=36,000 kg/h", "Wv=4,000 kg/h"}},
        {&ViewFlags::LiqVolFlow, metric, none, {"Ql=40.0 m3/h"}},       // 36 t/h of liquid at 900 kg/m3
        {&ViewFlags::LiqVolFlow, british, none, {"Ql=176.1 USGPM"}},
        {&ViewFlags::RefLine, metric, none, {"Ref=L-2"}},
        {&ViewFlags::RefLine, metric, [](Line& l) { l.REFLINE = 0; }, {}},
        {&ViewFlags::TempIn, british, none, {"Ti=248.0 F"}},
        {&ViewFlags::TempOut, british, none, {"To=176.9 F"}},
        {&ViewFlags::PresIn, metric, none, {"Pi=450.0 kPag"}},
        {&ViewFlags::PresOut, british, none, {"Po=55.11 psig"}},
        {&ViewFlags::dP, metric, none, {"dP=70.0 kPa"}},
        {&ViewFlags::dP, british, none, {"dP=10.15 psi"}},
        {&ViewFlags::LFIn, metric, none, {"LFi=0.900"}},
        {&ViewFlags::LFOut, metric, none, {"LFo=0.850"}},
        {&ViewFlags::TotDen, british, none, {"TotDen=3.465 lb/ft3"}},
        {&ViewFlags::TotVisc, metric, none, {"TotVisc=0.250 cP"}},
        {&ViewFlags::LiqDen, metric, none, {"LiqDen=900.0 kg/m3"}},
        {&ViewFlags::LiqVisc, metric, none, {"LiqVisc=0.800 cP"}},
        {&ViewFlags::VapDen, metric, none, {"VapDen=12.5 kg/m3"}},
        {&ViewFlags::VapVisc, metric, none, {"VapVisc=0.0120 cP"}},
        {&ViewFlags::VapMw, metric, none, {"VapMw=18.2"}},
        {&ViewFlags::VapZ, metric, none, {"VapZ=0.950"}},
        {&ViewFlags::VapK, metric, none, {"VapK=1.28"}},
        {&ViewFlags::VelIn, metric, none, {"Vi=3.20 m/s"}},
        {&ViewFlags::VelOut, metric, none, {"Vo=3.80 m/s"}},
        {&ViewFlags::VelAvg, british, none, {"V=11.48 ft/s"}},
        {&ViewFlags::dPL, metric, none, {"dP/L=12.35 kPa/100m"}},
        {&ViewFlags::Re, metric, none, {"Re=1.2E05"}},
        {&ViewFlags::Re, metric, [](Line& l) { l.RE = 850.0; }, {"Re=8.5E02"}},
        {&ViewFlags::PipeDia, metric, none, {"D=6 in", "ID=154.1 mm"}},
        {&ViewFlags::PipeDia, metric, [](Line& l) { l.DIA[1] = ""; }, {"D=8 in", "ID=154.1 mm"}},
        {&ViewFlags::PipeSch, metric, none, {"Sch=40"}},
        {&ViewFlags::PipeLen, british, none, {"L=820.2 ft"}},
        {&ViewFlags::PipeK, metric, none, {"K=3.50"}},
        {&ViewFlags::PipeLD, metric, none, {"L/D=120.0"}},
        {&ViewFlags::PipeE, metric, none, {"E=0.0457 mm"}},
        {&ViewFlags::PipeSF, metric, none, {"Fact=1.10"}},
        {&ViewFlags::PipeElev, metric, none, {"Elevi=2.00 m", "Elevo=14.0 m"}},
        {&ViewFlags::Regimes, metric, none,
         {"Hor1=Annular", "Hor2=Stratified", "VerUp1=Churn", "VerUp2=Bubble", "VerDn=Slug"}},
        {&ViewFlags::FT, metric, none, {"FTi=1", "FTo=3"}},
        {&ViewFlags::Lock, metric, none, {"Lock=N"}},
        {&ViewFlags::Lock, metric, [](Line& l) { l.LOCK = -1; }, {"Lock=Y"}},
        // Flags of equipment rows show nothing on a line.
        {&ViewFlags::Pres, metric, none, {}},
        {&ViewFlags::Elev, metric, none, {}},
    };
    for (const Row& r : rows) {
        Fixture f;
        r.tweak(f.p.lines[1]);
        ViewFlags view;
        view.*r.flag = true;
        Rows expected = r.expected;
        expected.insert(expected.begin(), "L-1001");
        EXPECT_EQ(LabelRows(f.ctx, f.p, r.u, view, "Line", 1, "Result"), expected) << expected.back();
        EXPECT_TRUE(f.ui.told.empty()) << expected.back();
    }
}

TEST(Labels, ViewFlagsRoundTripThroughSettings) {
    // Every View key of the settings file is written, and a pattern of
    // every third flag on reads back whole.
    Settings s;
    store_view_flags(ViewFlags{}, s);
    const auto view_keys = std::count_if(settings_keys().begin(), settings_keys().end(), [&](const std::string& k) {
        return k.rfind("View", 0) == 0 && s.find(k) != nullptr && *s.find(k) == "0";
    });
    EXPECT_EQ(view_keys, 41);
    EXPECT_EQ(s.values.size(), 41u);
    for (std::size_t i = 0; i < s.values.size(); ++i) s.values[i].second = i % 3 == 0 ? "-1" : "0";
    Settings again;
    store_view_flags(view_flags(s), again);
    EXPECT_EQ(again.values, s.values);

    // Values as a hand-edited file may hold them.
    EXPECT_EQ(view_flags(Settings{}), default_view_flags());
    struct Row { const char* key; const char* value; bool ViewFlags::*flag; bool expected; };
    const Row rows[] = {
        {"ViewLock", "-1", &ViewFlags::Lock, true},  {"ViewLock", "1", &ViewFlags::Lock, true},
        {"ViewRe", " 2 ", &ViewFlags::Re, true},     {"ViewFlow", "0", &ViewFlags::Flow, false},
        {"ViewFlow", "yes", &ViewFlags::Flow, true}, {"ViewFlow", "0.5", &ViewFlags::Flow, true},
        {"ViewFlow", "", &ViewFlags::Flow, true},    {"ViewPresIn", "0", &ViewFlags::PresIn, false},
        {"ViewTempIn", "abc", &ViewFlags::TempIn, false},
        {"ViewVapMw", "-1", &ViewFlags::VapMw, true}, {"ViewVapMw", "-1", &ViewFlags::VapVisc, false},
        {"ViewPres", "-1", &ViewFlags::PresIn, true}, {"ViewPres", "-1", &ViewFlags::Pres, true},
    };
    for (const Row& r : rows) {
        Settings one;
        one.set(r.key, r.value);
        EXPECT_EQ(view_flags(one).*r.flag, r.expected) << r.key << "=" << r.value;
    }
    EXPECT_EQ(default_view_flags(), (ViewFlags{.PresIn = true, .PresOut = true, .Flow = true}));
}

// Nothing that names no record in use reads one: no rows, nothing told.
TEST(Labels, NothingForAKindNumberOrModeThatNamesNoRecord) {
    struct Row { const char* kind; int index; const char* mode; };
    const Row rows[] = {
        {"Valve", 0, "Result"}, {"Valve", 2, "Result"},  {"Valve", -1, "Input"},  {"Line", 3, "Result"},
        {"Tee", 1000000, "Input"}, {"Symbol", 1, "Result"}, {"Pipe", 1, "Result"}, {"valve", 1, "Result"},
        {"Valve", 1, ""},       {"Valve", 1, "Normal"},  {"Valve", 1, "result"},
    };
    for (const Row& r : rows) {
        Fixture f;
        f.p.symbols.resize(2);
        EXPECT_TRUE(LabelRows(f.ctx, f.p, DisplayUnits{}, all_flags(), r.kind, r.index, r.mode).empty())
            << r.kind << " " << r.index << " " << r.mode;
        EXPECT_TRUE(f.ui.told.empty());
    }
    Project empty;
    RecordingInteraction ui;
    RunContext ctx(ui);
    EXPECT_TRUE(LabelRows(ctx, empty, DisplayUnits{}, all_flags(), "Line", 1, "Result").empty());
}

struct TextCall {
    float x, y;
    std::string s;
    float size;
    int32_t colour;
    bool operator==(const TextCall&) const = default;
};

class TextSurface : public Surface {
public:
    std::vector<TextCall> texts;
    int other = 0;  // calls of anything but text
    void begin_item(std::string_view, int) override { ++other; }
    void end_item() override { ++other; }
    void point(float, float, int32_t) override { ++other; }
    void line(float, float, float, float, int32_t, PenStyle) override { ++other; }
    void box(float, float, float, float, int32_t, PenStyle) override { ++other; }
    void filled_box(float, float, float, float, int32_t, int32_t) override { ++other; }
    void circle(float, float, float, int32_t) override { ++other; }
    void arc(float, float, float, float, float, int32_t) override { ++other; }
    void text(float x, float y, std::string_view s, float size, int32_t colour) override {
        texts.push_back({x, y, std::string(s), size, colour});
    }
};

// The block starts at the anchor moved by the label offset (100, 50) and
// goes down 200 twips per row at size 1, 300 at size 1.5.
TEST(Labels, DrawLabelsWritesTheRowsDownFromTheOffsetAnchor) {
    Fixture f;
    const ViewFlags cv_only{.Cv = true};
    TextSurface s;
    DrawLabels(s, f.ctx, f.p, DisplayUnits{}, cv_only, "Valve", 1, "Result", 1000.0f, 2000.0f, 1.5f, 255);
    const std::vector<TextCall> expected = {
        {1100.0f, 2050.0f, "CV-101", 1.5f, 255},
        {1100.0f, 2350.0f, "Pi=500.0 kPag", 1.5f, 255},
        {1100.0f, 2650.0f, "Po=300.0 kPag", 1.5f, 255},
        {1100.0f, 2950.0f, "dP=200.0 kPa", 1.5f, 255},
        {1100.0f, 3250.0f, "Cv=85.25", 1.5f, 255},
        {1100.0f, 3550.0f, "Open=62.5 %", 1.5f, 255},
    };
    EXPECT_EQ(s.texts, expected);
    EXPECT_EQ(s.other, 0);

    TextSurface none;
    DrawLabels(none, f.ctx, f.p, DisplayUnits{}, cv_only, "Valve", 7, "Result", 0.0f, 0.0f, 1.0f, 0);
    DrawLabels(none, f.ctx, f.p, DisplayUnits{}, cv_only, "Symbol", 1, "Result", 0.0f, 0.0f, 1.0f, 0);
    EXPECT_TRUE(none.texts.empty());
}

}  // namespace
}  // namespace velm
