#pragma once

#include "core/session.h"

#include <QtCore/QTimer>

#include <chrono>
#include <functional>

namespace tremor {

// A timer whose ticks reach their handler through the event queue, at most one waiting there. A
// QTimer by itself never fires again inside its own handler; a posted tick does, whenever that
// handler waits and lets pending messages run.
class PostedTimer : public QTimer {
  public:
    // Not started. Ticks that fall due, or would run, while `session.TicksHeld` is set or after
    // stop() are dropped.
    PostedTimer(const QString& objectName, std::chrono::milliseconds interval,
                const Session& session, std::function<void()> handler, QObject* parent);

  protected:
    void customEvent(QEvent* event) override; // a posted tick

  private:
    void post();

    const Session& session_;
    std::function<void()> handler_;
    bool pending_ = false;
};

} // namespace tremor
