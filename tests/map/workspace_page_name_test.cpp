#include "core/files.h"
#include "map/map_page.h"
#include "map/workspace_page_name.h"
#include "support/fakes.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace tremor {
namespace {

class WorkspacePageName : public ::testing::Test {
  protected:
    bool mayName(std::string_view name) const { return mayNameWorkspacePage(folder_.path(), name); }

    testing::TemporaryFolder folder_;
};

TEST_F(WorkspacePageName, MayBeAnyOrdinaryName) {
    for (const std::string_view name :
         {"Abruzzo", "Forl\xC3\xAC 2", "a.b", "..a", "L'Aquila", "settings", "<script>"})
        EXPECT_TRUE(mayName(name)) << name;
}

TEST_F(WorkspacePageName, MayNotLeadOutOfTheFolder) {
    for (const std::string_view name :
         {"", ".", "..", "../x", "/etc/x", "a/b", "a\\b", "..\\x", "a/"})
        EXPECT_FALSE(mayName(name)) << name;
    EXPECT_FALSE(mayName(std::string_view("a\0b", 3)));
}

TEST_F(WorkspacePageName, MayNotBeOneOfTheProgramsOwn) {
    for (const std::string_view name :
         {"settings.ini", "hosts.ini", "TremorLedger", "TremorLedger.html", "last_event.html",
          "SavingWrkS.html", "TremorLedgerWEB.html", "TremorLedgerLive", "TremorLedgerLive.html",
          "default.css", "tremorledger.kml", "DB.csv", "last24H.csv", "logs", "History", "Img"})
        EXPECT_FALSE(mayName(name)) << name;
}

TEST_F(WorkspacePageName, MayBeThatOfAnEarlierMapPage) {
    writeFileAtomically(folder_.file("Abruzzo"), mapPage({.bWorkspacePage = true}, {}), false);
    EXPECT_TRUE(mayName("Abruzzo"));
}

TEST_F(WorkspacePageName, MayNotBeThatOfAnythingElseThatStandsThere) {
    writeFileAtomically(folder_.file("catalogue.sqlite"), "SQLite format 3", false);
    writeFileAtomically(folder_.file("empty"), "", false);
    writeFileAtomically(folder_.file("page.html"), "<!DOCTYPE html>\r\n<html>\r\n", false);
    writeFileAtomically(folder_.file("large"),
                        std::string(pageOpening) + std::string(1U << 20U, ' '), false);
    std::filesystem::create_directory(folder_.file("folder"));
    ASSERT_EQ(::mkfifo(folder_.file("pipe").c_str(), 0600), 0);
    for (const std::string_view name :
         {"catalogue.sqlite", "empty", "page.html", "large", "folder", "pipe"})
        EXPECT_FALSE(mayName(name)) << name;
}

} // namespace
} // namespace tremor
