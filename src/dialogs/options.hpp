// The dialogs of the Options menu as data: the project's defaults, methods,
// cases, title block and component list, and the templates of every kind,
// each with the OK that checks the typed texts before anything changes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialogs/dialogs.hpp"

namespace velm {

struct RunContext;
struct Project;
struct Settings;

// The dialog of an Options command, texts on show in the display units `units`:
//   "mnuOptionsDef"    units set, iteration limit and convergence error (those in force in ctx),
//                      atmospheric pressure, sheet size and margin, grid, report paper and printer width;
//   "mnuOptionsCalcs"  the calculation methods, each with its list of choices;
//   "mnuOptionsCases"  cases to run, their descriptions and report codes, the case dialog flag;
//   "mnuOptionsTitle"  the lines of the title block, each with its width;
//   "mnuOptionsKomp"   the component list COMP1..COMP30 shown by name, the library's names as choices;
//   "mnuOptionsLines", "mnuOptionsFeeds", "mnuOptionsProducts", "mnuOptionsValves", "mnuOptionsChecks",
//   "mnuOptionsPumps", "mnuOptionsComp", "mnuOptionsFO", "mnuOptionsHX", "mnuOptionsMisc", "mnuOptionsExpand",
//   "mnuOptionsTee", "mnuOptionsSplit", "mnuOptionsVessels"
//                      the equipment dialog of the kind's template record (index 0).
// Nothing for another name.
std::optional<Dialog> load_options_dialog(RunContext& ctx, const Project& p, const Settings& s,
                                          const DisplayUnits& units, std::string_view name);

// OK of an Options dialog: every entry checked by CheckInput in the dialog's order, then the entries with a
// fixed list against it, then the rules of the dialog; only then is anything written. `texts` maps names to
// typed texts; a field not given, or given its text on show, keeps its value. The defaults and the methods
// also go to the settings under their keys ("Units", "MaxIter", "soserror", "Patm", "DrawSize", "MethodFit",
// ...), those entries alone that changed; the iteration limit and convergence error go to ctx. After a new
// units set the caller sets its display units again. Returns "" on success (the project marked dirty), else
// the message with the project, the settings and ctx untouched.
std::string apply_options_dialog(RunContext& ctx, Project& p, Settings& s, const DisplayUnits& units,
                                 std::string_view name,
                                 const std::vector<std::pair<std::string, std::string>>& texts);

}  // namespace velm
