// Power series of the IAPWS steam equations: sum of n * x^i * y^j over a
// constant table of (i, j, n), with its first partial derivatives. Powers are
// built once per call by repeated multiplication over the exponent range the
// table needs, so no term calls pow().
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

namespace velm::if97 {

struct Term {
    int i;
    int j;
    double n;
};

struct SeriesSums {
    double g = 0.0;   // sum of n x^i y^j
    double gx = 0.0;  // its derivative in x
    double gy = 0.0;  // its derivative in y
};

// x^k for k in Lo..Hi (Lo <= 0 <= Hi).
template <int Lo, int Hi>
class Powers {
public:
    explicit Powers(double x) {
        p_[-Lo] = 1.0;
        for (int k = 1; k <= Hi; ++k) p_[k - Lo] = p_[k - 1 - Lo] * x;
        if constexpr (Lo < 0) {
            const double inverse = 1.0 / x;
            for (int k = -1; k >= Lo; --k) p_[k - Lo] = p_[k + 1 - Lo] * inverse;
        }
    }
    double operator()(int k) const { return p_[static_cast<std::size_t>(k - Lo)]; }

private:
    std::array<double, static_cast<std::size_t>(Hi - Lo + 1)> p_{};
};

// Lowest and highest power of x (first = true) or y that a table needs,
// derivatives included, always spanning 0.
template <std::size_t N>
constexpr int lowest_power(const std::array<Term, N>& terms, bool first) {
    int lo = 0;
    for (const Term& t : terms) {
        const int e = first ? t.i : t.j;
        lo = std::min(lo, e != 0 ? e - 1 : e);
    }
    return lo;
}

template <std::size_t N>
constexpr int highest_power(const std::array<Term, N>& terms, bool first) {
    int hi = 0;
    for (const Term& t : terms) hi = std::max(hi, first ? t.i : t.j);
    return hi;
}

template <const auto& Table>
SeriesSums series(double x, double y) {
    const Powers<lowest_power(Table, true), highest_power(Table, true)> px(x);
    const Powers<lowest_power(Table, false), highest_power(Table, false)> py(y);
    SeriesSums s;
    for (const Term& t : Table) {
        const double xi = px(t.i);
        const double yj = py(t.j);
        s.g += t.n * xi * yj;
        if (t.i != 0) s.gx += t.n * t.i * px(t.i - 1) * yj;
        if (t.j != 0) s.gy += t.n * t.j * xi * py(t.j - 1);
    }
    return s;
}

}  // namespace velm::if97
