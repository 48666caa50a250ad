#include "ingest/ingv_source.h"

#include "ingest/feed_fetch.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view name = "INGV";
constexpr std::string_view eventsFile = "eventsINGV.csv";

constexpr std::ptrdiff_t minimumBars = 12;
constexpr std::size_t fieldsUsed = 11;

// The service writes microseconds, the catalogue keeps milliseconds.
constexpr std::size_t digitsCut = 3;

// The first fields of a line that has at least as many.
std::array<std::string_view, fieldsUsed> firstFields(std::string_view line) {
    std::array<std::string_view, fieldsUsed> fields;
    for (std::string_view& field : fields) {
        const std::size_t bar = line.find('|');
        field = line.substr(0, bar);
        line.remove_prefix(bar + 1);
    }
    return fields;
}

bool isEventLine(std::string_view line) {
    return !line.starts_with('#') && std::count(line.begin(), line.end(), '|') >= minimumBars;
}

} // namespace

std::string ingvQuery(std::string_view startDate, std::string_view endDate) {
    return fmt::format("/fdsnws/event/1/query?starttime={}+00%3A00%3A00&endtime={}+23%3A59%3A59"
                       "&minmag=-1&maxmag=10&minlat=35&maxlat=48&minlon=6&maxlon=19"
                       "&minversion=100&orderby=time-asc&format=text&limit=4000",
                       startDate, endDate);
}

std::vector<ImportRecord> parseIngvEvents(std::string& text) {
    std::vector<ImportRecord> records;
    forEachLine(text, [&](std::size_t index, std::string_view line) {
        if (!isEventLine(line))
            return;
        const auto fields = firstFields(line);
        const std::string_view time = fields[1];
        if (time.size() <= digitsCut)
            return;
        const std::size_t start = static_cast<std::size_t>(time.data() - text.data());
        const auto first = text.begin() + static_cast<std::ptrdiff_t>(start);
        std::replace(first, first + static_cast<std::ptrdiff_t>(time.size()), 'T', ' ');

        ImportRecord record;
        record.element = index;
        record.UTC = time.substr(0, time.size() - digitsCut);
        record.Latitude = fields[2];
        record.Longitude = fields[3];
        record.Depth = fields[4];
        record.Source = fields[5];
        record.Magnitude = fields[10];
        records.push_back(record);
    });
    return records;
}

IngvSource::IngvSource(FeedContext context, PanelDownload& download)
    : context_(std::move(context)), download_(download) {}

void IngvSource::downloadCsvFromIngv() {
    ProcedureTrace trace(context_.errors, module, "downloadCsvFromIngv");
    const auto url = [&](std::string_view start, std::string_view end) {
        return context_.hosts.Ingv + ingvQuery(start, end);
    };
    fetchFeed({name, eventsFile, context_.session.PrimaryBusy, context_.settings.PrimaryLastNHours,
               true, url, [&] { readCsvIngv(); }},
              trace, context_, download_);
}

void IngvSource::readCsvIngv() {
    ProcedureTrace trace(context_.errors, module, "readCsvIngv");
    std::string text;
    if (!readFeedText(context_, name, eventsFile, trace, text))
        return;
    const std::size_t lines = countLines(text);
    std::vector<ImportRecord> records;
    trace.step([&] { records = parseIngvEvents(text); });
    trace.step([&] { importRecords(records, lines, FeedReader::Ingv, context_); });
}

} // namespace tremor
