#include "core/panel_menu.h"

#include <QtGui/QAction>
#include <QtGui/QKeySequence>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <array>
#include <string>

namespace tremor {
namespace {

enum class Kind {
    Command, // always there for the operator
    Ready,   // there once the window says so
    Tick,    // the same, with a check mark
    Separator,
};

// "&" stands before the mnemonic of a caption.
struct Item {
    const char* menu; // caption of its menu; an empty one: the item stands in the bar itself
    const char* caption;
    const char* objectName;
    const char* shortcut;
    Kind kind;
};

constexpr std::array items{
    Item{"&File", "&Open Database...", "mnu_Open_Database", "Ctrl+O", Kind::Command},
    Item{"&File", "&Create Database...", "mnu_createDB", "", Kind::Command},
    Item{"&File", "&Export Database in CSV...", "mnu_exportDatabaseCSV", "", Kind::Ready},
    Item{"&File", "Co&llect Data", "mnuCollect", "F5", Kind::Command},
    Item{"&File", "&Start all services", "mnu_startallservices", "Ctrl+F5", Kind::Command},
    Item{"&File", "", "m1", "", Kind::Separator},
    Item{"&File", "&Import CSV...", "mnu_ImportCSV", "", Kind::Ready},
    Item{"&File", "Import from SeisCom&p 2.6", "mnu_imp_seiscomp2_6", "", Kind::Ready},
    Item{"&File", "", "m2", "", Kind::Separator},
    Item{"&File", "Set&up", "Setup", "", Kind::Command},
    Item{"&File", "&Manage DataBase", "mnu_ManageDB", "", Kind::Ready},
    Item{"&File", "E&xit", "mnu_Exit", "", Kind::Command},
    Item{"", "&Search...", "mnuSearch", "", Kind::Ready},
    Item{"&Workspace", "&Search on this workspace", "mnuSearchWRK", "", Kind::Ready},
    Item{"&Workspace", "&Jump to workspace", "mnuJump2WRK", "", Kind::Ready},
    Item{"&Workspace", "&Delete this workspace", "mnuDeleteWRK", "", Kind::Ready},
    Item{"&Workspace", "", "m3", "", Kind::Separator},
    Item{"&Workspace", "&Open all Workspaces...", "mnu_wrkspaces", "", Kind::Ready},
    Item{"&Workspace", "&Update Workspace with events", "mnuUpdateWRKwithEvents", "", Kind::Tick},
    Item{"&Workspace", "Show &faults", "mnuShowFaults", "", Kind::Tick},
    Item{"&Workspace", "Show S&tations on the map", "mnuShowStations", "", Kind::Tick},
    Item{"&?", "&About...", "mnu_About", "", Kind::Command},
};

QAction* addItem(QWidget& parent, const Item& item) {
    auto* action = new QAction(QString::fromLatin1(item.caption), &parent);
    action->setObjectName(QLatin1StringView(item.objectName));
    action->setShortcut(QKeySequence(QLatin1StringView(item.shortcut)));
    action->setSeparator(item.kind == Kind::Separator);
    action->setCheckable(item.kind == Kind::Tick);
    action->setEnabled(item.kind == Kind::Command || item.kind == Kind::Separator);
    // No desktop moves an item elsewhere by its caption ("Setup", "Exit").
    action->setMenuRole(QAction::NoRole);
    parent.addAction(action);
    return action;
}

} // namespace

PanelMenu::PanelMenu(QMenuBar& bar) {
    std::map<std::string, QMenu*> menus;
    for (const Item& item : items) {
        QWidget* parent = &bar;
        if (const std::string caption = item.menu; !caption.empty()) {
            QMenu*& menu = menus[caption];
            if (menu == nullptr)
                menu = bar.addMenu(QString::fromStdString(caption));
            parent = menu;
        }
        items_.emplace(item.objectName, addItem(*parent, item));
    }
}

QAction& PanelMenu::item(std::string_view objectName) const {
    return *items_.at(objectName);
}

} // namespace tremor
