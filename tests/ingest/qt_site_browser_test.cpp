#include "ingest/feed_fixture.h"
#include "ingest/iside_source.h"
#include "ingest/qt_site_browser.h"
#include "practice_feeds/practice_server.h"
#include "support/error_of.h"
#include "support/loopback_server.h"
#include "support/raw_server.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>

#include <httplib.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

// The real engine against real servers on the loopback interface.
namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::errorOf;
using testing::LoopbackAnswer;
using testing::LoopbackRequest;
using testing::LoopbackServer;
using testing::Texts;
using Headers = std::vector<std::pair<std::string, std::string>>;

// An answer with a page.
LoopbackAnswer page(const std::string& body) {
    return {200, "<!DOCTYPE html><meta charset=utf-8>" + body, {{"Content-Type", "text/html"}}};
}

class SiteBrowserWindow : public ::testing::Test {
  protected:
    bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds limit = 20s) {
        const QDeadlineTimer deadline(limit);
        while (!done() && !deadline.hasExpired())
            clock.sleep(5ms);
        return done();
    }
    bool completes(std::chrono::milliseconds limit = 20s) {
        return waitFor([this] { return browser->ReadyState() == SiteBrowser::complete; }, limit);
    }
    // What every path gives from now on.
    void serve(const std::string& body, const Headers& headers = {}) {
        const std::lock_guard lock(mutex);
        answer = page(body);
        answer.headers.insert(answer.headers.end(), headers.begin(), headers.end());
    }
    void show(const std::string& body, const Headers& headers = {}) {
        serve(body, headers);
        browser->Navigate(server.url("/page"));
        ASSERT_TRUE(completes());
    }
    // What the server was asked for.
    Texts targets() const {
        Texts list;
        for (const LoopbackRequest& request : server.requests())
            list.push_back(request.target);
        return list;
    }
    bool wasAskedFor(const std::string& target) {
        return waitFor([&] {
            const Texts list = targets();
            return std::find(list.begin(), list.end(), target) != list.end();
        });
    }

    Session session;
    QtClock clock{session};
    std::mutex mutex; // the server answers on threads of its own
    LoopbackAnswer answer;
    LoopbackServer server{[this](const LoopbackRequest& request) {
        const std::lock_guard lock(mutex);
        return request.target == "/missing" ? LoopbackAnswer{404, "nothing here"} : answer;
    }};
    std::unique_ptr<QtSiteBrowser> browser = std::make_unique<QtSiteBrowser>(clock, 1s);
};

TEST_F(SiteBrowserWindow, StartsNoEngineBeforeTheFirstNavigation) {
    EXPECT_EQ(browser->LocationURL(), "about:blank");
    EXPECT_EQ(browser->ReadyState(), SiteBrowser::complete);
    EXPECT_EQ(browser->renderProcess(), 0);
    EXPECT_TRUE(browser->cookies().empty());
    EXPECT_FALSE(browser->hasElement("x"));
    EXPECT_NO_THROW(browser->click("x"));
}

TEST_F(SiteBrowserWindow, TellsTheWholeAddressOfThePageThatItHasComeTo) {
    serve("<a id=go href='/next?page=EVENTS#result'>go</a>");
    browser->Navigate(server.url("/page?a=1"));
    EXPECT_LT(browser->ReadyState(), SiteBrowser::complete);
    ASSERT_TRUE(completes());
    EXPECT_EQ(browser->LocationURL(), server.url("/page?a=1"));
    browser->click("go");
    EXPECT_TRUE(
        waitFor([&] { return browser->LocationURL() == server.url("/next?page=EVENTS#result"); }));
    EXPECT_TRUE(completes());
}

TEST_F(SiteBrowserWindow, WritesValuesAsTheyAre) {
    show("<form id=f action=/sent><input id=a name=a></form><button id=go "
         "onclick=\"document.getElementById('f').submit()\">go</button>");
    EXPECT_TRUE(browser->hasElement("a"));
    EXPECT_FALSE(browser->hasElement("b"));
    browser->setValue("a", "'\");</script>\\${1}\xC3\xA0\xE2\x80\xA8");
    browser->click("go");
    EXPECT_TRUE(wasAskedFor("/sent?a=%27%22%29%3B%3C%2Fscript%3E%5C%24%7B1%7D%C3%A0%E2%80%A8"));
}

TEST_F(SiteBrowserWindow, RaisesError91ForAMissingElement) {
    show("<input id=a>");
    EXPECT_EQ(errorOf([&] { browser->setValue("b", "x"); }), ErrorNumber::ObjectNotSet);
    EXPECT_EQ(errorOf([&] { browser->click("A"); }), ErrorNumber::ObjectNotSet);
    EXPECT_EQ(errorOf([&] { browser->click("');alert(1)//"); }), ErrorNumber::ObjectNotSet);
}

TEST_F(SiteBrowserWindow, ItsQuestionsAreOutOfReachOfThePagesScripts) {
    show("<input id=a><script>document.getElementById = () => null;</script>");
    EXPECT_TRUE(browser->hasElement("a"));
    EXPECT_NO_THROW(browser->click("a"));
}

TEST_F(SiteBrowserWindow, AnswersDialogsUnseen) {
    show("<script>alert('stop')</script><button id=go onclick=\"alert('wait');"
         "fetch('/answers?' + confirm('sure?') + prompt('name?', 'x'))\">go</button>");
    browser->setSilent();
    browser->click("go");
    EXPECT_TRUE(wasAskedFor("/answers?falsenull"));
}

TEST_F(SiteBrowserWindow, OpensNoWindowsFilesOrProgramsAndTakesNoDownloads) {
    show("<button id=go onclick=\"fetch('/opened?' + (window.open('/popup') === null));"
         "fetch('file:///etc/hostname').then(() => fetch('/read'), () => fetch('/notread'));"
         "location = 'mailto:x@example.org'\">go</button>"
         "<a id=save download=x href='data:text/plain,x'>save</a>");
    browser->click("go");
    EXPECT_TRUE(wasAskedFor("/opened?true"));
    EXPECT_TRUE(wasAskedFor("/notread"));
    browser->click("save");
    browser->Navigate("file:///etc/hostname");
    EXPECT_FALSE(completes(1s));
    EXPECT_FALSE(browser->hasElement("x"));
}

TEST_F(SiteBrowserWindow, APageThatCouldNotBeLoadedIsNeverComplete) {
    for (const std::string& url :
         {server.url("/missing"), "http://127.0.0.1:" + std::to_string(testing::unusedPort()),
          std::string("http://")}) {
        browser->Navigate(url);
        EXPECT_FALSE(completes(1s)) << url;
    }
    show("<input id=a>");
    EXPECT_TRUE(browser->hasElement("a"));
}

TEST_F(SiteBrowserWindow, RefusesACertificateOfAnUnknownAuthority) {
    const testing::TemporaryFolder folder;
    const testing::TestCertificate certificate(folder.path());
    const LoopbackServer secure([](const LoopbackRequest&) { return page("secret"); }, certificate);
    browser->Navigate(secure.url("/", "localhost"));
    EXPECT_FALSE(completes(2s));
    EXPECT_TRUE(secure.requests().empty());
}

TEST_F(SiteBrowserWindow, LeavesAPageThatIsStillLoadingForTheNextOne) {
    const testing::RawServer slow([](const testing::RawConnection& client) {
        client.readHead();
        client.send("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 9999\r\n\r\n"
                    "<input id=old>");
        client.stall();
    });
    browser->Navigate(slow.url("/"));
    ASSERT_TRUE(waitFor([&] { return browser->LocationURL() == slow.url("/"); }));
    EXPECT_LT(browser->ReadyState(), SiteBrowser::complete);
    show("<input id=new>");
    EXPECT_TRUE(browser->hasElement("new"));
    EXPECT_FALSE(browser->hasElement("old"));
}

TEST_F(SiteBrowserWindow, GivesAHangingPageItsTimeAndLeavesItThen) {
    show("<button id=go onclick='for (;;);'>go</button>");
    QElapsedTimer time;
    time.start();
    EXPECT_NO_THROW(browser->click("go"));
    EXPECT_GE(time.elapsed(), 900);
    EXPECT_LT(time.elapsed(), 30000);
    EXPECT_EQ(browser->LocationURL(), "about:blank");
    EXPECT_NO_THROW(browser->click("go"));
    show("<input id=a>");
    EXPECT_TRUE(browser->hasElement("a"));
}

TEST_F(SiteBrowserWindow, APageWhoseProcessEndsIsNoPageAndTheNextOneComes) {
    show("<input id=a>", {{"Set-Cookie", "kept=1; Path=/"}});
    ASSERT_TRUE(waitFor([&] { return !browser->cookies().empty(); }));
    const auto process = static_cast<pid_t>(browser->renderProcess());
    ASSERT_GT(process, 0);
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    EXPECT_TRUE(waitFor([&] { return browser->ReadyState() != SiteBrowser::complete; }));
    EXPECT_EQ(browser->LocationURL(), "about:blank");
    EXPECT_FALSE(browser->hasElement("a"));
    EXPECT_NO_THROW(browser->click("a"));
    show("<input id=b>");
    EXPECT_TRUE(browser->hasElement("b"));
    EXPECT_EQ(server.requests().back().header("Cookie"), "kept=1");
}

TEST_F(SiteBrowserWindow, EndsAQuestionWhenTheProgramCloses) {
    show("<input id=a>");
    session.Closing = true;
    EXPECT_FALSE(browser->hasElement("a"));
    EXPECT_NO_THROW(browser->setValue("a", "x"));
}

TEST_F(SiteBrowserWindow, HandsOutTheCookiesOfTheSessionWithWhatTheyAreFor) {
    show("<button id=forget onclick=\"document.cookie = 'dated=; Path=/; Max-Age=0'\">x</button>",
         {{"Set-Cookie", "plain=1"},
          {"Set-Cookie", "secret=a b; Path=/iside; HttpOnly"},
          {"Set-Cookie", "dated=2; Path=/; Max-Age=1000"}});
    ASSERT_TRUE(waitFor([&] { return browser->cookies().size() == 3; }));
    const auto cookie = [this](std::string_view name) {
        for (const HttpCookie& each : browser->cookies())
            if (each.name == name)
                return each;
        ADD_FAILURE() << name;
        return HttpCookie();
    };
    EXPECT_EQ(cookie("plain").value, "1");
    EXPECT_EQ(cookie("plain").domain, "127.0.0.1");
    EXPECT_FALSE(cookie("plain").ofSubdomains);
    EXPECT_FALSE(cookie("plain").secure);
    EXPECT_EQ(cookie("plain").path, "/");
    EXPECT_EQ(cookie("plain").expires, 0);
    EXPECT_EQ(cookie("secret").value, "a b");
    EXPECT_EQ(cookie("secret").path, "/iside");
    const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    EXPECT_NEAR(static_cast<double>(cookie("dated").expires), static_cast<double>(now + 1000), 60);

    browser->click("forget");
    EXPECT_TRUE(waitFor([&] { return browser->cookies().size() == 2; }));
    show("", {{"Set-Cookie", "plain=3"}});
    EXPECT_TRUE(waitFor([&] { return cookie("plain").value == "3"; }));
    EXPECT_EQ(browser->cookies().size(), 2U);
}

TEST_F(SiteBrowserWindow, KeepsItsSessionToItself) {
    show("", {{"Set-Cookie", "mine=1; Path=/; Max-Age=1000"}});
    ASSERT_TRUE(waitFor([&] { return !browser->cookies().empty(); }));
    browser = std::make_unique<QtSiteBrowser>(clock);
    show("");
    EXPECT_EQ(server.requests().back().header("Cookie"), "");
    EXPECT_TRUE(browser->cookies().empty());
}

practice::ServerOptions practiceOptions() {
    practice::ServerOptions options;
    options.dataFolder = TREMOR_TEST_DATA;
    options.catalogue.every = 0ms;
    return options;
}

// The whole source on the practice site: engine, session cookies, download, import.
class IsideVisit : public testing::ImportFixture {
  protected:
    IsideVisit() {
        ::setenv("no_proxy", "127.0.0.1,localhost", 1);
        hosts = parseHosts(site.hostsIni());
        settings.PrimarySourceUsername = "operator@example.org";
        settings.PrimarySourcePassword = "secret";
        settings.PrimaryLastNHours = 24;
    }
    void visit() {
        log.messages.clear();
        source.downloadCsvFromIside();
    }
    std::string control(const std::string& path) {
        httplib::Client client("127.0.0.1", site.port());
        const auto answer = client.Get(path);
        return answer ? answer->body : std::string();
    }
    void switchFault(const std::string& kind) {
        ASSERT_EQ(control("/practice/iside/fault?kind=" + kind), "ok\n");
    }
    // Most of the time that the site has is over already.
    void visitWithLittleTime() {
        session.WaitCounter = 150;
        visit();
    }
    bool imported() const {
        return !log.messages.empty() &&
               log.messages.back().ends_with(" Events imported from ISIDE");
    }

    const practice::PracticeServer site{practiceOptions()};
    QtClock realClock{session};
    FeedContext realContext{session,  settings,       hosts,
                            database, status,         realClock,
                            log,      harness.errors, [this] { return folder.path() + "/"; }};
    QtSiteBrowser browser{realClock};
    HttpFileTransfer network{realClock, session, hosts, {}, [this] { return browser.cookies(); }};
    PanelDownload download{session, status, realClock, network, [] {}};
    CsvImport csvImport{realContext, harness.prompts, NumberLocale::point()};
    IsideSource source{realContext, browser, download, csvImport};
};

const Texts failure{"ISIDE Synchronization failed"};

TEST_F(IsideVisit, ImportsTheExportAndKeepsTheSessionForTheNextVisit) {
    visit();
    ASSERT_TRUE(imported()) << ::testing::PrintToString(log.messages);
    const std::string exported = control("/practice/iside");
    EXPECT_EQ(testing::fileText(folder.file("events.csv")), exported);
    EXPECT_GT(eventCount(), 0);
    EXPECT_EQ(eventCount(), std::count(exported.begin(), exported.end(), '\n') - 2);

    const int before = eventCount();
    control("/practice/add?source=iside");
    visit();
    EXPECT_TRUE(imported());
    EXPECT_EQ(eventCount(), before + 1);
    const std::string requests = control("/practice/log");
    const auto login = requests.find("POST /iside/standard/login.jsp");
    EXPECT_NE(login, std::string::npos);
    EXPECT_EQ(requests.find("POST /iside/standard/login.jsp", login + 1), std::string::npos);
}

TEST_F(IsideVisit, AWrongPasswordEndsInTheFailureLine) {
    settings.PrimarySourcePassword = "Secret";
    visitWithLittleTime();
    EXPECT_EQ(log.messages, failure);
    EXPECT_FALSE(session.PrimaryBusy);
    settings.PrimarySourcePassword = "secret";
    visit();
    EXPECT_TRUE(imported());
}

TEST_F(IsideVisit, AStallingLoginPageEndsInTheFailureLine) {
    switchFault("login-stalls");
    visitWithLittleTime();
    EXPECT_EQ(log.messages, failure);
    switchFault("none");
    visit();
    EXPECT_TRUE(imported());
}

TEST_F(IsideVisit, AChangedFormIsError91AndTheFormsOwnLimitStays) {
    switchFault("form-changed");
    harness.prompts.expectRuntimeError("Number: 91", ErrorAnswer::Ignore);
    visit();
    EXPECT_TRUE(imported());
    EXPECT_EQ(rows("select count(*) from Events where Magnitude < 2.5"), Texts{"0"});
}

TEST_F(IsideVisit, ADroppedExportAndAnEndedSessionEndInTheFailureLineAndTheNextVisitHeals) {
    for (const char* kind : {"export-dropped", "expired"}) {
        switchFault(kind);
        visit();
        EXPECT_EQ(log.messages, failure) << kind;
        EXPECT_EQ(eventCount(), 0);
    }
    switchFault("none");
    visit();
    EXPECT_TRUE(imported());
}

TEST_F(IsideVisit, AnEmptyExportCannotBeImported) {
    switchFault("export-empty");
    visit();
    EXPECT_EQ(log.messages, Texts{"Impossible connect to a ISIDE source, try later."});
}

} // namespace
} // namespace tremor
