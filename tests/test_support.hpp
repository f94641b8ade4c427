// Helpers shared by the test suites.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"
#include "model/units.hpp"

namespace velm {

// The display units of a project in British units.
inline DisplayUnits british_units() {
    DisplayUnits u;
    Header g;
    g.UNITS = "British";
    SetUnits(u, g);
    return u;
}

// An empty directory under the system's temporary directory, named for the
// test and this process, so that tests running side by side never share one.
inline std::filesystem::path scratch_dir(const std::string& name) {
    const auto dir = std::filesystem::temp_directory_path() / ("velm_" + name + "_" + std::to_string(::getpid()));
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
    std::filesystem::create_directories(dir, ec);
    return dir;
}

// The messages logged in a run since the last call, in order; the run log is
// emptied. Needs ctx.run_active.
inline std::vector<std::string> take_run_log(RunContext& ctx) {
    std::vector<std::string> out;
    for (std::size_t at = 0; (at = ctx.run_log_text.find("\r\n", at)) != std::string::npos;) {
        at += 2;
        out.push_back(ctx.run_log_text.substr(at, ctx.run_log_text.find("\r\n", at) - at));
    }
    ctx.run_log_text.clear();
    return out;
}

// The rows of a reference table in tests/data whose first field is kind, each
// split at the commas (the kind included).
inline std::vector<std::vector<std::string>> reference_rows(const std::string& file, const std::string& kind) {
    std::ifstream in(std::string(VELM_TEST_DATA) + "/" + file);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(in, line);) {
        std::istringstream s(line);
        std::vector<std::string> fields;
        for (std::string item; std::getline(s, item, ',');) fields.push_back(item);
        if (!fields.empty() && fields[0] == kind) rows.push_back(fields);
    }
    EXPECT_FALSE(rows.empty()) << "no " << kind << " rows in " << file;
    return rows;
}

// A two-phase line: WL t/h of liquid and WV t/h of vapour in a bore D (m),
// the same liquid fraction at both ends, and the average phase densities
// (kg/m3) and viscosities (cP).
inline Line two_phase_line(double WL, double WV, double D, double rhoL, double rhoV, double muL, double muV) {
    Line l;
    l.LVFLOW = {0.0, WL, WV};
    l.TFLOW.value = WL + WV;
    l.ID.value = l.IDH.value = D;
    const double x = WL / (WL + WV);
    l.LF = {0.0, x, x, x};
    l.LPROP[1] = rhoL;
    l.LPROP[3] = muL;
    l.VPROP[1] = rhoV;
    l.VPROP[3] = muV;
    return l;
}

}  // namespace velm
