#include "reports/hydraulic_sections.hpp"

#include <algorithm>
#include <cmath>
#include <functional>

#include "model/context.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }

// The line ends that each kind of item holds: a line whose outlet is on the
// item (flow drawn into it) and a line whose inlet is on it.
template <class R>
void mark(const Project& p, std::vector<std::string>& ends, const std::vector<R>& v, std::size_t i, int line,
          const char* word) {
    if (is_line(p, line)) ends[static_cast<std::size_t>(line)] = std::string(word) + " " + trim(v[i].NAME[1]);
}

template <class R>
void mark_two_ports(HydrCase& c, const std::vector<R>& v, const char* word) {
    for (std::size_t i = 1; i < v.size(); ++i) {
        if constexpr (requires { v[i].NOZI.CON; }) {
            mark(c.p, c.at_outlet, v, i, v[i].NOZI.CON, word);
            mark(c.p, c.at_inlet, v, i, v[i].NOZO.CON, word);
        } else {
            mark(c.p, c.at_outlet, v, i, v[i].CON[1], word);
            mark(c.p, c.at_inlet, v, i, v[i].CON[2], word);
        }
    }
}

template <class R>
void mark_nodes(HydrCase& c, const std::vector<R>& v, const char* word) {
    for (std::size_t i = 1; i < v.size(); ++i)
        for (int n = 1; n <= kNozzles; ++n) {
            mark(c.p, c.at_outlet, v, i, v[i].NOZI[static_cast<std::size_t>(n)].CON, word);
            mark(c.p, c.at_inlet, v, i, v[i].NOZO[static_cast<std::size_t>(n)].CON, word);
        }
}

void find_line_ends(HydrCase& c) {
    const Project& p = c.p;
    c.at_inlet.assign(p.lines.size(), "-");
    c.at_outlet.assign(p.lines.size(), "-");
    for (std::size_t i = 1; i < p.feeds.size(); ++i) mark(p, c.at_inlet, p.feeds, i, p.feeds[i].NOZ.CON, "Feed");
    for (std::size_t i = 1; i < p.prods.size(); ++i) mark(p, c.at_outlet, p.prods, i, p.prods[i].NOZ.CON, "Product");
    mark_two_ports(c, p.valves, "Valve");
    mark_two_ports(c, p.checks, "Check");
    mark_two_ports(c, p.pumps, "Pump");
    mark_two_ports(c, p.comps, "Compressor");
    mark_two_ports(c, p.fos, "Orifice");
    mark_two_ports(c, p.hxs, "Exchanger");
    mark_two_ports(c, p.miscs, "Misc");
    mark_two_ports(c, p.expands, "Reducer");
    mark_nodes(c, p.juncs, "Junction");
    mark_nodes(c, p.vessels, "Vessel");
    for (std::size_t i = 1; i < p.tees.size(); ++i)
        for (int side = 1; side <= 3; ++side) {
            mark(p, c.at_outlet, p.tees, i, p.tees[i].CON[static_cast<std::size_t>(side)], "Tee");
            mark(p, c.at_inlet, p.tees, i, p.tees[i].CON[static_cast<std::size_t>(side + 3)], "Tee");
        }
}

// The nominal size given, or the one the sizing found, marked so.
std::string nominal_size(const Line& l) {
    if (!trim(l.DIA[1]).empty()) return trim(l.DIA[1]);
    return trim(l.DIA[2]).empty() ? std::string() : trim(l.DIA[2]) + " calc";
}

}  // namespace

HydrCase::HydrCase(RunContext& c, const Project& project, int case_number, int page_width)
    : ctx(c), p(project), case_no(case_number), width(page_width) {
    SetUnits(u, p.gen);
    find_line_ends(*this);
}

std::string HydrCase::num(double v, std::string_view from, std::string_view to, std::size_t w) const {
    return report_number(convert_value(ctx, v, from, to), w);
}

HydrCase::Scale HydrCase::scale(std::string_view from, std::string_view to) const {
    Scale s{from, to};
    // A known unit has its factor without side effects; an unknown one is
    // logged by each conversion, which the slow path keeps.
    s.known = is_known_unit(from) && is_known_unit(to);
    if (s.known) {
        s.from_factor = get_units(ctx, from);
        s.to_factor = get_units(ctx, to);
    }
    return s;
}

std::string HydrCase::num(double v, const Scale& s, std::size_t w) const {
    // convert_value's arithmetic; what it would fault on takes its own path.
    if (s.known && s.from_factor != 0.0) {
        const double scaled = v * s.to_factor;
        if (std::isfinite(scaled) && std::isfinite(scaled / s.from_factor))
            return report_number(scaled / s.from_factor, w);
    }
    return num(v, s.from, s.to, w);
}

std::string HydrCase::temp(double celsius, std::size_t w) const {
    return report_number(UnitsTFunc(ctx, celsius, "C", u.temperature), w);
}

std::string HydrCase::line_name(int n) const {
    return is_line(p, n) ? trim(p.lines[static_cast<std::size_t>(n)].NAME[1]) : "-";
}

double HydrCase::line_flow(int n) const { return is_line(p, n) ? p.lines[static_cast<std::size_t>(n)].TFLOW.value : 0.0; }

std::string difference_unit(std::string_view unit) {
    const std::string u = trim(unit);
    for (const char* gauge : {"kPag", "psig", "barg", "kg/cm2g", "Pag"})
        if (u == gauge) return u.substr(0, u.size() - 1);
    return u;
}

void profile_section(const HydrCase& c, RtfText& out) {
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    const std::vector<Column> cols = {
        {"Line", "", 12, true},           {"From", "", 22, true},         {"To", "", 22, true},
        {"Flow", u.mass_flow, 11},        {"Elev in", u.length, 9},       {"Elev out", u.length, 9},
        {"P in", u.pressure, 11},         {"P out", u.pressure, 11},      {"dP", dp, 10},
        {"Temp", u.temperature, 8},
    };
    const HydrCase::Scale flow = c.scale("t/h", u.mass_flow), length = c.scale("m", u.length),
                          pressure = c.scale("kPag", u.pressure), drop = c.scale("kPa", dp);
    // A row at a time: the table of a large network would hold a million cells.
    write_table_head(out, cols);
    for (std::size_t i = 1; i < c.p.lines.size(); ++i) {
        const Line& l = c.p.lines[i];
        write_table_row(out, cols,
                        {trim(l.NAME[1]), c.at_inlet[i], c.at_outlet[i], c.num(l.TFLOW.value, flow, 11),
                         c.num(l.ELEV[1], length, 9), c.num(l.ELEV[2], length, 9), c.num(l.PRES[1], pressure, 11),
                         c.num(l.PRES[2], pressure, 11), c.num(l.PRES[1] - l.PRES[2], drop, 10), c.temp(l.TEMP[3])});
    }
    out.line();
    out.line("From and To are the items at the drawn inlet and outlet; a negative flow runs from To to From.");
}

void pipe_line_section(const HydrCase& c, RtfText& out) {
    constexpr std::size_t kLabel = 30, kCell = 16;
    const DisplayUnits& u = c.u;
    const std::string dp = difference_unit(u.pressure);
    using Cell = std::function<std::string(int, const Line&)>;
    // The units of a column are looked up once (to names a unit of c.u or dp).
    auto num = [&](auto field, const char* from, const std::string& to) -> Cell {
        return [&c, field, s = c.scale(from, to)](int, const Line& l) { return c.num(field(l), s, kCell); };
    };
    auto plain = [&](auto field) -> Cell { return [&c, field](int, const Line& l) { return c.plain(field(l), kCell); }; };
    auto text = [](auto field) -> Cell {
        return [field](int, const Line& l) {
            const std::string s = trim(field(l));
            return s.empty() ? std::string("-") : s;
        };
    };
    auto with_unit = [](const char* label, const std::string& unit) { return std::string(label) + " (" + unit + ")"; };
    const std::vector<std::pair<std::string, Cell>> rows = {
        {"Line number", [](int n, const Line&) { return std::to_string(n); }},
        {"Line name", text([](const Line& l) { return l.NAME[1]; })},
        {"Description", text([](const Line& l) { return l.NAME[2]; })},
        {"From", [&c](int n, const Line&) { return c.at_inlet[static_cast<std::size_t>(n)]; }},
        {"To", [&c](int n, const Line&) { return c.at_outlet[static_cast<std::size_t>(n)]; }},
        {"Nominal size (in)", text([](const Line& l) { return nominal_size(l); })},
        {"Schedule", text([](const Line& l) { return l.SCH; })},
        {"Material", text([](const Line& l) { return l.MAT; })},
        {with_unit("Inside diameter", u.diameter), num([](const Line& l) { return l.ID.value; }, "m", u.diameter)},
        {with_unit("Roughness", u.diameter), num([](const Line& l) { return l.EPS.value; }, "m", u.diameter)},
        {with_unit("Length", u.length), num([](const Line& l) { return l.LEN; }, "m", u.length)},
        {with_unit("Elevation in", u.length), num([](const Line& l) { return l.ELEV[1]; }, "m", u.length)},
        {with_unit("Elevation out", u.length), num([](const Line& l) { return l.ELEV[2]; }, "m", u.length)},
        {"Fittings K", plain([](const Line& l) { return l.FITK; })},
        {"Fittings L/D", plain([](const Line& l) { return l.FITLD; })},
        {with_unit("Fittings eq. length", u.length), num([](const Line& l) { return l.EQLEN; }, "m", u.length)},
        {with_unit("Flow", u.mass_flow), num([](const Line& l) { return l.TFLOW.value; }, "t/h", u.mass_flow)},
        {"Liquid fraction", plain([](const Line& l) { return l.LF[3]; })},
        {with_unit("Temperature in", u.temperature), [&c](int, const Line& l) { return c.temp(l.TEMP[1], kCell); }},
        {with_unit("Temperature out", u.temperature), [&c](int, const Line& l) { return c.temp(l.TEMP[2], kCell); }},
        {with_unit("Pressure in", u.pressure), num([](const Line& l) { return l.PRES[1]; }, "kPag", u.pressure)},
        {with_unit("Pressure out", u.pressure), num([](const Line& l) { return l.PRES[2]; }, "kPag", u.pressure)},
        {with_unit("Pressure drop", dp), num([](const Line& l) { return l.PRES[1] - l.PRES[2]; }, "kPa", dp)},
        {with_unit("Elevation dP", dp), num([](const Line& l) { return l.DPELEV; }, "kPa", dp)},
        {with_unit("Acceleration dP", dp), num([](const Line& l) { return l.DPACC; }, "kPa", dp)},
        {with_unit("Density", u.density), num([](const Line& l) { return l.TPROP[3]; }, "kg/m3", u.density)},
        {"Viscosity (cP)", plain([](const Line& l) { return l.TPROP[6]; })},
        {with_unit("Velocity in", u.velocity), num([](const Line& l) { return l.VEL[1]; }, "m/s", u.velocity)},
        {with_unit("Velocity average", u.velocity), num([](const Line& l) { return l.VEL[3]; }, "m/s", u.velocity)},
        {with_unit("Velocity out", u.velocity), num([](const Line& l) { return l.VEL[2]; }, "m/s", u.velocity)},
        {with_unit("Sonic velocity", u.velocity), num([](const Line& l) { return l.VEL[4]; }, "m/s", u.velocity)},
        {"Reynolds number", plain([](const Line& l) { return l.RE; })},
        {"Friction factor (Darcy)", plain([](const Line& l) { return l.F[1]; })},
        {"Friction factor, turbulent", plain([](const Line& l) { return l.F[2]; })},
        {with_unit("dP/100", u.gradient), num([](const Line& l) { return l.DPL; }, "kPa/100m", u.gradient)},
        {"Two-phase method", text([&c](const Line& l) { return trim(l.MTP).empty() ? c.p.gen.MTP : l.MTP; })},
        {"Liquid hold-up", plain([](const Line& l) { return l.HUP; })},
        {"Regime horiz. Mandhane", text([](const Line& l) { return l.REG[1]; })},
        {"Regime horiz. Taitel-Dukler", text([](const Line& l) { return l.REGA[1]; })},
        {"Regime vert. up Fair", text([](const Line& l) { return l.REG[2]; })},
        {"Regime vert. up Taitel", text([](const Line& l) { return l.REGA[2]; })},
        {"Regime vert. down Golan", text([](const Line& l) { return l.REG[3]; })},
        {"Next size up (in)", text([](const Line& l) { return l.SizeUp; })},
        {with_unit("  dP/100", u.gradient), num([](const Line& l) { return l.dPUp; }, "kPa/100m", u.gradient)},
        {with_unit("  Velocity", u.velocity), num([](const Line& l) { return l.VelUp; }, "m/s", u.velocity)},
        {"Next size down (in)", text([](const Line& l) { return l.SizeDown; })},
        {with_unit("  dP/100", u.gradient), num([](const Line& l) { return l.dPDown; }, "kPa/100m", u.gradient)},
        {with_unit("  Velocity", u.velocity), num([](const Line& l) { return l.VelDown; }, "m/s", u.velocity)},
    };
    // As many lines across as the page holds, each column headed by "| ".
    const int lines = count(c.p.lines);
    const int across = std::max(1, (c.width - static_cast<int>(kLabel)) / static_cast<int>(kCell + 2));
    std::string s;
    for (int first = 1; first <= lines; first += across) {
        const int last = std::min(lines, first + across - 1);
        if (first > 1) out.line();
        for (const auto& [label, cell] : rows) {
            s = cell_left(label, kLabel);
            for (int n = first; n <= last; ++n) {
                const std::string v = cell(n, c.p.lines[static_cast<std::size_t>(n)]);
                const std::size_t shown = std::min(v.size(), kCell);
                s += "| ";
                s.append(v, 0, shown);
                s.append(kCell - shown, ' ');
            }
            while (!s.empty() && s.back() == ' ') s.pop_back();
            out.line(s);
        }
    }
}

void warnings_section(const std::vector<std::string>& warnings, RtfText& out) {
    if (warnings.empty()) out.line("No warnings or errors.");
    for (const std::string& w : warnings) out.line(w);
}

}  // namespace velm
