#include "ingest/import_rules.h"

#include "core/flag_scope.h"
#include "database/row_writer.h"
#include "ingest/duplicate_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tremor {

namespace {

// One label change for so many lines of the file.
constexpr std::size_t progressStep = 50;

bool isNew(const ImportRecord& record) {
    return !record.UTC.empty() && !record.IsDuplicate;
}

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

ImportOutcome nothingStored(std::size_t count, const Database& database) {
    return {count, count, database.slGetError()};
}

RecordPass passOver(const std::vector<ImportRecord>& records) {
    return [&records](const RecordVisitor& visit) {
        for (const ImportRecord& record : records) {
            if (!visit(record))
                return;
        }
    };
}

// Inserts every record of the pass; `count` of them are events.
ImportOutcome insertAll(const RecordPass& records, std::size_t count, Database& database,
                        StatusPanel& status, Session& session) {
    ImportProgress progress(status, count);
    const FlagScope importing(session.ImportInProgress);
    Transaction transaction(database);
    if (!transaction.isOpen())
        return nothingStored(count, database);
    RowWriter writer(database, insertEvent);
    bool going = writer.isReady();
    if (going)
        records([&](const ImportRecord& record) {
            going = writer.write({record.UTC, record.Latitude, record.Longitude, record.Depth,
                                  record.Magnitude, record.Source});
            if (going)
                progress.inserted(record.element);
            return going;
        });
    if (!going)
        return nothingStored(count, database);
    progress.finish();
    if (!transaction.commit())
        return nothingStored(count, database);
    return {count, writer.lost(), writer.lostReason()};
}

} // namespace

const FeedRules& feedRules(FeedReader reader) {
    // An event of INGV is compared with everything but EMSC's rows, one of EMSC or USGS with its
    // own rows only: their times of one earthquake differ, and the sources stay side by side.
    static constexpr std::array<FeedRules, 5> rules = {{
        {")) and (Source <> 'EMSC') group by UTC", false, " Events imported from INGV"},
        {")) and (Source <> 'EMSC') group by UTC", false, " Events imported from ISIDE", true},
        {")) and (Source = 'EMSC') group by UTC", false, " Events imported from EMSC"},
        {")) and (Source = 'USGS') group by UTC", true, " Events imported from USGS"},
        {")) group by UTC", false, " Events imported from a csv file.", true},
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
    DuplicateCheck check(rules);
    if (!check.ask(passOver(records), elements, database))
        return false;
    for (ImportRecord& record : records)
        record.IsDuplicate = check.isDuplicate(record);
    return true;
}

std::size_t countNewRecords(const std::vector<ImportRecord>& records) {
    return static_cast<std::size_t>(std::count_if(records.begin(), records.end(), isNew));
}

ImportOutcome insertRecords(const std::vector<ImportRecord>& records, Database& database,
                            StatusPanel& status, Session& session) {
    const RecordPass news = [&records](const RecordVisitor& visit) {
        passOver(records)(
            [&visit](const ImportRecord& record) { return !isNew(record) || visit(record); });
    };
    return insertAll(news, countNewRecords(records), database, status, session);
}

ImportOutcome storeRecords(const RecordPass& records, std::size_t elements, const FeedRules& rules,
                           Database& database, StatusPanel& status, Session& session) {
    DuplicateCheck check(rules);
    const bool asked = check.ask(records, elements, database);

    std::vector<bool> left(elements); // elements that are not inserted
    std::size_t count = 0;
    records([&](const ImportRecord& record) {
        const bool hole = record.UTC.empty();
        left[record.element] = check.isDuplicate(record) || (hole && !rules.storesHoles);
        if (!left[record.element] && !hole)
            ++count;
        return true;
    });
    if (!asked)
        return nothingStored(count, database);
    const RecordPass others = [&](const RecordVisitor& visit) {
        records([&](const ImportRecord& record) { return left[record.element] || visit(record); });
    };
    return insertAll(others, count, database, status, session);
}

void logLostRows(const ImportOutcome& outcome, Log& log) {
    if (!outcome.lostReason.empty())
        log.addLogToList(fmt::format("{} of these events could not be stored: {}", outcome.lost,
                                     outcome.lostReason));
}

ImportOutcome importRecords(std::vector<ImportRecord>& records, std::size_t elements,
                            FeedReader reader, FeedContext& context) {
    const FeedRules& rules = feedRules(reader);
    ImportOutcome outcome =
        markDuplicates(records, elements, rules, context.database)
            ? insertRecords(records, context.database, context.status, context.session)
            : nothingStored(countNewRecords(records), context.database);
    context.log.addLogToList(fmt::format("{}{}", outcome.count, rules.importedText));
    logLostRows(outcome, context.log);
    return outcome;
}

} // namespace tremor
