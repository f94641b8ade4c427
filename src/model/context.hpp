// The run context and the interaction layer.
//
// Every message of the program passes through RunContext::log_error: outside a
// run it is told to the user at once (the interaction layer), during a run it
// goes to the run log, which reaches "runlog.txt" only when the buffer holds
// 30000 characters and at the end of the run. Questions go through ask(); the
// command line answers them from its flags and tests answer them from a script.
#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velm {

class Interaction {
public:
    virtual ~Interaction() = default;
    // A message for the user, with nothing to answer.
    virtual void tell(const std::string& text) = 0;
    // A question; returns the index of the chosen entry of choices.
    virtual int ask(const std::string& question, const std::vector<std::string>& choices) = 0;
    // Progress of a run (the status line); nothing by default.
    virtual void status(const std::string&) {}
};

// Records every text and answers questions from a fixed list (then with a default).
class RecordingInteraction : public Interaction {
public:
    std::vector<std::string> told;
    std::vector<std::string> asked;
    std::vector<int> answers;  // consumed in order
    int default_answer = 0;

    void tell(const std::string& text) override { told.push_back(text); }
    int ask(const std::string& question, const std::vector<std::string>&) override {
        asked.push_back(question);
        if (next_ < answers.size()) return answers[next_++];
        return default_answer;
    }

private:
    std::size_t next_ = 0;
};

// The linear solve of the network: the reference elimination, the fast sparse
// LU, or by the order of the system.
enum class LinearSolver { Auto, Reference, Klu };

// The memory a project read from a file may take in records: far above any
// plant network, far below what would exhaust a machine.
inline constexpr std::size_t kMaxProjectBytes = std::size_t{2} << 30;

// What a run does: the hydraulics, the heat and mole balance alone, or the
// hydraulics with the balance in every iteration from the second.
inline constexpr int kRunHydraulics = 1;
inline constexpr int kRunBalance = 2;
inline constexpr int kRunBoth = 3;

// The run log buffer reaches the disk once it holds this many characters.
inline constexpr std::size_t kRunLogFlushChars = 30000;

struct RunContext {
    explicit RunContext(Interaction& ui_) : ui(ui_) {}

    Interaction& ui;
    bool run_active = false;   // messages go to the run log, not to the user
    bool resume_run = false;   // start values are those left in the records
    bool project_dirty = false;
    std::string run_log_text;  // run log not yet on disk
    std::string run_signal;    // final message of a case, read by the report
    // The warnings and errors of the last case's final results, in the order
    // they were found: HydrResulFinalSub empties and fills it, the hydraulic
    // report prints it. Kept apart from the run log, whose buffer drops the
    // message that triggers a flush, so that the report never misses one.
    std::vector<std::string> case_warnings;
    std::filesystem::path project_file;    // the project being run, as the report names it
    int max_iter = 20;
    int run_mode = kRunHydraulics;
    LinearSolver linear_solver = LinearSolver::Auto;
    bool newton = false;       // Newton steps on every row from the second solve of a case
    double soserror = 0.001;
    std::size_t max_project_bytes = kMaxProjectBytes;  // bounds the record counts a file may ask for
    std::filesystem::path data_dir = ".";  // where runlog.txt and the reports go
    std::atomic<bool> stop{false};         // set from outside to stop a run

    // The one door for messages: errors, warnings and progress.
    void log_error(const std::string& text);
    // A warning or error of a case's results: to the run log and to case_warnings.
    void warn(const std::string& text);
    // Appends the buffer to runlog.txt, clears it, and reads the file back
    // (up to 30000 characters): the text that closes the run.
    std::string log_line();
    std::filesystem::path run_file(const std::string& name) const { return data_dir / name; }
    // Appends text to the run file of that name; a failure is kept in
    // write_error (the first one) for the caller of the run to report.
    bool append_run_file(const std::string& name, std::string_view text);
    std::string write_error;  // the run file that could not be written, or ""
};

// Creates the directory if missing, opens the file for appending and writes
// the text as it stands. Returns false when the file cannot be written.
bool append_text(const std::filesystem::path& file, std::string_view text);

}  // namespace velm
