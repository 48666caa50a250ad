#include "ingest/emsc_source.h"
#include "practice_feeds/emsc_feed.h"
#include "practice_feeds/epicentres.h"
#include "practice_feeds/practice_documents.h"

#include <fmt/format.h>

namespace tremor::practice {
namespace {

using namespace std::chrono_literals;

class EmscFeedTest : public ::testing::Test {
  protected:
    GrowingCatalogue catalogue() const {
        return madeUpCatalogue(euroMediterraneanReporting(), 60, 24h, {}, [this] { return now; });
    }
    std::vector<std::string> lines() {
        const Answer answer = feed.answer({"/service/rss/rss.php", {{"typ", "emsc"}}});
        EXPECT_EQ(answer.status, 200);
        return linesOf(answer.body);
    }

    UtcTime now = at("2031-01-02T03:04:05.678901");
    EmscFeed feed{catalogue()};
};

TEST_F(EmscFeedTest, WritesTheDocumentAsTheServiceDoes) {
    const std::vector<std::string> real =
        linesOf(fileText(TREMOR_TEST_DATA "/emsc/emsc_rss_two_items.xml"));
    const std::vector<std::string> own = lines();
    ASSERT_EQ(own.size(), 8u + 50u);
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(own[i], real[i]);
    EXPECT_EQ(tagsOf(own[7]), tagsOf(real[7]));
    EXPECT_EQ(own.back(), real.back());
}

TEST_F(EmscFeedTest, IsReadByTheProgramAsTheLatestFiftyEvents) {
    std::string text;
    for (const std::string& line : lines())
        text += line + "\n";
    const ParsedFeed parsed = parseEmscEvents(text);
    EXPECT_EQ(parsed.incomplete, 0u);
    ASSERT_EQ(parsed.records.size(), 50u);
    const GrowingCatalogue expected = catalogue();
    for (std::size_t i = 0; i < 50; ++i) {
        const ImportRecord& record = parsed.records[i];
        const FdsnEvent& event = expected.events()[59 - i];
        std::string utc = formatUtc(event.time).substr(0, 19) + ".000";
        utc[10] = ' ';
        EXPECT_EQ(record.UTC, utc);
        EXPECT_EQ(record.Latitude, fmt::format("{:.2f}", event.latitude));
        EXPECT_EQ(record.Longitude, fmt::format("{:.2f}", event.longitude));
        EXPECT_EQ(record.Depth, fmt::format("{:.0f}", std::round(event.depth())));
        EXPECT_EQ(record.Magnitude, fmt::format("{:.1f}", event.magnitude));
    }
}

TEST_F(EmscFeedTest, MarksADepthThatWasFixed) {
    std::string text;
    for (const std::string& line : lines())
        text += line;
    EXPECT_NE(text.find("<emsc:depth>10 f</emsc:depth>"), std::string::npos);
    EXPECT_EQ(text.find("<emsc:depth>10  </emsc:depth>"), std::string::npos);
}

TEST_F(EmscFeedTest, ServesAnAddedEventFirstAndADueOneInTime) {
    const std::string added = feed.addEvent({});
    EXPECT_EQ(lines()[7] + "\n", added);
    EXPECT_EQ(lines().size(), 58u); // still fifty
    now += 180s;
    EXPECT_EQ(lines()[8] + "\n", added);
    EXPECT_NE(feed.served().find(added), std::string::npos);
}

} // namespace
} // namespace tremor::practice
