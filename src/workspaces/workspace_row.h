#pragma once

#include "database/database.h"
#include "workspaces/map_elements.h"

#include <string>

namespace tremor {

// A row of the table Workspace: a map view and the filters of its events, the texts as they are
// stored ("42.5", "7", "0.0").
struct WorkspaceRow {
    std::string Name;
    std::string Latitude; // centre, degrees
    std::string Longitude;
    std::string Zoom;
    std::string BLat; // south-west corner; empty: no rectangle
    std::string BLng;
    std::string TLat; // north-east corner
    std::string TLng;
    std::string MagMin = "0";
    std::string MagMax = "10";
    std::string DepthMin = "0"; // kilometres
    std::string DepthMax = "9999";
};

// The row on which the result of "select * from Workspace ..." stands.
WorkspaceRow currentWorkspace(const Database& database);

// The condition on Events that selects what belongs to the workspace, with " AND " at its end for
// the time range that follows. A rectangle across the 180 degree meridian selects nothing; a value
// that is no number makes the statement fail or select nothing.
std::string workspaceCondition(const WorkspaceRow& workspace);

// Hands the view to the page's element `Workspace`, which takes it when it is fired.
void writeView(MapElements& map, const WorkspaceRow& workspace);

} // namespace tremor
