#include "workspaces/workspace_windows.h"

#include "core/event_query.h"
#include "core/latest_hours.h"

#include <algorithm>
#include <chrono>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::chrono::milliseconds waitTurn{10};
constexpr std::chrono::minutes longestLoad{1};

} // namespace

WorkspaceWindows::WorkspaceWindows(const Environment& environment, WorkspaceWindowMaker& maker)
    : environment_(environment), maker_(maker) {}

WorkspaceWindows::~WorkspaceWindows() {
    closeAll();
}

void WorkspaceWindows::mnu_wrkspaces_Click() {
    ProcedureTrace trace(environment_.errors, module, "mnu_wrkspaces_Click");
    closeAll();
    const OpenWorkspaces workspaces = readWorkspaces();
    if (workspaces.empty()) {
        environment_.log.addLogToList("There aren't Workspace saved.");
        return;
    }
    environment_.session.AllWorkspacesOpen = true;
    workspaces_ = workspaces;
    for (const auto& workspace : workspaces)
        trace.step([&] { open(workspace); });
    for (const auto& workspace : workspaces)
        trace.step([&] {
            if (workspace->window != nullptr)
                workspace->window->map().MapsWorkspaces(workspace->row.Name);
        });
    waitForPages(workspaces);
    draw(workspaces);
}

WorkspaceWindows::OpenWorkspaces WorkspaceWindows::readWorkspaces() {
    Database& database = environment_.database;
    OpenWorkspaces workspaces;
    database.slsSel("select count(*) from Workspace");
    if (!database.slsGetRow() || database.slsFX(1) == "0")
        return workspaces;
    database.slsSel("select * from Workspace");
    while (database.slsGetRow())
        workspaces.push_back(
            std::make_shared<OpenWorkspace>(OpenWorkspace{.row = currentWorkspace(database)}));
    return workspaces;
}

void WorkspaceWindows::open(const std::shared_ptr<OpenWorkspace>& workspace) {
    WorkspaceWindow& window = maker_.openWindow("Tremorledger " + workspace->row.Name,
                                                [this, workspace] { unloaded(*workspace); });
    workspace->window = &window;
    ++openWindows_;
}

void WorkspaceWindows::unloaded(OpenWorkspace& workspace) {
    workspace.window = nullptr;
    if (--openWindows_ == 0)
        closeAll();
}

void WorkspaceWindows::closeAll() {
    for (const auto& workspace : workspaces_) {
        if (workspace->window != nullptr) {
            workspace->window->unload();
            workspace->window = nullptr;
        }
    }
    workspaces_.clear();
    openWindows_ = 0;
    environment_.session.AllWorkspacesOpen = false;
}

void WorkspaceWindows::waitForPages(const OpenWorkspaces& workspaces) {
    const auto loading = [](const std::shared_ptr<OpenWorkspace>& workspace) {
        return workspace->window != nullptr && !workspace->window->map().complete();
    };
    Clock& clock = environment_.clock;
    const auto begin = clock.steady();
    while (std::ranges::any_of(workspaces, loading) && !environment_.session.waitsMustEnd() &&
           clock.steady() - begin < longestLoad)
        clock.sleep(waitTurn);
}

void WorkspaceWindows::startWRKspace() {
    const OpenWorkspaces workspaces = workspaces_;
    draw(workspaces);
}

// The old markers are taken off first: events that have left the time range would stay for ever.
void WorkspaceWindows::draw(const OpenWorkspaces& workspaces) {
    ProcedureTrace trace(environment_.errors, module, "startWRKspace");
    const std::string range =
        latestHours(trace, environment_.clock, environment_.settings, environment_.session);
    if (range.empty())
        return;
    for (const auto& workspace : workspaces) {
        // Asked for before each call: the one before may have seen the window closed.
        const auto onMap = [&workspace](const auto& act) {
            if (workspace->window != nullptr && workspace->window->map().complete())
                act(workspace->window->map());
        };
        const WorkspaceRow& row = workspace->row;
        onMap([&row](WorkspaceMap& map) {
            writeView(map, row);
            map.click("Workspace");
        });
        onMap([](WorkspaceMap& map) { map.onclick("removeAll"); });
        onMap([&](WorkspaceMap& map) {
            map.eventsInMapWRKS(std::string(selectEvents) + workspaceCondition(row) + range);
        });
        onMap([](WorkspaceMap& map) { map.click("eventi"); });
    }
}

void WorkspaceWindows::saveAllWorkspace() {
    ProcedureTrace trace(environment_.errors, module, "saveAllWorkspace");
    const OpenWorkspaces workspaces = workspaces_;
    for (const auto& workspace : workspaces)
        trace.step([&] {
            if (workspace->window != nullptr)
                workspace->window->map().mapsInJPG(workspace->row.Name);
        });
}

} // namespace tremor
