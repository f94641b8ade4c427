// The commands of the velm program. Each returns the exit status: 0 success
// (every case converged), 1 a case did not converge or no solution was
// reached, 2 bad usage or an unreadable file (nothing written).
#pragma once

#include <string>

namespace velm {

struct ReadOptions {
    bool european = false;  // answer of the decimal-comma question for old files
};

struct RunOptions {
    std::string project;
    std::string out;
    std::string save;
    bool in_place = false;
    bool resume = false;
    std::string mode = "hydraulics";
    ReadOptions read;
};

int command_run(const RunOptions& opt);
int command_check(const std::string& project, const ReadOptions& opt);
int command_new(const std::string& file);

}  // namespace velm
