// Checks before a run, and the start values of the iteration.
#include "solver/checks.hpp"

#include <cmath>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/text.hpp"
#include "solver/network.hpp"

namespace velm {

namespace {

bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }

struct Scan {
    Project& p;
    std::string& msg;
    std::vector<char> free_in, free_out;  // per line: nothing on its inlet, on its outlet

    template <class R>
    bool fail(R& rec, const std::string& text) {
        msg = text;
        rec.COLOR = p.color_error;
        return true;
    }
    // A link to a line number that the project does not hold.
    template <class R>
    bool bad_link(R& rec, const char* word, int line) {
        if (line == 0 || is_line(p, line)) return false;
        return fail(rec, "Error! " + std::string(word) + trim(rec.NAME[1]) + " is linked to line " +
                             std::to_string(line) + ", which does not exist.");
    }
    void enters(int line) {
        if (is_line(p, line)) free_out[static_cast<std::size_t>(line)] = 0;
    }
    void leaves(int line) {
        if (is_line(p, line)) free_in[static_cast<std::size_t>(line)] = 0;
    }

    template <class R>
    bool two_port(std::vector<R>& v, const char* word, bool nozzles) {
        for (std::size_t i = 1; i < v.size(); ++i) {
            R& r = v[i];
            const int in = nozzles ? nozzle_in(r) : con_in(r);
            const int out = nozzles ? nozzle_out(r) : con_out(r);
            if (bad_link(r, word, in) || bad_link(r, word, out)) return true;
            if (in == 0 || out == 0) return fail(r, "Error! " + std::string(word) + trim(r.NAME[1]) + " has no inlet/outlet line.");
            if (in == out) return fail(r, "Error! " + std::string(word) + trim(r.NAME[1]) + " has same inlet and outlet line.");
            enters(in);
            leaves(out);
        }
        return false;
    }
    template <class R> static int con_in(const R& r) { if constexpr (requires { r.CON; }) return r.CON[1]; else return 0; }
    template <class R> static int con_out(const R& r) { if constexpr (requires { r.CON; }) return r.CON[2]; else return 0; }
    template <class R> static int nozzle_in(const R& r) { if constexpr (requires { r.NOZI.CON; }) return r.NOZI.CON; else return 0; }
    template <class R> static int nozzle_out(const R& r) { if constexpr (requires { r.NOZO.CON; }) return r.NOZO.CON; else return 0; }

    // Junctions and vessels: lines on inlet and outlet nozzles.
    template <class R>
    bool node(std::vector<R>& v, const char* word) {
        for (std::size_t i = 1; i < v.size(); ++i) {
            R& r = v[i];
            int links = 0;
            for (int n = 1; n <= kNozzles; ++n) {
                const int in = r.NOZI[static_cast<std::size_t>(n)].CON, out = r.NOZO[static_cast<std::size_t>(n)].CON;
                if (bad_link(r, word, in) || bad_link(r, word, out)) return true;
                for (int m = 1; m <= kNozzles; ++m)
                    if (in != 0 && in == r.NOZO[static_cast<std::size_t>(m)].CON)
                        return fail(r, "Error! " + std::string(word) + trim(r.NAME[1]) + " has same inlet and outlet line.");
                links += (in != 0) + (out != 0);
                enters(in);
                leaves(out);
            }
            if (links < 2) return fail(r, "Error! " + std::string(word) + trim(r.NAME[1]) + " has less than 2 lines.");
        }
        return false;
    }

    bool tees() {
        for (std::size_t i = 1; i < p.tees.size(); ++i) {
            Tee& t = p.tees[i];
            int links = 0;
            for (int side = 1; side <= 3; ++side) {
                const int in = t.CON[static_cast<std::size_t>(side)];
                if (bad_link(t, "Tee ", in) || bad_link(t, "Tee ", t.CON[static_cast<std::size_t>(side + 3)])) return true;
                for (int other = 4; other <= 6; ++other)
                    if (in != 0 && in == t.CON[static_cast<std::size_t>(other)])
                        return fail(t, "Error! Tee " + trim(t.NAME[1]) + " has same inlet and outlet line.");
            }
            for (int k = 1; k <= 6; ++k) links += t.CON[static_cast<std::size_t>(k)] != 0;
            if (links < 2) return fail(t, "Error! Tee " + trim(t.NAME[1]) + " has less than 2 lines.");
            for (int side = 1; side <= 3; ++side) {
                enters(t.CON[static_cast<std::size_t>(side)]);
                leaves(t.CON[static_cast<std::size_t>(side + 3)]);
            }
        }
        return false;
    }

    bool expanders() {
        for (std::size_t i = 1; i < p.expands.size(); ++i) {
            Expand& e = p.expands[i];
            if (bad_link(e, "Expander/Reducer ", e.CON[1]) || bad_link(e, "Expander/Reducer ", e.CON[2])) return true;
            if (e.CON[1] == 0 || e.CON[2] == 0)
                return fail(e, "Error! Expander/Reducer " + trim(e.NAME[1]) + " has no inlet/outlet.");
            if (e.CON[1] == e.CON[2])
                return fail(e, "Error! Expander/Reducer " + trim(e.NAME[1]) + " has same inlet and outlet line.");
            enters(e.CON[1]);
            leaves(e.CON[2]);
        }
        return false;
    }
};

}  // namespace

void CheckConnectivity(Project& p, std::string& msg) {
    msg.clear();
    const std::size_t nl = p.lines.size();
    Scan s{p, msg, std::vector<char>(nl, 1), std::vector<char>(nl, 1)};
    for (std::size_t i = 1; i < p.feeds.size(); ++i) {
        Feed& f = p.feeds[i];
        if (s.bad_link(f, "Feed ", f.NOZ.CON)) return;
        if (f.NOZ.CON == 0) { s.fail(f, "Error! Feed " + trim(f.NAME[1]) + " has no outlet line."); return; }
        s.leaves(f.NOZ.CON);
    }
    for (std::size_t i = 1; i < p.prods.size(); ++i) {
        Prod& d = p.prods[i];
        if (s.bad_link(d, "Product ", d.NOZ.CON)) return;
        if (d.NOZ.CON == 0) { s.fail(d, "Error! Product " + trim(d.NAME[1]) + " has no inlet line."); return; }
        s.enters(d.NOZ.CON);
    }
    if (s.two_port(p.valves, "Valve ", false) || s.two_port(p.checks, "Check ", false) ||
        s.two_port(p.pumps, "Pump ", false) || s.two_port(p.comps, "Compressor ", false) ||
        s.two_port(p.hxs, "Exchanger ", true) || s.two_port(p.fos, "Orifice ", false) ||
        s.two_port(p.miscs, "Misc ", true))
        return;
    if (s.node(p.juncs, "Junction ") || s.tees() || s.node(p.vessels, "Vessel ")) return;
    if (s.expanders()) return;
    for (std::size_t i = 1; i < nl; ++i)
        if (s.free_in[i] || s.free_out[i]) {
            s.fail(p.lines[i], "Error! Line " + trim(p.lines[i].NAME[1]) + " inlet or outlet is not connected to equipment.");
            return;
        }
    if (Columns(p).num_vars == 0) {
        msg = "Error! No equipment.";
        return;
    }
    if (count(p.feeds) == 0 && count(p.prods) == 0)
        msg = "Error! At least one Feed/Product required.\r\n"
              "Info ! For purely recycle circuit, add Feed and do NOT specify flow as zero.";
}

void HydrInit(RunContext& ctx, Project& p) {
    const bool fresh = !ctx.resume_run;
    const double patm = p.gen.PATM;
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        Line& l = p.lines[i];
        const std::string n = std::to_string(i);
        if (fresh) l.RE = 0.0;
        if (l.PRES[1] > 1000000.0 || patm + l.PRES[1] <= 0.0) {
            l.PRES[1] = 10000.0;
            ctx.log_error("Warning! Inlet presssure for line " + n + " reset.");
        }
        if (l.PRES[2] > 1000000.0 || patm + l.PRES[2] <= 0.0) {
            l.PRES[2] = 10000.0;
            ctx.log_error("Warning! Outlet presssure for line " + n + " reset.");
        }
        if (l.TEMP[1] > 100000.0 || l.TEMP[1] < -274.0) {
            l.TEMP[1] = 25.0;
            ctx.log_error("Warning! Inlet temperature for line " + n + " reset.");
        }
        if (l.TEMP[2] > 100000.0 || l.TEMP[2] < -274.0) {
            l.TEMP[2] = 25.0;
            ctx.log_error("Warning! Outlet temperature for line " + n + " reset.");
        }
        if (fresh) l.PRES[1] = l.PRES[2] = 10000.0;
        if (l.OUTIN != 0) {
            // Outlet conditions equal to the inlet's.
            l.TEMP[2] = l.TEMP[1];
            l.LF[2] = l.LF[1];
            l.LIQDEN[2] = l.LIQDEN[1];
            l.LIQVISC[2] = l.LIQVISC[1];
            l.VAPVISC[2] = l.VAPVISC[1];
            l.VAPMW[2] = l.VAPMW[1];
            l.VAPZ[2] = l.VAPZ[1];
            l.VAPK[2] = l.VAPK[1];
            l.COMPOX0 = l.COMPIX0;
            l.COMPOY0 = l.COMPIY0;
            if (fresh) l.PRES[2] = l.PRES[1];
        }
        if (fresh || l.TFLOW.value == 0.0) {
            // The flow at a line velocity chosen by density, or 10 t/h.
            l.TFLOW.value = (l.ID.value != 0.0 && l.TPROP[3] != 0.0)
                                ? 10.0 * l.ID.value * l.ID.value * std::sqrt(std::fabs(l.TPROP[3])) / 0.3537
                                : 10.0;
        }
        l.LVFLOW[1] = l.LF[3] * l.TFLOW.value;
        l.LVFLOW[2] = (1.0 - l.LF[3]) * l.TFLOW.value;
        l.pipe_index = find_pipe_material(p.pipedata, l.MAT);
        if (l.pipe_index == 0) {
            ctx.log_error("Error! Pipe database missing for line " + n);
            if (p.pipedata.size() > 1) l.pipe_index = 1;
        }
        const double table_eps = l.pipe_index > 0 ? p.pipedata[static_cast<std::size_t>(l.pipe_index)].E : 0.0;
        l.EPS.value = trim(l.EPS.spec).empty() ? table_eps : val_or_zero(l.EPS.spec);
        if (fresh || l.RE == 0.0 || l.F[2] == 0.0) l.F[2] = 0.015;
    }
    if (!fresh) return;
    for (std::size_t i = 1; i < p.feeds.size(); ++i) {
        p.feeds[i].PRES.value = 10000.0;
        p.feeds[i].NOZ.dPFlow = p.feeds[i].NOZ.KFlow = 0.0;
    }
    for (std::size_t i = 1; i < p.prods.size(); ++i) {
        p.prods[i].PRES.value = 10000.0;
        p.prods[i].NOZ.dPFlow = p.prods[i].NOZ.KFlow = 0.0;
    }
    for (std::size_t i = 1; i < p.fos.size(); ++i) p.fos[i].PIN.value = p.fos[i].POUT.value = p.fos[i].DP.value = 0.0;
    for (std::size_t i = 1; i < p.valves.size(); ++i)
        p.valves[i].PIN.value = p.valves[i].POUT.value = p.valves[i].DP.value = 0.0;
    for (std::size_t i = 1; i < p.comps.size(); ++i) p.comps[i].PIN.value = p.comps[i].POUT.value = 0.0;
    for (std::size_t i = 1; i < p.vessels.size(); ++i) {
        Vessel& v = p.vessels[i];
        v.PRES.value = 10000.0;
        for (std::size_t n = 1; n <= kNozzles; ++n) v.NOZI[n].KFlow = v.NOZI[n].dPFlow = v.NOZO[n].KFlow = v.NOZO[n].dPFlow = 0.0;
    }
}

}  // namespace velm
