#include "map/query_to_controls.h"

#include "core/dates.h"
#include "core/event_query.h"
#include "core/latest_hours.h"

#include <string>

namespace tremor {
QueryToControls::QueryToControls(AppSettings& settings, Session& session, Clock& clock,
                                 QueryToControlsSteps& steps, ErrorReport& errors)
    : settings_(settings), session_(session), clock_(clock), steps_(steps), errors_(errors) {}

void QueryToControls::query2Controls() {
    ProcedureTrace trace(errors_, "Form - panel", "query2Controls");
    if (!steps_.mapIsLive())
        return;
    if (settings_.searchParQuery.empty())
        showLatestHours(trace);
    else if (settings_.wrkSpaceUpdating == 1)
        showUpdatedCondition(trace);
}

void QueryToControls::showLatestHours(ProcedureTrace& trace) {
    steps_.removeAll();
    const std::string range = latestHours(trace, clock_, settings_, session_);
    steps_.FillGridEvents("", range, "");
    const std::string events = std::string(selectEvents) + range;
    steps_.eventsInMap(events);
    steps_.clickEventi();
    steps_.pictureMagnitudeEvents();
    steps_.pin2gif(events + " order by UTC desc limit 1");
}

void QueryToControls::showUpdatedCondition(ProcedureTrace& trace) {
    steps_.removeAll();
    if (settings_.searchParQuery.size() > utcRangeLength)
        settings_.searchParQuery = replaceTrailingUtcRange(
            settings_.searchParQuery, latestHours(trace, clock_, settings_, session_));
    // A copy, because the table replaces a refused condition in the settings.
    const std::string condition = settings_.searchParQuery;
    steps_.FillGridEvents(condition, "", "");
    steps_.eventsInMap(std::string(selectEvents) + settings_.searchParQuery);
    steps_.clickEventi();
    steps_.pictureMagnitudeEvents();
}

} // namespace tremor
