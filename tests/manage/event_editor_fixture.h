#pragma once

#include "database/database.h"
#include "database/database_support.h"
#include "manage/event_editor.h"
#include "support/fakes.h"

#include <string>
#include <vector>

namespace tremor::testing {

// A catalogue with the table of events as the program makes it, and two events.
struct EventEditorHarness {
    EventEditorHarness() {
        EXPECT_EQ(catalogue.slsOpen(folder.file("catalogue.sqlite"), "C"), 0);
        run("CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
            "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)");
        run("insert into Events values ('2024-01-01 00:00:00', '42.5', '13.25', '10.5', '1.5', "
            "'INGV', '')");
        run("insert into Events values ('2024-01-02 00:00:00', '43.5', '14.25', '8.5', '4.5', "
            "'USGS', '')");
    }

    void run(const std::string& sql) {
        EXPECT_EQ(catalogue.slsExe(sql), 0) << catalogue.slGetError();
    }
    std::string value(const std::string& sql) { return valueOf(catalogue, sql); }
    // The whole row of an event.
    std::vector<std::string> event(const std::string& utc) {
        const auto rows =
            rowsOf(catalogue, "select * from Events where UTC = '" + utc + "' order by rowid desc");
        return rows.empty() ? std::vector<std::string>{} : rows.front();
    }
    void expectQuestion(BoxAnswer answer) {
        prompts.expectBox(
            "If you exit now all data added/changed will be lost, do you want save them now?",
            "Warning!", BoxIcon::Exclamation, BoxButtons::YesNo, answer);
    }
    void expectError(const std::string& text) {
        prompts.expectBox(text, "Error..", BoxIcon::Critical, BoxButtons::Ok, BoxAnswer::Ok);
    }

    TemporaryFolder folder;
    Database catalogue;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
};

} // namespace tremor::testing
