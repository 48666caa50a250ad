#include "practice_feeds/ingv_feed.h"
#include "practice_feeds/practice_documents.h"

#include <algorithm>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;
using Query = std::map<std::string, std::string>;

// The clock stands so that the catalogue keeps the times of its document: they are moved by 0.
class IngvFeedTest : public ::testing::Test {
  protected:
    Answer ask(Query query) {
        query.emplace("format", "text");
        return feed.answer({"/fdsnws/event/1/query", std::move(query)});
    }
    // The events of an answer of status 200; none for 204.
    std::vector<FdsnEvent> events(const Query& query) {
        const Answer answer = ask(query);
        if (answer.status == 204) {
            EXPECT_EQ(answer.body, "");
            return {};
        }
        EXPECT_EQ(answer.status, 200) << answer.body;
        return parseFdsnDocument(answer.body).events;
    }

    UtcTime now = recentDocument().events.back().time + 5min;
    IngvFeed feed{{recentDocument(), drawFrom(laterDocument()), {}, [this] { return now; }}, false};
};

TEST_F(IngvFeedTest, AnswersTheProgramsOwnRequestWithTheDocumentAsTheServiceGaveIt) {
    const Answer answer = ask({{"starttime", "2026-06-15 00:00:00"},
                               {"endtime", "2026-06-29 23:59:59"},
                               {"minmag", "-1"},
                               {"maxmag", "10"},
                               {"minlat", "35"},
                               {"maxlat", "48"},
                               {"minlon", "6"},
                               {"maxlon", "19"},
                               {"minversion", "100"},
                               {"orderby", "time-asc"},
                               {"limit", "4000"}});
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.contentType, "text/plain;charset=UTF-8");
    EXPECT_EQ(answer.body, recentText());
}

TEST_F(IngvFeedTest, SelectsByTimeWithBothEndsIncluded) {
    const auto found =
        events({{"starttime", "2026-06-16T01:05:29.45"}, {"endtime", "2026-06-16T02:34:15.330"}});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found.front().id, "46234542");
    EXPECT_EQ(found.back().id, "46234372");
    EXPECT_TRUE(
        events({{"starttime", "2026-06-16T01:05:29.46"}, {"endtime", "2026-06-16T02:34:15.32"}})
            .empty());
}

struct Bound {
    const char* key;
    const char* value;
    bool (*holds)(const FdsnEvent&);
};

TEST_F(IngvFeedTest, SelectsByBoxAndMagnitude) {
    const std::size_t all = events({}).size();
    for (const Bound& bound :
         {Bound{"minlat", "42", [](const FdsnEvent& e) { return e.latitude >= 42; }},
          Bound{"maxlat", "42", [](const FdsnEvent& e) { return e.latitude <= 42; }},
          Bound{"minlon", "13", [](const FdsnEvent& e) { return e.longitude >= 13; }},
          Bound{"maxlon", "13", [](const FdsnEvent& e) { return e.longitude <= 13; }},
          Bound{"minmag", "2.5", [](const FdsnEvent& e) { return e.magnitude >= 2.5; }},
          Bound{"maxmag", "2.5", [](const FdsnEvent& e) { return e.magnitude <= 2.5; }}}) {
        const auto found = events({{bound.key, bound.value}});
        EXPECT_FALSE(found.empty()) << bound.key;
        EXPECT_LT(found.size(), all) << bound.key;
        EXPECT_TRUE(std::all_of(found.begin(), found.end(), bound.holds)) << bound.key;
        const FdsnDocument whole = recentDocument();
        EXPECT_EQ(found.size(), static_cast<std::size_t>(std::count_if(
                                    whole.events.begin(), whole.events.end(), bound.holds)))
            << bound.key;
    }
}

TEST_F(IngvFeedTest, OrdersByTimeNewestFirstUnlessToldOtherwiseAndCutsAtTheLimit) {
    const auto oldestFirst = events({{"orderby", "time-asc"}, {"limit", "3"}});
    ASSERT_EQ(oldestFirst.size(), 3u);
    EXPECT_EQ(oldestFirst[0].id, "46224912");
    EXPECT_LT(oldestFirst[0].time, oldestFirst[2].time);
    const auto newestFirst = events({{"orderby", "time"}, {"limit", "3"}});
    EXPECT_EQ(newestFirst[0].id, recentDocument().events.back().id);
    EXPECT_GT(newestFirst[0].time, newestFirst[2].time);
    EXPECT_EQ(events({{"limit", "1"}})[0].id, newestFirst[0].id);
}

TEST_F(IngvFeedTest, AnswersNoEventsWithStatus204) {
    EXPECT_EQ(ask({{"minmag", "9"}}).status, 204);
    EXPECT_EQ(ask({{"starttime", "2030-01-01"}}).status, 204);
    EXPECT_EQ(ask({{"limit", "0"}}).status, 204);
}

TEST_F(IngvFeedTest, AnswersABadValueWithStatus400AndNamesIt) {
    for (const auto& [key, value] : Query{{"starttime", "yesterday"},
                                          {"endtime", ""},
                                          {"minlat", "north"},
                                          {"maxmag", "3,5"},
                                          {"limit", "-1"},
                                          {"orderby", "magnitude"},
                                          {"format", "xml"}}) {
        const Answer answer = ask({{key, value}});
        EXPECT_EQ(answer.status, 400) << key;
        EXPECT_NE(answer.body.find("Bad " + key + " value: " + value), std::string::npos) << key;
    }
    EXPECT_EQ(feed.answer({"/fdsnws/event/1/query", {}}).status, 400);
}

TEST_F(IngvFeedTest, ServesAnAddedEventAtOnceAndADueOneInTime) {
    const std::size_t before = events({}).size();
    const std::string added = feed.addEvent({});
    EXPECT_EQ(events({}).size(), before + 1);
    EXPECT_EQ(events({{"limit", "1"}})[0].line(), added);
    now += 180s;
    EXPECT_EQ(events({}).size(), before + 2);
    EXPECT_EQ(parseFdsnDocument(feed.served()).events.size(), before + 2);
}

TEST_F(IngvFeedTest, AnswersTheWholeDocumentToAnyGoodRequestWhenFixed) {
    CatalogueOptions options;
    options.fixed = true;
    IngvFeed fixed({recentDocument(), drawFrom(laterDocument()), options, [this] { return now; }},
                   true);
    const Answer answer =
        fixed.answer({"/fdsnws/event/1/query", {{"format", "text"}, {"minmag", "9"}}});
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, recentText());
    EXPECT_EQ(fixed.answer({"/fdsnws/event/1/query", {{"format", "xml"}}}).status, 400);
}

} // namespace
} // namespace tremor::practice
