#include "solver/input_checks.hpp"

#include <cctype>
#include <cmath>

#include "model/case_data.hpp"
#include "model/text.hpp"
#include "model/vdf_schema.hpp"
#include "reports/hydraulic_report.hpp"

namespace velm {

namespace {

bool is_case_letter(std::string_view entry) {
    if (entry.size() != 1) return false;
    const char c = static_cast<char>(std::toupper(static_cast<unsigned char>(entry[0])));
    return c == 'C' || c == 'E' || c == 'V';
}

// Every entry of every case string of the records: empty, a letter C, E or
// V, or a number.
std::string check_case_strings(const Project& p) {
    std::string msg;
    for (const SectionIO* s : vdf_sections()) {
        s->each_case_text(p, [&](int index, std::string_view tag, std::string_view key, std::string_view text) {
            const int n = case_count(text);
            for (int i = 1; i <= n && msg.empty(); ++i) {
                const std::string_view entry = case_entry(text, i);
                if (entry.empty() || is_case_letter(entry)) continue;
                const auto v = parse_number(entry);
                if (!v || !std::isfinite(*v))
                    msg = "Error! " + std::string(s->name()) + " " + std::to_string(index) + " " + shown_text(tag) +
                          ", " + std::string(key) + " = \"" + shown_text(text) + "\": \"" + shown_text(upper(entry)) +
                          "\" is not a number.";
            }
        });
        if (!msg.empty()) return msg;
    }
    return msg;
}

// One bound of a line's value.
struct LineBound {
    const char* field;
    double (*value)(const Line&);
    double least;
    const char* unit;
};

constexpr double kAbsoluteZeroC = -273.15;

constexpr LineBound kLineBounds[] = {
    {"LEN", [](const Line& l) { return l.LEN; }, 0.0, "m"},
    {"TEMP[1]", [](const Line& l) { return l.TEMP[1]; }, kAbsoluteZeroC, "C"},
    {"TEMP[2]", [](const Line& l) { return l.TEMP[2]; }, kAbsoluteZeroC, "C"},
    {"LIQDEN[1]", [](const Line& l) { return l.LIQDEN[1]; }, 0.0, "kg/m3"},
    {"LIQDEN[2]", [](const Line& l) { return l.LIQDEN[2]; }, 0.0, "kg/m3"},
    {"LIQVISC[1]", [](const Line& l) { return l.LIQVISC[1]; }, 0.0, "cP"},
    {"LIQVISC[2]", [](const Line& l) { return l.LIQVISC[2]; }, 0.0, "cP"},
    {"VAPDEN[1]", [](const Line& l) { return l.VAPDEN[1]; }, 0.0, "kg/m3"},
    {"VAPDEN[2]", [](const Line& l) { return l.VAPDEN[2]; }, 0.0, "kg/m3"},
    {"VAPVISC[1]", [](const Line& l) { return l.VAPVISC[1]; }, 0.0, "cP"},
    {"VAPVISC[2]", [](const Line& l) { return l.VAPVISC[2]; }, 0.0, "cP"},
    {"VAPMW[1]", [](const Line& l) { return l.VAPMW[1]; }, 0.0, "kg/kmol"},
    {"VAPMW[2]", [](const Line& l) { return l.VAPMW[2]; }, 0.0, "kg/kmol"},
};

std::string check_lines(const Project& p) {
    for (std::size_t i = 1; i < p.lines.size(); ++i)
        for (const LineBound& b : kLineBounds) {
            const double v = b.value(p.lines[i]);
            if (v >= b.least) continue;
            return "Error! Line " + shown_text(trim(p.lines[i].NAME[1])) + ", " + b.field + " = " + number_text(v) +
                   " " + b.unit + " is below " + number_text(b.least) + " " + b.unit + ".";
        }
    return "";
}

// Levels above the bottom of a tank or vessel: not below 0 in any case.
template <class R>
std::string check_levels(const std::vector<R>& v, const char* word) {
    for (std::size_t i = 1; i < v.size(); ++i) {
        const int n = case_count(v[i].LEVEL1);
        for (int c = 1; c <= n; ++c)
            if (spec_value(v[i].LEVEL1, c) < 0.0)
                return "Error! " + std::string(word) + shown_text(trim(v[i].NAME[1])) + ", LEVEL = \"" +
                       shown_text(v[i].LEVEL1) + "\" is below 0 m.";
    }
    return "";
}

}  // namespace

// CASENO: at most kMaxCases entries, each empty (case 1) or a case number.
std::string check_case_list(const std::string& list) {
    const int n = case_count(list);
    if (n > kMaxCases)
        return "Error! CASENO lists " + std::to_string(n) + " cases; a run takes at most " +
               std::to_string(kMaxCases) + ".";
    for (int i = 1; i <= n; ++i) {
        const std::string entry = getting_case_data(list, i);
        if (entry.empty()) continue;
        const auto v = parse_number(entry);
        if (!v || *v != std::floor(*v) || *v < 1 || *v > kMaxCases)
            return "Error! CASENO = \"" + shown_text(list) + "\": case \"" + shown_text(entry) +
                   "\" is not a case number from 1 to " + std::to_string(kMaxCases) + ".";
    }
    return "";
}

// CASERPT: the report code of each case, -1 (heading only), 0 (all
// sections) or a mask of the sections (kAllSections at most).
std::string check_report_codes(const std::string& list) {
    const int n = case_count(list);
    for (int i = 1; i <= n; ++i) {
        const std::string entry = getting_case_data(list, i);
        const double code = leading_number(entry);
        if (!(code >= -1 && code <= kAllSections))
            return "Error! CASERPT = \"" + shown_text(list) + "\": \"" + shown_text(entry) +
                   "\" is not a report code from -1 to " + std::to_string(kAllSections) + ".";
    }
    return "";
}

std::string check_input_values(const Project& p) {
    for (const std::string& msg : {check_case_list(p.gen.CASENO), check_report_codes(p.gen.CASERPT),
                                   check_case_strings(p), check_lines(p), check_levels(p.feeds, "Feed "),
                                   check_levels(p.prods, "Product ")})
        if (!msg.empty()) return msg;
    return "";
}

}  // namespace velm
