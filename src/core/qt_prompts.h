#pragma once

#include "core/ports.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

namespace tremor {

// The boxes and choosers of the desktop, all over the main window. All texts are plain text: what
// a feed or a server sent is never taken for markup.
//
// Object names: messageBox, inputBox, fileDialog, folderDialog, runtimeErrorBox.
class QtPrompts : public Prompts {
  public:
    // The window over which boxes appear unless another one of the program is active; before the
    // first call, and when the window is gone, they stand alone. A box whose parent dies while it
    // is open counts as cancelled.
    void setParentWindow(QWidget* window) { parent_ = window; }

    // Enter presses the first button (OK or Yes). Escape and closing the box answer Cancel, No,
    // or the only button. Of a very long text the box shows the head, and all of it as details.
    BoxAnswer showMessageBox(const MessageBox& box) override;

    std::optional<std::string> inputBox(std::string_view prompt, std::string_view title) override;

    // Paths are absolute, with "/". Patterns match whatever the case of the file's name.
    std::optional<std::string> showFileDialog(const FileDialogRequest& request) override;
    std::string browseForFolder(std::string_view title) override;

    ErrorAnswer showRuntimeError(std::string_view title, std::string_view text,
                                 int unattendedSeconds) override;

  private:
    QPointer<QWidget> parent_;
};

} // namespace tremor
