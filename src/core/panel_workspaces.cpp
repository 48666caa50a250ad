#include "core/panel_workspaces.h"

#include "core/panel_components.h"
#include "core/panel_widgets.h"
#include "core/qt_text.h"
#include "core/raised_window.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>

#include <array>
#include <utility>

namespace tremor {
namespace {

// The page of one workspace in a browser of its own.
class PanelWorkspaceMap : public WorkspaceMap {
  public:
    PanelWorkspaceMap(std::unique_ptr<WebBrowser> browser, PanelMap& map)
        : browser_(std::move(browser)), elements_(*browser_), map_(map) {}

    bool complete() const override { return elements_.complete(); }
    void setAttribute(std::string_view element, std::string_view name,
                      std::string_view value) override {
        elements_.setAttribute(element, name, value);
    }
    void onclick(std::string_view element) override { elements_.onclick(element); }
    void click(std::string_view element) override { elements_.click(element); }

    void MapsWorkspaces(std::string_view name) override {
        const std::array pages{WorkspacePage{std::string(name), browser_.get()}};
        map_.pages().MapsWorkspaces(pages);
    }
    void eventsInMapWRKS(std::string_view sql) override {
        map_.markers().eventsInMapWRKS(*browser_, sql);
    }
    void mapsInJPG(std::string_view name) override {
        map_.snapshots().mapsInJPG(*browser_, SnapshotKind::NamedWorkspace, name);
    }

  private:
    std::unique_ptr<WebBrowser> browser_;
    PageElements elements_;
    PanelMap& map_;
};

MapView mapView(const PageView& view) {
    return {{view.BLAT, view.BLNG, view.TLAT, view.TLNG}, view.CLAT, view.CLNG, view.ZOOM};
}

} // namespace

PanelWorkspaces::PanelWorkspaces(PanelWidgets& widgets, PanelComponents& components)
    : widgets_(widgets),
      components_(components),
      map_(components.map.mainBrowser()),
      workspaces_({components.database, components.environment.session, components.settings,
                   components.environment.clock, components.environment.prompts, components.log,
                   components.environment.errors},
                  map_, *this),
      searchContext_{components.database,
                     components.environment.session,
                     components.settings,
                     components.environment.clock,
                     components.environment.locale,
                     components.environment.prompts,
                     components.log,
                     components.environment.errors,
                     *this},
      searchWorkspaces_(searchContext_),
      searchFilter_(searchContext_, searchWorkspaces_),
      savedSearches_(searchContext_),
      forms_(*this),
      windows_({components.database, components.environment.session, components.settings,
                components.environment.clock, components.log, components.environment.errors},
               forms_) {}

void PanelWorkspaces::showSearchWindow(bool workspaceShown) {
    QWidget* owner = widgets_.cmb_wrkSp->window();
    const auto make = [&] {
        auto* form =
            new frmSearch(searchContext_, searchFilter_, searchWorkspaces_, savedSearches_, owner);
        frmSearch_ = form;
        form->Form_Load(workspaceShown);
        return form;
    };
    showOrRaise(frmSearch_, make);
}

void PanelWorkspaces::setSearchPlace(std::string_view latitude, std::string_view longitude) {
    if (frmSearch_)
        frmSearch_->setPlace(latitude, longitude);
}

void PanelWorkspaces::showWorkspaces(const std::vector<std::string>& names, std::size_t selected) {
    QComboBox* list = widgets_.cmb_wrkSp;
    const QSignalBlocker quiet(list);
    list->clear();
    // The bytes go with the entry: a name may not be valid UTF-8.
    for (const std::string& name : names)
        list->addItem(fromBytes(name), QByteArray::fromStdString(name));
    list->setCurrentIndex(static_cast<int>(selected));
}

std::string PanelWorkspaces::selectedWorkspace() const {
    const QVariant name = widgets_.cmb_wrkSp->currentData();
    return name.isValid() ? name.toByteArray().toStdString()
                          : toBytes(widgets_.cmb_wrkSp->currentText());
}

std::optional<MapView> PanelWorkspaces::selection() {
    const auto page = components_.map.mainBrowser().snapshot();
    return page ? std::optional(mapView(page->selection)) : std::nullopt;
}

std::optional<MapView> PanelWorkspaces::getDataMap() {
    if (components_.map.mainBrowser().fire("getDataMap", Fire::Click) != PageStatus::Done)
        return std::nullopt;
    return selection();
}

MapBounds PanelWorkspaces::boundsVisualizedMap() {
    return components_.map.boundsVisualizedMap();
}

void PanelWorkspaces::removeAll() {
    components_.map.removeAll();
}

void PanelWorkspaces::FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                     std::string_view order) {
    components_.grid.FillGridEvents(filter, fallbackFilter, order);
}

void PanelWorkspaces::pictureMagnitudeEvents() {
    components_.chart.pictureMagnitudeEvents();
}

void PanelWorkspaces::eventsInMap(std::string_view sql) {
    components_.map.eventsInMap(sql);
}

void PanelWorkspaces::clickEventi() {
    components_.map.clickEventi();
}

void PanelWorkspaces::pin2gif(std::string_view lastEventSql) {
    components_.map.pin2gif(lastEventSql);
}

void PanelWorkspaces::refreshPanel() {
    widgets_.cmb_wrkSp->window()->repaint();
}

void PanelWorkspaces::turnSearchModeOn() {
    if (widgets_.chk_SearchMode->isChecked())
        return;
    widgets_.chk_SearchMode->setChecked(true); // runs no handler
    components_.map.overlays().chk_SearchMode_Click(true);
}

std::unique_ptr<WorkspaceMap> PanelWorkspaces::makeMap(QWidget& frame) {
    return std::make_unique<PanelWorkspaceMap>(
        components_.environment.browsers.makeBrowser(frame, components_.log, components_.settings),
        components_.map);
}

} // namespace tremor
