#include "core/map_bounds.h"

#include "core/common_text.h"

namespace tremor {
namespace {

std::string longitudeCondition(const MapBounds& bounds, const NumberLocale& locale) {
    const bool crossesMeridian =
        ParseDotDouble(bounds.east, locale) < ParseDotDouble(bounds.west, locale);
    if (crossesMeridian)
        return "((Longitude BETWEEN " + bounds.west +
               " and 179.9999999 ) + (Longitude BETWEEN -179.9999999 and " + bounds.east + " ))";
    return "(Longitude >= " + bounds.west + ") and (Longitude <= " + bounds.east + ")";
}

} // namespace

std::string rectangleCondition(const MapBounds& bounds, const NumberLocale& locale) {
    return "(Latitude >= " + bounds.south + ") and (Latitude <= " + bounds.north + ") AND " +
           longitudeCondition(bounds, locale);
}

} // namespace tremor
