#include "server/pipe_table_json.hpp"

#include "model/pipe_table.hpp"
#include "model/text.hpp"

namespace velm {

nlohmann::json pipe_table_json(const std::vector<PipeData>& table) {
    nlohmann::json materials = nlohmann::json::array();
    for (std::size_t m = 1; m < table.size(); ++m) {
        const PipeData& d = table[m];
        nlohmann::json schedules = nlohmann::json::array(), sizes = nlohmann::json::array();
        for (int j = 1; j <= kPipeSchedules; ++j) schedules.push_back(trim(d.SCH[static_cast<std::size_t>(j)]));
        for (int k = 1; k <= kPipeSizes; ++k) {
            const PipeSize& s = d.DIA[static_cast<std::size_t>(k)];
            if (trim(s.name).empty()) continue;
            nlohmann::json ids = nlohmann::json::array();
            for (int j = 1; j <= kPipeSchedules; ++j) ids.push_back(s.ID[static_cast<std::size_t>(j)] * 1000.0);
            sizes.push_back({{"name", trim(s.name)}, {"od", s.OD * 1000.0}, {"ids", ids}});
        }
        materials.push_back({{"mat", trim(d.MAT)}, {"schedules", schedules}, {"sizes", sizes}});
    }
    return {{"materials", materials}};
}

std::string set_pipe_id(std::vector<PipeData>& table, const std::string& mat, const std::string& size,
                        const std::string& schedule, const std::string& text) {
    for (std::size_t m = 1; m < table.size(); ++m) {
        PipeData& d = table[m];
        if (trim(d.MAT) != mat) continue;
        const int k = find_size(d, size), j = find_schedule(d, schedule);
        if (k == 0 || j == 0) return "Invalid diameter/schedule combination.";
        PipeSize& s = d.DIA[static_cast<std::size_t>(k)];
        const auto mm = parse_number(text);
        // An empty entry takes the schedule out for this size; a bore must lie inside the outside diameter.
        if (trim(text).empty()) {
            s.ID[static_cast<std::size_t>(j)] = 0.0;
            return "";
        }
        if (!mm || !(*mm > 0.0) || (s.OD > 0.0 && *mm / 1000.0 >= s.OD))
            return "Error during input checking. Invalid input= " + trim(text) + " .";
        s.ID[static_cast<std::size_t>(j)] = *mm / 1000.0;
        return "";
    }
    return "Invalid pipe material.";
}

}  // namespace velm
