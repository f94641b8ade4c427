// Closed-form roots of cubic and quartic polynomials for the equation of state:
// Cardano's formulas for the cubic, Ferrari's method (resolvent cubic) for the
// quartic of the SRK spinodal.
#include <algorithm>
#include <cmath>

#include "model/fault.hpp"
#include "thermo/srk.hpp"

namespace velm {

namespace {
constexpr double kThird = 0.3333333333333333;
constexpr double kPiCubic = 3.14159265358979;  // pi to fifteen figures in the trigonometric form
}  // namespace

void CubicRoots(const std::array<double, 4>& a, std::array<double, 3>& roots, int& n) {
    n = 0;
    if (a[3] != 0.0) {
        const double e = checked_div(a[2], a[3]) * kThird;
        const double f = checked_div(a[1], a[3]) * kThird;
        const double Q = checked_pow(f - e * e, 3.0);
        const double R = -0.5 * (2.0 * e * e * e - checked_div(e * a[1] - a[0], a[3]));
        double D = R * R + Q;
        if (D < 0.0) {
            // Three real roots. The angle is taken from the arctangent without
            // a quadrant repair; the Newton step below polishes the roots.
            const double t = std::clamp(R / checked_sqrt(-Q), -1.0, 1.0);
            const double theta = std::atan(checked_div(std::sqrt(1.0 - t * t), t));
            const double g = 2.0 * checked_pow(-Q, 0.5 * kThird);
            for (int k = 1; k <= 3; ++k)
                roots[static_cast<std::size_t>(k - 1)] = g * std::cos((2.0 * k * kPiCubic + theta) * kThird) - e;
            std::sort(roots.begin(), roots.end());
            n = 3;
        } else {
            D = std::sqrt(D);
            roots[0] = std::cbrt(R + D) + std::cbrt(R - D) - e;
            n = 1;
        }
    } else if (a[2] != 0.0) {
        const double h = 0.5 * a[1] / a[2];
        const double d = h * h - a[0] / a[2];
        if (d >= 0.0) {
            roots[0] = -h - std::sqrt(d);
            roots[1] = -h + std::sqrt(d);
            n = 2;
        }
    } else if (a[1] != 0.0) {
        roots[0] = -a[0] / a[1];
        n = 1;
    }
    for (int k = 0; k < n; ++k) {
        double& x = roots[static_cast<std::size_t>(k)];
        x = x - checked_div(((x * a[3] + a[2]) * x + a[1]) * x + a[0], (2.0 * a[2] + 3.0 * x * a[3]) * x + a[1]);
    }
}

void QuarticRoots(RunContext& ctx, const std::array<double, 5>& a, std::array<double, 4>& re,
                  std::array<double, 4>& im, int& n) {
    n = 0;
    re.fill(0.0);
    im.fill(0.0);
    const double a4 = a[4], a3 = a[3], a2 = a[2], a1 = a[1], a0 = a[0];
    if (a4 == 0.0) {
        ctx.ui.tell("ERROR: NOT A QUARTIC EQUATION");
        return;
    }
    // Depressed quartic y^4 + p y^2 + q y + r with x = y - a3 / (4 a4).
    const double p = (8.0 * a4 * a2 - 3.0 * a3 * a3) / (8.0 * a4 * a4);
    const double q = (a3 * a3 * a3 - 4.0 * a4 * a3 * a2 + 8.0 * a4 * a4 * a1) / (8.0 * a4 * a4 * a4);
    const double r = (-3.0 * a3 * a3 * a3 * a3 + 16.0 * a4 * a3 * a3 * a2 - 64.0 * a4 * a4 * a3 * a1 +
                      256.0 * a4 * a4 * a4 * a0) /
                     (256.0 * a4 * a4 * a4 * a4);
    // Resolvent cubic 8y^3 - 4p y^2 - 8r y + (4pr - q^2): its largest real root.
    std::array<double, 3> cr{};
    int nc = 0;
    CubicRoots({4.0 * p * r - q * q, -8.0 * r, -4.0 * p, 8.0}, cr, nc);
    double y = -1e99;
    for (int k = 0; k < nc; ++k) y = std::max(y, cr[static_cast<std::size_t>(k)]);

    const double s2 = 2.0 * y - p;
    const double s = checked_sqrt(s2);
    double u = 0.0;
    if (s == 0.0) {
        const double t = y * y - r;
        if (t < 0.0) {
            ctx.ui.tell("Sorry, no solution");
            return;
        }
        u = std::sqrt(t);
    } else {
        u = q / (2.0 * s);
    }
    const double d1 = s2 - 4.0 * (u + y);
    const double d2 = s2 - 4.0 * (y - u);
    if (d1 >= 0.0 && d2 >= 0.0) {
        re = {(s + std::sqrt(d1)) / 2.0, (s - std::sqrt(d1)) / 2.0, (-s + std::sqrt(d2)) / 2.0,
              (-s - std::sqrt(d2)) / 2.0};
        n = 4;
    } else if (d1 >= 0.0) {
        re = {(s + std::sqrt(d1)) / 2.0, (s - std::sqrt(d1)) / 2.0, -s / 2.0, -s / 2.0};
        im[2] = std::sqrt(-d2 / 4.0);
        im[3] = -im[2];
        n = 2;
    } else if (d2 >= 0.0) {
        re = {(-s + std::sqrt(d2)) / 2.0, (-s - std::sqrt(d2)) / 2.0, s / 2.0, s / 2.0};
        im[2] = std::sqrt(-d1 / 4.0);
        im[3] = -im[2];
        n = 2;
    } else {
        re = {-s / 2.0, -s / 2.0, s / 2.0, s / 2.0};
        im = {std::sqrt(-d2 / 4.0), -std::sqrt(-d2 / 4.0), std::sqrt(-d1 / 4.0), -std::sqrt(-d1 / 4.0)};
        n = 0;
    }
    const double shift = a3 / (4.0 * a4);
    for (double& v : re) v -= shift;
}

}  // namespace velm
