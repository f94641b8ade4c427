// Water and steam properties by the IAPWS Industrial Formulation 1997,
// IAPWS R7-97(2012): the basic equations of regions 1, 2, 3 and 5, the region 4
// saturation pressure and the region 2-3 boundary; with the IAPWS transport
// properties of water (viscosity, thermal conductivity, surface tension).
//
// Units are the standard's: T in K, P in MPa absolute, density in kg/m3;
// results in kJ/kg/K, kJ/kg, m3/kg and MPa. Viscosity is returned in cP,
// conductivity in W/m/K and surface tension in dyn/cm.
#pragma once

#include "model/context.hpp"

namespace velm {

// Property selectors of Steam97 and the region functions.
inline constexpr int kSteamEntropy = 1;   // specific entropy, kJ/kg/K
inline constexpr int kSteamEnthalpy = 2;  // specific enthalpy, kJ/kg
inline constexpr int kSteamVolume = 3;    // specific volume, m3/kg
inline constexpr int kSteamPressure = 9;  // pressure, MPa (region 3 only)

inline constexpr int kSteamLiquid = 0;
inline constexpr int kSteamVapor = 1;

// Boundary between regions 2 and 3 (R7-97 Eq. 5), MPa at T in K. Defined by
// the standard for 623.15..863.15 K; the polynomial is evaluated for any T.
double B23(double T);

// Saturation pressure (region 4, R7-97 Eq. 30), MPa, for T in 273.15..647.096 K;
// 0.0 outside that range.
double Psat97(double T);

// Basic equations of one region for the selector `sel` (1, 2, 3, and 9 in
// region 3); 0.0 for any other selector. No range check: Steam97 chooses the
// region. Regions 1, 2 and 5 take (T K, P MPa), region 3 takes (T K, rho kg/m3).
//   region 1: R7-97 Eq. 7, liquid, 273.15..623.15 K up to 100 MPa
//   region 2: R7-97 Eq. 15, vapor, 273.15..1073.15 K up to 100 MPa
//   region 3: R7-97 Eq. 28, near-critical, 623.15..1073.15 K above B23
//   region 5: R7-97 Eq. 32, 1073.15..2273.15 K up to 50 MPa
double if97_region1(double T, double P, int sel);
double if97_region2(double T, double P, int sel);
double if97_region3(double T, double rho, int sel);
double if97_region5(double T, double P, int sel);

// Specific volume in region 3, m3/kg, at T K and P MPa: the root in v of
// p3(T, 1/v) = P by Regula Falsi, v kept within 0.00129..0.00893 m3/kg and
// started from the critical volume above 647.096 K, else from 0.008827 for
// vapor (phase 1) or 0.001738 for liquid. Logs
// "Steam 97, region 3 volume did not converge." and returns 0.0 after 100
// rounds without convergence.
double Region3Volume(RunContext& ctx, double T, double P, int phase);

// A property of water or steam at T K and P MPa absolute. `phase` is the
// caller's word (0 liquid, 1 vapor): the routine does not compare P with the
// saturation pressure, so vapor at a liquid state gets the region 2 equation.
//   phase 1: region 2 up to 623.15 K; region 2 or 3 (by B23) up to 1073.15 K;
//            region 5 up to 2273.15 K and 10 MPa.
//   phase 0: region 1 up to 623.15 K; region 3 up to 1073.15 K.
// 0.0 outside: T below 273.15 K, P outside 0.0001..100 MPa, or no region.
double Steam97(RunContext& ctx, double T, double P, int phase, int sel);

// Dynamic viscosity, cP, at T K and density kg/m3: IAPWS R12-08 (viscosity of
// ordinary water substance, 2008) Eq. 10 without the critical enhancement
// (mu2 = 1), as recommended for industrial use. Density 0 gives the dilute-gas
// value; a T at or below zero raises a Fault for the caller to trap.
double Visc97(double T, double rho);

// Thermal conductivity, W/m/K, at T K and density kg/m3: the equation for
// industrial use of the IAPWS Revised Release on the IAPS Formulation 1985 for
// the Thermal Conductivity of Ordinary Water Substance (1998). A T or density
// at or below zero raises a Fault for the caller to trap.
double Cond97(double T, double rho);

// Surface tension of water against its vapor, dyn/cm (= mN/m), IAPWS
// R1-76(2014), for T in 273.15..647.096 K; 0.0 outside.
double Surf97(double T);

}  // namespace velm
