// Specific enthalpy and entropy of one phase, and the vapour heat capacity
// ratio, for the program's own flash engine.
//
// Units: T in K, P in kPa absolute; results in kJ/kg and kJ/kg/K. The ideal gas
// heat capacity is Cp = CpA + CpB T + CpC T^2 + CpD T^3 + CpE T^4, kJ/kmol/K;
// the ideal gas at 0 K has enthalpy 0, and entropy is referred to 101.325 kPa.
// Methods (compared without regard to case):
//   "IDEAL"  ideal gas; a liquid is the ideal gas less the latent heat
//            (Watson's correlation from the heat of vaporisation at TBP)
//   "SRK"    ideal gas plus the Soave-Redlich-Kwong departure function
//   "WS97"   water and steam by IAPWS-IF97, on the standard's own reference
// Entropy uses the SRK departure under every method but "WS97".
// These routines do not trap numeric faults: a Fault reaches the calling flash.
#pragma once

#include <string_view>

#include "thermo/srk.hpp"

namespace velm {

enum class HMethod { Ideal, Srk, Ws97, Unknown };
HMethod h_method(std::string_view name);

// Enthalpy of the phase (kLiquid or kVapor) of composition x, kJ/kg; 0 for an
// unknown method. A component whose ideal gas enthalpy is exactly 0 (no Cp
// coefficients) is logged on every call.
double Enthalpy(RunContext& ctx, std::string_view method, int phase, double T, double P, Fractions x,
                CompSpan comps, const Kij& kij);

// Entropy of the phase of composition x, kJ/kg/K.
double Entropy(RunContext& ctx, std::string_view method, int phase, double T, double P, Fractions x,
               CompSpan comps, const Kij& kij);

// Heat of vaporisation of the mixture at T, kJ/kmol: Watson's correlation
// HVap(TBP) ((1 - Tr) / (1 - Trb))^0.38 summed by mole fraction; a component
// at or above its critical temperature adds nothing.
double HeatVap(RunContext& ctx, double T, Fractions x, CompSpan comps);

// Cp/Cv of the vapour of composition x: Cp by a forward difference of 1 K of
// the vapour enthalpy, Cv = Cp - R. 0 when Cp is not above R.
double CpCv(RunContext& ctx, std::string_view method, double T, double P, Fractions x, CompSpan comps,
            const Kij& kij);

// The same at a cached state (see srk_state): the flash routines evaluate
// enthalpy and entropy at the T, P of their last TP flash without recomputing
// the pure-component parameters.
double enthalpy_at(RunContext& ctx, HMethod method, int phase, double T, double P, Fractions x, CompSpan comps,
                   const Kij& kij, SrkState& cache);
double entropy_at(RunContext& ctx, HMethod method, int phase, double T, double P, Fractions x, CompSpan comps,
                  const Kij& kij, SrkState& cache);

}  // namespace velm
