#pragma once

#include "ingest/panel_download.h"

#include <functional>
#include <string>

namespace tremor::testing {

// A transfer whose course a test tells: what is written into the target, and which events come.
class ScriptedTransfer : public FileTransfer {
  public:
    void DownloadFile(DownloadEvents& events, std::string_view from, std::string_view to,
                      std::int32_t chunk, bool unchecked) override {
        url = from;
        target = to;
        chunkSize = chunk;
        withoutStatusCheck = unchecked;
        course(events, to);
    }

    std::function<void(DownloadEvents& events, std::string_view target)> course;
    std::string url;
    std::string target;
    std::int32_t chunkSize = 0;
    bool withoutStatusCheck = true;
};

} // namespace tremor::testing
