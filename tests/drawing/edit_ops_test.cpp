// The edit commands of the sheet: delete with every reference renumbered,
// copy and paste, rotate and flip with the lines following the ports, the
// ports of every icon on the grid, and bends added to selected segments.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "drawing/edit.hpp"
#include "drawing/records_of.hpp"
#include "sheet_support.hpp"

namespace velm {
namespace {

using namespace drawtest;

// The name an item is known by in these tests: its tag, or a Symbol's text.
std::string id_of(Project& p, ItemRef r) {
    if (const Drawn* d = drawn(p, r)) return d->NAME[1];
    return r.kind == ItemKind::Symbol ? p.symbols[static_cast<std::size_t>(r.index)].TEXT : "";
}

ItemRef find_item(Project& p, ItemKind k, const std::string& id) {
    for (int i = 1; i <= item_count(p, k); ++i)
        if (id_of(p, {k, i}) == id) return {k, i};
    return {k, 0};
}

std::string project_text(const Project& p) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    return WriteVdf(ctx, p);
}

// A reference after record d of N is removed: d goes, N takes d's place.
int after_removal(int ref, int d, int N) { return ref == d ? 0 : ref == N ? d : ref; }

constexpr std::array<ItemKind, 14> kEquipment{
    ItemKind::Feed, ItemKind::Prod, ItemKind::Valve, ItemKind::Check, ItemKind::Pump, ItemKind::Comp, ItemKind::FO,
    ItemKind::HX,   ItemKind::Misc, ItemKind::Expand, ItemKind::Vessel, ItemKind::Tee, ItemKind::Junc, ItemKind::Symbol};

// Three items of a kind, a line on every port of each; item 2 (the middle)
// or 3 (the last) deleted. The others keep their lines under their new
// numbers, the deleted one's lines are held by nothing, no line goes, and
// pumps that name a deleted or moved feed or vessel as NPSH source follow.
TEST(DrawEdit, DeletingEquipmentRenumbersWhatNamesIt) {
    for (ItemKind kind : kEquipment)
        for (int d : {2, 3}) {
            const std::string what = std::string(kind_name(kind)) + " " + std::to_string(d) + " of 3";
            Project p = blank_project();
            std::map<std::string, std::vector<int>> lines_on;  // item id -> line on each port
            for (int i = 1; i <= 3; ++i) {
                const ItemRef r = add_item(p, kind, 2000.0f * i, 3000.0f);
                if (kind == ItemKind::Symbol) p.symbols[static_cast<std::size_t>(i)].TEXT = "S" + std::to_string(i);
                const int nports = item_ports(p, r).n;
                for (int k = 0; k < nports; ++k) {
                    const int L = connect(p, {}, 0, {}, 0, 100.0f * k, 9000.0f + 100.0f * i);
                    *port_at(p, r, k).con = L;
                    lines_on[id_of(p, r)].push_back(L);
                }
            }
            std::vector<std::string> pumps;
            const bool npsh = kind == ItemKind::Feed || kind == ItemKind::Vessel;
            if (npsh)
                for (int i = 1; i <= 3; ++i) {
                    const ItemRef u = add_item(p, ItemKind::Pump, 2000.0f * i, 6000.0f);
                    p.pumps[static_cast<std::size_t>(u.index)].NPSHAF[kind == ItemKind::Feed ? 1 : 2] = i;
                    pumps.push_back(id_of(p, u));
                }
            const std::string gone = id_of(p, {kind, d});
            const std::vector<std::string> ids{id_of(p, {kind, 1}), id_of(p, {kind, 2}), id_of(p, {kind, 3})};
            const int lines_before = count(p.lines);
            SelectItems(p, 0, false, "");
            *selected_flag(p, {kind, d}) = -1;
            RecordingInteraction io;
            io.answers = {0};
            DeleteSelected(p, io);
            ASSERT_EQ(io.asked, (std::vector<std::string>{"Delete selected equipment ?"})) << what;
            ASSERT_EQ(item_count(p, kind), 2) << what;
            EXPECT_EQ(count(p.lines), lines_before) << what;
            EXPECT_EQ(find_item(p, kind, gone).index, 0) << what;
            for (const auto& [id, lines] : lines_on) {
                if (id == gone) {
                    for (int L : lines) EXPECT_TRUE(ports_holding(p, L).empty()) << what << " line " << L;
                    continue;
                }
                const ItemRef r = find_item(p, kind, id);
                ASSERT_NE(r.index, 0) << what << " " << id;
                for (std::size_t k = 0; k < lines.size(); ++k)
                    EXPECT_EQ(*port_at(p, r, static_cast<int>(k)).con, lines[k]) << what << " " << id << " port " << k;
            }
            // The last item takes the freed place; the first stays.
            EXPECT_EQ(id_of(p, {kind, 1}), ids[0]) << what;
            EXPECT_EQ(id_of(p, {kind, 2}), d == 2 ? ids[2] : ids[1]) << what;
            for (std::size_t i = 0; i < pumps.size(); ++i) {
                const Pump& u = p.pumps[static_cast<std::size_t>(find_item(p, ItemKind::Pump, pumps[i]).index)];
                EXPECT_EQ(u.NPSHAF[kind == ItemKind::Feed ? 1 : 2], after_removal(static_cast<int>(i) + 1, d, 3))
                    << what << " pump " << pumps[i];
                EXPECT_EQ(u.NPSHAF[kind == ItemKind::Feed ? 2 : 1], 0) << what;
            }
        }
}

// One item of a kind with a line on each port (lines 2.. N), line 1 free;
// a line deleted: the first free one, the one on the first port, or the last.
// Every field that named the deleted line is 0, every one that named the last
// names its new number: ports of every kind, REFLINE, a valve's DPP1 and a
// tee's legs.
TEST(DrawEdit, DeletingALineRenumbersEveryReference) {
    for (ItemKind kind : kEquipment) {
        if (kind == ItemKind::Symbol) continue;
        Project probe = blank_project();
        const int nports = item_ports(probe, add_item(probe, kind, 0, 0)).n;
        const int N = nports + 1;
        for (int d : {1, 2, N}) {
            const std::string what = std::string(kind_name(kind)) + ": line " + std::to_string(d) + " of " +
                                     std::to_string(N);
            Project p = blank_project();
            const ItemRef x = add_item(p, kind, 3000, 3000);
            const ItemRef v = add_item(p, ItemKind::Valve, 8000, 8000);
            const ItemRef t = add_item(p, ItemKind::Tee, 8000, 3000);
            connect(p, {}, 0, {}, 0, 1000, 9000);
            for (int k = 0; k < nports; ++k) {
                const int L = connect(p, {}, 0, {}, 0, 1000, 9500.0f + 100.0f * k);
                *port_at(p, x, k).con = L;
            }
            ASSERT_EQ(count(p.lines), N);
            std::map<std::string, int> refline;
            for (int L = 1; L <= N; ++L) {
                line_of(p, L).REFLINE = L % N + 1;
                refline[line_of(p, L).NAME[1]] = L % N + 1;
            }
            p.valves[static_cast<std::size_t>(v.index)].DPP1 = N;
            Tee& tee = p.tees[static_cast<std::size_t>(t.index)];
            tee.C[2] = N, tee.M[2] = d, tee.B[2] = 1;
            const std::string last_name = line_of(p, N).NAME[1];
            SelectItems(p, 0, false, "");
            line_of(p, d).Selected = -1;
            RecordingInteraction io;
            DeleteSelected(p, io);
            ASSERT_EQ(count(p.lines), N - 1) << what;
            if (d != N) {
                EXPECT_EQ(line_of(p, d).NAME[1], last_name) << what;
            }
            for (int k = 0; k < nports; ++k)
                EXPECT_EQ(*port_at(p, x, k).con, after_removal(k + 2, d, N)) << what << " port " << k;
            for (int L = 1; L <= N - 1; ++L)
                EXPECT_EQ(line_of(p, L).REFLINE, after_removal(refline[line_of(p, L).NAME[1]], d, N))
                    << what << " REFLINE of " << line_of(p, L).NAME[1];
            EXPECT_EQ(p.valves[static_cast<std::size_t>(v.index)].DPP1, after_removal(N, d, N)) << what;
            const Tee& te = p.tees[static_cast<std::size_t>(t.index)];
            EXPECT_EQ(te.C[2], after_removal(N, d, N)) << what;
            EXPECT_EQ(te.M[2], 0) << what;
            EXPECT_EQ(te.B[2], after_removal(1, d, N)) << what;
        }
    }
}

// What delete asks and tells, and what it leaves when told no.
TEST(DrawEdit, DeleteAsksFirst) {
    struct Row {
        const char* what;
        bool select_valve, select_bend;
        std::vector<int> answers;
        std::vector<std::string> told, asked;
        int valves, bends;  // afterwards
    };
    const std::string q = "Delete selected equipment ?";
    const Row rows[] = {
        {"nothing selected", false, false, {}, {"No equipment to delete."}, {}, 1, 2},
        {"answered No", true, true, {1}, {}, {q}, 1, 2},
        {"answered Yes", true, false, {0}, {}, {q}, 0, 2},
        {"a selected bend, Yes", false, true, {0}, {}, {q}, 1, 1},
    };
    for (const Row& r : rows) {
        Project p = blank_project();
        const ItemRef f = add_item(p, ItemKind::Feed, 2000, 3000);
        const ItemRef v = add_item(p, ItemKind::Valve, 5000, 3000);
        const int L = connect(p, f, 0, v, 0);
        insert_point(line_of(p, L), 1, 3000, 2000);
        insert_point(line_of(p, L), 2, 4000, 2000);
        SelectItems(p, 0, false, "");
        if (r.select_valve) p.valves[1].Selected = -1;
        if (r.select_bend) line_of(p, L).PointSelected[1] = -1;
        const std::string before = project_text(p);
        RecordingInteraction io;
        io.answers = r.answers;
        DeleteSelected(p, io);
        EXPECT_EQ(io.told, r.told) << r.what;
        EXPECT_EQ(io.asked, r.asked) << r.what;
        EXPECT_EQ(count(p.valves), r.valves) << r.what;
        EXPECT_EQ(line_of(p, L).BEND, r.bends) << r.what;
        if (r.valves == 1 && r.bends == 2) {
            EXPECT_EQ(project_text(p), before) << r.what;
        }
        if (r.bends == 1) {
            EXPECT_EQ(point_x(line_of(p, L), 1), 4000.0f) << r.what;
        }
        if (r.valves == 0) {
            EXPECT_EQ(connected_ends(p)[static_cast<std::size_t>(L)], (std::array<bool, 2>{true, false})) << r.what;
        }
    }
}

// A feed, line 1 with a bend, a valve, line 2 (its REFLINE line 1) and a
// product; a selection copied and pasted. Each copy sits 300 twips down and
// right of its original; a copied line is held by the copies of the items it
// joined when they were copied too, and by nothing else; the originals keep
// their lines; the copies alone are selected.
TEST(DrawEdit, CopyAndPaste) {
    struct Row {
        const char* what;
        std::vector<ItemRef> chosen;
        std::vector<std::string> told;
    };
    const ItemRef F{ItemKind::Feed, 1}, V{ItemKind::Valve, 1}, P{ItemKind::Prod, 1}, L1{ItemKind::Line, 1},
        L2{ItemKind::Line, 2};
    const Row rows[] = {
        {"nothing", {}, {"No equipment to copy.", "No equipment to paste."}},
        {"a line alone", {L2}, {}},
        {"a line with a bend alone", {L1}, {}},
        {"a valve alone", {V}, {}},
        {"the valve with both lines", {V, L1, L2}, {}},
        {"everything", {F, L1, V, L2, P}, {}},
    };
    for (const Row& r : rows) {
        Project p = blank_project();
        add_item(p, ItemKind::Feed, 2000, 3000);
        add_item(p, ItemKind::Valve, 5000, 3000);
        add_item(p, ItemKind::Prod, 8000, 3000);
        connect(p, F, 0, V, 0);
        connect(p, V, 1, P, 0);
        insert_point(line_of(p, 1), 1, 3500, 2000);
        line_of(p, 2).REFLINE = 1;
        Project before = p;
        SelectItems(p, 0, false, "");
        for (const ItemRef& c : r.chosen) *selected_flag(p, c) = -1;
        RecordingInteraction io;
        CopySelected(p, io);
        PasteItems(p, io);
        EXPECT_EQ(io.told, r.told) << r.what;
        // The copies follow the originals, kind by kind in the order of the records.
        std::map<std::pair<ItemKind, int>, ItemRef> copy_of;
        for (ItemKind k : kDrawOrder) {
            int n = item_count(before, k);
            for (int i = 1; i <= item_count(before, k); ++i)
                for (const ItemRef& c : r.chosen)
                    if (c == ItemRef{k, i}) copy_of[{k, i}] = {k, ++n};
            EXPECT_EQ(item_count(p, k), n) << r.what << " " << kind_name(k);
        }
        std::vector<ItemRef> copies;
        for (const auto& [from, to] : copy_of) copies.push_back(to);
        std::vector<ItemRef> selected = selection(p);
        std::sort(copies.begin(), copies.end(), [](ItemRef a, ItemRef b) {
            return std::pair{a.kind, a.index} < std::pair{b.kind, b.index};
        });
        std::sort(selected.begin(), selected.end(), [](ItemRef a, ItemRef b) {
            return std::pair{a.kind, a.index} < std::pair{b.kind, b.index};
        });
        EXPECT_EQ(selected, copies) << r.what;
        const auto line_copy = [&](int L) {
            const auto it = copy_of.find({ItemKind::Line, L});
            return it == copy_of.end() ? 0 : it->second.index;
        };
        for (const auto& [key, to] : copy_of) {
            const ItemRef from{key.first, key.second};
            if (from.kind == ItemKind::Line) {
                const Line& a = line_of(before, from.index);
                const Line& b = line_of(p, to.index);
                ASSERT_EQ(b.BEND, a.BEND) << r.what;
                for (int i = 0; i <= last_point(a); ++i) {
                    EXPECT_EQ(point_x(b, i), point_x(a, i) + 300.0f) << r.what << " point " << i;
                    EXPECT_EQ(point_y(b, i), point_y(a, i) + 300.0f) << r.what << " point " << i;
                }
                EXPECT_EQ(b.REFLINE, line_copy(a.REFLINE)) << r.what;
                // Held by the copies of the items that held the original, and only them.
                std::vector<std::pair<ItemRef, int>> expected;
                for (const auto& [item, port] : ports_holding(before, from.index)) {
                    const auto it = copy_of.find({item.kind, item.index});
                    if (it != copy_of.end()) expected.push_back({it->second, port});
                }
                EXPECT_EQ(ports_holding(p, to.index), expected) << r.what << " copy of line " << from.index;
                continue;
            }
            Ports a = item_ports(before, from), b = item_ports(p, to);
            for (int k = 0; k < a.n; ++k) {
                EXPECT_EQ(*b.at[static_cast<std::size_t>(k)].x, *a.at[static_cast<std::size_t>(k)].x + 300.0f) << r.what;
                EXPECT_EQ(*b.at[static_cast<std::size_t>(k)].y, *a.at[static_cast<std::size_t>(k)].y + 300.0f) << r.what;
                EXPECT_EQ(*b.at[static_cast<std::size_t>(k)].con, line_copy(*a.at[static_cast<std::size_t>(k)].con))
                    << r.what << " port " << k;
            }
        }
        // The originals are as they were.
        for_each_item(before, [&](ItemRef o) {
            Ports a = item_ports(before, o), b = item_ports(p, o);
            for (int k = 0; k < a.n; ++k)
                EXPECT_EQ(*b.at[static_cast<std::size_t>(k)].con, *a.at[static_cast<std::size_t>(k)].con) << r.what;
            if (o.kind == ItemKind::Line) {
                EXPECT_EQ(line_of(p, o.index).XY, line_of(before, o.index).XY) << r.what;
            }
        });
    }
}

// The ports of every icon, kind and form, under every rotation and flip,
// placed at an anchor on the grid: all on the 100-twip grid, the first on the
// anchor, no two on one spot.
TEST(DrawEdit, IconPortsStayOnTheGrid) {
    struct Form {
        ItemKind kind;
        const char* type;
    };
    const Form forms[] = {
        {ItemKind::Feed, "Pipe"},   {ItemKind::Feed, "Tank"},     {ItemKind::Feed, "Vessel"},
        {ItemKind::Prod, "Pipe"},   {ItemKind::Prod, "Tank"},     {ItemKind::Prod, "Vessel"},
        {ItemKind::Vessel, "Vertical"}, {ItemKind::Vessel, "Tank"}, {ItemKind::Vessel, "Horizontal"},
        {ItemKind::Valve, ""},      {ItemKind::Check, ""},        {ItemKind::Pump, ""},
        {ItemKind::Comp, ""},       {ItemKind::FO, ""},           {ItemKind::HX, ""},
        {ItemKind::Misc, ""},       {ItemKind::Expand, ""},       {ItemKind::Junc, ""},
        {ItemKind::Tee, ""},
    };
    for (const Form& f : forms)
        for (int rot : {0, 90, 180, 270})
            for (int fx : {1, -1})
                for (int fy : {1, -1}) {
                    const std::string what = std::string(kind_name(f.kind)) + " " + f.type + " rot " +
                                             std::to_string(rot) + " flips " + std::to_string(fx) + " " +
                                             std::to_string(fy);
                    Project p = blank_project();
                    const ItemRef r = add_item(p, f.kind, 0, 0);
                    with_record(p, r, [&](auto& rec) {
                        if constexpr (requires { rec.TYPE.size(); }) rec.TYPE = f.type;
                    });
                    Drawn* d = drawn(p, r);
                    d->ROT = rot;
                    d->FLIP = {0, fx, fy};
                    place_ports(p, r, 3000, 4000);
                    Ports ports = item_ports(p, r);
                    ASSERT_EQ(ports.n, item_icon(p, r).nports) << what;
                    EXPECT_EQ(port_xy(p, r, 0), (std::pair<float, float>{3000, 4000})) << what;
                    for (int k = 0; k < ports.n; ++k) {
                        const float x = *ports.at[static_cast<std::size_t>(k)].x, y = *ports.at[static_cast<std::size_t>(k)].y;
                        EXPECT_EQ(std::fmod(x, 100.0f), 0.0f) << what << " port " << k << " x " << x;
                        EXPECT_EQ(std::fmod(y, 100.0f), 0.0f) << what << " port " << k << " y " << y;
                        for (int j = 0; j < k; ++j)
                            EXPECT_FALSE(x == *ports.at[static_cast<std::size_t>(j)].x &&
                                         y == *ports.at[static_cast<std::size_t>(j)].y)
                                << what << " ports " << j << " and " << k;
                    }
                    // The box holds every port.
                    const Box b = item_box(p, r);
                    for (int k = 0; k < ports.n; ++k)
                        EXPECT_TRUE(b.contains(*ports.at[static_cast<std::size_t>(k)].x, *ports.at[static_cast<std::size_t>(k)].y))
                            << what << " port " << k;
                }
}

// A pump at (1000, 2000): its outlet (400, -100) from the inlet and its box
// (0, -150)-(400, 200), worked by hand: x' = FX (cos a x + sin a y), y' =
// FY (-sin a x + cos a y), a = -ROT.
TEST(DrawEdit, PumpPlacedUnderRotationsAndFlips) {
    struct Row {
        int rot, fx, fy;
        float ox, oy;               // outlet from the anchor
        float bx0, by0, bx1, by1;   // box from the anchor
    };
    const Row rows[] = {
        {0, 1, 1, 400, -100, 0, -150, 400, 200},
        {90, 1, 1, 100, 400, -200, 0, 150, 400},
        {180, 1, 1, -400, 100, -400, -200, 0, 150},
        {270, 1, 1, -100, -400, -150, -400, 200, 0},
        {0, -1, 1, -400, -100, -400, -150, 0, 200},
        {0, 1, -1, 400, 100, 0, -200, 400, 150},
        {90, -1, -1, -100, -400, -150, -400, 200, 0},
    };
    for (const Row& r : rows) {
        const std::string what = std::to_string(r.rot) + " " + std::to_string(r.fx) + " " + std::to_string(r.fy);
        Project p = blank_project();
        const ItemRef u = add_item(p, ItemKind::Pump, 1000, 2000);
        p.pumps[1].ROT = r.rot;
        p.pumps[1].FLIP = {0, r.fx, r.fy};
        place_ports(p, u, 1000, 2000);
        EXPECT_EQ(port_xy(p, u, 0), (std::pair<float, float>{1000, 2000})) << what;
        EXPECT_EQ(port_xy(p, u, 1), (std::pair<float, float>{1000 + r.ox, 2000 + r.oy})) << what;
        const Box b = item_box(p, u);
        EXPECT_NEAR(b.x0, 1000 + r.bx0, 1e-3) << what;
        EXPECT_NEAR(b.y0, 2000 + r.by0, 1e-3) << what;
        EXPECT_NEAR(b.x1, 1000 + r.bx1, 1e-3) << what;
        EXPECT_NEAR(b.y1, 2000 + r.by1, 1e-3) << what;
    }
}

// A feed, line 1, a selected pump, line 2, a product: turns and mirrors of
// the pump; the pump turns about its inlet, its ports land where the hand-
// worked placement puts them, the lines' ends follow, the other items stay.
TEST(DrawEdit, RotateAndFlipCarryTheLines) {
    enum Op { Rot90, Rot270, FlipX, FlipY };
    struct Row {
        const char* what;
        std::vector<Op> ops;
        float ox, oy;  // the pump's outlet from its inlet afterwards
    };
    const Row rows[] = {
        {"90", {Rot90}, 100, 400},
        {"90 four times", {Rot90, Rot90, Rot90, Rot90}, 400, -100},
        {"270", {Rot270}, -100, -400},
        {"90 and 270", {Rot90, Rot270}, 400, -100},
        {"mirrored in x", {FlipX}, -400, -100},
        {"mirrored in x twice", {FlipX, FlipX}, 400, -100},
        {"mirrored in y", {FlipY}, 400, 100},
        {"mirrored in x and y", {FlipX, FlipY}, -400, 100},
    };
    for (const Row& r : rows) {
        Project p = blank_project();
        const ItemRef f = add_item(p, ItemKind::Feed, 2000, 3000);
        const ItemRef u = add_item(p, ItemKind::Pump, 5000, 3000);
        const ItemRef q = add_item(p, ItemKind::Prod, 8000, 3000);
        const int L1 = connect(p, f, 0, u, 0), L2 = connect(p, u, 1, q, 0);
        SelectItems(p, 0, false, "");
        p.pumps[1].Selected = -1;
        for (Op op : r.ops) {
            if (op == Rot90) RotateSelected(p, 90);
            if (op == Rot270) RotateSelected(p, 270);
            if (op == FlipX) FlipSelected(p, 1);
            if (op == FlipY) FlipSelected(p, 2);
        }
        EXPECT_EQ(port_xy(p, u, 0), (std::pair<float, float>{5000, 3000})) << r.what;
        EXPECT_EQ(port_xy(p, u, 1), (std::pair<float, float>{5000 + r.ox, 3000 + r.oy})) << r.what;
        EXPECT_EQ(port_xy(p, f, 0), (std::pair<float, float>{2000, 3000})) << r.what;
        EXPECT_EQ(port_xy(p, q, 0), (std::pair<float, float>{8000, 3000})) << r.what;
        const Line &l1 = line_of(p, L1), &l2 = line_of(p, L2);
        EXPECT_EQ((std::pair{point_x(l1, 0), point_y(l1, 0)}), port_xy(p, f, 0)) << r.what;
        EXPECT_EQ((std::pair{point_x(l1, 1), point_y(l1, 1)}), port_xy(p, u, 0)) << r.what;
        EXPECT_EQ((std::pair{point_x(l2, 0), point_y(l2, 0)}), port_xy(p, u, 1)) << r.what;
        EXPECT_EQ((std::pair{point_x(l2, 1), point_y(l2, 1)}), port_xy(p, q, 0)) << r.what;
        EXPECT_EQ(p.feeds[1].ROT, 0) << r.what;
    }
}

// Bends on the line (1000, 1000)-(3000, 1000)-(3000, 3050): in the middle of
// each selected segment, snapped; none on a full line.
TEST(DrawEdit, AddBend) {
    using Points = std::vector<std::pair<float, float>>;
    struct Row {
        const char* what;
        bool line_selected;
        std::vector<int> points_selected;
        int bends_before;  // the line filled up to this many bends first
        Points after;      // empty: unchanged
        std::vector<std::string> told;
    };
    const std::string full = "Maximum bends exceeded. Cannot add bend for pipe ";
    const Row rows[] = {
        {"nothing selected", false, {}, 1, {}, {"No pipes or bends selected."}},
        {"the line", true, {}, 1, {{1000, 1000}, {2000, 1000}, {3000, 1000}, {3000, 3050}}, {}},
        {"its first point", false, {0}, 1, {{1000, 1000}, {2000, 1000}, {3000, 1000}, {3000, 3050}}, {}},
        {"its bend", false, {1}, 1, {{1000, 1000}, {3000, 1000}, {3000, 2000}, {3000, 3050}}, {}},
        {"both", false, {0, 1}, 1, {{1000, 1000}, {2000, 1000}, {3000, 1000}, {3000, 2000}, {3000, 3050}}, {}},
        {"a full line", true, {}, kLinePoints - 2, {}, {"P"}},
    };
    for (const Row& r : rows) {
        Project p = blank_project();
        const int L = connect(p, {}, 0, {}, 0, 1000, 1000);
        Line& l = line_of(p, L);
        set_point(l, 1, 3000, 3050);
        insert_point(l, 1, 3000, 1000);
        while (l.BEND < r.bends_before) insert_point(l, 1, 1000, 500.0f + 10.0f * l.BEND);
        SelectItems(p, 0, false, "");
        l.Selected = r.line_selected ? -1 : 0;
        for (int i : r.points_selected) l.PointSelected[static_cast<std::size_t>(i)] = -1;
        const Line before = l;
        RecordingInteraction io;
        AddBend(p, io);
        std::vector<std::string> told = r.told;
        if (!told.empty() && told[0] == "P") told[0] = full + l.NAME[1];
        EXPECT_EQ(io.told, told) << r.what;
        if (r.after.empty()) {
            EXPECT_EQ(l.XY, before.XY) << r.what;
            EXPECT_EQ(l.BEND, before.BEND) << r.what;
            continue;
        }
        Points pts;
        for (int i = 0; i <= last_point(l); ++i) pts.push_back({point_x(l, i), point_y(l, i)});
        EXPECT_EQ(pts, r.after) << r.what;
        EXPECT_EQ(l.BEND, static_cast<int>(r.after.size()) - 2) << r.what;
    }
}

}  // namespace
}  // namespace velm
