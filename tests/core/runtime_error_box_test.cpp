#include "core/runtime_error_box.h"
#include "support/window_driver.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QClipboard>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

#include <gtest/gtest.h>

#include <memory>

namespace tremor {
namespace {

using namespace std::chrono_literals;
using testing::child;
using testing::pressKey;
using testing::sendMouse;
using testing::WhenModal;

const QString title = QStringLiteral("TREMORLEDGER 1.0.0 - Runtime error");
const QString report =
    QStringLiteral("There was a runtime error.\nNumber: 13\nDescription: <b>x</b>\n");

// The answer of a box that never answers by itself, on which `act` is done.
ErrorAnswer answerAfter(std::function<void(QDialog&)> act) {
    RuntimeErrorBox box(title, report, 0, nullptr);
    const WhenModal hand("runtimeErrorBox", std::move(act));
    return box.ask();
}

ErrorAnswer answerAfterClick(const char* button) {
    return answerAfter([button](QDialog& box) { child<QPushButton>(box, button)->click(); });
}

// A key as the window system delivers it: to the native window, which hands it to the focus.
ErrorAnswer answerAfterKey(Qt::Key key, const char* focus) {
    return answerAfter([key, focus](QDialog& box) {
        child<QWidget>(box, focus)->setFocus();
        pressKey(*box.windowHandle(), key);
    });
}

TEST(RuntimeErrorBoxLook, ShowsTitleAndWholeReportAsPlainReadOnlyText) {
    RuntimeErrorBox box(title, report, 0, nullptr);
    EXPECT_EQ(box.windowTitle(), title);
    const auto* view = child<QPlainTextEdit>(box, "report");
    EXPECT_EQ(view->toPlainText(), report);
    EXPECT_TRUE(view->isReadOnly());
    EXPECT_TRUE(view->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    EXPECT_TRUE(view->textInteractionFlags().testFlag(Qt::TextSelectableByKeyboard));
}

TEST(RuntimeErrorBoxLook, ShowsTheCriticalIcon) {
    RuntimeErrorBox box(title, report, 0, nullptr);
    const QPixmap shown = child<QLabel>(box, "icon")->pixmap(Qt::ReturnByValue);
    ASSERT_FALSE(shown.isNull());
    const QIcon critical = box.style()->standardIcon(QStyle::SP_MessageBoxCritical);
    EXPECT_EQ(shown.toImage(), critical.pixmap(shown.size()).toImage());
}

TEST(RuntimeErrorBoxLook, HasThreeButtonsWithMnemonicsOfTheirOwn) {
    RuntimeErrorBox box(title, report, 0, nullptr);
    EXPECT_EQ(box.findChildren<QPushButton*>().size(), 3);
    EXPECT_EQ(child<QPushButton>(box, "cmdAbort")->text(), QStringLiteral("&Abort"));
    EXPECT_EQ(child<QPushButton>(box, "cmdRetry")->text(), QStringLiteral("&Retry"));
    EXPECT_EQ(child<QPushButton>(box, "cmdIgnore")->text(), QStringLiteral("&Ignore"));
    EXPECT_FALSE(child<QPushButton>(box, "cmdAbort")->shortcut().isEmpty());
}

TEST(RuntimeErrorBoxLook, KeepsItsSizeForAReportOfManyLongLines) {
    RuntimeErrorBox box(title, QString(20000, u'W') + QString(500, u'\n'), 0, nullptr);
    EXPECT_LT(box.width(), 1000);
    EXPECT_LT(box.height(), 700);
    EXPECT_LT(box.minimumSizeHint().height(), 400);
}

TEST(RuntimeErrorBoxLook, LetsTheReportBeCopied) {
    QApplication::clipboard()->clear();
    answerAfter([](QDialog& box) {
        auto* view = child<QPlainTextEdit>(box, "report");
        pressKey(*view, Qt::Key_A, Qt::ControlModifier);
        pressKey(*view, Qt::Key_C, Qt::ControlModifier);
        box.reject();
    });
    EXPECT_EQ(QApplication::clipboard()->text(), report);
}

TEST(RuntimeErrorBoxAnswers, FollowTheButtons) {
    EXPECT_EQ(answerAfterClick("cmdAbort"), ErrorAnswer::Abort);
    EXPECT_EQ(answerAfterClick("cmdRetry"), ErrorAnswer::Retry);
    EXPECT_EQ(answerAfterClick("cmdIgnore"), ErrorAnswer::Ignore);
}

TEST(RuntimeErrorBoxAnswers, AreIgnoreForEscapeWhereverTheFocusIs) {
    for (const char* focus : {"report", "cmdAbort", "cmdRetry", "cmdIgnore"})
        EXPECT_EQ(answerAfterKey(Qt::Key_Escape, focus), ErrorAnswer::Ignore) << focus;
}

TEST(RuntimeErrorBoxAnswers, AreIgnoreForTheClosedWindow) {
    EXPECT_EQ(answerAfter([](QDialog& box) { box.close(); }), ErrorAnswer::Ignore);
}

TEST(RuntimeErrorBoxAnswers, AreNeverAbortForEnter) {
    for (const Qt::Key enter : {Qt::Key_Return, Qt::Key_Enter}) {
        EXPECT_EQ(answerAfterKey(enter, "report"), ErrorAnswer::Ignore);
        EXPECT_EQ(answerAfterKey(enter, "cmdAbort"), ErrorAnswer::Ignore);
        EXPECT_EQ(answerAfterKey(enter, "cmdIgnore"), ErrorAnswer::Ignore);
    }
}

TEST(RuntimeErrorBoxAnswers, AreRetryForEnterOnAFocusedRetry) {
    EXPECT_EQ(answerAfterKey(Qt::Key_Return, "cmdRetry"), ErrorAnswer::Retry);
}

TEST(RuntimeErrorBoxAnswers, AreAbortForTheSpaceBarOnAFocusedAbort) {
    EXPECT_EQ(answerAfterKey(Qt::Key_Space, "cmdAbort"), ErrorAnswer::Abort);
}

TEST(RuntimeErrorBoxAnswers, BeginWithTheFocusOnIgnore) {
    answerAfter([](QDialog& box) {
        EXPECT_EQ(box.focusWidget(), child<QPushButton>(box, "cmdIgnore"));
        EXPECT_TRUE(child<QPushButton>(box, "cmdIgnore")->isDefault());
        box.reject();
    });
}

TEST(RuntimeErrorBoxAnswers, AreIgnoreWhenTheOwnerDiesMeanwhile) {
    auto owner = std::make_unique<QWidget>();
    auto* box = new RuntimeErrorBox(title, report, 0, owner.get());
    const WhenModal hand("runtimeErrorBox", [&](QDialog&) { owner.reset(); });
    EXPECT_EQ(box->ask(), ErrorAnswer::Ignore);
}

TEST(RuntimeErrorBoxCountdown, IsShownInSeconds) {
    RuntimeErrorBox box(title, report, 59, nullptr);
    EXPECT_EQ(child<QLabel>(box, "countdown")->text(), QStringLiteral("Ignore in 59 s"));
}

TEST(RuntimeErrorBoxCountdown, AnswersIgnoreByItself) {
    RuntimeErrorBox box(title, report, 5, nullptr, 40ms);
    QStringList shown;
    const WhenModal hand("runtimeErrorBox", [&](QDialog& dialog) {
        auto* sampler = new QTimer(&dialog);
        QObject::connect(sampler, &QTimer::timeout, &dialog, [&] {
            const QString text = child<QLabel>(dialog, "countdown")->text();
            if (shown.isEmpty() || shown.last() != text)
                shown += text;
        });
        sampler->start(5);
    });
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(box.ask(), ErrorAnswer::Ignore);
    EXPECT_GE(clock.elapsed(), 190);
    EXPECT_EQ(shown.last(), QStringLiteral("Ignore in 1 s"));
}

TEST(RuntimeErrorBoxCountdown, IsNeitherShownNorRunForZero) {
    RuntimeErrorBox box(title, report, 0, nullptr, 1ms);
    bool stillOpen = false;
    const WhenModal hand("runtimeErrorBox", [&](QDialog& dialog) {
        EXPECT_FALSE(child<QLabel>(dialog, "countdown")->isVisible());
        pressKey(*dialog.windowHandle(), Qt::Key_Shift);
        QTimer::singleShot(200, &dialog, [&] {
            stillOpen = true;
            dialog.done(static_cast<int>(ErrorAnswer::Retry));
        });
    });
    EXPECT_EQ(box.ask(), ErrorAnswer::Retry);
    EXPECT_TRUE(stillOpen);
}

// Lets a countdown of five steps run down to 3, does something, and gives the text then shown.
QString countdownAfter(const std::function<void(RuntimeErrorBox&)>& act) {
    RuntimeErrorBox box(title, report, 5, nullptr, 60ms);
    QString after;
    const WhenModal hand("runtimeErrorBox", [&](QDialog& dialog) {
        auto* label = child<QLabel>(dialog, "countdown");
        auto* sampler = new QTimer(&dialog);
        QObject::connect(sampler, &QTimer::timeout, &dialog, [&, label, sampler] {
            if (label->text() != QLatin1String("Ignore in 3 s"))
                return;
            sampler->stop();
            act(box);
            after = label->text();
            dialog.reject();
        });
        sampler->start(5);
    });
    box.ask();
    return after;
}

TEST(RuntimeErrorBoxCountdown, BeginsAgainAtAnyKey) {
    EXPECT_EQ(countdownAfter([](auto& box) { pressKey(*box.windowHandle(), Qt::Key_Down); }),
              QStringLiteral("Ignore in 5 s"));
}

TEST(RuntimeErrorBoxCountdown, BeginsAgainAtAMouseButton) {
    EXPECT_EQ(countdownAfter([](auto& box) {
                  sendMouse(*box.windowHandle(), QEvent::MouseButtonPress, {120, 40});
              }),
              QStringLiteral("Ignore in 5 s"));
}

TEST(RuntimeErrorBoxCountdown, BeginsAgainWhenThePointerMoves) {
    EXPECT_EQ(countdownAfter([](auto& box) {
                  sendMouse(*box.windowHandle(), QEvent::MouseMove, {120, 40});
              }),
              QStringLiteral("Ignore in 5 s"));
}

TEST(RuntimeErrorBoxCountdown, GoesOnUnderARestingPointer) {
    RuntimeErrorBox box(title, report, 4, nullptr, 40ms);
    const WhenModal hand("runtimeErrorBox", [&](QDialog& dialog) {
        auto* echo = new QTimer(&dialog);
        QObject::connect(echo, &QTimer::timeout, &dialog, [&dialog] {
            sendMouse(*dialog.windowHandle(), QEvent::MouseMove, {120, 40});
        });
        echo->start(10);
    });
    EXPECT_EQ(box.ask(), ErrorAnswer::Ignore);
}

TEST(RuntimeErrorBoxCountdown, GoesOnWhenNothingHappens) {
    EXPECT_EQ(countdownAfter([](auto&) {}), QStringLiteral("Ignore in 3 s"));
}

} // namespace
} // namespace tremor
