// The velm command: run, check, new, size, flash, components and import.
#include "app/cli.hpp"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>

#include "app/commands.hpp"
#include "app/flash_command.hpp"
#include "app/import_command.hpp"
#include "app/serve_command.hpp"

namespace velm {

int cli_main(int argc, char** argv) {
    CLI::App app{"velm: rating and sizing of plant pipe networks"};
    app.require_subcommand(1);
    app.set_help_all_flag("--help-all", "Show the help of every command");

    RunOptions run;
    auto* run_cmd = app.add_subcommand("run", "Run every case of a project and write the run log");
    run_cmd->add_option("project", run.project, "Project file (.vdf)")->required();
    run_cmd->add_option("--out", run.out, "Directory of runlog.txt and the reports");
    auto* save = run_cmd->add_option("--save", run.save, "Write the project with its results to this file");
    auto* in_place = run_cmd->add_flag("--in-place", run.in_place, "Write the results back into the project file");
    save->excludes(in_place);
    run_cmd->add_flag("--resume", run.resume, "Start from the values left in the project instead of fresh guesses");
    run_cmd->add_option("--mode", run.mode, "hydraulics, hmb or both")
        ->check(CLI::IsMember({"hydraulics", "hmb", "both"}));
    run_cmd->add_flag("--json", run.json, "Print the results of every line and line end as one JSON object");
    run_cmd->add_option("--mtp", run.mtp, "Two-phase pressure drop method for this run")
        ->check(CLI::IsMember({"Homogeneous", "Dukler", "Lockhart-Martinelli", "Chisholm", "Chenoweth-Martin",
                               "Beggs-Brill"}));
    run_cmd->add_option("--solver", run.solver,
                        "successive (the default) or newton: Newton steps on every row from the second iteration")
        ->check(CLI::IsMember({"successive", "newton"}));
    run_cmd->add_option("--linear", run.linear, "auto (the default: KLU from 400 unknowns), klu or reference")
        ->check(CLI::IsMember({"auto", "klu", "reference"}));
    run_cmd->add_option("--max-iter", run.max_iter, "Iteration limit of each case (default 20)")
        ->check(CLI::Range(1, 100000));
    run_cmd->add_option("--tolerance", run.tolerance, "Convergence limit of the average error (default 0.001)")
        ->check(CLI::PositiveNumber);
    run_cmd->add_flag("--european", run.read.european,
                      "Read a file of version 1.2 to 1.5 as written with a decimal comma");

    ReadOptions check;
    std::string check_project;
    auto* check_cmd = app.add_subcommand("check", "Count specifications and variables and check connectivity");
    check_cmd->add_option("project", check_project, "Project file (.vdf)")->required();
    check_cmd->add_flag("--european", check.european, "Read a file of version 1.2 to 1.5 as written with a decimal comma");

    std::string new_file;
    ReadOptions fresh;
    auto* new_cmd = app.add_subcommand("new", "Write a new project with the defaults");
    new_cmd->add_option("file", new_file, "Project file to write (.vdf)")->required();
    new_cmd->add_flag("--yes", fresh.yes, "Answer Yes to the question that confirms replacing an existing file");

    ReadOptions size;
    std::string size_action, size_project, size_save;
    auto* size_cmd = app.add_subcommand("size", "Clear the nominal sizes of all lines, or set them to the calculated sizes");
    size_cmd->add_option("action", size_action, "clear: size every line in the next run; set: keep the calculated sizes")
        ->required()
        ->check(CLI::IsMember({"clear", "set"}));
    size_cmd->add_option("project", size_project, "Project file (.vdf)")->required();
    size_cmd->add_flag("--yes", size.yes, "Answer Yes to the question that confirms the change");
    size_cmd->add_option("--save", size_save, "Write the changed project to this file instead of the project");
    size_cmd->add_flag("--european", size.european, "Read a file of version 1.2 to 1.5 as written with a decimal comma");

    ThermoCommands thermo(app);
    ImportCommand import(app);
    ServeCommand serve(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return 2;
    }
    try {
        if (*run_cmd) return command_run(run);
        if (*check_cmd) return command_check(check_project, check);
        if (*size_cmd) return command_size(size_action == "set", size_project, size_save, size);
        if (const auto status = thermo.run()) return *status;
        if (const auto status = import.run()) return *status;
        if (const auto status = serve.run()) return *status;
        return command_new(new_file, fresh);
    } catch (const std::exception& e) {
        std::cerr << "velm: " << e.what() << "\n";
        return 2;
    }
}

}  // namespace velm
