// Single-phase pipe flow functions and the line coefficient PipeDP.
#include "correlations/pipe.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "correlations/two_phase.hpp"
#include "model/fault.hpp"

namespace velm {

namespace {

// Colebrook-White by successive substitution. With x = 1/sqrt(f) and
// u = -x * ln10 / 2, the equation reads u = ln(A - B * u), A = (EPS/D)/3.7,
// B = 5.02 / (Re ln10). Starting from u = ln(14/Re + A), five substitutions
// bring f within 1.1e-5 (relative) of the fixed point for Re >= 3000, closest
// at high Re; with the rounded ln 10 the result stays within 2e-5 of the exact
// Colebrook solution.
double colebrook_substituted(double EPS, double D, double Re) {
    const double A = (EPS / D) / 3.7;
    const double B = (5.02 / Re) / kPipeLn10;
    double u = checked_log(14.0 / Re + A);
    for (int i = 0; i < 5; ++i) u = checked_log(A - B * u);
    const double x = (-2.0 / kPipeLn10) * u;
    return checked_div(1.0, x * x);
}

}  // namespace

double Re(RunContext& ctx, double W, double ID, double IDH, double visc) {
    return trapped(ctx, "Error! In Re function= ", [&] {
        if (ID == 0.0 || visc == 0.0) return 0.0;
        return std::abs(checked(kPipeReynolds * W * IDH / (ID * ID) / visc));
    });
}

double pipe_f(RunContext& ctx, double EPS, double D, double Re) {
    return trapped(ctx, "Error! In pipe f function = ", [&] {
        if (Re == 0.0 || D == 0.0) return 0.018;
        if (Re < 0.1) return 640.0;
        if (Re < 2000.0) return 64.0 / Re;
        if (Re < 3000.0) {
            const double f0 = 64.0 / 2000.0;
            const double f1 = colebrook_substituted(EPS, D, 3000.0);
            return (f1 - f0) * (Re - 2000.0) / 1000.0 + f0;
        }
        return colebrook_substituted(EPS, D, Re);
    });
}

double pipe_fT(RunContext& ctx, double EPS, double D) {
    return trapped(ctx, "Error! In pipe fT function = ", [&] {
        if (EPS == 0.0 || D == 0.0) return 0.0056;
        const double root = (2.0 / kPipeLn10) * checked_log(D / EPS) + 1.14;
        return checked_div(1.0, root * root);
    });
}

double pipe_K(RunContext& ctx, double IDH, double LEN, double FITLD, double FITK, double f, double fT) {
    return trapped(ctx, "Error! In pipe K function= ", [&] {
        if (IDH == 0.0) return 0.0;
        return checked(fT * FITLD + FITK + f * LEN / IDH);
    });
}

double velocity(RunContext& ctx, double W, double density, double ID) {
    return trapped(ctx, "Error! In velocity function= ", [&] {
        if (density <= 0.0 || ID <= 0.0) return 0.0;
        return std::abs(checked((W / 3.6) / density * 4.0 / kPipePi / (ID * ID)));
    });
}

double LVF(RunContext& ctx, double LF, double rhoV, double rhoL) {
    return trapped(ctx, "Error! In LVF function = ", [&] {
        if (LF >= 1.0 || rhoV <= 0.0) return 1.0;
        if (LF <= 0.0 || rhoL <= 0.0) return 0.0;
        return checked_div(LF * rhoV, LF * rhoV + (1.0 - LF) * rhoL);
    });
}

double density(RunContext& ctx, double LF, double rhoV, double rhoL) {
    return trapped(ctx, "Error! In density function = ",
                   [&] { return checked(mix_by_fraction(LVF(ctx, LF, rhoV, rhoL), rhoV, rhoL)); });
}

double Viscosity(RunContext& ctx, double LF, double muV, double muL, double rhoV, double rhoL) {
    return trapped(ctx, "Error! In Viscosity function= ",
                   [&] { return checked(mix_by_fraction(LVF(ctx, LF, rhoV, rhoL), muV, muL)); });
}

double vapor_density(RunContext& ctx, const Header& gen, double Z, double MW, double P, double T) {
    return trapped(ctx, "Error! In vapor density = ", [&] {
        const double TK = T + 273.15;
        if (Z <= 0.0 || TK <= 0.0) return 0.0;
        return std::abs(checked(((gen.PATM + P) * MW / 8.314) / TK / Z));
    });
}

double exp_safe(double x) { return std::exp(std::clamp(x, -200.0, 200.0)); }

PipeBranch pipe_branch(const Header& gen, double LF3) {
    if (gen.MCOMP == "Isothermal" && LF3 < kVapourLimit) return PipeBranch::Isothermal;
    if (is_two_phase(LF3)) {
        if (gen.MTP == "Dukler" || gen.MTP == "Beggs-Brill") return PipeBranch::DuklerBeggsBrill;
        if (gen.MTP == "Lockhart-Martinelli" || gen.MTP == "Chisholm") return PipeBranch::LockhartMartinelliChisholm;
        if (gen.MTP == "Chenoweth-Martin") return PipeBranch::ChenowethMartin;
    }
    return PipeBranch::Homogeneous;
}

PipeFriction line_friction(RunContext& ctx, const Line& line, double ID, double IDH, bool per_100m) {
    const double W = line.TFLOW.value;
    const double eps = line.EPS.value;
    PipeFriction r{};
    r.re = Re(ctx, W, ID, IDH, line.TPROP[6]);
    r.f = pipe_f(ctx, eps, IDH, r.re);
    r.fT = pipe_fT(ctx, eps, IDH);
    r.K = per_100m ? pipe_K(ctx, IDH, 100.0, 0.0, 0.0, r.f, r.fT)
                   : pipe_K(ctx, IDH, line.LEN, line.FITLD, line.FITK, r.f, r.fT);
    return r;
}

// The two-phase parameters (DUK, LM) are zeroed here and set afterwards by
// the method that has them. MTP is written only when the method changes: a
// line keeps its method from one evaluation to the next.
void store_pipe_results(Line& line, const char* method, const PipeFriction& fr, double dpacc, double hup) {
    if (line.MTP != method) line.MTP = method;
    line.RE = fr.re;
    line.F[1] = fr.f;
    line.F[2] = fr.fT;
    line.DPACC = dpacc;
    line.HUP = hup;
    line.DUK[1] = line.DUK[2] = 0.0;
    std::fill(line.LM.begin() + 1, line.LM.end(), 0.0);
}

namespace {

// Isothermal compressible flow of an ideal gas. For an ideal gas at constant
// temperature (P1^2 - P2^2) * MW / (Z R T) = (rho1 + rho2) * (P1 - P2), so the
// isothermal flow equation becomes a velocity head on the mean end density:
// dP = (K + 2 ln(rho1/rho2)) * G^2 / (2 rho_mean); the logarithm is the
// acceleration of the expanding gas.
double isothermal_coefficient(RunContext& ctx, Line& line, double ID, double IDH, bool per_100m) {
    const double W = line.TFLOW.value;
    double rho1 = W >= 0.0 ? line.TPROP[1] : line.TPROP[2];  // upstream end
    double rho2 = W >= 0.0 ? line.TPROP[2] : line.TPROP[1];  // downstream end
    if (rho1 == 0.0) rho1 = 1e-06;
    if (rho2 == 0.0) rho2 = 1e-06;
    const PipeFriction fr = line_friction(ctx, line, ID, IDH, per_100m);
    if (!per_100m) store_pipe_results(line, "Isothermal", fr, 0.0, 0.0);
    const double ratio = rho1 / rho2;
    const double expansion = ratio > 0.0 ? 2.0 * checked_log(ratio) : 0.0;
    const double ID4 = ID * ID * ID * ID;
    const double C = checked(kPipeHead * line.FAC * (expansion + fr.K) * checked_div(2.0, rho1 + rho2) / ID4);
    const double s = per_100m ? W : 1.0;
    return s * s * C;
}

// Darcy-Weisbach at the average homogeneous density, plus acceleration.
// Darcy-Weisbach at the average homogeneous density: the coefficient of
// W|W| (kPa, t/h) of a resistance coefficient K.
double homogeneous_friction(const Line& line, double ID, double K) {
    const double ID4 = ID * ID * ID * ID;
    return kPipeHead * line.FAC * K / line.TPROP[3] / ID4;
}

double homogeneous_coefficient(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH,
                               bool per_100m) {
    const double W = line.TFLOW.value;
    const PipeFriction fr = line_friction(ctx, line, ID, IDH, per_100m);
    double Cacc = 0.0;
    if (!per_100m) {
        Cacc = pipe_dP_acc(ctx, gen.MACCEL, line, ID, IDH);
        store_pipe_results(line, "Homogeneous", fr, Cacc * W * std::abs(W),
                           LVF(ctx, line.LF[3], line.VPROP[1], line.LPROP[1]));
    }
    const double s = per_100m ? W : 1.0;
    return checked(s * s * (homogeneous_friction(line, ID, fr.K) + Cacc));
}

}  // namespace

double PipeDP(RunContext& ctx, const Header& gen, Line& line, double ID, double IDH, std::string_view mode) {
    return trapped(ctx, "Error! In Pipe W2 function = ", [&] {
        if (line.TPROP[3] <= 0.0 || ID < 1e-06 || IDH < 1e-06) {
            ctx.log_error("Error! Zero density or ID in pipe dP function.");
            return 0.0;
        }
        if (is_two_phase(line.LF[3]) &&
            (line.VPROP[1] <= 0.0 || line.VPROP[3] <= 0.0 || line.LPROP[1] <= 0.0 || line.LPROP[3] <= 0.0)) {
            ctx.log_error("Error! Zero phase density/visc in 2-phase pipe dP function.");
            return 0.0;
        }
        const bool per_100m = mode == "dP100";
        switch (pipe_branch(gen, line.LF[3])) {
            case PipeBranch::Isothermal:
                return isothermal_coefficient(ctx, line, ID, IDH, per_100m);
            case PipeBranch::Homogeneous:
                return homogeneous_coefficient(ctx, gen, line, ID, IDH, per_100m);
            case PipeBranch::DuklerBeggsBrill:
                return dukler_beggs_brill_coefficient(ctx, gen, line, ID, IDH, per_100m);
            case PipeBranch::LockhartMartinelliChisholm:
                return lockhart_martinelli_coefficient(ctx, gen, line, ID, IDH, per_100m);
            case PipeBranch::ChenowethMartin:
                return chenoweth_martin_coefficient(ctx, gen, line, ID, IDH, per_100m);
        }
        return 0.0;
    });
}

double pipe_flow_exponent(const Header& gen, const Line& line, double ID, double IDH, double C) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    if (pipe_branch(gen, line.LF[3]) != PipeBranch::Homogeneous || !(C > 0.0) || IDH <= 0.0) return kNone;
    const double re = line.RE, f = line.F[1];
    double exponent = 0.0;  // d ln f / d ln Re
    if (re >= 3000.0 && f > 0.0) {
        const double a = (line.EPS.value / IDH) / 3.7 + 2.51 / (re * std::sqrt(f));
        const double k = 5.02 / (kPipeLn10 * re * a);
        exponent = -2.0 * k / (1.0 + k);
    } else if (re >= 2000.0) {
        return kNone;
    } else if (re >= 0.1) {
        exponent = -1.0;
    }
    return homogeneous_friction(line, ID, f * line.LEN / IDH) * exponent / C;
}

double pipe_dP_acc(RunContext& ctx, std::string_view method, const Line& line, double ID, double IDH) {
    return trapped(ctx, "Error! In pipe dP acc function = ", [&] {
        if (method == "None") return 0.0;
        const double rho1 = line.TPROP[1], rho2 = line.TPROP[2];
        if (method == "Log") {
            if (!(line.TPROP[3] > 0.0 && rho1 > 0.0 && rho2 > 0.0 && ID > 0.0)) return 0.0;
            const double ID4 = ID * ID * ID * ID;
            return std::abs(checked((2.0 * kPipeHead / ID4) / line.TPROP[3] * checked_log(rho1 / rho2)));
        }
        if (method == "Hughmark" || method == "GPSA" || method == "Lockhart-Martinelli")
            return pipe_dP_acc_holdup(ctx, method, line, ID, IDH);
        // Homogeneous: the momentum flux G^2 / rho changes between the ends.
        if (!(rho1 > 0.0 && rho2 > 0.0 && ID > 0.0)) return 0.0;
        const double ID4 = ID * ID * ID * ID;
        return std::abs(checked((2.0 * kPipeHead / ID4) * (1.0 / rho2 - 1.0 / rho1)));
    });
}

double pipe_sonic_velocity(RunContext& ctx, std::string_view method, const Line& line) {
    return trapped(ctx, "Error! In pipe sonic velocity = ", [&] {
        const bool adiabatic = method == "Adiabatic";
        if (!adiabatic && method != "Isothermal") {
            ctx.log_error("Error! Unknown sonic velocity method.");
            return 5000.0;
        }
        const double MW = line.VPROP[5];
        if (MW <= 0.0) return 5000.0;  // no vapour: a liquid line
        const double k = adiabatic ? line.VPROP[7] : 1.0;
        return checked_sqrt(std::abs(8314.0 * line.VPROP[6] * k * (line.TEMP[3] + 273.1) / MW));
    });
}

namespace {

// Velocity, liquid fraction and gauge pressure at the downstream end.
struct LineEnd {
    double v, LF, P;
};

LineEnd downstream_end(const Line& line) {
    const int end = line.TFLOW.value >= 0.0 ? 2 : 1;
    return {line.VEL[end], line.LF[end], line.PRES[end]};
}

}  // namespace

bool pipe_is_choked(const Line& line, double dPc, double dPn) {
    const LineEnd e = downstream_end(line);
    const double vs = line.VEL[4];
    if (0.97 * vs >= e.v || e.LF >= kLiquidLimit) return false;
    return 1.03 * dPn < dPc || 1.03 * vs < e.v;
}

double pipe_choke_pressure(RunContext& ctx, const Header& gen, const Line& line) {
    return trapped(ctx, "Error! In pipe choke pressure function = ", [&] {
        const LineEnd e = downstream_end(line);
        return checked(checked_sqrt(checked_div(e.v, line.VEL[4])) * (e.P + gen.PATM) - gen.PATM);
    });
}

}  // namespace velm
