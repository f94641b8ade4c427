// Writing a project file: the version line, then every section in fixed order.
#include <fstream>
#include <random>

#include "model/context.hpp"
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
    const std::string bytes = WriteVdf(ctx, project);
    std::filesystem::path tmp = file;
    tmp += ".tmp" + std::to_string(std::random_device{}() % 100000);
    auto fail = [&](const std::string& what) {
        std::error_code ec;
        std::filesystem::remove(tmp, ec);
        ctx.ui.tell("Error writing file = 75 : Path/File access error (" + what + "). Press OK to clear.");
        return false;
    };
    {
        std::ofstream out(tmp, std::ios::binary | std::ios::trunc);
        if (!out) return fail(tmp.string());
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) return fail(tmp.string());
    }
    std::error_code ec;
    std::filesystem::rename(tmp, file, ec);
    if (ec) return fail(file.string() + ": " + ec.message());
    return true;
}

}  // namespace velm
