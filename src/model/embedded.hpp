// Library files compiled into the executable (data/*.lib).
#pragma once
#include <string_view>

namespace velm {
// The bytes of data/<name> as built in; empty when no such file was built in.
std::string_view embedded_file(std::string_view name);
}  // namespace velm
