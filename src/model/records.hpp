// Project records: the header and one record type per kind of thing on the
// flowsheet. Every number is held in the internal units (t/h, kPa gauge, C, m,
// kg/m3, cP, m/s, kJ/kg, kJ/h, kW). A field bears the key it has in the project
// file; keys with several values are arrays one larger than needed so that
// position n of the key is element n (element 0 unused).
//
// A specified/calculated pair is a Pair: `spec` is the user's case string
// (empty: calculate; a number: specified; "C" curve; "E" equation; "V" vessel
// split), `value` is the number in force, written back by a run.
#pragma once

#include <array>
#include <map>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velm {

struct Pair {
    std::string spec;   // position 1: the user's case string
    double value = 0.0; // position 2: the number in force

    bool operator==(const Pair&) const = default;
};

// Limits of the data model.
inline constexpr int kMaxComps = 30;
inline constexpr int kLinePoints = 11;     // polyline points 0..10
inline constexpr int kFittings = 11;       // FIT1..FIT11
inline constexpr int kCurvePoints = 10;
inline constexpr int kNozzles = 4;         // ports 1..4 in and out
inline constexpr int kPipeSizes = 50;
inline constexpr int kPipeSchedules = 20;
inline constexpr int kLinkedFiles = 10;

// A place on the drawing where one Line can end.
struct Port {
    float X = 0.0f, Y = 0.0f;  // twips
    int CON = 0;               // line on this port, 0 for none
    double NozHeight = 0.0;    // m above the base of the vessel or tank
    double dPLevel = 0.0;      // static head liquid level to nozzle, kPa
    double dPNoz = 0.0;        // fixed loss of the nozzle, kPa
    double dPFlow = 0.0;       // flow loss KFlow * W * |W|, kPa
    double KFlow = 0.0;        // kPa per (t/h)^2

    bool operator==(const Port&) const = default;
};

// Head common to every drawn record.
struct Drawn {
    std::array<std::string, 3> NAME;  // [1] tag prefix, [2] description
    int32_t COLOR = 0;                // 0x00BBGGRR
    int LBL1 = 0;                     // LBL[1]: label shown (flag)
    float LBL2 = 0.0f, LBL3 = 0.0f;   // LBL[2], LBL[3]: label offset, twips
    int ROT = 0;                      // icon rotation, degrees
    std::array<int, 3> FLIP{0, 1, 1}; // [1] horizontal, [2] vertical mirror: 1 normal, -1 mirrored
    std::string NOTES;
    // Not on file: the item is selected on the sheet, and marked for paste.
    int Selected = 0, Marked = 0;

    bool operator==(const Drawn&) const = default;
};

// User equation fields of Line, Feed and Prod.
struct Equation {
    int EQN1 = 0;          // equation number
    std::string EQN2;      // equipment whose line flow is referred to
    int EQN3 = 0;          // spare
    std::string EQN4;      // equipment whose pressure is referred to
    int EQN5 = 0;          // its pressure index
    double EQN6 = 0.0, EQN7 = 0.0, EQN8 = 0.0;  // coefficients a, c, n

    bool operator==(const Equation&) const = default;
};

// One row of a line's fittings table.
struct Fitting {
    std::string name;  // Fixed(12)
    int count = 0;
    double LD = 0.0;   // L/D
    double K = 0.0;    // fixed K
    double K1 = 0.0, Kinf = 0.0, K3 = 0.0;  // 2K method coefficients

    bool operator==(const Fitting&) const = default;
};

using Comps = std::array<double, kMaxComps + 1>;  // mole fractions, 1..30

// The files linked to a line, FILES[1..10]. Few lines have any, and a large
// network holds tens of thousands of lines: the ten names take room only once
// one of them is given. A copy is a copy of the names.
class LinkedFiles {
public:
    LinkedFiles() = default;
    LinkedFiles(const LinkedFiles& o) : names_(o.names_ ? std::make_unique<Names>(*o.names_) : nullptr) {}
    LinkedFiles(LinkedFiles&&) noexcept = default;
    LinkedFiles& operator=(const LinkedFiles& o) {
        if (this != &o) names_ = o.names_ ? std::make_unique<Names>(*o.names_) : nullptr;
        return *this;
    }
    LinkedFiles& operator=(LinkedFiles&&) noexcept = default;
    ~LinkedFiles() = default;

    // Name n (1..10), empty when none is given.
    const std::string& operator[](std::size_t n) const;
    void set(std::size_t n, std::string name);
    bool operator==(const LinkedFiles& o) const;

private:
    using Names = std::array<std::string, kLinkedFiles + 1>;
    std::unique_ptr<Names> names_;
};

struct Line : Drawn {
    int BEND = 0;
    // Read on every pass of the iteration: the stream's state and properties,
    // the pipe and its results. Kept together so that a pass over the lines
    // walks few cache lines of each record.
    std::array<double, 4> TEMP{}, PRES{}, LF{};  // inlet, outlet, average
    std::array<double, 3> H{}, S{};
    std::array<int, 3> FT{};
    int REFLINE = 0;
    int OUTIN = 0;
    std::array<double, 3> LVFLOW{};         // [1] liquid, [2] vapour flow
    std::array<double, 3> LIQDEN{}, LIQVISC{};
    std::array<double, 4> LPROP{};          // [1] average liquid density, [3] viscosity
    std::array<double, 4> LIQSUR{}, LIQCON{}, LIQCP{}, LIQMW{};
    std::array<double, 3> VAPDEN{}, VAPVISC{}, VAPMW{}, VAPZ{}, VAPK{};
    std::array<double, 8> VPROP{};          // [1] density, [3] viscosity, [5] MW, [6] Z, [7] k
    std::array<double, 4> VAPCON{}, VAPCP{};
    Pair TFLOW;                             // total flow, t/h, signed
    std::array<double, 7> TPROP{};          // [1..3] density, [4] static-head density, [6] viscosity
    std::array<double, 4> TOTCON{}, TOTCP{};
    double TOTMW = 0.0;
    std::string MAT;
    std::array<std::string, 3> DIA;         // [1] nominal size, [2] calculated size
    std::string SCH;
    Pair ID, IDH;                           // inside and hydraulic diameter, m
    std::array<double, 3> ODF{};            // [2] outside diameter
    double LEN = 0.0, EQLEN = 0.0;
    double FITK = 0.0, FITLD = 0.0;
    double SELEV = 0.0, DPELEV = 0.0;
    std::array<double, 3> ELEV{};           // inlet, outlet elevation
    double FAC = 0.0;
    Pair EPS;                               // E[1] specification, EPS[2] value, m
    std::array<double, 3> F{};              // [1] Darcy friction factor at flow, [2] fully turbulent
    double RE = 0.0;
    std::string SIZ1;                       // SIZ[1] sizing rule
    std::array<double, 8> SIZ{};            // [2] gradient limit, [4],[5] velocities, [6],[7] coefficients
    double DPL = 0.0;                       // DPL[1], kPa/100m
    std::array<double, 5> VEL{};            // [1..3] velocities, [4] sonic
    double HUP = 0.0;
    std::string MTP;
    std::array<double, 3> DUK{};
    std::array<double, 8> LM{};
    Equation EQN;
    double DPACC = 0.0;                     // not on file: acceleration pressure drop, kPa

    // Read by the drawing, the heat and mole balance, once a case (the
    // fittings table) or in the final results (the regimes).
    std::array<float, 27> XY{};  // as on the key line: [1],[2] zero, point i at [3+2i],[4+2i], [25],[26] old end point
    std::string STRM;
    int LOCK = 0;
    Pair Q;    // heat duty, kJ/h
    Pair UI;   // U[1] specification, UI[2] value, W/m2/K
    double TAMB = 0.0, TSUR = 0.0, QFAC = 0.0;
    double QAIR2 = 0.0;                     // QAIR[2], air velocity
    std::array<double, 3> QPIP{};           // [1] emissivity, [2] wall conductivity
    std::array<double, 4> QINS{};           // [1] thickness, [3] conductivity
    Comps COMP0{}, COMPIX0{}, COMPIY0{}, COMPOX0{}, COMPOY0{};
    std::array<Fitting, kFittings + 1> FIT; // FIT1..FIT11
    std::array<std::string, 4> REG;
    std::array<std::string, 3> REGA;
    LinkedFiles FILES;

    // Not on file.
    std::string SizeUp, SizeDown;
    double dPUp = 0.0, VelUp = 0.0, dPDown = 0.0, VelDown = 0.0;
    int ConIn = 0, ConOut = 0;
    int Imported = 0, Moving = 0;
    std::array<int, kLinePoints> PointSelected{};  // selected flag of each polyline point
    int pipe_index = 0;  // entry of the pipe table in force, set at initialisation

    // Field by field; a record compares equal to its unchanged copy.
    bool operator==(const Line&) const = default;
};

// Feed and Prod: boundaries. Feed uses POUT, Prod uses PIN.
struct Boundary : Drawn {
    std::string TYPE;       // "Pipe", "Tank", "Vessel"
    Port NOZ;               // NOZ[1] CON, [2] NozHeight, [4] dPLevel, [5] dPFlow, [6] KFlow
    double ELEV = 0.0;
    std::string LEVEL1;     // LEVEL[1], case string, m
    double LEVEL3 = 0.0;    // density of the static column
    std::string LEVEL5;     // its source
    Pair PRES;
    Pair POUT;              // Feed: pressure at the pipe inlet
    Pair PIN;               // Prod: pressure at the pipe outlet
    Pair DP;
    Equation EQN;
    int CHOKE = 0;

    bool operator==(const Boundary&) const = default;
};
struct Feed : Boundary {};
struct Prod : Boundary {};

// Head of the two-port items.
struct TwoPort : Drawn {
    std::array<float, 5> XY{};  // [1],[2] inlet port, [3],[4] outlet port
    std::array<int, 3> CON{};   // [1] inlet line, [2] outlet line
    double ELEV = 0.0;
    Pair DP, PIN, POUT;

    bool operator==(const TwoPort&) const = default;
};

struct Valve : TwoPort {
    int DPP1 = 0;           // DPP[1]: line whose pressure limits the permanent loss
    double DPP2 = 0.0;      // DPP[2]
    std::string K;          // case string
    Pair CV;
    std::string DIA;
    std::string TYPE2;      // "Control", "Block", "Angle"
    std::string TYPE;       // trim
    Pair OPEN;              // %
    double XT = 0.0, YIN = 0.0, FP2 = 0.0;

    bool operator==(const Valve&) const = default;
};

struct Check : TwoPort {
    double LD = 0.0;

    bool operator==(const Check&) const = default;
};

struct FO : TwoPort {
    std::string TYPE;
    Pair DPF;
    int HOLES = 0;
    double THICK = 0.0;
    Pair BORE, BETA;
    double C = 0.0, YIN = 0.0;
    int CHOKE = 0;

    bool operator==(const FO&) const = default;
};

// Exchanger and miscellaneous equipment: ports told by NOZI and NOZO.
struct NozzleItem : Drawn {
    std::array<float, 5> XY{};
    Port NOZI, NOZO;           // CON and NozHeight of inlet and outlet
    Pair DP, PIN, POUT;
    std::string PRAT1;         // rating pressure drop, case string
    double PRAT3 = 0.0;        // flow at the rating point, t/h
    double PRAT5 = 0.0;        // density at the rating point
    std::string K;
    double DPELEV = 0.0;

    bool operator==(const NozzleItem&) const = default;
};

struct HX : NozzleItem {
    std::string TYPE, SIDE;
    Pair Q;

    bool operator==(const HX&) const = default;
};

struct Misc : NozzleItem {
    std::string LD;
    int VOLBAL = 0;

    bool operator==(const Misc&) const = default;
};

struct Machine : TwoPort {
    std::string TYPE;
    Pair EFFS;
    double POW = 0.0;
    std::array<double, 4> HQACT{};           // [1] head, [3] inlet volume flow (pump)
    std::array<double, 3> CURRPM{}, CURDIA{};
    int HQ1 = 0;                             // HQ[1], key CURNP: curve points in use
    std::array<std::string, kCurvePoints + 1> CURQ, CURH, CUREFF;

    // Not on file: the curve columns as numbers for the case in force, scaled
    // to the speed and impeller in use (set on the first pass of each case).
    std::array<double, kCurvePoints + 1> CURQ_value{}, CURH_value{}, CUREFF_value{};

    bool operator==(const Machine&) const = default;
};

struct Pump : Machine {
    Pair EFFP;
    int CURC1 = 0;
    std::array<std::string, kCurvePoints + 1> CURNPSH;
    Pair NPSHA13, NPSHR13;
    std::array<int, 3> NPSHAF{};             // [1] suction feed, [2] suction vessel
    std::array<std::string, 3> NPSHA_names;  // NPSHA[1], [2]: names in files before 3.2
    int NPSHA3 = 0;                          // outlet nozzle of that vessel
    double NPSHA4 = 0.0;                     // vapour pressure, kPag
    double NPSHA6 = 0.0;                     // contingency, m
    int NPSHR1 = 0;                          // 1 single, 2 double suction
    int32_t NPSHR2 = 0, NPSHR3 = 0;          // speed, suction specific speed

    // Not on file.
    std::array<double, kCurvePoints + 1> CURNPSH_value{};  // NPSHR column, scaled like the curve
    double NPSHA1 = 0.0;                     // NPSHA[1]: source pressure of the last estimate, kPag

    bool operator==(const Pump&) const = default;
};

struct Comp : Machine {
    Pair PRAT, QACT, EFFC;

    bool operator==(const Comp&) const = default;
};

struct Expand : TwoPort {
    int TYPE = 0;
    double DPP = 0.0;
    int CHOKE = 0;
    double K = 0.0;
    double ANGLE = 0.0;

    bool operator==(const Expand&) const = default;
};

struct Junc : Drawn {
    std::array<Port, kNozzles + 1> NOZI, NOZO;
    Pair PRES;

    bool operator==(const Junc&) const = default;
};

struct Tee : Drawn {
    std::array<float, 13> XY{};              // three sides, first port set, then second
    int TYPE = 0;
    std::array<int, 7> CON{};                // [1..6]
    double ELEV = 0.0;
    std::array<double, 4> PRES{}, DPP{};
    Pair KCM, KCB;
    double SPAC = 0.0;
    std::array<int, 3> C{}, M{}, B{};        // legs combined, main, branch: [1] port number, [2] line on it
    double C3 = 0.0, M3 = 0.0, B3 = 0.0;     // C[3] density at the tee, kg/m3; M[3], B[3] flow ratios to the combined leg

    bool operator==(const Tee&) const = default;
};

struct Vessel : Drawn {
    std::string TYPE;
    double ELEV = 0.0;
    int NOZN = 0;
    std::array<Port, kNozzles + 1> NOZI, NOZO;
    Pair PRES, LF;
    std::string LEVL1, LEVM1, LEVH1;         // levels, case strings, m
    double LEVL3 = 0.0, LEVM3 = 0.0, LEVH3 = 0.0;
    std::string LEVL5, LEVM5, LEVH5;
    double LevL = 0.0, LevM = 0.0, LevH = 0.0;  // levels of the case in force (not on file)

    bool operator==(const Vessel&) const = default;
};

struct Symbol {
    std::string TYPE;
    std::array<float, 5> XY{};
    std::string TEXT;
    int32_t COLOR = 0;
    int STYLL = 0, STYLA = 0;
    std::array<float, 3> ANGL{};
    float FSIZ = 0.0f;
    int Selected = 0, Marked = 0;  // not on file
};

// Pseudo component: position 1 the value in force, position 2 the estimate.
struct Pseudo {
    std::array<int32_t, 3> NAME_NUM{};       // NAME[1], [2]
    std::array<std::string, 3> NAME_TEXT;    // NAME[3], [4] as [1], [2]; Fixed(40)
    std::array<std::string, 3> FOR;          // Fixed(12)
    std::array<float, 3> MW{}, TFP{}, TBP{}, TC{}, PC{}, VC{}, ZC{}, ACC{}, DENS{};
    std::array<float, 6> DENT{};             // [1],[2] density, [4],[5] temperature
    std::array<float, 3> DIPM{};
    std::array<float, 11> CP{}, VISC{};
    std::array<float, 3> HVAP{}, HFOR{};
    std::array<float, 16> ANT{};             // [1..10] coefficients, [12..15] range
};

struct PipeSize {
    std::string name;
    double OD = 0.0;
    std::array<double, kPipeSchedules + 1> ID{};

    bool operator==(const PipeSize&) const = default;
};

struct PipeData {
    std::string MAT;
    std::string NOTES;
    double E = 0.0;                                       // default roughness, m
    std::string NSS;                                      // non-standard sizes, ";"-separated
    std::array<std::string, 3> IDIA;                      // first size and schedule offered
    std::array<double, 4> SDIA_limit{};                   // size limits, m
    std::array<std::string, 4> SDIA_sch;                  // schedule used up to each limit
    std::string UNITS;                                    // unit of the diameters
    std::array<std::string, kPipeSchedules + 1> SCH;
    std::array<PipeSize, kPipeSizes + 1> DIA;

    bool operator==(const PipeData&) const = default;
};

// Working state of the pipe, valve and orifice calculators: a copy of the
// template of their record kind and the loose values each adds (flows t/h,
// densities kg/m3, viscosities cP, pressures kPag, roughness m).
struct PipeCalculator {
    Line line;
    double flow = 0.0;
    std::string size;
    double roughness = 0.0;
};
struct ValveCalculator {
    Valve valve;
    double flow = 0.0;
    std::array<double, 3> densities_viscosity{};  // the three property entries
    double inlet_pressure = 0.0;
    std::array<double, 2> reference{};            // its two reference values
};
struct OrificeCalculator {
    FO fo;
    double flow = 0.0;
    std::array<double, 2> pressures{};
};

// Last state of the three calculators: items of a file kept as read and
// written back as they stand, and the calculators' working records.
struct ToolsState {
    std::vector<std::pair<std::string, std::vector<std::string>>> keys;
    PipeCalculator pipe;
    ValveCalculator valve;
    OrificeCalculator orifice;
};

struct Header {
    std::array<std::string, 3> COM;          // Fixed(50)
    std::array<std::string, 5> PRJ;          // Fixed(50)
    std::array<std::string, 7> ENG;          // [1..3] Fixed(10), [4..5] Fixed(12), [6] Fixed(10)
    std::string UNITS;
    std::array<std::string, 7> UNITS1, UNITS2;
    std::array<std::string, 6> UNITS3;
    double PATM = 0.0;
    std::string DWGSTD;
    std::array<float, 3> DWGSIZ{};
    float DWGMAR = 0.0f;
    int DWGGRD1 = 0;
    int32_t DWGGRD2 = 0;
    int DWGBOR = 0;
    std::string RPTSIZ1;
    int RPTSIZ2 = 0, RPTSIZ4 = 0;
    int PRTWID = 0;
    std::string MFIT, MCOMP, MTP, MDELEV, MDUKHP;
    int MDUKF = 0;
    std::string MACCEL, MSONIC;
    double MHDAMP = 0.0;
    std::array<std::string, 3> MSIM;
    std::string MFLASH, MFLASHK, MFLASHH;
    int MFLASHR = 0;
    double MXYDAMP = 0.0;
    int MPPP = 0;
    std::string MHYSYS, MFODEN, MCVDEN;
    std::array<double, 3> MPCURV{};
    std::array<double, kCurvePoints + 1> PCURQ{}, PCURH{}, PCUREFF{}, PCURNPSH{};
    std::array<double, kCurvePoints + 1> CCURQ{}, CCURH{}, CCUREFF{};
    std::string CASENO, CASEDSC, CASERPT;
    int CASEDLG = 0;
    // Where the libraries, the settings and the run files were when the
    // project was last loaded or run, for the reader of the file.
    std::string DIRLIB, DIRINI, DIRDAT;
    std::array<int, kMaxComps + 1> COMP{};   // component numbers 1..30 (keys COMP0, COMP1, COMP2)
    bool operator==(const Header&) const = default;
};

// Colours of normal, selected and flagged drawing items.
inline constexpr int32_t kColorNormal = 0;
inline constexpr int32_t kColorSelected = 0xFF0000;
inline constexpr int32_t kColorError = 255;

// The project: element 0 of every vector is the template record of its kind;
// records in use are 1..N. PipeData and Pseudo keep the same numbering.
// One icon: Count is the index of its last command; Op, X, Y the commands and
// their operands in twips from the icon's anchor. Elements 0 and 1 (ops 10 and
// 11) are two opposite corners of its bounding box.
struct IconDef {
    int Count = 1;
    std::array<int, 41> Op{};
    std::array<float, 41> X{}, Y{};

    bool operator==(const IconDef&) const = default;
};

struct Project {
    Header gen;
    std::vector<Line> lines;
    std::vector<Feed> feeds;
    std::vector<Prod> prods;
    std::vector<Valve> valves;
    std::vector<Check> checks;
    std::vector<FO> fos;
    std::vector<HX> hxs;
    std::vector<Pump> pumps;
    std::vector<Comp> comps;
    std::vector<Misc> miscs;
    std::vector<Expand> expands;
    std::vector<Junc> juncs;
    std::vector<Tee> tees;
    std::vector<Vessel> vessels;
    std::vector<Symbol> symbols;
    std::vector<Pseudo> pseudos;
    std::vector<PipeData> pipedata;
    ToolsState tools;
    // Icons the user edited, by icon slot (kind and form); the others are the
    // defaults. Not on file: a new project starts from the defaults.
    std::map<int, IconDef> icons;

    int32_t color_normal = kColorNormal;
    int32_t color_selected = kColorSelected;
    int32_t color_error = kColorError;
};

// Number of records in use of a kind.
template <class R>
int count(const std::vector<R>& v) {
    return v.empty() ? 0 : static_cast<int>(v.size()) - 1;
}

}  // namespace velm
