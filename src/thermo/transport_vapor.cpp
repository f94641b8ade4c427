// Vapor-phase properties: compressibility, viscosity, thermal conductivity
// (declared in transport.hpp).
#include <algorithm>
#include <cmath>

#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"
#include "thermo/transport.hpp"
#include "thermo/srk.hpp"
#include "thermo/transport_support.hpp"

namespace velm {

using namespace transport_support;

namespace {

constexpr const char* kTrapWords = "Error! Err = ";
constexpr double kWaterMW = 18.015;  // kg/kmol

// Yoon and Thodos, "Viscosity of nonpolar gaseous mixtures at normal
// pressures", AIChE J. 16 (1970) 300: mu xi 1e5 = 1 + a Tr^b - c exp(-d Tr)
// + e exp(-f Tr), mu in cP, xi = Tc^(1/6) / (M^(1/2) Pc^(2/3)). The paper
// takes Pc in atm; here it is in bar, which puts the result 0.9 % higher.
// Hydrogen and helium have constants of their own.
struct YoonThodos {
    double a, b, c, d, e, f;
};
constexpr YoonThodos kYoonThodosGeneral{46.1, 0.618, 20.4, 0.449, 19.4, 4.058};
constexpr YoonThodos kYoonThodosHydrogen{47.65, 0.657, 20.0, 0.858, 19.0, 3.995};
constexpr YoonThodos kYoonThodosHelium{52.57, 0.656, 18.9, 1.144, 17.9, 5.182};

double yoon_thodos(const YoonThodos& k, double tr, double xi) {
    const double s = 1.0 + k.a * checked_pow(tr, k.b) - k.c * SafeExp(-k.d * tr) + k.e * SafeExp(-k.f * tr);
    return checked_div(s * 1e-05, xi);
}

// xi = Tc^(1/6) / (M^(1/2) (Pc/100)^(2/3)): Tc K, M kg/kmol, Pc kPa.
double viscosity_parameter(double tc, double mw, double pc) {
    return checked_div(checked_pow(tc, 1.0 / 6.0), checked_sqrt(mw) * checked_pow(pc / 100.0, 2.0 / 3.0));
}

// Low-pressure viscosity of one component, cP, or 0 without TC, MW, PC, ZC.
// Water takes IAPWS steam at 100 kPa whatever the pressure of the mixture.
double low_pressure_viscosity(RunContext& ctx, double T, const CompProp& c) {
    const double tr = Tred(ctx, T, c.TBP, c.TC);
    if (c.TC == 0.0f || c.MW == 0.0f || c.PC == 0.0f || c.ZC == 0.0f) return 0.0;
    const double xi = viscosity_parameter(c.TC, c.MW, c.PC);
    if (same_word(c.Name, "HELIUM-4")) return yoon_thodos(kYoonThodosHelium, tr, xi);
    if (same_word(c.Name, "HYDROGEN")) return yoon_thodos(kYoonThodosHydrogen, tr, xi);
    if (same_word(c.Name, "WATER")) {
        const double tw = water_vapor_temperature(T);
        const double sv = Steam97(ctx, tw, 0.1, kSteamVapor, kSteamVolume);
        return sv != 0.0 ? Visc97(tw, 1.0 / sv) : 0.0;
    }
    return yoon_thodos(kYoonThodosGeneral, tr, xi);
}

}  // namespace

double VapZ(RunContext& ctx, double T, double P, std::span<const double> y, const std::vector<CompProp>& comps,
            const std::vector<std::vector<double>>& kij) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        double z = 0.0;
        if (IsPureWater(y, comps)) {
            const double tw = water_vapor_temperature(T);
            const double v = Steam97(ctx, tw, P / 1000.0, kSteamVapor, kSteamVolume);
            if (v != 0.0) z = v * P * kWaterMW / kGasConstant / tw;
        } else {
            const double A = SRK_Amix(ctx, T, P, y, comps, kij);
            const double B = SRK_Bmix(ctx, T, P, y, comps);
            z = SRK_Z(ctx, kVapor, A, B);
        }
        if (z == 0.0) {
            ctx.log_error("Error! Vapor Z unknown. Assume 1.");
            z = 1.0;
        }
        return z;
    });
}

// Herning-Zipperer: mu = sum(y mu M^0.5) / sum(y M^0.5). Dean and Stiel
// (AIChE J. 11 (1965) 526) for the dense-gas excess of a nonpolar mixture:
// (mu - mu0) xi_m = 1.08e-4 (exp(1.439 rho_r) - exp(-1.11 rho_r^1.858)), with
// the molar means of Tc, Pc and M in xi_m and rho_r = rho sum(y Vc/M), Vc from
// ZC R TC / PC. Valid for rho_r up to about 2.5.
double VapViscosity(RunContext& ctx, double T, double P, std::span<const double> y, double vapden,
                    const std::vector<CompProp>& comps) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        if (IsPureWater(y, comps))
            return water_property(ctx, water_vapor_temperature(T), P, kSteamVapor, Visc97, 0.01,
                                  "Error! Steam visc unknown. Assume 0.01.");
        const std::size_t n = comp_count(y, comps);
        double weighted = 0.0, weights = 0.0;
        for (std::size_t i = 1; i < n; ++i) {
            const CompProp& c = comps[i];
            double v = low_pressure_viscosity(ctx, T, c);
            if (v == 0.0) {
                v = 0.01;
                if (y[i] > 0.0) ctx.log_error("Error! Vapor visc parameters missing. Assume 0.01 cP.");
            }
            const double root_mw = checked_sqrt(c.MW);
            weighted += v * y[i] * root_mw;
            weights += y[i] * root_mw;
        }
        double mu = checked_div(weighted, weights);

        double mm = 0.0, tm = 0.0, pm = 0.0, vr = 0.0;
        for (std::size_t i = 1; i < n; ++i) {
            const CompProp& c = comps[i];
            mm += y[i] * c.MW;
            tm += y[i] * c.TC;
            pm += y[i] * c.PC;
            vr += checked_div(checked_div(kGasConstant * y[i] * c.ZC * c.TC, c.PC), c.MW);  // m3/kg
        }
        const double xim = viscosity_parameter(tm, mm, pm);
        const double dr = vr * vapden;
        mu += checked_div(0.000108 * (SafeExp(1.439 * dr) - SafeExp(-1.11 * checked_pow(dr, 1.858))), xim);
        return mu;
    });
}

// Low-pressure hydrocarbon gases: k = 0.00231 + 0.42624/M + 1.9891/M^2
// + (T - 255.4) (0.00010208 + 0.00013047/M + 0.00574/M^2), k W/m/K, M the
// molar mass in kg/kmol, T in K taken as at least 260 K (255.4 K is 0 F, the
// origin of the correlation's temperature scale). Good to a few percent for
// nitrogen and C3+ gases; light gases (methane, hydrogen) read high.
double VapConductivity(RunContext& ctx, double T, double P, std::span<const double> y,
                       const std::vector<CompProp>& comps) {
    return trapped(ctx, kTrapWords, [&]() -> double {
        if (IsPureWater(y, comps))  // at the density of the liquid-side equation
            return water_property(ctx, water_liquid_temperature(T, 0.1), P, kSteamLiquid, Cond97, 0.1,
                                  "Error! Steam conductivity unknown. Assume 0.1.");
        const double mm = MixMW(y, comps);
        const double tt = std::max(260.0, T);
        const double inv = checked_div(1.0, mm);
        return 0.00231 + 0.42624 * inv + 1.9891 * inv * inv +
               (tt - 255.4) * (0.00010208 + 0.00013047 * inv + 0.00574 * inv * inv);
    });
}

}  // namespace velm
