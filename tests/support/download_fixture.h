#pragma once

#include "ingest/cls_downloader.h"
#include "support/fakes.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <fstream>
#include <string>
#include <vector>

namespace tremor::testing {

// What a transfer reported, one text each: "size 10", "chunk 4", "completed", "error: …",
// "aborted".
class RecordedDownload : public DownloadEvents {
  public:
    void SizeCalculated(std::int32_t kilobytes) override {
        record("size " + std::to_string(kilobytes));
    }
    void ChunkDownloaded(std::int32_t total) override { record("chunk " + std::to_string(total)); }
    void DownloadCompleted() override { record("completed"); }
    void DownloadError(std::string_view description) override {
        record("error: " + std::string(description));
    }
    void AbortCompleted() override { record("aborted"); }

    std::string last() const { return calls.empty() ? std::string() : calls.back(); }

    std::vector<std::string> calls;
    std::function<void(const std::string&)> onCall;

  private:
    void record(std::string call) {
        calls.push_back(std::move(call));
        if (onCall)
            onCall(calls.back());
    }
};

// A downloader with small limits, a folder for its target and a clock whose pump counts.
class DownloadTest : public ::testing::Test {
  protected:
    DownloadTest() {
        // A proxy of the machine must not come between the test and its own servers.
        ::setenv("no_proxy", "127.0.0.1,localhost", 1);
        limits.connectSeconds = 5;
        limits.stallSeconds = 5;
        limits.totalSeconds = 30;
    }

    void download(const std::string& url, std::int32_t chunkSize = 4096,
                  bool withoutStatusCheck = false) {
        ClsDownloader downloader(events, clock, session, limits, cookies);
        current = &downloader;
        downloader.DownloadFile(url, target, chunkSize, withoutStatusCheck);
        current = nullptr;
    }

    static void writeFile(const std::string& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    bool targetExists() const { return std::filesystem::exists(target); }

    TemporaryFolder folder;
    std::string target = folder.file("target.txt");
    RecordedDownload events;
    FakeClock clock;
    Session session;
    DownloadLimits limits;
    HttpCookies cookies;
    ClsDownloader* current = nullptr; // while a transfer runs
};

inline constexpr char cannotOpen[] =
    "error: Can't open requested file.\r\nCheck your Internet connection.";
inline constexpr char brokenDownload[] = "error: Error during download.";

} // namespace tremor::testing
