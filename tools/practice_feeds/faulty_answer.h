#pragma once

#include "practice_feeds/fault_plan.h"
#include "practice_feeds/practice_service.h"

#include <atomic>

namespace httplib {
struct Response;
}

namespace tremor::practice {

// Puts `answer` into `response` as `fault` spoils it. `ending` is looked at by answers that take
// their time, which hold a thread of the server until it is set or the client goes.
void respond(const Answer& answer, Fault fault, httplib::Response& response,
             const std::atomic<bool>& ending);

} // namespace tremor::practice
