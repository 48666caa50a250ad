#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"

#include <string>
#include <string_view>
#include <variant>

namespace tremor {

// Distances and destinations on a spherical earth. Coordinates are decimal degrees, north and east
// positive.
//
// The constants are rounded ones, and the last digits of the results rest on them: every routine
// uses the 15-digit pi 3.14159265358979, ASin a half pi of its own (1.5707963267949). The two
// earths differ: `distance` has 60 * 1.1515 statute miles (111.18957696 km) to the degree,
// `revealBounds` a radius of 6371 km.
//
// Text is read by coordinateToDouble: "." or "," as the decimal mark, no group mark, under every
// locale. Each routine reports its own failures to the operator: error 13 for a text that is no
// number, 11 for a division by zero, 5 for the square root of a negative number, 6 for a result
// beyond the range of a double. The value of a statement whose error is ignored is 0.
class HaversineFormula {
  public:
    // A number or the text of one.
    using Number = std::variant<double, std::string_view>;

    HaversineFormula(const NumberLocale& locale, ErrorReport& errors);

    // Distance between two points by the spherical law of cosines. `unit`, in either case: "K"
    // kilometres, "N" nautical miles, anything else (the empty text too) statute miles.
    double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                    std::string_view lon2, std::string_view unit) const;

    // The point at `distanceKm` kilometres along the great circle that leaves the point under
    // `bearing` (degrees clockwise from north): "lat|lon" in degrees, each the shortest text of up
    // to 15 digits with the locale's decimal mark, for example "43.017138262408|13.6648740139599".
    // The bearing is rounded to 15 digits in radians. The longitude is not brought back to -180 to
    // 180: 10 km east of 179.95 comes out as 180.039932160592.
    std::string revealBounds(double lat, double lon, std::string_view bearing,
                             double distanceKm) const;

    double deg2rad(const Number& value) const;
    double rad2deg(const Number& value) const;

    // Arc cosine in radians; exactly 0 for 1. Error 5 outside -1 to 1.
    double acos(const Number& value) const;

    // Arc sine in radians. Error 5 outside -1 to 1.
    double ASin(double value) const;

    // Angle of the point (x, y) in radians, -pi to pi; -pi on the negative x axis. Error 11 for
    // (0, 0).
    double Atan2(double y, double x) const;

  private:
    NumberLocale locale_;
    ErrorReport& errors_;
};

} // namespace tremor
