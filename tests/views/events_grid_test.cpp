#include "core/dates.h"
#include "support/fakes.h"
#include "views/events_grid.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tremor {
namespace {

using testing::ErrorHarness;
using testing::FakeClock;
using testing::TemporaryFolder;

// The table without a window.
class MemoryGrid : public GridView {
  public:
    void clearRows() override {
        rows_ = {};
        colouredRows.clear();
    }
    void setRows(ResultSet rows) override {
        rows_ = std::move(rows);
        colouredRows.clear();
    }
    std::int64_t rowCount() const override {
        return static_cast<std::int64_t>(rows_.rowCount()) + 1;
    }
    void setHeader(int column, std::string_view text) override {
        headers_.at(static_cast<std::size_t>(column)) = text;
    }
    std::string header(int column) const override {
        return headers_.at(static_cast<std::size_t>(column));
    }
    void setColumnWidth(int column, std::int32_t twips) override { widths[column] = twips; }
    std::string cell(std::int64_t row, int column) const override {
        return std::string(
            rows_.cell(static_cast<std::size_t>(row - 1), static_cast<std::size_t>(column - 1)));
    }
    void setRowSelected(std::int64_t row, bool selected) override {
        if (selected)
            colouredRows.insert(row);
        else
            colouredRows.erase(row);
    }
    void setRowsGrey(const std::vector<std::int64_t>&) override {}
    bool rowVisible(std::int64_t row) const override { return row != hiddenRow; }
    std::int64_t topRow() const override { return top; }
    void setTopRow(std::int64_t row) override { top = row; }

    std::vector<std::string> headerTexts() const { return {headers_.begin(), headers_.end()}; }
    std::vector<std::string> column(int number) const {
        std::vector<std::string> texts;
        for (std::int64_t row = 1; row < rowCount(); ++row)
            texts.push_back(cell(row, number));
        return texts;
    }

    std::map<int, std::int32_t> widths;
    std::set<std::int64_t> colouredRows;
    std::int64_t top = 1;
    std::int64_t hiddenRow = 0; // the one row that is scrolled out of sight

  private:
    ResultSet rows_;
    std::array<std::string, 7> headers_;
};

class RecordingMap : public GridMap {
  public:
    void removeAll() override { calls.emplace_back("removeAll"); }
    MapBounds boundsVisualizedMap() override {
        calls.emplace_back("boundsVisualizedMap");
        return bounds;
    }
    void selectMarker(std::string_view utc) override {
        calls.push_back("selectMarker " + std::string(utc));
    }
    MapBounds bounds{"35", "6", "48", "19"};
    std::vector<std::string> calls;
};

class RecordingReport : public TownsReport {
  public:
    void eventOnPOI(const SelectedEvent& event) override { events.push_back(event); }
    std::vector<SelectedEvent> events;
};

using Texts = std::vector<std::string>;

constexpr const char* everything = "UTC > ''";

class EventsGridTest : public ::testing::Test {
  protected:
    EventsGridTest() {
        EXPECT_EQ(database.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        EXPECT_EQ(database.slsExe("CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, "
                                  "'Longitude' REAL, 'Depth' REAL, 'Magnitude' DOUBLE, 'Source' "
                                  "TEXT, 'null' TEXT)"),
                  0);
        settings.RangeHoursOfEventsInMap = 24;
        makeGrid(NumberLocale::point());
    }

    void makeGrid(const NumberLocale& locale) {
        grid = std::make_unique<EventsGrid>(database, session, settings, clock, locale, view, map,
                                            report, harness.prompts, harness.errors, [this] {
                                                ++openings;
                                                return openSucceeds;
                                            });
    }

    void add(const std::string& utc, const std::string& latitude, const std::string& longitude,
             const std::string& magnitude, const std::string& depth,
             const std::string& source = "INGV") {
        ASSERT_EQ(database.slsExe("insert INTO Events(UTC, Latitude, Longitude, "
                                  "Depth,Magnitude,Source) Values ('" +
                                  utc + "', '" + latitude + "', '" + longitude + "', '" + depth +
                                  "', '" + magnitude + "', '" + source + "')"),
                  0);
    }

    // Three events whose orders by time, magnitude and depth all differ. The clock stands at
    // 2014-03-07 09:05:12, so that all of them belong to the last 24 hours.
    void addThree() {
        add("2014-03-07 01:00:00.000", "42.5", "13.25", "10.1", "8");
        add("2014-03-07 02:00:00.000", "43", "13", "4", "100");
        add("2014-03-07 03:00:00.000", "44", "12", "9", "25.5", "USGS");
    }

    TemporaryFolder folder;
    Database database;
    Session session;
    AppSettings settings;
    FakeClock clock;
    MemoryGrid view;
    RecordingMap map;
    RecordingReport report;
    ErrorHarness harness;
    int openings = 0;
    bool openSucceeds = true;
    std::unique_ptr<EventsGrid> grid;
};

constexpr const char* lastDay = "(UTC >= '2014-03-06 09:05:12') and (UTC <= '2014-03-07 09:05:12')";

// FillGridEvents

TEST_F(EventsGridTest, ShowsTheSixColumnsBehindTheHiddenOne) {
    add("2014-03-07 01:00:00.000", "42.5", "13", "4.1", "8", "SURVEY-INGV");
    grid->FillGridEvents(everything, "", "");
    EXPECT_EQ(view.headerTexts(),
              (Texts{"", "UTC", "Latitude", "Longitude", "Mg", "Depth", "Source"}));
    ASSERT_EQ(view.rowCount(), 2);
    EXPECT_EQ(view.cell(1, 1), "2014-03-07 01:00:00.000");
    EXPECT_EQ(view.cell(1, 2), "42.5");
    EXPECT_EQ(view.cell(1, 3), "13.0");
    EXPECT_EQ(view.cell(1, 4), "4.1");
    EXPECT_EQ(view.cell(1, 5), "8.0");
    EXPECT_EQ(view.cell(1, 6), "SURVEY-INGV");
}

TEST_F(EventsGridTest, ShowsTheNewestFirstWithoutAnOrder) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    EXPECT_EQ(view.column(1), (Texts{"2014-03-07 03:00:00.000", "2014-03-07 02:00:00.000",
                                     "2014-03-07 01:00:00.000"}));
}

TEST_F(EventsGridTest, TakesTheOrderZeroForNoOrder) {
    addThree();
    grid->FillGridEvents(everything, "", "0");
    EXPECT_EQ(view.column(5), (Texts{"25.5", "100.0", "8.0"}));
    EXPECT_TRUE(map.calls.empty()); // no recovery
    EXPECT_EQ(settings.searchParQuery, "");
}

TEST_F(EventsGridTest, TakesTheGivenOrder) {
    addThree();
    grid->FillGridEvents(everything, "", " ORDER BY Depth ASC");
    EXPECT_EQ(view.column(5), (Texts{"8.0", "25.5", "100.0"}));
}

TEST_F(EventsGridTest, TakesTheFallbackFilterOnlyForAnEmptyFilter) {
    addThree();
    grid->FillGridEvents("", "Source = 'USGS'", "");
    EXPECT_EQ(view.column(6), (Texts{"USGS"}));
    grid->FillGridEvents("Source = 'INGV'", "Source = 'USGS'", "");
    EXPECT_EQ(view.column(6), (Texts{"INGV", "INGV"}));
}

TEST_F(EventsGridTest, LeavesOnlyTheHeaderWhenNothingMatches) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->FillGridEvents("Source = 'EMSC'", "", "");
    EXPECT_EQ(view.rowCount(), 1);
    EXPECT_EQ(view.header(1), "UTC");
    EXPECT_TRUE(map.calls.empty());
}

TEST_F(EventsGridTest, ReplacesARefusedFilterByTheVisibleRectangleWithoutAMessage) {
    addThree();
    add("2014-03-05 23:00:00.000", "42", "13", "5", "5"); // before the last day
    add("2014-03-07 04:00:00.000", "20", "13", "5", "5"); // south of the map
    grid->FillGridEvents("no such condition", "", "");
    EXPECT_EQ(map.calls, (Texts{"removeAll", "boundsVisualizedMap"}));
    EXPECT_EQ(settings.searchParQuery,
              std::string("(Latitude >= 35) and (Latitude <= 48) AND (Longitude >= 6) and "
                          "(Longitude <= 19) AND ") +
                  lastDay);
    EXPECT_EQ(view.column(1), (Texts{"2014-03-07 03:00:00.000", "2014-03-07 02:00:00.000",
                                     "2014-03-07 01:00:00.000"}));
}

TEST_F(EventsGridTest, RecoversFromAnEmptyFilterWithAnEmptyFallback) {
    addThree();
    grid->FillGridEvents("", "", "");
    EXPECT_EQ(map.calls, (Texts{"removeAll", "boundsVisualizedMap"}));
    EXPECT_EQ(view.rowCount(), 4);
}

TEST_F(EventsGridTest, KeepsTheOrderInTheRecovery) {
    addThree();
    grid->FillGridEvents("no such condition", "", " ORDER BY Depth ASC");
    EXPECT_EQ(view.column(5), (Texts{"8.0", "25.5", "100.0"}));
}

class EventsGridLocaleTest : public EventsGridTest,
                             public ::testing::WithParamInterface<NumberLocale> {
  protected:
    EventsGridLocaleTest() { makeGrid(GetParam()); }

    void addAroundTheGlobe() {
        add("2014-03-07 01:00:00.000", "0", "175", "5", "1");
        add("2014-03-07 02:00:00.000", "0", "-175", "5", "2");
        add("2014-03-07 03:00:00.000", "0", "15", "5", "3");
    }
};

TEST_P(EventsGridLocaleTest, SelectsAcrossTheDateLineByASumOfTwoRanges) {
    addAroundTheGlobe();
    map.bounds = {"-10.5", "170", "10.5", "-170"};
    grid->FillGridEvents("", "", "");
    EXPECT_EQ(settings.searchParQuery,
              std::string("(Latitude >= -10.5) and (Latitude <= 10.5) AND ((Longitude BETWEEN 170 "
                          "and 179.9999999 ) + (Longitude BETWEEN -179.9999999 and -170 )) AND ") +
                  lastDay);
    EXPECT_EQ(view.column(5), (Texts{"2.0", "1.0"}));
}

TEST_P(EventsGridLocaleTest, SelectsAViewThatDoesNotCrossTheDateLineByOneRange) {
    addAroundTheGlobe();
    map.bounds = {"-10.5", "10", "10.5", "20"};
    grid->FillGridEvents("", "", "");
    EXPECT_EQ(settings.searchParQuery,
              std::string("(Latitude >= -10.5) and (Latitude <= 10.5) AND (Longitude >= 10) and "
                          "(Longitude <= 20) AND ") +
                  lastDay);
    EXPECT_EQ(view.column(5), (Texts{"3.0"}));
}

// As texts "9.5" would lie above "10.25".
TEST_P(EventsGridLocaleTest, ComparesTheBoundsAsNumbers) {
    map.bounds = {"-1", "9.5", "1", "10.25"};
    grid->FillGridEvents("", "", "");
    EXPECT_NE(settings.searchParQuery.find("(Longitude >= 9.5) and (Longitude <= 10.25)"),
              std::string::npos)
        << settings.searchParQuery;
}

TEST_P(EventsGridLocaleTest, TakesOneRangeForEqualBounds) {
    map.bounds = {"-1", "180", "1", "180"};
    grid->FillGridEvents("", "", "");
    EXPECT_NE(settings.searchParQuery.find("(Longitude >= 180) and (Longitude <= 180)"),
              std::string::npos)
        << settings.searchParQuery;
}

INSTANTIATE_TEST_SUITE_P(PointAndComma, EventsGridLocaleTest,
                         ::testing::Values(NumberLocale::point(), NumberLocale::comma()));

TEST_F(EventsGridTest, ShowsNothingWhenTheRecoveryHasNoTimeRange) {
    addThree();
    settings.RangeHoursOfEventsInMap = 2'000'000'000;
    harness.prompts.expectRuntimeError("FillGridEvents", ErrorAnswer::Ignore);
    grid->FillGridEvents("", "", "");
    EXPECT_EQ(view.rowCount(), 1);
}

TEST_F(EventsGridTest, WritesTheHeadersOnceACatalogueIsThere) {
    const std::string path = database.path();
    database.slClose();
    grid->FillGridEvents(everything, "", "");
    EXPECT_EQ(view.rowCount(), 1);
    EXPECT_EQ(view.headerTexts(), (Texts{"", "", "", "", "Mg", "", ""}));

    ASSERT_EQ(database.slsOpen(path, ""), 0);
    addThree();
    grid->FillGridEvents(everything, "", "");
    EXPECT_EQ(view.rowCount(), 4);
    EXPECT_EQ(view.headerTexts(),
              (Texts{"", "UTC", "Latitude", "Longitude", "Mg", "Depth", "Source"}));
}

TEST_F(EventsGridTest, AnswersAFilterThatWouldRunASecondStatementByTheRecovery) {
    addThree();
    grid->FillGridEvents("1 ; delete from Events where 1", "", "");
    EXPECT_EQ(map.calls, (Texts{"removeAll", "boundsVisualizedMap"}));
    EXPECT_EQ(view.rowCount(), 4);
}

// dimensionamentoGrid

TEST_F(EventsGridTest, SetsTheColumnWidthsAndLeavesTheLastColumnAlone) {
    grid->dimensionamentoGrid();
    EXPECT_EQ(view.widths, (std::map<int, std::int32_t>{
                               {0, 0}, {1, 1900}, {2, 670}, {3, 800}, {4, 500}, {5, 540}}));
    EXPECT_EQ(view.header(4), "Mg");
}

TEST_F(EventsGridTest, LeavesTheHeaderOfTheMagnitudeAloneOnceTheHeadersStand) {
    grid->FillGridEvents(everything, "", "");
    grid->sortEvents(4);
    grid->dimensionamentoGrid();
    EXPECT_EQ(view.header(4), "Mg "); // the mark of the order has not been overwritten
}

// sortEvents

TEST_F(EventsGridTest, SortsDescendingThenAscendingThenDescending) {
    addThree();
    grid->FillGridEvents("Depth > 8", "", "");
    grid->GridEvents_Click(0, 5);
    EXPECT_EQ(view.column(5), (Texts{"100.0", "25.5"})); // the filter is still there
    EXPECT_EQ(view.header(5), "Depth ");
    grid->GridEvents_Click(0, 5);
    EXPECT_EQ(view.column(5), (Texts{"25.5", "100.0"}));
    EXPECT_EQ(view.header(5), "Depth");
    grid->GridEvents_Click(0, 5);
    EXPECT_EQ(view.column(5), (Texts{"100.0", "25.5"}));
    EXPECT_EQ(view.header(5), "Depth ");
}

TEST_F(EventsGridTest, SortsMagnitudesAsNumbersUnderTheirShortHeader) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->sortEvents(4);
    EXPECT_EQ(view.column(4), (Texts{"10.1", "9.0", "4.0"}));
    grid->sortEvents(4);
    EXPECT_EQ(view.column(4), (Texts{"4.0", "9.0", "10.1"}));
}

TEST_F(EventsGridTest, KeepsTheFallbackFilterWhenSorting) {
    addThree();
    grid->FillGridEvents("", "Depth > 8", "");
    grid->sortEvents(5);
    EXPECT_EQ(view.column(5), (Texts{"100.0", "25.5"}));
}

TEST_F(EventsGridTest, MovesTheMarkToAnotherColumn) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->sortEvents(4);
    grid->sortEvents(2);
    EXPECT_EQ(view.headerTexts(),
              (Texts{"", "UTC", "Latitude ", "Longitude", "Mg", "Depth", "Source"}));
    EXPECT_EQ(view.column(2), (Texts{"44.0", "43.0", "42.5"}));
}

TEST_F(EventsGridTest, SortsTheRefusedFilterByRecoveringAgain) {
    addThree();
    grid->FillGridEvents("no such condition", "", "");
    grid->sortEvents(5);
    EXPECT_EQ(map.calls,
              (Texts{"removeAll", "boundsVisualizedMap", "removeAll", "boundsVisualizedMap"}));
    EXPECT_EQ(view.column(5), (Texts{"100.0", "25.5", "8.0"}));
}

TEST_F(EventsGridTest, IgnoresTheHeaderBeforeTheFirstFillAndTheHiddenColumn) {
    grid->dimensionamentoGrid();
    grid->GridEvents_Click(0, 4);
    EXPECT_EQ(view.header(4), "Mg");
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(0, 0);
    EXPECT_EQ(view.header(0), "");
    EXPECT_TRUE(map.calls.empty());
}

// GridEvents_Click and the selection colour

TEST_F(EventsGridTest, SelectsTheClickedRowReportsItsTownsAndSelectsItsMarker) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(3, 2);
    EXPECT_EQ(view.colouredRows, (std::set<std::int64_t>{3}));
    EXPECT_EQ(openings, 1);
    ASSERT_EQ(report.events.size(), 1U);
    const SelectedEvent& event = report.events.front();
    EXPECT_EQ(event.utc, "2014-03-07 01:00:00.000");
    EXPECT_EQ(event.latitude, "42.5");
    EXPECT_EQ(event.longitude, "13.25");
    EXPECT_EQ(event.magnitude, "10.1");
    EXPECT_EQ(event.depth, "8.0");
    EXPECT_EQ(event.source, "INGV");
    EXPECT_EQ(map.calls, (Texts{"selectMarker 2014-03-07 01:00:00.000"}));
}

TEST_F(EventsGridTest, MovesTheColourToTheNextClickedRow) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(1, 1);
    grid->GridEvents_Click(2, 1);
    EXPECT_EQ(view.colouredRows, (std::set<std::int64_t>{2}));
}

TEST_F(EventsGridTest, DoesNothingOnAClickWhenOnlyTheHeaderIsThere) {
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(1, 1);
    EXPECT_TRUE(view.colouredRows.empty());
    EXPECT_EQ(openings, 0);
    EXPECT_TRUE(map.calls.empty());
}

TEST_F(EventsGridTest, DoesNothingOnAClickBesideTheRows) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(4, 1);
    grid->GridEvents_Click(-1, 1);
    EXPECT_TRUE(view.colouredRows.empty());
    EXPECT_EQ(openings, 0);
}

TEST_F(EventsGridTest, ReleasesTheColourWhenTheCurrentRowMoves) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_SelChange(); // nothing is coloured
    grid->GridEvents_Click(2, 1);
    grid->GridEvents_SelChange();
    EXPECT_TRUE(view.colouredRows.empty());
}

TEST_F(EventsGridTest, LosesTheColourByAFill) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(2, 1);
    grid->sortEvents(5);
    EXPECT_TRUE(view.colouredRows.empty());
    view.setRowSelected(2, true); // somebody else's colour, no longer the selection's
    grid->GridEvents_SelChange();
    EXPECT_EQ(view.colouredRows, (std::set<std::int64_t>{2}));
}

// A marker clicked on the map

TEST_F(EventsGridTest, SelectsTheRowOfAnEventOfTheMapAndScrollsToIt) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(1, 1);
    report.events.clear();
    map.calls.clear();
    view.hiddenRow = 3;
    grid->selectEventOfMap("2014-03-07 01:00:00.000");
    EXPECT_EQ(view.colouredRows, (std::set<std::int64_t>{3}));
    EXPECT_EQ(view.top, 3);
    ASSERT_EQ(report.events.size(), 1U);
    EXPECT_EQ(report.events.front().utc, "2014-03-07 01:00:00.000");
    EXPECT_TRUE(map.calls.empty()); // the marker was what was clicked
    grid->GridEvents_SelChange();
    EXPECT_TRUE(view.colouredRows.empty());
}

TEST_F(EventsGridTest, LeavesAVisibleRowOfTheMapWhereItIs) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->selectEventOfMap("2014-03-07 01:00:00.000");
    EXPECT_EQ(view.top, 1);
}

TEST_F(EventsGridTest, OnlyReleasesTheColourForAnEventOfTheMapThatItDoesNotShow) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    grid->GridEvents_Click(2, 1);
    report.events.clear();
    grid->selectEventOfMap("1999-01-01 00:00:00.000");
    EXPECT_TRUE(view.colouredRows.empty());
    EXPECT_TRUE(report.events.empty());
}

// eventoSelezionato

TEST_F(EventsGridTest, OpensTheCatalogueAtEverySelection) {
    addThree();
    grid->eventoSelezionato("2014-03-07 01:00:00.000");
    grid->eventoSelezionato("2014-03-07 01:00:00.000");
    EXPECT_EQ(openings, 2);
}

TEST_F(EventsGridTest, ReportsNothingWhenTheCatalogueCannotBeOpened) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    openSucceeds = false;
    grid->GridEvents_Click(1, 1);
    EXPECT_TRUE(report.events.empty());
    EXPECT_EQ(map.calls, (Texts{"selectMarker 2014-03-07 03:00:00.000"}));
}

TEST_F(EventsGridTest, ReportsTheLastRowOfAnOriginTimeThatIsThereTwice) {
    add("2014-03-07 01:00:00.000", "42.5", "13.25", "4", "8");
    add("2014-03-07 01:00:00.000", "42.6", "13.5", "4.2", "9", "EMSC");
    grid->eventoSelezionato("2014-03-07 01:00:00.000");
    ASSERT_EQ(report.events.size(), 1U);
    EXPECT_EQ(report.events.front().latitude, "42.6");
    EXPECT_EQ(report.events.front().source, "EMSC");
}

TEST_F(EventsGridTest, ShowsTheErrorOfARefusedSelection) {
    database.slsSel(
        "select Latitude,Longitude,Magnitude,Depth,Source from Events where UTC = 'a'b'");
    const std::string error = database.slGetError();
    ASSERT_NE(error, "0");
    harness.prompts.expectBox(error + " eventoSelezionato", "TREMORLEDGER", BoxIcon::None,
                              BoxButtons::Ok, BoxAnswer::Ok);
    grid->eventoSelezionato("a'b");
    ASSERT_EQ(report.events.size(), 1U);
    EXPECT_EQ(report.events.front().latitude, ""); // which the report takes for nothing
}

TEST_F(EventsGridTest, LeavesTheStoredReportOfTheNewestEventAlone) {
    addThree();
    grid->FillGridEvents(everything, "", "");
    settings.LastEvent = "2014/03/07";
    grid->GridEvents_Click(3, 1);
    EXPECT_EQ(settings.LastEvent, "2014/03/07");
}

// MouseWheel

class EventsGridWheelTest : public EventsGridTest {
  protected:
    EventsGridWheelTest() {
        for (int minute = 10; minute < 20; ++minute)
            add("2014-03-07 01:" + std::to_string(minute) + ":00.000", "42", "13", "4", "8");
        grid->FillGridEvents(everything, "", "");
    }
};

TEST_F(EventsGridWheelTest, ScrollsThreeRowsDownForARotationBelowOne) {
    grid->MouseWheel(-120);
    EXPECT_EQ(view.top, 4);
    grid->MouseWheel(0);
    EXPECT_EQ(view.top, 7);
}

TEST_F(EventsGridWheelTest, ScrollsThreeRowsUpForARotationFromOneOn) {
    view.top = 8;
    grid->MouseWheel(1);
    EXPECT_EQ(view.top, 5);
    grid->MouseWheel(120);
    EXPECT_EQ(view.top, 2);
}

TEST_F(EventsGridWheelTest, StopsAtTheFirstAndAtTheLastRow) {
    view.top = 2;
    grid->MouseWheel(120);
    EXPECT_EQ(view.top, 1);
    view.top = 9;
    grid->MouseWheel(-120);
    EXPECT_EQ(view.top, 10);
}

TEST_F(EventsGridTest, DoesNotScrollATableWithoutRows) {
    grid->FillGridEvents(everything, "", "");
    grid->MouseWheel(-120);
    EXPECT_EQ(view.top, 1);
}

} // namespace
} // namespace tremor
