#include "alerts/new_events_fixture.h"
#include "alerts/newest_event.h"

namespace tremor {
namespace {

using NewestEventTest = testing::NewEventsTest;

TEST_F(NewestEventTest, IsTheOneWithTheLatestTime) {
    run("insert into Events values ('2021-01-14 "
        "05:45:26.600','42.7','13,23','x','-0.5','INGV','')");
    run("insert into Events values ('2021-01-14 05:45:26.500','1','2','3','9','INGV','')");
    const std::optional<NewestEvent> event = newestEvent(database);
    ASSERT_TRUE(event.has_value());
    EXPECT_EQ(event->utc, "2021-01-14 05:45:26.600");
    EXPECT_EQ(event->latitude, "42.7");
    EXPECT_EQ(event->longitude, "13,23");
    EXPECT_EQ(event->depth, "x");
    EXPECT_EQ(event->magnitude, "-0.5");
}

TEST_F(NewestEventTest, IsNothingInAnEmptyCatalogueAndWithoutAnAnswer) {
    EXPECT_FALSE(newestEvent(database).has_value());
    run("drop table Events");
    EXPECT_FALSE(newestEvent(database).has_value());
}

} // namespace
} // namespace tremor
