#include "drawing/items.hpp"

#include "drawing/line_points.hpp"
#include "drawing/records_of.hpp"

namespace velm {

namespace {

constexpr std::array<std::string_view, 15> kNames{"Feed", "Prod", "Valve", "Check", "Pump", "Comp", "FO", "HX",
                                                  "Misc", "Expand", "Vessel", "Tee", "Junc", "Symbol", "Line"};
// Tools 50..63 by kind of the palette order.
constexpr std::array<ItemKind, 14> kTools{ItemKind::Feed, ItemKind::Prod,   ItemKind::Valve, ItemKind::Check,
                                          ItemKind::Pump, ItemKind::Comp,   ItemKind::FO,    ItemKind::HX,
                                          ItemKind::Expand, ItemKind::Junc, ItemKind::Tee,   ItemKind::Vessel,
                                          ItemKind::Misc, ItemKind::Symbol};

void add(Ports& ports, float& x, float& y, int& con, int side) {
    if (ports.n < static_cast<int>(ports.at.size())) ports.at[static_cast<std::size_t>(ports.n++)] = {&x, &y, &con, side};
}

template <class R>
void two_port(Ports& ports, R& r) {
    add(ports, r.XY[1], r.XY[2], r.CON[1], 8);
    add(ports, r.XY[3], r.XY[4], r.CON[2], 7);
}

template <class R>
void nozzles(Ports& ports, R& r) {
    for (std::size_t k = 1; k <= kNozzles; ++k) add(ports, r.NOZI[k].X, r.NOZI[k].Y, r.NOZI[k].CON, 8);
    for (std::size_t k = 1; k <= kNozzles; ++k) add(ports, r.NOZO[k].X, r.NOZO[k].Y, r.NOZO[k].CON, 7);
}

template <class R>
void ports_of(Ports& ports, R& r) {
    if constexpr (std::is_same_v<R, Feed>) add(ports, r.NOZ.X, r.NOZ.Y, r.NOZ.CON, 7);
    else if constexpr (std::is_same_v<R, Prod>) add(ports, r.NOZ.X, r.NOZ.Y, r.NOZ.CON, 8);
    else if constexpr (std::is_base_of_v<NozzleItem, R>) {
        add(ports, r.XY[1], r.XY[2], r.NOZI.CON, 8);
        add(ports, r.XY[3], r.XY[4], r.NOZO.CON, 7);
    } else if constexpr (std::is_base_of_v<TwoPort, R>) two_port(ports, r);
    else if constexpr (std::is_same_v<R, Junc> || std::is_same_v<R, Vessel>) nozzles(ports, r);
    else if constexpr (std::is_same_v<R, Tee>) {
        // Side s takes the line that ends on it at XY[2s-1], XY[2s] (CON[s]) and
        // the line that leaves it at XY[2s+5], XY[2s+6] (CON[s+3]).
        for (std::size_t s = 1; s <= 3; ++s) add(ports, r.XY[2 * s - 1], r.XY[2 * s], r.CON[s], 8);
        for (std::size_t s = 1; s <= 3; ++s) add(ports, r.XY[2 * s + 5], r.XY[2 * s + 6], r.CON[s + 3], 7);
    }
}

}  // namespace

std::string_view kind_name(ItemKind k) { return kNames[static_cast<std::size_t>(k)]; }

std::optional<ItemKind> kind_from_name(std::string_view name) {
    for (std::size_t i = 0; i < kNames.size(); ++i)
        if (kNames[i] == name) return static_cast<ItemKind>(i);
    return std::nullopt;
}

int tool_of(ItemKind k) {
    if (k == ItemKind::Line) return 49;
    for (std::size_t i = 0; i < kTools.size(); ++i)
        if (kTools[i] == k) return 50 + static_cast<int>(i);
    return 0;
}

std::optional<ItemKind> kind_of_tool(int draw_action) {
    if (draw_action == 49) return ItemKind::Line;
    if (draw_action >= 50 && draw_action <= 63) return kTools[static_cast<std::size_t>(draw_action - 50)];
    return std::nullopt;
}

int item_count(const Project& p, ItemKind k) {
    return with_records(p, k, [](const auto& v) { return count(v); });
}

Ports item_ports(Project& p, ItemRef r) {
    Ports ports;
    with_record(p, r, [&](auto& rec) { ports_of(ports, rec); });
    return ports;
}

Drawn* drawn(Project& p, ItemRef r) {
    Drawn* d = nullptr;
    with_record(p, r, [&](auto& rec) {
        if constexpr (std::is_base_of_v<Drawn, std::decay_t<decltype(rec)>>) d = &rec;
    });
    return d;
}

const Drawn* drawn(const Project& p, ItemRef r) { return drawn(const_cast<Project&>(p), r); }

int* selected_flag(Project& p, ItemRef r) {
    int* f = nullptr;
    with_record(p, r, [&](auto& rec) { f = &rec.Selected; });
    return f;
}

int* marked_flag(Project& p, ItemRef r) {
    int* f = nullptr;
    with_record(p, r, [&](auto& rec) { f = &rec.Marked; });
    return f;
}

std::pair<float, float> item_anchor(const Project& p, ItemRef r) {
    std::pair<float, float> at{0.0f, 0.0f};
    with_record(p, r, [&](const auto& rec) {
        using R = std::decay_t<decltype(rec)>;
        if constexpr (std::is_same_v<R, Line>) at = {rec.XY[3], rec.XY[4]};
        else if constexpr (std::is_same_v<R, Symbol>) at = {rec.XY[1], rec.XY[2]};
        else {
            Ports ports;
            ports_of(ports, const_cast<R&>(rec));
            if (ports.n > 0) at = {*ports.at[0].x, *ports.at[0].y};
        }
    });
    return at;
}

std::vector<std::array<bool, 2>> connected_ends(const Project& p) {
    std::vector<std::array<bool, 2>> ends(p.lines.size(), {false, false});
    Project& q = const_cast<Project&>(p);
    for_each_item(p, [&](ItemRef r) {
        for (const PortRef& port : item_ports(q, r))
            if (*port.con >= 1 && *port.con < static_cast<int>(ends.size()))
                ends[static_cast<std::size_t>(*port.con)][port.side == 7 ? 0 : 1] = true;
    });
    return ends;
}

}  // namespace velm
