#pragma once

#include "map/event_markers.h"
#include "recording_web_browser.h"
#include "support/fakes.h"
#include "workspaces/haversine_formula.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

// The main window as the markers see it, with the program's own geometry.
class MarkerWindow : public MarkerSurroundings {
  public:
    explicit MarkerWindow(ErrorReport& errors) : formula_(NumberLocale::point(), errors) {}

    std::int64_t gridRowCount() const override {
        return static_cast<std::int64_t>(gridTimes.size()) + 1;
    }
    std::string gridCell(std::int64_t row, int column) const override {
        return column == 1 ? gridTimes.at(static_cast<std::size_t>(row - 1)) : "other column";
    }
    void setGridRowsGrey(const std::vector<std::int64_t>& rows) override {
        greyRows.insert(rows.begin(), rows.end());
    }
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override {
        calls.push_back("FillGridEvents [" + std::string(filter) + "] [" +
                        std::string(fallbackFilter) + "] [" + std::string(order) + "]");
    }
    void pictureMagnitudeEvents() override { calls.emplace_back("pictureMagnitudeEvents"); }
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula_.distance(lat1, lon1, lat2, lon2, unit);
    }

    std::vector<std::string> gridTimes; // column 1 of the data rows
    std::set<std::int64_t> greyRows;
    std::vector<std::string> calls;

  private:
    HaversineFormula formula_;
};

// A catalogue, two pages and a program's folder.
class EventMarkersTest : public ::testing::Test {
  protected:
    EventMarkersTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        EXPECT_EQ(database.slsExe("create table Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, "
                                  "'Longitude' REAL, 'Depth' REAL, 'Magnitude' DOUBLE, 'Source' "
                                  "TEXT, 'null' TEXT)"),
                  0);
        settings.PathPins = "/program/Img/";
    }

    // Stores the values as they are, apostrophes and zero bytes included.
    void store(const std::vector<std::string_view>& values) {
        Statement insert = database.prepare("insert into Events values (?, ?, ?, ?, ?, ?, '')");
        ASSERT_EQ(database.execute(insert, values), 0) << database.slGetError();
    }
    // Two reports of one earthquake, 9 s and some 0.5 km apart.
    void storePair() {
        store({"2016-08-24 02:03:09.100", "42.7", "13.23", "8.1", "6.0", "INGV"});
        store({"2016-08-24 02:03:00.100", "42.7045", "13.23", "12.0", "5.5", "EMSC"});
    }

    std::string kmlPath() const { return folder.file("tremorledger.kml"); }

    TemporaryFolder folder;
    ErrorHarness harness;
    Database database;
    AppSettings settings;
    RecordingLog log;
    RecordingWebBrowser map;
    RecordingWebBrowser lastEventMap;
    MarkerWindow window{harness.errors};
    KmlWriter kml{folder.path(), "https://maps.example.org", NumberLocale::point(), harness.errors};
    EventMarkers markers{database, settings, NumberLocale::point(), map, lastEventMap, window,
                         kml,      log,      harness.errors};

    const std::string everything = "select * from Events where UTC > ''";
};

} // namespace tremor::testing
