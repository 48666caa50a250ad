#include "practice_feeds/emsc_feed.h"

#include "practice_feeds/fdsn_selection.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t itemCount = 50;

constexpr std::string_view documentHead =
    R"(<?xml version="1.0" encoding="UTF-8" ?><rss version="2.0"  xmlns:geo="http://www.w3.org/2003/01/geo/" xmlns:emsc="https://www.emsc-csem.org" ><channel>
<title>EMSC - Last 50 earthquakes in euro mediteranean region</title>
<link>https://www.emsc-csem.org/</link>
<description>Real-time - Last 50 earthquakes in euro mediteranean region</description>
<language>en</language>
<image>	<title>EMSC - CSEM</title>	<url>https://static2.emsc.eu/Images/emsc_200.png</url>	<link>https://www.emsc-csem.org</link></image><generator>EMSC - CSEM</generator>
<copyright>EMSC - CSEM</copyright>
)";
constexpr std::string_view documentEnd = "</channel></rss>";

std::string tableRow(std::string_view label, std::string_view value) {
    return fmt::format("<tr><td style=\"padding-right:4px\">{}</td><td class=\"point2\">"
                       "&nbsp;&nbsp;{}</td></tr>",
                       label, value);
}

std::string description(const FdsnEvent& event, std::string_view magnitude, int depth) {
    const std::tm time = calendarTime(event.time);
    const auto tenth = event.time.time_since_epoch() / 100ms % 10;
    const std::string location = fmt::format(
        "{:.2f} {} ; {:.2f} {}", std::abs(event.latitude), event.latitude < 0 ? 'S' : 'N',
        std::abs(event.longitude), event.longitude < 0 ? 'W' : 'E');
    return "<description><![CDATA[ <table><tr><td><table cellpadding=\"0\" cellspacing=\"0\" "
           "border=\"0\" style=\"margin-top:5px; font-size:11px;\">" +
           tableRow("Magnitude", magnitude) + tableRow("Region", event.place()) +
           tableRow("Date time", fmt::format("{:%Y-%m-%d   %H:%M:%S}.{} UTC", time, tenth)) +
           tableRow("Location", location) + tableRow("Depth", fmt::format("{} km", depth)) +
           "</table></td></tr></table>]]></description>";
}

// A depth of 10 km is one that was not worked out: "f" for fixed.
std::string item(const FdsnEvent& event) {
    const std::string magnitude = fmt::format("{} {:.1f}", event.magnitudeType(), event.magnitude);
    const std::string link =
        fmt::format("https://www.emsc-csem.org/Earthquake/earthquake.php?id={}", event.id);
    const int depth = static_cast<int>(std::lround(event.depth()));
    const std::string time = fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", calendarTime(event.time));
    return fmt::format("<item><title>{0}  {1}</title><link>{2}</link><geo:lat>{3:.2f}</geo:lat>"
                       "<geo:long>{4:.2f}</geo:long><emsc:depth>{5} {6}</emsc:depth>"
                       "<emsc:magnitude>{0}</emsc:magnitude><emsc:time>{7}</emsc:time>"
                       "<pubDate>{8:%a, %d %b %Y %H:%M:%S} +0000</pubDate><status>REVIEWED</status>"
                       "<guid>{2}</guid><comments>{7}</comments>{9}</item>\n",
                       magnitude, event.place(), link, event.latitude, event.longitude, depth,
                       depth == 10 ? 'f' : ' ', time, calendarTime(event.time + 20min),
                       description(event, magnitude, depth));
}

std::string document(const std::vector<FdsnEvent>& events) {
    std::string text(documentHead);
    for (const FdsnEvent& event : events)
        text += item(event);
    return text.append(documentEnd);
}

} // namespace

EmscFeed::EmscFeed(GrowingCatalogue catalogue) : catalogue_(std::move(catalogue)) {}

Answer EmscFeed::answer(const Request&) {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    Selection latest;
    latest.limit = itemCount;
    return {200, document(latest.of(catalogue_.events())), "text/xml;charset=UTF-8"};
}

std::string EmscFeed::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return item(catalogue_.addEvent(wish));
}

std::string EmscFeed::served() {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    return document(Selection().of(catalogue_.events()));
}

} // namespace tremor::practice
