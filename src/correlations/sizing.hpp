// Line sizing: the diameter that meets a line's limits of pressure gradient
// and velocity, and the neighbouring table sizes for the report.
#pragma once

#include <string>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Diameter in m for the line's sizing limits (SIZ): with "Min", the smallest
// diameter allowed by the minimum velocities; otherwise the largest of the
// diameters that keep the gradient (kPa/100m) and the maximum velocities
// within their limits. Limited to 0.001..10 m with a message.
double ID_from_Flow(RunContext& ctx, const Project& p, Line& line);

// The table sizes either side of a bore of a material and schedule, and their
// bores (m), as the last line that found both had them: the lines of a
// network share a few sizes, and the table is searched by name.
struct SizeNeighbours {
    std::string mat, sch;
    double id = -1.0;
    std::string up, down;
    double id_up = 0.0, id_down = 0.0;
};

// The next larger and smaller table sizes around the line's diameter, with the
// gradient and velocity of each (SizeUp, dPUp, VelUp, SizeDown, ...). With
// last, a line of the bore, material and schedule of the last one that found
// both sizes takes them from there.
void pipe_size_neighbours(RunContext& ctx, const Project& p, Line& line, SizeNeighbours* last = nullptr);

// Diameters of every line for the next run: set = false empties DIA[1] so the
// next run sizes the lines, set = true takes the calculated size DIA[2] as given.
void pipe_set_dia(Project& p, bool set);

}  // namespace velm
