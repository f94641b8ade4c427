#include "server/session.hpp"

#include <algorithm>

#include "correlations/compressor.hpp"
#include "correlations/pump.hpp"
#include "dialogs/dialogs.hpp"
#include "dialogs/options.hpp"
#include "drawing/edit_ops.hpp"
#include "drawing/layout.hpp"
#include "model/case_data.hpp"
#include "model/file_replace.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "server/sheet_json.hpp"
#include "solver/run.hpp"
#include "thermo/components.hpp"

namespace velm {

namespace {

// Edits that can be undone, at most.
constexpr std::size_t kUndoDepth = 30;

// The run's interaction layer: every message and status line goes to the
// live log that the page reads while the run goes on.
class RunInteraction : public Interaction {
public:
    RunInteraction(std::mutex& lock, std::vector<std::string>& log) : lock_(lock), log_(log) {}
    void tell(const std::string& text) override { add(text); }
    int ask(const std::string& question, const std::vector<std::string>&) override {
        add(question + " Yes");
        return 0;
    }
    void status(const std::string& text) override { add(text); }

private:
    void add(const std::string& text) {
        std::lock_guard<std::mutex> g(lock_);
        log_.push_back(text);
    }
    std::mutex& lock_;
    std::vector<std::string>& log_;
};

}  // namespace

int RequestInteraction::ask(const std::string& question, const std::vector<std::string>& choices) {
    asked.push_back(question);
    if (next_ < answers_.size()) return answers_[next_++];
    throw NeedAnswer{question, choices};
}

Session::Session(ProjectLoader loader, std::filesystem::path data_dir)
    : loader_(std::move(loader)), data_dir_(std::move(data_dir)) {}

Session::~Session() { join_run(); }

void Session::join_run() {
    if (run_thread_.joinable()) run_thread_.join();
}

std::string Session::title() const {
    return file_.empty() ? "VELM - Hydraulics" : "VELM - [" + file_.string() + "]";
}

bool Session::start(Interaction& io, const std::string& file) {
    RunContext ctx(io);
    NewProject(project_);
    ReadSettings(ctx, settings_file(), "once", settings_);
    ReadSettings(ctx, settings_file(), "every", settings_);
    apply_project_defaults(settings_, project_.gen);
    view_ = view_flags(settings_);
    ReadPipeLib(ctx, project_.pipedata, {});
    std::error_code ec;
    std::filesystem::create_directories(data_dir_, ec);
    // Reports do not survive from one start of the program to the next.
    for (const char* name : {"resulth.rtf", "runlog.txt", "resultm.rtf"}) std::filesystem::remove(data_dir_ / name, ec);
    bool ok = true;
    if (!file.empty() && std::filesystem::exists(file, ec)) ok = open(io, file);
    else if (!file.empty()) io.tell("File not found: " + file);
    refresh_after_load();
    return ok;
}

void Session::refresh_after_load() {
    set_project_dirs(project_.gen, library_dir_from_environment(), data_dir_);
    SetUnits(units_, project_.gen);
    if (needs_layout(project_)) AutoLayout(project_);
    state_ = DrawState{};
    undo_.clear();
    redo_.clear();
    spec_text_.clear();
}

bool Session::open(Interaction& io, const std::string& file) {
    RunContext ctx(io);
    Project p;
    if (!loader_(ctx, p, file)) return false;
    project_ = std::move(p);
    std::error_code ec;
    file_ = std::filesystem::absolute(file, ec);
    for (const char* name : {"resulth.rtf", "runlog.txt"}) std::filesystem::remove(data_dir_ / name, ec);
    refresh_after_load();
    return true;
}

bool Session::save(Interaction& io, const std::string& file) {
    RunContext ctx(io);
    if (!save_vdf(ctx, project_, file)) {
        io.tell("Error! In File Save = " + file);
        return false;
    }
    std::error_code ec;
    file_ = std::filesystem::absolute(file, ec);
    state_.ProjectDirty = false;
    return true;
}

// "Save changes before closing ?": Yes saves, Cancel ends the command (false).
bool Session::ask_save_changes(Interaction& io) {
    if (!state_.ProjectDirty) return true;
    const int a = io.ask("Save changes before closing ?", {"Yes", "No", "Cancel"});
    if (a == 2) return false;
    if (a == 0) {
        if (file_.empty()) {
            io.tell("Error! Saving File As = the project has no file name yet.");
            return false;
        }
        return save(io, file_.string());
    }
    return true;
}

nlohmann::json Session::sheet(const std::string& label_mode) {
    DrawState st = state_;
    if (!label_mode.empty()) st.LabelMode = label_mode == "None" ? "" : label_mode;
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    const std::string mode = st.LabelMode;
    LabelPainter painter = [&](Surface& s, ItemRef r, float x, float y) {
        DrawLabels(s, ctx, project_, units_, view_, kind_name(r.kind), r.index, mode, x, y, 1.0f,
                   project_.color_normal);
    };
    LabelRowsOf rows = [&](ItemRef r) {
        if (mode.empty()) return std::vector<std::string>{};
        return LabelRows(ctx, project_, units_, view_, kind_name(r.kind), r.index, mode);
    };
    nlohmann::json j = drawing_on_ ? sheet_items_json(project_, st, painter, rows)
                                   : nlohmann::json{{"sheet", nlohmann::json::array()}, {"items", nlohmann::json::array()}};
    const float w = project_.gen.DWGSIZ[1] > 0 ? project_.gen.DWGSIZ[1] : 16837.0f;
    const float h = project_.gen.DWGSIZ[2] > 0 ? project_.gen.DWGSIZ[2] : 11905.0f;
    j["title"] = title();
    j["size"] = {w, h};
    j["labelMode"] = st.LabelMode;
    j["drawAction"] = state_.DrawAction;
    j["dirty"] = state_.ProjectDirty;
    j["runActive"] = running_.load();
    j["drawing"] = drawing_on_;
    j["undo"] = !undo_.empty();
    j["redo"] = !redo_.empty();
    j["status"] = {{"lblHelp", state_.status},
                   {"lblUnits", "Units: " + project_.gen.UNITS},
                   {"lblCase", "Case: " + project_.gen.CASENO},
                   {"lblSpec", spec_text_}};
    return j;
}

nlohmann::json Session::item_card(const std::string& kind, int index) {
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    return {{"kind", kind}, {"index", index}, {"rows", LabelRows(ctx, project_, units_, view_, kind, index, "Result")}};
}

namespace {

nlohmann::json dialog_json(const Dialog& d) {
    nlohmann::json fields = nlohmann::json::array();
    nlohmann::json boxes = nlohmann::json::object();
    for (const DialogField& f : d.fields)
        if (!f.unit_class.empty() && !boxes.contains(f.unit_class))
            boxes[f.unit_class] = {{"unit", f.unit}, {"choices", unit_choices(f.unit_class)}};
    for (const DialogField& f : d.fields)
        fields.push_back({{"name", f.name}, {"label", f.label}, {"check", f.check}, {"unit_class", f.unit_class},
                          {"unit", f.unit}, {"hint", f.hint}, {"tab", f.tab}, {"pair", f.pair}, {"text", f.text},
                          {"calculated", f.calculated}, {"choices", f.choices}, {"readonly", f.readonly}});
    return {{"form", d.form}, {"kind", d.kind}, {"index", d.index}, {"fields", std::move(fields)},
            {"units", std::move(boxes)}, {"forms", equation_forms(d.kind)}};
}

std::vector<std::pair<std::string, std::string>> typed_texts(const nlohmann::json& fields) {
    std::vector<std::pair<std::string, std::string>> texts;
    if (fields.is_object())
        for (const auto& [name, text] : fields.items())
            if (text.is_string()) texts.emplace_back(name, text.get<std::string>());
    return texts;
}

}  // namespace

DisplayUnits Session::dialog_units(const nlohmann::json& units) const {
    DisplayUnits u = units_;
    if (units.is_object())
        for (const auto& [cls, unit] : units.items())
            if (unit.is_string()) set_class_unit(u, cls, unit.get<std::string>());
    return u;
}

nlohmann::json Session::dialog(const std::string& kind, int index, const nlohmann::json& units) {
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    const auto d = kind == "Symbol"   ? load_symbol_dialog(project_, index)
                   : kind == "Pseudo" ? load_pseudo_dialog(project_, index)
                   : kind == "Phase"  ? load_phase_dialog(ctx, project_, dialog_units(units), index)
                   : kind == "Library" ? load_library_dialog(ctx, project_, index)
                   : kind == "Icon"   ? load_icon_dialog(project_, index)
                                      : load_dialog(ctx, project_, dialog_units(units), kind, index);
    if (!d) return {{"message", "No equipment to edit."}};
    nlohmann::json j = dialog_json(*d);
    // The case numbers of the project, for the case dialog of an entry ("Select to show case dialog on dbl click.").
    std::vector<int> cases;
    for (int ix = 1, n = case_count_or_value(project_.gen.CASENO, 0); ix <= n; ++ix)
        cases.push_back(case_count_or_value(project_.gen.CASENO, ix));
    std::sort(cases.begin(), cases.end());
    cases.erase(std::unique(cases.begin(), cases.end()), cases.end());
    j["cases"] = cases;
    j["caseDialog"] = project_.gen.CASEDLG != 0;
    if (kind == "Pseudo") j["pseudos"] = pseudo_names(project_);
    if (kind == "Library") j["note"] = "Note, no error checking is done.";
    return j;
}

nlohmann::json Session::options_dialog(const std::string& name) {
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    apply_run_limits(settings_, ctx);
    const auto d = load_options_dialog(ctx, project_, settings_, units_, name);
    if (!d) return {{"message", "No dialog " + name + "."}};
    return dialog_json(*d);
}

nlohmann::json Session::apply_texts(const std::function<std::string(RunContext&)>& ok,
                                    const std::function<nlohmann::json()>& shown) {
    if (running_) return {{"message", "Simulation still running !"}};
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    apply_run_limits(settings_, ctx);
    remember();
    const std::string message = ok(ctx);
    if (!message.empty()) {
        forget_unchanged();
        return {{"message", message}};
    }
    pending_ = false;
    state_.ProjectDirty = true;
    return shown();
}

nlohmann::json Session::apply_options_texts(const std::string& name, const nlohmann::json& fields) {
    return apply_texts(
        [&](RunContext& ctx) {
            const std::string message =
                apply_options_dialog(ctx, project_, settings_, units_, name, typed_texts(fields));
            if (message.empty()) {
                SetUnits(units_, project_.gen);
                WriteSettings(ctx, settings_file(), "save", settings_);
            }
            return message;
        },
        [&] { return options_dialog(name); });
}

nlohmann::json Session::apply_dialog_texts(Interaction& io, const std::string& kind, int index,
                                           const nlohmann::json& fields, const nlohmann::json& units) {
    const DisplayUnits u = dialog_units(units);
    // The library is a file of the program, not part of the project.
    if (kind == "Library") {
        if (running_) return {{"message", "Simulation still running !"}};
        RecordingInteraction quiet;
        RunContext ctx(quiet);
        const std::string message = apply_library_dialog(ctx, io, project_, index, typed_texts(fields));
        return message.empty() ? dialog(kind, index, units) : nlohmann::json{{"message", message}};
    }
    return apply_texts([&](RunContext& ctx) {
                           if (kind == "Symbol") return apply_symbol_dialog(project_, index, typed_texts(fields));
                           if (kind == "Pseudo") return apply_pseudo_dialog(ctx, project_, index, typed_texts(fields));
                           if (kind == "Icon") return apply_icon_dialog(project_, index, typed_texts(fields));
                           return apply_dialog(ctx, project_, u, kind, index, typed_texts(fields));
                       },
                       [&] { return dialog(kind, index, units); });
}

nlohmann::json Session::typical_curve(Interaction& io, const std::string& kind, int index) {
    if (running_) return {{"message", "Simulation still running !"}};
    const bool pump = kind == "Pump";
    if (!pump && kind != "Comp") return {{"message", "Only pumps and compressors have curves."}};
    if (index < 1 || index > (pump ? count(project_.pumps) : count(project_.comps)))
        return {{"message", "No equipment to edit."}};
    if (io.ask(pump ? "Overwrite data with typical curve from current Q, H, Eff and NPSHR ?"
                    : "Overwrite data with typical curve from current Q, H and Eff ?",
               {"Yes", "No"}) != 0)
        return dialog(kind, index);
    // The curve is worked out on a copy: the dialog shows it, and its OK writes it.
    Project scratch = project_;
    const Header& g = scratch.gen;
    if (pump) pump_curve_generate(scratch.pumps[static_cast<std::size_t>(index)], g.PCURQ, g.PCURH, g.PCUREFF, g.PCURNPSH);
    else comp_curve_generate(scratch.comps[static_cast<std::size_t>(index)], g.CCURQ, g.CCURH, g.CCUREFF);
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    const auto d = load_dialog(ctx, scratch, units_, kind, index);
    return d ? dialog_json(*d) : nlohmann::json{{"message", "No equipment to edit."}};
}

nlohmann::json Session::phase_flash(int index, const nlohmann::json& fields, const nlohmann::json& units) {
    if (running_) return {{"message", "Simulation still running !"}};
    RecordingInteraction quiet;
    RunContext ctx(quiet);
    ctx.run_active = true;  // the flash's trace goes to the log the dialog shows
    ctx.data_dir = data_dir_;
    const DisplayUnits u = dialog_units(units);
    Project scratch = project_;
    const std::string message = flash_phase_dialog(ctx, scratch, u, index, typed_texts(fields));
    nlohmann::json j = nlohmann::json::object();
    if (message.empty())
        if (const auto d = load_phase_dialog(ctx, scratch, u, index)) j = dialog_json(*d);
    if (!j.contains("fields")) j["message"] = message.empty() ? "No equipment to edit." : message;
    j["log"] = ctx.run_log_text;
    return j;
}

nlohmann::json Session::plot(const std::string& kind, int index) {
    const auto k = kind_from_name(kind);
    if (!k) return nullptr;
    if (*k == ItemKind::Line) return line_profile(project_, units_, index);
    return machine_plot(project_, units_, {*k, index}, points_);
}

void Session::remember() {
    pending_ = true;
    undo_.push_back(project_);
    if (undo_.size() > kUndoDepth) undo_.pop_front();
    redo_.clear();
}

void Session::forget_unchanged() {
    if (pending_ && !undo_.empty()) undo_.pop_back();
    pending_ = false;
}

void Session::undo_pending() {
    if (pending_ && !undo_.empty()) {
        project_ = std::move(undo_.back());
        undo_.pop_back();
    }
    pending_ = false;
}

bool Session::undo() {
    if (undo_.empty() || running_) return false;
    redo_.push_back(std::move(project_));
    project_ = std::move(undo_.back());
    undo_.pop_back();
    state_.ProjectDirty = true;
    return true;
}

bool Session::redo() {
    if (redo_.empty() || running_) return false;
    undo_.push_back(std::move(project_));
    project_ = std::move(redo_.back());
    redo_.pop_back();
    state_.ProjectDirty = true;
    return true;
}

nlohmann::json Session::pointer(Interaction& io, const std::string& type, const PointerEvent& event) {
    // A pointer far off any sheet is held at its edge, so that no place becomes infinite.
    PointerEvent e = event;
    e.x = std::clamp(e.x, -1.0e7f, 1.0e7f);
    e.y = std::clamp(e.y, -1.0e7f, 1.0e7f);
    state_.changed = false;
    state_.edit_request = {};
    state_.RunActive = running_;
    const bool gesture_start = type == "down" || type == "dblclick";
    if (gesture_start && !running_) remember();
    if (type == "down") Form_MouseDown(project_, state_, io, e);
    else if (type == "move") Form_MouseMove(project_, state_, io, e);
    else if (type == "up") Form_MouseUp(project_, state_, io, e);
    else if (type == "dblclick") Form_DblClick(project_, state_, io, e);
    // A press that changed nothing (a hover, a click on the empty sheet) leaves no undo step.
    if (gesture_start && !running_ && !state_.changed) forget_unchanged();
    pending_ = false;
    nlohmann::json reply = {{"status", state_.status},
                            {"hover", {{"state", state_.HoverState}, {"kind", state_.HoverKind}, {"index", state_.HoverIndex}}},
                            {"drawAction", state_.DrawAction},
                            {"upArrow", state_.HoverState == 1 || state_.HoverState == 9 || state_.HoverState == 10},
                            {"changed", state_.changed}};
    if (state_.edit_request.index > 0)
        reply["edit"] = {{"kind", kind_name(state_.edit_request.kind)}, {"index", state_.edit_request.index}};
    if (state_.changed) reply["sheet"] = sheet();
    return reply;
}

nlohmann::json Session::key(Interaction& io, int key, bool shift, bool ctrl) {
    state_.changed = false;
    state_.edit_request = {};
    state_.RunActive = running_;
    if (!running_) remember();
    Form_KeyDown(project_, state_, io, key, shift, ctrl);
    if (!running_ && !state_.changed) forget_unchanged();
    pending_ = false;
    nlohmann::json reply = {{"changed", state_.changed}, {"drawAction", state_.DrawAction}};
    if (state_.edit_request.index > 0)
        reply["edit"] = {{"kind", kind_name(state_.edit_request.kind)}, {"index", state_.edit_request.index}};
    if (state_.changed) reply["sheet"] = sheet();
    return reply;
}

void Session::arm_tool(int draw_action) {
    if (running_) return;
    state_.DrawAction = (draw_action == 49 || (draw_action >= 50 && draw_action <= 63)) ? draw_action : 0;
    state_.status = hover_status(0, state_.DrawAction);
}

nlohmann::json Session::run_state() {
    std::lock_guard<std::mutex> g(log_lock_);
    return {{"active", running_.load()}, {"log", run_log_}};
}

void Session::start_run(int mode, bool resume) {
    join_run();
    {
        std::lock_guard<std::mutex> g(log_lock_);
        run_log_.clear();
    }
    run_io_ = std::make_unique<RunInteraction>(log_lock_, run_log_);
    run_ctx_ = std::make_unique<RunContext>(*run_io_);
    RunContext& ctx = *run_ctx_;
    ctx.data_dir = data_dir_;
    ctx.project_file = file_;
    ctx.run_mode = mode;
    ctx.resume_run = resume || mode == kRunBalance;
    apply_run_limits(settings_, ctx);
    running_ = true;
    state_.RunActive = true;
    state_.ProjectDirty = true;
    run_thread_ = std::thread([this, copy = project_]() mutable {
        OperatingPoints points;
        const RunResult r = Hydr_Sim(*run_ctx_, copy, [&](int, const CaseResult& c) {
            record_operating_points(copy, c.case_no, points);
        });
        {
            std::lock_guard<std::mutex> g(log_lock_);
            run_log_.push_back(r.title);
            if (!r.message.empty()) run_log_.push_back(r.message);
        }
        std::lock_guard<std::mutex> g(lock);
        finish_run(std::move(copy), std::move(points));
    });
}

void Session::finish_run(Project&& result, OperatingPoints&& points) {
    // Edits were refused during the run: the copy differs only by what the run wrote.
    project_ = std::move(result);
    points_ = std::move(points);
    state_.RunActive = false;
    state_.LabelMode = "Result";
    running_ = false;
}

}  // namespace velm
