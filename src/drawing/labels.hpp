// The label blocks of the sheet: beside an item, its name and what the user
// specified ("Input") or what the last run found ("Result"), each value in
// the display unit of its quantity. Which result rows a block shows is the
// user's choice, kept as the View flags of the settings file.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/sheet.hpp"
#include "model/context.hpp"
#include "model/records.hpp"
#include "model/settings.hpp"
#include "model/units.hpp"

namespace velm {

// Which result rows the sheet shows: one flag per "View..." key of the
// settings file, named after the key without "View".
struct ViewFlags {
    bool TempIn = false, TempOut = false, PresIn = false, PresOut = false, LFIn = false, LFOut = false;
    bool TotDen = false, TotVisc = false, LiqDen = false, LiqVisc = false;
    bool VapDen = false, VapMw = false, VapVisc = false, VapZ = false, VapK = false;
    bool PipeDia = false, PipeSch = false, PipeLen = false, PipeK = false, PipeLD = false, PipeE = false,
         PipeSF = false, PipeElev = false;
    bool Flow = false, LiqVolFlow = false, VelIn = false, VelOut = false, VelAvg = false, dPL = false;
    bool Pres = false, Elev = false, dP = false, NPSH = false, Cv = false, Beta = false;
    bool Regimes = false, Lock = false, FT = false, RefLine = false, Re = false, dPperm = false;

    bool operator==(const ViewFlags&) const = default;
};

// The flags of a new installation: line flow and the line's two pressures.
ViewFlags default_view_flags();

// The flags from the "View..." keys of the settings: "0" is off, any other
// whole number (-1, 1) on; a key that is missing or holds no whole number
// leaves the default.
ViewFlags view_flags(const Settings& s);

// Every flag written to its key as "-1" (on) or "0" (off).
void store_view_flags(const ViewFlags& view, Settings& s);

// The rows of an item's label block in mode "Input" or "Result": row 0 the
// first 10 characters of its name, then one row per value, each a prefix
// ("Pi=", "dP=", ...), the value in the display unit and the unit.
//
// "Input" shows the user's case strings (position 1 of a pair), a field left
// empty giving no row; a case string of letters only ("C", "E", "V") shows
// without a unit. "Result" shows the values in force (position 2 and the
// calculated fields), each under its View flag where one governs it.
//
// kind is a record type name ("Line", "Feed", "Prod", "Valve", "Check",
// "Pump", "Comp", "FO", "HX", "Misc", "Expand", "Junc", "Tee", "Vessel"). A
// symbol, any other kind, an index that names no record in use, or another
// mode gives no rows at all.
std::vector<std::string> LabelRows(RunContext& ctx, const Project& p, const DisplayUnits& units, const ViewFlags& view,
                                   std::string_view kind, int index, std::string_view mode);

// Row height of a label block at text size 1, twips.
inline constexpr float kLabelRowHeight = 200.0f;

// Writes the rows of LabelRows through Surface::text, the first at the anchor
// moved by the item's label offset (LBL[2], LBL[3]) and each further row
// kLabelRowHeight * size lower, in the given size and colour. Where the
// anchor is and whether the item's label is shown (LBL[1]) are the caller's
// to decide.
void DrawLabels(Surface& s, RunContext& ctx, const Project& p, const DisplayUnits& units, const ViewFlags& view,
                std::string_view kind, int index, std::string_view mode, float anchor_x, float anchor_y, float size,
                int32_t colour);

}  // namespace velm
