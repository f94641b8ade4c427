// The items of the sheet seen alike: their kind, their ports, their common
// head and the place of each on the sheet, whatever record type holds them.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "model/records.hpp"

namespace velm {

// The kinds in the order in which the sheet draws and hit-tests them.
enum class ItemKind { Feed, Prod, Valve, Check, Pump, Comp, FO, HX, Misc, Expand, Vessel, Tee, Junc, Symbol, Line };
inline constexpr std::array<ItemKind, 15> kDrawOrder{
    ItemKind::Feed, ItemKind::Prod,   ItemKind::Valve, ItemKind::Check, ItemKind::Pump,
    ItemKind::Comp, ItemKind::FO,     ItemKind::HX,    ItemKind::Misc,  ItemKind::Expand,
    ItemKind::Vessel, ItemKind::Tee,  ItemKind::Junc,  ItemKind::Symbol, ItemKind::Line};

// The record type's name ("Feed", "FO", ...) and back.
std::string_view kind_name(ItemKind k);
std::optional<ItemKind> kind_from_name(std::string_view name);

// The equipment tool of a kind: DrawAction 50 Feed ... 63 Symbol; the Line has
// the pipe tool, 49.
int tool_of(ItemKind k);
std::optional<ItemKind> kind_of_tool(int draw_action);

// One item of the sheet.
struct ItemRef {
    ItemKind kind = ItemKind::Line;
    int index = 0;
    bool operator==(const ItemRef&) const = default;
};

int item_count(const Project& p, ItemKind k);

// A port of an item: where it is, the connection field that holds the line on
// it, and which end of that line it takes: 8 for an inlet of the item (the
// line's outlet ends there), 7 for an outlet (the line starts there).
struct PortRef {
    float* x = nullptr;
    float* y = nullptr;
    int* con = nullptr;
    int side = 7;
};

// The ports of an item, in the order the hit test tries them; at most eight.
struct Ports {
    std::array<PortRef, 8> at{};
    int n = 0;
    PortRef* begin() { return at.data(); }
    PortRef* end() { return at.data() + n; }
};
Ports item_ports(Project& p, ItemRef r);

// The common head of an item (name, colour, label, rotation, flips, selected
// flag); nullptr for a Symbol and for an index out of range.
Drawn* drawn(Project& p, ItemRef r);
const Drawn* drawn(const Project& p, ItemRef r);

// Selected and marked flags of any item (Symbols included).
int* selected_flag(Project& p, ItemRef r);
int* marked_flag(Project& p, ItemRef r);

// The point from which the item's icon is placed: its first port (the first
// corner of a Symbol, the inlet point of a Line).
std::pair<float, float> item_anchor(const Project& p, ItemRef r);

// Calls f(ItemRef) for every item of the project in the drawing order.
template <class F>
void for_each_item(const Project& p, F&& f) {
    for (ItemKind k : kDrawOrder)
        for (int i = 1, n = item_count(p, k); i <= n; ++i) f(ItemRef{k, i});
}

}  // namespace velm
