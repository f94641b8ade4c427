// The record vector of an item kind, for code that treats every kind alike.
#pragma once

#include <type_traits>

#include "drawing/items.hpp"

namespace velm {

// Calls f with the vector of records of kind k (const or not as p is).
template <class P, class F>
decltype(auto) with_records(P& p, ItemKind k, F&& f) {
    switch (k) {
    case ItemKind::Feed: return f(p.feeds);
    case ItemKind::Prod: return f(p.prods);
    case ItemKind::Valve: return f(p.valves);
    case ItemKind::Check: return f(p.checks);
    case ItemKind::Pump: return f(p.pumps);
    case ItemKind::Comp: return f(p.comps);
    case ItemKind::FO: return f(p.fos);
    case ItemKind::HX: return f(p.hxs);
    case ItemKind::Misc: return f(p.miscs);
    case ItemKind::Expand: return f(p.expands);
    case ItemKind::Vessel: return f(p.vessels);
    case ItemKind::Tee: return f(p.tees);
    case ItemKind::Junc: return f(p.juncs);
    case ItemKind::Symbol: return f(p.symbols);
    case ItemKind::Line: break;
    }
    return f(p.lines);
}

// Calls f with the record of item r; nothing when r's index is out of range.
template <class P, class F>
void with_record(P& p, ItemRef r, F&& f) {
    with_records(p, r.kind, [&](auto& v) {
        if (r.index >= 1 && r.index < static_cast<int>(v.size())) f(v[static_cast<std::size_t>(r.index)]);
    });
}

}  // namespace velm
