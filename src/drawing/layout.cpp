#include "drawing/layout.hpp"

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

#include "drawing/edit.hpp"
#include "drawing/edit_ops.hpp"
#include "drawing/icons.hpp"
#include "drawing/line_points.hpp"

namespace velm {

namespace {

constexpr float kColumnPitch = 3600.0f;  // twips between columns of items
constexpr float kRowPitch = 2000.0f;     // twips between rows
constexpr float kFreeEnd = 1200.0f;      // length of a line with one free end

bool unplaced(Project& p, ItemRef r) {
    if (r.kind == ItemKind::Line) {
        const Line& l = p.lines[static_cast<std::size_t>(r.index)];
        for (int i = 0; i <= last_point(l); ++i)
            if (point_x(l, i) != 0.0f || point_y(l, i) != 0.0f) return false;
        return true;
    }
    if (r.kind == ItemKind::Symbol) return false;
    for (const PortRef& port : item_ports(p, r))
        if (*port.x != 0.0f || *port.y != 0.0f) return false;
    return true;
}

// Which item each line starts on and ends on (index into items, or -1).
struct Graph {
    std::vector<ItemRef> items;
    std::vector<int> from, to;              // by line number
    std::vector<std::vector<int>> next;     // item -> items its lines lead to
    std::vector<int> indegree;
};

Graph build_graph(Project& p) {
    Graph g;
    g.from.assign(p.lines.size(), -1);
    g.to.assign(p.lines.size(), -1);
    for_each_item(p, [&](ItemRef r) {
        if (r.kind == ItemKind::Line || r.kind == ItemKind::Symbol) return;
        const int id = static_cast<int>(g.items.size());
        g.items.push_back(r);
        for (const PortRef& port : item_ports(p, r))
            if (*port.con >= 1 && *port.con < static_cast<int>(p.lines.size()))
                (port.side == 7 ? g.from : g.to)[static_cast<std::size_t>(*port.con)] = id;
    });
    g.next.assign(g.items.size(), {});
    g.indegree.assign(g.items.size(), 0);
    for (std::size_t L = 1; L < p.lines.size(); ++L)
        if (g.from[L] >= 0 && g.to[L] >= 0 && g.from[L] != g.to[L]) {
            g.next[static_cast<std::size_t>(g.from[L])].push_back(g.to[L]);
            ++g.indegree[static_cast<std::size_t>(g.to[L])];
        }
    return g;
}

// Column of each item: its distance along the flow from the nearest source;
// items on a closed loop start from the first of them.
std::vector<int> columns(const Graph& g) {
    std::vector<int> col(g.items.size(), -1);
    std::deque<int> queue;
    const auto spread = [&] {
        while (!queue.empty()) {
            const int a = queue.front();
            queue.pop_front();
            for (int b : g.next[static_cast<std::size_t>(a)])
                if (col[static_cast<std::size_t>(b)] < 0) {
                    col[static_cast<std::size_t>(b)] = col[static_cast<std::size_t>(a)] + 1;
                    queue.push_back(b);
                }
        }
    };
    for (std::size_t i = 0; i < g.items.size(); ++i)
        if (g.indegree[i] == 0) {
            col[i] = 0;
            queue.push_back(static_cast<int>(i));
        }
    spread();
    for (std::size_t i = 0; i < g.items.size(); ++i)
        if (col[i] < 0) {
            col[i] = 0;
            queue.push_back(static_cast<int>(i));
            spread();
        }
    return col;
}

// Rows: each item as near its first predecessor's row as its column allows.
std::vector<int> rows(const Graph& g, const std::vector<int>& col) {
    const std::size_t n = g.items.size();
    std::vector<int> parent_row(n, -1), row(n, 0);
    std::vector<std::size_t> order(n);
    for (std::size_t i = 0; i < n; ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return col[a] < col[b]; });
    std::map<int, int> next_free;
    for (std::size_t i : order) {
        const int wanted = std::max(parent_row[i], 0);
        int& free_row = next_free[col[i]];
        row[i] = std::max(wanted, free_row);
        free_row = row[i] + (g.items[i].kind == ItemKind::Vessel ? 2 : 1);
        for (int b : g.next[i])
            if (parent_row[static_cast<std::size_t>(b)] < 0) parent_row[static_cast<std::size_t>(b)] = row[i];
    }
    return row;
}

// An orthogonal route from (x0, y0) to (x1, y1): straight, two bends in the
// middle, or round below the drawing when the end lies behind the start.
// lane (0..4) shifts the vertical run of a route so that lines leaving one
// column do not lie on top of each other.
void route(Line& l, float x0, float y0, float x1, float y1, float below, float grid, int lane) {
    l.BEND = 0;
    set_point(l, 0, x0, y0);
    set_point(l, 1, x1, y1);
    if (y0 == y1 && x1 > x0) return;
    if (x1 > x0 + 5 * grid) {
        const float mid = Snap((x0 + x1) / 2.0, grid) + static_cast<float>(lane - 2) * grid;
        insert_point(l, 1, mid, y0);
        insert_point(l, 2, mid, y1);
        return;
    }
    const float out = static_cast<float>(3 + lane) * grid;
    insert_point(l, 1, x0 + out, y0);
    insert_point(l, 2, x0 + out, below + static_cast<float>(lane) * grid);
    insert_point(l, 3, x1 - out, below + static_cast<float>(lane) * grid);
    insert_point(l, 4, x1 - out, y1);
}

}  // namespace

bool needs_layout(const Project& p) {
    Project& q = const_cast<Project&>(p);
    bool any = false;
    for_each_item(p, [&](ItemRef r) { any = any || unplaced(q, r); });
    return any;
}

int AutoLayout(Project& p) {
    const Graph g = build_graph(p);
    const std::vector<int> col = columns(g);
    const std::vector<int> row = rows(g, col);
    const float grid = sheet_grid(p);
    const float origin = Snap(p.gen.DWGMAR + 1500.0f, grid);
    int placed = 0;
    float max_x = 0.0f, max_y = 0.0f;
    for (std::size_t i = 0; i < g.items.size(); ++i) {
        const ItemRef r = g.items[i];
        if (!unplaced(p, r)) continue;
        place_ports(p, r, origin + kColumnPitch * static_cast<float>(col[i]),
                    origin + kRowPitch * static_cast<float>(row[i]));
        ++placed;
    }
    for (std::size_t i = 0; i < g.items.size(); ++i) {
        const Box b = item_box(p, g.items[i]);
        max_x = std::max(max_x, b.x1);
        max_y = std::max(max_y, b.y1);
    }
    const float below = Snap(max_y + kRowPitch / 2, grid);
    float loose_y = below + kRowPitch;
    for (int L = 1; L <= count(p.lines); ++L) {
        if (!unplaced(p, {ItemKind::Line, L})) continue;
        Line& l = p.lines[static_cast<std::size_t>(L)];
        const int a = g.from[static_cast<std::size_t>(L)], b = g.to[static_cast<std::size_t>(L)];
        const auto port_at = [&](int item, int side) {
            for (const PortRef& port : item_ports(p, g.items[static_cast<std::size_t>(item)]))
                if (*port.con == L && port.side == side) return std::pair<float, float>{*port.x, *port.y};
            return std::pair<float, float>{0.0f, 0.0f};
        };
        if (a >= 0 && b >= 0) {
            const auto [x0, y0] = port_at(a, 7);
            const auto [x1, y1] = port_at(b, 8);
            route(l, x0, y0, x1, y1, below, grid, L % 5);
        } else if (a >= 0) {
            const auto [x0, y0] = port_at(a, 7);
            route(l, x0, y0, x0 + kFreeEnd, y0, below, grid, L % 5);
        } else if (b >= 0) {
            const auto [x1, y1] = port_at(b, 8);
            route(l, x1 - kFreeEnd, y1, x1, y1, below, grid, L % 5);
        } else {
            route(l, origin, loose_y, origin + kFreeEnd, loose_y, below, grid, L % 5);
            loose_y += kRowPitch / 2;
        }
        // The label block under the first segment, clear of the item the line leaves.
        l.LBL2 = 14 * grid;
        l.LBL3 = grid;
        ++placed;
        const Box box = item_box(p, {ItemKind::Line, L});
        max_x = std::max(max_x, box.x1);
        max_y = std::max(max_y, box.y1);
    }
    const float margin = p.gen.DWGMAR;
    if (max_x + margin + 4000.0f > p.gen.DWGSIZ[1] || max_y + margin + 1500.0f > p.gen.DWGSIZ[2]) {
        p.gen.DWGSTD = "Custom";
        p.gen.DWGSIZ[1] = std::max(p.gen.DWGSIZ[1], Snap(max_x + margin + 4000.0f, grid));
        p.gen.DWGSIZ[2] = std::max(p.gen.DWGSIZ[2], Snap(max_y + margin + 1500.0f, grid));
    }
    return placed;
}

}  // namespace velm
