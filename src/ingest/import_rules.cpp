#include "ingest/import_rules.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>

namespace tremor {

namespace {

// One label change for so many lines of the file.
constexpr std::size_t progressStep = 50;

constexpr std::string_view insertStatement =
    "insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude,Source) Values (?,?,?,?,?,?)";

bool isNew(const ImportRecord& record) {
    return !record.UTC.empty() && !record.IsDuplicate;
}

// An open transaction. Rolled back unless committed, so that neither an error nor an exception
// leaves half an import or the flag behind.
class Transaction {
  public:
    Transaction(Database& database, Session& session)
        : database_(database),
          session_(session),
          open_(database.slsExe("BEGIN TRANSACTION;") == 0) {
        session_.ImportInProgress = open_;
    }
    ~Transaction() {
        if (open_)
            database_.slsExe("ROLLBACK;");
        session_.ImportInProgress = false;
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool isOpen() const { return open_; }
    bool commit() {
        if (database_.slsExe("COMMIT;") != 0)
            return false;
        open_ = false;
        return true;
    }

  private:
    Database& database_;
    Session& session_;
    bool open_;
};

// The bar and the label "50 / 120" of an import.
class ImportProgress {
  public:
    ImportProgress(StatusPanel& status, std::size_t count)
        : status_(status), count_(static_cast<int>(count)), maximum_(std::max(count_, 1)) {
        status_.setProgressRange(0, maximum_);
        status_.setProgress(0);
    }

    // The steps follow the lines of the file, not the inserted rows.
    void inserted(std::size_t element) {
        if (element % progressStep != 0)
            return;
        constexpr int step = progressStep;
        if (maximum_ < value_ + step) {
            value_ = maximum_;
            show(count_);
        } else {
            value_ += step;
            show(value_);
        }
    }

    void finish() {
        value_ = maximum_;
        show(count_);
    }

  private:
    void show(int done) {
        status_.setProgress(value_);
        status_.setEventsText(fmt::format("{} / {}", done, count_));
    }

    StatusPanel& status_;
    int count_;
    int maximum_;
    int value_ = 0;
};

// True for errors of one row alone. After any other one (locked, full, broken file) SQLite may
// have ended the transaction by itself, and each further row would wait for the lock again.
bool refusesTheRowOnly(int error) {
    switch (error & 0xff) { // extended codes keep the primary one in the low byte
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
        return true;
    default:
        return false;
    }
}

// The insertion of records one by one, with the reason of the first lost row.
class RowInserter {
  public:
    RowInserter(Database& database, ImportOutcome& outcome)
        : database_(database), outcome_(outcome), statement_(database.prepare(insertStatement)) {}

    bool isReady() const { return static_cast<bool>(statement_); }

    // False when the whole import has failed.
    bool insert(const ImportRecord& record) {
        std::array<std::optional<std::string>, 6> pasted = {
            pastedTextValue(record.UTC),       pastedTextValue(record.Latitude),
            pastedTextValue(record.Longitude), pastedTextValue(record.Depth),
            pastedTextValue(record.Magnitude), pastedTextValue(record.Source)};
        values_.clear();
        for (const auto& value : pasted) {
            if (!value) {
                lose("a value holds an apostrophe or a zero byte");
                return true;
            }
            values_.push_back(*value);
        }
        const int error = database_.execute(statement_, values_);
        if (error == 0)
            return true;
        if (!refusesTheRowOnly(error))
            return false;
        lose(database_.slGetError());
        return true;
    }

  private:
    void lose(std::string reason) {
        if (outcome_.lost++ == 0)
            outcome_.lostReason = std::move(reason);
    }

    Database& database_;
    ImportOutcome& outcome_;
    Statement statement_;
    std::vector<std::string_view> values_;
};

ImportOutcome nothingStored(std::size_t count, const Database& database) {
    return {count, count, database.slGetError()};
}

} // namespace

const FeedRules& feedRules(FeedReader reader) {
    // An event of INGV is compared with everything but EMSC's rows, one of EMSC or USGS with its
    // own rows only: their times of one earthquake differ, and the sources stay side by side.
    static constexpr std::array<FeedRules, 5> rules = {{
        {")) and (Source <> 'EMSC') group by UTC", false, " Events imported from INGV"},
        {")) and (Source <> 'EMSC') group by UTC", false, " Events imported from ISIDE"},
        {")) and (Source = 'EMSC') group by UTC", false, " Events imported from EMSC"},
        {")) and (Source = 'USGS') group by UTC", true, " Events imported from USGS"},
        {")) group by UTC", false, " Events imported from a csv file."},
    }};
    return rules.at(static_cast<std::size_t>(reader));
}

std::size_t countLines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::string utcList(const std::vector<ImportRecord>& records, std::size_t elements) {
    std::string list;
    const auto addItem = [&list](std::string_view utc) {
        list += list.empty() ? "'" : ",'";
        list += utc;
        list += '\'';
    };
    std::size_t emptyItems = 0;
    const auto addEmptyItems = [&](std::size_t wanted) {
        for (; wanted > 0 && emptyItems < maximumEmptyItems; --wanted, ++emptyItems)
            addItem({});
    };
    std::size_t next = 0;
    for (const ImportRecord& record : records) {
        addEmptyItems(record.element - next);
        next = record.element + 1;
        if (pastedTextValue(record.UTC))
            addItem(record.UTC);
    }
    addEmptyItems(elements - next);
    return list;
}

bool markDuplicates(std::vector<ImportRecord>& records, std::size_t elements,
                    const FeedRules& rules, Database& database) {
    std::string sql = "select UTC from Events where (UTC IN (";
    sql += utcList(records, elements);
    sql += rules.duplicateTail;
    if (database.slsSel(sql) != 0)
        return false;

    const ResultSet rows = database.takeResult();
    std::unordered_set<std::string_view> known;
    known.reserve(rows.rowCount());
    for (std::size_t row = 0; row < rows.rowCount(); ++row)
        known.insert(rows.cell(row, 0));
    for (ImportRecord& record : records) {
        const auto found = known.find(record.UTC);
        if (found == known.end())
            continue;
        record.IsDuplicate = true;
        if (!rules.marksAllEqual)
            known.erase(found);
    }
    return true;
}

std::size_t countNewRecords(const std::vector<ImportRecord>& records) {
    return static_cast<std::size_t>(std::count_if(records.begin(), records.end(), isNew));
}

ImportOutcome insertRecords(const std::vector<ImportRecord>& records, Database& database,
                            StatusPanel& status, Session& session) {
    ImportOutcome outcome;
    outcome.count = countNewRecords(records);
    ImportProgress progress(status, outcome.count);

    Transaction transaction(database, session);
    if (!transaction.isOpen())
        return nothingStored(outcome.count, database);
    RowInserter inserter(database, outcome);
    if (!inserter.isReady())
        return nothingStored(outcome.count, database);
    for (const ImportRecord& record : records) {
        if (!isNew(record))
            continue;
        if (!inserter.insert(record))
            return nothingStored(outcome.count, database);
        progress.inserted(record.element);
    }
    progress.finish();
    if (!transaction.commit())
        return nothingStored(outcome.count, database);
    return outcome;
}

ImportOutcome importRecords(std::vector<ImportRecord>& records, std::size_t elements,
                            FeedReader reader, FeedContext& context) {
    const FeedRules& rules = feedRules(reader);
    ImportOutcome outcome =
        markDuplicates(records, elements, rules, context.database)
            ? insertRecords(records, context.database, context.status, context.session)
            : nothingStored(countNewRecords(records), context.database);
    context.log.addLogToList(fmt::format("{}{}", outcome.count, rules.importedText));
    if (!outcome.lostReason.empty())
        context.log.addLogToList(fmt::format("{} of these events could not be stored: {}",
                                             outcome.lost, outcome.lostReason));
    return outcome;
}

} // namespace tremor
