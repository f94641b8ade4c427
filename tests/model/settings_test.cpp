// The settings file: what is written reads back, keys in any case and only
// in "Defaults", values cut at 128 characters, modes, the new-project
// defaults and run limits it carries, path macros and sheet sizes; and from
// the command line, a settings file that limits the iterations of a run.
#include "model/settings.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "tests/app/cli_support.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

namespace fs = std::filesystem;

TEST(Settings, WhatIsWrittenReadsBackAndModesSplitTheKeys) {
    const fs::path dir = scratch_dir("settings");
    RecordingInteraction ui;
    RunContext ctx(ui);
    Settings s;
    s.set("MaxIter", "50");
    s.set("gDirData", "{localappdata}/velm");
    s.set("Units", "British");
    s.set("ViewLock", std::string(200, '1'));
    EXPECT_EQ(s.find("ViewLock")->size(), 128u);
    ASSERT_TRUE(WriteSettings(ctx, dir / "velm" / "Velm.ini", "save", s));
    Settings every, once;
    ASSERT_TRUE(ReadSettings(ctx, dir / "velm" / "Velm.ini", "every", every));
    ASSERT_TRUE(ReadSettings(ctx, dir / "velm" / "Velm.ini", "once", once));
    ASSERT_NE(every.find("MaxIter"), nullptr);
    EXPECT_EQ(*every.find("MaxIter"), "50");
    EXPECT_EQ(*every.find("ViewLock"), std::string(128, '1'));
    EXPECT_EQ(every.find("gDirData"), nullptr);
    ASSERT_NE(once.find("gDirData"), nullptr);
    EXPECT_EQ(*once.find("gDirData"), "{localappdata}/velm");
    EXPECT_EQ(once.find("Units"), nullptr);

    // Keys in any case, only in [Defaults]; unknown keys and other sections ignored.
    std::ofstream(dir / "hand.ini") << "[Other]\nMaxIter=7\n[defaults]\n maxiter = 9 \nNoSuchKey=1\nsoserror=1e-5\n";
    Settings hand;
    ASSERT_TRUE(ReadSettings(ctx, dir / "hand.ini", "every", hand));
    EXPECT_EQ(hand.values.size(), 2u);
    ctx.max_iter = 20;
    apply_run_limits(hand, ctx);
    EXPECT_EQ(ctx.max_iter, 9);
    EXPECT_EQ(ctx.soserror, 1e-5);

    // A missing file is no error; a directory where the file should be is.
    Settings none;
    EXPECT_TRUE(ReadSettings(ctx, dir / "absent.ini", "every", none));
    EXPECT_TRUE(none.values.empty());
    EXPECT_TRUE(ui.told.empty());
    EXPECT_FALSE(ReadSettings(ctx, dir, "every", none));
    ASSERT_EQ(ui.told.size(), 1u);
    EXPECT_EQ(ui.told[0], "Error! Reading ini file failed.");
}

TEST(Settings, NewProjectDefaultsAndSheetSizes) {
    Settings s;
    s.set("Units", "British");
    s.set("Patm", "100.5");
    s.set("MethodTwoPhaseFlow", "Beggs-Brill");
    s.set("DrawSize", "A3 Landscape");
    s.set("FlashResume", "not a number");
    Header g;
    g.MFLASHR = 1;
    apply_project_defaults(s, g);
    EXPECT_EQ(g.UNITS, "British");
    EXPECT_EQ(g.PATM, 100.5);
    EXPECT_EQ(g.MTP, "Beggs-Brill");
    EXPECT_EQ(g.MFLASHR, 1) << "a value that does not read leaves the default";
    EXPECT_EQ(g.DWGSIZ[1], 23811.0f);
    EXPECT_EQ(g.DWGSIZ[2], 16837.0f);
    struct Row { const char* name; float w, h; };
    for (const Row& r : {Row{"Letter Landscape", 15840, 12240}, Row{"11x17  Landscape", 24480, 15840},
                         Row{"Custom", 1000, 2000}, Row{"B5", 16837, 11905}})
        EXPECT_EQ(sheet_size(r.name, 1000, 2000), std::make_pair(r.w, r.h)) << r.name;
    EXPECT_EQ(sheet_size("Custom", 0, 2000), std::make_pair(16837.0f, 11905.0f));
}

TEST(Settings, PathMacrosAndFolders) {
    const fs::path dir = scratch_dir("paths");
    ::setenv("XDG_DATA_HOME", (dir / "data").c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (dir / "config").c_str(), 1);
    RecordingInteraction ui;
    RunContext ctx(ui);
    EXPECT_EQ(ExpandPath(ctx, "{app}/lib", "/opt/velm"), "/opt/velm/lib/");
    EXPECT_EQ(ExpandPath(ctx, "{localappdata}\\velm", "/opt/velm"), (dir / "data").string() + "/velm/");
    EXPECT_EQ(ExpandPath(ctx, "{appdata}", "/opt/velm"), (dir / "config").string() + "/");
    EXPECT_EQ(ExpandPath(ctx, "/plain/path", "/opt/velm"), "/plain/path");
    EXPECT_TRUE(ui.told.empty());
    EXPECT_EQ(ExpandPath(ctx, "{desktop}/x", "/opt/velm"), "{desktop}/x");
    ASSERT_EQ(ui.told.size(), 1u);
    EXPECT_EQ(ui.told[0], "Error! Invalid directory path variable.");
    EXPECT_EQ(MakePath(ctx, (dir / "a" / "b").string()), (dir / "a" / "b").string() + "/");
    EXPECT_TRUE(fs::is_directory(dir / "a" / "b"));
    std::ofstream(dir / "file") << "x";
    EXPECT_EQ(MakePath(ctx, (dir / "file" / "c").string()), (dir / "file" / "c").string());
    ASSERT_EQ(ui.told.size(), 2u);
    EXPECT_EQ(ui.told[1].rfind("Error = ", 0), 0u);
    EXPECT_NE(ui.told[1].find("\r\nFolder: " + (dir / "file" / "c").string()), std::string::npos);
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("XDG_CONFIG_HOME");
}

// The settings file's iteration limit holds for velm run; the flag overrides it.
TEST(Settings, TheCommandLineTakesTheRunLimitsOfTheSettings) {
    const fs::path dir = test::fresh_dir("settings_run");
    fs::create_directories(dir / "velm");
    std::ofstream(dir / "velm" / "Velm.ini") << "[Defaults]\r\nMaxIter=2\r\n";
    const std::string project = std::string(VELM_SOURCE_DIR) + "/examples/cooling_water_loop.vdf";
    const test::Outcome limited = velm::test::velm("run " + project + " --out .", dir);
    EXPECT_EQ(limited.status, 1);
    EXPECT_NE(limited.out.find("solution NOT reached after 2 iterations."), std::string::npos) << limited.out;
    EXPECT_EQ(velm::test::velm("run " + project + " --out . --max-iter 40", dir).status, 0);
}

}  // namespace
}  // namespace velm
