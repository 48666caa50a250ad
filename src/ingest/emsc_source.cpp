#include "ingest/emsc_source.h"

#include "core/common_text.h"
#include "ingest/feed_fetch.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tremor {

namespace {

constexpr std::string_view module = "Form - panel";
constexpr std::string_view name = "EMSC";
constexpr std::string_view eventsFile = "FeedEmscEvents.csv";

constexpr std::string_view itemStart = "<item>";
constexpr std::string_view itemEnd = "</item>";
constexpr std::string_view linkEnd = "</link>";
constexpr std::string_view closingStart = "</";

constexpr std::string_view numberCharacters = "0123456789.,";
constexpr std::string_view timeCharacters = "0123456789-: ";

// Stands for the name of what holds no opening tag.
constexpr std::string_view noElement = "/";

constexpr EventValues::Order valueOrder = {EventQuantity::Latitude, EventQuantity::Longitude,
                                           EventQuantity::Depth, EventQuantity::Magnitude,
                                           EventQuantity::Time};

std::string_view trimLine(std::string_view line) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t start = line.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return line.substr(start, line.find_last_not_of(blanks) + 1 - start);
}

// What follows the first character of the first `fragment`, in any case; all when there is none.
std::string_view cutAt(std::string_view part, std::string_view fragment) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    const auto found =
        std::search(part.begin(), part.end(), fragment.begin(), fragment.end(),
                    [&](char left, char right) { return lower(left) == lower(right); });
    if (found != part.end())
        part.remove_prefix(static_cast<std::size_t>(found - part.begin()) + 1);
    return part;
}

std::string onlyOf(std::string_view text, std::string_view characters) {
    std::string kept;
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept), [&](char character) {
        return characters.find(character) != std::string_view::npos;
    });
    return kept;
}

// The item cut at its closing tags. Each part begins with the closing tag of the value before:
// "geo:lat><geo:long>0.20".
EventValues valuesOf(std::string_view item) {
    EventValues values(valueOrder);
    const std::size_t link = item.find(linkEnd);
    if (link != std::string_view::npos)
        item.remove_prefix(link + 1);
    for (;;) {
        const std::size_t end = item.find(closingStart);
        const std::string_view part = item.substr(0, end);
        const auto element = innermostOpenElement(part);
        values.add({element ? element->name : noElement, part});
        if (end == std::string_view::npos)
            return values;
        item.remove_prefix(end + closingStart.size());
        if (item.starts_with(itemEnd.substr(closingStart.size())))
            return values;
    }
}

// The value with the ">" of its tag in front. `tagTail` is the end of that tag where the document
// does not use the usual name.
std::string_view taggedValue(const EventValues& values, EventQuantity quantity,
                             std::string_view tagTail) {
    const std::string_view part = values.find(quantity)->text;
    return values.names(quantity) ? part.substr(innermostOpenElement(part)->tagEnd)
                                  : cutAt(part, tagTail);
}

void addItem(std::size_t index, std::string_view item, ParsedFeed& feed) {
    const EventValues values = valuesOf(item);
    if (!values.isComplete()) {
        ++feed.incomplete;
        return;
    }
    const auto value = [&](EventQuantity quantity, std::string_view tagTail) {
        return cutAt(taggedValue(values, quantity, tagTail), ">");
    };
    std::string latitude(taggedValue(values, EventQuantity::Latitude, "t>"));
    std::erase(latitude, '>');
    const std::string time = onlyOf(value(EventQuantity::Time, "me>"), timeCharacters);

    ImportRecord record;
    record.element = index;
    record.UTC = feed.keep(std::string(trimRight(time)).append(".000"));
    record.Latitude = feed.keep(std::move(latitude));
    record.Longitude = value(EventQuantity::Longitude, "g>");
    record.Depth = feed.keep(onlyOf(value(EventQuantity::Depth, "h>"), numberCharacters));
    record.Magnitude = feed.keep(onlyOf(value(EventQuantity::Magnitude, "e>"), numberCharacters));
    record.Source = name;
    feed.records.push_back(record);
}

// An item that stands on several lines.
class SpreadItem {
  public:
    void open(std::size_t index) {
        open_ = true;
        index_ = index;
        text_ = itemStart;
    }
    void abandon() { open_ = false; }

    void addLine(std::string_view line, ParsedFeed& feed) {
        if (!open_)
            return;
        text_ += line;
        if (line.find(itemEnd) == std::string_view::npos)
            return;
        open_ = false;
        addItem(index_, feed.keep(std::exchange(text_, {})), feed);
    }

  private:
    bool open_ = false;
    std::size_t index_ = 0;
    std::string text_;
};

} // namespace

ParsedFeed parseEmscEvents(std::string_view text) {
    ParsedFeed feed;
    SpreadItem spread;
    forEachLine(text, [&](std::size_t index, std::string_view line) {
        if (index == 0)
            return;
        const std::string_view trimmed = trimLine(line);
        if (trimmed == itemStart) {
            spread.open(index);
        } else if (line.starts_with(itemStart)) {
            spread.abandon();
            addItem(index, line, feed);
        } else {
            spread.addLine(trimmed, feed);
        }
    });
    return feed;
}

EmscSource::EmscSource(FeedContext context, PanelDownload& download)
    : context_(std::move(context)), download_(download) {}

void EmscSource::downloadCsvFromEmsc() {
    ProcedureTrace trace(context_.errors, module, "downloadCsvFromEmsc");
    // The service always sends its latest events, whatever the days.
    const auto url = [&](std::string_view, std::string_view) {
        return std::string(context_.hosts.Emsc).append(emscQuery);
    };
    fetchFeed({name, eventsFile, context_.session.AlternateBusy,
               context_.settings.AlternateLastNHours, true, url, [&] { readCsvEmsc(); }},
              trace, context_, download_);
}

void EmscSource::readCsvEmsc() {
    ProcedureTrace trace(context_.errors, module, "readCsvEmsc");
    std::string text;
    if (!readFeedText(context_, name, eventsFile, trace, text))
        return;
    ParsedFeed feed;
    trace.step([&] { feed = parseEmscEvents(text); });
    importParsedFeed(feed, countLines(text), FeedReader::Emsc, trace, context_);
}

} // namespace tremor
