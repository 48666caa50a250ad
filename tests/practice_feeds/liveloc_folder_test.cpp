#include "practice_feeds/epicentres.h"
#include "practice_feeds/liveloc_folder.h"
#include "practice_feeds/practice_documents.h"
#include "practice_feeds/whole_file.h"
#include "support/fakes.h"

#include <algorithm>
#include <filesystem>

namespace tremor::practice {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

const char* const event = "17|2026-06-05T03:00:59.980000|38.9802|5.3048|8.25|LOC||||ML|3.3|--|"
                          "Central Italy|earthquake";

// Columns of a line, counted from 1, both ends included.
std::string columns(const std::string& line, std::size_t from, std::size_t to) {
    return line.substr(from - 1, to - from + 1);
}

TEST(NordicHeader, PutsEveryValueIntoItsColumns) {
    const std::string line = nordicHeader(parseFdsnEvent(event), true);
    EXPECT_EQ(line, " 2026 0605 0300 59.9 L  38.980   5.305  8.2  LOC  6 0.7 3.3LLOC"
                    "                1");
    EXPECT_EQ(line.size(), 80u);
    EXPECT_EQ(columns(line, 1, 5), " 2026");
    EXPECT_EQ(columns(line, 7, 10), "0605");
    EXPECT_EQ(columns(line, 12, 15), "0300");
    EXPECT_EQ(columns(line, 17, 20), "59.9");
    EXPECT_EQ(columns(line, 24, 30), " 38.980");
    EXPECT_EQ(columns(line, 31, 38), "   5.305");
    EXPECT_EQ(columns(line, 39, 43), "  8.2");
    EXPECT_EQ(columns(line, 56, 59), " 3.3");
}

TEST(NordicHeader, LeavesTheColumnsOfALocationBlankWhenThereIsNone) {
    const std::string line = nordicHeader(parseFdsnEvent(event), false);
    EXPECT_EQ(line, " 2026 0605 0300 59.9 L                       LOC  6 0.7 3.3LLOC"
                    "                1");
}

TEST(NordicHeader, HoldsTheLargestValues) {
    const std::string line = nordicHeader(
        parseFdsnEvent("17|2026-06-05T03:00:00.000000|-38.9802|-175.3048|668.25|LOC||||ML|6.3|--|"
                       "X|earthquake"),
        true);
    EXPECT_EQ(line.size(), 80u);
    EXPECT_EQ(columns(line, 24, 43), "-38.980-175.305668.2");
}

class LivelocFolderTest : public ::testing::Test {
  protected:
    // Paths of all files below the folder, from there on.
    std::vector<std::string> files() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(path))
            if (entry.is_regular_file())
                found.push_back(fs::relative(entry.path(), path).string());
        std::sort(found.begin(), found.end());
        return found;
    }
    LivelocFolder make() {
        return {path,
                madeUpCatalogue(localReporting(), 3, 6h, {180s, 1, false}, [this] { return now; })};
    }

    tremor::testing::TemporaryFolder temporary;
    std::string path = temporary.file("deep/liveloc");
    UtcTime now = at("2031-01-02T23:04:05.678901");
};

TEST_F(LivelocFolderTest, IsASeisanDatabaseOfYearsMonthsAndSFiles) {
    LivelocFolder folder = make();
    EXPECT_TRUE(fs::is_empty(path + "/CAT"));
    EXPECT_TRUE(fs::is_empty(path + "/LOG"));
    ASSERT_EQ(files().size(), 3u);
    for (const std::string& file : files()) {
        EXPECT_TRUE(std::regex_match(file, std::regex("2031/01/02-[0-9]{4}-[0-9]{2}L\\.S203101")))
            << file;
        for (const std::string& line : linesOf(fileText(path + "/" + file)))
            EXPECT_EQ(line.size(), 80u) << line;
    }
}

TEST_F(LivelocFolderTest, WritesDueAndAddedEventsEveryFourthWithoutALocation) {
    LivelocFolder folder = make();
    now += 181s;
    folder.advance();
    EXPECT_EQ(files().size(), 4u);
    for (int i = 0; i < 4; ++i)
        folder.addEvent({});
    ASSERT_EQ(files().size(), 8u);
    std::string located;
    for (const std::string& file : files())
        located += columns(fileText(path + "/" + file), 24, 30) == "       " ? '-' : '+';
    EXPECT_EQ(located, "+++-+++-");
}

TEST_F(LivelocFolderTest, NeverWritesAHandledFileAgain) {
    LivelocFolder folder = make();
    const fs::path file = folder.addEvent({});
    const fs::path handled = file.parent_path() / ("imported_" + file.filename().string());
    fs::rename(file, handled);
    now += 1h;
    folder.advance();
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(handled));
}

TEST_F(LivelocFolderTest, SaysWhereItCannotWrite) {
    writeWholeFile(temporary.file("file"), "");
    path = temporary.file("file");
    EXPECT_THROW(make(), std::runtime_error);
}

} // namespace
} // namespace tremor::practice
