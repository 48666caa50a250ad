#pragma once

#include "workspaces/workspace_windows.h"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QFrame;

namespace tremor {

// Makes the maps of the windows of workspaces.
class WorkspaceMapMaker {
  public:
    virtual ~WorkspaceMapMaker() = default;

    // A map that fills `frame` and dies before it.
    virtual std::unique_ptr<WorkspaceMap> makeMap(QWidget& frame) = 0;
};

// The window of one workspace: its map and nothing else. It stands beside the main window, not over
// it, and deletes itself when it is closed.
//
// Object names: frmWorkspaces, WebBrowser1.
class FrmWorkspaces : public QWidget, public WorkspaceWindow {
    Q_OBJECT

  public:
    // `unloaded` is called once, when the operator closes the window.
    FrmWorkspaces(const std::string& caption, WorkspaceMapMaker& maker,
                  std::function<void()> unloaded);
    ~FrmWorkspaces() override;

    WorkspaceMap& map() override { return *map_; }
    void unload() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QFrame* WebBrowser1 = nullptr;
    std::unique_ptr<WorkspaceMap> map_;
    std::function<void()> unloaded_;
};

// Opens the windows and deletes those that are left at its end.
class FrmWorkspacesMaker : public WorkspaceWindowMaker {
  public:
    explicit FrmWorkspacesMaker(WorkspaceMapMaker& maps) : maps_(maps) {}
    ~FrmWorkspacesMaker() override;
    FrmWorkspacesMaker(const FrmWorkspacesMaker&) = delete;
    FrmWorkspacesMaker& operator=(const FrmWorkspacesMaker&) = delete;

    WorkspaceWindow& openWindow(const std::string& caption,
                                std::function<void()> unloaded) override;

  private:
    WorkspaceMapMaker& maps_;
    std::vector<QPointer<FrmWorkspaces>> forms_;
};

} // namespace tremor
