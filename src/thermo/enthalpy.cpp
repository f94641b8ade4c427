#include "thermo/enthalpy.hpp"

#include <cmath>
#include <string>

#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"

namespace velm {

namespace {

std::size_t comp_count(CompSpan comps) { return comps.empty() ? 0 : comps.size() - 1; }

double frac(Fractions x, std::size_t i) { return i < x.size() ? x[i] : 0.0; }

// Ideal gas enthalpy of the mixture, kJ/kmol: the integral of Cp from 0 K.
double ideal_enthalpy(RunContext& ctx, double T, Fractions x, CompSpan comps) {
    double h = 0.0;
    for (std::size_t i = 1; i <= comp_count(comps); ++i) {
        const CompProp& c = comps[i];
        const double hi = T * (c.CpA + T * (c.CpB / 2.0 + T * (c.CpC / 3.0 + T * (c.CpD / 4.0 + T * c.CpE / 5.0))));
        if (hi == 0.0) ctx.log_error("Error! No ideal Cp coefficients for comp = " + std::to_string(i));
        h += frac(x, i) * hi;
    }
    return h;
}

// Ideal gas entropy of the mixture at 101.325 kPa with the entropy of mixing,
// kJ/kmol/K.
double ideal_entropy(double T, Fractions x, CompSpan comps) {
    const double lnT = checked_log(T);
    double e = 0.0;
    for (std::size_t i = 1; i <= comp_count(comps); ++i) {
        const CompProp& c = comps[i];
        const double si = c.CpA * lnT + T * (c.CpB + T * (c.CpC / 2.0 + T * (c.CpD / 3.0 + T * c.CpE / 4.0)));
        e += frac(x, i) * si;
    }
    for (std::size_t i = 1; i <= comp_count(comps); ++i)
        if (frac(x, i) > 0.0) e -= frac(x, i) * kGasConstant * std::log(frac(x, i));
    return e;
}

// Sum over pairs of x_i x_j (1 - kij) sqrt(Ai Aj) (base + d_i + d_j), d the
// temperature derivative term of sqrt(alpha): base 1 gives (a - T da/dT) in
// the reduced form of the enthalpy departure, base 0 gives -T da/dT for the
// entropy departure.
double attraction_sum(const SrkState& st, Fractions x, double base) {
    double sum = 0.0;
    for (std::size_t i = 1; i <= st.n; ++i) {
        double row = 0.0;
        for (std::size_t j = 1; j <= st.n; ++j) row += frac(x, j) * st.Aij[i][j] * (base + st.dalpha[i] + st.dalpha[j]);
        sum += frac(x, i) * row;
    }
    return sum;
}

}  // namespace

HMethod h_method(std::string_view name) {
    if (same_word(name, "IDEAL")) return HMethod::Ideal;
    if (same_word(name, "SRK")) return HMethod::Srk;
    if (same_word(name, "WS97")) return HMethod::Ws97;
    return HMethod::Unknown;
}

double HeatVap(RunContext& ctx, double T, Fractions x, CompSpan comps) {
    double h = 0.0;
    for (std::size_t i = 1; i <= comp_count(comps); ++i) {
        const CompProp& c = comps[i];
        const double Tr = Tred(ctx, T, c.TBP, c.TC);
        const double Trb = Tred(ctx, c.TBP, c.TBP, c.TC);
        if (Tr >= 1.0) continue;
        if (c.HVap == 0.0) ctx.log_error("Error! Missing heat of vaporization.");
        h += c.HVap * frac(x, i) * checked_pow(checked_div(1.0 - Tr, 1.0 - Trb), 0.38);
    }
    return h;
}

double enthalpy_at(RunContext& ctx, HMethod method, int phase, double T, double P, Fractions x, CompSpan comps,
                   const Kij& kij, SrkState& cache) {
    const double mw = MixMW(x, comps);
    const double hid = ideal_enthalpy(ctx, T, x, comps);
    switch (method) {
        case HMethod::Ideal: {
            const double d = phase == kLiquid ? -HeatVap(ctx, T, x, comps) : 0.0;
            return checked_div(hid + d, mw);
        }
        case HMethod::Ws97:
            if (!IsPureWater(x, comps)) ctx.log_error("Error! Stream not pure water with WS97 enthalpy method.");
            return Steam97(ctx, T, P / 1000.0, phase, kSteamEnthalpy);
        case HMethod::Srk: {
            const SrkState& st = srk_state(ctx, cache, T, P, comps, kij);
            SrkMixture mix;
            srk_mixture(st, x, mix);
            const double Z = SRK_Z(ctx, phase, mix.A, mix.B);
            const double sum = attraction_sum(st, x, 1.0);
            const double d = kGasConstant * T * ((Z - 1.0) - checked_div(sum, mix.B) * srk_log_attraction(Z, mix.B));
            return checked_div(hid + d, mw);
        }
        case HMethod::Unknown:
            break;
    }
    return 0.0;
}

double entropy_at(RunContext& ctx, HMethod method, int phase, double T, double P, Fractions x, CompSpan comps,
                  const Kij& kij, SrkState& cache) {
    if (method == HMethod::Ws97) {
        if (!IsPureWater(x, comps)) ctx.log_error("Error! Stream not pure water with WS97 entropy method.");
        return Steam97(ctx, T, P / 1000.0, phase, kSteamEntropy);
    }
    const double e = ideal_entropy(T, x, comps);
    const SrkState& st = srk_state(ctx, cache, T, P, comps, kij);
    SrkMixture mix;
    srk_mixture(st, x, mix);
    const double Z = SRK_Z(ctx, phase, mix.A, mix.B);
    const double sum2 = attraction_sum(st, x, 0.0);
    const double d = (srk_log_free_volume(Z, mix.B) - checked_div(sum2, mix.B) * srk_log_attraction(Z, mix.B) -
                      checked_log(P / 101.325)) *
                     kGasConstant;
    return checked_div(e + d, MixMW(x, comps));
}

double Enthalpy(RunContext& ctx, std::string_view method, int phase, double T, double P, Fractions x,
                CompSpan comps, const Kij& kij) {
    SrkState cache;
    return enthalpy_at(ctx, h_method(method), phase, T, P, x, comps, kij, cache);
}

double Entropy(RunContext& ctx, std::string_view method, int phase, double T, double P, Fractions x,
               CompSpan comps, const Kij& kij) {
    SrkState cache;
    return entropy_at(ctx, h_method(method), phase, T, P, x, comps, kij, cache);
}

double CpCv(RunContext& ctx, std::string_view method, double T, double P, Fractions x, CompSpan comps,
            const Kij& kij) {
    const HMethod hm = h_method(method);
    SrkState cache;
    const double mw = MixMW(x, comps);
    const double h1 = enthalpy_at(ctx, hm, kVapor, T, P, x, comps, kij, cache);
    const double h2 = enthalpy_at(ctx, hm, kVapor, T + 1.0, P, x, comps, kij, cache);
    const double cp = (h2 - h1) * mw;
    return cp > kGasConstant ? cp / (cp - kGasConstant) : 0.0;
}

}  // namespace velm
