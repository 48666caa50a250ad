#pragma once

#include "core/log_list.h"
#include "core/panel_layout.h"
#include "map/scale_bar.h"
#include "views/event_history_chart_view.h"
#include "views/events_grid_view.h"

class QCheckBox;
class QComboBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QWidget;

namespace tremor {

// The controls of the main window, each under its object name. They belong to the widget in which
// they were made; what they do is up to others.
class PanelWidgets {
  public:
    // Makes all controls below `centre`, the area under the menu bar, in the order of the Tab key.
    explicit PanelWidgets(QWidget& centre);

    // Puts every control to its place, twips becoming pixels at the window's resolution.
    void applyLayout(const PanelLayout& layout);

    QLabel* Label1 = nullptr;
    QLabel* lbl_log_bkg = nullptr;
    QLabel* lbl_events = nullptr;
    QProgressBar* prgBar = nullptr;
    QLabel* lbl_tot = nullptr;

    QGroupBox* FrmLastEvent = nullptr;
    QFrame* wbr_last = nullptr;
    QListWidget* List1 = nullptr;
    LogListView* lst_prog_log = nullptr;
    GridEvents* gridEvents = nullptr;

    QGroupBox* FrmWorkspace = nullptr;
    QComboBox* cmb_wrkSp = nullptr;
    QPushButton* cmd_SaveArea = nullptr;
    QPushButton* cmd_save_maps = nullptr;
    QPushButton* cmd_JumpWRK = nullptr;
    QCheckBox* chk_fault = nullptr;
    QCheckBox* chk_Legend = nullptr;
    QCheckBox* chk_SearchMode = nullptr;
    QCheckBox* chk_ShowStations = nullptr;
    ScaleBar* picScaleControl = nullptr;
    QLineEdit* txtMouseCoord = nullptr;
    QFrame* WebBrowser1 = nullptr;

    QGroupBox* Frame2 = nullptr;
    EventHistoryChartView* PicEvHist = nullptr;

    // Never seen: page areas off screen, lists of the local source, the command of the page.
    QFrame* wbrSaveMaps = nullptr;
    QFrame* updateFromRemoteWbr = nullptr;
    QListWidget* DirLocal = nullptr;
    QListWidget* filedir = nullptr;
    QPushButton* Command1 = nullptr;

  private:
    void makeStatusStrip();
    void makeLeftColumn();
    void makeWorkspace();
    void makeWorkspaceCommands();
    void makeWorkspaceChecks();
    void makeChart();
    void makeHiddenControls();
    void place(QWidget* widget, const FormRectangle& rectangle) const;

    QWidget* centre_;
    QWidget* statusStrip_ = nullptr;
    QLabel* townsCaption_ = nullptr;
    QLabel* logCaption_ = nullptr;
    QLabel* eventsCaption_ = nullptr;
    QWidget* workspaceCommands_ = nullptr;
    QWidget* workspaceChecks_ = nullptr;
};

} // namespace tremor
