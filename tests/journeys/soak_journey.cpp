#include "journeys/soak_journey.h"

#include "journeys/soak_report.h"
#include "journeys/source_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <sstream>

namespace tremor::journeys {
namespace {

using namespace std::chrono_literals;

constexpr char catalogue[] = "catalogue.sqlite";
constexpr char setupWindow[] = "Setup";

// A failed transfer holds the polls up for 60 seconds, one that stands still for 60 more.
constexpr auto longestPoll = 300s;

// A document of garbage costs no time, so every other fault is that one.
constexpr std::array faults{"garbage", "cut", "garbage", "404",  "garbage", "stall",
                            "garbage", "204", "garbage", "slow", "garbage", "500"};
constexpr std::array isideFaults{"export-dropped", "none",         "expired",
                                 "none",           "export-empty", "none"};
constexpr char isideUser[] = "operator@example.org";
constexpr char isidePassword[] = "secret";

// The OK button of the Setup window, from its lower right corner.
constexpr int okLeft = 138;
constexpr int okUp = 24;

std::vector<std::string> settings() {
    return {"PrimaryPollEvery=1",   "AlternatePollEvery=1", "LocalPollEvery=1",
            "UseLocalSource=1",     "SeisCompOrLIVELOC=0",  "LocalSourcePath=seiscomp/",
            "SaveInKml=1",          "SaveInCsv=1",          "LastEventMapZoomLevel=8",
            "DefaultMapZoomLevel=4"};
}

int countOf(const std::string& text, const std::string& what) {
    int count = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

} // namespace

SoakJourney::SoakJourney()
    : NotificationJourney(
          settings(), {"seiscomp", "liveloc"},
          {"--every", "180", "--speed", "20", "--seed",
           fmt::format("{:.0f}", numberOfVariable("TREMOR_SOAK_SEED", defaultSeed))}),
      random_(static_cast<std::mt19937::result_type>(
          numberOfVariable("TREMOR_SOAK_SEED", defaultSeed))) {
    journey_.change(catalogue, "insert into Workspace values ('Italy', 42, 12.5, 5, 35, 6, 47.5, "
                               "19, 0, 10, 0, 1000)");
    expected_.set("test", journey_.events(catalogue));
}

int SoakJourney::below(int bound) {
    return std::uniform_int_distribution<int>(0, bound - 1)(random_);
}

void SoakJourney::openAllWorkspaces() {
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+w");
    journey_.key("o");
    for (const char* name : {"World", "Italy"})
        journey_.waitForWindow(std::string("=Tremorledger ") + name, 60);
    journey_.waitForWindow(mainWindow, 60);
}

void SoakJourney::choose(const SourceChoice& choice) {
    const std::map<std::string, std::string> wanted{
        {"IsideOrIngv", choice.iside ? "0" : "1"},
        {"EmscOrUsgs", choice.usgs ? "1" : "0"},
        {"SeisCompOrLIVELOC", choice.seisan ? "1" : "0"},
        {"LocalSourcePath", choice.seisan ? "liveloc" : "seiscomp/"}};
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("alt+f u");
    journey_.waitForWindow(setupWindow, 60);
    // From field to field. In a row of options the arrows end at its ends.
    const auto fill = [&](const std::string& text) {
        journey_.key("Tab ctrl+a");
        journey_.type(text);
    };
    journey_.key(choice.seisan ? "Tab Tab Left space" : "Tab Tab Right space");
    fill(wanted.at("LocalSourcePath"));
    journey_.key(choice.iside ? "Tab Tab Tab Tab Right space" : "Tab Tab Tab Tab Left space");
    journey_.key("Tab"); // the address
    if (choice.iside) {  // INGV has no user
        fill(isideUser);
        fill(isidePassword);
    }
    journey_.key(choice.usgs ? "Tab Tab Tab Tab Left Left Right space"
                             : "Tab Tab Tab Tab Left Left space");
    const Rectangle window = journey_.geometry(setupWindow);
    journey_.click(window.x + window.width - okLeft, window.y + window.height - okUp);
    journey_.waitForNoWindow(setupWindow, 60);
    journey_.waitForWindow(mainWindow, 60);
    const auto isWritten = [&] {
        const auto written = journey_.settings();
        return std::all_of(wanted.begin(), wanted.end(), [&](const auto& setting) {
            const auto found = written.find(setting.first);
            return found != written.end() && found->second == setting.second;
        });
    };
    ASSERT_TRUE(soon(isWritten)) << "Setup has not taken the choice of sources";
}

void SoakJourney::workAsOperators() {
    journey_.waitForWindow(mainWindow, 60);
    switch (below(6)) {
    case 0:
        return dragTheMap();
    case 1:
        return searchAndLeave();
    case 2:
        return journey_.key("F5");
    case 3:
        EXPECT_TRUE(menuOpens());
        return;
    default:
        return clickARow();
    }
}

void SoakJourney::clickARow() {
    findSurfaces();
    const std::vector<Row> shown = rows();
    if (!shown.empty())
        journey_.click(grid_.x + grid_.width - 60,
                       shown[static_cast<std::size_t>(below(static_cast<int>(shown.size())))].y);
}

void SoakJourney::dragTheMap() {
    findSurfaces();
    const int x = map_.x + map_.width / 2;
    const int y = map_.y + map_.height / 2;
    journey_.drag(x, y, x + below(121) - 60, y + below(121) - 60);
}

void SoakJourney::searchAndLeave() {
    findSurfaces();
    openSearch();
    journey_.key("alt+s");
    ASSERT_TRUE(soon([&] {
        if (isOpen("TREMORLEDGER")) // so many events: shall they be shown?
            journey_.key("alt+y");
        return !isOpen(searchWindow);
    }));
    journey_.waitForWindow(mainWindow, 60);
    ASSERT_TRUE(soon([&] { return searchModeIsOn(); }));
    journey_.key("alt+r");
    ASSERT_TRUE(soon([&] { return !searchModeIsOn(); }));
}

void SoakJourney::breakAFeed() {
    const std::string fault = faults[nextFault_ % faults.size()];
    journey_.service("/practice/fault?count=1&kind=" + fault);
    journey_.service(std::string("/practice/iside/fault?kind=") +
                     isideFaults[nextFault_ % isideFaults.size()]);
    ++nextFault_;
    faultsSoFar_.push_back(fault);
    journey_.waitForWindow(mainWindow, 60);
    journey_.key("F5");
}

void SoakJourney::expectWhatTheSourcesSaid(const SourceChoice& choice) {
    const auto given = [this](const char* source) {
        return journey_.service(std::string("/practice/given?source=") + source);
    };
    expected_.set("ingv", rowsOfDocument(given("ingv")));
    expected_.set("usgs", rowsOfQuakeMl(given("usgs")));
    expected_.set("emsc", rowsOfEmsc());
    for (const EventRow& row : rowsOfIsideExport(journey_.service("/practice/iside")))
        isideRows_.insert(row);
    expected_.set("iside", {isideRows_.begin(), isideRows_.end()});
    if (choice.seisan)
        expected_.set("liveloc", rowsOfSeisanFolder(journey_.file("liveloc")));
    else
        expected_.set("seiscomp", rowsOfSeisCompFolder(journey_.file("seiscomp")));
}

std::vector<EventRow> SoakJourney::rowsOfEmsc() {
    std::vector<EventRow> rows = rowsOfRss(journey_.service("/practice/given?source=emsc"));
    if (!pollsAreKilled_)
        return rows;
    const std::vector<EventRow> stored = journey_.events(catalogue);
    std::set<EventRow> wanted(stored.begin(), stored.end());
    for (const EventRow& row : rowsOfRss(journey_.service("/service/rss/rss.php")))
        wanted.insert(row);
    std::erase_if(rows, [&](const EventRow& row) { return !wanted.contains(row); });
    return rows;
}

::testing::AssertionResult SoakJourney::catalogueIsWhatTheSourcesSaid(const SourceChoice& choice) {
    journey_.service("/practice/fault?kind=none");
    journey_.service("/practice/iside/fault?kind=none");
    const auto requests = [&] {
        const std::string log = journey_.service("/practice/log");
        return std::pair(
            countOf(log, choice.iside ? "GET /iside/download" : "GET /fdsnws/event/1/query"),
            countOf(log, choice.usgs ? "GET /usgs/fdsnws/" : "GET /service/rss/"));
    };
    const auto before = requests();
    std::string differences;
    const auto isTheSame = [&] {
        const auto now = requests();
        if (now.first <= before.first || now.second <= before.second) {
            differences = "the sources are not asked\n";
            return false;
        }
        try {
            expectWhatTheSourcesSaid(choice);
        } catch (const std::filesystem::filesystem_error&) {
            return false; // the program renames something in the folder of a locator
        }
        differences = expected_.differences(journey_.events(catalogue));
        return differences.empty();
    };
    const auto poll = [&] {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("F5");
        return waitUntil(isTheSame, 10s);
    };
    if (waitUntil(poll, longestPoll))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << differences << journey_.activityLog();
}

std::string SoakJourney::channelCounts() {
    return fmt::format("{} mails, {} notices, {} messages", mails(), datagrams().size(),
                       telegrams().size());
}

bool SoakJourney::channelsAgree() {
    return static_cast<bool>(sentOnEveryChannel(mails()));
}

::testing::AssertionResult SoakJourney::aNewEventIsReportedOnce(const SourceChoice& choice) {
    const int before = mails();
    const EventRow event =
        choice.iside ? rowsOfIsideExport(journey_.service("/practice/add?source=iside")).at(0)
                     : addEventOfIngv();
    int itsMails = 0;
    const auto isReported = [&] {
        itsMails = 0;
        for (int number = before + 1; number <= mails(); ++number)
            itsMails += mail_.raw(number).find("Subject: NEW EVENT " + event.utc + "\r\n") !=
                                std::string::npos
                            ? 1
                            : 0;
        return itsMails > 0 && channelsAgree();
    };
    const auto poll = [&] {
        journey_.waitForWindow(mainWindow, 60);
        journey_.key("F5");
        return waitUntil(isReported, 10s);
    };
    if (waitUntil(poll, longestPoll) && itsMails == 1)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << itsMails << " mails about " << event.utc << ", in all " << channelCounts() << "\n"
           << journey_.activityLog();
}

std::string SoakJourney::unexpectedWindows() {
    std::string unexpected;
    for (const std::string& title : journey_.windowTitles())
        if (!title.starts_with(mainWindow) && !title.starts_with("Tremorledger "))
            unexpected += "\"" + title + "\" ";
    return unexpected;
}

} // namespace tremor::journeys
