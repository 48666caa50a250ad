#include "journeys/map_journey.h"

#include "bench_catalogue.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <numbers>
#include <optional>
#include <stdexcept>

namespace tremor::journeys {
namespace {

constexpr int twipsPerPixel = 15; // at 96 dpi
constexpr int menuHeight = 20;    // pixels, about
constexpr int utcColumnWidth = 115;
constexpr double exact = 2; // pixels that a circle may stand beside its place
constexpr std::uint32_t selectionColour = 0x80FFFF;

std::vector<std::string> withDefaults(std::vector<std::string> more) {
    std::vector<std::string> lines{"Path=catalogue.sqlite",
                                   "StartupLogo=1",
                                   "CenterLatitude=42",
                                   "CenterLongitude=12",
                                   "Zoom=5",
                                   "RangeHoursOfEventsInMap=24",
                                   "PrimaryPollEvery=5",
                                   "AlternatePollEvery=5",
                                   "LocalPollEvery=5"};
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::string quoted(const std::string& value) {
    std::string text = "'";
    for (const char c : value)
        text += c == '\'' ? std::string("''") : std::string(1, c);
    return text + "'";
}

Rectangle onScreenOf(const Rectangle& window, const FormRectangle& parent,
                     const FormRectangle& child) {
    return {window.x + (parent.left + child.left) / twipsPerPixel,
            window.y + menuHeight + (parent.top + child.top) / twipsPerPixel,
            child.width / twipsPerPixel, child.height / twipsPerPixel};
}

} // namespace

Point projected(const Place& place, int zoom) {
    const double world = 256 * std::exp2(zoom);
    const double latitude = place.latitude * std::numbers::pi / 180;
    return {world * (place.longitude + 180) / 360,
            world * (0.5 - std::log(std::tan(std::numbers::pi / 4 + latitude / 2)) /
                               (2 * std::numbers::pi))};
}

const std::vector<KnownEvent>& MapJourney::events() {
    static const std::vector<KnownEvent> known{{{41, 15}, "120", 30, 0xFF0000},
                                               {{44, 10}, "3", 60, 0xFF9900},
                                               {{38, 13}, "8", 90, 0xFFFF00},
                                               {{40, 9}, "15", 120, 0x33FF00},
                                               {{43.5, 5}, "30", 150, 0x0033FF}};
    return known;
}

const KnownEvent& MapJourney::oldEvent() {
    static const KnownEvent old{{45, 14}, "70", 2 * 24 * 60, 0x9933FF};
    return old;
}

MapJourney::MapJourney(std::vector<std::string> moreSettings,
                       const std::vector<std::string>& locators,
                       const std::vector<std::string>& serviceOptions)
    : journey_(withDefaults(std::move(moreSettings)), locators, serviceOptions) {
    makeCatalogue(journey_.file("catalogue.sqlite"), 0);
    for (const KnownEvent& event : events())
        addEvent(event);
    addEvent(oldEvent());
}

std::string MapJourney::timeAgo(int minutes) {
    const std::time_t time = std::time(nullptr) - minutes * 60L;
    std::tm parts{};
    gmtime_r(&time, &parts);
    std::string text(32, '\0');
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S.000", &parts));
    return text;
}

void MapJourney::addEvent(const KnownEvent& event) {
    addRow({timeAgo(event.minutesAgo), std::to_string(event.place.latitude),
            std::to_string(event.place.longitude), event.depth, "4", "test"});
}

void MapJourney::addRow(const std::vector<std::string>& values) {
    std::string list;
    for (const std::string& value : values)
        list += (list.empty() ? "" : ", ") + quoted(value);
    journey_.change("catalogue.sqlite",
                    "insert into Events(UTC, Latitude, Longitude, Depth, Magnitude, Source) "
                    "values (" +
                        list + ")");
}

void MapJourney::startProgram() {
    journey_.startProgram();
    journey_.waitForWindow(" - Database: catalogue.sqlite", 60);
}

void MapJourney::showFirstView() {
    startProgram();
    // The window takes its stored size while it starts.
    ASSERT_TRUE(soon([&] {
        findSurfaces();
        return map_.width > 0 && missingFrom(firstView).empty();
    })) << missingFrom(firstView)
        << "\n"
        << journey_.activityLog();
}

void MapJourney::findSurfaces() {
    const Rectangle window = journey_.geometry(mainWindow);
    const PanelLayout layout = layoutPanel(
        {window.width * twipsPerPixel, window.height * twipsPerPixel}, menuHeight * twipsPerPixel);
    const ScreenPicture picture = look();
    const auto surface = [&](const FormRectangle& parent, const FormRectangle& child) {
        const Rectangle about = onScreenOf(window, parent, child);
        return picture.surfaceAround(about.x + about.width / 2, about.y + about.height / 2);
    };
    map_ = surface(layout.FrmWorkspace, layout.WebBrowser1);
    lastEventMap_ = surface(layout.FrmLastEvent, layout.wbr_last);
    grid_ = onScreenOf(window, {}, layout.GridEvents);
    lastEventText_ = onScreenOf(window, {}, layout.Label1);
    coordinates_ = onScreenOf(window, layout.FrmWorkspace, layout.txtMouseCoord);
}

Point MapJourney::onScreen(const Place& place, const MapView& view) const {
    const Point point = projected(place, view.zoom);
    const Point centre = projected(view.centre, view.zoom);
    return {map_.x + map_.width / 2.0 + point.x - centre.x,
            map_.y + map_.height / 2.0 + point.y - centre.y};
}

bool MapJourney::inView(const Place& place, const MapView& view) const {
    const Point point = onScreen(place, view);
    return point.x >= map_.x && point.x <= map_.x + map_.width && point.y >= map_.y &&
           point.y <= map_.y + map_.height;
}

bool MapJourney::standsAt(const ScreenPicture& picture, const Point& point, std::uint32_t colour,
                          int reach) {
    const Rectangle around{static_cast<int>(point.x) - reach, static_cast<int>(point.y) - reach,
                           2 * reach, 2 * reach};
    const auto spot = picture.spot(around, colour);
    // A circle's rim is drawn in black; the dot of the last event is smaller.
    const double area = std::numbers::pi * (circleRadius - 0.5) * (circleRadius - 0.5);
    const double enough = colour == lastEventColour ? 30 : area * 0.8;
    return spot && static_cast<double>(spot->pixels) > enough &&
           static_cast<double>(spot->pixels) < area * 1.2 && std::abs(spot->x - point.x) < exact &&
           std::abs(spot->y - point.y) < exact;
}

std::string MapJourney::missingFrom(const MapView& view) const {
    constexpr int circleReach = 30; // pixels
    constexpr int pictureReach = 45;
    std::string missing;
    const ScreenPicture picture = look();
    bool newest = true;
    for (const KnownEvent& event : events()) {
        if (!inView(event.place, view))
            continue;
        const Point point = onScreen(event.place, view);
        const bool stands = newest ? standsAt(picture, point, lastEventColour, pictureReach)
                                   : standsAt(picture, point, event.colour, circleReach);
        if (!stands)
            missing += " " + std::to_string(event.place.latitude) + "," +
                       std::to_string(event.place.longitude) + " at " + std::to_string(point.x) +
                       "," + std::to_string(point.y);
        newest = false;
    }
    return missing;
}

::testing::AssertionResult MapJourney::allStandAt(const MapView& view) {
    std::string missing;
    if (soon([&] { return (missing = missingFrom(view)).empty(); }))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "not in their places:" << missing << "\n"
                                         << journey_.activityLog();
}

std::vector<MapJourney::Row> MapJourney::rows() const {
    const ScreenPicture picture = look();
    const Rectangle column{grid_.x + 3, grid_.y, utcColumnWidth, grid_.height - 3};
    std::vector<Row> rows;
    for (const ScreenPicture::Line& line : picture.linesOfText(column)) {
        const Rectangle cell{column.x, line.top, column.width, line.height};
        const Rectangle place{column.x + column.width + 15, line.top, 100, line.height};
        rows.push_back({picture.ink(cell), line.top + line.height / 2,
                        picture.count(place, selectionColour) > 0});
    }
    if (!rows.empty())
        rows.erase(rows.begin()); // the column's head
    return rows;
}

std::vector<std::vector<std::string>> MapJourney::times(const std::vector<Row>& rows) {
    std::vector<std::vector<std::string>> result;
    result.reserve(rows.size());
    for (const Row& row : rows)
        result.push_back(row.time);
    return result;
}

void MapJourney::clickRow(std::size_t index) {
    journey_.click(grid_.x + grid_.width - 60, rows().at(index).y);
}

bool MapJourney::isOpen(const std::string& title) {
    const std::vector<std::string> titles = journey_.windowTitles();
    return std::find(titles.begin(), titles.end(), title) != titles.end();
}

// In the first week of a month the window first reports that there is no such day a week before.
void MapJourney::openSearch() {
    journey_.waitForWindow(mainWindow, 60);
    const std::size_t before = journey_.windowTitles().size();
    journey_.key("alt+s");
    if (!soon([&] { return journey_.windowTitles().size() > before; }))
        throw std::runtime_error("no search window");
    if (!isOpen(searchWindow))
        journey_.key("Return");
    journey_.waitForWindow(searchWindow, 60);
}

// The name in the list of workspaces is black only while another one may be chosen.
bool MapJourney::searchModeIsOn() const {
    const Rectangle name{map_.x + 4, map_.y - 48, 60, 16};
    return look().linesOfText(name).empty();
}

bool MapJourney::menuOpens() {
    const std::size_t before = journey_.windowTitles().size();
    journey_.key("alt+question a");
    const bool opened = soon([&] { return journey_.windowTitles().size() == before + 1; });
    journey_.key("Escape");
    return soon([&] { return journey_.windowTitles().size() == before; }) && opened;
}

} // namespace tremor::journeys
