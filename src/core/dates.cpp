#include "core/dates.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/error_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <limits>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace tremor {

namespace {

using std::chrono::hours;
using std::chrono::local_days;
using std::chrono::minutes;
using std::chrono::seconds;

// Two digits for a year mean 1930 to 2029, as desktops commonly read them.
constexpr int firstYearOfThisCentury = 2000;
constexpr int lastTwoDigitYear = 29;

// The calendar of the program: the years that "YYYY" can write.
constexpr local_days calendarBegin{std::chrono::year(0) / 1 / 1};
constexpr local_days calendarEnd{std::chrono::year(10000) / 1 / 1};

// A number of `least` to `most` digits and nothing else.
std::optional<int> digits(std::string_view text, std::size_t least, std::size_t most) {
    if (text.size() < least || text.size() > most ||
        text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<int> year(std::string_view text) {
    if (const std::optional<int> full = digits(text, 4, 4))
        return full;
    std::optional<int> value = digits(text, 1, 2);
    if (value)
        *value += firstYearOfThisCentury - (*value > lastTwoDigitYear ? 100 : 0);
    return value;
}

std::optional<local_days> dayOf(std::optional<int> yearNumber, std::string_view month,
                                std::string_view day) {
    const std::optional<int> monthNumber = digits(month, 1, 2);
    const std::optional<int> dayNumber = digits(day, 1, 2);
    if (!yearNumber || !monthNumber || !dayNumber)
        return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*yearNumber),
                                           std::chrono::month(static_cast<unsigned>(*monthNumber)),
                                           std::chrono::day(static_cast<unsigned>(*dayNumber)));
    if (!date.ok())
        return std::nullopt;
    return local_days(date);
}

// "yyyy-mm-dd" or "yyyy/mm/dd".
std::optional<local_days> isoDay(std::string_view text) {
    for (const char separator : {'-', '/'}) {
        const std::vector<std::string_view> parts = split(text, separator);
        if (parts.size() == 3)
            return dayOf(digits(parts[0], 4, 4), parts[1], parts[2]);
    }
    return std::nullopt;
}

std::optional<local_days> shortDay(std::string_view text, const NumberLocale& locale) {
    const std::vector<std::string_view> parts = split(text, locale.dateSeparator);
    if (parts.size() != 3)
        return std::nullopt;
    switch (locale.dateOrder) {
    case DateOrder::YearMonthDay:
        return dayOf(year(parts[0]), parts[1], parts[2]);
    case DateOrder::DayMonthYear:
        return dayOf(year(parts[2]), parts[1], parts[0]);
    case DateOrder::MonthDayYear:
        return dayOf(year(parts[2]), parts[0], parts[1]);
    }
    return std::nullopt;
}

// "yyyy/mm", the first day of that month.
std::optional<local_days> firstOfMonth(std::string_view text) {
    const std::vector<std::string_view> parts = split(text, '/');
    if (parts.size() != 2)
        return std::nullopt;
    return dayOf(digits(parts[0], 4, 4), parts[1], "1");
}

// "H:mm" or "H:mm:ss" as the time since midnight.
std::optional<seconds> timeOfDay(std::string_view text) {
    const std::vector<std::string_view> parts = split(text, ':');
    if (parts.size() != 2 && parts.size() != 3)
        return std::nullopt;
    std::array<int, 3> values{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::optional<int> value = digits(parts[i], 1, 2);
        if (!value || *value >= (i == 0 ? 24 : 60))
            return std::nullopt;
        values[i] = *value;
    }
    return hours(values[0]) + minutes(values[1]) + seconds(values[2]);
}

std::optional<DateTime> parseDate(std::string_view text, const NumberLocale& locale) {
    constexpr local_days dayOfBareTimes{std::chrono::year(1899) / 12 / 30};

    text = trim(text);
    const std::size_t blank = text.find(' ');
    const std::string_view head = text.substr(0, blank);
    std::optional<local_days> day = isoDay(head);
    if (!day)
        day = shortDay(head, locale);
    if (blank == std::string_view::npos) {
        if (!day)
            day = firstOfMonth(head);
        if (day)
            return DateTime(*day);
        if (const std::optional<seconds> time = timeOfDay(head))
            return dayOfBareTimes + *time;
        return std::nullopt;
    }
    const std::optional<seconds> time = timeOfDay(trimLeft(text.substr(blank)));
    if (!day || !time)
        return std::nullopt;
    return *day + *time;
}

// Start and end of the range as texts.
std::pair<std::string, std::string> utcRange(DateTime date, std::int32_t hourCount) {
    const DateTime start = date - hours(hourCount == 0 ? 24 : hourCount);
    if (std::min(start, date) < calendarBegin || std::max(start, date) >= calendarEnd)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return {dateToText(start), dateToText(date)};
}

} // namespace

DateTime textToDate(std::string_view text, const NumberLocale& locale) {
    const std::optional<DateTime> date = parseDate(text, locale);
    if (!date)
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return *date;
}

bool isDateText(std::string_view text, const NumberLocale& locale) {
    return parseDate(text, locale).has_value();
}

std::string dateToText(DateTime date) {
    const local_days midnight = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day day(midnight);
    const std::chrono::hh_mm_ss time(date - midnight);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", static_cast<int>(day.year()),
                       static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                       time.hours().count(), time.minutes().count(), time.seconds().count());
}

std::string dateToLocaleText(DateTime date, const NumberLocale& locale) {
    const std::string text = dateToText(date);
    const std::string year = text.substr(0, 4);
    const std::string month = text.substr(5, 2);
    const std::string day = text.substr(8, 2);
    const auto joined = [&](const std::string& first, const std::string& second,
                            const std::string& third) {
        return fmt::format("{1}{0}{2}{0}{3}{4}", locale.dateSeparator, first, second, third,
                           text.substr(10));
    };
    switch (locale.dateOrder) {
    case DateOrder::DayMonthYear:
        return joined(day, month, year);
    case DateOrder::MonthDayYear:
        return joined(month, day, year);
    case DateOrder::YearMonthDay:
        break;
    }
    return joined(year, month, day);
}

std::string NormalizeDateText(std::string_view text, const NumberLocale& locale) {
    if (isNumericText(text, locale))
        return {};
    const std::optional<DateTime> date = parseDate(text, locale);
    return date ? dateToText(*date) : std::string();
}

std::string BuildUtcRangeFilter(DateTime date, std::int32_t hours, AppSettings& settings,
                                Session& session) {
    std::tie(settings.startDate, settings.endDate) = utcRange(date, hours);
    session.LastUtcFilter =
        fmt::format("(UTC >= '{}') and (UTC <= '{}')", settings.startDate, settings.endDate);
    return session.LastUtcFilter;
}

std::string BuildUtcRangeBounds(DateTime date, std::int32_t hours) {
    const auto [start, end] = utcRange(date, hours);
    return start + "|" + end;
}

std::int32_t CalcDiff2Dates(DateTime a, DateTime b) {
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp<std::int64_t>((b - a).count(), 0, longest));
}

std::string replaceTrailingUtcRange(std::string_view query, std::string_view range) {
    return std::string(query.substr(0, query.size() - utcRangeLength)).append(range);
}

} // namespace tremor
