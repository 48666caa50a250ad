#pragma once

#include "database/database.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// How an import writes its rows: one transaction, one prepared statement, a refused row lost alone.
namespace tremor {

// A transaction. Rolled back unless committed, so that neither an error nor an exception
// leaves half an import behind.
class Transaction {
  public:
    explicit Transaction(Database& database);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    bool isOpen() const { return open_; }

    // False when the file does not take it (slGetError tells why); it is rolled back at the end.
    bool commit();

  private:
    Database& database_;
    bool open_;
};

// Runs one statement many times, with values that are stored as if they had been pasted between
// apostrophes. A row that would break the pasted statement or that the catalogue refuses is lost
// alone.
class RowWriter {
  public:
    // `sql` has a "?" for each value.
    RowWriter(Database& database, std::string_view sql);

    // False when the statement itself is wrong (slGetError tells why).
    bool isReady() const { return static_cast<bool>(statement_); }

    // False when not the row but the whole transaction has failed (locked file, full disk); then
    // it is to be given up.
    bool write(std::initializer_list<std::string_view> values);

    std::size_t lost() const { return lost_; }
    const std::string& lostReason() const { return lostReason_; } // of the first lost row

  private:
    void lose(std::string reason);

    Database& database_;
    Statement statement_;
    std::vector<std::string> pasted_; // one row's values
    std::vector<std::string_view> places_;
    std::size_t lost_ = 0;
    std::string lostReason_;
};

} // namespace tremor
