#include "ingest/csv_export.h"
#include "ingest/csv_import.h"
#include "ingest/feed_fixture.h"

#include <fmt/format.h>

namespace tremor {
namespace {

using namespace std::string_literals;
using testing::Texts;

const std::string line = "2021-01-14 05:45:26.600;38.9802;15.3048;268.5;3.3;SURVEY-INGV\n";
const std::string stored = "2021-01-14 05:45:26.600|38.9802|15.3048|268.5|3.3|SURVEY-INGV";
constexpr std::string_view noImport = "Impossible data import from this CSV.";

std::string lineAt(const std::string& utc, const std::string& source = "INGV") {
    return utc + ";42.5;13.25;10;2.1;" + source + "\n";
}

// The elements of a file, fields joined by "|".
Texts elementsOf(const std::string& text) {
    Texts elements;
    const CsvEvents events(text);
    events.forEach([&](const ImportRecord& record) {
        EXPECT_EQ(record.element, elements.size());
        elements.push_back(fmt::format("{}|{}|{}|{}|{}|{}", record.UTC, record.Latitude,
                                       record.Longitude, record.Depth, record.Magnitude,
                                       record.Source));
        return true;
    });
    EXPECT_EQ(events.elements(), elements.size());
    return elements;
}

std::string magnitudeOf(const std::string& text) {
    const Texts elements = elementsOf("ab;1;2;3;" + text + ";S\n");
    return elements.at(0).substr(9, elements.at(0).size() - 11);
}

class CsvImportTest : public testing::ImportFixture {
  protected:
    void import(std::string_view text, std::int32_t isideFlag = 0) {
        csvImport.CsvFileName = folder.file("chosen.csv");
        testing::writeText(csvImport.CsvFileName, text);
        csvImport.readCSV(isideFlag);
    }

    // The log without the date and time that stand before some texts.
    Texts logTexts() const {
        Texts texts;
        for (const std::string& message : log.messages)
            texts.push_back(message.starts_with(present) ? message.substr(present.size())
                                                         : message);
        return texts;
    }

    Texts storedRows() {
        return rows("select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events "
                    "order by rowid");
    }

    const std::string present = "03/07/2014 09:05:12"; // the clock's, in the locale's form
    CsvImport csvImport{context, harness.prompts, NumberLocale::point()};
};

// --- the form of a file ---------------------------------------------------------------------

TEST(CsvEvents, TakesSixFieldsAsTheyStand) {
    EXPECT_EQ(elementsOf(line), Texts{stored});
    EXPECT_EQ(elementsOf(" a ; 1;+2;;;\n"), Texts{" a | 1|+2|||"});
    EXPECT_EQ(elementsOf("ab;1;2;3;4;S;7;8\n"), Texts{"ab|1|2|3|4|S"});
    EXPECT_EQ(elementsOf("b\xE8\xFF;1;2;3;4;Forl\xEC\n"), Texts{"b\xE8\xFF|1|2|3|4|Forl\xEC"});
}

TEST(CsvEvents, CountsNoElementForAComment) {
    const CsvEvents events("#TREMORLEDGER CSV#\n#;;;;;\n" + line + "#\n");
    EXPECT_EQ(events.lines(), 4U);
    EXPECT_EQ(events.elements(), 1U);
    EXPECT_EQ(elementsOf("#a\n" + line + "#b\n" + line), (Texts{stored, stored}));
    EXPECT_EQ(elementsOf(" #a;1;2;3;4;S\n"), Texts{" #a|1|2|3|4|S"});
}

TEST(CsvEvents, HasAHoleForALineWhoseFirstFieldHasFewerThanTwoCharacters) {
    for (const std::string text : {"", "\r", "x", ";", "x;1;2;3;4;S", ";1;2;3;4;S"})
        EXPECT_EQ(elementsOf(fmt::format("{}\n{}", text, line)), (Texts{"|||||", stored})) << text;
}

TEST(CsvEvents, LosesALastLineWithoutALineFeed) {
    EXPECT_EQ(elementsOf(line + "ab;1;2;3;4;S"), Texts{stored});
    EXPECT_TRUE(elementsOf("ab;1;2;3;4;S").empty());
    EXPECT_EQ(CsvEvents("ab;1;2;3;4;S").lines(), 0U);
}

TEST(CsvEvents, DoesNotCountALastLineOfACarriageReturnAlone) {
    EXPECT_EQ(elementsOf(line + "\r\n"), Texts{stored});
    EXPECT_EQ(elementsOf(line + "\r\n\r\n"), (Texts{stored, "|||||"}));
    EXPECT_EQ(elementsOf(line + "\r\nlost"), Texts{stored});
    EXPECT_EQ(elementsOf(line + "\r"), Texts{stored});
    EXPECT_EQ(CsvEvents("\r\n").lines(), 0U);
    EXPECT_EQ(CsvEvents("\n\r\n").lines(), 1U);
}

TEST(CsvEvents, KeepsTheCarriageReturnOfAForeignFileInTheSource) {
    EXPECT_EQ(elementsOf("ab;1;2;3;4;S\r\ncd;1;2;3;4;T\r\n"),
              (Texts{"ab|1|2|3|4|S\r", "cd|1|2|3|4|T\r"}));
}

TEST(CsvEvents, TakesAByteOrderMarkForAPartOfTheFirstLine) {
    EXPECT_EQ(elementsOf("\xEF\xBB\xBF" + line), Texts{"\xEF\xBB\xBF" + stored});
    EXPECT_EQ(CsvEvents("\xEF\xBB\xBF#TREMORLEDGER CSV#\n" + line).incomplete(), 1U);
}

TEST(CsvEvents, KeepsOnlyDigitsPointAndCommaOfAMagnitude) {
    EXPECT_EQ(magnitudeOf("M 4,5"), "4,5");
    EXPECT_EQ(magnitudeOf("4.5"), "4.5");
    EXPECT_EQ(magnitudeOf("M1 4.5"), "14.5");
    EXPECT_EQ(magnitudeOf("-0.3"), "0.3");
    EXPECT_EQ(magnitudeOf("Magnitude"), "");
    EXPECT_EQ(magnitudeOf("1e3"), "13");
    EXPECT_EQ(magnitudeOf(""), "");
}

TEST(CsvEvents, LeavesLinesOutThatHaveATimeButFewerThanSixFields) {
    const std::string text = "ab\n" + line + "ab;1;2;3;4\nab;\n" + line;
    EXPECT_EQ(CsvEvents(text).incomplete(), 3U);
    EXPECT_EQ(CsvEvents(text).lines(), 5U);
    EXPECT_EQ(elementsOf(text), (Texts{stored, stored}));
}

TEST(CsvEvents, EndsEarlyWhenTheVisitorWantsNoMore) {
    int seen = 0;
    CsvEvents(line + "\n" + line).forEach([&](const ImportRecord&) { return ++seen < 2; });
    EXPECT_EQ(seen, 2);
}

TEST(CsvEvents, CutAtEveryPlaceGivesOnlyWholeEvents) {
    const std::string document = "#head\n" + line + line + "\r\n";
    for (std::size_t size = 0; size <= document.size(); ++size) {
        for (const std::string& element : elementsOf(document.substr(0, size)))
            EXPECT_EQ(element, stored) << size;
    }
}

// Work that grows with the square of the length would not end.
TEST(CsvEvents, ReadsLongLinesAndManyHoles) {
    std::string text = testing::filled(";") + "\n" + testing::filled("a") + "\n";
    for (int i = 0; i < 300000; ++i)
        text += "\n#\nab;;;;;\n";
    const CsvEvents events(text);
    std::size_t seen = 0;
    events.forEach([&](const ImportRecord&) { return ++seen != 0; });
    EXPECT_EQ(seen, events.elements());
    EXPECT_EQ(events.incomplete(), 1U);
}

// --- the import -----------------------------------------------------------------------------

TEST_F(CsvImportTest, ImportsAFileOfTheOperators) {
    import("#TREMORLEDGER CSV#\n" + line + lineAt("2021-01-14 05:45:27.000", "O''Brien"));
    EXPECT_EQ(storedRows(), (Texts{stored, "2021-01-14 05:45:27.000|42.5|13.25|10.0|2.1|O'Brien"}));
    EXPECT_EQ(rows("select distinct typeof(\"null\") from Events"), Texts{"null"});
    EXPECT_EQ(log.messages,
              (Texts{present + "  2 Events Imported", "2 Events imported from a csv file."}));
    EXPECT_FALSE(session.ImportInProgress);
    EXPECT_EQ(csvImport.CsvImportCount, 1);
}

TEST_F(CsvImportTest, WritesTheDateInTheOperatorsLocale) {
    CsvImport comma(context, harness.prompts, NumberLocale::comma());
    comma.CsvFileName = folder.file("a.csv");
    testing::writeText(comma.CsvFileName, line);
    comma.readCSV(0);
    EXPECT_EQ(log.messages.at(0), "07/03/2014 09:05:12  1 Events Imported");
    EXPECT_EQ(storedRows(), Texts{stored});
}

TEST_F(CsvImportTest, ExportedAndImportedIntoTheSameCatalogueImportsNothing) {
    for (int i = 10; i < 40; ++i)
        store(fmt::format("2021-01-14 05:45:{}.600", i), i % 2 == 0 ? "EMSC" : "SURVEY-INGV");
    CsvExport(context, settings, folder.path()).mnu_exportDatabaseCSV_Click();
    csvImport.CsvFileName = folder.file("DB.csv");
    log.messages.clear();
    csvImport.readCSV(0);
    EXPECT_EQ(logTexts(), (Texts{" nothing imported...", "0 Events imported from a csv file."}));
    EXPECT_EQ(eventCount(), 30);
}

TEST_F(CsvImportTest, OfACommentOnlyFileLogsACountOfZero) {
    import("#a\n#b\n");
    EXPECT_EQ(logTexts(), (Texts{" nothing imported...", "0 Events imported from a csv file."}));
    EXPECT_EQ(status.maximum, 1);
    EXPECT_EQ(status.eventsTexts, Texts{"0 / 0"});
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(CsvImportTest, OfLast24HoursStoresTheHeadAsARowTheFirstTime) {
    const std::string text = "UTC;Latitude;Longitude;Depth;Magnitude;Source\n" + line + "\r\n";
    import(text);
    EXPECT_EQ(storedRows(), (Texts{"UTC|Latitude|Longitude|Depth||Source", stored}));
    import(text);
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(CsvImportTest, WritesAnEmptyRowForABlankLineBetweenRows) {
    import(line + "\n" + lineAt("b1"));
    EXPECT_EQ(storedRows(), (Texts{stored, "|||||", "b1|42.5|13.25|10.0|2.1|INGV"}));
    EXPECT_EQ(rows("select typeof(Depth), typeof(UTC) from Events where UTC = ''"),
              Texts{"text|text"});
    EXPECT_EQ(logTexts().at(1), "2 Events imported from a csv file."); // holes are not counted
}

TEST_F(CsvImportTest, MarksABlankLineInPlaceOfTheDuplicatesBehindIt) {
    store("b1", "INGV");
    import(line + "\n" + lineAt("b1"));
    EXPECT_EQ(rows("select UTC from Events order by rowid"),
              (Texts{"b1", "2021-01-14 05:45:26.600", "b1"}));
    EXPECT_EQ(logTexts().at(1), "2 Events imported from a csv file.");
}

TEST_F(CsvImportTest, StoresTheMagnitudeTextWithItsComma) {
    import("ab;1;2;3;M 4,5;S\n");
    EXPECT_EQ(rows("select Magnitude from Events"), Texts{"4,5"});
}

TEST_F(CsvImportTest, OfAFileWithoutAClosingLineFeedLosesItsLastLine) {
    import(line + "ab;1;2;3;4;S");
    EXPECT_EQ(storedRows(), Texts{stored});
}

TEST_F(CsvImportTest, SaysThatAnEmptyFileOrASingleLineCannotBeImported) {
    for (const std::string& text :
         {""s, line.substr(0, line.size() - 1), "\r\n"s, "#TREMORLEDGER CSV#"s}) {
        log.messages.clear();
        import(text);
        EXPECT_EQ(log.messages, Texts{std::string(noImport)});
        log.messages.clear();
        import(text, 1);
        EXPECT_EQ(log.messages, Texts{"Impossible connect to a ISIDE source, try later."});
    }
    EXPECT_EQ(csvImport.CsvImportCount, 0);
}

TEST_F(CsvImportTest, ComparesAUsersFileWithAllRowsAndIsideWithAllButEmsc) {
    store("a1", "EMSC");
    store("b1", "USGS");
    import(lineAt("a1") + lineAt("b1"));
    EXPECT_EQ(eventCount(), 2);
    import(lineAt("a1") + lineAt("b1"), 1);
    EXPECT_EQ(rows("select UTC from Events where Source = 'INGV'"), Texts{"a1"});
}

TEST_F(CsvImportTest, InsertsTheSecondOfTwoEqualTimesThatAreStoredAlready) {
    store("a1", "INGV");
    import(lineAt("a1") + lineAt("a1") + lineAt("b1") + lineAt("b1"));
    EXPECT_EQ(logTexts().at(1), "3 Events imported from a csv file.");
}

TEST_F(CsvImportTest, NamesTheSourceByTheNameOfTheFile) {
    csvImport.CsvFileName = folder.file("my-events.csv");
    testing::writeText(csvImport.CsvFileName, line);
    csvImport.readCSV(0);
    EXPECT_EQ(logTexts().at(1), "1 Events imported from ISIDE");
    import(line, 1);
    EXPECT_EQ(logTexts().at(3), "0 Events imported from a csv file.");
}

TEST_F(CsvImportTest, CompactsTheCatalogueAtThe25thImportWhetherOrNotItImportedAnything) {
    ASSERT_EQ(database.slsExe("insert into Events(UTC) with recursive n(i) as (select 1 union all "
                              "select i + 1 from n where i < 5000) select 'event ' || i from n"),
              0);
    ASSERT_EQ(database.slsExe("delete from Events"), 0);
    const auto freePages = [&] { return rows("pragma freelist_count").at(0); };
    for (int run = 1; run < 25; ++run) {
        import("#a\n");
        EXPECT_EQ(csvImport.CsvImportCount, run);
    }
    import(""); // no import
    EXPECT_NE(freePages(), "0");
    import("#a\n");
    EXPECT_EQ(freePages(), "0");
    EXPECT_EQ(csvImport.CsvImportCount, 0);
}

TEST_F(CsvImportTest, ReportsLinesWithTooFewFieldsOnceAndImportsTheOthers) {
    harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    import("ab;1;2\n" + line + "cd\nef;1;2;3;4\n" + lineAt("b1"));
    EXPECT_EQ(rows("select UTC from Events order by rowid"),
              (Texts{"2021-01-14 05:45:26.600", "b1"}));
    EXPECT_EQ(logTexts(), (Texts{"  2 Events Imported", "2 Events imported from a csv file.",
                                 "3 events lack a value and were not imported"}));
}

TEST_F(CsvImportTest, KeepsTheDuplicateCheckBehindALineWithTooFewFields) {
    store("b1", "INGV");
    harness.prompts.expectRuntimeError("readCSV (Form - panel)", ErrorAnswer::Ignore);
    import("ab;1;2\n" + lineAt("b1"));
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(CsvImportTest, LosesOnlyTheRowsWithApostrophesAndZeroBytes) {
    import(lineAt("a1", "L'Aquila") + lineAt("b1") + lineAt("c\0d"s) +
           lineAt("x'); drop table Events; --"));
    EXPECT_EQ(rows("select UTC from Events"), Texts{"b1"});
    EXPECT_EQ(logTexts(), (Texts{"  4 Events Imported", "4 Events imported from a csv file.",
                                 "3 of these events could not be stored: a value holds an "
                                 "apostrophe or a zero byte"}));
}

TEST_F(CsvImportTest, ImportsNothingWhenTheDuplicateCheckFails) {
    ASSERT_EQ(database.slsExe("alter table Events rename column UTC to Time"), 0);
    import("\n" + line);
    EXPECT_EQ(eventCount(), 0);
    EXPECT_EQ(logTexts().at(0), "  1 Events Imported");
    EXPECT_TRUE(logTexts().at(2).starts_with("1 of these events could not be stored: 1 "));
}

TEST_F(CsvImportTest, MovesTheBarAtElementsThatAreMultiplesOfFifty) {
    std::string text = "#head\n#head\n";
    for (int i = 0; i <= 120; ++i)
        text += lineAt(fmt::format("t{}", i));
    import(text);
    EXPECT_EQ(status.maximum, 121);
    EXPECT_EQ(status.values, (std::vector<int>{0, 50, 100, 121, 121}));
    EXPECT_EQ(status.eventsTexts, (Texts{"50 / 121", "100 / 121", "121 / 121", "121 / 121"}));
}

TEST_F(CsvImportTest, TreatsAMissingFileAsARuntimeErrorAndThenAsAnEmptyOne) {
    harness.prompts.expectRuntimeError("Number: 53", ErrorAnswer::Ignore);
    csvImport.CsvFileName = folder.file("missing.csv");
    csvImport.readCSV(0);
    EXPECT_EQ(log.messages, Texts{std::string(noImport)});
}

TEST_F(CsvImportTest, RefusesAFileOfMoreThanTwoGigabytes) {
    csvImport.CsvFileName = folder.file("large.csv");
    testing::writeText(csvImport.CsvFileName, "");
    std::filesystem::resize_file(csvImport.CsvFileName, (1ULL << 31) + 1); // a sparse file
    harness.prompts.expectRuntimeError("Number: 7", ErrorAnswer::Ignore);
    csvImport.readCSV(0);
    EXPECT_EQ(log.messages, Texts{std::string(noImport)});
}

TEST_F(CsvImportTest, GetsThroughARandomBinary) {
    const std::string bytes = testing::randomBytes();
    if (CsvEvents(bytes + "\n").incomplete() > 0)
        harness.prompts.expectRuntimeError("Number: 9", ErrorAnswer::Ignore);
    import(bytes + "\n" + line);
    EXPECT_EQ(rows("select UTC from Events where Source = 'SURVEY-INGV'"),
              Texts{"2021-01-14 05:45:26.600"});
}

TEST_F(CsvImportTest, PaintsTheWindowsDuringALongImport) {
    // A clock on which every look is later than the one before.
    class HurryingClock : public testing::FakeClock {
      public:
        std::chrono::milliseconds steady() const override {
            return std::chrono::milliseconds(100 * ++looks_);
        }

      private:
        mutable int looks_ = 0;
    };
    HurryingClock hurrying;
    FeedContext same{session,  settings,       hosts,
                     database, status,         hurrying,
                     log,      harness.errors, [] { return std::string(); }};
    CsvImport import(same, harness.prompts, NumberLocale::point());
    import.CsvFileName = folder.file("long.csv");
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += lineAt(fmt::format("t{}", i));
    testing::writeText(import.CsvFileName, text);
    import.readCSV(0);
    EXPECT_GE(hurrying.repaints, 4); // in the passes over 5000 lines, a look every 1024
    EXPECT_EQ(hurrying.pumps, 0);
    EXPECT_EQ(eventCount(), 5000);
}

TEST_F(CsvImportTest, OfALargeFileFindsItsDuplicatesAgain) {
    std::string text;
    for (int i = 0; i < 50000; ++i)
        text += lineAt(fmt::format("2021-01-14 {:05}", i));
    import(text);
    EXPECT_EQ(eventCount(), 50000);
    import(lineAt("2021-01-14 new") + text);
    EXPECT_EQ(eventCount(), 50001);
}

// --- the menu -------------------------------------------------------------------------------

TEST_F(CsvImportTest, AsksForAFileAndImportsItWhileNoSourceStarts) {
    class WatchingPrompts : public testing::ScriptedPrompts {
      public:
        explicit WatchingPrompts(const Session& session) : session_(session) {}
        std::optional<std::string> showFileDialog(const FileDialogRequest& request) override {
            EXPECT_TRUE(session_.ImportInProgress);
            return ScriptedPrompts::showFileDialog(request);
        }

      private:
        const Session& session_;
    };
    WatchingPrompts prompts(session);
    CsvImport import(context, prompts, NumberLocale::point());
    testing::writeText(folder.file("a.csv"), line);
    prompts.expectFileDialog("Select Csv file...", folder.file("a.csv"));
    import.mnu_ImportCSV_Click();
    EXPECT_EQ(prompts.lastFileDialog.filter, "Csv File (*.csv)|*.csv");
    EXPECT_EQ(prompts.lastFileDialog.defaultExtension, "db");
    EXPECT_EQ(prompts.lastFileDialog.initialName, "");
    EXPECT_FALSE(prompts.lastFileDialog.forSaving);
    EXPECT_FALSE(prompts.lastFileDialog.multiSelect);
    EXPECT_EQ(import.CsvFileName, folder.file("a.csv"));
    EXPECT_EQ(storedRows(), Texts{stored});
    EXPECT_FALSE(session.ImportInProgress);
}

TEST_F(CsvImportTest, ImportsNothingWhenTheDialogIsCancelled) {
    csvImport.CsvFileName = "before.csv";
    for (const std::optional<std::string>& chosen :
         {std::optional<std::string>(), std::optional<std::string>("")}) {
        harness.prompts.expectFileDialog("Select Csv file...", chosen);
        csvImport.mnu_ImportCSV_Click();
        EXPECT_FALSE(session.ImportInProgress);
    }
    EXPECT_EQ(csvImport.CsvFileName, "before.csv");
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CsvImportTest, ClearsTheFlagWhenTheChosenFileCannotBeImported) {
    testing::writeText(folder.file("a.csv"), "");
    harness.prompts.expectFileDialog("Select Csv file...", folder.file("a.csv"));
    csvImport.mnu_ImportCSV_Click();
    EXPECT_EQ(log.messages, Texts{std::string(noImport)});
    EXPECT_FALSE(session.ImportInProgress);
}

} // namespace
} // namespace tremor
