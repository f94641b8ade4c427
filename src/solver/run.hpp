// The run driver of a hydraulic run.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/records.hpp"

namespace velm {

struct RunContext;

struct CaseResult {
    int case_no = 0;
    int iterations = 0;
    double error = 0.0;   // average error of the last iteration
    bool converged = false;
    bool stopped = false;
};

struct RunResult {
    std::string title;               // the caption that closes the run
    std::string message;             // the last message of the run, when it ended on a fault
    std::string log;                 // the run log as read back from runlog.txt
    std::vector<CaseResult> cases;   // the cases that were solved, in run order
    int reported = 0;                // cases whose pages were written to resulth.rtf
    bool balanced = false;           // a balance-only run reached its report
    int num_vars = 0, num_specs = 0;
    bool all_converged() const {
        if (cases.empty()) return false;
        for (const auto& c : cases)
            if (!c.converged) return false;
        return true;
    }
};

// Called after each case with its position in CASENO (from 1) and its result,
// while the records hold that case's results.
using CaseEnd = std::function<void(int position, const CaseResult&)>;

// Runs every case of CASENO on the project: checks, start values, the network
// iteration of each case (each starting from the last), the final results;
// writes runlog.txt (and closes the report files) in ctx.data_dir. A case that
// does not converge does not stop the next; a fault in the input, a count of
// specifications that differs from the unknowns, a singular system or a stop
// ends the run.
RunResult Hydr_Sim(RunContext& ctx, Project& p, const CaseEnd& on_case_end = {});

}  // namespace velm
