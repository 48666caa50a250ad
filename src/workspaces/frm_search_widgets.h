#pragma once

#include <QtCore/QString>

#include <array>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;
class QWidget;

namespace tremor {

// The controls of the search window, laid out. Each has its own name as its object name; the window
// owns them.
class SearchWidgets {
  public:
    explicit SearchWidgets(QWidget& window);

    // Frame3 "Search Saved"; column 0 holds the row key `_`, column 1 NameSearch
    QTableWidget* fxGridSearch = nullptr;
    QLineEdit* txtModifica = nullptr; // the editor of a name, over its cell
    QPushButton* cmdAddSearch = nullptr;
    QPushButton* cmdSetName = nullptr;
    QPushButton* cmdRemoveSearch = nullptr;

    // FrameDates "Range Date Events"
    QCheckBox* chk_RangeDateEvents = nullptr;
    QDateEdit* DTStart = nullptr;
    QDateEdit* DTEnd = nullptr;

    // Frame2 "Magnitude range "
    QCheckBox* chk_MagnitudeRange = nullptr;
    QLineEdit* txt_min_mag = nullptr;
    QLineEdit* txt_max_mag = nullptr;

    // Frame1 "Define search area "
    QCheckBox* chk_SearchArea = nullptr;
    QRadioButton* OptArea = nullptr;
    QRadioButton* OptDistance = nullptr;
    QPushButton* OptManualGPS = nullptr;
    QLabel* lblCorner = nullptr; // of the BL boxes, which hold the centre, too
    QLineEdit* txt_BL_Latitude = nullptr;
    QLineEdit* txt_BL_Longitude = nullptr;
    QLineEdit* txt_TR_Latitude = nullptr;
    QLineEdit* txt_TR_Longitude = nullptr;
    QLineEdit* TxtDistance = nullptr;
    QLineEdit* TxtDepthMin = nullptr;
    QLineEdit* TxtDepthMax = nullptr;
    QCheckBox* chk_saveWrkSpace = nullptr;
    QLabel* lblWrkSpace = nullptr;
    QComboBox* cmbWorkSpace = nullptr;

    QPushButton* cmd_query = nullptr;
    QPushButton* CmdCancel = nullptr;

    // The boxes whose numbers are checked while they are typed.
    std::array<QLineEdit*, 6> checkedBoxes() const {
        return {txt_BL_Latitude,  txt_BL_Longitude, txt_TR_Latitude,
                txt_TR_Longitude, txt_min_mag,      txt_max_mag};
    }

  private:
    QWidget* makeSavedSearches();
    QWidget* makeDates();
    QWidget* makeMagnitudes();
    QWidget* makeArea();
    QBoxLayout* makeMethods();
    QBoxLayout* makeDepths();
    QBoxLayout* makeWorkspace();
    QDateEdit* makePicker(const char* name);
    QLineEdit* makeBox(const char* name, const QString& description);
    QLabel* makeLabel(const QString& text, QWidget* buddy);

    QWidget& window_;
};

} // namespace tremor
