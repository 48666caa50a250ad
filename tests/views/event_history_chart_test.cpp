#include "core/dates.h"
#include "support/fakes.h"
#include "views/event_history_chart.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::TemporaryFolder;

class RecordingView : public ChartView {
  public:
    void setContents(ChartContents contents) override {
        ++drawings;
        shown = std::move(contents);
    }
    std::vector<std::int32_t> offsets() const {
        std::vector<std::int32_t> values;
        for (const ChartEvent& event : shown.events)
            values.push_back(event.offset);
        return values;
    }
    std::vector<double> magnitudes() const {
        std::vector<double> values;
        for (const ChartEvent& event : shown.events)
            values.push_back(event.magnitude);
        return values;
    }
    int drawings = 0;
    ChartContents shown;
};

using Offsets = std::vector<std::int32_t>;
using Magnitudes = std::vector<double>;

// Runs under a point and under a comma locale.
class EventHistoryChartTest : public ::testing::TestWithParam<bool> {
  protected:
    EventHistoryChartTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        // The magnitude has no type, so that every kind of value can be tried.
        run("CREATE TABLE Events ('UTC' DATETIME NOT NULL, 'Magnitude')");
        settings.startDate = "2021-01-14 00:00:00";
        settings.endDate = "2021-01-15 00:00:00";
        settings.searchParQuery = "UTC > ''";
    }

    void run(const std::string& sql) {
        EXPECT_EQ(database.slsExe(sql), 0) << database.slGetError();
    }
    void addEvent(const std::string& utc, const std::string& magnitude) {
        run("insert into Events values ('" + utc + "', '" + magnitude + "')");
    }

    TemporaryFolder folder;
    Database database;
    Session session;
    AppSettings settings;
    ErrorHarness harness;
    RecordingView view;
    EventHistoryChart chart{database, session,
                            settings, GetParam() ? NumberLocale::comma() : NumberLocale::point(),
                            view,     harness.errors};
};

INSTANTIATE_TEST_SUITE_P(Locales, EventHistoryChartTest, ::testing::Bool(),
                         [](const auto& locale) { return locale.param ? "Comma" : "Point"; });

TEST_P(EventHistoryChartTest, ShowsTheEventsOfTheConditionInForceOverThePeriod) {
    addEvent("2021-01-14 00:01:00.150", "4.5");
    addEvent("2021-01-14 12:00:00", "2");
    addEvent("2021-01-14 13:00:00", "9.9");
    settings.searchParQuery = "(Magnitude <= '5')";
    session.LastUtcFilter = "UTC = 'never'";
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.shown.startDate, "2021-01-14 00:00:00");
    EXPECT_EQ(view.shown.endDate, "2021-01-15 00:00:00");
    EXPECT_EQ(view.shown.span, 86400);
    EXPECT_EQ(view.offsets(), (Offsets{60, 43200}));
    EXPECT_EQ(view.magnitudes(), (Magnitudes{4.5, 2}));
    EXPECT_EQ(dateToText(view.shown.events.at(0).time), "2021-01-14 00:01:00");
}

TEST_P(EventHistoryChartTest, TakesTheLastTimeFilterWithoutACondition) {
    addEvent("2021-01-14 00:01:00", "4");
    addEvent("2021-01-16 00:01:00", "5");
    settings.searchParQuery.clear();
    session.LastUtcFilter = "(UTC >= '2021-01-14 00:00:00') and (UTC <= '2021-01-15 00:00:00')";
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.magnitudes(), Magnitudes{4});
}

TEST_P(EventHistoryChartTest, ShowsTheLegendAloneWithoutEvents) {
    settings.startDate = "no date"; // nobody asks for it
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.drawings, 1);
    EXPECT_EQ(view.shown.startDate, "no date");
    EXPECT_TRUE(view.shown.events.empty());
}

TEST_P(EventHistoryChartTest, ShowsTheLegendAloneForARefusedCondition) {
    addEvent("2021-01-14 00:01:00", "4");
    chart.pictureMagnitudeEvents();
    ASSERT_EQ(view.shown.events.size(), 1U);
    for (const char* condition :
         {"(Magnitude >= '4'' )", "UTC > ''; delete from Events", "Nobody"}) {
        settings.searchParQuery = condition;
        chart.pictureMagnitudeEvents();
        EXPECT_TRUE(view.shown.events.empty()) << condition;
    }
    EXPECT_EQ(view.drawings, 4);
}

TEST_P(EventHistoryChartTest, ShowsTheLegendAloneWithoutAnyFilterOrCatalogue) {
    addEvent("2021-01-14 00:01:00", "4");
    settings.searchParQuery.clear();
    chart.pictureMagnitudeEvents();
    EXPECT_TRUE(view.shown.events.empty());
    database.slClose();
    settings.searchParQuery = "UTC > ''";
    chart.pictureMagnitudeEvents();
    EXPECT_TRUE(view.shown.events.empty());
    EXPECT_EQ(view.drawings, 2);
}

TEST_P(EventHistoryChartTest, ShowsNoBarAndAsksNothingForAPeriodOfNoLength) {
    addEvent("2021-01-14 00:00:00", "4");
    settings.endDate = settings.startDate;
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.shown.span, 0);
    EXPECT_TRUE(view.shown.events.empty());
    EXPECT_EQ(view.shown.endDate, settings.startDate);
}

TEST_P(EventHistoryChartTest, ShowsNoBarForAPeriodThatEndsBeforeItBegins) {
    addEvent("2021-01-14 00:00:00", "4");
    settings.endDate = "2021-01-13 00:00:00";
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.shown.span, 0);
    EXPECT_TRUE(view.shown.events.empty());
}

TEST_P(EventHistoryChartTest, HasOffsetZeroForAnEventAtOrBeforeTheStart) {
    addEvent("2021-01-14 00:00:00.900", "1");
    addEvent("2021-01-13 23:59:59", "2");
    addEvent("1621-01-14 00:00:00", "3");
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.offsets(), (Offsets{0, 0, 0}));
    EXPECT_EQ(dateToText(view.shown.events.at(1).time), "2021-01-13 23:59:59");
}

TEST_P(EventHistoryChartTest, HoldsTheOffsetOfAnEventOfAnotherCenturyTo32Bits) {
    addEvent("9999-12-31 00:00:00", "1");
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.offsets(), Offsets{std::numeric_limits<std::int32_t>::max()});
}

TEST_P(EventHistoryChartTest, LeavesOutEventsAtNoTime) {
    addEvent("2021-02-30 00:00:00", "1");
    addEvent("2021-01-14T00:00:00", "2");
    addEvent("2021-01-14 25:00:00", "3");
    addEvent("tomorrow", "4");
    addEvent("", "5");
    addEvent("2021-01-14 00:00:01", "6");
    run("insert into Events values (x'32003100', 7)");
    settings.searchParQuery = "1 = 1";
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.magnitudes(), Magnitudes{6});
}

TEST_P(EventHistoryChartTest, CountsAMagnitudeThatIsNoNumberAsZero) {
    for (const char* magnitude : {"", "NaN", "inf", "ML 3", "1e999", "4.5.6"})
        addEvent("2021-01-14 00:00:01", magnitude);
    run("insert into Events values ('2021-01-14 00:00:01', null)");
    run("insert into Events values ('2021-01-14 00:00:01', 3.5)");
    run("insert into Events values ('2021-01-14 00:00:01', -1)");
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.magnitudes(), (Magnitudes{0, 0, 0, 0, 0, 0, 0, 3.5, -1}));
}

TEST_P(EventHistoryChartTest, ReportsAPeriodThatIsNoDateAndShowsNoBar) {
    addEvent("2021-01-14 00:00:01", "4");
    settings.startDate = "yesterday";
    harness.prompts.expectRuntimeError("Type mismatch", ErrorAnswer::Ignore);
    chart.pictureMagnitudeEvents();
    EXPECT_TRUE(view.shown.events.empty());
    settings.startDate = "2021-01-14 00:00:00";
    settings.endDate = "";
    harness.prompts.expectRuntimeError("pictureMagnitudeEvents (Form - panel)",
                                       ErrorAnswer::Ignore);
    chart.pictureMagnitudeEvents();
    EXPECT_TRUE(view.shown.events.empty());
    EXPECT_EQ(view.drawings, 2);
    EXPECT_EQ(harness.errors.callStack().depth(), 0);
}

TEST_P(EventHistoryChartTest, ReadsAnewAfterAResize) {
    addEvent("2021-01-14 00:00:01", "4");
    chart.PicEvHist_Resize();
    EXPECT_EQ(view.magnitudes(), Magnitudes{4});
}

TEST_P(EventHistoryChartTest, KeepsWhatItShowsWhenResizedWhileAStatementRunsOrTheProgramEnds) {
    session.TicksHeld = true;
    chart.PicEvHist_Resize();
    session.TicksHeld = false;
    session.Closing = true;
    chart.PicEvHist_Resize();
    EXPECT_EQ(view.drawings, 0);
}

TEST_P(EventHistoryChartTest, LeavesTheResultThatSomebodyElseGoesThrough) {
    addEvent("2021-01-14 00:00:01", "4");
    addEvent("2021-01-14 00:00:02", "5");
    ASSERT_EQ(database.slsSel("select Magnitude from Events"), 0);
    ASSERT_TRUE(database.slsGetRow());
    chart.pictureMagnitudeEvents();
    EXPECT_EQ(view.shown.events.size(), 2U);
    ASSERT_TRUE(database.slsGetRow());
    EXPECT_EQ(database.slsFX(1), "5");
}

} // namespace
} // namespace tremor
