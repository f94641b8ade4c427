// The component library of the project's flash engine, record by record: a
// component chosen by name, each of its fields by its label, and a changed
// field stored in the library file after the user's yes.
#include <cmath>
#include <iterator>

#include "dialogs/dialogs.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/number_format.hpp"
#include "model/records.hpp"
#include "model/text.hpp"
#include "thermo/components.hpp"

namespace velm {
namespace {

constexpr const char* kStoreHint = "Hit ENTER to store new value.";

// A float of the record with its text label.
struct LibraryEntry {
    const char* name;
    const char* label;
    float CompProp::*field;
};
constexpr LibraryEntry kEntries[] = {
    {"MW", "MW", &CompProp::MW},
    {"TFP", "TFP(K)", &CompProp::TFP},
    {"TBP", "TBP(K)", &CompProp::TBP},
    {"TC", "TC (K)", &CompProp::TC},
    {"PC", "PC(kPaa)", &CompProp::PC},
    {"VC", "VC(m3/kmol)", &CompProp::VC},
    {"ZC", "ZC", &CompProp::ZC},
    {"Acc", "Acc", &CompProp::Acc},
    {"LDenStd", "StdLiqDen(kg/m3)", &CompProp::LDenStd},
    {"LDen", "LiqDen(kg/m3)", &CompProp::LDen},
    {"TDen", "LiqDen T(K)", &CompProp::TDen},
    {"DIPM", "DipoleMoment", &CompProp::DIPM},
    {"CpA", "CpA (kJ/", &CompProp::CpA},
    {"CpB", "CpB  kmol", &CompProp::CpB},
    {"CpC", "CpC  K)", &CompProp::CpC},
    {"CpD", "CpD", &CompProp::CpD},
    {"CpE", "CpE", &CompProp::CpE},
    {"ViscType", "ViscType", &CompProp::ViscType},
    {"ViscA", "ViscA(cP)", &CompProp::ViscA},
    {"ViscB", "ViscB", &CompProp::ViscB},
    {"ViscC", "ViscC", &CompProp::ViscC},
    {"ViscD", "ViscD", &CompProp::ViscD},
    {"HVap", "HVap(J/mol)", &CompProp::HVap},
    {"HFor", "HFor(kJ/mol)", &CompProp::HFor},
    {"AntA", "AntA(kPaa)", &CompProp::AntA},
    {"AntB", "AntB", &CompProp::AntB},
    {"AntC", "AntC", &CompProp::AntC},
    {"AntD", "AntD", &CompProp::AntD},
    {"AntE", "AntE", &CompProp::AntE},
    {"AntTMin", "AntTMin(K)", &CompProp::AntTMin},
    {"AntTMax", "AntTMax(K)", &CompProp::AntTMax},
};

// The prophys.lib record holds a name, a formula and a mole weight only.
bool full_record(const Project& p) { return key_of(p.gen.MFLASH) == "VELM"; }

CompLibrary library_of(const Project& p) {
    CompLibrary lib;
    lib.mflash = p.gen.MFLASH;
    lib.dir = library_dir_from_environment();
    return lib;
}

DialogField entry(const char* name, const char* label, std::string text, bool readonly = false) {
    DialogField f = plain_field(name, label, "Record", std::move(text));
    f.hint = readonly ? "" : kStoreHint;
    f.readonly = readonly;
    return f;
}

}  // namespace

bool library_supported(const Project& p) {
    const std::string m = key_of(p.gen.MFLASH);
    return m == "VELM" || m == "HYSYS";
}

std::optional<Dialog> load_library_dialog(RunContext& ctx, const Project& p, int number) {
    if (!library_supported(p)) return std::nullopt;
    const CompLibrary lib = library_of(p);
    std::vector<std::string> names;
    GetCompNames(ctx, lib, names);
    if (number < 1 || number >= static_cast<int>(names.size())) return std::nullopt;
    CompProp c;
    GetComp(ctx, lib, number, c);
    Dialog d{.form = "Edit library", .kind = "Library", .index = number, .fields = {}};
    DialogField pick = entry("COMPONENT", "Component", std::to_string(number) + " " + c.Name);
    pick.hint = "";
    for (std::size_t k = 1; k < names.size(); ++k) pick.choices.push_back(std::to_string(k) + " " + names[k]);
    d.fields.push_back(std::move(pick));
    d.fields.push_back(entry("Number", "Number", std::to_string(c.Number), true));
    d.fields.push_back(entry("Name", "Name", c.Name));
    d.fields.push_back(entry("Formula", "Formula", c.Formula));
    if (!full_record(p)) {
        d.fields.push_back(entry("MW", "MW", single_text(c.MW)));
        return d;
    }
    for (const LibraryEntry& e : kEntries) d.fields.push_back(entry(e.name, e.label, single_text(c.*e.field)));
    return d;
}

std::string apply_library_dialog(RunContext& ctx, Interaction& io, const Project& p, int number,
                                 const std::vector<std::pair<std::string, std::string>>& texts) {
    const auto d = load_library_dialog(ctx, p, number);
    if (!d) return "Error! Flash method does not support this operation.";
    const CompLibrary lib = library_of(p);
    CompProp c;
    GetComp(ctx, lib, number, c);
    bool changed = false;
    for (const DialogField& f : d->fields) {
        const std::string& text = typed_text(texts, f);
        if (f.readonly || f.name == "COMPONENT" || text == f.text) continue;
        changed = true;
        if (f.name == "Name") c.Name = trim(text).substr(0, 40);
        else if (f.name == "Formula") c.Formula = trim(text).substr(0, 12);
        else
            for (const LibraryEntry& e : kEntries)
                if (f.name == e.name) {
                    const auto v = read_locale_number(trim(text));
                    if (!v || !std::isfinite(*v) || std::abs(*v) > 3.4e38)
                        return "Error in updating props = " + fault_text(Fault{kFaultTypeMismatch, "Type mismatch"});
                    c.*e.field = static_cast<float>(*v);
                }
    }
    if (!changed) return "";
    if (io.ask("Update library with new value ?", {"Yes", "No"}) != 0) return "";
    if (const std::string says = UpdateCompRecord(ctx, lib, number, c); !says.empty()) return "Error in updating props = " + says;
    return "";
}

}  // namespace velm
