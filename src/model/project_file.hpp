// Reading and writing project files (.vdf).
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Import mode: turns the name in a line's index item into a record number of
// the section, or nothing to skip the line; the key of the line comes along.
using ImportIndex =
    std::function<std::optional<int>(const std::string& section, const std::string& name, const std::string& key)>;

// Reads a project file into the project. Messages and questions go through
// ctx.ui in the program's words. Returns false when the file could not be read
// (what was read so far stays in the project). faults, when given, receives
// the number of lines that were told as faulty and skipped.
bool ReadVdf(RunContext& ctx, Project& project, const std::filesystem::path& file,
             const ImportIndex* import = nullptr, int* faults = nullptr);
// The same from bytes already in memory.
bool read_vdf_text(RunContext& ctx, Project& project, std::string_view bytes, const ImportIndex* import = nullptr,
                   int* faults = nullptr);

// The whole project as file bytes (Windows-1252 text, CR LF line ends). A
// text that cannot be written whole raises a Fault.
std::string WriteVdf(RunContext& ctx, const Project& project);
// Writes the project in place of the file (replace_file: through a symbolic
// link, keeping the mode, the old file untouched on a failure). On failure the
// message "Error writing file = ..." naming the file is told and false returned.
bool save_vdf(RunContext& ctx, const Project& project, const std::filesystem::path& file);

// Changes that bring the records of an older file up to date (version as a number, e.g. 2.1).
void MigrateVdf(RunContext& ctx, Project& project, double version);

// A new project: counts 0, the header defaults and the template records.
void NewProject(Project& project);

}  // namespace velm
