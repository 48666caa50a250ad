#pragma once

#include "core/settings.h"

#include <QtWidgets/QWidget>

namespace tremor {

// The About box, modeless: what the program is, and whether it shows itself at start. It deletes
// itself when it is closed (Close, Escape or the title bar).
//
// Object names: FrmAbout, Image1, Text1, nologo, cmdClose.
class FrmAbout : public QWidget {
    Q_OBJECT

  public:
    // Ticking nologo writes 1 to `settings.StartupLogo` at once, unticking it 0. The settings must
    // outlive the window.
    FrmAbout(AppSettings& settings, QWidget* owner);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void layOut();

    AppSettings& settings_;
};

} // namespace tremor
