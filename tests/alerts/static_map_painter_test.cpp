#include "alerts/static_map_painter.h"
#include "core/files.h"

#include <QtGui/QImage>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace tremor {
namespace {

constexpr QRgb sea = qRgb(0xD3, 0xE2, 0xEC);
constexpr QRgb land = qRgb(0xF6, 0xF2, 0xE9);
constexpr QRgb border = qRgb(0xBF, 0xAE, 0x9C);
constexpr QRgb marker = qRgb(0xD9, 0x1E, 0x18);

// A picture, kept for the eye in the folder that TREMOR_PICTURES names.
QImage pictureOf(const StaticMapRequest& request, const char* name) {
    const std::string png = StaticMapPainter().drawStaticMap(request);
    if (const char* const folder = std::getenv("TREMOR_PICTURES"))
        writeFileAtomically(std::string(folder) + "/" + name + ".png", png, false);
    QImage image;
    EXPECT_TRUE(image.loadFromData(QByteArray::fromStdString(png), "PNG"));
    EXPECT_EQ(image.size(), QSize(request.width, request.height));
    return image.convertToFormat(QImage::Format_RGB32);
}

// Where a place lies in a picture.
QPoint pixelOf(const StaticMapRequest& request, double latitude, double longitude) {
    const auto y = [](double degrees) {
        return std::log(std::tan(M_PI / 4 + degrees * M_PI / 360)) / (2 * M_PI);
    };
    const double world = 256 * std::exp2(request.zoom);
    return {static_cast<int>(request.width / 2.0 + (longitude - request.longitude) / 360 * world),
            static_cast<int>(request.height / 2.0 + (y(request.latitude) - y(latitude)) * world)};
}

int countOf(const QImage& image, QRgb colour, const QRect& area) {
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x)
            count += image.pixel(x, y) == colour ? 1 : 0;
    }
    return count;
}

TEST(StaticMapPainter, ShowsLandAndSeaWhereTheyAre) {
    const StaticMapRequest coast = {43.6, 13.5, 8, 250, 250}; // Ancona
    const QImage image = pictureOf(coast, "ancona");
    EXPECT_EQ(image.pixel(pixelOf(coast, 43.9, 13.8)), sea);
    EXPECT_EQ(image.pixel(pixelOf(coast, 43.4, 13.1)), land);
}

TEST(StaticMapPainter, MarksTheMiddle) {
    const QImage image = pictureOf({42.7, 13.23, 8, 250, 250}, "inland");
    EXPECT_EQ(image.pixel(125, 115), marker);
    EXPECT_EQ(countOf(image, marker, image.rect()), countOf(image, marker, QRect(115, 96, 20, 31)));
    EXPECT_EQ(image.pixel(125, 130), land);
}

TEST(StaticMapPainter, DrawsBordersBetweenCountries) {
    const StaticMapRequest alps = {46.5, 10.5, 8, 250, 250};
    const QImage image = pictureOf(alps, "alps");
    EXPECT_GT(countOf(image, border, image.rect()), 20);
    const QImage inland = pictureOf({42.7, 13.0, 9, 250, 250}, "no_border");
    EXPECT_EQ(countOf(inland, border, inland.rect()), 0);
}

TEST(StaticMapPainter, WritesScaleAndSourceIntoTheCorners) {
    const StaticMapRequest openSea = {40, 12, 8, 250, 250};
    const QImage image = pictureOf(openSea, "sea");
    const QRect corner(0, 225, 100, 25);
    const QRect source(165, 230, 85, 20);
    EXPECT_LT(countOf(image, sea, corner), corner.width() * corner.height() - 300);
    EXPECT_LT(countOf(image, sea, source), source.width() * source.height() - 300);
    EXPECT_EQ(countOf(image, sea, QRect(0, 0, 250, 90)), 250 * 90);
}

TEST(StaticMapPainter, ShowsBothSidesOfTheDateLine) {
    for (const double middle : {180.0, -180.0}) {
        const StaticMapRequest fiji = {-17, middle, 8, 250, 250};
        const QImage image = pictureOf(fiji, "fiji");
        EXPECT_EQ(image.pixel(pixelOf(fiji, -16.6, middle - 0.54)), land);  // Vanua Levu
        EXPECT_EQ(image.pixel(pixelOf(fiji, -16.87, middle + 0.06)), land); // Taveuni
        EXPECT_EQ(image.pixel(pixelOf(fiji, -17.5, middle + 0.4)), sea);
    }
}

TEST(StaticMapPainter, DrawsTheWholeWorldAndPlacesBeyondTheMap) {
    const StaticMapRequest world = {0, 0, 0, 256, 256};
    const QImage image = pictureOf(world, "world");
    EXPECT_EQ(image.pixel(pixelOf(world, 73, -40)), land); // Greenland
    EXPECT_EQ(image.pixel(pixelOf(world, 0, -140)), sea);  // Pacific
    EXPECT_EQ(image.pixel(pixelOf(world, -80, 60)), land); // Antarctica
    EXPECT_EQ(pictureOf({90, 720, 8, 250, 250}, "pole").pixel(20, 200), sea);
    EXPECT_EQ(pictureOf({-1000, 0, 8, 250, 250}, "antarctica").pixel(20, 20), land);
}

TEST(StaticMapPainter, HoldsSizesAndZoomsToWhatCanBeDrawn) {
    const std::string png = StaticMapPainter().drawStaticMap({42, 13, 99, 0, -5});
    QImage image;
    ASSERT_TRUE(image.loadFromData(QByteArray::fromStdString(png), "PNG"));
    EXPECT_EQ(image.size(), QSize(1, 1));
}

} // namespace
} // namespace tremor
