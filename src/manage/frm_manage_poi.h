#pragma once

#include "manage/poi_manager.h"

#include <QtCore/QTimer>
#include <QtWidgets/QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tremor {

class PoiGrid;
class PoiModel;

// The window "Points of Interest": the rows of the table with their fields, edited in place. Return
// keeps a text and goes on with the next field, at the last one with the name of the next row;
// Escape leaves the text. What is being typed is kept as well when another control is used, except
// by cmd_cancel. Everything kept is in the table at once.
//
// The search starts with Return or when typing pauses.
//
// Object names: frmManagePoI, txt_search, fxGrid, txt_grid (while editing), lblRows, cmd_addPOI,
// cmd_editPOI, cmd_delPOI, cmd_ok, cmd_cancel.
class FrmManagePoI : public QDialog {
    Q_OBJECT

  public:
    static constexpr int searchDelayMs = 400;

    // Reads the table. `manager` outlives the window, which deletes itself when it is closed.
    FrmManagePoI(PoiManager& manager, QWidget* owner);
    ~FrmManagePoI() override;

    void reject() override {} // Escape belongs to the editor

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* makeSearch();
    QWidget* makeGrid();
    QWidget* makeButtons();
    void connectControls();
    void dimensionamentoGrid();

    void searchPOI();
    void StartEditing(const QModelIndex& cell);
    void cmd_addPOI_Click();
    void cmd_delPOI_Click();
    void goOn();
    bool keepOpenEdit();
    void cellRefused(const QModelIndex& cell);
    void showTotal();

    PoiManager& manager_;
    PoiModel* model_ = nullptr;
    QTimer searchTimer_;
    bool refused_ = false; // the text kept last did not get into the table

    QLineEdit* txt_search = nullptr;
    PoiGrid* fxGrid = nullptr;
    QLabel* lblRows = nullptr;
    QPushButton* cmd_addPOI = nullptr;
    QPushButton* cmd_editPOI = nullptr;
    QPushButton* cmd_delPOI = nullptr;
    QPushButton* cmd_ok = nullptr;
    QPushButton* cmd_cancel = nullptr;
};

} // namespace tremor
