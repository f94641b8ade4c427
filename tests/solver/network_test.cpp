// Whole runs: networks that must converge to a state that satisfies every row
// of their system, a gravity flow against an independent Bernoulli balance,
// and the run driver's messages.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "correlations/pipe.hpp"
#include "correlations/sizing.hpp"
#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "solver/network.hpp"
#include "solver/run.hpp"
#include "tests/grid_network.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

struct Session {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    explicit Session(const std::string& name) {
        ctx.data_dir = scratch_dir(name);
        NewProject(p);
        EXPECT_TRUE(ReadPipeLib(ctx, p.pipedata));
    }
    void load(const std::string& example) {
        ASSERT_TRUE(ReadVdf(ctx, p, std::string(VELM_SOURCE_DIR) + "/examples/" + example));
    }
    RunResult run() { return Hydr_Sim(ctx, p); }
    std::string file(const std::string& name) const {
        std::ifstream in(ctx.run_file(name), std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        return s.str();
    }
};

// The value of each unknown as the records hold it after a solve.
std::vector<double> unknowns(const Project& p, const Columns& c) {
    std::vector<double> x(static_cast<std::size_t>(c.num_vars) + 1, 0.0);
    auto put = [&](int col, double v) { x[static_cast<std::size_t>(col)] = v; };
    for (int i = 1; i <= count(p.feeds); ++i) {
        put(Columns::first(c.feed, i), p.feeds[i].PRES.value);
        put(Columns::second(c.feed, i), p.feeds[i].POUT.value);
    }
    for (int i = 1; i <= count(p.prods); ++i) {
        put(Columns::first(c.prod, i), p.prods[i].PIN.value);
        put(Columns::second(c.prod, i), p.prods[i].PRES.value);
    }
    auto two = [&](const auto& v, int base) {
        for (int i = 1; i <= count(v); ++i) {
            put(Columns::first(base, i), v[i].PIN.value);
            put(Columns::second(base, i), v[i].POUT.value);
        }
    };
    two(p.valves, c.valve), two(p.checks, c.check), two(p.pumps, c.pump), two(p.comps, c.comp);
    two(p.hxs, c.hx), two(p.fos, c.fo), two(p.miscs, c.misc), two(p.expands, c.expand);
    for (int i = 1; i <= count(p.tees); ++i)
        for (int j = 1; j <= 3; ++j) put(c.tee + 3 * (i - 1) + j, p.tees[i].PRES[j]);
    for (int i = 1; i <= count(p.juncs); ++i) put(c.junc + i, p.juncs[i].PRES.value);
    for (int i = 1; i <= count(p.vessels); ++i) put(c.vessel + i, p.vessels[i].PRES.value);
    for (int i = 1; i <= count(p.lines); ++i) {
        const double w = p.lines[i].TFLOW.value;
        put(c.line + i, w * std::fabs(w));
    }
    return x;
}

TEST(Network, ExamplesConvergeToAStateThatSatisfiesEveryRow) {
    for (const char* example : {"gravity_transfer.vdf", "cooling_water_loop.vdf", "flash_drum.vdf", "pump_loop.vdf",
                                "compressor_station.vdf", "tee_header.vdf"}) {
        Session s("rows");
        s.load(example);
        s.ctx.soserror = 1e-12;
        s.ctx.max_iter = 200;
        const RunResult r = s.run();
        ASSERT_TRUE(r.all_converged()) << example << ": " << r.title;
        // Rebuild the system at the converged state: every row must hold.
        Network net;
        Matrix_Setup(s.ctx, s.p, net, 1, r.cases.back().case_no);
        ASSERT_EQ(net.NumSpecs, net.NumVars) << example;
        const std::vector<double> x = unknowns(s.p, net.cols);
        for (int row = 1; row <= net.NumSpecs; ++row) {
            double lhs = 0.0, scale = std::fabs(net.B[static_cast<std::size_t>(row)]);
            for (int k = net.IA[static_cast<std::size_t>(row)]; k < net.IA[static_cast<std::size_t>(row) + 1]; ++k) {
                const double term = net.A[static_cast<std::size_t>(k)] * x[static_cast<std::size_t>(net.JA[static_cast<std::size_t>(k)])];
                lhs += term;
                scale = std::max(scale, std::fabs(term));
            }
            EXPECT_NEAR(lhs, net.B[static_cast<std::size_t>(row)], 1e-6 * std::max(scale, 1.0)) << example << " row " << row;
        }
        // Mass balance at every junction and vessel.
        auto balance = [&](const auto& node, const char* what) {
            double in = 0.0, out = 0.0, through = 0.0;
            for (int n = 1; n <= kNozzles; ++n) {
                if (node.NOZI[n].CON) in += s.p.lines[node.NOZI[n].CON].TFLOW.value;
                if (node.NOZO[n].CON) out += s.p.lines[node.NOZO[n].CON].TFLOW.value;
            }
            through = std::max(std::fabs(in), std::fabs(out));
            EXPECT_NEAR(in, out, 1e-6 * through) << example << " " << what;
        };
        for (int i = 1; i <= count(s.p.juncs); ++i) balance(s.p.juncs[i], "junction");
        for (int i = 1; i <= count(s.p.vessels); ++i) balance(s.p.vessels[i], "vessel");
        // Every line between boundaries and junctions: its drop is its coefficient times W|W|.
        for (int i = 1; i <= count(s.p.lines); ++i) {
            Line& l = s.p.lines[i];
            if (std::string(example) == "flash_drum.vdf") break;  // vessel nozzles add their own terms
            const double W = l.TFLOW.value;
            const double C = PipeDP(s.ctx, s.p.gen, l, l.ID.value, l.IDH.value, "W2");
            const double drop = l.PRES[1] - l.PRES[2] - l.DPELEV;
            EXPECT_NEAR(drop, C * W * std::fabs(W), 1e-6 * std::fabs(drop)) << example << " line " << i;
        }
    }
}

// The fast sparse LU in place of the reference elimination: every example
// takes the same iterations to the same flows and pressures.
TEST(Network, TheFastSolveRunsEveryExampleAsTheReferenceDoes) {
    for (const char* example : {"gravity_transfer.vdf", "cooling_water_loop.vdf", "flash_drum.vdf", "pump_loop.vdf",
                                "compressor_station.vdf", "tee_header.vdf", "condensate_return.vdf",
                                "line_sizing.vdf"}) {
        std::vector<double> flows[2], pressures[2];
        std::vector<int> iterations[2];
        for (int k = 0; k < 2; ++k) {
            Session s("fast");
            s.load(example);
            s.ctx.linear_solver = k == 0 ? LinearSolver::Reference : LinearSolver::Klu;
            const RunResult r = s.run();
            ASSERT_TRUE(r.all_converged()) << example << ": " << r.title;
            for (const CaseResult& c : r.cases) iterations[k].push_back(c.iterations);
            for (int i = 1; i <= count(s.p.lines); ++i) {
                flows[k].push_back(s.p.lines[i].TFLOW.value);
                pressures[k].push_back(s.p.lines[i].PRES[1]);
            }
        }
        EXPECT_EQ(iterations[0], iterations[1]) << example;
        for (std::size_t i = 0; i < flows[0].size(); ++i) {
            EXPECT_NEAR(flows[1][i], flows[0][i], 1e-9 * std::max(1.0, std::fabs(flows[0][i]))) << example << " " << i;
            EXPECT_NEAR(pressures[1][i], pressures[0][i], 1e-9 * std::max(1.0, std::fabs(pressures[0][i])))
                << example << " " << i;
        }
    }
}

// Newton steps on the continuity rows reach the successive scheme's flows,
// and in fewer iterations wherever junctions, tees or vessels balance flows.
TEST(Network, NewtonStepsReachTheSameFlowsInFewerIterations) {
    struct Row { const char* example; bool fewer; };
    const Row rows[] = {
        {"gravity_transfer.vdf", true}, {"cooling_water_loop.vdf", true}, {"flash_drum.vdf", true},
        {"pump_loop.vdf", true},        {"compressor_station.vdf", false}, {"tee_header.vdf", true},
        {"condensate_return.vdf", false}, {"line_sizing.vdf", true},
    };
    for (const Row& r : rows) {
        std::vector<double> flows[2];
        int iterations[2] = {0, 0};
        for (int k = 0; k < 2; ++k) {
            Session s("newton");
            s.load(r.example);
            s.ctx.newton = k == 1;
            s.ctx.soserror = 1e-9;
            s.ctx.max_iter = 200;
            const RunResult res = s.run();
            ASSERT_TRUE(res.all_converged()) << r.example << ": " << res.title;
            for (const CaseResult& c : res.cases) iterations[k] += c.iterations;
            for (int i = 1; i <= count(s.p.lines); ++i) flows[k].push_back(s.p.lines[i].TFLOW.value);
        }
        for (std::size_t i = 0; i < flows[0].size(); ++i)
            EXPECT_NEAR(flows[1][i], flows[0][i], 1e-6 * std::max(1.0, std::fabs(flows[0][i]))) << r.example << " " << i;
        if (r.fewer) EXPECT_LT(iterations[1], iterations[0]) << r.example;
        else EXPECT_LE(iterations[1], iterations[0]) << r.example;
    }
}

// Meshed grids: Newton steps converge quadratically once near, to the flows
// of the successive scheme, which halves its error each step (39 and 38
// steps to 1e-9). A line row left at its lagged coefficient, or flows taken
// as the root of X, converge linearly and take several steps more. Pumps on
// their curves keep the curve's least slope in their rows, which the Newton
// steps do not undo: there the error falls by about 0.3 a step.
TEST(Network, NewtonStepsConvergeQuadraticallyOnMeshedGrids) {
    struct Row { const char* name; int rows, cols; bool equipment, sparse; int most_newton; double fewer_by; };
    const Row rows[] = {
        {"full 12 x 12", 12, 12, false, false, 7, 5.0},
        {"sparse 16 x 16", 16, 16, false, true, 7, 5.0},
        {"full 12 x 12 with pumps and valves", 12, 12, true, false, 24, 1.5},
    };
    for (const Row& r : rows) {
        std::vector<double> flows[2];
        int iterations[2] = {0, 0};
        for (int k = 0; k < 2; ++k) {
            Session s("newton_grid");
            s.p = grid_network(s.ctx, r.rows, r.cols, r.equipment, r.sparse);
            s.ctx.newton = k == 1;
            s.ctx.soserror = 1e-9;
            s.ctx.max_iter = 200;
            const RunResult res = s.run();
            ASSERT_TRUE(res.all_converged()) << r.name << ": " << res.title;
            iterations[k] = res.cases.back().iterations;
            for (int i = 1; i <= count(s.p.lines); ++i) flows[k].push_back(s.p.lines[i].TFLOW.value);
        }
        for (std::size_t i = 0; i < flows[0].size(); ++i)
            EXPECT_NEAR(flows[1][i], flows[0][i], 1e-6 * std::max(1.0, std::fabs(flows[0][i]))) << r.name << " " << i;
        EXPECT_LE(iterations[1], r.most_newton) << r.name;
        EXPECT_LT(r.fewer_by * iterations[1], iterations[0]) << r.name;
    }
}

// Colebrook-White solved to machine precision, independently of the program.
double colebrook(double re, double rel_rough) {
    double x = 8.0;  // 1/sqrt(f)
    for (int i = 0; i < 100; ++i) x = -2.0 * std::log10(rel_rough / 3.7 + 2.51 * x / re);
    return 1.0 / (x * x);
}

TEST(Network, GravityTransferMatchesAnIndependentBernoulliBalance) {
    Session s("gravity");
    s.load("gravity_transfer.vdf");
    s.ctx.soserror = 1e-12;
    s.ctx.max_iter = 200;
    ASSERT_TRUE(s.run().all_converged());
    const Line& l = s.p.lines[1];
    // Surface of the day tank 12 + 2.5 m, of the storage tank 0 + 4 m, both open.
    const double rho = 998.2, mu = 1.002e-3, g = 9.81, dz = (12.0 + 2.5) - (0.0 + 4.0);
    const double D = 0.07793, L = 85.0, eps = 4.57e-05;  // 3 in schedule 40 (ASME B36.10M)
    const double fT = std::pow(1.0 / (2.0 * std::log10(D / eps) + 1.14), 2);  // rough-pipe law, Crane TP-410
    // Losses in velocity heads: the acceleration into the pipe (1), entrance 0.5,
    // exit 1, two gate valves (L/D 8) and four elbows (L/D 20) at fT, and f L/D.
    double v = 2.0;
    for (int i = 0; i < 200; ++i) {
        const double f = colebrook(rho * v * D / mu, eps / D);
        const double k = 1.0 + 0.5 + 1.0 + fT * (2 * 8 + 4 * 20) + f * L / D;
        v = std::sqrt(2.0 * g * dz / k);
    }
    const double W = rho * v * 3.141592654 / 4.0 * D * D * 3.6;  // t/h
    EXPECT_NEAR(l.TFLOW.value, W, 0.005 * W);
}

// An "E" is an equation at a product's drop and a feed's pressure, but not at
// a feed's drop, where it is no number (a drop of 0): the flow must not move.
TEST(Network, UserEquationsStandOnlyWhereTheyAreHonoured) {
    Session s("equations");
    s.load("gravity_transfer.vdf");
    ASSERT_TRUE(s.run().all_converged());
    const double W = s.p.lines[1].TFLOW.value;
    s.p.feeds[1].DP.spec = "E";
    s.p.feeds[1].EQN.EQN1 = 2;  // as an equation it would fix the drop at 50 kPa
    s.p.feeds[1].EQN.EQN6 = 50.0;
    ASSERT_TRUE(s.run().all_converged());
    EXPECT_NEAR(s.p.lines[1].TFLOW.value, W, 1e-6 * W);
    // At the product the same equation takes the drop's row, and the flow moves.
    s.p.feeds[1].DP.spec = "0";
    s.p.prods[1].DP.spec = "E";
    s.p.prods[1].EQN = s.p.feeds[1].EQN;
    s.run();
    EXPECT_GT(std::fabs(s.p.lines[1].TFLOW.value - W), 0.01 * W);
}

// A small network built in code: feed - line - junction - line - product.
void simple_network(Project& p, int lines = 2) {
    auto add = [](auto& v) {
        v.push_back(v[0]);
        return static_cast<int>(v.size()) - 1;
    };
    for (int i = 0; i < lines; ++i) add(p.lines), p.lines.back().NAME[1] = "L" + std::to_string(i + 1);
    const int f = add(p.feeds), d = add(p.prods);
    p.feeds[f].NAME[1] = "F1";
    p.prods[d].NAME[1] = "P1";
    p.feeds[f].NOZ.CON = 1;
    p.prods[d].NOZ.CON = lines;
    if (lines == 2) {
        const int j = add(p.juncs);
        p.juncs[j].NAME[1] = "J1";
        p.juncs[j].NOZI[1].CON = 1;
        p.juncs[j].NOZO[1].CON = 2;
    }
}

TEST(Network, ConnectivityFaultsStopTheRunWithTheirMessage) {
    struct Row {
        const char* what;
        void (*edit)(Project&);
        const char* message;
    };
    const Row rows[] = {
        {"feed without a line", [](Project& p) { p.feeds[1].NOZ.CON = 0; }, "Error! Feed F1 has no outlet line."},
        {"junction on both sides of a line", [](Project& p) { p.juncs[1].NOZO[1].CON = 1; },
         "Error! Junction J1 has same inlet and outlet line."},
        {"tee with one line",
         [](Project& p) {
             p.tees.push_back(p.tees[0]);
             p.tees[1].NAME[1] = "T1";
             p.tees[1].CON[1] = 1;
         },
         "Error! Tee T1 has less than 2 lines."},
        {"a free line end", [](Project& p) { p.prods[1].NOZ.CON = 1; p.feeds.resize(1); p.juncs.resize(1); },
         "Error! Line L1 inlet or outlet is not connected to equipment."},
        {"a link to a missing line", [](Project& p) { p.prods[1].NOZ.CON = 9; },
         "Error! Product P1 is linked to line 9, which does not exist."},
    };
    for (const Row& r : rows) {
        Session s("connectivity");
        simple_network(s.p);
        r.edit(s.p);
        const RunResult res = s.run();
        EXPECT_EQ(res.title, "Runlog - Problem solution NOT reached.") << r.what;
        EXPECT_EQ(res.message, r.message) << r.what;
        EXPECT_EQ(s.file("resulth.rtf"), "End of file }\r\n") << r.what;
        EXPECT_EQ(s.file("runlog.txt"), std::string("RunLog.\r\nCheck input.\r\n") + r.message) << r.what;
    }
}

TEST(Network, SpecificationCountMustMatchTheUnknowns) {
    Session s("specs");
    simple_network(s.p);
    s.p.prods[1].DP.spec = "";  // one specification fewer
    s.p.gen.CASENO = "2";
    const RunResult r = s.run();
    EXPECT_EQ(r.message,
              "Case 2 Error! Number of Specs less than Variables.\r\nError! Increase number of independent specifications.");
    s.p.prods[1].DP.spec = "0";
    s.p.lines[1].TFLOW.spec = "50";  // one more
    EXPECT_EQ(s.run().message,
              "Case 2 Error! Number of Specs more than Variables.\r\nError! Reduce number of independent specifications.");
}

TEST(Network, CasesRunInTheirListedOrderAndOneIterationNeverConverges) {
    Session s("cases");
    simple_network(s.p);
    s.p.gen.CASENO = "2;1";
    s.p.prods[1].PRES.spec = "100;300";
    s.ctx.max_iter = 1;
    const RunResult r = s.run();
    ASSERT_EQ(r.cases.size(), 2u);
    EXPECT_EQ(r.cases[0].case_no, 2);
    EXPECT_EQ(r.cases[1].case_no, 1);
    EXPECT_FALSE(r.all_converged());
    EXPECT_EQ(r.title, "Runlog - Case 1 solution NOT reached after 1 iterations.");
    EXPECT_NE(s.file("runlog.txt").find("Case 2 Error! Hydraulic solution NOT reached after 1 iterations."),
              std::string::npos);
}

TEST(Network, APressureBelowAbsoluteZeroComesBackAsOneAtmosphere) {
    Session s("reset");
    simple_network(s.p);
    s.p.feeds[1].PRES.spec = "0";
    s.p.prods[1].PRES.spec = "";
    s.p.lines[2].TFLOW.spec = "400";  // far more than a 4 in line passes from atmospheric pressure
    s.ctx.max_iter = 2;
    s.run();
    EXPECT_NE(s.file("runlog.txt").find("Error! Inlet pressure for Product 1 below zero abs. Reset."), std::string::npos);
    EXPECT_EQ(s.p.prods[1].PIN.value, 101.325 - s.p.gen.PATM);
    EXPECT_EQ(s.p.prods[1].COLOR, s.p.color_error);
}

TEST(Network, ResumedRunKeepsPressuresButResetsImpossibleOnes) {
    Session s("resume");
    simple_network(s.p);
    s.p.lines[1].PRES[1] = 2000000.0;
    s.p.lines[2].PRES[1] = 500.0;
    s.ctx.resume_run = true;
    s.ctx.max_iter = 0;
    s.run();
    const std::string log = s.file("runlog.txt");
    EXPECT_NE(log.find("Warning! Inlet presssure for line 1 reset."), std::string::npos);
    EXPECT_EQ(log.find("Warning! Inlet presssure for line 2 reset."), std::string::npos);
}

TEST(Network, TheMessageThatFillsTheRunLogIsDropped) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    ctx.data_dir = scratch_dir("flush");
    ctx.run_active = true;
    ctx.run_log_text = "RunLog.";
    const std::string line(100, 'x');
    int written = 0;
    while (ctx.run_log_text.size() < kRunLogFlushChars) ctx.log_error(line + std::to_string(written++));
    ctx.log_error("dropped");
    ctx.log_error("kept");
    const std::string shown = ctx.log_line();
    EXPECT_LE(shown.size(), kRunLogFlushChars + line.size() + 8);  // what is shown stops at the mark
    std::ifstream in(ctx.run_file("runlog.txt"), std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(file.find("dropped"), std::string::npos);
    EXPECT_NE(file.find(line + std::to_string(written - 1)), std::string::npos);
    EXPECT_EQ(file.substr(file.size() - 6), "\r\nkept");
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

TEST(Sizing, ALineSizedForAGradientEndsAtTheSmallestSizeWithinIt) {
    for (double flow : {20.0, 50.0, 180.0}) {
        Session s("sizing");
        simple_network(s.p, 1);
        Line& l = s.p.lines[1];
        l.DIA[1] = "";
        l.SIZ[4] = l.SIZ[6] = 0.0;  // the gradient limit alone
        l.SIZ[2] = 22.6;
        l.TFLOW.spec = std::to_string(flow);
        s.p.feeds[1].PRES.spec = "500";
        s.p.prods[1].PRES.spec = "";
        s.ctx.max_iter = 50;
        const RunResult r = s.run();
        ASSERT_TRUE(r.all_converged()) << flow << " " << r.title;
        EXPECT_LE(l.DPL, 22.6) << flow << " t/h in " << l.DIA[2];
        EXPECT_FALSE(l.SizeDown.empty()) << flow;
        EXPECT_GT(l.dPDown, 22.6) << flow << " t/h: " << l.SizeDown << " would do";
        EXPECT_FALSE(l.SizeUp.empty()) << flow;
        EXPECT_LT(l.dPUp, l.DPL) << flow;
    }
}

TEST(Sizing, DiameterLimitsAreClampedWithTheirMessages) {
    Session s("sizing_limits");
    s.ctx.run_active = true;
    simple_network(s.p, 1);
    Line& l = s.p.lines[1];
    l.TPROP[3] = 1000.0;
    l.TFLOW.value = 10.0;
    l.SIZ = {};
    l.SIZ1 = "";
    EXPECT_EQ(ID_from_Flow(s.ctx, s.p, l), 0.001);
    l.SIZ1 = "Min";
    EXPECT_EQ(ID_from_Flow(s.ctx, s.p, l), 10.0);
    EXPECT_EQ(s.ctx.run_log_text,
              "\r\nLine size below minimum. Review input. Use 1 mm min.\r\nLine size out of range. Review input. Use 10 m max.");
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

TEST(TwoPhaseNetwork, EveryMethodConvergesAndAZeroPhaseDensityIsToldNotFatal) {
    for (const char* method : {"Homogeneous", "Dukler", "Lockhart-Martinelli", "Chisholm", "Chenoweth-Martin", "Beggs-Brill"}) {
        Session s("two_phase");
        s.load("condensate_return.vdf");
        s.p.gen.MTP = method;
        const RunResult r = s.run();
        EXPECT_TRUE(r.all_converged()) << method << ": " << r.title;
        EXPECT_EQ(s.p.lines[2].MTP, method);  // the method used is reported on the line
        EXPECT_NE(s.p.lines[2].REG[1], "-") << method;  // a regime was found for the two-phase line
    }
    Session s("two_phase_zero");
    s.load("condensate_return.vdf");
    s.p.lines[2].VAPVISC = {0, 0, 0};
    s.ctx.max_iter = 3;
    const RunResult r = s.run();
    EXPECT_EQ(r.cases.size(), 1u);  // the run goes on to the end of the case
    EXPECT_NE(s.file("runlog.txt").find("Error! Zero phase density/visc in 2-phase pipe dP function."), std::string::npos);
}

}  // namespace
}  // namespace velm
