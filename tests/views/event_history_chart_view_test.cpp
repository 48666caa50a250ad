#include "core/dates.h"
#include "views/event_history_chart_view.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QHelpEvent>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QToolTip>
#include <QtWidgets/QVBoxLayout>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ios>
#include <utility>
#include <vector>

namespace tremor {
namespace {

// Plot 1000 pixels wide and 250 high: 25 pixels to a magnitude, one pixel to a second.
constexpr ChartSize size{1065, 276};
constexpr int baseLine = 276 - 25;
constexpr QRgb white = qRgb(255, 255, 255);
constexpr QRgb black = qRgb(0, 0, 0);
constexpr QRgb red = qRgb(255, 0, 0);
constexpr QRgb barBlue = qRgb(100, 100, 200);

ChartEvent eventAt(std::int32_t offset, double magnitude) {
    return {.time = textToDate("2021-01-14", NumberLocale::point()) + std::chrono::seconds(offset),
            .offset = offset,
            .magnitude = magnitude};
}

ChartContents thousandSeconds(std::vector<ChartEvent> events = {}) {
    return {.startDate = "2021-01-14 00:00:00",
            .endDate = "2021-01-14 00:16:40",
            .span = 1000,
            .events = std::move(events)};
}

QImage paint(const ChartContents& contents, qreal ratio = 1) {
    return paintChart(drawChart(contents, size), size, ratio)
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

// How many pixels of a rectangle have about a colour; the edges of letters are softened.
int pixelsLike(const QImage& image, const QRect& rectangle, const QColor& colour) {
    int count = 0;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y)
        for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            count += static_cast<int>(std::abs(pixel.red() - colour.red()) < 60 &&
                                      std::abs(pixel.green() - colour.green()) < 60 &&
                                      std::abs(pixel.blue() - colour.blue()) < 60);
        }
    return count;
}

TEST(PaintChart, RulesTheAxesInBlack) {
    const QImage image = paint(thousandSeconds());
    EXPECT_EQ(image.size(), QSize(1065, 276));
    EXPECT_EQ(image.pixel(45, 5), black);
    EXPECT_EQ(image.pixel(45, baseLine + 3), black);
    EXPECT_EQ(image.pixel(45, baseLine + 4), white);
    EXPECT_EQ(image.pixel(45, 4), white);
    EXPECT_EQ(image.pixel(41, baseLine), black);
    EXPECT_EQ(image.pixel(1044, baseLine), black);
    EXPECT_EQ(image.pixel(1045, baseLine), white);
}

TEST(PaintChart, DotsTheLineOfEachMagnitudeInRed) {
    const QImage image = paint(thousandSeconds());
    EXPECT_EQ(image.pixel(40, baseLine), red);
    for (int magnitude = 1; magnitude <= 10; ++magnitude) {
        const int y = baseLine - 25 * magnitude;
        EXPECT_EQ(image.pixel(43, y), red) << magnitude;
        EXPECT_EQ(image.pixel(40 + 600, y), red) << magnitude;
        EXPECT_EQ(image.pixel(41 + 600, y), white) << magnitude;
        EXPECT_EQ(image.pixel(42 + 600, y), white) << magnitude;
    }
}

TEST(PaintChart, DrawsABarTwoPixelsWideFromTheAxisToItsMagnitude) {
    const QImage image = paint(thousandSeconds({eventAt(502, 4.2)}));
    const int x = 45 + 502;
    for (const int column : {x - 1, x}) {
        EXPECT_EQ(image.pixel(column, baseLine - 1), barBlue);
        EXPECT_EQ(image.pixel(column, baseLine - 105), barBlue);
        EXPECT_EQ(image.pixel(column, baseLine - 106), white);
        EXPECT_EQ(image.pixel(column, baseLine), black);
    }
    EXPECT_EQ(image.pixel(x - 2, baseLine - 10), white);
    EXPECT_EQ(image.pixel(x + 1, baseLine - 10), white);
}

TEST(PaintChart, StandsAnEventAtTheStartOnTheVerticalAxis) {
    const QImage image = paint(thousandSeconds({eventAt(0, 4.2)}));
    EXPECT_EQ(image.pixel(45, baseLine - 60), barBlue);
    EXPECT_EQ(image.pixel(44, baseLine - 60), barBlue);
}

TEST(PaintChart, ReachesTheTopLineWithMagnitudeTenAndLeavesThePlotAboveIt) {
    const QImage ten = paint(thousandSeconds({eventAt(502, 10)}));
    EXPECT_EQ(ten.pixel(45 + 502, 1), barBlue);
    EXPECT_EQ(ten.pixel(45 + 502, 0), white);
    const QImage eleven = paint(thousandSeconds({eventAt(502, 11)}));
    EXPECT_EQ(eleven.pixel(45 + 502, 0), barBlue);
}

TEST(PaintChart, HangsANegativeMagnitudeBelowTheAxis) {
    const QImage image = paint(thousandSeconds({eventAt(902, -0.2)}));
    EXPECT_EQ(image.pixel(45 + 902, baseLine - 1), white);
    EXPECT_EQ(image.pixel(45 + 902, baseLine + 4), barBlue);
    EXPECT_EQ(image.pixel(45 + 902, baseLine + 5), white);
}

TEST(PaintChart, WritesTheLegendInItsColours) {
    const QImage image = paint(thousandSeconds());
    const int top = 276 - 18;
    EXPECT_GT(pixelsLike(image, {45, top, 90, 18}, Qt::black), 100);
    EXPECT_GT(pixelsLike(image, {140, top, 19 * 8, 18}, Qt::red), 200);
    EXPECT_EQ(pixelsLike(image, {140, top, 19 * 8, 18}, Qt::black), 0);
    EXPECT_GT(pixelsLike(image, {292, top, 4 * 8, 18}, Qt::black), 15);
    EXPECT_GT(pixelsLike(image, {324, top, 19 * 8, 18}, Qt::blue), 200);
    EXPECT_EQ(pixelsLike(image, {324 + 19 * 8, top, 300, 18}, Qt::blue), 0);
}

TEST(PaintChart, WritesTheNumbersBesideTheirLines) {
    const QImage image = paint(thousandSeconds());
    for (int magnitude = 0; magnitude < 10; ++magnitude) {
        const int line = baseLine - 25 * magnitude;
        EXPECT_GT(pixelsLike(image, {32, line - 4, 6, 9}, Qt::black), 5) << magnitude;
        EXPECT_EQ(pixelsLike(image, {32, line + 6, 6, 12}, Qt::black), 0) << magnitude;
    }
    EXPECT_GT(pixelsLike(image, {32, 0, 11, 10}, Qt::black), 10);
    EXPECT_EQ(pixelsLike(image, {0, 0, 31, 276}, Qt::white), 31 * 276);
}

TEST(PaintChart, FillsWholePixelsAtTwiceTheDensity) {
    const QImage image = paint(thousandSeconds({eventAt(502, 4.2)}), 2);
    EXPECT_EQ(image.size(), QSize(2130, 552));
    const int x = 2 * (45 + 502);
    EXPECT_EQ(image.pixel(x - 3, 2 * baseLine - 20), white);
    for (int column = x - 2; column < x + 2; ++column)
        EXPECT_EQ(image.pixel(column, 2 * baseLine - 20), barBlue);
    EXPECT_EQ(image.pixel(x + 2, 2 * baseLine - 20), white);
    EXPECT_EQ(image.pixel(100, 2 * baseLine - 1), white);
    EXPECT_EQ(image.pixel(100, 2 * baseLine), black);
    EXPECT_EQ(image.pixel(100, 2 * baseLine + 1), black);
    EXPECT_EQ(image.pixel(100, 2 * baseLine + 2), white);
    EXPECT_EQ(image.pixel(80, 2 * baseLine - 50), red);
    EXPECT_EQ(image.pixel(81, 2 * baseLine - 49), red);
    EXPECT_EQ(image.pixel(82, 2 * baseLine - 50), white);
}

TEST(PaintChart, StaysCrispAtOneAndAHalfTimesTheDensity) {
    ChartContents contents = thousandSeconds({eventAt(501, 4.2)});
    contents.startDate.clear();
    contents.endDate.clear();
    ChartPicture picture = drawChart(contents, size);
    picture.labels.clear();
    const QImage image =
        paintChart(picture, size, 1.5).toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            ASSERT_TRUE(pixel == white || pixel == black || pixel == red || pixel == barBlue)
                << x << " " << y << " " << std::hex << pixel;
        }
}

TEST(PaintChart, GivesNoPictureForNoArea) {
    EXPECT_TRUE(paintChart(drawChart({}, {0, 0}), {0, 0}, 1).isNull());
}

class EventHistoryChartViewTest : public ::testing::Test {
  protected:
    EventHistoryChartViewTest() {
        view.setFrameStyle(QFrame::NoFrame);
        view.resize(size.width, size.height);
        view.show();
        QObject::connect(&view, &EventHistoryChartView::resized, &view, [this] { ++resizes; });
    }

    QRgb pixel(int x, int y) { return view.grab().toImage().pixel(x, y); }

    // Runs the event loop until the size has come to rest, at most 30 s.
    void waitForRest() {
        QElapsedTimer watch;
        watch.start();
        while (resizes == 0 && watch.elapsed() < 30000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }

    QString toolTipAt(int x, int y) {
        QHelpEvent help(QEvent::ToolTip, {x, y}, view.mapToGlobal(QPoint(x, y)));
        QApplication::sendEvent(&view, &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    }

    EventHistoryChartView view;
    int resizes = 0;
};

TEST_F(EventHistoryChartViewTest, ShowsAxesBeforeAnythingIsRead) {
    EXPECT_EQ(pixel(100, baseLine), black);
    EXPECT_EQ(pixelsLike(view.grab().toImage(), {46, 276 - 18, 1000, 18}, Qt::black), 0);
}

TEST_F(EventHistoryChartViewTest, ShowsTheContentsThatItIsGiven) {
    view.setContents(thousandSeconds({eventAt(502, 4.2)}));
    EXPECT_EQ(pixel(45 + 502, baseLine - 60), barBlue);
    view.setContents(thousandSeconds());
    EXPECT_EQ(pixel(45 + 502, baseLine - 60), white);
}

TEST_F(EventHistoryChartViewTest, TellsAScreenReaderWhatItShows) {
    EXPECT_EQ(view.accessibleName(), QStringLiteral("Magnitudes over time"));
    view.setContents(thousandSeconds({eventAt(502, 4.2), eventAt(503, 1)}));
    EXPECT_EQ(view.accessibleDescription(),
              QStringLiteral("2 events from 2021-01-14 00:00:00 to 2021-01-14 00:16:40"));
}

TEST_F(EventHistoryChartViewTest, ScalesTheContentsToANewSizeAtOnceAndAsksForNewOnesAtRest) {
    waitForRest(); // after the first show
    resizes = 0;
    view.setContents(thousandSeconds({eventAt(502, 10)}));
    view.resize(565, 126);
    view.resize(565, 176); // 500 pixels for 1000 s, 15 to a magnitude
    EXPECT_EQ(pixel(45 + 251, 1), barBlue);
    EXPECT_EQ(pixel(45 + 251, 0), white);
    EXPECT_EQ(pixel(544, 176 - 25), black);
    EXPECT_EQ(resizes, 0);
    waitForRest();
    EXPECT_EQ(resizes, 1);
}

TEST_F(EventHistoryChartViewTest, DrawsInsideItsFrame) {
    view.setFrameStyle(QFrame::Box | QFrame::Plain);
    view.setLineWidth(3);
    view.resize(size.width + 6, size.height + 6);
    view.setContents(thousandSeconds({eventAt(502, 4.2)}));
    EXPECT_EQ(pixel(3 + 45 + 502, 3 + baseLine - 1), barBlue);
    EXPECT_EQ(pixel(3 + 100, 3 + baseLine), black);
    EXPECT_NE(pixel(1, 100), white);
}

TEST_F(EventHistoryChartViewTest, SurvivesTheSmallestSize) {
    view.setContents(thousandSeconds({eventAt(502, 4.2)}));
    view.resize(1, 1);
    EXPECT_EQ(view.grab().size(), QSize(1, 1));
    view.setFrameStyle(QFrame::Box | QFrame::Plain);
    view.setLineWidth(3);
    EXPECT_EQ(view.grab().size(), QSize(1, 1));
}

TEST_F(EventHistoryChartViewTest, NamesTheEventUnderThePointer) {
    view.setContents(thousandSeconds({eventAt(502, 4.2), eventAt(502, 8), eventAt(700, 1)}));
    EXPECT_EQ(toolTipAt(45 + 503, baseLine - 100), QStringLiteral("2021-01-14 00:08:22   Mg 4.2"));
    EXPECT_EQ(toolTipAt(45 + 500, 20), QStringLiteral("2021-01-14 00:08:22   Mg 8"));
    EXPECT_EQ(toolTipAt(45 + 702, 20), QStringLiteral("2021-01-14 00:11:40   Mg 1"));
}

TEST_F(EventHistoryChartViewTest, NamesNoEventWhereNoneIsNear) {
    view.setContents(thousandSeconds({eventAt(502, 4.2)}));
    ASSERT_NE(toolTipAt(45 + 502, baseLine - 10), QString());
    toolTipAt(45 + 600, baseLine - 10);
    QElapsedTimer watch; // a tip takes a moment to go
    watch.start();
    while (QToolTip::isVisible() && watch.elapsed() < 30000)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    EXPECT_FALSE(QToolTip::isVisible());
}

TEST_F(EventHistoryChartViewTest, HasTheNormalPointerAndKeepsMouseMovesToItself) {
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(view.testAttribute(Qt::WA_NoMousePropagation));
}

TEST_F(EventHistoryChartViewTest, RepaintsAtOnce) {
    struct Watcher : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            paints += static_cast<int>(event->type() == QEvent::Paint);
            return false;
        }
        int paints = 0;
    } watcher;
    QCoreApplication::processEvents();
    view.installEventFilter(&watcher);
    view.repaintChart();
    EXPECT_EQ(watcher.paints, 1);
}

} // namespace
} // namespace tremor
