#pragma once

#include "alerts/smtp_form.h"

#include <QtWidgets/QWidget>

namespace tremor {

// The settings of the mail notification, modeless. OK stores all fields in the settings; Cancel,
// Escape and the title bar leave them alone. The window deletes itself when it is closed.
//
// Object names: frmSettingsSMTP, Frame1, txtServer, txtUsername, txtPassword, txtPort, chkSSL,
// Frame2, txtFromName, txtFromEmail, txtTo, Frame3, cmbMagnitude, CmdOk, CmdCancel.
class frmSettingsSMTP : public QWidget {
    Q_OBJECT

  public:
    // The references must outlive the window.
    frmSettingsSMTP(AppSettings& settings, const NumberLocale& locale, ErrorReport& errors,
                    QWidget* owner);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void layOut();
    QWidget* serverFrame();
    QWidget* headerFrame();
    QWidget* magnitudeFrame();
    void CmdOk_Click();
    void fill(const SmtpForm& form);
    SmtpForm form() const;

    AppSettings& settings_;
    NumberLocale locale_;
    ErrorReport& errors_;
};

} // namespace tremor
