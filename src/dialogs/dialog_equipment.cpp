// The dialogs of the two-port equipment that resists flow: control and block
// valves, check valves, orifices, exchangers, miscellaneous equipment and
// reducers. A resistance and a given pressure drop describe the same thing,
// so most rules refuse both in one case and neither in another.
#include "dialogs/dialog_table.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

// Elevation and the three pressures every two-port item carries.
template <class R>
void pressure_fields(Fields<R>& f, const char* pin_hint = "", const char* pout_hint = "") {
    f.pair("DP", "Pressure drop", "dP", "pressure", A(DP))
        .pair("PIN", "Inlet pressure", "Pres", "pressure", A(PIN), pin_hint)
        .pair("POUT", "Outlet pressure", "Pres", "pressure", A(POUT), pout_hint);
}

template <class R>
void elevation_field(Fields<R>& f, const char* hint = "") {
    f.number("ELEV", "Elevation", "Elev", "length", A(ELEV), hint);
}

// Exchanger and miscellaneous equipment: nozzle heights, pressures, rating.
template <class R>
void nozzle_item_fields(Fields<R>& f, const char* pin_hint, const char* pout_hint, const char* rating_hint) {
    f.number("NOZI2", "Inlet nozzle height", "Elev", "length", A(NOZI.NozHeight))
        .number("NOZO2", "Outlet nozzle height", "Elev", "length", A(NOZO.NozHeight));
    pressure_fields(f, pin_hint, pout_hint);
    f.tab("Rating")
        .cases("PRAT1", "Rating pressure drop", "dP", "pressure", A(PRAT1), rating_hint)
        .number("PRAT3", "Rating flow", "Flow", "mass_flow", A(PRAT3))
        .number("PRAT5", "Rating density", "Flow", "density", A(PRAT5))
        .cases("K", "Equipment K", "Flow", "", A(K));
}

std::string valve_rules(RunContext&, const Project&, const Valve& v, const Texts&) {
    const bool block = v.TYPE2 == "Block";
    for (int n = 1, cases = cases_of({v.DP.spec, v.CV.spec, v.K, v.OPEN.spec}); n <= cases; ++n) {
        // An opening with a Cv or K makes the valve a resistance, which then sets the drop.
        const bool resistance = given(v.OPEN.spec, n) && (given(v.CV.spec, n) || given(v.K, n));
        if (given(v.DP.spec, n) && resistance) return "Specify either Pressure drop OR Cv/K value (for these settings).";
        if (given(v.K, n) && given(v.CV.spec, n))
            return block ? "Specify the K or Cv and %Open, or none." : "Specify the K, or Cv and %Open, or none.";
    }
    return "";
}

std::string fo_rules(RunContext&, const Project&, const FO& o, const Texts&) {
    for (int n = 1, cases = cases_of({o.DP.spec, o.DPF.spec, o.BETA.spec, o.BORE.spec}); n <= cases; ++n) {
        const bool drop = given(o.DP.spec, n) || given(o.DPF.spec, n);
        const bool bore = given(o.BETA.spec, n) || given(o.BORE.spec, n);
        if (!drop && !bore) return "Pressure drop or Beta ratio required (for these settings).";
        if (drop && bore) return "Specify either Pressure drop OR Beta ratio (for these settings).";
    }
    return "";
}

std::string hx_rules(RunContext&, const Project&, const HX& e, const Texts&) {
    for (int n = 1, cases = cases_of({e.DP.spec, e.PRAT1}); n <= cases; ++n) {
        const bool drop = given(e.DP.spec, n), rated = given(e.PRAT1, n);
        if (rated && e.PRAT5 <= 0.0) return "Density required with rating dP.";
        if (rated && e.PRAT3 == 0.0) return "Flow required with rating dP.";
        if (!drop && !rated) return "Pressure drop or Rating dP required (for these settings).";
        if (drop && rated) return "Specify either Pressure drop OR Rating dP (for these settings).";
    }
    return "";
}

std::string misc_rules(RunContext&, const Project&, const Misc& e, const Texts&) {
    for (int n = 1, cases = cases_of({e.DP.spec, e.PRAT1, e.K, e.LD}); n <= cases; ++n) {
        const bool drop = given(e.DP.spec, n), rated = given(e.PRAT1, n);
        const bool k_ld = given(e.K, n) || given(e.LD, n);
        if (rated && e.PRAT5 <= 0.0) return "Density required with rating dP.";
        if (rated && e.PRAT3 == 0.0) return "Flow required with rating dP.";
        if (!drop && !rated && !k_ld) return "Pressure drop, Rating dP, K or L/D value required (for these settings).";
        if (drop && k_ld) return "Specify either Pressure drop OR K+L/D (for these settings).";
        if (rated && k_ld) return "Enter rating dP OR equipment K + L/D.";
    }
    return "";
}

}  // namespace

const KindDef<Valve>& valve_dialog() {
    using R = Valve;
    static const KindDef<R> k{"frmValve", &Project::valves, [] {
                                  Fields<R> f;
                                  f.names()
                                      .text("TYPE2", "Valve", A(TYPE2), "", {"Control", "Block", "Angle"})
                                      .text("TYPE", "Trim", A(TYPE), "", {"Linear", "Equal percentage", "Quick opening"})
                                      .text("DIA", "Valve size", A(DIA));
                                  elevation_field(f);
                                  pressure_fields(f, "Specify 0 to 2 of the pressures.", "Specify 0 to 2 of the pressures.");
                                  f.tab("Valve")
                                      .pair("CV", "Cv", "Valve", "=Cv", A(CV))
                                      .cases("K", "K", "Flow", "", A(K))
                                      .pair("OPEN", "Opening", "Flow", "=%", A(OPEN),
                                            "Specify % Stroke Opening. Calculated is % of Cv.")
                                      .number("XT", "Pressure drop ratio factor xT", "Ratio", "", A(XT))
                                      .number("FP2", "Piping geometry factor", "Flow", "", A(FP2))
                                      .integer("DPP1", "Line for permanent loss", A(DPP1),
                                               "dP Perm assumes the same density in all pipes.")
                                      .notes(A(NOTES));
                                  return f.done();
                              }(),
                              valve_rules};
    return k;
}

const KindDef<Check>& check_dialog() {
    using R = Check;
    static const KindDef<R> k{"frmCheck", &Project::checks, [] {
                                  Fields<R> f;
                                  f.names();
                                  elevation_field(f);
                                  pressure_fields(f);
                                  f.number("LD", "L/D", "Flow", "", A(LD));
                                  return f.done();
                              }()};
    return k;
}

const KindDef<FO>& fo_dialog() {
    using R = FO;
    static const KindDef<R> k{"frmFO", &Project::fos, [] {
                                  Fields<R> f;
                                  f.names().text("TYPE", "Type", A(TYPE), "", {"Orifice", "Quadrant", "Nozzle", "Venturi"});
                                  elevation_field(f);
                                  pressure_fields(f);
                                  f.pair("DPF", "Permanent pressure loss", "dP", "pressure", A(DPF))
                                      .tab("Orifice")
                                      .integer("HOLES", "Number of holes", A(HOLES))
                                      .number("THICK", "Plate thickness", "Flow", "diameter", A(THICK))
                                      .pair("BORE", "Bore", "Flow", "diameter", A(BORE),
                                            "Specify or leave empty. ID of each hole.")
                                      .pair("BETA", "Beta ratio", "Ratio", "", A(BETA),
                                            "Nothing, value or C for current. Beta=(A_holes/A_pipe)^0.5.", "C")
                                      .result("C", "Discharge coefficient", "", A(C))
                                      .result("YIN", "Expansion factor", "", A(YIN))
                                      .result_flag("CHOKE", "Choked", A(CHOKE))
                                      .notes(A(NOTES));
                                  return f.done();
                              }(),
                              fo_rules};
    return k;
}

const KindDef<HX>& hx_dialog() {
    using R = HX;
    static const KindDef<R> k{"frmHX", &Project::hxs, [] {
                                  Fields<R> f;
                                  f.names()
                                      .text("TYPE", "Type", A(TYPE), "", {"S-T", "Heater", "AirCooler"})
                                      .text("SIDE", "Side", A(SIDE), "", {"Tube", "Shell"});
                                  nozzle_item_fields(f, "Specify 0-2 of pressures (Drawing Pin).",
                                                     "Specify 0-2 of pressures (Drawing Pout).",
                                                     "Input dP for existing exchanger at specific flow/density.");
                                  f.tab("General")
                                      .pair("Q", "Duty", "Flow", "duty", A(Q),
                                            "Duty (heat=+, cool=-, flowing direction) if outlet line has PH flash.")
                                      .notes(A(NOTES));
                                  return f.done();
                              }(),
                              hx_rules};
    return k;
}

const KindDef<Misc>& misc_dialog() {
    using R = Misc;
    static const KindDef<R> k{"frmMisc", &Project::miscs, [] {
                                  Fields<R> f;
                                  f.names();
                                  nozzle_item_fields(f, "", "", "Enter rating dP OR equipment K + L/D.");
                                  f.cases("LD", "Equipment L/D", "Flow", "", A(LD))
                                      .tab("General")
                                      .flag("VOLBAL", "Volume balance", A(VOLBAL),
                                            "Check to perform volume balance (not mass balance).")
                                      .notes(A(NOTES));
                                  return f.done();
                              }(),
                              misc_rules};
    return k;
}

const KindDef<Expand>& expand_dialog() {
    using R = Expand;
    static const KindDef<R> k{"frmExpand", &Project::expands, [] {
                                  Fields<R> f;
                                  f.names();
                                  elevation_field(f, "Required input. Default=0.");
                                  pressure_fields(f);
                                  f.number("ANGLE", "Cone angle", "Angle", "=degrees", A(ANGLE),
                                           "Angle (0-180 degrees). Used only for Reducer.")
                                      .result("K", "K", "", A(K))
                                      .result("DPP", "Pressure recovery", "=kPa", A(DPP))
                                      .result_flag("CHOKE", "Choked", A(CHOKE));
                                  return f.done();
                              }()};
    return k;
}

}  // namespace velm::dialog
