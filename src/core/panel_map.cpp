#include "core/panel_map.h"

#include "core/dates.h"
#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/qt_text.h"
#include "map/live_page_files.h"
#include "map/picture_file.h"
#include "map/scale_bar.h"

#include <QtGui/QAction>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>

namespace tremor {
namespace {

constexpr std::string_view aboutBlank = "about:blank";

} // namespace

PanelMap::PanelMap(BrowserMaker& maker, PanelWidgets& widgets, PanelComponents& components)
    : widgets_(widgets),
      components_(components),
      WebBrowser1_(maker.makeBrowser(*widgets.WebBrowser1, components.log, components.settings)),
      wbr_last_(maker.makeBrowser(*widgets.wbr_last, components.log, components.settings)),
      wbrSaveMaps_(maker.makeBrowser(*widgets.wbrSaveMaps, components.log, components.settings)),
      kml_(components.environment.applicationPath, components.environment.hosts.WebHost,
           components.environment.locale, components.environment.errors),
      markers_(components.database, components.settings, components.environment.locale,
               *WebBrowser1_, *wbr_last_, *this, kml_, components.log,
               components.environment.errors),
      pages_(components.settings,
             {components.environment.applicationPath, components.environment.hosts,
              components.environment.locale},
             browsers(), components.log, components.environment.errors),
      live_(components.settings, components.environment.applicationPath,
            components.environment.errors),
      bridge_(browsers(), components.settings, components.environment.session,
              components.environment.clock, components.environment.locale, *this,
              components.environment.errors),
      overlays_(*WebBrowser1_, components.settings, components.environment.session,
                components.database, *this, components.environment.prompts,
                components.environment.errors, [&components] { return components.openDB(); }),
      snapshots_(
          components.environment.applicationPath, *this,
          [](const Picture& picture, std::string_view path, std::int32_t format) {
              GDIPlusDCToFile(picture, path, format);
          },
          components.environment.errors) {
    bridge_.setObjectHTML();
    components.settingsUtilities.setMapView([this] { return viewToStore(); });
}

void PanelMap::reloadMap() {
    freshPage_ = true;
    bridge_.mainMapNavigated();
    pages_.Maps();
}

void PanelMap::reloadLastEventMap() {
    bridge_.lastEventMapNavigated();
    pages_.MapsLastEvent();
}

void PanelMap::writeLivePage() {
    live_.write(livePageFiles());
}

void PanelMap::leaveMaps() {
    bridge_.mapsLeft();
    WebBrowser1_->Navigate(aboutBlank);
    wbr_last_->Navigate(aboutBlank);
}

void PanelMap::readView() {
    if (WebBrowser1_->ReadyState() != WebBrowser::complete)
        return;
    bridge_.boundsVisualizedMap();
    showScale(bridge_.scaleLabel());
}

bool PanelMap::mapPageLoaded() const {
    return WebBrowser1_->LocationURL() != aboutBlank;
}

std::optional<MapViewTexts> PanelMap::viewToStore() const {
    if (!mapPageLoaded())
        return std::nullopt;
    const PageView& view = bridge_.view();
    return MapViewTexts{view.CLAT, view.CLNG, view.ZOOM};
}

bool PanelMap::workspaceIsGlobal() {
    return widgets_.cmb_wrkSp->currentText() == QLatin1String("Global");
}

void PanelMap::FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                              std::string_view order) {
    components_.grid.FillGridEvents(filter, fallbackFilter, order);
}

void PanelMap::pictureMagnitudeEvents() {
    components_.chart.pictureMagnitudeEvents();
}

bool PanelMap::searchWantsPlace() {
    return components_.workspaces.searchWantsPlace();
}

void PanelMap::setSearchPlace(std::string_view latitude, std::string_view longitude) {
    components_.workspaces.setSearchPlace(latitude, longitude);
}

void PanelMap::selectEventOfMap(std::string_view utc) {
    components_.grid.selectEventOfMap(utc);
}

void PanelMap::showMouseCoordinates(std::string_view text) {
    widgets_.txtMouseCoord->setText(fromBytes(text));
}

void PanelMap::showScale(std::string_view label) {
    widgets_.picScaleControl->setLabel(fromBytes(label));
}

std::int64_t PanelMap::gridRowCount() const {
    return widgets_.gridEvents->rowCount();
}

std::string PanelMap::gridCell(std::int64_t row, int column) const {
    return widgets_.gridEvents->cell(row, column);
}

void PanelMap::setGridRowsGrey(const std::vector<std::int64_t>& rows) {
    widgets_.gridEvents->setRowsGrey(rows);
}

double PanelMap::distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                          std::string_view lon2, std::string_view unit) const {
    return components_.earth.distance(lat1, lon1, lat2, lon2, unit);
}

// Without a condition in force the map shows the latest hours.
std::string PanelMap::shownCondition() {
    AppSettings& settings = components_.settings;
    if (!settings.searchParQuery.empty())
        return settings.searchParQuery;
    return BuildUtcRangeFilter(components_.environment.clock.now(),
                               settings.RangeHoursOfEventsInMap, settings,
                               components_.environment.session);
}

SnapshotEvent PanelMap::lastEvent() const {
    const LastEventValues& last = components_.alerts.newEvents().lastEvent();
    return {last.LastUtc, last.LastLatitude, last.LastLongitude, last.LastMagnitude,
            last.LastDepth};
}

std::vector<std::string> PanelMap::towns() const {
    std::vector<std::string> towns;
    towns.reserve(static_cast<std::size_t>(widgets_.List1->count()));
    for (int row = 0; row < widgets_.List1->count(); ++row)
        towns.push_back(toBytes(widgets_.List1->item(row)->text()));
    return towns;
}

// The map has been drawn: its first scale is known.
void PanelMap::showSavedLegend() {
    overlays_.showSavedLegend();
    readView();
    if (freshPage_)
        drawFirstMarkers();
}

// A new page would stay empty until the next poll or the first drag. Each drawing ends in the same
// message, so this is done once a page.
void PanelMap::drawFirstMarkers() {
    freshPage_ = false;
    if (workspaceIsGlobal())
        components_.refresh.query2Controls();
    else
        clickEventi(); // with the markers that the page was handed when it was complete
}

void PanelMap::setLegendBox(bool checked) {
    widgets_.chk_Legend->setChecked(checked);
}

void PanelMap::uncheckStationsItem() {
    if (auto* item = widgets_.chk_ShowStations->window()->findChild<QAction*>(
            QStringLiteral("mnuShowStations")))
        item->setChecked(false);
}

void PanelMap::setEnabled(std::string_view objectName, bool enabled) {
    components_.controls.setEnabled(objectName, enabled);
}

// The page selects the marker by a click of its own, which brings the message of a clicked marker.
void PanelMap::selectMarker(std::string_view utc) {
    WebBrowser1_->setAttribute("SelezioneMar", "UTC", utc);
    WebBrowser1_->setAttribute("SelezioneMar", "ZOOM", components_.settings.DefaultMapZoomLevel);
    WebBrowser1_->fire("SelezioneMar", Fire::Click);
}

} // namespace tremor
