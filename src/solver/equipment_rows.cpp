// Specification rows of the equipment: control and check valves, pumps,
// compressors, exchangers, orifices, miscellaneous equipment, reducers and
// tees. Each relation is linear in the unknowns: pressures and X = W*|W| of
// the lines, with coefficients evaluated at the last flow.
#include "correlations/compressor.hpp"
#include "correlations/control_valve.hpp"
#include "correlations/orifice.hpp"
#include "correlations/pipe.hpp"
#include "correlations/pump.hpp"
#include "correlations/tee_expander.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "solver/rows.hpp"

namespace velm {

namespace {

struct Specs {
    RunContext& ctx;
    Project& p;
    Rows& rows;
    int case_no;
    int line_base;

    bool set(const std::string& spec) const { return is_specified(spec, case_no); }
    double value(const std::string& spec) const { return spec_value(spec, case_no); }
    int x(int line) const { return line_base + line; }

    // PIN - POUT - C*X(line) = rhs.
    void drop(int pin, int pout, double C, int line, double rhs) {
        rows.begin();
        rows.add(1.0, pin);
        rows.add(-1.0, pout);
        if (C != 0.0 && is_line(p, line)) rows.add(-C, x(line));
        rows.rhs(rhs);
    }
    // Critical flow: the absolute upstream pressure alone fixes the flow,
    // P_up - C*X = -PATM.
    void critical(int p_up, double C, int line) {
        rows.begin();
        rows.add(1.0, p_up);
        if (is_line(p, line)) rows.add(-C, x(line));
        rows.rhs(-p.gen.PATM);
    }
    // Pressures given at the drawn inlet and outlet.
    template <class E>
    void pressures(const E& e, int pin, int pout) {
        if (set(e.PIN.spec)) fixed_row(rows, pin, value(e.PIN.spec));
        if (set(e.POUT.spec)) fixed_row(rows, pout, value(e.POUT.spec));
    }
    double W(int line) const { return is_line(p, line) ? p.lines[static_cast<std::size_t>(line)].TFLOW.value : 0.0; }
};

void valve_rows(Specs& s, Valve& v, int pin, int pout) {
    if (s.set(v.DP.spec)) s.drop(pin, pout, 0.0, 0, s.value(v.DP.spec));
    s.pressures(v, pin, pout);
    if (!s.set(v.OPEN.spec) || !(s.set(v.CV.spec) || s.set(v.K))) return;
    if (!s.rows.build) {
        s.rows.begin();
        return;
    }
    const ValveFluid f = valve_properties(s.ctx, s.p, v);
    if (valve_IsCritical(s.ctx, s.p.gen, v.DP.value, f.Pin, f.W, f.LF, f.K, v.XT))
        s.critical(f.W >= 0.0 ? pin : pout, Valve_W2_choked(s.ctx, s.p.gen, v, f), v.CON[1]);
    else
        s.drop(pin, pout, Valve_Cv_W2(s.ctx, s.p.gen, v, f), v.CON[1], 0.0);
}

// A machine's rise on its curve or as given, linearised at the last flow:
// PIN - POUT - S*X(inlet) = -dP13; and its given pressures.
template <class M>
void machine_rows(Specs& s, M& m, int pin, int pout, double (*dP13)(RunContext&, const Project&, const M&, double&, int)) {
    if (s.set(m.DP.spec)) {
        double slope = 0.0;
        const double rise = s.rows.build ? dP13(s.ctx, s.p, m, slope, s.case_no) : 0.0;
        s.drop(pin, pout, slope, m.CON[1], -rise);
    }
    s.pressures(m, pin, pout);
}

void pump_rows(Specs& s, Pump& m, int pin, int pout) { machine_rows(s, m, pin, pout, Pump_dP13); }

void comp_rows(Specs& s, Comp& m, int pin, int pout) {
    machine_rows(s, m, pin, pout, Comp_dP13);
    if (s.set(m.PRAT.spec)) {
        // A ratio of absolute pressures: POUT + PATM = r (PIN + PATM).
        const double r = s.value(m.PRAT.spec);
        s.rows.begin();
        s.rows.add(-r, pin);
        s.rows.add(1.0, pout);
        s.rows.rhs((r - 1.0) * s.p.gen.PATM);
    }
    if (s.set(m.QACT.spec)) {
        s.rows.begin();
        if (!s.rows.build) return;
        double slope = 0.0;
        const double rhs = Comp_Vol_Flow(s.ctx, s.p, m, slope, s.case_no);
        if (is_line(s.p, m.CON[1])) s.rows.add(1.0, s.x(m.CON[1]));
        s.rows.add(-slope, s.W(m.CON[1]) >= 0.0 ? pin : pout);
        s.rows.rhs(rhs);
    }
}

// Exchanger and miscellaneous equipment given a drop, or rated from a drop
// at a rated flow and density.
template <class N>
void rated_rows(Specs& s, N& e, int pin, int pout, double (*rating_W2)(RunContext&, const Project&, const NozzleItem&, int)) {
    if (s.set(e.DP.spec) || s.set(e.PRAT1)) {
        const bool given = s.set(e.DP.spec);
        const double C = (!given && s.rows.build) ? rating_W2(s.ctx, s.p, e, s.case_no) : 0.0;
        s.drop(pin, pout, C, e.NOZI.CON, (given ? s.value(e.DP.spec) : 0.0) + e.DPELEV);
    }
    s.pressures(e, pin, pout);
}

void orifice_rows(Specs& s, FO& o, int pin, int pout) {
    if (s.set(o.DP.spec)) s.drop(pin, pout, 0.0, 0, s.value(o.DP.spec));
    s.pressures(o, pin, pout);
    if (s.set(o.DPF.spec))
        s.drop(pin, pout, 0.0, 0, s.value(o.DPF.spec) * orifice_dPratio(s.ctx, o.TYPE, o.BETA.value));
    if (!s.set(o.BETA.spec) && !s.set(o.BORE.spec)) return;
    if (!s.rows.build) {
        s.rows.begin();
        return;
    }
    const OrificeFluid f = orifice_properties(s.ctx, s.p, o);
    const double t_d = orifice_t_d(s.ctx, o.THICK, orifice_bore(s.ctx, o.HOLES, o.BETA.value, f.D));
    if (orifice_IsCritical(s.ctx, s.p.gen, o.TYPE, t_d, o.BETA.value, o.DP.value, f.Pin, f.W, f.LF, f.K))
        s.critical(f.W >= 0.0 ? pin : pout, Orifice_W2_choked(s.ctx, s.p.gen, o, f), o.CON[1]);
    else
        s.drop(pin, pout, Orifice_W2(s.ctx, s.p.gen, o, f), o.CON[1], 0.0);
}

void misc_rows(Specs& s, Misc& m, int pin, int pout) {
    rated_rows(s, m, pin, pout, Misc_rating_W2);
    if (s.set(m.K) || s.set(m.LD)) {
        const double C = s.rows.build ? Misc_K_W2(s.ctx, s.p, m, s.case_no) : 0.0;
        s.drop(pin, pout, C, m.NOZI.CON, m.DPELEV);
    }
}

void expander_rows(Specs& s, Expand& e, int pin, int pout) {
    if (!s.rows.build) {
        s.rows.begin();
        return;
    }
    if (e.CHOKE) {
        fixed_row(s.rows, s.W(e.CON[1]) >= 0.0 ? pin : pout, Expander_Reducer_W2_choked(s.ctx, s.p, e));
        return;
    }
    s.drop(pin, pout, Expander_Reducer_W2(s.ctx, s.p, e), e.CON[1], 0.0);
}

// A tee is a drop between its combined port and each of the two others:
// P(leg) - P(combined) is the velocity head change and loss of that leg.
void tee_rows(Specs& s, Tee& t, int base) {
    if (s.rows.build) Tee_W2(s.ctx, s.p, t, s.case_no);
    auto leg = [&](int port, int line, double K) {
        s.rows.begin();
        if (!s.rows.build) return;
        const int common_line = t.C[2];
        s.rows.add(-1.0, base + t.C[1]);
        s.rows.add(1.0, base + port);
        if (t.C3 > 0.0) {
            const double rho = t.C3;
            if (is_line(s.p, common_line)) {
                const double D = s.p.lines[static_cast<std::size_t>(common_line)].ID.value;
                if (D > 0.0)
                    s.rows.add(-sgn(s.W(common_line)) * (1.0 + sgn(t.TYPE) * K) * kPipeHead / (rho * std::pow(D, 4)),
                               s.x(common_line));
            }
            if (is_line(s.p, line)) {
                const double D = s.p.lines[static_cast<std::size_t>(line)].ID.value;
                if (D > 0.0) s.rows.add(sgn(s.W(line)) * kPipeHead / (rho * std::pow(D, 4)), s.x(line));
            }
        }
    };
    leg(t.M[1], t.M[2], t.KCM.value);
    leg(t.B[1], t.B[2], t.KCB.value);
}

}  // namespace

void equipment_spec_rows(RunContext& ctx, Project& p, Network& net, Rows& rows, int case_no) {
    const Columns& c = net.cols;
    Specs s{ctx, p, rows, case_no, c.line};
    auto each = [&](auto& v, int base, auto&& fn) {
        for (int i = 1; i <= count(v); ++i) fn(s, v[static_cast<std::size_t>(i)], Columns::first(base, i), Columns::second(base, i));
    };
    each(p.valves, c.valve, valve_rows);
    // A check valve always holds its relation: open forward, shut in reverse.
    each(p.checks, c.check, [](Specs& sp, Check& cv, int pin, int pout) {
        sp.drop(pin, pout, sp.rows.build ? Check_W2(sp.ctx, sp.p, cv) : 0.0, cv.CON[2], 0.0);
    });
    each(p.pumps, c.pump, pump_rows);
    each(p.comps, c.comp, comp_rows);
    each(p.hxs, c.hx, [](Specs& sp, HX& hx, int pin, int pout) { rated_rows(sp, hx, pin, pout, Exchanger_rating_W2); });
    each(p.fos, c.fo, orifice_rows);
    each(p.miscs, c.misc, misc_rows);
    each(p.expands, c.expand, expander_rows);
    for (int i = 1; i <= count(p.tees); ++i) tee_rows(s, p.tees[static_cast<std::size_t>(i)], c.tee + 3 * (i - 1));
}

}  // namespace velm
