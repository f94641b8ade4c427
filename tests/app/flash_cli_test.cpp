// velm flash and velm components as a user meets them: the JSON of a flash
// against a direct call of Flash, unit words, bad input and its exit status,
// and the library listing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "model/project_file.hpp"
#include "tests/app/cli_support.hpp"
#include "thermo/flash.hpp"

namespace velm {
namespace {

using test::fresh_dir;
using test::Outcome;
using test::velm;
using Json = nlohmann::ordered_json;

constexpr int kMethane = 13, kPropane = 15;

// The flash the command makes: the methods of a new project and the built-in
// library.
FlashStream direct_tp_flash(const std::vector<int>& numbers, const std::vector<double>& z, double T, double P) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    Project project;
    NewProject(project);
    FlashSetup setup;
    flash_methods(project.gen, setup);
    setup.ids = {0};
    setup.ids.insert(setup.ids.end(), numbers.begin(), numbers.end());
    GetCompData(ctx, CompLibrary{}, setup.ids, setup.comps, setup.kij);
    FlashStream s;
    s.FT = kFlashTP;
    s.T = T;
    s.P = P;
    for (std::size_t i = 0; i < z.size(); ++i) s.Z[i + 1] = z[i];
    EXPECT_TRUE(Flash(ctx, setup, s)) << (ui.told.empty() ? "" : ui.told.front());
    return s;
}

Json flash_json(const std::string& args) {
    const Outcome o = velm("flash " + args + " --json", fresh_dir("flash"));
    EXPECT_EQ(o.status, 0) << args << "\n" << o.text();
    return Json::parse(o.out, nullptr, false);
}

TEST(FlashCli, JsonHoldsEveryFieldOfADirectFlash) {
    const FlashStream s = direct_tp_flash({kMethane, kPropane}, {0.6, 0.4}, 250.0, 3000.0);
    ASSERT_GT(s.VF, 0.2);
    ASSERT_LT(s.VF, 0.8) << "two phases, so that the split and both compositions are tested";
    const Json j = flash_json("--comp methane,PROPANE --z 0.6,0.4 --type TP --T 250 --P 3000");
    ASSERT_TRUE(j.is_object());

    struct Field {
        const char* key;
        double FlashStream::*member;
    };
    const Field fields[] = {
        {"T", &FlashStream::T},           {"P", &FlashStream::P},           {"LF", &FlashStream::LF},
        {"VF", &FlashStream::VF},         {"Resid", &FlashStream::Resid},   {"H", &FlashStream::H},
        {"HV", &FlashStream::HV},         {"HL", &FlashStream::HL},         {"S", &FlashStream::S},
        {"TOTMW", &FlashStream::TOTMW},   {"LIQDEN", &FlashStream::LIQDEN}, {"LIQMW", &FlashStream::LIQMW},
        {"LIQVISC", &FlashStream::LIQVISC}, {"LIQSUR", &FlashStream::LIQSUR}, {"LIQCON", &FlashStream::LIQCON},
        {"LIQCP", &FlashStream::LIQCP},   {"VAPDEN", &FlashStream::VAPDEN}, {"VAPMW", &FlashStream::VAPMW},
        {"VAPZ", &FlashStream::VAPZ},     {"VAPVISC", &FlashStream::VAPVISC}, {"VAPK", &FlashStream::VAPK},
        {"VAPCON", &FlashStream::VAPCON}, {"VAPCP", &FlashStream::VAPCP},
    };
    for (const Field& f : fields) {
        ASSERT_TRUE(j.contains(f.key)) << f.key;
        EXPECT_NEAR(j[f.key].get<double>(), s.*f.member, 1e-9 * std::max(1.0, std::abs(s.*f.member))) << f.key;
    }
    EXPECT_EQ(j["FT"], kFlashTP);
    for (const char* key : {"Z", "X", "Y"}) ASSERT_EQ(j[key].size(), 2u) << key;
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_NEAR(j["Z"][i].get<double>(), s.Z[i + 1], 1e-12);
        EXPECT_NEAR(j["X"][i].get<double>(), s.X[i + 1], 1e-9);
        EXPECT_NEAR(j["Y"][i].get<double>(), s.Y[i + 1], 1e-9);
    }
    EXPECT_EQ(j.size(), std::size(fields) + 6) << "the numbers above, FT, Z, X, Y, NAME and Trace";
}

TEST(FlashCli, UnitWordsGiveKelvinAndKilopascalAbsolute) {
    struct Row {
        const char* args;
        double T, P;  // K, kPa absolute
        double tolerance;
    };
    const Row rows[] = {
        {"--T '25 C' --P 1101.325", 298.15, 1101.325, 1e-9},
        {"--T 298.15 --P '10 barg'", 298.15, 1101.325, 1e-9},
        {"--T 25 C --P 10 barg", 298.15, 1101.325, 1e-9},  // value and word as two arguments
        {"--T '536.67 R' --P '11.01325 bara'", 298.15, 1101.325, 1e-9},
        {"--T '77 F' --P '1 atm'", 298.15, 101.325, 1e-6},  // atm to the rounding of its factor
        {"--T '298.15 K' --P '0 psig'", 298.15, 101.325, 1e-9},
    };
    for (const Row& r : rows) {
        const Json j = flash_json(std::string("--comp methane,propane --z 0.6,0.4 --type TP ") + r.args);
        ASSERT_TRUE(j.is_object()) << r.args;
        EXPECT_NEAR(j["T"].get<double>(), r.T, r.tolerance * r.T) << r.args;
        EXPECT_NEAR(j["P"].get<double>(), r.P, r.tolerance * r.P) << r.args;
    }
}

// A bubble or dew point needs only its two values: the search starts where
// the other types start theirs, and lands where a given start lands. A TP
// flash at the point found sits on the phase boundary.
TEST(FlashCli, BubbleAndDewPointsNeedNoStartValue) {
    struct Row { const char* given; const char* with_start; const char* unknown; double target; };
    const Row rows[] = {
        {"--type PF --P 3000 --LF 0", "--T 250", "T", 1.0},
        {"--type PF --P 3000 --LF 1", "--T 250", "T", 0.0},
        {"--type TF --T 250 --LF 0", "--P 3000", "P", 1.0},
        {"--type TF --T 250 --LF 1", "--P 3000", "P", 0.0},
    };
    for (const Row& r : rows) {
        const std::string base = std::string("--comp methane,propane --z 0.6,0.4 ") + r.given;
        const Json found = flash_json(base);
        const Json started = flash_json(base + " " + r.with_start);
        ASSERT_TRUE(found.is_object() && started.is_object()) << r.given;
        const double value = found[r.unknown].get<double>();
        EXPECT_NEAR(value, started[r.unknown].get<double>(), 1e-3 * value) << r.given;
        const FlashStream tp = direct_tp_flash({kMethane, kPropane}, {0.6, 0.4}, found["T"].get<double>(),
                                               found["P"].get<double>());
        EXPECT_NEAR(tp.VF + tp.Resid, r.target, 1e-3) << r.given;
    }
}

// A project's pseudo component takes part in the flash, by name or number,
// with the set estimated from the boiling point and gravity it was given: a
// pseudo component made from decane's boiling point and standard density
// boils with heptane where decane itself does.
TEST(FlashCli, AProjectsPseudoComponentTakesPartInTheFlash) {
    const std::filesystem::path dir = fresh_dir("pseudo");
    std::ofstream(dir / "pseudo.vdf", std::ios::binary)
        << "\"VELM_3.2\"\r\n\"\\PSEUDO\",0,\"NUM\",1\r\n"
           "\"\\PSEUDO\",1,\"NAME\",9001,9001,\"PSEUDO_1\",\"\"\r\n"
           "\"\\PSEUDO\",1,\"TBP\",447.3,0,\"K\"\r\n\"\\PSEUDO\",1,\"DENS\",734,0,\"kg/m3\"\r\n";
    const std::string bubble = " --z 0.5,0.5 --type PF --P 101.325 --LF 1";
    const double decane = flash_json("--comp heptane,decane" + bubble)["T"].get<double>();
    const std::string project = " --project " + (dir / "pseudo.vdf").string();
    for (const char* comp : {"heptane,pseudo_1", "heptane,9001"}) {
        const Json j = flash_json(std::string("--comp ") + comp + bubble + project);
        ASSERT_TRUE(j.is_object()) << comp;
        EXPECT_NEAR(j["T"].get<double>(), decane, 0.5) << comp;
        EXPECT_NEAR(j["TOTMW"].get<double>(), (100.205 + 142.286) / 2, 0.02 * 121.2) << comp;
    }
    const Outcome without = velm("flash --comp heptane,pseudo_1" + bubble, dir);
    EXPECT_EQ(without.status, 2);
    EXPECT_NE(without.err.find("unknown component 'pseudo_1'"), std::string::npos) << without.text();
}

TEST(FlashCli, BadInputExitsTwoAndAFailedFlashOne) {
    const std::string mp = "--comp methane,propane --z 0.6,0.4 ";
    struct Row {
        std::string args;
        int status;
        const char* says;
    };
    const Row rows[] = {
        {"--comp methane,unobtainium --z 0.6,0.4 --type TP --T 250 --P 3000", 2,
         "velm flash: unknown component 'unobtainium'; 'velm components' lists the library."},
        {"--comp 13,9999 --z 0.6,0.4 --type TP --T 250 --P 3000", 2,
         "velm flash: the library has no component number 9999; 'velm components' lists them."},
        {"--comp 1,13 --z 0.6,0.4 --type TP --T 250 --P 3000", 2, "no component number 1;"},  // the count record
        {"--comp methane,propane --z 0.6,0.402 --type TP --T 250 --P 3000", 2,
         "velm flash: Input composition <> 1 or No components defined. The mole fractions of --z sum to 1.002; "
         "they must sum to 1 within 0.001."},
        {"--comp methane,propane --z 0.6,0.4009 --type TP --T 250 --P 3000", 0, "Flash - Results"},
        {mp + "--type TP --T=-5 --P 3000", 2, "velm flash: Stream temperature or pressure out of range."},
        {mp + "--type TP --T '-300 C' --P 3000", 2, "velm flash: Stream temperature or pressure out of range."},
        {mp + "--type TP --T 250 --P=-1", 2, "velm flash: Stream temperature or pressure out of range."},
        {mp + "--type TP", 2, "velm flash: a TP flash needs --T and --P."},
        {mp + "--type PH --P 3000", 2, "velm flash: a PH flash needs --H."},
        {mp + "--type TF --LF 0.5", 2, "velm flash: a TF flash needs --T."},
        {mp + "--type PS --T 250 --S 5", 2, "velm flash: a PS flash needs --P."},
        {"--comp methane,propane,ethane --z 0.6,0.4 --type TP --T 250 --P 3000", 2,
         "velm flash: 3 components (--comp) but 2 mole fractions (--z)."},
        {"--comp methane,Methane --z 0.6,0.4 --type TP --T 250 --P 3000", 2, "component 'Methane' is given twice."},
        {mp + "--type TP --T '25 c' --P 3000", 2, "--T: unknown temperature unit 'c'; use K, C, F or R."},
        {mp + "--type TP --T 250 --P '3 m'", 2, "--P: unknown pressure unit 'm'; use kPa, kPag, bar, barg,"},
        {mp + "--type TP --T 25x --P 3000", 2, "--T: '25x' is not a number with an optional unit word."},
        {mp + "--type PF --P 3000 --LF 1.5", 2, "--LF: the liquid fraction lies between 0 and 1."},
        {mp + "--type XY --T 250 --P 3000", 2, "--type must be TP, PF, TF, PH or PS."},
        {"--comp methane,propane --z 0.6,-0.4 --type TP --T 250 --P 3000", 2, "a mole fraction cannot be negative"},
        // Above the cricondentherm no pressure gives two phases: the engine fails.
        {mp + "--type TF --T 500 --LF 0.5", 1, "Error! Stream 1 flash failed. VELM flash failed."},
        // A library name holding commas is matched whole before its pieces.
        {"--comp '2,2-dimethylbutane,methane' --z 0.5,0.5 --type TP --T 300 --P 100", 0, "2,2-dimeth|"},
    };
    for (const Row& r : rows) {
        const Outcome o = velm("flash " + r.args, fresh_dir("flash_bad"));
        EXPECT_EQ(o.status, r.status) << r.args << "\n" << o.text();
        EXPECT_NE(o.text().find(r.says), std::string::npos) << r.args << "\n" << o.text();
        if (r.status != 0) {
            EXPECT_EQ(o.out, "") << r.args;
        }
    }
}

TEST(ComponentsCli, ListsTheNamesThatHoldTheText) {
    const auto dir = fresh_dir("components");
    const Outcome prop = velm("components prop", dir);
    ASSERT_EQ(prop.status, 0) << prop.text();
    EXPECT_NE(prop.out.find("  15  Propane "), std::string::npos) << prop.out;
    EXPECT_NE(prop.out.find("C3H8"), std::string::npos);
    EXPECT_EQ(prop.out.find("Methane"), std::string::npos);
    EXPECT_EQ(velm("components PrOp", dir).out, prop.out) << "any case";

    const Outcome all = velm("components", dir);
    ASSERT_EQ(all.status, 0);
    EXPECT_NE(all.out.find("  13  Methane "), std::string::npos);
    EXPECT_GT(std::count(all.out.begin(), all.out.end(), '\n'), 400) << "the whole library";

    const Outcome none = velm("components xyzzy", dir);
    EXPECT_EQ(none.status, 1);
    EXPECT_NE(none.err.find("velm components: no component name contains 'xyzzy'."), std::string::npos);
}

}  // namespace
}  // namespace velm
