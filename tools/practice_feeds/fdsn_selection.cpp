#include "practice_feeds/fdsn_selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <stdexcept>
#include <type_traits>

namespace tremor::practice {

namespace {

[[noreturn]] void refuse(std::string_view key, std::string_view value) {
    throw std::invalid_argument(fmt::format("Bad {} value: {}", key, value));
}

void readValue(std::string_view key, const std::string& text, UtcTime& target) {
    const std::optional<UtcTime> time = parseUtc(text);
    if (!time)
        refuse(key, text);
    target = *time;
}

template <class Number>
requires std::is_arithmetic_v<Number>
void readValue(std::string_view key, const std::string& text, Number& target) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, target);
    if (error != std::errc() || stop != end || !std::isfinite(static_cast<double>(target)))
        refuse(key, text);
}

template <class Value>
void read(const Request& request, std::initializer_list<const char*> names, Value& target) {
    for (const char* name : names)
        if (const std::string* text = request.find(name))
            readValue(name, *text, target);
}

} // namespace

bool Selection::holds(const FdsnEvent& event) const {
    return event.time >= start && event.time <= end && event.latitude >= minLatitude &&
           event.latitude <= maxLatitude && event.longitude >= minLongitude &&
           event.longitude <= maxLongitude && event.magnitude >= minMagnitude &&
           event.magnitude <= maxMagnitude;
}

std::vector<FdsnEvent> Selection::of(const std::vector<FdsnEvent>& events) const {
    std::vector<FdsnEvent> selected;
    std::copy_if(events.begin(), events.end(), std::back_inserter(selected),
                 [this](const FdsnEvent& event) { return holds(event); });
    if (!oldestFirst)
        std::reverse(selected.begin(), selected.end());
    if (selected.size() > limit)
        selected.resize(limit);
    return selected;
}

Selection readSelection(const Request& request, std::string_view format,
                        std::string_view defaultFormat) {
    Selection selection;
    read(request, {"starttime", "start"}, selection.start);
    read(request, {"endtime", "end"}, selection.end);
    read(request, {"minlatitude", "minlat"}, selection.minLatitude);
    read(request, {"maxlatitude", "maxlat"}, selection.maxLatitude);
    read(request, {"minlongitude", "minlon"}, selection.minLongitude);
    read(request, {"maxlongitude", "maxlon"}, selection.maxLongitude);
    read(request, {"minmagnitude", "minmag"}, selection.minMagnitude);
    read(request, {"maxmagnitude", "maxmag"}, selection.maxMagnitude);
    read(request, {"limit"}, selection.limit);
    if (const std::string* order = request.find("orderby")) {
        if (*order != "time" && *order != "time-asc")
            refuse("orderby", *order);
        selection.oldestFirst = *order == "time-asc";
    }
    const std::string* asked = request.find("format");
    const std::string_view given = asked == nullptr ? defaultFormat : std::string_view(*asked);
    if (given != format)
        refuse("format", asked == nullptr ? "" : given);
    return selection;
}

Answer badRequest(const Request& request, std::string_view reason, UtcTime now) {
    std::string target = request.path;
    for (const auto& [key, value] : request.query)
        target.append(target.size() == request.path.size() ? "?" : "&")
            .append(key)
            .append("=")
            .append(value);
    return {400, fmt::format("Error 400: Bad Request\n\n{}\n\nUsage details are available from "
                             "https://www.fdsn.org/webservices\n\nRequest:\n{}\n\n"
                             "Request Submitted:\n{}\n\nService version:\n1.2.0\n",
                             reason, target, formatUtc(now))};
}

} // namespace tremor::practice
