// Bringing the records of older project files up to date.
#include <cmath>

#include "model/context.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

// Number of bends of a polyline stored before 3.0: the first point that lies
// on the end point (within 1.01 twip) closes the line.
int bend_count(RunContext& ctx, const Line& line, int n) {
    const float xe = line.XY[25], ye = line.XY[26];
    for (int i = 1; i <= 10; ++i) {
        const float x = line.XY[static_cast<std::size_t>(3 + 2 * i)];
        const float y = line.XY[static_cast<std::size_t>(4 + 2 * i)];
        if (std::fabs(x - xe) < 1.01f && std::fabs(y - ye) < 1.01f) return i;
    }
    ctx.ui.tell("Error finding number of bends for line " + std::to_string(n) + ".");
    return 0;
}

template <class R>
void unrotate(std::vector<R>& records) {
    for (std::size_t i = 1; i < records.size(); ++i)
        if (records[i].ROT == 180) {
            records[i].ROT = 0;
            records[i].FLIP[1] = -1;
        }
}

template <class R>
void default_rating_point(std::vector<R>& records) {
    for (std::size_t i = 1; i < records.size(); ++i) {
        if (records[i].PRAT3 == 0.0) records[i].PRAT3 = 1.0;
        if (records[i].PRAT5 == 0.0) records[i].PRAT5 = 1000.0;
    }
}

template <class R>
int number_named(const std::vector<R>& records, const std::string& name) {
    for (std::size_t i = 1; i < records.size(); ++i)
        if (records[i].NAME[1] == name) return static_cast<int>(i);
    return 0;
}

void link_pump_suctions(Project& p) {
    for (std::size_t i = 1; i < p.pumps.size(); ++i) {
        Pump& pump = p.pumps[i];
        if (const int feed = number_named(p.feeds, pump.NPSHA_names[1])) pump.NPSHAF[1] = feed;
        else if (const int vessel = number_named(p.vessels, pump.NPSHA_names[2])) pump.NPSHAF[2] = vessel;
    }
}

void rename_methods(Header& g) {
    if (g.MTP == "Chrisholm") g.MTP = "Chisholm";
    if (g.MDUKHP == "Dukler") g.MDUKHP = "GPSA";
    if (g.MDELEV == "Dukler") g.MDELEV = "GPSA";
    if (g.MACCEL == "Inverse") g.MACCEL = "Homogeneous";
}

void drop_ppp_flash(RunContext& ctx, Project& p) {
    if (upper(p.gen.MFLASH) != "PPP") return;
    ctx.ui.tell("PPP no longer supported.");
    p.gen.MFLASH = "None";
    p.gen.COMP.fill(0);
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        Line& l = p.lines[i];
        for (Comps* c : {&l.COMP0, &l.COMPIX0, &l.COMPIY0, &l.COMPOX0, &l.COMPOY0}) c->fill(0.0);
    }
}

}  // namespace

void MigrateVdf(RunContext& ctx, Project& p, double version) {
    if (version < 3.2) link_pump_suctions(p);
    if (version < 3.1) p.gen.MFIT = "Crane";
    if (version >= 3.0) return;
    rename_methods(p.gen);
    for (std::size_t i = 1; i < p.lines.size(); ++i) {
        Line& l = p.lines[i];
        if (l.SCH == "5S") l.SCH = "5";
        else if (l.SCH == "10S") l.SCH = "10";
        if (l.BEND == 0) l.BEND = bend_count(ctx, l, static_cast<int>(i));
    }
    drop_ppp_flash(ctx, p);
    unrotate(p.feeds);
    unrotate(p.prods);
    unrotate(p.valves);
    unrotate(p.checks);
    unrotate(p.pumps);
    unrotate(p.comps);
    unrotate(p.fos);
    unrotate(p.hxs);
    unrotate(p.miscs);
    unrotate(p.expands);
    unrotate(p.vessels);
    unrotate(p.juncs);
    unrotate(p.tees);
    default_rating_point(p.hxs);
    default_rating_point(p.miscs);
}

}  // namespace velm
