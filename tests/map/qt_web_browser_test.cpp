#include "map/map_window_fixture.h"
#include "map/qt_web_browser.h"
#include "support/raw_server.h"

#include <QtCore/QTimer>
#include <QtGui/QMouseEvent>
#include <QtWebEngineCore/QWebEngineSettings>

#include <csignal>
#include <string>

namespace tremor {
namespace {

using testing::MapWindowFixture;
using testing::RawConnection;
using testing::RawServer;
using testing::Texts;

// An element with a handler, and one without.
const std::string smallPage =
    "<meta charset='utf-8'><input type='HIDDEN' Id='MapClick' VALORE=''>"
    "<input type='HIDDEN' Id='markers' MARSEL=''><input type='HIDDEN' Id='Cursore'>"
    "<input type='HIDDEN' Id='plain'><script>window.google = {maps: {Map: function() {}}};"
    "window.seen = []; document.getElementById('markers').onclick = () => { seen.push("
    "document.getElementById('markers').MARSEL); document.getElementById('MapClick').VALORE = 7; };"
    "</script>";

class BrowserWindow : public MapWindowFixture {
  protected:
    void writeEvents(QtWebBrowser& page) {
        page.setAttribute("markers", "latitude", "'42.5'43.1'");
        page.setAttribute("MARKERS", "x", "no element has this name");
        page.setAttribute("markers", "Longitude", "'13.2'12.4'");
        page.setAttribute("markers", "EUTC", "'2021-01-14 05:45:26.600'2021-01-15 06:00:00.100'");
        page.setAttribute("markers", "DEPTH", "'#ff0000'#00ff00'");
        page.setAttribute("markers", "Magnitude", "'3.1'2.0'");
        page.setAttribute("markers", "EVENTSCOLOR", "'r.png'g.png'");
        page.setAttribute("markers", "PinsMode", "1");
        page.setAttribute("markers", "PINSCALE", "3");
    }
    void move(QPoint at) {
        QWidget* target = browser().view().focusProxy();
        QMouseEvent event(QEvent::MouseMove, QPointF(at), QPointF(target->mapToGlobal(at)),
                          Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
    }
    qint64 processOf(QtWebBrowser& page) { return page.view().page()->renderProcessPid(); }
    void killPage() {
        const qint64 process = processOf(browser());
        ASSERT_GT(process, 0);
        ASSERT_EQ(::kill(static_cast<pid_t>(process), SIGKILL), 0);
    }
};

TEST_F(BrowserWindow, CountsAsBlankAndCompleteBeforeTheFirstNavigation) {
    EXPECT_EQ(browser().LocationURL(), "about:blank");
    EXPECT_EQ(browser().ReadyState(), WebBrowser::complete);
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::NoElement);
    EXPECT_FALSE(browser().snapshot().has_value());
}

TEST_F(BrowserWindow, AGeneratedPageShowsItsMapAndSaysSo) {
    writeMainPage();
    QtWebBrowser& page = browser();
    page.Navigate(folder.file("TremorLedger.html"));
    EXPECT_LT(page.ReadyState(), WebBrowser::complete);
    EXPECT_EQ(page.LocationURL(), folder.file("TremorLedger.html"));
    ASSERT_TRUE(waitFor([&] { return page.ReadyState() == WebBrowser::complete; }));
    ASSERT_TRUE(waitFor([&] { return events.count("click 99") > 0; }));
    EXPECT_EQ(events.count("complete"), 1);
    EXPECT_EQ(events.count("click 99"), 1);
    EXPECT_EQ(log.messages, Texts{});
    EXPECT_TRUE(evaluate(QStringLiteral("document.querySelector('canvas') !== null")).toBool());
}

TEST_F(BrowserWindow, OfTwoNavigationsTheLastOneAloneEnds) {
    writeMainPage();
    writeFileAtomically(folder.file("page.html"), smallPage, false);
    QtWebBrowser& page = browser();
    page.Navigate(folder.file("TremorLedger.html"));
    page.Navigate(folder.file("page.html"));
    ASSERT_TRUE(waitFor([&] { return events.count("complete") > 0; }));
    turnEvents(500);
    EXPECT_EQ(events.names, Texts{"complete"});
    EXPECT_EQ(text(QStringLiteral("location.pathname")), folder.file("page.html"));
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(BrowserWindow, ANavigationInTheMiddleOfALoadLeavesThatPageWithoutAWord) {
    writeMainPage();
    QtWebBrowser& page = browser();
    for (int delay : {1, 5, 20, 60, 150}) {
        page.Navigate(folder.file("last_event.html"));
        turnEvents(delay);
        events.clear();
        page.Navigate(folder.file("TremorLedger.html"));
        ASSERT_TRUE(waitFor([&] { return events.count("click 99") > 0; }));
        EXPECT_EQ(events.count("complete"), 1) << delay;
    }
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(BrowserWindow, GoesToTheBlankPageAlsoFromTheBlankPageAndInTheMiddleOfALoad) {
    ASSERT_TRUE(showPage(smallPage));
    QtWebBrowser& page = browser();
    for (int times = 0; times < 2; ++times) {
        page.Navigate("about:blank");
        EXPECT_LT(page.ReadyState(), WebBrowser::complete);
        ASSERT_TRUE(waitFor([&] { return page.ReadyState() == WebBrowser::complete; }, 5000));
    }
    page.Navigate(folder.file("page.html"));
    page.Navigate("about:blank");
    ASSERT_TRUE(waitFor([&] { return page.ReadyState() == WebBrowser::complete; }, 5000));
    turnEvents(300);
    EXPECT_EQ(text(QStringLiteral("location.href")), "about:blank");
    EXPECT_EQ(page.fire("markers", Fire::Onclick), PageStatus::NoElement);
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(BrowserWindow, ReadsTheFileAnewAtEachNavigation) {
    ASSERT_TRUE(showPage("<title>one</title><script>window.google={maps:{Map(){}}}</script>"));
    EXPECT_EQ(text(QStringLiteral("document.title")), "one");
    ASSERT_TRUE(showPage("<title>two</title><script>window.google={maps:{Map(){}}}</script>"));
    EXPECT_EQ(text(QStringLiteral("document.title")), "two");
}

TEST_F(BrowserWindow, DrawsMarkersAndTellsTheSelectedOneBeforeTheCallReturns) {
    ASSERT_TRUE(showMainPage());
    QtWebBrowser& page = browser();
    writeEvents(page);
    ASSERT_EQ(page.fire("eventi", Fire::Onclick), PageStatus::Done);
    EXPECT_EQ(evaluate(QStringLiteral("dmarker.length")).toInt(), 2);
    events.clear();
    page.setAttribute("SelezioneMar", "utc", "2021-01-14 05:45:26.600");
    page.setAttribute("SelezioneMar", "zoom", "");
    ASSERT_EQ(page.fire("SelezioneMar", Fire::Click), PageStatus::Done);
    ASSERT_EQ(events.count("click 2"), 1);
    EXPECT_EQ(events.pages.back().MARSEL, "2021-01-14 05:45:26.600 Mg: 3.1");
    turnEvents(300);
    EXPECT_EQ(events.count("click 2"), 1);
}

TEST_F(BrowserWindow, FiringTheHandlerAloneDoesNotReachTheDocument) {
    ASSERT_TRUE(showPage(smallPage));
    events.clear();
    QtWebBrowser& page = browser();
    page.setAttribute("markers", "marsel", "a");
    EXPECT_EQ(page.fire("markers", Fire::Onclick), PageStatus::Done);
    EXPECT_EQ(text(QStringLiteral("seen.join()")), "a");
    turnEvents(200);
    EXPECT_EQ(events.names, Texts{});
    // A click comes to the document after the element's own handler.
    EXPECT_EQ(page.fire("markers", Fire::Click), PageStatus::Done);
    EXPECT_EQ(events.names, Texts{"click 7"});
}

TEST_F(BrowserWindow, WritesAtTheEndOfTheTurnWhenNoCommandFollows) {
    ASSERT_TRUE(showPage(smallPage));
    browser().setAttribute("plain", "VALORE", "x");
    EXPECT_TRUE(waitFor(
        [&] { return attribute(QStringLiteral("plain"), QStringLiteral("VALORE")) == "x"; }));
    browser().setAttribute("plain", "VALORE", "dropped");
    ASSERT_TRUE(showFile("page.html"));
    turnEvents(100);
    EXPECT_EQ(attribute(QStringLiteral("plain"), QStringLiteral("VALORE")), "");
    browser().Navigate(folder.file("page.html"));
    browser().setAttribute("plain", "VALORE", "kept");
    EXPECT_TRUE(waitFor([&] {
        return browser().ReadyState() == WebBrowser::complete &&
               attribute(QStringLiteral("plain"), QStringLiteral("VALORE")) == "kept";
    }));
}

TEST_F(BrowserWindow, AReplacementDoesNotWipeOutANewerValue) {
    ASSERT_TRUE(showPage(smallPage));
    QtWebBrowser& page = browser();
    page.setAttribute("MapClick", "VALORE", "3");
    page.replaceAttribute("MapClick", "valore", "2", "");
    ASSERT_TRUE(page.snapshot().has_value());
    EXPECT_EQ(page.snapshot()->VALORE, "3");
    page.replaceAttribute("MapClick", "VALORE", "3", "");
    EXPECT_EQ(page.snapshot()->VALORE, "");
}

TEST_F(BrowserWindow, ASnapshotHoldsTheViewAfterItsQuestion) {
    ASSERT_TRUE(showMainPage());
    ASSERT_EQ(browser().fire("getDataMap", Fire::Onclick), PageStatus::Done);
    const std::optional<PageSnapshot> page = browser().snapshot();
    ASSERT_TRUE(page.has_value());
    EXPECT_EQ(page->selection.CLAT, "42.5");
    EXPECT_EQ(page->selection.CLNG, "13.25");
    EXPECT_EQ(page->selection.ZOOM, "7");
    EXPECT_NEAR(std::stod(page->selection.SCALE), 901.7, 0.1);
    EXPECT_LT(std::stod(page->selection.BLAT), 42.5);
    EXPECT_LT(std::stod(page->selection.BLNG), 13.25);
    EXPECT_GT(std::stod(page->selection.TLAT), 42.5);
    EXPECT_GT(std::stod(page->selection.TLNG), 13.25);
}

TEST_F(BrowserWindow, AMissingElementAndOneWithoutHandlerAreNoElement) {
    ASSERT_TRUE(showPage(smallPage));
    EXPECT_EQ(browser().fire("nothing", Fire::Onclick), PageStatus::NoElement);
    EXPECT_EQ(browser().fire("nothing", Fire::Click), PageStatus::NoElement);
    EXPECT_EQ(browser().fire("plain", Fire::Onclick), PageStatus::NoElement);
    EXPECT_EQ(browser().fire("plain", Fire::Click), PageStatus::Done);
    browser().Navigate(folder.file("page.html"));
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::NoElement);
}

TEST_F(BrowserWindow, ACommandFromWithinTheWaitOfAnotherOneIsBusy) {
    ASSERT_TRUE(showPage(smallPage));
    std::optional<PageStatus> inner;
    QTimer::singleShot(0, &frame(), [&] { inner = browser().fire("markers", Fire::Onclick); });
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::Done);
    ASSERT_TRUE(inner.has_value());
    EXPECT_EQ(*inner, PageStatus::Busy);
}

TEST_F(BrowserWindow, APageLeftDuringACommandIsGone) {
    ASSERT_TRUE(showPage(smallPage));
    QTimer::singleShot(0, &frame(), [&] { browser().Navigate(folder.file("page.html")); });
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::PageGone);
    EXPECT_TRUE(waitFor([&] { return browser().ReadyState() == WebBrowser::complete; }));
}

TEST_F(BrowserWindow, ThePageIsGoneWhenTheProgramCloses) {
    ASSERT_TRUE(showPage(smallPage));
    session.Closing = true;
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::PageGone);
}

TEST_F(BrowserWindow, APageThatDoesNotAnswerTimesOutAndCanBeUsedLater) {
    ASSERT_TRUE(showPage(smallPage + "<script>document.getElementById('plain').onclick = () => {"
                                     "const start = Date.now(); while (Date.now() - start < 12000);"
                                     "};</script>"));
    const auto start = clock.steady();
    EXPECT_EQ(browser().fire("plain", Fire::Click), PageStatus::TimedOut);
    EXPECT_GE(clock.steady() - start, QtWebBrowser::answerTime);
    EXPECT_TRUE(waitFor(
        [&] { return browser().fire("markers", Fire::Onclick) == PageStatus::Done; }, 60000));
}

TEST_F(BrowserWindow, AHandlerThatThrowsIsDone) {
    ASSERT_TRUE(showPage(smallPage + "<script>document.getElementById('plain').onclick = () => {"
                                     "throw new Error('x'); };</script>"));
    EXPECT_EQ(browser().fire("plain", Fire::Onclick), PageStatus::Done);
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::Done);
}

TEST_F(BrowserWindow, EventsMayCommandThePage) {
    ASSERT_TRUE(showPage(smallPage));
    events.clear();
    std::vector<PageStatus> inner;
    events.onEvent = [&](const std::string& name) {
        if (name != "click 7" || !inner.empty())
            return;
        browser().replaceAttribute("MapClick", "VALORE", "7", "");
        inner.push_back(browser().fire("plain", Fire::Click));
    };
    EXPECT_EQ(browser().fire("markers", Fire::Click), PageStatus::Done);
    EXPECT_EQ(inner, std::vector<PageStatus>{PageStatus::Done});
    EXPECT_EQ(events.names, (Texts{"click 7", "click "}));
}

TEST_F(BrowserWindow, NothingIsToldWhileTicksAreHeld) {
    ASSERT_TRUE(showPage(smallPage));
    events.clear();
    session.TicksHeld = true;
    evaluate(QStringLiteral("(document.getElementById('markers').click(), 0)"));
    turnEvents(300);
    EXPECT_EQ(events.names, Texts{});
    browser().Navigate(folder.file("page.html"));
    ASSERT_TRUE(waitFor([&] { return browser().ReadyState() == WebBrowser::complete; }));
    turnEvents(100);
    EXPECT_EQ(events.names, Texts{});
    session.TicksHeld = false;
    EXPECT_TRUE(waitFor([&] { return !events.names.empty(); }, 2000));
    EXPECT_EQ(events.names, Texts{"complete"}); // what the page that was left had sent is void
}

TEST_F(BrowserWindow, MovementsOfTheMouseArriveAndAreMerged) {
    ASSERT_TRUE(showMainPage());
    turnEvents(500);
    events.clear();
    session.TicksHeld = true; // so that they wait
    for (int x = 100; x < 400; x += 10) {
        move(QPoint(x, 300));
        turnEvents(20);
    }
    turnEvents(200);
    session.TicksHeld = false;
    ASSERT_TRUE(waitFor([&] { return events.count("move 77") > 0; }, 3000));
    turnEvents(200);
    EXPECT_EQ(events.names, (Texts{"click 77", "move 77"}));
    const std::string last = text(QStringLiteral("document.getElementById('Cursore').value"));
    EXPECT_NE(last.find(" | "), std::string::npos);
    EXPECT_EQ(events.pages.back().Cursore, last);
}

TEST_F(BrowserWindow, TextsOfAnyKindArriveAsData) {
    ASSERT_TRUE(showPage(smallPage));
    const Texts hostile = {"\"'`</script><script>seen.push('ran')</script>",
                           "\\\\\" + alert(1) + \"\\",
                           "${seen.push('ran')}\r\n\t",
                           "\xE2\x80\xA8\xE2\x80\xA9 Forl\xC3\xAC \xF0\x9F\x8C\x8B",
                           "<!-- --> ]]> %s %1 %2 &amp; &#39;",
                           std::string(1024 * 1024, '\'')};
    for (const std::string& value : hostile) {
        browser().setAttribute("markers", "MARSEL", value);
        const std::optional<PageSnapshot> page = browser().snapshot();
        ASSERT_TRUE(page.has_value());
        EXPECT_TRUE(page->MARSEL == value) << value.substr(0, 60);
    }
    browser().setAttribute("x'),alert(\"1", "a", "b");
    EXPECT_EQ(browser().fire("'\"); seen.push(1); (\"", Fire::Click), PageStatus::NoElement);
    EXPECT_EQ(evaluate(QStringLiteral("seen.length")).toInt(), 0);
    browser().setAttribute("markers", "not a name", "1"); // refused by the page
    browser().setAttribute("markers", "MARSEL", "after it");
    EXPECT_TRUE(browser().snapshot()->MARSEL == "after it");
}

TEST_F(BrowserWindow, AKilledPageIsReportedAndShownAnew) {
    ASSERT_TRUE(showMainPage());
    events.clear();
    killPage();
    ASSERT_TRUE(waitFor([&] { return events.count("click 99") > 0; }));
    EXPECT_EQ(log.messages, Texts{"TremorLedger.html ended unexpectedly and is shown anew."});
    EXPECT_EQ(events.count("complete"), 1);
    EXPECT_EQ(browser().fire("getDataMap", Fire::Onclick), PageStatus::Done);
}

TEST_F(BrowserWindow, APageThatEndsAgainAndAgainIsGivenUpUntilTheNextNavigation) {
    ASSERT_TRUE(showPage(smallPage));
    for (int times = 1; times <= 4; ++times) {
        events.clear();
        killPage();
        ASSERT_TRUE(waitFor([&] { return events.count("complete") > 0; }));
    }
    const std::string anew = "page.html ended unexpectedly and is shown anew.";
    EXPECT_EQ(log.messages,
              (Texts{anew, anew, anew, "page.html ended again and is not shown any more."}));
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::NoElement);
    ASSERT_TRUE(showFile("page.html"));
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::Done);
}

TEST_F(BrowserWindow, APageThatStoodForAWhileIsShownAnewAgain) {
    limits.steady = std::chrono::milliseconds(500);
    ASSERT_TRUE(showPage(smallPage));
    for (int times = 1; times <= 5; ++times) {
        turnEvents(700);
        events.clear();
        killPage();
        ASSERT_TRUE(waitFor([&] { return events.count("complete") > 0; }));
        EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::Done);
    }
    EXPECT_EQ(log.messages, Texts(5, "page.html ended unexpectedly and is shown anew."));
}

TEST_F(BrowserWindow, APageThatDoesNotComeInTimeIsReportedAndCompletes) {
    const RawServer silent([](const RawConnection& connection) { connection.stall(); });
    environment.hosts.MapsEngine = "online";
    environment.hosts.MapsApi = silent.url("");
    limits.load = std::chrono::milliseconds(1500);
    writeMainPage();
    const auto start = clock.steady();
    ASSERT_TRUE(showFile("TremorLedger.html"));
    EXPECT_GE(clock.steady() - start, limits.load / 2); // timers of the window system are coarse
    EXPECT_EQ(browser().ReadyState(), WebBrowser::complete);
    EXPECT_EQ(log.messages, Texts{"TremorLedger.html did not come in time."});
    // It can be asked and left like any other page.
    EXPECT_EQ(browser().fire("removeAll", Fire::Onclick), PageStatus::NoElement); // no handler yet
    ASSERT_TRUE(showPage(smallPage));
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::Done);
    EXPECT_EQ(log.messages.size(), 1U);
}

TEST_F(BrowserWindow, APageKilledDuringACommandIsGone) {
    ASSERT_TRUE(showPage(smallPage + "<script>document.getElementById('plain').onclick = () => {"
                                     "for (;;); };</script>"));
    QTimer::singleShot(200, &frame(), [&] { killPage(); });
    EXPECT_EQ(browser().fire("plain", Fire::Onclick), PageStatus::PageGone);
    EXPECT_TRUE(waitFor([&] { return browser().ReadyState() == WebBrowser::complete; }));
}

TEST_F(BrowserWindow, AMissingPageIsReportedAndCompletes) {
    ASSERT_TRUE(showFile("missing.html"));
    EXPECT_EQ(browser().ReadyState(), WebBrowser::complete);
    EXPECT_EQ(log.messages, Texts{"missing.html could not be shown."});
    EXPECT_EQ(browser().fire("markers", Fire::Onclick), PageStatus::NoElement);
    ASSERT_TRUE(showFile("missing without extension"));
    EXPECT_EQ(log.messages.back(), "missing without extension could not be shown.");
    EXPECT_EQ(log.messages.size(), 2U);
}

TEST_F(BrowserWindow, APageWithoutItsScriptIsReported) {
    environment.hosts.MapsEngine = "online";
    environment.hosts.MapsApi = "http://127.0.0.1:9";
    writeMainPage();
    ASSERT_TRUE(showFile("TremorLedger.html"));
    ASSERT_TRUE(waitFor([&] { return !log.messages.empty(); }));
    EXPECT_EQ(log.messages, Texts{"The map of TremorLedger.html cannot be shown: its script could "
                                  "not be loaded."});
}

TEST_F(BrowserWindow, AFileWithoutExtensionIsShownAsAPage) {
    jsMaps().generaDefaultCSS();
    const std::vector<WorkspacePage> pages = {{"Forl\xC3\xAC 2#?%41", &mainMap}};
    jsMaps().MapsWorkspaces(pages);
    ASSERT_FALSE(mainMap.calls.empty());
    QtWebBrowser& page = browser();
    page.Navigate(mainMap.location);
    ASSERT_TRUE(waitFor([&] { return events.count("click 99") > 0; }));
    EXPECT_EQ(events.count("complete"), 1);
    EXPECT_EQ(page.fire("getDataMap", Fire::Onclick), PageStatus::Done);
    EXPECT_EQ(page.snapshot()->selection.ZOOM.empty(), false);
    EXPECT_EQ(log.messages, Texts{});
}

} // namespace
} // namespace tremor
