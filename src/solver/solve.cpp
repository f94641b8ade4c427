// One step of the network solution: build the rows, solve, write back the
// flows and pressures with damping, and push pressures into the lines.
#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "solver/network.hpp"

namespace velm {

namespace {


bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }

// Takes a new pressure from the solution, counting the change in err.
void take(double& P, double Pnew, double& err, double damping = 1.0) {
    err += std::fabs(P - Pnew);
    P += (Pnew - P) * damping;
}

struct Writeback {
    RunContext& ctx;
    Project& p;
    const std::vector<double>& x;
    double& err;
    double reset;  // one standard atmosphere, expressed in gauge

    double at(int col) const { return x[static_cast<std::size_t>(col)]; }

    // A pressure below absolute zero comes back as one atmosphere and is flagged.
    // The message: words, the kind of item when given, the number.
    template <class R>
    void floor(double& P, R& rec, std::string_view words, int number, std::string_view kind = {}) {
        if (P >= -p.gen.PATM) return;
        P = reset;
        rec.COLOR = p.color_error;
        ctx.log_error(std::string(words) + std::string(kind) + std::to_string(number) + " below zero abs. Reset.");
    }

    template <class R>
    void two_pressures(std::vector<R>& v, int base, double damping) {
        for (int i = 1; i <= count(v); ++i) {
            take(v[i].PIN.value, at(Columns::first(base, i)), err, damping);
            take(v[i].POUT.value, at(Columns::second(base, i)), err, damping);
        }
    }

    template <class R>
    void floor_two(std::vector<R>& v, const char* word) {
        for (int i = 1; i <= count(v); ++i) {
            if (v[i].COLOR == p.color_error) v[i].COLOR = p.color_normal;
            floor(v[i].PIN.value, v[i], "Error! Inlet pressure for ", i, word);
            floor(v[i].POUT.value, v[i], "Error! Outlet pressure for ", i, word);
        }
    }
};

// The flow a solution gives a line: the root of X, or after a Newton step
// the linearised flow (W0 + X/|W0|)/2 (at zero flow there is no slope to
// linearise about, and the root stands).
double new_flow(double W0, double X, bool newton) {
    if (newton && W0 != 0.0) return 0.5 * (W0 + X / std::fabs(W0));
    return sgn(X) * std::sqrt(std::fabs(X));
}

void take_flows(Project& p, const Network& net, const std::vector<double>& x, double& err) {
    const double damping = p.gen.MHDAMP;
    for (int i = 1; i <= count(p.lines); ++i) {
        Line& line = p.lines[i];
        double& W = line.TFLOW.value;
        const double wc = new_flow(W, x[static_cast<std::size_t>(net.cols.line + i)], net.newton_on);
        // A flow error weighs ten times a pressure error; the sum takes the undamped step.
        err += 10.0 * std::fabs(W - wc);
        W += (wc - W) * damping;
        line.LVFLOW[1] = line.LF[3] * W;
        line.LVFLOW[2] = (1.0 - line.LF[3]) * W;
    }
}

void take_pressures(Writeback& wb, const Columns& c) {
    Project& p = wb.p;
    for (int i = 1; i <= count(p.feeds); ++i) {
        take(p.feeds[i].PRES.value, wb.at(Columns::first(c.feed, i)), wb.err);
        take(p.feeds[i].POUT.value, wb.at(Columns::second(c.feed, i)), wb.err);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        take(p.prods[i].PIN.value, wb.at(Columns::first(c.prod, i)), wb.err);
        take(p.prods[i].PRES.value, wb.at(Columns::second(c.prod, i)), wb.err);
    }
    // Pump and compressor pressures are the only damped ones.
    wb.two_pressures(p.valves, c.valve, 1.0);
    wb.two_pressures(p.checks, c.check, 1.0);
    wb.two_pressures(p.pumps, c.pump, p.gen.MHDAMP);
    wb.two_pressures(p.comps, c.comp, p.gen.MHDAMP);
    wb.two_pressures(p.hxs, c.hx, 1.0);
    wb.two_pressures(p.fos, c.fo, 1.0);
    wb.two_pressures(p.miscs, c.misc, 1.0);
    wb.two_pressures(p.expands, c.expand, 1.0);
    for (int i = 1; i <= count(p.tees); ++i)
        for (int j = 1; j <= 3; ++j) take(p.tees[i].PRES[static_cast<std::size_t>(j)], wb.at(c.tee + 3 * (i - 1) + j), wb.err);
    for (int i = 1; i <= count(p.juncs); ++i) take(p.juncs[i].PRES.value, wb.at(c.junc + i), wb.err);
    for (int i = 1; i <= count(p.vessels); ++i) take(p.vessels[i].PRES.value, wb.at(c.vessel + i), wb.err);
}

void floor_pressures(Writeback& wb) {
    Project& p = wb.p;
    for (int i = 1; i <= count(p.feeds); ++i) {
        Feed& f = p.feeds[i];
        if (f.COLOR == p.color_error) f.COLOR = p.color_normal;
        wb.floor(f.PRES.value, f, "Error! Pressure for Feed ", i);
        wb.floor(f.POUT.value, f, "Error! Outlet pressure for Feed ", i);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        Prod& d = p.prods[i];
        if (d.COLOR == p.color_error) d.COLOR = p.color_normal;
        wb.floor(d.PRES.value, d, "Error! Pressure for Product ", i);
        wb.floor(d.PIN.value, d, "Error! Inlet pressure for Product ", i);
    }
    wb.floor_two(p.valves, "Valve ");
    wb.floor_two(p.checks, "Check ");
    wb.floor_two(p.pumps, "Pump ");
    wb.floor_two(p.comps, "Compressor ");
    wb.floor_two(p.hxs, "Exchanger ");
    wb.floor_two(p.fos, "Orifice ");
    wb.floor_two(p.miscs, "Misc ");
    wb.floor_two(p.expands, "Expander ");
    for (int i = 1; i <= count(p.tees); ++i) {
        Tee& t = p.tees[i];
        if (t.COLOR == p.color_error) t.COLOR = p.color_normal;
        for (int j = 1; j <= 3; ++j)
            if (t.PRES[static_cast<std::size_t>(j)] < -p.gen.PATM) {
                t.PRES[static_cast<std::size_t>(j)] = wb.reset;
                t.COLOR = p.color_error;
                wb.ctx.log_error("Error! Pressure for T " + std::to_string(i) + " nozzle " + std::to_string(j) +
                                 " below zero abs. Reset.");
            }
    }
    for (int i = 1; i <= count(p.juncs); ++i) {
        Junc& j = p.juncs[i];
        if (j.COLOR == p.color_error) j.COLOR = p.color_normal;
        wb.floor(j.PRES.value, j, "Error! Pressure for Junction ", i);
    }
    for (int i = 1; i <= count(p.vessels); ++i) {
        Vessel& v = p.vessels[i];
        if (v.COLOR == p.color_error) v.COLOR = p.color_normal;
        wb.floor(v.PRES.value, v, "Error! Pressure for Vessel ", i);
    }
}

// Pressures of the equipment into the ends of their lines.
template <class R>
void push_two_port(Project& p, std::vector<R>& v, bool rise) {
    for (int i = 1; i <= count(v); ++i) {
        R& e = v[i];
        e.DP.value = rise ? e.POUT.value - e.PIN.value : e.PIN.value - e.POUT.value;
        if (is_line(p, e.CON[1])) p.lines[e.CON[1]].PRES[2] = e.PIN.value;
        if (is_line(p, e.CON[2])) p.lines[e.CON[2]].PRES[1] = e.POUT.value;
    }
}

template <class R>
void push_nozzle_item(Project& p, std::vector<R>& v) {
    for (int i = 1; i <= count(v); ++i) {
        R& e = v[i];
        e.DP.value = e.PIN.value - e.POUT.value - e.DPELEV;
        if (is_line(p, e.NOZI.CON)) p.lines[e.NOZI.CON].PRES[2] = e.PIN.value;
        if (is_line(p, e.NOZO.CON)) p.lines[e.NOZO.CON].PRES[1] = e.POUT.value;
    }
}

void push_vessel(Writeback& wb, int i) {
    Project& p = wb.p;
    Vessel& v = p.vessels[i];
    auto nozzle = [&](Port& noz, bool outlet) {
        if (!is_line(p, noz.CON)) return;
        Line& line = p.lines[noz.CON];
        const double W = line.TFLOW.value;
        const double D = noz.KFlow * W * std::fabs(W);
        wb.err += std::fabs(noz.dPFlow - D);
        noz.dPFlow = D;
        double& P = outlet ? line.PRES[1] : line.PRES[2];
        P = outlet ? v.PRES.value - noz.dPLevel + noz.dPNoz - D : v.PRES.value + noz.dPLevel + noz.dPNoz + D;
        if (P < -p.gen.PATM) {
            P = wb.reset;
            wb.ctx.log_error("Error! Vessel " + std::to_string(i) + " outlet pressure below zero abs. Reset.");
        }
    };
    for (int n = 1; n <= kNozzles; ++n) nozzle(v.NOZO[static_cast<std::size_t>(n)], true);
    for (int n = 1; n <= kNozzles; ++n) nozzle(v.NOZI[static_cast<std::size_t>(n)], false);
}

void push_pressures(Writeback& wb, const Network& net) {
    Project& p = wb.p;
    // A boundary's drop beyond its static head and nozzle loss, and the
    // pressure at its line end.
    auto boundary = [&](Boundary& b, double high, double low, double pipe_end, std::size_t end) {
        if (!is_line(p, b.NOZ.CON)) return;
        Line& line = p.lines[b.NOZ.CON];
        const double W = line.TFLOW.value;
        b.NOZ.dPFlow = b.NOZ.KFlow * W * std::fabs(W);
        b.DP.value = high - low - b.NOZ.dPLevel - b.NOZ.dPFlow;
        line.PRES[end] = pipe_end;
    };
    for (int i = 1; i <= count(p.feeds); ++i) {
        Feed& f = p.feeds[i];
        boundary(f, f.PRES.value, f.POUT.value, f.POUT.value, 1);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        Prod& d = p.prods[i];
        boundary(d, d.PIN.value, d.PRES.value, d.PIN.value, 2);
    }
    push_two_port(p, p.valves, false);
    push_two_port(p, p.checks, false);
    push_two_port(p, p.fos, false);
    push_two_port(p, p.expands, false);
    push_two_port(p, p.pumps, true);
    push_two_port(p, p.comps, true);
    push_nozzle_item(p, p.hxs);
    push_nozzle_item(p, p.miscs);
    for (int i = 1; i <= count(p.tees); ++i)
        for (int side = 1; side <= 3; ++side) {
            const Tee& t = p.tees[i];
            const double P = t.PRES[static_cast<std::size_t>(side)];
            if (is_line(p, t.CON[static_cast<std::size_t>(side)])) p.lines[t.CON[static_cast<std::size_t>(side)]].PRES[2] = P;
            if (is_line(p, t.CON[static_cast<std::size_t>(side + 3)])) p.lines[t.CON[static_cast<std::size_t>(side + 3)]].PRES[1] = P;
        }
    // A junction's lines from the node lists of the build: the outlet of a
    // line that enters it, the inlet of one that leaves.
    const int juncs = std::min(count(p.juncs), static_cast<int>(net.node_start.size()) - 1);
    for (int i = 1; i <= juncs; ++i) {
        const double P = p.juncs[i].PRES.value;
        for (int k = net.node_start[static_cast<std::size_t>(i) - 1]; k < net.node_start[static_cast<std::size_t>(i)]; ++k) {
            const int line = net.node_lines[static_cast<std::size_t>(k)];
            if (line > 0) p.lines[line].PRES[2] = P;
            else p.lines[-line].PRES[1] = P;
        }
    }
    for (int i = 1; i <= count(p.vessels); ++i) push_vessel(wb, i);
}

// The reference elimination for small systems, KLU for large ones or when
// the run asks for one of them.
int solve_network(RunContext& ctx, Network& net) {
    const bool fast = ctx.linear_solver == LinearSolver::Klu ||
                      (ctx.linear_solver == LinearSolver::Auto && net.NumSpecs >= kFastSolveOrder);
    // The line rows come first, row i holding the flow term of line i.
    net.fast.paired_rows = net.NumVars - net.cols.line;
    net.fast.paired_col = net.cols.line;
    if (fast) return FastSolveMatrix(ctx, net.A, net.JA, net.IA, net.B, net.NumSpecs, net.fast);
    return SolveMatrix(ctx, net.A, net.JA, net.IA, net.B, net.NumSpecs, net.work);
}

}  // namespace

int Hydr_Solve(RunContext& ctx, Project& p, Network& net, double& err, int case_no, int) {
    try {
        Matrix_Setup(ctx, p, net, 1, case_no);
        const int status = solve_network(ctx, net);
        if (status != 0) return status;
        Writeback wb{ctx, p, net.B, err, 101.325 - p.gen.PATM};
        take_flows(p, net, net.B, err);
        net.newton_on = ctx.newton;
        take_pressures(wb, net.cols);
        floor_pressures(wb);
        push_pressures(wb, net);
    } catch (const Fault& f) {
        // The step goes on from what it had written; the run continues.
        ctx.log_error("Error! In Hydr Solve = " + fault_text(f));
    }
    return 0;
}

}  // namespace velm
