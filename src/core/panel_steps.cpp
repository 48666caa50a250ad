#include "core/panel_steps.h"

#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/qt_text.h"

#include <QtGui/QAction>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QProgressBar>

#include <algorithm>
#include <array>

namespace tremor {
namespace {

// The commands on the workspace shown are there whenever that on all of them is.
constexpr std::string_view allWorkspaces = "mnu_wrkspaces";
constexpr std::array<std::string_view, 4> workspaceCommands{"mnuSearchWRK", "mnuJump2WRK",
                                                            "mnuDeleteWRK", "cmd_JumpWRK"};

} // namespace

void PanelStatus::setStatusText(std::string_view text) {
    widgets_.lbl_log_bkg->setText(fromBytes(text));
}

void PanelStatus::setEventsText(std::string_view text) {
    widgets_.lbl_events->setText(fromBytes(text));
    widgets_.lbl_events->repaint();
}

void PanelStatus::setDownloadSize(std::string_view text) {
    widgets_.lbl_tot->setText(fromBytes(text));
}

void PanelStatus::setProgressRange(int minimum, int maximum) {
    widgets_.prgBar->setRange(minimum, maximum);
}

void PanelStatus::setProgress(int value) {
    QProgressBar& bar = *widgets_.prgBar;
    bar.setValue(std::clamp(value, bar.minimum(), bar.maximum()));
}

std::string PanelStatus::statusText() const {
    return toBytes(widgets_.lbl_log_bkg->text());
}

int PanelStatus::progressMaximum() const {
    return widgets_.prgBar->maximum();
}

int PanelStatus::progress() const {
    return widgets_.prgBar->value();
}

void PanelControlStates::controlliForm(std::int32_t state) {
    const ControlsChange change = controlsChange(state);
    for (const std::string_view name : change.names)
        setEnabled(name, change.enabled);
    if (std::ranges::find(change.names, allWorkspaces) == change.names.end())
        return;
    for (const std::string_view name : workspaceCommands)
        setEnabled(name, change.enabled);
}

void PanelControlStates::setEnabled(std::string_view objectName, bool enabled) {
    const QString name = fromBytes(objectName);
    if (auto* control = window_.findChild<QWidget*>(name))
        control->setEnabled(enabled);
    else if (auto* item = window_.findChild<QAction*>(name))
        item->setEnabled(enabled);
}

void PanelControlStates::setCaption(std::string_view caption) {
    // Qt takes "[*]" in a title for the mark of unsaved work; doubled it stands for itself.
    const QString mark = QStringLiteral("[*]");
    window_.setWindowTitle(fromBytes(caption).replace(mark, mark + mark));
}

void PanelTowns::clear() {
    widgets_.List1->clear();
}

void PanelTowns::add(std::string_view item) {
    widgets_.List1->addItem(fromBytes(item));
}

void PanelSteps::setCountdownText(std::string_view text) {
    components_.status.setStatusText(text);
}

bool PanelSteps::IsInternetUp() {
    return components_.probe.IsInternetUp();
}

void PanelSteps::refreshLogList() {
    components_.log.refresh();
}

void PanelSteps::startServices() {
    components_.services.startServices();
}

void PanelSteps::downloadCsvFromIngv() {
    components_.ingv.downloadCsvFromIngv();
}

void PanelSteps::downloadCsvFromIside() {
    components_.iside.downloadCsvFromIside();
}

void PanelSteps::downloadCsvFromUSGS() {
    components_.usgs.downloadCsvFromUSGS();
}

void PanelSteps::downloadCsvFromEmsc() {
    components_.emsc.downloadCsvFromEmsc();
}

void PanelSteps::ListFolder(std::string_view localSourcePath) {
    components_.localSources.ListFolder(localSourcePath);
}

void PanelSteps::exportLast24HoursCSV() {
    components_.csvExport.exportLast24HoursCSV();
}

bool PanelSteps::thereIsNewEv() {
    return components_.alerts.newEvents().thereIsNewEv();
}

void PanelSteps::positioningWbrLast() {
    components_.alerts.newEvents().positioningWbrLast();
}

void PanelSteps::lastEventInDb() {
    components_.alerts.newEvents().lastEventInDb();
}

void PanelSteps::generateMsgEmail() {
    components_.alerts.email().generateMsgEmail();
}

void PanelSteps::generateMsgPagerlink() {
    components_.alerts.pagerlink().generateMsgPagerlink();
}

void PanelSteps::generateMsgTelegram() {
    components_.alerts.telegram().generateMsgTelegram();
}

bool PanelSteps::telegramTokenValid() {
    return components_.alerts.telegram().telegramTokenValid();
}

std::int32_t PanelSteps::checkIdTelegram() {
    std::int32_t added = 0;
    bool changed = false;
    components_.alerts.telegram().checkIdTelegram(added, changed);
    return added;
}

void PanelSteps::mapsInJPGLastEvent() {
    components_.map.mapsInJPGLastEvent();
}

void PanelSteps::mapsInJPGWorkspace() {
    components_.map.mapsInJPGWorkspace();
}

void PanelSteps::TimerCheckScreenshot_Timer() {
    components_.map.snapshots().TimerCheckScreenshot_Timer();
}

void PanelSteps::saveAllWorkspace() {
    components_.workspaces.windows().saveAllWorkspace();
}

// Only a start asks for the list here; it fills the views by itself afterwards.
void PanelSteps::popolaComboWorkspace() {
    components_.workspaces.workspaces().popolaComboWorkspaceAtStart();
}

void PanelSteps::pictureMagnitudeEvents() {
    components_.chart.pictureMagnitudeEvents();
}

void PanelSteps::repaintChart() {
    widgets_.PicEvHist->repaintChart();
}

// The report itself is of the selected event, not of the newest one: only its list is shown.
void PanelSteps::eventOnPOI(const SelectedEvent& event) {
    std::string report;
    components_.towns.eventOnPOI(event.latitude, event.longitude, report);
}

bool PanelSteps::openDB() {
    return components_.openDB();
}

void PanelSteps::EnableDisableWebBrowser(bool on) {
    if (!on)
        components_.map.leaveMaps();
}

bool PanelSteps::mapPageLoaded() {
    return components_.map.mapPageLoaded();
}

void PanelSteps::generaDefaultCSS() {
    components_.map.pages().generaDefaultCSS();
}

void PanelSteps::Maps() {
    components_.map.reloadMap();
}

void PanelSteps::MapsLastEvent() {
    components_.map.reloadLastEventMap();
}

void PanelSteps::savingWorkspacePage() {
    components_.map.pages().MapsSavingWrkS();
}

void PanelSteps::webPageForKml() {
    components_.map.pages().MapsWebKml();
    components_.map.writeLivePage();
}

void PanelSteps::webPageForCsv() {
    components_.map.pages().MapsWebCsv();
    components_.map.writeLivePage();
}

void PanelSteps::setObjectHTML() {
    components_.map.bridge().setObjectHTML();
}

void PanelSteps::boundsVisualizedMap() {
    components_.map.readView();
}

// Without any map, before the first start of all services or without the Internet, the table
// follows the catalogue all the same.
bool PanelSteps::mapIsLive() {
    return components_.map.bridge().mapIsLive() || !components_.map.mapPageLoaded();
}

void PanelSteps::removeAll() {
    components_.map.removeAll();
}

void PanelSteps::eventsInMap(std::string_view sql) {
    components_.map.eventsInMap(sql);
}

void PanelSteps::clickEventi() {
    components_.map.clickEventi();
}

void PanelSteps::pin2gif(std::string_view lastEventSql) {
    components_.map.pin2gif(lastEventSql);
}

void PanelSteps::controlliForm(int state) {
    components_.controls.controlliForm(state);
}

void PanelSteps::moveSaveMapsOutOfSight() {
    QFrame& page = *widgets_.wbrSaveMaps;
    page.move(page.x(), -2 * page.window()->height());
}

void PanelSteps::moveSaveMapsAside() {
    QFrame& page = *widgets_.wbrSaveMaps;
    page.move(-2 * page.window()->width(), page.y());
}

void PanelSteps::FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) {
    components_.grid.FillGridEvents(filter, fallbackFilter, order);
}

} // namespace tremor
