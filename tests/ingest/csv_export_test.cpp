#include "ingest/csv_export.h"
#include "ingest/import_fixture.h"
#include "support/file_size_limit.h"
#include "support/ordinary_user.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <filesystem>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

const std::string head = "#TREMORLEDGER CSV#\n#UTC;Latitude;Longitude;Depth;Magnitude;Source\n";
const std::string dayHead = "UTC;Latitude;Longitude;Depth;Magnitude;Source\n";

class CsvExportTest : public testing::ImportFixture {
  protected:
    void storeEvent(const std::string& utc, const std::string& source = "SURVEY-INGV") {
        ASSERT_EQ(database.slsExe("insert into Events(UTC, Latitude, Longitude, Depth, Magnitude, "
                                  "Source) values ('" +
                                  utc + "', '38.9802', '15.3048', '10', '3.3', '" + source + "')"),
                  0);
    }
    void storeMany(int count) {
        ASSERT_EQ(database.slsExe(fmt::format(
                      "insert into Events(UTC) with recursive n(i) as (select 1 union all select "
                      "i + 1 from n where i < {}) select 'event ' || i from n",
                      count)),
                  0);
    }

    std::string all() const { return folder.file("DB.csv"); }
    std::string lastDay() const { return folder.file("last24H.csv"); }
    std::ptrdiff_t filesBesideTheCatalogue() const {
        return std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()) - 1;
    }

    CsvExport csvExport{context, settings, folder.path()};
};

class LockingProgram {
  public:
    explicit LockingProgram(const std::string& path) {
        EXPECT_EQ(sqlite3_open(path.c_str(), &handle_), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(handle_, "begin exclusive", nullptr, nullptr, nullptr), SQLITE_OK);
    }
    ~LockingProgram() { sqlite3_close(handle_); }
    LockingProgram(const LockingProgram&) = delete;
    LockingProgram& operator=(const LockingProgram&) = delete;

  private:
    sqlite3* handle_ = nullptr;
};

// --- the whole catalogue --------------------------------------------------------------------

TEST_F(CsvExportTest, WritesAllEventsNewestFirst) {
    storeEvent("2021-01-14 05:45:26.600");
    storeEvent("2021-01-15 05:45:26.600", "EMSC");
    storeEvent("2021-01-13 05:45:26.600", "a;b\xEC");
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()),
              head + "2021-01-15 05:45:26.600;38.9802;15.3048;10.0;3.3;EMSC\n"
                     "2021-01-14 05:45:26.600;38.9802;15.3048;10.0;3.3;SURVEY-INGV\n"
                     "2021-01-13 05:45:26.600;38.9802;15.3048;10.0;3.3;a;b\xEC\n\r\n");
    EXPECT_EQ(log.messages, Texts{"3 Events exported in DB.csv file"});
    EXPECT_EQ(filesBesideTheCatalogue(), 1);
}

TEST_F(CsvExportTest, LeavesRowsWithoutATimeOutAndWritesEmptyColumns) {
    storeEvent("");
    ASSERT_EQ(database.slsExe("insert into Events(UTC) values ('b')"), 0);
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()), head + "b;;;;;\n\r\n");
    EXPECT_EQ(log.messages, Texts{"1 Events exported in DB.csv file"});
}

TEST_F(CsvExportTest, OfAnEmptyCatalogueIsTheHeadAlone) {
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()), head + "\r\n");
    EXPECT_EQ(log.messages, Texts{"0 Events exported in DB.csv file"});
}

TEST_F(CsvExportTest, ReplacesTheFileThatIsThere) {
    testing::writeText(all(), std::string(100000, 'x'));
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()), head + "\r\n");
}

TEST_F(CsvExportTest, ShowsItsProgressAndPutsTheStatusLineBack) {
    storeMany(10000);
    status.setStatusText("Next update INGV in 5 sec.");
    status.setProgressRange(0, 70);
    status.setProgress(30);
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(status.values, (std::vector<int>{30, 0, 0, 4096, 8192, 30}));
    EXPECT_EQ(status.maximum, 70);
    EXPECT_EQ(status.statusTexts, (Texts{"Next update INGV in 5 sec.", "Exporting events...",
                                         "Next update INGV in 5 sec."}));
    EXPECT_EQ(log.messages, Texts{"10000 Events exported in DB.csv file"});
}

TEST_F(CsvExportTest, PaintsTheWindowsAndLetsNothingElseRun) {
    storeMany(150000);
    int calls = 0;
    database.setBusyCallback([&] {
        ++calls;
        EXPECT_NE(database.slsExe("delete from Events"), 0);
    });
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_GE(calls, 1);
    EXPECT_EQ(clock.pumps + clock.sleeps, 0);
    EXPECT_EQ(log.messages, Texts{"150000 Events exported in DB.csv file"});
}

TEST_F(CsvExportTest, EndsEarlyAndKeepsTheOldFileWhenTheProgramCloses) {
    testing::writeText(all(), "old");
    storeMany(20000);
    class ClosingStatusPanel : public testing::RecordingStatusPanel {
      public:
        explicit ClosingStatusPanel(Session& session) : session_(session) {}
        void setProgress(int value) override {
            RecordingStatusPanel::setProgress(value);
            session_.Closing = session_.Closing || value == 8192;
        }

      private:
        Session& session_;
    };
    ClosingStatusPanel closing(session);
    FeedContext same{session,  settings,       hosts,
                     database, closing,        clock,
                     log,      harness.errors, [] { return std::string(); }};
    CsvExport(same, settings, folder.path()).mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(closing.values, (std::vector<int>{0, 0, 4096, 8192, 0}));
    EXPECT_EQ(testing::fileText(all()), "old");
    EXPECT_TRUE(log.messages.empty());
    EXPECT_EQ(filesBesideTheCatalogue(), 1);
}

TEST_F(CsvExportTest, KeepsTheOldFileWhenTheDiskIsFull) {
    testing::writeText(all(), "old");
    storeMany(100000);
    ASSERT_EQ(database.slsExe("pragma cache_size = -50000"), 0); // sorted without a file
    harness.prompts.expectRuntimeError("Number: 61", ErrorAnswer::Ignore);
    {
        const testing::FileSizeLimit limit(1500000);
        csvExport.mnu_exportDatabaseCSV_Click();
    }
    EXPECT_EQ(testing::fileText(all()), "old");
    EXPECT_EQ(log.messages, Texts{"0 Events exported in DB.csv file"});
    EXPECT_EQ(filesBesideTheCatalogue(), 1);
    EXPECT_EQ(status.statusTexts.back(), "");
}

TEST_F(CsvExportTest, TriesAgainOnRetry) {
    fs::create_directory(all());
    harness.prompts.expectRuntimeError("mnu_exportDatabaseCSV_Click (Form - panel)",
                                       ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Number: 75", ErrorAnswer::Ignore);
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_TRUE(fs::is_directory(all()));
}

TEST_F(CsvExportTest, RaisesPermissionDeniedInAFolderWithoutRights) {
    testing::writeText(all(), "old");
    harness.prompts.expectRuntimeError("Number: 70", ErrorAnswer::Ignore);
    storeEvent("a");
    fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    {
        const testing::OrdinaryUser user;
        csvExport.mnu_exportDatabaseCSV_Click();
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_EQ(testing::fileText(all()), "old");
}

TEST_F(CsvExportTest, RaisesPathNotFoundInAMissingFolder) {
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    CsvExport(context, settings, folder.file("missing")).mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(log.messages, Texts{"0 Events exported in DB.csv file"});
}

TEST_F(CsvExportTest, KeepsTheOldFileAndSaysWhyWhenTheCatalogueCannotBeRead) {
    testing::writeText(all(), "old");
    ASSERT_EQ(database.slsExe("drop table Events"), 0);
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()), "old");
    EXPECT_EQ(log.messages, (Texts{"0 Events exported in DB.csv file",
                                   "DB.csv was not written: 1 no such table: Events"}));
}

TEST_F(CsvExportTest, KeepsTheOldFileWhenAnotherProgramHoldsTheCatalogue) {
    testing::writeText(all(), "old");
    const LockingProgram other(cataloguePath());
    csvExport.mnu_exportDatabaseCSV_Click();
    EXPECT_EQ(testing::fileText(all()), "old");
    EXPECT_EQ(log.messages, (Texts{"0 Events exported in DB.csv file",
                                   "DB.csv was not written: 5 database is locked"}));
}

// --- the last 24 hours ----------------------------------------------------------------------

TEST_F(CsvExportTest, WritesTheEventsOfTheLast24HoursOfTheLocalClock) {
    // The clock stands at 2014-03-07 09:05:12.
    for (const char* utc : {"2014-03-06 09:05:11.999", "2014-03-06 09:05:12.000",
                            "2014-03-07 09:05:11.999", "2014-03-07 09:05:12", "2014-03-08 00:00"})
        storeEvent(utc);
    csvExport.exportLast24HoursCSV();
    EXPECT_EQ(testing::fileText(lastDay()),
              dayHead + "2014-03-07 09:05:12;38.9802;15.3048;10.0;3.3;SURVEY-INGV\n"
                        "2014-03-07 09:05:11.999;38.9802;15.3048;10.0;3.3;SURVEY-INGV\n"
                        "2014-03-06 09:05:12.000;38.9802;15.3048;10.0;3.3;SURVEY-INGV\n\r\n");
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(status.values.empty() && status.statusTexts.empty());
}

TEST_F(CsvExportTest, OfTheLast24HoursSetsTheRangeThatTheSettingsAndTheSessionKeep) {
    csvExport.exportLast24HoursCSV();
    EXPECT_EQ(settings.startDate, "2014-03-06 09:05:12");
    EXPECT_EQ(settings.endDate, "2014-03-07 09:05:12");
    EXPECT_EQ(session.LastUtcFilter,
              "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')");
}

TEST_F(CsvExportTest, OfTheLast24HoursWithoutACatalogueIsTheHeadAlone) {
    database.slClose();
    csvExport.exportLast24HoursCSV();
    EXPECT_EQ(testing::fileText(lastDay()), dayHead + "\r\n");
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CsvExportTest, OfTheLast24HoursIsDroppedWithoutAWordWhereTheOldFileCannotBeDeleted) {
    testing::writeText(lastDay(), "old");
    constexpr auto everybodyReads = static_cast<fs::perms>(0555);
    fs::permissions(folder.path(), everybodyReads);
    {
        const testing::OrdinaryUser user;
        csvExport.exportLast24HoursCSV();
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_EQ(testing::fileText(lastDay()), "old");
    EXPECT_TRUE(log.messages.empty());
    EXPECT_NE(session.LastUtcFilter, "");
}

TEST_F(CsvExportTest, OfTheLast24HoursIsDroppedWithoutAWordWhereAFolderStands) {
    fs::create_directory(lastDay());
    csvExport.exportLast24HoursCSV();
    EXPECT_TRUE(fs::is_directory(lastDay()));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CsvExportTest, OfTheLast24HoursRaisesAnErrorWhereNoFileCanBeMade) {
    harness.prompts.expectRuntimeError("Number: 76", ErrorAnswer::Ignore);
    CsvExport(context, settings, folder.file("missing")).exportLast24HoursCSV();
    harness.prompts.expectRuntimeError("exportLast24HoursCSV (Form - panel)", ErrorAnswer::Ignore);
    testing::writeText(lastDay(), "old");
    {
        const testing::FileSizeLimit limit(20);
        csvExport.exportLast24HoursCSV();
    }
    EXPECT_EQ(testing::fileText(lastDay()), "old");
}

TEST_F(CsvExportTest, OfTheLast24HoursNeverLeavesAReaderWithoutAWholeFile) {
    csvExport.exportLast24HoursCSV();
    std::ifstream reader(lastDay(), std::ios::binary);
    storeEvent("2014-03-07 00:00:00.000");
    csvExport.exportLast24HoursCSV();
    const std::string seen(std::istreambuf_iterator<char>(reader), {});
    EXPECT_EQ(seen, dayHead + "\r\n"); // whoever has opened the old one reads it to its end
    EXPECT_NE(testing::fileText(lastDay()), seen);
    EXPECT_EQ(filesBesideTheCatalogue(), 1);
}

TEST_F(CsvExportTest, OfTheLast24HoursKeepsTheOldFileAndSaysWhyWhenTheCatalogueCannotBeRead) {
    testing::writeText(lastDay(), "old");
    ASSERT_EQ(database.slsExe("drop table Events"), 0);
    csvExport.exportLast24HoursCSV();
    EXPECT_EQ(testing::fileText(lastDay()), "old");
    EXPECT_EQ(log.messages, Texts{"last24H.csv was not written: 1 no such table: Events"});
}

} // namespace
} // namespace tremor
