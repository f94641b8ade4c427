// Time per solve and fill of SolveMatrix on two shapes of system: a 2-D
// five-point stencil (the hardest case for a row-wise elimination in natural
// order: the fill grows with the band) and a system shaped like a pipe
// network, pressures and signed squared flows of a looped tree of lines.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <random>
#include <vector>

#include "solver/sparse.hpp"

namespace {

struct System {
    int n = 0;
    std::vector<double> A{0.0};
    std::vector<int> JA{0};
    std::vector<int> IA{0};
    std::vector<double> B{0.0};

    void start_row(double rhs) {
        IA.push_back(static_cast<int>(A.size()));
        B.push_back(rhs);
        ++n;
    }
    void add(int col, double value) {
        A.push_back(value);
        JA.push_back(col);
    }
    void finish() { IA.push_back(static_cast<int>(A.size())); }
};

// -u_xx - u_yy on an nx by ny grid, five points, unknowns in natural order.
System five_point(int nx, int ny) {
    System s;
    for (int y = 0; y < ny; ++y) {
        for (int x = 0; x < nx; ++x) {
            const int k = y * nx + x + 1;
            s.start_row(1.0);
            if (y > 0) s.add(k - nx, -1.0);
            if (x > 0) s.add(k - 1, -1.0);
            s.add(k, 4.0);
            if (x + 1 < nx) s.add(k + 1, -1.0);
            if (y + 1 < ny) s.add(k + nx, -1.0);
        }
    }
    s.finish();
    return s;
}

// A network of nodes joined by lines: a tree grown mostly as chains with side
// branches, closed into loops by about one extra line per 40 unknowns between
// nearby nodes. Unknowns: the node pressures, then one X = W*|W| per line.
// Rows: one per line, P_up - P_down - K*X = 0; then one per node, a fixed
// pressure at the root and at the ends of branches, elsewhere the mass
// balance with each X divided by the last |W|.
System pipe_network(int unknowns, unsigned seed) {
    std::mt19937 gen(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const int loops = unknowns / 40;
    const int nodes = (unknowns + 1 - loops) / 2;
    const int lines = unknowns - nodes;
    std::vector<std::pair<int, int>> ends;  // (upstream, downstream) node
    for (int v = 2; v <= nodes; ++v) {
        const int back = unit(gen) < 0.2 ? static_cast<int>(unit(gen) * 20) : 0;
        ends.push_back({std::max(1, v - 1 - back), v});
    }
    while (static_cast<int>(ends.size()) < lines) {
        const int u = 1 + static_cast<int>(unit(gen) * nodes);
        const int v = std::min(nodes, u + 2 + static_cast<int>(unit(gen) * 40));
        if (u != v) ends.push_back({u, v});
    }
    std::vector<std::vector<std::pair<int, double>>> at_node(nodes + 1);  // (column, coefficient)
    System s;
    for (int j = 0; j < lines; ++j) {
        const auto [up, down] = ends[j];
        const int x_col = nodes + j + 1;
        const double k = std::pow(10.0, -3.0 + 4.0 * unit(gen));  // kPa per (t/h)^2
        const double w = std::pow(10.0, 2.0 * unit(gen));         // last |W|, t/h
        s.start_row(0.0);
        s.add(std::min(up, down), up < down ? 1.0 : -1.0);
        s.add(std::max(up, down), up < down ? -1.0 : 1.0);
        s.add(x_col, -k);
        at_node[up].push_back({x_col, -1.0 / w});
        at_node[down].push_back({x_col, 1.0 / w});
    }
    for (int v = 1; v <= nodes; ++v) {
        if (v == 1 || at_node[v].size() == 1) {
            s.start_row(100.0 + 900.0 * unit(gen));
            s.add(v, 1.0);
        } else {
            s.start_row(0.0);
            std::sort(at_node[v].begin(), at_node[v].end());
            for (const auto& [col, coef] : at_node[v]) s.add(col, coef);
        }
    }
    s.finish();
    return s;
}

void run(benchmark::State& state, const System& sys) {
    velm::RecordingInteraction ui;
    velm::RunContext ctx(ui);
    velm::SparseWork work;
    std::vector<double> b = sys.B;
    int status = 0;
    for (auto _ : state) {
        std::copy(sys.B.begin(), sys.B.end(), b.begin());
        status = velm::SolveMatrix(ctx, sys.A, sys.JA, sys.IA, b, sys.n, work);
        benchmark::DoNotOptimize(b.data());
    }
    if (status != velm::kSolveOk) state.SkipWithError("system not solved");
    state.counters["n"] = sys.n;
    state.counters["nnz_per_row"] = static_cast<double>(sys.A.size() - 1) / sys.n;
    state.counters["fill_U"] = velm::upper_fill(work, sys.n);
}

void BM_FivePoint(benchmark::State& state) {
    // 1000 unknowns as 40 x 25, 10000 as 100 x 100.
    static std::map<int, System> cache;
    const int n = static_cast<int>(state.range(0));
    if (!cache.count(n)) cache[n] = n == 1000 ? five_point(40, 25) : five_point(100, 100);
    run(state, cache[n]);
}

void BM_PipeNetwork(benchmark::State& state) {
    static std::map<int, System> cache;
    const int n = static_cast<int>(state.range(0));
    if (!cache.count(n)) cache[n] = pipe_network(n, 2024u);
    run(state, cache[n]);
}

}  // namespace

BENCHMARK(BM_FivePoint)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PipeNetwork)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
