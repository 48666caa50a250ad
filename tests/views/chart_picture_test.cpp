#include "core/dates.h"
#include "views/chart_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tremor {
namespace {

// Plot 1000 pixels wide and 250 high: 25 pixels to a magnitude, one pixel to a second.
constexpr ChartSize size{1065, 276};

ChartContents thousandSeconds(std::vector<ChartEvent> events = {}) {
    return {.startDate = "2021-01-14 00:00:00",
            .endDate = "2021-01-14 00:16:40",
            .span = 1000,
            .events = std::move(events)};
}

ChartEvent eventAt(std::int32_t offset, double magnitude) {
    return {.time = textToDate("2021-01-14", NumberLocale::point()) + std::chrono::seconds(offset),
            .offset = offset,
            .magnitude = magnitude};
}

ChartBar barOf(std::int32_t offset, double magnitude) {
    return drawChart(thousandSeconds({eventAt(offset, magnitude)}), size).bars.at(0);
}

void expectLine(const ChartLine& line, double x1, double y1, double x2, double y2) {
    EXPECT_DOUBLE_EQ(line.x1, x1);
    EXPECT_DOUBLE_EQ(line.y1, y1);
    EXPECT_DOUBLE_EQ(line.x2, x2);
    EXPECT_DOUBLE_EQ(line.y2, y2);
}

std::vector<std::string> labelsAt(int height) {
    std::vector<std::string> texts;
    for (const ChartText& label : drawChart(thousandSeconds(), {520, height}).labels)
        texts.push_back(label.text);
    return texts;
}

TEST(DrawChart, PutsTheAxesToTheirMargins) {
    const ChartPicture picture = drawChart(thousandSeconds(), size);
    expectLine(picture.axes[0], 45, 5, 45, 276 - 21);
    expectLine(picture.axes[1], 41, 276 - 25, 1065 - 20, 276 - 25);
    EXPECT_DOUBLE_EQ(picture.baseLine, 276 - 25);
}

TEST(DrawChart, RulesALineForEachMagnitudeFromZeroToTen) {
    const ChartPicture picture = drawChart(thousandSeconds(), size);
    ASSERT_EQ(picture.grid.size(), 11U);
    for (std::size_t i = 0; i < picture.grid.size(); ++i) {
        const double y = 276 - 25 - static_cast<double>(i) * 25;
        expectLine(picture.grid[i], 40, y, 1065 - 20, y);
    }
}

TEST(DrawChart, NumbersEachMagnitudeBesideItsLine) {
    const ChartPicture picture = drawChart(thousandSeconds(), size);
    ASSERT_EQ(picture.labels.size(), 11U);
    for (std::size_t i = 0; i < picture.labels.size(); ++i) {
        EXPECT_EQ(picture.labels[i].text, std::to_string(i));
        EXPECT_DOUBLE_EQ(picture.labels[i].x, 32);
        EXPECT_DOUBLE_EQ(picture.labels[i].y, i == 10 ? 9 : 276 - 21 - static_cast<double>(i) * 25);
        EXPECT_EQ(picture.labels[i].colour, ChartColour::Black);
    }
}

TEST(DrawChart, NumbersEachMagnitudeInTheSmallestWindow) {
    EXPECT_EQ(labelsAt(163).size(), 11U);
}

TEST(DrawChart, LeavesNumbersOutWhereTheyWouldOverlap) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(labelsAt(26 + 120).size(), 11U);
    EXPECT_EQ(labelsAt(26 + 119), (Texts{"0", "2", "4", "6", "8", "10"}));
    EXPECT_EQ(labelsAt(26 + 59), (Texts{"0", "5", "10"}));
    EXPECT_EQ(labelsAt(38), (Texts{"0", "10"}));
}

TEST(DrawChart, LeavesTheLinesBetweenTheNumbersOutWhereTheyWouldRunTogether) {
    EXPECT_EQ(drawChart({}, {520, 26 + 40}).grid.size(), 11U);
    const ChartPicture low = drawChart({}, {520, 38});
    ASSERT_EQ(low.grid.size(), 2U);
    EXPECT_DOUBLE_EQ(low.grid[0].y1, 38 - 25);
    EXPECT_DOUBLE_EQ(low.grid[1].y1, 1);
}

TEST(DrawChart, WritesTheLegendWithTheEndsOfThePeriodInRedAndBlue) {
    const std::vector<ChartText> legend = drawChart(thousandSeconds(), size).legend;
    ASSERT_EQ(legend.size(), 4U);
    EXPECT_EQ(legend[0].text, "Events from ");
    EXPECT_EQ(legend[1].text, "2021-01-14 00:00:00");
    EXPECT_EQ(legend[2].text, " to ");
    EXPECT_EQ(legend[3].text, "2021-01-14 00:16:40");
    EXPECT_EQ(legend[0].colour, ChartColour::Black);
    EXPECT_EQ(legend[1].colour, ChartColour::Red);
    EXPECT_EQ(legend[2].colour, ChartColour::Black);
    EXPECT_EQ(legend[3].colour, ChartColour::Blue);
    for (const ChartText& text : legend)
        EXPECT_DOUBLE_EQ(text.y, 276 - 18);
    EXPECT_DOUBLE_EQ(legend[0].x, 45);
    EXPECT_DOUBLE_EQ(legend[1].x, 140);
}

TEST(DrawChart, NeverSetsATextOfTheLegendOntoTheOneBefore) {
    const std::vector<ChartText> legend = drawChart(thousandSeconds(), size).legend;
    EXPECT_DOUBLE_EQ(legend.at(2).x, 140 + 19 * 8);
    EXPECT_DOUBLE_EQ(legend.at(3).x, 140 + 19 * 8 + 4 * 8);
}

TEST(DrawChart, PlacesTheEndDateByItsPitchWhenTheDateBeforeIsShort) {
    ChartContents contents = thousandSeconds();
    contents.startDate = std::string(27, 'x');
    EXPECT_DOUBLE_EQ(drawChart(contents, size).legend.at(2).x, 140 + 27 * 8);
    contents.startDate.clear();
    const std::vector<ChartText> legend = drawChart(contents, size).legend;
    EXPECT_DOUBLE_EQ(legend.at(2).x, 140);         // above 12 * 3.8
    EXPECT_DOUBLE_EQ(legend.at(3).x, 140 + 4 * 8); // above 16 * 3.9
}

TEST(DrawChart, WritesNoLegendBeforeAPeriodIsKnown) {
    const ChartPicture picture = drawChart({}, size);
    EXPECT_TRUE(picture.legend.empty());
    EXPECT_EQ(picture.grid.size(), 11U);
}

TEST(DrawChart, SpreadsThePeriodOverThePlot) {
    EXPECT_DOUBLE_EQ(barOf(250, 1).x, 45 + 250);
    EXPECT_DOUBLE_EQ(barOf(1000, 1).x, 1065 - 20);
}

TEST(DrawChart, PutsAnEventAtTheStartOntoTheVerticalAxis) {
    EXPECT_DOUBLE_EQ(barOf(0, 3).x, 45);
}

TEST(DrawChart, PutsAnEventBehindThePeriodIntoTheRightMargin) {
    EXPECT_DOUBLE_EQ(barOf(1010, 3).x, 1065 - 10);
}

TEST(DrawChart, ReachesTheTopLineWithMagnitudeTen) {
    const ChartPicture picture = drawChart(thousandSeconds({eventAt(10, 10)}), size);
    EXPECT_DOUBLE_EQ(picture.bars.at(0).end, picture.grid.back().y1);
    EXPECT_DOUBLE_EQ(picture.bars.at(0).end, 1);
}

TEST(DrawChart, LeavesThePlotAtTheTopAboveMagnitudeTen) {
    EXPECT_NEAR(barOf(10, 10.04).end, 0, 1e-9);
    EXPECT_LT(barOf(10, 10.1).end, 0);
}

TEST(DrawChart, DrawsHalfAMagnitudeInProportion) {
    EXPECT_DOUBLE_EQ(barOf(10, 4.5).end, 276 - 25 - 4.5 * 25);
}

TEST(DrawChart, HangsANegativeMagnitudeBelowTheAxis) {
    EXPECT_DOUBLE_EQ(barOf(10, -0.4).end, 276 - 25 + 10);
}

TEST(DrawChart, HoldsBarsToThePicture) {
    const double huge = std::numeric_limits<double>::max();
    EXPECT_DOUBLE_EQ(barOf(10, huge).end, -1);
    EXPECT_DOUBLE_EQ(barOf(10, -huge).end, 277);
    EXPECT_DOUBLE_EQ(barOf(std::numeric_limits<std::int32_t>::max(), 1).x, 1067);
}

TEST(DrawChart, DrawsNoBarOverAPeriodOfNoLength) {
    ChartContents contents = thousandSeconds({eventAt(0, 4)});
    contents.span = 0;
    const ChartPicture picture = drawChart(contents, size);
    EXPECT_TRUE(picture.bars.empty());
    EXPECT_EQ(picture.grid.size(), 11U);
    EXPECT_EQ(picture.legend.size(), 4U);
}

TEST(DrawChart, SurvivesAPictureSmallerThanItsMargins) {
    for (const ChartSize tiny : {ChartSize{0, 0}, ChartSize{30, 10}, ChartSize{64, 25}}) {
        const ChartPicture picture = drawChart(thousandSeconds({eventAt(500, 4)}), tiny);
        EXPECT_GE(picture.grid.size(), 2U);
        EXPECT_LE(picture.bars.at(0).x, std::max(45.0, tiny.width + 2.0));
    }
}

TEST(NearestEvent, IsTheOneWhoseBarIsNearestAside) {
    const ChartContents contents = thousandSeconds({eventAt(100, 2), eventAt(104, 2)});
    EXPECT_EQ(nearestEvent(contents, size, 45 + 100.5, 200), 0U);
    EXPECT_EQ(nearestEvent(contents, size, 45 + 103.5, 200), 1U);
}

TEST(NearestEvent, IsToldApartByHeightWithinAColumn) {
    const ChartContents contents =
        thousandSeconds({eventAt(100, 2), eventAt(100, 6), eventAt(100, 4)});
    EXPECT_EQ(nearestEvent(contents, size, 145.5, 276 - 25 - 2.4 * 25), 0U);
    EXPECT_EQ(nearestEvent(contents, size, 145.5, 276 - 25 - 3.6 * 25), 2U);
    EXPECT_EQ(nearestEvent(contents, size, 145.5, 3), 1U);
}

TEST(NearestEvent, IsNoneMoreThanFourPixelsAside) {
    const ChartContents contents = thousandSeconds({eventAt(100, 2)});
    EXPECT_EQ(nearestEvent(contents, size, 145 + 4.5, 200), 0U);
    EXPECT_EQ(nearestEvent(contents, size, 145 + 5.5, 200), std::nullopt);
    EXPECT_EQ(nearestEvent(contents, size, 145 - 5.5, 200), std::nullopt);
    EXPECT_EQ(nearestEvent({}, size, 145, 200), std::nullopt);
}

TEST(NearestEvent, IsNoneOutsideThePictureOrWithoutAScale) {
    ChartContents contents = thousandSeconds({eventAt(1000000, 2)});
    EXPECT_EQ(nearestEvent(contents, size, 1064.5, 200), std::nullopt);
    contents = thousandSeconds({eventAt(0, 2)});
    contents.span = 0;
    EXPECT_EQ(nearestEvent(contents, size, 45, 200), std::nullopt);
}

TEST(EventText, TellsTimeAndMagnitude) {
    EXPECT_EQ(eventText(eventAt(61, 4.5)), "2021-01-14 00:01:01   Mg 4.5");
    EXPECT_EQ(eventText(eventAt(0, -0.25)), "2021-01-14 00:00:00   Mg -0.25");
}

} // namespace
} // namespace tremor
