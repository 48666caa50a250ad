#pragma once

#include "core/ports.h"

#include <QtCore/QPoint>
#include <QtCore/QTimer>
#include <QtWidgets/QDialog>

#include <chrono>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace tremor {

// The runtime-error dialog: the critical icon, the whole report to read and copy, and Abort, Retry
// and Ignore. Escape, closing the window and Enter answer Ignore; Abort takes a click, its
// mnemonic or the space bar, so that no key pressed by habit ends the program.
//
// Object names: runtimeErrorBox, report, countdown, cmdAbort, cmdRetry, cmdIgnore.
class RuntimeErrorBox : public QDialog {
    Q_OBJECT

  public:
    // Answers Ignore after `unattendedSeconds` without a key, a mouse button, the wheel or a
    // moved pointer over the dialog (0 or less: never). `second` is the length of one step of the
    // countdown.
    RuntimeErrorBox(const QString& title, const QString& report, int unattendedSeconds,
                    QWidget* parent, std::chrono::milliseconds second = std::chrono::seconds(1));

    // Shows the dialog and returns when it is answered; Ignore when its parent dies meanwhile, in
    // which case the dialog is gone, too.
    ErrorAnswer ask();

  protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void layOut(const QString& report);
    QPushButton* addButton(const QString& text, const QString& name, ErrorAnswer answer);
    void countDown();
    void restartCountdown();
    void showCountdown();
    bool isActivity(const QEvent& event);

    int unattendedSeconds_;
    int remainingSeconds_;
    QTimer countdownTimer_;
    QLabel* countdownLabel_;
    QPoint lastPointer_; // on the screen
};

} // namespace tremor
