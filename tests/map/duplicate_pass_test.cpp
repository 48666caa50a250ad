#include "map/duplicate_pass.h"
#include "support/fakes.h"
#include "workspaces/haversine_formula.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;
using Rows = std::vector<EventMarkerRow>;

constexpr std::int32_t preferPrimarySource = 1;

// Every two points are this far apart.
class FixedDistance : public DistanceRoutine {
  public:
    explicit FixedDistance(double kilometres = 0.5) : kilometres_(kilometres) {}
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        calls.push_back(fmt::format("{} {} {} {} {}", lat1, lon1, lat2, lon2, unit));
        return kilometres_;
    }
    mutable Texts calls;

  private:
    double kilometres_;
};

// An event at a second of 2016-08-24 02:03, newest first in a list.
EventMarkerRow event(int second, std::string_view source) {
    EventMarkerRow row;
    row.UTC = fmt::format("2016-08-24 02:03:{:02}.100", second);
    row.Latitude = "42.7";
    row.Longitude = "13.23";
    row.Source = source;
    return row;
}

// "shown", "hidden" or "hidden, skip" and so on, one text a row.
Texts outcome(const Rows& rows) {
    Texts texts;
    for (const EventMarkerRow& row : rows)
        texts.push_back(
            fmt::format("{}{}", row.visible ? "shown" : "hidden", row.skip ? ", skip" : ""));
    return texts;
}

Texts afterPass(Rows rows, std::int32_t priority, const DistanceRoutine& earth = FixedDistance()) {
    runDuplicatePass(rows, priority, earth, NumberLocale::point());
    return outcome(rows);
}

TEST(DuplicatePass, ShowsTheOnlyRow) {
    EXPECT_EQ(afterPass({event(0, "INGV")}, preferPrimarySource), Texts{"shown"});
    EXPECT_EQ(afterPass({event(0, "USGS")}, preferPrimarySource), Texts{"shown"});
}

TEST(DuplicatePass, TakesNoRows) {
    EXPECT_EQ(afterPass({}, preferPrimarySource), Texts{});
}

TEST(DuplicatePass, ShowsTheReportOfThePrimarySource) {
    EXPECT_EQ(afterPass({event(9, "INGV"), event(0, "EMSC")}, preferPrimarySource),
              (Texts{"shown", "hidden, skip"}));
    EXPECT_EQ(afterPass({event(9, "EMSC"), event(0, "INGV")}, preferPrimarySource),
              (Texts{"hidden", "shown"}));
}

TEST(DuplicatePass, ShowsTheReportOfTheAlternateSource) {
    EXPECT_EQ(afterPass({event(9, "INGV"), event(0, "USGS")}, preferAlternateSource),
              (Texts{"hidden", "shown"}));
    EXPECT_EQ(afterPass({event(9, "USGS"), event(0, "INGV")}, preferAlternateSource),
              (Texts{"shown", "hidden, skip"}));
}

TEST(DuplicatePass, ShowsAllSources) {
    for (const char* first : {"INGV", "EMSC"})
        for (const char* second : {"INGV", "EMSC"})
            EXPECT_EQ(afterPass({event(9, first), event(0, second)}, showAllSources),
                      (Texts{"shown", "shown"}));
}

// Both reports of the class that is not preferred: the first goes, the second has its own turn.
TEST(DuplicatePass, HidesTheFirstOfTwoReportsThatAreNotPreferred) {
    EXPECT_EQ(afterPass({event(9, "EMSC"), event(0, "USGS")}, preferPrimarySource),
              (Texts{"hidden", "shown"}));
    EXPECT_EQ(afterPass({event(9, "INGV"), event(0, "SEISCP")}, preferAlternateSource),
              (Texts{"hidden", "shown"}));
}

TEST(DuplicatePass, HidesTheSecondOfTwoPreferredReports) {
    EXPECT_EQ(afterPass({event(9, "INGV"), event(0, "ISIDE")}, preferPrimarySource),
              (Texts{"shown", "hidden, skip"}));
    EXPECT_EQ(afterPass({event(9, "EMSC"), event(0, "USGS")}, preferAlternateSource),
              (Texts{"shown", "hidden, skip"}));
}

TEST(DuplicatePass, CountsTenSecondsAsTwoEvents) {
    EXPECT_EQ(afterPass({event(10, "INGV"), event(0, "EMSC")}, preferPrimarySource),
              (Texts{"shown", "shown"}));
}

TEST(DuplicatePass, CountsOneKilometreAsTwoEvents) {
    const Rows rows{event(9, "INGV"), event(0, "EMSC")};
    EXPECT_EQ(afterPass(rows, preferPrimarySource, FixedDistance(1.0)), (Texts{"shown", "shown"}));
    EXPECT_EQ(afterPass(rows, preferPrimarySource, FixedDistance(0.999)),
              (Texts{"shown", "hidden, skip"}));
}

// 00.999 and 10.000 are 9.001 s apart, but 10 without their fractions.
TEST(DuplicatePass, ComparesTimesWithoutTheirFractions) {
    Rows rows{event(10, "INGV"), event(0, "EMSC")};
    rows[0].UTC = "2016-08-24 02:03:10.000";
    rows[1].UTC = "2016-08-24 02:03:00.999";
    EXPECT_EQ(afterPass(rows, preferPrimarySource), (Texts{"shown", "shown"}));
}

// "02:03:54.1" loses its seconds and "02:03:54.12" all but the "5", so that two events 44 s apart
// count as one.
TEST(DuplicatePass, CutsFourCharactersFromTimesWithFewerDecimalsToo) {
    Rows rows{event(0, "INGV"), event(0, "EMSC")};
    rows[0].UTC = "2016-08-24 02:03:54.1";
    rows[1].UTC = "2016-08-24 02:03:10.1";
    EXPECT_EQ(afterPass(rows, preferPrimarySource), (Texts{"shown", "hidden, skip"}));
    rows[0].UTC = "2016-08-24 02:03:54.12";
    rows[1].UTC = "2016-08-24 02:03:10.12";
    EXPECT_EQ(afterPass(rows, preferPrimarySource), (Texts{"shown", "hidden, skip"}));
    rows[0].UTC = "2016-08-24 02:04:54.1";
    EXPECT_EQ(afterPass(rows, preferPrimarySource), (Texts{"shown", "shown"}));
}

// The minute has lost a digit: 01:36:32 counts as 01:03.
TEST(DuplicatePass, CutsFourCharactersFromTimesWithoutDecimalsToo) {
    Rows rows{event(0, "INGV"), event(0, "EMSC")};
    rows[0].UTC = "2016-08-24 01:36:32";
    rows[1].UTC = "2016-08-24 01:30:00";
    EXPECT_EQ(afterPass(rows, preferPrimarySource), (Texts{"shown", "hidden, skip"}));
}

TEST(DuplicatePass, CountsAnEarlierTimeInFrontAsNoDifference) {
    EXPECT_EQ(afterPass({event(0, "INGV"), event(50, "EMSC")}, preferPrimarySource),
              (Texts{"shown", "hidden, skip"}));
}

// Three reports within 18 s: the second loses against the first and, though it has lost, the third
// against the second. With 9 s between each, only neighbours are compared.
TEST(DuplicatePass, LetsARowThatHasLostTakeItsNeighbourWithIt) {
    EXPECT_EQ(
        afterPass({event(18, "INGV"), event(9, "ISIDE"), event(0, "EMSC")}, preferPrimarySource),
        (Texts{"shown", "shown, skip", "hidden, skip"}));
}

TEST(DuplicatePass, NeverComparesAThirdRow) {
    // The reports of INGV are duplicates of each other, but a distant event stands between them.
    Rows rows{event(2, "INGV"), event(1, "INGV"), event(0, "INGV")};
    class FirstOrLastFar : public DistanceRoutine {
        double distance(std::string_view lat1, std::string_view, std::string_view lat2,
                        std::string_view, std::string_view) const override {
            return lat1 == lat2 ? 0 : 100;
        }
    };
    rows[1].Latitude = "10.0";
    EXPECT_EQ(afterPass(rows, preferPrimarySource, FirstOrLastFar()),
              (Texts{"shown", "shown", "shown"}));
}

TEST(DuplicatePass, KeepsASkippedRowHiddenInItsOwnTurn) {
    EXPECT_EQ(
        afterPass({event(59, "INGV"), event(50, "EMSC"), event(0, "INGV")}, preferPrimarySource),
        (Texts{"shown", "hidden, skip", "shown"}));
}

TEST(DuplicatePass, TakesOnlyTheExactNamesForAlternateSources) {
    EXPECT_EQ(afterPass({event(9, "usgs"), event(0, "USGS")}, preferPrimarySource),
              (Texts{"shown", "hidden, skip"}));
    EXPECT_EQ(afterPass({event(9, "USGS\r"), event(0, "USGS")}, preferPrimarySource),
              (Texts{"shown", "hidden, skip"}));
}

TEST(DuplicatePass, PassesTheCoordinatesAsTextWithCommasInKilometres) {
    Rows rows{event(9, "INGV"), event(0, "EMSC")};
    rows[0].Latitude = "42.123456789012345678";
    rows[1].Longitude = "-13.5";
    const FixedDistance earth;
    runDuplicatePass(rows, preferPrimarySource, earth, NumberLocale::point());
    EXPECT_EQ(earth.calls, Texts{"42,123456789012345678 13,23 42,7 -13,5 K"});
}

TEST(DuplicatePass, MeasuresOnlyPairsThatAreCloseInTime) {
    const FixedDistance earth;
    Rows rows{event(30, "INGV"), event(20, "EMSC"), event(11, "EMSC")};
    runDuplicatePass(rows, preferPrimarySource, earth, NumberLocale::point());
    EXPECT_EQ(earth.calls.size(), 1U);
}

TEST(DuplicatePass, ForgetsTheMarksOfAnEarlierRun) {
    Rows rows{event(9, "INGV"), event(0, "EMSC")};
    runDuplicatePass(rows, preferPrimarySource, FixedDistance(), NumberLocale::point());
    runDuplicatePass(rows, preferAlternateSource, FixedDistance(), NumberLocale::point());
    EXPECT_EQ(outcome(rows), (Texts{"hidden", "shown"}));
}

TEST(DuplicatePass, ShowsBothRowsOfAPairWithoutAReadableTime) {
    for (const char* utc :
         {"", "abc", ".100", "2016-08-24T02:03:09.100", "2016-08-24 02:03:09.12345",
          "2016-02-30 02:03:09.100", "'; drop table Events; --"}) {
        Rows rows{event(9, "INGV"), event(8, "EMSC"), event(7, "INGV")};
        rows[1].UTC = utc;
        const DuplicatePassReport report =
            runDuplicatePass(rows, preferPrimarySource, FixedDistance(), NumberLocale::point());
        EXPECT_EQ(outcome(rows), (Texts{"shown", "shown", "shown"})) << utc;
        EXPECT_EQ(report.pairsNotCompared, 2U) << utc;
        EXPECT_EQ(report.firstFaultyRow, 1U) << utc;
    }
}

// The program's own geometry, which reports what it cannot read to the operator.
class Haversine : public DistanceRoutine {
  public:
    explicit Haversine(const NumberLocale& locale) : formula_(locale, harness_.errors) {}
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula_.distance(lat1, lon1, lat2, lon2, unit);
    }

  private:
    testing::ErrorHarness harness_; // expects no error
    HaversineFormula formula_;
};

class DuplicatePassOnEarth : public ::testing::TestWithParam<NumberLocale> {};

INSTANTIATE_TEST_SUITE_P(PointAndComma, DuplicatePassOnEarth,
                         ::testing::Values(NumberLocale::point(), NumberLocale::comma()));

TEST_P(DuplicatePassOnEarth, ComparesRealPlaces) {
    Rows rows{event(9, "INGV"), event(5, "EMSC"), event(0, "EMSC")};
    rows[1].Latitude = "42.7045"; // 0.5 km north
    rows[2].Latitude = "42.7145"; // 1.1 km farther
    runDuplicatePass(rows, preferPrimarySource, Haversine(GetParam()), GetParam());
    EXPECT_EQ(outcome(rows), (Texts{"shown", "hidden, skip", "shown"}));
}

TEST_P(DuplicatePassOnEarth, ComparesIdenticalPlaces) {
    Rows rows{event(9, "INGV"), event(5, "EMSC")};
    runDuplicatePass(rows, preferPrimarySource, Haversine(GetParam()), GetParam());
    EXPECT_EQ(outcome(rows), (Texts{"shown", "hidden, skip"}));
}

TEST_P(DuplicatePassOnEarth, AsksNobodyAboutPlacesThatAreNone) {
    for (const char* place : {"", "NaN", "inf", "1e999", "1e308", "-1e308", "<script>", "42.7'",
                              "361", "42.7.1", "--1"}) {
        Rows rows{event(9, "INGV"), event(8, "EMSC"), event(0, "INGV")};
        rows[1].Longitude = place;
        const DuplicatePassReport report =
            runDuplicatePass(rows, preferPrimarySource, Haversine(GetParam()), GetParam());
        EXPECT_EQ(outcome(rows), (Texts{"shown", "shown", "shown"})) << place;
        EXPECT_EQ(report.pairsNotCompared, 2U) << place;
        EXPECT_EQ(report.firstFaultyRow, 1U) << place;
    }
}

TEST(DuplicatePass, LooksAtNoPlaceOfEventsFarApartInTime) {
    Rows rows{event(50, "INGV"), event(0, "EMSC")};
    rows[0].Latitude = "none";
    const DuplicatePassReport report =
        runDuplicatePass(rows, preferPrimarySource, FixedDistance(), NumberLocale::point());
    EXPECT_EQ(report.pairsNotCompared, 0U);
}

} // namespace
} // namespace tremor
