// Loading an Options dialog and its OK: the project header and run limits
// go through the same steps as an equipment record, driven by the dialog's
// table; the template dialogs are the equipment dialogs on element 0.
#include "dialogs/options.hpp"

#include <exception>

#include "dialogs/check_input.hpp"
#include "dialogs/options_table.hpp"
#include "model/context.hpp"
#include "model/settings.hpp"

namespace velm {
namespace dialog {
namespace {

// The kind whose template an Options command edits.
struct TemplateCommand {
    const char* name;
    const char* kind;
};

constexpr TemplateCommand kTemplates[] = {
    {"mnuOptionsLines", "Line"},    {"mnuOptionsFeeds", "Feed"},   {"mnuOptionsProducts", "Prod"},
    {"mnuOptionsValves", "Valve"},  {"mnuOptionsChecks", "Check"}, {"mnuOptionsPumps", "Pump"},
    {"mnuOptionsComp", "Comp"},     {"mnuOptionsFO", "FO"},        {"mnuOptionsHX", "HX"},
    {"mnuOptionsMisc", "Misc"},     {"mnuOptionsExpand", "Expand"}, {"mnuOptionsTee", "Tee"},
    {"mnuOptionsSplit", "Junc"},    {"mnuOptionsVessels", "Vessel"},
};

const char* template_kind(std::string_view name) {
    for (const TemplateCommand& t : kTemplates)
        if (name == t.name) return t.kind;
    return nullptr;
}

const OptionsDef* options_of(std::string_view name) {
    for (const OptionsDef* d : {&defaults_options(), &calcs_options(), &cases_options(), &title_options(),
                                &components_options()})
        if (name == d->name) return d;
    return nullptr;
}

OptionsState current(const Project& p, const RunContext& ctx) {
    return OptionsState{.gen = p.gen, .max_iter = ctx.max_iter, .soserror = ctx.soserror};
}

Dialog show_options(RunContext& ctx, const Project& p, const DisplayUnits& units, const OptionsDef& d) {
    const OptionsState st = current(p, ctx);
    Dialog dlg{.form = d.name, .kind = "Options", .index = 0, .fields = {}};
    for (const FieldDef<OptionsState>& f : d.fields) dlg.fields.push_back(show(ctx, f, st, units));
    if (d.decorate) d.decorate(ctx, p, dlg.fields);
    return dlg;
}

// An entry with a fixed list takes one of its choices, as the list spells it.
// Only a changed entry is judged: a value that stands is not the user's.
std::string check_choices(const std::vector<FieldDef<OptionsState>>& fields, const std::vector<bool>& changed,
                          TextMap& typed) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const FieldDef<OptionsState>& f = fields[i];
        if (!changed[i] || f.choices.empty() || f.store == Store::Flag || f.store == Store::IntChoice) continue;
        std::string& text = typed.texts[f.name];
        bool found = false;
        for (const std::string& c : f.choices)
            if (key_of(c) == key_of(text)) {
                text = c;
                found = true;
                break;
            }
        if (!found) return invalid_input(text);
    }
    return "";
}

// The value of a field as the settings file keeps it.
std::string stored_text(const FieldDef<OptionsState>& f, OptionsState& st) {
    switch (f.store) {
        case Store::Pair: return f.pair(st)->spec;
        case Store::Case:
        case Store::Text:
        case Store::Fixed:
        case Store::Notes: return *f.text(st);
        case Store::Number: return number_text(*f.number(st));
        case Store::Single: return single_text(*f.single(st));
        case Store::Integer:
        case Store::Flag:
        case Store::IntChoice: return std::to_string(*f.integer(st));
    }
    return "";
}

std::string apply_options(RunContext& ctx, Project& p, Settings& s, const DisplayUnits& units, const OptionsDef& d,
                          const Typed& texts) {
    // Texts shown by something other than the field's value (a name for a
    // number) are turned into what the field reads; one as on show stands.
    Typed given;
    if (d.typed_in != nullptr) {
        const Dialog shown = show_options(ctx, p, units, d);
        for (const auto& [name, text] : texts) {
            const DialogField* f = nullptr;
            for (const DialogField& g : shown.fields)
                if (g.name == name) f = &g;
            if (f == nullptr || text == f->text) continue;
            std::string t = text;
            if (std::string says = d.typed_in(ctx, p, t); !says.empty()) return says;
            given.emplace_back(name, std::move(t));
        }
    } else {
        given = texts;
    }

    const OptionsState before = current(p, ctx);
    TextMap typed;
    std::vector<bool> changed;
    typed_texts(ctx, d.fields, before, units, given, typed, changed);
    if (std::string says = check_entries(d.fields, typed, units, p.gen.PATM); !says.empty()) return says;
    if (std::string says = check_choices(d.fields, changed, typed); !says.empty()) return says;

    OptionsState edited = before;
    write_changed(ctx, d.fields, typed, changed, edited, units);
    if (d.finish) d.finish(edited, before, typed);
    if (d.rules)
        if (std::string says = d.rules(edited, before, typed); !says.empty()) return says;

    for (std::size_t i = 0; i < d.fields.size(); ++i) {
        if (!changed[i]) continue;
        for (const auto& [entry, key] : d.keys)
            if (entry == d.fields[i].name) s.set(key, stored_text(d.fields[i], edited));
    }
    p.gen = std::move(edited.gen);
    ctx.max_iter = edited.max_iter;
    ctx.soserror = edited.soserror;
    ctx.project_dirty = true;
    return "";
}

}  // namespace
}  // namespace dialog

std::optional<Dialog> load_options_dialog(RunContext& ctx, const Project& p, const Settings&,
                                          const DisplayUnits& units, std::string_view name) {
    if (const char* kind = dialog::template_kind(name)) return dialog::load_template(ctx, p, units, kind);
    if (const dialog::OptionsDef* d = dialog::options_of(name)) return dialog::show_options(ctx, p, units, *d);
    return std::nullopt;
}

std::string apply_options_dialog(RunContext& ctx, Project& p, Settings& s, const DisplayUnits& units,
                                 std::string_view name,
                                 const std::vector<std::pair<std::string, std::string>>& texts) {
    if (const char* kind = dialog::template_kind(name)) return dialog::apply_template(ctx, p, units, kind, texts);
    try {
        if (const dialog::OptionsDef* d = dialog::options_of(name))
            return dialog::apply_options(ctx, p, s, units, *d, texts);
    } catch (const std::exception& e) {
        return std::string("Error in OK = 0 : ") + e.what();
    }
    return "Error in OK = 1 : no dialog for " + std::string(name) + ".";
}

}  // namespace velm
