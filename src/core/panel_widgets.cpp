#include "core/panel_widgets.h"

#include "core/named_widget.h"
#include "core/qt_text.h"

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

namespace tremor {
namespace {

constexpr char searchModeTip[] =
    "When 'Search Mode' is active, Workspace Map and The Last Event Map will not be update with "
    "new events.";

constexpr int controlSpacing = 6; // pixels

// A label for texts that may come from feeds: never taken for markup.
QLabel* plainLabel(QWidget* parent, const char* objectName) {
    auto* label = named(new QLabel(parent), objectName);
    label->setTextFormat(Qt::PlainText);
    return label;
}

// The caption above or beside a list; its mnemonic moves the focus into the list.
QLabel* captionOf(QWidget* list, const QString& caption) {
    auto* label = new QLabel(caption, list->parentWidget());
    label->setBuddy(list);
    return label;
}

// A flat surface on which a map or a picture is drawn.
QFrame* surface(QWidget* parent, const char* objectName, const QString& accessibleName) {
    auto* frame = named(new QFrame(parent), objectName);
    frame->setFrameStyle(QFrame::StyledPanel | QFrame::Plain);
    frame->setBackgroundRole(QPalette::AlternateBase);
    frame->setAutoFillBackground(true);
    frame->setAccessibleName(accessibleName);
    return frame;
}

QGroupBox* frame(QWidget* parent, const char* objectName, const QString& caption) {
    return named(new QGroupBox(caption, parent), objectName);
}

QHBoxLayout* rowLayout(QWidget* widget) {
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(controlSpacing);
    return row;
}

} // namespace

PanelWidgets::PanelWidgets(QWidget& centre) : centre_(&centre) {
    makeStatusStrip();
    makeLeftColumn();
    makeWorkspace();
    makeChart();
    makeHiddenControls();
}

void PanelWidgets::makeStatusStrip() {
    statusStrip_ = new QWidget(centre_);
    lbl_log_bkg = plainLabel(statusStrip_, "lbl_log_bkg");
    lbl_events = plainLabel(statusStrip_, "lbl_events");
    prgBar = named(new QProgressBar(statusStrip_), "prgBar");
    prgBar->setTextVisible(false);
    prgBar->setRange(0, 100);
    prgBar->setValue(0);
    prgBar->setAccessibleName(QStringLiteral("Progress"));
    prgBar->setMinimumWidth(60);
    prgBar->setMaximumSize(160, 10);
    lbl_tot = plainLabel(statusStrip_, "lbl_tot");

    QHBoxLayout* row = rowLayout(statusStrip_);
    row->setSpacing(2 * controlSpacing);
    row->addWidget(lbl_log_bkg, 1);
    row->addWidget(lbl_events);
    row->addWidget(prgBar, 1);
    row->addWidget(lbl_tot);
}

void PanelWidgets::makeLeftColumn() {
    Label1 = plainLabel(centre_, "Label1");
    QFont bold = Label1->font();
    bold.setBold(true);
    Label1->setFont(bold);
    FrmLastEvent = frame(centre_, "FrmLastEvent", QStringLiteral("The last Event"));
    wbr_last = surface(FrmLastEvent, "wbr_last", QStringLiteral("Map of the last event"));

    List1 = named(new QListWidget(centre_), "List1");
    List1->setAccessibleName(QStringLiteral("Towns near the event"));
    townsCaption_ = captionOf(List1, QStringLiteral("&Towns"));
    townsCaption_->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    lst_prog_log = named(new LogListView(centre_), "lst_prog_log");
    lst_prog_log->setAccessibleName(QStringLiteral("Activity log"));
    logCaption_ = captionOf(lst_prog_log, QStringLiteral("Activity &Log"));
    gridEvents = new GridEvents(centre_);
    eventsCaption_ = captionOf(gridEvents, QStringLiteral("&Events"));
}

void PanelWidgets::makeWorkspace() {
    FrmWorkspace = frame(centre_, "FrmWorkspace", QStringLiteral("Workspace"));
    makeWorkspaceCommands();
    picScaleControl = named(new ScaleBar(FrmWorkspace), "picScaleControl");
    picScaleControl->setAccessibleName(QStringLiteral("Scale of the workspace map"));
    makeWorkspaceChecks();
    txtMouseCoord = named(new QLineEdit(FrmWorkspace), "txtMouseCoord");
    txtMouseCoord->setReadOnly(true);
    txtMouseCoord->setFrame(false);
    txtMouseCoord->setAlignment(Qt::AlignRight);
    txtMouseCoord->setFocusPolicy(Qt::ClickFocus);
    txtMouseCoord->setAccessibleName(QStringLiteral("Coordinates under the pointer"));
    QPalette palette = txtMouseCoord->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    txtMouseCoord->setPalette(palette);
    WebBrowser1 = surface(FrmWorkspace, "WebBrowser1", QStringLiteral("Workspace map"));
}

void PanelWidgets::makeWorkspaceCommands() {
    workspaceCommands_ = new QWidget(FrmWorkspace);
    cmb_wrkSp = named(new QComboBox(workspaceCommands_), "cmb_wrkSp");
    cmb_wrkSp->setAccessibleName(QStringLiteral("Workspace shown"));
    cmb_wrkSp->addItem(QStringLiteral("Global"));
    // A long name does not push the buttons aside.
    cmb_wrkSp->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    QHBoxLayout* row = rowLayout(workspaceCommands_);
    row->addWidget(cmb_wrkSp, 1);
    const auto button = [&](const char* objectName, const QString& caption) {
        auto* widget = named(new QPushButton(caption, workspaceCommands_), objectName);
        row->addWidget(widget);
        widget->setEnabled(false);
        return widget;
    };
    cmb_wrkSp->setEnabled(false);
    cmd_SaveArea = button("cmd_SaveArea", QStringLiteral("Save &as..."));
    cmd_save_maps = button("cmd_save_maps", QStringLiteral("Save &Maps"));
    cmd_JumpWRK = button("cmd_JumpWRK", QStringLiteral("&Jump to WRK"));
}

void PanelWidgets::makeWorkspaceChecks() {
    workspaceChecks_ = new QWidget(FrmWorkspace);
    QHBoxLayout* row = rowLayout(workspaceChecks_);
    row->setSpacing(2 * controlSpacing);
    const auto check = [&](const char* objectName, const QString& caption) {
        auto* widget = named(new QCheckBox(caption, workspaceChecks_), objectName);
        row->addWidget(widget);
        return widget;
    };
    chk_fault = check("chk_fault", QStringLiteral("Show Fa&ults"));
    chk_Legend = check("chk_Legend", QStringLiteral("Show Le&gend"));
    chk_SearchMode = check("chk_SearchMode", QStringLiteral("Sea&rch Mode"));
    chk_ShowStations = check("chk_ShowStations", QStringLiteral("Show Stati&ons"));
    chk_SearchMode->setToolTip(QLatin1StringView(searchModeTip));
    chk_ShowStations->setToolTip(QLatin1StringView(searchModeTip));
    row->addStretch(1);
}

void PanelWidgets::makeChart() {
    Frame2 = frame(centre_, "Frame2", QStringLiteral("Event History"));
    Frame2->setMouseTracking(true); // the pointer changes over the splitter with no button down
    PicEvHist = new EventHistoryChartView(Frame2);
}

void PanelWidgets::makeHiddenControls() {
    wbrSaveMaps = named(new QFrame(centre_), "wbrSaveMaps");
    updateFromRemoteWbr = named(new QFrame(centre_), "updateFromRemoteWbr");
    DirLocal = named(new QListWidget(centre_), "DirLocal");
    filedir = named(new QListWidget(centre_), "filedir");
    Command1 = named(new QPushButton(centre_), "Command1");
    for (QWidget* widget : std::initializer_list<QWidget*>{wbrSaveMaps, updateFromRemoteWbr,
                                                           DirLocal, filedir, Command1})
        widget->hide();
}

void PanelWidgets::applyLayout(const PanelLayout& layout) {
    place(Label1, layout.Label1);
    place(statusStrip_, layout.statusStrip);
    place(FrmLastEvent, layout.FrmLastEvent);
    place(wbr_last, layout.wbr_last);
    place(townsCaption_, layout.townsCaption);
    place(List1, layout.List1);
    place(logCaption_, layout.logCaption);
    place(lst_prog_log, layout.lst_prog_log);
    place(eventsCaption_, layout.eventsCaption);
    place(gridEvents, layout.GridEvents);
    place(FrmWorkspace, layout.FrmWorkspace);
    place(workspaceCommands_, layout.workspaceCommands);
    place(workspaceChecks_, layout.workspaceChecks);
    place(picScaleControl, layout.picScaleControl);
    place(txtMouseCoord, layout.txtMouseCoord);
    place(WebBrowser1, layout.WebBrowser1);
    place(Frame2, layout.Frame2);
    place(PicEvHist, layout.PicEvHist);
}

// Both ends are rounded, not the length, so that neighbours neither overlap nor drift apart.
void PanelWidgets::place(QWidget* widget, const FormRectangle& rectangle) const {
    const auto pixels = [this](std::int32_t twips) {
        return twipsToPixels(twips, centre_->logicalDpiX());
    };
    const QPoint topLeft(pixels(rectangle.left), pixels(rectangle.top));
    const QPoint end(pixels(rectangle.left + rectangle.width),
                     pixels(rectangle.top + rectangle.height));
    widget->setGeometry(QRect(topLeft, end - QPoint(1, 1)));
}

} // namespace tremor
