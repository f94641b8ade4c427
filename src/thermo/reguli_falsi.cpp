#include "thermo/reguli_falsi.hpp"

#include <cmath>
#include <utility>

#include "model/fault.hpp"

namespace velm {

namespace {

// Runs one statement of the step. A numeric fault is logged and the statement
// is skipped, leaving its target as it was, so the step goes on with the next
// statement and the search state stays finite.
template <class Statement>
void attempt(RunContext& ctx, Statement&& statement) {
    resume_next(ctx, "Error! In Reguli-Falsi. Err = ", std::forward<Statement>(statement));
}

bool strictly_between(double v, double a, double b) { return (v > a && v < b) || (v > b && v < a); }

}  // namespace

double ReguliFalsi(RunContext& ctx, int method, int extrap, int& bracketed, double& x, double& x1,
                   double& x2, double& f, double& f1, double& f2, double factor) {
    // A root: the caller sees a zero step.
    if (std::abs(f) < 1e-6) {
        bracketed = 1;
        f = 0.0;
        return 0.0;
    }

    double step = 0.0;
    double r = 0.0;

    // First call: both held points at x, and a first step of `factor`, upward
    // for a positive f.
    if (!bracketed && f1 == 0.0) {
        step = x1 - x;
        x1 = x;
        x2 = x;
        f1 = f;
        f2 = f;
        attempt(ctx, [&] { x = f > 0.0 ? checked(x * factor) : checked_div(x, factor); });
        return step;
    }

    // No sign change yet: keep walking outward.
    if (!bracketed && f1 * f >= 0.0) {
        step = x1 - x;
        if (extrap == 1) {
            attempt(ctx, [&] { r = checked_div(x, x1); });
            x1 = x;
            if (!(std::abs(f1) < std::abs(f))) {
                attempt(ctx, [&] { x = checked(r * x); });  // closing in: same ratio again
            } else {
                attempt(ctx, [&] { x = checked_div(x, checked_sqrt(r)); });  // half the step back
            }
            f1 = f;
        } else if (extrap == 2) {
            x1 = x2;
            x2 = x;
            f1 = f2;
            f2 = f;
            attempt(ctx, [&] { x = x1 > x2 ? checked(x1 * factor) : checked_div(x1, factor); });
        } else {
            attempt(ctx, [&] { r = checked_div(x, x1); });
            x1 = x;
            f1 = f;
            attempt(ctx, [&] { x = checked(r * x); });
        }
        return step;
    }

    // The sign has just changed: hold both ends and try the midpoint.
    if (!bracketed) {
        step = x1 - x;
        bracketed = 1;
        x2 = x;
        f2 = f;
        x = (x1 + x2) / 2.0;
        return step;
    }

    // Bracketed. A point on top of a held point ends the search.
    if (std::abs(x - x2) < 1e-6 || std::abs(x - x1) < 1e-6) return 0.0;

    // Quadratic a*x^2 + b*x + c through the three points; then x replaces the
    // held point whose f has the same sign.
    const bool replaces_x1 = f * f1 > 0.0;
    double& near_x = replaces_x1 ? x1 : x2;
    double& near_f = replaces_x1 ? f1 : f2;
    const double far_x = replaces_x1 ? x2 : x1;
    const double far_f = replaces_x1 ? f2 : f1;
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    attempt(ctx, [&] { a = checked(checked_div(f - far_f, x - far_x) - checked_div(f - near_f, x - near_x)); });
    attempt(ctx, [&] { b = checked(-checked_div((f - near_f) * (x - far_x), x - near_x) - 2.0 * x * a); });
    attempt(ctx, [&] { c = checked(-f * (x - far_x) - b * x - x * x * a); });
    step = near_x - x;
    near_x = x;
    near_f = f;

    if (method == kSearchBisection) {
        x = (x1 + x2) / 2.0;
    } else if (method == kSearchQuadratic) {
        x = (x1 + x2) / 2.0;
        if (a != 0.0) {
            const double d = b * b - 4.0 * a * c;
            if (d >= 0.0) {
                double r1 = 0.0;
                double r2 = 0.0;
                attempt(ctx, [&] { r1 = checked_div(-b + std::sqrt(d), 2.0 * a); });
                attempt(ctx, [&] { r2 = checked_div(-b - std::sqrt(d), 2.0 * a); });
                if (strictly_between(r1, x1, x2)) {
                    x = r1;
                } else if (strictly_between(r2, x1, x2)) {
                    x = r2;
                }
            }
        } else if (b != 0.0) {
            attempt(ctx, [&] { x = checked_div(-c, b); });
        }
    } else {
        attempt(ctx, [&] { x = checked(x1 - checked_div((x2 - x1) * f1, f2 - f1)); });
    }
    return step;
}

}  // namespace velm
