// The component library in its dialog: a record shown by its labels, a
// changed field stored in the library file after the user's yes and in no
// other byte, nothing stored after a no, and the refusals in their words.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "dialogs/dialogs.hpp"
#include "model/context.hpp"
#include "model/embedded.hpp"
#include "model/project_file.hpp"
#include "model/records.hpp"
#include "tests/test_support.hpp"
#include "thermo/components.hpp"

namespace velm {
namespace {

constexpr int kWater = 10;

std::string file_bytes(const std::filesystem::path& f) {
    std::ifstream in(f, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A library folder holding copies of the built-in libraries, named by VELM_LIB for the test.
struct LibraryDialog : ::testing::Test {
    std::filesystem::path dir = scratch_dir("library_dialog");
    RecordingInteraction ui;
    RunContext ctx{ui};
    Project p;

    void SetUp() override {
        for (const char* name : {"propa.lib", "prophys.lib", "propkij.lib"}) {
            std::ofstream out(dir / name, std::ios::binary);
            const std::string_view bytes = embedded_file(name);
            out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        }
        ::setenv("VELM_LIB", dir.c_str(), 1);
        NewProject(p);
        p.gen.MFLASH = "Velm";
    }
    void TearDown() override { ::unsetenv("VELM_LIB"); }

    static std::string text_of(const Dialog& d, const std::string& name) {
        for (const DialogField& f : d.fields)
            if (f.name == name) return f.text;
        return "(none)";
    }
};

TEST_F(LibraryDialog, StoresAChangedFieldAfterYesAndInNoOtherByte) {
    const auto d = load_library_dialog(ctx, p, kWater);
    ASSERT_TRUE(d.has_value());
    EXPECT_EQ(d->form, "Edit library");
    EXPECT_EQ(text_of(*d, "Name"), "Water");
    const std::string before = file_bytes(dir / "propa.lib");
    EXPECT_EQ(d->fields[0].choices.size(), before.size() / kPropaRecordBytes);  // every record by name

    ui.answers = {1};  // no
    EXPECT_EQ(apply_library_dialog(ctx, ui, p, kWater, {{"TC", "650"}}), "");
    EXPECT_EQ(ui.asked.back(), "Update library with new value ?");
    EXPECT_EQ(file_bytes(dir / "propa.lib"), before);

    ui.answers = {0};  // yes (the next question)
    ui.default_answer = 0;
    EXPECT_EQ(apply_library_dialog(ctx, ui, p, kWater, {{"TC", "650"}}), "");
    const std::string after = file_bytes(dir / "propa.lib");
    ASSERT_EQ(after.size(), before.size());
    std::size_t first = 0, last = 0, changed = 0;
    for (std::size_t i = 0; i < after.size(); ++i)
        if (after[i] != before[i]) {
            if (changed++ == 0) first = i;
            last = i;
        }
    // TC is the fourth float of record 10, bytes 56 + 12 to 56 + 15.
    const std::size_t tc = (kWater - 1) * kPropaRecordBytes + 56 + 12;
    EXPECT_GE(first, tc);
    EXPECT_LE(last, tc + 3);
    CompLibrary lib;
    lib.dir = dir;
    CompProp c;
    GetComp(ctx, lib, kWater, c);
    EXPECT_EQ(c.TC, 650.0f);
    EXPECT_EQ(c.Name, "Water");
    EXPECT_EQ(text_of(*load_library_dialog(ctx, p, kWater), "TC"), "650");
}

// Record 1 holds the count of records in its Number: a change to it stays in record 1.
TEST_F(LibraryDialog, TheFirstRecordIsWrittenInItsOwnPlace) {
    const std::string before = file_bytes(dir / "propa.lib");
    ui.default_answer = 0;
    ASSERT_EQ(apply_library_dialog(ctx, ui, p, 1, {{"Formula", "XX"}}), "");
    const std::string after = file_bytes(dir / "propa.lib");
    ASSERT_EQ(after.size(), before.size());
    EXPECT_NE(after.substr(0, kPropaRecordBytes), before.substr(0, kPropaRecordBytes));
    EXPECT_EQ(after.substr(kPropaRecordBytes), before.substr(kPropaRecordBytes));
    EXPECT_EQ(after.substr(0, 4), before.substr(0, 4));  // the count stays
}

TEST_F(LibraryDialog, RefusesWithItsWords) {
    struct Row {
        const char* what;
        void (*prepare)(Project&);
        std::vector<std::pair<std::string, std::string>> typed;
        std::string says;
    };
    const Row rows[] = {
        {"a value that is no number", nullptr, {{"MW", "eighteen"}}, "Error in updating props = 13 : Type mismatch"},
        {"an engine without a library", [](Project& q) { q.gen.MFLASH = "PPP"; }, {{"MW", "18"}},
         "Error! Flash method does not support this operation."},
        {"the built-in libraries", [](Project&) { ::unsetenv("VELM_LIB"); }, {{"MW", "18"}},
         "Error in updating props = the libraries are built into the program; name a folder of libraries in VELM_LIB "
         "to change one."},
    };
    const std::string before = file_bytes(dir / "propa.lib");
    for (const Row& r : rows) {
        SCOPED_TRACE(r.what);
        Project q = p;
        if (r.prepare) r.prepare(q);
        EXPECT_EQ(apply_library_dialog(ctx, ui, q, kWater, r.typed), r.says);
        EXPECT_EQ(file_bytes(dir / "propa.lib"), before);
    }
    EXPECT_FALSE(library_supported([] {
        Project q;
        NewProject(q);
        q.gen.MFLASH = "PPP";
        return q;
    }()));
}

}  // namespace
}  // namespace velm
