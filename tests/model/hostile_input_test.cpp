// Project files built to hurt: what fuzzing found, each held to the program's
// message and to a project that stays whole.
#include <gtest/gtest.h>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/project_file.hpp"
#include "model/vdf_schema.hpp"
#include "solver/input_checks.hpp"

namespace velm {
namespace {

const std::string kTag = "\"VELM_3.2\"\r\n";

struct Read {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    bool ok = false;
    int faults = 0;

    explicit Read(const std::string& text, std::size_t max_bytes = kMaxProjectBytes) {
        ctx.max_project_bytes = max_bytes;
        NewProject(p);
        ok = read_vdf_text(ctx, p, text, nullptr, &faults);
    }
};

TEST(VdfBadInput, RecordCountsAreBoundedByTheMemoryTheyTake) {
    constexpr std::size_t kBudget = std::size_t{4} << 20;
    Project blank;
    NewProject(blank);
    const auto most = [&](const char* section) {
        return std::to_string(kBudget / find_section(section)->record_bytes(blank));
    };
    // A table of 11 kB records and a pipe of 5 kB records asked a million times.
    for (const char* section : {"\\PIPEDATA", "\\PIPE"}) {
        Read rd(kTag + "\"" + section + "\",0,\"NUM\",1000000\r\n", kBudget);
        ASSERT_EQ(rd.ui.told.size(), 1u) << section;
        EXPECT_EQ(rd.ui.told[0], "Line = 2 ignored : Equipment number for " + std::string(section) +
                                     " exceeds maximum/minimum. Input = 1000000 vs " + most(section));
        EXPECT_EQ(find_section(section)->count(rd.p), 0) << section;
    }
    // The memory is shared: what one section took is not there for the next.
    const std::string half = std::to_string(std::stoi(most("\\PIPE")) / 2 + 1);
    Read rd(kTag + "\"\\PIPE\",0,\"NUM\"," + half + "\r\n\"\\PIPE\",0,\"NUM\"," + half + "\r\n\"\\FEED\",0,\"NUM\"," +
                most("\\FEED") + "\r\n",
            kBudget);
    EXPECT_EQ(count(rd.p.lines), std::stoi(half));
    EXPECT_EQ(rd.faults, 1);
    EXPECT_EQ(count(rd.p.feeds), 0);
}

TEST(VdfBadInput, NumbersOutOfRange) {
    const std::string pipe = kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"LEN\",";
    Read small(pipe + "1e-400,\"m\"\r\n");
    EXPECT_TRUE(small.ok);
    EXPECT_EQ(small.p.lines[1].LEN, 0.0);
    Read large(pipe + "-1e400,\"m\"\r\n");
    EXPECT_FALSE(large.ok);
    ASSERT_EQ(large.ui.told.size(), 1u);
    EXPECT_EQ(large.ui.told[0],
              "Error reading file = 6 : Overflow (line 3: the number \"-1e400\" is too large). Press OK to clear.");
}

TEST(VdfBadInput, AFaultyLineIsShownCutWithControlBytesEscaped) {
    const std::string rest = "1,\x1b[2J" + std::string(100000, ',') + "\r\n";
    Read rd(kTag + "\"\\PIPES\"," + rest);
    ASSERT_EQ(rd.ui.told.size(), 1u);
    const std::string& told = rd.ui.told[0];
    EXPECT_EQ(told.substr(0, told.find("\r\n")), "Line = 2 ignored : Equipment type not recognized. Input = \\PIPES");
    EXPECT_EQ(told.substr(told.find("\r\n") + 2), "Line discarded = 1,\\x1B[2J" + std::string(74, ',') + "...");
}

TEST(VdfBadInput, ATextHoldingAQuoteReadsBackWhole) {
    Read rd(kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"NAME\",L-1,Day tank 3\" line\r\n");
    ASSERT_TRUE(rd.ok);
    ASSERT_EQ(rd.p.lines[1].NAME[2], "Day tank 3\" line");
    const std::string file = WriteVdf(rd.ctx, rd.p);
    Read again(file);
    EXPECT_EQ(again.p.lines[1].NAME[2], "Day tank 3\" line");
    EXPECT_EQ(WriteVdf(again.ctx, again.p), file);
    // A text the file cannot hold whole is refused, not cut.
    rd.p.lines[1].NAME[2] = "3\" line, east";
    EXPECT_THROW(WriteVdf(rd.ctx, rd.p), Fault);
}

TEST(VdfBadInput, ImpossibleValuesAreRefusedBeforeARun) {
    const std::string head = kTag + "\"\\PIPE\",0,\"NUM\",1\r\n\"\\PIPE\",1,\"NAME\",\"L-101\",\"\"\r\n"
                                    "\"\\FEED\",0,\"NUM\",1\r\n\"\\FEED\",1,\"NAME\",\"TK-1\",\"\"\r\n";
    const std::string many_cases = std::string(100, ';');
    struct Row {
        std::string line;
        std::string message;
    };
    const Row rows[] = {
        {"\"\\PIPE\",1,\"LEN\",-85,\"m\"", "Error! Line L-101, LEN = -85 m is below 0 m."},
        {"\"\\PIPE\",1,\"LIQVISC\",1,-0.5,1,\"cP\"", "Error! Line L-101, LIQVISC[2] = -0.5 cP is below 0 cP."},
        {"\"\\PIPE\",1,\"TEMP\",-300,20,20,\"C\"", "Error! Line L-101, TEMP[1] = -300 C is below -273.15 C."},
        {"\"\\GEN\",0,\"CASENO\",\"1;-5\"",
         "Error! CASENO = \"1;-5\": case \"-5\" is not a case number from 1 to 100."},
        {"\"\\GEN\",0,\"CASENO\",\"2.5\"",
         "Error! CASENO = \"2.5\": case \"2.5\" is not a case number from 1 to 100."},
        {"\"\\GEN\",0,\"CASENO\",\"" + many_cases + "\"", "Error! CASENO lists 101 cases; a run takes at most 100."},
        {"\"\\FEED\",1,\"LEVEL\",\"2;nan\",\"m\",0,\"kg/m3\",\"Line\"",
         "Error! \\FEED 1 TK-1, LEVEL = \"2;nan\": \"NAN\" is not a number."},
        {"\"\\PIPE\",1,\"TFLOW\",\"1e400\",0,\"t/h\"",
         "Error! \\PIPE 1 L-101, TFLOW = \"1e400\": \"1E400\" is not a number."},
        {"\"\\FEED\",1,\"LEVEL\",\"2;-1\",\"m\",0,\"kg/m3\",\"Line\"",
         "Error! Feed TK-1, LEVEL = \"2;-1\" is below 0 m."},
        {"\"\\GEN\",0,\"CASERPT\",\"0;4e75\"",
         "Error! CASERPT = \"0;4e75\": \"4e75\" is not a report code from -1 to 16383."},
        {"\"\\GEN\",0,\"CASERPT\",\"-2\"", "Error! CASERPT = \"-2\": \"-2\" is not a report code from -1 to 16383."},
    };
    for (const Row& r : rows) {
        Read rd(head + r.line + "\r\n");
        ASSERT_TRUE(rd.ok && rd.faults == 0) << r.line;
        EXPECT_EQ(check_input_values(rd.p), r.message) << r.line;
    }
    Read fine(head + "\"\\GEN\",0,\"CASENO\",\"1;3;2\"\r\n\"\\GEN\",0,\"CASERPT\",\"-1;16383;\"\r\n\"\\PIPE\",1,\"TFLOW\",\"10;E;;v\",0,\"t/h\"\r\n");
    EXPECT_EQ(check_input_values(fine.p), "");
}

}  // namespace
}  // namespace velm
