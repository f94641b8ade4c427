// Geometry and edits of the flowsheet that need no surface: snapping to the
// grid, the placement of an icon, names of new items, and the removal of
// records with every reference to them renumbered.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"
#include "model/text.hpp"

namespace velm {

inline constexpr int kIconCorner = 10, kIconFrame = 11, kIconMove = 1, kIconPoint = 2, kIconLine = 3, kIconBox = 4,
                     kIconCircle = 5, kIconArc = 6, kIconFilledBox = 8, kIconWhiteBox = 9, kIconRadius = 100,
                     kIconAngles = 200;

// v on the grid of g twips (taken as a whole number, at least 1): the nearest
// multiple, halves to even.
float Snap(double v, double g);

// An angle brought into 0 <= a < 2 pi, radians.
double NormAngle(double a);

// A copy of the icon placed at (x0, y0), turned by ROT degrees and mirrored
// by the flip signs fx, fy (+1 or -1): points turn by a = -ROT and mirror,
// radii stay, arc angles turn with the icon and mirror with its flips; the
// two corners come out ordered, element 0 the smaller x and y.
IconDef PlaceIcon(const IconDef& icon, float x0, float y0, int ROT, int fx, int fy);

// The name of a new item of a kind: the template's name followed by the
// number n, from the count of the kind upward, that no item bears yet.
template <class R>
std::string UniqueName(const std::vector<R>& items, int template_index) {
    const std::string stem = trim(items[static_cast<std::size_t>(template_index)].NAME[1]);
    for (int n = count(items);; ++n) {
        const std::string name = stem + std::to_string(n);
        bool taken = false;
        for (std::size_t i = 1; i < items.size() && !taken; ++i) taken = trim(items[i].NAME[1]) == name;
        if (!taken) return name;
    }
}

// Removes line n: every reference to it (the connection fields of every kind,
// REFLINE, the legs of tees) becomes 0, every reference to the last line
// becomes n, and the last line takes place n.
void RemoveLine(Project& p, int n);

// Removes feed or vessel n in the same manner, patching the pumps that name
// it as their NPSH source (NPSHAF); the lines on its nozzles are left free.
void RemoveFeed(Project& p, int n);
void RemoveVessel(Project& p, int n);

// Removes inner point `point` of line L (0 < point < BEND + 1); the ends
// cannot go: "Error! Cannot delete end points." is told and false returned.
bool DeleteBend(Project& p, int L, int point, Interaction& io);

}  // namespace velm
