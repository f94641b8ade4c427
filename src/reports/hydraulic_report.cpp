#include "reports/hydraulic_report.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/number_format.hpp"
#include "model/text.hpp"
#include "reports/hydraulic_sections.hpp"
#include "reports/report_page.hpp"

namespace velm {

namespace {

constexpr std::size_t kRule = 150;          // width of the rules, characters
constexpr std::size_t kBlockColumn = 50;    // the confidentiality block
constexpr std::size_t kLabelColumn = 129;   // "Page:", "Proj:", "By  :", "Date:"
constexpr std::size_t kValueColumn = 135;

// Paper sizes in twips, landscape: A4 297 x 210 mm, Letter 11 x 8.5 in.
constexpr int kA4Width = 16840, kA4Height = 11907;
constexpr int kLetterWidth = 15840, kLetterHeight = 12240;

bool letter(const Header& gen) { return trim(gen.RPTSIZ1) == "Letter"; }
int font_points(const Header& gen) { return std::clamp(gen.RPTSIZ4, 6, 10); }
int margin(const Header& gen) { return std::clamp(gen.RPTSIZ2, 0, 4000); }

}  // namespace

void document_head(const Header& gen, RtfText& out) {
    const int m = margin(gen);
    char paper[64];
    std::snprintf(paper, sizeof paper, "\\paperw%06d\\paperh%06d", letter(gen) ? kLetterWidth : kA4Width,
                  letter(gen) ? kLetterHeight : kA4Height);
    const std::string ms = std::to_string(m);
    out.raw("{\\rtf1\\ansi\\deff0\\deflang1033\\deftab720");
    out.raw("{\\fonttbl{\\f0\\fmodern\\fprq1 Courier New;}}");
    // On the paper's line, the blank that opens the layout words ends the
    // paper's control word; on a line of its own it would print.
    out.raw(paper + std::string(" \\widowctrl\\ftnbj\\aenddoc\\lytprtmet\\hyphcaps0 \\fet0\\sectd \\lndscpsxn\\linex0"));
    out.raw("\\margl" + ms + "\\margr" + ms + "\\margt" + ms + "\\margb" + ms);
    out.raw("\\pard\\plain\\f0");
    out.raw("\\fs" + std::to_string(2 * font_points(gen)));
    // The footer sits half way into the bottom margin.
    out.raw("\\footery" + std::to_string(m / 2));
    // The footer is a story of its own: it takes the font and size again.
    out.raw("{\\footer\\pard\\ql\\plain\\f0\\fs" + std::to_string(2 * font_points(gen)) + " " +
            std::string(kRule, '=') + " \\par");
    out.raw("\\par}");
}

namespace {

// A line of the section head: left text, the block's text at its column, a
// label and its value (already rich text) at theirs.
std::string head_line(std::string_view left, std::string_view block, std::string_view label) {
    std::string s = cell_left(left, kBlockColumn - 2);
    put_at_column(s, kBlockColumn, block);
    put_at_column(s, kLabelColumn, label);
    s.resize(kValueColumn - 1, ' ');
    return rtf_escape(s);
}

}  // namespace

void ReportPageHead(RtfText& out, Head& h, std::string_view section, std::string_view extra) {
    if (!h.first) out.page();
    h.first = false;
    if (!extra.empty()) out.line(extra);
    out.rule(kRule);
    const Header& g = h.gen;
    out.line_rtf(head_line(trim(g.PRJ[1]), "This information is confidential, and shall", "Page:") +
                 "{\\field{\\*\\fldinst PAGE }{\\fldrslt 1}}");
    out.line_rtf(head_line(trim(g.PRJ[2]), "not be reproduced by any means without the", "Proj:") +
                 rtf_escape(trim(g.ENG[5])));
    out.line_rtf(head_line(trim(g.PRJ[3]), "written permission of " + trim(g.COM[1]) + ".", "By  :") +
                 rtf_escape(trim(g.ENG[1])));
    std::string title(section);
    put_at_column(title, kLabelColumn, "Date:");
    put_at_column(title, kValueColumn, h.date);
    out.line(title);
    out.line("CASE " + std::to_string(h.case_no) + " " + getting_case_data(g.CASEDSC, h.case_no));
    out.rule(kRule);
    out.line();
}

namespace {

std::string yes_no(int flag) { return flag ? "Yes" : "No"; }

void general_section(const HydrCase& c, const std::string& run_message, RtfText& out) {
    const Header& g = c.p.gen;
    const std::string indent(13, ' ');
    out.line("FILE NAME  : " + c.ctx.project_file.string());
    out.line("DEFAULTS   : Fitting        = " + g.MFIT);
    out.line(indent + "Compressible   = " + g.MCOMP);
    out.line(indent + "Two phase flow = " + g.MTP);
    out.line(indent + "Acceleration   = " + g.MACCEL);
    out.line(indent + "Elevation den  = " + g.MDELEV);
    out.line(indent + "Dukler hold-up = " + g.MDUKHP);
    out.line(indent + "Smooth pipe f  = " + yes_no(g.MDUKF));
    out.line(indent + "Sonic velocity = " + g.MSONIC);
    const double patm = convert_value(c.ctx, g.PATM, "kPag", c.u.pressure);
    out.line(indent + "Atmospheric pres = " + format_number(patm, "0.0###") + " " + c.u.pressure + " abs");
    out.line("VIEW/PRINT SETTINGS:");
    out.line(indent + "Font = Courier, Size 7-8");
    out.line(indent + "Orientation = Landscape");
    out.line(indent + "Margins = 1-2 cm.");
    out.line("RUN MESSAGE: " + run_message);
    out.line("NOTES:");
    out.line("1) Close this report before running/viewing next results.");
    out.line("2) Report is not automatically saved or printed.");
    out.line("3) To keep it, save it under a name of its own from the VELM menu: the next run writes over it.");
    out.line("4) Print it and file it with the calculation for quality assurance.");
}

}  // namespace

std::tm local_now() {
    const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm tm{};
    localtime_r(&t, &tm);
    return tm;
}

int report_mask(const Header& gen, int case_no) {
    const int code = checked_int(leading_number(getting_case_data(gen.CASERPT, case_no)));
    if (code == 0) return kAllSections;
    if (code == -1) return 0;
    return code & kAllSections;
}

std::string report_date(const Header& gen, const std::tm& now) {
    const std::string given = trim(gen.ENG[4]);
    if (!given.empty()) return given;
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    char text[40];
    std::snprintf(text, sizeof text, "%d %s %02d, %02d:%02d", now.tm_mday, kMonths[std::clamp(now.tm_mon, 0, 11)],
                  (now.tm_year + 1900) % 100, now.tm_hour, now.tm_min);
    return text;
}

int report_width(const Header& gen) {
    const int paper = letter(gen) ? kLetterWidth : kA4Width;
    const int usable = paper - 2 * margin(gen);
    return std::max(80, usable / (12 * font_points(gen)));
}

void WriteHydrReport(RunContext& ctx, const Project& p, int case_ix, const std::string& file) {
    const int case_no = case_count_or_value(p.gen.CASENO, case_ix);
    const int mask = report_mask(p.gen, case_no);
    const HydrCase c(ctx, p, case_no, report_width(p.gen));
    // The report goes to its file as it is written: that of a large network
    // runs to tens of megabytes.
    RtfText out;
    out.send_to([&](std::string_view text) { return ctx.append_run_file(file, text); });
    if (case_ix == 1) document_head(p.gen, out);
    Head head{p.gen, report_date(p.gen, local_now()), case_no, case_ix == 1};

    ReportPageHead(out, head, "GENERAL", "HYDRAULIC REPORT");
    general_section(c, ctx.run_signal, out);
    if (mask & kSectionProfile) {
        ReportPageHead(out, head, "PRESSURE PROFILE REPORT", "");
        profile_section(c, out);
    }
    if (mask & kSectionPipeLines) {
        ReportPageHead(out, head, "PIPE LINE REPORT", "");
        pipe_line_section(c, out);
    }
    if (mask & kSectionSummaries) {
        for (const Summary& s : summaries()) {
            if (!s.present(p)) continue;
            ReportPageHead(out, head, s.title, "");
            s.write(c, out);
        }
    }
    if (mask != 0) {
        ReportPageHead(out, head, "WARNINGS & ERRORS", "");
        warnings_section(ctx.case_warnings, out);
    }
    if (!out.send())
        ctx.log_error("Error! In WriteHydrReport = 75 : Path/File access error");
}

}  // namespace velm
