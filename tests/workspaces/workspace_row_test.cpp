#include "workspace_fixture.h"
#include "workspaces/workspace_row.h"

namespace tremor {
namespace {

using testing::RecordingPage;
using testing::Texts;

class WorkspaceRowTest : public testing::WorkspaceCatalogue {
  protected:
    WorkspaceRow stored() {
        EXPECT_EQ(database.slsSel("select * from Workspace"), 0);
        EXPECT_TRUE(database.slsGetRow());
        return currentWorkspace(database);
    }
};

TEST_F(WorkspaceRowTest, HasTheFiltersOfTheFreeMapFromTheStart) {
    const WorkspaceRow row;
    EXPECT_EQ(row.MagMin, "0");
    EXPECT_EQ(row.MagMax, "10");
    EXPECT_EQ(row.DepthMin, "0");
    EXPECT_EQ(row.DepthMax, "9999");
}

TEST_F(WorkspaceRowTest, TakesEachColumnByItsName) {
    store({"a", "1.5", "2.5", "3", "4.5", "5.5", "6.5", "7.5", "8.5", "9.5", "10.5", "11.5"});
    const WorkspaceRow row = stored();
    EXPECT_EQ(
        (Texts{row.Name, row.Latitude, row.Longitude, row.Zoom, row.BLat, row.BLng, row.TLat,
               row.TLng, row.MagMin, row.MagMax, row.DepthMin, row.DepthMax}),
        (Texts{"a", "1.5", "2.5", "3", "4.5", "5.5", "6.5", "7.5", "8.5", "9.5", "10.5", "11.5"}));
}

TEST_F(WorkspaceRowTest, GivesTheConditionOfItsEvents) {
    storeAlps();
    EXPECT_EQ(workspaceCondition(stored()), testing::alps);
    EXPECT_EQ(database.slsSel("select * from Events where " + testing::alps + testing::latestHours),
              0)
        << database.slGetError();
}

TEST_F(WorkspaceRowTest, FiltersARectangleAcrossTheMeridianAsItIsWritten) {
    store({"Fiji", "-18", "179", "6", "-22", "170", "-14", "-175", "0", "10", "0", "9999"});
    EXPECT_NE(
        workspaceCondition(stored()).find("(Longitude >= 170.0) and (Longitude <= -175.0) AND "),
        std::string::npos);
}

TEST_F(WorkspaceRowTest, ReadsMissingValuesAsEmptyTexts) {
    ASSERT_EQ(database.slsExe("insert into Workspace (Name) values ('bare')"), 0);
    const WorkspaceRow row = stored();
    EXPECT_EQ(row.Name, "bare");
    EXPECT_EQ(row.BLat, "");
    EXPECT_EQ(row.DepthMax, "");
}

TEST_F(WorkspaceRowTest, HandsItsViewToThePage) {
    storeAlps();
    Texts written;
    RecordingPage<MapElements> page(written);
    writeView(page, stored());
    EXPECT_EQ(written, (Texts{"Workspace.CLAT=46.5", "Workspace.CLNG=10.25", "Workspace.ZOOM=7"}));
}

} // namespace
} // namespace tremor
