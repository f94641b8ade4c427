// The sheet as the page draws it: every item with its drawing commands, box,
// ports and label rows, as JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "drawing/sheet.hpp"

namespace velm {

// The label rows of an item in the present label mode (empty when none).
using LabelRowsOf = std::function<std::vector<std::string>(ItemRef)>;

// Drawing commands of one item, each an array led by its code:
// ["l", x1, y1, x2, y2, colour, dotted], ["b", ...box], ["f", x1, y1, x2, y2,
// colour, fill], ["c", x, y, r, colour], ["a", x, y, r, start, end, colour],
// ["t", x, y, text, size, colour], ["p", x, y, colour]. Coordinates in twips.
// Returns {"sheet": [commands of the border and title], "items": [...]}.
nlohmann::json sheet_items_json(const Project& p, const DrawState& st, const LabelPainter& painter,
                                const LabelRowsOf& rows);

}  // namespace velm
