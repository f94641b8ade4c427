#!/usr/bin/python3
"""Reference values for the two-phase pressure drop and flow pattern tests.

Writes tests/data/two_phase_reference.csv from python3-fluids (Caleb Bell,
"fluids: Fluid dynamics component of Chemical Engineering Design Library", MIT
licence), Debian package python3-fluids, module fluids.two_phase and
fluids.two_phase_voidage. Run with Debian's interpreter from the top of the
source tree:

    /usr/bin/python3 tools/two_phase_reference.py

Conditions: horizontal smooth pipe, air-water at about 1 atm and 20 C in 2 in
schedule 40 (ID 0.0525 m), a natural gas with a light oil at about 50 bar in
4 in schedule 40 (ID 0.10226 m), and a viscous oil with little gas (laminar
phases). Each point is chosen by its superficial velocities so that the points
spread over the flow pattern map.

Rows (units in the header lines):

  point  one condition: phase flows and properties, then
         - bb:  frictional gradient of Beggs and Brill (1973),
                fluids.two_phase.Beggs_Brill with angle 0, roughness 0 and
                acceleration=False (hold-up by the revised flow pattern map,
                friction ratio e^S, Colebrook friction factor of the no-slip
                flow);
         - lmc: gradient of Lockhart and Martinelli (1949) in Chisholm's (1967)
                form, phi_L^2 = 1 + C/X + 1/X^2 with C = 20, 12, 10, 5,
                fluids.two_phase.Lockhart_Martinelli (friction factors 64/Re
                below Re 2000 and 0.184 Re^-0.2 above);
         - hom: homogeneous gradient: void fraction fluids.two_phase_voidage.
                homogeneous, density density_two_phase, viscosity
                gas_liquid_viscosity Method 'Duckler' (volume-weighted), friction
                factor fluids.friction.friction_factor (Colebrook), dP from
                fluids.core.dP_from_K;
         - mga: regime of fluids.two_phase.Mandhane_Gregory_Aziz_regime;
         - td:  regime of fluids.two_phase.Taitel_Dukler_regime (angle 0).
  accel  acceleration pressure drop of a separated flow between an inlet and an
         outlet of given qualities and void fractions,
         fluids.two_phase.two_phase_dP_acceleration.
"""
import math
import os

import fluids
from fluids.core import Reynolds, dP_from_K
from fluids.friction import friction_factor
from fluids.two_phase import (Beggs_Brill, Lockhart_Martinelli, Mandhane_Gregory_Aziz_regime, Taitel_Dukler_regime,
                              two_phase_dP_acceleration)
from fluids.two_phase_voidage import density_two_phase, gas_liquid_viscosity, homogeneous

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data", "two_phase_reference.csv")

FT = 0.3048  # m per ft

# name: (ID m, rhoL kg/m3, rhoV kg/m3, muL cP, muV cP, sigma dyne/cm, P Pa abs)
SYSTEMS = {
    "air-water": (0.0525, 998.0, 1.2, 1.0, 0.018, 72.0, 101325.0),
    "gas-oil": (0.10226, 750.0, 40.0, 1.5, 0.012, 20.0, 5.0e6),
    "heavy-oil": (0.0525, 900.0, 1.2, 200.0, 0.018, 30.0, 101325.0),
}

# (system, superficial gas velocity ft/s, superficial liquid velocity ft/s,
#  comment: the region of the Mandhane-Gregory-Aziz map for air-water)
POINTS = (
    ("air-water", 1.0, 0.1, "stratified"),
    ("air-water", 30.0, 0.05, "wave"),
    ("air-water", 300.0, 1.0, "annular mist"),
    ("air-water", 10.0, 3.0, "slug"),
    ("air-water", 0.5, 3.0, "elongated bubble"),
    ("air-water", 5.0, 20.0, "dispersed bubble"),
    ("air-water", 60.0, 0.3, "annular mist"),
    ("air-water", 200.0, 6.0, "annular mist, Taitel-Dukler X about 0.9"),
    ("gas-oil", 1.0, 0.1, "stratified"),
    ("gas-oil", 30.0, 0.05, "wave"),
    ("gas-oil", 300.0, 1.0, "annular mist"),
    ("gas-oil", 10.0, 3.0, "slug"),
    ("gas-oil", 0.5, 3.0, "elongated bubble"),
    ("gas-oil", 5.0, 20.0, "dispersed bubble"),
    ("heavy-oil", 1.0, 0.5, "both phases laminar"),
    ("heavy-oil", 10.0, 0.5, "laminar liquid, turbulent gas"),
)


def point_rows():
    for name, vsg_ft, vsl_ft, _ in POINTS:
        D, rhol, rhog, mul_cP, mug_cP, sigma_cgs, P = SYSTEMS[name]
        mul, mug, sigma = mul_cP * 1e-3, mug_cP * 1e-3, sigma_cgs * 1e-3
        A = math.pi / 4.0 * D * D
        ml = vsl_ft * FT * rhol * A  # kg/s
        mg = vsg_ft * FT * rhog * A
        m = ml + mg
        x = mg / m  # gas mass fraction
        bb = Beggs_Brill(m, x, rhol, rhog, mul, mug, sigma, P, D, 0.0, roughness=0.0, L=1.0, acceleration=False)
        lmc = Lockhart_Martinelli(m, x, rhol, rhog, mul, mug, D, L=1.0)
        alpha = homogeneous(x, rhol, rhog)
        rho = density_two_phase(alpha, rhol, rhog)
        mu = gas_liquid_viscosity(x, mul, mug, rhol, rhog, Method="Duckler")
        V = m / rho / A
        fd = friction_factor(Re=Reynolds(V=V, D=D, rho=rho, mu=mu), eD=0.0)
        hom = dP_from_K(fd / D, rho, V)
        mga = Mandhane_Gregory_Aziz_regime(m, x, rhol, rhog, mul, mug, sigma, D)[0]
        td = Taitel_Dukler_regime(m, x, rhol, rhog, mul, mug, D, 0.0)[0]
        yield ("point", name, ml * 3.6, mg * 3.6, D, rhol, rhog, mul_cP, mug_cP, sigma_cgs, bb, lmc, hom,
               mga.replace(" ", "_"), td.replace(" ", "_"))


def accel_rows():
    # W t/h, ID m, liquid mass fraction and liquid hold-up at inlet and outlet,
    # liquid and gas density at inlet and outlet: a flashing line.
    cases = (
        (50.0, 0.10226, 0.6, 0.5, 0.85, 0.70, 750.0, 40.0, 760.0, 25.0),
        (5.0, 0.0525, 0.9, 0.8, 0.25, 0.15, 998.0, 1.6, 998.0, 1.2),
        (20.0, 0.0779, 0.3, 0.3, 0.40, 0.45, 700.0, 60.0, 700.0, 45.0),
    )
    for W, D, LF1, LF2, H1, H2, rl1, rg1, rl2, rg2 in cases:
        dP = two_phase_dP_acceleration(W / 3.6, D, 1.0 - LF1, 1.0 - LF2, 1.0 - H1, 1.0 - H2, rl1, rg1, rl2, rg2)
        yield ("accel", W, D, LF1, LF2, H1, H2, rl1, rg1, rl2, rg2, dP)


def field(v):
    return v if isinstance(v, str) else repr(float(v))


def main():
    with open(OUT, "w", newline="\n") as out:
        out.write("# Generated by tools/two_phase_reference.py with python3-fluids %s; do not edit.\n"
                  % fluids.__version__)
        out.write("# point,system,WL t/h,WV t/h,ID m,rhoL kg/m3,rhoV kg/m3,muL cP,muV cP,sigma dyne/cm,"
                  "Beggs-Brill Pa/m,Lockhart-Martinelli (Chisholm C) Pa/m,homogeneous Pa/m,"
                  "Mandhane-Gregory-Aziz regime,Taitel-Dukler regime\n")
        out.write("# accel,W t/h,ID m,LF1,LF2,Hl1,Hl2,rhoL1,rhoV1,rhoL2,rhoV2 kg/m3,dP Pa\n")
        for rows in (point_rows(), accel_rows()):
            for row in rows:
                out.write(row[0] + "," + ",".join(field(v) for v in row[1:]) + "\n")


if __name__ == "__main__":
    main()
