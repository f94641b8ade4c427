// The project file reader: messages in the program's words, fault handling,
// old versions, and which field each value of a key line lands in.
#include <gtest/gtest.h>

#include <functional>

#include "model/context.hpp"
#include "model/project_file.hpp"

namespace velm {
namespace {

struct Read {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    bool ok = false;
    int faults = 0;

    explicit Read(const std::string& text, std::vector<int> answers = {}) {
        ui.answers = std::move(answers);
        NewProject(p);
        ok = read_vdf_text(ctx, p, text, nullptr, &faults);
    }
};

const std::string kTag = "\"VELM_3.2\"\r\n";

TEST(VdfRead, BadInputGivesTheProgramsMessage) {
    struct Row {
        const char* what;
        std::string text;
        bool ok;
        std::string message;
    };
    const Row rows[] = {
        {"empty file", "", false, "Error reading file = 62 : Input past end of file (line 1). Press OK to clear."},
        {"binary bytes", std::string("\x7f" "ELF\x02\x01\x01\0\0\0", 10), false, "Error - Invalid VELM data file !"},
        {"newer version", "\"VELM_3.3\"\r\n", false, "Cannot read VELM version 3.3 data files. Contact the developers."},
        {"unknown version", "\"VELM_0.9\"\r\n", false, "Cannot read VELM version 0.9 data files. Contact the developers."},
        {"truncated line", kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"TEMP\",25,", false,
         "Error reading file = 62 : Input past end of file (line 3). Press OK to clear."},
        {"not a number", kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"LEN\",abc,\"m\"\r\n", false,
         "Error reading file = 13 : Type mismatch (line 3: a number was expected, found \"abc\"). Press OK to clear."},
        {"unknown section", kTag + "\"\\PIPES\",0,\"NUM\",1\r\n", true,
         "Line = 2 ignored : Equipment type not recognized. Input = \\PIPES\r\nLine discarded = 0,\"NUM\",1"},
        {"line without a section", kTag + "\"PIPE\",0,\"NUM\",1\r\n", true,
         "Line = 2 ignored : Equipment type not recognized. Input = PIPE\r\nLine discarded = 0,\"NUM\",1"},
        {"index above the count", kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",5,\"LEN\",10,\"m\"\r\n", true,
         "Line = 3 ignored : Equipment number for \\PIPE exceeds maximum/minimum. Input = 5 vs 1"},
        {"index below zero", kTag + "\"\\FEED\",-1,\"ELEV\",10,\"m\"\r\n", true,
         "Line = 2 ignored : Equipment number for \\FEED exceeds maximum/minimum. Input = -1 vs 0"},
        {"unknown key", kTag + "\"\\PIPE\",0,\"LENGTH\",10,\"m\"\r\n", true,
         "Line = 2 ignored : Key for equipment \\PIPE not recognized. Input = LENGTH"},
    };
    for (const Row& r : rows) {
        Read rd(r.text);
        EXPECT_EQ(rd.ok, r.ok) << r.what;
        ASSERT_FALSE(rd.ui.told.empty()) << r.what;
        EXPECT_EQ(rd.ui.told.front(), r.message) << r.what;
    }
}

TEST(VdfRead, MissingFileAndBlankName) {
    for (const char* name : {"/nonexistent/dir/none.vdf", " "}) {
        RecordingInteraction ui;
        RunContext ctx(ui);
        Project p;
        NewProject(p);
        EXPECT_FALSE(ReadVdf(ctx, p, name));
        ASSERT_EQ(ui.told.size(), 1u);
        EXPECT_EQ(ui.told[0], "Error - File does not exist !");
    }
}

TEST(VdfRead, AFaultySkipsItsLineAndReadingGoesOn) {
    Read rd(kTag + "\"\\PIPE\",0,\"NUM\",2\r\n\"\\PIPE\",7,\"LEN\",10,\"m\"\r\n\"\\PIPE\",2,\"LEN\",42,\"m\"\r\n");
    EXPECT_TRUE(rd.ok);
    EXPECT_EQ(rd.faults, 1);
    EXPECT_EQ(rd.p.lines[2].LEN, 42.0);
}

TEST(VdfRead, ElevenFaultsAskOnceAndAgainAfterElevenMore) {
    std::string text = kTag;
    for (int i = 0; i < 23; ++i) text += "\"\\NOPE\",0,\"X\",1\r\n";
    Read keep_going(text, {1, 1});  // "No" both times
    EXPECT_TRUE(keep_going.ok);
    EXPECT_EQ(keep_going.ui.asked, (std::vector<std::string>{"Abort reading file ?", "Abort reading file ?"}));
    EXPECT_EQ(keep_going.faults, 23);

    Read stop(text, {0});  // "Yes" stops the reading as an error
    EXPECT_FALSE(stop.ok);
    EXPECT_EQ(stop.ui.asked.size(), 1u);
    EXPECT_EQ(stop.ui.told.back(), "Error reading file = 18 : User interrupt occurred. Press OK to clear.");
}

TEST(VdfRead, OnlyTheVersionLineKeepsTheDefaults) {
    Read rd("\"velm_3.2\"\r\n");
    EXPECT_TRUE(rd.ok);
    EXPECT_TRUE(rd.ui.told.empty());
    EXPECT_EQ(count(rd.p.lines), 0);
    EXPECT_EQ(rd.p.gen.MTP, "Homogeneous");
    EXPECT_EQ(rd.p.gen.PATM, 101.325);
}

TEST(VdfRead, TemplateLinesShapeTheRecordsThatFollowTheirCount) {
    Read rd(kTag + "\"\\FEED\",0,\"PRES\",\"250\",0,\"kPag\"\r\n\"\\FEED\",0,\"NUM\",2\r\n\"\\FEED\",2,\"PRES\",\"300\",0,\"kPag\"\r\n");
    ASSERT_EQ(count(rd.p.feeds), 2);
    EXPECT_EQ(rd.p.feeds[0].PRES.spec, "250");
    EXPECT_EQ(rd.p.feeds[1].PRES.spec, "250");  // copied from the template at NUM
    EXPECT_EQ(rd.p.feeds[2].PRES.spec, "300");
    EXPECT_EQ(rd.p.feeds[1].DP.spec, "0");  // a key missing from the file keeps the template's value
}

TEST(VdfRead, OldEuropeanFileReadsDecimalCommasOnlyWhereTheModeApplies) {
    const std::string text = "\"VELM_1.5\"\r\n\"\\VALVE\",0,\"NUM\",1\r\n\"\\VALVE\",1,\"CV\",\"1,5\",0\r\n"
                             "\"\\VALVE\",1,\"DP\",\"1,5\",0,\"kPag\"\r\n";
    Read european(text, {0});
    ASSERT_TRUE(european.ok);
    EXPECT_EQ(european.ui.asked.front(), "Was this older file created with European locale (comma as decimal place) ?");
    EXPECT_EQ(european.p.valves[1].CV.spec, "1.5");
    EXPECT_EQ(european.p.valves[1].DP.spec, "15");  // always read with the neutral mode: the comma is dropped
    Read neutral(text, {1});
    EXPECT_EQ(neutral.p.valves[1].CV.spec, "15");
}

TEST(VdfRead, MigrationOfFilesBeforeThree) {
    const std::string text =
        "\"VELM_2.1\"\r\n"
        "\"\\GEN\",0,\"MTP\",\"Chrisholm\"\r\n\"\\GEN\",0,\"MDELEV\",\"Dukler\"\r\n\"\\GEN\",0,\"MACCEL\",\"Inverse\"\r\n"
        "\"\\GEN\",0,\"MFIT\",\"2K\"\r\n"
        "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"SCH\",\"10S\"\r\n"
        "\"\\PIPE\",1,\"XY\",0,0,100,100,200,100,300,100,300,300,0,0,0,0,0,0,0,0,0,0,0,0,0,0,300,300\r\n"
        "\"\\FEED\",0,\"NUM\",1\r\n\"\\FEED\",1,\"NAME\",\"F1\",\"\"\r\n\"\\FEED\",1,\"ROT\",180\r\n"
        "\"\\HX\",0,\"NUM\",1\r\n\"\\HX\",1,\"PRAT\",\"\",\"kPag\",0,\"t/h\",0,\"kg/m3\",1,\"cP\"\r\n"
        "\"\\PUMP\",0,\"NUM\",1\r\n\"\\PUMP\",1,\"NPSHA\",\"F1\",\"\"\r\n";
    Read rd(text);
    ASSERT_TRUE(rd.ok) << (rd.ui.told.empty() ? "" : rd.ui.told.front());
    const Project& p = rd.p;
    EXPECT_EQ(p.gen.MTP, "Chisholm");
    EXPECT_EQ(p.gen.MDELEV, "GPSA");
    EXPECT_EQ(p.gen.MACCEL, "Homogeneous");
    EXPECT_EQ(p.gen.MFIT, "Crane");
    EXPECT_EQ(p.lines[1].SCH, "10");
    EXPECT_EQ(p.lines[1].BEND, 3);  // the third point lies on the old end point
    EXPECT_EQ(p.feeds[1].ROT, 0);
    EXPECT_EQ(p.feeds[1].FLIP[1], -1);
    EXPECT_EQ(p.hxs[1].PRAT3, 1.0);
    EXPECT_EQ(p.hxs[1].PRAT5, 1000.0);
    EXPECT_EQ(p.pumps[1].NPSHAF[1], 1);
}

TEST(VdfRead, OldPppFlashIsDroppedWithItsMessage) {
    Read rd("\"VELM_2.0\"\r\n\"\\GEN\",0,\"MFLASH\",\"ppp\"\r\n\"\\GEN\",0,\"COMP0\",1,2,3,0,0,0,0,0,0,0\r\n");
    EXPECT_TRUE(rd.ok);
    EXPECT_EQ(rd.ui.told, std::vector<std::string>{"PPP no longer supported."});
    EXPECT_EQ(rd.p.gen.MFLASH, "None");
    EXPECT_EQ(rd.p.gen.COMP[2], 0);
}

// Values of key lines that do not simply fill the field of the same name.
TEST(VdfRead, KeyValuesLandInTheirFields) {
    struct Row {
        const char* line;
        std::function<double(const Project&)> field;
        double expected;
    };
    const std::string head = "\"\\PIPE\",0,\"NUM\",1\r\n\"\\FEED\",0,\"NUM\",1\r\n\"\\COMP\",0,\"NUM\",1\r\n"
                             "\"\\TEE\",0,\"NUM\",1\r\n\"\\VESSEL\",0,\"NUM\",1\r\n\"\\JUNC\",0,\"NUM\",1\r\n"
                             "\"\\PUMP\",0,\"NUM\",1\r\n\"\\PIPEDATA\",0,\"NUM\",1\r\n";
    const Row rows[] = {
        {"\"\\PIPE\",1,\"LIQDEN\",901,902,903,\"kg/m3\"", [](const Project& p) { return p.lines[1].LPROP[1]; }, 903},
        {"\"\\PIPE\",1,\"VAPK\",1.1,1.2,1.3", [](const Project& p) { return p.lines[1].VPROP[7]; }, 1.3},
        {"\"\\PIPE\",1,\"TPROP\",1,2,3,4,\"kg/m3\",6,\"cP\"", [](const Project& p) { return p.lines[1].TPROP[6]; }, 6},
        {"\"\\PIPE\",1,\"QINS\",0.07,\"m\",0.04,\"W/m/K\"", [](const Project& p) { return p.lines[1].QINS[3]; }, 0.04},
        {"\"\\PIPE\",1,\"UI\",\"12\",12,\"W/m2/K\"", [](const Project& p) { return p.lines[1].UI.value; }, 12},
        {"\"\\PIPE\",1,\"COMP1\",11,12,13,14,15,16,17,18,19,20", [](const Project& p) { return p.lines[1].COMP0[20]; }, 20},
        {"\"\\PIPE\",1,\"FIT4\",\"Globe valve\",3,340,0,1500,4,1", [](const Project& p) { return p.lines[1].FIT[4].count; }, 3},
        {"\"\\PIPE\",1,\"SIZ\",\"Min\",22.6,\"kPa/100m\",100,0.3,120,10,\"m/s\"", [](const Project& p) { return p.lines[1].SIZ[7]; }, 10},
        {"\"\\PIPE\",1,\"XY\",0,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,0,0",
         [](const Project& p) { return p.lines[1].XY[24]; }, 22},
        {"\"\\PIPE\",1,\"EQN\",3,\"F1\",0,\"J1\",2,1.5,2.5,3.5", [](const Project& p) { return p.lines[1].EQN.EQN8; }, 3.5},
        {"\"\\FEED\",1,\"NOZ\",4,1.5,\"m\",2.5,3.5,4.5,\"kPag\"", [](const Project& p) { return p.feeds[1].NOZ.KFlow; }, 4.5},
        {"\"\\FEED\",1,\"XY\",120,340", [](const Project& p) { return p.feeds[1].NOZ.Y; }, 340},
        {"\"\\COMP\",1,\"HQACT\",1500,\"m\",2500,\"m3/h\"", [](const Project& p) { return p.comps[1].QACT.value; }, 2500},
        {"\"\\TEE\",1,\"M\",2,3,777,\"kg/m3\"", [](const Project& p) { return p.tees[1].C3; }, 777},
        {"\"\\TEE\",1,\"CON\",1,2,3,4,5,6", [](const Project& p) { return p.tees[1].CON[6]; }, 6},
        {"\"\\VESSEL\",1,\"NOZO\",3,7,1.25,\"m\",0.5,\"kPag\",0.6,0.7,0.8,\"kPag\"",
         [](const Project& p) { return p.vessels[1].NOZO[3].dPLevel; }, 0.6},
        {"\"\\VESSEL\",1,\"LEVM\",\"1.5\",\"m\",850,\"kg/m3\",\"NOZO2\"", [](const Project& p) { return p.vessels[1].LEVM3; }, 850},
        {"\"\\JUNC\",1,\"NOZI\",2,9,0.75,\"m\"", [](const Project& p) { return p.juncs[1].NOZI[2].CON; }, 9},
        {"\"\\JUNC\",1,\"XY\",1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16", [](const Project& p) { return p.juncs[1].NOZO[1].X; }, 9},
        {"\"\\PUMP\",1,\"NPSHAF\",2,3,1,45.5,\"kPag\",1.5,\"m\"", [](const Project& p) { return p.pumps[1].NPSHA4; }, 45.5},
        {"\"\\PUMP\",1,\"NPSHRE\",2,1480,\"rpm\",11000", [](const Project& p) { return p.pumps[1].NPSHR3; }, 11000},
        {"\"\\PIPEDATA\",1,\"DIA\",3,\"3/8\",0.01715,0,0,0.0125", [](const Project& p) { return p.pipedata[1].DIA[3].ID[3]; }, 0.0125},
        {"\"\\PIPEDATA\",1,\"SDIA\",0.05,\"80\",0.3,\"40\",10,\"STD\",\"m\"",
         [](const Project& p) { return p.pipedata[1].SDIA_limit[2]; }, 0.3},
    };
    for (const Row& r : rows) {
        // A short DIA line takes its missing values from the lines that follow.
        const std::string filler = "0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0\r\n";
        Read rd(kTag + head + r.line + "\r\n" + (std::string(r.line).find(",\"DIA\",") != std::string::npos ? filler : ""));
        EXPECT_TRUE(rd.ok) << r.line;
        EXPECT_TRUE(rd.ui.told.empty()) << r.line << ": " << rd.ui.told.front();
        EXPECT_DOUBLE_EQ(r.field(rd.p), r.expected) << r.line;
    }
}

TEST(VdfRead, NotesKeepLineBreaksAndQuotes) {
    Read rd(kTag + "\"\\FEED\",0,\"NOTES\",\"Line one<CRLF>say <CHR34>hi<CHR34>\"\r\n");
    EXPECT_EQ(rd.p.feeds[0].NOTES, "Line one\r\nsay \"hi\"");
    EXPECT_NE(WriteVdf(rd.ctx, rd.p).find("\"Line one<CRLF>say <CHR34>hi<CHR34>\""), std::string::npos);
}

}  // namespace
}  // namespace velm
