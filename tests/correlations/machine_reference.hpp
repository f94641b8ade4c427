// For the pump and compressor tests: the tests' own reading of a machine
// curve and root finder, kept apart from the program's so that an operating
// point can be checked independently, and the two lines around a machine.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "model/records.hpp"

namespace velm::machine_reference {

struct Point {
    double Q, H;  // flow and head of a curve point
};

// Straight-line interpolation of a curve of ascending flows, for Q inside it.
inline double interpolate(const std::vector<Point>& c, double Q) {
    for (std::size_t i = 1; i < c.size(); ++i)
        if (Q <= c[i].Q) return c[i - 1].H + (c[i].H - c[i - 1].H) * (Q - c[i - 1].Q) / (c[i].Q - c[i - 1].Q);
    return c.back().H;
}

// Root of f on [a, b] by bisection; f(a) and f(b) differ in sign.
inline double bisect(const std::function<double(double)>& f, double a, double b) {
    for (int i = 0; i < 200; ++i) {
        const double m = 0.5 * (a + b);
        (f(a) * f(m) <= 0.0 ? b : a) = m;
    }
    return 0.5 * (a + b);
}

// Lines 1 (suction) and 2 (discharge) carry W t/h of one fluid of density rho.
inline void through_lines(Project& p, double W, double rho) {
    for (std::size_t i : {1, 2}) {
        p.lines[i].TFLOW.value = W;
        p.lines[i].TPROP = {0.0, rho, rho, rho, rho, 0.0, 0.0};
    }
}

}  // namespace velm::machine_reference
