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
#include <string>
#include <string_view>

namespace velm {

// The program's display locale: what "." and "," in a pattern become, and
// how a number typed by the user is read. Files never use it.
inline constexpr char kDisplayDecimalPoint = '.';
inline constexpr char kDisplayThousandsSeparator = ',';

// The value formatted by the pattern.
std::string format_number(double value, std::string_view pattern);

// A number typed in the display locale: thousands separators are ignored, the
// display decimal point is the decimal point; nothing when the text is not a
// number.
std::optional<double> read_locale_number(std::string_view text);

// A number from a field: read in the display locale, and failing that the
// number at the start of the text (0 when there is none).
double read_display_number(std::string_view text);

}  // namespace velm
