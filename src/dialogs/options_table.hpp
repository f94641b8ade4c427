// The tables behind the Options dialogs: the entries of each dialog over the
// project header and the run limits, the settings keys they also go to, and
// the rules of each. Private to src/dialogs.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "dialogs/dialog_table.hpp"

namespace velm {

struct RunContext;

namespace dialog {

// What the Options dialogs edit: the project's header and the run limits.
struct OptionsState {
    Header gen;
    int max_iter = 20;
    double soserror = 0.001;
};

using Typed = std::vector<std::pair<std::string, std::string>>;

struct OptionsDef {
    const char* name;
    std::vector<FieldDef<OptionsState>> fields;
    // Entry name and the settings key it is kept under as well.
    std::vector<std::pair<std::string, std::string>> keys;
    // Texts on show that depend on the project (component names).
    void (*decorate)(RunContext&, const Project&, std::vector<DialogField>&) = nullptr;
    // A typed text that differs from the one on show, made into the text its field reads; "" or the message.
    std::string (*typed_in)(RunContext&, const Project&, std::string&) = nullptr;
    // Fields that follow the ones written, and what blank entries stand for.
    void (*finish)(OptionsState&, const OptionsState&, const Texts&) = nullptr;
    // The rules on the state as it would be written; "" when it may be.
    std::string (*rules)(const OptionsState& edited, const OptionsState& before, const Texts&) = nullptr;
};

const OptionsDef& defaults_options();
const OptionsDef& calcs_options();
const OptionsDef& cases_options();
const OptionsDef& title_options();
const OptionsDef& components_options();

}  // namespace dialog
}  // namespace velm
