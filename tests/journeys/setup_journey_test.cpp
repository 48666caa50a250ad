#include "journeys/map_journey.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tremor::journeys {
namespace {

constexpr char setupWindow[] = "Setup";

class SetupJourney : public MapJourney {
  protected:
    SetupJourney() : MapJourney({"PriorityEvents=1", "PrimaryLastNHours=24"}) {}
    void SetUp() override { startProgram(); }

    void openSetup() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+f u");
        journey_.waitForWindow(setupWindow, 60);
    }
    void waitForPanel() {
        journey_.waitForNoWindow(setupWindow, 60);
        journey_.waitForWindow(mainWindow, 60);
    }
    void fill(const std::string& keys, const std::string& text) { // of the box that they reach
        journey_.key(keys + " ctrl+a");
        journey_.type(text);
    }
    std::string textAt(const std::string& keys) {
        journey_.key(keys);
        return journey_.copyText();
    }

    // Points of the window, from its corners.
    void chooseAlternateSource() {
        const Rectangle window = journey_.geometry(setupWindow);
        journey_.click(window.x + 97, window.y + 537);
    }
    void clickOk() { clickBelow(138); }
    void clickCancel() { clickBelow(53); }
    void clickTitleBarsCross() {
        const Rectangle window = journey_.geometry(setupWindow);
        journey_.click(window.x + window.width - 10, window.y - 11);
    }
    void clickBelow(int fromTheRight) {
        const Rectangle window = journey_.geometry(setupWindow);
        journey_.click(window.x + window.width - fromTheRight, window.y + window.height - 24);
    }

    // The menu's captions are black only while they can be used.
    bool panelIsEnabled() {
        const Rectangle window = journey_.geometry(mainWindow);
        return !look().linesOfText({window.x + 2, window.y + 2, 60, 18}).empty();
    }
    // The panel has the focus and is asked for the box "About".
    void tryThePanel() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+question a");
        journey_.waitForWindow(setupWindow, 60);
    }

    // The settings of a program that has ended by its menu.
    std::map<std::string, std::string> settingsAfterTheEnd() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+f x");
        EXPECT_EQ(journey_.waitForExit(longEnough), 0);
        return journey_.settings();
    }
};

TEST_F(SetupJourney, WhatIsTypedAndChosenIsKeptAndShownAgainAfterARestart) {
    openSetup();
    journey_.key("alt+l Tab space"); // LIVELOC
    fill("Tab", "/data/rea");
    fill("Tab Tab", "7");
    journey_.key("alt+p Tab space"); // INGV, which has no user
    fill("Tab Tab", "9");
    fill("Tab", "48");
    journey_.key("Tab space Tab Right"); // USGS
    fill("Tab Tab", "operator");
    fill("Tab", "secret");
    fill("Tab", "11");
    fill("Tab", "36");
    chooseAlternateSource();
    fill("Tab", "100");
    journey_.key("ctrl+Tab alt+m"); // pictures of the operator's own
    fill("alt+n shift+Tab", "9");
    fill("shift+Tab", "6");
    clickOk();
    waitForPanel();

    const std::map<std::string, std::string> expected{{"UseLocalSource", "1"},
                                                      {"SeisCompOrLIVELOC", "1"},
                                                      {"LocalSourcePath", "/data/rea"},
                                                      {"LocalPollEvery", "7"},
                                                      {"UsePrimaryDataSource", "1"},
                                                      {"IsideOrIngv", "1"},
                                                      {"PrimaryPollEvery", "9"},
                                                      {"PrimaryLastNHours", "48"},
                                                      {"UseAlternateDataSource", "1"},
                                                      {"EmscOrUsgs", "1"},
                                                      {"AlternateSourceUsername", "operator"},
                                                      {"AlternateSourcePassword", "secret"},
                                                      {"AlternatePollEvery", "11"},
                                                      {"AlternateLastNHours", "36"},
                                                      {"PriorityEvents", "2"},
                                                      {"RangeHoursOfEventsInMap", "100"},
                                                      {"PinMode", "0"},
                                                      {"DefaultMapZoomLevel", "6"},
                                                      {"LastEventMapZoomLevel", "9"}};
    const auto kept = [&] {
        std::map<std::string, std::string> found;
        const auto settings = journey_.settings();
        for (const auto& [name, value] : expected)
            found[name] = settings.contains(name) ? settings.at(name) : "missing";
        return found;
    };
    EXPECT_TRUE(soon([&] { return kept() == expected; }));
    settingsAfterTheEnd();
    EXPECT_EQ(kept(), expected);

    startProgram();
    openSetup();
    EXPECT_EQ(textAt("Tab Tab Tab"), "/data/rea");
    EXPECT_EQ(textAt("Tab Tab"), "7");
    EXPECT_TRUE(textAt("Tab Tab Tab").ends_with("/fdsnws/event/"));
    EXPECT_EQ(textAt("Tab"), "9"); // there is no user
    EXPECT_EQ(textAt("Tab"), "48");
    EXPECT_TRUE(textAt("Tab Tab Tab").ends_with("/earthquakes/search/"));
    EXPECT_EQ(textAt("Tab"), "operator");
    EXPECT_EQ(textAt("Tab Tab"), "1"); // the reader holds it to 0 or 1
    EXPECT_EQ(textAt("Tab"), "36");
    EXPECT_EQ(textAt("Tab Tab"), "100");
    EXPECT_EQ(textAt("ctrl+Tab alt+n shift+Tab"), "9");
    EXPECT_EQ(textAt("shift+Tab"), "6");
}

TEST_F(SetupJourney, CancelKeepsAChosenOptionForTheRunningProgramButNoText) {
    const auto before = journey_.settings();
    openSetup();
    chooseAlternateSource();
    fill("Tab", "100");
    clickCancel();
    waitForPanel();
    EXPECT_EQ(journey_.settings(), before);

    openSetup();
    clickOk();
    waitForPanel();
    ASSERT_TRUE(soon([&] { return journey_.settings()["PriorityEvents"] == "2"; }));
    EXPECT_EQ(journey_.settings()["RangeHoursOfEventsInMap"], before.at("RangeHoursOfEventsInMap"));
}

TEST_F(SetupJourney, ThePanelWaitsForSetupAndComesBackHoweverThatIsClosed) {
    ASSERT_TRUE(soon([&] { return panelIsEnabled(); }));
    const std::vector<std::function<void()>> ways{
        [&] { clickCancel(); }, [&] { journey_.key("Escape"); }, [&] { clickTitleBarsCross(); }};
    for (std::size_t way = 0; way < ways.size(); ++way) {
        openSetup();
        EXPECT_TRUE(soon([&] { return !panelIsEnabled(); })) << way;
        tryThePanel();
        EXPECT_EQ(journey_.windowTitles().size(), 2U) << way;
        ways[way]();
        waitForPanel();
        EXPECT_EQ(journey_.windowTitles().size(), 1U) << way;
        EXPECT_TRUE(soon([&] { return panelIsEnabled(); })) << way;
        EXPECT_TRUE(menuOpens()) << way;
    }
}

} // namespace
} // namespace tremor::journeys
