#include "journeys/map_journey.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace tremor::journeys {
namespace {

constexpr std::uint32_t land = 0xF6F2E9;
constexpr std::uint32_t sea = 0xD3E2EC;
constexpr std::uint32_t legendOnly = 0x9933FF; // 50 to 100 km: no event of the map has it
constexpr std::uint32_t faultLine = 0xC03020;
constexpr std::uint32_t pinColour = 0xD8392B; // of a station

struct Shift {
    int x = 0;
    int y = 0;
};

// The view after the map was dragged by some pixels.
MapView dragged(const MapView& view, const Shift& shift) {
    const Point middle = projected(view.centre, view.zoom);
    const double world = 256 * std::exp2(view.zoom);
    const double turns = std::numbers::pi * (1 - 2 * (middle.y - shift.y) / world);
    return {{std::atan(std::sinh(turns)) * 180 / std::numbers::pi,
             (middle.x - shift.x) / world * 360 - 180},
            view.zoom};
}

class MapOnScreen : public MapJourney {
  protected:
    using MapJourney::MapJourney;
    void SetUp() override { showFirstView(); }

    void clickAt(const Point& point, int button = 1) {
        journey_.click(static_cast<int>(std::lround(point.x)),
                       static_cast<int>(std::lround(point.y)), button);
    }
    // The rows that the table must have for a view, from those of the first view, which has all.
    std::vector<std::vector<std::string>> rowsOf(const MapView& view,
                                                 const std::vector<Row>& all) const {
        std::vector<std::vector<std::string>> expected;
        for (std::size_t i = 0; i < events().size(); ++i)
            if (inView(events()[i].place, view))
                expected.push_back(all.at(i).time);
        return expected;
    }
    bool rowIsSelected(std::size_t index) {
        const std::vector<Row> now = rows();
        for (std::size_t i = 0; i < now.size(); ++i)
            if (now[i].selected != (i == index))
                return false;
        return index < now.size();
    }
    long pixelsNear(const Place& place, const MapView& view, std::uint32_t colour) {
        const Point point = onScreen(place, view);
        return look().count(
            {static_cast<int>(point.x) - 12, static_cast<int>(point.y) - 32, 24, 34}, colour);
    }
};

TEST_F(MapOnScreen, EventsStandWhereTheProjectionPutsThemOnceTheyAreInRange) {
    EXPECT_EQ(look().count(map_, oldEvent().colour), 0);
    EXPECT_EQ(rows().size(), events().size());

    journey_.change("catalogue.sqlite",
                    "update Events set UTC = '" + timeAgo(200) + "' where Depth = 70");
    journey_.key("ctrl+F5");
    ASSERT_TRUE(soon([&] {
        return standsAt(look(), onScreen(oldEvent().place, firstView), oldEvent().colour);
    })) << journey_.activityLog();
    EXPECT_TRUE(allStandAt(firstView));
    EXPECT_TRUE(soon([&] { return rows().size() == events().size() + 1; }));
}

TEST_F(MapOnScreen, ADragTakesTheEventsAlongAndTheTableFollows) {
    ASSERT_TRUE(soon([&] { return rows().size() == events().size(); }));
    const std::vector<Row> all = rows();
    const int x = map_.x + map_.width / 2 - 40; // no event near it
    const int y = map_.y + map_.height / 2 - 140;
    journey_.movePointer(x, y);
    ASSERT_TRUE(soon([&] { return !look().ink(coordinates_).empty(); }));
    const auto before = look().ink(coordinates_);

    const Shift shift{-130, 120};
    journey_.drag(x, y, x + shift.x, y + shift.y);
    const MapView after = dragged(firstView, shift);
    EXPECT_TRUE(allStandAt(after));
    const auto expected = rowsOf(after, all);
    ASSERT_LT(expected.size(), all.size());
    ASSERT_GT(expected.size(), 0U);
    EXPECT_TRUE(soon([&] { return times(rows()) == expected; }))
        << rows().size() << " rows, not " << expected.size();

    // The place under the pointer went with it.
    journey_.movePointer(x + 10, y);
    EXPECT_TRUE(soon([&] { return look().ink(coordinates_) != before; }));
    journey_.movePointer(x + shift.x, y + shift.y);
    EXPECT_TRUE(soon([&] { return look().ink(coordinates_) == before; }));

    journey_.drag(x + shift.x, y + shift.y, x, y);
    EXPECT_TRUE(allStandAt(firstView));
    EXPECT_TRUE(soon([&] { return times(rows()) == times(all); }));
}

TEST_F(MapOnScreen, TheViewIsThereAgainAtTheNextStart) {
    ASSERT_TRUE(soon([&] { return rows().size() == events().size(); }));
    const std::vector<Row> all = rows();
    const int x = map_.x + map_.width / 2 - 40; // no event near it
    const int y = map_.y + map_.height / 2 - 140;
    const Shift shift{-130, 120};
    journey_.drag(x, y, x + shift.x, y + shift.y);
    const MapView left = dragged(firstView, shift);
    const auto expected = rowsOf(left, all);
    ASSERT_TRUE(soon([&] { return times(rows()) == expected; }));
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(longEnough), 0);

    constexpr double pixel = 360.0 / 256 / 32; // degrees of longitude at zoom 5
    const auto settings = journey_.settings();
    EXPECT_NEAR(std::stod(settings.at("CenterLatitude")), left.centre.latitude, 2 * pixel);
    EXPECT_NEAR(std::stod(settings.at("CenterLongitude")), left.centre.longitude, 2 * pixel);
    EXPECT_EQ(settings.at("Zoom"), "5");
    startProgram();
    EXPECT_TRUE(soon([&] {
        findSurfaces();
        return map_.width > 0 && missingFrom(left).empty();
    })) << missingFrom(left);
}

TEST_F(MapOnScreen, TheWheelZoomsAroundThePointerAndTheTableFollows) {
    ASSERT_TRUE(soon([&] { return rows().size() == events().size(); }));
    const std::vector<Row> all = rows();
    // Two events leave the view, the others stand clear of what lies on the map.
    const Point fixed{map_.x + map_.width / 2.0 - 160, map_.y + map_.height / 2.0 - 20};
    clickAt(fixed, 4);
    const Shift fromMiddle{static_cast<int>(map_.x + map_.width / 2.0 - fixed.x),
                           static_cast<int>(map_.y + map_.height / 2.0 - fixed.y)};
    const MapView closer{
        dragged(dragged(firstView, fromMiddle), {-fromMiddle.x / 2, -fromMiddle.y / 2}).centre, 6};
    EXPECT_TRUE(allStandAt(closer));
    const auto expected = rowsOf(closer, all);
    ASSERT_LT(expected.size(), all.size());
    EXPECT_TRUE(soon([&] { return times(rows()) == expected; }))
        << rows().size() << " rows, not " << expected.size();

    clickAt(fixed, 5);
    EXPECT_TRUE(allStandAt(firstView));
    EXPECT_TRUE(soon([&] { return times(rows()) == times(all); }));
}

TEST_F(MapOnScreen, AClickOnAMarkerSelectsItsRow) {
    ASSERT_TRUE(soon([&] { return rows().size() == events().size(); }));
    const std::size_t chosen = 3;
    clickAt(onScreen(events()[chosen].place, firstView));
    EXPECT_TRUE(soon([&] { return rowIsSelected(chosen); })) << journey_.activityLog();
    // It comes to the middle of the map.
    EXPECT_TRUE(allStandAt({events()[chosen].place, firstView.zoom}));
}

TEST_F(MapOnScreen, AClickOnARowBringsItsEventToTheMiddle) {
    ASSERT_TRUE(soon([&] { return rows().size() == events().size(); }));
    const int defaultZoom = 4;
    for (const std::size_t chosen : {std::size_t{2}, std::size_t{1}}) {
        clickRow(chosen);
        const MapView there{events()[chosen].place, defaultZoom};
        EXPECT_TRUE(soon([&] {
            return standsAt(look(), {map_.x + map_.width / 2.0, map_.y + map_.height / 2.0},
                            events()[chosen].colour);
        })) << chosen;
        EXPECT_TRUE(allStandAt(there));
        EXPECT_TRUE(soon([&] { return rowIsSelected(chosen); })) << chosen;
    }
}

TEST_F(MapOnScreen, LegendAndFaultsComeAndGo) {
    EXPECT_EQ(look().count(map_, legendOnly), 0);
    EXPECT_EQ(look().count(map_, faultLine), 0);

    journey_.key("alt+g");
    EXPECT_TRUE(soon([&] { return look().count(map_, legendOnly) > 50; }));
    journey_.key("alt+u");
    EXPECT_TRUE(soon([&] { return look().count(map_, faultLine) > 10; }));
    journey_.key("alt+g");
    EXPECT_TRUE(soon([&] { return look().count(map_, legendOnly) == 0; }));
    EXPECT_GT(look().count(map_, faultLine), 10);
    journey_.key("alt+u");
    EXPECT_TRUE(soon([&] { return look().count(map_, faultLine) == 0; }));
    EXPECT_TRUE(allStandAt(firstView));
}

TEST_F(MapOnScreen, TheLastEventHasAMapOfItsOwn) {
    EXPECT_TRUE(soon([&] {
        const ScreenPicture picture = look();
        const long area = static_cast<long>(lastEventMap_.width) * lastEventMap_.height;
        return picture.count(lastEventMap_, land) > area / 10 &&
               picture.count(lastEventMap_, land) + picture.count(lastEventMap_, sea) > area / 2;
    }));
}

TEST_F(MapOnScreen, TheSavedLegendIsShownAtTheNextStart) {
    journey_.key("alt+g");
    ASSERT_TRUE(soon([&] { return look().count(map_, legendOnly) > 50; }));
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(longEnough), 0);
    EXPECT_EQ(journey_.settings().at("Legend"), "1");
    showFirstView();
    EXPECT_TRUE(soon([&] { return look().count(map_, legendOnly) > 50; }));
}

class StationsOnScreen : public MapOnScreen {
  protected:
    void SetUp() override {
        sqlite3* raw = nullptr;
        sqlite3_open(journey_.file("stations.sqlite").c_str(), &raw);
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> connection(raw, sqlite3_close);
        ASSERT_EQ(sqlite3_exec(raw,
                               "create table Stations(Station_Code text, Latitude text, Longitude "
                               "text); insert into Stations values('ST1', '45.5', '12.0'), "
                               "('it''s', '41.0', '5.0'), ('<b>', 'NaN', '')",
                               nullptr, nullptr, nullptr),
                  SQLITE_OK);
        MapOnScreen::SetUp();
    }
    StationsOnScreen() : MapOnScreen({"PathDbStationKit=stations.sqlite"}) {}
};

TEST_F(StationsOnScreen, StationsComeAndGo) {
    const Place first{45.5, 12};
    const Place second{41, 5};
    EXPECT_EQ(pixelsNear(first, firstView, pinColour), 0);
    journey_.key("alt+o");
    EXPECT_TRUE(soon([&] { return pixelsNear(first, firstView, pinColour) > 100; }));
    EXPECT_GT(pixelsNear(second, firstView, pinColour), 100);
    EXPECT_TRUE(allStandAt(firstView));
    journey_.key("alt+o");
    EXPECT_TRUE(soon([&] { return pixelsNear(first, firstView, pinColour) == 0; }));
    EXPECT_EQ(pixelsNear(second, firstView, pinColour), 0);
    EXPECT_TRUE(allStandAt(firstView));
}

} // namespace
} // namespace tremor::journeys
