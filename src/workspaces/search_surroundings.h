#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "workspaces/map_view.h"

#include <optional>
#include <string>
#include <string_view>

// What a search works with: its parameters, and what it asks of the main window.
namespace tremor {

// How the area of a search is told. The numbers are those of the column Search.MethodDefinied.
enum class AreaMethod {
    None = 0,
    FromMap = 1,  // the view of the map; the window's own button turns it into corners
    Corners = 2,  // two corners, typed
    Distance = 3, // a centre (in the boxes of the lower-left corner) and a distance
};

// The controls of the search window at one moment; the texts as they stand in the boxes.
struct SearchParameters {
    bool rangeDate = false;
    std::string startDate; // "2016-08-24"
    std::string endDate;   // the last day of the search
    bool rangeMag = false;
    std::string minMag; // numbers typed by the operator, in the form of the locale
    std::string maxMag;
    bool rangeInMap = false;
    AreaMethod method = AreaMethod::None;
    std::string BL_Latitude; // degrees
    std::string BL_Longitude;
    std::string TR_Latitude;
    std::string TR_Longitude;
    std::string distance; // kilometres
    std::string depthMin; // kilometres, "." as the decimal mark under every locale
    std::string depthMax;
    bool saveWrkSpace = false;
    std::string workspaceName;
};

// What a search asks of the main window.
class SearchSurroundings {
  public:
    virtual ~SearchSurroundings() = default;

    virtual void removeAll() = 0; // takes the markers off; the page's handler alone runs
    // `order` empty: newest first.
    virtual void FillGridEvents(std::string_view filter, std::string_view fallbackFilter,
                                std::string_view order) = 0;
    virtual void pictureMagnitudeEvents() = 0;          // the history chart
    virtual void eventsInMap(std::string_view sql) = 0; // hands the markers over
    virtual void clickEventi() = 0;                     // draws them, by a click that bubbles

    // The page's element `selection`: as it stands, and after a click on `getDataMap`, which
    // brings it up to date. Nothing when the page gives no answer.
    virtual std::optional<MapView> selection() = 0;
    virtual std::optional<MapView> getDataMap() = 0;

    // Fills `cmb_wrkSp` anew and selects the workspace in use, which may change the condition in
    // force.
    virtual void popolaComboWorkspace() = 0;
    virtual void refreshPanel() = 0;     // the main window is painted anew
    virtual void turnSearchModeOn() = 0; // ticks `chk_SearchMode`, with all that its click does
};

// What every part of the search works with. The references outlive the parts.
struct SearchContext {
    Database& database;
    Session& session;
    AppSettings& settings;
    Clock& clock;
    NumberLocale locale;
    Prompts& prompts;
    Log& log;
    ErrorReport& errors;
    SearchSurroundings& surroundings;
};

} // namespace tremor
