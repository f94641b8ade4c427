// Sheet geometry and edits: the grid, an icon placed under every rotation
// and flip against hand-computed points, new names, and the removal of
// records with every reference renumbered.
#include "drawing/edit.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "model/project_file.hpp"

namespace velm {
namespace {

TEST(Drawing, SnapAndNormAngle) {
    EXPECT_EQ(Snap(149.0, 100), 100.0f);
    EXPECT_EQ(Snap(151.0, 100), 200.0f);
    EXPECT_EQ(Snap(150.0, 100), 200.0f);   // halves to even: 1.5 -> 2
    EXPECT_EQ(Snap(250.0, 100), 200.0f);   // 2.5 -> 2
    EXPECT_EQ(Snap(-149.0, 100), -100.0f);
    EXPECT_EQ(Snap(74.0, 49.6), 50.0f);    // the grid taken as a whole number
    EXPECT_EQ(Snap(7.0, 0), 7.0f);         // no grid: whole twips
    EXPECT_NEAR(NormAngle(-0.5), 2 * 3.141592654 - 0.5, 1e-12);
    EXPECT_NEAR(NormAngle(7.0), 7.0 - 2 * 3.141592654, 1e-12);
}

// A point (200, -100) of an icon at (1000, 2000), turned by ROT and mirrored;
// the corners (-250, -100) and (0, 100) of the box come out ordered.
TEST(Drawing, PlaceIconUnderEveryRotationAndFlip) {
    IconDef icon;
    icon.Count = 4;
    icon.Op = {kIconCorner, kIconFrame, kIconMove, kIconRadius, kIconAngles};
    icon.X = {-250, 0, 200, 75, 0.0f};
    icon.Y = {-100, 100, -100, 0, 1.0f};
    struct Row { int rot, fx, fy; float x, y; float bx0, by0, bx1, by1; };
    const Row rows[] = {
        {0, 1, 1, 200, -100, -250, -100, 0, 100},
        {0, -1, 1, -200, -100, 0, -100, 250, 100},
        {0, 1, -1, 200, 100, -250, -100, 0, 100},
        {90, 1, 1, 100, 200, -100, -250, 100, 0},
        {180, 1, 1, -200, 100, 0, -100, 250, 100},
        {270, 1, 1, -100, -200, -100, 0, 100, 250},
        {90, -1, -1, -100, -200, -100, 0, 100, 250},
    };
    for (const Row& r : rows) {
        const IconDef placed = PlaceIcon(icon, 1000, 2000, r.rot, r.fx, r.fy);
        const std::string what = std::to_string(r.rot) + " " + std::to_string(r.fx) + " " + std::to_string(r.fy);
        EXPECT_NEAR(placed.X[2], 1000 + r.x, 1e-3) << what;
        EXPECT_NEAR(placed.Y[2], 2000 + r.y, 1e-3) << what;
        EXPECT_NEAR(placed.X[0], 1000 + r.bx0, 1e-3) << what;
        EXPECT_NEAR(placed.Y[0], 2000 + r.by0, 1e-3) << what;
        EXPECT_NEAR(placed.X[1], 1000 + r.bx1, 1e-3) << what;
        EXPECT_NEAR(placed.Y[1], 2000 + r.by1, 1e-3) << what;
        EXPECT_EQ(placed.X[3], 75.0f) << "a radius is not moved";
    }
    // Arc angles turn with the icon: 0 and 1 rad at ROT 90 become 3 pi / 2 and 1 - pi / 2 + 2 pi.
    const IconDef turned = PlaceIcon(icon, 0, 0, 90, 1, 1);
    EXPECT_NEAR(turned.X[4], 1.5 * 3.141592654, 1e-6);
    EXPECT_NEAR(turned.Y[4], 1.0 - 0.5 * 3.141592654 + 2 * 3.141592654, 1e-6);
}

TEST(Drawing, UniqueNameCountsUpFromTheNewCount) {
    Project p;
    NewProject(p);
    for (const char* n : {"L1", "L3", ""}) {
        p.lines.push_back(p.lines[0]);
        p.lines.back().NAME[1] = n;
    }
    const std::string stem = trim(p.lines[0].NAME[1]);
    EXPECT_EQ(UniqueName(p.lines, 0), stem + "4");  // count 3, "L3" taken
    p.lines[2].NAME[1] = "X";
    EXPECT_EQ(UniqueName(p.lines, 0), stem + "3");
}

// Removing a middle line zeroes what named it and gives the last line its
// number, in every kind that holds line numbers; removing the last moves
// nothing. Feeds and vessels patch the pumps' NPSH sources the same way.
TEST(Drawing, RemovalRenumbersEveryReference) {
    Project p;
    NewProject(p);
    for (const char* n : {"L-1", "L-2", "L-3"}) {
        p.lines.push_back(p.lines[0]);
        p.lines.back().NAME[1] = n;
    }
    p.valves.push_back(p.valves[0]);
    p.valves[1].CON = {0, 1, 3};
    p.juncs.push_back(p.juncs[0]);
    p.juncs[1].NOZI[1].CON = 3;
    p.juncs[1].NOZO[2].CON = 1;
    p.tees.push_back(p.tees[0]);
    p.tees[1].CON = {0, 3, 0, 0, 2, 0, 0};
    p.tees[1].M[2] = 3;
    p.lines[2].REFLINE = 3;
    RemoveLine(p, 1);
    ASSERT_EQ(count(p.lines), 2);
    EXPECT_EQ(p.lines[1].NAME[1], "L-3");
    EXPECT_EQ(p.valves[1].CON[1], 0);
    EXPECT_EQ(p.valves[1].CON[2], 1);
    EXPECT_EQ(p.juncs[1].NOZI[1].CON, 1);
    EXPECT_EQ(p.juncs[1].NOZO[2].CON, 0);
    EXPECT_EQ(p.tees[1].CON[1], 1);
    EXPECT_EQ(p.tees[1].CON[4], 2);
    EXPECT_EQ(p.tees[1].M[2], 1);
    EXPECT_EQ(p.lines[2].REFLINE, 1);
    RemoveLine(p, 2);
    ASSERT_EQ(count(p.lines), 1);
    EXPECT_EQ(p.lines[1].NAME[1], "L-3");
    EXPECT_EQ(p.tees[1].CON[4], 0);

    for (int k = 0; k < 2; ++k) p.feeds.push_back(p.feeds[0]);
    p.pumps.push_back(p.pumps[0]);
    p.pumps.push_back(p.pumps[0]);
    p.pumps[1].NPSHAF = {0, 2, 0};
    p.pumps[2].NPSHAF = {0, 1, 0};
    RemoveFeed(p, 1);
    EXPECT_EQ(count(p.feeds), 1);
    EXPECT_EQ(p.pumps[1].NPSHAF[1], 1);
    EXPECT_EQ(p.pumps[2].NPSHAF[1], 0);
    p.vessels.push_back(p.vessels[0]);
    p.pumps[1].NPSHAF[2] = 1;
    RemoveVessel(p, 1);
    EXPECT_EQ(count(p.vessels), 0);
    EXPECT_EQ(p.pumps[1].NPSHAF[2], 0);
}

TEST(Drawing, DeleteBendKeepsTheEnds) {
    Project p;
    NewProject(p);
    p.lines.push_back(p.lines[0]);
    Line& l = p.lines[1];
    l.BEND = 2;
    const float pts[] = {0, 0, 100, 0, 100, 100, 200, 100};
    for (int i = 0; i < 8; ++i) l.XY[static_cast<std::size_t>(3 + i)] = pts[i];
    RecordingInteraction io;
    EXPECT_FALSE(DeleteBend(p, 1, 0, io));
    EXPECT_FALSE(DeleteBend(p, 1, 3, io));
    ASSERT_EQ(io.told.size(), 2u);
    EXPECT_EQ(io.told[0], "Error! Cannot delete end points.");
    EXPECT_TRUE(DeleteBend(p, 1, 1, io));
    EXPECT_EQ(l.BEND, 1);
    const float left[] = {0, 0, 100, 100, 200, 100};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(l.XY[static_cast<std::size_t>(3 + i)], left[i]) << i;
}

}  // namespace
}  // namespace velm
