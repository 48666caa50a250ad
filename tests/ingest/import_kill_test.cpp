// A program that is killed in the middle of an import leaves the whole import or nothing.
#include "ingest/ingv_fixture.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace tremor {
namespace {

constexpr int events = 4000;

// Kills its own process at the given change of the progress label.
class KillingStatusPanel : public testing::RecordingStatusPanel {
  public:
    explicit KillingStatusPanel(int fatalChange) : remaining_(fatalChange) {}
    void setEventsText(std::string_view) override {
        if (--remaining_ == 0)
            ::kill(::getpid(), SIGKILL);
    }

  private:
    int remaining_;
};

// SQLite's handles must not cross a fork: the child opens the catalogue for itself.
class KilledImport : public testing::IngvFixture {
  protected:
    KilledImport() {
        database.slClose();
        testing::writeText(target(), testing::ingvDocument("ingv_2005_2007_4000_old_header.txt"));
    }

    // Runs the import in a child process and returns how that ended.
    template <class Interfere>
    int importInChild(int fatalChange, Interfere&& interfere) {
        const pid_t child = ::fork();
        if (child == 0) {
            KillingStatusPanel killing(fatalChange);
            Database own;
            bool ready = own.slsOpen(cataloguePath(), {}) == 0;
            // Little memory, so that changed pages go to the file before the commit.
            ready = ready && own.slsExe("pragma cache_size = 5") == 0;
            FeedContext childContext{session, settings,       hosts,
                                     own,     killing,        clock,
                                     log,     harness.errors, context.temporaryFolder};
            IngvSource(childContext, download).readCsvIngv();
            ::_exit(ready ? 0 : 1);
        }
        interfere(child);
        int ending = 0;
        ::waitpid(child, &ending, 0);
        return ending;
    }

    int storedAfterwards() {
        EXPECT_EQ(database.slsOpen(cataloguePath(), {}), 0);
        EXPECT_EQ(rows("pragma integrity_check"), std::vector<std::string>{"ok"});
        const int stored = eventCount();
        database.slsExe("delete from Events");
        database.slClose();
        return stored;
    }
};

TEST_F(KilledImport, LeavesNothingAtAnyPointBeforeTheCommit) {
    for (const int change : {1, 2, 40, 80, 81}) { // 81 is the last one, just before the commit
        const int ending = importInChild(change, [](pid_t) {});
        ASSERT_TRUE(WIFSIGNALED(ending)) << change;
        EXPECT_EQ(WTERMSIG(ending), SIGKILL);
        EXPECT_EQ(storedAfterwards(), 0) << change;
    }
}

TEST_F(KilledImport, LeavesAllWhenItIsNotKilled) {
    const int ending = importInChild(0, [](pid_t) {});
    ASSERT_TRUE(WIFEXITED(ending));
    EXPECT_EQ(WEXITSTATUS(ending), 0);
    EXPECT_EQ(storedAfterwards(), events);
}

TEST_F(KilledImport, LeavesAllOrNothingWheneverItIsKilled) {
    for (int milliseconds = 0; milliseconds < 100; milliseconds += 5) {
        importInChild(0, [&](pid_t child) {
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
            ::kill(child, SIGKILL);
        });
        const int stored = storedAfterwards();
        EXPECT_TRUE(stored == 0 || stored == events) << stored << " after " << milliseconds;
    }
}

} // namespace
} // namespace tremor
