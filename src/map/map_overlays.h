#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "map/web_browser.h"

#include <functional>
#include <string_view>

namespace tremor {

// What the overlays ask of the main window.
class OverlayControls {
  public:
    virtual ~OverlayControls() = default;
    virtual void setLegendBox(bool checked) = 0; // `chk_Legend`; runs no handler
    virtual void uncheckStationsItem() = 0;      // `mnuShowStations`; runs no handler
    // A control or menu item by its object name.
    virtual void setEnabled(std::string_view objectName, bool enabled) = 0;
};

// What can be shown on the workspace map beside the events (faults, legend, stations), and the
// search mode. A command for a page that is not complete is dropped: the box then shows something
// else than the map until its next click.
class MapOverlays {
  public:
    // `openDB` opens the catalogue anew. All references must outlive this object.
    MapOverlays(WebBrowser& map, AppSettings& settings, Session& session, Database& database,
                OverlayControls& controls, Prompts& prompts, ErrorReport& errors,
                std::function<bool()> openDB);

    // Each takes the new state of its box or menu item.
    void chk_fault_Click(bool checked);
    void mnuShowFaults_Click(bool checked);
    void chk_Legend_Click(bool checked);
    void chk_ShowStations_Click(bool checked);
    void mnuShowStations_Click(bool checked);

    // While search mode is on, the map's moves reload nothing and the workspace tools are disabled.
    void chk_SearchMode_Click(bool checked);

    // Box and page as settings.Legend says; for a page that has just been drawn.
    void showSavedLegend();

  private:
    void showFaults(bool shown);
    void showStations(bool shown);
    void addStationOnMap(bool shown);

    WebBrowser& map_;
    AppSettings& settings_;
    Session& session_;
    Database& database_;
    OverlayControls& controls_;
    Prompts& prompts_;
    ErrorReport& errors_;
    std::function<bool()> openDB_;
};

} // namespace tremor
