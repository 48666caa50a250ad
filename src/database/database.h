#pragma once

#include "database/statement_handle.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The one open catalogue and the operations that every subsystem uses. A thin layer on SQLite's C
// API (https://www.sqlite.org/c3ref/intro.html).
namespace tremor {

// The rows of a query, as text, in compact blocks: the cells of a block one after another with an
// offset for each. NULL reads as the empty text, REAL as SQLite writes it ("10.0").
class ResultSet {
  public:
    std::size_t rowCount() const;
    std::size_t columnCount() const { return names_.size(); }
    const std::vector<std::string>& columnNames() const { return names_; }

    // The text of a cell, row and column from 0; empty outside the table. Valid while the set is.
    std::string_view cell(std::size_t row, std::size_t column) const;

    // Bytes held by the cells and their offsets.
    std::size_t memoryUse() const;

  private:
    friend class Database;
    // Blocks keep the growth of a large result from ever copying all of it.
    static constexpr std::size_t rowsPerBlock = 4096;
    struct Block {
        std::string cells;
        std::vector<std::uint32_t> ends; // end of each cell in `cells`
    };

    // Adds a cell behind the last one. False when its block would pass 4 GiB.
    bool append(const char* text, std::size_t length);
    // Gives back the memory that the last block has reserved in vain.
    void dropSpareMemory();

    std::vector<std::string> names_;
    std::vector<Block> blocks_;
};

// The row of a running query on which it stands. Valid until the query goes on.
class CurrentRow {
  public:
    // The text of a column by number (from 1), in the form that ResultSet has; empty when there is
    // no such column.
    std::string_view text(int column) const;

  private:
    friend class Database;
    explicit CurrentRow(sqlite3_stmt* statement) : statement_(statement) {}

    sqlite3_stmt* statement_;
};

// One statement, prepared once and run many times with other values.
class Statement {
  public:
    Statement() = default;
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    friend class Database;
    StatementHandle handle_;
};

// Errors of statements are returned, never raised: a failing statement does nothing, a failing
// query has no rows, and slGetError tells why.
//
// One call runs one statement: when anything but blanks and ";" stands behind it, nothing runs and
// the call fails. Attaching other files and loading extensions are refused. A file that another
// program has locked is waited for, at most `busyTimeoutMilliseconds`.
class Database {
  public:
    static constexpr int busyTimeoutMilliseconds = 5000;

    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Called about every 30 ms while a statement runs and while a locked file is waited for, so
    // that windows can repaint. It must not call back into this object: such a call fails.
    void setBusyCallback(std::function<void()> callback);

    // Ends the statement that runs, or waits for a locked file, with SQLITE_INTERRUPT. To be called
    // from the busy callback; does nothing while none runs.
    void interrupt();

    // "E0": errors are returned. The only mode there is; other texts are ignored.
    void slSetProcessMods(std::string_view /*mods*/) {}

    // Opens the file; an open one is closed first, unless it is the same path and it still is the
    // same file, which then stays open. mods "C" creates a missing file, "R" opens for reading
    // only. 0 or the error number.
    int slsOpen(std::string_view path, std::string_view mods);
    void slClose();
    void slDisconnect();
    bool isOpen() const;
    const std::string& path() const;

    // Runs a statement without rows. 0 or the error number.
    int slsExe(std::string_view sql, std::string_view mods = {});

    // Runs a query and keeps all its rows in set number `set` (0 to 15) in front of the first one.
    int slsSel(std::string_view sql, int set = 0, std::string_view mods = {});

    // Runs a query and hands over each of its rows, without keeping them, until the visitor gives
    // false. 0, also when the visitor has ended it, or the error number; rows may have been handed
    // over before an error. Meanwhile every other call on this object fails. An exception of the
    // visitor ends the query and goes on to the caller.
    int slsEach(std::string_view sql, const std::function<bool(const CurrentRow&)>& visit);

    // Steps to the next row; true while a row is there.
    bool slsGetRow(int set = 0, std::string_view mods = {});

    // Text of a column of the current row by number (from 1) or name (any case); empty when there
    // is no such column or no current row.
    std::string slsFX(int column, std::string_view mods = {}, int set = 0) const;
    std::string slFN(std::string_view name, int set = 0) const;

    int slGetColumnCount(int set = 0) const;
    std::string slGetColumnName(int column, int set = 0) const; // from 1

    // "0" when the last call succeeded, else "<number> <message>".
    std::string slGetError() const;

    // The number of that error alone; 0 when the last call succeeded.
    int errorNumber() const;

    // Takes the rows of a set away without copying them; the set is empty afterwards.
    ResultSet takeResult(int set = 0);

    // Prepares one statement with "?" places for values. An empty Statement on an error.
    Statement prepare(std::string_view sql);

    // Runs a prepared statement with these texts in its places. 0 or the error number.
    int execute(Statement& statement, const std::vector<std::string_view>& values);

    // Rows changed by the last successful insert, update or delete.
    std::int64_t changes() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

// What SQLite would store for a value that is pasted between apostrophes into a statement: each
// doubled apostrophe becomes one. Nothing when the pasted statement would fail, that is, with an
// apostrophe left over or a zero byte in it.
std::optional<std::string> pastedTextValue(std::string_view value);

} // namespace tremor
