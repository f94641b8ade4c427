// ReguliFalsi: one step of the one-dimensional root search shared by the
// flashes and the steam routines.
//
// The caller owns the search state and calls the step once per function
// evaluation: it evaluates f at x, calls ReguliFalsi, and stops when the
// returned step is small against x (or is 0, which means |f| < 1e-6).
// Before a sign change is seen the step walks outward from the start
// (multiplicatively, by `factor` or by the last ratio); once the root is
// bracketed it narrows the bracket by Regula Falsi (method 0), bisection
// (method 1) or the root of the quadratic through the last three points
// (method 2, with bisection as its fallback).
#pragma once

#include "model/context.hpp"

namespace velm {

inline constexpr int kSearchRegulaFalsi = 0;
inline constexpr int kSearchBisection = 1;
inline constexpr int kSearchQuadratic = 2;

// One step of the search.
//   method     0 Regula Falsi, 1 bisection, 2 quadratic (once bracketed)
//   extrap     walk while unbracketed: 0 same ratio again, 1 same ratio or half
//              the logarithmic step back when |f| grew, 2 alternate ends
//   bracketed  0 until a sign change has been seen, then 1
//   x          the point just evaluated; replaced by the next point
//   x1, x2     the two held points, f1, f2 their function values
//   f          f(x); set to 0 when |f| < 1e-6
//   factor     first multiplicative step, above 1
// Returns the last step (the old held point minus x), 0 when converged.
// A numeric fault inside a statement is logged as
// "Error! In Reguli-Falsi. Err = <n> : <text>" and that statement is skipped.
double ReguliFalsi(RunContext& ctx, int method, int extrap, int& bracketed, double& x, double& x1,
                   double& x2, double& f, double& f1, double& f2, double factor);

}  // namespace velm
