// The sheet of a project of about 1,000 items as the page gets it: the whole
// sheet as JSON text (what GET /api/sheet sends), a pointer move that only
// hovers, and a drag step that moves a selected item and redraws the sheet.
#include <benchmark/benchmark.h>

#include "drawing/edit_ops.hpp"
#include "drawing/items.hpp"
#include "drawing/line_points.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "server/session.hpp"

namespace velm {
namespace {

// A feed, n valves in rows of 25 and a product, joined by n + 1 lines.
Project valve_rows(int n) {
    Project p;
    NewProject(p);
    NewItem(p, ItemKind::Feed, 0, 1000.0f, 1000.0f);
    for (int k = 0; k < n; ++k)
        NewItem(p, ItemKind::Valve, 0, 2000.0f + 1200.0f * static_cast<float>(k % 25),
                1000.0f + 1500.0f * static_cast<float>(k / 25));
    NewItem(p, ItemKind::Prod, 0, 2000.0f + 1200.0f * 25.0f, 1000.0f + 1500.0f * static_cast<float>(n / 25 + 1));
    for (int k = 0; k <= n; ++k) {
        const int L = NewItem(p, ItemKind::Line, 0, 0.0f, 0.0f);
        Ports from = item_ports(p, k == 0 ? ItemRef{ItemKind::Feed, 1} : ItemRef{ItemKind::Valve, k});
        Ports to = item_ports(p, k == n ? ItemRef{ItemKind::Prod, 1} : ItemRef{ItemKind::Valve, k + 1});
        PortRef& a = from.at[static_cast<std::size_t>(from.n - 1)];
        PortRef& b = to.at[0];
        *a.con = *b.con = L;
        Line& l = p.lines[static_cast<std::size_t>(L)];
        set_point(l, 0, *a.x, *a.y);
        set_point(l, 1, *b.x, *b.y);
    }
    SelectItems(p, 0, false, "");
    return p;
}

struct Sheet {
    Session session{[](RunContext&, Project&, const std::string&) { return false; }, "/tmp/velm_bench_server"};
    RecordingInteraction quiet;
    explicit Sheet(int n) {
        session.start(quiet, "");
        session.project() = valve_rows(n);
        session.draw_state().LabelMode = "Input";
    }
};

void BM_SheetJson(benchmark::State& state) {
    Sheet s(static_cast<int>(state.range(0)));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string text = s.session.sheet().dump();
        bytes = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["items"] = static_cast<double>(item_count(s.session.project(), ItemKind::Line) * 2 + 1);
    state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_SheetJson)->Arg(500)->Unit(benchmark::kMillisecond);

// A hover over the last valve: the hit test runs over every item before it.
void BM_PointerHover(benchmark::State& state) {
    Sheet s(static_cast<int>(state.range(0)));
    const auto [x, y] = item_anchor(s.session.project(), {ItemKind::Valve, static_cast<int>(state.range(0))});
    RequestInteraction io({});
    for (auto _ : state) benchmark::DoNotOptimize(s.session.pointer(io, "move", {x + 200.0f, y - 50.0f}));
}
BENCHMARK(BM_PointerHover)->Arg(500)->Unit(benchmark::kMicrosecond);

// One step of a drag: the selected valve moves 100 twips and the sheet comes back as JSON.
void BM_PointerDragStep(benchmark::State& state) {
    Sheet s(static_cast<int>(state.range(0)));
    const auto [x, y] = item_anchor(s.session.project(), {ItemKind::Valve, 1});
    RequestInteraction io({});
    s.session.pointer(io, "down", {x + 200.0f, y - 50.0f});
    float dx = 0.0f;
    for (auto _ : state) {
        dx = dx > 0.0f ? 0.0f : 100.0f;
        benchmark::DoNotOptimize(s.session.pointer(io, "move", {x + 200.0f + dx, y - 50.0f}).dump());
    }
}
BENCHMARK(BM_PointerDragStep)->Arg(500)->Unit(benchmark::kMillisecond);

// The pump's dialog of the pump loop opened and OK'd with every text as shown:
// what a double click and OK cost the server.
void BM_DialogRoundTrip(benchmark::State& state) {
    Session session([](RunContext& ctx, Project& p, const std::string& file) {
        NewProject(p);
        return ReadPipeLib(ctx, p.pipedata, {}) && ReadVdf(ctx, p, file);
    }, "/tmp/velm_bench_server");
    RecordingInteraction quiet;
    session.start(quiet, std::string(VELM_SOURCE_DIR) + "/examples/pump_loop.vdf");
    for (auto _ : state) {
        const nlohmann::json d = session.dialog("Pump", 1);
        nlohmann::json fields = nlohmann::json::object();
        for (const auto& f : d["fields"]) fields[f["name"].get<std::string>()] = f["text"];
        benchmark::DoNotOptimize(session.apply_dialog_texts(quiet, "Pump", 1, fields).dump());
    }
}
BENCHMARK(BM_DialogRoundTrip)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace velm
