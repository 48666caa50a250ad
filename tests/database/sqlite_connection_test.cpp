#include "database/database_support.h"
#include "support/fakes.h"
#include "support/texts.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

using namespace tremor;
using namespace tremor::testing;
using namespace std::string_literals;

// The connection behind Database: opening, hostile files, locks, and calls while it is busy.
namespace {

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class ConnectionTest : public ::testing::Test {
  protected:
    // A file with table t, one text column a, and one row "x".
    std::string smallFile(const std::string& name) {
        std::string path = folder.file(name);
        ForeignConnection(path).run("create table t (a text); insert into t values ('x')");
        return path;
    }

    TemporaryFolder folder;
    Database database;
};

constexpr auto slowQuery = "with recursive n(i) as (select 1 union all select i + 1 from n where "
                           "i < 1500000) select count(*) from n";

} // namespace

// --- opening ----------------------------------------------------------------------------------

TEST_F(ConnectionTest, CreatesAFileOnlyWithTheLetterC) {
    const std::string path = folder.file("new.sqlite");
    EXPECT_EQ(database.slsOpen(path, ""), 14);
    EXPECT_EQ(database.slGetError(), "14 unable to open database file");
    EXPECT_FALSE(database.isOpen());
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(database.slsOpen(path, "C"), 0);
    EXPECT_TRUE(database.isOpen());
    EXPECT_EQ(database.path(), path);
    EXPECT_EQ(database.slsExe("create table t (a)"), 0);
    EXPECT_TRUE(std::filesystem::exists(path));
}

TEST_F(ConnectionTest, RefusesFoldersAndNamesThatAreNone) {
    EXPECT_EQ(database.slsOpen(folder.path(), "C"), 14);
    EXPECT_EQ(database.slsOpen("", "C"), 14);
    EXPECT_EQ(database.slGetError(), "14 no valid file name");
    EXPECT_EQ(database.slsOpen(folder.file("a\0b"s), "C"), 14);
    EXPECT_EQ(database.slsOpen(folder.file("missing/new.sqlite"), "C"), 14);
    EXPECT_FALSE(database.isOpen());
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(ConnectionTest, TakesNamesWithAMeaningToSqliteAsPlainFiles) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    for (const std::string name : {":memory:", "file:x?mode=memory"}) {
        EXPECT_EQ(database.slsOpen(name, "C"), 0);
        EXPECT_EQ(database.slsExe("create table t (a)"), 0);
        EXPECT_TRUE(std::filesystem::exists(folder.file(name))) << name;
    }
    database.slClose();
    std::filesystem::current_path(before);
}

TEST_F(ConnectionTest, FailsEveryCallWithoutAnOpenFile) {
    EXPECT_EQ(database.slsExe("select 1"), 21);
    EXPECT_EQ(database.slGetError(), "21 no database is open");
    EXPECT_EQ(database.slsSel("select 1"), 21);
    EXPECT_FALSE(database.slsGetRow());
    EXPECT_FALSE(database.prepare("select 1"));
    EXPECT_EQ(database.changes(), 0);
    EXPECT_EQ(database.path(), "");
    database.slClose();
    database.slDisconnect();
    EXPECT_EQ(database.slGetError(), "0");
}

TEST_F(ConnectionTest, OpeningTheSameFileAgainKeepsRowsAndTransaction) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ASSERT_EQ(database.slsSel("select a from t", 2), 0);
    ASSERT_EQ(database.slsExe("BEGIN TRANSACTION;"), 0);
    ASSERT_EQ(database.slsExe("insert into t values ('y')"), 0);
    Statement statement = database.prepare("insert into t values (?)");
    EXPECT_EQ(database.slsOpen(database.path(), ""), 0);
    EXPECT_TRUE(database.slsGetRow(2));
    EXPECT_EQ(database.slsFX(1, {}, 2), "x");
    EXPECT_EQ(database.execute(statement, {"z"}), 0);
    EXPECT_EQ(database.slsExe("COMMIT;"), 0);
    EXPECT_EQ(valueOf(database, "select group_concat(a) from t"), "x,y,z");
}

TEST_F(ConnectionTest, OpensTheNewFileWhenAnotherOneStandsUnderTheSamePath) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ASSERT_EQ(valueOf(database, "select a from t"), "x");
    const std::string other = folder.file("b.sqlite");
    ForeignConnection(other).run("create table t (a text); insert into t values ('restored')");
    std::filesystem::rename(other, path);
    EXPECT_EQ(database.slsOpen(path, ""), 0);
    EXPECT_EQ(valueOf(database, "select a from t"), "restored");
}

TEST_F(ConnectionTest, NoticesThatTheOpenFileWasDeleted) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    std::filesystem::remove(path);
    EXPECT_EQ(database.slsOpen(path, ""), 14);
    EXPECT_FALSE(database.isOpen());
}

TEST_F(ConnectionTest, SurvivesAFileThatIsOverwrittenInPlaceWithAShorterOne) {
    const std::string path = smallFile("a.sqlite");
    const std::string brief = contentOf(path);
    ForeignConnection(path).run("create table big (b); insert into big values (zeroblob(9000000))");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ASSERT_EQ(valueOf(database, "select length(b) from big"), "9000000");
    writeBytes(path, brief);
    EXPECT_NE(database.slsSel("select b from big"), 0);
    ::truncate(path.c_str(), 0);
    EXPECT_NE(database.slsSel("select b from big"), 0);
}

TEST_F(ConnectionTest, OpeningAnotherFileClosesTheFirstAndRollsItsTransactionBack) {
    const std::string first = smallFile("a.sqlite");
    const std::string second = smallFile("b.sqlite");
    ASSERT_EQ(database.slsOpen(first, ""), 0);
    database.slsExe("BEGIN TRANSACTION;");
    database.slsExe("insert into t values ('lost')");
    Statement held = database.prepare("insert into t values (?)");
    EXPECT_EQ(database.slsOpen(second, ""), 0);
    EXPECT_EQ(database.path(), second);
    // The lock is gone although a statement of the first file is still held.
    ForeignConnection(first).run("insert into t values ('y')");
    ASSERT_EQ(database.slsOpen(first, ""), 0);
    EXPECT_EQ(valueOf(database, "select group_concat(a) from t"), "x,y");
}

TEST_F(ConnectionTest, LeavesNothingOpenWhenAnotherFileCannotBeOpened) {
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    ASSERT_EQ(database.slsSel("select a from t"), 0);
    EXPECT_EQ(database.slsOpen(folder.file("missing.sqlite"), ""), 14);
    EXPECT_FALSE(database.isOpen());
    EXPECT_FALSE(database.slsGetRow());
}

TEST_F(ConnectionTest, ReadsAWriteProtectedFileAndReportsWrites) {
    const std::string path = smallFile("a.sqlite");
    ::chmod(path.c_str(), 0400);
    const bool root = ::geteuid() == 0; // to whom a mode means nothing
    if (root) {
        ASSERT_EQ(::chown(path.c_str(), 65534, 65534), 0);
        ASSERT_EQ(::chown(folder.path().c_str(), 65534, 65534), 0);
        ASSERT_EQ(::seteuid(65534), 0);
    }
    EXPECT_EQ(database.slsOpen(path, ""), 0);
    EXPECT_EQ(valueOf(database, "select a from t"), "x");
    EXPECT_EQ(database.slsExe("insert into t values ('y')"), 8);
    EXPECT_EQ(database.slGetError(), "8 attempt to write a readonly database");
    database.slClose();
    ::chmod(path.c_str(), 0);
    EXPECT_EQ(database.slsOpen(path, ""), 14);
    if (root) {
        ASSERT_EQ(::seteuid(0), 0);
    }
}

// --- hostile files ----------------------------------------------------------------------------

TEST_F(ConnectionTest, AnEmptyFileIsADatabaseWithoutTables) {
    writeBytes(folder.file("empty.sqlite"), "");
    ASSERT_EQ(database.slsOpen(folder.file("empty.sqlite"), ""), 0);
    EXPECT_EQ(valueOf(database, "select count(*) from sqlite_master"), "0");
    EXPECT_EQ(database.slsSel("select Database from Version"), 1);
}

TEST_F(ConnectionTest, ReturnsAnErrorForAFileOfSomethingElse) {
    writeBytes(folder.file("photo.sqlite"), std::string(20000, '\x07'));
    database.slsOpen(folder.file("photo.sqlite"), "");
    EXPECT_EQ(database.slsSel("select Database from Version"), 26);
    EXPECT_EQ(database.slGetError(), "26 file is not a database");
    EXPECT_EQ(database.slsExe("create table t (a)"), 26);
}

TEST_F(ConnectionTest, ReturnsAnErrorForAFaultySchema) {
    const std::string path = smallFile("a.sqlite");
    ForeignConnection(path).run("pragma writable_schema = on; update sqlite_master set sql = "
                                "'CREATE TABLE t (a text'");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    EXPECT_EQ(database.slsSel("select a from t"), 11);
    EXPECT_FALSE(database.slsGetRow());
}

TEST_F(ConnectionTest, SurvivesDamagedFiles) {
    const std::string path = folder.file("a.sqlite");
    ForeignConnection(path).run(
        "create table t (a text unique, b real); with recursive n(i) as (select 1 union all "
        "select i + 1 from n where i < 800) insert into t select 'row ' || i, i / 2.0 from n");
    const std::string sound = contentOf(path);
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    int failures = 0;
    for (int round = 0; round < 300; ++round) {
        std::string bytes = sound;
        if (round % 3 == 0)
            bytes.resize(below(bytes.size()));
        for (int flips = round % 3 == 0 ? 0 : 40; flips > 0 && !bytes.empty(); --flips)
            bytes[below(round % 3 == 1 ? 200 : bytes.size())] = static_cast<char>(random());
        const std::string damaged = folder.file(fmt::format("{}.sqlite", round));
        writeBytes(damaged, bytes);
        database.slsOpen(damaged, "");
        const bool read = database.slsSel("select * from t order by a desc") == 0;
        const bool written = database.slsExe("insert into t values ('new', 1)") == 0;
        if (!read || !written) {
            ++failures;
        }
        database.slClose();
    }
    EXPECT_GT(failures, 100);
}

// --- what a file or a statement must not reach ------------------------------------------------

TEST_F(ConnectionTest, RefusesToReachOtherFiles) {
    const std::string other = smallFile("other.sqlite");
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    for (const std::string& statement :
         {"ATTACH '" + other + "' AS o", "ATTACH '' AS o"s, "ATTACH ':memory:' AS o"s,
          "ATTACH 'a' || 'b' AS o"s, "DETACH main"s}) {
        EXPECT_EQ(database.slsExe(statement), 23) << statement;
        EXPECT_EQ(database.slGetError(), "23 not authorized");
    }
    EXPECT_NE(database.slsExe("VACUUM INTO '" + folder.file("copy.sqlite") + "'"), 0);
    EXPECT_FALSE(std::filesystem::exists(folder.file("copy.sqlite")));
    EXPECT_NE(database.slsSel("select load_extension('" + other + "')"), 0);
}

TEST_F(ConnectionTest, VacuumShrinksTheFile) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ASSERT_EQ(database.slsExe("insert into t values (zeroblob(1000000))"), 0);
    ASSERT_EQ(database.slsExe("delete from t where a <> 'x'"), 0);
    const auto before = std::filesystem::file_size(path);
    EXPECT_EQ(database.slsExe("VACUUM;"), 0);
    EXPECT_LT(std::filesystem::file_size(path), before);
    EXPECT_EQ(valueOf(database, "select a from t"), "x");
}

TEST_F(ConnectionTest, KeepsTheSchemaFromBeingWrittenDirectly) {
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    database.slsExe("pragma writable_schema = on");
    EXPECT_NE(database.slsExe("update sqlite_master set sql = 'CREATE TABLE t (b)'"), 0);
    EXPECT_EQ(valueOf(database, "pragma trusted_schema"), "0");
    EXPECT_EQ(valueOf(database, "pragma cell_size_check"), "1");
}

TEST_F(ConnectionTest, KeepsTheRollbackJournalAndFullFlushes) {
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    EXPECT_EQ(valueOf(database, "pragma journal_mode"), "delete");
    EXPECT_EQ(valueOf(database, "pragma synchronous"), "2");
}

// --- locks, repainting, calls out of turn -----------------------------------------------------

TEST_F(ConnectionTest, WaitsForALockAndCallsBackMeanwhile) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ForeignConnection other(path);
    other.run("begin exclusive");
    int calls = 0;
    database.setBusyCallback([&] {
        if (++calls == 4)
            other.run("commit");
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(database.slsExe("insert into t values ('y')"), 0);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(calls, 4);
    EXPECT_GE(waited, std::chrono::milliseconds(4 * 30));
    EXPECT_EQ(valueOf(database, "select count(*) from t"), "2");
}

TEST_F(ConnectionTest, GivesUpOnALockAfterTheTimeOut) {
    const std::string path = smallFile("a.sqlite");
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    ForeignConnection other(path);
    other.run("begin exclusive");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(database.slsSel("select a from t"), 5);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(database.slGetError(), "5 database is locked");
    EXPECT_GE(waited, std::chrono::milliseconds(Database::busyTimeoutMilliseconds));
    EXPECT_LT(waited, std::chrono::milliseconds(10 * Database::busyTimeoutMilliseconds));
}

TEST_F(ConnectionTest, CallsBackWhileALongStatementRuns) {
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    int calls = 0;
    database.setBusyCallback([&] { ++calls; });
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(database.slsSel(slowQuery), 0);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_GE(calls, 1);
    EXPECT_LE(calls, seconds.count() / 0.030 + 1);
}

TEST_F(ConnectionTest, RefusesEveryCallFromTheCallbackAndFinishesItsStatement) {
    ASSERT_EQ(database.slsOpen(smallFile("a.sqlite"), ""), 0);
    ASSERT_EQ(database.slsSel("select a from t", 1), 0);
    ASSERT_TRUE(database.slsGetRow(1));
    Statement statement = database.prepare("delete from t");
    int calls = 0;
    database.setBusyCallback([&] {
        ++calls;
        EXPECT_EQ(database.slsExe("delete from t"), 21);
        EXPECT_EQ(database.slGetError(), "21 a statement is still running");
        EXPECT_EQ(database.slsSel("select 1"), 21);
        EXPECT_EQ(database.slsOpen(database.path(), ""), 21);
        EXPECT_EQ(database.execute(statement, {}), 21);
        EXPECT_FALSE(database.prepare("select 1"));
        EXPECT_FALSE(database.slsGetRow(1));
        EXPECT_EQ(database.slsFX(1, {}, 1), "");
        EXPECT_EQ(database.takeResult(1).rowCount(), 0U);
        EXPECT_EQ(database.changes(), 0);
        database.slClose();
        EXPECT_TRUE(database.isOpen());
    });
    EXPECT_EQ(database.slsSel(slowQuery), 0);
    EXPECT_GE(calls, 1);
    EXPECT_EQ(database.slGetError(), "0");
    EXPECT_TRUE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(1), "1500000");
    EXPECT_EQ(database.slsFX(1, {}, 1), "x");
    EXPECT_EQ(valueOf(database, "select count(*) from t"), "1");
}

// --- a kill at any time -----------------------------------------------------------------------

TEST_F(ConnectionTest, AKilledProcessLeavesAllOfATransactionOrNothing) {
    const std::string path = smallFile("a.sqlite");
    const auto killedAfter = [&](const std::vector<std::string>& statements) {
        const pid_t child = ::fork();
        if (child == 0) {
            Database own;
            own.slsOpen(path, "");
            for (const auto& statement : statements)
                own.slsExe(statement);
            ::raise(SIGKILL);
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status));
    };
    // More than the page cache holds, so that the file itself is already half changed.
    const std::string many =
        "insert into t with recursive n(i) as (select 1 union all select i + 1 "
        "from n where i < 6000) select zeroblob(1000) from n";
    killedAfter({"BEGIN TRANSACTION;", many});
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    EXPECT_EQ(valueOf(database, "select count(*) from t"), "1");
    EXPECT_EQ(valueOf(database, "pragma integrity_check"), "ok");
    database.slClose();
    killedAfter({"BEGIN TRANSACTION;", many, "COMMIT;"});
    ASSERT_EQ(database.slsOpen(path, ""), 0);
    EXPECT_EQ(valueOf(database, "select count(*) from t"), "6001");
}
