#include "core/activity_log.h"
#include "core/files.h"
#include "support/fakes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::FakeClock;
using testing::ProcessEnded;
using testing::TemporaryFolder;

const std::string separator = "--------------------------------";

class RecordingList : public LogList {
  public:
    void append(std::string_view line) override { lines.emplace_back(line); }
    void clear() override {
        lines.clear();
        ++clears;
    }
    void selectLast() override { selected = lines.empty() ? "" : lines.back(); }
    void refresh() override { ++refreshes; }

    std::vector<std::string> lines;
    std::string selected;
    int clears = 0;
    int refreshes = 0;
};

struct ActivityLogTest : ::testing::Test {
    // Adds messages until the list holds `count` lines, the last of them bare ones.
    void fill(std::size_t count) {
        while (log.lines().size() + 3 <= count)
            log.addLogToList("message");
        while (log.lines().size() < count)
            log.addBareLine("bare");
    }
    std::string logs() const { return folder.path() + "/logs"; }
    std::string savedFile() const { return logs() + "/log_2014-3-7_9-5-12.txt"; }
    static unsigned modeOf(const std::string& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 0777U;
    }

    TemporaryFolder folder;
    RecordingList list;
    FakeClock clock;
    ErrorHarness harness;
    ActivityLog log{list, clock, harness.errors, folder.path()};
};

TEST_F(ActivityLogTest, AMessageAddsSeparatorPlainTimeAndTextAndSelectsTheLast) {
    log.addLogToList("Tremorledger is running...");
    EXPECT_EQ(list.lines, (std::vector<std::string>{separator, "2014-3-7 9:5:12",
                                                    "Tremorledger is running..."}));
    EXPECT_EQ(log.lines(), list.lines);
    EXPECT_EQ(list.selected, "Tremorledger is running...");
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(ActivityLogTest, ALineBreakInsideAMessageStaysInOneEntry) {
    log.addLogToList("one\r\ntwo");
    ASSERT_EQ(list.lines.size(), 3U);
    EXPECT_EQ(list.lines[2], "one\r\ntwo");
}

TEST_F(ActivityLogTest, MidnightIsWrittenWithPlainZeros) {
    clock.setNow(std::chrono::local_days(std::chrono::year(2024) / 12 / 31));
    log.addLogToList("x");
    EXPECT_EQ(list.lines[1], "2024-12-31 0:0:0");
}

TEST_F(ActivityLogTest, At400LinesTheListIsNotSaved) {
    fill(400);
    log.addLogToList("next");
    EXPECT_EQ(list.lines.size(), 403U);
    EXPECT_EQ(list.clears, 0);
    EXPECT_FALSE(PathExists(logs()));
}

TEST_F(ActivityLogTest, At401LinesTheListIsSavedFirstAndThreeLinesRemain) {
    fill(401);
    log.addLogToList("next");
    EXPECT_EQ(list.lines, (std::vector<std::string>{separator, "2014-3-7 9:5:12", "next"}));
    EXPECT_EQ(log.lines(), list.lines);
    EXPECT_EQ(list.clears, 1);
    EXPECT_TRUE(FileExists(savedFile()));
}

TEST_F(ActivityLogTest, TheFileHoldsTheLinesButTheFirstAndOneMoreLineBreak) {
    for (int i = 0; i < 401; ++i)
        log.addBareLine("line " + std::to_string(i));
    std::string expected;
    for (int i = 1; i < 401; ++i)
        expected += "line " + std::to_string(i) + "\r\n";
    expected += "\r\n";

    log.addLogToList("next");

    EXPECT_EQ(readWholeFile(savedFile()), expected);
}

TEST_F(ActivityLogTest, FolderAndFileAreTheOwnersAlone) {
    fill(401);
    log.addLogToList("next");
    EXPECT_EQ(modeOf(logs()), 0700U);
    EXPECT_EQ(modeOf(savedFile()), 0600U);
}

TEST_F(ActivityLogTest, AFolderThatIsThereKeepsItsModeAndItsFiles) {
    std::filesystem::create_directory(logs());
    std::filesystem::permissions(logs(), std::filesystem::perms(0755));
    std::ofstream(logs() + "/idFound.log") << "1";
    fill(401);
    log.addLogToList("next");
    EXPECT_EQ(modeOf(logs()), 0755U);
    EXPECT_TRUE(FileExists(logs() + "/idFound.log"));
    EXPECT_TRUE(FileExists(savedFile()));
}

TEST_F(ActivityLogTest, AFileOfTheSameSecondIsReplaced) {
    std::filesystem::create_directory(logs());
    std::ofstream(savedFile()) << "older";
    fill(401);
    log.addLogToList("next");
    EXPECT_EQ(readWholeFile(savedFile()).find("older"), std::string::npos);
}

TEST_F(ActivityLogTest, EachSaveMakesANewFile) {
    fill(401);
    log.addLogToList("next");
    clock.advance(std::chrono::seconds(3));
    fill(401);
    log.addLogToList("next");
    EXPECT_TRUE(FileExists(savedFile()));
    EXPECT_TRUE(FileExists(logs() + "/log_2014-3-7_9-5-15.txt"));
}

TEST_F(ActivityLogTest, BareLinesCountButNeverSave) {
    for (int i = 0; i < 500; ++i)
        log.addBareLine("bare");
    EXPECT_EQ(list.lines.size(), 500U);
    EXPECT_FALSE(PathExists(logs()));
    log.addLogToList("next");
    EXPECT_EQ(list.lines.size(), 3U);
}

TEST_F(ActivityLogTest, HandsOnSelectionAndRepaint) {
    log.addBareLine("bare");
    log.selectLast();
    log.refresh();
    EXPECT_EQ(list.selected, "bare");
    EXPECT_EQ(list.refreshes, 1);
}

TEST_F(ActivityLogTest, AFailedSaveAsksOnceThenTheMessageIsAddedAndTheLossTold) {
    std::ofstream(logs()) << "a file stands where the folder should be";
    fill(401);
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Module: Form - panel\r\nRoutine: addLogToList\r\n",
                                       ErrorAnswer::Ignore);

    log.addLogToList("next");

    // The report came to this very log while the list was being saved, and stayed.
    ASSERT_EQ(list.lines.size(), 7U);
    EXPECT_EQ(list.lines[2], harness.prompts.lastErrorText);
    EXPECT_EQ(list.lines[3], separator);
    EXPECT_EQ(list.lines[5], "next");
    EXPECT_TRUE(list.lines[6].starts_with("401 lines of the log could not be saved: "));
    EXPECT_GT(list.lines[6].size(),
              std::string("401 lines of the log could not be saved: ").size());
    EXPECT_EQ(log.lines(), list.lines);
    log.addLogToList("later"); // no further box
    EXPECT_EQ(list.lines.size(), 10U);
}

TEST_F(ActivityLogTest, RetryAfterTheFolderWasMendedSavesAllLines) {
    std::ofstream(logs()) << "a file stands where the folder should be";
    fill(401);
    struct MendingPrompts : testing::ScriptedPrompts {
        std::string toRemove;
        ErrorAnswer showRuntimeError(std::string_view, std::string_view, int) override {
            std::filesystem::remove(toRemove);
            return ErrorAnswer::Retry;
        }
    } prompts;
    prompts.toRemove = logs();
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { throw ProcessEnded{}; }, 60, ticksHeld);
    ActivityLog other(list, clock, errors, folder.path());
    for (int i = 0; i < 401; ++i)
        other.addBareLine("line");

    other.addLogToList("next");

    EXPECT_EQ(other.lines().size(), 3U);
    EXPECT_EQ(readWholeFile(savedFile()).size(), 400 * 6 + 2U);
}

TEST_F(ActivityLogTest, AbortInAFailedSaveEndsTheProcess) {
    std::ofstream(logs()) << "a file stands where the folder should be";
    fill(401);
    harness.prompts.expectRuntimeError("Routine: addLogToList", ErrorAnswer::Abort);
    EXPECT_THROW(log.addLogToList("next"), ProcessEnded);
}

TEST_F(ActivityLogTest, AnErrorReportThatFindsTheListFullAndUnsavableAsksOnlyForItself) {
    std::ofstream(logs()) << "a file stands where the folder should be";
    fill(401);
    harness.errors.setLog(&log);
    harness.prompts.expectRuntimeError("Routine: readCsvIngv", ErrorAnswer::Ignore);

    harness.errors.ShowRuntimeError("Form - panel", "readCsvIngv",
                                    RuntimeError(ErrorNumber::TypeMismatch));

    ASSERT_EQ(list.lines.size(), 4U);
    EXPECT_NE(list.lines[2].find("Routine: readCsvIngv"), std::string::npos);
    EXPECT_TRUE(list.lines[3].starts_with("401 lines of the log could not be saved: "));
}

} // namespace
} // namespace tremor
