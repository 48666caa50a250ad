#include "core/qt_clock.h"
#include "support/time_zone.h"

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>
#include <QtGui/QCursor>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace tremor {
namespace {

using std::chrono::milliseconds;

// For what takes a fraction of a second when nothing else keeps the machine busy.
constexpr milliseconds farTooLong(20000);

class QtClockTest : public ::testing::Test {
  protected:
    void TearDown() override { QCoreApplication::processEvents(); }

    // What the clock's waits took.
    milliseconds duration(const std::function<void()>& wait) {
        const milliseconds start = clock.steady();
        wait();
        return clock.steady() - start;
    }

    Session session;
    QtClock clock{session};
};

// A window that counts what reaches it.
class WatchedWindow : public QWidget {
  public:
    WatchedWindow() {
        setMouseTracking(true);
        setGeometry(100, 100, 200, 200);
        show();
        QCoreApplication::processEvents();
        moves = paints = 0;
    }

    std::function<void()> onPaint;
    int moves = 0;
    int paints = 0;

  protected:
    void mouseMoveEvent(QMouseEvent*) override { ++moves; }
    void paintEvent(QPaintEvent*) override {
        ++paints;
        if (onPaint)
            onPaint();
    }
};

// A socket with a byte waiting in it.
class WaitingSocket {
  public:
    WaitingSocket() {
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends_.data()), 0);
        EXPECT_EQ(::write(ends_[0], "x", 1), 1);
        notifier_.emplace(ends_[1], QSocketNotifier::Read);
        QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] {
            ++activations;
            notifier_->setEnabled(false);
        });
    }
    ~WaitingSocket() {
        notifier_.reset();
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    WaitingSocket(const WaitingSocket&) = delete;
    WaitingSocket& operator=(const WaitingSocket&) = delete;

    int activations = 0;

  private:
    std::array<int, 2> ends_{};
    std::optional<QSocketNotifier> notifier_;
};

TEST_F(QtClockTest, GivesTheLocalCivilTime) {
    const testing::TimeZone kathmandu("NPT-5:45");
    const auto universal = std::chrono::seconds(::time(nullptr));
    const auto ahead = clock.now().time_since_epoch() - universal;
    EXPECT_GE(ahead, std::chrono::minutes(345));
    EXPECT_LE(ahead, std::chrono::minutes(346));
}

TEST_F(QtClockTest, GivesTheLocalCivilTimeWestOfGreenwich) {
    const testing::TimeZone newfoundland("NST3:30");
    const auto universal = std::chrono::seconds(::time(nullptr));
    const auto ahead = clock.now().time_since_epoch() - universal;
    EXPECT_GE(ahead, -std::chrono::minutes(210));
    EXPECT_LE(ahead, -std::chrono::minutes(209));
}

TEST_F(QtClockTest, SleepsForTheDuration) {
    const milliseconds slept = duration([&] { clock.sleep(milliseconds(120)); });
    EXPECT_GE(slept, milliseconds(119));
    EXPECT_LT(slept, farTooLong);
}

TEST_F(QtClockTest, LetsTimersInputPaintingAndSocketsRunWhileItSleeps) {
    WatchedWindow window;
    WaitingSocket socket;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] { ++ticks; });
    timer.start(10);
    QCursor::setPos(window.pos() + QPoint(50, 60));
    window.update();
    clock.sleep(milliseconds(150));
    EXPECT_GE(ticks, 1);
    EXPECT_GE(window.moves, 1);
    EXPECT_EQ(window.paints, 1);
    EXPECT_EQ(socket.activations, 1);
    EXPECT_FALSE(session.TicksHeld);
}

TEST_F(QtClockTest, SleepsInsideASleep) {
    bool innerDone = false;
    QTimer::singleShot(10, &*qApp, [&] {
        clock.sleep(milliseconds(50));
        innerDone = true;
    });
    const milliseconds slept = duration([&] { clock.sleep(milliseconds(100)); });
    EXPECT_TRUE(innerDone);
    EXPECT_GE(slept, milliseconds(99));
    EXPECT_LT(slept, farTooLong);
}

TEST_F(QtClockTest, OnlyPumpsForASleepOfNothing) {
    int posted = 0;
    for (const milliseconds nothing : {milliseconds(0), milliseconds(-5)}) {
        QMetaObject::invokeMethod(
            qApp, [&] { ++posted; }, Qt::QueuedConnection);
        EXPECT_LT(duration([&] { clock.sleep(nothing); }), farTooLong);
    }
    EXPECT_EQ(posted, 2);
}

TEST_F(QtClockTest, PumpRunsWhatWaitsAndReturns) {
    WatchedWindow window;
    int posted = 0;
    QMetaObject::invokeMethod(
        qApp, [&] { ++posted; }, Qt::QueuedConnection);
    QCursor::setPos(window.pos() + QPoint(20, 30));
    EXPECT_LT(duration([&] { clock.pump(); }), farTooLong);
    EXPECT_EQ(posted, 1);
    EXPECT_GE(window.moves, 1);
}

TEST_F(QtClockTest, RepaintPaintsButLeavesInputAndSocketsWaiting) {
    WatchedWindow window;
    WaitingSocket socket;
    QCursor::setPos(window.pos() + QPoint(70, 80));
    window.update();
    clock.repaint();
    EXPECT_EQ(window.paints, 1);
    EXPECT_EQ(window.moves, 0);
    EXPECT_EQ(socket.activations, 0);
    clock.pump();
    EXPECT_GE(window.moves, 1) << "the move was lost";
    clock.pump();
    EXPECT_EQ(socket.activations, 1);
}

TEST_F(QtClockTest, RepaintHoldsTheTicksAndLetsThemGoAgain) {
    std::optional<bool> heldMeanwhile;
    QMetaObject::invokeMethod(
        qApp, [&] { heldMeanwhile = session.TicksHeld; }, Qt::QueuedConnection);
    clock.repaint();
    EXPECT_EQ(heldMeanwhile, true);
    EXPECT_FALSE(session.TicksHeld);
}

TEST_F(QtClockTest, RepaintLeavesTicksHeldThatWereHeldBefore) {
    session.TicksHeld = true;
    clock.repaint();
    EXPECT_TRUE(session.TicksHeld);
}

TEST_F(QtClockTest, RepaintDoesNotReEnterItself) {
    WatchedWindow window;
    int posted = 0;
    int postedInsideInnerCall = 0;
    window.onPaint = [&] {
        QMetaObject::invokeMethod(
            qApp, [&] { ++posted; }, Qt::QueuedConnection);
        const int before = posted;
        clock.repaint();
        postedInsideInnerCall += posted - before;
    };
    window.update();
    clock.repaint();
    EXPECT_EQ(window.paints, 1);
    EXPECT_EQ(postedInsideInnerCall, 0);
    EXPECT_FALSE(session.TicksHeld);
    clock.pump();
    EXPECT_EQ(posted, 1);
}

TEST_F(QtClockTest, NeverGoesBack) {
    const milliseconds first = clock.steady();
    clock.sleep(milliseconds(5));
    EXPECT_GE(clock.steady() - first, milliseconds(4));
}

} // namespace
} // namespace tremor
