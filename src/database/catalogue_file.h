#pragma once

#include "core/controls.h"
#include "core/error_report.h"
#include "core/ports.h"
#include "core/session.h"
#include "core/settings.h"
#include "database/database.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace tremor {

// One table of the catalogue: its name, the statement that creates it (also the reference text of
// the schema comparison, to the letter) and whether the last comparison found it.
struct TableRecord {
    std::string name;
    std::string sql;
    std::int16_t found = 0;
};

// Rebuilds a catalogue of an older version.
class DatabaseUpgrade {
  public:
    virtual ~DatabaseUpgrade() = default;
    virtual bool upgradeDB() = 0; // true when the catalogue is now of this version
};

// Makes, identifies and opens catalogues.
class CatalogueFile {
  public:
    CatalogueFile(Database& database, AppSettings& settings, Session& session,
                  PanelControls& controls, Prompts& prompts, Log& log, ErrorReport& errors,
                  DatabaseUpgrade& upgrade, std::string applicationPath);

    // Opens the catalogue named by settings.Path and decides by its Version row and its schema
    // what may be done with it. `declined` becomes 1 when the operator refused an upgrade. True
    // when the catalogue is open and of this version.
    bool openDB(std::int32_t& declined);

    // 0 known program (`outdated` tells an older version), 1 no Version value, 2 another program.
    // Fewer than four parts in the Version text raise error 9.
    std::int32_t checkOldDB(bool& outdated);

    // Compares the schema with DBTables in name order. True when at least one table matched before
    // the first mismatch; differences and missing tables are logged.
    bool checkDBTables();

    // True when any table of the file is, to the letter, one of the four oldest ones.
    bool isOldDBSchema();

    // Sets the seven records and clears their flags.
    void fillDBTables();

    // Makes a new file with all tables and its Version row, and stores its path in settings.Path.
    // The path is `fullPath`, or application path + "/" + name + extension when that is empty. An
    // existing file is reported and left alone. The tables are those of DBTables: fillDBTables
    // comes first. Failures are logged, and nothing is undone. True when all of it succeeded.
    bool createDatabase(std::string_view name, std::string_view extension,
                        std::string_view fullPath);

    const std::array<TableRecord, 7>& DBTables() const { return DBTables_; }

  private:
    // Results of checkOldDB.
    static constexpr std::int32_t knownProgram = 0;
    static constexpr std::int32_t noVersion = 1;
    static constexpr std::int32_t anotherProgram = 2;

    bool openKnown(bool outdated, std::int32_t& declined);
    bool openOldest(std::int32_t& declined);
    void rejectForeignFile();
    bool operatorWantsUpgrade();
    bool upgradeAndOpen();
    void openSuccessfully();
    void refuse();
    void showDatabaseName();
    void setControlsState(std::int32_t state);

    Database& database_;
    AppSettings& settings_;
    Session& session_;
    PanelControls& controls_;
    Prompts& prompts_;
    Log& log_;
    ErrorReport& errors_;
    DatabaseUpgrade& upgrade_;
    std::string applicationPath_;
    std::array<TableRecord, 7> DBTables_;
};

} // namespace tremor
