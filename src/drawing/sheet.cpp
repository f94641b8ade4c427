#include "drawing/sheet.hpp"

namespace velm {

// Lines as polylines from their points; the equipment icons come with the
// icon tables.
void Redraw(Surface& surface, const Project& project, const DrawState&) {
    for (int n = 1; n <= count(project.lines); ++n) {
        const Line& l = project.lines[n];
        surface.begin_item("Line", n);
        for (int i = 0; i <= l.BEND && 6 + 2 * i < static_cast<int>(l.XY.size()); ++i)
            surface.line(l.XY[3 + 2 * i], l.XY[4 + 2 * i], l.XY[5 + 2 * i], l.XY[6 + 2 * i], l.COLOR, PenStyle::Solid);
        surface.end_item();
    }
}

void Form_MouseDown(Project&, DrawState&, Interaction&, const PointerEvent&) {}
void Form_MouseMove(Project&, DrawState&, Interaction&, const PointerEvent&) {}
void Form_MouseUp(Project&, DrawState&, Interaction&, const PointerEvent&) {}
void Form_DblClick(Project&, DrawState&, Interaction&, const PointerEvent&) {}
void Form_KeyDown(Project&, DrawState&, Interaction&, int, bool, bool) {}

}  // namespace velm
