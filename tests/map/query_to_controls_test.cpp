#include "map/query_to_controls.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

class RecordingSteps : public QueryToControlsSteps {
  public:
    bool mapIsLive() override { return live; }
    void removeAll() override { calls.emplace_back("removeAll"); }
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override {
        calls.push_back("FillGridEvents [" + std::string(filter) + "] [" +
                        std::string(fallbackFilter) + "] [" + std::string(order) + "]");
        if (onFill)
            onFill();
    }
    void eventsInMap(std::string_view sql) override {
        calls.push_back("eventsInMap " + std::string(sql));
    }
    void clickEventi() override { calls.emplace_back("eventi.Click"); }
    void pin2gif(std::string_view sql) override { calls.push_back("pin2gif " + std::string(sql)); }
    void pictureMagnitudeEvents() override { calls.emplace_back("pictureMagnitudeEvents"); }

    bool live = true;
    std::function<void()> onFill;
    Texts calls;
};

const std::string lastDay = "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')";
const std::string oldDay = "(UTC >= '2014-01-01 00:00:00') and (UTC <= '2014-01-02 00:00:00')";

class QueryToControlsTest : public ::testing::Test {
  protected:
    QueryToControlsTest() { settings.RangeHoursOfEventsInMap = 24; }

    AppSettings settings;
    Session session;
    testing::FakeClock clock;
    RecordingSteps steps;
    testing::ErrorHarness harness;
    QueryToControls queryToControls{settings, session, clock, steps, harness.errors};
};

TEST_F(QueryToControlsTest, ShowsTheLatestHoursWithoutAConditionInForce) {
    queryToControls.query2Controls();
    EXPECT_EQ(steps.calls, (Texts{"removeAll", "FillGridEvents [] [" + lastDay + "] []",
                                  "eventsInMap select * from Events where " + lastDay,
                                  "eventi.Click", "pictureMagnitudeEvents",
                                  "pin2gif select * from Events where " + lastDay +
                                      " order by UTC desc limit 1"}));
    EXPECT_EQ(settings.searchParQuery, "");
}

TEST_F(QueryToControlsTest, ShowsTheLatestHoursAlsoWhileTheWorkspaceIsNotUpdating) {
    settings.wrkSpaceUpdating = 0;
    queryToControls.query2Controls();
    EXPECT_EQ(steps.calls.size(), 6U);
}

TEST_F(QueryToControlsTest, MovesTheTimeRangeOfTheConditionUpToNow) {
    settings.searchParQuery = "(Magnitude >= '4') AND " + oldDay;
    queryToControls.query2Controls();
    const std::string moved = "(Magnitude >= '4') AND " + lastDay;
    EXPECT_EQ(settings.searchParQuery, moved);
    EXPECT_EQ(steps.calls, (Texts{"removeAll", "FillGridEvents [" + moved + "] [] []",
                                  "eventsInMap select * from Events where " + moved, "eventi.Click",
                                  "pictureMagnitudeEvents"}));
    EXPECT_EQ(session.LastUtcFilter, lastDay);
}

TEST_F(QueryToControlsTest, LeavesAConditionOfUpTo65CharactersAsItIs) {
    ASSERT_EQ(oldDay.size(), 65U);
    settings.searchParQuery = oldDay;
    queryToControls.query2Controls();
    EXPECT_EQ(settings.searchParQuery, oldDay);
    EXPECT_EQ(steps.calls.at(1), "FillGridEvents [" + oldDay + "] [] []");
    EXPECT_EQ(session.LastUtcFilter, "");
}

TEST_F(QueryToControlsTest, CutsTheLast65CharactersWhateverTheyAre) {
    settings.searchParQuery = "A" + std::string(65, 'x');
    queryToControls.query2Controls();
    EXPECT_EQ(settings.searchParQuery, "A" + lastDay);
}

TEST_F(QueryToControlsTest, LeavesAConditionAloneWhileTheWorkspaceIsNotUpdating) {
    settings.wrkSpaceUpdating = 0;
    settings.searchParQuery = "(Magnitude >= '4') AND " + oldDay;
    const std::string before = settings.searchParQuery;
    queryToControls.query2Controls();
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_EQ(settings.searchParQuery, before);
}

TEST_F(QueryToControlsTest, DoesNothingWithoutALiveMap) {
    steps.live = false;
    queryToControls.query2Controls();
    EXPECT_TRUE(steps.calls.empty());
}

TEST_F(QueryToControlsTest, MarksTheEventsOfTheConditionThatTheTableHasPutInPlace) {
    settings.searchParQuery = "refused";
    steps.onFill = [this] { settings.searchParQuery = "(Latitude >= 35)"; };
    queryToControls.query2Controls();
    EXPECT_EQ(steps.calls.at(2), "eventsInMap select * from Events where (Latitude >= 35)");
}

TEST_F(QueryToControlsTest, GoesOnWithoutATimeRangeWhenTheHoursAreImpossible) {
    settings.RangeHoursOfEventsInMap = 2'000'000'000;
    harness.prompts.expectRuntimeError("query2Controls", ErrorAnswer::Ignore);
    queryToControls.query2Controls();
    EXPECT_EQ(steps.calls.at(1), "FillGridEvents [] [] []");
}

} // namespace
} // namespace tremor
