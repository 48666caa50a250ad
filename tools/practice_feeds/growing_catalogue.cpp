#include "practice_feeds/growing_catalogue.h"

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
// Some forms give whole seconds: nearer events would be one and the same there.
constexpr auto smallestGap = 1s;
// Real identifiers go up in tens.
constexpr long idStep = 10;

bool isOlder(const FdsnEvent& a, const FdsnEvent& b) {
    return a.time < b.time;
}

// Times have a hundredth of a second, as INGV gives them.
UtcTime hundredths(UtcTime time) {
    return std::chrono::floor<std::chrono::duration<long, std::centi>>(time);
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

DrawEvent drawFrom(FdsnDocument document) {
    return [document = std::move(document)](std::mt19937& random) {
        return document.events[random() % document.events.size()];
    };
}

GrowingCatalogue::GrowingCatalogue(FdsnDocument document, DrawEvent draw,
                                   const CatalogueOptions& options, Now now)
    : document_(std::move(document)),
      draw_(std::move(draw)),
      options_(options),
      now_(std::move(now)),
      nextDue_(now_() + options.every),
      random_(options.seed),
      nextId_(highestId(document_.events) + idStep) {
    if (options_.fixed)
        return;
    std::stable_sort(document_.events.begin(), document_.events.end(), isOlder);
    const auto move = std::chrono::floor<std::chrono::seconds>(now_() - ageAtStart - newestTime());
    for (FdsnEvent& event : document_.events)
        event.time += move;
}

std::chrono::milliseconds GrowingCatalogue::interval() const {
    return options_.fixed ? 0ms : options_.every;
}

std::size_t GrowingCatalogue::advance() {
    if (interval() <= 0ms || isHeld())
        return 0;
    std::size_t added = 0;
    for (const UtcTime now = now_(); nextDue_ <= now; nextDue_ += options_.every) {
        appendNewest(draw(), nextDue_);
        ++added;
    }
    return added;
}

FdsnEvent GrowingCatalogue::addEvent(const EventWish& wish) {
    FdsnEvent event = draw();
    if (wish.epicentre)
        event.moveTo(*wish.epicentre);
    if (!wish.age) {
        appendNewest(std::move(event), now_());
        return document_.events.back();
    }
    event.time = hundredths(now_() - *wish.age);
    while (!isFree(event.time))
        event.time += smallestGap;
    auto& events = document_.events;
    const auto place = options_.fixed
                           ? events.end()
                           : std::upper_bound(events.begin(), events.end(), event, isOlder);
    return *events.insert(place, std::move(event));
}

FdsnEvent GrowingCatalogue::draw() {
    FdsnEvent event = draw_(random_);
    event.id = std::to_string(nextId_);
    nextId_ += idStep;
    return event;
}

UtcTime GrowingCatalogue::newestTime() const {
    return std::max_element(document_.events.begin(), document_.events.end(), isOlder)->time;
}

void GrowingCatalogue::appendNewest(FdsnEvent event, UtcTime published) {
    event.time =
        std::max<UtcTime>(hundredths(published - ageWhenPublished), newestTime() + smallestGap);
    document_.events.push_back(std::move(event));
}

bool GrowingCatalogue::isFree(UtcTime time) const {
    return std::none_of(document_.events.begin(), document_.events.end(),
                        [time](const FdsnEvent& event) {
                            return std::chrono::abs(event.time - time) < smallestGap;
                        });
}

} // namespace tremor::practice
