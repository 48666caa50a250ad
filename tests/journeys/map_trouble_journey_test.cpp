#include "journeys/map_journey.h"
#include "support/raw_server.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace tremor::journeys {
namespace {

using testing::RawConnection;
using testing::RawServer;
using testing::unusedPort;

const std::string noScript =
    "The map of TremorLedger.html cannot be shown: its script could not be loaded.";
const std::string tooLate = "TremorLedger.html did not come in time.";
const std::string noWebHost =
    "OrvaLogo.kmz.txt does not come from the web host; the program's own overlays are shown.";

std::string loopback(int port) {
    return "http://127.0.0.1:" + std::to_string(port);
}

// INGV is polled, as in an ordinary room.
class MapTrouble : public MapJourney {
  protected:
    MapTrouble() : MapJourney({"UsePrimaryDataSource=1", "IsideOrIngv=1"}) {}

    // The program with the public maps script at an address.
    void startWithMapsFrom(const std::string& address) {
        journey_.addHost("MapsEngine=online");
        journey_.addHost("MapsApi=" + address);
        startProgram();
    }

    // What must go on without a map.
    void expectUsable() {
        EXPECT_TRUE(menuOpens());
        findSurfaces();
        EXPECT_GE(rows().size(), events().size());
        const std::string before = countInCatalogue();
        journey_.key("F5");
        EXPECT_TRUE(journey_.waitForLog(" Events imported from INGV", 1, longEnough))
            << journey_.activityLog();
        EXPECT_NE(countInCatalogue(), before);
        // The import may still be filling the table, which takes the selection away.
        EXPECT_TRUE(soon([&] {
            clickRow(0);
            const std::vector<Row> now = rows();
            return !now.empty() && now[0].selected;
        }));
        EXPECT_TRUE(menuOpens());
        journey_.key("alt+f x");
        EXPECT_EQ(journey_.waitForExit(longEnough), 0);
    }
    std::string countInCatalogue() {
        return journey_.queryOne("catalogue.sqlite", "select count(*) from Events");
    }
};

TEST_F(MapTrouble, AMapsScriptThatIsNotThereIsLoggedAndTheWindowIsUsable) {
    const RawServer refusing([](const RawConnection& connection) {
        connection.readHead();
        connection.send("HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    });
    startWithMapsFrom(loopback(refusing.port()));
    EXPECT_TRUE(journey_.waitForLog(noScript, 1, longEnough)) << journey_.activityLog();
    expectUsable();
}

TEST_F(MapTrouble, AMapsHostThatIsAwayIsLoggedAndTheWindowIsUsable) {
    startWithMapsFrom(loopback(unusedPort()));
    EXPECT_TRUE(journey_.waitForLog(noScript, 1, longEnough)) << journey_.activityLog();
    expectUsable();
}

TEST_F(MapTrouble, AMapsHostThatNeverAnswersIsLoggedAndTheWindowIsUsableMeanwhile) {
    const RawServer silent([](const RawConnection& connection) { connection.stall(); });
    startWithMapsFrom(loopback(silent.port()));
    EXPECT_TRUE(menuOpens());
    EXPECT_TRUE(journey_.waitForLog(tooLate, 1, longEnough)) << journey_.activityLog();
    expectUsable();
}

TEST_F(MapTrouble, TheProgramEndsAtOnceWhileItsMapsHostIsSilent) {
    const RawServer silent([](const RawConnection& connection) { connection.stall(); });
    startWithMapsFrom(loopback(silent.port()));
    journey_.key("alt+f x");
    EXPECT_EQ(journey_.waitForExit(std::chrono::seconds(20)), 0);
}

TEST_F(MapTrouble, AWebHostThatIsAwayIsLoggedAndTheOverlaysAreTheProgramsOwn) {
    journey_.addHost("WebHost=" + loopback(unusedPort()));
    showFirstView();
    EXPECT_TRUE(journey_.waitForLog(noWebHost, 1, longEnough)) << journey_.activityLog();
    journey_.key("alt+g");
    constexpr std::uint32_t legendOnly = 0x9933FF;
    EXPECT_TRUE(soon([&] { return look().count(map_, legendOnly) > 50; }));
    expectUsable();
}

// Events that somebody wrote to harm the page.
class HostileEvents : public MapJourney {
  protected:
    HostileEvents() : MapJourney({"UsePrimaryDataSource=0"}) {
        // Nobody answers the box for an event that cannot be compared.
        journey_.addHost("UnattendedAnswerSeconds=1");
    }
};

TEST_F(HostileEvents, InAllColumnsLeaveThePageAndTheOtherMarkersAlone) {
    const std::string paint = "document.body.innerHTML='<p style=\"position:fixed;inset:0;"
                              "background:#123456\">'";
    const std::vector<std::string> values{"'",
                                          "a'b\"c\\",
                                          "<script>" + paint + ";alert(1)</script>",
                                          "</script><script>" + paint + "</script>",
                                          "<img src=x onerror=\"" + paint + "\">",
                                          "');" + paint + ";('",
                                          "\");" + paint + ";(\"",
                                          "${" + paint + "}",
                                          "one\r\ntwo",
                                          "",
                                          "NaN",
                                          "Infinity",
                                          "1e999",
                                          "\xFF\xFE"};
    const int columns = 6;
    for (const std::string& value : values) {
        for (int column = 0; column < columns; ++column) {
            // Behind the known ones in time, and out of their way: the map ends before.
            std::vector<std::string> row{timeAgo(300), "60", "12", "4", "3", "test"};
            if (column == 0)
                row[0] += value; // still in range
            else
                row[static_cast<std::size_t>(column)] = value;
            addRow(row);
        }
    }
    constexpr std::uint32_t painted = 0x123456;
    showFirstView();
    for (const char* key : {"alt+g", "alt+u", "ctrl+F5"}) {
        journey_.key(key);
        EXPECT_TRUE(allStandAt(firstView)) << key;
        EXPECT_EQ(look().count(map_, painted), 0) << key;
    }
    EXPECT_TRUE(soon([&] { return journey_.windowTitles().size() == 1; }));
    // The page still answers: a marker chosen in the table comes to the middle.
    ASSERT_TRUE(soon([&] { return rows().size() > events().size(); }));
    // The last reload may still take the choice away.
    EXPECT_TRUE(soon([&] {
        clickRow(1);
        return waitUntil(
            [&] {
                return missingFrom({events()[1].place, 4}).empty();
            },
            std::chrono::seconds(5));
    })) << journey_.activityLog();
    journey_.key("alt+f x");
    EXPECT_EQ(journey_.waitForExit(longEnough), 0);
}

} // namespace
} // namespace tremor::journeys
