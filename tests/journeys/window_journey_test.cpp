#include "core/panel_layout.h"
#include "journeys/journey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr char mainWindow[] = "TREMORLEDGER 1.";
constexpr char selectionColour[] = "80FFFF";    // light blue of a chosen row
constexpr char shallowEventColour[] = "FFFF00"; // markers of 5 to 10 km
constexpr int twipsPerPixel = 15;               // at 96 dpi
constexpr int menuHeight = 22;                  // pixels; targets are larger than its error

struct Point {
    int x = 0;
    int y = 0;
};

// A point of the screen inside a rectangle of the layout, `down` pixels below its top.
Point pointIn(const Rectangle& window, const FormRectangle& target, int down) {
    return {window.x + (target.left + target.width / 2) / twipsPerPixel,
            window.y + menuHeight + target.top / twipsPerPixel + down};
}

class WindowJourney : public ::testing::Test {
  protected:
    WindowJourney() {
        journey_.startWithNewCatalogue("window");
        journey_.key("F5");
        if (!journey_.waitForLog(" Events imported from INGV", 1, 30s))
            ADD_FAILURE() << journey_.activityLog();
        // The table follows when the map, which this poll has brought, has drawn its markers.
        if (!soon([&] { return journey_.pixelsOfColour(shallowEventColour) > 20; }, 30s))
            ADD_FAILURE() << "no markers on the map";
    }

    PanelLayout layout() {
        window_ = journey_.geometry(mainWindow);
        return layoutPanel({window_.width * twipsPerPixel, window_.height * twipsPerPixel},
                           menuHeight * twipsPerPixel);
    }

    void clickIn(const FormRectangle& target, int down, int button = 1) {
        const Point point = pointIn(window_, target, down);
        journey_.click(point.x, point.y, button);
    }

    // Waits for the condition; the window needs a moment to paint.
    template <class Condition>
    static bool soon(Condition condition, std::chrono::seconds limit = 10s) {
        const auto end = std::chrono::steady_clock::now() + limit;
        while (std::chrono::steady_clock::now() < end) {
            if (condition())
                return true;
            std::this_thread::sleep_for(100ms);
        }
        return false;
    }

    // Weeks of the practice catalogue, so that the table has more rows than it can show.
    Journey journey_{{"UsePrimaryDataSource=1", "IsideOrIngv=1", "PrimaryPollEvery=5",
                      "AlternatePollEvery=5", "LocalPollEvery=5", "StartupLogo=1",
                      "PrimaryLastNHours=720", "RangeHoursOfEventsInMap=720"}};
    Rectangle window_;
};

TEST_F(WindowJourney, AClickColoursARowAndTheWheelOverTheMapScrollsTheTable) {
    const PanelLayout places = layout();
    EXPECT_EQ(journey_.pixelsOfColour(selectionColour), 0);
    clickIn(places.GridEvents, 30); // below the header
    ASSERT_TRUE(soon([&] { return journey_.pixelsOfColour(selectionColour) > 1000; }));

    // The map zooms as well; in search mode the table does not follow it.
    journey_.key("alt+r");
    const int overTheMap = 200;
    for (int turn = 0; turn < 5; ++turn)
        clickIn(places.FrmWorkspace, overTheMap, 5);
    EXPECT_TRUE(soon([&] { return journey_.pixelsOfColour(selectionColour) == 0; }));
    for (int turn = 0; turn < 5; ++turn)
        clickIn(places.FrmWorkspace, overTheMap, 4);
    EXPECT_TRUE(soon([&] { return journey_.pixelsOfColour(selectionColour) > 1000; }));
}

TEST_F(WindowJourney, AHeaderSortsAndDropsTheSelection) {
    const PanelLayout places = layout();
    clickIn(places.GridEvents, 30);
    ASSERT_TRUE(soon([&] { return journey_.pixelsOfColour(selectionColour) > 1000; }));
    clickIn(places.GridEvents, 8); // the header of a middle column
    EXPECT_TRUE(soon([&] { return journey_.pixelsOfColour(selectionColour) == 0; }));
    EXPECT_TRUE(journey_.programRuns());
}

TEST_F(WindowJourney, TheAboutBoxOpensByKeyboardAndEscapeClosesIt) {
    journey_.key("alt+question a");
    ASSERT_TRUE(soon([&] { return journey_.windowTitles().size() == 2; }));
    journey_.key("Escape");
    EXPECT_TRUE(soon([&] { return journey_.windowTitles().size() == 1; }));
}

TEST_F(WindowJourney, TheSizeIsKeptForTheNextStart) {
    journey_.resize(mainWindow, 1300, 850);
    ASSERT_TRUE(soon([&] { return journey_.geometry(mainWindow).width == 1300; }));
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(20s), 0);
    EXPECT_EQ(journey_.settings().at("PanelXSize"), std::to_string(1300 * twipsPerPixel));
    EXPECT_EQ(journey_.settings().at("PanelYSize"), std::to_string(850 * twipsPerPixel));

    journey_.startProgram();
    journey_.waitForWindow(" - Database: window.sqlite");
    EXPECT_TRUE(soon([&] {
        const Rectangle again = journey_.geometry(mainWindow);
        return again.width == 1300 && again.height == 850;
    }));
}

TEST_F(WindowJourney, OpeningAFileThatIsNoCatalogueIsRefusedAndTheProgramGoesOn) {
    journey_.key("ctrl+o");
    journey_.waitForWindow("Select Sqlite file...");
    journey_.type(journey_.file("settings.ini"));
    journey_.key("Return");
    journey_.waitForWindow("Error...");
    journey_.key("Return");
    journey_.waitForNoWindow("Error...");
    EXPECT_TRUE(journey_.programRuns());
    // The catalogue can be opened again.
    journey_.key("ctrl+o");
    journey_.waitForWindow("Select Sqlite file...");
    journey_.type(journey_.file("window.sqlite"));
    journey_.key("Return");
    journey_.waitForWindow(" - Database: window.sqlite");
    EXPECT_GT(journey_.events("window.sqlite").size(), 0u);
}

} // namespace
} // namespace tremor::journeys
