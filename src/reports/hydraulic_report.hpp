// The hydraulic report "resulth.rtf": one rich text document of fixed-pitch
// text (Courier New, landscape), opened by the first case of a run, one part
// appended per case, closed by the run driver's last line "End of file }".
//
// Each case prints the sections its report code asks for, each on a page of
// its own under the section head (the owner's confidentiality block, page,
// project number, engineer, date, section title and case line):
//   GENERAL                   the project file, the methods, the run message
//   PRESSURE PROFILE REPORT   (bit 1) each line from its inlet to its outlet
//   PIPE LINE REPORT          (bit 2) the lines side by side, one column each
//   summaries                 (bit 4) feeds, products, orifices, valves, pumps,
//                             pump NPSH and curves, compressors and their
//                             curves, vessels: those of kinds the project holds
//   WARNINGS & ERRORS         for every code but -1: the case's warnings
// Numbers are in the project's display units, "########0.0###" unless a
// column is too narrow for all its decimals.
#pragma once

#include <ctime>
#include <string>

#include "model/records.hpp"

namespace velm {

struct RunContext;

inline constexpr int kSectionProfile = 1;
inline constexpr int kSectionPipeLines = 2;
inline constexpr int kSectionSummaries = 4;
inline constexpr int kAllSections = 16383;

// The sections of case case_no: its entry of CASERPT (one entry serves every
// case; an empty or missing entry reads 0) as a whole number; 0 gives every
// section, -1 none but the heading (0), any other code is the mask itself.
int report_mask(const Header& gen, int case_no);

// The date of the report: ENG[4] when the header gives one, else the time
// now as "d mmm yy, hh:mm" ("5 Mar 25, 14:07").
std::string report_date(const Header& gen, const std::tm& now);

// Characters across the page: the paper's width (A4 or Letter, landscape)
// less the two margins RPTSIZ[2] (twips), over the advance of Courier at the
// font size RPTSIZ[4] (6 to 10 pt; 0.6 em, 12 twips a point).
int report_width(const Header& gen);

// Appends the report of the case at position case_ix (from 1) of CASENO to
// the file (a name in ctx.data_dir): the rich text head first when case_ix
// is 1, a page break before every other case. The run message is
// ctx.run_signal, the warnings ctx.case_warnings, the project's path
// ctx.project_file. A file that cannot be written is told in the run log.
void WriteHydrReport(RunContext& ctx, const Project& p, int case_ix, const std::string& file);

}  // namespace velm
