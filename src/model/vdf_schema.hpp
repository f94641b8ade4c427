// The keys of the project file as data: for each section, its keys in the
// order they are written, and for each key the typed values on its line. The
// reader and the writer both walk these tables, so a key is described once.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "model/items.hpp"
#include "model/records.hpp"

namespace velm {

struct RunContext;

enum class Kind {
    Text,       // quoted text
    FixedBoth,  // fixed-width text, trimmed both sides on writing, padded on reading
    FixedRight, // fixed-width text, trimmed on the right on writing
    Notes,      // quoted text with <CRLF> and <CHR34> escapes
    Case,       // case string, numbers read with the neutral mode
    CaseMode,   // case string, numbers read with the mode chosen for the file's version
    Int,        // integer or long
    Single,
    Double,
    SingleZero, // a single kept on reading, written as 0 (old end point of a polyline)
    Word,       // a unit word: written as it stands, discarded on reading
    Literal,    // a bare item written as it stands, discarded on reading
};

template <class R>
struct Slot {
    Kind kind;
    std::string* (*s)(R&) = nullptr;
    double* (*d)(R&) = nullptr;
    float* (*f)(R&) = nullptr;
    int* (*i)(R&) = nullptr;
    const char* word = nullptr;
    int width = 0;
};

// What the reader needs while it reads one key's values.
struct ReadState {
    ItemReader& in;
    RunContext& ctx;
    int chosen_mode;  // -2, or -3 for an old file of a decimal-comma locale
};

// Writes the head of a record line ("\SECTION",index,"KEY") and the values after it.
struct LineWriter {
    ItemWriter& w;
    RunContext& ctx;
    std::string_view section;
    int index;
    void begin(std::string_view key) {
        w.text(section);
        w.integer(index);
        w.text(key);
    }
};

template <class R>
struct KeyDef {
    const char* key;
    std::vector<Slot<R>> slots;
    // Keys whose line has another shape (one line per port, per pipe size,
    // keys of old files) read and write themselves.
    void (*read)(ReadState&, R&) = nullptr;
    void (*write)(LineWriter&, const R&) = nullptr;
    bool written = true;  // false: a key of old files, read only
};

// Called for each case string of a record that holds text: its record number, its tag
// (NAME[1], "" for a kind without one), the key of its line and its text.
using CaseTextVisitor =
    std::function<void(int index, std::string_view tag, std::string_view key, std::string_view text)>;

// A section of records of one kind (element 0 the template).
class SectionIO {
public:
    virtual ~SectionIO() = default;
    virtual std::string_view name() const = 0;
    virtual bool is_record_section() const { return true; }
    virtual int count(const Project& p) const = 0;
    // Sets the count from a NUM line, growing the array from the template.
    virtual void set_count(Project& p, int n) const = 0;
    virtual bool knows(std::string_view key) const = 0;
    // Every key the section reads, NUM aside.
    virtual std::vector<std::string_view> keys() const = 0;
    virtual void read_key(ReadState& st, Project& p, int index, std::string_view key) const = 0;
    virtual void write(ItemWriter& w, RunContext& ctx, const Project& p) const = 0;
    // Memory one more record of the section takes: its size and its template's texts.
    virtual std::size_t record_bytes(const Project&) const { return 0; }
    // Visits the case strings of the records in use (1..N) that are not empty.
    virtual void each_case_text(const Project&, const CaseTextVisitor&) const {}
};

// The sections in the order they are written: \GEN first, \PIPEDATA last.
const std::vector<const SectionIO*>& vdf_sections();
const SectionIO* find_section(std::string_view name);

// Text escapes of NOTES and symbol texts.
std::string escape_notes(std::string_view s);
std::string unescape_notes(std::string_view s);

}  // namespace velm
