#pragma once

#include <memory>

struct sqlite3_stmt;

namespace tremor {

struct FinalizeStatement {
    void operator()(sqlite3_stmt* statement) const;
};

// Owns a compiled statement of SQLite.
using StatementHandle = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

} // namespace tremor
