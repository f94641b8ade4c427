#!/usr/bin/python3
"""Writes tests/data/steam_if97_reference.csv: water and steam states across
regions 1, 2, 3 and 5 of IAPWS-IF97 with their specific volume, enthalpy and
entropy, for checking Steam97 beyond the verification tables of the standard.

Source: Debian's python3-iapws (module iapws.iapws97, the basic equations of
IAPWS R7-97(2012)). Run with Debian's interpreter: /usr/bin/python3.

Region 3 states are chosen by temperature and density, so the density is the
exact root of the region 3 equation at the tabulated pressure; a state is kept
only when IAPWS-IF97 places it in region 3 on the same side of the critical
density (no two-phase or metastable states). The phase column is the one a
caller passes: 0 liquid, 1 vapor.
"""

import os

from iapws.iapws97 import IAPWS97, _P23_T, _Region1, _Region2, _Region3, _Region5

HERE = os.path.dirname(os.path.abspath(__file__))
OUT = os.path.join(HERE, "..", "tests", "data", "steam_if97_reference.csv")


def region_rows():
    rows = []
    # Region 1: compressed liquid, up to 623.15 K.
    for T in (273.15, 280.0, 320.0, 373.15, 450.0, 550.0, 623.15):
        for P in (0.1, 5.0, 40.0, 100.0):
            if P < IAPWS97(T=T, x=0).P:
                continue
            r = _Region1(T, P)
            rows.append((1, T, P, 0, r["v"], r["h"], r["s"]))
    # Region 2: vapor, up to 1073.15 K, below the B23 line above 623.15 K.
    for T in (300.0, 400.0, 500.0, 623.15, 650.0, 700.0, 863.15, 1000.0, 1073.15):
        for P in (0.0001, 0.05, 1.0, 10.0, 25.0, 60.0, 100.0):
            if T <= 647.096 and P > IAPWS97(T=T, x=1).P:
                continue
            if T > 623.15 and P > _P23_T(T):
                continue
            r = _Region2(T, P)
            rows.append((2, T, P, 1, r["v"], r["h"], r["s"]))
    # Region 5: high-temperature steam, up to 10 MPa where the routine uses it.
    for T in (1073.16, 1300.0, 1800.0, 2273.15):
        for P in (0.0001, 0.5, 10.0):
            r = _Region5(T, P)
            rows.append((5, T, P, 1, r["v"], r["h"], r["s"]))
    # Region 3: near-critical states by (T, rho).
    for T in (630.0, 640.0, 645.0, 650.0, 660.0, 700.0, 750.0, 800.0, 860.0):
        for rho in (700.0, 600.0, 500.0, 400.0, 322.0, 250.0, 200.0, 150.0, 120.0):
            r = _Region3(rho, T)
            P = r["P"]
            if P > 100.0 or P < _P23_T(T):
                continue
            state = IAPWS97(T=T, P=P)
            if state.region != 3 or abs(state.rho / rho - 1.0) > 0.01:
                continue
            phase = 0 if rho > 322.0 else 1
            rows.append((3, T, P, phase, 1.0 / rho, r["h"], r["s"]))
    return rows


def main():
    rows = region_rows()
    with open(OUT, "w", encoding="ascii", newline="\n") as out:
        out.write("# IAPWS-IF97 states from python3-iapws (iapws.iapws97); written by tools/steam_reference.py\n")
        out.write("region,T_K,P_MPa,phase,v_m3_kg,h_kJ_kg,s_kJ_kgK\n")
        for region, T, P, phase, v, h, s in rows:
            out.write(f"{region},{T!r},{P!r},{phase},{v!r},{h!r},{s!r}\n")
    print(f"{len(rows)} states written to {os.path.normpath(OUT)}")


if __name__ == "__main__":
    main()
