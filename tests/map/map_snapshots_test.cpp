#include "core/files.h"
#include "map/map_snapshots.h"
#include "map/recording_web_browser.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using testing::RecordingWebBrowser;
using Texts = std::vector<std::string>;

// The main window as the snapshots see it.
class Surroundings : public SnapshotSurroundings {
  public:
    bool takeDocumentReady() override { return std::exchange(ready, false); }
    void onclickEventi() override { calls.emplace_back("eventi.Onclick"); }
    void pin2gif(std::string_view lastEventSql) override {
        calls.push_back("pin2gif " + std::string(lastEventSql));
    }
    std::string shownCondition() override { return "(Magnitude >= '2')"; }
    SnapshotEvent lastEvent() const override { return event; }
    std::vector<std::string> towns() const override { return list; }

    bool ready = false;
    Texts calls;
    SnapshotEvent event{"2021-01-14 05:45:26.600", "42.70", "-13.23", "3.1", "9.8"};
    Texts list;
};

// Each pixel tells its column (red) and row (green).
Picture numberedPicture(int width, int height) {
    Picture picture{width, height, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (const int value : {x, y, 7})
                picture.rgb.push_back(static_cast<std::uint8_t>(value));
    return picture;
}

class MapSnapshotsTest : public ::testing::Test {
  protected:
    MapSnapshotsTest() { page.painted = numberedPicture(40, 3); }

    std::string inHistory(const std::string& name) const { return folder.file("History/" + name); }
    std::string read(const std::string& name) const { return readWholeFile(inHistory(name)); }
    Texts namesInHistory() const {
        Texts names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.file("History")))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    void workspaceMap() { snapshots.mapsInJPG(page, SnapshotKind::WorkspaceMap, {}); }
    void lastEvent() { snapshots.mapsInJPG(page, SnapshotKind::LastEvent, {}); }
    void named(std::string_view name) {
        snapshots.mapsInJPG(page, SnapshotKind::NamedWorkspace, name);
    }
    void turn() { snapshots.TimerCheckScreenshot_Timer(); }
    void expectError(const std::string& text, ErrorAnswer answer = ErrorAnswer::Ignore) {
        harness.prompts.expectRuntimeError(text, answer);
    }

    testing::TemporaryFolder folder;
    testing::ErrorHarness harness;
    Surroundings surroundings;
    RecordingWebBrowser page;
    Picture saved;
    MapSnapshots snapshots{
        folder.path(), surroundings,
        [this](const Picture& picture, std::string_view path, std::int32_t format) {
            saved = picture;
            writeFileAtomically(path, fmt::format("format {}", format), false);
        },
        harness.errors};
};

TEST_F(MapSnapshotsTest, MakesTheFolderForAnyKind) {
    workspaceMap();
    EXPECT_EQ(namesInHistory(), Texts{"tmpcurrent.sr"});
    std::filesystem::remove_all(folder.file("History"));
    lastEvent();
    EXPECT_EQ(namesInHistory(), (Texts{"lastEvents.txt", "tmplastEvent.jpg"}));
    std::filesystem::remove_all(folder.file("History"));
    named("A");
    EXPECT_EQ(namesInHistory(), Texts{"currentA.JPG"});
}

TEST_F(MapSnapshotsTest, TakesTheControlLessScrollBarAndEdgeAndItsWholeHeight) {
    workspaceMap();
    EXPECT_EQ(read("tmpcurrent.sr"), "format 2");
    ASSERT_EQ(saved.width, 40 - 17 - 2);
    ASSERT_EQ(saved.height, 3);
    ASSERT_EQ(saved.rgb.size(), 3U * 21 * 3);
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 21; ++x) {
            EXPECT_EQ(saved.rgb[(y * 21 + x) * 3], x);
            EXPECT_EQ(saved.rgb[(y * 21 + x) * 3 + 1], y);
        }
}

TEST_F(MapSnapshotsTest, ThePictureIsCurrentOnlyWithTheNextTurnOfTheTimer) {
    turn();
    EXPECT_FALSE(PathExists(folder.file("History")));
    workspaceMap();
    EXPECT_FALSE(PathExists(inHistory("current.jpg")));
    turn();
    EXPECT_EQ(namesInHistory(), Texts{"current.jpg"});
    turn();
    EXPECT_EQ(read("current.jpg"), "format 2");
}

TEST_F(MapSnapshotsTest, ThePictureBeforeIsReplacedInOneStep) {
    createFolder(folder.file("History"));
    writeFileAtomically(inHistory("current.jpg"), "old", false);
    workspaceMap();
    EXPECT_EQ(read("current.jpg"), "old");
    turn();
    EXPECT_EQ(read("current.jpg"), "format 2");
}

TEST_F(MapSnapshotsTest, WritesTheLastEventAndTheTownsWithDoubledLineEnds) {
    surroundings.list = {"TOWNS WITH DISTANCE LESS OF 10 KM", "Forl\xC3\xAC = Km 3.27", ""};
    lastEvent();
    EXPECT_EQ(read("lastEvents.txt"),
              "UTC: 2021-01-14 05:45:26.600 | LATLNG(42.70,-13.23) | Mg. 3.1 | Depth. 9.8\r\n\r\n"
              "TOWNS WITH DISTANCE LESS OF 10 KM\r\n\r\n"
              "Forl\xC3\xAC = Km 3.27\r\n\r\n"
              "\r\n\r\n");
    surroundings.event = {};
    surroundings.list = {};
    lastEvent();
    EXPECT_EQ(read("lastEvents.txt"), "UTC:  | LATLNG(,) | Mg.  | Depth. \r\n\r\n");
}

TEST_F(MapSnapshotsTest, APictureOfTheLastEventThatCannotBeDeletedStaysAndTheTextIsWritten) {
    std::filesystem::create_directories(inHistory("tmplastEvent.jpg"));
    lastEvent();
    EXPECT_EQ(saved.width, 0);
    EXPECT_TRUE(std::filesystem::is_directory(inHistory("tmplastEvent.jpg")));
    EXPECT_TRUE(FileExists(inHistory("lastEvents.txt")));
}

TEST_F(MapSnapshotsTest, TheTextIsWrittenAlsoWhenThePictureIsNot) {
    const testing::FileSizeLimit fullDisk(4);
    expectError("Disk full");
    expectError("Disk full");
    lastEvent();
    EXPECT_EQ(namesInHistory(), Texts{});
}

TEST_F(MapSnapshotsTest, APageThatIsNotPaintedLeavesEverythingAsItIs) {
    const auto takeAll = [this] {
        workspaceMap();
        lastEvent();
        named("A");
    };
    page.painted = std::nullopt;
    takeAll();
    page.painted = Picture{40, 2, std::vector<std::uint8_t>(40 * 2 * 3, 255)}; // one colour
    takeAll();
    page.painted = Picture{};
    takeAll();
    page.painted = numberedPicture(19, 5); // nothing left of it
    takeAll();
    EXPECT_FALSE(PathExists(folder.file("History")));
    page.painted = numberedPicture(20, 1);
    workspaceMap();
    EXPECT_EQ(saved.rgb, (std::vector<std::uint8_t>{0, 0, 7}));
}

TEST_F(MapSnapshotsTest, NamesThatCannotNameAPageHaveNoPicture) {
    for (const std::string_view name : {"", "..", "../x", "a/b", "a\\b", "settings.ini", "History"})
        named(name);
    named(std::string_view("a\0b", 3));
    EXPECT_FALSE(PathExists(folder.file("History")));
    EXPECT_EQ(page.calls, Texts{});
    named("L'Aquila 2");
    EXPECT_EQ(namesInHistory(), Texts{"currentL'Aquila 2.JPG"});
}

TEST_F(MapSnapshotsTest, ANameTooLongForAFileIsToldOnce) {
    const std::string name(250, 'x');
    expectError("There was a runtime error.");
    named(name);
    named(name);
    EXPECT_EQ(namesInHistory(), Texts{});
}

TEST_F(MapSnapshotsTest, AFileInThePlaceOfTheFolderIsToldOnce) {
    writeFileAtomically(folder.file("History"), "mine", false);
    expectError("Path/File access error");
    workspaceMap();
    workspaceMap();
    lastEvent();
    named("A");
    turn();
    EXPECT_EQ(readWholeFile(folder.file("History")), "mine");
}

TEST_F(MapSnapshotsTest, AFullDiskIsToldOnceForAFileAndAgainOnlyAfterItWasWritten) {
    {
        const testing::FileSizeLimit fullDisk(4);
        expectError("Disk full");
        workspaceMap();
        workspaceMap();
        expectError("Disk full");
        named("A");
        named("A");
    }
    EXPECT_EQ(namesInHistory(), Texts{}); // nothing half written
    workspaceMap();
    const testing::FileSizeLimit fullDisk(4);
    expectError("Disk full");
    workspaceMap();
    named("A");
    EXPECT_EQ(read("tmpcurrent.sr"), "format 2");
}

TEST_F(MapSnapshotsTest, AFailureIsRetriedWhenTheOperatorWantsIt) {
    const testing::FileSizeLimit fullDisk(4);
    expectError("Disk full", ErrorAnswer::Retry);
    expectError("Disk full", ErrorAnswer::Retry);
    expectError("Disk full", ErrorAnswer::Ignore);
    workspaceMap();
}

TEST_F(MapSnapshotsTest, ACurrentPictureThatCannotBeReplacedIsToldOnceAndTheNextOneWaits) {
    std::filesystem::create_directories(inHistory("current.jpg/x"));
    workspaceMap();
    expectError("Path/File access error");
    turn();
    turn();
    EXPECT_EQ(read("tmpcurrent.sr"), "format 2");
    std::filesystem::remove_all(inHistory("current.jpg"));
    turn();
    EXPECT_EQ(namesInHistory(), Texts{"current.jpg"});
}

TEST_F(MapSnapshotsTest, TheTimerDrawsAReloadedMapOnce) {
    turn();
    EXPECT_EQ(surroundings.calls, Texts{});
    surroundings.ready = true;
    turn();
    const Texts once{
        "eventi.Onclick",
        "pin2gif select * from Events where (Magnitude >= '2') order by UTC desc limit 1"};
    EXPECT_EQ(surroundings.calls, once);
    turn();
    EXPECT_EQ(surroundings.calls, once);
}

} // namespace
} // namespace tremor
