// Writing a project file: the version line, then every section in fixed order.
#include "model/context.hpp"
#include "model/fault.hpp"
#include "model/file_replace.hpp"
#include "model/items.hpp"
#include "model/project_file.hpp"
#include "model/vdf_schema.hpp"

namespace velm {

std::string WriteVdf(RunContext& ctx, const Project& project) {
    ItemWriter w;
    w.text("VELM_3.2");
    w.end_line();
    for (const SectionIO* s : vdf_sections()) s->write(w, ctx, project);
    return w.bytes();
}

bool save_vdf(RunContext& ctx, const Project& project, const std::filesystem::path& file) {
    std::string error;
    try {
        if (replace_file(file, WriteVdf(ctx, project), error)) return true;
    } catch (const Fault& f) {
        error = file.string() + ": " + fault_text(f);
    }
    ctx.ui.tell("Error writing file = 75 : Path/File access error (" + error + "). Press OK to clear.");
    return false;
}

}  // namespace velm
