#pragma once

#include "core/activity_log.h"
#include "core/error_report.h"
#include "core/hosts.h"
#include "core/number_locale.h"
#include "core/panel_alerts.h"
#include "core/panel_manage.h"
#include "core/panel_map.h"
#include "core/panel_setup.h"
#include "core/panel_steps.h"
#include "core/panel_workspaces.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "core/settings_utilities.h"
#include "database/catalogue_file.h"
#include "database/database.h"
#include "database/database_upgrade.h"
#include "ingest/csv_export.h"
#include "ingest/csv_import.h"
#include "ingest/emsc_source.h"
#include "ingest/ingv_source.h"
#include "ingest/internet_probe.h"
#include "ingest/iside_source.h"
#include "ingest/liveloc_source.h"
#include "ingest/local_sources.h"
#include "ingest/panel_download.h"
#include "ingest/polling_scheduler.h"
#include "ingest/seiscomp_source.h"
#include "ingest/start_services.h"
#include "ingest/usgs_source.h"
#include "views/event_history_chart.h"
#include "views/events_grid.h"

#include <functional>
#include <memory>
#include <string>

namespace tremor {

// What the main window is given. The references outlive it.
struct PanelEnvironment {
    Session& session;
    Prompts& prompts;
    Clock& clock;
    ErrorReport& errors;
    Hosts hosts;
    std::string applicationPath; // folder of the executable, no "/" at its end
    NumberLocale locale;
    BrowserMaker& browsers;
    Sound& sound;
    FileTransfer* transfer = nullptr; // null: the real network
};

// Every component behind the main window, each made with just the references that it needs.
struct PanelComponents {
    // `unloadPanel` closes the window; the screen is measured in twips.
    PanelComponents(const PanelEnvironment& given, QMainWindow& window, PanelWidgets& widgets,
                    std::int32_t screenWidth, std::int32_t screenHeight,
                    std::function<void()> unloadPanel);
    ~PanelComponents();
    PanelComponents(const PanelComponents&) = delete;
    PanelComponents& operator=(const PanelComponents&) = delete;

    bool openDB();

    FeedContext feedContext(); // what each source of events works with

    PanelEnvironment environment;
    AppSettings settings;
    Database database;
    PanelStatus status;
    PanelControlStates controls;
    ActivityLog log;
    SettingsUtilities settingsUtilities;
    PanelEarth earth;
    PanelMap map;
    PanelTowns townsList;
    NearbyTowns towns;
    PanelSteps steps;
    CatalogueUpgrade upgrade;
    CatalogueFile catalogue;
    EventsGrid grid;
    EventHistoryChart chart;
    PanelWorkspaces workspaces;
    PanelAlerts alerts;
    PanelManage manage;
    PanelSetup setup;
    InternetProbe probe;
    HttpFileTransfer network;
    PanelDownload download;
    IngvSource ingv;
    UsgsSource usgs;
    EmscSource emsc;
    LivelocSource liveloc;
    SeisCompSource seisComp;
    LocalSources localSources;
    CsvExport csvExport;
    CsvImport csvImport;
    std::unique_ptr<SiteBrowser> updateFromRemoteWbr;
    HttpFileTransfer isideNetwork; // within that browser's session
    PanelDownload isideDownload;
    IsideSource iside;
    StartServices services;
    QueryToControls refresh;
    PollingScheduler scheduler;
};

} // namespace tremor
