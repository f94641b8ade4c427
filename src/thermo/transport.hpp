// Volumetric and transport properties of the phases of the own flash engine:
// liquid density, vapor compressibility, viscosities, thermal conductivities
// and surface tension, each for one phase of given composition.
//
// Units: T in K, P in kPa absolute, density kg/m3, viscosity cP, thermal
// conductivity W/m/K, surface tension dyn/cm (= mN/m). Compositions are mole
// fractions indexed like the component records, 1-based (element 0 unused);
// comps[1..n] are the records of GetCompData and kij its interaction matrix.
// A composition shorter than comps counts only its own components; a smaller
// kij counts the missing pairs as 0.
//
// A phase that is nearly pure water (a component named "Water" above 0.999
// mole fraction) takes the IAPWS-IF97 steam tables and the IAPWS transport
// releases instead of the mixture correlation.
//
// None of these routines fails: missing component data give a logged line
// and a default, and a numeric fault is trapped, logged as
// "Error! Err = <number> : <description>" and gives 0.
#pragma once

#include <span>
#include <vector>

#include "model/context.hpp"
#include "thermo/components.hpp"

namespace velm {

// Saturated liquid density, kg/m3: the Rackett equation with the Spencer-Danner
// parameter ZRA (fitted to the library density LDen at TDen), the Chueh-Prausnitz
// pseudocritical temperature of the mixture, and the Thomson-Brobst-Hankinson
// (Tait form) compressed-liquid correction from the mixture's vapor pressure.
// Valid up to a pseudo-reduced temperature of 0.95; from there on the SRK
// liquid root gives the volume. Water: IAPWS-IF97 specific volume (liquid).
double LiqDensity(RunContext& ctx, double T, double P, std::span<const double> x,
                  const std::vector<CompProp>& comps, const std::vector<std::vector<double>>& kij);

// Liquid viscosity, cP: each component from its library correlation in T,
// mixed by the cube-root (Kendall-Monroe) rule, and raised for pressure by the
// Kouzel correction in the gauge pressure P - patm (patm in kPa). A component
// without a correlation counts as 1.0 cP. Water: IAPWS 2008 viscosity at the
// IAPWS-IF97 liquid density.
double LiqViscosity(RunContext& ctx, double T, double P, std::span<const double> x,
                    const std::vector<CompProp>& comps, double patm = 101.325);

// Vapor viscosity, cP, with the vapor density vapden in kg/m3: low-pressure
// values by Yoon-Thodos (its own constants for hydrogen and helium; steam at
// 100 kPa by IAPWS for water), Herning-Zipperer mixing, and the Dean-Stiel
// dense-gas excess from the pseudo-reduced density. Water: IAPWS 2008 viscosity at
// the IAPWS-IF97 vapor density at T and P.
double VapViscosity(RunContext& ctx, double T, double P, std::span<const double> y, double vapden,
                    const std::vector<CompProp>& comps);

// Vapor compressibility factor Z = P v / (R T): the largest root of the SRK
// cubic; water by IAPWS-IF97 (vapor). 1 with a logged line when no value.
double VapZ(RunContext& ctx, double T, double P, std::span<const double> y, const std::vector<CompProp>& comps,
            const std::vector<std::vector<double>>& kij);

// Surface tension of the liquid against its vapor, dyn/cm: Brock-Bird
// corresponding states with the Miller parameter Q, on the mole-fraction
// averages of TC, PC and Q. 0.001 at and above the pseudocritical temperature.
// Water: IAPWS R1-76.
double SurfTension(RunContext& ctx, double T, double P, std::span<const double> x,
                   const std::vector<CompProp>& comps);

// Liquid thermal conductivity, W/m/K: an empirical correlation for hydrocarbon
// liquids in the molar mean normal boiling point and T. Water: the IAPWS
// industrial formulation at the IAPWS-IF97 liquid density.
double LiqConductivity(RunContext& ctx, double T, double P, std::span<const double> x,
                       const std::vector<CompProp>& comps);

// Vapor thermal conductivity, W/m/K: an empirical low-pressure correlation for
// hydrocarbon gases in the molar mass and T (T taken as at least 260 K).
// Water: the IAPWS industrial formulation at the specific volume of the
// IAPWS-IF97 liquid-side equation at T and P.
double VapConductivity(RunContext& ctx, double T, double P, std::span<const double> y,
                       const std::vector<CompProp>& comps);

}  // namespace velm
