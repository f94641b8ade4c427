#!/usr/bin/env python3
"""Reference values of the heat and mole balance tests from IAPWS-IF97
(Debian python3-iapws): the temperature of two water streams mixed
adiabatically at one pressure. Writes tests/data/hmb_reference.csv.

Columns: kind, P kPa absolute, flow 1 t/h, T1 C, flow 2 t/h, T2 C, h mixed
kJ/kg, T mixed C."""
import os

from iapws import IAPWS97

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
