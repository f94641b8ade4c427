// The thermodynamic commands of velm:
//
//   velm flash --comp NAME[,NAME...] --z F[,F...] --type TP|PF|TF|PH|PS
//              [--T VALUE [UNIT]] [--P VALUE [UNIT]] [--LF F] [--H kJ/kg] [--S kJ/kg/K]
//              [--kvalue SRK|ANTOINE] [--enthalpy SRK|IDEAL|WS97] [--json]
//   velm components [TEXT]
//
// flash runs one flash of the program's own engine with the methods of a new
// project (unless the flags name others) and prints its results block, or
// every field of the stream as JSON. components lists the component library.
// Exit status: 0 success; 1 the flash failed, or no component matches TEXT;
// 2 bad input (with a message, nothing flashed).
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace velm {

struct FlashOptions {
    std::vector<std::string> comp;  // library names or numbers, each entry possibly comma-separated
    std::vector<double> z;          // mole fractions in the order of comp
    std::string type = "TP";        // TP, PF, TF, PH or PS
    std::vector<std::string> T;     // value and optional unit word (K when none)
    std::vector<std::string> P;     // value and optional unit word (kPa absolute when none)
    double LF = 0.0;                // liquid weight fraction
    double H = 0.0;                 // kJ/kg
    double S = 0.0;                 // kJ/kg/K
    std::vector<std::string> given;  // which of T, P, LF, H, S the command line set
    std::string kvalue;             // empty: the method of a new project
    std::string enthalpy;           // empty: the method of a new project
    std::string project;            // a project whose methods and pseudo components the flash takes
    bool json = false;
};

int command_flash(const FlashOptions& opt);
int command_components(const std::string& filter);

// Adds the flash and components commands to the velm command; after parsing,
// run() gives the exit status of the one that was called, or nothing when
// neither was. Holds the parsed options, so it stays where it was made.
class ThermoCommands {
public:
    explicit ThermoCommands(CLI::App& app);
    ThermoCommands(const ThermoCommands&) = delete;
    ThermoCommands& operator=(const ThermoCommands&) = delete;
    std::optional<int> run();

private:
    FlashOptions flash_;
    std::string filter_;
    CLI::App* flash_cmd_ = nullptr;
    CLI::App* components_cmd_ = nullptr;
};

}  // namespace velm
