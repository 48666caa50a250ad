#include "journeys/map_journey.h"
#include "journeys/source_rows.h"
#include "support/texts.h"

#include <algorithm>
#include <thread>

// The ISIDE site in the program's hidden browser, against the practice site.
namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr char failed[] = "ISIDE Synchronization failed";
constexpr char imported[] = " Events imported from ISIDE";
constexpr char fromIside[] = "select count(*) from Events where Source='ISIDE'";

std::vector<std::string> pollingIside(const std::string& password) {
    return {"UsePrimaryDataSource=1", "IsideOrIngv=0", "PrimaryLastNHours=24",
            "PrimarySourceUsername=operator@example.org", "PrimarySourcePassword=" + password};
}

std::vector<EventRow> sortedRows(const std::string& document) {
    std::vector<EventRow> rows = rowsOfIsideExport(document);
    std::sort(rows.begin(), rows.end());
    return rows;
}

class IsideJourney : public MapJourney {
  protected:
    explicit IsideJourney(const std::string& password = "secret")
        : MapJourney(pollingIside(password)) {}

    std::vector<EventRow> isideRows() const {
        std::vector<EventRow> rows = journey_.events("catalogue.sqlite");
        std::erase_if(rows, [](const EventRow& row) { return row.source != "ISIDE"; });
        std::sort(rows.begin(), rows.end());
        return rows;
    }
    void switchFault(const std::string& kind) {
        ASSERT_EQ(journey_.service("/practice/iside/fault?kind=" + kind), "ok\n");
    }
    std::ptrdiff_t requests(const std::string& line) {
        const std::vector<std::string> log = testing::linesOf(journey_.service("/practice/log"));
        return std::count(log.begin(), log.end(), line);
    }
    void leave() {
        journey_.key("alt+f x");
        EXPECT_EQ(journey_.waitForExit(20s), 0);
    }
};

TEST_F(IsideJourney, ShowsTheSitesEventsInTheTableAndLogsInOnlyOnce) {
    showFirstView();
    const std::size_t before = rows().size();
    journey_.key("F5");
    ASSERT_TRUE(journey_.waitForLog(imported, 1, 60s)) << journey_.activityLog();
    const std::vector<EventRow> served = sortedRows(journey_.service("/practice/iside"));
    ASSERT_GT(served.size(), 0u);
    EXPECT_EQ(isideRows(), served);
    EXPECT_TRUE(soon([&] { return rows().size() > before; }));

    journey_.service("/practice/add?source=iside");
    journey_.key("F5");
    ASSERT_TRUE(journey_.waitForLog(std::string("1") + imported, 1, 60s)) << journey_.activityLog();
    EXPECT_EQ(isideRows().size(), served.size() + 1);
    EXPECT_EQ(requests("POST /iside/standard/login.jsp"), 1);
    EXPECT_EQ(requests("GET /iside/download?export=1&type=csv&data=EVENTS"), 2);
    // The session is nowhere on disk.
    EXPECT_EQ(journey_.readFile("settings.ini").find("JSESSIONID"), std::string::npos);
    leave();
}

class WrongPassword : public IsideJourney {
  protected:
    WrongPassword() : IsideJourney("Secret") {}
};

TEST_F(WrongPassword, EndsInTheFailureLineAndTheProgramGoesOn) {
    showFirstView();
    journey_.key("F5");
    ASSERT_TRUE(journey_.waitForLog(failed, 1, 60s)) << journey_.activityLog();
    EXPECT_TRUE(menuOpens());
    journey_.key("F5");
    EXPECT_TRUE(journey_.waitForLog(failed, 2, 60s)) << journey_.activityLog();
    EXPECT_EQ(journey_.queryOne("catalogue.sqlite", fromIside), "0");
    leave();
}

TEST_F(IsideJourney, AFailedExportEndsInTheFailureLineAndTheNextPollHeals) {
    showFirstView();
    for (const char* kind : {"export-dropped", "expired"}) {
        switchFault(kind);
        journey_.key("F5");
        ASSERT_TRUE(journey_.waitForLog(failed, kind == std::string("expired") ? 2 : 1, 60s))
            << kind << journey_.activityLog();
    }
    EXPECT_EQ(journey_.queryOne("catalogue.sqlite", fromIside), "0");
    switchFault("none");
    journey_.key("F5");
    EXPECT_TRUE(journey_.waitForLog(imported, 1, 60s)) << journey_.activityLog();
    EXPECT_EQ(isideRows(), sortedRows(journey_.service("/practice/iside")));
    EXPECT_EQ(requests("POST /iside/standard/login.jsp"), 2);
    leave();
}

TEST_F(IsideJourney, AnElementThatTheSiteHasRemovedIsARuntimeErrorThatCanBeIgnored) {
    showFirstView();
    switchFault("form-changed");
    journey_.key("F5");
    journey_.waitForWindow("Runtime error", 60);
    journey_.key("alt+i");
    ASSERT_TRUE(journey_.waitForLog(imported, 1, 60s)) << journey_.activityLog();
    // The form's own limit stays in force.
    EXPECT_EQ(
        journey_.queryOne("catalogue.sqlite", std::string(fromIside) + " and Magnitude < 2.5"),
        "0");
    leave();
}

class IsideClosing : public IsideJourney, public ::testing::WithParamInterface<const char*> {};

TEST_P(IsideClosing, TheProgramEndsAtOnceInAWaitForTheSite) {
    showFirstView();
    switchFault(GetParam());
    journey_.key("F5");
    ASSERT_TRUE(soon([&] { return requests("GET /iside/standard/index.jsp?page=login") > 0; }));
    std::this_thread::sleep_for(4s);
    journey_.key("alt+f x");
    EXPECT_EQ(journey_.waitForExit(14s), 0); // 16 s are left of the shorter wait
}

INSTANTIATE_TEST_SUITE_P(During, IsideClosing, ::testing::Values("login-stalls", "search-stalls"),
                         [](const auto& kind) {
                             std::string name(kind.param);
                             std::erase(name, '-');
                             return name;
                         });

} // namespace
} // namespace tremor::journeys
