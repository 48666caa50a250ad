#pragma once

#include <QtWidgets/QHBoxLayout>

#include <initializer_list>

namespace tremor {

// The buttons at the foot of a window, side by side at its right.
inline QHBoxLayout* footRow(std::initializer_list<QWidget*> buttons) {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QWidget* button : buttons)
        row->addWidget(button);
    return row;
}

} // namespace tremor
