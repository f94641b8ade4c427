// The pipe table as the page shows and edits it: each material's schedules
// and sizes with their outside and inside diameters in mm.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "model/records.hpp"

namespace velm {

nlohmann::json pipe_table_json(const std::vector<PipeData>& table);

// Sets the inside diameter (mm) of a size and schedule of a material; "" or the
// words of the refusal ("Invalid pipe material.", "Invalid diameter/schedule
// combination.", a number that is not a bore inside the pipe's wall).
std::string set_pipe_id(std::vector<PipeData>& table, const std::string& mat, const std::string& size,
                        const std::string& schedule, const std::string& text);

}  // namespace velm
