// The pointer on the sheet: what lies under it (the hit test) and what a
// press, a move, a release, a double click and a key do with it.
#include <cmath>

#include "drawing/edit.hpp"
#include "drawing/edit_ops.hpp"
#include "drawing/icons.hpp"
#include "drawing/line_points.hpp"
#include "drawing/sheet.hpp"

namespace velm {

namespace {

// How near a port or a line the pointer must be, twips in each axis.
constexpr float kTolerance = 100.0f;

constexpr int kIdle = 0, kDrawingPipe = 1, kDraggingPoint = 4, kDraggingSelection = 5, kCarryInlet = 7,
              kCarryOutlet = 8, kPipeTool = 49, kFirstEquipmentTool = 50;

bool near(float x, float y, float px, float py) {
    return std::fabs(x - px) < kTolerance && std::fabs(y - py) < kTolerance;
}

bool carrying_pipe_end(int action) {
    return action == kDrawingPipe || action == kCarryInlet || action == kCarryOutlet;
}

// Distance from (x, y) to the segment (x1, y1)-(x2, y2).
double segment_distance(double x, double y, double x1, double y1, double x2, double y2) {
    const double dx = x2 - x1, dy = y2 - y1, len2 = dx * dx + dy * dy;
    const double t = len2 > 0.0 ? std::clamp(((x - x1) * dx + (y - y1) * dy) / len2, 0.0, 1.0) : 0.0;
    return std::hypot(x - (x1 + t * dx), y - (y1 + t * dy));
}

void hover(DrawState& st, int state, ItemRef r, int point = 0, PortId port = {}) {
    st.HoverState = state;
    st.HoverKind = std::string(kind_name(r.kind));
    st.HoverIndex = r.index;
    st.HoverPoint = point;
    st.HoverPort = port;
}

// The ports of an equipment item under the pointer; true when one decided.
bool hit_ports(Project& p, DrawState& st, ItemRef r, float x, float y) {
    Ports ports = item_ports(p, r);
    for (int k = 0; k < ports.n; ++k) {
        const PortRef& port = ports.at[static_cast<std::size_t>(k)];
        if ((*port.x == 0.0f && *port.y == 0.0f) || !near(x, y, *port.x, *port.y)) continue;
        // The port that holds the line being drawn or carried (the one it
        // starts from) is no place to end it: the release of the click that
        // started the pipe lands there.
        const bool own = st.ActionKind == "Line" && *port.con == st.ActionIndex && carrying_pipe_end(st.DrawAction);
        if (own) continue;
        if (*port.con != 0) {
            if (st.DrawAction == kDrawingPipe || st.DrawAction == kCarryOutlet) hover(st, 10, r, 0, {r, k});
            else if (st.DrawAction == kIdle) hover(st, port.side, r, 0, {r, k});
            else continue;
            return true;
        }
        if (st.DrawAction == kPipeTool) hover(st, 1, r, 0, {r, k});
        else if (carrying_pipe_end(st.DrawAction)) hover(st, port.side == 7 ? 9 : 10, r, 0, {r, k});
        else continue;
        return true;
    }
    return false;
}

// A line under the pointer when idle: a free end is carried, an inner point
// or the body dragged.
bool hit_line(Project& p, DrawState& st, int L, float x, float y,
              const std::vector<std::array<bool, 2>>& connected) {
    if (st.DrawAction != kIdle) return false;
    const Line& l = p.lines[static_cast<std::size_t>(L)];
    const int last = last_point(l);
    for (int i = 0; i <= last; ++i) {
        if (!near(x, y, point_x(l, i), point_y(l, i))) continue;
        if (i == 0 || i == last) {
            if (connected[static_cast<std::size_t>(L)][i == 0 ? 0 : 1]) continue;
            hover(st, i == 0 ? kCarryInlet : kCarryOutlet, {ItemKind::Line, L}, i);
        } else {
            hover(st, 5, {ItemKind::Line, L}, i);
        }
        return true;
    }
    for (int i = 0; i < last; ++i)
        if (segment_distance(x, y, point_x(l, i), point_y(l, i), point_x(l, i + 1), point_y(l, i + 1)) < kTolerance) {
            hover(st, 5, {ItemKind::Line, L}, -1);
            return true;
        }
    return false;
}

PortRef port_of(Project& p, PortId id) {
    Ports ports = item_ports(p, id.item);
    if (id.port < 0 || id.port >= ports.n) return {};
    return ports.at[static_cast<std::size_t>(id.port)];
}

Line* action_line(Project& p, const DrawState& st) {
    if (st.ActionKind != "Line" || st.ActionIndex < 1 || st.ActionIndex > count(p.lines)) return nullptr;
    return &p.lines[static_cast<std::size_t>(st.ActionIndex)];
}

// Ends the carried or drawn pipe end on the port under the pointer, when that
// port is free: the end takes the port's place and the port the line.
void connect_to_hover_port(Project& p, DrawState& st, int point) {
    Line* l = action_line(p, st);
    PortRef port = port_of(p, st.HoverPort);
    if (!l || !port.con || (*port.con != 0 && *port.con != st.ActionIndex)) return;
    set_point(*l, point, *port.x, *port.y);
    *port.con = st.ActionIndex;
    st.changed = true;
}

void finish_gesture(DrawState& st) {
    st.DrawAction = kIdle;
    st.ActionKind.clear();
    st.ActionIndex = st.ActionPoint = 0;
    st.ActionStartPort = {};
}

void start_pipe(Project& p, DrawState& st) {
    PortRef port = port_of(p, st.HoverPort);
    if (!port.con) return;
    const int L = NewItem(p, ItemKind::Line, 0, *port.x, *port.y);
    *port.con = L;
    st.ActionKind = "Line";
    st.ActionIndex = L;
    st.ActionPoint = 1;
    st.ActionStartPort = st.HoverPort;
    st.DrawAction = kDrawingPipe;
    st.ProjectDirty = st.changed = true;
}

// The pipe being drawn ends where it is; its free end stays unconnected and
// its dialog opens.
void end_pipe_on_sheet(Project& p, DrawState& st) {
    Line* l = action_line(p, st);
    if (l) {
        const int last = last_point(*l);
        if (last > 1 && point_x(*l, last) == point_x(*l, last - 1) && point_y(*l, last) == point_y(*l, last - 1))
            remove_point(*l, last - 1);
        SelectItems(p, 0, false, "");
        l->Selected = -1;
        st.edit_request = {ItemKind::Line, st.ActionIndex};
    }
    finish_gesture(st);
    st.changed = true;
}

void add_bend_while_drawing(Project& p, DrawState& st) {
    Line* l = action_line(p, st);
    if (!l) return;
    if (last_point(*l) + 1 >= kLinePoints) return end_pipe_on_sheet(p, st);
    const int last = last_point(*l);
    insert_point(*l, last + 1, point_x(*l, last), point_y(*l, last));
    st.ActionPoint = last_point(*l);
    st.changed = true;
    if (last_point(*l) + 1 >= kLinePoints) end_pipe_on_sheet(p, st);
}

void abandon_pipe(Project& p, DrawState& st) {
    PortRef port = port_of(p, st.ActionStartPort);
    if (port.con && *port.con == st.ActionIndex) *port.con = 0;
    if (st.ActionIndex == count(p.lines)) RemoveLine(p, st.ActionIndex);
    finish_gesture(st);
    st.changed = true;
}

// A bend of a line is selected on its own, so that Del takes the bend and not
// the line, and Add Bend puts a new one after it.
void select_bend(Project& p, DrawState& st, const PointerEvent& e) {
    Line& l = p.lines[static_cast<std::size_t>(st.HoverIndex)];
    int& flag = l.PointSelected[static_cast<std::size_t>(st.HoverPoint)];
    if (e.shift) flag = 0;
    else {
        if (!e.ctrl && !flag) SelectItems(p, 0, false, "");
        flag = -1;
    }
    st.changed = true;
    st.ActionKind = "Line";
    st.ActionIndex = st.HoverIndex;
    st.ActionPoint = st.HoverPoint;
    st.DrawAction = kDraggingPoint;
}

void select_for_drag(Project& p, DrawState& st, const PointerEvent& e) {
    const auto kind = kind_from_name(st.HoverKind);
    if (!kind) return;
    const ItemRef r{*kind, st.HoverIndex};
    if (r.kind == ItemKind::Line && st.HoverPoint > 0 && r.index <= count(p.lines)) return select_bend(p, st, e);
    int* flag = selected_flag(p, r);
    if (!flag) return;
    if (e.shift) *flag = 0;
    else {
        if (!e.ctrl && !*flag) SelectItems(p, 0, false, "");
        *flag = -1;
    }
    st.changed = true;
    const float g = sheet_grid(p);
    st.DragX = Snap(e.x, g);
    st.DragY = Snap(e.y, g);
    st.DrawAction = kDraggingSelection;
}

void carry_pipe_end(Project& p, DrawState& st) {
    int L = 0, point = 0;
    if (st.HoverKind == "Line") {
        L = st.HoverIndex;
        point = st.HoverPoint;
    } else {
        PortRef port = port_of(p, st.HoverPort);
        if (!port.con) return;
        L = *port.con;
        *port.con = 0;
        if (L < 1 || L > count(p.lines)) return;
        point = st.HoverState == kCarryInlet ? 0 : last_point(p.lines[static_cast<std::size_t>(L)]);
    }
    SelectItems(p, 0, false, "");
    p.lines[static_cast<std::size_t>(L)].Selected = -1;
    st.ActionKind = "Line";
    st.ActionIndex = L;
    st.ActionPoint = point;
    st.DrawAction = st.HoverState;
    st.ProjectDirty = st.changed = true;
}

}  // namespace

std::string hover_status(int hover_state, int draw_action) {
    switch (hover_state) {
    case 0: return draw_action >= kFirstEquipmentTool ? "Click to create equipment." : "";
    case 1: return "Click to start pipe. Up-arrow to connect.";
    case 2: return "Click to add bend. Dbl click to end.";
    case 5: return "Drag equip. CTRL to select multiple equip. SHIFT to deselect.";
    case 7:
    case 8: return "Drag inlet/outlet. Reconnect when up-arrow shows.";
    case 9:
    case 10: return "Click or mouse up to connect pipe.";
    default: return "";
    }
}

void HitTest(Project& p, DrawState& st, float x, float y) {
    st.HoverState = 0;
    st.HoverKind.clear();
    st.HoverIndex = st.HoverPoint = 0;
    st.HoverPort = {};
    const bool skip = st.RunActive || st.DrawAction == kDraggingSelection || st.DrawAction >= kFirstEquipmentTool;
    if (!skip) {
        std::vector<std::array<bool, 2>> connected;
        bool found = false;
        for (ItemKind k : kDrawOrder) {
            const int n = item_count(p, k);
            if (k == ItemKind::Line && n > 0 && st.DrawAction == kIdle) connected = connected_ends(p);
            for (int i = 1; i <= n && !found; ++i) {
                const ItemRef r{k, i};
                const Box b = item_box(p, r);
                // Ports sit on the box's edge: they are reached from just outside it too.
                const bool in_box = x >= b.x0 - kTolerance && x <= b.x1 + kTolerance && y >= b.y0 - kTolerance &&
                                    y <= b.y1 + kTolerance;
                if (!in_box) continue;
                if (k == ItemKind::Line) {
                    if (!(st.ActionKind == "Line" && st.ActionIndex == i)) found = hit_line(p, st, i, x, y, connected);
                } else if (k == ItemKind::Symbol) {
                    if (st.DrawAction == kIdle && b.contains(x, y)) {
                        hover(st, 5, r);
                        found = true;
                    }
                } else {
                    found = hit_ports(p, st, r, x, y);
                    if (!found && st.DrawAction == kIdle && b.contains(x, y)) {
                        hover(st, 5, r);
                        found = true;
                    }
                }
            }
            if (found) break;
        }
        if (!found && st.DrawAction == kDrawingPipe) st.HoverState = 2;
    }
    st.status = hover_status(st.HoverState, st.DrawAction);
}

void Form_MouseDown(Project& p, DrawState& st, Interaction&, const PointerEvent& e) {
    if (st.RunActive) return;
    HitTest(p, st, e.x, e.y);
    if (st.DrawAction >= kFirstEquipmentTool) {
        if (const auto kind = kind_of_tool(st.DrawAction)) {
            NewItem(p, *kind, 0, e.x, e.y);
            st.ProjectDirty = st.changed = true;
        }
        return;
    }
    switch (st.HoverState) {
    case 1: return start_pipe(p, st);
    case 2: return add_bend_while_drawing(p, st);
    case 5: return select_for_drag(p, st, e);
    case 7:
    case 8:
        if (st.DrawAction == kIdle) carry_pipe_end(p, st);
        return;
    case 9:
    case 10:
        if (st.DrawAction == kDrawingPipe) {
            connect_to_hover_port(p, st, st.ActionPoint);
            finish_gesture(st);
        }
        return;
    default:
        if (st.DrawAction == kIdle && !e.ctrl && selection_count(p) > 0) {
            SelectItems(p, 0, false, "");
            st.changed = true;
        }
    }
}

void Form_MouseMove(Project& p, DrawState& st, Interaction&, const PointerEvent& e) {
    HitTest(p, st, e.x, e.y);
    if (st.RunActive) return;
    const float g = sheet_grid(p);
    const float x = Snap(e.x, g), y = Snap(e.y, g);
    if (carrying_pipe_end(st.DrawAction) || st.DrawAction == kDraggingPoint) {
        if (Line* l = action_line(p, st)) {
            const int point = st.DrawAction == kDrawingPipe ? last_point(*l) : st.ActionPoint;
            if (point_x(*l, point) != x || point_y(*l, point) != y) {
                set_point(*l, point, x, y);
                st.changed = true;
            }
        }
        return;
    }
    if (st.DrawAction == kDraggingSelection && e.x >= 0.0f && e.y >= 0.0f) {
        if (std::fabs(x - st.DragX) > 0.1f || std::fabs(y - st.DragY) > 0.1f) {
            MoveSelected(p, x, y, st.DragX, st.DragY);
            st.DragX = x;
            st.DragY = y;
            st.ProjectDirty = st.changed = true;
        }
    }
}

void Form_MouseUp(Project& p, DrawState& st, Interaction&, const PointerEvent& e) {
    if (st.RunActive) return;
    HitTest(p, st, e.x, e.y);
    switch (st.DrawAction) {
    case kDrawingPipe:
        if (st.HoverState == 9 || st.HoverState == 10) {
            connect_to_hover_port(p, st, st.ActionPoint);
            finish_gesture(st);
        }
        return;
    case kCarryInlet:
    case kCarryOutlet:
        if (st.HoverState == 9 || st.HoverState == 10) connect_to_hover_port(p, st, st.ActionPoint);
        finish_gesture(st);
        st.changed = true;
        return;
    case kDraggingPoint:
    case kDraggingSelection: finish_gesture(st); return;
    default: return;
    }
}

void Form_DblClick(Project& p, DrawState& st, Interaction&, const PointerEvent& e) {
    if (st.RunActive) return;
    if (st.DrawAction == kDrawingPipe) return end_pipe_on_sheet(p, st);
    HitTest(p, st, e.x, e.y);
    if (st.DrawAction != kIdle || st.HoverState != 5) return;
    if (const auto kind = kind_from_name(st.HoverKind)) st.edit_request = {*kind, st.HoverIndex};
}

void Form_KeyDown(Project& p, DrawState& st, Interaction& io, int key, bool, bool ctrl) {
    if (st.RunActive) return;
    constexpr int kEsc = 27, kEnter = 13, kDel = 46;
    if (key == kEsc) {
        if (st.DrawAction == kDrawingPipe) return abandon_pipe(p, st);
        if (st.DrawAction != kIdle) return finish_gesture(st);
        SelectItems(p, 0, false, "");
        SelectItems(p, 0, true, "");
        st.changed = true;
        return;
    }
    if (st.DrawAction != kIdle) return;
    if (key == kEnter) {
        for_each_item(p, [&](ItemRef r) {
            if (st.edit_request.index == 0 && *selected_flag(p, r)) st.edit_request = r;
        });
        if (st.edit_request.index == 0) io.tell("No equipment to edit.");
    } else if (key == kDel) {
        DeleteSelected(p, io);
        st.ProjectDirty = st.changed = true;
    } else if (ctrl && (key == 'C' || key == 'c')) {
        CopySelected(p, io);
    } else if (ctrl && (key == 'V' || key == 'v')) {
        PasteItems(p, io);
        st.ProjectDirty = st.changed = true;
    }
}

}  // namespace velm
