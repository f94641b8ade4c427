// The polyline of a Line: point i at XY[3 + 2i], XY[4 + 2i], from the inlet
// (0) to the outlet (BEND + 1), at most kLinePoints points.
#pragma once

#include <algorithm>
#include <array>
#include <vector>

#include "drawing/items.hpp"
#include "model/records.hpp"

namespace velm {

// The outlet's point number, within the array however BEND was read.
inline int last_point(const Line& l) { return std::clamp(l.BEND + 1, 1, kLinePoints - 1); }

inline float point_x(const Line& l, int i) { return l.XY[static_cast<std::size_t>(3 + 2 * i)]; }
inline float point_y(const Line& l, int i) { return l.XY[static_cast<std::size_t>(4 + 2 * i)]; }
inline void set_point(Line& l, int i, float x, float y) {
    l.XY[static_cast<std::size_t>(3 + 2 * i)] = x;
    l.XY[static_cast<std::size_t>(4 + 2 * i)] = y;
}

// A new point i (0 < i <= outlet) at (x, y), the later points one up; BEND
// grows. The caller makes sure there is room.
inline void insert_point(Line& l, int i, float x, float y) {
    for (int k = last_point(l); k >= i; --k) {
        set_point(l, k + 1, point_x(l, k), point_y(l, k));
        l.PointSelected[static_cast<std::size_t>(k + 1)] = l.PointSelected[static_cast<std::size_t>(k)];
    }
    set_point(l, i, x, y);
    l.PointSelected[static_cast<std::size_t>(i)] = 0;
    ++l.BEND;
}

// Point i (an inner point) taken out, the later points one down.
inline void remove_point(Line& l, int i) {
    const int last = last_point(l);
    for (int k = i; k < last; ++k) {
        set_point(l, k, point_x(l, k + 1), point_y(l, k + 1));
        l.PointSelected[static_cast<std::size_t>(k)] = l.PointSelected[static_cast<std::size_t>(k + 1)];
    }
    set_point(l, last, 0.0f, 0.0f);
    l.PointSelected[static_cast<std::size_t>(last)] = 0;
    --l.BEND;
}

// For every line, whether its inlet ([0]) and outlet ([1]) end on a port.
std::vector<std::array<bool, 2>> connected_ends(const Project& p);

}  // namespace velm
