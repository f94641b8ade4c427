// The project file's sections: reading and writing key lines, the header and
// pipe keys, and the sections in writing order.
#include <cmath>
#include <utility>

#include "model/context.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "model/vdf_key_builders.hpp"
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

namespace vdf {

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
        // Directories for the reader's information: the settings never take them.
        {"DIRLIB", {T(DIRLIB)}},
        {"DIRINI", {T(DIRINI)}},
        {"DIRDAT", {T(DIRDAT)}},
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
        {"FILES", {},
         +[](ReadState& st, R& l) {
             for (std::size_t n = 1; n <= kLinkedFiles; ++n) l.FILES.set(n, st.in.item());
         },
         +[](LineWriter& lw, const R& l) {
             lw.begin("FILES");
             for (std::size_t n = 1; n <= kLinkedFiles; ++n) lw.w.text(l.FILES[n]);
             lw.w.end_line();
         }},
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

}  // namespace vdf

namespace {

using namespace vdf;

// ---------------------------------------------------------------------------
// The keys of one record kind, found by name, read and written.

template <class R>
class KeyTable {
public:
    explicit KeyTable(std::vector<KeyDef<R>> keys) : keys_(std::move(keys)) {
        for (const KeyDef<R>& k : keys_) names_.emplace_back(k.key);
        for (const KeyDef<R>& k : keys_)
            for (const Slot<R>& sl : k.slots)
                if (sl.s && (sl.kind == Kind::Case || sl.kind == Kind::CaseMode)) case_slots_.push_back({k.key, &sl});
    }
    KeyTable(const KeyTable&) = delete;  // case_slots_ points into keys_ and names_ at their keys
    KeyTable& operator=(const KeyTable&) = delete;
    bool knows(std::string_view key) const { return find(key) != nullptr; }
    std::vector<std::string_view> names() const {
        std::vector<std::string_view> out;
        for (const auto& k : keys_) out.push_back(k.key);
        return out;
    }
    void read(ReadState& st, R& rec, std::string_view key) const {
        const KeyDef<R>* k = find(key);
        if (k->read) k->read(st, rec);
        else read_slots(st, k->slots, rec);
    }
    // Visits each text slot (Text, Fixed, Notes, Case) of the record, with its key and kind.
    template <class F>
    void each_text(const R& rec, F&& visit) const {
        R& r = const_cast<R&>(rec);  // the accessors take a mutable record; only read here
        for (const KeyDef<R>& k : keys_)
            for (const Slot<R>& sl : k.slots)
                if (sl.s) visit(k.key, sl.kind, *sl.s(r));
    }
    // Visits each case string of the record (slots of kind Case and CaseMode),
    // with its key: what each_text visits of those kinds, found without a
    // walk through every key (the run's checks visit every record).
    template <class F>
    void each_case(const R& rec, F&& visit) const {
        R& r = const_cast<R&>(rec);  // the accessors take a mutable record; only read here
        for (const CaseSlot& c : case_slots_) visit(c.key, *c.slot->s(r));
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
    // Every line of a project file looks up its key here: the names are
    // compared as views of known length.
    const KeyDef<R>* find(std::string_view key) const {
        for (std::size_t i = 0; i < names_.size(); ++i)
            if (names_[i] == key) return &keys_[i];
        return nullptr;
    }
    std::vector<KeyDef<R>> keys_;
    std::vector<std::string_view> names_;  // the key of each entry of keys_
    struct CaseSlot {
        std::string_view key;
        const Slot<R>* slot;
    };
    std::vector<CaseSlot> case_slots_;  // into keys_, which does not change after construction
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
        if (grow_ == Grow::CopyTemplate) {
            // Each record built once as a copy of the template.
            const R templ = v[0];
            v.assign(static_cast<std::size_t>(n) + 1, templ);
            return;
        }
        v.resize(static_cast<std::size_t>(n) + 1);
    }
    bool knows(std::string_view key) const override { return keys_.knows(key); }
    std::vector<std::string_view> keys() const override { return keys_.names(); }
    std::size_t record_bytes(const Project& p) const override {
        const auto& v = p.*vec_;
        std::size_t bytes = sizeof(R);
        if (!v.empty()) keys_.each_text(v[0], [&](const char*, Kind, const std::string& t) { bytes += t.capacity(); });
        return bytes;
    }
    void each_case_text(const Project& p, const CaseTextVisitor& visit) const override {
        const auto& v = p.*vec_;
        for (std::size_t i = 1; i < v.size(); ++i) {
            std::string_view tag;
            if constexpr (requires { v[i].NAME; }) tag = v[i].NAME[1];
            keys_.each_case(v[i], [&](std::string_view key, const std::string& t) {
                if (!t.empty()) visit(static_cast<int>(i), tag, key, t);
            });
        }
    }
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
    std::vector<std::string_view> keys() const override { return keys_.names(); }
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
        for (std::string_view k : keys())
            if (key == k) return true;
        return false;
    }
    std::vector<std::string_view> keys() const override {
        return {"PIPEI", "PIPEOA", "PIPEOB", "VALVEI", "VALVEO", "FOI", "FOO", "PIPEO"};
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
