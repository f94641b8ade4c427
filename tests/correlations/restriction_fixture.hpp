// A two-port restriction between line 1 (inlet) and line 2 (outlet), one
// fluid at both ends, and the rows of tests/data/valve_orifice_reference.csv.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm::testing {

inline constexpr double kPatm = 101.325;  // kPa

// Rows of one kind from the table made by tools/valve_orifice_reference.py
// (python3-fluids), numbers only.
inline std::vector<std::vector<double>> reference_rows(const std::string& kind) {
    std::ifstream in(std::string(VELM_TEST_DATA) + "/valve_orifice_reference.csv");
    std::vector<std::vector<double>> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind(kind + ",", 0) != 0) continue;
        std::istringstream s(line.substr(kind.size() + 1));
        rows.emplace_back();
        for (std::string item; std::getline(s, item, ',');) rows.back().push_back(std::stod(item));
    }
    EXPECT_FALSE(rows.empty()) << "no " << kind << " rows";
    return rows;
}

class RestrictionTest : public ::testing::Test {
protected:
    RestrictionTest() {
        ctx.run_active = true;  // messages collect in ctx.run_log_text
        p.gen.PATM = kPatm;
        p.gen.MCVDEN = "Homogeneous";
        p.gen.MFODEN = "Homogeneous";
        p.lines.resize(3);
    }

    // Both lines carry W (t/h) of one liquid; inside diameters D1 and D2 (m).
    void liquid(double W, double rho, double mu, double D1, double D2) {
        for (int i : {1, 2}) {
            Line& l = p.lines[static_cast<std::size_t>(i)];
            l = Line{};
            l.TFLOW.value = W;
            l.ID.value = i == 1 ? D1 : D2;
            l.LF = {0.0, 1.0, 1.0, 1.0};
            l.LIQDEN = {0.0, rho, rho};
            l.LIQVISC = {0.0, mu, mu};
            l.TPROP[3] = rho;
        }
    }

    // Both lines carry W (t/h) of one vapour at T (C).
    void gas(double W, double T, double MW, double Z, double k, double mu, double D1, double D2) {
        liquid(W, 0.0, 0.0, D1, D2);
        for (int i : {1, 2}) {
            Line& l = p.lines[static_cast<std::size_t>(i)];
            l.LF = {};
            l.TEMP = {0.0, T, T, T};
            l.VAPMW = {0.0, MW, MW};
            l.VAPZ = {0.0, Z, Z};
            l.VAPK = {0.0, k, k};
            l.VAPVISC = {0.0, mu, mu};
        }
    }

    // The messages logged since the last call, in order.
    std::vector<std::string> messages() {
        std::vector<std::string> out;
        std::istringstream s(ctx.run_log_text);
        for (std::string line; std::getline(s, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (!line.empty()) out.push_back(line);
        }
        ctx.run_log_text.clear();
        return out;
    }

    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
};

}  // namespace velm::testing
