// Rows of the network system as they are written, shared by the files that
// build them.
#pragma once

#include <cmath>

#include "model/fault.hpp"
#include "solver/network.hpp"

namespace velm {

// Writes rows into the compressed storage, or only counts them.
struct Rows {
    Network& net;
    bool build;
    int row = 0;

    int begin() {
        ++row;
        if (build) {
            if (static_cast<std::size_t>(row) + 1 >= net.IA.size()) net.IA.resize(static_cast<std::size_t>(row) + 2, 0);
            if (static_cast<std::size_t>(row) >= net.B.size()) net.B.resize(static_cast<std::size_t>(row) + 1, 0.0);
            net.IA[static_cast<std::size_t>(row)] = 0;
            net.B[static_cast<std::size_t>(row)] = 0.0;
        }
        return row;
    }
    void add(double value, int col) {
        if (!build) return;
        ++net.entries;
        const auto k = static_cast<std::size_t>(net.entries);
        if (k >= net.A.size()) {
            net.A.resize(k + 1);
            net.JA.resize(k + 1);
        }
        net.A[k] = value;
        net.JA[k] = col;
        if (net.IA[static_cast<std::size_t>(row)] == 0) net.IA[static_cast<std::size_t>(row)] = net.entries;
    }
    void rhs(double v) {
        if (build) net.B[static_cast<std::size_t>(row)] = v;
    }
};

inline bool is_line(const Project& p, int n) { return n >= 1 && n <= count(p.lines); }

// A row that fixes one unknown.
inline void fixed_row(Rows& rows, int col, double value) {
    rows.begin();
    rows.add(1.0, col);
    rows.rhs(value);
}

// Specification rows of the equipment between boundaries and nodes, in the
// order of their kinds.
void equipment_spec_rows(RunContext& ctx, Project& p, Network& net, Rows& rows, int case_no);

}  // namespace velm
