#include "map/map_overlays.h"

#include "core/files.h"
#include "map/marker_list.h"

#include <array>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";

// What search mode disables.
constexpr std::array<std::string_view, 7> workspaceTools{
    "cmd_save_maps", "cmb_wrkSp",    "cmd_SaveArea",           "mnuSearchWRK",
    "mnuJump2WRK",   "mnuDeleteWRK", "mnuUpdateWRKwithEvents",
};

constexpr std::string_view flag(bool on) {
    return on ? "1" : "0";
}

} // namespace

MapOverlays::MapOverlays(WebBrowser& map, AppSettings& settings, Session& session,
                         Database& database, OverlayControls& controls, Prompts& prompts,
                         ErrorReport& errors, std::function<bool()> openDB)
    : map_(map),
      settings_(settings),
      session_(session),
      database_(database),
      controls_(controls),
      prompts_(prompts),
      errors_(errors),
      openDB_(std::move(openDB)) {}

void MapOverlays::chk_fault_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "chk_fault_Click");
    showFaults(checked);
}

void MapOverlays::mnuShowFaults_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "mnuShowFaults_Click");
    showFaults(checked);
}

void MapOverlays::showFaults(bool shown) {
    if (map_.ReadyState() != WebBrowser::complete)
        return;
    map_.setAttribute("faglie", "FLAG", flag(shown));
    map_.fire("faglie", Fire::Click);
}

void MapOverlays::chk_Legend_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "chk_Legend_Click");
    settings_.Legend = checked ? 1 : 0;
    map_.setAttribute("Legenda", "BOL", flag(checked));
    map_.fire("Legenda", Fire::Click);
}

void MapOverlays::showSavedLegend() {
    const bool shown = settings_.Legend == 1;
    controls_.setLegendBox(shown);
    chk_Legend_Click(shown);
}

void MapOverlays::chk_ShowStations_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "chk_ShowStations_Click");
    showStations(checked);
}

void MapOverlays::mnuShowStations_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "mnuShowStations_Click");
    showStations(checked);
}

void MapOverlays::showStations(bool shown) {
    if (FileExists(settings_.PathDbStationKit)) {
        addStationOnMap(shown);
        return;
    }
    controls_.uncheckStationsItem();
    prompts_.showMessageBox({.text = "Database doesn't exist, select one in Setup or create a new "
                                     "one with StationKit.",
                             .title = "Database error...",
                             .icon = BoxIcon::Critical});
}

// The page is told only when the catalogue is back in its place: its answer may lead to queries.
void MapOverlays::addStationOnMap(bool shown) {
    const ProcedureTrace trace(errors_, module, "addStationOnMap");
    MarkerList codes;
    MarkerList latitudes;
    MarkerList longitudes;
    database_.slsOpen(settings_.PathDbStationKit, {});
    database_.slsSel("select Station_Code, Latitude, Longitude from Stations");
    while (database_.slsGetRow()) {
        codes.Add(database_.slsFX(1));
        latitudes.Add(database_.slsFX(2));
        longitudes.Add(database_.slsFX(3));
    }
    openDB_();
    if (map_.ReadyState() != WebBrowser::complete)
        return;
    map_.setAttribute("stazioni", "CHECK", flag(shown));
    map_.setAttribute("stazioni", "LATITUDE", latitudes.text());
    map_.setAttribute("stazioni", "LONGITUDE", longitudes.text());
    map_.setAttribute("stazioni", "STATIONCODE", codes.text());
    map_.fire("stazioni", Fire::Onclick);
}

void MapOverlays::chk_SearchMode_Click(bool checked) {
    const ProcedureTrace trace(errors_, module, "chk_SearchMode_Click");
    for (const std::string_view tool : workspaceTools)
        controls_.setEnabled(tool, !checked);
    session_.SearchModeOn = checked ? 1 : 0;
}

} // namespace tremor
