#include "alerts/nearby_towns.h"
#include "support/fakes.h"
#include "workspaces/haversine_formula.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

class RecordingList : public TownsList {
  public:
    void clear() override { items.clear(); }
    void add(std::string_view item) override { items.emplace_back(item); }
    Texts items;
};

// The program's own geometry.
class Haversine : public EarthRoutines {
  public:
    Haversine(const NumberLocale& locale, ErrorReport& errors) : formula_(locale, errors) {}
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return formula_.distance(lat1, lon1, lat2, lon2, unit);
    }
    std::string revealBounds(double lat, double lon, std::string_view bearing,
                             double distanceKm) const override {
        return formula_.revealBounds(lat, lon, bearing, distanceKm);
    }

  private:
    HaversineFormula formula_;
};

// Every distance is scripted by the town's longitude, every walk by its bearing; calls are kept.
class ScriptedEarth : public EarthRoutines {
  public:
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        measured.push_back(fmt::format("{} {} {} {} {}", lat1, lon1, lat2, lon2, unit));
        const auto found = distances.find(std::string(lon2));
        return found == distances.end() ? 9999 : found->second;
    }
    std::string revealBounds(double lat, double lon, std::string_view bearing,
                             double distanceKm) const override {
        walked.push_back(fmt::format("{} {} {} {}", lat, lon, bearing, distanceKm));
        return walks.at(std::string(bearing));
    }

    std::map<std::string, double> distances;
    std::map<std::string, std::string> walks = {
        {"90", "42.7|13.9"}, {"0", "42.8|13.9"}, {"270", "42.7|13.1"}, {"180", "42.6|13.1"}};
    mutable Texts measured;
    mutable Texts walked;
};

std::string joined(const Texts& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

const std::string dashes = "-----------------------------";

Texts reportLines(const Texts& nearTowns, const Texts& farTowns) {
    Texts lines = {"TOWNS WITH DISTANCE LESS OF 10 KM", dashes};
    lines.insert(lines.end(), nearTowns.begin(), nearTowns.end());
    lines.insert(lines.end(), {dashes, "TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM", dashes});
    lines.insert(lines.end(), farTowns.begin(), farTowns.end());
    return lines;
}

class NearbyTownsTest : public ::testing::Test {
  protected:
    NearbyTownsTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        run("CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, 'Longitude' TEXT, "
            "'Zone' TEXT)");
    }

    void run(const std::string& sql) {
        EXPECT_EQ(database.slsExe(sql), 0) << database.slGetError();
    }
    void addTown(const std::string& name, const std::string& latitude,
                 const std::string& longitude) {
        run(fmt::format("insert into Cities values ('{}','{}','{}','')", name, latitude,
                        longitude));
    }
    // The row that is never looked at.
    void addLastTown() { addTown("Last", "42.7", "13.2"); }
    // A town in the scripted box whose distance is given.
    void addTownAt(const std::string& name, const std::string& longitude, double distance) {
        addTown(name, "42.7", longitude);
        earth.distances[longitude] = distance;
    }

    // Reports on 42.7 N, 13.23 E and compares report and list with the lines.
    void expectTowns(const Texts& nearTowns, const Texts& farTowns) {
        std::string report;
        NearbyTowns towns(database, NumberLocale::point(), earth, list, harness.errors);
        towns.eventOnPOI("42.7", "13.23", report);
        EXPECT_EQ(report, joined(reportLines(nearTowns, farTowns)));
        EXPECT_EQ(list.items, reportLines(nearTowns, farTowns));
        EXPECT_EQ(harness.errors.callStack().depth(), 0);
    }

    // The report of the program's own geometry.
    std::string measuredReport(const NumberLocale& locale, const std::string& latitude,
                               const std::string& longitude) {
        std::string report;
        const Haversine haversine(locale, harness.errors);
        NearbyTowns(database, locale, haversine, list, harness.errors)
            .eventOnPOI(latitude, longitude, report);
        return report;
    }

    testing::TemporaryFolder folder;
    Database database;
    RecordingList list;
    ScriptedEarth earth;
    testing::ErrorHarness harness;
};

TEST_F(NearbyTownsTest, ListsTheTownsByDistanceInTwoLists) {
    addTown("Colle Verde", "42.63", "13.17");
    addTown("Colle Rosso", "42.75", "13.4");
    addTown("Borgo Alto", "42.72", "13.26");
    addTown("Pian Basso", "42.6", "13.23");
    addTown("Roma", "41.9", "12.5");
    addLastTown();
    EXPECT_EQ(measuredReport(NumberLocale::point(), "42.7", "13.23"),
              "TOWNS WITH DISTANCE LESS OF 10 KM\r\n"
              "-----------------------------\r\n"
              "Borgo Alto = Km 3.31\r\n"
              "Colle Verde = Km 9.2\r\n"
              "-----------------------------\r\n"
              "TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM\r\n"
              "-----------------------------\r\n"
              "Pian Basso = Km 11.12\r\n"
              "Colle Rosso = Km 14.96\r\n");
}

TEST_F(NearbyTownsTest, WritesTheMarkOfACommaLocaleAndFindsTheSameTowns) {
    addTown("Borgo Alto", "42.72", "13.26");
    addTown("Colle Rosso", "42.75", "13.4");
    addLastTown();
    EXPECT_EQ(measuredReport(NumberLocale::comma(), "42.7", "13.23"),
              joined(reportLines({"Borgo Alto = Km 3,31"}, {"Colle Rosso = Km 14,96"})));
}

TEST_F(NearbyTownsTest, WalksToTheCornersFromTheEventUnderEveryLocale) {
    for (const NumberLocale& locale : {NumberLocale::point(), NumberLocale::comma()}) {
        earth.walked.clear();
        std::string report;
        NearbyTowns(database, locale, earth, list, harness.errors)
            .eventOnPOI("42.7", "13.23", report);
        EXPECT_EQ(earth.walked, (Texts{"42.7 13.23 90 10", "42.7 13.9 0 10", "42.7 13.23 270 10",
                                       "42.7 13.1 180 10"}));
    }
}

TEST_F(NearbyTownsTest, TakesCornersWithADecimalComma) {
    earth.walks = {
        {"90", "42,7|13,9"}, {"0", "42,8|13,9"}, {"270", "42,7|13,1"}, {"180", "42,6|13,1"}};
    addTownAt("Borgo Alto", "13.3", 3.27);
    addLastTown();
    expectTowns({"Borgo Alto = Km 3.27"}, {});
    EXPECT_EQ(earth.walked[1], "42.7 13.9 0 10");
}

TEST_F(NearbyTownsTest, MeasuresEachTownButTheLastTwiceAsText) {
    addTown("Borgo Alto", "42.70", "13.3");
    addLastTown();
    expectTowns({}, {});
    const Texts once = {"42.7 13.23 0 0 K", "42.7 13.23 42.7 13.3 K"};
    Texts twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(earth.measured, twice);
}

TEST_F(NearbyTownsTest, HandsCoordinatesOverInTheFormOfTheLocale) {
    addTown("Borgo Alto", "42.75", "13.3");
    addLastTown();
    std::string report;
    NearbyTowns(database, NumberLocale::comma(), earth, list, harness.errors)
        .eventOnPOI("42.7", "13.23", report);
    ASSERT_EQ(earth.measured.size(), 4U);
    EXPECT_EQ(earth.measured[1], "42,7 13,23 42,75 13,3 K");
}

TEST_F(NearbyTownsTest, SelectsTheTownsInEitherBandOfTheBox) {
    addTown("Same latitude", "42.7", "99");
    addTown("Same longitude", "10", "13.5");
    addTown("Neither", "10", "99");
    addLastTown();
    earth.distances = {{"99", 4}, {"13.5", 5}};
    expectTowns({"Same latitude = Km 4", "Same longitude = Km 5"}, {});
}

TEST_F(NearbyTownsTest, ComparesTheBoundsAsText) {
    earth.walks = {{"90", "10|99.1"}, {"0", "10.1|99.1"}, {"270", "10|99"}, {"180", "9.9|99"}};
    addTownAt("Between as numbers", "13.3", 3);
    run("update Cities set Latitude = '9.97'");
    addTown("In the band", "1", "99.05");
    earth.distances["99.05"] = 4;
    addTown("Last", "1", "99.05");
    expectTowns({"In the band = Km 4"}, {});
}

TEST_F(NearbyTownsTest, LeavesOutTheLastRow) {
    addTownAt("First", "13.3", 5);
    addTownAt("Second", "13.4", 4);
    addTownAt("Third", "13.5", 3);
    expectTowns({"Second = Km 4", "First = Km 5"}, {});
}

TEST_F(NearbyTownsTest, ShowsNothingOfALoneTown) {
    addTownAt("Borgo Alto", "13.3", 5);
    expectTowns({}, {});
}

TEST_F(NearbyTownsTest, ShowsTheHeadersOfAnEmptyTable) {
    expectTowns({}, {});
    EXPECT_TRUE(earth.measured.empty());
}

TEST_F(NearbyTownsTest, ShowsTheHeadersWithoutTheTable) {
    run("drop table Cities");
    expectTowns({}, {});
}

TEST_F(NearbyTownsTest, PutsATownAtTheEventIntoTheFirstListOnly) {
    addTownAt("Epicentre", "13.3", 0);
    addLastTown();
    expectTowns({"Epicentre = Km 0"}, {});
}

TEST_F(NearbyTownsTest, HoldsTheLimitsOfTheLists) {
    addTownAt("At ten", "13.3", 10);
    addTownAt("Above ten", "13.4", 10.01);
    addTownAt("At twenty", "13.5", 20);
    addTownAt("Above twenty", "13.6", 20.01);
    addLastTown();
    expectTowns({"At ten = Km 10"}, {"Above ten = Km 10.01", "At twenty = Km 20"});
}

TEST_F(NearbyTownsTest, RoundsBeforeItComparesWithTheLimits) {
    addTownAt("Nearly ten", "13.3", 10.004);
    addTownAt("Nearly twenty", "13.4", 20.004);
    addTownAt("Nearly nothing", "13.5", 0.004);
    addLastTown();
    expectTowns({"Nearly nothing = Km 0", "Nearly ten = Km 10"}, {"Nearly twenty = Km 20"});
}

TEST_F(NearbyTownsTest, RoundsHalvesToTheEvenDigit) {
    addTownAt("Down", "13.3", 0.125);
    addTownAt("Up", "13.4", 0.375);
    addLastTown();
    expectTowns({"Down = Km 0.12", "Up = Km 0.38"}, {});
}

TEST_F(NearbyTownsTest, KeepsTheOrderOfTheRowsAtEqualDistances) {
    addTownAt("Zeta", "13.3", 5);
    addTownAt("Alfa", "13.4", 5);
    addTownAt("Beta", "13.5", 2);
    addLastTown();
    expectTowns({"Beta = Km 2", "Zeta = Km 5", "Alfa = Km 5"}, {});
}

TEST_F(NearbyTownsTest, HidesTheBlankTownNearTheOriginOfTheGrid) {
    earth.walks = {{"90", "0|0.1"}, {"0", "0.1|0.1"}, {"270", "0|-0.1"}, {"180", "-0.1|-0.1"}};
    earth.distances = {{"0", 3.14}, {"13.3", 5}};
    addTown("Borgo Alto", "0.05", "13.3");
    addTown("Last", "0.05", "13.4");
    expectTowns({"Borgo Alto = Km 5"}, {});
}

TEST_F(NearbyTownsTest, HasNoNearestTown) {
    addTownAt("Borgo Alto", "13.3", 5);
    addLastTown();
    std::string report;
    NearbyTowns towns(database, NumberLocale::point(), earth, list, harness.errors);
    towns.eventOnPOI("42.7", "13.23", report);
    EXPECT_EQ(list.items.size(), 6U);
    EXPECT_EQ(towns.nearestTownName(), "");
}

TEST_F(NearbyTownsTest, TurnsNamesIntoTheTextOfTheScreen) {
    addTownAt("Forl\xC3\xAC", "13.3", 5);
    addLastTown();
    expectTowns({"Forl\xEC = Km 5"}, {});
}

TEST_F(NearbyTownsTest, ClearsTheListOfTheEventBefore) {
    list.items = {"Town of the event before"};
    expectTowns({}, {});
}

TEST_F(NearbyTownsTest, EmptiesTheReportAndKeepsTheListWithoutAPosition) {
    NearbyTowns towns(database, NumberLocale::point(), earth, list, harness.errors);
    list.items = {"Town of the event before"};
    for (const auto& [latitude, longitude] :
         {std::pair("", "13.23"), std::pair("42.7", ""), std::pair("", "")}) {
        std::string report = "report of the event before";
        towns.eventOnPOI(latitude, longitude, report);
        EXPECT_EQ(report, "");
    }
    EXPECT_EQ(list.items, Texts{"Town of the event before"});
    EXPECT_TRUE(earth.walked.empty());
}

TEST_F(NearbyTownsTest, TakesAPositionThatIsNoNumberForZero) {
    std::string report;
    NearbyTowns(database, NumberLocale::point(), earth, list, harness.errors)
        .eventOnPOI("n/a", "1.2.3", report);
    EXPECT_EQ(earth.walked.front(), "0 0 90 10");
    EXPECT_EQ(report, joined(reportLines({}, {})));
}

TEST_F(NearbyTownsTest, CountsATownWithoutAPositionAsOneAtZero) {
    run("insert into Cities values ('Nowhere', '', '13.3', '')");
    addLastTown();
    earth.distances["13.3"] = 5;
    expectTowns({"Nowhere = Km 5"}, {});
    EXPECT_EQ(earth.measured[1], "42.7 13.23 0 13.3 K");
}

TEST_F(NearbyTownsTest, ReportsANameWithABarAndShowsItsPieces) {
    addTownAt("Borgo|Alto", "13.3", 5);
    addLastTown();
    harness.prompts.expectRuntimeError(
        "Number: 9\r\nDescription: Subscript out of range\r\nModule: Form - panel\r\n"
        "Routine: eventOnPOI\r\n",
        ErrorAnswer::Ignore);
    expectTowns({"Borgo = Km 0", "Alto = Km 5"}, {});
}

TEST_F(NearbyTownsTest, ReportsBothMissingPartsOfAnEmptyPiece) {
    addTownAt("||Alto", "13.3", 5);
    addLastTown();
    for (int error = 0; error < 4; ++error)
        harness.prompts.expectRuntimeError("Number: 9\r\n", ErrorAnswer::Ignore);
    expectTowns({"Alto = Km 5"}, {});
}

TEST_F(NearbyTownsTest, ReportsANameWithTheFieldMark) {
    addTownAt("Borgo%%Alto", "13.3", 15);
    addTownAt("Colle%%", "13.4", 16);
    addLastTown();
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Ignore);
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Ignore);
    expectTowns({}, {"Borgo = Km 0", "Colle = Km 0"});
}

TEST_F(NearbyTownsTest, ReportsAWalkThatLeadsNowhere) {
    earth.walks["90"] = "";
    addTownAt("Borgo Alto", "13.3", 5);
    addLastTown();
    harness.prompts.expectRuntimeError("Number: 13\r\n", ErrorAnswer::Ignore);
    expectTowns({}, {});
}

TEST_F(NearbyTownsTest, LosesNothingOfManyTowns) {
    run("with recursive n(i) as (select 0 union all select i + 1 from n where i < 20000) "
        "insert into Cities select 'T' || i, '42.7', '13.3', '' from n");
    earth.distances["13.3"] = 5;
    std::string report;
    NearbyTowns(database, NumberLocale::point(), earth, list, harness.errors)
        .eventOnPOI("42.7", "13.23", report);
    ASSERT_EQ(list.items.size(), 20005U);
    EXPECT_EQ(list.items[2], "T0 = Km 5");
    EXPECT_EQ(list.items[20001], "T19999 = Km 5");
}

} // namespace
} // namespace tremor
