#include "journeys/source_rows.h"
#include "journeys/view_journey.h"

#include <cmath>
#include <numbers>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char removing[] = "Removing Workspace";

// Which place a point of the projected world shows.
Place placeAt(const Point& point, int zoom) {
    const double world = 256 * std::exp2(zoom);
    const double turns = std::numbers::pi * (1 - 2 * point.y / world);
    return {std::atan(std::sinh(turns)) * 180 / std::numbers::pi, point.x / world * 360 - 180};
}

class WorkspaceJourney : public ViewJourney {
  protected:
    using ViewJourney::ViewJourney;

    void store(const std::string& name, const Place& centre, const Place& southWest,
               const Place& northEast) {
        const auto text = [](const Place& place) {
            return std::to_string(place.latitude) + ", " + std::to_string(place.longitude);
        };
        journey_.change(catalogue, "insert into Workspace values ('" + name + "', " + text(centre) +
                                       ", 6, " + text(southWest) + ", " + text(northEast) +
                                       ", 0, 10, 0, 1000)");
    }
    void saveAs() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+a");
        ASSERT_TRUE(waitForBox());
    }
    // Answers the box for the name with one that is refused, and closes the refusal.
    void refuse(const std::string& name) {
        saveAs();
        journey_.type(name);
        journey_.key("Return");
        // The refusal has the same title, and takes the place of the question.
        ASSERT_TRUE(soon([&] {
            if (isOpen("TREMORLEDGER"))
                journey_.key("Return");
            return !isOpen("TREMORLEDGER");
        }));
    }
    void choose(const std::string& keys) { // in the list of workspaces
        journey_.click(map_.x + 40, map_.y - 40);
        journey_.key(keys);
        journey_.key("Return");
    }
    std::string workspaceInUse() {
        endProgram();
        return journey_.settings().at("LastWorkSpace");
    }
};

TEST_F(WorkspaceJourney, TheViewIsSavedUsedAfterARestartAndRemoved) {
    showEverything();
    // One step closer, so that not all events are in sight.
    journey_.click(map_.x + map_.width / 2, map_.y + map_.height / 2, 4);
    const MapView view{firstView.centre, firstView.zoom + 1};
    ASSERT_TRUE(soon([&] { return rows().size() < selected(everything).size(); }));
    saveAs();
    journey_.type("Middle");
    journey_.key("Return");
    ASSERT_TRUE(soon([&] { return count("Workspace") == "1"; })) << journey_.activityLog();

    const Point middle = projected(view.centre, view.zoom);
    const Place southWest =
        placeAt({middle.x - map_.width / 2.0, middle.y + map_.height / 2.0}, view.zoom);
    const Place northEast =
        placeAt({middle.x + map_.width / 2.0, middle.y - map_.height / 2.0}, view.zoom);
    const auto value = [&](const std::string& column) {
        return std::stod(workspaceValue(column, "Middle"));
    };
    constexpr double pixel = 0.05; // degrees, about two
    EXPECT_NEAR(value("Latitude"), view.centre.latitude, pixel);
    EXPECT_NEAR(value("Longitude"), view.centre.longitude, pixel);
    EXPECT_EQ(workspaceValue("Zoom", "Middle"), "6");
    EXPECT_NEAR(value("BLat"), southWest.latitude, pixel);
    EXPECT_NEAR(value("BLng"), southWest.longitude, pixel);
    EXPECT_NEAR(value("TLat"), northEast.latitude, pixel);
    EXPECT_NEAR(value("TLng"), northEast.longitude, pixel);

    const std::string inside =
        "exists (select * from Workspace where Events.Latitude between BLat and TLat and "
        "Events.Longitude between BLng and TLng)";
    ASSERT_GT(selected(inside).size(), 0U);
    ASSERT_LT(selected(inside).size(), selected(everything).size());
    journey_.waitForWindow(mainWindow, 60);
    choose("End");
    EXPECT_TRUE(shows(inside, view));
    EXPECT_EQ(workspaceInUse(), "Middle");
    startProgram();
    ASSERT_TRUE(soon([&] {
        findSurfaces();
        return map_.width > 0;
    }));
    // The map begins with the view that was left; after a look around the jump takes it back.
    EXPECT_TRUE(shows(inside, view));
    journey_.click(map_.x + map_.width / 2, map_.y + map_.height / 2, 5);
    EXPECT_TRUE(shows(inside, firstView));
    EXPECT_TRUE(chartShowsLatestHours(inside));
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+j");
    EXPECT_TRUE(shows(inside, view));
    EXPECT_TRUE(chartShowsLatestHours(inside));

    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+w");
    journey_.key("d");
    ASSERT_TRUE(waitForBox(removing));
    journey_.key("alt+n");
    ASSERT_TRUE(waitForNoBox(removing));
    EXPECT_EQ(count("Workspace"), "1");
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+w");
    journey_.key("d");
    ASSERT_TRUE(waitForBox(removing));
    journey_.key("alt+y");
    ASSERT_TRUE(soon([&] { return count("Workspace") == "0"; }));
    EXPECT_EQ(workspaceInUse(), "Global");
}

TEST_F(WorkspaceJourney, TheListChangesBetweenAWorkspaceAndTheFreeMap) {
    store("South", {39, 13}, {36, 8}, {42, 16});
    showEverything();
    choose("End");
    const std::string south = "Latitude between 36 and 42 and Longitude between 8 and 16";
    EXPECT_TRUE(shows(south, {{39, 13}, 6}));
    EXPECT_TRUE(chartShowsLatestHours(south));

    choose("Home");
    const std::string sight = "Latitude between 36 and 42 and Longitude between 7 and 19";
    EXPECT_TRUE(tableShows(sight));
    EXPECT_EQ(workspaceInUse(), "Global");
}

TEST_F(WorkspaceJourney, NamesThatCannotBeAreRefused) {
    showEverything();
    for (const char* name : {"", "two words", "it's", "a\"b"}) {
        refuse(name);
        EXPECT_EQ(count("Workspace"), "0") << name;
    }
    saveAs();
    journey_.key("Escape");
    ASSERT_TRUE(waitForNoBox());
    EXPECT_EQ(count("Workspace"), "0");
    EXPECT_TRUE(menuOpens());
}

TEST_F(WorkspaceJourney, AVeryLongNameLeavesTheWindowAsItIs) {
    showEverything();
    const Rectangle before = journey_.geometry(mainWindow);
    saveAs();
    journey_.paste(std::string(10000, 'x'));
    journey_.key("Return");
    ASSERT_TRUE(soon([&] { return count("Workspace") == "1"; })) << journey_.activityLog();
    EXPECT_EQ(journey_.queryOne(catalogue, "select length(Name) from Workspace"), "10000");
    EXPECT_TRUE(menuOpens());
    const Rectangle after = journey_.geometry(mainWindow);
    EXPECT_EQ(after.width, before.width);
    EXPECT_TRUE(tableShows(everything));
    endProgram();
    startProgram();
    EXPECT_TRUE(menuOpens());
    endProgram();
}

TEST_F(WorkspaceJourney, RowsThatAreNoViewsDoNotStopTheProgram) {
    journey_.change(catalogue, "insert into Workspace values ('Texts', 'north', '', 'x', 'a', "
                               "'b''c', '(', ')', 'm', 'n', 'o', 'p'), "
                               "('Nulls', null, null, null, null, null, null, null, null, null, "
                               "null, null)");
    showEverything();
    for (const char* keys : {"Home Down", "End", "Home"}) {
        choose(keys);
        EXPECT_TRUE(menuOpens()) << keys << "\n" << journey_.activityLog();
    }
    EXPECT_TRUE(shows(everything));
    journey_.key("alt+w");
    journey_.key("o");
    ASSERT_TRUE(waitForBox("Tremorledger Texts"));
    ASSERT_TRUE(waitForBox("Tremorledger Nulls"));
    endProgram();
}

class AllWorkspacesJourney : public WorkspaceJourney {
  protected:
    AllWorkspacesJourney()
        : WorkspaceJourney({"UsePrimaryDataSource=1", "IsideOrIngv=1", "PrimaryLastNHours=1"}) {
        store("Italy", italyView.centre, {35, 6}, {48, 19});
        store("West", westView.centre, {38, 3}, {44, 9.5});
    }

    void openAll() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+w");
        journey_.key("o");
    }
    // Where the map of an open window, which comes to the front for it, has a place.
    Point inWindow(const std::string& title, const MapView& view, const Place& place) {
        constexpr int margin = 10; // pixels around the map
        journey_.waitForWindow(title, 60);
        const Rectangle window = journey_.geometry(title);
        map_ = {window.x + margin, window.y + margin, window.width - 2 * margin,
                window.height - 2 * margin};
        return onScreen(place, view);
    }
    static bool stands(const ScreenPicture& picture, const Point& at, std::uint32_t colour) {
        constexpr int reach = 3;
        return picture.count({static_cast<int>(at.x) - reach, static_cast<int>(at.y) - reach,
                              2 * reach, 2 * reach},
                             colour) > 20;
    }
    bool standsSoon(const std::string& title, const MapView& view, const Place& place,
                    std::uint32_t colour) {
        const Point at = inWindow(title, view, place);
        return soon([&] { return stands(look(), at, colour); });
    }
    void closeWindow(const std::string& title) {
        journey_.waitForWindow(title, 60);
        journey_.key("alt+F4");
        ASSERT_TRUE(waitForNoBox(title));
    }
    void poll(int count) {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("F5");
        ASSERT_TRUE(journey_.waitForLog(" Events imported from INGV", count, longEnough))
            << journey_.activityLog();
    }

    static constexpr char italy[] = "Tremorledger Italy";
    static constexpr char west[] = "Tremorledger West";
    static constexpr MapView italyView{{42, 14.5}, 6};
    static constexpr MapView westView{{41, 6}, 6};
    static constexpr std::uint32_t green = 0x33FF00; // at 40 N 9 E, in the west
    static constexpr std::uint32_t red = 0xFF0000;   // at 41 N 15 E, in Italy
};

TEST_F(AllWorkspacesJourney, TheirMapsFollowNewEventsUntilTheyAreClosedOneByOne) {
    showEverything();
    poll(1);
    openAll();
    ASSERT_TRUE(waitForBox(italy));
    ASSERT_TRUE(waitForBox(west));
    EXPECT_TRUE(standsSoon(italy, italyView, {41, 15}, red));
    EXPECT_TRUE(standsSoon(west, westView, {40, 9}, green));

    // A new event where none of its colour stands yet.
    Place place;
    std::uint32_t colour = 0;
    bool covered = true;
    for (int i = 0; i < 20 && covered; ++i) {
        const EventRow added = rowsOfDocument(journey_.service("/practice/add")).at(0);
        place = {std::stod(added.latitude), std::stod(added.longitude)};
        colour = colourOfDepth(std::stod(added.depth));
        const Point at = inWindow(italy, italyView, place);
        covered = place.longitude < 10 || stands(look(), at, colour);
    }
    ASSERT_FALSE(covered);
    poll(2);
    EXPECT_TRUE(standsSoon(italy, italyView, place, colour));
    EXPECT_TRUE(standsSoon(west, westView, {40, 9}, green));

    closeWindow(italy);
    EXPECT_TRUE(standsSoon(west, westView, {40, 9}, green));
    closeWindow(west);
    journey_.waitForWindow(mainWindow, 60);
    EXPECT_TRUE(menuOpens());
    endProgram();
}

TEST_F(AllWorkspacesJourney, TheProgramEndsWithTheirWindowsOpen) {
    showEverything();
    openAll();
    ASSERT_TRUE(waitForBox(italy));
    ASSERT_TRUE(waitForBox(west));
    endProgram();

    // Also while their pages load.
    showEverything();
    openAll();
    ASSERT_TRUE(waitForBox(italy));
    endProgram();
}

} // namespace
} // namespace tremor::journeys
