// The dialogs of the nodes: tees, junctions (frmSplit) and vessels. They
// carry no rules of their own beyond the checks of their entries.
#include <string>

#include "dialogs/dialog_table.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

// Height and nozzle loss of nozzle N of one side of a vessel.
template <auto Side, int N>
void nozzle_fields(Fields<Vessel>& f, const char* side) {
    const std::string key = std::string(side) + std::to_string(N);
    const std::string label = std::string(side[3] == 'I' ? "Inlet" : "Outlet") + " nozzle " + std::to_string(N);
    f.number((key + "_HEIGHT").c_str(), (label + " height").c_str(), "Elev", "length",
             +[](Vessel& r) { return &(r.*Side)[N].NozHeight; },
             "Height of nozzle above(+) or below(-) vessel tangent.")
        .number((key + "_DPNOZ").c_str(), (label + " loss").c_str(), "dP", "pressure",
                +[](Vessel& r) { return &(r.*Side)[N].dPNoz; }, "Frictional Pnozzle - Ptop of vessel.");
}

template <auto Side, std::size_t... I>
void side_fields(Fields<Vessel>& f, const char* side, std::index_sequence<I...>) {
    (nozzle_fields<Side, static_cast<int>(I) + 1>(f, side), ...);
}

}  // namespace

const KindDef<Tee>& tee_dialog() {
    using R = Tee;
    static const KindDef<R> k{"frmTee", &Project::tees, [] {
                                  Fields<R> f;
                                  f.names()
                                      .number("ELEV", "Elevation", "Elev", "length", A(ELEV))
                                      .pair("KCM", "K of the main run", "Flow", "", A(KCM),
                                            "Input or leave empty to calc. K value based on Combined flow.")
                                      .pair("KCB", "K of the branch", "Flow", "", A(KCB),
                                            "Input or leave empty to calc. K value based on Combined flow.")
                                      .number("SPAC", "Spacing", "Flow", "", A(SPAC),
                                              "Spacing between neighbouring T-pieces. Enter 0 or >30 to ignore.")
                                      .result("PRES1", "Pressure at nozzle 1", "pressure", A(PRES[1]))
                                      .result("PRES2", "Pressure at nozzle 2", "pressure", A(PRES[2]))
                                      .result("PRES3", "Pressure at nozzle 3", "pressure", A(PRES[3]))
                                      .result("DPP1", "Pressure drop 1", "=kPa", A(DPP[1]))
                                      .result("DPP2", "Pressure drop 2", "=kPa", A(DPP[2]))
                                      .result("DPP3", "Pressure drop 3", "=kPa", A(DPP[3]))
                                      .notes(A(NOTES));
                                  return f.done();
                              }()};
    return k;
}

const KindDef<Junc>& junc_dialog() {
    using R = Junc;
    static const KindDef<R> k{"frmSplit", &Project::juncs, [] {
                                  Fields<R> f;
                                  f.names().pair("PRES", "Pressure", "Pres", "pressure", A(PRES));
                                  return f.done();
                              }()};
    return k;
}

const KindDef<Vessel>& vessel_dialog() {
    using R = Vessel;
    static const KindDef<R> k{"frmVessel", &Project::vessels, [] {
                                  Fields<R> f;
                                  f.names()
                                      .text("TYPE", "Type", A(TYPE), "", {"Vertical", "Horizontal", "Column", "Tank"})
                                      .number("ELEV", "Elevation", "Elev", "length", A(ELEV),
                                              "Height of vessel bottom tangent above grade.")
                                      .pair("PRES", "Top pressure", "Pres", "pressure", A(PRES),
                                            "Pressure at vessel top. Enter to specify or leave empty.")
                                      .pair("LF", "Liquid fraction out", "Ratio", "", A(LF))
                                      .tab("Levels")
                                      .cases("LEVL1", "Low level", "Elev", "length", A(LEVL1))
                                      .number("LEVL3", "Heavy fluid density", "Flow", "density", A(LEVL3),
                                              "Heavy fluid density (0 to ignore).")
                                      .cases("LEVM1", "Middle level", "Elev", "length", A(LEVM1))
                                      .number("LEVM3", "Medium fluid density", "Flow", "density", A(LEVM3),
                                              "Medium fluid density (0 to ignore).")
                                      .cases("LEVH1", "High level", "Elev", "length", A(LEVH1))
                                      .number("LEVH3", "Light fluid density", "Flow", "density", A(LEVH3),
                                              "Light fluid density (0 to ignore).")
                                      .tab("Nozzles");
                                  side_fields<&Vessel::NOZI>(f, "NOZI", std::make_index_sequence<kNozzles>{});
                                  side_fields<&Vessel::NOZO>(f, "NOZO", std::make_index_sequence<kNozzles>{});
                                  f.notes(A(NOTES));
                                  return f.done();
                              }()};
    return k;
}

}  // namespace velm::dialog
