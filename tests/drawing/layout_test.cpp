// The layout of projects whose items have no place: every example project,
// read as a user opens it, laid out and checked for a drawing that can be
// used: every connected line end on its port, no two items over each other,
// everything on the sheet, and a second layout moving nothing.
#include "drawing/layout.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "model/context.hpp"
#include "sheet_support.hpp"

namespace velm {
namespace {

using namespace drawtest;

bool overlap(const Box& a, const Box& b) { return a.x0 < b.x1 && b.x0 < a.x1 && a.y0 < b.y1 && b.y0 < a.y1; }

TEST(DrawLayout, EveryExampleLaidOut) {
    std::vector<std::filesystem::path> files;
    for (const auto& e : std::filesystem::directory_iterator(std::string(VELM_SOURCE_DIR) + "/examples"))
        if (e.path().extension() == ".vdf") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    ASSERT_GE(files.size(), 5u);
    for (const auto& file : files) {
        const std::string what = file.filename().string();
        RecordingInteraction ui;
        RunContext ctx(ui);
        Project p = blank_project();
        ASSERT_TRUE(ReadVdf(ctx, p, file)) << what;
        EXPECT_TRUE(needs_layout(p)) << what;
        EXPECT_GT(AutoLayout(p), 0) << what;
        EXPECT_FALSE(needs_layout(p)) << what;

        // Every connected end on its port, every line's other points placed.
        int connected = 0;
        for_each_item(p, [&](ItemRef r) {
            Ports ports = item_ports(p, r);
            for (int k = 0; k < ports.n; ++k) {
                const PortRef& port = ports.at[static_cast<std::size_t>(k)];
                if (*port.con < 1) continue;
                ASSERT_LE(*port.con, count(p.lines)) << what;
                const Line& l = line_of(p, *port.con);
                const int i = port.side == 7 ? 0 : last_point(l);
                EXPECT_EQ(point_x(l, i), *port.x) << what << " " << item_label(r) << " port " << k;
                EXPECT_EQ(point_y(l, i), *port.y) << what << " " << item_label(r) << " port " << k;
                ++connected;
            }
        });
        EXPECT_GT(connected, 0) << what;

        // No two items over each other; everything on the sheet.
        std::vector<std::pair<ItemRef, Box>> boxes;
        for_each_item(p, [&](ItemRef r) {
            const Box b = item_box(p, r);
            EXPECT_GE(b.x0, 0.0f) << what << " " << item_label(r);
            EXPECT_GE(b.y0, 0.0f) << what << " " << item_label(r);
            EXPECT_LE(b.x1, p.gen.DWGSIZ[1]) << what << " " << item_label(r);
            EXPECT_LE(b.y1, p.gen.DWGSIZ[2]) << what << " " << item_label(r);
            if (r.kind != ItemKind::Line && r.kind != ItemKind::Symbol) boxes.push_back({r, b});
        });
        for (std::size_t i = 0; i < boxes.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                EXPECT_FALSE(overlap(boxes[i].second, boxes[j].second))
                    << what << " " << item_label(boxes[i].first) << " over " << item_label(boxes[j].first);

        // Laid out once: a second layout leaves everything where it is.
        const Project placed = p;
        EXPECT_EQ(AutoLayout(p), 0) << what;
        for (int L = 1; L <= count(p.lines); ++L)
            EXPECT_EQ(p.lines[static_cast<std::size_t>(L)].XY, placed.lines[static_cast<std::size_t>(L)].XY) << what;
        EXPECT_EQ(p.gen.DWGSIZ, placed.gen.DWGSIZ) << what;
    }
}

}  // namespace
}  // namespace velm
