#include "views/events_grid.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/latest_hours.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view newestFirst = " ORDER BY UTC DESC";
constexpr std::string_view magnitudeHeader = "Mg";
constexpr int utcColumn = 1;
constexpr int magnitudeColumn = 4;
constexpr int lastColumn = 6;
constexpr std::int64_t rowsOfAWheelTurn = 3;

// Widths in twips of the grid columns 0 (hidden) to 5; column 6 takes what is left.
constexpr std::array<std::int32_t, 6> columnWidths{0, 1900, 670, 800, 500, 540};

bool isMarked(std::string_view header) {
    return header.ends_with(' ');
}

} // namespace

EventsGrid::EventsGrid(Database& database, Session& session, AppSettings& settings, Clock& clock,
                       NumberLocale locale, GridView& view, GridMap& map, TownsReport& townsReport,
                       Prompts& prompts, ErrorReport& errors, std::function<bool()> openDB)
    : database_(database),
      session_(session),
      settings_(settings),
      clock_(clock),
      locale_(std::move(locale)),
      view_(view),
      map_(map),
      townsReport_(townsReport),
      prompts_(prompts),
      errors_(errors),
      openDB_(std::move(openDB)) {}

void EventsGrid::FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) {
    ProcedureTrace trace(errors_, module, "FillGridEvents");
    GridFilters_ = std::string(filter) + "|" + std::string(fallbackFilter);
    view_.clearRows();
    GridRowSelected_ = false;
    // Some callers pass the number 0 for "no order".
    const std::string tail(order.empty() || order == "0" ? newestFirst : order);
    runQuery(filter.empty() ? fallbackFilter : filter, tail);
    if (queryRefused()) {
        settings_.searchParQuery = conditionOfVisibleRectangle(trace);
        runQuery(settings_.searchParQuery, tail);
    }
    showResult();
}

void EventsGrid::runQuery(std::string_view condition, std::string_view order) {
    std::string sql =
        "select UTC, Latitude, Longitude, Magnitude, Depth, Source from Events where ";
    sql.append(condition).append(order);
    database_.slsSel(sql);
}

bool EventsGrid::queryRefused() const {
    return leadingNumber(database_.slGetError()) != 0;
}

std::string EventsGrid::conditionOfVisibleRectangle(ProcedureTrace& trace) {
    map_.removeAll();
    const MapBounds bounds = map_.boundsVisualizedMap();
    return rectangleCondition(bounds, locale_) + " AND " +
           latestHours(trace, clock_, settings_, session_);
}

void EventsGrid::showResult() {
    const int columns = database_.slGetColumnCount();
    if (!GridHeaderDone_) {
        for (int column = 1; column <= columns; ++column)
            view_.setHeader(column, database_.slGetColumnName(column));
        dimensionamentoGrid();
        GridHeaderDone_ = columns > 0;
    }
    view_.setRows(database_.takeResult());
    view_.setColumnWidth(0, 0);
}

void EventsGrid::dimensionamentoGrid() {
    for (int column = 0; column < static_cast<int>(columnWidths.size()); ++column)
        view_.setColumnWidth(column, columnWidths[static_cast<std::size_t>(column)]);
    if (!GridHeaderDone_)
        view_.setHeader(magnitudeColumn, magnitudeHeader);
}

void EventsGrid::sortEvents(int column) {
    const ProcedureTrace trace(errors_, module, "sortEvents");
    if (GridFilters_.empty())
        return; // nothing has been shown yet
    const std::string name(trimRight(view_.header(column)));
    if (name.empty())
        return; // the hidden column, or none at all
    const bool ascending = isMarked(view_.header(column));
    for (int other = 1; other <= lastColumn; ++other)
        view_.setHeader(other, trimRight(view_.header(other)));
    if (!ascending)
        view_.setHeader(column, name + " ");

    // Copies, because the fill sets GridFilters anew.
    const std::vector<std::string_view> parts = split(GridFilters_, '|');
    const std::string filter(parts.at(0));
    const std::string fallbackFilter(parts.at(1));
    FillGridEvents(filter, fallbackFilter,
                   " ORDER BY " + (name == magnitudeHeader ? std::string("Magnitude") : name) +
                       (ascending ? " ASC" : " DESC"));
}

void EventsGrid::GridEvents_Click(std::int64_t row, int column) {
    const ProcedureTrace trace(errors_, module, "GridEvents_Click");
    if (row == 0) {
        sortEvents(column);
        return;
    }
    if (row < 0 || row >= view_.rowCount())
        return;
    releaseColour();
    colourRow(row);
    const std::string utc = view_.cell(row, utcColumn);
    eventoSelezionato(utc);
    map_.selectMarker(utc);
}

void EventsGrid::selectEventOfMap(std::string_view utc) {
    const ProcedureTrace trace(errors_, module, "event_click_map");
    releaseColour();
    std::int64_t row = 1;
    while (row < view_.rowCount() && view_.cell(row, utcColumn) != utc)
        ++row;
    if (row >= view_.rowCount())
        return;
    colourRow(row);
    eventoSelezionato(utc);
    if (!view_.rowVisible(row))
        view_.setTopRow(row);
}

void EventsGrid::colourRow(std::int64_t row) {
    view_.setRowSelected(row, true);
    GridSelectedRow_ = row;
    GridRowSelected_ = true;
}

void EventsGrid::GridEvents_SelChange() {
    const ProcedureTrace trace(errors_, module, "GridEvents_SelChange");
    releaseColour();
}

void EventsGrid::releaseColour() {
    if (!GridRowSelected_)
        return;
    view_.setRowSelected(GridSelectedRow_, false);
    GridRowSelected_ = false;
}

void EventsGrid::eventoSelezionato(std::string_view utc) {
    const ProcedureTrace trace(errors_, module, "eventoSelezionato");
    const std::string sql =
        "select Latitude,Longitude,Magnitude,Depth,Source from Events where UTC = '" +
        std::string(utc) + "'";
    if (!openDB_())
        return;
    database_.slsSel(sql);
    if (queryRefused())
        prompts_.showMessageBox({.text = database_.slGetError() + " eventoSelezionato"});
    SelectedEvent event;
    event.utc = utc;
    while (database_.slsGetRow()) {
        event.latitude = database_.slsFX(1);
        event.longitude = database_.slsFX(2);
        event.magnitude = database_.slsFX(3);
        event.depth = database_.slsFX(4);
        event.source = database_.slsFX(5);
    }
    townsReport_.eventOnPOI(event);
}

void EventsGrid::MouseWheel(int rotation) {
    const std::int64_t lastRow = view_.rowCount() - 1;
    if (lastRow < 1)
        return;
    const std::int64_t step = rotation < 1 ? rowsOfAWheelTurn : -rowsOfAWheelTurn;
    view_.setTopRow(std::clamp<std::int64_t>(view_.topRow() + step, 1, lastRow));
}

} // namespace tremor
