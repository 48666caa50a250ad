#include "map/scale_bar.h"

#include <QtGui/QImage>

#include <gtest/gtest.h>

namespace tremor {
namespace {

class ScaleBarPicture : public ::testing::Test {
  protected:
    ScaleBarPicture() {
        bar.resize(160, 24);
        QPalette colours;
        colours.setColor(QPalette::Window, Qt::white);
        colours.setColor(QPalette::WindowText, Qt::black);
        bar.setPalette(colours);
    }

    QImage picture() { return bar.grab().toImage(); }
    static bool isDark(const QImage& image, int x, int y) {
        return image.pixelColor(x, y).lightness() < 128;
    }
    // Columns from `from` to `to` in which something is drawn.
    static int drawnColumns(const QImage& image, int from, int to) {
        int columns = 0;
        for (int x = from; x < to; ++x) {
            bool drawn = false;
            for (int y = 0; y < image.height() && !drawn; ++y)
                drawn = isDark(image, x, y);
            columns += drawn ? 1 : 0;
        }
        return columns;
    }
    static int ink(const QImage& image) {
        int pixels = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                pixels += isDark(image, x, y) ? 1 : 0;
        return pixels;
    }
    // The longest horizontal line.
    static int longestLine(const QImage& image) {
        int longest = 0;
        for (int y = 0; y < image.height(); ++y) {
            int length = 0;
            for (int x = 0; x < image.width(); ++x) {
                length = isDark(image, x, y) ? length + 1 : 0;
                longest = std::max(longest, length);
            }
        }
        return longest;
    }

    ScaleBar bar;
};

TEST_F(ScaleBarPicture, IsEmptyBeforeTheFirstLabel) {
    EXPECT_EQ(drawnColumns(picture(), 0, 160), 0);
}

TEST_F(ScaleBarPicture, ShowsTheLengthAndABarOfFortyPixels) {
    bar.setLabel(QStringLiteral("12km "));
    const QImage image = picture();
    EXPECT_NEAR(longestLine(image), 41, 1); // both ends
    EXPECT_EQ(drawnColumns(image, 110, 160), longestLine(image));
    EXPECT_GT(ink(image), longestLine(image) + 30); // line, ticks and letters
    EXPECT_EQ(bar.label(), QStringLiteral("12km "));
    EXPECT_EQ(bar.accessibleDescription(), QStringLiteral("12km"));
}

TEST_F(ScaleBarPicture, FollowsANewLabelAndIsEmptyAgainWithoutOne) {
    bar.setLabel(QStringLiteral("1km "));
    const QImage first = picture();
    bar.setLabel(QStringLiteral("1250km "));
    EXPECT_GT(ink(picture()), ink(first));
    bar.setLabel(QString());
    EXPECT_EQ(drawnColumns(picture(), 0, 160), 0);
}

TEST_F(ScaleBarPicture, ShowsTheWidestLabelWholeInTheSpaceOfTheMainWindow) {
    bar.setLabel(QStringLiteral("6261km ")); // the whole world
    const int whole = ink(picture());
    bar.resize(72, 25);
    EXPECT_EQ(ink(picture()), whole);
}

TEST_F(ScaleBarPicture, KeepsToItsPlaceWhenItIsTooSmall) {
    bar.setLabel(QStringLiteral("1250km "));
    bar.resize(10, 4);
    EXPECT_EQ(picture().size(), QSize(10, 4));
}

} // namespace
} // namespace tremor
