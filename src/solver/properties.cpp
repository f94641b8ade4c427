// Before every solve: the average properties of each line from its inlet and
// outlet values, its diameter and fittings; then the refresh of the equipment
// (static heads, entry losses, choking).
#include "solver/properties.hpp"

#include <cmath>

#include "correlations/fittings.hpp"
#include "correlations/compressor.hpp"
#include "correlations/control_valve.hpp"
#include "correlations/orifice.hpp"
#include "correlations/pipe.hpp"
#include "correlations/pump.hpp"
#include "correlations/sizing.hpp"
#include "correlations/tee_expander.hpp"
#include "correlations/two_phase.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/pipe_table.hpp"
#include "model/text.hpp"
#include "solver/passive_items.hpp"

namespace velm {

namespace {

bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }

void copy_from_reference(Project& p, Line& line) {
    if (line.REFLINE <= 0 || !is_line(p, line.REFLINE)) return;
    const Line& ref = p.lines[static_cast<std::size_t>(line.REFLINE)];
    line.OUTIN = ref.OUTIN;
    for (std::size_t e : {1, 2}) {
        line.TEMP[e] = ref.TEMP[e];
        line.LF[e] = ref.LF[e];
        line.LIQDEN[e] = ref.LIQDEN[e];
        line.LIQVISC[e] = ref.LIQVISC[e];
        line.LIQSUR[e] = ref.LIQSUR[e];
        line.VAPVISC[e] = ref.VAPVISC[e];
        line.VAPMW[e] = ref.VAPMW[e];
        line.VAPZ[e] = ref.VAPZ[e];
        line.VAPK[e] = ref.VAPK[e];
    }
}

// Mean over the ends that hold the phase: divided only when both do; one end
// stands as it is; none gives 0.
double phase_average(double inlet, double outlet, bool at_inlet, bool at_outlet) {
    if (at_inlet && at_outlet) return (inlet + outlet) / 2.0;
    if (at_inlet) return inlet;
    if (at_outlet) return outlet;
    return 0.0;
}

void averages(Line& l) {
    l.TEMP[3] = (l.TEMP[1] + l.TEMP[2]) / 2.0;
    l.PRES[3] = (l.PRES[1] + l.PRES[2]) / 2.0;
    l.LF[3] = (l.LF[1] + l.LF[2]) / 2.0;
    const bool v1 = l.LF[1] < 1.0, v2 = l.LF[2] < 1.0;
    l.VPROP[3] = phase_average(l.VAPVISC[1], l.VAPVISC[2], v1, v2);
    l.VPROP[5] = phase_average(l.VAPMW[1], l.VAPMW[2], v1, v2);
    l.VPROP[6] = phase_average(l.VAPZ[1], l.VAPZ[2], v1, v2);
    l.VPROP[7] = phase_average(l.VAPK[1], l.VAPK[2], v1, v2);
    l.VAPCON[3] = phase_average(l.VAPCON[1], l.VAPCON[2], v1, v2);
    l.VAPCP[3] = phase_average(l.VAPCP[1], l.VAPCP[2], v1, v2);
    const bool q1 = l.LF[1] > 0.0, q2 = l.LF[2] > 0.0;
    l.LPROP[1] = phase_average(l.LIQDEN[1], l.LIQDEN[2], q1, q2);
    l.LPROP[3] = phase_average(l.LIQVISC[1], l.LIQVISC[2], q1, q2);
    l.LIQSUR[3] = phase_average(l.LIQSUR[1], l.LIQSUR[2], q1, q2);
    l.LIQCON[3] = phase_average(l.LIQCON[1], l.LIQCON[2], q1, q2);
    l.LIQCP[3] = phase_average(l.LIQCP[1], l.LIQCP[2], q1, q2);
    l.LIQMW[3] = phase_average(l.LIQMW[1], l.LIQMW[2], q1, q2);
}

void densities(RunContext& ctx, const Header& g, Line& l) {
    for (std::size_t e : {1, 2}) {
        l.VAPDEN[e] = vapor_density(ctx, g, l.VAPZ[e], l.VAPMW[e], l.PRES[e], l.TEMP[e]);
        l.TPROP[e] = density(ctx, l.LF[e], l.VAPDEN[e], l.LIQDEN[e]);
    }
    l.VPROP[1] = vapor_density(ctx, g, l.VPROP[6], l.VPROP[5], l.PRES[3], l.TEMP[3]);
    l.TPROP[3] = density(ctx, l.LF[3], l.VPROP[1], l.LPROP[1]);
    l.TPROP[6] = Viscosity(ctx, l.LF[3], l.VPROP[3], l.LPROP[3], l.VPROP[1], l.LPROP[1]);
    l.TOTCP[3] = l.LF[3] * l.LIQCP[3] + (1.0 - l.LF[3]) * l.VAPCP[3];
}

// Conductivity of the mixture from the phase conductivities, by mass fraction.
void conductivity(RunContext& ctx, Line& l) {
    double sum = 0.0;
    if (l.LIQCON[3] != 0.0) sum += l.LF[3] / (l.LIQCON[3] * l.LIQCON[3]);
    if (l.VAPCON[3] != 0.0) sum += (1.0 - l.LF[3]) / (l.VAPCON[3] * l.VAPCON[3]);
    if (sum == 0.0) {
        ctx.log_error("Error! Unknown stream conductivity, assume 0.1");
        l.TOTCON[3] = 0.1;
        return;
    }
    l.TOTCON[3] = 1.0 / std::sqrt(std::fabs(sum));
}

// The size a line being sized starts from: the first size its material offers.
std::string start_size(const Project& p, const Line& l) {
    if (l.pipe_index >= 1 && l.pipe_index < static_cast<int>(p.pipedata.size()))
        if (const std::string& s = p.pipedata[static_cast<std::size_t>(l.pipe_index)].IDIA[1]; !trim(s).empty()) return s;
    return p.lines[0].DIA[1];
}

// The inside and outside diameter (m) of the last line whose nominal size,
// material and schedule the pipe table held: the lines of a network share a
// few sizes, and the table is searched by name.
struct LastBore {
    std::string mat, size, sch;
    double id = 0.0, od = 0.0;
    bool matches(const Line& l) const { return id != 0.0 && size == l.DIA[2] && mat == l.MAT && sch == l.SCH; }
};

// Inside diameter: entered directly (schedule "ID"), from the nominal size and
// schedule, or, when neither is given, sized for the line's limits.
void diameter(RunContext& ctx, Project& p, Line& l, int iter, LastBore& last) {
    const bool first = iter == 1 && !ctx.resume_run;
    if (l.SCH == "ID") {
        if (trim(l.ID.spec).empty()) {
            l.ID.value = (first || l.ID.value == 0.0) ? 1.0 : std::min(ID_from_Flow(ctx, p, l), 10.0);
            l.IDH.value = l.ID.value;
        } else if (iter == 1) {
            l.ID.value = val_or_zero(l.ID.spec);
            l.IDH.value = trim(l.IDH.spec).empty() ? l.ID.value : val_or_zero(l.IDH.spec);
        }
        l.ODF[2] = 1.1 * l.ID.value;
        return;
    }
    if (!trim(l.DIA[1]).empty()) {
        if (iter != 1) return;
        l.DIA[2] = l.DIA[1];
    } else if (first || trim(l.DIA[2]).empty()) {
        l.DIA[2] = start_size(p, l);
    } else {
        // Round the sized diameter to a table size: down under "Min", up otherwise.
        const double D = ID_from_Flow(ctx, p, l);
        const std::string sch = pipe_Sched_from_ID(ctx, p.pipedata, l.MAT, D);
        const std::string size =
            pipe_Dia_from_ID(ctx, p.pipedata, l.MAT, D, sch, "m", l.SIZ1 == "Min" ? "Smaller" : "Larger", true);
        if (!size.empty()) l.DIA[2] = size;
    }
    double id = last.id, od = last.od;
    if (!last.matches(l)) {
        id = pipe_ID_from_dia(ctx, p.pipedata, "ID", l.MAT, l.DIA[2], l.SCH, "m");
        od = pipe_ID_from_dia(ctx, p.pipedata, "OD", l.MAT, l.DIA[2], l.SCH, "m");
        // Only a size the table holds is kept: a failed search tells its message for every line.
        if (id != 0.0 && od != 0.0) last = {l.MAT, l.DIA[2], l.SCH, id, od};
    }
    if (id != 0.0) l.ID.value = id;
    if (od != 0.0) l.ODF[2] = od;
    l.IDH.value = l.ID.value;
}

// Density of the static column, kg/m3. A two-phase line holds back liquid
// where it rises, so its column weighs the in-situ mixture: the hold-up by
// gen.MDELEV (Flanigan by default) mixed between the phase densities. A
// single-phase line takes its mixture density.
void static_head_density(RunContext& ctx, const Header& g, Line& l) {
    if (!is_two_phase(l.LF[3])) {
        l.TPROP[4] = l.TPROP[3];
        return;
    }
    const double Hl = liquid_holdup(ctx, g.MDELEV, l.ID.value, l.IDH.value, l.EPS.value, l.TFLOW.value, l.LF[3],
                                    l.LPROP[1], l.LPROP[3], l.VPROP[1], l.VPROP[3]);
    l.TPROP[4] = mix_by_fraction(Hl, l.VPROP[1], l.LPROP[1]);
}

void update_line(RunContext& ctx, Project& p, Line& l, int iter, LastBore& last) {
    copy_from_reference(p, l);
    averages(l);
    densities(ctx, p.gen, l);
    conductivity(ctx, l);
    diameter(ctx, p, l, iter, last);
    static_head_density(ctx, p.gen, l);
    l.VEL[1] = velocity(ctx, l.TFLOW.value, l.TPROP[1], l.ID.value);
    l.VEL[2] = velocity(ctx, l.TFLOW.value, l.TPROP[2], l.ID.value);
    l.VEL[4] = pipe_sonic_velocity(ctx, p.gen.MSONIC, l);
    // The Crane sums of the fittings depend on the fittings table alone,
    // which a run does not change: found on the first pass of each case.
    // The 2K method depends on the Reynolds number and the bore.
    if (iter == 1 || p.gen.MFIT == "2K") line_fittings(ctx, p.gen, l);
}

}  // namespace

double level_head_boundary(const Boundary& b, double level, double sign) {
    return sign * std::max(0.0, level - b.NOZ.NozHeight) * b.LEVEL3 * 9.81 / 1000.0;
}

double level_head_vessel(const Vessel& v, double E, double sign) {
    const double LH = v.LevH, LM = v.LevM, LL = v.LevL;
    const double head = std::max(0.0, LH - E) * v.LEVH3 + std::max(0.0, LM - std::max(LH, E)) * v.LEVM3 +
                        std::max(0.0, LL - std::max(LM, E)) * v.LEVL3;
    return sign * head * 9.81 / 1000.0;
}

namespace {

// Static head, entry loss and choking at a feed (outlet of the boundary) or a product.
template <class B>
void refresh_boundary(RunContext& ctx, Project& p, B& b, int case_no, bool is_feed) {
    if (!is_line(p, b.NOZ.CON)) return;
    Line& line = p.lines[static_cast<std::size_t>(b.NOZ.CON)];
    const double W = line.TFLOW.value;
    if (!trim(b.LEVEL5).empty()) b.LEVEL3 = is_feed ? line.TPROP[1] : line.TPROP[2];
    const double level = spec_value(b.LEVEL1, case_no);
    b.NOZ.dPLevel = level_head_boundary(b, level, is_feed ? -1.0 : 1.0);
    const bool leaves_boundary = is_feed ? W >= 0.0 : W < 0.0;
    if ((b.TYPE == "Tank" || b.TYPE == "Vessel") && leaves_boundary) {
        const double P = is_feed ? b.PRES.value - b.NOZ.dPLevel : b.PRES.value + b.NOZ.dPLevel;
        b.NOZ.KFlow = Pipe_inlet_W2(ctx, p.gen, is_feed ? "IN" : "OUT", line, P);
    } else {
        b.NOZ.KFlow = 0.0;
    }
    const bool leaves_line = is_feed ? W < 0.0 : W >= 0.0;
    if (leaves_line && !spec_is(b.DP.spec, case_no, 'E')) {
        const double sign = is_feed ? -1.0 : 1.0;
        b.CHOKE = pipe_is_choked(line, sign * b.DP.value, sign * spec_value(b.DP.spec, case_no)) ? -1 : 0;
    } else {
        b.CHOKE = 0;
    }
}

// The density under a vessel level taken from the line on a named nozzle
// ("NOZI3", "NOZO1": side, then the nozzle number from the fifth character).
void level_density_from_line(const Project& p, const Vessel& v, const std::string& link, double& rho) {
    const std::string t = trim(link);
    if (t.size() < 5) return;
    const int n = checked_int(leading_number(t.substr(4)));
    if (n < 1 || n > kNozzles) return;
    const bool outlet = upper(t.substr(0, 4)) == "NOZO";
    const int line = (outlet ? v.NOZO : v.NOZI)[static_cast<std::size_t>(n)].CON;
    if (is_line(p, line)) rho = p.lines[static_cast<std::size_t>(line)].TPROP[1];
}

void refresh_vessel(RunContext& ctx, Project& p, Vessel& v, int case_no) {
    level_density_from_line(p, v, v.LEVL5, v.LEVL3);
    level_density_from_line(p, v, v.LEVM5, v.LEVM3);
    level_density_from_line(p, v, v.LEVH5, v.LEVH3);
    // The liquid fraction of the outgoing split, when given, is in force for the case.
    if (is_specified(v.LF.spec, case_no)) v.LF.value = spec_value(v.LF.spec, case_no);
    v.LevL = spec_value(v.LEVL1, case_no);
    v.LevM = spec_value(v.LEVM1, case_no);
    v.LevH = spec_value(v.LEVH1, case_no);
    for (int n = 1; n <= kNozzles; ++n) {
        for (bool outlet : {true, false}) {
            Port& noz = (outlet ? v.NOZO : v.NOZI)[static_cast<std::size_t>(n)];
            noz.dPLevel = level_head_vessel(v, noz.NozHeight, outlet ? -1.0 : 1.0);
            noz.KFlow = 0.0;
            if (!is_line(p, noz.CON)) continue;
            const Line& line = p.lines[static_cast<std::size_t>(noz.CON)];
            const double W = line.TFLOW.value;
            // Flow out of the vessel through this nozzle meets the entry loss.
            if (outlet && W >= 0.0)
                noz.KFlow = Pipe_inlet_W2(ctx, p.gen, "IN", line, v.PRES.value - noz.dPLevel + noz.dPNoz);
            else if (!outlet && W < 0.0)
                noz.KFlow = Pipe_inlet_W2(ctx, p.gen, "OUT", line, v.PRES.value + noz.dPLevel + noz.dPNoz);
        }
    }
}

}  // namespace

void Hydr_UpdateProperties(RunContext& ctx, Project& p, int iter, int case_no) {
    LastBore last;
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        try {
            update_line(ctx, p, p.lines[i], iter, last);
        } catch (const Fault& f) {
            ctx.log_error("Error! In Hydr_UpdateProperties = " + fault_text(f));
        }
    }
    if (case_no <= 0) return;
    for (std::size_t i = 1; i < p.feeds.size(); ++i) refresh_boundary(ctx, p, p.feeds[i], case_no, true);
    for (std::size_t i = 1; i < p.prods.size(); ++i) refresh_boundary(ctx, p, p.prods[i], case_no, false);
    for (std::size_t i = 1; i < p.fos.size(); ++i) refresh_orifice(ctx, p, p.fos[i], iter, case_no);
    for (std::size_t i = 1; i < p.valves.size(); ++i) refresh_valve(ctx, p, p.valves[i], iter, case_no);
    for (std::size_t i = 1; i < p.pumps.size(); ++i) refresh_pump(ctx, p, p.pumps[i], iter, case_no);
    for (std::size_t i = 1; i < p.comps.size(); ++i) refresh_comp(ctx, p, p.comps[i], iter, case_no);
    for (std::size_t i = 1; i < p.hxs.size(); ++i) refresh_nozzle_item(ctx, p, p.hxs[i]);
    for (std::size_t i = 1; i < p.miscs.size(); ++i) refresh_nozzle_item(ctx, p, p.miscs[i]);
    for (std::size_t i = 1; i < p.vessels.size(); ++i) refresh_vessel(ctx, p, p.vessels[i], case_no);
    for (std::size_t i = 1; i < p.tees.size(); ++i) refresh_tee(ctx, p, p.tees[i]);
    for (std::size_t i = 1; i < p.expands.size(); ++i) refresh_expander(ctx, p, p.expands[i]);
}

}  // namespace velm
