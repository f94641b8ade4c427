// Cost of the own flash engine: the TP flash (successive substitution on SRK
// K-values), the whole Flash call (TP flash, SRK enthalpy and entropy, heat
// capacities), and the PH flash, for mixtures of 2, 10 and 20 components in
// two phases. Time per call is reported in microseconds.
#include <benchmark/benchmark.h>

#include <vector>

#include "thermo/flash.hpp"
#include "thermo/flash_algorithms.hpp"

namespace {

using namespace velm;

struct Mixture {
    std::vector<int> numbers;
    std::vector<double> z;
    double T, P;
};

// Library numbers: 3 N2, 7 CO, 8 CO2, 9 H2S, 13..24 methane to decane and
// the butane/pentane isomers, 25 ethylene, 26 propylene, 27 benzene, 28 toluene.
const Mixture& mixture(int n) {
    static const Mixture two{{13, 15}, {0.6, 0.4}, 250.0, 3000.0};
    static const Mixture ten{{3, 8, 13, 14, 15, 16, 17, 18, 19, 20},
                             {0.02, 0.01, 0.80, 0.07, 0.04, 0.015, 0.015, 0.01, 0.01, 0.01},
                             220.0,
                             4000.0};
    static const Mixture twenty{{3, 7, 8, 9, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28},
                                {0.02, 0.005, 0.02, 0.005, 0.714, 0.07, 0.04, 0.015, 0.02, 0.01, 0.01, 0.01,
                                 0.01, 0.008, 0.006, 0.004, 0.01, 0.01, 0.008, 0.005},
                                260.0,
                                4000.0};
    return n == 2 ? two : n == 10 ? ten : twenty;
}

struct Case {
    RecordingInteraction ui;
    RunContext ctx{ui};
    FlashSetup setup;
    FlashStream stream;

    explicit Case(int n) {
        ctx.run_active = true;
        const Mixture& m = mixture(n);
        std::vector<int> ids{0};
        ids.insert(ids.end(), m.numbers.begin(), m.numbers.end());
        ids.push_back(0);
        GetCompData(ctx, CompLibrary{}, ids, setup.comps, setup.kij);
        setup.ids.assign(ids.begin(), ids.end() - 1);
        stream.NAME = "BENCH";
        stream.T = m.T;
        stream.P = m.P;
        stream.FT = kFlashTP;
        for (std::size_t i = 0; i < m.z.size(); ++i) stream.Z[i + 1] = m.z[i];
    }
};

// Flashes a fresh copy of the case's stream per iteration; any run-log line
// (a failure or a warning) spoils the measurement.
template <class Run>
void measure(benchmark::State& state, Case& c, const FlashStream& start, Run run) {
    for (auto _ : state) {
        FlashStream s = start;
        benchmark::DoNotOptimize(run(c.ctx, c.setup, s));
    }
    if (!c.ctx.run_log_text.empty()) state.SkipWithError(c.ctx.run_log_text.c_str());
}

void BM_FlashTP(benchmark::State& state) {
    Case c(static_cast<int>(state.range(0)));
    measure(state, c, c.stream, FlashTP);
}
BENCHMARK(BM_FlashTP)->Arg(2)->Arg(10)->Arg(20)->Unit(benchmark::kMicrosecond);

void BM_FlashWithProperties(benchmark::State& state) {
    Case c(static_cast<int>(state.range(0)));
    measure(state, c, c.stream, Flash);
}
BENCHMARK(BM_FlashWithProperties)->Arg(2)->Arg(10)->Arg(20)->Unit(benchmark::kMicrosecond);

// From a cold start at 300 K (MFLASHR off) and from the stream's own T.
void BM_FlashPH(benchmark::State& state) {
    Case c(10);
    c.setup.MFLASHR = state.range(0) != 0;
    FlashStream tp = c.stream;
    Flash(c.ctx, c.setup, tp);
    tp.FT = kFlashPH;
    measure(state, c, tp, Flash);
}
BENCHMARK(BM_FlashPH)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
