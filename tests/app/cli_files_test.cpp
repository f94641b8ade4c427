// The velm command with places it cannot write and numbers it cannot use:
// refused before any work, with a message and a failing status.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "tests/app/cli_support.hpp"

namespace velm {
namespace {

using test::fresh_dir;
using test::Outcome;
using test::velm;
namespace fs = std::filesystem;

const std::string kExample = "'" + std::string(VELM_SOURCE_DIR) + "/examples/gravity_transfer.vdf'";

bool says(const Outcome& o, const std::string& text) { return o.text().find(text) != std::string::npos; }

TEST(CliBadInput, PlacesThatCannotBeWrittenStopTheRunBeforeIt) {
    const fs::path dir = fresh_dir("unwritable");
    // /proc/self exists and takes no new files, whoever runs the test.
    Outcome o = velm("run " + kExample + " --out /proc/self", dir);
    EXPECT_EQ(o.status, 2) << o.text();
    EXPECT_TRUE(says(o, "velm: cannot write /proc/self/runlog.txt; nothing was run.")) << o.text();

    ASSERT_EQ(::mkfifo((dir / "fifo.vdf").c_str(), 0644), 0);
    o = velm("run " + kExample + " --out out --save fifo.vdf", dir);
    EXPECT_EQ(o.status, 2) << o.text();
    EXPECT_TRUE(says(o, "velm: cannot save the project to fifo.vdf: not a regular file; nothing was run.")) << o.text();
    EXPECT_FALSE(fs::exists(dir / "out"));
    EXPECT_TRUE(fs::is_fifo(dir / "fifo.vdf"));

    o = velm("run " + kExample + " --out out --save missing/plant.vdf", dir);
    EXPECT_EQ(o.status, 2) << o.text();
    EXPECT_TRUE(says(o, "velm: cannot save the project to missing/plant.vdf: No such file or directory")) << o.text();
}

TEST(Cli, SavingThroughALinkUpdatesTheFileItNames) {
    const fs::path dir = fresh_dir("save_link");
    fs::create_directories(dir / "real");
    std::ofstream(dir / "real" / "plant.vdf") << "old";
    fs::create_symlink("real/plant.vdf", dir / "plant.vdf");
    const Outcome o = velm("run " + kExample + " --out out --save plant.vdf", dir);
    ASSERT_EQ(o.status, 0) << o.text();
    EXPECT_TRUE(fs::is_symlink(dir / "plant.vdf"));
    EXPECT_EQ(velm("check real/plant.vdf", dir).status, 0);
}

TEST(FlashCliBadInput, NumbersThatCannotBeFlashed) {
    const fs::path dir = fresh_dir("flash_numbers");
    Outcome o = velm("flash --comp water --z nan --type TP --T 300 --P 100", dir);
    EXPECT_EQ(o.status, 2) << o.text();
    EXPECT_TRUE(says(o, "velm flash: --z: a mole fraction must be a finite number.")) << o.text();
    o = velm("flash --comp methane,propane --z 0.6,0.4 --type PS --P 3000 --S 1e300", dir);
    EXPECT_EQ(o.status, 1) << o.text();
    EXPECT_TRUE(says(o, "velm flash: no temperature between 50 and 5000 K gives the entropy asked for.")) << o.text();
}

}  // namespace
}  // namespace velm

namespace velm {
namespace {

// A saved project names the folders its run used: the libraries (built in
// here), the settings folder and the --out folder, each ending with "/".
TEST(Cli, ASavedProjectNamesTheFoldersOfItsRun) {
    const fs::path dir = test::fresh_dir("dirs");
    const Outcome o = test::velm("run " + kExample + " --out out --save plant.vdf", dir);
    ASSERT_EQ(o.status, 0) << o.text();
    const std::string saved = test::slurp(dir / "plant.vdf");
    EXPECT_NE(saved.find("\"\\GEN\",0,\"DIRLIB\",\"(built in)\""), std::string::npos) << saved.substr(0, 2000);
    EXPECT_NE(saved.find("\"\\GEN\",0,\"DIRDAT\",\"" + (fs::canonical(dir) / "out").string() + "/\""), std::string::npos)
        << saved.substr(0, 2000);
    EXPECT_NE(saved.find("\"\\GEN\",0,\"DIRINI\",\"/"), std::string::npos);
}

}  // namespace
}  // namespace velm
