#include "import/stream_import.hpp"

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <vector>

#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/items.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "model/units.hpp"

namespace velm {

namespace {

enum class Group { Conditions, Properties };

// A value of a stream and where it lands in a line: position 1 the inlet, 2
// the outlet, 3 the average (conditions have no average of their own here).
struct StreamField {
    const char* key;    // key of the project file and column of a stream table
    const char* alias;  // the short column name, or ""
    Group group;
    const char* unit;   // internal unit: "C" a temperature, "kPag" a pressure, "" none
    double* (*at)(Line&, int position);
};

template <auto Member>
double* slot(Line& l, int position) {
    auto& a = l.*Member;
    return position >= 1 && static_cast<std::size_t>(position) < a.size() ? &a[static_cast<std::size_t>(position)]
                                                                         : nullptr;
}

// A property whose average the project file keeps in another array.
template <auto Member, auto Average, int AveragePosition>
double* split_slot(Line& l, int position) {
    if (position == 3) return &(l.*Average)[AveragePosition];
    return slot<Member>(l, position);
}

const StreamField kStreamFields[] = {
    {"TEMP", "T", Group::Conditions, "C", slot<&Line::TEMP>},
    {"PRES", "P", Group::Conditions, "kPag", slot<&Line::PRES>},
    {"LF", "", Group::Conditions, "", slot<&Line::LF>},
    {"H", "", Group::Conditions, "kJ/kg", slot<&Line::H>},
    {"S", "", Group::Conditions, "kJ/kg/K", slot<&Line::S>},
    {"LIQDEN", "", Group::Properties, "kg/m3", split_slot<&Line::LIQDEN, &Line::LPROP, 1>},
    {"LIQVISC", "", Group::Properties, "cP", split_slot<&Line::LIQVISC, &Line::LPROP, 3>},
    {"LIQSUR", "", Group::Properties, "dyne/cm", slot<&Line::LIQSUR>},
    {"LIQCON", "", Group::Properties, "W/m/K", slot<&Line::LIQCON>},
    {"LIQCP", "", Group::Properties, "kJ/kg/K", slot<&Line::LIQCP>},
    {"LIQMW", "", Group::Properties, "", slot<&Line::LIQMW>},
    {"VAPDEN", "", Group::Properties, "kg/m3", split_slot<&Line::VAPDEN, &Line::VPROP, 1>},
    {"VAPVISC", "", Group::Properties, "cP", split_slot<&Line::VAPVISC, &Line::VPROP, 3>},
    {"VAPMW", "", Group::Properties, "", split_slot<&Line::VAPMW, &Line::VPROP, 5>},
    {"VAPZ", "", Group::Properties, "", split_slot<&Line::VAPZ, &Line::VPROP, 6>},
    {"VAPK", "", Group::Properties, "", split_slot<&Line::VAPK, &Line::VPROP, 7>},
    {"VAPCON", "", Group::Properties, "W/m/K", slot<&Line::VAPCON>},
    {"VAPCP", "", Group::Properties, "kJ/kg/K", slot<&Line::VAPCP>},
};

const StreamField* stream_field(std::string_view name) {
    const std::string key = upper(trim(name));
    for (const StreamField& f : kStreamFields)
        if (key == f.key || (*f.alias != '\0' && key == f.alias)) return &f;
    return nullptr;
}

// The positions a choice writes: the inlet, the outlet, or all three for the
// phase properties.
std::vector<int> chosen_positions(const StreamField& f, const ImportChoices& c) {
    if (f.group == Group::Properties) return c.props ? std::vector<int>{1, 2, 3} : std::vector<int>{};
    std::vector<int> out;
    if (c.inlet) out.push_back(1);
    if (c.outlet) out.push_back(2);
    return out;
}

// The streams of a file: each with its values held in a line record and the
// keys the file gave it, in order.
struct Stream {
    std::string name;  // as the file writes it
    Line values;
    std::vector<const StreamField*> keys;
};

struct Streams {
    std::vector<Stream> list;
    Stream& named(const std::string& name) {
        const std::string key = upper(trim(name));
        for (Stream& s : list)
            if (upper(trim(s.name)) == key) return s;
        list.push_back({trim(name), Line{}, {}});
        return list.back();
    }
};

std::string stream_key(const Line& l) { return upper(trim(trim(l.STRM).empty() ? l.NAME[1] : l.STRM)); }

bool read_bytes(const std::filesystem::path& file, std::string& bytes) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    std::ostringstream s;
    s << in.rdbuf();
    bytes = s.str();
    return true;
}

bool project_form(std::string_view bytes) {
    std::size_t at = 0;
    while (at < bytes.size() && (bytes[at] == ' ' || bytes[at] == '"')) ++at;
    return upper(bytes.substr(at, 4)) == "VELM";
}

// Project-file form: the "\PIPE" lines of each stream read into a scratch
// project whose line records are the streams; other sections are no stream data.
bool read_project_form(RunContext& ctx, const std::filesystem::path& file, Streams& streams) {
    Project scratch;
    NewProject(scratch);
    const ImportIndex index = [&](const std::string& section, const std::string& name,
                                  const std::string& key) -> std::optional<int> {
        if (section != "\\PIPE" || key == "NUM") return std::nullopt;
        const StreamField* f = stream_field(key);
        if (f == nullptr) return std::nullopt;
        Stream& s = streams.named(name);
        if (std::find(s.keys.begin(), s.keys.end(), f) == s.keys.end()) s.keys.push_back(f);
        const auto at = static_cast<int>(&s - streams.list.data()) + 1;
        if (static_cast<int>(scratch.lines.size()) <= at) scratch.lines.resize(static_cast<std::size_t>(at) + 1);
        return at;
    };
    if (!ReadVdf(ctx, scratch, file, &index)) return false;
    for (std::size_t i = 0; i < streams.list.size(); ++i) streams.list[i].values = scratch.lines[i + 1];
    return true;
}

// A column of a stream table: its field and the unit of its numbers.
struct Column {
    const StreamField* field = nullptr;
    std::string unit;
};

// "T [C]" into the name and the unit.
std::pair<std::string, std::string> name_and_unit(const std::string& head) {
    const std::size_t open = head.find('[');
    if (open == std::string::npos) return {trim(head), ""};
    const std::size_t close = head.find(']', open);
    return {trim(head.substr(0, open)), trim(head.substr(open + 1, close == std::string::npos ? close : close - open - 1))};
}

// The unit a column may carry for its field: the internal one (also when none
// is written); temperatures in C, K, F or R; pressures in any pressure word;
// others in a unit of the program's table.
bool unit_fits(const StreamField& f, const std::string& unit) {
    const std::string_view internal = f.unit;
    if (unit.empty() || unit == internal) return true;
    if (internal == "C") return unit == "C" || unit == "K" || unit == "F" || unit == "R";
    if (internal == "kPag") return pressure_word(unit) != nullptr;
    if (internal.empty()) return false;
    return is_known_unit(unit) && unit != "kPag";
}

double internal_value(RunContext& ctx, const Column& c, double v, double patm) {
    const std::string_view internal = c.field->unit;
    if (c.unit.empty() || c.unit == internal) return v;
    if (internal == "C") return UnitsTFunc(ctx, v, c.unit, "C");
    if (internal == "kPag") {
        const PressureWord* w = pressure_word(c.unit);
        const double kpa = v / get_units(ctx, w->name);
        return w->gauge ? kpa : kpa - patm;
    }
    return convert_value(ctx, v, c.unit, internal);
}

// One row of a CSV table; a comma that ends the text leaves an empty cell.
std::vector<std::string> csv_row(ItemReader& in) {
    std::vector<std::string> row;
    do row.push_back(in.rest_blank() ? std::string() : in.item());
    while (!in.line_ended() && !in.rest_blank());
    return row;
}

// A CSV stream table. Every column and unit is checked before any value is
// taken, so a bad header changes nothing.
bool read_stream_table(RunContext& ctx, std::string_view bytes, double patm, Streams& streams) {
    ItemReader in(bytes);
    if (in.at_end()) {
        ctx.ui.tell("Error! The stream table is empty.");
        return false;
    }
    const std::vector<std::string> head = csv_row(in);
    std::vector<Column> cols(head.size());
    for (std::size_t k = 1; k < head.size(); ++k) {
        const auto [name, unit] = name_and_unit(head[k]);
        cols[k].field = stream_field(name);
        cols[k].unit = unit;
        if (cols[k].field == nullptr) {
            ctx.ui.tell("Error! Column " + std::to_string(k + 1) + " of the stream table, \"" + head[k] +
                        "\", names no stream value. Known: T, P and the keys of a line's fluid (TEMP, PRES, LF, H, "
                        "S, LIQDEN, LIQVISC, LIQSUR, LIQCON, LIQCP, LIQMW, VAPDEN, VAPVISC, VAPMW, VAPZ, VAPK, "
                        "VAPCON, VAPCP).");
            return false;
        }
        if (!unit_fits(*cols[k].field, unit)) {
            ctx.ui.tell("Error! Column " + std::to_string(k + 1) + " of the stream table, \"" + head[k] +
                        "\": unknown units for " + cols[k].field->key + ": " + unit + ".");
            return false;
        }
    }
    std::vector<std::pair<int, std::vector<std::string>>> rows;
    while (!in.at_end()) {
        const int line = in.line();
        rows.emplace_back(line, csv_row(in));
        if (rows.back().second.size() > head.size()) {
            ctx.ui.tell("Error! Line " + std::to_string(line) + " of the stream table has more values than columns.");
            return false;
        }
        for (std::size_t k = 1; k < rows.back().second.size(); ++k) {
            const std::string& text = rows.back().second[k];
            const std::optional<double> v = parse_number(text);
            if (!trim(text).empty() && (!v || !std::isfinite(*v))) {
                ctx.ui.tell("Error! Line " + std::to_string(line) + " of the stream table: \"" + text + "\" in column " +
                            std::to_string(k + 1) + " is not a number.");
                return false;
            }
        }
    }
    for (const auto& [line, row] : rows) {
        Stream& s = streams.named(row[0]);
        for (std::size_t k = 1; k < row.size(); ++k) {
            if (trim(row[k]).empty()) continue;
            const double v = internal_value(ctx, cols[k], *parse_number(row[k]), patm);
            for (int pos = 1; pos <= 3; ++pos)
                if (double* d = cols[k].field->at(s.values, pos)) *d = v;
            if (std::find(s.keys.begin(), s.keys.end(), cols[k].field) == s.keys.end())
                s.keys.push_back(cols[k].field);
        }
    }
    return true;
}

// Writes a stream into a line as the choices say, logging each key.
void apply_stream(RunContext& ctx, Line& l, const Stream& s, const ImportChoices& choices, const std::string& file) {
    const std::string head = "\\PIPE " + trim(l.NAME[1]) + " ";
    for (const StreamField* f : s.keys) {
        const std::vector<int> positions = chosen_positions(*f, choices);
        if (positions.empty()) continue;
        if (l.LOCK != 0) {
            ctx.log_error(head + f->key + " - Locked, not imported");
            continue;
        }
        Line from = s.values;
        for (int pos : positions)
            if (double* d = f->at(l, pos)) *d = *f->at(from, pos);
        // A condition's average follows its two ends.
        if (double* mean = f->group == Group::Conditions ? f->at(l, 3) : nullptr)
            *mean = 0.5 * (*f->at(l, 1) + *f->at(l, 2));
        ctx.log_error(head + f->key + " - Imported from " + s.name + " in " + file);
    }
}

// Writes each stream into its lines, and logs what became of every stream and
// every line.
void apply_streams(RunContext& ctx, Project& p, const Streams& streams, const ImportChoices& choices,
                   const std::string& file) {
    std::vector<bool> fed(p.lines.size(), false);
    for (const Stream& s : streams.list) {
        bool matched = false;
        for (std::size_t i = 1; i < p.lines.size(); ++i) {
            if (stream_key(p.lines[i]) != upper(s.name)) continue;
            matched = fed[i] = true;
            apply_stream(ctx, p.lines[i], s, choices, file);
        }
        if (!matched) ctx.log_error("\\PIPE " + s.name + " skipped - not defined in Velm");
    }
    for (std::size_t i = 1; i < p.lines.size(); ++i)
        if (!fed[i]) ctx.log_error(trim(p.lines[i].NAME[1]) + " - No data in " + file);
}

// The record of a section that bears the name, trimmed and in capitals.
template <class R>
std::optional<int> named_record(const std::vector<R>& v, const std::string& name) {
    const std::string key = upper(trim(name));
    for (std::size_t i = 1; i < v.size(); ++i)
        if (upper(trim(v[i].NAME[1])) == key) return static_cast<int>(i);
    return std::nullopt;
}

std::optional<int> record_by_name(const Project& p, const std::string& section, const std::string& name) {
    if (section == "\\PIPE") return named_record(p.lines, name);
    if (section == "\\FEED") return named_record(p.feeds, name);
    if (section == "\\PROD") return named_record(p.prods, name);
    if (section == "\\VALVE") return named_record(p.valves, name);
    if (section == "\\CHECK") return named_record(p.checks, name);
    if (section == "\\FO") return named_record(p.fos, name);
    if (section == "\\HX") return named_record(p.hxs, name);
    if (section == "\\PUMP") return named_record(p.pumps, name);
    if (section == "\\COMP") return named_record(p.comps, name);
    if (section == "\\MISC") return named_record(p.miscs, name);
    if (section == "\\EXPAND") return named_record(p.expands, name);
    if (section == "\\JUNC") return named_record(p.juncs, name);
    if (section == "\\TEE") return named_record(p.tees, name);
    if (section == "\\VESSEL") return named_record(p.vessels, name);
    return std::nullopt;
}

// The run log of an import: begun afresh, ended with its closing line and written.
template <class Body>
void import_run_log(RunContext& ctx, Body&& body) {
    std::error_code ec;
    std::filesystem::remove(ctx.run_file("runlog.txt"), ec);
    ctx.run_active = true;
    ctx.run_log_text = "Import RunLog.";
    body();
    ctx.log_error("Runlog - Import properties");
    ctx.run_active = false;
    ctx.log_line();
    ctx.project_dirty = true;
}

}  // namespace

void import_simulator_streams(RunContext& ctx, Project& p, const StreamReader& read, const std::string& source,
                              const ImportChoices& choices) {
    import_run_log(ctx, [&] {
        for (std::size_t i = 1; i < p.lines.size(); ++i) {
            Line& l = p.lines[i];
            Stream s{trim(trim(l.STRM).empty() ? l.NAME[1] : l.STRM), Line{}, {}};
            if (l.LOCK != 0) {
                ctx.log_error("\\PIPE " + trim(l.NAME[1]) + " - Locked, not imported");
                continue;
            }
            std::vector<std::pair<std::string, double>> values;
            if (!read(s.name, values)) {
                ctx.log_error(trim(l.NAME[1]) + " - No data in " + source);
                continue;
            }
            for (const auto& [key, v] : values) {
                const StreamField* f = stream_field(key);
                if (f == nullptr) continue;
                for (int pos = 1; pos <= 3; ++pos)
                    if (double* d = f->at(s.values, pos)) *d = v;
                s.keys.push_back(f);
            }
            apply_stream(ctx, l, s, choices, source);
        }
    });
}

bool import_streams(RunContext& ctx, Project& p, const std::filesystem::path& file, const ImportChoices& choices) {
    std::string bytes;
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec) || !read_bytes(file, bytes)) {
        ctx.ui.tell("Error - File does not exist !");
        return false;
    }
    Streams streams;
    const bool read = project_form(bytes) ? read_project_form(ctx, file, streams)
                                          : read_stream_table(ctx, bytes, p.gen.PATM, streams);
    if (!read) {
        ctx.ui.tell("Error importing file. Review results carefully.");
        return false;
    }
    import_run_log(ctx, [&] { apply_streams(ctx, p, streams, choices, file.string()); });
    return true;
}

bool import_project(RunContext& ctx, Project& p, const std::filesystem::path& file) {
    const ImportIndex index = [&p](const std::string& section, const std::string& name,
                                   const std::string& key) -> std::optional<int> {
        if (key == "NUM") return std::nullopt;
        return record_by_name(p, section, name);
    };
    const bool read = ReadVdf(ctx, p, file, &index);
    if (!read) ctx.ui.tell("Error importing file. Review results carefully.");
    ctx.project_dirty = true;
    return read;
}

}  // namespace velm
