#pragma once

#include "database/database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

// What the tests of the database share.
namespace tremor::testing {

// All cells of a query, row by row.
inline std::vector<std::vector<std::string>> rowsOf(Database& database, const std::string& sql) {
    EXPECT_EQ(database.slsSel(sql), 0) << sql << ": " << database.slGetError();
    std::vector<std::vector<std::string>> rows;
    while (database.slsGetRow()) {
        rows.emplace_back();
        for (int column = 1; column <= database.slGetColumnCount(); ++column)
            rows.back().push_back(database.slsFX(column));
    }
    return rows;
}

// The first cell of a query; "no row" without a row.
inline std::string valueOf(Database& database, const std::string& sql) {
    const auto rows = rowsOf(database, sql);
    return rows.empty() ? "no row" : rows.front().front();
}

// Another program on the same file: SQLite as it comes.
class ForeignConnection {
  public:
    explicit ForeignConnection(const std::string& path) {
        EXPECT_EQ(sqlite3_open(path.c_str(), &handle_), SQLITE_OK);
    }
    ~ForeignConnection() { sqlite3_close(handle_); }
    ForeignConnection(const ForeignConnection&) = delete;
    ForeignConnection& operator=(const ForeignConnection&) = delete;

    void run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sql << ": " << sqlite3_errmsg(handle_);
    }

  private:
    sqlite3* handle_ = nullptr;
};

} // namespace tremor::testing
