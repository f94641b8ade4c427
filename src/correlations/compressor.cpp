// Compressor rise, head, volume flow specification, efficiencies and power.
#include "correlations/compressor.hpp"

#include <cmath>
#include <string>

#include "correlations/pipe.hpp"
#include "correlations/pump.hpp"
#include "model/case_data.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

// 1 ft3/min in m3/h, rounded as the efficiency correlations take it.
constexpr double kM3hPerCfm = 1.699;

// An absolute pressure that is exactly 0 becomes 1e-07 kPa, so that ratios stay finite.
double nonzero(double P) { return P == 0.0 ? 1e-07 : P; }
double nonzero_sign(double s) { return s == 0.0 ? 1.0 : s; }

double comp_efficiency_by_type(std::string_view type, double Q) {
    if (type == "Centrifugal") return 0.768 - 3.55 / checked_pow(Q / kM3hPerCfm, 0.5);
    if (type == "Axial") return 0.85 - 1.6 / checked_pow(Q / kM3hPerCfm, 0.35);
    if (type == "Reciprocating" || type == "Screw") return 0.95;
    return 0.7;
}

// Mechanical efficiency of a reciprocating compressor by its pressure ratio.
double reciprocating_shaft(const Header& gen, const Comp& m) {
    double r = std::fabs(checked_div(gen.PATM + m.POUT.value, gen.PATM + m.PIN.value));
    if (r < 1.0) r = checked_div(1.0, r);
    return r <= 1.8 ? 0.57 + 0.13 * r : 0.926 - 0.5 / checked_pow(r, 2.4);
}

bool comp_uses_curve(const Comp& m, int case_no) {
    return spec_is(m.DP.spec, case_no, 'C') || spec_is(m.EFFC.spec, case_no, 'C');
}

}  // namespace

CompWorking compressor_properties(RunContext& ctx, const Project& p, const Comp& m) {
    return trapped(ctx, "Error! In compressor properties sub= ", [&] {
        bool reverse = false;
        const Line* up = upstream_line(p, m, reverse);
        if (up == nullptr) return CompWorking{};
        if (reverse) return CompWorking{up->TFLOW.value, m.POUT.value, m.PIN.value, up->TPROP[1], up->VAPK[1]};
        return CompWorking{up->TFLOW.value, m.PIN.value, m.POUT.value, up->TPROP[2], up->VAPK[2]};
    });
}

void comp_curve_scale(RunContext& ctx, Comp& m, int case_no) {
    machine_curve_scale(ctx, m, case_no, "Compressor ", comp_uses_curve(m, case_no), {});
}

void comp_curve_generate(Comp& m, std::span<const double> q, std::span<const double> h, std::span<const double> eff) {
    machine_curve_generate(m, m.QACT.value, m.HQACT[1], m.EFFC.value, q, h, eff);
}

double comp_head(RunContext& ctx, const Header& gen, double sign, double P2, double P1, double density, double n) {
    return trapped(ctx, "Error! In comp head function= ", [&] {
        const double p1 = nonzero(gen.PATM + P1), p2 = nonzero(gen.PATM + P2), s = nonzero_sign(sign);
        if (n == 0.0 || density == 0.0) return 0.0;
        const double scale = s * 1000.0 * p1 / kHeadGravity / density;
        if (n == 1.0) return checked(scale * checked_log(p2 / p1));
        return checked(scale * n / (n - 1.0) * (checked_pow(p2 / p1, (n - 1.0) / n) - 1.0));
    });
}

double comp_dP_from_head(RunContext& ctx, const Header& gen, double sign, double head, double P1, double density,
                         double n) {
    return trapped(ctx, "Error! In comp head function = ", [&] {
        const double p1 = nonzero(gen.PATM + P1), s = nonzero_sign(sign);
        const double work = kHeadGravity * s * head * density / 1000.0;  // kPa
        double p2 = 0.0;
        if (n != 1.0 && n != 0.0) {
            const double x = std::max(0.0, work * (n - 1.0) / p1 / n + 1.0);
            p2 = p1 * checked_pow(x, n / (n - 1.0));
        } else {
            p2 = p1 * exp_safe(work / p1);
        }
        return checked((p2 - p1) * s);
    });
}

double Comp_dP13(RunContext& ctx, const Project& p, const Comp& m, double& C, int case_no) {
    C = 0.0;  // curve_dP13 sets it only once the rise is known
    return trapped(ctx, "Error! In Comp dP13 function = ", [&] {
        if (!spec_is(m.DP.spec, case_no, 'C')) return spec_value(m.DP.spec, case_no);
        const CompWorking s = compressor_properties(ctx, p, m);
        double slope = 0.0;
        const double H = curve_head(ctx, m, s.W, s.Den, slope);
        const double dP = comp_dP_from_head(ctx, p.gen, sgn(s.W), H, s.Pin, s.Den, s.N);
        return curve_dP13(s.W, dP, slope, p.gen.MPCURV[2], C);
    });
}

double Comp_Vol_Flow(RunContext& ctx, const Project& p, const Comp& m, double& S, int case_no) {
    S = 0.0;
    double coefficient = 0.0;
    const double result = trapped(ctx, "Error! In Comp Vol Flow function = ", [&] {
        const CompWorking s = compressor_properties(ctx, p, m);
        const double v = spec_value(m.QACT.spec, case_no);
        coefficient = checked_div(std::fabs(s.W) * v * s.Den / 1000.0, p.gen.PATM + s.Pin);
        return checked(p.gen.PATM * coefficient);
    });
    S = coefficient;
    return result;
}

double comp_efficiency(RunContext& ctx, const Comp& m, int case_no) {
    return trapped(ctx, "Error! In comp efficiency function = ", [&] {
        const double by_type = comp_efficiency_by_type(m.TYPE, std::max(std::fabs(m.QACT.value), 0.001));
        return curve_efficiency(ctx, m, case_entry(m.EFFC.spec, case_no), by_type, m.QACT.value);
    });
}

double comp_efficiency_shaft(RunContext& ctx, const Header& gen, const Comp& m, int case_no) {
    return trapped(ctx, "Error! In comp efficiency function = ", [&] {
        const std::string_view e = case_entry(m.EFFS.spec, case_no);
        if (!e.empty()) return limit_efficiency(val_or_zero(e));
        if (m.TYPE == "Centrifugal" || m.TYPE == "Axial") return 0.97;
        if (m.TYPE == "Screw") return 0.7;
        if (m.TYPE == "Reciprocating") return limit_efficiency(reciprocating_shaft(gen, m));
        return 1.0;
    });
}

double comp_power(double W, double head, double eff, double shaft) {
    if (eff == 0.0 || shaft == 0.0) return 0.0;
    const double ideal = kHeadGravity * head * W / 3600.0;
    return sgn(W) * sgn(head) < 0.0 ? ideal * eff * shaft : ideal / eff / shaft;
}

void refresh_comp(RunContext& ctx, Project& p, Comp& m, int iter, int case_no) {
    try {
        const CompWorking s = compressor_properties(ctx, p, m);
        if (iter <= 1) comp_curve_scale(ctx, m, case_no);
        m.HQACT[1] = comp_head(ctx, p.gen, sgn(s.W), s.Pout, s.Pin, s.Den, s.N);
        m.QACT.value = vol_flow(s.W, s.Den);
        const double suction = p.gen.PATM + m.PIN.value;
        m.PRAT.value = suction > 0.0 ? (p.gen.PATM + m.POUT.value) / suction : 0.0;
        m.EFFC.value = comp_efficiency(ctx, m, case_no);
        m.EFFS.value = comp_efficiency_shaft(ctx, p.gen, m, case_no);
        m.POW = comp_power(s.W, m.HQACT[1], m.EFFC.value, m.EFFS.value);
    } catch (const Fault& f) {
        ctx.log_error("Error! In compressor properties sub= " + fault_text(f));
    }
}

void comp_warnings(RunContext& ctx, const Project& p, Comp& m) {
    if (sgn(compressor_properties(ctx, p, m).W) * m.DP.value < -1e-06)
        ctx.warn("Warning! Compressor " + trim(m.NAME[1]) + " has negative head in direction of flow.");
    const Line* in = machine_line(p, m.CON[1]);
    const Line* out = machine_line(p, m.CON[2]);
    if ((in != nullptr && in->LF[3] != 0.0) || (out != nullptr && out->LF[3] != 0.0))
        ctx.warn("Error! Compressor " + trim(m.NAME[1]) + " inlet or outlet has liquid fraction.");
}

}  // namespace velm
