#pragma once

#include "core/panel_map.h"
#include "workspaces/frm_search.h"
#include "workspaces/frm_workspaces.h"
#include "workspaces/saved_searches.h"
#include "workspaces/search_filter.h"
#include "workspaces/search_workspaces.h"
#include "workspaces/workspace_windows.h"
#include "workspaces/workspaces.h"

#include <QtCore/QPointer>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// A map page as the workspaces drive it.
class PageElements : public MapElements {
  public:
    explicit PageElements(WebBrowser& browser) : browser_(browser) {}

    bool complete() const override { return browser_.ReadyState() == WebBrowser::complete; }
    void setAttribute(std::string_view element, std::string_view name,
                      std::string_view value) override {
        browser_.setAttribute(element, name, value);
    }
    void onclick(std::string_view element) override { browser_.fire(element, Fire::Onclick); }
    void click(std::string_view element) override { browser_.fire(element, Fire::Click); }

  private:
    WebBrowser& browser_;
};

// The stored views and searches: what they ask of the main window, the search window and the
// windows of the workspaces.
class PanelWorkspaces : private WorkspaceSurroundings,
                        private SearchSurroundings,
                        private WorkspaceMapMaker {
  public:
    PanelWorkspaces(PanelWidgets& widgets, PanelComponents& components);

    Workspaces& workspaces() { return workspaces_; }
    WorkspaceWindows& windows() { return windows_; }

    // Shows the search window; `workspaceShown`: with the filters of the workspace in use.
    void showSearchWindow(bool workspaceShown) override;
    // A click on the map is wanted as the centre of a search by distance.
    bool searchWantsPlace() const { return frmSearch_ && frmSearch_->wantsPlace(); }
    void setSearchPlace(std::string_view latitude, std::string_view longitude);

  private:
    // WorkspaceSurroundings, SearchSurroundings and what both ask for
    void showWorkspaces(const std::vector<std::string>& names, std::size_t selected) override;
    std::string selectedWorkspace() const override;
    std::optional<MapView> selection() override;
    std::optional<MapView> getDataMap() override;
    MapBounds boundsVisualizedMap() override;
    void removeAll() override;
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override;
    void pictureMagnitudeEvents() override;
    void eventsInMap(std::string_view sql) override;
    void clickEventi() override;
    void pin2gif(std::string_view lastEventSql) override;
    void popolaComboWorkspace() override { workspaces_.popolaComboWorkspace(); }
    void refreshPanel() override;
    void turnSearchModeOn() override;

    // WorkspaceMapMaker
    std::unique_ptr<WorkspaceMap> makeMap(QWidget& frame) override;

    PanelWidgets& widgets_;
    PanelComponents& components_;
    PageElements map_;
    Workspaces workspaces_;
    SearchContext searchContext_;
    SearchWorkspaces searchWorkspaces_;
    SearchFilter searchFilter_;
    SavedSearches savedSearches_;
    FrmWorkspacesMaker forms_;
    WorkspaceWindows windows_;
    QPointer<frmSearch> frmSearch_;
};

} // namespace tremor
