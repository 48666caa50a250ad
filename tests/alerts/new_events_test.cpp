#include "alerts/new_events_fixture.h"

namespace tremor {
namespace {

using testing::Calls;
using NewEventsTest = testing::NewEventsTest;

const std::string nine = "2014-03-07 09:00:00.000";
const std::string ten = "2014-03-07 10:00:00.000";
const std::string eleven = "2014-03-07 11:00:00.000";

TEST_F(NewEventsTest, CountsTheWholeTableWhenNoEventWasEverSeen) {
    addWorkspace("Alps");
    addEvent(nine);
    addEvent(ten);
    settings.LastEvent = "";
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log"), Calls{"log 2 New Events in Workspace Alps"});
    EXPECT_EQ(settings.LastEvent, ten);
}

TEST_F(NewEventsTest, TakesNoEventOfTheMarksOwnTimeForNew) {
    addWorkspace("Alps");
    addEvent(nine);
    ASSERT_TRUE(newEvents.thereIsNewEv());
    world.calls.clear();
    addEvent(nine, "6.1");
    EXPECT_FALSE(newEvents.thereIsNewEv());
    EXPECT_TRUE(world.of("log").empty());
    EXPECT_EQ(settings.LastEvent, nine);
}

TEST_F(NewEventsTest, ComparesTimesByTheirCharacters) {
    settings.LastEvent = "2014-03-07 10:00:00.000";
    addEvent("2014-03-07 10:00:00"); // the same time, but shorter
    EXPECT_FALSE(newEvents.thereIsNewEv());
    settings.LastEvent = "2014-03-07 10:00:00.000";
    addEvent("2014-03-07T01:00:00"); // nine hours before, but "T" stands behind " "
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(settings.LastEvent, "2014-03-07T01:00:00");
}

TEST_F(NewEventsTest, FindsNothingNewBehindATextThatSortsAboveEveryDate) {
    addEvent("UTC");
    ASSERT_TRUE(newEvents.thereIsNewEv());
    addEvent("2099-12-31 23:59:59.999");
    EXPECT_FALSE(newEvents.thereIsNewEv());
    EXPECT_EQ(settings.LastEvent, "UTC");
}

TEST_F(NewEventsTest, CountsTheEdgesOfAWorkspaceAsInside) {
    addWorkspace("Alps");
    addEvent(ten, "2.5", "46", "10.5");
    addEvent(ten, "2.5", "47", "10.5");
    addEvent(ten, "2.5", "46.5", "10");
    addEvent(ten, "2.5", "46.5", "11");
    addEvent(ten, "2.5", "45.9999", "10.5");
    addEvent(ten, "2.5", "47.0001", "10.5");
    addEvent(ten, "2.5", "46.5", "9.9999");
    addEvent(ten, "2.5", "46.5", "11.0001");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log"), Calls{"log 4 New Events in Workspace Alps"});
}

TEST_F(NewEventsTest, ReportsEventsWithoutAnyWorkspaceAndMakesNoSound) {
    world.workspace = "";
    addEvent(ten, "6.1");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_TRUE(world.of("log").empty());
    EXPECT_TRUE(world.of("sound").empty());
}

TEST_F(NewEventsTest, ReportsEventsOutsideEveryWorkspace) {
    addWorkspace("Alps");
    addEvent(ten, "6.1", "-30", "-70");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_TRUE(world.of("log").empty());
    EXPECT_EQ(settings.LastEvent, ten);
}

TEST_F(NewEventsTest, MakesNoSoundForAWorkspaceThatIsNotOnDisplay) {
    addWorkspace("Alps");
    addWorkspace("Po Plain", 1);
    world.workspace = "Po Plain";
    addEvent(ten, "6.1");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log"), Calls{"log 1 New Events in Workspace Alps"});
    EXPECT_TRUE(world.of("sound").empty());
}

TEST_F(NewEventsTest, SoundsOnceForTheHighestNewMagnitudeOfTheWorkspaceOnDisplay) {
    addWorkspace("Alps");
    addWorkspace("Po Plain", 1);
    world.workspace = "Alps";
    addEvent(nine, "5.9"); // seen already
    settings.LastEvent = nine;
    addEvent(ten, "2.1");
    addEvent(eleven, "3.2");
    addEvent(ten, "1.4");
    addEvent(ten, "6.1", "45.5"); // in the other workspace
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("sound"), Calls{"sound three.wav"});
    EXPECT_EQ(session.maxNewMagnitude, 0);
}

TEST_F(NewEventsTest, SoundsALevelForAMagnitudeEqualToItsThreshold) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    addEvent(ten, "4.3"); // 4.3 as a double lies below 4.3F
    newEvents.thereIsNewEv();
    EXPECT_EQ(world.of("sound"), Calls{"sound four.wav"});
}

TEST_F(NewEventsTest, ReadsMagnitudesAlikeUnderACommaLocale) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    addEvent(ten, "3.9");
    NewEvents(settings, session, database, NumberLocale::comma(), towns, world, world, world,
              harness.errors)
        .thereIsNewEv();
    EXPECT_EQ(world.of("sound"), Calls{"sound three.wav"});
}

TEST_F(NewEventsTest, SoundsForMagnitudeZeroWhenNoNewEventIsStronger) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    addEvent(ten, "-0.4");
    newEvents.thereIsNewEv();
    EXPECT_TRUE(world.of("sound").empty());
    settings.MagLevel1 = 0;
    addEvent(eleven, "-0.4");
    newEvents.thereIsNewEv();
    EXPECT_EQ(world.of("sound"), Calls{"sound one.wav"});
}

TEST_F(NewEventsTest, KeepsAHigherMagnitudeThatTheLocalImportHasLeft) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    addEvent(ten, "1.5");
    session.maxNewMagnitude = 3.5F;
    newEvents.thereIsNewEv();
    EXPECT_EQ(world.of("sound"), Calls{"sound three.wav"});
}

TEST_F(NewEventsTest, TellsOnceOfMagnitudesOutOfRangeAndCountsTheOthers) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    addEvent(ten, "1e300");
    addEvent(ten, "2.2");
    addEvent(ten, "-1e300");
    harness.prompts.expectRuntimeError("Overflow", ErrorAnswer::Ignore);
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("sound"), Calls{"sound two.wav"});
    EXPECT_EQ(settings.LastEvent, ten);
}

TEST_F(NewEventsTest, TakesItsStepsInOrder) {
    addWorkspace("Alps");
    addWorkspace("Po Plain", 1);
    addWorkspace("Tyrol");
    world.workspace = "Tyrol";
    session.AllWorkspacesOpen = true;
    addEvent(ten, "3.3");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.calls,
              (Calls{"log 1 New Events in Workspace Alps", "startWRKspace",
                     "log 1 New Events in Workspace Tyrol", "startWRKspace", "sound three.wav",
                     "query2Controls", "towns", "label M 3.3 - 2014-03-07 10:00:00.000 "}));
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(NewEventsTest, DrawsTheAllWorkspacesWindowOnlyWhileItIsOpen) {
    addWorkspace("Alps");
    addEvent(ten);
    newEvents.thereIsNewEv();
    EXPECT_TRUE(world.of("startWRKspace").empty());
}

TEST_F(NewEventsTest, BringsTheViewsUpToDateWhenNothingIsNew) {
    addEvent(ten);
    settings.LastEvent = ten;
    EXPECT_FALSE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.calls,
              (Calls{"query2Controls", "towns", "label M 2.5 - 2014-03-07 10:00:00.000 "}));
}

TEST_F(NewEventsTest, MeasuresAllCountsAgainstTheMarkOfTheBeginning) {
    addWorkspace("Alps");
    addWorkspace("Tyrol");
    addEvent(ten);
    session.AllWorkspacesOpen = true;
    world.onCall = [this](const std::string& call) {
        if (call == "startWRKspace")
            settings.LastEvent = "2099-12-31";
    };
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log").size(), 2U);
    EXPECT_EQ(settings.LastEvent, ten);
}

TEST_F(NewEventsTest, SeesAtASecondCheckOnlyWhatTheFirstOneLeft) {
    addWorkspace("Alps");
    addEvent(ten);
    EXPECT_TRUE(newEvents.thereIsNewEv());
    addEvent(eleven);
    addEvent(nine); // arrives late and is never new
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_FALSE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log"),
              (Calls{"log 1 New Events in Workspace Alps", "log 1 New Events in Workspace Alps"}));
}

TEST_F(NewEventsTest, MovesTheMarkAlthoughEveryStepFails) {
    addWorkspace("Alps");
    world.workspace = "Alps";
    session.AllWorkspacesOpen = true;
    addEvent(ten, "3.3");
    world.onCall = [](const std::string& call) {
        for (const std::string step :
             {"log", "startWRKspace", "sound", "query2Controls", "towns"}) {
            if (call.starts_with(step))
                throw RuntimeError(ErrorNumber::UserDefined, step + " is broken");
        }
    };
    for (const std::string step : {"log", "startWRKspace", "sound", "query2Controls", "towns"})
        harness.prompts.expectRuntimeError(step + " is broken", ErrorAnswer::Ignore);
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(settings.LastEvent, ten);
    EXPECT_EQ(world.of("label").size(), 1U);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_F(NewEventsTest, FindsNothingNewWhenTheCatalogueAnswersNoQuery) {
    addEvent(ten);
    run("drop table Workspace");
    EXPECT_TRUE(newEvents.thereIsNewEv());
    run("drop table Events");
    settings.LastEvent = "";
    EXPECT_FALSE(newEvents.thereIsNewEv());
    EXPECT_EQ(settings.LastEvent, "");
}

TEST_F(NewEventsTest, LetsNoNameAndNoTimeOutOfTheirStatements) {
    addWorkspace("O''Brien");
    addWorkspace("x'' or ''1''=''1");
    addWorkspace("Alps");
    addEvent(ten);
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_EQ(world.of("log"), Calls{"log 1 New Events in Workspace Alps"});

    settings.LastEvent = "' or '1'='1";
    EXPECT_FALSE(newEvents.thereIsNewEv());
    settings.LastEvent = "' or '1'='1";
    newEvents.positioningWbrLast();
    EXPECT_TRUE(world.of("map").empty());
    EXPECT_EQ(settings.LastEvent, ten);
}

TEST_F(NewEventsTest, ShowsTheNewestEventOnItsMapAndInTheLog) {
    addEvent(ten, "3.0", "46.5", "10.25");
    newEvents.thereIsNewEv();
    world.calls.clear();
    newEvents.positioningWbrLast();
    EXPECT_EQ(world.calls, (Calls{"map select * from Events where UTC = '2014-03-07 10:00:00.000'",
                                  "log New Earthquake reported from last update...",
                                  "log UTC: 2014-03-07 10:00:00.000 Magnitude: 3.0 Depth: 8.4",
                                  "log Earthquake located in Latitude: 46.5 Longitude: 10.25",
                                  "towns", "label M 3.0 - 2014-03-07 10:00:00.000 "}));
}

TEST_F(NewEventsTest, LogsTheLastRowOfSeveralEventsOfOneTime) {
    addEvent(ten, "3.0");
    addEvent(ten, "1.1", "44.5", "9.5");
    settings.LastEvent = ten;
    newEvents.positioningWbrLast();
    EXPECT_EQ(world.of("log")[1], "log UTC: 2014-03-07 10:00:00.000 Magnitude: 1.1 Depth: 8.4");
    EXPECT_EQ(world.of("log")[2], "log Earthquake located in Latitude: 44.5 Longitude: 9.5");
}

TEST_F(NewEventsTest, ReadsTheNewestEventAsTheCatalogueGivesIt) {
    addEvent(nine, "5.0");
    addEvent(ten, "3.0", "46.50", "10.25");
    addTown("Borgo");
    addTown("Last");
    EXPECT_EQ(newEvents.lastEventInDb(), ten);
    EXPECT_EQ(settings.LastEvent, ten);
    const LastEventValues& event = newEvents.lastEvent();
    EXPECT_EQ(event.LastUtc, ten);
    EXPECT_EQ(event.LastMagnitude, "3.0");
    EXPECT_EQ(event.LastLatitude, "46.5");
    EXPECT_EQ(event.LastLongitude, "10.25");
    EXPECT_EQ(event.LastDepth, "8.4");
    EXPECT_NE(newEvents.lastTownsReport().find("Borgo = Km 3.27\r\n"), std::string::npos)
        << newEvents.lastTownsReport();
}

TEST_F(NewEventsTest, KeepsTheMarkAndGivesNoTimeOfAnEmptyCatalogue) {
    settings.LastEvent = "2014/03/06";
    EXPECT_EQ(newEvents.lastEventInDb(), "");
    EXPECT_EQ(settings.LastEvent, "2014/03/06");
    EXPECT_EQ(world.calls, Calls{"label M  -  "});
    EXPECT_EQ(newEvents.lastTownsReport(), "");
}

TEST_F(NewEventsTest, ReportsNothingTwiceAfterARestart) {
    addEvent(ten);
    settings.LastEvent = "2014/03/07"; // as the settings keep it between two runs
    EXPECT_FALSE(newEvents.thereIsNewEv());
    settings.LastEvent = "2014/03/06";
    newEvents.lastEventInDb(); // a step of the start
    EXPECT_FALSE(newEvents.thereIsNewEv());
    addEvent(eleven);
    EXPECT_TRUE(newEvents.thereIsNewEv());
    EXPECT_FALSE(newEvents.thereIsNewEv());
}

// The file that a magnitude plays; the empty text for none.
std::string playedFor(float magnitude, const AppSettings& settings) {
    testing::NewEventsWorld world;
    PlayAlertSound(magnitude, settings, world);
    EXPECT_LE(world.calls.size(), 1U);
    return world.calls.empty() ? std::string() : world.calls[0].substr(6);
}

TEST(PlayAlertSound, TakesTheLastLevelReached) {
    AppSettings settings;
    settings.MagLevel1 = 1, settings.MagLevelSound1 = "one";
    settings.MagLevel2 = 2, settings.MagLevelSound2 = "two";
    settings.MagLevel3 = 3, settings.MagLevelSound3 = "three";
    settings.MagLevel4 = 4, settings.MagLevelSound4 = "four";
    EXPECT_EQ(playedFor(0.99F, settings), "");
    EXPECT_EQ(playedFor(1, settings), "one");
    EXPECT_EQ(playedFor(2.5F, settings), "two");
    EXPECT_EQ(playedFor(3, settings), "three");
    EXPECT_EQ(playedFor(9, settings), "four");
}

TEST(PlayAlertSound, TakesTheLastLevelReachedWhateverTheirOrder) {
    AppSettings settings;
    settings.MagLevel1 = 5, settings.MagLevelSound1 = "one";
    settings.MagLevel2 = 4, settings.MagLevelSound2 = "two";
    settings.MagLevel3 = 6, settings.MagLevelSound3 = "three";
    settings.MagLevel4 = 1, settings.MagLevelSound4 = "four";
    EXPECT_EQ(playedFor(5.5F, settings), "four");
}

TEST(PlayAlertSound, IsSilentWhenTheLastLevelReachedHasNoFile) {
    AppSettings settings;
    settings.MagLevel1 = 1, settings.MagLevelSound1 = "one";
    settings.MagLevel2 = 2, settings.MagLevelSound2 = "";
    settings.MagLevel3 = 9, settings.MagLevel4 = 9;
    EXPECT_EQ(playedFor(1.5F, settings), "one");
    EXPECT_EQ(playedFor(2, settings), "");
}

} // namespace
} // namespace tremor
