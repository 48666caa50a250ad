#include "core/panel_menu.h"

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace tremor {
namespace {

std::string shown(const QString& caption) {
    return QString(caption).remove(QLatin1Char('&')).toStdString();
}

struct Entry {
    std::string caption;
    std::string name;
    std::string shortcut;
    bool operator==(const Entry&) const = default;
};

std::vector<Entry> entries(const QMenu& menu) {
    std::vector<Entry> result;
    for (const QAction* action : menu.actions())
        result.push_back({shown(action->text()), action->objectName().toStdString(),
                          action->shortcut().toString().toStdString()});
    return result;
}

void PrintTo(const Entry& entry, std::ostream* out) {
    *out << entry.caption << " | " << entry.name << " | " << entry.shortcut;
}

TEST(PanelMenu, HasItsItemsInTheirOrder) {
    QMenuBar bar;
    const PanelMenu menu(bar);
    const QList<QAction*> top = bar.actions();
    ASSERT_EQ(top.size(), 4);
    EXPECT_EQ(shown(top[0]->text()), "File");
    EXPECT_EQ(shown(top[1]->text()), "Search...");
    EXPECT_EQ(top[1]->objectName(), QStringLiteral("mnuSearch"));
    EXPECT_EQ(shown(top[2]->text()), "Workspace");
    EXPECT_EQ(shown(top[3]->text()), "?");
    EXPECT_EQ(entries(*top[0]->menu()),
              (std::vector<Entry>{{"Open Database...", "mnu_Open_Database", "Ctrl+O"},
                                  {"Create Database...", "mnu_createDB", ""},
                                  {"Export Database in CSV...", "mnu_exportDatabaseCSV", ""},
                                  {"Collect Data", "mnuCollect", "F5"},
                                  {"Start all services", "mnu_startallservices", "Ctrl+F5"},
                                  {"", "m1", ""},
                                  {"Import CSV...", "mnu_ImportCSV", ""},
                                  {"Import from SeisComp 2.6", "mnu_imp_seiscomp2_6", ""},
                                  {"", "m2", ""},
                                  {"Setup", "Setup", ""},
                                  {"Manage DataBase", "mnu_ManageDB", ""},
                                  {"Exit", "mnu_Exit", ""}}));
    EXPECT_EQ(entries(*top[2]->menu()),
              (std::vector<Entry>{{"Search on this workspace", "mnuSearchWRK", ""},
                                  {"Jump to workspace", "mnuJump2WRK", ""},
                                  {"Delete this workspace", "mnuDeleteWRK", ""},
                                  {"", "m3", ""},
                                  {"Open all Workspaces...", "mnu_wrkspaces", ""},
                                  {"Update Workspace with events", "mnuUpdateWRKwithEvents", ""},
                                  {"Show faults", "mnuShowFaults", ""},
                                  {"Show Stations on the map", "mnuShowStations", ""}}));
    EXPECT_EQ(entries(*top[3]->menu()), (std::vector<Entry>{{"About...", "mnu_About", ""}}));
}

TEST(PanelMenu, SeparatesWhereItsSeparatorsStand) {
    QMenuBar bar;
    const PanelMenu menu(bar);
    for (const char* name : {"m1", "m2", "m3"})
        EXPECT_TRUE(menu.item(name).isSeparator()) << name;
    EXPECT_FALSE(menu.item("mnu_Exit").isSeparator());
}

TEST(PanelMenu, GivesEveryItemAMnemonicOfItsOwnInItsMenu) {
    QMenuBar bar;
    const PanelMenu menu(bar);
    std::vector<QList<QAction*>> levels{bar.actions()};
    for (const QAction* top : bar.actions())
        if (top->menu() != nullptr)
            levels.push_back(top->menu()->actions());
    ASSERT_EQ(levels.size(), 4u);
    for (const QList<QAction*>& level : levels) {
        std::set<std::string> mnemonics;
        for (const QAction* action : level) {
            if (action->isSeparator())
                continue;
            const QKeySequence mnemonic = QKeySequence::mnemonic(action->text());
            EXPECT_FALSE(mnemonic.isEmpty()) << action->text().toStdString();
            EXPECT_TRUE(mnemonics.insert(mnemonic.toString().toStdString()).second)
                << action->text().toStdString();
        }
    }
}

TEST(PanelMenu, OffersAtFirstOnlyWhatNeedsNoCatalogue) {
    QMenuBar bar;
    const PanelMenu menu(bar);
    for (const char* name : {"mnu_Open_Database", "mnu_createDB", "mnuCollect",
                             "mnu_startallservices", "Setup", "mnu_Exit", "mnu_About"})
        EXPECT_TRUE(menu.item(name).isEnabled()) << name;
    for (const char* name :
         {"mnu_exportDatabaseCSV", "mnu_ImportCSV", "mnu_imp_seiscomp2_6", "mnu_ManageDB",
          "mnuSearch", "mnuSearchWRK", "mnuJump2WRK", "mnuDeleteWRK", "mnu_wrkspaces",
          "mnuUpdateWRKwithEvents", "mnuShowFaults", "mnuShowStations"})
        EXPECT_FALSE(menu.item(name).isEnabled()) << name;
}

TEST(PanelMenu, LetsTheItemsThatAreOnOrOffShowACheckMark) {
    QMenuBar bar;
    const PanelMenu menu(bar);
    for (const char* name : {"mnuUpdateWRKwithEvents", "mnuShowFaults", "mnuShowStations"})
        EXPECT_TRUE(menu.item(name).isCheckable()) << name;
    EXPECT_FALSE(menu.item("mnuCollect").isCheckable());
}

} // namespace
} // namespace tremor
