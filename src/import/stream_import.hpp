// Stream import: conditions and phase properties of process streams written
// into the lines whose stream name matches, from a text file in project-file
// form or from a stream table in CSV; and the import of another project's
// records by name.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// What a stream gives its line.
struct ImportChoices {
    bool inlet = false;   // conditions at the pipe inlet: TEMP[1], PRES[1], LF[1], H[1], S[1]
    bool outlet = false;  // the same at the outlet, position 2
    bool props = false;   // phase properties at inlet, outlet and average
};

// The question a file import asks before it changes anything.
inline constexpr const char* kImportQuestion = "File import is irreversible and replaces current entries.\r\nContinue ?";

// Imports the streams of the file into the lines whose stream name (STRM, or
// the line's name when STRM is empty), trimmed and in capitals, matches the
// stream's; a locked line (LOCK) keeps its values. The file is in project-file
// form (sections "\PIPE" and the like, the stream name in the index place) or
// a CSV stream table: a header of "Stream" and columns named by key with a
// unit in brackets ("T [C]", "P [barg]", "LIQDEN [kg/m3]"), one row a stream.
// Every line's fate goes to the run log, which ends with "Runlog - Import
// properties" and is written to runlog.txt in ctx.data_dir. Returns false, with
// nothing changed, when the file cannot be read or a CSV names a column or
// unit that is not known (told through ctx.ui).
bool import_streams(RunContext& ctx, Project& p, const std::filesystem::path& file, const ImportChoices& choices);

// One stream read from a simulator: values by line key (TEMP, PRES, LF, H, S,
// LIQDEN, ...) in internal units; false when the simulator had none.
using StreamReader = std::function<bool(const std::string& stream, std::vector<std::pair<std::string, double>>& values)>;

// Imports from a simulator case: each line not locked reads its stream (STRM,
// or its name) through read and takes the values as the choices say; the run
// log says what became of every line, naming source, and ends as a file
// import does.
void import_simulator_streams(RunContext& ctx, Project& p, const StreamReader& read, const std::string& source,
                              const ImportChoices& choices);

// Reads another project file into this one in import mode: each line's index
// item is the name of a record of its section here, and a name that none bears
// skips the line. Returns false when the file cannot be read.
bool import_project(RunContext& ctx, Project& p, const std::filesystem::path& file);

}  // namespace velm
