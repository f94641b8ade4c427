// The run driver: checks the project, runs every case of CASENO through the
// network iteration, and writes the run log.
#include "solver/run.hpp"

#include <cmath>
#include <filesystem>

#include "balance/balance.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/number_format.hpp"
#include "reports/balance_report.hpp"
#include "reports/hydraulic_report.hpp"
#include "solver/checks.hpp"
#include "solver/input_checks.hpp"
#include "solver/network.hpp"
#include "solver/properties.hpp"
#include "solver/results.hpp"

namespace velm {

namespace {

constexpr const char* kNotReached = "Runlog - Problem solution NOT reached.";

template <class R>
void restore_colors(std::vector<R>& v, int32_t error) {
    for (std::size_t i = 1; i < v.size(); ++i)
        if (v[i].COLOR == error) v[i].COLOR = v[0].COLOR;
}

void restore_all_colors(Project& p) {
    const int32_t e = p.color_error;
    restore_colors(p.lines, e);
    restore_colors(p.feeds, e);
    restore_colors(p.prods, e);
    restore_colors(p.valves, e);
    restore_colors(p.checks, e);
    restore_colors(p.pumps, e);
    restore_colors(p.comps, e);
    restore_colors(p.fos, e);
    restore_colors(p.hxs, e);
    restore_colors(p.miscs, e);
    restore_colors(p.expands, e);
    restore_colors(p.juncs, e);
    restore_colors(p.tees, e);
    restore_colors(p.vessels, e);
}

void delete_run_files(RunContext& ctx) {
    for (const char* name : {"resulth.rtf", "runlog.txt", "resultm.rtf"}) {
        std::error_code ec;
        const auto path = ctx.run_file(name);
        if (std::filesystem::exists(path, ec) && !std::filesystem::remove(path, ec))
            ctx.log_error("Error! Deleting file = 75 : " + ec.message());
    }
}

std::string case_text(int n) { return "Case " + std::to_string(n) + " "; }

// The balance within a hydraulic iteration (from the second on): the check,
// the solves, the vessel flashes, and from the third the line-end flashes.
// Returns false when a failure ends the run, with title and msg set; a
// failed check only skips the balance of this iteration.
bool balance_pass(RunContext& ctx, Project& p, BalanceState& balance, int iter, const std::string& c, double& err,
                  std::string& title, std::string& msg) {
    if (const std::string problem = HMB_Check(ctx, p, balance); !problem.empty()) {
        msg = c + "Skip HWB, check failed. " + problem;
        ctx.log_error(msg);
        return true;
    }
    ctx.log_error(c + "Iter = " + std::to_string(iter) + ", Mole and Heat balance.");
    if (MolHeatBalance(ctx, p, balance, err)) msg = c + "Error! Mole and Heat balance failed.";
    else if (HMB_Flash(ctx, p, balance, err, kFlashVessels) != 0) msg = c + "Error! Vessel flash failed.";
    else if (iter > 2 && HMB_Flash(ctx, p, balance, err, kFlashLineEnds) != 0) msg = c + "Error! Flash failed.";
    else {
        balance.error = err;
        return true;
    }
    title = kNotReached;
    return false;
}

// The iteration of one case. Returns false when the run must stop (singular
// system or the user's stop), with title and msg set.
bool run_case(RunContext& ctx, Project& p, Network& net, BalanceState* balance, int case_no, CaseResult& cr,
              std::string& title, std::string& msg) {
    const std::string c = case_text(case_no);
    ctx.log_error(c + "Hydraulics - Start Iteration.");
    net.newton_on = false;
    // A run with balance makes at least three solves, a hydraulic run two.
    const int min_iter = balance != nullptr ? 2 : 1;
    for (int iter = 1; iter <= ctx.max_iter; ++iter) {
        double err = 0.0;
        if (balance != nullptr && iter > 1 && !balance_pass(ctx, p, *balance, iter, c, err, title, msg)) return false;
        Hydr_UpdateProperties(ctx, p, iter, case_no);
        if (Hydr_Solve(ctx, p, net, err, case_no, iter) != 0) {
            title = kNotReached;
            msg = c + "Error! Specifications not independent. Search ABORTED.";
            return false;
        }
        if (net.NumVars != 0) err /= net.NumVars;
        const std::string progress = c + "Iter = " + std::to_string(iter) + ", Avg error = " + format_number(err, "0.00E-##");
        ctx.ui.status(progress);
        ctx.log_error(progress);
        cr.iterations = iter;
        cr.error = err;
        if (err < ctx.soserror && iter > min_iter) {
            cr.converged = true;
            return true;
        }
        ctx.run_signal.clear();
        if (ctx.stop.exchange(false)) {
            title = "Runlog -  Problem solution NOT reached.";
            msg = c + "Error! Hydraulic Simulation - User Cancelled.";
            cr.stopped = true;
            return false;
        }
    }
    return true;
}

void run_cases(RunContext& ctx, Project& p, BalanceState* balance, RunResult& result, const CaseEnd& on_case_end,
               std::string& title, std::string& msg) {
    Network net;
    const int ncase = case_count_or_value(p.gen.CASENO, 0);
    for (int ix = 1; ix <= ncase; ++ix) {
        const int case_no = case_count_or_value(p.gen.CASENO, ix);
        const std::string c = case_text(case_no);
        Count_Specs(ctx, p, net, case_no);
        result.num_vars = net.NumVars;
        result.num_specs = net.NumSpecs;
        if (net.NumSpecs < net.NumVars) {
            title = kNotReached;
            msg = c + "Error! Number of Specs less than Variables.\r\nError! Increase number of independent specifications.";
            return;
        }
        if (net.NumSpecs > net.NumVars) {
            title = kNotReached;
            msg = c + "Error! Number of Specs more than Variables.\r\nError! Reduce number of independent specifications.";
            return;
        }
        CaseResult cr;
        cr.case_no = case_no;
        const bool go_on = run_case(ctx, p, net, balance, case_no, cr, title, msg);
        if (!go_on) {
            if (!cr.stopped) result.cases.push_back(cr);
            return;
        }
        HydrResulFinalSub(ctx, p, case_no);
        // The system of the last case is not needed for its report: its
        // room (the factors of a large network) goes back first.
        if (ix == ncase) net = Network();
        const std::string n = std::to_string(cr.iterations);
        if (cr.converged) {
            title = "Runlog - " + c + "solution reached after " + n + " iterations.";
            msg = c + "Hydraulic solution reached after " + n + " iterations.";
        } else {
            title = "Runlog - " + c + "solution NOT reached after " + n + " iterations.";
            msg = c + "Error! Hydraulic solution NOT reached after " + n + " iterations.";
        }
        ctx.log_error(msg);
        ctx.run_signal = msg;
        WriteHydrReport(ctx, p, ix, "resulth.rtf");
        if (balance != nullptr) WriteHMBReport(ctx, p, balance->setup, balance->error, ix, "resultm.rtf");
        ++result.reported;
        result.cases.push_back(cr);
        if (on_case_end) on_case_end(ix, cr);
        ctx.run_signal.clear();
        msg.clear();
    }
}

// A run of the balance alone: the solves, the vessel flashes and a second
// solve, the line-end flashes, and the balance report.
void balance_run(RunContext& ctx, Project& p, BalanceState& balance, RunResult& result, std::string& title,
                 std::string& msg) {
    if (const std::string problem = HMB_Check(ctx, p, balance); !problem.empty()) {
        title = kNotReached;
        msg = problem;
        return;
    }
    double err = 0.0;
    msg = "End Of Flash Results.";
    ctx.log_error("Mole and Heat balance (Iter = 1).");
    if (MolHeatBalance(ctx, p, balance, err)) {
        title = "Runlog - Mole and Heat balance failed.";
        return;
    }
    if (count(p.vessels) > 0) {
        ctx.log_error("Flash vessels.");
        if (HMB_Flash(ctx, p, balance, err, kFlashVessels) != 0) {
            title = "Runlog - Vessel flash failed.";
            return;
        }
        ctx.log_error("Mole and Heat balance (Iter = 2).");
        if (MolHeatBalance(ctx, p, balance, err)) {
            title = "Runlog - Mole and Heat balance failed.";
            return;
        }
    }
    ctx.log_error("Flash streams.");
    if (HMB_Flash(ctx, p, balance, err, kFlashLineEnds) != 0) {
        title = "Runlog - Stream flash failed.";
        return;
    }
    ctx.log_error("HMB Error = " + format_number(err, "0.00E-##"));
    title = "Runlog - Flash Results";
    WriteHMBReport(ctx, p, balance.setup, err, 0, "resultm.rtf");
    result.balanced = true;
}

}  // namespace

RunResult Hydr_Sim(RunContext& ctx, Project& p, const CaseEnd& on_case_end) {
    RunResult result;
    std::string title, msg;
    if (ctx.run_mode > kRunHydraulics &&
        ctx.ui.ask("HMB will overwrite all compositions and properties. Continue ?", {"Yes", "No"}) != 0)
        return result;
    ctx.run_active = true;
    ctx.project_dirty = true;
    delete_run_files(ctx);
    ctx.run_log_text = "RunLog.";
    try {
        restore_all_colors(p);
        ctx.log_error("Check input.");
        CheckConnectivity(p, msg);
        if (msg.empty()) msg = check_input_values(p);
        if (!msg.empty()) {
            title = kNotReached;
        } else {
            ctx.log_error("Initialize variables.");
            BalanceState balance;
            const bool with_balance = ctx.run_mode > kRunHydraulics;
            if (with_balance) HMB_Reset(ctx, p, balance);
            HydrInit(ctx, p);
            Hydr_UpdateProperties(ctx, p, 1, 0);
            if (ctx.run_mode == kRunBalance) balance_run(ctx, p, balance, result, title, msg);
            else run_cases(ctx, p, with_balance ? &balance : nullptr, result, on_case_end, title, msg);
        }
    } catch (const Fault& f) {
        ctx.log_error("Error! In Hydr_Sim = " + fault_text(f));
    }
    ctx.append_run_file("resulth.rtf", "End of file }\r\n");
    ctx.append_run_file("resultm.rtf", "End of file }\r\n");
    ctx.log_error(msg);
    ctx.run_active = false;
    result.title = title;
    result.message = msg;
    result.log = ctx.log_line();
    ctx.run_log_text.clear();
    return result;
}

}  // namespace velm
