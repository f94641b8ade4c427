// The pipe dialog: flow, pipe and size from the project's pipe table, the
// fittings table, the fluid, heat transfer, sizing limits and the equation.
#include <string>
#include <utility>

#include "dialogs/dialog_table.hpp"
#include "model/pipe_table.hpp"
#include "model/text.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

using R = Line;

// Name, count, L/D and K of fitting row N, as FITN_1 to FITN_4.
template <int N>
void fitting_row(Fields<R>& f) {
    const std::string key = "FIT" + std::to_string(N) + "_";
    const std::string row = "Fitting " + std::to_string(N);
    f.fixed12((key + "1").c_str(), (row + " name").c_str(), +[](R& r) { return &r.FIT[N].name; })
        .integer((key + "2").c_str(), (row + " count").c_str(), +[](R& r) { return &r.FIT[N].count; })
        .number((key + "3").c_str(), (row + " L/D").c_str(), "Flow", "", +[](R& r) { return &r.FIT[N].LD; })
        .number((key + "4").c_str(), (row + " K").c_str(), "Flow", "", +[](R& r) { return &r.FIT[N].K; });
}

template <std::size_t... I>
void fitting_rows(Fields<R>& f, std::index_sequence<I...>) {
    (fitting_row<static_cast<int>(I) + 1>(f), ...);
}

// Inlet and outlet value of a fluid property, as KEY1 and KEY2.
template <auto Member>
void ends(Fields<R>& f, const char* key, const char* label, const char* check, const char* unit) {
    f.number((std::string(key) + "1").c_str(), (std::string(label) + " in").c_str(), check, unit,
             +[](R& r) { return &(r.*Member)[1]; })
        .number((std::string(key) + "2").c_str(), (std::string(label) + " out").c_str(), check, unit,
                +[](R& r) { return &(r.*Member)[2]; });
}

std::vector<FieldDef<R>> line_fields() {
    Fields<R> f;
    f.names()
        .pair("TFLOW", "Total flow", "Flow", "mass_flow", A(TFLOW),
              "Specify total flow or leave empty to calculate (Value, E or V).", "EV")
        .text("MAT", "Material", A(MAT))
        .text("DIA1", "Nominal size", A(DIA[1]), "Input diameter or leave empty for program to calc.")
        .text("SCH", "Schedule", A(SCH))
        .pair("ID", "Inside diameter", "Flow", "diameter", A(ID),
              "Input flowing diameter. Leave empty for program to calc.")
        .pair("IDH", "Hydraulic diameter", "Flow", "diameter", A(IDH),
              "Input hydraulic diameter (4*Rh). Leave empty for program to calc.")
        .pair("EPS", "Roughness", "Flow", "diameter", A(EPS), "Pipe roughness. Leave empty for pipe default.")
        .number("LEN", "Length", "Length", "length", A(LEN))
        .number("ELEV1", "Inlet elevation", "Elev", "length", A(ELEV[1]))
        .number("ELEV2", "Outlet elevation", "Elev", "length", A(ELEV[2]))
        .number("SELEV", "Uphill elevation", "Elev", "length", A(SELEV),
                "Sum of uphill portions. Only applicable to 2-phase flow.")
        .number("FAC", "Design factor", "Flow", "", A(FAC), "Design factor is multiplied with calc dP (Default=1).")
        .text("MTP", "Two-phase method", A(MTP), "",
              {"", "Homogeneous", "Dukler", "Lockhart-Martinelli", "Chisholm", "Chenoweth-Martin", "Beggs-Brill"})
        .text("STRM", "Simulator stream", A(STRM), "Stream name in simulator (case sensitive).")
        .flag("LOCK", "Locked against import", A(LOCK), "Lock stream name to prevent import from file.")
        .tab("Fittings");
    fitting_rows(f, std::make_index_sequence<kFittings>{});
    f.result("FITK", "Total K", "", A(FITK), "0.0#").result("FITLD", "Total L/D", "", A(FITLD), "0.0#");
    f.tab("Fluid").integer("REFLINE", "Fluid of line number", A(REFLINE)).flag("OUTIN", "Outlet apart from inlet", A(OUTIN));
    ends<&R::TEMP>(f, "TEMP", "Temperature", "Temp", "temperature");
    ends<&R::LF>(f, "LF", "Liquid fraction", "Ratio", "");
    ends<&R::LIQDEN>(f, "LIQDEN", "Liquid density", "Flow", "density");
    ends<&R::LIQVISC>(f, "LIQVISC", "Liquid viscosity", "Flow", "=cP");
    ends<&R::LIQSUR>(f, "LIQSUR", "Surface tension", "Flow", "=dyne/cm");
    ends<&R::VAPDEN>(f, "VAPDEN", "Vapour density", "Flow", "density");
    ends<&R::VAPVISC>(f, "VAPVISC", "Vapour viscosity", "Flow", "=cP");
    ends<&R::VAPMW>(f, "VAPMW", "Vapour molecular weight", "Flow", "");
    ends<&R::VAPZ>(f, "VAPZ", "Vapour Z", "Flow", "");
    ends<&R::VAPK>(f, "VAPK", "Vapour Cp/Cv", "Flow", "");
    f.tab("Heat")
        .pair("Q", "Duty", "Flow", "duty", A(Q))
        .pair("UI", "Heat transfer coefficient", "Flow", "heat_transfer_coefficient", A(UI))
        .number("TAMB", "Ambient temperature", "Temp", "temperature", A(TAMB))
        .number("TSUR", "Surface temperature", "Temp", "temperature", A(TSUR))
        .number("QFAC", "Heat transfer factor", "Flow", "", A(QFAC))
        .number("QAIR2", "Air velocity", "Flow", "velocity", A(QAIR2))
        .number("QPIP1", "Surface emissivity", "Ratio", "", A(QPIP[1]))
        .number("QPIP2", "Wall conductivity", "Flow", "conductivity", A(QPIP[2]))
        .number("QINS1", "Insulation thickness", "Flow", "diameter", A(QINS[1]))
        .number("QINS3", "Insulation conductivity", "Flow", "conductivity", A(QINS[3]))
        .tab("Sizing")
        .text("SIZ1", "Sizing rule", A(SIZ1))
        .number("SIZ2", "Gradient limit", "Flow", "gradient", A(SIZ[2]))
        .number("SIZ4", "Maximum velocity", "Flow", "velocity", A(SIZ[4]))
        .number("SIZ5", "Minimum velocity", "Flow", "velocity", A(SIZ[5]));
    f.tab("Results")
        .result("VEL1", "Inlet velocity", "velocity", A(VEL[1]))
        .result("VEL2", "Outlet velocity", "velocity", A(VEL[2]))
        .result("VEL4", "Sonic velocity", "velocity", A(VEL[4]))
        .result("DPL", "Pressure gradient", "gradient", A(DPL))
        .result("RE", "Reynolds number", "", A(RE))
        .result("F1", "Friction factor, fully turbulent", "", A(F[1]))
        .result("HUP", "Liquid hold-up", "", A(HUP))
        .result_text("REG1", "Flow regime, horizontal", A(REG[1]))
        .result_text("REG2", "Flow regime, vertical", A(REG[2]));
    equation_fields(f);
    f.notes(A(NOTES));
    return f.done();
}

// The materials, the sizes and schedules of the line's material, from the project's table.
void pipe_choices(const Project& p, const R& line, std::vector<DialogField>& fields) {
    const int m = find_pipe_material(p.pipedata, line.MAT);
    for (DialogField& d : fields) {
        if (d.name == "MAT")
            for (int i = 1; i <= count(p.pipedata); ++i) d.choices.push_back(p.pipedata[static_cast<std::size_t>(i)].MAT);
        if (m == 0) continue;
        const PipeData& pd = p.pipedata[static_cast<std::size_t>(m)];
        if (d.name == "DIA1") {
            d.choices.push_back("");
            for (int i = 1; i <= kPipeSizes; ++i)
                if (!pd.DIA[static_cast<std::size_t>(i)].name.empty()) d.choices.push_back(pd.DIA[static_cast<std::size_t>(i)].name);
        }
        if (d.name == "SCH") {
            for (int j = 1; j <= kPipeSchedules; ++j)
                if (!pd.SCH[static_cast<std::size_t>(j)].empty()) d.choices.push_back(pd.SCH[static_cast<std::size_t>(j)]);
            d.choices.push_back("ID");
        }
    }
}

std::string line_rules(RunContext& ctx, const Project& p, const R& line, const Texts& typed) {
    const int m = find_pipe_material(p.pipedata, line.MAT);
    if (m == 0) return "Invalid pipe material.";
    const bool inside_given = line.SCH == "ID";
    if (!inside_given && (line.SCH.empty() || find_schedule(p.pipedata[static_cast<std::size_t>(m)], line.SCH) == 0))
        return "Invalid pipe schedule.";
    if (!inside_given && !line.DIA[1].empty() &&
        pipe_ID_from_dia(ctx, p.pipedata, "ID", line.MAT, line.DIA[1], line.SCH, "m") <= 0.0)
        return "Invalid diameter/schedule combination.";
    // The template holds no composition of its own: a new line is given its fluid on the sheet.
    if (!typed.of_template() && !line_fluid_given(p, line, typed))
        return "Composition and Liquid Fraction is required for every line.";
    return "";
}

}  // namespace

const KindDef<Line>& line_dialog() {
    static const KindDef<R> k{"frmLine", &Project::lines, line_fields(), line_rules, pipe_choices};
    return k;
}

}  // namespace velm::dialog
