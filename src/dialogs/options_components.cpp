// The project's component list: thirty places, each shown by the name of
// its component in the library of the project's flash method (or of a
// pseudo component), a name typed landing as its number.
#include <string>

#include "dialogs/check_input.hpp"
#include "dialogs/options_table.hpp"
#include "model/text.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"

namespace velm::dialog {
namespace {

using R = OptionsState;

template <int N>
void place(Fields<R>& f) {
    const std::string n = std::to_string(N);
    f.integer(("COMP" + n).c_str(), ("Component " + n).c_str(), +[](R& r) { return &r.gen.COMP[N]; });
}

template <std::size_t... I>
std::vector<FieldDef<R>> places(std::index_sequence<I...>) {
    Fields<R> f;
    f.tab("Components");
    (place<static_cast<int>(I) + 1>(f), ...);
    return f.done();
}

// The components of the project's flash method and its pseudo components.
struct Library {
    std::vector<CompProp> pseudo;
    CompLibrary lib;
    explicit Library(const Project& p) : pseudo(pseudo_sets(p)) {
        lib.mflash = p.gen.MFLASH;
        lib.dir = library_dir_from_environment();
        lib.pseudo = pseudo;
    }
};

void show_names(RunContext& ctx, const Project& p, std::vector<DialogField>& fields) {
    const Library l(p);
    std::vector<std::string> names;
    GetCompNames(ctx, l.lib, names);
    std::vector<std::string> choices = {""};
    for (std::size_t k = 1; k < names.size(); ++k)
        if (!names[k].empty()) choices.push_back(names[k]);
    for (std::size_t k = 1; k < l.pseudo.size(); ++k) choices.push_back(l.pseudo[k].Name);
    for (DialogField& d : fields) {
        // The text on show is the stored component number; anything else shows as no component.
        const auto number = parse_number(d.text);
        const int n = number && *number >= 0.0 && *number < 1.0e6 ? static_cast<int>(*number) : 0;
        const auto k = static_cast<std::size_t>(n);
        if (n == 0)
            d.text.clear();
        else if (n > 0 && k < names.size() && !names[k].empty())
            d.text = names[k];
        else if (n > kPseudoFirst && k - kPseudoFirst < l.pseudo.size())
            d.text = l.pseudo[k - kPseudoFirst].Name;
        d.choices = choices;
    }
}

std::string number_of(RunContext& ctx, const Project& p, std::string& text) {
    if (trim_view(text).empty()) {
        text = "0";
        return "";
    }
    const int n = comp_number_by_name(ctx, Library(p).lib, text);
    if (n == 0) return invalid_input(text);
    text = std::to_string(n);
    return "";
}

// The list holds its components from place 1 on: a place emptied closes up.
void close_up(R& edited, const R& before, const Texts&) {
    if (edited.gen.COMP == before.gen.COMP) return;
    std::size_t to = 1;
    for (std::size_t k = 1; k <= kMaxComps; ++k)
        if (edited.gen.COMP[k] != 0) edited.gen.COMP[to++] = edited.gen.COMP[k];
    for (; to <= kMaxComps; ++to) edited.gen.COMP[to] = 0;
}

}  // namespace

const OptionsDef& components_options() {
    static const OptionsDef d{.name = "mnuOptionsKomp",
                              .fields = places(std::make_index_sequence<kMaxComps>{}),
                              .keys = {},
                              .decorate = show_names,
                              .typed_in = number_of,
                              .finish = close_up};
    return d;
}

}  // namespace velm::dialog
