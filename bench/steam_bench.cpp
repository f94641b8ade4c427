// Cost of one Steam97 call in each IF97 region (enthalpy), and of the
// transport properties that follow it for pure water.
#include <benchmark/benchmark.h>

#include "thermo/steam_if97.hpp"

namespace {

// Region 3 includes its volume search (Regula Falsi on the region 3 pressure).
void BM_Steam97(benchmark::State& state, double T, double P, int phase) {
    velm::RecordingInteraction ui;
    velm::RunContext ctx(ui);
    for (auto _ : state) {
        benchmark::DoNotOptimize(velm::Steam97(ctx, T, P, phase, velm::kSteamEnthalpy));
    }
}
BENCHMARK_CAPTURE(BM_Steam97, region1_liquid_300K_3MPa, 300.0, 3.0, velm::kSteamLiquid);
BENCHMARK_CAPTURE(BM_Steam97, region2_vapor_700K_30MPa, 700.0, 30.0, velm::kSteamVapor);
BENCHMARK_CAPTURE(BM_Steam97, region3_liquid_650K_25MPa, 650.0, 25.5837018, velm::kSteamLiquid);
BENCHMARK_CAPTURE(BM_Steam97, region3_vapor_650K_22MPa, 650.0, 22.2930643, velm::kSteamVapor);
BENCHMARK_CAPTURE(BM_Steam97, region5_vapor_1500K_5MPa, 1500.0, 5.0, velm::kSteamVapor);

void BM_Visc97(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(velm::Visc97(373.15, 958.0));
}
BENCHMARK(BM_Visc97);

void BM_Cond97(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(velm::Cond97(373.15, 958.0));
}
BENCHMARK(BM_Cond97);

}  // namespace
