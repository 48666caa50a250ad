#include "recording_web_browser.h"

#include <gtest/gtest.h>

namespace tremor {
namespace {

using testing::RecordingWebBrowser;
using Texts = std::vector<std::string>;

TEST(RecordingWebBrowser, RecordsEveryCallInItsOrder) {
    RecordingWebBrowser browser;
    browser.setAttribute("markers", "Eutc", "'a'");
    browser.replaceAttribute("MapClick", "VALORE", "3", "");
    browser.fire("eventi", Fire::Onclick);
    browser.fire("eventi", Fire::Click);
    browser.snapshot();
    browser.Navigate("page.html");
    EXPECT_EQ(browser.calls, (Texts{"markers.Eutc='a'", "MapClick.VALORE [3]=", "eventi.Onclick",
                                    "eventi.Click", "snapshot", "Navigate page.html"}));
    EXPECT_EQ(browser.LocationURL(), "page.html");
    EXPECT_EQ(browser.ReadyState(), 1);
}

TEST(RecordingWebBrowser, FindsAttributesInAnyCase) {
    RecordingWebBrowser browser;
    browser.setAttribute("markers", "Eutc", "a");
    browser.setAttribute("MARKERS", "EUTC", "b");
    EXPECT_EQ(browser.attribute("markers", "eutc"), "b");
    EXPECT_EQ(browser.attribute("markers", "latitude"), "");
}

TEST(RecordingWebBrowser, ReplacesOnlyWhatIsExpected) {
    RecordingWebBrowser browser;
    browser.pageWrites("MapClick", "VALORE", "2");
    browser.replaceAttribute("MapClick", "VALORE", "3", "");
    EXPECT_EQ(browser.attribute("MapClick", "VALORE"), "2");
    browser.replaceAttribute("MapClick", "VALORE", "2", "");
    EXPECT_EQ(browser.attribute("MapClick", "VALORE"), "");
}

TEST(RecordingWebBrowser, AnswersFromItsScript) {
    RecordingWebBrowser browser;
    browser.statuses = {PageStatus::Busy};
    EXPECT_EQ(browser.fire("eventi", Fire::Click), PageStatus::Busy);
    EXPECT_EQ(browser.fire("eventi", Fire::Click), PageStatus::Done);

    browser.page->VALORE = "99";
    browser.snapshots = {std::nullopt};
    EXPECT_FALSE(browser.snapshot().has_value());
    EXPECT_EQ(browser.snapshot()->VALORE, "99");
    browser.page.reset();
    EXPECT_FALSE(browser.snapshot().has_value());
}

TEST(RecordingWebBrowser, LetsThePageActInsideACommand) {
    RecordingWebBrowser browser;
    Texts seen;
    browser.onFire = [&](std::string_view element, Fire) { seen.emplace_back(element); };
    browser.fire("getDataMap", Fire::Click);
    EXPECT_EQ(seen, Texts{"getDataMap"});
}

} // namespace
} // namespace tremor
