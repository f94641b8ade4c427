// Helpers of the transport properties beyond those they share with the SRK
// equation of state (srk.hpp): the common length of a composition and the
// component records, the temperatures at which water outside the IAPWS-IF97
// range is evaluated, and a water property at the steam-table density.
// Units: T K, P kPa absolute.
#pragma once

#include <span>
#include <vector>

#include "model/context.hpp"
#include "thermo/components.hpp"

namespace velm::transport_support {

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

}  // namespace velm::transport_support
