#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "database/database.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// A column of `Events` and its value, as text.
struct EventField {
    std::string name;
    std::string value{};
    std::string stored{}; // what the catalogue held when the event was read

    bool isChanged() const { return value != stored; }
};

// Edits one row of `Events`, or a new one, whatever columns the table has. Values go into the
// statements as they were typed; one with an apostrophe breaks its statement.
class EventEditor {
  public:
    // Edits the event with this text in `UTC`, or adds one without it. All references must outlive
    // this object.
    EventEditor(Database& catalogue, Prompts& prompts, ErrorReport& errors,
                std::optional<std::string> SelectedEventUTC);

    std::string_view caption() const;

    // Reads the columns of the table and, in edit mode, the event's first row.
    void Form_Load();

    const std::vector<EventField>& fields() const { return fields_; }

    // The text typed for a field is kept. A row outside the fields does nothing.
    void StopEditing(std::size_t row, std::string_view text);

    // Saves. True when the window is to be closed; false, after a message box, when the engine
    // refused a value that was typed.
    //
    // A new event is one insert of all values, an empty text where nothing was typed. In edit mode
    // each field is an update of its own, in the order of the columns, on every event that has the
    // `UTC` with which editing began. A changed `UTC` thus stops all updates behind its own; a
    // message box names the values that were lost by that.
    bool cmdSalva_Click();

    // Leaves, and asks before if something was changed. True when the window is to be closed.
    bool uscita();

  private:
    bool insertEvent();
    bool updateEvent();
    void warn(std::string text);

    Database& catalogue_;
    Prompts& prompts_;
    ErrorReport& errors_;
    std::optional<std::string> SelectedEventUTC_; // in edit mode
    std::vector<EventField> fields_;
    bool changed_ = false; // something was typed and not saved
};

} // namespace tremor
