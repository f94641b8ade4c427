#include "model/pipe_table.hpp"

#include <cmath>
#include <fstream>
#include <iterator>

#include "model/context.hpp"
#include "model/embedded.hpp"
#include "model/fault.hpp"
#include "model/file_replace.hpp"
#include "model/items.hpp"
#include "model/text.hpp"
#include "model/units.hpp"

namespace velm {

namespace {

constexpr int kFaultFileAccess = 75;      // "Path/File access error"
constexpr int kMaxPipeMaterials = 1000;   // bound on the "Number" line of a library
constexpr std::string_view kLibraryTag = "Velm_2.0";
constexpr std::string_view kLibraryName = "pipeid.lib";

// Reads a label item and checks it, so that a library whose items have
// shifted (a size line missing or doubled) stops with a fault instead of
// filling the table with misplaced values.
void expect_label(ItemReader& in, std::string_view label) {
    const int line = in.line();
    const std::string found = in.item();
    if (key_of(found) != key_of(label))
        raise_fault(kFaultTypeMismatch, "Type mismatch (line " + std::to_string(line) + ": \"" + std::string(label) +
                                            "\" was expected, found \"" + found.substr(0, 40) + "\")");
}

int bounded(int value, int low, int high, int line, const char* what) {
    if (value < low || value > high)
        raise_fault(kFaultSubscript, "Subscript out of range (line " + std::to_string(line) + ": " + what + " " +
                                         std::to_string(value) + ")");
    return value;
}

void read_material(ItemReader& in, PipeData& p) {
    expect_label(in, "Material");
    p.MAT = in.item();
    expect_label(in, "Notes");
    p.NOTES = in.item();
    for (int k = 0; k < 2; ++k) {  // "Properties",0,"Units": kept for the format, not used
        expect_label(in, "Properties");
        in.item();
        in.item();
    }
    expect_label(in, "Roughness");
    p.E = in.number();
    in.item();  // "m"
    expect_label(in, "NonStdSizes");
    p.NSS = in.item();
    expect_label(in, "SizeInit");
    p.IDIA[1] = in.item();
    p.IDIA[2] = in.item();
    expect_label(in, "SizeSch");
    for (int k = 1; k <= 3; ++k) {
        p.SDIA_limit[k] = in.number();
        p.SDIA_sch[k] = in.item();
    }
    in.item();  // "m"
    expect_label(in, "IDUnits");
    p.UNITS = in.item();
    expect_label(in, "Nom");
    expect_label(in, "OD");
    for (int j = 1; j <= kPipeSchedules; ++j) p.SCH[j] = in.item();
    for (int i = 1; i <= kPipeSizes; ++i) {
        PipeSize& row = p.DIA[i];
        row.name = in.item();
        row.OD = in.number();
        for (int j = 1; j <= kPipeSchedules; ++j) row.ID[j] = in.number();
    }
}

}  // namespace

int find_size(const PipeData& p, std::string_view size) {
    for (int i = 1; i <= kPipeSizes; ++i)
        if (p.DIA[i].name == size) return i;
    return 0;
}

int find_schedule(const PipeData& p, std::string_view sch) {
    for (int j = 1; j <= kPipeSchedules; ++j)
        if (p.SCH[j] == sch) return j;
    return 0;
}

namespace {

// Factor from the table's unit to `units`.
double scale_to(RunContext& ctx, const PipeData& p, std::string_view units) {
    return checked_div(get_units(ctx, units), get_units(ctx, p.UNITS));
}

}  // namespace

bool read_pipe_lib_text(RunContext& ctx, std::string_view bytes, std::vector<PipeData>& table) {
    try {
        ItemReader in(bytes);
        const std::string tag = in.item();
        if (key_of(tag).rfind("VELM", 0) != 0)
            raise_fault(kFaultTypeMismatch, "Type mismatch (line 1: \"" + std::string(kLibraryTag) +
                                                "\" was expected, found \"" + tag.substr(0, 40) + "\")");
        expect_label(in, "Number");
        int line = in.line();
        const int n = bounded(in.integer(), 0, kMaxPipeMaterials, line, "material count");
        std::vector<PipeData> read(static_cast<std::size_t>(n) + 1);
        while (!in.at_end()) {
            expect_label(in, "Set");
            line = in.line();
            const int s = bounded(in.integer(), 1, n, line, "material");
            read[static_cast<std::size_t>(s)] = PipeData{};
            read_material(in, read[static_cast<std::size_t>(s)]);
        }
        table = std::move(read);
        return true;
    } catch (const Fault& f) {
        ctx.ui.tell("Error! Reading pipe data = " + fault_text(f) + ". Press OK to clear.");
        ctx.ui.tell("Quit program. Put the original file pipeid.lib in program directory.");
        return false;
    }
}

bool ReadPipeLib(RunContext& ctx, std::vector<PipeData>& table, const std::filesystem::path& lib_dir) {
    std::error_code ec;
    const std::filesystem::path file = lib_dir.empty() ? std::filesystem::path() : lib_dir / kLibraryName;
    if (file.empty() || !std::filesystem::is_regular_file(file, ec)) {
        const std::string_view built_in = embedded_file(kLibraryName);
        if (built_in.empty()) return false;  // no library: the table stays as it is
        return read_pipe_lib_text(ctx, built_in, table);
    }
    std::ifstream in(file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad() || !in.is_open()) {
        ctx.ui.tell("Error! Reading pipe data = " + fault_text(Fault{kFaultFileAccess, "Path/File access error"}) +
                    ". Press OK to clear.");
        ctx.ui.tell("Quit program. Put the original file pipeid.lib in program directory.");
        return false;
    }
    return read_pipe_lib_text(ctx, bytes, table);
}

std::string pipe_lib_text(const std::vector<PipeData>& table) {
    ItemWriter w;
    w.text(kLibraryTag);
    w.end_line();
    const int n = count(table);
    w.text("Number");
    w.integer(n);
    w.end_line();
    for (int s = 1; s <= n; ++s) {
        const PipeData& p = table[static_cast<std::size_t>(s)];
        w.text("Set");
        w.integer(s);
        w.end_line();
        w.text("Material");
        w.text(p.MAT);
        w.end_line();
        w.text("Notes");
        w.text(p.NOTES);
        w.end_line();
        for (int k = 0; k < 2; ++k) {
            w.text("Properties");
            w.integer(0);
            w.text("Units");
            w.end_line();
        }
        w.text("Roughness");
        w.number(p.E);
        w.text("m");
        w.end_line();
        w.text("NonStdSizes");
        w.text(p.NSS);
        w.end_line();
        w.text("SizeInit");
        w.text(p.IDIA[1]);
        w.text(p.IDIA[2]);
        w.end_line();
        w.text("SizeSch");
        for (int k = 1; k <= 3; ++k) {
            w.number(p.SDIA_limit[k]);
            w.text(p.SDIA_sch[k]);
        }
        w.text("m");
        w.end_line();
        w.text("IDUnits");
        w.text(p.UNITS);
        w.end_line();
        w.text("Nom");
        w.text("OD");
        for (int j = 1; j <= kPipeSchedules; ++j) w.text(p.SCH[j]);
        w.end_line();
        for (int i = 1; i <= kPipeSizes; ++i) {
            const PipeSize& row = p.DIA[i];
            w.text(row.name);
            w.number(row.OD);
            for (int j = 1; j <= kPipeSchedules; ++j) w.number(row.ID[j]);
            w.end_line();
        }
    }
    return w.bytes();
}

bool SavePipeLib(RunContext& ctx, const std::vector<PipeData>& table, const std::filesystem::path& file) {
    std::string error;
    try {
        if (replace_file(file, pipe_lib_text(table), error)) return true;
    } catch (const Fault&) {
        // A text the library cannot hold whole: told as a failed write.
    }
    ctx.ui.tell("Error! Saving pipe data = " + fault_text(Fault{kFaultFileAccess, "Path/File access error"}) +
                ". Press OK to clear.");
    return false;
}

int find_pipe_material(const std::vector<PipeData>& table, std::string_view mat) {
    for (int m = 1; m < static_cast<int>(table.size()); ++m)
        if (table[static_cast<std::size_t>(m)].MAT == mat) return m;
    return 0;
}

double pipe_ID_from_dia(RunContext& ctx, const std::vector<PipeData>& table, std::string_view what,
                        std::string_view mat, std::string_view size, std::string_view sch, std::string_view units) {
    try {
        const int m = find_pipe_material(table, mat);
        if (m == 0) return 0.0;
        const PipeData& p = table[static_cast<std::size_t>(m)];
        const int i = find_size(p, size);
        const int j = find_schedule(p, sch);
        if (i == 0 || j == 0) return 0.0;
        const double f = scale_to(ctx, p, units);
        const double id = checked(f * p.DIA[i].ID[j]);
        const double od = checked(f * p.DIA[i].OD);
        if (what == "ID") return id;
        if (what == "OD") return od;
        if (what == "WT") return (od - id) / 2.0;
        return 0.0;
    } catch (const Fault& f) {
        ctx.log_error("Error! In pipe ID from dia = " + fault_text(f));
        return 0.0;
    }
}

std::string pipe_Dia_from_ID(RunContext& ctx, const std::vector<PipeData>& table, std::string_view mat, double id,
                             std::string_view sch, std::string_view units, std::string_view direction, bool report) {
    try {
        const int m = find_pipe_material(table, mat);
        if (m == 0) return "";
        const PipeData& p = table[static_cast<std::size_t>(m)];
        const int j = find_schedule(p, sch);
        if (j == 0) return "";
        const double f = scale_to(ctx, p, units);
        for (int i = 1; i <= kPipeSizes; ++i) {
            if (!(id <= f * p.DIA[i].ID[j])) continue;
            if (direction == "Larger") {
                // Up past sizes that sizing skips, but never past the last row.
                while (!is_std_size(p.DIA[i].name, p.NSS) && i < kPipeSizes) ++i;
                return p.DIA[i].name;
            }
            if (direction == "Smaller") {
                if (i == 1) return p.DIA[1].name;
                while (!is_std_size(p.DIA[i - 1].name, p.NSS) && i > 2) --i;
                return p.DIA[i - 1].name;
            }
            return "";
        }
        if (report) ctx.log_error("Error! Nominal pipe size not found in database (too large or small)");
        return "";
    } catch (const Fault& f) {
        if (report) ctx.log_error("Error! In pipe Dia from ID = " + fault_text(f));
        return "";
    }
}

std::string pipe_Sched_from_ID(RunContext& ctx, const std::vector<PipeData>& table, std::string_view mat,
                               double size) {
    const int m = find_pipe_material(table, mat);
    if (m == 0) return "";
    const PipeData& p = table[static_cast<std::size_t>(m)];
    try {
        // A size that is not a number (a failed calculation upstream) has no schedule.
        if (!std::isfinite(size)) raise_fault(kFaultInvalidCall);
        if (size < p.SDIA_limit[1]) return p.SDIA_sch[1];
        if (size < p.SDIA_limit[2]) return p.SDIA_sch[2];
        return p.SDIA_sch[3];
    } catch (const Fault& f) {
        ctx.log_error("Error! In pipe Sched from ID = " + fault_text(f));
        return "Error.";
    }
}

bool is_std_size(std::string_view size, std::string_view list) {
    if (list.empty()) return true;
    std::size_t start = 0;
    for (;;) {
        const std::size_t semi = list.find(';', start);
        const std::string_view entry = list.substr(start, semi == std::string_view::npos ? semi : semi - start);
        if (entry == size) return false;
        if (semi == std::string_view::npos) return true;
        start = semi + 1;
    }
}

}  // namespace velm
