#include "database/catalogue_support.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using namespace tremor;
using namespace tremor::testing;

namespace {

constexpr auto corrupted = "DataBase is corrupted, some functions may don't work.";

// The statements of the seven tables, to the letter.
const std::vector<std::pair<std::string, std::string>> expectedTables = {
    {"Cities",
     "CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, 'Longitude' TEXT, 'Zone' TEXT)"},
    {"Comuni", "CREATE TABLE Comuni ('Comuni' TEXT, 'Latitude' TEXT, 'Longitude' TEXT)"},
    {"Events", "CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
               "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)"},
    {"Workspace",
     "CREATE TABLE Workspace ('Name' TEXT NOT NULL  UNIQUE , 'Latitude' REAL, 'Longitude' REAL, "
     "'Zoom' INTEGER, 'BLat' REAL, 'BLng' REAL, 'TLat' REAL, 'TLng' REAL, 'MagMin' DOUBLE, "
     "'MagMax' DOUBLE, 'DepthMin' REAL, 'DepthMax' REAL)"},
    {"Version", "CREATE TABLE Version (Database TEXT)"},
    {"Search",
     "CREATE TABLE Search ('_' INTEGER PRIMARY KEY  AUTOINCREMENT  NOT NULL  UNIQUE , 'NameSearch' "
     "TEXT NOT NULL  DEFAULT CURRENT_TIMESTAMP, 'RangeDate' INTEGER NOT NULL  DEFAULT 0, "
     "'StartDate' TEXT, 'EndDate' TEXT, 'RangeMag' INTEGER NOT NULL  DEFAULT 0, 'MinMag' DOUBLE, "
     "'MaxMag' DOUBLE, 'RangeInMap' INTEGER NOT NULL  DEFAULT 0, 'MinLat' TEXT, 'MaxLat' TEXT, "
     "'MinLon' TEXT, 'MaxLon' TEXT, 'MethodDefinied' INTEGER NOT NULL  DEFAULT 0)"},
    {"TelegramChats",
     "CREATE TABLE TelegramChats ('chat_id' TEXT PRIMARY KEY  NOT NULL  UNIQUE , 'Username' "
     "TEXT)"}};

// A catalogue that is open, for the routines that look into it.
class OpenCatalogueTest : public CatalogueTest {
  protected:
    OpenCatalogueTest() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
    }
    std::int32_t identify(const std::string& text) {
        setVersion(text);
        outdated = false;
        return catalogue.checkOldDB(outdated);
    }
    bool outdated = false;
};

} // namespace

// --- fillDBTables -----------------------------------------------------------------------------

TEST_F(CatalogueTest, FillDBTablesSetsTheSevenStatementsToTheLetter) {
    catalogue.fillDBTables();
    ASSERT_EQ(catalogue.DBTables().size(), expectedTables.size());
    for (std::size_t i = 0; i < expectedTables.size(); ++i) {
        EXPECT_EQ(catalogue.DBTables()[i].name, expectedTables[i].first);
        EXPECT_EQ(catalogue.DBTables()[i].sql, expectedTables[i].second);
        EXPECT_EQ(catalogue.DBTables()[i].found, 0);
    }
}

TEST_F(OpenCatalogueTest, FillDBTablesClearsTheFlags) {
    ASSERT_TRUE(catalogue.checkDBTables());
    const auto isFound = [](const TableRecord& table) { return table.found != 0; };
    EXPECT_TRUE(std::ranges::all_of(catalogue.DBTables(), isFound));
    catalogue.fillDBTables();
    EXPECT_TRUE(std::ranges::none_of(catalogue.DBTables(), isFound));
}

// --- createDatabase ---------------------------------------------------------------------------

TEST_F(CatalogueTest, CreateDatabaseMakesAllTablesAndTheVersionRow) {
    catalogue.fillDBTables();
    EXPECT_TRUE(catalogue.createDatabase("Italy", ".sqlite", ""));
    EXPECT_EQ(settings.Path, folder.path() + "/Italy.sqlite");
    EXPECT_EQ(log.messages, std::vector<std::string>{"Database Italy created."});
    EXPECT_FALSE(database.isOpen());
    ASSERT_EQ(database.slsOpen(settings.Path, ""), 0);
    for (const auto& [name, sql] : expectedTables)
        EXPECT_EQ(valueOf(database, "select sql from sqlite_master where name = '" + name + "'"),
                  sql);
    EXPECT_EQ(rowsOf(database, "select Database from Version"),
              (std::vector<std::vector<std::string>>{{version(0, 0, 0)}}));
}

TEST_F(CatalogueTest, CreateDatabasePrefersAFullPath) {
    catalogue.fillDBTables();
    catalogue.createDatabase("old.sqlite", "", folder.file("elsewhere.sqlite"));
    EXPECT_EQ(settings.Path, folder.file("elsewhere.sqlite"));
    EXPECT_TRUE(std::filesystem::exists(settings.Path));
    EXPECT_FALSE(std::filesystem::exists(folder.file("old.sqlite")));
    EXPECT_EQ(log.messages, std::vector<std::string>{"Database old.sqlite created."});
}

TEST_F(CatalogueTest, CreateDatabaseLeavesAnExistingFileAloneAndSaysSo) {
    writeFile("precious");
    settings.Path = "before";
    prompts.expectBox("Database already exist.", "Error...", BoxIcon::Information, BoxButtons::Ok,
                      BoxAnswer::Ok);
    catalogue.fillDBTables();
    EXPECT_FALSE(catalogue.createDatabase("catalogue", ".sqlite", ""));
    EXPECT_EQ(log.messages, std::vector<std::string>{"Database catalogue already exist."});
    EXPECT_EQ(settings.Path, "before");
    EXPECT_EQ(std::filesystem::file_size(folder.file("catalogue.sqlite")), 8U);
}

TEST_F(CatalogueTest, CreateDatabaseClosesTheOpenCatalogue) {
    makeCatalogue();
    ASSERT_EQ(database.slsOpen(settings.Path, ""), 0);
    catalogue.createDatabase("second", ".sqlite", "");
    EXPECT_FALSE(database.isOpen());
    EXPECT_EQ(settings.Path, folder.file("second.sqlite"));
}

TEST_F(CatalogueTest, CreateDatabaseTellsInTheLogWhatItCouldNotWrite) {
    catalogue.fillDBTables();
    EXPECT_FALSE(catalogue.createDatabase("x", ".sqlite", folder.file("missing/x.sqlite")));
    EXPECT_EQ(settings.Path, folder.file("missing/x.sqlite"));
    EXPECT_EQ(log.messages,
              (std::vector<std::string>{"Database x created.",
                                        "Database x: 9 operations failed, the first with: 14 "
                                        "unable to open database file"}));
}

// --- checkOldDB -------------------------------------------------------------------------------

TEST_F(OpenCatalogueTest, CheckOldDBAcceptsTheOwnVersion) {
    EXPECT_EQ(identify(version(0, 0, 0)), 0);
    EXPECT_FALSE(outdated);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(OpenCatalogueTest, CheckOldDBAcceptsANewerVersionInAllThreeNumbersSilently) {
    EXPECT_EQ(identify(version(1, 1, 1)), 0);
    EXPECT_FALSE(outdated);
}

TEST_F(OpenCatalogueTest, CheckOldDBCallsAnOlderMajorOutdatedAndLeavesItsStackEntry) {
    EXPECT_EQ(identify(version(-1, 9, 9)), 0);
    EXPECT_TRUE(outdated);
    EXPECT_EQ(harness.errors.callStack().depth(), 1);
    EXPECT_NE(harness.errors.callStack().text().find("checkOldDB (Module - Database)"),
              std::string::npos);
}

TEST_F(OpenCatalogueTest, CheckOldDBCallsAnOlderMinorOutdatedWhateverTheMajorAndLeavesItsEntry) {
    EXPECT_EQ(identify(version(1, -1, 9)), 0);
    EXPECT_TRUE(outdated);
    EXPECT_EQ(harness.errors.callStack().depth(), 1);
}

TEST_F(OpenCatalogueTest, CheckOldDBCallsAnOlderRevisionOutdatedAndPopsItsEntry) {
    EXPECT_EQ(identify(version(1, 1, -1)), 0);
    EXPECT_TRUE(outdated);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(OpenCatalogueTest, CheckOldDBAcceptsANameWithoutVersionNumbers) {
    EXPECT_EQ(identify("TREMORLEDGER"), 0);
    EXPECT_FALSE(outdated);
    EXPECT_EQ(identify("ANYTHING"), 0);
    EXPECT_FALSE(outdated);
}

TEST_F(OpenCatalogueTest, CheckOldDBReadsUnderscoresAndPointsAlike) {
    EXPECT_EQ(identify("TREMORLEDGER.99.99.99"), 0);
    EXPECT_EQ(identify("TREMORLEDGER_99_99_99"), 0);
    EXPECT_FALSE(outdated);
    EXPECT_EQ(identify("TREMORLEDGER_0_0_0"), 0);
    EXPECT_TRUE(outdated);
}

TEST_F(OpenCatalogueTest, CheckOldDBRefusesAnotherName) {
    for (const auto* text : {"OTHER_1.0.0", "tremorledger_1.0.0", "TREMORLEDGER _1.0.0",
                             "TREMOR_LEDGER_1.0.0", "_TREMORLEDGER_1.0"}) {
        EXPECT_EQ(identify(text), 2) << text;
        EXPECT_FALSE(outdated);
    }
}

TEST_F(OpenCatalogueTest, CheckOldDBReadsPartsThatAreNoNumbersAsZero) {
    EXPECT_EQ(identify("TREMORLEDGER_x.99.99"), 0);
    EXPECT_EQ(outdated, versionMajor > 0);
    EXPECT_EQ(identify("TREMORLEDGER_99999999999.99.99"), 0);
    EXPECT_EQ(outdated, versionMajor > 0);
}

TEST_F(OpenCatalogueTest, CheckOldDBIgnoresPartsBehindTheRevision) {
    EXPECT_EQ(identify(version(0, 0, 0) + ".beta_2"), 0);
    EXPECT_FALSE(outdated);
}

TEST_F(OpenCatalogueTest, CheckOldDBRaisesErrorNineForAMissingRevision) {
    prompts.expectRuntimeError("9", ErrorAnswer::Ignore);
    EXPECT_EQ(identify("TREMORLEDGER_99.99"), 0);
    EXPECT_NE(prompts.lastErrorText.find("Subscript out of range"), std::string::npos);
    EXPECT_EQ(outdated, versionRevision > 0); // the ignored number stays 0
}

TEST_F(OpenCatalogueTest, CheckOldDBRaisesErrorNineForEachMissingPart) {
    prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Ignore);
    prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Ignore);
    EXPECT_EQ(identify("OTHER_1"), 2);
}

TEST_F(OpenCatalogueTest, CheckOldDBEndsTheProcessOnAbort) {
    prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Abort);
    EXPECT_THROW(identify("TREMORLEDGER_1.2"), ProcessEnded);
}

TEST_F(OpenCatalogueTest, CheckOldDBGivesOneWithoutAVersionValue) {
    EXPECT_EQ(identify(""), 1);
    change("delete from Version");
    EXPECT_EQ(catalogue.checkOldDB(outdated), 1);
    change("insert into Version values (null)");
    EXPECT_EQ(catalogue.checkOldDB(outdated), 1);
    change("drop table Version");
    EXPECT_EQ(catalogue.checkOldDB(outdated), 1);
    EXPECT_FALSE(outdated);
}

TEST_F(OpenCatalogueTest, CheckOldDBTakesTheLastRow) {
    change("insert into Version values ('OTHER_1.0.0')");
    EXPECT_EQ(catalogue.checkOldDB(outdated), 2);
    change("insert into Version values ('')");
    EXPECT_EQ(catalogue.checkOldDB(outdated), 1);
}

// --- checkDBTables ----------------------------------------------------------------------------

TEST_F(OpenCatalogueTest, CheckDBTablesIsSilentOnAFreshCatalogue) {
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(OpenCatalogueTest, CheckDBTablesLogsAMissingTableAndStaysTrue) {
    change("drop table TelegramChats");
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages, std::vector<std::string>{"There isn't Table: TelegramChats | "
                                                     "\r\nsome functions may don't work."});
}

TEST_F(OpenCatalogueTest, CheckDBTablesNamesMissingTablesInTheOrderOfTheList) {
    change("drop table Search; drop table Events; drop table Comuni");
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages, std::vector<std::string>{"There isn't Table: Comuni | Events | Search "
                                                     "| \r\nsome functions may don't work."});
}

TEST_F(OpenCatalogueTest, CheckDBTablesStopsAtAColumnAddedByHand) {
    change("alter table Events add column Felt text; drop table TelegramChats");
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages, std::vector<std::string>{corrupted});
    for (const TableRecord& table : catalogue.DBTables())
        EXPECT_EQ(table.found != 0, table.name == "Cities" || table.name == "Comuni") << table.name;
}

TEST_F(OpenCatalogueTest, CheckDBTablesIsFalseWhenTheFirstTableInNameOrderDiffers) {
    change("alter table Cities add column Felt text");
    EXPECT_FALSE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages, std::vector<std::string>{corrupted});
}

TEST_F(OpenCatalogueTest, CheckDBTablesTakesDoubleQuotesForSingleOnes) {
    change("drop table Comuni; CREATE TABLE Comuni (\"Comuni\" TEXT, \"Latitude\" TEXT, "
           "\"Longitude\" TEXT)");
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(OpenCatalogueTest, CheckDBTablesCountsEveryBlank) {
    change("drop table Cities; CREATE TABLE Cities ('Name' TEXT NOT NULL, 'Latitude' TEXT, "
           "'Longitude' TEXT, 'Zone' TEXT)");
    EXPECT_FALSE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages, std::vector<std::string>{corrupted});
}

TEST_F(OpenCatalogueTest, CheckDBTablesSkipsTablesOfOtherNames) {
    change("create table AAA (a); create table zzz (a); insert into Search default values");
    EXPECT_TRUE(catalogue.checkDBTables());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(CatalogueTest, CheckDBTablesIsFalseOnAFileWithoutTables) {
    writeFile("");
    ASSERT_EQ(database.slsOpen(settings.Path, ""), 0);
    EXPECT_FALSE(catalogue.checkDBTables());
    EXPECT_EQ(log.messages,
              std::vector<std::string>{"There isn't Table: Cities | Comuni | Events | Workspace | "
                                       "Version | Search | TelegramChats | "
                                       "\r\nsome functions may don't work."});
}

// --- isOldDBSchema ----------------------------------------------------------------------------

TEST_F(CatalogueTest, IsOldDBSchemaKnowsEachOfTheFourOldestTables) {
    for (std::size_t i = 0; i < expectedTables.size(); ++i) {
        settings.Path = folder.file(expectedTables[i].first);
        change("create table other (a); " + expectedTables[i].second);
        ASSERT_EQ(database.slsOpen(settings.Path, ""), 0);
        EXPECT_EQ(catalogue.isOldDBSchema(), i < 4) << expectedTables[i].first;
    }
}

TEST_F(CatalogueTest, IsOldDBSchemaTakesNoDoubleQuotesForSingleOnes) {
    settings.Path = folder.file("a.sqlite");
    change("CREATE TABLE Comuni (\"Comuni\" TEXT, \"Latitude\" TEXT, \"Longitude\" TEXT)");
    ASSERT_EQ(database.slsOpen(settings.Path, ""), 0);
    EXPECT_FALSE(catalogue.isOldDBSchema());
}
