// What the fuzz targets of the feed readers share: a document goes through a parser and the whole
// import into a catalogue of its own, twice, with the invariants of an import checked.
#pragma once

#include "ingest/import_rules.h"

#include <stdlib.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace tremor::fuzzing {

class CheckingStatus : public StatusPanel {
  public:
    void setStatusText(std::string_view) override {}
    void setEventsText(std::string_view) override {}
    void setDownloadSize(std::string_view) override {}
    void setProgressRange(int minimum, int maximum) override {
        require(minimum == 0 && maximum >= 1);
        maximum_ = maximum;
    }
    void setProgress(int value) override { require(value >= 0 && value <= maximum_); }
    std::string statusText() const override { return {}; }
    int progressMaximum() const override { return maximum_; }
    int progress() const override { return 0; }

    static void require(bool holds) {
        if (!holds)
            std::abort();
    }

  private:
    int maximum_ = 1;
};

inline std::size_t storedEvents(Database& database) {
    CheckingStatus::require(database.slsSel("select count(*) from Events") == 0);
    CheckingStatus::require(database.slsGetRow());
    return std::strtoull(database.slsFX(1).c_str(), nullptr, 10);
}

// Imports the records of a document of `lines` lines and returns how many rows came.
inline std::size_t import(std::vector<ImportRecord> records, std::size_t lines, FeedReader reader,
                          Database& database, Session& session) {
    CheckingStatus status;
    const std::size_t before = storedEvents(database);
    CheckingStatus::require(records.size() <= lines);
    CheckingStatus::require(markDuplicates(records, lines, feedRules(reader), database));
    const ImportOutcome outcome = insertRecords(records, database, status, session);
    const std::size_t came = storedEvents(database) - before;
    CheckingStatus::require(came == outcome.count - outcome.lost);
    CheckingStatus::require(!session.ImportInProgress);
    return came;
}

// A catalogue in a temporary file, made once and emptied for each input.
class TemporaryCatalogue {
  public:
    TemporaryCatalogue() {
        folder_ = (std::filesystem::temp_directory_path() / "tremor-fuzz-XXXXXX").string();
        CheckingStatus::require(::mkdtemp(folder_.data()) != nullptr);
        CheckingStatus::require(database_.slsOpen(folder_ + "/catalogue.sqlite", "C") == 0);
        run("pragma synchronous = off");
        run("pragma journal_mode = memory");
        run("CREATE TABLE Events ('UTC' DATETIME NOT NULL , 'Latitude' REAL, 'Longitude' REAL, "
            "'Depth' REAL, 'Magnitude' DOUBLE, 'Source' TEXT, 'null' TEXT)");
    }
    ~TemporaryCatalogue() {
        database_.slClose();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporaryCatalogue(const TemporaryCatalogue&) = delete;
    TemporaryCatalogue& operator=(const TemporaryCatalogue&) = delete;

    Database& emptied() {
        run("delete from Events");
        return database_;
    }

  private:
    void run(std::string_view sql) { CheckingStatus::require(database_.slsExe(sql) == 0); }

    std::string folder_;
    Database database_;
};

inline void importTwice(const std::vector<ImportRecord>& records, std::size_t lines,
                        FeedReader reader) {
    static TemporaryCatalogue catalogue;
    Session session;
    Database& database = catalogue.emptied();
    const std::size_t first = import(records, lines, reader, database, session);
    // Of equal times in one document only the first may be a duplicate the next time.
    CheckingStatus::require(import(records, lines, reader, database, session) <= first);
}

} // namespace tremor::fuzzing
