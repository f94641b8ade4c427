// The equipment dialogs as data: every entry of a kind's dialog with its
// label, check, unit, hint and text on show, and the OK that checks the
// typed texts, applies the rules of the kind and only then writes the record.
// A page draws a dialog from its description; no dialog is code of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/units.hpp"

namespace velm {

struct RunContext;
struct Project;
class Interaction;

// One entry of a dialog.
struct DialogField {
    std::string name;        // the record's file key and position, e.g. "PIN", "TEMP1", "NAME1", "CURQ3"
    std::string label;       // what the page writes beside it ("Inlet pressure")
    std::string check;       // the CheckInput kind ("Pres", "Temp", "Elev", "Ratio", ... or "" for free text)
    std::string unit_class;  // quantity of its unit box ("pressure", "length", "temperature", ... or "")
    std::string unit;        // the display unit it is shown in (from DisplayUnits, or a fixed word such as "rpm")
    std::string hint;        // the help-line text, exact words
    std::string tab;         // tab of the dialog ("General", "Curve", ...)
    bool pair = false;       // a specified/calculated pair: text is the case string, calculated the value in force
    std::string text;        // text on show
    std::string calculated;  // value in force (position 2) on show, for pairs
    int width = 0;           // most characters the entry holds (fixed-width texts), 0 for any
    std::vector<std::string> choices;  // for fixed lists (valve TYPE2, pipe schedule...), empty otherwise
    bool readonly = false;   // a calculated value: shown, not typed, never written by OK
};

struct Dialog {
    std::string form;  // "frmValve", ...
    std::string kind;  // "Valve", ...
    int index = 0;
    std::vector<DialogField> fields;
};

// A field of a dialog with no record table behind it (a drawing object, a
// pseudo component, a library record, an icon): name, label, tab and text on show.
DialogField plain_field(std::string name, std::string label, std::string tab, std::string text);

// What an OK was given for a field: the text typed for its name, else its text on show.
const std::string& typed_text(const std::vector<std::pair<std::string, std::string>>& texts, const DialogField& f);

// The dialog of record `index` (1..count) of `kind` ("Feed", "Prod", "Line", "Valve", "Check", "Pump", "Comp",
// "FO", "HX", "Misc", "Expand", "Tee", "Junc", "Vessel"), texts on show in the display units `units`. Nothing
// for an unknown kind or a record that does not exist.
std::optional<Dialog> load_dialog(RunContext& ctx, const Project& p, const DisplayUnits& units, std::string_view kind,
                                  int index);

// OK of the dialog: every entry checked by CheckInput in the dialog's order (the first bad one's message is
// returned), then the name's uniqueness among the records of the kind, then the rules of the kind; only then
// are the fields written in internal units, position 2 of the pairs left as the run wrote it. `texts` maps
// names to typed texts; a field not given, or given its text on show, keeps the record's value as it stands.
// Returns "" on success (the project changed and marked dirty), else the message and the project untouched.
std::string apply_dialog(RunContext& ctx, Project& p, const DisplayUnits& units, std::string_view kind, int index,
                         const std::vector<std::pair<std::string, std::string>>& texts);

// The units a dialog's unit box offers for a quantity ("pressure", "length",
// "temperature", ...), each one the conversions know; empty for another.
std::vector<std::string> unit_choices(std::string_view unit_class);
// Shows the quantity in that unit; false (nothing changed) for a unit the box
// does not offer.
bool set_class_unit(DisplayUnits& units, std::string_view unit_class, const std::string& unit);
// An entry's text (a number or a case string; letters and empty entries kept)
// from one unit of the quantity to another, as a unit box converts the text on show.
std::string convert_entry(RunContext& ctx, const std::string& text, std::string_view unit_class, const std::string& from,
                          const std::string& to);

// The fluid dialog of line `index` (kind "Phase", frmPhase): its fluid's
// source, each end's flash type, state and phase properties, and the
// composition by the names of the project's components. Its OK is
// apply_dialog of kind "Phase".
std::optional<Dialog> load_phase_dialog(RunContext& ctx, const Project& p, const DisplayUnits& units, int index);
// The dialog's Flash: the typed texts applied as OK applies them, then the
// inlet (and the outlet, when held apart) flashed at its flash type with the
// project's engine, traced to the run log, the results written to that end.
// `p` is the caller's copy for the dialog to show; "" on success, else the
// words of the refusal or of the failed flash.
std::string flash_phase_dialog(RunContext& ctx, Project& p, const DisplayUnits& units, int index,
                               const std::vector<std::pair<std::string, std::string>>& texts);

// The component library of the project's flash engine ("Edit library"), record
// `number`: the record's fields by their labels (a prophys.lib record: name,
// formula and mole weight), each with "Hit ENTER to store new value.", and the
// library's components as the choices of COMPONENT. Nothing for an engine
// without a library of its own (library_supported false) or a number beyond it.
bool library_supported(const Project& p);
std::optional<Dialog> load_library_dialog(RunContext& ctx, const Project& p, int number);
// Stores the changed fields in the library file after "Update library with new
// value ?"; "" (also after a no), or "Error in updating props = " and why.
// No other check is made of the values ("Note, no error checking is done.").
std::string apply_library_dialog(RunContext& ctx, Interaction& io, const Project& p, int number,
                                 const std::vector<std::pair<std::string, std::string>>& texts);

// The icon dialog: the drawing table of an icon slot (a kind and form, as
// icon_slot numbers them) row by row (command, X, Y in twips), and "Default
// icon". Its OK checks every entry, demands the corners in rows 0 and 1, and
// keeps the table in the project in place of the default (Yes to "Default
// icon" drops it). selected_icon_slot: the slot of the first selected item
// that has an icon, or -1.
int selected_icon_slot(const Project& p);
std::optional<Dialog> load_icon_dialog(const Project& p, int slot);
std::string apply_icon_dialog(Project& p, int slot, const std::vector<std::pair<std::string, std::string>>& texts);

// The dialog of free drawing object `index` (Symbol): shape, text, font size
// factor and pen; and its OK (the text without double quotes, a size from
// above 0 to 100), "" or the words of the refusal with nothing changed.
std::optional<Dialog> load_symbol_dialog(const Project& p, int index);
std::string apply_symbol_dialog(Project& p, int index, const std::vector<std::pair<std::string, std::string>>& texts);

// The dialog of pseudo component `index`: name, formula and the entered
// properties (normal boiling point and standard liquid density required)
// beside the estimates; its OK checks, writes the entered half and estimates
// the other anew. add_pseudo appends one from the template, numbered 9000 + n.
std::optional<Dialog> load_pseudo_dialog(const Project& p, int index);
std::string apply_pseudo_dialog(RunContext& ctx, Project& p, int index,
                                const std::vector<std::pair<std::string, std::string>>& texts);
int add_pseudo(Project& p);
// Removes pseudo component `index` unless the project's component list uses
// it ("Cannot delete pseudo component. Remove from project component list
// first."); the later ones take the numbers one lower, in the list too.
std::string delete_pseudo(Project& p, int index);
// The names of the pseudo components, 1 to n in order.
std::vector<std::string> pseudo_names(const Project& p);

// The forms of the user equations that the page shows beside the equation entries of a "Line", "Feed" or
// "Prod" dialog; empty for the other kinds.
std::vector<std::string> equation_forms(std::string_view kind);

}  // namespace velm
