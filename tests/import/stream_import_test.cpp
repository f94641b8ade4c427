// Stream import: which line takes which stream, what each choice writes and
// leaves alone, units of a stream table, the run log's words, and bad files
// that change nothing.
#include "import/stream_import.hpp"

#include <gtest/gtest.h>

#include <fstream>

#include "model/context.hpp"
#include "model/project_file.hpp"
#include "tests/test_support.hpp"

namespace velm {
namespace {

namespace fs = std::filesystem;

struct Importer {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    fs::path dir;

    explicit Importer(const std::string& name) : dir(scratch_dir("import_" + name)) {
        ctx.data_dir = dir;
        NewProject(p);
        // Three lines: one named by its stream, one by its own name, one locked.
        for (const char* n : {"L-1", "L-2", "L-3"}) {
            p.lines.push_back(p.lines[0]);
            p.lines.back().NAME[1] = n;
        }
        p.lines[1].STRM = " feed gas ";
        p.lines[3].LOCK = -1;
    }
    fs::path file(const std::string& name, const std::string& bytes) const {
        std::ofstream(dir / name, std::ios::binary) << bytes;
        return dir / name;
    }
    std::vector<std::string> log() const {
        std::ifstream in(dir / "runlog.txt", std::ios::binary);
        std::vector<std::string> lines;
        for (std::string l; std::getline(in, l);) {
            if (!l.empty() && l.back() == '\r') l.pop_back();
            if (!l.empty()) lines.push_back(l);
        }
        return lines;
    }
};

const std::string kTable =
    "Stream,T [C],P [barg],LIQDEN [kg/m3]\r\n"
    "FEED GAS,35,2.5,994\r\n"
    "l-2 ,40,1,990\r\n"
    "L-3,45,3,980\r\n"
    "S-9,50,4,970\r\n";

// Each choice writes its positions of its fields and nothing else; the
// average of a condition follows its ends.
TEST(StreamImport, EachChoiceWritesItsFieldsAndNoOther) {
    struct Row {
        const char* what;
        ImportChoices choices;
        std::array<double, 4> temp;    // L-1 TEMP[0..3] after the import
        std::array<double, 4> pres;
        double liqden_in, lprop;       // LIQDEN[1], LPROP[1]
    };
    const Row rows[] = {
        {"inlet", {true, false, false}, {0, 35, 25, 30}, {0, 250, 10000, 5125}, 1000, 1000},
        {"outlet", {false, true, false}, {0, 25, 35, 30}, {0, 10000, 250, 5125}, 1000, 1000},
        {"properties", {false, false, true}, {0, 25, 25, 25}, {0, 10000, 10000, 10000}, 994, 994},
        {"all three", {true, true, true}, {0, 35, 35, 35}, {0, 250, 250, 250}, 994, 994},
    };
    for (const Row& r : rows) {
        Importer im("choices");
        const Line before = im.p.lines[1];
        ASSERT_TRUE(import_streams(im.ctx, im.p, im.file("s.csv", kTable), r.choices)) << r.what;
        const Line& l = im.p.lines[1];
        EXPECT_EQ(l.TEMP, r.temp) << r.what;
        EXPECT_EQ(l.PRES, r.pres) << r.what;
        EXPECT_EQ(l.LIQDEN[1], r.liqden_in) << r.what;
        EXPECT_EQ(l.LPROP[1], r.lprop) << r.what;
        EXPECT_EQ(l.LF, before.LF) << r.what << ": no LF column";
        EXPECT_EQ(l.VAPDEN, before.VAPDEN) << r.what;
        EXPECT_EQ(im.p.lines[3].TEMP, before.TEMP) << r.what << ": the locked line";
    }
}

// Streams by STRM (else the line's name), trimmed and in any case; a locked
// line, a stream without a line and a line without a stream, in the log's words.
TEST(StreamImport, MatchingAndTheRunLog) {
    Importer im("log");
    im.p.lines.push_back(im.p.lines[0]);
    im.p.lines.back().NAME[1] = "L-4";
    ASSERT_TRUE(import_streams(im.ctx, im.p, im.file("s.csv", kTable), {false, false, true}));
    const std::string file = (im.dir / "s.csv").string();
    EXPECT_EQ(im.log(), (std::vector<std::string>{
                            "Import RunLog.",
                            "\\PIPE L-1 LIQDEN - Imported from FEED GAS in " + file,
                            "\\PIPE L-2 LIQDEN - Imported from l-2 in " + file,
                            "\\PIPE L-3 LIQDEN - Locked, not imported",
                            "\\PIPE S-9 skipped - not defined in Velm",
                            "L-4 - No data in " + file,
                            "Runlog - Import properties",
                        }));
    EXPECT_EQ(im.p.lines[2].LIQDEN[2], 990.0);
    EXPECT_EQ(im.p.lines[3].LIQDEN[1], 1000.0);
    EXPECT_TRUE(im.ctx.project_dirty);
}

// Units of a stream table become internal units (kPag, C); the same stream in
// project-file form lands the same way.
TEST(StreamImport, UnitsOfAStreamTableAndTheProjectFileForm) {
    struct Row { const char* what; std::string bytes; double T, P; };
    const Row rows[] = {
        {"barg", "Stream,P [barg],T [C]\r\nFEED GAS,2.5,35\r\n", 35.0, 250.0},
        {"bara and F", "Stream,P [bara],T [F]\r\nFEED GAS,2.5,95\r\n", 35.0, 250.0 - 101.325},
        {"psig and K", "Stream,P [psig],T [K]\r\nFEED GAS,14.5038,308.15\r\n", 35.0, 100.0},
        {"no units: internal", "Stream,P,T\r\nFEED GAS,250,35\r\n", 35.0, 250.0},
        {"project-file form", "\"VELM_3.2\"\r\n\"\\PIPE\",\"Feed gas\",\"TEMP\",35,35,35,\"C\"\r\n"
                              "\"\\PIPE\",\"Feed gas\",\"PRES\",250,250,250,\"kPag\"\r\n"
                              "\"\\PIPE\",\"Feed gas\",\"LEN\",999,\"m\"\r\n", 35.0, 250.0},
    };
    for (const Row& r : rows) {
        Importer im("units");
        const double len = im.p.lines[1].LEN;
        ASSERT_TRUE(import_streams(im.ctx, im.p, im.file("s.txt", r.bytes), {true, false, false})) << r.what;
        EXPECT_NEAR(im.p.lines[1].TEMP[1], r.T, 1e-9) << r.what;
        EXPECT_NEAR(im.p.lines[1].PRES[1], r.P, 1e-3) << r.what;
        EXPECT_EQ(im.p.lines[1].LEN, len) << r.what << ": no stream value";
        EXPECT_TRUE(im.ui.told.empty()) << r.what << ": " << (im.ui.told.empty() ? "" : im.ui.told[0]);
    }
}

// A file that cannot be imported is told and changes nothing, run log included.
TEST(StreamImport, BadFilesChangeNothing) {
    struct Row { const char* what; std::string bytes; const char* says; };
    const Row rows[] = {
        {"missing file", "", "Error - File does not exist !"},
        {"empty table", " \r\n", "Error! The stream table is empty."},
        {"unknown column", "Stream,T [C],COLOUR\r\nFEED GAS,35,red\r\n",
         "Error! Column 3 of the stream table, \"COLOUR\", names no stream value."},
        {"unknown unit", "Stream,P [furlongs]\r\nFEED GAS,3\r\n",
         "Error! Column 2 of the stream table, \"P [furlongs]\": unknown units for PRES: furlongs."},
        {"a word for a number", "Stream,T [C]\r\nFEED GAS,35\r\nL-2,hot\r\n",
         "Error! Line 3 of the stream table: \"hot\" in column 2 is not a number."},
        {"more values than columns", "Stream,T [C]\r\nFEED GAS,35,36\r\n",
         "Error! Line 2 of the stream table has more values than columns."},
        {"broken project-file form", "\"VELM_9.9\"\r\n", "Cannot read VELM version 9.9 data files."},
    };
    for (const Row& r : rows) {
        Importer im("bad");
        const std::string before = WriteVdf(im.ctx, im.p);
        const fs::path f = std::string(r.what) == "missing file" ? im.dir / "none.csv" : im.file("s.csv", r.bytes);
        EXPECT_FALSE(import_streams(im.ctx, im.p, f, {true, true, true})) << r.what;
        ASSERT_FALSE(im.ui.told.empty()) << r.what;
        EXPECT_EQ(im.ui.told[0].rfind(r.says, 0), 0u) << r.what << ": " << im.ui.told[0];
        EXPECT_EQ(WriteVdf(im.ctx, im.p), before) << r.what;
        EXPECT_FALSE(fs::exists(im.dir / "runlog.txt")) << r.what;
    }
}

// A comma that ends the file leaves an empty last cell: the row imports.
TEST(StreamImport, ACommaAtTheEndOfTheFileIsAnEmptyCell) {
    Importer im("comma");
    ASSERT_TRUE(import_streams(im.ctx, im.p, im.file("s.csv", "Stream,T [C],P [barg]\r\nFEED GAS,35,"), {true, false, false}));
    EXPECT_EQ(im.p.lines[1].TEMP[1], 35.0);
}

// Another project's records land in the records of the same names, every key.
TEST(StreamImport, ProjectImportTakesRecordsByName) {
    Importer im("project");
    im.p.feeds.push_back(im.p.feeds[0]);
    im.p.feeds[1].NAME[1] = "F-1";
    const fs::path f = im.file("other.vdf",
                               "\"VELM_3.2\"\r\n\"\\PIPE\",0,\"NUM\",7\r\n\"\\PIPE\",\"l-2\",\"LEN\",42,\"m\"\r\n"
                               "\"\\FEED\",\"F-1\",\"PRES\",\"300\",0,\"kPag\"\r\n"
                               "\"\\FEED\",\"F-9\",\"PRES\",\"900\",0,\"kPag\"\r\n");
    ASSERT_TRUE(import_project(im.ctx, im.p, f));
    EXPECT_EQ(count(im.p.lines), 3) << "NUM lines are no record";
    EXPECT_EQ(im.p.lines[2].LEN, 42.0);
    EXPECT_EQ(im.p.feeds[1].PRES.spec, "300");
    EXPECT_EQ(count(im.p.feeds), 1);
}

}  // namespace
}  // namespace velm
