#include "core/common_text.h"
#include "ingest/local_fixture.h"
#include "ingest/seiscomp_source.h"
#include "support/error_of.h"
#include "support/time_zone.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <chrono>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::errorOf;
using Texts = std::vector<std::string>;

const std::string utc = "2012-05-20 02:03:52.000";
const std::string storedEvent = utc + "|44.89|11.23|6.3|5.9|SEISCP";
constexpr std::string_view missingText = "could not be read or marked as read, the first one: ";

std::string solution(std::string_view longitude = "11.23 E", std::string_view magnitude = "ML 5.9",
                     std::string_view time = "02:03:52") {
    return fmt::format("  Northern Italy  {}  2012/05/20  {}  44.89 N  {}  6.3 km", magnitude, time,
                       longitude);
}

std::string lastFile(const std::string& line = solution()) {
    return "\n LocSAT solution (with start solution, 9 stations used, weight 9):\n\n" + line +
           "\n\n  Stat  Net   Date       Time\n";
}

// The bulletin as SeisComP 2.x heads and writes its solutions.
std::string realDocument() {
    const std::string text = testing::fileText(std::string(TREMOR_TEST_DATA) +
                                               "/seiscomp/derived_locsat_old_layout.txt");
    return replaceAll(replaceAll(text, "LOCSAT", "LocSAT"), "M=", "ML ");
}

std::string fieldsOf(std::string_view line) {
    const SeisCompEvent event = parseSolution(line);
    return fmt::format("{}|{}|{}|{}|{}", event.UTC, event.Latitude, event.Longitude, event.Depth,
                       event.Magnitude);
}

std::string longitudeOf(std::string_view longitude) {
    return parseSolution(trimLeft(solution(longitude))).Longitude;
}

TEST(SolutionLines, TakesTheLineTwoBelowEachHeading) {
    EXPECT_EQ(solutionLines("LocSAT solution\na\n  b\nLocSAT solutions\n\n\tc"),
              (std::vector<std::string_view>{"b", "\tc"}));
    EXPECT_EQ(solutionLines(realDocument()).size(), 41U);
}

TEST(SolutionLines, FindsNoOtherHeading) {
    for (const std::string_view text :
         {"", "\n", "LOCSAT solution\n\nx\n", "a LocSAT solution\n\nx\n", "LocSAT  solution\n\nx",
          "\tLocSAT solution\n\nx", "LocSAT solutio"})
        EXPECT_TRUE(solutionLines(text).empty()) << text;
}

TEST(SolutionLines, RaisesError9ForAHeadingWithoutSolution) {
    for (const std::string_view text :
         {"LocSAT solution", "LocSAT solution\n", "LocSAT solution\nx",
          "LocSAT solution\n\ny\nLocSAT solution\n"})
        EXPECT_EQ(errorOf([&] { solutionLines(text); }), ErrorNumber::SubscriptOutOfRange) << text;
    EXPECT_EQ(solutionLines("LocSAT solution\n\n"), std::vector<std::string_view>{""});
}

// Work that grows with the square of the number would not end.
TEST(SolutionLines, TakesAMillionHeadings) {
    std::string text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "LocSAT solution\n";
    text += "\n\n";
    EXPECT_EQ(solutionLines(text).size(), 1'000'000U);
}

TEST(ParseSolution, TakesThePartsByTheirPlaces) {
    EXPECT_EQ(fieldsOf(trimLeft(solution())), utc + "|44.89|11.23|6.3|5.9");
}

TEST(ParseSolution, ReadsARealBulletin) {
    const std::string text = realDocument();
    const std::vector<std::string_view> lines = solutionLines(text);
    EXPECT_EQ(fieldsOf(lines.front()), "2025-04-11 08:57:06.7.000|46.52|7.86| 0|0.7");
    EXPECT_EQ(fieldsOf(lines.back()), "2019-08-25 17:28:52.3.000|-7.92|159.24| 64|5.3");
    for (const std::string_view line : lines)
        EXPECT_EQ(fieldsOf(line).size() > 40, true) << line;
}

TEST(ParseSolution, KnowsSouthAndOvestOnly) {
    EXPECT_EQ(longitudeOf("11.23 E"), "11.23");
    EXPECT_EQ(longitudeOf("11.23 O"), "-11.23");
    EXPECT_EQ(longitudeOf("11.23 W"), "11.23");
    EXPECT_EQ(longitudeOf("11.23 S"), "11.23");
    EXPECT_EQ(longitudeOf("11.23 o"), "11.23");
    EXPECT_EQ(fieldsOf("x  ML 1  d  t  12.5 S  1 E  3 km"), "d t.000|-12.5|1|3|1");
    EXPECT_EQ(fieldsOf("x  ML 1  d  t  12.5 O  1 E  3 km"), "d t.000|12.5|1|3|1");
}

TEST(ParseSolution, CutsCharactersWhateverTheyAre) {
    EXPECT_EQ(fieldsOf("x  M=3.2  d  t  1 N  2 E  3 km\r"), "d t.000|1|2|3 |.2");
    EXPECT_EQ(fieldsOf("x  MLv4.1  d  t  1 N  2 E   4 km"), "d t.000|1|2| 4|4.1");
}

TEST(ParseSolution, RaisesError9ForMissingPartsAnd5ForShortOnes) {
    for (const std::string_view line : {"", "x", "x y z", "x  ML 1  d  t  1 N  2 E"})
        EXPECT_EQ(errorOf([&] { parseSolution(line); }), ErrorNumber::SubscriptOutOfRange) << line;
    for (const std::string_view line :
         {"x  ML  d  t  1 N  2 E  3 km", "x  ML 1  d  t  N  2 E  3 km",
          "x  ML 1  d  t  1 N  E  3 km", "x  ML 1  d  t  1 N  2 E  km", "              "})
        EXPECT_EQ(errorOf([&] { parseSolution(line); }), ErrorNumber::InvalidProcedureCall) << line;
}

class SeisCompSource : public testing::LocalFixture {
  protected:
    SeisCompSource() { settings.LocalSourcePath = root + "/"; }

    void read() {
        source.readSeisCompVers2_6(false, entries(settings.LocalSourcePath));
        expectNothingPumped();
    }
    Texts stored() {
        return rows("select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events "
                    "order by rowid");
    }
    // Lets the fake clock stand so many seconds behind the change of the file.
    void setAge(const std::string& path, int seconds) {
        const std::time_t changed = 1389704726; // 2014-01-14 13:05:26 UTC
        setChanged(path, changed);
        clock.setNow(DateTime(std::chrono::seconds(changed + seconds)));
    }

    testing::TimeZone zone{"UTC"};
    tremor::SeisCompSource source{context, harness.prompts, "/program", NumberLocale::comma()};
};

TEST_F(SeisCompSource, StoresANewEvent) {
    put("ev1/last", lastFile());
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(status.eventsTexts.empty());
}

TEST_F(SeisCompSource, StoresARealBulletinsLastSolution) {
    put("ev1/last", realDocument());
    read();
    EXPECT_EQ(stored(), Texts{"2019-08-25 17:28:52.3.000|-7.92|159.24|64.0|5.3|SEISCP"});
}

TEST_F(SeisCompSource, GivesAKnownEventTheNewerSolution) {
    put("ev1/last", lastFile());
    read();
    put("ev1/last", lastFile() + lastFile(solution("11.50 E", "ML 6.1")));
    read();
    EXPECT_EQ(stored(), Texts{utc + "|44.89|11.5|6.3|6.1|SEISCP"});
}

TEST_F(SeisCompSource, UpdatesEveryRowOfTheTimeOfAKnownEvent) {
    store(utc, "SEISCP");
    store(utc, "SURVEY-INGV");
    store("2012-05-20 02:03:52.001", "SEISCP");
    put("ev1/last", lastFile());
    read();
    EXPECT_EQ(stored(), (Texts{storedEvent, storedEvent, "2012-05-20 02:03:52.001|||||SEISCP"}));
}

TEST_F(SeisCompSource, StoresTheEventBesideTheOneOfAnotherSource) {
    store(utc, "SURVEY-INGV");
    put("ev1/last", lastFile());
    read();
    EXPECT_EQ(stored(), (Texts{utc + "|||||SURVEY-INGV", storedEvent}));
}

TEST_F(SeisCompSource, ReadsEvFoldersOfARootWithASlashOnly) {
    for (const char* const name : {"ev1/last", "Ev2/last", "xev/last", "imported_ev3/last"})
        put(name, lastFile());
    source.readSeisCompVers2_6(false, entries(root));
    EXPECT_TRUE(stored().empty());
    read();
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(SeisCompSource, RenamesAKnownEventsFolderAfterAnHour) {
    put("ev1/last", lastFile());
    setAge("ev1/last", 3601);
    read();
    EXPECT_EQ(folders(""), Texts{"ev1"}); // stored only
    read();
    EXPECT_EQ(folders(""), Texts{"imported_ev1"});
    EXPECT_EQ(stored(), Texts{storedEvent});
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(SeisCompSource, LeavesAFolderAloneForAnHour) {
    store(utc, "SEISCP");
    put("ev1/last", lastFile());
    for (const int seconds : {-7200, 0, 3600}) {
        setAge("ev1/last", seconds);
        read();
        EXPECT_EQ(folders(""), Texts{"ev1"}) << seconds;
    }
    setAge("ev1/last", 3601);
    read();
    EXPECT_EQ(folders(""), Texts{"imported_ev1"});
}

TEST_F(SeisCompSource, TakesTheAgeOfAFileInLocalTime) {
    const testing::TimeZone rome("Europe/Rome");
    store(utc, "SEISCP");
    put("ev1/last", lastFile());
    setAge("ev1/last", 3600 + 3601); // the clock shows local time, an hour before UTC's
    read();
    EXPECT_EQ(folders(""), Texts{"imported_ev1"});
}

TEST_F(SeisCompSource, UpdatesBeforeItRenames) {
    store(utc, "SEISCP");
    put("ev1/last", lastFile());
    setAge("ev1/last", 3601);
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(folders(""), Texts{"imported_ev1"});
}

TEST_F(SeisCompSource, KeepsTheLastOfKnownEventsOfOneTime) {
    store(utc, "SEISCP");
    put("ev1/last", lastFile(solution("11.23 E", "ML 1.0")));
    put("ev2/last", lastFile(solution("11.23 E", "ML 2.0")));
    put("ev3/last", lastFile(solution("11'23 E", "ML 3.0"))); // refused
    read();
    EXPECT_EQ(rows("select Magnitude from Events"), Texts{"2.0"});
    EXPECT_EQ(session.maxNewMagnitude, 3);
    EXPECT_EQ(log.messages.size(), 1U);
}

TEST_F(SeisCompSource, UpdatesEachRowOfOneTimeOnceForManyEvents) {
    for (int i = 0; i < 2000; ++i)
        makeFolder(fmt::format("ev{:05}", i));
    read();
    ASSERT_EQ(eventCount(), 2000);
    const auto changedRows = [this] { return std::stoi(rows("select total_changes()").at(0)); };
    const int before = changedRows();
    read();
    EXPECT_EQ(changedRows() - before, 2000);
    EXPECT_EQ(eventCount(), 2000);
}

TEST_F(SeisCompSource, StoresAnEmptyRowForAFolderWithoutLast) {
    makeFolder("ev1");
    makeFolder("ev2");
    read();
    EXPECT_EQ(stored(), (Texts{"|||||SEISCP", "|||||SEISCP"}));
    clock.advance(std::chrono::hours(48));
    read();
    EXPECT_EQ(stored(), (Texts{"|||||SEISCP", "|||||SEISCP"}));
    EXPECT_EQ(folders(""), (Texts{"ev1", "ev2"}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(SeisCompSource, TakesAFolderWithoutSolutionForTheOneBefore) {
    put("ev1/last", lastFile());
    makeFolder("ev2"); // without a file: changes nothing for the next one
    put("ev3/last", "no solution yet\n");
    read();
    EXPECT_EQ(stored(), (Texts{storedEvent, "|||||SEISCP", storedEvent}));
}

TEST_F(SeisCompSource, RaisesError9ForAFirstFolderWithoutSolution) {
    put("ev1/last", "no solution yet\n");
    put("ev2/last", lastFile());
    put("ev3/last", "LocSAT solution\n");
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(log.messages, Texts{fmt::format("2 SeisComP folders {}{} (Subscript out of range)",
                                              missingText, at("ev1/last"))});
    EXPECT_NE(harness.prompts.lastErrorText.find("readSeisCompVers2_6"), std::string::npos);
}

TEST_F(SeisCompSource, ForgetsTheSolutionsOfTheRunBefore) {
    put("ev1/last", lastFile());
    read();
    put("ev1/last", "no solution any more\n");
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
}

TEST_F(SeisCompSource, AsksOnceForManyBrokenFolders) {
    for (int i = 0; i < 300; ++i)
        put(fmt::format("ev{:03}/last", i), lastFile("broken"));
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    read();
    EXPECT_TRUE(stored().empty());
    EXPECT_EQ(log.messages.size(), 1U);
}

TEST_F(SeisCompSource, FollowsTheMagnitudesUnderBothLocales) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        tremor::SeisCompSource own(context, harness.prompts, "/program", locale);
        put("ev1/last", lastFile(solution("11.23 E", "ML 2.5")));
        put("ev2/last", lastFile(solution("11.23 E", "ML 3.7", "02:04:00")));
        put("ev3/last", lastFile(solution("11.23 E", "ML 1.2", "02:05:00")));
        session.maxNewMagnitude = 3.1F;
        own.readSeisCompVers2_6(false, entries(settings.LocalSourcePath)); // new, then known ones
        EXPECT_EQ(session.maxNewMagnitude, 3.7F);
        EXPECT_EQ(session.LastNewMagnitude, 1.2F);
    }
    session.maxNewMagnitude = 8;
    read();
    EXPECT_EQ(session.maxNewMagnitude, 8);
}

TEST_F(SeisCompSource, HoldsMagnitudesToTheirRange) {
    put("ev1/last", lastFile(solution("11.23 E", "ML 9e99")));
    read();
    EXPECT_EQ(session.maxNewMagnitude, std::numeric_limits<float>::max());
    put("ev1/last", lastFile(solution("11.23 E", "ML none")));
    read();
    EXPECT_EQ(session.LastNewMagnitude, 0);
}

TEST_F(SeisCompSource, TriesAgainWhenTheCatalogueFails) {
    store(utc, "SEISCP");
    put("ev1/last", lastFile());
    put("ev2/last", lastFile(solution("11.23 E", "ML 3.7", "02:04:00")));
    setAge("ev1/last", 3601);
    setAge("ev2/last", 3601);
    breakCatalogue();
    read();
    EXPECT_EQ(folders(""), (Texts{"ev1", "ev2"}));
    EXPECT_EQ(log.messages,
              Texts{"2 events from SeisComP could not be stored, they will be read again: "
                    "8 attempt to write a readonly database"});
    EXPECT_EQ(stored(), Texts{utc + "|||||SEISCP"});
    mendCatalogue();
    read();
    EXPECT_EQ(eventCount(), 2);
    EXPECT_EQ(folders(""), (Texts{"ev2", "imported_ev1"}));
}

TEST_F(SeisCompSource, StoresNothingWithoutAnAnswerToTheQuery) {
    put("ev1/last", lastFile());
    ASSERT_EQ(database.slsExe("alter table Events rename to Elsewhere"), 0);
    read();
    EXPECT_EQ(log.messages.size(), 1U);
    EXPECT_NE(log.messages.at(0).find("no such table"), std::string::npos);
    EXPECT_EQ(folders(""), Texts{"ev1"});
}

TEST_F(SeisCompSource, LosesOnlyTheRowThatTheCatalogueRefuses) {
    put("ev1/last", lastFile(solution("11'23 E")));
    put("ev2/last", lastFile(solution("11.23 E", "ML 3.7", "02'04:00")));
    put("ev3/last", lastFile());
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(log.messages, Texts{"2 events from SeisComP could not be stored: a value holds an "
                                  "apostrophe or a zero byte"});
}

TEST_F(SeisCompSource, KnowsATimeWithADoubledApostropheAgain) {
    put("ev1/last", lastFile(solution("11.23 E", "ML 3.7", "02''04:00")));
    read();
    read();
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(SeisCompSource, DoesNotTakeATimeWithAnApostropheForAnEmptyOne) {
    makeFolder("ev1");
    read();
    put("ev2/last", lastFile(solution("11.23 E", "ML 3.7", "02'04:00")));
    setAge("ev2/last", 3601);
    read();
    EXPECT_EQ(stored(), Texts{"|||||SEISCP"});
    EXPECT_EQ(folders(""), (Texts{"ev1", "ev2"}));
}

TEST_F(SeisCompSource, ReportsAFolderThatCannotBeRenamed) {
    store(utc, "SEISCP");
    put("ev1/last", lastFile());
    put("imported_ev1/last", "an older one");
    setAge("ev1/last", 3601);
    harness.prompts.expectRuntimeError("Number: 75", ErrorAnswer::Ignore);
    read();
    EXPECT_EQ(stored(), Texts{storedEvent});
    EXPECT_EQ(textOf("imported_ev1/last"), "an older one");
    EXPECT_EQ(folders(""), (Texts{"ev1", "imported_ev1"}));
    EXPECT_EQ(log.messages, Texts{fmt::format("1 SeisComP folders {}{} (Path/File access error)",
                                              missingText, at("ev1"))});
}

TEST_F(SeisCompSource, RefusesAPipeAndAHugeFileInPlaceOfLast) {
    makeFolder("ev1");
    ASSERT_EQ(::mkfifo(at("ev1/last").c_str(), 0600), 0);
    harness.prompts.expectRuntimeError("Number: 75", ErrorAnswer::Ignore);
    read();
    fs::remove(at("ev1/last"));
    put("ev1/last", lastFile());
    fs::resize_file(at("ev1/last"), 3ULL << 30);
    harness.prompts.expectRuntimeError("Number: 7\r\n", ErrorAnswer::Ignore);
    read();
    EXPECT_TRUE(stored().empty());
}

TEST_F(SeisCompSource, TakesALinkThatLeadsNowhereAndAFolderForAMissingLast) {
    makeFolder("ev1");
    fs::create_symlink("nowhere", at("ev1/last"));
    makeFolder("ev2");
    fs::create_symlink("last", at("ev2/last"));
    makeFolder("ev3/last");
    read();
    EXPECT_EQ(stored(), (Texts{"|||||SEISCP", "|||||SEISCP", "|||||SEISCP"}));
}

TEST_F(SeisCompSource, ReadsFolderNamesThatAreNotUtf8OrHoldAComma) {
    store(utc, "SEISCP");
    put("ev\xff/last", lastFile());
    put("ev,1/last", lastFile());
    setAge("ev\xff/last", 3601);
    setAge("ev,1/last", 3601);
    read();
    EXPECT_EQ(folders(""), (Texts{"imported_ev,1", "imported_ev\xff"}));
}

TEST_F(SeisCompSource, SearchesTheCatalogueOnceForThousandsOfFolders) {
    ASSERT_EQ(database.slsExe("with recursive n(i) as (select 1 union all select i + 1 from n "
                              "where i < 400000) insert into Events(UTC, Source) "
                              "select '1990-01-01 00:00:' || i, 'SURVEY-INGV' from n"),
              0);
    for (int i = 0; i < 2000; ++i)
        put(fmt::format("ev{:05}/last", i),
            lastFile(solution("11.23 E", "ML 1.0", fmt::format("02:03:{:05}", i))));
    // Its pages do not fit into the memory that SQLite keeps them in: each search reads the file.
    const auto catalogue = fs::file_size(cataloguePath());
    EXPECT_LT(bytesRead([&] { read(); }), 2 * catalogue); // all are new
    EXPECT_LT(bytesRead([&] { read(); }), 2 * catalogue); // all are known
    EXPECT_EQ(eventCount(), 402000);
}

class SeisCompManualImport : public SeisCompSource {
  protected:
    void import(const std::string& path) {
        harness.prompts.expectFileDialog("Select last file...", path);
        source.readSeisCompVers2_6(true, {});
        EXPECT_FALSE(session.ImportInProgress);
    }
};

TEST_F(SeisCompManualImport, AsksForAFileInTheProgramsFolder) {
    harness.prompts.expectFileDialog("Select last file...", std::nullopt);
    source.readSeisCompVers2_6(true, {});
    const FileDialogRequest& request = harness.prompts.lastFileDialog;
    EXPECT_EQ(request.filter, "Last Seiscomp (last)|*last");
    EXPECT_EQ(request.defaultExtension, "db");
    EXPECT_EQ(request.initialFolder, "/program");
    EXPECT_FALSE(request.forSaving);
    EXPECT_FALSE(request.multiSelect);
    EXPECT_FALSE(session.ImportInProgress);
    EXPECT_TRUE(log.messages.empty());
}

// Sees the flag while the operator chooses.
class FlagPrompts : public testing::ScriptedPrompts {
  public:
    explicit FlagPrompts(const Session& session) : session_(session) {}
    std::optional<std::string> showFileDialog(const FileDialogRequest&) override {
        EXPECT_TRUE(session_.ImportInProgress);
        ++asked;
        return std::nullopt;
    }
    int asked = 0;

  private:
    const Session& session_;
};

TEST_F(SeisCompManualImport, HoldsThePollingWhileTheOperatorChooses) {
    FlagPrompts prompts(session);
    tremor::SeisCompSource(context, prompts, "/program", NumberLocale::point())
        .readSeisCompVers2_6(true, {});
    EXPECT_EQ(prompts.asked, 1);
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(SeisCompManualImport, StoresNothingAndSaysSo) {
    store(utc, "SEISCP");
    put("chosen_last", realDocument());
    import(at("chosen_last"));
    EXPECT_EQ(stored(), Texts{utc + "|||||SEISCP"});
    EXPECT_EQ(log.messages, Texts{"41 events of the chosen file could not be stored: "
                                  "1 6 values for 5 columns"});
    EXPECT_EQ(database.slsExe("BEGIN"), 0); // no transaction is left open
}

TEST_F(SeisCompManualImport, SaysNothingForAFileWithoutSolutions) {
    put("last", "nothing\n");
    import(at("last"));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(SeisCompManualImport, ReportsAFileThatCannotBeRead) {
    harness.prompts.expectFileDialog("Select last file...", at("missing"));
    harness.prompts.expectRuntimeError("Number: 53", ErrorAnswer::Ignore);
    source.readSeisCompVers2_6(true, {});
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(SeisCompManualImport, AsksOnceForAllBrokenSolutions) {
    put("last", lastFile("a") + lastFile("b") + lastFile());
    harness.prompts.expectFileDialog("Select last file...", at("last"));
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    source.readSeisCompVers2_6(true, {});
    EXPECT_EQ(log.messages, (Texts{fmt::format("2 solutions {}{} (Subscript out of range)",
                                               missingText, at("last")),
                                   "1 events of the chosen file could not be stored: "
                                   "1 6 values for 5 columns"}));
}

} // namespace
} // namespace tremor
