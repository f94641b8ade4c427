#include "drawing/sheet.hpp"

#include <cmath>

#include "drawing/icons.hpp"
#include "drawing/line_points.hpp"
#include "drawing/records_of.hpp"

namespace velm {

namespace {

constexpr double kPi = 3.141592654;
constexpr float kFrameGap = 33.0f;      // selection frame outside the box, twips
constexpr float kArrowLength = 120.0f;  // arrow head of a line, twips
constexpr int32_t kGridColour = 0xE0E0E0;
constexpr int32_t kWhite = 0xFFFFFF;

// Border, title block and grid of the sheet.
void DrawSheet(Surface& s, const Project& p) {
    const float w = p.gen.DWGSIZ[1] > 0 ? p.gen.DWGSIZ[1] : 16837.0f;
    const float h = p.gen.DWGSIZ[2] > 0 ? p.gen.DWGSIZ[2] : 11905.0f;
    const float m = p.gen.DWGMAR;
    s.begin_item("Sheet", 0);
    const float g = p.gen.DWGGRD2 > 0 ? static_cast<float>(p.gen.DWGGRD2) : 100.0f;
    if (p.gen.DWGGRD1 && g >= 50.0f) {
        for (float x = m; x <= w - m; x += 10 * g) s.line(x, m, x, h - m, kGridColour, PenStyle::Dot);
        for (float y = m; y <= h - m; y += 10 * g) s.line(m, y, w - m, y, kGridColour, PenStyle::Dot);
    }
    if (p.gen.DWGBOR) s.box(m, m, w - m, h - m, 0, PenStyle::Solid);
    // Title block: company, project lines and the drawing number in the lower right corner.
    const float tx = w - m - 4000.0f, ty = h - m - 1000.0f;
    s.box(tx, ty, w - m, h - m, 0, PenStyle::Solid);
    float row = ty + 60.0f;
    for (const std::string& t : {p.gen.COM[1], p.gen.PRJ[1], p.gen.PRJ[2], p.gen.PRJ[3]}) {
        if (!t.empty()) s.text(tx + 80.0f, row, t, 0.9f, 0);
        row += 220.0f;
    }
    s.end_item();
}

void draw_icon(Surface& s, const IconDef& icon, int32_t colour, bool selected) {
    float px = 0.0f, py = 0.0f, radius = 0.0f, start = 0.0f, end = 0.0f;
    for (int k = 0; k <= std::min(icon.Count, 40); ++k) {
        const auto i = static_cast<std::size_t>(k);
        const float x = icon.X[i], y = icon.Y[i];
        switch (icon.Op[i]) {
        case kIconCorner: break;
        case kIconFrame:
            if (selected)
                s.box(icon.X[0] - kFrameGap, icon.Y[0] - kFrameGap, x + kFrameGap, y + kFrameGap, colour,
                      PenStyle::Dot);
            break;
        case kIconMove: break;
        case kIconPoint: s.point(x, y, colour); break;
        case kIconLine: s.line(px, py, x, y, colour, PenStyle::Solid); break;
        case kIconBox: s.box(px, py, x, y, colour, PenStyle::Solid); break;
        case kIconCircle: s.circle(x, y, radius, colour); break;
        case kIconArc: s.arc(x, y, radius, start, end, colour); break;
        case kIconFilledBox: s.filled_box(px, py, x, y, colour, colour); break;
        case kIconWhiteBox: s.filled_box(px, py, x, y, colour, kWhite); break;
        case kIconRadius: radius = x; continue;
        case kIconAngles:
            start = x;
            end = y;
            continue;
        default: continue;
        }
        px = x;
        py = y;
    }
}

// The arrow head on the first segment, its tip a sixth of the way back from
// the second point, pointing from the inlet on.
void draw_arrow(Surface& s, const Line& l, int32_t colour) {
    const double x0 = point_x(l, 0), y0 = point_y(l, 0), x1 = point_x(l, 1), y1 = point_y(l, 1);
    if (x0 == x1 && y0 == y1) return;
    const double tipx = x1 + (x0 - x1) / 6.0, tipy = y1 + (y0 - y1) / 6.0;
    double a = std::atan((x0 - x1 + 0.01) / (y0 - y1 + 0.01));
    if (y0 - y1 + 0.01 < 0.0) a += kPi;
    for (double wing : {-0.4, 0.4}) {
        const double b = a + wing;
        s.line(static_cast<float>(tipx), static_cast<float>(tipy), static_cast<float>(tipx + kArrowLength * std::sin(b)),
               static_cast<float>(tipy + kArrowLength * std::cos(b)), colour, PenStyle::Solid);
    }
}

void draw_line(Surface& s, const Project& p, const Line& l) {
    const int32_t colour = l.Selected ? p.color_selected : l.COLOR;
    const int last = last_point(l);
    for (int i = 0; i < last; ++i)
        s.line(point_x(l, i), point_y(l, i), point_x(l, i + 1), point_y(l, i + 1), colour, PenStyle::Solid);
    draw_arrow(s, l, colour);
    for (int i = 0; i <= last; ++i)
        if (l.PointSelected[static_cast<std::size_t>(i)] || (l.Selected && i > 0 && i < last))
            s.box(point_x(l, i) - 30.0f, point_y(l, i) - 30.0f, point_x(l, i) + 30.0f, point_y(l, i) + 30.0f,
                  p.color_selected, PenStyle::Solid);
}

void draw_symbol(Surface& s, const Symbol& y) {
    const bool sel = y.Selected != 0;
    const int32_t colour = y.COLOR;
    if (y.TYPE == "Text") s.text(y.XY[1], y.XY[2], y.TEXT, y.FSIZ > 0.0f ? y.FSIZ : 1.0f, colour);
    else if (y.TYPE == "Line") s.line(y.XY[1], y.XY[2], y.XY[3], y.XY[4], colour, y.STYLL ? PenStyle::Dot : PenStyle::Solid);
    else if (y.TYPE == "Box") s.box(y.XY[1], y.XY[2], y.XY[3], y.XY[4], colour, y.STYLL ? PenStyle::Dot : PenStyle::Solid);
    else if (y.TYPE == "Arc")
        s.arc((y.XY[1] + y.XY[3]) / 2, (y.XY[2] + y.XY[4]) / 2, std::fabs(y.XY[3] - y.XY[1]) / 2, y.ANGL[0], y.ANGL[1],
              colour);
    if (sel) s.box(y.XY[1] - kFrameGap, y.XY[2] - kFrameGap, y.XY[3] + kFrameGap, y.XY[4] + kFrameGap, colour, PenStyle::Dot);
}

// The label block's anchor: a line's first point; the left side and lower
// edge of an equipment's box.
std::pair<float, float> label_anchor(const Project& p, ItemRef r) {
    if (r.kind == ItemKind::Line) return item_anchor(p, r);
    const Box b = item_box(p, r);
    return {b.x0, b.y1};
}

}  // namespace

void Redraw(Surface& surface, const Project& project, const DrawState& state, const LabelPainter& labels) {
    DrawSheet(surface, project);
    for_each_item(project, [&](ItemRef r) {
        surface.begin_item(kind_name(r.kind), r.index);
        with_record(project, r, [&](const auto& rec) {
            using R = std::decay_t<decltype(rec)>;
            if constexpr (std::is_same_v<R, Line>) draw_line(surface, project, rec);
            else if constexpr (std::is_same_v<R, Symbol>) draw_symbol(surface, rec);
            else draw_icon(surface, placed_icon(project, r), rec.COLOR, rec.Selected != 0);
            if constexpr (std::is_base_of_v<Drawn, R>) {
                if (labels && !state.LabelMode.empty() && rec.LBL1) {
                    const auto [x, y] = label_anchor(project, r);
                    labels(surface, r, x, y);
                }
            }
        });
        surface.end_item();
    });
}

}  // namespace velm
