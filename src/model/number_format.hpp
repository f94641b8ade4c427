// Numbers as the user sees them: the display locale and one small formatter
// for the display patterns of the program ("#,##0.0##", "0.00E-##",
// "###,##0", "########0.0###", ...).
//
// Pattern characters, with the meaning of the classic Format patterns:
//   0    a digit that is always shown (a leading or trailing zero if needed)
//   #    a digit shown only when it is significant
//   .    the decimal point; ","  anywhere in the integer part: thousands groups
//   E- e- E+ e+  scientific form; the digits after it give the exponent its
//        width (zero padded); "E-" shows the exponent's sign only when it is
//        negative, "E+" always
// Any other character before or after the digits is copied as it stands.
// The value is rounded half away from zero on its 15 significant decimal
// digits (what a double holds reliably), so 2.675 shows as "2.68" with two
// decimals. A result whose digits are all zero carries no minus sign.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velm {

// The program's display locale: what "." and "," in a pattern become, and
// how a number typed by the user is read. Files never use it.
inline constexpr char kDisplayDecimalPoint = '.';
inline constexpr char kDisplayThousandsSeparator = ',';

// A pattern taken apart once, for formatting many numbers by it.
struct NumberPattern {
    explicit NumberPattern(std::string_view pattern);
    std::string prefix, suffix;  // text before and after the digits
    int int_min = 0;             // integer digits always shown
    bool grouped = false;        // thousands separators in the integer part
    int frac_min = 0;            // decimals always shown
    int frac_max = 0;            // decimals at most
    bool scientific = false;
    char e_letter = 'E';
    bool exp_plus = false;       // "E+": sign of the exponent always shown
    int exp_digits = 0;          // width of the exponent, zero padded
};

// The value formatted by the pattern.
std::string format_number(double value, std::string_view pattern);
std::string format_number(double value, const NumberPattern& pattern);

// The value by the first of the patterns whose text is at most width
// characters long, else by the last pattern whatever its length: what
// format_number gives for that pattern, the digits found only once.
std::string format_number_to_fit(double value, std::span<const NumberPattern> patterns, const NumberPattern& last,
                                 std::size_t width);

// A number typed in the display locale: thousands separators are ignored, the
// display decimal point is the decimal point; nothing when the text is not a
// number.
std::optional<double> read_locale_number(std::string_view text);

// A number from a field: read in the display locale, and failing that the
// number at the start of the text (0 when there is none).
double read_display_number(std::string_view text);

}  // namespace velm
