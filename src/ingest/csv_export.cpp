#include "ingest/csv_export.h"

#include "core/dates.h"
#include "core/files.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view databaseFile = "DB.csv";
constexpr std::string_view databaseHead =
    "#TREMORLEDGER CSV#\n#UTC;Latitude;Longitude;Depth;Magnitude;Source\n";
constexpr std::string_view lastDayFile = "last24H.csv";
constexpr std::string_view lastDayHead = "UTC;Latitude;Longitude;Depth;Magnitude;Source\n";
constexpr std::string_view fileEnd = "\r\n";

constexpr std::string_view selectRows =
    "select UTC, Latitude, Longitude, Depth, Magnitude, Source from Events ";
constexpr std::string_view newestFirst = " order by UTC desc";
constexpr int columns = 6;

constexpr std::size_t rowsPerStep = 4096;

// Called with the number of rows before each `rowsPerStep` of them; false ends the export.
using Step = std::function<bool(std::size_t rows)>;

// Adds a line for each row that has a time. Gives their number, nothing when the query failed.
std::optional<std::size_t> addRows(AtomicFile& file, Database& database, const std::string& sql,
                                   const Step& step) {
    std::size_t rows = 0;
    std::string line;
    const int error = database.slsEach(sql, [&](const CurrentRow& row) {
        if (rows % rowsPerStep == 0 && !step(rows))
            return false;
        const std::string_view utc = row.text(1);
        if (utc.empty())
            return true;
        line = utc;
        for (int column = 2; column <= columns; ++column)
            line.append(1, ';').append(row.text(column));
        line += '\n';
        file.append(line);
        ++rows;
        return true;
    });
    return error == 0 ? std::optional(rows) : std::nullopt;
}

// Nothing when they cannot be counted.
std::optional<int> countEvents(Database& database) {
    int count = 0;
    const auto take = [&count](const CurrentRow& row) {
        const std::string_view text = row.text(1);
        if (std::from_chars(text.data(), text.data() + text.size(), count).ec != std::errc())
            count = std::numeric_limits<int>::max();
        return false;
    };
    return database.slsEach("select count(*) from Events", take) == 0 ? std::optional(count)
                                                                      : std::nullopt;
}

// The status line during the export. It gets back afterwards what it has shown before.
class ExportProgress {
  public:
    ExportProgress(StatusPanel& status, int events)
        : status_(status),
          text_(status.statusText()),
          maximum_(status.progressMaximum()),
          value_(status.progress()) {
        status_.setStatusText("Exporting events...");
        status_.setProgressRange(0, std::max(events, 1));
        status_.setProgress(0);
    }
    ~ExportProgress() {
        status_.setStatusText(text_);
        status_.setProgressRange(0, maximum_);
        status_.setProgress(value_);
    }
    ExportProgress(const ExportProgress&) = delete;
    ExportProgress& operator=(const ExportProgress&) = delete;

    void show(std::size_t rows) { status_.setProgress(static_cast<int>(rows)); }

  private:
    StatusPanel& status_;
    std::string text_;
    int maximum_;
    int value_;
};

bool cannotBeDeleted(const std::string& path, const RuntimeError& error) {
    std::error_code ignored;
    return PathExists(path) && (error.number() == ErrorNumber::PermissionDenied ||
                                !std::filesystem::is_regular_file(path, ignored));
}

} // namespace

CsvExport::CsvExport(FeedContext context, AppSettings& settings, std::string applicationPath)
    : context_(std::move(context)),
      settings_(settings),
      applicationPath_(std::move(applicationPath)) {}

void CsvExport::mnu_exportDatabaseCSV_Click() {
    ProcedureTrace trace(context_.errors, module, "mnu_exportDatabaseCSV_Click");
    std::size_t exported = 0;
    std::string failure;
    trace.step([&] {
        const std::optional<std::size_t> written = writeDatabase();
        exported = written.value_or(0);
        failure = written ? "" : context_.database.slGetError();
    });
    if (context_.session.waitsMustEnd())
        return;
    context_.log.addLogToList(fmt::format("{} Events exported in DB.csv file", exported));
    if (!failure.empty())
        context_.log.addLogToList(fmt::format("DB.csv was not written: {}", failure));
}

std::optional<std::size_t> CsvExport::writeDatabase() {
    AtomicFile file(pathOf(databaseFile), false);
    file.append(databaseHead);
    const std::optional<int> events = countEvents(context_.database);
    if (!events)
        return std::nullopt;
    ExportProgress progress(context_.status, *events);
    const auto step = [&](std::size_t rows) {
        progress.show(rows);
        return !context_.session.waitsMustEnd();
    };
    const auto rows =
        addRows(file, context_.database, std::string(selectRows).append(newestFirst), step);
    if (!rows || context_.session.waitsMustEnd())
        return rows;
    file.append(fileEnd);
    file.commit();
    return rows;
}

void CsvExport::exportLast24HoursCSV() {
    constexpr std::int32_t hours = 24;
    ProcedureTrace trace(context_.errors, module, "exportLast24HoursCSV");
    std::string filter;
    trace.step([&] {
        filter = BuildUtcRangeFilter(context_.clock.now(), hours, settings_, context_.session);
    });
    trace.step([&] { writeLast24Hours(filter); });
}

void CsvExport::writeLast24Hours(const std::string& filter) {
    const std::string path = pathOf(lastDayFile);
    try {
        AtomicFile file(path, false);
        file.append(lastDayHead);
        const auto rows = addRows(file, context_.database,
                                  fmt::format("{}where {}{}", selectRows, filter, newestFirst),
                                  [](std::size_t) { return true; });
        // Without a catalogue there are no events.
        if (!rows && context_.database.isOpen()) {
            context_.log.addLogToList(
                fmt::format("last24H.csv was not written: {}", context_.database.slGetError()));
            return;
        }
        file.append(fileEnd);
        file.commit();
    } catch (const RuntimeError& error) {
        if (!cannotBeDeleted(path, error))
            throw;
    }
}

std::string CsvExport::pathOf(std::string_view file) const {
    return fmt::format("{}/{}", applicationPath_, file);
}

} // namespace tremor
