// The page's files as built into the executable (web/index.html, style.css
// and the compiled app.js).
#pragma once
#include <string_view>

namespace velm {
// The bytes of the named file; empty when no such file was built in.
std::string_view embedded_web_file(std::string_view name);
}  // namespace velm
