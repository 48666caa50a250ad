#pragma once

#include "core/settings_utilities.h"
#include "ingest/site_browser.h"
#include "map/event_markers.h"
#include "map/js_maps.h"
#include "map/kml_writer.h"
#include "map/live_page.h"
#include "map/map_overlays.h"
#include "map/map_snapshots.h"
#include "map/page_bridge.h"
#include "map/web_browser.h"
#include "views/grid_view.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QWidget;

namespace tremor {

struct PanelComponents;
class PanelWidgets;

// Makes the browsers of the main window.
class BrowserMaker {
  public:
    virtual ~BrowserMaker() = default;

    // A browser that fills `frame`. Log and settings outlive it.
    virtual std::unique_ptr<WebBrowser> makeBrowser(QWidget& frame, Log& log,
                                                    const AppSettings& settings) = 0;
    // One out of sight for the session at a web site.
    virtual std::unique_ptr<SiteBrowser> makeSiteBrowser() = 0;
};

// The maps of the main window: their browsers, what writes and drives their pages, and what these
// ask of the window.
class PanelMap : public BridgeSurroundings,
                 public MarkerSurroundings,
                 public SnapshotSurroundings,
                 public OverlayControls,
                 public GridMap {
  public:
    // The table of events is asked only once `components` is complete.
    PanelMap(BrowserMaker& maker, PanelWidgets& widgets, PanelComponents& components);

    // The map's page and its parts.
    void reloadMap();
    void reloadLastEventMap();
    void writeLivePage();
    void leaveMaps(); // both show "about:blank"
    bool mapPageLoaded() const;
    void clickEventi() { WebBrowser1_->fire("eventi", Fire::Click); }
    // The view's rectangle for the filters and its scale for the bar. A page that is still loading
    // is not waited for: it tells when it is ready.
    void readView();

    WebBrowser& mainBrowser() { return *WebBrowser1_; }
    JSMaps& pages() { return pages_; }
    PageBridge& bridge() { return bridge_; }
    EventMarkers& markers() { return markers_; }
    MapOverlays& overlays() { return overlays_; }

    // Pictures of the maps.
    MapSnapshots& snapshots() { return snapshots_; }
    void mapsInJPGLastEvent() { snapshots_.mapsInJPG(*wbr_last_, SnapshotKind::LastEvent, {}); }
    void mapsInJPGWorkspace() {
        snapshots_.mapsInJPG(*WebBrowser1_, SnapshotKind::WorkspaceMap, {});
    }

    // BridgeSurroundings, MarkerSurroundings and SnapshotSurroundings
    bool workspaceIsGlobal() override;
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override;
    void eventsInMap(std::string_view sql) override { markers_.eventsInMap(sql); }
    void eventsInwebBrowserWorkspace(std::string_view sql) override {
        markers_.eventsInMapWRKS(*wbrSaveMaps_, sql);
    }
    void visualizeEventsinRectangle(std::string_view utcFilter) override {
        markers_.visualizeEventsinRectangle(utcFilter);
    }
    void pin2gif(std::string_view lastEventSql) override { markers_.pin2gif(lastEventSql); }
    void pictureMagnitudeEvents() override;
    void selectEventOfMap(std::string_view utc) override;
    void showMouseCoordinates(std::string_view text) override;
    void showScale(std::string_view label) override;
    void showSavedLegend() override;
    bool searchWantsPlace() override;
    void setSearchPlace(std::string_view latitude, std::string_view longitude) override;
    std::int64_t gridRowCount() const override;
    std::string gridCell(std::int64_t row, int column) const override;
    void setGridRowsGrey(const std::vector<std::int64_t>& rows) override;
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override;

    bool takeDocumentReady() override { return bridge_.takeDocumentReady(); }
    void onclickEventi() override { WebBrowser1_->fire("eventi", Fire::Onclick); }
    std::string shownCondition() override;
    SnapshotEvent lastEvent() const override;
    std::vector<std::string> towns() const override;

    // OverlayControls
    void setLegendBox(bool checked) override;
    void uncheckStationsItem() override;
    void setEnabled(std::string_view objectName, bool enabled) override;

    // GridMap
    void removeAll() override { WebBrowser1_->fire("removeAll", Fire::Onclick); }
    MapBounds boundsVisualizedMap() override { return bridge_.boundsVisualizedMap(); }
    void selectMarker(std::string_view utc) override;

  private:
    // What the settings keep of the workspace map; nothing without a page.
    std::optional<MapViewTexts> viewToStore() const;
    void drawFirstMarkers();

    PageBrowsers browsers() { return {*WebBrowser1_, *wbr_last_, *wbrSaveMaps_}; }

    PanelWidgets& widgets_;
    PanelComponents& components_;
    std::unique_ptr<WebBrowser> WebBrowser1_;
    std::unique_ptr<WebBrowser> wbr_last_;
    std::unique_ptr<WebBrowser> wbrSaveMaps_;
    KmlWriter kml_;
    EventMarkers markers_;
    JSMaps pages_;
    LivePage live_;
    PageBridge bridge_;
    MapOverlays overlays_;
    MapSnapshots snapshots_;
    bool freshPage_ = false; // the workspace map was loaded anew and has no markers yet
};

} // namespace tremor
