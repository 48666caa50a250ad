#pragma once

#include "core/version.h"
#include "database/catalogue_file.h"
#include "database/database_support.h"
#include "support/fakes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>

namespace tremor::testing {

struct ScriptedUpgrade : DatabaseUpgrade {
    bool upgradeDB() override {
        ++calls;
        if (work)
            work();
        return result;
    }
    std::function<void()> work;
    bool result = false;
    int calls = 0;
};

// A catalogue file in a temporary folder, with everything that it talks to.
class CatalogueTest : public ::testing::Test {
  protected:
    // A file as createDatabase makes it, closed, named by settings.Path.
    void makeCatalogue() {
        catalogue.fillDBTables();
        catalogue.createDatabase("catalogue", ".sqlite", "");
        EXPECT_EQ(log.messages.back(), "Database catalogue created.");
        log.messages.clear();
    }
    // Changes the file named by settings.Path from outside.
    void change(const std::string& sql) { ForeignConnection(settings.Path).run(sql); }
    void setVersion(const std::string& text) {
        change("delete from Version; insert into Version values ('" + text + "')");
    }
    // A version text relative to the program's own version.
    static std::string version(int major, int minor, int revision) {
        return fmt::format("TREMORLEDGER_{}.{}.{}", versionMajor + major, versionMinor + minor,
                           versionRevision + revision);
    }
    void writeFile(const std::string& bytes) {
        settings.Path = folder.file("catalogue.sqlite");
        std::ofstream(settings.Path, std::ios::binary) << bytes;
    }

    TemporaryFolder folder;
    Database database;
    AppSettings settings;
    Session session;
    RecordingControls controls;
    RecordingLog log;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
    ScriptedUpgrade upgrade;
    CatalogueFile catalogue{database, settings,       session, controls,     prompts,
                            log,      harness.errors, upgrade, folder.path()};
};

} // namespace tremor::testing
