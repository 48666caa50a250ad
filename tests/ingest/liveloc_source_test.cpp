#include "ingest/liveloc_source.h"
#include "ingest/local_fixture.h"
#include "support/clearing_prompts.h"
#include "support/error_of.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <chrono>
#include <cstdlib>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::errorOf;
using Texts = std::vector<std::string>;

std::string document(const std::string& name) {
    return testing::fileText(std::string(TREMOR_TEST_DATA) + "/nordic/" + name);
}

// An event of the 20th of May 2012 with its fields in their columns.
std::string sfileLine(std::string_view latitude = "44.890", std::string_view minute = " 3") {
    std::string line(80, ' ');
    const auto put = [&line](std::size_t column, std::string_view text) {
        line.replace(column - 1, text.size(), text);
    };
    put(2, "2012");
    put(7, " 520");
    put(12, " 2");
    put(14, minute);
    put(17, "52.1");
    put(24, latitude);
    put(31, " 11.230");
    put(40, " 6.3");
    put(57, "5.9");
    line.back() = '1';
    return line;
}

std::string fieldsOf(std::string_view line) {
    const SfileHeader header = parseSfileHeader(line);
    return fmt::format("{}|{}|{}|{}|{}", header.UTC, header.Latitude, header.Longitude,
                       header.Depth, header.Magnitude);
}

std::string fieldsOfDocument(const std::string& name) {
    const std::string text = document(name);
    return fieldsOf(text.substr(0, text.find('\n')));
}

const std::string storedEvent = "2012-05-20 02:03:52.1|44.89|11.23|6.3|5.9|LIVELOC";

TEST(ParseSfileHeader, TakesTheFieldsByTheirColumns) {
    EXPECT_EQ(fieldsOf(sfileLine()), "2012-05-20 02:03:52.1|44.890|11.230|6.3|5.9");
}

TEST(ParseSfileHeader, ReadsRealFiles) {
    EXPECT_EQ(fieldsOfDocument("23-0514-03L.S202102"), "2021-02-23 05:14:11.3|63.74|4.57|40.1|3.8");
    EXPECT_EQ(fieldsOfDocument("01-1300-32L.S202204"),
              "2022-04-01 13:00:33.2|41.09|-78.35|0.10|1.7");
    EXPECT_EQ(fieldsOfDocument("13-0031-00L.S201906"),
              "2019-06-13 00:30:57.3|40.42|-77.50|26.2|3.8");
    EXPECT_EQ(fieldsOfDocument("13-1407-10D.S202102"),
              "2021-02-13 14:07:45.3|36.97|142.51|50.0|7.0");
}

TEST(ParseSfileHeader, FindsNoLocationInARealFileWithoutOne) {
    const std::string text = document("Sfile_no_location");
    const SfileHeader header = parseSfileHeader(text.substr(0, text.find('\n')));
    EXPECT_FALSE(header.hasLocation());
    EXPECT_EQ(header.UTC, "2009-12-01 00:02:05.0");
}

TEST(ParseSfileHeader, TakesAnythingElseInAColumnAsItIs) {
    EXPECT_EQ(fieldsOfDocument("Sfile_no_header"), "ACTI-N:-AR 01:6-:3-.4|:29 OP|DOMI ST|US:|ID");
    EXPECT_EQ(fieldsOf(std::string(59, ' ')), "-  -     :  :  . ||||");
    EXPECT_EQ(fieldsOf(std::string(59, '\0')).size(), 46U);
    EXPECT_EQ(fieldsOf(std::string(59, '\xe9')).substr(0, 9), "\xe9\xe9\xe9\xe9\xe9-\xe9\xe9-");
}

TEST(ParseSfileHeader, NeedsFiftyNineCharacters) {
    const std::string line = sfileLine();
    EXPECT_EQ(fieldsOf(line.substr(0, 59)), fieldsOf(line));
    for (const std::size_t length : {58U, 30U, 1U, 0U})
        EXPECT_EQ(errorOf([&] { parseSfileHeader(line.substr(0, length)); }),
                  ErrorNumber::InvalidProcedureCall)
            << length;
}

class LivelocSource : public testing::LocalFixture {
  protected:
    void read() { read(root); }
    void read(const std::string& path) {
        source.readLivelocSfile(entries(path));
        expectNothingPumped();
    }
    Texts stored() {
        return rows("select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events "
                    "order by rowid");
    }

    tremor::LivelocSource source{context};
};

TEST_F(LivelocSource, StoresAnEventAndMarksItsFile) {
    put("2012/05/20-0203-52L.S201205", sfileLine() + "\nmore\n");
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(files("2012/05"), Texts{"imported_20-0203-52L.S201205"});
    EXPECT_EQ(textOf("2012/05/imported_20-0203-52L.S201205"), sfileLine() + "\nmore\n");
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(status.eventsTexts.empty());
    EXPECT_TRUE(status.values.empty());
}

TEST_F(LivelocSource, NeverReadsAFileTwice) {
    put("2012/05/a", sfileLine());
    read();
    read();
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(LivelocSource, ImportsRealFiles) {
    for (const char* const name : {"23-0514-03L.S202102", "13-1407-10D.S202102"})
        put("2021/02/" + std::string(name), document(name));
    put("2009/12/nolocation", document("Sfile_no_location"));
    read();
    EXPECT_EQ(stored(), (Texts{"2021-02-13 14:07:45.3|36.97|142.51|50.0|7.0|LIVELOC",
                               "2021-02-23 05:14:11.3|63.74|4.57|40.1|3.8|LIVELOC"}));
    EXPECT_EQ(files("2021/02"),
              (Texts{"imported_13-1407-10D.S202102", "imported_23-0514-03L.S202102"}));
    EXPECT_EQ(files("2009/12"), Texts{"noise_nolocation"});
}

TEST_F(LivelocSource, MarksAFileWithoutALocationAsNoise) {
    put("2012/05/a", sfileLine("      "));
    read();
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(files("2012/05"), Texts{"noise_a"});
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LivelocSource, PassesOverEveryNameWithAnUnderscore) {
    for (const char* const name : {"imported_a", "noise_b", "Sfile_x", "_", "x_"})
        put("2012/05/" + std::string(name), sfileLine());
    read();
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(files("2012/05"), (Texts{"_", "imported_a", "noise_b", "Sfile_x", "x_"}));
}

TEST_F(LivelocSource, ReplacesAnOlderMarkedFile) {
    put("2012/05/a", sfileLine());
    put("2012/05/imported_a", "old");
    put("2012/05/b", sfileLine("      "));
    put("2012/05/noise_b", "old");
    read();
    EXPECT_EQ(files("2012/05"), (Texts{"imported_a", "noise_b"}));
    EXPECT_EQ(textOf("2012/05/imported_a"), sfileLine());
    EXPECT_EQ(textOf("2012/05/noise_b"), sfileLine("      "));
}

TEST_F(LivelocSource, StoresEqualEventsOfTwoFilesTwice) {
    put("2012/05/a", sfileLine());
    put("2012/05/b", sfileLine());
    read();
    EXPECT_EQ(stored(), (Texts{storedEvent, storedEvent}));
}

TEST_F(LivelocSource, ReadsFilesInTheOrderOfTheirNames) {
    put("2012/05/B", sfileLine("44.890", " 2"));
    put("2012/05/a", sfileLine("44.890", " 1"));
    put("2012/04/c", sfileLine("44.890", " 0"));
    put("2011/12/d", sfileLine("44.890", "59"));
    read();
    EXPECT_EQ(rows("select substr(UTC, 15, 2) from Events order by rowid"),
              (Texts{"59", "00", "01", "02"}));
}

TEST_F(LivelocSource, ReadsFilesTwoLevelsDownOnly) {
    put("a", sfileLine());
    put("2012/a", sfileLine());
    put("2012/05/deeper/a", sfileLine());
    read();
    EXPECT_TRUE(stored().empty());
}

TEST_F(LivelocSource, PassesOverCatAndLogOnlyBelowARootWithoutASlash) {
    put("CAT/05/a", sfileLine());
    put("LOG/05/a", sfileLine());
    put("cat/05/a", sfileLine());
    read();
    EXPECT_EQ(eventCount(), 1);
    EXPECT_EQ(files("cat/05"), Texts{"imported_a"});
    read(root + "/");
    EXPECT_EQ(eventCount(), 3);
    EXPECT_EQ(files("CAT/05"), Texts{"imported_a"});
    EXPECT_EQ(files("LOG/05"), Texts{"imported_a"});
}

TEST_F(LivelocSource, BreaksAPathAtAComma) {
    put("2012/05,old/a", sfileLine());
    put("2012/06/a", sfileLine());
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(files("2012/05,old"), Texts{"a"});
    EXPECT_EQ(files("2012/06"), Texts{"imported_a"});
    EXPECT_EQ(log.messages, Texts{"2 S-files could not be read or marked as read, the first one: " +
                                  at("2012/05") + " (Path not found)"});
}

TEST_F(LivelocSource, ReadsTheFolderThatABrokenPathNamesAsWell) {
    put("2012/05,old/a", sfileLine());
    put("2012/05/b", sfileLine());
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(eventCount(), 1);
    EXPECT_EQ(files("2012/05"), Texts{"imported_b"});
}

TEST_F(LivelocSource, TouchesNothingOutsideTheTreeForAComma) {
    const std::string before = fs::current_path();
    fs::current_path(folder.path());
    testing::writeText(folder.file("logs"), "");
    fs::remove(folder.file("logs"));
    fs::create_directory(folder.file("logs"));
    testing::writeText(folder.file("logs/a"), sfileLine());
    makeFolder("2012/05,logs");
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    read();
    fs::current_path(before);
    EXPECT_TRUE(fs::exists(folder.file("logs/a")));
    EXPECT_TRUE(stored().empty());
}

TEST_F(LivelocSource, RaisesError5ForAShortLineBeforeAnythingIsRenamed) {
    for (const std::string& text :
         {std::string(), std::string("\n") + sfileLine(), sfileLine().substr(0, 58),
          sfileLine("      ").substr(0, 40) + "\nx", sfileLine().substr(0, 57) + "\r\n"}) {
        put("2012/05/a", text);
        harness.prompts.expectRuntimeError("Number: 5\r\n", ErrorAnswer::Ignore);
        read();
        EXPECT_EQ(files("2012/05"), Texts{"a"});
    }
    EXPECT_NE(harness.prompts.lastErrorText.find("readLivelocSfile"), std::string::npos);
    EXPECT_TRUE(stored().empty());
}

TEST_F(LivelocSource, CountsTheCarriageReturnToTheLine) {
    put("2012/05/a", sfileLine().substr(0, 58) + "\r\n");
    read();
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(LivelocSource, AsksOnceForAFolderFullOfBrokenFiles) {
    for (int i = 0; i < 500; ++i)
        put(fmt::format("2012/05/broken{:03}", i), "short");
    put("2012/05/good", sfileLine());
    put("2012/06/good", sfileLine());
    harness.prompts.expectRuntimeError("Number: 5\r\n", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(eventCount(), 2);
    EXPECT_EQ(log.messages,
              Texts{"500 S-files could not be read or marked as read, the first one: " +
                    at("2012/05/broken000") + " (Invalid procedure call or argument)"});
}

TEST_F(LivelocSource, ReadsABrokenFileAgainOnRetry) {
    put("2012/05/a", "short");
    harness.prompts.expectRuntimeError("Number: 5\r\n", ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Number: 5\r\n", ErrorAnswer::Ignore);
    read();
    put("2012/05/a", sfileLine());
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
}

TEST_F(LivelocSource, LosesNoEventWhenTheProgramEndsAtABrokenFile) {
    put("2012/05/a", sfileLine());
    put("2012/05/b", "short");
    harness.prompts.expectRuntimeError("Number: 5\r\n", ErrorAnswer::Abort);
    EXPECT_THROW(read(), testing::ProcessEnded);
    EXPECT_EQ(files("2012/05"), (Texts{"a", "b"}));
    EXPECT_TRUE(stored().empty());
}

TEST_F(LivelocSource, StoresNothingOfAFileThatCannotBeRenamed) {
    put("2012/05/a", sfileLine());
    put("2012/05/b", sfileLine("44.890", " 4"));
    put("2012/05/c", sfileLine("44.890", " 5"));
    makeFolder("2012/05/imported_a");
    makeFolder("2012/05/imported_c");
    harness.prompts.expectRuntimeError("Number: 75", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(rows("select UTC from Events"), Texts{"2012-05-20 02:04:52.1"});
    EXPECT_EQ(files("2012/05"), (Texts{"a", "c", "imported_b"}));
    EXPECT_EQ(log.messages, Texts{"2 S-files could not be read or marked as read, the first one: " +
                                  at("2012/05") + " (Path/File access error)"});

    fs::remove(at("2012/05/imported_a"));
    fs::remove(at("2012/05/imported_c"));
    read();
    EXPECT_EQ(eventCount(), 3);
}

TEST_F(LivelocSource, StoresTheEventWhenARetriedRenameSucceeds) {
    put("2012/05/a", sfileLine());
    makeFolder("2012/05/imported_a");
    testing::ClearingPrompts prompts(at("2012/05/imported_a"));
    bool held = false;
    ErrorReport errors(
        prompts, [] { std::abort(); }, 60, held);
    prompts.expectRuntimeError("Number: 75", ErrorAnswer::Retry);
    FeedContext own{
        session, settings, hosts, database, status, clock, log, errors, context.temporaryFolder};
    tremor::LivelocSource(own).readLivelocSfile(entries(root));
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(files("2012/05"), Texts{"imported_a"});
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LivelocSource, KeepsTheStoredEventsWhenTheProgramEndsAtARefusedRename) {
    put("2012/05/a", sfileLine());
    put("2012/05/b", sfileLine());
    makeFolder("2012/05/imported_a");
    harness.prompts.expectRuntimeError("Number: 75", ErrorAnswer::Abort);
    EXPECT_THROW(read(), testing::ProcessEnded);
    EXPECT_EQ(eventCount(), 1);
    EXPECT_EQ(files("2012/05"), (Texts{"a", "imported_b"}));
}

TEST_F(LivelocSource, GivesFilesTheirNamesBackWhenTheCatalogueFails) {
    put("2012/05/a", sfileLine());
    put("2012/05/b", sfileLine());
    put("2012/05/c", sfileLine("      "));
    put("2012/06/d", sfileLine());
    breakCatalogue();
    read();
    EXPECT_EQ(files("2012/05"), (Texts{"a", "b", "noise_c"}));
    EXPECT_EQ(files("2012/06"), Texts{"d"});
    EXPECT_EQ(log.messages,
              Texts{"2 events of S-files could not be stored, their files will be read again: "
                    "8 attempt to write a readonly database"});

    mendCatalogue();
    read();
    EXPECT_EQ(eventCount(), 3);
}

TEST_F(LivelocSource, WaitsOnceForALockedCatalogue) {
    for (int month = 1; month <= 12; ++month)
        put(fmt::format("2012/{:02}/a", month), sfileLine());
    Database other;
    ASSERT_EQ(other.slsOpen(cataloguePath(), {}), 0);
    ASSERT_EQ(other.slsExe("BEGIN EXCLUSIVE"), 0);
    const int calls = busyCalls([&] { read(); });
    EXPECT_GT(calls, 0);
    EXPECT_LE(calls, mostBusyCallsOfOneWait);
    ASSERT_EQ(other.slsExe("ROLLBACK"), 0);
    EXPECT_TRUE(stored().empty());
    read();
    EXPECT_EQ(eventCount(), 12);
}

TEST_F(LivelocSource, LosesOnlyTheRowThatTheCatalogueRefuses) {
    put("2012/05/a", sfileLine("44'890"));
    put("2012/05/b", sfileLine());
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(files("2012/05"), (Texts{"imported_a", "imported_b"}));
    EXPECT_EQ(log.messages, Texts{"1 events of S-files could not be stored: a value holds an "
                                  "apostrophe or a zero byte"});
}

TEST_F(LivelocSource, ReadsOnlyTheHeadOfAHugeFile) {
    put("2012/05/a", sfileLine());
    fs::resize_file(at("2012/05/a"), 3ULL << 30);
    EXPECT_LT(bytesRead([&] { read(); }), 1'000'000U);
    EXPECT_EQ(stored(), Texts{storedEvent});
}

TEST_F(LivelocSource, PassesOverPipesDevicesAndLinksThatLeadNowhere) {
    makeFolder("2012/05");
    ASSERT_EQ(::mkfifo(at("2012/05/pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", at("2012/05/device"));
    fs::create_symlink("nowhere", at("2012/05/dangling"));
    fs::create_symlink("loop", at("2012/05/loop"));
    fs::create_symlink("..", at("2012/up"));
    put("2012/05/a", sfileLine());
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(LivelocSource, ReadsNamesThatAreNotUtf8) {
    put("2012/m\xe4rz/\xff", sfileLine());
    read();
    EXPECT_EQ(files("2012/m\xe4rz"), Texts{"imported_\xff"});
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(LivelocSource, ReportsAFolderThatVanished) {
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    source.readLivelocSfile({{"/2012", at("2012"), {}}});
    EXPECT_TRUE(stored().empty());
}

// A clock that a slow disk lets run on.
class RunningClock : public testing::FakeClock {
  public:
    std::chrono::milliseconds steady() const override { return ++time_; }

  private:
    mutable std::chrono::milliseconds time_{0};
};

TEST_F(LivelocSource, KeepsTheWindowsPaintedOnASlowDisk) {
    for (int i = 0; i < 100; ++i)
        put(fmt::format("2012/05/{}", i), sfileLine());
    RunningClock slow;
    FeedContext own{session,  settings,       hosts,
                    database, status,         slow,
                    log,      harness.errors, context.temporaryFolder};
    tremor::LivelocSource(own).readLivelocSfile(entries(root));
    EXPECT_EQ(slow.repaints, 6); // 200 milliseconds
    EXPECT_EQ(slow.pumps, 0);
    EXPECT_EQ(eventCount(), 100);
}

TEST_F(LivelocSource, ImportsThousandsOfFiles) {
    for (int i = 0; i < 3000; ++i)
        put(fmt::format("2012/05/{:05}", i), sfileLine());
    read();
    EXPECT_EQ(eventCount(), 3000);
    read();
    EXPECT_EQ(eventCount(), 3000);
}

} // namespace
} // namespace tremor
