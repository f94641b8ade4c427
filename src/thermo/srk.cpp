#include "thermo/srk.hpp"

#include <algorithm>
#include <cmath>

#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"

namespace velm {

namespace {

constexpr double kOmegaA = 0.42747;  // Soave (1972)
constexpr double kOmegaB = 0.08664;
constexpr double kPiZ = 3.141592654;  // pi to ten figures, the value used throughout the program

std::size_t comp_count(CompSpan comps) { return comps.empty() ? 0 : comps.size() - 1; }

// Fraction i, 0 beyond the end of x.
double frac(Fractions x, std::size_t i) { return i < x.size() ? x[i] : 0.0; }

double kij_at(const Kij& kij, std::size_t i, std::size_t j) {
    if (i < kij.size() && j < kij[i].size()) return kij[i][j];
    return 0.0;
}

// Pure-component terms of one component at T, P.
struct Pure {
    double Tr, m, alpha, Ai, Bi;
};

Pure pure_terms(RunContext& ctx, double T, double P, const CompProp& c) {
    Pure p{};
    p.Tr = Tred(ctx, T, c.TBP, c.TC);
    const double Pr = Pred(ctx, P, c.PC);
    p.m = SRK_m(ctx, c);
    double a = 1.0 + p.m * (1.0 - checked_sqrt(p.Tr));
    if (a < 1e-9) a = 1e-9;
    p.alpha = a * a;
    p.Ai = checked_div(kOmegaA * p.alpha * Pr, p.Tr * p.Tr);
    p.Bi = checked_div(kOmegaB * Pr, p.Tr);
    return p;
}

}  // namespace

bool same_word(std::string_view text, std::string_view word) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\0'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    if (text.size() != word.size()) return false;
    for (std::size_t k = 0; k < text.size(); ++k) {
        char c = text[k];
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c != word[k]) return false;
    }
    return true;
}

double SafeExp(double x) { return std::exp(std::clamp(x, -200.0, 200.0)); }

double Log10Safe(double x) { return x > 0.0 ? std::log10(x) : 1e-12; }

double MixMW(Fractions x, CompSpan comps) {
    double mw = 0.0;
    const std::size_t n = std::min(comp_count(comps), x.empty() ? 0 : x.size() - 1);
    for (std::size_t i = 1; i <= n; ++i) mw += x[i] * comps[i].MW;
    return mw;
}

bool IsPureWater(Fractions x, CompSpan comps) {
    for (std::size_t i = 1; i <= comp_count(comps); ++i)
        if (same_word(comps[i].Name, "WATER") && frac(x, i) > 0.999) return true;
    return false;
}

double Tred(RunContext& ctx, double T, double TBP, double TC) {
    double tc = TC;
    if (tc == 0.0) {
        if (TBP != 0.0) {
            tc = 2.7 * checked_pow(TBP, 0.9);
            ctx.log_error("Warning! Critical temperature estimated.");
        } else {
            tc = 500.0;
            ctx.log_error("Error! Critical temperature missing. Assume 500 K.");
        }
    }
    return checked_div(T, tc);
}

double Pred(RunContext& ctx, double P, double PC) {
    if (PC != 0.0) return P / PC;
    ctx.log_error("Error! Unknown critical pressure. Assume 50 bara.");
    return (P / 100.0) / 50.0;
}

double SRK_m(RunContext& ctx, const CompProp& c) {
    double w = c.Acc;
    if (w == 0.0) {
        if (c.TBP != 0.0 && c.PC != 0.0 && c.TC != 0.0) {
            // Edmister: w = 3/7 log10(Pc / 1 bar) / (Tc/Tb - 1) - 1.
            w = (3.0 / 7.0) * Log10Safe(c.PC / 100.0) * checked_div(c.TBP, double(c.TC) - double(c.TBP)) - 1.0;
            ctx.log_error("Warning! Accentric factor estimated.");
        } else {
            w = 0.3;
            ctx.log_error("Error! Accentric factor missing. Assume 0.3");
        }
    }
    return 0.48 + 1.574 * w - 0.176 * w * w;
}

double SRK_Alpha(RunContext& ctx, double T, const CompProp& c) {
    const double Tr = Tred(ctx, T, c.TBP, c.TC);
    double a = 1.0 + SRK_m(ctx, c) * (1.0 - checked_sqrt(Tr));
    if (a < 1e-9) a = 1e-9;
    return a * a;
}

double SRK_Ai(RunContext& ctx, double T, double P, const CompProp& c) {
    const double alpha = SRK_Alpha(ctx, T, c);
    const double Pr = Pred(ctx, P, c.PC);
    const double Tr = Tred(ctx, T, c.TBP, c.TC);
    return checked_div(kOmegaA * alpha * Pr, Tr * Tr);
}

double SRK_Bi(RunContext& ctx, double T, double P, const CompProp& c) {
    const double Pr = Pred(ctx, P, c.PC);
    return checked_div(kOmegaB * Pr, Tred(ctx, T, c.TBP, c.TC));
}

double SRK_Amix(RunContext& ctx, double T, double P, Fractions x, CompSpan comps, const Kij& kij) {
    SrkState st;
    srk_state(ctx, st, T, P, comps, kij);
    SrkMixture mix;
    srk_mixture(st, x, mix);
    return mix.A;
}

double SRK_Bmix(RunContext& ctx, double T, double P, Fractions x, CompSpan comps) {
    double B = 0.0;
    for (std::size_t i = 1; i <= comp_count(comps); ++i) B += frac(x, i) * SRK_Bi(ctx, T, P, comps[i]);
    return B;
}

double SRK_Z(RunContext& ctx, int phase, double A, double B) {
    const double a = -1.0;
    const double b = A - B - B * B;
    const double c = -A * B;
    const double p = (3.0 * b - a * a) / 3.0;
    const double q = (2.0 * a * a * a - 9.0 * a * b + 27.0 * c) / 27.0;
    const double D = (q / 2.0) * (q / 2.0) + (p / 3.0) * (p / 3.0) * (p / 3.0);
    double roots[3];
    if (D >= 0.0) {
        const double u = std::cbrt(-q / 2.0 + std::sqrt(D));
        const double v = std::cbrt(-q / 2.0 - std::sqrt(D));
        roots[0] = u + v - a / 3.0;
        if (D == 0.0) {
            roots[1] = roots[2] = -(u + v) / 2.0 - a / 3.0;
        } else {
            roots[1] = roots[2] = roots[0];
        }
    } else {
        // Three real roots. The sign s puts the arctangent's angle in the
        // right quadrant, so no arccosine is needed. Where rounding next to a
        // double root puts |t| above 1 the square root fails, and so does the
        // flash that asked, with its own message.
        const double t = (q / 2.0) / checked_sqrt(-(p / 3.0) * (p / 3.0) * (p / 3.0));
        const double theta = std::atan(checked_div(checked_sqrt(1.0 - t * t), t));
        const double s = q <= 0.0 ? 1.0 : -1.0;
        for (int k = 0; k < 3; ++k)
            roots[k] = 2.0 * s * std::sqrt(-p / 3.0) * std::cos(theta / 3.0 + 2.0 * k * kPiZ / 3.0) - a / 3.0;
    }
    double lo = 1000000.0;
    double hi = 0.0;
    for (double r : roots) {
        if (r < lo && r > 0.0) lo = r;
        if (r > hi) hi = r;
    }
    if (phase == kLiquid) return lo;
    if (phase == kVapor) return hi;
    ctx.log_error("Error! Unknown phase for Z. Return 0.");
    return 0.0;
}

double SRK_Fugacity(RunContext& ctx, int phase, double T, double P, Fractions x, CompSpan comps, const Kij& kij,
                    std::span<double> phi) {
    if (comps.size() != phi.size()) {
        ctx.log_error("Error! Incorrect array sizes for fugacity coefficients.");
        return 0.0;
    }
    SrkState st;
    srk_state(ctx, st, T, P, comps, kij);
    SrkMixture mix;
    srk_mixture(st, x, mix);
    return srk_fugacity(ctx, st, phase, mix, phi);
}

KMethod k_method(std::string_view name) {
    if (same_word(name, "ANTOINE")) return KMethod::Antoine;
    if (same_word(name, "SRK")) return KMethod::Srk;
    return KMethod::Unknown;
}

int Kvalues(RunContext& ctx, double T, double P, Fractions x, Fractions y, std::string_view method, CompSpan comps,
            const Kij& kij, std::span<double> K) {
    if (comps.size() != K.size()) {
        ctx.log_error("Error! Incorrect array sizes for K values.");
        return 0;
    }
    const KMethod km = k_method(method);
    if (km == KMethod::Unknown) return 0;
    SrkState st;
    srk_state(ctx, st, T, P, comps, kij);
    KvalueWork work;
    return kvalues_at(ctx, km, st, comps, x, y, K, work);
}

double VapPres(RunContext& ctx, double T, const CompProp& c) {
    return trapped(ctx, "Error! Err = ", [&]() -> double {
        const auto antoine = [&] {
            return SafeExp(c.AntA + checked_div(c.AntB, c.AntC + T) + c.AntD * checked_log(T) + c.AntE * T * T);
        };
        if (same_word(c.Name, "WATER")) {
            if (T < 647.096) return Psat97(T) * 1000.0;
            return antoine();
        }
        if (c.AntA != 0.0 && c.AntB != 0.0) return antoine();
        if (c.PC != 0.0 && c.Acc != 0.0 && c.TC != 0.0) {
            ctx.log_error("Warning! Vapor pressure estimated.");
            return c.PC * SafeExp(5.373 * (1.0 + c.Acc) * (1.0 - checked_div(c.TC, T)));
        }
        ctx.log_error("Error! Vapor pressure missing. Assume 1 bara.");
        return 100.0;
    });
}

double PhaseCheck(RunContext& ctx, std::string_view kmethod, double T, double P, Fractions z, CompSpan comps,
                  const Kij& kij) {
    SrkState st;
    srk_state(ctx, st, T, P, comps, kij);
    SrkMixture mix;
    srk_mixture(st, z, mix);
    return phase_check_at(ctx, k_method(kmethod), st, mix);
}

const SrkState& srk_state(RunContext& ctx, SrkState& st, double T, double P, CompSpan comps, const Kij& kij) {
    const std::size_t n = comp_count(comps);
    if (st.valid && st.T == T && st.P == P && st.n == n) return st;
    if (n > static_cast<std::size_t>(kMaxComps)) raise_fault(kFaultInvalidCall);
    st.valid = false;
    st.T = T;
    st.P = P;
    st.n = n;
    for (std::size_t i = 1; i <= n; ++i) {
        const Pure p = pure_terms(ctx, T, P, comps[i]);
        st.Tr[i] = p.Tr;
        st.m[i] = p.m;
        st.alpha[i] = p.alpha;
        st.Ai[i] = p.Ai;
        st.Bi[i] = p.Bi;
        st.dalpha[i] = (p.m / 2.0) * checked_sqrt(p.Tr / p.alpha);
    }
    for (std::size_t i = 1; i <= n; ++i)
        for (std::size_t j = 1; j <= n; ++j)
            st.Aij[i][j] = (1.0 - kij_at(kij, i, j)) * checked_sqrt(st.Ai[i] * st.Ai[j]);
    st.valid = true;
    return st;
}

void srk_mixture(const SrkState& st, Fractions x, SrkMixture& mix) {
    const std::size_t n = st.n;
    double A = 0.0;
    double B = 0.0;
    for (std::size_t i = 1; i <= n; ++i) {
        const auto& row = st.Aij[i];
        double s = 0.0;
        for (std::size_t j = 1; j <= n; ++j) s += row[j] * frac(x, j);
        mix.S[i] = s;
        A += frac(x, i) * s;
        B += frac(x, i) * st.Bi[i];
    }
    mix.A = A;
    mix.B = B;
}

double srk_log_free_volume(double Z, double B) { return checked_log(Z - B); }

double srk_log_attraction(double Z, double B) { return checked_log(1.0 + checked_div(B, Z)); }

double srk_fugacity(RunContext& ctx, const SrkState& st, int phase, const SrkMixture& mix, std::span<double> phi) {
    const double A = mix.A;
    const double B = mix.B;
    const double Z = SRK_Z(ctx, phase, A, B);
    const double l1 = srk_log_free_volume(Z, B);
    const double l2 = srk_log_attraction(Z, B);
    const double aob = checked_div(A, B);
    for (std::size_t i = 1; i <= st.n; ++i) {
        const double bib = checked_div(st.Bi[i], B);
        const double ln_phi = bib * (Z - 1.0) - l1 + aob * (bib - 2.0 * checked_div(mix.S[i], A)) * l2;
        phi[i] = SafeExp(ln_phi);
    }
    return Z;
}

int kvalues_at(RunContext& ctx, KMethod method, const SrkState& st, CompSpan comps, Fractions x, Fractions y,
               std::span<double> K, KvalueWork& work) {
    const std::size_t n = st.n;
    if (method == KMethod::Antoine) {
        double sx = 0.0;
        for (std::size_t i = 1; i <= n; ++i) {
            K[i] = checked_div(VapPres(ctx, st.T, comps[i]), st.P);
            sx += frac(x, i) * st.Tr[i];
        }
        return sx > 1.0 ? 1 : 2;
    }
    if (method != KMethod::Srk) return 0;
    srk_mixture(st, y, work.vap);
    const double ZV = srk_fugacity(ctx, st, kVapor, work.vap, work.phiV);
    srk_mixture(st, x, work.liq);
    const double ZL = srk_fugacity(ctx, st, kLiquid, work.liq, work.phiL);
    for (std::size_t i = 1; i <= n; ++i) K[i] = checked_div(work.phiL[i], work.phiV[i]);
    return (std::abs(ZV - ZL) < 0.0001 || !(ZV > ZL)) ? 1 : 2;
}

double phase_check_at(RunContext& ctx, KMethod method, const SrkState& st, const SrkMixture& mix) {
    const double Zl = SRK_Z(ctx, kLiquid, mix.A, mix.B);
    if (method == KMethod::Antoine) return Zl > 0.3 ? 1.0 : 0.0;
    if (method != KMethod::Srk) return 0.0;
    // Spinodal of the SRK equation, dP/dv = 0:
    // RT v^4 + (2RTb - 2a) v^3 + (3ab + RTb^2) v^2 - a b^3 = 0.
    const double RT = kGasConstant * st.T;
    const double v = checked_div(Zl * RT, st.P);
    const double a = checked_div(mix.A * RT * RT, st.P);
    const double b = checked_div(mix.B * RT, st.P);
    const std::array<double, 5> coef{-a * b * b * b, 0.0, 3.0 * a * b + RT * b * b, -2.0 * a + 2.0 * RT * b, RT};
    std::array<double, 4> re{};
    std::array<double, 4> im{};
    int count = 0;
    QuarticRoots(ctx, coef, re, im, count);
    if (count != 4) return 1.0;  // no spinodal: above the critical point
    const double vmax = *std::max_element(re.begin(), re.end());
    return v > vmax ? 1.0 : 0.0;
}

}  // namespace velm
