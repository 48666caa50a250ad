#include "database/row_writer.h"

#include "database/database_errors.h"

#include <optional>
#include <utility>

namespace tremor {

Transaction::Transaction(Database& database)
    : database_(database), open_(database.slsExe("BEGIN TRANSACTION;") == 0) {}

Transaction::~Transaction() {
    if (open_)
        database_.slsExe("ROLLBACK;");
}

bool Transaction::commit() {
    if (database_.slsExe("COMMIT;") != 0)
        return false;
    open_ = false;
    return true;
}

RowWriter::RowWriter(Database& database, std::string_view sql)
    : database_(database), statement_(database.prepare(sql)) {}

bool RowWriter::write(std::initializer_list<std::string_view> values) {
    pasted_.clear();
    for (const std::string_view value : values) {
        std::optional<std::string> stored = pastedTextValue(value);
        if (!stored) {
            lose("a value holds an apostrophe or a zero byte");
            return true;
        }
        pasted_.push_back(std::move(*stored));
    }
    places_.assign(pasted_.begin(), pasted_.end());
    const int error = database_.execute(statement_, places_);
    if (error == 0)
        return true;
    // Each further row would wait again for a lock.
    if (!refusesTheRowOnly(error))
        return false;
    lose(database_.slGetError());
    return true;
}

void RowWriter::lose(std::string reason) {
    if (lost_++ == 0)
        lostReason_ = std::move(reason);
}

} // namespace tremor
