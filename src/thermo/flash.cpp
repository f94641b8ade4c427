#include "thermo/flash.hpp"

#include <cmath>

#include "import/simulators.hpp"
#include "model/fault.hpp"
#include "model/number_format.hpp"
#include "thermo/flash_algorithms.hpp"

namespace velm {

namespace {

std::string trimmed(const std::string& s) {
    const auto first = s.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

bool tracing(const FlashStream& s) { return (s.Trace & kFlashTraceLog) != 0; }

// One algorithm of the own engine with its trace line.
struct Algorithm {
    int (*run)(RunContext&, const FlashSetup&, FlashStream&, FlashWork&);
    const char* trace;
};

const Algorithm* algorithm_of(int ft) {
    static constexpr Algorithm kTP{flash_tp, "Flash - Flash at temperature and pressure."};
    static constexpr Algorithm kPF{flash_pf, "Flash - Flash at pressure and liquid fraction."};
    static constexpr Algorithm kPH{flash_ph, "Flash - Flash at pressure and enthalpy."};
    static constexpr Algorithm kPS{flash_ps, "Flash - Flash at pressure and entropy."};
    static constexpr Algorithm kTF{flash_tf, "Flash - Flash at temperature and liquid fraction."};
    switch (ft) {
        case 0:
        case kFlashTP: return &kTP;
        case kFlashPF: return &kPF;
        case kFlashPH: return &kPH;
        case kFlashPS: return &kPS;
        case kFlashTF: return &kTF;
        default: return nullptr;
    }
}

// Enthalpy, heat capacities and entropy of the phases present, in that order.
void caloric_properties(RunContext& ctx, const FlashSetup& fs, FlashStream& s, FlashWork& w) {
    const CompSpan comps(fs.comps);
    const bool vapour = s.LF < 1.0;
    const bool liquid = s.LF > 0.0;
    const auto h = [&](int phase, double T, Fractions x) {
        return enthalpy_at(ctx, w.hmethod, phase, T, s.P, x, comps, fs.kij, w.state);
    };
    const auto e = [&](int phase, Fractions x) {
        return entropy_at(ctx, w.hmethod, phase, s.T, s.P, x, comps, fs.kij, w.state);
    };
    s.HV = vapour ? h(kVapor, s.T, s.Y) : 0.0;
    s.HL = liquid ? h(kLiquid, s.T, s.X) : 0.0;
    if (s.FT != kFlashPH) s.H = (1.0 - s.LF) * s.HV + s.LF * s.HL;
    // Heat capacities by a forward difference of 1 K, kJ/kg/K.
    s.VAPCP = vapour ? h(kVapor, s.T + 1.0, s.Y) - s.HV : 0.0;
    s.LIQCP = liquid ? h(kLiquid, s.T + 1.0, s.X) - s.HL : 0.0;
    if (s.FT != kFlashPS) {
        const double sv = vapour ? e(kVapor, s.Y) : 0.0;
        const double sl = liquid ? e(kLiquid, s.X) : 0.0;
        s.S = (1.0 - s.LF) * sv + s.LF * sl;
    }
}

std::string pad(std::string text, std::size_t width) {
    if (text.size() < width) text.append(width - text.size(), ' ');
    return text;
}

// A column of the composition and property tables: "| " and 7 characters.
std::string cell(double value, const char* pattern) { return "| " + pad(format_number(value, pattern), 7); }
std::string blank_cell() { return "| " + std::string(7, ' '); }

std::string comp_name(const FlashSetup& fs, std::size_t i) {
    return i < fs.comps.size() ? trimmed(fs.comps[i].Name) : std::string();
}

// Runs the engine of MFLASH; on failure reason says which engine failed.
bool run_engine(RunContext& ctx, const FlashSetup& setup, FlashStream& s, std::string& reason) {
    const bool trace = tracing(s);
    if (same_word(setup.MFLASH, "HYSYS")) {
        if (trace) {
            ctx.log_error("Flash - Method = " + setup.MFLASH + ", Thermo = " + setup.MHYSYS);
            ctx.log_error("Flash - Call Hysys interface.");
        }
        const bool ok = setup.hysys != nullptr ? FlashHysys(ctx, *setup.hysys, setup, s)
                                               : FlashHysys(ctx, *no_hysys_server(), setup, s);
        if (!ok) reason = "HYSYS flash failed.";
        if (trace) FlashReport(ctx, setup, s);
        return ok;
    }
    if (same_word(setup.MFLASH, "VELM")) {
        if (trace)
            ctx.log_error("Flash - Method = " + setup.MFLASH + ", K-value = " + setup.MFLASHK + ", Enthalpy = " +
                          setup.MFLASHH);
        const bool ok = FlashDispatch(ctx, setup, s);
        if (!ok) reason = "VELM flash failed.";
        if (trace) FlashReport(ctx, setup, s);
        return ok;
    }
    // Includes "PPP": the closed library of that engine is not available.
    reason = "Flash method not supported.";
    return false;
}

}  // namespace

void flash_methods(const Header& gen, FlashSetup& setup) {
    setup.MFLASH = gen.MFLASH;
    setup.MFLASHK = gen.MFLASHK;
    setup.MFLASHH = gen.MFLASHH;
    setup.MFLASHR = gen.MFLASHR != 0;
    setup.MXYDAMP = gen.MXYDAMP;
    setup.MPPP = gen.MPPP;
    setup.MHYSYS = gen.MHYSYS;
    setup.PATM = gen.PATM;
}

std::vector<CompProp> pseudo_sets(const Project& project) {
    std::vector<CompProp> sets;
    sets.reserve(project.pseudos.size());
    for (const Pseudo& p : project.pseudos) sets.push_back(pseudo_half(p, 2));
    return sets;
}

void LoadFlashSetup(RunContext& ctx, const Project& project, const std::filesystem::path& lib_dir,
                    FlashSetup& setup) {
    flash_methods(project.gen, setup);
    const std::vector<CompProp> pseudo = pseudo_sets(project);
    CompLibrary lib;
    lib.mflash = setup.MFLASH;
    lib.dir = lib_dir;
    lib.pseudo = pseudo;
    const std::span<const int> ids(project.gen.COMP);
    setup.ids.assign(ids.begin(), ids.begin() + CountComps(ids) + 1);
    GetCompData(ctx, lib, ids, setup.comps, setup.kij);
}

bool HysysStart(RunContext& ctx, const FlashSetup& setup, const std::filesystem::path& work_dir) {
    if (setup.hysys != nullptr) return HysysStart(ctx, *setup.hysys, setup, work_dir);
    return HysysStart(ctx, *no_hysys_server(), setup, work_dir);
}

bool FlashDispatch(RunContext& ctx, const FlashSetup& setup, FlashStream& s) {
    FlashWork w;
    prepare_flash_work(setup, w);
    try {
        const Algorithm* algorithm = algorithm_of(s.FT);
        if (algorithm == nullptr) return false;
        if (tracing(s)) ctx.log_error(algorithm->trace);
        if (algorithm->run(ctx, setup, s, w) == 0) return false;
        transport_properties(ctx, setup, s);
        caloric_properties(ctx, setup, s, w);
        s.TOTMW = MixMW(s.Z, setup.comps);
        return true;
    } catch (const Fault& f) {
        ctx.log_error("Error! Err = " + fault_text(f));
        return false;
    }
}

void flash_search_start(FlashStream& s) {
    if (s.T == 0.0) s.T = kFlashStartT;
    if (s.P == 0.0) s.P = kFlashStartP;
}

double composition_sum(const FlashStream& s) {
    double sum = 0.0;
    for (std::size_t i = 1; i <= static_cast<std::size_t>(kMaxComps); ++i) sum += s.Z[i];
    return sum;
}

std::string flash_input_fault(const FlashSetup& setup, const FlashStream& s) {
    if (std::abs(composition_sum(s) - 1.0) > kFlashSumTolerance) return "Input composition <> 1 or No components defined.";
    if (setup.count() == 0) return "No components defined.";
    if (s.T < 0.0 || s.P < 0.0) return "Stream temperature or pressure out of range.";
    return {};
}

bool Flash(RunContext& ctx, const FlashSetup& setup, FlashStream& s) {
    const bool trace = tracing(s);
    bool ok = false;
    std::string reason;
    try {
        if (trace) ctx.log_error("Flash - Check input.");
        reason = flash_input_fault(setup, s);
        if (reason.empty()) ok = run_engine(ctx, setup, s, reason);
    } catch (const Fault& f) {
        ok = false;
        reason = "Err = " + fault_text(f);
    }
    if (!ok) ctx.log_error("Error! Stream " + trimmed(s.NAME) + " flash failed. " + reason);
    return ok;
}

std::vector<std::string> flash_report_lines(const FlashSetup& setup, const FlashStream& s) {
    const std::string rule(50, '-');
    const auto line = [](const char* label, double v, const char* pattern) {
        return std::string(label) + "\t= " + format_number(v, pattern);
    };
    std::vector<std::string> out{
        "Flash - Results",
        rule,
        line("Temperature  (K)   ", s.T, "0.0"),
        line("Presssure    (kPaa)", s.P, "0.0"),
        line("Liq Fraction (wt)  ", s.LF, "0.0####"),
        line("Vap Fraction (mol) ", s.VF, "0.0####"),
        line("Enthalpy  (kJ/kg)  ", s.H, "0.0#"),
        line("Entropy   (kJ/kg/K)", s.S, "0.0###"),
        "Compositions (Mol fraction)",
        rule,
        "Component | Total  | Vapour | Liquid ",
    };
    double sz = 0.0, sy = 0.0, sx = 0.0;
    for (std::size_t i = 1; i < setup.ids.size() && i <= static_cast<std::size_t>(kMaxComps); ++i) {
        if (setup.ids[i] <= 0) continue;
        out.push_back(pad(comp_name(setup, i).substr(0, 10), 10) + cell(s.Z[i], "0.0000") + cell(s.Y[i], "0.0000") +
                      cell(s.X[i], "0.0000"));
        sz += s.Z[i];
        sy += s.Y[i];
        sx += s.X[i];
    }
    out.push_back(rule);
    out.push_back("TOTAL     " + cell(sz, "0.0000") + cell(sy, "0.0000") + cell(sx, "0.0000"));
    const auto row = [&](const char* label, const double* total, double vap, const double* liq, const char* pattern) {
        out.push_back(std::string(label) + (total ? cell(*total, pattern) : blank_cell()) + cell(vap, pattern) +
                      (liq ? cell(*liq, pattern) : blank_cell()));
    };
    row("Mol weight         ", &s.TOTMW, s.VAPMW, &s.LIQMW, "0.000");
    row("Compressibility    ", nullptr, s.VAPZ, nullptr, "0.0000");
    row("Density (kg/m3)    ", nullptr, s.VAPDEN, &s.LIQDEN, "0.00");
    row("Viscosity (cP)     ", nullptr, s.VAPVISC, &s.LIQVISC, "0.0000");
    row("Therm Cond (W/m/K) ", nullptr, s.VAPCON, &s.LIQCON, "0.0000");
    row("Heat Cap (kJ/kg/K) ", nullptr, s.VAPCP, &s.LIQCP, "0.000");
    out.push_back("Sur Tension(dyn/cm)" + blank_cell() + blank_cell() + cell(s.LIQSUR, "0.00"));
    out.push_back("Interaction Coefficients");
    for (std::size_t i = 1; i < setup.kij.size(); ++i)
        for (std::size_t j = i + 1; j < setup.kij[i].size(); ++j)
            if (setup.kij[i][j] != 0.0)
                out.push_back(comp_name(setup, i) + " and " + comp_name(setup, j) +
                              " kij = " + format_number(setup.kij[i][j], "0.0000"));
    return out;
}

void FlashReport(RunContext& ctx, const FlashSetup& setup, const FlashStream& s) {
    for (const std::string& text : flash_report_lines(setup, s)) ctx.log_error(text);
}

}  // namespace velm
