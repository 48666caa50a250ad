#include "database/catalogue_support.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace tremor;
using namespace tremor::testing;
using namespace std::string_literals;

// openDB, step by step.
namespace {

constexpr auto captionWithFile = " - Database: catalogue.sqlite";

class OpenDatabaseTest : public CatalogueTest {
  protected:
    bool open() {
        const bool opened = catalogue.openDB(declined);
        if (!controls.states.empty()) {
            EXPECT_EQ(session.ControlsState, controls.states.back());
        }
        return opened;
    }
    void expectAskingAnswered(BoxAnswer answer) {
        prompts.expectBox("Database appear outdated, do you want upgrade it?\r\n"
                          "If you choose 'Yes' a copy of this old Database will be created on "
                          "this application folder.",
                          "Database outdated...", BoxIcon::None, BoxButtons::YesNo, answer);
    }
    void expectForeignBox() {
        prompts.expectBox("This is Database of another Program.", "Error...", BoxIcon::Critical,
                          BoxButtons::Ok, BoxAnswer::Ok);
    }
    void expectOpened() {
        EXPECT_TRUE(database.isOpen());
        EXPECT_TRUE(session.DatabaseOpen);
        EXPECT_EQ(controls.states, std::vector<std::int32_t>{4});
        EXPECT_EQ(controls.captions.back(), programTitleAndVersion + std::string(captionWithFile));
        EXPECT_EQ(session.DatabaseName, "catalogue.sqlite");
        EXPECT_EQ(harness.errors.callStack().depth(), 0);
    }
    void expectRefused() {
        EXPECT_FALSE(session.DatabaseOpen);
        EXPECT_EQ(controls.states, std::vector<std::int32_t>{2});
        EXPECT_EQ(declined, 0);
    }
    void expectForeignRefused() {
        expectForeignBox();
        session.DatabaseOpen = true;
        EXPECT_FALSE(open());
        expectRefused();
        EXPECT_FALSE(database.isOpen());
        EXPECT_EQ(controls.captions,
                  (std::vector<std::string>{programTitleAndVersion + std::string(captionWithFile),
                                            programTitleAndVersion}));
    }
    // A catalogue from before the Version row had values.
    void makeOldestCatalogue() {
        makeCatalogue();
        change("delete from Version");
    }

    std::int32_t declined = 0;
};

} // namespace

TEST_F(OpenDatabaseTest, OpensACatalogueOfTheOwnVersionWithoutAnyQuestion) {
    makeCatalogue();
    EXPECT_TRUE(open());
    expectOpened();
    EXPECT_EQ(declined, 0);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(OpenDatabaseTest, OpensAgainAtEachSelection) {
    makeCatalogue();
    ASSERT_TRUE(open());
    ASSERT_EQ(database.slsSel("select 'kept'", 1), 0);
    EXPECT_TRUE(open());
    EXPECT_TRUE(database.slsGetRow(1));
    EXPECT_EQ(controls.states, (std::vector<std::int32_t>{4, 4}));
}

TEST_F(OpenDatabaseTest, ReportsAMissingFileAndLeavesEverythingElseAsItWas) {
    makeCatalogue();
    ASSERT_TRUE(open());
    const std::string opened = settings.Path;
    settings.Path = folder.file("missing.sqlite");
    prompts.expectBox("Database doesn't exist, select one in File->Open DataBase or create a new "
                      "one",
                      "Database error...", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_FALSE(open());
    EXPECT_EQ(controls.states, (std::vector<std::int32_t>{4, 2}));
    EXPECT_TRUE(session.DatabaseOpen);
    EXPECT_EQ(database.path(), opened);
    EXPECT_EQ(session.DatabaseName, "catalogue.sqlite");
    EXPECT_EQ(controls.captions.size(), 2U);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(OpenDatabaseTest, TakesAFolderOrNoPathForAMissingFile) {
    for (const std::string& path : {folder.path(), ""s}) {
        settings.Path = path;
        prompts.expectBox("Database doesn't exist, select one in File->Open DataBase or create a "
                          "new one",
                          "Database error...", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
        EXPECT_FALSE(open());
    }
    EXPECT_TRUE(controls.captions.empty());
}

// --- versions ---------------------------------------------------------------------------------

TEST_F(OpenDatabaseTest, OpensACatalogueWithANameButNoVersionNumbers) {
    makeCatalogue();
    setVersion("TREMORLEDGER");
    EXPECT_TRUE(open());
    expectOpened();
}

TEST_F(OpenDatabaseTest, OpensANewerCatalogueSilently) {
    makeCatalogue();
    setVersion(version(1, 1, 1));
    EXPECT_TRUE(open());
    expectOpened();
}

TEST_F(OpenDatabaseTest, RefusesAnOutdatedCatalogueWhenTheUpgradeIsDeclined) {
    makeCatalogue();
    setVersion(version(1, 1, -1));
    session.DatabaseOpen = true;
    expectAskingAnswered(BoxAnswer::No);
    EXPECT_FALSE(open());
    EXPECT_EQ(declined, 1);
    EXPECT_FALSE(session.DatabaseOpen);
    EXPECT_EQ(controls.states, std::vector<std::int32_t>{2});
    EXPECT_EQ(upgrade.calls, 0);
    EXPECT_TRUE(database.isOpen());
}

TEST_F(OpenDatabaseTest, OpensAnOutdatedCatalogueAfterItsUpgrade) {
    makeCatalogue();
    setVersion(version(-1, 0, 0));
    expectAskingAnswered(BoxAnswer::Yes);
    upgrade.result = true;
    upgrade.work = [&] { // another file under the same name
        database.slClose();
        std::filesystem::remove(settings.Path);
        catalogue.fillDBTables();
        catalogue.createDatabase("catalogue", "", settings.Path);
    };
    prompts.expectBox("Upgrade complete successfully!", "Database", BoxIcon::Information,
                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_TRUE(open());
    EXPECT_EQ(upgrade.calls, 1);
    EXPECT_EQ(declined, 0);
    EXPECT_TRUE(session.DatabaseOpen);
    EXPECT_EQ(controls.states, std::vector<std::int32_t>{4});
    EXPECT_EQ(controls.captions.back(), programTitleAndVersion + std::string(captionWithFile));
    EXPECT_EQ(valueOf(database, "select Database from Version"), version(0, 0, 0));
    EXPECT_EQ(harness.errors.callStack().depth(), 1); // the early return of checkOldDB
}

TEST_F(OpenDatabaseTest, LeavesTheStateAloneWhenTheUpgradeFails) {
    makeCatalogue();
    setVersion(version(0, 0, -1));
    session.DatabaseOpen = true;
    expectAskingAnswered(BoxAnswer::Yes);
    prompts.expectBox("Upgrade complete without success!", "Database", BoxIcon::Critical,
                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_FALSE(open());
    EXPECT_EQ(upgrade.calls, 1);
    EXPECT_EQ(declined, 0);
    EXPECT_TRUE(session.DatabaseOpen);
    EXPECT_TRUE(controls.states.empty());
    EXPECT_EQ(controls.captions.back(), programTitleAndVersion);
}

TEST_F(OpenDatabaseTest, ShowsErrorNineForAVersionThatIsCutShort) {
    makeCatalogue();
    setVersion("TREMORLEDGER_99.99");
    prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Ignore);
    EXPECT_EQ(open(), versionRevision == 0);
}

// --- schema -----------------------------------------------------------------------------------

TEST_F(OpenDatabaseTest, OpensACatalogueWithoutTelegramChatsAndLogsIt) {
    makeCatalogue();
    change("drop table TelegramChats");
    EXPECT_TRUE(open());
    expectOpened();
    EXPECT_EQ(log.messages, std::vector<std::string>{"There isn't Table: TelegramChats | "
                                                     "\r\nsome functions may don't work."});
}

TEST_F(OpenDatabaseTest, OpensACatalogueWithALaterTableThatWasChanged) {
    makeCatalogue();
    change("alter table Events add column Felt text");
    EXPECT_TRUE(open());
    expectOpened();
    EXPECT_EQ(log.messages.size(), 1U);
}

TEST_F(OpenDatabaseTest, RefusesACatalogueWhoseFirstTableWasChanged) {
    makeCatalogue();
    change("alter table Cities add column Felt text");
    session.DatabaseOpen = true;
    EXPECT_FALSE(open());
    expectRefused();
    EXPECT_EQ(controls.captions.back(), programTitleAndVersion);
    EXPECT_EQ(log.messages.size(), 1U);
}

// --- without a version ------------------------------------------------------------------------

TEST_F(OpenDatabaseTest, DecliningTheUpgradeOfAnOldestCatalogueLeavesTheControlsLive) {
    makeOldestCatalogue();
    expectAskingAnswered(BoxAnswer::No);
    EXPECT_FALSE(open());
    EXPECT_EQ(declined, 1);
    EXPECT_TRUE(session.DatabaseOpen);
    EXPECT_EQ(controls.states, std::vector<std::int32_t>{4});
    EXPECT_EQ(controls.captions.back(), programTitleAndVersion + std::string(captionWithFile));
    EXPECT_TRUE(database.isOpen());
}

TEST_F(OpenDatabaseTest, UpgradesAnOldestCatalogue) {
    makeOldestCatalogue();
    expectAskingAnswered(BoxAnswer::Yes);
    upgrade.result = true;
    prompts.expectBox("Upgrade complete successfully!", "Database", BoxIcon::Information,
                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_TRUE(open());
    expectOpened();
    EXPECT_EQ(upgrade.calls, 1);
}

TEST_F(OpenDatabaseTest, TakesAnEmptyVersionTableWithoutAKnownTableForAnotherProgram) {
    settings.Path = folder.file("catalogue.sqlite");
    change("CREATE TABLE Version (Database TEXT); create table Events (UTC text)");
    expectForeignRefused();
    EXPECT_EQ(upgrade.calls, 0);
}

// --- other programs' files --------------------------------------------------------------------

TEST_F(OpenDatabaseTest, RefusesAndClosesACatalogueOfAnotherName) {
    makeCatalogue();
    setVersion("TREMORVIEW_1.0.0");
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, RefusesTheDatabaseOfAnotherProgram) {
    settings.Path = folder.file("catalogue.sqlite");
    change("create table bookmarks (url text); insert into bookmarks values ('x')");
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, RefusesAFileThatIsNoDatabase) {
    writeFile(std::string(5000, 'x'));
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, RefusesAFileOfZeroBytesAndLeavesItSo) {
    writeFile("");
    expectForeignRefused();
    EXPECT_EQ(std::filesystem::file_size(settings.Path), 0U);
}

TEST_F(OpenDatabaseTest, RefusesAFileWithAFaultySchema) {
    makeCatalogue();
    change("pragma writable_schema = on; update sqlite_master set sql = 'CREATE TABLE nonsense'");
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, RefusesAFileThatIsCutShort) {
    makeCatalogue();
    std::filesystem::resize_file(settings.Path, 5000);
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, RefusesAFileThatAnotherProgramKeepsLockedForTooLong) {
    makeCatalogue();
    ForeignConnection other(settings.Path);
    other.run("begin exclusive");
    expectForeignRefused();
}

TEST_F(OpenDatabaseTest, OpensAFileThatIsUnlockedWhileItWaits) {
    makeCatalogue();
    ForeignConnection other(settings.Path);
    other.run("begin exclusive");
    int calls = 0;
    database.setBusyCallback([&] {
        if (++calls == 3)
            other.run("commit");
    });
    EXPECT_TRUE(open());
    expectOpened();
}
