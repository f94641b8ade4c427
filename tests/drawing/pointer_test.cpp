// The pointer on the sheet: what the hit test finds when items share a spot,
// the hover states and their status texts, and the gestures a user makes with
// the mouse (drawing a pipe, carrying a pipe end, dragging the selection,
// creating items with a tool), fed through the event handlers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "drawing/edit.hpp"
#include "drawing/records_of.hpp"
#include "sheet_support.hpp"

namespace velm {
namespace {

using namespace drawtest;

// A point of the kind's body, from its anchor, that is no port's: at least
// 100 twips from every port in one axis.
std::pair<float, float> body_offset(ItemKind k) {
    if (k == ItemKind::Symbol) return {50.0f, 100.0f};
    const Icon& icon = default_icon(k, 0);
    const IconDef placed = PlaceIcon(icon.draw, 0.0f, 0.0f, 0, 1, 1);
    for (float y = placed.Y[0] + 10.0f; y < placed.Y[1]; y += 10.0f)
        for (float x = placed.X[0] + 10.0f; x < placed.X[1]; x += 10.0f) {
            bool clear = true;
            for (int i = 0; i < icon.nports; ++i) {
                const auto& q = icon.ports[static_cast<std::size_t>(i)];
                if (std::fabs(x - q[0]) < 100.0f && std::fabs(y - q[1]) < 100.0f) clear = false;
            }
            if (clear) return {x, y};
        }
    ADD_FAILURE() << "no body point on " << kind_name(k);
    return {0.0f, 0.0f};
}

// Every pair of kinds with bodies over one spot: the kind earlier in the
// order wins, whichever was made first; the later one alone is found there.
TEST(DrawPointer, TheKindEarlierInTheHitTestOrderWinsOnASharedSpot) {
    const float px = 5000.0f, py = 5000.0f;
    for (std::size_t i = 0; i < kDrawOrder.size(); ++i)
        for (std::size_t j = i + 1; j < kDrawOrder.size(); ++j) {
            const ItemKind a = kDrawOrder[i], b = kDrawOrder[j];
            const std::string what = std::string(kind_name(a)) + " over " + std::string(kind_name(b));
            Sheet s;
            s.p.gen.DWGGRD2 = 10;
            ItemRef rb;
            if (b == ItemKind::Line) {
                rb = {ItemKind::Line, connect(s.p, {}, 0, {}, 0, px - 500.0f, py)};
            } else {
                const auto [ox, oy] = body_offset(b);
                rb = add_item(s.p, b, px - ox, py - oy);
            }
            const auto [ox, oy] = body_offset(a);
            const ItemRef ra = add_item(s.p, a, px - ox, py - oy);
            SelectItems(s.p, 0, false, "");
            s.move(px, py);
            EXPECT_EQ(s.st.HoverState, 5) << what;
            EXPECT_EQ(s.st.HoverKind, kind_name(a)) << what;
            EXPECT_EQ(s.st.HoverIndex, ra.index) << what;
            RemoveItem(s.p, ra);
            s.move(px, py);
            EXPECT_EQ(s.st.HoverKind, kind_name(b)) << what << ": the later kind alone";
            EXPECT_EQ(s.st.HoverIndex, rb.index) << what;
        }
}

// A valve with its inlet at 0, 0: that port never answers, its outlet does.
TEST(DrawPointer, APortAtTheOriginNeverMatches) {
    struct Row {
        const char* what;
        int action;
        int connected_port;  // -1 none
        float x, y;
        int state;
    };
    const Row rows[] = {
        {"pipe tool at the inlet at 0, 0", 49, -1, 10.0f, 10.0f, 0},
        {"pipe tool at the outlet", 49, -1, 390.0f, 10.0f, 1},
        {"idle at the connected inlet at 0, 0: the body", 0, 0, 10.0f, 10.0f, 5},
        {"idle at the connected outlet", 0, 1, 390.0f, 10.0f, 7},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef v = add_item(s.p, ItemKind::Valve, 0.0f, 0.0f);
        ASSERT_EQ(port_xy(s.p, v, 0), (std::pair<float, float>{0.0f, 0.0f}));
        if (r.connected_port >= 0) {
            const int L = connect(s.p, {}, 0, {}, 0, 3000.0f, 3000.0f);
            *port_at(s.p, v, r.connected_port).con = L;
        }
        s.st.DrawAction = r.action;
        s.move(r.x, r.y);
        EXPECT_EQ(s.st.HoverState, r.state) << r.what;
    }
}

// Each hover state with its status text, on one sheet: a feed and a product
// joined by line 1, a free product, and line 2 with both ends free.
TEST(DrawPointer, HoverStatesAndTheirStatusTexts) {
    const std::string none, create = "Click to create equipment.",
                            start = "Click to start pipe. Up-arrow to connect.",
                            bend = "Click to add bend. Dbl click to end.",
                            drag = "Drag equip. CTRL to select multiple equip. SHIFT to deselect.",
                            reconnect = "Drag inlet/outlet. Reconnect when up-arrow shows.",
                            connect_text = "Click or mouse up to connect pipe.";
    struct Row {
        const char* what;
        int action;
        float x, y;
        std::set<int> states;
        const char* kind;
        const std::string& status;
        bool run_active = false;
    };
    const Row rows[] = {
        {"empty sheet, idle", 0, 10000, 9000, {0}, "", none},
        {"empty sheet, feed tool", 50, 10000, 9000, {0}, "", create},
        {"empty sheet, symbol tool", 63, 10000, 9000, {0}, "", create},
        {"a body under a valve tool", 52, 6200, 5000, {0}, "", create},
        {"free port, pipe tool", 49, 6000, 5000, {1}, "Prod", start},
        {"free port 90 twips off, pipe tool", 49, 6090, 4910, {1}, "Prod", start},
        {"100 twips off a free port, pipe tool", 49, 6100, 5000, {0}, "", none},
        {"connected port, pipe tool", 49, 2000, 2000, {0}, "", none},
        {"empty sheet, drawing", 1, 10000, 9000, {2}, "", bend},
        {"a body while drawing", 1, 6200, 5000, {2}, "", bend},
        {"a body, idle", 0, 6200, 5000, {5}, "Prod", drag},
        {"connected outlet port, idle", 0, 2000, 2000, {7}, "Feed", reconnect},
        {"connected inlet port, idle", 0, 6000, 2000, {8}, "Prod", reconnect},
        {"free inlet end of a line, idle", 0, 3000, 8000, {7}, "Line", reconnect},
        {"free outlet end of a line, idle", 0, 4000, 8000, {8}, "Line", reconnect},
        {"free port, drawing", 1, 6000, 5000, {9, 10}, "Prod", connect_text},
        {"connected port, drawing", 1, 6000, 2000, {10}, "Prod", connect_text},
        {"free port, carrying an outlet end", 8, 6000, 5000, {9, 10}, "Prod", connect_text},
        {"free port, carrying an inlet end", 7, 6000, 5000, {9, 10}, "Prod", connect_text},
        {"a body while the selection is dragged", 5, 6200, 5000, {0}, "", none},
        {"a body while a run is active", 0, 6200, 5000, {0}, "", none, true},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef f = add_item(s.p, ItemKind::Feed, 2000, 2000);
        const ItemRef p1 = add_item(s.p, ItemKind::Prod, 6000, 2000);
        add_item(s.p, ItemKind::Prod, 6000, 5000);
        connect(s.p, f, 0, p1, 0);
        const int free_line = connect(s.p, {}, 0, {}, 0, 3000, 8000);
        SelectItems(s.p, 0, false, "");
        s.st.DrawAction = r.action;
        s.st.RunActive = r.run_active;
        if (r.action == 1 || r.action == 7 || r.action == 8) {
            s.st.ActionKind = "Line";
            s.st.ActionIndex = free_line;
        }
        HitTest(s.p, s.st, r.x, r.y);
        EXPECT_TRUE(r.states.count(s.st.HoverState)) << r.what << ": state " << s.st.HoverState;
        EXPECT_EQ(s.st.HoverKind, r.kind) << r.what;
        EXPECT_EQ(s.st.status, r.status) << r.what;
        if (r.states == std::set<int>{7} && std::string(r.kind) == "Feed") {
            EXPECT_TRUE(s.st.HoverPort.valid()) << r.what;
            EXPECT_EQ(s.st.HoverPort.item, f) << r.what;
        }
    }
}

enum class Op { Move, Down, Up, Click, DblClick, Esc };
struct Step {
    Op op;
    float x = 0.0f, y = 0.0f;
};

void play(Sheet& s, const std::vector<Step>& steps) {
    for (const Step& e : steps) switch (e.op) {
        case Op::Move: s.move(e.x, e.y); break;
        case Op::Down: s.down(e.x, e.y); break;
        case Op::Up: s.up(e.x, e.y); break;
        case Op::Click: s.click(e.x, e.y); break;
        case Op::DblClick: s.double_click(e.x, e.y); break;
        case Op::Esc: s.key(27); break;
        }
}

using Points = std::vector<std::pair<float, float>>;

Points points_of(const Line& l) {
    Points out;
    for (int i = 0; i <= last_point(l); ++i) out.push_back({point_x(l, i), point_y(l, i)});
    return out;
}

// A pipe drawn from a feed at (2000, 3000) to a product at (8000, 3000), the
// pipe tool armed: the line is held by both ports, its ends sit on them, its
// bends sit where the user clicked, on the grid.
TEST(DrawPointer, APipeDrawnFromPortToPort) {
    struct Row {
        const char* what;
        std::vector<Step> steps;
        Points points;
    };
    const Row rows[] = {
        {"pressed at the feed, released on the product",
         {{Op::Move, 2000, 3000}, {Op::Down, 2000, 3000}, {Op::Move, 5000, 3000}, {Op::Move, 8000, 3000},
          {Op::Up, 8000, 3000}},
         {{2000, 3000}, {8000, 3000}}},
        {"clicked at the feed, clicked on the product",
         {{Op::Click, 2000, 3000}, {Op::Move, 5000, 3050}, {Op::Click, 8000, 3000}},
         {{2000, 3000}, {8000, 3000}}},
        {"clicked a little off the ports",
         {{Op::Click, 2040, 2960}, {Op::Move, 5000, 3050}, {Op::Click, 7960, 3070}},
         {{2000, 3000}, {8000, 3000}}},
        {"two bends clicked on the sheet",
         {{Op::Click, 2000, 3000}, {Op::Click, 4040, 3960}, {Op::Click, 6020, 1030}, {Op::Click, 8000, 3000}},
         {{2000, 3000}, {4000, 4000}, {6000, 1000}, {8000, 3000}}},
        {"a bend pressed and dragged onto the product",
         {{Op::Click, 2000, 3000}, {Op::Move, 5000, 5000}, {Op::Down, 5000, 5000}, {Op::Move, 7000, 4000},
          {Op::Move, 8000, 3000}, {Op::Up, 8000, 3000}},
         {{2000, 3000}, {5000, 5000}, {8000, 3000}}},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef f = add_item(s.p, ItemKind::Feed, 2000, 3000);
        const ItemRef p = add_item(s.p, ItemKind::Prod, 8000, 3000);
        s.st.DrawAction = 49;
        play(s, r.steps);
        ASSERT_EQ(count(s.p.lines), 1) << r.what;
        const Line& l = line_of(s.p, 1);
        EXPECT_EQ(s.p.feeds[1].NOZ.CON, 1) << r.what;
        EXPECT_EQ(s.p.prods[1].NOZ.CON, 1) << r.what;
        EXPECT_EQ(points_of(l), r.points) << r.what;
        EXPECT_EQ(l.BEND, static_cast<int>(r.points.size()) - 2) << r.what;
        EXPECT_EQ(s.st.DrawAction, 0) << r.what;
        EXPECT_EQ(s.st.edit_request.index, 0) << r.what;
        EXPECT_EQ(connected_ends(s.p)[1], (std::array<bool, 2>{true, true})) << r.what;
        (void)f;
        (void)p;
    }
}

// A pipe that does not reach a port: Esc takes it away and frees its start;
// a double click on the sheet ends it free and asks for its dialog; a pipe
// whose points are all used ends by itself. Line 1, from a second feed to a
// product, is there before and stays.
TEST(DrawPointer, APipeEndedOffThePorts) {
    struct Row {
        const char* what;
        std::vector<Step> steps;
        int lines;      // count afterwards
        Points points;  // of line 2 when it stays
        bool ended_by_itself = false;
    };
    std::vector<Step> staircase{{Op::Click, 2000, 3000}};
    for (int k = 1; k <= kLinePoints - 2; ++k) staircase.push_back({Op::Click, 2000.0f + 300.0f * k, 3000.0f + 200.0f * (k % 2 + 1)});
    const Row rows[] = {
        {"Esc after two bends", {{Op::Click, 2000, 3000}, {Op::Click, 4000, 4000}, {Op::Click, 5000, 5000},
                                 {Op::Move, 6000, 5000}, {Op::Esc}}, 1, {}},
        {"Esc at once", {{Op::Click, 2000, 3000}, {Op::Esc}}, 1, {}},
        {"a double click after one bend",
         {{Op::Click, 2000, 3000}, {Op::Click, 4000, 4000}, {Op::Move, 6030, 4970}, {Op::DblClick, 6030, 4970}},
         2, {{2000, 3000}, {4000, 4000}, {6000, 5000}}},
        {"a double click at once", {{Op::Click, 2000, 3000}, {Op::DblClick, 5000, 3000}},
         2, {{2000, 3000}, {5000, 3000}}},
        {"every point used", staircase, 2, {}, true},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef f2 = add_item(s.p, ItemKind::Feed, 2000, 8000);
        const ItemRef f = add_item(s.p, ItemKind::Feed, 2000, 3000);
        const ItemRef p = add_item(s.p, ItemKind::Prod, 8000, 8000);
        const int L1 = connect(s.p, f2, 0, p, 0);
        const Line before = line_of(s.p, L1);
        s.st.DrawAction = 49;
        play(s, r.steps);
        ASSERT_EQ(count(s.p.lines), r.lines) << r.what;
        EXPECT_EQ(line_of(s.p, 1).NAME, before.NAME) << r.what;
        EXPECT_EQ(points_of(line_of(s.p, 1)), points_of(before)) << r.what;
        EXPECT_EQ(*port_at(s.p, f2, 0).con, 1) << r.what;
        EXPECT_EQ(*port_at(s.p, p, 0).con, 1) << r.what;
        if (r.lines == 1) {
            EXPECT_EQ(*port_at(s.p, f, 0).con, 0) << r.what << ": the start port is freed";
            EXPECT_EQ(s.st.DrawAction, 0) << r.what;
            EXPECT_FALSE(s.st.ActionStartPort.valid()) << r.what;
            continue;
        }
        const Line& l = line_of(s.p, 2);
        EXPECT_EQ(*port_at(s.p, f, 0).con, 2) << r.what;
        EXPECT_EQ(connected_ends(s.p)[2], (std::array<bool, 2>{true, false})) << r.what;
        EXPECT_EQ(s.st.edit_request, (ItemRef{ItemKind::Line, 2})) << r.what;
        EXPECT_EQ(selection(s.p), (std::vector<ItemRef>{{ItemKind::Line, 2}})) << r.what;
        if (!r.ended_by_itself) {
            EXPECT_EQ(s.st.DrawAction, 0) << r.what;
            EXPECT_EQ(points_of(l), r.points) << r.what;
            continue;
        }
        // The clicks after the last point was used draw nothing more.
        EXPECT_EQ(s.st.DrawAction, 0) << r.what;
        EXPECT_LE(l.BEND, kLinePoints - 2) << r.what;
        EXPECT_GE(l.BEND, kLinePoints - 3) << r.what;
        const Points pts = points_of(l);
        for (std::size_t i = 1; i < pts.size(); ++i) EXPECT_NE(pts[i], pts[i - 1]) << r.what << " point " << i;
        for (std::size_t i = 1; i < std::min(pts.size(), staircase.size()); ++i)
            EXPECT_EQ(pts[i], (std::pair<float, float>{staircase[i].x, staircase[i].y})) << r.what << " point " << i;
    }
}

// A feed joined to product 1 by line 1, a second feed and product 2 free:
// the ends of line 1 carried off their ports, the port freed at once, and
// put down on another port, on the sheet, or back.
TEST(DrawPointer, CarryingAPipeEnd) {
    struct Leg {
        float gx, gy;  // where the end is picked up
        float tx, ty;  // where it is put down
    };
    struct Row {
        const char* what;
        std::vector<Leg> legs;
        Points ends;                     // line 1's inlet and outlet afterwards
        std::array<const char*, 4> holders;  // which of F1, F2, P1, P2 hold line 1 ("1") afterwards
    };
    const Row rows[] = {
        {"outlet onto another product", {{8000, 3000, 8000, 6000}}, {{2000, 3000}, {8000, 6000}}, {"1", "", "", "1"}},
        {"outlet onto the sheet", {{8000, 3000, 6040, 4960}}, {{2000, 3000}, {6000, 5000}}, {"1", "", "", ""}},
        {"outlet back onto its port", {{8000, 3000, 8040, 3040}}, {{2000, 3000}, {8000, 3000}}, {"1", "", "1", ""}},
        {"inlet onto the other feed", {{2000, 3000, 2000, 6000}}, {{2000, 6000}, {8000, 3000}}, {"", "1", "1", ""}},
        {"outlet onto the sheet, then from there onto a product",
         {{8000, 3000, 6000, 5000}, {6000, 5000, 8000, 6000}}, {{2000, 3000}, {8000, 6000}}, {"1", "", "", "1"}},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef f1 = add_item(s.p, ItemKind::Feed, 2000, 3000);
        const ItemRef f2 = add_item(s.p, ItemKind::Feed, 2000, 6000);
        const ItemRef p1 = add_item(s.p, ItemKind::Prod, 8000, 3000);
        const ItemRef p2 = add_item(s.p, ItemKind::Prod, 8000, 6000);
        connect(s.p, f1, 0, p1, 0);
        SelectItems(s.p, 0, false, "");
        for (const Leg& leg : r.legs) {
            s.move(leg.gx, leg.gy);
            const int state = s.st.HoverState;
            ASSERT_TRUE(state == 7 || state == 8) << r.what;
            s.down(leg.gx, leg.gy);
            EXPECT_EQ(s.st.DrawAction, state) << r.what;
            EXPECT_TRUE(ports_holding(s.p, 1).size() <= 1) << r.what << ": the carried end is freed at once";
            EXPECT_EQ(selection(s.p), (std::vector<ItemRef>{{ItemKind::Line, 1}})) << r.what;
            s.move((leg.gx + leg.tx) / 2, (leg.gy + leg.ty) / 2);
            s.move(leg.tx, leg.ty);
            s.up(leg.tx, leg.ty);
            EXPECT_EQ(s.st.DrawAction, 0) << r.what;
        }
        const Line& l = line_of(s.p, 1);
        EXPECT_EQ(points_of(l), r.ends) << r.what;
        const ItemRef items[] = {f1, f2, p1, p2};
        for (int k = 0; k < 4; ++k)
            EXPECT_EQ(std::to_string(*port_at(s.p, items[k], 0).con), std::string(*r.holders[k] ? r.holders[k] : "0"))
                << r.what << " " << item_label(items[k]);
    }
}

// A feed, line 1 with a bend, a valve, line 2 and a product. Dragging moves the
// selected items, their ports and the line ends on those ports, and nothing else.
TEST(DrawPointer, DraggingTheSelection) {
    struct Row {
        const char* what;
        bool feed_too;                   // the feed is ctrl-clicked into the selection first
        std::vector<std::pair<float, float>> moves;
        float dx, dy;                    // how far the selection goes
    };
    const Row rows[] = {
        {"the valve alone", false, {{5300, 2960}, {5500, 3100}}, 300, 200},
        {"the valve and the feed", true, {{5500, 3100}}, 300, 200},
        {"a pointer off the sheet is not taken", false, {{-100, 3100}}, 0, 0},
        {"less than a grid step", false, {{5240, 2930}}, 0, 0},
    };
    for (const Row& r : rows) {
        Sheet s;
        const ItemRef f = add_item(s.p, ItemKind::Feed, 2000, 3000);
        const ItemRef v = add_item(s.p, ItemKind::Valve, 5000, 3000);
        const ItemRef p = add_item(s.p, ItemKind::Prod, 8000, 3000);
        const int L1 = connect(s.p, f, 0, v, 0), L2 = connect(s.p, v, 1, p, 0);
        insert_point(line_of(s.p, L1), 1, 3500, 2000);
        SelectItems(s.p, 0, false, "");
        Project before = s.p;
        if (r.feed_too) s.click(1760, 2910, true);
        s.move(5200, 2860);
        ASSERT_EQ(s.st.HoverState, 5) << r.what;
        s.down(5200, 2860, r.feed_too);
        EXPECT_EQ(s.st.DrawAction, 5) << r.what;
        for (const auto& [x, y] : r.moves) s.move(x, y);
        s.up(r.moves.back().first, r.moves.back().second);
        EXPECT_EQ(s.st.DrawAction, 0) << r.what;
        const auto moved = [&](std::pair<float, float> was, bool moves) {
            return moves ? std::pair<float, float>{was.first + r.dx, was.second + r.dy} : was;
        };
        EXPECT_EQ(port_xy(s.p, v, 0), moved(port_xy(before, v, 0), true)) << r.what;
        EXPECT_EQ(port_xy(s.p, v, 1), moved(port_xy(before, v, 1), true)) << r.what;
        EXPECT_EQ(port_xy(s.p, f, 0), moved(port_xy(before, f, 0), r.feed_too)) << r.what;
        EXPECT_EQ(port_xy(s.p, p, 0), port_xy(before, p, 0)) << r.what;
        const Points l1 = points_of(line_of(before, L1)), l2 = points_of(line_of(before, L2));
        EXPECT_EQ(points_of(line_of(s.p, L1)), (Points{moved(l1[0], r.feed_too), l1[1], moved(l1[2], true)}))
            << r.what;
        EXPECT_EQ(points_of(line_of(s.p, L2)), (Points{moved(l2[0], true), l2[1]})) << r.what;
        EXPECT_EQ(connected_ends(s.p)[1], (std::array<bool, 2>{true, true})) << r.what;
    }
}

// Three valves; a click on one or on the sheet with Ctrl or Shift held.
TEST(DrawPointer, SelectingWithCtrlAndShift) {
    struct Row {
        std::set<int> before;
        int target;  // valve 1..3, 0 the empty sheet
        bool ctrl, shift;
        std::set<int> after;
    };
    const Row rows[] = {
        {{}, 2, false, false, {2}},       {{1}, 2, false, false, {2}},     {{1, 3}, 2, false, false, {2}},
        {{1}, 2, true, false, {1, 2}},    {{1, 3}, 2, true, false, {1, 2, 3}},
        {{1, 2}, 2, false, true, {1}},    {{1, 2}, 3, false, true, {1, 2}},
        {{1, 2}, 0, false, false, {}},
    };
    for (const Row& r : rows) {
        Sheet s;
        for (int k = 1; k <= 3; ++k) add_item(s.p, ItemKind::Valve, 2000.0f * k, 2000);
        SelectItems(s.p, 0, false, "");
        for (int k : r.before) s.p.valves[static_cast<std::size_t>(k)].Selected = -1;
        const float x = r.target ? 2000.0f * r.target + 200.0f : 12000.0f, y = r.target ? 1860.0f : 9000.0f;
        s.click(x, y, r.ctrl, r.shift);
        std::set<int> after;
        for (int k = 1; k <= 3; ++k)
            if (s.p.valves[static_cast<std::size_t>(k)].Selected) after.insert(k);
        EXPECT_EQ(after, r.after) << "target " << r.target << " ctrl " << r.ctrl << " shift " << r.shift;
    }
}

// Every equipment tool makes its own kind at the snapped pointer, named from
// its template and the new count upward past names in use, selected alone;
// the tool stays armed until Esc.
TEST(DrawPointer, EquipmentToolsMakeNewItems) {
    for (int tool = 50; tool <= 63; ++tool) {
        const ItemKind kind = *kind_of_tool(tool);
        const std::string what = "tool " + std::to_string(tool) + " " + std::string(kind_name(kind));
        Sheet s;
        s.st.DrawAction = tool;
        s.click(2345, 3456);
        s.click(5049, 3551);
        ASSERT_EQ(item_count(s.p, kind), 2) << what;
        EXPECT_EQ(item_anchor(s.p, {kind, 1}), (std::pair<float, float>{2300, 3500})) << what;
        EXPECT_EQ(item_anchor(s.p, {kind, 2}), (std::pair<float, float>{5000, 3600})) << what;
        EXPECT_EQ(selection(s.p), (std::vector<ItemRef>{{kind, 2}})) << what;
        EXPECT_EQ(s.st.DrawAction, tool) << what;
        EXPECT_TRUE(s.st.ProjectDirty) << what;
        if (Drawn* d = drawn(s.p, {kind, 2})) {
            std::string stem;
            with_records(s.p, kind, [&](auto& v) {
                if constexpr (std::is_base_of_v<Drawn, std::decay_t<decltype(v[0])>>) stem = trim(v[0].NAME[1]);
            });
            ASSERT_FALSE(stem.empty()) << what;
            EXPECT_EQ(drawn(s.p, {kind, 1})->NAME[1], stem + "1") << what;
            EXPECT_EQ(d->NAME[1], stem + "2") << what;
            d->NAME[1] = stem + "3";
            s.click(8000, 3000);
            EXPECT_EQ(drawn(s.p, {kind, 3})->NAME[1], stem + "4") << what << ": the name in use is passed";
        } else {
            EXPECT_EQ(kind, ItemKind::Symbol);
        }
        // The placed ports are the icon's, from the anchor.
        const Icon& icon = item_icon(s.p, {kind, 1});
        Ports ports = item_ports(s.p, {kind, 1});
        for (int k = 0; k < ports.n && k < icon.nports; ++k) {
            EXPECT_EQ(*ports.at[static_cast<std::size_t>(k)].x, 2300 + icon.ports[static_cast<std::size_t>(k)][0]) << what;
            EXPECT_EQ(*ports.at[static_cast<std::size_t>(k)].y, 3500 + icon.ports[static_cast<std::size_t>(k)][1]) << what;
        }
        s.key(27);
        EXPECT_EQ(s.st.DrawAction, 0) << what << ": Esc disarms the tool";
        const int n = item_count(s.p, kind);
        s.click(9000, 9000);
        EXPECT_EQ(item_count(s.p, kind), n) << what;
    }
}

}  // namespace
}  // namespace velm
