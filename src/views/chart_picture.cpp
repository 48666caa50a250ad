#include "views/chart_picture.h"

#include "core/conversions.h"
#include "core/dates.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>

namespace tremor {
namespace {

constexpr double axisX = 45;
constexpr double rightMargin = 20;
constexpr double topMargin = 5;
constexpr double axisFootBelow = 21; // from the lower edge up to the foot of the vertical axis
constexpr double baseLineBelow = 25; // and up to the horizontal axis
constexpr double legendBelow = 18;   // and up to the legend
constexpr double gridLeft = 40;      // the grid lines reach over the axis as ticks
constexpr double baseLineLeft = 41;
constexpr double labelX = 32;
constexpr double labelBelowLine = 4; // half a digit: the number stands beside its line
constexpr double highestLabel = 9;   // the base line of a number that still is seen whole
constexpr int highestMagnitude = 10;
constexpr double smallestStep = 4; // below, the lines without a number would be one red area

constexpr std::string_view from = "Events from ";
constexpr std::string_view to = " to ";
constexpr double startDateX = 140;
constexpr double toPitch = 3.8; // pixels for each character in front of it
constexpr double endDatePitch = 3.9;

constexpr double reachAside = 4; // of the pointer

// Where time and magnitude stand in a picture of a size.
class ChartScale {
  public:
    ChartScale(ChartSize size, std::int32_t span)
        : width_(size.width),
          height_(size.height),
          pixelsPerSecond_(span > 0 ? std::max(0.0, width_ - rightMargin - axisX) / span : 0) {}

    double right() const { return width_ - rightMargin; }
    double baseLine() const { return height_ - baseLineBelow; }
    double step() const {
        return std::max(0.0, height_ - axisFootBelow - topMargin) / highestMagnitude;
    }
    double y(double magnitude) const { return baseLine() - magnitude * step(); }

    ChartBar bar(const ChartEvent& event) const {
        return {.x = std::min(axisX + event.offset * pixelsPerSecond_, width_ + chartBarWidth),
                .end = std::clamp(y(event.magnitude), -1.0, std::max(0.0, height_) + 1)};
    }

  private:
    double width_;
    double height_;
    double pixelsPerSecond_;
};

// From one label to the next, in magnitudes: as few as keep those of a low picture from
// overlapping.
int labelDistance(double step) {
    for (const int distance : {1, 2, 5}) {
        if (distance * step >= smallChartFont.height)
            return distance;
    }
    return highestMagnitude;
}

void drawScale(ChartPicture& picture, ChartSize size, const ChartScale& scale) {
    picture.axes = {
        ChartLine{axisX, topMargin, axisX, size.height - axisFootBelow},
        ChartLine{baseLineLeft, scale.baseLine(), scale.right(), scale.baseLine()},
    };
    const int distance = labelDistance(scale.step());
    const bool linesAreApart = scale.step() >= smallestStep;
    for (int magnitude = 0; magnitude <= highestMagnitude; ++magnitude) {
        const double y = scale.y(magnitude);
        const bool labelled = magnitude % distance == 0;
        if (labelled || linesAreApart)
            picture.grid.push_back({gridLeft, y, scale.right(), y});
        if (labelled)
            picture.labels.push_back(
                {labelX, std::max(y + labelBelowLine, highestLabel), std::to_string(magnitude)});
    }
}

double endOf(const ChartText& text) {
    return text.x + static_cast<double>(text.text.size()) * largeChartFont.width;
}

// The pitches would set the later texts onto the earlier ones; each begins behind the one before.
std::vector<ChartText> legendOf(const ChartContents& contents, ChartSize size) {
    if (contents.startDate.empty() && contents.endDate.empty())
        return {};
    const double y = size.height - legendBelow;
    const auto before = static_cast<double>(from.size() + contents.startDate.size());
    std::vector<ChartText> legend{
        ChartText{axisX, y, std::string(from)},
        ChartText{startDateX, y, contents.startDate, ChartColour::Red},
        ChartText{0, y, std::string(to)},
        ChartText{0, y, contents.endDate, ChartColour::Blue},
    };
    legend[2].x = std::max(before * toPitch, endOf(legend[1]));
    legend[3].x =
        std::max((before + static_cast<double>(to.size())) * endDatePitch, endOf(legend[2]));
    return legend;
}

} // namespace

ChartPicture drawChart(const ChartContents& contents, ChartSize size) {
    const ChartScale scale(size, contents.span);
    ChartPicture picture;
    drawScale(picture, size, scale);
    picture.legend = legendOf(contents, size);
    picture.baseLine = scale.baseLine();
    if (contents.span <= 0)
        return picture;
    picture.bars.reserve(contents.events.size());
    for (const ChartEvent& event : contents.events)
        picture.bars.push_back(scale.bar(event));
    return picture;
}

std::optional<std::size_t> nearestEvent(const ChartContents& contents, ChartSize size, double x,
                                        double y) {
    const ChartScale scale(size, contents.span);
    std::optional<std::size_t> nearest;
    if (contents.span <= 0)
        return nearest;
    std::tuple<double, double> shortest;
    for (std::size_t i = 0; i < contents.events.size(); ++i) {
        const ChartBar bar = scale.bar(contents.events[i]);
        const double aside = std::floor(std::abs(bar.x - x));
        if (bar.x >= size.width || aside > reachAside)
            continue;
        const std::tuple distance(aside, std::abs(bar.end - y));
        if (!nearest || distance < shortest) {
            nearest = i;
            shortest = distance;
        }
    }
    return nearest;
}

std::string eventText(const ChartEvent& event) {
    return dateToText(event.time) + "   Mg " + doubleToText(event.magnitude, NumberLocale::point());
}

} // namespace tremor
