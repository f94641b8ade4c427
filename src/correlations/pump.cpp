// Pump curves, rise, efficiencies, power and NPSH.
#include "correlations/pump.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "model/case_data.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

// Flow below which a machine counts as at rest, t/h.
constexpr double kAtRest = 1e-06;
// 1 m3/h in US gallons per minute, and 1 m in feet, rounded as the suction
// specific speed correlation takes them.
constexpr double kGpmPerM3h = 4.4029;
constexpr double kFeetPerMetre = 3.2808;
// 1 kW in horsepower, rounded.
constexpr double kHpPerKw = 1.341;

// Typical pump efficiency by kind at suction flow Q (m3/h): a curve rising
// from 0 towards its best value as the pump grows.
double pump_efficiency_by_type(std::string_view type, double Q) {
    if (type == "Centrifugal") return 0.8 * (1.0 - 1.0 / (0.05 * Q + 1.0));
    if (type == "Sundyne") return 0.55 * (1.0 - 1.0 / (0.5 * Q + 1.0));
    if (type == "Reciprocating") return 0.95;
    return 0.6;
}

// Mechanical efficiency of a reciprocating pump's drive, 0.99 - 0.66 / P^0.45
// with P the shaft power in hp, by five substitutions from a first guess of
// 0.6. dPQ is rise (kPa) times flow (m3/h); E the pump efficiency.
double reciprocating_shaft(double dPQ, double E) {
    const auto horsepower = [&](double es) {
        return std::fabs(checked_div(checked_div(dPQ, E), es) / 3600.0) * kHpPerKw;
    };
    double P = horsepower(0.6);
    double es = 0.0;
    for (int k = 0; k < 5; ++k) {
        P = std::max(P, 0.42);
        es = 0.99 - 0.66 / checked_pow(P, 0.45);
        P = horsepower(es);
    }
    return es;
}

bool pump_uses_curve(const Pump& m, int case_no) {
    return spec_is(m.DP.spec, case_no, 'C') || spec_is(m.EFFP.spec, case_no, 'C') ||
           spec_is(m.NPSHR13.spec, case_no, 'C');
}

}  // namespace

const Line* machine_line(const Project& p, int n) {
    return n >= 1 && n <= count(p.lines) ? &p.lines[static_cast<std::size_t>(n)] : nullptr;
}

const Line* upstream_line(const Project& p, const TwoPort& m, bool& reverse) {
    const Line* in = machine_line(p, m.CON[1]);
    reverse = in != nullptr && in->TFLOW.value < 0.0;
    return reverse ? machine_line(p, m.CON[2]) : in;
}

double vol_flow(double W, double density) { return density > 0.0 ? 1000.0 * W / density : 0.0; }

double head_from_dP(double dP, double density) {
    return density != 0.0 ? (1000.0 * dP / kHeadGravity) / density : 0.0;
}

double dP_from_head(double head, double density) { return head * kHeadGravity * density / 1000.0; }

double pump_power(double Q, double dP, double eff, double shaft) {
    if (eff == 0.0 || shaft == 0.0) return 0.0;
    return Q * dP / eff / shaft / 3600.0;
}

double y_lin(RunContext& ctx, double x, int a, int b, std::span<const double> X, std::span<const double> Y,
             double& slope) {
    slope = 0.0;
    double s = 0.0;
    const double y = trapped(ctx, "Error! In y_lin = ", [&]() -> double {
        const int first = std::max(a, 0);
        const int last = std::min(b, static_cast<int>(std::min(X.size(), Y.size())) - 1);
        const auto at = [](std::span<const double> v, int i) { return v[static_cast<std::size_t>(i)]; };
        int lower = first, upper = last + 1;
        for (int i = first; i <= last; ++i)
            if (x < at(X, i)) {
                lower = i - 1;
                upper = i;
                break;
            }
        if (last < first + 1) {
            ctx.log_error("Error! At least 2 point required for pump curve.");
            return 0.0;
        }
        if (lower < first) {
            ctx.log_error("Error! Curve interpolation below minimum. Use minimum.");
            return at(Y, first);
        }
        if (upper > last) {
            ctx.log_error("Error! Curve interpolation above maximum. Use maximum.");
            return at(Y, last);
        }
        if (at(X, upper) == at(X, lower)) return (at(Y, upper) + at(Y, lower)) / 2.0;
        const double k = checked((at(Y, upper) - at(Y, lower)) / (at(X, upper) - at(X, lower)));
        const double v = checked(k * x + (at(Y, lower) - k * at(X, lower)));
        s = k;
        return v;
    });
    slope = s;
    return y;
}

double curve_dP13(double W, double dP, double slope, double min_slope, double& C) {
    double c = 0.0;
    if (std::fabs(W) >= kAtRest && sgn(W) * sgn(dP) >= 0.0)
        c = checked_div(-kHeadGravity * (sgn(W) * min_slope + slope), 2.0 * W);
    const double dP13 = checked(W * W * c + dP);
    C = c;
    return dP13;
}

double limit_efficiency(double e) { return std::clamp(e, 0.01, 1.0); }

double machine_curve_scale(RunContext& ctx, Machine& m, int case_no, std::string_view word, bool uses_curve,
                           std::span<double> q_text) {
    const bool by_dia = m.CURDIA[1] != 0.0 && m.CURDIA[2] != 0.0;
    const bool by_speed = m.CURRPM[1] != 0.0 && m.CURRPM[2] != 0.0;
    const double dia = by_dia ? m.CURDIA[2] / m.CURDIA[1] : 1.0;
    const double speed = by_speed ? m.CURRPM[2] / m.CURRPM[1] : 1.0;
    for (std::size_t i = 1; i <= kCurvePoints; ++i) {
        const double q = spec_value(m.CURQ[i], case_no);
        if (i < q_text.size()) q_text[i] = q;
        m.CURQ_value[i] = q * dia * speed;
        m.CURH_value[i] = spec_value(m.CURH[i], case_no) * dia * dia * speed * speed;
        m.CUREFF_value[i] = spec_value(m.CUREFF[i], case_no);
    }
    if (!uses_curve) return speed;
    const auto tell = [&](const char* level, const char* what) {
        ctx.log_error(std::string(level) + std::string(word) + trim(m.NAME[1]) + what);
    };
    if (m.CURRPM[2] != 0.0 && m.CURRPM[1] == 0.0)
        tell("Warning! ", " curve speed is 0: curve not scaled to the speed in use.");
    if (m.CURDIA[2] != 0.0 && m.CURDIA[1] == 0.0)
        tell("Warning! ", " curve impeller is 0: curve not scaled to the impeller in use.");
    const int n = std::min(m.HQ1, kCurvePoints);
    for (int i = 2; i <= n; ++i)
        if (m.CURQ_value[static_cast<std::size_t>(i)] < m.CURQ_value[static_cast<std::size_t>(i) - 1]) {
            tell("Error! ", " curve flows are not in ascending order.");
            break;
        }
    return speed;
}

void machine_curve_generate(Machine& m, double Q, double H, double E, std::span<const double> q,
                            std::span<const double> h, std::span<const double> eff) {
    const std::size_t n = std::min({q.size(), h.size(), eff.size(), static_cast<std::size_t>(kCurvePoints) + 1});
    for (std::size_t i = 1; i < n; ++i) {
        m.CURQ[i] = number_text(Q * q[i] / 100.0);
        m.CURH[i] = number_text(H * h[i] / 100.0);
        m.CUREFF[i] = number_text(E * eff[i] / 100.0);
    }
    m.HQ1 = kCurvePoints;
}

PumpWorking pump_properties(RunContext& ctx, const Project& p, const Pump& m) {
    return trapped(ctx, "Error! In pump properties sub= ", [&] {
        bool reverse = false;
        const Line* up = upstream_line(p, m, reverse);
        if (up == nullptr) return PumpWorking{};
        if (reverse) return PumpWorking{up->TFLOW.value, m.POUT.value, up->TPROP[1], up->VEL[1]};
        return PumpWorking{up->TFLOW.value, m.PIN.value, up->TPROP[2], up->VEL[2]};
    });
}

void pump_curve_scale(RunContext& ctx, Pump& m, int case_no) {
    try {
        std::array<double, kCurvePoints + 1> q_text{};
        const double speed = machine_curve_scale(ctx, m, case_no, "Pump ", pump_uses_curve(m, case_no), q_text);
        for (std::size_t i = 1; i <= kCurvePoints; ++i) {
            // NPSHR follows the speed directly and again through the flow.
            double N = spec_value(m.CURNPSH[i], case_no) * checked_pow(speed, 4.0 / 3.0);
            if (m.CURQ_value[i] != 0.0 && q_text[i] != 0.0) N *= checked_pow(m.CURQ_value[i] / q_text[i], 2.0 / 3.0);
            m.CURNPSH_value[i] = N;
        }
    } catch (const Fault& f) {
        ctx.log_error("Error! In pump properties sub= " + fault_text(f));
    }
}

void pump_curve_generate(Pump& m, std::span<const double> q, std::span<const double> h, std::span<const double> eff,
                         std::span<const double> npsh) {
    machine_curve_generate(m, m.HQACT[3], m.HQACT[1], m.EFFP.value, q, h, eff);
    const std::size_t n = std::min(npsh.size(), static_cast<std::size_t>(kCurvePoints) + 1);
    for (std::size_t i = 1; i < n; ++i) m.CURNPSH[i] = number_text(m.NPSHR13.value * npsh[i] / 100.0);
}

double curve_head(RunContext& ctx, const Machine& m, double W, double density, double& slope) {
    return y_lin(ctx, vol_flow(W, density), 1, m.HQ1, m.CURQ_value, m.CURH_value, slope);
}

double Pump_dP13(RunContext& ctx, const Project& p, const Pump& m, double& C, int case_no) {
    C = 0.0;  // curve_dP13 sets it only once the rise is known
    return trapped(ctx, "Error! In Pump dP13 function = ", [&] {
        if (!spec_is(m.DP.spec, case_no, 'C')) return spec_value(m.DP.spec, case_no);
        const PumpWorking s = pump_properties(ctx, p, m);
        double slope = 0.0;
        const double dP = dP_from_head(curve_head(ctx, m, s.W, s.Den, slope), s.Den);
        return curve_dP13(s.W, dP, slope, p.gen.MPCURV[1], C);
    });
}

double curve_efficiency(RunContext& ctx, const Machine& m, std::string_view entry, double by_type, double x) {
    double eff = by_type;
    if (spec_is(entry, 1, 'C')) {
        double slope = 0.0;
        eff = y_lin(ctx, x, 1, m.HQ1, m.CURQ_value, m.CUREFF_value, slope);
    } else if (!entry.empty()) {
        eff = val_or_zero(entry);
    }
    return limit_efficiency(eff);
}

double pump_efficiency(RunContext& ctx, const Pump& m, int case_no) {
    return trapped(ctx, "Error! In pump efficiency function = ", [&] {
        const double by_type = pump_efficiency_by_type(m.TYPE, std::fabs(m.HQACT[3]));
        return curve_efficiency(ctx, m, case_entry(m.EFFP.spec, case_no), by_type, m.HQACT[3]);
    });
}

double pump_efficiency_shaft(RunContext& ctx, const Pump& m, int case_no) {
    return trapped(ctx, "Error! In pump efficiency function = ", [&] {
        const std::string_view e = case_entry(m.EFFS.spec, case_no);
        if (!e.empty()) return limit_efficiency(val_or_zero(e));
        if (m.TYPE != "Reciprocating") return 1.0;
        const double E = m.EFFP.value >= 0.0 && m.EFFP.value <= 1.0 ? m.EFFP.value : 1.0;
        return limit_efficiency(reciprocating_shaft((m.POUT.value - m.PIN.value) * m.HQACT[3], E));
    });
}

double pump_NPSHA(RunContext& ctx, const Project& p, Pump& m, int case_no) {
    return trapped(ctx, "Error! In pump NPSHA function = ", [&] {
        const std::string_view given = case_entry(m.NPSHA13.spec, case_no);
        if (!given.empty()) return val_or_zero(given);
        const PumpWorking s = pump_properties(ctx, p, m);
        if (s.W < 0.0) return 0.0;
        double Ps = 0.0;  // pressure at the source's liquid surface plus the liquid head over its nozzle
        if (m.NPSHAF[1] > 0) {
            if (m.NPSHAF[1] > count(p.feeds)) raise_fault(kFaultSubscript);
            Ps = p.feeds[static_cast<std::size_t>(m.NPSHAF[1])].PRES.value;
            m.NPSHA1 = Ps;
        } else if (m.NPSHAF[2] > 0) {
            if (m.NPSHAF[2] > count(p.vessels)) raise_fault(kFaultSubscript);
            const Vessel& v = p.vessels[static_cast<std::size_t>(m.NPSHAF[2])];
            m.NPSHA1 = v.PRES.value;
            Ps = v.PRES.value;
            // The static head of an outlet nozzle is held negative (it raises the line's pressure).
            if (m.NPSHA3 >= 1 && m.NPSHA3 <= kNozzles) Ps -= v.NOZO[static_cast<std::size_t>(m.NPSHA3)].dPLevel;
        } else {
            return 0.0;
        }
        const double g = kHeadGravity;
        const double v = checked_div(s.Vel, m.NPSHR1);
        return checked(v * v / (2.0 * g) + checked_div(1000.0 * s.Pin, s.Den) / g -
                       checked_div((Ps - m.NPSHA4) * 1000.0, s.Den) / g - m.NPSHA6);
    });
}

double pump_NPSHR(RunContext& ctx, const Pump& m, int case_no) {
    return trapped(ctx, "Error! In pump NPSHR function = ", [&] {
        const std::string_view e = case_entry(m.NPSHR13.spec, case_no);
        if (spec_is(e, 1, 'C')) {
            double slope = 0.0;
            return y_lin(ctx, m.HQACT[3], 1, m.HQ1, m.CURQ_value, m.CURNPSH_value, slope);
        }
        if (!e.empty()) return val_or_zero(e);
        const double gpm_per_eye = checked_div(std::fabs(m.HQACT[3]) * kGpmPerM3h, m.NPSHR1);
        const double ratio = checked_div(m.NPSHR2 * checked_sqrt(gpm_per_eye), m.NPSHR3);
        return checked_pow(ratio, 4.0 / 3.0) / kFeetPerMetre;
    });
}

void refresh_pump(RunContext& ctx, Project& p, Pump& m, int iter, int case_no) {
    try {
        const PumpWorking s = pump_properties(ctx, p, m);
        if (iter <= 1) pump_curve_scale(ctx, m, case_no);
        m.HQACT[3] = vol_flow(s.W, s.Den);
        m.HQACT[1] = head_from_dP(m.DP.value, s.Den);
        m.EFFP.value = pump_efficiency(ctx, m, case_no);
        m.EFFS.value = pump_efficiency_shaft(ctx, m, case_no);
        m.POW = pump_power(m.HQACT[3], m.DP.value, m.EFFP.value, m.EFFS.value);
    } catch (const Fault& f) {
        ctx.log_error("Error! In pump properties sub= " + fault_text(f));
    }
}

void final_pump(RunContext& ctx, Project& p, Pump& m, int case_no) {
    try {
        m.NPSHR13.value = pump_NPSHR(ctx, m, case_no);
        m.NPSHA13.value = pump_NPSHA(ctx, p, m, case_no);
        if (case_no == 1 && m.CURC1 == 1) {
            ctx.log_error("Case 1 Generate typical pump curve for Pump " + trim(m.NAME[1]));
            pump_curve_generate(m, p.gen.PCURQ, p.gen.PCURH, p.gen.PCUREFF, p.gen.PCURNPSH);
        }
    } catch (const Fault& f) {
        ctx.warn("Error! In HydrResulFinalSub = " + fault_text(f));
    }
}

void pump_warnings(RunContext& ctx, const Project& p, Pump& m) {
    const Line* in = machine_line(p, m.CON[1]);
    const Line* out = machine_line(p, m.CON[2]);
    if ((in != nullptr && in->LF[3] != 1.0) || (out != nullptr && out->LF[3] != 1.0)) {
        m.COLOR = p.color_error;
        ctx.warn("Error! Pump " + trim(m.NAME[1]) + " inlet or outlet has vapor fraction.");
    }
    if (sgn(pump_properties(ctx, p, m).W) * m.DP.value < -1e-06)
        ctx.warn("Warning! Pump " + trim(m.NAME[1]) + " has negative head in direction of flow.");
}

}  // namespace velm
