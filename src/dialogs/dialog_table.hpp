// The tables behind the equipment dialogs: how each entry of a kind reaches
// its record field, and the rules of the kind. Private to src/dialogs.
#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialogs/dialogs.hpp"
#include "model/case_data.hpp"
#include "model/number_format.hpp"
#include "model/records.hpp"
#include "model/text.hpp"

namespace velm {

struct RunContext;

namespace dialog {

// How an entry is held in the record.
enum class Store {
    Pair,       // case string and value in force; the text is the case string
    Case,       // a case string with no value beside it
    Text,       // plain text, trimmed on writing
    Fixed,      // text of exactly `width` characters (fitting names, title lines)
    Notes,      // free text, written as typed
    Number,     // a double in internal units
    Single,     // a float in internal units (sheet sizes)
    Integer,    // a whole number
    Flag,       // 0 or -1, shown "No" or "Yes"
    IntChoice,  // a whole number 1..n shown as the n-th choice
};

template <class R>
struct FieldDef {
    std::string name, label, check;
    std::string unit;  // a unit class of the display units ("pressure"), or "=word" for a fixed unit word
    std::string hint, tab;
    Store store = Store::Text;
    Pair* (*pair)(R&) = nullptr;
    std::string* (*text)(R&) = nullptr;
    double* (*number)(R&) = nullptr;
    int* (*integer)(R&) = nullptr;
    float* (*single)(R&) = nullptr;
    int width = 0;                     // characters of a Fixed text
    std::string letters;               // case letters the entry takes ("C", "E", "EV")
    std::vector<std::string> choices;  // fixed lists
    int first = 1;                     // value of the first choice of an IntChoice
    bool readonly = false;             // a value the run or a flash calculates, shown and never written
    std::string format;                // display pattern of a read-only number ("0.0#"), "" for all digits
};

// The typed texts of an OK, as the rules of a kind read them.
class Texts {
public:
    virtual ~Texts() = default;
    virtual const std::string& of(std::string_view name) const = 0;
    // The OK is of a template record (element 0), which stands on no sheet.
    virtual bool of_template() const { return false; }
};

template <class R>
struct KindDef {
    const char* form;
    std::vector<R> Project::*records;
    std::vector<FieldDef<R>> fields;
    // The rules of the kind on the record as it would be written; "" when it may be written.
    std::string (*rules)(RunContext&, const Project&, const R&, const Texts&) = nullptr;
    // Choices that depend on the project (pipe materials, sizes, schedules).
    void (*decorate)(const Project&, const R&, std::vector<DialogField>&) = nullptr;
    // Fields that follow the ones written (the edited record and the record before).
    void (*finish)(R&, const R&) = nullptr;
};

// Builds a field list in dialog order, each field on the tab last named.
template <class R>
class Fields {
public:
    Fields& tab(const char* name) {
        tab_ = name;
        return *this;
    }
    Fields& pair(const char* name, const char* label, const char* check, const char* unit, Pair* (*a)(R&),
                 const char* hint = "", const char* letters = "") {
        FieldDef<R>& f = add(name, label, check, unit, hint, Store::Pair);
        f.pair = a;
        f.letters = letters;
        return *this;
    }
    Fields& cases(const char* name, const char* label, const char* check, const char* unit, std::string* (*a)(R&),
                  const char* hint = "", const char* letters = "") {
        FieldDef<R>& f = add(name, label, check, unit, hint, Store::Case);
        f.text = a;
        f.letters = letters;
        return *this;
    }
    Fields& number(const char* name, const char* label, const char* check, const char* unit, double* (*a)(R&),
                   const char* hint = "") {
        add(name, label, check, unit, hint, Store::Number).number = a;
        return *this;
    }
    Fields& single(const char* name, const char* label, const char* check, const char* unit, float* (*a)(R&),
                   const char* hint = "") {
        add(name, label, check, unit, hint, Store::Single).single = a;
        return *this;
    }
    Fields& integer(const char* name, const char* label, int* (*a)(R&), const char* hint = "",
                    std::vector<std::string> choices = {}) {
        FieldDef<R>& f = add(name, label, "Flow", "", hint, Store::Integer);
        f.integer = a;
        f.choices = std::move(choices);
        return *this;
    }
    Fields& text(const char* name, const char* label, std::string* (*a)(R&), const char* hint = "",
                 std::vector<std::string> choices = {}) {
        FieldDef<R>& f = add(name, label, "Text", "", hint, Store::Text);
        f.text = a;
        f.choices = std::move(choices);
        return *this;
    }
    Fields& fixed(const char* name, const char* label, std::string* (*a)(R&), int width, const char* hint = "") {
        FieldDef<R>& f = add(name, label, "Text", "", hint, Store::Fixed);
        f.text = a;
        f.width = width;
        return *this;
    }
    Fields& fixed12(const char* name, const char* label, std::string* (*a)(R&)) { return fixed(name, label, a, 12); }
    Fields& notes(std::string* (*a)(R&)) {
        tab("Notes");
        add("NOTES", "Notes", "", "", "", Store::Notes).text = a;
        return *this;
    }
    Fields& flag(const char* name, const char* label, int* (*a)(R&), const char* hint = "") {
        FieldDef<R>& f = add(name, label, "", "", hint, Store::Flag);
        f.integer = a;
        f.choices = {"No", "Yes"};
        return *this;
    }
    Fields& int_choice(const char* name, const char* label, int* (*a)(R&), std::vector<std::string> choices,
                       const char* hint = "", int first = 1) {
        FieldDef<R>& f = add(name, label, "", "", hint, Store::IntChoice);
        f.integer = a;
        f.choices = std::move(choices);
        f.first = first;
        return *this;
    }
    // A calculated value, shown in its unit (by the pattern when one is given) and never written.
    Fields& result(const char* name, const char* label, const char* unit, double* (*a)(R&),
                   const char* format = "") {
        FieldDef<R>& f = add(name, label, "", unit, "", Store::Number);
        f.number = a;
        f.readonly = true;
        f.format = format;
        return *this;
    }
    // A calculated flag ("Yes" when set) or text, never written.
    Fields& result_flag(const char* name, const char* label, int* (*a)(R&)) {
        flag(name, label, a);
        fields_.back().readonly = true;
        return *this;
    }
    Fields& result_text(const char* name, const char* label, std::string* (*a)(R&)) {
        text(name, label, a);
        fields_.back().readonly = true;
        return *this;
    }
    // The name and description that head every dialog.
    Fields& names() {
        tab("General");
        text("NAME1", "Name", +[](R& r) { return &r.NAME[1]; });
        text("NAME2", "Description", +[](R& r) { return &r.NAME[2]; });
        return *this;
    }
    std::vector<FieldDef<R>> done() { return std::move(fields_); }

private:
    FieldDef<R>& add(const char* name, const char* label, const char* check, const char* unit, const char* hint,
                     Store store) {
        FieldDef<R> f;
        f.name = name;
        f.label = label;
        f.check = check;
        f.unit = unit;
        f.hint = hint;
        f.tab = tab_;
        f.store = store;
        fields_.push_back(std::move(f));
        return fields_.back();
    }
    std::vector<FieldDef<R>> fields_;
    std::string tab_ = "General";
};

// The unit of an entry: its class (or "" for a fixed word), the word shown and
// the internal word. A fixed word is both; no conversion takes place.
struct EntryUnit {
    std::string cls, shown, internal;
    bool temperature() const { return cls == "temperature"; }
};

// The unit of a field's unit spec ("pressure", "=rpm" or "") in the display units.
EntryUnit unit_of(const std::string& spec, const DisplayUnits& units);
// A value in the unit shown.
double shown_value(RunContext& ctx, double v, const EntryUnit& u);
// A value shown with all its digits, so that a text taken back reads the same number.
std::string shown_number(RunContext& ctx, double v, const EntryUnit& u);
double internal_number(RunContext& ctx, const std::string& text, const EntryUnit& u);
// A case string between two units; a fixed unit word takes no factor.
std::string shown_case(RunContext& ctx, const std::string& text, const EntryUnit& u);
std::string internal_case(RunContext& ctx, const std::string& text, const EntryUnit& u);
// CheckInput on an entry; a case string is judged entry by entry, its empty
// entries and the letters it takes passing.
std::string check_entry(const std::string& kind, const std::string& unit, const std::string& text, bool is_case,
                        const std::string& letters, double patm);

class TextMap : public Texts {
public:
    std::map<std::string, std::string, std::less<>> texts;
    bool template_record = false;
    bool of_template() const override { return template_record; }
    const std::string& of(std::string_view name) const override {
        static const std::string none;
        const auto it = texts.find(name);
        return it == texts.end() ? none : it->second;
    }
};

// An entry of a record as the dialog shows it.
template <class R>
DialogField show(RunContext& ctx, const FieldDef<R>& f, const R& rec, const DisplayUnits& units) {
    R& r = const_cast<R&>(rec);  // the accessors take a mutable record; only read here
    const EntryUnit u = unit_of(f.unit, units);
    DialogField d;
    d.name = f.name;
    d.label = f.label;
    d.check = f.check;
    d.unit_class = u.cls;
    d.unit = u.shown;
    d.hint = f.hint;
    d.tab = f.tab;
    d.width = f.width;
    d.choices = f.choices;
    d.readonly = f.readonly;
    switch (f.store) {
        case Store::Pair:
            d.pair = true;
            d.text = shown_case(ctx, f.pair(r)->spec, u);
            d.calculated = shown_number(ctx, f.pair(r)->value, u);
            break;
        case Store::Case: d.text = shown_case(ctx, *f.text(r), u); break;
        case Store::Text: d.text = *f.text(r); break;
        case Store::Fixed: d.text = trim_right(*f.text(r)); break;
        case Store::Notes: d.text = *f.text(r); break;
        case Store::Number:
            d.text = f.format.empty() ? shown_number(ctx, *f.number(r), u)
                                      : format_number(shown_value(ctx, *f.number(r), u), f.format);
            break;
        case Store::Single: d.text = shown_number(ctx, static_cast<double>(*f.single(r)), u); break;
        case Store::Integer: d.text = std::to_string(*f.integer(r)); break;
        case Store::Flag: d.text = *f.integer(r) != 0 ? "Yes" : "No"; break;
        case Store::IntChoice: {
            const int v = *f.integer(r) - f.first;
            d.text = v >= 0 && v < static_cast<int>(f.choices.size()) ? f.choices[static_cast<std::size_t>(v)]
                                                                       : std::to_string(*f.integer(r));
            break;
        }
    }
    return d;
}

// A typed text written into its field in internal units.
template <class R>
void write(RunContext& ctx, const FieldDef<R>& f, R& r, const std::string& text, const DisplayUnits& units) {
    const EntryUnit u = unit_of(f.unit, units);
    switch (f.store) {
        case Store::Pair: f.pair(r)->spec = internal_case(ctx, text, u); break;
        case Store::Case: *f.text(r) = internal_case(ctx, text, u); break;
        case Store::Text: *f.text(r) = trim(text); break;
        case Store::Fixed: *f.text(r) = fixed_width(trim(text), static_cast<std::size_t>(f.width)); break;
        case Store::Notes: *f.text(r) = text; break;
        case Store::Number: *f.number(r) = internal_number(ctx, text, u); break;
        case Store::Single: *f.single(r) = static_cast<float>(internal_number(ctx, text, u)); break;
        case Store::Integer: *f.integer(r) = static_cast<int>(std::lround(read_display_number(trim(text)))); break;
        case Store::Flag: *f.integer(r) = key_of(text) == "YES" ? -1 : 0; break;
        case Store::IntChoice: {
            for (std::size_t i = 0; i < f.choices.size(); ++i)
                if (key_of(text) == key_of(f.choices[i])) {
                    *f.integer(r) = static_cast<int>(i) + f.first;
                    return;
                }
            *f.integer(r) = static_cast<int>(std::lround(read_display_number(trim(text))));
            break;
        }
    }
}

// The texts of an OK on one record: each entry as typed, or as on show when
// not given; changed[i] tells that entry i differs from its text on show.
template <class R>
void typed_texts(RunContext& ctx, const std::vector<FieldDef<R>>& fields, const R& rec, const DisplayUnits& units,
                 const std::vector<std::pair<std::string, std::string>>& given, TextMap& typed,
                 std::vector<bool>& changed) {
    changed.clear();
    for (const FieldDef<R>& f : fields) {
        const std::string on_show = show(ctx, f, rec, units).text;
        std::string text = on_show;
        for (const auto& [name, t] : given)
            if (name == f.name && !f.readonly) text = t;
        changed.push_back(text != on_show);
        typed.texts[f.name] = text;
    }
}

// CheckInput on every entry in the dialog's order: the first message, or "".
template <class R>
std::string check_entries(const std::vector<FieldDef<R>>& fields, const TextMap& typed, const DisplayUnits& units,
                          double patm) {
    for (const FieldDef<R>& f : fields) {
        if (f.readonly) continue;
        const bool is_case = f.store == Store::Pair || f.store == Store::Case;
        std::string says = check_entry(f.check, unit_of(f.unit, units).shown, typed.of(f.name), is_case, f.letters, patm);
        if (!says.empty()) return says;
    }
    return "";
}

// The changed entries written into the record.
template <class R>
void write_changed(RunContext& ctx, const std::vector<FieldDef<R>>& fields, const TextMap& typed,
                   const std::vector<bool>& changed, R& rec, const DisplayUnits& units) {
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (changed[i]) write(ctx, fields[i], rec, typed.of(fields[i].name), units);
}

// The user equation of a line or boundary, on its own tab.
template <class R>
void equation_fields(Fields<R>& f) {
    f.tab("Equation")
        .integer("EQN1", "Equation number", +[](R& r) { return &r.EQN.EQN1; }, "Enter equation number (1, 2, etc).")
        .text("EQN2", "Pipe for flow", +[](R& r) { return &r.EQN.EQN2; }, "Enter pipe number for flow (W).")
        .text("EQN4", "Equipment for pressure", +[](R& r) { return &r.EQN.EQN4; }, "Enter equip number for pres (P).")
        .integer("EQN5", "Pressure index", +[](R& r) { return &r.EQN.EQN5; })
        .number("EQN6", "C1", "Flow", "", +[](R& r) { return &r.EQN.EQN6; }, "Constant value. MUST match internal units (t/h, kPa).")
        .number("EQN7", "C2", "Flow", "", +[](R& r) { return &r.EQN.EQN7; }, "Constant value. MUST match internal units (t/h, kPa).")
        .number("EQN8", "C3", "Flow", "", +[](R& r) { return &r.EQN.EQN8; }, "Constant value. MUST match internal units (t/h, kPa).");
}

// Number of cases a rule looks at: the most entries of any of the texts.
int cases_of(std::initializer_list<std::string_view> texts);
// The entry for case n is given (a number or a letter).
inline bool given(std::string_view text, int n) { return is_specified(text, n); }

// The dialog of the template record (element 0) of a kind and its OK: the
// same entries and rules as a record's, but no name of the kind to keep
// unique, since the template's name is the prefix of new records' names.
std::optional<Dialog> load_template(RunContext& ctx, const Project& p, const DisplayUnits& units,
                                    std::string_view kind);
std::string apply_template(RunContext& ctx, Project& p, const DisplayUnits& units, std::string_view kind,
                           const std::vector<std::pair<std::string, std::string>>& texts);

// The dialog tables of each kind.
const KindDef<Feed>& feed_dialog();
const KindDef<Prod>& prod_dialog();
const KindDef<Line>& line_dialog();
const KindDef<Valve>& valve_dialog();
const KindDef<Check>& check_dialog();
const KindDef<FO>& fo_dialog();
const KindDef<HX>& hx_dialog();
const KindDef<Misc>& misc_dialog();
const KindDef<Expand>& expand_dialog();
const KindDef<Pump>& pump_dialog();
const KindDef<Comp>& comp_dialog();
const KindDef<Tee>& tee_dialog();
const KindDef<Junc>& junc_dialog();
const KindDef<Vessel>& vessel_dialog();
const KindDef<Line>& phase_dialog();

// The fluid of a line comes from another line, or it must be given: a liquid
// fraction always, and a composition when the project lists components for
// its flashes.
bool line_fluid_given(const Project& p, const Line& line, const Texts& typed);

}  // namespace dialog
}  // namespace velm
