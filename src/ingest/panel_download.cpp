#include "ingest/panel_download.h"

#include "core/conversions.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace tremor {

HttpFileTransfer::HttpFileTransfer(Clock& clock, const Session& session, const Hosts& hosts,
                                   DownloadLimits limits, std::function<HttpCookies()> cookies)
    : clock_(clock),
      session_(session),
      hosts_(hosts),
      limits_(std::move(limits)),
      cookies_(std::move(cookies)) {}

void HttpFileTransfer::DownloadFile(DownloadEvents& events, std::string_view url,
                                    std::string_view target, std::int32_t chunkSize,
                                    bool withoutStatusCheck) {
    DownloadLimits limits = limits_;
    limits.certificateAuthorityFile = hosts_.CaFile;
    ClsDownloader downloader(events, clock_, session_, limits,
                             cookies_ ? cookies_() : HttpCookies());
    downloader.DownloadFile(url, target, chunkSize, withoutStatusCheck);
}

PanelDownload::PanelDownload(Session& session, StatusPanel& status, Clock& clock,
                             FileTransfer& transfer, std::function<void()> unloadPanel)
    : session_(session),
      status_(status),
      clock_(clock),
      transfer_(transfer),
      unloadPanel_(std::move(unloadPanel)) {}

bool PanelDownload::fetchOnce(std::string_view url, std::string_view target) {
    session_.DownloadState = 2;
    transfer_.DownloadFile(*this, url, target, chunkSize, false);
    return session_.DownloadState != 2 && !session_.waitsMustEnd();
}

bool PanelDownload::fetch(std::string_view url, std::string_view target) {
    fetchOnce(url, target);
    while (session_.DownloadState == 2 && session_.WaitCounter < waitLimit && !session_.Closing) {
        clock_.sleep(std::chrono::milliseconds(100));
        ++session_.WaitCounter;
        clock_.pump();
    }
    return session_.WaitCounter < waitLimit && !session_.Closing;
}

void PanelDownload::SizeCalculated(std::int32_t kilobytes) {
    session_.DownloadSizeKb = kilobytes;
    if (kilobytes > 0)
        status_.setDownloadSize(fmt::format("{} Kb", kilobytes));
}

void PanelDownload::ChunkDownloaded(std::int32_t totalKilobytes) {
    if (totalKilobytes < 1 || session_.DownloadSizeKb < 1)
        return;
    if (session_.waitsMustEnd()) {
        unloadPanel_();
        return;
    }
    const double maximum = status_.progressMaximum();
    const double value = roundHalfEven(maximum * totalKilobytes / session_.DownloadSizeKb);
    status_.setProgress(static_cast<int>(std::min(value, maximum)));
}

void PanelDownload::DownloadCompleted() {
    session_.DownloadState = 0;
}

} // namespace tremor
