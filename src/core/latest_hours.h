#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"

#include <string>

namespace tremor {

// The condition on `Events` for the last settings.RangeHoursOfEventsInMap hours, which becomes the
// latest range of settings and session (see BuildUtcRangeFilter). One step of the procedure: empty
// when it failed and the operator has ignored that.
std::string latestHours(ProcedureTrace& trace, const Clock& clock, AppSettings& settings,
                        Session& session);

} // namespace tremor
