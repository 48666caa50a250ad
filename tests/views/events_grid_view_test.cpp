#include "support/fakes.h"
#include "views/events_grid.h"
#include "views/events_grid_view.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QHelpEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QToolTip>
#include <QtWidgets/QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tremor {
namespace {

const QColor selectionColour(128, 255, 255);

struct Click {
    qint64 row;
    int column;
    bool operator==(const Click&) const = default;
};

void PrintTo(const Click& click, std::ostream* out) {
    *out << "row " << click.row << " column " << click.column;
}

bool sendMouse(QWidget& widget, QEvent::Type type, QPoint at) {
    QMouseEvent event(type, at, widget.mapToGlobal(at), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    return QApplication::sendEvent(&widget, &event);
}

void clickAt(QWidget& widget, QPoint at) {
    sendMouse(widget, QEvent::MouseButtonPress, at);
    sendMouse(widget, QEvent::MouseButtonRelease, at);
}

void pressKey(QWidget& widget, int key, const QString& text = {}) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(&widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(&widget, &release);
}

// True when the widget itself took the turn.
bool turnWheel(QWidget& widget, int rotation) {
    const QPointF at = QRectF(widget.rect()).center();
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, rotation}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

class GridEventsTest : public ::testing::Test {
  protected:
    GridEventsTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        const int widths[] = {0, 1900, 670, 800, 500, 540};
        for (int column = 0; column < 6; ++column)
            view.setColumnWidth(column, widths[column]);
        const char* headers[] = {"", "UTC", "Latitude", "Longitude", "Mg", "Depth", "Source"};
        for (int column = 0; column < 7; ++column)
            view.setHeader(column, headers[column]);
        view.resize(500, 300);
        view.show();
        view.setFocus();
        QObject::connect(&view, &GridEvents::gridClicked, &view, [this](qint64 row, int column) {
            clicks.push_back({row, column});
        });
        QObject::connect(&view, &GridEvents::currentCellMoved, &view, [this] { ++moves; });
    }

    // Events of one minute after the other; row n of the table is minute n - 1.
    void fill(int count, const std::string& source = "SURVEY-INGV") {
        ASSERT_EQ(database.slsSel(
                      "with recursive m(n) as (select 0 union all select n + 1 from m where n + 1 "
                      "< " +
                      std::to_string(count) +
                      ") select strftime('%Y-%m-%d %H:%M:%S', '2014-03-07', '+' || n || "
                      "' minutes') || '.000', '42.1234', '-123.1234', '4.5', '10.0', '" +
                      source + "' from m"),
                  0)
            << database.slGetError();
        view.setRows(database.takeResult());
    }

    QPoint cellCentre(int row, int column) {
        return view.visualRect(view.model()->index(row - 1, column)).center();
    }
    void clickCell(int row, int column) { clickAt(*view.viewport(), cellCentre(row, column)); }

    // How many pixels of a row's first cell have the colour.
    int pixels(int row, const QColor& colour) {
        const QRect cell = view.visualRect(view.model()->index(row - 1, 1));
        const QImage image = view.viewport()->grab(cell).toImage();
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == colour ? 1 : 0;
        return count;
    }
    // Lightness of the darkest pixel of a time, 0 to 255, without the grid lines.
    int darkest(int row) {
        const QRect cell = view.visualRect(view.model()->index(row - 1, 1));
        const QImage image = view.viewport()->grab(cell).toImage();
        int lightness = 255;
        for (int y = 0; y < image.height() - 1; ++y)
            for (int x = 0; x < image.width() - 1; ++x)
                lightness = std::min(lightness, image.pixelColor(x, y).lightness());
        return lightness;
    }
    int cellArea(int row) {
        const QRect cell = view.visualRect(view.model()->index(row - 1, 1));
        return cell.width() * cell.height();
    }

    QString toolTipAt(int row, int column) {
        QToolTip::showText({}, QStringLiteral("old")); // a tip that has to give way
        QHelpEvent event(QEvent::ToolTip, cellCentre(row, column),
                         view.viewport()->mapToGlobal(cellCentre(row, column)));
        QApplication::sendEvent(view.viewport(), &event);
        // A tip that is told to go stays for a moment.
        QElapsedTimer timer;
        for (timer.start(); QToolTip::text() == QStringLiteral("old") && !timer.hasExpired(30000);)
            QApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
        return QToolTip::text();
    }

    testing::TemporaryFolder folder;
    Database database;
    GridEvents view;
    std::vector<Click> clicks;
    int moves = 0;
};

TEST_F(GridEventsTest, IsFoundByItsName) {
    EXPECT_EQ(view.objectName(), QStringLiteral("GridEvents"));
}

TEST_F(GridEventsTest, CountsTheHeaderAsARow) {
    EXPECT_EQ(view.rowCount(), 1);
    fill(3);
    EXPECT_EQ(view.rowCount(), 4);
    view.clearRows();
    EXPECT_EQ(view.rowCount(), 1);
    EXPECT_EQ(view.header(1), "UTC");
}

TEST_F(GridEventsTest, GivesCellsByGridRowAndColumn) {
    fill(3);
    EXPECT_EQ(view.cell(1, 1), "2014-03-07 00:00:00.000");
    EXPECT_EQ(view.cell(3, 1), "2014-03-07 00:02:00.000");
    EXPECT_EQ(view.cell(1, 6), "SURVEY-INGV");
    EXPECT_EQ(view.cell(0, 1), "");
    EXPECT_EQ(view.cell(4, 1), "");
    EXPECT_EQ(view.cell(1, 0), "");
}

// Size

TEST_F(GridEventsTest, TurnsTwipsIntoPixelsAndHidesAColumnOfWidthZero) {
    ASSERT_EQ(view.logicalDpiX(), 96);
    EXPECT_TRUE(view.isColumnHidden(0));
    EXPECT_EQ(view.columnWidth(1), 127); // 1900 / 15, rounded
    EXPECT_EQ(view.columnWidth(2), 45);
    EXPECT_EQ(view.columnWidth(3), 53);
    EXPECT_EQ(view.columnWidth(4), 33);
    EXPECT_EQ(view.columnWidth(5), 36);
    EXPECT_FALSE(view.verticalHeader()->isVisible());
}

TEST_F(GridEventsTest, StretchesTheLastColumnToTheEdge) {
    fill(3);
    EXPECT_EQ(view.columnViewportPosition(6) + view.columnWidth(6), view.viewport()->width());
}

TEST_F(GridEventsTest, ShowsAWholeOriginTimeUnderEveryApplicationFont) {
    fill(1);
    const QFont before = QApplication::font();
    for (const char* family : {"DejaVu Sans", "Liberation Sans", "DejaVu Sans Mono"})
        for (const int points : {7, 9, 14, 30}) {
            QApplication::setFont(QFont(QString::fromLatin1(family), points));
            GridEvents other;
            other.setColumnWidth(1, 1900);
            database.slsSel("select '2014-03-07 00:00:00.000'");
            other.setRows(database.takeResult());
            const QModelIndex utc = other.model()->index(0, 1);
            EXPECT_LE(other.sizeHintForIndex(utc).width(), other.visualRect(utc).width())
                << family << " " << points;
            EXPECT_GE(other.rowHeight(0), QFontMetrics(other.font()).height());
            EXPECT_GE(QFontInfo(other.font()).pixelSize(), 6);
        }
    QApplication::setFont(before);
}

TEST_F(GridEventsTest, FollowsALargerFontOfTheApplicationWithoutCuttingTheTime) {
    fill(1);
    const QFont before = QApplication::font();
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 30));
    const QModelIndex utc = view.model()->index(0, 1);
    EXPECT_LE(view.sizeHintForIndex(utc).width(), view.visualRect(utc).width());
    QApplication::setFont(before);
}

// Mouse and keyboard

TEST_F(GridEventsTest, ReportsAClickOnACellAfterTheMoveOfTheCurrentCell) {
    fill(3);
    moves = 0;
    QList<int> movesAtClick;
    QObject::connect(&view, &GridEvents::gridClicked, &view, [&] { movesAtClick.append(moves); });
    clickCell(2, 3);
    EXPECT_EQ(clicks, (std::vector<Click>{{2, 3}}));
    EXPECT_EQ(movesAtClick, (QList<int>{1}));
}

TEST_F(GridEventsTest, ReportsASecondClickOnTheSameRow) {
    fill(3);
    clickCell(2, 3);
    moves = 0;
    clickCell(2, 3);
    EXPECT_EQ(clicks, (std::vector<Click>{{2, 3}, {2, 3}}));
    EXPECT_EQ(moves, 0);
}

TEST_F(GridEventsTest, ReportsNoClickBelowTheRows) {
    fill(1);
    clickAt(*view.viewport(), {50, view.viewport()->height() - 3});
    EXPECT_TRUE(clicks.empty());
}

TEST_F(GridEventsTest, ReportsAClickOnAColumnHead) {
    fill(1);
    QHeaderView& heads = *view.horizontalHeader();
    clickAt(*heads.viewport(), {heads.sectionViewportPosition(4) + 10, heads.height() / 2});
    EXPECT_EQ(clicks, (std::vector<Click>{{0, 4}}));
}

TEST_F(GridEventsTest, MovesByArrowsAndSelectsByReturnAndEnter) {
    fill(5);
    clickCell(1, 1);
    clicks.clear();
    moves = 0;
    pressKey(view, Qt::Key_Down);
    pressKey(view, Qt::Key_Down);
    EXPECT_EQ(moves, 2);
    EXPECT_TRUE(clicks.empty()); // arrows alone choose nothing
    pressKey(view, Qt::Key_Return);
    pressKey(view, Qt::Key_Up);
    pressKey(view, Qt::Key_Enter);
    EXPECT_EQ(clicks, (std::vector<Click>{{3, 1}, {2, 1}}));
}

TEST_F(GridEventsTest, SelectsNothingByReturnInAnEmptyTable) {
    pressKey(view, Qt::Key_Return);
    EXPECT_TRUE(clicks.empty());
}

TEST_F(GridEventsTest, DoesNotSearchWhatIsTyped) {
    fill(5);
    clickCell(3, 1);
    moves = 0;
    pressKey(view, Qt::Key_2, QStringLiteral("2"));
    EXPECT_EQ(view.currentIndex().row(), 2);
    EXPECT_EQ(moves, 0);
}

TEST_F(GridEventsTest, LetsTabLeaveTheTable) {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* table = new GridEvents;
    auto* next = new QLineEdit;
    layout->addWidget(table);
    layout->addWidget(next);
    database.slsSel("select 'a', 'b'");
    table->setRows(database.takeResult());
    window.show();
    window.activateWindow();
    QApplication::setActiveWindow(&window);
    table->setFocus();
    ASSERT_TRUE(table->hasFocus());
    pressKey(*table, Qt::Key_Tab, QStringLiteral("\t"));
    EXPECT_TRUE(next->hasFocus());
}

// Colours

TEST_F(GridEventsTest, PaintsTheSelectedRowInLightBlue) {
    fill(3);
    clickCell(2, 1); // the palette's highlight must not lie over the colour
    view.setRowSelected(2, true);
    EXPECT_GT(pixels(2, selectionColour), cellArea(2) / 2);
    EXPECT_EQ(pixels(1, selectionColour), 0);
    view.setRowSelected(2, false);
    EXPECT_EQ(pixels(2, selectionColour), 0);
}

TEST_F(GridEventsTest, GivesAReleasedRowTheWindowBackground) {
    fill(3);
    view.setRowSelected(2, true);
    view.setRowSelected(2, false);
    EXPECT_GT(pixels(2, view.palette().color(QPalette::Base)), cellArea(2) / 2);
}

TEST_F(GridEventsTest, WritesDarkTextOnTheSelectionColourInADarkPalette) {
    QPalette dark(QColor(40, 40, 40), QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::HighlightedText, Qt::white);
    view.setPalette(dark);
    fill(3);
    clickCell(2, 1);
    view.setRowSelected(2, true);
    EXPECT_GT(pixels(2, selectionColour), cellArea(2) / 2);
    EXPECT_EQ(pixels(2, Qt::white), 0);
    const QImage image =
        view.viewport()->grab(view.visualRect(view.model()->index(1, 1))).toImage();
    int darkPixels = 0;
    for (int y = 0; y < image.height() - 1; ++y) // without the grid line
        for (int x = 0; x < image.width() - 1; ++x)
            darkPixels += image.pixelColor(x, y).lightness() < 60 ? 1 : 0;
    EXPECT_GT(darkPixels, 20);
}

TEST_F(GridEventsTest, ShowsTheCurrentRowThatIsNotSelectedByThePalettesHighlight) {
    fill(3);
    clickCell(1, 1);
    pressKey(view, Qt::Key_Down);
    EXPECT_GT(pixels(2, view.palette().color(QPalette::Highlight)), cellArea(2) / 2);
}

TEST_F(GridEventsTest, LosesTheColourWithTheRows) {
    fill(3);
    view.setRowSelected(2, true);
    fill(3);
    EXPECT_EQ(pixels(2, selectionColour), 0);
}

TEST_F(GridEventsTest, WritesRowsInGreyUntilTheRowsChange) {
    fill(3);
    view.setRowsGrey({0, 2, 4});
    EXPECT_LT(darkest(1), 60);
    EXPECT_GE(darkest(2), 128);
    EXPECT_LT(darkest(2), 200); // the text is there
    EXPECT_LT(darkest(3), 60);
    fill(3);
    EXPECT_LT(darkest(2), 60);
}

TEST_F(GridEventsTest, IgnoresTheColourOfTheHeaderAndOfRowsThatAreNotThere) {
    fill(3);
    view.setRowSelected(0, true);
    view.setRowSelected(4, true);
    for (int row = 1; row <= 3; ++row)
        EXPECT_EQ(pixels(row, selectionColour), 0);
}

// Tool tips

TEST_F(GridEventsTest, ShowsTheWholeTextOfACutCell) {
    const std::string source(200, 'x');
    fill(1, source);
    EXPECT_TRUE(toolTipAt(1, 6).contains(QString::fromStdString(source)));
}

TEST_F(GridEventsTest, ShowsNoToolTipForAWholeText) {
    fill(1);
    EXPECT_EQ(toolTipAt(1, 1), QString());
    EXPECT_EQ(toolTipAt(1, 6), QString());
}

TEST_F(GridEventsTest, ShowsMarkupInAToolTipAsPlainText) {
    fill(1, "<b>" + std::string(200, 'x') + "</b>");
    const QString tip = toolTipAt(1, 6);
    EXPECT_TRUE(tip.contains(QStringLiteral("&lt;b&gt;x"))) << tip.toStdString();
    EXPECT_FALSE(tip.contains(QStringLiteral("<b>")));
}

// Scrolling

TEST_F(GridEventsTest, LeavesTheWheelToItsWindow) {
    fill(100);
    EXPECT_FALSE(turnWheel(*view.viewport(), -120));
    EXPECT_FALSE(turnWheel(*view.verticalScrollBar(), -120));
    EXPECT_EQ(view.topRow(), 1);
}

TEST_F(GridEventsTest, ScrollsToATopRow) {
    fill(100);
    view.setTopRow(40);
    EXPECT_EQ(view.topRow(), 40);
    EXPECT_TRUE(view.rowVisible(40));
    EXPECT_FALSE(view.rowVisible(39));
    EXPECT_FALSE(view.rowVisible(99));
    EXPECT_FALSE(view.rowVisible(0));
    EXPECT_FALSE(view.rowVisible(101));
    view.setTopRow(0); // the header is no row to scroll to
    EXPECT_EQ(view.topRow(), 40);
}

TEST_F(GridEventsTest, ShowsTheLastRowsWhenTheTopRowLiesBehindThem) {
    fill(100);
    view.setTopRow(100);
    EXPECT_TRUE(view.rowVisible(100));
}

TEST_F(GridEventsTest, HoldsAMillionRows) {
    fill(1'000'000);
    EXPECT_EQ(view.rowCount(), 1'000'001);
    view.setTopRow(1'000'000);
    EXPECT_TRUE(view.rowVisible(1'000'000));
    EXPECT_EQ(view.cell(1'000'000, 1), "2016-01-30 10:39:00.000");
    view.setRowSelected(1'000'000, true);
    EXPECT_GT(pixels(1'000'000, selectionColour), cellArea(1'000'000) / 2);
}

// The table together with its logic

class NoMap : public GridMap {
  public:
    void removeAll() override {}
    MapBounds boundsVisualizedMap() override { return {}; }
    void selectMarker(std::string_view utc) override { markers.emplace_back(utc); }
    std::vector<std::string> markers;
};

class ReportedTowns : public TownsReport {
  public:
    void eventOnPOI(const SelectedEvent& event) override { times.push_back(event.utc); }
    std::vector<std::string> times;
};

class GridWithLogicTest : public GridEventsTest {
  protected:
    GridWithLogicTest() {
        EXPECT_EQ(database.slsExe("CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, "
                                  "'Longitude' REAL, 'Depth' REAL, 'Magnitude' DOUBLE, 'Source' "
                                  "TEXT, 'null' TEXT)"),
                  0);
        EXPECT_EQ(database.slsExe("insert into Events(UTC, Magnitude) values "
                                  "('2014-03-07 00:00:01.000', 5), "
                                  "('2014-03-07 00:00:02.000', 9), "
                                  "('2014-03-07 00:00:03.000', 10)"),
                  0);
        QObject::connect(&view, &GridEvents::gridClicked, &view,
                         [this](qint64 row, int column) { grid.GridEvents_Click(row, column); });
        QObject::connect(&view, &GridEvents::currentCellMoved, &view,
                         [this] { grid.GridEvents_SelChange(); });
        grid.FillGridEvents("UTC > ''", "", "");
    }

    Session session;
    AppSettings settings;
    testing::FakeClock clock;
    NoMap map;
    ReportedTowns towns;
    testing::ErrorHarness harness;
    EventsGrid grid{database, session, settings,        clock,          NumberLocale::point(), view,
                    map,      towns,   harness.prompts, harness.errors, [] { return true; }};
};

TEST_F(GridWithLogicTest, SelectsByMouseReleasesByArrowAndSelectsByReturn) {
    clickCell(1, 2);
    EXPECT_GT(pixels(1, selectionColour), cellArea(1) / 2);
    pressKey(view, Qt::Key_Down);
    EXPECT_EQ(pixels(1, selectionColour), 0);
    EXPECT_EQ(pixels(2, selectionColour), 0);
    pressKey(view, Qt::Key_Return);
    EXPECT_GT(pixels(2, selectionColour), cellArea(2) / 2);
    const std::vector<std::string> chosen{"2014-03-07 00:00:03.000", "2014-03-07 00:00:02.000"};
    EXPECT_EQ(towns.times, chosen);
    EXPECT_EQ(map.markers, chosen);
}

TEST_F(GridWithLogicTest, KeepsTheColourOnASecondClickOnTheSameRow) {
    clickCell(1, 2);
    clickCell(1, 4);
    EXPECT_GT(pixels(1, selectionColour), cellArea(1) / 2);
}

TEST_F(GridWithLogicTest, SortsByClicksOnAColumnHead) {
    QHeaderView& heads = *view.horizontalHeader();
    const QPoint head(heads.sectionViewportPosition(4) + 10, heads.height() / 2);
    clickAt(*heads.viewport(), head);
    EXPECT_EQ(view.cell(1, 4), "10.0");
    EXPECT_EQ(view.header(4), "Mg ");
    clickAt(*heads.viewport(), head);
    EXPECT_EQ(view.cell(1, 4), "5.0");
    EXPECT_EQ(view.header(4), "Mg");
}

} // namespace
} // namespace tremor
