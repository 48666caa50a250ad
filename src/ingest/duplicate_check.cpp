#include "ingest/duplicate_check.h"

#include <algorithm>
#include <string>

namespace tremor {

namespace {

// What a text holds that SQLite takes for a number.
bool belongsToANumber(char character) {
    switch (character) {
    case '+':
    case '-':
    case '.':
    case 'e':
    case 'E':
    case ' ':
    case '\t':
    case '\n':
    case '\v':
    case '\f':
    case '\r':
        return true;
    default:
        return character >= '0' && character <= '9';
    }
}

// True when the statement compares the time with a stored text byte for byte and with nothing
// else. The column turns numbers into such ("1e3" equals a stored 1000), and of two apostrophes
// only one is stored.
bool comparesBytes(std::string_view utc) {
    if (std::all_of(utc.begin(), utc.end(), belongsToANumber))
        return utc.empty();
    return utc.find('\'') == std::string_view::npos && utc.find('\0') == std::string_view::npos;
}

constexpr std::string_view selectTimes = "select UTC from Events where (";

} // namespace

bool DuplicateCheck::ask(const RecordPass& records, std::size_t elements, Database& database) {
    std::vector<ImportRecord> listed;
    std::size_t timeCount = 0;
    records([&](const ImportRecord& record) {
        if (!record.UTC.empty() && ++timeCount <= longestList_)
            listed.push_back(record);
        return true;
    });
    return timeCount <= longestList_ ? askStatement(listed, elements, database)
                                     : readThrough(records, timeCount, database);
}

bool DuplicateCheck::askStatement(const std::vector<ImportRecord>& records, std::size_t elements,
                                  Database& database) {
    std::string sql(selectTimes);
    sql += "UTC IN (";
    sql += utcList(records, elements);
    sql += rules_.duplicateTail;
    if (database.slsSel(sql) != 0)
        return false;
    const ResultSet& answer = answers_.emplace_back(database.takeResult());
    for (std::size_t row = 0; row < answer.rowCount(); ++row)
        noteStored(times_.try_emplace(answer.cell(row, 0), false).first->first);
    return true;
}

bool DuplicateCheck::readThrough(const RecordPass& records, std::size_t timeCount,
                                 Database& database) {
    bool empty = true;
    const auto notEmpty = [&empty](const CurrentRow&) { return empty = false; };
    if (database.slsEach("select 1 from Events limit 1", notEmpty) != 0)
        return false;
    if (empty)
        return true;

    times_.reserve(timeCount);
    records([this](const ImportRecord& record) {
        if (comparesBytes(record.UTC))
            times_.try_emplace(record.UTC, false);
        return true;
    });
    // Without the grouping, which would sort all rows.
    std::string sql(selectTimes);
    sql += "(typeof(UTC) = 'text'";
    sql += rules_.duplicateTail.substr(0, rules_.duplicateTail.rfind(" group by "));
    const auto note = [this](const CurrentRow& row) {
        noteStored(row.text(1));
        return true;
    };
    return database.slsEach(sql, note) == 0 && askForOthers(records, database);
}

bool DuplicateCheck::askForOthers(const RecordPass& records, Database& database) {
    std::vector<ImportRecord> others;
    bool asked = true;
    const auto ask = [&] {
        asked = others.empty() || askStatement(others, others.size(), database);
        others.clear();
    };
    records([&](const ImportRecord& record) {
        if (comparesBytes(record.UTC))
            return true;
        others.push_back(record);
        others.back().element = others.size() - 1; // no empty items between them
        if (others.size() == usualList)
            ask();
        return asked;
    });
    if (asked)
        ask();
    return asked;
}

void DuplicateCheck::noteStored(std::string_view utc) {
    const auto found = times_.find(utc);
    if (found == times_.end() || found->second)
        return;
    found->second = true;
    ++stored_;
}

bool DuplicateCheck::isDuplicate(const ImportRecord& record) {
    if (stored_ == 0)
        return false;
    if (rules_.storesHoles && record.UTC.empty()) {
        stored_ = 0;
        return true;
    }
    const auto found = times_.find(record.UTC);
    if (found == times_.end() || !found->second)
        return false;
    if (!rules_.marksAllEqual) {
        found->second = false;
        --stored_;
    }
    return true;
}

} // namespace tremor
