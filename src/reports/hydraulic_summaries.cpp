// The summaries of the hydraulic report: one table row per record of a kind,
// its key fields in the display units; the machine curves as the case used
// them (scaled to the speed and impeller in use).
#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/text.hpp"
#include "reports/hydraulic_sections.hpp"

namespace velm {

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string flag(int v) { return v ? "Yes" : "No"; }

std::string text_or_dash(std::string_view s) {
    const std::string t = trim(s);
    return t.empty() ? "-" : t;
}

// Name, the lines on either side, the flow through: the first columns of every two-port item.
std::vector<Column> two_port_columns(const HydrCase& c) {
    return {{"Name", "", 12, true}, {"Type", "", 12, true}, {"In line", "", 10, true},
            {"Out line", "", 10, true}, {"Flow", c.u.mass_flow, 11}};
}

template <class R>
std::vector<std::string> two_port_cells(const HydrCase& c, const R& r, std::string_view type) {
    return {trim(r.NAME[1]), text_or_dash(type), c.line_name(r.CON[1]), c.line_name(r.CON[2]),
            c.num(c.line_flow(r.CON[1]), "t/h", c.u.mass_flow, 11)};
}

template <class B>
void boundary_summary(const HydrCase& c, RtfText& out, const std::vector<B>& v, const char* pipe_pressure) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    const std::vector<Column> cols = {
        {"Name", "", 12, true},    {"Description", "", 20, true}, {"Type", "", 7, true},
        {"Line", "", 12, true},    {"Flow", u.mass_flow, 11},     {"Elevation", u.length, 9},
        {"Level", u.length, 9},    {"Pressure", u.pressure, 11},  {pipe_pressure, u.pressure, 11},
        {"dP", dp, 10},            {"Choked", "", 6, true},
    };
    Rows rows;
    for (std::size_t i = 1; i < v.size(); ++i) {
        const B& b = v[i];
        double at_pipe = 0.0;
        if constexpr (std::is_same_v<B, Feed>) at_pipe = b.POUT.value;
        else at_pipe = b.PIN.value;
        rows.push_back({trim(b.NAME[1]), trim(b.NAME[2]), trim(b.TYPE), c.line_name(b.NOZ.CON),
                        c.num(c.line_flow(b.NOZ.CON), "t/h", u.mass_flow, 11), c.num(b.ELEV, "m", u.length, 9),
                        c.num(spec_value(b.LEVEL1, c.case_no), "m", u.length, 9),
                        c.num(b.PRES.value, "kPag", u.pressure, 11), c.num(at_pipe, "kPag", u.pressure, 11),
                        c.num(b.DP.value, "kPa", dp, 10), flag(b.CHOKE)});
    }
    write_table(out, cols, rows);
}

void feed_summary(const HydrCase& c, RtfText& out) { boundary_summary(c, out, c.p.feeds, "P at pipe"); }
void prod_summary(const HydrCase& c, RtfText& out) { boundary_summary(c, out, c.p.prods, "P at pipe"); }

void orifice_summary(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    std::vector<Column> cols = two_port_columns(c);
    cols.insert(cols.end(), {{"P in", u.pressure, 10}, {"P out", u.pressure, 10}, {"Meter dP", dp, 9},
                             {"Perm. dP", dp, 9}, {"Holes", "", 5}, {"Bore", u.diameter, 9}, {"Beta", "", 7},
                             {"C", "", 7}, {"Y", "", 7}, {"Choked", "", 6, true}});
    Rows rows;
    for (std::size_t i = 1; i < c.p.fos.size(); ++i) {
        const FO& fo = c.p.fos[i];
        auto r = two_port_cells(c, fo, fo.TYPE);
        r.insert(r.end(), {c.num(fo.PIN.value, "kPag", u.pressure), c.num(fo.POUT.value, "kPag", u.pressure),
                           c.num(fo.DPF.value, "kPa", dp, 9), c.num(fo.DP.value, "kPa", dp, 9),
                           std::to_string(fo.HOLES), c.num(fo.BORE.value, "m", u.diameter, 9), c.plain(fo.BETA.value, 7),
                           c.plain(fo.C, 7), c.plain(fo.YIN, 7), flag(fo.CHOKE)});
        rows.push_back(r);
    }
    write_table(out, cols, rows);
}

// A valve trim in a narrow column.
std::string trim_name(std::string_view type) {
    const std::string t = trim(type);
    if (t == "Equal percentage") return "Eq. %";
    if (t == "Quick opening") return "Quick";
    return text_or_dash(t);
}

void valve_summary(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    std::vector<Column> cols = two_port_columns(c);
    cols.insert(cols.end(), {{"Trim", "", 8, true}, {"P in", u.pressure, 10}, {"P out", u.pressure, 10},
                             {"dP", dp, 9}, {"Cv", "", 9}, {"Open", "%", 7}, {"xT", "", 6}, {"Y", "", 6},
                             {"Fp", "", 6}, {"Perm. dP", dp, 9}});
    Rows rows;
    for (std::size_t i = 1; i < c.p.valves.size(); ++i) {
        const Valve& v = c.p.valves[i];
        auto r = two_port_cells(c, v, v.TYPE2);
        r.insert(r.end(), {trim_name(v.TYPE), c.num(v.PIN.value, "kPag", u.pressure),
                           c.num(v.POUT.value, "kPag", u.pressure),
                           c.num(v.DP.value, "kPa", dp, 9), c.plain(v.CV.value, 9), c.plain(v.OPEN.value, 7),
                           c.plain(v.XT, 6), c.plain(v.YIN, 6), c.plain(v.FP2, 6), c.num(v.DPP2, "kPa", dp, 9)});
        rows.push_back(r);
    }
    write_table(out, cols, rows);
    out.line();
    out.line("Open is the stroke in per cent; Perm. dP the change of pressure to the line named for it (0 for none).");
}

void pump_summary(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    std::vector<Column> cols = two_port_columns(c);
    cols.insert(cols.end(), {{"Vol flow", u.liquid_volume_flow, 10}, {"P in", u.pressure, 10},
                             {"P out", u.pressure, 10}, {"dP", dp, 9}, {"Head", u.head, 9}, {"Eff", "", 6},
                             {"Shaft", "", 6}, {"Power", u.power, 9}});
    Rows rows;
    for (std::size_t i = 1; i < c.p.pumps.size(); ++i) {
        const Pump& m = c.p.pumps[i];
        auto r = two_port_cells(c, m, m.TYPE);
        r.insert(r.end(), {c.num(m.HQACT[3], "m3/h", u.liquid_volume_flow), c.num(m.PIN.value, "kPag", u.pressure),
                           c.num(m.POUT.value, "kPag", u.pressure), c.num(m.DP.value, "kPa", dp, 9),
                           c.num(m.HQACT[1], "m", u.head, 9), c.plain(m.EFFP.value, 6), c.plain(m.EFFS.value, 6),
                           c.num(m.POW, "kW", u.power, 9)});
        rows.push_back(r);
    }
    write_table(out, cols, rows);
}

// The curve of a machine as the case used it, points 1..HQ[1]; pump curves carry NPSHR.
template <class M>
void curve_table(const HydrCase& c, RtfText& out, const M& m, std::string_view flow_unit) {
    const DisplayUnits& u = c.u;
    constexpr bool pump = std::is_same_v<M, Pump>;
    std::vector<Column> cols = {{"Point", "", 5}, {"Flow", std::string(flow_unit), 11}, {"Head", u.head, 10},
                                {"Efficiency", "", 10}};
    if constexpr (pump) cols.push_back({"NPSH req", u.head, 10});
    Rows rows;
    for (int k = 1; k <= std::min(m.HQ1, kCurvePoints); ++k) {
        const auto i = static_cast<std::size_t>(k);
        std::vector<std::string> r = {std::to_string(k), c.num(m.CURQ_value[i], "m3/h", flow_unit, 11),
                                      c.num(m.CURH_value[i], "m", u.head), c.plain(m.CUREFF_value[i])};
        if constexpr (pump) r.push_back(c.num(m.CURNPSH_value[i], "m", u.head));
        rows.push_back(r);
    }
    if (rows.empty()) {
        out.line("No curve points.");
        return;
    }
    write_table(out, cols, rows);
}

void pump_curves(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    for (std::size_t i = 1; i < c.p.pumps.size(); ++i) {
        const Pump& m = c.p.pumps[i];
        std::string source = "-";
        if (m.NPSHAF[1] >= 1 && m.NPSHAF[1] <= count(c.p.feeds))
            source = "Feed " + trim(c.p.feeds[static_cast<std::size_t>(m.NPSHAF[1])].NAME[1]);
        else if (m.NPSHAF[2] >= 1 && m.NPSHAF[2] <= count(c.p.vessels))
            source = "Vessel " + trim(c.p.vessels[static_cast<std::size_t>(m.NPSHAF[2])].NAME[1]);
        if (i > 1) out.line();
        out.line("Pump " + trim(m.NAME[1]) + "  " + trim(m.NAME[2]));
        out.line("  NPSH available (" + u.head + ") = " + c.num(m.NPSHA13.value, "m", u.head) + "   NPSH required (" +
                 u.head + ") = " + c.num(m.NPSHR13.value, "m", u.head) + "   Margin (" + u.head +
                 ") = " + c.num(m.NPSHA13.value - m.NPSHR13.value, "m", u.head) + "   Suction source: " + source);
        out.line("  Operating point: flow (" + u.liquid_volume_flow + ") = " +
                 c.num(m.HQACT[3], "m3/h", u.liquid_volume_flow) + "   head (" + u.head +
                 ") = " + c.num(m.HQACT[1], "m", u.head) + "   efficiency = " + c.plain(m.EFFP.value));
        out.line();
        curve_table(c, out, m, u.liquid_volume_flow);
    }
}

void comp_summary(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    std::vector<Column> cols = two_port_columns(c);
    cols.insert(cols.end(), {{"Vol flow", u.gas_volume_flow, 10}, {"P in", u.pressure, 10},
                             {"P out", u.pressure, 10}, {"dP", dp, 9}, {"Ratio", "", 7}, {"Head", u.head, 10},
                             {"Eff", "", 6}, {"Shaft", "", 6}, {"Power", u.power, 9}});
    Rows rows;
    for (std::size_t i = 1; i < c.p.comps.size(); ++i) {
        const Comp& m = c.p.comps[i];
        auto r = two_port_cells(c, m, m.TYPE);
        r.insert(r.end(), {c.num(m.QACT.value, "m3/h", u.gas_volume_flow), c.num(m.PIN.value, "kPag", u.pressure),
                           c.num(m.POUT.value, "kPag", u.pressure), c.num(m.DP.value, "kPa", dp, 9),
                           c.plain(m.PRAT.value, 7), c.num(m.HQACT[1], "m", u.head), c.plain(m.EFFC.value, 6),
                           c.plain(m.EFFS.value, 6), c.num(m.POW, "kW", u.power, 9)});
        rows.push_back(r);
    }
    write_table(out, cols, rows);
}

void comp_curves(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    for (std::size_t i = 1; i < c.p.comps.size(); ++i) {
        const Comp& m = c.p.comps[i];
        if (i > 1) out.line();
        out.line("Compressor " + trim(m.NAME[1]) + "  " + trim(m.NAME[2]));
        out.line("  Operating point: flow (" + u.gas_volume_flow + ") = " +
                 c.num(m.QACT.value, "m3/h", u.gas_volume_flow) + "   head (" + u.head +
                 ") = " + c.num(m.HQACT[1], "m", u.head) + "   efficiency = " + c.plain(m.EFFC.value));
        out.line();
        curve_table(c, out, m, u.gas_volume_flow);
    }
}

void vessel_summary(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::vector<Column> cols = {
        {"Name", "", 12, true},          {"Description", "", 20, true},   {"Type", "", 10, true},
        {"Elevation", u.length, 9},      {"Pressure", u.pressure, 11},    {"Liq frac", "", 8},
        {"Heavy lvl", u.length, 9},      {"Medium lvl", u.length, 10},    {"Light lvl", u.length, 9},
        {"Heavy den", u.density, 9},     {"Medium den", u.density, 10},   {"Light den", u.density, 9},
    };
    Rows rows;
    for (std::size_t i = 1; i < c.p.vessels.size(); ++i) {
        const Vessel& v = c.p.vessels[i];
        rows.push_back({trim(v.NAME[1]), trim(v.NAME[2]), trim(v.TYPE), c.num(v.ELEV, "m", u.length, 9),
                        c.num(v.PRES.value, "kPag", u.pressure, 11), c.plain(v.LF.value, 8),
                        c.num(spec_value(v.LEVH1, c.case_no), "m", u.length, 9),
                        c.num(spec_value(v.LEVM1, c.case_no), "m", u.length, 10),
                        c.num(spec_value(v.LEVL1, c.case_no), "m", u.length, 9),
                        c.num(v.LEVH3, "kg/m3", u.density, 9), c.num(v.LEVM3, "kg/m3", u.density, 10),
                        c.num(v.LEVL3, "kg/m3", u.density, 9)});
    }
    write_table(out, cols, rows);
    out.line();
    out.line("Levels above the vessel base: heavy liquid at the bottom, medium above it, light on top.");
}

template <class R>
bool holds(const std::vector<R>& v) {
    return v.size() > 1;
}

}  // namespace

const std::vector<Summary>& summaries() {
    static const std::vector<Summary> list = {
        {"FEED SUMMARY", [](const Project& p) { return holds(p.feeds); }, feed_summary},
        {"PRODUCT SUMMARY", [](const Project& p) { return holds(p.prods); }, prod_summary},
        {"ORIFICE SUMMARY", [](const Project& p) { return holds(p.fos); }, orifice_summary},
        {"VALVE SUMMARY", [](const Project& p) { return holds(p.valves); }, valve_summary},
        {"PUMP SUMMARY", [](const Project& p) { return holds(p.pumps); }, pump_summary},
        {"PUMP NPSH AND CURVES", [](const Project& p) { return holds(p.pumps); }, pump_curves},
        {"COMPRESSOR SUMMARY", [](const Project& p) { return holds(p.comps); }, comp_summary},
        {"COMPRESSOR CURVES", [](const Project& p) { return holds(p.comps); }, comp_curves},
        {"VESSEL SUMMARY", [](const Project& p) { return holds(p.vessels); }, vessel_summary},
    };
    return list;
}

}  // namespace velm
