#include "thermo/steam_if97.hpp"

#include <algorithm>
#include <cmath>

#include "thermo/if97_series.hpp"
#include "thermo/reguli_falsi.hpp"

namespace velm {

namespace {

using if97::Term;

// Reference constants of IAPWS R7-97(2012), Eqs. 1-3.
constexpr double kR = 0.461526;           // specific gas constant, kJ/kg/K
constexpr double kTCritical = 647.096;    // K
constexpr double kRhoCritical = 322.0;    // kg/m3

// Region 1, R7-97(2012) Table 2: exponents I, J and coefficients n of the
// dimensionless Gibbs free energy, Eq. 7.
constexpr std::array<Term, 34> kRegion1{{
    {0, -2, 1.4632971213167e-01}, {0, -1, -8.4548187169114e-01},
    {0, 0, -3.7563603672040e+00}, {0, 1, 3.3855169168385e+00},
    {0, 2, -9.5791963387872e-01}, {0, 3, 1.5772038513228e-01},
    {0, 4, -1.6616417199501e-02}, {0, 5, 8.1214629983568e-04},
    {1, -9, 2.8319080123804e-04}, {1, -7, -6.0706301565874e-04},
    {1, -1, -1.8990068218419e-02}, {1, 0, -3.2529748770505e-02},
    {1, 1, -2.1841717175414e-02}, {1, 3, -5.2838357969930e-05},
    {2, -3, -4.7184321073267e-04}, {2, 0, -3.0001780793026e-04},
    {2, 1, 4.7661393906987e-05}, {2, 3, -4.4141845330846e-06},
    {2, 17, -7.2694996297594e-16}, {3, -4, -3.1679644845054e-05},
    {3, 0, -2.8270797985312e-06}, {3, 6, -8.5205128120103e-10},
    {4, -5, -2.2425281908000e-06}, {4, -2, -6.5171222895601e-07},
    {4, 10, -1.4341729937924e-13}, {5, -8, -4.0516996860117e-07},
    {8, -11, -1.2734301741641e-09}, {8, -6, -1.7424871230634e-10},
    {21, -29, -6.8762131295531e-19}, {23, -31, 1.4478307828521e-20},
    {29, -38, 2.6335781662795e-23}, {30, -39, -1.1947622640071e-23},
    {31, -40, 1.8228094581404e-24}, {32, -41, -9.3537087292458e-26},
}};

// Region 2, R7-97(2012) Table 10: exponents J0 and coefficients n0 of the
// ideal-gas part, Eq. 16 (I = 0 here).
constexpr std::array<Term, 9> kRegion2Ideal{{
    {0, 0, -9.6927686500217e+00}, {0, 1, 1.0086655968018e+01},
    {0, -5, -5.6087911283020e-03}, {0, -4, 7.1452738081455e-02},
    {0, -3, -4.0710498223928e-01}, {0, -2, 1.4240819171444e+00},
    {0, -1, -4.3839511319450e+00}, {0, 2, -2.8408632460772e-01},
    {0, 3, 2.1268463753307e-02},
}};

// Region 2, R7-97(2012) Table 11: exponents I, J and coefficients n of the
// residual part, Eq. 17.
constexpr std::array<Term, 43> kRegion2Residual{{
    {1, 0, -1.7731742473213e-03}, {1, 1, -1.7834862292358e-02},
    {1, 2, -4.5996013696365e-02}, {1, 3, -5.7581259083432e-02},
    {1, 6, -5.0325278727930e-02}, {2, 1, -3.3032641670203e-05},
    {2, 2, -1.8948987516315e-04}, {2, 4, -3.9392777243355e-03},
    {2, 7, -4.3797295650573e-02}, {2, 36, -2.6674547914087e-05},
    {3, 0, 2.0481737692309e-08}, {3, 1, 4.3870667284435e-07},
    {3, 3, -3.2277677238570e-05}, {3, 6, -1.5033924542148e-03},
    {3, 35, -4.0668253562649e-02}, {4, 1, -7.8847309559367e-10},
    {4, 2, 1.2790717852285e-08}, {4, 3, 4.8225372718507e-07},
    {5, 7, 2.2922076337661e-06}, {6, 3, -1.6714766451061e-11},
    {6, 16, -2.1171472321355e-03}, {6, 35, -2.3895741934104e+01},
    {7, 0, -5.9059564324270e-18}, {7, 11, -1.2621808899101e-06},
    {7, 25, -3.8946842435739e-02}, {8, 8, 1.1256211360459e-11},
    {8, 36, -8.2311340897998e+00}, {9, 13, 1.9809712802088e-08},
    {10, 4, 1.0406965210174e-19}, {10, 10, -1.0234747095929e-13},
    {10, 14, -1.0018179379511e-09}, {16, 29, -8.0882908646985e-11},
    {16, 50, 1.0693031879409e-01}, {18, 57, -3.3662250574171e-01},
    {20, 20, 8.9185845355421e-25}, {20, 35, 3.0629316876232e-13},
    {20, 48, -4.2002467698208e-06}, {21, 21, -5.9056029685639e-26},
    {22, 53, 3.7826947613457e-06}, {23, 39, -1.2768608934681e-15},
    {24, 26, 7.3087610595061e-29}, {24, 40, 5.5414715350778e-17},
    {24, 58, -9.4369707241210e-07},
}};

// Region 3, R7-97(2012) Table 30: coefficient n1 of ln(delta) and exponents
// I, J and coefficients n2..n40 of the dimensionless Helmholtz free energy,
// Eq. 28.
constexpr double kRegion3LogCoefficient = 1.0658070028513e+00;
constexpr std::array<Term, 39> kRegion3{{
    {0, 0, -1.5732845290239e+01}, {0, 1, 2.0944396974307e+01},
    {0, 2, -7.6867707878716e+00}, {0, 7, 2.6185947787954e+00},
    {0, 10, -2.8080781148620e+00}, {0, 12, 1.2053369696517e+00},
    {0, 23, -8.4566812812502e-03}, {1, 2, -1.2654315477714e+00},
    {1, 6, -1.1524407806681e+00}, {1, 15, 8.8521043984318e-01},
    {1, 17, -6.4207765181607e-01}, {2, 0, 3.8493460186671e-01},
    {2, 2, -8.5214708824206e-01}, {2, 6, 4.8972281541877e+00},
    {2, 7, -3.0502617256965e+00}, {2, 22, 3.9420536879154e-02},
    {2, 26, 1.2558408424308e-01}, {3, 0, -2.7999329698710e-01},
    {3, 2, 1.3899799569460e+00}, {3, 4, -2.0189915023570e+00},
    {3, 16, -8.2147637173963e-03}, {3, 26, -4.7596035734923e-01},
    {4, 0, 4.3984074473500e-02}, {4, 2, -4.4476435428739e-01},
    {4, 4, 9.0572070719733e-01}, {4, 26, 7.0522450087967e-01},
    {5, 1, 1.0770512626332e-01}, {5, 3, -3.2913623258954e-01},
    {5, 26, -5.0871062041158e-01}, {6, 0, -2.2175400873096e-02},
    {6, 2, 9.4260751665092e-02}, {6, 26, 1.6436278447961e-01},
    {7, 2, -1.3503372241348e-02}, {8, 26, -1.4834345352472e-02},
    {9, 2, 5.7922953628084e-04}, {9, 26, 3.2308904703711e-03},
    {10, 0, 8.0964802996215e-05}, {10, 1, -1.6557679795037e-04},
    {11, 26, -4.4923899061815e-05},
}};

// Region 5, R7-97(2012) Table 37: exponents J0 and coefficients n0 of the
// ideal-gas part, Eq. 33 (I = 0 here).
constexpr std::array<Term, 6> kRegion5Ideal{{
    {0, 0, -1.3179983674201e+01}, {0, 1, 6.8540841634434e+00},
    {0, -3, -2.4805148933466e-02}, {0, -2, 3.6901534980333e-01},
    {0, -1, -3.1161318213925e+00}, {0, 2, -3.2961626538917e-01},
}};

// Region 5, R7-97(2012) Table 38: exponents I, J and coefficients n of the
// residual part, Eq. 34.
constexpr std::array<Term, 6> kRegion5Residual{{
    {1, 1, 1.5736404855259e-03}, {1, 2, 9.0153761673944e-04},
    {1, 3, -5.0270077677648e-03}, {2, 3, 2.2440037409485e-06},
    {2, 9, -4.1163275453471e-06}, {3, 7, 3.7919454822955e-08},
}};

// Region 4, R7-97(2012) Table 34: coefficients n1..n10 of the saturation-line
// equation, Eq. 29 (element 0 unused).
constexpr std::array<double, 11> kRegion4{
    0.0,
    1.1670521452767e+03, -7.2421316703206e+05, -1.7073846940092e+01, 1.2020824702470e+04,
    -3.2325550322333e+06, 1.4915108613530e+01, -4.8232657361591e+03, 4.0511340542057e+05,
    -2.3855557567849e-01, 6.5017534844798e+02,
};

// Region 2-3 boundary, R7-97(2012) Table 1: n1..n3 of Eq. 5.
constexpr double kB23N1 = 348.05185628968997;
constexpr double kB23N2 = -1.1671859879975;
constexpr double kB23N3 = 0.0010192970039326;

// Limits of the region choice, K and MPa.
constexpr double kTMin = 273.15;
constexpr double kT13 = 623.15;     // regions 1 and 2 end, region 3 begins
constexpr double kT25 = 1073.15;    // regions 2 and 3 end, region 5 begins
constexpr double kTMax = 2273.15;
constexpr double kPMin = 0.0001;
constexpr double kPMax = 100.0;
constexpr double kP5Max = 10.0;

// Region 3 volume search: clip range and start values, m3/kg.
constexpr double kV3Min = 0.00129;
constexpr double kV3Max = 0.00893;
constexpr double kV3StartVapor = 0.008827;
constexpr double kV3StartLiquid = 0.001738;
constexpr int kV3Rounds = 100;

// Properties from a dimensionless Gibbs free energy gamma(pi, tau) with
// pi = P / 1 MPa and tau = t_star / T (regions 2 and 5, R7-97 Tables 12 and
// 39): gamma is the ideal-gas part ln(pi) + sum(n0 tau^J0) plus the residual
// series in pi and (tau - tau_shift).
template <const auto& Ideal, const auto& Residual>
double vapor_gibbs_property(double T, double P, double t_star, double tau_shift, int sel) {
    const double pi = P;
    const double tau = t_star / T;
    const if97::SeriesSums ideal = if97::series<Ideal>(1.0, tau);
    const if97::SeriesSums residual = if97::series<Residual>(pi, tau - tau_shift);
    const double gamma = std::log(pi) + ideal.g + residual.g;
    const double gamma_pi = 1.0 / pi + residual.gx;
    const double gamma_tau = ideal.gy + residual.gy;
    switch (sel) {
        case kSteamEntropy: return kR * (tau * gamma_tau - gamma);
        case kSteamEnthalpy: return kR * T * tau * gamma_tau;
        case kSteamVolume: return kR * T * pi * gamma_pi / (P * 1000.0);
        default: return 0.0;
    }
}

}  // namespace

double B23(double T) { return kB23N1 + kB23N2 * T + kB23N3 * T * T; }

double Psat97(double T) {
    if (!(T >= kTMin && T <= kTCritical)) return 0.0;
    const auto& n = kRegion4;
    const double theta = T + n[9] / (T - n[10]);
    const double a = theta * theta + n[1] * theta + n[2];
    const double b = n[3] * theta * theta + n[4] * theta + n[5];
    const double c = n[6] * theta * theta + n[7] * theta + n[8];
    const double root = 2.0 * c / (-b + std::sqrt(b * b - 4.0 * a * c));
    return (root * root) * (root * root);
}

// R7-97(2012) Table 3: pi = P / 16.53 MPa, tau = 1386 K / T; the series runs
// in (7.1 - pi) and (tau - 1.222).
double if97_region1(double T, double P, int sel) {
    const double pi = P / 16.53;
    const double tau = 1386.0 / T;
    const if97::SeriesSums s = if97::series<kRegion1>(7.1 - pi, tau - 1.222);
    const double gamma_pi = -s.gx;
    const double gamma_tau = s.gy;
    switch (sel) {
        case kSteamEntropy: return kR * (tau * gamma_tau - s.g);
        case kSteamEnthalpy: return kR * T * tau * gamma_tau;
        case kSteamVolume: return kR * T * pi * gamma_pi / (P * 1000.0);
        default: return 0.0;
    }
}

// R7-97(2012) Table 12: pi = P / 1 MPa, tau = 540 K / T; the residual series
// runs in pi and (tau - 0.5).
double if97_region2(double T, double P, int sel) {
    return vapor_gibbs_property<kRegion2Ideal, kRegion2Residual>(T, P, 540.0, 0.5, sel);
}

// R7-97(2012) Table 31: delta = rho / 322 kg/m3, tau = 647.096 K / T.
double if97_region3(double T, double rho, int sel) {
    const double delta = rho / kRhoCritical;
    const double tau = kTCritical / T;
    const if97::SeriesSums s = if97::series<kRegion3>(delta, tau);
    const double phi = kRegion3LogCoefficient * std::log(delta) + s.g;
    const double phi_delta = kRegion3LogCoefficient / delta + s.gx;
    const double phi_tau = s.gy;
    switch (sel) {
        case kSteamEntropy: return kR * (tau * phi_tau - phi);
        case kSteamEnthalpy: return kR * T * (tau * phi_tau + delta * phi_delta);
        case kSteamVolume: return 1.0 / rho;
        case kSteamPressure: return rho * kR * T * delta * phi_delta / 1000.0;
        default: return 0.0;
    }
}

// R7-97(2012) Table 39: pi = P / 1 MPa, tau = 1000 K / T.
double if97_region5(double T, double P, int sel) {
    return vapor_gibbs_property<kRegion5Ideal, kRegion5Residual>(T, P, 1000.0, 0.0, sel);
}

double Region3Volume(RunContext& ctx, double T, double P, int phase) {
    if (!std::isfinite(T) || !(T > 0.0) || !std::isfinite(P)) return 0.0;
    double v = T > kTCritical ? 1.0 / kRhoCritical : (phase == kSteamVapor ? kV3StartVapor : kV3StartLiquid);
    int bracketed = 0;
    double v1 = 0.0, v2 = 0.0, f = 0.0, f1 = 0.0, f2 = 0.0;
    for (int round = 0; round < kV3Rounds; ++round) {
        v = std::clamp(v, kV3Min, kV3Max);
        f = if97_region3(T, 1.0 / v, kSteamPressure) - P;
        const double step = ReguliFalsi(ctx, kSearchRegulaFalsi, 0, bracketed, v, v1, v2, f, f1, f2, 1.1);
        if (std::abs(step / (v + 1.0)) < 1e-6) return v;
    }
    ctx.log_error("Steam 97, region 3 volume did not converge.");
    return 0.0;
}

double Steam97(RunContext& ctx, double T, double P, int phase, int sel) {
    // Written so that a NaN argument fails the test and gives 0.0 as well.
    if (!(T >= kTMin) || !(P >= kPMin) || !(P <= kPMax)) return 0.0;
    int region = 0;
    if (phase == kSteamVapor) {
        if (T <= kT13) {
            region = 2;
        } else if (T <= kT25) {
            region = P <= B23(T) ? 2 : 3;
        } else if (T <= kTMax && P <= kP5Max) {
            region = 5;
        }
    } else if (phase == kSteamLiquid) {
        if (T <= kT13) {
            region = 1;
        } else if (T <= kT25) {
            region = 3;
        }
    }
    switch (region) {
        case 1: return if97_region1(T, P, sel);
        case 2: return if97_region2(T, P, sel);
        case 5: return if97_region5(T, P, sel);
        case 3: {
            const double v = Region3Volume(ctx, T, P, phase);
            if (sel == kSteamVolume) return v;
            return v > 0.0 ? if97_region3(T, 1.0 / v, sel) : 0.0;
        }
        default: return 0.0;
    }
}

}  // namespace velm
