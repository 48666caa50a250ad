#include "core/posted_timer.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <utility>

namespace tremor {

PostedTimer::PostedTimer(const QString& objectName, std::chrono::milliseconds interval,
                         const Session& session, std::function<void()> handler, QObject* parent)
    : QTimer(parent), session_(session), handler_(std::move(handler)) {
    setObjectName(objectName);
    setInterval(interval);
    connect(this, &QTimer::timeout, this, &PostedTimer::post);
}

void PostedTimer::post() {
    if (pending_ || session_.TicksHeld)
        return;
    pending_ = true;
    QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void PostedTimer::customEvent(QEvent*) {
    pending_ = false;
    if (isActive() && !session_.TicksHeld)
        handler_();
}

} // namespace tremor
