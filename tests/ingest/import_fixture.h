#pragma once

#include "ingest/import_rules.h"
#include "support/fakes.h"
#include "support/texts.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace tremor::testing {

inline std::string fileText(const std::string& path) {
    EXPECT_TRUE(std::ifstream(path)) << path;
    return contentOf(path);
}

inline void writeText(const std::string& path, std::string_view text) {
    std::ofstream file(path, std::ios::binary);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    EXPECT_TRUE(file.flush()) << path << " cannot be written: " << std::strerror(errno);
}

inline std::string ingvDocument(const std::string& name) {
    return fileText(std::string(TREMOR_TEST_DATA) + "/ingv/" + name);
}

inline const std::string ingvHeader =
    "#EventID|Time|Latitude|Longitude|Depth/Km|Author|Catalog|Contributor|ContributorID|MagType|"
    "Magnitude|MagAuthor|EventLocationName|EventType\n";

// A line of INGV's text format with its closing line feed.
inline std::string ingvLine(const std::string& time, const std::string& author = "SURVEY-INGV") {
    return "46224912|" + time + "|38.9802|15.3048|268.5|" + author +
           "||||ML|3.3|--|Tirreno Meridionale [Mare]|earthquake\n";
}

// An empty catalogue in a file of its own, and all that a feed reader needs.
class ImportFixture : public ::testing::Test {
  protected:
    ImportFixture() {
        EXPECT_EQ(database.slsOpen(cataloguePath(), "C"), 0);
        EXPECT_EQ(database.slsExe(createEvents), 0);
    }

    std::string cataloguePath() const { return folder.file("catalogue.sqlite"); }

    void store(const std::string& utc, const std::string& source) {
        EXPECT_EQ(database.slsExe("insert into Events(UTC, Source) values ('" + utc + "', '" +
                                  source + "')"),
                  0);
    }

    // The rows of a query, columns joined by "|".
    std::vector<std::string> rows(const std::string& sql) {
        std::vector<std::string> result;
        EXPECT_EQ(database.slsSel(sql), 0) << database.slGetError();
        while (database.slsGetRow()) {
            std::string row = database.slsFX(1);
            for (int column = 2; column <= database.slGetColumnCount(); ++column)
                row.append("|").append(database.slsFX(column));
            result.push_back(row);
        }
        return result;
    }

    int eventCount() { return std::stoi(rows("select count(*) from Events").at(0)); }

    // How often the database calls back during a call: about every 30 ms while it waits for a
    // locked catalogue, and less often on a machine that is busy otherwise.
    template <class Call>
    int busyCalls(Call&& call) {
        int calls = 0;
        database.setBusyCallback([&calls] { ++calls; });
        call();
        database.setBusyCallback({});
        return calls;
    }
    static constexpr int mostBusyCallsOfOneWait = Database::busyTimeoutMilliseconds / 30 + 1;

    static constexpr std::string_view createEvents =
        "CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, 'Depth' "
        "REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)";

    TemporaryFolder folder;
    Session session;
    AppSettings settings;
    Hosts hosts;
    Database database;
    RecordingStatusPanel status;
    FakeClock clock;
    RecordingLog log;
    ErrorHarness harness;
    FeedContext context{session,  settings,       hosts,
                        database, status,         clock,
                        log,      harness.errors, [this] { return folder.path() + "/"; }};
};

} // namespace tremor::testing
