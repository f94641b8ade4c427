#include "solver/network.hpp"

#include "solver/rows.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "correlations/pipe.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "solver/equations.hpp"

namespace velm {

namespace {

// What a line end sits on.
enum EndKind { kFeedEnd, kProdEnd, kValveEnd, kCheckEnd, kPumpEnd, kCompEnd, kHXEnd, kFOEnd, kMiscEnd, kExpandEnd,
               kTeeEnd, kJuncEnd, kVesselEnd };


}  // namespace

Columns::Columns(const Project& p) {
    int base = 0;
    auto block = [&base](int& b, int n, int width) {
        b = base;
        base += n * width;
    };
    block(feed, count(p.feeds), 2);
    block(prod, count(p.prods), 2);
    block(valve, count(p.valves), 2);
    block(check, count(p.checks), 2);
    block(pump, count(p.pumps), 2);
    block(comp, count(p.comps), 2);
    block(hx, count(p.hxs), 2);
    block(fo, count(p.fos), 2);
    block(misc, count(p.miscs), 2);
    block(expand, count(p.expands), 2);
    block(tee, count(p.tees), 3);
    block(junc, count(p.juncs), 1);
    block(vessel, count(p.vessels), 1);
    block(line, count(p.lines), 1);
    num_vars = base;
}

int structural_rows(const Project& p) {
    return count(p.lines) + 3 * count(p.tees) + count(p.vessels) + count(p.juncs) + count(p.valves) +
           count(p.checks) + count(p.pumps) + count(p.comps) + count(p.hxs) + count(p.fos) + count(p.miscs) +
           count(p.expands);
}

namespace {

// Elevation that a line end takes from the equipment it sits on.
double end_elevation(const Project& p, const LineEnd& e) {
    const auto i = static_cast<std::size_t>(e.record);
    const bool leaves = e.coef > 0;
    switch (e.kind) {
        case kFeedEnd: return p.feeds[i].ELEV + p.feeds[i].NOZ.NozHeight;
        case kProdEnd: return p.prods[i].ELEV + p.prods[i].NOZ.NozHeight;
        case kValveEnd: return p.valves[i].ELEV;
        case kCheckEnd: return p.checks[i].ELEV;
        case kPumpEnd: return p.pumps[i].ELEV;
        case kCompEnd: return p.comps[i].ELEV;
        case kHXEnd: return (leaves ? p.hxs[i].NOZO : p.hxs[i].NOZI).NozHeight;
        case kFOEnd: return p.fos[i].ELEV;
        case kMiscEnd: return (leaves ? p.miscs[i].NOZO : p.miscs[i].NOZI).NozHeight;
        case kExpandEnd: return p.expands[i].ELEV;
        case kTeeEnd: return p.tees[i].ELEV;
        case kJuncEnd: return (leaves ? p.juncs[i].NOZO : p.juncs[i].NOZI)[static_cast<std::size_t>(e.port)].NozHeight;
        default: {
            const Vessel& v = p.vessels[i];
            return v.ELEV + (leaves ? v.NOZO : v.NOZI)[static_cast<std::size_t>(e.port)].NozHeight;
        }
    }
}

// The lines of the junction and vessel balances, once per run: a large
// network's rows are then built from a short list rather than the nozzles of
// every record.
void find_node_lines(const Project& p, Network& net) {
    net.node_start.assign(1, 0);
    net.node_lines.clear();
    auto node = [&](const auto& n) {
        for (int k = 1; k <= kNozzles; ++k) {
            if (is_line(p, n.NOZI[k].CON)) net.node_lines.push_back(n.NOZI[k].CON);
            if (is_line(p, n.NOZO[k].CON)) net.node_lines.push_back(-n.NOZO[k].CON);
        }
        net.node_start.push_back(static_cast<int>(net.node_lines.size()));
    };
    for (int i = 1; i <= count(p.juncs); ++i) node(p.juncs[i]);
    for (int i = 1; i <= count(p.vessels); ++i) node(p.vessels[i]);
}

// The ends of every line, found by scanning the kinds in column order.
void find_line_ends(const Project& p, Network& net) {
    const Columns& c = net.cols;
    const int nl = count(p.lines);
    std::vector<LineEnd>& ends = net.ends;
    ends.clear();
    std::vector<int>& line_of = net.IA;  // scratch: the line of each end, before bucketing
    line_of.clear();
    auto add = [&](int line, LineEnd e) {
        if (!is_line(p, line)) return;
        e.elevation = end_elevation(p, e);
        ends.push_back(e);
        line_of.push_back(line);
    };
    for (int i = 1; i <= count(p.feeds); ++i) add(p.feeds[i].NOZ.CON, {Columns::second(c.feed, i), +1, kFeedEnd, i, 0});
    for (int i = 1; i <= count(p.prods); ++i) add(p.prods[i].NOZ.CON, {Columns::first(c.prod, i), -1, kProdEnd, i, 0});
    auto two_port = [&](const auto& v, int base, int kind) {
        for (int i = 1; i <= count(v); ++i) {
            add(v[i].CON[2], {Columns::second(base, i), +1, kind, i, 0});
            add(v[i].CON[1], {Columns::first(base, i), -1, kind, i, 0});
        }
    };
    auto nozzle_item = [&](const auto& v, int base, int kind) {
        for (int i = 1; i <= count(v); ++i) {
            add(v[i].NOZO.CON, {Columns::second(base, i), +1, kind, i, 0});
            add(v[i].NOZI.CON, {Columns::first(base, i), -1, kind, i, 0});
        }
    };
    two_port(p.valves, c.valve, kValveEnd);
    two_port(p.checks, c.check, kCheckEnd);
    two_port(p.pumps, c.pump, kPumpEnd);
    two_port(p.comps, c.comp, kCompEnd);
    nozzle_item(p.hxs, c.hx, kHXEnd);
    two_port(p.fos, c.fo, kFOEnd);
    nozzle_item(p.miscs, c.misc, kMiscEnd);
    two_port(p.expands, c.expand, kExpandEnd);
    for (int i = 1; i <= count(p.tees); ++i)
        for (int side = 1; side <= 3; ++side) {
            const int col = c.tee + 3 * (i - 1) + side;
            add(p.tees[i].CON[static_cast<std::size_t>(side + 3)], {col, +1, kTeeEnd, i, side});
            add(p.tees[i].CON[static_cast<std::size_t>(side)], {col, -1, kTeeEnd, i, side});
        }
    for (int i = 1; i <= count(p.juncs); ++i)
        for (int n = 1; n <= kNozzles; ++n) {
            add(p.juncs[i].NOZO[n].CON, {c.junc + i, +1, kJuncEnd, i, n});
            add(p.juncs[i].NOZI[n].CON, {c.junc + i, -1, kJuncEnd, i, n});
        }
    for (int i = 1; i <= count(p.vessels); ++i)
        for (int n = 1; n <= kNozzles; ++n) {
            add(p.vessels[i].NOZO[n].CON, {c.vessel + i, +1, kVesselEnd, i, n});
            add(p.vessels[i].NOZI[n].CON, {c.vessel + i, -1, kVesselEnd, i, n});
        }
    // Bucket by line, keeping the scan order within each line.
    net.end_start.assign(static_cast<std::size_t>(nl) + 2, 0);
    for (int l : line_of) ++net.end_start[static_cast<std::size_t>(l) + 1];
    for (int l = 1; l <= nl + 1; ++l) net.end_start[static_cast<std::size_t>(l)] += net.end_start[static_cast<std::size_t>(l) - 1];
    std::vector<LineEnd> sorted(ends.size());
    std::vector<int> fill(net.end_start.begin(), net.end_start.end());
    for (std::size_t k = 0; k < ends.size(); ++k) sorted[static_cast<std::size_t>(fill[static_cast<std::size_t>(line_of[k])]++)] = ends[k];
    ends.swap(sorted);
    find_node_lines(p, net);
    net.topology_ready = true;
}

// What PipeDP leaves in a line besides its coefficient and changes with the flow.
struct FrictionResults {
    double RE, DPACC, HUP;
    std::array<double, 3> F, DUK;
    std::array<double, 8> LM;

    explicit FrictionResults(const Line& l) : RE(l.RE), DPACC(l.DPACC), HUP(l.HUP), F(l.F), DUK(l.DUK), LM(l.LM) {}
    void restore(Line& l) const {
        l.RE = RE, l.DPACC = DPACC, l.HUP = HUP;
        l.F = F, l.DUK = DUK, l.LM = LM;
    }
};

// The flow exponent of a line's coefficient K by rating it again at a flow
// 1e-4 higher; the line keeps the friction results of its own flow.
double stepped_flow_exponent(RunContext& ctx, const Header& g, Line& line, double K) {
    constexpr double kStep = 1e-4;
    const double W = line.TFLOW.value;
    const FrictionResults kept(line);
    line.TFLOW.value = W * (1.0 + kStep);
    const double K_step = PipeDP(ctx, g, line, line.ID.value, line.IDH.value, "W2");
    line.TFLOW.value = W;
    kept.restore(line);
    return K_step > 0.0 ? std::log(K_step / K) / std::log1p(kStep) : 0.0;
}

// The flow exponent b = d ln K / d ln W of a line's coefficient K at its
// present flow: -1 in laminar flow, about -0.2 in turbulent flow, 0 in fully
// rough pipe. Found from the friction results where the homogeneous method
// rates the line, else by a step of the flow. Kept within -1.5 and 2 so that
// the linearised row keeps its sign.
double flow_exponent(RunContext& ctx, const Header& g, Line& line, double K) {
    if (line.TFLOW.value == 0.0 || !(K > 0.0)) return 0.0;
    double b = pipe_flow_exponent(g, line, line.ID.value, line.IDH.value, K);
    if (std::isnan(b)) b = stepped_flow_exponent(ctx, g, line, K);
    return std::clamp(b, -1.5, 2.0);
}

// Line rows: P_up - P_down - (K + Knoz)*X = dP_elevation + level terms.
void line_rows(RunContext& ctx, Project& p, Network& net, Rows& rows) {
    const Columns& c = net.cols;
    for (int i = 1; i <= count(p.lines); ++i) {
        rows.begin();
        if (!rows.build) continue;
        Line& line = p.lines[i];
        const double W = line.TFLOW.value;
        net.flow[static_cast<std::size_t>(i)] = W;
        double rhs_vess = 0.0, rhs_level = 0.0, knoz = 0.0;
        for (int k = net.end_start[static_cast<std::size_t>(i)]; k < net.end_start[static_cast<std::size_t>(i) + 1]; ++k) {
            const LineEnd& e = net.ends[static_cast<std::size_t>(k)];
            rows.add(e.coef, e.col);
            line.ELEV[e.coef > 0 ? 1 : 2] = e.elevation;
            if (e.kind != kVesselEnd) continue;
            // A vessel nozzle adds its fixed loss, its static head and, when
            // the flow leaves the vessel through it, its entry loss.
            const Vessel& v = p.vessels[static_cast<std::size_t>(e.record)];
            const Port& noz = (e.coef > 0 ? v.NOZO : v.NOZI)[static_cast<std::size_t>(e.port)];
            rhs_vess += e.coef > 0 ? -noz.dPNoz : noz.dPNoz;
            rhs_level += noz.dPLevel;
            if ((e.coef > 0) == (W >= 0)) knoz = noz.KFlow;
        }
        const double K = PipeDP(ctx, p.gen, line, line.ID.value, line.IDH.value, "W2");
        // In a Newton step the row is K(W)W|W| linearised about the present
        // flow: K (1 + b/2) X - (b/2) K W|W|, b = d ln K / d ln W.
        const double slope = net.newton_on ? 1.0 + 0.5 * flow_exponent(ctx, p.gen, line, K) : 1.0;
        rows.add(-(K * slope + knoz), c.line + i);
        line.DPELEV = (line.ELEV[2] - line.ELEV[1]) * line.TPROP[4] * 9.81 / 1000.0;
        if (line.LF[3] > 0.0 && line.LF[3] < 1.0) {
            // A two-phase line gets no static credit against its flow; the
            // rises summed in SELEV always count.
            if (sgn(W) * sgn(line.DPELEV) < 0) line.DPELEV = 0.0;
            line.DPELEV += sgn(W) * line.SELEV * line.TPROP[4] * 9.81 / 1000.0;
        }
        rows.rhs(rhs_vess + line.DPELEV + rhs_level - (slope - 1.0) * K * W * std::fabs(W));
    }
}

// Coefficient of a line's X in a node balance: W = X / |W|, or +-1 at zero flow.
double node_coef(double W) {
    const double w = std::fabs(W);
    return w == 0.0 ? 1.0 : 1.0 / w;
}

// A line's term in a balance of flows: X / |W| stands for W, so the row is
// linear in the unknowns X = W|W|. In the successive scheme the right side is
// 0; a Newton step linearises W(X) = X / sqrt|X| about the present flows,
// which keeps the coefficients and puts minus the present imbalance (the sum
// of the weighted flows) on the right side.
struct Balance {
    Rows& rows;
    const Project& p;
    int line_base;
    bool newton;
    double imbalance = 0.0;
    void add(int line, double weight) {
        if (!is_line(p, line)) return;
        const Line& l = p.lines[static_cast<std::size_t>(line)];
        add_flow(l.TFLOW.value, weight, line);
    }
    void add_flow(double W, double weight, int line) {
        rows.add(weight * node_coef(W), line_base + line);
        imbalance += weight * W;
    }
    void close() {
        if (newton) rows.rhs(-imbalance);
    }
};

// The balance of node k of the node lists (a junction or a vessel).
void node_balance(const Network& net, Balance& b, int k) {
    if (!b.rows.build) return;
    for (int j = net.node_start[static_cast<std::size_t>(k)]; j < net.node_start[static_cast<std::size_t>(k) + 1]; ++j) {
        const int line = net.node_lines[static_cast<std::size_t>(j)];
        const int l = std::abs(line);
        b.add_flow(net.flow[static_cast<std::size_t>(l)], line > 0 ? 1.0 : -1.0, l);
    }
    b.close();
}

// Continuity rows: what enters a piece of equipment leaves it.
void continuity_rows(const Project& p, Network& net, Rows& rows) {
    const int lb = net.cols.line;
    auto through = [&](int in, int out) {
        rows.begin();
        if (is_line(p, in)) rows.add(1.0, lb + in);
        if (is_line(p, out)) rows.add(-1.0, lb + out);
    };
    for (int i = 1; i <= count(p.valves); ++i) through(p.valves[i].CON[1], p.valves[i].CON[2]);
    for (int i = 1; i <= count(p.checks); ++i) through(p.checks[i].CON[1], p.checks[i].CON[2]);
    for (int i = 1; i <= count(p.pumps); ++i) through(p.pumps[i].CON[1], p.pumps[i].CON[2]);
    for (int i = 1; i <= count(p.comps); ++i) through(p.comps[i].CON[1], p.comps[i].CON[2]);
    for (int i = 1; i <= count(p.hxs); ++i) through(p.hxs[i].NOZI.CON, p.hxs[i].NOZO.CON);
    for (int i = 1; i <= count(p.fos); ++i) through(p.fos[i].CON[1], p.fos[i].CON[2]);
    for (int i = 1; i <= count(p.miscs); ++i) {
        const Misc& m = p.miscs[i];
        const int in = m.NOZI.CON, out = m.NOZO.CON;
        if (!m.VOLBAL || !is_line(p, in) || !is_line(p, out) || p.lines[in].TPROP[2] == 0.0 ||
            p.lines[out].TPROP[1] == 0.0) {
            through(in, out);
            continue;
        }
        // Volume balance: W_in / rho_in = W_out / rho_out, in the X of each line.
        rows.begin();
        rows.add(std::pow(1000.0 / p.lines[in].TPROP[2], 2), lb + in);
        rows.add(-std::pow(1000.0 / p.lines[out].TPROP[1], 2), lb + out);
    }
    for (int i = 1; i <= count(p.tees); ++i) {
        rows.begin();
        Balance b{rows, p, lb, net.newton_on};
        for (int side = 1; side <= 3; ++side) {
            b.add(p.tees[i].CON[static_cast<std::size_t>(side)], 1.0);
            b.add(p.tees[i].CON[static_cast<std::size_t>(side + 3)], -1.0);
        }
        b.close();
    }
    const int juncs = count(p.juncs);
    for (int i = 1; i <= juncs; ++i) {
        rows.begin();
        Balance b{rows, p, lb, net.newton_on};
        node_balance(net, b, i - 1);
    }
    for (int i = 1; i <= count(p.expands); ++i) through(p.expands[i].CON[1], p.expands[i].CON[2]);
    for (int i = 1; i <= count(p.vessels); ++i) {
        rows.begin();
        Balance b{rows, p, lb, net.newton_on};
        node_balance(net, b, juncs + i - 1);
    }
}

// The line of a vessel's first outlet nozzle that has one, 0 for none.
int first_outlet_line(const Project& p, const Vessel& v) {
    for (int n = 1; n <= kNozzles; ++n)
        if (is_line(p, v.NOZO[n].CON)) return v.NOZO[n].CON;
    return 0;
}

// Specification rows of the boundaries, nodes and lines.
// A user equation as the row of an unknown: own_col with its value, the
// line's X column with its flow; extra_rhs is added to the right side and
// slope_off taken off the coefficient on the line's X.
void equation_row(RunContext& ctx, Project& p, const Network& net, Rows& rows, const Equation& eqn, int own_col,
                  double own_value, int line, double extra_rhs = 0.0, double slope_off = 0.0) {
    const int x_col = is_line(p, line) ? net.cols.line + line : own_col;
    int col_w = x_col, col_p = own_col;
    double W = is_line(p, line) ? p.lines[static_cast<std::size_t>(line)].TFLOW.value : 0.0, P = own_value;
    const double rhs = equation(ctx, p, net.cols, eqn, col_w, W, col_p, P);
    rows.add(col_w == x_col ? W - slope_off : W, col_w);
    if (col_p != col_w) rows.add(P, col_p);
    rows.rhs(rhs + extra_rhs);
}

// Specification rows of the boundaries, equipment, nodes and lines.
void spec_rows(RunContext& ctx, Project& p, Network& net, Rows& rows, int case_no) {
    const Columns& c = net.cols;
    const int lb = c.line;
    auto fixed = [&](int col, double value) { fixed_row(rows, col, value); };
    // A boundary pressure: a number, or a user equation ("E").
    auto pressure = [&](Boundary& b, const Pair& pr, int col) {
        if (!is_specified(pr.spec, case_no)) return;
        if (!spec_is(pr.spec, case_no, 'E')) {
            fixed(col, spec_value(pr.spec, case_no));
            return;
        }
        rows.begin();
        if (rows.build) equation_row(ctx, p, net, rows, b.EQN, col, pr.value, b.NOZ.CON);
    };
    // The drop between a boundary and its line, first column minus second
    // (source minus pipe inlet at a feed, pipe outlet minus sink at a product);
    // when choked, the pressure at the line end is the choke pressure instead.
    // A user equation stands for the drop of a product only; at a feed an "E"
    // is no number and the drop is 0.
    auto boundary_dp = [&](Boundary& b, int first, int second, int line_end, bool takes_equation) {
        const int line = b.NOZ.CON;
        if (b.CHOKE && is_line(p, line)) {
            fixed(line_end, pipe_choke_pressure(ctx, p.gen, p.lines[line]));
            return;
        }
        rows.begin();
        rows.add(1.0, first);
        rows.add(-1.0, second);
        if (takes_equation && spec_is(b.DP.spec, case_no, 'E')) {
            if (rows.build) equation_row(ctx, p, net, rows, b.EQN, lb + line, b.DP.value, line, b.NOZ.dPLevel, b.NOZ.KFlow);
            return;
        }
        if (is_line(p, line)) rows.add(-b.NOZ.KFlow, lb + line);
        rows.rhs(spec_value(b.DP.spec, case_no) + b.NOZ.dPLevel);
    };
    for (int i = 1; i <= count(p.feeds); ++i) {
        Feed& f = p.feeds[i];
        const int source = Columns::first(c.feed, i), pipe_inlet = Columns::second(c.feed, i);
        pressure(f, f.PRES, source);
        if (is_specified(f.DP.spec, case_no)) boundary_dp(f, source, pipe_inlet, pipe_inlet, false);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        Prod& d = p.prods[i];
        const int pipe_outlet = Columns::first(c.prod, i), sink = Columns::second(c.prod, i);
        pressure(d, d.PRES, sink);
        if (is_specified(d.PIN.spec, case_no)) fixed(pipe_outlet, spec_value(d.PIN.spec, case_no));
        if (is_specified(d.DP.spec, case_no)) boundary_dp(d, pipe_outlet, sink, pipe_outlet, true);
    }
    equipment_spec_rows(ctx, p, net, rows, case_no);
    for (const int i : net.pressure_juncs) fixed(c.junc + i, spec_value(p.juncs[static_cast<std::size_t>(i)].PRES.spec, case_no));
    for (int i = 1; i <= count(p.vessels); ++i) {
        const Vessel& v = p.vessels[i];
        if (is_specified(v.PRES.spec, case_no)) fixed(c.vessel + i, spec_value(v.PRES.spec, case_no));
        const int out = first_outlet_line(p, v);
        if (out == 0 || !spec_is(p.lines[out].TFLOW.spec, case_no, 'V')) continue;
        // Vapour split: the outlet carries (1 - LF) of all that enters.
        rows.begin();
        Balance b{rows, p, lb, net.newton_on};
        for (int n = 1; n <= kNozzles; ++n) b.add(v.NOZI[n].CON, 1.0 - v.LF.value);
        b.add(out, -1.0);
        b.close();
    }
    for (const int i : net.flow_lines) {
        Line& l = p.lines[static_cast<std::size_t>(i)];
        if (spec_is(l.TFLOW.spec, case_no, 'E')) {
            rows.begin();
            if (rows.build) equation_row(ctx, p, net, rows, l.EQN, lb + i, l.TFLOW.value, i);
            continue;
        }
        const double v = spec_value(l.TFLOW.spec, case_no);
        fixed(lb + i, v * std::fabs(v));
    }
}

void find_specified(const Project& p, Network& net, int case_no) {
    net.pressure_juncs.clear();
    net.flow_lines.clear();
    for (int i = 1; i <= count(p.juncs); ++i)
        if (is_specified(p.juncs[i].PRES.spec, case_no)) net.pressure_juncs.push_back(i);
    for (int i = 1; i <= count(p.lines); ++i) {
        const std::string& spec = p.lines[i].TFLOW.spec;
        if (is_specified(spec, case_no) && !spec_is(spec, case_no, 'V')) net.flow_lines.push_back(i);
    }
    net.spec_case = case_no;
}

}  // namespace

void Matrix_Setup(RunContext& ctx, Project& p, Network& net, int mode, int case_no) {
    try {
        net.cols = Columns(p);
        net.NumVars = net.cols.num_vars;
        const bool build = mode == 1;
        if (!build || net.spec_case != case_no) find_specified(p, net, case_no);
        if (build) {
            if (!net.topology_ready) find_line_ends(p, net);
            net.IA.assign(static_cast<std::size_t>(net.NumVars) + 2, 0);
            net.B.assign(static_cast<std::size_t>(net.NumVars) + 1, 0.0);
            net.entries = 0;
            net.flow.resize(p.lines.size());
        }
        Rows rows{net, build};
        line_rows(ctx, p, net, rows);
        continuity_rows(p, net, rows);
        spec_rows(ctx, p, net, rows, case_no);
        net.NumSpecs = rows.row;
        if (build) {
            net.IA.resize(static_cast<std::size_t>(net.NumSpecs) + 2);
            net.IA[static_cast<std::size_t>(net.NumSpecs) + 1] = net.entries + 1;
            // A row that received no entry is given an empty range, which the
            // solver reports as a row without entries.
            for (int k = net.NumSpecs; k >= 1; --k)
                if (net.IA[static_cast<std::size_t>(k)] == 0) net.IA[static_cast<std::size_t>(k)] = net.IA[static_cast<std::size_t>(k) + 1];
            net.last_rhs.assign(net.B.begin(), net.B.begin() + net.NumSpecs + 1);
        }
    } catch (const Fault& f) {
        ctx.log_error("Error in Matrix_Setup = " + fault_text(f));
    }
}

void Count_Specs(RunContext& ctx, Project& p, Network& net, int case_no) { Matrix_Setup(ctx, p, net, 0, case_no); }

}  // namespace velm
