#pragma once

#include "core/error_report.h"
#include "core/map_bounds.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "map/web_browser.h"

#include <string>
#include <string_view>
#include <utility>

// What the map pages say and what the program does about it. A page's messages are codes in the
// attribute VALORE of its element `MapClick`, a mailbox of one slot:
//
//     1   the markers of the visible rectangle are wanted anew
//     2   a marker was clicked; its title stands in `markers`.MARSEL
//     3   the view changed; it stands in `selection`
//     77  the pointer moved over the map; its place stands in the value of `Cursore`
//     78  the map was clicked there
//     99  the markers are drawn, the map is ready
namespace tremor {

// What the bridge asks of the rest of the program.
class BridgeSurroundings {
  public:
    virtual ~BridgeSurroundings() = default;

    virtual bool workspaceIsGlobal() = 0; // `cmb_wrkSp` shows "Global"

    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void eventsInMap(std::string_view sql) = 0;
    virtual void eventsInwebBrowserWorkspace(std::string_view sql) = 0;
    virtual void visualizeEventsinRectangle(std::string_view utcFilter) = 0;
    virtual void pin2gif(std::string_view lastEventSql) = 0;
    virtual void pictureMagnitudeEvents() = 0;               // the history chart
    virtual void selectEventOfMap(std::string_view utc) = 0; // its row in the table

    virtual void showMouseCoordinates(std::string_view text) = 0; // `txtMouseCoord`
    virtual void showScale(std::string_view label) = 0; // "12km " is what 40 pixels stand for
    virtual void showSavedLegend() = 0;                 // box and page as settings.Legend says

    // The search window waits for a place on the map: it is open, searches an area and does so by
    // the distance from a centre.
    virtual bool searchWantsPlace() = 0;
    virtual void setSearchPlace(std::string_view latitude, std::string_view longitude) = 0;
};

class PageBridge {
  public:
    // All references must outlive this object, and `browsers` may not send events after its end.
    PageBridge(PageBrowsers browsers, AppSettings& settings, Session& session, Clock& clock,
               NumberLocale locale, BridgeSurroundings& surroundings, ErrorReport& errors);
    ~PageBridge();
    PageBridge(const PageBridge&) = delete;
    PageBridge& operator=(const PageBridge&) = delete;

    // Listens to the pages from now on.
    void setObjectHTML();

    // The message that stands in the page. A message that has come in since is not wiped out.
    void HTML_onclick(const PageSnapshot& page);
    void HTML_onmousemove(const PageSnapshot& page);
    void WRKSp_onclick(const PageSnapshot& page);

    // A new page of the workspace map stands. Its markers are handed over when a workspace is
    // shown.
    void WebBrowser1_DocumentComplete();

    // A reload of the maps has begun; both calls belong to it.
    void mainMapNavigated() {
        mainMapPending_ = true;
        view_ = {};
    }
    void lastEventMapNavigated() { lastEventMapPending_ = true; }
    // Both maps were left for "about:blank".
    void mapsLeft();

    // A page of the workspace map stands: from its first completion until both maps are left.
    bool mapIsLive() const { return mapLive_; }

    // A reloaded page of the workspace map stands and has not been asked for here before. Once true
    // for each reload.
    bool takeDocumentReady() { return std::exchange(documentReady_, false); }

    // Asks the page for its view, after waiting for it to be complete, and gives the view's
    // rectangle; the last one known (at first the whole world) when the page gives no answer.
    const MapBounds& boundsVisualizedMap();
    // The view that was read last, as the page wrote it; empty until a page has given one.
    const PageView& view() const { return view_; }
    const std::string& scaleLabel() const { return scaleLabel_; } // "12km ", "500m ", ".00m "

    // Selects the event of a marker's title ("2021-01-14 05:45:26.600 Mg: 3.1") in the table.
    void event_click_map(std::string_view markerTitle);

  private:
    // Hands a browser's events on to the members that answer them.
    class MainMapEvents : public PageEvents {
      public:
        explicit MainMapEvents(PageBridge& bridge) : bridge_(bridge) {}
        void documentClicked(const PageSnapshot& page) override { bridge_.HTML_onclick(page); }
        void documentMouseMoved(const PageSnapshot& page) override {
            bridge_.HTML_onmousemove(page);
        }
        void documentComplete() override { bridge_.WebBrowser1_DocumentComplete(); }

      private:
        PageBridge& bridge_;
    };
    class SavedMapEvents : public PageEvents {
      public:
        explicit SavedMapEvents(PageBridge& bridge) : bridge_(bridge) {}
        void documentClicked(const PageSnapshot& page) override { bridge_.WRKSp_onclick(page); }
        void documentMouseMoved(const PageSnapshot&) override {}
        void documentComplete() override {}

      private:
        PageBridge& bridge_;
    };

    void viewChanged(ProcedureTrace& trace);
    void showEventsOfView(ProcedureTrace& trace);
    void showCoordinates(std::string_view cursor);
    void takeSearchPlace(const PageSnapshot& page);
    void clearMessage(const PageSnapshot& page);

    PageBrowsers browsers_;
    AppSettings& settings_;
    Session& session_;
    Clock& clock_;
    NumberLocale locale_;
    BridgeSurroundings& surroundings_;
    ErrorReport& errors_;
    MainMapEvents mainMapEvents_{*this};
    SavedMapEvents savedMapEvents_{*this};

    MapBounds bounds_{"-90", "-180", "90", "180"};
    PageView view_;
    std::string scaleLabel_;
    bool mainMapPending_ = false;
    bool lastEventMapPending_ = false;
    bool mapLive_ = false;
    bool documentReady_ = false;
    bool answeringView_ = false;
    bool viewChangedAgain_ = false;
};

} // namespace tremor
