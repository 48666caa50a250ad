#include "map/marker_colours.h"

#include "core/common_text.h"
#include "map/marker_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace tremor {

namespace {

constexpr std::array depthBoundsOfCircles = {5.0, 10.0, 20.0, 50.0, 100.0, 9999.0}; // km
constexpr std::array<std::string_view, 6> circleColours = {"#FF9900", "yellow",  "#33FF00",
                                                           "#0033FF", "#9933FF", "#FF0000"};
constexpr std::string_view colourOfMagnitudeZero = "#FFFFFF";

constexpr std::array depthBoundsOfPins = {5.0, 10.0, 20.0, 50.0, 100.0}; // km
constexpr std::string_view pinLetters = "oygbv";

constexpr std::array magnitudeBounds = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 10.0};
constexpr std::array<std::string_view, 8> pinNumbers = {"14", "18", "23", "28",
                                                        "34", "44", "50", "58"};

void addCircle(MarkerList& list, double depth) {
    if (const auto found = classOf(depth, depthBoundsOfCircles))
        list.Add(circleColours[*found]);
}

void addPin(MarkerList& list, double depth, double magnitude) {
    const auto letter = classOf(depth, depthBoundsOfPins);
    const auto number = pinNumber(magnitude);
    if (letter && number)
        list.Add(fmt::format("{}_{}.png", pinLetters[*letter], *number));
}

} // namespace

std::optional<std::size_t> classOf(double value, std::span<const double> upperBounds) {
    const auto found = std::lower_bound(upperBounds.begin(), upperBounds.end(), value);
    if (!(value >= 0) || found == upperBounds.end())
        return std::nullopt;
    return static_cast<std::size_t>(std::distance(upperBounds.begin(), found));
}

std::optional<std::string_view> pinNumber(double magnitude) {
    const auto found = classOf(magnitude, magnitudeBounds);
    return found ? std::optional(pinNumbers[*found]) : std::nullopt;
}

std::string colorImageEvents(std::span<const std::string_view> depths,
                             std::span<std::string_view> magnitudes, bool circles,
                             const NumberLocale& locale) {
    MarkerList list;
    const std::size_t count = std::min(depths.size(), magnitudes.size());
    for (std::size_t i = 1; i < count; ++i) {
        const double depth = ParseDotDouble(depths[i], locale);
        const double magnitude = ParseDotDouble(magnitudes[i], locale);
        if (!circles) {
            addPin(list, depth, magnitude);
        } else if (magnitude == 0) {
            magnitudes[i] = "2";
            list.Add(colourOfMagnitudeZero);
        } else {
            addCircle(list, depth);
        }
    }
    return list.text();
}

} // namespace tremor
