#include "ingest/feed_fetch.h"

#include "core/common_text.h"
#include "core/dates.h"
#include "core/files.h"

#include <fmt/format.h>

#include <vector>

namespace tremor {

namespace {

// The first ten characters, "YYYY-MM-DD".
std::string_view dateOf(std::string_view bound) {
    return trimLeft(bound).substr(0, 10);
}

} // namespace

void fetchFeed(const FeedFetch& feed, ProcedureTrace& trace, FeedContext& context,
               PanelDownload& download) {
    Session& session = context.session;
    feed.busy = true;
    if (feed.resetsProgressRange)
        context.status.setProgressRange(0, 100);
    std::string target;
    trace.step([&] { target = context.temporaryFolder().append(feed.file); });
    std::string bounds;
    trace.step([&] { bounds = BuildUtcRangeBounds(context.clock.now(), feed.hours); });
    const std::vector<std::string_view> ends = split(bounds, '|');
    context.status.setStatusText(fmt::format("Syncing from {}...", feed.name));
    const std::string url = feed.url(dateOf(ends.front()), dateOf(ends.back()));

    bool fetched = false;
    trace.step([&] { fetched = download.fetch(url, target); });
    if (fetched) {
        feed.read();
        context.status.setStatusText(fmt::format("{} Synchronized", feed.name));
    } else if (!session.waitsMustEnd()) {
        context.log.addLogToList(fmt::format("{} Synchronization failed", feed.name));
    }
    // A closing program keeps both, so that no further source starts.
    if (session.waitsMustEnd())
        return;
    session.WaitCounter = 0;
    feed.busy = false;
}

bool readFeedText(const FeedContext& context, std::string_view name, std::string_view file,
                  ProcedureTrace& trace, std::string& text) {
    trace.step([&] { text = readWholeFile(context.temporaryFolder().append(file)); });
    if (countLines(text) >= 2)
        return true;
    context.log.addLogToList(fmt::format("Impossible connect to {} source, try later.", name));
    return false;
}

} // namespace tremor
