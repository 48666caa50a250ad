#pragma once

#include "core/activity_log.h"

#include <QtWidgets/QListWidget>

namespace tremor {

// The list `lst_prog_log` of the main window. An entry takes one row; line breaks inside it are
// drawn as a mark, its tool tip shows them, and copying keeps them.
class LogListView : public QListWidget, public LogList {
    Q_OBJECT

  public:
    explicit LogListView(QWidget* parent = nullptr);

    void append(std::string_view line) override;
    void clear() override;
    void selectLast() override; // any other selection is given up
    void refresh() override;

    // The selected entries from top to bottom, joined by LF, as text on the clipboard. Nothing
    // when none is selected.
    void copySelection();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace tremor
