// Phase equilibrium of the program's own flash engine: the Soave-Redlich-Kwong
// equation of state (G. Soave, Chem. Eng. Sci. 27 (1972) 1197-1203) with the
// one-parameter quadratic mixing rule, an extended Antoine vapour pressure, the
// two K-value methods "SRK" and "ANTOINE", and the closed-form cubic and
// quartic solvers they lean on.
//
// Units everywhere: T in K, P in kPa absolute, R = 8.314 kJ/kmol/K. A
// composition is an array of mole fractions indexed like the component set:
// comps[1..n] (element 0 unused), x[1..n], kij[i][j] for i, j in 1..n.
// A missing critical constant is replaced by an estimate and the replacement is
// logged every time the component's parameters are evaluated.
#pragma once

#include <array>
#include <span>
#include <string_view>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"
#include "thermo/components.hpp"

namespace velm {

using Kij = std::vector<std::vector<double>>;  // binary interaction coefficients, (n+1) x (n+1)
using CompSpan = std::span<const CompProp>;    // comps[1..n]
using Fractions = std::span<const double>;     // mole fractions x[1..n]

inline constexpr int kLiquid = 0;
inline constexpr int kVapor = 1;
inline constexpr double kGasConstant = 8.314;  // kJ/kmol/K

// True when text, without surrounding blanks and without regard to case,
// equals word (given in upper case).
bool same_word(std::string_view text, std::string_view word);

// exp(x) with x clipped to -200..200, so that fugacity coefficients and vapour
// pressures stay finite.
double SafeExp(double x);

// log10(x) for x above 0; the value 1e-12 (not its logarithm) otherwise.
double Log10Safe(double x);

// Mole weight of the mixture, kg/kmol: sum of x(i) * MW(i).
double MixMW(Fractions x, CompSpan comps);

// True when the mixture is nearly pure water: a component whose trimmed name
// is "WATER" (any case) has a fraction above 0.999.
bool IsPureWater(Fractions x, CompSpan comps);

// Reduced temperature T / Tc. Without Tc: Tc = 2.7 * TBP^0.9, logged as an
// estimate; without TBP either, Tc = 500 K, logged as an error.
double Tred(RunContext& ctx, double T, double TBP, double TC);

// Reduced pressure P / Pc, P and Pc in kPa; without Pc, 50 bar is assumed.
double Pred(RunContext& ctx, double P, double PC);

// Soave's m = 0.48 + 1.574 w - 0.176 w^2. A missing acentric factor (0 counts
// as missing) is estimated by Edmister's correlation from TBP, Tc and Pc in
// bar; without those, 0.3.
double SRK_m(RunContext& ctx, const CompProp& c);

// Soave's alpha = (1 + m (1 - Tr^0.5))^2, the inner term floored at 1e-9 so
// that alpha stays positive far above the critical temperature.
double SRK_Alpha(RunContext& ctx, double T, const CompProp& c);

// Dimensionless pure-component parameters at T (K) and P (kPa):
// Ai = 0.42747 alpha Pr / Tr^2, Bi = 0.08664 Pr / Tr (Soave's constants as
// published, to five figures).
double SRK_Ai(RunContext& ctx, double T, double P, const CompProp& c);
double SRK_Bi(RunContext& ctx, double T, double P, const CompProp& c);

// Mixture parameters: A = sum_i sum_j x_i x_j (1 - kij) sqrt(Ai Aj), B = sum_i x_i Bi.
double SRK_Amix(RunContext& ctx, double T, double P, Fractions x, CompSpan comps, const Kij& kij);
double SRK_Bmix(RunContext& ctx, double T, double P, Fractions x, CompSpan comps);

// Root of Z^3 - Z^2 + (A - B - B^2) Z - A B = 0 by Cardano's closed form
// (trigonometric form for three real roots). Phase kLiquid takes the smallest
// positive root (1e6 when none is positive), kVapor the largest (0 when none
// is positive); any other phase logs an error and gives 0.
double SRK_Z(RunContext& ctx, int phase, double A, double B);

// Fugacity coefficients of the phase of composition x at T, P into phi[1..n]:
// ln phi_i = Bi/B (Z - 1) - ln(Z - B) + A/B (Bi/B - 2 S_i/A) ln(1 + B/Z),
// S_i = sum_j (1 - kij) x_j sqrt(Ai Aj). Returns Z; 0 (phi untouched) when phi
// and comps differ in size. A degenerate composition (B = 0) raises a Fault.
double SRK_Fugacity(RunContext& ctx, int phase, double T, double P, Fractions x, CompSpan comps, const Kij& kij,
                    std::span<double> phi);

// K-value method: "ANTOINE" (Raoult's law on the vapour pressure) or "SRK"
// (phi_L / phi_V), compared without regard to case.
enum class KMethod { Antoine, Srk, Unknown };
KMethod k_method(std::string_view name);

// K(i) = y_i / x_i estimates at T, P into K[1..n] for the liquid x and the
// vapour y. Returns 2 when the model sees two distinct phases, 1 when not
// (ANTOINE: the mole-averaged reduced temperature of x is above 1; SRK: the
// vapour and liquid roots coincide within 1e-4 or cross), 0 when K and comps
// differ in size or the method is unknown (K untouched).
int Kvalues(RunContext& ctx, double T, double P, Fractions x, Fractions y, std::string_view method, CompSpan comps,
            const Kij& kij, std::span<double> K);

// Vapour pressure, kPa, at T K. Water below 647.096 K: IAPWS-IF97 saturation
// pressure. Otherwise the extended Antoine ln P = A + B/(C + T) + D ln T + E T^2
// (its range is not enforced); without coefficients the Lee-Kesler-type
// estimate Pc exp(5.373 (1 + w)(1 - Tc/T)); without those, 100 kPa. A numeric
// fault is logged and gives 0.
double VapPres(RunContext& ctx, double T, const CompProp& c);

// The vapour fraction of a single phase of composition z, 0.0 (liquid) or 1.0
// (vapour), for the K-value method in force. ANTOINE: vapour when the liquid
// root of the cubic is above 0.3. SRK: vapour when the liquid-root volume lies
// beyond the vapour-side spinodal (the largest root of dP/dv = 0), or when the
// spinodal has fewer than four real roots (above the critical point). Any other
// method: 0.0. Numeric faults travel to the caller.
double PhaseCheck(RunContext& ctx, std::string_view kmethod, double T, double P, Fractions z, CompSpan comps,
                  const Kij& kij);

// Real roots of a[3] x^3 + a[2] x^2 + a[1] x + a[0] (coefficients from degree
// 0 up) by Cardano's formulas, falling back to the quadratic and linear cases;
// each root is polished by one Newton step. n gets the number of real roots.
void CubicRoots(const std::array<double, 4>& a, std::array<double, 3>& roots, int& n);

// Roots of a[4] x^4 + ... + a[0] by Ferrari's method (depressed quartic and
// resolvent cubic). re and im get the four roots, n the number of real ones
// (4, 2 or 0). a[4] = 0 or a resolvent without solution tells the user and
// gives n = 0.
void QuarticRoots(RunContext& ctx, const std::array<double, 5>& a, std::array<double, 4>& re,
                  std::array<double, 4>& im, int& n);

// ---------------------------------------------------------------------------
// Evaluation at one state for the flash routines. The pure-component
// parameters and the pair terms (1 - kij) sqrt(Ai Aj) depend on T and P only,
// so a flash computes them once per (T, P) and every composition evaluated at
// that state reads them: same formulas, without re-evaluating them for every
// pair. Fixed-size arrays: no allocation in the iterations.

using CompArray = std::array<double, kMaxComps + 1>;

struct SrkState {
    bool valid = false;
    double T = 0.0, P = 0.0;  // K, kPa
    std::size_t n = 0;
    CompArray Tr{}, m{}, alpha{}, Ai{}, Bi{};
    CompArray dalpha{};  // (m/2) sqrt(Tr/alpha): -T d(sqrt alpha)/dT / sqrt alpha
    std::array<CompArray, kMaxComps + 1> Aij{};  // (1 - kij) sqrt(Ai Aj)
};

// The state at T, P, recomputed only when T or P differ from the cached one
// (the cache must serve one component set for its whole life). Raises a Fault
// when comps holds more than kMaxComps components.
const SrkState& srk_state(RunContext& ctx, SrkState& cache, double T, double P, CompSpan comps, const Kij& kij);

// Mixture terms of one composition at a state.
struct SrkMixture {
    double A = 0.0, B = 0.0;
    CompArray S{};  // S_i = sum_j Aij x_j
};
void srk_mixture(const SrkState& st, Fractions x, SrkMixture& mix);

// Fugacity coefficients of a mixture at its state into phi[1..n]; returns Z.
double srk_fugacity(RunContext& ctx, const SrkState& st, int phase, const SrkMixture& mix, std::span<double> phi);

// Work space of one K-value evaluation.
struct KvalueWork {
    SrkMixture liq, vap;
    CompArray phiL{}, phiV{};
};

// Kvalues at a state (sizes already checked by the caller).
int kvalues_at(RunContext& ctx, KMethod method, const SrkState& st, CompSpan comps, Fractions x, Fractions y,
               std::span<double> K, KvalueWork& work);

// PhaseCheck at a state, for a composition whose mixture terms are in mix.
double phase_check_at(RunContext& ctx, KMethod method, const SrkState& st, const SrkMixture& mix);

// Ln(Z - B) and ln(1 + B/Z) with the checks of the fugacity and departure terms.
double srk_log_free_volume(double Z, double B);
double srk_log_attraction(double Z, double B);

}  // namespace velm
