#!/usr/bin/python3
"""Reference values for the fitting, reducer, expander and tee tests.

Prints the loss coefficients that tests/correlations/fittings_test.cpp and
tests/correlations/tee_expander_test.cpp hold as literals, from python3-fluids
(Caleb Bell, "fluids: Fluid dynamics component of Chemical Engineering Design
Library", MIT licence), Debian package python3-fluids 1.0.22:

  Hooper2K                   Hooper's 2-K method, Chem. Eng., Aug. 24, 1981
  contraction_conical_Crane  Crane TP-410 (2009) conical contraction, K of the
                             small bore
  diffuser_sharp             sudden enlargement, Borda-Carnot (1 - beta^2)^2,
                             K of the small bore
  K_run_converging_Crane     Crane TP-410 (2009) run of a converging 90 degree
                             tee, K of the combined flow

Run with Debian's interpreter: /usr/bin/python3 tools/fittings_reference.py
"""
import fluids.fittings as f

print("Hooper2K (Di inch, Re, K1, Kinf) -> K")
for di, re, k1, kinf in [(2.067, 1e5, 800, 0.25), (4.026, 5e4, 1500, 4.0), (6.065, 2e5, 300, 0.1)]:
    print(f"  {di}, {re:g}, {k1}, {kinf}: {f.Hooper2K(Di=di, Re=re, K1=k1, Kinfty=kinf)!r}")

print("contraction_conical_Crane (Di1 0.1023 m, Di2 0.0779 m, angle) -> K")
for angle in [30, 60, 180]:
    print(f"  {angle}: {f.contraction_conical_Crane(Di1=0.1023, Di2=0.0779, angle=angle)!r}")

print("diffuser_sharp (Di1, Di2 m) -> K")
for d1, d2 in [(0.0779, 0.1023), (0.05, 0.1), (0.1023, 0.1541)]:
    print(f"  {d1}, {d2}: {f.diffuser_sharp(Di1=d1, Di2=d2)!r}")

print("K_run_converging_Crane (equal bores, 90 degrees, branch share of the flow) -> K")
for qb in [0.2, 0.5, 0.8]:
    print(f"  {qb}: {f.K_run_converging_Crane(D_run=0.1, D_branch=0.1, Q_run=1 - qb, Q_branch=qb, angle=90)!r}")
