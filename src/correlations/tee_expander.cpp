#include "correlations/tee_expander.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "correlations/orifice.hpp"
#include "correlations/pipe.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"

namespace velm {

namespace {

// Restriction coefficient for t/h, m and kPa at equipment: (8 / pi^2) / 3.6^2 / 1000,
// the reducers and nozzles carrying one digit more than the lines' kPipeHead.
constexpr double kEquipmentHead = 6.2544e-05;

double sq(double v) { return v * v; }

// The line on a port of an element, nullptr when the number is no line.
const Line* line_at(const Project& p, int n) {
    return n >= 1 && n <= count(p.lines) ? &p.lines[static_cast<std::size_t>(n)] : nullptr;
}

// C = kPipeHead * K / rho / D^4.
double head_coefficient(double K, double rho, double D) {
    return checked_div(checked_div(kPipeHead * K, rho), checked_pow(D, 4));
}

}  // namespace

double reducer_Y2(RunContext& ctx, const Header& gen, double LF, double P1, double P2, double k, double b) {
    return trapped(ctx, "Error! In reducer Y2 function= ", [&]() -> double {
        k = orifice_k(k);
        if (LF > 0.9999) return 1.0;
        P1 = std::max(P1 + gen.PATM, 1e-06);
        P2 = std::max(P2 + gen.PATM, 1e-06);
        const double r = P2 / P1;
        if (std::fabs(r - 1.0) < 1e-06 || std::fabs(b - 1.0) < 1e-06) return 1.0;
        const double b4 = std::pow(b, 4);
        const double y0 = (checked_pow(r, 2.0 / k) * k / (k - 1.0)) * (1.0 - checked_pow(r, (k - 1.0) / k)) / (1.0 - r);
        double y = checked_sqrt(std::fabs(checked_div((1.0 - b4) * y0, 1.0 - b4 * checked_pow(r, 2.0 / k))));
        y *= checked_pow(P1 / P2, 1.0 / (2.0 * k));
        return std::clamp(y, 0.001, 1.0);
    });
}

double Pipe_inlet_W2(RunContext& ctx, const Header& gen, std::string_view end, const Line& line, double P) {
    return trapped(ctx, "Error! In Pipe inlet W2 function = ", [&]() -> double {
        const std::size_t e = end == "IN" ? 1 : 2;
        const double Y = reducer_Y2(ctx, gen, line.LF[e], P, line.PRES[e], line.VAPK[e], 0.0);
        const double rinv =
            equivalent_inv_density(ctx, "Homogeneous", line.LF[e], line.LIQDEN[e], line.VAPDEN[e], Y);
        if (line.ID.value == 0.0) return 0.0;
        return kEquipmentHead * rinv / std::pow(line.ID.value, 4);
    });
}

double fitting_W2_K(RunContext& ctx, double sign, double D1, double D2, double rho1, double rho2, double K) {
    return trapped(ctx, "Error! In fitting W2 K function = ", [&]() -> double {
        if (rho1 <= 0.0 || rho2 <= 0.0) return 0.0;
        return sign >= 0.0 ? head_coefficient(K, rho1, D1) : head_coefficient(K, rho2, D2);
    });
}

double Check_W2(RunContext& ctx, const Project& p, const Check& cv) {
    return trapped(ctx, "Error! In Check W2 function = ", [&]() -> double {
        const Line* in = line_at(p, cv.CON[1]);
        const Line* out = line_at(p, cv.CON[2]);
        if (!in || !out) return 0.0;
        if (in->TFLOW.value < 0.0) return kCheckClosed;
        const double K = in->F[2] * cv.LD;
        return fitting_W2_K(ctx, 1.0, in->ID.value, out->ID.value, in->TPROP[2], out->TPROP[1], K);
    });
}

double Misc_K_W2(RunContext& ctx, const Project& p, const Misc& m, int case_no) {
    return trapped(ctx, "Error! In Misc K W2 function = ", [&]() -> double {
        const Line* in = line_at(p, m.NOZI.CON);
        const Line* out = line_at(p, m.NOZO.CON);
        if (!in || !out) return 0.0;
        const double W = in->TFLOW.value;
        const double fT = (W >= 0.0 ? in : out)->F[2];
        const double K = spec_value(m.K, case_no) + fT * spec_value(m.LD, case_no);
        return fitting_W2_K(ctx, sgn(W), in->ID.value, out->ID.value, in->TPROP[2], out->TPROP[1], K);
    });
}

namespace {

// One-point rating: C from the rated drop, flow and density. The exchanger
// keeps the turbulent W^1.8 law while the flow runs; at rest, and for the
// miscellaneous equipment, the square law.
double rating_W2(const Project& p, const NozzleItem& e, int case_no, bool exchanger) {
    const Line* in = line_at(p, e.NOZI.CON);
    const Line* out = line_at(p, e.NOZO.CON);
    if (!in || !out || in->TPROP[2] <= 0.0 || out->TPROP[1] <= 0.0) return 0.0;
    const double rhoA = 0.5 * in->TPROP[2] + 0.5 * out->TPROP[1];
    const double dP0 = spec_value(e.PRAT1, case_no);
    const double inv_W0 = checked_div(1.0, e.PRAT3);
    const double density_ratio = e.PRAT5 / rhoA;
    const double W = std::fabs(in->TFLOW.value);
    if (exchanger && W > 1e-06)
        return checked(dP0 * checked_pow(inv_W0, 1.8) * checked_pow(1.0 / W, 0.2) * density_ratio);
    return checked(dP0 * sq(inv_W0) * density_ratio);
}

}  // namespace

double Exchanger_rating_W2(RunContext& ctx, const Project& p, const NozzleItem& hx, int case_no) {
    return trapped(ctx, "Error! In Exchanger rating W2 function = ", [&] { return rating_W2(p, hx, case_no, true); });
}

double Misc_rating_W2(RunContext& ctx, const Project& p, const NozzleItem& m, int case_no) {
    return trapped(ctx, "Error! In Misc rating W2 function = ", [&] { return rating_W2(p, m, case_no, false); });
}

namespace {

// Naming of the tee's legs by the directions of flow at its three ports.
struct TeeNaming {
    int TYPE, C, M, B;
};

// Rows in the order they are tried; tee_pattern gives the first that holds.
constexpr TeeNaming kTeeNaming[] = {
    {1, 3, 1, 2},   // 0: in at 2 and 1, port 3 used
    {1, 1, 3, 2},   // 1: in at 2 and 1, port 3 free
    {1, 1, 3, 2},   // 2: in at 2 and 3, port 1 used
    {1, 3, 1, 2},   // 3: in at 2 and 3, port 1 free
    {-4, 2, 1, 3},  // 4: in at 2 only
    {-3, 1, 3, 2},  // 5: out at 2 and 3, port 1 used
    {-3, 3, 1, 2},  // 6: out at 2 and 3, port 1 free
    {-3, 3, 1, 2},  // 7: out at 2 and 1, port 3 used
    {-3, 1, 3, 2},  // 8: out at 2 and 1, port 3 free
    {2, 2, 1, 3},   // 9: out at 2 only, port 3 used
    {-3, 1, 3, 2},  // 10: out at 2 only, port 3 free
    {-3, 1, 3, 2},  // 11: nothing at 2, in at 1
    {-3, 3, 1, 2},  // 12: nothing at 2, in at 3
    {1, 3, 1, 2},   // 13: anything else
};

struct TeePorts {
    bool in[4]{}, out[4]{}, used[4]{};
    int line[4]{};  // the line standing for the port: the one ending in it, else the one starting from it
};

// A port takes flow in when its ending line has W >= 0 or its starting line
// W < 0, and gives flow out when its starting line has W >= 0 or its ending
// line W < 0.
TeePorts tee_ports(const Project& p, const Tee& t) {
    TeePorts s;
    for (int j = 1; j <= 3; ++j) {
        const int ending = t.CON[static_cast<std::size_t>(j)], starting = t.CON[static_cast<std::size_t>(j + 3)];
        const Line* e = line_at(p, ending);
        const Line* b = line_at(p, starting);
        s.in[j] = (e && e->TFLOW.value >= 0.0) || (b && b->TFLOW.value < 0.0);
        s.out[j] = (b && b->TFLOW.value >= 0.0) || (e && e->TFLOW.value < 0.0);
        s.used[j] = e || b;
        s.line[j] = e ? ending : (b ? starting : 0);
    }
    return s;
}

int tee_pattern(const TeePorts& s) {
    if (s.in[2]) {
        if (s.in[1]) return s.used[3] ? 0 : 1;
        if (s.in[3]) return s.used[1] ? 2 : 3;
        return 4;
    }
    if (s.out[2]) {
        if (s.out[3]) return s.used[1] ? 5 : 6;
        if (s.out[1]) return s.used[3] ? 7 : 8;
        return s.used[3] ? 9 : 10;
    }
    if (s.in[1]) return 11;
    if (s.in[3]) return 12;
    return 13;
}

struct TeeRatios {
    double qM = 0.0, qB = 0.0, aM = 1.0, aB = 1.0;
};

double tee_K_main(int type, const TeeRatios& r, double spacing) {
    switch (type) {
        case 1: return 1.55 * r.qB - r.qB * r.qB + r.qB * sq(1.0 - r.aB);
        case 2: return 0.55 * (1.0 + sq(checked_div(1.0, r.aM)) + 3.0 * sq(checked_div(1.0, r.aM)) * (r.qM * r.qM - r.qM));
        case -3: {
            double K = 0.65 * r.qB * (r.qB - 0.4);
            if (spacing > 0.0 && spacing <= 30.0) K += 0.5 * r.qB * exp_safe(-0.16 * spacing);
            return K;
        }
        case -4: return 1.0 + 0.3 * sq(checked_div(r.qM, r.aM));
        default: return 0.0;
    }
}

double tee_K_branch(int type, const TeeRatios& r) {
    switch (type) {
        case 1:
            return (0.55 + 0.45 / (1.0 + 16.0 * std::pow(r.aB, 4))) *
                   (1.0 + sq(checked_div(r.qB, r.aB)) - checked_div(2.0, r.aM) * r.qM * r.qM);
        case 2: return 0.55 * (1.0 + sq(checked_div(1.0, r.aB)) + 3.0 * sq(checked_div(1.0, r.aB)) * (r.qB * r.qB - r.qB));
        case -3: return (0.75 + 0.25 / (1.0 + 36.0 * r.qB * r.qB)) * (1.0 + 0.6 * sq(checked_div(r.qB, r.aB)));
        case -4: return 1.0 + 0.3 * sq(checked_div(r.qB, r.aB));
        default: return 0.0;
    }
}

void tee_refresh(RunContext&, const Project& p, Tee& t, int case_no) {
    const TeePorts s = tee_ports(p, t);
    const TeeNaming& n = kTeeNaming[tee_pattern(s)];
    t.TYPE = n.TYPE;
    t.C[1] = n.C;
    t.M[1] = n.M;
    t.B[1] = n.B;
    t.C[2] = s.line[n.C];
    t.M[2] = s.line[n.M];
    t.B[2] = s.line[n.B];
    const Line* c = line_at(p, t.C[2]);
    const Line* m = line_at(p, t.M[2]);
    const Line* b = line_at(p, t.B[2]);
    const double WC = c ? c->TFLOW.value : 0.0;

    TeeRatios r;
    if (WC != 0.0) {
        r.qM = m ? std::fabs(m->TFLOW.value / WC) : 0.0;
        r.qB = b ? std::fabs(b->TFLOW.value / WC) : 0.0;
    }
    if (c && m) r.aM = sq(checked_div(m->ID.value, c->ID.value));
    if (c && b) r.aB = sq(checked_div(b->ID.value, c->ID.value));
    t.M3 = r.qM;
    t.B3 = r.qB;

    t.KCM.value = is_specified(t.KCM.spec, case_no) ? spec_value(t.KCM.spec, case_no) : tee_K_main(t.TYPE, r, t.SPAC);
    t.KCB.value = is_specified(t.KCB.spec, case_no) ? spec_value(t.KCB.spec, case_no) : tee_K_branch(t.TYPE, r);

    // The combined line's density at the tee: its inlet end where the flow
    // leaves the tee through it, its outlet end where the flow comes in.
    double rho = 0.0;
    if (c) rho = sgn(t.TYPE) * sgn(WC) < 0.0 ? c->TPROP[2] : c->TPROP[1];
    t.C3 = rho;
    t.DPP = {};
    if (rho <= 0.0) return;
    const double head = checked_div(kPipeHead, rho * checked_pow(c->ID.value, 4)) * WC * WC;
    if (m) t.DPP[static_cast<std::size_t>(t.M[1])] = t.KCM.value * head;
    if (b) t.DPP[static_cast<std::size_t>(t.B[1])] = t.KCB.value * head;
}

}  // namespace

void Tee_W2(RunContext& ctx, const Project& p, Tee& t, int case_no) {
    try {
        tee_refresh(ctx, p, t, case_no);
    } catch (const Fault& f) {
        ctx.log_error("Error! In Tee W2 function = " + fault_text(f));
    }
}

namespace {

// The lines on either side of a reducer or expander, in the direction of flow,
// and the ends of each at the element.
struct ExpanderSides {
    const Line* up = nullptr;
    const Line* down = nullptr;
    std::size_t up_end = 2, down_end = 1;
    double W = 0.0;
};

ExpanderSides expander_sides(const Project& p, const Expand& e) {
    ExpanderSides s;
    const Line* in = line_at(p, e.CON[1]);
    const Line* out = line_at(p, e.CON[2]);
    if (!in || !out) return s;
    s.W = in->TFLOW.value;
    const bool forward = s.W >= 0.0;
    s.up = forward ? in : out;
    s.down = forward ? out : in;
    s.up_end = forward ? 2 : 1;
    s.down_end = forward ? 1 : 2;
    return s;
}

double reducer_W2(RunContext& ctx, const Project& p, Expand& e, const ExpanderSides& s) {
    const Line& up = *s.up;
    const Line& dn = *s.down;
    const std::size_t u = s.up_end, d = s.down_end;
    const double D1 = up.ID.value, D2 = dn.ID.value;
    const double b = D1 == 0.0 ? 1.0 : D2 / D1;
    const double Y = reducer_Y2(ctx, p.gen, dn.LF[d], up.PRES[u], dn.PRES[d], dn.VAPK[d], b);
    const double Rinv = equivalent_inv_density(ctx, "Homogeneous", dn.LF[d], dn.LIQDEN[d], dn.VAPDEN[d], Y);
    const double half_angle = e.ANGLE / 2.0 * std::numbers::pi / 180.0;
    e.K = e.ANGLE <= 45.0 ? 0.8 * std::sin(half_angle) * (1.0 - b * b)
                          : 0.5 * checked_sqrt(std::sin(half_angle)) * (1.0 - b * b);
    const double loss = checked_div(kEquipmentHead * e.K * Rinv, checked_pow(D2, 4));
    e.DPP = loss * s.W * s.W;
    return kEquipmentHead * Rinv * (checked_div(1.0, checked_pow(D2, 4)) - checked_div(1.0, checked_pow(D1, 4))) + loss;
}

double expander_W2(RunContext& ctx, Expand& e, const ExpanderSides& s) {
    const Line& up = *s.up;
    const Line& dn = *s.down;
    const std::size_t u = s.up_end, d = s.down_end;
    const double D1 = up.ID.value, D2 = dn.ID.value;
    const double b = D1 / D2;
    const double R1 = equivalent_inv_density(ctx, "Momentum", up.LF[u], up.LIQDEN[u], up.VAPDEN[u], 1.0);
    const double R2 = equivalent_inv_density(ctx, "Momentum", dn.LF[d], dn.LIQDEN[d], dn.VAPDEN[d], 1.0);
    e.K = sq(1.0 - b * b);
    e.DPP = checked_div(kEquipmentHead * e.K * R1, checked_pow(D1, 4)) * s.W * s.W;
    return ((kEquipmentHead + kEquipmentHead) / (D2 * D2)) * (R2 / (D2 * D2) - checked_div(R1, D1 * D1));
}

}  // namespace

double Expander_Reducer_W2(RunContext& ctx, const Project& p, Expand& e) {
    return trapped(ctx, "Error! In Expander/Reducer W2 function = ", [&]() -> double {
        const ExpanderSides s = expander_sides(p, e);
        const double dD = s.up ? s.down->ID.value - s.up->ID.value : 0.0;
        const int sign = s.W >= 0.0 ? 1 : -1;
        if (dD < -kSameBore) {
            e.TYPE = sign;
            return reducer_W2(ctx, p, e, s);
        }
        if (dD > kSameBore) {
            e.TYPE = 2 * sign;
            return expander_W2(ctx, e, s);
        }
        e.TYPE = 0;
        e.K = 0.0;
        e.DPP = 0.0;
        return 0.0;
    });
}

bool Expander_Reducer_choked(RunContext& ctx, const Project& p, Expand& e) {
    const ExpanderSides s = expander_sides(p, e);
    if (!s.up) return false;
    const double C = Expander_Reducer_W2(ctx, p, e);
    return pipe_is_choked(*s.up, sgn(s.W) * e.DP.value, s.W * s.W * C);
}

double Expander_Reducer_W2_choked(RunContext& ctx, const Project& p, Expand& e) {
    return trapped(ctx, "Error! In Expander/Reducer W2 choked function = ", [&]() -> double {
        const ExpanderSides s = expander_sides(p, e);
        e.DPP = std::fabs(e.DP.value);
        if (!s.up) return 0.0;
        const double P = s.W >= 0.0 ? e.PIN.value : e.POUT.value;
        const double v = s.up->VEL[s.up_end], vs = s.up->VEL[4];
        return checked(checked_sqrt(checked_div(v, vs)) * (P + p.gen.PATM) - p.gen.PATM);
    });
}

}  // namespace velm
