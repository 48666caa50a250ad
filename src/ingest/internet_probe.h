#pragma once

#include "core/ports.h"
#include "core/session.h"

#include <chrono>
#include <string>

namespace tremor {

// Tells whether the Internet can be reached: whether a connection to a well-known host stands
// within a few seconds. Nothing is sent over it.
class InternetProbe {
  public:
    // `address` is scheme, host and optional port: "https://www.example.org" means port 443 there.
    InternetProbe(std::string address, Clock& clock, Session& session,
                  std::chrono::milliseconds limit = std::chrono::seconds(5));

    // Connects, lets pending window messages run meanwhile, puts the result into
    // `session.InternetUp` and returns it. A call from inside the wait of another one returns the
    // last known result. When the program closes, the wait ends at once and the result is false.
    bool IsInternetUp();

  private:
    bool connects() const;

    std::string address_;
    Clock& clock_;
    Session& session_;
    std::chrono::milliseconds limit_;
    bool probing_ = false;
};

} // namespace tremor
