// Reading a project file: a version line, then record lines of section,
// index, key and values. Faults in single lines are told and the line is
// skipped; a run-time error ends the reading.
#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/items.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "model/vdf_schema.hpp"

namespace velm {

namespace {

// The most records a NUM line may ask for: what fits in the memory a project
// may take (RunContext::max_project_bytes) beside the records already read.
// A count above it is a fault of the file, not a reason to exhaust memory.
int max_records(const RunContext& ctx, const Project& p, const SectionIO& section) {
    std::size_t others = 0;
    for (const SectionIO* s : vdf_sections())
        if (s != &section && s->count(p) > 0) others += static_cast<std::size_t>(s->count(p)) * s->record_bytes(p);
    if (others >= ctx.max_project_bytes) return 0;
    const std::size_t room = (ctx.max_project_bytes - others) / std::max<std::size_t>(section.record_bytes(p), 1);
    return static_cast<int>(std::min<std::size_t>(room, 1000000));
}

enum class Verdict { Read, Skipped };

struct Reader {
    RunContext& ctx;
    Project& project;
    const ImportIndex* import;
    ItemReader in;
    int faults = 0;  // since the last question
    int total = 0;

    // A fault in one line: told, counted, and after ten of them the user may stop.
    void fault(const std::string& text) {
        ctx.ui.tell(text);
        ++faults;
        ++total;
        if (import || faults <= 10) return;
        if (ctx.ui.ask("Abort reading file ?", {"Yes", "No"}) == 0)
            raise_fault(18, "User interrupt occurred");
        faults = 0;
    }

    void unknown_section(int line, const std::string& item) {
        const std::string rest = in.rest_of_line();
        fault("Line = " + std::to_string(line) + " ignored : Equipment type not recognized. Input = " +
              shown_text(item) + "\r\nLine discarded = " + shown_text(rest));
    }

    void record_line(int line, const std::string& section_item, int chosen_mode) {
        const std::string section_name = key_of(section_item);
        const SectionIO* section = find_section(section_name);
        if (!section) {
            unknown_section(line, section_item);
            return;
        }
        const std::string index_item = in.item();
        const std::string key = key_of(in.item());
        int index = 0;
        if (import) {
            const auto found = (*import)(section_name, trim(index_item), key);
            if (!found) {
                in.rest_of_line();
                return;
            }
            index = *found;
        } else {
            index = whole_number(index_item, line);
        }
        if (key == "NUM" && section->is_record_section()) {
            read_count(line, *section, section_name);
            return;
        }
        if (section->is_record_section() && (index < 0 || index > section->count(project))) {
            in.rest_of_line();
            if (!import)
                fault("Line = " + std::to_string(line) + " ignored : Equipment number for " + section_name +
                      " exceeds maximum/minimum. Input = " + std::to_string(index) + " vs " +
                      std::to_string(section->count(project)));
            return;
        }
        if (!section->knows(key)) {
            in.rest_of_line();
            fault("Line = " + std::to_string(line) + " ignored : Key for equipment " + section_name +
                  " not recognized. Input = " + shown_text(key));
            return;
        }
        ReadState st{in, ctx, chosen_mode};
        section->read_key(st, project, index, key);
    }

    void read_count(int line, const SectionIO& section, const std::string& section_name) {
        const int n = in.integer();
        const int most = max_records(ctx, project, section);
        if (n < 0 || n > most) {
            in.rest_of_line();
            fault("Line = " + std::to_string(line) + " ignored : Equipment number for " + section_name +
                  " exceeds maximum/minimum. Input = " + std::to_string(n) + " vs " + std::to_string(most));
            return;
        }
        section.set_count(project, n);
    }
};

// Versions this program reads, and whether an older file may come from a
// locale that writes a decimal comma.
enum class VersionKind { Old, Current, Unknown };

VersionKind version_kind(const std::string& v) {
    for (const char* old : {"1.2", "1.3", "1.4", "1.5"})
        if (v == old) return VersionKind::Old;
    for (const char* cur : {"2.0", "2.1", "3.0", "3.1", "3.2"})
        if (v == cur) return VersionKind::Current;
    return VersionKind::Unknown;
}

}  // namespace

bool read_vdf_text(RunContext& ctx, Project& project, std::string_view bytes, const ImportIndex* import,
                   int* faults) {
    Reader r{ctx, project, import, ItemReader(bytes)};
    struct Report {
        const Reader& r;
        int* out;
        ~Report() {
            if (out) *out = r.total;
        }
    } report{r, faults};
    try {
        const std::string tag = r.in.item();
        if (upper(tag.substr(0, 4)) != "VELM") {
            ctx.ui.tell("Error - Invalid VELM data file !");
            return false;
        }
        const std::string version = tag.size() > 5 ? tag.substr(5, 3) : "";
        int chosen_mode = -2;
        switch (version_kind(version)) {
            case VersionKind::Old:
                if (ctx.ui.ask("Was this older file created with European locale (comma as decimal place) ?",
                               {"Yes", "No"}) == 0)
                    chosen_mode = -3;
                break;
            case VersionKind::Current: break;
            case VersionKind::Unknown:
                ctx.ui.tell("Cannot read VELM version " + tag.substr(tag.size() >= 3 ? tag.size() - 3 : 0) +
                            " data files. Contact the developers.");
                return false;
        }
        r.in.rest_of_line();
        while (!r.in.at_end()) {
            const int line = r.in.line();
            const std::string item = r.in.item();
            if (item.empty() || item[0] != '\\') r.unknown_section(line, item);
            else r.record_line(line, item, chosen_mode);
        }
        MigrateVdf(ctx, project, leading_number(version));
        return true;
    } catch (const Fault& f) {
        ctx.ui.tell("Error reading file = " + fault_text(f) + ". Press OK to clear.");
        return false;
    }
}

bool ReadVdf(RunContext& ctx, Project& project, const std::filesystem::path& file, const ImportIndex* import,
             int* faults) {
    std::error_code ec;
    if (trim(file.string()).empty() || !std::filesystem::is_regular_file(file, ec)) {
        ctx.ui.tell("Error - File does not exist !");
        return false;
    }
    std::ifstream in(file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    if (!in && !in.eof()) {
        ctx.ui.tell("Error reading file = 75 : Path/File access error. Press OK to clear.");
        return false;
    }
    // The text moves out of the stream rather than being copied (a project
    // of 80,000 lines is 22 MB).
    return read_vdf_text(ctx, project, std::move(bytes).str(), import, faults);
}

}  // namespace velm
