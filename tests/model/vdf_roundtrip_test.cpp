#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/vdf_schema.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

// A project with one record of every kind, each with values of its own, and
// the built-in pipe table.
Project full_project(RunContext& ctx) {
    Project p;
    NewProject(p);
    EXPECT_TRUE(ReadPipeLib(ctx, p.pipedata));
    auto one = [](auto& v) { v.push_back(v[0]); };
    one(p.lines), one(p.feeds), one(p.prods), one(p.valves), one(p.checks), one(p.fos), one(p.hxs);
    one(p.pumps), one(p.comps), one(p.miscs), one(p.expands), one(p.juncs), one(p.tees), one(p.vessels);
    one(p.symbols), one(p.pseudos);
    p.lines[1].TFLOW = {"10;;E", 12.345678901234};
    p.lines[1].NOTES = "two\r\nlines with \"quotes\"";
    p.lines[1].XY[5] = 1234.5f;
    p.feeds[1].NOZ = Port{10.f, 20.f, 1, 1.5, 2.5, 3.5, 4.5, 5.5};
    p.vessels[1].NOZO[4].KFlow = 0.1 + 0.2;
    p.pumps[1].CURQ[10] = "1.5e-05";
    p.tees[1].C3 = 998.2;
    p.tools.keys.push_back({"PIPEI", {"\"L\",\"Pipe\",10,\"t/h\""}});
    p.gen.PRJ[4] = "Unit 300";
    p.lines[1].FILES.set(3, "P&ID 300-01.pdf");
    return p;
}

TEST(VdfRoundTrip, WriteReadWriteGivesTheSameBytes) {
    for (bool full : {false, true}) {
        RecordingInteraction ui;
        RunContext ctx(ui);
        Project a;
        if (full) a = full_project(ctx);
        else NewProject(a);
        const std::string b = WriteVdf(ctx, a);
        Project p;
        NewProject(p);
        int faults = -1;
        ASSERT_TRUE(read_vdf_text(ctx, p, b, nullptr, &faults));
        EXPECT_EQ(faults, 0);
        EXPECT_EQ(WriteVdf(ctx, p), b) << (full ? "full project" : "new project");
        EXPECT_TRUE(ui.told.empty()) << ui.told.front();
        if (full) {
            EXPECT_EQ(p.lines[1].TFLOW.spec, "10;;E");
            EXPECT_EQ(p.lines[1].TFLOW.value, 12.345678901234);
            EXPECT_EQ(p.lines[1].NOTES, a.lines[1].NOTES);
            EXPECT_EQ(p.lines[1].FILES[3], "P&ID 300-01.pdf");
            EXPECT_EQ(p.lines[1].FILES, a.lines[1].FILES);
            EXPECT_EQ(p.vessels[1].NOZO[4].KFlow, 0.1 + 0.2);  // 15 digits read back to the same double
            EXPECT_EQ(p.pipedata.size(), a.pipedata.size());
        }
    }
}

TEST(VdfRoundTrip, EveryKeyOfEverySectionIsWritten) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    const std::string text = WriteVdf(ctx, full_project(ctx));
    std::set<std::pair<std::string, std::string>> written;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const auto q = [&](std::size_t from) { return line.find('"', from); };
        const std::size_t s1 = q(0), s2 = q(s1 + 1), k1 = q(s2 + 1), k2 = q(k1 + 1);
        if (k2 == std::string::npos) continue;
        written.insert({line.substr(s1 + 1, s2 - s1 - 1), line.substr(k1 + 1, k2 - k1 - 1)});
    }
    // Keys that every section's records carry, and a few of each kind.
    for (auto [section, key] : std::vector<std::pair<std::string, std::string>>{
             {"\\GEN", "COMP2"},   {"\\GEN", "CCUREFF"}, {"\\PIPE", "FIT11"},  {"\\PIPE", "COMPOX2"},
             {"\\PIPE", "FILES"},  {"\\FEED", "POUT"},   {"\\PROD", "PIN"},    {"\\VALVE", "FP2"},
             {"\\CHECK", "LD"},    {"\\FO", "CHOKE"},    {"\\HX", "Q"},        {"\\PUMP", "NPSHRE"},
             {"\\COMP", "CUREFF"}, {"\\MISC", "VOLBAL"}, {"\\EXPAND", "ANGLE"}, {"\\JUNC", "NOZO"},
             {"\\TEE", "B"},       {"\\VESSEL", "NOZI"}, {"\\SYMBOL", "FSIZ"}, {"\\TOOLS", "PIPEI"},
             {"\\PSEUDO", "ANT"},  {"\\PIPEDATA", "DIA"}})
        EXPECT_TRUE(written.count({section, key})) << section << " " << key;
    // Keys of old files are read but never written.
    for (auto [section, key] : std::vector<std::pair<std::string, std::string>>{
             {"\\PIPE", "FITA"}, {"\\PIPE", "LPROP"}, {"\\PUMP", "HQ"}, {"\\GEN", "MPNSIZ"}})
        EXPECT_FALSE(written.count({section, key})) << section << " " << key;
}

// A line's linked files: a copy holds its own names, a name given and taken
// back leaves the line as one that never had any, and places outside 1..10
// hold nothing.
TEST(LinkedFiles, CopiesAreValuesAndEmptyNamesEqualNone) {
    LinkedFiles a, none;
    a.set(2, "a.pdf");
    LinkedFiles b = a;
    b.set(2, "b.pdf");
    EXPECT_EQ(a[2], "a.pdf");
    EXPECT_EQ(b[2], "b.pdf");
    EXPECT_FALSE(a == b);
    b = none;
    EXPECT_EQ(b[2], "");
    a.set(2, "");
    EXPECT_EQ(a, none);
    a.set(0, "x"), a.set(11, "y");
    EXPECT_EQ(a, none);
    EXPECT_EQ(a[11], "");
}

TEST(VdfRoundTrip, AFailedSaveLeavesTheOldFile) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    Project p;
    NewProject(p);
    const auto dir = scratch_dir("save");
    const auto file = dir / "a.vdf";
    ASSERT_TRUE(save_vdf(ctx, p, file));
    const auto size = std::filesystem::file_size(file);
    // A target inside a directory that does not exist cannot be written.
    EXPECT_FALSE(save_vdf(ctx, p, dir / "missing" / "b.vdf"));
    ASSERT_EQ(ui.told.size(), 1u);
    EXPECT_EQ(ui.told[0].rfind("Error writing file = 75 : ", 0), 0u);
    EXPECT_EQ(std::filesystem::file_size(file), size);
    std::filesystem::remove_all(dir);
}

TEST(NewProject, CountsAreZeroAndTemplatesHoldTheDefaults) {
    Project p;
    NewProject(p);
    EXPECT_EQ(count(p.lines) + count(p.feeds) + count(p.vessels) + count(p.pseudos), 0);
    EXPECT_EQ(p.feeds[0].PRES.spec, "400");
    EXPECT_EQ(p.prods[0].PRES.spec, "50");
    EXPECT_EQ(p.lines[0].FIT[11].count, 1);
    EXPECT_EQ(p.lines[0].FIT[3].name, "Gate valve  ");
    EXPECT_EQ(p.gen.CASEDSC, "NORMAL;RATED;MINIMUM");
    EXPECT_EQ(p.pseudos[0].NAME_NUM[2], 9000);
    // The calculators copy the templates and add their own starting values.
    EXPECT_EQ(p.tools.pipe.line.SIZ[2], p.lines[0].SIZ[2]);
    EXPECT_EQ(p.tools.pipe.flow, 10.0);
    EXPECT_EQ(p.tools.pipe.size, "4");
    EXPECT_EQ(p.tools.pipe.roughness, 4.57e-05);
    EXPECT_EQ(p.tools.valve.valve.TYPE, p.valves[0].TYPE);
    EXPECT_EQ(p.tools.valve.densities_viscosity, (std::array<double, 3>{1.0, 1000.0, 1.0}));
    EXPECT_EQ(p.tools.valve.inlet_pressure, 175.0);
    EXPECT_EQ(p.tools.valve.reference, (std::array<double, 2>{1000.0, 100.0}));
    EXPECT_EQ(p.tools.orifice.fo.TYPE, p.fos[0].TYPE);
    EXPECT_EQ(p.tools.orifice.flow, 10.0);
    EXPECT_EQ(p.tools.orifice.pressures, (std::array<double, 2>{10.0, 0.1}));
}

}  // namespace
}  // namespace velm
