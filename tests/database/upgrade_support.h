#pragma once

#include "core/files.h"
#include "core/version.h"
#include "database/catalogue_file.h"
#include "database/database_support.h"
#include "database/database_upgrade.h"
#include "support/fakes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace tremor::testing {

// The tables of a catalogue before there were chats, word for word.
inline constexpr char oldSchema[] =
    "CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, 'Longitude' TEXT, 'Zone' TEXT);"
    "CREATE TABLE Comuni ('Comuni' TEXT, 'Latitude' TEXT, 'Longitude' TEXT);"
    "CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
    "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT);"
    "CREATE TABLE Workspace ('Name' TEXT NOT NULL  UNIQUE , 'Latitude' REAL, 'Longitude' REAL, "
    "'Zoom' INTEGER, 'BLat' REAL, 'BLng' REAL, 'TLat' REAL, 'TLng' REAL, 'MagMin' DOUBLE, "
    "'MagMax' DOUBLE, 'DepthMin' REAL, 'DepthMax' REAL);"
    "CREATE TABLE Search ('_' INTEGER PRIMARY KEY  AUTOINCREMENT  NOT NULL  UNIQUE , "
    "'NameSearch' TEXT NOT NULL  DEFAULT CURRENT_TIMESTAMP, 'RangeDate' INTEGER NOT NULL  DEFAULT "
    "0, 'StartDate' TEXT, 'EndDate' TEXT, 'RangeMag' INTEGER NOT NULL  DEFAULT 0, 'MinMag' DOUBLE, "
    "'MaxMag' DOUBLE, 'RangeInMap' INTEGER NOT NULL  DEFAULT 0, 'MinLat' TEXT, 'MaxLat' TEXT, "
    "'MinLon' TEXT, 'MaxLon' TEXT, 'MethodDefinied' INTEGER NOT NULL  DEFAULT 0);"
    "CREATE TABLE Version (Database TEXT);";

inline constexpr char oldRows[] =
    "insert into Cities values ('Norcia', '42.7929', '13.0964', 'Umbria'),"
    " ('Amatrice', '42.6288', '13.2882', NULL);"
    "insert into Comuni values ('Accumoli', '42.6949', '13.2477');"
    "insert into Events values"
    " ('2009-04-06 01:32:40.400', 42.342, 13.38, 8.3, 6.1, 'INGV', NULL),"
    " ('2016-08-24 01:36:32.870', 42.7, 13.23, 10, 6, 'EMSC', NULL),"
    " ('2016-10-30 06:40:18.670', 42.83, 13.11, NULL, 6.5, NULL, 'x');"
    "insert into Workspace values"
    " ('Italy', 42, 12.5, 6, 35.5, 6.2, 47.3, 19.1, 0, 10, 0, 9999);"
    "insert into Search (NameSearch, RangeDate, StartDate, EndDate, RangeMag, MinMag, MaxMag)"
    " values ('Amatrice sequence', 1, '2016-08-24', '2017-01-31', 1, 3.5, 10);";

inline constexpr char oldVersionRow[] = "insert into Version values ('TREMORLEDGER_0.9.2');";

// The staging text of that catalogue.
inline constexpr char oldStagingText[] =
    "Cities\n"
    "Name,Latitude,Longitude,Zone\n"
    "'Norcia','42.7929','13.0964','Umbria'\n"
    "'Amatrice','42.6288','13.2882',''\n"
    "-----\n"
    "Comuni\n"
    "Comuni,Latitude,Longitude\n"
    "'Accumoli','42.6949','13.2477'\n"
    "-----\n"
    "Events\n"
    "UTC,Latitude,Longitude,Depth,Magnitude,Source,'null'\n"
    "'2009-04-06 01:32:40.400','42.342','13.38','8.3','6.1','INGV',''\n"
    "'2016-08-24 01:36:32.870','42.7','13.23','10.0','6.0','EMSC',''\n"
    "'2016-10-30 06:40:18.670','42.83','13.11','','6.5','','x'\n"
    "-----\n"
    "Workspace\n"
    "Name,Latitude,Longitude,Zoom,BLat,BLng,TLat,TLng,MagMin,MagMax,DepthMin,DepthMax\n"
    "'Italy','42.0','12.5','6','35.5','6.2','47.3','19.1','0.0','10.0','0.0','9999.0'\n"
    "-----\n"
    "Search\n"
    "_,NameSearch,RangeDate,StartDate,EndDate,RangeMag,MinMag,MaxMag,RangeInMap,MinLat,MaxLat,"
    "MinLon,MaxLon,MethodDefinied\n"
    "'1','Amatrice sequence','1','2016-08-24','2017-01-31','1','3.5','10.0','0','','','','','0'\n"
    "-----\n";

// The parts of the program that an upgrade works with, on the catalogue of that path.
struct UpgradingProgram {
    explicit UpgradingProgram(const std::string& path, Clock& clock)
        : upgrade(database, settings, session, clock, log, harness.errors,
                  [this](std::string_view name, const std::string& newPath) {
                      if (onCreate)
                          onCreate();
                      catalogue.fillDBTables();
                      const bool made = catalogue.createDatabase(name, "", newPath);
                      if (onCreated)
                          onCreated();
                      return made;
                  }),
          catalogue(database, settings, session, controls, harness.prompts, log, harness.errors,
                    upgrade, std::filesystem::path(path).parent_path()) {
        settings.Path = path;
        session.DatabaseName = lastPathComponent(path);
    }

    // Opens the catalogue, whatever it is, and upgrades it.
    bool upgradeDB() {
        database.slsOpen(settings.Path, "");
        return upgrade.upgradeDB();
    }

    Database database;
    AppSettings settings;
    Session session;
    RecordingControls controls;
    RecordingLog log;
    ErrorHarness harness;
    std::function<void()> onCreate;
    std::function<void()> onCreated;
    CatalogueUpgrade upgrade;
    CatalogueFile catalogue;
};

// An old catalogue in a temporary folder.
class UpgradeTest : public ::testing::Test {
  protected:
    UpgradeTest() {
        change(oldSchema);
        change(oldRows);
        change(oldVersionRow);
    }

    // Changes the catalogue from outside.
    void change(const std::string& sql) { ForeignConnection(path).run(sql); }

    std::string bytes() const { return readWholeFile(path); }
    static void write(const std::string& file, const std::string& text) {
        std::ofstream(file, std::ios::binary) << text;
    }
    std::vector<std::string> filesInFolder() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            names.push_back(entry.path().filename());
        std::ranges::sort(names);
        return names;
    }

    TemporaryFolder folder;
    std::string path = folder.file("catalogue.sqlite");
    std::string backup = path + "_backup";
    FakeClock clock;
};

// The same, and the program that is to upgrade it.
class DatabaseUpgradeTest : public UpgradeTest {
  protected:
    // The staging text of any catalogue: all that an upgrade carries over.
    static std::string contentsOf(const std::string& file) {
        Database database;
        EXPECT_EQ(database.slsOpen(file, ""), 0);
        EXPECT_EQ(valueOf(database, "pragma quick_check"), "ok");
        return stagingText(database, [] {}).text.GetStr();
    }
    static std::string currentVersion() {
        return fmt::format("TREMORLEDGER_{}.{}.{}", versionMajor, versionMinor, versionRevision);
    }
    void expectUnchanged(const std::string& before) {
        EXPECT_TRUE(bytes() == before);
        EXPECT_FALSE(program.database.isOpen());
    }
    void expectLogged(const std::string& part) {
        ASSERT_FALSE(log.messages.empty());
        EXPECT_NE(log.messages.back().find(part), std::string::npos) << log.messages.back();
    }

    UpgradingProgram program{path, clock};
    RecordingLog& log = program.log;
    ScriptedPrompts& prompts = program.harness.prompts;
};

} // namespace tremor::testing
