#pragma once

#include "manage/database_manager.h"
#include "manage/event_editor.h"

#include <QtCore/QPointer>
#include <QtWidgets/QDialog>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QPushButton;

namespace tremor {

class FieldGrid;

// The window that edits one event: the columns of the table with their values. A key, F2 or a
// double click starts editing in place, Return keeps the text and goes down, Escape leaves it.
// What is being typed is kept as well when another control is used.
//
// Object names: frmNewEditEvent, fxgrid, txt_grid (while editing), cmdSalva, cmd_cancel.
class FrmNewEditEvent : public QDialog {
    Q_OBJECT

  public:
    // Loads the editor. The window deletes itself when it is closed.
    FrmNewEditEvent(std::shared_ptr<EventEditor> editor, QWidget* owner);

    void reject() override;

  private:
    void fillGrid();
    void cmdSalva_Click();
    void leaveAfter(bool (EventEditor::*question)());

    // Shared with the calls on the stack: a question may be open while the window goes.
    std::shared_ptr<EventEditor> editor_;
    FieldGrid* fxgrid = nullptr;
    QPushButton* cmdSalva = nullptr;
    QPushButton* cmd_cancel = nullptr;
    bool asking_ = false;
};

// Opens that window, one at a time: while it is open, another call only brings it to the front.
class EventEditingWindow : public EventEditing {
  public:
    // `owner` is the window above which it stands; may be null.
    EventEditingWindow(Database& catalogue, Prompts& prompts, ErrorReport& errors, QWidget* owner);

    void addEvent(std::function<void()> whenClosed) override;
    void editEvent(std::string_view utc, std::function<void()> whenClosed) override;

  private:
    void open(std::optional<std::string> utc, std::function<void()> whenClosed);

    Database& catalogue_;
    Prompts& prompts_;
    ErrorReport& errors_;
    QPointer<QWidget> owner_;
    QPointer<FrmNewEditEvent> window_;
};

} // namespace tremor
