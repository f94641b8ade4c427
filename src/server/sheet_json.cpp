#include "server/sheet_json.hpp"

#include <cmath>

#include "drawing/icons.hpp"
#include "drawing/line_points.hpp"

namespace velm {

namespace {

// Twips to whole twips or tenths: the page needs no more.
double tw(float v) { return std::round(static_cast<double>(v) * 10.0) / 10.0; }

// Collects what Redraw draws, item by item.
class JsonSurface : public Surface {
public:
    nlohmann::json sheet = nlohmann::json::array();
    std::vector<std::pair<ItemRef, nlohmann::json>> items;

    void begin_item(std::string_view kind, int index) override {
        const auto k = kind_from_name(kind);
        if (!k) {
            current_ = &sheet;
            return;
        }
        items.push_back({ItemRef{*k, index}, nlohmann::json::array()});
        current_ = &items.back().second;
    }
    void end_item() override { current_ = &sheet; }
    void point(float x, float y, int32_t c) override { add({"p", tw(x), tw(y), c}); }
    void line(float x1, float y1, float x2, float y2, int32_t c, PenStyle s) override {
        add({"l", tw(x1), tw(y1), tw(x2), tw(y2), c, s == PenStyle::Dot});
    }
    void box(float x1, float y1, float x2, float y2, int32_t c, PenStyle s) override {
        add({"b", tw(x1), tw(y1), tw(x2), tw(y2), c, s == PenStyle::Dot});
    }
    void filled_box(float x1, float y1, float x2, float y2, int32_t c, int32_t fill) override {
        add({"f", tw(x1), tw(y1), tw(x2), tw(y2), c, fill});
    }
    void circle(float x, float y, float r, int32_t c) override { add({"c", tw(x), tw(y), tw(r), c}); }
    void arc(float x, float y, float r, float start, float end, int32_t c) override {
        add({"a", tw(x), tw(y), tw(r), start, end, c});
    }
    void text(float x, float y, std::string_view s, float size, int32_t c) override {
        add({"t", tw(x), tw(y), std::string(s), size, c});
    }

private:
    void add(nlohmann::json cmd) { current_->push_back(std::move(cmd)); }
    nlohmann::json* current_ = &sheet;
};

}  // namespace

nlohmann::json sheet_items_json(const Project& p, const DrawState& st, const LabelPainter& painter,
                                const LabelRowsOf& rows) {
    JsonSurface surface;
    Redraw(surface, p, st, painter);
    Project& q = const_cast<Project&>(p);
    nlohmann::json items = nlohmann::json::array();
    for (auto& [r, draw] : surface.items) {
        const Box b = item_box(p, r);
        nlohmann::json ports = nlohmann::json::array();
        if (r.kind != ItemKind::Line && r.kind != ItemKind::Symbol)
            for (const PortRef& port : item_ports(q, r)) ports.push_back({tw(*port.x), tw(*port.y), *port.con});
        if (r.kind == ItemKind::Line) {
            const Line& l = p.lines[static_cast<std::size_t>(r.index)];
            nlohmann::json points = nlohmann::json::array();
            for (int i = 0; i <= last_point(l); ++i) points.push_back({tw(point_x(l, i)), tw(point_y(l, i))});
            ports = std::move(points);
        }
        const Drawn* d = drawn(p, r);
        const int* sel = selected_flag(q, r);
        nlohmann::json item = {{"kind", kind_name(r.kind)},
                               {"index", r.index},
                               {"name", d ? d->NAME[1] : std::string()},
                               {"box", {tw(b.x0), tw(b.y0), tw(b.x1), tw(b.y1)}},
                               {"ports", std::move(ports)},
                               {"selected", sel && *sel != 0},
                               {"draw", std::move(draw)}};
        if (d && d->COLOR == p.color_error) item["error"] = true;
        if (r.kind == ItemKind::Line) {
            const Line& l = p.lines[static_cast<std::size_t>(r.index)];
            item["vel"] = l.VEL[3];
            item["dpl"] = l.DPL;
        }
        if (rows && d && d->LBL1) item["labels"] = rows(r);
        else item["labels"] = nlohmann::json::array();
        items.push_back(std::move(item));
    }
    return {{"sheet", std::move(surface.sheet)}, {"items", std::move(items)}};
}

}  // namespace velm
