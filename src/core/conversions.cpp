#include "core/conversions.h"

#include "core/common_text.h"
#include "core/decimal_digits.h"
#include "core/error_report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>

namespace tremor {

namespace {

constexpr int doubleSignificantDigits = 15;
constexpr int singleSignificantDigits = 7;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isOneOf(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

// Moves the digits at the head of `text` to `plain` and drops the group marks among them.
// False when there was no digit.
bool takeDigits(std::string_view& text, std::string_view groupMark, std::string& plain) {
    const std::size_t before = plain.size();
    for (;;) {
        if (!text.empty() && isDigit(text.front())) {
            plain += text.front();
            text.remove_prefix(1);
        } else if (!groupMark.empty() && text.starts_with(groupMark)) {
            text.remove_prefix(groupMark.size());
        } else {
            return plain.size() > before;
        }
    }
}

// Moves the sign at the head of `text` to `plain`, where only a minus is written.
void takeSign(std::string_view& text, std::string& plain) {
    if (text.empty() || !isOneOf(text.front(), "+-"))
        return;
    if (text.front() == '-')
        plain += '-';
    text.remove_prefix(1);
}

// Moves an exponent ("E+05", "d-3") at the head of `text` to `plain`; a letter without digits
// behind it is left where it is.
void takeExponent(std::string_view& text, std::string& plain) {
    if (text.empty() || !isOneOf(text.front(), "EeDd"))
        return;
    std::string_view rest = text.substr(1);
    std::string exponent = "e";
    takeSign(rest, exponent);
    if (!takeDigits(rest, {}, exponent))
        return;
    plain += exponent;
    text = rest;
}

// Moves the longest number at the head of `text` to `plain`, in the form that std::from_chars
// reads ("-1234.5e-3"). False when there is none.
bool takeNumber(std::string_view& text, char decimalMark, std::string_view groupMark,
                std::string& plain) {
    takeSign(text, plain);
    bool found = takeDigits(text, groupMark, plain);
    if (text.starts_with(decimalMark)) {
        text.remove_prefix(1);
        plain += '.';
        found = takeDigits(text, {}, plain) || found;
    }
    if (found)
        takeExponent(text, plain);
    return found;
}

// Tells the two ways out of the range of a double apart: std::from_chars has one error for both.
bool isAboveOne(std::string_view plain) {
    const std::size_t mark = plain.find('e');
    const std::string_view mantissa = plain.substr(0, mark);
    std::int64_t exponent = 0;
    if (mark != std::string_view::npos) {
        const std::string_view digits = plain.substr(mark + 1);
        if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec !=
            std::errc())
            return digits.front() != '-';
    }
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    return exponent > static_cast<std::int64_t>(first) - static_cast<std::int64_t>(point);
}

enum class Outcome { Number, NoNumber, TooLarge };

struct Converted {
    Outcome outcome = Outcome::NoNumber;
    double value = 0; // with its sign, the largest double for TooLarge
};

Converted convertPlain(std::string_view plain) {
    double value = 0;
    if (std::from_chars(plain.data(), plain.data() + plain.size(), value).ec !=
        std::errc::result_out_of_range)
        return {Outcome::Number, value};
    if (!isAboveOne(plain))
        return {Outcome::Number, 0};
    const double largest = std::numeric_limits<double>::max();
    return {Outcome::TooLarge, plain.front() == '-' ? -largest : largest};
}

// "&HFF" and "&O17".
Converted convertPrefixed(std::string_view text) {
    const bool hexadecimal = isOneOf(text[1], "Hh");
    if (!hexadecimal && !isOneOf(text[1], "Oo"))
        return {};
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const std::from_chars_result read =
        std::from_chars(text.data() + 2, end, value, hexadecimal ? 16 : 8);
    if (read.ec == std::errc::invalid_argument || read.ptr != end)
        return {};
    if (read.ec == std::errc::result_out_of_range)
        return {Outcome::TooLarge, 0};
    return {Outcome::Number, static_cast<double>(value)};
}

Converted convert(std::string_view text, const NumberLocale& locale) {
    text = trim(text);
    if (text.size() > 2 && text.front() == '&')
        return convertPrefixed(text);
    std::string plain;
    if (!takeNumber(text, locale.decimalMark, locale.groupMark, plain) || !text.empty())
        return {};
    return convertPlain(plain);
}

// Rounded half to even; error 6 when the result does not fit.
template <class Integer>
Integer roundedTo(double value) {
    const double rounded = std::nearbyint(value);
    if (!(rounded >= std::numeric_limits<Integer>::min() &&
          rounded <= std::numeric_limits<Integer>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<Integer>(rounded);
}

std::string shortestText(double value, int significant, const NumberLocale& locale) {
    if (!std::isfinite(value))
        return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
    const DecimalDigits number = decimalDigits(value, significant);
    if (number.exponent >= significant || number.places() > significant)
        return scientificText(number, locale.decimalMark);
    return plainText(number, locale.decimalMark);
}

} // namespace

double textToDouble(std::string_view text, const NumberLocale& locale) {
    const Converted converted = convert(text, locale);
    if (converted.outcome == Outcome::NoNumber)
        throw RuntimeError(ErrorNumber::TypeMismatch);
    if (converted.outcome == Outcome::TooLarge)
        throw RuntimeError(ErrorNumber::Overflow);
    return converted.value;
}

double coordinateToDouble(std::string_view text) {
    NumberLocale ungrouped = NumberLocale::point();
    ungrouped.groupMark.clear();
    return textToDouble(CommaToDot(text), ungrouped);
}

double coordinateOrZero(std::string_view text) {
    try {
        return coordinateToDouble(text);
    } catch (const RuntimeError&) {
        return 0;
    }
}

std::int32_t textToLong(std::string_view text, const NumberLocale& locale) {
    return doubleToLong(textToDouble(text, locale));
}

std::int16_t textToInteger(std::string_view text, const NumberLocale& locale) {
    return doubleToInteger(textToDouble(text, locale));
}

float textToSingle(std::string_view text, const NumberLocale& locale) {
    return doubleToSingle(textToDouble(text, locale));
}

bool isNumericText(std::string_view text, const NumberLocale& locale) {
    return convert(text, locale).outcome == Outcome::Number;
}

double leadingNumber(std::string_view text) {
    std::string packed(text);
    std::erase_if(packed, [](char c) { return isOneOf(c, " \t\n"); });
    std::string_view rest = packed;
    std::string plain;
    return takeNumber(rest, '.', {}, plain) ? convertPlain(plain).value : 0;
}

std::string doubleToText(double value, const NumberLocale& locale) {
    return shortestText(value, doubleSignificantDigits, locale);
}

std::string singleToText(float value, const NumberLocale& locale) {
    return shortestText(static_cast<double>(value), singleSignificantDigits, locale);
}

double roundHalfEven(double value, int decimals) {
    const double scale = std::pow(10.0, decimals);
    const double rounded = std::nearbyint(value * scale) / scale;
    return std::isfinite(rounded) ? rounded : value; // so large a value has no decimals
}

std::int32_t doubleToLong(double value) {
    return roundedTo<std::int32_t>(value);
}

std::int16_t doubleToInteger(double value) {
    return roundedTo<std::int16_t>(value);
}

float doubleToSingle(double value) {
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return static_cast<float>(value);
}

} // namespace tremor
