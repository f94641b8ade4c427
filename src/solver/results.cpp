#include "solver/results.hpp"

#include "correlations/control_valve.hpp"
#include "correlations/orifice.hpp"
#include "correlations/pipe.hpp"
#include "correlations/pump.hpp"
#include "correlations/sizing.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

void HydrResulFinalSub(RunContext& ctx, Project& p, int case_no) {
    try {
        for (std::size_t i = 1; i < p.lines.size(); ++i) {
            Line& l = p.lines[i];
            l.DPL = PipeDP(ctx, p.gen, l, l.ID.value, l.IDH.value, "dP100");
            l.VEL[3] = velocity(ctx, l.TFLOW.value, l.TPROP[3], l.ID.value);
            if (l.COLOR == p.color_error) l.COLOR = p.color_normal;
            // Equivalent length of the fittings at the flowing friction factor.
            const double k_fittings = pipe_K(ctx, l.IDH.value, 0.0, l.FITLD, l.FITK, l.F[1], l.F[2]);
            l.EQLEN = l.F[1] > 0.0 ? k_fittings * l.IDH.value / l.F[1] : 0.0;
            pipe_size_neighbours(ctx, p, l);
        }
        for (std::size_t i = 1; i < p.fos.size(); ++i) final_orifice(ctx, p, p.fos[i], case_no);
        for (std::size_t i = 1; i < p.valves.size(); ++i) final_valve(ctx, p, p.valves[i], case_no);
        for (std::size_t i = 1; i < p.pumps.size(); ++i) final_pump(ctx, p, p.pumps[i], case_no);
    } catch (const Fault& f) {
        ctx.log_error("Error! In HydrResulFinalSub = " + fault_text(f));
    }
}

}  // namespace velm
