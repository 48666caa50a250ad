#pragma once

#include "core/panel_components.h"
#include "core/panel_layout.h"
#include "core/panel_menu.h"
#include "core/panel_widgets.h"
#include "core/posted_timer.h"

#include <QtCore/QPointer>
#include <QtWidgets/QMainWindow>

#include <cstdint>

namespace tremor {

class FrmAbout;

// The main window. It owns the controls, the menu, the timers and every component of the program,
// and hands events on to them; it computes nothing itself.
class panel : public QMainWindow {
    Q_OBJECT

  public:
    explicit panel(const PanelEnvironment& environment);
    ~panel() override;

    // The start: settings, window, log, catalogue, services, logo; at the end the timer `upRemote`
    // runs. To be called once, from within the event loop; returns after all of it.
    void Form_Load();

    // A turn of the wheel anywhere over the window: the table of events scrolls. `rotation` below
    // 1 is a turn towards the operator. `keys` and the pointer's place do not matter.
    void MouseWheel(std::int32_t keys, std::int32_t rotation, std::int32_t x, std::int32_t y);

    PanelComponents& components() { return components_; }

  Q_SIGNALS:
    // The window has been unloaded for good: settings are stored, other windows are closed.
    void unloaded();

  protected:
    // Closing unloads the window; a disabled one stays.
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void connectMenu();
    void connectGrid();
    void connectMap();
    void connectWorkspaces();
    void connectChart();

    // Parts of Form_Load.
    void showAtStoredSize();
    void restoreSize();
    void showLogo();

    void Form_Unload();
    void stopTimers();
    void closeOtherWindows();

    void Form_Resize();
    void setFormSize(std::int32_t width, std::int32_t height); // twips
    std::int32_t pixels(std::int32_t twips) const;
    std::int32_t twips(int pixels) const;

    void frame2MouseMove(int y, bool leftButtonDown);

    void mnu_Open_Database_Click();
    void mnu_createDB_Click();
    void mnu_startallservices_Click();
    void mnuUpdateWRKwithEvents_Click();
    void mnu_About_Click();

    // What opening and creating a catalogue do alike once it is open.
    void fillWorkspaceList();
    void listGlobalOnly();

    PanelWidgets widgets_;
    PanelMenu menu_;
    PanelComponents components_;
    PostedTimer upRemote_;
    PostedTimer TimerCheckScreenshot_;
    QTimer Timer1_{this}; // has neither an interval nor a handler
    PanelLayout layout_;
    QPointer<FrmAbout> about_;
    bool unloaded_ = false;
};

} // namespace tremor
