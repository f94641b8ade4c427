// The defaults dialog (units, run limits, atmospheric pressure, sheet and
// printing) and the methods dialog. What the user picks here is also what
// a new project starts with, so each entry names its settings key.
#include <string>

#include "dialogs/check_input.hpp"
#include "dialogs/options_table.hpp"
#include "model/settings.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

using R = OptionsState;

// Iterations and convergence error that a blank entry stands for.
constexpr int kBlankMaxIter = 10;
constexpr double kBlankSosError = 0.001;
// The iteration count is a 16-bit number; the printer line width is in pixels.
constexpr int kMostIterations = 32767;
constexpr int kWidestPrinterLine = 100;

void defaults_finish(R& edited, const R& before, const Texts& typed) {
    if (trim_view(typed.of("MAXITER")).empty()) edited.max_iter = kBlankMaxIter;
    if (trim_view(typed.of("SOSERROR")).empty()) edited.soserror = kBlankSosError;
    // A named sheet has its own size; a custom one keeps the size typed.
    Header& g = edited.gen;
    if (g.DWGSTD != before.gen.DWGSTD || g.DWGSIZ != before.gen.DWGSIZ) {
        const auto [w, h] = sheet_size(g.DWGSTD, g.DWGSIZ[1], g.DWGSIZ[2]);
        g.DWGSIZ[1] = w;
        g.DWGSIZ[2] = h;
    }
}

std::string defaults_rules(const R& edited, const R& before, const Texts& typed) {
    if (edited.max_iter != before.max_iter && (edited.max_iter < 1 || edited.max_iter > kMostIterations))
        return invalid_input(typed.of("MAXITER"));
    if (edited.soserror != before.soserror && !(edited.soserror > 0.0)) return invalid_input(typed.of("SOSERROR"));
    if (edited.gen.PRTWID != before.gen.PRTWID && (edited.gen.PRTWID < 1 || edited.gen.PRTWID > kWidestPrinterLine))
        return invalid_input(typed.of("PRTWID"));
    return "";
}

std::vector<FieldDef<R>> defaults_fields() {
    Fields<R> f;
    f.tab("General")
        .text("UNITS", "Units", A(gen.UNITS), "", {"Metric", "British", "Custom"})
        .integer("MAXITER", "Maximum iterations", A(max_iter))
        .number("SOSERROR", "Convergence error", "Flow", "", A(soserror))
        .number("PATM", "Atmospheric pressure", "Patm", "pressure", A(gen.PATM))
        .tab("Drawing")
        .text("DWGSTD", "Sheet size", A(gen.DWGSTD), "",
              {"A4 Landscape", "A3 Landscape", "A2 Landscape", "Letter Landscape", "11x17  Landscape",
               "17x22  Landscape", "Custom"})
        .single("DWGSIZ1", "Sheet width", "Flow", "=twip", A(gen.DWGSIZ[1]))
        .single("DWGSIZ2", "Sheet height", "Flow", "=twip", A(gen.DWGSIZ[2]))
        .single("DWGMAR", "Sheet margin", "Flow", "=twip", A(gen.DWGMAR))
        .flag("DWGGRD1", "Show grid", A(gen.DWGGRD1), "Show grid on drawing (it slows down drawing).")
        .integer("DWGGRD2", "Grid size", A(gen.DWGGRD2), "", {"1", "50", "100"})
        .flag("DWGBOR", "Border and title block", A(gen.DWGBOR))
        .tab("Printing")
        .text("RPTSIZ1", "Report paper", A(gen.RPTSIZ1), "", {"A4", "Letter"})
        .integer("RPTSIZ2", "Report margin", A(gen.RPTSIZ2))
        .integer("RPTSIZ4", "Report font size", A(gen.RPTSIZ4), "", {"6", "7", "8", "9", "10"})
        .integer("PRTWID", "Printer line width", A(gen.PRTWID));
    return f.done();
}

std::vector<FieldDef<R>> calcs_fields() {
    Fields<R> f;
    f.tab("Hydraulics")
        .text("MFIT", "Fittings", A(gen.MFIT), "", {"Crane", "2K"})
        .text("MCOMP", "Compressible flow", A(gen.MCOMP), "", {"Incompressible", "Isothermal"})
        .text("MTP", "Two-phase flow", A(gen.MTP), "",
              {"Homogeneous", "Dukler", "Lockhart-Martinelli", "Chisholm", "Chenoweth-Martin", "Beggs-Brill"})
        .text("MDELEV", "Elevation density", A(gen.MDELEV), "", {"Homogeneous", "Liquid", "Flanigan", "GPSA", "Hughmark"})
        .text("MDUKHP", "Dukler hold-up", A(gen.MDUKHP), "", {"GPSA", "Hughmark"})
        .flag("MDUKF", "Smooth pipe friction", A(gen.MDUKF), "Use smooth pipe friction factors for Dukler+Beggs-Brill.")
        .text("MACCEL", "Acceleration", A(gen.MACCEL), "",
              {"None", "Log", "Homogeneous", "Hughmark", "Lockhart-Martinelli"})
        .text("MSONIC", "Sonic velocity", A(gen.MSONIC), "", {"Isothermal", "Adiabatic"})
        .number("MHDAMP", "Flow damping", "Ratio", "", A(gen.MHDAMP))
        .text("MFODEN", "Orifice two-phase density", A(gen.MFODEN), "", {"SumOfArea", "Homogeneous"})
        .text("MCVDEN", "Valve two-phase density", A(gen.MCVDEN), "", {"SumOfCv", "Homogeneous"})
        .tab("Flash")
        .text("MFLASH", "Flash method", A(gen.MFLASH), "", {"None", "VELM", "Hysys"})
        .text("MFLASHK", "K-values", A(gen.MFLASHK), "", {"Antoine", "SRK"})
        .text("MFLASHH", "Enthalpy", A(gen.MFLASHH), "", {"Ideal", "SRK", "WS97"})
        .flag("MFLASHR", "Resume flash", A(gen.MFLASHR), "Select to resume flash calculations.")
        .number("MXYDAMP", "Composition damping", "Ratio", "", A(gen.MXYDAMP));
    return f.done();
}

}  // namespace

const OptionsDef& defaults_options() {
    static const OptionsDef d{.name = "mnuOptionsDef",
                              .fields = defaults_fields(),
                              .keys = {{"UNITS", "Units"},
                                       {"MAXITER", "MaxIter"},
                                       {"SOSERROR", "soserror"},
                                       {"PATM", "Patm"},
                                       {"DWGSTD", "DrawSize"},
                                       {"DWGMAR", "DrawMargin"},
                                       {"RPTSIZ1", "RptPaperSize"},
                                       {"RPTSIZ2", "RptPaperMargin"},
                                       {"RPTSIZ4", "RptFontSize"},
                                       {"PRTWID", "PrinterDrawWidth"}},
                              .finish = defaults_finish,
                              .rules = defaults_rules};
    return d;
}

const OptionsDef& calcs_options() {
    static const OptionsDef d{.name = "mnuOptionsCalcs",
                              .fields = calcs_fields(),
                              .keys = {{"MFIT", "MethodFit"},
                                       {"MCOMP", "MethodCompFlow"},
                                       {"MTP", "MethodTwoPhaseFlow"},
                                       {"MDELEV", "MethodDenElev"},
                                       {"MDUKHP", "MethodDuklerHoldUp"},
                                       {"MDUKF", "MethodDuklerF"},
                                       {"MACCEL", "MethoddPAccel"},
                                       {"MSONIC", "MethodVelSonic"},
                                       {"MHDAMP", "gHydrDamp"},
                                       {"MFODEN", "MethodOrificeDen"},
                                       {"MCVDEN", "MethodValveDen"},
                                       {"MFLASH", "MethodFlash"},
                                       {"MFLASHK", "MethodFlashK"},
                                       {"MFLASHH", "MethodFlashH"},
                                       {"MFLASHR", "FlashResume"},
                                       {"MXYDAMP", "gXYDamp"}}};
    return d;
}

}  // namespace velm::dialog
