// Two-phase pressure drop: hold-up correlations and the slip methods of PipeDP.
#include "correlations/two_phase.hpp"

#include <algorithm>
#include <cmath>

#include "correlations/pipe.hpp"
#include "model/fault.hpp"

namespace velm {

namespace {

constexpr double kGravity = 9.81;  // m/s2, as in the Froude numbers of the hold-up fits

// One curve of the hold-up chart: g(y) = c1 y + c2 y^1.5 - c3 y^2 at a
// two-phase Reynolds number Re, y = |ln L|, Hl = exp(g).
struct HoldupCurve {
    double Re, c1, c2, c3;
};

// Dukler's liquid hold-up correlation (Dukler, Wicks and Cleveland, AIChE J.
// 10 (1964) 44) as charted in the GPSA Engineering Data Book, one fit per
// curve of the chart. The last curve, Re = 1e6, is the no-slip line Hl = L.
constexpr HoldupCurve kHoldupChart[] = {
    {100.0, -0.67351, 0.50131, 0.11449},   {500.0, -0.80818, 0.5848, 0.14626},
    {1000.0, -0.90812, 0.64967, 0.16832},  {2500.0, -0.99372, 0.67327, 0.17685},
    {5000.0, -0.95338, 0.66076, 0.18857},  {10000.0, -1.09848, 0.77078, 0.21854},
    {25000.0, -1.06714, 0.65313, 0.18875}, {50000.0, -1.08188, 0.54125, 0.15445},
    {100000.0, -1.15775, 0.45099, 0.11988}, {200000.0, -1.1886, 0.30442, 0.07711},
    {1000000.0, -1.0, 0.0, 0.0},
};

double chart_curve(const HoldupCurve& c, double y) { return c.c1 * y + c.c2 * y * std::sqrt(y) - c.c3 * y * y; }

// The ratio of two-phase to single-phase gradient in the form
// 1 + a1 / X^0.5 + a2 / X + a3 / X^1.5 + a4 / X^2 (liquid, phi_L^2) and
// 1 + b1 X^0.5 + b2 X + b3 X^1.5 + b4 X^2 (gas, phi_G^2).
struct Multiplier {
    double a1, a2, a3, a4, b1, b2, b3, b4;
};

// Curve fits of the Lockhart and Martinelli (1949) chart of phi_L and phi_G
// against X, by [gas turbulent][liquid turbulent]. The turbulent-turbulent
// pair reads the published curve within 1 % at X = 0.1, 1 and 10.
constexpr Multiplier kLockhartMartinelli[2][2] = {
    {{3.4, 1.3, 0.0, 1.0, 0.0, 4.6, 0.0, 1.3},      // gas laminar, liquid laminar
     {2.7, 7.8, 0.0, 1.15, 1.6, 5.2, 3.0, 1.0}},    // gas laminar, liquid turbulent
    {{2.1, 8.0, 0.0, 1.4, 4.0, 0.0, 5.5, 0.8},      // gas turbulent, liquid laminar
     {1.0, 18.8, -5.0, 2.0, 4.6, 10.0, 0.0, 1.2}},  // both turbulent
};

// Chisholm's (1967) constant C of phi_L^2 = 1 + C / X + 1 / X^2 and
// phi_G^2 = 1 + C X + X^2, by [gas turbulent][liquid turbulent].
constexpr double kChisholmC[2][2] = {{5.0, 10.0}, {12.0, 20.0}};

struct Phis {
    double L, G;  // phi_L^2, phi_G^2
};

Phis multipliers(const Multiplier& m, double X) {
    const double r = std::sqrt(X);
    return {1.0 + m.a1 / r + m.a2 / X + m.a3 / (X * r) + m.a4 / (X * X),
            1.0 + m.b1 * r + m.b2 * X + m.b3 * X * r + m.b4 * X * X};
}

// The Martinelli parameter X = sqrt((dP/dL)_L / (dP/dL)_G) of the phases
// flowing alone in the same pipe, from their Darcy factors, with liquid mass
// fraction x and the phase densities.
double martinelli_X(double x, double fL, double fG, double rhoL, double rhoV) {
    return checked_sqrt(checked_div(checked_div(checked_div(x * x * fL * rhoV, fG), (1.0 - x) * (1.0 - x)), rhoL));
}

// Mixture Froude number vm^2 / (g ID) of the no-slip mixture velocity.
double froude(RunContext& ctx, double W, double rhoNS, double ID) {
    const double v = velocity(ctx, W, rhoNS, ID);
    return checked_div(v * v / kGravity, ID);
}

// Fixed point on the Reynolds number: stop when it changes by less than
// 0.5 % (or is 0); after 100 rounds a message and the last value.
template <class Round>
double converge_holdup(RunContext& ctx, Round&& round) {
    double Hl = 0.0;
    for (int i = 0; i < 100; ++i) {
        double Re0 = 0.0, Re1 = 0.0;
        Hl = round(Re0, Re1);
        if (Re1 == 0.0 || std::abs((Re1 - Re0) / Re1) < 0.005) return Hl;
    }
    ctx.log_error("Error! Liquid holdup for line did not converge.");
    return Hl;
}

// Average properties of a two-phase line, with x the liquid mass fraction.
struct TwoPhaseLine {
    double W, x, rhoL, rhoV, muL, muV, rhoNS, eps;
};

TwoPhaseLine two_phase_of(const Line& line) {
    return {line.TFLOW.value, line.LF[3], line.LPROP[1], line.VPROP[1], line.LPROP[3], line.VPROP[3],
            line.TPROP[3], line.EPS.value};
}

double pow4(double d) { return d * d * d * d; }

}  // namespace

double Hld(RunContext& ctx, double L, double Re) {
    return trapped(ctx, "Error! In Hld function = ", [&] {
        const double Rc = std::max(Re, 100.0);
        const double y = std::abs(checked_log(L));
        constexpr std::size_t n = std::size(kHoldupChart);
        double g = -y;
        if (Rc <= kHoldupChart[0].Re) {
            g = chart_curve(kHoldupChart[0], y);
        } else if (Rc <= kHoldupChart[n - 1].Re) {
            std::size_t i = 1;
            while (Rc > kHoldupChart[i].Re) ++i;
            const HoldupCurve& lo = kHoldupChart[i - 1];
            const HoldupCurve& hi = kHoldupChart[i];
            const double glo = chart_curve(lo, y), ghi = chart_curve(hi, y);
            g = ghi - (std::log(hi.Re) - std::log(Rc)) * (ghi - glo) / (std::log(hi.Re) - std::log(lo.Re));
        }
        return exp_safe(std::max(g, -y));
    });
}

double Hlh(RunContext& ctx, double L, double Re, double NFR) {
    return trapped(ctx, "Error! In Hlh function = ", [&] {
        const double Z = checked_div(checked_pow(Re, 0.1667) * checked_pow(NFR, 0.125), checked_pow(L, 0.25));
        double K = 1.0;
        if (Z > 0.0 && Z < 8.0)
            K = exp_safe(-1.624 + 1.989 * checked_log(Z) - 0.471 * Z + 0.0155 * Z * Z);
        else if (Z >= 8.0)
            K = exp_safe(-0.455 + 0.0898 * checked_log(Z));
        K = std::min(K, 1.0);
        return std::clamp(1.0 - (1.0 - L) * K, L, 1.0);
    });
}

double HLM(RunContext& ctx, double X) {
    return trapped(ctx, "Error! In HLM function = ", [&] {
        if (X == 0.0) return 0.0;
        return checked_div(1.0, checked_sqrt(1.0 + 21.0 / X + 1.0 / (X * X)));
    });
}

double HBB(RunContext& ctx, double L, double NFR) {
    return trapped(ctx, "Error! In HBB function = ", [&] {
        const double Lc = std::max(L, 0.001);
        const double L1 = 316.0 * std::pow(Lc, 0.302);
        const double L2 = 0.0009252 / std::pow(Lc, 2.4684);
        const double L3 = 0.1 / std::pow(Lc, 1.4516);
        const double L4 = 0.5 / std::pow(Lc, 6.738);
        if (NFR <= 0.0) return L;
        const double S = checked(0.98 * checked_pow(L, 0.4846) / std::pow(NFR, 0.0868));  // segregated
        const double I = checked(0.845 * checked_pow(L, 0.5351) / std::pow(NFR, 0.0173));  // intermittent
        const double D = checked(1.065 * checked_pow(L, 0.5824) / std::pow(NFR, 0.0609));  // distributed
        if (0.75 * L1 > NFR && NFR < L2) return S;
        if (0.75 * L1 > NFR && NFR < L3) {
            const double A = checked_div(L3 - NFR, L3 - L2);
            return A * S + (1.0 - A) * I;
        }
        if (NFR < L1 && NFR < L3) {
            const double A = (L1 - NFR) / (L1 - 0.75 * L1);
            return A * S + (1.0 - A) * D;
        }
        if (0.75 * L1 > NFR && 0.75 * L4 > NFR) return I;
        if (0.75 * L1 > NFR && NFR < L4) {
            const double A = (L4 - NFR) / (L4 - 0.75 * L4);
            return A * I + (1.0 - A) * D;
        }
        if (NFR < L1 && NFR < L4) {
            const double A = (L1 - NFR) / (L1 - 0.75 * L1);
            return A * I + (1.0 - A) * D;
        }
        return D;
    });
}

double Dukler_alpha(RunContext& ctx, double L) {
    return trapped(ctx, "Error! In Dukler alpha function= ", [&] {
        const double y = -checked_log(L);
        const double y2 = y * y;
        return 1.0 + checked_div(y, 1.281 - 0.478 * y + 0.444 * y2 - 0.094 * y2 * y + 0.00843 * y2 * y2);
    });
}

double Dukler_beta(RunContext& ctx, double L, double Hl, double rhoL, double rhoV, double rhoNS) {
    return trapped(ctx, "Error! In Dukler beta function = ", [&] {
        double rho_tp = 0.0;
        if (Hl == 1.0)
            rho_tp = rhoL;
        else if (Hl == 0.0)
            rho_tp = rhoV;
        else
            rho_tp = checked_div(L * L * rhoL, Hl) + checked_div((1.0 - L) * (1.0 - L) * rhoV, 1.0 - Hl);
        return rhoNS > 0.0 ? checked(rho_tp / rhoNS) : 1.0;
    });
}

double Beggs_Brill_alpha(RunContext& ctx, double L, double Hl) {
    return trapped(ctx, "Error! In Beggs-Brill alpha function= ", [&] {
        const double y = Hl > 0.0 ? checked_div(L, Hl * Hl) : 1.0;
        double s = 0.0;
        if (y > 1.0 && y < 1.2) {
            s = checked_log(2.2 * y - 1.2);
        } else {
            const double u = checked_log(y);
            const double u2 = u * u;
            s = checked_div(u, -0.0523 + 3.182 * u - 0.8725 * u2 + 0.01853 * u2 * u2);
        }
        return exp_safe(s);
    });
}

double density_momentum(RunContext& ctx, double LF, double Hl, double rhoV, double rhoL) {
    return trapped(ctx, "Error! In density momentum function = ", [&] {
        if (Hl == 0.0 || rhoL == 0.0) return rhoV;
        if (Hl == 1.0 || rhoV == 0.0) return rhoL;
        const double inverse =
            checked_div((1.0 - LF) * (1.0 - LF), rhoV * (1.0 - Hl)) + checked_div(LF * LF, rhoL * Hl);
        return checked_div(1.0, inverse);
    });
}

double liquid_holdup(RunContext& ctx, std::string_view method, double ID, double IDH, double EPS, double W, double LF,
                     double rhoL, double muL, double rhoV, double muV) {
    return trapped(ctx, "Error! In liquid holdup function = ", [&] {
        const double L = LVF(ctx, LF, rhoV, rhoL);
        const double rhoNS = density(ctx, LF, rhoV, rhoL);
        const double mu = Viscosity(ctx, LF, muV, muL, rhoV, rhoL);
        double Hl = L;
        const bool single_phase = LF <= 0.0 || LF >= 1.0;
        if (rhoL <= 0.0 || muL <= 0.0 || rhoV <= 0.0 || muV <= 0.0 || single_phase) {
            Hl = L;
        } else if (method == "GPSA") {
            // Dukler's Reynolds number carries beta, which depends on the hold-up.
            double beta = 1.0;
            Hl = converge_holdup(ctx, [&](double& Re0, double& Re1) {
                Re0 = beta * Re(ctx, W, ID, IDH, mu);
                const double h = Hld(ctx, L, Re0);
                beta = Dukler_beta(ctx, L, h, rhoL, rhoV, rhoNS);
                Re1 = beta * Re(ctx, W, ID, IDH, mu);
                return h;
            });
        } else if (method == "Hughmark") {
            // Hughmark's Reynolds number is on the viscosity weighted by the hold-up.
            double mutp = mu;
            Hl = converge_holdup(ctx, [&](double& Re0, double& Re1) {
                Re0 = Re(ctx, W, ID, IDH, mutp);
                const double h = Hlh(ctx, L, Re0, froude(ctx, W, rhoNS, ID));
                mutp = mix_by_fraction(h, muV, muL);
                Re1 = Re(ctx, W, ID, IDH, mutp);
                return h;
            });
        } else if (method == "Flanigan") {
            Hl = Hfl(velocity(ctx, (1.0 - LF) * W, rhoV, ID));
        } else if (method == "Lockhart-Martinelli") {
            const double fL = pipe_f(ctx, EPS, IDH, Re(ctx, LF * W, ID, IDH, muL));
            const double fG = pipe_f(ctx, EPS, IDH, Re(ctx, (1.0 - LF) * W, ID, IDH, muV));
            Hl = HLM(ctx, martinelli_X(LF, fL, fG, rhoL, rhoV));
        } else if (method == "Beggs-Brill") {
            Hl = HBB(ctx, L, froude(ctx, W, rhoNS, ID));
        } else if (method == "Liquid") {
            Hl = 1.0;
        }
        // Slip only ever holds liquid back: never less than the no-slip hold-up.
        return std::clamp(Hl, L, 1.0);
    });
}

double dukler_beggs_brill_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                      bool per_100m) {
    const TwoPhaseLine p = two_phase_of(line);
    const double L = LVF(ctx, p.x, p.rhoV, p.rhoL);
    double Hl = 0.0, beta = 1.0, alpha = 1.0;
    if (gen.MTP == "Beggs-Brill") {
        Hl = liquid_holdup(ctx, "Beggs-Brill", ID, IDH, p.eps, p.W, p.x, p.rhoL, p.muL, p.rhoV, p.muV);
        alpha = Beggs_Brill_alpha(ctx, L, Hl);
    } else {
        Hl = liquid_holdup(ctx, gen.MDUKHP, ID, IDH, p.eps, p.W, p.x, p.rhoL, p.muL, p.rhoV, p.muV);
        beta = Dukler_beta(ctx, L, Hl, p.rhoL, p.rhoV, p.rhoNS);
        alpha = Dukler_alpha(ctx, L);
    }
    // Both methods take the friction factor of the no-slip flow at a Reynolds
    // number scaled by beta; the flag asks for the smooth pipe of their data.
    const double eps = gen.MDUKF != 0 ? 0.0 : p.eps;
    PipeFriction fr{};
    fr.re = beta * Re(ctx, p.W, ID, IDH, line.TPROP[6]);
    fr.f = pipe_f(ctx, eps, IDH, fr.re);
    fr.fT = pipe_fT(ctx, eps, IDH);
    fr.K = per_100m ? pipe_K(ctx, IDH, 100.0, 0.0, 0.0, fr.f, fr.fT)
                    : pipe_K(ctx, IDH, line.LEN, line.FITLD, line.FITK, fr.f, fr.fT);
    double Cacc = 0.0;
    if (!per_100m) {
        Cacc = pipe_dP_acc(ctx, gen.MACCEL, line, ID, IDH);
        store_pipe_results(line, gen.MTP.c_str(), fr, Cacc * p.W * std::abs(p.W), Hl);
        line.DUK[1] = alpha;
        line.DUK[2] = beta;
    }
    const double s = per_100m ? p.W : 1.0;
    return checked(s * s * (kPipeHead * line.FAC * alpha * beta * fr.K / p.rhoNS / pow4(ID) + Cacc));
}

double lockhart_martinelli_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                       bool per_100m) {
    const TwoPhaseLine p = two_phase_of(line);
    const PipeFriction whole = line_friction(ctx, line, ID, IDH, per_100m);  // reported only
    const double ReL = Re(ctx, p.x * p.W, ID, IDH, p.muL);
    const double fL = pipe_f(ctx, p.eps, IDH, ReL);
    const double ReG = Re(ctx, (1.0 - p.x) * p.W, ID, IDH, p.muV);
    const double fG = pipe_f(ctx, p.eps, IDH, ReG);
    const double X = martinelli_X(p.x, fL, fG, p.rhoL, p.rhoV);
    // Each phase flowing alone is laminar below Re 2000 (no transition band here).
    const bool gas_turbulent = ReG >= 2000.0, liquid_turbulent = ReL >= 2000.0;
    const bool chisholm = gen.MTP == "Chisholm";
    const double C = kChisholmC[gas_turbulent][liquid_turbulent];
    const Phis phi = multipliers(chisholm ? Multiplier{0.0, C, 0.0, 1.0, 0.0, C, 0.0, 1.0}
                                          : kLockhartMartinelli[gas_turbulent][liquid_turbulent],
                                 X);
    // The phase with the larger gradient alone carries the multiplier: the
    // liquid from X = 1 up.
    const bool liquid_side = X >= 1.0;
    const double f_side = liquid_side ? fL : fG;
    const double K = per_100m ? pipe_K(ctx, IDH, 100.0, 0.0, 0.0, f_side, whole.fT)
                              : pipe_K(ctx, IDH, line.LEN, line.FITLD, line.FITK, f_side, whole.fT);
    const double ID4 = pow4(ID);
    const double C2 = liquid_side ? kPipeHead * line.FAC * phi.L * K * p.x * p.x / p.rhoL / ID4
                                  : kPipeHead * line.FAC * phi.G * K * (1.0 - p.x) * (1.0 - p.x) / p.rhoV / ID4;
    if (per_100m) return checked(p.W * p.W * C2);
    const double Cacc = pipe_dP_acc(ctx, gen.MACCEL, line, ID, IDH);
    const double Hl = liquid_holdup(ctx, "Lockhart-Martinelli", ID, IDH, p.eps, p.W, p.x, p.rhoL, p.muL, p.rhoV, p.muV);
    store_pipe_results(line, chisholm ? "Chisholm" : "Lockhart-Martinelli", whole, Cacc * p.W * std::abs(p.W), Hl);
    line.LM = {0.0, ReL, fL, phi.L, ReG, fG, phi.G, X};
    return checked(C2 + Cacc);
}

namespace {

// Exponent of Y in the Chenoweth and Martin (1955) multiplier for
// 1e-5 <= L <= 0.1, a fit of their chart in a = ln Y and b = ln L. For Y
// from 100 to 1000 it meets the limiting forms, Y^(1 + sqrt(50 L)) and
// L^-0.8597, within 4.5 % at either end.
double chenoweth_martin_exponent(double a, double b) {
    const double a2 = a * a, b2 = b * b;
    const double t1 = (-1.179e-08 * a2 * a2 * a2 - 0.0002770907 / b) * a2 - 0.01546;
    const double t2 = (((2.994e-07 * a - 4.2111e-06) * a2 * a2 * a + 0.075567) * a - 0.5273316) * b;
    const double t3 = (((-4.01075e-05 * b - 0.00081599) * a + 0.005219) * a2 - 0.04037787) * b2;
    const double t4 =
        (((-9.17e-08 * a - 7.09e-08 * b) * a + 6.151e-07 * b + 8.228e-06) * b2 - 0.0001601558 * a) * b2 * b2;
    return t1 + t2 + t3 + t4;
}

}  // namespace

double chenoweth_martin_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                                    bool per_100m) {
    const TwoPhaseLine p = two_phase_of(line);
    const PipeFriction whole = line_friction(ctx, line, ID, IDH, per_100m);
    // The whole flow as liquid and as gas.
    const double ReL = Re(ctx, p.W, ID, IDH, p.muL);
    const double fL = pipe_f(ctx, p.eps, IDH, ReL);
    const double ReG = Re(ctx, p.W, ID, IDH, p.muV);
    const double fG = pipe_f(ctx, p.eps, IDH, ReG);
    const double Y = checked_div(checked_div(fG * p.rhoL, fL), p.rhoV);
    const double a = checked_log(Y);
    const double L = LVF(ctx, p.x, p.rhoV, p.rhoL);
    const double b = checked_log(L);
    double Phi = 0.0;
    if (L < 1e-05)
        Phi = checked_pow(Y, 1.0 + std::sqrt(50.0 * L));
    else if (L > 0.1)
        Phi = checked_pow(L, -0.8597);
    else
        Phi = checked_pow(Y, chenoweth_martin_exponent(a, b));
    const double K = per_100m ? pipe_K(ctx, IDH, 100.0, 0.0, 0.0, fL, whole.fT)
                              : pipe_K(ctx, IDH, line.LEN, line.FITLD, line.FITK, fL, whole.fT);
    double Cacc = 0.0;
    if (!per_100m) {
        Cacc = pipe_dP_acc(ctx, gen.MACCEL, line, ID, IDH);
        store_pipe_results(line, "Chenoweth-Martin", whole, Cacc * p.W * std::abs(p.W), 0.0);
        line.LM = {0.0, ReL, fL, Phi, ReG, fG, 0.0, Y};
    }
    const double s = per_100m ? p.W : 1.0;
    return checked(s * s * (kPipeHead * line.FAC * Phi * K / p.rhoL / pow4(ID) + Cacc));
}

double pipe_dP_acc_holdup(RunContext& ctx, std::string_view method, const Line& line, double ID, double IDH) {
    return trapped(ctx, "Error! In pipe dP acc function = ", [&] {
        double rho[3] = {};
        for (std::size_t e : {1, 2}) {
            const double Hl = liquid_holdup(ctx, method, ID, IDH, line.EPS.value, line.TFLOW.value, line.LF[e],
                                            line.LIQDEN[e], line.LIQVISC[e], line.VAPDEN[e], line.VAPVISC[e]);
            rho[e] = density_momentum(ctx, line.LF[e], Hl, line.VAPDEN[e], line.LIQDEN[e]);
        }
        if (!(rho[1] > 0.0 && rho[2] > 0.0 && ID > 0.0)) return 0.0;
        return std::abs(checked((2.0 * kPipeHead / pow4(ID)) * (1.0 / rho[2] - 1.0 / rho[1])));
    });
}

}  // namespace velm
