#include "ingest/usgs_source.h"

#include "core/common_text.h"
#include "core/conversions.h"
#include "ingest/feed_fetch.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view name = "USGS";
constexpr std::string_view eventsFile = "queryUSGS.csv";

constexpr std::string_view eventStart = "<event catalog:datasource=";
constexpr std::string_view valueStart = "<value>";
constexpr std::string_view valueEnd = "</value>";

constexpr double metresPerKilometre = 1000;

constexpr EventValues::Order valueOrder = {EventQuantity::Time, EventQuantity::Latitude,
                                           EventQuantity::Longitude, EventQuantity::Depth,
                                           EventQuantity::Magnitude};

EventValues valuesOf(std::string_view line) {
    EventValues values(valueOrder);
    for (;;) {
        const std::size_t start = line.find(valueStart);
        if (start == std::string_view::npos)
            return values;
        const auto element = innermostOpenElement(line.substr(0, start));
        line.remove_prefix(start + valueStart.size());
        const std::size_t end = line.find(valueEnd);
        if (end == std::string_view::npos)
            return values;
        values.add({element ? element->name : std::string_view(), line.substr(0, end)});
        line.remove_prefix(end + valueEnd.size());
    }
}

// "2018-06-04T01:50:48.520Z" to "2018-06-04 01:50:48.520".
std::string storedTime(std::string_view time) {
    std::string stored(time);
    std::replace(stored.begin(), stored.end(), 'T', ' ');
    std::erase(stored, 'Z');
    return stored;
}

std::string kilometres(std::string_view metres, const NumberLocale& locale) {
    return CommaToDot(doubleToText(ParseDotDouble(metres, locale) / metresPerKilometre, locale));
}

} // namespace

std::string usgsQuery(std::string_view startDate, std::string_view endDate) {
    return fmt::format("/fdsnws/event/1/query?starttime={}&endtime={}", startDate, endDate);
}

ParsedFeed parseUsgsEvents(std::string_view text, const NumberLocale& locale) {
    ParsedFeed feed;
    forEachLine(text, [&](std::size_t index, std::string_view line) {
        if (!line.starts_with(eventStart))
            return;
        const EventValues values = valuesOf(line);
        if (!values.isComplete()) {
            ++feed.incomplete;
            return;
        }
        const auto textOf = [&](EventQuantity quantity) { return values.find(quantity)->text; };
        ImportRecord record;
        record.element = index;
        record.UTC = feed.keep(storedTime(textOf(EventQuantity::Time)));
        record.Latitude = textOf(EventQuantity::Latitude);
        record.Longitude = textOf(EventQuantity::Longitude);
        record.Depth = feed.keep(kilometres(textOf(EventQuantity::Depth), locale));
        record.Magnitude = textOf(EventQuantity::Magnitude);
        record.Source = name;
        feed.records.push_back(record);
    });
    return feed;
}

UsgsSource::UsgsSource(FeedContext context, PanelDownload& download, const NumberLocale& locale)
    : context_(std::move(context)), download_(download), locale_(locale) {}

void UsgsSource::downloadCsvFromUSGS() {
    ProcedureTrace trace(context_.errors, module, "downloadCsvFromUSGS");
    const auto url = [&](std::string_view start, std::string_view end) {
        return context_.hosts.Usgs + usgsQuery(start, end);
    };
    fetchFeed({name, eventsFile, context_.session.AlternateBusy,
               context_.settings.AlternateLastNHours, false, url, [&] { readCsvUSGS(); }},
              trace, context_, download_);
}

void UsgsSource::readCsvUSGS() {
    ProcedureTrace trace(context_.errors, module, "readCsvEmsc");
    std::string text;
    if (!readFeedText(context_, name, eventsFile, trace, text))
        return;
    ParsedFeed feed;
    trace.step([&] { feed = parseUsgsEvents(text, locale_); });
    importParsedFeed(feed, countLines(text), FeedReader::Usgs, trace, context_);
}

} // namespace tremor
