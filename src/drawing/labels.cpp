#include "drawing/labels.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "model/number_format.hpp"
#include "model/text.hpp"
#include "reports/hydraulic_sections.hpp"

namespace velm {

namespace {

// The settings keys of the flags, in the order of the settings file.
struct ViewKey {
    const char* key;
    bool ViewFlags::*flag;
};
constexpr ViewKey kViewKeys[] = {
    {"ViewTempIn", &ViewFlags::TempIn},     {"ViewTempOut", &ViewFlags::TempOut},
    {"ViewPresIn", &ViewFlags::PresIn},     {"ViewPresOut", &ViewFlags::PresOut},
    {"ViewLFIn", &ViewFlags::LFIn},         {"ViewLFOut", &ViewFlags::LFOut},
    {"ViewTotDen", &ViewFlags::TotDen},     {"ViewTotVisc", &ViewFlags::TotVisc},
    {"ViewLiqDen", &ViewFlags::LiqDen},     {"ViewLiqVisc", &ViewFlags::LiqVisc},
    {"ViewVapDen", &ViewFlags::VapDen},     {"ViewVapMw", &ViewFlags::VapMw},
    {"ViewVapVisc", &ViewFlags::VapVisc},   {"ViewVapZ", &ViewFlags::VapZ},
    {"ViewVapK", &ViewFlags::VapK},         {"ViewPipeDia", &ViewFlags::PipeDia},
    {"ViewPipeSch", &ViewFlags::PipeSch},   {"ViewPipeLen", &ViewFlags::PipeLen},
    {"ViewPipeK", &ViewFlags::PipeK},       {"ViewPipeLD", &ViewFlags::PipeLD},
    {"ViewPipeE", &ViewFlags::PipeE},       {"ViewPipeSF", &ViewFlags::PipeSF},
    {"ViewPipeElev", &ViewFlags::PipeElev}, {"ViewFlow", &ViewFlags::Flow},
    {"ViewLiqVolFlow", &ViewFlags::LiqVolFlow}, {"ViewVelIn", &ViewFlags::VelIn},
    {"ViewVelOut", &ViewFlags::VelOut},     {"ViewVelAvg", &ViewFlags::VelAvg},
    {"ViewdPL", &ViewFlags::dPL},           {"ViewPres", &ViewFlags::Pres},
    {"ViewElev", &ViewFlags::Elev},         {"ViewdP", &ViewFlags::dP},
    {"ViewNPSH", &ViewFlags::NPSH},         {"ViewCv", &ViewFlags::Cv},
    {"ViewBeta", &ViewFlags::Beta},         {"ViewRegimes", &ViewFlags::Regimes},
    {"ViewLock", &ViewFlags::Lock},         {"ViewFT", &ViewFlags::FT},
    {"ViewRefLine", &ViewFlags::RefLine},   {"ViewRe", &ViewFlags::Re},
    {"ViewdPperm", &ViewFlags::dPperm},
};

// Significant figures of a label value: enough to read a pressure to a
// tenth of a bar or psi at plant levels, short enough to stay beside the icon.
constexpr int kLabelDigits = 4;
constexpr std::size_t kNameChars = 10;

// Internal units of the quantities shown.
constexpr const char* kPressure = "kPag";
constexpr const char* kPressureDifference = "kPa";
constexpr const char* kMetre = "m";
constexpr const char* kMassFlow = "t/h";
constexpr const char* kVolumeFlow = "m3/h";
constexpr const char* kDensity = "kg/m3";
constexpr const char* kVelocity = "m/s";
constexpr const char* kGradient = "kPa/100m";

bool has_digit(std::string_view s) {
    return std::any_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Builds the rows of one block. Numbers of the results pass through
// FormatNum; the case strings of the inputs through converting_units, which
// keeps their letters and their case structure.
class Block {
public:
    Block(RunContext& ctx, const DisplayUnits& u, const ViewFlags& view, bool input)
        : ctx_(ctx), u_(u), view_(view), input_(input), dp_unit_(difference_unit(u.pressure)) {}

    RunContext& ctx() { return ctx_; }
    bool input() const { return input_; }
    const ViewFlags& view() const { return view_; }
    const DisplayUnits& units() const { return u_; }
    const std::string& dp_unit() const { return dp_unit_; }
    std::vector<std::string>& rows() { return rows_; }

    // prefix, text and the unit after a blank (none when the unit is empty).
    void add(std::string_view prefix, std::string_view text, std::string_view unit) {
        std::string row(prefix);
        row += text;
        if (!unit.empty()) {
            row += ' ';
            row += unit;
        }
        rows_.push_back(std::move(row));
    }

    // A case string converted from `from` to `to`; nothing when it is empty
    // or cannot be converted. A string with no number in it (a curve, an
    // equation, a vessel split) reads without a unit: "dP=C".
    void spec(std::string_view prefix, const std::string& text, std::string_view from, std::string_view to) {
        spec_as(prefix, text, from, to, to);
    }
    // A case string with nothing to convert (Cv, K, ratios, %), shown with `unit`.
    void spec(std::string_view prefix, const std::string& text, std::string_view unit = {}) {
        spec_as(prefix, text, "", "", unit);
    }

    // A value in internal unit `from` shown in `to`, when `shown` is set.
    void value(bool shown, std::string_view prefix, double v, std::string_view from, std::string_view to) {
        if (!shown) return;
        const std::string text = convert_fmt(ctx_, v, from, to, kLabelDigits);
        if (!text.empty()) add(prefix, text, to);
    }
    // A number with no unit to convert; `unit` is only written after it.
    void plain(bool shown, std::string_view prefix, double v, std::string_view unit = {}) {
        if (shown) add(prefix, FormatNum(v, kLabelDigits, 9), unit);
    }
    void temperature(bool shown, std::string_view prefix, double celsius) {
        if (shown) add(prefix, FormatNum(UnitsTFunc(ctx_, celsius, "C", u_.temperature), kLabelDigits, 9), u_.temperature);
    }
    // A text field as it stands; an empty one gives no row.
    void text(bool shown, std::string_view prefix, std::string_view s) {
        const std::string t = trim(s);
        if (shown && !t.empty()) add(prefix, t, {});
    }

    // Gauge pressure, pressure difference and elevation rows of the results.
    void pressure(std::string_view prefix, double kpag) { value(view_.Pres, prefix, kpag, kPressure, u_.pressure); }
    void difference(bool shown, std::string_view prefix, double kpa) {
        value(shown, prefix, kpa, kPressureDifference, dp_unit_);
    }
    void elevation(std::string_view prefix, double m) { value(view_.Elev, prefix, m, kMetre, u_.length); }

    // The inputs of an item that has an inlet, an outlet and a pressure drop.
    void pressure_specs(const Pair& PIN, const Pair& POUT, const Pair& DP) {
        spec("Pi=", PIN.spec, kPressure, u_.pressure);
        spec("Po=", POUT.spec, kPressure, u_.pressure);
        spec("dP=", DP.spec, kPressureDifference, dp_unit_);
    }
    // The results of the same three: shown whatever the flags, which govern
    // the pressures of the boundaries only.
    void pressure_results(const Pair& PIN, const Pair& POUT, const Pair& DP) {
        value(true, "Pi=", PIN.value, kPressure, u_.pressure);
        value(true, "Po=", POUT.value, kPressure, u_.pressure);
        difference(true, "dP=", DP.value);
    }

private:
    void spec_as(std::string_view prefix, const std::string& text, std::string_view from, std::string_view to,
                 std::string_view unit) {
        if (trim(text).empty()) return;
        const std::string shown = converting_units(ctx_, text, from, to, kLabelDigits);
        if (shown.empty()) return;
        add(prefix, shown, has_digit(shown) ? unit : std::string_view());
    }

    RunContext& ctx_;
    const DisplayUnits& u_;
    const ViewFlags& view_;
    bool input_;
    std::string dp_unit_;
    std::vector<std::string> rows_;
};

// Liquid volume flow of a line in the display unit: liquid mass flow through
// the average liquid density; 0 without a density.
double liquid_volume_flow(RunContext& ctx, const Line& l, const std::string& unit) {
    if (!(l.LPROP[1] > 0.0)) return 0.0;
    return l.LVFLOW[1] * get_units(ctx, unit, l.LPROP[1]);
}

void line_rows(Block& b, const Project& p, const Line& l) {
    const DisplayUnits& u = b.units();
    if (b.input()) {
        b.spec("W=", l.TFLOW.spec, kMassFlow, u.mass_flow);
        return;
    }
    const ViewFlags& v = b.view();
    b.value(v.Flow, "Wl=", l.LVFLOW[1], kMassFlow, u.mass_flow);
    b.value(v.Flow, "Wv=", l.LVFLOW[2], kMassFlow, u.mass_flow);
    if (v.LiqVolFlow) b.add("Ql=", FormatNum(liquid_volume_flow(b.ctx(), l, u.liquid_volume_flow), kLabelDigits, 9),
                            u.liquid_volume_flow);
    if (v.RefLine && l.REFLINE > 0) {
        const bool known = l.REFLINE <= count(p.lines);
        b.add("Ref=", known ? trim(p.lines[static_cast<std::size_t>(l.REFLINE)].NAME[1]) : std::to_string(l.REFLINE),
              {});
    }
    b.temperature(v.TempIn, "Ti=", l.TEMP[1]);
    b.temperature(v.TempOut, "To=", l.TEMP[2]);
    b.value(v.PresIn, "Pi=", l.PRES[1], kPressure, u.pressure);
    b.value(v.PresOut, "Po=", l.PRES[2], kPressure, u.pressure);
    b.difference(v.dP, "dP=", l.PRES[1] - l.PRES[2]);
    b.plain(v.LFIn, "LFi=", l.LF[1]);
    b.plain(v.LFOut, "LFo=", l.LF[2]);
    b.value(v.TotDen, "TotDen=", l.TPROP[3], kDensity, u.density);
    b.plain(v.TotVisc, "TotVisc=", l.TPROP[6], "cP");
    b.value(v.LiqDen, "LiqDen=", l.LPROP[1], kDensity, u.density);
    b.plain(v.LiqVisc, "LiqVisc=", l.LPROP[3], "cP");
    b.value(v.VapDen, "VapDen=", l.VPROP[1], kDensity, u.density);
    b.plain(v.VapVisc, "VapVisc=", l.VPROP[3], "cP");
    b.plain(v.VapMw, "VapMw=", l.VPROP[5]);
    b.plain(v.VapZ, "VapZ=", l.VPROP[6]);
    b.plain(v.VapK, "VapK=", l.VPROP[7]);
    b.value(v.VelIn, "Vi=", l.VEL[1], kVelocity, u.velocity);
    b.value(v.VelOut, "Vo=", l.VEL[2], kVelocity, u.velocity);
    b.value(v.VelAvg, "V=", l.VEL[3], kVelocity, u.velocity);
    b.value(v.dPL, "dP/L=", l.DPL, kGradient, u.gradient);
    if (v.Re) b.add("Re=", format_number(l.RE, "0.0E-00"), {});
    if (v.PipeDia) {
        // The nominal size given, else the one the sizing found.
        const std::string nominal = trim(l.DIA[1]).empty() ? trim(l.DIA[2]) : trim(l.DIA[1]);
        if (!nominal.empty()) b.add("D=", nominal, "in");
    }
    b.value(v.PipeDia, "ID=", l.ID.value, kMetre, u.diameter);
    b.text(v.PipeSch, "Sch=", l.SCH);
    b.value(v.PipeLen, "L=", l.LEN, kMetre, u.length);
    b.plain(v.PipeK, "K=", l.FITK);
    b.plain(v.PipeLD, "L/D=", l.FITLD);
    b.value(v.PipeE, "E=", l.EPS.value, kMetre, u.diameter);
    b.plain(v.PipeSF, "Fact=", l.FAC);
    b.value(v.PipeElev, "Elevi=", l.ELEV[1], kMetre, u.length);
    b.value(v.PipeElev, "Elevo=", l.ELEV[2], kMetre, u.length);
    // Horizontal and vertical maps of the two regime sets, then the downflow map.
    b.text(v.Regimes, "Hor1=", l.REG[1]);
    b.text(v.Regimes, "Hor2=", l.REGA[1]);
    b.text(v.Regimes, "VerUp1=", l.REG[2]);
    b.text(v.Regimes, "VerUp2=", l.REGA[2]);
    b.text(v.Regimes, "VerDn=", l.REG[3]);
    if (v.FT) {
        b.add("FTi=", std::to_string(l.FT[1]), {});
        b.add("FTo=", std::to_string(l.FT[2]), {});
    }
    if (v.Lock) b.add("Lock=", l.LOCK != 0 ? "Y" : "N", {});
}

// Feed and product: the boundary pressure, the pressure at the pipe end
// (Feed POUT, Prod PIN) and the loss between them.
void boundary_rows(Block& b, const Boundary& r, const Pair& pipe_end, const char* pipe_end_prefix) {
    if (b.input()) {
        b.spec("P=", r.PRES.spec, kPressure, b.units().pressure);
        b.spec("dP=", r.DP.spec, kPressureDifference, b.dp_unit());
        return;
    }
    b.pressure("P=", r.PRES.value);
    b.pressure(pipe_end_prefix, pipe_end.value);
    b.difference(b.view().dP, "dP=", r.DP.value);
    b.elevation("Elev=", r.ELEV);
}

void valve_rows(Block& b, const Valve& r) {
    const ViewFlags& v = b.view();
    if (b.input()) {
        b.pressure_specs(r.PIN, r.POUT, r.DP);
        b.spec("Cv=", r.CV.spec);
        b.spec("Open=", r.OPEN.spec, "%");
        b.spec("K=", r.K);
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.difference(v.dPperm, "dPinlet=", r.DPP2);
    b.elevation("Elev=", r.ELEV);
    b.plain(v.Cv, "Cv=", r.CV.value);
    b.plain(v.Cv, "Open=", r.OPEN.value, "%");
}

void check_rows(Block& b, const Check& r) {
    if (b.input()) {
        b.plain(true, "L/D=", r.LD);
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.elevation("Elev=", r.ELEV);
}

void pump_rows(Block& b, const Pump& r) {
    if (b.input()) {
        b.pressure_specs(r.PIN, r.POUT, r.DP);
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.value(b.view().NPSH, "NPSHA=", r.NPSHA13.value, kMetre, b.units().head);
    b.value(b.view().NPSH, "NPSHR=", r.NPSHR13.value, kMetre, b.units().head);
    b.elevation("Elev=", r.ELEV);
}

void comp_rows(Block& b, const Comp& r) {
    if (b.input()) {
        b.pressure_specs(r.PIN, r.POUT, r.DP);
        b.spec("Pr=", r.PRAT.spec);
        b.spec("Vol=", r.QACT.spec, kVolumeFlow, b.units().gas_volume_flow);
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.elevation("Elev=", r.ELEV);
}

void fo_rows(Block& b, const FO& r) {
    if (b.input()) {
        b.pressure_specs(r.PIN, r.POUT, r.DP);
        b.spec("B=", r.BETA.spec);
        b.spec("Bore=", r.BORE.spec, kMetre, b.units().diameter);
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.elevation("Elev=", r.ELEV);
    b.plain(b.view().Beta, "B=", r.BETA.value);
}

// Exchanger and miscellaneous equipment: elevations are the heights of the
// inlet and outlet nozzles.
void nozzle_item_inputs(Block& b, const NozzleItem& r) {
    b.pressure_specs(r.PIN, r.POUT, r.DP);
    b.spec("dPr=", r.PRAT1, kPressureDifference, b.dp_unit());
}
void nozzle_item_results(Block& b, const NozzleItem& r) {
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.elevation("Elevi=", r.NOZI.NozHeight);
    b.elevation("Elevo=", r.NOZO.NozHeight);
}

void hx_rows(Block& b, const HX& r) {
    if (!b.input()) return nozzle_item_results(b, r);
    nozzle_item_inputs(b, r);
    b.spec("K=", r.K);
}

void misc_rows(Block& b, const Misc& r) {
    if (!b.input()) return nozzle_item_results(b, r);
    nozzle_item_inputs(b, r);
    // K and L/D act together as one resistance: one row when either is given.
    const std::string K = trim(r.K), LD = trim(r.LD);
    if (K.empty() && LD.empty()) return;
    const auto shown = [&b](const std::string& s) {
        return s.empty() ? std::string("0") : converting_units(b.ctx(), s, "", "", kLabelDigits);
    };
    b.add("K+L/D=", shown(K) + "+" + shown(LD), {});
}

void expand_rows(Block& b, const Expand& r) {
    if (b.input()) {
        // The resistance of a reducer is always worked out from its geometry.
        b.add("K=Calc", "", {});
        return;
    }
    b.pressure_results(r.PIN, r.POUT, r.DP);
    b.difference(b.view().dPperm, "dPperm=", r.DPP);
    b.elevation("Elev=", r.ELEV);
}

void vessel_rows(Block& b, const Vessel& r) {
    if (b.input()) return b.spec("P=", r.PRES.spec, kPressure, b.units().pressure);
    b.pressure("P=", r.PRES.value);
    b.elevation("Elev=", r.ELEV);
}

// A junction has one pressure and no elevation of its own.
void junc_rows(Block& b, const Junc& r) {
    if (b.input()) return b.spec("P=", r.PRES.spec, kPressure, b.units().pressure);
    b.pressure("P=", r.PRES.value);
}

// A tee has nothing to specify on the sheet; its results are the pressure
// and the pressure change of each side.
void tee_rows(Block& b, const Tee& r) {
    if (b.input()) return;
    for (std::size_t side = 1; side <= 3; ++side) b.pressure("P=", r.PRES[side]);
    for (std::size_t side = 1; side <= 3; ++side) b.difference(b.view().dPperm, "dPperm=", r.DPP[side]);
    b.elevation("Elev=", r.ELEV);
}

template <class R>
const R* record_at(const std::vector<R>& v, int index) {
    if (index < 1 || index >= static_cast<int>(v.size())) return nullptr;
    return &v[static_cast<std::size_t>(index)];
}

// Calls f with the record of that kind and number; false when there is none.
template <class F>
bool with_record(const Project& p, std::string_view kind, int index, F&& f) {
    const auto call = [&](const auto* r) {
        if (r == nullptr) return false;
        f(*r);
        return true;
    };
    if (kind == "Line") return call(record_at(p.lines, index));
    if (kind == "Feed") return call(record_at(p.feeds, index));
    if (kind == "Prod") return call(record_at(p.prods, index));
    if (kind == "Valve") return call(record_at(p.valves, index));
    if (kind == "Check") return call(record_at(p.checks, index));
    if (kind == "Pump") return call(record_at(p.pumps, index));
    if (kind == "Comp") return call(record_at(p.comps, index));
    if (kind == "FO") return call(record_at(p.fos, index));
    if (kind == "HX") return call(record_at(p.hxs, index));
    if (kind == "Misc") return call(record_at(p.miscs, index));
    if (kind == "Expand") return call(record_at(p.expands, index));
    if (kind == "Junc") return call(record_at(p.juncs, index));
    if (kind == "Tee") return call(record_at(p.tees, index));
    if (kind == "Vessel") return call(record_at(p.vessels, index));
    return false;
}

struct RowsOf {
    Block& b;
    const Project& p;
    void operator()(const Line& r) const { line_rows(b, p, r); }
    void operator()(const Feed& r) const { boundary_rows(b, r, r.POUT, "Po="); }
    void operator()(const Prod& r) const { boundary_rows(b, r, r.PIN, "Pi="); }
    void operator()(const Valve& r) const { valve_rows(b, r); }
    void operator()(const Check& r) const { check_rows(b, r); }
    void operator()(const Pump& r) const { pump_rows(b, r); }
    void operator()(const Comp& r) const { comp_rows(b, r); }
    void operator()(const FO& r) const { fo_rows(b, r); }
    void operator()(const HX& r) const { hx_rows(b, r); }
    void operator()(const Misc& r) const { misc_rows(b, r); }
    void operator()(const Expand& r) const { expand_rows(b, r); }
    void operator()(const Junc& r) const { junc_rows(b, r); }
    void operator()(const Tee& r) const { tee_rows(b, r); }
    void operator()(const Vessel& r) const { vessel_rows(b, r); }
};

}  // namespace

ViewFlags default_view_flags() {
    ViewFlags v;
    v.Flow = true;
    v.PresIn = true;
    v.PresOut = true;
    return v;
}

ViewFlags view_flags(const Settings& s) {
    ViewFlags v = default_view_flags();
    for (const ViewKey& k : kViewKeys) {
        const std::string* text = s.find(k.key);
        if (text == nullptr) continue;
        const auto n = parse_number(*text);
        if (!n || *n != std::floor(*n)) continue;
        v.*k.flag = *n != 0.0;
    }
    return v;
}

void store_view_flags(const ViewFlags& view, Settings& s) {
    for (const ViewKey& k : kViewKeys) s.set(k.key, view.*k.flag ? "-1" : "0");
}

std::vector<std::string> LabelRows(RunContext& ctx, const Project& p, const DisplayUnits& units, const ViewFlags& view,
                                   std::string_view kind, int index, std::string_view mode) {
    if (mode != "Input" && mode != "Result") return {};
    Block b(ctx, units, view, mode == "Input");
    const bool found = with_record(p, kind, index, [&](const auto& r) {
        b.rows().push_back(trim(r.NAME[1]).substr(0, kNameChars));
        RowsOf{b, p}(r);
    });
    if (!found) return {};
    return std::move(b.rows());
}

void DrawLabels(Surface& s, RunContext& ctx, const Project& p, const DisplayUnits& units, const ViewFlags& view,
                std::string_view kind, int index, std::string_view mode, float anchor_x, float anchor_y, float size,
                int32_t colour) {
    const std::vector<std::string> rows = LabelRows(ctx, p, units, view, kind, index, mode);
    if (rows.empty()) return;
    float dx = 0.0f, dy = 0.0f;
    with_record(p, kind, index, [&](const Drawn& r) {
        dx = r.LBL2;
        dy = r.LBL3;
    });
    const float x = anchor_x + dx;
    for (std::size_t i = 0; i < rows.size(); ++i)
        s.text(x, anchor_y + dy + static_cast<float>(i) * kLabelRowHeight * size, rows[i], size, colour);
}

}  // namespace velm
