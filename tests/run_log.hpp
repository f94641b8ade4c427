// The lines a run has logged since the last call, in order, for tests that
// assert the program's exact words; the buffer is cleared.
#pragma once

#include <string>
#include <vector>

#include "model/context.hpp"

namespace velm {

inline std::vector<std::string> take_run_log(RunContext& ctx) {
    std::vector<std::string> out;
    for (std::size_t at = 0; (at = ctx.run_log_text.find("\r\n", at)) != std::string::npos;) {
        at += 2;
        out.push_back(ctx.run_log_text.substr(at, ctx.run_log_text.find("\r\n", at) - at));
    }
    ctx.run_log_text.clear();
    return out;
}

}  // namespace velm
