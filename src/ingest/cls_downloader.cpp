#include "ingest/cls_downloader.h"

#include "core/conversions.h"
#include "core/descriptor.h"
#include "core/error_report.h"
#include "core/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <utility>

namespace tremor {

namespace {

[[noreturn]] void fail(std::string description) {
    throw RuntimeError(ErrorNumber::UserDefined, std::move(description));
}

void deleteTarget(const std::string& target) {
    if (::unlink(target.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR)
        raiseWriteError(errno);
}

// The target, made anew: whoever puts a file or a link in its place meanwhile gets nothing.
class TargetFile {
  public:
    explicit TargetFile(const std::string& path)
        : file_(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600)) {
        if (!file_.isOpen())
            raiseWriteError(errno);
    }

    void write(std::string_view bytes) const {
        if (const int error = file_.write(bytes); error != 0)
            raiseWriteError(error);
    }

    // Some file systems tell of a failed write only now.
    void close() {
        if (!file_.close())
            raiseWriteError(errno);
    }

  private:
    Descriptor file_;
};

void checkStatus(int status) {
    if (status == 404)
        fail("Requested file does not exists on the server.");
    if (status != 200)
        fail(fmt::format("Can't download requested file.\r\nServer error code:{:03}.", status));
}

std::int32_t sizeInKilobytes(std::int64_t bytes) {
    if (bytes >= 1 && bytes <= 1024)
        return 1;
    return doubleToLong(static_cast<double>(bytes) / 1024);
}

} // namespace

ClsDownloader::ClsDownloader(DownloadEvents& events, Clock& clock, const Session& session,
                             DownloadLimits limits, HttpCookies cookies)
    : events_(events),
      clock_(clock),
      session_(session),
      limits_(std::move(limits)),
      cookies_(std::move(cookies)) {}

void ClsDownloader::DownloadFile(std::string_view url, std::string_view target,
                                 std::int32_t chunkSize, bool withoutStatusCheck) {
    const std::string targetPath(target);
    End end = End::Broken;
    std::string description = "Error during download.";
    bool keepTarget = false;
    try {
        end = transfer(std::string(url), targetPath, chunkSize, withoutStatusCheck);
    } catch (const std::bad_alloc&) {
        description = errorDescription(ErrorNumber::OutOfMemory);
        keepTarget = true;
    } catch (const std::exception& error) {
        description = error.what();
        keepTarget = true;
    }
    if (end != End::Completed && !keepTarget)
        DeleteFileText(targetPath);
    switch (end) {
    case End::Completed:
        events_.DownloadCompleted();
        break;
    case End::Cancelled:
        events_.AbortCompleted();
        break;
    case End::Broken:
        events_.DownloadError(description);
        break;
    }
}

ClsDownloader::End ClsDownloader::transfer(const std::string& url, const std::string& target,
                                           std::int32_t chunkSize, bool withoutStatusCheck) {
    if (url.empty())
        fail("URL not valid.");
    deleteTarget(target);
    HttpTransfer http(url, limits_, cookies_);
    if (!http.started())
        fail("Can't start Internet session.");
    if (!awaitAnswer(http))
        return End::Cancelled;
    if (!http.answered())
        fail("Can't open requested file.\r\nCheck your Internet connection.");
    if (!withoutStatusCheck)
        checkStatus(http.status());
    if (http.contentLength() > limits_.maximumBytes)
        return End::Broken;
    events_.SizeCalculated(sizeInKilobytes(http.contentLength()));
    return receiveBody(http, target, chunkSize);
}

// Lets the window live while nothing arrives.
void ClsDownloader::turn(HttpTransfer& transfer) {
    transfer.waitForTraffic();
    clock_.pump();
}

// False when cancelled; else the answer is there or will never be.
bool ClsDownloader::awaitAnswer(HttpTransfer& transfer) {
    for (;;) {
        if (mustStop())
            return false;
        transfer.advance();
        if (transfer.answered() || transfer.finished())
            return true;
        turn(transfer);
    }
}

// False when cancelled; else `size` bytes are there, or all that will ever come.
bool ClsDownloader::awaitChunk(HttpTransfer& transfer, std::size_t size) {
    for (;;) {
        if (mustStop())
            return false;
        if (transfer.available() >= size || transfer.finished())
            return true;
        transfer.advance();
        if (transfer.available() < size && !transfer.finished())
            turn(transfer);
    }
}

ClsDownloader::End ClsDownloader::receiveBody(HttpTransfer& transfer, const std::string& target,
                                              std::int32_t chunkSize) {
    if (chunkSize < 1)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    const auto size = static_cast<std::size_t>(chunkSize);
    TargetFile file(target);
    std::int32_t totalKilobytes = 0;
    for (;;) {
        if (!awaitChunk(transfer, size))
            return End::Cancelled;
        if (transfer.available() < size && transfer.failed())
            return End::Broken;
        const std::string_view chunk = transfer.take(size);
        if (chunk.empty()) {
            file.close();
            return End::Completed;
        }
        totalKilobytes = doubleToLong(totalKilobytes + static_cast<double>(chunk.size()) / 1024);
        events_.ChunkDownloaded(totalKilobytes);
        clock_.pump();
        file.write(chunk);
    }
}

} // namespace tremor
