#include "core/error_report.h"
#include "database/staging_text.h"
#include "database/upgrade_support.h"
#include "support/error_of.h"

#include <fmt/format.h>

namespace tremor {
namespace {

using testing::errorOf;
using testing::rowsOf;
using testing::valueOf;

using Rows = std::vector<std::vector<std::string>>;

void nothing() {}

class StagingTextTest : public testing::UpgradeTest {
  protected:
    StagingText staged() {
        EXPECT_EQ(database.slsOpen(path, ""), 0);
        return stagingText(database, nothing);
    }
    std::string stagedText() { return staged().text.GetStr(); }
    // The lines of one table only.
    std::string stagedTable(const std::string& table) {
        const std::string text = "-----\n" + stagedText();
        const std::size_t begin = text.find("-----\n" + table + "\n");
        EXPECT_NE(begin, std::string::npos) << text;
        return text.substr(begin + 6, text.find("-----\n", begin + 6) - begin - 6);
    }

    Database database;
};

TEST_F(StagingTextTest, HoldsNamesColumnsAndRowsOfTheKeptTables) {
    EXPECT_EQ(stagedText(), testing::oldStagingText);
}

TEST_F(StagingTextTest, CountsTheRows) {
    EXPECT_EQ(staged().rows, 8U);
}

TEST_F(StagingTextTest, HoldsChatsToo) {
    change("CREATE TABLE TelegramChats ('chat_id' TEXT PRIMARY KEY, 'Username' TEXT);"
           "insert into TelegramChats values ('-1001', 'duty room')");
    EXPECT_EQ(stagedTable("TelegramChats"),
              "TelegramChats\nchat_id,Username\n'-1001','duty room'\n");
}

TEST_F(StagingTextTest, FollowsTheOrderOfTheFile) {
    change("create table Copy as select * from Cities; drop table Cities;"
           "alter table Copy rename to Cities");
    const std::string text = stagedText();
    EXPECT_TRUE(text.starts_with("Comuni\n"));
    EXPECT_NE(text.find("-----\nCities\n"), std::string::npos);
}

TEST_F(StagingTextTest, LeavesTablesWithoutRowsOut) {
    change("delete from Cities; delete from Events; delete from Workspace; delete from Search");
    EXPECT_EQ(stagedText(), "Comuni\nComuni,Latitude,Longitude\n'Accumoli','42.6949','13.2477'\n"
                            "-----\n");
}

TEST_F(StagingTextTest, IsEmptyForACatalogueWithoutRows) {
    change("delete from Cities; delete from Events; delete from Workspace; delete from Search;"
           "delete from Comuni");
    EXPECT_EQ(stagedText(), "");
}

TEST_F(StagingTextTest, LeavesTablesOfOtherNamesOut) {
    for (const std::string name :
         {"Events2", "a,Events", "Events,Cities", "it's", "\"\"", "two words", "",
          "x; drop table Events", "(select 1 union all select 2)", "-----", "sqlite"})
        change(fmt::format("create table \"{}\" (a, b); insert into \"{}\" values (1, 2)",
                           name == "\"\"" ? "\"\"\"\"" : name, name == "\"\"" ? "\"\"\"\"" : name));
    EXPECT_EQ(stagedText(), testing::oldStagingText);
    EXPECT_EQ(valueOf(database, "select count(*) from Events"), "3");
}

TEST_F(StagingTextTest, DoesNotRunATableNameThatIsAnEndlessQuery) {
    change("create table \"(with recursive c(x) as (select 1 union all select 1 from c) select x "
           "from c)\" (a)");
    EXPECT_EQ(stagedText(), testing::oldStagingText);
}

TEST_F(StagingTextTest, LeavesViewsOut) {
    change("drop table Cities; create view Cities as select * from Comuni");
    EXPECT_TRUE(stagedText().starts_with("Comuni\n"));
}

TEST_F(StagingTextTest, DoesNotEscapeValues) {
    change("delete from Cities; insert into Cities values ('L''Aquila', 'a,b', 'c\nd', '\"')");
    EXPECT_EQ(stagedTable("Cities"), "Cities\nName,Latitude,Longitude,Zone\n"
                                     "'L'Aquila','a,b','c\nd','\"'\n");
}

TEST_F(StagingTextTest, QuotesOnlyTheColumnThatIsCalledNull) {
    change("drop table Comuni; create table Comuni (\"nulls\", \"NULL2\", \"null\");"
           "insert into Comuni values (1, 2, 3)");
    EXPECT_EQ(stagedTable("Comuni"), "Comuni\nnulls,NULL2,'null'\n'1','2','3'\n");
}

TEST_F(StagingTextTest, HoldsLongValuesWhole) {
    change("insert into Comuni values (replace(hex(zeroblob(5000000)), '0', 'x'), 'a', 'b')");
    const std::string text = stagedText();
    EXPECT_NE(text.find("'" + std::string(10000000, 'x') + "','a','b'\n"), std::string::npos);
}

TEST_F(StagingTextTest, RaisesAnErrorWhenTheFileIsDamaged) {
    for (int i = 0; i < 6; ++i)
        change("insert into Events select * from Events");
    change("vacuum");
    std::string damaged = bytes();
    for (std::size_t i = 3 * 4096; i < damaged.size(); ++i)
        damaged[i] = '\x55';
    write(path, damaged);
    EXPECT_EQ(errorOf([&] { staged(); }), ErrorNumber::UserDefined);
}

TEST_F(StagingTextTest, RaisesAnErrorWhenNothingIsOpen) {
    EXPECT_EQ(errorOf([&] { stagingText(database, nothing); }), ErrorNumber::UserDefined);
}

TEST_F(StagingTextTest, LetsWindowsRepaint) {
    change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 2500) "
           "insert into Comuni select i, 'a', 'b' from n");
    int repaints = 0;
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    stagingText(database, [&] { ++repaints; });
    EXPECT_EQ(repaints, 4 + 3); // one each for four small tables
}

// --- into a new catalogue ---------------------------------------------------------------------

class LoadStagingTextTest : public ::testing::Test {
  protected:
    LoadStagingTextTest() {
        testing::ForeignConnection(folder.file("new.sqlite")).run(testing::oldSchema);
        EXPECT_EQ(database.slsOpen(folder.file("new.sqlite"), ""), 0);
        EXPECT_EQ(database.slsExe("BEGIN"), 0);
    }
    LoadOutcome load(const std::string& text) { return loadStagingText(database, text, nothing); }
    // Rows of Comuni, in front of a row that must arrive whatever happened.
    LoadOutcome loadComuni(const std::string& lines) {
        return load("Comuni\nComuni,Latitude,Longitude\n" + lines + "-----\n" +
                    "Cities\nName,Latitude,Longitude,Zone\n'Norcia','1','2','3'\n-----\n");
    }
    Rows comuni() { return rowsOf(database, "select * from Comuni"); }
    void expectCitiesArrived() { EXPECT_EQ(valueOf(database, "select count(*) from Cities"), "1"); }
    void expectRefused(const LoadOutcome& outcome, const std::string& part) {
        EXPECT_NE(outcome.firstRefusal.find(part), std::string::npos) << outcome.firstRefusal;
    }

    static constexpr auto unreadable = "a value holds an apostrophe, a line feed or a zero byte";
    static constexpr auto homeless = "the lines in front of it name no table";
    testing::TemporaryFolder folder;
    Database database;
};

TEST_F(LoadStagingTextTest, StoresEveryRow) {
    const LoadOutcome outcome = load(testing::oldStagingText);
    EXPECT_EQ(outcome.stored, 8U);
    EXPECT_EQ(outcome.firstRefusal, "");
    EXPECT_EQ(stagingText(database, nothing).text.GetStr(), testing::oldStagingText);
    EXPECT_EQ(rowsOf(database, "select * from Events where UTC like '2016-08%'"),
              (Rows{{"2016-08-24 01:36:32.870", "42.7", "13.23", "10.0", "6.0", "EMSC", ""}}));
}

TEST_F(LoadStagingTextTest, StoresNumbersAsNumbersAndNothingAsText) {
    load(testing::oldStagingText);
    EXPECT_EQ(rowsOf(database, "select typeof(Latitude), typeof(Depth), typeof(\"null\") "
                               "from Events where UTC like '2016-10%'"),
              (Rows{{"real", "text", "text"}}));
}

TEST_F(LoadStagingTextTest, StoresNothingOfNothing) {
    for (const std::string text : {"", "\n", "\n\n\n", "-----\n", "-----", "Events\n", "'", ",",
                                   "Comuni\nComuni,Latitude,Longitude\n-----\n"}) {
        const LoadOutcome outcome = load(text);
        EXPECT_EQ(outcome.stored, 0U) << text;
    }
}

TEST_F(LoadStagingTextTest, StoresALastRowWithoutItsLineFeed) {
    EXPECT_EQ(load("Comuni\nComuni,Latitude,Longitude\n'a','b','c'").stored, 1U);
}

TEST_F(LoadStagingTextTest, LosesARowWithAnApostropheInAValue) {
    const LoadOutcome outcome = loadComuni("'Forli','44','12'\n"
                                           "'L'Aquila','42','13'\n"
                                           "'','Aquila','42'\n"
                                           "'Norcia','42','13'\n");
    EXPECT_EQ(outcome.stored, 4U);
    expectRefused(outcome, unreadable);
    EXPECT_EQ(comuni(),
              (Rows{{"Forli", "44", "12"}, {"", "Aquila", "42"}, {"Norcia", "42", "13"}}));
}

TEST_F(LoadStagingTextTest, MakesOneApostropheOfADoubledOne) {
    EXPECT_EQ(loadComuni("'L''Aquila','''','a'''''\n").stored, 2U);
    EXPECT_EQ(comuni(), (Rows{{"L'Aquila", "'", "a''"}}));
}

TEST_F(LoadStagingTextTest, RefusesWhateverIsNoListOfTexts) {
    for (const std::string row :
         {"'", "''',", "'a'", "'a','b'", "'a','b','c','d'", "'a','b',", "'a','b','c',",
          "'a','b','c", ",'a','b','c'", "'a', 'b','c'", "'a','b','c' ", "'a','b',c'",
          "'a'||'b','b','c'", "'a','b','c'),('d','e','f'",
          "'a','b',(select max(Name) from Cities)||'c'",
          "'a','b','c') on conflict do nothing; drop table Cities --'", "x'61','b','c'"}) {
        const LoadOutcome outcome = loadComuni(row + "\n");
        EXPECT_EQ(outcome.stored, 1U) << row;
        EXPECT_NE(outcome.firstRefusal, "") << row;
        EXPECT_TRUE(comuni().empty()) << row;
        expectCitiesArrived();
        database.slsExe("delete from Cities");
    }
}

TEST_F(LoadStagingTextTest, LosesARowWithAZeroByte) {
    const LoadOutcome outcome = loadComuni(std::string("'a\0b','c','d'\n", 14) + "'a','b','c'\n");
    expectRefused(outcome, unreadable);
    EXPECT_EQ(comuni(), (Rows{{"a", "b", "c"}}));
}

TEST_F(LoadStagingTextTest, LosesARowWithALineFeedInAValue) {
    const LoadOutcome outcome = loadComuni("'a\nb','c','d'\n'e','f','g'\n");
    expectRefused(outcome, unreadable);
    EXPECT_EQ(comuni(), (Rows{{"e", "f", "g"}}));
    expectCitiesArrived();
}

TEST_F(LoadStagingTextTest, TakesAWordBetweenLineFeedsForATable) {
    const LoadOutcome outcome = loadComuni("'a','b','c'\n'd\nword\ne','f','g'\n'h','i','j'\n");
    expectRefused(outcome, unreadable);
    EXPECT_EQ(comuni(), (Rows{{"a", "b", "c"}}));
    EXPECT_EQ(outcome.stored, 2U);
    expectCitiesArrived();
}

TEST_F(LoadStagingTextTest, TakesAListBetweenLineFeedsForColumns) {
    const LoadOutcome outcome = loadComuni("'d\none, two\ne','f','g'\n'h','i','j'\n");
    EXPECT_TRUE(comuni().empty());
    expectRefused(outcome, unreadable);
    expectCitiesArrived();
}

TEST_F(LoadStagingTextTest, TakesTheEndOfATableFromAValue) {
    loadComuni("'d\n-----\ne','f','g'\n'h','i','j'\n");
    EXPECT_TRUE(comuni().empty());
    expectCitiesArrived();
}

TEST_F(LoadStagingTextTest, TakesARowWithTheValueNullForColumns) {
    const LoadOutcome outcome = loadComuni("'a','b','c'\n'd','null','e'\n'f','g','h'\n");
    EXPECT_EQ(outcome.stored, 2U);
    expectRefused(outcome, "has no column named d");
    EXPECT_EQ(comuni(), (Rows{{"a", "b", "c"}}));
    expectCitiesArrived();
}

TEST_F(LoadStagingTextTest, KeepsAValueThatOnlyHoldsTheWordNull) {
    EXPECT_EQ(loadComuni("'null island','0','NULL'\n").stored, 2U);
}

TEST_F(LoadStagingTextTest, LosesTheRowsOfColumnsThatTheNewTableDoesNotHave) {
    const LoadOutcome outcome = load("Comuni\nComuni,Felt\n'a','b'\n'c','d'\n-----\n");
    EXPECT_EQ(outcome.stored, 0U);
    expectRefused(outcome, "has no column named Felt");
}

TEST_F(LoadStagingTextTest, LosesTheRowsOfATableWithOneColumn) {
    for (const std::string column : {"Comuni", "Name", "UTC"}) {
        const LoadOutcome outcome = load("Comuni\n" + column + "\n'a'\n-----\n");
        EXPECT_EQ(outcome.stored, 0U);
        EXPECT_NE(outcome.firstRefusal, "");
    }
}

TEST_F(LoadStagingTextTest, WritesToNoTableButTheKeptOnes) {
    for (const std::string table :
         {"Version", "sqlite_sequence", "sqlite_master", "comuni", "main.Comuni", "Comuni--",
          "Comuni(Comuni) select Name from Cities --", "Comuni default values; --"}) {
        const LoadOutcome outcome = load(table + "\nComuni,Latitude\n'a','b'\n-----\n");
        EXPECT_EQ(outcome.stored, 0U) << table;
        expectRefused(outcome, homeless);
    }
    EXPECT_TRUE(comuni().empty());
}

TEST_F(LoadStagingTextTest, LetsNoListOfColumnsBecomeAStatement) {
    for (const std::string columns :
         {"Comuni) select sql,1 from sqlite_master --", "Comuni,Latitude) values (1,2) --,",
          "Comuni,Latitude --", "Comuni,Latitude /*", "Comuni,,", ","}) {
        const LoadOutcome outcome = load("Comuni\n" + columns + "\n'a','b'\n-----\n");
        EXPECT_EQ(outcome.stored, 0U) << columns;
        EXPECT_NE(outcome.firstRefusal, "") << columns;
    }
    EXPECT_TRUE(comuni().empty());
}

TEST_F(LoadStagingTextTest, LosesOnlyTheRowThatAConstraintRefuses) {
    const LoadOutcome outcome =
        load("Workspace\nName,Zoom\n'Italy','6'\n'Italy','7'\n'Etna','11'\n-----\n"
             "Search\n_,NameSearch\n'x','no number'\n'4','good'\n-----\n");
    EXPECT_EQ(outcome.stored, 3U);
    expectRefused(outcome, "UNIQUE constraint failed");
    EXPECT_EQ(valueOf(database, "select _ from Search"), "4");
}

TEST_F(LoadStagingTextTest, BearsARowOfAMillionValues) {
    std::string row = "'a'";
    for (int i = 0; i < 1000000; ++i)
        row += ",'a'";
    const LoadOutcome outcome = loadComuni(row + "\n");
    EXPECT_EQ(outcome.stored, 1U);
    EXPECT_NE(outcome.firstRefusal, "");
}

TEST_F(LoadStagingTextTest, RaisesAnErrorWhenTheFileRefuses) {
    ASSERT_EQ(database.slsExe("pragma query_only = on"), 0);
    EXPECT_EQ(errorOf([&] { load(testing::oldStagingText); }), ErrorNumber::PermissionDenied);
    database.slClose();
    EXPECT_EQ(errorOf([&] { load(testing::oldStagingText); }), ErrorNumber::UserDefined);
}

TEST_F(LoadStagingTextTest, LetsWindowsRepaint) {
    std::string lines;
    for (int i = 0; i < 2500; ++i)
        lines += "'a','b','c'\n";
    int repaints = 0;
    loadStagingText(database, "Comuni\nComuni,Latitude,Longitude\n" + lines, [&] { ++repaints; });
    EXPECT_EQ(repaints, 2);
}

} // namespace
} // namespace tremor
