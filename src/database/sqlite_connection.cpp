#include "database/sqlite_connection.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <limits>
#include <thread>

namespace tremor {

namespace {

using namespace std::chrono_literals;

constexpr auto callbackInterval = 30ms;
constexpr auto busyPause = 5ms;

// About half a millisecond of work between two looks at the clock: more often costs noticeable
// time.
constexpr int instructionsBetweenTicks = 20000;

// Code that ends with the upper halves of the AVX registers in use, as that of window libraries
// does now and then, slows all SSE code down until somebody clears them; SQLite's LIKE then takes
// more than twice as long (Intel 64 and IA-32 Optimization Reference Manual, "Mixing AVX code with
// SSE code").
#if defined(__x86_64__)
__attribute__((target("avx"))) void clearUpperRegisters() {
    __builtin_ia32_vzeroupper();
}

void leaveAvx() {
    if (__builtin_cpu_supports("avx"))
        clearUpperRegisters();
}
#else
void leaveAvx() {}
#endif

} // namespace

void FinalizeStatement::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

int SqliteConnection::open(std::string_view path, OpenMode mode) {
    std::string name(path); // `path` may be our own, which close() clears
    close();
    if (name.empty() || name.find('\0') != std::string::npos)
        return fail(SQLITE_CANTOPEN, "no valid file name");
    // SQLite gives some names a meaning of their own, but none that begins with "/" or "./".
    const std::string plainPath = name.front() == '/' ? name : "./" + name;
    const int flags = SQLITE_OPEN_NOMUTEX |
                      (mode == OpenMode::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) |
                      (mode == OpenMode::Create ? SQLITE_OPEN_CREATE : 0);
    const int code = sqlite3_open_v2(plainPath.c_str(), &handle_, flags, nullptr);
    if (code != SQLITE_OK) {
        fail(code, handle_ != nullptr ? sqlite3_errmsg(handle_) : sqlite3_errstr(code));
        close();
        return code;
    }
    path_ = std::move(name);
    file_ = identityOf(path_);
    harden();
    return SQLITE_OK;
}

void SqliteConnection::harden() {
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_exec(handle_, "PRAGMA cell_size_check = ON", nullptr, nullptr, nullptr);
    sqlite3_set_authorizer(handle_, authorize, this);
    sqlite3_busy_handler(handle_, onBusy, this);
    sqlite3_progress_handler(handle_, instructionsBetweenTicks, onProgress, this);
}

void SqliteConnection::close() {
    if (handle_ == nullptr)
        return;
    sqlite3_busy_handler(handle_, nullptr, nullptr);
    sqlite3_progress_handler(handle_, 0, nullptr, nullptr);
    sqlite3_set_authorizer(handle_, nullptr, nullptr);
    // A statement that somebody still holds keeps the connection half alive: nothing of it may
    // keep a lock.
    sqlite3_stmt* statement = nullptr;
    while ((statement = sqlite3_next_stmt(handle_, statement)) != nullptr)
        sqlite3_reset(statement);
    if (sqlite3_get_autocommit(handle_) == 0)
        sqlite3_exec(handle_, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
    path_.clear();
    file_.reset();
}

StatementHandle SqliteConnection::prepare(std::string_view sql, bool keptForLong, int& code) {
    if (handle_ == nullptr) {
        code = fail(SQLITE_MISUSE, "no database is open");
        return {};
    }
    if (sql.find('\0') != std::string_view::npos) {
        code = fail(SQLITE_ERROR, "the statement holds a zero byte");
        return {};
    }
    if (sql.size() > std::numeric_limits<int>::max()) {
        code = fail(SQLITE_TOOBIG, sqlite3_errstr(SQLITE_TOOBIG));
        return {};
    }
    sqlite3_stmt* compiled = nullptr;
    const char* tail = nullptr;
    preparing_ = true;
    code = sqlite3_prepare_v3(handle_, sql.data(), static_cast<int>(sql.size()),
                              keptForLong ? SQLITE_PREPARE_PERSISTENT : 0, &compiled, &tail);
    preparing_ = false;
    StatementHandle statement(compiled);
    if (code != SQLITE_OK)
        return {};
    const auto rest = sql.substr(static_cast<std::size_t>(tail - sql.data()));
    if (rest.find_first_not_of(" ;") != std::string_view::npos) {
        code = fail(SQLITE_ERROR, "more than one statement in a call");
        return {};
    }
    return statement;
}

bool SqliteConnection::isOpenOn(std::string_view path) const {
    return handle_ != nullptr && path == path_ && file_ && identityOf(path_) == file_;
}

void SqliteConnection::start() {
    leaveAvx();
    running_ = true;
    interrupted_ = false;
    errorCode_ = SQLITE_OK;
    errorMessage_.clear();
    lastCallback_ = std::chrono::steady_clock::now();
    waitingSince_.reset();
}

void SqliteConnection::finish(int code) {
    running_ = false;
    if (code != SQLITE_OK && code == errorCode_)
        return; // with a text of our own
    errorCode_ = code;
    errorMessage_.clear();
    if (code != SQLITE_OK)
        errorMessage_ = handle_ != nullptr && sqlite3_errcode(handle_) == code
                            ? sqlite3_errmsg(handle_)
                            : sqlite3_errstr(code);
}

int SqliteConnection::fail(int code, std::string message) {
    errorCode_ = code;
    errorMessage_ = std::move(message);
    return code;
}

std::string SqliteConnection::errorText() const {
    return errorCode_ == SQLITE_OK ? "0" : fmt::format("{} {}", errorCode_, errorMessage_);
}

void SqliteConnection::callBackWhenDue(Time now) {
    if (!callback_ || now - lastCallback_ < callbackInterval)
        return;
    callback_();
    lastCallback_ = std::chrono::steady_clock::now();
}

int SqliteConnection::onBusy(void* self, int /*attempts*/) noexcept {
    auto& connection = *static_cast<SqliteConnection*>(self);
    const Time now = std::chrono::steady_clock::now();
    if (!connection.waitingSince_)
        connection.waitingSince_ = now;
    if (now - *connection.waitingSince_ >= connection.busyTimeout_)
        return 0;
    connection.callBackWhenDue(now);
    if (connection.interrupted_)
        return 0;
    std::this_thread::sleep_for(busyPause);
    return 1;
}

int SqliteConnection::onProgress(void* self) noexcept {
    auto& connection = *static_cast<SqliteConnection*>(self);
    connection.callBackWhenDue(std::chrono::steady_clock::now());
    return connection.interrupted_ ? 1 : 0;
}

// VACUUM attaches a nameless private file, not while its text is compiled but when it runs.
int SqliteConnection::authorize(void* self, int action, const char* first, const char* /*second*/,
                                const char* /*database*/, const char* /*trigger*/) noexcept {
    if (action == SQLITE_DETACH)
        return SQLITE_DENY;
    if (action != SQLITE_ATTACH)
        return SQLITE_OK;
    const bool nameless = first != nullptr && *first == '\0';
    return nameless && !static_cast<SqliteConnection*>(self)->preparing_ ? SQLITE_OK : SQLITE_DENY;
}

} // namespace tremor
