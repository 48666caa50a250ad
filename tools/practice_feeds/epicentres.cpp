#include "practice_feeds/epicentres.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>
#include <utility>

namespace tremor::practice {

namespace {

constexpr double kilometresPerDegree = 111.2;
constexpr double largeMagnitude = 5.5;

// Towns in the spelling of the USGS.
constexpr auto world = std::to_array<SeismicPlace>({
    {"Pangai, Tonga", -19.81, -174.35, 500},
    {"'Ohonua, Tonga", -21.34, -174.95, 60},
    {"Levuka, Fiji", -17.68, 178.84, 620},
    {"Isangel, Vanuatu", -19.55, 169.27, 150},
    {"Kokopo, Papua New Guinea", -4.35, 152.27, 120},
    {"Kimbe, Papua New Guinea", -5.55, 150.14, 180},
    {"Abepura, Indonesia", -2.60, 140.63, 70},
    {"Tobelo, Indonesia", 1.73, 128.01, 160},
    {"Bengkulu, Indonesia", -3.80, 102.27, 60},
    {"Sarangani, Philippines", 5.40, 125.46, 200},
    {"Hualien City, Taiwan", 23.98, 121.60, 40},
    {"Miyako, Japan", 39.64, 141.97, 60},
    {"Naze, Japan", 28.37, 129.48, 60},
    {"Shikotan, Russia", 43.87, 146.83, 100},
    {"Ust'-Kamchatsk, Russia", 56.22, 162.48, 90},
    {"Adak, Alaska", 51.87, -176.65, 80},
    {"Chignik, Alaska", 56.30, -158.40, 70},
    {"Petrolia, CA", 40.33, -124.29, 20},
    {"Ridgecrest, CA", 35.62, -117.67, 12},
    {"Volcano, Hawaii", 19.43, -155.23, 30},
    {"Puerto Madero, Mexico", 14.72, -92.42, 100},
    {"Vallenar, Chile", -28.58, -70.76, 90},
    {"Calama, Chile", -22.46, -68.93, 130},
    {"Bristol Island, South Sandwich Islands", -59.03, -26.57, 80},
    {"Kermadec Islands, New Zealand", -29.25, -177.92, 300},
    {"Ashkasham, Afghanistan", 36.68, 71.53, 220},
    {"Khash, Iran", 28.22, 61.22, 30},
    {"Olonkinbyen, Svalbard and Jan Mayen", 70.92, -8.72, 10},
});

// Regions in the spelling of the EMSC.
constexpr auto euroMediterranean = std::to_array<SeismicPlace>({
    {"CRETE, GREECE", 35.20, 25.00, 60},   {"DODECANESE ISLANDS, GREECE", 36.40, 27.20, 80},
    {"IONIAN SEA", 38.10, 20.30, 20},      {"SOUTHERN GREECE", 37.20, 22.10, 60},
    {"WESTERN TURKEY", 38.70, 28.30, 15},  {"EASTERN TURKEY", 38.40, 39.20, 15},
    {"CENTRAL TURKEY", 38.10, 36.60, 15},  {"CYPRUS REGION", 34.90, 32.40, 60},
    {"ALBANIA", 41.20, 19.70, 20},         {"CROATIA", 45.40, 16.20, 12},
    {"ROMANIA", 45.70, 26.60, 140},        {"CENTRAL ITALY", 42.80, 13.20, 12},
    {"SICILY, ITALY", 37.70, 14.90, 25},   {"TYRRHENIAN SEA", 39.20, 15.10, 300},
    {"PYRENEES", 42.90, 0.20, 12},         {"STRAIT OF GIBRALTAR", 36.00, -4.60, 80},
    {"NORTHERN ALGERIA", 36.40, 3.60, 12}, {"SWITZERLAND", 46.40, 7.60, 10},
    {"ICELAND REGION", 63.80, -22.40, 8},
});

// In the spelling of the seismic regions after Flinn and Engdahl.
constexpr auto centralItaly = std::to_array<SeismicPlace>({
    {"Central Italy", 42.80, 13.20, 14},
    {"Central Italy", 42.35, 13.40, 14},
    {"Northern Italy", 43.90, 11.90, 20},
    {"Southern Italy", 41.50, 14.70, 18},
});

// From 0 to below 1. The distributions of the library differ from one to the next.
double fraction(std::mt19937& random) {
    return static_cast<double>(random() >> 1) / 2147483648.0;
}

std::string placeText(const Reporting& reporting, const SeismicPlace& place, double kilometres,
                      double azimuth) {
    if (!reporting.namesDistance)
        return std::string(place.name);
    constexpr std::array winds{"N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
                               "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"};
    const double turn = azimuth / (2 * std::numbers::pi);
    const auto wind = static_cast<std::size_t>(std::lround(turn * winds.size())) % winds.size();
    return fmt::format("{:.0f} km {} of {}", kilometres, winds[wind], place.name);
}

struct Solution {
    double latitude;
    double longitude;
    double depth; // km
    double magnitude;
};

FdsnEvent eventOf(const Solution& solution, std::string_view agency, std::string_view type,
                  std::string_view place) {
    return parseFdsnEvent(fmt::format(
        "0|1970-01-01T00:00:00.000000|{:.4f}|{:.4f}|{:.1f}|{}||||{}|{:.1f}|--|{}|earthquake",
        solution.latitude, solution.longitude, solution.depth, agency, type, solution.magnitude,
        place));
}

} // namespace

Reporting worldReporting() {
    return {world, 150, 4.0, 7.5, "us", "mb", "mww", true};
}

Reporting euroMediterraneanReporting() {
    return {euroMediterranean, 60, 2.0, 6.5, "EMSC", "ML", "Mw", false};
}

Reporting localReporting() {
    return {centralItaly, 30, 0.8, 5.0, "LOC", "ML", "Mw", false};
}

FdsnEvent drawEpicentre(const Reporting& reporting, std::mt19937& random) {
    const SeismicPlace& place = reporting.places[random() % reporting.places.size()];
    const double azimuth = 2 * std::numbers::pi * fraction(random);
    const double kilometres = 3 + (reporting.radius - 3) * fraction(random);
    Solution solution{};
    solution.latitude = place.latitude + kilometres * std::cos(azimuth) / kilometresPerDegree;
    solution.longitude = place.longitude + kilometres * std::sin(azimuth) / kilometresPerDegree /
                                               std::cos(place.latitude * std::numbers::pi / 180);
    solution.longitude = std::remainder(solution.longitude, 360);
    // Two in five have the depth of 10 km that is taken when the stations do not tell one.
    const double deep = fraction(random);
    solution.depth = fraction(random) < 0.4 ? 10 : 3 + (place.depth - 3) * deep * deep;
    const double magnitude = std::min(
        reporting.largestMagnitude, reporting.smallestMagnitude - std::log10(1 - fraction(random)));
    solution.magnitude = std::round(10 * magnitude) / 10;
    return eventOf(solution, reporting.agency,
                   solution.magnitude < largeMagnitude ? reporting.smallType : reporting.largeType,
                   placeText(reporting, place, kilometres, azimuth));
}

FdsnDocument madeUpDocument(const Reporting& reporting, std::size_t count, std::chrono::hours span,
                            std::uint32_t seed) {
    FdsnDocument document{"#EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|"
                          "ContributorID|MagType|Magnitude|MagAuthor|EventLocationName|EventType",
                          {}};
    std::mt19937 random(seed);
    const auto gap = std::chrono::milliseconds(span) / count;
    for (std::size_t i = 0; i < count; ++i) {
        FdsnEvent event = drawEpicentre(reporting, random);
        event.id = std::to_string(7000000 + 10 * i);
        event.time = UtcTime(gap * i + std::chrono::milliseconds(10 * (random() % 100)));
        document.events.push_back(std::move(event));
    }
    return document;
}

GrowingCatalogue madeUpCatalogue(const Reporting& reporting, std::size_t count,
                                 std::chrono::hours span, const CatalogueOptions& options,
                                 Now now) {
    CatalogueOptions moved = options;
    moved.fixed = false;
    if (options.fixed)
        moved.every = {};
    return {madeUpDocument(reporting, count, span, options.seed),
            [reporting](std::mt19937& random) { return drawEpicentre(reporting, random); }, moved,
            std::move(now)};
}

FdsnEvent relocated(const FdsnEvent& event, std::mt19937& random) {
    const auto shift = [&random](double most) { return most * (2 * fraction(random) - 1); };
    const Solution solution{event.latitude + shift(0.05), event.longitude + shift(0.05),
                            std::max(0.0, event.depth() + shift(3)),
                            std::max(0.1, event.magnitude + shift(0.3))};
    FdsnEvent again = eventOf(solution, "LOC", event.magnitudeType(), event.place());
    again.id = event.id;
    again.time = event.time;
    return again;
}

} // namespace tremor::practice
