#include "ingest/seiscomp_source.h"

#include "core/common_text.h"
#include "core/dates.h"
#include "core/files.h"
#include "core/flag_scope.h"
#include "core/paced_repaint.h"
#include "database/row_writer.h"
#include "ingest/run_failures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view heading = "LocSAT solution";
constexpr std::size_t linesToSolution = 2;
constexpr std::string_view partSeparator = "  ";

constexpr std::string_view folderStart = "ev";
constexpr std::string_view importedPrefix = "imported_";
constexpr std::int32_t secondsUntilFinished = 3600;

// A bulletin has some kilobytes for each solution.
constexpr std::uint64_t maximumBytes = 64ULL << 20;

constexpr std::string_view insertStatement =
    "insert INTO Events(UTC, Latitude, Longitude, Depth,Magnitude, Source) "
    "Values (?,?,?,?,?,'SEISCP')";
// By row and not by UTC: without an index each update would search the whole catalogue.
constexpr std::string_view updateStatement =
    "update Events SET Latitude = ?, Longitude = ?, Depth = ?, Magnitude = ?, Source = 'SEISCP' "
    "where rowid = ?";
// One value more than columns: the catalogue refuses it. Which rows a chosen file should replace
// is an open question, and until it is answered nothing is replaced.
constexpr std::string_view replaceStatement =
    "replace INTO Events(UTC, Latitude, Longitude, Depth,Magnitude) Values (?,?,?,?,?,'SEISCP')";

struct FolderEvent {
    SeisCompEvent event;
    bool IsKnown = false;
    std::string FolderName;
    std::string FileDate; // empty: there is no file
};

// What the catalogue holds under one time.
struct StoredRows {
    std::vector<std::string> ids;
    bool hasSeisComp = false;
    bool isUpdated = false;
};
using StoredTimes = std::unordered_map<std::string, StoredRows>;

// The rows that an update of the event reaches; null when the catalogue does not know the event.
StoredRows* knownRows(StoredTimes& stored, const SeisCompEvent& event) {
    const std::optional<std::string> time = pastedTextValue(event.UTC);
    const auto equal = time ? stored.find(*time) : stored.end();
    return equal != stored.end() && equal->second.hasSeisComp ? &equal->second : nullptr;
}

// The text behind its first line feed.
std::optional<std::string_view> behindLine(std::string_view text) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos)
        return std::nullopt;
    return text.substr(end + 1);
}

std::string_view lineBelow(std::string_view text, std::size_t lines) {
    std::optional<std::string_view> rest = text;
    for (; rest && lines > 0; --lines)
        rest = behindLine(*rest);
    if (!rest)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return rest->substr(0, rest->find('\n'));
}

std::vector<std::string_view> partsOf(std::string_view line) {
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; (end = line.find(partSeparator)) != std::string_view::npos;
         line.remove_prefix(end + partSeparator.size()))
        parts.push_back(line.substr(0, end));
    parts.push_back(line);
    return parts;
}

std::string_view withoutFirst(std::string_view text, std::size_t count) {
    if (text.size() < count)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return text.substr(count);
}

std::string_view withoutLast(std::string_view text, std::size_t count) {
    if (text.size() < count)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return text.substr(0, text.size() - count);
}

// "11.23 O" to "-11.23" for the negative letter 'O'.
std::string signedDegrees(std::string_view text, char negative) {
    return fmt::format("{}{}", text.ends_with(negative) ? "-" : "", withoutLast(text, 2));
}

// False when the catalogue fails as a whole.
bool update(const SeisCompEvent& event, const StoredRows& rows, RowWriter& updates) {
    return std::all_of(rows.ids.begin(), rows.ids.end(), [&](const std::string& id) {
        return updates.write({event.Latitude, event.Longitude, event.Depth, event.Magnitude, id});
    });
}

// One import of the folders of a list.
class FolderRun {
  public:
    FolderRun(FeedContext& context, ProcedureTrace& trace)
        : context_(context), failures_(trace, "SeisComP folders"), repaint_(context.clock) {}

    void read(FolderEntry& folder);
    void store();
    void raiseMagnitudes(const NumberLocale& locale) const;
    void renameFinished();
    void writeLog() const;

  private:
    SeisCompEvent lastEventOf(const std::string& file);
    void addTime(std::string_view utc);
    std::string markKnown(StoredTimes& stored);
    std::string writeRows(StoredTimes& stored);

    FeedContext& context_;
    RunFailures failures_;
    PacedRepaint repaint_;
    std::vector<FolderEvent> events_;
    std::string times_;                   // "'2012-05-20 02:03:52.000',''"
    std::optional<std::string> lastLine_; // the solution of the folder before
    std::size_t refused_ = 0;
    std::string refusedReason_;
    std::string failureReason_;
};

SeisCompEvent FolderRun::lastEventOf(const std::string& file) {
    const std::string text = readWholeFile(file, maximumBytes);
    const std::vector<std::string_view> solutions = solutionLines(text);
    if (!solutions.empty())
        lastLine_ = solutions.back();
    if (!lastLine_)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return parseSolution(*lastLine_);
}

void FolderRun::read(FolderEntry& folder) {
    repaint_();
    folder.LastFile = joinPath(folder.FullPath, "last");
    FolderEvent found;
    const bool isRead = failures_.step(folder.LastFile, [&] {
        if (!FileExists(folder.LastFile))
            return;
        found = {lastEventOf(folder.LastFile), false, folder.Name, fileDateText(folder.LastFile)};
    });
    if (!isRead)
        return;
    addTime(found.event.UTC);
    events_.push_back(std::move(found));
}

// A time that would break the statement is left out; its own insert fails as well.
void FolderRun::addTime(std::string_view utc) {
    if (pastedTextValue(utc))
        times_ += fmt::format("{}'{}'", times_.empty() ? "" : ",", utc);
}

// Why the catalogue gives no answer; empty when it does.
std::string FolderRun::markKnown(StoredTimes& stored) {
    // One query for the known events and for all rows that their updates will reach.
    if (context_.database.slsSel(fmt::format(
            "select UTC, rowid, Source = 'SEISCP' from Events where UTC IN ({})", times_)) != 0)
        return context_.database.slGetError();
    const ResultSet rows = context_.database.takeResult();
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        StoredRows& equal = stored[std::string(rows.cell(row, 0))];
        equal.ids.emplace_back(rows.cell(row, 1));
        equal.hasSeisComp = equal.hasSeisComp || rows.cell(row, 2) == "1";
    }
    for (FolderEvent& event : events_)
        event.IsKnown = knownRows(stored, event.event) != nullptr;
    return {};
}

// Why the catalogue failed as a whole; empty when it did not.
std::string FolderRun::writeRows(StoredTimes& stored) {
    Database& database = context_.database;
    Transaction transaction(database);
    if (!transaction.isOpen())
        return database.slGetError();
    RowWriter inserts(database, insertStatement);
    RowWriter updates(database, updateStatement);
    if (!inserts.isReady() || !updates.isReady())
        return database.slGetError();
    for (const auto& [event, isKnown, folder, date] : events_) {
        if (!isKnown && !inserts.write({event.UTC, event.Latitude, event.Longitude, event.Depth,
                                        event.Magnitude}))
            return database.slGetError();
    }
    // Events of equal times all update the same rows, and the last one's values stay: backwards,
    // one update for each row is enough.
    for (std::size_t left = events_.size(); left > 0; --left) {
        const SeisCompEvent& event = events_[left - 1].event;
        StoredRows* const rows = knownRows(stored, event);
        if (rows == nullptr || rows->isUpdated)
            continue;
        const std::size_t lostBefore = updates.lost();
        if (!update(event, *rows, updates))
            return database.slGetError();
        rows->isUpdated = updates.lost() == lostBefore;
    }
    if (!transaction.commit())
        return database.slGetError();
    refused_ = inserts.lost() + updates.lost();
    refusedReason_ = inserts.lost() > 0 ? inserts.lostReason() : updates.lostReason();
    return {};
}

void FolderRun::store() {
    if (events_.empty())
        return;
    StoredTimes stored;
    failureReason_ = markKnown(stored);
    if (failureReason_.empty())
        failureReason_ = writeRows(stored);
}

void FolderRun::raiseMagnitudes(const NumberLocale& locale) const {
    constexpr double largest = std::numeric_limits<float>::max();
    Session& session = context_.session;
    for (const FolderEvent& event : events_) {
        session.LastNewMagnitude = static_cast<float>(
            std::clamp(ParseDotDouble(event.event.Magnitude, locale), -largest, largest));
        session.maxNewMagnitude = std::max(session.maxNewMagnitude, session.LastNewMagnitude);
    }
}

void FolderRun::renameFinished() {
    if (!failureReason_.empty())
        return;
    const std::string& root = context_.settings.LocalSourcePath;
    const DateTime now = context_.clock.now();
    const NumberLocale plain = NumberLocale::point(); // FileDate is the same under every locale
    for (const FolderEvent& event : events_) {
        if (!event.IsKnown || !isDateText(event.FileDate, plain) ||
            CalcDiff2Dates(textToDate(event.FileDate, plain), now) <= secondsUntilFinished)
            continue;
        const std::string old = root + event.FolderName;
        failures_.step(old, [&] {
            renameReplacing(old, fmt::format("{}{}{}", root, importedPrefix, event.FolderName));
        });
    }
}

void FolderRun::writeLog() const {
    failures_.writeTo(context_.log);
    if (refused_ > 0)
        context_.log.addLogToList(fmt::format("{} events from SeisComP could not be stored: {}",
                                              refused_, refusedReason_));
    if (!failureReason_.empty())
        context_.log.addLogToList(
            fmt::format("{} events from SeisComP could not be stored, they will be read again: {}",
                        events_.size(), failureReason_));
}

} // namespace

std::vector<std::string_view> solutionLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (std::optional<std::string_view> rest = text; rest; rest = behindLine(*rest)) {
        if (trimLeft(rest->substr(0, rest->find('\n'))).starts_with(heading))
            lines.push_back(trimLeft(lineBelow(*rest, linesToSolution)));
    }
    return lines;
}

SeisCompEvent parseSolution(std::string_view line) {
    const std::vector<std::string_view> parts = partsOf(line);
    const auto part = [&](std::size_t place) {
        if (place >= parts.size())
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
        return parts[place];
    };
    SeisCompEvent event;
    event.Magnitude = withoutFirst(part(1), 3);
    event.UTC = fmt::format("{} {}.000", replaceAll(part(2), "/", "-"), part(3));
    event.Latitude = signedDegrees(part(4), 'S');
    event.Longitude = signedDegrees(part(5), 'O');
    event.Depth = withoutLast(part(6), 3);
    return event;
}

SeisCompSource::SeisCompSource(FeedContext context, Prompts& prompts, std::string applicationPath,
                               const NumberLocale& locale)
    : context_(std::move(context)),
      prompts_(prompts),
      applicationPath_(std::move(applicationPath)),
      locale_(locale) {}

void SeisCompSource::readSeisCompVers2_6(bool manual, std::vector<FolderEntry> folders) {
    ProcedureTrace trace(context_.errors, "Form - panel", "readSeisCompVers2_6");
    if (manual)
        importChosenFile(trace);
    else
        importFolders(folders, trace);
}

void SeisCompSource::importFolders(std::vector<FolderEntry>& folders, ProcedureTrace& trace) {
    FolderRun run(context_, trace);
    for (FolderEntry& folder : folders) {
        if (folder.Name.starts_with(folderStart))
            run.read(folder);
    }
    run.store();
    run.raiseMagnitudes(locale_);
    run.renameFinished();
    run.writeLog();
}

void SeisCompSource::importChosenFile(ProcedureTrace& trace) {
    const FlagScope importing(context_.session.ImportInProgress);
    FileDialogRequest request;
    request.title = "Select last file...";
    request.initialFolder = applicationPath_;
    request.filter = "Last Seiscomp (last)|*last";
    request.defaultExtension = "db";
    const std::optional<std::string> chosen = prompts_.showFileDialog(request);
    if (!chosen)
        return;

    std::vector<SeisCompEvent> events;
    RunFailures failures(trace, "solutions");
    std::string text;
    std::vector<std::string_view> lines;
    if (failures.step(*chosen, [&] { text = readWholeFile(*chosen, maximumBytes); }))
        failures.step(*chosen, [&] { lines = solutionLines(text); });
    for (const std::string_view line : lines)
        failures.step(*chosen, [&] { events.push_back(parseSolution(line)); });
    failures.writeTo(context_.log);

    replaceEvents(events);
}

void SeisCompSource::replaceEvents(const std::vector<SeisCompEvent>& events) {
    Transaction transaction(context_.database);
    RowWriter writer(context_.database, replaceStatement);
    const auto write = [&writer](const SeisCompEvent& event) {
        return writer.write(
            {event.UTC, event.Latitude, event.Longitude, event.Depth, event.Magnitude});
    };
    const bool isStored = transaction.isOpen() && writer.isReady() &&
                          std::all_of(events.begin(), events.end(), write) && transaction.commit();
    if (!isStored && !events.empty())
        context_.log.addLogToList(
            fmt::format("{} events of the chosen file could not be stored: {}", events.size(),
                        context_.database.slGetError()));
}

} // namespace tremor
