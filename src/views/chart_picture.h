#pragma once

#include "core/civil_time.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The history chart as lines, bars and texts at their places, for a surface of any kind to paint.
// All lengths are pixels that do not depend on the screen's density; x grows to the right, y
// downwards, and the point (0, 0) is the upper left corner of the picture.
namespace tremor {

struct ChartSize {
    int width = 0;
    int height = 0;
};

struct ChartEvent {
    DateTime time;
    std::int32_t offset = 0; // seconds behind the beginning of the period; 0 for an earlier event
    double magnitude = 0;    // finite
};

struct ChartContents {
    std::string startDate; // "YYYY-MM-DD HH:mm:ss", shown as it stands
    std::string endDate;
    std::int32_t span = 0; // seconds of the period; with 0 there is no scale, and no event is shown
    std::vector<ChartEvent> events;
};

// One pixel thick; horizontal or vertical, with the pixels between its ends, the second left out.
struct ChartLine {
    double x1 = 0;
    double y1 = 0;
    double x2 = 0;
    double y2 = 0;
};

enum class ChartColour { Black, Red, Blue };

// A text that begins at `x`; whether `y` is its upper edge or its base line is told by its list.
struct ChartText {
    double x = 0;
    double y = 0;
    std::string text;
    ChartColour colour = ChartColour::Black;
};

// Two pixels wide, with `x` in its middle, between the base line and `end`, which lies below the
// base line for a negative magnitude. Held to what the picture can show and a little more.
struct ChartBar {
    double x = 0;
    double end = 0;
};

struct ChartPicture {
    std::vector<ChartLine> grid;   // dotted, red
    std::array<ChartLine, 2> axes; // black
    std::vector<ChartText> labels; // in the small font
    std::vector<ChartText> legend; // in the large font; none before a period is known
    double baseLine = 0;           // where the bars stand
    std::vector<ChartBar> bars;    // one for each event, in their order
};

// The cell of a character; both fonts have a fixed pitch.
struct ChartFont {
    int height = 0;
    int width = 0;
};
inline constexpr ChartFont smallChartFont{12, 5};
inline constexpr ChartFont largeChartFont{18, 8};
inline constexpr double chartBarWidth = 2;

ChartPicture drawChart(const ChartContents& contents, ChartSize size);

// The event whose bar is the nearest to a place in the picture, by its number in `contents`. Among
// bars at the same distance aside it is the one that ends nearest to the height of the place.
// Nothing when no bar is within 4 pixels aside.
std::optional<std::size_t> nearestEvent(const ChartContents& contents, ChartSize size, double x,
                                        double y);

// "2021-01-14 05:45:26   Mg 4.5"
std::string eventText(const ChartEvent& event);

} // namespace tremor
