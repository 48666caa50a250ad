#include "database/database_errors.h"

#include "core/error_report.h"

#include <sqlite3.h>

namespace tremor {

namespace {

constexpr int primaryCode = 0xff; // extended codes keep the primary one in the low byte

ErrorNumber errorNumberOf(int result) {
    switch (result & primaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PERM:
    case SQLITE_READONLY:
        return ErrorNumber::PermissionDenied;
    case SQLITE_FULL:
        return ErrorNumber::DiskFull;
    default:
        return ErrorNumber::UserDefined;
    }
}

} // namespace

bool refusesTheRowOnly(int error) {
    switch (error & primaryCode) {
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
    case SQLITE_TOOBIG:
    case SQLITE_RANGE:
        return true;
    default:
        return false;
    }
}

void raiseUnlessDone(const Database& database, int result) {
    if (result != SQLITE_OK)
        throw RuntimeError(errorNumberOf(result), database.slGetError());
}

} // namespace tremor
