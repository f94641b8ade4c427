// Data of the plots the page draws in the dialogs: a pump's or compressor's
// curves as scaled to the speed and impeller of each case, with the operating
// point each case reached, and the pressure along a line's path from a feed
// to a product.
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "drawing/items.hpp"
#include "model/records.hpp"
#include "model/units.hpp"

namespace velm {

// Where a machine ran in a case: inlet volume flow m3/h and head m.
struct OperatingPoint {
    int case_no = 0;
    double q = 0.0, h = 0.0;
};
using OperatingPoints = std::map<std::pair<ItemKind, int>, std::vector<OperatingPoint>>;

// The operating points of every pump and compressor as the records hold them
// at the end of a case.
void record_operating_points(const Project& p, int case_no, OperatingPoints& points);

// {"x": flow unit, "y": head unit, "cases": [{"case", "q", "h", "eff", "npshr"}], "points": [{"case", "q", "h"}]}
// in display units; null for an item that is no pump or compressor.
nlohmann::json machine_plot(const Project& p, const DisplayUnits& u, ItemRef r, const OperatingPoints& points);

// {"x": length unit, "y": pressure unit, "lines": [{"name", "x0", "x1", "p0", "p1", "this"}]}: the lines
// from the feed upstream of line L to the product downstream of it (the first branch at each split), each
// with its inlet and outlet pressure at its distance along the path.
nlohmann::json line_profile(const Project& p, const DisplayUnits& u, int L);

}  // namespace velm
