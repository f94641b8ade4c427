// The pipe table: for each material its nominal sizes (rows 1..50), its
// schedules (columns 1..20), the outside diameter of each size and the inside
// diameter of each size and schedule (0 where the pair does not exist). The
// diameters are held in the material's own unit (PipeData::UNITS) and scaled
// on every lookup. The table vector keeps element 0 unused: materials are
// entries 1..N.
//
// Library file pipeid.lib, in the item grammar of the project file:
//   "Velm_2.0"
//   "Number",N
//   and for each material:
//   "Set",n / "Material",MAT / "Notes",NOTES / "Properties",0,"Units" (twice)
//   "Roughness",E,"m" / "NonStdSizes",NSS / "SizeInit",IDIA1,IDIA2
//   "SizeSch",limit1,sch1,limit2,sch2,limit3,sch3,"m" / "IDUnits",UNITS
//   "Nom","OD",20 schedule names
//   50 lines: size name, OD, 20 inside diameters
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "model/records.hpp"

namespace velm {

struct RunContext;

// Loads pipeid.lib from lib_dir; an empty lib_dir, or one without the file,
// loads the built-in copy. On a fault the user is told and the table is left
// as it was. Returns true when a table was read.
bool ReadPipeLib(RunContext& ctx, std::vector<PipeData>& table, const std::filesystem::path& lib_dir = {});
// Reads a library from its bytes into table (sized from the "Number" line).
bool read_pipe_lib_text(RunContext& ctx, std::string_view bytes, std::vector<PipeData>& table);
// The library text of materials 1..N, CR LF line ends.
std::string pipe_lib_text(const std::vector<PipeData>& table);
// Writes the library to file through a temporary file beside it.
bool SavePipeLib(RunContext& ctx, const std::vector<PipeData>& table, const std::filesystem::path& file);

// Row of a nominal size and column of a schedule of one material, by exact
// name, the first that matches; 0 for none.
int find_size(const PipeData& p, std::string_view size);
int find_schedule(const PipeData& p, std::string_view sch);

// Entry of a material by exact name, the first that matches; 0 for none.
int find_pipe_material(const std::vector<PipeData>& table, std::string_view mat);

// "ID", "OD" or "WT" (wall thickness) of a nominal size and schedule, in the
// unit `units`; 0 when the material, size or schedule is not in the table.
double pipe_ID_from_dia(RunContext& ctx, const std::vector<PipeData>& table, std::string_view what,
                        std::string_view mat, std::string_view size, std::string_view sch, std::string_view units);

// The nominal size for an inside diameter `id` (in `units`) in schedule sch:
// "Larger" gives the first standard size whose inside diameter reaches id,
// "Smaller" the standard size below that one. "" when nothing fits; with
// report set that is logged.
std::string pipe_Dia_from_ID(RunContext& ctx, const std::vector<PipeData>& table, std::string_view mat, double id,
                             std::string_view sch, std::string_view units, std::string_view direction, bool report);

// The default schedule of a material for an outside or nominal diameter in m,
// by the material's three size limits; "" for an unknown material.
std::string pipe_Sched_from_ID(RunContext& ctx, const std::vector<PipeData>& table, std::string_view mat,
                               double size);

// False when size is one of the ";"-separated entries of list (compared
// exactly): such sizes are offered to the user but skipped by sizing.
bool is_std_size(std::string_view size, std::string_view list);

}  // namespace velm
