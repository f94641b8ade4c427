// Helpers the transport properties share with the SRK equation of state:
// reduced temperature with its fall-backs, the clipped exponential, the mixture
// molar mass, the nearly-pure-water test, and the SRK mixture parameters with
// the closed-form compressibility root. Units: T K, P kPa absolute, molar mass
// kg/kmol; R = 8.314 kJ/kmol/K.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "model/context.hpp"
#include "thermo/components.hpp"

namespace velm::transport_support {

inline constexpr double kR = 8.314;  // kJ/kmol/K, as everywhere in the flash code

// The number of components a composition and the records have in common,
// plus one: loops run over 1..count-1.
inline std::size_t comp_count(std::span<const double> x, const std::vector<CompProp>& comps) {
    return x.size() < comps.size() ? x.size() : comps.size();
}

// Water outside the range of the IAPWS-IF97 liquid equations is evaluated just
// inside it: above the critical 647.096 K at 647.096 - below_critical, below
// 273.15 K at 273.16 K.
inline double water_liquid_temperature(double T, double below_critical) {
    if (T > 647.096) return 647.096 - below_critical;
    if (T < 273.15) return 273.15 + 0.01;
    return T;
}

// Steam below 273.15 K is evaluated at 273.16 K.
inline double water_vapor_temperature(double T) { return T < 273.15 ? 273.15 + 0.01 : T; }

// A transport property of water, prop(T K, rho kg/m3), at the IAPWS-IF97
// density of the phase (0 liquid, 1 vapor) at T and P (kPa); fallback, with
// the message logged, where the steam tables give no volume.
double water_property(RunContext& ctx, double T, double P, int phase, double (*prop)(double, double),
                      double fallback, const char* missing);

// kij(i, j), 0 outside the matrix.
double kij_at(const std::vector<std::vector<double>>& kij, std::size_t i, std::size_t j);

// True when name, without surrounding blanks and regardless of case, is word
// (word in upper case).
bool name_is(std::string_view name, std::string_view word);

// exp(x) with x clipped to -200..200, so the result is always finite.
double safe_exp(double x);

// T over the critical temperature TC (K). Without TC, the critical
// temperature is estimated as 2.7 TBP^0.9 ("Warning! Critical temperature
// estimated."), or without TBP taken as 500 K ("Error! Critical temperature
// missing. Assume 500 K.").
double reduced_temperature(RunContext& ctx, double T, double TBP, double TC);

// Molar mass of the mixture, kg/kmol: sum of x(i) MW(i).
double mixture_molar_mass(std::span<const double> x, const std::vector<CompProp>& comps);

// True when one component named "Water" has a mole fraction above 0.999.
bool is_nearly_pure_water(std::span<const double> x, const std::vector<CompProp>& comps);

// Dimensionless SRK mixture parameters A = a P / (R T)^2 and B = b P / (R T)
// (Soave 1972) with the quadratic mixing rule and kij; Omega_a 0.42747,
// Omega_b 0.08664, m = 0.48 + 1.574 w - 0.176 w^2.
double srk_mixture_a(RunContext& ctx, double T, double P, std::span<const double> x,
                     const std::vector<CompProp>& comps, const std::vector<std::vector<double>>& kij);
double srk_mixture_b(RunContext& ctx, double T, double P, std::span<const double> x,
                     const std::vector<CompProp>& comps);

// The root of Z^3 - Z^2 + (A - B - B^2) Z - A B = 0 for the phase (0 liquid:
// the smallest positive root, 1 vapor: the largest root), by Cardano's closed
// form. 1000000.0 for a liquid without a positive root.
double srk_compressibility_root(RunContext& ctx, int phase, double A, double B);

}  // namespace velm::transport_support
