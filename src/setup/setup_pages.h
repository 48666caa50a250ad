#pragma once

#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QWidget;

namespace tremor {

// The controls of the window "Setup", each under its object name (those in rows with "_0" to "_3"
// behind it). They belong to the page on which they stand; what they do is up to the window.
struct SetupControls {
    QGroupBox* Frame6 = nullptr;
    QCheckBox* ChkUseLocalSource = nullptr;
    QRadioButton* opt_liveloc = nullptr;
    QRadioButton* opt_seiscomp = nullptr;
    QLineEdit* TxtLocalSourcePath = nullptr;
    QPushButton* cmdPathSeismoscompServer = nullptr;
    QLineEdit* TxtLocalPollEvery = nullptr;

    QGroupBox* Frame7 = nullptr;
    QCheckBox* ChkUsePrimaryRemoteSource = nullptr;
    QRadioButton* opt_Ingv = nullptr;
    QRadioButton* opt_Iside = nullptr;
    QLineEdit* TxtPrimaryDataSource = nullptr;
    QLineEdit* TxtPrimarySourceUsername = nullptr;
    QLineEdit* TxtPrimarySourcePassword = nullptr;
    QLineEdit* TxtPrimaryPollEvery = nullptr;
    QLineEdit* TxtPrimaryLastNHours = nullptr;

    QGroupBox* Frame8 = nullptr;
    QCheckBox* ChkUseAlternateRemoteSource = nullptr;
    QWidget* alternateArea = nullptr; // all of Frame8 but its check box
    QRadioButton* opt_EMSC = nullptr;
    QRadioButton* opt_USGS = nullptr;
    QRadioButton* Option1 = nullptr;
    QLineEdit* TxtAlternateDataSource = nullptr;
    QLineEdit* TxtAlternateSourceUsername = nullptr;
    QLineEdit* TxtAlternateSourcePassword = nullptr;
    QLineEdit* TxtAlternatePollEvery = nullptr;
    QLineEdit* TxtAlternateLastNHours = nullptr;

    QRadioButton* optAll = nullptr;
    QRadioButton* optAl = nullptr;
    QRadioButton* optPr = nullptr;
    QLineEdit* TxtRefreshMapHours = nullptr;

    QComboBox* cmb_shape = nullptr;
    QCheckBox* chk_auto_PIN = nullptr;
    QCheckBox* chk_user_PIN = nullptr;
    QLineEdit* TxtPathPins = nullptr;
    QPushButton* cmd_pinPath = nullptr;
    QLineEdit* TxtAnimatedGif = nullptr;
    QPushButton* cmdBrowseGif = nullptr;
    QLineEdit* txt_sizeSizePins = nullptr;
    QLineEdit* TxtDefaultZoomLevel = nullptr;
    QLineEdit* TxtLastEventMapZoomLevel = nullptr;
    QCheckBox* chk_NetStat = nullptr;
    QLineEdit* txtPathDbOfStationKit = nullptr;
    QPushButton* cmdBrowseDBStationKit = nullptr;

    std::array<QLineEdit*, 4> TxtMagLev{};
    std::array<QLineEdit*, 4> TxtMagLevSound{};
    std::array<QPushButton*, 4> cmdBrowseSound{};
    std::array<QPushButton*, 4> CmdTest{};

    QCheckBox* chkEnableNotificationTelegram = nullptr;
    QPushButton* cmdNotTelegram = nullptr;
    QCheckBox* chkEnableNotificationPagerlink = nullptr;
    QPushButton* cmdNotPagr = nullptr;
    QCheckBox* chkEnableNotificationEmail = nullptr;
    QPushButton* cmdNotEmail = nullptr;
    QPushButton* cmd_UpdateGeo = nullptr;
    QPushButton* cmd_UpdateComuni = nullptr;
};

// Make a page with its controls and write them into `controls`.
QWidget* makeSourcesPage(SetupControls& controls);
QWidget* makeMapPage(SetupControls& controls);
QWidget* makeAlertPage(SetupControls& controls);
QWidget* makeMiscellaneousPage(SetupControls& controls);

} // namespace tremor
