#pragma once

#include "core/number_locale.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Several catalogues report the same earthquake. The pass decides which report goes on the map.
namespace tremor {

// One event of the main map, texts as the catalogue has them.
struct EventMarkerRow {
    std::string UTC;
    std::string Latitude;  // degrees
    std::string Longitude; // degrees
    std::string Magnitude;
    std::string Depth; // km
    std::string Source;
    bool visible = false; // goes on the map
    bool skip = false;    // a duplicate that has lost; its own turn does not make it visible
};

// What the pass needs of the earth's geometry.
class DistanceRoutine {
  public:
    virtual ~DistanceRoutine() = default;

    // Distance of two points, coordinates in degrees with "." or "," as the decimal mark; unit "K"
    // is kilometres.
    virtual double distance(std::string_view lat1, std::string_view lon1, std::string_view lat2,
                            std::string_view lon2, std::string_view unit) const = 0;
};

// Whose report of an earthquake is shown (the setting PriorityEvents); any other number prefers the
// primary source. The alternate catalogues are EMSC and USGS.
inline constexpr std::int32_t preferAlternateSource = 2;
inline constexpr std::int32_t showAllSources = 3;

struct DuplicatePassReport {
    std::size_t pairsNotCompared = 0; // a time that is no date, a place that is none on the earth
    std::size_t firstFaultyRow = 0;   // where such a time or place stands; 0 without one
};

// Sets `visible` and `skip` of the rows, which are in descending order of UTC. Two neighbours are
// duplicates when less than 10 seconds (without the last 4 characters of UTC, ".123") and less than
// 1 km lie between them; `priority` then decides which of the two is shown. Only neighbours are
// compared, never a third row; when neither of the two is of the preferred class, the later event
// (the earlier row) stays off the map. A pair that cannot be compared is no duplicate.
DuplicatePassReport runDuplicatePass(std::span<EventMarkerRow> rows, std::int32_t priority,
                                     const DistanceRoutine& earth, const NumberLocale& locale);

} // namespace tremor
