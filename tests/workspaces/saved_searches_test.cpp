#include "core/dates.h"
#include "support/error_of.h"
#include "workspaces/saved_searches.h"
#include "workspaces/search_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tremor {
namespace {

using testing::rowsOf;
using testing::SearchTest;
using testing::valueOf;

class SavedSearchesTest : public SearchTest {
  protected:
    SavedSearches& saved = point.saved;
    SearchParameters given{.rangeDate = true,
                           .startDate = "2016-08-20",
                           .endDate = "2016-08-24",
                           .minMag = "2",
                           .maxMag = "5.5",
                           .rangeInMap = true,
                           .method = AreaMethod::Distance,
                           .BL_Latitude = "41.5",
                           .BL_Longitude = "12",
                           .TR_Latitude = "43",
                           .TR_Longitude = "14.25",
                           .distance = "50",
                           .depthMin = "",
                           .depthMax = "100",
                           .workspaceName = "not kept"};
};

TEST_F(SavedSearchesTest, KeepsTwelveValuesAsTheyStand) {
    saved.saveSearch(given);
    const auto row = saved.loadSearch(1);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->RangeDate, "1");
    EXPECT_EQ(row->StartDate, "2016-08-20");
    EXPECT_EQ(row->EndDate, "2016-08-24");
    EXPECT_EQ(row->RangeMag, "0");
    EXPECT_EQ(row->MinMag, "2.0");
    EXPECT_EQ(row->MaxMag, "5.5");
    EXPECT_EQ(row->RangeInMap, "1");
    EXPECT_EQ(row->MinLat, "41.5");
    EXPECT_EQ(row->MaxLat, "43");
    EXPECT_EQ(row->MinLon, "12");
    EXPECT_EQ(row->MaxLon, "14.25");
    EXPECT_EQ(row->MethodDefinied, "3");
    EXPECT_TRUE(log.messages.empty());
}

TEST_F(SavedSearchesTest, NamesAnUnnamedSearchByTheTimeOfItsSaving) {
    saved.saveSearch(given);
    const auto names = saved.fillGridSearch();
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0].id, "1");
    EXPECT_EQ(names[0].name.size(), 19U);
    EXPECT_TRUE(isDateText(names[0].name, NumberLocale::point())) << names[0].name;
}

TEST_F(SavedSearchesTest, NamesAndRemovesByKey) {
    saved.saveSearch(given);
    saved.saveSearch(given);
    saved.setName(2, "Amatrice");
    EXPECT_EQ(saved.fillGridSearch()[1].name, "Amatrice");
    saved.removeSearch(1);
    ASSERT_EQ(saved.fillGridSearch().size(), 1U);
    EXPECT_EQ(saved.fillGridSearch()[0].id, "2");
    saved.removeSearch(1);
    EXPECT_EQ(saved.fillGridSearch().size(), 1U) << "there is no such row";
    EXPECT_FALSE(saved.loadSearch(1));
}

TEST_F(SavedSearchesTest, RefusesANameThatBreaksTheStatement) {
    saved.saveSearch(given);
    saved.saveSearch(given);
    saved.setName(1, "first");
    saved.setName(1, "L'Aquila");
    saved.setName(1, "all' where 1=1 --");
    EXPECT_EQ(saved.fillGridSearch()[0].name, "first");
    EXPECT_NE(saved.fillGridSearch()[1].name, "all");
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_EQ(log.messages[0], "The search was not named: an apostrophe in a text");
}

TEST_F(SavedSearchesTest, StoresLongNamesWhole) {
    saved.saveSearch(given);
    saved.setName(1, std::string(10000, 'n'));
    EXPECT_EQ(valueOf(database, "select length(NameSearch) from Search"), "10000");
}

TEST_F(SavedSearchesTest, TellsTheLogOfASearchThatTheCatalogueRefuses) {
    given.BL_Latitude = "4'2";
    saved.saveSearch(given);
    given.BL_Latitude = "42";
    EXPECT_EQ(database.slsExe("drop table Search"), 0);
    saved.saveSearch(given);
    EXPECT_EQ(log.messages,
              (std::vector<std::string>{"The search was not saved: an apostrophe in a text",
                                        "The search was not saved: 1 no such table: Search"}));
    EXPECT_TRUE(saved.fillGridSearch().empty());
    EXPECT_FALSE(saved.loadSearch(1));
}

TEST(SavedDate, ReadsIsoThenTheLocalesThenDayFirst) {
    const auto text = [](const char* saved, const NumberLocale& locale) {
        return dateToText(savedDate(saved, locale)).substr(0, 10);
    };
    EXPECT_EQ(text("2016-08-24", NumberLocale::comma()), "2016-08-24");
    EXPECT_EQ(text("2016/08", NumberLocale::point()), "2016-08-01");
    EXPECT_EQ(text("08/09/2016", NumberLocale::point()), "2016-08-09");
    EXPECT_EQ(text("08/09/2016", NumberLocale::comma()), "2016-09-08");
    EXPECT_EQ(text("24/8/2016", NumberLocale::point()), "2016-08-24");
}

TEST(SavedDate, FailsForWhatIsNoDate) {
    for (const char* saved : {"", "abc", "2015-02-29", "31/4/2016", "42"}) {
        EXPECT_EQ(testing::errorOf([&] { savedDate(saved, NumberLocale::point()); }),
                  ErrorNumber::TypeMismatch)
            << saved;
    }
}

} // namespace
} // namespace tremor
