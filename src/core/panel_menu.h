#pragma once

#include <map>
#include <string_view>

class QAction;
class QMenuBar;

namespace tremor {

// The menu of the main window, built from one table: captions, object names, shortcuts, mnemonics.
class PanelMenu {
  public:
    // Fills the bar. The actions belong to it and carry the object names of the table.
    explicit PanelMenu(QMenuBar& bar);

    // The item of that object name, which must be in the table ("mnu_Open_Database").
    QAction& item(std::string_view objectName) const;

  private:
    std::map<std::string_view, QAction*> items_;
};

} // namespace tremor
