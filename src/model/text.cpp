#include "model/text.hpp"

#include <cctype>
#include <charconv>
#include <cmath>

namespace velm {

namespace {
bool is_blank(char c) { return c == ' ' || c == '\t'; }
}  // namespace

std::string_view trim_view(std::string_view s) {
    std::size_t a = 0, b = s.size();
    while (a < b && is_blank(s[a])) ++a;
    while (b > a && is_blank(s[b - 1])) --b;
    return s.substr(a, b - a);
}

std::string trim(std::string_view s) { return std::string(trim_view(s)); }

std::string trim_right(std::string_view s) {
    std::size_t b = s.size();
    while (b > 0 && is_blank(s[b - 1])) --b;
    return std::string(s.substr(0, b));
}

std::string upper(std::string_view s) {
    std::string r(s);
    for (char& c : r) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return r;
}

std::string fixed_width(std::string_view s, std::size_t n) {
    std::string r(s.substr(0, std::min(n, s.size())));
    r.resize(n, ' ');
    return r;
}

namespace {
// Parses a number at the start of s; returns the count of characters used (0: none).
std::size_t parse_prefix(std::string_view s, double& v) {
    std::size_t i = 0;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
    const char* first = s.data() + i;
    const char* last = s.data() + s.size();
    double x = 0.0;
    auto [ptr, ec] = std::from_chars(first, last, x, std::chars_format::general);
    if (ptr == first) return 0;
    if (ec == std::errc::result_out_of_range) x = (*first == '0' || *first == '.') ? 0.0 : HUGE_VAL;
    else if (ec != std::errc()) return 0;
    // from_chars reads "inf" and "nan"; numbers in files never take those forms.
    if (!std::isfinite(x) && std::isalpha(static_cast<unsigned char>(*first))) return 0;
    v = negative ? -x : x;
    return static_cast<std::size_t>(ptr - s.data());
}
}  // namespace

std::optional<double> parse_number(std::string_view s) {
    const std::string t = trim(s);
    if (t.empty()) return std::nullopt;
    double v = 0.0;
    if (parse_prefix(t, v) != t.size()) return std::nullopt;
    return v;
}

double leading_number(std::string_view s) {
    double v = 0.0;
    return parse_prefix(trim_view(s), v) > 0 ? v : 0.0;
}

std::string number_text(double v) {
    char buf[40];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string single_text(float v) {
    char buf[40];
    auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

}  // namespace velm
