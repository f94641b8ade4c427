#include "model/pipe_table.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

#include <unistd.h>

#include "model/context.hpp"
#include "model/embedded.hpp"

namespace velm {
namespace {

struct Fixture {
    RecordingInteraction ui;
    RunContext ctx{ui};
};

// Two materials of 50 sizes named "1".."50": schedule "40" has ID = size *
// 10 mm, schedule "80" 2 mm less and no size 2. "Milli" holds the same in mm.
// Sizes 3, 4 and 50 are not standard.
std::vector<PipeData> test_table() {
    std::vector<PipeData> t(3);
    for (int m = 1; m <= 2; ++m) {
        PipeData& p = t[m];
        const double scale = m == 1 ? 1.0 : 1000.0;
        p.MAT = m == 1 ? "Test" : "Milli";
        p.UNITS = m == 1 ? "m" : "mm";
        p.NSS = "3;4;50";
        p.SCH[1] = "40";
        p.SCH[2] = "80";
        p.SDIA_limit = {0.0, 0.05, 0.3, 1.5};
        p.SDIA_sch = {"", "80", "40", "STD"};
        for (int i = 1; i <= kPipeSizes; ++i) {
            p.DIA[i].name = std::to_string(i);
            p.DIA[i].OD = scale * (i * 0.01 + 0.005);
            p.DIA[i].ID[1] = scale * i * 0.01;
            p.DIA[i].ID[2] = i == 2 ? 0.0 : scale * (i * 0.01 - 0.002);
        }
    }
    return t;
}

TEST(PipeTable, DiameterOfSizeAndSchedule) {
    struct Row { const char* what; const char* mat; const char* size; const char* sch; const char* units; double expected; };
    const Row rows[] = {
        {"ID", "Test", "4", "40", "m", 0.04},
        {"ID", "Test", "4.0", "40", "m", 0.0},  // sizes are compared as text
        {"OD", "Test", "4", "40", "mm", 45.0},
        {"WT", "Test", "4", "80", "mm", 3.5},
        {"ID", "Test", "2", "80", "m", 0.0},    // no such pipe
        {"ID", "Milli", "4", "40", "m", 0.04},  // table in mm, asked in m
        {"ID", "Milli", "4", "40", "in", 0.04 / 0.0254},
        {"ID", "Steel", "4", "40", "m", 0.0},
        {"ID", "Test", "4", "XS", "m", 0.0},
        {"Id", "Test", "4", "40", "m", 0.0},
    };
    const auto table = test_table();
    for (const auto& r : rows) {
        Fixture f;
        EXPECT_NEAR(pipe_ID_from_dia(f.ctx, table, r.what, r.mat, r.size, r.sch, r.units), r.expected, 1e-9)
            << r.what << " " << r.mat << " " << r.size << " " << r.sch << " " << r.units;
        EXPECT_TRUE(f.ui.told.empty());
    }
    auto bad = table;
    bad[1].UNITS = "furlong";
    Fixture f;
    f.ctx.run_active = true;
    EXPECT_EQ(pipe_ID_from_dia(f.ctx, bad, "ID", "Test", "4", "40", "m"), 0.0);
    EXPECT_EQ(f.ctx.run_log_text, "\r\nUnknown units for furlong\r\nError! In pipe ID from dia = 11 : Division by zero");
}

TEST(PipeTable, NominalSizeFromInsideDiameter) {
    const auto table = test_table();
    const double row5 = table[1].DIA[5].ID[1];
    const std::string not_found = "Error! Nominal pipe size not found in database (too large or small)";
    struct Row { const char* mat; double id; const char* sch; const char* units; const char* direction; bool report;
                 const char* expected; std::string logged; };
    const Row rows[] = {
        {"Test", row5, "40", "m", "Larger", true, "5", ""},        // an exact match is found at its row
        {"Test", 0.0505, "40", "m", "Larger", true, "6", ""},
        {"Test", 0.025, "40", "m", "Larger", true, "5", ""},       // 3 and 4 are skipped
        {"Test", 0.495, "40", "m", "Larger", true, "50", ""},      // the last row stays, standard or not
        {"Test", 0.6, "40", "m", "Larger", true, "", not_found},
        {"Test", 0.6, "40", "m", "Larger", false, "", ""},
        {"Test", 0.005, "40", "m", "Smaller", true, "1", ""},      // below the first row: the first size
        {"Test", 0.0605, "40", "m", "Smaller", true, "6", ""},
        {"Test", row5, "40", "m", "Smaller", true, "2", ""},       // 4 and 3 are skipped
        {"Test", 0.035, "40", "m", "Smaller", true, "2", ""},
        {"Test", 0.015, "40", "m", "Smaller", true, "1", ""},
        {"Test", 0.6, "40", "m", "Smaller", true, "", not_found},
        {"Test", 0.015, "80", "m", "Larger", true, "5", ""},       // size 2 has no schedule 80
        {"Test", 50.5, "40", "mm", "Larger", true, "6", ""},
        {"Milli", 0.0505, "40", "m", "Larger", true, "6", ""},
        {"Steel", 0.05, "40", "m", "Larger", true, "", ""},
        {"Test", 0.05, "XS", "m", "Larger", true, "", ""},
        {"Test", 0.05, "40", "m", "Up", true, "", ""},
    };
    for (const auto& r : rows) {
        Fixture f;
        f.ctx.run_active = true;
        EXPECT_EQ(pipe_Dia_from_ID(f.ctx, table, r.mat, r.id, r.sch, r.units, r.direction, r.report), r.expected)
            << r.mat << " " << r.id << " " << r.sch << " " << r.direction;
        EXPECT_EQ(f.ctx.run_log_text, r.logged.empty() ? "" : "\r\n" + r.logged) << r.id << " " << r.direction;
    }
}

TEST(PipeTable, DefaultScheduleAndStandardSizes) {
    const auto table = test_table();
    struct Sched { const char* mat; double size; const char* expected; };
    const Sched scheds[] = {
        {"Test", 0.03, "80"}, {"Test", 0.05, "40"}, {"Test", 0.2, "40"}, {"Test", 0.3, "STD"},
        {"Test", 2.0, "STD"}, {"Steel", 0.1, ""},
    };
    for (const auto& s : scheds) {
        Fixture f;
        EXPECT_EQ(pipe_Sched_from_ID(f.ctx, table, s.mat, s.size), s.expected) << s.size;
        EXPECT_TRUE(f.ui.told.empty());
    }
    Fixture f;
    f.ctx.run_active = true;
    EXPECT_EQ(pipe_Sched_from_ID(f.ctx, table, "Test", std::numeric_limits<double>::quiet_NaN()), "Error.");
    EXPECT_EQ(f.ctx.run_log_text, "\r\nError! In pipe Sched from ID = 5 : Invalid procedure call or argument");

    struct Std { const char* size; const char* list; bool expected; };
    const Std stds[] = {
        {"4", "3;4;50", false}, {"50", "3;4;50", false}, {"4.0", "3;4;50", true}, {"1-1/4", "1-1/4", false},
        {" 4", "3;4", true},    {"4", "", true},         {"", "", true},          {"", "3;;4", false},
    };
    for (const auto& s : stds) EXPECT_EQ(is_std_size(s.size, s.list), s.expected) << s.size << " in " << s.list;
}

// Published dimensions of the installed table, from the inch tables of ASME
// B36.10M (carbon steel), ASME B36.19M (stainless) and ASTM D1785 (PVC):
// e.g. 4 in sch 40: OD 4.500 in = 114.3 mm, wall 0.237 in, ID 4.026 in =
// 102.26 mm; 2 in sch 80: ID 1.939 in = 49.25 mm; 10 in STD: ID 10.020 in =
// 254.51 mm.
TEST(PipeTable, InstalledTableHoldsPublishedDimensions) {
    struct Row { const char* mat; const char* size; const char* sch; const char* what; double mm; };
    const Row rows[] = {
        {"Steel", "4", "40", "OD", 114.3},      {"Steel", "4", "40", "ID", 102.26},
        {"Steel", "2", "80", "ID", 49.25},      {"Steel", "10", "STD", "ID", 254.51},
        {"Steel", "1/2", "XXS", "ID", 6.40},    {"Steel", "12", "40", "WT", 10.31},
        {"Steel", "8", "60", "ID", 198.45},     {"Steel", "24", "STD", "ID", 590.55},
        {"Steel", "36", "XS", "ID", 889.0},     {"Steel", "1/8", "5S", "ID", 0.0},
        {"Stainless", "6", "10S", "ID", 161.47}, {"Stainless", "12", "40S", "ID", 304.80},
        {"PVC", "2", "40", "ID", 52.50},        {"PVC", "1", "80", "ID", 24.31},
    };
    Fixture f;
    std::vector<PipeData> table;
    ASSERT_TRUE(ReadPipeLib(f.ctx, table));
    ASSERT_EQ(count(table), 3);
    for (const auto& r : rows)
        EXPECT_NEAR(pipe_ID_from_dia(f.ctx, table, r.what, r.mat, r.size, r.sch, "mm"), r.mm, 0.005)
            << r.mat << " " << r.size << " " << r.sch << " " << r.what;
    // Sizing over the real table skips 3-1/2 in, and the default schedules.
    EXPECT_EQ(pipe_Dia_from_ID(f.ctx, table, "Steel", 0.09, "40", "m", "Larger", true), "4");
    EXPECT_EQ(pipe_Dia_from_ID(f.ctx, table, "Steel", 0.1, "40", "m", "Smaller", true), "3");
    EXPECT_EQ(pipe_Sched_from_ID(f.ctx, table, "Steel", 0.0483), "80");
    EXPECT_EQ(pipe_Sched_from_ID(f.ctx, table, "Steel", 0.2731), "40");
    EXPECT_EQ(pipe_Sched_from_ID(f.ctx, table, "Steel", 0.3048), "STD");
    EXPECT_TRUE(f.ui.told.empty());
}

void expect_same(const std::vector<PipeData>& a, const std::vector<PipeData>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t m = 1; m < a.size(); ++m) {
        const PipeData& x = a[m];
        const PipeData& y = b[m];
        EXPECT_EQ(x.MAT, y.MAT);
        EXPECT_EQ(x.NOTES, y.NOTES);
        EXPECT_EQ(x.E, y.E);
        EXPECT_EQ(x.NSS, y.NSS);
        EXPECT_EQ(x.IDIA, y.IDIA);
        EXPECT_EQ(x.SDIA_limit, y.SDIA_limit);
        EXPECT_EQ(x.SDIA_sch, y.SDIA_sch);
        EXPECT_EQ(x.UNITS, y.UNITS);
        EXPECT_EQ(x.SCH, y.SCH);
        for (int i = 1; i <= kPipeSizes; ++i) {
            EXPECT_EQ(x.DIA[i].name, y.DIA[i].name) << x.MAT << " row " << i;
            EXPECT_EQ(x.DIA[i].OD, y.DIA[i].OD) << x.MAT << " row " << i;
            EXPECT_EQ(x.DIA[i].ID, y.DIA[i].ID) << x.MAT << " row " << i;
        }
    }
}

std::string file_bytes(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

TEST(PipeTable, PipeLibRoundTrip) {
    Fixture f;
    const std::string_view installed = embedded_file("pipeid.lib");
    std::vector<PipeData> first, second, third;
    ASSERT_TRUE(read_pipe_lib_text(f.ctx, installed, first));
    const std::string text = pipe_lib_text(first);
    EXPECT_EQ(text, installed);  // the generator writes the program's own form
    ASSERT_TRUE(read_pipe_lib_text(f.ctx, text, second));
    expect_same(first, second);
    EXPECT_EQ(pipe_lib_text(second), text);

    const auto dir = std::filesystem::temp_directory_path() / ("velm_pipelib_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    second[2].NOTES = "edited";
    ASSERT_TRUE(SavePipeLib(f.ctx, second, dir / "pipeid.lib"));
    EXPECT_FALSE(std::filesystem::exists(dir / "pipeid.lib.tmp"));
    ASSERT_TRUE(ReadPipeLib(f.ctx, third, dir));
    expect_same(second, third);
    EXPECT_EQ(file_bytes(dir / "pipeid.lib"), pipe_lib_text(third));

    // A directory without the library falls back on the built-in copy.
    std::filesystem::remove(dir / "pipeid.lib");
    ASSERT_TRUE(ReadPipeLib(f.ctx, third, dir));
    expect_same(first, third);
    EXPECT_TRUE(f.ui.told.empty());

    EXPECT_FALSE(SavePipeLib(f.ctx, first, dir / "missing" / "pipeid.lib"));
    ASSERT_EQ(f.ui.told.size(), 1u);
    EXPECT_EQ(f.ui.told[0], "Error! Saving pipe data = 75 : Path/File access error. Press OK to clear.");
    std::filesystem::remove_all(dir);
}

TEST(PipeTable, BadInputPipeLibGivesTheMessageAndKeepsTheTable) {
    const std::string installed(embedded_file("pipeid.lib"));
    std::string garbled = installed;
    garbled.replace(garbled.find("0.010287"), 8, "0.0x0287");
    std::string shifted = installed;  // one size line of the first material missing
    const std::size_t row = shifted.find("\"1/4\"");
    shifted.erase(row, shifted.find('\n', row) + 1 - row);
    const std::string head = "\"Velm_2.0\"\r\n\"Number\",";
    struct Row { const char* what; std::string bytes; std::string message; };
    const Row rows[] = {
        {"empty", "", "62 : Input past end of file (line 1)"},
        {"not a library", "\"Hello\"\r\n", "13 : Type mismatch (line 1: \"Velm_2.0\" was expected, found \"Hello\")"},
        {"set beyond the count", head + "2\r\n\"Set\",3\r\n", "9 : Subscript out of range (line 3: material 3)"},
        {"negative count", head + "-1\r\n", "9 : Subscript out of range (line 2: material count -1)"},
        {"huge count", head + "5000000\r\n", "9 : Subscript out of range (line 2: material count 5000000)"},
        {"text for a number", garbled,
         "13 : Type mismatch (line 14: a number was expected, found \"0.0x0287\")"},
        {"shifted items", shifted,
         "13 : Type mismatch (line 64: a number was expected, found \"Material\")"},
        {"ends inside a set", head + "1\r\n\"Set\",1\r\n\"Material\",\"Steel\"\r\n",
         "62 : Input past end of file (line 5)"},
    };
    for (const auto& r : rows) {
        Fixture f;
        std::vector<PipeData> table(2);
        table[1].MAT = "Kept";
        EXPECT_FALSE(read_pipe_lib_text(f.ctx, r.bytes, table)) << r.what;
        ASSERT_EQ(f.ui.told.size(), 2u) << r.what;
        EXPECT_EQ(f.ui.told[0], "Error! Reading pipe data = " + r.message + ". Press OK to clear.") << r.what;
        EXPECT_EQ(f.ui.told[1], "Quit program. Put the original file pipeid.lib in program directory.");
        ASSERT_EQ(table.size(), 2u) << r.what;
        EXPECT_EQ(table[1].MAT, "Kept") << r.what;
    }
}

TEST(PipeTable, BadInputPipeLibCutOrMutatedNeverCrashes) {
    const std::string installed(embedded_file("pipeid.lib"));
    // Cut anywhere but at a line end, the library misses items or labels.
    for (std::size_t cut = 1; cut < installed.size(); cut += 13) {
        if (installed[cut - 1] == '\n' || installed[cut] == '\r' || installed[cut] == '\n') continue;
        Fixture f;
        std::vector<PipeData> table;
        EXPECT_FALSE(read_pipe_lib_text(f.ctx, installed.substr(0, cut), table)) << cut;
        ASSERT_EQ(f.ui.told.size(), 2u) << cut;
        EXPECT_EQ(f.ui.told[0].rfind("Error! Reading pipe data = ", 0), 0u) << cut;
    }
    // Bytes changed at random: a table or a message, never a crash.
    const char replacements[] = {'"', ',', '\r', '\n', '9', '-', 'e', '.', ' ', '\0'};
    unsigned state = 12345;
    const auto next = [&state] { return state = state * 1103515245u + 12345u, state >> 8; };
    for (int k = 0; k < 300; ++k) {
        std::string bytes = installed;
        for (int n = 0; n < 3; ++n) bytes[next() % bytes.size()] = replacements[next() % sizeof replacements];
        Fixture f;
        std::vector<PipeData> table;
        if (!read_pipe_lib_text(f.ctx, bytes, table)) {
            EXPECT_EQ(f.ui.told.size(), 2u);
            continue;
        }
        RunContext& ctx = f.ctx;
        for (std::size_t m = 1; m < table.size(); ++m) {
            pipe_ID_from_dia(ctx, table, "WT", table[m].MAT, "2", "40", "mm");
            pipe_Dia_from_ID(ctx, table, table[m].MAT, 0.05, table[m].SCH[1], "m", "Smaller", true);
        }
    }
}

}  // namespace
}  // namespace velm
