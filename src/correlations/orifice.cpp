#include "correlations/orifice.hpp"

#include <cmath>

#include "correlations/pipe.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

double orifice_k(double k) {
    if (k == 1.0) return 1.000001;
    if (k == 0.0) return 1e-06;
    return k;
}

double equivalent_inv_density(RunContext& ctx, std::string_view method, double x, double rhoL, double rhoV, double Y) {
    return trapped(ctx, "Error! In equivalent inv density function= ", [&]() -> double {
        const double L = LVF(ctx, x, rhoV, rhoL);
        if (rhoL <= 0.0 && rhoV <= 0.0) return 0.0;
        if (rhoL <= 0.0 || L <= 0.0) return checked_div(checked_div(1.0, Y * Y), rhoV);
        if (rhoV <= 0.0 || L >= 1.0) return checked_div(1.0, rhoL);
        auto sum_of_area = [&] {
            const double s = x / checked_sqrt(rhoL) + checked_div(1.0 - x, Y) / checked_sqrt(rhoV);
            return s * s;
        };
        if (method == "SumOfArea" || method == "SumOfCv") return sum_of_area();
        if (method == "Homogeneous") return x / rhoL + checked_div(1.0 - x, Y * Y) / rhoV;
        if (method == "Momentum") return checked_div(x * x / rhoL, L) + checked_div((1.0 - x) * (1.0 - x) / rhoV, 1.0 - L);
        ctx.log_error("Error! Unknown equivalent inv density method");
        return sum_of_area();
    });
}

}  // namespace velm
