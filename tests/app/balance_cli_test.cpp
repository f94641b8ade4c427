// velm run with the balance as a script meets it: the JSON of every line end
// (nothing else on standard output) holds a junction's enthalpy balance, and a
// project saved after a balanced run converges again in the fewest iterations
// a run with balance makes.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <map>
#include <string>

#include "tests/app/cli_support.hpp"

namespace velm {
namespace {

using test::fresh_dir;
using test::Outcome;
using test::velm;

const std::string kExample = std::string(VELM_SOURCE_DIR) + "/examples/condensate_flash_drum.vdf";

TEST(BalanceCli, JsonOfEveryLineEndClosesTheJunction) {
    const Outcome o = velm("run " + kExample + " --mode both --json --out .", fresh_dir("balance_json"));
    ASSERT_EQ(o.status, 0) << o.text();
    const auto j = nlohmann::json::parse(o.out, nullptr, false);
    ASSERT_TRUE(j.is_object()) << o.out;
    std::map<std::string, nlohmann::json> line;
    for (const auto& l : j["lines"]) line[l["name"].get<std::string>()] = l;
    const auto H = [&](const char* name, const char* end) { return line[name][end]["H_kJ_kg"].get<double>(); };
    const auto W = [&](const char* name) { return line[name]["flow_t_h"].get<double>(); };
    // The balance mixes by the entering flows; the flows themselves close to the
    // hydraulics' own tolerance.
    const double mixed = (W("C-201") * H("C-201", "out") + W("C-202") * H("C-202", "out")) / (W("C-201") + W("C-202"));
    EXPECT_NEAR(H("C-203", "in"), mixed, 1e-8 * mixed);
    EXPECT_NEAR(W("S-205") + W("C-206"), W("C-204"), 1e-4 * W("C-204"));
    EXPECT_EQ(j["components"], nlohmann::json::array({10}));
    EXPECT_NE(o.err.find("Balance: "), std::string::npos) << "the file names go to standard error";
}

TEST(BalanceCli, ASavedBalancedProjectResumesAtOnce) {
    const auto dir = fresh_dir("balance_resume");
    ASSERT_EQ(velm("run " + kExample + " --mode both --out . --save saved.vdf", dir).status, 0);
    const Outcome again = velm("run saved.vdf --mode both --out . --resume", dir);
    ASSERT_EQ(again.status, 0) << again.text();
    EXPECT_NE(again.out.find("solution reached after 3 iterations."), std::string::npos) << again.out;
    const Outcome alone = velm("run saved.vdf --mode hmb --out .", dir);
    EXPECT_EQ(alone.status, 0) << alone.text();
    EXPECT_NE(test::slurp(dir / "runlog.txt").find("End Of Flash Results."), std::string::npos);
}

// A separator's outlets carry the moles of each component that enter it,
// within 1e-6 (3e-8 seen): the split and the flows settle together.
TEST(BalanceCli, ASeparatorConservesEveryComponent) {
    const std::string example = std::string(VELM_SOURCE_DIR) + "/examples/gas_condensate_gathering.vdf";
    const Outcome o = velm("run " + example + " --mode both --max-iter 40 --json --out .", fresh_dir("separator"));
    ASSERT_EQ(o.status, 0) << o.text();
    const auto j = nlohmann::json::parse(o.out, nullptr, false);
    ASSERT_TRUE(j.is_object());
    std::map<std::string, nlohmann::json> line;
    for (const auto& l : j["lines"]) line[l["name"].get<std::string>()] = l;
    const auto moles = [&](const char* name, std::size_t c) {
        const auto& l = line[name];
        return l["flow_t_h"].get<double>() / l["TOTMW"].get<double>() * l["Z"][c].get<double>();
    };
    ASSERT_EQ(j["components"].size(), 10u);
    for (std::size_t c = 0; c < 10; ++c) {
        const double in = moles("GL-101", c), out = moles("G-102", c) + moles("L-103", c);
        EXPECT_NEAR(out, in, 1e-6 * in + 1e-12) << "component " << c;
    }
}

}  // namespace
}  // namespace velm
