#pragma once

#include "core/number_locale.h"

#include <string>

namespace tremor {

// Rectangle of a map view, dot text in degrees. `west` lies east of `east` in a view that crosses
// the 180 degree meridian.
struct MapBounds {
    std::string south;
    std::string west;
    std::string north;
    std::string east;
};

// The condition on Events that selects what lies in the rectangle, for example
// "(Latitude >= 41.5) and (Latitude <= 43) AND (Longitude >= 12) and (Longitude <= 14)". Across the
// meridian the longitude part is a sum of two truth values, which SQLite takes as their "or".
std::string rectangleCondition(const MapBounds& bounds, const NumberLocale& locale);

} // namespace tremor
