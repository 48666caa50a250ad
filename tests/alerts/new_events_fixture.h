#pragma once

#include "alerts/new_events.h"
#include "database/catalogue_support.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

using Calls = std::vector<std::string>;

// Everything that a check for new events does outside, in one list: "log …", "sound …", "towns" and
// the names of the steps. `onCall` is what happens inside a call.
class NewEventsWorld : public NewEventSteps, public Sound, public Log, public TownsList {
  public:
    std::string shownWorkspace() override { return workspace; }
    void startWRKspace() override { record("startWRKspace"); }
    void query2Controls() override { record("query2Controls"); }
    void setLastEventText(std::string_view text) override { record("label " + std::string(text)); }
    void eventsInMap2(std::string_view sql) override { record("map " + std::string(sql)); }
    void play(std::string_view path) override { record("sound " + std::string(path)); }
    void addLogToList(std::string_view text) override { record("log " + std::string(text)); }
    void clear() override { record("towns"); }
    void add(std::string_view) override {}

    // The calls that begin so.
    Calls of(std::string_view beginning) const {
        Calls found;
        for (const std::string& call : calls) {
            if (call.starts_with(beginning))
                found.push_back(call);
        }
        return found;
    }

    Calls calls;
    std::function<void(const std::string&)> onCall;
    std::string workspace = "Global";

  private:
    void record(std::string call) {
        calls.push_back(std::move(call));
        if (onCall)
            onCall(calls.back());
    }
};

// All towns of the catalogue are 3.27 km away.
class OneDistanceEarth : public EarthRoutines {
  public:
    double distance(std::string_view, std::string_view, std::string_view, std::string_view,
                    std::string_view) const override {
        return 3.27;
    }
    std::string revealBounds(double, double, std::string_view bearing, double) const override {
        return bearing == "0" ? "90|180" : "0|0";
    }
};

// An open catalogue with the workspaces that a test adds. All times are those of one day.
class NewEventsTest : public CatalogueTest {
  protected:
    NewEventsTest() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        settings.MagLevel1 = 1, settings.MagLevelSound1 = "one.wav";
        settings.MagLevel2 = 2, settings.MagLevelSound2 = "two.wav";
        settings.MagLevel3 = 3, settings.MagLevelSound3 = "three.wav";
        settings.MagLevel4 = 4.3F, settings.MagLevelSound4 = "four.wav";
    }

    void run(const std::string& sql) {
        EXPECT_EQ(database.slsExe(sql), 0) << sql << ": " << database.slGetError();
    }
    void addEvent(const std::string& utc, const std::string& magnitude = "2.5",
                  const std::string& latitude = "46.5", const std::string& longitude = "10.5") {
        run(fmt::format("insert into Events values ('{}','{}','{}','8.4','{}','INGV','')", utc,
                        latitude, longitude, magnitude));
    }
    // From 46 N, 10 E to 47 N, 11 E, or so many degrees to the south.
    void addWorkspace(const std::string& name, int south = 0) {
        run(fmt::format("insert into Workspace (Name, BLat, BLng, TLat, TLng) "
                        "values ('{}', {}, 10, {}, 11)",
                        name, 46 - south, 47 - south));
    }
    void addTown(const std::string& name) {
        run(fmt::format("insert into Cities values ('{}','46.5','10.5','')", name));
    }

    NewEventsWorld world;
    OneDistanceEarth earth;
    NumberLocale locale = NumberLocale::point();
    NearbyTowns towns{database, locale, earth, world, harness.errors};
    NewEvents newEvents{settings, session, database, locale,        towns,
                        world,    world,   world,    harness.errors};
};

} // namespace tremor::testing
