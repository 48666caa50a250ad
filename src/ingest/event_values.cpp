#include "ingest/event_values.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>

namespace tremor {

namespace {

struct QuantityName {
    std::string_view name;
    EventQuantity quantity;
};

constexpr std::array<QuantityName, 9> quantityNames = {{
    {"time", EventQuantity::Time},
    {"latitude", EventQuantity::Latitude},
    {"lat", EventQuantity::Latitude},
    {"longitude", EventQuantity::Longitude},
    {"long", EventQuantity::Longitude},
    {"lon", EventQuantity::Longitude},
    {"depth", EventQuantity::Depth},
    {"magnitude", EventQuantity::Magnitude},
    {"mag", EventQuantity::Magnitude},
}};

bool equalNames(std::string_view first, std::string_view second) {
    return first.size() == second.size() &&
           ::strncasecmp(first.data(), second.data(), first.size()) == 0;
}

std::optional<EventQuantity> quantityNamed(std::string_view element) {
    for (const auto& [name, quantity] : quantityNames) {
        if (equalNames(element, name))
            return quantity;
    }
    return std::nullopt;
}

std::size_t indexOf(EventQuantity quantity) {
    return static_cast<std::size_t>(quantity);
}

} // namespace

std::string_view elementName(std::string_view tag) {
    const std::string_view name = tag.substr(0, tag.find_first_of("/!? \t\r\n"));
    return name.substr(name.find(':') + 1); // npos + 1 is 0
}

std::optional<OpenElement> innermostOpenElement(std::string_view text) {
    std::size_t closed = 0; // elements whose closing tags the search has passed
    for (std::size_t start = text.rfind('<'); start != std::string_view::npos;
         start = text.rfind('<')) {
        const std::string_view behind = text.substr(start + 1);
        text = text.substr(0, start);
        const std::size_t end = behind.find('>');
        if (end == std::string_view::npos)
            continue;
        const std::string_view tag = behind.substr(0, end);
        if (tag.starts_with('/')) {
            ++closed;
            continue;
        }
        const std::string_view name = elementName(tag);
        if (name.empty() || tag.ends_with('/'))
            continue;
        if (closed == 0)
            return OpenElement{name, start + 1 + end};
        --closed;
    }
    return std::nullopt;
}

void EventValues::add(const ElementValue& value) {
    if (count_ < eventQuantities)
        placed_[indexOf(order_[count_])] = value;
    ++count_;
    const auto quantity = quantityNamed(value.element);
    if (!quantity)
        return;
    namesAny_ = true;
    if (!named_[indexOf(*quantity)])
        named_[indexOf(*quantity)] = value;
}

bool EventValues::isComplete() const {
    return std::all_of(order_.begin(), order_.end(),
                       [this](EventQuantity quantity) { return find(quantity).has_value(); });
}

bool EventValues::names(EventQuantity quantity) const {
    return named_[indexOf(quantity)].has_value();
}

std::optional<ElementValue> EventValues::find(EventQuantity quantity) const {
    if (names(quantity))
        return named_[indexOf(quantity)];
    const auto& placed = placed_[indexOf(quantity)];
    if (namesAny_ && placed && !placed->element.empty())
        return std::nullopt;
    return placed;
}

void importParsedFeed(ParsedFeed& feed, std::size_t lines, FeedReader reader, ProcedureTrace& trace,
                      FeedContext& context) {
    trace.step([&] {
        if (feed.incomplete > 0)
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    });
    trace.step([&] { importRecords(feed.records, lines, reader, context); });
    if (feed.incomplete > 0)
        context.log.addLogToList(
            fmt::format("{} events lack a value and were not imported", feed.incomplete));
}

} // namespace tremor
