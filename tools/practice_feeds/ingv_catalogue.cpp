#include "practice_feeds/ingv_catalogue.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

// Age of the newest event at the start, and of a new event when it is published: the service needs
// some time to locate one.
constexpr auto ageAtStart = 5min;
constexpr auto ageWhenPublished = 2min;
// Real identifiers go up in tens.
constexpr long idStep = 10;

bool isOlder(const FdsnEvent& a, const FdsnEvent& b) {
    return a.time < b.time;
}

long highestId(const std::vector<FdsnEvent>& events) {
    long highest = 0;
    for (const FdsnEvent& event : events) {
        long id = 0;
        std::from_chars(event.id.data(), event.id.data() + event.id.size(), id);
        highest = std::max(highest, id);
    }
    return highest;
}

} // namespace

IngvCatalogue::IngvCatalogue(FdsnDocument document, FdsnDocument laterEvents,
                             const CatalogueOptions& options, Now now)
    : document_(std::move(document)),
      laterEvents_(std::move(laterEvents)),
      options_(options),
      now_(std::move(now)),
      nextDue_(now_() + options.every),
      random_(options.seed),
      nextId_(highestId(document_.events) + idStep) {
    if (options_.fixed)
        return;
    std::stable_sort(document_.events.begin(), document_.events.end(), isOlder);
    // Times have a hundredth of a second, as the service gives them.
    const auto move = std::chrono::floor<std::chrono::seconds>(now_() - ageAtStart -
                                                               document_.events.back().time);
    for (FdsnEvent& event : document_.events)
        event.time += move;
}

void IngvCatalogue::advance() {
    if (options_.fixed || options_.every <= 0ms)
        return;
    for (const UtcTime now = now_(); nextDue_ <= now; nextDue_ += options_.every)
        append(nextDue_);
}

const FdsnEvent& IngvCatalogue::addEvent() {
    advance();
    append(now_());
    return document_.events.back();
}

// The new event is always the newest, so that no two ever share a time.
void IngvCatalogue::append(UtcTime published) {
    FdsnEvent event = laterEvents_.events[random_() % laterEvents_.events.size()];
    event.id = std::to_string(nextId_);
    nextId_ += idStep;
    const UtcTime newest =
        std::max_element(document_.events.begin(), document_.events.end(), isOlder)->time;
    const auto hundredths =
        std::chrono::floor<std::chrono::duration<long, std::centi>>(published - ageWhenPublished);
    event.time = std::max<UtcTime>(hundredths, newest + 10ms);
    document_.events.push_back(std::move(event));
}

} // namespace tremor::practice
