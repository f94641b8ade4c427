#include "model/settings.hpp"

#include <cmath>
#include <cstdlib>
#include <fstream>

#include "model/file_replace.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

constexpr std::size_t kMaxValue = 128;

// The keys read in mode "once": the window's place and the directories.
bool read_once(const std::string& key) {
    for (const char* k : {"Window", "Top", "Left", "Width", "Height", "gDirIni", "gDirData", "gDirLib"})
        if (key == k) return true;
    return false;
}

// The documented spelling of a key read in any case, or empty.
std::string known_key(std::string_view key) {
    for (const std::string& k : settings_keys())
        if (upper(k) == upper(trim(key))) return k;
    return "";
}

std::string home_dir() {
    const char* h = std::getenv("HOME");
    return h != nullptr ? h : "";
}

// An XDG base directory: the variable's value, else the fallback under $HOME.
std::string xdg(const char* variable, const char* fallback) {
    const char* v = std::getenv(variable);
    if (v != nullptr && *v != '\0') return v;
    return home_dir() + "/" + fallback;
}

std::string with_slash(std::string s) {
    if (s.empty() || s.back() != '/') s += '/';
    return s;
}

template <class T>
void take_number(const Settings& s, const char* key, T& field) {
    if (const std::string* v = s.find(key))
        if (const auto n = parse_number(*v)) field = static_cast<T>(*n);
}

void take_text(const Settings& s, const char* key, std::string& field) {
    if (const std::string* v = s.find(key)) field = *v;
}

}  // namespace

const std::vector<std::string>& settings_keys() {
    static const std::vector<std::string> keys = {
        "Window", "Top", "Left", "Width", "Height", "Units", "MaxIter", "soserror", "Patm", "DrawSize", "DrawMargin",
        "RptPaperSize", "RptPaperMargin", "RptFontSize", "PrinterDrawWidth", "MethodFit", "MethodCompFlow",
        "MethodTwoPhaseFlow", "MethodDenElev", "MethodDuklerHoldUp", "MethodDuklerF", "MethoddPAccel", "MethodVelSonic",
        "gHydrDamp", "MethodFlash", "FlashResume", "gXYDamp", "PPPMethod", "HysysMethod", "HysysView", "CustUnitsLen",
        "CustUnitsPres", "CustUnitsHead", "CustUnitsFlow", "CustUnitsFlowVol", "CustUnitsFlowVap", "CustUnitsID",
        "CustUnitsDen", "CustUnitsTemp", "CustUnitsVel", "CustUnitsdPL", "CustUnitsPower", "CustUnitsH", "CustUnitsS",
        "CustUnitsHW", "CustUnitsSW", "CustUnitsFlowMol", "ColourOnStart", "ColourOnEdit", "ColourOnError",
        "MethodFlashK", "MethodFlashH", "MethodOrificeDen", "MethodValveDen", "iCaseShow", "ViewTempIn", "ViewTempOut",
        "ViewPresIn", "ViewPresOut", "ViewLFIn", "ViewLFOut", "ViewTotDen", "ViewTotVisc", "ViewLiqDen", "ViewLiqVisc",
        "ViewVapDen", "ViewVapMw", "ViewVapVisc", "ViewVapZ", "ViewVapK", "ViewPipeDia", "ViewPipeSch", "ViewPipeLen",
        "ViewPipeK", "ViewPipeLD", "ViewPipeE", "ViewPipeSF", "ViewPipeElev", "ViewFlow", "ViewLiqVolFlow", "ViewVelIn",
        "ViewVelOut", "ViewVelAvg", "ViewdPL", "ViewPres", "ViewElev", "ViewdP", "ViewNPSH", "ViewCv", "ViewBeta",
        "ViewRegimes", "ViewLock", "ViewFT", "ViewRefLine", "ViewRe", "ViewdPperm", "gDirIni", "gDirData", "gDirLib",
    };
    return keys;
}

const std::string* Settings::find(const std::string& key) const {
    for (const auto& [k, v] : values)
        if (k == key) return &v;
    return nullptr;
}

void Settings::set(const std::string& key, std::string value) {
    if (value.size() > kMaxValue) value.resize(kMaxValue);
    for (auto& [k, v] : values)
        if (k == key) {
            v = std::move(value);
            return;
        }
    values.emplace_back(key, std::move(value));
}

bool ReadSettings(RunContext& ctx, const std::filesystem::path& file, const std::string& mode, Settings& settings) {
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) return true;
    std::ifstream in(file, std::ios::binary);
    if (!in || !std::filesystem::is_regular_file(file, ec)) {
        ctx.ui.tell("Error! Reading ini file failed.");
        return false;
    }
    Settings read;
    bool in_defaults = false;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string t = trim(line);
        if (t.empty() || t[0] == ';') continue;
        if (t[0] == '[') {
            in_defaults = upper(t) == "[DEFAULTS]";
            continue;
        }
        const std::size_t eq = t.find('=');
        if (!in_defaults || eq == std::string::npos) continue;
        const std::string key = known_key(t.substr(0, eq));
        if (key.empty()) continue;
        const bool wanted = mode == "once" ? read_once(key) : !read_once(key);
        if (wanted) read.set(key, trim(t.substr(eq + 1)));
    }
    if (in.bad()) {
        ctx.ui.tell("Error! Reading ini file failed.");
        return false;
    }
    for (auto& [k, v] : read.values) settings.set(k, v);
    return true;
}

bool WriteSettings(RunContext& ctx, const std::filesystem::path& file, const std::string&, const Settings& settings) {
    std::string text = "[Defaults]\r\n";
    for (const std::string& key : settings_keys())
        if (const std::string* v = settings.find(key)) text += key + "=" + *v + "\r\n";
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    std::string error;
    if (replace_file(file, text, error)) return true;
    ctx.ui.tell("Error! Writing ini file failed: " + error);
    return false;
}

void apply_project_defaults(const Settings& s, Header& g) {
    take_text(s, "Units", g.UNITS);
    take_number(s, "Patm", g.PATM);
    take_text(s, "DrawSize", g.DWGSTD);
    take_number(s, "DrawMargin", g.DWGMAR);
    take_text(s, "RptPaperSize", g.RPTSIZ1);
    take_number(s, "RptPaperMargin", g.RPTSIZ2);
    take_number(s, "RptFontSize", g.RPTSIZ4);
    take_number(s, "PrinterDrawWidth", g.PRTWID);
    take_text(s, "MethodFit", g.MFIT);
    take_text(s, "MethodCompFlow", g.MCOMP);
    take_text(s, "MethodTwoPhaseFlow", g.MTP);
    take_text(s, "MethodDenElev", g.MDELEV);
    take_text(s, "MethodDuklerHoldUp", g.MDUKHP);
    take_number(s, "MethodDuklerF", g.MDUKF);
    take_text(s, "MethoddPAccel", g.MACCEL);
    take_text(s, "MethodVelSonic", g.MSONIC);
    take_number(s, "gHydrDamp", g.MHDAMP);
    take_text(s, "MethodFlash", g.MFLASH);
    take_number(s, "FlashResume", g.MFLASHR);
    take_number(s, "gXYDamp", g.MXYDAMP);
    take_number(s, "PPPMethod", g.MPPP);
    take_text(s, "HysysMethod", g.MHYSYS);
    take_text(s, "MethodFlashK", g.MFLASHK);
    take_text(s, "MethodFlashH", g.MFLASHH);
    take_text(s, "MethodOrificeDen", g.MFODEN);
    take_text(s, "MethodValveDen", g.MCVDEN);
    take_number(s, "iCaseShow", g.CASEDLG);
    if (s.find("DrawSize") != nullptr) {
        const auto [w, h] = sheet_size(g.DWGSTD, g.DWGSIZ[1], g.DWGSIZ[2]);
        g.DWGSIZ[1] = w;
        g.DWGSIZ[2] = h;
    }
}

void apply_run_limits(const Settings& s, RunContext& ctx) {
    if (const std::string* v = s.find("MaxIter"))
        if (const auto n = parse_number(*v); n && *n >= 1 && *n <= 100000) ctx.max_iter = static_cast<int>(*n);
    if (const std::string* v = s.find("soserror"))
        if (const auto e = parse_number(*v); e && *e > 0 && std::isfinite(*e)) ctx.soserror = *e;
}

std::filesystem::path settings_file() {
    return std::filesystem::path(xdg("XDG_CONFIG_HOME", ".config")) / "velm" / "Velm.ini";
}

std::string ExpandPath(RunContext& ctx, const std::string& path, const std::filesystem::path& app_dir) {
    if (path.empty() || path[0] != '{') return path;
    const std::pair<const char*, std::string> macros[] = {
        {"{app}", app_dir.string()},
        {"{appdata}", xdg("XDG_CONFIG_HOME", ".config")},
        {"{localappdata}", xdg("XDG_DATA_HOME", ".local/share")},
        {"{commonappdata}", "/var/lib"},
        {"{commondocuments}", xdg("XDG_DOCUMENTS_DIR", "Documents")},
    };
    for (const auto& [macro, folder] : macros) {
        const std::string m = macro;
        if (path.compare(0, m.size(), m) != 0) continue;
        std::string rest = path.substr(m.size());
        while (!rest.empty() && (rest[0] == '/' || rest[0] == '\\')) rest.erase(0, 1);
        return with_slash(with_slash(folder) + rest);
    }
    ctx.ui.tell("Error! Invalid directory path variable.");
    return path;
}

std::string MakePath(RunContext& ctx, const std::string& folder) {
    const std::string with = with_slash(folder);
    std::error_code ec;
    std::filesystem::create_directories(with, ec);
    if (ec) {
        ctx.ui.tell("Error = " + std::to_string(ec.value()) + " : " + ec.message() + "\r\nFolder: " + folder);
        return folder;
    }
    return with;
}

std::pair<float, float> sheet_size(const std::string& name, float custom_width, float custom_height) {
    struct Size { const char* name; float w, h; };
    static constexpr Size kSizes[] = {
        {"A4 Landscape", 16837.0f, 11905.0f},     {"A3 Landscape", 23811.0f, 16837.0f},
        {"A2 Landscape", 33675.0f, 23811.0f},     {"Letter Landscape", 15840.0f, 12240.0f},
        {"11x17  Landscape", 24480.0f, 15840.0f}, {"17x22  Landscape", 31680.0f, 24480.0f},
    };
    if (name == "Custom" && custom_width != 0.0f && custom_height != 0.0f) return {custom_width, custom_height};
    for (const Size& s : kSizes)
        if (name == s.name) return {s.w, s.h};
    return {kSizes[0].w, kSizes[0].h};
}

void set_project_dirs(Header& gen, const std::filesystem::path& lib, const std::filesystem::path& data_dir) {
    const auto folder = [](const std::filesystem::path& d) {
        std::error_code ec;
        std::string s = std::filesystem::absolute(d, ec).lexically_normal().string();
        if (s.empty() || s.back() != '/') s += '/';
        return s;
    };
    gen.DIRLIB = lib.empty() ? "(built in)" : folder(lib);
    gen.DIRINI = folder(settings_file().parent_path());
    gen.DIRDAT = folder(data_dir);
}

}  // namespace velm
