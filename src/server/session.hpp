// One open project as the page sees it: the records, the pointer state, the
// settings, undo and redo, and the run on its worker thread. Every call is
// made under the session's lock (Session::lock), from one request at a time;
// the run works on a copy of the project and hands its results back at the end.
#pragma once

#include <atomic>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "drawing/sheet.hpp"
#include "drawing/labels.hpp"
#include "model/context.hpp"
#include "model/records.hpp"
#include "model/settings.hpp"
#include "model/units.hpp"
#include "server/plots.hpp"

namespace velm {

// A question of the program that the request carried no answer for: the page
// asks it and sends the request again with the answer.
struct NeedAnswer {
    std::string question;
    std::vector<std::string> choices;
};

// The interaction layer of one request: messages are kept for the reply,
// questions are answered from the request's answers in order.
class RequestInteraction : public Interaction {
public:
    explicit RequestInteraction(std::vector<int> answers) : answers_(std::move(answers)) {}
    void tell(const std::string& text) override { told.push_back(text); }
    int ask(const std::string& question, const std::vector<std::string>& choices) override;
    std::vector<std::string> told;
    std::vector<std::string> asked;

private:
    std::vector<int> answers_;
    std::size_t next_ = 0;
};

// Reads a project file into p with its pipe table and components; false when
// it cannot be read (told through ctx).
using ProjectLoader = std::function<bool(RunContext& ctx, Project& p, const std::string& file)>;

class Session {
public:
    Session(ProjectLoader loader, std::filesystem::path data_dir);
    ~Session();

    std::mutex lock;

    // Starts: a new project, the settings of the user, then the file given.
    bool start(Interaction& io, const std::string& file);

    // The sheet as JSON: title, status texts, sheet size, items with their
    // drawing, ports and label rows in the given label mode ("" for the
    // session's own).
    nlohmann::json sheet(const std::string& label_mode = "");

    // The name and result rows of one item, for the hover card.
    nlohmann::json item_card(const std::string& kind, int index);

    // The dialog of an item as the page draws it (fields with their texts on
    // show), or {"message"} when the item has none.
    // units: {"pressure": "psig", ...}, the dialog's own unit boxes.
    nlohmann::json dialog(const std::string& kind, int index, const nlohmann::json& units = {});
    // OK of that dialog with the typed texts: {"message"} with nothing changed,
    // or the dialog as it now stands.
    // A question (the library's "Update library with new value ?") goes to io.
    nlohmann::json apply_dialog_texts(Interaction& io, const std::string& kind, int index, const nlohmann::json& fields,
                                      const nlohmann::json& units = {});

    // The dialog of an Options menu command (defaults, methods, cases, title,
    // components, templates) and its OK, as for the equipment dialogs.
    nlohmann::json options_dialog(const std::string& name);
    nlohmann::json apply_options_texts(const std::string& name, const nlohmann::json& fields);

    // A pump's or compressor's dialog with its curve filled from the project's
    // typical curve through the present point, after the program's question;
    // nothing changes until the dialog's OK. {"message"} for another item.
    nlohmann::json typical_curve(Interaction& io, const std::string& kind, int index);

    // The Flash of a line's fluid dialog: the typed texts flashed on a copy,
    // {"fields", ..., "log"} as the dialog would then show them (OK keeps
    // them), or {"message", "log"} with the words of the refusal or failure.
    nlohmann::json phase_flash(int index, const nlohmann::json& fields, const nlohmann::json& units = {});

    // The plot of an item's dialog: a machine's curves with the last run's
    // operating points, a line's pressure profile; null for other kinds.
    nlohmann::json plot(const std::string& kind, int index);

    // Pointer and key events; the reply says what changed.
    nlohmann::json pointer(Interaction& io, const std::string& type, const PointerEvent& e);
    nlohmann::json key(Interaction& io, int key, bool shift, bool ctrl);
    // Arms a tool of the palette by its DrawAction (0 disarms).
    void arm_tool(int draw_action);

    // Runs the menu command of that name; false when there is none.
    bool command(Interaction& io, const std::string& name, const nlohmann::json& args, nlohmann::json& reply);

    // {"active": bool, "log": [lines so far]} of the present or last run.
    nlohmann::json run_state();

    bool dirty() const { return state_.ProjectDirty; }
    bool run_active() const { return running_.load(); }
    // Waits for a run to end (the server's stop and the tests).
    void join_run();

    const Project& project() const { return project_; }
    Project& project() { return project_; }
    const std::filesystem::path& file() const { return file_; }
    DrawState& draw_state() { return state_; }
    const std::filesystem::path& data_dir() const { return data_dir_; }

    // Undo and redo of the edits, in order.
    void remember();          // the project as it stands, before an edit
    void forget_unchanged();  // drops the last snapshot when nothing changed after it
    bool undo();
    bool redo();
    // Puts back the project as remembered at the start of this request (a
    // question stopped it), and clears what the pointer was doing.
    void undo_pending();

private:
    friend struct MenuCommands;
    std::string title() const;
    void refresh_after_load();
    bool open(Interaction& io, const std::string& file);
    bool save(Interaction& io, const std::string& file);
    bool ask_save_changes(Interaction& io);
    // OK of a dialog under an undo step: ok returns "" or the refusal, shown the dialog after it.
    nlohmann::json apply_texts(const std::function<std::string(RunContext&)>& ok,
                               const std::function<nlohmann::json()>& shown);
    // The display units with the dialog's unit boxes in force.
    DisplayUnits dialog_units(const nlohmann::json& units) const;
    void start_run(int mode, bool resume);
    void finish_run(Project&& result, OperatingPoints&& points);

    ProjectLoader loader_;
    std::filesystem::path data_dir_;
    Project project_;
    std::filesystem::path file_;
    DrawState state_;
    Settings settings_;
    ViewFlags view_;
    DisplayUnits units_;
    bool drawing_on_ = true;
    std::string spec_text_;
    OperatingPoints points_;  // of the last run, by pump and compressor

    std::deque<Project> undo_, redo_;
    bool pending_ = false;  // the last snapshot was taken by the request under way

    std::atomic<bool> running_{false};
    std::thread run_thread_;
    std::mutex log_lock_;
    std::vector<std::string> run_log_;
    std::unique_ptr<RunContext> run_ctx_;
    std::unique_ptr<Interaction> run_io_;
};

}  // namespace velm
