#include "journeys/view_journey.h"

#include <array>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char datesOff[] = "alt+e";
constexpr char lowerLeft[] = "alt+o";
constexpr char upperRight[] = "alt+u";

class SearchJourney : public ViewJourney {
  protected:
    using ViewJourney::ViewJourney;
    void SetUp() override { showEverything(); }

    static std::time_t daysAgo(int days) { return std::time(nullptr) - days * 24L * 3600; }
    static std::string dayText(std::time_t time, const char* format) {
        std::tm parts{};
        gmtime_r(&time, &parts);
        std::array<char, 16> text{};
        return {text.data(), std::strftime(text.data(), text.size(), format, &parts)};
    }
    static std::time_t midnight(std::time_t time) { return time - time % (24L * 3600); }

    void fillDates(std::time_t first, std::time_t last) {
        journey_.key("alt+r");
        journey_.type(dayText(first, "%Y%m%d"));
        journey_.key("alt+d");
        journey_.type(dayText(last, "%Y%m%d"));
    }
    void fillMagnitudes(const std::string& smallest, const std::string& largest) {
        fill("alt+i", smallest);
        fill("alt+x", largest);
    }
    void chooseFirstSearch() {
        const Rectangle window = journey_.geometry(searchWindow);
        journey_.click(window.x + 150, window.y + 70);
    }
    // Boxes that take no number are grey.
    bool distanceIsAsked() {
        const Rectangle window = journey_.geometry(searchWindow);
        return look().at(window.x + 540, window.y + 310) == 0xFFFFFF;
    }
    // A mnemonic presses its button a moment later.
    bool nameFirstSearch(const std::string& name, const std::string& end) {
        chooseFirstSearch();
        journey_.key("alt+n");
        const Rectangle window = journey_.geometry(searchWindow);
        const Rectangle cell{window.x + 55, window.y + 62, 150, 16};
        constexpr std::uint32_t paper = 0xFFFFFF;
        if (!soon([&] { return look().count(cell, paper) > 50; }, std::chrono::seconds(10)))
            return false;
        journey_.type(name);
        journey_.key(end);
        return true;
    }
    std::string lastSearch(const std::string& column) const {
        return journey_.queryOne(catalogue,
                                 "select " + column + " from Search order by _ desc limit 1");
    }
};

TEST_F(SearchJourney, ByDateShowsTheEventsOfTheDaysInTableMapAndChart) {
    EXPECT_FALSE(searchModeIsOn());
    const std::time_t first = midnight(daysAgo(5));
    const std::time_t last = midnight(daysAgo(2));
    openSearch();
    fillDates(first, last);
    search();
    const std::string condition = "UTC >= '" + dayText(first, "%Y-%m-%d") + "' and UTC <= '" +
                                  dayText(last, "%Y-%m-%d") + " 23:59:59'";
    ASSERT_EQ(selected(condition).size(), 2U);
    EXPECT_TRUE(shows(condition));
    EXPECT_TRUE(chartShows(condition, first, last + 24L * 3600 - 1));
    EXPECT_TRUE(soon([&] { return searchModeIsOn(); }));
    EXPECT_EQ(count("Search"), "1");

    // Leaving search mode brings the operator's tools back.
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+r");
    EXPECT_TRUE(soon([&] { return !searchModeIsOn(); }));
}

TEST_F(SearchJourney, ByMagnitudeShowsTheEventsOfTheLatestHours) {
    openSearch();
    journey_.key(datesOff);
    fillMagnitudes("2.1", "4");
    search();
    const std::string condition = "Magnitude >= 2.1 and Magnitude <= 4";
    ASSERT_EQ(selected(condition).size(), 4U);
    EXPECT_TRUE(shows(condition));
    EXPECT_TRUE(chartShowsLatestHours(condition));
    EXPECT_TRUE(soon([&] { return searchModeIsOn(); }));
}

TEST_F(SearchJourney, ByTypedCornersShowsTheEventsOfTheAreaAndItsDepths) {
    openSearch();
    journey_.key(std::string(datesOff) + " alt+p");
    fill(lowerLeft, "37.5");
    fill("Tab", "8");
    fill(upperRight, "44.5");
    fill("Tab", "15.5");
    search();
    const std::string area = "Latitude >= 37.5 and Latitude <= 44.5 and Longitude >= 8 and "
                             "Longitude <= 15.5";
    const std::string condition = area + " and Depth >= 0 and Depth <= 100";
    ASSERT_EQ(selected(condition).size() + 1, selected(area).size());
    EXPECT_TRUE(shows(condition));
    EXPECT_TRUE(chartShowsLatestHours(condition));
    EXPECT_TRUE(soon([&] { return searchModeIsOn(); }));
}

TEST_F(SearchJourney, TakesTheAreaFromTheMap) {
    // One step closer: the events in the east are out of sight.
    journey_.click(map_.x + 40, map_.y + map_.height / 2, 4);
    ASSERT_TRUE(soon([&] { return rows().size() < selected(everything).size(); }));
    openSearch();
    journey_.key(std::string(datesOff) + " alt+p");
    journey_.key("alt+m");
    // The corners are there once the map has answered; a saved search keeps them.
    ASSERT_TRUE(soon([&] {
        journey_.key("alt+a");
        return lastSearch("MinLat || MaxLat || MinLon || MaxLon").size() > 12;
    }));
    search();
    const std::string condition = "Latitude >= " + lastSearch("MinLat") +
                                  " and Latitude <= " + lastSearch("MaxLat") +
                                  " and Longitude >= " + lastSearch("MinLon") +
                                  " and Longitude <= " + lastSearch("MaxLon") + " and Depth <= 100";
    const std::size_t found = selected(condition).size();
    EXPECT_GT(found, 0U) << condition;
    EXPECT_LT(found, selected("Depth <= 100").size());
    EXPECT_TRUE(tableShows(condition));
    // The size of the map on the screen at 64 pixels a degree of longitude.
    EXPECT_NEAR(std::stod(lastSearch("MaxLon")) - std::stod(lastSearch("MinLon")),
                map_.width * 360.0 / (256 * 64), 0.1);
}

// A square whose corners lie at the distance: an event within the distance beside it is left out.
TEST_F(SearchJourney, ByDistanceShowsTheEventsOfTheSquareAroundAPlace) {
    openSearch();
    journey_.key(std::string(datesOff) + " alt+p alt+l");
    ASSERT_TRUE(soon([&] { return distanceIsAsked(); }));
    fill("alt+k", "500");
    fill(lowerLeft, "44");
    fill("Tab", "10");
    search();
    const std::string condition = "Depth in (3, 70)";
    EXPECT_TRUE(shows(condition));
    EXPECT_TRUE(chartShowsLatestHours(condition));
    EXPECT_TRUE(soon([&] { return searchModeIsOn(); }));
}

TEST_F(SearchJourney, AsksBeforeItShowsThreeHundredEvents) {
    const std::string insert =
        "insert into Events(UTC, Latitude, Longitude, Depth, Magnitude, Source) select '" +
        timeAgo(9 * 24 * 60) + "', 42, 12, 10, 0.5, 'test' from n";
    const auto rowsOf = [](int count) {
        return "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
               std::to_string(count) + ") ";
    };
    journey_.change(catalogue, rowsOf(299) + insert);
    openSearch();
    journey_.key(datesOff);
    fillMagnitudes("0.5", "0.5");
    search();
    EXPECT_TRUE(soon([&] { return searchModeIsOn(); }));

    journey_.change(catalogue, rowsOf(1) + insert);
    openSearch();
    journey_.key(datesOff);
    fillMagnitudes("0.5", "0.5");
    journey_.key("alt+s");
    ASSERT_TRUE(waitForBox());
    journey_.key("alt+n");
    ASSERT_TRUE(waitForNoBox());
    journey_.waitForWindow(searchWindow, 60); // it stays for another try
    journey_.key("alt+s");
    ASSERT_TRUE(waitForBox());
    journey_.key("alt+y");
    journey_.waitForNoWindow(searchWindow, 60);
    EXPECT_TRUE(soon([&] { return count("Search") == "3"; }));
}

TEST_F(SearchJourney, RefusesDatesUpsideDownAndGoesOn) {
    openSearch();
    fillDates(daysAgo(2), daysAgo(5));
    journey_.key("alt+s");
    ASSERT_TRUE(waitForBox("Error..."));
    journey_.key("Return");
    ASSERT_TRUE(waitForNoBox("Error..."));
    EXPECT_TRUE(isOpen(searchWindow));
    journey_.key("Escape"); // the keyboard has come back to it
    journey_.waitForNoWindow(searchWindow, 60);
    EXPECT_FALSE(searchModeIsOn());
    EXPECT_TRUE(tableShows(everything));
    EXPECT_TRUE(menuOpens());
}

TEST_F(SearchJourney, RefusesASearchWithoutAFilter) {
    openSearch();
    journey_.key(datesOff);
    journey_.key("alt+s");
    ASSERT_TRUE(waitForBox("Insufficient parameters..."));
    journey_.key("Return");
    ASSERT_TRUE(waitForNoBox("Insufficient parameters..."));
    EXPECT_TRUE(isOpen(searchWindow));
}

TEST_F(SearchJourney, KeepsASearchUnderAName) {
    const std::time_t first = midnight(daysAgo(5));
    const std::time_t last = midnight(daysAgo(2));
    openSearch();
    fillDates(first, last);
    fillMagnitudes("2", "6");
    journey_.key("alt+a");
    ASSERT_TRUE(soon([&] { return count("Search") == "1"; }));
    EXPECT_EQ(lastSearch("StartDate"), dayText(first, "%Y-%m-%d"));
    EXPECT_EQ(lastSearch("EndDate"), dayText(last, "%Y-%m-%d"));
    EXPECT_EQ(lastSearch("RangeDate || RangeMag || RangeInMap"), "110");

    ASSERT_TRUE(soon([&] {
        return nameFirstSearch("calm days", "Return") && lastSearch("NameSearch") == "calm days";
    }));
    // A name that a statement cannot hold, and one given up.
    EXPECT_TRUE(nameFirstSearch("it's", "Return"));
    EXPECT_TRUE(nameFirstSearch("given up", "Tab"));
    journey_.key("Escape");
    journey_.waitForNoWindow(searchWindow, 60);
    EXPECT_EQ(lastSearch("NameSearch"), "calm days");

    endProgram();
    showEverything();
    openSearch();
    chooseFirstSearch();
    search();
    const std::string condition = "UTC >= '" + dayText(first, "%Y-%m-%d") + "' and UTC <= '" +
                                  dayText(last, "%Y-%m-%d") +
                                  " 23:59:59' and Magnitude >= 2 and Magnitude <= 6";
    ASSERT_EQ(selected(condition).size(), 2U);
    EXPECT_TRUE(shows(condition));
    EXPECT_EQ(count("Search"), "2");

    openSearch();
    chooseFirstSearch();
    journey_.key("alt+t");
    ASSERT_TRUE(soon([&] { return count("Search") == "1"; }));
    EXPECT_EQ(journey_.queryOne(catalogue, "select count(*) from Search where NameSearch = "
                                           "'calm days'"),
              "0");
}

} // namespace
} // namespace tremor::journeys
