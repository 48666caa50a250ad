#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace tremor {

// Shows the one window of a kind: the one that `window` points to comes to the front, or `make`
// makes it. The window deletes itself when it is closed. True when it was made.
template <class Window, class Make>
bool showOrRaise(QPointer<Window>& window, Make&& make) {
    const bool made = window.isNull();
    if (made)
        window = make();
    window->setEnabled(true); // also over a main window that is disabled
    window->show();
    window->raise();
    window->activateWindow();
    return made;
}

} // namespace tremor
