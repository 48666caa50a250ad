#pragma once

#include "core/number_locale.h"

#include <cstdint>
#include <string>
#include <string_view>

// Conversions between text and numbers under the operator's locale. They never look at the C
// library's locale, so they give the same result whatever the desktop sets. All texts are bytes.
namespace tremor {

// Text to 64-bit float. Accepted: outer blanks, a sign, digits with the locale's group mark
// anywhere before the decimal mark ("42,5" is 425 under a point locale), the locale's decimal
// mark, an exponent with E or D, and unsigned "&H"/"&O" numbers. Anything else, the empty text
// included, raises error 13 (Type mismatch); a value beyond the range of a double raises error 6
// and one too small for it is 0.
double textToDouble(std::string_view text, const NumberLocale& locale);

// Text of a coordinate to a 64-bit float: both "." and "," are the decimal mark and no mark groups
// digits, under every locale. Everything else and the errors as in textToDouble.
double coordinateToDouble(std::string_view text);

// The same, and 0 for what is no number.
double coordinateOrZero(std::string_view text);

// textToDouble rounded half to even; error 6 (Overflow) outside the 32-bit or 16-bit range.
std::int32_t textToLong(std::string_view text, const NumberLocale& locale);
std::int16_t textToInteger(std::string_view text, const NumberLocale& locale);

// The same as the nearest 32-bit float; error 6 outside its range.
float textToSingle(std::string_view text, const NumberLocale& locale);

// True when textToDouble would accept the text.
bool isNumericText(std::string_view text, const NumberLocale& locale);

// The number at the head of a text: point as decimal mark, blanks, tabs and line feeds inside are
// skipped, an exponent (E or D) counts; 0 when the text begins with no number, the largest double
// when the number is beyond it. Never fails.
double leadingNumber(std::string_view text);

// Shortest text of up to 15 significant digits, with the locale's decimal mark, no group mark and
// no trailing zeros. "8.99320363724538E-02" form when the plain form would need more than 15 places
// behind the mark; "1E+15" form from 1e15 on. Zero is always "0", never "-0"; what is no finite
// number is "inf", "-inf" or "nan". For a 32-bit float 7 stands in place of 15 everywhere.
std::string doubleToText(double value, const NumberLocale& locale);
std::string singleToText(float value, const NumberLocale& locale);

// Rounds to `decimals` places, halves (of the value times 10^decimals, as a double) to the even
// neighbour.
double roundHalfEven(double value, int decimals = 0);

// A double as a 32-bit or 16-bit integer, halves to even; error 6 outside the range (NaN too).
std::int32_t doubleToLong(double value);
std::int16_t doubleToInteger(double value);

// The nearest 32-bit float; error 6 outside its range.
float doubleToSingle(double value);

} // namespace tremor
