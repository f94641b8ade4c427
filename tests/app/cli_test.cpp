// The velm command as a user meets it: exit statuses, messages, and nothing
// written when the input is bad.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/app/cli_support.hpp"

namespace velm {
namespace {

using test::fresh_dir;
using test::Outcome;
using test::velm;
namespace fs = std::filesystem;

void write(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

const std::string kExample = std::string(VELM_SOURCE_DIR) + "/examples/gravity_transfer.vdf";

TEST(CliBadInput, UnreadableProjectsExitTwoAndWriteNothing) {
    std::ifstream ex(kExample, std::ios::binary);
    const std::string good((std::istreambuf_iterator<char>(ex)), std::istreambuf_iterator<char>());
    struct Row {
        const char* what;
        std::string bytes;  // empty name: no file at all
        const char* says;
    };
    const Row rows[] = {
        {"missing file", "", "Error - File does not exist !"},
        {"empty file", std::string(), "Error reading file = 62"},
        {"truncated file", good.substr(0, good.size() / 2 - 7), "Error reading file = 62"},
        {"wrong version tag", "\"VELM_9.1\"\r\n" + good.substr(good.find('\n') + 1), "Cannot read VELM version 9.1"},
        {"unknown section", good + "\"\\PIPES\",1,\"LEN\",10\r\n", "Equipment type not recognized"},
        {"index out of range", good + "\"\\PIPE\",7,\"LEN\",10,\"m\"\r\n", "exceeds maximum/minimum. Input = 7 vs 1"},
        {"non-numeric value", good + "\"\\PIPE\",1,\"LEN\",ten,\"m\"\r\n", "Type mismatch"},
        {"binary file", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), "Error - Invalid VELM data file !"},
    };
    for (const Row& r : rows) {
        const fs::path dir = fresh_dir("bad");
        const bool exists = std::string(r.what) != "missing file";
        if (exists) write(dir / "p.vdf", r.bytes);
        const Outcome o = velm("run p.vdf --out results --save saved.vdf", dir);
        EXPECT_EQ(o.status, 2) << r.what << "\n" << o.text();
        EXPECT_NE(o.text().find(r.says), std::string::npos) << r.what << "\n" << o.text();
        EXPECT_FALSE(fs::exists(dir / "results")) << r.what;
        EXPECT_FALSE(fs::exists(dir / "saved.vdf")) << r.what;
        EXPECT_EQ(velm("check p.vdf", dir).status, 2) << r.what;
    }
    const fs::path dir = fresh_dir("usage");
    EXPECT_EQ(velm("run", dir).status, 2);
    EXPECT_EQ(velm("frobnicate", dir).status, 2);
    EXPECT_EQ(velm("run x.vdf --save a.vdf --in-place", dir).status, 2);
}

TEST(Cli, RunSavesResultsThatAResumedRunConfirms) {
    const fs::path dir = fresh_dir("run");
    const Outcome first = velm("run '" + kExample + "' --out out --save solved.vdf", dir);
    ASSERT_EQ(first.status, 0) << first.text();
    EXPECT_NE(first.text().find("Runlog - Case 1 solution reached after"), std::string::npos);
    EXPECT_NE(first.text().find("L-101"), std::string::npos);
    EXPECT_TRUE(fs::exists(dir / "out" / "runlog.txt"));
    EXPECT_TRUE(fs::exists(dir / "solved.vdf"));
    const Outcome again = velm("run solved.vdf --out out --resume --in-place", dir);
    ASSERT_EQ(again.status, 0) << again.text();
    EXPECT_NE(again.text().find("solution reached after 2 iterations."), std::string::npos) << again.text();
}

TEST(Cli, NewThenCheckReportsTheEmptyNetwork) {
    const fs::path dir = fresh_dir("new");
    ASSERT_EQ(velm("new a.vdf", dir).status, 0);
    const Outcome o = velm("check a.vdf", dir);
    EXPECT_EQ(o.status, 1);
    EXPECT_NE(o.text().find("Error! No equipment."), std::string::npos);
    // The balance runs the same checks: nothing to balance, exit 1 with the reason.
    const Outcome hmb = velm("run a.vdf --mode hmb", dir);
    EXPECT_EQ(hmb.status, 1);
    EXPECT_NE(hmb.text().find("Error! No equipment."), std::string::npos) << hmb.text();
}

// What a new user meets first: each case with its exit status, the words that
// explain it, and whether the console names a report.
TEST(Cli, FirstUseAnswersWithTheCauseAndLosesNothing) {
    std::ifstream ex(kExample, std::ios::binary);
    const std::string good((std::istreambuf_iterator<char>(ex)), std::istreambuf_iterator<char>());
    const auto with = [&](const std::string& from, const std::string& to) {
        std::string s = good;
        s.replace(s.find(from), from.size(), to);
        return s;
    };
    const std::string custom = "\"\\GEN\",0,\"UNITS\",\"Custom\"\r\n\"\\GEN\",0,\"UNITS2\",\"kg/m3\",\"C\",\"kPaX\",\"m\",\"kPa/100m\",\"m/s\"\r\n";
    struct Row {
        const char* what;
        std::string project;
        const char* args;
        int status;
        const char* says;
        bool names_report;
    };
    const Row rows[] = {
        {"a misspelled pipe material names its cause", with("\"Steel\"", "\"Stell\""), "run p.vdf --out out", 1,
         "Error! Pipe database missing for line 1", false},
        {"an unknown custom unit is refused at load", with("\"\\PIPE\",0", custom + "\"\\PIPE\",0"),
         "run p.vdf --out out", 2, "Unknown units for kPaX", false},
        {"a run that converges names its report", good, "run p.vdf --out out", 0, "solution reached", true},
        {"new does not replace a file unasked", good, "new p.vdf", 1,
         "File p.vdf already exists. Replace it with a new project ? No", false},
        {"size reads an old file as --european says", good, "size clear p.vdf --european --save q.vdf --yes", 0,
         "Project saved: q.vdf", false},
    };
    for (const Row& r : rows) {
        const fs::path dir = fresh_dir("first_use");
        write(dir / "p.vdf", r.project);
        const Outcome o = velm(r.args, dir);
        EXPECT_EQ(o.status, r.status) << r.what << "\n" << o.text();
        EXPECT_NE(o.text().find(r.says), std::string::npos) << r.what << "\n" << o.text();
        EXPECT_EQ(o.out.find("Report:") != std::string::npos, r.names_report) << r.what << "\n" << o.out;
        std::ifstream kept(dir / "p.vdf", std::ios::binary);
        EXPECT_EQ(std::string((std::istreambuf_iterator<char>(kept)), std::istreambuf_iterator<char>()), r.project)
            << r.what;
    }
    const fs::path dir = fresh_dir("first_use_yes");
    write(dir / "p.vdf", good);
    EXPECT_EQ(velm("new p.vdf --yes", dir).status, 0);
    EXPECT_EQ(velm("check p.vdf", dir).status, 1) << "the new, empty project";
}

// velm import: asks first, refuses a bad table with its message, and leaves
// the project as it was unless the import went through.
TEST(Cli, ImportAsksFirstAndChangesNothingOnABadTable) {
    std::ifstream ex(kExample, std::ios::binary);
    const std::string good((std::istreambuf_iterator<char>(ex)), std::istreambuf_iterator<char>());
    struct Row { const char* what; const char* table; const char* flags; int status; const char* says; bool changed; };
    const Row rows[] = {
        {"unasked", "Stream,T [C]\r\nL-101,35\r\n", "", 1, "Continue ? No", false},
        {"unknown unit", "Stream,T [Celsius]\r\nL-101,35\r\n", "--yes", 2, "unknown units for TEMP: Celsius", false},
        {"imported", "Stream,T [C]\r\nL-101,35\r\n", "--yes --inlet", 0, "Runlog - Import properties", true},
    };
    for (const Row& r : rows) {
        const fs::path dir = fresh_dir("import");
        write(dir / "p.vdf", good);
        write(dir / "s.csv", r.table);
        const Outcome o = velm(std::string("import p.vdf s.csv --out . ") + r.flags, dir);
        EXPECT_EQ(o.status, r.status) << r.what << "\n" << o.text();
        EXPECT_NE(o.text().find(r.says), std::string::npos) << r.what << "\n" << o.text();
        std::ifstream kept(dir / "p.vdf", std::ios::binary);
        const std::string now((std::istreambuf_iterator<char>(kept)), std::istreambuf_iterator<char>());
        EXPECT_EQ(now != good, r.changed) << r.what;
        if (r.changed) {
            EXPECT_NE(now.find("\"\\PIPE\",1,\"TEMP\",35,20,27.5,\"C\""), std::string::npos) << now;
        }
    }
}

}  // namespace
}  // namespace velm
