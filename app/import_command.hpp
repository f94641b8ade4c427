// velm import: stream data of a process simulation into the lines of a project.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

#include "app/commands.hpp"

namespace velm {

struct ImportOptions {
    std::string project, streams, save, out;
    std::string simulator = "File";  // "File", "Hysys" or "Aspen"
    bool inlet = false, outlet = false, props = false, in_place = false, records = false;
    ReadOptions read;
};

// The import subcommand on the command line; run() gives its exit status when
// it was the command given.
class ImportCommand {
public:
    explicit ImportCommand(CLI::App& app);
    std::optional<int> run() const;

private:
    CLI::App* cmd_;
    ImportOptions opt_;
};

}  // namespace velm
