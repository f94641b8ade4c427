// Fittings of a line: the eleven rows of its fittings table turned into the
// two sums that the line's resistance takes, FITLD (L/D, charged at the fully
// turbulent friction factor) and FITK (velocity heads).
//
// Two methods, chosen for the whole project by Header::MFIT:
//   "Crane" (and any other text): Crane TP-410, an equivalent length L/D and a
//     fixed K per fitting;
//   "2K": Hooper's two-K method (W. B. Hooper, "The two-K method predicts head
//     losses in pipe fittings", Chem. Eng., Aug. 24, 1981), a K that falls with
//     the Reynolds number and with the size.
// Each row keeps both sets of constants, so a change of method changes no row.
#pragma once

#include <array>

#include "model/records.hpp"

namespace velm {

struct RunContext;

using FittingRows = std::array<Fitting, kFittings + 1>;  // rows 1..11, element 0 unused

struct FittingSums {
    double LD = 0.0;  // sum of count * L/D
    double K = 0.0;   // sum of count * K
};

// Hooper's two-K coefficient of one fitting: K = K1 / Re + Kinf * (1 + Kd / Din).
// Re the pipe's Reynolds number (> 0), Din the inside diameter in inches (> 0),
// K1, Kinf dimensionless, Kd in inches (1 in Hooper's paper; 0 removes the size
// term, as for entrances and exits). One form from laminar to fully turbulent
// flow: K1 / Re carries the laminar end, Kinf the turbulent one.
double fitting_K_2K(double K1, double Kinf, double Kd, double Re, double Din);

// Crane sums: LD = sum of count * L/D, K = sum of count * K.
FittingSums fittings_Crane(const FittingRows& rows);

// Two-K sums at the line's Reynolds number Re and inside diameter Din (inches):
// LD = 0, K = sum of count * fitting_K_2K. Re = 0 (no flow) or Din = 0 gives
// 0: a line at rest has no fitting loss until flow starts.
FittingSums fittings_2K(const FittingRows& rows, double Re, double Din);

// Sets FITLD and FITK of the line for the method gen.MFIT. Under "2K" the
// Reynolds number is that of the line at its present flow TFLOW (t/h), ID and
// IDH (m) and mixture viscosity TPROP[6] (cP); the fitting's diameter is
// always ID, also where the line has a separate hydraulic diameter.
void line_fittings(RunContext& ctx, const Header& gen, Line& line);

}  // namespace velm
