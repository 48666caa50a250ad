// Any bytes as a CSV file of events: through the parser and the whole import, twice, with the
// invariants of an import checked and both ways to find duplicates compared.
#include "import_frame.h"
#include "ingest/csv_import.h"
#include "ingest/duplicate_check.h"

#include <cstdint>
#include <initializer_list>

namespace {

using namespace tremor;
using fuzzing::CheckingStatus;

bool canBeStored(const ImportRecord& record) {
    for (const std::string_view value : {record.UTC, record.Latitude, record.Longitude,
                                         record.Depth, record.Magnitude, record.Source}) {
        if (!pastedTextValue(value))
            return false;
    }
    return true;
}

void compareChecks(const CsvEvents& events, const FeedRules& rules, Database& database) {
    const RecordPass pass = [&](const RecordVisitor& visit) { events.forEach(visit); };
    DuplicateCheck byStatement(rules);
    DuplicateCheck byReading(rules, 0);
    CheckingStatus::require(byStatement.ask(pass, events.elements(), database));
    CheckingStatus::require(byReading.ask(pass, events.elements(), database));
    events.forEach([&](const ImportRecord& record) {
        CheckingStatus::require(byStatement.isDuplicate(record) == byReading.isDuplicate(record));
        return true;
    });
}

// Returns how many rows came.
std::size_t import(const CsvEvents& events, const FeedRules& rules, Database& database) {
    CheckingStatus status;
    Session session;
    const std::size_t before = fuzzing::storedEvents(database);
    const RecordPass pass = [&](const RecordVisitor& visit) { events.forEach(visit); };
    const ImportOutcome outcome =
        storeRecords(pass, events.elements(), rules, database, status, session);
    CheckingStatus::require(outcome.lost <= outcome.count && outcome.count <= events.elements());
    CheckingStatus::require(!session.ImportInProgress);
    return fuzzing::storedEvents(database) - before;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzzing::TemporaryCatalogue catalogue;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const CsvEvents events(text);
    CheckingStatus::require(events.elements() + events.incomplete() <= events.lines());
    CheckingStatus::require(events.lines() <= countLines(text));
    std::size_t storable = 0;
    std::size_t next = 0;
    events.forEach([&](const ImportRecord& record) {
        CheckingStatus::require(record.element == next++);
        CheckingStatus::require(record.UTC.size() != 1);
        storable += canBeStored(record) ? 1 : 0;
        return true;
    });
    CheckingStatus::require(next == events.elements());

    for (const FeedReader reader : {FeedReader::UserCsv, FeedReader::IsideCsv}) {
        const FeedRules& rules = feedRules(reader);
        Database& database = catalogue.emptied();
        // An empty catalogue takes everything.
        CheckingStatus::require(import(events, rules, database) == storable);
        compareChecks(events, rules, database);
        CheckingStatus::require(import(events, rules, database) <= storable);
    }
    return 0;
}
