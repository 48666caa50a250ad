#pragma once

#include "core/number_locale.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Small text routines that every subsystem shares. Two number forms exist side by side: dot text
// comes from feeds, pages and the database; locale text is typed by the operator or stands in
// settings.ini.
namespace tremor {

// Dot text to a 64-bit float under any locale: each "." becomes the locale's decimal mark, then
// the text is converted. 0 on any error.
double ParseDotDouble(std::string_view text, const NumberLocale& locale);

// The locale's decimal mark, one character: the second one of 0.1 written as text.
std::string LocaleDecimalSeparator(const NumberLocale& locale);

// Replaces the locale's decimal mark by "." when it is another one.
std::string LocaleToDot(std::string_view text, const NumberLocale& locale);

// Replaces each "," by ".".
std::string CommaToDot(std::string_view text);

// Text to a 32-bit integer, halves to even; 0 on any error.
std::int32_t SafeToLong(std::string_view text, const NumberLocale& locale);

// Dot text with 0 to 15 decimals (held to that range): halves of the 15-digit decimal text away
// from zero; with `keepZeros` all decimals are written, else only those that are needed; no final
// "." and no "-0". Values of 1e15 and beyond are written as "1.5E+15". The same under every locale.
std::string FormatDotNumber(double value, std::int16_t decimals, bool keepZeros);

// Cuts a text at its first zero character.
std::string TrimAtZero(std::string_view text);

// Part number `index` (from 0) of a text separated by zero characters; empty when there is none.
std::string SplitMultiSelect(std::string_view text, std::int32_t index);

// Parts between separators; an empty text gives one empty part. The views point into `text`.
std::vector<std::string_view> split(std::string_view text, char separator);

// Blanks (0x20 only) cut on the left, on the right, on both sides.
std::string_view trimLeft(std::string_view text);
std::string_view trimRight(std::string_view text);
std::string_view trim(std::string_view text);

// Each `from`, searched from the left, replaced by `to`; an empty `from` changes nothing.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

// Builds a long text piece by piece; the buffer grows in steps of 20000 characters or more.
class StringBuilder {
  public:
    void Add(std::string_view text);
    const std::string& GetStr() const { return buffer_; }

  private:
    static constexpr std::size_t growthStep = 20000;
    std::string buffer_;
};

} // namespace tremor
