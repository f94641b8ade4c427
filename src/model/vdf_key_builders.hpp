// Building blocks of the key tables of the project file: slot builders,
// the shared keys and the tables of each record kind. Private to the
// project file code.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "model/vdf_schema.hpp"

namespace velm::vdf {

// ---------------------------------------------------------------------------
// Slot builders. Each accessor is a captureless lambda turned into a function
// pointer; the pointer type makes the compiler check the field's type.
#define T(x) Slot<R>{.kind = Kind::Text, .s = +[](R& r) { return &r.x; }}
#define FB(x, n) Slot<R>{.kind = Kind::FixedBoth, .s = +[](R& r) { return &r.x; }, .width = n}
#define FR(x, n) Slot<R>{.kind = Kind::FixedRight, .s = +[](R& r) { return &r.x; }, .width = n}
#define NT(x) Slot<R>{.kind = Kind::Notes, .s = +[](R& r) { return &r.x; }}
#define C(x) Slot<R>{.kind = Kind::Case, .s = +[](R& r) { return &r.x; }}
#define CM(x) Slot<R>{.kind = Kind::CaseMode, .s = +[](R& r) { return &r.x; }}
#define I(x) Slot<R>{.kind = Kind::Int, .i = +[](R& r) { return &r.x; }}
#define F(x) Slot<R>{.kind = Kind::Single, .f = +[](R& r) { return &r.x; }}
#define FZ(x) Slot<R>{.kind = Kind::SingleZero, .f = +[](R& r) { return &r.x; }}
#define D(x) Slot<R>{.kind = Kind::Double, .d = +[](R& r) { return &r.x; }}
#define W(text) Slot<R>{.kind = Kind::Word, .word = text}
#define L(text) Slot<R>{.kind = Kind::Literal, .word = text}
#define P(x) C(x.spec), D(x.value)
#define PM(x) CM(x.spec), D(x.value)



// Slots for elements first..first+N-1 of an array member.
template <class R, auto Member, Kind K, int First, std::size_t... I>
std::vector<Slot<R>> array_slots_impl(std::index_sequence<I...>) {
    if constexpr (K == Kind::Double)
        return {Slot<R>{.kind = K, .d = +[](R& r) { return &(r.*Member)[First + I]; }}...};
    else if constexpr (K == Kind::Single)
        return {Slot<R>{.kind = K, .f = +[](R& r) { return &(r.*Member)[First + I]; }}...};
    else if constexpr (K == Kind::Int)
        return {Slot<R>{.kind = K, .i = +[](R& r) { return &(r.*Member)[First + I]; }}...};
    else
        return {Slot<R>{.kind = K, .s = +[](R& r) { return &(r.*Member)[First + I]; }}...};
}

template <class R, auto Member, Kind K, int First, int N>
std::vector<Slot<R>> array_slots(std::initializer_list<Slot<R>> tail = {}) {
    auto v = array_slots_impl<R, Member, K, First>(std::make_index_sequence<N>{});
    v.insert(v.end(), tail);
    return v;
}

// Items up to the end of the current line (keys of old files of unknown length).
std::vector<std::string> line_items(ReadState& st);

template <class R>
void skip_line(ReadState& st, R&) {
    st.in.rest_of_line();
}

// ---------------------------------------------------------------------------
// Keys shared by several kinds.

template <class R>
std::vector<KeyDef<R>> drawn_head_keys() {
    return {
        {"ROT", {I(ROT)}},
        {"FLIP", {I(FLIP[1]), I(FLIP[2])}},
        {"LBL", {I(LBL1), F(LBL2), F(LBL3)}},
        {"COLOR", {I(COLOR)}},
    };
}

// The equation fields of Line, Feed and Prod.
template <class R>
KeyDef<R> eqn_key() {
    return {"EQN", {I(EQN.EQN1), T(EQN.EQN2), I(EQN.EQN3), T(EQN.EQN4), I(EQN.EQN5), D(EQN.EQN6), D(EQN.EQN7),
                    D(EQN.EQN8)}};
}

template <class R>
std::vector<KeyDef<R>> concat(std::vector<std::vector<KeyDef<R>>> parts) {
    std::vector<KeyDef<R>> all;
    for (auto& p : parts)
        for (auto& k : p) all.push_back(std::move(k));
    return all;
}

// The key tables of each kind, in writing order.
std::vector<KeyDef<Header>> gen_keys();
std::vector<KeyDef<Line>> pipe_keys();
std::vector<KeyDef<Feed>> feed_keys();
std::vector<KeyDef<Prod>> prod_keys();
std::vector<KeyDef<Valve>> valve_keys();
std::vector<KeyDef<Check>> check_keys();
std::vector<KeyDef<FO>> fo_keys();
std::vector<KeyDef<HX>> hx_keys();
std::vector<KeyDef<Pump>> pump_keys();
std::vector<KeyDef<Comp>> comp_keys();
std::vector<KeyDef<Misc>> misc_keys();
std::vector<KeyDef<Expand>> expand_keys();
std::vector<KeyDef<Junc>> junc_keys();
std::vector<KeyDef<Tee>> tee_keys();
std::vector<KeyDef<Vessel>> vessel_keys();
std::vector<KeyDef<Symbol>> symbol_keys();
std::vector<KeyDef<Pseudo>> pseudo_keys();
std::vector<KeyDef<PipeData>> pipedata_keys();

}  // namespace velm::vdf
