#pragma once

#include "core/ports.h"
#include "core/session.h"
#include "ingest/http_transfer.h"

#include <cstdint>
#include <string>
#include <string_view>

// Fetching a URL into a file, chunk by chunk, with the windows alive (on libcurl's multi
// interface, https://curl.se/libcurl/c/libcurl-multi.html).
namespace tremor {

// What a transfer reports, in the order in which it can happen.
class DownloadEvents {
  public:
    virtual ~DownloadEvents() = default;
    // Announced size, 0 when the server announces none; before the file is opened.
    virtual void SizeCalculated(std::int32_t kilobytes) = 0;
    // After each chunk was read, before it is written. The total is rounded at every chunk, halves
    // to even.
    virtual void ChunkDownloaded(std::int32_t totalKilobytes) = 0;
    // One of these ends every transfer; the file is closed by then.
    virtual void DownloadCompleted() = 0;
    virtual void DownloadError(std::string_view description) = 0;
    virtual void AbortCompleted() = 0;
};

// One transfer. The object is made for it and dropped afterwards.
class ClsDownloader {
  public:
    ClsDownloader(DownloadEvents& events, Clock& clock, const Session& session,
                  DownloadLimits limits, HttpCookies cookies = {});
    ClsDownloader(const ClsDownloader&) = delete;
    ClsDownloader& operator=(const ClsDownloader&) = delete;

    // Fetches `url` (http or https; redirects are followed, certificates checked) into the file
    // `target`, which is deleted first. Returns when the transfer is over; pending window messages
    // run after every chunk of `chunkSize` bytes and while the server is silent. With
    // `withoutStatusCheck` the body of any status is taken. Every failure becomes one
    // DownloadError, whose text never holds anything of the URL; a cancelled transfer and a closing
    // program end in AbortCompleted. The file is gone after a broken or cancelled transfer; a part
    // of it stays when it could not be written.
    void DownloadFile(std::string_view url, std::string_view target, std::int32_t chunkSize,
                      bool withoutStatusCheck);

    // Sets the cancel flag; the transfer stops at the next turn of its loop.
    void AbortDownload() { cancel_ = true; }

  private:
    enum class End { Completed, Cancelled, Broken };

    End transfer(const std::string& url, const std::string& target, std::int32_t chunkSize,
                 bool withoutStatusCheck);
    bool awaitAnswer(HttpTransfer& transfer);
    End receiveBody(HttpTransfer& transfer, const std::string& target, std::int32_t chunkSize);
    bool awaitChunk(HttpTransfer& transfer, std::size_t size);
    void turn(HttpTransfer& transfer);
    bool mustStop() const { return cancel_ || session_.waitsMustEnd(); }

    DownloadEvents& events_;
    Clock& clock_;
    const Session& session_;
    DownloadLimits limits_;
    HttpCookies cookies_;
    bool cancel_ = false;
};

} // namespace tremor
