#include "solver/results.hpp"

#include "correlations/control_valve.hpp"
#include "correlations/flow_regimes.hpp"
#include "correlations/orifice.hpp"
#include "correlations/pipe.hpp"
#include "correlations/pump.hpp"
#include "correlations/sizing.hpp"
#include "model/context.hpp"
#include "solver/warnings.hpp"

namespace velm {

namespace {

void final_line(RunContext& ctx, Project& p, Line& l, SizeNeighbours& sizes) {
    l.DPL = PipeDP(ctx, p.gen, l, l.ID.value, l.IDH.value, "dP100");
    l.VEL[3] = velocity(ctx, l.TFLOW.value, l.TPROP[3], l.ID.value);
    if (l.COLOR == p.color_error) l.COLOR = p.color_normal;
    // Equivalent length of the fittings at the flowing friction factor.
    const double k_fittings = pipe_K(ctx, l.IDH.value, 0.0, l.FITLD, l.FITK, l.F[1], l.F[2]);
    l.EQLEN = l.F[1] > 0.0 ? k_fittings * l.IDH.value / l.F[1] : 0.0;
    pipe_size_neighbours(ctx, p, l, &sizes);
    pipe_flow_regime(ctx, l);
}

}  // namespace

void HydrResulFinalSub(RunContext& ctx, Project& p, int case_no) {
    // The warnings of this case start afresh: the report prints the list once
    // this routine has filled it.
    ctx.case_warnings.clear();
    SizeNeighbours sizes;
    for_each_final(ctx, p.lines, [&](Line& l) { final_line(ctx, p, l, sizes); });
    for_each_final(ctx, p.fos, [&](FO& fo) { final_orifice(ctx, p, fo, case_no); });
    for_each_final(ctx, p.valves, [&](Valve& v) { final_valve(ctx, p, v, case_no); });
    for_each_final(ctx, p.pumps, [&](Pump& m) { final_pump(ctx, p, m, case_no); });
    HydrResulWarnings(ctx, p, case_no);
}

}  // namespace velm
