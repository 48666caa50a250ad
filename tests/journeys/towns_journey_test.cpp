#include "journeys/notification_journey.h"
#include "journeys/view_journey.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <numbers>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char setupWindow[] = "Setup";
constexpr char importWindow[] = "Download POI from GeoNames";
constexpr char pointsWindow[] = "Points of Interest";

using Lines = std::vector<std::string>;

// A country that the practice services offer.
struct Country {
    int row;           // in the list of countries, from 0
    const char* towns; // that the catalogue takes: none with an apostrophe in its name
};
constexpr Country andorra{0, "53"};
constexpr Country france{1, "659"};

double kilometres(const Place& a, const Place& b) {
    constexpr double radius = 6371; // km
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180; };
    const double y = std::sin(radians(b.latitude - a.latitude) / 2);
    const double x = std::sin(radians(b.longitude - a.longitude) / 2);
    return 2 * radius *
           std::asin(std::sqrt(y * y + std::cos(radians(a.latitude)) *
                                           std::cos(radians(b.latitude)) * x * x));
}

// What an operator does with the towns of the practice services, on top of a journey of any kind.
template <class Base>
class WithTowns : public Base {
  protected:
    using Base::journey_;
    using Base::soon;

    void openMiscellaneous() {
        journey_.waitForWindow(Base::mainWindow, 60);
        journey_.key("alt+f u");
        journey_.waitForWindow(setupWindow, 60);
        journey_.key("ctrl+Tab ctrl+Tab ctrl+Tab");
    }
    void import(const Country& country) {
        openMiscellaneous();
        journey_.key("alt+u");
        journey_.waitForWindow(importWindow, 60);
        std::string keys = "ctrl+Home";
        for (int i = 0; i < country.row; ++i)
            keys += " Down";
        // The list of countries is there when a row can be ticked.
        ASSERT_TRUE(soon([&] {
            journey_.key(keys + " space alt+d");
            return soon([&] { return stored() == country.towns; }, std::chrono::seconds(5));
        })) << stored();
        journey_.key("alt+o");
        journey_.waitForNoWindow(importWindow, 60);
        journey_.waitForWindow(setupWindow, 60);
    }
    void closeSetup() {
        journey_.waitForWindow(setupWindow, 60);
        journey_.key("Escape");
        journey_.waitForNoWindow(setupWindow, 60);
        journey_.waitForWindow(Base::mainWindow, 60);
    }
    std::string stored() const {
        return journey_.queryOne(catalogue, "select count(*) from Cities");
    }
    std::string townWithName(const std::string& column, const std::string& name) const {
        return journey_.queryOne(catalogue,
                                 "select " + column + " from Cities where Name = '" + name + "'");
    }
    // The first lines of the list in the main window; fewer when it ends.
    Lines listedTowns(std::size_t count) {
        journey_.key("alt+t Home");
        Lines lines{journey_.copyText()};
        while (lines.size() < count) {
            journey_.key("Down");
            std::string line = journey_.copyText();
            if (line == lines.back())
                break;
            lines.push_back(std::move(line));
        }
        return lines;
    }
    // The report of the newest event names a town; that of the one before did not.
    bool townsAreListed() { return isTown(listedTowns(linesOfHead + 1).back()); }
    // "Canillo = Km 7.51" with the distance that the map gives.
    void expectTown(const std::string& line, const Place& epicentre) const {
        ASSERT_TRUE(isTown(line)) << line;
        const std::string name = nameIn(line);
        const Place town{std::stod(townWithName("Latitude", name)),
                         std::stod(townWithName("Longitude", name))};
        EXPECT_NEAR(distanceIn(line), kilometres(epicentre, town), 0.03) << line;
    }
    static bool isTown(const std::string& line) { return line.find(mark) != std::string::npos; }
    static std::string nameIn(const std::string& line) { return line.substr(0, line.find(mark)); }
    static double distanceIn(const std::string& line) {
        return std::stod(line.substr(line.find(mark) + std::string(mark).size()));
    }

    static constexpr char mark[] = " = Km ";
    static constexpr std::size_t linesOfHead = 2; // caption and line
};

class TownsJourney : public WithTowns<ViewJourney> {
  protected:
    void SetUp() override {
        addRow({timeAgo(5), std::to_string(epicentre.latitude), std::to_string(epicentre.longitude),
                "10", "4", "test"});
    }

    static constexpr Place epicentre{42.5, 1.53};
};

TEST_F(TownsJourney, ImportedTownsStandInTheListOfAnEventNearThem) {
    showEverything();
    import(andorra);
    EXPECT_EQ(journey_.queryOne(catalogue, "select group_concat(distinct Zone) from Cities"), "AD");
    EXPECT_EQ(townWithName("Latitude || ' ' || Longitude", "Sant Julià de Lòria"),
              "42.4637237004292 1.49128675460815");
    closeSetup();

    clickRow(0);
    ASSERT_TRUE(soon([&] { return townsAreListed(); }));
    const Lines list = listedTowns(linesOfHead + 3);
    double last = 0;
    for (std::size_t i = linesOfHead; i < list.size(); ++i) {
        expectTown(list[i], epicentre);
        EXPECT_GE(distanceIn(list[i]), last) << list[i];
        last = distanceIn(list[i]);
    }
}

TEST_F(TownsJourney, ANameEditedInPlaceIsStoredAndFoundAgain) {
    startProgram();
    import(andorra);
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
    EXPECT_EQ(stored(), andorra.towns);
}

class NewEventTownsJourney : public WithTowns<NotificationJourney> {
  protected:
    static Lines namesIn(const Lines& list) {
        Lines names;
        for (const std::string& line : list)
            names.push_back(nameIn(line));
        return names;
    }

    static constexpr Place epicentre{43.65, 7.1}; // off Antibes
};

TEST_F(NewEventTownsJourney, TheReportNamesTheTownsImportedBeforeInTheWindowAndOnEachChannel) {
    pollForTheFirstTime();
    import(france);
    closeSetup();
    addEventOfIngv(epicentre);
    ASSERT_TRUE(poll()) << journey_.activityLog();
    ASSERT_TRUE(soonInLog(messagesSent, 2)) << journey_.activityLog();

    ASSERT_TRUE(townsAreListed());
    constexpr char line[] = "-----------------------------";
    const Lines list = listedTowns(20);
    // Antibes, 8 km away, is the last town that is found: the report leaves that one out, wherever
    // it lies. Mandelieu, 17 km away, lies outside both bands in which towns are looked for.
    ASSERT_EQ(namesIn(list), (Lines{"TOWNS WITH DISTANCE LESS OF 10 KM", line, "Cagnes-sur-Mer",
                                    "Saint-Laurent-du-Var", "Vence", "Vallauris", line,
                                    "TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM", line,
                                    "Mougins", "Le Cannet", "Cannes", "Grasse", "Nice"}));
    Lines message;
    for (const std::string& listed : list) {
        if (isTown(listed))
            expectTown(listed, epicentre);
        if (listed != line)
            message.push_back(listed);
    }

    ASSERT_EQ(mails(), 1);
    const std::string mail = testing::UnpackedMail(mail_.raw(2)).part("text");
    EXPECT_NE(mail.find(fmt::format("{}", fmt::join(list, "\r\n"))), std::string::npos) << mail;

    const Lines received = telegrams();
    ASSERT_EQ(received.size(), 2U);
    message.at(0) = "=== Towns less than 10km";
    message.at(5) = "=== Towns > 10km < 20km";
    EXPECT_NE(received[1].find(fmt::format("{}", fmt::join(message, "\\n"))), std::string::npos)
        << received[1];
}

} // namespace
} // namespace tremor::journeys
