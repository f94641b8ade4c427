// The icons of the equipment: one drawing table per kind and form, the
// offsets of its ports, and the placed icon of an item of the project.
#pragma once

#include <array>

#include "drawing/edit.hpp"
#include "drawing/items.hpp"

namespace velm {

// An icon and where its ports sit, in twips from its anchor (the first port
// is the anchor itself, so it sits at 0, 0), in the order of item_ports.
struct Icon {
    IconDef draw;
    std::array<std::array<float, 2>, 8> ports{};
    int nports = 0;
};

// The form of a Feed or Prod by its TYPE: 2 "Vessel", 1 "Tank", 0 any other;
// of a Vessel: 1 "Tank", 2 "Horizontal", 0 any other (a column).
int icon_form(ItemKind kind, const std::string& type);

// The default icon of a kind and form.
const Icon& default_icon(ItemKind kind, int form);

// The icon that item r is drawn with: its ports are those of the default
// icon of its kind and form; its drawing is the user's edit of it, if any.
const Icon& item_icon(const Project& p, ItemRef r);
const IconDef& item_drawing(const Project& p, ItemRef r);
// The drawing of a kind and form in force: the project's edit, else the default.
const IconDef& icon_drawing(const Project& p, ItemKind kind, int form);

// The slot of a kind and form in Project::icons, and back (false for a number
// that is no slot).
int icon_slot(ItemKind kind, int form);
bool icon_of_slot(int slot, ItemKind& kind, int& form);
// The slot of item r's icon.
int item_icon_slot(const Project& p, ItemRef r);

// A rectangle of the sheet, x0 <= x1 and y0 <= y1.
struct Box {
    float x0 = 0.0f, y0 = 0.0f, x1 = 0.0f, y1 = 0.0f;
    bool contains(float x, float y) const { return x >= x0 && x <= x1 && y >= y0 && y <= y1; }
};

// The item's icon placed at its anchor with its rotation and flips.
IconDef placed_icon(const Project& p, ItemRef r);

// The bounding box of an item: of its placed icon, of the points of a Line,
// of the corners of a Symbol (a Text as wide as its characters).
Box item_box(const Project& p, ItemRef r);

// Puts the ports of item r where its icon places them around the anchor
// (x0, y0) with the item's rotation and flips.
void place_ports(Project& p, ItemRef r, float x0, float y0);

}  // namespace velm
