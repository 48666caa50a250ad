#pragma once

#include <chrono>

namespace tremor {

// A civil date and time of the local clock, to the second, with no time zone attached. The
// difference of two of them is plain calendar arithmetic.
using DateTime = std::chrono::local_seconds;

} // namespace tremor
