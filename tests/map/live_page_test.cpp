#include "core/files.h"
#include "map/live_page.h"
#include "support/fakes.h"
#include "support/ordinary_user.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace tremor {
namespace {

namespace fs = std::filesystem;

class WritingTheLivePage : public ::testing::Test {
  protected:
    WritingTheLivePage() {
        settings.CenterLatitude = 42.5;
        settings.CenterLongitude = -13.25;
        settings.Zoom = 7;
    }

    void write() { LivePage(settings, folder.path(), harness.errors).write(files); }
    std::string written(const std::string& name) const { return readWholeFile(folder.file(name)); }
    // A file that was replaced is another one.
    ino_t identity(const std::string& name) const {
        struct stat info {};
        return ::stat(folder.file(name).c_str(), &info) == 0 ? info.st_ino : 0;
    }
    void expectIgnoredError() {
        harness.prompts.expectRuntimeError("LivePage (Module - LivePage)", ErrorAnswer::Ignore);
    }

    testing::TemporaryFolder folder;
    AppSettings settings;
    LivePageFiles files{"{LATITUDE} {LONGITUDE} {ZOOM}", {{"a.js", "one"}, {"b.css", "two\n"}}};
    testing::ErrorHarness harness;
};

TEST_F(WritingTheLivePage, PutsThePageBesideItsFolderOfParts) {
    write();
    EXPECT_EQ(written("TremorLedgerLive.html"), "42.5 -13.25 7");
    EXPECT_EQ(written("TremorLedgerLive/a.js"), "one");
    EXPECT_EQ(written("TremorLedgerLive/b.css"), "two\n");
}

TEST_F(WritingTheLivePage, MakesFilesThatAWebServerMayRead) {
    write();
    for (const char* name : {"TremorLedgerLive.html", "TremorLedgerLive/a.js"})
        EXPECT_NE(fs::status(folder.file(name)).permissions() & fs::perms::others_read,
                  fs::perms::none)
            << name;
}

TEST_F(WritingTheLivePage, LeavesFilesAloneThatHoldTheSameAlready) {
    write();
    const ino_t page = identity("TremorLedgerLive.html");
    const ino_t part = identity("TremorLedgerLive/a.js");
    const auto time = fs::last_write_time(folder.file("TremorLedgerLive/a.js"));
    write();
    EXPECT_EQ(identity("TremorLedgerLive.html"), page);
    EXPECT_EQ(identity("TremorLedgerLive/a.js"), part);
    EXPECT_EQ(fs::last_write_time(folder.file("TremorLedgerLive/a.js")), time);
}

TEST_F(WritingTheLivePage, ReplacesJustWhatDiffers) {
    write();
    const ino_t other = identity("TremorLedgerLive/b.css");
    const ino_t shorter = identity("TremorLedgerLive/a.js");
    files.parts[0].text = "one and more";
    settings.Zoom = 9;
    write();
    EXPECT_EQ(written("TremorLedgerLive.html"), "42.5 -13.25 9");
    EXPECT_EQ(written("TremorLedgerLive/a.js"), "one and more");
    EXPECT_NE(identity("TremorLedgerLive/a.js"), shorter);
    EXPECT_EQ(identity("TremorLedgerLive/b.css"), other);
}

TEST_F(WritingTheLivePage, MendsFilesThatWereChangedOrCut) {
    write();
    writeFileAtomically(folder.file("TremorLedgerLive/a.js"), "o", false);
    writeFileAtomically(folder.file("TremorLedgerLive/b.css"), "two\nand more", false);
    write();
    EXPECT_EQ(written("TremorLedgerLive/a.js"), "one");
    EXPECT_EQ(written("TremorLedgerLive/b.css"), "two\n");
}

TEST_F(WritingTheLivePage, LeavesWhatElseStandsInTheFolder) {
    createFolder(folder.file("TremorLedgerLive"));
    writeFileAtomically(folder.file("TremorLedgerLive/robots.txt"), "mine", false);
    write();
    EXPECT_EQ(written("TremorLedgerLive/robots.txt"), "mine");
}

TEST_F(WritingTheLivePage, AsksOnceWhenItsFolderCannotBeMade) {
    writeFileAtomically(folder.file("TremorLedgerLive"), "a workspace of an earlier version",
                        false);
    expectIgnoredError();
    write();
    EXPECT_FALSE(FileExists(folder.file("TremorLedgerLive.html")));
    EXPECT_EQ(written("TremorLedgerLive"), "a workspace of an earlier version");
}

TEST_F(WritingTheLivePage, AsksForEachFileThatCannotBeWritten) {
    createFolder(folder.file("TremorLedgerLive"));
    createFolder(folder.file("TremorLedgerLive/a.js"));
    expectIgnoredError();
    write();
    EXPECT_EQ(written("TremorLedgerLive/b.css"), "two\n");
    EXPECT_EQ(written("TremorLedgerLive.html"), "42.5 -13.25 7");
}

TEST_F(WritingTheLivePage, TellsThatAFolderIsReadOnly) {
    write();
    files.parts[0].text = "new";
    constexpr fs::perms readOnly{0555};
    fs::permissions(folder.path(), readOnly);
    fs::permissions(folder.file("TremorLedgerLive"), readOnly);
    expectIgnoredError();
    {
        const testing::OrdinaryUser user;
        write();
    }
    fs::permissions(folder.path(), fs::perms::owner_all);
    fs::permissions(folder.file("TremorLedgerLive"), fs::perms::owner_all);
    EXPECT_EQ(written("TremorLedgerLive/a.js"), "one");
    EXPECT_NE(harness.prompts.lastErrorText.find("Permission denied"), std::string::npos)
        << harness.prompts.lastErrorText;
}

} // namespace
} // namespace tremor
