#include "ingest/feed_fixture.h"
#include "ingest/usgs_source.h"

#include <fmt/format.h>

namespace tremor {
namespace {

using testing::testDocument;
using testing::Texts;

constexpr std::string_view impossible = "Impossible connect to USGS source, try later.";
const std::string header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const std::string eventHead = "<event catalog:datasource=\"us\">";

std::string value(std::string_view text) {
    return fmt::format("<value>{}</value>", text);
}

std::string element(std::string_view name, std::string_view text) {
    return fmt::format("<{0}>{1}</{0}>", name, value(text));
}

std::string eventLine(std::string_view time, std::string_view depth = "10000",
                      std::string_view magnitude = "5.6") {
    return eventHead + element("time", time) + element("longitude", "-173.6821") +
           element("latitude", "-19.4045") + element("depth", depth) + element("mag", magnitude) +
           "</event>\n";
}

const std::string time1 = "2021-01-14T05:45:26.600Z";
const std::string time2 = "2021-01-14T05:45:27.600Z";

class UsgsSource : public testing::FeedFixture {
  protected:
    std::string target() const { return folder.file("queryUSGS.csv"); }

    void read(std::string_view document) {
        testing::writeText(target(), document);
        source.readCsvUSGS();
    }
    Texts storedTimes() { return rows("select UTC from Events order by rowid"); }

    tremor::UsgsSource source{context, download, NumberLocale::comma()};
};

class UsgsDownload : public UsgsSource {};

// The records of a document as texts, under both number locales alike.
Texts parsed(const std::string& document, std::size_t incomplete = 0) {
    const auto parse = [&](const NumberLocale& locale) {
        const ParsedFeed feed = parseUsgsEvents(document, locale);
        EXPECT_EQ(feed.incomplete, incomplete);
        Texts texts;
        for (const ImportRecord& record : feed.records)
            texts.push_back(fmt::format("{} {}|{}|{}|{}|{}|{}", record.element, record.UTC,
                                        record.Latitude, record.Longitude, record.Depth,
                                        record.Magnitude, record.Source));
        return texts;
    };
    Texts texts = parse(NumberLocale::point());
    EXPECT_EQ(parse(NumberLocale::comma()), texts);
    return texts;
}

std::string depthOf(std::string_view metres, const NumberLocale& locale = NumberLocale::comma()) {
    const std::string document = eventLine(time1, metres);
    return std::string(parseUsgsEvents(document, locale).records.at(0).Depth);
}

TEST(UsgsQuery, AsksForBareDatesOnly) {
    EXPECT_EQ(usgsQuery("2014-03-06", "2014-03-07"),
              "/fdsnws/event/1/query?starttime=2014-03-06&endtime=2014-03-07");
}

TEST(ParseUsgsEvents, TakesNamelessValuesByTheirPlace) {
    EXPECT_EQ(parsed(header + eventHead + value(time1) + value("42.1") + value("13.2") +
                     value("8400") + value("2.1") + value("9") + "\n"),
              Texts{"1 2021-01-14 05:45:26.600|42.1|13.2|8.4|2.1|USGS"});
}

TEST(ParseUsgsEvents, TakesValuesInElementsOfOtherNamesByTheirPlace) {
    EXPECT_EQ(parsed(eventHead + element("a", time1) + element("b", "42.1") + element("c", "13.2") +
                     element("d", "8400") + element("e", "2.1") + "\n"),
              Texts{"0 2021-01-14 05:45:26.600|42.1|13.2|8.4|2.1|USGS"});
}

TEST(ParseUsgsEvents, TakesNamedValuesByTheirNames) {
    EXPECT_EQ(parsed(eventLine(time1)),
              Texts{"0 2021-01-14 05:45:26.600|-19.4045|-173.6821|10|5.6|USGS"});
}

TEST(ParseUsgsEvents, SeesTheNameInATagWithPrefixAttributesAndBlanks) {
    EXPECT_EQ(parsed(eventHead + element("time", time1) +
                     "<q:longitude unit=\"deg\">  <value>13.2</value></q:longitude>" +
                     element("latitude", "42.1") + element("depth", "0") + element("mag", "2.1") +
                     "\n"),
              Texts{"0 2021-01-14 05:45:26.600|42.1|13.2|0|2.1|USGS"});
}

TEST(ParseUsgsEvents, SeesTheNameBehindAnUncertaintyThatStandsBeforeTheValue) {
    const auto uncertain = [](std::string_view name, std::string_view text) {
        return fmt::format("<{0}><uncertainty>0.1</uncertainty><!-- km --><flag/>{1}</{0}>", name,
                           value(text));
    };
    EXPECT_EQ(parsed(eventHead + uncertain("time", time1) + uncertain("longitude", "13.2") +
                     uncertain("latitude", "42.1") + uncertain("depth", "8400") +
                     uncertain("mag", "2.1") + "\n"),
              Texts{"0 2021-01-14 05:45:26.600|42.1|13.2|8.4|2.1|USGS"});
}

TEST(ParseUsgsEvents, PassesOverFurtherOriginsAndMomentTensors) {
    EXPECT_EQ(parsed(eventHead + element("scalarMoment", "1E+19") + element("time", time1) +
                     element("longitude", "13.2") + element("latitude", "42.1") +
                     element("depth", "8400") + element("time", time2) + element("longitude", "1") +
                     element("latitude", "2") + element("depth", "3") + element("mag", "2.1") +
                     element("mag", "9") + "\n"),
              Texts{"0 2021-01-14 05:45:26.600|42.1|13.2|8.4|2.1|USGS"});
}

TEST(ParseUsgsEvents, IgnoresLinesThatDoNotBeginWithAnEvent) {
    const std::string line = eventLine(time1);
    EXPECT_TRUE(parsed(" " + line + "<event publicID=\"x\">" + line + "\n\n" +
                       "<Event catalog:datasource=" + line)
                    .empty());
}

TEST(ParseUsgsEvents, AcceptsATimeWithoutZ) {
    EXPECT_EQ(parsed(eventLine("2021-01-14 05:45:26")).at(0).substr(0, 22),
              "0 2021-01-14 05:45:26|");
}

TEST(ParseUsgsEvents, GivesTheDepthInKilometresWithAPoint) {
    EXPECT_EQ(depthOf("10000"), "10");
    EXPECT_EQ(depthOf("12345"), "12.345");
    EXPECT_EQ(depthOf("12345", NumberLocale::point()), "12.345");
    EXPECT_EQ(depthOf("8400.5"), "8.4005");
    EXPECT_EQ(depthOf("8400.5", NumberLocale::point()), "8.4005");
    EXPECT_EQ(depthOf("-1140"), "-1.14");
    EXPECT_EQ(depthOf("-0"), "0");
}

TEST(ParseUsgsEvents, GivesTheDepth0ForWhatIsNoNumber) {
    for (const std::string_view metres : {"", "deep", "1e999", "10 km"})
        EXPECT_EQ(depthOf(metres), "0") << metres;
}

TEST(ParseUsgsEvents, LeavesEventsOutThatLackAValue) {
    const std::string noMagnitude = eventHead + element("time", time1) + element("longitude", "1") +
                                    element("latitude", "2") + element("depth", "3") + "\n";
    const std::string noDepth = eventHead + element("time", time1) + element("longitude", "1") +
                                element("latitude", "2") + element("mag", "3") + "\n";
    const std::string fourPlaces =
        eventHead + value("1") + value("2") + value("3") + value("4") + "\n";
    const std::string notClosed =
        eventHead + value("1") + value("2") + value("3") + value("4") + "<value>5</event>\n";
    EXPECT_EQ(
        parsed(noMagnitude + noDepth + fourPlaces + notClosed + eventHead + "\n" + eventLine(time1),
               5)
            .size(),
        1U);
}

TEST(ParseUsgsEvents, CutAtEveryPlaceGivesOnlyWholeEvents) {
    const std::string document = header + eventLine(time1) + eventLine(time2);
    const Texts whole = parsed(document);
    ASSERT_EQ(whole.size(), 2U);
    for (std::size_t size = 0; size <= document.size(); ++size) {
        const Texts cut = parsed(document.substr(0, size));
        EXPECT_TRUE(std::equal(cut.begin(), cut.end(), whole.begin())) << size;
    }
}

TEST(ParseUsgsEvents, CutAtEveryPlaceInsideALineGivesNoHalfValue) {
    std::string line = eventLine(time1);
    line.pop_back();
    const std::size_t end = line.rfind("</value>") + std::string("</value>").size();
    for (std::size_t size = eventHead.size(); size < end; ++size)
        EXPECT_TRUE(parsed(line.substr(0, size) + "\n", 1).empty()) << size;
}

TEST_F(UsgsSource, ImportsARealAnswer) {
    read(testDocument("usgs/usgs_fdsn_query_2018.xml"));
    EXPECT_EQ(log.messages, Texts{"7 Events imported from USGS"});
    EXPECT_EQ(rows("select * from Events order by UTC desc limit 2"),
              (Texts{"2018-06-04 01:50:48.520|19.4053333|-155.2843333|-1.14|5.5|USGS|",
                     "2018-06-03 00:48:09.090|-19.4045|-173.6821|10.0|5.6|USGS|"}));
    read(testDocument("usgs/usgs_fdsn_query_2018.xml"));
    EXPECT_EQ(log.messages.back(), "0 Events imported from USGS");
    EXPECT_EQ(eventCount(), 7);
}

TEST_F(UsgsSource, ImportsNothingFromAnAnswerSpreadOverManyLines) {
    read(testDocument("usgs/usgs_one_event_reindented.xml"));
    EXPECT_EQ(log.messages, Texts{"0 Events imported from USGS"});
    EXPECT_EQ(status.eventsTexts, Texts{"0 / 0"});
}

TEST_F(UsgsSource, ReportsAFailedConnectionForFewerThanTwoLines) {
    std::string document = header + eventLine(time1);
    document.pop_back(); // the last line has no line feed
    for (const std::string& text : {std::string(), header, document, eventLine(time1)}) {
        log.messages.clear();
        read(text);
        EXPECT_EQ(log.messages, Texts{std::string(impossible)}) << text;
    }
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(UsgsSource, DropsBothOfTwoEqualTimesThatAreStoredAlready) {
    store("2021-01-14 05:45:26.600", "USGS");
    read(eventLine(time1) + eventLine(time1));
    EXPECT_EQ(log.messages, Texts{"0 Events imported from USGS"});
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(UsgsSource, InsertsBothOfTwoEqualTimesThatAreNew) {
    read(eventLine(time1) + eventLine(time1));
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(UsgsSource, InsertsAnEventThatOtherSourcesHaveReported) {
    store("2021-01-14 05:45:26.600", "EMSC");
    store("2021-01-14 05:45:26.600", "SURVEY-INGV");
    read(header + eventLine(time1));
    EXPECT_EQ(eventCount(), 3);
}

TEST_F(UsgsSource, ReportsEventsWithFourValuesOnceAndImportsTheOthers) {
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    const std::string four = eventHead + value("1") + value("2") + value("3") + value("4") + "\n";
    read(four + eventLine(time1) + four);
    EXPECT_EQ(storedTimes(), Texts{"2021-01-14 05:45:26.600"});
    EXPECT_EQ(log.messages, (Texts{"1 Events imported from USGS",
                                   "2 events lack a value and were not imported"}));
}

TEST_F(UsgsSource, StandsOnTheCallStackUnderTheNameOfItsNeighbour) {
    harness.prompts.expectRuntimeError("readCsvEmsc (Form - panel)", ErrorAnswer::Ignore);
    source.readCsvUSGS(); // the file is missing
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(UsgsSource, LosesOnlyTheRowsWithApostrophesAndZeroBytes) {
    const std::string zero(1, '\0');
    read(eventLine(time1, "1", "5'6") + eventLine(time1 + zero) +
         eventLine("'); drop table Events; --") + eventLine(time2));
    EXPECT_EQ(storedTimes(), Texts{"2021-01-14 05:45:27.600"});
    EXPECT_EQ(log.messages.at(0), "4 Events imported from USGS");
    EXPECT_TRUE(log.messages.at(1).starts_with("3 of these events could not be stored"));
}

TEST_F(UsgsSource, GetsThroughARandomBinary) {
    read(testing::randomBytes() + "\n" + eventLine(time1));
    EXPECT_EQ(storedTimes(), Texts{"2021-01-14 05:45:26.600"});
}

// Work that grows with the square of the length would not end.
TEST_F(UsgsSource, ReadsLongLines) {
    std::string document;
    std::size_t incomplete = 0;
    for (const std::string_view pattern : {"<", "<value>", "</value>", " "}) {
        document += eventHead + testing::filled(pattern) + "\n";
        ++incomplete;
    }
    document += eventHead + testing::filled("<value></value>") + "\n"; // an event of empty texts
    const ParsedFeed feed = parseUsgsEvents(document, NumberLocale::point());
    EXPECT_EQ(feed.incomplete, incomplete);
    EXPECT_EQ(feed.records.size(), 1U);
}

TEST_F(UsgsDownload, FetchesAndImportsTheLastDays) {
    settings.AlternateLastNHours = 48;
    hosts.Usgs = "https://usgs.example";
    clock.setNow(std::chrono::local_days(std::chrono::year(2024) / 3 / 1) + std::chrono::hours(1));
    status.setProgressRange(0, 7);
    bool busy = false;
    transfer.course = [&](DownloadEvents& events, std::string_view path) {
        busy = session.AlternateBusy;
        EXPECT_EQ(status.maximum, 7); // the range stays as it was
        EXPECT_FALSE(session.PrimaryBusy);
        testing::writeText(std::string(path), header + eventLine(time1));
        events.DownloadCompleted();
    };
    source.downloadCsvFromUSGS();
    EXPECT_TRUE(busy);
    EXPECT_EQ(transfer.url, "https://usgs.example" + usgsQuery("2024-02-28", "2024-03-01"));
    EXPECT_EQ(transfer.target, target());
    EXPECT_EQ(transfer.chunkSize, 4096);
    EXPECT_FALSE(transfer.withoutStatusCheck);
    EXPECT_EQ(status.statusTexts, (Texts{"Syncing from USGS...", "USGS Synchronized"}));
    EXPECT_EQ(log.messages, Texts{"1 Events imported from USGS"});
    EXPECT_FALSE(session.AlternateBusy);
}

TEST_F(UsgsDownload, SaysSynchronizedEvenWhenTheFileWasTooShort) {
    servesDocument("");
    source.downloadCsvFromUSGS();
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
    EXPECT_EQ(status.statusTexts.back(), "USGS Synchronized");
}

TEST_F(UsgsDownload, FailsAfterAMinuteWhenTheTransferFailed) {
    testing::writeText(target(), header + eventLine(time1));
    fails();
    source.downloadCsvFromUSGS();
    EXPECT_EQ(clock.steady(), std::chrono::seconds(60));
    EXPECT_EQ(log.messages, Texts{"USGS Synchronization failed"});
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_FALSE(session.AlternateBusy);
}

TEST_F(UsgsDownload, KeepsAlternateBusyOnWhenTheProgramClosesDuringTheWait) {
    fails();
    clock.onPump = [&] { session.WaitCounter = Session::waitCounterClosing; };
    source.downloadCsvFromUSGS();
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(session.AlternateBusy);
    EXPECT_GE(session.WaitCounter, Session::waitCounterClosing);
}

} // namespace
} // namespace tremor
