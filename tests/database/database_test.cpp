#include "database/database.h"
#include "database/database_support.h"
#include "support/fakes.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

using namespace tremor;
using namespace tremor::testing;
using namespace std::string_literals;

namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr auto createEvents =
    "CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
    "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)";

class DatabaseTest : public ::testing::Test {
  protected:
    DatabaseTest() { EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0); }

    TemporaryFolder folder;
    Database database;
};

class EventsTest : public DatabaseTest {
  protected:
    EventsTest() { EXPECT_EQ(database.slsExe(createEvents), 0); }

    int insert(const std::string& utc, const std::string& depth = "10") {
        return database.slsExe("INSERT INTO Events (UTC, Latitude, Longitude, Depth, Magnitude, "
                               "Source) VALUES ('" +
                               utc + "', '42.7', '13.23', '" + depth + "', '4.5', 'INGV')");
    }
    std::string count() { return valueOf(database, "select count(*) from Events"); }
};

} // namespace

// --- rows -----------------------------------------------------------------------------------

TEST_F(EventsTest, GivesRealColumnsAsSqliteWritesThemAndNullAsTheEmptyText) {
    ASSERT_EQ(insert("2016-08-24 01:36:32.000"), 0);
    EXPECT_EQ(rowsOf(database, "select * from Events"),
              (Rows{{"2016-08-24 01:36:32.000", "42.7", "13.23", "10.0", "4.5", "INGV", ""}}));
}

TEST_F(EventsTest, ComparesQuotedNumbersInNumericColumnsAsNumbersAndOtherTextsAsTexts) {
    insert("a", "4");
    insert("b", "10");
    EXPECT_EQ(valueOf(database, "select count(*) from Events where Depth >= '5'"), "1");
    EXPECT_EQ(valueOf(database, "select count(*) from Events where Depth >= '0,5'"), "0");
    EXPECT_EQ(valueOf(database, "select count(*) from Events where Depth <= '1,5'"), "2");
}

TEST_F(DatabaseTest, StoresAndReturnsBytesUnchanged) {
    database.slsExe("create table t (a text)");
    const std::string utf8 = "Forl\xC3\xAC";
    const std::string latin1 = "Forl\xEC \x80\xFF\xC3";
    database.slsExe("insert into t values ('" + utf8 + "')");
    database.slsExe("insert into t values ('" + latin1 + "')");
    EXPECT_EQ(rowsOf(database, "select a from t"), (Rows{{utf8}, {latin1}}));
    EXPECT_EQ(valueOf(database, "select hex(a) from t"), "466F726CC3AC");
}

TEST_F(DatabaseTest, ReturnsZeroBytesInsideACell) {
    EXPECT_EQ(rowsOf(database, "select x'610062', 'c'"), (Rows{{"a\0b"s, "c"}}));
}

TEST_F(DatabaseTest, ReadsEveryCellOfManyRowsOfDifferentLengths) {
    const std::string sql =
        "with recursive n(i) as (select 0 union all select i + 1 from n where i "
        "< 999) select i, substr('abcdefghijk', 1, i % 12), null, i * 7 from n";
    ASSERT_EQ(database.slsSel(sql), 0);
    const ResultSet rows = database.takeResult();
    ASSERT_EQ(rows.rowCount(), 1000U);
    ASSERT_EQ(rows.columnCount(), 4U);
    for (std::size_t i = 0; i < 1000; ++i) {
        ASSERT_EQ(rows.cell(i, 0), std::to_string(i));
        ASSERT_EQ(rows.cell(i, 1), "abcdefghijk"s.substr(0, i % 12));
        ASSERT_EQ(rows.cell(i, 2), "");
        ASSERT_EQ(rows.cell(i, 3), std::to_string(i * 7));
    }
    EXPECT_EQ(rows.cell(1000, 0), "");
    EXPECT_EQ(rows.cell(0, 4), "");
}

TEST_F(EventsTest, KeepsTypicalRowsInLessThanAHundredBytesEach) {
    ASSERT_EQ(database.slsExe(
                  "insert into Events (UTC, Latitude, Longitude, Depth, Magnitude, Source) with "
                  "recursive n(i) as (select 0 union all select i + 1 from n where i < 69999) "
                  "select '2016-08-24 01:36:32.000', 42.7012, 13.2345, 10.5, 4.5, 'SURVEY-INGV' "
                  "from n"),
              0);
    ASSERT_EQ(database.slsSel("select UTC, Latitude, Longitude, Depth, Magnitude, Source from "
                              "Events"),
              0);
    const ResultSet rows = database.takeResult();
    ASSERT_EQ(rows.rowCount(), 70000U);
    EXPECT_EQ(rows.cell(69999, 5), "SURVEY-INGV");
    EXPECT_LE(rows.memoryUse() / rows.rowCount(), 100U);
}

TEST_F(DatabaseTest, ReadsColumnsByNumberFromOneAndByNameInAnyCase) {
    ASSERT_EQ(database.slsSel("select 1 as Name, 'x' as \"two words\""), 0);
    ASSERT_TRUE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(1), "1");
    EXPECT_EQ(database.slsFX(2), "x");
    EXPECT_EQ(database.slFN("nAME"), "1");
    EXPECT_EQ(database.slFN("two words"), "x");
    EXPECT_EQ(database.slGetColumnCount(), 2);
    EXPECT_EQ(database.slGetColumnName(1), "Name");
}

TEST_F(DatabaseTest, GivesTheEmptyTextForColumnsThatAreNotThere) {
    ASSERT_EQ(database.slsSel("select 1 as a"), 0);
    ASSERT_TRUE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(0), "");
    EXPECT_EQ(database.slsFX(-1), "");
    EXPECT_EQ(database.slsFX(2), "");
    EXPECT_EQ(database.slFN("b"), "");
    EXPECT_EQ(database.slGetColumnName(0), "");
    EXPECT_EQ(database.slGetColumnName(2), "");
}

TEST_F(DatabaseTest, HasNoCurrentRowBeforeTheFirstAndBehindTheLast) {
    ASSERT_EQ(database.slsSel("select 'x'"), 0);
    EXPECT_EQ(database.slsFX(1), "");
    EXPECT_TRUE(database.slsGetRow());
    EXPECT_FALSE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(1), "");
    EXPECT_FALSE(database.slsGetRow());
}

TEST_F(DatabaseTest, KeepsTheColumnsOfAQueryWithoutRows) {
    ASSERT_EQ(database.slsSel("select 1 as a, 2 as b where 0"), 0);
    EXPECT_EQ(database.slGetColumnCount(), 2);
    EXPECT_EQ(database.slGetColumnName(2), "b");
    EXPECT_FALSE(database.slsGetRow());
}

// --- result sets ----------------------------------------------------------------------------

TEST_F(DatabaseTest, KeepsSixteenResultSetsApart) {
    for (int set = 0; set < 16; ++set)
        ASSERT_EQ(database.slsSel(fmt::format("select {}", set), set), 0);
    for (int set = 0; set < 16; ++set) {
        ASSERT_TRUE(database.slsGetRow(set));
        EXPECT_EQ(database.slsFX(1, {}, set), std::to_string(set));
    }
}

TEST_F(DatabaseTest, RefusesResultSetsThatAreNotThere) {
    EXPECT_NE(database.slsSel("select 1", 16), 0);
    EXPECT_EQ(database.slGetError(), "25 no such result set");
    EXPECT_NE(database.slsSel("select 1", -1), 0);
    EXPECT_FALSE(database.slsGetRow(16));
    EXPECT_EQ(database.slsFX(1, {}, -1), "");
    EXPECT_EQ(database.slFN("1", 16), "");
    EXPECT_EQ(database.slGetColumnCount(16), 0);
    EXPECT_EQ(database.takeResult(16).rowCount(), 0U);
}

TEST_F(DatabaseTest, ReplacesTheRowsOfASetByTheNextQueryOnIt) {
    ASSERT_EQ(database.slsSel("select 1 union select 2"), 0);
    ASSERT_TRUE(database.slsGetRow());
    ASSERT_EQ(database.slsSel("select 'new'"), 0);
    ASSERT_TRUE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(1), "new");
    EXPECT_FALSE(database.slsGetRow());
}

TEST_F(DatabaseTest, HasNoRowsAfterAFailingQuery) {
    ASSERT_EQ(database.slsSel("select 1"), 0);
    EXPECT_EQ(database.slsSel("select * from Nowhere"), 1);
    EXPECT_EQ(database.slGetError(), "1 no such table: Nowhere");
    EXPECT_FALSE(database.slsGetRow());
    EXPECT_EQ(database.slGetColumnCount(), 0);
}

TEST_F(DatabaseTest, HasNoRowsWhenAQueryFailsBehindItsFirstRows) {
    const auto sql = "with recursive n(i) as (select 1 union all select i + 1 from n where i < 9) "
                     "select abs(case when i < 5 then i else -9223372036854775808 end) from n";
    EXPECT_EQ(database.slsSel(sql), 1);
    EXPECT_EQ(database.slGetError(), "1 integer overflow");
    EXPECT_FALSE(database.slsGetRow());
}

TEST_F(DatabaseTest, HandsARowSetOverAndLeavesTheSetEmpty) {
    ASSERT_EQ(database.slsSel("select 'a' as x union all select 'b'", 3), 0);
    const ResultSet rows = database.takeResult(3);
    EXPECT_EQ(rows.rowCount(), 2U);
    EXPECT_EQ(rows.cell(1, 0), "b");
    EXPECT_EQ(rows.columnNames(), std::vector<std::string>{"x"});
    EXPECT_FALSE(database.slsGetRow(3));
    EXPECT_EQ(database.slGetColumnCount(3), 0);
}

// --- rows one by one --------------------------------------------------------------------------

TEST_F(EventsTest, HandsOverEachRowOfAQueryInTheFormOfAResultSet) {
    insert("2016-08-24 01:36:32.000");
    insert("a");
    Rows rows;
    EXPECT_EQ(database.slsEach("select UTC, Depth, \"null\", x'610062' from Events order by rowid",
                               [&](const CurrentRow& row) {
                                   rows.emplace_back();
                                   for (int column = 1; column <= 4; ++column)
                                       rows.back().emplace_back(row.text(column));
                                   EXPECT_EQ(row.text(0), "");
                                   EXPECT_EQ(row.text(-1), "");
                                   EXPECT_EQ(row.text(5), "");
                                   return true;
                               }),
              0);
    EXPECT_EQ(rows,
              (Rows{{"2016-08-24 01:36:32.000", "10.0", "", "a\0b"s}, {"a", "10.0", "", "a\0b"s}}));
}

TEST_F(DatabaseTest, EndsAQueryWhenTheVisitorWantsNoMore) {
    int seen = 0;
    const auto endless = "with recursive n(i) as (select 1 union all select i + 1 from n) select i "
                         "from n";
    EXPECT_EQ(database.slsEach(endless, [&](const CurrentRow&) { return ++seen < 3; }), 0);
    EXPECT_EQ(seen, 3);
    EXPECT_EQ(database.slGetError(), "0");
}

TEST_F(DatabaseTest, ReportsAnErrorBehindTheRowsThatItHandedOver) {
    int seen = 0;
    const auto sql = "with recursive n(i) as (select 1 union all select i + 1 from n where i < 9) "
                     "select abs(case when i < 5 then i else -9223372036854775808 end) from n";
    EXPECT_EQ(database.slsEach(sql, [&](const CurrentRow&) { return ++seen != 0; }), 1);
    EXPECT_EQ(database.slGetError(), "1 integer overflow");
    EXPECT_EQ(seen, 4);
    EXPECT_EQ(database.slsEach("nonsense", [](const CurrentRow&) { return true; }), 1);
    EXPECT_EQ(database.slsEach("", [](const CurrentRow&) { return true; }), 0);
}

TEST_F(EventsTest, RefusesOtherCallsWhileItHandsOverRows) {
    insert("a");
    EXPECT_EQ(database.slsEach("select UTC from Events",
                               [&](const CurrentRow&) {
                                   EXPECT_EQ(database.slsExe("delete from Events"), 21);
                                   EXPECT_EQ(database.slsSel("select 1"), 21);
                                   return true;
                               }),
              0);
    EXPECT_EQ(count(), "1");
}

TEST_F(EventsTest, LetsAnExceptionOfTheVisitorOutAndGoesOnAfterwards) {
    insert("a");
    insert("b");
    EXPECT_THROW(
        database.slsEach("select UTC from Events", [](const CurrentRow&) -> bool { throw 7; }),
        int);
    EXPECT_EQ(database.slsExe("drop table Events"), 0); // no statement keeps it busy
}

TEST_F(DatabaseTest, HandsOverNothingWithoutAnOpenFile) {
    database.slClose();
    EXPECT_EQ(database.slsEach("select 1", [](const CurrentRow&) { return true; }), 21);
    EXPECT_EQ(database.slGetError(), "21 no database is open");
}

// --- statements -----------------------------------------------------------------------------

TEST_F(DatabaseTest, KeepsTheTextsOfCreateStatementsToTheLetter) {
    const std::vector<std::string> statements = {
        createEvents, "CREATE TABLE Workspace ('Name' TEXT NOT NULL  UNIQUE , 'Latitude' REAL)",
        "CREATE TABLE Search ('_' INTEGER PRIMARY KEY  AUTOINCREMENT  NOT NULL  UNIQUE , "
        "'NameSearch' TEXT NOT NULL  DEFAULT CURRENT_TIMESTAMP)"};
    for (const auto& statement : statements)
        ASSERT_EQ(database.slsExe(statement), 0);
    EXPECT_EQ(rowsOf(database, "SELECT sql FROM sqlite_master WHERE name in ('Events', "
                               "'Workspace', 'Search') ORDER BY rowid"),
              (Rows{{statements[0]}, {statements[1]}, {statements[2]}}));
}

TEST_F(EventsTest, AFailingStatementInATransactionLosesOnlyItsOwnRow) {
    EXPECT_EQ(database.slsExe("BEGIN TRANSACTION;"), 0);
    EXPECT_EQ(insert("1"), 0);
    EXPECT_EQ(insert("L'Aquila"), 1);
    EXPECT_EQ(insert("2"), 0);
    EXPECT_EQ(database.slsExe("COMMIT;"), 0);
    EXPECT_EQ(rowsOf(database, "select UTC from Events"), (Rows{{"1"}, {"2"}}));
}

TEST_F(EventsTest, AcceptsBlanksAndSemicolonsBehindAStatement) {
    EXPECT_EQ(database.slsExe("delete from Events;  ; ;;"), 0);
    EXPECT_EQ(database.slsSel("select 1 ;"), 0);
    EXPECT_EQ(database.slsExe("VACUUM;"), 0);
}

TEST_F(EventsTest, RunsNothingWhenMoreThanBlanksAndSemicolonsStandBehindAStatement) {
    insert("kept");
    for (const std::string tail :
         {"drop table Events", "-- comment", "/* comment */", "x", "\n", "\t", "'", "\xC3\xA8"}) {
        EXPECT_EQ(database.slsExe("delete from Events;" + tail), 1) << tail;
        EXPECT_EQ(database.slGetError(), "1 more than one statement in a call");
        EXPECT_EQ(database.slsSel("select 1;" + tail), 1) << tail;
        EXPECT_FALSE(database.slsGetRow());
        EXPECT_FALSE(database.prepare("select 1;" + tail)) << tail;
    }
    EXPECT_EQ(count(), "1");
}

TEST_F(EventsTest, AStrangersNameCannotSmuggleInASecondStatement) {
    const std::string name = "x'); drop table Events; --";
    EXPECT_NE(database.slsExe("insert into Events (UTC) values ('" + name + "')"), 0);
    EXPECT_EQ(count(), "0");
}

TEST_F(EventsTest, FailsOnAZeroByteInAStatement) {
    EXPECT_EQ(database.slsExe("insert into Events (UTC) values ('a\0')"s), 1);
    EXPECT_EQ(database.slGetError(), "1 the statement holds a zero byte");
    EXPECT_EQ(database.slsExe("insert into Events (UTC) values ('a')\0"s), 1);
    EXPECT_EQ(database.slsSel("select 1\0"s), 1);
    EXPECT_EQ(count(), "0");
}

TEST_F(DatabaseTest, DoesNothingForATextWithoutAStatement) {
    for (const auto* text : {"", " ", ";", " ; ; ", "-- comment"}) {
        EXPECT_EQ(database.slsExe(text), 0) << text;
        EXPECT_EQ(database.slsSel(text), 0) << text;
        EXPECT_FALSE(database.slsGetRow());
        EXPECT_FALSE(database.prepare(text));
    }
}

TEST_F(DatabaseTest, SaysZeroAgainAfterTheNextGoodCall) {
    EXPECT_EQ(database.slsExe("nonsense"), 1);
    EXPECT_EQ(database.slGetError(), "1 near \"nonsense\": syntax error");
    EXPECT_EQ(database.slsSel("select 1"), 0);
    EXPECT_EQ(database.slGetError(), "0");
}

TEST_F(EventsTest, CountsTheRowsThatTheLastStatementChanged) {
    insert("1");
    insert("2");
    EXPECT_EQ(database.changes(), 1);
    database.slsExe("delete from Events");
    EXPECT_EQ(database.changes(), 2);
}

TEST_F(EventsTest, OpensAFileForReadingOnly) {
    insert("1");
    Database reader;
    ASSERT_EQ(reader.slsOpen(database.path(), "R"), 0);
    EXPECT_EQ(reader.slsSel("select * from Events"), 0);
    EXPECT_EQ(reader.slsExe("delete from Events"), SQLITE_READONLY);
    EXPECT_EQ(count(), "1");
    EXPECT_NE(reader.slsOpen(folder.file("missing.sqlite"), "R"), 0);
}

TEST_F(EventsTest, EndsAStatementAtTheWishOfTheBusyCallback) {
    database.setBusyCallback([this] { database.interrupt(); });
    EXPECT_EQ(database.slsSel("with recursive n(x) as (select 1 union all select x + 1 from n) "
                              "select count(*) from n"),
              SQLITE_INTERRUPT);
    EXPECT_EQ(database.slsSel("select 1"), 0);
    database.interrupt();
    EXPECT_EQ(database.slsSel("select 1"), 0);
}

// --- prepared statements --------------------------------------------------------------------

TEST_F(EventsTest, RunsAPreparedStatementManyTimesWithOtherValues) {
    Statement statement = database.prepare("insert into Events (UTC, Depth) values (?, ?)");
    ASSERT_TRUE(statement);
    EXPECT_EQ(database.execute(statement, {"L'Aquila", "10"}), 0);
    EXPECT_EQ(database.execute(statement, {"a\0b"s, ""}), 0);
    EXPECT_EQ(database.execute(statement, {"", std::string_view()}), 0);
    EXPECT_EQ(rowsOf(database, "select cast(UTC as blob), Depth from Events"),
              (Rows{{"L'Aquila", "10.0"}, {"a\0b"s, ""}, {"", ""}}));
    EXPECT_EQ(valueOf(database, "select count(*) from Events where Depth is null"), "0");
}

TEST_F(DatabaseTest, APreparedStatementGoesOnAfterAFailure) {
    database.slsExe("create table t (a text unique)");
    Statement statement = database.prepare("insert into t values (?)");
    EXPECT_EQ(database.execute(statement, {"x"}), 0);
    EXPECT_EQ(database.execute(statement, {"x"}), 19);
    EXPECT_EQ(database.slGetError(), "19 UNIQUE constraint failed: t.a");
    EXPECT_EQ(database.execute(statement, {"y"}), 0);
    EXPECT_EQ(database.slGetError(), "0");
}

TEST_F(EventsTest, RefusesTheWrongNumberOfValues) {
    Statement statement = database.prepare("insert into Events (UTC, Depth) values (?, ?)");
    EXPECT_EQ(database.execute(statement, {"a"}), 25);
    EXPECT_EQ(database.execute(statement, {"a", "b", "c"}), 25);
    EXPECT_EQ(database.slGetError(), "25 wrong number of values for the statement");
    EXPECT_EQ(count(), "0");
}

TEST_F(DatabaseTest, GivesNoStatementForAFaultyText) {
    Statement statement = database.prepare("insert nowhere");
    EXPECT_FALSE(statement);
    EXPECT_EQ(database.slGetError(), "1 near \"nowhere\": syntax error");
    EXPECT_EQ(database.execute(statement, {}), 21);
}

TEST_F(EventsTest, RefusesAStatementOfADatabaseThatWasClosedOrOfAnotherOne) {
    Statement statement = database.prepare("insert into Events (UTC) values (?)");
    Database other;
    ASSERT_EQ(other.slsOpen(folder.file("other.sqlite"), "C"), 0);
    EXPECT_EQ(other.execute(statement, {"a"}), 21);
    database.slClose();
    EXPECT_EQ(database.execute(statement, {"a"}), 21);
    ASSERT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), ""), 0);
    EXPECT_EQ(database.execute(statement, {"a"}), 21);
    EXPECT_EQ(database.slGetError(), "21 the statement belongs to no open database");
    EXPECT_EQ(count(), "0");
}

// --- values pasted into statements -----------------------------------------------------------

TEST_F(DatabaseTest, PastedTextValueTellsWhatAPastedStatementStores) {
    database.slsExe("create table t (a text)");
    const std::vector<std::string> values = {
        "",     "plain", "'",        "''",     "'''",      "a''b",  "L'Aquila",
        "a'",   "''a''", "a'''b",    "''''",   "\xE8\xFF", "a\0b"s, "x'); drop table t; --",
        "\r\n", "--",    "a;''b;;%", "x' --''"};
    for (const auto& value : values) {
        database.slsExe("delete from t");
        const bool stored = database.slsExe("insert into t values ('" + value + "')") == 0;
        const auto told = pastedTextValue(value);
        ASSERT_EQ(told.has_value(), stored) << value;
        if (stored) {
            EXPECT_EQ(valueOf(database, "select a from t"), *told);
        }
    }
}

TEST(PastedTextValue, RefusesAValueThatWouldCloseItsTextAndFormAnotherValidStatement) {
    EXPECT_EQ(pastedTextValue("x'),('y"), std::nullopt);
    EXPECT_EQ(pastedTextValue("x' || 'y"), std::nullopt);
}
