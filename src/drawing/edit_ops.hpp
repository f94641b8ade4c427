// The edit commands of the sheet: new items, moving, bends, delete, copy and
// paste, rotate and flip, selection. Messages go through the interaction layer
// in the program's words.
#pragma once

#include <string>

#include "drawing/items.hpp"
#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// The grid of the sheet in twips (DWGGRD[2]).
float sheet_grid(const Project& p);

// Appends an item of the kind as a copy of record `template_index` (0 the
// template), named by UniqueName, placed at the snapped (x, y) and selected
// alone. Returns its number.
int NewItem(Project& p, ItemKind kind, int template_index, float x, float y);

// Moves every selected item and its ports by (x - lastX, y - lastY), the line
// ends that hang on moved ports and the selected points of lines with them.
void MoveSelected(Project& p, float x, float y, float lastX, float lastY);

// A bend in the middle of each selected segment of every line, last segment
// first; a line without room is told and skipped.
void AddBend(Project& p, Interaction& io);

// Asks and deletes the selection: lines from the highest number down, then the
// selected inner points of lines, then the other kinds from the highest down.
void DeleteSelected(Project& p, Interaction& io);

// Removes any item with every reference to it renumbered; the lines on an
// item's ports stay where they are, unconnected.
void RemoveItem(Project& p, ItemRef r);

// Marks the selection for paste; "No equipment to copy." when none is selected.
void CopySelected(Project& p, Interaction& io);
// Copies of the marked items 300 twips down and right, connected among
// themselves where both ends were copied, and selected.
void PasteItems(Project& p, Interaction& io);

// Turns (degrees, a multiple of 90) or mirrors (axis 1 in x, 2 in y) every
// selected item about its anchor; the lines on it follow its ports. With `to`
// +1 or -1 the flip sign is set to it instead of turned over.
void RotateSelected(Project& p, int degrees);
void FlipSelected(Project& p, int axis, int to = 0);

// Sets the selected flag of every item (mark = false) or its paste mark (mark
// = true) to flag; with a name, only of the items that bear it. Returns the
// number of items set.
int SelectItems(Project& p, int flag, bool mark, const std::string& name);

// The number of selected items and line points.
int selection_count(const Project& p);

// Puts the ends of the lines on item r's ports where the ports are.
void attach_line_ends(Project& p, ItemRef r);

}  // namespace velm
