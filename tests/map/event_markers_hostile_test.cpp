// Events that somebody has put into a feed in order to break the map.
#include "core/common_text.h"
#include "core/files.h"
#include "event_markers_fixture.h"
#include "map/event_markers.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tremor {
namespace {

using Texts = std::vector<std::string>;
using Rows = std::set<std::int64_t>;

class HostileEvents : public testing::EventMarkersTest {
  protected:
    HostileEvents() { settings.SaveInKml = 1; }

    std::size_t listed(const char* attribute) const {
        return split(map.attribute("markers", attribute), '\'').size() - 2;
    }
    void expectOneFault() { harness.prompts.expectRuntimeError("Number: 13", ErrorAnswer::Ignore); }
};

TEST_F(HostileEvents, KeepsAllListsInStepWhateverColumnHoldsAnApostrophe) {
    const std::string good = "2016-08-24 02:03:00.100";
    store({"2016-08-24 03:00:00.000", "42'7", "13'2", "8'1", "6'0", "L'Aquila''"});
    store({good, "42.7", "13.23", "8.1", "6.0", "INGV"});
    markers.eventsInMap(everything);
    for (const char* list : {"LATITUDE", "LONGITUDE", "EUTC", "MAGNITUDE"})
        EXPECT_EQ(listed(list), 2U) << list;
    EXPECT_EQ(map.attribute("markers", "LATITUDE"), "'42\u20197'42.7'");
    const std::string text = readWholeFile(kmlPath());
    EXPECT_NE(text.find("<li>Source: L\u2019Aquila\u2019\u2019</li>"), std::string::npos);
    EXPECT_NE(text.find("<name>" + good + " Mg: 6.0</name>"), std::string::npos);
}

TEST_F(HostileEvents, GivesThePageTextAndTheKmlFileNoMarkup) {
    const std::string script = "]]></description><script>alert(\"1\")</script>&amp;\r\n";
    store({"2016-08-24 02:03:00.100", script, script, script, script, script});
    markers.eventsInMap(everything);
    EXPECT_EQ(map.attribute("markers", "LATITUDE"), "'" + script + "'");
    const std::string text = readWholeFile(kmlPath());
    EXPECT_EQ(text.find("<script"), std::string::npos);
    EXPECT_NE(text.find("&lt;script&gt;"), std::string::npos);
}

TEST_F(HostileEvents, ReportsManyPairsThatCannotBeComparedOnce) {
    for (int i = 0; i < 50; ++i)
        store({fmt::format("2016-08-24 02:03:{:02}.100", i), i % 2 == 0 ? "" : "NaN", "1e999", "1",
               "2", "INGV"});
    expectOneFault();
    markers.eventsInMap(everything);
    EXPECT_EQ(log.messages,
              Texts{"Pairs of events not checked for duplicates: 49. The first time or place that "
                    "cannot be read is that of the event \"2016-08-24 02:03:49.100\"."});
    EXPECT_EQ(listed("EUTC"), 50U);
}

TEST_F(HostileEvents, ReportsTheSameFaultyEventOnlyOnce) {
    storePair();
    store({"UTC", "Latitude", "Longitude", "Depth", "Magnitude", "Source"});
    expectOneFault();
    markers.eventsInMap(everything);
    markers.eventsInMap(everything);
    EXPECT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(listed("EUTC"), 2U);

    store({"UTD", "", "", "", "", ""}); // another one, in front of it
    expectOneFault();
    markers.eventsInMap("select * from Events where UTC <> 'UTC'");
    EXPECT_EQ(log.messages.size(), 2U);
}

TEST_F(HostileEvents, ReportsAFaultyEventWithoutATime) {
    storePair();
    store({"", "42.7", "13.23", "1", "1", "INGV"});
    expectOneFault();
    markers.eventsInMap("select * from Events where 1");
    EXPECT_EQ(listed("EUTC"), 2U);
}

TEST_F(HostileEvents, GoesOnWhenTheOperatorChoosesRetry) {
    store({"abc", "42.7", "13.23", "1", "1", "INGV"});
    store({"abd", "42.7", "13.23", "1", "1", "INGV"});
    harness.prompts.expectRuntimeError("Routine: eventsInMap", ErrorAnswer::Retry);
    markers.eventsInMap(everything);
    EXPECT_EQ(listed("EUTC"), 2U);
}

TEST_F(HostileEvents, TellsOnlyTheBeginningOfAHugeTime) {
    store({std::string(1'000'000, 'x'), "42.7", "13.23", "1", "1", "INGV"});
    store({"2016-08-24 02:03:00.100", "42.7", "13.23", "1", "1", "INGV"});
    expectOneFault();
    markers.eventsInMap(everything);
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_LT(log.messages[0].size(), 200U);
}

TEST_F(HostileEvents, StandsZeroBytesAndHugeTexts) {
    const std::string zeros("a\0b", 3);
    store({"2016-08-24 02:03:00.100", zeros, std::string(2'000'000, '\''), "1", "2", "\xFF\xFE"});
    markers.eventsInMap(everything);
    EXPECT_EQ(listed("LONGITUDE"), 1U);
    EXPECT_EQ(map.attribute("markers", "LATITUDE"), "'" + zeros + "'");
}

TEST_F(HostileEvents, MarksTheLastEventByTheTimeAsItStandsInTheList) {
    store({"20'6", "42.7", "13.23", "1", "2", "INGV"});
    markers.pin2gif(everything);
    EXPECT_EQ(map.attribute("UltimoEvento", "UTC"), "20\u20196");
}

TEST_F(HostileEvents, LeavesTheMarkersAloneWhenTheKmlFileCannotBeWritten) {
    storePair();
    const KmlWriter nowhere(folder.file("no/folder"), "", NumberLocale::point(), harness.errors);
    EventMarkers unlucky(database, settings, NumberLocale::point(), map, lastEventMap, window,
                         nowhere, log, harness.errors);
    harness.prompts.expectRuntimeError("Routine: KmlGenerator", ErrorAnswer::Ignore);
    unlucky.eventsInMap(everything);
    EXPECT_EQ(listed("EUTC"), 1U);
}

} // namespace
} // namespace tremor
