#pragma once

#include <stdlib.h>
#include <time.h>

#include <optional>
#include <string>

namespace tremor::testing {

// The time zone of the process for the length of a test.
class TimeZone {
  public:
    explicit TimeZone(const char* zone) {
        if (const char* const old = ::getenv("TZ"))
            before_ = old;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~TimeZone() {
        if (before_)
            ::setenv("TZ", before_->c_str(), 1);
        else
            ::unsetenv("TZ");
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

  private:
    std::optional<std::string> before_;
};

} // namespace tremor::testing
