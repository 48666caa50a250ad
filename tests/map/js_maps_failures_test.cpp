#include "map/js_maps.h"
#include "map/pages_fixture.h"
#include "support/clearing_prompts.h"
#include "support/ordinary_user.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tremor {
namespace {

namespace fs = std::filesystem;
using testing::OrdinaryUser;
using testing::RecordingWebBrowser;
using testing::Texts;

class JSMapsFailures : public testing::PagesFixture {
  protected:
    void expectIgnoredError(const std::string& procedure) {
        harness.prompts.expectRuntimeError(procedure, ErrorAnswer::Ignore);
    }
    void makeFolderReadOnly() {
        fs::permissions(folder.path(), fs::perms::all, fs::perm_options::remove);
        fs::permissions(folder.path(),
                        fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                            fs::perms::others_exec,
                        fs::perm_options::add);
    }
};

TEST_F(JSMapsFailures, AReadOnlyFolderRaisesTheErrorOfEveryProcedureOnceAFile) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    RecordingWebBrowser window;
    const std::vector<WorkspacePage> pages = {{"Abruzzo", &window}};
    JSMaps maps = jsMaps();
    for (const std::string procedure :
         {"generaDefaultCSS", "Maps", "Maps", "MapsLastEvent", "MapsSavingWrkS", "MapsWebKml",
          "MapsWebCsv", "MapsWorkspaces"})
        expectIgnoredError(procedure + " (Module - JSMaps)");
    makeFolderReadOnly();
    {
        const OrdinaryUser user;
        maps.generaDefaultCSS();
        maps.Maps();
        maps.MapsLastEvent();
        maps.MapsSavingWrkS();
        maps.MapsWebKml();
        maps.MapsWebCsv();
        maps.MapsWorkspaces(pages);
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    EXPECT_NE(harness.prompts.lastErrorText.find("Permission denied"), std::string::npos)
        << harness.prompts.lastErrorText;
    EXPECT_EQ(entries(), Texts{"Img"});
    EXPECT_EQ(window.calls, Texts{navigation("Abruzzo")});
}

TEST_F(JSMapsFailures, AMissingFolderRaisesPathNotFound) {
    environment.applicationPath = folder.file("gone");
    expectIgnoredError("Path not found");
    jsMaps().generaDefaultCSS();
}

TEST_F(JSMapsFailures, AfterIgnoreTheBrowserShowsWhatStandsThere) {
    jsMaps().MapsLastEvent();
    const std::string before = written("last_event.html");
    fs::create_directory(folder.file("TremorLedger.html"));
    settings.Zoom = 3;
    expectIgnoredError("Path/File access error");
    jsMaps().Maps();
    EXPECT_EQ(mainMap.calls, Texts{navigation("TremorLedger.html")});
    EXPECT_EQ(lastMap.calls, (Texts{navigation("last_event.html"), navigation("last_event.html")}));
    EXPECT_NE(written("last_event.html"), before); // the second file is written all the same
}

TEST_F(JSMapsFailures, RetryWritesTheFileOnceTheReasonIsGone) {
    const std::string page = folder.file("SavingWrkS.html");
    fs::create_directory(page);
    testing::ClearingPrompts prompts(page);
    prompts.expectRuntimeError("MapsSavingWrkS", ErrorAnswer::Retry);
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { throw testing::ProcessEnded{}; }, 60, ticksHeld);
    JSMaps maps(settings, environment, {mainMap, lastMap, saveMap}, log, errors);
    maps.MapsSavingWrkS();
    EXPECT_TRUE(writtenIs("SavingWrkS.html", "TremorLedger.html"));
    EXPECT_EQ(saveMap.calls, Texts{navigation("SavingWrkS.html")});
}

TEST_F(JSMapsFailures, AFileThatCannotBeWrittenForOneWorkspaceLeavesTheOthers) {
    RecordingWebBrowser first;
    RecordingWebBrowser second;
    const std::vector<WorkspacePage> pages = {{std::string(300, 'x'), &first}, {"B", &second}};
    expectIgnoredError("MapsWorkspaces");
    jsMaps().MapsWorkspaces(pages);
    EXPECT_TRUE(writtenIs("B", "workspace.html"));
}

} // namespace
} // namespace tremor
