// One pass of the heat and mole balance (the solves, the vessel flashes, the
// line-end flashes) over a chain of N lines of a ten-component gas joined by
// valves, with a separator every 50 lines whose liquid leaves to a product.
// The flashes alone are measured apart, for their share of the pass.
#include <benchmark/benchmark.h>

#include <string>

#include "balance/balance.hpp"
#include "model/context.hpp"
#include "model/project_file.hpp"

namespace velm {
namespace {

constexpr const char* kComps = "3,8,13,14,15,16,17,18,19,20";
constexpr const char* kGas = "0.01,0.02,0.80,0.07,0.04,0.01,0.015,0.008,0.007,0.02";

std::string bench_line(int n, double flow, const char* spec) {
    const std::string i = "\"\\PIPE\"," + std::to_string(n) + ",";
    return i + "\"NAME\",\"L-" + std::to_string(n) + "\",\"\"\r\n" + i + "\"TFLOW\",\"" + spec + "\"," +
           std::to_string(flow) + ",\"t/h\"\r\n" + i + "\"TEMP\",40,40,40,\"C\"\r\n" + i +
           "\"PRES\",5000,5000,5000,\"kPag\"\r\n" + i + "\"COMP0\"," + kGas + "\r\n";
}

// Lines 1..n form the chain; each separator adds a liquid line to a product.
std::string chain(int n) {
    std::string pipes, valves, vessels, prods;
    int extra = n, nvalve = 0, nvessel = 0, nprod = 1;
    prods += "\"\\PROD\",1,\"NAME\",\"P-1\",\"\"\r\n\"\\PROD\",1,\"NOZ\"," + std::to_string(n) +
             ",0,\"m\",0,0,0,\"kPag\"\r\n";
    for (int k = 1; k <= n; ++k) pipes += bench_line(k, 50.0, k > 1 && (k - 1) % 50 == 0 ? "V" : "");
    for (int k = 1; k < n; ++k) {
        if (k % 50 == 0) {
            const std::string v = "\"\\VESSEL\"," + std::to_string(++nvessel) + ",";
            pipes += bench_line(++extra, 1.0, "");
            vessels += v + "\"NAME\",\"V-" + std::to_string(nvessel) + "\",\"\"\r\n" + v + "\"PRES\",\"4900\",0,\"kPag\"\r\n" +
                       v + "\"NOZI\",1," + std::to_string(k) + ",0,\"m\",0,\"kPag\",0,0,0,\"kPag\"\r\n" + v +
                       "\"NOZO\",1," + std::to_string(k + 1) + ",0,\"m\",0,\"kPag\",0,0,0,\"kPag\"\r\n" + v +
                       "\"NOZO\",2," + std::to_string(extra) + ",0,\"m\",0,\"kPag\",0,0,0,\"kPag\"\r\n";
            const std::string r = "\"\\PROD\"," + std::to_string(++nprod) + ",";
            prods += r + "\"NAME\",\"P-" + std::to_string(nprod) + "\",\"\"\r\n" + r + "\"NOZ\"," + std::to_string(extra) +
                     ",0,\"m\",0,0,0,\"kPag\"\r\n";
        } else {
            const std::string v = "\"\\VALVE\"," + std::to_string(++nvalve) + ",";
            valves += v + "\"NAME\",\"FV-" + std::to_string(nvalve) + "\",\"\"\r\n" + v + "\"CON\"," + std::to_string(k) +
                      "," + std::to_string(k + 1) + "\r\n";
        }
    }
    return "\"VELM_3.2\"\r\n\"\\GEN\",0,\"MFLASH\",\"Velm\"\r\n\"\\GEN\",0,\"COMP0\"," + std::string(kComps) +
           "\r\n\"\\PIPE\",0,\"NUM\"," + std::to_string(extra) + "\r\n" + pipes + "\"\\FEED\",0,\"NUM\",1\r\n" +
           "\"\\FEED\",1,\"NAME\",\"F-1\",\"\"\r\n\"\\FEED\",1,\"NOZ\",1,0,\"m\",0,0,0,\"kPag\"\r\n" +
           "\"\\PROD\",0,\"NUM\"," + std::to_string(nprod) + "\r\n" + prods + "\"\\VALVE\",0,\"NUM\"," +
           std::to_string(nvalve) + "\r\n" + valves + "\"\\VESSEL\",0,\"NUM\"," + std::to_string(nvessel) + "\r\n" +
           vessels;
}

struct Chain {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    BalanceState state;
    int log_errors = 0;  // "Error!" lines of the first pass: 0 when every flash is valid
    explicit Chain(int n) {
        ctx.run_active = true;
        NewProject(p);
        read_vdf_text(ctx, p, chain(n));
        HMB_Reset(ctx, p, state);
        double err = 0.0;
        MolHeatBalance(ctx, p, state, err);
        HMB_Flash(ctx, p, state, err, kFlashVessels | kFlashLineEnds);
        for (std::size_t at = 0; (at = ctx.run_log_text.find("Error!", at)) != std::string::npos; ++at) ++log_errors;
        ctx.run_log_text.clear();
    }
};

void BM_BalancePass(benchmark::State& st) {
    Chain c(static_cast<int>(st.range(0)));
    for (auto _ : st) {
        double err = 0.0;
        MolHeatBalance(c.ctx, c.p, c.state, err);
        HMB_Flash(c.ctx, c.p, c.state, err, kFlashVessels | kFlashLineEnds);
        c.ctx.run_log_text.clear();
        benchmark::DoNotOptimize(err);
    }
    st.counters["log_errors"] = c.log_errors;
    st.counters["us_per_line"] =
        benchmark::Counter(static_cast<double>(count(c.p.lines)), benchmark::Counter::kIsIterationInvariantRate |
                                                                        benchmark::Counter::kInvert);
}
BENCHMARK(BM_BalancePass)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void BM_BalanceFlashesOnly(benchmark::State& st) {
    Chain c(static_cast<int>(st.range(0)));
    for (auto _ : st) {
        double err = 0.0;
        HMB_Flash(c.ctx, c.p, c.state, err, kFlashVessels | kFlashLineEnds);
        c.ctx.run_log_text.clear();
        benchmark::DoNotOptimize(err);
    }
}
BENCHMARK(BM_BalanceFlashesOnly)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velm
