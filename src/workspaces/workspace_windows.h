#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"
#include "workspaces/map_elements.h"
#include "workspaces/workspace_row.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// The live map in the window of one workspace.
class WorkspaceMap : public MapElements {
  public:
    // Writes the workspace's page and loads it. A name that cannot be that of a file gives none.
    virtual void MapsWorkspaces(std::string_view name) = 0;
    // Hands the events of a query over as markers. Nothing is drawn before `eventi` is fired.
    virtual void eventsInMapWRKS(std::string_view sql) = 0;
    // Saves a picture of the map under the workspace's name.
    virtual void mapsInJPG(std::string_view name) = 0;
};

// The window of one workspace. It deletes itself after it was closed.
class WorkspaceWindow {
  public:
    virtual WorkspaceMap& map() = 0;
    // Closes the window, which calls nothing back. Its last call.
    virtual void unload() = 0;

  protected:
    ~WorkspaceWindow() = default;
};

class WorkspaceWindowMaker {
  public:
    virtual ~WorkspaceWindowMaker() = default;

    // Shows a new window. `unloaded` is called once, when the operator closes it; from then on the
    // window must not be used.
    virtual WorkspaceWindow& openWindow(const std::string& caption,
                                        std::function<void()> unloaded) = 0;
};

// One window for each stored workspace, side by side with the main window. They follow new events
// until the last one is closed; session.AllWorkspacesOpen is true while there is one.
class WorkspaceWindows {
  public:
    // What the windows work with. The references outlive this object.
    struct Environment {
        Database& database;
        Session& session;
        AppSettings& settings;
        Clock& clock;
        Log& log;
        ErrorReport& errors;
    };

    WorkspaceWindows(const Environment& environment, WorkspaceWindowMaker& maker);
    ~WorkspaceWindows();
    WorkspaceWindows(const WorkspaceWindows&) = delete;
    WorkspaceWindows& operator=(const WorkspaceWindows&) = delete;

    // "Open all Workspaces...": opens the windows anew and waits for their pages, for a minute at
    // most.
    void mnu_wrkspaces_Click();

    // Sends each page the view and the latest events of its workspace, as it was stored when the
    // windows were opened. A page that is not complete misses them.
    void startWRKspace();

    // Takes a picture of each page.
    void saveAllWorkspace();

    void closeAll();
    std::size_t openWindows() const { return openWindows_; }

  private:
    struct OpenWorkspace {
        WorkspaceRow row;
        WorkspaceWindow* window = nullptr; // null: closed
    };
    // Shared, because each call on a page waits and may find the windows closed or opened anew.
    using OpenWorkspaces = std::vector<std::shared_ptr<OpenWorkspace>>;

    OpenWorkspaces readWorkspaces();
    void open(const std::shared_ptr<OpenWorkspace>& workspace);
    void unloaded(OpenWorkspace& workspace);
    void waitForPages(const OpenWorkspaces& workspaces);
    void draw(const OpenWorkspaces& workspaces);

    Environment environment_;
    WorkspaceWindowMaker& maker_;
    OpenWorkspaces workspaces_;
    std::size_t openWindows_ = 0;
};

} // namespace tremor
