#include "core/controls.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>
#include <vector>

namespace tremor {
namespace {

using Names = std::vector<std::string_view>;

const Names internetNames = {"cmb_wrkSp",     "cmd_SaveArea",  "mnuUpdateWRKwithEvents",
                             "cmd_save_maps", "mnuShowFaults", "mnuShowStations"};
const Names allNames = {
    "cmb_wrkSp",     "cmd_SaveArea",    "mnuUpdateWRKwithEvents", "cmd_save_maps",
    "mnuShowFaults", "mnuShowStations", "mnu_exportDatabaseCSV",  "mnu_imp_seiscomp2_6",
    "mnu_ImportCSV", "mnu_ManageDB",    "mnu_wrkspaces",          "mnuSearch"};

Names namesOf(const ControlsChange& change) {
    return {change.names.begin(), change.names.end()};
}

TEST(ControlsChange, WithoutInternetDisablesTheControlsOfTheMaps) {
    EXPECT_EQ(namesOf(controlsChange(1)), internetNames);
    EXPECT_FALSE(controlsChange(1).enabled);
}

TEST(ControlsChange, WithoutAUsableDatabaseDisablesAllTwelve) {
    EXPECT_EQ(namesOf(controlsChange(2)), allNames);
    EXPECT_FALSE(controlsChange(2).enabled);
}

TEST(ControlsChange, WithTheInternetBackEnablesTheControlsOfTheMaps) {
    EXPECT_EQ(namesOf(controlsChange(3)), internetNames);
    EXPECT_TRUE(controlsChange(3).enabled);
}

TEST(ControlsChange, WithADatabaseOpenedEnablesAllTwelve) {
    EXPECT_EQ(namesOf(controlsChange(4)), allNames);
    EXPECT_TRUE(controlsChange(4).enabled);
}

TEST(ControlsChange, AnyOtherStateTouchesNothing) {
    for (const std::int32_t state : {0, 5, -1, std::numeric_limits<std::int32_t>::min(),
                                     std::numeric_limits<std::int32_t>::max()})
        EXPECT_TRUE(controlsChange(state).names.empty()) << state;
}

} // namespace
} // namespace tremor
