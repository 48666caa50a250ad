#include "journeys/view_journey.h"

#include <cmath>
#include <numbers>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char setupWindow[] = "Setup";
constexpr char importWindow[] = "Download POI from GeoNames";
constexpr char pointsWindow[] = "Points of Interest";

// Andorra's extract of GeoNames has 56 populated places; the catalogue refuses the three with an
// apostrophe.
constexpr char townsOfAndorra[] = "53";

double kilometres(const Place& a, const Place& b) {
    constexpr double radius = 6371; // km
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180; };
    const double y = std::sin(radians(b.latitude - a.latitude) / 2);
    const double x = std::sin(radians(b.longitude - a.longitude) / 2);
    return 2 * radius *
           std::asin(std::sqrt(y * y + std::cos(radians(a.latitude)) *
                                           std::cos(radians(b.latitude)) * x * x));
}

// Towns from the practice services.
class TownsJourney : public ViewJourney {
  protected:
    void SetUp() override {
        addRow({timeAgo(5), std::to_string(epicentre.latitude), std::to_string(epicentre.longitude),
                "10", "4", "test"});
    }

    void openMiscellaneous() {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("alt+f u");
        journey_.waitForWindow(setupWindow, 60);
        journey_.key("ctrl+Tab ctrl+Tab ctrl+Tab");
    }
    void importAndorra() {
        openMiscellaneous();
        journey_.key("alt+u");
        journey_.waitForWindow(importWindow, 60);
        // The list of countries is there when its only row can be ticked.
        ASSERT_TRUE(soon([&] {
            journey_.key("space alt+d");
            return soon([&] { return count("Cities") == townsOfAndorra; }, std::chrono::seconds(5));
        })) << count("Cities");
        journey_.key("alt+o");
        journey_.waitForNoWindow(importWindow, 60);
        journey_.waitForWindow(setupWindow, 60);
    }
    void closeSetup() {
        journey_.waitForWindow(setupWindow, 60);
        journey_.key("Escape");
        journey_.waitForNoWindow(setupWindow, 60);
        journey_.waitForWindow(mainWindow, 60);
    }
    std::string townInList(int index) {
        journey_.key("alt+t Home");
        for (int i = 0; i < index; ++i)
            journey_.key("Down");
        return journey_.copyText();
    }
    std::string townWithName(const std::string& column, const std::string& name) const {
        return journey_.queryOne(catalogue,
                                 "select " + column + " from Cities where Name = '" + name + "'");
    }

    static constexpr Place epicentre{42.5, 1.53};
};

TEST_F(TownsJourney, ImportedTownsStandInTheListOfAnEventNearThem) {
    showEverything();
    importAndorra();
    EXPECT_EQ(journey_.queryOne(catalogue, "select group_concat(distinct Zone) from Cities"), "AD");
    EXPECT_EQ(townWithName("Latitude || ' ' || Longitude", "Sant Julià de Lòria"),
              "42.4637237004292 1.49128675460815");
    closeSetup();

    clickRow(0);
    constexpr int head = 2; // caption and line
    constexpr char mark[] = " = Km ";
    double last = 0;
    ASSERT_TRUE(soon([&] { return townInList(head).find(mark) != std::string::npos; }));
    for (int i = 0; i < 3; ++i) {
        const std::string line = townInList(head + i);
        const std::size_t end = line.find(mark);
        ASSERT_NE(end, std::string::npos) << line;
        const std::string name = line.substr(0, end);
        const double distance = std::stod(line.substr(end + std::string(mark).size()));
        const Place place{std::stod(townWithName("Latitude", name)),
                          std::stod(townWithName("Longitude", name))};
        EXPECT_NEAR(distance, kilometres(epicentre, place), 0.03) << line;
        EXPECT_GE(distance, last) << line;
        last = distance;
    }
}

TEST_F(TownsJourney, ANameEditedInPlaceIsStoredAndFoundAgain) {
    startProgram();
    importAndorra();
    const std::string before =
        townWithName("rowid || ' ' || Latitude || ' ' || Longitude", "Ordino");
    journey_.key("alt+d");
    journey_.waitForWindow(pointsWindow, 60);
    journey_.key("alt+s");
    journey_.type("ordin");
    ASSERT_TRUE(soon([&] {
        journey_.key("alt+s Tab");
        return journey_.copyText() == "Ordino";
    }));
    journey_.key("F2 ctrl+a");
    journey_.type("Ordino Vell");
    journey_.key("Return");
    EXPECT_TRUE(soon([&] { return townWithName("count(*)", "Ordino Vell") == "1"; }));
    EXPECT_EQ(townWithName("rowid || ' ' || Latitude || ' ' || Longitude", "Ordino Vell"), before);
    EXPECT_EQ(townWithName("count(*)", "Ordino"), "0");

    // The box stands open in the next cell.
    journey_.key("alt+o");
    journey_.waitForNoWindow(pointsWindow, 60);
    journey_.waitForWindow(setupWindow, 60);
    journey_.key("alt+d");
    journey_.waitForWindow(pointsWindow, 60);
    journey_.key("alt+s");
    journey_.type("vell");
    EXPECT_TRUE(soon([&] {
        journey_.key("alt+s Tab");
        return journey_.copyText() == "Ordino Vell";
    }));
    EXPECT_EQ(count("Cities"), townsOfAndorra);
}

} // namespace
} // namespace tremor::journeys
