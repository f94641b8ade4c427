// Helpers of the drawing tests: a new project, items placed on it, lines
// between their ports, and a sheet that takes pointer events as a window
// would send them.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "drawing/edit_ops.hpp"
#include "drawing/icons.hpp"
#include "drawing/items.hpp"
#include "drawing/line_points.hpp"
#include "drawing/sheet.hpp"
#include "model/context.hpp"
#include "model/project_file.hpp"

namespace velm::drawtest {

inline Project blank_project() {
    Project p;
    NewProject(p);
    return p;
}

// A new item of the kind with its anchor at (x, y), as the palette makes it.
inline ItemRef add_item(Project& p, ItemKind k, float x, float y) { return {k, NewItem(p, k, 0, x, y)}; }

inline PortRef port_at(Project& p, ItemRef r, int k) { return item_ports(p, r).at[static_cast<std::size_t>(k)]; }

inline std::pair<float, float> port_xy(Project& p, ItemRef r, int k) {
    const PortRef port = port_at(p, r, k);
    return {*port.x, *port.y};
}

inline Line& line_of(Project& p, int L) { return p.lines[static_cast<std::size_t>(L)]; }

// A straight line from port fp of `from` to port tp of `to`, held by both
// ports; an item with index 0 leaves that end free at (fx, fy).
inline int connect(Project& p, ItemRef from, int fp, ItemRef to, int tp, float fx = 0.0f, float fy = 0.0f) {
    float x0 = fx, y0 = fy, x1 = fx + 1000.0f, y1 = fy;
    if (from.index > 0) std::tie(x0, y0) = port_xy(p, from, fp);
    if (to.index > 0) std::tie(x1, y1) = port_xy(p, to, tp);
    const int L = NewItem(p, ItemKind::Line, 0, x0, y0);
    set_point(line_of(p, L), 0, x0, y0);
    set_point(line_of(p, L), 1, x1, y1);
    if (from.index > 0) *port_at(p, from, fp).con = L;
    if (to.index > 0) *port_at(p, to, tp).con = L;
    *selected_flag(p, {ItemKind::Line, L}) = 0;
    return L;
}

// Every port of the project that holds line L.
inline std::vector<std::pair<ItemRef, int>> ports_holding(Project& p, int L) {
    std::vector<std::pair<ItemRef, int>> out;
    for_each_item(p, [&](ItemRef r) {
        Ports ports = item_ports(p, r);
        for (int k = 0; k < ports.n; ++k)
            if (*ports.at[static_cast<std::size_t>(k)].con == L) out.push_back({r, k});
    });
    return out;
}

inline std::vector<ItemRef> selection(Project& p) {
    std::vector<ItemRef> out;
    for_each_item(p, [&](ItemRef r) {
        if (*selected_flag(p, r)) out.push_back(r);
    });
    return out;
}

inline std::string item_label(ItemRef r) { return std::string(kind_name(r.kind)) + " " + std::to_string(r.index); }

// A sheet with its pointer state, taking events as the window sends them.
struct Sheet {
    Project p = blank_project();
    DrawState st;
    RecordingInteraction io;

    void move(float x, float y, bool ctrl = false, bool shift = false) {
        Form_MouseMove(p, st, io, {x, y, 1, shift, ctrl});
    }
    void down(float x, float y, bool ctrl = false, bool shift = false) {
        Form_MouseDown(p, st, io, {x, y, 1, shift, ctrl});
    }
    void up(float x, float y) { Form_MouseUp(p, st, io, {x, y, 1, false, false}); }
    // A click where the pointer is moved to first.
    void click(float x, float y, bool ctrl = false, bool shift = false) {
        move(x, y, ctrl, shift);
        down(x, y, ctrl, shift);
        up(x, y);
    }
    // A double click: the window sends down, up, double click, up.
    void double_click(float x, float y) {
        move(x, y);
        down(x, y);
        up(x, y);
        Form_DblClick(p, st, io, {x, y, 1, false, false});
        up(x, y);
    }
    void key(int k, bool ctrl = false) { Form_KeyDown(p, st, io, k, false, ctrl); }
};

}  // namespace velm::drawtest
