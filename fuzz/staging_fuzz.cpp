// Any bytes as the staging text of a catalogue that is upgraded: only rows of the known tables come
// of it, and what was read can be written and read again.
#include "database/staging_text.h"
#include "import_frame.h"

#include <cstdint>
#include <string>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

constexpr std::string_view countRows =
    "select (select count(*) from Events) + (select count(*) from Cities) + (select count(*) from "
    "TelegramChats)";

std::string answer(Database& database, std::string_view sql) {
    CheckingStatus::require(database.slsSel(sql) == 0 && database.slsGetRow());
    return database.slsFX(1);
}

void empty(Database& database) {
    for (const char* sql :
         {"CREATE TABLE IF NOT EXISTS Cities ('Name' TEXT NOT NULL, 'Latitude' TEXT, "
          "'Longitude' TEXT, 'Zone' TEXT)",
          "CREATE TABLE IF NOT EXISTS TelegramChats ('chat_id' TEXT PRIMARY KEY NOT NULL UNIQUE, "
          "'Username' TEXT)",
          "delete from Events", "delete from Cities", "delete from TelegramChats"})
        CheckingStatus::require(database.slsExe(sql) == 0);
}

std::size_t load(Database& database, std::string_view text) {
    empty(database);
    const LoadOutcome outcome = loadStagingText(database, text, [] {});
    CheckingStatus::require(answer(database, countRows) == std::to_string(outcome.stored));
    return outcome.stored;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzzing::TemporaryCatalogue catalogue;
    Database& database = catalogue.emptied();
    empty(database);
    const std::string tables =
        answer(database, "select group_concat(name || coalesce(sql, '')) from sqlite_master");
    const std::size_t stored =
        load(database, std::string_view(reinterpret_cast<const char*>(data), size));
    const StagingText staging = stagingText(database, [] {});
    CheckingStatus::require(staging.rows == stored);
    // Nothing is escaped, so that a row may be lost on the way.
    CheckingStatus::require(load(database, staging.text.GetStr()) <= stored);
    CheckingStatus::require(
        answer(database, "select group_concat(name || coalesce(sql, '')) from sqlite_master") ==
        tables);
    return 0;
}
