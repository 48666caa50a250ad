#include "core/panel_components.h"

#include "core/files.h"
#include "core/panel_widgets.h"

#include <utility>

namespace tremor {

PanelComponents::PanelComponents(const PanelEnvironment& given, QMainWindow& window,
                                 PanelWidgets& widgets, std::int32_t screenWidth,
                                 std::int32_t screenHeight, std::function<void()> unloadPanel)
    : environment(given),
      status(widgets),
      controls(window),
      log(*widgets.lst_prog_log, given.clock, given.errors, given.applicationPath),
      settingsUtilities(settings, given.errors,
                        {given.applicationPath, screenWidth, screenHeight, given.locale}),
      earth(given.locale, given.errors),
      map(given.browsers, widgets, *this),
      townsList(widgets),
      towns(database, given.locale, earth, townsList, given.errors),
      steps(widgets, *this),
      upgrade(database, settings, given.session, given.clock, log, given.errors,
              [this](std::string_view name, const std::string& path) {
                  catalogue.fillDBTables();
                  return catalogue.createDatabase(name, {}, path);
              }),
      catalogue(database, settings, given.session, controls, given.prompts, log, given.errors,
                upgrade, given.applicationPath),
      grid(database, given.session, settings, given.clock, given.locale, *widgets.gridEvents, map,
           steps, given.prompts, given.errors, [this] { return openDB(); }),
      chart(database, given.session, settings, given.locale, *widgets.PicEvHist, given.errors),
      workspaces(widgets, *this),
      alerts(widgets, *this),
      manage(widgets, *this),
      setup(widgets, *this),
      probe(given.hosts.InternetProbe, given.clock, given.session),
      network(given.clock, given.session, environment.hosts),
      download(given.session, status, given.clock,
               given.transfer != nullptr ? *given.transfer : network, unloadPanel),
      ingv(feedContext(), download),
      usgs(feedContext(), download, given.locale),
      emsc(feedContext(), download),
      liveloc(feedContext()),
      seisComp(feedContext(), given.prompts, given.applicationPath, given.locale),
      localSources(feedContext(), liveloc, seisComp),
      csvExport(feedContext(), settings, given.applicationPath),
      csvImport(feedContext(), given.prompts, given.locale),
      updateFromRemoteWbr(given.browsers.makeSiteBrowser()),
      isideNetwork(given.clock, given.session, environment.hosts, {},
                   [this] { return updateFromRemoteWbr->cookies(); }),
      isideDownload(given.session, status, given.clock,
                    given.transfer != nullptr ? *given.transfer : isideNetwork,
                    std::move(unloadPanel)),
      iside(feedContext(), *updateFromRemoteWbr, isideDownload, csvImport),
      services(given.session, settings, given.clock, log, given.errors, steps),
      refresh(settings, given.session, given.clock, steps, given.errors),
      scheduler(given.session, settings, given.clock, log, given.errors, steps) {
    given.errors.setLog(&log);
    // A long statement leaves the windows painted.
    database.setBusyCallback([this] { environment.clock.repaint(); });
}

PanelComponents::~PanelComponents() {
    environment.errors.setLog(nullptr);
}

FeedContext PanelComponents::feedContext() {
    return {environment.session,
            settings,
            environment.hosts,
            database,
            status,
            environment.clock,
            log,
            environment.errors,
            [folder = environment.applicationPath] { return GetTmpFolder(folder); }};
}

bool PanelComponents::openDB() {
    std::int32_t declined = 0;
    return catalogue.openDB(declined);
}

} // namespace tremor
