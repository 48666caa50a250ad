#include "core/latest_hours.h"
#include "support/fakes.h"

namespace tremor {
namespace {

class LatestHours : public ::testing::Test {
  protected:
    std::string latest() {
        ProcedureTrace trace(harness.errors, "Form - panel", "query2Controls");
        return latestHours(trace, clock, settings, session);
    }

    testing::FakeClock clock;
    AppSettings settings;
    Session session;
    testing::ErrorHarness harness;
};

TEST_F(LatestHours, EndNowAndBecomeTheLatestRange) {
    settings.RangeHoursOfEventsInMap = 6;
    const std::string range = "(UTC >= '2014-03-07 03:05:12') and (UTC <= '2014-03-07 09:05:12')";
    EXPECT_EQ(latest(), range);
    EXPECT_EQ(settings.startDate, "2014-03-07 03:05:12");
    EXPECT_EQ(settings.endDate, "2014-03-07 09:05:12");
    EXPECT_EQ(session.LastUtcFilter, range);
}

TEST_F(LatestHours, AreEmptyWhenTheyLeadOutOfTheCalendarAndTheOperatorIgnoresThat) {
    settings.RangeHoursOfEventsInMap = 3000 * 366 * 24;
    session.LastUtcFilter = "before";
    harness.prompts.expectRuntimeError("query2Controls", ErrorAnswer::Ignore);
    EXPECT_EQ(latest(), "");
    EXPECT_EQ(session.LastUtcFilter, "before");
}

} // namespace
} // namespace tremor
