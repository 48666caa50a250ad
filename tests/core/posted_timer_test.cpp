#include "core/posted_timer.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>

#include <gtest/gtest.h>

namespace tremor {
namespace {

using namespace std::chrono_literals;

template <class Condition>
bool pumpUntil(Condition condition) {
    const QDeadlineTimer deadline(30s);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return condition();
}

void pumpFor(std::chrono::milliseconds duration) {
    const QDeadlineTimer deadline(duration);
    while (!deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

TEST(PostedTimer, TicksAgainInsideItsOwnHandler) {
    const Session session;
    int depth = 0;
    int deepest = 0;
    QObject owner;
    PostedTimer timer(
        QStringLiteral("t"), 1ms, session,
        [&] {
            deepest = std::max(deepest, ++depth);
            if (depth < 3)
                pumpUntil([&] { return deepest >= 3; });
            --depth;
        },
        &owner);
    timer.start();
    EXPECT_TRUE(pumpUntil([&] { return deepest >= 3; }));
    timer.stop();
}

TEST(PostedTimer, HasAtMostOneTickWaiting) {
    const Session session;
    int ticks = 0;
    QObject owner;
    PostedTimer timer(
        QStringLiteral("t"), 1s, session, [&] { ++ticks; }, &owner);
    timer.start();
    for (int i = 0; i < 5; ++i) {
        QTimerEvent due(timer.timerId());
        QCoreApplication::sendEvent(&timer, &due);
    }
    EXPECT_EQ(ticks, 0);
    QCoreApplication::sendPostedEvents(&timer);
    EXPECT_EQ(ticks, 1);
}

TEST(PostedTimer, DropsTicksWhileTheyAreHeld) {
    Session session;
    int ticks = 0;
    QObject owner;
    PostedTimer timer(
        QStringLiteral("t"), 1ms, session, [&] { ++ticks; }, &owner);
    session.TicksHeld = true;
    timer.start();
    pumpFor(30ms);
    EXPECT_EQ(ticks, 0);
    session.TicksHeld = false;
    EXPECT_TRUE(pumpUntil([&] { return ticks > 0; }));
}

TEST(PostedTimer, DropsAWaitingTickThatIsHeldMeanwhile) {
    Session session;
    int ticks = 0;
    QObject owner;
    PostedTimer timer(
        QStringLiteral("t"), 1s, session, [&] { ++ticks; }, &owner);
    timer.start();
    QTimerEvent due(timer.timerId());
    QCoreApplication::sendEvent(&timer, &due);
    session.TicksHeld = true;
    QCoreApplication::sendPostedEvents(&timer);
    EXPECT_EQ(ticks, 0);
}

TEST(PostedTimer, DropsAWaitingTickWhenItIsStopped) {
    const Session session;
    int ticks = 0;
    QObject owner;
    PostedTimer timer(
        QStringLiteral("t"), 1s, session, [&] { ++ticks; }, &owner);
    timer.start();
    QTimerEvent due(timer.timerId());
    QCoreApplication::sendEvent(&timer, &due);
    timer.stop();
    QCoreApplication::sendPostedEvents(&timer);
    EXPECT_EQ(ticks, 0);
}

} // namespace
} // namespace tremor
