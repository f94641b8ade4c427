#!/usr/bin/python3
"""Reference values for the control valve and flow orifice tests.

Writes tests/data/valve_orifice_reference.csv from python3-fluids (Caleb Bell,
"fluids: Fluid dynamics component of Chemical Engineering Design Library", MIT
licence), Debian package python3-fluids, and from scipy's brentq for one root.
Run with Debian's interpreter from the top of the source tree:

    /usr/bin/python3 tools/valve_orifice_reference.py

Rows (first column the kind, units in the column names of the header lines):

  valve_liquid  Flow of a liquid through a valve of a given Cv by the
                IEC 60534-2-1 / ISA-75.01.01-2007 turbulent, non-choked
                relation with the piping geometry factor Fp, from the
                constants and the reducer loss coefficients of
                fluids.control_valve (Cv_to_Kv, loss_coefficient_piping),
                checked against size_control_valve_l where Fp = 1.
  valve_gas     Cv of a valve passing a gas, size_control_valve_g, valve the
                size of its pipes (Fp = 1, xTP = xT), choked or not as the
                standard decides. The mass flow is turned into the volume at
                0 C and 1 atm that fluids takes with the ideal-gas density
                101325 MW / (R 273.15).
  quadrant_C    Quarter-circle orifice discharge coefficient of Miller (1996),
                fluids.flow_meter.C_Miller_1996(subtype='quarter circle').
  nozzle_C      Long radius nozzle, ISO 5167-3, fluids.flow_meter.C_long_radius_nozzle.
  rhg_C         Sharp-edged orifice with flange taps, Reader-Harris/Gallagher
                (ISO 5167-2:2003), C_Reader_Harris_Gallagher in a 0.1 m pipe.
  orifice_Y     Orifice expansibility of ASME MFC-3M-1989 (ISO 5167-1:1991),
                fluids.flow_meter.orifice_expansibility_1989.
  nozzle_Y      Nozzle and venturi expansibility of ISO 5167-3/-4,
                fluids.flow_meter.nozzle_expansibility.
  orifice_loss  Permanent loss over differential of an orifice plate, ISO
                5167-2 section 5.4, fluids.flow_meter.dP_orifice / (P1 - P2),
                at the Reader-Harris/Gallagher C (flange taps, Re_D 1e6).
  critical_ratio Critical pressure ratio r of a nozzle with approach velocity,
                the root of r^((1-k)/k) + (k-1)/2 b^4 r^(2/k) = (k+1)/2, by
                scipy.optimize.brentq to 1e-14.
"""
import math
import os

import fluids
from fluids.constants import R  # J/(mol K)
import fluids.control_valve as cv
from fluids.control_valve import Cv_to_Kv, Kv_to_Cv, loss_coefficient_piping, size_control_valve_g, size_control_valve_l
from fluids.flow_meter import (C_Miller_1996, C_Reader_Harris_Gallagher, C_long_radius_nozzle, dP_orifice,
                               nozzle_expansibility, orifice_expansibility_1989)
from scipy.optimize import brentq

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "data",
                   "valve_orifice_reference.csv")

PATM = 101.325  # kPa
INCH = 0.0254  # m
ID_2IN, ID_4IN, ID_6IN = 0.05250, 0.10226, 0.15405  # ASME B36.10M schedule 40, m


def valve_liquid_rows():
    # Flow of a liquid through a valve of a given Cv, turbulent and not choked:
    # Q = N1 FP Kv sqrt(dP / (rho / rho0)) (m3/h, kPa), FP = (1 + sum K / N2
    # (Kv / d^2)^2)^-1/2 (d in mm), with the constants of fluids.control_valve
    # and its loss_coefficient_piping for sum K. fluids' sizing routine solves
    # this only to the standard's 1 % iteration stop when reducers make FP
    # depend on Kv, so the rating relation is written out here; for a valve the
    # size of its pipes it must agree with size_control_valve_l exactly.
    # rho kg/m3, mu cP, P1 kPa abs, dP kPa, D1 m, D2 m, d m, Cv
    cases = (
        (998.0, 1.0, 500.0, 100.0, ID_4IN, ID_4IN, ID_4IN, 60.0),  # water, valve the size of the line
        (998.0, 1.0, 500.0, 100.0, ID_4IN, ID_4IN, 2 * INCH, 65.0),  # 2 in valve in a 4 in line
        (850.0, 3.0, 1200.0, 250.0, ID_6IN, ID_6IN, 3 * INCH, 100.0),
        (700.0, 0.4, 900.0, 40.0, ID_4IN, ID_6IN, 3 * INCH, 45.0),  # light hydrocarbon, unequal reducers
    )
    for rho, mu, P1, dP, D1, D2, d, Cv in cases:
        Kv = Cv_to_Kv(Cv)
        FP = 1.0 / math.sqrt(1.0 + loss_coefficient_piping(d, D1, D2) / cv.N2 * (Kv / (d * 1e3) ** 2) ** 2)
        Q = cv.N1 * FP * Kv * math.sqrt(dP / (rho / cv.rho0))  # m3/h
        W = Q * rho / 1000.0
        if d == D1 == D2:
            sized = size_control_valve_l(rho=rho, Psat=2.3e3, Pc=22.06e6, mu=mu * 1e-3, P1=P1 * 1e3,
                                         P2=(P1 - dP) * 1e3, Q=Q / 3600.0, D1=D1, D2=D2, d=d, FL=0.9, Fd=1.0,
                                         allow_laminar=False)
            assert abs(sized / Kv - 1.0) < 1e-12
        yield ("valve_liquid", rho, mu, P1, dP, D1, D2, d, Cv, W, FP)


def valve_gas_rows():
    # W t/h, T C, MW, Z, k, mu cP, P1 kPa abs, dP kPa, D m, xT
    cases = (
        (5.0, 40.0, 28.96, 1.0, 1.40, 0.018, 800.0, 50.0, ID_4IN, 0.72),  # air, x = 0.06
        (5.0, 40.0, 28.96, 1.0, 1.40, 0.018, 800.0, 300.0, ID_4IN, 0.72),  # x = 0.375
        (2.0, 150.0, 16.04, 0.98, 1.30, 0.014, 3000.0, 1800.0, ID_2IN, 0.70),  # methane, x = 0.60 against the limit 0.65
        (8.0, 200.0, 18.02, 0.95, 1.32, 0.016, 1500.0, 900.0, ID_4IN, 0.55),  # steam, x = 0.60 beyond the limit 0.52: choked
    )
    for W, T, MW, Z, k, mu, P1, dP, D, xT in cases:
        rho_n = 101325.0 * MW / (R * 273.15) / 1000.0  # kg/m3 at 0 C, 1 atm
        Q = W * 1000.0 / 3600.0 / rho_n
        r = size_control_valve_g(T=T + 273.15, MW=MW, mu=mu * 1e-3, gamma=k, Z=Z, P1=P1 * 1e3,
                                 P2=(P1 - dP) * 1e3, Q=Q, D1=D, D2=D, d=D, FL=0.9, Fd=1.0, xT=xT,
                                 allow_laminar=False, full_output=True)
        yield ("valve_gas", W, T, MW, Z, k, mu, P1, dP, D, xT, Kv_to_Cv(r["Kv"]), r["Y"], int(r["choked"]))


def meter_rows():
    D, rho, mu = 0.1, 1000.0, 1e-3
    for b in (0.2, 0.3, 0.4, 0.5, 0.6):
        yield ("quadrant_C", b, C_Miller_1996(D, b * D, rho, mu, 1.0, subtype="quarter circle orifice", taps="flange"))
    for b in (0.3, 0.5, 0.7):
        for Re in (1e4, 1e5, 1e6):
            m = Re * math.pi * D * mu / 4.0
            yield ("nozzle_C", b, Re, C_long_radius_nozzle(D, b * D, rho, mu, m))
    for b in (0.2, 0.3, 0.4, 0.5, 0.6, 0.7):
        for Re in (1e5, 1e6, 1e7):
            m = Re * math.pi * D * mu / 4.0
            yield ("rhg_C", b, Re, C_Reader_Harris_Gallagher(D, b * D, rho, mu, m, taps="flange"))


def expansion_rows():
    D = 0.1
    for b in (0.3, 0.5, 0.7):
        for ratio in (0.95, 0.8, 0.65):
            for k in (1.3, 1.4):
                P1 = 500e3
                yield ("orifice_Y", b, P1 / 1e3, P1 * ratio / 1e3, k,
                       orifice_expansibility_1989(D, b * D, P1, P1 * ratio, k))
                yield ("nozzle_Y", b, P1 / 1e3, P1 * ratio / 1e3, k, nozzle_expansibility(D, b * D, P1, P1 * ratio, k))


def loss_rows():
    D, rho, mu = 0.1, 1000.0, 1e-3
    m = 1e6 * math.pi * D * mu / 4.0
    for b in (0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.75):
        C = C_Reader_Harris_Gallagher(D, b * D, rho, mu, m, taps="flange")
        yield ("orifice_loss", b, C, dP_orifice(D, b * D, 200e3, 100e3, C) / 100e3)


def critical_rows():
    for k in (1.0001, 1.13, 1.3, 1.4, 1.67):
        for b in (0.0, 0.5, 0.7, 0.8):
            f = lambda r: r ** ((1 - k) / k) + (k - 1) / 2 * b ** 4 * r ** (2 / k) - (k + 1) / 2
            yield ("critical_ratio", b, k, brentq(f, 0.05, 0.999, xtol=1e-14))


HEADER = """# Generated by tools/valve_orifice_reference.py with python3-fluids {version}; do not edit.
# valve_liquid,rho kg/m3,mu cP,P1 kPa abs,dP kPa,D1 m,D2 m,d m,Cv,W t/h,Fp (standard's)
# valve_gas,W t/h,T C,MW kg/kmol,Z,k,mu cP,P1 kPa abs,dP kPa,D m,xT,Cv,Y,choked
# quadrant_C,beta,C
# nozzle_C,beta,Re_D,C
# rhg_C,beta,Re_D,C
# orifice_Y,beta,P1 kPa abs,P2 kPa abs,k,Y
# nozzle_Y,beta,P1 kPa abs,P2 kPa abs,k,Y
# orifice_loss,beta,C,loss/differential
# critical_ratio,beta,k,r
"""


def main():
    rows = [*valve_liquid_rows(), *valve_gas_rows(), *meter_rows(), *expansion_rows(), *loss_rows(),
            *critical_rows()]
    with open(OUT, "w", newline="\n") as out:
        out.write(HEADER.format(version=fluids.__version__))
        for row in rows:
            out.write(row[0] + "," + ",".join(repr(float(v)) for v in row[1:]) + "\n")


if __name__ == "__main__":
    main()
