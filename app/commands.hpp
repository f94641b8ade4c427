// The commands of the velm program. Each returns the exit status: 0 success
// (every case converged), 1 a case did not converge or no solution was
// reached, 2 bad usage or an unreadable file (nothing written).
#pragma once

#include <filesystem>
#include <string>

namespace velm {

// Answers to the program's questions, from the command's flags.
struct ReadOptions {
    bool european = false;  // the decimal-comma question for old files
    bool yes = false;       // questions that confirm a change of the project
};

struct RunOptions {
    std::string project;
    std::string out;
    std::string save;
    bool in_place = false;
    bool resume = false;
    std::string mode = "hydraulics";
    std::string mtp;  // two-phase method for this run, in place of the project's
    std::string solver = "successive";  // "successive" or "newton"
    std::string linear = "auto";        // "auto", "klu" or "reference"
    int max_iter = 0;                   // 0: the program's limit
    double tolerance = 0.0;             // 0: the program's convergence limit
    bool json = false;                  // the results as JSON, nothing else on standard output
    ReadOptions read;
};

struct Project;
struct RunContext;
struct FlashSetup;

// Where run files go without --out: $XDG_DATA_HOME/velm, else ~/.local/share/velm.
std::filesystem::path default_data_dir();

// Reads the project for a command (with the pipe table of VELM_LIB or the
// built-in one); a file with faulty lines or unknown custom units is refused
// with its messages. The project's components are read from the libraries
// (pseudo components without an estimated set get one), into flash when given.
bool load_project(RunContext& ctx, Project& p, const std::string& file, FlashSetup* flash = nullptr);
// Saves and says so; 0, or 2 when the file could not be written.
int save_project(RunContext& ctx, const Project& p, const std::string& file);

int command_run(const RunOptions& opt);
int command_check(const std::string& project, const ReadOptions& opt);
// Writes a new project; an existing file is replaced only after the question
// of overwrite_question is answered Yes (--yes).
int command_new(const std::string& file, const ReadOptions& opt);
std::string overwrite_question(const std::string& file);
// Empties every line's nominal size (set = false) so the next run sizes the
// lines, or takes the sizes of the last run as given (set = true); writes the
// project back, or to save when given.
int command_size(bool set, const std::string& project, const std::string& save, const ReadOptions& opt);

}  // namespace velm
