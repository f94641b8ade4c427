#include "model/number_format.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>

#include "model/case_data.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

bool is_digit_placeholder(char c) { return c == '0' || c == '#'; }

struct Pattern {
    std::string prefix, suffix;
    int int_min = 0;        // integer digits always shown
    bool grouped = false;   // thousands separators in the integer part
    int frac_min = 0;       // decimals always shown
    int frac_max = 0;       // decimals at most
    bool scientific = false;
    char e_letter = 'E';
    bool exp_plus = false;  // "E+": sign of the exponent always shown
    int exp_digits = 0;     // width of the exponent, zero padded
};

Pattern parse_pattern(std::string_view p) {
    Pattern r;
    // The number spans from the first to the last placeholder character.
    const auto is_body = [](char c) { return is_digit_placeholder(c) || c == '.' || c == ','; };
    std::size_t first = 0;
    while (first < p.size() && !is_body(p[first])) ++first;
    std::size_t last = p.size();
    while (last > first && !is_digit_placeholder(p[last - 1]) && p[last - 1] != '.') --last;
    r.prefix = std::string(p.substr(0, first));
    std::string_view body = p.substr(first, last - first);
    r.suffix = std::string(p.substr(last));

    std::string_view mantissa = body;
    for (std::size_t i = 0; i + 1 < body.size(); ++i) {
        if ((body[i] == 'E' || body[i] == 'e') && (body[i + 1] == '-' || body[i + 1] == '+')) {
            r.scientific = true;
            r.e_letter = body[i];
            r.exp_plus = body[i + 1] == '+';
            for (char c : body.substr(i + 2)) r.exp_digits += is_digit_placeholder(c) ? 1 : 0;
            mantissa = body.substr(0, i);
            break;
        }
    }
    const std::size_t point = mantissa.find('.');
    const std::string_view int_part = mantissa.substr(0, point);
    for (char c : int_part) {
        if (c == '0') ++r.int_min;
        if (c == ',') r.grouped = true;
    }
    if (point != std::string_view::npos) {
        int n = 0;
        for (char c : mantissa.substr(point + 1)) {
            if (!is_digit_placeholder(c)) continue;
            ++n;
            if (c == '0') r.frac_min = n;
        }
        r.frac_max = n;
    }
    return r;
}

// The 15 significant digits of a > 0 and its decimal exponent: a = d.ddd... * 10^exp10.
void significant_digits(double a, std::string& digits, int& exp10) {
    char buf[64];
    const auto res = std::to_chars(buf, buf + sizeof buf, a, std::chars_format::scientific, 14);
    const std::string_view s(buf, static_cast<std::size_t>(res.ptr - buf));
    digits.assign(1, s[0]);
    const std::size_t e = s.find('e');
    digits.append(s.substr(2, e - 2));
    exp10 = std::atoi(std::string(s.substr(e + 1)).c_str());
}

// Keeps the first `keep` digits of `digits`, rounding half away from zero on
// the next one. Returns true when the carry added a digit in front.
bool round_digits(std::string& digits, int keep) {
    if (keep < 0) {
        digits.clear();
        return false;
    }
    const std::size_t k = static_cast<std::size_t>(keep);
    const bool up = k < digits.size() && digits[k] >= '5';
    if (k < digits.size()) digits.resize(k);
    else digits.append(k - digits.size(), '0');
    if (!up) return false;
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return false;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
    return true;
}

std::string group_thousands(const std::string& int_digits) {
    std::string r;
    const std::size_t n = int_digits.size();
    for (std::size_t i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0) r += kDisplayThousandsSeparator;
        r += int_digits[i];
    }
    return r;
}

// Integer digits and decimals of the mantissa, joined by the pattern's rules.
std::string compose(const Pattern& pat, std::string int_digits, std::string frac) {
    const std::size_t first_nonzero = int_digits.find_first_not_of('0');
    int_digits.erase(0, first_nonzero == std::string::npos ? int_digits.size() : first_nonzero);
    if (static_cast<int>(int_digits.size()) < pat.int_min)
        int_digits.insert(0, static_cast<std::size_t>(pat.int_min) - int_digits.size(), '0');
    while (static_cast<int>(frac.size()) > pat.frac_min && frac.back() == '0') frac.pop_back();
    std::string r = pat.grouped ? group_thousands(int_digits) : int_digits;
    if (!frac.empty()) {
        r += kDisplayDecimalPoint;
        r += frac;
    }
    return r;
}

std::string format_fixed(const Pattern& pat, double a) {
    std::string digits;
    int exp10 = 0;
    if (a > 0.0) significant_digits(a, digits, exp10);
    else digits = "0";
    int int_count = exp10 + 1;  // digits before the decimal point
    if (round_digits(digits, int_count + pat.frac_max)) ++int_count;
    if (digits.empty()) return compose(pat, "", std::string(static_cast<std::size_t>(pat.frac_max), '0'));
    if (int_count <= 0) {
        const std::string frac = std::string(static_cast<std::size_t>(-int_count), '0') + digits;
        return compose(pat, "", frac);
    }
    return compose(pat, digits.substr(0, static_cast<std::size_t>(int_count)),
                   digits.substr(static_cast<std::size_t>(int_count)));
}

std::string format_scientific(const Pattern& pat, double a) {
    std::string digits = "0";
    int exp10 = 0;
    if (a > 0.0) significant_digits(a, digits, exp10);
    if (round_digits(digits, 1 + pat.frac_max)) {
        ++exp10;
        digits.pop_back();
    }
    if (a == 0.0) exp10 = 0;
    std::string r = compose(pat, digits.substr(0, 1), digits.substr(1));
    r += pat.e_letter;
    if (exp10 < 0) r += '-';
    else if (pat.exp_plus) r += '+';
    std::string e = std::to_string(std::abs(exp10));
    if (static_cast<int>(e.size()) < pat.exp_digits) e.insert(0, static_cast<std::size_t>(pat.exp_digits) - e.size(), '0');
    return r + e;
}

}  // namespace

std::string format_number(double value, std::string_view pattern) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    const Pattern pat = parse_pattern(pattern);
    const std::string body = pat.scientific ? format_scientific(pat, std::fabs(value)) : format_fixed(pat, std::fabs(value));
    const bool negative = value < 0.0 && body.find_first_of("123456789") < body.find_first_of("Ee");
    return pat.prefix + (negative ? "-" : "") + body + pat.suffix;
}

std::optional<double> read_locale_number(std::string_view text) {
    std::string t;
    for (char c : text) {
        if (c == kDisplayThousandsSeparator) continue;
        t += c == kDisplayDecimalPoint ? '.' : c;
    }
    return parse_number(t);
}

double read_display_number(std::string_view text) {
    if (const auto v = read_locale_number(text)) return *v;
    return val_or_zero(text);
}

}  // namespace velm
