#include "workspaces/saved_searches.h"

#include "core/dates.h"
#include "workspaces/pasted_statement.h"

#include <fmt/format.h>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - frmSearch";

int flag(bool ticked) {
    return ticked ? 1 : 0;
}

} // namespace

SavedSearches::SavedSearches(const SearchContext& context) : context_(context) {}

std::vector<SavedSearchName> SavedSearches::fillGridSearch() {
    const ProcedureTrace trace(context_.errors, module, "fillGridSearch");
    std::vector<SavedSearchName> names;
    context_.database.slsSel("select _ , NameSearch from Search");
    while (context_.database.slsGetRow())
        names.push_back({context_.database.slsFX(1), context_.database.slsFX(2)});
    return names;
}

void SavedSearches::saveSearch(const SearchParameters& given) {
    const ProcedureTrace trace(context_.errors, module, "saveSearch");
    runPasted(context_.database, context_.log,
              fmt::format("insert into Search(RangeDate,StartDate,EndDate,RangeMag,MinMag,MaxMag,"
                          "RangeInMap,MinLat,MaxLat,MinLon,MaxLon,MethodDefinied) Values("
                          "'{}','{}','{}','{}','{}','{}','{}','{}','{}','{}','{}','{}')",
                          flag(given.rangeDate), given.startDate, given.endDate,
                          flag(given.rangeMag), given.minMag, given.maxMag, flag(given.rangeInMap),
                          given.BL_Latitude, given.TR_Latitude, given.BL_Longitude,
                          given.TR_Longitude, static_cast<int>(given.method)),
              {given.startDate, given.endDate, given.minMag, given.maxMag, given.BL_Latitude,
               given.TR_Latitude, given.BL_Longitude, given.TR_Longitude},
              "The search was not saved");
}

std::optional<SavedSearch> SavedSearches::loadSearch(std::int32_t id) {
    const ProcedureTrace trace(context_.errors, module, "loadSearch");
    Database& database = context_.database;
    database.slsSel(fmt::format("select * from Search where _ = {}", id));
    if (!database.slsGetRow())
        return std::nullopt;
    return SavedSearch{.RangeDate = database.slFN("RangeDate"),
                       .StartDate = database.slFN("StartDate"),
                       .EndDate = database.slFN("EndDate"),
                       .RangeMag = database.slFN("RangeMag"),
                       .MinMag = database.slFN("MinMag"),
                       .MaxMag = database.slFN("MaxMag"),
                       .RangeInMap = database.slFN("RangeInMap"),
                       .MinLat = database.slFN("MinLat"),
                       .MaxLat = database.slFN("MaxLat"),
                       .MinLon = database.slFN("MinLon"),
                       .MaxLon = database.slFN("MaxLon"),
                       .MethodDefinied = database.slFN("MethodDefinied")};
}

void SavedSearches::removeSearch(std::int32_t id) {
    const ProcedureTrace trace(context_.errors, module, "cmdRemoveSearch_Click");
    runPasted(context_.database, context_.log, fmt::format("delete from search where _ ='{}'", id),
              {}, "The search was not removed");
}

void SavedSearches::setName(std::int32_t id, const std::string& name) {
    const ProcedureTrace trace(context_.errors, module, "StopEditing");
    runPasted(context_.database, context_.log,
              fmt::format("update Search set NameSearch = '{}' where _ = '{}'", name, id), {name},
              "The search was not named");
}

DateTime savedDate(std::string_view text, const NumberLocale& locale) {
    if (isDateText(text, locale))
        return textToDate(text, locale);
    NumberLocale dayFirst = locale;
    dayFirst.dateOrder = DateOrder::DayMonthYear;
    dayFirst.dateSeparator = '/';
    return textToDate(text, dayFirst);
}

} // namespace tremor
