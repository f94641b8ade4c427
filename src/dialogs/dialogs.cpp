// Loading a dialog from its record and the OK that writes it back: the same
// steps for every kind, driven by the kind's field table.
#include "dialogs/dialogs.hpp"

#include <algorithm>
#include <cmath>
#include <exception>
#include <map>

#include "dialogs/check_input.hpp"
#include "dialogs/dialog_table.hpp"
#include "model/context.hpp"
#include "model/number_format.hpp"
#include "model/text.hpp"

namespace velm {
namespace dialog {

int cases_of(std::initializer_list<std::string_view> texts) {
    int n = 1;
    for (std::string_view t : texts) n = std::max(n, case_count(t));
    return n;
}

namespace {

// A quantity of the display units and the internal unit its records hold.
struct UnitClass {
    const char* name;
    const char* internal;
    std::string DisplayUnits::*shown;
};

constexpr UnitClass kUnitClasses[] = {
    {"pressure", "kPag", &DisplayUnits::pressure},
    {"length", "m", &DisplayUnits::length},
    {"diameter", "m", &DisplayUnits::diameter},
    {"temperature", "C", &DisplayUnits::temperature},
    {"mass_flow", "t/h", &DisplayUnits::mass_flow},
    {"liquid_volume_flow", "m3/h", &DisplayUnits::liquid_volume_flow},
    {"gas_volume_flow", "m3/h", &DisplayUnits::gas_volume_flow},
    {"density", "kg/m3", &DisplayUnits::density},
    {"head", "m", &DisplayUnits::head},
    {"gradient", "kPa/100m", &DisplayUnits::gradient},
    {"velocity", "m/s", &DisplayUnits::velocity},
    {"duty", "kJ/h", &DisplayUnits::duty},
    {"heat_transfer_coefficient", "W/m2/K", &DisplayUnits::heat_transfer_coefficient},
    {"conductivity", "W/m/K", &DisplayUnits::conductivity},
};

}  // namespace

EntryUnit unit_of(const std::string& spec, const DisplayUnits& units) {
    if (spec.empty()) return {};
    if (spec[0] == '=') return {"", spec.substr(1), spec.substr(1)};
    for (const UnitClass& c : kUnitClasses)
        if (spec == c.name) return {c.name, units.*c.shown, c.internal};
    return {};
}

double shown_value(RunContext& ctx, double v, const EntryUnit& u) {
    if (u.shown == u.internal) return v;
    if (u.temperature()) return UnitsTFunc(ctx, v, u.internal, u.shown);
    return convert_value(ctx, v, u.internal, u.shown);
}

std::string shown_number(RunContext& ctx, double v, const EntryUnit& u) { return number_text(shown_value(ctx, v, u)); }

double internal_number(RunContext& ctx, const std::string& text, const EntryUnit& u) {
    const double v = read_display_number(trim(text));
    if (u.shown == u.internal) return v;
    if (u.temperature()) return UnitsTFunc(ctx, v, u.shown, u.internal);
    return convert_value(ctx, v, u.shown, u.internal);
}

std::string shown_case(RunContext& ctx, const std::string& text, const EntryUnit& u) {
    if (u.shown == u.internal) return converting_units(ctx, text, "", "", 0);
    return converting_units(ctx, text, u.internal, u.shown, 0);
}

std::string internal_case(RunContext& ctx, const std::string& text, const EntryUnit& u) {
    if (u.shown == u.internal) return converting_units(ctx, text, "", "", 0);
    return converting_units(ctx, text, u.shown, u.internal, 0);
}

std::string check_entry(const std::string& kind, const std::string& unit, const std::string& text, bool is_case,
                        const std::string& letters, double patm) {
    if (kind.empty()) return "";
    if (!is_case) return CheckInput(kind, unit, text, patm);
    const int n = case_count(text);
    for (int i = 1; i <= n; ++i) {
        const std::string entry = getting_case_data(text, i);
        if (entry.empty()) continue;
        const std::string cap = upper(entry);
        if (cap.size() == 1 && letters.find(cap[0]) != std::string::npos) continue;
        std::string says = CheckInput(kind, unit, entry, patm);
        if (!says.empty()) return says;
    }
    return "";
}

namespace {

// Records lowest..count of a kind have a dialog: 1 for the records, 0 for the template too.
template <class R>
std::optional<Dialog> load_kind(RunContext& ctx, const Project& p, const DisplayUnits& units, const KindDef<R>& k,
                                std::string_view kind, int index, int lowest) {
    const std::vector<R>& recs = p.*k.records;
    if (index < lowest || index > count(recs) || recs.empty()) return std::nullopt;
    const R& rec = recs[static_cast<std::size_t>(index)];
    Dialog d{.form = k.form, .kind = std::string(kind), .index = index, .fields = {}};
    for (const FieldDef<R>& f : k.fields) d.fields.push_back(show(ctx, f, rec, units));
    if (k.decorate) k.decorate(p, rec, d.fields);
    return d;
}

template <class R>
std::string apply_kind(RunContext& ctx, Project& p, const DisplayUnits& units, const KindDef<R>& k,
                       std::string_view kind, int index, int lowest,
                       const std::vector<std::pair<std::string, std::string>>& given) {
    std::vector<R>& recs = p.*k.records;
    if (index < lowest || index > count(recs) || recs.empty())
        return "Error in OK = 1 : no " + std::string(kind) + " record " + std::to_string(index) + ".";
    R& rec = recs[static_cast<std::size_t>(index)];

    TextMap typed;
    typed.template_record = index == 0;
    std::vector<bool> changed;
    typed_texts(ctx, k.fields, rec, units, given, typed, changed);
    if (std::string says = check_entries(k.fields, typed, units, p.gen.PATM); !says.empty()) return says;

    if (index > 0) {
        const std::string name = key_of(typed.of("NAME1"));
        for (int i = 1; i <= count(recs); ++i)
            if (i != index && key_of(recs[static_cast<std::size_t>(i)].NAME[1]) == name)
                return std::is_same_v<R, Line> ? "Error! Line number not unique." : "Error! Equipment number not unique.";
    }

    R edited = rec;
    write_changed(ctx, k.fields, typed, changed, edited, units);
    if (k.finish) k.finish(edited, rec);
    if (k.rules) {
        std::string says = k.rules(ctx, p, edited, typed);
        if (!says.empty()) return says;
    }
    rec = std::move(edited);
    ctx.project_dirty = true;
    return "";
}

// Calls f with the table of the kind; false for a kind with no dialog.
template <class F>
bool with_kind(std::string_view kind, F&& f) {
    if (kind == "Feed") return f(feed_dialog()), true;
    if (kind == "Prod") return f(prod_dialog()), true;
    if (kind == "Line") return f(line_dialog()), true;
    if (kind == "Valve") return f(valve_dialog()), true;
    if (kind == "Check") return f(check_dialog()), true;
    if (kind == "Pump") return f(pump_dialog()), true;
    if (kind == "Comp") return f(comp_dialog()), true;
    if (kind == "FO") return f(fo_dialog()), true;
    if (kind == "HX") return f(hx_dialog()), true;
    if (kind == "Misc") return f(misc_dialog()), true;
    if (kind == "Expand") return f(expand_dialog()), true;
    if (kind == "Tee") return f(tee_dialog()), true;
    if (kind == "Junc") return f(junc_dialog()), true;
    if (kind == "Vessel") return f(vessel_dialog()), true;
    if (kind == "Phase") return f(phase_dialog()), true;
    return false;
}

// The OK of record `index` (from `lowest`) of a kind, its faults told as the dialog's.
std::string apply_record(RunContext& ctx, Project& p, const DisplayUnits& units, std::string_view kind, int index,
                         int lowest, const std::vector<std::pair<std::string, std::string>>& texts) {
    std::string says;
    try {
        if (!with_kind(kind, [&](const auto& k) { says = apply_kind(ctx, p, units, k, kind, index, lowest, texts); }))
            says = "Error in OK = 1 : no dialog for " + std::string(kind) + ".";
    } catch (const std::exception& e) {
        says = std::string("Error in OK = 0 : ") + e.what();
    }
    return says;
}

}  // namespace

std::optional<Dialog> load_template(RunContext& ctx, const Project& p, const DisplayUnits& units,
                                    std::string_view kind) {
    std::optional<Dialog> d;
    with_kind(kind, [&](const auto& k) { d = load_kind(ctx, p, units, k, kind, 0, 0); });
    return d;
}

std::string apply_template(RunContext& ctx, Project& p, const DisplayUnits& units, std::string_view kind,
                           const std::vector<std::pair<std::string, std::string>>& texts) {
    return apply_record(ctx, p, units, kind, 0, 0, texts);
}

}  // namespace dialog

std::optional<Dialog> load_dialog(RunContext& ctx, const Project& p, const DisplayUnits& units, std::string_view kind,
                                  int index) {
    std::optional<Dialog> d;
    dialog::with_kind(kind, [&](const auto& k) { d = dialog::load_kind(ctx, p, units, k, kind, index, 1); });
    return d;
}

std::string apply_dialog(RunContext& ctx, Project& p, const DisplayUnits& units, std::string_view kind, int index,
                         const std::vector<std::pair<std::string, std::string>>& texts) {
    return dialog::apply_record(ctx, p, units, kind, index, 1, texts);
}

std::vector<std::string> unit_choices(std::string_view unit_class) {
    static const std::vector<std::pair<std::string_view, std::vector<std::string>>> kChoices = {
        {"pressure", {"kPag", "kPa", "barg", "bara", "psig", "psia", "kg/cm2g", "mmHg", "Pag", "MPag"}},
        {"length", {"m", "ft", "mm", "in"}},
        {"head", {"m", "ft"}},
        {"diameter", {"mm", "m", "in", "ft"}},
        {"temperature", {"C", "F", "K", "R"}},
        {"mass_flow", {"kg/h", "t/h", "lb/h", "kg/s", "klb/h"}},
        {"liquid_volume_flow", {"m3/h", "USGPM", "l/s", "m3/d", "bbl/d"}},
        {"gas_volume_flow", {"m3/h", "ft3/h", "m3/s"}},
        {"density", {"kg/m3", "lb/ft3"}},
        {"velocity", {"m/s", "ft/s"}},
        {"gradient", {"kPa/100m", "psi/100ft", "bar/km"}},
        {"duty", {"kJ/h", "GJ/h", "kW", "MW", "Btu/h"}},
        {"heat_transfer_coefficient", {"W/m2/K", "Btu/h/ft2/F"}},
        {"conductivity", {"W/m/K", "Btu/h/ft/F"}},
    };
    std::vector<std::string> out;
    for (const auto& [cls, names] : kChoices)
        if (cls == unit_class)
            for (const std::string& n : names)
                if (cls == "temperature" || is_known_unit(n)) out.push_back(n);
    return out;
}

bool set_class_unit(DisplayUnits& units, std::string_view unit_class, const std::string& unit) {
    const std::vector<std::string> choices = unit_choices(unit_class);
    if (std::find(choices.begin(), choices.end(), unit) == choices.end()) return false;
    for (const dialog::UnitClass& c : dialog::kUnitClasses)
        if (unit_class == c.name) units.*c.shown = unit;
    return true;
}

std::string convert_entry(RunContext& ctx, const std::string& text, std::string_view unit_class, const std::string& from,
                          const std::string& to) {
    using dialog::EntryUnit;
    const EntryUnit internal = dialog::unit_of(std::string(unit_class), DisplayUnits{});
    if (internal.cls.empty() || from == to) return text;
    const EntryUnit a{internal.cls, from, internal.internal}, b{internal.cls, to, internal.internal};
    if (!internal.temperature()) return dialog::shown_case(ctx, dialog::internal_case(ctx, text, a), b);
    // Temperatures convert entry by entry with their offsets; letters and empty entries stay.
    std::string out;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(';', start);
        const std::string entry = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        out += parse_number(entry) ? dialog::shown_number(ctx, dialog::internal_number(ctx, entry, a), b) : entry;
        if (end == std::string::npos) return out;
        out += ';';
        start = end + 1;
    }
}

DialogField plain_field(std::string name, std::string label, std::string tab, std::string text) {
    DialogField f;
    f.name = std::move(name);
    f.label = std::move(label);
    f.tab = std::move(tab);
    f.text = std::move(text);
    return f;
}

const std::string& typed_text(const std::vector<std::pair<std::string, std::string>>& texts, const DialogField& f) {
    for (const auto& [name, text] : texts)
        if (name == f.name) return text;
    return f.text;
}

std::vector<std::string> equation_forms(std::string_view kind) {
    if (kind != "Line" && kind != "Feed" && kind != "Prod") return {};
    std::vector<std::string> forms = {
        "Eqn 1: W = C1 + C2*W, with W=t/h, pipes only",
        "Eqn 2: P = C1 + C2*P, with P=kPag, equip only",
        "Eqn 3: P = C2*(1 - (W/C1)^C3), with W=t/h, P=kPaa",
        "Eqn 4: P = C2*(1 - (W/C1)^C3)^0.5, with W=t/h, P=kPaa",
    };
    if (kind != "Line") forms.push_back("Eqn 5: dP = C1 + C2*W^2, with P=kPa, W=t/h. Prod dP only");
    return forms;
}

}  // namespace velm
