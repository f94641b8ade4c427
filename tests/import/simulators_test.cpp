// The simulator layer: every stage of the HYSYS flash and of the stream
// reads, driven through a double of the server, to its failure text and to
// success; the merge of two liquid phases; this build's own server.
#include "import/simulators.hpp"

#include <gtest/gtest.h>

#include <map>

#include "import/stream_import.hpp"
#include "model/context.hpp"
#include "model/project_file.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

// A server that answers every request until the one numbered fail_at (from
// 1), which it refuses; it records the conditions it was given.
class FakeHysys : public HysysServer {
public:
    int fail_at = 0;
    int calls = 0;
    std::vector<std::string> components;
    double T = 0, P = 0, vf = -1, molar_h = 0;
    SimulatorPhase vap{0, 12.0, 20.0, 0.9, 0.011, 1.25, 500.0, 0.03, 2.1, 0, 0, {0.9, 0.1}};
    std::array<SimulatorPhase, 2> liq{
        SimulatorPhase{600.0, 600.0, 60.0, 0, 0.3, 0, 100.0, 0.12, 2.4, 10.0, 15.0, {0.2, 0.8}},
        SimulatorPhase{400.0, 1000.0, 18.0, 0, 0.9, 0, 200.0, 0.6, 4.2, 22.2, 70.0, {0.0, 1.0}}};

    void step() {
        if (++calls == fail_at) throw SimulatorRefused{};
    }
    void create_case(const std::filesystem::path&) override { step(); }
    void set_basis(const std::string&, const std::string&) override { step(); }
    void add_components(const std::vector<std::string>& n) override { step(), components = n; }
    void add_stream(const std::string&) override { step(); }
    void keep_stream(const std::string&) override { step(); }
    void set_composition(const std::vector<double>&) override { step(); }
    void erase_specifications() override { step(); }
    void set_temperature(double v) override { step(), T = v; }
    void set_pressure(double v) override { step(), P = v; }
    void set_vapour_fraction(double v) override { step(), vf = v; }
    void set_molar_enthalpy(double v) override { step(), molar_h = v; }
    void set_molar_entropy(double) override { step(); }
    void set_mass_flow(double) override { step(); }
    bool solved() override { return step(), true; }
    SimulatorState state() override { return step(), SimulatorState{T, P, 0.4, 0.5, -150.0, 3.2, 30.0}; }
    std::vector<double> composition() override { return step(), std::vector<double>{0.5, 0.5}; }
    int phase_count() override { return step(), 3; }
    SimulatorPhase vapour() override { return step(), vap; }
    std::array<SimulatorPhase, 2> liquids() override { return step(), liq; }
    void connect() override { step(); }
    void open_case(const std::filesystem::path&) override { step(); }
    void find_stream(const std::string&) override { step(); }
};

struct Session {
    RecordingInteraction ui;
    RunContext ctx{ui};
    FlashSetup setup;
    Session() {
        ctx.run_active = true;
        setup.comps.resize(3);
        setup.comps[1].Name = "Methane   ";
        setup.comps[2].Name = "Water";
        setup.MHYSYS = "Peng-Robinson";
    }
};

TEST(Hysys, EveryStageOfStartAndFlashFailsWithItsText) {
    const std::vector<std::string> start = {"Cannot start Hysys.", "Cannot set Hysys basis.",
                                            "Cannot add Hysys components.", "Cannot add Hysys streams.",
                                            "Cannot set Hysys stream compositions."};
    for (std::size_t k = 0; k < start.size(); ++k) {
        Session s;
        FakeHysys h;
        h.fail_at = static_cast<int>(k) + 1;
        EXPECT_FALSE(HysysStart(s.ctx, h, s.setup, "/tmp"));
        EXPECT_EQ(take_run_log(s.ctx), std::vector<std::string>{"Error! " + start[k]});
    }
    // A TP flash asks: composition, erase, T, P, mass flow, solved, state,
    // composition, phase count, vapour, liquids.
    const std::map<int, std::string> flash = {
        {1, "Cannot set Hysys stream compositions."}, {2, "Cannot set Hysys flash conditions."},
        {4, "Cannot set Hysys flash conditions."},    {6, "Flash failed."},
        {7, "Cannot retrieve Hysys stream properties."}, {8, "Cannot retrieve Hysys stream composition."},
        {10, "Cannot retrieve Hysys vapor/liquid properties."}, {11, "Cannot calculate Hysys liquid properties."}};
    for (const auto& [at, text] : flash) {
        Session s;
        FakeHysys h;
        h.fail_at = at;
        FlashStream fs;
        fs.FT = kFlashTP;
        fs.T = 300.0;
        fs.P = 500.0;
        const FlashStream before = fs;
        EXPECT_FALSE(FlashHysys(s.ctx, h, s.setup, fs)) << at;
        EXPECT_EQ(take_run_log(s.ctx), std::vector<std::string>{"Error! " + text}) << at;
        EXPECT_EQ(fs.H, before.H) << "a failed flash keeps the stream";
    }
}

TEST(Hysys, AFlashReadsTheStreamBackAndMergesTheLiquids) {
    Session s;
    FakeHysys h;
    ASSERT_TRUE(HysysStart(s.ctx, h, s.setup, "/tmp"));
    EXPECT_EQ(h.components, (std::vector<std::string>{"Methane", "Water"}));
    FlashStream fs;
    fs.FT = kFlashPH;
    fs.P = 500.0;
    fs.H = -150.0;
    fs.TOTMW = 30.0;
    ASSERT_TRUE(FlashHysys(s.ctx, h, s.setup, fs));
    EXPECT_EQ(h.molar_h, -4500.0) << "kJ/kg times the mole weight";
    EXPECT_EQ(fs.LF, 0.6);
    EXPECT_EQ(fs.VF, 0.5);
    EXPECT_EQ(fs.VAPK, 1.25);
    EXPECT_EQ(fs.Y[1], 0.9);
    // 600 kg/h at 600 kg/m3 and 400 kg/h at 1000 kg/m3: 1.4 m3/h, 714.29 kg/m3;
    // 10 and 22.2 kgmole/h: MW (60*10 + 18*22.2)/32.2 = 31.04.
    EXPECT_NEAR(fs.LIQDEN, 1000.0 / 1.4, 1e-9);
    EXPECT_NEAR(fs.LIQVISC, 0.6 * 0.3 + 0.4 * 0.9, 1e-12);
    EXPECT_NEAR(fs.LIQSUR, 0.6 * 15.0 + 0.4 * 70.0, 1e-12);
    EXPECT_NEAR(fs.LIQMW, (60.0 * 10.0 + 18.0 * 22.2) / 32.2, 1e-12);
    EXPECT_NEAR(fs.X[2], (0.8 * 10.0 + 1.0 * 22.2) / 32.2, 1e-12);
    EXPECT_TRUE(take_run_log(s.ctx).empty());
}

// A liquid fraction by weight becomes the molar vapour fraction the server
// takes, through the vapour's mole weight: (1 - 0.25) * 30 / 20.
TEST(Hysys, APressureFractionFlashSetsTheMolarSplit) {
    Session s;
    FakeHysys h;
    FlashStream fs;
    fs.FT = kFlashPF;
    fs.P = 500.0;
    fs.LF = 0.25;
    ASSERT_TRUE(FlashHysys(s.ctx, h, s.setup, fs));
    EXPECT_NEAR(h.vf, 0.75 * 30.0 / 20.0, 1e-12);
}

// An Aspen Plus document by its tree: the values of each stream by path.
class FakeAspen : public AspenDocument {
public:
    std::map<std::vector<std::string>, double> tree;
    void open(const std::filesystem::path&) override {}
    double value(const std::vector<std::string>& path) override {
        const auto it = tree.find(path);
        if (it == tree.end()) throw SimulatorRefused{};
        return it->second;
    }
};

TEST(Aspen, TheTreeWalkReadsEveryValueOrNamesWhereItStopped) {
    FakeAspen doc;
    const auto at = [](const char* key, const char* phase) {
        return std::vector<std::string>{"Data", "Streams", "S1", "Output", "STRM_UPP", key, phase, "TOTAL"};
    };
    doc.tree = {{at("TEMP", "MIXED"), 373.15}, {at("PRES", "MIXED"), 301.325}, {at("MASSVFRA", "MIXED"), 0.1},
                {at("HMX", "MIXED"), -1.5e4},  {at("SMX", "MIXED"), -9.0}};
    Session s;
    StreamValues v;
    EXPECT_FALSE(aspen_stream(s.ctx, doc, "S1", 101.325, v));
    EXPECT_EQ(take_run_log(s.ctx), std::vector<std::string>{"Error! Retrieving vapor viscosity."});
    for (const auto& [key, phase, value] : std::vector<std::tuple<const char*, const char*, double>>{
             {"MUMX", "VAPOR", 0.012}, {"MWMX", "VAPOR", 18.0}, {"ZMX", "VAPOR", 0.98}, {"CPCVMX", "VAPOR", 1.3},
             {"RHOMX", "LIQUID", 958.0}, {"MUMX", "LIQUID", 0.28}, {"SIGMAMX", "LIQUID", 58.9}})
        doc.tree[at(key, phase)] = value;
    ASSERT_TRUE(aspen_stream(s.ctx, doc, "S1", 101.325, v));
    const std::map<std::string, double> got(v.begin(), v.end());
    EXPECT_NEAR(got.at("TEMP"), 100.0, 1e-12);
    EXPECT_NEAR(got.at("PRES"), 200.0, 1e-12);
    EXPECT_NEAR(got.at("LF"), 0.9, 1e-12);
    EXPECT_EQ(got.at("LIQDEN"), 958.0);

    // The same stream through a whole import into a line of that stream name.
    Project p;
    NewProject(p);
    p.lines.push_back(p.lines[0]);
    p.lines[1].NAME[1] = "L-1";
    p.lines[1].STRM = "S1";
    s.ctx.data_dir = scratch_dir("aspen");
    import_simulator_streams(
        s.ctx, p, [&](const std::string& name, StreamValues& out) { return aspen_stream(s.ctx, doc, name, 101.325, out); },
        "run.apw", {true, false, true});
    EXPECT_NEAR(p.lines[1].TEMP[1], 100.0, 1e-12);
    EXPECT_EQ(p.lines[1].TEMP[2], p.lines[0].TEMP[2]) << "the outlet was not chosen";
    EXPECT_EQ(p.lines[1].LIQDEN[2], 958.0);
}

// The "HYSYS" engine of the one flash entry point goes through the server.
TEST(Hysys, TheFlashEngineGoesThroughTheServer) {
    Session s;
    FakeHysys h;
    s.setup.MFLASH = "Hysys";
    s.setup.hysys = &h;
    ASSERT_TRUE(HysysStart(s.ctx, s.setup, "/tmp"));
    FlashStream fs;
    fs.NAME = "S1";
    fs.FT = kFlashTP;
    fs.T = 320.0;
    fs.P = 800.0;
    fs.Z[1] = fs.Z[2] = 0.5;
    ASSERT_TRUE(Flash(s.ctx, s.setup, fs));
    EXPECT_EQ(h.T, 320.0);
    EXPECT_EQ(h.P, 800.0);
    EXPECT_EQ(fs.VAPK, 1.25);
    s.setup.hysys = nullptr;
    EXPECT_FALSE(HysysStart(s.ctx, s.setup, "/tmp"));
    EXPECT_EQ(take_run_log(s.ctx), std::vector<std::string>{"Error! Cannot start Hysys."});
}

// This build has no automation server, and says so in the program's words.
TEST(Simulators, ThisBuildHasNoServerAndSaysSo) {
    Session s;
    EXPECT_FALSE(HysysStart(s.ctx, *no_hysys_server(), s.setup, "/tmp"));
    EXPECT_FALSE(aspen_open(s.ctx, *no_aspen_document(), "run.apw"));
    EXPECT_FALSE(hysys_open(s.ctx, *no_hysys_server(), ""));
    EXPECT_EQ(take_run_log(s.ctx), (std::vector<std::string>{"Error! Cannot start Hysys.",
                                                               "Error! Cannot connect to Aspen file.",
                                                               "Error! Cannot connect to Hysys."}));
}

}  // namespace
}  // namespace velm
