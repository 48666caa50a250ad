#include "journeys/journey.h"
#include "journeys/source_rows.h"
#include "support/texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <thread>

namespace tremor::journeys {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::linesOf;

constexpr char catalogue[] = "sources.sqlite";

std::vector<std::string> polling(const std::vector<std::string>& more) {
    std::vector<std::string> lines{"PrimaryPollEvery=5", "AlternatePollEvery=5", "LocalPollEvery=5",
                                   "StartupLogo=1"};
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

void leave(Journey& journey) {
    journey.key("alt+f x");
    EXPECT_EQ(journey.waitForExit(20s), 0);
}

template <class Condition>
bool soon(Condition condition) {
    for (int i = 0; i < 200; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(100ms);
    }
    return false;
}

std::vector<EventRow> sorted(std::vector<EventRow> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

// Dates of the program's clock, "YYYY-MM-DD", so many days before today.
std::string localDate(int daysAgo) {
    const std::time_t then = std::time(nullptr) - daysAgo * 86400L;
    std::tm local{};
    localtime_r(&then, &local);
    char text[11];
    std::strftime(text, sizeof text, "%Y-%m-%d", &local);
    return text;
}

// Minutes from the middle of yesterday until now, where the days are the local ones and the clock
// is UTC, as the program's request to the USGS has it.
long minutesSinceMiddleOfYesterday() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    local.tm_hour = local.tm_min = local.tm_sec = 0;
    return (now - timegm(&local)) / 60 + 12L * 60;
}

// Paths of all files below a folder of the program, from there on.
std::set<std::string> filesBelow(const Journey& journey, const std::string& name) {
    std::set<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(journey.file(name)))
        if (entry.is_regular_file())
            found.insert(fs::relative(entry.path(), journey.file(name)).string());
    return found;
}

std::vector<EventRow> rowsOfBulletins(const Journey& journey) {
    std::vector<EventRow> rows;
    for (const std::string& file : filesBelow(journey, "seiscomp"))
        rows.push_back(rowOfBulletin(journey.readFile("seiscomp/" + file)));
    return rows;
}

TEST(SourcesJourney, UsgsAsTheAlternateSourceFillsTheCatalogueWithItsWholeDays) {
    Journey journey(
        polling({"UseAlternateDataSource=1", "EmscOrUsgs=1", "AlternateLastNHours=24"}));
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog(" Events imported from USGS", 1, 30s)) << journey.activityLog();
    EXPECT_NE(journey.service("/practice/log")
                  .find("GET /usgs/fdsnws/event/1/query?starttime=" + localDate(1) +
                        "&endtime=" + localDate(0) + "\n"),
              std::string::npos)
        << journey.service("/practice/log");
    const std::vector<EventRow> served = rowsOfQuakeMl(journey.service("/practice/last"));
    ASSERT_GE(served.size(), 20u);
    EXPECT_EQ(sorted(journey.events(catalogue)), sorted(served));

    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("0 Events imported from USGS", 1, 30s));
    journey.service("/practice/add?source=usgs&age=" +
                    std::to_string(minutesSinceMiddleOfYesterday()));
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("1 Events imported from USGS", 1, 30s));
    EXPECT_EQ(sorted(journey.events(catalogue)),
              sorted(rowsOfQuakeMl(journey.service("/practice/last"))));
    EXPECT_EQ(journey.events(catalogue).size(), served.size() + 1);
    leave(journey);
}

TEST(SourcesJourney, EmscAsTheAlternateSourceFillsTheCatalogueWithItsLatestEvents) {
    Journey journey(polling({"UseAlternateDataSource=1", "EmscOrUsgs=0"}));
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog("50 Events imported from EMSC", 1, 30s))
        << journey.activityLog();
    const std::vector<EventRow> served = rowsOfRss(journey.service("/practice/last"));
    EXPECT_EQ(served.size(), 50u);
    EXPECT_EQ(sorted(journey.events(catalogue)), sorted(served));

    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("0 Events imported from EMSC", 1, 30s));
    journey.service("/practice/add?source=emsc");
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("1 Events imported from EMSC", 1, 30s));
    // The oldest one has left the service's list, not the catalogue.
    EXPECT_EQ(journey.events(catalogue).size(), 51u);
    EXPECT_TRUE(std::ranges::includes(sorted(journey.events(catalogue)),
                                      sorted(rowsOfRss(journey.service("/practice/last")))));
    leave(journey);
}

struct Fault {
    const char* name;
    const char* setting;
    const char* kind;
    const char* failureLine;
    const char* goodEnd;
};

void PrintTo(const Fault& fault, std::ostream* stream) {
    *stream << fault.name;
}

class AlternateFaultJourney : public ::testing::TestWithParam<Fault> {};

TEST_P(AlternateFaultJourney, EndsInItsLogLineAndTheNextGoodPollHeals) {
    const Fault& fault = GetParam();
    Journey journey(polling({"UseAlternateDataSource=1", fault.setting}));
    journey.startWithNewCatalogue("sources");
    journey.service(std::string("/practice/fault?kind=") + fault.kind);
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog(fault.failureLine, 1, 90s)) << journey.activityLog();
    EXPECT_TRUE(journey.events(catalogue).empty());
    journey.service("/practice/fault?kind=none");
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog(fault.goodEnd, 1, 30s)) << journey.activityLog();
    EXPECT_FALSE(journey.events(catalogue).empty());
    leave(journey);
}

INSTANTIATE_TEST_SUITE_P(
    Of, AlternateFaultJourney,
    ::testing::Values(Fault{"UsgsCut", "EmscOrUsgs=1", "cut", "USGS Synchronization failed",
                            " Events imported from USGS"},
                      Fault{"EmscNotFound", "EmscOrUsgs=0", "404", "EMSC Synchronization failed",
                            " Events imported from EMSC"},
                      Fault{"EmscGarbage", "EmscOrUsgs=0", "garbage",
                            "Impossible connect to EMSC source, try later.",
                            " Events imported from EMSC"}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(SourcesJourney, SeisCompsEventsComeInChangeAndLeaveTheFolderAfterAnHour) {
    Journey journey(
        polling({"UseLocalSource=1", "SeisCompOrLIVELOC=0", "LocalSourcePath=seiscomp/"}),
        {"seiscomp"});
    journey.startWithNewCatalogue("sources");
    const auto holdsTheSolutions = [&] {
        return sorted(journey.events(catalogue)) == sorted(rowsOfBulletins(journey));
    };
    ASSERT_EQ(rowsOfBulletins(journey).size(), 3u);
    journey.key("F5");
    ASSERT_TRUE(soon(holdsTheSolutions)) << journey.activityLog();

    std::string file = journey.service("/practice/add?source=seiscomp");
    file.pop_back();
    journey.key("F5");
    ASSERT_TRUE(soon(holdsTheSolutions));
    EXPECT_EQ(journey.events(catalogue).size(), 4u);

    // A better solution of the same event takes the place of the first.
    const std::vector<EventRow> before = sorted(journey.events(catalogue));
    EXPECT_EQ(journey.service("/practice/relocate"), file + "\n");
    journey.key("F5");
    ASSERT_TRUE(soon(holdsTheSolutions));
    EXPECT_EQ(journey.events(catalogue).size(), 4u);
    EXPECT_NE(sorted(journey.events(catalogue)), before);

    // Two hours later the event is finished.
    const std::string folder = fs::path(file).parent_path().filename();
    fs::last_write_time(file, fs::file_time_type::clock::now() - 2h);
    journey.key("F5");
    EXPECT_TRUE(soon([&] { return fs::exists(journey.file("seiscomp/imported_" + folder)); }));
    EXPECT_FALSE(fs::exists(journey.file("seiscomp/" + folder)));
    EXPECT_EQ(journey.events(catalogue).size(), 4u);
    leave(journey);
}

TEST(SourcesJourney, TheSFilesOfALocatorAreReadOnceAndMarked) {
    Journey journey(polling({"UseLocalSource=1", "SeisCompOrLIVELOC=1", "LocalSourcePath=liveloc"}),
                    {"liveloc"});
    journey.startWithNewCatalogue("sources");
    journey.service("/practice/add?source=liveloc"); // the fourth, without a location
    const std::set<std::string> written = filesBelow(journey, "liveloc");
    ASSERT_EQ(written.size(), 4u);
    std::vector<EventRow> expected;
    std::set<std::string> marked;
    for (const std::string& file : written) {
        const std::string text = journey.readFile("liveloc/" + file);
        const bool located = text.substr(23, 6) != "      ";
        if (located)
            expected.push_back(rowOfSFile(text));
        const fs::path path(file);
        marked.insert(path.parent_path().string() + (located ? "/imported_" : "/noise_") +
                      path.filename().string());
    }
    ASSERT_EQ(expected.size(), 3u);
    journey.key("F5");
    ASSERT_TRUE(soon([&] { return journey.events(catalogue).size() == 3; }))
        << journey.activityLog();
    EXPECT_EQ(sorted(journey.events(catalogue)), sorted(expected));
    EXPECT_EQ(filesBelow(journey, "liveloc"), marked);

    journey.service("/practice/add?source=liveloc");
    journey.key("F5");
    ASSERT_TRUE(soon([&] { return journey.events(catalogue).size() == 4; }));
    leave(journey);
}

TEST(SourcesJourney, PrimaryAlternateAndLocalSourceRunInThisOrderWithinOneTick) {
    Journey journey(polling({"UsePrimaryDataSource=1", "IsideOrIngv=1", "UseAlternateDataSource=1",
                             "EmscOrUsgs=0", "UseLocalSource=1", "SeisCompOrLIVELOC=0",
                             "LocalSourcePath=seiscomp/"}),
                    {"seiscomp"});
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog(" Events imported from EMSC", 1, 30s)) << journey.activityLog();
    ASSERT_TRUE(soon([&] {
        return journey.queryOne(catalogue, "select count(*) from Events where Source='SEISCP'") ==
               "3";
    }));
    std::vector<std::string> requests = linesOf(journey.service("/practice/log"));
    std::erase(requests, "GET /");
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_TRUE(requests[0].starts_with("GET /fdsnws/event/1/query?")) << requests[0];
    EXPECT_EQ(requests[1], "GET /service/rss/rss.php?typ=emsc");
    // Rows are numbered as they come.
    std::vector<EventRow> rows = journey.events(catalogue);
    const auto kind = [](const EventRow& row) {
        return row.source == "SEISCP" ? 3 : row.source == "EMSC" ? 2 : 1;
    };
    EXPECT_TRUE(std::ranges::is_sorted(rows, {}, kind));
    EXPECT_EQ(kind(rows.front()), 1);
    EXPECT_EQ(kind(rows.back()), 3);
    leave(journey);
}

// Messages and mail go with the primary source alone. Telegram's own polls may ask who is there.
TEST(SourcesJourney, AlternateAndLocalSourceNotifyNobody) {
    Journey journey(polling({"UseAlternateDataSource=1", "EmscOrUsgs=0", "UseLocalSource=1",
                             "SeisCompOrLIVELOC=0", "LocalSourcePath=seiscomp/", "enableTelegram=1",
                             "TelegramToken=1:practice"}),
                    {"seiscomp"});
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog("50 Events imported from EMSC", 1, 30s));
    journey.service("/practice/add?source=emsc");
    journey.service("/practice/add?source=seiscomp");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog("1 Events imported from EMSC", 1, 30s));
    ASSERT_TRUE(soon([&] { return journey.events(catalogue).size() == 50 + 1 + 4; }));
    std::this_thread::sleep_for(3s); // what would be sent, would be sent now
    for (const std::string& request : linesOf(journey.service("/practice/log")))
        EXPECT_TRUE(request == "GET /" || request == "GET /service/rss/rss.php?typ=emsc" ||
                    request.find("/getMe") != std::string::npos ||
                    request.find("/getUpdates") != std::string::npos)
            << request;
    leave(journey);
}

TEST(SourcesJourney, EachPollLeavesTheLastDayAsACsvFileAndExportAndImportGoRound) {
    Journey journey(polling({"UseAlternateDataSource=1", "EmscOrUsgs=0"}));
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog("50 Events imported from EMSC", 1, 30s));
    ASSERT_TRUE(soon([&] { return linesOf(journey.readFile("last24H.csv")).size() > 10; }));
    const std::string head = "UTC;Latitude;Longitude;Depth;Magnitude;Source";
    const std::vector<std::string> lastDay = linesOf(journey.readFile("last24H.csv"));
    EXPECT_EQ(lastDay.front(), head);

    journey.key("alt+f e");
    ASSERT_TRUE(journey.waitForLog("50 Events exported in DB.csv file", 1, 10s))
        << journey.activityLog();
    std::string expected = "#TREMORLEDGER CSV#\n#" + head + "\n";
    std::vector<EventRow> rows = sorted(journey.events(catalogue));
    std::reverse(rows.begin(), rows.end());
    for (const EventRow& row : rows)
        expected += row.utc + ";" + row.latitude + ";" + row.longitude + ";" + row.depth + ";" +
                    row.magnitude + ";" + row.source + "\n";
    EXPECT_EQ(journey.readFile("DB.csv"), expected + "\r\n");
    // The practice events of a day: newest first in both files.
    for (std::size_t i = 1; i + 1 < lastDay.size(); ++i)
        EXPECT_EQ(lastDay[i], linesOf(expected)[i + 1]);

    const auto import = [&](const std::string& name) {
        journey.key("alt+f i");
        journey.waitForWindow("Select Csv file...");
        journey.type(journey.file(name));
        journey.key("Return");
        journey.waitForNoWindow("Select Csv file...");
    };
    import("DB.csv");
    EXPECT_TRUE(journey.waitForLog("0 Events imported from a csv file.", 1, 10s))
        << journey.activityLog();
    EXPECT_EQ(journey.events(catalogue).size(), 50u);

    std::ofstream(journey.file("two.csv"), std::ios::binary)
        << "# from a colleague\n2014-03-07 01:02:03.450;42.7;13.2;10;M 2.5;FRIEND\n"
           "2014-03-08 01:02:03.450;-42.75;-13.25;0.5;3;FRIEND\n";
    import("two.csv");
    EXPECT_TRUE(journey.waitForLog("2 Events imported from a csv file.", 1, 10s));
    std::vector<EventRow> all = rows;
    all.push_back({"2014-03-07 01:02:03.450", "42.7", "13.2", "10.0", "2.5", "FRIEND"});
    all.push_back({"2014-03-08 01:02:03.450", "-42.75", "-13.25", "0.5", "3.0", "FRIEND"});
    EXPECT_EQ(sorted(journey.events(catalogue)), sorted(all));

    std::ofstream(journey.file("one.csv"), std::ios::binary) << "no line feed";
    import("one.csv");
    EXPECT_TRUE(journey.waitForLog("Impossible data import from this CSV.", 1, 10s));
    leave(journey);
}

// A box of which not only a part of the title counts: the main window is about a database, too.
bool hasWindow(Journey& journey, const std::string& title) {
    return std::ranges::count(journey.windowTitles(), title) > 0;
}

TEST(SourcesJourney, AnOldCatalogueIsUpgradedBesideItsCopy) {
    Journey journey(polling({"UseAlternateDataSource=1", "EmscOrUsgs=0"}));
    journey.startWithNewCatalogue("sources");
    journey.key("F5");
    ASSERT_TRUE(journey.waitForLog("50 Events imported from EMSC", 1, 30s));
    leave(journey);
    journey.change(catalogue, "update Version set Database='TREMORLEDGER_0.9.0'");
    const std::vector<EventRow> rows = sorted(journey.events(catalogue));

    journey.startProgram();
    journey.waitForWindow("Database outdated...");
    journey.key("alt+y");
    ASSERT_TRUE(soon([&] { return hasWindow(journey, "Database"); }));
    journey.key("Return");
    journey.waitForWindow(" - Database: sources.sqlite");
    EXPECT_FALSE(hasWindow(journey, "Database"));
    EXPECT_EQ(sorted(journey.events(catalogue)), rows);
    EXPECT_EQ(journey.queryOne(catalogue, "select Database from Version"), "TREMORLEDGER_1.0.0");
    const std::string backup = std::string(catalogue) + "_backup";
    EXPECT_EQ(sorted(journey.events(backup)), rows);
    EXPECT_EQ(journey.queryOne(backup, "select Database from Version"), "TREMORLEDGER_0.9.0");

    // The new file goes on: nothing that it holds comes in again.
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("0 Events imported from EMSC", 1, 30s));
    leave(journey);
}

} // namespace
} // namespace tremor::journeys
