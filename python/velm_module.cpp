// The engine as a Python module (_velm): projects opened, changed by their
// project-file keys, saved and run; the results of each line in display units.
// The pure-Python package velm (python/velm) builds its tables and studies on it.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <filesystem>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/items.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "solver/run.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"

namespace py = pybind11;

namespace velm {
namespace {

// A project as the module holds it: the records and the messages told while
// reading or changing them.
struct PyProject {
    Project p;
    std::vector<std::string> told;
};

struct Told : Interaction {
    std::vector<std::string>& out;
    explicit Told(std::vector<std::string>& o) : out(o) {}
    void tell(const std::string& text) override { out.push_back(text); }
    int ask(const std::string&, const std::vector<std::string>&) override { return 1; }  // No: change nothing
};

std::string joined(const std::vector<std::string>& lines) {
    std::string s;
    for (const std::string& l : lines) s += (s.empty() ? "" : "\n") + l;
    return s;
}

// Reads the bytes of a project file; the messages of a file that cannot be
// read, or that has faulty lines, come back as the error's text.
PyProject read_project(const std::string& bytes, const std::string& name) {
    PyProject out;
    Told ui(out.told);
    RunContext ctx(ui);
    NewProject(out.p);
    ReadPipeLib(ctx, out.p.pipedata);
    int faults = 0;
    if (!read_vdf_text(ctx, out.p, bytes, nullptr, &faults) || faults > 0)
        throw std::invalid_argument(name + ": " + joined(out.told));
    // The components of the project read as at every load; what they tell
    // stays with the project.
    estimate_missing_pseudos(ctx, out.p.pseudos);
    FlashSetup components;
    LoadFlashSetup(ctx, out.p, library_dir_from_environment(), components);
    return out;
}

PyProject open_project(const std::string& path) {
    std::string bytes;
    if (!std::filesystem::is_regular_file(path)) throw std::invalid_argument(path + ": Error - File does not exist !");
    FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) throw std::invalid_argument(path + ": cannot be opened");
    char buf[65536];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) bytes.append(buf, n);
    std::fclose(f);
    return read_project(bytes, path);
}

PyProject new_project() {
    PyProject out;
    Told ui(out.told);
    RunContext ctx(ui);
    NewProject(out.p);
    ReadPipeLib(ctx, out.p.pipedata);
    return out;
}

std::string project_bytes(const PyProject& pp) {
    std::vector<std::string> told;
    Told ui(told);
    RunContext ctx(ui);
    return WriteVdf(ctx, pp.p);
}

void save_project(const PyProject& pp, const std::string& path) {
    std::vector<std::string> told;
    Told ui(told);
    RunContext ctx(ui);
    if (!save_vdf(ctx, pp.p, path)) throw std::runtime_error(joined(told));
}

// Changes the project by lines of project-file text whose index item is the
// name of a record ("\PIPE","L-101","DIA","6","","inch"), read as the import
// of a project reads them. A name that no record bears is an error.
void apply_lines(PyProject& pp, const std::string& lines) {
    std::vector<std::string> told;
    Told ui(told);
    RunContext ctx(ui);
    std::vector<std::string> missing;
    const ImportIndex index = [&](const std::string& section, const std::string& name,
                                  const std::string&) -> std::optional<int> {
        const auto pick = [&](const auto& v) -> std::optional<int> {
            for (std::size_t i = 1; i < v.size(); ++i)
                if (upper(trim(v[i].NAME[1])) == upper(trim(name))) return static_cast<int>(i);
            missing.push_back(section + " " + name);
            return std::nullopt;
        };
        if (section == "\\PIPE") return pick(pp.p.lines);
        if (section == "\\FEED") return pick(pp.p.feeds);
        if (section == "\\PROD") return pick(pp.p.prods);
        if (section == "\\VALVE") return pick(pp.p.valves);
        if (section == "\\CHECK") return pick(pp.p.checks);
        if (section == "\\FO") return pick(pp.p.fos);
        if (section == "\\HX") return pick(pp.p.hxs);
        if (section == "\\PUMP") return pick(pp.p.pumps);
        if (section == "\\COMP") return pick(pp.p.comps);
        if (section == "\\MISC") return pick(pp.p.miscs);
        if (section == "\\EXPAND") return pick(pp.p.expands);
        if (section == "\\JUNC") return pick(pp.p.juncs);
        if (section == "\\TEE") return pick(pp.p.tees);
        if (section == "\\VESSEL") return pick(pp.p.vessels);
        if (section == "\\GEN") return 0;
        missing.push_back(section);
        return std::nullopt;
    };
    int faults = 0;
    const bool read = read_vdf_text(ctx, pp.p, "\"VELM_3.2\"\r\n" + lines, &index, &faults);
    if (!missing.empty()) throw std::invalid_argument("no such item: " + missing.front());
    if (!read || faults > 0) throw std::invalid_argument(joined(told));
}

// The items of a key of a record, as the project file writes them ("\PIPE",
// "L-101", "DIA" gives ["6", "", "inch"]). The record is found by name.
std::vector<std::string> key_items(const PyProject& pp, const std::string& section, const std::string& name,
                                   const std::string& key) {
    const std::string bytes = project_bytes(pp);
    // The record number: the index of the NAME line that bears the name.
    std::string index;
    ItemReader in(bytes);
    std::vector<std::vector<std::string>> lines;
    while (!in.at_end()) {
        std::vector<std::string> items;
        do items.push_back(in.item());
        while (!in.line_ended());
        if (items.size() >= 4 && upper(items[0]) == upper(section)) {
            if (upper(items[2]) == "NAME" && upper(trim(items[3])) == upper(trim(name))) index = items[1];
            lines.push_back(std::move(items));
        }
    }
    if (index.empty()) throw std::invalid_argument("no such item: " + section + " " + name);
    for (const auto& items : lines)
        if (items[1] == index && upper(items[2]) == upper(key)) return {items.begin() + 3, items.end()};
    throw std::invalid_argument("no key " + key + " in " + section);
}

// The lines' results in the project's display units, columns named with
// their units ("flow_kg_h"), taken while the records hold a case's results.
struct LineTable {
    std::vector<std::string> names;
    std::vector<std::pair<std::string, std::vector<double>>> columns;
};

LineTable line_table(const Project& p) {
    std::vector<std::string> told;
    Told ui(told);
    RunContext ctx(ui);
    DisplayUnits u;
    SetUnits(u, p.gen);
    LineTable t;
    const auto column = [&](const std::string& what, const std::string& unit, auto value) {
        std::string name = what + "_" + unit;
        for (char& c : name)
            if (c == '/' || c == ' ') c = '_';
        std::vector<double> v;
        for (std::size_t i = 1; i < p.lines.size(); ++i) v.push_back(value(p.lines[i]));
        t.columns.emplace_back(name, std::move(v));
    };
    for (std::size_t i = 1; i < p.lines.size(); ++i) t.names.push_back(trim(p.lines[i].NAME[1]));
    column("flow", u.mass_flow, [&](const Line& l) { return convert_value(ctx, l.TFLOW.value, "t/h", u.mass_flow); });
    column("p_in", u.pressure, [&](const Line& l) { return convert_value(ctx, l.PRES[1], "kPag", u.pressure); });
    column("p_out", u.pressure, [&](const Line& l) { return convert_value(ctx, l.PRES[2], "kPag", u.pressure); });
    column("velocity", u.velocity, [&](const Line& l) { return convert_value(ctx, l.VEL[3], "m/s", u.velocity); });
    column("dp100", u.gradient, [&](const Line& l) { return convert_value(ctx, l.DPL, "kPa/100m", u.gradient); });
    return t;
}

py::dict table_dict(const LineTable& t) {
    py::dict d;
    d["name"] = t.names;
    for (const auto& [name, values] : t.columns) d[py::str(name)] = values;
    return d;
}

py::dict line_results(const PyProject& pp) { return table_dict(line_table(pp.p)); }

// One flash of the own engine with the project's methods: components by
// library name, mole fractions, the type (1 TP, 2 PF, 3 PH, 4 PS,
// 5 TF) and its values in K, kPa absolute, liquid weight fraction, kJ/kg,
// kJ/kg/K. The stream's fields come back by name; a failed flash is an error
// with the program's words.
py::dict flash(const PyProject& pp, const std::vector<std::string>& components, const std::vector<double>& z, int ft,
               double T, double P, double LF, double H, double S) {
    std::vector<std::string> told;
    Told ui(told);
    RunContext ctx(ui);
    ctx.run_active = true;
    FlashSetup setup;
    flash_methods(pp.p.gen, setup);
    const std::vector<CompProp> pseudo = pseudo_sets(pp.p);
    CompLibrary lib;
    lib.mflash = setup.MFLASH;
    lib.pseudo = pseudo;
    std::vector<int> ids{0};
    for (const std::string& c : components) {
        const int number = comp_number_by_name(ctx, lib, c);
        if (number == 0) throw std::invalid_argument("no component " + c + " in the library");
        ids.push_back(number);
    }
    if (z.size() != components.size() || ids.size() > static_cast<std::size_t>(kMaxComps) + 1)
        throw std::invalid_argument("one mole fraction for each component, at most 30 components");
    ids.push_back(0);
    GetCompData(ctx, lib, ids, setup.comps, setup.kij);
    setup.ids.assign(ids.begin(), ids.end() - 1);
    FlashStream s;
    s.NAME = "1";
    s.FT = ft;
    s.T = T;
    s.P = P;
    s.LF = LF;
    s.H = H;
    s.S = S;
    for (std::size_t i = 0; i < z.size() && i < static_cast<std::size_t>(kMaxComps); ++i) s.Z[i + 1] = z[i];
    flash_search_start(s);
    if (!Flash(ctx, setup, s)) throw std::runtime_error(ctx.run_log_text);
    py::dict d;
    for (const auto& [key, value] :
         std::initializer_list<std::pair<const char*, double>>{{"T", s.T}, {"P", s.P}, {"LF", s.LF}, {"VF", s.VF},
                                                                {"H", s.H}, {"S", s.S}, {"TOTMW", s.TOTMW},
                                                                {"LIQDEN", s.LIQDEN}, {"LIQVISC", s.LIQVISC},
                                                                {"LIQSUR", s.LIQSUR}, {"VAPDEN", s.VAPDEN},
                                                                {"VAPVISC", s.VAPVISC}, {"VAPZ", s.VAPZ}})
        d[key] = value;
    const auto over = [&](const Comps& x) { return std::vector<double>(x.begin() + 1, x.begin() + 1 + z.size()); };
    d["Z"] = over(s.Z);
    d["X"] = over(s.X);
    d["Y"] = over(s.Y);
    return d;
}

// One run of every case; the GIL is released while the engine works.
py::dict run_project(PyProject& pp, int max_iter, double tolerance, const std::string& solver,
                     const std::string& out_dir, int mode) {
    std::vector<std::string> told;
    struct Balancing : Told {
        using Told::Told;
        // Asking for the balance is the Yes to its overwriting the compositions.
        int ask(const std::string& q, const std::vector<std::string>& c) override {
            return q.rfind("HMB will overwrite", 0) == 0 ? 0 : Told::ask(q, c);
        }
    } ui(told);
    RunContext ctx(ui);
    ctx.run_mode = mode;
    if (mode == kRunBalance) ctx.resume_run = true;
    if (max_iter > 0) ctx.max_iter = max_iter;
    if (tolerance > 0.0) ctx.soserror = tolerance;
    ctx.newton = solver == "newton";
    ctx.data_dir = out_dir;
    RunResult r;
    std::vector<std::vector<std::string>> warnings;
    std::vector<LineTable> tables;
    {
        py::gil_scoped_release free;
        r = Hydr_Sim(ctx, pp.p, [&](int, const CaseResult&) {
            warnings.push_back(ctx.case_warnings);
            tables.push_back(line_table(pp.p));
        });
    }
    py::list cases;
    for (std::size_t k = 0; k < r.cases.size(); ++k) {
        py::dict c;
        c["case"] = r.cases[k].case_no;
        c["converged"] = r.cases[k].converged;
        c["iterations"] = r.cases[k].iterations;
        c["error"] = r.cases[k].error;
        c["warnings"] = k < warnings.size() ? warnings[k] : std::vector<std::string>{};
        c["lines"] = k < tables.size() ? table_dict(tables[k]) : line_results(pp);
        cases.append(c);
    }
    py::dict d;
    d["title"] = r.title;
    d["message"] = r.message;
    d["log"] = r.log;
    d["cases"] = cases;
    d["converged"] = mode == kRunBalance ? r.balanced : r.all_converged();
    return d;
}

}  // namespace
}  // namespace velm

PYBIND11_MODULE(_velm, m) {
    using namespace velm;
    m.doc() = "The engine of Velm Hydraulics: projects, runs and line results.";
    py::class_<PyProject>(m, "Project")
        .def("save", &save_project, py::arg("path"))
        .def("copy", [](const PyProject& p) { return p; })
        .def("bytes", [](const PyProject& p) { return py::bytes(project_bytes(p)); })
        .def("apply", &apply_lines, py::arg("lines"))
        .def("line_results", &line_results)
        .def("run", &run_project, py::arg("max_iter") = 0, py::arg("tolerance") = 0.0,
             py::arg("solver") = "successive", py::arg("out_dir") = ".", py::arg("mode") = 1)
        .def("get", &key_items, py::arg("section"), py::arg("name"), py::arg("key"))
        .def("flash", &flash, py::arg("components"), py::arg("z"), py::arg("ft"), py::arg("T"), py::arg("P"),
             py::arg("LF"), py::arg("H"), py::arg("S"));
    m.def("open", &open_project, py::arg("path"));
    m.def("from_bytes", [](const py::bytes& b) { return read_project(std::string(b), "project"); });
    m.def("new", &new_project);
}
