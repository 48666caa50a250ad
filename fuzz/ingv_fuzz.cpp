// Any bytes as INGV's event document: through the parser and the whole import.
#include "import_frame.h"
#include "ingest/ingv_source.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tremor;
    std::string document(reinterpret_cast<const char*>(data), size);
    const std::vector<ImportRecord> records = parseIngvEvents(document);
    fuzzing::importTwice(records, countLines(document), FeedReader::Ingv);
    return 0;
}
