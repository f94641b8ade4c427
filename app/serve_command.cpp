#include "app/serve_command.hpp"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "app/commands.hpp"
#include "app/console.hpp"
#include "server/web_server.hpp"

namespace velm {

namespace {

std::atomic<int> g_interrupts{0};

extern "C" void on_interrupt(int) { g_interrupts.fetch_add(1); }

// Opens the page in the user's browser when the desktop offers a way to.
void open_browser(const std::string& url) {
    if (std::system("command -v xdg-open >/dev/null 2>&1") != 0) return;
    const std::string cmd = "xdg-open '" + url + "' >/dev/null 2>&1 &";
    if (std::system(cmd.c_str()) != 0) std::cerr << "velm: could not open a browser; open the address above.\n";
}

// Ctrl+C with unsaved changes is told once; a second one ends the program.
void watch_interrupts(Session& session, WebServer& server) {
    int told = 0;
    while (!server.exit_requested()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const int n = g_interrupts.load();
        if (n == told) continue;
        bool dirty = false;
        {
            std::lock_guard<std::mutex> g(session.lock);
            dirty = session.dirty();
        }
        if (dirty && told == 0) {
            std::cerr << "\nThe project has unsaved changes: save them from the page (File > Save), or press Ctrl+C "
                         "again to quit without saving.\n";
            told = n;
            continue;
        }
        if (session.run_active()) {
            std::lock_guard<std::mutex> g(session.lock);
            nlohmann::json reply;
            RecordingInteraction io;
            session.command(io, "mnuRunSimStop", nlohmann::json::object(), reply);
        }
        server.stop();
        return;
    }
}

int command_serve(const ServeOptions& opt) {
    const std::filesystem::path data_dir = opt.out.empty() ? default_data_dir() : std::filesystem::path(opt.out);
    Session session(
        [](RunContext& ctx, Project& p, const std::string& file) { return load_project(ctx, p, file); }, data_dir);
    ReadOptions read;
    ConsoleInteraction ui(read);
    if (!opt.project.empty() && !std::filesystem::exists(opt.project)) {
        std::cerr << "velm: " << opt.project << " does not exist.\n";
        return 2;
    }
    if (!session.start(ui, opt.project)) return 2;
    WebServer server(session, new_token());
    if (server.bind(opt.port) < 0) {
        std::cerr << "velm: cannot listen on 127.0.0.1:" << opt.port << " (in use?).\n";
        return 2;
    }
    std::cout << "Velm is at " << server.url() << std::endl;
    std::cout << "Run log and reports: " << data_dir.string() << "\nPress Ctrl+C to stop." << std::endl;
    if (!opt.no_browser) open_browser(server.url());
    std::signal(SIGINT, on_interrupt);
    std::signal(SIGTERM, on_interrupt);
    std::thread watcher(watch_interrupts, std::ref(session), std::ref(server));
    server.listen();
    g_interrupts.fetch_add(2);
    watcher.join();
    session.join_run();
    return 0;
}

}  // namespace

ServeCommand::ServeCommand(CLI::App& app) {
    cmd_ = app.add_subcommand("serve", "Open the flowsheet in the browser: the page and its API on 127.0.0.1");
    cmd_->add_option("project", opt_.project, "Project file (.vdf) to open");
    cmd_->add_option("--port", opt_.port, "Port to listen on (default: a free one)")->check(CLI::Range(0, 65535));
    cmd_->add_flag("--no-browser", opt_.no_browser, "Do not open a browser; only print the address");
    cmd_->add_option("--out", opt_.out, "Directory of runlog.txt and the reports");
}

std::optional<int> ServeCommand::run() const {
    if (!*cmd_) return std::nullopt;
    return command_serve(opt_);
}

}  // namespace velm
