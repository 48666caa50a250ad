#pragma once

#include "core/activity_log.h"
#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "ingest/service_steps.h"

#include <string>

namespace tremor {

// One full refresh of maps, grid and lists: at start, on "Start all services" (CTRL+F5) and from
// the timer while the map page has not been loaded.
class StartServices {
  public:
    StartServices(Session& session, AppSettings& settings, Clock& clock, ActivityLog& log,
                  ErrorReport& errors, ServiceSteps& steps);

    // Returns at once while another call of it runs: its waits let ticks and the operator in, and
    // a page that does not answer would otherwise nest them without end.
    void startServices();

    // The last stage of it: fills grid, chart and map under the condition in force. The steps run
    // under the caller's `trace`.
    void fillViews(ProcedureTrace& trace);

  private:
    void refreshEverything(ProcedureTrace& trace);
    void logMissingDatabase();
    void logMissingInternet();
    void writePages(ProcedureTrace& trace);
    void refreshViews(ProcedureTrace& trace);
    void fillGrid(ProcedureTrace& trace);
    void fillGridOfWorkspace(ProcedureTrace& trace);

    Session& session_;
    AppSettings& settings_;
    Clock& clock_;
    ActivityLog& log_;
    ErrorReport& errors_;
    ServiceSteps& steps_;
    bool running_ = false;
};

} // namespace tremor
