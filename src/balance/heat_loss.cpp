// Heat loss of a line to still or moving air: the overall coefficient from
// its films, wall and insulation, and the duty from the exponential approach
// of the fluid temperature to ambient along the line.
#include <algorithm>
#include <cmath>

#include "balance/balance.hpp"
#include "correlations/pipe.hpp"
#include "model/fault.hpp"
#include "model/text.hpp"
#include "thermo/srk.hpp"

namespace velm {

namespace {

constexpr double kFouling = 2500.0;         // W/m2/K, both sides together
constexpr double kStefanBoltzmann = 5.669e-08;  // W/m2/K4
constexpr double kKelvin = 273.15;

// Inlet and outlet temperature of a line in the direction of its flow, C.
void temperatures_by_flow(const Line& l, double& T1, double& T2) {
    const bool forward = l.TFLOW.value >= 0.0;
    T1 = forward ? l.TEMP[1] : l.TEMP[2];
    T2 = forward ? l.TEMP[2] : l.TEMP[1];
}

// Inner film, W/m2/K: 0.027 (k / ID) Re^0.8 Pr^0.333 over the line's average
// properties (cp kJ/kg/K, viscosity cP, conductivity W/m/K); 500 when the data
// give none.
double inner_film(RunContext& ctx, const Line& l) {
    const double k = l.TOTCON[3], cp = l.TOTCP[3], mu = l.TPROP[6], ID = l.ID.value;
    double hi = 0.0;
    if (k > 0.0 && ID > 0.0) {
        const double re = Re(ctx, l.TFLOW.value, ID, l.IDH.value, mu);
        const double pr = cp * mu / k;
        hi = 0.027 * (k / ID) * std::pow(re, 0.8) * std::pow(pr, 0.333);
    }
    return hi == 0.0 ? 500.0 : hi;
}

double at_least_tiny(double h) { return h == 0.0 ? 1e-12 : h; }

// The log-mean of the fluid's excess over ambient along the line, C; its
// limit T1 - TAMB when both ends stand at the same temperature.
double mean_excess(double T1, double T2, double Tamb) {
    if (T1 == T2) return T1 - Tamb;
    return (T1 - T2) / checked_log((T1 - Tamb) / (T2 - Tamb));
}

}  // namespace

double Pipe_U(RunContext& ctx, const Line& l, double& tsur) {
    if (!trim(l.UI.spec).empty()) {
        tsur = 0.0;
        return leading_number(l.UI.spec);
    }
    double T1 = 0.0, T2 = 0.0;
    temperatures_by_flow(l, T1, T2);
    const double ID = l.ID.value, ODF = l.ODF[2], Tamb = l.TAMB;
    const double hi = inner_film(ctx, l);
    const double hp = at_least_tiny(checked_div(2.0 * l.QPIP[2], checked_log(checked_div(ODF, ID)) * ID));
    const double Dins = 2.0 * l.QINS[1] + ODF;
    const double hn =
        at_least_tiny(l.QINS[1] > 1e-06 ? checked_div(2.0 * l.QINS[3], checked_log(Dins / ODF) * ID) : 1e12);
    const double Ui = 1.0 / (1.0 / hi + 1.0 / kFouling + 1.0 / hp + 1.0 / hn);

    double Ts = l.TSUR != 0.0 ? l.TSUR : (T1 + T2 + 2.0 * Tamb) * 0.25;
    double Tn = Ts, ho = 0.0;
    for (int round = 1; round <= 1000; ++round) {
        const double ts = Ts + kKelvin, ta = Tamb + kKelvin;
        const double hr = kStefanBoltzmann * l.QPIP[1] * (ts * ts + ta * ta) * (ts + ta) * Dins / ID;
        const double Dc = std::min(0.6096, std::max(Dins, 0.001));
        const double Tf = std::max(1.0, Ts + Tamb + 35.56);
        const double hc = 3.2461 * 1.016 * std::pow(1.0 / Dc, 0.2) * std::pow(1.0 / Tf, 0.181) *
                          std::pow(std::abs(Ts - Tamb), 0.266) * std::sqrt(2.8566 * l.QAIR2 + 1.0) * Dins / ID;
        ho = hr + hc;
        if ((T1 - Tamb) / (T2 - Tamb) > 0.0)
            Tn = (Ui / (Ui + ho)) * mean_excess(T1, T2, Tamb) + Tamb;
        else
            ctx.log_error("Error! Temperature cross in pipe U value calc.");
        if (std::abs(Ts - Tn) < 0.01) break;
        Ts = Tn;
    }
    ho = at_least_tiny(ho);
    tsur = Ts;
    return 1.0 / (1.0 / Ui + 1.0 / ho);
}

double Pipe_Q(const Line& l, std::array<double, 4>& qmem) {
    const double A = kPipePi * l.ID.value * l.LEN * l.QFAC;
    const double UA = 3.6 * l.UI.value * A;  // kJ/h/K
    const double Q2 = l.Q.value, Tamb = l.TAMB;
    double T1 = 0.0, T2 = 0.0;
    temperatures_by_flow(l, T1, T2);
    if (std::abs(Q2) < 1e-06) return 0.1 * UA * (T1 - Tamb);
    if (std::abs(T1 - T2) < 1e-06 || (T1 - Tamb) / (T1 - T2) < 0.0) return UA * (T1 - Tamb);

    // The outlet temperature the present duty implies on an exponential
    // approach to ambient.
    double Te = Q2 / UA + Tamb;
    for (int k = 1; k <= 1000; ++k) {
        const double Tn = T1 - (T1 - Tamb) * (1.0 - SafeExp(-UA * (T1 - Te) / Q2));
        if (std::abs(Te - Tn) < 0.001) break;
        Te = Tn;
    }
    const double E = Te - T2;
    double Q = 0.0;
    if (qmem[3] > 3.5) {
        const double d = E - qmem[2];
        Q = d == 0.0 ? Q2 : Q2 - (Q2 - qmem[1]) * E / d;
    } else if ((T1 - Tamb) / (T1 - T2) > 0.0) {
        Q = ((T1 - Tamb) * Q2 / (T1 - T2)) * (1.0 - SafeExp(-UA * (T1 - T2) / Q2));
    }
    Q = sgn(Q) * std::min(std::abs(Q), std::abs(UA * (T1 - Tamb)));
    qmem[1] = Q2;
    qmem[2] = E;
    qmem[3] += 1.0;
    return Q;
}

}  // namespace velm
