#!/usr/bin/env python3
"""Reference values of the heat and mole balance tests from IAPWS-IF97
(Debian python3-iapws). Writes tests/data/hmb_reference.csv.

mix: two water streams mixed adiabatically at one pressure. Columns: P kPa
absolute, flow 1 t/h, T1 C, flow 2 t/h, T2 C, h mixed kJ/kg, T mixed C.
letdown: saturated water let down adiabatically into a drum. Columns: P1 and
P2 kPa absolute, the saturation temperature at P2 C, the vapour fraction by
weight in the drum."""
import os

from iapws import IAPWS97

LETDOWNS = [(1201.325, 301.325), (801.325, 101.325), (2101.325, 1101.325)]

CASES = [  # P kPa abs, (flow t/h, T C) twice
    (1201.325, 14.0, 180.0, 6.0, 150.0),
    (601.325, 10.0, 150.0, 10.0, 40.0),
    (301.325, 2.0, 120.0, 18.0, 60.0),
]

out = os.path.join(os.path.dirname(__file__), "..", "tests", "data", "hmb_reference.csv")
with open(out, "w") as f:
    f.write("# Water streams mixed adiabatically, IAPWS-IF97 (python3-iapws); tools/hmb_reference.py\n")
    f.write("# kind,P_kPa_abs,W1_t_h,T1_C,W2_t_h,T2_C,h_mix_kJ_kg,T_mix_C\n")
    for P, w1, t1, w2, t2 in CASES:
        h1 = IAPWS97(P=P / 1000, T=t1 + 273.15).h
        h2 = IAPWS97(P=P / 1000, T=t2 + 273.15).h
        h = (w1 * h1 + w2 * h2) / (w1 + w2)
        t = IAPWS97(P=P / 1000, h=h).T - 273.15
        f.write("mix,%.3f,%g,%g,%g,%g,%.6f,%.6f\n" % (P, w1, t1, w2, t2, h, t))
    f.write("# kind,P1_kPa_abs,P2_kPa_abs,Tsat2_C,vapour_fraction\n")
    for p1, p2 in LETDOWNS:
        h1 = IAPWS97(P=p1 / 1000, x=0).h
        liquid, vapour = IAPWS97(P=p2 / 1000, x=0), IAPWS97(P=p2 / 1000, x=1)
        x = (h1 - liquid.h) / (vapour.h - liquid.h)
        f.write("letdown,%.3f,%.3f,%.6f,%.6f\n" % (p1, p2, liquid.T - 273.15, x))
