#include "journeys/view_journey.h"

#include "support/texts.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace tremor::journeys {
namespace {

constexpr char catalogue[] = "catalogue.sqlite";
constexpr std::uint32_t barColour = 0x6464C8;
constexpr int secondsOfAnHour = 3600;

// Days between the events, and the magnitude of each, by its depth.
struct Change {
    const char* depth;
    int minutesAgo;
    const char* magnitude;
};
constexpr int day = 24 * 60;
constexpr Change changes[] = {{"120", 30, "4"},     {"3", day + 40, "3.2"}, {"8", 3 * day, "2.1"},
                              {"15", 4 * day, "5"}, {"30", 6 * day, "4"},   {"70", 8 * day, "1.5"}};

std::vector<std::string> withRange(std::vector<std::string> more, int hours) {
    more.push_back("RangeHoursOfEventsInMap=" + std::to_string(hours));
    return more;
}

std::time_t timeOf(const std::string& utc) {
    std::tm parts{};
    if (strptime(utc.c_str(), "%Y-%m-%d %H:%M:%S", &parts) == nullptr)
        throw std::runtime_error("no time: " + utc);
    return timegm(&parts);
}

} // namespace

std::uint32_t colourOfDepth(double depth) {
    constexpr std::pair<double, std::uint32_t> colours[] = {
        {5, 0xFF9900}, {10, 0xFFFF00}, {20, 0x33FF00}, {50, 0x0033FF}, {100, 0x9933FF}};
    for (const auto& [bound, colour] : colours)
        if (depth <= bound)
            return colour;
    return 0xFF0000;
}

ViewJourney::ViewJourney(std::vector<std::string> moreSettings)
    : MapJourney(withRange(std::move(moreSettings), rangeHours)) {
    for (const Change& change : changes)
        journey_.change(catalogue, "update Events set UTC = '" + timeAgo(change.minutesAgo) +
                                       "', Magnitude = " + change.magnitude +
                                       " where Depth = " + change.depth);
}

void ViewJourney::showEverything() {
    startProgram();
    const std::vector<std::string> times = selected(everything);
    ASSERT_TRUE(soon([&] {
        findSurfaces();
        return map_.width > 0 && missingMarkers(everything, firstView).empty() &&
               rows().size() == times.size();
    })) << missingMarkers(everything, firstView)
        << rows().size() << " rows\n"
        << journey_.activityLog();
    const std::vector<Row> shown = rows();
    for (std::size_t i = 0; i < times.size(); ++i)
        ink_[times[i]] = shown.at(i).time;
    ASSERT_EQ(ink_.size(), times.size());
}

void ViewJourney::endProgram() {
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+f x");
    ASSERT_EQ(journey_.waitForExit(longEnough), 0);
}

std::vector<std::string> ViewJourney::selected(const std::string& condition) const {
    return testing::linesOf(journey_.queryOne(
        catalogue, "select ifnull(group_concat(UTC, char(10)), '') from (select UTC from Events "
                   "where " +
                       condition + " order by UTC desc)"));
}

::testing::AssertionResult ViewJourney::tableShows(const std::string& condition) {
    std::vector<std::vector<std::string>> expected;
    for (const std::string& utc : selected(condition))
        expected.push_back(ink_.at(utc));
    if (soon([&] { return times(rows()) == expected; }))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "the table has " << rows().size() << " rows, not the "
                                         << expected.size() << " of " << condition << "\n";
}

::testing::AssertionResult ViewJourney::shows(const std::string& condition, const MapView& view) {
    if (const auto table = tableShows(condition); !table)
        return table;
    std::string missing;
    if (soon([&] { return (missing = missingMarkers(condition, view)).empty(); }))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "on the map:" << missing;
}

// The newest event may stand there as a moving picture.
std::string ViewJourney::missingMarkers(const std::string& condition, const MapView& view) const {
    constexpr int reach = 5; // pixels: inside of the smallest circle
    constexpr long enough = 8;
    std::string wrong;
    const ScreenPicture picture = look();
    const std::vector<std::string> wanted = selected(condition);
    for (const EventRow& event : journey_.events(catalogue)) {
        const Place place{std::stod(event.latitude), std::stod(event.longitude)};
        if (!inView(place, view))
            continue;
        const Point at = onScreen(place, view);
        const Rectangle around{static_cast<int>(at.x) - reach, static_cast<int>(at.y) - reach,
                               2 * reach, 2 * reach};
        const bool stands = picture.count(around, colourOfDepth(std::stod(event.depth))) +
                                picture.count(around, lastEventColour) >
                            enough;
        if (stands != (std::find(wanted.begin(), wanted.end(), event.utc) != wanted.end()))
            wrong +=
                " " + event.latitude + "," + event.longitude + (stands ? " stands" : " missing");
    }
    return wrong;
}

Rectangle ViewJourney::chart() const {
    const Rectangle& grid = grid_; // its last row is beside the chart
    return look().surfaceAround(map_.x + map_.width / 2, grid.y + grid.height / 2);
}

::testing::AssertionResult ViewJourney::chartShows(const std::string& condition, std::time_t start,
                                                   std::time_t end) {
    std::string wrong;
    if (soon([&] { return (wrong = wrongBars(condition, start, end)).empty(); }))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "in the chart:" << wrong;
}

::testing::AssertionResult ViewJourney::chartShowsLatestHours(const std::string& condition) {
    const std::time_t now = std::time(nullptr);
    return chartShows(condition, now - std::time_t{rangeHours} * secondsOfAnHour, now);
}

// Axis at 45 pixels, 20 pixels free at the right; the bars stand 25 pixels above the lower edge and
// ten magnitudes take what is left below 5 pixels and 21. Bars are two pixels wide.
std::string ViewJourney::wrongBars(const std::string& condition, std::time_t start,
                                   std::time_t end) const {
    constexpr double exact = 1.6;
    const Rectangle inside = chart();
    const ScreenPicture picture = look();
    const double base = inside.height - 25;
    const double step = (inside.height - 21 - 5) / 10.0;
    const double pixelsPerSecond = (inside.width - 20 - 45) / static_cast<double>(end - start);
    struct Bar {
        double x = 0;
        double top = 0;
    };
    std::vector<Bar> expected;
    for (const std::string& utc : selected(condition)) {
        const double magnitude = std::stod(
            journey_.queryOne(catalogue, "select Magnitude from Events where UTC = '" + utc + "'"));
        expected.push_back({45 + static_cast<double>(timeOf(utc) - start) * pixelsPerSecond,
                            base - magnitude * step});
    }
    std::sort(expected.begin(), expected.end(),
              [](const Bar& a, const Bar& b) { return a.x < b.x; });
    std::vector<Bar> found;
    for (int x = 0; x < inside.width; ++x) {
        const Rectangle column{inside.x + x, inside.y, 1, inside.height};
        const auto spot = picture.spot(column, barColour);
        if (!spot)
            continue;
        const double top = spot->y - inside.y - static_cast<double>(spot->pixels) / 2;
        if (found.empty() || x - found.back().x > 1.5)
            found.push_back({static_cast<double>(x), top});
    }
    std::string wrong;
    if (found.size() != expected.size())
        return " " + std::to_string(found.size()) + " bars, not " + std::to_string(expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        if (std::abs(found[i].x + 1 - expected[i].x) > exact ||
            std::abs(found[i].top - expected[i].top) > exact)
            wrong += " " + std::to_string(found[i].x + 1) + "," + std::to_string(found[i].top) +
                     " not " + std::to_string(expected[i].x) + "," +
                     std::to_string(expected[i].top);
    return wrong;
}

bool ViewJourney::waitForBox(const std::string& title) {
    return soon([&] { return isOpen(title); });
}

bool ViewJourney::waitForNoBox(const std::string& title) {
    return soon([&] { return !isOpen(title); });
}

std::string ViewJourney::workspaceValue(const std::string& column, const std::string& name) const {
    return journey_.queryOne(catalogue,
                             "select " + column + " from Workspace where Name = '" + name + "'");
}

std::string ViewJourney::count(const std::string& table) const {
    return journey_.queryOne(catalogue, "select count(*) from " + table);
}

void ViewJourney::fill(const std::string& keys, const std::string& text) {
    journey_.key(keys + " ctrl+a");
    journey_.type(text);
}

void ViewJourney::search() {
    journey_.key("alt+s");
    journey_.waitForNoWindow(searchWindow, 60);
}

} // namespace tremor::journeys
