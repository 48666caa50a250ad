// An upgrade that cannot be finished: a file that somebody else holds, damaged files, full disks.
#include "database/upgrade_support.h"
#include "support/child_process.h"
#include "support/file_size_limit.h"
#include "support/ordinary_user.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <utility>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::DatabaseUpgradeTest;
using testing::ForeignConnection;
using testing::UpgradingProgram;

using Names = std::vector<std::string>;

constexpr auto closeAll = "Please close all process which use the Database.";
constexpr auto closeThese = "Please close these programs :\r\n";

// --- a file that somebody else holds ----------------------------------------------------------

TEST_F(DatabaseUpgradeTest, GivesUpOnALockedFileWhenItIsIgnored) {
    const std::string before = bytes();
    ForeignConnection other(path);
    other.run("begin exclusive");
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Ignore);
    EXPECT_FALSE(program.upgradeDB());
    expectUnchanged(before);
    EXPECT_EQ(prompts.lastErrorTitle, "TREMORLEDGER");
    EXPECT_EQ(prompts.lastErrorText, closeAll);
    EXPECT_EQ(log.messages, Names{"Database catalogue.sqlite was not upgraded and is unchanged: "
                                  "5 database is locked"});
    EXPECT_EQ(filesInFolder(), Names{"catalogue.sqlite"});
}

// The report goes to the log before the operator is asked: that is when these tests act.
struct ActingLog : testing::RecordingLog {
    void addLogToList(std::string_view message) override {
        RecordingLog::addLogToList(message);
        if (act)
            std::exchange(act, {})();
    }
    std::function<void()> act;
};

TEST_F(DatabaseUpgradeTest, TriesAgainWhenTheOtherProgramIsClosed) {
    auto other = std::make_unique<ForeignConnection>(path);
    other->run("begin; select * from Events");
    other->run("pragma journal_mode");
    ActingLog acting;
    acting.act = [&] { other.reset(); };
    program.harness.errors.setLog(&acting);
    other->run("update Events set Source = Source");
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Retry);
    EXPECT_TRUE(program.upgradeDB());
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
    EXPECT_EQ(acting.messages, Names{closeAll});
}

TEST_F(DatabaseUpgradeTest, NamesTheProgramsThatHoldTheFile) {
    const testing::ChildProcess viewer([&] {
        ::prctl(PR_SET_NAME, "TREMORVIEW.EXE");
        sqlite3* handle = nullptr;
        if (sqlite3_open(path.c_str(), &handle) != SQLITE_OK ||
            sqlite3_exec(handle, "pragma journal_mode = wal; select * from Events", nullptr,
                         nullptr, nullptr) != SQLITE_OK)
            ::_exit(1);
    });
    prompts.expectRuntimeError(closeThese, ErrorAnswer::Ignore);
    EXPECT_FALSE(program.upgradeDB());
    EXPECT_EQ(prompts.lastErrorText, std::string(closeThese) + "TREMORVIEW.EXE");
    EXPECT_EQ(contentsOf(path), testing::oldStagingText);
}

TEST_F(DatabaseUpgradeTest, EndsTheProgramOnAbort) {
    const std::string before = bytes();
    ASSERT_EQ(program.database.slsOpen(path, ""), 0);
    fs::permissions(folder.path(), fs::perms::none);
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Abort);
    {
        const testing::OrdinaryUser user;
        EXPECT_THROW(program.upgrade.upgradeDB(), testing::ProcessEnded);
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    expectUnchanged(before);
}

TEST_F(DatabaseUpgradeTest, AsksAboutAFileThatMayNotBeWritten) {
    const std::string before = bytes();
    ASSERT_EQ(program.database.slsOpen(path, ""), 0);
    ASSERT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Retry);
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Ignore);
    {
        const testing::OrdinaryUser user;
        EXPECT_FALSE(program.upgrade.upgradeDB());
    }
    expectUnchanged(before);
}

// In such a folder everybody may add files and only their owner may delete them.
TEST_F(DatabaseUpgradeTest, KeepsTheOldFileThatMayNotBeDeleted) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a file of somebody else";
    const std::string before = bytes();
    ASSERT_EQ(::chmod(folder.path().c_str(), 01777), 0);
    ASSERT_EQ(::chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(program.database.slsOpen(path, ""), 0);
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Retry);
    prompts.expectRuntimeError(closeAll, ErrorAnswer::Ignore);
    {
        const testing::OrdinaryUser user;
        EXPECT_FALSE(program.upgrade.upgradeDB());
    }
    expectUnchanged(before);
    EXPECT_TRUE(readWholeFile(backup) == before);
    expectLogged("was not upgraded and is unchanged: Permission denied");
}

struct ActingClock : testing::FakeClock {
    void repaint() override { act(); }
    std::function<void()> act;
};

// True when another process could not write to the file: asked of the system in a child, because
// locks of one and the same process do not exclude each other.
bool isLockedForOthers(const std::string& file) {
    const pid_t child = ::fork();
    if (child == 0) {
        struct flock lock {};
        lock.l_type = F_WRLCK;
        lock.l_whence = SEEK_SET;
        lock.l_start = 0x40000000; // where SQLite locks (https://www.sqlite.org/fileformat.html)
        lock.l_len = 512;
        const int number = ::open(file.c_str(), O_RDWR);
        const bool asked = number >= 0 && ::fcntl(number, F_GETLK, &lock) == 0;
        ::_exit(asked && lock.l_type == F_WRLCK ? 1 : 0);
    }
    int ending = 0;
    ::waitpid(child, &ending, 0);
    return WIFEXITED(ending) && WEXITSTATUS(ending) == 1;
}

TEST_F(DatabaseUpgradeTest, LocksTheFileUntilItIsGone) {
    ActingClock probing;
    int locked = 0;
    bool gone = false;
    probing.act = [&] {
        gone = gone || !FileExists(path);
        if (gone)
            return;
        EXPECT_TRUE(isLockedForOthers(path));
        ++locked;
    };
    UpgradingProgram watched(path, probing);
    EXPECT_FALSE(isLockedForOthers(path));
    EXPECT_TRUE(watched.upgradeDB());
    EXPECT_FALSE(isLockedForOthers(path));
    EXPECT_GE(locked, 5 + 2 + 1); // read five tables, wrote and compared one piece, then deleted
}

// --- failures ---------------------------------------------------------------------------------

TEST_F(DatabaseUpgradeTest, LeavesAFileThatIsNoDatabaseAlone) {
    for (const std::string& text : {std::string(5000, 'x'), std::string("text")}) {
        write(path, text);
        EXPECT_FALSE(program.upgradeDB());
        expectUnchanged(text);
        expectLogged("was not upgraded and is unchanged: 26 file is not a database");
        EXPECT_EQ(filesInFolder(), Names{"catalogue.sqlite"});
    }
}

TEST_F(DatabaseUpgradeTest, LeavesADamagedFileAlone) {
    change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 5000) "
           "insert into Comuni select 'town ' || i, '1', '2' from n");
    std::string damaged = bytes();
    std::fill(damaged.end() - 3 * 4096, damaged.end(), '\x55');
    write(path, damaged);
    EXPECT_FALSE(program.upgradeDB());
    expectUnchanged(damaged);
    expectLogged("malformed");
}

TEST_F(DatabaseUpgradeTest, NeverLosesAFileHoweverItIsDamaged) {
    const std::string whole = bytes();
    std::mt19937 random(20160824);
    for (int i = 0; i < 60; ++i) {
        std::string damaged = whole;
        for (int flips = 0; flips < 3; ++flips) {
            const std::size_t place = random() % damaged.size();
            if (place != 18 && place != 19) // whether there is a write-ahead log
                damaged[place] = static_cast<char>(random() % 256);
        }
        for (const std::string& name : filesInFolder())
            fs::remove(folder.file(name));
        write(path, damaged);
        UpgradingProgram other(path, clock);
        const bool upgraded = other.upgradeDB();
        ASSERT_TRUE(readWholeFile(upgraded ? backup : path) == damaged) << i;
    }
}

TEST_F(DatabaseUpgradeTest, FailsWhenNothingIsOpen) {
    const std::string before = bytes();
    EXPECT_FALSE(program.upgrade.upgradeDB());
    expectUnchanged(before);
    fs::remove(path);
    EXPECT_FALSE(program.upgradeDB());
    EXPECT_TRUE(filesInFolder().empty());
}

TEST_F(DatabaseUpgradeTest, FailsInsideATransactionThatIsOpenAlready) {
    const std::string before = bytes();
    ASSERT_EQ(program.database.slsOpen(path, ""), 0);
    ASSERT_EQ(program.database.slsExe("BEGIN"), 0);
    ASSERT_EQ(program.database.slsExe("delete from Events"), 0);
    EXPECT_FALSE(program.upgrade.upgradeDB());
    expectUnchanged(before);
}

TEST_F(DatabaseUpgradeTest, LeavesAFileAloneThatAppearsInItsPlace) {
    const std::string before = bytes();
    ActingClock acting;
    acting.act = [&] {
        if (!PathExists(path))
            write(path, "somebody else's");
    };
    UpgradingProgram crossed(path, acting);
    crossed.harness.prompts.expectBox("Database already exist.", "Error...", BoxIcon::Information,
                                      BoxButtons::Ok, BoxAnswer::Ok);
    EXPECT_FALSE(crossed.upgradeDB());
    EXPECT_TRUE(readWholeFile(backup) == before);
    EXPECT_EQ(bytes(), "somebody else's");
    EXPECT_NE(crossed.log.messages.back().find("The old one is complete in " + backup),
              std::string::npos);
}

TEST_F(DatabaseUpgradeTest, PutsTheOldFileBackWhenTheNewOneCannotBeMade) {
    const std::string before = bytes();
    CatalogueUpgrade upgrade(program.database, program.settings, program.session, clock, log,
                             program.harness.errors, [&](std::string_view, const std::string&) {
                                 write(path, "half");
                                 return false;
                             });
    ASSERT_EQ(program.database.slsOpen(path, ""), 0);
    EXPECT_FALSE(upgrade.upgradeDB());
    expectUnchanged(before);
    EXPECT_TRUE(readWholeFile(backup) == before);
    EXPECT_EQ(log.messages,
              Names{"Database catalogue.sqlite was not upgraded: the new file could not be made"
                    "\r\nThe old one is back in its place, and complete in " +
                    backup});
}

TEST_F(DatabaseUpgradeTest, PutsTheOldFileBackWhenTheNewOneIsLocked) {
    const std::string before = bytes();
    std::unique_ptr<ForeignConnection> other;
    program.onCreated = [&] {
        other = std::make_unique<ForeignConnection>(path);
        other->run("begin immediate");
    };
    EXPECT_FALSE(program.upgradeDB());
    expectUnchanged(before);
    EXPECT_TRUE(readWholeFile(backup) == before);
    expectLogged("5 database is locked");
}

TEST_F(DatabaseUpgradeTest, NeverLosesAFileOnAFullDisk) {
    change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 300) "
           "insert into Comuni select 'town ' || i, '1', '2' from n;"
           "drop table Search; vacuum"); // the new file will be larger than the old one
    const std::string before = bytes();
    const std::string contents = contentsOf(path);
    int upgraded = 0;
    int putBack = 0;
    for (std::size_t limit = 0; limit < 2 * before.size() + 40000; limit += 4000) {
        for (const std::string& name : filesInFolder())
            fs::remove(folder.file(name));
        write(path, before);
        UpgradingProgram other(path, clock);
        bool done = false;
        {
            const testing::FileSizeLimit full(limit);
            done = other.upgradeDB();
        }
        if (done) {
            ++upgraded;
            ASSERT_EQ(contentsOf(path), contents) << limit;
            ASSERT_TRUE(readWholeFile(backup) == before) << limit;
        } else {
            putBack += FileExists(backup) ? 1 : 0;
            ASSERT_TRUE(bytes() == before) << limit;
            ASSERT_FALSE(other.log.messages.empty());
        }
        for (const std::string& name : filesInFolder())
            ASSERT_TRUE(name == "catalogue.sqlite" || name == "catalogue.sqlite_backup") << name;
    }
    EXPECT_GT(upgraded, 0);
    EXPECT_GT(putBack, 0);
}

} // namespace
} // namespace tremor
