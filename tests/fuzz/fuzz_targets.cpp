// The fuzz harnesses. Each reads the bytes as one untrusted input, drives the
// reader (and what uses its result) and checks the invariants that must hold
// whatever the bytes: a project that reads without fault writes and reads back
// to the same file; a run ends within its iteration limit. A broken invariant
// aborts, which libFuzzer reports and the replay test shows as a crash.
#include "tests/fuzz/fuzz_targets.hpp"

#include <unistd.h>

#include <array>
#include <cstring>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>

#include "model/case_data.hpp"
#include "model/context.hpp"
#include "model/number_format.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/settings.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "model/vdf_schema.hpp"
#include "import/stream_import.hpp"
#include "solver/run.hpp"
#include "thermo/components.hpp"
#include "thermo/flash.hpp"

namespace velm::fuzz {

namespace {

// A broken invariant: says which and aborts, so that the input is kept.
void require(bool ok, const char* what) {
    if (ok) return;
    std::fprintf(stderr, "velm fuzz: invariant broken: %s\n", what);
    std::abort();
}

// A scratch directory of this process for the files a harness must write.
const std::filesystem::path& scratch() {
    static const std::filesystem::path dir = [] {
        auto d = std::filesystem::temp_directory_path() / ("velm_fuzz_" + std::to_string(::getpid()));
        std::filesystem::create_directories(d);
        return d;
    }();
    return dir;
}

void write_file(const std::filesystem::path& file, std::string_view bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The built-in pipe table, read once.
const std::vector<PipeData>& builtin_pipes() {
    static const std::vector<PipeData> table = [] {
        RecordingInteraction ui;
        RunContext ctx(ui);
        std::vector<PipeData> t;
        ReadPipeLib(ctx, t);
        return t;
    }();
    return table;
}

// A new project as `velm` starts one: defaults and the built-in pipe table.
void start_project(Project& p) {
    NewProject(p);
    p.pipedata = builtin_pipes();
}

// A project that read without a fault writes the same bytes after a second read.
void require_round_trip(RunContext& ctx, const Project& p) {
    const std::string first = WriteVdf(ctx, p);
    Project again;
    NewProject(again);
    int faults = 0;
    require(read_vdf_text(ctx, again, first, nullptr, &faults) && faults == 0, "a written project reads back");
    require(WriteVdf(ctx, again) == first, "a written project reads back the same");
}

// Answers "No": a file with many faulty lines is read to its end, and an old
// file is read with a decimal point. Projects are held to max_bytes of
// records, so that each input runs in milliseconds. A project to run starts
// with the built-in pipe table, as `velm` starts one; one only read starts
// empty, so that each input costs no more than its own lines.
struct Reading {
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;
    Reading(std::size_t max_bytes, bool to_run) {
        ui.default_answer = 1;
        ctx.max_project_bytes = max_bytes;
        if (to_run) start_project(p);
        else NewProject(p);
    }
};

constexpr std::size_t kReadBytes = std::size_t{1} << 20;
constexpr std::size_t kRunBytes = std::size_t{256} << 10;

void vdf(std::string_view bytes) {
    Reading r(kReadBytes, false);
    read_vdf_text(r.ctx, r.p, bytes);
}

// The reader and the writer together: a file that reads without a fault
// writes, and reads back the same. (Each input costs a whole written file,
// so this harness runs apart from the reader's own.)
void vdf_roundtrip(std::string_view bytes) {
    Reading r(kReadBytes, false);
    int faults = 0;
    if (read_vdf_text(r.ctx, r.p, bytes, nullptr, &faults) && faults == 0) require_round_trip(r.ctx, r.p);
}

// Import mode: the name of a record picks a record number from its characters,
// sometimes out of range, sometimes none.
void vdf_import(std::string_view bytes) {
    Reading r(kReadBytes, false);
    const ImportIndex index = [&](const std::string& section, const std::string& name,
                                  const std::string&) -> std::optional<int> {
        if (name.empty()) return std::nullopt;
        const SectionIO* s = find_section(section);
        const int n = s ? s->count(r.p) : 0;
        unsigned h = 0;
        for (char c : name) h = h * 31 + static_cast<unsigned char>(c);
        return static_cast<int>(h % static_cast<unsigned>(n + 3)) - 1;
    };
    read_vdf_text(r.ctx, r.p, bytes, &index);
}

// The pipe table: read, written (a Fault escaping here is a finding) and read
// back the same, then every lookup of every material on the sizes and
// schedules it names.
void pipelib(std::string_view bytes) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    std::vector<PipeData> table;
    if (!read_pipe_lib_text(ctx, bytes, table)) return;
    const std::string text = pipe_lib_text(table);
    std::vector<PipeData> again;
    require(read_pipe_lib_text(ctx, text, again) && again == table, "a pipe table reads back the same");
    for (std::size_t m = 1; m < table.size(); ++m) {
        const PipeData& pd = table[m];
        for (std::size_t s = 1; s < pd.DIA.size(); s += 7)
            for (std::size_t c = 1; c < pd.SCH.size(); c += 5) {
                const double id = pipe_ID_from_dia(ctx, table, "ID", pd.MAT, pd.DIA[s].name, pd.SCH[c], "m");
                pipe_Dia_from_ID(ctx, table, pd.MAT, id, pd.SCH[c], "m", "Larger", true);
                pipe_Sched_from_ID(ctx, table, pd.MAT, id);
            }
    }
}

// A component library from the bytes, in a directory of its own.
void component_library(const char* file, const char* engine, std::string_view bytes) {
    const auto dir = scratch() / "lib";
    std::filesystem::create_directories(dir);
    write_file(dir / file, bytes);
    RecordingInteraction ui;
    RunContext ctx(ui);
    CompLibrary lib;
    lib.mflash = engine;
    lib.dir = dir;
    std::vector<std::string> names;
    GetCompNames(ctx, lib, names);
    CompProp first;
    GetComp(ctx, lib, -1, first);
    const int last = static_cast<int>(names.size()) - 1;
    std::array<int, 6> ids = {0, 1, 2, last, first.Number, 0};
    std::vector<CompProp> comps;
    std::vector<std::vector<double>> kij;
    GetCompData(ctx, lib, ids, comps, kij);
    comp_number_by_name(ctx, lib, names.size() > 2 ? names[2] : "Water");
}

void propa(std::string_view bytes) { component_library("propa.lib", "Velm", bytes); }
void prophys(std::string_view bytes) { component_library("prophys.lib", "Hysys", bytes); }
void propkij(std::string_view bytes) { component_library("propkij.lib", "Velm", bytes); }

// The number and case-string readers. The bytes are a case string, then after
// a line end two unit words and a digit count.
void numbers(std::string_view bytes) {
    const std::size_t cut = bytes.find('\n');
    const std::string_view text = bytes.substr(0, cut);
    std::string_view rest = cut == std::string_view::npos ? std::string_view() : bytes.substr(cut + 1);
    auto word = [&rest] {
        const std::size_t at = rest.find(' ');
        const std::string w(rest.substr(0, at));
        rest = at == std::string_view::npos ? std::string_view() : rest.substr(at + 1);
        return w;
    };
    const std::string from = word(), to = word();
    const int digits = static_cast<int>(leading_number(rest.substr(0, 3)));
    RecordingInteraction ui;
    RunContext ctx(ui);
    const int n = case_count(text);
    for (int k = 0; k <= std::min(n + 1, 50); ++k) {
        const std::string entry = getting_case_data(text, k);
        const double v = val_or_zero(entry);
        convert_num(ctx, v, from, to, digits);
        FormatNum(v, digits, 9);
        format_number(v, "0.00E-##");
        case_count_or_value(text, k);
        if (const auto x = parse_number(entry); x && std::isfinite(*x))
            require(parse_number(number_text(*x)) == *x, "a number reads back");
    }
    for (int mode : {kWriteFileNumbers, kReadFileNumbers, kReadEuropeanNumbers, digits})
        converting_units(ctx, text, from, to, mode);
    convert_fmt_case(ctx, text, from, to, digits);
}

// Takes the next n bytes of the input (zeros past its end).
struct ByteSource {
    std::string_view bytes;
    template <class T>
    T take() {
        T v{};
        char raw[sizeof(T)] = {};
        const std::size_t n = std::min(sizeof(T), bytes.size());
        bytes.copy(raw, n);
        bytes.remove_prefix(n);
        std::memcpy(&v, raw, sizeof(T));
        return v;
    }
    // A finite double of the input, or 0.
    double finite() {
        const double v = take<double>();
        return std::isfinite(v) ? v : 0.0;
    }
};

// One flash of built-in library components with the methods, the flash type,
// the composition and the conditions the bytes give: any finite number, far
// outside every correlation's range too.
void flash(std::string_view bytes) {
    ByteSource in{bytes};
    static constexpr int kTypes[] = {kFlashTP, kFlashPF, kFlashPH, kFlashPS, kFlashTF};
    static constexpr const char* kKValues[] = {"SRK", "ANTOINE"};
    static constexpr const char* kEnthalpies[] = {"SRK", "IDEAL", "WS97"};
    const auto choice = in.take<std::uint8_t>();
    RecordingInteraction ui;
    RunContext ctx(ui);
    FlashSetup setup;
    setup.MFLASHK = kKValues[choice & 1];
    setup.MFLASHH = kEnthalpies[(choice >> 1) % 3];
    setup.MFLASHR = (choice & 8) != 0;
    FlashStream s;
    s.NAME = "1";
    s.FT = kTypes[(choice >> 4) % 5];
    const int n = 1 + in.take<std::uint8_t>() % 4;
    setup.ids.assign(1, 0);
    for (int k = 1; k <= n; ++k) setup.ids.push_back(1 + in.take<std::uint16_t>() % 458);
    double sum = 0.0;
    for (int k = 1; k <= n; ++k) sum += s.Z[static_cast<std::size_t>(k)] = std::fabs(in.finite()) + 1e-3;
    for (int k = 1; k <= n; ++k) s.Z[static_cast<std::size_t>(k)] /= sum;
    s.T = in.finite();
    s.P = in.finite();
    s.LF = in.finite();
    s.H = in.finite();
    s.S = in.finite();
    CompLibrary lib;
    GetCompData(ctx, lib, setup.ids, setup.comps, setup.kij);
    Flash(ctx, setup, s);
}

// A project read and run as `velm run` would: only a file without faulty
// lines runs, with a small iteration limit, writing into a scratch directory;
// with components, the balance runs in its iterations. A file of odd length
// runs by Newton steps, so that both schemes meet every kind of project.
void run(std::string_view bytes) {
    Reading r(kRunBytes, true);
    int faults = 0;
    if (!read_vdf_text(r.ctx, r.p, bytes, nullptr, &faults) || faults > 0) return;
    r.ctx.max_iter = 4;
    r.ctx.newton = bytes.size() % 2 == 1;
    r.ctx.data_dir = scratch() / "run";
    // A project with components runs with the heat and mole balance too.
    if (r.p.gen.COMP[1] != 0) {
        r.ctx.run_mode = kRunBoth;
        r.ui.default_answer = 0;
    }
    Hydr_Sim(r.ctx, r.p);
}

// A stream file imported into three lines (one by its stream name, one by its
// own name, one locked). The first byte picks the file's form and the choices.
// An import that refuses the file changes nothing.
void streams(std::string_view bytes) {
    ByteSource in{bytes};
    const auto choice = in.take<std::uint8_t>();
    Reading r(kReadBytes, false);
    r.ctx.data_dir = scratch() / "streams";
    std::filesystem::create_directories(r.ctx.data_dir);
    for (const char* n : {"L-1", "L-2", "L-3"}) {
        r.p.lines.push_back(r.p.lines[0]);
        r.p.lines.back().NAME[1] = n;
    }
    r.p.lines[1].STRM = "FEED";
    r.p.lines[3].LOCK = -1;
    const auto file = scratch() / ((choice & 1) != 0 ? "streams.csv" : "streams.vdf");
    write_file(file, in.bytes);
    const std::string before = WriteVdf(r.ctx, r.p);
    const ImportChoices choices{(choice & 2) != 0, (choice & 4) != 0, (choice & 8) != 0};
    if (!import_streams(r.ctx, r.p, file, choices))
        require(WriteVdf(r.ctx, r.p) == before, "a refused import changes nothing");
}

// The settings file read in both modes and applied; what it held writes and
// reads back to the same values.
void settings(std::string_view bytes) {
    RecordingInteraction ui;
    RunContext ctx(ui);
    const auto file = scratch() / "Velm.ini";
    write_file(file, bytes);
    Settings s;
    ReadSettings(ctx, file, "once", s);
    ReadSettings(ctx, file, "every", s);
    Header gen;
    apply_project_defaults(s, gen);
    apply_run_limits(s, ctx);
    require(WriteSettings(ctx, scratch() / "again.ini", "save", s), "settings write");
    Settings again;
    ReadSettings(ctx, scratch() / "again.ini", "once", again);
    ReadSettings(ctx, scratch() / "again.ini", "every", again);
    for (const auto& [key, value] : s.values) {
        const std::string* v = again.find(key);
        require(v != nullptr && *v == trim(value), "a written setting reads back");
    }
}

}  // namespace

const std::vector<TargetInfo>& targets() {
    static const std::vector<TargetInfo> all = {
        {"vdf", vdf},         {"vdf_roundtrip", vdf_roundtrip}, {"vdf_import", vdf_import}, {"pipelib", pipelib},
        {"propa", propa},     {"prophys", prophys},             {"propkij", propkij},       {"numbers", numbers},
        {"flash", flash},     {"run", run},                     {"streams", streams},
        {"settings", settings},
    };
    return all;
}

Target find_target(std::string_view name) {
    for (const TargetInfo& t : targets())
        if (name == t.name) return t.run;
    return nullptr;
}

}  // namespace velm::fuzz
