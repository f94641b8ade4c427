// The results of a run as JSON, for scripts: every line with its flow and
// duty, and both its ends with every field the balance writes.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "model/records.hpp"
#include "solver/run.hpp"

namespace velm {

nlohmann::ordered_json run_json(const Project& p, const RunResult& r);

}  // namespace velm
