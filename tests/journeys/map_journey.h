#pragma once

#include "core/panel_layout.h"
#include "journeys/journey.h"
#include "journeys/screen_picture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The program with a small catalogue of known events, and its maps as they stand on the screen.
namespace tremor::journeys {

struct Place {
    double latitude = 0;
    double longitude = 0;
};

struct Point {
    double x = 0;
    double y = 0;
};

// An event of the catalogue, and the colour of its circle, which follows from its depth.
struct KnownEvent {
    Place place;
    std::string depth; // km
    int minutesAgo = 0;
    std::uint32_t colour = 0;
};

// A view of a map: the middle of its surface shows `centre`.
struct MapView {
    Place centre;
    int zoom = 0;
};

// Where the Web Mercator projection has a place, with 256 pixels around the world at zoom 0.
Point projected(const Place& place, int zoom);

class MapJourney : public ::testing::Test {
  protected:
    static constexpr char mainWindow[] = "TREMORLEDGER 1.";
    static constexpr char searchWindow[] = "Search Parameters";
    static constexpr std::chrono::seconds longEnough{60};
    static constexpr MapView firstView{{42, 12}, 5};
    static constexpr double circleRadius = 12; // pixels: magnitude 4 at scale 3

    // Circles of five colours, newest first. That of the newest event in view is replaced by a
    // moving picture, with a dot of `lastEventColour` in its middle.
    static const std::vector<KnownEvent>& events();
    static constexpr std::uint32_t lastEventColour = 0xC80000;
    // Not in the range of the map: two days old.
    static const KnownEvent& oldEvent();

    explicit MapJourney(std::vector<std::string> moreSettings = {},
                        const std::vector<std::string>& locators = {},
                        const std::vector<std::string>& serviceOptions = {}); // see Journey

    void addEvent(const KnownEvent& event);
    // The same with any values: UTC, Latitude, Longitude, Depth, Magnitude, Source.
    void addRow(const std::vector<std::string>& values);
    static std::string timeAgo(int minutes);

    void startProgram(); // until its window stands there
    // Starts it and waits until all known events stand where they must.
    void showFirstView();

    ScreenPicture look() const { return journey_.picture(); }
    void findSurfaces(); // again after the window has changed its size

    // Where a view has a place on the screen, and whether the surface reaches so far.
    Point onScreen(const Place& place, const MapView& view) const;
    bool inView(const Place& place, const MapView& view) const;
    // A circle, whole and in its place; other things of its colour are further away than `reach`.
    static bool standsAt(const ScreenPicture& picture, const Point& point, std::uint32_t colour,
                         int reach = 30);
    std::string missingFrom(const MapView& view) const; // the events in view that do not stand so
    ::testing::AssertionResult allStandAt(const MapView& view);

    // The table: what stands in the column of the times, newest first.
    struct Row {
        std::vector<std::string> time; // its ink
        int y = 0;                     // its middle on the screen
        bool selected = false;
    };
    std::vector<Row> rows() const;
    void clickRow(std::size_t index); // where the pointer hides nothing that is looked at
    static std::vector<std::vector<std::string>> times(const std::vector<Row>& rows);

    bool menuOpens();                      // the window answers the operator
    bool isOpen(const std::string& title); // a window with just this title
    // The search window opens with the filter of the dates alone in force.
    void openSearch();
    bool searchModeIsOn() const; // once the surfaces have been found

    template <class Condition>
    static bool soon(Condition condition, std::chrono::seconds limit = longEnough) {
        return waitUntil(condition, limit);
    }

    Journey journey_;
    Rectangle map_;          // the workspace map's surface on the screen
    Rectangle lastEventMap_; // that of the last event
    Rectangle grid_;
    Rectangle coordinates_;
    Rectangle lastEventText_;
};

} // namespace tremor::journeys
