#include "core/dates.h"
#include "support/error_of.h"
#include "support/time_zone.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::errorOf;

const NumberLocale point = NumberLocale::point();
const NumberLocale comma = NumberLocale::comma();

DateTime at(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
    return std::chrono::local_days(std::chrono::year_month_day(
               std::chrono::year(year), std::chrono::month(month), std::chrono::day(day))) +
           std::chrono::hours(hour) + std::chrono::minutes(minute) + std::chrono::seconds(second);
}

struct DateCase {
    std::string text;
    std::string normal;
};

TEST(TextToDate, ReadsTheFormsOfEveryLocale) {
    const std::vector<DateCase> cases = {
        {"2014-03-07", "2014-03-07 00:00:00"},
        {"2014/03/07", "2014-03-07 00:00:00"},
        {"2014-03-07 09:05", "2014-03-07 09:05:00"},
        {"2014/03/07 09:05:12", "2014-03-07 09:05:12"},
        {"2014-3-7 2:03:5", "2014-03-07 02:03:05"},
        {"2014/3/7 0:0", "2014-03-07 00:00:00"},
        {"  2014-03-07   23:59:59  ", "2014-03-07 23:59:59"},
        {"2016/08", "2016-08-01 00:00:00"},
        {"2016/8", "2016-08-01 00:00:00"},
        {"2016-02-29", "2016-02-29 00:00:00"},
        {"02:03:5", "1899-12-30 02:03:05"},
        {"9:05", "1899-12-30 09:05:00"},
        {"0000-01-01", "0000-01-01 00:00:00"},
        {"9999-12-31 23:59:59", "9999-12-31 23:59:59"},
    };
    for (const DateCase& c : cases)
        for (const NumberLocale& locale : {point, comma}) {
            EXPECT_TRUE(isDateText(c.text, locale)) << c.text;
            EXPECT_EQ(dateToText(textToDate(c.text, locale)), c.normal) << c.text;
            EXPECT_EQ(NormalizeDateText(c.text, locale), c.normal) << c.text;
        }
}

TEST(TextToDate, ReadsTheShortDateOfTheLocale) {
    EXPECT_EQ(textToDate("3/7/2014", point), at(2014, 3, 7));
    EXPECT_EQ(textToDate("3/7/2014", comma), at(2014, 7, 3));
    EXPECT_EQ(textToDate("25/12/2014 9:05:12", comma), at(2014, 12, 25, 9, 5, 12));
    EXPECT_FALSE(isDateText("25/12/2014", point));

    NumberLocale german = comma;
    german.dateSeparator = '-';
    EXPECT_EQ(textToDate("25-12-2014", german), at(2014, 12, 25));
    EXPECT_FALSE(isDateText("25/12/2014", german));
    german.dateOrder = DateOrder::YearMonthDay;
    german.dateSeparator = '.';
    EXPECT_EQ(textToDate("2014.12.25", german), at(2014, 12, 25));
}

TEST(TextToDate, ReadsTwoDigitsOfAYearAs1930To2029) {
    EXPECT_EQ(textToDate("1/2/00", point), at(2000, 1, 2));
    EXPECT_EQ(textToDate("1/2/29", point), at(2029, 1, 2));
    EXPECT_EQ(textToDate("1/2/30", point), at(1930, 1, 2));
    EXPECT_EQ(textToDate("1/2/99", comma), at(1999, 2, 1));
}

TEST(TextToDate, RefusesWhatIsNoDate) {
    const std::vector<std::string> texts = {
        "",
        " ",
        "abc",
        "UTC",
        "2014",
        "2014-03",
        "2014-13-01",
        "2014-00-01",
        "2014-02-29",
        "2014-04-31",
        "2014-03-00",
        "2014-03-07T09:05:12",
        "2014-03-07 09:05:12.5",
        "2014-03-07 09:05:12.600",
        "2014-03-07 24:00",
        "2014-03-07 09:60",
        "2014-03-07 09:05:60",
        "2014-03-07 09",
        "2014-03-07 09:05:12:1",
        "2014-03-07 -9:05",
        "2014-03-07 abc",
        "2014-03-07 09:05 x",
        "2014-03-07 9 :05",
        "2014/03 09:05",
        "2014/13",
        "2014-03/07",
        "2014--07",
        "-2014-03-07",
        "12014-03-07",
        "214-03-07",
        "2014-003-07",
        "2014-+3-07",
        "99/99/9999",
        "1/2/123",
        "9:5:",
        ":",
        "25:00",
        "2014-03-07\r",
        std::string("2014-03-07\0", 11),
    };
    for (const std::string& text : texts)
        for (const NumberLocale& locale : {point, comma}) {
            EXPECT_FALSE(isDateText(text, locale)) << text;
            EXPECT_EQ(errorOf([&] { textToDate(text, locale); }), ErrorNumber::TypeMismatch)
                << text;
            EXPECT_EQ(NormalizeDateText(text, locale), "") << text;
        }
}

TEST(DateToLocaleText, WritesTheShortDateOfTheLocaleAndTheTime) {
    const DateTime date = at(2021, 1, 14, 5, 4, 26);
    EXPECT_EQ(dateToLocaleText(date, point), "01/14/2021 05:04:26");
    EXPECT_EQ(dateToLocaleText(date, comma), "14/01/2021 05:04:26");
    NumberLocale other = comma;
    other.dateOrder = DateOrder::YearMonthDay;
    other.dateSeparator = '.';
    EXPECT_EQ(dateToLocaleText(date, other), "2021.01.14 05:04:26");
    for (const NumberLocale& locale : {point, comma})
        EXPECT_EQ(textToDate(dateToLocaleText(date, locale), locale), date);
}

TEST(NormalizeDateText, GivesTheEmptyTextForANumber) {
    for (const char* text : {"2014", "20140307", "41705.5", "-1", "1E5", "&HFF"})
        EXPECT_EQ(NormalizeDateText(text, point), "") << text;
    NumberLocale german = comma;
    german.dateSeparator = '.';
    EXPECT_TRUE(isDateText("25.12.2014", german));
    EXPECT_EQ(NormalizeDateText("25.12.2014", german), ""); // points are group marks there
}

TEST(DateToText, WritesNineteenCharacters) {
    EXPECT_EQ(dateToText(at(2014, 3, 7, 9, 5, 2)), "2014-03-07 09:05:02");
    EXPECT_EQ(dateToText(at(0, 1, 1)), "0000-01-01 00:00:00");
    EXPECT_EQ(dateToText(at(1899, 12, 30, 23, 59, 59)), "1899-12-30 23:59:59");
    EXPECT_EQ(dateToText(at(9999, 12, 31)).size(), 19U);
}

TEST(BuildUtcRangeFilter, SpansOneDayForZeroHours) {
    AppSettings settings;
    Session session;
    EXPECT_EQ(BuildUtcRangeFilter(at(2014, 3, 1, 9, 5, 12), 0, settings, session),
              "(UTC >= '2014-02-28 09:05:12') and (UTC <= '2014-03-01 09:05:12')");
}

TEST(BuildUtcRangeFilter, SpansTheGivenHours) {
    AppSettings settings;
    Session session;
    EXPECT_EQ(BuildUtcRangeFilter(at(2016, 1, 1, 1), 2, settings, session),
              "(UTC >= '2015-12-31 23:00:00') and (UTC <= '2016-01-01 01:00:00')");
    EXPECT_EQ(BuildUtcRangeFilter(at(2016, 1, 1, 1), -2, settings, session),
              "(UTC >= '2016-01-01 03:00:00') and (UTC <= '2016-01-01 01:00:00')");
}

TEST(BuildUtcRangeFilter, IsAlwaysSixtyFiveCharactersLong) {
    AppSettings settings;
    Session session;
    for (const std::int32_t hours : {0, 1, 24, 8760, 17000000})
        EXPECT_EQ(BuildUtcRangeFilter(at(2014, 3, 7), hours, settings, session).size(), 65U);
    EXPECT_EQ(BuildUtcRangeFilter(at(1, 1, 2), 0, settings, session).size(), utcRangeLength);
}

TEST(BuildUtcRangeFilter, OverwritesTheStoredRange) {
    AppSettings settings;
    Session session;
    settings.startDate = "old";
    session.LastUtcFilter = "old";
    const std::string filter = BuildUtcRangeFilter(at(2014, 3, 7, 9), 24, settings, session);
    EXPECT_EQ(settings.startDate, "2014-03-06 09:00:00");
    EXPECT_EQ(settings.endDate, "2014-03-07 09:00:00");
    EXPECT_EQ(session.LastUtcFilter, filter);
}

TEST(BuildUtcRangeFilter, RefusesHoursThatLeadOutOfTheCalendar) {
    AppSettings settings;
    Session session;
    settings.startDate = "old";
    for (const std::int32_t hours : {20000000, std::numeric_limits<std::int32_t>::max(),
                                     std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(errorOf([&] { BuildUtcRangeFilter(at(2014, 3, 7), hours, settings, session); }),
                  ErrorNumber::InvalidProcedureCall);
        EXPECT_EQ(errorOf([&] { BuildUtcRangeBounds(at(2014, 3, 7), hours); }),
                  ErrorNumber::InvalidProcedureCall);
    }
    EXPECT_EQ(settings.startDate, "old");
    EXPECT_EQ(session.LastUtcFilter, "");
    EXPECT_EQ(BuildUtcRangeBounds(at(0, 1, 2), 0), "0000-01-01 00:00:00|0000-01-02 00:00:00");
    EXPECT_EQ(errorOf([] { BuildUtcRangeBounds(at(0, 1, 1), 0); }),
              ErrorNumber::InvalidProcedureCall);
}

TEST(BuildUtcRangeBounds, GivesTheSameRangeInAnotherForm) {
    EXPECT_EQ(BuildUtcRangeBounds(at(2014, 3, 7, 9, 5, 12), 0),
              "2014-03-06 09:05:12|2014-03-07 09:05:12");
    EXPECT_EQ(BuildUtcRangeBounds(at(2014, 3, 7, 9), 48),
              "2014-03-05 09:00:00|2014-03-07 09:00:00");
}

TEST(Dates, KnowNoTimeZoneAndNoSummerTime) {
    for (const char* zone : {"UTC", "Europe/Rome", "CET-1CEST,M3.5.0,M10.5.0/3", "JST-9"}) {
        const testing::TimeZone guard(zone);
        EXPECT_EQ(BuildUtcRangeBounds(at(2014, 3, 30, 12), 24),
                  "2014-03-29 12:00:00|2014-03-30 12:00:00");
        // An hour that the clocks of central Europe leave out.
        EXPECT_EQ(NormalizeDateText("2014-03-30 02:30:00", comma), "2014-03-30 02:30:00");
        EXPECT_EQ(CalcDiff2Dates(at(2014, 3, 30), at(2014, 3, 31)), 86400);
    }
}

TEST(CalcDiff2Dates, CountsSecondsFromTheFirstToTheSecond) {
    EXPECT_EQ(CalcDiff2Dates(at(2014, 3, 7, 9), at(2014, 3, 7, 10, 0, 1)), 3601);
    EXPECT_EQ(CalcDiff2Dates(at(2014, 3, 7), at(2014, 3, 7)), 0);
}

TEST(CalcDiff2Dates, GivesZeroWhenTheSecondIsEarlier) {
    EXPECT_EQ(CalcDiff2Dates(at(2014, 3, 7, 9), at(2014, 3, 7, 8)), 0);
    EXPECT_EQ(CalcDiff2Dates(at(9999, 1, 1), at(0, 1, 1)), 0);
}

TEST(CalcDiff2Dates, HoldsThe32BitRange) {
    EXPECT_EQ(CalcDiff2Dates(at(1900, 1, 1), at(2014, 1, 1)),
              std::numeric_limits<std::int32_t>::max());
}

TEST(ReplaceTrailingUtcRange, PutsTheNewRangeInPlaceOfTheOldOne) {
    AppSettings settings;
    Session session;
    const std::string old = BuildUtcRangeFilter(at(2014, 3, 7), 0, settings, session);
    const std::string fresh = BuildUtcRangeFilter(at(2015, 4, 8), 12, settings, session);
    EXPECT_EQ(replaceTrailingUtcRange("Magnitude >= '4' and " + old, fresh),
              "Magnitude >= '4' and " + fresh);
    EXPECT_EQ(replaceTrailingUtcRange(old, fresh), fresh);
}

} // namespace
} // namespace tremor
