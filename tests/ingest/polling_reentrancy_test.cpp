// What ticks do when they find another one running, an early exit behind them, or a flag set; and
// the poll of the Telegram bot, which runs beside the sources.
#include "ingest/scheduler_fixture.h"

namespace tremor {
namespace {

using testing::Calls;

class PollingReentrancy : public testing::SchedulerFixture {};
class TelegramPoll : public testing::SchedulerFixture {};

TEST_F(PollingReentrancy, RepeatsTheNetworkLineEverySecondTick) {
    usePrimary();
    steps.internetUp = false;
    tick(60);
    const auto lastGoodTick = scheduler.LastTimerTick();
    tick();
    EXPECT_EQ(log.messages, Calls{"Internet Connection is down, please check your internet "
                                  "configuration."});
    EXPECT_EQ(scheduler.LastTimerTick(), lastGoodTick);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 61);
    tick(); // lifts the guard
    EXPECT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 61);
    EXPECT_EQ(scheduler.LastTimerTick(), clock.now());
    tick();
    EXPECT_EQ(log.messages.size(), 2U);
    tick(100);
    EXPECT_EQ(log.messages.size(), 52U);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 0);
}

TEST_F(PollingReentrancy, PollsAsSoonAsTheNetworkIsBack) {
    usePrimary();
    steps.internetUp = false;
    tick(62);
    steps.internetUp = true;
    tick();
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
}

TEST_F(PollingReentrancy, LeavesTheTickWhenTheProgramClosedDuringAFetch) {
    usePrimary();
    useAlternate();
    steps.onStep = [&](const std::string& name) {
        if (name == "downloadCsvFromIngv")
            session.WaitCounter = Session::waitCounterClosing;
    };
    tick(60);
    const auto before = scheduler.LastTimerTick();
    tick();
    EXPECT_EQ(steps.calls.back(), "downloadCsvFromIngv");
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 61);
    EXPECT_EQ(scheduler.LastTimerTick(), before);
}

TEST_F(PollingReentrancy, TakesAWaitCounterOf9999AsNoSignOfClosing) {
    usePrimary();
    steps.onStep = [&](const std::string& name) {
        if (name == "downloadCsvFromIngv")
            session.WaitCounter = 9999;
    };
    tick(61);
    EXPECT_EQ(steps.calls.back(), "thereIsNewEv");
}

TEST_F(PollingReentrancy, LeavesTheTickWhenTheProgramClosedDuringAnAlternateFetch) {
    useAlternate();
    useLocal();
    scheduler.mnuCollect_Click();
    steps.onStep = [&](const std::string& name) {
        if (name == "downloadCsvFromUSGS")
            session.WaitCounter = Session::waitCounterClosing;
    };
    tick();
    EXPECT_EQ(steps.calls.back(), "downloadCsvFromUSGS");
}

TEST_F(PollingReentrancy, StandsStillWhileAWindowSuspendsPolling) {
    usePrimary();
    useAlternate();
    useLocal();
    tick(10);
    session.PollingSuspended = 1;
    tick(100);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 10);
    EXPECT_EQ(scheduler.counters().AlternateElapsed, 10);
    EXPECT_EQ(scheduler.counters().LocalElapsed, 10);
    EXPECT_EQ(steps.countdowns.size(), 10U);
    session.PollingSuspended = 0;
    tick(51);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
}

TEST_F(PollingReentrancy, StandsStillDuringAnImport) {
    usePrimary();
    session.ImportInProgress = true;
    tick(100);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_EQ(scheduler.LastTimerTick(), clock.now());
}

TEST_F(PollingReentrancy, GoesOnCountingWhileAFetchRuns) {
    usePrimary();
    session.PrimaryBusy = true;
    tick(100);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 100);
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_TRUE(steps.countdowns.empty());
}

TEST_F(PollingReentrancy, LiftsTheGuardInTheSecondTickAndEntersTheBodyInTheThird) {
    usePrimary();
    std::vector<int> counted;
    steps.onStep = [&](const std::string& name) {
        if (name != "refreshLogList")
            return;
        steps.onStep = nullptr;
        tick();
        counted.push_back(scheduler.counters().PrimaryElapsed);
        tick();
        counted.push_back(scheduler.counters().PrimaryElapsed);
    };
    tick(61);
    // The second tick counts nothing; the third polls, so that the outer one is not due any more.
    EXPECT_EQ(counted, (std::vector<int>{61, 0}));
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
}

TEST_F(PollingReentrancy, StopsNestedTicksAtTheBusyFlagOfAFetch) {
    usePrimary();
    steps.onStep = [&](const std::string& name) {
        if (name != "downloadCsvFromIngv")
            return;
        session.PrimaryBusy = true;
        tick(10);
        session.PrimaryBusy = false;
    };
    tick(61);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
    // The first nested tick finds the guard set and lifts it; the other nine clear it themselves.
    EXPECT_EQ(steps.calls.size(), 7U);
    EXPECT_EQ(steps.countdowns.size(), 61U);
}

TEST_F(PollingReentrancy, TurnsDownTicksBeyondTheDeepestNesting) {
    usePrimary();
    int depth = 0;
    int deepest = 0;
    steps.onStep = [&](const std::string& name) {
        if (name != "mapsInJPGWorkspace")
            return;
        deepest = std::max(deepest, ++depth);
        tick(2); // the first lifts the guard, the second nests
        --depth;
    };
    tick(61);
    EXPECT_EQ(deepest, tremor::PollingScheduler::maximumNesting);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
    steps.onStep = nullptr;
    tick(61); // nothing is left behind
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 2);
}

TEST_F(PollingReentrancy, HoldsTicksWhileAnErrorBoxIsOpenAndWhenTheProgramCloses) {
    usePrimary();
    session.TicksHeld = true;
    tick(5);
    session.TicksHeld = false;
    session.Closing = true;
    tick(5);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
    EXPECT_EQ(scheduler.LastTimerTick(), std::nullopt);
}

TEST_F(TelegramPoll, RunsEverySixtyOneSecondsWhenItIsOn) {
    settings.enableTelegram = 1;
    tick(60);
    EXPECT_TRUE(steps.calls.empty());
    tick();
    EXPECT_EQ(steps.calls, (Calls{"telegramTokenValid", "checkIdTelegram"}));
    EXPECT_TRUE(log.messages.empty());
    tick(61);
    EXPECT_EQ(steps.count("checkIdTelegram"), 2);
}

TEST_F(TelegramPoll, TouchesNothingWhenItIsOff) {
    tick(200);
    scheduler.pollTelegramUsers();
    EXPECT_TRUE(steps.calls.empty());
}

TEST_F(TelegramPoll, GoesOnDuringImportsAndSuspension) {
    settings.enableTelegram = 1;
    session.ImportInProgress = true;
    tick(30);
    session.ImportInProgress = false;
    session.PollingSuspended = 1;
    tick(31);
    EXPECT_EQ(steps.count("checkIdTelegram"), 1);
}

TEST_F(TelegramPoll, LogsHowManyUsersCame) {
    settings.enableTelegram = 1;
    steps.chatsAdded = 1;
    scheduler.pollTelegramUsers();
    steps.chatsAdded = 3;
    scheduler.pollTelegramUsers();
    EXPECT_EQ(log.messages, (Calls{"Telegram : 1 user added on Telegram BOT",
                                   "Telegram : 3 users added on Telegram BOT"}));
}

TEST_F(TelegramPoll, LogsABadTokenAndAsksNoFurther) {
    settings.enableTelegram = 1;
    steps.tokenValid = false;
    scheduler.pollTelegramUsers();
    EXPECT_EQ(log.messages, Calls{"Telegram : There is an error on Token of BOT."});
    EXPECT_EQ(steps.count("checkIdTelegram"), 0);
}

TEST_F(TelegramPoll, StartsNoSecondPollWhileTheFirstOneWaits) {
    settings.enableTelegram = 1;
    steps.onStep = [&](const std::string& name) {
        if (name == "checkIdTelegram")
            tick(200);
    };
    tick(61);
    EXPECT_EQ(steps.count("checkIdTelegram"), 1);
}

TEST_F(TelegramPoll, CanRunAgainAfterAnError) {
    settings.enableTelegram = 1;
    steps.onStep = [](const std::string&) { throw RuntimeError(ErrorNumber::SubscriptOutOfRange); };
    harness.prompts.expectRuntimeError("Subscript out of range", ErrorAnswer::Ignore);
    scheduler.pollTelegramUsers();
    EXPECT_EQ(log.messages.size(), 1U); // an unchecked token counts as bad
    steps.onStep = nullptr;
    scheduler.pollTelegramUsers();
    EXPECT_EQ(steps.count("checkIdTelegram"), 1);
}

TEST_F(TelegramPoll, TakesTheGuardOfASourceAsAReasonToSkipATick) {
    usePrimary();
    settings.enableTelegram = 1;
    steps.internetUp = false;
    tick(61); // the poll of the source leaves this tick early: it does not count
    EXPECT_EQ(steps.count("checkIdTelegram"), 0);
    steps.internetUp = true;
    tick(2);
    EXPECT_EQ(steps.count("checkIdTelegram"), 1);
}

} // namespace
} // namespace tremor
