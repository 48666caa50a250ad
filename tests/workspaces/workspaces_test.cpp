#include "core/dates.h"
#include "workspace_fixture.h"
#include "workspaces/workspaces.h"

#include <algorithm>
#include <array>

namespace tremor {
namespace {

using testing::alps;
using testing::ForeignConnection;
using testing::latestHours;
using testing::RecordingPage;
using testing::RecordingWindow;
using testing::Texts;
using testing::valueOf;

using Rows = std::vector<std::vector<std::string>>;

const std::string selectEvents = "select * from Events where ";
const std::string newest = " order by UTC desc limit 1";
const std::string freeMap =
    "(Latitude >= 41.5) and (Latitude <= 43) AND (Longitude >= 12) and (Longitude <= 14) AND " +
    latestHours;

std::string latestHoursOf(const Clock& clock) {
    AppSettings settings;
    Session session;
    return BuildUtcRangeFilter(clock.now(), 24, settings, session);
}

class WorkspacesTest : public testing::WorkspaceCatalogue {
  protected:
    void expectQuestion(const std::string& text, const std::string& title, BoxAnswer answer) {
        prompts.expectBox(text, title, BoxIcon::None, BoxButtons::YesNo, answer);
    }
    void expectOverwriteQuestion(BoxAnswer answer) {
        expectQuestion("This name of Workspace is already in use.\r\nDo you want overwrite the "
                       "Workspace?",
                       "TREMORLEDGER", answer);
    }
    void expectRefusal(const std::string& typed) {
        prompts.expectInput("Please insert a name of this Workspace", typed);
        prompts.expectBox("Please insert a valid name of Workspace", "TREMORLEDGER",
                          BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }
    // The program stands on a stored workspace.
    void use(const std::string& name) {
        settings.LastWorkSpace = name;
        window.combo = name;
    }

    RecordingPage<MapElements> map{calls};
    RecordingWindow window{calls};
    Workspaces workspacesOf{
        {database, session, settings, clock, prompts, log, harness.errors}, map, window};
};

// The list

TEST_F(WorkspacesTest, ListsGlobalAndTheNamesOfTheTable) {
    storeAlps();
    store({"Etna", "37.7", "15", "9", "37", "14", "38", "16", "0", "10", "0", "9999"});
    workspacesOf.popolaComboWorkspace();
    EXPECT_EQ(window.list, (Texts{"Global", "Alps", "Etna"}));
}

TEST_F(WorkspacesTest, SelectsTheWorkspaceInUseAndShowsIt) {
    storeAlps();
    settings.LastWorkSpace = "Alps";
    workspacesOf.popolaComboWorkspace();
    EXPECT_EQ(window.combo, "Alps");
    EXPECT_EQ(settings.searchParQuery, alps + latestHours);
}

TEST_F(WorkspacesTest, ShowsNothingAnewWhileTheStartFillsTheViews) {
    storeAlps();
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = alps + latestHours;
    workspacesOf.popolaComboWorkspaceAtStart();
    EXPECT_EQ(window.combo, "Alps");
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_EQ(settings.searchParQuery, alps + latestHours);
    EXPECT_TRUE(calls.empty());
}

TEST_F(WorkspacesTest, FallsBackToGlobalWhenTheWorkspaceInUseIsGone) {
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = alps + latestHours;
    workspacesOf.popolaComboWorkspaceAtStart();
    EXPECT_EQ(window.combo, "Global");
    EXPECT_EQ(settings.LastWorkSpace, "Global");
    EXPECT_EQ(settings.searchParQuery, "") << "the start fills the table with it";

    settings.LastWorkSpace = "Alps";
    workspacesOf.popolaComboWorkspace();
    EXPECT_EQ(settings.LastWorkSpace, "Global");
    EXPECT_EQ(settings.searchParQuery, freeMap);
}

TEST_F(WorkspacesTest, KeepsListAndWorkspaceInUseWhenTheTableCannotBeRead) {
    use("Alps");
    window.list = {"Global", "Alps"};
    ASSERT_EQ(database.slsExe("drop table Workspace"), 0);
    workspacesOf.popolaComboWorkspace();
    workspacesOf.popolaComboWorkspaceAtStart();
    EXPECT_EQ(window.fillings, 0);
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(log.messages, (Texts{"The workspaces were not read: 1 no such table: Workspace",
                                   "The workspaces were not read: 1 no such table: Workspace"}));
}

TEST_F(WorkspacesTest, FollowsTheListOutsideOfSearchModeAndItsChangesAlways) {
    storeAlps();
    window.combo = "Alps";
    session.SearchModeOn = 1;
    workspacesOf.cmb_wrkSp_Click();
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(settings.LastWorkSpace, "Global");

    workspacesOf.cmb_wrkSp_Change();
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_FALSE(calls.empty());

    calls.clear();
    session.SearchModeOn = 0;
    workspacesOf.cmb_wrkSp_Click();
    EXPECT_FALSE(calls.empty());
}

// Showing

TEST_F(WorkspacesTest, LoadsAWorkspaceIntoMapTableAndChart) {
    storeAlps();
    window.combo = "Alps";
    workspacesOf.workspaceSelezionato();
    const std::string condition = alps + latestHours;
    EXPECT_EQ(settings.searchParQuery, condition);
    EXPECT_EQ(calls, (Texts{"Workspace.CLAT=46.5", "Workspace.CLNG=10.25", "Workspace.ZOOM=7",
                            "removeAll.onclick", "FillGridEvents [" + condition + "] [] []",
                            "eventsInMap " + selectEvents + condition, "pictureMagnitudeEvents",
                            "eventi.click", "Workspace.click",
                            "pin2gif " + selectEvents + condition + newest}));
}

TEST_F(WorkspacesTest, TakesTheMarkersOffBeforeItJumpsToAWorkspace) {
    storeAlps();
    window.combo = "Alps";
    workspacesOf.gotoWRK();
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_EQ(calls.at(0), "removeAll.onclick");
    EXPECT_EQ(calls.at(1), "Workspace.CLAT=46.5");
}

TEST_F(WorkspacesTest, ShowsTheLatestHoursForAWorkspaceWithoutARectangle) {
    store({"Free", "42", "13", "6", "", "", "", "", "0", "10", "0", "9999"});
    window.combo = "Free";
    settings.searchParQuery = alps + latestHours;
    workspacesOf.workspaceSelezionato();
    EXPECT_EQ(settings.searchParQuery, "") << "later refreshes show the latest hours too";
    EXPECT_EQ(calls, (Texts{"Workspace.CLAT=42.0", "Workspace.CLNG=13.0", "Workspace.ZOOM=6",
                            "removeAll.onclick", "FillGridEvents [] [" + latestHours + "] []",
                            "eventsInMap " + selectEvents + latestHours, "pictureMagnitudeEvents",
                            "eventi.click", "Workspace.click",
                            "pin2gif " + selectEvents + latestHours + newest}));
}

TEST_F(WorkspacesTest, ShowsTheVisibleRectangleOnTheFreeMap) {
    settings.LastWorkSpace = "Alps";
    settings.searchParQuery = "(Magnitude >= '9')";
    window.onBounds = [&] { EXPECT_EQ(settings.searchParQuery, ""); };
    workspacesOf.gotoWRK();
    EXPECT_EQ(settings.LastWorkSpace, "Global");
    EXPECT_EQ(settings.searchParQuery, freeMap);
    EXPECT_EQ(calls, (Texts{"removeAll.onclick", "boundsVisualizedMap",
                            "FillGridEvents [" + freeMap + "] [] []", "pictureMagnitudeEvents",
                            "eventsInMap " + selectEvents + freeMap, "eventi.click",
                            "pin2gif " + selectEvents + freeMap + newest}));
}

TEST_F(WorkspacesTest, PutsOnTheMapWhatTheTableShowsInsteadOfARefusedCondition) {
    store({"Broken", "42", "13", "6", "4x", "12", "43", "14", "0", "10", "0", "9999"});
    window.combo = "Broken";
    window.onFill = [&] { settings.searchParQuery = "(Depth > 0)"; };
    workspacesOf.workspaceSelezionato();
    EXPECT_TRUE(std::ranges::count(calls, "eventsInMap " + selectEvents + "(Depth > 0)") == 1);
    EXPECT_EQ(calls.back(), "pin2gif " + selectEvents + "(Depth > 0)" + newest);
}

TEST_F(WorkspacesTest, ShowsNothingForAnEntryThatIsNotInTheTable) {
    window.combo = "Gone";
    workspacesOf.workspaceSelezionato();
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(WorkspacesTest, WaitsForThePageOfTheMap) {
    storeAlps();
    window.combo = "Alps";
    map.isComplete = false;
    clock.onPump = [&] {
        EXPECT_TRUE(calls.empty());
        map.isComplete = clock.sleeps == 7;
    };
    workspacesOf.workspaceSelezionato();
    EXPECT_EQ(clock.sleeps, 7);
    EXPECT_EQ(calls.back(), "pin2gif " + selectEvents + alps + latestHours + newest);
}

TEST_F(WorkspacesTest, FillsTheTableWhenThePageDoesNotComeAtAll) {
    storeAlps();
    window.combo = "Alps";
    map.isComplete = false;
    workspacesOf.workspaceSelezionato();
    EXPECT_EQ(clock.steady(), std::chrono::minutes(1));
    EXPECT_EQ(calls.at(4), "FillGridEvents [" + alps + latestHoursOf(clock) + "] [] []");
}

TEST_F(WorkspacesTest, GivesUpWaitingWhenTheProgramCloses) {
    storeAlps();
    window.combo = "Alps";
    map.isComplete = false;
    clock.onPump = [&] { session.Closing = clock.sleeps == 3; };
    workspacesOf.workspaceSelezionato();
    EXPECT_EQ(clock.sleeps, 3);
    EXPECT_TRUE(calls.empty());
}

TEST_F(WorkspacesTest, ShowsTheWorkspaceThatWasChosenLast) {
    storeAlps();
    store({"Etna", "37.7", "15", "9", "37", "14", "38", "16", "0", "10", "0", "9999"});
    window.combo = "Alps";
    map.isComplete = false;
    clock.onPump = [&] {
        map.isComplete = true;
        if (clock.sleeps == 1) {
            window.combo = "Etna";
            workspacesOf.gotoWRK();
        }
    };
    workspacesOf.gotoWRK();
    EXPECT_EQ(settings.LastWorkSpace, "Etna");
    EXPECT_EQ(std::ranges::count(calls, "Workspace.click"), 1);
    EXPECT_EQ(std::ranges::count(calls, "Workspace.CLAT=37.7"), 1);

    calls.clear();
    window.combo = "Global";
    window.onBounds = [&] {
        window.combo = "Alps";
        window.onBounds = nullptr;
        workspacesOf.gotoWRK();
    };
    workspacesOf.gotoWRK();
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_EQ(settings.searchParQuery, alps + latestHours);
    EXPECT_EQ(std::ranges::count(calls, "eventi.click"), 1);
}

TEST_F(WorkspacesTest, AsksAboutAnImpossibleRangeOfHoursAndGoesOn) {
    storeAlps();
    window.combo = "Alps";
    settings.RangeHoursOfEventsInMap = 2000000000;
    prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
    workspacesOf.workspaceSelezionato();
    EXPECT_EQ(calls.back(), "pin2gif " + selectEvents + alps + newest);
}

// Saving

TEST_F(WorkspacesTest, SavesTheFreeMapWithTheFiltersOfEverything) {
    prompts.expectInput("Please insert a name of this Workspace", "Umbria");
    workspacesOf.cmd_SaveArea_Click();
    EXPECT_EQ(workspaces(), (Rows{{"Umbria", "42.7", "13.23", "7", "41.5", "12.25", "43.0", "14.0",
                                   "0.0", "10.0", "0.0", "9999.0"}}));
    EXPECT_EQ(window.list, (Texts{"Global", "Umbria"}));
    EXPECT_EQ(window.combo, "Global") << "the workspace in use stays in use";
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(WorkspacesTest, SavesWithTheFiltersOfTheWorkspaceInUse) {
    storeAlps();
    use("Alps");
    workspacesOf.saveNewWorkspaceOnDB("Umbria");
    EXPECT_EQ(workspaces().at(1), (Texts{"Umbria", "42.7", "13.23", "7", "41.5", "12.25", "43.0",
                                         "14.0", "2.5", "10.0", "0.0", "30.0"}));
    EXPECT_EQ(window.combo, "Alps");
}

TEST_F(WorkspacesTest, SavesWithTheFiltersOfEverythingWhenNoEntryIsSelected) {
    window.combo = "";
    workspacesOf.saveNewWorkspaceOnDB("Umbria");
    EXPECT_EQ(workspaces().at(0).at(11), "9999.0");
}

TEST_F(WorkspacesTest, OverwritesAWorkspaceWhenTheOperatorAgrees) {
    storeAlps();
    use("Alps");
    expectOverwriteQuestion(BoxAnswer::Yes);
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_EQ(workspaces(), (Rows{{"Alps", "42.7", "13.23", "7", "41.5", "12.25", "43.0", "14.0",
                                   "2.5", "10.0", "0.0", "30.0"}}));
    EXPECT_EQ(calls.at(1), "Workspace.CLAT=42.7") << "it is in use, and shown as it is now";
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(WorkspacesTest, KeepsAWorkspaceWhenTheOperatorDoesNotAgree) {
    storeAlps();
    const Rows before = workspaces();
    expectOverwriteQuestion(BoxAnswer::No);
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_EQ(workspaces(), before);
    EXPECT_EQ(window.list, (Texts{"Global", "Alps"}));
}

TEST_F(WorkspacesTest, SavesNothingWhenTheNameBoxIsCancelled) {
    prompts.expectInput("Please insert a name of this Workspace", std::nullopt);
    workspacesOf.cmd_SaveArea_Click();
    EXPECT_TRUE(workspaces().empty());
    EXPECT_EQ(window.fillings, 0);
}

TEST_F(WorkspacesTest, RefusesNamesWithACharacterOfTheList) {
    constexpr auto refused = std::to_array<std::string_view>(
        {",", ";", ":", ".", "@", "#", "°", "§",  "]", "+",  "*", "[", "^", "'", "=",
         ")", "(", "/", "&", "%", "$", "£", "\"", "!", "\\", "€", "<", ">", " "});
    for (const std::string_view character : refused) {
        expectRefusal("Al" + std::string(character) + "ps");
        workspacesOf.cmd_SaveArea_Click();
    }
    expectRefusal("");
    workspacesOf.cmd_SaveArea_Click();
    EXPECT_TRUE(workspaces().empty());
}

TEST_F(WorkspacesTest, AcceptsTheLettersThatShareABytesOfRefusedOnesAndALetterP) {
    for (const char* name : {"Zürich", "Forlì", "Appennino", "a-b_c~1"}) {
        prompts.expectInput("Please insert a name of this Workspace", name);
        workspacesOf.cmd_SaveArea_Click();
    }
    EXPECT_EQ(workspaces().size(), 4U);
}

TEST_F(WorkspacesTest, KeepsANameOfTenThousandCharacters) {
    const std::string name(10000, 'n');
    prompts.expectInput("Please insert a name of this Workspace", name);
    workspacesOf.cmd_SaveArea_Click();
    EXPECT_EQ(workspaces().at(0).at(0), name);
    EXPECT_EQ(window.list.at(1), name);

    window.combo = name;
    expectQuestion("Do you want remove the workspace " + name + "?", "Removing Workspace",
                   BoxAnswer::Yes);
    workspacesOf.deleteWRK();
    EXPECT_TRUE(workspaces().empty());
}

TEST_F(WorkspacesTest, StoresNothingWhenTheMapGivesNoAnswer) {
    storeAlps();
    const Rows before = workspaces();
    window.view = std::nullopt;
    prompts.expectRuntimeError("The map gives no answer; the workspace is not saved.",
                               ErrorAnswer::Ignore);
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_EQ(workspaces(), before);
}

TEST_F(WorkspacesTest, AsksTheMapAgainAtRetry) {
    window.view = std::nullopt;
    prompts.expectRuntimeError("The map gives no answer", ErrorAnswer::Retry);
    prompts.expectRuntimeError("The map gives no answer", ErrorAnswer::Ignore);
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_TRUE(workspaces().empty());
}

TEST_F(WorkspacesTest, SavesThePlaceOfAPageThatHasNoViewYet) {
    window.view = MapView{};
    workspacesOf.saveNewWorkspaceOnDB("Early");
    EXPECT_EQ(workspaces().at(0).at(4), "") << "no rectangle: it behaves like the free map";
}

TEST_F(WorkspacesTest, TellsTheLogWhenTheCatalogueRefusesARow) {
    ASSERT_EQ(database.slsExe("create trigger no_more before insert on Workspace begin select "
                              "raise(abort, 'no more'); end"),
              0);
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_TRUE(workspaces().empty());
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_TRUE(log.messages[0].starts_with("The workspace was not saved: ")) << log.messages[0];
    EXPECT_NE(log.messages[0].find("no more"), std::string::npos) << log.messages[0];
}

TEST_F(WorkspacesTest, StoresNoViewThatWouldBreakOutOfItsStatement) {
    window.view->zoom = "7', 0, 0, 0, 0, 0, 0, 0, 0); --";
    workspacesOf.saveNewWorkspaceOnDB("Alps");
    EXPECT_TRUE(workspaces().empty());
    EXPECT_EQ(log.messages, (Texts{"The workspace was not saved: an apostrophe in a text"}));
}

TEST_F(WorkspacesTest, StoresNoFilterThatWouldBreakOutOfItsStatement) {
    store({"Odd", "42", "13", "6", "41", "12", "43", "14", "0'", "10", "0", "9999"});
    use("Odd");
    workspacesOf.saveNewWorkspaceOnDB("New");
    EXPECT_EQ(workspaces().size(), 1U);
    EXPECT_EQ(log.messages, (Texts{"The workspace was not saved: an apostrophe in a text"}));
}

// Removing

TEST_F(WorkspacesTest, RemovesAWorkspaceWhenTheOperatorAgrees) {
    storeAlps();
    store({"Etna", "37.7", "15", "9", "37", "14", "38", "16", "0", "10", "0", "9999"});
    use("Alps");
    expectQuestion("Do you want remove the workspace Alps?", "Removing Workspace", BoxAnswer::Yes);
    workspacesOf.deleteWRK();
    EXPECT_EQ(valueOf(database, "select group_concat(Name) from Workspace"), "Etna");
    EXPECT_EQ(window.list, (Texts{"Global", "Etna"}));
    EXPECT_EQ(settings.LastWorkSpace, "Global") << "what was in use is gone";
    EXPECT_EQ(settings.searchParQuery, freeMap);
}

TEST_F(WorkspacesTest, KeepsAWorkspaceThatTheOperatorDoesNotWantToLose) {
    storeAlps();
    use("Alps");
    expectQuestion("Do you want remove the workspace Alps?", "Removing Workspace", BoxAnswer::No);
    workspacesOf.deleteWRK();
    EXPECT_EQ(workspaces().size(), 1U);
    EXPECT_EQ(window.fillings, 0);
}

TEST_F(WorkspacesTest, CannotRemoveGlobalFromTheTable) {
    storeAlps();
    expectQuestion("Do you want remove the workspace Global?", "Removing Workspace",
                   BoxAnswer::Yes);
    workspacesOf.deleteWRK();
    EXPECT_EQ(workspaces().size(), 1U);
    EXPECT_EQ(window.list, (Texts{"Global", "Alps"}));
}

TEST_F(WorkspacesTest, RemovesNothingElseByANameWithAnApostrophe) {
    storeAlps();
    store({"x' or '1'='1", "37.7", "15", "9", "37", "14", "38", "16", "0", "10", "0", "9999"});
    use("x' or '1'='1");
    expectQuestion("Do you want remove the workspace x' or '1'='1?", "Removing Workspace",
                   BoxAnswer::Yes);
    workspacesOf.deleteWRK();
    EXPECT_EQ(workspaces().size(), 2U);
    EXPECT_EQ(log.messages.at(0), "The workspace was not removed: an apostrophe in a text");
}

TEST_F(WorkspacesTest, TellsTheLogWhenANameCannotBeRead) {
    store({"L'Aquila", "42.3", "13.4", "9", "42", "13", "43", "14", "0", "10", "0", "9999"});
    use("L'Aquila");
    workspacesOf.gotoWRK();
    EXPECT_EQ(calls, (Texts{"removeAll.onclick"}));
    EXPECT_EQ(log.messages, (Texts{"The workspace was not read: an apostrophe in its name"}));
}

TEST_F(WorkspacesTest, StandsAnotherProgramThatHoldsTheFile) {
    storeAlps();
    use("Alps");
    database.setBusyCallback([this] { database.interrupt(); });
    ForeignConnection other(settings.Path);
    other.run("begin exclusive");
    expectQuestion("Do you want remove the workspace Alps?", "Removing Workspace", BoxAnswer::Yes);
    workspacesOf.deleteWRK();
    other.run("rollback");
    EXPECT_EQ(workspaces().size(), 1U);
    EXPECT_EQ(settings.LastWorkSpace, "Alps");
    EXPECT_EQ(log.messages.size(), 2U) << "neither removed nor read";
}

// Values that no map and no query can use

TEST_F(WorkspacesTest, ShowsCorruptRowsWithoutFailing) {
    const std::string zero("4\0 2", 4);
    store({"Words", "north", "east", "far", "a", "b", "c", "d", "e", "f", "g", "h"});
    store({"Quoted", "4'2", "1'3", "7'", "4'1", "1'2", "4'3", "1'4", "0'", "1'0", "0'", "9'"});
    store({"Half", "42", "13", "7", "41", "", "", "", "", "", "", ""});
    store({"Zero", zero, zero, zero, zero, zero, zero, zero, zero, zero, zero, zero});
    for (const char* name : {"Words", "Quoted", "Half", "Zero"}) {
        window.combo = name;
        calls.clear();
        workspacesOf.gotoWRK();
        EXPECT_EQ(calls.size(), 11U) << name;
        EXPECT_EQ(std::ranges::count(calls, "Workspace.click"), 1) << name;
    }
}

// Searching

TEST_F(WorkspacesTest, OpensTheSearchOnTheWorkspaceThatIsShown) {
    for (const char* name : {"Alps", "Global", ""}) {
        window.combo = name;
        workspacesOf.mnuSearchWRK_Click();
    }
    EXPECT_EQ(calls, (Texts{"search on the workspace", "search", "search"}));
}

} // namespace
} // namespace tremor
