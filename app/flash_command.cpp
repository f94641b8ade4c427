#include "app/flash_command.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

#include "app/commands.hpp"
#include "app/console.hpp"
#include "model/number_format.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"
#include "thermo/flash_algorithms.hpp"

namespace velm {

namespace {

// Thrown for input the command refuses: the message is printed and the
// command exits with status 2.
struct BadInput {
    std::string message;
};

struct FlashType {
    const char* name;
    int ft;
    const char* first;   // the two values the flash is given
    const char* second;
};

constexpr FlashType kFlashTypes[] = {
    {"TP", kFlashTP, "T", "P"}, {"PF", kFlashPF, "P", "LF"}, {"TF", kFlashTF, "T", "LF"},
    {"PH", kFlashPH, "P", "H"}, {"PS", kFlashPS, "P", "S"},
};

// "25", "25 C", or the two words "25" and "C": the number and the unit word
// after it (empty when none).
std::pair<double, std::string> quantity(const std::string& option, const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& w : words) text += (text.empty() ? "" : " ") + w;
    text = trim(text);
    const std::size_t blank = text.find_first_of(" \t");
    const std::string number = text.substr(0, blank);
    const std::string unit = blank == std::string::npos ? std::string() : trim(text.substr(blank));
    const std::optional<double> v = parse_number(number);
    if (!v || !std::isfinite(*v) || unit.find_first_of(" \t") != std::string::npos)
        throw BadInput{"--" + option + ": '" + text + "' is not a number with an optional unit word."};
    return {*v, unit};
}

// Temperature in K from a value in K, C, F or R (K when no word is given).
double kelvin(RunContext& ctx, const std::vector<std::string>& words) {
    const auto [value, unit] = quantity("T", words);
    if (unit.empty() || unit == "K") return value;
    if (unit == "C" || unit == "F" || unit == "R") return UnitsTFunc(ctx, value, unit, "K");
    throw BadInput{"--T: unknown temperature unit '" + unit + "'; use K, C, F or R."};
}

// Pressure in kPa absolute from a value in one of the pressure words (kPa
// absolute when none); a gauge word adds the atmospheric pressure patm, kPa.
double kpa_absolute(RunContext& ctx, const std::vector<std::string>& words, double patm) {
    const auto [value, unit] = quantity("P", words);
    if (unit.empty()) return value;
    const PressureWord* w = pressure_word(unit);
    if (w == nullptr) throw BadInput{"--P: unknown pressure unit '" + unit + "'; use " + pressure_word_list() + "."};
    return value / get_units(ctx, w->name) + (w->gauge ? patm : 0.0);
}

bool is_digits(const std::string& s) {
    return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// The components a flash can name: the library's, and a project's pseudo
// components (numbers from 9001).
struct ComponentNames {
    std::vector<std::string> library;  // library[k]: the name of number k
    std::vector<CompProp> pseudo;      // pseudo[k]: pseudo component 9000 + k

    std::string name(int number) const {
        if (number > kPseudoFirst) return trim(pseudo[static_cast<std::size_t>(number - kPseudoFirst)].Name);
        return trim(library[static_cast<std::size_t>(number)]);
    }
};

// The number of a name (any case) or of a number written out; 0 when there
// is no such component.
int component_number(const ComponentNames& names, const std::string& entry) {
    const int count = static_cast<int>(names.library.size());
    const int pseudos = static_cast<int>(names.pseudo.size());
    if (is_digits(entry)) {
        if (entry.size() > 6) return 0;
        const int k = std::stoi(entry);
        if (k > kPseudoFirst && k - kPseudoFirst < pseudos) return k;
        return k >= 1 && k < count && !trim(names.library[static_cast<std::size_t>(k)]).empty() ? k : 0;
    }
    const std::string wanted = upper(entry);
    for (int k = 1; k < count; ++k)
        if (upper(names.name(k)) == wanted && !wanted.empty()) return k;
    for (int k = 1; k < pseudos; ++k)
        if (upper(names.name(kPseudoFirst + k)) == wanted && !wanted.empty()) return kPseudoFirst + k;
    return 0;
}

// The component numbers of the --comp entries. An entry may list several
// components separated by commas; since some library names hold commas
// ("1,2-Dichloropropane"), the longest run of pieces that names a component
// is taken first.
std::vector<int> component_numbers(const ComponentNames& names, const std::vector<std::string>& entries) {
    std::vector<int> ids;
    for (const std::string& entry : entries) {
        std::vector<std::string> pieces;
        for (std::size_t at = 0;;) {
            const std::size_t comma = entry.find(',', at);
            pieces.push_back(trim(entry.substr(at, comma == std::string::npos ? std::string::npos : comma - at)));
            if (comma == std::string::npos) break;
            at = comma + 1;
        }
        for (std::size_t first = 0; first < pieces.size();) {
            std::size_t last = pieces.size();
            int number = 0;
            for (; last > first && number == 0; --last) {
                std::string joined = pieces[first];
                for (std::size_t k = first + 1; k < last; ++k) joined += "," + pieces[k];
                number = component_number(names, joined);
            }
            if (number == 0 && is_digits(pieces[first]))
                throw BadInput{"the library has no component number " + pieces[first] + "; 'velm components' lists them."};
            if (number == 0)
                throw BadInput{"unknown component '" + pieces[first] + "'; 'velm components' lists the library."};
            if (std::find(ids.begin(), ids.end(), number) != ids.end())
                throw BadInput{"component '" + names.name(number) + "' is given twice."};
            ids.push_back(number);
            first = last + 1;
        }
    }
    return ids;
}

const FlashType& flash_type(const std::string& name) {
    for (const FlashType& t : kFlashTypes)
        if (upper(name) == t.name) return t;
    throw BadInput{"--type must be TP, PF, TF, PH or PS."};
}

bool given(const FlashOptions& opt, const std::string& value) {
    return std::find(opt.given.begin(), opt.given.end(), value) != opt.given.end();
}

// The setup of a new project, or of --project, with the methods of the
// flags and the components of --comp; the stream with the values the flash
// type needs.
void prepare(RunContext& ctx, const FlashOptions& opt, FlashSetup& setup, FlashStream& s) {
    Project project;
    NewProject(project);
    if (!opt.project.empty() && !load_project(ctx, project, opt.project))
        throw BadInput{"the project " + opt.project + " cannot be used."};
    flash_methods(project.gen, setup);
    if (!opt.kvalue.empty()) setup.MFLASHK = upper(opt.kvalue);
    if (!opt.enthalpy.empty()) setup.MFLASHH = upper(opt.enthalpy);

    const FlashType& type = flash_type(opt.type);
    std::string missing;
    for (const char* value : {type.first, type.second})
        if (!given(opt, value)) missing += (missing.empty() ? "--" : " and --") + std::string(value);
    if (!missing.empty()) throw BadInput{std::string("a ") + type.name + " flash needs " + missing + "."};

    ComponentNames names;
    names.pseudo = pseudo_sets(project);
    CompLibrary lib;
    lib.mflash = setup.MFLASH;
    lib.dir = library_dir_from_environment();
    lib.pseudo = names.pseudo;
    GetCompNames(ctx, lib, names.library);
    const std::vector<int> ids = component_numbers(names, opt.comp);
    if (ids.size() > static_cast<std::size_t>(kMaxComps))
        throw BadInput{"at most " + std::to_string(kMaxComps) + " components can be flashed."};
    if (ids.size() != opt.z.size())
        throw BadInput{std::to_string(ids.size()) + " components (--comp) but " + std::to_string(opt.z.size()) +
                       " mole fractions (--z)."};
    setup.ids.assign(1, 0);
    setup.ids.insert(setup.ids.end(), ids.begin(), ids.end());
    GetCompData(ctx, lib, setup.ids, setup.comps, setup.kij);

    s.NAME = "1";
    s.FT = type.ft;
    for (std::size_t i = 0; i < opt.z.size(); ++i) {
        if (!std::isfinite(opt.z[i])) throw BadInput{"--z: a mole fraction must be a finite number."};
        if (!(opt.z[i] >= 0.0)) throw BadInput{"--z: a mole fraction cannot be negative."};
        s.Z[i + 1] = opt.z[i];
    }
    // Values the type does not fix are start values of its search.
    if (given(opt, "T")) s.T = kelvin(ctx, opt.T);
    if (given(opt, "P")) s.P = kpa_absolute(ctx, opt.P, setup.PATM);
    flash_search_start(s);
    if (given(opt, "LF")) {
        if (!(opt.LF >= 0.0 && opt.LF <= 1.0)) throw BadInput{"--LF: the liquid fraction lies between 0 and 1."};
        s.LF = opt.LF;
    }
    if (!std::isfinite(opt.H) || !std::isfinite(opt.S)) throw BadInput{"--H and --S take finite numbers."};
    s.H = opt.H;
    s.S = opt.S;

    const std::string fault = flash_input_fault(setup, s);
    if (!fault.empty()) {
        std::string text = fault;
        const double sum = composition_sum(s);
        if (std::abs(sum - 1.0) > kFlashSumTolerance)
            text += " The mole fractions of --z sum to " + format_number(sum, "0.0#####") +
                    "; they must sum to 1 within " + number_text(kFlashSumTolerance) + ".";
        throw BadInput{text};
    }
}

std::vector<double> over_components(const Comps& x, std::size_t n) { return {x.begin() + 1, x.begin() + 1 + n}; }

// Every field of the stream, named as in FlashStream; compositions over the
// components given.
nlohmann::ordered_json stream_json(const FlashSetup& setup, const FlashStream& s) {
    const std::size_t n = setup.count();
    nlohmann::ordered_json j;
    j["NAME"] = s.NAME;
    j["T"] = s.T;
    j["P"] = s.P;
    j["LF"] = s.LF;
    j["VF"] = s.VF;
    j["Resid"] = s.Resid;
    j["H"] = s.H;
    j["HV"] = s.HV;
    j["HL"] = s.HL;
    j["S"] = s.S;
    j["FT"] = s.FT;
    j["TOTMW"] = s.TOTMW;
    j["LIQDEN"] = s.LIQDEN;
    j["LIQMW"] = s.LIQMW;
    j["LIQVISC"] = s.LIQVISC;
    j["LIQSUR"] = s.LIQSUR;
    j["LIQCON"] = s.LIQCON;
    j["LIQCP"] = s.LIQCP;
    j["VAPDEN"] = s.VAPDEN;
    j["VAPMW"] = s.VAPMW;
    j["VAPZ"] = s.VAPZ;
    j["VAPVISC"] = s.VAPVISC;
    j["VAPK"] = s.VAPK;
    j["VAPCON"] = s.VAPCON;
    j["VAPCP"] = s.VAPCP;
    j["Z"] = over_components(s.Z, n);
    j["X"] = over_components(s.X, n);
    j["Y"] = over_components(s.Y, n);
    j["Trace"] = s.Trace;
    return j;
}

}  // namespace

int command_flash(const FlashOptions& opt) {
    ConsoleInteraction ui(ReadOptions{});
    RunContext ctx(ui);
    FlashSetup setup;
    FlashStream s;
    try {
        prepare(ctx, opt, setup, s);
    } catch (const BadInput& e) {
        std::cerr << "velm flash: " << e.message << "\n";
        return 2;
    }
    if (!Flash(ctx, setup, s)) return 1;  // Flash has told why
    if ((s.FT == kFlashPH || s.FT == kFlashPS) && !(s.T >= kPropertySearchTmin && s.T <= kPropertySearchTmax)) {
        std::cerr << "velm flash: no temperature between " << kPropertySearchTmin << " and " << kPropertySearchTmax
                  << " K gives the " << (s.FT == kFlashPH ? "enthalpy" : "entropy") << " asked for.\n";
        return 1;
    }
    if (opt.json) {
        std::cout << stream_json(setup, s).dump(2) << "\n";
    } else {
        for (const std::string& line : flash_report_lines(setup, s)) std::cout << line << "\n";
    }
    return 0;
}

int command_components(const std::string& filter) {
    ConsoleInteraction ui(ReadOptions{});
    RunContext ctx(ui);
    CompLibrary lib;
    lib.mflash = "VELM";
    lib.dir = library_dir_from_environment();
    std::vector<std::string> names;
    GetCompNames(ctx, lib, names);
    const std::string wanted = upper(trim(filter));
    int shown = 0;
    for (std::size_t k = 1; k < names.size(); ++k) {
        const std::string name = trim(names[k]);
        if (name.empty() || upper(name).find(wanted) == std::string::npos) continue;
        CompProp c;
        GetComp(ctx, lib, static_cast<int>(k), c);
        if (shown++ == 0)
            std::printf("%4s  %-38s %-12s %9s %8s %8s %9s\n%4s  %-38s %-12s %9s %8s %8s %9s\n", "No", "Name",
                        "Formula", "MW", "TBP", "TC", "PC", "", "", "", "kg/kmol", "K", "K", "kPa");
        std::printf("%4zu  %-38s %-12s %9.3f %8.2f %8.2f %9.1f\n", k, name.c_str(), trim(c.Formula).c_str(), c.MW,
                    c.TBP, c.TC, c.PC);
    }
    if (shown == 0) {
        std::cerr << "velm components: no component name contains '" << trim(filter) << "'.\n";
        return 1;
    }
    return 0;
}

ThermoCommands::ThermoCommands(CLI::App& app) {
    flash_cmd_ = app.add_subcommand("flash", "Flash a mixture of library components and print the results");
    auto* f = flash_cmd_;
    f->add_option("--comp", flash_.comp, "Components: library names (any case) or numbers, separated by commas")
        ->required();
    f->add_option("--z", flash_.z, "Mole fractions in the order of --comp, separated by commas")
        ->required()
        ->delimiter(',');
    f->add_option("--type", flash_.type, "TP, PF, TF, PH or PS: the two values given")->required();
    f->add_option("--T", flash_.T, "Temperature: K, or a value and C, F, R or K (\"25 C\")")->expected(1, 2);
    f->add_option("--P", flash_.P, "Pressure: kPa absolute, or a value and a unit word (\"10 barg\", \"1 atm\")")
        ->expected(1, 2);
    f->add_option("--LF", flash_.LF, "Liquid fraction by weight, 0 (vapour) to 1 (liquid)");
    f->add_option("--H", flash_.H, "Enthalpy, kJ/kg");
    f->add_option("--S", flash_.S, "Entropy, kJ/kg/K");
    f->add_option("--kvalue", flash_.kvalue, "K-value method: SRK or ANTOINE")
        ->check(CLI::IsMember({"SRK", "ANTOINE"}, CLI::ignore_case));
    f->add_option("--enthalpy", flash_.enthalpy, "Enthalpy method: SRK, IDEAL or WS97")
        ->check(CLI::IsMember({"SRK", "IDEAL", "WS97"}, CLI::ignore_case));
    f->add_option("--project", flash_.project,
                  "A project file: its flash methods, and its pseudo components by name (PSEUDO_1) or number (9001)");
    f->add_flag("--json", flash_.json, "Print every field of the flashed stream as one JSON object");

    components_cmd_ = app.add_subcommand("components", "List the component library");
    components_cmd_->add_option("text", filter_, "Show only names that contain this text (any case)");
}

std::optional<int> ThermoCommands::run() {
    if (*components_cmd_) return command_components(filter_);
    if (!*flash_cmd_) return std::nullopt;
    for (const char* value : {"T", "P", "LF", "H", "S"})
        if (flash_cmd_->count(std::string("--") + value) > 0) flash_.given.emplace_back(value);
    return command_flash(flash_);
}

}  // namespace velm
