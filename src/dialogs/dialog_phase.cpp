// The fluid dialog of a line: where its fluid comes from, the state and flash
// type of each end, the phase properties of each end and the composition;
// and its Flash command, which flashes the ends as typed with the project's
// engine and shows what the flash found, for OK to keep.
#include <charconv>
#include <string>
#include <utility>

#include "balance/balance.hpp"
#include "correlations/pipe.hpp"
#include "dialogs/dialog_table.hpp"
#include "model/context.hpp"
#include "model/text.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

using R = Line;

// The flash types a line end takes, shown from type 0.
const std::vector<std::string>& flash_types() {
    static const std::vector<std::string> k = {"0 Temperature and pressure",    "1 Temperature and pressure",
                                               "2 Pressure and liquid fraction", "3 Pressure and enthalpy",
                                               "4 Pressure and entropy",        "5 Temperature and liquid fraction"};
    return k;
}

// One value of end E (1 inlet, 2 outlet) as KEY + E.
template <auto Member, int E>
void at_end(Fields<R>& f, const char* key, const char* label, const char* check, const char* unit) {
    f.number((std::string(key) + std::to_string(E)).c_str(), label, check, unit, +[](R& r) { return &(r.*Member)[E]; });
}

// The state, flash type and phase properties of end E on a tab of its own.
template <int E>
void end_fields(Fields<R>& f) {
    f.tab(E == 1 ? "Inlet" : "Outlet")
        .int_choice((std::string("FT") + std::to_string(E)).c_str(), "Flash type", +[](R& r) { return &r.FT[E]; },
                    flash_types(), "What is given at this end: the flash finds the rest.", 0);
    at_end<&R::TEMP, E>(f, "TEMP", "Temperature", "Temp", "temperature");
    at_end<&R::PRES, E>(f, "PRES", "Pressure", "Pres", "pressure");
    at_end<&R::LF, E>(f, "LF", "Liquid fraction (mass)", "Ratio", "");
    at_end<&R::H, E>(f, "H", "Enthalpy", "Flow", "=kJ/kg");
    at_end<&R::S, E>(f, "S", "Entropy", "Flow", "=kJ/kg/K");
    at_end<&R::LIQDEN, E>(f, "LIQDEN", "Liquid density", "Flow", "density");
    at_end<&R::LIQVISC, E>(f, "LIQVISC", "Liquid viscosity", "Flow", "=cP");
    at_end<&R::LIQSUR, E>(f, "LIQSUR", "Surface tension", "Flow", "=dyne/cm");
    at_end<&R::LIQCON, E>(f, "LIQCON", "Liquid conductivity", "Flow", "conductivity");
    at_end<&R::LIQCP, E>(f, "LIQCP", "Liquid heat capacity", "Flow", "=kJ/kg/K");
    at_end<&R::LIQMW, E>(f, "LIQMW", "Liquid molecular weight", "Flow", "");
    at_end<&R::VAPDEN, E>(f, "VAPDEN", "Vapour density", "Flow", "density");
    at_end<&R::VAPVISC, E>(f, "VAPVISC", "Vapour viscosity", "Flow", "=cP");
    at_end<&R::VAPMW, E>(f, "VAPMW", "Vapour molecular weight", "Flow", "");
    at_end<&R::VAPZ, E>(f, "VAPZ", "Vapour Z", "Flow", "");
    at_end<&R::VAPK, E>(f, "VAPK", "Vapour Cp/Cv", "Flow", "");
    at_end<&R::VAPCON, E>(f, "VAPCON", "Vapour conductivity", "Flow", "conductivity");
    at_end<&R::VAPCP, E>(f, "VAPCP", "Vapour heat capacity", "Flow", "=kJ/kg/K");
}

// A composition of the line and what each place of it is shown as: the
// whole stream, or a phase at an end as the flash found it.
struct CompositionKey {
    const char* key;
    const char* suffix;
};
constexpr CompositionKey kCompositions[] = {
    {"COMP0", ""}, {"COMPIX0", ", liquid in"}, {"COMPIY0", ", vapour in"},
    {"COMPOX0", ", liquid out"}, {"COMPOY0", ", vapour out"},
};

// Mole fraction of place N of the project's component list in the
// composition Member, as KEY_N.
template <auto Member, int N>
void composition_place(Fields<R>& f, const char* key) {
    const std::string n = std::to_string(N);
    f.number((std::string(key) + "_" + n).c_str(), ("Component " + n).c_str(), "Ratio", "",
             +[](R& r) { return &(r.*Member)[N]; });
}

template <auto Member, std::size_t... I>
void composition(Fields<R>& f, const char* key, std::index_sequence<I...>) {
    (composition_place<Member, static_cast<int>(I) + 1>(f, key), ...);
}

// A place of a composition is shown by its component's name, and not at all
// beyond the project's components; any other field is shown as it is.
bool shown_place(DialogField& f, const FlashSetup& setup) {
    for (const CompositionKey& c : kCompositions) {
        const std::string key = std::string(c.key) + "_";
        if (f.name.rfind(key, 0) != 0) continue;
        std::size_t place = 0;
        std::from_chars(f.name.data() + key.size(), f.name.data() + f.name.size(), place);
        if (place < 1 || place > setup.count()) return false;
        f.label = setup.comps[place].Name + c.suffix;
    }
    return true;
}

std::vector<FieldDef<R>> phase_fields() {
    Fields<R> f;
    f.result_text("NAME1", "Line", A(NAME[1]))
        .integer("REFLINE", "Fluid of line number", A(REFLINE), "Line whose fluid this line takes. 0 for its own.")
        .flag("OUTIN", "Outlet apart from inlet", A(OUTIN), "Select to hold outlet properties apart from inlet.");
    end_fields<1>(f);
    end_fields<2>(f);
    constexpr auto places = std::make_index_sequence<kMaxComps>{};
    f.tab("Composition");
    composition<&R::COMP0>(f, "COMP0", places);
    f.number("TOTMW", "Molecular weight of the mixture", "Flow", "", A(TOTMW));
    f.tab("Phases");
    composition<&R::COMPIX0>(f, "COMPIX0", places);
    composition<&R::COMPIY0>(f, "COMPIY0", places);
    composition<&R::COMPOX0>(f, "COMPOX0", places);
    composition<&R::COMPOY0>(f, "COMPOY0", places);
    return f.done();
}

std::string phase_rules(RunContext&, const Project& p, const R& line, const Texts& typed) {
    return line_fluid_given(p, line, typed) ? "" : "Composition and Liquid Fraction is required for every line.";
}

// The engines the dialog's flash can call.
bool flash_supported(const Header& gen) {
    const std::string m = key_of(gen.MFLASH);
    return m == "VELM" || m == "HYSYS";
}

// The last line the run log took: the words of a failed flash.
std::string last_log_line(const std::string& log) {
    std::string_view t = log;
    while (!t.empty() && (t.back() == '\n' || t.back() == '\r')) t.remove_suffix(1);
    const std::size_t nl = t.find_last_of('\n');
    return std::string(nl == std::string_view::npos ? t : t.substr(nl + 1));
}

// Flashes end e of line L for the dialog. What the flash type gives stays
// as typed (a pressure does not come back through absolute and gauge with a
// last digit changed), and the vapour density is the one the run will use.
bool flash_end(RunContext& ctx, Project& p, const FlashSetup& setup, int L, int e) {
    Line& l = p.lines[static_cast<std::size_t>(L)];
    const auto i = static_cast<std::size_t>(e);
    const double typed_t = l.TEMP[i], typed_p = l.PRES[i];
    const int ft = l.FT[i];
    if (!FlashLineEnd(ctx, p, setup, L, e, kFlashTraceLog)) return false;
    if (ft == 0 || ft == kFlashTP || ft == kFlashTF) l.TEMP[i] = typed_t;
    if (ft != kFlashTF) l.PRES[i] = typed_p;
    l.VAPDEN[i] = l.LF[i] < 1.0 ? vapor_density(ctx, p.gen, l.VAPZ[i], l.VAPMW[i], l.PRES[i], l.TEMP[i]) : 0.0;
    return true;
}

}  // namespace

bool line_fluid_given(const Project& p, const Line& line, const Texts& typed) {
    if (line.REFLINE != 0) return true;
    if (trim_view(typed.of("LF1")).empty()) return false;
    const std::string flash = key_of(p.gen.MFLASH);
    if (flash.empty() || flash == "NONE") return true;
    bool components = false;
    for (int i = 1; i <= kMaxComps; ++i) components = components || p.gen.COMP[static_cast<std::size_t>(i)] != 0;
    if (!components) return true;
    double total = 0.0;
    for (int i = 1; i <= kMaxComps; ++i) total += line.COMP0[static_cast<std::size_t>(i)];
    return total > 0.0;
}

const KindDef<Line>& phase_dialog() {
    static const KindDef<R> k{"frmPhase", &Project::lines, phase_fields(), phase_rules};
    return k;
}

}  // namespace velm::dialog

namespace velm {

std::optional<Dialog> load_phase_dialog(RunContext& ctx, const Project& p, const DisplayUnits& units, int index) {
    std::optional<Dialog> d = load_dialog(ctx, p, units, "Phase", index);
    if (!d) return d;
    // The compositions show the project's components by name, and no place beyond them.
    FlashSetup setup;
    LoadFlashSetup(ctx, p, library_dir_from_environment(), setup);
    std::vector<DialogField> kept;
    for (DialogField& f : d->fields)
        if (dialog::shown_place(f, setup)) kept.push_back(std::move(f));
    d->fields = std::move(kept);
    return d;
}

std::string flash_phase_dialog(RunContext& ctx, Project& p, const DisplayUnits& units, int index,
                               const std::vector<std::pair<std::string, std::string>>& texts) {
    if (std::string says = apply_dialog(ctx, p, units, "Phase", index, texts); !says.empty()) return says;
    if (!dialog::flash_supported(p.gen)) return "Error! Flash method does not support this operation.";
    const Line& line = p.lines[static_cast<std::size_t>(index)];
    if (line.REFLINE != 0) return "The fluid of this line is that of line " + std::to_string(line.REFLINE) + ".";
    FlashSetup setup;
    LoadFlashSetup(ctx, p, library_dir_from_environment(), setup);
    if (key_of(p.gen.MFLASH) == "HYSYS" && !HysysStart(ctx, setup, ctx.data_dir)) return dialog::last_log_line(ctx.run_log_text);
    const int ends = line.OUTIN != 0 ? 2 : 1;
    for (int e = 1; e <= ends; ++e)
        if (!dialog::flash_end(ctx, p, setup, index, e)) return dialog::last_log_line(ctx.run_log_text);
    return "";
}

}  // namespace velm
