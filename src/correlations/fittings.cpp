#include "correlations/fittings.hpp"

#include "correlations/pipe.hpp"

namespace velm {

double fitting_K_2K(double K1, double Kinf, double Kd, double Re, double Din) {
    return K1 / Re + Kinf * (1.0 + Kd / Din);
}

FittingSums fittings_Crane(const FittingRows& rows) {
    FittingSums s;
    for (int n = 1; n <= kFittings; ++n) {
        const Fitting& f = rows[static_cast<std::size_t>(n)];
        s.LD += f.count * f.LD;
        s.K += f.count * f.K;
    }
    return s;
}

FittingSums fittings_2K(const FittingRows& rows, double Re, double Din) {
    FittingSums s;
    if (Re == 0.0 || Din == 0.0) return s;
    for (int n = 1; n <= kFittings; ++n) {
        const Fitting& f = rows[static_cast<std::size_t>(n)];
        s.K += f.count * fitting_K_2K(f.K1, f.Kinf, f.K3, Re, Din);
    }
    return s;
}

void line_fittings(RunContext& ctx, const Header& gen, Line& line) {
    FittingSums s;
    if (gen.MFIT == "2K") {
        const double re = Re(ctx, line.TFLOW.value, line.ID.value, line.IDH.value, line.TPROP[6]);
        s = fittings_2K(line.FIT, re, line.ID.value * 1000.0 / 25.4);
    } else {
        s = fittings_Crane(line.FIT);
    }
    line.FITLD = s.LD;
    line.FITK = s.K;
}

}  // namespace velm
