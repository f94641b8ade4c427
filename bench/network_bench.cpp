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

namespace velm {
namespace {

// A rows x cols grid of junctions joined by 100 m lines of 6 in pipe, flow
// directed right and down; a feed at 500 kPag into the first corner and a
// product at 100 kPag out of each other corner. With equipment, every
// hundredth connection runs through a pump on its curve and a control valve.
// A sparse grid keeps every row, the first and last columns and about 15 %
// of the other vertical connections.
Project grid(RunContext& ctx, int rows, int cols, bool equipment = false, bool sparse = false) {
    Project p;
    NewProject(p);
    ReadPipeLib(ctx, p.pipedata);
    p.lines[0].DIA[1] = "6";
    auto node = [cols](int r, int c) { return r * cols + c + 1; };
    p.juncs.resize(static_cast<std::size_t>(rows * cols) + 1, p.juncs[0]);
    auto connect = [&](int from, int to) {
        p.lines.push_back(p.lines[0]);
        const int l = count(p.lines);
        p.lines.back().NAME[1] = "L" + std::to_string(l);
        auto free_port = [](std::array<Port, kNozzles + 1>& ports) -> Port& {
            for (int n = 1; n < kNozzles; ++n)
                if (ports[n].CON == 0) return ports[n];
            return ports[kNozzles];
        };
        if (from) free_port(p.juncs[from].NOZO).CON = l;
        if (to) free_port(p.juncs[to].NOZI).CON = l;
        return l;
    };
    int connections = 0;
    // A pump and a valve between two junctions: three lines in series.
    auto through_equipment = [&](int from, int to) {
        const int a = connect(from, 0), b = connect(0, 0), c = connect(0, to);
        Pump pump = p.pumps[0];
        pump.CON = {0, a, b};
        pump.DP.spec = "C";
        pump.HQ1 = 3;
        pump.CURQ[1] = "0", pump.CURQ[2] = "100", pump.CURQ[3] = "200";
        pump.CURH[1] = "20", pump.CURH[2] = "18", pump.CURH[3] = "12";
        p.pumps.push_back(pump);
        Valve valve = p.valves[0];
        valve.CON = {0, b, c};
        valve.CV.spec = "400";
        p.valves.push_back(valve);
    };
    auto join = [&](int from, int to) {
        if (equipment && ++connections % 100 == 0) through_equipment(from, to);
        else connect(from, to);
    };
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) {
            if (c + 1 < cols) join(node(r, c), node(r, c + 1));
            const bool keep = !sparse || c == 0 || c + 1 == cols || (r * cols + c) % 7 == 0;
            if (r + 1 < rows && keep) join(node(r, c), node(r + 1, c));
        }
    p.feeds.push_back(p.feeds[0]);
    p.feeds[1].PRES.spec = "500";
    p.feeds[1].NOZ.CON = connect(0, node(0, 0));
    for (int corner : {node(0, cols - 1), node(rows - 1, 0), node(rows - 1, cols - 1)}) {
        p.prods.push_back(p.prods[0]);
        p.prods.back().PRES.spec = "100";
        p.prods.back().NOZ.CON = connect(corner, 0);
    }
    return p;
}

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
    Project p = grid(ctx, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), false, flags & kSparse);
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
    Project start = grid(ctx, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), flags & kEquipment,
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
