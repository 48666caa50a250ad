#pragma once

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

// The hands of the operator: finds windows by their object names and sends keys and mouse to them.
namespace tremor::testing {

template <class Widget>
Widget* child(const QWidget& window, const char* name) {
    auto* found = window.findChild<Widget*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << "no " << name;
    return found;
}

// A key pressed and released on a widget.
inline void pressKey(QObject& target, Qt::Key key, Qt::KeyboardModifiers modifiers = {},
                     const QString& text = {}) {
    const QPointer<QObject> alive(&target);
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QCoreApplication::sendEvent(&target, &press);
    if (alive.isNull())
        return;
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QCoreApplication::sendEvent(&target, &release);
}

// A mouse event at a place of a window, with no button held.
inline void sendMouse(QObject& target, QEvent::Type type, QPointF place) {
    const Qt::MouseButton button =
        type == QEvent::MouseMove ? Qt::NoButton : Qt::MouseButton::LeftButton;
    QMouseEvent event(type, place, place, button, button, Qt::NoModifier);
    QCoreApplication::sendEvent(&target, &event);
}

// Waits for the modal dialog of a name and acts on it once; to be started before the call that
// blocks in that dialog. A dialog that never comes, or stays open after `limitMs`, fails the test
// and is closed, so that no test hangs.
class WhenModal {
  public:
    WhenModal(std::string name, std::function<void(QDialog&)> act, int limitMs = 3000)
        : name_(std::move(name)), act_(std::move(act)), ticksLeft_(limitMs / tickMs) {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
        timer_.start(tickMs);
    }
    ~WhenModal() { EXPECT_TRUE(acted_) << name_ << " did not come"; }
    WhenModal(const WhenModal&) = delete;
    WhenModal& operator=(const WhenModal&) = delete;

  private:
    static constexpr int tickMs = 10;

    void look() {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (--ticksLeft_ <= 0) {
            ADD_FAILURE() << (acted_ ? "still open: " : "waited in vain for: ") << name_;
            if (dialog != nullptr)
                dialog->reject();
            timer_.stop();
        } else if (!acted_ && dialog != nullptr &&
                   dialog->objectName() == QLatin1String(name_.c_str())) {
            acted_ = true;
            act_(*dialog);
        }
    }

    std::string name_;
    std::function<void(QDialog&)> act_;
    QTimer timer_;
    int ticksLeft_;
    bool acted_ = false;
};

} // namespace tremor::testing
