#include "server/plots.hpp"

#include <algorithm>

#include "correlations/compressor.hpp"
#include "correlations/pump.hpp"
#include "model/case_data.hpp"
#include "model/context.hpp"

namespace velm {

namespace {

using Json = nlohmann::json;

template <class M, class Scale>
Json curves(RunContext& ctx, const Project& p, const DisplayUnits& u, const M& machine, Scale&& scale) {
    Json cases = Json::array();
    const int ncase = case_count_or_value(p.gen.CASENO, 0);
    for (int ix = 1; ix <= ncase; ++ix) {
        const int case_no = case_count_or_value(p.gen.CASENO, ix);
        M m = machine;
        scale(m, case_no);
        Json q = Json::array(), h = Json::array(), eff = Json::array(), npshr = Json::array();
        for (int i = 1; i <= std::min(m.HQ1, kCurvePoints); ++i) {
            const auto k = static_cast<std::size_t>(i);
            q.push_back(convert_value(ctx, m.CURQ_value[k], "m3/h", u.liquid_volume_flow));
            h.push_back(convert_value(ctx, m.CURH_value[k], "m", u.head));
            eff.push_back(m.CUREFF_value[k]);
            if constexpr (std::is_same_v<M, Pump>) npshr.push_back(convert_value(ctx, m.CURNPSH_value[k], "m", u.head));
        }
        cases.push_back({{"case", case_no}, {"q", q}, {"h", h}, {"eff", eff}, {"npshr", npshr}});
    }
    return cases;
}

// For each line, the item it leaves and the item it enters.
struct Ends {
    std::vector<ItemRef> from, to;
};

Ends line_ends(const Project& p) {
    Ends e{std::vector<ItemRef>(p.lines.size()), std::vector<ItemRef>(p.lines.size())};
    Project& q = const_cast<Project&>(p);
    for_each_item(p, [&](ItemRef r) {
        for (const PortRef& port : item_ports(q, r))
            if (*port.con >= 1 && *port.con < static_cast<int>(p.lines.size()))
                (port.side == 7 ? e.from : e.to)[static_cast<std::size_t>(*port.con)] = r;
    });
    return e;
}

// The first line that enters (side 8) or leaves (side 7) item r, not yet on the path.
int next_line(const Project& p, ItemRef r, int side, const std::vector<bool>& used) {
    for (const PortRef& port : item_ports(const_cast<Project&>(p), r))
        if (port.side == side && *port.con >= 1 && *port.con < static_cast<int>(used.size()) &&
            !used[static_cast<std::size_t>(*port.con)])
            return *port.con;
    return 0;
}

}  // namespace

void record_operating_points(const Project& p, int case_no, OperatingPoints& points) {
    for (int i = 1; i <= count(p.pumps); ++i) {
        const Pump& m = p.pumps[static_cast<std::size_t>(i)];
        points[{ItemKind::Pump, i}].push_back({case_no, m.HQACT[3], m.HQACT[1]});
    }
    for (int i = 1; i <= count(p.comps); ++i) {
        const Comp& m = p.comps[static_cast<std::size_t>(i)];
        points[{ItemKind::Comp, i}].push_back({case_no, m.QACT.value, m.HQACT[1]});
    }
}

nlohmann::json machine_plot(const Project& p, const DisplayUnits& u, ItemRef r, const OperatingPoints& points) {
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    Json cases;
    if (r.kind == ItemKind::Pump && r.index >= 1 && r.index <= count(p.pumps))
        cases = curves(ctx, p, u, p.pumps[static_cast<std::size_t>(r.index)],
                       [&](Pump& m, int c) { pump_curve_scale(ctx, m, c); });
    else if (r.kind == ItemKind::Comp && r.index >= 1 && r.index <= count(p.comps))
        cases = curves(ctx, p, u, p.comps[static_cast<std::size_t>(r.index)],
                       [&](Comp& m, int c) { comp_curve_scale(ctx, m, c); });
    else
        return nullptr;
    Json pts = Json::array();
    if (const auto it = points.find({r.kind, r.index}); it != points.end())
        for (const OperatingPoint& o : it->second)
            pts.push_back({{"case", o.case_no},
                           {"q", convert_value(ctx, o.q, "m3/h", u.liquid_volume_flow)},
                           {"h", convert_value(ctx, o.h, "m", u.head)}});
    return {{"x", u.liquid_volume_flow}, {"y", u.head}, {"cases", cases}, {"points", pts}};
}

nlohmann::json line_profile(const Project& p, const DisplayUnits& u, int L) {
    if (L < 1 || L > count(p.lines)) return nullptr;
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    const Ends ends = line_ends(p);
    std::vector<bool> used(p.lines.size(), false);
    std::vector<int> path{L};
    used[static_cast<std::size_t>(L)] = true;
    // Upstream to a feed, then downstream to a product: the first line at each split.
    for (ItemRef r = ends.from[static_cast<std::size_t>(L)]; r.index > 0 && r.kind != ItemKind::Feed;) {
        const int up = next_line(p, r, 8, used);
        if (!up) break;
        used[static_cast<std::size_t>(up)] = true;
        path.insert(path.begin(), up);
        r = ends.from[static_cast<std::size_t>(up)];
    }
    for (ItemRef r = ends.to[static_cast<std::size_t>(L)]; r.index > 0 && r.kind != ItemKind::Prod;) {
        const int down = next_line(p, r, 7, used);
        if (!down) break;
        used[static_cast<std::size_t>(down)] = true;
        path.push_back(down);
        r = ends.to[static_cast<std::size_t>(down)];
    }
    Json lines = Json::array();
    double x = 0.0;
    for (int n : path) {
        const Line& l = p.lines[static_cast<std::size_t>(n)];
        const double len = std::max(l.LEN, 0.0);
        lines.push_back({{"name", l.NAME[1]},
                         {"x0", convert_value(ctx, x, "m", u.length)},
                         {"x1", convert_value(ctx, x + len, "m", u.length)},
                         {"p0", convert_value(ctx, l.PRES[1], "kPag", u.pressure)},
                         {"p1", convert_value(ctx, l.PRES[2], "kPag", u.pressure)},
                         {"this", n == L}});
        x += len;
    }
    return {{"x", u.length}, {"y", u.pressure}, {"lines", lines}};
}

}  // namespace velm
