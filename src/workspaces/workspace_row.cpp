#include "workspaces/workspace_row.h"

#include <fmt/format.h>

namespace tremor {

WorkspaceRow currentWorkspace(const Database& database) {
    const auto text = [&database](std::string_view column) { return database.slFN(column); };
    return {.Name = text("Name"),
            .Latitude = text("Latitude"),
            .Longitude = text("Longitude"),
            .Zoom = text("Zoom"),
            .BLat = text("BLat"),
            .BLng = text("BLng"),
            .TLat = text("TLat"),
            .TLng = text("TLng"),
            .MagMin = text("MagMin"),
            .MagMax = text("MagMax"),
            .DepthMin = text("DepthMin"),
            .DepthMax = text("DepthMax")};
}

std::string workspaceCondition(const WorkspaceRow& workspace) {
    return fmt::format(
        "(Magnitude >= '{}') and (Magnitude <= '{}') AND (Depth >= '{}') and (Depth <= '{}') AND "
        "(Latitude >= {}) and (Latitude <= {}) AND (Longitude >= {}) and (Longitude <= {}) AND ",
        workspace.MagMin, workspace.MagMax, workspace.DepthMin, workspace.DepthMax, workspace.BLat,
        workspace.TLat, workspace.BLng, workspace.TLng);
}

void writeView(MapElements& map, const WorkspaceRow& workspace) {
    map.setAttribute("Workspace", "CLAT", workspace.Latitude);
    map.setAttribute("Workspace", "CLNG", workspace.Longitude);
    map.setAttribute("Workspace", "ZOOM", workspace.Zoom);
}

} // namespace tremor
