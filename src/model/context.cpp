#include "model/context.hpp"

#include <fstream>

namespace velm {

void RunContext::log_error(const std::string& text) {
    if (!run_active) {
        ui.tell(text + "\r\nPress OK to resume.");
        return;
    }
    if (run_log_text.size() < kRunLogFlushChars) {
        run_log_text += "\r\n";
        run_log_text += text;
        return;
    }
    // The message that triggers the flush is dropped: the buffer goes to the
    // file and starts empty again.
    append_run_file("runlog.txt", run_log_text);
    run_log_text.clear();
}

bool RunContext::append_run_file(const std::string& name, std::string_view text) {
    const bool ok = append_text(run_file(name), text);
    if (!ok && write_error.empty()) write_error = run_file(name).string();
    return ok;
}

void RunContext::warn(const std::string& text) {
    log_error(text);
    case_warnings.push_back(text);
}

std::string RunContext::log_line() {
    const auto path = run_file("runlog.txt");
    append_run_file("runlog.txt", run_log_text);
    run_log_text.clear();
    std::string shown;
    std::ifstream in(path, std::ios::binary);
    std::string line;
    while (shown.size() < kRunLogFlushChars && std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        shown += line;
        shown += "\r\n";
    }
    return shown;
}

bool append_text(const std::filesystem::path& file, std::string_view text) {
    std::error_code ec;
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path(), ec);
    std::ofstream out(file, std::ios::binary | std::ios::app);
    if (!out) return false;
    out << text;
    return static_cast<bool>(out);
}

}  // namespace velm
