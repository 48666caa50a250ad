#include "core/files.h"
#include "journeys/chromium.h"
#include "journeys/map_journey.h"
#include "map/map_page.h"
#include "map/page_values.h"
#include "support/fakes.h"
#include "support/loopback_server.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <set>
#include <thread>

// What visitors of the operator's web site see.
namespace tremor::journeys {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using tremor::testing::LoopbackAnswer;
using tremor::testing::LoopbackRequest;
using tremor::testing::LoopbackServer;
using tremor::testing::TestCertificate;

constexpr char siteFolder[] = "/TremorLedger/";

// The media type by which web servers know a file.
std::string mediaType(const std::string& name) {
    const std::string ending = fs::path(name).extension().string();
    if (ending == ".html")
        return "text/html; charset=utf-8";
    if (ending == ".css")
        return "text/css";
    return ending == ".js" ? "text/javascript" : "text/plain";
}

std::string withoutQuery(const std::string& target) {
    return target.substr(0, target.find('?'));
}

LoopbackAnswer page(const std::string& name, std::string body) {
    return {.body = std::move(body), .headers = {{"Content-Type", mediaType(name)}}};
}

// The web pages on a site, with stand-ins for all that they ask of the world: the maps API, which
// is the maps engine here, the JSON proxy, and the files of the site. What no part of the program
// writes, the scripts beside the page, are there but empty.
class WebPages : public ::testing::Test {
  protected:
    void serve(std::string text) {
        page_ = std::move(text);
        server_ = std::make_unique<LoopbackServer>(
            [this](const LoopbackRequest& request) { return answer(request); }, certificate_);
        std::string hosts;
        for (const char* name : {"web.example", "proxy.example", "maps.googleapis.com"})
            hosts += fmt::format("MAP {} 127.0.0.1:{},", name, server_->port());
        browser_ = std::make_unique<Chromium>(hosts);
        browser_->open("https://web.example/TremorLedger/TremorLedgerWEB.html");
    }

    // "web.example/TremorLedger/default.css" for each request, without queries and favourite icons.
    std::set<std::string> requested() const {
        std::set<std::string> all;
        for (const LoopbackRequest& request : server_->requests())
            if (request.target != "/favicon.ico")
                all.insert(request.header("Host") + withoutQuery(request.target));
        return all;
    }

    static PageValues values(std::int32_t saveInCsv) {
        AppSettings settings;
        settings.CenterLatitude = 42;
        settings.CenterLongitude = 12;
        settings.Zoom = 5;
        settings.SaveInKml = 1;
        settings.SaveInCsv = saveInCsv;
        Hosts hosts;
        hosts.WebHost = "https://web.example";
        hosts.JsonProxy = "https://proxy.example";
        return pageValues(settings, hosts, NumberLocale::point(), "");
    }

    std::unique_ptr<Chromium> browser_;

  private:
    LoopbackAnswer answer(const LoopbackRequest& request) const {
        const std::string path = withoutQuery(request.target);
        if (path == "/TremorLedger/TremorLedgerWEB.html")
            return page(path, page_);
        if (path == "/TremorLedger/default.css")
            return page(path, defaultCss());
        if (path == "/maps/api/js")
            return page(".js", readWholeFile(TREMOR_MAPS_ENGINE));
        if (path.ends_with(".min.js"))
            return page(path, "");
        return {.status = 404};
    }

    tremor::testing::TemporaryFolder folder_;
    TestCertificate certificate_{folder_.path()};
    std::string page_;
    std::unique_ptr<LoopbackServer> server_;
};

TEST_F(WebPages, TheKmlPageIsRefusedForItsLastBraceAndShowsNothing) {
    serve(mapPage({.bWebPage = true}, values(0)));
    ASSERT_TRUE(browser_->soon("typeof google === 'object'"));
    ASSERT_EQ(browser_->errors().size(), 1u);
    EXPECT_EQ(browser_->errors()[0], "SyntaxError: Unexpected token '}'");
    EXPECT_EQ(browser_->evaluate("typeof initialize"), "undefined");
    EXPECT_EQ(browser_->evaluate("document.getElementById('map_canvas').childElementCount"), "0");
    EXPECT_EQ(requested(), (std::set<std::string>{"maps.googleapis.com/maps/api/js",
                                                  "web.example/TremorLedger/TremorLedgerWEB.html",
                                                  "web.example/TremorLedger/default.css"}));
}

TEST_F(WebPages, TheCsvPageStopsAtTheMissingLegendAndNeverAsksForEvents) {
    serve(csvWebPage(values(1)));
    ASSERT_TRUE(browser_->soon("document.querySelector('#map_canvas .leaflet-pane') !== null"));
    // Its timer asks for the events every ten seconds, if ever.
    std::this_thread::sleep_for(12s);
    EXPECT_EQ(browser_->evaluate("typeof document.getElementById('getDataMap').onclick"), "object");
    ASSERT_EQ(browser_->errors().size(), 1u);
    EXPECT_TRUE(browser_->errors()[0].starts_with(
        "TypeError: Cannot set properties of null (setting 'onclick')"))
        << browser_->errors()[0];
    EXPECT_EQ(requested(), (std::set<std::string>{"maps.googleapis.com/maps/api/js",
                                                  "web.example/TremorLedger/LegendZ.kmz.txt",
                                                  "web.example/TremorLedger/OrvaLogo.kmz.txt",
                                                  "web.example/TremorLedger/TremorLedgerWEB.html",
                                                  "web.example/TremorLedger/default.css",
                                                  "web.example/TremorLedger/jquery-2.1.1.min.js",
                                                  "web.example/TremorLedger/papaparse.min.js"}));
}

// A static web server in front of the program's folder, which publishes what the program wrote and
// nothing else.
class LivePageOnTheWeb : public MapJourney {
  protected:
    static constexpr std::uint32_t land = 0xF6F2E9;
    static constexpr std::uint32_t sea = 0xD3E2EC;

    LivePageOnTheWeb() : MapJourney({"SaveInKml=1", "SaveInCsv=1", "UseLocalSource=1"}) {}

    // The program shows its map and has polled once.
    void SetUp() override {
        fs::create_directory(journey_.file("none"));
        journey_.addSetting("LocalSourcePath=" + journey_.file("none"));
        showFirstView();
        poll();
        ASSERT_TRUE(soon([&] {
            return rowsOfCsv() == events().size() && FileExists(journey_.file("tremorledger.kml"));
        })) << journey_.activityLog();
    }

    void poll() { journey_.key("F5"); }
    std::size_t rowsOfCsv() const {
        const std::string text =
            FileExists(journey_.file("last24H.csv")) ? journey_.readFile("last24H.csv") : "";
        const auto lines = std::count(text.begin(), text.end(), '\n');
        return lines < 2 ? 0 : static_cast<std::size_t>(lines) - 2; // head and last line end
    }

    void openPage(const BrowserWindow& window) {
        browser_.setWindow(window);
        browser_.open(server_.url(std::string(siteFolder) + "TremorLedgerLive.html?refresh=1"));
        ASSERT_TRUE(rowsAre(events().size())) << browser_.evaluate("document.body.innerText");
        ASSERT_TRUE(browser_.soon("document.querySelectorAll('.leaflet-tile-loaded').length > 0"));
    }
    bool rowsAre(std::size_t count) {
        return browser_.soon(
            fmt::format("document.querySelectorAll('#events .event').length === {}", count));
    }
    std::string textOf(const std::string& selector) {
        return browser_.evaluate(
            fmt::format("document.querySelector(`{}`).innerText.replace(/\\s+/g, ' ')", selector));
    }
    static long count(const QImage& picture, std::uint32_t colour) {
        long found = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                found += (picture.pixel(x, y) & 0xFFFFFFU) == colour ? 1 : 0;
        return found;
    }
    // Markers are a little transparent, above land and above the sea.
    static QPoint marker(const QImage& picture, const QRect& where, QRgb colour) {
        long pixels = 0;
        QPointF sum;
        for (int y = where.top(); y <= where.bottom(); ++y)
            for (int x = where.left(); x <= where.right(); ++x)
                if (isNear(picture.pixel(x, y), colour)) {
                    ++pixels;
                    sum += QPointF(x, y);
                }
        return pixels > 100 ? (sum / static_cast<double>(pixels)).toPoint() : QPoint();
    }
    static bool isNear(QRgb pixel, QRgb colour) {
        constexpr int most = 30;
        return std::abs(qRed(pixel) - qRed(colour)) < most &&
               std::abs(qGreen(pixel) - qGreen(colour)) < most &&
               std::abs(qBlue(pixel) - qBlue(colour)) < most;
    }
    // The map's part of the window without the legend and the controls.
    QRect mapRectangle() {
        browser_.evaluate("document.getElementById('legend').open = false");
        const auto side = [&](const char* name) {
            return static_cast<int>(std::stod(browser_.evaluate(
                fmt::format("document.getElementById('map').getBoundingClientRect().{}", name))));
        };
        return {side("x"), side("y"), side("width"), side("height")};
    }
    // Each event of the catalogue stands on the map in its colour.
    void expectAllMarkers() {
        const QRect map = mapRectangle();
        const QImage picture = browser_.picture();
        for (const KnownEvent& event : events())
            EXPECT_FALSE(marker(picture, map, event.colour).isNull())
                << "no marker of depth " << event.depth;
        EXPECT_GT(count(picture, land), 5000);
        EXPECT_GT(count(picture, sea), 5000);
    }

    std::atomic<bool> csvIsThere_ = true;
    LoopbackServer server_{[this](const LoopbackRequest& request) {
        const std::string path = withoutQuery(request.target);
        const std::set<std::string> published{"TremorLedgerLive.html",
                                              "TremorLedgerLive/maps_engine.js",
                                              "TremorLedgerLive/live_page.css",
                                              "TremorLedgerLive/live_page.js",
                                              "last24H.csv",
                                              "tremorledger.kml"};
        const std::string name = path.substr(std::min(path.size(), sizeof(siteFolder) - 1));
        if (!published.contains(name) || (name == "last24H.csv" && !csvIsThere_) ||
            !FileExists(journey_.file(name)))
            return LoopbackAnswer{.status = 404};
        LoopbackAnswer answer = page(name, journey_.readFile(name));
        if (name == "last24H.csv")
            answer.headers.emplace_back("Last-Modified", "Thu, 14 Jan 2021 05:45:26 GMT");
        return answer;
    }};
    Chromium browser_;
};

TEST_F(LivePageOnTheWeb, ShowsTheProgramsEventsInAListAndOnItsOwnMap) {
    openPage({});
    EXPECT_EQ(textOf("#summary"), "5 events, strongest magnitude 4.0");
    const std::string first = textOf("#events li:first-child");
    EXPECT_NE(first.find("41.00° N, 15.00° E"), std::string::npos) << first;
    EXPECT_NE(first.find("120 km deep"), std::string::npos) << first;
    EXPECT_NE(first.find(timeAgo(30).substr(11, 3)), std::string::npos) << first;
    expectAllMarkers();
    // The host says when it was written, and that is long ago.
    EXPECT_EQ(textOf("#updated"), "Updated 14 Jan 05:45:26 UTC");
    EXPECT_NE(textOf("#notice").find("has not been renewed"), std::string::npos);
    EXPECT_EQ(browser_.errors(), std::vector<std::string>{});
    for (const LoopbackRequest& request : server_.requests())
        EXPECT_TRUE(request.target.starts_with(siteFolder)) << request.target;
}

TEST_F(LivePageOnTheWeb, FitsAPhoneAndIsDarkForWhoPrefersItSo) {
    openPage({.width = 390, .height = 844, .phone = true});
    EXPECT_EQ(browser_.evaluate("document.documentElement.scrollWidth"), "390");
    const QRect map = mapRectangle();
    EXPECT_EQ(map.width(), 390);
    EXPECT_GT(map.height(), 250);
    EXPECT_LT(map.bottom(), 500);
    expectAllMarkers();

    openPage({.dark = true});
    EXPECT_LT(qGray(browser_.picture().pixel(1270, 10)), 60);
    EXPECT_EQ(count(browser_.picture(), land), 0);
}

TEST_F(LivePageOnTheWeb, ARowChoosesItsMarkerAndAMarkerItsRow) {
    openPage({});
    const QRect map = mapRectangle();
    const std::string chosen = "[...document.querySelectorAll('.event')].findIndex("
                               "(row) => row.getAttribute('aria-pressed') === 'true')";
    EXPECT_EQ(browser_.evaluate(chosen), "-1");
    constexpr std::uint32_t ring = 0xD6006C;
    EXPECT_EQ(count(browser_.picture(), ring), 0);

    // By keyboard, as by a tap: the map moves to the event.
    browser_.evaluate("document.querySelectorAll('.event')[3].click()");
    ASSERT_TRUE(browser_.soon(chosen + " === 3"));
    QImage picture;
    ASSERT_TRUE(soon([&] {
        picture = browser_.picture();
        return count(picture, ring) > 100;
    }));
    const QPoint fourth = marker(picture, map, events()[3].colour);
    EXPECT_NEAR(fourth.x(), map.center().x(), 3);
    EXPECT_NEAR(fourth.y(), map.center().y(), 3);

    const QPoint third = marker(picture, map, events()[2].colour);
    ASSERT_FALSE(third.isNull());
    browser_.click(third.x(), third.y());
    EXPECT_TRUE(browser_.soon(chosen + " === 2"));
}

TEST_F(LivePageOnTheWeb, FollowsTheFilesAndKeepsViewAndChoice) {
    openPage({});
    browser_.evaluate("document.querySelectorAll('.event')[3].click()");
    const std::string chosenPlace = "[aria-pressed=true] .place";
    const std::string place = textOf(chosenPlace);
    const QRect map = mapRectangle();
    const QPoint before = marker(browser_.picture(), map, events()[1].colour);

    // Text from outside stays text, whatever it looks like.
    addRow({timeAgo(1), "37", "15", "70", "5.1", "<img src=x onerror=document.title=1>"});
    poll();
    ASSERT_TRUE(rowsAre(events().size() + 1)) << journey_.activityLog();
    EXPECT_EQ(textOf("#summary"), "6 events, strongest magnitude 5.1");
    EXPECT_EQ(textOf("#events li:first-child .source"), "<img src=x onerror=document.title=1>");
    EXPECT_EQ(textOf(chosenPlace), place);
    EXPECT_EQ(marker(browser_.picture(), map, events()[1].colour), before);

    // What cannot be read is said, and what was there stays.
    csvIsThere_ = false;
    EXPECT_TRUE(
        browser_.soon("document.getElementById('notice').textContent.includes('cannot be read')"));
    EXPECT_TRUE(rowsAre(events().size() + 1));
    csvIsThere_ = true;
    EXPECT_TRUE(
        browser_.soon("!document.getElementById('notice').textContent.includes('cannot be read')"));
    EXPECT_EQ(browser_.errors(), std::vector<std::string>{});
}

TEST_F(LivePageOnTheWeb, ShowsTheKmlFileWithoutTheListAndBesideIt) {
    csvIsThere_ = false;
    openPage({});
    EXPECT_EQ(textOf("#list-title"), "Operator’s map");
    EXPECT_NE(textOf("#events li:first-child").find("120 km deep"), std::string::npos);
    EXPECT_EQ(browser_.evaluate("document.getElementById('choice').hidden"), "true");
    expectAllMarkers();

    csvIsThere_ = true;
    ASSERT_TRUE(browser_.soon("!document.getElementById('choice').hidden"));
    EXPECT_EQ(textOf("#list-title"), "Last 24 hours");
    browser_.evaluate("document.querySelector('[value=kml]').click()");
    EXPECT_EQ(textOf("#list-title"), "Operator’s map");
    EXPECT_TRUE(rowsAre(events().size()));
    EXPECT_EQ(browser_.errors(), std::vector<std::string>{});
}

TEST_F(LivePageOnTheWeb, SaysWhyItShowsNothingWhenOpenedFromAFolder) {
    browser_.setWindow({});
    browser_.open("file://" + journey_.file("TremorLedgerLive.html"));
    ASSERT_TRUE(browser_.soon("document.querySelector('.leaflet-tile-loaded') !== null"));
    EXPECT_NE(textOf("#notice").find("opened from a folder"), std::string::npos);
    EXPECT_GT(count(browser_.picture(), land), 5000);
    EXPECT_EQ(browser_.errors(), std::vector<std::string>{});
}

} // namespace
} // namespace tremor::journeys
