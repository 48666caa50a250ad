#include "core/qt_clock.h"

#include "core/flag_scope.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace tremor {
namespace {

// The longest that one pump goes on while handlers keep making new events.
constexpr int pumpLimitMs = 20;

// How often a wait looks whether it has to end.
constexpr std::chrono::milliseconds waitTurn{20};

// Keeps sockets from being heard while it lives; what they have waits in them. The event loop's
// own flag for this is not heeded by the GLib loop, on which Qt runs on most desktops.
class SocketHold : public QObject {
  public:
    SocketHold() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        return event->type() == QEvent::SockAct || event->type() == QEvent::SockClose ||
               QObject::eventFilter(watched, event);
    }
};

} // namespace

QtClock::QtClock(Session& session) : session_(session) {}

DateTime QtClock::now() const {
    const QDateTime local = QDateTime::currentDateTime();
    return DateTime(std::chrono::seconds(local.toSecsSinceEpoch() + local.offsetFromUtc()));
}

std::chrono::milliseconds QtClock::steady() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

void QtClock::sleep(std::chrono::milliseconds duration) {
    if (duration <= std::chrono::milliseconds::zero()) {
        pump();
        return;
    }
    QEventLoop loop;
    QTimer::singleShot(duration, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

void QtClock::pump() {
    QCoreApplication::processEvents(QEventLoop::AllEvents, pumpLimitMs);
}

void QtClock::repaint() {
    if (repainting_)
        return;
    const FlagScope repainting(repainting_);
    const FlagScope held(session_.TicksHeld);
    const SocketHold sockets;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    // The call has used up the signal by which the waiting input was announced.
    QAbstractEventDispatcher::instance()->wakeUp();
}

bool QtClock::waitWithoutInput(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const FlagScope held(session_.TicksHeld);
    const QDeadlineTimer deadline(limit);
    QTimer alarm; // so that the loop wakes when nothing else happens
    alarm.start(waitTurn);
    while (!done() && !session_.waitsMustEnd()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents |
                                        QEventLoop::WaitForMoreEvents);
    }
    QAbstractEventDispatcher::instance()->wakeUp();
    return true;
}

} // namespace tremor
