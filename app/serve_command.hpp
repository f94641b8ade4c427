// velm serve: the flowsheet in the browser, one process holding one project.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

namespace velm {

struct ServeOptions {
    std::string project;
    int port = 0;
    bool no_browser = false;
    std::string out;
};

class ServeCommand {
public:
    explicit ServeCommand(CLI::App& app);
    std::optional<int> run() const;

private:
    CLI::App* cmd_;
    ServeOptions opt_;
};

}  // namespace velm
