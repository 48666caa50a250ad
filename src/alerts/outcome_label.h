#pragma once

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QPalette>
#include <QtWidgets/QLabel>

// The label beside the button of a test.
namespace tremor {

// The outcome, in pure green when it is good and pure red when not: on a dark ground, where both
// can be read.
inline void showOutcome(QLabel& label, const QString& text, bool good) {
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, good ? QColor(0, 255, 0) : QColor(255, 0, 0));
    palette.setColor(QPalette::Window, QColor(0x20, 0x20, 0x20));
    label.setPalette(palette);
    label.setAutoFillBackground(true);
    label.setText(text);
}

// What is there before the outcome, in the colours of the window.
inline void showTestProgress(QLabel& label, const QString& text) {
    label.setPalette(QPalette());
    label.setAutoFillBackground(false);
    label.setText(text);
}

} // namespace tremor
