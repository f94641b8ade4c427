// The hydraulic report: its pieces (report code, date, escapes, numbers) and
// the whole file of a two-case run of the pump loop: valid rich text once the
// run's last line closes it, the sections each case's code asks for, and the
// records' values in the display units.
#include "reports/hydraulic_report.hpp"

#include <gtest/gtest.h>

#include "tests/test_support.hpp"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "model/context.hpp"
#include "model/number_format.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "reports/report_text.hpp"
#include "solver/run.hpp"

namespace velm {
namespace {

TEST(HydraulicReport, ReportCodeOfEachCase) {
    struct Row {
        const char* CASERPT;
        int case_no, mask;
    } rows[] = {
        {"0;-1;3;;6", 1, kAllSections}, {"0;-1;3;;6", 2, 0},  {"0;-1;3;;6", 3, 3},
        {"0;-1;3;;6", 4, kAllSections}, {"0;-1;3;;6", 5, 6},  {"0;-1;3;;6", 6, kAllSections},
        {"-1", 2, 0},                   {"4", 3, 4},          {"", 1, kAllSections},
    };
    for (const Row& r : rows) {
        Header g;
        g.CASERPT = r.CASERPT;
        EXPECT_EQ(report_mask(g, r.case_no), r.mask) << r.CASERPT << " case " << r.case_no;
    }
}

TEST(HydraulicReport, DateOfTheHeaderElseNow) {
    struct Row {
        const char* ENG4;
        int year, month, day, hour, minute;
        const char* shown;
    } rows[] = {
        {"", 2025, 3, 5, 14, 7, "5 Mar 25, 14:07"},
        {"            ", 2009, 12, 31, 9, 5, "31 Dec 09, 09:05"},
        {" 12-Jan-24  ", 2025, 3, 5, 14, 7, "12-Jan-24"},
    };
    for (const Row& r : rows) {
        Header g;
        g.ENG[4] = r.ENG4;
        std::tm now{};
        now.tm_year = r.year - 1900;
        now.tm_mon = r.month - 1;
        now.tm_mday = r.day;
        now.tm_hour = r.hour;
        now.tm_min = r.minute;
        EXPECT_EQ(report_date(g, now), r.shown);
    }
}

TEST(HydraulicReport, TextAndNumbersOfTheBody) {
    EXPECT_EQ(rtf_escape("C:\\Plant\\{loop}.vdf"), "C:\\\\Plant\\\\\\{loop\\}.vdf");
    EXPECT_EQ(rtf_escape("Caf\xE9\tA\x01"), "Caf\\'e9 A");
    struct Row {
        double v;
        std::size_t width;
        const char* shown;
    } rows[] = {
        {48741.12748, 11, "48741.1275"}, {-31.58234, 10, "-31.5823"}, {1234567.891, 9, "1234567.9"},
        {1234567.891, 7, "1234568"},     {4e-05, 10, "0.0"},          {1e15, 8, "1.00E15"},
        {NAN, 6, "-"},
    };
    for (const Row& r : rows) EXPECT_EQ(report_number(r.v, r.width), r.shown) << r.v;
}

// A run of examples/pump_loop.vdf with a report code, its report as text.
struct PumpLoopRun {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    RunResult result;
    std::vector<Project> after_case;  // the records as each case left them
    std::string rtf;

    PumpLoopRun(const std::string& caserpt, const std::string& units = "Metric") {
        ctx.data_dir = scratch_dir("report");
        ctx.project_file = "C:\\Plant\\pump_loop.vdf";
        NewProject(p);
        EXPECT_TRUE(ReadPipeLib(ctx, p.pipedata));
        EXPECT_TRUE(ReadVdf(ctx, p, std::string(VELM_SOURCE_DIR) + "/examples/pump_loop.vdf"));
        p.gen.CASERPT = caserpt;
        p.gen.UNITS = units;
        p.gen.ENG[4] = "1 Jan 25";
        result = Hydr_Sim(ctx, p, [&](int, const CaseResult&) { after_case.push_back(p); });
        std::ifstream in(ctx.run_file("resulth.rtf"), std::ios::binary);
        std::ostringstream s;
        s << in.rdbuf();
        rtf = s.str();
    }
    // How many section heads carry this title (the title, then the blanks up to "Date:").
    int heads(const std::string& title) const {
        int n = 0;
        for (std::size_t at = 0; (at = rtf.find("\r\n" + title + "  ", at)) != std::string::npos; ++at) ++n;
        return n;
    }
    // The line of the report that starts with text, from the first head of section.
    std::string row(const std::string& section, const std::string& text, int case_ix = 1) const {
        std::size_t at = 0;
        for (int k = 0; k < case_ix; ++k) at = rtf.find("\r\n" + section + "  ", at + 1);
        at = rtf.find("\r\n" + text, at);
        return at == std::string::npos ? std::string() : rtf.substr(at + 2, rtf.find("\r\n", at + 2) - at - 2);
    }
};

int count_of(const std::string& s, const std::string& part) {
    int n = 0;
    for (std::size_t at = 0; (at = s.find(part, at)) != std::string::npos; at += part.size()) ++n;
    return n;
}

// The group depth after the last brace: it must never fall below 0 and must
// reach 0 only with the last brace, which closes the document.
bool braces_close_the_document(const std::string& s) {
    int depth = 0;
    std::size_t closed_at = std::string::npos;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\') {
            ++i;  // an escaped character: "\\", "\{", "\}"
            continue;
        }
        if (s[i] == '{') ++depth;
        if (s[i] == '}' && --depth <= 0) {
            if (depth < 0 || closed_at != std::string::npos) return false;
            closed_at = i;
        }
    }
    return depth == 0 && closed_at == s.find_last_of('}');
}

TEST(HydraulicReport, TwoCasesOfThePumpLoop) {
    const PumpLoopRun run("0;0");
    ASSERT_TRUE(run.result.all_converged());
    ASSERT_EQ(run.after_case.size(), 2u);
    const std::string& rtf = run.rtf;

    EXPECT_EQ(rtf.rfind("{\\rtf1\\ansi\\deff0\\deflang1033\\deftab720\r\n", 0), 0u);
    EXPECT_EQ(count_of(rtf, "{\\rtf1"), 1);
    EXPECT_EQ(count_of(rtf, "{\\footer\\pard\\ql"), 1);
    EXPECT_NE(rtf.find("\\paperw016840\\paperh011907 \\widowctrl"), std::string::npos);
    EXPECT_NE(rtf.find("\\margl680\\margr680\\margt680\\margb680"), std::string::npos);
    EXPECT_TRUE(rtf.size() > 14 && rtf.substr(rtf.size() - 15) == "End of file }\r\n");
    EXPECT_TRUE(braces_close_the_document(rtf));
    EXPECT_FALSE(braces_close_the_document(rtf.substr(0, rtf.size() - 15)));

    for (const char* title : {"GENERAL", "PRESSURE PROFILE REPORT", "PIPE LINE REPORT", "FEED SUMMARY",
                              "PRODUCT SUMMARY", "ORIFICE SUMMARY", "VALVE SUMMARY", "PUMP SUMMARY",
                              "PUMP NPSH AND CURVES", "WARNINGS & ERRORS"})
        EXPECT_EQ(run.heads(title), 2) << title;
    // No compressor and no vessel in the loop: their summaries stay out.
    for (const char* title : {"COMPRESSOR SUMMARY", "COMPRESSOR CURVES", "VESSEL SUMMARY"})
        EXPECT_EQ(run.heads(title), 0) << title;
    EXPECT_EQ(count_of(rtf, "\r\nCASE 1 NORMAL \\par "), 10);
    EXPECT_EQ(count_of(rtf, "\r\nCASE 2 RATED \\par "), 10);
    EXPECT_EQ(count_of(rtf, "written permission of VELM."), 20);
    EXPECT_EQ(count_of(rtf, "Date: 1 Jan 25"), 20);
    EXPECT_NE(rtf.find("FILE NAME  : C:\\\\Plant\\\\pump_loop.vdf \\par \r\nDEFAULTS   : Fitting        = "),
              std::string::npos);
    EXPECT_NE(rtf.find("Atmospheric pres = 101.325 kPag abs"), std::string::npos);

    for (int k = 0; k < 2; ++k) {
        const CaseResult& c = run.result.cases[static_cast<std::size_t>(k)];
        const std::string n = std::to_string(c.case_no);
        EXPECT_EQ(run.row("GENERAL", "RUN MESSAGE: ", k + 1),
                  "RUN MESSAGE: Case " + n + " Hydraulic solution reached after " + std::to_string(c.iterations) +
                      " iterations. \\par ");
        // The discharge line: its flow in kg/h and its pressures in kPag, as the case left them.
        const Line& l = run.after_case[static_cast<std::size_t>(k)].lines[2];
        const std::string profile = run.row("PRESSURE PROFILE REPORT", "D-102", k + 1);
        EXPECT_NE(profile.find(" " + format_number(l.TFLOW.value * 1000.0, "########0.0###") + " "), std::string::npos)
            << profile;
        EXPECT_NE(profile.find(" " + format_number(l.PRES[1], "########0.0###") + " "), std::string::npos) << profile;
        EXPECT_NE(profile.find("Pump P-101"), std::string::npos);
        EXPECT_NE(profile.find("Orifice FE-101"), std::string::npos);
        EXPECT_NE(run.row("PIPE LINE REPORT", "Flow (kg/h)", k + 1)
                      .find("| " + format_number(l.TFLOW.value * 1000.0, "########0.0###")),
                  std::string::npos);
        // The orifice: the flange (meter) drop before the permanent loss, which is the smaller.
        const FO& fo = run.after_case[static_cast<std::size_t>(k)].fos[1];
        EXPECT_GT(fo.DPF.value, fo.DP.value);
        const std::string orifice = run.row("ORIFICE SUMMARY", "FE-101", k + 1);
        const std::size_t meter = orifice.find(" " + report_number(fo.DPF.value, 9) + " ");
        ASSERT_NE(meter, std::string::npos) << orifice;
        EXPECT_NE(orifice.find(" " + report_number(fo.DP.value, 9) + " ", meter + 1), std::string::npos) << orifice;
        EXPECT_EQ(run.row("WARNINGS & ERRORS", "Warning!", k + 1),
                  "Warning! Line D-102 dP/L exceeds maximum (kPa/100m) = 22.6 \\par ");
    }
}

// British units: the same records in lb/h and psig.
TEST(HydraulicReport, ValuesInTheDisplayUnits) {
    const PumpLoopRun run("1", "British");
    const Line& l = run.after_case.back().lines[2];
    const std::string profile = run.row("PRESSURE PROFILE REPORT", "D-102", 2);
    EXPECT_NE(profile.find(" " + format_number(l.TFLOW.value * 2204.623, "########0.0###") + " "), std::string::npos)
        << profile;
    EXPECT_NE(profile.find(" " + format_number(l.PRES[2] * 0.145038, "########0.0###") + " "), std::string::npos)
        << profile;
    EXPECT_NE(run.rtf.find("lb/h"), std::string::npos);
    EXPECT_NE(run.rtf.find("Atmospheric pres = 14.696 psig abs"), std::string::npos);
}

// Each case's code picks its sections; -1 leaves the heading alone.
TEST(HydraulicReport, SectionsByReportCode) {
    struct Row {
        const char* CASERPT;
        int general, profile, pipe_lines, feeds, pumps, warnings;
    } rows[] = {
        {"-1", 2, 0, 0, 0, 0, 0},
        {"1;2", 2, 1, 1, 0, 0, 2},
        {"4;-1", 2, 0, 0, 1, 1, 1},
        {"3;0", 2, 2, 2, 1, 1, 2},
    };
    for (const Row& r : rows) {
        const PumpLoopRun run(r.CASERPT);
        EXPECT_EQ(run.heads("GENERAL"), r.general) << r.CASERPT;
        EXPECT_EQ(run.heads("PRESSURE PROFILE REPORT"), r.profile) << r.CASERPT;
        EXPECT_EQ(run.heads("PIPE LINE REPORT"), r.pipe_lines) << r.CASERPT;
        EXPECT_EQ(run.heads("FEED SUMMARY"), r.feeds) << r.CASERPT;
        EXPECT_EQ(run.heads("PUMP NPSH AND CURVES"), r.pumps) << r.CASERPT;
        EXPECT_EQ(run.heads("WARNINGS & ERRORS"), r.warnings) << r.CASERPT;
        EXPECT_EQ(count_of(run.rtf, "{\\rtf1"), 1) << r.CASERPT;
        EXPECT_TRUE(braces_close_the_document(run.rtf)) << r.CASERPT;
    }
}

}  // namespace
}  // namespace velm
