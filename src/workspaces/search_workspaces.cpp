#include "workspaces/search_workspaces.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "workspaces/pasted_statement.h"

#include <fmt/format.h>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - frmSearch";

} // namespace

SearchWorkspaces::SearchWorkspaces(const SearchContext& context) : context_(context) {}

std::vector<std::string> SearchWorkspaces::popolacmbWrkspace() {
    const ProcedureTrace trace(context_.errors, module, "popolacmbWrkspace");
    std::vector<std::string> names;
    context_.database.slsSel("select Name from Workspace");
    while (context_.database.slsGetRow())
        names.push_back(context_.database.slsFX(1));
    return names;
}

std::optional<WorkspaceFilters> SearchWorkspaces::loadFromWorkspace() {
    const ProcedureTrace trace(context_.errors, module, "loadFromWorkspace");
    Database& database = context_.database;
    const std::string& name = context_.settings.LastWorkSpace;
    if (!fitsApostrophes(name))
        return std::nullopt;
    database.slsSel("select * from Workspace where Name = '" + name + "'");
    if (!database.slsGetRow())
        return std::nullopt;
    const auto localeText = [this, &database](std::string_view column) {
        return doubleToText(ParseDotDouble(database.slFN(column), context_.locale),
                            context_.locale);
    };
    const auto dotText = [&localeText](std::string_view column) {
        return CommaToDot(localeText(column));
    };
    return WorkspaceFilters{.BLat = dotText("BLat"),
                            .BLng = dotText("BLng"),
                            .TLat = dotText("TLat"),
                            .TLng = dotText("TLng"),
                            .MagMin = localeText("MagMin"),
                            .MagMax = localeText("MagMax"),
                            .DepthMin = localeText("DepthMin"),
                            .DepthMax = localeText("DepthMax")};
}

void SearchWorkspaces::SavingWrkSpace(const std::string& name, const SearchedArea& area) {
    ProcedureTrace trace(context_.errors, module, "SavingWrkSpace");
    std::optional<MapView> view;
    trace.step([&] {
        view = context_.surroundings.selection();
        if (!view)
            throw RuntimeError(ErrorNumber::UserDefined,
                               "The map gives no answer; the workspace is not saved.");
    });
    if (!view)
        return;
    context_.settings.LastWorkSpace = name;
    const std::string latitude = CommaToDot(view->centreLatitude);
    const std::string longitude = CommaToDot(view->centreLongitude);
    const MapBounds& bounds = area.bounds;
    if (std::string verb; mayStore(name, verb)) {
        runPasted(context_.database, context_.log,
                  fmt::format(
                      "{} INTO Workspace(Name, Latitude, Longitude, Zoom, BLat, BLng, TLat, TLng, "
                      "MagMin, MagMax, DepthMin, DepthMax) Values('{}' , '{}', '{}', '{}' , '{}' , "
                      "'{}' , '{}' , '{}' , '{}' , '{}' , '{}' , '{}')",
                      verb, name, latitude, longitude, view->zoom, bounds.south, bounds.west,
                      bounds.north, bounds.east, area.magMin, area.magMax,
                      doubleToText(area.depthMin, context_.locale),
                      doubleToText(area.depthMax, context_.locale)),
                  {name, latitude, longitude, view->zoom}, "The workspace was not saved");
    }
    context_.surroundings.popolaComboWorkspace();
}

// The statement's verb: "insert" for a new name, "replace" for one that the operator gives up.
bool SearchWorkspaces::mayStore(const std::string& name, std::string& verb) {
    Database& database = context_.database;
    verb = "insert";
    if (!fitsApostrophes(name))
        return true; // the insert fails in its turn
    database.slsSel("select count(Name) from Workspace where Name = '" + name + "'");
    if (!database.slsGetRow() || SafeToLong(database.slsFX(1), context_.locale) <= 0)
        return true;
    verb = "replace";
    return context_.prompts.showMessageBox(
               {.text = name + " already exist, do you want overwrite it?",
                .title = "Saving Workspace...",
                .icon = BoxIcon::None,
                .buttons = BoxButtons::OkCancel}) == BoxAnswer::Ok;
}

} // namespace tremor
