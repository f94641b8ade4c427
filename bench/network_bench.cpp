// Grid networks of about 1,000 to 80,000 lines: one step of the network
// solution, and a whole run to convergence, by the reference elimination and
// by the fast sparse LU.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "solver/network.hpp"
#include "solver/properties.hpp"
#include "solver/run.hpp"
#include "tests/grid_network.hpp"

namespace velm {
namespace {

void configure(RunContext& ctx) {
    ctx.data_dir = std::filesystem::temp_directory_path() / "velm_bench";
    std::filesystem::create_directories(ctx.data_dir);
    ctx.max_iter = 100;
}

// Flags of the third argument.
constexpr int kEquipment = 1, kSparse = 2, kReference = 4, kNewton = 8, kNoReport = 16;

void BM_HydrSolve(benchmark::State& state) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    configure(ctx);
    const int flags = static_cast<int>(state.range(2));
    ctx.linear_solver = flags & kReference ? LinearSolver::Reference : LinearSolver::Klu;
    Project p = grid_network(ctx, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), false, flags & kSparse);
    ctx.run_active = true;
    Network net;
    double err = 0.0;
    Hydr_UpdateProperties(ctx, p, 1, 1);
    Hydr_Solve(ctx, p, net, err, 1, 1);
    for (auto _ : state) {
        err = 0.0;
        Hydr_UpdateProperties(ctx, p, 2, 1);
        benchmark::DoNotOptimize(Hydr_Solve(ctx, p, net, err, 1, 2));
    }
    state.counters["lines"] = count(p.lines);
    state.counters["unknowns"] = net.NumVars;
    state.counters["LU_entries"] = net.fast.factor_entries;
    state.counters["entries"] = net.entries;
    if (flags & kReference)
        state.counters["U_entries"] = static_cast<double>(net.work.IU.empty() ? 0 : net.work.IU[static_cast<std::size_t>(net.NumVars) + 1] - 1);
}

void BM_RunToConvergence(benchmark::State& state) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    configure(ctx);
    const int flags = static_cast<int>(state.range(2));
    ctx.linear_solver = flags & kReference ? LinearSolver::Reference : LinearSolver::Klu;
    ctx.newton = (flags & kNewton) != 0;
    Project start = grid_network(ctx, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), flags & kEquipment,
                         flags & kSparse);
    // Report code -1: the solution alone, without the report's sections.
    if (flags & kNoReport) start.gen.CASERPT = "-1";
    int iterations = 0;
    bool converged = false;
    for (auto _ : state) {
        state.PauseTiming();
        Project p = start;
        state.ResumeTiming();
        const RunResult r = Hydr_Sim(ctx, p);
        iterations = r.cases.empty() ? 0 : r.cases.back().iterations;
        converged = r.all_converged();
    }
    state.counters["lines"] = count(start.lines);
    state.counters["iterations"] = iterations;
    state.counters["converged"] = converged;
}

// About 1,000 lines (16 x 32 junctions) and 10,000 lines (50 x 100 junctions)
// by the reference; with KLU also 100 x 100 and 200 x 200 junctions, full and
// sparse. The third argument: 1 equipment, 2 sparse, 4 the reference solve,
// 8 Newton steps, 16 no report sections (the solution to convergence alone).
BENCHMARK(BM_HydrSolve)
    ->Args({16, 32, kReference})
    ->Args({16, 32, 0})
    ->Args({50, 100, kReference})
    ->Args({50, 100, 0})
    ->Args({100, 100, 0})
    ->Args({100, 100, kSparse})
    ->Args({200, 200, 0})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RunToConvergence)
    ->Args({16, 32, kReference})
    ->Args({16, 32, 0})
    ->Args({16, 32, kNewton})
    ->Args({16, 32, kEquipment})
    ->Args({32, 32, kSparse})
    ->Args({32, 32, kSparse | kNewton})
    ->Args({50, 100, 0})
    ->Args({50, 100, kNewton})
    ->Args({50, 100, kEquipment | kNewton})
    ->Args({100, 100, 0})
    ->Args({100, 100, kNewton})
    ->Args({100, 100, kSparse})
    ->Args({100, 100, kSparse | kNewton})
    ->Args({100, 100, kSparse | kNoReport})
    ->Args({100, 100, kSparse | kNewton | kNoReport})
    ->Args({100, 100, kNewton | kNoReport})
    ->Args({200, 200, kNewton})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

}  // namespace
}  // namespace velm
