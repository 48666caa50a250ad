#include "manage/geonames_dump.h"

#include "core/descriptor.h"
#include "core/error_report.h"
#include "database/row_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace tremor {

namespace {

constexpr std::string_view insertStatement =
    "insert or replace INTO Cities(Name, Latitude, Longitude, Zone) Values (?,?,?,?)";

constexpr std::array<std::string_view, 5> italianCodes = {"ADM3H", "ADM3", "ADM4", "ADM4H", "ADM5"};

// The lines of a file, in blocks.
class LineReader {
  public:
    explicit LineReader(const std::string& path)
        : file_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC)),
          buffer_(longestDumpLine, '\0') {
        if (!file_.isOpen())
            throw RuntimeError(errno == ENOENT || errno == ENOTDIR
                                   ? ErrorNumber::FileNotFound
                                   : ErrorNumber::PathFileAccessError);
        struct stat status {};
        if (::fstat(file_.number(), &status) != 0 || !S_ISREG(status.st_mode))
            throw RuntimeError(ErrorNumber::PathFileAccessError);
    }

    // Reads to the end and goes back to the start.
    std::size_t countLines() {
        std::size_t lines = 0;
        while (fill() > 0) {
            lines +=
                static_cast<std::size_t>(std::count(buffer_.data(), buffer_.data() + end_, '\n'));
            end_ = 0;
        }
        if (::lseek(file_.number(), 0, SEEK_SET) != 0)
            throw RuntimeError(ErrorNumber::PathFileAccessError);
        return lines;
    }

    // The next line that a line feed ends, without it; empty when it is longer than a block. False
    // at the end. Valid until the next call.
    bool next(std::string_view& line) {
        bool tooLong = false;
        for (;;) {
            const char* from = buffer_.data() + begin_;
            const void* found = std::memchr(from, '\n', end_ - begin_);
            if (found != nullptr) {
                const auto length =
                    static_cast<std::size_t>(static_cast<const char*>(found) - from);
                line = tooLong ? std::string_view() : std::string_view(from, length);
                begin_ += length + 1;
                return true;
            }
            if (begin_ == 0 && end_ == buffer_.size()) {
                tooLong = true;
                end_ = 0;
            }
            std::memmove(buffer_.data(), from, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
            if (fill() == 0)
                return false;
        }
    }

  private:
    // Adds what the file gives to the end of the buffer, which has room; 0 at the end of the file.
    std::size_t fill() {
        for (;;) {
            const ssize_t count =
                ::read(file_.number(), buffer_.data() + end_, buffer_.size() - end_);
            if (count >= 0) {
                end_ += static_cast<std::size_t>(count);
                return static_cast<std::size_t>(count);
            }
            if (errno != EINTR)
                throw RuntimeError(ErrorNumber::PathFileAccessError);
        }
    }

    Descriptor file_;
    std::string buffer_;
    std::size_t begin_ = 0; // what is left of the buffer stands from here
    std::size_t end_ = 0;   // to here
};

// False when the transaction has failed.
bool insertAll(LineReader& reader, std::string_view zone, Database& database,
               const DumpProgress& progress, DumpOutcome& outcome) {
    RowWriter cities(database, insertStatement);
    if (!cities.isReady())
        return false;
    std::size_t lines = 0;
    for (std::string_view line; reader.next(line); progress.lineDone(++lines)) {
        const std::optional<DumpLine> place = cutDumpLine(line);
        if (!place) {
            ++outcome.unreadable;
            continue;
        }
        if (!isPointOfInterest(zone, place->featureCode))
            continue;
        if (!cities.write({place->name, place->latitude, place->longitude, zone}))
            return false;
        ++outcome.stored;
    }
    outcome.stored -= cities.lost();
    outcome.refused = cities.lost();
    outcome.refusedReason = cities.lostReason();
    return true;
}

} // namespace

std::optional<DumpLine> cutDumpLine(std::string_view line) {
    constexpr std::size_t fieldsThatCount = 8;
    std::array<std::string_view, fieldsThatCount> fields;
    for (std::size_t i = 0; i + 1 < fieldsThatCount; ++i) {
        const std::size_t end = line.find('\t');
        if (end == std::string_view::npos)
            return std::nullopt;
        fields[i] = line.substr(0, end);
        line.remove_prefix(end + 1);
    }
    fields.back() = line.substr(0, line.find('\t'));
    return DumpLine{fields[1], fields[4], fields[5], fields[7]};
}

bool isPointOfInterest(std::string_view zone, std::string_view featureCode) {
    if (zone == "IT")
        return std::find(italianCodes.begin(), italianCodes.end(), featureCode) !=
               italianCodes.end();
    return featureCode.find("PPL") != std::string_view::npos;
}

DumpOutcome importDump(const std::string& path, std::string_view zone, Database& database,
                       const DumpProgress& progress) {
    LineReader reader(path);
    progress.started(reader.countLines());
    DumpOutcome outcome;
    Transaction transaction(database);
    if (transaction.isOpen() && insertAll(reader, zone, database, progress, outcome) &&
        transaction.commit())
        return outcome;
    DumpOutcome failed;
    failed.failure = database.slGetError();
    return failed;
}

} // namespace tremor
