#include "model/number_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "model/case_data.hpp"
#include "model/text.hpp"

namespace velm {

namespace {

bool is_digit_placeholder(char c) { return c == '0' || c == '#'; }

}  // namespace

NumberPattern::NumberPattern(std::string_view p) {
    // The number spans from the first to the last placeholder character.
    const auto is_body = [](char c) { return is_digit_placeholder(c) || c == '.' || c == ','; };
    std::size_t first = 0;
    while (first < p.size() && !is_body(p[first])) ++first;
    std::size_t last = p.size();
    while (last > first && !is_digit_placeholder(p[last - 1]) && p[last - 1] != '.') --last;
    prefix = std::string(p.substr(0, first));
    std::string_view body = p.substr(first, last - first);
    suffix = std::string(p.substr(last));

    std::string_view mantissa = body;
    for (std::size_t i = 0; i + 1 < body.size(); ++i) {
        if ((body[i] == 'E' || body[i] == 'e') && (body[i + 1] == '-' || body[i + 1] == '+')) {
            scientific = true;
            e_letter = body[i];
            exp_plus = body[i + 1] == '+';
            for (char c : body.substr(i + 2)) exp_digits += is_digit_placeholder(c) ? 1 : 0;
            mantissa = body.substr(0, i);
            break;
        }
    }
    const std::size_t point = mantissa.find('.');
    const std::string_view int_part = mantissa.substr(0, point);
    for (char c : int_part) {
        if (c == '0') ++int_min;
        if (c == ',') grouped = true;
    }
    if (point != std::string_view::npos) {
        int n = 0;
        for (char c : mantissa.substr(point + 1)) {
            if (!is_digit_placeholder(c)) continue;
            ++n;
            if (c == '0') frac_min = n;
        }
        frac_max = n;
    }
}

namespace {

using Pattern = NumberPattern;

// The 15 significant digits of a > 0 and its decimal exponent:
// a = d.ddd... * 10^exp10, a rounded to 15 digits.
struct Significant {
    char digits[15];
    int exp10 = 0;
};

// The digits (at most 17) and the exponent of to_chars' scientific text
// "d[.ddd]e[+-]x...".
struct Split {
    int n, exp10;
};

Split split_scientific(const char* first, const char* last, char* digits) {
    int n = 0;
    const char* p = first;
    for (; p != last && *p != 'e'; ++p)
        if (*p != '.' && n < 17) digits[n++] = *p;
    int exp10 = 0;
    if (p != last && p + 1 != last) std::from_chars(p[1] == '+' ? p + 2 : p + 1, last, exp10);
    return {n, exp10};
}

// One unit added to the fifteenth digit.
void round_up(Significant& s) {
    int i = 14;
    for (; i >= 0 && s.digits[i] == '9'; --i) s.digits[i] = '0';
    if (i >= 0) {
        ++s.digits[i];
        return;
    }
    s.digits[0] = '1';
    ++s.exp10;
}

// The digits of the correctly rounded 15-digit decimal are read from the
// shortest decimal that reads back as a (as std::to_chars writes it), which
// for a normal double lies within half a unit in the last place of a, a
// ninth of a unit of the fifteenth digit at most. With fewer than 16 digits,
// padded with zeros, it is the nearest 15-digit decimal itself; otherwise,
// rounded on its sixteenth and seventeenth digits, it gives the digits of a,
// unless those stand near a half, when the exact conversion decides.
Significant significant_digits(double a) {
    Significant s;
    char buf[40], d[24];
    if (a >= std::numeric_limits<double>::min()) {
        const auto res = std::to_chars(buf, buf + sizeof buf, a, std::chars_format::scientific);
        const auto [n, exp10] = split_scientific(buf, res.ptr, d);
        const int tail = n > 15 ? (d[15] - '0') * 10 + (n > 16 ? d[16] - '0' : 0) : 0;
        if (tail < 35 || tail > 65) {
            s.exp10 = exp10;
            std::fill(std::copy(d, d + std::min(n, 15), s.digits), s.digits + 15, '0');
            if (tail > 65) round_up(s);
            return s;
        }
    }
    const auto res = std::to_chars(buf, buf + sizeof buf, a, std::chars_format::scientific, 14);
    const auto [n, exp10] = split_scientific(buf, res.ptr, d);
    std::copy(d, d + std::min(n, 15), s.digits);
    s.exp10 = exp10;
    return s;
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

// Integer digits and decimals of the mantissa, joined by the pattern's rules
// and appended to out.
void compose(const Pattern& pat, std::string_view int_digits, std::string_view frac, std::string& out) {
    const std::size_t first_nonzero = int_digits.find_first_not_of('0');
    int_digits.remove_prefix(first_nonzero == std::string_view::npos ? int_digits.size() : first_nonzero);
    const std::size_t pad =
        static_cast<int>(int_digits.size()) < pat.int_min ? static_cast<std::size_t>(pat.int_min) - int_digits.size() : 0;
    while (static_cast<int>(frac.size()) > pat.frac_min && frac.back() == '0') frac.remove_suffix(1);
    if (!pat.grouped) {
        out.append(pad, '0');
        out += int_digits;
    } else {
        const std::size_t n = pad + int_digits.size();
        for (std::size_t i = 0; i < n; ++i) {
            if (i > 0 && (n - i) % 3 == 0) out += kDisplayThousandsSeparator;
            out += i < pad ? '0' : int_digits[i - pad];
        }
    }
    if (!frac.empty()) {
        out += kDisplayDecimalPoint;
        out += frac;
    }
}

void format_fixed(const Pattern& pat, const Significant* sig, std::string& digits, std::string& out) {
    int int_count = 1;  // digits before the decimal point
    if (sig != nullptr) {
        digits.assign(sig->digits, sizeof sig->digits);
        int_count = sig->exp10 + 1;
    } else {
        digits.assign(1, '0');
    }
    if (round_digits(digits, int_count + pat.frac_max)) ++int_count;
    if (digits.empty()) {
        digits.assign(static_cast<std::size_t>(pat.frac_max), '0');
        compose(pat, "", digits, out);
        return;
    }
    if (int_count <= 0) {
        digits.insert(0, static_cast<std::size_t>(-int_count), '0');
        compose(pat, "", digits, out);
        return;
    }
    const std::string_view d = digits;
    compose(pat, d.substr(0, static_cast<std::size_t>(int_count)), d.substr(static_cast<std::size_t>(int_count)), out);
}

void format_scientific(const Pattern& pat, const Significant* sig, std::string& digits, std::string& out) {
    int exp10 = 0;
    if (sig != nullptr) {
        digits.assign(sig->digits, sizeof sig->digits);
        exp10 = sig->exp10;
    } else {
        digits.assign(1, '0');
    }
    if (round_digits(digits, 1 + pat.frac_max)) {
        ++exp10;
        digits.pop_back();
    }
    if (sig == nullptr) exp10 = 0;
    const std::string_view d = digits;
    compose(pat, d.substr(0, 1), d.substr(1), out);
    out += pat.e_letter;
    if (exp10 < 0) out += '-';
    else if (pat.exp_plus) out += '+';
    char e[8];
    const auto res = std::to_chars(e, e + sizeof e, std::abs(exp10));
    const auto width = static_cast<int>(res.ptr - e);
    if (width < pat.exp_digits) out.append(static_cast<std::size_t>(pat.exp_digits - width), '0');
    out.append(e, res.ptr);
}

// The work strings of the formatter, kept from call to call so that a
// number costs no allocation once they have grown.
struct Scratch {
    std::string digits, out;
};

Scratch& scratch() {
    thread_local Scratch s;
    return s;
}

// A finite value by the pattern into s.out.
void format_into(double value, const Pattern& pat, const Significant* sig, Scratch& s) {
    s.out.assign(pat.prefix);
    const std::size_t body = s.out.size();
    if (pat.scientific) format_scientific(pat, sig, s.digits, s.out);
    else format_fixed(pat, sig, s.digits, s.out);
    // A result whose digits are all zero carries no sign.
    const std::string_view b = std::string_view(s.out).substr(body);
    if (value < 0.0 && b.find_first_of("123456789") < b.find_first_of("Ee")) s.out.insert(body, 1, '-');
    s.out += pat.suffix;
}

}  // namespace

std::string format_number(double value, std::string_view pattern) {
    return format_number(value, NumberPattern(pattern));
}

std::string format_number(double value, const NumberPattern& pattern) {
    return format_number_to_fit(value, {}, pattern, 0);
}

std::string format_number_to_fit(double value, std::span<const NumberPattern> patterns, const NumberPattern& last,
                                 std::size_t width) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "Inf";
    const double a = std::fabs(value);
    const Significant sig = a > 0.0 ? significant_digits(a) : Significant{};
    const Significant* digits = a > 0.0 ? &sig : nullptr;
    Scratch& s = scratch();
    for (const NumberPattern& pattern : patterns) {
        format_into(value, pattern, digits, s);
        if (s.out.size() <= width) return s.out;
    }
    format_into(value, last, digits, s);
    return s.out;
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
