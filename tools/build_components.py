#!/usr/bin/python3
"""Builds the component library of the own flash engine from published tables.

Run with Debian's interpreter from the project root:

    /usr/bin/python3 tools/build_components.py [--tables DIR]

Reads the public tables of pure-component data (default ../shared/data/components,
beside the project) and writes

    data/propa.txt            readable source: one comma-separated line a record
    data/propa.lib            184-byte little-endian records of the own engine
    data/prophys.lib          62-byte records (number, name, formula, MW)
    data/propkij.lib          interaction coefficients (text)
    tests/data/antoine_check.txt   (number, T, P from the source correlation)
    tools/component_numbers.tsv    the number registry (see NUMBERING)

The output is deterministic: the same tables give the same bytes.

SELECTION. A compound enters the library when the tables give it critical
temperature and pressure, a normal boiling point and a vapour pressure
correlation, and an acentric factor either tabulated or computable from its own
vapour pressure at Tr = 0.7 (Pitzer's definition).  The common gases (hydrogen,
nitrogen, oxygen, argon, helium, CO, CO2, H2S, water, ammonia, chlorine) all meet
that test and head the list.

NUMBERING. Record 1 holds no component: its Number field is the count of records
in the file, which is how the program learns the library size.  Components are
numbered from 2.  The registry tools/component_numbers.tsv (number, CAS) is read
first: a compound keeps the number it was given once, numbers are never reused,
and compounds new to the tables are appended after the highest number in CAS
order.  A registered compound that no longer qualifies keeps its slot as an
empty record.  The first build ordered the registry as: the common gases, the
light hydrocarbons of natural gas and refinery work, then every other compound
by CAS number.

FIELDS AND SOURCES (tables by their file names in the tables directory):
    Name      Perry's Chem. Eng. Handbook 8th ed. Table 2-8 name, else Poling et
              al. 5th ed. Appendix A name, else the PSRK appendix name.
    Formula   PubChem compound records (Hill order); compounds missing there
              carry their formula in FORMULAS below.
    MW        from the formula with the IUPAC standard atomic weights
              (conventional values, CIAAW 2013), ATOMIC_WEIGHTS below.
    TFP       CRC Handbook 95th ed., physical constants of organic / inorganic
              compounds, melting point.
    TBP       Yaws' handbook, else CRC Handbook 95th ed.  Yaws comes first: its
              values agree with the DIPPR vapour pressure curves to 0.5 K for
              93 % of the compounds, the CRC values (many rounded to whole
              degrees) for 84 %.
    TC PC VC  DIPPR (Pina-Martinez et al. 2021 tabulation), else IUPAC critical
              series, else CRC 95th ed., else PSRK revision IV appendix, else
              Mathews (1972).  DIPPR comes first because the vapour pressure,
              density and heat of vaporization correlations are DIPPR's and end
              at the DIPPR critical point.  VC from the first of those with one.
    ZC        PC VC / (R TC) from the record's own values.
    Acc       PSRK revision IV appendix; else Pitzer's definition
              -log10(Psat(0.7 TC)/PC) - 1 with the record's vapour pressure.
    LDenStd   DIPPR 105 (Perry's 8th ed. Table 2-32) at 60 F (288.706 K), else
              COSTALD (Hankinson-Thomson 1979), IAPWS-95 or Rackett (as LDen)
              at 60 F; 0 when 60 F is above TC.
    LDen TDen DIPPR 105 at 298.15 K, or at TBP when 298.15 K is outside the
              correlation's range or above 0.95 TC, else at the range's low
              end; else COSTALD likewise; water from IAPWS-95 (Wagner and
              Pruss 2002); else Rackett's equation with Yamada and Gunn's Z_RA
              (Poling et al. 5th ed., section 4-11) from the record's TC, PC, Acc.
    DIPM      Poling et al. 5th ed. Appendix A dipole moments, debye.
    CpA..CpE  Poling et al. 5th ed. Appendix A, Cp/R polynomial times R; else a
              least-squares quartic fitted to the TRC (Frenkel et al. 1994)
              ideal-gas equation over its range within 200..1000 K.
    ViscType  DIPPR 101 liquid viscosity (Perry's 8th ed. Table 2-313) in cP:
    ViscA..D  type 4, ln mu = A + B/T + C ln T + D T, taken directly when the
              DIPPR exponent term is absent or linear; otherwise the better of a
              fitted type 4 and a fitted type 3, ln mu = A + B/T + C T + D T^2.
              Compounds missing there: type 4 fitted to the Dutt-Prasad
              equation (Viswanath et al. 2007).
    HVap      DIPPR 106 (Perry's 8th ed. Table 2-150) at TBP, kJ/kmol; else
              Riedel's equation (Poling et al. 5th ed., section 7-10).
    HFor      Active Thermochemical Tables 1.112, else API Technical Data Book
              (Albahri 2003), else TRC (Frenkel et al. 1994), else Yaws; ideal
              gas at 298.15 K, kJ/mol.
    GFor      no source in the tables: 0.
    AntA..E   ln(P/kPa) = A + B/(C + T) + D ln T + E T^2.  Fitted (minimax in
              ln P) to the DIPPR 101 vapour pressure of Perry's 8th ed. Table 2-8
              over its whole range; exact when the DIPPR exponent is 2 or 0.
              Compounds missing there take Poling's Antoine equation (Appendix A;
              the table gives log10 of P in Pa) converted exactly.  The worst relative error of the stored 4-byte
              coefficients against the source, on 1001 temperatures over the
              range, is printed and stored in propa.txt.
    AntTMin/Max  the source correlation's range.
"""

import argparse
import csv
import math
import os
import struct
import sys

import numpy as np
from scipy.optimize import brentq, linprog, minimize_scalar

R = 8.31446261815324  # J/(mol K), CODATA 2018
P_ATM = 101.325  # kPa
T_60F = 288.70555555555555  # K
T_DEN = 298.15  # K, the preferred temperature of LDen

WATER = "7732-18-5"
ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))

COMMON_GASES = [  # CAS, the name the program uses
    ("1333-74-0", "Hydrogen"), ("7727-37-9", "Nitrogen"), ("7782-44-7", "Oxygen"),
    ("7440-37-1", "Argon"), ("7440-59-7", "Helium-4"), ("630-08-0", "Carbon monoxide"),
    ("124-38-9", "Carbon dioxide"), ("7783-06-4", "Hydrogen sulfide"), ("7732-18-5", "Water"),
    ("7664-41-7", "Ammonia"), ("7782-50-5", "Chlorine"),
]
LIGHT_HYDROCARBONS = [  # methane .. n-decane, the light olefins, BTX
    "74-82-8", "74-84-0", "74-98-6", "75-28-5", "106-97-8", "78-78-4", "109-66-0",
    "110-54-3", "142-82-5", "111-65-9", "111-84-2", "124-18-5", "74-85-1", "115-07-1",
    "71-43-2", "108-88-3",
]

# IUPAC standard atomic weights, conventional values (CIAAW 2013); D is the
# atomic mass of deuterium.
ATOMIC_WEIGHTS = {
    "H": 1.008, "D": 2.01410178, "He": 4.002602, "B": 10.81, "C": 12.011, "N": 14.007,
    "O": 15.999, "F": 18.998403163, "Ne": 20.1797, "Si": 28.085, "P": 30.973761998,
    "S": 32.06, "Cl": 35.45, "Ar": 39.948, "Ge": 72.630, "As": 74.921595, "Se": 78.971,
    "Br": 79.904, "Kr": 83.798, "Sn": 118.710, "Sb": 121.760, "I": 126.90447,
    "Xe": 131.293, "Hg": 200.592, "Rn": 222.0, "Ti": 47.867, "Al": 26.9815385,
    "Ga": 69.723, "Zn": 65.38, "Re": 186.207, "Os": 190.23, "Mo": 95.95, "W": 183.84,
    "V": 50.9415, "Cr": 51.9961, "Nb": 92.90637, "Ta": 180.94788, "U": 238.02891,
    "Pb": 207.2, "Bi": 208.98040, "Te": 127.60, "Be": 9.0121831, "Li": 6.94,
    "Na": 22.98976928, "K": 39.0983, "Mg": 24.305, "Ca": 40.078, "Fe": 55.845,
    "Ni": 58.6934, "Co": 58.933194, "Cu": 63.546,
    "[2H]": 2.01410178, "[3He]": 3.01602932,  # atomic masses of the isotopes (AME 2016)
}

# Formulas (Hill order) of the compounds that the PubChem records at hand lack.
FORMULAS = {
    "10022-50-1": "FNO2", "10034-85-2": "HI", "10102-43-9": "NO", "105-66-8": "C7H14O2",
    "105-67-9": "C8H10O", "10544-72-6": "N2O4", "106-97-8": "C4H10", "107-83-5": "C6H14",
    "108-47-4": "C7H9N", "108-48-5": "C7H9N", "108-68-9": "C8H10O", "109-66-0": "C5H12",
    "110-45-2": "C6H12O2", "110-54-3": "C6H14", "111-65-9": "C8H18", "111-84-2": "C9H20",
    "1111-74-6": "C2H8Si", "112-40-3": "C12H26", "112-95-8": "C20H42", "1120-21-4": "C11H24",
    "12125-02-9": "ClH4N", "124-18-5": "C10H22", "1333-74-0": "H2", "13465-07-1": "H2S2",
    "13536-59-9": "BrD", "13550-49-7": "D3N", "13637-63-3": "ClF5", "13845-23-3": "H2S3",
    "13845-24-4": "H2S5", "13845-25-5": "H2S4", "13983-20-5": "DH", "14104-45-1": "DI",
    "142-82-5": "C7H16", "143-10-2": "C10H22S", "20291-95-6": "C10H22", "2207-04-7": "C8H16",
    "2532-58-3": "C7H14", "2837-89-0": "C2HClF4", "291-64-5": "C7H14", "306-83-2": "C2HCl2F3",
    "354-06-3": "C2HBrClF3", "354-25-6": "C2HClF4", "354-51-8": "C2Br2ClF3",
    "359-35-3": "C2H2F4", "3877-15-4": "C4H10S", "420-46-2": "C2H3F3", "430-66-0": "C2H3F3",
    "493-02-7": "C10H18", "526-75-0": "C8H10O", "534-22-5": "C5H6O", "540-42-1": "C7H14O2",
    "541-31-1": "C5H12S", "544-76-3": "C16H34", "576-26-1": "C8H10O", "583-58-4": "C7H9N",
    "589-62-8": "C8H18O", "589-93-5": "C7H9N", "590-36-3": "C6H14O", "591-22-0": "C7H9N",
    "593-45-3": "C18H38", "624-89-5": "C3H8S", "626-89-1": "C6H14O", "628-29-5": "C5H12S",
    "628-80-8": "C6H14O", "629-50-5": "C13H28", "629-59-4": "C14H30", "629-62-9": "C15H32",
    "629-78-7": "C17H36", "629-92-5": "C19H40", "6876-23-9": "C8H16", "74-82-8": "CH4",
    "74-84-0": "C2H6", "74-86-2": "C2H2", "74-98-6": "C3H8", "7443-52-9": "C7H14O",
    "7443-70-1": "C7H14O", "75-28-5": "C4H10", "75-31-0": "C3H9N", "75-54-7": "CH4Cl2Si",
    "75-69-4": "CCl3F", "75-94-5": "C2H3Cl3Si", "7553-56-2": "I2", "7664-41-7": "H3N",
    "7698-05-7": "ClD", "7704-34-9": "S", "7726-95-6": "Br2", "7727-37-9": "N2",
    "7732-18-5": "H2O", "7782-39-0": "D2", "7782-41-4": "F2", "7782-44-7": "O2",
    "7782-49-2": "Se", "7782-50-5": "Cl2", "7783-07-5": "H2Se", "7783-41-7": "F2O",
    "7783-60-0": "F4S", "7787-71-5": "BrF3", "7789-30-2": "BrF5", "78-78-4": "C5H12",
    "78-80-8": "C5H6", "78-81-9": "C4H11N", "7803-51-2": "H3P", "92-52-4": "C12H10",
    "95-65-8": "C8H10O", "95-87-4": "C8H10O", "98-82-8": "C9H12", "99-87-6": "C10H14",
    "992-94-9": "CH6Si", "993-00-0": "CH5ClSi",
}

# Name prefixes that stay in lower case at the start of a name.
LOWER_PREFIXES = {"n", "i", "t", "o", "m", "p", "cis", "trans", "sec", "tert", "alpha", "beta",
                  "d", "l", "dl", "iso", "neo", "c", "s"}


# ---------------------------------------------------------------------------
# Reading the tables

def read_table(tables, name, key="CAS"):
    """Rows of a tab-separated table by CAS number (the first row for a CAS wins)."""
    out = {}
    with open(os.path.join(tables, name), newline="", encoding="utf-8") as fh:
        for row in csv.DictReader(fh, delimiter="\t"):
            cas = row[key].strip()
            if cas and cas not in out:
                out[cas] = {k: (v or "").strip() for k, v in row.items() if k}
    return out


def num(row, col):
    """A float from a table cell, or None when the cell is empty."""
    if row is None:
        return None
    text = row.get(col, "")
    if text == "":
        return None
    return float(text)


def read_pubchem(tables):
    """PubChem records: CAS -> (formula, MW)."""
    out = {}
    with open(os.path.join(tables, "chemical identifiers pubchem small.tsv"), encoding="utf-8") as fh:
        for line in fh:
            cells = line.rstrip("\n").split("\t")
            if len(cells) > 3 and cells[1] not in out:
                out[cells[1]] = (cells[2], float(cells[3]))
    return out


# ---------------------------------------------------------------------------
# Correlations of the sources

def dippr101(c, T):
    """DIPPR 101: exp(C1 + C2/T + C3 ln T + C4 T^C5)."""
    return np.exp(c[0] + c[1] / T + c[2] * np.log(T) + c[3] * T ** c[4])


def dippr105(c, T):
    """DIPPR 105: C1 / C2^(1 + (1 - T/C3)^C4), in the table's unit, mol/m3."""
    return c[0] / c[1] ** (1.0 + (1.0 - T / c[2]) ** c[3])


def dippr106(c, tc, T):
    """DIPPR 106: C1 (1 - Tr)^(C2 + C3 Tr + C4 Tr^2), in the table's unit, J/mol."""
    tr = T / tc
    return c[0] * (1.0 - tr) ** (c[1] + c[2] * tr + c[3] * tr * tr)


def trc_cp(a, T):
    """TRC ideal-gas heat capacity (Frenkel et al. 1994), J/(mol K)."""
    y = np.where(T > a[7], (T - a[7]) / (T + a[6]), 0.0)
    return R * (a[0] + (a[1] / T ** 2) * np.exp(-a[2] / T) + a[3] * y ** 2
                + (a[4] - a[5] / (T - a[7]) ** 2) * y ** 8)


def costald_volume(vchar, omega_srk, tc, T):
    """Saturated liquid volume by COSTALD (Hankinson and Thomson, AIChE J. 25, 1979), m3/mol."""
    tr = T / tc
    tau = 1.0 - tr
    v0 = 1.0 - 1.52816 * tau ** (1 / 3) + 1.43907 * tau ** (2 / 3) - 0.81446 * tau + 0.190454 * tau ** (4 / 3)
    vd = (-0.296123 + 0.386914 * tr - 0.0427258 * tr ** 2 - 0.0480645 * tr ** 3) / (tr - 1.00001)
    return vchar * v0 * (1.0 - omega_srk * vd)


def program_antoine(c, T):
    """The program's vapour pressure, ln(P/kPa) = A + B/(C + T) + D ln T + E T^2."""
    return c[0] + c[1] / (c[2] + T) + c[3] * np.log(T) + c[4] * T * T


def molecular_weight(formula):
    """Sum of the atomic weights of a formula such as C2H6O or [3He]2."""
    total, i = 0.0, 0
    while i < len(formula):
        if formula[i] == "[":
            j = formula.index("]", i) + 1
        else:
            j = i + 1
            while j < len(formula) and formula[j].islower():
                j += 1
        element = formula[i:j]
        k = j
        while k < len(formula) and formula[k].isdigit():
            k += 1
        count = int(formula[j:k]) if k > j else 1
        if element not in ATOMIC_WEIGHTS:
            raise ValueError("no atomic weight for %s in %s" % (element, formula))
        total += ATOMIC_WEIGHTS[element] * count
        i = k
    return total


# ---------------------------------------------------------------------------
# Fitting

def f32(x):
    return float(np.float32(x))


def minimax(basis, y):
    """Coefficients minimizing max |basis @ c - y| (a linear programme)."""
    m, n = basis.shape
    scale = np.abs(basis).max(axis=0)
    scale[scale == 0.0] = 1.0
    cost = np.zeros(n + 1)
    cost[-1] = 1.0
    ones = np.ones((m, 1))
    scaled = basis / scale
    a_ub = np.vstack([np.hstack([scaled, -ones]), np.hstack([-scaled, -ones])])
    b_ub = np.concatenate([y, -y])
    res = linprog(cost, A_ub=a_ub, b_ub=b_ub, bounds=[(None, None)] * n + [(0, None)], method="highs")
    if res.status != 0:
        raise RuntimeError("minimax fit failed: " + res.message)
    return res.x[:n] / scale, res.x[-1]


def antoine_basis(T, c):
    return np.column_stack([np.ones_like(T), 1.0 / (c + T), np.log(T), T * T])


def fit_antoine(lnp, tmin, tmax):
    """Fits A..E of the program's form to ln(P/kPa) given on [tmin, tmax].

    For a fixed C the form is linear in A, B, D, E, and the minimax fit is a
    linear programme.  The worst error is not smooth in C and has several
    minima, so C is searched over a grid from -0.9 tmin to 6 tmax and each of
    the three best grid points refined.  The coefficients are then rounded to
    4-byte floats one at a time, the remaining ones refitted after each."""
    T = np.linspace(tmin, tmax, 241)
    y = lnp(T)

    def worst(c):
        return minimax(antoine_basis(T, c), y)[1]

    lo, hi = -0.9 * tmin, 6.0 * tmax
    grid = [lo + (hi - lo) * (k / 80.0) ** 2 for k in range(81)]
    errs = [worst(c) for c in grid]
    best_c, best_e = 0.0, worst(0.0)
    for k in sorted(range(len(grid)), key=lambda k: errs[k])[:3]:
        a, b = grid[max(k - 1, 0)], grid[min(k + 1, len(grid) - 1)]
        r = minimize_scalar(worst, bounds=(a, b), method="bounded", options={"xatol": 1e-7 * (1 + abs(grid[k]))})
        for c, e in ((grid[k], errs[k]), (r.x, r.fun)):
            if e < best_e:
                best_c, best_e = c, e
    c = f32(best_c)
    basis = antoine_basis(T, c)
    coef, _ = minimax(basis, y)
    b_ = f32(coef[1])
    rest, _ = minimax(basis[:, [0, 2, 3]], y - b_ * basis[:, 1])
    d_ = f32(rest[1])
    rest, _ = minimax(basis[:, [0, 3]], y - b_ * basis[:, 1] - d_ * basis[:, 2])
    e_ = f32(rest[1])
    r = y - b_ * basis[:, 1] - d_ * basis[:, 2] - e_ * basis[:, 3]
    a_ = f32((r.max() + r.min()) / 2.0)
    return [a_, b_, c, d_, e_]


def fit_linear_visc(lnmu, tmin, tmax, kind):
    """Fits ViscA..D of type 3 or 4 to ln(mu/cP) on [tmin, tmax]."""
    T = np.linspace(tmin, tmax, 201)
    if kind == 4:
        basis = np.column_stack([np.ones_like(T), 1.0 / T, np.log(T), T])
    else:
        basis = np.column_stack([np.ones_like(T), 1.0 / T, T, T * T])
    coef, err = minimax(basis, lnmu(T))
    return [f32(v) for v in coef], err


def visc_program(kind, c, T):
    if kind == 4:
        return c[0] + c[1] / T + c[2] * np.log(T) + c[3] * T
    return c[0] + c[1] / T + c[2] * T + c[3] * T * T


# ---------------------------------------------------------------------------
# Building the records

FIELDS = ["MW", "TFP", "TBP", "TC", "PC", "VC", "ZC", "Acc", "LDenStd", "LDen", "TDen", "DIPM",
          "CpA", "CpB", "CpC", "CpD", "CpE", "ViscType", "ViscA", "ViscB", "ViscC", "ViscD",
          "HVap", "HFor", "GFor", "AntA", "AntB", "AntC", "AntD", "AntE", "AntTMin", "AntTMax"]


class Tables:
    def __init__(self, d):
        self.psrk = read_table(d, "Appendix to PSRK Revision 4.tsv")
        self.iupac = read_table(d, "IUPACOrganicCriticalProps.tsv")
        self.crc_crit = read_table(d, "CRCCriticalOrganics.tsv")
        self.mathews = read_table(d, "Mathews1972InorganicCriticalProps.tsv")
        self.dippr_crit = read_table(d, "DIPPRPinaMartines.tsv")
        self.vp101 = read_table(d, "Table 2-8 Vapor Pressure of Inorganic and Organic Liquids.tsv")
        self.antoine = read_table(d, "Antoine Collection Poling.tsv")
        self.mu101 = read_table(d, "Table 2-313 Viscosity of Inorganic and Organic Liquids.tsv")
        self.dutt = read_table(d, "Dutt Prasad 3 term.tsv")
        self.rho105 = read_table(d, "Perry Parameters 105.tsv")
        self.costald = read_table(d, "COSTALD Parameters.tsv")
        self.hvap106 = read_table(d, "Table 2-150 Heats of Vaporization of Inorganic and Organic Liquids.tsv")
        self.yaws_tb = read_table(d, "Yaws Boiling Points.tsv")
        self.poling_cp = read_table(d, "PolingDatabank.tsv")
        self.trc = read_table(d, "TRC Thermodynamics of Organic Compounds in the Gas State.tsv")
        self.api_hf = read_table(d, "API TDB Albahri Hf (g).tsv")
        self.atct = read_table(d, "ATcT 1.112 (g).tsv")
        self.yaws_hf = read_table(d, "Yaws Hf S0 (g).tsv")
        self.crc_org = read_table(d, "Physical Constants of Organic Compounds.csv")
        self.crc_inorg = read_table(d, "Physical Constants of Inorganic Compounds.csv")
        self.dipole = read_table(d, "Poling Dipole.csv")
        self.pubchem = read_pubchem(d)


def clean_name(text):
    name = " ".join(text.split()).replace("- ", "-")
    first = name.split("-")[0].split(" ")[0].split(",")[0]
    if name and name[0].islower() and first not in LOWER_PREFIXES:
        name = name[0].upper() + name[1:]
    return name


def critical(t, cas):
    """TC (K), PC (kPa), VC (m3/kmol) and the source names."""
    order = [("DIPPR", t.dippr_crit), ("IUPAC", t.iupac), ("CRC", t.crc_crit),
             ("PSRK", t.psrk), ("Mathews", t.mathews)]
    tc = pc = vc = None
    src = src_v = ""
    for name, tab in order:
        row = tab.get(cas)
        if tc is None and num(row, "Tc") and num(row, "Pc"):
            tc, pc, src = num(row, "Tc"), num(row, "Pc") / 1000.0, name
        if vc is None and num(row, "Vc"):
            vc, src_v = num(row, "Vc") * 1000.0, name
    return tc, pc, vc, src, src_v


def boiling_point(t, cas):
    for name, tab in (("Yaws", t.yaws_tb), ("CRC", t.crc_org), ("CRC", t.crc_inorg)):
        v = num(tab.get(cas), "Tb")
        if v:
            return v, name
    return None, ""


def vapour_pressure(t, cas):
    """ln(P/kPa) as a function of T, its range, and the source name."""
    row = t.vp101.get(cas)
    if row:
        c = [num(row, k) for k in ("C1", "C2", "C3", "C4", "C5")]
        return (lambda T: np.log(dippr101(c, T) / 1000.0)), num(row, "Tmin"), num(row, "Tmax"), "DIPPR101", c
    row = t.antoine.get(cas)
    if row:
        a, b, cc = num(row, "A"), num(row, "B"), num(row, "C")
        return (lambda T: math.log(10.0) * (a - b / (T + cc)) - math.log(1000.0)), \
            num(row, "Tmin"), num(row, "Tmax"), "PolingAntoine", [a, b, cc]
    return None, None, None, "", None


def density_temperature(tb, lo, hi):
    """298.15 K when it lies in [lo, hi], else the boiling point, else lo."""
    for T in (T_DEN, tb):
        if lo <= T <= hi:
            return T
    return lo


def build_record(t, cas):
    """The record's fields and a note of sources, or None when the compound does not qualify."""
    tc, pc, vc, src_crit, src_vc = critical(t, cas)
    tb, src_tb = boiling_point(t, cas)
    lnp, tmin, tmax, src_vp, vpc = vapour_pressure(t, cas)
    if not (tc and pc and tb and lnp):
        return None
    rec = dict.fromkeys(FIELDS, 0.0)
    src = {"Tc": src_crit, "Tb": src_tb, "Psat": src_vp}
    if src_vc:
        src["Vc"] = src_vc
    rec.update(TC=tc, PC=pc, TBP=tb)

    # Vapour pressure in the program's form.
    if src_vp == "DIPPR101" and vpc[4] in (0.0, 2.0):
        e = vpc[3] if vpc[4] == 2.0 else 0.0
        a = vpc[0] - math.log(1000.0) + (vpc[3] if vpc[4] == 0.0 else 0.0)
        ant = [f32(a), f32(vpc[1]), 0.0, f32(vpc[2]), f32(e)]
    elif src_vp == "DIPPR101":
        ant = fit_antoine(lnp, tmin, tmax)
    else:
        a, b, cc = vpc
        ant = [f32(math.log(10.0) * a - math.log(1000.0)), f32(-math.log(10.0) * b), f32(cc), 0.0, 0.0]
    grid = np.linspace(tmin, tmax, 1001)
    rel = np.exp(program_antoine(ant, grid) - lnp(grid)) - 1.0
    rec.update(AntA=ant[0], AntB=ant[1], AntC=ant[2], AntD=ant[3], AntE=ant[4], AntTMin=tmin, AntTMax=tmax)
    fit_error = float(np.max(np.abs(rel))) * 100.0

    # Acentric factor.
    omega = num(t.psrk.get(cas), "omega")
    src["omega"] = "PSRK"
    if omega is None:
        t7 = 0.7 * tc
        if not (tmin <= t7 <= tmax):
            return None
        omega = -math.log10(math.exp(float(lnp(np.float64(t7)))) / pc) - 1.0
        src["omega"] = "Pitzer"
    rec["Acc"] = omega

    # Formula and molecular weight.
    if cas in t.pubchem:
        formula = t.pubchem[cas][0]
    else:
        formula = FORMULAS[cas]
    mw = molecular_weight(formula)
    if cas in t.pubchem and abs(mw - t.pubchem[cas][1]) > 0.02:
        raise ValueError("%s: MW %.4f from %s against PubChem %.4f" % (cas, mw, formula, t.pubchem[cas][1]))
    rec["MW"] = mw

    rec["TFP"] = num(t.crc_org.get(cas), "Tm") or num(t.crc_inorg.get(cas), "Tm") or 0.0
    if vc:
        rec["VC"] = vc
        rec["ZC"] = pc * vc / (R * tc)
    rec["DIPM"] = num(t.dipole.get(cas), "dipole_moment") or 0.0

    # Liquid density.
    row = t.rho105.get(cas)
    crow = t.costald.get(cas)
    if row:
        c = [num(row, k) for k in ("C1", "C2", "C3", "C4")]
        lo, hi = num(row, "Tmin"), num(row, "Tmax")
        if T_60F < c[2]:
            rec["LDenStd"] = dippr105(c, T_60F) * mw / 1000.0
        tden = density_temperature(tb, lo, min(hi, 0.95 * c[2]))
        rec["LDen"], rec["TDen"] = dippr105(c, tden) * mw / 1000.0, tden
        src["rho"] = "DIPPR105"
    elif cas == WATER:
        # COSTALD is poor for water (some 30 % at 25 C): the saturated liquid
        # density of the IAPWS-95 formulation (Wagner and Pruss 2002) instead.
        from iapws import IAPWS95
        rec["LDenStd"] = IAPWS95(T=T_60F, x=0).rho
        rec["LDen"], rec["TDen"] = IAPWS95(T=T_DEN, x=0).rho, T_DEN
        src["rho"] = "IAPWS95"
    elif crow:
        vchar, om = num(crow, "Vchar"), num(crow, "omega_SRK")
        if T_60F < 0.95 * tc:
            rec["LDenStd"] = mw / costald_volume(vchar, om, tc, T_60F) / 1000.0
        tden = density_temperature(tb, 0.25 * tc, 0.95 * tc)
        rec["LDen"], rec["TDen"] = mw / costald_volume(vchar, om, tc, tden) / 1000.0, tden
        src["rho"] = "COSTALD"
    else:
        # Rackett's equation with Yamada and Gunn's Z_RA = 0.29056 - 0.08775 omega
        # (Poling et al. 5th ed., section 4-11), from the record's own constants.
        zra = 0.29056 - 0.08775 * omega

        def rackett(T):
            return mw * pc / (R * tc * zra ** (1.0 + (1.0 - T / tc) ** (2.0 / 7.0)))
        if T_60F < 0.95 * tc:
            rec["LDenStd"] = rackett(T_60F)
        tden = density_temperature(tb, 0.25 * tc, 0.95 * tc)
        rec["LDen"], rec["TDen"] = rackett(tden), tden
        src["rho"] = "Rackett"

    # Ideal-gas heat capacity.
    row = t.poling_cp.get(cas)
    if row and num(row, "a0") is not None:
        for k, f in enumerate(("CpA", "CpB", "CpC", "CpD", "CpE")):
            rec[f] = (num(row, "a%d" % k) or 0.0) * R
        src["Cp"] = "Poling"
    elif cas in t.trc:
        row = t.trc[cas]
        a = [num(row, "a%d" % k) for k in range(8)]
        lo, hi = max(num(row, "Tmin"), 200.0), min(num(row, "Tmax"), 1000.0)
        T = np.linspace(lo, hi, 161)
        coef = np.polynomial.polynomial.polyfit(T, trc_cp(a, T), 4)
        for k, f in enumerate(("CpA", "CpB", "CpC", "CpD", "CpE")):
            rec[f] = coef[k]
        src["Cp"] = "TRC-fit"

    # Liquid viscosity.
    row = t.mu101.get(cas)
    if row:
        c = [num(row, k) or 0.0 for k in ("C1", "C2", "C3", "C4", "C5")]
        lo, hi = num(row, "Tmin"), num(row, "Tmax")
        shift = math.log(1000.0)  # Pa s to cP
        if c[3] == 0.0 or c[4] == 1.0:
            visc = (4, [c[0] + shift, c[1], c[2], c[3]])
        elif c[4] == 0.0:
            visc = (4, [c[0] + c[3] + shift, c[1], c[2], 0.0])
        elif c[4] == 2.0 and c[2] == 0.0:
            visc = (3, [c[0] + shift, c[1], 0.0, c[3]])
        else:
            def lnmu(T, c=c):
                return c[0] + c[1] / T + c[2] * np.log(T) + c[3] * T ** c[4] + shift
            f4, e4 = fit_linear_visc(lnmu, lo, hi, 4)
            f3, e3 = fit_linear_visc(lnmu, lo, hi, 3)
            visc = (4, f4) if e4 <= e3 else (3, f3)
        src["visc"] = "DIPPR101"
    elif cas in t.dutt:
        row = t.dutt[cas]
        a, b, cc = num(row, "A"), num(row, "B"), num(row, "C")

        def lnmu(T):
            return math.log(10.0) * (a + b / (cc + T))
        f4, _ = fit_linear_visc(lnmu, num(row, "Tmin"), num(row, "Tmax"), 4)
        visc = (4, f4)
        src["visc"] = "Dutt"
    else:
        visc = None
    if visc:
        rec["ViscType"] = float(visc[0])
        rec["ViscA"], rec["ViscB"], rec["ViscC"], rec["ViscD"] = visc[1]

    # Heat of vaporization at the normal boiling point.
    row = t.hvap106.get(cas)
    if row and num(row, "Tc") > tb:
        c = [num(row, k) or 0.0 for k in ("C1", "C2", "C3", "C4")]
        rec["HVap"] = dippr106(c, num(row, "Tc"), tb)
        src["Hvap"] = "DIPPR106"
    else:
        tbr = tb / tc
        rec["HVap"] = 1.093 * R * tb * (math.log(pc / 100.0) - 1.013) / (0.930 - tbr)
        src["Hvap"] = "Riedel"

    # Heat of formation, ideal gas at 298.15 K.
    for name, tab in (("ATcT", t.atct), ("API", t.api_hf), ("TRC", t.trc), ("Yaws", t.yaws_hf)):
        v = num(tab.get(cas), "Hfg")
        if v is not None:
            rec["HFor"] = v / 1000.0
            src["Hf"] = name
            break

    name = clean_name((t.vp101.get(cas) or t.antoine.get(cas) or t.psrk.get(cas))["Chemical"])
    return {"cas": cas, "name": name, "formula": formula, "rec": rec, "fit_error": fit_error,
            "lnp": lnp, "src": src}


# ---------------------------------------------------------------------------
# Numbering

def load_registry(path):
    reg = {}
    if os.path.exists(path):
        with open(path, encoding="ascii") as fh:
            for line in fh:
                if line.startswith("#") or not line.strip():
                    continue
                n, cas = line.split("\t")[:2]
                reg[cas] = int(n)
    return reg


def cas_key(cas):
    return tuple(int(p) for p in cas.split("-"))


def assign_numbers(registry, qualified):
    """Keeps registered numbers; appends new compounds from the next free number."""
    numbers = dict(registry)
    fresh = [c for c in qualified if c not in numbers]
    if not registry:
        head = [c for c, _ in COMMON_GASES] + LIGHT_HYDROCARBONS
        fresh = [c for c in head if c in qualified] + sorted(
            (c for c in fresh if c not in head), key=cas_key)
    else:
        fresh.sort(key=cas_key)
    nxt = max(numbers.values(), default=1) + 1
    for c in fresh:
        numbers[c] = nxt
        nxt += 1
    return numbers


# ---------------------------------------------------------------------------
# Writing

def fmt(v):
    """The shortest text that reads back as the same 4-byte float."""
    s = np.format_float_positional(np.float32(v), unique=True, trim="-")
    if len(s) > 12:
        s = np.format_float_scientific(np.float32(v), unique=True, trim="-")
    return s


def text_bytes(s, width):
    b = s.encode("ascii")
    if len(b) > width:
        raise ValueError("%r is longer than %d characters" % (s, width))
    return b.ljust(width, b" ")


def ceil_sig(x, digits=3):
    """x rounded up to the given number of significant digits."""
    if x <= 0.0:
        return 0.0
    e = math.floor(math.log10(x)) - digits + 1
    return math.ceil(x / 10.0 ** e) * 10.0 ** e


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("--tables", help="the tables (default: shared/data/components beside the checkout)")
    args = ap.parse_args()
    tables_dir = args.tables
    if tables_dir is None:
        for up in ("..", os.path.join("..", "..")):
            tables_dir = os.path.normpath(os.path.join(ROOT, up, "shared", "data", "components"))
            if os.path.isdir(tables_dir):
                break
    t = Tables(tables_dir)

    candidates = set(t.vp101) | set(t.antoine)
    built = {}
    for cas in sorted(candidates, key=cas_key):
        r = build_record(t, cas)
        if r:
            built[cas] = r
    for cas, _ in COMMON_GASES:
        if cas not in built:
            raise SystemExit("common gas %s does not qualify" % cas)
    for cas, name in COMMON_GASES:
        built[cas]["name"] = name

    reg_path = os.path.join(ROOT, "tools", "component_numbers.tsv")
    numbers = assign_numbers(load_registry(reg_path), set(built))
    count = max(numbers.values())
    by_number = {n: c for c, n in numbers.items()}

    seen = {}
    for cas, r in built.items():
        key = r["name"].upper()
        if key in seen:
            raise SystemExit("two compounds named %s: %s %s" % (r["name"], cas, seen[key]))
        seen[key] = cas

    # Registry.
    with open(reg_path, "w", encoding="ascii", newline="\n") as fh:
        fh.write("# Component numbers of propa.lib and prophys.lib: number<TAB>CAS<TAB>name.\n")
        fh.write("# Written by tools/build_components.py. A number, once given, stays with its compound.\n")
        for n in range(2, count + 1):
            cas = by_number.get(n)
            if cas:
                name = built[cas]["name"] if cas in built else ""
                fh.write("%d\t%s\t%s\n" % (n, cas, name))

    lib = bytearray()
    phys = bytearray()
    lines = []
    checks = []
    lib += struct.pack("<i40s12s32f", count, b" " * 40, b" " * 12, *([0.0] * 32))
    phys += struct.pack("<h40s12sd", count, b" " * 40, b" " * 12, 0.0)
    worst = (0.0, "")
    tb_pass = tb_total = 0
    tb_fail = []
    for n in range(2, count + 1):
        cas = by_number.get(n)
        r = built.get(cas)
        if r is None:
            lib += struct.pack("<i40s12s32f", n, b" " * 40, b" " * 12, *([0.0] * 32))
            phys += struct.pack("<h40s12sd", n, b" " * 40, b" " * 12, 0.0)
            continue
        rec = r["rec"]
        vals = [f32(rec[f]) for f in FIELDS]
        lib += struct.pack("<i40s12s32f", n, text_bytes(r["name"], 40), text_bytes(r["formula"], 12), *vals)
        phys += struct.pack("<h40s12sd", n, text_bytes(r["name"], 40), text_bytes(r["formula"], 12), rec["MW"])
        err = ceil_sig(r["fit_error"])
        notes = ";".join("%s=%s" % (k, v) for k, v in sorted(r["src"].items()))
        lines.append('%d,"%s","%s",%s,"%s",%s,"%s"' % (
            n, r["name"], r["formula"], ",".join(fmt(v) for v in vals), cas, "%.3g" % err, notes))
        if r["fit_error"] > worst[0]:
            worst = (r["fit_error"], "%d %s" % (n, r["name"]))
        tmin, tmax = rec["AntTMin"], rec["AntTMax"]
        points = list(np.linspace(f32(tmin), f32(tmax), 9))
        lnp_atm = math.log(P_ATM)
        if r["lnp"](np.float64(tmin)) < lnp_atm < r["lnp"](np.float64(tmax)):
            tb_src = brentq(lambda T: r["lnp"](np.float64(T)) - lnp_atm, tmin, tmax, xtol=1e-9)
            points.append(tb_src)
        else:
            tb_src = float("nan")
        for T in points:
            checks.append("%d\t%r\t%r" % (n, float(T), float(np.exp(r["lnp"](np.float64(T))))))
        # Normal boiling point of the stored coefficients.
        ant = [vals[FIELDS.index(f)] for f in ("AntA", "AntB", "AntC", "AntD", "AntE")]
        tb = vals[FIELDS.index("TBP")]
        lo, hi = f32(tmin), f32(tmax)
        if lo <= tb <= hi:
            tb_total += 1
            # Searched 1 K beyond the range: several Antoine ranges end at the
            # boiling point itself.
            g = lambda T: program_antoine(ant, T) - math.log(P_ATM)
            a, b = lo - 1.0, hi + 1.0
            tb_fit = float("nan")
            if g(a) < 0 < g(b):
                for _ in range(200):
                    m = 0.5 * (a + b)
                    a, b = (m, b) if g(m) < 0 else (a, m)
                tb_fit = 0.5 * (a + b)
            if abs(tb_fit - tb) <= 0.5:
                tb_pass += 1
            else:
                tb_fail.append((n, r["name"], tb, tb_fit, r["src"]["Tb"], tb_src))

    os.makedirs(os.path.join(ROOT, "data"), exist_ok=True)
    with open(os.path.join(ROOT, "data", "propa.lib"), "wb") as fh:
        fh.write(lib)
    with open(os.path.join(ROOT, "data", "prophys.lib"), "wb") as fh:
        fh.write(phys)
    header = [
        "# Component library of the own flash engine, source of propa.lib (tools/build_components.py).",
        "# One line a record: number, name, formula, then 32 values in the record's order:",
        "# " + " ".join(FIELDS) + ",",
        "# then the CAS number, the worst relative error (%) of the stored Antoine coefficients",
        "# against the source vapour pressure over AntTMin..AntTMax, and the sources of the fields:",
        "# Tc/Vc DIPPR (Pina-Martinez 2021), IUPAC, CRC 95th ed., PSRK rev. IV, Mathews 1972;",
        "# Tb Yaws or CRC 95th ed.; Psat DIPPR101 (Perry's 8th ed. Table 2-8) or PolingAntoine",
        "# (Poling et al. 5th ed. App. A); omega PSRK or Pitzer (from the vapour pressure at Tr 0.7);",
        "# rho DIPPR105 (Perry's Table 2-32), COSTALD, IAPWS95 or Rackett; Cp Poling or TRC-fit; visc DIPPR101",
        "# (Perry's Table 2-313) or Dutt (Viswanath et al. 2007); Hvap DIPPR106 (Perry's Table",
        "# 2-150) or Riedel; Hf ATcT 1.112, API TDB, TRC or Yaws. Record 1 holds the record count.",
        "# Units: K, kPa, m3/kmol, kg/m3, kJ/kmol/K, cP, kJ/kmol (HVap), kJ/mol (HFor), ln kPa.",
    ]
    with open(os.path.join(ROOT, "data", "propa.txt"), "w", encoding="ascii", newline="\r\n") as fh:
        fh.write("\n".join(header + ["%d" % count] + lines) + "\n")
    os.makedirs(os.path.join(ROOT, "tests", "data"), exist_ok=True)
    with open(os.path.join(ROOT, "tests", "data", "antoine_check.txt"), "w", encoding="ascii", newline="\n") as fh:
        fh.write("# number<TAB>T (K)<TAB>P (kPa) of the source vapour pressure correlation\n")
        fh.write("\n".join(checks) + "\n")
    write_kij(tables_dir, [(n, built[c]["name"], built[c]["formula"]) for c, n in numbers.items() if c in built])

    print("records: %d (%d components, record 1 holds the count)" % (count, len(built)))
    src_count = {}
    for r in built.values():
        for k, v in r["src"].items():
            src_count.setdefault(k, {}).setdefault(v, 0)
            src_count[k][v] += 1
    for k in sorted(src_count):
        print("  %-6s %s" % (k, ", ".join("%s %d" % kv for kv in sorted(src_count[k].items()))))
    fitted = sorted((r["fit_error"], r["name"]) for r in built.values() if r["src"]["Psat"] == "DIPPR101")
    print("Antoine fits to DIPPR 101: %d, median worst error %.4f %%, worst %.4f %% (%s)" % (
        len(fitted), fitted[len(fitted) // 2][0], worst[0], worst[1]))
    for e, name in fitted[-8:]:
        print("    %.4f %%  %s" % (e, name))
    print("normal boiling point from the stored coefficients within 0.5 K of TBP: %d of %d" % (tb_pass, tb_total))
    for f in tb_fail:
        print("    %d %s: TBP %.2f (%s); the source vapour pressure boils at %.2f, the fit at %.2f" % (
            f[0], f[1], f[2], f[4], f[5], f[3]))


# Interaction coefficients of the Soave (SRK) equation with van der Waals mixing,
# from the thermopack component and mixing database (SINTEF, src/mixdatadb.f90,
# set "Default"), as tabulated in "SRK kij thermopack.tsv".  Its components are
# matched to the library by name (the table writes normal alkanes with "N-" and
# pentane as "N-PENTAN"; four compounds go by other names here), and the
# formula must agree (compared as a multiset of characters, so NH3 meets the
# Hill-order H3N).
KIJ_TABLE = "SRK kij thermopack.tsv"
KIJ_SYNONYMS = {
    "ISOBUTANE": "2-METHYLPROPANE",
    "ISOPENTANE": "2-METHYLBUTANE",
    "N-PENTAN": "PENTANE",
    "1,2-DICHLOROTETRAFLUOROETHANE": "1,2-DICHLORO-1,1,2,2-TETRAFLUOROETHANE",
    "CHLOROPENTAFLUOROETHANE": "1-CHLORO-1,1,2,2,2-PENTAFLUOROETHANE",
}


def kij_library_name(name):
    name = name.strip().upper()
    name = KIJ_SYNONYMS.get(name, name)
    if name.startswith("N-") and name.endswith("ANE"):
        name = name[2:]
    return name


def kij_lines(tables_dir, records):
    """The \\KIJ lines of the pairs whose two components are in the library,
    and the names of the table's components that are not."""
    by_name = {r[1].upper(): (r[0], r[2]) for r in records}
    missing = set()

    def number(name, formula):
        hit = by_name.get(kij_library_name(name))
        if hit and sorted(hit[1].upper()) == sorted(formula.strip().upper()):
            return hit[0]
        missing.add(name)
        return 0

    lines, seen = [], set()
    with open(os.path.join(tables_dir, KIJ_TABLE), encoding="utf-8") as fh:
        for row in csv.DictReader(fh, delimiter="\t"):
            i, j = number(row["name1"], row["formula1"]), number(row["name2"], row["formula2"])
            if not i or not j or i == j or (min(i, j), max(i, j)) in seen:
                continue
            seen.add((min(i, j), max(i, j)))
            note = "thermopack %s" % (row["doi"].strip() or row["set"].strip())
            lines.append('\\KIJ, %d, %d, %s, "%s"' % (i, j, row["kij"].strip(), note))
    return lines, sorted(missing)


def write_kij(tables_dir, records):
    lines, missing = kij_lines(tables_dir, records)
    header = [
        '\\EOS, "SRK"',
        '\\EOS, "Binary interaction coefficients kij: \\KIJ, number, number, kij, source. Pairs not listed are 0."',
        '\\EOS, "SRK with van der Waals mixing: thermopack database (SINTEF), src/mixdatadb.f90, set Default."',
    ]
    with open(os.path.join(ROOT, "data", "propkij.lib"), "w", encoding="ascii", newline="\r\n") as fh:
        fh.write("\n".join(header + lines) + "\n")
    print("kij pairs: %d written; table components not in the library: %s" % (len(lines), ", ".join(missing)))


if __name__ == "__main__":
    main()
