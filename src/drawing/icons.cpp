#include "drawing/icons.hpp"

#include <algorithm>
#include <initializer_list>
#include <vector>

#include "drawing/records_of.hpp"

namespace velm {

namespace {

constexpr float kPi = 3.141592654f;

// Builds an icon command by command: the box corners first, then the shape.
class IconBuilder {
public:
    IconBuilder(float x0, float y0, float x1, float y1) {
        add(kIconCorner, x0, y0);
        add(kIconFrame, x1, y1);
    }
    IconBuilder& move(float x, float y) { return add(kIconMove, x, y); }
    IconBuilder& line(float x, float y) { return add(kIconLine, x, y); }
    // A polyline from the first point through the others.
    IconBuilder& path(std::initializer_list<std::array<float, 2>> pts) {
        bool first = true;
        for (const auto& q : pts) {
            add(first ? kIconMove : kIconLine, q[0], q[1]);
            first = false;
        }
        return *this;
    }
    IconBuilder& box(float x0, float y0, float x1, float y1) { return move(x0, y0).add(kIconBox, x1, y1); }
    IconBuilder& white_box(float x0, float y0, float x1, float y1) { return move(x0, y0).add(kIconWhiteBox, x1, y1); }
    IconBuilder& filled_box(float x0, float y0, float x1, float y1) { return move(x0, y0).add(kIconFilledBox, x1, y1); }
    IconBuilder& circle(float x, float y, float r) { return add(kIconRadius, r, 0).add(kIconCircle, x, y); }
    IconBuilder& arc(float x, float y, float r, float start, float end) {
        return add(kIconRadius, r, 0).add(kIconAngles, start, end).add(kIconArc, x, y);
    }
    IconBuilder& port(float x, float y) {
        icon_.ports[static_cast<std::size_t>(icon_.nports++)] = {x, y};
        return *this;
    }
    Icon done() const { return icon_; }

private:
    IconBuilder& add(int op, float x, float y) {
        const auto i = static_cast<std::size_t>(++last_);
        icon_.draw.Op[i] = op;
        icon_.draw.X[i] = x;
        icon_.draw.Y[i] = y;
        icon_.draw.Count = last_;
        return *this;
    }
    Icon icon_;
    int last_ = -1;
};

// Boundaries: an arrow, a tank or a vessel, the port on the side of the pipe.
Icon feed_icon(int form) {
    if (form == 1)
        return IconBuilder(-500, -400, 0, 300).white_box(-500, -300, -100, 300)
            .path({{-500, -300}, {-300, -400}, {-100, -300}}).path({{-100, 0}, {0, 0}}).port(0, 0).done();
    if (form == 2)
        return IconBuilder(-500, -500, 0, 500).box(-450, -300, -150, 300).arc(-300, -300, 150, 0, kPi)
            .arc(-300, 300, 150, kPi, 2 * kPi).path({{-150, 0}, {0, 0}}).port(0, 0).done();
    return IconBuilder(-250, -100, 0, 100)
        .path({{-250, -100}, {-100, -100}, {0, 0}, {-100, 100}, {-250, 100}, {-250, -100}}).port(0, 0).done();
}

Icon prod_icon(int form) {
    if (form == 1)
        return IconBuilder(0, -400, 500, 300).white_box(100, -300, 500, 300)
            .path({{100, -300}, {300, -400}, {500, -300}}).path({{0, 0}, {100, 0}}).port(0, 0).done();
    if (form == 2)
        return IconBuilder(0, -500, 500, 500).box(150, -300, 450, 300).arc(300, -300, 150, 0, kPi)
            .arc(300, 300, 150, kPi, 2 * kPi).path({{0, 0}, {150, 0}}).port(0, 0).done();
    return IconBuilder(0, -100, 250, 100)
        .path({{0, -100}, {150, -100}, {250, 0}, {150, 100}, {0, 100}, {0, -100}}).port(0, 0).done();
}

// The two triangles of a valve body between x = 100 and x = 300, with stubs to the ports.
IconBuilder valve_body(float top) {
    IconBuilder b(0, top, 400, 100);
    b.path({{0, 0}, {100, 0}}).path({{100, -100}, {300, 100}, {300, -100}, {100, 100}, {100, -100}})
        .path({{300, 0}, {400, 0}});
    return b;
}

Icon valve_icon() {
    return valve_body(-250).path({{200, 0}, {200, -150}}).arc(200, -150, 100, 0, kPi).port(0, 0).port(400, 0).done();
}

Icon check_icon() {
    return valve_body(-100).filled_box(280, -100, 300, 100).port(0, 0).port(400, 0).done();
}

Icon pump_icon() {
    return IconBuilder(0, -150, 400, 200).path({{0, 0}, {50, 0}}).circle(200, 0, 150)
        .path({{311, -100}, {400, -100}}).path({{110, 120}, {50, 200}, {350, 200}, {290, 120}})
        .port(0, 0).port(400, -100).done();
}

Icon comp_icon() {
    return IconBuilder(0, -200, 500, 200).path({{0, 0}, {100, 0}})
        .path({{100, -200}, {400, -100}, {400, 100}, {100, 200}, {100, -200}}).path({{400, 0}, {500, 0}})
        .port(0, 0).port(500, 0).done();
}

Icon fo_icon() {
    return IconBuilder(0, -150, 400, 150).path({{0, 0}, {180, 0}}).path({{220, 0}, {400, 0}})
        .filled_box(180, -150, 220, -30).filled_box(180, 30, 220, 150).port(0, 0).port(400, 0).done();
}

Icon hx_icon() {
    return IconBuilder(0, -150, 400, 150).circle(200, 0, 150)
        .path({{0, 0}, {125, -100}, {200, 100}, {275, -100}, {400, 0}}).port(0, 0).port(400, 0).done();
}

Icon misc_icon() {
    return IconBuilder(0, -150, 400, 150).path({{0, 0}, {50, 0}}).white_box(50, -150, 350, 150)
        .path({{50, -150}, {350, 150}}).path({{50, 150}, {350, -150}}).path({{350, 0}, {400, 0}})
        .port(0, 0).port(400, 0).done();
}

Icon expand_icon() {
    return IconBuilder(0, -150, 300, 150).path({{0, -150}, {300, -75}, {300, 75}, {0, 150}, {0, -150}})
        .port(0, 0).port(300, 0).done();
}

// A header node: four inlets on its left face, four outlets on its right.
// Wide enough that its middle lies clear of the ports, for a click on its body.
Icon junc_icon() {
    IconBuilder b(0, -100, 400, 400);
    b.white_box(0, -100, 400, 400).filled_box(190, -100, 210, 400);
    for (int k = 0; k < 4; ++k) b.port(0, 100.0f * k);
    for (int k = 0; k < 4; ++k) b.port(400, 100.0f * k);
    return b.done();
}

// The combined side on the left, the run on the right, the branch below; each
// side has its inlet and, 100 twips on, its outlet.
Icon tee_icon() {
    return IconBuilder(0, -100, 700, 500)
        .path({{0, -100}, {700, -100}, {700, 200}, {500, 200}, {500, 500}, {200, 500}, {200, 200}, {0, 200},
               {0, -100}})
        .port(0, 0).port(700, 0).port(300, 500).port(0, 100).port(700, 100).port(400, 500).done();
}

Icon vessel_icon(int form) {
    if (form == 1) {
        IconBuilder b(0, -700, 1000, 600);
        b.white_box(100, -500, 900, 500).path({{100, -500}, {500, -600}, {900, -500}});
        for (int y : {0, 200, -200, 400}) b.path({{0, static_cast<float>(y)}, {100, static_cast<float>(y)}});
        b.path({{500, -600}, {500, -700}}).path({{500, 500}, {500, 600}}).path({{900, 300}, {1000, 300}})
            .path({{900, 400}, {1000, 400}});
        for (int y : {0, 200, -200, 400}) b.port(0, static_cast<float>(y));
        return b.port(500, -700).port(500, 600).port(1000, 300).port(1000, 400).done();
    }
    if (form == 2) {
        IconBuilder b(0, -400, 1400, 400);
        b.path({{300, -300}, {1100, -300}}).path({{300, 300}, {1100, 300}}).arc(300, 0, 300, kPi / 2, 3 * kPi / 2)
            .arc(1100, 0, 300, 3 * kPi / 2, kPi / 2);
        for (int x : {400, 600, 800, 1000}) b.path({{static_cast<float>(x), -300}, {static_cast<float>(x), -400}});
        for (int x : {700, 900}) b.path({{static_cast<float>(x), 300}, {static_cast<float>(x), 400}});
        b.port(0, 0).port(400, -400).port(600, -400).port(800, -400);
        return b.port(1000, -400).port(700, 400).port(1400, 0).port(900, 400).done();
    }
    IconBuilder b(0, -800, 800, 800);
    b.box(100, -400, 700, 400).arc(400, -400, 300, 0, kPi).arc(400, 400, 300, kPi, 2 * kPi);
    for (int y : {0, 200, -200, 400}) b.path({{0, static_cast<float>(y)}, {100, static_cast<float>(y)}});
    b.path({{400, -700}, {400, -800}}).path({{400, 700}, {400, 800}}).path({{700, 0}, {800, 0}})
        .path({{700, 200}, {800, 200}});
    for (int y : {0, 200, -200, 400}) b.port(0, static_cast<float>(y));
    return b.port(400, -800).port(400, 800).port(800, 0).port(800, 200).done();
}

std::vector<Icon> make_icons(ItemKind kind) {
    switch (kind) {
    case ItemKind::Feed: return {feed_icon(0), feed_icon(1), feed_icon(2)};
    case ItemKind::Prod: return {prod_icon(0), prod_icon(1), prod_icon(2)};
    case ItemKind::Vessel: return {vessel_icon(0), vessel_icon(1), vessel_icon(2)};
    case ItemKind::Valve: return {valve_icon()};
    case ItemKind::Check: return {check_icon()};
    case ItemKind::Pump: return {pump_icon()};
    case ItemKind::Comp: return {comp_icon()};
    case ItemKind::FO: return {fo_icon()};
    case ItemKind::HX: return {hx_icon()};
    case ItemKind::Misc: return {misc_icon()};
    case ItemKind::Expand: return {expand_icon()};
    case ItemKind::Junc: return {junc_icon()};
    case ItemKind::Tee: return {tee_icon()};
    case ItemKind::Symbol:
    case ItemKind::Line: break;
    }
    return {IconBuilder(0, 0, 0, 0).done()};
}

// Every icon table, set up once.
const std::vector<std::vector<Icon>>& icon_tables() {
    static const std::vector<std::vector<Icon>> tables = [] {
        std::vector<std::vector<Icon>> t;
        for (std::size_t k = 0; k < kDrawOrder.size(); ++k) t.push_back(make_icons(static_cast<ItemKind>(k)));
        return t;
    }();
    return tables;
}

// The ports of an icon as points of an icon table behind its box, placed.
IconDef placed_ports(const Icon& icon, float x0, float y0, int rot, int fx, int fy) {
    IconDef pts;
    pts.Op[0] = kIconCorner;
    pts.Op[1] = kIconFrame;
    for (int k = 0; k < icon.nports; ++k) {
        const auto i = static_cast<std::size_t>(k + 2);
        pts.Op[i] = kIconMove;
        pts.X[i] = icon.ports[static_cast<std::size_t>(k)][0];
        pts.Y[i] = icon.ports[static_cast<std::size_t>(k)][1];
    }
    pts.Count = icon.nports + 1;
    return PlaceIcon(pts, x0, y0, rot, fx, fy);
}

int flip_sign(int f) { return f < 0 ? -1 : 1; }

}  // namespace

int icon_form(ItemKind kind, const std::string& type) {
    if (kind == ItemKind::Feed || kind == ItemKind::Prod) return type == "Vessel" ? 2 : type == "Tank" ? 1 : 0;
    if (kind == ItemKind::Vessel) return type == "Tank" ? 1 : type == "Horizontal" ? 2 : 0;
    return 0;
}

const Icon& default_icon(ItemKind kind, int form) {
    const auto& forms = icon_tables()[static_cast<std::size_t>(kind)];
    return forms[static_cast<std::size_t>(std::clamp(form, 0, static_cast<int>(forms.size()) - 1))];
}

namespace {

constexpr int kFormsPerKind = 3;

int item_form(const Project& p, ItemRef r) {
    int form = 0;
    with_record(p, r, [&](const auto& rec) {
        if constexpr (requires { rec.TYPE.size(); }) form = icon_form(r.kind, rec.TYPE);
    });
    return form;
}

}  // namespace

int icon_slot(ItemKind kind, int form) { return static_cast<int>(kind) * kFormsPerKind + form; }

bool icon_of_slot(int slot, ItemKind& kind, int& form) {
    if (slot < 0 || slot >= static_cast<int>(ItemKind::Symbol) * kFormsPerKind) return false;
    kind = static_cast<ItemKind>(slot / kFormsPerKind);
    form = slot % kFormsPerKind;
    const bool forms = kind == ItemKind::Feed || kind == ItemKind::Prod || kind == ItemKind::Vessel;
    return form == 0 || forms;
}

int item_icon_slot(const Project& p, ItemRef r) { return icon_slot(r.kind, item_form(p, r)); }

const Icon& item_icon(const Project& p, ItemRef r) { return default_icon(r.kind, item_form(p, r)); }

const IconDef& icon_drawing(const Project& p, ItemKind kind, int form) {
    if (!p.icons.empty())
        if (const auto it = p.icons.find(icon_slot(kind, form)); it != p.icons.end()) return it->second;
    return default_icon(kind, form).draw;
}

const IconDef& item_drawing(const Project& p, ItemRef r) { return icon_drawing(p, r.kind, item_form(p, r)); }

IconDef placed_icon(const Project& p, ItemRef r) {
    const Drawn* d = drawn(p, r);
    const auto [x0, y0] = item_anchor(p, r);
    if (!d) return PlaceIcon(item_drawing(p, r), x0, y0, 0, 1, 1);
    return PlaceIcon(item_drawing(p, r), x0, y0, d->ROT, flip_sign(d->FLIP[1]), flip_sign(d->FLIP[2]));
}

Box item_box(const Project& p, ItemRef r) {
    if (r.kind == ItemKind::Line) {
        Box b;
        with_record(p, r, [&](const auto& rec) {
            if constexpr (std::is_same_v<std::decay_t<decltype(rec)>, Line>) {
                const int last = std::clamp(rec.BEND + 1, 0, kLinePoints - 1);
                b = {rec.XY[3], rec.XY[4], rec.XY[3], rec.XY[4]};
                for (int i = 1; i <= last; ++i) {
                    const float x = rec.XY[static_cast<std::size_t>(3 + 2 * i)];
                    const float y = rec.XY[static_cast<std::size_t>(4 + 2 * i)];
                    b = {std::min(b.x0, x), std::min(b.y0, y), std::max(b.x1, x), std::max(b.y1, y)};
                }
            }
        });
        return b;
    }
    if (r.kind == ItemKind::Symbol) {
        Box b;
        with_record(p, r, [&](const auto& rec) {
            if constexpr (std::is_same_v<std::decay_t<decltype(rec)>, Symbol>) {
                float x1 = rec.XY[3], y1 = rec.XY[4];
                if (rec.TYPE == "Text") {
                    const float size = rec.FSIZ > 0.0f ? rec.FSIZ : 1.0f;
                    x1 = rec.XY[1] + 110.0f * size * static_cast<float>(std::max<std::size_t>(rec.TEXT.size(), 1));
                    y1 = rec.XY[2] + 240.0f * size;
                }
                b = {std::min(rec.XY[1], x1), std::min(rec.XY[2], y1), std::max(rec.XY[1], x1),
                     std::max(rec.XY[2], y1)};
            }
        });
        return b;
    }
    const IconDef placed = placed_icon(p, r);
    return {placed.X[0], placed.Y[0], placed.X[1], placed.Y[1]};
}

void place_ports(Project& p, ItemRef r, float x0, float y0) {
    const Drawn* d = drawn(p, r);
    if (!d) return;
    const Icon& icon = item_icon(p, r);
    const IconDef pts = placed_ports(icon, x0, y0, d->ROT, flip_sign(d->FLIP[1]), flip_sign(d->FLIP[2]));
    Ports ports = item_ports(p, r);
    for (int k = 0; k < ports.n && k < icon.nports; ++k) {
        *ports.at[static_cast<std::size_t>(k)].x = pts.X[static_cast<std::size_t>(k + 2)];
        *ports.at[static_cast<std::size_t>(k)].y = pts.Y[static_cast<std::size_t>(k + 2)];
    }
}

}  // namespace velm
