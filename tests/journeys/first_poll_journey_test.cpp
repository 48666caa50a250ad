#include "journeys/journey.h"
#include "journeys/source_rows.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

std::vector<std::string> pollingIngv() {
    return {"[SOURCE]",
            "UsePrimaryDataSource=1",
            "IsideOrIngv=1",
            "PrimaryPollEvery=5",
            "AlternatePollEvery=5",
            "LocalPollEvery=5",
            "PrimaryLastNHours=24",
            "StartupLogo=1"};
}

std::vector<EventRow> sorted(std::vector<EventRow> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

// The document that the service gave for the program's last request.
std::string servedDocument(Journey& journey) {
    return journey.service("/practice/last");
}

TEST(FirstPollJourney, FromAnEmptyFolderToACatalogueThatEqualsTheServedDocument) {
    Journey journey(pollingIngv());
    journey.startProgram();

    // Without a catalogue the program says so and waits for one.
    journey.waitForWindow("Database error...");
    journey.key("Return");
    journey.waitForWindow("TREMORLEDGER 1.");
    EXPECT_TRUE(journey.waitForLog("Tremorledger is running...", 1, 10s));
    EXPECT_TRUE(journey.waitForLog("to update your Database.", 1, 10s));

    // A name with a blank is refused; a good one makes the file.
    journey.key("alt+f c");
    journey.waitForWindow("=TREMORLEDGER");
    journey.type("my catalogue");
    journey.key("Return");
    journey.waitForWindow("Error...");
    journey.key("Return");
    journey.waitForNoWindow("Error...");
    EXPECT_TRUE(journey.waitForLog("Cannot create a Database with special characters.", 1, 10s));
    journey.waitForWindow("TREMORLEDGER 1.");
    journey.key("alt+f c");
    journey.waitForWindow("=TREMORLEDGER");
    journey.type("practice");
    journey.key("Return");
    journey.waitForWindow(" - Database: practice.sqlite");
    EXPECT_TRUE(journey.waitForLog("Database practice created.", 1, 10s));
    EXPECT_EQ(journey.queryOne("practice.sqlite", "select Database from Version"),
              "TREMORLEDGER_1.0.0");
    EXPECT_TRUE(journey.events("practice.sqlite").empty());

    // The first poll: every served event, and nothing else.
    journey.key("F5");
    const bool imported = journey.waitForLog(" Events imported from INGV", 1, 30s);
    ASSERT_TRUE(imported) << journey.activityLog();
    const std::vector<EventRow> served = rowsOfDocument(servedDocument(journey));
    ASSERT_GT(served.size(), 0u);
    EXPECT_EQ(sorted(journey.events("practice.sqlite")), sorted(served));
    EXPECT_TRUE(
        journey.waitForLog(std::to_string(served.size()) + " Events imported from INGV", 1, 5s));

    // The second poll finds nothing new, a third one just the added event.
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("0 Events imported from INGV", 1, 30s));
    journey.service("/practice/add");
    journey.key("F5");
    EXPECT_TRUE(journey.waitForLog("1 Events imported from INGV", 1, 30s));
    EXPECT_EQ(sorted(journey.events("practice.sqlite")),
              sorted(rowsOfDocument(servedDocument(journey))));
    EXPECT_EQ(journey.events("practice.sqlite").size(), served.size() + 1);

    // Leaving by the menu writes the settings for the owner's eyes only.
    journey.key("alt+f x");
    EXPECT_EQ(journey.waitForExit(20s), 0);
    const auto settings = journey.settings();
    EXPECT_EQ(settings.at("Path"), journey.file("practice.sqlite"));
    EXPECT_EQ(settings.at("UsePrimaryDataSource"), "1");
    EXPECT_EQ(settings.at("PrimaryPollEvery"), "5");
    struct stat info {};
    ASSERT_EQ(stat(journey.file("settings.ini").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);

    // The next start opens the same catalogue without a question.
    journey.startProgram();
    journey.waitForWindow(" - Database: practice.sqlite");
    EXPECT_EQ(journey.windowTitles().size(), 1u);
    journey.key("alt+f x");
    EXPECT_EQ(journey.waitForExit(20s), 0);
}

} // namespace
} // namespace tremor::journeys
