#include "model/text.hpp"

#include <algorithm>
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

std::string shown_text(std::string_view s, std::size_t max_chars) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string out;
    for (std::size_t i = 0; i < s.size() && i < max_chars; ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        if (c < 0x20 || c == 0x7f) out += {'\\', 'x', kHex[c >> 4], kHex[c & 15]};
        else out += s[i];
    }
    if (s.size() > max_chars) out += "...";
    return out;
}

namespace {
// True when the number text [first, last) (digits, a point, an exponent), out
// of the range of a double, is too small rather than too large: the decimal
// exponent of its first significant digit is below zero.
bool is_underflow(const char* first, const char* last) {
    const char* e = std::find_if(first, last, [](char c) { return c == 'e' || c == 'E'; });
    const char* point = std::find(first, e, '.');
    const char* digit = std::find_if(first, e, [](char c) { return c >= '1' && c <= '9'; });
    if (digit == e) return true;
    // The value is d.ddd times 10 to the power lead - 1 + exponent.
    const long lead = digit < point ? point - digit : -(digit - point - 1);
    long exponent = 0;
    const char* p = e == last ? last : e + 1;
    const bool negative = p < last && *p == '-';
    if (p < last && (*p == '+' || *p == '-')) ++p;
    for (; p < last; ++p) exponent = std::min(exponent * 10 + (*p - '0'), 1000000L);
    return lead + (negative ? -exponent : exponent) <= 0;
}

// Parses a number at the start of s; returns the count of characters used
// (0: none). A number too small for a double reads as 0, one too large as
// infinity, which the callers refuse.
std::size_t parse_prefix(std::string_view s, double& v) {
    std::size_t i = 0;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-')) negative = s[i++] == '-';
    const char* first = s.data() + i;
    const char* last = s.data() + s.size();
    double x = 0.0;
    auto [ptr, ec] = std::from_chars(first, last, x, std::chars_format::general);
    if (ptr == first) return 0;
    if (ec == std::errc::result_out_of_range) x = is_underflow(first, ptr) ? 0.0 : HUGE_VAL;
    else if (ec != std::errc()) return 0;
    // from_chars reads "inf" and "nan"; numbers in files never take those forms.
    if (!std::isfinite(x) && std::isalpha(static_cast<unsigned char>(*first))) return 0;
    v = negative ? -x : x;
    return static_cast<std::size_t>(ptr - s.data());
}
}  // namespace

std::optional<double> parse_number(std::string_view s) {
    const std::string_view t = trim_view(s);
    if (t.empty()) return std::nullopt;
    double v = 0.0;
    if (parse_prefix(t, v) != t.size()) return std::nullopt;
    return v;
}

std::optional<double> leading_number_of(std::string_view s) {
    double v = 0.0;
    if (parse_prefix(trim_view(s), v) == 0) return std::nullopt;
    return v;
}

double leading_number(std::string_view s) { return leading_number_of(s).value_or(0.0); }

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
