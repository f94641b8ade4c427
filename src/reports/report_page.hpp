// The page machinery the rich-text reports share: the document head and the
// head of each section.
#pragma once

#include <ctime>
#include <string>
#include <string_view>

#include "model/records.hpp"
#include "reports/report_text.hpp"

namespace velm {

// The document head: font table, paper (A4 or Letter, landscape), margins,
// the font size and a footer of a rule on every page.
void document_head(const Header& gen, RtfText& out);

// The state of the section heads of one case.
struct Head {
    const Header& gen;
    std::string date;
    int case_no;
    bool first = true;  // no page break before the first section of the file
};

// The head of a section: Extra on a line of its own when given, a rule, the
// confidentiality block with page, project number and engineer, the section
// title with the date, the case line.
void ReportPageHead(RtfText& out, Head& h, std::string_view section, std::string_view extra);

// The local time now.
std::tm local_now();

}  // namespace velm
