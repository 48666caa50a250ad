#include "database/staging_text.h"

#include "database/database_errors.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tremor {

namespace {

constexpr std::array<std::string_view, 6> keptTables = {"Cities",    "Comuni", "Events",
                                                        "Workspace", "Search", "TelegramChats"};
constexpr std::string_view endOfTable = "-----";
constexpr std::string_view quotedNull = "'null'"; // a column that is named by a keyword
constexpr std::size_t rowsBetweenRepaints = 1000;

bool isKeptTable(std::string_view name) {
    return std::ranges::find(keptTables, name) != keptTables.end();
}

bool has(std::string_view text, char c) {
    return text.find(c) != std::string_view::npos;
}

void query(Database& database, const std::string& sql) {
    raiseUnlessDone(database, database.slsSel(sql));
}

// The names are compared before any statement is made of them: a file may call its tables anything.
std::vector<std::string> tablesWithRows(Database& database) {
    std::vector<std::string> names;
    query(database, "select name FROM sqlite_master WHERE type='table'");
    while (database.slsGetRow()) {
        std::string name = database.slsFX(1);
        if (isKeptTable(name))
            names.push_back(std::move(name));
    }
    std::erase_if(names, [&](const std::string& name) {
        query(database, "select count(*) from " + name);
        return !database.slsGetRow() || database.slsFX(1) == "0";
    });
    return names;
}

std::string columnLine(Database& database, const std::string& table) {
    query(database, fmt::format("pragma table_info({})", table));
    std::string line;
    while (database.slsGetRow()) {
        const std::string name = database.slFN("name");
        if (!line.empty())
            line += ',';
        line += name == "null" ? quotedNull : name;
    }
    return line;
}

void addRow(StringBuilder& text, const ResultSet& rows, std::size_t row) {
    for (std::size_t column = 0; column < rows.columnCount(); ++column) {
        text.Add(column == 0 ? "'" : ",'");
        text.Add(rows.cell(row, column));
        text.Add("'");
    }
    text.Add("\n");
}

void addTable(StagingText& staging, Database& database, const std::string& table,
              const RepaintWindows& repaint) {
    StringBuilder& text = staging.text;
    text.Add(table + "\n");
    text.Add(columnLine(database, table) + "\n");
    query(database, "select * from " + table);
    const ResultSet rows = database.takeResult();
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        if (row % rowsBetweenRepaints == 0)
            repaint();
        addRow(text, rows, row);
    }
    staging.rows += rows.rowCount();
    text.Add(fmt::format("{}\n", endOfTable));
}

// Reads 'a','b''c' as SQLite reads a list of text literals; false for anything else.
bool readTextLiterals(std::string_view list, std::vector<std::string>& values) {
    std::size_t count = 0;
    std::size_t i = 0;
    for (;;) {
        if (i == list.size() || list[i] != '\'')
            return false;
        if (count == values.size())
            values.emplace_back();
        std::string& value = values[count++];
        value.clear();
        for (++i;; i += 2) {
            const std::size_t apostrophe = list.find('\'', i);
            if (apostrophe == std::string_view::npos)
                return false;
            value += list.substr(i, apostrophe - i);
            i = apostrophe;
            if (i + 1 == list.size() || list[i + 1] != '\'')
                break;
            value += '\'';
        }
        if (++i == list.size()) {
            values.resize(count);
            return true;
        }
        if (list[i++] != ',')
            return false;
    }
}

// Takes the lines of a staging text one after another.
class StagingLoader {
  public:
    explicit StagingLoader(Database& database) : database_(database) {}

    void take(std::string_view line) {
        const bool comma = has(line, ',');
        const bool apostrophe = has(line, '\'');
        if (line == endOfTable)
            setTable({});
        else if (!comma && !apostrophe)
            setTable(line);
        else if (!apostrophe || line.find(quotedNull) != std::string_view::npos)
            setColumns(line);
        else
            insert(line);
    }

    LoadOutcome outcome() && { return std::move(outcome_); }

  private:
    void setTable(std::string_view table) {
        table_ = table;
        setColumns({});
    }
    void setColumns(std::string_view columns) {
        columns_ = columns;
        statement_ = {};
        preparedFor_ = 0;
    }

    void insert(std::string_view row) {
        if (has(row, '\0') || !readTextLiterals(row, values_))
            return refuse("a value holds an apostrophe, a line feed or a zero byte");
        // The texts of the statement may come from a value. Only the known tables are written to,
        // and without a parenthesis nothing leaves the list of columns.
        if (!isKeptTable(table_) || has(columns_, ')'))
            return refuse("the lines in front of it name no table and columns of a catalogue");
        if (values_.size() != preparedFor_)
            prepare();
        if (!statement_)
            return refuse(prepareError_);
        bound_.assign(values_.begin(), values_.end());
        const int result = database_.execute(statement_, bound_);
        if (result != SQLITE_OK) {
            if (!refusesTheRowOnly(result))
                raiseUnlessDone(database_, result);
            return refuse(database_.slGetError());
        }
        ++outcome_.stored;
    }

    void prepare() {
        std::string places = "?";
        for (std::size_t i = 1; i < values_.size(); ++i)
            places += ",?";
        statement_ = database_.prepare(
            fmt::format("INSERT INTO {}({}) VALUES ({})", table_, columns_, places));
        preparedFor_ = values_.size();
        if (statement_)
            return;
        // SQLITE_ERROR: no such column, or another number of values than of columns.
        if (database_.errorNumber() != SQLITE_ERROR && !refusesTheRowOnly(database_.errorNumber()))
            raiseUnlessDone(database_, database_.errorNumber());
        prepareError_ = database_.slGetError();
    }

    void refuse(const std::string& reason) {
        if (outcome_.firstRefusal.empty())
            outcome_.firstRefusal = reason;
    }

    Database& database_;
    std::string_view table_;
    std::string_view columns_;
    Statement statement_;
    std::size_t preparedFor_ = 0; // number of values; 0 for none yet
    std::string prepareError_;    // when there is no statement for that number
    std::vector<std::string> values_;
    std::vector<std::string_view> bound_;
    LoadOutcome outcome_;
};

} // namespace

StagingText stagingText(Database& database, const RepaintWindows& repaint) {
    StagingText staging;
    for (const std::string& table : tablesWithRows(database))
        addTable(staging, database, table, repaint);
    return staging;
}

LoadOutcome loadStagingText(Database& database, std::string_view text,
                            const RepaintWindows& repaint) {
    StagingLoader loader(database);
    std::size_t lines = 0;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        loader.take(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (++lines % rowsBetweenRepaints == 0)
            repaint();
    }
    return std::move(loader).outcome();
}

} // namespace tremor
