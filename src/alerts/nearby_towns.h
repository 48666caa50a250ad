#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"
#include "database/database.h"

#include <string>
#include <string_view>

// The towns of the table Cities around a point.
namespace tremor {

// What the report needs of the earth's geometry. Coordinates are decimal degrees; texts have "."
// or "," as the decimal mark.
class EarthRoutines {
  public:
    virtual ~EarthRoutines() = default;

    // Distance of two points; unit "K" is kilometres.
    virtual double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                            std::string_view lon2, std::string_view unit) const = 0;

    // The point `distanceKm` away under `bearing` (degrees clockwise from north), "lat|lon".
    virtual std::string revealBounds(double lat, double lon, std::string_view bearing,
                                     double distanceKm) const = 0;
};

// The list of towns in the main window, `List1`.
class TownsList {
  public:
    virtual ~TownsList() = default;

    virtual void clear() = 0;
    virtual void add(std::string_view item) = 0; // UTF-8 or Windows-1252
};

// Lists the towns within 10 km of a point and those from 10 to 20 km, each list by distance. Every
// line of the report ends in CR LF:
//
//     TOWNS WITH DISTANCE LESS OF 10 KM
//     -----------------------------
//     Borgo Alto = Km 3.27
//     -----------------------------
//     TOWNS WITH DISTANCE BETWEEN FROM 10 KM TO 20 KM
//     -----------------------------
//     Colle Rosso = Km 16.41
//
// Distances are rounded to 2 decimals, halves to even, before they are compared with the limits,
// and have the locale's decimal mark. A town at distance 0 belongs to the first list.
//
// The last row that the query returns is never looked at, so one lone town shows nothing. A name
// with "|" or "%%" is taken apart at it; each piece without a distance of its own raises error 9 or
// 13, which is reported to the operator.
class NearbyTowns {
  public:
    NearbyTowns(Database& database, const NumberLocale& locale, const EarthRoutines& earth,
                TownsList& list, ErrorReport& errors);

    // Fills `report` and the list for a point in dot text, as the table Events holds it. Without a
    // latitude or a longitude the report becomes empty and the list stays.
    void eventOnPOI(std::string_view latitude, std::string_view longitude, std::string& report);

    // Name of the entry at the head of the first list. That is the blank one in front of the towns,
    // so the text is empty.
    const std::string& nearestTownName() const { return nearestTownName_; }

  private:
    Database& database_;
    NumberLocale locale_;
    const EarthRoutines& earth_;
    TownsList& list_;
    ErrorReport& errors_;
    std::string nearestTownName_;
};

} // namespace tremor
