// Liquid-phase properties: density, viscosity, surface tension, thermal
// conductivity (declared in transport.hpp).
#include <cmath>
#include <string>

#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"
#include "thermo/transport.hpp"
#include "thermo/srk.hpp"
#include "thermo/transport_support.hpp"

namespace velm {

using namespace transport_support;

namespace {

constexpr const char* kTrapWords = "Error! Err = ";

// Thomson, Brobst and Hankinson, "An improved correlation for densities of
// compressed liquids and liquid mixtures", AIChE J. 28 (1982) 671: the Tait
// parameter B/Pc = -1 + a tau^(1/3) + b tau^(2/3) + d tau + e tau^(4/3),
// tau = 1 - Tr, e = exp(e0 + e1 w + e2 w^2), and C = j + k w.
constexpr double kThbA = -9.070217;
constexpr double kThbB = 62.45326;
constexpr double kThbD = -135.1102;
constexpr double kThbE0 = 4.79594;
constexpr double kThbE1 = 0.250047;
constexpr double kThbE2 = 1.14188;
constexpr double kThbJ = 0.0861488;
constexpr double kThbK = 0.0344483;

// The same paper's generalized vapor pressure of a mixture, ln Pr = a0 + w a1,
// with its decimal-log coefficients multiplied out for the natural logarithm.
constexpr double kPv0[4] = {6.131437, -6.306621, -1.55663, 0.175184};   // 1, 1/Tr, ln Tr, Tr^6
constexpr double kPv1[4] = {14.59501, -15.01201, -12.652969, 0.417};

// Kouzel's pressure correction of liquid viscosity (1965, as adopted by the API
// Technical Data Book): log10(mu_P / mu) = p (-0.0102 + 0.04042 mu^0.181), with
// p the gauge pressure in thousands of psi and mu in cP; for hydrocarbon liquids.
constexpr double kKouzel0 = -0.0102;
constexpr double kKouzel1 = 0.04042;
constexpr double kKouzelExponent = 0.181;
constexpr double kKpaPerPsi = 6.895;

// Critical molar volume from ZC R TC / PC, m3/kmol.
double critical_volume(const CompProp& c) { return c.ZC * kGasConstant * c.TC / c.PC; }

void log_density_data_missing(RunContext& ctx, std::size_t i) {
    ctx.log_error("Error! Liquid density paramaters missing for component = " + std::to_string(i));
}

// Molar liquid volume of a mixture, m3/kmol, below 0.95 of its pseudocritical
// temperature: Rackett with Spencer-Danner ZRA, Chueh-Prausnitz Tcm, and the
// Thomson-Brobst-Hankinson correction from the mixture vapor pressure to P.
// From 0.95 on, the SRK liquid root. A component without LDen or TDen adds no
// ZRA, Tc, Pc or acentric factor of its own, yet with ZC, TC and PC it still
// counts in the volume fractions and as the partner j of the Tcm sum; one
// without ZC, TC or PC counts in none of them.
double mixture_liquid_molar_volume(RunContext& ctx, double T, double P, std::span<const double> x,
                                   const std::vector<CompProp>& comps,
                                   const std::vector<std::vector<double>>& kij) {
    const std::size_t n = comp_count(x, comps);
    double vm = 0.0;  // molar mean critical volume, the weight of the volume fractions
    for (std::size_t i = 1; i < n; ++i) {
        const CompProp& c = comps[i];
        if (c.ZC != 0.0f && c.TC != 0.0f && c.PC != 0.0f) vm += x[i] * critical_volume(c);
        else log_density_data_missing(ctx, i);
    }

    double zra = 0.0, tcm = 0.0, sv = 0.0, vc = 0.0, w = 0.0;
    for (std::size_t i = 1; i < n; ++i) {
        const CompProp& c = comps[i];
        if (c.LDen == 0.0f || c.TDen == 0.0f || c.ZC == 0.0f || c.TC == 0.0f || c.PC == 0.0f) {
            log_density_data_missing(ctx, i);
            continue;
        }
        // ZRA from the reference density: Z at TDen = ZRA^(1 + (1 - Tr)^(2/7)).
        const double trd = Tred(ctx, c.TDen, c.TBP, c.TC);
        const double e = 1.0 / (1.0 + checked_pow(1.0 - trd, 2.0 / 7.0));
        zra += checked_pow((c.MW / c.LDen / kGasConstant) * c.PC / c.TC, e) * x[i];

        const double vi = critical_volume(c);
        const double phi_i = checked_div(vi * x[i], vm);
        const double si = checked_pow(vi, 1.0 / 6.0);
        for (std::size_t j = 1; j < n; ++j) {
            const CompProp& cj = comps[j];
            const double vj = cj.PC != 0.0f ? critical_volume(cj) : 0.0;
            const double phi_j = checked_div(vj * x[j], vm);
            const double sj = checked_pow(vj, 1.0 / 6.0);
            const double r = checked_div(2.0 * si * sj, si * si + sj * sj);
            const double k = 1.0 - r * r * r;  // Chueh-Prausnitz 1 - kij from critical volumes
            tcm += phi_i * (1.0 - k) * phi_j * checked_sqrt(double(c.TC) * cj.TC);
        }
        sv += c.TC * x[i] / c.PC;
        vc += vi * x[i];
        w += c.Acc * x[i];
    }

    const double tr = Tred(ctx, T, 0.0, tcm);
    const double pcm = checked_div(kGasConstant * zra * tcm, vc);
    if (tr >= 0.95) {
        const double A = SRK_Amix(ctx, T, P, x, comps, kij);
        const double B = SRK_Bmix(ctx, T, P, x, comps);
        return checked_div(SRK_Z(ctx, kLiquid, A, B) * kGasConstant * T, P);
    }

    const double tau = 1.0 - tr;
    double vs = kGasConstant * sv * checked_pow(zra, 1.0 + checked_pow(tau, 2.0 / 7.0));
    const double ln_tr = checked_log(tr);
    const double tr6 = std::pow(tr, 6);
    const double a0 = kPv0[0] + kPv0[1] / tr + kPv0[2] * ln_tr + kPv0[3] * tr6;
    const double a1 = kPv1[0] + kPv1[1] / tr + kPv1[2] * ln_tr + kPv1[3] * tr6;
    const double pv = pcm * SafeExp(w * a1 + a0);

    const double t3 = std::cbrt(tau);
    const double b_tait = (-1.0 + kThbA * t3 + kThbB * t3 * t3 + kThbD * tau +
                           SafeExp(kThbE0 + kThbE1 * w + kThbE2 * w * w) * tau * t3) * pcm;
    const double c_tait = kThbJ + kThbK * w;
    const double ratio = checked_div(b_tait + P, b_tait + pv);
    if (ratio > 0.0) vs *= 1.0 - c_tait * std::log(ratio);
    else ctx.log_error("Error! Correcting liquid density for pressure.");
    return vs;
}

// Kendall-Monroe: mu^(1/3) = sum of x(i) mu(i)^(1/3), mu in cP.
double cube_root_mixed_viscosity(RunContext& ctx, double T, std::span<const double> x,
                                 const std::vector<CompProp>& comps) {
    double sum = 0.0;
    for (std::size_t i = 1; i < comp_count(x, comps); ++i) {
        const CompProp& c = comps[i];
        double v = 1.0;
        if (c.ViscType == 3.0f) {
            // ln(mu/cP) = A + B/T + C T + D T^2
            v = SafeExp(c.ViscA + checked_div(c.ViscB, T) + c.ViscC * T + c.ViscD * T * T);
        } else if (c.ViscType == 4.0f) {
            // ln(mu/cP) = A + B/T + C ln T + D T
            v = SafeExp(c.ViscA + checked_div(c.ViscB, T) + c.ViscC * checked_log(T) + c.ViscD * T);
        } else {
            ctx.log_error("Error! Liquid viscosity paramaters missing. Assume 1.0.");
        }
        sum += x[i] * std::cbrt(v);
    }
    return sum * sum * sum;
}

}  // namespace

double LiqDensity(RunContext& ctx, double T, double P, std::span<const double> x,
                  const std::vector<CompProp>& comps, const std::vector<std::vector<double>>& kij) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        double vs = 0.0;  // m3/kg
        if (IsPureWater(x, comps)) {
            vs = Steam97(ctx, water_liquid_temperature(T, 0.1), P / 1000.0, kSteamLiquid, kSteamVolume);
        } else {
            const double molar = mixture_liquid_molar_volume(ctx, T, P, x, comps, kij);
            vs = checked_div(molar, MixMW(x, comps));
        }
        if (vs == 0.0) {
            ctx.log_error("Error! Calculating liquid density.");
            return 0.0;
        }
        return 1.0 / vs;
    });
}

double LiqViscosity(RunContext& ctx, double T, double P, std::span<const double> x,
                    const std::vector<CompProp>& comps, double patm) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        if (IsPureWater(x, comps))
            return water_property(ctx, water_liquid_temperature(T, 0.01), P, kSteamLiquid, Visc97, 1.0,
                                  "Error! Water liq visc unknown. Assume 1.0.");
        double m = cube_root_mixed_viscosity(ctx, T, x, comps);
        const double ksi = ((P - patm) / kKpaPerPsi) / 1000.0;
        const double e = (kKouzel0 + kKouzel1 * checked_pow(m, kKouzelExponent)) * ksi;
        if (e < 100.0) {
            m *= checked_pow(10.0, e);
        } else {
            m *= 1e100;
            ctx.log_error("Error! Liquid viscosity reduce to prevent overflow.");
        }
        return m;
    });
}

// Brock and Bird (AIChE J. 1 (1955) 174) with Miller's Q, as given by Reid,
// Prausnitz and Sherwood, The Properties of Gases and Liquids, 3rd ed. (1977):
// sigma = Pc^(2/3) Tc^(1/3) Q (1 - Tr)^(11/9), Pc in atm, sigma in dyn/cm,
// Q = 0.1207 (1 + Tbr ln Pc / (1 - Tbr)) - 0.281. Mixtures take the molar
// means of Q, Tc and Pc. For nonpolar liquids; water and alcohols read low.
double SurfTension(RunContext& ctx, double T, double, std::span<const double> x,
                   const std::vector<CompProp>& comps) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        if (IsPureWater(x, comps)) return Surf97(water_liquid_temperature(T, 0.1));
        double q = 0.0, tm = 0.0, pm = 0.0;
        for (std::size_t i = 1; i < comp_count(x, comps); ++i) {
            const CompProp& c = comps[i];
            const double trb = Tred(ctx, c.TBP, c.TBP, c.TC);
            const double qi = 0.1207 * (1.0 + checked_log(c.PC / 101.325) * checked_div(trb, 1.0 - trb)) - 0.281;
            q += x[i] * qi;
            tm += x[i] * c.TC;
            pm += x[i] * c.PC;
        }
        const double tr = checked_div(T, tm);
        if (tr < 1.0 && q > 0.0)
            return checked_pow(pm / 101.325, 2.0 / 3.0) * std::cbrt(tm) * q * std::pow(1.0 - tr, 11.0 / 9.0);
        return 0.001;
    });
}

double LiqConductivity(RunContext& ctx, double T, double P, std::span<const double> x,
                       const std::vector<CompProp>& comps) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        if (IsPureWater(x, comps))
            return water_property(ctx, water_liquid_temperature(T, 0.1), P, kSteamLiquid, Cond97, 1.0,
                                  "Error! Water conductivity unknown. Assume 1.0.");
        // k = Tb^0.2904 (0.02551 - 1.982e-5 T), Tb the molar mean normal
        // boiling point in K: hydrocarbon liquids; it falls with T and is
        // zero near 1287 K.
        double tb = 0.0;
        for (std::size_t i = 1; i < comp_count(x, comps); ++i) tb += x[i] * comps[i].TBP;
        return checked_pow(tb, 0.2904) * (0.02551 - 1.982e-05 * T);
    });
}

}  // namespace velm
