#include "ingest/liveloc_source.h"

#include "core/common_text.h"
#include "core/files.h"
#include "core/paced_repaint.h"
#include "database/row_writer.h"
#include "ingest/run_failures.h"

#include <fmt/format.h>

#include <cctype>
#include <optional>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view source = "LIVELOC";
constexpr std::string_view importedPrefix = "imported_";
constexpr std::string_view noisePrefix = "noise_";
constexpr char handledMark = '_';

// Columns count from 1, as in the format's own description.
std::string_view columns(std::string_view line, std::size_t first, std::size_t last) {
    return line.substr(first - 1, last - first + 1);
}

std::string trimmed(std::string_view text) {
    return std::string(trim(text));
}

std::string twoDigits(std::string_view text) {
    const std::string_view number = trim(text);
    const bool isDigit =
        number.size() == 1 && std::isdigit(static_cast<unsigned char>(number.front())) != 0;
    return isDigit ? std::string("0").append(number) : std::string(text);
}

struct Sfile {
    std::string name;
    SfileHeader header;
};

// One import of the whole tree.
class LivelocRun {
  public:
    LivelocRun(FeedContext& context, ProcedureTrace& trace)
        : context_(context), failures_(trace, "S-files"), repaint_(context.clock) {}

    // False when the catalogue fails: each further folder would wait for it again.
    bool readFolder(const std::string& path);

    void writeLog() const;

  private:
    void readSubfolder(const std::string& path);
    void importFiles(const std::string& path, std::vector<Sfile>& files);
    void storeEvents(const std::string& path, const std::vector<Sfile>& files);
    std::string insertEvents(const std::vector<Sfile>& files);
    void giveBackName(const std::string& path, const Sfile& file);

    FeedContext& context_;
    RunFailures failures_;
    PacedRepaint repaint_;
    std::size_t refused_ = 0; // rows that the catalogue did not take
    std::string refusedReason_;
    std::size_t postponed_ = 0; // events of files that were given their names back
    std::size_t stranded_ = 0;  // events of files that could not be given them back
    std::string failureReason_; // why the catalogue failed; empty when it did not
};

std::string handledPath(const std::string& path, const Sfile& file) {
    return joinPath(path, file.header.hasLocation() ? importedPrefix : noisePrefix) + file.name;
}

bool LivelocRun::readFolder(const std::string& path) {
    const std::string inside = joinPath(path, {});
    std::vector<std::string> names;
    failures_.step(path, [&] { names = listFolders(path); });
    for (const std::string& name : names) {
        // The paths are joined by commas and split again: a comma in one breaks it. What then does
        // not lie in this folder must not be touched.
        const std::string whole = inside + name;
        for (const std::string_view part : split(whole, ',')) {
            const bool isThere = failures_.step(part, [&] {
                if (!part.starts_with(inside) || !PathExists(part))
                    throw RuntimeError(ErrorNumber::PathNotFound);
            });
            if (isThere)
                readSubfolder(std::string(part));
            if (!failureReason_.empty())
                return false;
        }
    }
    return true;
}

// All files are read before the first one is renamed, so that an Abort at a broken file loses no
// event of the others.
void LivelocRun::readSubfolder(const std::string& path) {
    std::vector<std::string> names;
    failures_.step(path, [&] { names = listFiles(path); });
    std::vector<Sfile> files;
    for (const std::string& name : names) {
        repaint_();
        if (name.find(handledMark) != std::string::npos)
            continue;
        const std::string file = joinPath(path, name);
        failures_.step(file, [&] {
            const std::string head = readFileHead(file, sfileHeaderColumns);
            files.push_back({name, parseSfileHeader(split(head, '\n').front())});
        });
    }
    if (!failures_.step(path, [&] { importFiles(path, files); }) && !files.empty())
        failures_.countFurther(files.size() - 1);
}

// Leaves in `files` those that could not be renamed and raises the first one's error. The others
// are stored before that, whatever the operator answers.
void LivelocRun::importFiles(const std::string& path, std::vector<Sfile>& files) {
    std::optional<RuntimeError> error;
    std::vector<Sfile> handled;
    std::vector<Sfile> left;
    for (Sfile& file : files) {
        repaint_();
        try {
            renameReplacing(joinPath(path, file.name), handledPath(path, file));
            handled.push_back(std::move(file));
        } catch (const RuntimeError& refusal) {
            error = error.value_or(refusal);
            left.push_back(std::move(file));
        }
    }
    files = std::move(left);
    std::erase_if(handled, [](const Sfile& file) { return !file.header.hasLocation(); });
    storeEvents(path, handled);
    if (error)
        throw RuntimeError(*error);
}

void LivelocRun::storeEvents(const std::string& path, const std::vector<Sfile>& files) {
    if (files.empty())
        return;
    failureReason_ = insertEvents(files);
    if (failureReason_.empty())
        return;
    for (const Sfile& file : files)
        giveBackName(path, file);
}

// Why the catalogue failed as a whole; empty when it did not.
std::string LivelocRun::insertEvents(const std::vector<Sfile>& files) {
    Database& database = context_.database;
    Transaction transaction(database);
    if (!transaction.isOpen())
        return database.slGetError();
    RowWriter writer(database, insertEvent);
    if (!writer.isReady())
        return database.slGetError();
    for (const Sfile& file : files) {
        const SfileHeader& event = file.header;
        if (!writer.write(
                {event.UTC, event.Latitude, event.Longitude, event.Depth, event.Magnitude, source}))
            return database.slGetError();
    }
    if (!transaction.commit())
        return database.slGetError();
    refused_ += writer.lost();
    if (refusedReason_.empty())
        refusedReason_ = writer.lostReason();
    return {};
}

void LivelocRun::giveBackName(const std::string& path, const Sfile& file) {
    ++(renameUnlessTaken(handledPath(path, file), joinPath(path, file.name)) ? postponed_
                                                                             : stranded_);
}

void LivelocRun::writeLog() const {
    failures_.writeTo(context_.log);
    if (refused_ > 0)
        context_.log.addLogToList(
            fmt::format("{} events of S-files could not be stored: {}", refused_, refusedReason_));
    if (postponed_ > 0)
        context_.log.addLogToList(
            fmt::format("{} events of S-files could not be stored, their files will be read again: "
                        "{}",
                        postponed_, failureReason_));
    if (stranded_ > 0)
        context_.log.addLogToList(
            fmt::format("{} events of S-files could not be stored, their files stay \"{}\": {}",
                        stranded_, importedPrefix, failureReason_));
}

} // namespace

SfileHeader parseSfileHeader(std::string_view line) {
    if (line.size() < sfileHeaderColumns)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    SfileHeader header;
    header.UTC = fmt::format("{}-{}-{} {}:{}:{}.{}", trim(columns(line, 1, 5)),
                             twoDigits(columns(line, 7, 8)), twoDigits(columns(line, 9, 10)),
                             twoDigits(columns(line, 12, 13)), twoDigits(columns(line, 14, 15)),
                             twoDigits(columns(line, 17, 18)), columns(line, 20, 20));
    header.Latitude = trimmed(columns(line, 24, 29));
    header.Longitude = trimmed(columns(line, 31, 37));
    header.Depth = trimmed(columns(line, 40, 43));
    header.Magnitude = trimmed(columns(line, 57, 59));
    return header;
}

LivelocSource::LivelocSource(FeedContext context) : context_(std::move(context)) {}

void LivelocSource::readLivelocSfile(const std::vector<FolderEntry>& folders) {
    ProcedureTrace trace(context_.errors, "Form - panel", "readLivelocSfile");
    LivelocRun run(context_, trace);
    for (const FolderEntry& folder : folders) {
        if (folder.Name == "/CAT" || folder.Name == "/LOG")
            continue;
        if (!run.readFolder(folder.FullPath))
            break;
    }
    run.writeLog();
}

} // namespace tremor
