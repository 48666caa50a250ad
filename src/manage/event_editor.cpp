#include "manage/event_editor.h"

#include <fmt/format.h>

#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - frmNewEditEvent";

} // namespace

EventEditor::EventEditor(Database& catalogue, Prompts& prompts, ErrorReport& errors,
                         std::optional<std::string> SelectedEventUTC)
    : catalogue_(catalogue),
      prompts_(prompts),
      errors_(errors),
      SelectedEventUTC_(std::move(SelectedEventUTC)) {}

std::string_view EventEditor::caption() const {
    return SelectedEventUTC_ ? "Editing an Event in DB" : "Add New Event";
}

void EventEditor::Form_Load() {
    const ProcedureTrace trace(errors_, module, "Form_Load");
    fields_.clear();
    catalogue_.slsSel("PRAGMA table_info(Events)");
    while (catalogue_.slsGetRow())
        fields_.push_back({.name = catalogue_.slFN("name")});
    if (!SelectedEventUTC_)
        return;
    catalogue_.slsSel("select * from Events where UTC = '" + *SelectedEventUTC_ + "';");
    if (!catalogue_.slsGetRow())
        return;
    for (EventField& field : fields_)
        field.value = field.stored = catalogue_.slFN(field.name);
}

void EventEditor::StopEditing(std::size_t row, std::string_view text) {
    if (row >= fields_.size())
        return;
    fields_[row].value = text;
    changed_ = true;
}

bool EventEditor::cmdSalva_Click() {
    const ProcedureTrace trace(errors_, module, "cmdSalva_Click");
    if (!(SelectedEventUTC_ ? updateEvent() : insertEvent()))
        return false;
    changed_ = false;
    return uscita();
}

bool EventEditor::insertEvent() {
    std::string list = "'";
    for (const EventField& field : fields_)
        list += field.value + "','";
    if (list.ends_with(",'"))
        list.resize(list.size() - 2);
    if (catalogue_.slsExe("insert into Events Values(" + list + ");") == 0)
        return true;
    warn("The event was not saved:\r\n" + catalogue_.slGetError());
    return false;
}

// The statement of a column whose name is a word of SQL, as `null`, always fails; nothing is lost
// by that while its value is the stored one.
bool EventEditor::updateEvent() {
    std::vector<std::string_view> refused;
    std::vector<std::string_view> unmatched;
    std::string error;
    for (const EventField& field : fields_) {
        const int code =
            catalogue_.slsExe(fmt::format("update Events set {} ='{}' where UTC = '{}';",
                                          field.name, field.value, *SelectedEventUTC_));
        if (!field.isChanged())
            continue;
        if (code != 0) {
            refused.push_back(field.name);
            error = catalogue_.slGetError();
        } else if (catalogue_.changes() == 0) {
            unmatched.push_back(field.name);
        }
    }
    if (!unmatched.empty())
        warn(fmt::format("There is no event at {} any more.\r\nNot saved: {}", *SelectedEventUTC_,
                         fmt::join(unmatched, ", ")));
    if (!refused.empty())
        warn(fmt::format("Not saved: {}\r\n{}", fmt::join(refused, ", "), error));
    return refused.empty();
}

void EventEditor::warn(std::string text) {
    prompts_.showMessageBox(
        {.text = std::move(text), .title = "Error..", .icon = BoxIcon::Critical});
}

bool EventEditor::uscita() {
    const ProcedureTrace trace(errors_, module, "uscita");
    if (!changed_)
        return true;
    const BoxAnswer answer = prompts_.showMessageBox(
        {.text = "If you exit now all data added/changed will be lost, do you want save them now?",
         .title = "Warning!",
         .icon = BoxIcon::Exclamation,
         .buttons = BoxButtons::YesNo});
    return answer != BoxAnswer::Yes || cmdSalva_Click();
}

} // namespace tremor
