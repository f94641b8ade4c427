#include "correlations/orifice.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "correlations/pipe.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

namespace {

// Velocity head of t/h through m^2 in kPa: (8 / pi^2) / 3.6^2 / 1000, rounded.
constexpr double kOrificeHead = 6.2544e-05;
// Coefficients of a meter closed (beta 0) and of a beta out of range.
constexpr double kBlindPlate = 1e9;
constexpr double kNoPlate = 1e-09;
bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }


enum class Meter { Unknown, Orifice, Quadrant, Nozzle, Venturi };

// The type word, trimmed and compared in capitals, without a copy.
Meter meter(std::string_view type) {
    while (!type.empty() && (type.front() == ' ' || type.front() == '\t')) type.remove_prefix(1);
    while (!type.empty() && (type.back() == ' ' || type.back() == '\t')) type.remove_suffix(1);
    auto is = [type](std::string_view word) {
        return type.size() == word.size() &&
               std::equal(type.begin(), type.end(), word.begin(),
                          [](char a, char b) { return std::toupper(static_cast<unsigned char>(a)) == b; });
    };
    if (is("ORIFICE")) return Meter::Orifice;
    if (is("QUADRANT")) return Meter::Quadrant;
    if (is("NOZZLE")) return Meter::Nozzle;
    if (is("VENTURI")) return Meter::Venturi;
    return Meter::Unknown;
}

bool thin_plate(std::string_view type, double t_d) { return meter(type) == Meter::Orifice && t_d < 0.5; }

double pow4(double b) { return b * b * b * b; }

}  // namespace

RestrictionFluid restriction_fluid(RunContext& ctx, const Project& p, const TwoPort& r) {
    RestrictionFluid f;
    if (!is_line(p, r.CON[1]) || !is_line(p, r.CON[2])) return f;
    const Line& inlet = p.lines[static_cast<std::size_t>(r.CON[1])];
    const bool forward = inlet.TFLOW.value >= 0.0;
    f.up = forward ? r.CON[1] : r.CON[2];
    f.down = forward ? r.CON[2] : r.CON[1];
    const Line& up = p.lines[static_cast<std::size_t>(f.up)];
    const Line& down = p.lines[static_cast<std::size_t>(f.down)];
    // The ends next to the restriction: the outlet end of the line that
    // reaches it, the inlet end of the line that leaves it.
    const std::size_t up_end = forward ? 2 : 1;
    const std::size_t down_end = forward ? 1 : 2;
    f.W = up.TFLOW.value;
    f.Pin = forward ? r.PIN.value : r.POUT.value;
    f.LF = down.LF[down_end];
    f.DenL = down.LIQDEN[down_end];
    f.ViscL = down.LIQVISC[down_end];
    f.ViscV = down.VAPVISC[down_end];
    f.K = down.VAPK[down_end];
    f.DenV = vapor_density(ctx, p.gen, down.VAPZ[down_end], down.VAPMW[down_end], f.Pin, up.TEMP[up_end]);
    return f;
}

double orifice_k(double k) {
    if (k == 1.0) return 1.000001;
    if (k == 0.0) return 1e-06;
    return k;
}

double equivalent_inv_density(RunContext& ctx, std::string_view method, double x, double rhoL, double rhoV, double Y) {
    return trapped(ctx, "Error! In equivalent inv density function= ", [&]() -> double {
        const double L = LVF(ctx, x, rhoV, rhoL);
        if (rhoL <= 0.0 && rhoV <= 0.0) return 0.0;
        if (rhoL <= 0.0 || L <= 0.0) return checked_div(checked_div(1.0, Y * Y), rhoV);
        if (rhoV <= 0.0 || L >= 1.0) return checked_div(1.0, rhoL);
        auto sum_of_area = [&] {
            const double s = x / checked_sqrt(rhoL) + checked_div(1.0 - x, Y) / checked_sqrt(rhoV);
            return s * s;
        };
        if (method == "SumOfArea" || method == "SumOfCv") return sum_of_area();
        if (method == "Homogeneous") return x / rhoL + checked_div(1.0 - x, Y * Y) / rhoV;
        if (method == "Momentum") return checked_div(x * x / rhoL, L) + checked_div((1.0 - x) * (1.0 - x) / rhoV, 1.0 - L);
        ctx.log_error("Error! Unknown equivalent inv density method");
        return sum_of_area();
    });
}

OrificeFluid orifice_properties(RunContext& ctx, const Project& p, const FO& fo) {
    return trapped(ctx, "Error! In orifice properties sub= ", [&] {
        OrificeFluid f;
        static_cast<RestrictionFluid&>(f) = restriction_fluid(ctx, p, fo);
        if (f.up != 0) f.D = p.lines[static_cast<std::size_t>(f.up)].ID.value;
        return f;
    });
}

double orifice_beta_from_bore(int holes, double bore, double D) {
    if (D == 0.0) return 1.0;
    return std::clamp(std::sqrt(std::abs(static_cast<double>(holes))) * bore / D, 0.0, 1.0);
}

double orifice_bore(RunContext& ctx, int holes, double b, double D) {
    return trapped(ctx, "Error! In orifice bore function= ", [&] {
        if (holes <= 0) return 0.0;
        const double bore = checked(b * D / std::sqrt(std::abs(static_cast<double>(holes))));
        return std::clamp(bore, 0.0, std::max(D, 0.0));
    });
}

double orifice_t_d(RunContext& ctx, double thickness, double bore) {
    if (bore == 0.0) {
        ctx.log_error("Error ! Unknown orifice bore. Assume t/d=0.");
        return 0.0;
    }
    return thickness / bore;
}

double orifice_dPratio(RunContext& ctx, std::string_view type, double b) {
    return trapped(ctx, "Error! In orifice dPratio function= ", [&] {
        double r = 0.0;
        switch (meter(type)) {
            case Meter::Orifice:
            case Meter::Quadrant: r = 1.0 - 0.24 * b - 0.52 * b * b - 0.16 * b * b * b; break;
            case Meter::Nozzle: r = 1.0 + 0.014 * b - 2.06 * b * b + 1.18 * b * b * b; break;
            case Meter::Venturi: r = 0.436 - 0.86 * b + 0.59 * b * b; break;
            case Meter::Unknown: break;
        }
        return checked(r) <= 1e-06 ? 1e-06 : r;
    });
}

double orifice_C(RunContext& ctx, std::string_view type, double b, double t_d, double Re) {
    return trapped(ctx, "Error! In orifice C function = ", [&]() -> double {
        const double b4 = pow4(b);
        if (1.0 - b4 <= 0.0) return 1.0;
        switch (meter(type)) {
            case Meter::Orifice: {
                const double T = t_d == 0.0 ? 1.0 : 1.0 + 0.33 / (1.0 + exp_safe(-(t_d - 0.55) / 0.1));
                return checked((0.598 + 0.01 * b + 0.518 * checked_pow(b, 4.425)) * std::sqrt(std::abs(1.0 - b4)) * T);
            }
            case Meter::Quadrant:
                return checked(0.7746 - 0.1334 * checked_pow(b, 2.1) + 1.4098 * b4 * b4 + 0.0675 * b4 / (1.0 - b4) +
                               0.3865 * b * b * b);
            case Meter::Nozzle: return 0.9975 - checked_div(6.53 * checked_sqrt(b), checked_sqrt(Re));
            case Meter::Venturi: return 0.985;
            case Meter::Unknown: break;
        }
        return 0.0;
    });
}

double orifice_Rf(RunContext& ctx, const Header& gen, std::string_view type, double b, double dP, double P) {
    return trapped(ctx, "Error! In orifice Rf function= ", [&] {
        const double Pabs = std::max(gen.PATM + P, 1e-06);
        const double R = 1.0 - checked_div(std::abs(dP) / Pabs, orifice_dPratio(ctx, type, b));
        return std::clamp(R, 0.0, 1.0);
    });
}

double orifice_Rc(RunContext& ctx, double b, double k) {
    return trapped(ctx, "Error! In orifice Rc function= ", [&] {
        k = orifice_k(k);
        const double e = k / (k - 1.0);
        const double R0 = checked_pow(2.0 / (k + 1.0), e);
        const double a = (k - 1.0) / (k + 1.0) * pow4(b);
        double R = R0;
        for (int i = 0; i < 20; ++i) {
            const double Rn = checked_div(R0, checked_pow(1.0 - a * checked_pow(R, 2.0 / k), e));
            if (std::abs(R - Rn) < 0.0001) break;
            R = Rn;
        }
        return R;
    });
}

double orifice_Y1(RunContext& ctx, std::string_view type, double t_d, double LF, double b, double Rf, double k) {
    return trapped(ctx, "Error! In orifice Y1 function= ", [&] {
        k = orifice_k(k);
        const double b4 = pow4(b);
        double Y = 1.0;
        if (LF > kLiquidLimit) {
            Y = 1.0;
        } else if (thin_plate(type, t_d)) {
            constexpr double Rl = 0.63;
            const double k2 = k >= 1.167 ? 1.4 : 1.2 * k;
            const double a = 0.41 + 0.35 * b4;
            Y = Rf >= Rl ? 1.0 - a * (1.0 - Rf) / k : 1.0 - a * (1.0 - Rl) / k - 1.2 * a * (Rl - Rf) / k2;
        } else {
            Rf = std::max(Rf, orifice_Rc(ctx, b, k));
            if (std::abs(Rf - 1.0) >= 1e-06 && std::abs(b - 1.0) >= 1e-06) {
                const double r2k = checked_pow(Rf, 2.0 / k);
                const double Y0 = (r2k * k / (k - 1.0)) * (1.0 - checked_pow(Rf, (k - 1.0) / k)) / (1.0 - Rf);
                Y = checked_sqrt(checked_div((1.0 - b4) * Y0, 1.0 - b4 * r2k));
            }
        }
        return std::clamp(checked(Y), 0.001, 1.0);
    });
}

bool orifice_IsCritical(RunContext& ctx, const Header& gen, std::string_view type, double t_d, double b, double dP,
                        double P, double W, double LF, double k) {
    return trapped(ctx, "Error! In orifice IsCritical function= ", [&] {
        if (LF > kLiquidLimit) return false;
        if (sgn(dP) * sgn(W) < 0.0) return false;
        if (thin_plate(type, t_d)) return false;
        return orifice_Rf(ctx, gen, type, b, dP, P) < orifice_Rc(ctx, b, k);
    });
}

namespace {

// What the meter equation needs at a trial beta.
struct MeterState {
    double bore, t_d, Y, C, Rinv, ratio;
};

MeterState meter_state(RunContext& ctx, const Header& gen, const FO& fo, const OrificeFluid& f, double b) {
    MeterState s{};
    s.bore = orifice_bore(ctx, fo.HOLES, b, f.D);
    s.t_d = orifice_t_d(ctx, fo.THICK, s.bore);
    const double Rf = orifice_Rf(ctx, gen, fo.TYPE, b, fo.DP.value, f.Pin);
    s.Y = orifice_Y1(ctx, fo.TYPE, s.t_d, f.LF, b, Rf, f.K);
    const double visc = Viscosity(ctx, f.LF, f.ViscV, f.ViscL, f.DenV, f.DenL);
    const double re = Re(ctx, f.W, f.D, f.D, visc);
    s.C = orifice_C(ctx, fo.TYPE, b, s.t_d, re);
    s.Rinv = equivalent_inv_density(ctx, gen.MFODEN, f.LF, f.DenL, f.DenV, s.Y);
    s.ratio = orifice_dPratio(ctx, fo.TYPE, b);
    return s;
}

}  // namespace

double Orifice_W2(RunContext& ctx, const Header& gen, const FO& fo, const OrificeFluid& f) {
    return trapped(ctx, "Error! In Orifice W2 function= ", [&] {
        const double b = fo.BETA.value;
        if (b == 0.0) return kBlindPlate;
        if (!(b > 0.0 && b <= 1.0)) return kNoPlate;
        const MeterState s = meter_state(ctx, gen, fo, f, b);
        const double b4 = pow4(b);
        const double D4 = pow4(f.D);
        return checked(kOrificeHead * s.ratio * checked_div(1.0 - b4, b4 * s.C * s.C * D4) * s.Rinv);
    });
}

double Orifice_W2_choked(RunContext& ctx, const Header& gen, const FO& fo, const OrificeFluid& f) {
    return trapped(ctx, "Error! In Orifice W2 choked function= ", [&] {
        const double Rc = orifice_Rc(ctx, fo.BETA.value, f.K);
        const double ratio = orifice_dPratio(ctx, fo.TYPE, fo.BETA.value);
        if (f.W == 0.0 || Rc >= 1.0 || ratio <= 0.0) return kBlindPlate;
        const double C = Orifice_W2(ctx, gen, fo, f);
        return (1.0 / f.W) * checked_sqrt((gen.PATM + f.Pin) * C / (1.0 - Rc) / ratio);
    });
}

void orifice_beta(RunContext& ctx, const Header& gen, FO& fo, const OrificeFluid& f, int case_no) {
    trapped(ctx, "Error! In orifice beta function= ", [&] {
        const double entry = fo.BETA.value;
        if (std::abs(f.W) <= 1e-09 || std::abs(fo.DP.value) <= 1e-09) {
            fo.BETA.value = 1.0;
            fo.C = 1.0;
            fo.YIN = 1.0;
            fo.BORE.value = f.D;
            fo.CHOKE = 0;
            fo.DPF.value = 0.0;
        } else {
            // One substitution: the beta whose meter passes W at the drop,
            // with the meter's data taken at the trial beta.
            struct Step {
                MeterState s;
                bool critical;
                double dPu, next;
            };
            auto step = [&](double b) {
                Step r{meter_state(ctx, gen, fo, f, b), false, std::abs(fo.DP.value), 0.0};
                r.critical = orifice_IsCritical(ctx, gen, fo.TYPE, r.s.t_d, b, fo.DP.value, f.Pin, f.W, f.LF, f.K);
                if (r.critical) {
                    const double Rc = orifice_Rc(ctx, b, f.K);
                    r.dPu = std::min(r.dPu, std::abs((1.0 - Rc) * (gen.PATM + f.Pin) * r.s.ratio));
                }
                const double v = kOrificeHead * r.s.ratio * (1.0 - pow4(b)) / r.dPu / (r.s.C * r.s.C) / pow4(f.D) *
                                 r.s.Rinv * f.W * f.W;
                r.next = std::pow(std::clamp(checked(v), 0.0, 1.0), 0.25);
                return r;
            };
            double b0 = 0.7, b2 = b0;
            Step last{};
            for (int round = 0; round < 500; ++round) {
                const Step s1 = step(b0);
                last = step(s1.next);
                b2 = last.next;
                const double second = b2 - 2.0 * s1.next + b0;
                if (std::abs(second) <= 1e-06) break;
                b0 -= (s1.next - b0) * (s1.next - b0) / second;
            }
            fo.BETA.value = b2;
            fo.C = last.s.C;
            fo.YIN = last.s.Y;
            fo.BORE.value = last.s.bore;
            fo.CHOKE = last.critical ? -1 : 0;
            fo.DPF.value = b2 != 1.0 ? sgn(fo.DP.value) * last.dPu / last.s.ratio : 0.0;
        }
        if (spec_is(fo.BETA.spec, case_no, 'C')) {
            if (std::abs(fo.BETA.value - entry) > 1e-05) {
                ctx.log_error("Warning! Orifice Beta calc differ from spec. Reset to orignal value.");
                fo.BETA.value = entry;
            }
        } else if (is_specified(fo.BETA.spec, case_no) &&
                   std::abs(spec_value(fo.BETA.spec, case_no) - fo.BETA.value) > 1e-05) {
            ctx.log_error("Warning! Orifice Beta Calc differ from Input.");
        }
        if (is_specified(fo.BORE.spec, case_no) &&
            std::abs(spec_value(fo.BORE.spec, case_no) - fo.BORE.value) > 1e-05 * std::abs(fo.BORE.value))
            ctx.log_error("Warning! Orifice Bore Calc differ from Input.");
        if (is_specified(fo.DPF.spec, case_no) &&
            std::abs(spec_value(fo.DPF.spec, case_no) - fo.DPF.value) > 0.001 * std::abs(fo.DPF.value))
            ctx.log_error("Warning! Orifice flange dP Calc differ from Input.");
        return true;
    });
}

OrificeFluid refresh_orifice(RunContext& ctx, Project& p, FO& fo, int iter, int case_no) {
    const OrificeFluid f = orifice_properties(ctx, p, fo);
    if (spec_is(fo.BETA.spec, case_no, 'C')) return f;
    if (is_specified(fo.BETA.spec, case_no)) {
        if (iter == 1) fo.BETA.value = spec_value(fo.BETA.spec, case_no);
    } else if (is_specified(fo.BORE.spec, case_no)) {
        fo.BETA.value = orifice_beta_from_bore(fo.HOLES, spec_value(fo.BORE.spec, case_no), f.D);
    } else if (is_specified(fo.DPF.spec, case_no)) {
        if ((iter == 1 && !ctx.resume_run) || fo.BETA.value == 0.0)
            fo.BETA.value = 0.7;
        else
            orifice_beta(ctx, p.gen, fo, f, case_no);
    }
    return f;
}

void final_orifice(RunContext& ctx, Project& p, FO& fo, int case_no) {
    orifice_beta(ctx, p.gen, fo, orifice_properties(ctx, p, fo), case_no);
}

}  // namespace velm
