#include "ingest/feed_fixture.h"
#include "ingest/iside_source.h"
#include "ingest/scripted_site.h"

#include <set>
#include <string>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::Texts;

constexpr std::string_view failed = "ISIDE Synchronization failed";
constexpr std::string_view noEvents = "#UTC;Latitude;Longitude;Depth;Magnitude;Source\n\r\n";
constexpr std::string_view oneEvent = "#UTC;Latitude;Longitude;Depth;Magnitude;Source\n"
                                      "2014-03-07 01:02:03.450;42.7;13.2;8.4;1.2;ISIDE\n\r\n";

const std::string site = "http://iside.example";
const std::string loginPage = site + "/iside/standard/index.jsp?page=login";
const std::string homePage = site + "/iside/standard/index.jsp";
const std::string searchPage = site + "/iside/standard/result.jsp?rst=1&page=EVENTS";
const std::string resultPage = site + "/iside/standard/result.jsp?page=EVENTS#result";
const std::string exportFile = site + "/iside/download?export=1&type=csv&data=EVENTS";

const Texts wholeVisit{"navigate " + loginPage,
                       "value login_email=operator",
                       "value login_pwd=se\"cret",
                       "click Login",
                       "silent",
                       "navigate " + searchPage,
                       "click disable_magnitude",
                       "click disable_lat_lon",
                       "value date_from=2014/03/06",
                       "click search"};

// A site on which everything works at once, until a test has it otherwise.
class IsideSource : public testing::FeedFixture {
  protected:
    IsideSource() {
        hosts.Iside = site;
        settings.PrimarySourceUsername = "operator";
        settings.PrimarySourcePassword = "se\"cret";
        settings.PrimaryLastNHours = 24;
        browser.onStep = [this](const std::string& step) { answer(step); };
        servesDocument(std::string(oneEvent));
    }

    void answer(const std::string& step) {
        if (step == ignored)
            return;
        if (step == "navigate " + loginPage)
            show(loginPage, {"login_email", "login_pwd", "Login"});
        else if (step == "click Login")
            show(homePage, {});
        else if (step == "navigate " + searchPage)
            show(searchPage, {"disable_magnitude", "disable_lat_lon", "date_from", "search"});
        else if (step == "click search")
            show(resultPage, {"result"});
    }
    void show(const std::string& url, const std::set<std::string>& elements) {
        browser.location = url;
        browser.elements = elements;
        browser.readyState = SiteBrowser::complete;
    }
    // The site answers the step only when the counter has come so far.
    void answersWhenTheCounterIs(const std::string& step, std::int32_t counter) {
        ignored = step;
        clock.onPump = [this, step, counter] {
            if (session.WaitCounter != counter || browser.steps.back() != step)
                return;
            ignored.clear();
            answer(step);
        };
    }
    // The operator closes the program while the site is silent at that step.
    void closesDuring(const std::string& step) {
        ignored = step;
        clock.onPump = [this, step] {
            if (clock.sleeps >= 5 && browser.steps.back() == step)
                close();
        };
    }
    void close() {
        session.WaitCounter = Session::waitCounterClosing;
        session.Closing = true;
    }
    void expectFailure() {
        EXPECT_EQ(log.messages, Texts{std::string(failed)});
        EXPECT_EQ(status.statusTexts, Texts{"Syncing from ISIDE..."});
        EXPECT_EQ(eventCount(), 0);
        EXPECT_FALSE(session.PrimaryBusy);
        EXPECT_EQ(harness.errors.callStack().depth(), 0);
    }

    std::string ignored; // the step that the site leaves without an answer
    testing::ScriptedSite browser;
    CsvImport csvImport{context, harness.prompts, NumberLocale::point()};
    tremor::IsideSource source{context, browser, download, csvImport};
};

TEST_F(IsideSource, LogsInSearchesAndImportsTheExport) {
    status.setProgressRange(3, 7);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, wholeVisit);
    EXPECT_EQ(transfer.url, exportFile);
    EXPECT_EQ(transfer.target, folder.file("events.csv"));
    EXPECT_EQ(transfer.chunkSize, 4096);
    EXPECT_FALSE(transfer.withoutStatusCheck);
    EXPECT_EQ(rows("select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events"),
              Texts{"2014-03-07 01:02:03.450|42.7|13.2|8.4|1.2|ISIDE"});
    EXPECT_EQ(status.statusTexts, (Texts{"Syncing from ISIDE...", "ISIDE Synchronized"}));
    EXPECT_EQ(status.minimum, 0);
    EXPECT_EQ(session.WaitCounter, 0);
    EXPECT_FALSE(session.PrimaryBusy);
}

TEST_F(IsideSource, LogsItsEventsAsIsidesBecauseTheFileIsNamedSo) {
    source.downloadCsvFromIside();
    ASSERT_FALSE(log.messages.empty());
    EXPECT_EQ(log.messages.back(), "1 Events imported from ISIDE");
    EXPECT_TRUE(csvImport.CsvFileName.ends_with("events.csv"));
}

TEST_F(IsideSource, ComparesWithAllRowsButThoseOfTheEmsc) {
    store("2014-03-07 01:02:03.450", "EMSC");
    source.downloadCsvFromIside();
    EXPECT_EQ(eventCount(), 2);
    source.downloadCsvFromIside();
    EXPECT_EQ(eventCount(), 2);
}

TEST_F(IsideSource, IsBusyFromTheFirstStepUntilAfterTheImport) {
    Texts whileNotBusy;
    const auto note = [&](const std::string& step) {
        if (!session.PrimaryBusy)
            whileNotBusy.push_back(step);
    };
    browser.onStep = [&](const std::string& step) {
        note(step);
        answer(step);
    };
    transfer.course = [&](DownloadEvents& events, std::string_view path) {
        note("export");
        EXPECT_FALSE(session.AlternateBusy);
        testing::writeText(std::string(path), oneEvent);
        events.DownloadCompleted();
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(whileNotBusy, Texts{});
    EXPECT_FALSE(session.PrimaryBusy);
}

TEST_F(IsideSource, LeavesTheLoginOutWhileTheLastSessionIsAlive) {
    browser.onStep = [this](const std::string& step) {
        if (step == "navigate " + loginPage)
            show(homePage, {});
        else
            answer(step);
    };
    source.downloadCsvFromIside();
    Texts expected = wholeVisit;
    expected.erase(expected.begin() + 1, expected.begin() + 4);
    EXPECT_EQ(browser.steps, expected);
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(IsideSource, FailsWithALiveSessionWhenTheSiteShowsAnotherPageThanTheHomePage) {
    browser.onStep = [this](const std::string&) { show(loginPage, {}); };
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, Texts{"navigate " + loginPage});
    EXPECT_EQ(clock.sleeps, 201);
    expectFailure();
}

TEST_F(IsideSource, AsksFromYesterdayOnAtOneMinutePastMidnight) {
    clock.setNow(std::chrono::local_days(std::chrono::year(2021) / 1 / 15) + 1min);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps[8], "value date_from=2021/01/14");
}

TEST_F(IsideSource, GivesTheLoginPageTwentySeconds) {
    ignored = "navigate " + loginPage;
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, Texts{"navigate " + loginPage});
    EXPECT_EQ(clock.sleeps, 201);
    EXPECT_EQ(clock.pumps, 201);
    EXPECT_EQ(clock.steady(), 20100ms);
    EXPECT_EQ(session.WaitCounter, 0);
    expectFailure();
}

TEST_F(IsideSource, TakesALoginPageThatIsCompleteAt199Ticks) {
    answersWhenTheCounterIs("navigate " + loginPage, 199);
    source.downloadCsvFromIside();
    EXPECT_EQ(clock.sleeps, 199);
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(IsideSource, CountsALoginPageThatIsCompleteExactlyAt200TicksAsFailed) {
    answersWhenTheCounterIs("navigate " + loginPage, 200);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.readyState, SiteBrowser::complete);
    EXPECT_EQ(clock.sleeps, 200);
    EXPECT_EQ(browser.steps, Texts{"navigate " + loginPage});
    expectFailure();
}

TEST_F(IsideSource, TakesTheCounterAsItFindsIt) {
    session.WaitCounter = 150;
    ignored = "navigate " + loginPage;
    source.downloadCsvFromIside();
    EXPECT_EQ(clock.sleeps, 51);
    expectFailure();
}

TEST_F(IsideSource, SharesTheTwentySecondsBetweenLoginPageAndHomePage) {
    answersWhenTheCounterIs("navigate " + loginPage, 150);
    browser.onStep = [this](const std::string& step) {
        if (step == "click Login")
            ignored = step;
        answer(step);
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps.back(), "click Login");
    EXPECT_EQ(clock.sleeps, 201);
    expectFailure();
}

TEST_F(IsideSource, TakesAHomePageThatIsThereAt199TicksAndNotAt200) {
    answersWhenTheCounterIs("click Login", 199);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, wholeVisit);
    EXPECT_EQ(eventCount(), 1);

    browser.steps.clear();
    log.messages.clear();
    answersWhenTheCounterIs("click Login", 200);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps.back(), "click Login");
    EXPECT_EQ(log.messages, Texts{std::string(failed)});
}

TEST_F(IsideSource, FailsWithAWrongPasswordBecauseTheSiteDoesNotGoToItsHomePage) {
    browser.onStep = [this](const std::string& step) {
        if (step == "click Login")
            show(site + "/iside/standard/login.jsp", {"login_email", "login_pwd", "Login"});
        else
            answer(step);
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(clock.steady(), 20100ms);
    EXPECT_EQ(browser.steps.back(), "click Login");
    expectFailure();
}

TEST_F(IsideSource, TakesOnlyTheWholeAddressForTheHomePage) {
    for (const std::string& other : Texts{homePage + "?page=home", homePage + "#", homePage + "/",
                                          "http://iside.example.org/iside/standard/index.jsp"}) {
        log.messages.clear();
        browser.onStep = [&](const std::string& step) {
            answer(step);
            if (step == "click Login")
                show(other, {});
        };
        source.downloadCsvFromIside();
        EXPECT_EQ(log.messages, Texts{std::string(failed)}) << other;
    }
}

TEST_F(IsideSource, GivesTheSearchPageAMinuteOutsideTheCount) {
    ignored = "navigate " + searchPage;
    std::int32_t counter = -1;
    clock.onPump = [&] { counter = session.WaitCounter; };
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps.back(), "navigate " + searchPage);
    EXPECT_EQ(clock.steady(), 60s);
    EXPECT_EQ(counter, 0);
    expectFailure();
}

TEST_F(IsideSource, WaitsForTheSearchPageBeforeItFillsTheForm) {
    ignored = "navigate " + searchPage;
    clock.onPump = [this] {
        if (clock.steady() < 59s || browser.readyState == SiteBrowser::complete)
            return;
        EXPECT_EQ(browser.steps.back(), "navigate " + searchPage);
        ignored.clear();
        answer("navigate " + searchPage);
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, wholeVisit);
    EXPECT_EQ(eventCount(), 1);
}

TEST_F(IsideSource, GivesTheResultThirtySecondsOfItsOwn) {
    answersWhenTheCounterIs("click Login", 199);
    browser.onStep = [this](const std::string& step) {
        if (step == "click search")
            ignored = step;
        answer(step);
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps, wholeVisit);
    EXPECT_EQ(clock.sleeps, 199 + 301);
    EXPECT_TRUE(transfer.url.empty());
    expectFailure();
}

TEST_F(IsideSource, TakesAResultAt299TicksAndNotAt300) {
    answersWhenTheCounterIs("click search", 299);
    source.downloadCsvFromIside();
    EXPECT_EQ(eventCount(), 1);

    log.messages.clear();
    answersWhenTheCounterIs("click search", 300);
    source.downloadCsvFromIside();
    EXPECT_EQ(log.messages, Texts{std::string(failed)});
}

TEST_F(IsideSource, FailsAtOnceWhenTheExportFailsAndLeavesAnOldOneAlone) {
    testing::writeText(folder.file("events.csv"), oneEvent);
    fails();
    source.downloadCsvFromIside();
    EXPECT_EQ(clock.steady(), 0ms);
    EXPECT_EQ(session.WaitCounter, 0);
    expectFailure();
}

TEST_F(IsideSource, SaysThatAnEmptyExportCannotBeImported) {
    for (const std::string_view document : {std::string_view(), std::string_view("no line feed")}) {
        log.messages.clear();
        servesDocument(std::string(document));
        source.downloadCsvFromIside();
        EXPECT_EQ(log.messages, Texts{"Impossible connect to a ISIDE source, try later."});
        EXPECT_EQ(status.statusTexts.back(), "ISIDE Synchronized");
    }
    EXPECT_EQ(eventCount(), 0);
}

TEST_F(IsideSource, ImportsNothingFromAnExportWithoutEvents) {
    servesDocument(std::string(noEvents));
    source.downloadCsvFromIside();
    EXPECT_EQ(log.messages.back(), "0 Events imported from ISIDE");
}

TEST_F(IsideSource, ReportsEachElementThatTheSiteHasRemovedAndGoesOnWithTheNext) {
    browser.onStep = [this](const std::string& step) {
        answer(step);
        browser.elements.erase("disable_magnitude");
        browser.elements.erase("login_pwd");
    };
    for (int element = 0; element < 2; ++element)
        harness.prompts.expectRuntimeError("Number: 91", ErrorAnswer::Ignore);
    source.downloadCsvFromIside();
    EXPECT_NE(harness.prompts.lastErrorText.find("downloadCsvFromIside (Form - panel)"),
              std::string::npos);
    Texts expected = wholeVisit;
    std::erase(expected, "value login_pwd=se\"cret");
    std::erase(expected, "click disable_magnitude");
    EXPECT_EQ(browser.steps, expected);
    EXPECT_EQ(eventCount(), 1);
    EXPECT_FALSE(session.PrimaryBusy);
}

TEST_F(IsideSource, FailsWhenTheButtonIsGone) {
    browser.onStep = [this](const std::string& step) {
        answer(step);
        browser.elements.erase("search");
    };
    harness.prompts.expectRuntimeError("Number: 91", ErrorAnswer::Ignore);
    source.downloadCsvFromIside();
    EXPECT_EQ(clock.sleeps, 301);
    expectFailure();
}

TEST_F(IsideSource, NeverShowsThePasswordInAReport) {
    browser.onStep = [this](const std::string& step) {
        answer(step);
        browser.elements.erase("login_pwd");
    };
    harness.prompts.expectRuntimeError("Object variable", ErrorAnswer::Ignore);
    source.downloadCsvFromIside();
    EXPECT_EQ(harness.prompts.lastErrorText.find("cret"), std::string::npos);
}

TEST_F(IsideSource, ReportsHoursThatLeadOutOfTheCalendarAndSearchesWithTheFormsOwnDay) {
    clock.setNow(std::chrono::local_days(std::chrono::year(10) / 1 / 1));
    settings.PrimaryLastNHours = 1'000'000;
    harness.prompts.expectRuntimeError("Number: 5", ErrorAnswer::Ignore);
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps.back(), "click search");
    EXPECT_EQ(eventCount(), 1);
    EXPECT_FALSE(session.PrimaryBusy);
}

class IsideClosing : public IsideSource, public ::testing::WithParamInterface<std::string> {};

TEST_P(IsideClosing, EndsTheWaitAtOnceWithTheFailureLineAndKeepsTheCounter) {
    closesDuring(GetParam());
    source.downloadCsvFromIside();
    EXPECT_EQ(browser.steps.back(), GetParam());
    EXPECT_LE(clock.sleeps, 6);
    EXPECT_GE(session.WaitCounter, Session::waitCounterClosing);
    expectFailure();
}

INSTANTIATE_TEST_SUITE_P(During, IsideClosing,
                         ::testing::Values("navigate " + loginPage, "click Login",
                                           "navigate " + searchPage, "click search"),
                         [](const auto& step) { return "Wait" + std::to_string(step.index + 1); });

TEST_F(IsideSource, EndsWithTheFailureLineWhenTheProgramClosesDuringTheExport) {
    transfer.course = [this](DownloadEvents& events, std::string_view) {
        close();
        events.AbortCompleted();
    };
    source.downloadCsvFromIside();
    EXPECT_EQ(session.WaitCounter, Session::waitCounterClosing);
    EXPECT_EQ(clock.sleeps, 0);
    expectFailure();
}

} // namespace
} // namespace tremor
