#include "practice_feeds/epicentres.h"
#include "practice_feeds/practice_documents.h"
#include "practice_feeds/seiscomp_folder.h"
#include "practice_feeds/whole_file.h"
#include "support/fakes.h"

#include <filesystem>
#include <set>

namespace tremor::practice {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

FdsnEvent event(const std::string& latitude, const std::string& longitude) {
    return parseFdsnEvent("46224912|2026-06-15T03:00:06.930000|" + latitude + "|" + longitude +
                          "|268.4|LOC||||ML|3.3|--|Central Italy|earthquake");
}

// The line that holds the solution, two below the heading.
std::string solutionOf(const std::string& bulletin) {
    const std::vector<std::string> lines = linesOf(bulletin);
    for (std::size_t i = 0; i + 2 < lines.size(); ++i)
        if (lines[i].starts_with(" LocSAT solution"))
            return lines[i + 2];
    return {};
}

TEST(SeisCompBulletin, HoldsTheSolutionTwoLinesBelowItsHeadingTwoBlanksBetweenTheFields) {
    EXPECT_EQ(solutionOf(seisCompBulletin(event("38.9802", "15.3048"))),
              "  Central Italy  ML=3.3  2026/06/15  03:00:06  38.98 N  15.30 E  268 km");
    EXPECT_EQ(solutionOf(seisCompBulletin(event("-38.9802", "-5.3048"))),
              "  Central Italy  ML=3.3  2026/06/15  03:00:06  38.98 S  5.30 W  268 km");
}

class SeisCompFolderTest : public ::testing::Test {
  protected:
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(path))
            found.insert(entry.path().filename().string());
        return found;
    }
    SeisCompFolder make(std::chrono::milliseconds every = 180s) {
        return {path, madeUpCatalogue(localReporting(), 3, 6h, {every, 1, false},
                                      [this] { return now; })};
    }

    tremor::testing::TemporaryFolder temporary;
    std::string path = temporary.file("deep/seiscomp");
    UtcTime now = at("2031-01-02T03:04:05.678901");
};

TEST_F(SeisCompFolderTest, BeginsWithThreeEventsOfTheLastHours) {
    SeisCompFolder folder = make();
    ASSERT_EQ(names().size(), 3u);
    for (const std::string& name : names()) {
        EXPECT_TRUE(std::regex_match(name, std::regex("ev203101(01|02)[0-9]{6}"))) << name;
        EXPECT_FALSE(solutionOf(fileText(path + "/" + name + "/last")).empty()) << name;
        EXPECT_EQ(std::distance(fs::directory_iterator(path + "/" + name), {}), 1) << name;
    }
}

TEST_F(SeisCompFolderTest, WritesANewEventWhenOneIsDueAndAtOnceWhenAsked) {
    SeisCompFolder folder = make();
    now += 181s;
    folder.advance();
    EXPECT_EQ(names().size(), 4u);
    const std::string file = folder.addEvent({});
    EXPECT_EQ(names().size(), 5u);
    EXPECT_TRUE(file.starts_with(path + "/ev") && file.ends_with("/last")) << file;
    EXPECT_FALSE(solutionOf(fileText(file)).empty());
}

TEST_F(SeisCompFolderTest, LocatesTheLatestEventThreeTimesMoreWithinTheFirstHour) {
    SeisCompFolder folder = make(24h);
    const std::string file = folder.addEvent({});
    std::set<std::string> solutions{solutionOf(fileText(file))};
    const std::string time = solutionOf(fileText(file)).substr(17, 29);
    for (int minute = 0; minute < 60; ++minute) {
        now += 1min;
        folder.advance();
        solutions.insert(solutionOf(fileText(file)));
    }
    EXPECT_EQ(solutions.size(), 4u);
    EXPECT_EQ(names().size(), 4u);
    std::set<std::string> times;
    for (const std::string& solution : solutions)
        times.insert(std::regex_replace(solution, std::regex(".*(2031/.*:[0-9]{2})  .*"), "$1"));
    EXPECT_EQ(times.size(), 1u) << time;
    const std::string last = solutionOf(fileText(file));
    now += 5h;
    folder.advance();
    EXPECT_EQ(solutionOf(fileText(file)), last);
}

TEST_F(SeisCompFolderTest, ChangesNothingWhileItIsHeld) {
    const CatalogueOptions options{3min, 1, false};
    SeisCompFolder folder(
        path, madeUpCatalogue(localReporting(), 3, 6h, options, [this] { return now; }));
    const std::string file = folder.addEvent({});
    const std::string solution = solutionOf(fileText(file));
    *options.held = true;
    now += 1h;
    folder.advance();
    EXPECT_EQ(names().size(), 4u);
    EXPECT_EQ(solutionOf(fileText(file)), solution);
    *options.held = false;
    folder.advance();
    EXPECT_EQ(names().size(), 24u);
}

TEST_F(SeisCompFolderTest, DoesNothingByItselfWithoutAnInterval) {
    SeisCompFolder folder = make(0s);
    const std::string file = folder.addEvent({});
    const std::string before = fileText(file);
    now += 1h;
    folder.advance();
    EXPECT_EQ(fileText(file), before);
    EXPECT_EQ(folder.relocateLatest(), file);
    EXPECT_NE(fileText(file), before);
}

TEST_F(SeisCompFolderTest, DoesNotBringBackAnEventThatSomebodyHasTakenAway) {
    SeisCompFolder folder = make(0s);
    const fs::path event = fs::path(folder.addEvent({})).parent_path();
    fs::rename(event, event.parent_path() / ("imported_" + event.filename().string()));
    EXPECT_EQ(folder.relocateLatest(), "");
    EXPECT_FALSE(fs::exists(event));
}

TEST_F(SeisCompFolderTest, SaysWhereItCannotWrite) {
    writeWholeFile(temporary.file("file"), "");
    path = temporary.file("file");
    EXPECT_THROW(make(), std::runtime_error);
}

} // namespace
} // namespace tremor::practice
