// The heat and mole balance: its check, its two solves and its flashes.
#include "balance/balance.hpp"

#include <cmath>

#include "balance/balance_rows.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"
#include "thermo/components.hpp"
#include "thermo/srk.hpp"

namespace velm {

namespace {

constexpr double kKelvin = 273.15;
constexpr double kZeroFlow = 0.0001;  // t/h: a smaller flow is none

bool is_used(const Project& p, int L) { return L >= 1 && L <= count(p.lines); }

Line& line_at(Project& p, int L) { return p.lines[static_cast<std::size_t>(L)]; }

double composition_sum(const Comps& x, std::size_t n) {
    double sum = 0.0;
    for (std::size_t c = 1; c <= n; ++c) sum += x[c];
    return sum;
}

// The name of a flash stream: the last eight characters of the item's name.
std::string stream_name(const std::string& name, const char* suffix) {
    const std::string t = trim(name);
    return (t.size() > 8 ? t.substr(t.size() - 8) : t) + suffix;
}

// The problem of a two-port item whose inlet and outlet flows run against
// each other.
template <class R>
std::string opposed_flows(Project& p, std::vector<R>& items, const char* word) {
    for (int i = 1; i <= count(items); ++i) {
        R& r = items[static_cast<std::size_t>(i)];
        int in = 0, out = 0;
        if constexpr (requires { r.CON; }) {
            in = r.CON[1];
            out = r.CON[2];
        } else {
            in = r.NOZI.CON;
            out = r.NOZO.CON;
        }
        if (!is_used(p, in) || !is_used(p, out)) continue;
        if (sgn(line_at(p, in).TFLOW.value) * sgn(line_at(p, out).TFLOW.value) < 0.0) {
            r.COLOR = p.color_error;
            return std::string("Error! ") + word + trim(r.NAME[1]) + " inlet/outlet flow different directions.";
        }
    }
    return "";
}

std::string check_feeds_and_products(Project& p, std::size_t n) {
    for (int i = 1; i <= count(p.feeds); ++i) {
        Feed& f = p.feeds[static_cast<std::size_t>(i)];
        if (!is_used(p, f.NOZ.CON)) continue;
        const Line& l = line_at(p, f.NOZ.CON);
        std::string problem;
        if (l.TFLOW.value < 0.0) problem = "Error! Feed " + trim(f.NAME[1]) + " flow negative.";
        else if (std::abs(composition_sum(l.COMP0, n) - 1.0) > 0.01)
            problem = "Error! Feed " + trim(f.NAME[1]) + " composition <> 1.0";
        if (!problem.empty()) {
            f.COLOR = p.color_error;
            return problem;
        }
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        Prod& r = p.prods[static_cast<std::size_t>(i)];
        if (is_used(p, r.NOZ.CON) && line_at(p, r.NOZ.CON).TFLOW.value < 0.0) {
            r.COLOR = p.color_error;
            return "Error! Product " + trim(r.NAME[1]) + " flow negative.";
        }
    }
    return "";
}

std::string check_vessel_flows(RunContext& ctx, Project& p, std::size_t n) {
    for (int i = 1; i <= count(p.vessels); ++i) {
        Vessel& v = p.vessels[static_cast<std::size_t>(i)];
        const std::string head = "Error! Vessel " + trim(v.NAME[1]);
        for (int k = 1; k <= kNozzles; ++k) {
            const int in = v.NOZI[static_cast<std::size_t>(k)].CON, out = v.NOZO[static_cast<std::size_t>(k)].CON;
            std::string problem;
            if (is_used(p, in) && line_at(p, in).TFLOW.value < 0.0) problem = head + " inlet flow negative.";
            else if (is_used(p, out) && line_at(p, out).TFLOW.value < 0.0) problem = head + " outlet flow negative.";
            if (!problem.empty()) {
                v.COLOR = p.color_error;
                return problem;
            }
            if (is_used(p, out) && std::abs(composition_sum(line_at(p, out).COMP0, n) - 1.0) > 0.01)
                ctx.log_error("Warning! Vessel " + trim(v.NAME[1]) + " outlet composition <> 1.0");
        }
    }
    return "";
}

std::string check_vessel_nozzles(Project& p) {
    for (int i = 1; i <= count(p.vessels); ++i) {
        Vessel& v = p.vessels[static_cast<std::size_t>(i)];
        const std::string head = "Error! Vessel " + trim(v.NAME[1]);
        const auto out = [&](int k) { return v.NOZO[static_cast<std::size_t>(k)].CON; };
        const auto in = [&](int k) { return v.NOZI[static_cast<std::size_t>(k)].CON; };
        std::string problem;
        if (!is_used(p, out(1)) || trim(line_at(p, out(1)).TFLOW.spec).empty())
            problem = head + " no vapor flow spec/estimate.";
        else if (!is_used(p, out(2))) problem = head + " no liquid outlet connection.";
        else if (!is_used(p, in(1)) && !is_used(p, in(2)) && !is_used(p, in(3))) problem = head + " no inlet connection.";
        else if (out(3) != 0) problem = head + " line not allowed at Out 3 for HWB.";
        else if (out(4) != 0) problem = head + " line not allowed at Out 4 for HWB.";
        if (!problem.empty()) {
            v.COLOR = p.color_error;
            return problem;
        }
    }
    return "";
}

}  // namespace

bool FlashLineEnd(RunContext& ctx, Project& p, const FlashSetup& setup, int L, int pos, int trace) {
    Line& l = line_at(p, L);
    const auto e = static_cast<std::size_t>(pos);
    FlashStream s;
    s.NAME = stream_name(l.NAME[1], pos == 1 ? "_In" : "_Out");
    s.T = l.TEMP[e] + kKelvin;
    s.P = setup.PATM + l.PRES[e];
    s.LF = l.LF[e];
    s.H = l.H[e];
    s.S = l.S[e];
    s.FT = l.FT[e];
    s.Z = l.COMP0;
    s.Trace = trace;
    if (!Flash(ctx, setup, s)) return false;
    l.TEMP[e] = s.T - kKelvin;
    l.PRES[e] = s.P - setup.PATM;
    l.LF[e] = s.LF;
    l.H[e] = s.H;
    l.S[e] = s.S;
    l.TOTMW = s.TOTMW;
    l.LIQDEN[e] = s.LIQDEN;
    l.LIQVISC[e] = s.LIQVISC;
    l.LIQSUR[e] = s.LIQSUR;
    l.LIQCON[e] = s.LIQCON;
    l.LIQCP[e] = s.LIQCP;
    l.LIQMW[e] = s.LIQMW;
    l.VAPVISC[e] = s.VAPVISC;
    l.VAPMW[e] = s.VAPMW;
    l.VAPZ[e] = s.VAPZ;
    l.VAPK[e] = s.VAPK;
    l.VAPCON[e] = s.VAPCON;
    l.VAPCP[e] = s.VAPCP;
    (pos == 1 ? l.COMPIY0 : l.COMPOY0) = s.Y;
    (pos == 1 ? l.COMPIX0 : l.COMPOX0) = s.X;
    return true;
}

namespace {

// A vessel outlet takes a phase of the vessel's flash: its state (the phase's
// enthalpy when the phase is there, else the flash temperature) and its
// composition, whose change goes into err.
void take_phase(Line& l, bool present, double H, double T, const Comps& x, std::size_t n, double& err) {
    if (present) {
        l.H[1] = H;
        l.FT[1] = kFlashPH;
    } else {
        l.TEMP[1] = T - kKelvin;
        l.FT[1] = kFlashTP;
    }
    for (std::size_t c = 1; c <= n; ++c) {
        err += 1e6 * std::abs(l.COMP0[c] - x[c]);
        l.COMP0[c] = x[c];
    }
}

void flash_vessel(RunContext& ctx, Project& p, const BalanceState& state, Vessel& v, double& err) {
    const std::size_t n = state.setup.count();
    const VesselFeed feed = vessel_feed(&ctx, p, state.setup, v);
    const double Ftot = feed.Ftot;
    FlashStream s;
    s.NAME = stream_name(v.NAME[1], "");
    s.P = state.setup.PATM + v.PRES.value;
    s.H = feed.H;
    s.FT = kFlashPH;
    s.Z = feed.z;
    s.Trace = 1;
    if (!Flash(ctx, state.setup, s)) return;
    v.LF.value = s.LF;
    if (const int L = v.NOZO[1].CON; is_used(p, L)) {
        Line& vapour = line_at(p, L);
        take_phase(vapour, s.LF < 1.0, s.HV, s.T, s.Y, n, err);
        if (upper(trim(vapour.TFLOW.spec)) != "V") vapour.TFLOW.spec = number_text((1.0 - s.LF) * Ftot);
    }
    if (const int L = v.NOZO[2].CON; is_used(p, L)) take_phase(line_at(p, L), s.LF > 0.0, s.HL, s.T, s.X, n, err);
}

}  // namespace

VesselFeed vessel_feed(RunContext* ctx, const Project& p, const FlashSetup& setup, const Vessel& v) {
    const std::size_t n = setup.count();
    VesselFeed f;
    for (int k = 1; k <= kNozzles; ++k)
        if (const int L = v.NOZI[static_cast<std::size_t>(k)].CON; is_used(p, L))
            if (const double w = p.lines[static_cast<std::size_t>(L)].TFLOW.value; w >= 0.0) f.Ftot += w;
    Comps moles{};
    double N = 0.0, Hmix = 0.0;
    int cnt = 1;
    for (int k = 1; k <= kNozzles; ++k) {
        const int L = v.NOZI[static_cast<std::size_t>(k)].CON;
        if (!is_used(p, L)) continue;
        const Line& l = p.lines[static_cast<std::size_t>(L)];
        const double w = l.TFLOW.value;
        const double M = MixMW(Fractions(l.COMP0.data(), n + 1), CompSpan(setup.comps));
        if (w < 0.0 || !(M > 0.0)) {
            if (ctx != nullptr) ctx->log_error("Error! Vessel feed or Mw invalid for HWB. Vessel = " + trim(v.NAME[1]));
            continue;
        }
        for (std::size_t c = 1; c <= n; ++c) {
            const double add = f.Ftot == 0.0 ? l.COMP0[c] : l.COMP0[c] * w / M;
            moles[c] += add;
            N += add;
        }
        // With no flow the enthalpies are summed and divided by one more than
        // their number, as the mixing rule stands.
        if (f.Ftot == 0.0) {
            Hmix += l.H[2];
            ++cnt;
        } else {
            Hmix += l.H[2] * w / f.Ftot;
        }
    }
    f.H = Hmix / cnt;
    for (std::size_t c = 1; c <= n; ++c) f.z[c] = N != 0.0 ? moles[c] / N : 0.0;
    return f;
}

void HMB_Reset(RunContext& ctx, Project& p, BalanceState& state) {
    state.QMem.assign(p.lines.size(), {});
    for (Line& l : p.lines) {
        l.OUTIN = 0;
        l.REFLINE = 0;
    }
    LoadFlashSetup(ctx, p, library_dir_from_environment(), state.setup);
    if (same_word(state.setup.MFLASH, "HYSYS")) HysysStart(ctx, state.setup, ctx.data_dir);
}

std::string HMB_Check(RunContext& ctx, Project& p, const BalanceState& state) {
    const std::size_t n = state.setup.count();
    if (n == 0) return "Error! No components defined.";
    if (!same_word(state.setup.MFLASH, "VELM") && !same_word(state.setup.MFLASH, "HYSYS"))
        return "Error! Velm/Hysys flash method required for HWB.";
    for (Line& l : p.lines)
        if (std::abs(l.TFLOW.value) < kZeroFlow) l.TFLOW.value = 0.0;
    for (const std::string& problem :
         {opposed_flows(p, p.valves, "Valve "), opposed_flows(p, p.checks, "Check "), opposed_flows(p, p.pumps, "Pump "),
          opposed_flows(p, p.comps, "Comp "), opposed_flows(p, p.fos, "FO "), opposed_flows(p, p.hxs, "HX "),
          opposed_flows(p, p.expands, "Expand "), opposed_flows(p, p.miscs, "Misc "), check_feeds_and_products(p, n),
          check_vessel_flows(ctx, p, n), check_vessel_nozzles(p)})
        if (!problem.empty()) return problem;
    return "";
}

bool MolHeatBalance(RunContext& ctx, Project& p, BalanceState& state, double& err) {
    constexpr const char* kWords = "Error! In MolHeatBalance = ";
    const int lines = count(p.lines);
    const std::size_t n = state.setup.count();
    bool failed = false;
    std::vector<bool> fixed(p.lines.size(), false);
    std::vector<double> sum(p.lines.size(), 0.0);
    for (int L = 1; L <= lines; ++L) fixed[static_cast<std::size_t>(L)] = IsFixedComp(p, L);

    BalanceRows rows;
    std::vector<int> given;
    failed |= resume_next(ctx, kWords, [&] { Mole_MatrixSetup(ctx, p, state.setup, 0, rows, given); });
    for (std::size_t c = 1; c <= n && !failed; ++c) {
        failed |= resume_next(ctx, kWords, [&] {
            Mole_MatrixSetup(ctx, p, state.setup, static_cast<int>(c), rows, given);
            std::vector<double> x = rows.rhs;
            x.resize(static_cast<std::size_t>(lines) + 1, 0.0);
            if (const int code = SolveMatrix(ctx, rows.A, rows.JA, rows.IA, x, lines, state.work); code != 0) {
                ctx.log_error("Error! Solution search ABORTED. Return Code " + std::to_string(code) +
                              ".\r\nError! Mole compositions not independent.");
                failed = true;
                return;
            }
            const double mw = state.setup.comps[c].MW;
            for (int L = 1; L <= lines; ++L) {
                const auto l = static_cast<std::size_t>(L);
                if (fixed[l]) continue;
                Comps& z = p.lines[l].COMP0;
                if (mw == 0.0) {
                    z[c] = 0.0;
                    ctx.log_error("Error! Zero mole weight for comp " + std::to_string(c));
                } else {
                    z[c] = x[l] / mw;
                }
                sum[l] += z[c];
            }
        });
    }
    if (failed) return true;
    for (int L = 1; L <= lines; ++L) {
        const auto l = static_cast<std::size_t>(L);
        if (fixed[l]) continue;
        for (std::size_t c = 1; c <= n; ++c) p.lines[l].COMP0[c] = sum[l] != 0.0 ? p.lines[l].COMP0[c] / sum[l] : 0.0;
    }
    for (int L = 1; L <= lines; ++L)
        failed |= resume_next(ctx, kWords, [&] {
            Line& l = line_at(p, L);
            double Q = 0.0;
            if (!trim(l.Q.spec).empty()) {
                l.UI.value = 0.0;
                l.TSUR = 0.0;
                Q = std::abs(l.TFLOW.value) > 1e-06 ? leading_number(l.Q.spec) : 0.0;
            } else {
                double tsur = 0.0;
                l.UI.value = Pipe_U(ctx, l, tsur);
                l.TSUR = tsur;
                Q = Pipe_Q(l, state.QMem[static_cast<std::size_t>(L)]);
            }
            err += std::abs(l.Q.value - Q) / 1000.0;
            l.Q.value = Q;
        });
    std::vector<double> h;
    failed |= resume_next(ctx, kWords, [&] {
        Heat_MatrixSetup(ctx, p, state, rows);
        h = rows.rhs;
        h.resize(static_cast<std::size_t>(2 * lines) + 1, 0.0);
        if (const int code = SolveMatrix(ctx, rows.A, rows.JA, rows.IA, h, 2 * lines, state.work); code != 0) {
            ctx.log_error("Error! Solution search ABORTED. Return Code " + std::to_string(code) +
                          ".\r\nError! Enthalpies not independent.");
            failed = true;
            h.clear();
        }
    });
    if (failed || h.empty()) return true;
    for (int L = 1; L <= lines; ++L) {
        line_at(p, L).H[1] = h[static_cast<std::size_t>(2 * L - 1)];
        line_at(p, L).H[2] = h[static_cast<std::size_t>(2 * L)];
    }
    for (int i = 1; i <= count(p.hxs); ++i) {
        HX& x = p.hxs[static_cast<std::size_t>(i)];
        if (is_used(p, x.NOZI.CON) && is_used(p, x.NOZO.CON))
            x.Q.value = 1000.0 * line_at(p, x.NOZI.CON).TFLOW.value *
                        (line_at(p, x.NOZO.CON).H[1] - line_at(p, x.NOZI.CON).H[2]);
    }
    return false;
}

int HMB_Flash(RunContext& ctx, Project& p, BalanceState& state, double& err, int what) {
    if (what & kFlashLineEnds)
        for (int L = 1; L <= count(p.lines); ++L) {
            HMB_FlashLine1(ctx, p, state, L);
            HMB_FlashLine2(ctx, p, state, L);
        }
    if (what & kFlashVessels)
        for (int i = 1; i <= count(p.vessels); ++i) flash_vessel(ctx, p, state, p.vessels[static_cast<std::size_t>(i)], err);
    return 0;
}

bool HMB_FlashLine1(RunContext& ctx, Project& p, const BalanceState& state, int L) {
    return FlashLineEnd(ctx, p, state.setup, L, 1, 1);
}

bool HMB_FlashLine2(RunContext& ctx, Project& p, const BalanceState& state, int L) {
    return FlashLineEnd(ctx, p, state.setup, L, 2, 1);
}

}  // namespace velm
