#include "core/latest_hours.h"

#include "core/dates.h"

namespace tremor {

std::string latestHours(ProcedureTrace& trace, const Clock& clock, AppSettings& settings,
                        Session& session) {
    std::string range;
    trace.step([&] {
        range =
            BuildUtcRangeFilter(clock.now(), settings.RangeHoursOfEventsInMap, settings, session);
    });
    return range;
}

} // namespace tremor
