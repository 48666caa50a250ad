#pragma once

#include "database/file_identity.h"
#include "database/statement_handle.h"

#include <chrono>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3;

namespace tremor {

enum class OpenMode { Existing, Create, ReadOnly };

// A hardened SQLite connection to one file, the waiting that goes with it, and its last error.
//
// The file may come from anywhere: other files cannot be attached, extensions cannot be loaded,
// functions that a schema should not reach are out of its reach, and damaged pages are noticed as
// they are read. The file is never mapped into memory, because a catalogue that somebody
// overwrites in place would then end the program with a bus error.
class SqliteConnection {
  public:
    explicit SqliteConnection(std::chrono::milliseconds busyTimeout) : busyTimeout_(busyTimeout) {}
    ~SqliteConnection() { close(); }
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    // Called about every 30 ms inside `run`. Must not throw.
    void setBusyCallback(std::function<void()> callback) { callback_ = std::move(callback); }

    // Runs work that uses SQLite and returns 0 or an error number, and keeps that number and its
    // text. While it runs, a second `run` does nothing and fails.
    template <class Work>
    int run(Work&& work) {
        if (running_)
            return fail(misuse, "a statement is still running");
        start();
        int code = 0;
        try {
            code = work();
        } catch (const std::bad_alloc&) {
            code = outOfMemory;
        }
        finish(code);
        return code;
    }

    // Makes the running statement end with SQLITE_INTERRUPT; to be called by the busy callback.
    void interrupt() { interrupted_ = running_; }

    // Everything from here to `fail` belongs inside `run`.

    // 0 or the error number; after an error nothing is open. The path is a plain path whatever it
    // looks like (no URI, no ":memory:"). Whatever was open is closed first.
    int open(std::string_view path, OpenMode mode);

    // Rolls an open transaction back. Statements that are still around fail from now on.
    void close();

    // Compiles exactly one statement; blanks and ";" may follow it. An empty handle after an
    // error, and with code 0 for a text without a statement.
    StatementHandle prepare(std::string_view sql, bool keptForLong, int& code);

    // Sets the last error, for a failure that SQLite knows nothing of. Returns the number.
    int fail(int code, std::string message);

    // True when the connection was opened under this path and the path still leads to the same
    // file (device and inode).
    bool isOpenOn(std::string_view path) const;

    bool running() const { return running_; }
    sqlite3* handle() const { return handle_; }
    const std::string& path() const { return path_; }

    // "0" or "<number> <message>", and the number alone.
    std::string errorText() const;
    int errorNumber() const { return errorCode_; }

  private:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr int misuse = 21;     // SQLITE_MISUSE
    static constexpr int outOfMemory = 7; // SQLITE_NOMEM

    static int onBusy(void* self, int attempts) noexcept;
    static int onProgress(void* self) noexcept;
    static int authorize(void* self, int action, const char* first, const char* second,
                         const char* database, const char* trigger) noexcept;

    void start();
    void finish(int code);
    void harden();
    void callBackWhenDue(Time now);

    std::chrono::milliseconds busyTimeout_;
    std::function<void()> callback_;
    sqlite3* handle_ = nullptr;
    std::string path_;
    std::optional<FileIdentity> file_;
    int errorCode_ = 0;
    std::string errorMessage_;
    bool running_ = false;
    bool interrupted_ = false;
    bool preparing_ = false;
    Time lastCallback_;
    std::optional<Time> waitingSince_;
};

} // namespace tremor
