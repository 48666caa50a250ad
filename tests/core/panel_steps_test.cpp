#include "core/files.h"
#include "core/panel_harness.h"
#include "core/panel_steps.h"

#include <QtGui/QAction>
#include <QtGui/QImage>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QProgressBar>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tremor::testing {
namespace {

TEST(PanelStatus, WritesTheStatusStrip) {
    PanelHarness harness;
    harness.make();
    PanelStatus& status = harness.window().components().status;
    status.setStatusText("Syncing from INGV...");
    status.setEventsText("50 / 60");
    status.setDownloadSize("12 Kb");
    EXPECT_EQ(harness.control<QLabel>("lbl_log_bkg").text(),
              QStringLiteral("Syncing from INGV..."));
    EXPECT_EQ(harness.control<QLabel>("lbl_events").text(), QStringLiteral("50 / 60"));
    EXPECT_EQ(harness.control<QLabel>("lbl_tot").text(), QStringLiteral("12 Kb"));
}

TEST(PanelStatus, HoldsTheBarToItsRange) {
    PanelHarness harness;
    harness.make();
    PanelStatus& status = harness.window().components().status;
    const QProgressBar& bar = harness.control<QProgressBar>("prgBar");
    status.setProgressRange(0, 60);
    EXPECT_EQ(status.progressMaximum(), 60);
    status.setProgress(50);
    EXPECT_EQ(bar.value(), 50);
    status.setProgress(61);
    EXPECT_EQ(bar.value(), 60);
    status.setProgress(-1);
    EXPECT_EQ(bar.value(), 0);
}

TEST(PanelControlStates, SetsExactlyTheControlsOfEachState) {
    PanelHarness harness;
    harness.make();
    PanelControls& controls = harness.window().components().controls;
    const auto widget = [&](const char* name) {
        return harness.control<QWidget>(name).isEnabled();
    };
    const auto item = [&](const char* name) { return harness.control<QAction>(name).isEnabled(); };
    const auto sixOfTheInternet = [&] {
        return std::vector{
            widget("cmb_wrkSp"),     widget("cmd_SaveArea"), item("mnuUpdateWRKwithEvents"),
            widget("cmd_save_maps"), item("mnuShowFaults"),  item("mnuShowStations")};
    };
    const auto sixOfTheDatabase = [&] {
        return std::vector{item("mnu_exportDatabaseCSV"), item("mnu_imp_seiscomp2_6"),
                           item("mnu_ImportCSV"),         item("mnu_ManageDB"),
                           item("mnu_wrkspaces"),         item("mnuSearch")};
    };
    const std::vector on(6, true);
    const std::vector off(6, false);
    controls.controlliForm(4);
    EXPECT_EQ(sixOfTheInternet(), on);
    EXPECT_EQ(sixOfTheDatabase(), on);
    controls.controlliForm(1);
    EXPECT_EQ(sixOfTheInternet(), off);
    EXPECT_EQ(sixOfTheDatabase(), on);
    controls.controlliForm(3);
    EXPECT_EQ(sixOfTheInternet(), on);
    controls.controlliForm(2);
    EXPECT_EQ(sixOfTheInternet(), off);
    EXPECT_EQ(sixOfTheDatabase(), off);
    controls.controlliForm(3);
    EXPECT_EQ(sixOfTheInternet(), on);
    EXPECT_EQ(sixOfTheDatabase(), off);
    for (const std::int32_t state : {0, 5, -1})
        controls.controlliForm(state);
    EXPECT_EQ(sixOfTheInternet(), on);
    EXPECT_EQ(sixOfTheDatabase(), off);
    EXPECT_TRUE(item("mnu_Open_Database"));
}

TEST(PanelControlStates, ShowsACaptionWithAsterisksToTheLetter) {
    PanelHarness harness;
    panel& window = harness.make();
    window.components().controls.setCaption("a - b.sqlite");
    EXPECT_EQ(window.windowTitle(), QStringLiteral("a - b.sqlite"));
    window.components().controls.setCaption("x[*].sqlite");
    EXPECT_EQ(window.windowTitle(), QStringLiteral("x[*][*].sqlite")); // shown as x[*].sqlite
}

TEST(PanelSteps, KnowsAMapPageFromItsWritingOnUntilTheMapsAreSwitchedOff) {
    PanelHarness harness;
    PanelSteps& steps = harness.make().components().steps;
    EXPECT_FALSE(steps.mapPageLoaded());
    steps.Maps();
    EXPECT_TRUE(steps.mapPageLoaded());
    steps.EnableDisableWebBrowser(true);
    EXPECT_TRUE(steps.mapPageLoaded());
    steps.EnableDisableWebBrowser(false);
    EXPECT_FALSE(steps.mapPageLoaded());
}

// A page of two colours.
Picture paintedPage() {
    Picture picture{120, 20, std::vector<std::uint8_t>(std::size_t{3} * 120 * 20, 255)};
    std::fill_n(picture.rgb.begin(), 3 * 120 * 10, std::uint8_t{0});
    return picture;
}

TEST(PanelSteps, KeepsPicturesOfTheMapsInTheFolderHistory) {
    PanelHarness harness;
    PanelSteps& steps = harness.start(2).components().steps;
    const auto history = [&](const char* name) { return harness.folder.file("History/") + name; };
    const auto size = [&](const char* name) {
        return QImage(QString::fromStdString(history(name)), "JPEG").size();
    };
    harness.browsers.of("WebBrowser1").painted = paintedPage();
    harness.browsers.of("wbr_last").painted = paintedPage();
    QListWidget& towns = harness.control<QListWidget>("List1");
    towns.clear();
    towns.addItem(QStringLiteral("Forl\u00EC = Km 3.27"));

    steps.mapsInJPGLastEvent();
    EXPECT_EQ(size("tmplastEvent.jpg"), QSize(120 - 19, 20));
    EXPECT_EQ(readWholeFile(history("lastEvents.txt")),
              "UTC: 2014-03-07 00:01:00.000 | LATLNG(42.7,13.2) | Mg. 2.5 | Depth. 10.0\r\n\r\n"
              "Forl\xC3\xAC = Km 3.27\r\n\r\n");

    steps.mapsInJPGWorkspace();
    EXPECT_FALSE(FileExists(history("current.jpg")));
    steps.TimerCheckScreenshot_Timer();
    EXPECT_FALSE(FileExists(history("tmpcurrent.sr")));
    EXPECT_EQ(size("current.jpg"), QSize(120 - 19, 20));
}

TEST(PanelSteps, DrawsTheMarkersOfAReloadedMapAtTheNextTurnOfTheTimer) {
    PanelHarness harness;
    PanelSteps& steps = harness.start(2).components().steps;
    harness.window().components().settings.searchParQuery.clear();
    harness.window().components().settings.RangeHoursOfEventsInMap = 24 * 365 * 100;
    RecordingWebBrowser& map = harness.browsers.of("WebBrowser1");
    const auto drawn = [&] { return std::ranges::count(map.calls, "eventi.Onclick"); };
    map.calls.clear();
    steps.TimerCheckScreenshot_Timer();
    EXPECT_EQ(drawn(), 1);
    // The picture of the newest event comes back also without a condition in force.
    EXPECT_EQ(std::ranges::count(map.calls, "UltimoEvento.Click"), 1);
    steps.TimerCheckScreenshot_Timer();
    EXPECT_EQ(drawn(), 1);
}

TEST(PanelSteps, MovesTheSnapshotPageUpByTheHeightAndAsideByTheWidth) {
    PanelHarness harness;
    panel& window = harness.make();
    window.resize(1000, 700);
    const QWidget& page = harness.control<QWidget>("wbrSaveMaps");
    window.components().steps.moveSaveMapsOutOfSight();
    EXPECT_EQ(page.y(), -1400);
    window.components().steps.moveSaveMapsAside();
    EXPECT_EQ(page.x(), -2000);
}

TEST(PanelSteps, RefreshesTheViewsAfterAPollAndReportsANewEventOnce) {
    PanelHarness harness;
    panel& window = harness.start(3);
    Database& database = window.components().database;
    ASSERT_EQ(database.slsExe("INSERT INTO Events (UTC, Latitude, Longitude, Depth, Magnitude, "
                              "Source) VALUES ('2014-03-07 09:00:00.000', 1, 2, 3, 4, 'X')"),
              0);
    EXPECT_EQ(harness.control<GridEvents>("GridEvents").rowCount(), 4);
    EXPECT_TRUE(window.components().steps.thereIsNewEv());
    EXPECT_EQ(harness.control<GridEvents>("GridEvents").rowCount(), 5);
    EXPECT_FALSE(window.components().steps.thereIsNewEv());
}

TEST(PanelSteps, VisitTheIsideSiteInTheHiddenBrowser) {
    PanelHarness harness;
    harness.start(1);
    harness.window().components().steps.downloadCsvFromIside();
    EXPECT_EQ(harness.log().back(), "ISIDE Synchronization failed"); // nobody is there
    EXPECT_EQ(harness.control<QLabel>("lbl_log_bkg").text(),
              QStringLiteral("Syncing from ISIDE..."));
    EXPECT_FALSE(harness.session.PrimaryBusy);
}

} // namespace
} // namespace tremor::testing
