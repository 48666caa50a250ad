#pragma once

#include "core/number_locale.h"
#include "core/settings.h"

#include <QtWidgets/QDialog>

#include <string>

class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tremor {

class TelegramBot;

// The window "Settings Telegram": the token of the bot, a test of it, and the period of the polls.
// The token is masked. While a test waits for the service the window lives on and can be closed.
//
// Object names: frmSettingsTelegram, Frame1, Label1, txtUrlTelegram, Label2, txtToken, cmdTest,
// lblTestToken, lblInfoName, lblNameBot, txtPollBot, CmdOk, CmdCancel.
class FrmSettingsTelegram : public QDialog {
    Q_OBJECT

  public:
    // `settings` and `bot` outlive the window, which deletes itself when it is closed. `helpUrl` is
    // the page on creating bots.
    FrmSettingsTelegram(AppSettings& settings, TelegramBot& bot, const NumberLocale& locale,
                        const std::string& helpUrl, QWidget* owner);

  private:
    QGroupBox* makeBot(const std::string& helpUrl);
    QLayout* makeTest();
    QLayout* makePoll();
    QLayout* makeButtons();

    void cmdTest_Click();
    void CmdOk_Click();
    void showResult(bool works, const std::string& botName);

    AppSettings& settings_;
    TelegramBot& bot_;
    NumberLocale locale_;

    QLineEdit* txtToken = nullptr;
    QPushButton* cmdTest = nullptr;
    QLabel* lblTestToken = nullptr;
    QLabel* lblInfoName = nullptr;
    QLabel* lblNameBot = nullptr;
    QLineEdit* txtPollBot = nullptr;
};

} // namespace tremor
