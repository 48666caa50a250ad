#include "core/controls.h"

#include <array>

namespace tremor {

namespace {

// The controls that need the Internet come first; without a catalogue the others go with them.
constexpr std::array<std::string_view, 12> controls = {
    "cmb_wrkSp",     "cmd_SaveArea",    "mnuUpdateWRKwithEvents", "cmd_save_maps",
    "mnuShowFaults", "mnuShowStations", "mnu_exportDatabaseCSV",  "mnu_imp_seiscomp2_6",
    "mnu_ImportCSV", "mnu_ManageDB",    "mnu_wrkspaces",          "mnuSearch"};
constexpr std::size_t internetControls = 6;

} // namespace

ControlsChange controlsChange(std::int32_t state) {
    const std::span<const std::string_view> all(controls);
    switch (state) {
    case 1:
        return {all.first(internetControls), false};
    case 2:
        return {all, false};
    case 3:
        return {all.first(internetControls), true};
    case 4:
        return {all, true};
    default:
        return {};
    }
}

} // namespace tremor
