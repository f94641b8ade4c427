// The commands of the main window's menus, tool bar and context menu, by the
// names the page gives them. A command that needs the page (a file picker,
// the print of the sheet, a download) says so in its reply.
#include <fstream>
#include <map>
#include <sstream>

#include "correlations/sizing.hpp"
#include "dialogs/dialogs.hpp"
#include "drawing/edit_ops.hpp"
#include "import/simulators.hpp"
#include "import/stream_import.hpp"
#include "model/pipe_table.hpp"
#include "model/project_file.hpp"
#include "model/text.hpp"
#include "server/pipe_table_json.hpp"
#include "server/rtf_text.hpp"
#include "server/session.hpp"
#include "solver/network.hpp"

namespace velm {

using Json = nlohmann::json;

struct MenuCommands {
    using Handler = void (*)(Session&, Interaction&, const Json&, Json&);
    static const std::map<std::string, Handler>& table();

    // Commands that change the project leave an undo step and make it dirty.
    static void edited(Session& s, Json& reply) {
        s.state_.ProjectDirty = true;
        reply["changed"] = true;
    }

    static std::string arg(const Json& args, const char* name) {
        return args.is_object() && args.contains(name) && args[name].is_string() ? args[name].get<std::string>() : "";
    }

    static void open(Session& s, Interaction& io, const Json& args, Json& reply) {
        if (!s.ask_save_changes(io)) return;
        const std::string file = arg(args, "file");
        if (file.empty()) {
            reply["picker"] = {{"mode", "open"},
                               {"filter", "Velm Data Files (*.vdf)|*.vdf|Data Files (*.dat)|*.dat|Other Files (*.*)|*.*"}};
            return;
        }
        if (!s.open(io, file)) io.tell("Error MFO = the file " + file + " could not be read.");
        reply["changed"] = true;
    }

    static void save_as(Session& s, Interaction& io, const Json& args, Json& reply) {
        const std::string file = arg(args, "file");
        if (file.empty()) {
            reply["picker"] = {{"mode", "save"}, {"filter", "Data Files (*.vdf)|*.vdf|Other Files (*.*)|*.*"}};
            return;
        }
        if (!s.save(io, file)) io.tell("Error! Saving File As = " + file);
        reply["changed"] = true;
    }

    static void save(Session& s, Interaction& io, const Json& args, Json& reply) {
        if (s.file_.empty()) return save_as(s, io, args, reply);
        s.save(io, s.file_.string());
        reply["changed"] = true;
    }

    static void close(Session& s, Interaction& io, const Json&, Json& reply) {
        if (!s.ask_save_changes(io)) return;
        RunContext ctx(io);
        NewProject(s.project_);
        apply_project_defaults(s.settings_, s.project_.gen);
        ReadPipeLib(ctx, s.project_.pipedata, {});
        s.file_.clear();
        s.refresh_after_load();
        reply["changed"] = true;
    }

    // Ends the page's session (the server stops); never the process by itself.
    static void quit(Session& s, Interaction& io, const Json&, Json& reply) {
        if (s.running_) {
            io.tell("Simulation still running !");
            if (io.ask("Exit program immediately without saving ?", {"Yes", "No"}) != 0) return;
            s.run_ctx_->stop = true;
        } else if (!s.ask_save_changes(io)) {
            return;
        }
        RunContext ctx(io);
        WriteSettings(ctx, settings_file(), "exit", s.settings_);
        reply["exit"] = true;
    }

    static void page_only(Session&, Interaction&, const Json&, Json& reply) { reply["page"] = true; }

    static void clipboard(Session&, Interaction& io, const Json&, Json&) {
        io.tell("No picture in Clipboard.");
        io.tell("Press ALT-PRINT SCREEN before execuring this command.");
    }

    static void arm(Session& s, int tool) { s.arm_tool(tool); }

    static void add_bend(Session& s, Interaction& io, const Json&, Json& reply) {
        AddBend(s.project_, io);
        edited(s, reply);
    }

    static void edit_equip(Session& s, Interaction& io, const Json&, Json& reply) {
        ItemRef first{};
        for_each_item(s.project_, [&](ItemRef r) {
            if (first.index == 0 && *selected_flag(s.project_, r)) first = r;
        });
        if (first.index == 0) return io.tell("No equipment to edit.");
        reply["edit"] = {{"kind", kind_name(first.kind)}, {"index", first.index}};
    }

    // The icon dialog of the first selected item's kind and form.
    static void edit_icon(Session& s, Interaction& io, Json& reply) {
        const int slot = selected_icon_slot(s.project_);
        if (slot < 0) return io.tell("No equipment to edit.");
        reply["edit"] = {{"kind", "Icon"}, {"index", slot}};
    }

    // The fluid dialog of the first selected line.
    static void edit_fluid(Session& s, Interaction& io, const Json&, Json& reply) {
        for (std::size_t i = 1; i < s.project_.lines.size(); ++i)
            if (s.project_.lines[i].Selected) {
                reply["edit"] = {{"kind", "Phase"}, {"index", static_cast<int>(i)}};
                return;
            }
        io.tell("Select a line to edit its fluid.");
    }

    static void pipe_dia(Session& s, Interaction& io, bool set, Json& reply) {
        const char* question = set ? "Set all pipe diameters to current calculated sizes ?"
                                   : "Clear all pipe diameters to size them in the next run ?";
        if (io.ask(question, {"Yes", "No"}) != 0) return;
        pipe_set_dia(s.project_, set);
        edited(s, reply);
    }

    // The pipe data (material, schedule, size, roughness) of the first
    // selected line given to the other selected lines.
    static void pipe_copy(Session& s, Interaction& io, const Json&, Json& reply) {
        const Line* from = nullptr;
        for (std::size_t i = 1; i < s.project_.lines.size(); ++i)
            if (s.project_.lines[i].Selected) {
                if (!from) {
                    from = &s.project_.lines[i];
                    continue;
                }
                Line& to = s.project_.lines[i];
                to.MAT = from->MAT;
                to.SCH = from->SCH;
                to.DIA = from->DIA;
                to.ID = from->ID;
                to.EPS = from->EPS;
            }
        if (!from) return io.tell("No equipment selected.");
        edited(s, reply);
    }

    static void find(Session& s, Interaction& io, const Json& args, Json& reply) {
        const std::string name = arg(args, "name");
        if (name.empty()) {
            reply["prompt"] = "Equipment name";
            return;
        }
        SelectItems(s.project_, 0, false, "");
        const int n = SelectItems(s.project_, -1, false, name);
        io.tell("Number of equip found = " + std::to_string(n));
        reply["changed"] = true;
    }

    static void label(Session& s, int flag, Json& reply) {
        for_each_item(s.project_, [&](ItemRef r) {
            Drawn* d = drawn(s.project_, r);
            if (d && d->Selected) d->LBL1 = flag;
        });
        edited(s, reply);
    }

    static void label_mode(Session& s, const char* mode, Json& reply) {
        s.state_.LabelMode = s.state_.LabelMode == mode ? "" : mode;
        reply["changed"] = true;
    }

    static void reset_colour(Session& s, Interaction&, const Json&, Json& reply) {
        for_each_item(s.project_, [&](ItemRef r) {
            if (Drawn* d = drawn(s.project_, r)) d->COLOR = s.project_.color_normal;
        });
        reply["changed"] = true;
    }

    static void spec_count(Session& s, Interaction& io, const Json&, Json& reply) {
        RecordingInteraction quiet;
        RunContext ctx(quiet);
        Project copy = s.project_;
        Network net;
        Count_Specs(ctx, copy, net, 1);
        io.tell("Number of Specifications = " + std::to_string(net.NumSpecs) + "\r\nNumber of Variables = " +
                std::to_string(net.NumVars));
        s.spec_text_ = "Specs " + std::to_string(net.NumSpecs) + " / Vars " + std::to_string(net.NumVars);
        reply["changed"] = true;
    }

    static void run(Session& s, Interaction& io, int mode, bool resume, Json& reply) {
        if (s.running_) return;
        if (mode > kRunHydraulics &&
            io.ask("HMB will overwrite all compositions and properties. Continue ?", {"Yes", "No"}) != 0)
            return;
        s.start_run(mode, resume);
        reply["run"] = true;
    }

    static void stop(Session& s, Interaction&, const Json&, Json&) {
        if (s.running_ && s.run_ctx_) s.run_ctx_->stop = true;
    }

    // A run file as text for the page: the report's rich text made readable.
    static void view_file(Session& s, Interaction& io, const char* name, const char* missing, Json& reply) {
        const std::filesystem::path f = s.data_dir_ / name;
        std::ifstream in(f, std::ios::binary);
        if (!in) return io.tell(missing);
        std::ostringstream text;
        text << in.rdbuf();
        const std::string body = text.str();
        reply["view"] = {{"name", name}, {"text", f.extension() == ".rtf" ? rtf_to_text(body) : body}};
    }

    static void save_file(Session& s, Interaction& io, const Json& args, const char* name, const char* missing,
                          Json& reply) {
        const std::filesystem::path from = s.data_dir_ / name;
        std::error_code ec;
        if (!std::filesystem::exists(from, ec)) return io.tell(missing);
        const std::string file = arg(args, "file");
        if (file.empty()) {
            reply["picker"] = {{"mode", "save"}, {"filter", "RTF Files (*.rtf)|*.rtf|Word Files (*.doc)|*.doc|Other Files (*.*)|*.*"}};
            return;
        }
        const std::string ext = upper(std::filesystem::path(file).extension().string());
        if (ext == ".VDF" || ext == ".DAT") return io.tell("Error. Cannot store report with vdf or dat extension.");
        if (file.size() > 256 || from.string().size() > 256)
            return io.tell("Error ! Source or destination exceed 256 characters.");
        std::filesystem::copy_file(from, file, std::filesystem::copy_options::overwrite_existing, ec);
        if (ec) io.tell("Error = " + ec.message());
    }

    // A whole number argument; 0 when it is missing or not a number.
    static int whole(const Json& args, const char* name) {
        return args.is_object() && args.contains(name) && args[name].is_number_integer() ? args[name].get<int>() : 0;
    }

    static bool flag(const Json& args, const char* name) {
        return args.is_object() && args.contains(name) && args[name].is_boolean() && args[name].get<bool>();
    }

    // File > Import: without a simulator the page shows the import dialog;
    // then stream data from a file or a simulator, or another project's
    // records, and the import's run log on show.
    static void import(Session& s, Interaction& io, const Json& args, Json& reply) {
        if (!args.is_object() || !args.contains("simulator")) {
            reply["import"] = {
                {"simulators", {"Hysys", "Aspen", "File", "Project"}},
                {"filter", "Aspen Files (*.apw)|*.apw|Hysys Files (*.hsc)|*.hsc|Data Files (*.dat)|*.dat|Text Files "
                           "(*.txt)|*.txt|Other Files (*.*)|*.*"},
                {"prompts",
                 {{"inlet", "Import stream to pipe inlet conditions."},
                  {"outlet", "Import stream to pipe outlet conditions."},
                  {"props", "Import stream to pipe fluid properties."},
                  {"file", "Required for File/Aspen. Optional for Hysys."}}}};
            return;
        }
        const std::string simulator = arg(args, "simulator"), file = arg(args, "file");
        if (simulator.empty()) return io.tell("No simulator selected.");
        if (file.empty() && simulator != "Hysys") return io.tell("Required for File/Aspen. Optional for Hysys.");
        ImportChoices choices{flag(args, "inlet"), flag(args, "outlet"), flag(args, "props")};
        if (!choices.inlet && !choices.outlet && !choices.props) choices = {true, true, true};
        if (io.ask(kImportQuestion, {"Yes", "No"}) != 0) return;
        RunContext ctx(io);
        ctx.data_dir = s.data_dir_;
        bool ok = false;
        if (simulator == "Project") ok = import_project(ctx, s.project_, file);
        else if (simulator == "File") ok = import_streams(ctx, s.project_, file, choices);
        else ok = import_from_simulator(ctx, s.project_, simulator, file, choices);
        if (!ok) io.tell("Error importing file. Review results carefully.");
        edited(s, reply);
        if (simulator != "Project") {
            view_file(s, io, "runlog.txt", "File not found. Run hydraulics/HMB to create file.", reply);
            if (reply.contains("view")) reply["view"]["title"] = "Import RunLog";
        }
    }

    // Options > Properties: a record of the flash engine's component library
    // ("number", else the first), when the engine keeps a library of its own.
    static void library(Session& s, Interaction& io, const Json& args, Json& reply) {
        if (!library_supported(s.project_)) return io.tell("Error! Flash method does not support this operation.");
        reply["edit"] = {{"kind", "Library"}, {"index", std::max(whole(args, "number"), 1)}};
    }

    // Process > Pseudo components: the dialog of the last one, of the one
    // given ("index"), of a new one ("add", and when there is none), or,
    // after deleting one ("delete"), of the one now in its place.
    static void pseudo(Session& s, Interaction& io, const Json& args, Json& reply) {
        int n = count(s.project_.pseudos);
        if (const int k = whole(args, "delete"); k > 0) {
            if (const std::string says = delete_pseudo(s.project_, k); !says.empty()) {
                io.tell(says);
                n = std::min(k, n);
            } else {
                edited(s, reply);
                n = std::min(k, count(s.project_.pseudos));
                if (n == 0) return;
            }
        } else if (const int i = whole(args, "index"); i > 0 && i <= n) {
            n = i;
        } else if (n == 0 || flag(args, "add")) {
            n = add_pseudo(s.project_);
            edited(s, reply);
        }
        if (n > 0) reply["edit"] = {{"kind", "Pseudo"}, {"index", n}};
    }

    // Options > Pipe data: the table in the page; an edit of one bore
    // ({"mat", "size", "schedule", "id"} in mm), or the table saved to a file.
    static void pipe_data(Session& s, Interaction& io, const Json& args, Json& reply) {
        const std::string file = arg(args, "file");
        if (!file.empty()) {
            RunContext ctx(io);
            if (SavePipeLib(ctx, s.project_.pipedata, file)) io.tell("Pipe table saved: " + file);
            return;
        }
        if (args.is_object() && args.contains("mat")) {
            const std::string says =
                set_pipe_id(s.project_.pipedata, arg(args, "mat"), arg(args, "size"), arg(args, "schedule"), arg(args, "id"));
            if (!says.empty()) return io.tell(says);
            edited(s, reply);
        }
        reply["pipes"] = pipe_table_json(s.project_.pipedata);
    }
};

namespace {

using H = MenuCommands;
#define VELM_CMD(body) [](Session& s, Interaction& io, const Json& args, Json& reply) { body; }

}  // namespace

const std::map<std::string, MenuCommands::Handler>& MenuCommands::table() {
    static const std::map<std::string, Handler> t = {
        {"mnuFileOpen", VELM_CMD(H::open(s, io, args, reply))},
        {"mnuFileSave", VELM_CMD(H::save(s, io, args, reply))},
        {"mnuFileSaveAs", VELM_CMD(H::save_as(s, io, args, reply))},
        {"mnuFileClose", VELM_CMD(H::close(s, io, args, reply))},
        {"mnuFileImport", VELM_CMD(H::import(s, io, args, reply))},
        {"mnuFilePrint", VELM_CMD(H::page_only(s, io, args, reply))},
        {"mnuFileDSetup", VELM_CMD(H::page_only(s, io, args, reply))},
        {"mnuFileSaveBMP", VELM_CMD(H::page_only(s, io, args, reply))},
        {"mnuFileSaveClient", VELM_CMD(H::page_only(s, io, args, reply))},
        {"mnuFileSaveClip", VELM_CMD(H::clipboard(s, io, args, reply))},
        {"mnuFileExit", VELM_CMD(H::quit(s, io, args, reply))},
        {"mnuEditAddFeed", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 50))},
        {"mnuEditAddProd", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 51))},
        {"mnuEditAddPipe", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 49))},
        {"mnuEditAddValve", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 52))},
        {"mnuEditAddCheck", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 53))},
        {"mnuEditAddPump", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 54))},
        {"mnuEditAddComp", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 55))},
        {"mnuEditAddFO", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 56))},
        {"mnuEditAddHX", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 57))},
        {"mnuEditAddExpand", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 58))},
        {"mnuEditAddSplit", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 59))},
        {"mnuEditAddTee", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 60))},
        {"mnuEditAddVessel", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 61))},
        {"mnuEditAddMisc", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 62))},
        {"mnuEditAddText", VELM_CMD((void)io; (void)args; (void)reply; H::arm(s, 63))},
        {"mnuEditAddBend", VELM_CMD(H::add_bend(s, io, args, reply))},
        {"mnuPopBendAdd", VELM_CMD(H::add_bend(s, io, args, reply))},
        {"mnuEditEquip", VELM_CMD(H::edit_equip(s, io, args, reply))},
        {"mnuPopEdit", VELM_CMD(H::edit_equip(s, io, args, reply))},
        {"mnuEditFluid", VELM_CMD(H::edit_fluid(s, io, args, reply))},
        {"mnuPopFluid", VELM_CMD(H::edit_fluid(s, io, args, reply))},
        {"mnuEditPipeCopy", VELM_CMD(H::pipe_copy(s, io, args, reply))},
        {"mnuEditPipeDiaClear", VELM_CMD((void)args; H::pipe_dia(s, io, false, reply))},
        {"mnuEditPipeDiaSet", VELM_CMD((void)args; H::pipe_dia(s, io, true, reply))},
        {"mnuEditSizing", VELM_CMD((void)args; H::pipe_dia(s, io, false, reply))},
        {"mnuEditCopy", VELM_CMD((void)args; (void)reply; CopySelected(s.project_, io))},
        {"mnuPopCopy", VELM_CMD((void)args; (void)reply; CopySelected(s.project_, io))},
        {"mnuEditPaste", VELM_CMD((void)args; PasteItems(s.project_, io); H::edited(s, reply))},
        {"mnuPopPaste", VELM_CMD((void)args; PasteItems(s.project_, io); H::edited(s, reply))},
        {"mnuEditDel", VELM_CMD((void)args; DeleteSelected(s.project_, io); H::edited(s, reply))},
        {"mnuPopDelete", VELM_CMD((void)args; DeleteSelected(s.project_, io); H::edited(s, reply))},
        {"mnuEditSelectAll", VELM_CMD((void)io; (void)args; SelectItems(s.project_, -1, false, ""); reply["changed"] = true)},
        {"mnuPopSelectAll", VELM_CMD((void)io; (void)args; SelectItems(s.project_, -1, false, ""); reply["changed"] = true)},
        {"mnuEditDeselect", VELM_CMD((void)io; (void)args; SelectItems(s.project_, 0, false, ""); reply["changed"] = true)},
        {"mnuPopDeselect", VELM_CMD((void)io; (void)args; SelectItems(s.project_, 0, false, ""); reply["changed"] = true)},
        {"mnuEditFind", VELM_CMD(H::find(s, io, args, reply))},
        {"mnuEditRot", VELM_CMD((void)io; (void)args; RotateSelected(s.project_, 90); H::edited(s, reply))},
        {"mnuPopRot", VELM_CMD((void)io; (void)args; RotateSelected(s.project_, 90); H::edited(s, reply))},
        {"mnuEditRotate", VELM_CMD((void)io; (void)args; RotateSelected(s.project_, 270); H::edited(s, reply))},
        {"mnuPopRotate", VELM_CMD((void)io; (void)args; RotateSelected(s.project_, 270); H::edited(s, reply))},
        {"mnuEditFlipX", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 1); H::edited(s, reply))},
        {"mnuPopFlipX", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 1); H::edited(s, reply))},
        {"mnuEditFlipY", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 2); H::edited(s, reply))},
        {"mnuPopFlipY", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 2); H::edited(s, reply))},
        {"mnuEditFlipXY", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 1, 1); H::edited(s, reply))},
        {"mnuEditFlipXN", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 1, -1); H::edited(s, reply))},
        {"mnuEditFlipYY", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 2, 1); H::edited(s, reply))},
        {"mnuEditFlipYN", VELM_CMD((void)io; (void)args; FlipSelected(s.project_, 2, -1); H::edited(s, reply))},
        {"mnuEditLabelY", VELM_CMD((void)io; (void)args; H::label(s, -1, reply))},
        {"mnuEditLabelN", VELM_CMD((void)io; (void)args; H::label(s, 0, reply))},
        {"mnuPopLabel", VELM_CMD((void)io; (void)args; H::label(s, -1, reply))},
        {"mnuEditIkon", VELM_CMD((void)args; H::edit_icon(s, io, reply))},
        {"mnuPopIkon", VELM_CMD((void)args; H::edit_icon(s, io, reply))},
        {"mnuPopCancel", VELM_CMD((void)s; (void)io; (void)args; (void)reply)},
        {"mnuEditUndo", VELM_CMD((void)io; (void)args; reply["changed"] = s.undo())},
        {"mnuEditRedo", VELM_CMD((void)io; (void)args; reply["changed"] = s.redo())},
        {"mnuViewNormal", VELM_CMD((void)io; (void)args; s.state_.LabelMode.clear(); reply["changed"] = true)},
        {"mnuViewSpec", VELM_CMD((void)io; (void)args; H::label_mode(s, "Input", reply))},
        {"mnuViewResult", VELM_CMD((void)io; (void)args; H::label_mode(s, "Result", reply))},
        {"mnuViewRedraw", VELM_CMD((void)s; (void)io; (void)args; reply["changed"] = true)},
        {"mnuViewResetColor", VELM_CMD(H::reset_colour(s, io, args, reply))},
        {"mnuViewDraw", VELM_CMD((void)io; (void)args; s.drawing_on_ = !s.drawing_on_; reply["changed"] = true)},
        {"mnuRunSpec", VELM_CMD(H::spec_count(s, io, args, reply))},
        {"mnuRunSimRun", VELM_CMD((void)args; H::run(s, io, kRunHydraulics, false, reply))},
        {"mnuRunSimResume", VELM_CMD((void)args; H::run(s, io, kRunHydraulics, true, reply))},
        {"mnuRunSimStop", VELM_CMD(H::stop(s, io, args, reply))},
        {"mnuRunResultsView", VELM_CMD((void)args; H::view_file(s, io, "resulth.rtf", "Result file not found. First run hydraulics.", reply))},
        {"mnuRunResultsSave", VELM_CMD(H::save_file(s, io, args, "resulth.rtf", "Hydraulics MUST be run to create a result file.", reply))},
        {"mnuRunLogView", VELM_CMD((void)args; H::view_file(s, io, "runlog.txt", "File not found. Run hydraulics/HMB to create file.", reply))},
        {"mnuRunLogSave", VELM_CMD(H::save_file(s, io, args, "runlog.txt", "Run Log file not found.", reply))},
        {"mnuProcessHWB", VELM_CMD((void)args; H::run(s, io, kRunBalance, true, reply))},
        {"mnuProcessRun", VELM_CMD((void)args; H::run(s, io, kRunBalance, true, reply))},
        {"mnuProcessHydrHWB", VELM_CMD((void)args; H::run(s, io, kRunBoth, false, reply))},
        {"mnuProcessPseudo", VELM_CMD(H::pseudo(s, io, args, reply))},
        {"mnuProcessView", VELM_CMD((void)args; H::view_file(s, io, "resultm.rtf", "Result file not found. First run HMB.", reply))},
        {"mnuProcessSave", VELM_CMD(H::save_file(s, io, args, "resultm.rtf", "HMB must be run to create a result file.", reply))},
        {"mnuOptionsProp", VELM_CMD(H::library(s, io, args, reply))},
        {"mnuOptionsPData", VELM_CMD(H::pipe_data(s, io, args, reply))},
        {"mnuHelpHelp", VELM_CMD((void)s; (void)io; (void)args; reply["page"] = "help")},
        {"mnuHelpSupport", VELM_CMD((void)s; (void)io; (void)args;
                                    reply["mailto"] = "mailto:support@velm-hydraulics.example?subject=Hydraulics%20Problem")},
        {"mnuHelpAbout", VELM_CMD((void)s; (void)args; (void)reply; io.tell("VELM - Hydraulics\r\nRating and sizing of plant pipe networks."))},
    };
    return t;
}

bool Session::command(Interaction& io, const std::string& name, const nlohmann::json& args, nlohmann::json& reply) {
    const auto& t = MenuCommands::table();
    const std::string key = name;
    // The other Options commands open their dialog in the page.
    if (key.rfind("mnuOptions", 0) == 0 && !t.count(key)) {
        reply["options"] = key;
        return true;
    }
    const auto it = t.find(key);
    if (it == t.end()) return false;
    const bool edits = key != "mnuRunSimStop" && key.rfind("mnuRun", 0) != 0 && key.rfind("mnuView", 0) != 0 &&
                       key.rfind("mnuHelp", 0) != 0 && key != "mnuEditUndo" && key != "mnuEditRedo";
    if (running_ && edits && key != "mnuFileExit") {
        reply["refused"] = "Simulation still running !";
        return true;
    }
    if (edits) remember();
    it->second(*this, io, args, reply);
    if (edits && !reply.value("changed", false)) forget_unchanged();
    pending_ = false;
    return true;
}

}  // namespace velm
