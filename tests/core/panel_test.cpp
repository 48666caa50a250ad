#include "core/frm_about.h"
#include "core/panel.h"
#include "core/panel_harness.h"

#include <QtCore/QDeadlineTimer>
#include <QtGui/QAction>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace tremor::testing {
namespace {

using namespace std::chrono_literals;

std::string title(const panel& window) {
    return window.windowTitle().toStdString();
}

int pixelsOf(std::int32_t twips) {
    return twips / 15;
}

void click(PanelHarness& harness, const char* item) {
    harness.control<QAction>(item).trigger();
}

void turnWheel(const panel& window, QPoint place, QPoint turn,
               Qt::ScrollPhase phase = Qt::NoScrollPhase) {
    QWheelEvent event(place, window.mapToGlobal(place), QPoint(), turn, Qt::NoButton,
                      Qt::NoModifier, phase, false);
    QCoreApplication::sendEvent(window.windowHandle(), &event);
}

void mouse(QWidget& widget, QEvent::Type type, int y, Qt::MouseButton button,
           Qt::MouseButtons buttons) {
    const QPointF place(20, y);
    QMouseEvent event(type, place, widget.mapToGlobal(place), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

bool aboutIsOpen() {
    for (const QWidget* window : QApplication::topLevelWidgets())
        if (window->objectName() == QStringLiteral("FrmAbout") && window->isVisible())
            return true;
    return false;
}

// Start.

int commandsOnAWorkspace(PanelHarness& harness) {
    int enabled = harness.control<QPushButton>("cmd_JumpWRK").isEnabled() ? 1 : 0;
    for (const char* name : {"mnuSearchWRK", "mnuJump2WRK", "mnuDeleteWRK"})
        enabled += harness.control<QAction>(name).isEnabled() ? 1 : 0;
    return enabled;
}

TEST(PanelStart, WithoutACatalogueTellsSoAndGoesOn) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=1"});
    panel& window = harness.make();
    expectMissingDatabase(harness);
    bool shownBehindTheQuestion = false;
    bool ticking = true;
    harness.prompts.whileOpen = [&] {
        shownBehindTheQuestion = window.isVisible() && window.windowHandle()->isExposed();
        ticking = harness.control<QTimer>("upRemote").isActive();
    };
    window.Form_Load();
    EXPECT_TRUE(shownBehindTheQuestion);
    EXPECT_FALSE(ticking);
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0");
    const std::vector<std::string>& log = harness.log();
    ASSERT_EQ(log.size(), 7u);
    EXPECT_EQ(log[2], "Tremorledger is running...");
    EXPECT_EQ(log[3], "You must update your Database...");
    EXPECT_EQ(log[6], "to update your Database.");
    EXPECT_FALSE(harness.control<QAction>("mnuSearch").isEnabled());
    EXPECT_EQ(commandsOnAWorkspace(harness), 0);
    EXPECT_TRUE(harness.control<QTimer>("upRemote").isActive());
}

TEST(PanelStart, WithACatalogueFillsTheGridAndEnablesTheControls) {
    PanelHarness harness;
    panel& window = harness.start(5);
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0 - Database: catalogue.sqlite");
    EXPECT_TRUE(harness.session.DatabaseOpen);
    EXPECT_EQ(harness.control<GridEvents>("GridEvents").rowCount(), 6);
    EXPECT_TRUE(harness.control<QAction>("mnuSearch").isEnabled());
    EXPECT_TRUE(harness.control<QComboBox>("cmb_wrkSp").isEnabled());
    EXPECT_EQ(commandsOnAWorkspace(harness), 4);
    EXPECT_TRUE(harness.control<QAction>("mnuUpdateWRKwithEvents").isChecked());
}

TEST(PanelStart, WithoutInternetLeavesTheMapControlsOff) {
    PanelHarness harness;
    harness.hosts.InternetProbe = "http://127.0.0.1:1";
    harness.start(1);
    EXPECT_FALSE(harness.session.InternetUp);
    EXPECT_EQ(harness.log()[5], "Internet Connection is down.");
    EXPECT_FALSE(harness.control<QComboBox>("cmb_wrkSp").isEnabled());
    EXPECT_TRUE(harness.control<QAction>("mnuSearch").isEnabled());
}

TEST(PanelStart, ChecksTheWorkspaceItemAsTheSettingSays) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=1", "wrkSpaceUpdating=0"});
    expectMissingDatabase(harness);
    harness.make().Form_Load();
    EXPECT_FALSE(harness.control<QAction>("mnuUpdateWRKwithEvents").isChecked());
}

TEST(PanelStart, StartsTheTimersWithTheirIntervals) {
    PanelHarness harness;
    harness.make();
    EXPECT_EQ(harness.control<QTimer>("upRemote").interval(), 1000);
    EXPECT_EQ(harness.control<QTimer>("TimerCheckScreenshot").interval(), 5000);
    EXPECT_FALSE(harness.control<QTimer>("upRemote").isActive());
    EXPECT_TRUE(harness.control<QTimer>("TimerCheckScreenshot").isActive());
}

TEST(PanelStart, ShowsTheLogoForTwoSeconds) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=0"});
    expectMissingDatabase(harness);
    panel& window = harness.make();
    bool seen = false;
    bool tickedMeanwhile = false;
    harness.meanwhile = [&] {
        seen = seen || aboutIsOpen();
        tickedMeanwhile = tickedMeanwhile || harness.control<QTimer>("upRemote").isActive();
    };
    window.Form_Load();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(tickedMeanwhile);
    EXPECT_FALSE(aboutIsOpen());
    EXPECT_GE(harness.clock.steady(), 2000ms);
    EXPECT_TRUE(harness.control<QTimer>("upRemote").isActive());
}

TEST(PanelStart, ShowsNoLogoWhenTheSettingIsNotZero) {
    for (const char* setting : {"StartupLogo=1", "StartupLogo=7"}) {
        PanelHarness harness;
        harness.writeSettings({setting});
        expectMissingDatabase(harness);
        panel& window = harness.make();
        bool seen = false;
        harness.meanwhile = [&] { seen = seen || aboutIsOpen(); };
        window.Form_Load();
        EXPECT_FALSE(seen) << setting;
        EXPECT_LT(harness.clock.steady(), 2000ms) << setting;
    }
}

TEST(PanelStart, ClosedDuringTheServicesUnloadsWithoutTicking) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=0"});
    panel& window = harness.make();
    expectMissingDatabase(harness);
    bool seen = false;
    harness.prompts.whileOpen = [&] { window.close(); };
    harness.meanwhile = [&] { seen = seen || aboutIsOpen(); };
    window.Form_Load();
    EXPECT_EQ(harness.session.WaitCounter, 99999);
    EXPECT_FALSE(harness.control<QTimer>("upRemote").isActive());
    EXPECT_FALSE(harness.control<QTimer>("TimerCheckScreenshot").isActive());
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(seen);
    EXPECT_EQ(harness.unloads, 1);
}

TEST(PanelStart, ClosedDuringTheLogoEndsTheWaitForIt) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=0"});
    panel& window = harness.make();
    expectMissingDatabase(harness);
    harness.meanwhile = [&] {
        if (aboutIsOpen())
            window.close();
    };
    window.Form_Load();
    EXPECT_LT(harness.clock.steady(), 2000ms);
    EXPECT_FALSE(aboutIsOpen());
    EXPECT_EQ(harness.unloads, 1);
}

// Size.

TEST(PanelSize, IsTheStoredOneFromTheFirstMoment) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=1", "PanelXSize=0", "PanelYSize=10800"});
    panel& window = harness.make();
    expectMissingDatabase(harness);
    QSize first;
    harness.meanwhile = [&] {
        if (first.isEmpty() && window.isVisible())
            first = window.size();
    };
    harness.prompts.whileOpen = [&] { first = first.isEmpty() ? window.size() : first; };
    window.Form_Load();
    EXPECT_EQ(first, QSize(933, 720));
    EXPECT_EQ(window.size(), first);
    EXPECT_FALSE(harness.session.ResizeFromLoad);
}

TEST(PanelSize, IsStoredHeldToTheSmallestAfterTheStart) {
    PanelHarness harness;
    harness.writeSettings({"StartupLogo=1"});
    expectMissingDatabase(harness);
    panel& window = harness.make();
    window.Form_Load();
    EXPECT_EQ(window.size(), QSize(933, 667));
    EXPECT_EQ(window.components().settings.PanelXSize, 14000);
    EXPECT_EQ(window.components().settings.PanelYSize, 10005);
}

TEST(PanelSize, IsStoredAfterAResizeAndWrittenAtTheEnd) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(1200, 780);
    EXPECT_EQ(window.components().settings.PanelXSize, 18000);
    EXPECT_EQ(window.components().settings.PanelYSize, 11700);
    window.close();
    EXPECT_NE(harness.settingsFile().find("PanelXSize=18000\r\nPanelYSize=11700\r\n"),
              std::string::npos);
}

TEST(PanelSize, OfALoadingWindowIsNotTakenForTheOperators) {
    PanelHarness harness;
    panel& window = harness.start(0);
    harness.session.ResizeFromLoad = true;
    window.resize(1200, 780);
    EXPECT_NE(window.components().settings.PanelXSize, 18000);
    EXPECT_FALSE(harness.session.ResizeFromLoad);
    window.resize(1100, 780);
    EXPECT_EQ(window.components().settings.PanelXSize, 16500);
}

TEST(PanelSize, NeverFallsBelowTheSmallest) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(100, 100);
    EXPECT_EQ(window.size(), QSize(933, 667));
}

TEST(PanelSize, OfAMinimisedWindowChangesNothing) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(1200, 780);
    window.showMinimized();
    window.resize(1100, 700);
    EXPECT_EQ(window.components().settings.PanelXSize, 18000);
    EXPECT_EQ(window.components().settings.PanelYSize, 11700);
}

TEST(PanelSize, LaysTheFramesOut) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(1200, 780); // 18000 x 11700 twips
    const QWidget& map = harness.control<QWidget>("FrmWorkspace");
    EXPECT_EQ(map.height(), pixelsOf(11700 - 3750));
    EXPECT_NEAR(map.width(), pixelsOf(18000 - 5950), 1);
    EXPECT_NEAR(harness.control<QWidget>("WebBrowser1").height(), map.height() - pixelsOf(1150), 1);
    EXPECT_NEAR(harness.control<QWidget>("Frame2").y(), map.geometry().bottom() + 1 + pixelsOf(50),
                1);
}

// Splitter.

TEST(PanelSplitter, ShowsTheSizingPointerOnItsBandOnly) {
    PanelHarness harness;
    harness.start(0);
    QWidget& frame = harness.control<QWidget>("Frame2");
    const auto pointerAt = [&](int y) {
        mouse(frame, QEvent::MouseMove, y, Qt::NoButton, Qt::NoButton);
        return frame.cursor().shape();
    };
    EXPECT_EQ(pointerAt(2), Qt::ArrowCursor);
    EXPECT_EQ(pointerAt(3), Qt::SizeVerCursor);
    EXPECT_EQ(pointerAt(6), Qt::SizeVerCursor);
    EXPECT_EQ(pointerAt(7), Qt::ArrowCursor);
}

TEST(PanelSplitter, FollowsTheMouseWhileItsButtonIsDown) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(1200, 1000);
    QWidget& frame = harness.control<QWidget>("Frame2");
    const QWidget& map = harness.control<QWidget>("FrmWorkspace");
    const QRect before = frame.geometry();
    const int mapBefore = map.height();
    mouse(frame, QEvent::MouseButtonPress, 5, Qt::LeftButton, Qt::LeftButton);
    EXPECT_EQ(frame.cursor().shape(), Qt::SizeVerCursor);
    mouse(frame, QEvent::MouseMove, -40, Qt::NoButton, Qt::LeftButton);
    EXPECT_EQ(frame.y(), before.y() - 40);
    EXPECT_EQ(frame.height(), before.height() + 40);
    EXPECT_EQ(map.height(), mapBefore - 40);
    mouse(frame, QEvent::MouseButtonRelease, 5, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(frame.cursor().shape(), Qt::ArrowCursor);
}

TEST(PanelSplitter, IsNotDraggedByMovesOverTheChart) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.resize(1200, 1000);
    const QRect before = harness.control<QWidget>("Frame2").geometry();
    mouse(harness.control<QWidget>("PicEvHist"), QEvent::MouseMove, 40, Qt::NoButton,
          Qt::LeftButton);
    EXPECT_EQ(harness.control<QWidget>("Frame2").geometry(), before);
}

// Wheel.

class PanelWheel : public ::testing::Test {
  protected:
    PanelWheel() : window(harness.start(60)), grid(harness.control<GridEvents>("GridEvents")) {}
    PanelHarness harness;
    panel& window;
    GridEvents& grid;
};

TEST_F(PanelWheel, ScrollsTheGridByThreeRowsWhereverThePointerIs) {
    const QPoint overTheMap =
        harness.control<QWidget>("WebBrowser1").mapTo(&window, QPoint(50, 50));
    turnWheel(window, overTheMap, {0, -120});
    EXPECT_EQ(grid.topRow(), 4);
    const QPoint overTheGrid = grid.mapTo(&window, QPoint(50, 80));
    turnWheel(window, overTheGrid, {0, -120});
    EXPECT_EQ(grid.topRow(), 7);
    turnWheel(window, overTheMap, {0, 120});
    EXPECT_EQ(grid.topRow(), 4);
}

TEST_F(PanelWheel, StopsAtTheFirstRow) {
    grid.setTopRow(2);
    turnWheel(window, {10, 10}, {0, 120});
    EXPECT_EQ(grid.topRow(), 1);
}

TEST_F(PanelWheel, TakesARotationOfZeroForDown) {
    window.MouseWheel(0, 0, 0, 0);
    EXPECT_EQ(grid.topRow(), 4);
}

TEST_F(PanelWheel, IgnoresTurnsToTheSideAndTouchesWithoutATurn) {
    turnWheel(window, {10, 10}, {120, 0});
    turnWheel(window, {10, 10}, {0, 0}, Qt::ScrollBegin);
    turnWheel(window, {10, 10}, {0, 0}, Qt::ScrollEnd);
    EXPECT_EQ(grid.topRow(), 1);
}

TEST_F(PanelWheel, PassesTheTurnOnToTheControlUnderThePointer) {
    for (int i = 0; i < 100; ++i)
        window.components().log.addBareLine("line");
    window.components().log.selectLast();
    auto& log = harness.control<LogListView>("lst_prog_log");
    QCoreApplication::processEvents();
    const int before = log.verticalScrollBar()->value();
    ASSERT_GT(before, 0);
    turnWheel(window, log.mapTo(&window, QPoint(30, 30)), {0, 120});
    EXPECT_LT(log.verticalScrollBar()->value(), before);
}

TEST_F(PanelWheel, DoesNothingOnceTheWindowIsUnloaded) {
    window.close();
    turnWheel(window, {10, 10}, {0, -120});
    EXPECT_EQ(grid.topRow(), 1);
}

// Menu.

TEST(PanelMenuCommands, OpenDatabaseAsksAndFillsTheViews) {
    PanelHarness harness;
    panel& window = harness.start(2);
    const std::string other = harness.makeCatalogue("other", 7);
    harness.prompts.expectFileDialog("Select Sqlite file...", other);
    std::int16_t suspended = 0;
    harness.prompts.whileOpen = [&] { suspended = harness.session.PollingSuspended; };
    click(harness, "mnu_Open_Database");
    EXPECT_EQ(suspended, 1);
    EXPECT_EQ(harness.session.PollingSuspended, 0);
    const FileDialogRequest& request = harness.prompts.lastFileDialog;
    EXPECT_EQ(request.filter, "Sqlite File (*.sqlite)|*.sqlite");
    EXPECT_EQ(request.defaultExtension, "db");
    EXPECT_EQ(request.initialFolder, harness.folder.path());
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0 - Database: other.sqlite");
    EXPECT_EQ(harness.control<GridEvents>("GridEvents").rowCount(), 8);
    EXPECT_EQ(harness.control<QComboBox>("cmb_wrkSp").currentText(), QStringLiteral("Global"));
}

TEST(PanelMenuCommands, OpenDatabaseCancelledChangesNothing) {
    PanelHarness harness;
    panel& window = harness.start(2);
    const std::string path = window.components().settings.Path;
    harness.prompts.expectFileDialog("Select Sqlite file...", std::nullopt);
    click(harness, "mnu_Open_Database");
    EXPECT_EQ(window.components().settings.Path, path);
    EXPECT_EQ(harness.session.PollingSuspended, 0);
}

TEST(PanelMenuCommands, OpenDatabaseOfAnotherProgramLeavesThePanelWithoutOne) {
    PanelHarness harness;
    panel& window = harness.start(2);
    const std::string foreign = harness.folder.file("foreign.sqlite");
    {
        Database database;
        ASSERT_EQ(database.slsOpen(foreign, "C"), 0);
        ASSERT_EQ(database.slsExe("CREATE TABLE t (a TEXT)"), 0);
    }
    harness.prompts.expectFileDialog("Select Sqlite file...", foreign);
    harness.prompts.expectBox("This is Database of another Program.", "Error...", BoxIcon::Critical,
                              BoxButtons::Ok, BoxAnswer::Ok);
    click(harness, "mnu_Open_Database");
    EXPECT_FALSE(harness.session.DatabaseOpen);
    EXPECT_EQ(harness.session.PollingSuspended, 0);
    EXPECT_FALSE(harness.control<QAction>("mnu_ManageDB").isEnabled());
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0");
}

TEST(PanelMenuCommands, CreateDatabaseMakesAndOpensTheFile) {
    PanelHarness harness;
    panel& window = harness.start(2);
    harness.prompts.expectInput("Choose a Name of your new Database.", "p");
    click(harness, "mnu_createDB");
    EXPECT_TRUE(std::filesystem::exists(harness.folder.file("p.sqlite")));
    EXPECT_EQ(window.components().settings.Path, harness.folder.file("p.sqlite"));
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0 - Database: p.sqlite");
    EXPECT_EQ(harness.log().back(), "Database p created.");
}

TEST(PanelMenuCommands, CreateDatabaseRefusesANameWithABlank) {
    PanelHarness harness;
    panel& window = harness.start(2);
    const std::string path = window.components().settings.Path;
    harness.prompts.expectInput("Choose a Name of your new Database.", "my catalogue");
    harness.prompts.expectBox("Invalid name Database.", "Error...", BoxIcon::Critical,
                              BoxButtons::Ok, BoxAnswer::Ok);
    click(harness, "mnu_createDB");
    EXPECT_EQ(harness.log().back(), "Cannot create a Database with special characters.");
    EXPECT_EQ(window.components().settings.Path, path);
}

TEST(PanelMenuCommands, CreateDatabaseCancelledDoesNothing) {
    PanelHarness harness;
    harness.start(2);
    const std::size_t lines = harness.log().size();
    harness.prompts.expectInput("Choose a Name of your new Database.", std::nullopt);
    click(harness, "mnu_createDB");
    EXPECT_EQ(harness.log().size(), lines);
}

TEST(PanelMenuCommands, CreateDatabaseWithATakenNameOpensThePresentOneAgain) {
    PanelHarness harness;
    panel& window = harness.start(2);
    harness.prompts.expectInput("Choose a Name of your new Database.", "catalogue");
    harness.prompts.expectBox("Database already exist.", "Error...", BoxIcon::Information,
                              BoxButtons::Ok, BoxAnswer::Ok);
    click(harness, "mnu_createDB");
    EXPECT_EQ(harness.log().back(), "Database catalogue already exist.");
    EXPECT_TRUE(harness.session.DatabaseOpen);
    EXPECT_EQ(title(window), "TREMORLEDGER 1.0.0 - Database: catalogue.sqlite");
}

TEST(PanelMenuCommands, StartAllServicesShowsTheHourglassMeanwhile) {
    PanelHarness harness;
    panel& window = harness.start(2);
    window.components().settings.Path = harness.folder.file("gone.sqlite");
    expectMissingDatabase(harness);
    bool hourglass = false;
    harness.prompts.whileOpen = [&] {
        const QCursor* pointer = QApplication::overrideCursor();
        hourglass = pointer != nullptr && pointer->shape() == Qt::WaitCursor;
    };
    click(harness, "mnu_startallservices");
    EXPECT_TRUE(hourglass);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(harness.log().back(), "to update your Database.");
}

TEST(PanelMenuCommands, UpdateWorkspaceWithEventsTogglesTheSetting) {
    PanelHarness harness;
    panel& window = harness.start(0);
    click(harness, "mnuUpdateWRKwithEvents");
    EXPECT_EQ(window.components().settings.wrkSpaceUpdating, 0);
    click(harness, "mnuUpdateWRKwithEvents");
    EXPECT_EQ(window.components().settings.wrkSpaceUpdating, 1);
}

TEST(PanelMenuCommands, AboutShowsOneBoxOnly) {
    PanelHarness harness;
    panel& window = harness.start(0);
    click(harness, "mnu_About");
    click(harness, "mnu_About");
    EXPECT_TRUE(aboutIsOpen());
    EXPECT_EQ(window.findChildren<FrmAbout*>().size(), 1);
}

TEST(PanelMenuCommands, ExitUnloadsTheWindow) {
    PanelHarness harness;
    panel& window = harness.start(0);
    click(harness, "mnu_Exit");
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(harness.unloads, 1);
}

// The road of an event.

TEST(PanelPoll, CollectDataFetchesAtTheNextTickAndTheGridShowsTheEvents) {
    PanelHarness harness;
    panel& window = harness.start(0);
    harness.transfer.document =
        "#EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|ContributorID|"
        "MagType|Magnitude|MagAuthor|EventLocationName|EventType\n"
        "1|2014-03-07T08:00:00.100000|42.7|13.2|10|SURVEY-INGV||||ML|2.1|--|Here|earthquake\n"
        "2|2014-03-07T08:30:00.200000|42.8|13.3|11|SURVEY-INGV||||ML|3.1|--|There|earthquake\n";
    click(harness, "mnuCollect");
    EXPECT_TRUE(harness.transfer.urls.empty()); // nothing runs inside the click
    auto& timer = harness.control<QTimer>("upRemote");
    // One tick is enough; the next one would show the countdown again.
    harness.transfer.meanwhile = [&] { timer.setInterval(60000); };
    timer.setInterval(50);
    const QDeadlineTimer deadline(10s);
    while (harness.transfer.urls.empty() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    ASSERT_EQ(harness.transfer.urls.size(), 1u);
    EXPECT_EQ(std::ranges::count(harness.log(), "2 Events imported from INGV"), 1);
    EXPECT_EQ(harness.log().back(), "Earthquake located in Latitude: 42.8 Longitude: 13.3");
    auto& grid = harness.control<GridEvents>("GridEvents");
    EXPECT_EQ(grid.rowCount(), 3);
    EXPECT_EQ(grid.cell(1, 1), "2014-03-07 08:30:00.200"); // newest first
    EXPECT_EQ(harness.control<QLabel>("lbl_log_bkg").text(), QStringLiteral("INGV Synchronized"));
    EXPECT_TRUE(window.isVisible());
}

TEST(PanelGrid, AChosenRowListsTheTownsNearIt) {
    PanelHarness harness;
    harness.start(2); // at 42.7 N, 13.2 E
    Database& database = harness.window().components().database;
    for (const char* town :
         {"('Borgo', '42.71', '13.21', 'IT')", "('Far', '45.0', '9.0', 'IT')",
          "('Forl\xC3\xAC', '42.75', '13.2', 'IT')", "('Last', '42.7', '13.2', 'IT')"})
        ASSERT_EQ(database.slsExe(std::string("insert into Cities values ") + town), 0);
    harness.control<GridEvents>("GridEvents").gridClicked(1, 1);
    const auto& list = harness.control<QListWidget>("List1");
    QStringList items;
    for (int i = 0; i < list.count(); ++i)
        items += list.item(i)->text();
    const QString all = items.join(QLatin1Char('\n'));
    EXPECT_TRUE(all.contains(QStringLiteral("Borgo"))) << all.toStdString();
    EXPECT_TRUE(all.contains(QStringLiteral("Forlì"))) << all.toStdString();
    EXPECT_FALSE(all.contains(QStringLiteral("Far"))) << all.toStdString();
}

TEST(PanelPoll, ClosingDuringADownloadEndsItsWait) {
    PanelHarness harness;
    panel& window = harness.start(0);
    harness.transfer.meanwhile = [&] { window.close(); };
    const auto before = harness.clock.steady();
    click(harness, "mnuCollect");
    window.components().scheduler.upRemote_Timer();
    EXPECT_EQ(harness.session.WaitCounter, 99999);
    EXPECT_LT(harness.clock.steady() - before, 1000ms); // a failed fetch waits for 60 s
    EXPECT_EQ(harness.unloads, 1);
}

TEST(PanelPoll, ShowsTheCountdownOnTheStatusStrip) {
    PanelHarness harness;
    harness.start(0).components().scheduler.upRemote_Timer();
    EXPECT_EQ(harness.control<QLabel>("lbl_log_bkg").text(),
              QStringLiteral("Next update from Primary source in 299 sec."));
}

TEST(PanelGrid, AClickOnAHeadSortsAndAClickOnARowColoursIt) {
    PanelHarness harness;
    harness.start(4);
    auto& grid = harness.control<GridEvents>("GridEvents");
    EXPECT_EQ(grid.cell(1, 1), "2014-03-07 00:03:00.000");
    Q_EMIT grid.gridClicked(0, 1); // descending
    Q_EMIT grid.gridClicked(0, 1); // ascending
    EXPECT_EQ(grid.cell(1, 1), "2014-03-07 00:00:00.000");
    Q_EMIT grid.gridClicked(2, 3);
    const auto& model = static_cast<const EventsGridModel&>(*grid.model());
    EXPECT_EQ(model.colouredRow(), 1);
    Q_EMIT grid.currentCellMoved();
    EXPECT_EQ(model.colouredRow(), -1);
}

TEST(PanelGrid, StandsInItsColumnWithoutScrollingSideways) {
    PanelHarness harness;
    harness.start(60);
    QCoreApplication::processEvents();
    const auto& grid = harness.control<GridEvents>("GridEvents");
    EXPECT_EQ(grid.horizontalScrollBar()->maximum(), 0)
        << grid.viewport()->width() << " " << grid.horizontalHeader()->length() << " "
        << grid.columnWidth(6);
}

// End.

TEST(PanelEnd, RunsItsStepsOnce) {
    PanelHarness harness;
    panel& window = harness.start(1);
    click(harness, "mnu_About");
    window.components().settings.LastEvent = "2014-03-06 23:59:59.123";
    window.close();
    EXPECT_FALSE(harness.control<QTimer>("upRemote").isActive());
    EXPECT_FALSE(harness.control<QTimer>("TimerCheckScreenshot").isActive());
    EXPECT_EQ(harness.session.WaitCounter, 99999);
    EXPECT_TRUE(harness.session.waitsMustEnd());
    EXPECT_FALSE(aboutIsOpen());
    EXPECT_NE(harness.settingsFile().find("LastEvent=2014/03/07\r\n"), std::string::npos);
    std::filesystem::remove(harness.folder.file("settings.ini"));
    window.close();
    EXPECT_FALSE(std::filesystem::exists(harness.folder.file("settings.ini")));
    EXPECT_EQ(harness.unloads, 1);
}

TEST(PanelEnd, KeepsAnEmptyLastEventEmpty) {
    PanelHarness harness;
    harness.start(0).close();
    EXPECT_NE(harness.settingsFile().find("LastEvent=\r\n"), std::string::npos);
}

const PageView viewOfThePage = {.CLAT = "42.75",
                                .CLNG = "-13.5",
                                .ZOOM = "7",
                                .BLAT = "40",
                                .BLNG = "-15",
                                .TLAT = "45",
                                .TLNG = "-12",
                                .SCALE = "900"};

TEST(PanelEnd, StoresTheViewOfTheMap) {
    PanelHarness harness;
    panel& window = harness.start(0);
    RecordingWebBrowser& map = harness.browsers.of("WebBrowser1");
    map.page->selection = viewOfThePage;
    map.page->VALORE = "3";
    map.listener->documentClicked(*map.page);
    window.close();
    const std::string file = harness.settingsFile();
    EXPECT_NE(file.find("CenterLatitude=42.75\r\n"), std::string::npos) << file;
    EXPECT_NE(file.find("CenterLongitude=-13.5\r\n"), std::string::npos) << file;
    EXPECT_NE(file.find("Zoom=7\r\n"), std::string::npos) << file;
}

TEST(PanelEnd, KeepsTheStoredViewWithoutAPage) {
    PanelHarness harness;
    panel& window = harness.start(0);
    harness.browsers.of("WebBrowser1").page->selection = viewOfThePage;
    window.components().map.bridge().boundsVisualizedMap();
    window.components().map.leaveMaps();
    window.close();
    EXPECT_NE(harness.settingsFile().find("CenterLatitude=41\r\n"), std::string::npos);
    EXPECT_NE(harness.settingsFile().find("Zoom=5\r\n"), std::string::npos);
}

TEST(PanelEnd, IsRefusedWhileTheWindowIsDisabled) {
    PanelHarness harness;
    panel& window = harness.start(0);
    window.setEnabled(false);
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(harness.unloads, 0);
    window.setEnabled(true);
    EXPECT_TRUE(window.close());
    EXPECT_EQ(harness.unloads, 1);
}

TEST(PanelKeyboard, HasAnEntryForEachControlInTheOrderOfTheScreen) {
    PanelHarness harness;
    panel& window = harness.start(1);
    std::vector<std::string> names;
    const QWidget* first = &harness.control<QWidget>("List1");
    const QWidget* widget = first;
    do {
        if (widget->focusPolicy() & Qt::TabFocus && !widget->objectName().isEmpty() &&
            widget->isVisibleTo(&window) && widget->isEnabled())
            names.push_back(widget->objectName().toStdString());
        widget = widget->nextInFocusChain();
    } while (widget != first);
    EXPECT_EQ(names,
              (std::vector<std::string>{"List1", "lst_prog_log", "GridEvents", "cmb_wrkSp",
                                        "cmd_SaveArea", "cmd_save_maps", "cmd_JumpWRK", "chk_fault",
                                        "chk_Legend", "chk_SearchMode", "chk_ShowStations"}));
}

} // namespace
} // namespace tremor::testing
