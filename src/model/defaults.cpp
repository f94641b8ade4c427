// A new project: the header defaults and the template record of every kind.
// New records copy their template, so these are what a user gets when
// placing an item.
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "model/units.hpp"

namespace velm {

namespace {

void set_header(Header& g) {
    g = Header{};
    g.UNITS = "Metric";
    set_custom_unit_defaults(g);
    g.PATM = 101.325;
    g.DWGSTD = "A4 Landscape";
    g.DWGSIZ = {0.0f, 16837.0f, 11905.0f};
    g.DWGMAR = 720.0f;
    g.DWGBOR = -1;
    g.DWGGRD1 = -1;
    g.DWGGRD2 = 100;
    g.RPTSIZ1 = "A4";
    g.RPTSIZ2 = 680;
    g.RPTSIZ4 = 8;
    g.PRTWID = 1;
    g.MFIT = "Crane";
    g.MCOMP = "Isothermal";
    g.MTP = "Homogeneous";
    g.MDELEV = "Flanigan";
    g.MDUKHP = "Hughmark";
    g.MDUKF = 0;
    g.MACCEL = "Homogeneous";
    g.MSONIC = "Isothermal";
    g.MFLASH = "VELM";
    g.MFLASHK = "SRK";
    g.MFLASHH = "SRK";
    g.MFLASHR = -1;
    g.MPPP = 518;
    g.MHYSYS = "SRK";
    g.MFODEN = "Homogeneous";
    g.MCVDEN = "Homogeneous";
    g.MXYDAMP = 0.9;
    g.MHDAMP = 1.0;
    g.MPCURV = {0.0, -0.1, -10.0};
    g.CASENO = "1";
    g.CASEDSC = "NORMAL;RATED;MINIMUM";
    g.CASERPT = "0;1;1";
    g.CASEDLG = 0;
    g.DIRLIB = "{app}/data/";
    g.DIRINI = "{config}/velm/";
    g.DIRDAT = "{data}/velm/";
    g.COM[1] = fixed_width("VELM", 50);
    g.COM[2] = fixed_width("Town, Country", 50);
    g.PRJ[1] = fixed_width("Company", 50);
    g.PRJ[2] = fixed_width("Town, Country", 50);
    g.PRJ[3] = fixed_width("Project", 50);
    g.PRJ[4] = fixed_width("", 50);
    for (int i : {1, 2, 3, 6}) g.ENG[static_cast<std::size_t>(i)] = fixed_width("", 10);
    for (int i : {4, 5}) g.ENG[static_cast<std::size_t>(i)] = fixed_width("", 12);
    // Typical curves in % of the rated point.
    g.PCURQ = {0, 0, 20, 40, 60, 80, 90, 100, 110, 120, 130};
    g.PCURH = {0, 120, 119, 118, 115, 110, 105, 100, 95, 88, 80};
    g.PCUREFF = {0, 0, 40, 65, 85, 95, 98, 100, 98, 95, 90};
    g.PCURNPSH = {0, 45, 45, 50, 60, 75, 85, 100, 120, 150, 180};
    g.CCURQ = {0, 0, 30, 50, 70, 80, 90, 100, 110, 120, 130};
    g.CCURH = {0, 110, 110, 110, 109, 107, 105, 100, 90, 80, 65};
    g.CCUREFF = {0, 0, 30, 50, 70, 80, 90, 100, 90, 80, 65};
}

// Label and mirror defaults shared by every drawn template.
void set_drawn(Drawn& d, const char* tag, const char* description) {
    d.NAME[1] = tag;
    d.NAME[2] = description;
    d.COLOR = kColorNormal;
    d.ROT = 0;
    d.FLIP = {0, 1, 1};
    d.LBL1 = -1;
    d.LBL2 = 0.0f;
    d.LBL3 = 50.0f;
}

// Crane TP-410 L/D and K, and the 2K coefficients (K1, Kinf, third) of Hooper.
void set_fittings(Line& l) {
    struct Row { const char* name; double LD, K, K1, Kinf, K3; };
    static constexpr Row rows[kFittings] = {
        {"Entrance", 0, 0.5, 160, 0.5, 0},     {"Exit", 0, 1, 0, 1, 0},
        {"Gate valve", 8, 0, 300, 0.1, 1},     {"Globe valve", 340, 0, 1500, 4, 1},
        {"Check", 50, 0, 1500, 1.5, 1},        {"Stop-check", 400, 0, 2000, 10, 1},
        {"Elbow", 20, 0, 800, 0.25, 1},        {"180 Bend", 50, 0, 1000, 0.35, 1},
        {"T-Straight", 20, 0, 150, 0.5, 1},    {"T-Branch", 60, 0, 800, 0.8, 1},
        {"Other", 0, 0, 0, 0, 1},
    };
    for (int i = 0; i < kFittings; ++i) {
        Fitting& f = l.FIT[static_cast<std::size_t>(i) + 1];
        f = Fitting{fixed_width(rows[i].name, 12), 0, rows[i].LD, rows[i].K, rows[i].K1, rows[i].Kinf, rows[i].K3};
    }
    l.FIT[kFittings].count = 1;
}

Line line_template() {
    Line l;
    set_drawn(l, "L", "Pipe");
    l.OUTIN = -1;
    l.TEMP = {0, 25.0, 25.0, 25.0};
    l.PRES = {0, 10000.0, 10000.0, 10000.0};
    l.LF = {0, 1.0, 1.0, 1.0};
    l.LPROP[1] = l.LIQDEN[1] = l.LIQDEN[2] = 1000.0;
    l.LPROP[3] = l.LIQVISC[1] = l.LIQVISC[2] = 1.0;
    l.LIQSUR = {0, 62.4, 62.4, 62.4};
    l.LIQCON = {0, 0.5, 0.5, 0.5};
    l.LIQCP = {0, 1.0, 1.0, 1.0};
    l.LIQMW = {0, 18.0, 18.0, 18.0};
    l.VAPCON = {0, 0.025, 0.025, 0.025};
    l.VAPCP = {0, 1.0, 1.0, 1.0};
    l.SIZ[2] = 22.6;
    l.SIZ[6] = 120.0;
    l.SIZ[7] = 10.0;
    l.SIZ[4] = 100.0;
    l.SIZ[5] = 0.3;
    l.MAT = "Steel";
    l.DIA[1] = "4";
    l.SCH = "40";
    l.LEN = 100.0;
    l.FAC = 1.0;
    l.Q.spec = "0";
    l.UI = {"15", 15.0};
    l.QFAC = 1.0;
    l.QPIP = {0, 0.8, 43.0};
    l.QINS[1] = 0.05;
    l.QINS[3] = 0.06;
    l.EQN = Equation{1, "", 0, "", 0, 0.0, 0.0, 0.0};
    set_fittings(l);
    return l;
}

template <class B>
B boundary_template(const char* tag, const char* description, const char* pressure) {
    B b;
    set_drawn(b, tag, description);
    b.TYPE = "Pipe";
    b.LEVEL1 = "0";
    b.LEVEL5 = "Line";
    b.PRES.spec = pressure;
    b.DP.spec = "0";
    b.EQN = Equation{2, "", 0, "", 0, 0.0, 0.0, 0.0};
    return b;
}

Valve valve_template() {
    Valve v;
    set_drawn(v, "CV", "Valve");
    v.XT = 0.72;
    v.TYPE2 = "Control";
    v.TYPE = "Linear";
    v.OPEN = {"100", 100.0};
    v.DIA = "Inlet line";
    v.CV.spec = "50";
    return v;
}

Pump pump_template() {
    Pump p;
    set_drawn(p, "P", "Pump");
    p.DP.spec = "100";
    p.TYPE = "Centrifugal";
    p.NPSHA6 = 1.0;
    p.NPSHR2 = 2950;
    p.NPSHR3 = 9000;
    p.NPSHR1 = 1;
    return p;
}

Comp comp_template() {
    Comp c;
    set_drawn(c, "C", "Compressor");
    c.TYPE = "Centrifugal";
    c.DP.spec = "0";
    return c;
}

Check check_template() {
    Check c;
    set_drawn(c, "Z", "Check");
    c.LD = 100.0;
    return c;
}

FO fo_template() {
    FO o;
    set_drawn(o, "O", "Orifice");
    o.TYPE = "Orifice";
    o.HOLES = 1;
    o.DP.spec = "10";
    return o;
}

template <class N>
N nozzle_item_template(const char* tag, const char* description, const char* dp) {
    N n;
    set_drawn(n, tag, description);
    n.PRAT5 = 1000.0;
    n.PRAT3 = 1.0;
    n.DP.spec = dp;
    return n;
}

Expand expand_template() {
    Expand e;
    set_drawn(e, "R", "Reducer");
    e.TYPE = 1;
    e.ANGLE = 180.0;
    e.DP.spec = "0";
    return e;
}

Vessel vessel_template() {
    Vessel v;
    set_drawn(v, "V", "Vessel");
    v.TYPE = "Vertical";
    v.LF.value = 1.0;
    v.LEVL1 = v.LEVM1 = v.LEVH1 = "0";
    return v;
}

Symbol symbol_template() {
    Symbol s;
    s.TYPE = "Text";
    s.TEXT = "Double click left-top corner to edit.";
    s.FSIZ = 1.0f;
    s.ANGL = {0.0f, static_cast<float>(2.0 * 3.141592654), 0.0f};
    return s;
}

Pseudo pseudo_template() {
    Pseudo p;
    p.NAME_NUM = {0, 9000, 9000};
    p.NAME_TEXT = {"", fixed_width("NONE", 40), fixed_width("NONE", 40)};
    p.FOR = {"", fixed_width("", 12), fixed_width("", 12)};
    return p;
}

template <class R>
void only_template(std::vector<R>& v, R tmpl) {
    v.clear();
    v.push_back(std::move(tmpl));
}

// The calculators start from the templates of their kinds with a flow of
// 10 t/h: a 4 in commercial steel pipe, a valve on water at 175 kPag, an
// orifice at 10 kPa.
ToolsState calculator_defaults(const Project& p) {
    ToolsState t;
    t.pipe = {p.lines[0], 10.0, "4", 4.57e-05};
    t.valve = {p.valves[0], 10.0, {1.0, 1000.0, 1.0}, 175.0, {1000.0, 100.0}};
    t.orifice = {p.fos[0], 10.0, {10.0, 0.1}};
    return t;
}

}  // namespace

void NewProject(Project& p) {
    set_header(p.gen);
    p.color_normal = kColorNormal;
    p.color_selected = kColorSelected;
    p.color_error = kColorError;
    only_template(p.lines, line_template());
    only_template(p.feeds, boundary_template<Feed>("F", "Feed", "400"));
    only_template(p.prods, boundary_template<Prod>("TK", "Product", "50"));
    only_template(p.valves, valve_template());
    only_template(p.pumps, pump_template());
    only_template(p.comps, comp_template());
    only_template(p.checks, check_template());
    only_template(p.fos, fo_template());
    only_template(p.hxs, [] {
        auto h = nozzle_item_template<HX>("E", "Exchanger", "50");
        h.TYPE = "S-T";
        h.SIDE = "Tube";
        return h;
    }());
    only_template(p.miscs, nozzle_item_template<Misc>("X", "Misc Equipment", "0"));
    only_template(p.expands, expand_template());
    only_template(p.juncs, [] {
        Junc j;
        set_drawn(j, "J", "Junction");
        return j;
    }());
    only_template(p.vessels, vessel_template());
    only_template(p.tees, [] {
        Tee t;
        set_drawn(t, "T", "Tee");
        return t;
    }());
    only_template(p.symbols, symbol_template());
    only_template(p.pseudos, pseudo_template());
    p.tools = calculator_defaults(p);
    p.icons.clear();
    if (p.pipedata.empty()) p.pipedata.resize(1);
}

}  // namespace velm
