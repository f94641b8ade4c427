// Grid networks for the benchmarks and the tests of large and meshed
// networks, built in memory.
#pragma once

#include <array>
#include <string>

#include "model/context.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"

namespace velm {

// A rows x cols grid of junctions joined by 100 m lines of 6 in pipe, flow
// directed right and down; a feed at 500 kPag into the first corner and a
// product at 100 kPag out of each other corner. With equipment, every
// hundredth connection runs through a pump on its curve and a control valve.
// A sparse grid keeps every row, the first and last columns and about 15 %
// of the other vertical connections.
inline Project grid_network(RunContext& ctx, int rows, int cols, bool equipment = false, bool sparse = false) {
    Project p;
    NewProject(p);
    ReadPipeLib(ctx, p.pipedata);
    p.lines[0].DIA[1] = "6";
    auto node = [cols](int r, int c) { return r * cols + c + 1; };
    p.juncs.resize(static_cast<std::size_t>(rows * cols) + 1, p.juncs[0]);
    auto connect = [&](int from, int to) {
        p.lines.push_back(p.lines[0]);
        const int l = count(p.lines);
        p.lines.back().NAME[1] = "L" + std::to_string(l);
        auto free_port = [](std::array<Port, kNozzles + 1>& ports) -> Port& {
            for (int n = 1; n < kNozzles; ++n)
                if (ports[n].CON == 0) return ports[n];
            return ports[kNozzles];
        };
        if (from) free_port(p.juncs[from].NOZO).CON = l;
        if (to) free_port(p.juncs[to].NOZI).CON = l;
        return l;
    };
    int connections = 0;
    // A pump and a valve between two junctions: three lines in series.
    auto through_equipment = [&](int from, int to) {
        const int a = connect(from, 0), b = connect(0, 0), c = connect(0, to);
        Pump pump = p.pumps[0];
        pump.CON = {0, a, b};
        pump.DP.spec = "C";
        pump.HQ1 = 3;
        pump.CURQ[1] = "0", pump.CURQ[2] = "100", pump.CURQ[3] = "200";
        pump.CURH[1] = "20", pump.CURH[2] = "18", pump.CURH[3] = "12";
        p.pumps.push_back(pump);
        Valve valve = p.valves[0];
        valve.CON = {0, b, c};
        valve.CV.spec = "400";
        p.valves.push_back(valve);
    };
    auto join = [&](int from, int to) {
        if (equipment && ++connections % 100 == 0) through_equipment(from, to);
        else connect(from, to);
    };
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c) {
            if (c + 1 < cols) join(node(r, c), node(r, c + 1));
            const bool keep = !sparse || c == 0 || c + 1 == cols || (r * cols + c) % 7 == 0;
            if (r + 1 < rows && keep) join(node(r, c), node(r + 1, c));
        }
    p.feeds.push_back(p.feeds[0]);
    p.feeds[1].PRES.spec = "500";
    p.feeds[1].NOZ.CON = connect(0, node(0, 0));
    for (int corner : {node(0, cols - 1), node(rows - 1, 0), node(rows - 1, cols - 1)}) {
        p.prods.push_back(p.prods[0]);
        p.prods.back().PRES.spec = "100";
        p.prods.back().NOZ.CON = connect(corner, 0);
    }
    return p;
}

}  // namespace velm
