#pragma once

#include "core/settings.h"
#include "ingest/import_rules.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The events of the catalogue as files of semicolon-separated lines, which CsvImport, web pages and
// other programs read:
//
//     #TREMORLEDGER CSV#
//     #UTC;Latitude;Longitude;Depth;Magnitude;Source
//     2021-01-14 05:45:26.600;38.9802;15.3048;268.5;3.3;SURVEY-INGV
//
// UTC as stored; degrees; km. Newest first, no quoting. Lines end in a line feed, and the whole
// file in one more carriage return and line feed.
namespace tremor {

class CsvExport {
  public:
    // `settings` are those of the context. The files stand in `applicationPath`, the program's
    // folder without a "/" at its end.
    CsvExport(FeedContext context, AppSettings& settings, std::string applicationPath);

    // Writes all events to "DB.csv" and logs "120 Events exported in DB.csv file". Meanwhile the
    // windows are painted and the bar moves. When the file cannot be written or the catalogue not
    // be read, the old file stays and the count is 0; so it stays, without a word, when the program
    // closes.
    void mnu_exportDatabaseCSV_Click();

    // Writes the events of the last 24 hours of the local clock to "last24H.csv", whose head is the
    // second line alone, without "#". Sets what BuildUtcRangeFilter sets. The old file is there
    // until the new one takes its place; one that cannot be deleted (no right to, locked by another
    // program, a folder) stays until the next call, without a word.
    void exportLast24HoursCSV();

  private:
    std::string pathOf(std::string_view file) const;
    // The number of events; nothing when the catalogue could not be read.
    std::optional<std::size_t> writeDatabase();
    void writeLast24Hours(const std::string& filter);

    FeedContext context_;
    AppSettings& settings_;
    std::string applicationPath_;
};

} // namespace tremor
