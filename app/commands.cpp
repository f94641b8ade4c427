#include "app/commands.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "app/console.hpp"
#include "app/run_json.hpp"
#include "correlations/sizing.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/file_replace.hpp"
#include "model/number_format.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/settings.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "solver/checks.hpp"
#include "solver/input_checks.hpp"
#include "solver/network.hpp"
#include "solver/run.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"

namespace velm {

std::filesystem::path default_data_dir() {
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) return std::filesystem::path(xdg) / "velm";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".local" / "share" / "velm";
    return std::filesystem::current_path();
}

namespace {

// A new project with the pipe table of the library directory (VELM_LIB) or
// the built-in copy.
// The user's settings of mode "every" (the defaults of a new project and the
// run limits), from the settings file.
Settings user_settings(RunContext& ctx) {
    Settings s;
    ReadSettings(ctx, settings_file(), "every", s);
    return s;
}

bool start_project(RunContext& ctx, Project& p) {
    NewProject(p);
    const char* lib = std::getenv("VELM_LIB");
    return ReadPipeLib(ctx, p.pipedata, lib ? std::filesystem::path(lib) : std::filesystem::path());
}

// The "Error!" lines of the run log that explain a refused or failed run,
// each once and in order; the final message, printed on its own, is left out.
void print_run_errors(const RunResult& r) {
    constexpr std::size_t kMaxShown = 20;
    std::vector<std::string> seen;
    std::size_t more = 0;
    std::size_t start = 0;
    while (start < r.log.size()) {
        std::size_t end = r.log.find("\r\n", start);
        if (end == std::string::npos) end = r.log.size();
        const std::string line = r.log.substr(start, end - start);
        start = end + 2;
        if (line.rfind("Error!", 0) != 0 || r.message.find(line) != std::string::npos) continue;
        if (std::find(seen.begin(), seen.end(), line) != seen.end()) continue;
        if (seen.size() == kMaxShown) {
            ++more;
            continue;
        }
        seen.push_back(line);
        std::cerr << line << "\n";
    }
    if (more > 0) std::cerr << "... and " << more << " more error lines in the run log.\n";
}

void print_cell(const std::string& s, int width) {
    std::printf("%*s", width, s.c_str());
}

// The line results of a case in the project's display units.
void print_line_table(RunContext& ctx, const Project& p) {
    DisplayUnits u;
    SetUnits(u, p.gen);
    std::printf("%-12s", "Line");
    for (const char* h : {"Flow", "P in", "P out", "Velocity", "dP/100"}) print_cell(h, 11);
    std::printf("\n%-12s", "");
    for (const std::string& h : {u.mass_flow, u.pressure, u.pressure, u.velocity, u.gradient}) print_cell(h, 11);
    std::printf("\n");
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        const Line& l = p.lines[i];
        std::printf("%-12s", trim(l.NAME[1]).substr(0, 11).c_str());
        print_cell(convert_fmt(ctx, l.TFLOW.value, "t/h", u.mass_flow, 4), 11);
        print_cell(convert_fmt(ctx, l.PRES[1], "kPag", u.pressure, 4), 11);
        print_cell(convert_fmt(ctx, l.PRES[2], "kPag", u.pressure, 4), 11);
        print_cell(convert_fmt(ctx, l.VEL[3], "m/s", u.velocity, 4), 11);
        print_cell(convert_fmt(ctx, l.DPL, "kPa/100m", u.gradient, 4), 11);
        std::printf("\n");
    }
}

// The state of every line end after a balance: temperature, pressure, liquid
// fraction by weight and enthalpy, in display units.
void print_stream_table(RunContext& ctx, const Project& p) {
    DisplayUnits u;
    SetUnits(u, p.gen);
    std::printf("\n%-12s", "Line");
    for (const char* h : {"T in", "T out", "P in", "P out", "LF in", "LF out", "H in", "H out"}) print_cell(h, 10);
    std::printf("\n%-12s", "");
    for (const std::string& h : {u.temperature, u.temperature, u.pressure, u.pressure, std::string("wt"),
                                  std::string("wt"), u.enthalpy, u.enthalpy})
        print_cell(h, 10);
    std::printf("\n");
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        const Line& l = p.lines[i];
        std::printf("%-12s", trim(l.NAME[1]).substr(0, 11).c_str());
        for (int e = 1; e <= 2; ++e)
            print_cell(format_number(UnitsTFunc(ctx, l.TEMP[static_cast<std::size_t>(e)], "C", u.temperature), "0.0#"), 10);
        for (int e = 1; e <= 2; ++e)
            print_cell(convert_fmt(ctx, l.PRES[static_cast<std::size_t>(e)], "kPag", u.pressure, 4), 10);
        for (int e = 1; e <= 2; ++e) print_cell(format_number(l.LF[static_cast<std::size_t>(e)], "0.0###"), 10);
        for (int e = 1; e <= 2; ++e)
            print_cell(convert_fmt(ctx, l.H[static_cast<std::size_t>(e)], "kJ/kg", u.enthalpy, 4), 10);
        std::printf("\n");
    }
}

int run_mode_of(const std::string& mode) {
    if (mode == "hmb") return kRunBalance;
    if (mode == "both") return kRunBoth;
    return kRunHydraulics;
}

}  // namespace

bool load_project(RunContext& ctx, Project& p, const std::string& file, FlashSetup* flash) {
    if (!start_project(ctx, p)) return false;
    int faults = 0;
    if (!ReadVdf(ctx, p, file, nullptr, &faults)) {
        std::cerr << "velm: cannot read " << file << "; nothing was run or written.\n";
        return false;
    }
    if (faults > 0) {
        std::cerr << "velm: " << file << " has " << faults << " faulty line" << (faults == 1 ? "" : "s")
                  << " (told above); correct the file. Nothing was run or written.\n";
        return false;
    }
    const std::vector<std::string> unknown = unknown_custom_units(p.gen);
    for (const std::string& name : unknown) ctx.ui.tell("Unknown units for " + name);
    if (!unknown.empty()) {
        std::cerr << "velm: " << file << " names custom units that do not exist (told above); correct UNITS1 to UNITS3."
                  << " Nothing was run or written.\n";
        return false;
    }
    estimate_missing_pseudos(ctx, p.pseudos);
    set_project_dirs(p.gen, library_dir_from_environment(), default_data_dir());
    FlashSetup components;
    LoadFlashSetup(ctx, p, library_dir_from_environment(), flash != nullptr ? *flash : components);
    return true;
}

int save_project(RunContext& ctx, const Project& p, const std::string& file) {
    if (!save_vdf(ctx, p, file)) return 2;
    std::cout << "Project saved: " << file << "\n";
    return 0;
}

int command_run(const RunOptions& opt) {
    if (opt.mode != "hydraulics" && opt.mode != "hmb" && opt.mode != "both") {
        std::cerr << "velm: --mode takes hydraulics, hmb or both.\n";
        return 2;
    }
    ConsoleInteraction ui(opt.read);
    ui.quiet = opt.json;
    RunContext ctx(ui);
    Project p;
    if (!load_project(ctx, p, opt.project)) return 2;
    if (!opt.mtp.empty()) p.gen.MTP = opt.mtp;
    const std::string target = opt.in_place ? opt.project : opt.save;
    if (const std::string why = target.empty() ? "" : save_target_problem(target); !why.empty()) {
        std::cerr << "velm: cannot save the project to " << why << "; nothing was run.\n";
        return 2;
    }
    ctx.data_dir = opt.out.empty() ? default_data_dir() : std::filesystem::path(opt.out);
    std::error_code ec;
    std::filesystem::create_directories(ctx.data_dir, ec);
    if (ec) {
        std::cerr << "velm: cannot create the output directory " << ctx.data_dir.string() << ": " << ec.message() << "\n";
        return 2;
    }
    if (!append_text(ctx.run_file("runlog.txt"), "")) {
        std::cerr << "velm: cannot write " << ctx.run_file("runlog.txt").string() << "; nothing was run.\n";
        return 2;
    }
    ctx.resume_run = opt.resume;
    ctx.newton = opt.solver == "newton";
    ctx.linear_solver = opt.linear == "klu" ? LinearSolver::Klu
                        : opt.linear == "reference" ? LinearSolver::Reference : LinearSolver::Auto;
    apply_run_limits(user_settings(ctx), ctx);
    if (opt.max_iter > 0) ctx.max_iter = opt.max_iter;
    if (opt.tolerance > 0.0) ctx.soserror = opt.tolerance;
    ctx.project_file = std::filesystem::absolute(opt.project, ec);
    set_project_dirs(p.gen, library_dir_from_environment(), ctx.data_dir);
    ctx.run_mode = run_mode_of(opt.mode);
    // The balance alone works on the flows and pressures the records hold; a
    // run with both starts fresh unless --resume says otherwise.
    if (ctx.run_mode == kRunBalance) ctx.resume_run = true;
    const RunResult r = Hydr_Sim(ctx, p, [&](int, const CaseResult& c) {
        if (opt.json) return;
        std::cout << "\nCase " << c.case_no << (c.converged ? " converged" : " did NOT converge") << " after "
                  << c.iterations << " iterations.\n";
        print_line_table(ctx, p);
        if (ctx.run_mode == kRunBoth) print_stream_table(ctx, p);
    });
    if (opt.json) std::cout << run_json(p, r).dump(2) << "\n";
    else if (ctx.run_mode == kRunBalance && r.balanced) print_stream_table(ctx, p);
    std::ostream& said = opt.json ? std::cerr : std::cout;
    said << "\n" << r.title << "\n";
    if (!ctx.write_error.empty()) {
        std::cerr << "velm: could not write " << ctx.write_error << "; the run log and report are incomplete.\n";
        return 2;
    }
    said << "Run log: " << ctx.run_file("runlog.txt").string() << "\n";
    if (r.reported > 0) said << "Report:  " << ctx.run_file("resulth.rtf").string() << "\n";
    if ((ctx.run_mode == kRunBoth && r.reported > 0) || r.balanced)
        said << "Balance: " << ctx.run_file("resultm.rtf").string() << "\n";
    if (!r.message.empty()) said << r.message << "\n";
    int status = (ctx.run_mode == kRunBalance ? r.balanced : r.all_converged()) ? 0 : 1;
    if (status != 0) print_run_errors(r);
    if (!target.empty() && save_project(ctx, p, target) != 0) status = 2;
    return status;
}

int command_check(const std::string& file, const ReadOptions& opt) {
    ConsoleInteraction ui(opt);
    RunContext ctx(ui);
    Project p;
    if (!load_project(ctx, p, file)) return 2;
    std::string msg;
    CheckConnectivity(p, msg);
    if (msg.empty()) msg = check_input_values(p);
    if (!msg.empty()) {
        std::cout << msg << "\n";
        return 1;
    }
    std::cout << "Connectivity: OK\n";
    Network net;
    int status = 0;
    const int ncase = case_count_or_value(p.gen.CASENO, 0);
    for (int ix = 1; ix <= ncase; ++ix) {
        const int case_no = case_count_or_value(p.gen.CASENO, ix);
        Count_Specs(ctx, p, net, case_no);
        const int s = net.NumSpecs - structural_rows(p);
        const int r = net.NumVars - (net.NumSpecs - s);
        std::cout << "Case " << case_no << ": Number of Specifications = " << net.NumSpecs
                  << ", Number of Variables = " << net.NumVars << ", Specified/Required = " << s << "/" << r << "\n";
        if (net.NumSpecs != net.NumVars) status = 1;
    }
    return status;
}

std::string overwrite_question(const std::string& file) {
    return "File " + file + " already exists. Replace it with a new project ?";
}

int command_new(const std::string& file, const ReadOptions& opt) {
    ConsoleInteraction ui(opt);
    RunContext ctx(ui);
    std::error_code ec;
    if (std::filesystem::exists(file, ec) && ui.ask(overwrite_question(file), {"Yes", "No"}) != 0) {
        std::cout << "Nothing written (answer the question with --yes).\n";
        return 1;
    }
    Project p;
    if (!start_project(ctx, p)) return 2;
    apply_project_defaults(user_settings(ctx), p.gen);
    return save_project(ctx, p, file);
}

int command_size(bool set, const std::string& project, const std::string& save, const ReadOptions& opt) {
    ConsoleInteraction ui(opt);
    RunContext ctx(ui);
    Project p;
    if (!load_project(ctx, p, project)) return 2;
    const char* question = set ? "Set all pipe diameters to current calculated sizes ?"
                               : "Clear all pipe diameters to size them in the next run ?";
    if (ui.ask(question, {"Yes", "No"}) != 0) {
        std::cout << "Nothing changed (answer the question with --yes).\n";
        return 0;
    }
    pipe_set_dia(p, set);
    return save_project(ctx, p, save.empty() ? project : save);
}

}  // namespace velm
