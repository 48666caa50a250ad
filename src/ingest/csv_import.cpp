#include "ingest/csv_import.h"

#include "core/dates.h"
#include "core/files.h"
#include "core/paced_repaint.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view isideFile = "events.csv";
constexpr std::int16_t importsToCompaction = 25;

constexpr std::size_t fieldCount = 6;
using Fields = std::array<std::string_view, fieldCount>; // UTC to Source, in the order of the file

enum class LineKind { Comment, Hole, Incomplete, Event };

// The lines that count: without a last one that is the end of an export.
std::string_view withoutEnd(std::string_view text) {
    text = text.substr(0, text.rfind('\n') + 1); // npos + 1 is 0
    if (text == "\r\n")
        return {};
    return text.ends_with("\n\r\n") ? text.substr(0, text.size() - 2) : text;
}

LineKind readLine(std::string_view line, Fields& fields) {
    if (line.starts_with('#'))
        return LineKind::Comment;
    fields = {};
    for (std::size_t field = 0; field < fieldCount; ++field) {
        const std::size_t end = line.find(';');
        fields[field] = line.substr(0, end);
        if (field == 0 && fields[0].size() < 2) {
            fields = {};
            return LineKind::Hole;
        }
        if (end == std::string_view::npos)
            return field + 1 == fieldCount ? LineKind::Event : LineKind::Incomplete;
        line.remove_prefix(end + 1);
    }
    return LineKind::Event;
}

bool belongsToAMagnitude(char character) {
    return (character >= '0' && character <= '9') || character == '.' || character == ',';
}

// Calls use(kind, fields) for each line until it gives false.
template <class Use>
void forEachCsvLine(std::string_view text, Use&& use) {
    Fields fields;
    std::size_t start = 0;
    for (std::size_t end = 0; (end = text.find('\n', start)) != std::string_view::npos;
         start = end + 1) {
        const LineKind kind = readLine(text.substr(start, end - start), fields);
        if (!use(kind, fields))
            return;
    }
}

} // namespace

CsvEvents::CsvEvents(std::string_view text) : text_(withoutEnd(text)) {
    forEachCsvLine(text_, [this](LineKind kind, const Fields&) {
        ++lines_;
        if (kind == LineKind::Incomplete)
            ++incomplete_;
        else if (kind != LineKind::Comment)
            ++elements_;
        return true;
    });
}

void CsvEvents::forEach(const RecordVisitor& visit) const {
    ImportRecord record;
    std::string magnitude;
    std::size_t element = 0;
    forEachCsvLine(text_, [&](LineKind kind, const Fields& fields) {
        if (kind != LineKind::Hole && kind != LineKind::Event)
            return true;
        record.element = element++;
        const auto& [utc, latitude, longitude, depth, given, source] = fields;
        record.UTC = utc;
        record.Latitude = latitude;
        record.Longitude = longitude;
        record.Depth = depth;
        record.Magnitude = given;
        record.Source = source;
        if (!std::all_of(given.begin(), given.end(), belongsToAMagnitude)) {
            magnitude.clear();
            std::copy_if(given.begin(), given.end(), std::back_inserter(magnitude),
                         belongsToAMagnitude);
            record.Magnitude = magnitude;
        }
        return visit(record);
    });
}

CsvImport::CsvImport(FeedContext context, Prompts& prompts, const NumberLocale& locale)
    : context_(std::move(context)), prompts_(prompts), locale_(locale) {}

void CsvImport::mnu_ImportCSV_Click() {
    ProcedureTrace trace(context_.errors, module, "mnu_ImportCSV_Click");
    context_.session.ImportInProgress = true;
    FileDialogRequest request;
    request.title = "Select Csv file...";
    request.filter = "Csv File (*.csv)|*.csv";
    request.defaultExtension = "db";
    std::optional<std::string> chosen;
    trace.step([&] { chosen = prompts_.showFileDialog(request); });
    if (chosen && !chosen->empty()) {
        CsvFileName = *chosen;
        trace.step([&] { readCSV(0); });
    }
    context_.session.ImportInProgress = false;
}

void CsvImport::readCSV(std::int32_t isideFlag) {
    ProcedureTrace trace(context_.errors, module, "readCSV");
    const bool isIside = isideFlag == 1;
    std::string text;
    trace.step([&] { text = readWholeFile(CsvFileName); });
    const CsvEvents events(text);
    if (events.lines() < 1) {
        context_.log.addLogToList(isIside ? "Impossible connect to a ISIDE source, try later."
                                          : "Impossible data import from this CSV.");
        return;
    }
    importEvents(events, isIside ? FeedReader::IsideCsv : FeedReader::UserCsv, trace);
    context_.session.ImportInProgress = false;
}

void CsvImport::importEvents(const CsvEvents& events, FeedReader reader, ProcedureTrace& trace) {
    trace.step([&] {
        if (events.incomplete() > 0)
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    });
    ImportOutcome outcome;
    trace.step([&] {
        constexpr std::size_t recordsPerLook = 1024; // at the clock
        PacedRepaint repaint(context_.clock);
        std::size_t records = 0;
        const RecordPass pass = [&](const RecordVisitor& visit) {
            events.forEach([&](const ImportRecord& record) {
                if (++records % recordsPerLook == 0)
                    repaint();
                return visit(record);
            });
        };
        outcome = storeRecords(pass, events.elements(), feedRules(reader), context_.database,
                               context_.status, context_.session);
    });
    compactWhenDue();
    logImport(outcome);
    if (events.incomplete() > 0)
        context_.log.addLogToList(
            fmt::format("{} events lack a value and were not imported", events.incomplete()));
}

void CsvImport::compactWhenDue() {
    if (++CsvImportCount < importsToCompaction)
        return;
    context_.database.slsExe("VACUUM;");
    CsvImportCount = 0;
}

void CsvImport::logImport(const ImportOutcome& outcome) {
    const std::string present = dateToLocaleText(context_.clock.now(), locale_);
    context_.log.addLogToList(outcome.count < 1
                                  ? fmt::format("{} nothing imported...", present)
                                  : fmt::format("{}  {} Events Imported", present, outcome.count));
    // By the name of the download, whoever has chosen the file.
    const FeedReader named =
        CsvFileName.ends_with(isideFile) ? FeedReader::IsideCsv : FeedReader::UserCsv;
    context_.log.addLogToList(fmt::format("{}{}", outcome.count, feedRules(named).importedText));
    logLostRows(outcome, context_.log);
}

} // namespace tremor
