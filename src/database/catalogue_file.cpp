#include "database/catalogue_file.h"

#include "core/common_text.h"
#include "core/files.h"
#include "core/version.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace tremor {

namespace {

constexpr std::string_view module = "Module - Database";

struct TableDefinition {
    std::string_view name;
    std::string_view sql;
};

// SQLite keeps these texts as they are, and a catalogue is recognised by them: every blank counts.
constexpr std::array<TableDefinition, 7> tableDefinitions = {{
    {"Cities", "CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, 'Longitude' TEXT, "
               "'Zone' TEXT)"},
    {"Comuni", "CREATE TABLE Comuni ('Comuni' TEXT, 'Latitude' TEXT, 'Longitude' TEXT)"},
    {"Events", "CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
               "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)"},
    {"Workspace", "CREATE TABLE Workspace ('Name' TEXT NOT NULL  UNIQUE , 'Latitude' REAL, "
                  "'Longitude' REAL, 'Zoom' INTEGER, 'BLat' REAL, 'BLng' REAL, 'TLat' REAL, "
                  "'TLng' REAL, 'MagMin' DOUBLE, 'MagMax' DOUBLE, 'DepthMin' REAL, "
                  "'DepthMax' REAL)"},
    {"Version", "CREATE TABLE Version (Database TEXT)"},
    {"Search", "CREATE TABLE Search ('_' INTEGER PRIMARY KEY  AUTOINCREMENT  NOT NULL  UNIQUE , "
               "'NameSearch' TEXT NOT NULL  DEFAULT CURRENT_TIMESTAMP, 'RangeDate' INTEGER NOT "
               "NULL  DEFAULT 0, 'StartDate' TEXT, 'EndDate' TEXT, 'RangeMag' INTEGER NOT NULL  "
               "DEFAULT 0, 'MinMag' DOUBLE, 'MaxMag' DOUBLE, 'RangeInMap' INTEGER NOT NULL  "
               "DEFAULT 0, 'MinLat' TEXT, 'MaxLat' TEXT, 'MinLon' TEXT, 'MaxLon' TEXT, "
               "'MethodDefinied' INTEGER NOT NULL  DEFAULT 0)"},
    {"TelegramChats", "CREATE TABLE TelegramChats ('chat_id' TEXT PRIMARY KEY  NOT NULL  UNIQUE , "
                      "'Username' TEXT)"},
}};

// The tables that already the oldest catalogues had.
constexpr std::size_t oldestTables = 4;

constexpr std::int32_t noUsableDatabase = 2; // states of controlliForm
constexpr std::int32_t databaseOpened = 4;

// The part of that index; error 9 when the text had fewer parts.
std::string_view partAt(const std::vector<std::string_view>& parts, std::size_t index) {
    if (index >= parts.size())
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return parts[index];
}

} // namespace

CatalogueFile::CatalogueFile(Database& database, AppSettings& settings, Session& session,
                             PanelControls& controls, Prompts& prompts, Log& log,
                             ErrorReport& errors, DatabaseUpgrade& upgrade,
                             std::string applicationPath)
    : database_(database),
      settings_(settings),
      session_(session),
      controls_(controls),
      prompts_(prompts),
      log_(log),
      errors_(errors),
      upgrade_(upgrade),
      applicationPath_(std::move(applicationPath)) {}

bool CatalogueFile::openDB(std::int32_t& declined) {
    ProcedureTrace trace(errors_, module, "openDB");
    database_.slSetProcessMods("E0");
    if (!FileExists(settings_.Path)) {
        prompts_.showMessageBox({"Database doesn't exist, select one in File->Open DataBase or "
                                 "create a new one",
                                 "Database error...", BoxIcon::Critical, BoxButtons::Ok});
        setControlsState(noUsableDatabase);
        return false;
    }
    database_.slSetProcessMods("E0");
    database_.slsOpen(settings_.Path, "");
    session_.DatabaseName = lastPathComponent(settings_.Path);
    showDatabaseName();

    bool outdated = false;
    std::int32_t identity = checkOldDB(outdated);
    if (identity == knownProgram)
        return openKnown(outdated, declined);
    // A file that was locked at the first look may be readable at the second.
    identity = checkOldDB(outdated);
    if (identity == knownProgram)
        return openKnown(outdated, declined);
    if (identity == noVersion && isOldDBSchema())
        return openOldest(declined);
    rejectForeignFile();
    return false;
}

bool CatalogueFile::openKnown(bool outdated, std::int32_t& declined) {
    if (outdated) {
        if (operatorWantsUpgrade())
            return upgradeAndOpen();
        declined = 1;
        refuse();
        return false;
    }
    if (!checkDBTables()) {
        controls_.setCaption(programTitleAndVersion);
        refuse();
        return false;
    }
    openSuccessfully();
    return true;
}

// A catalogue from before the Version row. Declining its upgrade leaves the panel usable, unlike
// declining that of a catalogue with a version.
bool CatalogueFile::openOldest(std::int32_t& declined) {
    if (operatorWantsUpgrade())
        return upgradeAndOpen();
    declined = 1;
    session_.DatabaseOpen = true;
    setControlsState(databaseOpened);
    return false;
}

void CatalogueFile::rejectForeignFile() {
    prompts_.showMessageBox(
        {"This is Database of another Program.", "Error...", BoxIcon::Critical, BoxButtons::Ok});
    controls_.setCaption(programTitleAndVersion);
    database_.slClose();
    database_.slDisconnect();
    refuse();
}

bool CatalogueFile::operatorWantsUpgrade() {
    return prompts_.showMessageBox(
               {"Database appear outdated, do you want upgrade it?\r\nIf you choose 'Yes' a copy "
                "of this old Database will be created on this application folder.",
                "Database outdated...", BoxIcon::None, BoxButtons::YesNo}) == BoxAnswer::Yes;
}

bool CatalogueFile::upgradeAndOpen() {
    if (!upgrade_.upgradeDB()) {
        prompts_.showMessageBox(
            {"Upgrade complete without success!", "Database", BoxIcon::Critical, BoxButtons::Ok});
        controls_.setCaption(programTitleAndVersion);
        return false;
    }
    prompts_.showMessageBox(
        {"Upgrade complete successfully!", "Database", BoxIcon::Information, BoxButtons::Ok});
    openSuccessfully();
    return true;
}

void CatalogueFile::openSuccessfully() {
    database_.slsOpen(settings_.Path, "");
    showDatabaseName();
    session_.DatabaseOpen = true;
    setControlsState(databaseOpened);
}

void CatalogueFile::refuse() {
    session_.DatabaseOpen = false;
    setControlsState(noUsableDatabase);
}

void CatalogueFile::showDatabaseName() {
    controls_.setCaption(
        fmt::format("{} - Database: {}", programTitleAndVersion, session_.DatabaseName));
}

void CatalogueFile::setControlsState(std::int32_t state) {
    controls_.controlliForm(state);
    session_.ControlsState = state;
}

std::int32_t CatalogueFile::checkOldDB(bool& outdated) {
    ProcedureTrace trace(errors_, module, "checkOldDB");
    std::string version;
    database_.slsSel("select Database from Version");
    while (database_.slsGetRow())
        version = database_.slsFX(1);
    if (version.empty())
        return noVersion;

    const std::string dotted = replaceAll(version, "_", ".");
    const std::vector<std::string_view> parts = split(dotted, '.');
    if (parts.size() == 1)
        return knownProgram;
    // The parts are digits between points, which read alike under every locale.
    const auto number = [&](std::size_t index) {
        std::int32_t value = 0;
        trace.step([&] { value = SafeToLong(partAt(parts, index), NumberLocale::point()); });
        return value;
    };
    const std::int32_t major = number(1);
    const std::int32_t minor = number(2);
    const std::int32_t revision = number(3);
    if (parts[0] != programTitle)
        return anotherProgram;
    // Each number for itself: 2.0.0 is older than 1.5.0 by its minor number.
    if (major < versionMajor || minor < versionMinor) {
        outdated = true;
        trace.leaveOnStack();
        return knownProgram;
    }
    if (revision < versionRevision)
        outdated = true;
    return knownProgram;
}

bool CatalogueFile::checkDBTables() {
    ProcedureTrace trace(errors_, module, "checkDBTables");
    bool matched = false;
    fillDBTables();
    database_.slsSel("SELECT name, sql FROM sqlite_master WHERE type='table' ORDER BY name");
    while (database_.slsGetRow()) {
        const std::string name = database_.slsFX(1);
        const auto table = std::ranges::find_if(DBTables_, [&](const TableRecord& record) {
            return record.found == 0 && record.name == name;
        });
        if (table == DBTables_.end())
            continue;
        if (replaceAll(database_.slsFX(2), "\"", "'") != table->sql) {
            log_.addLogToList("DataBase is corrupted, some functions may don't work.");
            return matched;
        }
        matched = true;
        table->found = 1;
    }

    std::string missing;
    for (const TableRecord& table : DBTables_) {
        if (table.found == 0)
            missing += table.name + " | ";
    }
    if (!missing.empty())
        log_.addLogToList("There isn't Table: " + missing + "\r\nsome functions may don't work.");
    return matched;
}

bool CatalogueFile::isOldDBSchema() {
    ProcedureTrace trace(errors_, module, "isOldDBSchema");
    database_.slsSel("SELECT sql FROM sqlite_master WHERE type='table' ORDER BY name");
    bool old = false;
    while (database_.slsGetRow()) {
        const std::string sql = database_.slsFX(1);
        old = old || std::any_of(tableDefinitions.begin(), tableDefinitions.begin() + oldestTables,
                                 [&](const TableDefinition& table) { return table.sql == sql; });
    }
    return old;
}

void CatalogueFile::fillDBTables() {
    std::ranges::transform(tableDefinitions, DBTables_.begin(), [](const TableDefinition& table) {
        return TableRecord{std::string(table.name), std::string(table.sql), 0};
    });
}

bool CatalogueFile::createDatabase(std::string_view name, std::string_view extension,
                                   std::string_view fullPath) {
    ProcedureTrace trace(errors_, module, "createDatabase");
    const std::string path = fullPath.empty()
                                 ? fmt::format("{}/{}{}", applicationPath_, name, extension)
                                 : std::string(fullPath);
    if (FileExists(path)) {
        prompts_.showMessageBox(
            {"Database already exist.", "Error...", BoxIcon::Information, BoxButtons::Ok});
        log_.addLogToList(fmt::format("Database {} already exist.", name));
        return false;
    }
    int failures = 0;
    std::string reason;
    const auto check = [&](int code) {
        if (code == 0)
            return;
        if (failures++ == 0)
            reason = database_.slGetError();
    };
    check(database_.slsOpen(path, "C"));
    for (const TableRecord& table : DBTables_)
        check(database_.slsExe(table.sql));
    check(database_.slsExe(fmt::format("INSERT INTO Version Values ('{}_{}.{}.{}')", programTitle,
                                       versionMajor, versionMinor, versionRevision)));
    database_.slClose();
    settings_.Path = path;
    log_.addLogToList(fmt::format("Database {} created.", name));
    if (failures != 0)
        log_.addLogToList(fmt::format("Database {}: {} operations failed, the first with: {}", name,
                                      failures, reason));
    return failures == 0;
}

} // namespace tremor
