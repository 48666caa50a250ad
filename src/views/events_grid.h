#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "views/grid_view.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tremor {

// Fills, sorts and selects in the table `GridEvents`, the tabular view of the events that the
// condition in force selects. Rows and columns are counted as in GridView.
class EventsGrid {
  public:
    // `openDB` opens the catalogue anew; false when it cannot be used. All references must outlive
    // this object.
    EventsGrid(Database& database, Session& session, AppSettings& settings, Clock& clock,
               NumberLocale locale, GridView& view, GridMap& map, TownsReport& townsReport,
               Prompts& prompts, ErrorReport& errors, std::function<bool()> openDB);

    // Shows the events for which `filter` holds (`fallbackFilter` when it is empty), for example
    // "(Magnitude >= '4')". `order` is the tail of the statement, " ORDER BY Depth ASC"; empty and
    // "0" mean newest first. A condition that the engine refuses is replaced, without a message,
    // by the map's rectangle over the last RangeHoursOfEventsInMap hours, which then is the new
    // settings.searchParQuery.
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order);

    // Sets the column widths and, until the first fill has written the headers, the header "Mg".
    void dimensionamentoGrid();

    // Reads the rows again in the order of a column: descending, or ascending when it was the
    // column of the present descending order. A blank at the end of its header marks that column.
    void sortEvents(int column);

    // A click on a cell. Row 0 (the header) sorts; a data row gets the selection colour, its
    // towns are reported and its marker is selected on the map; any other row does nothing.
    void GridEvents_Click(std::int64_t row, int column);

    // A marker was clicked on the map: the first row of that event gets the selection colour and is
    // scrolled to, and its towns are reported. Nothing when the table does not show the event.
    void selectEventOfMap(std::string_view utc);

    // The current row has moved: the selection colour is released.
    void GridEvents_SelChange();

    // Reads the event from the catalogue, which is opened anew for it, and hands it on to the
    // towns report. A refused statement shows a box and reports an event of empty texts.
    void eventoSelezionato(std::string_view utc);

    // A turn of the mouse wheel over the main window: three rows down for a `rotation` below 1
    // (0 included), else three rows up, held to the first and the last data row.
    void MouseWheel(int rotation);

  private:
    void runQuery(std::string_view condition, std::string_view order);
    bool queryRefused() const;
    std::string conditionOfVisibleRectangle(ProcedureTrace& trace);
    void showResult();
    void colourRow(std::int64_t row);
    void releaseColour();

    Database& database_;
    Session& session_;
    AppSettings& settings_;
    Clock& clock_;
    NumberLocale locale_;
    GridView& view_;
    GridMap& map_;
    TownsReport& townsReport_;
    Prompts& prompts_;
    ErrorReport& errors_;
    std::function<bool()> openDB_;

    std::string GridFilters_; // "filter|fallback filter" of the last fill; empty before the first
    bool GridHeaderDone_ = false;
    bool GridRowSelected_ = false;
    std::int64_t GridSelectedRow_ = 0; // the row with the selection colour
};

} // namespace tremor
