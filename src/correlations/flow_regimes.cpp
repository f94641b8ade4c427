// Flow pattern maps of two-phase lines.
#include "correlations/flow_regimes.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "correlations/pipe.hpp"
#include "model/fault.hpp"
#include "model/units.hpp"

namespace velm {

bool point_in_polygon(double x, double y, std::span<const double> X, std::span<const double> Y) {
    bool inside = false;
    const std::size_t n = std::min(X.size(), Y.size());
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t j = (i + 1) % n;
        if ((Y[i] < y && Y[j] >= y) || (Y[j] < y && Y[i] >= y)) {
            if (X[i] + (y - Y[i]) / (Y[j] - Y[i]) * (X[j] - X[i]) < x) inside = !inside;
        }
    }
    return inside;
}

namespace {

constexpr double kGravity = 9.81;       // m/s2
constexpr double kFeetPerMetre = 3.2808;

struct Corner {
    double x, y;
};

// Whether (ln x, ln y) lies in the polygon whose corners are given in linear
// coordinates: the maps are drawn on log-log paper.
template <std::size_t N>
bool in_log_polygon(double x, double y, const Corner (&corners)[N]) {
    std::array<double, N> X{}, Y{};
    for (std::size_t i = 0; i < N; ++i) {
        X[i] = std::log(corners[i].x);
        Y[i] = std::log(corners[i].y);
    }
    return point_in_polygon(checked_log(x), checked_log(y), X, Y);
}

// Mandhane, Gregory and Aziz (1974), horizontal flow pattern map, corners of
// its regions digitised as (superficial gas, superficial liquid velocity),
// ft/s. Above a liquid velocity of 14.1 ft/s the flow is dispersed bubble.
constexpr Corner kMandhaneBubble[] = {{0.01, 14.1}, {3.1, 14.1}, {2.2, 2.3}, {2.4, 1.2}, {4.5, 0.5}, {0.01, 0.5}};
constexpr Corner kMandhaneStratified[] = {{0.01, 0.5}, {4.5, 0.5}, {7.5, 0.32},
                                          {11.2, 0.18}, {33.0, 0.01}, {0.01, 0.01}};
constexpr Corner kMandhaneSlug[] = {{3.1, 14.1}, {225.0, 14.1}, {126.0, 4.0}, {38.0, 0.62}, {36.0, 0.45},
                                    {40.0, 0.32}, {7.5, 0.32},   {4.5, 0.5},   {2.4, 1.2},   {2.2, 2.3}};
constexpr Corner kMandhaneWave[] = {{7.5, 0.32}, {40.0, 0.32}, {57.0, 0.1}, {67.0, 0.01}, {33.0, 0.01}, {11.2, 0.18}};
constexpr Corner kMandhaneAnnular[] = {{67.0, 0.01}, {57.0, 0.1},    {40.0, 0.32},   {36.0, 0.45},  {38.0, 0.62},
                                       {126.0, 4.0}, {225.0, 14.1}, {1000.0, 14.1}, {1000.0, 0.01}};

// Taitel and Dukler (1976), horizontal map. Curve A, the end of stratified
// flow, as a region in (X, F); curve D, the start of dispersed bubble flow to
// the right of X = 1.6 (curve B), as a region in (X, T).
constexpr Corner kTaitelDuklerStratified[] = {{1e-06, 1e-06}, {1e-06, 2.054}, {0.001, 2.054}, {0.01, 1.523},
                                              {0.1, 0.905},   {1.0, 0.237},   {1.6, 0.141},   {10.0, 0.0151},
                                              {50.0, 0.001},  {50.0, 1e-06}};
constexpr Corner kTaitelDuklerDispersed[] = {{1000000.0, 1000000.0}, {1.6, 1000000.0}, {1.6, 1.29},
                                             {10.0, 1.011},          {100.0, 0.642},   {1000.0, 0.293},
                                             {10000.0, 0.1},         {1000000.0, 0.1}};

// Fair (1960), vertical upward map: each boundary a straight line on log-log
// paper through two points (X, G), G the mass flux in lb/(ft2 s); a point on
// or under a boundary has the pattern below it.
struct Boundary {
    double X1, G1, X2, G2;
    const char* below;
};
constexpr Boundary kFair[] = {
    {0.15, 200.0, 3.2, 3.0, "Bubble"},
    {0.54, 200.0, 16.0, 3.0, "Slug"},
    {2.6, 200.0, 60.0, 8.5, "Annular"},
};

// The inputs of the maps: phase flows t/h, diameters m, properties kg/m3, cP,
// dyne/cm, superficial velocities m/s.
struct Flow {
    double WL, WV, W, ID, IDH, EPS, rhoL, rhoV, muL, muV, sigma, vsl, vsg;
};

const char* mandhane(const Flow& f) {
    const double vsl = std::max(f.vsl * kFeetPerMetre, 0.011);
    const double vsg = std::clamp(f.vsg * kFeetPerMetre, 0.011, 999.0);
    if (vsl >= 14.1) return "Dispersed";
    // Regions share their edges; a later match stands.
    const char* regime = "-";
    if (in_log_polygon(vsg, vsl, kMandhaneBubble)) regime = "Bubble";
    if (in_log_polygon(vsg, vsl, kMandhaneStratified)) regime = "Stratified";
    if (in_log_polygon(vsg, vsl, kMandhaneSlug)) regime = "Slug";
    if (in_log_polygon(vsg, vsl, kMandhaneWave)) regime = "Wave";
    if (in_log_polygon(vsg, vsl, kMandhaneAnnular)) regime = "Annular/Mist";
    return regime;
}

// Friction gradient, Pa/m, of one phase flowing alone: f / D * G^2 / (2 rho).
double phase_gradient(RunContext& ctx, const Flow& f, double flow, double rho, double mu) {
    const double fp = pipe_f(ctx, f.EPS, f.IDH, Re(ctx, flow, f.ID, f.IDH, mu));
    return checked_div(0.06254 * fp * flow * flow / rho, std::pow(f.ID, 5));
}

const char* taitel_dukler_horizontal(RunContext& ctx, const Flow& f) {
    const double dPL = phase_gradient(ctx, f, f.WL, f.rhoL, f.muL);
    const double dPG = phase_gradient(ctx, f, f.WV, f.rhoV, f.muV);
    const double drho = f.rhoL - f.rhoV;
    const double X = checked_sqrt(checked_div(dPL, dPG));
    const double F = checked_sqrt(checked_div(f.rhoV, drho) * f.vsg * f.vsg / kGravity / f.ID);
    const double T = checked_sqrt(checked_div(dPL, drho) / kGravity);
    if (in_log_polygon(X, F, kTaitelDuklerStratified)) return "Stratified";
    if (X <= 1.6) return "Annular-Dispersed";
    if (in_log_polygon(X, T, kTaitelDuklerDispersed)) return "Dispersed-Bubble";
    return "Intermittent";
}

const char* fair(const Flow& f) {
    const double G = std::abs(f.W / 13.805 / (f.ID * f.ID));  // t/h and m to lb/(ft2 s)
    const double X = checked_pow(f.WV / f.WL, 0.9) * checked_sqrt(f.rhoL / f.rhoV) * checked_pow(f.muV / f.muL, 0.1);
    const double lnG = checked_log(G), lnX = checked_log(X);
    for (const Boundary& b : kFair) {
        const double slope = (std::log(b.G2) - std::log(b.G1)) / (std::log(b.X2) - std::log(b.X1));
        if (lnG <= std::log(b.G1) + (lnX - std::log(b.X1)) * slope) return b.below;
    }
    return "Mist";
}

// Taitel, Bornea and Dukler (1980), vertical upward flow.
void taitel_dukler_vertical(const Flow& f, std::string& out) {
    const double drho = f.rhoL - f.rhoV;
    const double s = f.sigma / 1000.0;  // N/m
    const double V1 = 1.15 * checked_pow(drho * kGravity * s / (f.rhoL * f.rhoL), 0.25);  // bubble to slug
    const double V2 = 3.1 * checked_pow(drho * kGravity * s / (f.rhoV * f.rhoV), 0.25);   // annular
    const double V3 = 4.0 * std::pow(f.ID, 0.429) * checked_pow(s / f.rhoL, 0.089) *
                      checked_pow(drho * kGravity / f.rhoL, 0.446) *
                      std::pow(1000.0 * f.rhoL / f.muL, 0.072);  // dispersed bubble
    const double Dc = 4.36 * 4.36 * checked_sqrt((drho * s / kGravity) / (f.rhoL * f.rhoL));  // least bubble-flow bore
    const double Lmin = 40.6 * ((f.vsg + f.vsl) / std::sqrt(kGravity * f.ID) + 0.22);  // entrance length / ID
    if (f.vsg >= V2) {
        out = "Annular";
    } else if (V3 - f.vsg <= f.vsl && 0.923 * f.vsg <= f.vsl) {
        out = "Dispersed-Bubble";
    } else if ((f.vsl + V1) / 3.0 >= f.vsg) {
        out = f.ID >= Dc ? "Bubble" : "Slug";
    } else {
        out = "Slug if L/D > ";
        out += FormatNum(Lmin, 3, 9);
    }
}

// Golan and Stenning (1969), vertical downward flow, velocities in m/s.
const char* golan_stenning(const Flow& f) {
    const double plug = (0.0 - 1.6) / (0.4 - 2.0);
    const double oscillating = (-2.0) / (0.2 - 1.72);
    if (f.vsg <= plug * (f.vsl - 0.4)) return "Plug/Bubble";
    if (f.vsg <= oscillating * (f.vsl - 0.2)) return "Oscillating";
    return "Annular/Mist";
}

}  // namespace

void pipe_flow_regime(RunContext& ctx, Line& line) {
    for (std::size_t i = 1; i <= 3; ++i) line.REG[i] = "-";
    line.REGA[1] = line.REGA[2] = "-";
    if (!is_two_phase(line.LF[3])) return;
    // Each map stands on its own: a fault in one leaves the others to answer.
    const auto statement = [&ctx](auto&& s) { resume_next(ctx, "Error! In pipe flow regime function = ", s); };
    Flow f{};
    f.WL = line.LVFLOW[1];
    f.WV = line.LVFLOW[2];
    f.W = line.TFLOW.value;
    f.ID = line.ID.value;
    f.IDH = line.IDH.value;
    f.EPS = line.EPS.value;
    f.rhoL = line.LPROP[1];
    f.rhoV = line.VPROP[1];
    f.muL = line.LPROP[3];
    f.muV = line.VPROP[3];
    f.sigma = line.LIQSUR[3];
    statement([&] { f.vsl = velocity(ctx, f.WL, f.rhoL, f.ID); });
    statement([&] { f.vsg = velocity(ctx, f.WV, f.rhoV, f.ID); });
    const bool bore = f.ID > 1e-06;
    if (f.WL != 0.0 && f.WV != 0.0 && bore && f.rhoV > 0.0 && f.muL > 0.0) statement([&] { line.REG[2] = fair(f); });
    if (f.rhoL > 0.0 && bore && f.rhoV > 0.0 && f.muL > 0.0)
        statement([&] { taitel_dukler_vertical(f, line.REGA[2]); });
    if (bore) statement([&] { line.REG[3] = golan_stenning(f); });
    if (bore) statement([&] { line.REG[1] = mandhane(f); });
    if (f.rhoL > 0.0 && bore && f.rhoV > 0.0 && std::abs(f.WV) > 1e-06)
        statement([&] { line.REGA[1] = taitel_dukler_horizontal(ctx, f); });
}

}  // namespace velm
