#include "workspaces/search_filter.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "core/dates.h"
#include "core/event_query.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - frmSearch";
constexpr std::int32_t manyEvents = 300;

// Magnitudes of a workspace that is saved without a range of them.
constexpr std::string_view lowestMagnitude = "0";
constexpr std::string_view highestMagnitude = "8";

constexpr std::string_view northOfCentre = "45"; // bearings of the corners, degrees
constexpr std::string_view southOfCentre = "225";

// A step of the display that fails is passed over: the others still run.
template <class Step>
void passOverErrors(Step&& step) {
    try {
        step();
    } catch (const std::exception&) {
        return;
    }
}

bool isMismatch(std::string_view text, const NumberLocale& locale) {
    try {
        textToDouble(text, locale);
    } catch (const RuntimeError& error) {
        return error.number() == ErrorNumber::TypeMismatch;
    }
    return false;
}

} // namespace

struct SearchFilter::Clauses {
    std::string date; // empty without a range of dates
    std::string magnitude;
    SearchedArea area;
};

SearchFilter::SearchFilter(const SearchContext& context, SearchWorkspaces& workspaces)
    : context_(context), workspaces_(workspaces), geodesy_(context.locale, context.errors) {}

bool SearchFilter::generaParQuery(const SearchParameters& given) {
    ProcedureTrace trace(context_.errors, module, "generaParQuery");
    if (!given.rangeInMap && !given.rangeDate && !given.rangeMag)
        return refuse("You must select a filter.", "Insufficient parameters...");
    Clauses clauses;
    if (!takeDates(given, clauses, trace) || !takeMagnitudes(given, clauses, trace) ||
        !takeArea(given, clauses, trace))
        return false;
    if (given.rangeInMap && given.saveWrkSpace)
        saveWorkspace(given, clauses);
    if (!operatorWantsAll())
        return false;
    showEvents();
    return true;
}

bool SearchFilter::takeDates(const SearchParameters& given, Clauses& clauses,
                             ProcedureTrace& trace) {
    AppSettings& settings = context_.settings;
    settings.wrkSpaceUpdating = given.rangeDate ? 0 : 1;
    if (!given.rangeDate)
        return true;
    settings.startDate = NormalizeDateText(given.startDate, context_.locale);
    settings.endDate = NormalizeDateText(given.endDate + " 23:59:59", context_.locale);
    bool inOrder = false;
    const bool compared = trace.step([&] {
        inOrder = textToDate(settings.startDate, context_.locale) <=
                  textToDate(settings.endDate, context_.locale);
    });
    if (!compared)
        return false;
    if (!inOrder)
        return refuse("First date must be lower then second date...", "Error...");
    clauses.date =
        fmt::format("(UTC >= '{}') and (UTC <= '{}')", settings.startDate, settings.endDate);
    settings.searchParQuery = clauses.date;
    return true;
}

bool SearchFilter::takeMagnitudes(const SearchParameters& given, Clauses& clauses,
                                  ProcedureTrace& trace) {
    clauses.area.magMin = lowestMagnitude;
    clauses.area.magMax = highestMagnitude;
    if (!given.rangeMag)
        return true;
    clauses.area.magMin = dotText(given.minMag);
    clauses.area.magMax = dotText(given.maxMag);
    if (leadingNumber(clauses.area.magMax) < leadingNumber(clauses.area.magMin))
        return refuse("Error in range Magnitude.", "Error...");
    clauses.magnitude = fmt::format("(Magnitude >= '{}') and (Magnitude <= '{}')",
                                    clauses.area.magMin, clauses.area.magMax);
    context_.settings.searchParQuery = clauses.magnitude;
    putTogether(clauses.magnitude, clauses, trace);
    return true;
}

bool SearchFilter::takeArea(const SearchParameters& given, Clauses& clauses,
                            ProcedureTrace& trace) {
    if (!given.rangeInMap)
        return true;
    SearchedArea& area = clauses.area;
    area.bounds = {dotText(given.BL_Latitude), dotText(given.BL_Longitude),
                   dotText(given.TR_Latitude), dotText(given.TR_Longitude)};
    area.depthMin = leadingNumber(given.depthMin);
    area.depthMax = leadingNumber(given.depthMax);
    if (area.depthMin > area.depthMax)
        return refuse("Error in range Depth.", "Error...");
    if (given.method == AreaMethod::None)
        return true;
    const std::optional<std::string> rectangle = areaClause(given, clauses);
    if (!rectangle)
        return false;

    // Depths keep the locale's decimal mark: a fraction of a kilometre under a comma locale is
    // compared as text.
    std::string head = *rectangle + " AND ";
    if (!clauses.magnitude.empty())
        head += clauses.magnitude + " AND ";
    head += fmt::format("(Depth >= '{}') and (Depth <= '{}')",
                        doubleToText(area.depthMin, context_.locale),
                        doubleToText(area.depthMax, context_.locale));
    putTogether(head, clauses, trace);
    return true;
}

// Nothing when a coordinate is out of range. Sets the corners that a distance gives.
std::optional<std::string> SearchFilter::areaClause(const SearchParameters& given,
                                                    Clauses& clauses) {
    MapBounds& bounds = clauses.area.bounds;
    if (given.method != AreaMethod::FromMap && !checkGPS(given))
        return std::nullopt;
    if (given.method == AreaMethod::Distance)
        bounds = cornersFromCentre(given);
    return fmt::format("(Latitude >= {}) and (Latitude <= {}) {} (Longitude >= {}) and "
                       "(Longitude <= {})",
                       bounds.south, bounds.north,
                       given.method == AreaMethod::Distance ? "and" : "AND", bounds.west,
                       bounds.east);
}

// The square whose corners, not sides, lie at the distance from the centre.
MapBounds SearchFilter::cornersFromCentre(const SearchParameters& given) const {
    const double latitude = coordinateOrZero(given.BL_Latitude);
    const double longitude = coordinateOrZero(given.BL_Longitude);
    const double distanceKm = ParseDotDouble(given.distance, context_.locale);
    const std::string northEast =
        CommaToDot(geodesy_.revealBounds(latitude, longitude, northOfCentre, distanceKm));
    const std::string southWest =
        CommaToDot(geodesy_.revealBounds(latitude, longitude, southOfCentre, distanceKm));
    const std::size_t eastAt = northEast.find('|');
    const std::size_t westAt = southWest.find('|');
    return {southWest.substr(0, westAt), southWest.substr(westAt + 1), northEast.substr(0, eastAt),
            northEast.substr(eastAt + 1)};
}

// The condition is the head with the dates, else with the last hours; without either it is left
// as it was.
void SearchFilter::putTogether(const std::string& head, const Clauses& clauses,
                               ProcedureTrace& trace) {
    AppSettings& settings = context_.settings;
    if (!clauses.date.empty()) {
        settings.searchParQuery = head + " AND " + clauses.date;
    } else if (settings.RangeHoursOfEventsInMap > 0) {
        trace.step([&] {
            settings.searchParQuery =
                head + " AND " +
                BuildUtcRangeFilter(context_.clock.now(), settings.RangeHoursOfEventsInMap,
                                    settings, context_.session);
        });
    }
}

void SearchFilter::saveWorkspace(const SearchParameters& given, const Clauses& clauses) {
    // The main window goes to the saved workspace, whose condition has no dates of the search.
    AppSettings& settings = context_.settings;
    const std::string query = settings.searchParQuery;
    const std::string start = settings.startDate;
    const std::string end = settings.endDate;
    workspaces_.SavingWrkSpace(given.workspaceName, clauses.area);
    settings.searchParQuery = query;
    settings.startDate = start;
    settings.endDate = end;
}

// A condition that the engine refuses counts no events, hence no question.
bool SearchFilter::operatorWantsAll() {
    std::int32_t count = 0;
    passOverErrors([&] {
        context_.database.slsSel("select count(*) from Events where " +
                                 context_.settings.searchParQuery);
        if (context_.database.slsGetRow())
            count = SafeToLong(context_.database.slsFX(1), context_.locale);
    });
    return count < manyEvents ||
           context_.prompts.showMessageBox({.text = "There are too many events to show.\r\n"
                                                    "Do you want show all events selected?",
                                            .icon = BoxIcon::None,
                                            .buttons = BoxButtons::YesNo}) == BoxAnswer::Yes;
}

// The grid replaces a condition that the engine refuses, so the map takes what is in force then.
void SearchFilter::showEvents() {
    SearchSurroundings& panel = context_.surroundings;
    passOverErrors([&] { panel.removeAll(); });
    passOverErrors([&] {
        const std::string filter = context_.settings.searchParQuery;
        panel.FillGridEvents(filter, {}, {});
    });
    passOverErrors([&] { panel.pictureMagnitudeEvents(); });
    passOverErrors(
        [&] { panel.eventsInMap(std::string(selectEvents) + context_.settings.searchParQuery); });
    passOverErrors([&] { panel.clickEventi(); });
}

bool SearchFilter::checkGPS(const SearchParameters& given) {
    const ProcedureTrace trace(context_.errors, module, "checkGPS");
    struct Check {
        std::string_view text;
        bool centre;
        double limit;
        std::string_view message;
    };
    constexpr std::string_view latitudeMessage =
        "The Range of the Latitude cannot exceed °90.00 and cannot be less of °-90.00";
    const bool centre = given.method == AreaMethod::Distance;
    const std::array checks{
        Check{given.TR_Latitude, false, 90, latitudeMessage},
        Check{given.BL_Latitude, centre, 90, latitudeMessage},
        Check{given.BL_Longitude, centre, 180,
              "The Range of the Longitude cannot exceed °180.00 and cannot be less of °-180.00"},
        Check{given.TR_Longitude, false, 180, "Range of the Longitude is from +180 to -180"},
    };
    const auto outside = [this](const Check& check) {
        const double value = check.centre ? coordinateOrZero(check.text)
                                          : ParseDotDouble(check.text, context_.locale);
        return !(-check.limit < value && value < check.limit);
    };
    const auto* const wrong = std::find_if(checks.begin(), checks.end(), outside);
    return wrong == checks.end() || refuse(wrong->message, MessageBox{}.title);
}

std::optional<MapBounds> SearchFilter::areaOfMap() {
    ProcedureTrace trace(context_.errors, module, "OptManualGPS_Click");
    std::optional<MapView> view;
    trace.step([&] {
        view = context_.surroundings.getDataMap();
        if (!view)
            throw RuntimeError(ErrorNumber::UserDefined, "The map gives no answer.");
    });
    if (!view)
        return std::nullopt;
    return MapBounds{CommaToDot(view->bounds.south), CommaToDot(view->bounds.west),
                     CommaToDot(view->bounds.north), CommaToDot(view->bounds.east)};
}

std::string SearchFilter::oldestDay() {
    Database& database = context_.database;
    database.slsSel("select UTC from Events order by UTC ASC limit 1");
    const std::string utc = database.slsGetRow() ? database.slsFX(1) : std::string();
    return utc.empty() ? utc : startOfOldest(utc);
}

// The box of a failed check; false, for the caller to hand on.
bool SearchFilter::refuse(std::string_view text, std::string_view title) {
    context_.prompts.showMessageBox(
        {.text = std::string(text), .title = std::string(title), .icon = BoxIcon::Critical});
    return false;
}

// A typed number as the statements take it.
std::string SearchFilter::dotText(std::string_view typed) const {
    return CommaToDot(doubleToText(ParseDotDouble(typed, context_.locale), context_.locale));
}

std::string startOfOldest(std::string_view utc) {
    const std::size_t blank = utc.find(' ');
    const std::size_t behind = blank == std::string_view::npos ? 0 : blank + 1;
    if (utc.size() < behind + 1)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return replaceAll(trim(utc.substr(0, utc.size() - behind - 1)), "-", "/");
}

std::string numberWhileTyped(std::string_view text, std::string_view reset,
                             const NumberLocale& locale) {
    // With one more digit a mere beginning is a number.
    const bool number = !isMismatch(text, locale) || !isMismatch(std::string(text) + "0", locale);
    return std::string(number ? text : reset);
}

std::string numberTyped(std::string_view text, std::string_view reset, const NumberLocale& locale) {
    return std::string(!text.empty() && isMismatch(text, locale) ? reset : text);
}

} // namespace tremor
