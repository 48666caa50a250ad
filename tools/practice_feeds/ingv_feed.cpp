#include "practice_feeds/ingv_feed.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <stdexcept>
#include <utility>

namespace tremor::practice {

namespace {

// What a request asks for; everything that it does not name is unlimited.
struct Selection {
    UtcTime start = UtcTime::min();
    UtcTime end = UtcTime::max();
    double minLatitude = -90;
    double maxLatitude = 90;
    double minLongitude = -180;
    double maxLongitude = 180;
    double minMagnitude = -std::numeric_limits<double>::infinity();
    double maxMagnitude = std::numeric_limits<double>::infinity();
    std::size_t limit = std::numeric_limits<std::size_t>::max();
    bool oldestFirst = false;

    bool holds(const FdsnEvent& event) const {
        return event.time >= start && event.time <= end && event.latitude >= minLatitude &&
               event.latitude <= maxLatitude && event.longitude >= minLongitude &&
               event.longitude <= maxLongitude && event.magnitude >= minMagnitude &&
               event.magnitude <= maxMagnitude;
    }
};

[[noreturn]] void refuse(const std::string& key, const std::string& value) {
    throw std::invalid_argument(fmt::format("Bad {} value: {}", key, value));
}

template <class Number>
void readNumber(const Request& request, const std::string& key, Number& target) {
    const std::string* value = request.find(key);
    if (value == nullptr)
        return;
    const char* end = value->data() + value->size();
    const auto [stop, error] = std::from_chars(value->data(), end, target);
    if (error != std::errc() || stop != end)
        refuse(key, *value);
}

void readTime(const Request& request, const std::string& key, UtcTime& target) {
    const std::string* value = request.find(key);
    if (value == nullptr)
        return;
    const std::optional<UtcTime> time = parseUtc(*value);
    if (!time)
        refuse(key, *value);
    target = *time;
}

Selection readSelection(const Request& request) {
    Selection selection;
    readTime(request, "starttime", selection.start);
    readTime(request, "endtime", selection.end);
    readNumber(request, "minlat", selection.minLatitude);
    readNumber(request, "maxlat", selection.maxLatitude);
    readNumber(request, "minlon", selection.minLongitude);
    readNumber(request, "maxlon", selection.maxLongitude);
    readNumber(request, "minmag", selection.minMagnitude);
    readNumber(request, "maxmag", selection.maxMagnitude);
    readNumber(request, "limit", selection.limit);
    if (const std::string* order = request.find("orderby")) {
        if (*order != "time" && *order != "time-asc")
            refuse("orderby", *order);
        selection.oldestFirst = *order == "time-asc";
    }
    if (const std::string* format = request.find("format"); format == nullptr || *format != "text")
        refuse("format", format == nullptr ? "" : *format);
    return selection;
}

} // namespace

IngvFeed::IngvFeed(IngvCatalogue catalogue, bool answersWhole)
    : catalogue_(std::move(catalogue)), answersWhole_(answersWhole) {}

Answer IngvFeed::answer(const Request& request) {
    Selection selection;
    try {
        selection = readSelection(request);
    } catch (const std::invalid_argument& error) {
        return {400, std::string("Error 400: Bad Request\n\n") + error.what() + "\n"};
    }
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    if (answersWhole_)
        return {200, catalogue_.text()};

    FdsnDocument document{catalogue_.header(), {}};
    std::copy_if(catalogue_.events().begin(), catalogue_.events().end(),
                 std::back_inserter(document.events),
                 [&](const FdsnEvent& event) { return selection.holds(event); });
    if (!selection.oldestFirst)
        std::reverse(document.events.begin(), document.events.end());
    document.events.resize(std::min(document.events.size(), selection.limit));
    return document.events.empty() ? Answer{204} : Answer{200, document.text()};
}

std::string IngvFeed::addEvent() {
    const std::lock_guard lock(mutex_);
    return catalogue_.addEvent().line();
}

std::string IngvFeed::served() {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    return catalogue_.text();
}

} // namespace tremor::practice
