// A drawing for a project whose items have no place on the sheet (written by
// hand or by a script): items in columns along the drawn flow direction, lines
// drawn orthogonally from port to port.
#pragma once

#include "model/records.hpp"

namespace velm {

// True when some equipment item or line has no place yet (every port or
// point at 0, 0).
bool needs_layout(const Project& p);

// Places the items that have no place and routes their lines; items already
// placed stay. The sheet grows when the drawing needs more room. Returns the
// number of items placed.
int AutoLayout(Project& p);

}  // namespace velm
