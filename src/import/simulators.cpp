#include "import/simulators.hpp"

#include <cmath>

#include "import/stream_import.hpp"
#include "model/context.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

// Runs the stages in order; the first that the server refuses is logged as
// "Error! " + its text and ends the run.
template <class... Stage>
bool by_stages(RunContext& ctx, Stage&&... stages) {
    const char* text = nullptr;
    try {
        ((text = stages.first, stages.second()), ...);
        return true;
    } catch (const SimulatorRefused&) {
        ctx.log_error(std::string("Error! ") + text);
        return false;
    }
}

template <class F>
std::pair<const char*, F> stage(const char* text, F f) {
    return {text, std::move(f)};
}

class NoHysys : public HysysServer {
public:
    void create_case(const std::filesystem::path&) override { throw SimulatorRefused{}; }
    void set_basis(const std::string&, const std::string&) override { throw SimulatorRefused{}; }
    void add_components(const std::vector<std::string>&) override { throw SimulatorRefused{}; }
    void add_stream(const std::string&) override { throw SimulatorRefused{}; }
    void keep_stream(const std::string&) override { throw SimulatorRefused{}; }
    void set_composition(const std::vector<double>&) override { throw SimulatorRefused{}; }
    void erase_specifications() override { throw SimulatorRefused{}; }
    void set_temperature(double) override { throw SimulatorRefused{}; }
    void set_pressure(double) override { throw SimulatorRefused{}; }
    void set_vapour_fraction(double) override { throw SimulatorRefused{}; }
    void set_molar_enthalpy(double) override { throw SimulatorRefused{}; }
    void set_molar_entropy(double) override { throw SimulatorRefused{}; }
    void set_mass_flow(double) override { throw SimulatorRefused{}; }
    bool solved() override { return false; }
    SimulatorState state() override { throw SimulatorRefused{}; }
    std::vector<double> composition() override { throw SimulatorRefused{}; }
    int phase_count() override { throw SimulatorRefused{}; }
    SimulatorPhase vapour() override { throw SimulatorRefused{}; }
    std::array<SimulatorPhase, 2> liquids() override { throw SimulatorRefused{}; }
    void connect() override { throw SimulatorRefused{}; }
    void open_case(const std::filesystem::path&) override { throw SimulatorRefused{}; }
    void find_stream(const std::string&) override { throw SimulatorRefused{}; }
};

class NoAspen : public AspenDocument {
public:
    void open(const std::filesystem::path&) override { throw SimulatorRefused{}; }
    double value(const std::vector<std::string>&) override { throw SimulatorRefused{}; }
};

std::vector<double> over_components(const Comps& z, std::size_t n) { return {z.begin() + 1, z.begin() + 1 + n}; }

void into_comps(const std::vector<double>& v, Comps& z) {
    z.fill(0.0);
    for (std::size_t i = 0; i < v.size() && i + 1 < z.size(); ++i) z[i + 1] = v[i];
}

// The molar vapour fraction the server takes for a liquid fraction by weight:
// it depends on the split through the vapour's mole weight, so it is set
// again until it stands (50 rounds, 1e-7).
void set_weight_split(HysysServer& server, double LF) {
    double vf = 1.0 - LF;
    for (int round = 0; round < 50; ++round) {
        server.set_vapour_fraction(vf);
        if (LF == 0.0 || LF == 1.0) return;
        const double mw = server.state().mw, vap = server.vapour().mw;
        if (vap == 0.0) return;
        const double next = (1.0 - LF) * mw / vap;
        if (std::abs(next - vf) < 1e-7) return;
        vf = next;
    }
}

void set_conditions(HysysServer& server, const FlashStream& s) {
    server.erase_specifications();
    const double mw = s.TOTMW > 0.0 ? s.TOTMW : 1.0;
    switch (s.FT) {
        case kFlashPF: server.set_pressure(s.P); set_weight_split(server, s.LF); break;
        case kFlashTF: server.set_temperature(s.T); set_weight_split(server, s.LF); break;
        case kFlashPH: server.set_pressure(s.P); server.set_molar_enthalpy(s.H * mw); break;
        case kFlashPS: server.set_pressure(s.P); server.set_molar_entropy(s.S * mw); break;
        default: server.set_temperature(s.T); server.set_pressure(s.P); break;
    }
    server.set_mass_flow(1000.0);
}

double mass_mean(double a, double wa, double b, double wb) {
    const double w = wa + wb;
    return w > 0.0 ? (a * wa + b * wb) / w : 0.0;
}

struct AspenValue {
    const char* stage;  // what the log says when the value cannot be had
    const char* key;
    const char* phase;
    const char* line_key;
};

// The stream values of an Aspen Plus document, in the order they are read.
constexpr AspenValue kAspenValues[] = {
    {"Retrieving stream temperature.", "TEMP", "MIXED", "TEMP"},
    {"Retrieving stream pressure.", "PRES", "MIXED", "PRES"},
    {"Retrieving stream liquid fraction.", "MASSVFRA", "MIXED", "LF"},
    {"Retrieving stream enthalpy.", "HMX", "MIXED", "H"},
    {"Retrieving stream entropy.", "SMX", "MIXED", "S"},
    {"Retrieving vapor viscosity.", "MUMX", "VAPOR", "VAPVISC"},
    {"Retrieving vapor molecular weight.", "MWMX", "VAPOR", "VAPMW"},
    {"Retrieving vapor compressibility.", "ZMX", "VAPOR", "VAPZ"},
    {"Retrieving vapor cp/cv.", "CPCVMX", "VAPOR", "VAPK"},
    {"Retrieving liquid density.", "RHOMX", "LIQUID", "LIQDEN"},
    {"Retrieving liquid viscosity.", "MUMX", "LIQUID", "LIQVISC"},
    {"Retrieving liquid surface tension.", "SIGMAMX", "LIQUID", "LIQSUR"},
};

}  // namespace

bool hysys_open(RunContext& ctx, HysysServer& server, const std::filesystem::path& file) {
    if (file.empty())
        return by_stages(ctx, stage("Cannot connect to Hysys.", [&] { server.connect(); }),
                         stage("Cannot open active document.", [&] { server.open_case({}); }));
    const std::string cannot_open = "Cannot open file = " + file.string();
    return by_stages(ctx, stage("Cannot connect to Hysys.", [&] { server.connect(); }),
                     stage(cannot_open.c_str(), [&] { server.open_case(file); }));
}

bool hysys_stream(RunContext& ctx, HysysServer& server, const std::string& name, double patm, StreamValues& out) {
    out.clear();
    return by_stages(ctx, stage("Cannot connect to stream.", [&] { server.find_stream(name); }),
                     stage("Cannot retrieve Hysys stream properties.",
                           [&] {
                               const SimulatorState st = server.state();
                               out = {{"TEMP", st.T - 273.15}, {"PRES", st.P - patm},
                                      {"LF", 1.0 - st.mass_vapour_fraction}, {"H", st.H}, {"S", st.S}};
                           }),
                     stage("Cannot retrieve Hysys vapor/liquid properties.",
                           [&] {
                               const SimulatorPhase v = server.vapour();
                               out.insert(out.end(), {{"VAPVISC", v.viscosity}, {"VAPMW", v.mw}, {"VAPZ", v.z},
                                                      {"VAPK", v.cp_cv}});
                           }),
                     stage("Cannot calculate Hysys liquid properties.", [&] {
                         const std::array<SimulatorPhase, 2> l = server.liquids();
                         const SimulatorPhase liquid = merge_liquids(l[0], l[1]);
                         out.insert(out.end(), {{"LIQDEN", liquid.density}, {"LIQVISC", liquid.viscosity},
                                                {"LIQSUR", liquid.surface_tension}});
                     }));
}

bool aspen_open(RunContext& ctx, AspenDocument& doc, const std::filesystem::path& file) {
    return by_stages(ctx, stage("Cannot connect to Aspen file.", [&] { doc.open(file); }));
}

bool aspen_stream(RunContext& ctx, AspenDocument& doc, const std::string& name, double patm, StreamValues& out) {
    out.clear();
    for (const AspenValue& a : kAspenValues) {
        const auto read = [&] {
            double v = doc.value({"Data", "Streams", name, "Output", "STRM_UPP", a.key, a.phase, "TOTAL"});
            if (std::string_view(a.line_key) == "TEMP") v -= 273.15;
            if (std::string_view(a.line_key) == "PRES") v -= patm;
            if (std::string_view(a.line_key) == "LF") v = 1.0 - v;
            out.emplace_back(a.line_key, v);
        };
        if (!by_stages(ctx, stage(a.stage, read))) return false;
    }
    return true;
}

std::unique_ptr<HysysServer> no_hysys_server() { return std::make_unique<NoHysys>(); }
std::unique_ptr<AspenDocument> no_aspen_document() { return std::make_unique<NoAspen>(); }

SimulatorPhase merge_liquids(const SimulatorPhase& light, const SimulatorPhase& heavy) {
    const double m1 = light.mass_flow, m2 = heavy.mass_flow, n1 = light.molar_flow, n2 = heavy.molar_flow;
    SimulatorPhase out;
    out.mass_flow = m1 + m2;
    out.molar_flow = n1 + n2;
    const double v1 = light.density > 0.0 ? 1.0 / light.density : 0.0;
    const double v2 = heavy.density > 0.0 ? 1.0 / heavy.density : 0.0;
    const double v = mass_mean(v1, m1, v2, m2);
    out.density = v > 0.0 ? 1.0 / v : 0.0;
    out.enthalpy = mass_mean(light.enthalpy, m1, heavy.enthalpy, m2);
    out.cp = mass_mean(light.cp, m1, heavy.cp, m2);
    out.viscosity = mass_mean(light.viscosity, m1, heavy.viscosity, m2);
    out.conductivity = mass_mean(light.conductivity, m1, heavy.conductivity, m2);
    out.surface_tension = mass_mean(light.surface_tension, m1, heavy.surface_tension, m2);
    out.mw = mass_mean(light.mw, n1, heavy.mw, n2);
    out.fractions.resize(std::max(light.fractions.size(), heavy.fractions.size()), 0.0);
    for (std::size_t i = 0; i < out.fractions.size(); ++i) {
        const double a = i < light.fractions.size() ? light.fractions[i] : 0.0;
        const double b = i < heavy.fractions.size() ? heavy.fractions[i] : 0.0;
        out.fractions[i] = mass_mean(a, n1, b, n2);
    }
    return out;
}

bool HysysStart(RunContext& ctx, HysysServer& server, const FlashSetup& setup,
                const std::filesystem::path& work_dir) {
    std::vector<std::string> names;
    for (std::size_t i = 1; i < setup.comps.size(); ++i) names.push_back(trim(setup.comps[i].Name));
    return by_stages(ctx, stage("Cannot start Hysys.", [&] { server.create_case(work_dir / "Temp.hsc"); }),
                     stage("Cannot set Hysys basis.", [&] { server.set_basis("Velm-0", setup.MHYSYS); }),
                     stage("Cannot add Hysys components.", [&] { server.add_components(names); }),
                     stage("Cannot add Hysys streams.", [&] { server.add_stream("L1"); }),
                     stage("Cannot set Hysys stream compositions.", [&] { server.keep_stream("L1"); }));
}

bool FlashHysys(RunContext& ctx, HysysServer& server, const FlashSetup& setup, FlashStream& s) {
    const std::size_t n = setup.count();
    bool solved = true;
    FlashStream out = s;
    const bool ok = by_stages(
        ctx, stage("Cannot set Hysys stream compositions.", [&] { server.set_composition(over_components(s.Z, n)); }),
        stage("Cannot set Hysys flash conditions.", [&] { set_conditions(server, s); }),
        stage("Flash failed.", [&] { solved = server.solved(); if (!solved) throw SimulatorRefused{}; }),
        stage("Cannot retrieve Hysys stream properties.",
              [&] {
                  const SimulatorState st = server.state();
                  out.T = st.T;
                  out.P = st.P;
                  out.LF = 1.0 - st.mass_vapour_fraction;
                  out.VF = st.vapour_fraction;
                  out.H = st.H;
                  out.S = st.S;
                  out.TOTMW = st.mw;
              }),
        stage("Cannot retrieve Hysys stream composition.", [&] { into_comps(server.composition(), out.Z); }),
        stage("Cannot retrieve Hysys vapor/liquid properties.",
              [&] {
                  if (server.phase_count() <= 0) throw SimulatorRefused{};
                  const SimulatorPhase v = server.vapour();
                  out.VAPDEN = v.density;
                  out.VAPMW = v.mw;
                  out.VAPZ = v.z;
                  out.VAPVISC = v.viscosity;
                  out.VAPK = v.cp_cv;
                  out.HV = v.enthalpy;
                  out.VAPCON = v.conductivity;
                  out.VAPCP = v.cp;
                  into_comps(v.fractions, out.Y);
              }),
        stage("Cannot calculate Hysys liquid properties.", [&] {
            const std::array<SimulatorPhase, 2> l = server.liquids();
            const SimulatorPhase liquid = merge_liquids(l[0], l[1]);
            out.LIQDEN = liquid.density;
            out.LIQVISC = liquid.viscosity;
            out.HL = liquid.enthalpy;
            out.LIQSUR = liquid.surface_tension;
            out.LIQMW = liquid.mw;
            out.LIQCON = liquid.conductivity;
            out.LIQCP = liquid.cp;
            into_comps(liquid.fractions, out.X);
        }));
    if (ok) s = out;
    return ok;
}

// A HYSYS case (the active one when no file is named) or an Aspen Plus
// document, through this build's automation layer.
bool import_from_simulator(RunContext& ctx, Project& p, const std::string& simulator, const std::string& source,
                           const ImportChoices& choices) {
    const double patm = p.gen.PATM;
    if (simulator == "Hysys") {
        const auto server = no_hysys_server();
        if (!hysys_open(ctx, *server, source)) return false;
        import_simulator_streams(
            ctx, p, [&](const std::string& name, StreamValues& v) { return hysys_stream(ctx, *server, name, patm, v); },
            source.empty() ? "Hysys" : source, choices);
        return true;
    }
    const auto doc = no_aspen_document();
    if (!aspen_open(ctx, *doc, source)) return false;
    import_simulator_streams(
        ctx, p, [&](const std::string& name, StreamValues& v) { return aspen_stream(ctx, *doc, name, patm, v); },
        source, choices);
    return true;
}

}  // namespace velm
