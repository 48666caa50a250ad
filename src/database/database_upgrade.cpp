#include "database/database_upgrade.h"

#include "core/descriptor.h"
#include "core/files.h"
#include "core/version.h"
#include "database/catalogue_copy.h"
#include "database/database_errors.h"
#include "database/file_holders.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Module - Database";

// Closes the database at the end of a block, and with it ends any open transaction.
class ClosedAtTheEnd {
  public:
    explicit ClosedAtTheEnd(Database& database) : database_(database) {}
    ~ClosedAtTheEnd() {
        database_.slClose();
        database_.slDisconnect();
    }
    ClosedAtTheEnd(const ClosedAtTheEnd&) = delete;
    ClosedAtTheEnd& operator=(const ClosedAtTheEnd&) = delete;

  private:
    Database& database_;
};

void deleteFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0)
        raiseWriteError(errno);
}

} // namespace

CatalogueUpgrade::CatalogueUpgrade(Database& database, const AppSettings& settings,
                                   const Session& session, Clock& clock, Log& log,
                                   ErrorReport& errors, CreateCatalogue createCatalogue)
    : database_(database),
      settings_(settings),
      session_(session),
      log_(log),
      errors_(errors),
      createCatalogue_(std::move(createCatalogue)),
      repaint_([&clock] { clock.repaint(); }) {}

bool CatalogueUpgrade::upgradeDB() {
    ProcedureTrace trace(errors_, module, "upgradeDB");
    const std::string path = settings_.Path;
    SetAside old;
    try {
        old = setAside(path);
    } catch (const std::exception& error) {
        log_.addLogToList(fmt::format("Database {} was not upgraded and is unchanged: {}",
                                      session_.DatabaseName, error.what()));
        return false;
    }
    return fillNewFile(path, old);
}

CatalogueUpgrade::SetAside CatalogueUpgrade::setAside(const std::string& path) {
    // Closing any descriptor of a file gives up every lock that the process has on it, SQLite's
    // too (man 2 fcntl). So the file is opened before it is locked and closed last.
    std::optional<Descriptor> file;
    const ClosedAtTheEnd closed(database_);
    insist(path, [&] {
        if (!file.emplace(::open(path.c_str(), O_RDONLY | O_CLOEXEC)).isOpen())
            raiseWriteError(errno);
    });
    insist(path, [&] { lockForOurselves(path); });
    SetAside old;
    old.staging = stagingText(database_, repaint_);
    old.backup = freeBackupName(path);
    insist(path, [&] { copyWholeFile(*file, old.backup, repaint_); });
    repaint_();
    insist(path, [&] { deleteFile(path); });
    return old;
}

// From here to the end of the transaction nobody else reads or writes the file, and all of its rows
// stand in the file itself.
void CatalogueUpgrade::lockForOurselves(const std::string& path) {
    if (::euidaccess(path.c_str(), W_OK) != 0)
        raiseWriteError(errno);
    // A write-ahead log holds rows beside the file; leaving that mode brings them in.
    raiseUnlessDone(database_, database_.slsSel("pragma journal_mode = delete"));
    if (!database_.slsGetRow() || database_.slsFX(1) != "delete")
        throw RuntimeError(ErrorNumber::PermissionDenied);
    raiseUnlessDone(database_, database_.slsExe("BEGIN EXCLUSIVE"));
}

// Runs a statement that needs the file for itself, and asks when somebody else holds it. Giving up
// raises the error: going on without the lock or the copy could lose the catalogue.
template <class Statement>
void CatalogueUpgrade::insist(const std::string& path, Statement&& statement) {
    for (;;) {
        try {
            statement();
            return;
        } catch (const RuntimeError& error) {
            if (error.number() != ErrorNumber::PermissionDenied ||
                askForTheFile(path) != ErrorAnswer::Retry)
                throw;
        }
    }
}

ErrorAnswer CatalogueUpgrade::askForTheFile(const std::string& path) {
    std::int32_t status = 0;
    const std::string programs = ListRunningPrograms(status, path);
    return errors_.ask(programTitle, status != 1 && !programs.empty()
                                         ? "Please close these programs :\r\n" + programs
                                         : "Please close all process which use the Database.");
}

bool CatalogueUpgrade::fillNewFile(const std::string& path, const SetAside& old) {
    repaint_();
    const bool unoccupied = !PathExists(path);
    try {
        create(path, old.backup);
        raiseUnlessDone(database_, database_.slsOpen(path, ""));
        raiseUnlessDone(database_, database_.slsExe("BEGIN TRANSACTION;"));
        const LoadOutcome outcome = loadStagingText(database_, old.staging.text.GetStr(), repaint_);
        raiseUnlessDone(database_, database_.slsExe("COMMIT;"));
        database_.slsExe("VACUUM;"); // needs twice the room; without it nothing is lost
        reportLostRows(old, outcome);
        return true;
    } catch (const std::exception& error) {
        database_.slClose();
        // A file that somebody else has put there meanwhile stays.
        const std::string whereabouts =
            unoccupied ? putBack(path, old.backup) : "The old one is complete in " + old.backup;
        log_.addLogToList(fmt::format("Database {} was not upgraded: {}\r\n{}",
                                      session_.DatabaseName, error.what(), whereabouts));
        return false;
    }
}

void CatalogueUpgrade::create(const std::string& path, const std::string& backup) {
    if (!createCatalogue_(session_.DatabaseName, path))
        throw RuntimeError(ErrorNumber::UserDefined, "the new file could not be made");
    // Who may read the old catalogue may read the new one, and nobody else.
    std::error_code ignored;
    std::filesystem::permissions(path, std::filesystem::status(backup, ignored).permissions(),
                                 ignored);
    repaint_();
}

void CatalogueUpgrade::reportLostRows(const SetAside& old, const LoadOutcome& outcome) {
    const std::size_t rows = old.staging.rows;
    const std::size_t lost = rows - std::min(rows, outcome.stored);
    if (lost == 0)
        return;
    const std::string_view reason = outcome.firstRefusal.empty()
                                        ? "a value \"null\" was taken for the name of a column"
                                        : std::string_view(outcome.firstRefusal);
    log_.addLogToList(fmt::format("{} of {} rows could not be carried over: {}\r\nThey stand in {}",
                                  lost, rows, reason, old.backup));
}

// Replaces the unfinished new file by a copy of the backup, so that the next opening finds the old
// catalogue and not an empty one. Gives the line that tells where it stands.
std::string CatalogueUpgrade::putBack(const std::string& path, const std::string& backup) {
    try {
        ::unlink(path.c_str()); // first: its room on the disk may be needed
        ::unlink((path + "-journal").c_str());
        const Descriptor file(::open(backup.c_str(), O_RDONLY | O_CLOEXEC));
        if (!file.isOpen())
            raiseWriteError(errno);
        copyWholeFile(file, path, repaint_);
        return "The old one is back in its place, and complete in " + backup;
    } catch (const std::exception& error) {
        return fmt::format("The old one is complete in {}, but could not be put back: {}", backup,
                           error.what());
    }
}

} // namespace tremor
