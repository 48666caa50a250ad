#include "ingest/emsc_source.h"
#include "ingest/feed_fixture.h"

#include <fmt/format.h>

namespace tremor {
namespace {

using testing::testDocument;
using testing::Texts;

constexpr std::string_view impossible = "Impossible connect to EMSC source, try later.";
const std::string header = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?><rss><channel>\n";
const std::string itemHead = "<item><title>ML 2.2  PYRENEES</title><link>https://a.example</link>";

std::string element(std::string_view name, std::string_view text) {
    return fmt::format("<{0}>{1}</{0}>", name, text);
}

struct Item {
    std::string latitude = "42.90";
    std::string longitude = "0.20";
    std::string depth = "2  ";
    std::string magnitude = "ML 2.2";
    std::string time = "2020-12-30 21:14:43 UTC";
};

std::string values(const Item& item) {
    return element("geo:lat", item.latitude) + element("geo:long", item.longitude) +
           element("emsc:depth", item.depth) + element("emsc:magnitude", item.magnitude) +
           element("emsc:time", item.time);
}

std::string itemLine(const Item& item = {}) {
    return itemHead + values(item) + "<pubDate>Wed, 30 Dec 2020 21:35:00 +0000</pubDate></item>\n";
}

std::string itemAt(const std::string& time) {
    Item item;
    item.time = time + " UTC";
    return itemLine(item);
}

const std::string fourParts = "<item></link><a>1</a><b>2</b><c>3</c><d>4\n";
const std::string event = "2020-12-30 21:14:43.000|42.90|0.20|2|2.2|EMSC";

Texts parsed(const std::string& document, std::size_t incomplete = 0) {
    const ParsedFeed feed = parseEmscEvents(document);
    EXPECT_EQ(feed.incomplete, incomplete);
    Texts texts;
    for (const ImportRecord& record : feed.records)
        texts.push_back(fmt::format("{}|{}|{}|{}|{}|{}", record.UTC, record.Latitude,
                                    record.Longitude, record.Depth, record.Magnitude,
                                    record.Source));
    return texts;
}

std::string depthOf(const std::string& text) {
    Item item;
    item.depth = text;
    const std::string document = header + itemLine(item);
    return std::string(parseEmscEvents(document).records.at(0).Depth);
}

std::string magnitudeOf(const std::string& text) {
    Item item;
    item.magnitude = text;
    const std::string document = header + itemLine(item);
    return std::string(parseEmscEvents(document).records.at(0).Magnitude);
}

class EmscSource : public testing::FeedFixture {
  protected:
    std::string target() const { return folder.file("FeedEmscEvents.csv"); }

    void read(std::string_view document) {
        testing::writeText(target(), document);
        source.readCsvEmsc();
    }
    Texts storedTimes() { return rows("select UTC from Events order by rowid"); }

    tremor::EmscSource source{context, download};
};

class EmscDownload : public EmscSource {};

TEST(ParseEmscEvents, TakesTheFiveValuesBehindTheLink) {
    EXPECT_EQ(parsed(header + itemLine()), Texts{event});
    const std::string document = header + "\n" + itemLine();
    EXPECT_EQ(parseEmscEvents(document).records.at(0).element, 2U);
}

TEST(ParseEmscEvents, NeverLooksAtTheFirstLine) {
    EXPECT_TRUE(parsed(itemLine() + header).empty());
    EXPECT_TRUE(parsed("<item>\n" + values({}) + "\n</item>\n").empty());
}

TEST(ParseEmscEvents, IgnoresLinesThatDoNotBeginWithAnItem) {
    EXPECT_TRUE(parsed(header + " " + itemLine() + "<Item>" + itemLine() + "\n\n").empty());
}

TEST(ParseEmscEvents, KeepsTheNumberOfADepth) {
    EXPECT_EQ(depthOf("10 km"), "10");
    EXPECT_EQ(depthOf("10 f"), "10");
    EXPECT_EQ(depthOf("13  "), "13");
    EXPECT_EQ(depthOf("1,5"), "1,5");
    EXPECT_EQ(depthOf("-3"), "3");
    EXPECT_EQ(depthOf(""), "");
}

TEST(ParseEmscEvents, KeepsEveryDigitOfAMagnitudeText) {
    EXPECT_EQ(magnitudeOf("mb 4.5"), "4.5");
    EXPECT_EQ(magnitudeOf("M1 4.5"), "14.5");
    EXPECT_EQ(magnitudeOf("ML 4,5"), "4,5");
    EXPECT_EQ(magnitudeOf("ML-0.3"), "0.3");
}

TEST(ParseEmscEvents, DropsTheZoneOfTheTimeAndAddsTheMilliseconds) {
    Item item;
    for (const std::string zone : {"", " ", " UTC", "  GMT  "}) {
        item.time = "2021-01-14 05:45:26" + zone;
        EXPECT_EQ(parsed(header + itemLine(item)).at(0).substr(0, 24), "2021-01-14 05:45:26.000|");
    }
}

TEST(ParseEmscEvents, KeepsTheSignsOfThePosition) {
    Item item;
    item.latitude = "-35.98";
    item.longitude = "-0.20";
    EXPECT_EQ(parsed(header + itemLine(item)),
              Texts{"2020-12-30 21:14:43.000|-35.98|-0.20|2|2.2|EMSC"});
}

TEST(ParseEmscEvents, TakesTheValuesOfAnItemWithoutALinkFromItsBeginning) {
    EXPECT_EQ(parsed(header + "<item>" + values({}) + "</item>\n"), Texts{event});
    // By place: the title stands where the latitude should.
    EXPECT_EQ(parsed(header + "<item>" + element("port", "1") + element("thing", "2") +
                     element("width", "3") + element("size", "4") + element("name", "5") +
                     "</item>\n"),
              Texts{"5.000|1|2|3|4|EMSC"});
}

TEST(ParseEmscEvents, CutsOtherTagsAtTheirEndsInAnyCase) {
    EXPECT_EQ(parsed(header + itemHead + "<A:PORT>4>2</A:PORT><A:THING>13</A:THING>" +
                     "<A:WIDTH>8 f</A:WIDTH><A:SIZE>M 4.5</A:SIZE>" +
                     "<A:NAME>2020-12-30 21:14:43 UTC</A:NAME></item>\n"),
              Texts{"2020-12-30 21:14:43.000|42|13|8|4.5|EMSC"});
}

TEST(ParseEmscEvents, KeepsAPartWholeWhenTheTagHasAnotherEnd) {
    EXPECT_EQ(parsed(header + "<item></link><a>1</a><b>2</b><c>3</c><d>4</d><e>5</e></item>\n"),
              Texts{"5.000|/link<a1|<b>2|3|4|EMSC"});
}

TEST(ParseEmscEvents, SeesTheNameOfAValueThatHoldsMarkup) {
    Item item;
    item.depth = "<10<br/> km<!-- fixed -->";
    item.magnitude = "<![CDATA[ML 2.2]]>";
    item.time = "<![CDATA[2020-12-30 21:14:43 UTC]]>";
    EXPECT_EQ(parsed(header + itemHead + values(item) + "</item>\n"),
              Texts{"2020-12-30 21:14:43.000|42.90|0.20|10|2.2|EMSC"});
}

TEST(ParseEmscEvents, GoesByTheNamesWhereTheOrderDiffers) {
    EXPECT_EQ(parsed(header + itemHead + element("status", "REVIEWED 7") +
                     element("emsc:time", "2020-12-30 21:14:43 UTC") +
                     element("emsc:magnitude", "ML 2.2") + element("geo:long", "0.20") +
                     element("geo:lat", "42.90") + element("emsc:depth", "2") + "</item>\n"),
              Texts{event});
}

TEST(ParseEmscEvents, LeavesItemsOutThatLackAValue) {
    const Item item;
    const std::string noDepth = itemHead + element("geo:lat", "1") + element("geo:long", "2") +
                                element("emsc:magnitude", "3") + element("emsc:time", item.time) +
                                element("pubDate", "Wed, 30 Dec 2020") + "</item>\n";
    const std::string noTime = itemHead + element("geo:lat", "1") + element("geo:long", "2") +
                               element("emsc:depth", "3") + element("emsc:magnitude", "4") +
                               "</item>\n";
    EXPECT_EQ(parsed(header + noDepth + noTime + fourParts + "<item>x\n" + itemLine(), 4),
              Texts{event});
}

TEST(ParseEmscEvents, JoinsAnItemThatStandsOnSeveralLines) {
    const std::string head = "  <title>ML 2.2</title>\r\n\t<link>https://a.example\r\n</link>\r\n";
    const std::string body = "    <geo:lat>42.90</geo:lat>\r\n  <geo:long>\r\n 0.20\r\n"
                             "</geo:long><emsc:depth>2</emsc:depth>\r\n"
                             "<emsc:magnitude>ML 2.2</emsc:magnitude>\r\n"
                             "<emsc:time>2020-12-30 21:14:43 UTC</emsc:time>\r\n";
    const std::string spread = " <item> \r\n" + head + body + "  </item>\r\n";
    EXPECT_EQ(parsed(header + spread + itemLine() + spread), (Texts{event, event, event}));
}

TEST(ParseEmscEvents, DropsASpreadItemThatIsNotClosed) {
    EXPECT_EQ(parsed(header + "<item>\n" + values({}) + "\n" + itemLine() + "</item>\n<item>\n" +
                     "<item>\n" + values({}) + "</item>\n<item>\n" + values({}) + "\n"),
              (Texts{event, event}));
}

TEST(ParseEmscEvents, CutAtEveryPlaceGivesOnlyWholeEvents) {
    const std::string document =
        header + itemLine() + "<item>\n" + values({}) + "\n</item>\n" + itemLine();
    ASSERT_EQ(parsed(document), (Texts{event, event, event}));
    for (std::size_t size = 0; size <= document.size(); ++size) {
        for (const std::string& text : parsed(document.substr(0, size)))
            EXPECT_EQ(text, event) << size;
    }
}

// Work that grows with the square of the length would not end.
TEST(ParseEmscEvents, ReadsLongLinesAndManyOpenItems) {
    std::string document = header;
    for (const std::string_view pattern : {"<", ">", "<a>"})
        document += "<item>" + testing::filled(pattern) + "\n"; // one part each
    document += "<item>" + testing::filled("</") + "\n" + testing::filled("<item>\n") +
                testing::filled(" x\n");
    const ParsedFeed feed = parseEmscEvents(document);
    EXPECT_EQ(feed.incomplete, 3U);
    EXPECT_EQ(feed.records.size(), 1U); // the one of empty parts
}

TEST_F(EmscSource, ImportsARealAnswer) {
    const std::string document = testDocument("emsc/emsc_rss_two_items.xml");
    read(document);
    EXPECT_EQ(log.messages, Texts{"2 Events imported from EMSC"});
    EXPECT_EQ(rows("select * from Events order by rowid"),
              (Texts{"2020-12-30 21:14:43.000|42.9|0.2|2.0|2.2|EMSC|",
                     "2020-12-30 17:57:54.000|35.98|23.49|3.0|2.8|EMSC|"}));
    read(document);
    EXPECT_EQ(log.messages.back(), "0 Events imported from EMSC");
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(EmscSource, ReportsAFailedConnectionForFewerThanTwoLines) {
    std::string document = header + itemLine();
    document.pop_back(); // the last line has no line feed
    for (const std::string& text : {std::string(), header, document, itemLine()}) {
        log.messages.clear();
        read(text);
        EXPECT_EQ(log.messages, Texts{std::string(impossible)}) << text;
    }
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(EmscSource, ComparesWithItsOwnRowsOnly) {
    store("2020-12-30 21:14:43.000", "USGS");
    read(header + itemLine());
    EXPECT_EQ(log.messages.back(), "1 Events imported from EMSC");
    read(header + itemLine());
    EXPECT_EQ(log.messages.back(), "0 Events imported from EMSC");
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(EmscSource, InsertsTheSecondOfTwoEqualTimesThatAreStoredAlready) {
    store("2020-12-30 21:14:43.000", "EMSC");
    read(header + itemLine() + itemLine());
    EXPECT_EQ(log.messages, Texts{"1 Events imported from EMSC"});
}

TEST_F(EmscSource, ReportsItemsWithFourPartsOnceAndImportsTheOthers) {
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    read(header + fourParts + itemLine() + fourParts);
    EXPECT_EQ(storedTimes(), Texts{"2020-12-30 21:14:43.000"});
    EXPECT_EQ(log.messages, (Texts{"1 Events imported from EMSC",
                                   "2 events lack a value and were not imported"}));
}

TEST_F(EmscSource, TreatsAMissingFileAsARuntimeErrorAndThenAsAFailedConnection) {
    harness.prompts.expectRuntimeError("readCsvEmsc (Form - panel)", ErrorAnswer::Ignore);
    source.readCsvEmsc();
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
}

TEST_F(EmscSource, LosesOnlyTheRowsWithApostrophesAndZeroBytes) {
    Item apostrophe;
    apostrophe.latitude = "'); drop table Events; --";
    Item zero;
    zero.longitude = std::string(1, '\0');
    zero.time = "2020-12-30 21:14:44 UTC";
    read(header + itemLine(apostrophe) + itemLine(zero) + itemAt("2020-12-30 21:14:45"));
    EXPECT_EQ(storedTimes(), Texts{"2020-12-30 21:14:45.000"});
    EXPECT_EQ(log.messages.at(0), "3 Events imported from EMSC");
    EXPECT_TRUE(log.messages.at(1).starts_with("2 of these events could not be stored"));
}

TEST_F(EmscSource, GetsThroughARandomBinary) {
    read(testing::randomBytes() + "\n" + itemLine());
    EXPECT_EQ(storedTimes(), Texts{"2020-12-30 21:14:43.000"});
}

TEST_F(EmscDownload, FetchesAndImportsTheFeed) {
    hosts.Emsc = "https://emsc.example";
    bool busy = false;
    transfer.course = [&](DownloadEvents& events, std::string_view path) {
        busy = session.AlternateBusy;
        EXPECT_EQ(status.maximum, 100);
        testing::writeText(std::string(path), header + itemLine());
        events.DownloadCompleted();
    };
    source.downloadCsvFromEmsc();
    EXPECT_TRUE(busy);
    EXPECT_EQ(transfer.url, "https://emsc.example/service/rss/rss.php?typ=emsc");
    EXPECT_EQ(transfer.target, target());
    EXPECT_EQ(transfer.chunkSize, 4096);
    EXPECT_FALSE(transfer.withoutStatusCheck);
    EXPECT_EQ(status.statusTexts, (Texts{"Syncing from EMSC...", "EMSC Synchronized"}));
    EXPECT_EQ(log.messages, Texts{"1 Events imported from EMSC"});
    EXPECT_FALSE(session.AlternateBusy);
    EXPECT_EQ(session.WaitCounter, 0);
}

TEST_F(EmscDownload, SaysSynchronizedEvenWhenTheFileWasTooShort) {
    servesDocument("");
    source.downloadCsvFromEmsc();
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
    EXPECT_EQ(status.statusTexts.back(), "EMSC Synchronized");
}

TEST_F(EmscDownload, FailsAfterAMinuteWhenTheTransferFailed) {
    testing::writeText(target(), header + itemLine());
    fails();
    source.downloadCsvFromEmsc();
    EXPECT_EQ(clock.steady(), std::chrono::seconds(60));
    EXPECT_EQ(log.messages, Texts{"EMSC Synchronization failed"});
    EXPECT_EQ(eventCount(), 0);
    EXPECT_FALSE(session.AlternateBusy);
}

TEST_F(EmscDownload, KeepsAlternateBusyOnWhenTheProgramClosesDuringTheWait) {
    fails();
    clock.onPump = [&] { session.WaitCounter = Session::waitCounterClosing; };
    source.downloadCsvFromEmsc();
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(session.AlternateBusy);
}

} // namespace
} // namespace tremor
