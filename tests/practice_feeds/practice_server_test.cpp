#include "core/hosts.h"
#include "ingest/emsc_source.h"
#include "ingest/internet_probe.h"
#include "ingest/usgs_source.h"
#include "practice_feeds/practice_documents.h"
#include "practice_feeds/practice_server.h"
#include "support/download_fixture.h"
#include "support/texts.h"

#include <httplib.h>

#include <chrono>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <thread>

// The server as the program meets it: through the program's own downloader.
namespace tremor::practice {
namespace {

using namespace std::chrono_literals;
using tremor::testing::brokenDownload;
using tremor::testing::contentOf;
using tremor::testing::RecordedDownload;

ServerOptions fixedOptions() {
    ServerOptions options;
    options.dataFolder = TREMOR_TEST_DATA;
    options.catalogue.fixed = true;
    return options;
}

class PracticeServerTest : public tremor::testing::DownloadTest {
  protected:
    PracticeServerTest() { limits.stallSeconds = 1; }

    void downloadEvents() {
        events.calls.clear();
        download(server.url() + "/fdsnws/event/1/query?format=text&limit=4000");
    }
    std::string get(const std::string& path, int status = 200) {
        httplib::Client client("127.0.0.1", server.port());
        const auto answer = client.Get(path);
        EXPECT_TRUE(answer) << path;
        EXPECT_EQ(answer ? answer->status : 0, status) << path;
        return answer ? answer->body : std::string();
    }

    PracticeServer server{fixedOptions()};
};

TEST_F(PracticeServerTest, ServesTheRealDocumentWithoutALengthAsTheServiceDoes) {
    downloadEvents();
    EXPECT_EQ(events.calls,
              (std::vector<std::string>{"size 0", "chunk 4", "chunk 7", "completed"}));
    EXPECT_EQ(contentOf(target), recentText());
    EXPECT_EQ(get("/practice/last"), recentText());
    EXPECT_EQ(get("/practice/served"), recentText());
}

TEST_F(PracticeServerTest, KnowsEachLineThatItHasGivenWithoutAFault) {
    EXPECT_EQ(get("/practice/given"), "");
    get("/practice/fault?kind=cut&count=1");
    downloadEvents();
    EXPECT_EQ(get("/practice/given"), "");
    downloadEvents();
    EXPECT_EQ(get("/practice/given"), recentText());
    const std::string added = get("/practice/add");
    downloadEvents();
    EXPECT_EQ(get("/practice/given?source=ingv"), recentText() + added);
    EXPECT_EQ(get("/practice/given?source=emsc"), "");
    get("/practice/given?source=nobody", 400);
}

struct FaultOutcome {
    const char* kind;
    const char* lastCall;
};

void PrintTo(const FaultOutcome& value, std::ostream* stream) {
    *stream << value.kind;
}

class PracticeFault : public PracticeServerTest,
                      public ::testing::WithParamInterface<FaultOutcome> {};

TEST_P(PracticeFault, FailsTheTransferAndIsHealedByNone) {
    EXPECT_EQ(get(std::string("/practice/fault?kind=") + GetParam().kind), "ok\n");
    downloadEvents();
    EXPECT_EQ(events.last(), GetParam().lastCall);
    EXPECT_EQ(get("/practice/last"), "");
    get("/practice/fault?kind=none");
    downloadEvents();
    EXPECT_EQ(events.last(), "completed");
    EXPECT_EQ(contentOf(target), recentText());
}

INSTANTIATE_TEST_SUITE_P(
    OfServer, PracticeFault,
    ::testing::Values(
        FaultOutcome{"404", "error: Requested file does not exists on the server."},
        FaultOutcome{"204", "error: Can't download requested file.\r\nServer error code:204."},
        FaultOutcome{"500", "error: Can't download requested file.\r\nServer error code:500."},
        FaultOutcome{"cut", brokenDownload}, FaultOutcome{"stall", brokenDownload},
        FaultOutcome{"slow", brokenDownload}),
    [](const auto& values) { return "Kind" + std::string(values.param.kind); });

TEST_F(PracticeServerTest, SendsGarbageThatIsNoDocument) {
    get("/practice/fault?kind=garbage");
    downloadEvents();
    EXPECT_EQ(events.last(), "completed");
    EXPECT_EQ(contentOf(target).size(), 3000u);
    EXPECT_EQ(contentOf(target).find('\n'), std::string::npos);
}

TEST_F(PracticeServerTest, EndsACountedFaultByItself) {
    get("/practice/fault?kind=500&count=2");
    std::vector<std::string> outcomes;
    for (int i = 0; i < 3; ++i) {
        downloadEvents();
        outcomes.push_back(events.last());
    }
    const std::string refused = "error: Can't download requested file.\r\nServer error code:500.";
    EXPECT_EQ(outcomes, (std::vector<std::string>{refused, refused, "completed"}));
}

TEST_F(PracticeServerTest, RefusesAFaultThatItDoesNotKnow) {
    for (const char* query : {"", "?kind=", "?kind=fire", "?kind=cut&count=x", "?kind=cut&count=-1",
                              "?kind=cut&count=99999999999"})
        get(std::string("/practice/fault") + query, 400);
    downloadEvents();
    EXPECT_EQ(events.last(), "completed");
}

TEST_F(PracticeServerTest, TakesControlRequestsByPostToo) {
    httplib::Client client("127.0.0.1", server.port());
    const auto answer = client.Post("/practice/fault?kind=404&count=1");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    downloadEvents();
    EXPECT_EQ(events.last(), "error: Requested file does not exists on the server.");
    ASSERT_TRUE(client.Post("/practice/add"));
    EXPECT_NE(get("/practice/served"), recentText());
}

TEST_F(PracticeServerTest, AddsAnEventAndServesIt) {
    const std::string added = get("/practice/add");
    EXPECT_NO_THROW(parseFdsnDocument("#\n" + added));
    downloadEvents();
    EXPECT_EQ(contentOf(target), recentText() + added);
}

TEST_F(PracticeServerTest, LogsRequestsButNoControls) {
    downloadEvents();
    get("/");
    get("/practice/served");
    get("/unknown?a=1", 404);
    EXPECT_EQ(get("/practice/log"),
              "GET /fdsnws/event/1/query?format=text&limit=4000\nGET /\nGET /unknown?a=1\n");
}

TEST_F(PracticeServerTest, AnswersTheProbeAndNothingItDoesNotKnow) {
    EXPECT_TRUE(InternetProbe(server.url(), clock, session).IsInternetUp());
    get("/");
    get("/fdsnws/event/1/other", 404);
    get("/practice", 404);
}

TEST_F(PracticeServerTest, WritesAHostsFileThatTheProgramUnderstands) {
    const Hosts hosts = parseHosts(server.hostsIni());
    for (const std::string& address :
         {hosts.InternetProbe, hosts.Ingv, hosts.Emsc, hosts.Iside, hosts.Telegram})
        EXPECT_EQ(address, server.url());
    EXPECT_EQ(hosts.Usgs, server.url() + "/usgs");
    EXPECT_EQ(hosts.GeoNames, server.url() + "/geonames");
    EXPECT_EQ(hosts.StaticMap, "embedded");
}

TEST_F(PracticeServerTest, MovesTheCatalogueIntoTheProgramsWindowUnlessFixed) {
    ServerOptions options = fixedOptions();
    options.catalogue.fixed = false;
    const PracticeServer living(options);
    const UtcTime now =
        std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    const std::string start = formatUtc(now - 24h).substr(0, 10);
    const std::string end = formatUtc(now).substr(0, 10);
    download(living.url() + "/fdsnws/event/1/query?starttime=" + start +
             "+00%3A00%3A00&endtime=" + end +
             "+23%3A59%3A59&minmag=-1&maxmag=10&minlat=35&maxlat=48&minlon=6&maxlon=19"
             "&minversion=100&orderby=time-asc&format=text&limit=4000");
    ASSERT_EQ(events.last(), "completed");
    const FdsnDocument document = parseFdsnDocument(contentOf(target));
    EXPECT_LT(document.events.size(), 60u);
    EXPECT_GT(document.events.back().time, now - 10min);
    EXPECT_GE(document.events.front().time, at(start));
}

TEST_F(PracticeServerTest, ServesTheAlternateSourcesAtTheProgramsOwnRequests) {
    const Hosts hosts = parseHosts(server.hostsIni());
    const auto now =
        std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    const auto day = [&](std::chrono::hours age) { return formatUtc(now - age).substr(0, 10); };
    download(hosts.Usgs + usgsQuery(day(24h), day(0h)));
    ASSERT_EQ(events.last(), "completed");
    EXPECT_GE(parseUsgsEvents(contentOf(target), NumberLocale::point()).records.size(), 20u);
    events.calls.clear();
    download(hosts.Emsc + std::string(emscQuery));
    ASSERT_EQ(events.last(), "completed");
    EXPECT_EQ(parseEmscEvents(contentOf(target)).records.size(), 50u);
    EXPECT_EQ(get("/practice/last"), contentOf(target));
}

TEST_F(PracticeServerTest, SpoilsTheAlternateSourcesAsWell) {
    const Hosts hosts = parseHosts(server.hostsIni());
    for (const std::string& url : {hosts.Usgs + usgsQuery("2020-01-01", "2040-01-01"),
                                   hosts.Emsc + std::string(emscQuery)}) {
        get("/practice/fault?kind=cut&count=1");
        events.calls.clear();
        download(url);
        EXPECT_EQ(events.last(), brokenDownload) << url;
        download(url);
        EXPECT_EQ(events.last(), "completed") << url;
    }
}

TEST_F(PracticeServerTest, AddsAnEventToTheNamedService) {
    const std::string usgsBefore = get("/practice/served?source=usgs");
    const std::string line = get("/practice/add?source=usgs&age=1440");
    EXPECT_TRUE(line.starts_with("<event catalog:datasource=\"us\"")) << line;
    EXPECT_EQ(usgsBefore.find(line), std::string::npos);
    EXPECT_NE(get("/practice/served?source=usgs").find(line), std::string::npos);
    const std::string item = get("/practice/add?source=emsc");
    EXPECT_TRUE(item.starts_with("<item>")) << item;
    EXPECT_NE(get("/service/rss/rss.php?typ=emsc").find(item), std::string::npos);
    EXPECT_EQ(get("/practice/served"), recentText());
    const std::string placed = get("/practice/add?at=-42.5,1.53");
    EXPECT_NE(placed.find("|-42.5|1.53|"), std::string::npos) << placed;
    EXPECT_EQ(get("/practice/served"), recentText() + placed);
}

TEST_F(PracticeServerTest, RefusesSourcesAgesAndPlacesThatItDoesNotKnow) {
    for (const char* path :
         {"/practice/add?source=", "/practice/add?source=isc", "/practice/add?source=seiscomp",
          "/practice/add?source=liveloc", "/practice/add?age=", "/practice/add?age=-5",
          "/practice/add?age=long", "/practice/add?at=", "/practice/add?at=42.5",
          "/practice/add?at=42.5,", "/practice/add?at=42.5,1.5km", "/practice/add?at=90.1,0",
          "/practice/add?at=0,-180.1", "/practice/add?at=nan,0", "/practice/served?source=seiscomp",
          "/practice/relocate"})
        get(path, 400);
}

// Waits until the folder holds more than `before` entries at any depth; the present number.
std::size_t growth(const std::string& path, std::size_t before) {
    const auto count = [&] {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::recursive_directory_iterator(path), {}));
    };
    for (int i = 0; i < 3000 && count() <= before; ++i)
        std::this_thread::sleep_for(10ms);
    return count();
}

TEST_F(PracticeServerTest, FillsTheFoldersOfTheLocalLocatorsAndNothingBesideThem) {
    ServerOptions options = fixedOptions();
    options.catalogue.fixed = false;
    options.catalogue.every = 1500ms;
    options.seisCompFolder = folder.file("local/seiscomp");
    options.livelocFolder = folder.file("local/liveloc");
    const PracticeServer living(options);
    httplib::Client control("127.0.0.1", living.port());
    for (const char* source : {"seiscomp", "liveloc"}) {
        const auto added = control.Post(std::string("/practice/add?source=") + source);
        ASSERT_TRUE(added);
        const std::string file = added->body.substr(0, added->body.size() - 1);
        EXPECT_TRUE(std::filesystem::exists(file)) << file;
        const std::string path = folder.file(std::string("local/") + source);
        const std::size_t before = growth(path, 0);
        EXPECT_GT(growth(path, before), before) << source;
    }
    const auto relocated = control.Get("/practice/relocate");
    ASSERT_TRUE(relocated);
    EXPECT_TRUE(relocated->body.ends_with("/last\n")) << relocated->body;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.file("local")), {}), 2);
}

TEST_F(PracticeServerTest, EndsAtOnceWhileARequestIsStalled) {
    auto other = std::make_unique<PracticeServer>(fixedOptions());
    httplib::Client control("127.0.0.1", other->port());
    ASSERT_TRUE(control.Get("/practice/fault?kind=stall"));
    std::thread request([port = other->port()] {
        httplib::Client client("127.0.0.1", port);
        client.set_read_timeout(120s); // its own limit would end the stall
        client.Get("/fdsnws/event/1/query?format=text");
    });
    for (auto log = control.Get("/practice/log"); log && log->body.empty();
         log = control.Get("/practice/log"))
        std::this_thread::sleep_for(10ms);
    const auto start = std::chrono::steady_clock::now();
    other.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
    request.join();
}

TEST_F(PracticeServerTest, RefusesMissingDataAndATakenPort) {
    ServerOptions options = fixedOptions();
    options.dataFolder = folder.path();
    EXPECT_THROW(PracticeServer{options}, std::runtime_error);
    options = fixedOptions();
    options.port = server.port();
    EXPECT_THROW(PracticeServer{options}, std::runtime_error);
}

} // namespace
} // namespace tremor::practice
