#pragma once

#include "ingest/import_fixture.h"
#include "ingest/panel_download.h"
#include "ingest/scripted_transfer.h"

#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tremor::testing {

using Texts = std::vector<std::string>;

inline std::string testDocument(const std::string& name) {
    return fileText(std::string(TREMOR_TEST_DATA) + "/" + name);
}

// A line of 10 MB, less where a sanitizer slows the program down.
inline std::string filled(std::string_view pattern) {
#if defined(__SANITIZE_ADDRESS__)
    constexpr std::size_t length = 1'000'000;
#else
    constexpr std::size_t length = 10'000'000;
#endif
    std::string text;
    text.reserve(length + pattern.size());
    while (text.size() < length)
        text += pattern;
    return text;
}

// The same bytes at every run.
inline std::string randomBytes() {
    std::mt19937 random(20210114); // NOLINT(cert-msc32-c,cert-msc51-cpp): repeatable on purpose
    std::string bytes(300000, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

// A source's download with a transfer that the test tells.
class FeedFixture : public ImportFixture {
  protected:
    void servesDocument(const std::string& document) {
        transfer.course = [document](DownloadEvents& events, std::string_view path) {
            writeText(std::string(path), document);
            events.DownloadCompleted();
        };
    }
    void fails() {
        transfer.course = [](DownloadEvents& events, std::string_view) {
            events.DownloadError("Can't open requested file.");
        };
    }

    ScriptedTransfer transfer;
    int unloads = 0;
    PanelDownload download{session, status, clock, transfer, [this] { ++unloads; }};
};

} // namespace tremor::testing
