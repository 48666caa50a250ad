#include "map/event_markers.h"

#include "core/common_text.h"
#include "map/marker_colours.h"
#include "map/marker_list.h"

#include <fmt/format.h>

#include <span>
#include <unordered_set>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";

constexpr int gridUtcColumn = 1;
constexpr std::size_t longestToldTime = 40; // characters; a time has 23

// Columns of `select * from Events`, from 0.
enum EventColumn : std::size_t { utc, latitude, longitude, depth, magnitude, source };

// The rows of a result and the empty entry behind them.
std::vector<EventMarkerRow> markerRows(const ResultSet& events) {
    std::vector<EventMarkerRow> rows(events.rowCount() + 1);
    for (std::size_t i = 0; i < events.rowCount(); ++i) {
        const auto text = [&](EventColumn column) { return events.cell(i, column); };
        EventMarkerRow& row = rows[i];
        row.UTC = text(utc);
        row.Latitude = text(latitude);
        row.Longitude = text(longitude);
        row.Depth = text(depth);
        row.Magnitude = text(magnitude);
        row.Source = text(source);
    }
    return rows;
}

// One element of a page, to write attributes on.
class PageElement {
  public:
    PageElement(WebBrowser& browser, std::string_view id) : browser_(browser), id_(id) {}

    void set(std::string_view name, std::string_view value) {
        browser_.setAttribute(id_, name, value);
    }
    void set(std::string_view name, std::int32_t value) { set(name, std::to_string(value)); }

  private:
    WebBrowser& browser_;
    std::string_view id_;
};

} // namespace

// The parallel lists of one set of markers.
struct EventMarkers::Lists {
    MarkerList utc;
    MarkerList latitude;
    MarkerList longitude;
    MarkerList depth;
    MarkerList magnitude;
    MarkerList source;
    std::string colours;

    void add(const EventMarkerRow& row) {
        utc.Add(row.UTC);
        latitude.Add(row.Latitude);
        longitude.Add(row.Longitude);
        depth.Add(row.Depth);
        magnitude.Add(row.Magnitude);
        source.Add(row.Source);
    }

    // The attributes that both maps get first, in the order in which the pages have always had
    // them.
    void writePlaces(PageElement& markers, const AppSettings& settings) const {
        markers.set("PINSMODE", settings.PinMode);
        markers.set("PINSCALE", settings.PinScale);
        markers.set("latitude", "");
        markers.set("longitude", "");
        markers.set("Eutc", "");
        markers.set("longitude", longitude.text());
        markers.set("Eutc", utc.text());
        markers.set("latitude", latitude.text());
    }

    // The page takes the fill of its circles from Depth.
    void writeColours(PageElement& markers) const {
        markers.set("eventsColor", colours);
        markers.set("Depth", colours);
        markers.set("magnitude", magnitude.text());
    }

    // What the maps get whose pins may lie elsewhere than beside the page.
    void writeMarkers(PageElement& markers, const AppSettings& settings) const {
        writePlaces(markers, settings);
        markers.set("magnitude", magnitude.text());
        writeColours(markers);
        markers.set("urlpin", settings.PathPins);
    }
};

EventMarkers::EventMarkers(Database& database, const AppSettings& settings, NumberLocale locale,
                           WebBrowser& map, WebBrowser& lastEventMap,
                           MarkerSurroundings& surroundings, const KmlWriter& kml, Log& log,
                           ErrorReport& errors)
    : database_(database),
      settings_(settings),
      locale_(std::move(locale)),
      map_(map),
      lastEventMap_(lastEventMap),
      surroundings_(surroundings),
      kml_(kml),
      log_(log),
      errors_(errors) {}

void EventMarkers::eventsInMap(std::string_view sql) {
    ProcedureTrace trace(errors_, module, "eventsInMap");
    database_.slsSel(fmt::format("{} Order by UTC desc", sql));
    std::vector<EventMarkerRow> rows = markerRows(database_.takeResult());
    markDuplicates(rows, trace);
    EventsOnMap_ = std::move(rows);

    Lists lists;
    for (const EventMarkerRow& row : EventsOnMap_)
        if (row.visible)
            lists.add(row);
    colour(lists);
    if (map_.ReadyState() == WebBrowser::complete)
        writeMarkers(lists);
    greyGrid();
    if (settings_.SaveInKml == 1)
        kml_.KmlGenerator(lists.utc.text(), lists.latitude.text(), lists.longitude.text(),
                          lists.magnitude.text(), lists.colours, lists.depth.text(),
                          lists.source.text());
}

void EventMarkers::eventsInMap2(std::string_view sql) {
    const ProcedureTrace trace(errors_, module, "eventsInMap2");
    const Lists lists = listsOf(sql);
    if (map_.ReadyState() != WebBrowser::complete)
        return;
    lastEventMap_.fire("removeAll", Fire::Onclick);
    PageElement markers(lastEventMap_, "markers");
    lists.writePlaces(markers, settings_);
    lists.writeColours(markers);
    lastEventMap_.fire("eventi", Fire::Onclick);
}

void EventMarkers::eventsInMapWRKS(WebBrowser& workspaceMap, std::string_view sql) {
    const ProcedureTrace trace(errors_, module, "eventsInMapWRKS");
    const Lists lists = listsOf(sql);
    if (workspaceMap.ReadyState() != WebBrowser::complete)
        return;
    PageElement markers(workspaceMap, "markers");
    lists.writeMarkers(markers, settings_);
}

void EventMarkers::visualizeEventsinRectangle(std::string_view utcFilter) {
    const ProcedureTrace trace(errors_, module, "visualizeEventsinRectangle");
    // A copy, because the table replaces a refused condition in the settings.
    const std::string condition = settings_.searchParQuery;
    surroundings_.FillGridEvents(condition, utcFilter, "");
    surroundings_.pictureMagnitudeEvents();
}

void EventMarkers::pin2gif(std::string_view lastEventSql) {
    const ProcedureTrace trace(errors_, module, "pin2gif");
    database_.slsSel(lastEventSql);
    // Taken away first: the click bubbles, and what it starts may query the catalogue.
    const ResultSet events = database_.takeResult();
    for (std::size_t row = 0; row < events.rowCount(); ++row) {
        map_.setAttribute("MapClick", "VALORE", "");
        map_.setAttribute("UltimoEvento", "utc", MarkerList::listed(events.cell(row, utc)));
        map_.fire("UltimoEvento", Fire::Click);
    }
}

void EventMarkers::markDuplicates(std::vector<EventMarkerRow>& rows, ProcedureTrace& trace) {
    trace.step([&] {
        const std::span<EventMarkerRow> events(rows.data(), rows.size() - 1);
        tellNotCompared(runDuplicatePass(events, settings_.PriorityEvents, surroundings_, locale_),
                        rows);
    });
}

// Once for an event, not at every move of the map: it may come from a feed, and a box each time
// would stop the room.
void EventMarkers::tellNotCompared(const DuplicatePassReport& report,
                                   const std::vector<EventMarkerRow>& rows) {
    if (report.pairsNotCompared == 0)
        return;
    const std::string& fault = rows[report.firstFaultyRow].UTC;
    if (reportedFault_ == fault)
        return;
    reportedFault_ = fault;
    log_.addLogToList(
        fmt::format("Pairs of events not checked for duplicates: {}. The first time or place that "
                    "cannot be read is that of the event \"{}\".",
                    report.pairsNotCompared, fault.substr(0, longestToldTime)));
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

// All events of a query, without the empty entry behind them.
EventMarkers::Lists EventMarkers::listsOf(std::string_view sql) {
    database_.slsSel(sql);
    std::vector<EventMarkerRow> rows = markerRows(database_.takeResult());
    rows.pop_back();
    Lists lists;
    for (const EventMarkerRow& row : rows)
        lists.add(row);
    colour(lists);
    return lists;
}

void EventMarkers::colour(Lists& lists) const {
    const std::vector<std::string_view> depths = split(lists.depth.text(), MarkerList::separator);
    std::vector<std::string_view> magnitudes = split(lists.magnitude.text(), MarkerList::separator);
    lists.colours = colorImageEvents(depths, magnitudes, settings_.PinMode != 0, locale_);
}

void EventMarkers::writeMarkers(const Lists& lists) {
    PageElement markers(map_, "markers");
    lists.writeMarkers(markers, settings_);
    markers.set("GIFLAST", settings_.AnimatedGif);
}

// Rows go by their text alone, so the twin of a hidden row is grey as well, and so is a row without
// a time: the entry behind the last event has none either.
void EventMarkers::greyGrid() {
    std::unordered_set<std::string_view> hidden;
    for (const EventMarkerRow& row : EventsOnMap_)
        if (!row.visible)
            hidden.insert(row.UTC);
    std::vector<std::int64_t> grey;
    for (std::int64_t row = 1; row < surroundings_.gridRowCount(); ++row)
        if (hidden.contains(surroundings_.gridCell(row, gridUtcColumn)))
            grey.push_back(row);
    if (!grey.empty())
        surroundings_.setGridRowsGrey(grey);
}

} // namespace tremor
