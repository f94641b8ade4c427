#include "correlations/control_valve.hpp"

#include <cmath>
#include <string>

#include "correlations/pipe.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

// ISA-75.01.01 N6 for Cv with W in kg/h, dP in kPa, rho in kg/m3 (2.73),
// scaled to t/h.
constexpr double kValveN6 = 0.00273;
// ISA-75.01.01 N2 for Cv with d in mm (0.00214), scaled to d in m.
constexpr double kValveN2 = 2140000000.0;
// Crane TP-410: Cv = 29.9 d^2 / sqrt(K), d in inches.
constexpr double kCraneCvK = 29.9;
constexpr double kInch = 0.0254;  // m
// Coefficients of a shut valve, of a choked row without flow, and the Cv of
// a resistance of no loss.
constexpr double kShutValve = 100000000.0;
constexpr double kNoChokedFlow = 1000000000.0;
constexpr double kNoResistance = 1000000.0;

// 1.4, the isentropic exponent of air at which xT is measured.
constexpr double kAirK = 1.4;

bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }


std::string_view trimmed(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

// A size text in inches, as m: the small fractions exactly, else the number
// the text starts with.
double inches(std::string_view text) {
    text = trimmed(text);
    if (text == "1/8") return kInch / 8.0;
    if (text == "1/4") return kInch / 4.0;
    if (text == "3/8") return 3.0 * kInch / 8.0;
    if (text == "1/2") return kInch / 2.0;
    if (text == "3/4") return 3.0 * kInch / 4.0;
    return val_or_zero(text) * kInch;
}

bool is_inlet_line(std::string_view size) { return trimmed(size) == "Inlet line"; }

// Valve size d (m) from its text; "Inlet line" is the pipe D.
double valve_size(std::string_view size, double D) { return is_inlet_line(size) ? D : inches(size); }

// x at the choked limit, Fgamma * xT.
double critical_x(double k, double xT) { return std::abs(k * xT / kAirK); }

std::string name_of(const Valve& v) { return trim(v.NAME[1]); }

}  // namespace

ValveFluid valve_properties(RunContext& ctx, const Project& p, const Valve& v) {
    return trapped(ctx, "Error! In valve properties sub= ", [&] {
        ValveFluid f;
        static_cast<RestrictionFluid&>(f) = restriction_fluid(ctx, p, v);
        if (f.up == 0) return f;
        const Line& up = p.lines[static_cast<std::size_t>(f.up)];
        const Line& down = p.lines[static_cast<std::size_t>(f.down)];
        if (!trimmed(up.DIA[2]).empty() && !trimmed(down.DIA[2]).empty()) {
            f.D1 = inches(up.DIA[2]);
            f.D2 = inches(down.DIA[2]);
        } else {
            f.D1 = up.ID.value;
            f.D2 = down.ID.value;
        }
        return f;
    });
}

double valve_dP_P(RunContext& ctx, const Header& gen, double dP, double P) {
    return trapped(ctx, "Error! In valve dP/P function = ", [&] {
        double Pabs = gen.PATM + P;
        if (Pabs == 0.0) Pabs = 1e-06;
        return std::abs(checked_div(dP, Pabs));
    });
}

bool valve_IsCritical(RunContext& ctx, const Header& gen, double dP, double P, double W, double LF, double k,
                      double xT) {
    return trapped(ctx, "Error! In valve IsCritical function= ", [&] {
        if (LF > kLiquidLimit) return false;
        if (sgn(dP) * sgn(W) < 0.0) return false;
        return valve_dP_P(ctx, gen, dP, P) >= checked(critical_x(k, xT));
    });
}

double valve_Y1(RunContext& ctx, const Header& gen, double dP, double P, double W, double LF, double k, double xT) {
    return trapped(ctx, "Error! In valve Y1 function = ", [&] {
        if (LF > kLiquidLimit) return 1.0;
        if (valve_IsCritical(ctx, gen, dP, P, W, LF, k, xT)) return 2.0 / 3.0;
        if (k != 0.0 && xT != 0.0) return checked(1.0 - (1.0 / 3.0) * (kAirK / k) * (valve_dP_P(ctx, gen, dP, P) / xT));
        return 1.0;
    });
}

double valve_Fp(RunContext& ctx, double Cv, double D1, double D2, std::string_view size) {
    return trapped(ctx, "Error! In valve Fp function = ", [&] {
        const double d = valve_size(size, D1);
        const double r1 = checked_div(d, D1), r2 = checked_div(d, D2);
        const double Ka = 0.5 * std::pow(1.0 - r1 * r1, 2);
        const double Kb = std::pow(1.0 - r2 * r2, 2);
        const double Ea = 1.0 - std::pow(r1, 4);
        const double Eb = 1.0 - std::pow(r2, 4);
        return checked_div(1.0, checked_div(Cv * Cv * (Ka + Kb + Ea - Eb) / kValveN2, std::pow(d, 4)) + 1.0);
    });
}

double Valve_Cv_W2(RunContext& ctx, const Header& gen, const Valve& v, const ValveFluid& f) {
    return trapped(ctx, "Error! In Valve Cv W2 function = ", [&] {
        const double Y = valve_Y1(ctx, gen, v.DP.value, f.Pin, f.W, f.LF, f.K, v.XT);
        const double cv_used = v.OPEN.value * v.CV.value / 100.0;
        const double Fp = valve_Fp(ctx, cv_used, f.D1, f.D2, v.DIA);
        const double Rinv = equivalent_inv_density(ctx, gen.MCVDEN, f.LF, f.DenL, f.DenV, Y);
        if (v.CV.value == 0.0 || v.OPEN.value == 0.0 || Fp == 0.0) return kShutValve;
        const double per_cv = (100.0 / v.OPEN.value) / v.CV.value;
        return checked((1.0 / kValveN6) * (1.0 / kValveN6) * per_cv * per_cv * (1.0 / Fp) * Rinv);
    });
}

double Valve_W2_choked(RunContext& ctx, const Header& gen, const Valve& v, const ValveFluid& f) {
    return trapped(ctx, "Error! In Valve W2 choked function= ", [&] {
        const double r = critical_x(f.K, v.XT);
        if (f.W == 0.0 || r <= 0.0) return kNoChokedFlow;
        return (1.0 / f.W) * checked_sqrt((gen.PATM + f.Pin) * Valve_Cv_W2(ctx, gen, v, f) / r);
    });
}

double valve_Cv(RunContext& ctx, const Header& gen, Valve& v, const ValveFluid& f, int case_no) {
    return trapped(ctx, "Error! In valve Cv function = ", [&] {
        double Y = 1.0, Fp = 1.0, Cv = 0.0;
        if (std::abs(f.W) > 1e-09) {
            Y = valve_Y1(ctx, gen, v.DP.value, f.Pin, f.W, f.LF, f.K, v.XT);
            const double dP_use = valve_IsCritical(ctx, gen, v.DP.value, f.Pin, f.W, f.LF, f.K, v.XT)
                                      ? std::abs((gen.PATM + f.Pin) * f.K * v.XT / kAirK)
                                      : std::abs(v.DP.value);
            const double Rinv = equivalent_inv_density(ctx, gen.MCVDEN, f.LF, f.DenL, f.DenV, Y);
            const double A = Rinv > 0.0 ? checked(kValveN6 * kValveN6 * dP_use / Rinv / (f.W * f.W)) : 0.0;
            // 1 / Fp = 1 + a Cv^2 with a = 1 / F1 - 1, so A = a + 1 / Cv^2.
            const double F1 = valve_Fp(ctx, 1.0, f.D1, f.D2, v.DIA);
            const double B = A - (checked_div(1.0, F1) - 1.0);
            Cv = B > 0.0 ? checked_sqrt(1.0 / B) : 0.0;
            Fp = A != 0.0 ? B / A : 0.0;
        }
        v.YIN = Y;
        v.FP2 = Fp;
        if (is_specified(v.CV.spec, case_no) && is_specified(v.OPEN.spec, case_no) && std::abs(f.W) > 0.001 &&
            v.OPEN.value != 0.0) {
            const double entry = spec_value(v.CV.spec, case_no);
            if (std::abs(Cv * 100.0 / v.OPEN.value - entry) > 0.001 * std::abs(entry))
                ctx.log_error("Warning! Valve " + name_of(v) + " Cv Calculated differ from Input.");
        }
        return Cv;
    });
}

double Valve_K(RunContext& ctx, double K, std::string_view size, double D) {
    return trapped(ctx, "Error! In Valve K function= ", [&] {
        const double d = trimmed(size).empty() ? D : valve_size(size, D);
        if (K <= 0.0) return kNoResistance;
        const double d_in = d / kInch;
        return checked(d_in * d_in * kCraneCvK / checked_sqrt(K));
    });
}

double valve_char(std::string_view characteristic, std::string_view opening) {
    const double o = val_or_zero(opening);
    if (characteristic == "Equal percentage") {
        const double r = 100.0 * exp_safe(((o - 100.0) * 3.675) / 100.0);
        return o < r ? o : r;
    }
    if (characteristic == "Quick opening") return o <= 20.0 ? 3.0 * o : 100.322 - 322000.0 / (o * o * o);
    return o;  // "Linear" and any other trim
}

ValveFluid refresh_valve(RunContext& ctx, Project& p, Valve& v, int iter, int case_no) {
    const ValveFluid f = valve_properties(ctx, p, v);
    if (iter == 1 && is_specified(v.OPEN.spec, case_no))
        v.OPEN.value = valve_char(v.TYPE, getting_case_data(v.OPEN.spec, case_no));
    if (is_specified(v.CV.spec, case_no))
        v.CV.value = spec_value(v.CV.spec, case_no);
    else if (is_specified(v.K, case_no))
        v.CV.value = Valve_K(ctx, spec_value(v.K, case_no), v.DIA, f.D1);
    return f;
}

void final_valve(RunContext& ctx, Project& p, Valve& v, int case_no) {
    const ValveFluid f = valve_properties(ctx, p, v);
    if (is_specified(v.OPEN.spec, case_no)) {
        const double cv = valve_Cv(ctx, p.gen, v, f, case_no);
        v.CV.value = v.OPEN.value != 0.0 ? cv * 100.0 / v.OPEN.value : 0.0;
    } else if (is_specified(v.CV.spec, case_no)) {
        v.CV.value = spec_value(v.CV.spec, case_no);
        const double cv = valve_Cv(ctx, p.gen, v, f, case_no);
        v.OPEN.value = v.CV.value != 0.0 ? 100.0 * cv / v.CV.value : 0.0;
    } else {
        v.OPEN.value = 100.0;
        v.CV.value = valve_Cv(ctx, p.gen, v, f, case_no);
    }

    v.DPP2 = 0.0;
    if (!is_line(p, v.DPP1) || !is_line(p, v.CON[1])) return;
    const Line& named = p.lines[static_cast<std::size_t>(v.DPP1)];
    const Line& inlet = p.lines[static_cast<std::size_t>(v.CON[1])];
    const double rho = 0.5 * (named.TPROP[3] + inlet.TPROP[3]);
    double dpp = named.PRES[1] - v.PIN.value + rho * 9.81 / 1000.0 * (named.ELEV[1] - v.ELEV);
    const double ID1 = named.ID.value, ID2 = inlet.ID.value;
    if (rho > 1e-06 && ID1 > 1e-06 && ID2 > 1e-06) {
        const double W1 = named.TFLOW.value, W2 = inlet.TFLOW.value;
        dpp += (6.25439e-05 / rho) * (W1 * W1 / std::pow(ID1, 4) - W2 * W2 / std::pow(ID2, 4));
    }
    v.DPP2 = dpp;
    if (std::abs(named.TPROP[3] - inlet.TPROP[3]) > 0.03 * std::abs(named.TPROP[3]))
        ctx.warn("Warning! Valve " + name_of(v) + " permanent dP calc requires constant density.");
}

}  // namespace velm
