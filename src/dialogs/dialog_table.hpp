// The tables behind the equipment dialogs: how each entry of a kind reaches
// its record field, and the rules of the kind. Private to src/dialogs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dialogs/dialogs.hpp"
#include "model/case_data.hpp"
#include "model/records.hpp"

namespace velm {

struct RunContext;

namespace dialog {

// How an entry is held in the record.
enum class Store {
    Pair,       // case string and value in force; the text is the case string
    Case,       // a case string with no value beside it
    Text,       // plain text, trimmed on writing
    Fixed12,    // text of exactly 12 characters (fitting names)
    Notes,      // free text, written as typed
    Number,     // a double in internal units
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
    std::string letters;               // case letters the entry takes ("C", "E", "EV")
    std::vector<std::string> choices;  // fixed lists
};

// The typed texts of an OK, as the rules of a kind read them.
class Texts {
public:
    virtual ~Texts() = default;
    virtual const std::string& of(std::string_view name) const = 0;
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
    Fields& integer(const char* name, const char* label, int* (*a)(R&), const char* hint = "") {
        add(name, label, "Flow", "", hint, Store::Integer).integer = a;
        return *this;
    }
    Fields& text(const char* name, const char* label, std::string* (*a)(R&), const char* hint = "",
                 std::vector<std::string> choices = {}) {
        FieldDef<R>& f = add(name, label, "Text", "", hint, Store::Text);
        f.text = a;
        f.choices = std::move(choices);
        return *this;
    }
    Fields& fixed12(const char* name, const char* label, std::string* (*a)(R&)) {
        add(name, label, "Text", "", "", Store::Fixed12).text = a;
        return *this;
    }
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
                       const char* hint = "") {
        FieldDef<R>& f = add(name, label, "", "", hint, Store::IntChoice);
        f.integer = a;
        f.choices = std::move(choices);
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

}  // namespace dialog
}  // namespace velm
