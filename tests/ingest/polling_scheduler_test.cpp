#include "ingest/polling_scheduler.h"
#include "ingest/scheduler_fixture.h"
#include "support/error_of.h"

namespace tremor {
namespace {

using testing::afterSnapshots;
using testing::Calls;
using testing::errorOf;

class UpRemoteTimer : public testing::SchedulerFixture {};

TEST(IsDue, IsStrictlyAboveTheInterval) {
    EXPECT_FALSE(isDue(60, 1));
    EXPECT_TRUE(isDue(61, 1));
    EXPECT_FALSE(isDue(0, 0));
    EXPECT_TRUE(isDue(1, 0));
}

TEST(IsDue, RaisesOverflowWhenTheIntervalHasNo32BitNumberOfSeconds) {
    EXPECT_FALSE(isDue(1, 35791394)); // 2147483640 s
    EXPECT_EQ(errorOf([] { isDue(1, 35791395); }), ErrorNumber::Overflow);
    EXPECT_EQ(errorOf([] { isDue(1, -35791395); }), ErrorNumber::Overflow);
}

TEST(IsAnyIntervalOver, LooksAtSourcesThatAreNotInUseToo) {
    AppSettings settings;
    settings.PrimaryPollEvery = settings.AlternatePollEvery = settings.LocalPollEvery = 1;
    EXPECT_FALSE(isAnyIntervalOver({60, 60, 60}, settings));
    EXPECT_TRUE(isAnyIntervalOver({61, 0, 0}, settings));
    EXPECT_TRUE(isAnyIntervalOver({0, 61, 0}, settings));
    EXPECT_TRUE(isAnyIntervalOver({0, 0, 61}, settings));
}

TEST(IsAnyIntervalOver, RaisesOverflowEvenWhenAnEarlierIntervalIsOver) {
    AppSettings settings;
    settings.LocalPollEvery = 35791395;
    EXPECT_EQ(errorOf([&] { isAnyIntervalOver({9999, 0, 0}, settings); }), ErrorNumber::Overflow);
}

TEST(CountdownText, NamesTheSourceThatComesFirst) {
    AppSettings settings;
    settings.UsePrimaryDataSource = settings.UseAlternateDataSource = 1;
    settings.PrimaryPollEvery = 1;
    settings.AlternatePollEvery = 2;
    EXPECT_EQ(countdownText({10, 10, 0}, settings), "Next update from primary source in 50 sec.");
    EXPECT_EQ(countdownText({10, 90, 0}, settings), "Next update from alternate source in 30 sec.");
    EXPECT_EQ(countdownText({10, 70, 0}, settings), "Next update from both source in 50 sec.");
    EXPECT_EQ(countdownText({9999, 70, 0}, settings),
              "Next update from primary source in -9939 sec.");
}

TEST(CountdownText, WritesTheSourceWithACapitalWhenItIsTheOnlyOne) {
    AppSettings settings;
    settings.PrimaryPollEvery = settings.AlternatePollEvery = 1;
    EXPECT_EQ(countdownText({10, 10, 0}, settings), std::nullopt);
    settings.UsePrimaryDataSource = 1;
    EXPECT_EQ(countdownText({10, 20, 0}, settings), "Next update from Primary source in 50 sec.");
    settings.UsePrimaryDataSource = 0;
    settings.UseAlternateDataSource = 1;
    EXPECT_EQ(countdownText({10, 20, 0}, settings), "Next update from Alternate source in 40 sec.");
}

TEST(CountdownText, RaisesOverflowOnlyForASourceInUse) {
    AppSettings settings;
    settings.UsePrimaryDataSource = 1;
    settings.AlternatePollEvery = 35791395;
    EXPECT_EQ(countdownText({0, 0, 0}, settings), "Next update from Primary source in 60 sec.");
    settings.UseAlternateDataSource = 1;
    EXPECT_EQ(errorOf([&] { countdownText({0, 0, 0}, settings); }), ErrorNumber::Overflow);
}

TEST_F(UpRemoteTimer, DoesNothingWithoutACatalogueButEndsItsTick) {
    session.DatabaseOpen = false;
    usePrimary();
    session.maxNewMagnitude = 4.5F;
    session.LastNewMagnitude = 4.5F;
    EXPECT_EQ(scheduler.LastTimerTick(), std::nullopt);
    tick();
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_EQ(session.maxNewMagnitude, 0.0F);
    EXPECT_EQ(session.LastNewMagnitude, 0.0F);
    EXPECT_EQ(scheduler.LastTimerTick(), clock.now());
}

TEST_F(UpRemoteTimer, PollsAfterSixtyOneSecondsWithAnIntervalOfOneMinute) {
    usePrimary();
    tick(60);
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_EQ(steps.countdowns.back(), "Next update from Primary source in 0 sec.");
    tick();
    EXPECT_EQ(steps.calls,
              afterSnapshots({"downloadCsvFromIngv", "exportLast24HoursCSV", "thereIsNewEv"}));
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
}

TEST_F(UpRemoteTimer, SendsMailThenPagerlinkThenTelegramForNewEventsOfThePrimarySource) {
    usePrimary();
    steps.newEvents = true;
    tick(61);
    EXPECT_EQ(steps.calls, afterSnapshots({"downloadCsvFromIngv", "exportLast24HoursCSV",
                                           "thereIsNewEv", "positioningWbrLast", "generateMsgEmail",
                                           "generateMsgPagerlink", "generateMsgTelegram"}));
}

TEST_F(UpRemoteTimer, SendsNoMessageForNewEventsOfTheOtherSources) {
    useAlternate();
    useLocal();
    steps.newEvents = true;
    scheduler.mnuCollect_Click();
    tick();
    EXPECT_EQ(steps.calls,
              afterSnapshots({"downloadCsvFromUSGS", "exportLast24HoursCSV", "thereIsNewEv",
                              "positioningWbrLast", "ListFolder /events/", "exportLast24HoursCSV",
                              "thereIsNewEv", "positioningWbrLast"}));
}

TEST_F(UpRemoteTimer, RunsAllThreeSourcesInOneTickPrimaryFirst) {
    usePrimary();
    useAlternate();
    settings.EmscOrUsgs = 0;
    useLocal();
    scheduler.mnuCollect_Click();
    EXPECT_TRUE(steps.calls.empty()); // nothing runs inside the click
    tick();
    EXPECT_EQ(steps.calls,
              afterSnapshots({"downloadCsvFromIngv", "exportLast24HoursCSV", "thereIsNewEv",
                              "downloadCsvFromEmsc", "exportLast24HoursCSV", "thereIsNewEv",
                              "ListFolder /events/", "exportLast24HoursCSV", "thereIsNewEv"}));
    EXPECT_EQ(scheduler.counters().LocalElapsed, 1); // counted behind the poll
}

TEST_F(UpRemoteTimer, SaysBothAndStillRunsPrimaryFirstWhenTheCountersAreEqual) {
    usePrimary();
    useAlternate();
    tick(61);
    EXPECT_EQ(steps.countdowns.back(), "Next update from both source in -1 sec.");
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
    EXPECT_EQ(steps.count("downloadCsvFromUSGS"), 1);
}

TEST_F(UpRemoteTimer, WarnsWithoutCredentialsAndStillRunsTheChain) {
    usePrimary();
    settings.IsideOrIngv = 0;
    settings.PrimarySourceUsername = "operator";
    tick(61);
    EXPECT_EQ(log.messages,
              (Calls{"Warning! Define Credentials on Setup panel for synchronize Events",
                     "from a Remote Source."}));
    EXPECT_EQ(steps.calls, afterSnapshots({"exportLast24HoursCSV", "thereIsNewEv"}));
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
}

TEST_F(UpRemoteTimer, FetchesFromIsideWithCredentials) {
    usePrimary();
    settings.IsideOrIngv = 0;
    settings.PrimarySourceUsername = "operator";
    settings.PrimarySourcePassword = "secret";
    tick(61);
    EXPECT_EQ(steps.calls,
              afterSnapshots({"downloadCsvFromIside", "exportLast24HoursCSV", "thereIsNewEv"}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(UpRemoteTimer, SavesAllWorkspacesOnlyWhileTheirWindowIsOpen) {
    usePrimary();
    session.AllWorkspacesOpen = true;
    tick(61);
    EXPECT_EQ(steps.calls.at(4), "saveAllWorkspace");
}

TEST_F(UpRemoteTimer, StartsTheServicesInsteadOfSnapshotsWhileNoMapIsLoaded) {
    usePrimary();
    steps.pageLoaded = false;
    tick(61);
    EXPECT_EQ(steps.calls, (Calls{"IsInternetUp", "startServices", "downloadCsvFromIngv",
                                  "exportLast24HoursCSV", "thereIsNewEv"}));
}

TEST_F(UpRemoteTimer, ImportsAndExportsOnlyInSearchMode) {
    usePrimary();
    useAlternate();
    useLocal();
    session.SearchModeOn = 1;
    steps.newEvents = true;
    steps.internetUp = false;
    scheduler.mnuCollect_Click();
    tick();
    EXPECT_EQ(steps.calls,
              (Calls{"downloadCsvFromIngv", "exportLast24HoursCSV", "downloadCsvFromUSGS",
                     "exportLast24HoursCSV", "ListFolder /events/", "exportLast24HoursCSV"}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(UpRemoteTimer, KeepsTheCounterOfAnUnusedSourceDown) {
    tick(1000);
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_TRUE(steps.countdowns.empty());
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
    EXPECT_EQ(scheduler.counters().AlternateElapsed, 0);
    EXPECT_EQ(scheduler.counters().LocalElapsed, 0);
}

TEST_F(UpRemoteTimer, OnlyRefreshesTheMapPicturesOnCollectWithoutASource) {
    scheduler.mnuCollect_Click();
    tick();
    EXPECT_EQ(steps.calls, testing::snapshots);
    EXPECT_TRUE(log.messages.empty());
    EXPECT_TRUE(steps.countdowns.empty());
    tick(100);
    EXPECT_EQ(steps.calls, testing::snapshots);
}

TEST_F(UpRemoteTimer, TellsOnCollectWithoutASourceThatTheNetworkIsDownUntilItIsBack) {
    const std::string down =
        "Internet Connection is down, please check your internet configuration.";
    steps.internetUp = false;
    scheduler.mnuCollect_Click();
    tick(4);
    EXPECT_EQ(log.messages, (Calls{down, down}));
    steps.internetUp = true;
    steps.calls.clear();
    tick(100);
    EXPECT_EQ(steps.calls, testing::snapshots);
    EXPECT_EQ(log.messages.size(), 2u);
}

TEST_F(UpRemoteTimer, PreparesAtEveryTickWhenAnUnusedSourceHasAnIntervalOfZero) {
    settings.AlternatePollEvery = 0;
    tick(3);
    EXPECT_EQ(steps.count("IsInternetUp"), 3);
    EXPECT_EQ(steps.count("mapsInJPGWorkspace"), 3);
}

TEST_F(UpRemoteTimer, CountsTheLocalSourceOnlyWhileTheBodyRuns) {
    useLocal();
    tick(5);
    EXPECT_EQ(scheduler.counters().LocalElapsed, 5);
    session.AlternateBusy = true;
    tick(5);
    EXPECT_EQ(scheduler.counters().LocalElapsed, 5);
    EXPECT_EQ(scheduler.counters().AlternateElapsed, 5);
}

TEST_F(UpRemoteTimer, MakesIntervalsOfUpTo166MinutesDueOnCollect) {
    usePrimary();
    settings.PrimaryPollEvery = 166;
    scheduler.mnuCollect_Click();
    tick();
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
}

TEST_F(UpRemoteTimer, DoesNotMakeIntervalsOf167MinutesDueOnCollect) {
    usePrimary();
    settings.PrimaryPollEvery = 167;
    scheduler.mnuCollect_Click();
    tick();
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 0);
    tick(20);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 0);
    tick();
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
}

TEST_F(UpRemoteTimer, StillPollsAt546Minutes) {
    usePrimary();
    settings.PrimaryPollEvery = 546;
    tick(32760);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 0);
    tick();
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 1);
}

TEST_F(UpRemoteTimer, OverflowsItsCounterBeforeAnIntervalOf547MinutesIsOver) {
    usePrimary();
    settings.PrimaryPollEvery = 547;
    tick(32767);
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 32767);
    harness.prompts.expectRuntimeError("Number: 6", ErrorAnswer::Ignore);
    tick();
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 32767);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 0);
    EXPECT_EQ(steps.countdowns.back(), "Next update from Primary source in 53 sec.");
}

TEST_F(UpRemoteTimer, ReportsAnIntervalWithoutA32BitNumberOfSecondsAndDoesNotPoll) {
    usePrimary();
    settings.PrimaryPollEvery = 35791395;
    harness.prompts.expectRuntimeError("Overflow", ErrorAnswer::Ignore); // the countdown
    harness.prompts.expectRuntimeError("Overflow", ErrorAnswer::Ignore); // the preparation
    harness.prompts.expectRuntimeError("Overflow", ErrorAnswer::Ignore); // the source
    tick();
    EXPECT_TRUE(steps.calls.empty());
    EXPECT_TRUE(steps.countdowns.empty());
}

TEST_F(UpRemoteTimer, PollsAtTheRightTicksForHours) {
    usePrimary();
    useAlternate();
    useLocal();
    settings.AlternatePollEvery = 2;
    settings.LocalPollEvery = 3;
    tick(10000);
    EXPECT_EQ(steps.count("downloadCsvFromIngv"), 163); // every 61 s
    EXPECT_EQ(steps.count("downloadCsvFromUSGS"), 82);  // every 121 s
    EXPECT_EQ(steps.count("ListFolder /events/"), 55);  // at 182 s, then every 181 s
}

TEST_F(UpRemoteTimer, GoesOnBehindAStepWhoseErrorIsIgnored) {
    usePrimary();
    steps.onStep = [](const std::string& name) {
        if (name == "exportLast24HoursCSV")
            throw RuntimeError(ErrorNumber::PermissionDenied);
    };
    harness.prompts.expectRuntimeError("Permission denied", ErrorAnswer::Retry);
    harness.prompts.expectRuntimeError("Permission denied", ErrorAnswer::Ignore);
    tick(61);
    EXPECT_EQ(steps.calls, afterSnapshots({"downloadCsvFromIngv", "exportLast24HoursCSV",
                                           "exportLast24HoursCSV", "thereIsNewEv"}));
    EXPECT_EQ(scheduler.counters().PrimaryElapsed, 0);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(UpRemoteTimer, TracesTheEmptyUpdateFromRemote) {
    scheduler.updateFromRemote();
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
    EXPECT_TRUE(steps.calls.empty());
}

} // namespace
} // namespace tremor
