#include "database/database.h"

#include "database/sqlite_connection.h"

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <exception>
#include <utility>

namespace tremor {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalInAnyCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, {}, lower, lower);
}

std::string_view columnText(sqlite3_stmt* statement, int column) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    if (text == nullptr)
        return "";
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

// Runs a statement to its end, past any rows.
int runToEnd(sqlite3_stmt* statement) {
    int code = SQLITE_ROW;
    while (code == SQLITE_ROW)
        code = sqlite3_step(statement);
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

} // namespace

struct Database::Impl {
    struct Set {
        ResultSet rows;
        std::size_t next = 0; // the row that slsGetRow steps to
        bool onRow = false;   // the row before `next` is the current one
    };

    // The set of that number, unless there is none or a statement is running.
    Set* set(int number) {
        if (connection.running() || number < 0 || number >= static_cast<int>(sets.size()))
            return nullptr;
        return &sets[static_cast<std::size_t>(number)];
    }

    int query(std::string_view sql, ResultSet& rows);
    int readRows(sqlite3_stmt* statement, ResultSet& rows);

    void close() {
        sets = {};
        connection.close();
    }

    SqliteConnection connection{std::chrono::milliseconds(busyTimeoutMilliseconds)};
    std::array<Set, 16> sets;
};

int Database::Impl::query(std::string_view sql, ResultSet& rows) {
    int code = SQLITE_OK;
    const StatementHandle statement = connection.prepare(sql, false, code);
    if (!statement)
        return code;
    const int columns = sqlite3_column_count(statement.get());
    if (columns == 0)
        return runToEnd(statement.get());
    for (int column = 0; column < columns; ++column) {
        const char* name = sqlite3_column_name(statement.get(), column);
        rows.names_.emplace_back(name != nullptr ? name : "");
    }
    return readRows(statement.get(), rows);
}

int Database::Impl::readRows(sqlite3_stmt* statement, ResultSet& rows) {
    const int columns = static_cast<int>(rows.names_.size());
    int code = sqlite3_step(statement);
    for (; code == SQLITE_ROW; code = sqlite3_step(statement)) {
        for (int column = 0; column < columns; ++column) {
            const std::string_view text = columnText(statement, column);
            if (!rows.append(text.data(), text.size()))
                return SQLITE_TOOBIG;
        }
    }
    if (code != SQLITE_DONE)
        return code;
    rows.dropSpareMemory();
    return SQLITE_OK;
}

Database::Database() : impl_(std::make_unique<Impl>()) {}
Database::~Database() = default;

void Database::setBusyCallback(std::function<void()> callback) {
    impl_->connection.setBusyCallback(std::move(callback));
}

void Database::interrupt() {
    impl_->connection.interrupt();
}

int Database::slsOpen(std::string_view path, std::string_view mods) {
    SqliteConnection& connection = impl_->connection;
    return connection.run([&] {
        if (connection.isOpenOn(path))
            return SQLITE_OK;
        impl_->sets = {};
        return connection.open(path, equalInAnyCase(mods, "C")   ? OpenMode::Create
                                     : equalInAnyCase(mods, "R") ? OpenMode::ReadOnly
                                                                 : OpenMode::Existing);
    });
}

void Database::slClose() {
    impl_->connection.run([&] {
        impl_->close();
        return SQLITE_OK;
    });
}

void Database::slDisconnect() {
    slClose();
}

bool Database::isOpen() const {
    return impl_->connection.handle() != nullptr;
}

const std::string& Database::path() const {
    return impl_->connection.path();
}

int Database::slsExe(std::string_view sql, std::string_view /*mods*/) {
    SqliteConnection& connection = impl_->connection;
    return connection.run([&] {
        int code = SQLITE_OK;
        const StatementHandle statement = connection.prepare(sql, false, code);
        return statement ? runToEnd(statement.get()) : code;
    });
}

int Database::slsSel(std::string_view sql, int set, std::string_view /*mods*/) {
    SqliteConnection& connection = impl_->connection;
    Impl::Set* target = impl_->set(set);
    return connection.run([&] {
        if (target == nullptr)
            return connection.fail(SQLITE_RANGE, "no such result set");
        *target = {};
        ResultSet rows;
        const int code = impl_->query(sql, rows);
        if (code == SQLITE_OK)
            target->rows = std::move(rows);
        return code;
    });
}

std::string_view CurrentRow::text(int column) const {
    return columnText(statement_, column - 1);
}

int Database::slsEach(std::string_view sql, const std::function<bool(const CurrentRow&)>& visit) {
    SqliteConnection& connection = impl_->connection;
    std::exception_ptr thrown;
    const int result = connection.run([&] {
        int code = SQLITE_OK;
        const StatementHandle statement = connection.prepare(sql, false, code);
        if (!statement)
            return code;
        try {
            while ((code = sqlite3_step(statement.get())) == SQLITE_ROW) {
                if (!visit(CurrentRow(statement.get())))
                    return SQLITE_OK;
            }
        } catch (...) {
            thrown = std::current_exception();
            return SQLITE_ABORT;
        }
        return code == SQLITE_DONE ? SQLITE_OK : code;
    });
    if (thrown)
        std::rethrow_exception(thrown);
    return result;
}

bool Database::slsGetRow(int set, std::string_view /*mods*/) {
    Impl::Set* source = impl_->set(set);
    if (source == nullptr)
        return false;
    source->onRow = source->next < source->rows.rowCount();
    if (source->onRow)
        ++source->next;
    return source->onRow;
}

std::string Database::slsFX(int column, std::string_view /*mods*/, int set) const {
    const Impl::Set* source = impl_->set(set);
    if (source == nullptr || !source->onRow || column < 1)
        return {};
    return std::string(source->rows.cell(source->next - 1, static_cast<std::size_t>(column - 1)));
}

std::string Database::slFN(std::string_view name, int set) const {
    const Impl::Set* source = impl_->set(set);
    if (source == nullptr)
        return {};
    const auto& names = source->rows.columnNames();
    const auto found = std::ranges::find_if(
        names, [&](const std::string& column) { return equalInAnyCase(column, name); });
    return slsFX(static_cast<int>(found - names.begin()) + 1, {}, set);
}

int Database::slGetColumnCount(int set) const {
    const Impl::Set* source = impl_->set(set);
    return source == nullptr ? 0 : static_cast<int>(source->rows.columnCount());
}

std::string Database::slGetColumnName(int column, int set) const {
    if (column < 1 || column > slGetColumnCount(set))
        return {};
    return impl_->set(set)->rows.columnNames()[static_cast<std::size_t>(column - 1)];
}

std::string Database::slGetError() const {
    return impl_->connection.errorText();
}

int Database::errorNumber() const {
    return impl_->connection.errorNumber();
}

ResultSet Database::takeResult(int set) {
    Impl::Set* source = impl_->set(set);
    return source == nullptr ? ResultSet() : std::exchange(*source, {}).rows;
}

Statement Database::prepare(std::string_view sql) {
    SqliteConnection& connection = impl_->connection;
    Statement statement;
    connection.run([&] {
        int code = SQLITE_OK;
        statement.handle_ = connection.prepare(sql, true, code);
        if (code == SQLITE_OK && !statement)
            return connection.fail(SQLITE_ERROR, "no statement in the text");
        return code;
    });
    return statement;
}

int Database::execute(Statement& statement, const std::vector<std::string_view>& values) {
    SqliteConnection& connection = impl_->connection;
    return connection.run([&] {
        sqlite3_stmt* handle = statement.handle_.get();
        if (handle == nullptr || sqlite3_db_handle(handle) != connection.handle())
            return connection.fail(SQLITE_MISUSE, "the statement belongs to no open database");
        if (sqlite3_bind_parameter_count(handle) != static_cast<int>(values.size()))
            return connection.fail(SQLITE_RANGE, "wrong number of values for the statement");
        int place = 0;
        int code = SQLITE_OK;
        for (const std::string_view value : values) {
            code = sqlite3_bind_text64(handle, ++place, value.data() == nullptr ? "" : value.data(),
                                       value.size(), SQLITE_STATIC, SQLITE_UTF8);
            if (code != SQLITE_OK)
                break;
        }
        if (code == SQLITE_OK)
            code = runToEnd(handle);
        sqlite3_reset(handle);
        sqlite3_clear_bindings(handle);
        return code;
    });
}

std::int64_t Database::changes() const {
    return isOpen() && !impl_->connection.running() ? sqlite3_changes64(impl_->connection.handle())
                                                    : 0;
}

std::optional<std::string> pastedTextValue(std::string_view value) {
    if (value.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string stored;
    stored.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\'' && (++i == value.size() || value[i] != '\''))
            return std::nullopt;
        stored += value[i];
    }
    return stored;
}

} // namespace tremor
