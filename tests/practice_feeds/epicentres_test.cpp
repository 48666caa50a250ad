#include "practice_feeds/epicentres.h"
#include "practice_feeds/practice_documents.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;

TEST(Epicentres, StandOnTheGlobeAndInTheRangesOfTheirAgency) {
    for (const Reporting& reporting :
         {worldReporting(), euroMediterraneanReporting(), localReporting()}) {
        std::mt19937 random(3);
        double largest = 0;
        std::size_t belowOneMore = 0;
        for (int i = 0; i < 1000; ++i) {
            const FdsnEvent event = drawEpicentre(reporting, random);
            EXPECT_LE(std::abs(event.latitude), 90);
            EXPECT_LE(std::abs(event.longitude), 180);
            EXPECT_GE(event.depth(), 0);
            EXPECT_LE(event.depth(), 700);
            EXPECT_GE(event.magnitude, reporting.smallestMagnitude);
            EXPECT_LE(event.magnitude, reporting.largestMagnitude);
            EXPECT_EQ(event.magnitudeType(),
                      event.magnitude < 5.5 ? reporting.smallType : reporting.largeType);
            EXPECT_FALSE(event.place().empty());
            largest = std::max(largest, event.magnitude);
            belowOneMore += event.magnitude < reporting.smallestMagnitude + 1 ? 1 : 0;
        }
        EXPECT_GT(largest, reporting.smallestMagnitude + 1.5);
        EXPECT_GT(belowOneMore, 850u); // nine in ten are of the smallest magnitude unit
        EXPECT_LT(belowOneMore, 950u);
    }
}

TEST(Epicentres, NameTheDistanceFromATownWhereTheAgencyDoes) {
    std::mt19937 random(1);
    const FdsnEvent event = drawEpicentre(worldReporting(), random);
    EXPECT_TRUE(
        std::regex_match(std::string(event.place()), std::regex("[0-9]+ km [NSEW]{1,3} of .+")))
        << event.place();
    const FdsnEvent region = drawEpicentre(euroMediterraneanReporting(), random);
    EXPECT_EQ(region.place().find(" km "), std::string_view::npos);
}

TEST(MadeUpCatalogue, CoversItsSpanUpToAFewMinutesAgo) {
    const UtcTime now = at("2031-01-02T03:04:05");
    const GrowingCatalogue catalogue =
        madeUpCatalogue(worldReporting(), 240, 240h, {}, [now] { return now; });
    const auto& events = catalogue.events();
    ASSERT_EQ(events.size(), 240u);
    EXPECT_GE(now - events.back().time, 5min);
    EXPECT_LT(now - events.back().time, 6min);
    EXPECT_GT(now - events.front().time, 238h);
    std::set<std::string> ids;
    for (const FdsnEvent& event : events)
        ids.insert(event.id);
    for (std::size_t i = 1; i < events.size(); ++i)
        EXPECT_GE(events[i].time - events[i - 1].time, 1s);
    EXPECT_EQ(ids.size(), events.size());
}

TEST(MadeUpCatalogue, IsTheSameForTheSameSeed) {
    const auto textOf = [](std::uint32_t seed, bool fixed) {
        UtcTime now = at("2031-01-02T03:04:05");
        GrowingCatalogue catalogue = madeUpCatalogue(euroMediterraneanReporting(), 20, 24h,
                                                     {60s, seed, fixed}, [&now] { return now; });
        now += 10min;
        catalogue.advance();
        return catalogue.text();
    };
    EXPECT_EQ(textOf(5, false), textOf(5, false));
    EXPECT_NE(textOf(5, false), textOf(6, false));
    EXPECT_EQ(linesOf(textOf(5, false)).size(), 31u);
    EXPECT_EQ(linesOf(textOf(5, true)).size(), 21u); // fixed: none comes by itself
}

TEST(Relocated, KeepsTheEventAndItsTimeAndMovesTheRest) {
    std::mt19937 random(1);
    FdsnEvent event = drawEpicentre(localReporting(), random);
    event.id = "17";
    event.time = at("2031-01-02T03:04:05");
    const FdsnEvent again = relocated(event, random);
    EXPECT_EQ(again.id, event.id);
    EXPECT_EQ(again.time, event.time);
    EXPECT_EQ(again.place(), event.place());
    EXPECT_NE(again.latitude, event.latitude);
    EXPECT_LE(std::abs(again.latitude - event.latitude), 0.051);
    EXPECT_LE(std::abs(again.longitude - event.longitude), 0.051);
    EXPECT_GE(again.depth(), 0);
    EXPECT_GT(again.magnitude, 0);
}

} // namespace
} // namespace tremor::practice
