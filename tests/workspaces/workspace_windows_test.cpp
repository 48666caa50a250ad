#include "workspace_fixture.h"
#include "workspaces/workspace_windows.h"

#include <algorithm>
#include <deque>
#include <memory>

namespace tremor {
namespace {

using testing::alps;
using testing::latestHours;
using testing::RecordingPage;
using testing::Texts;

const std::string etna =
    "(Magnitude >= '0.0') and (Magnitude <= '10.0') AND (Depth >= '0.0') and (Depth <= '9999.0') "
    "AND (Latitude >= 37.0) and (Latitude <= 38.0) AND (Longitude >= 14.0) and (Longitude <= 16.0) "
    "AND ";

class MapOfWindow : public RecordingPage<WorkspaceMap> {
  public:
    using RecordingPage<WorkspaceMap>::RecordingPage;

    void MapsWorkspaces(std::string_view name) override {
        calls.push_back("MapsWorkspaces " + std::string(name));
        isComplete = completeAtOnce;
    }
    void eventsInMapWRKS(std::string_view sql) override {
        calls.push_back("eventsInMapWRKS " + std::string(sql));
    }
    void mapsInJPG(std::string_view name) override {
        calls.push_back("mapsInJPG " + std::string(name));
    }

    bool completeAtOnce = true;
};

class FakeWindow final : public WorkspaceWindow {
  public:
    FakeWindow(Texts& record, std::function<void()> unloaded)
        : page(record), unloaded_(std::move(unloaded)) {}

    WorkspaceMap& map() override {
        EXPECT_TRUE(open) << "a closed window was used";
        return page;
    }
    void unload() override {
        EXPECT_TRUE(open) << "a closed window was closed again";
        open = false;
    }
    // The operator closes it.
    void close() {
        open = false;
        unloaded_();
    }

    MapOfWindow page;
    bool open = true;

  private:
    std::function<void()> unloaded_;
};

class FakeMaker : public WorkspaceWindowMaker {
  public:
    explicit FakeMaker(Texts& record) : calls(record) {}

    WorkspaceWindow& openWindow(const std::string& caption,
                                std::function<void()> unloaded) override {
        calls.push_back("show " + caption);
        windows.push_back(std::make_unique<FakeWindow>(calls, std::move(unloaded)));
        windows.back()->page.completeAtOnce = pagesCompleteAtOnce;
        return *windows.back();
    }

    Texts& calls;
    std::vector<std::unique_ptr<FakeWindow>> windows;
    bool pagesCompleteAtOnce = true;
};

class WorkspaceWindowsTest : public testing::WorkspaceCatalogue {
  protected:
    void storeBoth() {
        storeAlps();
        store({"Etna", "37.7", "15", "9", "37", "14", "38", "16", "0", "10", "0", "9999"});
    }
    void openBoth() {
        storeBoth();
        windows.mnu_wrkspaces_Click();
        calls.clear();
    }
    FakeWindow& window(std::size_t number) { return *maker.windows.at(number); }
    std::ptrdiff_t count(const std::string& call) { return std::ranges::count(calls, call); }

    static Texts drawn(const std::string& latitude, const std::string& longitude,
                       const std::string& zoom, const std::string& condition) {
        return {"Workspace.CLAT=" + latitude,
                "Workspace.CLNG=" + longitude,
                "Workspace.ZOOM=" + zoom,
                "Workspace.click",
                "removeAll.onclick",
                "eventsInMapWRKS select * from Events where " + condition + latestHours,
                "eventi.click"};
    }
    static Texts bothDrawn() {
        Texts texts = drawn("46.5", "10.25", "7", alps);
        const Texts second = drawn("37.7", "15.0", "9", etna);
        texts.insert(texts.end(), second.begin(), second.end());
        return texts;
    }

    FakeMaker maker{calls};
    WorkspaceWindows windows{{database, session, settings, clock, log, harness.errors}, maker};
};

TEST_F(WorkspaceWindowsTest, OpensNoWindowWithoutAWorkspaceAndSaysSo) {
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(log.messages, (Texts{"There aren't Workspace saved."}));
    EXPECT_TRUE(calls.empty());
    EXPECT_FALSE(session.AllWorkspacesOpen);
}

TEST_F(WorkspaceWindowsTest, OpensAWindowForEachWorkspaceThenThePagesThenTheEvents) {
    storeBoth();
    windows.mnu_wrkspaces_Click();
    Texts expected{"show Tremorledger Alps", "show Tremorledger Etna", "MapsWorkspaces Alps",
                   "MapsWorkspaces Etna"};
    const Texts events = bothDrawn();
    expected.insert(expected.end(), events.begin(), events.end());
    EXPECT_EQ(calls, expected);
    EXPECT_TRUE(session.AllWorkspacesOpen);
    EXPECT_EQ(windows.openWindows(), 2U);
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(WorkspaceWindowsTest, ClosesOpenWindowsBeforeItOpensThemAnew) {
    openBoth();
    ASSERT_EQ(database.slsExe("delete from Workspace where Name = 'Alps'"), 0);
    windows.mnu_wrkspaces_Click();
    EXPECT_FALSE(window(0).open);
    EXPECT_FALSE(window(1).open);
    EXPECT_EQ(calls.at(0), "show Tremorledger Etna");
    EXPECT_EQ(windows.openWindows(), 1U);

    ASSERT_EQ(database.slsExe("delete from Workspace"), 0);
    windows.mnu_wrkspaces_Click();
    EXPECT_FALSE(window(2).open);
    EXPECT_FALSE(session.AllWorkspacesOpen);
}

TEST_F(WorkspaceWindowsTest, DrawsAllWindowsAnewForNewEvents) {
    openBoth();
    windows.startWRKspace();
    EXPECT_EQ(calls, bothDrawn());
}

TEST_F(WorkspaceWindowsTest, MovesTheRangeOfTimeUpToNow) {
    openBoth();
    clock.advance(std::chrono::hours(1));
    windows.startWRKspace();
    EXPECT_EQ(calls.at(5), "eventsInMapWRKS select * from Events where " + alps +
                               "(UTC >= '2014-03-06 10:05:12') and (UTC <= '2014-03-07 10:05:12')");
}

TEST_F(WorkspaceWindowsTest, PassesOverAPageThatIsNotComplete) {
    openBoth();
    window(0).page.isComplete = false;
    windows.startWRKspace();
    EXPECT_EQ(calls, drawn("37.7", "15.0", "9", etna));
}

TEST_F(WorkspaceWindowsTest, LeavesTheOthersAliveWhenOneIsClosed) {
    openBoth();
    window(0).close();
    EXPECT_TRUE(session.AllWorkspacesOpen);
    EXPECT_EQ(windows.openWindows(), 1U);
    windows.startWRKspace();
    EXPECT_EQ(calls, drawn("37.7", "15.0", "9", etna));
}

TEST_F(WorkspaceWindowsTest, LowersTheFlagWithTheLastWindow) {
    openBoth();
    window(1).close();
    window(0).close();
    EXPECT_FALSE(session.AllWorkspacesOpen);
    EXPECT_EQ(windows.openWindows(), 0U);
    windows.startWRKspace();
    windows.saveAllWorkspace();
    EXPECT_TRUE(calls.empty());
}

TEST_F(WorkspaceWindowsTest, WaitsForThePagesBeforeItSendsEvents) {
    storeBoth();
    maker.pagesCompleteAtOnce = false;
    clock.onPump = [&] {
        EXPECT_EQ(calls.size(), 4U);
        window(0).page.isComplete = clock.sleeps >= 2;
        window(1).page.isComplete = clock.sleeps >= 5;
    };
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(clock.sleeps, 5);
    EXPECT_EQ(count("eventi.click"), 2);
}

TEST_F(WorkspaceWindowsTest, SendsEventsToThePagesThatHaveComeAfterAMinute) {
    storeBoth();
    maker.pagesCompleteAtOnce = false;
    clock.onPump = [&] { window(1).page.isComplete = true; };
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(clock.steady(), std::chrono::minutes(1));
    EXPECT_EQ(count("eventi.click"), 1);
}

TEST_F(WorkspaceWindowsTest, EndsItsWaitWhenTheProgramCloses) {
    storeBoth();
    maker.pagesCompleteAtOnce = false;
    clock.onPump = [&] { session.WaitCounter = Session::waitCounterClosing; };
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(clock.sleeps, 1);
    EXPECT_EQ(count("eventi.click"), 0);
}

TEST_F(WorkspaceWindowsTest, EndsItsWaitWhenTheWindowsAreClosed) {
    storeBoth();
    maker.pagesCompleteAtOnce = false;
    clock.onPump = [&] {
        if (window(0).open)
            window(0).close();
        else if (window(1).open)
            window(1).close();
    };
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(clock.sleeps, 2);
    EXPECT_EQ(count("eventi.click"), 0);
    EXPECT_FALSE(session.AllWorkspacesOpen);
}

TEST_F(WorkspaceWindowsTest, OpensThemAnewFromInsideItsOwnWait) {
    storeBoth();
    maker.pagesCompleteAtOnce = false;
    clock.onPump = [&] {
        clock.onPump = nullptr;
        maker.pagesCompleteAtOnce = true;
        windows.mnu_wrkspaces_Click();
    };
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(maker.windows.size(), 4U);
    EXPECT_FALSE(window(1).open);
    EXPECT_TRUE(window(3).open);
    EXPECT_EQ(windows.openWindows(), 2U);
    EXPECT_EQ(count("eventi.click"), 2) << "by the call that opened them";
}

// A click waits for the page; whatever runs meanwhile may close the windows.
TEST_F(WorkspaceWindowsTest, StopsAtAWindowThatIsClosedWhileItIsDrawn) {
    for (const char* element : {"Workspace", "removeAll", "eventi"}) {
        ASSERT_EQ(database.slsExe("delete from Workspace"), 0);
        maker.windows.clear();
        openBoth();
        window(0).page.onFire = [&](std::string_view fired) {
            if (fired == element)
                window(0).close();
        };
        windows.startWRKspace();
        EXPECT_EQ(calls.back(), "eventi.click") << element;
        EXPECT_EQ(count("Workspace.CLAT=37.7"), 1) << element;
        EXPECT_EQ(windows.openWindows(), 1U) << element;
        windows.closeAll();
    }
}

TEST_F(WorkspaceWindowsTest, StandsTheClosingOfAllWhileItDraws) {
    openBoth();
    window(0).page.onFire = [&](std::string_view) { windows.closeAll(); };
    windows.startWRKspace();
    EXPECT_EQ(calls.back(), "Workspace.click");
}

TEST_F(WorkspaceWindowsTest, TakesAPictureOfEachOpenWindow) {
    openBoth();
    windows.saveAllWorkspace();
    EXPECT_EQ(calls, (Texts{"mapsInJPG Alps", "mapsInJPG Etna"}));

    calls.clear();
    window(0).close();
    windows.saveAllWorkspace();
    EXPECT_EQ(calls, (Texts{"mapsInJPG Etna"}));
}

TEST_F(WorkspaceWindowsTest, ClosesItsWindowsAtTheEnd) {
    storeBoth();
    {
        WorkspaceWindows others({database, session, settings, clock, log, harness.errors}, maker);
        others.mnu_wrkspaces_Click();
        EXPECT_TRUE(window(1).open);
    }
    EXPECT_FALSE(window(0).open);
    EXPECT_FALSE(window(1).open);
    EXPECT_FALSE(session.AllWorkspacesOpen);
}

TEST_F(WorkspaceWindowsTest, DrawsNothingWhenTheRangeOfTimeIsImpossible) {
    openBoth();
    settings.RangeHoursOfEventsInMap = 2000000000;
    prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
    windows.startWRKspace();
    EXPECT_TRUE(calls.empty()) << "the markers stay";
}

TEST_F(WorkspaceWindowsTest, TakesCorruptRowsAsTheyAre) {
    const std::string longName(10000, 'n');
    store({"L'Aquila", "4'2", "1'3", "7'", "4'1", "1'2", "4'3", "1'4", "0'", "1'0", "0'", "9'"});
    store({"../x", "north", "east", "far", "", "", "", "", "", "", "", ""});
    store({longName, "42", "13", "7", "41", "12", "43", "14", "0", "10", "0", "9999"});
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(windows.openWindows(), 3U);
    EXPECT_EQ(calls.at(0), "show Tremorledger L'Aquila");
    EXPECT_EQ(calls.at(2), "show Tremorledger " + longName);
    EXPECT_EQ(count("eventi.click"), 3);
}

TEST_F(WorkspaceWindowsTest, SaysThatThereIsNoneWhenTheTableCannotBeRead) {
    ASSERT_EQ(database.slsExe("drop table Workspace"), 0);
    windows.mnu_wrkspaces_Click();
    EXPECT_EQ(log.messages, (Texts{"There aren't Workspace saved."}));
    EXPECT_FALSE(session.AllWorkspacesOpen);
}

} // namespace
} // namespace tremor
