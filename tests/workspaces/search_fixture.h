#pragma once

#include "database/catalogue_support.h"
#include "workspaces/saved_searches.h"
#include "workspaces/search_filter.h"
#include "workspaces/search_surroundings.h"
#include "workspaces/search_workspaces.h"

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tremor::testing {

// The main window as the search sees it: writes down what it is asked for.
class RecordingSurroundings : public SearchSurroundings {
  public:
    void removeAll() override { record("removeAll"); }
    void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                        std::string_view order) override {
        record("FillGridEvents(" + std::string(filter) + ", " + std::string(fallbackFilter) + ", " +
               std::string(order) + ")");
    }
    void pictureMagnitudeEvents() override { record("pictureMagnitudeEvents"); }
    void eventsInMap(std::string_view sql) override {
        record("eventsInMap(" + std::string(sql) + ")");
    }
    void clickEventi() override { record("clickEventi"); }
    std::optional<MapView> selection() override {
        record("selection");
        return view;
    }
    std::optional<MapView> getDataMap() override {
        record("getDataMap");
        return view;
    }
    void popolaComboWorkspace() override { record("popolaComboWorkspace"); }
    void refreshPanel() override { record("refreshPanel"); }
    void turnSearchModeOn() override { record("turnSearchModeOn"); }

    std::vector<std::string> calls;
    std::optional<MapView> view = MapView{{"41,5", "12,25", "43,5", "14,75"}, "42,5", "13,5", "7"};
    std::function<void(const std::string&)> onCall;

  private:
    void record(const std::string& call) {
        calls.push_back(call);
        if (onCall)
            onCall(call);
    }
};

// All parts of the search on one catalogue.
struct SearchParts {
    explicit SearchParts(const SearchContext& given)
        : context(given), workspaces(given), filter(given, workspaces), saved(given) {}

    SearchContext context;
    SearchWorkspaces workspaces;
    SearchFilter filter;
    SavedSearches saved;
};

// An empty catalogue, and the search under a point and under a comma locale. It is 10:00 on
// 24 August 2016.
class SearchTest : public CatalogueTest {
  protected:
    SearchTest() {
        makeCatalogue();
        EXPECT_EQ(database.slsOpen(settings.Path, ""), 0);
        clock.setNow(std::chrono::local_days(std::chrono::year(2016) / 8 / 24) +
                     std::chrono::hours(10));
        settings.searchParQuery = "before";
        settings.RangeHoursOfEventsInMap = 24;
    }

    SearchContext contextUnder(const NumberLocale& locale) {
        return {database, session, settings, clock, locale, prompts, log, harness.errors, panel};
    }

    void addEvent(const std::string& utc, const std::string& latitude = "42.7",
                  const std::string& longitude = "13.2", const std::string& depth = "10",
                  const std::string& magnitude = "4") {
        EXPECT_EQ(database.slsExe("insert into Events values('" + utc + "','" + latitude + "','" +
                                  longitude + "','" + depth + "','" + magnitude + "','INGV','')"),
                  0);
    }
    // Events of 20 August 2016.
    void addEvents(int count) {
        const std::string sql =
            "with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
            std::to_string(count) +
            ") insert into Events select '2016-08-20 00:00:00',42.7,13.2,10,4,'INGV','' from n";
        EXPECT_EQ(database.slsExe(sql), 0) << database.slGetError();
    }
    std::int64_t found() {
        return std::stoll(
            valueOf(database, "select count(*) from Events where " + settings.searchParQuery));
    }
    void expectRefusal(const std::string& text, const std::string& title) {
        prompts.expectBox(text, title, BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }

    FakeClock clock;
    RecordingSurroundings panel;
    SearchParts point{contextUnder(NumberLocale::point())};
    SearchParts comma{contextUnder(NumberLocale::comma())};
};

} // namespace tremor::testing
