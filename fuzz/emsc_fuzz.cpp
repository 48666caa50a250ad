// Any bytes as the EMSC's RSS feed: through the parser and the whole import.
#include "import_frame.h"
#include "ingest/emsc_source.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tremor;
    std::string document(reinterpret_cast<const char*>(data), size);
    const ParsedFeed feed = parseEmscEvents(document);
    fuzzing::CheckingStatus::require(feed.records.size() + feed.incomplete <= countLines(document));
    fuzzing::importTwice(feed.records, countLines(document), FeedReader::Emsc);
    return 0;
}
