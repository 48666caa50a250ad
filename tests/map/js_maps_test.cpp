#include "core/settings_utilities.h"
#include "map/js_maps.h"
#include "map/pages_fixture.h"

#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::PagesFixture;
using testing::RecordingWebBrowser;
using testing::Texts;

class JSMapsUnderALocale : public PagesFixture, public ::testing::WithParamInterface<NumberLocale> {
  protected:
    JSMapsUnderALocale() { environment.locale = GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Locales, JSMapsUnderALocale,
                         ::testing::Values(NumberLocale::point(), NumberLocale::comma()),
                         [](const ::testing::TestParamInfo<NumberLocale>& locale) {
                             return locale.param.decimalMark == ',' ? "Comma" : "Point";
                         });

TEST_P(JSMapsUnderALocale, GeneraDefaultCSSWritesTheStyleSheetAndShowsNothing) {
    jsMaps().generaDefaultCSS();
    EXPECT_TRUE(writtenIs("default.css", "default.css"));
    EXPECT_EQ(entries(), (Texts{"Img", "default.css"}));
    EXPECT_EQ(mainMap.calls, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWritesTheMainPageAndShowsIt) {
    jsMaps().Maps();
    EXPECT_TRUE(writtenIs("TremorLedger.html", "TremorLedger.html"));
    EXPECT_EQ(mainMap.calls, Texts{navigation("TremorLedger.html")});
    EXPECT_EQ(saveMap.calls, Texts{});
    EXPECT_EQ(log.messages, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWritesTheSameTextIntoTheLastEventPageAndShowsIt) {
    jsMaps().Maps();
    EXPECT_EQ(written("last_event.html"), written("TremorLedger.html"));
    EXPECT_EQ(lastMap.calls, Texts{navigation("last_event.html")});
}

TEST_P(JSMapsUnderALocale, MapsLastEventWritesTheLastEventPageAndShowsIt) {
    jsMaps().MapsLastEvent();
    EXPECT_TRUE(writtenIs("last_event.html", "last_event.html"));
    EXPECT_EQ(lastMap.calls, Texts{navigation("last_event.html")});
    EXPECT_EQ(mainMap.calls, Texts{});
    EXPECT_EQ(entries(), (Texts{"Img", "last_event.html"}));
}

TEST_P(JSMapsUnderALocale, MapsLastEventAfterMapsLeavesTheMainPageAlone) {
    jsMaps().Maps();
    jsMaps().MapsLastEvent();
    EXPECT_TRUE(writtenIs("TremorLedger.html", "TremorLedger.html"));
    EXPECT_TRUE(writtenIs("last_event.html", "last_event.html"));
}

TEST_P(JSMapsUnderALocale, MapsSavingWrkSWritesTheMainTextForTheHiddenMap) {
    jsMaps().MapsSavingWrkS();
    EXPECT_TRUE(writtenIs("SavingWrkS.html", "TremorLedger.html"));
    EXPECT_EQ(saveMap.calls, Texts{navigation("SavingWrkS.html")});
    EXPECT_EQ(mainMap.calls, Texts{});
    EXPECT_EQ(lastMap.calls, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWorkspacesWritesOnePageForEachWindow) {
    RecordingWebBrowser first;
    RecordingWebBrowser second;
    const std::vector<WorkspacePage> pages = {{"Abruzzo", &first}, {"Forl\xC3\xAC 2", &second}};
    jsMaps().MapsWorkspaces(pages);
    EXPECT_TRUE(writtenIs("Abruzzo", "workspace.html"));
    EXPECT_TRUE(writtenIs("Forl\xC3\xAC 2", "workspace.html"));
    EXPECT_EQ(first.calls, Texts{navigation("Abruzzo")});
    EXPECT_EQ(second.calls, Texts{navigation("Forl\xC3\xAC 2")});
    EXPECT_EQ(mainMap.calls, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWebKmlWritesThePageForTheKmlFileAndShowsNothing) {
    settings.SaveInKml = 1;
    jsMaps().MapsWebKml();
    EXPECT_TRUE(writtenIs("TremorLedgerWEB.html", "web_kml.html"));
    EXPECT_EQ(entries(), (Texts{"Img", "TremorLedgerWEB.html"}));
    EXPECT_EQ(mainMap.calls, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWebCsvWritesThePageForTheCsvFileAndShowsNothing) {
    settings.SaveInCsv = 1;
    jsMaps().MapsWebCsv();
    EXPECT_TRUE(writtenIs("TremorLedgerWEB.html", "web_csv.html"));
    EXPECT_EQ(mainMap.calls, Texts{});
}

TEST_P(JSMapsUnderALocale, MapsWebKmlHoldsBothKindsOfElementsWhenBothAreOn) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    jsMaps().MapsWebKml();
    EXPECT_TRUE(writtenIs("TremorLedgerWEB.html", "web_kml_with_csv.html"));
}

TEST_P(JSMapsUnderALocale, TheWebPageEndsAsTheCsvVariantWithBothBlocksWhenBothAreOn) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    jsMaps().MapsWebKml();
    jsMaps().MapsWebCsv();
    EXPECT_TRUE(writtenIs("TremorLedgerWEB.html", "web_csv_with_kml.html"));
}

TEST_P(JSMapsUnderALocale, PublishingChangesNoMapOfTheProgram) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    RecordingWebBrowser window;
    const std::vector<WorkspacePage> pages = {{"Abruzzo", &window}};
    jsMaps().Maps();
    jsMaps().MapsLastEvent();
    jsMaps().MapsWorkspaces(pages);
    EXPECT_TRUE(writtenIs("TremorLedger.html", "TremorLedger.html"));
    EXPECT_TRUE(writtenIs("last_event.html", "last_event.html"));
    EXPECT_TRUE(writtenIs("Abruzzo", "workspace.html"));
}

TEST_P(JSMapsUnderALocale, ACentreWithDecimalsIsWrittenWithADot) {
    settings.CenterLatitude = -12.345678;
    settings.CenterLongitude = 0.5;
    jsMaps().Maps();
    EXPECT_NE(written("TremorLedger.html")
                  .find("\r\ncenter: new google.maps.LatLng(-12.345678 , 0.5 ),\r\nzoom:7,\r\n"),
              std::string::npos);
}

TEST_P(JSMapsUnderALocale, AHostileSettingsFileDoesNotReachThePages) {
    SettingsUtilities reader(settings, harness.errors,
                             {folder.path(), 30000, 30000, environment.locale});
    reader.readText("CenterLatitude=\"></script><script>alert(1)</script>\r\n"
                    "CenterLongitude=13);alert(1);//\r\n"
                    "Zoom=7},alert(1)\r\n"
                    "LastEventMapZoomLevel=9}; alert(1); //\r\n");
    EXPECT_EQ(settings.Zoom, 0); // no number
    settings.Zoom = 7;
    jsMaps().Maps();
    jsMaps().MapsLastEvent();
    EXPECT_TRUE(writtenIs("TremorLedger.html", "TremorLedger.html"));
    EXPECT_TRUE(writtenIs("last_event.html", "last_event.html"));
}

class JSMapsPages : public PagesFixture {};

TEST_F(JSMapsPages, AreAbsentForAKmlPageWhenTheCsvSettingIsNeitherOnNorOff) {
    settings.SaveInKml = 1;
    settings.SaveInCsv = 2;
    jsMaps().MapsWebKml();
    const std::string page = written("TremorLedgerWEB.html");
    EXPECT_EQ(page.find("tremorLedgerKml"), std::string::npos);
    EXPECT_EQ(page.find("papaparse"), std::string::npos);
}

TEST_F(JSMapsPages, TakeTheSettingsAsTheyAreAtThatMoment) {
    JSMaps maps = jsMaps();
    maps.Maps();
    settings.CenterLatitude = 10;
    settings.Zoom = 3;
    maps.Maps();
    EXPECT_NE(written("TremorLedger.html").find("LatLng(10 , 13.25 ),\r\nzoom:3,"),
              std::string::npos);
}

TEST_F(JSMapsPages, GiveUpTheImageOfTheLastEventWhenItIsMissing) {
    DeleteFileText(folder.file("Img/lastepic.gif"));
    jsMaps().Maps();
    EXPECT_TRUE(writtenIs("TremorLedger.html", "without_lastepic.html"));
    EXPECT_EQ(mainMap.calls, Texts{navigation("TremorLedger.html")});
    EXPECT_EQ(log.messages, Texts{"Warning: " + folder.path() + "\\Img\\lastepic.gif not found."});
}

TEST_F(JSMapsPages, SayOnceForEachTextThatTheImageIsMissingAndNeverForTheWeb) {
    DeleteFileText(folder.file("Img/lastepic.gif"));
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    jsMaps().generaDefaultCSS();
    jsMaps().MapsWebKml();
    jsMaps().MapsWebCsv();
    EXPECT_EQ(log.messages.size(), 0U);
    jsMaps().Maps();
    jsMaps().MapsLastEvent();
    jsMaps().MapsSavingWrkS();
    EXPECT_EQ(log.messages.size(), 3U);
}

TEST_F(JSMapsPages, AskTheConfiguredHostForTheMapsScript) {
    environment.hosts.MapsApi = "http://127.0.0.1:8080";
    jsMaps().Maps();
    EXPECT_NE(written("TremorLedger.html")
                  .find(" src=\"http://127.0.0.1:8080/maps/api/js?v=3.18&sensor=false"
                        "&libraries=drawing\"\r\n"
                        "src=\"http://127.0.0.1:8080/maps/api/js?sensor=false\">\r\n"),
              std::string::npos);
}

TEST_F(JSMapsPages, AddressOverlaysOnThePagesOwnHostWithoutAWebHost) {
    environment.hosts.WebHost.clear();
    environment.hosts.JsonProxy.clear();
    settings.SaveInCsv = 1;
    jsMaps().MapsWebCsv();
    const std::string page = written("TremorLedgerWEB.html");
    EXPECT_NE(page.find("KmlLayer('/TremorLedger/OrvaLogo.kmz.txt', layerOptLogo);"),
              std::string::npos);
    EXPECT_NE(page.find("$.getJSON('/get?url=' + encodeURIComponent('/TremorLedger/last24H.csv')"),
              std::string::npos);
}

// A host or folder that tries to end the string or the attribute that it stands in.
TEST_F(JSMapsPages, HoldHostileHostsAsHarmlessAddresses) {
    const std::string hostile = "https://x'\"></script><script>alert(1)//";
    const std::string harmless = "https://x%27%22%3E%3C/script%3E%3Cscript%3Ealert%281%29//";
    environment.hosts.MapsApi = hostile;
    environment.hosts.WebHost = hostile;
    environment.hosts.JsonProxy = hostile;
    settings.SaveInKml = 1;
    settings.SaveInCsv = 1;
    jsMaps().Maps();
    jsMaps().MapsWebCsv();
    for (const std::string file : {"TremorLedger.html", "TremorLedgerWEB.html"}) {
        const std::string page = written(file);
        EXPECT_EQ(page.find("alert(1)"), std::string::npos) << file;
        EXPECT_NE(page.find("src=\"" + harmless + "/maps/api/js?v="), std::string::npos) << file;
        EXPECT_NE(page.find("('" + harmless + "/TremorLedger/LegendZ.kmz.txt'"), std::string::npos)
            << file;
    }
}

TEST_F(JSMapsPages, FallBackToTheUsualZoomForAHostileOne) {
    settings.LastEventMapZoomLevel = "9}; alert(1); //\"></script><script>alert(1)</script>";
    jsMaps().MapsLastEvent();
    const std::string page = written("last_event.html");
    EXPECT_NE(page.find("\r\nzoom:8,\r\nmapTypeId"), std::string::npos);
    EXPECT_EQ(page.find("alert"), std::string::npos);
}

TEST_F(JSMapsPages, HoldAFolderWithAnApostropheAsAnAddress) {
    environment.applicationPath = folder.file("o'neil #1");
    createFolder(environment.applicationPath + "/Img");
    writeFileAtomically(environment.applicationPath + "/Img/lastepic.gif", "GIF89a", false);
    jsMaps().Maps();
    const std::string page = readWholeFile(environment.applicationPath + "/TremorLedger.html");
    EXPECT_TRUE(testing::isPage(
        page, testing::expectedPage("TremorLedger.html", folder.path() + "/o%27neil%20%231")));
    EXPECT_EQ(mainMap.calls, Texts{navigation("o'neil #1/TremorLedger.html")});
}

TEST_F(JSMapsPages, ReplaceAnEarlierPageOfTheSameWorkspace) {
    RecordingWebBrowser window;
    const std::vector<WorkspacePage> pages = {{"Abruzzo", &window}};
    settings.Zoom = 3;
    jsMaps().MapsWorkspaces(pages);
    settings.Zoom = 7;
    jsMaps().MapsWorkspaces(pages);
    EXPECT_TRUE(writtenIs("Abruzzo", "workspace.html"));
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(JSMapsPages, PassOverAClosedWindow) {
    RecordingWebBrowser window;
    const std::vector<WorkspacePage> pages = {{"Closed", nullptr}, {"Abruzzo", &window}};
    jsMaps().MapsWorkspaces(pages);
    EXPECT_EQ(entries(), (Texts{"Abruzzo", "Img"}));
    EXPECT_EQ(log.messages, Texts{});
}

TEST_F(JSMapsPages, OfNoWorkspacesAreNone) {
    jsMaps().MapsWorkspaces({});
    EXPECT_EQ(entries(), Texts{"Img"});
}

TEST_F(JSMapsPages, PassOverAWorkspaceWhoseNameWouldHitAnotherFile) {
    writeFileAtomically(folder.file("catalogue.sqlite"), "the events", false);
    RecordingWebBrowser hostile;
    RecordingWebBrowser window;
    const std::vector<WorkspacePage> pages = {{"catalogue.sqlite", &hostile},
                                              {"../elsewhere", &hostile},
                                              {"Img", &hostile},
                                              {"Abruzzo", &window}};
    jsMaps().MapsWorkspaces(pages);
    EXPECT_EQ(hostile.calls, Texts{});
    EXPECT_EQ(window.calls, Texts{navigation("Abruzzo")});
    EXPECT_EQ(written("catalogue.sqlite"), "the events");
    EXPECT_EQ(entries(), (Texts{"Abruzzo", "Img", "catalogue.sqlite"}));
    EXPECT_EQ(log.messages.size(), 3U);
    EXPECT_EQ(log.messages.at(1), "Warning: workspace \"../elsewhere\" has no map: its name cannot "
                                  "be that of a page.");
}

} // namespace
} // namespace tremor
