#include "workspaces/workspaces.h"

#include "core/common_text.h"
#include "core/database_name.h"
#include "core/event_query.h"
#include "core/latest_hours.h"
#include "workspaces/pasted_statement.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <iterator>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view newestOnly = " order by UTC desc limit 1";
constexpr std::chrono::milliseconds waitTurn{10};
constexpr std::chrono::minutes longestLoad{1};

// The values are those of a WorkspaceRow, in its order.
constexpr std::string_view insertStatement =
    "Insert INTO Workspace(Name, Latitude, Longitude, Zoom, BLat, BLng, TLat,TLng, MagMin, MagMax, "
    "DepthMin, DepthMax) Values('{0}' , '{1}' , '{2}' , '{3}' , '{4}' , '{5}' , '{6}' , '{7}', "
    "'{8}','{9}','{10}','{11}')";
constexpr std::string_view updateStatement =
    "update Workspace SET Latitude = '{1}', Longitude = '{2}', Zoom = '{3}', BLat = '{4}', BLng = "
    "'{5}', TLat = '{6}', TLng = '{7}', MagMin = '{8}', MagMax = '{9}', DepthMin = '{10}', "
    "DepthMax = '{11}'  where Name = '{0}'";

} // namespace

Workspaces::Workspaces(const WorkspaceContext& context, MapElements& map,
                       WorkspaceSurroundings& surroundings)
    : context_(context), map_(map), surroundings_(surroundings) {}

void Workspaces::popolaComboWorkspace() {
    ProcedureTrace trace(context_.errors, module, "popolaComboWorkspace");
    if (fillCombo())
        trace.step([&] { gotoWRK(); });
}

// The views that the start fills next take the condition of the settings, which must not be that of
// a workspace that is gone.
void Workspaces::popolaComboWorkspaceAtStart() {
    const ProcedureTrace trace(context_.errors, module, "popolaComboWorkspace");
    if (!fillCombo())
        return;
    const std::string shown = surroundings_.selectedWorkspace();
    if (shown == context_.settings.LastWorkSpace)
        return;
    context_.settings.LastWorkSpace = shown;
    context_.settings.searchParQuery.clear();
}

// False when the table cannot be read: the list stays, and the workspace in use is not given up.
bool Workspaces::fillCombo() {
    if (context_.database.slsSel("select Name from Workspace") != 0) {
        context_.log.addLogToList("The workspaces were not read: " +
                                  context_.database.slGetError());
        return false;
    }
    std::vector<std::string> names{std::string(globalWorkspace)};
    while (context_.database.slsGetRow())
        names.push_back(context_.database.slsFX(1));
    const auto inUse = std::ranges::find(names, context_.settings.LastWorkSpace);
    const auto selected = inUse == names.end() ? 0 : std::distance(names.begin(), inUse);
    surroundings_.showWorkspaces(names, static_cast<std::size_t>(selected));
    return true;
}

void Workspaces::cmb_wrkSp_Click() {
    if (context_.session.SearchModeOn == 0)
        gotoWRK();
}

void Workspaces::gotoWRK() {
    ProcedureTrace trace(context_.errors, module, "gotoWRK");
    context_.settings.LastWorkSpace = surroundings_.selectedWorkspace();
    if (context_.settings.LastWorkSpace == globalWorkspace) {
        showFreeMap(trace);
        return;
    }
    map_.onclick("removeAll");
    trace.step([&] { workspaceSelezionato(); });
}

// The rectangle has no form for a view across the 180 degree meridian, unlike the one that follows
// a drag.
void Workspaces::showFreeMap(ProcedureTrace& trace) {
    const std::uint64_t showing = ++showings_;
    AppSettings& settings = context_.settings;
    settings.searchParQuery.clear();
    map_.onclick("removeAll");
    MapBounds bounds;
    trace.step([&] { bounds = surroundings_.boundsVisualizedMap(); });
    if (showing != showings_)
        return; // another workspace was chosen during the wait
    settings.searchParQuery =
        fmt::format("(Latitude >= {}) and (Latitude <= {}) AND (Longitude >= {}) and (Longitude <= "
                    "{}) AND {}",
                    bounds.south, bounds.north, bounds.west, bounds.east,
                    latestHours(trace, context_.clock, settings, context_.session));
    // A copy, because the table replaces a refused condition in the settings.
    const std::string condition = settings.searchParQuery;
    trace.step([&] { surroundings_.FillGridEvents(condition, {}, {}); });
    trace.step([&] { surroundings_.pictureMagnitudeEvents(); });
    const std::string events = std::string(selectEvents) + settings.searchParQuery;
    trace.step([&] { surroundings_.eventsInMap(events); });
    map_.click("eventi");
    trace.step([&] { surroundings_.pin2gif(events + std::string(newestOnly)); });
}

void Workspaces::workspaceSelezionato() {
    ProcedureTrace trace(context_.errors, module, "workspaceSelezionato");
    const std::uint64_t showing = ++showings_;
    if (!selectByName("*", surroundings_.selectedWorkspace()) || !context_.database.slsGetRow())
        return;
    const WorkspaceRow workspace = currentWorkspace(context_.database);
    if (waitForMap() && showing == showings_)
        showWorkspace(workspace, trace);
}

// False when the program closes. A page that is not complete in time is passed over by the markers;
// table and chart do not need it.
bool Workspaces::waitForMap() {
    const auto begin = context_.clock.steady();
    while (!map_.complete() && !context_.session.waitsMustEnd() &&
           context_.clock.steady() - begin < longestLoad)
        context_.clock.sleep(waitTurn);
    return !context_.session.waitsMustEnd();
}

void Workspaces::showWorkspace(const WorkspaceRow& workspace, ProcedureTrace& trace) {
    AppSettings& settings = context_.settings;
    writeView(map_, workspace);
    map_.onclick("removeAll");
    const std::string range = latestHours(trace, context_.clock, settings, context_.session);
    std::string events(selectEvents);
    if (workspace.BLat.empty()) {
        settings.searchParQuery.clear(); // as on the free map: new events follow the latest hours
        trace.step([&] { surroundings_.FillGridEvents({}, range, {}); });
        events += range;
    } else {
        const std::string condition = workspaceCondition(workspace) + range;
        settings.searchParQuery = condition;
        trace.step([&] { surroundings_.FillGridEvents(condition, {}, {}); });
        events += settings.searchParQuery; // which the table replaces when it is refused
    }
    trace.step([&] { surroundings_.eventsInMap(events); });
    trace.step([&] { surroundings_.pictureMagnitudeEvents(); });
    map_.click("eventi");
    map_.click("Workspace");
    trace.step([&] { surroundings_.pin2gif(events + std::string(newestOnly)); });
}

void Workspaces::cmd_SaveArea_Click() {
    ProcedureTrace trace(context_.errors, module, "cmd_SaveArea_Click");
    const auto name =
        context_.prompts.inputBox("Please insert a name of this Workspace", MessageBox().title);
    if (!name)
        return;
    // The characters are those that a catalogue's name does not bear either.
    if (checkNameDB(name) != 0) {
        context_.prompts.showMessageBox(
            {.text = "Please insert a valid name of Workspace", .icon = BoxIcon::Critical});
        return;
    }
    trace.step([&] { saveNewWorkspaceOnDB(*name); });
}

void Workspaces::saveNewWorkspaceOnDB(std::string_view name) {
    ProcedureTrace trace(context_.errors, module, "saveNewWorkspaceOnDB");
    std::optional<MapView> view;
    trace.step([&] {
        view = surroundings_.selection();
        if (!view)
            throw RuntimeError(ErrorNumber::UserDefined,
                               "The map gives no answer; the workspace is not saved.");
    });
    if (!view)
        return;
    WorkspaceRow workspace{.Name = std::string(name),
                           .Latitude = CommaToDot(view->centreLatitude),
                           .Longitude = CommaToDot(view->centreLongitude),
                           .Zoom = view->zoom,
                           .BLat = CommaToDot(view->bounds.south),
                           .BLng = CommaToDot(view->bounds.west),
                           .TLat = CommaToDot(view->bounds.north),
                           .TLng = CommaToDot(view->bounds.east)};
    Database& database = context_.database;
    const std::string shown = surroundings_.selectedWorkspace();
    if (!shown.empty() && shown != globalWorkspace &&
        selectByName("MagMin, MagMax, DepthMin, DepthMax", shown) && database.slsGetRow()) {
        workspace.MagMin = database.slsFX(1);
        workspace.MagMax = database.slsFX(2);
        workspace.DepthMin = database.slsFX(3);
        workspace.DepthMax = database.slsFX(4);
    }
    store(workspace);
    trace.step([&] { popolaComboWorkspace(); });
}

void Workspaces::store(const WorkspaceRow& workspace) {
    const bool exists = selectByName("Name", workspace.Name) && context_.database.slsGetRow();
    if (!exists)
        write(workspace, insertStatement);
    else if (context_.prompts.showMessageBox({.text =
                                                  "This name of Workspace is already in use.\r\n"
                                                  "Do you want overwrite the Workspace?",
                                              .icon = BoxIcon::None,
                                              .buttons = BoxButtons::YesNo}) == BoxAnswer::Yes)
        write(workspace, updateStatement);
}

void Workspaces::write(const WorkspaceRow& w, std::string_view statement) {
    runPasted(context_.database, context_.log,
              fmt::format(fmt::runtime(statement), w.Name, w.Latitude, w.Longitude, w.Zoom, w.BLat,
                          w.BLng, w.TLat, w.TLng, w.MagMin, w.MagMax, w.DepthMin, w.DepthMax),
              {w.Name, w.Latitude, w.Longitude, w.Zoom, w.BLat, w.BLng, w.TLat, w.TLng, w.MagMin,
               w.MagMax, w.DepthMin, w.DepthMax},
              "The workspace was not saved");
}

// Columns of the workspace of a name. False when the query failed, which the log tells.
bool Workspaces::selectByName(std::string_view columns, std::string_view name) {
    Database& database = context_.database;
    std::string reason = "an apostrophe in its name";
    if (fitsApostrophes(name)) {
        if (database.slsSel(
                fmt::format("select {} from Workspace where Name = '{}'", columns, name)) == 0)
            return true;
        reason = database.slGetError();
    }
    context_.log.addLogToList("The workspace was not read: " + reason);
    return false;
}

void Workspaces::deleteWRK() {
    ProcedureTrace trace(context_.errors, module, "deleteWRK");
    const std::string name = surroundings_.selectedWorkspace();
    if (context_.prompts.showMessageBox({.text = "Do you want remove the workspace " + name + "?",
                                         .title = "Removing Workspace",
                                         .icon = BoxIcon::None,
                                         .buttons = BoxButtons::YesNo}) != BoxAnswer::Yes)
        return;
    runPasted(context_.database, context_.log, "delete from Workspace where Name = '" + name + "'",
              {name}, "The workspace was not removed");
    trace.step([&] { popolaComboWorkspace(); });
}

void Workspaces::mnuSearchWRK_Click() {
    ProcedureTrace trace(context_.errors, module, "mnuSearchWRK_Click");
    const std::string shown = surroundings_.selectedWorkspace();
    trace.step([&] { surroundings_.showSearchWindow(!shown.empty() && shown != globalWorkspace); });
}

} // namespace tremor
