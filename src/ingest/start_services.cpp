#include "ingest/start_services.h"

#include "core/dates.h"
#include "core/event_query.h"
#include "core/flag_scope.h"
#include "core/latest_hours.h"

namespace tremor {

namespace {

constexpr std::int32_t stateNoInternet = 1;
constexpr std::int32_t stateInternetBack = 3;

} // namespace

StartServices::StartServices(Session& session, AppSettings& settings, Clock& clock,
                             ActivityLog& log, ErrorReport& errors, ServiceSteps& steps)
    : session_(session),
      settings_(settings),
      clock_(clock),
      log_(log),
      errors_(errors),
      steps_(steps) {}

void StartServices::startServices() {
    if (running_)
        return;
    const FlagScope running(running_);
    ProcedureTrace trace(errors_, "Form - panel", "startServices");
    refreshEverything(trace);
    if (settings_.SaveInKml == 1)
        trace.step([&] { steps_.webPageForKml(); });
    if (settings_.SaveInCsv == 1)
        trace.step([&] { steps_.webPageForCsv(); });
}

void StartServices::refreshEverything(ProcedureTrace& trace) {
    bool opened = false;
    trace.step([&] { opened = steps_.openDB(); });
    if (!opened) {
        logMissingDatabase();
        return;
    }
    bool internetUp = false;
    trace.step([&] { internetUp = steps_.IsInternetUp(); });
    if (!internetUp) {
        logMissingInternet();
        trace.step([&] { steps_.EnableDisableWebBrowser(false); });
        trace.step([&] { steps_.controlliForm(stateNoInternet); });
        return;
    }
    if (session_.DatabaseOpen)
        trace.step([&] { steps_.controlliForm(stateInternetBack); });
    writePages(trace);
    if (session_.DatabaseOpen)
        refreshViews(trace);
}

void StartServices::logMissingDatabase() {
    log_.addBareLine("You must update your Database...");
    log_.addBareLine("Select File -> Start all Services");
    log_.addBareLine("or press CTRL+F5");
    log_.addBareLine("to update your Database.");
    log_.selectLast();
}

void StartServices::logMissingInternet() {
    log_.addLogToList("Internet Connection is down.");
    log_.addLogToList("After you solve your Internet problem, you can visualize Maps");
    log_.addLogToList("by clicking File->Start all services .");
}

void StartServices::writePages(ProcedureTrace& trace) {
    trace.step([&] { steps_.generaDefaultCSS(); });
    trace.step([&] { steps_.Maps(); });
    trace.step([&] { steps_.MapsLastEvent(); });
    trace.step([&] { steps_.savingWorkspacePage(); });
}

void StartServices::refreshViews(ProcedureTrace& trace) {
    trace.step([&] { steps_.popolaComboWorkspace(); });
    trace.step([&] { steps_.lastEventInDb(); });
    trace.step([&] { steps_.moveSaveMapsOutOfSight(); });
    fillViews(trace);
}

void StartServices::fillViews(ProcedureTrace& trace) {
    if (settings_.LastWorkSpace == "Global") {
        trace.step([&] { steps_.boundsVisualizedMap(); });
        fillGrid(trace);
        return;
    }
    fillGridOfWorkspace(trace);
    trace.step([&] { steps_.eventsInMap(std::string(selectEvents) + settings_.searchParQuery); });
    trace.step([&] { steps_.pictureMagnitudeEvents(); });
    trace.step([&] { steps_.boundsVisualizedMap(); });
    trace.step([&] { steps_.repaintChart(); });
}

void StartServices::fillGrid(ProcedureTrace& trace) {
    const std::string filter = latestHours(trace, clock_, settings_, session_);
    // A copy: the query changes when the map moves while the grid fills.
    const std::string query = settings_.searchParQuery;
    trace.step([&] { steps_.FillGridEvents(query, filter, {}); });
}

void StartServices::fillGridOfWorkspace(ProcedureTrace& trace) {
    const std::string query = settings_.searchParQuery;
    if (settings_.wrkSpaceUpdating != 1 || query.empty()) {
        fillGrid(trace);
    } else if (query.size() > utcRangeLength) {
        const std::string renewed =
            replaceTrailingUtcRange(query, latestHours(trace, clock_, settings_, session_));
        settings_.searchParQuery = renewed;
        trace.step([&] { steps_.FillGridEvents(renewed, {}, {}); });
    }
}

} // namespace tremor
