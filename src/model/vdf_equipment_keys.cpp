// The key tables of the boundaries, equipment, nodes, symbols, pseudo
// components and the pipe table.
#include "model/context.hpp"
#include "model/text.hpp"
#include "model/units.hpp"
#include "model/vdf_key_builders.hpp"

namespace velm::vdf {

// ---------------------------------------------------------------------------
// Boundaries, two-port items and nodes.

// Feed and Prod: the same keys but for the pressure at the pipe end, POUT on
// a feed and PIN on a product.
template <class R>
std::vector<KeyDef<R>> boundary_keys(KeyDef<R> pipe_end) {
    return concat<R>({
        {{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", {F(NOZ.X), F(NOZ.Y)}}},
        drawn_head_keys<R>(),
        {
            {"TYPE", {T(TYPE)}},
            {"ELEV", {D(ELEV), W("m")}},
            {"LEVEL", {C(LEVEL1), W("m"), D(LEVEL3), W("kg/m3"), T(LEVEL5)}},
            {"NOZ", {I(NOZ.CON), D(NOZ.NozHeight), W("m"), D(NOZ.dPLevel), D(NOZ.dPFlow), D(NOZ.KFlow), W("kPag")}},
            {"PRES", {P(PRES), W("kPag")}},
            pipe_end,
            {"DP", {P(DP), W("kPag")}},
            eqn_key<R>(),
            {"CHOKE", {I(CHOKE)}},
            {"NOTES", {NT(NOTES)}},
        },
    });
}

std::vector<KeyDef<Feed>> feed_keys() {
    using R = Feed;
    return boundary_keys<R>({"POUT", {P(POUT), W("kPag")}});
}

std::vector<KeyDef<Prod>> prod_keys() {
    using R = Prod;
    return boundary_keys<R>({"PIN", {P(PIN), W("kPag")}});
}

template <class R>
std::vector<KeyDef<R>> two_port_head() {
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()}},
                      drawn_head_keys<R>()});
}

template <class R>
std::vector<KeyDef<R>> pressures_keys() {
    return {
        {"DP", {P(DP), W("kPag")}},
        {"PIN", {P(PIN), W("kPag")}},
        {"POUT", {P(POUT), W("kPag")}},
    };
}

template <class R>
std::vector<KeyDef<R>> con_elev_keys() {
    return {
        {"CON", {I(CON[1]), I(CON[2])}},
        {"ELEV", {D(ELEV), W("m")}},
    };
}

std::vector<KeyDef<Valve>> valve_keys() {
    using R = Valve;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"DPP", {I(DPP1), D(DPP2), W("kPag")}},
                          {"K", {CM(K)}},
                          {"CV", {PM(CV)}},
                          {"DIA", {T(DIA)}},
                          {"TYPE2", {T(TYPE2)}},
                          {"TYPE", {T(TYPE)}},
                          {"OPEN", {PM(OPEN)}},
                          {"XT", {D(XT)}},
                          {"YIN", {D(YIN)}},
                          {"FP2", {D(FP2)}},
                          {"NOTES", {NT(NOTES)}},
                          {"X", {}, skip_line<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Check>> check_keys() {
    using R = Check;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(), {{"LD", {D(LD)}}}});
}

std::vector<KeyDef<FO>> fo_keys() {
    using R = FO;
    std::vector<KeyDef<R>> head = {
        {"NAME", {T(NAME[1]), T(NAME[2])}},
        {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()},
        {"COLOR", {I(COLOR)}},
        {"TYPE", {T(TYPE)}},
        {"ROT", {I(ROT)}},
        {"FLIP", {I(FLIP[1]), I(FLIP[2])}},
        {"LBL", {I(LBL1), F(LBL2), F(LBL3)}},
    };
    return concat<R>({head, con_elev_keys<R>(),
                      {
                          {"DP", {P(DP), W("kPag")}},
                          {"DPF", {P(DPF), W("kPag")}},
                          {"PIN", {P(PIN), W("kPag")}},
                          {"POUT", {P(POUT), W("kPag")}},
                          {"HOLES", {I(HOLES)}},
                          {"THICK", {D(THICK), W("m")}},
                          {"BORE", {P(BORE)}},
                          {"BETA", {PM(BETA)}},
                          {"C", {D(C)}},
                          {"YIN", {D(YIN)}},
                          {"CHOKE", {I(CHOKE)}},
                          {"NOTES", {NT(NOTES)}},
                      }});
}

template <class R>
std::vector<KeyDef<R>> nozzle_item_keys(std::vector<KeyDef<R>> kind_keys, std::vector<KeyDef<R>> tail) {
    return concat<R>({two_port_head<R>(), kind_keys,
                      {
                          {"NOZI", {I(NOZI.CON), D(NOZI.NozHeight), W("m")}},
                          {"NOZO", {I(NOZO.CON), D(NOZO.NozHeight), W("m")}},
                      },
                      pressures_keys<R>(),
                      {{"PRAT", {T(PRAT1), W("kPag"), D(PRAT3), W("t/h"), D(PRAT5), W("kg/m3"), L("1"), W("cP")}}},
                      tail});
}

std::vector<KeyDef<HX>> hx_keys() {
    using R = HX;
    return nozzle_item_keys<R>({{"TYPE", {T(TYPE)}}, {"SIDE", {T(SIDE)}}},
                               {
                                   {"K", {CM(K)}},
                                   {"DPELEV", {D(DPELEV), W("kPag")}},
                                   {"Q", {P(Q), W("kJ/h")}},
                                   {"NOTES", {NT(NOTES)}},
                               });
}

std::vector<KeyDef<Misc>> misc_keys() {
    using R = Misc;
    return nozzle_item_keys<R>({}, {
                                       {"K", {CM(K)}},
                                       {"LD", {CM(LD)}},
                                       {"DPELEV", {D(DPELEV), W("kPag")}},
                                       {"VOLBAL", {I(VOLBAL)}},
                                       {"NOTES", {NT(NOTES)}},
                                   });
}

// Files before 3.0 held the curve as a count and pairs of head and flow.
template <class R>
void read_old_curve(ReadState& st, R& m) {
    m.HQ1 = st.in.integer();
    for (int i = 1; i <= m.HQ1 && !st.in.line_ended(); ++i) {
        const std::string head = converting_units(st.ctx, st.in.item(), "", "", st.chosen_mode);
        const std::string flow = converting_units(st.ctx, st.in.item(), "", "", st.chosen_mode);
        if (i <= kCurvePoints) {
            m.CURH[static_cast<std::size_t>(i)] = head;
            m.CURQ[static_cast<std::size_t>(i)] = flow;
        }
    }
    st.in.rest_of_line();
}

template <class R>
std::vector<KeyDef<R>> curve_keys() {
    return {
        {"CURRPM", {D(CURRPM[1]), D(CURRPM[2]), W("rpm")}},
        {"CURDIA", {D(CURDIA[1]), D(CURDIA[2]), W("m")}},
    };
}

template <class R>
std::vector<KeyDef<R>> curve_point_keys() {
    return {
        {"CURNP", {I(HQ1)}},
        {"CURQ", array_slots<R, &R::CURQ, Kind::Case, 1, 10>({W("m3/h")})},
        {"CURH", array_slots<R, &R::CURH, Kind::Case, 1, 10>({W("m")})},
        {"CUREFF", array_slots<R, &R::CUREFF, Kind::Case, 1, 10>({W("fraction")})},
    };
}

std::vector<KeyDef<Pump>> pump_keys() {
    using R = Pump;
    std::vector<KeyDef<R>> curves = curve_keys<R>();
    curves.push_back({"CURC1", {I(CURC1)}});
    auto points = curve_point_keys<R>();
    curves.insert(curves.end(), points.begin(), points.end());
    curves.push_back({"CURNPSH", array_slots<R, &R::CURNPSH, Kind::Case, 1, 10>({W("m")})});
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"TYPE", {T(TYPE)}},
                          {"EFFP", {PM(EFFP)}},
                          {"EFFS", {PM(EFFS)}},
                          {"POW", {D(POW), W("kW")}},
                          {"HQACT", {D(HQACT[1]), W("m"), D(HQACT[3]), W("m3/h")}},
                      },
                      curves,
                      {
                          {"NPSHA13", {P(NPSHA13), W("m")}},
                          {"NPSHR13", {P(NPSHR13), W("m")}},
                          {"NPSHAF",
                           {I(NPSHAF[1]), I(NPSHAF[2]), I(NPSHA3), D(NPSHA4), W("kPag"), D(NPSHA6), W("m")}},
                          {"NPSHRE", {I(NPSHR1), I(NPSHR2), W("rpm"), I(NPSHR3)}},
                          {"NOTES", {NT(NOTES)}},
                          {"NPSHA", {T(NPSHA_names[1]), T(NPSHA_names[2])}, nullptr, nullptr, false},
                          {"NPSHAE", {}, skip_line<R>, nullptr, false},
                          {"NPSHR", {}, skip_line<R>, nullptr, false},
                          {"HQ", {}, read_old_curve<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Comp>> comp_keys() {
    using R = Comp;
    return concat<R>({two_port_head<R>(), con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"PRAT", {P(PRAT), W("")}},
                          {"QACT", {P(QACT), W("m3/h")}},
                          {"TYPE", {T(TYPE)}},
                          {"EFFC", {PM(EFFC)}},
                          {"EFFS", {PM(EFFS)}},
                          {"POW", {D(POW), W("kW")}},
                          {"HQACT", {D(HQACT[1]), W("m"), D(QACT.value), W("m3/h")}},
                      },
                      curve_keys<R>(), curve_point_keys<R>(),
                      {
                          {"NOTES", {NT(NOTES)}},
                          {"HQ", {}, read_old_curve<R>, nullptr, false},
                      }});
}

std::vector<KeyDef<Expand>> expand_keys() {
    using R = Expand;
    return concat<R>({two_port_head<R>(), {{"TYPE", {I(TYPE)}}}, con_elev_keys<R>(), pressures_keys<R>(),
                      {
                          {"DPP", {D(DPP), W("kPag")}},
                          {"CHOKE", {I(CHOKE)}},
                          {"K", {D(K)}},
                          {"ANGLE", {D(ANGLE)}},
                      }});
}

// Junction and vessel nozzles: one line for each port, led by the port number.
enum class NozzleShape { Short, Full };

template <class R, NozzleShape S>
void read_nozzle_line(ReadState& st, std::array<Port, kNozzles + 1>& ports) {
    const int n = st.in.integer();
    Port scratch;
    Port& p = (n >= 1 && n <= kNozzles) ? ports[static_cast<std::size_t>(n)] : scratch;
    p.CON = st.in.integer();
    p.NozHeight = st.in.number();
    st.in.item();  // "m"
    if constexpr (S == NozzleShape::Full) {
        p.dPNoz = st.in.number();
        st.in.item();  // "kPag"
        p.dPLevel = st.in.number();
        p.dPFlow = st.in.number();
        p.KFlow = st.in.number();
        st.in.item();  // "kPag"
    }
}

template <NozzleShape S>
void write_nozzle_lines(LineWriter& lw, const char* key, const std::array<Port, kNozzles + 1>& ports) {
    for (int n = 1; n <= kNozzles; ++n) {
        const Port& p = ports[static_cast<std::size_t>(n)];
        lw.begin(key);
        lw.w.integer(n);
        lw.w.integer(p.CON);
        lw.w.number(p.NozHeight);
        lw.w.text("m");
        if constexpr (S == NozzleShape::Full) {
            lw.w.number(p.dPNoz);
            lw.w.text("kPag");
            lw.w.number(p.dPLevel);
            lw.w.number(p.dPFlow);
            lw.w.number(p.KFlow);
            lw.w.text("kPag");
        }
        lw.w.end_line();
    }
}

template <class R, NozzleShape S>
std::vector<KeyDef<R>> nozzle_keys() {
    return {
        {"NOZI", {}, +[](ReadState& st, R& r) { read_nozzle_line<R, S>(st, r.NOZI); },
         +[](LineWriter& lw, const R& r) { write_nozzle_lines<S>(lw, "NOZI", r.NOZI); }},
        {"NOZO", {}, +[](ReadState& st, R& r) { read_nozzle_line<R, S>(st, r.NOZO); },
         +[](LineWriter& lw, const R& r) { write_nozzle_lines<S>(lw, "NOZO", r.NOZO); }},
    };
}

template <class R>
std::vector<Slot<R>> port_xy_slots() {
    return {F(NOZI[1].X), F(NOZI[1].Y), F(NOZI[2].X), F(NOZI[2].Y), F(NOZI[3].X), F(NOZI[3].Y),
            F(NOZI[4].X), F(NOZI[4].Y), F(NOZO[1].X), F(NOZO[1].Y), F(NOZO[2].X), F(NOZO[2].Y),
            F(NOZO[3].X), F(NOZO[3].Y), F(NOZO[4].X), F(NOZO[4].Y)};
}

std::vector<KeyDef<Junc>> junc_keys() {
    using R = Junc;
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", port_xy_slots<R>()}},
                      drawn_head_keys<R>(),
                      {{"PRES", {P(PRES), W("kPag")}}},
                      nozzle_keys<R, NozzleShape::Short>()});
}

std::vector<KeyDef<Tee>> tee_keys() {
    using R = Tee;
    // The M and B lines carry the density of the combined side, as C does.
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", array_slots<R, &R::XY, Kind::Single, 1, 12>()}},
                      drawn_head_keys<R>(),
                      {
                          {"TYPE", {I(TYPE)}},
                          {"CON", array_slots<R, &R::CON, Kind::Int, 1, 6>()},
                          {"ELEV", {D(ELEV), W("m")}},
                          {"PRES", {D(PRES[1]), D(PRES[2]), D(PRES[3]), W("kPag")}},
                          {"DPP", {D(DPP[1]), D(DPP[2]), D(DPP[3]), W("kPag")}},
                          {"KCM", {P(KCM)}},
                          {"KCB", {P(KCB)}},
                          {"SPAC", {D(SPAC)}},
                          {"C", {I(C[1]), I(C[2]), D(C3), W("kg/m3")}},
                          {"M", {I(M[1]), I(M[2]), D(C3), W("kg/m3")}},
                          {"B", {I(B[1]), I(B[2]), D(C3), W("kg/m3")}},
                          {"NOTES", {NT(NOTES)}},
                      }});
}

std::vector<KeyDef<Vessel>> vessel_keys() {
    using R = Vessel;
    return concat<R>({{{"NAME", {T(NAME[1]), T(NAME[2])}}, {"XY", port_xy_slots<R>()}},
                      drawn_head_keys<R>(),
                      {
                          {"TYPE", {T(TYPE)}},
                          {"PRES", {P(PRES), W("kPag")}},
                          {"LF", {P(LF)}},
                          {"ELEV", {D(ELEV), W("m")}},
                          {"LEVL", {C(LEVL1), W("m"), D(LEVL3), W("kg/m3"), T(LEVL5)}},
                          {"LEVM", {C(LEVM1), W("m"), D(LEVM3), W("kg/m3"), T(LEVM5)}},
                          {"LEVH", {C(LEVH1), W("m"), D(LEVH3), W("kg/m3"), T(LEVH5)}},
                          {"NOZN", {I(NOZN)}},
                      },
                      nozzle_keys<R, NozzleShape::Full>(),
                      {{"NOTES", {NT(NOTES)}}}});
}

std::vector<KeyDef<Symbol>> symbol_keys() {
    using R = Symbol;
    return {
        {"TYPE", {T(TYPE)}},
        {"XY", array_slots<R, &R::XY, Kind::Single, 1, 4>()},
        {"TEXT", {NT(TEXT)}},
        {"COLOR", {I(COLOR)}},
        {"STYLL", {I(STYLL)}},
        {"STYLA", {I(STYLA)}},
        {"ANGL", {F(ANGL[1]), F(ANGL[2])}},
        {"FSIZ", {F(FSIZ)}},
    };
}

std::vector<KeyDef<Pseudo>> pseudo_keys() {
    using R = Pseudo;
    std::vector<Slot<R>> ant = array_slots<R, &R::ANT, Kind::Single, 1, 10>({W("kPaa")});
    auto range = array_slots<R, &R::ANT, Kind::Single, 12, 4>({W("K")});
    ant.insert(ant.end(), range.begin(), range.end());
    return {
        {"NAME", {I(NAME_NUM[1]), I(NAME_NUM[2]), FR(NAME_TEXT[1], 40), FR(NAME_TEXT[2], 40)}},
        {"FOR", {FR(FOR[1], 12), FR(FOR[2], 12)}},
        {"MW", {F(MW[1]), F(MW[2])}},
        {"TFP", {F(TFP[1]), F(TFP[2]), W("K")}},
        {"TBP", {F(TBP[1]), F(TBP[2]), W("K")}},
        {"TC", {F(TC[1]), F(TC[2]), W("K")}},
        {"PC", {F(PC[1]), F(PC[2]), W("kPaa")}},
        {"VC", {F(VC[1]), F(VC[2]), W("m3/kmol")}},
        {"ZC", {F(ZC[1]), F(ZC[2])}},
        {"ACC", {F(ACC[1]), F(ACC[2])}},
        {"DENS", {F(DENS[1]), F(DENS[2]), W("kg/m3")}},
        {"DENT", {F(DENT[1]), F(DENT[2]), W("kg/m3"), F(DENT[4]), F(DENT[5]), W("K")}},
        {"DIPM", {F(DIPM[1]), F(DIPM[2])}},
        {"CP", array_slots<R, &R::CP, Kind::Single, 1, 10>({W("kJ/kmol/K")})},
        {"VISC", array_slots<R, &R::VISC, Kind::Single, 1, 10>({W("cP_K")})},
        {"HVAP", {F(HVAP[1]), F(HVAP[2])}},
        {"HFOR", {F(HFOR[1]), F(HFOR[2])}},
        {"ANT", ant},
    };
}

// Pipe table: one DIA line for each size, led by the size number.
void read_pipe_size(ReadState& st, PipeData& pd) {
    const int n = st.in.integer();
    PipeSize scratch;
    PipeSize& size = (n >= 1 && n <= kPipeSizes) ? pd.DIA[static_cast<std::size_t>(n)] : scratch;
    size.name = st.in.item();
    size.OD = st.in.number();
    for (int j = 1; j <= kPipeSchedules; ++j) size.ID[static_cast<std::size_t>(j)] = st.in.number();
}

void write_pipe_sizes(LineWriter& lw, const PipeData& pd) {
    for (int n = 1; n <= kPipeSizes; ++n) {
        const PipeSize& size = pd.DIA[static_cast<std::size_t>(n)];
        lw.begin("DIA");
        lw.w.integer(n);
        lw.w.text(size.name);
        lw.w.number(size.OD);
        for (int j = 1; j <= kPipeSchedules; ++j) lw.w.number(size.ID[static_cast<std::size_t>(j)]);
        lw.w.end_line();
    }
}

std::vector<KeyDef<PipeData>> pipedata_keys() {
    using R = PipeData;
    return {
        {"MAT", {T(MAT)}},
        {"NOTES", {NT(NOTES)}},
        {"PROP", {L("0"), W("Units"), L("0"), W("Units")}},
        {"E", {D(E), W("m")}},
        {"NSS", {T(NSS)}},
        {"IDIA", {T(IDIA[1]), T(IDIA[2])}},
        {"SDIA",
         {D(SDIA_limit[1]), T(SDIA_sch[1]), D(SDIA_limit[2]), T(SDIA_sch[2]), D(SDIA_limit[3]), T(SDIA_sch[3]),
          W("m")}},
        {"UNITS", {T(UNITS)}},
        {"SCH", array_slots<R, &R::SCH, Kind::Text, 1, 20>()},
        {"DIA", {}, read_pipe_size, write_pipe_sizes},
    };
}

}  // namespace velm::vdf

#undef T
#undef FB
#undef FR
#undef NT
#undef C
#undef CM
#undef I
#undef F
#undef FZ
#undef D
#undef W
#undef L
#undef P
#undef PM
