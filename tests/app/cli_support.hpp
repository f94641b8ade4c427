// Runs the built velm executable as a user would, for the command line tests.
#pragma once

#include "tests/test_support.hpp"

#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace velm::test {

namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string out;  // standard output
    std::string err;  // standard error
    std::string text() const { return out + err; }
};

inline std::string slurp(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    fs::remove(file);
    return s.str();
}

// Runs velm with the arguments (as a shell would split them) in dir, whose
// velm/Velm.ini is the settings file (so that the user's own never counts).
inline Outcome velm(const std::string& args, const fs::path& dir) {
    const fs::path out = dir / "console.txt";
    const fs::path err = dir / "console_err.txt";
    const std::string cmd = std::string("cd '") + dir.string() + "' && XDG_CONFIG_HOME='" + dir.string() + "' '" +
                            VELM_EXE + "' " + args + " > '" + out.string() + "' 2> '" + err.string() + "'";
    const int raw = std::system(cmd.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, slurp(out), slurp(err)};
}

// An empty directory of that name under the system's temporary directory.
inline fs::path fresh_dir(const std::string& name) {
    return scratch_dir("cli_" + name);
}

}  // namespace velm::test
