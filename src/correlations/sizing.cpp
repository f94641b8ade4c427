#include "correlations/sizing.hpp"

#include <algorithm>
#include <cmath>

#include "correlations/pipe.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/pipe_table.hpp"

namespace velm {

namespace {

constexpr double kMaxID = 10.0;   // m
constexpr double kMinID = 0.001;  // m

// Diameter at which the line's flow runs at velocity V (m/s); 0 without a limit.
double diameter_for_velocity(const Line& l, double V) {
    if (V == 0.0 || l.TPROP[3] <= 0.0) return 0.0;
    return std::sqrt(std::fabs((0.3537 * l.TFLOW.value / l.TPROP[3]) / V));
}

}  // namespace

double ID_from_Flow(RunContext& ctx, const Project& p, Line& l) {
    return trapped(ctx, "Error! In ID from Flow = ", [&]() -> double {
        double D = 0.0;
        if (l.SIZ1 == "Min") {
            const double rho = l.TPROP[3];
            const double d1 = (l.SIZ[5] != 0.0 && rho > 0.0) ? diameter_for_velocity(l, l.SIZ[5]) : kMaxID;
            const double d2 = (l.SIZ[7] != 0.0 && rho > 0.0) ? diameter_for_velocity(l, l.SIZ[7] / std::sqrt(rho)) : kMaxID;
            D = std::min(d1, d2);
        } else {
            double d0 = 0.0;
            if (l.SIZ[2] != 0.0) {
                // The gradient goes as D^-5: four corrections from the diameter in force.
                d0 = l.ID.value;
                for (int i = 0; i < 4; ++i) {
                    const double dp = PipeDP(ctx, p.gen, l, d0, d0, "dP100");
                    d0 = std::clamp(checked_pow(std::fabs(dp / l.SIZ[2]), 0.2) * d0, kMinID, kMaxID);
                }
            }
            const double d1 = diameter_for_velocity(l, l.SIZ[4]);
            const double d2 = l.TPROP[3] > 0.0 ? diameter_for_velocity(l, l.SIZ[6] / std::sqrt(l.TPROP[3])) : 0.0;
            D = std::max({d0, d1, d2});
        }
        if (D >= kMaxID) {
            ctx.log_error("Line size out of range. Review input. Use 10 m max.");
            return kMaxID;
        }
        if (D < kMinID) {
            ctx.log_error("Line size below minimum. Review input. Use 1 mm min.");
            return kMinID;
        }
        return D;
    });
}

void pipe_size_neighbours(RunContext& ctx, const Project& p, Line& l, SizeNeighbours* last) {
    l.SizeUp.clear();
    l.SizeDown.clear();
    l.dPUp = l.VelUp = l.dPDown = l.VelDown = 0.0;
    if (l.SCH.empty() || l.SCH == "ID") return;
    auto flow_at = [&](double id, double& dp, double& vel) {
        dp = PipeDP(ctx, p.gen, l, id, id, "dP100");
        vel = velocity(ctx, l.TFLOW.value, l.TPROP[3], id);
    };
    if (last != nullptr && last->id == l.ID.value && last->mat == l.MAT && last->sch == l.SCH) {
        l.SizeUp = last->up;
        l.SizeDown = last->down;
        flow_at(last->id_up, l.dPUp, l.VelUp);
        flow_at(last->id_down, l.dPDown, l.VelDown);
        return;
    }
    auto neighbour = [&](double from, const char* direction, bool report, std::string& size) {
        size = pipe_Dia_from_ID(ctx, p.pipedata, l.MAT, from, l.SCH, "m", direction, report);
        const double id = size.empty() ? 0.0 : pipe_ID_from_dia(ctx, p.pipedata, "ID", l.MAT, size, l.SCH, "m");
        if (id == 0.0) size.clear();
        return id;
    };
    const double id_up = neighbour(1.01 * l.ID.value, "Larger", false, l.SizeUp);
    if (id_up != 0.0) flow_at(id_up, l.dPUp, l.VelUp);
    const double id_down = neighbour(0.99 * l.ID.value, "Smaller", true, l.SizeDown);
    if (id_down != 0.0) flow_at(id_down, l.dPDown, l.VelDown);
    if (last != nullptr && id_up != 0.0 && id_down != 0.0) *last = {l.MAT, l.SCH, l.ID.value, l.SizeUp, l.SizeDown, id_up, id_down};
}

void pipe_set_dia(Project& p, bool set) {
    for (std::size_t i = 1; i < p.lines.size(); ++i) p.lines[i].DIA[1] = set ? p.lines[i].DIA[2] : std::string();
}

}  // namespace velm
