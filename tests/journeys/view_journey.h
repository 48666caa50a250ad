#pragma once

#include "journeys/map_journey.h"

#include <cstdint>
#include <ctime>
#include <map>
#include <string>
#include <vector>

// The program with a small catalogue of events that lie days apart. What table, map and chart show
// is compared with what the catalogue itself selects.
namespace tremor::journeys {

// Of the circle of an event that is not the newest one.
std::uint32_t colourOfDepth(double depth);

class ViewJourney : public MapJourney {
  protected:
    static constexpr int rangeHours = 240; // holds all events
    static constexpr char everything[] = "1";

    explicit ViewJourney(std::vector<std::string> moreSettings = {});

    // Starts the program, waits until all events stand on the map, and learns from the table how
    // their times look.
    void showEverything();
    // Ends it by its menu.
    void endProgram();

    // The origin times that a condition selects, newest first.
    std::vector<std::string> selected(const std::string& condition) const;
    // The table has these rows and no other, and the map has their circles and no other.
    ::testing::AssertionResult shows(const std::string& condition, const MapView& view = firstView);
    ::testing::AssertionResult tableShows(const std::string& condition);
    // The chart has a bar for each event that the condition selects, and no other.
    ::testing::AssertionResult chartShows(const std::string& condition, std::time_t start,
                                          std::time_t end);
    ::testing::AssertionResult chartShowsLatestHours(const std::string& condition);
    Rectangle chart() const; // the inside of its frame, on the screen

    // A window with just this title: "TREMORLEDGER" is that of a box, the main window's is longer.
    bool waitForBox(const std::string& title = "TREMORLEDGER");
    bool waitForNoBox(const std::string& title = "TREMORLEDGER");

    std::string workspaceValue(const std::string& column, const std::string& name) const;
    std::string count(const std::string& table) const;

    // In the search window.
    void fill(const std::string& keys, const std::string& text); // of the box that the keys reach
    void search();                                               // until the window is gone

  private:
    std::string missingMarkers(const std::string& condition, const MapView& view) const;
    std::string wrongBars(const std::string& condition, std::time_t start, std::time_t end) const;

    std::map<std::string, std::vector<std::string>> ink_; // of an origin time
};

} // namespace tremor::journeys
