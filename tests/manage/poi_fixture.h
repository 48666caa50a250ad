#pragma once

#include "database/database.h"
#include "database/database_support.h"
#include "manage/poi_manager.h"
#include "support/fakes.h"

#include <string>
#include <vector>

namespace tremor::testing {

// A catalogue with the table of towns as the program makes it, and three towns with the row ids 1,
// 2 and 7.
struct PoiHarness {
    PoiHarness() {
        EXPECT_EQ(catalogue.slsOpen(path, "C"), 0);
        run("CREATE TABLE Cities ('Name' TEXT NOT NULL , 'Latitude' TEXT, 'Longitude' TEXT, "
            "'Zone' TEXT)");
        run("insert into Cities(rowid, Name, Latitude, Longitude, Zone) values "
            "(1, 'Roma', '41.9', '12.5', 'IT'), (2, 'Forl\xC3\xAC', '44.2', '12.0', 'IT'), "
            "(7, 'Roccaraso', '41.8', '14.1', 'IT')");
    }

    void run(const std::string& sql) {
        EXPECT_EQ(catalogue.slsExe(sql), 0) << catalogue.slGetError();
    }
    std::string value(const std::string& sql) { return valueOf(catalogue, sql); }
    void addTowns(std::size_t count) {
        run("with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
            std::to_string(count) +
            ") insert into Cities(Name, Latitude, Longitude, Zone) "
            "select 'Town ' || i, '42.5', '13.5', 'FR' from n");
    }
    // The town of a row id, without the id.
    std::vector<std::string> town(const std::string& rowid) {
        const auto rows = rowsOf(
            catalogue, "select Name, Latitude, Longitude, Zone from Cities where rowid = " + rowid);
        return rows.empty() ? std::vector<std::string>{} : rows.front();
    }
    void expectError(const std::string& text) {
        prompts.expectBox(text, "Error..", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }
    // From here on the file can be read only.
    void protect() {
        catalogue.slClose();
        EXPECT_EQ(catalogue.slsOpen(path, "R"), 0);
    }

    TemporaryFolder folder;
    const std::string path = folder.file("catalogue.sqlite");
    Database catalogue;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
    PoiManager manager{catalogue, prompts, harness.errors};
};

} // namespace tremor::testing
