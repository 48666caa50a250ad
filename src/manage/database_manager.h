#pragma once

#include "core/civil_time.h"
#include "core/error_report.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/session.h"
#include "database/database.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tremor {

// What the controls of the window "Manage DataBase" say when a query is built. All texts are as
// typed or chosen; numbers are dot or locale text.
struct EventQueryForm {
    bool dateOn = false;
    DateTime startDate{}; // only the days count
    DateTime endDate{};
    bool magnitudeOn = false;
    std::string magnitudeFrom{};
    std::string magnitudeTo{};
    bool depthOn = false;
    std::string depthFrom{};
    std::string depthTo{};
    bool sourceOn = false;
    std::string source{};
    bool orderBy = false;
    std::string orderField{};
    std::string orderDirection{}; // "Ascendant" or "Descendant"
    bool groupBy = false;
    std::string groupField{};
};

// The window in which one event is edited by hand. `whenClosed` is called once it is closed.
class EventEditing {
  public:
    virtual ~EventEditing() = default;

    virtual void addEvent(std::function<void()> whenClosed) = 0;
    // The event with this text in `UTC`.
    virtual void editEvent(std::string_view utc, std::function<void()> whenClosed) = 0;
};

// Queries over `Events` and the removal of events by hand.
//
// Statements that the operator typed run on a connection of their own that was opened for reading
// only, so that no select can change the catalogue or keep anything behind. Meanwhile the window
// lives: `whileRunning` is called about every 30 ms and may call stop().
class DatabaseManager {
  public:
    DatabaseManager(Database& catalogue, Session& session, Prompts& prompts,
                    const NumberLocale& locale, ErrorReport& errors, EventEditing& editing);

    // Polling stands still from opened() to closed().
    void opened();
    void closed();

    std::vector<std::string> sources();
    std::vector<std::string> fieldNames();

    // The statement for these conditions, for example
    // "select * from Events where (SOURCE = 'INGV') ORDER BY UTC DESC"; nothing after a message
    // box about parameters that contradict each other.
    std::optional<std::string> cmdBuildQuery(const EventQueryForm& form);

    // The rows of a statement. Nothing, after a message box, when it is no select or when SQLite
    // refuses it; nothing without a box when it was stopped.
    std::optional<ResultSet> cmdQuery(std::string_view statement);

    void setWhileRunning(std::function<void()> whileRunning);
    bool running() const { return running_; }
    void stop() { reader_.interrupt(); }

    // The `UTC` of the row on which the operator clicked; empty for none.
    void selectEvent(std::string_view utc) { SelectedEventUTC_ = utc; }

    // `queryAgain` is called when the rows may have changed.
    void cmdAddEvent(std::function<void()> queryAgain);
    void cmdEditEvent(std::function<void()> queryAgain);
    void cmdDeleteEvent(const std::function<void()>& queryAgain);

  private:
    bool parametersAreValid(const EventQueryForm& form);
    bool sortingIsValid(const EventQueryForm& form);
    bool isSelected();
    void critical(std::string_view title, std::string_view text);

    Database& catalogue_;
    Session& session_;
    Prompts& prompts_;
    const NumberLocale& locale_;
    ErrorReport& errors_;
    EventEditing& editing_;
    Database reader_;
    std::string SelectedEventUTC_;
    bool running_ = false;
};

} // namespace tremor
