// The flash: every thermodynamic state of the program is obtained by filling a
// FlashStream and passing it to Flash, which checks the input, chooses the
// engine of the project (MFLASH) and hands the stream back with its
// conditions, phase split, phase compositions and phase properties.
//
// Units of the stream are fixed: T in K, P in kPa absolute, enthalpy kJ/kg,
// entropy kJ/kg/K, density kg/m3, viscosity cP, conductivity W/m/K, heat
// capacity kJ/kg/K, surface tension dyn/cm, compositions in mole fractions
// indexed 1..30 by the component's position in the project (0 unused).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"
#include "thermo/components.hpp"
#include "thermo/srk.hpp"

namespace velm {

// Flash types: what is given and what the flash solves.
inline constexpr int kFlashTP = 1;  // T, P given (0 also)
inline constexpr int kFlashPF = 2;  // P, LF given: temperature
inline constexpr int kFlashPH = 3;  // P, H given: temperature and split
inline constexpr int kFlashPS = 4;  // P, S given: temperature and split
inline constexpr int kFlashTF = 5;  // T, LF given: pressure

// Bit of FlashStream::Trace that asks for the trace lines and the results
// block in the run log.
inline constexpr int kFlashTraceLog = 2;

class HysysServer;

struct FlashStream {
    std::string NAME;      // label in messages, at most 12 characters
    double T = 0.0;        // K
    double P = 0.0;        // kPa absolute
    double LF = 0.0;       // liquid fraction by weight: 0 all vapour, 1 all liquid
    double VF = 0.0;       // vapour fraction by moles
    double Resid = 0.0;    // signed distance from the phase boundary of a single phase, 0 with two phases
    double H = 0.0;        // kJ/kg
    double HV = 0.0;       // vapour enthalpy, 0 without vapour
    double HL = 0.0;       // liquid enthalpy, 0 without liquid
    double S = 0.0;        // kJ/kg/K
    int FT = 0;            // flash type, kFlashTP .. kFlashTF
    double TOTMW = 0.0;    // kg/kmol
    double LIQDEN = 0.0, LIQMW = 0.0, LIQVISC = 0.0, LIQSUR = 0.0, LIQCON = 0.0, LIQCP = 0.0;
    double VAPDEN = 0.0, VAPMW = 0.0, VAPZ = 0.0, VAPVISC = 0.0, VAPK = 0.0, VAPCON = 0.0, VAPCP = 0.0;
    Comps Z{};             // total composition
    Comps X{};             // liquid composition
    Comps Y{};             // vapour composition
    int Trace = 0;         // kFlashTraceLog: trace lines and results block
};

// What every flash of a project reads: the methods of the project header and
// the component set built by GetCompData.
struct FlashSetup {
    std::string MFLASH = "Velm";   // engine: "VELM", "HYSYS" or "PPP", any case
    std::string MFLASHK = "SRK";   // K-value method: "SRK" or "ANTOINE"
    std::string MFLASHH = "SRK";   // enthalpy method: "SRK", "IDEAL" or "WS97"
    bool MFLASHR = true;           // searches start from the stream's own T or P
    double MXYDAMP = 0.9;          // damping of the phase compositions in the TP flash
    int MPPP = 518;                // thermodynamic method number of the closed library
    std::string MHYSYS = "SRK";    // fluid package of the simulator
    double PATM = 101.325;         // atmospheric pressure, kPa
    std::vector<int> ids;          // component numbers, ids[1..n]
    std::vector<CompProp> comps;   // component records, comps[1..n]
    Kij kij;                       // interaction coefficients, (n+1) x (n+1)
    HysysServer* hysys = nullptr;  // the server of the "HYSYS" engine; none: this build's, which cannot start

    std::size_t count() const { return comps.empty() ? 0 : comps.size() - 1; }
};

// Starts the scratch case of the "HYSYS" engine for a batch of flashes, on
// setup.hysys or this build's server (which reports "Cannot start Hysys.").
bool HysysStart(RunContext& ctx, const FlashSetup& setup, const std::filesystem::path& work_dir);

// Copies the methods of the header into setup.
void flash_methods(const Header& gen, FlashSetup& setup);

// The set in force of each pseudo component of the project, 1-based (element
// 0 the template's), as GetComp reads them.
std::vector<CompProp> pseudo_sets(const Project& project);

// The flash setup of a project: its methods, and its components read from the
// libraries (lib_dir empty: the built-in ones) with the estimated sets of its
// pseudo components.
void LoadFlashSetup(RunContext& ctx, const Project& project, const std::filesystem::path& lib_dir,
                    FlashSetup& setup);

// Fixed starts of the searches: the temperature of the PH, PS and PF flashes
// (K) and the pressure of the TF flash (kPa absolute).
inline constexpr double kFlashStartT = 300.0, kFlashStartP = 200.0;

// A stream whose temperature or pressure is 0 (not given) takes the fixed
// start there, so that a PF or TF flash needs only its two given values.
void flash_search_start(FlashStream& s);

// How far the sum of the total composition may lie from 1.
inline constexpr double kFlashSumTolerance = 0.001;

// Sum of the total composition Z over all positions.
double composition_sum(const FlashStream& s);

// Why Flash refuses the stream before any engine runs, in the words of its
// failure line: the composition sum further than kFlashSumTolerance from 1, no
// components, or a negative T or P. Empty when the stream passes.
std::string flash_input_fault(const FlashSetup& setup, const FlashStream& s);

// The only entry point other subsystems call. Checks the input as
// flash_input_fault does, then runs the engine of MFLASH. On failure logs
// "Error! Stream <NAME> flash failed. " and the reason. Returns true on success.
bool Flash(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// The own engine: the algorithm of s.FT, then the phase properties, enthalpy,
// entropy and mole weight. False when the algorithm fails (no property step
// runs) or FT is unknown.
bool FlashDispatch(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

// The simulator engine. The simulator interface is not part of this build:
// both report that the simulator cannot be started and return false.

// The results block of a flash as it goes to the run log, one line a line.
std::vector<std::string> flash_report_lines(const FlashSetup& setup, const FlashStream& s);

// Writes the results block to the run log.
void FlashReport(RunContext& ctx, const FlashSetup& setup, const FlashStream& s);

// Liquid-side (LF > 0, composition X) and vapour-side (LF < 1, composition Y)
// phase properties of a flashed stream: densities, mole weights, viscosities,
// conductivities, surface tension, vapour Z and Cp/Cv; the other side's are 0.
void transport_properties(RunContext& ctx, const FlashSetup& setup, FlashStream& s);

}  // namespace velm
