#include "solver/equations.hpp"

#include <cmath>

#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

namespace {


std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

char capital(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Trimmed and compared in capitals, without making a copy of either text.
bool same_name(std::string_view a, std::string_view b) {
    a = trimmed(a);
    b = trimmed(b);
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (capital(a[i]) != capital(b[i])) return false;
    return true;
}

double flow_of(const Project& p, int line) {
    return line >= 1 && line <= count(p.lines) ? p.lines[static_cast<std::size_t>(line)].TFLOW.value : 0.0;
}

// What a search of one kind found.
enum class Match { None, Found, BadIndex };

// Looks through one kind for the name. pressure(rec, k) gives pressure k
// (from 0) of a record, first_line(rec) the line on its first port.
template <class R, class Pressure, class FirstLine>
Match search(const Project& p, const std::vector<R>& v, int base, int width, std::string_view name, int index,
             EquipmentVar& out, Pressure pressure, FirstLine first_line) {
    for (int i = 1; i <= count(v); ++i) {
        const R& r = v[static_cast<std::size_t>(i)];
        if (!same_name(r.NAME[1], name)) continue;
        if (index >= width) return Match::BadIndex;
        out.col = base + width * (i - 1) + 1;
        out.P = pressure(r, index);
        out.W = flow_of(p, first_line(r));
        return Match::Found;
    }
    return Match::None;
}

// The first line on the ports of a junction or vessel, inlets before outlets.
template <class Node>
int first_node_line(const Node& r) {
    for (int n = 1; n <= kNozzles; ++n)
        if (r.NOZI[static_cast<std::size_t>(n)].CON) return r.NOZI[static_cast<std::size_t>(n)].CON;
    for (int n = 1; n <= kNozzles; ++n)
        if (r.NOZO[static_cast<std::size_t>(n)].CON) return r.NOZO[static_cast<std::size_t>(n)].CON;
    return 0;
}

}  // namespace

bool equipment_var(const Project& p, const Columns& c, std::string_view name, int index, EquipmentVar& out) {
    if (index < 0) {
        for (int i = 1; i <= count(p.lines); ++i) {
            const Line& l = p.lines[static_cast<std::size_t>(i)];
            if (!same_name(l.NAME[1], name)) continue;
            out = {c.line + i, l.TFLOW.value, l.PRES[3]};
            return true;
        }
        return false;
    }
    const auto feed = [](const Feed& r, int k) { return k == 0 ? r.PRES.value : r.POUT.value; };
    const auto prod = [](const Prod& r, int k) { return k == 0 ? r.PIN.value : r.PRES.value; };
    const auto two = [](const auto& r, int k) { return k == 0 ? r.PIN.value : r.POUT.value; };
    const auto tee = [](const Tee& r, int k) { return r.PRES[static_cast<std::size_t>(k) + 1]; };
    const auto node = [](const auto& r, int) { return r.PRES.value; };
    const auto noz = [](const auto& r) { return r.NOZ.CON; };
    const auto con = [](const auto& r) { return r.CON[1]; };
    const auto nozi = [](const auto& r) { return r.NOZI.CON; };
    const auto tee_line = [](const Tee& r) {
        for (int j = 1; j <= 6; ++j)
            if (r.CON[static_cast<std::size_t>(j)]) return r.CON[static_cast<std::size_t>(j)];
        return 0;
    };
    const auto node_line = [](const auto& r) { return first_node_line(r); };
    const auto line_pres = [](const Line& r, int) { return r.PRES[3]; };
    const auto itself = [&p](const Line& r) { return static_cast<int>(&r - p.lines.data()); };
    // The first record of that name in column order decides, also when the
    // index is beyond its pressures.
    Match m = Match::None;
    const auto look = [&](const auto& v, int base, int width, auto pressure, auto first_line) {
        if (m == Match::None) m = search(p, v, base, width, name, index, out, pressure, first_line);
    };
    look(p.feeds, c.feed, 2, feed, noz);
    look(p.prods, c.prod, 2, prod, noz);
    look(p.valves, c.valve, 2, two, con);
    look(p.checks, c.check, 2, two, con);
    look(p.pumps, c.pump, 2, two, con);
    look(p.comps, c.comp, 2, two, con);
    look(p.hxs, c.hx, 2, two, nozi);
    look(p.fos, c.fo, 2, two, con);
    look(p.miscs, c.misc, 2, two, nozi);
    look(p.expands, c.expand, 2, two, con);
    look(p.tees, c.tee, 3, tee, tee_line);
    look(p.juncs, c.junc, 1, node, node_line);
    look(p.vessels, c.vessel, 1, node, node_line);
    look(p.lines, c.line, 1, line_pres, itself);
    return m == Match::Found;
}

double equation(RunContext& ctx, const Project& p, const Columns& cols, const Equation& eqn, int& col_w, double& W,
                int& col_p, double& P) {
    return trapped(ctx, "Error! In equation function = ", [&]() -> double {
        const int col_p0 = col_p;
        const double P_passed = P;
        double W0 = W, P0 = P;
        EquipmentVar v;
        if (!trimmed(eqn.EQN2).empty() && equipment_var(p, cols, eqn.EQN2, -1, v)) {
            col_w = v.col;
            W0 = v.W;
        }
        if (!trimmed(eqn.EQN4).empty() && equipment_var(p, cols, eqn.EQN4, eqn.EQN5, v)) {
            col_p = v.col + eqn.EQN5;
            P0 = v.P;
        }
        const double a = eqn.EQN6, c = eqn.EQN7, n = eqn.EQN8;
        const double PATM = p.gen.PATM;
        switch (eqn.EQN1) {
            case 1:
                col_p = col_p0;
                W = W0 == 0.0 ? 1.0 : -c / std::fabs(W0);
                P = P_passed == 0.0 ? 1.0 : 1.0 / std::fabs(P_passed);
                return a;
            case 2:
                col_w = col_p0;
                W = 1.0;
                P = -c;
                return a;
            case 3:
                W = W0 == 0.0 || a == 0.0
                        ? 1.0
                        : checked_div(sgn(a) * c, checked_pow(std::fabs(a), n) * checked_pow(std::fabs(W0), 2.0 - n));
                P = 1.0;
                return c - PATM;
            case 4: {
                const double sum = P0 + c + PATM;
                W = W0 == 0.0 || a == 0.0 || sum == 0.0
                        ? 1.0
                        : checked_div(sgn(a) * c * c,
                                      checked_pow(std::fabs(a), n) * sum * checked_pow(std::fabs(W0), 2.0 - n));
                P = 1.0;
                return c - PATM;
            }
            case 5:
                W = -c;
                P = P_passed;
                return a;
            default:
                ctx.log_error("Error! Equation number invalid.");
                return 0.0;
        }
    });
}

}  // namespace velm
