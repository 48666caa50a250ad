#include "alerts/new_events_fixture.h"
#include "ingest/polling_scheduler.h"
#include "ingest/recording_tick_steps.h"

#include <algorithm>
#include <set>

// The check under the program's own polling timer: which source tells whom of what.
namespace tremor {
namespace {

using testing::Calls;

// The sources put events into the catalogue; the check is the real one.
class CheckingSteps : public testing::RecordingTickSteps {
  public:
    explicit CheckingSteps(NewEvents& checked) : checked_(checked) {}

    bool thereIsNewEv() override {
        RecordingTickSteps::thereIsNewEv();
        return checked_.thereIsNewEv();
    }
    void positioningWbrLast() override {
        RecordingTickSteps::positioningWbrLast();
        checked_.positioningWbrLast();
    }

    // The steps from the first source on.
    Calls sinceSource() const {
        const auto source = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
            return call.starts_with("download") || call.starts_with("ListFolder");
        });
        return {source, calls.end()};
    }

  private:
    NewEvents& checked_;
};

class NewEventsDispatch : public testing::NewEventsTest {
  protected:
    NewEventsDispatch() {
        session.DatabaseOpen = true;
        settings.IsideOrIngv = 1;
        settings.EmscOrUsgs = 0;
        settings.PrimaryPollEvery = settings.AlternatePollEvery = settings.LocalPollEvery = 1;
        addWorkspace("Alps");
        world.workspace = "Alps";
        steps.onStep = [this](const std::string& step) {
            if (step == "downloadCsvFromIngv")
                bring(fromPrimary);
            if (step == "downloadCsvFromEmsc")
                bring(fromAlternate);
            if (step.starts_with("ListFolder"))
                bring(fromLocal);
            if (failingSteps.contains(step))
                throw RuntimeError(ErrorNumber::UserDefined, step + " is broken");
        };
    }

    void bring(Calls& times) {
        for (const std::string& utc : times)
            addEvent(utc, "3.3");
        times.clear();
    }
    // A minute's ticks; each source in use is polled once.
    void poll() {
        steps.calls.clear();
        world.calls.clear();
        for (int second = 0; second <= 60; ++second)
            scheduler.upRemote_Timer();
    }

    Calls fromPrimary;
    Calls fromAlternate;
    Calls fromLocal;
    std::set<std::string> failingSteps;
    testing::FakeClock clock;
    CheckingSteps steps{newEvents};
    PollingScheduler scheduler{session, settings, clock, world, harness.errors, steps};
};

TEST_F(NewEventsDispatch, SendsOneMessageOfEachKindForAllNewEventsOfThePrimarySource) {
    settings.UsePrimaryDataSource = 1;
    for (int minute = 10; minute < 20; ++minute)
        fromPrimary.push_back(fmt::format("2014-03-07 10:{}:00.000", minute));
    poll();
    EXPECT_EQ(steps.sinceSource(), (Calls{"downloadCsvFromIngv", "exportLast24HoursCSV",
                                          "thereIsNewEv", "positioningWbrLast", "generateMsgEmail",
                                          "generateMsgPagerlink", "generateMsgTelegram"}));
    EXPECT_EQ(world.of("sound"), Calls{"sound three.wav"});
    EXPECT_EQ(world.of("log")[0], "log 10 New Events in Workspace Alps");
    EXPECT_EQ(settings.LastEvent, "2014-03-07 10:19:00.000");
    poll();
    EXPECT_EQ(steps.sinceSource(),
              (Calls{"downloadCsvFromIngv", "exportLast24HoursCSV", "thereIsNewEv"}));
}

TEST_F(NewEventsDispatch, GoesOnToTheNextChannelWhenOneFails) {
    settings.UsePrimaryDataSource = 1;
    fromPrimary = {"2014-03-07 10:00:00.000"};
    failingSteps = {"generateMsgEmail", "generateMsgPagerlink"};
    harness.prompts.expectRuntimeError("generateMsgEmail is broken", ErrorAnswer::Ignore);
    harness.prompts.expectRuntimeError("generateMsgPagerlink is broken", ErrorAnswer::Ignore);
    poll();
    EXPECT_EQ(steps.count("generateMsgTelegram"), 1);
    EXPECT_EQ(settings.LastEvent, "2014-03-07 10:00:00.000");
    poll();
    EXPECT_EQ(steps.count("generateMsgEmail"), 0);
}

TEST_F(NewEventsDispatch, RingsAndMovesTheMapButSendsNothingForTheAlternateSource) {
    settings.UseAlternateDataSource = 1;
    fromAlternate = {"2014-03-07 10:00:00.000"};
    poll();
    EXPECT_EQ(steps.sinceSource(), (Calls{"downloadCsvFromEmsc", "exportLast24HoursCSV",
                                          "thereIsNewEv", "positioningWbrLast"}));
    EXPECT_EQ(world.of("sound").size(), 1U);
    EXPECT_EQ(world.of("map").size(), 1U);
}

TEST_F(NewEventsDispatch, RingsAndMovesTheMapButSendsNothingForTheLocalSource) {
    settings.UseLocalSource = 1;
    fromLocal = {"2014-03-07 10:00:00.000"};
    // The local counter runs behind its poll, so that it is due one tick later than the others.
    poll();
    scheduler.upRemote_Timer();
    EXPECT_EQ(steps.sinceSource(),
              (Calls{"ListFolder ", "exportLast24HoursCSV", "thereIsNewEv", "positioningWbrLast"}));
    EXPECT_EQ(world.of("sound").size(), 1U);
    EXPECT_EQ(world.of("map").size(), 1U);
}

TEST_F(NewEventsDispatch, HoldsAnEventOfTheAlternateSourceForSeenAtTheNextPrimaryPoll) {
    settings.UsePrimaryDataSource = settings.UseAlternateDataSource = 1;
    fromAlternate = {"2014-03-07 10:00:00.000"};
    poll();
    EXPECT_EQ(steps.count("thereIsNewEv"), 2);
    fromPrimary = {"2014-03-07 10:00:00.000", "2014-03-07 09:59:59.000"};
    poll();
    EXPECT_EQ(steps.count("generateMsgEmail"), 0);
    EXPECT_TRUE(world.of("sound").empty());
}

TEST_F(NewEventsDispatch, ChecksTwiceInATickOfTwoSources) {
    settings.UsePrimaryDataSource = settings.UseAlternateDataSource = 1;
    fromPrimary = {"2014-03-07 10:00:00.000"};
    fromAlternate = {"2014-03-07 11:00:00.000"};
    poll();
    EXPECT_EQ(steps.count("thereIsNewEv"), 2);
    EXPECT_EQ(steps.count("generateMsgTelegram"), 1);
    EXPECT_EQ(world.of("sound").size(), 2U);
    EXPECT_EQ(settings.LastEvent, "2014-03-07 11:00:00.000");
}

TEST_F(NewEventsDispatch, StandsStillInSearchModeAndFindsAllNewAfterwards) {
    settings.UsePrimaryDataSource = 1;
    settings.LastEvent = "2014-03-07 09:00:00.000";
    session.SearchModeOn = 1;
    fromPrimary = {"2014-03-07 10:00:00.000", "2014-03-07 10:30:00.000"};
    poll();
    EXPECT_EQ(steps.sinceSource(), (Calls{"downloadCsvFromIngv", "exportLast24HoursCSV"}));
    EXPECT_TRUE(world.calls.empty());
    EXPECT_EQ(settings.LastEvent, "2014-03-07 09:00:00.000");
    session.SearchModeOn = 0;
    fromPrimary = {"2014-03-07 11:00:00.000"};
    poll();
    EXPECT_EQ(world.of("log")[0], "log 3 New Events in Workspace Alps");
    EXPECT_EQ(steps.count("generateMsgEmail"), 1);
}

} // namespace
} // namespace tremor
