#pragma once

#include "core/civil_time.h"
#include "core/number_locale.h"
#include "core/session.h"
#include "core/settings.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tremor {

// Text to a date and time. Accepted: "yyyy-mm-dd" and "yyyy/mm/dd" with an optional " H:mm" or
// " H:mm:ss", "yyyy/mm" (first of the month), the locale's short date with the same optional time,
// and a time alone (on day 1899-12-30). Single digits are accepted for month, day, hour, minute
// and second, two digits for the short date's year (1930 to 2029), and blanks around the text. A
// fraction of a second, a day that does not exist or any other text raises error 13.
DateTime textToDate(std::string_view text, const NumberLocale& locale);
bool isDateText(std::string_view text, const NumberLocale& locale);

// "YYYY-MM-DD HH:mm:ss", always 19 characters for the years 0 to 9999.
std::string dateToText(DateTime date);

// The locale's short date with a four-digit year and the time: "14/01/2021 05:45:26".
std::string dateToLocaleText(DateTime date, const NumberLocale& locale);

// A date text in the form "YYYY-MM-DD HH:mm:ss"; empty for a text that is a number or no date.
std::string NormalizeDateText(std::string_view text, const NumberLocale& locale);

// "(UTC >= 'start') and (UTC <= 'end')", exactly 65 characters. `end` is `date`, `start` lies
// `hours` hours before it, or one day when hours is 0. The local clock is compared with the UTC
// column as it stands; no time zone is applied. Stores both ends in `settings.startDate` and
// `settings.endDate` and the text in `session.LastUtcFilter`. Hours that lead out of the calendar
// raise error 5.
std::string BuildUtcRangeFilter(DateTime date, std::int32_t hours, AppSettings& settings,
                                Session& session);

// "start|end" of the same range; touches nothing.
std::string BuildUtcRangeBounds(DateTime date, std::int32_t hours);

// Seconds from `a` to `b`; 0 when `b` is earlier; held to the 32-bit range.
std::int32_t CalcDiff2Dates(DateTime a, DateTime b);

// Cuts the trailing range of `query` (its last 65 characters) and puts `range` in its place. The
// caller has made sure that the query is longer than that.
std::string replaceTrailingUtcRange(std::string_view query, std::string_view range);
inline constexpr std::size_t utcRangeLength = 65;

} // namespace tremor
