// The key tables of the project file, section by section, in writing order.
#include <cmath>
#include <utility>

#include "model/context.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "model/vdf_schema.hpp"

namespace velm {

std::string escape_notes(std::string_view s) {
    std::string out;
    out.reserve(s.size());
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\r' && i + 1 < s.size() && s[i + 1] == '\n') {
            out += "<CRLF>";
            ++i;
        } else if (s[i] == '"') {
            out += "<CHR34>";
        } else {
            out += s[i];
        }
    }
    return out;
}

std::string unescape_notes(std::string_view s) {
    std::string out(s);
    for (auto [from, to] : {std::pair<std::string_view, std::string_view>{"<CRLF>", "\r\n"}, {"<CHR34>", "\""}})
        for (std::size_t at = out.find(from); at != std::string::npos; at = out.find(from, at + to.size()))
            out.replace(at, from.size(), to);
    return out;
}

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

namespace {

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

// ---------------------------------------------------------------------------
// Reading and writing the values of one key line.

template <class R>
void read_slots(ReadState& st, const std::vector<Slot<R>>& slots, R& rec) {
    for (const Slot<R>& sl : slots) {
        switch (sl.kind) {
            case Kind::Text: *sl.s(rec) = st.in.item(); break;
            case Kind::FixedBoth:
            case Kind::FixedRight: *sl.s(rec) = fixed_width(st.in.item(), static_cast<std::size_t>(sl.width)); break;
            case Kind::Notes: *sl.s(rec) = unescape_notes(st.in.item()); break;
            case Kind::Case: *sl.s(rec) = converting_units(st.ctx, st.in.item(), "", "", -2); break;
            case Kind::CaseMode: *sl.s(rec) = converting_units(st.ctx, st.in.item(), "", "", st.chosen_mode); break;
            case Kind::Int: *sl.i(rec) = st.in.integer(); break;
            case Kind::Single:
            case Kind::SingleZero: *sl.f(rec) = st.in.single(); break;
            case Kind::Double: *sl.d(rec) = st.in.number(); break;
            case Kind::Word:
            case Kind::Literal: st.in.item(); break;
        }
    }
}

template <class R>
void write_slots(LineWriter& lw, const std::vector<Slot<R>>& slots, const R& rec) {
    // The accessors are shared with the reader and take a mutable record;
    // writing only reads through them.
    R& r = const_cast<R&>(rec);
    ItemWriter& w = lw.w;
    for (const Slot<R>& sl : slots) {
        switch (sl.kind) {
            case Kind::Text: w.text(*sl.s(r)); break;
            case Kind::FixedBoth: w.text(trim(*sl.s(r))); break;
            case Kind::FixedRight: w.text(trim_right(*sl.s(r))); break;
            case Kind::Notes: w.text(escape_notes(*sl.s(r))); break;
            case Kind::Case:
            case Kind::CaseMode: w.text(converting_units(lw.ctx, *sl.s(r), "", "", -1)); break;
            case Kind::Int: w.integer(*sl.i(r)); break;
            case Kind::Single: w.single(*sl.f(r)); break;
            case Kind::SingleZero: w.integer(0); break;
            case Kind::Double: w.number(*sl.d(r)); break;
            case Kind::Word: w.text(sl.word); break;
            case Kind::Literal: w.raw(sl.word); break;
        }
    }
}

// Items up to the end of the current line (keys of old files of unknown length).
std::vector<std::string> line_items(ReadState& st) {
    std::vector<std::string> items;
    while (!st.in.line_ended()) items.push_back(st.in.item());
    return items;
}

template <class R>
void skip_line(ReadState& st, R&) {
    st.in.rest_of_line();
}

// ---------------------------------------------------------------------------
// The keys of one record kind, found by name, read and written.

template <class R>
class KeyTable {
public:
    explicit KeyTable(std::vector<KeyDef<R>> keys) : keys_(std::move(keys)) {}
    bool knows(std::string_view key) const { return find(key) != nullptr; }
    void read(ReadState& st, R& rec, std::string_view key) const {
        const KeyDef<R>* k = find(key);
        if (k->read) k->read(st, rec);
        else read_slots(st, k->slots, rec);
    }
    void write(LineWriter& lw, const R& rec) const {
        for (const KeyDef<R>& k : keys_) {
            if (!k.written) continue;
            if (k.write) {
                k.write(lw, rec);
                continue;
            }
            lw.begin(k.key);
            write_slots(lw, k.slots, rec);
            lw.w.end_line();
        }
    }

private:
    const KeyDef<R>* find(std::string_view key) const {
        for (const auto& k : keys_)
            if (key == k.key) return &k;
        return nullptr;
    }
    std::vector<KeyDef<R>> keys_;
};

// Sections of records.
template <class R>
class RecordSection : public SectionIO {
public:
    enum class Grow { CopyTemplate, Plain };
    RecordSection(const char* name, std::vector<R> Project::*vec, std::vector<KeyDef<R>> keys,
                  Grow grow = Grow::CopyTemplate, int first_written = 0)
        : name_(name), vec_(vec), keys_(std::move(keys)), grow_(grow), first_written_(first_written) {}

    std::string_view name() const override { return name_; }
    int count(const Project& p) const override { return velm::count(p.*vec_); }
    void set_count(Project& p, int n) const override {
        auto& v = p.*vec_;
        if (v.empty()) v.resize(1);
        v.resize(static_cast<std::size_t>(n) + 1);
        if (grow_ == Grow::CopyTemplate)
            for (std::size_t i = 1; i < v.size(); ++i) v[i] = v[0];
    }
    bool knows(std::string_view key) const override { return keys_.knows(key); }
    void read_key(ReadState& st, Project& p, int index, std::string_view key) const override {
        keys_.read(st, (p.*vec_)[static_cast<std::size_t>(index)], key);
    }
    void write(ItemWriter& w, RunContext& ctx, const Project& p) const override {
        const auto& v = p.*vec_;
        w.text(name_);
        w.integer(0);
        w.text("NUM");
        w.integer(count(p));
        w.end_line();
        for (std::size_t i = static_cast<std::size_t>(first_written_); i < v.size(); ++i) {
            LineWriter lw{w, ctx, name_, static_cast<int>(i)};
            keys_.write(lw, v[i]);
        }
    }

private:
    const char* name_;
    std::vector<R> Project::*vec_;
    KeyTable<R> keys_;
    Grow grow_;
    int first_written_;
};

// The header: one record, index 0.
class HeaderSection : public SectionIO {
public:
    explicit HeaderSection(std::vector<KeyDef<Header>> keys) : keys_(std::move(keys)) {}
    std::string_view name() const override { return "\\GEN"; }
    bool is_record_section() const override { return false; }
    int count(const Project&) const override { return 0; }
    void set_count(Project&, int) const override {}
    bool knows(std::string_view key) const override { return keys_.knows(key); }
    void read_key(ReadState& st, Project& p, int, std::string_view key) const override { keys_.read(st, p.gen, key); }
    void write(ItemWriter& w, RunContext& ctx, const Project& p) const override {
        LineWriter lw{w, ctx, "\\GEN", 0};
        keys_.write(lw, p.gen);
    }

private:
    KeyTable<Header> keys_;
};

// The calculators' last state: each key's items kept as the file held them.
class ToolsSection : public SectionIO {
public:
    std::string_view name() const override { return "\\TOOLS"; }
    bool is_record_section() const override { return false; }
    int count(const Project&) const override { return 0; }
    void set_count(Project&, int) const override {}
    bool knows(std::string_view key) const override {
        for (const char* k : {"PIPEI", "PIPEOA", "PIPEOB", "VALVEI", "VALVEO", "FOI", "FOO", "PIPEO"})
            if (key == k) return true;
        return false;
    }
    void read_key(ReadState& st, Project& p, int, std::string_view key) const override {
        const std::string raw = st.in.rest_of_line();
        if (key == "PIPEO") return;  // a key of old files, no longer kept
        for (auto& kv : p.tools.keys)
            if (kv.first == key) {
                kv.second = {raw};
                return;
            }
        p.tools.keys.push_back({std::string(key), {raw}});
    }
    void write(ItemWriter& w, RunContext&, const Project& p) const override {
        for (const auto& kv : p.tools.keys) {
            w.text("\\TOOLS");
            w.integer(0);
            w.text(kv.first);
            if (!kv.second.empty() && !kv.second[0].empty()) w.raw(kv.second[0]);
            w.end_line();
        }
    }
};

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

// ---------------------------------------------------------------------------
// \GEN

std::vector<KeyDef<Header>> gen_keys() {
    using R = Header;
    auto eng_old = +[](ReadState& st, R& g) {
        // Files before 2.0: project number, date, engineer, approver, revision.
        g.ENG[5] = fixed_width(st.in.item(), 12);
        g.ENG[4] = fixed_width(st.in.item(), 12);
        g.ENG[1] = fixed_width(st.in.item(), 10);
        g.ENG[3] = fixed_width(st.in.item(), 10);
        g.ENG[6] = fixed_width(st.in.item(), 10);
    };
    return {
        {"COM", {FB(COM[1], 50), FB(COM[2], 50)}},
        {"PRJ", {FB(PRJ[1], 50), FB(PRJ[2], 50), FB(PRJ[3], 50), FB(PRJ[4], 50)}},
        {"ENG", {FB(ENG[1], 10), FB(ENG[2], 10), FB(ENG[3], 10), FB(ENG[4], 12), FB(ENG[5], 12), FB(ENG[6], 10)}},
        {"UNITS", {T(UNITS)}},
        {"UNITS1", array_slots<R, &R::UNITS1, Kind::Text, 1, 6>()},
        {"UNITS2", array_slots<R, &R::UNITS2, Kind::Text, 1, 6>()},
        {"UNITS3", array_slots<R, &R::UNITS3, Kind::Text, 1, 5>()},
        {"PATM", {D(PATM), W("kPag")}},
        {"DWGSTD", {T(DWGSTD)}},
        {"DWGSIZ", {F(DWGSIZ[1]), F(DWGSIZ[2]), W("twip")}},
        {"DWGMAR", {F(DWGMAR), W("twip")}},
        {"DWGGRD", {I(DWGGRD1), I(DWGGRD2)}},
        {"DWGBOR", {I(DWGBOR)}},
        {"RPTSIZ", {T(RPTSIZ1), I(RPTSIZ2), W("twip"), I(RPTSIZ4), W("pt")}},
        {"PRTWID", {I(PRTWID), W("pixel")}},
        {"MFIT", {T(MFIT)}},
        {"MCOMP", {T(MCOMP)}},
        {"MTP", {T(MTP)}},
        {"MDELEV", {T(MDELEV)}},
        {"MDUKHP", {T(MDUKHP)}},
        {"MDUKF", {I(MDUKF)}},
        {"MACCEL", {T(MACCEL)}},
        {"MSONIC", {T(MSONIC)}},
        {"MHDAMP", {D(MHDAMP)}},
        {"MSIM", {T(MSIM[1]), T(MSIM[2])}},
        {"MFLASH", {T(MFLASH)}},
        {"MFLASHK", {T(MFLASHK)}},
        {"MFLASHH", {T(MFLASHH)}},
        {"MFLASHR", {I(MFLASHR)}},
        {"MXYDAMP", {D(MXYDAMP)}},
        {"MPPP", {I(MPPP)}},
        {"MHYSYS", {T(MHYSYS)}},
        {"MFODEN", {T(MFODEN)}},
        {"MCVDEN", {T(MCVDEN)}},
        {"MPCURV", {D(MPCURV[1]), D(MPCURV[2])}},
        {"PCURQ", array_slots<R, &R::PCURQ, Kind::Double, 1, 10>({W("%")})},
        {"PCURH", array_slots<R, &R::PCURH, Kind::Double, 1, 10>({W("%")})},
        {"PCUREFF", array_slots<R, &R::PCUREFF, Kind::Double, 1, 10>({W("%")})},
        {"PCURNPSH", array_slots<R, &R::PCURNPSH, Kind::Double, 1, 10>({W("%")})},
        {"CCURQ", array_slots<R, &R::CCURQ, Kind::Double, 1, 10>({W("%")})},
        {"CCURH", array_slots<R, &R::CCURH, Kind::Double, 1, 10>({W("%")})},
        {"CCUREFF", array_slots<R, &R::CCUREFF, Kind::Double, 1, 10>({W("%")})},
        {"CASENO", {T(CASENO)}},
        {"CASEDSC", {T(CASEDSC)}},
        {"CASERPT", {T(CASERPT)}},
        {"CASEDLG", {I(CASEDLG)}},
        // Directories are written for the reader's information and never read back.
        {"DIRLIB", {W("{app}/data/")}},
        {"DIRINI", {W("{config}/velm/")}},
        {"DIRDAT", {W("{data}/velm/")}},
        {"COMP0", array_slots<R, &R::COMP, Kind::Int, 1, 10>()},
        {"COMP1", array_slots<R, &R::COMP, Kind::Int, 11, 10>()},
        {"COMP2", array_slots<R, &R::COMP, Kind::Int, 21, 10>()},
        {"MPNSIZ", {}, skip_line<R>, nullptr, false},
        {"NUM", {}, eng_old, nullptr, false},
    };
}

// ---------------------------------------------------------------------------
// \PIPE

template <int N>
KeyDef<Line> fitting_key() {
    using R = Line;
    static const std::string key = "FIT" + std::to_string(N);
    return {key.c_str(),
            {FR(FIT[N].name, 12), I(FIT[N].count), D(FIT[N].LD), D(FIT[N].K), D(FIT[N].K1), D(FIT[N].Kinf),
             D(FIT[N].K3)}};
}

template <std::size_t... I>
std::vector<KeyDef<Line>> fitting_keys(std::index_sequence<I...>) {
    return {fitting_key<static_cast<int>(I) + 1>()...};
}

// Old files: five fittings on one line, name, count, L/D and K each.
template <int First>
void read_old_fittings(ReadState& st, Line& line) {
    for (int n = First; n < First + 5; ++n) {
        line.FIT[n].name = fixed_width(st.in.item(), 12);
        line.FIT[n].count = st.in.integer();
        line.FIT[n].LD = st.in.number();
        line.FIT[n].K = st.in.number();
    }
}

// Old files held only averages of the liquid properties; they fill both ends.
void read_old_lprop(ReadState& st, Line& line) {
    const auto items = line_items(st);
    auto at = [&](std::size_t pos) { return pos <= items.size() ? leading_number(items[pos - 1]) : 0.0; };
    line.LPROP[1] = line.LIQDEN[1] = line.LIQDEN[2] = at(1);
    line.LPROP[3] = line.LIQVISC[1] = line.LIQVISC[2] = at(3);
}

void read_old_vprop(ReadState& st, Line& line) {
    const auto items = line_items(st);
    auto at = [&](std::size_t pos) { return pos <= items.size() ? leading_number(items[pos - 1]) : 0.0; };
    line.VPROP[1] = at(1);
    line.VPROP[3] = line.VAPVISC[1] = line.VAPVISC[2] = at(3);
    line.VPROP[5] = line.VAPMW[1] = line.VAPMW[2] = at(5);
    line.VPROP[6] = line.VAPZ[1] = line.VAPZ[2] = at(6);
    line.VPROP[7] = line.VAPK[1] = line.VAPK[2] = at(7);
}

std::vector<KeyDef<Line>> pipe_keys() {
    using R = Line;
    std::vector<Slot<R>> xy = {FZ(XY[1]), FZ(XY[2])};
    auto points = array_slots<R, &R::XY, Kind::Single, 3, 22>();
    xy.insert(xy.end(), points.begin(), points.end());
    xy.push_back(FZ(XY[25]));
    xy.push_back(FZ(XY[26]));

    std::vector<KeyDef<R>> head = {
        {"NAME", {T(NAME[1]), T(NAME[2])}},
        {"BEND", {I(BEND)}},
        {"XY", xy},
        {"LBL", {I(LBL1), F(LBL2), F(LBL3)}},
        {"COLOR", {I(COLOR)}},
        {"STRM", {T(STRM)}},
        {"LOCK", {I(LOCK)}},
        {"TEMP", {D(TEMP[1]), D(TEMP[2]), D(TEMP[3]), W("C")}},
        {"PRES", {D(PRES[1]), D(PRES[2]), D(PRES[3]), W("kPag")}},
        {"LF", {D(LF[1]), D(LF[2]), D(LF[3])}},
        {"H", {D(H[1]), D(H[2]), W("kJ/kg")}},
        {"S", {D(S[1]), D(S[2]), W("kJ/kg/K")}},
        {"FT", {I(FT[1]), I(FT[2])}},
        {"Q", {P(Q), W("kJ/h")}},
        {"UI", {P(UI), W("W/m2/K")}},
        {"TAMB", {D(TAMB), W("C")}},
        {"TSUR", {D(TSUR), W("C")}},
        {"QFAC", {D(QFAC)}},
        {"QAIR", {W("AirL"), D(QAIR2), W("m/s")}},
        {"QPIP", {D(QPIP[1]), D(QPIP[2]), W("W/m/K")}},
        {"QINS", {D(QINS[1]), W("m"), D(QINS[3]), W("W/m/K")}},
        {"COMP0", array_slots<R, &R::COMP0, Kind::Double, 1, 10>()},
        {"COMP1", array_slots<R, &R::COMP0, Kind::Double, 11, 10>()},
        {"COMP2", array_slots<R, &R::COMP0, Kind::Double, 21, 10>()},
        {"COMPIY0", array_slots<R, &R::COMPIY0, Kind::Double, 1, 10>()},
        {"COMPIY1", array_slots<R, &R::COMPIY0, Kind::Double, 11, 10>()},
        {"COMPIY2", array_slots<R, &R::COMPIY0, Kind::Double, 21, 10>()},
        {"COMPIX0", array_slots<R, &R::COMPIX0, Kind::Double, 1, 10>()},
        {"COMPIX1", array_slots<R, &R::COMPIX0, Kind::Double, 11, 10>()},
        {"COMPIX2", array_slots<R, &R::COMPIX0, Kind::Double, 21, 10>()},
        {"COMPOY0", array_slots<R, &R::COMPOY0, Kind::Double, 1, 10>()},
        {"COMPOY1", array_slots<R, &R::COMPOY0, Kind::Double, 11, 10>()},
        {"COMPOY2", array_slots<R, &R::COMPOY0, Kind::Double, 21, 10>()},
        {"COMPOX0", array_slots<R, &R::COMPOX0, Kind::Double, 1, 10>()},
        {"COMPOX1", array_slots<R, &R::COMPOX0, Kind::Double, 11, 10>()},
        {"COMPOX2", array_slots<R, &R::COMPOX0, Kind::Double, 21, 10>()},
        {"REFLINE", {I(REFLINE)}},
        {"OUTIN", {I(OUTIN)}},
        {"LVFLOW", {D(LVFLOW[1]), D(LVFLOW[2]), W("t/h")}},
        {"LIQDEN", {D(LIQDEN[1]), D(LIQDEN[2]), D(LPROP[1]), W("kg/m3")}},
        {"LIQVISC", {D(LIQVISC[1]), D(LIQVISC[2]), D(LPROP[3]), W("cP")}},
        {"LIQSUR", {D(LIQSUR[1]), D(LIQSUR[2]), D(LIQSUR[3]), W("dyne/cm")}},
        {"LIQCON", {D(LIQCON[1]), D(LIQCON[2]), D(LIQCON[3]), W("W/m/K")}},
        {"LIQCP", {D(LIQCP[1]), D(LIQCP[2]), D(LIQCP[3]), W("kJ/kg/K")}},
        {"LIQMW", {D(LIQMW[1]), D(LIQMW[2]), D(LIQMW[3])}},
        {"VAPDEN", {D(VAPDEN[1]), D(VAPDEN[2]), D(VPROP[1]), W("kg/m3")}},
        {"VAPVISC", {D(VAPVISC[1]), D(VAPVISC[2]), D(VPROP[3]), W("cP")}},
        {"VAPMW", {D(VAPMW[1]), D(VAPMW[2]), D(VPROP[5])}},
        {"VAPZ", {D(VAPZ[1]), D(VAPZ[2]), D(VPROP[6])}},
        {"VAPK", {D(VAPK[1]), D(VAPK[2]), D(VPROP[7])}},
        {"VAPCON", {D(VAPCON[1]), D(VAPCON[2]), D(VAPCON[3]), W("W/m/K")}},
        {"VAPCP", {D(VAPCP[1]), D(VAPCP[2]), D(VAPCP[3]), W("kJ/kg/K")}},
        {"TFLOW", {P(TFLOW), W("t/h")}},
        {"TPROP", {D(TPROP[1]), D(TPROP[2]), D(TPROP[3]), D(TPROP[4]), W("kg/m3"), D(TPROP[6]), W("cP")}},
        {"TOTCON", {W(""), W(""), D(TOTCON[3]), W("W/m/K")}},
        {"TOTCP", {W(""), W(""), D(TOTCP[3]), W("kJ/kg/K")}},
        {"TOTMW", {D(TOTMW)}},
        {"MAT", {T(MAT)}},
        {"DIA", {T(DIA[1]), T(DIA[2]), W("inch")}},
        {"ID", {P(ID), W("m")}},
        {"IDH", {P(IDH), W("m")}},
        {"ODF", {W(""), D(ODF[2]), W("m")}},
        {"SCH", {T(SCH)}},
        {"LEN", {D(LEN), W("m")}},
        {"EQLEN", {D(EQLEN), W("m")}},
        {"FITK", {D(FITK)}},
        {"FITLD", {D(FITLD)}},
    };
    std::vector<KeyDef<R>> tail = {
        {"SELEV", {D(SELEV), W("m")}},
        {"DPELEV", {D(DPELEV), W("kPag")}},
        {"ELEV", {D(ELEV[1]), D(ELEV[2]), W("m")}},
        {"FAC", {D(FAC)}},
        {"EPS", {P(EPS), W("m")}},
        {"F", {D(F[1]), D(F[2])}},
        {"RE", {D(RE)}},
        {"SIZ", {T(SIZ1), D(SIZ[2]), W("kPa/100m"), D(SIZ[4]), D(SIZ[5]), D(SIZ[6]), D(SIZ[7]), W("m/s")}},
        {"DPL", {D(DPL), W("kPa/100m")}},
        {"VEL", {D(VEL[1]), D(VEL[2]), D(VEL[3]), D(VEL[4]), W("m/s")}},
        {"HUP", {D(HUP)}},
        {"REG", {T(REG[1]), T(REG[2]), T(REG[3])}},
        {"REGA", {T(REGA[1]), T(REGA[2]), W("-")}},
        {"MTP", {T(MTP)}},
        {"DUK", {D(DUK[1]), D(DUK[2]), W("Ratio")}},
        {"LM", array_slots<R, &R::LM, Kind::Double, 1, 7>()},
        eqn_key<R>(),
        {"NOTES", {NT(NOTES)}},
        {"FILES", array_slots<R, &R::FILES, Kind::Text, 1, 10>()},
        // Keys of older files.
        {"U", {C(UI.spec), W("")}, nullptr, nullptr, false},
        {"E", {C(EPS.spec), W("")}, nullptr, nullptr, false},
        {"LPROP", {}, read_old_lprop, nullptr, false},
        {"VPROP", {}, read_old_vprop, nullptr, false},
        {"FITA", {}, read_old_fittings<1>, nullptr, false},
        {"FITB", {}, read_old_fittings<6>, nullptr, false},
        {"FITO", {W(""), D(FIT[11].LD), D(FIT[11].K)}, nullptr, nullptr, false},
    };
    return concat<R>({head, fitting_keys(std::make_index_sequence<kFittings>{}), tail});
}

// ---------------------------------------------------------------------------
// Boundaries, two-port items and nodes.

// Feed and Prod: the same keys but for the pressure at the pipe end, POUT on
// a feed and PIN on a product.
template <class R>
std::vector<KeyDef<R>> boundary_keys(KeyDef<R> pipe_end) {
    return concat<R>({
        {{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", {F(NOZ.X), F(NOZ.Y)}}},
        drawn_head_keys<R>(),
        {
            {"TYPE", {T(TYPE)}},
            {"ELEV", {D(ELEV), W("m")}},
            {"LEVEL", {C(LEVEL1), W("m"), D(LEVEL3), W("kg/m3"), T(LEVEL5)}},
            {"NOZ", {I(NOZ.CON), D(NOZ.NozHeight), W("m"), D(NOZ.dPLevel), D(NOZ.dPFlow), D(NOZ.KFlow), W("kPag")}},
            {"PRES", {P(PRES), W("kPag")}},
            pipe_end,
            {"DP", {P(DP), W("kPag")}},
            eqn_key<R>(),
            {"CHOKE", {I(CHOKE)}},
            {"NOTES", {NT(NOTES)}},
        },
    });
}

std::vector<KeyDef<Feed>> feed_keys() {
    using R = Feed;
    return boundary_keys<R>({"POUT", {P(POUT), W("kPag")}});
}

std::vector<KeyDef<Prod>> prod_keys() {
    using R = Prod;
    return boundary_keys<R>({"PIN", {P(PIN), W("kPag")}});
}

template <class R>
std::vector<KeyDef<R>> two_port_head() {
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()}},
                      drawn_head_keys<R>()});
}

template <class R>
std::vector<KeyDef<R>> pressures_keys() {
    return {
        {"DP", {P(DP), W("kPag")}},
        {"PIN", {P(PIN), W("kPag")}},
        {"POUT", {P(POUT), W("kPag")}},
    };
}

template <class R>
std::vector<KeyDef<R>> con_elev_keys() {
    return {
        {"CON", {I(CON[1]), I(CON[2])}},
        {"ELEV", {D(ELEV), W("m")}},
    };
}

std::vector<KeyDef<Valve>> valve_keys() {
    using R = Valve;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"DPP", {I(DPP1), D(DPP2), W("kPag")}},
                          {"K", {CM(K)}},
                          {"CV", {PM(CV)}},
                          {"DIA", {T(DIA)}},
                          {"TYPE2", {T(TYPE2)}},
                          {"TYPE", {T(TYPE)}},
                          {"OPEN", {PM(OPEN)}},
                          {"XT", {D(XT)}},
                          {"YIN", {D(YIN)}},
                          {"FP2", {D(FP2)}},
                          {"NOTES", {NT(NOTES)}},
                          {"X", {}, skip_line<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Check>> check_keys() {
    using R = Check;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(), {{"LD", {D(LD)}}}});
}

std::vector<KeyDef<FO>> fo_keys() {
    using R = FO;
    std::vector<KeyDef<R>> head = {
        {"NAME", {T(NAME[1]), T(NAME[2])}},
        {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()},
        {"COLOR", {I(COLOR)}},
        {"TYPE", {T(TYPE)}},
        {"ROT", {I(ROT)}},
        {"FLIP", {I(FLIP[1]), I(FLIP[2])}},
        {"LBL", {I(LBL1), F(LBL2), F(LBL3)}},
    };
    return concat<R>({head, con_elev_keys<R>(),
                      {
                          {"DP", {P(DP), W("kPag")}},
                          {"DPF", {P(DPF), W("kPag")}},
                          {"PIN", {P(PIN), W("kPag")}},
                          {"POUT", {P(POUT), W("kPag")}},
                          {"HOLES", {I(HOLES)}},
                          {"THICK", {D(THICK), W("m")}},
                          {"BORE", {P(BORE)}},
                          {"BETA", {PM(BETA)}},
                          {"C", {D(C)}},
                          {"YIN", {D(YIN)}},
                          {"CHOKE", {I(CHOKE)}},
                          {"NOTES", {NT(NOTES)}},
                      }});
}

template <class R>
std::vector<KeyDef<R>> nozzle_item_keys(std::vector<KeyDef<R>> kind_keys, std::vector<KeyDef<R>> tail) {
    return concat<R>({two_port_head<R>(), kind_keys,
                      {
                          {"NOZI", {I(NOZI.CON), D(NOZI.NozHeight), W("m")}},
                          {"NOZO", {I(NOZO.CON), D(NOZO.NozHeight), W("m")}},
                      },
                      pressures_keys<R>(),
                      {{"PRAT", {T(PRAT1), W("kPag"), D(PRAT3), W("t/h"), D(PRAT5), W("kg/m3"), L("1"), W("cP")}}},
                      tail});
}

std::vector<KeyDef<HX>> hx_keys() {
    using R = HX;
    return nozzle_item_keys<R>({{"TYPE", {T(TYPE)}}, {"SIDE", {T(SIDE)}}},
                               {
                                   {"K", {CM(K)}},
                                   {"DPELEV", {D(DPELEV), W("kPag")}},
                                   {"Q", {P(Q), W("kJ/h")}},
                                   {"NOTES", {NT(NOTES)}},
                               });
}

std::vector<KeyDef<Misc>> misc_keys() {
    using R = Misc;
    return nozzle_item_keys<R>({}, {
                                       {"K", {CM(K)}},
                                       {"LD", {CM(LD)}},
                                       {"DPELEV", {D(DPELEV), W("kPag")}},
                                       {"VOLBAL", {I(VOLBAL)}},
                                       {"NOTES", {NT(NOTES)}},
                                   });
}

// Files before 3.0 held the curve as a count and pairs of head and flow.
template <class R>
void read_old_curve(ReadState& st, R& m) {
    m.HQ1 = st.in.integer();
    for (int i = 1; i <= m.HQ1 && !st.in.line_ended(); ++i) {
        const std::string head = converting_units(st.ctx, st.in.item(), "", "", st.chosen_mode);
        const std::string flow = converting_units(st.ctx, st.in.item(), "", "", st.chosen_mode);
        if (i <= kCurvePoints) {
            m.CURH[static_cast<std::size_t>(i)] = head;
            m.CURQ[static_cast<std::size_t>(i)] = flow;
        }
    }
    st.in.rest_of_line();
}

template <class R>
std::vector<KeyDef<R>> curve_keys() {
    return {
        {"CURRPM", {D(CURRPM[1]), D(CURRPM[2]), W("rpm")}},
        {"CURDIA", {D(CURDIA[1]), D(CURDIA[2]), W("m")}},
    };
}

template <class R>
std::vector<KeyDef<R>> curve_point_keys() {
    return {
        {"CURNP", {I(HQ1)}},
        {"CURQ", array_slots<R, &R::CURQ, Kind::Case, 1, 10>({W("m3/h")})},
        {"CURH", array_slots<R, &R::CURH, Kind::Case, 1, 10>({W("m")})},
        {"CUREFF", array_slots<R, &R::CUREFF, Kind::Case, 1, 10>({W("fraction")})},
    };
}

std::vector<KeyDef<Pump>> pump_keys() {
    using R = Pump;
    std::vector<KeyDef<R>> curves = curve_keys<R>();
    curves.push_back({"CURC1", {I(CURC1)}});
    auto points = curve_point_keys<R>();
    curves.insert(curves.end(), points.begin(), points.end());
    curves.push_back({"CURNPSH", array_slots<R, &R::CURNPSH, Kind::Case, 1, 10>({W("m")})});
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"TYPE", {T(TYPE)}},
                          {"EFFP", {PM(EFFP)}},
                          {"EFFS", {PM(EFFS)}},
                          {"POW", {D(POW), W("kW")}},
                          {"HQACT", {D(HQACT[1]), W("m"), D(HQACT[3]), W("m3/h")}},
                      },
                      curves,
                      {
                          {"NPSHA13", {P(NPSHA13), W("m")}},
                          {"NPSHR13", {P(NPSHR13), W("m")}},
                          {"NPSHAF",
                           {I(NPSHAF[1]), I(NPSHAF[2]), I(NPSHA3), D(NPSHA4), W("kPag"), D(NPSHA6), W("m")}},
                          {"NPSHRE", {I(NPSHR1), I(NPSHR2), W("rpm"), I(NPSHR3)}},
                          {"NOTES", {NT(NOTES)}},
                          {"NPSHA", {T(NPSHA_names[1]), T(NPSHA_names[2])}, nullptr, nullptr, false},
                          {"NPSHAE", {}, skip_line<R>, nullptr, false},
                          {"NPSHR", {}, skip_line<R>, nullptr, false},
                          {"HQ", {}, read_old_curve<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Comp>> comp_keys() {
    using R = Comp;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"PRAT", {P(PRAT), W("")}},
                          {"QACT", {P(QACT), W("m3/h")}},
                          {"TYPE", {T(TYPE)}},
                          {"EFFC", {PM(EFFC)}},
                          {"EFFS", {PM(EFFS)}},
                          {"POW", {D(POW), W("kW")}},
                          {"HQACT", {D(HQACT[1]), W("m"), D(QACT.value), W("m3/h")}},
                      },
                      curve_keys<R>(), curve_point_keys<R>(),
                      {
                          {"NOTES", {NT(NOTES)}},
                          {"HQ", {}, read_old_curve<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Expand>> expand_keys() {
    using R = Expand;
    return concat<R>({two_port_head<R>(), {{"TYPE", {I(TYPE)}}}, con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"DPP", {D(DPP), W("kPag")}},
                          {"CHOKE", {I(CHOKE)}},
                          {"K", {D(K)}},
                          {"ANGLE", {D(ANGLE)}},
                      }});
}

// Junction and vessel nozzles: one line for each port, led by the port number.
enum class NozzleShape { Short, Full };

template <class R, NozzleShape S>
void read_nozzle_line(ReadState& st, std::array<Port, kNozzles + 1>& ports) {
    const int n = st.in.integer();
    Port scratch;
    Port& p = (n >= 1 && n <= kNozzles) ? ports[static_cast<std::size_t>(n)] : scratch;
    p.CON = st.in.integer();
    p.NozHeight = st.in.number();
    st.in.item();  // "m"
    if constexpr (S == NozzleShape::Full) {
        p.dPNoz = st.in.number();
        st.in.item();  // "kPag"
        p.dPLevel = st.in.number();
        p.dPFlow = st.in.number();
        p.KFlow = st.in.number();
        st.in.item();  // "kPag"
    }
}

template <NozzleShape S>
void write_nozzle_lines(LineWriter& lw, const char* key, const std::array<Port, kNozzles + 1>& ports) {
    for (int n = 1; n <= kNozzles; ++n) {
        const Port& p = ports[static_cast<std::size_t>(n)];
        lw.begin(key);
        lw.w.integer(n);
        lw.w.integer(p.CON);
        lw.w.number(p.NozHeight);
        lw.w.text("m");
        if constexpr (S == NozzleShape::Full) {
            lw.w.number(p.dPNoz);
            lw.w.text("kPag");
            lw.w.number(p.dPLevel);
            lw.w.number(p.dPFlow);
            lw.w.number(p.KFlow);
            lw.w.text("kPag");
        }
        lw.w.end_line();
    }
}

template <class R, NozzleShape S>
std::vector<KeyDef<R>> nozzle_keys() {
    return {
        {"NOZI", {}, +[](ReadState& st, R& r) { read_nozzle_line<R, S>(st, r.NOZI); },
         +[](LineWriter& lw, const R& r) { write_nozzle_lines<S>(lw, "NOZI", r.NOZI); }},
        {"NOZO", {}, +[](ReadState& st, R& r) { read_nozzle_line<R, S>(st, r.NOZO); },
         +[](LineWriter& lw, const R& r) { write_nozzle_lines<S>(lw, "NOZO", r.NOZO); }},
    };
}

template <class R>
std::vector<Slot<R>> port_xy_slots() {
    return {F(NOZI[1].X), F(NOZI[1].Y), F(NOZI[2].X), F(NOZI[2].Y), F(NOZI[3].X), F(NOZI[3].Y),
            F(NOZI[4].X), F(NOZI[4].Y), F(NOZO[1].X), F(NOZO[1].Y), F(NOZO[2].X), F(NOZO[2].Y),
            F(NOZO[3].X), F(NOZO[3].Y), F(NOZO[4].X), F(NOZO[4].Y)};
}

std::vector<KeyDef<Junc>> junc_keys() {
    using R = Junc;
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", port_xy_slots<R>()}},
                      drawn_head_keys<R>(),
                      {{"PRES", {P(PRES), W("kPag")}}},
                      nozzle_keys<R, NozzleShape::Short>()});
}

std::vector<KeyDef<Tee>> tee_keys() {
    using R = Tee;
    // The M and B lines carry the density of the combined side, as C does.
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", array_slots<R, &R::XY, Kind::Single, 1, 12>()}},
                      drawn_head_keys<R>(),
                      {
                          {"TYPE", {I(TYPE)}},
                          {"CON", array_slots<R, &R::CON, Kind::Int, 1, 6>()},
                          {"ELEV", {D(ELEV), W("m")}},
                          {"PRES", {D(PRES[1]), D(PRES[2]), D(PRES[3]), W("kPag")}},
                          {"DPP", {D(DPP[1]), D(DPP[2]), D(DPP[3]), W("kPag")}},
                          {"KCM", {P(KCM)}},
                          {"KCB", {P(KCB)}},
                          {"SPAC", {D(SPAC)}},
                          {"C", {I(C[1]), I(C[2]), D(C3), W("kg/m3")}},
                          {"M", {I(M[1]), I(M[2]), D(C3), W("kg/m3")}},
                          {"B", {I(B[1]), I(B[2]), D(C3), W("kg/m3")}},
                          {"NOTES", {NT(NOTES)}},
                      }});
}

std::vector<KeyDef<Vessel>> vessel_keys() {
    using R = Vessel;
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", port_xy_slots<R>()}},
                      drawn_head_keys<R>(),
                      {
                          {"TYPE", {T(TYPE)}},
                          {"PRES", {P(PRES), W("kPag")}},
                          {"LF", {P(LF)}},
                          {"ELEV", {D(ELEV), W("m")}},
                          {"LEVL", {C(LEVL1), W("m"), D(LEVL3), W("kg/m3"), T(LEVL5)}},
                          {"LEVM", {C(LEVM1), W("m"), D(LEVM3), W("kg/m3"), T(LEVM5)}},
                          {"LEVH", {C(LEVH1), W("m"), D(LEVH3), W("kg/m3"), T(LEVH5)}},
                          {"NOZN", {I(NOZN)}},
                      },
                      nozzle_keys<R, NozzleShape::Full>(),
                      {{"NOTES", {NT(NOTES)}}}});
}

std::vector<KeyDef<Symbol>> symbol_keys() {
    using R = Symbol;
    return {
        {"TYPE", {T(TYPE)}},
        {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()},
        {"TEXT", {NT(TEXT)}},
        {"COLOR", {I(COLOR)}},
        {"STYLL", {I(STYLL)}},
        {"STYLA", {I(STYLA)}},
        {"ANGL", {F(ANGL[1]), F(ANGL[2])}},
        {"FSIZ", {F(FSIZ)}},
    };
}

std::vector<KeyDef<Pseudo>> pseudo_keys() {
    using R = Pseudo;
    std::vector<Slot<R>> ant = array_slots<R, &R::ANT, Kind::Single, 1, 10>({W("kPaa")});
    auto range = array_slots<R, &R::ANT, Kind::Single, 12, 4>({W("K")});
    ant.insert(ant.end(), range.begin(), range.end());
    return {
        {"NAME", {I(NAME_NUM[1]), I(NAME_NUM[2]), FR(NAME_TEXT[1], 40), FR(NAME_TEXT[2], 40)}},
        {"FOR", {FR(FOR[1], 12), FR(FOR[2], 12)}},
        {"MW", {F(MW[1]), F(MW[2])}},
        {"TFP", {F(TFP[1]), F(TFP[2]), W("K")}},
        {"TBP", {F(TBP[1]), F(TBP[2]), W("K")}},
        {"TC", {F(TC[1]), F(TC[2]), W("K")}},
        {"PC", {F(PC[1]), F(PC[2]), W("kPaa")}},
        {"VC", {F(VC[1]), F(VC[2]), W("m3/kmol")}},
        {"ZC", {F(ZC[1]), F(ZC[2])}},
        {"ACC", {F(ACC[1]), F(ACC[2])}},
        {"DENS", {F(DENS[1]), F(DENS[2]), W("kg/m3")}},
        {"DENT", {F(DENT[1]), F(DENT[2]), W("kg/m3"), F(DENT[4]), F(DENT[5]), W("K")}},
        {"DIPM", {F(DIPM[1]), F(DIPM[2])}},
        {"CP", array_slots<R, &R::CP, Kind::Single, 1, 10>({W("kJ/kmol/K")})},
        {"VISC", array_slots<R, &R::VISC, Kind::Single, 1, 10>({W("cP_K")})},
        {"HVAP", {F(HVAP[1]), F(HVAP[2])}},
        {"HFOR", {F(HFOR[1]), F(HFOR[2])}},
        {"ANT", ant},
    };
}

// Pipe table: one DIA line for each size, led by the size number.
void read_pipe_size(ReadState& st, PipeData& pd) {
    const int n = st.in.integer();
    PipeSize scratch;
    PipeSize& size = (n >= 1 && n <= kPipeSizes) ? pd.DIA[static_cast<std::size_t>(n)] : scratch;
    size.name = st.in.item();
    size.OD = st.in.number();
    for (int j = 1; j <= kPipeSchedules; ++j) size.ID[static_cast<std::size_t>(j)] = st.in.number();
}

void write_pipe_sizes(LineWriter& lw, const PipeData& pd) {
    for (int n = 1; n <= kPipeSizes; ++n) {
        const PipeSize& size = pd.DIA[static_cast<std::size_t>(n)];
        lw.begin("DIA");
        lw.w.integer(n);
        lw.w.text(size.name);
        lw.w.number(size.OD);
        for (int j = 1; j <= kPipeSchedules; ++j) lw.w.number(size.ID[static_cast<std::size_t>(j)]);
        lw.w.end_line();
    }
}

std::vector<KeyDef<PipeData>> pipedata_keys() {
    using R = PipeData;
    return {
        {"MAT", {T(MAT)}},
        {"NOTES", {NT(NOTES)}},
        {"PROP", {L("0"), W("Units"), L("0"), W("Units")}},
        {"E", {D(E), W("m")}},
        {"NSS", {T(NSS)}},
        {"IDIA", {T(IDIA[1]), T(IDIA[2])}},
        {"SDIA",
         {D(SDIA_limit[1]), T(SDIA_sch[1]), D(SDIA_limit[2]), T(SDIA_sch[2]), D(SDIA_limit[3]), T(SDIA_sch[3]),
          W("m")}},
        {"UNITS", {T(UNITS)}},
        {"SCH", array_slots<R, &R::SCH, Kind::Text, 1, 20>()},
        {"DIA", {}, read_pipe_size, write_pipe_sizes},
    };
}

}  // namespace

#undef T
#undef FB
#undef FR
#undef NT
#undef C
#undef CM
#undef I
#undef F
#undef FZ
#undef D
#undef W
#undef L
#undef P
#undef PM

const std::vector<const SectionIO*>& vdf_sections() {
    static const HeaderSection gen(gen_keys());
    static const RecordSection<Line> pipe("\\PIPE", &Project::lines, pipe_keys());
    static const RecordSection<Feed> feed("\\FEED", &Project::feeds, feed_keys());
    static const RecordSection<Prod> prod("\\PROD", &Project::prods, prod_keys());
    static const RecordSection<Valve> valve("\\VALVE", &Project::valves, valve_keys());
    static const RecordSection<Check> check("\\CHECK", &Project::checks, check_keys());
    static const RecordSection<FO> fo("\\FO", &Project::fos, fo_keys());
    static const RecordSection<HX> hx("\\HX", &Project::hxs, hx_keys());
    static const RecordSection<Pump> pump("\\PUMP", &Project::pumps, pump_keys());
    static const RecordSection<Comp> comp("\\COMP", &Project::comps, comp_keys());
    static const RecordSection<Misc> misc("\\MISC", &Project::miscs, misc_keys());
    static const RecordSection<Expand> expand("\\EXPAND", &Project::expands, expand_keys());
    static const RecordSection<Junc> junc("\\JUNC", &Project::juncs, junc_keys());
    static const RecordSection<Tee> tee("\\TEE", &Project::tees, tee_keys());
    static const RecordSection<Vessel> vessel("\\VESSEL", &Project::vessels, vessel_keys());
    static const RecordSection<Symbol> symbol("\\SYMBOL", &Project::symbols, symbol_keys());
    static const ToolsSection tools;
    static const RecordSection<Pseudo> pseudo("\\PSEUDO", &Project::pseudos, pseudo_keys());
    static const RecordSection<PipeData> pipedata("\\PIPEDATA", &Project::pipedata, pipedata_keys(),
                                                  RecordSection<PipeData>::Grow::Plain, 1);
    static const std::vector<const SectionIO*> all = {&gen,  &pipe,   &feed, &prod,  &valve,  &check,  &fo,
                                                      &hx,   &pump,   &comp, &misc,  &expand, &junc,   &tee,
                                                      &vessel, &symbol, &tools, &pseudo, &pipedata};
    return all;
}

const SectionIO* find_section(std::string_view name) {
    for (const SectionIO* s : vdf_sections())
        if (s->name() == name) return s;
    return nullptr;
}

}  // namespace velm
