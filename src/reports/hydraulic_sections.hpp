// The sections of the hydraulic report after the heading, for one case.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/records.hpp"
#include "model/units.hpp"
#include "reports/report_text.hpp"

namespace velm {

struct RunContext;

// What every section of one case's report reads.
struct HydrCase {
    RunContext& ctx;
    const Project& p;
    DisplayUnits u;
    int case_no = 1;
    int width = 150;                                // characters across the page
    std::vector<std::string> at_inlet, at_outlet;   // per line: the item at its drawn ends, "-" for none

    HydrCase(RunContext& c, const Project& project, int case_number, int page_width);

    // A value in internal unit `from` shown in unit `to`, fitted to width.
    std::string num(double v, std::string_view from, std::string_view to, std::size_t w = 10) const;
    // The factors of one conversion, looked up once for a column of values
    // (the unit names must outlive it).
    struct Scale {
        std::string_view from, to;
        double from_factor = 1.0, to_factor = 1.0;
        bool known = false;  // both units known: the factors stand for them
    };
    Scale scale(std::string_view from, std::string_view to) const;
    // As num(v, from, to, w), the factors taken from the scale.
    std::string num(double v, const Scale& s, std::size_t w = 10) const;
    std::string temp(double celsius, std::size_t w = 8) const;
    std::string plain(double v, std::size_t w = 10) const { return report_number(v, w); }
    // The name of line n, "-" when there is none.
    std::string line_name(int n) const;
    double line_flow(int n) const;
};

// The unit of a pressure difference or of an absolute pressure: a gauge unit
// ("kPag", "psig", "barg", "kg/cm2g", "Pag") without its "g".
std::string difference_unit(std::string_view pressure_unit);

void profile_section(const HydrCase& c, RtfText& out);
void pipe_line_section(const HydrCase& c, RtfText& out);

// One summary of bit 4: its title and whether the project holds its kind.
struct Summary {
    const char* title;
    bool (*present)(const Project&);
    void (*write)(const HydrCase&, RtfText&);
};
const std::vector<Summary>& summaries();

void warnings_section(const std::vector<std::string>& warnings, RtfText& out);

}  // namespace velm
