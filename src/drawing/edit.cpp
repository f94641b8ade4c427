#include "drawing/edit.hpp"

#include "drawing/edit_ops.hpp"
#include "drawing/records_of.hpp"

#include <algorithm>
#include <cmath>

namespace velm {

namespace {

constexpr double kPi = 3.141592654;

// Every field that holds a line number, of every kind.
template <class Visit>
void each_line_reference(Project& p, Visit&& visit) {
    for (Line& l : p.lines) visit(l.REFLINE);
    for (Feed& f : p.feeds) visit(f.NOZ.CON);
    for (Prod& r : p.prods) visit(r.NOZ.CON);
    const auto two_port = [&](auto& items) {
        for (auto& r : items) {
            visit(r.CON[1]);
            visit(r.CON[2]);
        }
    };
    two_port(p.valves);
    for (Valve& v : p.valves) visit(v.DPP1);
    two_port(p.checks);
    two_port(p.fos);
    two_port(p.pumps);
    two_port(p.comps);
    two_port(p.expands);
    for (HX& x : p.hxs) {
        visit(x.NOZI.CON);
        visit(x.NOZO.CON);
    }
    for (Misc& m : p.miscs) {
        visit(m.NOZI.CON);
        visit(m.NOZO.CON);
    }
    const auto nozzles = [&](auto& items) {
        for (auto& r : items)
            for (int k = 1; k <= kNozzles; ++k) {
                visit(r.NOZI[static_cast<std::size_t>(k)].CON);
                visit(r.NOZO[static_cast<std::size_t>(k)].CON);
            }
    };
    nozzles(p.juncs);
    nozzles(p.vessels);
    for (Tee& t : p.tees) {
        for (int k = 1; k <= 6; ++k) visit(t.CON[static_cast<std::size_t>(k)]);
        visit(t.C[2]);
        visit(t.M[2]);
        visit(t.B[2]);
    }
}

// Reference n becomes 0 and the last number becomes n.
void renumber(int& ref, int n, int last) {
    if (ref == n) ref = 0;
    else if (ref == last) ref = n;
}

// The last record takes place n and the count falls by one.
template <class R>
void move_last_into(std::vector<R>& items, int n) {
    const auto at = static_cast<std::size_t>(n);
    if (at + 1 < items.size()) items[at] = items.back();
    items.pop_back();
}

template <class R>
bool in_range(const std::vector<R>& items, int n) {
    return n >= 1 && n <= count(items);
}

}  // namespace

float Snap(double v, double g) {
    const double grid = std::max(1.0, std::nearbyint(g));
    return static_cast<float>(std::nearbyint(v / grid) * grid);
}

double NormAngle(double a) {
    const double turn = 2.0 * kPi;
    a = std::fmod(a, turn);
    return a < 0.0 ? a + turn : a;
}

IconDef PlaceIcon(const IconDef& icon, float x0, float y0, int ROT, int fx, int fy) {
    IconDef out = icon;
    const double a = -ROT * kPi / 180.0;
    const double c = std::cos(a), s = std::sin(a);
    const int last = std::clamp(icon.Count, 0, 40);
    for (int k = 0; k <= last; ++k) {
        const auto i = static_cast<std::size_t>(k);
        const double x = icon.X[i], y = icon.Y[i];
        if (icon.Op[i] == kIconRadius) continue;
        if (icon.Op[i] == kIconAngles) {
            double start = x - ROT * kPi / 180.0, end = y - ROT * kPi / 180.0;
            const double sum = start + end;
            if (fx < 0) {
                start = (sum - kPi) + start;
                end = (sum - kPi) + end;
            }
            if (fy < 0) {
                start = sum + start;
                end = sum + end;
            }
            out.X[i] = static_cast<float>(NormAngle(start));
            out.Y[i] = static_cast<float>(NormAngle(end));
            continue;
        }
        out.X[i] = static_cast<float>(fx * c * x + fx * s * y + x0);
        out.Y[i] = static_cast<float>(-fy * s * x + fy * c * y + y0);
    }
    if (last >= 1) {
        if (out.X[0] > out.X[1]) std::swap(out.X[0], out.X[1]);
        if (out.Y[0] > out.Y[1]) std::swap(out.Y[0], out.Y[1]);
    }
    return out;
}

void RemoveLine(Project& p, int n) {
    if (!in_range(p.lines, n)) return;
    const int last = count(p.lines);
    each_line_reference(p, [&](int& ref) { renumber(ref, n, last); });
    move_last_into(p.lines, n);
}

void RemoveFeed(Project& p, int n) {
    if (!in_range(p.feeds, n)) return;
    const int last = count(p.feeds);
    for (Pump& u : p.pumps) renumber(u.NPSHAF[1], n, last);
    move_last_into(p.feeds, n);
}

void RemoveVessel(Project& p, int n) {
    if (!in_range(p.vessels, n)) return;
    const int last = count(p.vessels);
    for (Pump& u : p.pumps) renumber(u.NPSHAF[2], n, last);
    move_last_into(p.vessels, n);
}

void RemoveItem(Project& p, ItemRef r) {
    if (r.kind == ItemKind::Line) return RemoveLine(p, r.index);
    if (r.kind == ItemKind::Feed) return RemoveFeed(p, r.index);
    if (r.kind == ItemKind::Vessel) return RemoveVessel(p, r.index);
    with_records(p, r.kind, [&](auto& items) {
        if (in_range(items, r.index)) move_last_into(items, r.index);
    });
}

bool DeleteBend(Project& p, int L, int point, Interaction& io) {
    if (!in_range(p.lines, L)) return false;
    Line& l = p.lines[static_cast<std::size_t>(L)];
    if (point <= 0 || point >= l.BEND + 1) {
        io.tell("Error! Cannot delete end points.");
        return false;
    }
    // Point i sits at XY[3 + 2i], XY[4 + 2i]; the later points move down one.
    for (int i = point; i <= l.BEND; ++i) {
        const auto to = static_cast<std::size_t>(3 + 2 * i);
        if (to + 3 >= l.XY.size()) break;
        l.XY[to] = l.XY[to + 2];
        l.XY[to + 1] = l.XY[to + 3];
        l.PointSelected[static_cast<std::size_t>(i)] = l.PointSelected[static_cast<std::size_t>(i + 1)];
    }
    --l.BEND;
    return true;
}

}  // namespace velm
