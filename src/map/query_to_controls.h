#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"

#include <string>
#include <string_view>

namespace tremor {

// The outward steps of a refresh after new events, in the order in which it may take them.
class QueryToControlsSteps {
  public:
    virtual ~QueryToControlsSteps() = default;

    // The workspace map shows a complete page that answers. A program without a map says true, so
    // that the table follows the catalogue all the same.
    virtual bool mapIsLive() = 0;

    virtual void removeAll() = 0; // takes the markers off; the page's handler alone runs
    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void eventsInMap(std::string_view sql) = 0; // hands the markers over
    virtual void clickEventi() = 0;                     // draws them, by a click that bubbles
    virtual void pin2gif(std::string_view lastEventSql) = 0;
    virtual void pictureMagnitudeEvents() = 0; // the history chart
};

// Brings the table, the chart and the workspace map in line with the catalogue after a poll.
class QueryToControls {
  public:
    QueryToControls(AppSettings& settings, Session& session, Clock& clock,
                    QueryToControlsSteps& steps, ErrorReport& errors);

    // Without a condition in force: the last RangeHoursOfEventsInMap hours of the whole catalogue.
    // With one, and while the workspace is updating: the same condition with its time range moved
    // up to now. Otherwise, and without a live map, nothing.
    void query2Controls();

  private:
    void showLatestHours(ProcedureTrace& trace);
    void showUpdatedCondition(ProcedureTrace& trace);

    AppSettings& settings_;
    Session& session_;
    Clock& clock_;
    QueryToControlsSteps& steps_;
    ErrorReport& errors_;
};

} // namespace tremor
