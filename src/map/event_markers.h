#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/settings.h"
#include "database/database.h"
#include "map/duplicate_pass.h"
#include "map/kml_writer.h"
#include "map/web_browser.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Events of the catalogue as markers of the map pages.
namespace tremor {

// What the markers ask of the main window: its table of events, its chart, the earth's geometry.
// Grid row 0 is the header, data rows count from 1.
class MarkerSurroundings : public DistanceRoutine {
  public:
    virtual std::int64_t gridRowCount() const = 0; // with the header row
    virtual std::string gridCell(std::int64_t row, int column) const = 0;
    // Grey text (CellForeColor 0x808080), in addition to the rows that are grey already.
    virtual void setGridRowsGrey(const std::vector<std::int64_t>& rows) = 0;

    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void pictureMagnitudeEvents() = 0; // the history chart
};

// Turns queries on `Events` into the marker lists of the pages. Attributes are written in a fixed
// number of calls, whatever the number of events; a page without the elements takes nothing.
class EventMarkers {
  public:
    // `map` is the main map, `lastEventMap` the map of the newest event. All references must
    // outlive this object.
    EventMarkers(Database& database, const AppSettings& settings, NumberLocale locale,
                 WebBrowser& map, WebBrowser& lastEventMap, MarkerSurroundings& surroundings,
                 const KmlWriter& kml, Log& log, ErrorReport& errors);

    // Hands the events of a query ("select * from Events where ...", no order clause) to the main
    // map, but for duplicates, whose rows in the grid turn grey. Nothing is drawn before somebody
    // fires `eventi`. A map that is not complete keeps its markers; array, grey and the KML file
    // (settings.SaveInKml) are renewed all the same.
    //
    // Pairs that cannot be compared (a time or a place that is none) are no duplicates. They are
    // reported as one error 13 for all of them and told in the log, and not again as long as the
    // first faulty event is the same one.
    void eventsInMap(std::string_view sql);

    // Shows all events of a query on the map of the newest event, if the main map is complete.
    void eventsInMap2(std::string_view sql);

    // Hands all events of a query to the map of one workspace, if that map is complete. Nothing is
    // drawn before somebody fires `eventi`. Waits for no answer of the page.
    void eventsInMapWRKS(WebBrowser& workspaceMap, std::string_view sql);

    // Fills the grid with the condition in force, else with `utcFilter`, and draws the chart.
    void visualizeEventsinRectangle(std::string_view utcFilter);

    // Gives the marker of each event of a query (the newest one) the image of the last event.
    void pin2gif(std::string_view lastEventSql);

    // The events of the last eventsInMap and an empty entry behind them; nothing before the first.
    const std::vector<EventMarkerRow>& EventsOnMap() const { return EventsOnMap_; }

  private:
    struct Lists;

    void markDuplicates(std::vector<EventMarkerRow>& rows, ProcedureTrace& trace);
    void tellNotCompared(const DuplicatePassReport& report,
                         const std::vector<EventMarkerRow>& rows);
    Lists listsOf(std::string_view sql);
    void colour(Lists& lists) const;
    void writeMarkers(const Lists& lists);
    void greyGrid();

    Database& database_;
    const AppSettings& settings_;
    NumberLocale locale_;
    WebBrowser& map_;
    WebBrowser& lastEventMap_;
    MarkerSurroundings& surroundings_;
    const KmlWriter& kml_;
    Log& log_;
    ErrorReport& errors_;

    std::vector<EventMarkerRow> EventsOnMap_;
    std::optional<std::string> reportedFault_; // UTC of the faulty event that was reported last
};

} // namespace tremor
