#include "database/database_upgrade.h"
#include "database/upgrade_support.h"

#include <sys/stat.h>

#include <filesystem>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::DatabaseUpgradeTest;
using testing::ForeignConnection;
using testing::rowsOf;
using testing::UpgradingProgram;
using testing::valueOf;

using Names = std::vector<std::string>;

// --- the plain way ----------------------------------------------------------------------------

TEST_F(DatabaseUpgradeTest, CarriesAllRowsIntoANewCatalogue) {
    const std::string before = bytes();
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
    EXPECT_TRUE(readWholeFile(backup) == before);
    EXPECT_EQ(filesInFolder(), (Names{"catalogue.sqlite", "catalogue.sqlite_backup"}));
    EXPECT_EQ(log.messages, Names{"Database catalogue.sqlite created."});
    EXPECT_EQ(program.settings.Path, path);
    EXPECT_EQ(program.harness.errors.callStack().depth(), 0);
    EXPECT_GT(clock.repaints, 0);
}

TEST_F(DatabaseUpgradeTest, GivesTheNewCatalogueTheCurrentSchemaAndVersion) {
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_TRUE(program.catalogue.checkDBTables());
    EXPECT_EQ(log.messages.size(), 1U); // nothing is missing
    EXPECT_EQ(valueOf(program.database, "select group_concat(Database) from Version"),
              currentVersion());
}

TEST_F(DatabaseUpgradeTest, LeavesTheNewCatalogueOpenAndItsTransactionClosed) {
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_EQ(program.database.path(), path);
    EXPECT_EQ(program.database.slsExe("BEGIN"), 0);
}

TEST_F(DatabaseUpgradeTest, MakesTheChatsThatTheOldCatalogueLacked) {
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_EQ(valueOf(program.database, "select count(*) from TelegramChats"), "0");
}

TEST_F(DatabaseUpgradeTest, BearsEventsWithoutTheColumnNull) {
    change("alter table Events drop column \"null\"");
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(rowsOf(program.database, "select * from Events where Source = 'EMSC'"),
              (std::vector<Names>{
                  {"2016-08-24 01:36:32.870", "42.7", "13.23", "10.0", "6.0", "EMSC", ""}}));
}

TEST_F(DatabaseUpgradeTest, NumbersItsBackups) {
    ASSERT_TRUE(program.upgradeDB());
    const std::string second = bytes();
    program.database.slClose();
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_TRUE(readWholeFile(backup + "1") == second);
    program.database.slClose();
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_TRUE(FileExists(backup + "2"));
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
}

TEST_F(DatabaseUpgradeTest, DropsOtherTables) {
    change("create table \"a,Events\" (x, y); insert into \"a,Events\" values (1, 2);"
           "create table \"it's\" (x, y); insert into \"it's\" values (1, 2);"
           "create table Events2 as select * from Events");
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
    EXPECT_EQ(valueOf(program.database, "select count(*) from sqlite_master where name in "
                                        "('a,Events', 'it''s', 'Events2')"),
              "0");
}

TEST_F(DatabaseUpgradeTest, MakesAnEmptyCatalogueOfOneWithoutRows) {
    change("delete from Events; delete from Cities; delete from Comuni; delete from Workspace;"
           "delete from Search; delete from Version");
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), "");
    EXPECT_EQ(valueOf(program.database, "select Database from Version"), currentVersion());
}

TEST_F(DatabaseUpgradeTest, KeepsThePermissionsOfTheOldFile) {
    ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
    ASSERT_TRUE(program.upgradeDB());
    EXPECT_EQ(static_cast<mode_t>(fs::status(path).permissions()), 0600U);
    EXPECT_EQ(static_cast<mode_t>(fs::status(backup).permissions()), 0600U);
}

TEST_F(DatabaseUpgradeTest, WorksOnARelativePath) {
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    program.settings.Path = "catalogue.sqlite";
    EXPECT_TRUE(program.upgradeDB());
    fs::current_path(before);
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
    EXPECT_TRUE(FileExists(backup));
}

TEST_F(DatabaseUpgradeTest, CarriesManyRowsOver) {
    change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 30000) "
           "insert into Events select datetime('2000-01-01', i || ' minutes') || '.000', "
           "35 + i % 1000 / 100.0, 6 + i % 1300 / 100.0, i % 700 / 10.0, i % 60 / 10.0, 'INGV', "
           "NULL from n");
    const std::string before = contentsOf(path);
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), before);
}

// --- rows that find no place ------------------------------------------------------------------

TEST_F(DatabaseUpgradeTest, TellsHowManyRowsWereLostAndWhy) {
    change("insert into Cities values ('L''Aquila', '1', '2', '3'), ('O''Brien', '1', '2', '3')");
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
    EXPECT_EQ(log.messages,
              (Names{"Database catalogue.sqlite created.",
                     "2 of 10 rows could not be carried over: a value holds an apostrophe, a line "
                     "feed or a zero byte\r\nThey stand in " +
                         backup}));
}

TEST_F(DatabaseUpgradeTest, CountsARowWithALineFeedOnce) {
    change("insert into Cities values ('a\nb\nc\nd', '1', '2', '3')");
    EXPECT_TRUE(program.upgradeDB());
    expectLogged("1 of 9 rows could not be carried over");
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
}

TEST_F(DatabaseUpgradeTest, CountsARowWithAZeroByte) {
    change("insert into Cities values (cast(x'610062' as text), '1', '2', '3')");
    EXPECT_TRUE(program.upgradeDB());
    expectLogged("1 of 9 rows could not be carried over");
}

TEST_F(DatabaseUpgradeTest, CountsALastRowThatIsTakenForColumns) {
    change("insert into Comuni values ('null', '1', '2')");
    EXPECT_TRUE(program.upgradeDB());
    expectLogged("1 of 9 rows could not be carried over: a value \"null\" was taken for the name "
                 "of a column");
}

TEST_F(DatabaseUpgradeTest, CountsTheRowsBehindARowThatIsTakenForColumns) {
    change("update Events set Source = 'null' where Source = 'EMSC'");
    EXPECT_TRUE(program.upgradeDB());
    expectLogged("2 of 8 rows could not be carried over");
    EXPECT_EQ(valueOf(program.database, "select count(*) from Events"), "1");
    EXPECT_EQ(valueOf(program.database, "select count(*) from Workspace"), "1");
}

TEST_F(DatabaseUpgradeTest, CountsTheRowsOfAColumnThatIsNoMore) {
    change("alter table Comuni add column Felt text");
    EXPECT_TRUE(program.upgradeDB());
    expectLogged("1 of 8 rows could not be carried over: 1 table Comuni has no column named Felt");
}

TEST_F(DatabaseUpgradeTest, CarriesAValueOfTenMegabytesOver) {
    change("insert into Comuni values (replace(hex(zeroblob(5000000)), '0', 'x'), 'a', 'b')");
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(valueOf(program.database, "select max(length(Comuni)) from Comuni"), "10000000");
    EXPECT_EQ(log.messages.size(), 1U);
}

// --- what stands beside the file --------------------------------------------------------------

TEST_F(DatabaseUpgradeTest, BringsTheRowsOfAWriteAheadLogIn) {
    const std::string copied = folder.file("copied.sqlite");
    {
        ForeignConnection other(path);
        other.run("pragma journal_mode = wal; pragma wal_autocheckpoint = 0;"
                  "insert into Comuni values ('in the log', '1', '2')");
        fs::copy(path, copied); // as a crash leaves them
        fs::copy(path + "-wal", copied + "-wal");
    }
    UpgradingProgram other(copied, clock);
    EXPECT_TRUE(other.upgradeDB());
    EXPECT_FALSE(PathExists(copied + "-wal"));
    for (const std::string& file : {copied, copied + "_backup"})
        EXPECT_NE(contentsOf(file).find("'in the log'"), std::string::npos) << file;
}

TEST_F(DatabaseUpgradeTest, RollsAHalfDoneChangeBackFirst) {
    change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) "
           "insert into Comuni select 'town ' || i, '1', '2' from n");
    const std::string before = contentsOf(path);
    const std::string copied = folder.file("copied.sqlite");
    {
        ForeignConnection other(path);
        other.run("pragma cache_size = 5; begin; update Comuni set Latitude = 'half done'");
        fs::copy(path, copied);
        fs::copy(path + "-journal", copied + "-journal");
        EXPECT_NE(readWholeFile(copied).find("half done"), std::string::npos);
    }
    UpgradingProgram other(copied, clock);
    EXPECT_TRUE(other.upgradeDB());
    EXPECT_FALSE(PathExists(copied + "-journal"));
    for (const std::string& file : {copied, copied + "_backup"})
        EXPECT_EQ(contentsOf(file), before) << file;
}

// --- as the operator meets it -----------------------------------------------------------------

class OpenOldCatalogueTest : public DatabaseUpgradeTest {
  protected:
    void expectAskingAnswered(BoxAnswer answer) {
        prompts.expectBox("Database appear outdated, do you want upgrade it?\r\n"
                          "If you choose 'Yes' a copy of this old Database will be created on "
                          "this application folder.",
                          "Database outdated...", BoxIcon::None, BoxButtons::YesNo, answer);
    }
    void expectUpgradedAndOpened() {
        expectAskingAnswered(BoxAnswer::Yes);
        prompts.expectBox("Upgrade complete successfully!", "Database", BoxIcon::Information,
                          BoxButtons::Ok, BoxAnswer::Ok);
        EXPECT_TRUE(program.catalogue.openDB(declined));
        EXPECT_TRUE(program.session.DatabaseOpen);
        EXPECT_EQ(program.controls.states, std::vector<std::int32_t>{4});
        EXPECT_EQ(valueOf(program.database, "select Database from Version"), currentVersion());
        EXPECT_EQ(contentsOf(path), testing::oldStagingText);
        EXPECT_EQ(declined, 0);
    }
    std::int32_t declined = 0;
};

TEST_F(OpenOldCatalogueTest, IsUpgradedAndOpened) {
    expectUpgradedAndOpened();
    EXPECT_TRUE(FileExists(backup));
}

TEST_F(OpenOldCatalogueTest, FromBeforeTheVersionRowIsUpgradedAndOpened) {
    change("delete from Version");
    expectUpgradedAndOpened();
}

TEST_F(OpenOldCatalogueTest, WithoutAnyVersionTableIsUpgradedAndOpened) {
    change("drop table Version; drop table Search");
    expectAskingAnswered(BoxAnswer::Yes);
    prompts.expectBox("Upgrade complete successfully!", "Database", BoxIcon::Information,
                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_TRUE(program.catalogue.openDB(declined));
    EXPECT_EQ(valueOf(program.database, "select count(*) from Events"), "3");
}

TEST_F(OpenOldCatalogueTest, OpensWithoutAQuestionAfterItsUpgrade) {
    expectUpgradedAndOpened();
    EXPECT_TRUE(program.catalogue.openDB(declined));
    UpgradingProgram next(path, clock);
    EXPECT_TRUE(next.catalogue.openDB(declined));
}

TEST_F(OpenOldCatalogueTest, StaysAsItIsWhenTheUpgradeIsDeclined) {
    const std::string before = bytes();
    expectAskingAnswered(BoxAnswer::No);
    EXPECT_FALSE(program.catalogue.openDB(declined));
    EXPECT_EQ(declined, 1);
    EXPECT_TRUE(bytes() == before);
    EXPECT_EQ(filesInFolder(), Names{"catalogue.sqlite"});
}

TEST_F(OpenOldCatalogueTest, StaysAsItIsWhenAnotherProgramHoldsIt) {
    const std::string before = bytes();
    ForeignConnection other(path);
    other.run("begin immediate");
    expectAskingAnswered(BoxAnswer::Yes);
    prompts.expectRuntimeError("Please close all process which use the Database.",
                               ErrorAnswer::Ignore);
    prompts.expectBox("Upgrade complete without success!", "Database", BoxIcon::Critical,
                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_FALSE(program.catalogue.openDB(declined));
    EXPECT_TRUE(bytes() == before);
}

} // namespace
} // namespace tremor
