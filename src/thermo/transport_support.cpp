#include "thermo/transport_support.hpp"

#include <algorithm>
#include <cmath>

#include "model/fault.hpp"
#include "thermo/steam_if97.hpp"

namespace velm::transport_support {

namespace {

constexpr double kOmegaA = 0.42747;  // SRK, as rounded in the flash code
constexpr double kOmegaB = 0.08664;
constexpr double kPi = 3.141592654;

// P over the critical pressure PC (kPa); without PC, 50 bar is assumed.
double reduced_pressure(RunContext& ctx, double P, double PC) {
    if (PC != 0.0) return checked_div(P, PC);
    ctx.log_error("Error! Unknown critical pressure. Assume 50 bara.");
    return (P / 100.0) / 50.0;
}

// Acentric factor: the library value, else the Edmister estimate from TBP,
// TC and PC (PC in bar), else 0.3.
double acentric_factor(RunContext& ctx, const CompProp& c) {
    if (c.Acc != 0.0f) return c.Acc;
    if (c.TBP != 0.0f && c.PC != 0.0f && c.TC != 0.0f) {
        ctx.log_error("Warning! Accentric factor estimated.");
        const double pc_bar = c.PC / 100.0;
        const double log10_pc = pc_bar > 0.0 ? std::log10(pc_bar) : 1e-12;
        return (3.0 / 7.0) * log10_pc * checked_div(c.TBP, double(c.TC) - double(c.TBP)) - 1.0;
    }
    ctx.log_error("Error! Accentric factor missing. Assume 0.3");
    return 0.3;
}

// Soave's alpha(T) = [1 + m (1 - Tr^0.5)]^2, the bracket floored at 1e-9 so
// that alpha stays positive far above the critical temperature.
double srk_alpha(RunContext& ctx, double T, const CompProp& c) {
    const double w = acentric_factor(ctx, c);
    const double m = 0.48 + 1.574 * w - 0.176 * w * w;
    double a = 1.0 + m * (1.0 - checked_sqrt(reduced_temperature(ctx, T, c.TBP, c.TC)));
    if (a < 1e-9) a = 1e-9;
    return a * a;
}

double srk_ai(RunContext& ctx, double T, double P, const CompProp& c) {
    const double tr = reduced_temperature(ctx, T, c.TBP, c.TC);
    const double pr = reduced_pressure(ctx, P, c.PC);
    return checked_div(kOmegaA * srk_alpha(ctx, T, c) * pr, tr * tr);
}

double srk_bi(RunContext& ctx, double T, double P, const CompProp& c) {
    const double tr = reduced_temperature(ctx, T, c.TBP, c.TC);
    return checked_div(kOmegaB * reduced_pressure(ctx, P, c.PC), tr);
}

}  // namespace

double water_property(RunContext& ctx, double T, double P, int phase, double (*prop)(double, double),
                      double fallback, const char* missing) {
    const double v = Steam97(ctx, T, P / 1000.0, phase, kSteamVolume);
    if (v != 0.0) return prop(T, 1.0 / v);
    ctx.log_error(missing);
    return fallback;
}

double kij_at(const std::vector<std::vector<double>>& kij, std::size_t i, std::size_t j) {
    if (i >= kij.size() || j >= kij[i].size()) return 0.0;
    return kij[i][j];
}

bool name_is(std::string_view name, std::string_view word) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\0'; };
    while (!name.empty() && blank(name.front())) name.remove_prefix(1);
    while (!name.empty() && blank(name.back())) name.remove_suffix(1);
    if (name.size() != word.size()) return false;
    for (std::size_t k = 0; k < name.size(); ++k) {
        char c = name[k];
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c != word[k]) return false;
    }
    return true;
}

double safe_exp(double x) { return std::exp(std::clamp(x, -200.0, 200.0)); }

double reduced_temperature(RunContext& ctx, double T, double TBP, double TC) {
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

double mixture_molar_mass(std::span<const double> x, const std::vector<CompProp>& comps) {
    double mw = 0.0;
    for (std::size_t i = 1; i < comp_count(x, comps); ++i) mw += x[i] * comps[i].MW;
    return mw;
}

bool is_nearly_pure_water(std::span<const double> x, const std::vector<CompProp>& comps) {
    for (std::size_t i = 1; i < comp_count(x, comps); ++i)
        if (x[i] > 0.999 && name_is(comps[i].Name, "WATER")) return true;
    return false;
}

// The Ai are evaluated afresh for every pair, so a component without data
// logs its fall-back each time it enters the sum.
double srk_mixture_a(RunContext& ctx, double T, double P, std::span<const double> x,
                     const std::vector<CompProp>& comps, const std::vector<std::vector<double>>& kij) {
    const std::size_t n = comp_count(x, comps);
    double a = 0.0;
    for (std::size_t i = 1; i < n; ++i) {
        for (std::size_t j = 1; j < n; ++j) {
            const double aij = checked_sqrt(srk_ai(ctx, T, P, comps[i]) * srk_ai(ctx, T, P, comps[j]));
            a += x[i] * x[j] * (1.0 - kij_at(kij, i, j)) * aij;
        }
    }
    return a;
}

double srk_mixture_b(RunContext& ctx, double T, double P, std::span<const double> x,
                     const std::vector<CompProp>& comps) {
    double b = 0.0;
    for (std::size_t i = 1; i < comp_count(x, comps); ++i) b += x[i] * srk_bi(ctx, T, P, comps[i]);
    return b;
}

// Cardano: with the depressed cubic's p, q and discriminant D, one real root
// for D >= 0 (a double root as well when D is 0), else the trigonometric form
// of three real roots, where the sign s puts arctan's angle in the right
// quadrant. Roots at or below zero are never the liquid root.
double srk_compressibility_root(RunContext& ctx, int phase, double A, double B) {
    const double a = -1.0;
    const double b = A - B - B * B;
    const double c = -A * B;
    const double p = (3.0 * b - a * a) / 3.0;
    const double q = (2.0 * a * a * a - 9.0 * a * b + 27.0 * c) / 27.0;
    const double d = (q / 2.0) * (q / 2.0) + (p / 3.0) * (p / 3.0) * (p / 3.0);
    double roots[3];
    if (d >= 0.0) {
        const double u = std::cbrt(-q / 2.0 + std::sqrt(d));
        const double v = std::cbrt(-q / 2.0 - std::sqrt(d));
        roots[0] = u + v - a / 3.0;
        roots[1] = roots[2] = d == 0.0 ? -(u + v) / 2.0 - a / 3.0 : roots[0];
    } else {
        const double t = checked_div(q / 2.0, checked_sqrt(-(p / 3.0) * (p / 3.0) * (p / 3.0)));
        const double theta = std::atan(checked_div(checked_sqrt(1.0 - t * t), t));
        const double s = q <= 0.0 ? 1.0 : -1.0;
        const double g = 2.0 * s * checked_sqrt(-p / 3.0);
        for (int k = 0; k < 3; ++k) roots[k] = g * std::cos(theta / 3.0 + 2.0 * k * kPi / 3.0) - a / 3.0;
    }
    double lo = 1000000.0;
    double hi = 0.0;
    for (double r : roots) {
        if (r < lo && r > 0.0) lo = r;
        if (r > hi) hi = r;
    }
    if (phase == 0) return lo;
    if (phase == 1) return hi;
    ctx.log_error("Error! Unknown phase for Z. Return 0.");
    return 0.0;
}

}  // namespace velm::transport_support
