// The settings file Velm.ini: one section, "Defaults", of keys the user's
// choices keep from one start of the program to the next (window, defaults of
// a new project, colours, label flags, directories), and the paths with
// macros it names.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// The keys of section "Defaults" in the order they are read and written.
const std::vector<std::string>& settings_keys();

// The values of Velm.ini by key, each at most 128 characters; a key not in
// the file is not in values.
struct Settings {
    std::vector<std::pair<std::string, std::string>> values;
    const std::string* find(const std::string& key) const;
    void set(const std::string& key, std::string value);
};

// Reads the file in mode "once" (window place and directories) or "every"
// (the defaults of a new project: units, limits, methods, custom units,
// colours, label flags); the keys of the other mode are kept as read too.
// A file that is missing leaves settings empty; one that cannot be read
// tells "Error! Reading ini file failed." and leaves settings as they were.
bool ReadSettings(RunContext& ctx, const std::filesystem::path& file, const std::string& mode, Settings& settings);

// Writes every key held, in the documented order, as "[Defaults]" and
// "Key=Value" lines; "save" and "exit" write the same. False when the file
// cannot be written (told).
bool WriteSettings(RunContext& ctx, const std::filesystem::path& file, const std::string& mode,
                   const Settings& settings);

// The defaults of a new project that the settings hold, put into its header
// ("Units", "Patm", the methods, the sheet and report sizes).
void apply_project_defaults(const Settings& settings, Header& gen);

// The run limits the settings hold ("MaxIter", "soserror").
void apply_run_limits(const Settings& settings, RunContext& ctx);

// Where the settings live: $XDG_CONFIG_HOME/velm/Velm.ini, else
// ~/.config/velm/Velm.ini.
std::filesystem::path settings_file();

// A path with a leading macro resolved, ending with "/": "{app}" the
// program's directory, "{appdata}" $XDG_CONFIG_HOME, "{localappdata}"
// $XDG_DATA_HOME, "{commonappdata}" /var/lib, "{commondocuments}" the
// user's documents folder. Another "{...}" tells "Error! Invalid directory
// path variable." and the path stands unchanged.
std::string ExpandPath(RunContext& ctx, const std::string& path, const std::filesystem::path& app_dir);

// The folder with a final "/", every missing folder along it created. A
// failure tells "Error = " with its number and description, then "Folder: "
// and the folder, and returns the folder as given.
std::string MakePath(RunContext& ctx, const std::string& folder);

// The directories a project file names for its reader: the library directory
// (lib, or "(built in)" for the libraries compiled into the program), the
// settings folder and the folder of the run files, each ending with "/".
void set_project_dirs(Header& gen, const std::filesystem::path& lib, const std::filesystem::path& data_dir);

// Width and height of a sheet size name in twips ("A4 Landscape" for an
// unknown name; "Custom" keeps the given sizes unless one is 0).
std::pair<float, float> sheet_size(const std::string& name, float custom_width, float custom_height);

}  // namespace velm
