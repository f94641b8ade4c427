// TEMPORARY: replaced by the units module.
#pragma once
#include <string>
#include <string_view>
namespace velm {
struct RunContext;
std::string converting_units(RunContext& ctx, std::string_view text, std::string_view from, std::string_view to, int digits);
}
