// PipeDP "W2" runs for every line on every solver pass: time one call on a
// turbulent liquid line and on an isothermal gas line.
#include <benchmark/benchmark.h>

#include "correlations/pipe.hpp"

namespace {

struct Setup {
    velm::RecordingInteraction ui;
    velm::RunContext ctx{ui};
    velm::Header gen;
    velm::Line line;

    Setup(double W, double rho1, double rho2, double mu, double LF) {
        ctx.run_active = true;
        gen.PATM = 101.325;
        gen.MCOMP = "Isothermal";
        gen.MTP = "Homogeneous";
        gen.MACCEL = "Homogeneous";
        line.TFLOW.value = W;
        line.EPS.value = 4.57e-05;
        line.LEN = 100.0;
        line.FAC = 1.0;
        line.FITLD = 60.0;
        line.FITK = 1.5;
        line.LF = {0.0, LF, LF, LF};
        line.TPROP[1] = rho1;
        line.TPROP[2] = rho2;
        line.TPROP[3] = 0.5 * (rho1 + rho2);
        line.TPROP[6] = mu;
    }
};

void run(benchmark::State& state, Setup& s, double ID) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(s.line);
        benchmark::DoNotOptimize(velm::PipeDP(s.ctx, s.gen, s.line, ID, ID, "W2"));
    }
    if (!s.ctx.run_log_text.empty()) state.SkipWithError("PipeDP logged a message");
}

void BM_PipeDP_W2_liquid(benchmark::State& state) {
    Setup s(50.0, 1000.0, 1000.0, 1.0, 1.0);  // water, 4 in sch 40
    run(state, s, 0.10226);
}
BENCHMARK(BM_PipeDP_W2_liquid);

void BM_PipeDP_W2_gas(benchmark::State& state) {
    Setup s(20.0, 33.0, 32.0, 0.011, 0.0);  // methane near 5000 kPa, 6 in sch 40
    run(state, s, 0.15405);
}
BENCHMARK(BM_PipeDP_W2_gas);

}  // namespace
