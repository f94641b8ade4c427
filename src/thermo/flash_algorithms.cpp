#include "thermo/flash_algorithms.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "model/fault.hpp"
#include "thermo/reguli_falsi.hpp"

namespace velm {

namespace {

constexpr double kPhaseEps = 1e-6;    // on VF and the Rachford-Rice Newton step
constexpr double kCompositionEps = 1e-6;
constexpr int kRounds = 1000;
constexpr int kExtrapSame = 0;       // ReguliFalsi's walk before a bracket: same ratio again
constexpr int kExtrapAlternate = 2;  // ReguliFalsi's walk before a bracket: alternate ends

std::string trimmed(const std::string& s) {
    const auto first = s.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

void log_stream(RunContext& ctx, const char* words, const FlashStream& s) {
    ctx.log_error(words + trimmed(s.NAME) + ".");
}

// Vapour fraction of the Rachford-Rice equation sum z (K - 1) / (1 + V (K - 1)) = 0
// by Newton's method, kept inside the bracket [lo, hi] that the K-values allow
// (Whitson and Michelsen's bounds) and bisecting when a step leaves it.
double rachford_rice(const Comps& z, const CompArray& K, std::size_t n) {
    double lo = 0.0;
    double hi = 1.0;
    for (std::size_t i = 1; i <= n; ++i) {
        if (K[i] > 1.0) {
            const double v = (z[i] * K[i] - 1.0) / (K[i] - 1.0);
            if (v > lo) lo = v;
        } else if (K[i] < 1.0) {
            const double v = (1.0 - z[i]) / (1.0 - K[i]);
            if (v > 0.0 && v < hi) hi = v;
        }
    }
    double V = (lo + hi) * 0.5;
    for (int round = 1; round <= kRounds; ++round) {
        double g = 0.0;
        double dg = 0.0;
        for (std::size_t i = 1; i <= n; ++i) {
            const double t = checked_div(K[i] - 1.0, (1.0 - V) + V * K[i]);
            g += t * z[i];
            dg -= t * t * z[i];
        }
        if (g > 0.0) lo = V;
        else hi = V;
        if (dg == 0.0) dg = 1e-15;
        const double step = -g / dg;
        const double Vn = V + step;
        V = (Vn >= lo && Vn <= hi) ? Vn : (lo + hi) * 0.5;
        if (std::abs(step) < kPhaseEps) break;
    }
    return V;
}

// Divides a[1..n] by its sum.
void normalise(CompArray& a, std::size_t n) {
    double sum = 0.0;
    for (std::size_t i = 1; i <= n; ++i) sum += a[i];
    for (std::size_t i = 1; i <= n; ++i) a[i] = checked_div(a[i], sum);
}

// Enthalpy (or entropy) of one phase of the stream at temperature T.
double phase_value(RunContext& ctx, const FlashSetup& fs, FlashWork& w, bool entropy, int phase, double T,
                   double P, Fractions x) {
    if (entropy) return entropy_at(ctx, w.hmethod, phase, T, P, x, fs.comps, fs.kij, w.state);
    return enthalpy_at(ctx, w.hmethod, phase, T, P, x, fs.comps, fs.kij, w.state);
}

// PH and PS: the temperature at which the stream's enthalpy (entropy) equals
// the given one.
struct PropertySearch {
    bool entropy;
    double factor;
    const char* out_of_range;
    const char* not_converged;
    const char* error;
};

int property_search(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w, const PropertySearch& ps) {
    return trapped(ctx, ps.error, [&]() -> int {
        double T0 = s.T;
        if (T0 == 0.0 || !fs.MFLASHR) T0 = kFlashStartT;
        const double target = ps.entropy ? s.S : s.H;
        double x1 = 0.0, x2 = 0.0, f = 0.0, f1 = 0.0, f2 = 0.0;
        int bracketed = 0;
        int np = 0;
        bool rounds_out = true;
        for (int round = 1; round <= kRounds; ++round) {
            s.T = T0;
            np = flash_tp(ctx, fs, s, w);
            const double vap = phase_value(ctx, fs, w, ps.entropy, kVapor, s.T, s.P, s.Y);
            const double liq = phase_value(ctx, fs, w, ps.entropy, kLiquid, s.T, s.P, s.X);
            f = target - ((1.0 - s.LF) * vap + s.LF * liq);
            const double step = ReguliFalsi(ctx, kSearchQuadratic, 0, bracketed, T0, x1, x2, f, f1, f2, ps.factor);
            if (std::abs(checked_div(step, T0)) < 1e-6 || f == 0.0) {
                rounds_out = false;
                break;
            }
            if (T0 > kPropertySearchTmax || T0 < kPropertySearchTmin) {
                log_stream(ctx, ps.out_of_range, s);
                rounds_out = false;
                break;
            }
        }
        s.T = T0;
        // A pure component or an azeotrope: the property jumps at one
        // temperature, and the split follows from the lever rule.
        if (std::abs(f) > 0.0001) {
            const double vap = phase_value(ctx, fs, w, ps.entropy, kVapor, s.T, s.P, s.Y);
            const double liq = phase_value(ctx, fs, w, ps.entropy, kLiquid, s.T, s.P, s.X);
            if (std::abs(vap - liq) > 0.0001) {
                s.LF = (vap - target) / (vap - liq);
            } else {
                const SrkState& st = srk_state(ctx, w.state, s.T, s.P, fs.comps, fs.kij);
                srk_mixture(st, s.X, w.feed);
                s.LF = 1.0 - phase_check_at(ctx, w.kmethod, st, w.feed);
            }
        }
        if (s.LF < 0.0001) s.LF = 0.0;
        else if (s.LF > 0.9999) s.LF = 1.0;
        s.VF = 1.0 - checked_div(MixMW(s.Z, fs.comps) * s.LF, MixMW(s.X, fs.comps));
        if (rounds_out) {
            log_stream(ctx, ps.not_converged, s);
            return 0;
        }
        return np;
    });
}

// PF and TF: the temperature (pressure) at which the liquid weight fraction
// is the given one. The search first hunts, zigzagging outward from the start,
// for a point where the K-values see two phases.
struct FractionSearch {
    double FlashStream::*unknown;  // &FlashStream::T or &FlashStream::P
    double fixed_start;            // start when MFLASHR is off
    double start_floor;            // a stream value below this also takes the fixed start
    double lo, hi;                 // range of the unknown
    double rel_tol;
    double factor;                 // first step of ReguliFalsi
    double hunt;                   // hunting step: unknown * hunt^n
    bool hunt_flags;               // stop hunting once both ends of the range were passed
    double sign;                   // +1: f = VFt - (VF + Resid); -1 the opposite
    const char* not_found;
    const char* unchanged;
    const char* retrograde;
    const char* out_of_range;
    const char* failed;
    const char* error;
};

double target_vapour_fraction(const FlashSetup& fs, const FlashStream& s, double LFt) {
    if (LFt == 0.0 || LFt == 1.0) return 1.0 - LFt;
    return std::clamp(checked_div((1.0 - LFt) * MixMW(s.Z, fs.comps), MixMW(s.Y, fs.comps)), 0.0, 1.0);
}

int fraction_search(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w, const FractionSearch& fr) {
    const FlashStream saved = s;
    try {
        double x0 = s.*fr.unknown;
        if (!fs.MFLASHR || x0 < fr.start_floor) x0 = fr.fixed_start;
        const double LFt = s.LF;
        int n = 1;
        bool hit_max = false, hit_min = false, done = false, abandon = false;
        double x1 = 0.0, x2 = 0.0, f = 0.0, f1 = 0.0, f2 = 0.0;
        int bracketed = 0;
        int extrap = kExtrapAlternate;
        int np = 0;
        int round = 1;
        for (; round <= kRounds; ++round) {
            for (int inner = 1; inner <= kRounds; ++inner) {
                s.*fr.unknown = x0;
                np = flash_tp(ctx, fs, s, w);
                if (np >= 2) break;
                if (round == 1) {
                    x0 = x0 * std::pow(fr.hunt, n);
                    if (fr.hunt_flags && hit_max) {
                        n = -1;
                    } else if (fr.hunt_flags && hit_min) {
                        n = 1;
                    } else {
                        n = -(n + (n > 0 ? 1 : -1));
                    }
                    if (fr.hunt_flags) {
                        if (x0 > fr.hi / fr.hunt) hit_max = true;
                        if (x0 < fr.lo * fr.hunt) hit_min = true;
                        abandon = hit_max && hit_min;
                    } else {
                        abandon = x0 > fr.hi || x0 < fr.lo;
                    }
                    if (abandon) {
                        log_stream(ctx, fr.not_found, s);
                        break;
                    }
                }
                if (round > 1) x0 = (x0 - x1) / 2.0 + x1;
            }
            if (abandon) break;
            f = fr.sign * (target_vapour_fraction(fs, s, LFt) - (s.VF + s.Resid));
            const double step = ReguliFalsi(ctx, kSearchQuadratic, extrap, bracketed, x0, x1, x2, f, f1, f2, fr.factor);
            if (std::abs(step) < 0.1 && !bracketed) {
                if (extrap == kExtrapAlternate) {
                    extrap = kExtrapSame;
                    continue;
                }
                log_stream(ctx, fr.unchanged, s);
                break;
            }
            if (std::abs(checked_div(step, x0)) < fr.rel_tol || f == 0.0) {
                // The fraction moved against the unknown: a retrograde region.
                if (x0 - x1 != 0.0 && (f - f1) / (x0 - x1) > 0.0) log_stream(ctx, fr.retrograde, s);
                done = true;
                break;
            }
            if (x0 > fr.hi || x0 < fr.lo) {
                log_stream(ctx, fr.out_of_range, s);
                break;
            }
        }
        if (round > kRounds || !done) {
            log_stream(ctx, fr.failed, saved);
            s = saved;
            return 0;
        }
        s.LF = LFt;
        s.VF = std::clamp(checked_div((1.0 - s.LF) * MixMW(s.Z, fs.comps), MixMW(s.Y, fs.comps)), 0.0, 1.0);
        return np;
    } catch (const Fault& fault) {
        ctx.log_error(fr.error + fault_text(fault));
        s = saved;
        return 0;
    }
}

}  // namespace

void prepare_flash_work(const FlashSetup& setup, FlashWork& work) {
    work.kmethod = k_method(setup.MFLASHK);
    work.hmethod = h_method(setup.MFLASHH);
    work.state.valid = false;
}

int flash_tp(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    return trapped(ctx, "Error! TP Flash error = ", [&]() -> int {
        const CompSpan comps(fs.comps);
        const std::size_t n = fs.count();
        const SrkState& st = srk_state(ctx, w.state, s.T, s.P, comps, fs.kij);
        const double d = fs.MXYDAMP;
        s.X.fill(0.0);
        s.Y.fill(0.0);
        // The first K-values come from the vapour pressures whatever the method.
        int np = kvalues_at(ctx, KMethod::Antoine, st, comps, s.X, s.Y, w.K, w.kv);
        double V = 0.0;
        bool converged = false;
        for (int round = 1; round <= kRounds && !converged; ++round) {
            s.Resid = 0.0;
            double sk = 0.0;
            for (std::size_t i = 1; i <= n; ++i) sk += s.Z[i] * w.K[i];
            if (np < 2) {
                srk_mixture(st, s.Z, w.feed);
                V = phase_check_at(ctx, w.kmethod, st, w.feed);
            } else if (sk - 1.0 < 0.0) {
                V = 0.0;
                s.Resid = sk - 1.0;  // subcooled
            } else {
                double sz = 0.0;
                for (std::size_t i = 1; i <= n; ++i)
                    if (s.Z[i] != 0.0 && w.K[i] != 0.0) sz += s.Z[i] / w.K[i];
                if (1.0 - sz >= 0.0) {
                    V = 1.0;
                    s.Resid = 1.0 - sz;  // superheated
                } else {
                    V = rachford_rice(s.Z, w.K, n);
                }
            }
            if (!(V > kPhaseEps)) V = 0.0;
            if (!(V < 1.0 - kPhaseEps)) V = 1.0;

            // Phase compositions; a single phase also gets the incipient
            // composition of the absent one.
            for (std::size_t i = 1; i <= n; ++i) {
                w.x[i] = checked_div(s.Z[i], (1.0 - V) + V * w.K[i]);
                w.y[i] = w.x[i] * w.K[i];
            }
            normalise(w.x, n);
            normalise(w.y, n);
            for (std::size_t i = 1; i <= n; ++i) {
                w.x[i] = (w.x[i] - s.X[i]) * d + s.X[i];
                w.y[i] = (w.y[i] - s.Y[i]) * d + s.Y[i];
            }
            normalise(w.x, n);
            normalise(w.y, n);
            converged = true;
            for (std::size_t i = 1; i <= n; ++i) {
                if (std::abs(s.X[i] - w.x[i]) > kCompositionEps || std::abs(s.Y[i] - w.y[i]) > kCompositionEps)
                    converged = false;
                s.X[i] = w.x[i];
                s.Y[i] = w.y[i];
            }
            if (!converged) np = kvalues_at(ctx, w.kmethod, st, comps, s.X, s.Y, w.K, w.kv);
        }
        s.VF = V;
        if (std::abs(s.VF) < kPhaseEps) {
            s.LF = 1.0;
        } else if (std::abs(s.VF - 1.0) < kPhaseEps) {
            s.LF = 0.0;
        } else {
            s.LF = checked_div((1.0 - s.VF) * MixMW(s.X, comps), MixMW(s.Z, comps));
        }
        if (!converged) log_stream(ctx, "Error! TP flash did not converge. Stream ", s);
        return np;
    });
}

int flash_ph(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    static constexpr PropertySearch kPH{false, 1.05, "Error! PH flash temperature outside max/min range. Stream ",
                                        "Error! Failed convergence in PH Flash. Stream ", "Error! PH Flash error = "};
    return property_search(ctx, fs, s, w, kPH);
}

int flash_ps(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    static constexpr PropertySearch kPS{true, 1.1, "Error! PS flash temperature outside max/min range. Stream ",
                                        "Error! Failed convergence in PS Flash. Stream ", "Error! PS Flash error = "};
    return property_search(ctx, fs, s, w, kPS);
}

int flash_pf(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    static constexpr FractionSearch kPF{
        &FlashStream::T, kFlashStartT, -std::numeric_limits<double>::infinity(), 50.0, 1000.0, 1e-5, 1.05, 1.05, true, 1.0,
        "Error! Two phase region not found (Tmin>T>Tmax). Stream ",
        "Error! PF Flash fraction not found (T unchanged). Stream ",
        "Warning! PF Flash in retrograde region. Reduce starting pres to 1 atm. Stream ",
        "Error! PF Flash fraction not found (Tmin>T>Tmax). Stream ",
        "Error! Failed convergence in PF Flash. Keep original stream ", "Error! PF Flash error = "};
    return fraction_search(ctx, fs, s, w, kPF);
}

int flash_tf(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    static constexpr FractionSearch kTF{
        &FlashStream::P, kFlashStartP, 0.01, 0.5, 50000.0, 0.0001, 1.2, 1.1, false, -1.0,
        "Error! Two phase region not found (Pmin>P>Pmax). Stream ",
        "Error! TF Flash fraction not found (P unchanged). Stream ",
        "Warning! TF Flash in retrograde region. Change starting temp. Stream ",
        "Error! TF Flash fraction not found (Pmin>P>Pmax). Stream ",
        "Error! Failed convergence in TF Flash. Keep original stream ", "Error! TF Flash error = "};
    return fraction_search(ctx, fs, s, w, kTF);
}

namespace {

// A public algorithm with a work space of its own.
template <int (*Run)(RunContext&, const FlashSetup&, FlashStream&, FlashWork&)>
int with_own_work(RunContext& ctx, const FlashSetup& setup, FlashStream& s) {
    FlashWork w;
    prepare_flash_work(setup, w);
    return Run(ctx, setup, s, w);
}

}  // namespace

int FlashTP(RunContext& ctx, const FlashSetup& setup, FlashStream& s) { return with_own_work<flash_tp>(ctx, setup, s); }
int FlashPF(RunContext& ctx, const FlashSetup& setup, FlashStream& s) { return with_own_work<flash_pf>(ctx, setup, s); }
int FlashTF(RunContext& ctx, const FlashSetup& setup, FlashStream& s) { return with_own_work<flash_tf>(ctx, setup, s); }
int FlashPH(RunContext& ctx, const FlashSetup& setup, FlashStream& s) { return with_own_work<flash_ph>(ctx, setup, s); }
int FlashPS(RunContext& ctx, const FlashSetup& setup, FlashStream& s) { return with_own_work<flash_ps>(ctx, setup, s); }

}  // namespace velm
