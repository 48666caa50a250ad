// Any bytes as what an operator types for SQLite. The first byte tells where: a text that is pasted
// between apostrophes, or a whole statement of the window that only reads.
#include "local_frame.h"
#include "manage/database_manager.h"
#include "workspaces/pasted_statement.h"

#include <cstdint>
#include <string>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

struct NoEditing : EventEditing {
    void addEvent(std::function<void()>) override { std::abort(); }
    void editEvent(std::string_view, std::function<void()>) override { std::abort(); }
};

std::string answer(Database& database, std::string_view sql) {
    CheckingStatus::require(database.slsSel(sql) == 0 && database.slsGetRow());
    return database.slsFX(1);
}

void paste(std::string_view text, Database& database) {
    fuzzing::CountingLog log;
    const bool ran = runPasted(database, log,
                               "insert into Events (UTC, Source) values ('2021-01-14', '" +
                                   std::string(text) + "')",
                               {text}, "The event was not saved");
    CheckingStatus::require(ran == (log.lines == 0));
    CheckingStatus::require(fuzzing::storedEvents(database) == (ran ? 1 : 0));
    const std::optional<std::string> expected = pastedTextValue(text);
    CheckingStatus::require(expected.has_value() == ran);
    if (ran)
        CheckingStatus::require(answer(database, "select Source from Events") == expected);
}

// A statement that does not end is stopped at the first sign of life of the window.
void query(std::string_view statement, Database& database) {
    constexpr std::string_view everything =
        "select (select count(*) || total(Magnitude) from Events) || group_concat(sql) from "
        "sqlite_master";
    CheckingStatus::require(
        database.slsExe("insert into Events (UTC, Magnitude) values ('2021-01-14', 4.5)") == 0);
    const std::string before = answer(database, everything);
    Session session;
    fuzzing::BoxCounter prompts;
    bool ticksHeld = false;
    ErrorReport errors(
        prompts, [] { std::abort(); }, 0, ticksHeld);
    const NumberLocale locale = NumberLocale::point();
    NoEditing editing;
    DatabaseManager manager(database, session, prompts, locale, errors, editing);
    manager.setWhileRunning([&] { manager.stop(); });
    const std::optional<ResultSet> rows = manager.cmdQuery(statement);
    CheckingStatus::require(!manager.running() && prompts.errors == 0);
    CheckingStatus::require(prompts.boxes == 0 || !rows);
    if (rows)
        CheckingStatus::require(rows->cell(rows->rowCount(), 0).empty());
    CheckingStatus::require(answer(database, everything) == before);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzzing::TemporaryCatalogue catalogue;
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    Database& database = catalogue.emptied();
    if (data[0] % 2 == 0)
        paste(text, database);
    else
        query(text, database);
    return 0;
}
