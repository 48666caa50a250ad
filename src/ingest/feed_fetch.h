#pragma once

#include "ingest/import_rules.h"
#include "ingest/panel_download.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// What the sources with a plain download do alike: fetch one file, then read it.
namespace tremor {

// How one source differs from the others. `busy` outlives the fetch.
struct FeedFetch {
    std::string_view name;    // "INGV", as the operator reads it
    std::string_view file;    // in the temporary folder
    bool& busy;               // true while the source is at work
    std::int32_t hours;       // the last hours that are asked for, as whole local days
    bool resetsProgressRange; // sets the progress bar to 0..100 first

    // Host, path and query for the days from start to end ("YYYY-MM-DD").
    std::function<std::string(std::string_view start, std::string_view end)> url;
    std::function<void()> read; // imports the file
};

// Fetches the file and imports it: "Syncing from INGV...", then "INGV Synchronized" on the status
// line, or "INGV Synchronization failed" in the log a minute after a failed transfer. When the
// program closes during the transfer, nothing more is said, and `busy` stays true so that no
// further source starts.
void fetchFeed(const FeedFetch& feed, ProcedureTrace& trace, FeedContext& context,
               PanelDownload& download);

// The text of the source's file. False, with "Impossible connect to INGV source, try later." in
// the log, when it has fewer than two whole lines.
bool readFeedText(const FeedContext& context, std::string_view name, std::string_view file,
                  ProcedureTrace& trace, std::string& text);

} // namespace tremor
