#pragma once

#include "core/civil_time.h"
#include "workspaces/search_surroundings.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

struct SavedSearchName {
    std::string id; // the row key `_`
    std::string name;
};

// A row of `Search`: column texts, empty for NULL. Nothing says that they are sound.
struct SavedSearch {
    std::string RangeDate;
    std::string StartDate;
    std::string EndDate;
    std::string RangeMag;
    std::string MinMag;
    std::string MaxMag;
    std::string RangeInMap;
    std::string MinLat;
    std::string MaxLat;
    std::string MinLon;
    std::string MaxLon;
    std::string MethodDefinied; // a number of AreaMethod
};

// Past searches, kept in the table `Search`. Depths, distance and workspace are not kept. The log
// tells what the catalogue did not take.
class SavedSearches {
  public:
    explicit SavedSearches(const SearchContext& context);

    // All searches, in the table's order. One that nobody has named bears the UTC time at which it
    // was saved, "2014-03-07 09:05:12".
    std::vector<SavedSearchName> fillGridSearch();

    void saveSearch(const SearchParameters& given);
    std::optional<SavedSearch> loadSearch(std::int32_t id); // nothing when there is no such row
    void removeSearch(std::int32_t id);
    void setName(std::int32_t id, const std::string& name);

  private:
    SearchContext context_;
};

// The date of a saved search: "2016-08-24", else the locale's short date, else day/month/year.
// Error 13 for anything else.
DateTime savedDate(std::string_view text, const NumberLocale& locale);

} // namespace tremor
