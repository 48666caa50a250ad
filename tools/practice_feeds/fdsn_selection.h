#pragma once

#include "practice_feeds/fdsn_event.h"
#include "practice_feeds/practice_service.h"

#include <limits>
#include <string_view>
#include <vector>

// The request of an FDSN event service (https://www.fdsn.org/webservices/fdsnws-event-1.2.pdf).
namespace tremor::practice {

// What a request asks for; everything that it does not name is unlimited.
struct Selection {
    UtcTime start = UtcTime::min();
    UtcTime end = UtcTime::max(); // both ends included
    double minLatitude = -90;
    double maxLatitude = 90;
    double minLongitude = -180;
    double maxLongitude = 180;
    double minMagnitude = -std::numeric_limits<double>::infinity();
    double maxMagnitude = std::numeric_limits<double>::infinity();
    std::size_t limit = std::numeric_limits<std::size_t>::max();
    bool oldestFirst = false;

    bool holds(const FdsnEvent& event) const;
    // Those of `events`, which stand oldest first, in the asked order and number.
    std::vector<FdsnEvent> of(const std::vector<FdsnEvent>& events) const;
};

// Understood are starttime, endtime, minlatitude, maxlatitude, minlongitude, maxlongitude,
// minmagnitude, maxmagnitude, all with their short names (start, minlat, minmag ...), limit,
// orderby=time|time-asc (time, newest first, when it is missing) and format, which must be
// `format`; a missing one means `defaultFormat`. Other keys are passed over. Throws
// std::invalid_argument with a sentence for a value that is none of its kind.
Selection readSelection(const Request& request, std::string_view format,
                        std::string_view defaultFormat);

// Status 400 as FDSN services give it.
Answer badRequest(const Request& request, std::string_view reason, UtcTime now);

} // namespace tremor::practice
