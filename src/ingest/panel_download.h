#pragma once

#include "core/hosts.h"
#include "core/ports.h"
#include "core/session.h"
#include "ingest/cls_downloader.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace tremor {

// Fetches one URL into one file; returns when the transfer is over, with its course reported to
// `events`. See ClsDownloader::DownloadFile for the arguments.
class FileTransfer {
  public:
    virtual ~FileTransfer() = default;
    virtual void DownloadFile(DownloadEvents& events, std::string_view url, std::string_view target,
                              std::int32_t chunkSize, bool withoutStatusCheck) = 0;
};

// The real one: a fresh ClsDownloader for each transfer, within `limits`. The authority's file
// comes from `hosts`; `cookies` is asked anew for each transfer, and without it there are none.
class HttpFileTransfer : public FileTransfer {
  public:
    HttpFileTransfer(Clock& clock, const Session& session, const Hosts& hosts,
                     DownloadLimits limits = {}, std::function<HttpCookies()> cookies = {});
    void DownloadFile(DownloadEvents& events, std::string_view url, std::string_view target,
                      std::int32_t chunkSize, bool withoutStatusCheck) override;

  private:
    Clock& clock_;
    const Session& session_;
    const Hosts& hosts_;
    DownloadLimits limits_;
    std::function<HttpCookies()> cookies_;
};

// The downloads of the main window: their progress on its controls, and the wait for their end.
class PanelDownload : private DownloadEvents {
  public:
    static constexpr std::int32_t chunkSize = 4096; // bytes
    static constexpr std::int32_t waitLimit = 600;  // turns of 100 ms

    // `unloadPanel` is called when a chunk arrives while the program is closing.
    PanelDownload(Session& session, StatusPanel& status, Clock& clock, FileTransfer& transfer,
                  std::function<void()> unloadPanel);

    // Fetches `url` into `target` with the status check on. DownloadState is 2 until the transfer
    // has completed; a failed transfer leaves it there, and the wait behind it runs on to the limit
    // of WaitCounter. True when WaitCounter is below the limit afterwards. WaitCounter is not
    // reset: its value tells a failure (below 9999) from a closing program.
    bool fetch(std::string_view url, std::string_view target);

    // The same without a wait behind a failed transfer. True when it has completed and the program
    // does not close.
    bool fetchOnce(std::string_view url, std::string_view target);

  private:
    void SizeCalculated(std::int32_t kilobytes) override;
    void ChunkDownloaded(std::int32_t totalKilobytes) override;
    void DownloadCompleted() override;
    void DownloadError(std::string_view) override {}
    void AbortCompleted() override {}

    Session& session_;
    StatusPanel& status_;
    Clock& clock_;
    FileTransfer& transfer_;
    std::function<void()> unloadPanel_;
};

} // namespace tremor
