// The fuzz harnesses in the ordinary suite: every input a campaign found
// (crash, hang, sanitizer report) is kept under tests/fuzz/regressions/<harness>/
// and replayed here through the same entry point; and the project-file
// dictionary of the campaigns stays the one the key tables give.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "model/vdf_schema.hpp"
#include "tests/fuzz/fuzz_targets.hpp"

namespace velm {
namespace {

const std::filesystem::path kFuzzDir = std::filesystem::path(VELM_SOURCE_DIR) / "tests" / "fuzz";

std::string file_bytes(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

TEST(FuzzReplay, EveryRegressionInputEndsCleanly) {
    int replayed = 0;
    for (const auto& dir : std::filesystem::directory_iterator(kFuzzDir / "regressions")) {
        const std::string name = dir.path().filename().string();
        const fuzz::Target target = fuzz::find_target(name);
        ASSERT_NE(target, nullptr) << "no harness named " << name;
        for (const auto& f : std::filesystem::directory_iterator(dir.path())) {
            SCOPED_TRACE(f.path().string());
            target(file_bytes(f.path()));
            ++replayed;
        }
    }
    EXPECT_GT(replayed, 0);
}

// One libFuzzer dictionary entry: the text between double quotes, with
// backslashes and quotes escaped and line ends as \xNN.
std::string dict_entry(std::string_view text) {
    std::string out = "\"";
    for (char c : text) {
        if (c == '\\' || c == '"') out += {'\\', c};
        else if (c == '\r') out += "\\x0D";
        else if (c == '\n') out += "\\x0A";
        else out += c;
    }
    return out + "\"\n";
}

// The sections and keys of the project file as a dictionary, in the form they
// take on a line.
std::string vdf_dictionary() {
    std::string out = "# Sections and keys of the project file, from its key tables (tests/fuzz/replay_test.cpp).\n";
    out += dict_entry("\"VELM_3.2\"\r\n");
    out += dict_entry("\"VELM_1.5\"\r\n");
    out += dict_entry(",0,\"NUM\",");
    std::set<std::string_view> keys;
    for (const SectionIO* s : vdf_sections()) {
        out += dict_entry("\"" + std::string(s->name()) + "\",");
        for (std::string_view k : s->keys()) keys.insert(k);
    }
    for (std::string_view k : keys) out += dict_entry(",\"" + std::string(k) + "\",");
    return out;
}

TEST(FuzzReplay, DictionaryHoldsEverySectionAndKey) {
    const auto file = kFuzzDir / "vdf.dict";
    if (std::getenv("VELM_UPDATE_FUZZ_DICT")) std::ofstream(file, std::ios::binary) << vdf_dictionary();
    EXPECT_EQ(file_bytes(file), vdf_dictionary())
        << "regenerate with VELM_UPDATE_FUZZ_DICT=1 build/velm_tests --gtest_filter=FuzzReplay.Dictionary*";
}

}  // namespace
}  // namespace velm
