#include "map/page_bridge.h"
#include "map/recording_web_browser.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using testing::RecordingWebBrowser;
using Texts = std::vector<std::string>;

const std::string lastDay = "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')";
const std::string italy = "(Latitude >= 36) and (Latitude <= 47.5) AND "
                          "(Longitude >= 6.25) and (Longitude <= 18.5)";

class RecordingSurroundings : public BridgeSurroundings {
  public:
    bool workspaceIsGlobal() override { return global; }
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override {
        add("FillGridEvents [" + std::string(filter) + "] [" + std::string(fallbackFilter) + "] [" +
            std::string(order) + "]");
        if (onFill)
            onFill();
    }
    void eventsInMap(std::string_view sql) override { add("eventsInMap " + std::string(sql)); }
    void eventsInwebBrowserWorkspace(std::string_view sql) override {
        add("eventsInwebBrowserWorkspace " + std::string(sql));
    }
    void visualizeEventsinRectangle(std::string_view utcFilter) override {
        add("visualizeEventsinRectangle " + std::string(utcFilter));
    }
    void pin2gif(std::string_view sql) override { add("pin2gif " + std::string(sql)); }
    void pictureMagnitudeEvents() override { add("pictureMagnitudeEvents"); }
    void selectEventOfMap(std::string_view utc) override {
        add("selectEventOfMap " + std::string(utc));
    }
    void showMouseCoordinates(std::string_view text) override {
        add("coordinates [" + std::string(text) + "]");
    }
    void showScale(std::string_view label) override { add("scale [" + std::string(label) + "]"); }
    void showSavedLegend() override {
        add("showSavedLegend");
        if (onLegend)
            onLegend();
    }
    bool searchWantsPlace() override { return wantsPlace; }
    void setSearchPlace(std::string_view latitude, std::string_view longitude) override {
        add("place [" + std::string(latitude) + "] [" + std::string(longitude) + "]");
    }

    bool global = true;
    bool wantsPlace = false;
    std::function<void()> onFill;
    std::function<void()> onLegend;
    Texts calls;

  private:
    void add(std::string text) { calls.push_back(std::move(text)); }
};

PageSnapshot message(std::string code) {
    PageSnapshot page;
    page.VALORE = std::move(code);
    return page;
}

PageSnapshot pointerAt(std::string place) {
    PageSnapshot page = message("77");
    page.Cursore = std::move(place);
    return page;
}

PageView viewOfItaly() {
    return {.CLAT = "42",
            .CLNG = "12",
            .ZOOM = "5",
            .BLAT = "36.0",
            .BLNG = "6.25",
            .TLAT = "47.50",
            .TLNG = "18.5",
            .SCALE = "305.7"};
}

class PageBridgeTest : public ::testing::Test {
  protected:
    explicit PageBridgeTest(NumberLocale numbers = NumberLocale::point())
        : locale(std::move(numbers)) {
        settings.RangeHoursOfEventsInMap = 24;
        settings.LastWorkSpace = "Global";
        map.page->selection = viewOfItaly();
        bridge.setObjectHTML();
    }

    void viewIs(const PageView& view) { map.page->selection = view; }
    std::string coordinatesOf(const std::string& place) {
        surroundings.calls.clear();
        bridge.HTML_onclick(pointerAt(place));
        return surroundings.calls.empty() ? "" : surroundings.calls.back();
    }
    std::string scaleOf(const std::string& metresPerPixel) {
        PageView view = viewOfItaly();
        view.SCALE = metresPerPixel;
        viewIs(view);
        bridge.boundsVisualizedMap();
        return bridge.scaleLabel();
    }

    NumberLocale locale;
    testing::ErrorHarness harness;
    testing::FakeClock clock;
    AppSettings settings;
    Session session;
    RecordingSurroundings surroundings;
    RecordingWebBrowser map;
    RecordingWebBrowser last;
    RecordingWebBrowser saved;
    PageBridge bridge{PageBrowsers{map, last, saved},
                      settings,
                      session,
                      clock,
                      locale,
                      surroundings,
                      harness.errors};
};

class PageBridgeUnderComma : public PageBridgeTest {
  protected:
    PageBridgeUnderComma() : PageBridgeTest(NumberLocale::comma()) {}
};

TEST_F(PageBridgeTest, DoesNothingAboutAnEmptyMessage) {
    bridge.HTML_onclick(message(""));
    bridge.HTML_onclick(message("<script>"));
    bridge.HTML_onclick(message("4"));
    EXPECT_EQ(surroundings.calls, Texts());
    EXPECT_EQ(map.calls, Texts());
}

TEST_F(PageBridgeTest, ShowsTheLatestHoursWhenThePageWantsItsMarkersAnew) {
    bridge.HTML_onclick(message("1"));
    EXPECT_EQ(surroundings.calls, Texts({"visualizeEventsinRectangle " + lastDay}));
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [1]="}));
}

TEST_F(PageBridgeTest, OnlyClearsThatMessageWithoutAnyHours) {
    settings.RangeHoursOfEventsInMap = 0;
    bridge.HTML_onclick(message("1"));
    EXPECT_EQ(surroundings.calls, Texts());
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [1]="}));
}

TEST_F(PageBridgeTest, SelectsTheEventOfAClickedMarker) {
    PageSnapshot page = message("2");
    page.MARSEL = "2021-01-14 05:45:26.600 Mg: 3.1";
    bridge.HTML_onclick(page);
    EXPECT_EQ(surroundings.calls, Texts({"selectEventOfMap 2021-01-14 05:45:26.600"}));
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [2]="}));
}

TEST_F(PageBridgeTest, SelectsNothingForATitleThatIsNone) {
    for (const std::string title : {"", "M", "no magnitude here"})
        bridge.event_click_map(title);
    EXPECT_EQ(surroundings.calls, Texts());
}

TEST_F(PageBridgeTest, ShowsTheEventsOfAChangedView) {
    bridge.HTML_onclick(message("3"));
    const std::string condition = italy + " AND " + lastDay;
    const std::string events = "select * from Events where " + condition;
    EXPECT_EQ(surroundings.calls,
              Texts({"FillGridEvents [" + condition + "] [] []", "eventsInMap " + events,
                     "pictureMagnitudeEvents", "pin2gif " + events + " order by UTC desc limit 1",
                     "scale [12km ]"}));
    EXPECT_EQ(map.calls, Texts({"snapshot", "MapClick.VALORE [3]=", "eventi.Onclick", "snapshot"}));
    EXPECT_EQ(settings.searchParQuery, condition);
}

TEST_F(PageBridgeUnderComma, ShowsTheSameEventsUnderAComma) {
    bridge.HTML_onclick(message("3"));
    EXPECT_EQ(settings.searchParQuery, italy + " AND " + lastDay);
}

TEST_F(PageBridgeTest, OnlyMovesTheScaleInSearchMode) {
    session.SearchModeOn = 1;
    bridge.HTML_onclick(message("3"));
    EXPECT_EQ(surroundings.calls, Texts({"scale [12km ]"}));
    EXPECT_EQ(settings.searchParQuery, "");
}

TEST_F(PageBridgeTest, OnlyMovesTheScaleOfAWorkspace) {
    surroundings.global = false;
    bridge.HTML_onclick(message("3"));
    EXPECT_EQ(surroundings.calls, Texts({"scale [12km ]"}));
}

TEST_F(PageBridgeTest, AddsTwoRangesForAViewAcrossTheMeridian) {
    PageView view = viewOfItaly();
    view.BLNG = "170";
    view.TLNG = "-170";
    viewIs(view);
    bridge.HTML_onclick(message("3"));
    EXPECT_NE(settings.searchParQuery.find("((Longitude BETWEEN 170 and 179.9999999 ) + "
                                           "(Longitude BETWEEN -179.9999999 and -170 ))"),
              std::string::npos);
}

TEST_F(PageBridgeTest, KeepsThePlainFormForAViewOfNoWidth) {
    PageView view = viewOfItaly();
    view.BLNG = view.TLNG = "180";
    viewIs(view);
    bridge.HTML_onclick(message("3"));
    EXPECT_NE(settings.searchParQuery.find("(Longitude >= 180) and (Longitude <= 180)"),
              std::string::npos);
}

TEST_F(PageBridgeTest, AnswersTheMessagesOfADragTogetherWithTheLatestView) {
    int fills = 0;
    surroundings.onFill = [&] {
        if (++fills > 1)
            return;
        PageView moved = viewOfItaly();
        moved.BLAT = "35";
        viewIs(moved);
        for (int step = 0; step < 50; ++step)
            bridge.HTML_onclick(message("3"));
    };
    bridge.HTML_onclick(message("3"));
    EXPECT_EQ(fills, 2);
    EXPECT_TRUE(settings.searchParQuery.starts_with("(Latitude >= 35)"));
}

TEST_F(PageBridgeTest, EndsADragWhenTheProgramCloses) {
    int fills = 0;
    surroundings.onFill = [&] {
        ++fills;
        bridge.HTML_onclick(message("3"));
        session.Closing = fills == 3;
    };
    bridge.HTML_onclick(message("3"));
    EXPECT_EQ(fills, 3);
}

TEST_F(PageBridgeTest, ShowsWhereThePointerIs) {
    EXPECT_EQ(coordinatesOf("42.12345 | 12.34500"), "coordinates [ 42.12345   012.34500]");
    EXPECT_EQ(coordinatesOf("-42.12345 | -12.34500"), "coordinates [-42.12345  -012.34500]");
    EXPECT_EQ(coordinatesOf("0.00000 | -180.00000"), "coordinates [ 00.00000  -180.00000]");
}

TEST_F(PageBridgeUnderComma, ShowsThePointerWithADot) {
    EXPECT_EQ(coordinatesOf("42.12345 | 12.34500"), "coordinates [ 42.12345   012.34500]");
}

TEST_F(PageBridgeTest, ShowsZerosForAPlaceThatIsNone) {
    EXPECT_EQ(coordinatesOf(""), "coordinates [ 00.00000   000.00000]");
    EXPECT_EQ(coordinatesOf("NaN | | 7"), "coordinates [ 00.00000   007.00000]");
}

TEST_F(PageBridgeTest, LeavesTheMessageOfTheMovingPointer) {
    bridge.HTML_onclick(pointerAt("1 | 2"));
    EXPECT_EQ(map.calls, Texts());
}

TEST_F(PageBridgeTest, AnswersAPendingMessageWhenThePointerMoves) {
    PageSnapshot page = message("2");
    page.MARSEL = "2021-01-14 05:45:26.600 Mg: 3.1";
    bridge.HTML_onmousemove(page);
    EXPECT_EQ(surroundings.calls, Texts({"selectEventOfMap 2021-01-14 05:45:26.600"}));
}

TEST_F(PageBridgeTest, GivesAClickedPlaceToTheSearchWindow) {
    surroundings.wantsPlace = true;
    PageSnapshot page = message("78");
    page.Cursore = "42.123456789 | 12.5";
    bridge.HTML_onclick(page);
    EXPECT_EQ(surroundings.calls, Texts({"place [42.123456789] [12.5]"}));
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [78]="}));
}

TEST_F(PageBridgeTest, LeavesAClickThatNobodyWants) {
    PageSnapshot page = message("78");
    page.Cursore = "42 | 12";
    bridge.HTML_onclick(page);
    EXPECT_EQ(surroundings.calls, Texts());
    EXPECT_EQ(map.calls, Texts());
}

TEST_F(PageBridgeTest, TakesNoPlaceFromAnEmptyClick) {
    surroundings.wantsPlace = true;
    bridge.HTML_onclick(message("78"));
    EXPECT_EQ(surroundings.calls, Texts());
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [78]="}));
}

TEST_F(PageBridgeTest, ClearsTheMessageBeforeItShowsTheLegend) {
    surroundings.onLegend = [this] { map.calls.emplace_back("legend"); };
    bridge.HTML_onclick(message("99"));
    EXPECT_EQ(map.calls, Texts({"MapClick.VALORE [99]=", "legend"}));
}

TEST_F(PageBridgeTest, DoesNotWipeOutAMessageThatCameInMeanwhile) {
    map.pageWrites("MapClick", "VALORE", "77");
    PageSnapshot page = message("2");
    page.MARSEL = "2021-01-14 05:45:26.600 Mg: 3.1";
    bridge.HTML_onclick(page);
    EXPECT_EQ(map.attribute("MapClick", "VALORE"), "77");
}

TEST_F(PageBridgeTest, ReadsTheView) {
    const MapBounds& bounds = bridge.boundsVisualizedMap();
    EXPECT_EQ(bounds.south, "36");
    EXPECT_EQ(bounds.west, "6.25");
    EXPECT_EQ(bounds.north, "47.5");
    EXPECT_EQ(bounds.east, "18.5");
    EXPECT_EQ(bridge.view().ZOOM, "5");
    EXPECT_EQ(bridge.scaleLabel(), "12km ");
}

TEST_F(PageBridgeTest, ForgetsTheViewOfAPageThatIsLeft) {
    bridge.boundsVisualizedMap();
    bridge.mainMapNavigated();
    EXPECT_EQ(bridge.view().ZOOM, "");
    EXPECT_EQ(bridge.view().CLAT, "");
}

TEST_F(PageBridgeUnderComma, ReadsTheViewAsDotText) {
    EXPECT_EQ(bridge.boundsVisualizedMap().north, "47.5");
}

TEST_F(PageBridgeTest, KnowsTheWholeWorldBeforeThePageHasAView) {
    viewIs({});
    EXPECT_EQ(bridge.boundsVisualizedMap().west, "-180");
    map.page.reset();
    EXPECT_EQ(bridge.boundsVisualizedMap().north, "90");
    EXPECT_EQ(bridge.scaleLabel(), "");
}

TEST_F(PageBridgeTest, LabelsTheScaleInKilometresFromAThousandMetresOn) {
    EXPECT_EQ(scaleOf("25"), "1km ");
    EXPECT_EQ(scaleOf("49.99"), "1km ");
    EXPECT_EQ(scaleOf("24.99"), "999m ");
    EXPECT_EQ(scaleOf("0.02"), "0m ");
    EXPECT_EQ(scaleOf("156543.03392"), "6261km ");
}

TEST_F(PageBridgeTest, LabelsNoScaleWithTwoDecimals) {
    EXPECT_EQ(scaleOf("0"), ".00m ");
    EXPECT_EQ(scaleOf("undefined"), ".00m ");
    EXPECT_EQ(scaleOf("-0.05"), "-2.00m ");
    EXPECT_EQ(scaleOf("-0.01"), "-.40m ");
}

TEST_F(PageBridgeUnderComma, LabelsNoScaleWithTheLocalesMark) {
    EXPECT_EQ(scaleOf("0"), ",00m ");
}

TEST_F(PageBridgeTest, WaitsForThePageToBeComplete) {
    map.readyState = 1;
    int turns = 0;
    clock.onPump = [&] { map.readyState = ++turns == 5 ? 4 : 1; };
    bridge.boundsVisualizedMap();
    EXPECT_EQ(turns, 5);
    EXPECT_EQ(bridge.view().ZOOM, "5");
}

TEST_F(PageBridgeTest, EndsItsWaitWhenTheProgramCloses) {
    map.readyState = 1;
    clock.onPump = [&] { session.WaitCounter = Session::waitCounterLimit; };
    bridge.boundsVisualizedMap();
    EXPECT_GE(session.WaitCounter, Session::waitCounterLimit);
}

TEST_F(PageBridgeTest, AnswersTheReloadOfTheSavedMapWithTheLatestHours) {
    bridge.WRKSp_onclick(message("9999"));
    EXPECT_EQ(surroundings.calls,
              Texts({"eventsInwebBrowserWorkspace select * from Events where " + lastDay}));
}

TEST_F(PageBridgeTest, AnswersTheReloadOfTheSavedMapWithTheWorkspace) {
    settings.LastWorkSpace = "Etna";
    settings.searchParQuery = "(Magnitude >= '2')";
    bridge.WRKSp_onclick(message("9999"));
    EXPECT_EQ(surroundings.calls,
              Texts({"eventsInwebBrowserWorkspace select * from Events where (Magnitude >= '2')"}));
}

TEST_F(PageBridgeTest, DoesNotAnswerTheSavedMapOtherwise) {
    bridge.WRKSp_onclick(message("99"));
    saved.readyState = 3;
    bridge.WRKSp_onclick(message("9999"));
    saved.readyState = 4;
    settings.RangeHoursOfEventsInMap = 0;
    bridge.WRKSp_onclick(message("9999"));
    EXPECT_EQ(surroundings.calls, Texts());
}

TEST_F(PageBridgeTest, IsLiveOnceThePagesOfAReloadStand) {
    EXPECT_FALSE(bridge.mapIsLive());
    map.listener->documentComplete();
    EXPECT_FALSE(bridge.mapIsLive()); // "about:blank" of the start
    bridge.mainMapNavigated();
    map.listener->documentComplete();
    EXPECT_FALSE(bridge.mapIsLive()); // half a reload
    bridge.lastEventMapNavigated();
    map.listener->documentComplete();
    EXPECT_TRUE(bridge.mapIsLive());
    bridge.mapsLeft();
    EXPECT_FALSE(bridge.mapIsLive());
}

TEST_F(PageBridgeTest, TellsOnceForEachReloadThatItsDocumentIsReady) {
    const auto reload = [this] {
        bridge.mainMapNavigated();
        bridge.lastEventMapNavigated();
        map.listener->documentComplete();
    };
    EXPECT_FALSE(bridge.takeDocumentReady());
    reload();
    EXPECT_TRUE(bridge.takeDocumentReady());
    EXPECT_FALSE(bridge.takeDocumentReady());
    EXPECT_TRUE(bridge.mapIsLive()); // that stays
    reload();
    bridge.mapsLeft();
    EXPECT_FALSE(bridge.takeDocumentReady());
}

TEST_F(PageBridgeTest, HandsTheMarkersOfAWorkspaceToANewPage) {
    settings.LastWorkSpace = "Etna";
    settings.searchParQuery = "(Magnitude >= '2')";
    bridge.mainMapNavigated();
    bridge.lastEventMapNavigated();
    map.listener->documentComplete();
    EXPECT_EQ(surroundings.calls,
              Texts({"eventsInMap select * from Events where (Magnitude >= '2')"}));
    map.listener->documentComplete(); // the flags are used up
    EXPECT_EQ(surroundings.calls.size(), 1U);
}

TEST_F(PageBridgeTest, ListensToTheMapAndToTheSavedMap) {
    map.listener->documentClicked(pointerAt("1 | 2"));
    map.listener->documentMouseMoved(pointerAt("1 | 3"));
    saved.listener->documentMouseMoved(message("9999"));
    saved.listener->documentComplete();
    saved.listener->documentClicked(message("9999"));
    EXPECT_EQ(surroundings.calls.size(), 3U);
    EXPECT_EQ(last.listener, nullptr);
}

TEST_F(PageBridgeTest, ReportsHoursThatLeadOutOfTheCalendarAndGoesOn) {
    settings.RangeHoursOfEventsInMap = 2147483647;
    harness.prompts.expectRuntimeError("Invalid procedure call", ErrorAnswer::Ignore);
    bridge.HTML_onclick(message("1"));
    EXPECT_EQ(surroundings.calls, Texts({"visualizeEventsinRectangle "}));
}

} // namespace
} // namespace tremor
