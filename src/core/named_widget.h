#pragma once

#include <QtWidgets/QWidget>

#include <utility>

namespace tremor {

// Gives a widget the object name under which tests, style sheets and screen readers find it.
template <class Widget>
Widget* named(Widget* widget, const char* objectName) {
    widget->setObjectName(QLatin1StringView(objectName));
    return widget;
}

// The same for a new one, made of `arguments`.
template <class Widget, class... Arguments>
Widget* named(const char* objectName, Arguments&&... arguments) {
    return named(new Widget(std::forward<Arguments>(arguments)...), objectName);
}

} // namespace tremor
