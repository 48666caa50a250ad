#pragma once

#include "core/session.h"
#include "database/database.h"
#include "manage/database_manager.h"
#include "support/fakes.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tremor::testing {

// Writes down what is to be edited; the window closes when the test says so.
class RecordingEditing : public EventEditing {
  public:
    void addEvent(std::function<void()> whenClosed) override {
        edited.emplace_back();
        close = std::move(whenClosed);
    }
    void editEvent(std::string_view utc, std::function<void()> whenClosed) override {
        edited.emplace_back(utc);
        close = std::move(whenClosed);
    }

    std::vector<std::string> edited; // empty for a new event
    std::function<void()> close;
};

// A catalogue with three events and the manager on it.
struct ManageHarness {
    explicit ManageHarness(const NumberLocale& given) : locale(given) {
        catalogue.slsOpen(folder.file("catalogue.sqlite"), "C");
        catalogue.slsExe("CREATE TABLE Events (UTC DATETIME, Latitude DOUBLE, Longitude DOUBLE, "
                         "Depth DOUBLE, Magnitude REAL, SOURCE TEXT)");
        insert("2024-01-01 00:00:00", "1.5", "INGV");
        insert("2024-01-02 00:00:00", "4.5", "USGS");
        insert("2024-01-02 00:00:00", "4.4", "INGV");
    }

    void insert(std::string_view utc, std::string_view magnitude, std::string_view source) {
        std::string sql = "insert into Events values('";
        sql.append(utc).append("', 42.0, 13.0, 10.0, ").append(magnitude).append(", '");
        catalogue.slsExe(sql.append(source).append("')"));
    }
    std::string count(std::string_view condition = "1") {
        catalogue.slsSel("select count(*) from Events where " + std::string(condition));
        catalogue.slsGetRow();
        return catalogue.slsFX(1);
    }

    TemporaryFolder folder;
    NumberLocale locale;
    Session session;
    ErrorHarness harness;
    ScriptedPrompts& prompts = harness.prompts;
    RecordingEditing editing;
    Database catalogue;
    DatabaseManager manager{catalogue, session, prompts, locale, harness.errors, editing};
};

} // namespace tremor::testing
