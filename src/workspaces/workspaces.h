#pragma once

#include "core/error_report.h"
#include "core/map_bounds.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "workspaces/map_elements.h"
#include "workspaces/map_view.h"
#include "workspaces/workspace_row.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// The first entry of the list of workspaces. It is in no table: the map is free, and the events
// are those of what it shows.
inline constexpr std::string_view globalWorkspace = "Global";

// What the workspaces ask of the main window.
class WorkspaceSurroundings {
  public:
    virtual ~WorkspaceSurroundings() = default;

    // The list `cmb_wrkSp`. A name comes back byte for byte as it was given; empty: none is
    // selected. Filling and selecting here calls nothing back.
    virtual void showWorkspaces(const std::vector<std::string>& names, std::size_t selected) = 0;
    virtual std::string selectedWorkspace() const = 0;

    // The view of the main map as its element `selection` holds it; nothing when the page gives no
    // answer.
    virtual std::optional<MapView> selection() = 0;
    // The same rectangle with dot numbers, after waiting for the page to be complete.
    virtual MapBounds boundsVisualizedMap() = 0;

    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void eventsInMap(std::string_view sql) = 0; // hands the markers over
    virtual void pin2gif(std::string_view lastEventSql) = 0;
    virtual void pictureMagnitudeEvents() = 0; // the history chart

    // Shows the search window; `workspaceShown`: it takes its filters from the workspace in use.
    virtual void showSearchWindow(bool workspaceShown) = 0;
};

// What the workspaces work with. The references outlive them.
struct WorkspaceContext {
    Database& database;
    Session& session;
    AppSettings& settings;
    Clock& clock;
    Prompts& prompts;
    Log& log;
    ErrorReport& errors;
};

// The stored map views: shown, saved, overwritten, removed. settings.LastWorkSpace is the one in
// use.
//
// Names go into statements as they are; the characters that a name may not hold protect them. One
// with an apostrophe, which another program may have stored, is neither read nor removed, which the
// log tells.
class Workspaces {
  public:
    // `map` is the main map.
    Workspaces(const WorkspaceContext& context, MapElements& map,
               WorkspaceSurroundings& surroundings);

    // Fills `cmb_wrkSp` with "Global" and the names of the table, selects the workspace in use
    // ("Global" when it is gone) and shows it.
    void popolaComboWorkspace();
    // The same while a start fills the views: nothing is shown anew.
    void popolaComboWorkspaceAtStart();

    // The selection of `cmb_wrkSp` was changed; one of its entries was chosen by the operator.
    void cmb_wrkSp_Change() { gotoWRK(); }
    void cmb_wrkSp_Click();

    // Makes the entry of `cmb_wrkSp` the workspace in use and shows it.
    void gotoWRK();

    // Loads the workspace selected in `cmb_wrkSp` into map, table and chart, as soon as the map's
    // page is complete; nothing when there is no such row. One whose rectangle is empty shows the
    // latest hours of the whole catalogue.
    void workspaceSelezionato();

    // Asks for a name and saves the view of the map under it.
    void cmd_SaveArea_Click();

    // Saves the view of the map with the filters of the workspace selected in `cmb_wrkSp`. An
    // existing workspace is overwritten only when the operator agrees. Without an answer of the map
    // nothing is stored.
    void saveNewWorkspaceOnDB(std::string_view name);

    // Removes the workspace selected in `cmb_wrkSp` when the operator agrees.
    void deleteWRK();

    void mnuSearchWRK_Click();

  private:
    bool fillCombo();
    void showFreeMap(ProcedureTrace& trace);
    void showWorkspace(const WorkspaceRow& workspace, ProcedureTrace& trace);
    bool waitForMap();
    bool selectByName(std::string_view columns, std::string_view name);
    void store(const WorkspaceRow& workspace);
    void write(const WorkspaceRow& workspace, std::string_view statement);

    WorkspaceContext context_;
    MapElements& map_;
    WorkspaceSurroundings& surroundings_;
    std::uint64_t showings_ = 0; // grows with each workspace shown
};

} // namespace tremor
