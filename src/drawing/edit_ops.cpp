#include "drawing/edit_ops.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawing/edit.hpp"
#include "drawing/icons.hpp"
#include "drawing/line_points.hpp"
#include "drawing/records_of.hpp"

namespace velm {

namespace {

// Offset of a pasted copy from its original, twips.
constexpr float kPasteOffset = 300.0f;

template <class R>
void name_new_item(std::vector<R>& items, int template_index) {
    if constexpr (std::is_base_of_v<Drawn, R>) items.back().NAME[1] = UniqueName(items, template_index);
}

void clear_line_connections_of(Project& p, ItemRef r) {
    for (PortRef& port : item_ports(p, r)) *port.con = 0;
}

// Moves every point of item r (its ports, or a Symbol's corners) by (dx, dy).
void shift_item(Project& p, ItemRef r, float dx, float dy) {
    if (r.kind == ItemKind::Symbol) {
        Symbol& s = p.symbols[static_cast<std::size_t>(r.index)];
        for (int i : {1, 3}) {
            s.XY[static_cast<std::size_t>(i)] += dx;
            s.XY[static_cast<std::size_t>(i + 1)] += dy;
        }
        return;
    }
    for (PortRef& port : item_ports(p, r)) {
        *port.x += dx;
        *port.y += dy;
    }
}

bool any_line_point_selected(const Line& l) {
    for (int i = 0; i <= last_point(l); ++i)
        if (l.PointSelected[static_cast<std::size_t>(i)]) return true;
    return false;
}

}  // namespace

float sheet_grid(const Project& p) { return static_cast<float>(p.gen.DWGGRD2 > 0 ? p.gen.DWGGRD2 : 100); }

int NewItem(Project& p, ItemKind kind, int template_index, float x, float y) {
    SelectItems(p, 0, false, "");
    const float g = sheet_grid(p);
    const float sx = Snap(x, g), sy = Snap(y, g);
    int n = 0;
    with_records(p, kind, [&](auto& items) {
        if (items.empty()) items.emplace_back();
        const int from = std::clamp(template_index, 0, count(items));
        items.push_back(items[static_cast<std::size_t>(from)]);
        name_new_item(items, from);
        n = count(items);
    });
    const ItemRef r{kind, n};
    if (kind == ItemKind::Line) {
        Line& l = p.lines[static_cast<std::size_t>(n)];
        l.XY.fill(0.0f);
        l.PointSelected.fill(0);
        l.BEND = 0;
        set_point(l, 0, sx, sy);
        set_point(l, 1, sx, sy);
    } else if (kind == ItemKind::Symbol) {
        Symbol& s = p.symbols[static_cast<std::size_t>(n)];
        s.XY = {0.0f, sx, sy, sx + 1000.0f, sy + 500.0f};
    } else {
        clear_line_connections_of(p, r);
        place_ports(p, r, sx, sy);
    }
    *selected_flag(p, r) = -1;
    if (*marked_flag(p, r)) *marked_flag(p, r) = 0;
    return n;
}

void attach_line_ends(Project& p, ItemRef r) {
    for (PortRef& port : item_ports(p, r)) {
        const int L = *port.con;
        if (L < 1 || L > count(p.lines)) continue;
        Line& l = p.lines[static_cast<std::size_t>(L)];
        set_point(l, port.side == 7 ? 0 : last_point(l), *port.x, *port.y);
    }
}

void MoveSelected(Project& p, float x, float y, float lastX, float lastY) {
    const float dx = x - lastX, dy = y - lastY;
    if (std::fabs(dx) <= 0.1f && std::fabs(dy) <= 0.1f) return;
    // Which line ends sit on a moved port: they move once, with the port.
    std::vector<std::array<bool, 2>> end_moved(p.lines.size(), {false, false});
    const std::vector<std::array<bool, 2>> connected = connected_ends(p);
    for_each_item(p, [&](ItemRef r) {
        if (r.kind == ItemKind::Line || !*selected_flag(p, r)) return;
        shift_item(p, r, dx, dy);
        if (r.kind == ItemKind::Symbol) return;
        for (PortRef& port : item_ports(p, r)) {
            const int L = *port.con;
            if (L < 1 || L > count(p.lines)) continue;
            end_moved[static_cast<std::size_t>(L)][port.side == 7 ? 0 : 1] = true;
        }
        attach_line_ends(p, r);
    });
    for (int L = 1; L <= count(p.lines); ++L) {
        Line& l = p.lines[static_cast<std::size_t>(L)];
        const int last = last_point(l);
        for (int i = 0; i <= last; ++i) {
            const bool end = i == 0 || i == last;
            if (end && end_moved[static_cast<std::size_t>(L)][i == 0 ? 0 : 1]) continue;
            const bool inner_selected = !end && (l.Selected || l.PointSelected[static_cast<std::size_t>(i)]);
            // A free end of a selected line moves with it; an end on a port that stays does not.
            const bool free = end && !connected[static_cast<std::size_t>(L)][i == 0 ? 0 : 1];
            const bool free_end = free && (l.Selected || l.PointSelected[static_cast<std::size_t>(i)]);
            if (inner_selected || free_end)
                set_point(l, i, point_x(l, i) + dx, point_y(l, i) + dy);
        }
    }
}

void AddBend(Project& p, Interaction& io) {
    bool any = false;
    const float g = sheet_grid(p);
    for (int L = 1; L <= count(p.lines); ++L) {
        Line& l = p.lines[static_cast<std::size_t>(L)];
        for (int seg = last_point(l) - 1; seg >= 0; --seg) {
            const bool chosen = l.PointSelected[static_cast<std::size_t>(seg)] || (seg == 0 && l.Selected);
            if (!chosen) continue;
            any = true;
            if (last_point(l) + 1 >= kLinePoints) {
                io.tell("Maximum bends exceeded. Cannot add bend for pipe " + l.NAME[1]);
                break;
            }
            insert_point(l, seg + 1, Snap((point_x(l, seg) + point_x(l, seg + 1)) / 2.0, g),
                         Snap((point_y(l, seg) + point_y(l, seg + 1)) / 2.0, g));
        }
    }
    if (!any) io.tell("No pipes or bends selected.");
}

void DeleteSelected(Project& p, Interaction& io) {
    if (selection_count(p) == 0) {
        io.tell("No equipment to delete.");
        return;
    }
    if (io.ask("Delete selected equipment ?", {"Yes", "No"}) != 0) return;
    for (int L = count(p.lines); L >= 1; --L)
        if (p.lines[static_cast<std::size_t>(L)].Selected) RemoveLine(p, L);
    for (int L = 1; L <= count(p.lines); ++L) {
        Line& l = p.lines[static_cast<std::size_t>(L)];
        for (int i = last_point(l) - 1; i >= 1; --i)
            if (l.PointSelected[static_cast<std::size_t>(i)]) remove_point(l, i);
        l.PointSelected.fill(0);
    }
    for (ItemKind k : kDrawOrder) {
        if (k == ItemKind::Line) continue;
        for (int i = item_count(p, k); i >= 1; --i)
            if (*selected_flag(p, {k, i})) {
                clear_line_connections_of(p, {k, i});
                RemoveItem(p, {k, i});
            }
    }
}

void CopySelected(Project& p, Interaction& io) {
    int marked = 0;
    for_each_item(p, [&](ItemRef r) {
        *marked_flag(p, r) = *selected_flag(p, r) ? -1 : 0;
        marked += *marked_flag(p, r) != 0;
    });
    if (marked == 0) io.tell("No equipment to copy.");
}

void PasteItems(Project& p, Interaction& io) {
    std::vector<ItemRef> originals;
    for_each_item(p, [&](ItemRef r) {
        if (*marked_flag(p, r)) originals.push_back(r);
    });
    if (originals.empty()) {
        io.tell("No equipment to paste.");
        return;
    }
    SelectItems(p, 0, false, "");
    std::vector<int> new_line(p.lines.size(), 0);
    std::vector<ItemRef> copies;
    for (const ItemRef& from : originals) {
        const auto [x, y] = item_anchor(p, from);
        const int n = NewItem(p, from.kind, from.index, x + kPasteOffset, y + kPasteOffset);
        const ItemRef to{from.kind, n};
        if (from.kind == ItemKind::Line) {
            const Line& src = p.lines[static_cast<std::size_t>(from.index)];
            Line& l = p.lines[static_cast<std::size_t>(n)];
            l.BEND = src.BEND;
            for (int i = 0; i <= last_point(src); ++i)
                set_point(l, i, point_x(src, i) + kPasteOffset, point_y(src, i) + kPasteOffset);
            new_line[static_cast<std::size_t>(from.index)] = n;
        } else if (from.kind == ItemKind::Symbol) {
            const auto xy = p.symbols[static_cast<std::size_t>(from.index)].XY;
            Symbol& s = p.symbols[static_cast<std::size_t>(n)];
            for (int i = 1; i <= 4; ++i) s.XY[static_cast<std::size_t>(i)] = xy[static_cast<std::size_t>(i)] + kPasteOffset;
        }
        copies.push_back(to);
    }
    // The copies' references point at the copied lines, or nowhere.
    const auto renumbered = [&](int L) {
        return L >= 1 && L < static_cast<int>(new_line.size()) ? new_line[static_cast<std::size_t>(L)] : 0;
    };
    std::size_t k = 0;
    for (const ItemRef& to : copies) {
        const ItemRef from = originals[k++];
        if (to.kind == ItemKind::Line) {
            Line& l = p.lines[static_cast<std::size_t>(to.index)];
            l.REFLINE = renumbered(l.REFLINE);
        } else if (to.kind != ItemKind::Symbol) {
            Ports src = item_ports(p, from);
            Ports dst = item_ports(p, to);
            for (int i = 0; i < dst.n && i < src.n; ++i)
                *dst.at[static_cast<std::size_t>(i)].con = renumbered(*src.at[static_cast<std::size_t>(i)].con);
            if (to.kind == ItemKind::Tee) {
                Tee& t = p.tees[static_cast<std::size_t>(to.index)];
                for (int* leg : {&t.C[2], &t.M[2], &t.B[2]}) *leg = renumbered(*leg);
            }
        }
    }
    for (const ItemRef& to : copies) *selected_flag(p, to) = -1;
}

void RotateSelected(Project& p, int degrees) {
    for_each_item(p, [&](ItemRef r) {
        Drawn* d = drawn(p, r);
        if (!d || r.kind == ItemKind::Line || !d->Selected) return;
        d->ROT = ((d->ROT + degrees) % 360 + 360) % 360;
        const auto [x0, y0] = item_anchor(p, r);
        place_ports(p, r, x0, y0);
        attach_line_ends(p, r);
    });
}

void FlipSelected(Project& p, int axis, int to) {
    const auto i = static_cast<std::size_t>(axis == 2 ? 2 : 1);
    for_each_item(p, [&](ItemRef r) {
        Drawn* d = drawn(p, r);
        if (!d || r.kind == ItemKind::Line || !d->Selected) return;
        d->FLIP[i] = to != 0 ? (to < 0 ? -1 : 1) : (d->FLIP[i] < 0 ? 1 : -1);
        const auto [x0, y0] = item_anchor(p, r);
        place_ports(p, r, x0, y0);
        attach_line_ends(p, r);
    });
}

int SelectItems(Project& p, int flag, bool mark, const std::string& name) {
    int n = 0;
    for_each_item(p, [&](ItemRef r) {
        if (!name.empty()) {
            const Drawn* d = drawn(p, r);
            if (!d || d->NAME[1] != name) return;
        }
        *(mark ? marked_flag(p, r) : selected_flag(p, r)) = flag;
        if (r.kind == ItemKind::Line && !mark && flag == 0) p.lines[static_cast<std::size_t>(r.index)].PointSelected.fill(0);
        ++n;
    });
    return n;
}

int selection_count(const Project& p) {
    int n = 0;
    for_each_item(p, [&](ItemRef r) {
        n += *selected_flag(const_cast<Project&>(p), r) != 0;
        if (r.kind == ItemKind::Line) n += any_line_point_selected(p.lines[static_cast<std::size_t>(r.index)]);
    });
    return n;
}

}  // namespace velm
