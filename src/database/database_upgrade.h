#pragma once

#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/catalogue_file.h"
#include "database/database.h"
#include "database/staging_text.h"

#include <functional>
#include <string>
#include <string_view>

namespace tremor {

// Carries a catalogue of an older version over to the current schema. The data are read into one
// text, the file is copied aside and deleted, a new file of the same name is made, and the rows are
// written into it in one transaction.
//
// At any moment, whatever ends the program, the old catalogue is whole under its own name or under
// that of its backup. It is deleted only when the backup is on the disk and was read back.
class CatalogueUpgrade : public DatabaseUpgrade {
  public:
    // Makes an empty catalogue of the current version at `path`, where no file is; true when it is
    // complete. In the program fillDBTables and createDatabase of CatalogueFile, which in turn
    // needs an upgrade.
    using CreateCatalogue = std::function<bool(std::string_view name, const std::string& path)>;

    CatalogueUpgrade(Database& database, const AppSettings& settings, const Session& session,
                     Clock& clock, Log& log, ErrorReport& errors, CreateCatalogue createCatalogue);

    // Upgrades the open catalogue, which is settings.Path. True when the data stand in the new
    // file; the log tells how many rows found no place there. While another program holds the file
    // the operator is asked to close it: Abort ends the process, Retry tries again, Ignore gives
    // up. False after that and after any other error: the log tells why, the database is closed,
    // and the old catalogue is back under its name, or at least under that of its backup.
    bool upgradeDB() override;

  private:
    // The old catalogue under its new name and what was read from it.
    struct SetAside {
        std::string backup;
        StagingText staging;
    };

    SetAside setAside(const std::string& path);
    void lockForOurselves(const std::string& path);
    template <class Statement>
    void insist(const std::string& path, Statement&& statement);
    ErrorAnswer askForTheFile(const std::string& path);

    bool fillNewFile(const std::string& path, const SetAside& old);
    void create(const std::string& path, const std::string& backup);
    void reportLostRows(const SetAside& old, const LoadOutcome& outcome);
    std::string putBack(const std::string& path, const std::string& backup);

    Database& database_;
    const AppSettings& settings_;
    const Session& session_;
    Log& log_;
    ErrorReport& errors_;
    CreateCatalogue createCatalogue_;
    RepaintWindows repaint_;
};

} // namespace tremor
