#pragma once

#include "core/ports.h"
#include "core/session.h"

#include <chrono>
#include <functional>

namespace tremor {

// The clock of the machine and the waits of the user-interface thread. The only place of the
// program that spins an event loop of its own.
class QtClock : public Clock {
  public:
    // `session.TicksHeld` is set while repaint() runs, so that timers that fire meanwhile do
    // nothing.
    explicit QtClock(Session& session);

    DateTime now() const override;
    std::chrono::milliseconds steady() const override;

    // Returns after `duration`, at once (with one pump) for none, and early when the application
    // quits. A sleep begun inside another one by a handler delays the outer one's return.
    void sleep(std::chrono::milliseconds duration) override;
    void pump() override;

    // Does nothing when called from within itself (by a handler of what it let through).
    void repaint() override;

    // Waits until `done` is true, for at most `limit`; true when it became so. Meanwhile ticks are
    // held and the operator's input stays queued, as in repaint(); replies of other processes and
    // of the network come in. Ends early, with true, when the program closes.
    bool waitWithoutInput(const std::function<bool()>& done, std::chrono::milliseconds limit);

    // True while nothing may re-enter: what wants to start a handler by itself waits until then.
    bool ticksHeld() const { return session_.TicksHeld; }

  private:
    Session& session_;
    bool repainting_ = false;
};

} // namespace tremor
