#pragma once

#include "core/ports.h"
#include "manage/database_manager.h"

#include <QtWidgets/QDialog>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QTableView;
class QVBoxLayout;

namespace tremor {

class ResultModel;

// The window "Manage DataBase": conditions on the left become a select, the select's rows stand in
// the grid, single events are added, edited and deleted. Polling stands still while it is open.
//
// A query in progress leaves the window painting; cmdQuery then reads "Stop" and Escape stops too.
//
// Object names: frmManageDB, chk_conditions_0 to chk_conditions_3, StartDateC, endDateC, txtSMg,
// txtEMg, txtSDepth, txtEDpeth, cmbSource, chk_orderby, cmb_FieldsO, cmb_ordinamento, chk_groupby,
// cmb_FieldsG, chk_count, cmdBuildQuery, txtQuery, cmdQuery, grid, lblRows, cmdAddEvent,
// cmdEditEvent, cmdDeleteEvent, mnu_AddEvents, mnu_Edit, mnu_Delete.
class FrmManageDB : public QDialog {
    Q_OBJECT

  public:
    // `manager` and `clock` outlive the window, which deletes itself when it is closed.
    FrmManageDB(DatabaseManager& manager, Clock& clock, QWidget* owner);
    ~FrmManageDB() override;

    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* makeConditions();
    QWidget* makeSorting();
    QWidget* makeStatement();
    QWidget* makeResults();
    QWidget* makeEventButtons();
    void connectControls();
    void fillLists();

    EventQueryForm form() const;
    void cmdBuildQuery_Click();
    void cmdQuery_Click();
    void fillGrid();
    void showRunning(bool running);
    void selectRow(int row);
    void showPopup(const QPoint& place);

    DatabaseManager& manager_;
    Clock& clock_;
    ResultModel* model_ = nullptr;

    QCheckBox* chk_conditions_[4] = {};
    QDateEdit* StartDateC = nullptr;
    QDateEdit* endDateC = nullptr;
    QLineEdit* txtSMg = nullptr;
    QLineEdit* txtEMg = nullptr;
    QLineEdit* txtSDepth = nullptr;
    QLineEdit* txtEDpeth = nullptr;
    QComboBox* cmbSource = nullptr;
    QCheckBox* chk_orderby = nullptr;
    QComboBox* cmb_FieldsO = nullptr;
    QComboBox* cmb_ordinamento = nullptr;
    QCheckBox* chk_groupby = nullptr;
    QComboBox* cmb_FieldsG = nullptr;
    QCheckBox* chk_count = nullptr;
    QPushButton* cmdBuildQuery = nullptr;
    QPlainTextEdit* txtQuery = nullptr;
    QPushButton* cmdQuery = nullptr;
    QLabel* lblRows = nullptr;
    QTableView* grid = nullptr;
    QPushButton* cmdAddEvent = nullptr;
    QPushButton* cmdEditEvent = nullptr;
    QPushButton* cmdDeleteEvent = nullptr;
    QMenu* popup_ = nullptr;
    bool closeAfterQuery_ = false;
};

} // namespace tremor
