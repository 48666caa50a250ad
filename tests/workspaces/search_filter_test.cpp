#include "core/conversions.h"
#include "support/error_of.h"
#include "workspaces/search_filter.h"
#include "workspaces/search_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::rowsOf;
using testing::SearchTest;
using testing::valueOf;

const std::string A = "(Latitude >= 41.5) and (Latitude <= 43) AND (Longitude >= 12) and "
                      "(Longitude <= 14.25)";
const std::string M = "(Magnitude >= '2') and (Magnitude <= '5.5')";
const std::string D = "(Depth >= '0') and (Depth <= '100')";
const std::string T = "(UTC >= '2016-08-20 00:00:00') and (UTC <= '2016-08-24 23:59:59')";
const std::string H = "(UTC >= '2016-08-23 10:00:00') and (UTC <= '2016-08-24 10:00:00')";

class SearchFilterTest : public SearchTest {
  protected:
    SearchFilterTest() {
        given.startDate = "2016-08-20";
        given.endDate = "2016-08-24";
        given.minMag = "2";
        given.maxMag = "5.5";
        given.method = AreaMethod::Corners;
        given.BL_Latitude = "41.5";
        given.BL_Longitude = "12";
        given.TR_Latitude = "43";
        given.TR_Longitude = "14.25";
        given.depthMax = "100";
    }

    // The condition of a search that succeeds.
    std::string query(bool magnitude, bool dates, bool area, std::int32_t hours) {
        given.rangeMag = magnitude;
        given.rangeDate = dates;
        given.rangeInMap = area;
        settings.RangeHoursOfEventsInMap = hours;
        settings.searchParQuery = "before";
        EXPECT_TRUE(point.filter.generaParQuery(given));
        return settings.searchParQuery;
    }

    void aroundNorcia() {
        given.rangeInMap = true;
        given.rangeDate = true;
        given.method = AreaMethod::Distance;
        given.BL_Latitude = "42.7";
        given.BL_Longitude = "13.23";
        given.TR_Latitude.clear();
        given.TR_Longitude.clear();
        given.distance = "50";
    }

    SearchParameters given;
};

// The table of combinations, row by row.

TEST_F(SearchFilterTest, JoinsAreaMagnitudeDepthAndDates) {
    EXPECT_EQ(query(true, true, true, 0), A + " AND " + M + " AND " + D + " AND " + T);
    EXPECT_EQ(query(true, true, true, 24), A + " AND " + M + " AND " + D + " AND " + T);
}

TEST_F(SearchFilterTest, JoinsAreaMagnitudeDepthAndTheLastHours) {
    EXPECT_EQ(query(true, false, true, 24), A + " AND " + M + " AND " + D + " AND " + H);
}

TEST_F(SearchFilterTest, LosesAreaAndDepthBesideAMagnitudeWithoutDatesAndHours) {
    EXPECT_EQ(query(true, false, true, 0), M);
}

TEST_F(SearchFilterTest, JoinsAreaDepthAndDates) {
    EXPECT_EQ(query(false, true, true, 0), A + " AND " + D + " AND " + T);
    EXPECT_EQ(query(false, true, true, 24), A + " AND " + D + " AND " + T);
}

TEST_F(SearchFilterTest, JoinsAreaDepthAndTheLastHours) {
    EXPECT_EQ(query(false, false, true, 24), A + " AND " + D + " AND " + H);
}

TEST_F(SearchFilterTest, LeavesTheConditionAloneForAnAreaWithoutDatesAndHours) {
    EXPECT_EQ(query(false, false, true, 0), "before");
    EXPECT_EQ(query(false, false, true, -1), "before");
}

TEST_F(SearchFilterTest, TakesDatesAlone) {
    EXPECT_EQ(query(false, true, false, 24), T);
    EXPECT_EQ(T.size(), 65U);
}

TEST_F(SearchFilterTest, TakesMagnitudesWithDatesHoursOrAlone) {
    EXPECT_EQ(query(true, true, false, 24), M + " AND " + T);
    EXPECT_EQ(query(true, false, false, 24), M + " AND " + H);
    EXPECT_EQ(query(true, false, false, 0), M);
}

TEST_F(SearchFilterTest, BuildsTheSameForAllThreeWaysToTellAnArea) {
    given.method = AreaMethod::FromMap;
    EXPECT_EQ(query(true, true, true, 24), A + " AND " + M + " AND " + D + " AND " + T);
    EXPECT_EQ(query(true, false, true, 0), M);
    EXPECT_EQ(query(false, false, true, 0), "before");
    given.method = AreaMethod::None;
    EXPECT_EQ(query(true, true, true, 24), M + " AND " + T) << "no area is told";
}

TEST_F(SearchFilterTest, DoesNotCheckCornersThatCameFromTheMap) {
    given.method = AreaMethod::FromMap;
    given.TR_Latitude = "90";
    EXPECT_NE(query(false, true, true, 0).find("(Latitude <= 90)"), std::string::npos);
}

// Settings that a search leaves behind.

TEST_F(SearchFilterTest, KeepsTheRangeOfDatesAndStopsTheWorkspaceFromUpdating) {
    query(false, true, false, 0);
    EXPECT_EQ(settings.startDate, "2016-08-20 00:00:00");
    EXPECT_EQ(settings.endDate, "2016-08-24 23:59:59");
    EXPECT_EQ(settings.wrkSpaceUpdating, 0);
    query(true, false, false, 0);
    EXPECT_EQ(settings.wrkSpaceUpdating, 1);
}

// Failures.

TEST_F(SearchFilterTest, WantsAtLeastOneFilter) {
    expectRefusal("You must select a filter.", "Insufficient parameters...");
    settings.wrkSpaceUpdating = 0;
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, "before");
    EXPECT_EQ(settings.wrkSpaceUpdating, 0);
    EXPECT_TRUE(panel.calls.empty());
}

TEST_F(SearchFilterTest, RefusesAFirstDayBehindTheLast) {
    given.rangeDate = true;
    given.startDate = "2016-08-25";
    expectRefusal("First date must be lower then second date...", "Error...");
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, "before");
    EXPECT_EQ(settings.startDate, "2016-08-25 00:00:00");
}

TEST_F(SearchFilterTest, TakesTheSameDayInBothPickersForThatDay) {
    given.startDate = given.endDate;
    EXPECT_EQ(query(false, true, false, 0),
              "(UTC >= '2016-08-24 00:00:00') and (UTC <= '2016-08-24 23:59:59')");
}

TEST_F(SearchFilterTest, ReportsADayThatDoesNotExist) {
    given.rangeDate = true;
    for (const char* day : {"2015-02-29", "2016-08-00", "2016-13-01", "20160824", "", "x' or '1"}) {
        given.startDate = day;
        prompts.expectRuntimeError("Description: Type mismatch", ErrorAnswer::Ignore);
        EXPECT_FALSE(point.filter.generaParQuery(given)) << day;
        EXPECT_EQ(settings.searchParQuery, "before");
    }
}

TEST_F(SearchFilterTest, RefusesALargestMagnitudeBelowTheSmallestAndKeepsTheDates) {
    given.rangeDate = given.rangeMag = true;
    given.maxMag = "1.9";
    expectRefusal("Error in range Magnitude.", "Error...");
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, T) << "what was built before stays";
    given.maxMag = "2";
    EXPECT_TRUE(point.filter.generaParQuery(given)) << "equal is allowed";
}

TEST_F(SearchFilterTest, RefusesASmallestDepthAboveTheLargestAndKeepsTheMagnitudes) {
    given.rangeMag = given.rangeInMap = given.rangeDate = true;
    given.depthMin = "100.5";
    expectRefusal("Error in range Depth.", "Error...");
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, M + " AND " + T);
    given.depthMin = "100";
    EXPECT_TRUE(point.filter.generaParQuery(given)) << "equal is allowed";
}

TEST_F(SearchFilterTest, StopsAtACoordinateOutOfRange) {
    given.rangeDate = given.rangeInMap = true;
    given.BL_Longitude = "-181";
    expectRefusal("The Range of the Longitude cannot exceed °180.00 and cannot be less of "
                  "°-180.00",
                  "TREMORLEDGER");
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, T);
    EXPECT_TRUE(panel.calls.empty());
}

TEST_F(SearchFilterTest, ReportsHoursThatLeadOutOfTheCalendarAndKeepsTheMagnitudes) {
    given.rangeMag = true;
    settings.RangeHoursOfEventsInMap = 2147483647;
    prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
    EXPECT_TRUE(point.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, M);
}

// Coordinates.

TEST_F(SearchFilterTest, ChecksTheFourCoordinatesInOrderAndWithoutTheLimits) {
    const std::string latitude =
        "The Range of the Latitude cannot exceed °90.00 and cannot be less of °-90.00";
    struct Case {
        std::string SearchParameters::*box;
        const char* limit;
        const char* inside;
        std::string message;
    };
    const std::vector<Case> cases = {
        {&SearchParameters::TR_Latitude, "90", "89.9999", latitude},
        {&SearchParameters::BL_Latitude, "-90", "-89.9999", latitude},
        {&SearchParameters::BL_Longitude, "180", "179.9999",
         "The Range of the Longitude cannot exceed °180.00 and cannot be less of °-180.00"},
        {&SearchParameters::TR_Longitude, "-180", "-179.9999",
         "Range of the Longitude is from +180 to -180"}};
    for (std::size_t wrong = 0; wrong < cases.size(); ++wrong) {
        for (std::size_t i = 0; i < cases.size(); ++i)
            given.*cases[i].box = i < wrong ? cases[i].inside : cases[i].limit;
        expectRefusal(cases[wrong].message, "TREMORLEDGER");
        EXPECT_FALSE(point.filter.checkGPS(given));
    }
    for (const Case& each : cases)
        given.*each.box = each.inside;
    EXPECT_TRUE(point.filter.checkGPS(given));
}

TEST_F(SearchFilterTest, TakesAnEmptyCoordinateForZero) {
    given.BL_Latitude.clear();
    given.BL_Longitude.clear();
    given.TR_Latitude.clear();
    given.TR_Longitude.clear();
    EXPECT_TRUE(point.filter.checkGPS(given));
    EXPECT_TRUE(comma.filter.checkGPS(given));
}

TEST_F(SearchFilterTest, FindsNothingInARectangleOverTheDateLine) {
    addEvent("2016-08-21 01:00:00", "42", "179.95");
    given.BL_Longitude = "179";
    given.TR_Longitude = "-179";
    query(false, true, true, 0);
    EXPECT_EQ(found(), 0);
}

// Searches by distance.

TEST_F(SearchFilterTest, PutsTheCornersAtTheDistanceOnTheDiagonals) {
    aroundNorcia();
    ASSERT_TRUE(point.filter.generaParQuery(given));
    const HaversineFormula earth(NumberLocale::point(), harness.errors);
    const std::string northEast = earth.revealBounds(42.7, 13.23, "45", 50);
    const std::string southWest = earth.revealBounds(42.7, 13.23, "225", 50);
    const auto part = [](const std::string& both, bool first) {
        return first ? both.substr(0, both.find('|')) : both.substr(both.find('|') + 1);
    };
    EXPECT_EQ(northEast, "43.017138262408|13.6648740139599");
    EXPECT_EQ(settings.searchParQuery,
              "(Latitude >= " + part(southWest, true) + ") and (Latitude <= " +
                  part(northEast, true) + ") and (Longitude >= " + part(southWest, false) +
                  ") and (Longitude <= " + part(northEast, false) + ") AND " + D + " AND " + T);
}

TEST_F(SearchFilterTest, MissesAPointDueNorthAtNineTenthsOfTheDistance) {
    aroundNorcia();
    addEvent("2016-08-21 01:00:00", "43.1046", "13.23"); // 45 km north
    addEvent("2016-08-21 02:00:00", "43.01", "13.65");   // 49 km north-east
    ASSERT_TRUE(point.filter.generaParQuery(given));
    EXPECT_EQ(found(), 1);
}

TEST_F(SearchFilterTest, FindsNothingBehindTheDateLine) {
    aroundNorcia();
    given.BL_Longitude = "179.9";
    addEvent("2016-08-21 01:00:00", "42.7", "179.95");
    addEvent("2016-08-21 02:00:00", "42.7", "-179.95");
    ASSERT_TRUE(point.filter.generaParQuery(given));
    EXPECT_EQ(found(), 1);
    const std::size_t east = settings.searchParQuery.find("(Longitude <= ") + 14;
    EXPECT_GT(leadingNumber(settings.searchParQuery.substr(east, 8)), 180);
}

TEST_F(SearchFilterTest, ReadsTheCentreWithEitherMarkUnderBothLocales) {
    aroundNorcia();
    ASSERT_TRUE(point.filter.generaParQuery(given));
    const std::string expected = settings.searchParQuery;
    for (SearchFilter* each : {&point.filter, &comma.filter}) {
        for (const bool withComma : {false, true}) {
            given.BL_Latitude = withComma ? "42,7" : "42.7";
            given.BL_Longitude = withComma ? "13,23" : "13.23";
            settings.searchParQuery.clear();
            ASSERT_TRUE(each->generaParQuery(given));
            EXPECT_EQ(settings.searchParQuery, expected);
        }
    }
}

TEST_F(SearchFilterTest, ChecksTheCentreAndStaleCornersOfASearchByDistance) {
    aroundNorcia();
    given.BL_Latitude = "90";
    expectRefusal("The Range of the Latitude cannot exceed °90.00 and cannot be less of °-90.00",
                  "TREMORLEDGER");
    EXPECT_FALSE(point.filter.generaParQuery(given));
    given.BL_Latitude = "no place";
    given.BL_Longitude = "";
    EXPECT_TRUE(point.filter.generaParQuery(given)) << "what is no number is 0";
    given.TR_Longitude = "200";
    expectRefusal("Range of the Longitude is from +180 to -180", "TREMORLEDGER");
    EXPECT_FALSE(point.filter.generaParQuery(given));
}

// Numbers under a comma locale.

TEST_F(SearchFilterTest, WritesPointsWhateverTheLocaleOfTheTyping) {
    given.rangeMag = given.rangeDate = given.rangeInMap = true;
    given.maxMag = "5,5";
    given.BL_Latitude = "41,5";
    given.TR_Longitude = "14,25";
    ASSERT_TRUE(comma.filter.generaParQuery(given));
    EXPECT_EQ(settings.searchParQuery, A + " AND " + M + " AND " + D + " AND " + T);
}

TEST_F(SearchFilterTest, KeepsTheLocalesMarkInTheDepthsAlone) {
    given.rangeDate = given.rangeInMap = true;
    given.depthMin = "0.5";
    given.depthMax = "100.25";
    ASSERT_TRUE(comma.filter.generaParQuery(given));
    EXPECT_NE(settings.searchParQuery.find("(Depth >= '0,5') and (Depth <= '100,25')"),
              std::string::npos);
    ASSERT_TRUE(point.filter.generaParQuery(given));
    EXPECT_NE(settings.searchParQuery.find("(Depth >= '0.5') and (Depth <= '100.25')"),
              std::string::npos);
    given.depthMin = "0,9";
    ASSERT_TRUE(comma.filter.generaParQuery(given));
    EXPECT_NE(settings.searchParQuery.find("(Depth >= '0')"), std::string::npos)
        << "depths are read with a point";
}

// Depths.

TEST_F(SearchFilterTest, LeavesOutWhatIsDeeperThanTheDepthOffered) {
    addEvent("2016-08-21 01:00:00", "42", "13", "100");
    addEvent("2016-08-21 02:00:00", "42", "13", "100.1");
    query(false, true, true, 0);
    EXPECT_EQ(found(), 1);
}

TEST_F(SearchFilterTest, FindsOnlyDepthZeroWithEmptyDepths) {
    given.depthMax.clear();
    addEvent("2016-08-21 01:00:00", "42", "13", "0");
    addEvent("2016-08-21 02:00:00", "42", "13", "0.1");
    query(false, true, true, 0);
    EXPECT_EQ(found(), 1);
}

TEST_F(SearchFilterTest, ComparesQuotedMagnitudesAsNumbers) {
    given.minMag = "4";
    given.maxMag = "10";
    addEvent("2016-08-24 09:00:00", "42", "13", "0", "4.5");
    addEvent("2016-08-24 09:01:00", "42", "13", "0", "3.9");
    query(true, false, false, 24);
    EXPECT_EQ(found(), 1);
}

// The number of events and their display.

TEST_F(SearchFilterTest, Shows299EventsWithoutAQuestion) {
    addEvents(299);
    query(false, true, false, 0);
    EXPECT_EQ(found(), 299);
    EXPECT_EQ(panel.calls.size(), 5U);
}

TEST_F(SearchFilterTest, AsksBeforeItShows300Events) {
    addEvents(300);
    given.rangeDate = true;
    const auto ask = [this](BoxAnswer answer) {
        prompts.expectBox(
            "There are too many events to show.\r\nDo you want show all events selected?",
            "TREMORLEDGER", BoxIcon::None, BoxButtons::YesNo, answer);
    };
    ask(BoxAnswer::No);
    EXPECT_FALSE(point.filter.generaParQuery(given));
    EXPECT_TRUE(panel.calls.empty());
    EXPECT_EQ(settings.searchParQuery, T) << "the condition is in force all the same";
    ask(BoxAnswer::Yes);
    EXPECT_TRUE(point.filter.generaParQuery(given));
    EXPECT_EQ(panel.calls.size(), 5U);
}

TEST_F(SearchFilterTest, ShowsTheEventsInOrder) {
    query(false, true, false, 0);
    EXPECT_EQ(panel.calls,
              (std::vector<std::string>{
                  "removeAll", "FillGridEvents(" + T + ", , )", "pictureMagnitudeEvents",
                  "eventsInMap(select * from Events where " + T + ")", "clickEventi"}));
}

TEST_F(SearchFilterTest, HandsTheMapWhatTheGridHasPutInPlaceOfTheCondition) {
    panel.onCall = [this](const std::string& call) {
        if (call.starts_with("FillGridEvents"))
            settings.searchParQuery = "recovered";
    };
    settings.searchParQuery.clear();
    given.rangeInMap = true;
    settings.RangeHoursOfEventsInMap = 0;
    EXPECT_TRUE(point.filter.generaParQuery(given)) << "no condition at all counts no events";
    EXPECT_EQ(panel.calls[1], "FillGridEvents(, , )");
    EXPECT_EQ(panel.calls[3], "eventsInMap(select * from Events where recovered)");
}

TEST_F(SearchFilterTest, PassesOverStepsOfTheDisplayThatFail) {
    panel.onCall = [](const std::string&) { throw std::runtime_error("no map"); };
    query(false, true, false, 0);
    EXPECT_EQ(panel.calls.size(), 5U);
}

// Saving as a workspace.

TEST_F(SearchFilterTest, SavesCornersMagnitudesAndDepthsAsAWorkspace) {
    given.saveWrkSpace = true;
    given.workspaceName = "Centro";
    query(true, true, true, 0);
    EXPECT_EQ(
        rowsOf(database, "select * from Workspace"),
        (std::vector<std::vector<std::string>>{{"Centro", "42.5", "13.5", "7", "41.5", "12.0",
                                                "43.0", "14.25", "2.0", "5.5", "0.0", "100.0"}}));
    EXPECT_EQ(panel.calls[0], "selection");
    EXPECT_EQ(panel.calls[1], "popolaComboWorkspace");
    EXPECT_EQ(panel.calls[2], "removeAll");
}

TEST_F(SearchFilterTest, SavesMagnitudesZeroAndEightWithoutARangeOfThem) {
    given.saveWrkSpace = true;
    given.workspaceName = "Centro";
    query(false, true, true, 0);
    EXPECT_EQ(rowsOf(database, "select MagMin, MagMax from Workspace").front(),
              (std::vector<std::string>{"0.0", "8.0"}));
}

TEST_F(SearchFilterTest, SavesTheCornersThatADistanceGives) {
    aroundNorcia();
    given.saveWrkSpace = true;
    given.workspaceName = "Norcia";
    ASSERT_TRUE(point.filter.generaParQuery(given));
    EXPECT_EQ(valueOf(database, "select TLat || ' ' || TLng from Workspace"),
              "43.017138262408 13.6648740139599");
    EXPECT_EQ(valueOf(database, "select BLat < 42.7 and BLng < 13.23 from Workspace"), "1");
}

TEST_F(SearchFilterTest, SavesNoWorkspaceWithoutAnArea) {
    given.saveWrkSpace = true;
    given.workspaceName = "Centro";
    query(true, true, false, 0);
    EXPECT_EQ(valueOf(database, "select count(*) from Workspace"), "0");
}

TEST_F(SearchFilterTest, ShowsTheSearchAlthoughTheMainWindowGoesToTheSavedWorkspace) {
    panel.onCall = [this](const std::string& call) {
        if (call == "popolaComboWorkspace") {
            settings.searchParQuery = "that of the workspace";
            settings.startDate = settings.endDate = "its hours";
        }
    };
    given.saveWrkSpace = true;
    EXPECT_EQ(query(false, true, true, 0), A + " AND " + D + " AND " + T);
    EXPECT_EQ(settings.startDate, "2016-08-20 00:00:00");
    EXPECT_EQ(settings.endDate, "2016-08-24 23:59:59");
}

// The view of the map.

TEST_F(SearchFilterTest, TakesTheAreaOfTheMapWithPoints) {
    const auto area = point.filter.areaOfMap();
    ASSERT_TRUE(area);
    EXPECT_EQ(panel.calls, std::vector<std::string>{"getDataMap"});
    EXPECT_EQ(area->south + " " + area->west + " " + area->north + " " + area->east,
              "41.5 12.25 43.5 14.75");
}

TEST_F(SearchFilterTest, AsksTheMapAgainOnRetryAndGivesUpOnIgnore) {
    panel.view.reset();
    prompts.expectRuntimeError("The map gives no answer.", ErrorAnswer::Retry);
    prompts.expectRuntimeError("The map gives no answer.", ErrorAnswer::Ignore);
    EXPECT_FALSE(point.filter.areaOfMap());
    EXPECT_EQ(panel.calls.size(), 2U);
}

// The first day offered.

TEST_F(SearchFilterTest, OffersTheMonthOfTheOldestEvent) {
    EXPECT_EQ(point.filter.oldestDay(), "") << "no events";
    addEvent("2016-08-24 01:36:32");
    addEvent("2015-12-31 23:59:59");
    EXPECT_EQ(point.filter.oldestDay(), "2015/12");
}

TEST(StartOfOldest, TakesAsManyCharactersAsStandBehindTheBlankButTwo) {
    EXPECT_EQ(startOfOldest("2016-08-24 01:36:32"), "2016/08");
    EXPECT_EQ(startOfOldest("2016-08-24 01:36:32.600"), "2016/08/24");
    EXPECT_EQ(startOfOldest("2016-08-24 01:36:32.1"), "2016/08/2");
    EXPECT_EQ(startOfOldest("2016-08-24"), "2016/08/2") << "no blank";
    EXPECT_EQ(startOfOldest("2016-08-24 0"), "");
    EXPECT_EQ(startOfOldest("x"), "");
}

TEST(StartOfOldest, FailsWhenNothingStandsBehindTheBlank) {
    for (const char* text : {"", " ", "2016-08-24 "}) {
        EXPECT_EQ(testing::errorOf([&] { startOfOldest(text); }), ErrorNumber::InvalidProcedureCall)
            << text;
    }
}

// Numbers while they are typed.

TEST(NumberWhileTyped, KeepsNumbersOfTheLocaleAndTheirBeginnings) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        const std::string mark(1, locale.decimalMark);
        for (const std::string& text :
             {std::string(), std::string("-"), std::string("+"), std::string("-12"),
              std::string(" 7 "), std::string("1E"), mark, "-" + mark, "12" + mark, mark + "5",
              std::string("1E999")}) {
            EXPECT_EQ(numberWhileTyped(text, "0", locale), text);
        }
    }
}

TEST(NumberWhileTyped, ResetsEverythingElse) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        for (const char* text : {"abc", "4x", "'", "4' or '1", "--", "1 2", "°"})
            EXPECT_EQ(numberWhileTyped(text, "0", locale), "0") << text;
        EXPECT_EQ(numberWhileTyped(std::string(10000, 'a'), "", locale), "");
    }
}

TEST(NumberTyped, ResetsMereBeginningsAndKeepsTheEmptyText) {
    for (const char* text : {"-", "+", ".", "1E"})
        EXPECT_EQ(numberTyped(text, "0", NumberLocale::point()), "0") << text;
    EXPECT_EQ(numberTyped("", "0", NumberLocale::point()), "");
    EXPECT_EQ(numberTyped("-4.5", "0", NumberLocale::point()), "-4.5");
    EXPECT_EQ(numberTyped("-4,5", "0", NumberLocale::comma()), "-4,5");
}

} // namespace
} // namespace tremor
