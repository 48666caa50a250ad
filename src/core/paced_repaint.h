#pragma once

#include "core/ports.h"

#include <chrono>

namespace tremor {

// Keeps the windows painted during work that nothing may interrupt, however often it is called.
class PacedRepaint {
  public:
    explicit PacedRepaint(Clock& clock) : clock_(clock), last_(clock.steady()) {}

    void operator()() {
        if (isDue())
            clock_.repaint();
    }

    // True about every 30 ms, for work that changes what is painted first.
    bool isDue() {
        const std::chrono::milliseconds now = clock_.steady();
        if (now - last_ < pace)
            return false;
        last_ = now;
        return true;
    }

  private:
    static constexpr std::chrono::milliseconds pace{30};

    Clock& clock_;
    std::chrono::milliseconds last_;
};

} // namespace tremor
