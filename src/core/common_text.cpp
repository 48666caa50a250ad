#include "core/common_text.h"

#include "core/conversions.h"
#include "core/decimal_digits.h"
#include "core/error_report.h"

#include <algorithm>
#include <cmath>

namespace tremor {

namespace {

constexpr std::int16_t maximumDecimals = 15;
constexpr int significantDigits = 15;
constexpr double firstScientific = 1e15;

} // namespace

double ParseDotDouble(std::string_view text, const NumberLocale& locale) {
    std::string localeText(text);
    std::replace(localeText.begin(), localeText.end(), '.', locale.decimalMark);
    try {
        return textToDouble(localeText, locale);
    } catch (const RuntimeError&) {
        return 0;
    }
}

std::string LocaleDecimalSeparator(const NumberLocale& locale) {
    return doubleToText(0.1, locale).substr(1, 1);
}

std::string LocaleToDot(std::string_view text, const NumberLocale& locale) {
    std::string result(text);
    std::replace(result.begin(), result.end(), locale.decimalMark, '.');
    return result;
}

std::string CommaToDot(std::string_view text) {
    std::string result(text);
    std::replace(result.begin(), result.end(), ',', '.');
    return result;
}

std::int32_t SafeToLong(std::string_view text, const NumberLocale& locale) {
    try {
        return textToLong(text, locale);
    } catch (const RuntimeError&) {
        return 0;
    }
}

std::string FormatDotNumber(double value, std::int16_t decimals, bool keepZeros) {
    const NumberLocale dot = NumberLocale::point();
    if (!std::isfinite(value))
        return doubleToText(value, dot);
    const DecimalDigits number = decimalDigits(value, significantDigits);
    if (std::abs(value) >= firstScientific)
        return scientificText(number, dot.decimalMark);

    const int places = std::clamp<std::int16_t>(decimals, 0, maximumDecimals);
    const DecimalDigits rounded = roundedToPlaces(number, places);
    std::string text = plainText(rounded, dot.decimalMark);
    const int missing = places - rounded.places();
    if (!keepZeros || missing == 0)
        return text;
    if (rounded.places() == 0)
        text += dot.decimalMark;
    return text.append(static_cast<std::size_t>(missing), '0');
}

std::string TrimAtZero(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

std::string SplitMultiSelect(std::string_view text, std::int32_t index) {
    const std::vector<std::string_view> parts = split(text, '\0');
    if (index < 0 || static_cast<std::size_t>(index) >= parts.size())
        return {};
    return std::string(parts[static_cast<std::size_t>(index)]);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

std::string_view trimLeft(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

std::string_view trimRight(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view trim(std::string_view text) {
    return trimLeft(trimRight(text));
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string result;
    if (from.empty())
        return result.append(text);
    for (;;) {
        const std::size_t found = text.find(from);
        result.append(text.substr(0, found));
        if (found == std::string_view::npos)
            return result;
        result.append(to);
        text.remove_prefix(found + from.size());
    }
}

void StringBuilder::Add(std::string_view text) {
    const std::size_t needed = buffer_.size() + text.size();
    if (needed > buffer_.capacity()) {
        const std::size_t steps = (needed - buffer_.capacity()) / growthStep + 1;
        buffer_.reserve(buffer_.capacity() + steps * growthStep);
    }
    buffer_.append(text);
}

} // namespace tremor
