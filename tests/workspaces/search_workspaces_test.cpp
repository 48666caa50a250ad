#include "workspaces/search_fixture.h"
#include "workspaces/search_workspaces.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::rowsOf;
using testing::SearchTest;
using testing::valueOf;

class SearchWorkspacesTest : public SearchTest {
  protected:
    void save(const std::string& name) { point.workspaces.SavingWrkSpace(name, area); }
    void askOverwriting(const std::string& name, BoxAnswer answer) {
        prompts.expectBox(name + " already exist, do you want overwrite it?", "Saving Workspace...",
                          BoxIcon::None, BoxButtons::OkCancel, answer);
    }
    std::string count() { return valueOf(database, "select count(*) from Workspace"); }

    SearchedArea area{{"41.5", "12", "43", "14.25"}, "2", "5.5", 0, 100};
};

TEST_F(SearchWorkspacesTest, StoresANewNameWithTheMapsCentreAndZoom) {
    save("Centro");
    EXPECT_EQ(
        rowsOf(database, "select * from Workspace"),
        (std::vector<std::vector<std::string>>{{"Centro", "42.5", "13.5", "7", "41.5", "12.0",
                                                "43.0", "14.25", "2.0", "5.5", "0.0", "100.0"}}));
    EXPECT_EQ(settings.LastWorkSpace, "Centro");
    EXPECT_EQ(panel.calls, (std::vector<std::string>{"selection", "popolaComboWorkspace"}));
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(SearchWorkspacesTest, ReplacesAWorkspaceOnlyWhenTheOperatorAgrees) {
    save("Centro");
    area.magMax = "9";
    askOverwriting("Centro", BoxAnswer::Cancel);
    save("Centro");
    EXPECT_EQ(valueOf(database, "select MagMax from Workspace"), "5.5");
    EXPECT_EQ(panel.calls.back(), "popolaComboWorkspace");
    askOverwriting("Centro", BoxAnswer::Ok);
    save("Centro");
    EXPECT_EQ(valueOf(database, "select MagMax from Workspace"), "9.0");
    EXPECT_EQ(count(), "1");
}

TEST_F(SearchWorkspacesTest, WritesDepthsInTheFormOfTheLocale) {
    area.depthMin = 0.5;
    comma.workspaces.SavingWrkSpace("Virgola", area);
    EXPECT_EQ(valueOf(database, "select DepthMin from Workspace"), "0,5");
    save("Punto");
    EXPECT_EQ(valueOf(database, "select DepthMin from Workspace where Name = 'Punto'"), "0.5");
}

TEST_F(SearchWorkspacesTest, TellsTheLogOfANameThatBreaksTheStatement) {
    save("L'Aquila");
    save("x', '', '', '', '', '', '', '', '', '', '', '') --");
    EXPECT_EQ(count(), "0");
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_EQ(log.messages[0], "The workspace was not saved: an apostrophe in a text");
}

TEST_F(SearchWorkspacesTest, TellsTheLogOfARowThatTheCatalogueRefuses) {
    EXPECT_EQ(database.slsExe("drop table Workspace"), 0);
    save("Centro");
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(log.messages[0], "The workspace was not saved: 1 no such table: Workspace");
}

TEST_F(SearchWorkspacesTest, StoresEmptyAndLongNames) {
    save("");
    save(std::string(10000, 'w'));
    EXPECT_EQ(valueOf(database, "select group_concat(length(Name)) from Workspace"), "0,10000");
}

TEST_F(SearchWorkspacesTest, StoresNothingWithoutAnAnswerOfTheMap) {
    panel.view.reset();
    prompts.expectRuntimeError("The map gives no answer; the workspace is not saved.",
                               ErrorAnswer::Ignore);
    save("Centro");
    EXPECT_EQ(count(), "0");
    EXPECT_EQ(settings.LastWorkSpace, "Global");
}

TEST_F(SearchWorkspacesTest, GivesTheNames) {
    EXPECT_TRUE(point.workspaces.popolacmbWrkspace().empty());
    save("Nord");
    save("Centro");
    EXPECT_EQ(point.workspaces.popolacmbWrkspace(), (std::vector<std::string>{"Centro", "Nord"}))
        << "the index on the names gives them sorted";
}

TEST_F(SearchWorkspacesTest, LoadsCornersWithPointsAndTheRestInTheLocalesForm) {
    save("Centro");
    const auto filters = comma.workspaces.loadFromWorkspace();
    ASSERT_TRUE(filters);
    EXPECT_EQ(filters->BLat, "41.5");
    EXPECT_EQ(filters->BLng, "12");
    EXPECT_EQ(filters->TLat, "43");
    EXPECT_EQ(filters->TLng, "14.25");
    EXPECT_EQ(filters->MagMin, "2");
    EXPECT_EQ(filters->MagMax, "5,5");
    EXPECT_EQ(filters->DepthMin, "0");
    EXPECT_EQ(filters->DepthMax, "100");
    EXPECT_EQ(point.workspaces.loadFromWorkspace()->MagMax, "5.5");
}

TEST_F(SearchWorkspacesTest, LoadsZeroForWhatIsNoNumberAndNothingForAnUnknownName) {
    EXPECT_FALSE(point.workspaces.loadFromWorkspace()) << "Global is no row";
    settings.LastWorkSpace = "x' or '1'='1";
    EXPECT_FALSE(point.workspaces.loadFromWorkspace());
    EXPECT_EQ(database.slsExe("insert into Workspace(Name, BLat, MagMin) values('odd','abc','')"),
              0);
    settings.LastWorkSpace = "odd";
    const auto filters = point.workspaces.loadFromWorkspace();
    ASSERT_TRUE(filters);
    EXPECT_EQ(filters->BLat + filters->BLng + filters->MagMin + filters->DepthMax, "0000");
}

} // namespace
} // namespace tremor
