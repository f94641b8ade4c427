// The pump and compressor dialogs: the duty point, the curve of ten points
// and, for the pump, the NPSH page. A "C" in a pair reads the curve, so the
// curve must hold what that pair reads.
#include <string>
#include <utility>

#include "dialogs/dialog_table.hpp"
#include "model/text.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

// Accessor of curve point I of a column.
template <class R, auto Column, int I>
std::string* point(R& r) {
    return &(r.*Column)[I];
}

template <class R, auto Column, std::size_t... I>
void column_fields(Fields<R>& f, const char* key, const char* label, const char* check, const char* unit,
                   std::index_sequence<I...>) {
    (f.cases((std::string(key) + std::to_string(I + 1)).c_str(), (std::string(label) + " " + std::to_string(I + 1)).c_str(),
             check, unit, &point<R, Column, static_cast<int>(I) + 1>,
             "Curve for dP=C or Eff=C. At least 2 (positive) points required."),
     ...);
}

template <class R, auto Column>
void column(Fields<R>& f, const char* key, const char* label, const char* check, const char* unit) {
    column_fields<R, Column>(f, key, label, check, unit, std::make_index_sequence<kCurvePoints>{});
}

template <class R>
void curve_fields(Fields<R>& f, const char* flow_unit) {
    f.tab("Curve")
        .number("CURRPM1", "Curve speed", "Flow", "=rpm", A(CURRPM[1]), "Curve RPM basis. Enter 0 to ignore.")
        .number("CURRPM2", "Actual speed", "Flow", "=rpm", A(CURRPM[2]), "Actual/modified RPM. Enter 0 to ignore.")
        .number("CURDIA1", "Curve impeller", "Flow", "diameter", A(CURDIA[1]), "Curve Dia basis. Enter 0 to ignore.")
        .number("CURDIA2", "Actual impeller", "Flow", "diameter", A(CURDIA[2]),
                "Actual/modified Dia. Enter 0 to ignore.");
    column<R, &Machine::CURQ>(f, "CURQ", "Flow", "Flow", flow_unit);
    column<R, &Machine::CURH>(f, "CURH", "Head", "Flow", "head");
    column<R, &Machine::CUREFF>(f, "CUREFF", "Efficiency", "Ratio", "");
}

// Points of case n with a positive flow, and the first message for a point
// whose flow has no value in a column that a pair reads from the curve.
struct CurveMessages {
    const char* head;
    const char* efficiency;
};

template <class R>
std::string curve_rules(const R& m, int n, bool head, bool eff, const CurveMessages& says) {
    for (int i = 1; i <= kCurvePoints; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (!given(m.CURQ[at], n)) continue;
        if (head && !given(m.CURH[at], n)) return says.head;
        if (eff && !given(m.CUREFF[at], n)) return says.efficiency;
    }
    return "";
}

template <class R>
int positive_points(const R& m, int n) {
    int points = 0;
    for (int i = 1; i <= kCurvePoints; ++i)
        if (spec_value(m.CURQ[static_cast<std::size_t>(i)], n) > 0.0) ++points;
    return points;
}

template <class R>
int curve_cases(const R& m, std::initializer_list<std::string_view> more) {
    int cases = cases_of(more);
    for (int i = 1; i <= kCurvePoints; ++i) cases = std::max(cases, case_count(m.CURQ[static_cast<std::size_t>(i)]));
    return cases;
}

// The last point with a flow in any case: the points the curve uses.
template <class R>
int points_in_use(const R& m) {
    int last = 0;
    for (int i = 1; i <= kCurvePoints; ++i)
        if (!trim_view(m.CURQ[static_cast<std::size_t>(i)]).empty()) last = i;
    return last;
}

std::string pump_rules(RunContext&, const Project&, const Pump& m, const Texts&) {
    for (int n = 1, cases = curve_cases(m, {m.DP.spec, m.EFFP.spec, m.NPSHR13.spec}); n <= cases; ++n) {
        const bool head = spec_is(m.DP.spec, n, 'C'), eff = spec_is(m.EFFP.spec, n, 'C');
        const bool npsh = spec_is(m.NPSHR13.spec, n, 'C');
        if ((head || eff || npsh) && positive_points(m, n) < 2) return "Minimum 2 points required in pump curve.";
        std::string says = curve_rules(m, n, head, eff,
                                       {"No pump curve Head for corresponding Flow.",
                                        "No pump curve Efficiency for corresponding Flow."});
        if (!says.empty()) return says;
        for (int i = 1; npsh && i <= kCurvePoints; ++i)
            if (given(m.CURQ[static_cast<std::size_t>(i)], n) && !given(m.CURNPSH[static_cast<std::size_t>(i)], n))
                return "No pump curve NPSHR for corresponding Flow.";
    }
    if (m.NPSHAF[1] != 0 && m.NPSHAF[2] != 0) return "Source must be Vessel OR Tank.";
    if (m.NPSHAF[2] != 0 && (m.NPSHA3 < 1 || m.NPSHA3 > kNozzles)) return "Vessel nozzle must be 1-4.";
    return "";
}

std::string comp_rules(RunContext&, const Project&, const Comp& m, const Texts&) {
    for (int n = 1, cases = curve_cases(m, {m.DP.spec, m.EFFC.spec}); n <= cases; ++n) {
        std::string says = curve_rules(m, n, spec_is(m.DP.spec, n, 'C'), spec_is(m.EFFC.spec, n, 'C'),
                                       {"No curve Head for corresponding Flow.", "No curve Efficiency for corresponding Flow."});
        if (!says.empty()) return says;
    }
    return "";
}

}  // namespace

// The count of curve points in use follows the flows typed.
template <class R>
void count_curve_points(R& m, const R& before) {
    if (m.CURQ != before.CURQ) m.HQ1 = points_in_use(m);
}

const KindDef<Pump>& pump_dialog() {
    using R = Pump;
    static const KindDef<R> k{
        "frmPump", &Project::pumps,
        [] {
            Fields<R> f;
            f.names()
                .text("TYPE", "Type", A(TYPE), "", {"Centrifugal", "Sundyne", "Reciprocating"})
                .number("ELEV", "Elevation", "Elev", "length", A(ELEV))
                .pair("DP", "Differential pressure", "dP", "pressure", A(DP),
                      "Empty, value or C to use curve. Drawing Pout - Pin.", "C")
                .pair("PIN", "Inlet pressure", "Pres", "pressure", A(PIN))
                .pair("POUT", "Outlet pressure", "Pres", "pressure", A(POUT))
                .pair("EFFP", "Pump efficiency", "Ratio", "", A(EFFP),
                      "Pump efficiency (0-1). Empty, value or C to use curve.", "C")
                .pair("EFFS", "Shaft efficiency", "Ratio", "", A(EFFS),
                      "Pump shaft efficiency (0-1). Leave empty for default.")
                .result("POW", "Power", "=kW", A(POW))
                .result("HQACT1", "Head", "head", A(HQACT[1]))
                .result("HQACT3", "Inlet volume flow", "liquid_volume_flow", A(HQACT[3]));
            curve_fields(f, "liquid_volume_flow");
            column<R, &Pump::CURNPSH>(f, "CURNPSH", "NPSHR", "Flow", "head");
            f.flag("CURC1", "Generate curve", A(CURC1), "Select to generate curve when Case 1 is run.")
                .tab("NPSH")
                .pair("NPSHA13", "NPSH available", "Flow", "head", A(NPSHA13), "Enter number or leave empty for estimate.")
                .pair("NPSHR13", "NPSH required", "Flow", "head", A(NPSHR13),
                      "Enter number or C for curve or leave empty for estimate.", "C")
                .integer("NPSHAF1", "Suction tank (feed number)", A(NPSHAF[1]), "Run hydraulics to update NPSH.")
                .integer("NPSHAF2", "Suction vessel (vessel number)", A(NPSHAF[2]), "Run hydraulics to update NPSH.")
                .integer("NPSHA3", "Vessel outlet nozzle", A(NPSHA3))
                .number("NPSHA4", "Vapour pressure", "Pres", "pressure", A(NPSHA4), "Subcooled dP. Bubble point drum = 0.")
                .number("NPSHA6", "Contingency", "Flow", "head", A(NPSHA6), "Typical: H2O=1.5m, HC=0.5-1m, Min=15-25%.")
                .int_choice("NPSHR1", "Suction", A(NPSHR1), {"Single", "Double"}, "Typically Single if below 1500 gpm.")
                .integer("NPSHR2", "Speed", A(NPSHR2), "Full speed about 60*Hz-50.")
                .integer("NPSHR3", "Suction specific speed", A(NPSHR3))
                .notes(A(NOTES));
            return f.done();
        }(),
        pump_rules, nullptr, count_curve_points<R>};
    return k;
}

const KindDef<Comp>& comp_dialog() {
    using R = Comp;
    static const KindDef<R> k{
        "frmComp", &Project::comps,
        [] {
            Fields<R> f;
            f.names()
                .text("TYPE", "Type", A(TYPE), "", {"Centrifugal", "Axial", "Reciprocating", "Screw"})
                .number("ELEV", "Elevation", "Elev", "length", A(ELEV))
                .pair("DP", "Differential pressure", "dP", "pressure", A(DP),
                      "Empty, value or C to use curve. Drawing Pout - Pin.", "C")
                .pair("PIN", "Inlet pressure", "Pres", "pressure", A(PIN))
                .pair("POUT", "Outlet pressure", "Pres", "pressure", A(POUT))
                .pair("PRAT", "Pressure ratio", "Flow", "", A(PRAT), "Pressure ratio (drawing outlet/inlet).")
                .pair("QACT", "Inlet volume flow", "Flow", "gas_volume_flow", A(QACT),
                      "Inlet volumetric flow (Flowing inlet, not Drawing inlet).")
                .pair("EFFC", "Adiabatic efficiency", "Ratio", "", A(EFFC),
                      "Adiabatic efficiency (0-1). Empty, value or C to use curve.", "C")
                .pair("EFFS", "Shaft efficiency", "Ratio", "", A(EFFS),
                      "Compressor shaft efficiency (0-1). Leave empty for default.")
                .result("POW", "Power", "=kW", A(POW))
                .result("HQACT1", "Head", "head", A(HQACT[1]));
            curve_fields(f, "gas_volume_flow");
            f.notes(A(NOTES));
            return f.done();
        }(),
        comp_rules, nullptr, count_curve_points<R>};
    return k;
}

}  // namespace velm::dialog
