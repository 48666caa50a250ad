#pragma once

#include "workspaces/haversine_formula.h"
#include "workspaces/search_surroundings.h"
#include "workspaces/search_workspaces.h"

#include <optional>
#include <string>
#include <string_view>

namespace tremor {

// Turns the parameters of a search into the condition in force (settings.searchParQuery, what
// stands behind "select * from Events where ") and shows its events:
//
//     (Latitude >= 41.5) and (Latitude <= 43) AND (Longitude >= 12) and (Longitude <= 14) AND
//     (Magnitude >= '2') and (Magnitude <= '5.5') AND (Depth >= '0') and (Depth <= '100') AND
//     (UTC >= '2016-08-24 00:00:00') and (UTC <= '2016-08-30 23:59:59')
//
// on one line. A range of dates stands last and takes the last 65 characters.
class SearchFilter {
  public:
    // `workspaces` must outlive this object.
    SearchFilter(const SearchContext& context, SearchWorkspaces& workspaces);

    // Checks the parameters, builds the condition, saves it as a workspace when that is wanted,
    // and shows the events. Each failure is a message box and ends the search; the condition in
    // force may by then hold the part that was built before. 300 events and more are shown only
    // when the operator agrees. True when the events were shown.
    //
    // Without dates the condition ends with the last settings.RangeHoursOfEventsInMap hours. When
    // these are 0 as well, area and depth have no effect.
    bool generaParQuery(const SearchParameters& given);

    // True when the four coordinates lie inside the open ranges -90 to 90 and -180 to 180; else a
    // message box tells of the first that does not. An empty box is 0.
    bool checkGPS(const SearchParameters& given);

    // The rectangle of the map's view, dot texts. Nothing when the map gives no answer and the
    // operator has given up.
    std::optional<MapBounds> areaOfMap();

    // What initializeTxt offers as the first day: the text of startOfOldest for the oldest event,
    // empty when the catalogue has none.
    std::string oldestDay();

  private:
    struct Clauses;

    bool takeDates(const SearchParameters& given, Clauses& clauses, ProcedureTrace& trace);
    bool takeMagnitudes(const SearchParameters& given, Clauses& clauses, ProcedureTrace& trace);
    bool takeArea(const SearchParameters& given, Clauses& clauses, ProcedureTrace& trace);
    std::optional<std::string> areaClause(const SearchParameters& given, Clauses& clauses);
    void saveWorkspace(const SearchParameters& given, const Clauses& clauses);
    void putTogether(const std::string& head, const Clauses& clauses, ProcedureTrace& trace);
    bool operatorWantsAll();
    void showEvents();
    bool refuse(std::string_view text, std::string_view title);
    std::string dotText(std::string_view typed) const;
    MapBounds cornersFromCentre(const SearchParameters& given) const;

    SearchContext context_;
    SearchWorkspaces& workspaces_;
    HaversineFormula geodesy_;
};

// The head of a UTC text with "/" in place of "-": as many characters as stand behind the first
// blank but two. "2016-08-24 01:36:32" gives "2016/08", the month; with ".600" it gives
// "2016/08/24", with ".1" "2016/08/2". Error 5 when nothing but a blank is there.
std::string startOfOldest(std::string_view utc);

// What a box for a number holds after a change: the text itself while it is empty, a number of the
// locale or the beginning of one ("-"), else `reset`.
std::string numberWhileTyped(std::string_view text, std::string_view reset,
                             const NumberLocale& locale);

// The same once the typing has ended: a mere beginning is reset, too.
std::string numberTyped(std::string_view text, std::string_view reset, const NumberLocale& locale);

} // namespace tremor
