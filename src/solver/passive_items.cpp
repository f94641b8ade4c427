#include "solver/passive_items.hpp"

#include <cmath>
#include <string>
#include <string_view>

#include "correlations/tee_expander.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"

namespace velm {

namespace {


Line* line_at(Project& p, int n) { return n >= 1 && n <= count(p.lines) ? &p.lines[static_cast<std::size_t>(n)] : nullptr; }

const Line* line_at(const Project& p, int n) {
    return n >= 1 && n <= count(p.lines) ? &p.lines[static_cast<std::size_t>(n)] : nullptr;
}

constexpr double kTinyFlow = 1e-05;         // t/h
constexpr double kNegativeDrop = -1e-06;    // kPa
constexpr double kBoreTolerance = 0.01;     // m

bool bores_differ(const Project& p, int a, int b) {
    const Line* la = line_at(p, a);
    const Line* lb = line_at(p, b);
    return la && lb && std::fabs(la->ID.value - lb->ID.value) > kBoreTolerance;
}

}  // namespace

void warn_negative_dP(RunContext& ctx, const Project& p, int inlet, double dP, std::string_view words, const Drawn& d) {
    const Line* in = line_at(p, inlet);
    const double W = in ? in->TFLOW.value : 0.0;
    if (sgn(W) * dP < kNegativeDrop)
        ctx.warn(std::string(words) + trim(d.NAME[1]) + " has negative dP in direction of flow.");
}

void warn_bores_differ(RunContext& ctx, const Project& p, int inlet, int outlet, std::string_view words, const Drawn& d) {
    if (bores_differ(p, inlet, outlet))
        ctx.warn(std::string(words) + trim(d.NAME[1]) + " inlet and outlet pipe IDs differ.");
}

void refresh_tee(RunContext&, Project& p, Tee& t) {
    for (int j = 1; j <= 6; ++j) {
        Line* l = line_at(p, t.CON[static_cast<std::size_t>(j)]);
        if (l && std::fabs(l->TFLOW.value) < kTinyFlow) l->TFLOW.value = 0.0;
    }
}

void refresh_expander(RunContext& ctx, Project& p, Expand& e) { e.CHOKE = Expander_Reducer_choked(ctx, p, e) ? -1 : 0; }

void refresh_nozzle_item(RunContext&, Project& p, NozzleItem& e) {
    const Line* in = line_at(p, e.NOZI.CON);
    const Line* out = line_at(p, e.NOZO.CON);
    if (!in || !out) {
        e.DPELEV = 0.0;
        return;
    }
    double H = e.NOZO.NozHeight - e.NOZI.NozHeight;
    if ((in->LF[3] < 1.0 || out->LF[3] < 1.0) && sgn(out->TFLOW.value) * sgn(H) <= 0.0) H = 0.0;
    e.DPELEV = H * 0.5 * (in->TPROP[4] + out->TPROP[4]) * 9.81 / 1000.0;
}

void warn_check(RunContext& ctx, const Project& p, const Check& cv) {
    warn_negative_dP(ctx, p, cv.CON[1], cv.DP.value, "Warning! Check valve ", cv);
    warn_bores_differ(ctx, p, cv.CON[1], cv.CON[2], "Warning! Check valve ", cv);
}

void warn_exchanger(RunContext& ctx, const Project& p, const HX& hx) {
    warn_negative_dP(ctx, p, hx.NOZI.CON, hx.DP.value, "Warning! Exchanger ", hx);
}

void warn_misc(RunContext& ctx, const Project& p, const Misc& m) {
    warn_negative_dP(ctx, p, m.NOZI.CON, m.DP.value, "Warning! Miscellaneous equip ", m);
}

void warn_expander(RunContext& ctx, const Expand& e) {
    if (e.CHOKE) ctx.warn("Warning! Choked flow through expander " + trim(e.NAME[1]));
}

void warn_tee(RunContext& ctx, const Project& p, const Tee& t) {
    if (bores_differ(p, t.C[2], t.M[2])) ctx.warn("Error! Tee " + trim(t.NAME[1]) + " manifold pipe IDs differ.");
}

}  // namespace velm
