#include "ingest/usgs_source.h"
#include "practice_feeds/epicentres.h"
#include "practice_feeds/practice_documents.h"
#include "practice_feeds/usgs_feed.h"

#include <fmt/format.h>

#include <algorithm>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;
using Query = std::map<std::string, std::string>;

std::string realDocument() {
    return fileText(TREMOR_TEST_DATA "/usgs/usgs_fdsn_query_2018.xml");
}

class UsgsFeedTest : public ::testing::Test {
  protected:
    GrowingCatalogue catalogue() const {
        return madeUpCatalogue(worldReporting(), 240, 240h, {}, [this] { return now; });
    }
    Answer ask(const Query& query) { return feed.answer({"/usgs/fdsnws/event/1/query", query}); }
    std::vector<std::string> lines(const Query& query) {
        std::vector<std::string> found;
        for (const std::string& line : linesOf(ask(query).body))
            if (line.starts_with("<event "))
                found.push_back(line);
        return found;
    }

    UtcTime now = at("2031-01-02T03:04:05.678901");
    UsgsFeed feed{catalogue()};
};

TEST_F(UsgsFeedTest, WritesItsEventsElementByElementAsTheServiceDoes) {
    const std::vector<std::string> real = linesOf(realDocument());
    const std::vector<std::string> own = linesOf(ask({{"limit", "1"}}).body);
    ASSERT_EQ(own.size(), 6u);
    EXPECT_EQ(own[0], real[0]);
    EXPECT_EQ(own[1], real[1]);
    EXPECT_EQ(tagsOf(own[2]), tagsOf(real[2]));
    EXPECT_EQ(tagsOf(own[3]), tagsOf(real[4])); // an event of the data centre "us"
    EXPECT_EQ(tagsOf(own[4]), tagsOf(real[real.size() - 2]));
    EXPECT_EQ(own[5], real.back());
    EXPECT_FALSE(ask({}).body.ends_with('\n'));
}

TEST_F(UsgsFeedTest, IsReadByTheProgram) {
    const std::string body = ask({{"orderby", "time-asc"}}).body;
    const ParsedFeed parsed = parseUsgsEvents(body, NumberLocale::comma());
    EXPECT_EQ(parsed.incomplete, 0u);
    const GrowingCatalogue expected = catalogue();
    ASSERT_EQ(parsed.records.size(), expected.events().size());
    for (std::size_t i = 0; i < parsed.records.size(); ++i) {
        const ImportRecord& record = parsed.records[i];
        const FdsnEvent& event = expected.events()[i];
        std::string utc = formatUtc(event.time).substr(0, 23);
        utc[10] = ' ';
        EXPECT_EQ(record.UTC, utc);
        EXPECT_EQ(record.Latitude, fmt::format("{:.4f}", event.latitude));
        EXPECT_EQ(record.Longitude, fmt::format("{:.4f}", event.longitude));
        EXPECT_EQ(record.Depth, fmt::format("{}", event.depth()));
        EXPECT_EQ(record.Magnitude, fmt::format("{:.1f}", event.magnitude));
    }
}

TEST_F(UsgsFeedTest, EndsTheProgramsWindowWhereItsLastDayBegins) {
    const auto found = lines({{"starttime", "2031-01-01"}, {"endtime", "2031-01-02"}});
    EXPECT_EQ(found.size(), 24u);
    for (const std::string& line : found)
        EXPECT_NE(line.find("<time><value>2031-01-01T"), std::string::npos) << line;
}

TEST_F(UsgsFeedTest, SelectsByMagnitudeAndLimitNewestFirst) {
    const auto strong = lines({{"minmagnitude", "5"}});
    EXPECT_FALSE(strong.empty());
    EXPECT_LT(strong.size(), 80u);
    const auto three = lines({{"limit", "3"}});
    ASSERT_EQ(three.size(), 3u);
    EXPECT_NE(three[0].find("<value>2031-01-02T02:59:"), std::string::npos) << three[0];
}

TEST_F(UsgsFeedTest, AnswersNoEventsWithStatus204AndABadValueWithStatus400) {
    EXPECT_EQ(ask({{"starttime", "2040-01-01"}}).status, 204);
    for (const auto& [key, value] : Query{{"starttime", "monday"},
                                          {"endtime", "2031-02-30"},
                                          {"minmagnitude", "big"},
                                          {"limit", "many"},
                                          {"format", "geojson"}}) {
        const Answer answer = ask({{key, value}});
        EXPECT_EQ(answer.status, 400) << key;
        EXPECT_TRUE(answer.body.starts_with("Error 400: Bad Request\n\nBad " + key)) << answer.body;
    }
}

TEST_F(UsgsFeedTest, NamesTheRequestWithoutBreakingTheDocument) {
    const std::string body =
        ask({{"limit", "1"}, {"starttime", "2031-01-01T00:00:00"}, {"x", "\"><event>"}}).body;
    EXPECT_NE(body.find("<eventParameters publicID=\"quakeml:earthquake.usgs.gov/fdsnws/event/1/"
                        "query?limit=1&amp;starttime=2031-01-01T00%3A00%3A00&amp;"
                        "x=%22%3E%3Cevent%3E\">"),
              std::string::npos)
        << body.substr(0, 600);
}

TEST_F(UsgsFeedTest, ServesAnAddedEventAtOnceADueOneInTimeAndALateOneInItsDay) {
    const std::string added = feed.addEvent({});
    EXPECT_EQ(lines({{"limit", "1"}})[0] + "\n", added);
    now += 180s;
    EXPECT_EQ(lines({}).size(), 242u);
    const std::string late = feed.addEvent({.age = 24h});
    const auto yesterday = lines({{"starttime", "2031-01-01"}, {"endtime", "2031-01-02"}});
    EXPECT_EQ(std::count(yesterday.begin(), yesterday.end(), late.substr(0, late.size() - 1)), 1);
    EXPECT_NE(feed.served().find(late), std::string::npos);
}

} // namespace
} // namespace tremor::practice
