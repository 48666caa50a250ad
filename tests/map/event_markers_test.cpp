#include "core/files.h"
#include "event_markers_fixture.h"
#include "map/event_markers.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tremor {
namespace {

using testing::EventMarkersTest;
using testing::RecordingWebBrowser;
using Texts = std::vector<std::string>;
using Rows = std::set<std::int64_t>;

TEST_F(EventMarkersTest, WritesTheListsInTheFixedOrderAndFiresNothing) {
    store({"2016-08-24 02:03:00.100", "42.7", "13.23", "8.1", "6.0", "INGV"});
    store({"2016-08-25 02:03:00.100", "42.8", "13.1", "12", "0.0", "INGV"});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.calls,
              (Texts{"markers.PINSMODE=1", "markers.PINSCALE=3", "markers.latitude=",
                     "markers.longitude=", "markers.Eutc=", "markers.longitude='13.1'13.23'",
                     "markers.Eutc='2016-08-25 02:03:00.100'2016-08-24 02:03:00.100'",
                     "markers.latitude='42.8'42.7'", "markers.magnitude='0.0'6.0'",
                     "markers.eventsColor='#FFFFFF'yellow'#FFFFFF'",
                     "markers.Depth='#FFFFFF'yellow'#FFFFFF'", "markers.magnitude='0.0'6.0'",
                     "markers.urlpin=/program/Img/", "markers.GIFLAST=lastepic.gif"}));
    EXPECT_TRUE(lastEventMap.calls.empty());
}

TEST_F(EventMarkersTest, NamesPinImagesInImageMode) {
    settings.PinMode = 0;
    settings.PinScale = 7;
    store({"2016-08-24 02:03:00.100", "42.7", "13.23", "5.0", "1.0", "INGV"});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "PINSMODE"), "0");
    EXPECT_EQ(map.attribute("markers", "PINSCALE"), "7");
    EXPECT_EQ(map.attribute("markers", "EVENTSCOLOR"), "'o_14.png'o_14.png'");
}

TEST_F(EventMarkersTest, ShowsTheNewestEventFirst) {
    for (const char* day : {"02", "03", "01"})
        store({fmt::format("2016-08-{} 00:00:00.000", day), "1", "2", "3", "4", "INGV"});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "EUTC"),
              "'2016-08-03 00:00:00.000'2016-08-02 00:00:00.000'2016-08-01 00:00:00.000'");
}

TEST_F(EventMarkersTest, PutsOneOfTwoReportsOnTheMapAndGreysTheOther) {
    storePair();
    window.gridTimes = {"2016-08-24 02:03:09.100", "2016-08-24 02:03:00.100"};
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "EUTC"), "'2016-08-24 02:03:09.100'");
    EXPECT_EQ(window.greyRows, Rows{2});

    settings.PriorityEvents = 2;
    window.greyRows.clear();
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "EUTC"), "'2016-08-24 02:03:00.100'");
    EXPECT_EQ(window.greyRows, Rows{1});

    settings.PriorityEvents = 3;
    window.greyRows.clear();
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "EUTC"),
              "'2016-08-24 02:03:09.100'2016-08-24 02:03:00.100'");
    EXPECT_EQ(window.greyRows, Rows{});
}

TEST_F(EventMarkersTest, ShowsEventsTenSecondsApart) {
    store({"2016-08-24 02:03:10.100", "42.7", "13.23", "8.1", "6.0", "INGV"});
    store({"2016-08-24 02:03:00.100", "42.7", "13.23", "12.0", "5.5", "EMSC"});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "MAGNITUDE"), "'6.0'5.5'");
}

TEST_F(EventMarkersTest, KeepsEventsOfTheListsInStepWhenTheirColourIsMissing) {
    settings.PinMode = 0;
    store({"2016-08-24 02:03:00.100", "42.7", "13.23", "600", "6.0", "INGV"});
    store({"2016-08-23 02:03:00.100", "42.7", "13.23", "60", "6.5", "INGV"});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "LATITUDE"), "'42.7'42.7'");
    EXPECT_EQ(map.attribute("markers", "EVENTSCOLOR"), "'v_50.png'o_14.png'");
}

TEST_F(EventMarkersTest, EmptiesTheMapWithoutEvents) {
    markers.eventsInMap(everything);
    for (const char* list : {"LATITUDE", "LONGITUDE", "EUTC", "MAGNITUDE"})
        EXPECT_EQ(map.attribute("markers", list), "'") << list;
    EXPECT_EQ(map.attribute("markers", "DEPTH"), "'#FFFFFF'");
    EXPECT_EQ(markers.EventsOnMap().size(), 1U);
}

TEST_F(EventMarkersTest, EmptiesTheMapAfterARefusedQuery) {
    storePair();
    markers.eventsInMap("select * from Events where (UTC = 'it's')");
    EXPECT_EQ(map.attribute("markers", "EUTC"), "'");
    EXPECT_EQ(markers.EventsOnMap().size(), 1U);
}

TEST_F(EventMarkersTest, KeepsAllEventsWithTheirMarksAndAnEmptyEntryBehindThem) {
    EXPECT_TRUE(markers.EventsOnMap().empty());
    storePair();
    markers.eventsInMap(everything);
    const std::vector<EventMarkerRow>& events = markers.EventsOnMap();
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0].UTC, "2016-08-24 02:03:09.100");
    EXPECT_EQ(events[0].Latitude, "42.7");
    EXPECT_EQ(events[0].Longitude, "13.23");
    EXPECT_EQ(events[0].Depth, "8.1");
    EXPECT_EQ(events[0].Magnitude, "6.0");
    EXPECT_EQ(events[0].Source, "INGV");
    EXPECT_TRUE(events[0].visible);
    EXPECT_FALSE(events[0].skip);
    EXPECT_FALSE(events[1].visible);
    EXPECT_TRUE(events[1].skip);
    EXPECT_EQ(events[2].UTC, "");
    EXPECT_FALSE(events[2].visible);
}

TEST_F(EventMarkersTest, RenewsEverythingButTheMarkersOfAMapThatIsNotComplete) {
    storePair();
    settings.SaveInKml = 1;
    map.readyState = 3;
    window.gridTimes = {"2016-08-24 02:03:00.100"};
    markers.eventsInMap(everything);
    EXPECT_TRUE(map.calls.empty());
    EXPECT_EQ(markers.EventsOnMap().size(), 3U);
    EXPECT_EQ(window.greyRows, Rows{1});
    EXPECT_TRUE(FileExists(kmlPath()));
}

TEST_F(EventMarkersTest, GreysTheTwinOfAHiddenRow) {
    const std::string twin = "2016-08-24 02:03:09.100";
    store({twin, "42.7", "13.23", "8.1", "6.0", "INGV"});
    store({twin, "42.7", "13.23", "8.1", "6.0", "ISIDE"});
    window.gridTimes = {twin, "2016-08-24 02:03:05.100", twin};
    markers.eventsInMap(everything);
    EXPECT_EQ(window.greyRows, (Rows{1, 3}));
}

TEST_F(EventMarkersTest, GreysRowsWithoutATime) {
    window.gridTimes = {"2016-08-24 02:03:09.100", ""};
    markers.eventsInMap(everything);
    EXPECT_EQ(window.greyRows, Rows{2});
}

TEST_F(EventMarkersTest, WritesTheKmlFileOnlyWhenAsked) {
    storePair();
    markers.eventsInMap(everything);
    EXPECT_FALSE(FileExists(kmlPath()));
    settings.SaveInKml = 1;
    markers.eventsInMap(everything);
    const std::string text = readWholeFile(kmlPath());
    EXPECT_NE(text.find("<name>2016-08-24 02:03:09.100 Mg: 6.0</name>"), std::string::npos);
    EXPECT_NE(text.find("<coordinates>13.23,42.7, 0</coordinates>"), std::string::npos);
    EXPECT_NE(text.find("<li>Depth: 8.1</li>"), std::string::npos);
    EXPECT_NE(text.find("<li>Source: INGV</li>"), std::string::npos);
    EXPECT_EQ(text.find("EMSC"), std::string::npos);
}

TEST_F(EventMarkersTest, ShowsAllReportsOnTheLastEventMapAndRedrawsIt) {
    storePair();
    markers.eventsInMap2(everything + " order by UTC desc");
    EXPECT_EQ(
        lastEventMap.calls,
        (Texts{"removeAll.Onclick", "markers.PINSMODE=1", "markers.PINSCALE=3", "markers.latitude=",
               "markers.longitude=", "markers.Eutc=", "markers.longitude='13.23'13.23'",
               "markers.Eutc='2016-08-24 02:03:09.100'2016-08-24 02:03:00.100'",
               "markers.latitude='42.7'42.7045'", "markers.eventsColor='yellow'#33FF00'#FFFFFF'",
               "markers.Depth='yellow'#33FF00'#FFFFFF'", "markers.magnitude='6.0'5.5'",
               "eventi.Onclick"}));
    EXPECT_TRUE(map.calls.empty());
    EXPECT_TRUE(markers.EventsOnMap().empty());
}

TEST_F(EventMarkersTest, WaitsForTheMainMapBeforeItTouchesTheLastEventMap) {
    storePair();
    map.readyState = 1;
    markers.eventsInMap2(everything);
    EXPECT_TRUE(lastEventMap.calls.empty());

    map.readyState = 4;
    lastEventMap.readyState = 1;
    markers.eventsInMap2(everything);
    EXPECT_EQ(lastEventMap.calls.back(), "eventi.Onclick");
}

TEST_F(EventMarkersTest, HandsAllReportsToTheMapOfAWorkspaceAndLeavesTheDrawingToOthers) {
    storePair();
    RecordingWebBrowser workspaceMap;
    markers.eventsInMapWRKS(workspaceMap, everything + " order by UTC desc");
    EXPECT_EQ(workspaceMap.calls,
              (Texts{"markers.PINSMODE=1", "markers.PINSCALE=3", "markers.latitude=",
                     "markers.longitude=", "markers.Eutc=", "markers.longitude='13.23'13.23'",
                     "markers.Eutc='2016-08-24 02:03:09.100'2016-08-24 02:03:00.100'",
                     "markers.latitude='42.7'42.7045'", "markers.magnitude='6.0'5.5'",
                     "markers.eventsColor='yellow'#33FF00'#FFFFFF'",
                     "markers.Depth='yellow'#33FF00'#FFFFFF'", "markers.magnitude='6.0'5.5'",
                     "markers.urlpin=/program/Img/"}));
    EXPECT_TRUE(map.calls.empty());
    EXPECT_TRUE(lastEventMap.calls.empty());
    EXPECT_TRUE(markers.EventsOnMap().empty()) << "the array is that of the main map";
}

TEST_F(EventMarkersTest, PassesOverAMapOfAWorkspaceThatIsStillLoading) {
    storePair();
    RecordingWebBrowser workspaceMap;
    workspaceMap.readyState = 3;
    markers.eventsInMapWRKS(workspaceMap, everything);
    EXPECT_TRUE(workspaceMap.calls.empty());
}

TEST_F(EventMarkersTest, TakesTheMarkersOffTheMapOfAWorkspaceWhoseQueryFails) {
    storePair();
    RecordingWebBrowser workspaceMap;
    markers.eventsInMapWRKS(workspaceMap, "select * from Events where (Latitude >= )");
    EXPECT_EQ(workspaceMap.attribute("markers", "Eutc"), "'");
}

TEST_F(EventMarkersTest, GoesOnSilentlyWithoutAnElement) {
    storePair();
    lastEventMap.statuses = {PageStatus::NoElement, PageStatus::PageGone};
    markers.eventsInMap2(everything);
    map.statuses = {PageStatus::TimedOut};
    markers.pin2gif(everything);
    EXPECT_EQ(lastEventMap.calls.back(), "eventi.Onclick");
    EXPECT_EQ(map.calls.back(), "UltimoEvento.Click");
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(EventMarkersTest, MarksTheNewestEventByAClickThatFindsNoMessagePending) {
    storePair();
    map.pageWrites("MapClick", "VALORE", "3");
    markers.pin2gif(everything + " order by UTC desc limit 1");
    EXPECT_EQ(map.calls, (Texts{"MapClick.VALORE=", "UltimoEvento.utc=2016-08-24 02:03:09.100",
                                "UltimoEvento.Click"}));
}

TEST_F(EventMarkersTest, MarksNothingWithoutAnEvent) {
    markers.pin2gif(everything);
    EXPECT_TRUE(map.calls.empty());
}

TEST_F(EventMarkersTest, StandsQueriesFromInsideItsOwnClick) {
    storePair();
    map.onFire = [&](std::string_view, Fire) { markers.eventsInMap(everything); };
    markers.pin2gif(everything + " order by UTC desc");
    EXPECT_EQ(std::count(map.calls.begin(), map.calls.end(), "UltimoEvento.Click"), 2);
}

TEST_F(EventMarkersTest, FillsTheGridAndDrawsTheChartForTheVisibleRectangle) {
    settings.searchParQuery = "(Magnitude >= '4')";
    markers.visualizeEventsinRectangle("(UTC >= '2016')");
    EXPECT_EQ(window.calls, (Texts{"FillGridEvents [(Magnitude >= '4')] [(UTC >= '2016')] []",
                                   "pictureMagnitudeEvents"}));
}

} // namespace
} // namespace tremor
