// Any bytes as SeisComP's `last`: through the parsers and, as an event's folder, twice through the
// whole import.
#include "ingest/seiscomp_source.h"
#include "local_frame.h"

#include <cstdint>

namespace {

using tremor::fuzzing::CheckingStatus;

bool isParsed(std::string_view text) {
    using namespace tremor;
    try {
        const std::vector<std::string_view> lines = solutionLines(text);
        for (const std::string_view line : lines)
            CheckingStatus::require(line.data() >= text.data() &&
                                    line.data() + line.size() <= text.data() + text.size() &&
                                    line.find('\n') == std::string_view::npos);
        if (lines.empty())
            return false;
        CheckingStatus::require(parseSolution(lines.back()).UTC.ends_with(".000"));
        return true;
    } catch (const RuntimeError& error) {
        CheckingStatus::require(error.number() == ErrorNumber::SubscriptOutOfRange ||
                                error.number() == ErrorNumber::InvalidProcedureCall);
        return false;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tremor;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const bool isEvent = isParsed(bytes);

    static fuzzing::TemporaryCatalogue catalogue;
    Database& database = catalogue.emptied();
    fuzzing::LocalFrame frame(database);
    frame.settings.LocalSourcePath = frame.root + "/";
    frame.write("ev1/last", bytes);
    SeisCompSource source(frame.context(), frame.prompts, frame.root, NumberLocale::comma());
    const std::vector<FolderEntry> folders = {{"ev1", frame.root + "/ev1", std::string()}};
    source.readSeisCompVers2_6(false, folders);
    CheckingStatus::require(frame.prompts.errors == (isEvent ? 0 : 1));
    const std::size_t first = fuzzing::storedEvents(database);
    CheckingStatus::require(first + static_cast<std::size_t>(frame.log.lines) == 1);
    source.readSeisCompVers2_6(false, folders);
    CheckingStatus::require(frame.exists("ev1/last"));
    CheckingStatus::require(fuzzing::storedEvents(database) >= first);
    return 0;
}
