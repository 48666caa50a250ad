#pragma once

#include "core/error_report.h"
#include "core/hosts.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// What every feed reader does alike: cut a file into lines, find the events that the catalogue
// holds already, insert the others in one transaction.
namespace tremor {

// What a feed reader works with. The references outlive the reader.
struct FeedContext {
    Session& session;
    const AppSettings& settings;
    const Hosts& hosts;
    Database& database;
    StatusPanel& status;
    Clock& clock;
    Log& log;
    ErrorReport& errors;
    std::function<std::string()> temporaryFolder; // ends in "/"; asked anew for each fetch
};

// One event of a feed, all text, exactly as it goes into the catalogue. The fields point into the
// text of the file or into whatever else the reader keeps alive until the import is over. Lines
// without an event have no record, but for the holes of a CSV file, which are stored too.
struct ImportRecord {
    std::size_t element = 0;    // index of its line in the file, from 0
    std::string_view UTC;       // "2021-01-14 05:45:26.600"; empty: no event
    std::string_view Latitude;  // degrees, point as decimal mark
    std::string_view Longitude; // degrees, point as decimal mark
    std::string_view Magnitude;
    std::string_view Depth; // km
    std::string_view Source;
    bool IsDuplicate = false; // the catalogue holds this event already
};

// Stores one event.
inline constexpr std::string_view insertEvent =
    "insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude,Source) Values (?,?,?,?,?,?)";

// The feed readers differ in which rows count as the same event.
enum class FeedReader { Ingv, IsideCsv, Emsc, Usgs, UserCsv };

struct FeedRules {
    std::string_view duplicateTail; // end of the duplicate query, behind the list of times
    bool marksAllEqual;             // all equal records are duplicates, not only the first one
    std::string_view importedText;  // behind the count in the log
    // A record without a time is a hole: it is stored as a row of empty texts. The search for a
    // stored time stops at the first hole, which then is the duplicate.
    bool storesHoles = false;
};

const FeedRules& feedRules(FeedReader reader);

// Hands over the records of a file in the order of their elements, anew at each call, so that a
// large file needs no list of them. Ends early when the visitor gives false.
using RecordVisitor = std::function<bool(const ImportRecord&)>;
using RecordPass = std::function<void(const RecordVisitor&)>;

// The number of lines that a line feed ends. What follows the last line feed is no line: a cut
// transfer must not give half an event.
std::size_t countLines(std::string_view text);

// Calls use(index, line) for each of these lines. A carriage return stays on its line.
template <class Use>
void forEachLine(std::string_view text, Use&& use) {
    std::size_t start = 0;
    std::size_t index = 0;
    for (std::size_t end = 0; (end = text.find('\n', start)) != std::string_view::npos;
         start = end + 1)
        use(index++, text.substr(start, end - start));
}

// "'2021-01-14 05:45:26.600','',''": the times of all `elements` lines of a file, with an empty
// item for each line without an event. A time that would break the statement is left out, so that
// one bad line does not switch the duplicate check off for all others. Empty items beyond
// `maximumEmptyItems` change nothing and are left out too: a file of nothing but line feeds would
// make a statement of gigabytes.
inline constexpr std::size_t maximumEmptyItems = 10000;
std::string utcList(const std::vector<ImportRecord>& records, std::size_t elements);

// Asks the catalogue, with one statement for the whole file, which times it holds and marks the
// records. False when the query failed (Database::slGetError tells why); nothing is marked then.
bool markDuplicates(std::vector<ImportRecord>& records, std::size_t elements,
                    const FeedRules& rules, Database& database);

// The records that are to be inserted: a time and no duplicate.
std::size_t countNewRecords(const std::vector<ImportRecord>& records);

// What became of an insertion.
struct ImportOutcome {
    std::size_t count = 0;  // records that were to be inserted
    std::size_t lost = 0;   // of these, rows that the catalogue did not take
    std::string lostReason; // why the first of them was lost; empty when none was
};

// Inserts the new records in one transaction and moves the progress bar. A row that the catalogue
// refuses is lost alone. When the transaction itself fails (locked file, full disk), nothing is
// inserted. ImportInProgress is true exactly while the transaction is open.
ImportOutcome insertRecords(const std::vector<ImportRecord>& records, Database& database,
                            StatusPanel& status, Session& session);

// Finds the duplicates among the records of a file and inserts the others, in a few passes. Their
// texts outlive the call. Holes are stored where the rules say so, and not counted. When
// the duplicate check itself fails, nothing is inserted: every known event would come in a second
// time.
ImportOutcome storeRecords(const RecordPass& records, std::size_t elements, const FeedRules& rules,
                           Database& database, StatusPanel& status, Session& session);

// "2 of these events could not be stored: ..." in the log; nothing when no row was lost.
void logLostRows(const ImportOutcome& outcome, Log& log);

// The whole import of parsed records: duplicates, insertion, "60 Events imported from INGV" in the
// log, and one more line when rows were lost.
ImportOutcome importRecords(std::vector<ImportRecord>& records, std::size_t elements,
                            FeedReader reader, FeedContext& context);

} // namespace tremor
