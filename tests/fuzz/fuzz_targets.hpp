// The entry points of the fuzz harnesses: each takes any bytes and must end
// without a crash, a hang, an escaped exception or a sanitizer report. The
// libFuzzer programs (fuzz_entry.cpp) and the regression replay of the test
// suite call the same functions.
#pragma once

#include <string_view>
#include <vector>

namespace velm::fuzz {

using Target = void (*)(std::string_view bytes);

struct TargetInfo {
    const char* name;
    Target run;
};

// Every harness by name, in the order tools/fuzz.sh runs them.
const std::vector<TargetInfo>& targets();
// The harness of that name, or nullptr.
Target find_target(std::string_view name);

}  // namespace velm::fuzz
