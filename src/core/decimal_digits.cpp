#include "core/decimal_digits.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <string_view>

namespace tremor {

namespace {

void normalise(DecimalDigits& number) {
    number.digits.erase(number.digits.find_last_not_of('0') + 1);
    if (number.digits.empty())
        number = DecimalDigits{};
}

} // namespace

int DecimalDigits::places() const {
    return std::max(0, static_cast<int>(digits.size()) - 1 - exponent);
}

DecimalDigits decimalDigits(double value, int significant) {
    std::array<char, 32> buffer{};
    const std::to_chars_result end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      std::chars_format::scientific, significant - 1);
    std::string_view text(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));

    DecimalDigits number;
    if (text.front() == '-') {
        number.negative = true;
        text.remove_prefix(1);
    }
    const std::size_t mark = text.find('e');
    number.digits = text.substr(0, mark);
    std::erase(number.digits, '.');
    const std::string_view power = text.substr(mark + 2);
    std::from_chars(power.data(), power.data() + power.size(), number.exponent);
    if (text[mark + 1] == '-')
        number.exponent = -number.exponent;
    normalise(number);
    return number;
}

DecimalDigits roundedToPlaces(DecimalDigits number, int places) {
    const int kept = number.exponent + 1 + places;
    if (kept >= static_cast<int>(number.digits.size()))
        return number;
    if (kept < 0)
        return {};
    const auto cut = static_cast<std::size_t>(kept);
    const bool up = number.digits[cut] >= '5';
    number.digits.resize(cut);
    if (up) {
        const std::size_t last = number.digits.find_last_not_of('9');
        if (last == std::string::npos) { // nothing but nines carries into a new digit
            number.digits = "1";
            ++number.exponent;
        } else {
            number.digits.resize(last + 1);
            ++number.digits.back();
        }
    }
    normalise(number);
    return number;
}

std::string plainText(const DecimalDigits& number, char decimalMark) {
    std::string text = number.digits;
    if (number.exponent < 0)
        text.insert(0, static_cast<std::size_t>(-number.exponent), '0');
    const auto whole = static_cast<std::size_t>(std::max(0, number.exponent)) + 1;
    if (text.size() < whole)
        text.resize(whole, '0');
    else if (text.size() > whole)
        text.insert(whole, 1, decimalMark);
    return number.negative ? "-" + text : text;
}

std::string scientificText(const DecimalDigits& number, char decimalMark) {
    std::string mantissa = number.digits;
    if (mantissa.size() > 1)
        mantissa.insert(1, 1, decimalMark);
    return fmt::format("{}{}E{}{:02}", number.negative ? "-" : "", mantissa,
                       number.exponent < 0 ? '-' : '+', std::abs(number.exponent));
}

} // namespace tremor
