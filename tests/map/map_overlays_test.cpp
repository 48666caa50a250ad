#include "map/map_overlays.h"
#include "map/recording_web_browser.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;

class RecordingOverlayControls : public OverlayControls {
  public:
    void setLegendBox(bool checked) override {
        calls.push_back(std::string("box ") + (checked ? "on" : "off"));
    }
    void uncheckStationsItem() override { calls.emplace_back("item off"); }
    void setEnabled(std::string_view objectName, bool enabled) override {
        calls.push_back(std::string(objectName) + (enabled ? " on" : " off"));
    }
    Texts calls;
};

class MapOverlaysTest : public ::testing::Test {
  protected:
    MapOverlaysTest() {
        settings.Path = folder.file("catalogue.sqlite");
        EXPECT_EQ(database.slsOpen(settings.Path, "C"), 0);
        EXPECT_EQ(database.slsExe("CREATE TABLE Events ('UTC' TEXT)"), 0);
    }

    void makeStations(const std::string& rows) {
        settings.PathDbStationKit = folder.file("stations.sqlite");
        Database stations;
        EXPECT_EQ(stations.slsOpen(settings.PathDbStationKit, "C"), 0);
        EXPECT_EQ(stations.slsExe("CREATE TABLE Stations (Station_Code TEXT, Latitude REAL, "
                                  "Longitude REAL)"),
                  0);
        if (!rows.empty()) {
            EXPECT_EQ(stations.slsExe("INSERT INTO Stations VALUES " + rows), 0);
        }
    }
    void expectMissingStations() {
        harness.prompts.expectBox("Database doesn't exist, select one in Setup or create a new one "
                                  "with StationKit.",
                                  "Database error...", BoxIcon::Critical, BoxButtons::Ok,
                                  BoxAnswer::Ok);
    }

    testing::TemporaryFolder folder;
    testing::ErrorHarness harness;
    testing::RecordingWebBrowser map;
    AppSettings settings;
    Session session;
    Database database;
    RecordingOverlayControls controls;
    MapOverlays overlays{
        map, settings, session, database, controls, harness.prompts, harness.errors, [this] {
            map.calls.emplace_back("openDB");
            return database.slsOpen(settings.Path, {}) == 0;
        }};
};

TEST_F(MapOverlaysTest, SwitchesTheFaultsByBoxAndByItem) {
    overlays.chk_fault_Click(true);
    overlays.chk_fault_Click(false);
    overlays.mnuShowFaults_Click(true);
    overlays.mnuShowFaults_Click(false);
    EXPECT_EQ(map.calls, Texts({"faglie.FLAG=1", "faglie.Click", "faglie.FLAG=0", "faglie.Click",
                                "faglie.FLAG=1", "faglie.Click", "faglie.FLAG=0", "faglie.Click"}));
}

TEST_F(MapOverlaysTest, DropsTheFaultsOfAPageThatIsNotComplete) {
    map.readyState = 3;
    overlays.chk_fault_Click(true);
    overlays.mnuShowFaults_Click(true);
    EXPECT_EQ(map.calls, Texts());
}

TEST_F(MapOverlaysTest, StoresAndShowsTheLegend) {
    overlays.chk_Legend_Click(true);
    EXPECT_EQ(settings.Legend, 1);
    overlays.chk_Legend_Click(false);
    EXPECT_EQ(settings.Legend, 0);
    EXPECT_EQ(map.calls,
              Texts({"Legenda.BOL=1", "Legenda.Click", "Legenda.BOL=0", "Legenda.Click"}));
}

TEST_F(MapOverlaysTest, StoresTheLegendWithoutAPageToo) {
    map.statuses = {PageStatus::NoElement};
    overlays.chk_Legend_Click(true);
    EXPECT_EQ(settings.Legend, 1);
}

TEST_F(MapOverlaysTest, BringsBoxAndPageInLineWithTheSavedLegendOnce) {
    settings.Legend = 1;
    overlays.showSavedLegend();
    EXPECT_EQ(controls.calls, Texts({"box on"}));
    EXPECT_EQ(map.calls, Texts({"Legenda.BOL=1", "Legenda.Click"}));
    settings.Legend = 0;
    overlays.showSavedLegend();
    EXPECT_EQ(controls.calls, Texts({"box on", "box off"}));
    EXPECT_EQ(map.attribute("Legenda", "BOL"), "0");
}

TEST_F(MapOverlaysTest, ShowsTheStationsWithTheCatalogueBackInItsPlace) {
    makeStations("('AQU', 42.354, 13.405), ('VAGA', 41.415, 14.234)");
    overlays.chk_ShowStations_Click(true);
    EXPECT_EQ(map.calls, Texts({"openDB", "stazioni.CHECK=1", "stazioni.LATITUDE='42.354'41.415'",
                                "stazioni.LONGITUDE='13.405'14.234'",
                                "stazioni.STATIONCODE='AQU'VAGA'", "stazioni.Onclick"}));
    EXPECT_EQ(database.path(), settings.Path);
    EXPECT_EQ(controls.calls, Texts());
}

TEST_F(MapOverlaysTest, SendsTheStationsAlsoToHideThem) {
    makeStations("('AQU', 42.354, 13.405)");
    overlays.mnuShowStations_Click(false);
    EXPECT_EQ(map.attribute("stazioni", "CHECK"), "0");
    EXPECT_EQ(map.attribute("stazioni", "STATIONCODE"), "'AQU'");
    EXPECT_EQ(map.calls.back(), "stazioni.Onclick");
}

TEST_F(MapOverlaysTest, KeepsTheListsOfHostileStationsInStep) {
    makeStations("('A''B', 1, 2), ('</script>', NULL, 'x')");
    overlays.chk_ShowStations_Click(true);
    EXPECT_EQ(map.attribute("stazioni", "STATIONCODE"), "'A\xE2\x80\x99"
                                                        "B'</script>'");
    EXPECT_EQ(map.attribute("stazioni", "LATITUDE"), "'1.0''");
    EXPECT_EQ(map.attribute("stazioni", "LONGITUDE"), "'2.0'x'");
}

TEST_F(MapOverlaysTest, ReadsTheStationsButSendsNothingToAPageThatIsNotComplete) {
    makeStations("('AQU', 42.354, 13.405)");
    map.readyState = 1;
    overlays.chk_ShowStations_Click(true);
    EXPECT_EQ(map.calls, Texts({"openDB"}));
}

TEST_F(MapOverlaysTest, ShowsABoxAndUnchecksTheItemWithoutAStationDatabase) {
    settings.PathDbStationKit = folder.file("nowhere.sqlite");
    expectMissingStations();
    overlays.chk_ShowStations_Click(true);
    expectMissingStations();
    overlays.mnuShowStations_Click(true);
    EXPECT_EQ(controls.calls, Texts({"item off", "item off"}));
    EXPECT_EQ(map.calls, Texts());
    EXPECT_EQ(database.path(), settings.Path);
}

TEST_F(MapOverlaysTest, SendsEmptyListsOfAFileThatIsNoStationDatabase) {
    makeStations("");
    overlays.chk_ShowStations_Click(true);
    EXPECT_EQ(map.attribute("stazioni", "STATIONCODE"), "'");
    settings.PathDbStationKit = settings.Path; // a database without such a table
    overlays.chk_ShowStations_Click(true);
    EXPECT_EQ(map.attribute("stazioni", "STATIONCODE"), "'");
    EXPECT_EQ(database.path(), settings.Path);
}

TEST_F(MapOverlaysTest, DisablesTheWorkspaceToolsInSearchMode) {
    overlays.chk_SearchMode_Click(true);
    EXPECT_EQ(session.SearchModeOn, 1);
    EXPECT_EQ(controls.calls,
              Texts({"cmd_save_maps off", "cmb_wrkSp off", "cmd_SaveArea off", "mnuSearchWRK off",
                     "mnuJump2WRK off", "mnuDeleteWRK off", "mnuUpdateWRKwithEvents off"}));
    controls.calls.clear();
    overlays.chk_SearchMode_Click(false);
    EXPECT_EQ(session.SearchModeOn, 0);
    EXPECT_EQ(controls.calls.size(), 7U);
    EXPECT_EQ(controls.calls.front(), "cmd_save_maps on");
}

} // namespace
} // namespace tremor
