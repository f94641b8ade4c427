// Small text helpers shared by the file readers and the case strings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velm {

// The text without leading and trailing blanks (spaces and tabs), as a view.
std::string_view trim_view(std::string_view s);
std::string trim(std::string_view s);
std::string trim_right(std::string_view s);
std::string upper(std::string_view s);
// Trimmed, in capitals: how specification letters and keys are compared.
inline std::string key_of(std::string_view s) { return upper(trim(s)); }
// Pads with blanks or cuts to exactly n characters (fixed-width text fields).
std::string fixed_width(std::string_view s, std::size_t n);

// Untrusted text as a message may show it: at most max_chars characters (then
// "..."), control bytes as \xNN, so that a faulty line never floods or drives
// the terminal.
std::string shown_text(std::string_view s, std::size_t max_chars = 80);

// The whole trimmed text as a number with a decimal point ("1E-05", ".5", "-3");
// nothing when the text is empty or not a number.
std::optional<double> parse_number(std::string_view s);
// The number at the start of the text, 0 when there is none (leading blanks skipped).
double leading_number(std::string_view s);
// The same, nothing when the text does not start with a number.
std::optional<double> leading_number_of(std::string_view s);

// Shortest text that reads back to the same value (a double or a single),
// always with a decimal point, never a locale's comma.
std::string number_text(double v);
std::string single_text(float v);

}  // namespace velm
