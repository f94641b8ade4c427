// Shared by the equation-of-state, flash and enthalpy tests: a flash setup of
// library components, and the SRK reference table written by
// tools/srk_reference.py.
#pragma once

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "thermo/flash.hpp"

namespace velm::test {

// Components by library number (methane 13, propane 15, nitrogen 3, ...).
inline constexpr int kNitrogen = 3, kCO2 = 8, kWater = 10, kMethane = 13, kEthane = 14, kPropane = 15;
inline constexpr int kIsobutane = 16, kButane = 17, kIsopentane = 18, kPentane = 19, kHexane = 20;

// A run context whose messages go to the run log buffer (as during a run).
struct Thermo {
    RecordingInteraction ui;
    RunContext ctx{ui};
    FlashSetup setup;

    explicit Thermo(const std::vector<int>& numbers) {
        ctx.run_active = true;
        std::vector<int> ids{0};
        ids.insert(ids.end(), numbers.begin(), numbers.end());
        ids.push_back(0);
        CompLibrary lib;
        GetCompData(ctx, lib, ids, setup.comps, setup.kij);
        setup.ids.assign(ids.begin(), ids.end() - 1);
    }

    // Lines written to the run log, in order.
    std::vector<std::string> log() const {
        std::vector<std::string> out;
        const std::string& t = ctx.run_log_text;
        std::size_t start = 0;
        while (start < t.size()) {
            std::size_t end = t.find("\r\n", start);
            if (end == std::string::npos) end = t.size();
            if (end > start) out.push_back(t.substr(start, end - start));
            start = end + 2;
        }
        return out;
    }
    void clear_log() { ctx.run_log_text.clear(); }

    FlashStream stream(double T, double P, const std::vector<double>& z, int ft = kFlashTP) const {
        FlashStream s;
        s.NAME = "S1";
        s.T = T;
        s.P = P;
        s.FT = ft;
        for (std::size_t i = 0; i < z.size(); ++i) s.Z[i + 1] = z[i];
        return s;
    }
};

// One row of tests/data/srk_reference.csv.
struct SrkReference {
    std::string kind, system;
    double T = 0, P = 0;
    int phase = 0;
    std::vector<int> ids;
    std::vector<double> x, values;
};

template <class T>
std::vector<T> numbers_of(const std::string& field) {
    std::vector<T> out;
    std::istringstream in(field);
    T v;
    while (in >> v) out.push_back(v);
    return out;
}

inline std::vector<SrkReference> srk_reference(const std::string& kind) {
    std::ifstream in(std::filesystem::path(VELM_TEST_DATA) / "srk_reference.csv");
    std::vector<SrkReference> rows;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#' || line.rfind("kind,", 0) == 0) continue;
        std::vector<std::string> cells;
        std::istringstream ls(line);
        std::string cell;
        while (std::getline(ls, cell, ',')) cells.push_back(cell);
        if (cells.size() != 8 || cells[0] != kind) continue;
        SrkReference r;
        r.kind = cells[0];
        r.system = cells[1];
        r.T = std::stod(cells[2]);
        r.P = std::stod(cells[3]);
        r.phase = std::stoi(cells[4]);
        r.ids = numbers_of<int>(cells[5]);
        r.x = numbers_of<double>(cells[6]);
        r.values = numbers_of<double>(cells[7]);
        rows.push_back(r);
    }
    return rows;
}

// 1-based fractions from a list.
inline Comps fractions(const std::vector<double>& x) {
    Comps c{};
    for (std::size_t i = 0; i < x.size(); ++i) c[i + 1] = x[i];
    return c;
}

}  // namespace velm::test
