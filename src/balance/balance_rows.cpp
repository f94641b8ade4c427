// The rows of the mole and heat systems of the balance. Unknowns: the weight
// fraction of one component in each line (mole system, one per line) and the
// enthalpy of each line end (heat system: 2L - 1 the start, 2L the end).
#include "balance/balance_rows.hpp"

#include <cmath>

#include "model/text.hpp"

namespace velm {

namespace {

double flow_of(const Project& p, int L) { return p.lines[static_cast<std::size_t>(L)].TFLOW.value; }

void add_node_line(const Project& p, int L, bool on_inlet, std::vector<NodeLine>& out) {
    if (L < 1 || L > count(p.lines)) return;
    const double w = flow_of(p, L);
    out.push_back({L, on_inlet, on_inlet ? w >= 0.0 : w < 0.0, on_inlet ? 2 * L : 2 * L - 1, w});
}

// The inlet and outlet line of each two-port item of a kind.
template <class R>
void each_through(const std::vector<R>& items, auto&& visit) {
    for (int i = 1; i <= count(items); ++i) {
        const R& r = items[static_cast<std::size_t>(i)];
        if constexpr (requires { r.CON; })
            visit(r, r.CON[1], r.CON[2]);
        else
            visit(r, r.NOZI.CON, r.NOZO.CON);
    }
}

// The rows of a junction or tee, one for each line leaving it: the mixture of
// the entering lines, weighted by their share of the entering flow (each 1
// when nothing enters), minus the leaving line.
void node_rows(const std::vector<NodeLine>& lines, bool heat, BalanceRows& rows) {
    double Ftot = 0.0;
    int entering = 0;
    for (const NodeLine& n : lines)
        if (n.entering) {
            Ftot += std::abs(n.flow);
            ++entering;
        }
    for (const NodeLine& out : lines) {
        if (out.entering) continue;
        for (const NodeLine& in : lines) {
            if (!in.entering) continue;
            double share = Ftot != 0.0 ? std::abs(in.flow) / Ftot : 1.0;
            if (heat && Ftot == 0.0) share = 1.0 / entering;
            rows.add(heat ? in.end : in.line, share);
        }
        rows.add(heat ? out.end : out.line, -1.0);
        rows.end_row(0.0);
    }
}

bool is_used(const Project& p, int L) { return L >= 1 && L <= count(p.lines); }

}  // namespace

std::vector<NodeLine> node_lines(const Project& p, const Junc& j) {
    std::vector<NodeLine> out;
    for (int n = 1; n <= kNozzles; ++n) add_node_line(p, j.NOZI[static_cast<std::size_t>(n)].CON, true, out);
    for (int n = 1; n <= kNozzles; ++n) add_node_line(p, j.NOZO[static_cast<std::size_t>(n)].CON, false, out);
    return out;
}

std::vector<NodeLine> node_lines(const Project& p, const Tee& t) {
    std::vector<NodeLine> out;
    for (int side = 1; side <= 3; ++side) add_node_line(p, t.CON[static_cast<std::size_t>(side)], true, out);
    for (int side = 4; side <= 6; ++side) add_node_line(p, t.CON[static_cast<std::size_t>(side)], false, out);
    return out;
}

double GetWt_fractions(int c, const Comps& x, const FlashSetup& setup) {
    double mass = 0.0;
    for (std::size_t k = 1; k <= setup.count(); ++k) mass += x[k] * setup.comps[k].MW;
    if (mass == 0.0) return 0.0;
    return x[static_cast<std::size_t>(c)] * setup.comps[static_cast<std::size_t>(c)].MW / mass;
}

bool IsFixedComp(const Project& p, int L) {
    const double w = flow_of(p, L);
    for (int i = 1; i <= count(p.feeds); ++i)
        if (p.feeds[static_cast<std::size_t>(i)].NOZ.CON == L && w >= 0.0) return true;
    for (int i = 1; i <= count(p.prods); ++i)
        if (p.prods[static_cast<std::size_t>(i)].NOZ.CON == L && w < 0.0) return true;
    for (int i = 1; i <= count(p.vessels); ++i) {
        const Vessel& v = p.vessels[static_cast<std::size_t>(i)];
        for (int n = 1; n <= kNozzles; ++n) {
            if (v.NOZI[static_cast<std::size_t>(n)].CON == L && w < 0.0) return true;
            if (v.NOZO[static_cast<std::size_t>(n)].CON == L && w >= 0.0) return true;
        }
    }
    return false;
}

void Mole_MatrixSetup(RunContext& ctx, const Project& p, const FlashSetup& setup, int c, BalanceRows& rows,
                      std::vector<int>& given) {
    if (c > 0) {
        for (std::size_t r = 1; r < given.size(); ++r)
            rows.rhs[r] = given[r] == 0 ? 0.0
                                        : GetWt_fractions(c, p.lines[static_cast<std::size_t>(given[r])].COMP0, setup);
        return;
    }
    rows = BalanceRows{};
    given.assign(1, 0);
    const auto fixed_row = [&](int L) {
        rows.add(L, 1.0);
        rows.end_row(0.0);
        given.push_back(L);
    };
    for (int i = 1; i <= count(p.feeds); ++i) {
        const Feed& f = p.feeds[static_cast<std::size_t>(i)];
        if (!is_used(p, f.NOZ.CON)) continue;
        if (flow_of(p, f.NOZ.CON) < 0.0) ctx.log_error("Error! Feed " + trim(f.NAME[1]) + " flow negative for HWB");
        fixed_row(f.NOZ.CON);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        const Prod& r = p.prods[static_cast<std::size_t>(i)];
        if (is_used(p, r.NOZ.CON) && flow_of(p, r.NOZ.CON) < 0.0)
            ctx.log_error("Error! Product " + trim(r.NAME[1]) + " flow negative for HWB");
    }
    for (int i = 1; i <= count(p.vessels); ++i)
        for (int n = 1; n <= kNozzles; ++n)
            if (const int L = p.vessels[static_cast<std::size_t>(i)].NOZO[static_cast<std::size_t>(n)].CON; is_used(p, L))
                fixed_row(L);
    const auto through = [&](const auto&, int in, int out) {
        if (!is_used(p, in) || !is_used(p, out)) return;
        rows.add(in, 1.0);
        rows.add(out, -1.0);
        rows.end_row(0.0);
        given.push_back(0);
    };
    each_through(p.valves, through);
    each_through(p.fos, through);
    each_through(p.checks, through);
    each_through(p.expands, through);
    each_through(p.pumps, through);
    each_through(p.comps, through);
    each_through(p.hxs, through);
    each_through(p.miscs, through);
    const auto nodes = [&](const std::vector<NodeLine>& lines) {
        const int before = rows.rows();
        node_rows(lines, false, rows);
        given.resize(given.size() + static_cast<std::size_t>(rows.rows() - before), 0);
    };
    for (int i = 1; i <= count(p.juncs); ++i) nodes(node_lines(p, p.juncs[static_cast<std::size_t>(i)]));
    for (int i = 1; i <= count(p.tees); ++i) nodes(node_lines(p, p.tees[static_cast<std::size_t>(i)]));
    if (rows.rows() != count(p.lines)) ctx.log_error("Error. Mol balance failed, discard results.");
}

namespace {

// The enthalpy row of a two-port item: the end of its inlet line and the
// start of its outlet line, whose flash types become PH.
void through_heat_row(Project& p, int in, int out, double right, BalanceRows& rows) {
    rows.add(2 * in, 1.0);
    rows.add(2 * out - 1, -1.0);
    rows.end_row(right);
    p.lines[static_cast<std::size_t>(in)].FT[2] = kFlashPH;
    p.lines[static_cast<std::size_t>(out)].FT[1] = kFlashPH;
}

double per_flow(double value, double flow) { return flow == 0.0 ? 0.0 : value / flow; }

// The start of a line fixed by its own flash: a feed or a vessel outlet.
void given_start_row(RunContext& ctx, Project& p, const BalanceState& state, int L, BalanceRows& rows) {
    Line& l = p.lines[static_cast<std::size_t>(L)];
    if (l.FT[1] == 0) l.FT[1] = kFlashTP;
    HMB_FlashLine1(ctx, p, state, L);
    rows.add(2 * L - 1, 1.0);
    rows.end_row(l.H[1]);
}

// An exchanger: its duty given (the downstream end flashes at PH), or the
// state of its downstream end given, which fixes that enthalpy by a flash.
// With reversed flow the two lines exchange their parts.
void exchanger_row(RunContext& ctx, Project& p, const BalanceState& state, const HX& x, BalanceRows& rows) {
    const int in = x.NOZI.CON, out = x.NOZO.CON;
    const double w = flow_of(p, in);
    const bool forward = w >= 0.0;
    const int up_end = forward ? 2 * in : 2 * out - 1;
    const int down_line = forward ? out : in;
    const int down_pos = forward ? 1 : 2;
    Line& down = p.lines[static_cast<std::size_t>(down_line)];
    Line& up = p.lines[static_cast<std::size_t>(forward ? in : out)];
    const int down_end = forward ? 2 * out - 1 : 2 * in;
    const int down_ft = down.FT[static_cast<std::size_t>(down_pos)];
    if (down_ft == 0 || down_ft == kFlashPH) {
        rows.add(up_end, 1.0);
        rows.add(down_end, -1.0);
        rows.end_row(-per_flow(leading_number(x.Q.spec), std::abs(w)) / 1000.0);
        down.FT[static_cast<std::size_t>(down_pos)] = kFlashPH;
        return;
    }
    if (forward) HMB_FlashLine1(ctx, p, state, down_line);
    else HMB_FlashLine2(ctx, p, state, down_line);
    rows.add(down_end, -1.0);
    rows.end_row(-down.H[static_cast<std::size_t>(down_pos)]);
    up.FT[forward ? 2 : 1] = kFlashPH;
}

}  // namespace

void Heat_MatrixSetup(RunContext& ctx, Project& p, const BalanceState& state, BalanceRows& rows) {
    rows = BalanceRows{};
    for (int i = 1; i <= count(p.feeds); ++i)
        if (const int L = p.feeds[static_cast<std::size_t>(i)].NOZ.CON; is_used(p, L))
            given_start_row(ctx, p, state, L, rows);
    for (int i = 1; i <= count(p.prods); ++i)
        if (const int L = p.prods[static_cast<std::size_t>(i)].NOZ.CON; is_used(p, L))
            p.lines[static_cast<std::size_t>(L)].FT[2] = kFlashPH;
    for (int i = 1; i <= count(p.vessels); ++i) {
        const Vessel& v = p.vessels[static_cast<std::size_t>(i)];
        for (int n = 1; n <= kNozzles; ++n)
            if (const int L = v.NOZI[static_cast<std::size_t>(n)].CON; is_used(p, L))
                p.lines[static_cast<std::size_t>(L)].FT[2] = kFlashPH;
        for (int n = 1; n <= kNozzles; ++n)
            if (const int L = v.NOZO[static_cast<std::size_t>(n)].CON; is_used(p, L))
                given_start_row(ctx, p, state, L, rows);
    }
    const auto adiabatic = [&](const auto&, int in, int out) {
        if (is_used(p, in) && is_used(p, out)) through_heat_row(p, in, out, 0.0, rows);
    };
    each_through(p.valves, adiabatic);
    each_through(p.fos, adiabatic);
    each_through(p.checks, adiabatic);
    each_through(p.expands, adiabatic);
    each_through(p.miscs, adiabatic);
    // A pump or compressor adds its shaft work: 3.6 kW / (t/h) is kJ/kg.
    const auto machine = [&](const Machine& m, int in, int out) {
        if (is_used(p, in) && is_used(p, out))
            through_heat_row(p, in, out, -per_flow(3.6 * m.POW * m.EFFS.value, flow_of(p, in)), rows);
    };
    each_through(p.pumps, machine);
    each_through(p.comps, machine);
    for (int i = 1; i <= count(p.hxs); ++i) {
        const HX& x = p.hxs[static_cast<std::size_t>(i)];
        if (is_used(p, x.NOZI.CON) && is_used(p, x.NOZO.CON)) exchanger_row(ctx, p, state, x, rows);
    }
    const auto nodes = [&](const std::vector<NodeLine>& lines) {
        node_rows(lines, true, rows);
        for (const NodeLine& n : lines) p.lines[static_cast<std::size_t>(n.line)].FT[n.on_inlet ? 2 : 1] = kFlashPH;
    };
    for (int i = 1; i <= count(p.juncs); ++i) nodes(node_lines(p, p.juncs[static_cast<std::size_t>(i)]));
    for (int i = 1; i <= count(p.tees); ++i) nodes(node_lines(p, p.tees[static_cast<std::size_t>(i)]));
    for (int L = 1; L <= count(p.lines); ++L) {
        const Line& l = p.lines[static_cast<std::size_t>(L)];
        rows.add(2 * L - 1, 1.0);
        rows.add(2 * L, -1.0);
        rows.end_row(per_flow(l.Q.value, l.TFLOW.value) / 1000.0);
    }
}

}  // namespace velm
