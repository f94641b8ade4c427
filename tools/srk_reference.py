#!/usr/bin/python3
"""Writes tests/data/srk_reference.csv: compressibility roots, fugacity
coefficients and two-phase TP flashes by the Soave-Redlich-Kwong equation of
state, for checking the program's own flash engine.

Sources: G. Soave, "Equilibrium constants from a modified Redlich-Kwong
equation of state", Chem. Eng. Sci. 27 (1972) 1197-1203: a_i = 0.42747
alpha_i (R Tc)^2 / Pc, b_i = 0.08664 R Tc / Pc, alpha_i = (1 + m_i (1 -
sqrt(Tr)))^2 with m = 0.480 + 1.574 w - 0.176 w^2, the quadratic mixing rule
a = sum x_i x_j (1 - k_ij) sqrt(a_i a_j) and b = sum x_i b_i, and its
fugacity coefficient. The k_ij are those of data/propkij.lib (the thermopack
SRK database, van der Waals mixing), 0 for pairs it does not list. The flash is the Rachford-Rice equation
(H. H. Rachford and J. D. Rice, J. Petrol. Technol. 4 (1952) 19) solved by
scipy.optimize.brentq inside successive substitution on ln K to 1e-13, then
polished by scipy.optimize.fsolve on the equal-fugacity equations.

Inputs: the critical temperature, pressure and acentric factor of
data/propa.txt, rounded to 4-byte floats as the binary library holds them, so
that both sides start from the same numbers. Run with Debian's interpreter and
python3-scipy: /usr/bin/python3 tools/srk_reference.py.

Rows (comma-separated; lists inside a field separated by blanks):
  kind,system,T_K,P_kPa,phase,component_numbers,mole_fractions,values
  Z      phase 0 liquid / 1 vapour; values: the SRK root chosen (smallest
         positive / largest)
  PHI    values: ln phi of each component in the phase of that composition
  FLASH  mole_fractions: feed; values: V, x_1..x_n, y_1..y_n
  DEW    mole_fractions: the gas; values: dew-point temperature (K) at P with
         the library k_ij, then the same with every k_ij = 0. Solved by
         scipy.optimize.fsolve on ln K_i = ln phi_i(liquid x) - ln phi_i(vapour z)
         and sum z_i / K_i = 1, from Wilson's K-values.
"""

import csv
import os

import numpy as np
from scipy.optimize import brentq, fsolve

HERE = os.path.dirname(os.path.abspath(__file__))
PROPA = os.path.join(HERE, "..", "data", "propa.txt")
PROPKIJ = os.path.join(HERE, "..", "data", "propkij.lib")
OUT = os.path.join(HERE, "..", "tests", "data", "srk_reference.csv")
R = 8.314  # kJ/kmol/K, as the program writes it


def read_components():
    """Number -> (name, Tc K, Pc kPa, omega) from propa.txt, as 4-byte floats."""
    comps = {}
    count_seen = False
    with open(PROPA, encoding="cp1252") as f:
        for line in f:
            if line.startswith("#") or not line.strip():
                continue
            if not count_seen:
                count_seen = True
                continue
            cells = next(csv.reader([line]))
            values = [float(np.float32(v)) for v in cells[3:35]]
            # MW TFP TBP TC PC VC ZC Acc ...
            comps[int(cells[0])] = (cells[1], values[3], values[4], values[7])
    return comps


COMPS = read_components()


def read_kij():
    """(number, number) -> kij from the \\KIJ lines of propkij.lib, both orders."""
    kij = {}
    with open(PROPKIJ, encoding="ascii") as f:
        for line in f:
            cells = [c.strip() for c in line.split(",")]
            if cells[0].upper() == "\\KIJ":
                i, j, k = int(cells[1]), int(cells[2]), float(cells[3])
                kij[(i, j)] = kij[(j, i)] = k
    return kij


KIJ = read_kij()


class Mixture:
    def __init__(self, ids, T, P, with_kij=True):
        self.T, self.P = T, P
        tc = np.array([COMPS[i][1] for i in ids])
        pc = np.array([COMPS[i][2] for i in ids])
        w = np.array([COMPS[i][3] for i in ids])
        m = 0.480 + 1.574 * w - 0.176 * w**2
        alpha = (1.0 + m * (1.0 - np.sqrt(T / tc))) ** 2
        self.a = 0.42747 * alpha * (R * tc) ** 2 / pc
        self.b = 0.08664 * R * tc / pc
        k = np.array([[KIJ.get((i, j), 0.0) if with_kij else 0.0 for j in ids] for i in ids])
        self.aij = (1.0 - k) * np.sqrt(np.outer(self.a, self.a))

    def AB(self, x):
        a = x @ self.aij @ x
        b = x @ self.b
        RT = R * self.T
        return a * self.P / RT**2, b * self.P / RT

    def Z(self, x, phase):
        A, B = self.AB(x)
        roots = np.roots([1.0, -1.0, A - B - B * B, -A * B])
        real = sorted(r.real for r in roots if abs(r.imag) < 1e-12 * max(1.0, abs(r.real)))
        # Polish each real root by Newton steps on the cubic.
        polished = []
        for z in real:
            for _ in range(3):
                f = ((z - 1.0) * z + (A - B - B * B)) * z - A * B
                df = (3.0 * z - 2.0) * z + (A - B - B * B)
                z -= f / df
            polished.append(z)
        positive = [z for z in polished if z > 0.0]
        return min(positive) if phase == 0 else max(polished)

    def ln_phi(self, x, phase):
        A, B = self.AB(x)
        Z = self.Z(x, phase)
        a = x @ self.aij @ x
        b = x @ self.b
        bi = self.b / b
        si = (self.aij @ x) / a
        return bi * (Z - 1.0) - np.log(Z - B) - (A / B) * (2.0 * si - bi) * np.log(1.0 + B / Z)


def rachford_rice(z, K):
    def g(V):
        return np.sum(z * (K - 1.0) / (1.0 + V * (K - 1.0)))
    lo = max(0.0, max((z[K > 1] * K[K > 1] - 1.0) / (K[K > 1] - 1.0), default=0.0))
    hi = min(1.0, min((1.0 - z[K < 1]) / (1.0 - K[K < 1]), default=1.0))
    return brentq(g, lo + 1e-15, hi - 1e-15, xtol=1e-15, rtol=1e-15, maxiter=500)


def tp_flash(ids, T, P, z):
    mix = Mixture(ids, T, P)
    z = np.asarray(z, dtype=float)
    tc = np.array([COMPS[i][1] for i in ids])
    pc = np.array([COMPS[i][2] for i in ids])
    w = np.array([COMPS[i][3] for i in ids])
    lnK = np.log(pc / P) + 5.373 * (1.0 + w) * (1.0 - tc / T)  # Wilson (1968) start
    for _ in range(5000):
        K = np.exp(lnK)
        V = rachford_rice(z, K)
        x = z / (1.0 + V * (K - 1.0))
        y = K * x
        x, y = x / x.sum(), y / y.sum()
        new = mix.ln_phi(x, 0) - mix.ln_phi(y, 1)
        if np.max(np.abs(new - lnK)) < 1e-13:
            lnK = new
            break
        lnK = new
    else:
        raise RuntimeError("successive substitution did not converge")

    def residual(u):
        K = np.exp(u)
        V = rachford_rice(z, K)
        x = z / (1.0 + V * (K - 1.0))
        y = K * x
        return u - (mix.ln_phi(x / x.sum(), 0) - mix.ln_phi(y / y.sum(), 1))

    lnK = fsolve(residual, lnK, xtol=1e-12)
    K = np.exp(lnK)
    V = rachford_rice(z, K)
    x = z / (1.0 + V * (K - 1.0))
    y = K * x
    return V, x / x.sum(), y / y.sum()


def wilson_lnK(ids, T, P):
    tc = np.array([COMPS[i][1] for i in ids])
    pc = np.array([COMPS[i][2] for i in ids])
    w = np.array([COMPS[i][3] for i in ids])
    return np.log(pc / P) + 5.373 * (1.0 + w) * (1.0 - tc / T)


def dew_temperature(ids, P, z, with_kij):
    z = np.asarray(z, dtype=float)
    T0 = brentq(lambda T: np.sum(z / np.exp(wilson_lnK(ids, T, P))) - 1.0, 100.0, 700.0)

    def residual(u):
        T, lnK = u[0], u[1:]
        mix = Mixture(ids, T, P, with_kij)
        x = z / np.exp(lnK)
        s = x.sum()
        return np.append(lnK - (mix.ln_phi(x / s, 0) - mix.ln_phi(z, 1)), s - 1.0)

    u = fsolve(residual, np.append(T0, wilson_lnK(ids, T0, P)), xtol=1e-13)
    if np.max(np.abs(residual(u))) > 1e-10 or np.max(np.abs(u[1:])) < 0.1:
        raise RuntimeError(f"no dew point of {ids} at {P} kPa")
    return u[0]


SYSTEMS = {
    "methane-propane": [13, 15],
    "nitrogen-methane": [3, 13],
    # N2, CO2, CH4, C2H6, C3H8, i-C4H10, n-C4H10, i-C5H12, n-C5H12, n-C6H14
    "natural-gas": [3, 8, 13, 14, 15, 16, 17, 18, 19, 20],
    "co2-gas": [3, 8, 13, 14, 15],  # N2, CO2, CH4, C2H6, C3H8
}
NATURAL_GAS = [0.02, 0.01, 0.80, 0.07, 0.04, 0.015, 0.015, 0.01, 0.01, 0.01]
# A lean gas with 5 % CO2, whose dew point the CO2-hydrocarbon pairs move.
CO2_GAS = [0.02, 0.05, 0.80, 0.08, 0.05]
DEWS = [("co2-gas", 2000.0, CO2_GAS), ("co2-gas", 4000.0, CO2_GAS)]

FLASHES = [
    ("methane-propane", 250.0, 3000.0, [0.6, 0.4]),
    ("methane-propane", 230.0, 1500.0, [0.3, 0.7]),
    ("methane-propane", 280.0, 5000.0, [0.5, 0.5]),
    ("nitrogen-methane", 120.0, 600.0, [0.3, 0.7]),
    ("nitrogen-methane", 150.0, 3000.0, [0.5, 0.5]),
    ("natural-gas", 220.0, 4000.0, NATURAL_GAS),
    ("natural-gas", 250.0, 2000.0, NATURAL_GAS),
]

STATES = [  # compressibility and fugacity: single compositions in each phase
    ("methane-propane", 300.0, 1000.0, [0.5, 0.5], 1),
    ("methane-propane", 295.0, 900.0, [0.02, 0.98], 0),  # three real roots
    ("methane-propane", 295.0, 900.0, [0.02, 0.98], 1),
    ("methane-propane", 230.0, 1500.0, [0.1, 0.9], 0),
    ("methane-propane", 230.0, 1500.0, [0.1, 0.9], 1),
    ("nitrogen-methane", 120.0, 1000.0, [0.1, 0.9], 0),
    ("nitrogen-methane", 200.0, 8000.0, [0.4, 0.6], 1),
    ("natural-gas", 300.0, 7000.0, NATURAL_GAS, 1),
    ("natural-gas", 200.0, 5000.0, NATURAL_GAS, 0),
]


def fmt(values):
    return " ".join(repr(v if isinstance(v, int) else float(v)) for v in values)


def main():
    rows = []
    for system, T, P, x, phase in STATES:
        ids = SYSTEMS[system]
        mix = Mixture(ids, T, P)
        xa = np.asarray(x, dtype=float)
        rows.append(["Z", system, T, P, phase, fmt(ids), fmt(x), fmt([mix.Z(xa, phase)])])
        rows.append(["PHI", system, T, P, phase, fmt(ids), fmt(x), fmt(mix.ln_phi(xa, phase))])
    for system, T, P, z in FLASHES:
        ids = SYSTEMS[system]
        V, x, y = tp_flash(ids, T, P, z)
        if not 0.02 < V < 0.98:
            raise RuntimeError(f"{system} at {T} K, {P} kPa is not well inside two phases: V = {V}")
        rows.append(["FLASH", system, T, P, -1, fmt(ids), fmt(z), fmt([V, *x, *y])])
    for system, P, z in DEWS:
        ids = SYSTEMS[system]
        dew = [dew_temperature(ids, P, z, True), dew_temperature(ids, P, z, False)]
        rows.append(["DEW", system, dew[0], P, 1, fmt(ids), fmt(z), fmt(dew)])
    with open(OUT, "w", newline="") as f:
        f.write("# Written by tools/srk_reference.py (SRK, Soave 1972; kij of data/propkij.lib; Rachford-Rice; scipy). Do not edit.\n")
        f.write("kind,system,T_K,P_kPa,phase,component_numbers,mole_fractions,values\n")
        w = csv.writer(f, lineterminator="\n")
        for r in rows:
            w.writerow(r)
    print(f"wrote {len(rows)} rows to {os.path.relpath(OUT)}")


if __name__ == "__main__":
    main()
