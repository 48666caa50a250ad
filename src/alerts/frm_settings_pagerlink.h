#pragma once

#include "alerts/pagerlink_settings.h"
#include "core/error_report.h"
#include "core/number_locale.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <memory>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;

namespace tremor {

// What the window works with; what is referred to outlives it.
struct PagerlinkWindowContext {
    AppSettings& settings;
    const Session& session;
    NumberLocale locale;
    Prompts& prompts;
    Clock& clock;
    ErrorReport& errors;
};

// The window "Settings Pagerlink", modeless: server and port with a test, and to whom a notice
// goes. It deletes itself when it is closed. OK stores, Cancel and the title bar do not; Escape
// and Return do nothing. The window stays alive while it waits for the server; what would start a
// second wait is disabled meanwhile.
//
// OK takes the ticks over only when the grid was clicked; without a click the selection is emptied.
//
// Object names: frmSettingsPagerlink, Frame1, txtPglServer, txtPglPort, cmdCheckIfWork,
// labelResult, Frame2, optBroadcast, optSelectedUser, cmbMagnitude, gridUsers, CmdOk, CmdCancel.
// A cell of column 2 of gridUsers holds "q" (an empty box) or U+00FE (a ticked one), the places of
// the boxes in the font Wingdings; a box is painted for them.
class frmSettingsPagerlink : public QWidget {
    Q_OBJECT

  public:
    // The window has a socket of its own.
    frmSettingsPagerlink(const PagerlinkWindowContext& context,
                         std::unique_ptr<DatagramSocket> winsock, QWidget* owner);
    ~frmSettingsPagerlink() override;

  protected:
    // The list of users is fetched once the window stands on the screen.
    void showEvent(QShowEvent* event) override;

  private:
    QGroupBox* makeServerFrame();
    QGroupBox* makeMessageFrame();
    void connectControls();
    void showSettings();
    void startSocket();

    void cmdCheckIfWork_Click();
    void fillUsersGrid();
    void showUsers();
    void gridUsers_Click(int row, int column);
    void showTick(int row);
    void optBroadcast_Click();
    void CmdOk_Click();
    void setWaiting(bool waiting);

    PagerlinkWindowContext context_;
    std::shared_ptr<PagerlinkSettings> server_; // held by each wait as well
    QPointer<QWidget> focusBefore_;             // a wait, and where the wait has put it
    QPointer<QWidget> focusMeanwhile_;
    bool started_ = false;

    QLineEdit* txtPglServer = nullptr;
    QLineEdit* txtPglPort = nullptr;
    QPushButton* cmdCheckIfWork = nullptr;
    QLabel* labelResult = nullptr;
    QRadioButton* optBroadcast = nullptr;
    QRadioButton* optSelectedUser = nullptr;
    QComboBox* cmbMagnitude = nullptr;
    QTableWidget* gridUsers = nullptr;
    QPushButton* CmdOk = nullptr;
    QPushButton* CmdCancel = nullptr;
};

} // namespace tremor
