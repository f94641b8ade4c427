#include "app/import_command.hpp"

#include <iostream>

#include "app/console.hpp"
#include "import/simulators.hpp"
#include "import/stream_import.hpp"
#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

namespace {

// 0 imported (and saved), 1 the question was answered No or the import went
// wrong, 2 a file that could not be read or written.
int command_import(const ImportOptions& opt) {
    ConsoleInteraction ui(opt.read);
    RunContext ctx(ui);
    Project p;
    if (!load_project(ctx, p, opt.project)) return 2;
    if (ui.ask(kImportQuestion, {"Yes", "No"}) != 0) {
        std::cout << "Nothing imported (answer the question with --yes).\n";
        return 1;
    }
    ctx.data_dir = opt.out.empty() ? default_data_dir() : std::filesystem::path(opt.out);
    ImportChoices choices{opt.inlet, opt.outlet, opt.props};
    if (!choices.inlet && !choices.outlet && !choices.props) choices = {true, true, true};
    if (opt.records) {
        if (!import_project(ctx, p, opt.streams)) return 2;
    } else if (opt.simulator == "File") {
        if (!import_streams(ctx, p, opt.streams, choices)) return 2;
    } else if (!import_from_simulator(ctx, p, opt.simulator, opt.streams, choices)) {
        ctx.ui.tell("Error importing file. Review results carefully.");
        return 1;
    }
    if (!opt.records) std::cout << "Runlog - Import properties\nRun log: " << ctx.run_file("runlog.txt").string() << "\n";
    return save_project(ctx, p, opt.save.empty() ? opt.project : opt.save);
}

}  // namespace

ImportCommand::ImportCommand(CLI::App& app) {
    cmd_ = app.add_subcommand("import", "Import stream data (project-file form or a CSV stream table) into the lines");
    cmd_->add_option("project", opt_.project, "Project file (.vdf)")->required();
    cmd_->add_option("streams", opt_.streams,
                     "Stream file: project-file form or CSV; the case or document of --simulator")
        ->required();
    cmd_->add_option("--simulator", opt_.simulator, "File (the default), Hysys or Aspen")
        ->check(CLI::IsMember({"File", "Hysys", "Aspen"}));
    cmd_->add_flag("--inlet", opt_.inlet, "Import stream to pipe inlet conditions.");
    cmd_->add_flag("--outlet", opt_.outlet, "Import stream to pipe outlet conditions.");
    cmd_->add_flag("--props", opt_.props, "Import stream to pipe fluid properties.");
    cmd_->add_flag("--records", opt_.records,
                   "Read another project file into this one: its records by name, every key");
    cmd_->add_flag("--yes", opt_.read.yes, "Answer Yes to the question that confirms the import");
    auto* save = cmd_->add_option("--save", opt_.save, "Write the project to this file instead of the project");
    auto* in_place = cmd_->add_flag("--in-place", opt_.in_place, "Write the project back (the default)");
    save->excludes(in_place);
    cmd_->add_option("--out", opt_.out, "Directory of runlog.txt");
}

std::optional<int> ImportCommand::run() const {
    if (!*cmd_) return std::nullopt;
    return command_import(opt_);
}

}  // namespace velm
