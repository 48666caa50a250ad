// Any bytes as an S-file: through the parser and, as a file of a tree, through the whole import.
#include "ingest/liveloc_source.h"
#include "local_frame.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tremor;
    using fuzzing::CheckingStatus;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    const bool isLong = line.size() >= sfileHeaderColumns;
    bool hasLocation = false;
    try {
        const SfileHeader header = parseSfileHeader(line);
        CheckingStatus::require(isLong);
        CheckingStatus::require(header.UTC.size() >= 17 && header.UTC.size() <= 22);
        CheckingStatus::require(header.Latitude.size() <= 6 && header.Longitude.size() <= 7);
        hasLocation = header.hasLocation();
    } catch (const RuntimeError& error) {
        CheckingStatus::require(!isLong && error.number() == ErrorNumber::InvalidProcedureCall);
    }

    static fuzzing::TemporaryCatalogue catalogue;
    Database& database = catalogue.emptied();
    fuzzing::LocalFrame frame(database);
    frame.write("2012/05/a", bytes);
    for (int run = 0; run < 2; ++run)
        LivelocSource(frame.context())
            .readLivelocSfile({{"/2012", frame.root + "/2012", std::string()}});
    CheckingStatus::require(frame.prompts.errors == (isLong ? 0 : 2));
    CheckingStatus::require(frame.exists("2012/05/a") == !isLong);
    CheckingStatus::require(frame.exists("2012/05/imported_a") == hasLocation);
    CheckingStatus::require(frame.exists("2012/05/noise_a") == (isLong && !hasLocation));
    // An event is stored once, or a line of the log tells that the catalogue refused it.
    const std::size_t told = hasLocation ? static_cast<std::size_t>(frame.log.lines) : 0;
    CheckingStatus::require(fuzzing::storedEvents(database) + told == (hasLocation ? 1U : 0U));
    return 0;
}
