#include "correlations/tee_expander.hpp"

#include <algorithm>
#include <cmath>

#include "correlations/orifice.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

// Restriction coefficient for t/h, m and kPa at equipment: (8 / pi^2) / 3.6^2 / 1000.
inline constexpr double kEquipmentHead = 6.2544e-05;

double reducer_Y2(RunContext& ctx, const Header& gen, double LF, double P1, double P2, double k, double b) {
    return trapped(ctx, "Error! In reducer Y2 function= ", [&]() -> double {
        k = orifice_k(k);
        if (LF > 0.9999) return 1.0;
        P1 = std::max(P1 + gen.PATM, 1e-06);
        P2 = std::max(P2 + gen.PATM, 1e-06);
        const double r = P2 / P1;
        if (std::fabs(r - 1.0) < 1e-06 || std::fabs(b - 1.0) < 1e-06) return 1.0;
        const double b4 = std::pow(b, 4);
        const double y0 = (checked_pow(r, 2.0 / k) * k / (k - 1.0)) * (1.0 - checked_pow(r, (k - 1.0) / k)) / (1.0 - r);
        double y = checked_sqrt(std::fabs(checked_div((1.0 - b4) * y0, 1.0 - b4 * checked_pow(r, 2.0 / k))));
        y *= checked_pow(P1 / P2, 1.0 / (2.0 * k));
        return std::clamp(y, 0.001, 1.0);
    });
}

double Pipe_inlet_W2(RunContext& ctx, const Header& gen, std::string_view end, const Line& line, double P) {
    return trapped(ctx, "Error! In Pipe inlet W2 function = ", [&]() -> double {
        const std::size_t e = end == "IN" ? 1 : 2;
        const double Y = reducer_Y2(ctx, gen, line.LF[e], P, line.PRES[e], line.VAPK[e], 0.0);
        const double rinv =
            equivalent_inv_density(ctx, "Homogeneous", line.LF[e], line.LIQDEN[e], line.VAPDEN[e], Y);
        if (line.ID.value == 0.0) return 0.0;
        return kEquipmentHead * rinv / std::pow(line.ID.value, 4);
    });
}

}  // namespace velm
