#include "alerts/world_outlines.h"
#include "core/error_report.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace tremor {
namespace {

// One degree a step, from the south-western corner of the sheet.
std::string head(double west = -180, double south = -90, double stepX = 1, double stepY = 1) {
    std::string bytes;
    for (const double value : {west, south, stepX, stepY}) {
        char raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        bytes.append(raw, sizeof value);
    }
    return bytes;
}

void addUnsigned(std::string& bytes, unsigned value) {
    for (; value > 127; value >>= 7)
        bytes += static_cast<char>(value % 128 | 128);
    bytes += static_cast<char>(value);
}

void addSigned(std::string& bytes, int value) {
    addUnsigned(bytes, static_cast<unsigned>(value < 0 ? -2 * value - 1 : 2 * value));
}

// A square of 10 degrees with its south-western corner at a place.
void addSquare(std::string& bytes, int longitude, int latitude) {
    addUnsigned(bytes, 5);
    for (const auto& [x, y] : {std::pair(longitude + 180, latitude + 90), std::pair(10, 0),
                               std::pair(0, 10), std::pair(-10, 0), std::pair(0, -10)}) {
        addSigned(bytes, x);
        addSigned(bytes, y);
    }
}

// One land square and no border.
std::string oneSquare(int longitude, int latitude) {
    std::string bytes = head();
    addUnsigned(bytes, 1);
    addSquare(bytes, longitude, latitude);
    addUnsigned(bytes, 0);
    return bytes;
}

MercatorBox boxOf(double west, double south, double east, double north) {
    const MercatorPoint corner = mercatorPoint(north, west);
    const MercatorPoint opposite = mercatorPoint(south, east);
    return {corner.x, corner.y, opposite.x, opposite.y};
}

bool isRefused(const std::string& packed) {
    try {
        (void)outlinesWithin(packed, boxOf(-180, -80, 180, 80));
    } catch (const RuntimeError&) {
        return true;
    }
    return false;
}

TEST(MercatorPoint, MapsTheWorldToASquareOfWidthOne) {
    EXPECT_DOUBLE_EQ(mercatorPoint(0, 0).x, 0.5);
    EXPECT_DOUBLE_EQ(mercatorPoint(0, 0).y, 0.5);
    EXPECT_DOUBLE_EQ(mercatorPoint(0, -180).x, 0);
    EXPECT_NEAR(mercatorPoint(90, 0).y, 0, 1e-12);
    EXPECT_NEAR(mercatorPoint(-90, 0).y, 1, 1e-12);
    EXPECT_NEAR(mercatorLatitude(mercatorPoint(42.7, 0).y), 42.7, 1e-12);
}

TEST(OutlinesWithin, CutsLandToTheBox) {
    const MercatorBox box = boxOf(5, 5, 30, 30);
    const WorldOutlines outlines = outlinesWithin(oneSquare(0, 0), box);
    ASSERT_EQ(outlines.land.size(), 1U);
    double left = 1;
    double right = 0;
    for (const MercatorPoint& point : outlines.land.front()) {
        left = std::min(left, point.x);
        right = std::max(right, point.x);
    }
    EXPECT_DOUBLE_EQ(left, mercatorPoint(0, 5).x);
    EXPECT_DOUBLE_EQ(right, mercatorPoint(0, 10).x);
    ASSERT_EQ(outlines.coasts.size(), 1U);
    EXPECT_EQ(outlines.coasts.front().size(), 3U); // the two sides in the box, corner in the middle
}

TEST(OutlinesWithin, FindsNothingInTheOpenSea) {
    const WorldOutlines outlines = outlinesWithin(oneSquare(0, 0), boxOf(50, 5, 60, 30));
    EXPECT_TRUE(outlines.land.empty());
    EXPECT_TRUE(outlines.coasts.empty());
    EXPECT_TRUE(outlines.borders.empty());
}

TEST(OutlinesWithin, GoesOnBeyondTheDateLine) {
    const WorldOutlines east = outlinesWithin(oneSquare(-180, 0), boxOf(175, 0, 185, 5));
    ASSERT_EQ(east.land.size(), 1U);
    EXPECT_GE(east.land.front().front().x, 0.98);
    const WorldOutlines west = outlinesWithin(oneSquare(170, 0), boxOf(-185, 0, -175, 5));
    ASSERT_EQ(west.land.size(), 1U);
    EXPECT_LE(west.land.front().front().x, 0.02);
}

TEST(OutlinesWithin, DrawsNoCoastAlongTheEdgeOfTheSheet) {
    const WorldOutlines outlines = outlinesWithin(oneSquare(0, -90), boxOf(-5, -85, 15, -70));
    ASSERT_EQ(outlines.land.size(), 1U);
    EXPECT_EQ(outlines.coasts.size(), 1U); // the northern side
    EXPECT_EQ(outlines.coasts.front().size(), 2U);
}

TEST(OutlinesWithin, RefusesDataThatEndTooEarly) {
    const std::string whole = oneSquare(0, 0);
    ASSERT_FALSE(isRefused(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(isRefused(whole.substr(0, size))) << size;
}

TEST(OutlinesWithin, RefusesDataThatGoOnTooLong) {
    EXPECT_TRUE(isRefused(oneSquare(0, 0) + "x"));
}

TEST(OutlinesWithin, RefusesNumbersThatCannotBe) {
    EXPECT_TRUE(isRefused(head(std::numeric_limits<double>::quiet_NaN()) + std::string(2, '\0')));
    EXPECT_TRUE(isRefused(head() + std::string(12, '\xFF')));
    EXPECT_TRUE(isRefused(head() + "\xFF\xFF\xFF\xFF\x7F"));     // more rings than bytes
    EXPECT_TRUE(isRefused(head() + "\x01\xFF\xFF\xFF\xFF\x7F")); // more points than bytes
}

TEST(OutlinesWithin, PassesOverLinesWithoutPoints) {
    EXPECT_FALSE(isRefused(head() + std::string("\x01\x00\x00", 3)));
}

} // namespace
} // namespace tremor
