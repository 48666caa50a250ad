#include "manage/database_manager.h"
#include "manage/manage_fixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::ManageHarness;

DateTime day(int year, unsigned month, unsigned dayOfMonth) {
    return std::chrono::local_days(std::chrono::year(year) / static_cast<int>(month) /
                                   static_cast<int>(dayOfMonth));
}

// Under a point and under a comma as decimal mark.
class DatabaseManagerTest : public ::testing::TestWithParam<bool>, public ManageHarness {
  public:
    DatabaseManagerTest()
        : ManageHarness(GetParam() ? NumberLocale::comma() : NumberLocale::point()) {}

    void expectCritical(const std::string& title, const std::string& text) {
        prompts.expectBox(text, title, BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }
    void expectRefused(const EventQueryForm& form, const std::string& title,
                       const std::string& text) {
        expectCritical(title, text);
        EXPECT_EQ(manager.cmdBuildQuery(form), std::nullopt);
    }
    void expectDeleteQuestion(BoxAnswer answer) {
        prompts.expectBox("Do you want remove this event 2024-01-02 00:00:00 ?", "TREMORLEDGER",
                          BoxIcon::Question, BoxButtons::YesNo, answer);
    }
};

INSTANTIATE_TEST_SUITE_P(Locales, DatabaseManagerTest, ::testing::Bool());

// --- building -------------------------------------------------------------------------------

TEST_P(DatabaseManagerTest, BuildsAStatementWithoutAWherePartWhenNoConditionIsChecked) {
    EXPECT_EQ(manager.cmdBuildQuery({}), "select * from Events");
}

TEST_P(DatabaseManagerTest, JoinsTheCheckedConditionsInTheirOrder) {
    const EventQueryForm form{.dateOn = true,
                              .startDate = day(2024, 1, 2),
                              .endDate = day(2024, 11, 30) + 5h,
                              .magnitudeOn = true,
                              .magnitudeFrom = "1,5",
                              .magnitudeTo = "20",
                              .depthOn = true,
                              .depthFrom = "0",
                              .depthTo = "100",
                              .sourceOn = true,
                              .source = "INGV"};
    EXPECT_EQ(manager.cmdBuildQuery(form),
              "select * from Events where ( UTC >= '2024-01-02' ) AND "
              "( UTC <= '2024-11-30 23:59:59' ) AND ( Magnitude >= '1.5' ) AND "
              "( Magnitude <= '20' ) AND ( Depth >= '0' ) AND ( Depth <= '100' ) AND "
              "(SOURCE = 'INGV')");
}

TEST_P(DatabaseManagerTest, StartsTheWherePartWithTheFirstCheckedCondition) {
    EXPECT_EQ(manager.cmdBuildQuery({.sourceOn = true, .source = "USGS"}),
              "select * from Events where (SOURCE = 'USGS')");
}

TEST_P(DatabaseManagerTest, SortsDownwardsForDescendantAndUpwardsForAnythingElse) {
    EventQueryForm form{.orderBy = true, .orderField = "UTC", .orderDirection = "Descendant"};
    EXPECT_EQ(manager.cmdBuildQuery(form), "select * from Events ORDER BY UTC DESC");
    form.orderDirection = "Ascendant";
    EXPECT_EQ(manager.cmdBuildQuery(form), "select * from Events ORDER BY UTC ASC");
}

TEST_P(DatabaseManagerTest, LeavesGroupingOutOfTheBuiltText) {
    EXPECT_EQ(manager.cmdBuildQuery({.groupBy = true, .groupField = "SOURCE"}),
              "select * from Events");
}

// --- validation -----------------------------------------------------------------------------

TEST_P(DatabaseManagerTest, RefusesAnEndDateBelowTheStartDate) {
    expectRefused({.dateOn = true, .startDate = day(2024, 1, 2), .endDate = day(2024, 1, 1)},
                  "Error Validate Parameters", "Start date must be lower...");
}

TEST_P(DatabaseManagerTest, AcceptsARangeOfOneDayWhateverTheTimesOfDay) {
    EXPECT_TRUE(manager.cmdBuildQuery(
        {.dateOn = true, .startDate = day(2024, 1, 1) + 20h, .endDate = day(2024, 1, 1)}));
}

TEST_P(DatabaseManagerTest, RefusesMagnitudesTheWrongWayRound) {
    expectRefused({.magnitudeOn = true, .magnitudeFrom = "2.5", .magnitudeTo = "2.4"},
                  "Error Validate Parameters", "Error in Magnitude Parameters...");
}

TEST_P(DatabaseManagerTest, ComparesDepthsAsWholeNumbers) {
    expectRefused({.depthOn = true, .depthFrom = "20", .depthTo = "3"}, "Error Validate Parameters",
                  "Error in Depth Parameters...");
    EXPECT_TRUE(manager.cmdBuildQuery({.depthOn = true, .depthFrom = "x", .depthTo = "0"}));
}

TEST_P(DatabaseManagerTest, RefusesAnEmptySource) {
    expectRefused({.sourceOn = true}, "Error Validate Parameters", "Error in Source Parameters...");
}

TEST_P(DatabaseManagerTest, RefusesSortingWithoutAFieldOrADirection) {
    expectRefused({.orderBy = true, .orderDirection = "Ascendant"}, "Error Validate Sorting",
                  "Error in 'ORDER BY' condition...");
    expectRefused({.orderBy = true, .orderField = "UTC"}, "Error Validate Sorting",
                  "Error in 'ORDER BY' condition...");
}

TEST_P(DatabaseManagerTest, RefusesGroupingWithoutAField) {
    expectRefused({.groupBy = true}, "Error Validate Sorting", "Error in 'GROUP BY' condition...");
}

// --- sending --------------------------------------------------------------------------------

TEST_P(DatabaseManagerTest, AcceptsASelectInAnyCase) {
    const auto rows = manager.cmdQuery("SELECT * FROM Events");
    ASSERT_TRUE(rows);
    EXPECT_EQ(rows->rowCount(), 3U);
    EXPECT_EQ(rows->columnNames().front(), "UTC");
}

TEST_P(DatabaseManagerTest, RefusesAnUpdate) {
    expectCritical("Building query...", "Only Select Statement is available...");
    EXPECT_FALSE(manager.cmdQuery("update Events set Depth = 1"));
    expectCritical("Building query...", "Only Select Statement is available...");
    EXPECT_FALSE(manager.cmdQuery(" select * from Events"));
    EXPECT_EQ(count("Depth = 1"), "0");
}

TEST_P(DatabaseManagerTest, NeverWritesWhateverStandsBehindTheWordSelect) {
    for (const std::string sql :
         {"select 1; delete from Events", "select writefile('x', 'y')",
          "select load_extension('x')", "select * from nowhere", "selecting"}) {
        ManageHarness other(locale);
        Database reader;
        ASSERT_EQ(reader.slsOpen(other.catalogue.path(), "R"), 0);
        EXPECT_NE(reader.slsSel(sql), 0) << sql;
        other.prompts.expectBox("The database has refused this query:\r\n" + reader.slGetError(),
                                "Building query...", BoxIcon::Critical, BoxButtons::Ok,
                                BoxAnswer::Ok);
        EXPECT_FALSE(other.manager.cmdQuery(sql)) << sql;
        EXPECT_EQ(other.count(), "3");
    }
}

TEST_P(DatabaseManagerTest, LetsAStoppedQueryEndWithoutABox) {
    int calls = 0;
    manager.setWhileRunning([&] {
        EXPECT_TRUE(manager.running());
        if (++calls == 2)
            manager.stop();
    });
    EXPECT_FALSE(manager.cmdQuery("select count(*) from (with recursive n(x) as (select 1 union "
                                  "all select x + 1 from n) select x from n)"));
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(manager.running());
    EXPECT_TRUE(manager.cmdQuery("select 1"));
}

TEST_P(DatabaseManagerTest, KeepsNoLockBehindAQuery) {
    ASSERT_TRUE(manager.cmdQuery("select * from Events"));
    EXPECT_EQ(catalogue.slsExe("delete from Events"), 0);
}

TEST_P(DatabaseManagerTest, ListsTheSourcesAndTheFields) {
    EXPECT_EQ(manager.sources(), (std::vector<std::string>{"INGV", "USGS"}));
    EXPECT_EQ(manager.fieldNames(), (std::vector<std::string>{"UTC", "Latitude", "Longitude",
                                                              "Depth", "Magnitude", "SOURCE"}));
}

// --- events ---------------------------------------------------------------------------------

TEST_P(DatabaseManagerTest, WantsAnEventToBeSelectedFirst) {
    bool again = false;
    expectCritical("Error..", "Please select an event first.");
    manager.cmdEditEvent([&] { again = true; });
    expectCritical("Error..", "Please select an event first.");
    manager.cmdDeleteEvent([&] { again = true; });
    EXPECT_FALSE(again);
    EXPECT_TRUE(editing.edited.empty());
}

TEST_P(DatabaseManagerTest, RemovesAllRowsWithTheTimeFromAllSources) {
    bool again = false;
    manager.selectEvent("2024-01-02 00:00:00");
    expectDeleteQuestion(BoxAnswer::Yes);
    manager.cmdDeleteEvent([&] { again = true; });
    EXPECT_TRUE(again);
    EXPECT_EQ(count(), "1");
    expectCritical("Error..", "Please select an event first.");
    manager.cmdDeleteEvent([] {});
}

TEST_P(DatabaseManagerTest, RemovesNothingAfterNo) {
    manager.selectEvent("2024-01-02 00:00:00");
    expectDeleteQuestion(BoxAnswer::No);
    manager.cmdDeleteEvent([] { ADD_FAILURE() << "the rows are the same"; });
    EXPECT_EQ(count(), "3");
}

TEST_P(DatabaseManagerTest, SaysWhenTheDatabaseDoesNotRemoveAnEvent) {
    manager.selectEvent("L'Aquila");
    prompts.expectBox("Do you want remove this event L'Aquila ?", "TREMORLEDGER", BoxIcon::Question,
                      BoxButtons::YesNo, BoxAnswer::Yes);
    catalogue.slsExe("delete from Events where UTC = 'L'Aquila'");
    expectCritical("Error..", "The event was not removed:\r\n" + catalogue.slGetError());
    manager.cmdDeleteEvent([] { ADD_FAILURE() << "the rows are the same"; });
    EXPECT_EQ(count(), "3");
}

TEST_P(DatabaseManagerTest, QueriesAgainOnceTheEditorIsClosed) {
    int again = 0;
    manager.cmdAddEvent([&] { ++again; });
    EXPECT_EQ(again, 0);
    editing.close();
    manager.selectEvent("2024-01-01 00:00:00");
    manager.cmdEditEvent([&] { ++again; });
    editing.close();
    EXPECT_EQ(again, 2);
    EXPECT_EQ(editing.edited, (std::vector<std::string>{"", "2024-01-01 00:00:00"}));
}

TEST_P(DatabaseManagerTest, HoldsPollingWhileItIsOpen) {
    manager.opened();
    EXPECT_EQ(session.PollingSuspended, 1);
    manager.closed();
    EXPECT_EQ(session.PollingSuspended, 0);
}

} // namespace
} // namespace tremor
