#include "core/common_text.h"
#include "ingest/ingv_fixture.h"
#include "ingest/ingv_source.h"

namespace tremor {
namespace {

using testing::impossible;
using testing::ingvDocument;
using testing::ingvHeader;
using testing::ingvLine;
using testing::Texts;

class IngvSource : public testing::IngvFixture {
  protected:
    // The document's events as the catalogue must hold them, taken apart by other means.
    static Texts expectedRows(const std::string& document) {
        Texts rows;
        for (const std::string_view line : split(document, '\n')) {
            if (line.empty() || line.front() == '#')
                continue;
            const auto fields = split(line, '|');
            const std::string time(fields[1]);
            rows.push_back(time.substr(0, 10) + " " + time.substr(11, 12) + "|" +
                           std::string(fields[5]));
        }
        return rows;
    }

    Texts storedRows() { return rows("select UTC, Source from Events order by rowid"); }
};

class IngvDownload : public IngvSource {};

TEST(IngvQuery, AsksForWholeDaysInAFixedBox) {
    EXPECT_EQ(ingvQuery("2014-03-06", "2014-03-07"),
              "/fdsnws/event/1/query?starttime=2014-03-06+00%3A00%3A00&endtime=2014-03-07"
              "+23%3A59%3A59&minmag=-1&maxmag=10&minlat=35&maxlat=48&minlon=6&maxlon=19"
              "&minversion=100&orderby=time-asc&format=text&limit=4000");
}

TEST(ParseIngvEvents, TakesTheFieldsByTheirPlace) {
    std::string text =
        ingvHeader + "1|2021-01-14T05:45:26.600000|42.1|13.2|8.4|AUTHOR|CAT|C|ID|ML|2.1|MA|P|T\n";
    const auto records = parseIngvEvents(text);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].element, 1U);
    EXPECT_EQ(records[0].UTC, "2021-01-14 05:45:26.600");
    EXPECT_EQ(records[0].Latitude, "42.1");
    EXPECT_EQ(records[0].Longitude, "13.2");
    EXPECT_EQ(records[0].Depth, "8.4");
    EXPECT_EQ(records[0].Source, "AUTHOR");
    EXPECT_EQ(records[0].Magnitude, "2.1");
    EXPECT_FALSE(records[0].IsDuplicate);
}

TEST(ParseIngvEvents, IgnoresALineWith11BarsAndTakesOneWith12) {
    std::string text = "0|Time.000|2|3|4|5|6|7|8|9|10|11\n0|Time.000|2|3|4|5|6|7|8|9|10|11|\n";
    const auto records = parseIngvEvents(text);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].element, 1U);
    EXPECT_EQ(records[0].Magnitude, "10");
}

TEST(ParseIngvEvents, ReplacesEveryTInTheTimeAndNowhereElse) {
    std::string text = "T|TwoTimesT.000|T2|T3|T4|TEST|6|7|8|9|T10|11|12\n";
    const auto records = parseIngvEvents(text);
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].UTC, " wo imes .");
    EXPECT_EQ(records[0].Source, "TEST");
    EXPECT_EQ(records[0].Magnitude, "T10");
}

TEST(ParseIngvEvents, GivesNoEventForATimeOfThreeCharactersOrFewer) {
    for (const std::string time : {"", "T", "26", "260"}) {
        std::string text = ingvLine(time) + ingvLine("2600");
        const auto records = parseIngvEvents(text);
        ASSERT_EQ(records.size(), 1U) << time;
        EXPECT_EQ(records[0].UTC, "2");
    }
}

TEST_F(IngvSource, ImportsOneEventBehindAHeader) {
    read(ingvHeader + ingvLine("2021-01-14T05:45:26.600000"));
    EXPECT_EQ(storedRows(), Texts{"2021-01-14 05:45:26.600|SURVEY-INGV"});
    EXPECT_EQ(log.messages, Texts{"1 Events imported from INGV"});
}

TEST_F(IngvSource, LosesTheLastLineWithoutALineFeedAndReportsAFailedConnection) {
    std::string document = ingvHeader + ingvLine("2021-01-14T05:45:26.600000");
    document.pop_back();
    read(document);
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
    EXPECT_TRUE(status.eventsTexts.empty()); // no transaction, no progress
}

TEST_F(IngvSource, ReportsAFailedConnectionForAHeaderAlone) {
    read(ingvHeader);
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
}

TEST_F(IngvSource, ImportsAPresentDayAnswer) {
    const std::string document = ingvDocument("ingv_2026-06-15_2026-06-29.txt");
    read(document);
    EXPECT_EQ(log.messages, Texts{"60 Events imported from INGV"});
    EXPECT_EQ(storedRows(), expectedRows(document));
    EXPECT_EQ(rows("select * from Events where UTC = '2026-06-16 01:05:29.450'"),
              Texts{"2026-06-16 01:05:29.450|38.4703|11.87|7.6|2.5|SURVEY-INGV|"});
    EXPECT_EQ(status.eventsTexts, (Texts{"50 / 60", "60 / 60"}));
}

TEST_F(IngvSource, ImportsAnAnswerAtTheLimitOf4000Rows) {
    const std::string document = ingvDocument("ingv_2005_2007_4000_old_header.txt");
    read(document);
    EXPECT_EQ(log.messages, Texts{"4000 Events imported from INGV"});
    EXPECT_EQ(storedRows(), expectedRows(document));
    EXPECT_EQ(status.eventsTexts.size(), 81U);
}

TEST_F(IngvSource, ImportsASequenceOfHundredsOfEventsInADay) {
    const std::string document = ingvDocument("derived_laquila_2009-04-06.txt");
    read(document);
    EXPECT_EQ(log.messages, Texts{"877 Events imported from INGV"});
    EXPECT_EQ(storedRows(), expectedRows(document));
}

TEST_F(IngvSource, ImportsNothingFromTheSameAnswerAgain) {
    const std::string document = ingvDocument("ingv_2005_2007_4000_old_header.txt");
    read(document);
    log.messages.clear();
    status.eventsTexts.clear();
    read(document);
    EXPECT_EQ(log.messages, Texts{"0 Events imported from INGV"});
    EXPECT_EQ(status.eventsTexts, Texts{"0 / 0"});
    EXPECT_EQ(status.maximum, 1);
    EXPECT_EQ(eventCount(), 4000);
}

TEST_F(IngvSource, InsertsBothOfTwoEqualTimes) {
    read(ingvLine("2021-01-14T05:45:26.600000", "A") + ingvLine("2021-01-14T05:45:26.600000", "B"));
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(IngvSource, InsertsOnlyTheSecondOfTwoEqualTimesThatAreStoredAlready) {
    store("2021-01-14 05:45:26.600", "USGS");
    read(ingvLine("2021-01-14T05:45:26.600000", "A") + ingvLine("2021-01-14T05:45:26.600000", "B"));
    EXPECT_EQ(storedRows(), (Texts{"2021-01-14 05:45:26.600|USGS", "2021-01-14 05:45:26.600|B"}));
}

TEST_F(IngvSource, InsertsAnEventThatOnlyEmscHasReported) {
    store("2021-01-14 05:45:26.600", "EMSC");
    read(ingvHeader + ingvLine("2021-01-14T05:45:26.600000"));
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(IngvSource, TreatsAMissingFileAsARuntimeErrorAndThenAsAFailedConnection) {
    harness.prompts.expectRuntimeError("File not found", ErrorAnswer::Ignore);
    source.readCsvIngv();
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
}

TEST_F(IngvDownload, FetchesAndImportsTheLastDays) {
    settings.PrimaryLastNHours = 48;
    hosts.Ingv = "https://ingv.example";
    clock.setNow(std::chrono::local_days(std::chrono::year(2024) / 3 / 1) + std::chrono::hours(1));
    bool busy = false;
    transfer.course = [&](DownloadEvents& events, std::string_view path) {
        busy = session.PrimaryBusy;
        testing::writeText(std::string(path), ingvHeader + ingvLine("2024-02-28T05:45:26.600000"));
        events.SizeCalculated(1);
        events.ChunkDownloaded(1);
        events.DownloadCompleted();
    };
    source.downloadCsvFromIngv();
    EXPECT_TRUE(busy);
    EXPECT_EQ(transfer.url, "https://ingv.example" + ingvQuery("2024-02-28", "2024-03-01"));
    EXPECT_EQ(transfer.target, target());
    EXPECT_EQ(status.values.at(0), 100); // of a bar from 0 to 100
    EXPECT_EQ(status.statusTexts, (Texts{"Syncing from INGV...", "INGV Synchronized"}));
    EXPECT_EQ(log.messages, Texts{"1 Events imported from INGV"});
    EXPECT_FALSE(session.PrimaryBusy);
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_EQ(clock.sleeps, 0);
    EXPECT_TRUE(std::ifstream(target()).is_open()); // the file stays until the next fetch
}

TEST_F(IngvDownload, BeginsADayBeforeNowForZeroHours) {
    settings.PrimaryLastNHours = 0;
    clock.setNow(std::chrono::local_days(std::chrono::year(2026) / 1 / 1));
    servesDocument(ingvHeader);
    source.downloadCsvFromIngv();
    EXPECT_NE(transfer.url.find("starttime=2025-12-31+00"), std::string::npos);
    EXPECT_NE(transfer.url.find("endtime=2026-01-01+23"), std::string::npos);
}

TEST_F(IngvDownload, SaysSynchronizedEvenWhenTheFileHeldNoEvents) {
    servesDocument("");
    source.downloadCsvFromIngv();
    EXPECT_EQ(log.messages, Texts{std::string(impossible)});
    EXPECT_EQ(status.statusTexts.back(), "INGV Synchronized");
    EXPECT_FALSE(session.PrimaryBusy);
}

TEST_F(IngvDownload, FailsAfterAMinuteWhenTheTransferFailed) {
    // What an earlier fetch has left must not be imported again.
    testing::writeText(target(), ingvHeader + ingvLine("2021-01-14T05:45:26.600000"));
    fails();
    source.downloadCsvFromIngv();
    EXPECT_EQ(clock.steady(), std::chrono::seconds(60));
    EXPECT_EQ(log.messages, Texts{"INGV Synchronization failed"});
    EXPECT_EQ(status.statusTexts, Texts{"Syncing from INGV..."});
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_FALSE(session.PrimaryBusy);
}

TEST_F(IngvDownload, KeepsPrimaryBusyOnWhenTheProgramClosesDuringTheWait) {
    fails();
    clock.onPump = [&] {
        if (clock.sleeps == 3)
            session.WaitCounter = Session::waitCounterClosing;
    };
    source.downloadCsvFromIngv();
    EXPECT_EQ(clock.sleeps, 3);
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(session.PrimaryBusy);
    EXPECT_GE(session.WaitCounter, Session::waitCounterClosing);
}

TEST_F(IngvDownload, ReadsNothingWhenTheProgramClosesDuringTheTransfer) {
    transfer.course = [&](DownloadEvents& events, std::string_view path) {
        testing::writeText(std::string(path), ingvHeader + ingvLine("2021-01-14T05:45:26.600000"));
        events.SizeCalculated(4);
        session.WaitCounter = Session::waitCounterClosing;
        events.ChunkDownloaded(4);
        events.AbortCompleted();
    };
    source.downloadCsvFromIngv();
    EXPECT_EQ(unloads, 1);
    EXPECT_EQ(clock.sleeps, 0);
    EXPECT_EQ(eventCount(), 0);
    EXPECT_TRUE(session.PrimaryBusy);
    EXPECT_EQ(session.WaitCounter, Session::waitCounterClosing);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(IngvDownload, ReportsHoursThatLeadOutOfTheCalendar) {
    settings.PrimaryLastNHours = 2'000'000'000;
    fails();
    harness.prompts.expectRuntimeError("Number: 5", ErrorAnswer::Ignore);
    source.downloadCsvFromIngv();
    EXPECT_EQ(log.messages, Texts{"INGV Synchronization failed"});
    EXPECT_FALSE(session.PrimaryBusy);
}

} // namespace
} // namespace tremor
