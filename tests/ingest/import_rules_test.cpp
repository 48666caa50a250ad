#include "ingest/import_fixture.h"
#include "ingest/import_rules.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

ImportRecord event(std::size_t element, std::string_view utc, std::string_view source = "INGV") {
    ImportRecord record;
    record.element = element;
    record.UTC = utc;
    record.Latitude = "42.5";
    record.Longitude = "13.25";
    record.Depth = "10";
    record.Magnitude = "2.1";
    record.Source = source;
    return record;
}

// Another program at work on the catalogue.
class OtherProgram {
  public:
    explicit OtherProgram(const std::string& path) { sqlite3_open(path.c_str(), &handle_); }
    ~OtherProgram() { sqlite3_close(handle_); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    int run(const char* sql) {
        return sqlite3_exec(
            handle_, sql, [](void*, int, char**, char**) { return 0; }, nullptr, nullptr);
    }

  private:
    sqlite3* handle_ = nullptr;
};

// Remembers whether ImportInProgress was on when the label changed.
class FlagWatch : public testing::RecordingStatusPanel {
  public:
    explicit FlagWatch(const Session& session) : session_(session) {}
    void setEventsText(std::string_view) override { flags.push_back(session_.ImportInProgress); }
    std::vector<bool> flags;

  private:
    const Session& session_;
};

class ImportRules : public testing::ImportFixture {
  protected:
    ImportOutcome import(std::vector<ImportRecord> records, FeedReader reader = FeedReader::Ingv) {
        const std::size_t elements = records.empty() ? 2 : records.back().element + 1;
        return importRecords(records, elements, reader, context);
    }
};

TEST(FeedRules, GivesEachReaderItsOwnIdeaOfADuplicate) {
    EXPECT_EQ(feedRules(FeedReader::Ingv).duplicateTail, ")) and (Source <> 'EMSC') group by UTC");
    EXPECT_EQ(feedRules(FeedReader::IsideCsv).duplicateTail,
              ")) and (Source <> 'EMSC') group by UTC");
    EXPECT_EQ(feedRules(FeedReader::Emsc).duplicateTail, ")) and (Source = 'EMSC') group by UTC");
    EXPECT_EQ(feedRules(FeedReader::Usgs).duplicateTail, ")) and (Source = 'USGS') group by UTC");
    EXPECT_EQ(feedRules(FeedReader::UserCsv).duplicateTail, ")) group by UTC");
    EXPECT_EQ(feedRules(FeedReader::Ingv).importedText, " Events imported from INGV");
    EXPECT_EQ(feedRules(FeedReader::IsideCsv).importedText, " Events imported from ISIDE");
    EXPECT_EQ(feedRules(FeedReader::Emsc).importedText, " Events imported from EMSC");
    EXPECT_EQ(feedRules(FeedReader::Usgs).importedText, " Events imported from USGS");
}

TEST(Lines, AreThoseThatALineFeedEnds) {
    EXPECT_EQ(countLines(""), 0U);
    EXPECT_EQ(countLines("a"), 0U);
    EXPECT_EQ(countLines("a\nb"), 1U);
    EXPECT_EQ(countLines("a\r\n\nb\n"), 3U);
    Texts lines;
    forEachLine("a\r\n\nb\nlost", [&](std::size_t index, std::string_view line) {
        EXPECT_EQ(index, lines.size());
        lines.emplace_back(line);
    });
    EXPECT_EQ(lines, (Texts{"a\r", "", "b"}));
}

TEST(UtcList, HoldsAnEmptyItemForEachLineWithoutAnEvent) {
    EXPECT_EQ(utcList({event(1, "2021-01-14 05:45:26.600"), event(3, "b")}, 5),
              "'','2021-01-14 05:45:26.600','','b',''");
    EXPECT_EQ(utcList({}, 2), "'',''");
    EXPECT_EQ(utcList({event(0, "a"), event(1, "a")}, 2), "'a','a'");
}

TEST(UtcList, LeavesATimeOutThatWouldBreakTheStatement) {
    using namespace std::string_view_literals;
    EXPECT_EQ(utcList({event(0, "a"), event(1, "b'"), event(2, "c\0"sv), event(3, "d''e")}, 4),
              "'a','d''e'");
    EXPECT_EQ(utcList({event(0, "'")}, 1), "");
}

TEST(UtcList, StopsAddingEmptyItemsThatChangeNothing) {
    const std::string list = utcList({event(50'000'000, "a")}, 100'000'000);
    EXPECT_EQ(list.size(), maximumEmptyItems * 3 + 3);
    EXPECT_TRUE(list.ends_with("'a'"));
}

TEST_F(ImportRules, InsertsTheValuesAsTextPastedBetweenApostrophes) {
    ImportRecord record = event(1, "2021-01-14 05:45:26.600", "O''Brien");
    record.Depth = " 10.0";
    record.Magnitude = "--";
    const ImportOutcome outcome = import({record});
    EXPECT_EQ(outcome.count, 1U);
    EXPECT_EQ(outcome.lost, 0U);
    EXPECT_EQ(rows("select UTC, Latitude, Longitude, Depth, Magnitude, Source, typeof(Depth), "
                   "typeof(Magnitude), typeof(\"null\") from Events"),
              Texts{"2021-01-14 05:45:26.600|42.5|13.25|10.0|--|O'Brien|real|text|null"});
    EXPECT_EQ(log.messages, Texts{"1 Events imported from INGV"});
}

TEST_F(ImportRules, ComparesInsertedTextLikeTheStatementWithPastedValues) {
    ASSERT_EQ(
        database.slsExe("insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude,Source) "
                        "Values ('1e3', '42.50', '', '+7', '0x10', '1.0')"),
        0);
    ImportRecord record = event(0, "1e3", "1.0");
    record.Latitude = "42.50";
    record.Longitude = "";
    record.Depth = "+7";
    record.Magnitude = "0x10";
    ASSERT_EQ(insertRecords({record}, database, status, session).lost, 0U);
    EXPECT_EQ(rows("select distinct quote(UTC), quote(Latitude), quote(Longitude), quote(Depth), "
                   "quote(Magnitude), quote(Source) from Events")
                  .size(),
              1U);
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(ImportRules, MarksOnlyTheFirstOfTwoEqualTimes) {
    store("a", "BULLETIN");
    import({event(1, "a"), event(2, "b"), event(3, "a"), event(4, "b")});
    EXPECT_EQ(log.messages, Texts{"3 Events imported from INGV"});
    EXPECT_EQ(rows("select UTC, count(*) from Events group by UTC"), (Texts{"a|2", "b|2"}));
}

TEST_F(ImportRules, MarksAllEqualTimesForUsgs) {
    store("a", "USGS");
    import({event(1, "a", "USGS"), event(2, "b", "USGS"), event(3, "a", "USGS")}, FeedReader::Usgs);
    EXPECT_EQ(log.messages, Texts{"1 Events imported from USGS"});
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(ImportRules, ComparesIngvWithEverythingButEmsc) {
    store("emsc", "EMSC");
    store("usgs", "USGS");
    store("own", "SURVEY-INGV");
    import({event(0, "emsc"), event(1, "usgs"), event(2, "own")});
    EXPECT_EQ(rows("select UTC from Events where Source = 'INGV'"), Texts{"emsc"});
}

TEST_F(ImportRules, ComparesEmscAndUsgsWithTheirOwnRowsOnly) {
    store("a", "INGV");
    store("b", "EMSC");
    store("c", "USGS");
    import({event(0, "a", "EMSC"), event(1, "b", "EMSC"), event(2, "c", "EMSC")}, FeedReader::Emsc);
    EXPECT_EQ(rows("select UTC from Events where Source = 'EMSC' order by UTC"),
              (Texts{"a", "b", "c"}));
    import({event(0, "a", "USGS"), event(1, "b", "USGS"), event(2, "c", "USGS")}, FeedReader::Usgs);
    EXPECT_EQ(rows("select UTC from Events where Source = 'USGS' order by UTC"),
              (Texts{"a", "b", "c"}));
}

TEST_F(ImportRules, ComparesAUsersFileWithAllRows) {
    store("a", "EMSC");
    import({event(0, "a"), event(1, "b")}, FeedReader::UserCsv);
    EXPECT_EQ(log.messages, Texts{"1 Events imported from a csv file."});
}

TEST_F(ImportRules, NeverUpdatesAStoredRow) {
    import({event(0, "a")});
    ImportRecord revised = event(0, "a");
    revised.Magnitude = "5.5";
    import({revised});
    EXPECT_EQ(rows("select UTC, Magnitude from Events"), Texts{"a|2.1"});
}

TEST_F(ImportRules, LogsACountOfZeroWithAFullBar) {
    import({});
    EXPECT_EQ(log.messages, Texts{"0 Events imported from INGV"});
    EXPECT_EQ(status.minimum, 0);
    EXPECT_EQ(status.maximum, 1);
    EXPECT_EQ(status.values, (std::vector<int>{0, 1}));
    EXPECT_EQ(status.eventsTexts, Texts{"0 / 0"});
}

TEST_F(ImportRules, MovesTheBarAtLinesThatAreMultiplesOfFifty) {
    std::vector<ImportRecord> records;
    std::vector<std::string> times;
    for (int i = 0; i <= 120; ++i)
        times.push_back("t" + std::to_string(i));
    for (std::size_t i = 0; i < times.size(); ++i)
        records.push_back(event(i, times[i]));
    import(records);
    EXPECT_EQ(status.maximum, 121);
    EXPECT_EQ(status.values, (std::vector<int>{0, 50, 100, 121, 121}));
    EXPECT_EQ(status.eventsTexts, (Texts{"50 / 121", "100 / 121", "121 / 121", "121 / 121"}));
}

TEST_F(ImportRules, CountsTheLinesAndNotTheRowsForTheBar) {
    import({event(49, "a"), event(51, "b"), event(100, "c"), event(149, "d")});
    EXPECT_EQ(status.maximum, 4);
    EXPECT_EQ(status.values, (std::vector<int>{0, 4, 4}));
    EXPECT_EQ(status.eventsTexts, (Texts{"4 / 4", "4 / 4"}));
}

TEST_F(ImportRules, KeepsImportInProgressOnExactlyDuringTheTransaction) {
    FlagWatch watch(session);
    const std::vector<ImportRecord> records = {event(0, "a"), event(50, "b")};
    EXPECT_FALSE(session.ImportInProgress);
    insertRecords(records, database, watch, session);
    EXPECT_EQ(watch.flags, (std::vector<bool>{true, true, true}));
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(ImportRules, LosesOnlyTheRowWithAnApostropheAndSaysSo) {
    const ImportOutcome outcome =
        import({event(0, "a"), event(1, "b", "L'Aquila"), event(2, "c"), event(3, "d", "x'")});
    EXPECT_EQ(outcome.count, 4U);
    EXPECT_EQ(outcome.lost, 2U);
    EXPECT_EQ(rows("select UTC from Events order by UTC"), (Texts{"a", "c"}));
    EXPECT_EQ(log.messages, (Texts{"4 Events imported from INGV",
                                   "2 of these events could not be stored: a value holds an "
                                   "apostrophe or a zero byte"}));
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(ImportRules, KeepsTheDuplicateCheckWhenOneTimeHoldsAnApostrophe) {
    store("a", "INGV");
    import({event(0, "a"), event(1, "b') or ('1'='1"), event(2, "c")});
    EXPECT_EQ(rows("select UTC from Events order by UTC"), (Texts{"a", "c"}));
}

TEST_F(ImportRules, RunsNoStatementThatStandsInAValue) {
    import({event(0, "a', '1', '1', '1', '1', '1'); drop table Events; --")});
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(ImportRules, LosesOnlyTheRowThatTheCatalogueRefuses) {
    ASSERT_EQ(database.slsExe("create trigger refuse before insert on Events when new.UTC = 'b' "
                              "begin select raise(abort, 'no b here'); end"),
              0);
    const ImportOutcome outcome = import({event(0, "a"), event(1, "b"), event(2, "c")});
    EXPECT_EQ(outcome.lost, 1U);
    EXPECT_NE(outcome.lostReason.find("no b here"), std::string::npos) << outcome.lostReason;
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(ImportRules, ImportsNothingWhenTheDuplicateCheckFails) {
    ASSERT_EQ(database.slsExe("alter table Events rename column UTC to Time"), 0);
    const ImportOutcome outcome = import({event(0, "a"), event(1, "b")});
    EXPECT_EQ(outcome.lost, 2U);
    EXPECT_EQ(eventCount(), 0);
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_EQ(log.messages[0], "2 Events imported from INGV");
    EXPECT_TRUE(log.messages[1].starts_with("2 of these events could not be stored: 1 "))
        << log.messages[1];
}

TEST_F(ImportRules, ImportsNothingWhenATransactionIsOpenAlready) {
    ASSERT_EQ(database.slsExe("BEGIN TRANSACTION;"), 0);
    EXPECT_EQ(import({event(0, "a")}).lost, 1U);
    EXPECT_FALSE(session.ImportInProgress);
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(ImportRules, ImportsNothingWhenTheDiskFillsUp) {
    ASSERT_EQ(database.slsExe("pragma cache_size = 5"), 0);
    ASSERT_EQ(database.slsExe("pragma max_page_count = 20"), 0);
    store("kept", "INGV");
    Texts times;
    std::vector<ImportRecord> records;
    for (int i = 0; i < 5000; ++i)
        times.push_back("2021-01-14 05:45:26." + std::to_string(i));
    for (std::size_t i = 0; i < times.size(); ++i)
        records.push_back(event(i, times[i]));
    const ImportOutcome outcome = import(records);
    EXPECT_EQ(outcome.lost, 5000U);
    EXPECT_NE(outcome.lostReason.find("full"), std::string::npos) << outcome.lostReason;
    EXPECT_EQ(rows("select UTC from Events"), Texts{"kept"});
    EXPECT_FALSE(session.ImportInProgress);
    EXPECT_EQ(log.messages.size(), 2U);
}

TEST_F(ImportRules, WaitsForALockOnceAndNotForEachRow) {
    OtherProgram other(cataloguePath());
    ASSERT_EQ(other.run("begin immediate"), SQLITE_OK);
    ImportOutcome outcome;
    const int calls = busyCalls([&] {
        outcome = import({event(0, "a"), event(1, "b"), event(2, "c")});
    });
    EXPECT_GT(calls, 0);
    EXPECT_LE(calls, mostBusyCallsOfOneWait);
    EXPECT_EQ(outcome.lost, 3U);
    EXPECT_NE(outcome.lostReason.find("locked"), std::string::npos) << outcome.lostReason;
    ASSERT_EQ(other.run("rollback"), SQLITE_OK);
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(import({event(0, "a")}).lost, 0U); // the next poll brings them
}

TEST_F(ImportRules, RollsBackWhenTheCommitFails) {
    OtherProgram other(cataloguePath());
    ASSERT_EQ(other.run("begin"), SQLITE_OK);
    ASSERT_EQ(other.run("select count(*) from Events"), SQLITE_OK); // a reader stays in the file
    EXPECT_EQ(import({event(0, "a"), event(1, "b")}).lost, 2U);
    EXPECT_FALSE(session.ImportInProgress);
    ASSERT_EQ(other.run("rollback"), SQLITE_OK);
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(log.messages.size(), 2U);
}

} // namespace
} // namespace tremor
