#include "core/panel.h"

#include "core/common_text.h"
#include "core/database_name.h"
#include "core/frm_about.h"
#include "core/qt_text.h"
#include "core/version.h"

#include <QtGui/QAction>
#include <QtGui/QCloseEvent>
#include <QtGui/QScreen>
#include <QtGui/QWheelEvent>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>

#include <chrono>

namespace tremor {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view module = "Form - panel";

constexpr auto tickInterval = 1000ms;
constexpr auto snapshotInterval = 5000ms;
constexpr auto logoTime = 2000ms;
constexpr auto logoTurn = 50ms;
constexpr auto exposureTurn = 10ms;
constexpr int exposureTurns = 100;

QWidget* newCentre(QMainWindow& window) {
    auto* centre = new QWidget(&window);
    window.setCentralWidget(centre);
    return centre;
}

// The menu bar stands in the window on every desktop: the layout counts on it.
QMenuBar& menuBarOf(QMainWindow& window) {
    window.menuBar()->setNativeMenuBar(false);
    return *window.menuBar();
}

std::int32_t screenTwips(const QWidget& window, bool width) {
    const QSize size = window.screen()->size();
    return pixelsToTwips(width ? size.width() : size.height(), window.logicalDpiX());
}

// "2024-01-02 03:04:05.678" gives "2024/01/02".
std::string dayWithSlashes(std::string_view utc) {
    return replaceAll(trimLeft(utc).substr(0, 10), "-", "/");
}

// The hourglass for a scope.
class WaitPointer {
  public:
    WaitPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~WaitPointer() { QApplication::restoreOverrideCursor(); }
    WaitPointer(const WaitPointer&) = delete;
    WaitPointer& operator=(const WaitPointer&) = delete;
};

// Sources stand still for a scope.
class SuspendedPolling {
  public:
    explicit SuspendedPolling(Session& session) : session_(session) {
        session_.PollingSuspended = 1;
    }
    ~SuspendedPolling() { session_.PollingSuspended = 0; }
    SuspendedPolling(const SuspendedPolling&) = delete;
    SuspendedPolling& operator=(const SuspendedPolling&) = delete;

  private:
    Session& session_;
};

} // namespace

panel::panel(const PanelEnvironment& environment)
    : widgets_(*newCentre(*this)),
      menu_(menuBarOf(*this)),
      components_(environment, *this, widgets_, screenTwips(*this, true), screenTwips(*this, false),
                  [this] { close(); }),
      upRemote_(
          QStringLiteral("upRemote"), tickInterval, environment.session,
          [this] { components_.scheduler.upRemote_Timer(); }, this),
      TimerCheckScreenshot_(
          QStringLiteral("TimerCheckScreenshot"), snapshotInterval, environment.session,
          [this] { components_.steps.TimerCheckScreenshot_Timer(); }, this) {
    setObjectName(QStringLiteral("panel"));
    Timer1_.setObjectName(QStringLiteral("Timer1"));
    setMinimumSize(pixels(minimumFormSize.width), pixels(minimumFormSize.height));
    connectMenu();
    connectGrid();
    connectMap();
    connectWorkspaces();
    connectChart();
    widgets_.Frame2->installEventFilter(this);
    TimerCheckScreenshot_.start();
}

panel::~panel() {
    // The children's signals and events must not reach a window that is half gone.
    widgets_.Frame2->removeEventFilter(this);
    disconnect(widgets_.gridEvents, nullptr, this, nullptr);
}

void panel::connectMenu() {
    const auto onClick = [this](std::string_view name, auto handler) {
        connect(&menu_.item(name), &QAction::triggered, this, handler);
    };
    onClick("mnu_Open_Database", &panel::mnu_Open_Database_Click);
    onClick("mnu_createDB", &panel::mnu_createDB_Click);
    onClick("mnuCollect", [this] { components_.scheduler.mnuCollect_Click(); });
    onClick("mnu_startallservices", &panel::mnu_startallservices_Click);
    onClick("mnu_exportDatabaseCSV",
            [this] { components_.csvExport.mnu_exportDatabaseCSV_Click(); });
    onClick("mnu_ImportCSV", [this] { components_.csvImport.mnu_ImportCSV_Click(); });
    onClick("mnu_imp_seiscomp2_6", [this] { components_.seisComp.readSeisCompVers2_6(true, {}); });
    onClick("Setup", [this] { components_.setup.Setup_Click(); });
    onClick("mnu_ManageDB", [this] { components_.manage.mnu_ManageDB_Click(); });
    onClick("mnu_Exit", [this] { close(); });
    onClick("mnuUpdateWRKwithEvents", &panel::mnuUpdateWRKwithEvents_Click);
    onClick("mnuShowFaults",
            [this](bool checked) { components_.map.overlays().mnuShowFaults_Click(checked); });
    onClick("mnuShowStations",
            [this](bool checked) { components_.map.overlays().mnuShowStations_Click(checked); });
    onClick("mnu_About", &panel::mnu_About_Click);
}

void panel::connectMap() {
    const auto onClick = [this](QCheckBox* box, void (MapOverlays::*handler)(bool)) {
        connect(box, &QCheckBox::clicked, this,
                [this, handler](bool checked) { (components_.map.overlays().*handler)(checked); });
    };
    onClick(widgets_.chk_fault, &MapOverlays::chk_fault_Click);
    onClick(widgets_.chk_Legend, &MapOverlays::chk_Legend_Click);
    onClick(widgets_.chk_SearchMode, &MapOverlays::chk_SearchMode_Click);
    onClick(widgets_.chk_ShowStations, &MapOverlays::chk_ShowStations_Click);
}

void panel::connectWorkspaces() {
    Workspaces& workspaces = components_.workspaces.workspaces();
    // The operator's choice and the change that it makes are one event here.
    connect(widgets_.cmb_wrkSp, &QComboBox::activated, this,
            [&workspaces] { workspaces.cmb_wrkSp_Click(); });
    connect(widgets_.cmd_SaveArea, &QPushButton::clicked, this,
            [&workspaces] { workspaces.cmd_SaveArea_Click(); });
    connect(widgets_.cmd_JumpWRK, &QPushButton::clicked, this,
            [&workspaces] { workspaces.gotoWRK(); });
    const auto onClick = [this](std::string_view name, auto handler) {
        connect(&menu_.item(name), &QAction::triggered, this, handler);
    };
    onClick("mnuSearch", [this] { components_.workspaces.showSearchWindow(false); });
    onClick("mnuSearchWRK", [&workspaces] { workspaces.mnuSearchWRK_Click(); });
    onClick("mnuJump2WRK", [&workspaces] { workspaces.gotoWRK(); });
    onClick("mnuDeleteWRK", [&workspaces] { workspaces.deleteWRK(); });
    // A search changes the setting as well.
    QAction& updating = menu_.item("mnuUpdateWRKwithEvents");
    connect(qobject_cast<QMenu*>(updating.parent()), &QMenu::aboutToShow, this,
            [this, &updating] { updating.setChecked(components_.settings.wrkSpaceUpdating == 1); });
    onClick("mnu_wrkspaces", [this] { components_.workspaces.windows().mnu_wrkspaces_Click(); });
}

void panel::connectChart() {
    connect(widgets_.PicEvHist, &EventHistoryChartView::resized, this,
            [this] { components_.chart.PicEvHist_Resize(); });
}

void panel::connectGrid() {
    GridEvents* grid = widgets_.gridEvents;
    connect(grid, &GridEvents::gridClicked, this,
            [this](qint64 row, int column) { components_.grid.GridEvents_Click(row, column); });
    connect(grid, &GridEvents::currentCellMoved, this,
            [this] { components_.grid.GridEvents_SelChange(); });
    components_.grid.dimensionamentoGrid();
}

void panel::Form_Load() {
    ProcedureTrace trace(components_.environment.errors, module, "Form_Load");
    Session& session = components_.environment.session;
    components_.controls.setCaption(programTitleAndVersion);
    components_.settingsUtilities.ReadSettings();
    showAtStoredSize();
    components_.log.addLogToList("Tremorledger is running...");
    components_.services.startServices();
    menu_.item("mnuUpdateWRKwithEvents").setChecked(components_.settings.wrkSpaceUpdating == 1);
    restoreSize();
    if (components_.settings.StartupLogo == 0)
        showLogo();
    windowHandle()->installEventFilter(this);
    trace.step([&] { components_.steps.exportLast24HoursCSV(); });
    if (session.waitsMustEnd()) {
        stopTimers();
        close();
    } else {
        upRemote_.start();
    }
}

// The window stands painted at its place before anything that takes time.
void panel::showAtStoredSize() {
    components_.environment.session.ResizeFromLoad = true;
    setFormSize(components_.settings.PanelXSize, components_.settings.PanelYSize);
    show();
    for (int turn = 0; turn < exposureTurns && !windowHandle()->isExposed(); ++turn)
        components_.environment.clock.sleep(exposureTurn);
    repaint();
}

// Height and width one after the other; the second step stores what the first one may have held to
// the smallest size.
void panel::restoreSize() {
    components_.environment.session.ResizeFromLoad = true;
    setFormSize(twips(width()), components_.settings.PanelYSize);
    setFormSize(components_.settings.PanelXSize, twips(height()));
}

void panel::showLogo() {
    const Session& session = components_.environment.session;
    Clock& clock = components_.environment.clock;
    if (session.waitsMustEnd())
        return;
    mnu_About_Click();
    const auto end = clock.steady() + logoTime;
    while (clock.steady() < end && !session.waitsMustEnd())
        clock.sleep(logoTurn);
    if (about_)
        about_->close();
}

void panel::closeEvent(QCloseEvent* event) {
    if (!isEnabled()) {
        event->ignore();
        return;
    }
    event->accept();
    Form_Unload();
}

void panel::Form_Unload() {
    if (unloaded_)
        return;
    unloaded_ = true;
    ProcedureTrace trace(components_.environment.errors, module, "Form_Unload");
    Session& session = components_.environment.session;
    stopTimers();
    session.WaitCounter = Session::waitCounterClosing;
    session.Closing = true;
    stopTimers(); // a tick may have run between
    std::string newest;
    trace.step([&] { newest = components_.alerts.newEvents().lastEventInDb(); });
    components_.settings.LastEvent = dayWithSlashes(newest);
    components_.settingsUtilities.WriteSettings();
    closeOtherWindows();
    if (windowHandle() != nullptr)
        windowHandle()->removeEventFilter(this);
    Q_EMIT unloaded();
}

void panel::stopTimers() {
    upRemote_.stop();
    Timer1_.stop();
    TimerCheckScreenshot_.stop();
}

void panel::closeOtherWindows() {
    components_.workspaces.windows().closeAll();
    QList<QPointer<QWidget>> windows;
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != this && window->isVisible())
            windows.append(window);
    for (const QPointer<QWidget>& window : windows)
        if (window)
            window->close();
}

void panel::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void panel::Form_Resize() {
    if (isMinimized())
        return;
    const FormSize form = heldToMinimum({twips(width()), twips(height())});
    const QSize held(pixels(form.width), pixels(form.height));
    if (held != size())
        resize(held);
    layout_ = layoutPanel(form, twips(menuBar()->sizeHint().height()));
    widgets_.applyLayout(layout_);
    Session& session = components_.environment.session;
    if (!session.ResizeFromLoad) {
        components_.settings.PanelXSize = form.width;
        components_.settings.PanelYSize = form.height;
    }
    session.ResizeFromLoad = false;
}

void panel::setFormSize(std::int32_t width, std::int32_t height) {
    const FormSize form = heldToMinimum({width, height});
    resize(pixels(form.width), pixels(form.height));
    Form_Resize(); // an unchanged size and a hidden window send no event
}

std::int32_t panel::pixels(std::int32_t twips) const {
    return twipsToPixels(twips, logicalDpiX());
}

std::int32_t panel::twips(int pixels) const {
    return pixelsToTwips(pixels, logicalDpiX());
}

bool panel::eventFilter(QObject* watched, QEvent* event) {
    // The window gets each turn of the wheel once, before any control does.
    if (event->type() == QEvent::Wheel && watched == windowHandle()) {
        const auto& wheel = *static_cast<QWheelEvent*>(event);
        const QPoint turn = wheel.angleDelta();
        const bool sideways = turn.y() == 0 && turn.x() != 0;
        const bool noTurn = turn.isNull() && wheel.phase() != Qt::NoScrollPhase;
        const QPoint place = wheel.position().toPoint();
        if (!sideways && !noTurn)
            MouseWheel(static_cast<std::int32_t>(wheel.modifiers()), turn.y(), place.x(),
                       place.y());
    } else if (watched == widgets_.Frame2) {
        if (event->type() == QEvent::MouseMove || event->type() == QEvent::MouseButtonPress) {
            const auto& mouse = *static_cast<QMouseEvent*>(event);
            const bool dragging =
                event->type() == QEvent::MouseMove && mouse.buttons().testFlag(Qt::LeftButton);
            frame2MouseMove(twips(mouse.position().toPoint().y()), dragging);
        } else if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::Leave) {
            widgets_.Frame2->unsetCursor();
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void panel::MouseWheel(std::int32_t, std::int32_t rotation, std::int32_t, std::int32_t) {
    components_.grid.MouseWheel(rotation);
}

void panel::frame2MouseMove(int y, bool leftButtonDown) {
    if (leftButtonDown) {
        dragSplitter(layout_, y);
        widgets_.applyLayout(layout_);
    } else if (isOnSplitter(y)) {
        widgets_.Frame2->setCursor(Qt::SizeVerCursor);
    } else {
        widgets_.Frame2->unsetCursor();
    }
}

void panel::mnu_Open_Database_Click() {
    const SuspendedPolling suspended(components_.environment.session);
    ProcedureTrace trace(components_.environment.errors, module, "mnu_Open_Database_Click");
    FileDialogRequest request;
    request.title = "Select Sqlite file...";
    request.initialFolder = components_.environment.applicationPath;
    request.filter = "Sqlite File (*.sqlite)|*.sqlite";
    request.defaultExtension = "db";
    const auto chosen = components_.environment.prompts.showFileDialog(request);
    if (!chosen)
        return;
    components_.settings.Path = *chosen;
    if (!components_.openDB())
        return;
    listGlobalOnly();
    PanelSteps& steps = components_.steps;
    trace.step([&] { steps.Maps(); });
    trace.step([&] { steps.MapsLastEvent(); });
    trace.step([&] { steps.setObjectHTML(); });
    if (!components_.environment.session.DatabaseOpen)
        return;
    fillWorkspaceList();
    components_.services.fillViews(trace);
}

void panel::mnu_createDB_Click() {
    ProcedureTrace trace(components_.environment.errors, module, "mnu_createDB_Click");
    Prompts& prompts = components_.environment.prompts;
    const auto name = prompts.inputBox("Choose a Name of your new Database.", MessageBox().title);
    const std::int32_t verdict = checkNameDB(name);
    if (verdict == 2)
        return;
    if (verdict == 1) {
        prompts.showMessageBox(
            {.text = "Invalid name Database.", .title = "Error...", .icon = BoxIcon::Critical});
        components_.log.addLogToList("Cannot create a Database with special characters.");
        return;
    }
    components_.catalogue.fillDBTables();
    components_.catalogue.createDatabase(*name, ".sqlite", "");
    listGlobalOnly();
    if (components_.openDB() && components_.environment.session.DatabaseOpen)
        fillWorkspaceList();
}

void panel::listGlobalOnly() {
    widgets_.cmb_wrkSp->clear();
    widgets_.cmb_wrkSp->addItem(fromBytes(globalWorkspace));
}

void panel::fillWorkspaceList() {
    components_.workspaces.workspaces().popolaComboWorkspace();
    components_.steps.lastEventInDb();
    components_.steps.moveSaveMapsAside();
}

void panel::mnu_startallservices_Click() {
    const WaitPointer pointer;
    ProcedureTrace trace(components_.environment.errors, module, "mnu_startallservices_Click");
    trace.step([&] { components_.probe.IsInternetUp(); });
    components_.services.startServices();
}

void panel::mnuUpdateWRKwithEvents_Click() {
    const bool checked = menu_.item("mnuUpdateWRKwithEvents").isChecked();
    components_.settings.wrkSpaceUpdating = checked ? 1 : 0;
}

void panel::mnu_About_Click() {
    if (!about_)
        about_ = new FrmAbout(components_.settings, this);
    about_->show();
    about_->raise();
    about_->activateWindow();
}

} // namespace tremor
