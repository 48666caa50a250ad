#pragma once

#include "setup/setup_form.h"
#include "setup/setup_pages.h"

#include <QtWidgets/QDialog>

class QPushButton;

namespace tremor {

// The window "Setup", modeless. It shows the settings when it is made; OK applies them, Cancel and
// Escape close it. It deletes itself when it is closed.
//
// Object names: FrmSetup, pages, CmdOk, CmdCancel and those of SetupControls.
class FrmSetup : public QDialog {
    Q_OBJECT

  public:
    // `form` outlives the window.
    FrmSetup(SetupForm& form, QWidget* owner);

  Q_SIGNALS:
    void playSound(const QString& path);
    void telegramSettings();
    void pagerlinkSettings();
    void emailSettings();
    void geoNames();
    void pointsOfInterest();

  private:
    void fill(const SetupValues& values);
    SetupValues values() const;
    void connectSources();
    void connectHours();
    void connectMap();
    void connectAlerts();
    void connectOthers();
    void enablePins(bool automatic);

    SetupForm& form_;
    SetupControls controls_;
    QPushButton* CmdOk = nullptr;
};

} // namespace tremor
