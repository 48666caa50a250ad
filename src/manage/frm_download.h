#pragma once

#include "manage/geonames_import.h"

#include <QtWidgets/QDialog>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;
class QTableWidget;

namespace tremor {

// The window "Download POI from GeoNames": the countries on offer, which of them the catalogue
// holds, and what comes of each command. A cell of the two mark columns holds "þ" when it is ticked
// and "q" when not; a click or the space bar changes it.
//
// The list is fetched once the window is there. It can be closed at any time; Escape gives up a
// running download and closes it.
//
// Object names: frmDownload, fxgrid, cmdCheck, cmdDownload, cmdRemove, cmdEmptyPOI, lstLog,
// ProgressBar1, Label1, cmd_ok, cmd_cancel.
class frmDownload : public QDialog, private GeoNamesWindow {
    Q_OBJECT

  public:
    // `import` outlives the window, which deletes itself when it is closed.
    frmDownload(GeoNamesImport& import, QWidget* owner);
    ~frmDownload() override;

    void reject() override; // Escape

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    enum Column { Id, Name, Imported, Select, Columns };

    QWidget* makeGrid();
    QWidget* makeCommands();
    QWidget* makeResults();
    QWidget* makeEndButtons();
    void toggle(int row, int column);
    void showMark(int row, int column, bool ticked);
    void leave();

    void addToLog(std::string_view message) override;
    void setProgressMaximum(int maximum) override;
    void setProgress(int value) override;
    void setLineText(std::string_view text) override;
    void showRows() override;
    void showRunning(bool running) override;

    GeoNamesImport& import_;
    bool attached_ = true; // the import knows this window

    QTableWidget* fxgrid = nullptr;
    QPushButton* cmdCheck = nullptr;
    QPushButton* cmdDownload = nullptr;
    QPushButton* cmdRemove = nullptr;
    QPushButton* cmdEmptyPOI = nullptr;
    QListWidget* lstLog = nullptr;
    QProgressBar* ProgressBar1 = nullptr;
    QLabel* Label1 = nullptr;
    QPushButton* cmd_ok = nullptr;
    QPushButton* cmd_cancel = nullptr;
};

} // namespace tremor
