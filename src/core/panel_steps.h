#pragma once

#include "alerts/nearby_towns.h"
#include "core/controls.h"
#include "core/ports.h"
#include "ingest/service_steps.h"
#include "ingest/tick_steps.h"
#include "map/query_to_controls.h"
#include "views/grid_view.h"
#include "workspaces/haversine_formula.h"

#include <cstdint>
#include <string>
#include <string_view>

class QMainWindow;

namespace tremor {

struct PanelComponents;
class PanelWidgets;

// The status strip of the main window.
class PanelStatus : public StatusPanel {
  public:
    explicit PanelStatus(PanelWidgets& widgets) : widgets_(widgets) {}

    void setStatusText(std::string_view text) override;
    void setEventsText(std::string_view text) override;
    void setDownloadSize(std::string_view text) override;
    void setProgressRange(int minimum, int maximum) override;
    void setProgress(int value) override;
    std::string statusText() const override;
    int progressMaximum() const override;
    int progress() const override;

  private:
    PanelWidgets& widgets_;
};

// The controls and menu items of the main window, found by their object names.
class PanelControlStates : public PanelControls {
  public:
    explicit PanelControlStates(QMainWindow& window) : window_(window) {}

    void controlliForm(std::int32_t state) override;
    void setCaption(std::string_view caption) override;

    // A control or menu item by its object name; nothing when there is none.
    void setEnabled(std::string_view objectName, bool enabled);

  private:
    QMainWindow& window_;
};

// The geometry of the earth for the nearby towns.
class PanelEarth : public EarthRoutines {
  public:
    PanelEarth(const NumberLocale& locale, ErrorReport& errors) : haversine_(locale, errors) {}

    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const override {
        return haversine_.distance(lat1, lon1, lat2, lon2, unit);
    }
    std::string revealBounds(double lat, double lon, std::string_view bearing,
                             double distanceKm) const override {
        return haversine_.revealBounds(lat, lon, bearing, distanceKm);
    }

  private:
    HaversineFormula haversine_;
};

// The list of towns in the main window.
class PanelTowns : public TownsList {
  public:
    explicit PanelTowns(PanelWidgets& widgets) : widgets_(widgets) {}

    void clear() override;
    void add(std::string_view item) override;

  private:
    PanelWidgets& widgets_;
};

// Carries the outward steps of the logic over to the components of the main window.
class PanelSteps : public TickSteps,
                   public ServiceSteps,
                   public QueryToControlsSteps,
                   public TownsReport {
  public:
    PanelSteps(PanelWidgets& widgets, PanelComponents& components)
        : widgets_(widgets), components_(components) {}

    void setCountdownText(std::string_view text) override;
    bool IsInternetUp() override;
    bool mapPageLoaded() override;
    void refreshLogList() override;
    void startServices() override;
    void downloadCsvFromIngv() override;
    void downloadCsvFromIside() override;
    void downloadCsvFromUSGS() override;
    void downloadCsvFromEmsc() override;
    void ListFolder(std::string_view localSourcePath) override;
    void exportLast24HoursCSV() override;
    bool thereIsNewEv() override;
    void positioningWbrLast() override;
    void lastEventInDb() override;
    void generateMsgEmail() override;
    void generateMsgPagerlink() override;
    void generateMsgTelegram() override;
    bool telegramTokenValid() override;
    std::int32_t checkIdTelegram() override;
    void eventOnPOI(const SelectedEvent& event) override;

    void mapsInJPGLastEvent() override;
    void mapsInJPGWorkspace() override;
    void TimerCheckScreenshot_Timer();
    void saveAllWorkspace() override;
    void popolaComboWorkspace() override;
    void pictureMagnitudeEvents() override;
    void repaintChart() override;

    bool openDB() override;
    void EnableDisableWebBrowser(bool on) override;
    void controlliForm(int state) override;
    void generaDefaultCSS() override;
    void Maps() override;
    void MapsLastEvent() override;
    void savingWorkspacePage() override;
    void webPageForKml() override;
    void webPageForCsv() override;
    void setObjectHTML();
    void boundsVisualizedMap() override;
    void moveSaveMapsOutOfSight() override;
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override;

    bool mapIsLive() override;
    void removeAll() override;
    void eventsInMap(std::string_view sql) override;
    void clickEventi() override;
    void pin2gif(std::string_view lastEventSql) override;

    // The page area of the snapshots goes to the left of the window's area.
    void moveSaveMapsAside();

  private:
    PanelWidgets& widgets_;
    PanelComponents& components_;
};

} // namespace tremor
