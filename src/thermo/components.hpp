// Pure-component data: the component libraries and the project's component set.
//
// The own flash engine reads propa.lib, fixed records of 184 bytes; the HYSYS
// path reads prophys.lib, records of 62 bytes; both keep the record number
// equal to the component number, and record 1's Number field holds the count
// of records. propkij.lib is a text file of binary interaction coefficients.
// The libraries are compiled into the program; a library directory given by
// the caller (from VELM_LIB or the settings) replaces all of them at once, so
// that numbers, names and coefficients always come from one consistent set.
#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

// One component, in the order of the propa.lib record. Units: K, kPa absolute,
// m3/kmol, kg/m3; CpA..CpE give the ideal gas Cp in kJ/kmol/K as a polynomial
// in T; ViscType 3: ln(mu/cP) = A + B/T + C T + D T^2, 4: A + B/T + C ln T + D T;
// HVap kJ/kmol at TBP; HFor, GFor kJ/mol; AntA..AntE give
// ln(P/kPa) = A + B/(C + T) + D ln T + E T^2 between AntTMin and AntTMax.
struct CompProp {
    int Number = 0;
    std::string Name;     // at most 40 characters, trailing blanks dropped
    std::string Formula;  // at most 12 characters
    float MW = 0, TFP = 0, TBP = 0, TC = 0, PC = 0, VC = 0, ZC = 0, Acc = 0;
    float LDenStd = 0, LDen = 0, TDen = 0, DIPM = 0;
    float CpA = 0, CpB = 0, CpC = 0, CpD = 0, CpE = 0;
    float ViscType = 0, ViscA = 0, ViscB = 0, ViscC = 0, ViscD = 0;
    float HVap = 0, HFor = 0, GFor = 0;
    float AntA = 0, AntB = 0, AntC = 0, AntD = 0, AntE = 0, AntTMin = 0, AntTMax = 0;
};

inline constexpr std::size_t kPropaRecordBytes = 184;
inline constexpr std::size_t kProphysRecordBytes = 62;
inline constexpr int kPseudoFirst = 9000;  // pseudo component k has the number 9000 + k

// Where component data come from for one project.
struct CompLibrary {
    std::string mflash = "Velm";      // the project's flash engine: "Velm", "Hysys" or "PPP"
    std::filesystem::path dir;        // library directory; empty for the built-in libraries
    std::span<const CompProp> pseudo;  // estimated sets of the pseudo components, 1-based
};

// The library directory named by the environment variable VELM_LIB, or empty.
std::filesystem::path library_dir_from_environment();

// Decodes one propa.lib record; false when it is short or holds a value that
// is not a finite number.
bool decode_propa_record(std::string_view bytes, CompProp& rec);

// Writes rec into a library record of its size as read from the file: all of
// a propa.lib record; the name, formula and mole weight of a prophys.lib record, whose
// other bytes stay.
void encode_library_record(const CompProp& rec, std::string& bytes);

// Writes rec over record `record` of the engine's library in lib.dir (the
// built-in libraries cannot change). Returns "" or why it could not. Record
// 1's Number is the count of records, not its own number.
std::string UpdateCompRecord(RunContext& ctx, const CompLibrary& lib, int record, const CompProp& rec);

// Component numbers ids[1..] up to the first 0 (ids[0] is not used).
int CountComps(std::span<const int> ids);

// Fills rec with component num from the engine's library; num -1 reads record 1,
// whose Number is the count of records. Numbers from 9000 are pseudo components.
void GetComp(RunContext& ctx, const CompLibrary& lib, int num, CompProp& rec);

// Every name of the engine's library in file order: names[k] is record k's
// name (names[0] is empty).
void GetCompNames(RunContext& ctx, const CompLibrary& lib, std::vector<std::string>& names);

// The number of the component of that name (compared without regard to case
// or surrounding blanks): a library component, else a pseudo component of
// lib.pseudo (9000 + its index); 0 when there is none.
int comp_number_by_name(RunContext& ctx, const CompLibrary& lib, std::string_view name);

// Sizes comps to CountComps(ids) + 1 and kij to a zeroed square of that size,
// reads each component (comps[k] for ids[k]) and then the kij pairs.
void GetCompData(RunContext& ctx, const CompLibrary& lib, std::span<const int> ids,
                 std::vector<CompProp>& comps, std::vector<std::vector<double>>& kij);

// Fills kij[p][q] and kij[q][p] from propkij.lib for each pair whose two
// numbers stand at positions p and q of ids.
void ReadKij(RunContext& ctx, const CompLibrary& lib, std::span<const int> ids,
             std::vector<std::vector<double>>& kij);

// One half of a pseudo component record as a CompProp: half 1 the values the
// user entered, half 2 the set in force (entered values, else estimates).
// GFor has no place in the record and reads 0.
CompProp pseudo_half(const Pseudo& p, int half);
void set_pseudo_half(Pseudo& p, int half, const CompProp& c);

// The set in force of a pseudo component from the entered set `in` (which
// needs TBP and LDenStd): every property the user left at 0 is estimated from
// the normal boiling point Tb (K) and the specific gravity SG = LDenStd / 999:
//   MW, Tc, Pc, Vc   Riazi and Daubert (1987) exponential correlations
//   Zc               Pc Vc / (R Tc)
//   acentric factor  Lee and Kesler (1975) from Tb / Tc and Pc
//   LDen at TDen     LDenStd at 288.7 K
//   ideal gas Cp     Lee and Kesler (1976) from the Watson factor
//                    Kw = (1.8 Tb)^(1/3) / SG
//   liquid viscosity API Technical Data Book kinematic viscosities at 310.93
//                    and 372.04 K (100 and 210 F) by the Abbott-Kaufman-Twu
//                    correlations, to dynamic by Rackett densities, fitted as
//                    ln(mu/cP) = A + B/T (ViscType 3)
//   HVap             Riazi and Daubert, kJ/kmol at Tb
//   Antoine          Clausius-Clapeyron through (Tb, 101.325 kPa) and
//                    (Tc, Pc) with C = -43 K, valid up to Tc
// Warnings and assumed values are logged or told as they arise; a numeric
// fault is logged and leaves the set as far as it got.
CompProp estimate_pseudo(RunContext& ctx, const CompProp& in);

// Fills the estimated half (position 2) of pseudo components 1..N from their
// entered half (position 1).
void PseudoProps(RunContext& ctx, std::vector<Pseudo>& pseudos);

// The same for each pseudo component that has no estimated set yet (a project
// written by hand or by a script gives the entered set only).
void estimate_missing_pseudos(RunContext& ctx, std::vector<Pseudo>& pseudos);

}  // namespace velm
