// The feed and product dialogs: the boundary pressure, the pressure at the
// pipe end and the loss between them, the tank geometry and the equation.
#include "dialogs/dialog_table.hpp"

#define A(x) +[](R& r) { return &r.x; }

namespace velm::dialog {
namespace {

// A boundary whose pressure is given both at the top and at the pipe end
// leaves the user to say which is meant. A vessel may carry both.
template <class R>
std::string boundary_rules(const R& b, const Pair& pipe_end) {
    if (b.TYPE != "Tank" && b.TYPE != "Pipe") return "";
    for (int n = 1, cases = cases_of({b.PRES.spec, pipe_end.spec}); n <= cases; ++n)
        if (given(b.PRES.spec, n) && given(pipe_end.spec, n)) return "Pressure on top of vessel or on flowing pipe ?";
    return "";
}

template <class R>
std::vector<FieldDef<R>> boundary_fields(bool feed) {
    Fields<R> f;
    f.names()
        .text("TYPE", "Type", A(TYPE), "", {"Pipe", "Tank", "Vessel"})
        .pair("PRES", feed ? "Source pressure" : "Sink pressure", "Pres", "pressure", A(PRES),
              "Specify or leave empty to calculate. Enter E to use equation.", "E");
    if (feed)
        f.pair("POUT", "Pressure at pipe inlet", "Pres", "pressure", A(POUT),
               "Specify or leave empty to calculate. Enter E to use equation.", "E")
            .pair("DP", "Inlet loss", "dP", "pressure", A(DP),
                  "Inlet pres loss, excluding acceleration or elevation/level.", "E");
    else
        f.pair("PIN", "Pressure at pipe outlet", "Pres", "pressure", A(PIN), "Pipe outlet pres. Specify or leave empty.",
               "E")
            .pair("DP", "Exit loss", "dP", "pressure", A(DP), "Exit pres drop, excluding elevation/level.", "E");
    f.result_flag("CHOKE", "Choked", A(CHOKE)).tab("Tank")
        .number("ELEV", "Elevation", "Elev", "length", A(ELEV), "Elevation of Pipe/Tank bottom above grade.")
        .cases("LEVEL1", "Liquid level", "Length", "length", A(LEVEL1),
               "Height of fluid level above tank bottom (enter 0 for Pipe).")
        .number("LEVEL3", "Density of the level", "Flow", "density", A(LEVEL3))
        .text("LEVEL5", "Density from", A(LEVEL5), "", {"Line", ""})
        .number("NOZ2", "Nozzle height", "Elev", "length", A(NOZ.NozHeight),
                "Height of nozzle above tank bottom (enter 0 for Pipe).");
    equation_fields(f);
    f.notes(A(NOTES));
    return f.done();
}

}  // namespace

const KindDef<Feed>& feed_dialog() {
    using R = Feed;
    static const KindDef<R> k{"frmFeed", &Project::feeds, boundary_fields<R>(true),
                              +[](RunContext&, const Project&, const R& b, const Texts&) {
                                  return boundary_rules(b, b.POUT);
                              }};
    return k;
}

const KindDef<Prod>& prod_dialog() {
    using R = Prod;
    static const KindDef<R> k{"frmProd", &Project::prods, boundary_fields<R>(false),
                              +[](RunContext&, const Project&, const R& b, const Texts&) {
                                  return boundary_rules(b, b.PIN);
                              }};
    return k;
}

}  // namespace velm::dialog
