#include "reports/balance_report.hpp"

#include <algorithm>
#include <functional>

#include "balance/balance.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/number_format.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "reports/hydraulic_report.hpp"
#include "reports/report_page.hpp"

namespace velm {

namespace {

constexpr std::size_t kLabel = 30, kCell = 14;

struct BalanceCase {
    RunContext& ctx;
    const Project& p;
    const FlashSetup& setup;
    DisplayUnits u;
    int width;

    std::string num(double v, std::string_view from, std::string_view to) const {
        return report_number(convert_value(ctx, v, from, to), kCell);
    }
    std::string temp(double celsius) const { return report_number(UnitsTFunc(ctx, celsius, "C", u.temperature), kCell); }
    std::string comp_name(std::size_t c) const { return trim(setup.comps[c].Name); }
};

// The vapour's share of the moles at a line end, from the weight split and
// the phases' mole weights; 0 without vapour.
double mole_vapour_fraction(const Line& l, std::size_t e) {
    const double v = 1.0 - l.LF[e], liquid = l.LF[e];
    if (v <= 0.0 || l.VAPMW[e] <= 0.0) return 0.0;
    const double nv = v / l.VAPMW[e], nl = l.LIQMW[e] > 0.0 ? liquid / l.LIQMW[e] : 0.0;
    return nv / (nv + nl);
}

// The vapour's density at a line end, kg/m3, from its compressibility: P MW
// / (Z R T), P in kPa absolute; 0 without vapour.
double vapour_density(const Line& l, std::size_t e, double patm) {
    if (l.LF[e] >= 1.0 || l.VAPZ[e] <= 0.0) return 0.0;
    return (patm + l.PRES[e]) * l.VAPMW[e] / (l.VAPZ[e] * 8.314 * (l.TEMP[e] + 273.15));
}

// Rows of labels, one column per item, as many columns across as the page
// holds; each column headed by "| ".
void columns_across(const BalanceCase& c, const std::vector<std::string>& heads,
                    const std::vector<std::pair<std::string, std::function<std::string(std::size_t)>>>& rows,
                    RtfText& out) {
    const std::size_t across = std::max<std::size_t>(1, (c.width - kLabel) / (kCell + 2));
    for (std::size_t first = 0; first < heads.size(); first += across) {
        const std::size_t last = std::min(heads.size(), first + across);
        if (first > 0) out.line();
        std::string head = cell_left("", kLabel);
        for (std::size_t k = first; k < last; ++k) head += "| " + cell_left(heads[k], kCell);
        out.line(head);
        for (const auto& [label, cell] : rows) {
            std::string s = cell_left(label, kLabel);
            for (std::size_t k = first; k < last; ++k) s += "| " + cell_left(cell(k), kCell);
            out.line(s);
        }
    }
}

void general_section(const BalanceCase& c, double hmb_error, RtfText& out) {
    const Header& g = c.p.gen;
    out.line("FILE NAME  : " + c.ctx.project_file.string());
    out.line("FLASH      : Method         = " + g.MFLASH);
    out.line("             K-values       = " + g.MFLASHK);
    out.line("             Enthalpy       = " + g.MFLASHH);
    out.line("COMPONENTS : No    Name                                     MW (kg/kmol)");
    for (std::size_t k = 1; k <= c.setup.count(); ++k)
        out.line(std::string(13, ' ') + cell_left(std::to_string(c.setup.ids[k]), 6) + cell_left(c.comp_name(k), 41) +
                 report_number(c.setup.comps[k].MW, 12));
    out.line("RUN MESSAGE: " + c.ctx.run_signal);
    out.line("HMB ERROR  : " + format_number(hmb_error, "0.00E-##"));
}

void streams_section(const BalanceCase& c, RtfText& out) {
    const Project& p = c.p;
    const DisplayUnits& u = c.u;
    std::vector<std::string> heads;
    for (int L = 1; L <= count(p.lines); ++L)
        for (const char* end : {"_In", "_Out"}) heads.push_back(trim(p.lines[static_cast<std::size_t>(L)].NAME[1]) + end);
    // Column k is end 1 or 2 of line k / 2 + 1.
    const auto line_of = [&p](std::size_t k) -> const Line& { return p.lines[k / 2 + 1]; };
    const auto pos = [](std::size_t k) { return k % 2 + 1; };
    using Cell = std::function<std::string(std::size_t)>;
    const auto value = [&](auto field, const char* from, const std::string& to) -> Cell {
        return [&, field, from, to](std::size_t k) { return c.num(field(line_of(k), pos(k)), from, to); };
    };
    const auto plain = [&](auto field) -> Cell {
        return [&, field](std::size_t k) { return report_number(field(line_of(k), pos(k)), kCell); };
    };
    const auto unit = [](const char* label, const std::string& un) { return std::string(label) + " (" + un + ")"; };
    std::vector<std::pair<std::string, Cell>> rows = {
        {unit("Temperature", u.temperature), [&](std::size_t k) { return c.temp(line_of(k).TEMP[pos(k)]); }},
        {unit("Pressure", u.pressure), value([](const Line& l, std::size_t e) { return l.PRES[e]; }, "kPag", u.pressure)},
        {"Vapour fraction (wt)", plain([](const Line& l, std::size_t e) { return 1.0 - l.LF[e]; })},
        {"Vapour fraction (mol)", plain([](const Line& l, std::size_t e) { return mole_vapour_fraction(l, e); })},
        {unit("Enthalpy", u.enthalpy), value([](const Line& l, std::size_t e) { return l.H[e]; }, "kJ/kg", u.enthalpy)},
        {"Entropy (kJ/kg/K)", plain([](const Line& l, std::size_t e) { return l.S[e]; })},
        {"MW total", plain([](const Line& l, std::size_t) { return l.TOTMW; })},
        {"MW liquid", plain([](const Line& l, std::size_t e) { return l.LIQMW[e]; })},
        {"MW vapour", plain([](const Line& l, std::size_t e) { return l.VAPMW[e]; })},
        {unit("Liquid density", u.density),
         value([](const Line& l, std::size_t e) { return l.LIQDEN[e]; }, "kg/m3", u.density)},
        {unit("Vapour density", u.density),
         value([&](const Line& l, std::size_t e) { return vapour_density(l, e, c.setup.PATM); }, "kg/m3", u.density)},
        {"Liquid viscosity (cP)", plain([](const Line& l, std::size_t e) { return l.LIQVISC[e]; })},
        {"Vapour viscosity (cP)", plain([](const Line& l, std::size_t e) { return l.VAPVISC[e]; })},
        {unit("Liquid Cp", u.heat_capacity),
         value([](const Line& l, std::size_t e) { return l.LIQCP[e]; }, "kJ/kg/K", u.heat_capacity)},
        {unit("Vapour Cp", u.heat_capacity),
         value([](const Line& l, std::size_t e) { return l.VAPCP[e]; }, "kJ/kg/K", u.heat_capacity)},
        {unit("Liquid conductivity", u.conductivity),
         value([](const Line& l, std::size_t e) { return l.LIQCON[e]; }, "W/m/K", u.conductivity)},
        {unit("Vapour conductivity", u.conductivity),
         value([](const Line& l, std::size_t e) { return l.VAPCON[e]; }, "W/m/K", u.conductivity)},
        {"Surface tension (dyne/cm)", plain([](const Line& l, std::size_t e) { return l.LIQSUR[e]; })},
        {"Vapour Z", plain([](const Line& l, std::size_t e) { return l.VAPZ[e]; })},
        {"Vapour Cp/Cv", plain([](const Line& l, std::size_t e) { return l.VAPK[e]; })},
    };
    for (std::size_t comp = 1; comp <= c.setup.count(); ++comp)
        rows.emplace_back("x " + c.comp_name(comp),
                          [&, comp](std::size_t k) { return report_number(line_of(k).COMP0[comp], kCell); });
    columns_across(c, heads, rows, out);
}

void vessels_section(const BalanceCase& c, RtfText& out) {
    const Project& p = c.p;
    const DisplayUnits& u = c.u;
    std::vector<std::string> heads;
    for (int i = 1; i <= count(p.vessels); ++i) heads.push_back(trim(p.vessels[static_cast<std::size_t>(i)].NAME[1]));
    const auto vessel = [&p](std::size_t k) -> const Vessel& { return p.vessels[k + 1]; };
    // The line on outlet nozzle n of vessel k, or nothing.
    const auto outlet = [&p, &vessel](std::size_t k, int n) -> const Line* {
        const int L = vessel(k).NOZO[static_cast<std::size_t>(n)].CON;
        return L >= 1 && L <= count(p.lines) ? &p.lines[static_cast<std::size_t>(L)] : nullptr;
    };
    using Cell = std::function<std::string(std::size_t)>;
    const auto flow = [&](int n) -> Cell {
        return [&, n](std::size_t k) {
            const Line* l = outlet(k, n);
            return l == nullptr ? std::string("-") : c.num(l->TFLOW.value, "t/h", u.mass_flow);
        };
    };
    std::vector<VesselFeed> feeds;
    for (std::size_t k = 0; k < heads.size(); ++k) feeds.push_back(vessel_feed(nullptr, p, c.setup, vessel(k)));
    std::vector<std::pair<std::string, Cell>> rows = {
        {"Pressure (" + u.pressure + ")", [&](std::size_t k) { return c.num(vessel(k).PRES.value, "kPag", u.pressure); }},
        {"Inlet flow (" + u.mass_flow + ")", [&](std::size_t k) { return c.num(feeds[k].Ftot, "t/h", u.mass_flow); }},
        {"Inlet enthalpy (" + u.enthalpy + ")",
         [&](std::size_t k) { return c.num(feeds[k].H, "kJ/kg", u.enthalpy); }},
        {"Liquid fraction (wt)", [&](std::size_t k) { return report_number(vessel(k).LF.value, kCell); }},
        {"Vapour flow (" + u.mass_flow + ")", flow(1)},
        {"Liquid flow (" + u.mass_flow + ")", flow(2)},
    };
    for (std::size_t comp = 1; comp <= c.setup.count(); ++comp)
        rows.emplace_back("z " + c.comp_name(comp),
                          [&, comp](std::size_t k) { return report_number(feeds[k].z[comp], kCell); });
    for (int n : {1, 2})
        for (std::size_t comp = 1; comp <= c.setup.count(); ++comp)
            rows.emplace_back((n == 1 ? "y " : "x ") + c.comp_name(comp), [&, n, comp](std::size_t k) {
                const Line* l = outlet(k, n);
                return l == nullptr ? std::string("-") : report_number(l->COMP0[comp], kCell);
            });
    columns_across(c, heads, rows, out);
}

void line_heat_section(const BalanceCase& c, RtfText& out) {
    const Project& p = c.p;
    const DisplayUnits& u = c.u;
    const std::vector<Column> cols = {
        {"Line", "", 16, true},
        {"Duty", u.duty, 12},
        {"U", u.heat_transfer_coefficient, 12},
        {"Surface", u.temperature, 10},
        {"Ambient", u.temperature, 10},
    };
    std::vector<std::vector<std::string>> rows;
    for (int L = 1; L <= count(p.lines); ++L) {
        const Line& l = p.lines[static_cast<std::size_t>(L)];
        rows.push_back({trim(l.NAME[1]), c.num(l.Q.value, "kJ/h", u.duty),
                        c.num(l.UI.value, "W/m2/K", u.heat_transfer_coefficient), c.temp(l.TSUR), c.temp(l.TAMB)});
    }
    write_table(out, cols, rows);
    out.line();
    out.line("A positive duty is heat lost by the line.");
}

}  // namespace

void WriteHMBReport(RunContext& ctx, const Project& p, const FlashSetup& setup, double hmb_error, int case_ix,
                    const std::string& file) {
    const int case_no = case_ix == 0 ? 1 : case_count_or_value(p.gen.CASENO, case_ix);
    BalanceCase c{ctx, p, setup, {}, report_width(p.gen)};
    SetUnits(c.u, p.gen);
    RtfText out;
    if (case_ix <= 1) document_head(p.gen, out);
    Head head{p.gen, report_date(p.gen, local_now()), case_no, case_ix <= 1};
    ReportPageHead(out, head, "GENERAL", "HEAT AND MOLE BALANCE REPORT");
    general_section(c, hmb_error, out);
    ReportPageHead(out, head, "STREAMS", "");
    streams_section(c, out);
    if (count(p.vessels) > 0) {
        ReportPageHead(out, head, "VESSELS", "");
        vessels_section(c, out);
    }
    ReportPageHead(out, head, "LINE HEAT", "");
    line_heat_section(c, out);
    if (!ctx.append_run_file(file, out.str()))
        ctx.log_error("Error! In WriteHMBReport = 75 : Path/File access error");
}

}  // namespace velm
