// A libFuzzer program over one harness, chosen at build time by VELM_FUZZ_TARGET.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "tests/fuzz/fuzz_targets.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const velm::fuzz::Target target = velm::fuzz::find_target(VELM_FUZZ_TARGET);
    if (!target) std::abort();
    target(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
