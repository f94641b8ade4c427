// Process simulators behind one interface: the flash of a HYSYS server on a
// scratch case (HysysStart, FlashHysys) and the stream tables of a HYSYS case
// or an Aspen Plus document for the stream import. On the desktop these are
// automation servers; this build has none, and its one real implementation
// says so in the program's words ("Cannot start Hysys.", "Cannot connect to
// Aspen file."). Tests drive every stage through a double of the interface.
#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "thermo/flash.hpp"

namespace velm {

struct RunContext;

// A request the server refused; the caller reports the stage it was in.
struct SimulatorRefused {};

// One phase as the server reports it (units as the program asks for them:
// kg/h, kg/m3, cP, kJ/kg, W/m/K, kJ/kg/C, kgmole/h, dyne/cm).
struct SimulatorPhase {
    double mass_flow = 0.0, density = 0.0, mw = 0.0, z = 0.0, viscosity = 0.0, cp_cv = 0.0, enthalpy = 0.0;
    double conductivity = 0.0, cp = 0.0, molar_flow = 0.0, surface_tension = 0.0;
    std::vector<double> fractions;  // mole fractions, one per component
};

// The stream as a whole: K, kPa, fractions, kJ/kg, kJ/kg-K.
struct SimulatorState {
    double T = 0.0, P = 0.0, mass_vapour_fraction = 0.0, vapour_fraction = 0.0, H = 0.0, S = 0.0, mw = 0.0;
};

// What the program asks of a HYSYS server. Each call throws SimulatorRefused
// when the server fails it.
class HysysServer {
public:
    virtual ~HysysServer() = default;
    // HysysStart, in its order of stages.
    virtual void create_case(const std::filesystem::path& file) = 0;  // "HYSYS.Application", SimulationCases.Add
    virtual void set_basis(const std::string& package, const std::string& property_package) = 0;
    virtual void add_components(const std::vector<std::string>& names) = 0;
    virtual void add_stream(const std::string& name) = 0;
    virtual void keep_stream(const std::string& name) = 0;
    // FlashHysys on the kept stream.
    virtual void set_composition(const std::vector<double>& z) = 0;
    virtual void erase_specifications() = 0;
    virtual void set_temperature(double kelvin) = 0;
    virtual void set_pressure(double kpa) = 0;
    virtual void set_vapour_fraction(double molar) = 0;
    virtual void set_molar_enthalpy(double kj_per_kgmole) = 0;
    virtual void set_molar_entropy(double kj_per_kgmole_c) = 0;
    virtual void set_mass_flow(double kg_per_h) = 0;
    virtual bool solved() = 0;  // temperature and pressure came back set
    virtual SimulatorState state() = 0;
    virtual std::vector<double> composition() = 0;
    virtual int phase_count() = 0;
    virtual SimulatorPhase vapour() = 0;
    virtual std::array<SimulatorPhase, 2> liquids() = 0;  // light and heavy
    // Stream import from a case: the active one (empty file) or a file.
    virtual void connect() = 0;
    virtual void open_case(const std::filesystem::path& file) = 0;
    virtual void find_stream(const std::string& name) = 0;
};

// What the program asks of an Aspen Plus document: the value of the tree
// element reached through the names in path.
class AspenDocument {
public:
    virtual ~AspenDocument() = default;
    virtual void open(const std::filesystem::path& file) = 0;
    virtual double value(const std::vector<std::string>& path) = 0;
};

// The implementations of this build: no automation server is there.
std::unique_ptr<HysysServer> no_hysys_server();
std::unique_ptr<AspenDocument> no_aspen_document();

// Builds the scratch case for a batch of flashes: stage by stage, each failure
// logged as "Error! " + its stage. False when a stage failed.
bool HysysStart(RunContext& ctx, HysysServer& server, const FlashSetup& setup, const std::filesystem::path& work_dir);

// Flashes the stream on the server's kept stream and reads it back, merging
// the two liquid phases into one. False, with "Error! " + the stage, when a
// stage failed.
bool FlashHysys(RunContext& ctx, HysysServer& server, const FlashSetup& setup, FlashStream& s);

// One stream of a simulator case as the line keys take it (TEMP C, PRES kPag,
// LF, H, S, VAPVISC, VAPMW, VAPZ, VAPK, LIQDEN, LIQVISC, LIQSUR).
using StreamValues = std::vector<std::pair<std::string, double>>;

// Opens the HYSYS case for a stream import (the active one when file is
// empty); false with "Error! " + the stage's text when it cannot.
bool hysys_open(RunContext& ctx, HysysServer& server, const std::filesystem::path& file);
// Reads one stream of the open case; false with the stage's text logged.
bool hysys_stream(RunContext& ctx, HysysServer& server, const std::string& name, double patm, StreamValues& out);

// Opens an Aspen Plus document; false with "Error! Cannot connect to Aspen file.".
bool aspen_open(RunContext& ctx, AspenDocument& doc, const std::filesystem::path& file);
// Reads one stream by walking the document's tree ("Data", "Streams", name,
// "Output", "STRM_UPP", key, phase, "TOTAL"); false with the stage's text.
bool aspen_stream(RunContext& ctx, AspenDocument& doc, const std::string& name, double patm, StreamValues& out);

// The two liquid phases as one: specific volume, enthalpy, heat capacity,
// viscosity, conductivity and surface tension by mass flow, mole weight and
// composition by molar flow.
SimulatorPhase merge_liquids(const SimulatorPhase& light, const SimulatorPhase& heavy);

// Imports the streams of a HYSYS case (simulator "Hysys"; the active case when
// source is empty) or of an Aspen Plus document ("Aspen") into the lines, as a
// file import does; false when the simulator or its document cannot be opened.
struct ImportChoices;
bool import_from_simulator(RunContext& ctx, Project& p, const std::string& simulator, const std::string& source,
                           const ImportChoices& choices);

}  // namespace velm
