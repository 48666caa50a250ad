// A program that is killed in the middle of an upgrade leaves the old catalogue whole, under its
// own name or under that of its backup.
#include "database/upgrade_support.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace tremor {
namespace {

using testing::UpgradingProgram;
using testing::valueOf;

void killThisProcess() {
    ::kill(::getpid(), SIGKILL);
}

// Kills its own process when windows are repainted for the given time, which happens around every
// step and in the middle of the long ones.
class KillingClock : public testing::FakeClock {
  public:
    explicit KillingClock(int fatalRepaint) : remaining_(fatalRepaint) {}
    void repaint() override {
        if (--remaining_ == 0)
            killThisProcess();
    }

  private:
    int remaining_;
};

class KilledUpgrade : public testing::UpgradeTest {
  protected:
    KilledUpgrade() {
        change("with recursive n(i) as (select 1 union all select i + 1 from n where i < 6000) "
               "insert into Events select datetime('2000-01-01', i || ' minutes') || '.000', "
               "35 + i % 1000 / 100.0, 13.1, 10, 2.1, 'INGV', NULL from n;"
               "insert into Comuni values (hex(zeroblob(1500000)), 'a', 'b')");
        original_ = bytes();
    }

    // Upgrades in a child process and returns how that ended.
    template <class Prepare, class Interfere>
    int upgradeInChild(int fatalRepaint, Prepare&& prepare, Interfere&& interfere) {
        const pid_t child = ::fork();
        if (child == 0) {
            KillingClock killing(fatalRepaint);
            UpgradingProgram program(path, killing);
            prepare(program);
            ::_exit(program.upgradeDB() ? 0 : 1);
        }
        interfere(child);
        int ending = 0;
        ::waitpid(child, &ending, 0);
        return ending;
    }

    // Where the old catalogue is: its own name or that of its backup. Empty when it is lost.
    std::string whereTheOldOneIs() {
        for (const std::string& name : {path, backup}) {
            if (!FileExists(name) || readWholeFile(name) != original_)
                continue;
            Database database;
            EXPECT_EQ(database.slsOpen(name, ""), 0);
            EXPECT_EQ(valueOf(database, "select count(*) from Events"), "6003");
            return name;
        }
        return {};
    }
    // A backup, when there is one, is whole.
    void expectNothingLost(const std::string& when) {
        EXPECT_NE(whereTheOldOneIs(), "") << when;
        if (FileExists(backup)) {
            EXPECT_TRUE(readWholeFile(backup) == original_) << when;
        }
    }
    void startAgain() {
        for (const std::string& name : filesInFolder())
            std::filesystem::remove(folder.file(name));
        write(path, original_);
    }
    bool wasKilled(int ending) const { return WIFSIGNALED(ending) && WTERMSIG(ending) == SIGKILL; }

    static void asUsual(UpgradingProgram&) {}
    static void watch(pid_t) {}

    std::string original_;
};

TEST_F(KilledUpgrade, LosesNothingAtAnyStep) {
    int inPlace = 0;
    int inBackup = 0;
    for (int repaint = 1; repaint < 1000; ++repaint) {
        startAgain();
        const int ending = upgradeInChild(repaint, asUsual, watch);
        if (!wasKilled(ending)) {
            EXPECT_TRUE(WIFEXITED(ending) && WEXITSTATUS(ending) == 0);
            break;
        }
        expectNothingLost("repaint " + std::to_string(repaint));
        (whereTheOldOneIs() == path ? inPlace : inBackup) += 1;
    }
    // Reading, copying and comparing on the one side, inserting on the other.
    EXPECT_GE(inPlace, 15);
    EXPECT_GE(inBackup, 6);
}

TEST_F(KilledUpgrade, LosesNothingBetweenTheOldFileAndTheNewOne) {
    const int before = upgradeInChild(
        0, [](UpgradingProgram& program) { program.onCreate = killThisProcess; }, watch);
    EXPECT_TRUE(wasKilled(before));
    EXPECT_EQ(whereTheOldOneIs(), backup);
    EXPECT_FALSE(PathExists(path));

    startAgain();
    const int after = upgradeInChild(
        0, [](UpgradingProgram& program) { program.onCreated = killThisProcess; }, watch);
    EXPECT_TRUE(wasKilled(after));
    EXPECT_EQ(whereTheOldOneIs(), backup);
}

TEST_F(KilledUpgrade, CanBeRepeatedAfterAKillInTheMiddleOfTheCopy) {
    UpgradingProgram again(path, clock);
    int repaint = 1;
    do {
        startAgain();
        ASSERT_TRUE(wasKilled(upgradeInChild(repaint++, asUsual, watch)));
    } while (!FileExists(backup + ".incomplete"));
    EXPECT_TRUE(again.upgradeDB());
    EXPECT_TRUE(readWholeFile(backup) == original_);
    EXPECT_FALSE(FileExists(backup + ".incomplete"));
    EXPECT_EQ(valueOf(again.database, "select count(*) from Events"), "6003");
}

TEST_F(KilledUpgrade, LosesNothingWheneverItIsKilled) {
    for (int milliseconds = 0; milliseconds < 150; milliseconds += 10) {
        startAgain();
        upgradeInChild(0, asUsual, [&](pid_t child) {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            ::kill(child, SIGKILL);
        });
        expectNothingLost(std::to_string(milliseconds) + " ms");
    }
}

} // namespace
} // namespace tremor
