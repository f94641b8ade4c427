// The pseudo component dialog: what the user enters of a petroleum cut (name,
// formula, normal boiling point, standard liquid density and what else is
// known) beside the estimate the program makes of every property.
#include <cmath>

#include "dialogs/check_input.hpp"
#include "dialogs/dialogs.hpp"
#include "model/context.hpp"
#include "model/records.hpp"
#include "model/text.hpp"
#include "thermo/components.hpp"

namespace velm {

namespace {

constexpr const char* kPseudoPrompt = "Define pseudo components. TBP and StdLiqDen (at 60F) are required.";

// A property of both halves: position 1 entered, position 2 estimated.
struct PseudoEntry {
    const char* name;
    const char* label;
    const char* unit;
    std::array<float, 3> Pseudo::*field;
};
constexpr PseudoEntry kEntries[] = {
    {"TBP", "Normal boiling point", "K", &Pseudo::TBP},   {"DENS", "Std liquid density", "kg/m3", &Pseudo::DENS},
    {"MW", "Molecular weight", "", &Pseudo::MW},           {"TC", "Critical temperature", "K", &Pseudo::TC},
    {"PC", "Critical pressure", "kPaa", &Pseudo::PC},      {"VC", "Critical volume", "m3/kmol", &Pseudo::VC},
    {"ACC", "Acentric factor", "", &Pseudo::ACC},
};

std::string shown(float v) { return v == 0.0f ? std::string() : single_text(v); }

DialogField entry(const char* name, const char* label, const char* unit, std::string text, std::string calculated) {
    DialogField f = plain_field(name, label, "General", std::move(text));
    f.unit = unit;
    f.hint = kPseudoPrompt;
    f.pair = !calculated.empty();
    f.calculated = std::move(calculated);
    return f;
}

}  // namespace

std::optional<Dialog> load_pseudo_dialog(const Project& p, int index) {
    if (index < 1 || index > count(p.pseudos)) return std::nullopt;
    const Pseudo& s = p.pseudos[static_cast<std::size_t>(index)];
    Dialog d{"frmPseudo", "Pseudo", index, {}};
    d.fields.push_back(entry("NAME", "Name", "", trim(s.NAME_TEXT[1]), ""));
    d.fields.push_back(entry("FOR", "Formula", "", trim(s.FOR[1]), ""));
    for (const PseudoEntry& e : kEntries) d.fields.push_back(entry(e.name, e.label, e.unit, shown((s.*e.field)[1]), shown((s.*e.field)[2])));
    d.fields[0].check = d.fields[1].check = "Text";
    return d;
}

std::string apply_pseudo_dialog(RunContext& ctx, Project& p, int index,
                                const std::vector<std::pair<std::string, std::string>>& texts) {
    const auto d = load_pseudo_dialog(p, index);
    if (!d) return "No equipment to edit.";
    Pseudo s = p.pseudos[static_cast<std::size_t>(index)];
    const std::string name = typed_text(texts, d->fields[0]);
    for (std::size_t k = 0; k < 2; ++k)
        if (std::string says = CheckInput("Text", "", typed_text(texts, d->fields[k])); !says.empty()) return says;
    s.NAME_TEXT[1] = name;
    s.FOR[1] = typed_text(texts, d->fields[1]);
    for (std::size_t k = 0; k < std::size(kEntries); ++k) {
        const std::string text = trim(typed_text(texts, d->fields[k + 2]));
        const auto v = parse_number(text);
        if (!text.empty() && (!v || !(*v >= 0.0) || !std::isfinite(*v)))
            return "Error during input checking. Invalid input= " + text + " .";
        (s.*kEntries[k].field)[1] = text.empty() ? 0.0f : static_cast<float>(*v);
    }
    if (!(s.TBP[1] > 0.0f) || !(s.DENS[1] > 0.0f))
        return "Error! Normal boiling point or Std liq density missing for component " + trim(name);
    p.pseudos[static_cast<std::size_t>(index)] = s;
    PseudoProps(ctx, p.pseudos);
    return "";
}

int add_pseudo(Project& p) {
    if (p.pseudos.empty()) return 0;
    Pseudo s = p.pseudos[0];
    const int n = count(p.pseudos) + 1;
    s.NAME_NUM = {0, 9000 + n, 9000 + n};
    s.NAME_TEXT[1] = s.NAME_TEXT[2] = "PSEUDO_" + std::to_string(n);
    p.pseudos.push_back(s);
    return n;
}

std::string delete_pseudo(Project& p, int index) {
    if (index < 1 || index > count(p.pseudos)) return "No equipment to edit.";
    const int number = kPseudoFirst + index;
    for (int k = 1; k <= kMaxComps; ++k)
        if (p.gen.COMP[static_cast<std::size_t>(k)] == number)
            return "Cannot delete pseudo component. Remove from project component list first.";
    // A pseudo component is known by its place: the later ones move up a
    // number, and so do their places in the component list.
    p.pseudos.erase(p.pseudos.begin() + index);
    for (int k = index; k <= count(p.pseudos); ++k) {
        Pseudo& s = p.pseudos[static_cast<std::size_t>(k)];
        s.NAME_NUM[1] = s.NAME_NUM[2] = kPseudoFirst + k;
    }
    for (int k = 1; k <= kMaxComps; ++k) {
        int& c = p.gen.COMP[static_cast<std::size_t>(k)];
        if (c > number) --c;
    }
    return "";
}

std::vector<std::string> pseudo_names(const Project& p) {
    std::vector<std::string> names;
    for (int k = 1; k <= count(p.pseudos); ++k) names.push_back(trim(p.pseudos[static_cast<std::size_t>(k)].NAME_TEXT[1]));
    return names;
}

}  // namespace velm
