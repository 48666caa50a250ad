#include "manage/database_manager.h"

#include "core/common_text.h"
#include "core/dates.h"
#include "core/flag_scope.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Form - frmManageDB";

// "2024-01-31"
std::string dayText(DateTime date) {
    return dateToText(date).substr(0, 10);
}

std::string dateCondition(const EventQueryForm& form) {
    return fmt::format("( UTC >= '{}' ) AND ( UTC <= '{} 23:59:59' )", dayText(form.startDate),
                       dayText(form.endDate));
}

std::string magnitudeCondition(const EventQueryForm& form) {
    return fmt::format("( Magnitude >= '{}' ) AND ( Magnitude <= '{}' )",
                       CommaToDot(form.magnitudeFrom), CommaToDot(form.magnitudeTo));
}

std::string depthCondition(const EventQueryForm& form) {
    return fmt::format("( Depth >= '{}' ) AND ( Depth <= '{}' )", form.depthFrom, form.depthTo);
}

std::string sourceCondition(const EventQueryForm& form) {
    return fmt::format("(SOURCE = '{}')", form.source);
}

bool isSelect(std::string_view statement) {
    constexpr std::string_view word = "select";
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return std::ranges::equal(statement.substr(0, word.size()), word, {}, lower);
}

// The texts of the first column of a query.
std::vector<std::string> column(Database& database, std::string_view sql, std::string_view name) {
    std::vector<std::string> texts;
    database.slsSel(sql);
    while (database.slsGetRow())
        texts.push_back(database.slFN(name));
    return texts;
}

} // namespace

DatabaseManager::DatabaseManager(Database& catalogue, Session& session, Prompts& prompts,
                                 const NumberLocale& locale, ErrorReport& errors,
                                 EventEditing& editing)
    : catalogue_(catalogue),
      session_(session),
      prompts_(prompts),
      locale_(locale),
      errors_(errors),
      editing_(editing) {}

void DatabaseManager::opened() {
    session_.PollingSuspended = 1;
}

void DatabaseManager::closed() {
    stop();
    session_.PollingSuspended = 0;
}

std::vector<std::string> DatabaseManager::sources() {
    return column(catalogue_, "select source from Events group by source", "source");
}

std::vector<std::string> DatabaseManager::fieldNames() {
    return column(catalogue_, "PRAGMA table_info (Events)", "name");
}

std::optional<std::string> DatabaseManager::cmdBuildQuery(const EventQueryForm& form) {
    const ProcedureTrace trace(errors_, module, "cmdBuildQuery_Click");
    if (!parametersAreValid(form) || !sortingIsValid(form))
        return std::nullopt;
    std::string statement = "select * from Events";
    std::string_view joint = " where ";
    const auto add = [&](bool on, std::string (*condition)(const EventQueryForm&)) {
        if (!on)
            return;
        statement += joint;
        statement += condition(form);
        joint = " AND ";
    };
    add(form.dateOn, dateCondition);
    add(form.magnitudeOn, magnitudeCondition);
    add(form.depthOn, depthCondition);
    add(form.sourceOn, sourceCondition);
    if (form.orderBy) {
        statement += " ORDER BY " + form.orderField;
        statement += form.orderDirection == "Descendant" ? " DESC" : " ASC";
    }
    return statement;
}

bool DatabaseManager::parametersAreValid(const EventQueryForm& form) {
    constexpr std::string_view title = "Error Validate Parameters";
    const auto number = [&](std::string_view text) { return ParseDotDouble(text, locale_); };
    const auto whole = [&](std::string_view text) { return SafeToLong(text, locale_); };
    const char* fault = nullptr;
    if (form.dateOn && dayText(form.endDate) < dayText(form.startDate))
        fault = "Start date must be lower...";
    else if (form.magnitudeOn && number(form.magnitudeTo) < number(form.magnitudeFrom))
        fault = "Error in Magnitude Parameters...";
    else if (form.depthOn && whole(form.depthTo) < whole(form.depthFrom))
        fault = "Error in Depth Parameters...";
    else if (form.sourceOn && form.source.empty())
        fault = "Error in Source Parameters...";
    if (fault != nullptr)
        critical(title, fault);
    return fault == nullptr;
}

bool DatabaseManager::sortingIsValid(const EventQueryForm& form) {
    constexpr std::string_view title = "Error Validate Sorting";
    if (form.orderBy && (form.orderField.empty() || form.orderDirection.empty())) {
        critical(title, "Error in 'ORDER BY' condition...");
        return false;
    }
    if (form.groupBy && form.groupField.empty()) {
        critical(title, "Error in 'GROUP BY' condition...");
        return false;
    }
    return true;
}

std::optional<ResultSet> DatabaseManager::cmdQuery(std::string_view statement) {
    const ProcedureTrace trace(errors_, module, "cmdQuery_Click");
    constexpr std::string_view title = "Building query...";
    if (!isSelect(statement)) {
        critical(title, "Only Select Statement is available...");
        return std::nullopt;
    }
    if (running_)
        return std::nullopt;
    const FlagScope running(running_);
    // Opened for each query, so that no lock of an idle reader stands in the way of an import.
    int code = reader_.slsOpen(catalogue_.path(), "R");
    if (code == SQLITE_OK)
        code = reader_.slsSel(statement);
    const std::string error = reader_.slGetError();
    std::optional<ResultSet> rows;
    if (code == SQLITE_OK)
        rows = reader_.takeResult();
    reader_.slClose();
    if (code != SQLITE_OK && code != SQLITE_INTERRUPT)
        critical(title, "The database has refused this query:\r\n" + error);
    return rows;
}

void DatabaseManager::setWhileRunning(std::function<void()> whileRunning) {
    reader_.setBusyCallback(std::move(whileRunning));
}

void DatabaseManager::cmdAddEvent(std::function<void()> queryAgain) {
    editing_.addEvent(std::move(queryAgain));
}

void DatabaseManager::cmdEditEvent(std::function<void()> queryAgain) {
    if (isSelected())
        editing_.editEvent(SelectedEventUTC_, std::move(queryAgain));
}

void DatabaseManager::cmdDeleteEvent(const std::function<void()>& queryAgain) {
    const ProcedureTrace trace(errors_, module, "cmdDeleteEvent_Click");
    if (!isSelected())
        return;
    const BoxAnswer answer = prompts_.showMessageBox(
        {.text = "Do you want remove this event " + SelectedEventUTC_ + " ?",
         .icon = BoxIcon::Question,
         .buttons = BoxButtons::YesNo});
    if (answer != BoxAnswer::Yes)
        return;
    const int code =
        catalogue_.slsExe("delete from Events where UTC = '" + SelectedEventUTC_ + "'");
    if (code != SQLITE_OK) {
        critical("Error..", "The event was not removed:\r\n" + catalogue_.slGetError());
        return;
    }
    SelectedEventUTC_.clear();
    queryAgain();
}

bool DatabaseManager::isSelected() {
    if (SelectedEventUTC_.empty())
        critical("Error..", "Please select an event first.");
    return !SelectedEventUTC_.empty();
}

void DatabaseManager::critical(std::string_view title, std::string_view text) {
    prompts_.showMessageBox(
        {.text = std::string(text), .title = std::string(title), .icon = BoxIcon::Critical});
}

} // namespace tremor
