#include "core/error_report.h"
#include "database/database_errors.h"
#include "database/database_support.h"
#include "support/error_of.h"
#include "support/fakes.h"

namespace tremor {
namespace {

using testing::errorOf;

TEST(RefusesTheRowOnly, HoldsForWhatTheRowItselfDoesWrong) {
    for (const int error : {SQLITE_CONSTRAINT, SQLITE_MISMATCH, SQLITE_TOOBIG, SQLITE_RANGE,
                            SQLITE_CONSTRAINT_UNIQUE})
        EXPECT_TRUE(refusesTheRowOnly(error)) << error;
    for (const int error : {SQLITE_OK, SQLITE_ERROR, SQLITE_FULL, SQLITE_IOERR, SQLITE_BUSY,
                            SQLITE_CORRUPT, SQLITE_NOMEM, SQLITE_READONLY})
        EXPECT_FALSE(refusesTheRowOnly(error)) << error;
}

TEST(RaiseUnlessDone, RaisesWhatTheResultMeans) {
    const Database database;
    EXPECT_FALSE(errorOf([&] { raiseUnlessDone(database, SQLITE_OK); }));
    for (const int error : {SQLITE_BUSY, SQLITE_LOCKED, SQLITE_PERM, SQLITE_READONLY})
        EXPECT_EQ(errorOf([&] { raiseUnlessDone(database, error); }),
                  ErrorNumber::PermissionDenied);
    EXPECT_EQ(errorOf([&] { raiseUnlessDone(database, SQLITE_FULL); }), ErrorNumber::DiskFull);
    for (const int error : {SQLITE_ERROR, SQLITE_CORRUPT, SQLITE_NOTADB, SQLITE_IOERR})
        EXPECT_EQ(errorOf([&] { raiseUnlessDone(database, error); }), ErrorNumber::UserDefined);
}

TEST(RaiseUnlessDone, GivesTheTextOfSqlite) {
    const testing::TemporaryFolder folder;
    Database database;
    ASSERT_EQ(database.slsOpen(folder.file("a.sqlite"), "C"), 0);
    try {
        raiseUnlessDone(database, database.slsExe("select * from missing"));
        ADD_FAILURE() << "no error";
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.description(), "1 no such table: missing");
    }
}

} // namespace
} // namespace tremor
