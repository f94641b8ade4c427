// Transport properties of water and steam: viscosity, thermal conductivity and
// surface tension (declared in steam_if97.hpp).
#include <array>
#include <cmath>

#include "model/fault.hpp"
#include "thermo/if97_series.hpp"
#include "thermo/steam_if97.hpp"

namespace velm {

namespace {

using if97::Term;

// Viscosity, IAPWS R12-08: reference constants (Eqs. 3-5), coefficients H_i of
// the dilute-gas term (Table 1, Eq. 11) and H_ij of the residual term
// (Table 2, Eq. 12; the zero entries left out). Terms are {i, j, H_ij}.
constexpr double kViscTStar = 647.096;   // K
constexpr double kViscRhoStar = 322.0;   // kg/m3
constexpr std::array<double, 4> kViscH0{1.67752, 2.20462, 0.6366564, -0.241605};
constexpr std::array<Term, 21> kViscH1{{
    {0, 0, 5.20094e-01},  {1, 0, 8.50895e-02},  {2, 0, -1.08374e+00}, {3, 0, -2.89555e-01},
    {0, 1, 2.22531e-01},  {1, 1, 9.99115e-01},  {2, 1, 1.88797e+00},  {3, 1, 1.26613e+00},
    {5, 1, 1.20573e-01},  {0, 2, -2.81378e-01}, {1, 2, -9.06851e-01}, {2, 2, -7.72479e-01},
    {3, 2, -4.89837e-01}, {4, 2, -2.57040e-01}, {0, 3, 1.61913e-01},  {1, 3, 2.57399e-01},
    {0, 4, -3.25372e-02}, {3, 4, 6.98452e-02},  {4, 5, 8.72102e-03},  {3, 6, -4.35673e-03},
    {5, 6, -5.93264e-04},
}};

// Thermal conductivity, equation for industrial use of the IAPWS Revised
// Release on the IAPS Formulation 1985 for the Thermal Conductivity of
// Ordinary Water Substance (1998): reference constants and coefficients
// a_k (lambda0), b_i and B_i (lambda1), d_i and C_i (lambda2), as tabulated
// there.
constexpr double kCondTStar = 647.26;   // K
constexpr double kCondRhoStar = 317.7;  // kg/m3
constexpr std::array<double, 4> kCondA{0.0102811, 0.0299621, 0.0156146, -0.00422464};
constexpr std::array<double, 3> kCondB{-0.397070, 0.400302, 1.060000};
constexpr double kCondB1 = -0.171587;
constexpr double kCondB2 = 2.392190;
constexpr std::array<double, 4> kCondD{0.0701309, 0.0118520, 0.00169937, -1.0200};
constexpr std::array<double, 6> kCondC{0.642857, -4.11717, -6.17937, 0.00308976, 0.0822994, 10.0932};

// Surface tension, IAPWS R1-76(2014) Eq. 1: B, b and mu, with Tc = 647.096 K.
constexpr double kSurfB = 235.8;  // mN/m
constexpr double kSurfSmallB = -0.625;
constexpr double kSurfMu = 1.256;
constexpr double kSurfTc = 647.096;  // K
constexpr double kSurfTMin = 273.15;

}  // namespace

// mu = mu0(T) * mu1(T, rho) in uPa s (R12-08 Eq. 10 with mu2 = 1); 1 cP is 1000 uPa s.
double Visc97(double T, double rho) {
    const double t = T / kViscTStar;
    const double d = rho / kViscRhoStar;
    const double inverse_t = checked_div(1.0, t);
    double denominator = 0.0;
    double power = 1.0;
    for (double h : kViscH0) {
        denominator += h * power;
        power *= inverse_t;
    }
    const double mu0 = 100.0 * checked_sqrt(t) / denominator;
    const double mu1 = checked_exp(d * if97::series<kViscH1>(inverse_t - 1.0, d - 1.0).g);
    return checked(mu0 * mu1 * 1e-3);
}

double Cond97(double T, double rho) {
    const double t = T / kCondTStar;
    const double d = rho / kCondRhoStar;
    const auto& a = kCondA;
    const auto& c = kCondC;
    const auto& dd = kCondD;
    const double lambda0 = checked_sqrt(t) * (a[0] + t * (a[1] + t * (a[2] + t * a[3])));
    const double lambda1 = kCondB[0] + kCondB[1] * d + kCondB[2] * std::exp(kCondB1 * (d + kCondB2) * (d + kCondB2));
    const double dt = std::abs(t - 1.0) + c[3];
    const double q = 2.0 + c[4] / std::pow(dt, 0.6);
    const double s = t >= 1.0 ? 1.0 / dt : c[5] / std::pow(dt, 0.6);
    const double lambda2 =
        (checked_div(dd[0], std::pow(t, 10)) + dd[1]) * checked_pow(d, 1.8) * std::exp(c[0] * (1.0 - std::pow(d, 2.8))) +
        dd[2] * s * checked_pow(d, q) * std::exp((q / (1.0 + q)) * (1.0 - std::pow(d, 1.0 + q))) +
        dd[3] * std::exp(c[1] * std::pow(t, 1.5) + checked_div(c[2], std::pow(d, 5)));
    return checked(lambda0 + lambda1 + lambda2);
}

double Surf97(double T) {
    if (!(T >= kSurfTMin && T <= kSurfTc)) return 0.0;
    const double t = 1.0 - T / kSurfTc;
    return kSurfB * std::pow(t, kSurfMu) * (1.0 + kSurfSmallB * t);
}

}  // namespace velm
