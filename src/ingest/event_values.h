#pragma once

#include "ingest/import_rules.h"

#include <array>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The five values of an event in a document of tags, which the readers scan as text.
namespace tremor {

enum class EventQuantity { Time, Latitude, Longitude, Depth, Magnitude };
inline constexpr std::size_t eventQuantities = 5;

// "longitude" of "<geo:longitude unit='deg'>": the name in a tag, whose "<" and ">" are left out,
// without a prefix. A closing tag, a comment or an instruction has no name.
std::string_view elementName(std::string_view tag);

// An element that a text opens and does not close.
struct OpenElement {
    std::string_view name;
    std::size_t tagEnd; // place of the tag's ">"
};

// The innermost one, "longitude" of "</time><longitude><uncertainty>1</uncertainty>". Comments,
// instructions, CDATA sections, elements that close themselves and a "<" without a ">" open none.
std::optional<OpenElement> innermostOpenElement(std::string_view text);

// One value, with the name of the element that holds it.
struct ElementValue {
    std::string_view element; // empty: the document does not name it
    std::string_view text;
};

// Finds out which value of an event is which. The element's name decides ("latitude" or "lat",
// "longitude", "long" or "lon", "depth", "magnitude" or "mag", "time"; in any case), the first one
// of a name counts. A value without a name has its place in the given order. An element of another
// name has its place only in an event that uses none of these names; beside them it is something
// else, such as a seismic moment.
class EventValues {
  public:
    using Order = std::array<EventQuantity, eventQuantities>;

    explicit EventValues(const Order& order) : order_(order) {}

    void add(const ElementValue& value);

    bool isComplete() const;
    // True when an element has the quantity's name.
    bool names(EventQuantity quantity) const;
    // Nothing when the event lacks it.
    std::optional<ElementValue> find(EventQuantity quantity) const;

  private:
    using Slots = std::array<std::optional<ElementValue>, eventQuantities>;

    Order order_;
    Slots named_;
    Slots placed_;
    std::size_t count_ = 0;
    bool namesAny_ = false;
};

// The events of a document. The records point into its text and into `texts`.
struct ParsedFeed {
    std::vector<ImportRecord> records;
    std::deque<std::string> texts; // values that the reader has rewritten; they never move
    std::size_t incomplete = 0;    // events that lack a value and have no record

    std::string_view keep(std::string value) { return texts.emplace_back(std::move(value)); }
};

// Imports the events of a document of `lines` lines. When some were incomplete, the operator
// meets error 9 once for the document, and the log tells how many there were.
void importParsedFeed(ParsedFeed& feed, std::size_t lines, FeedReader reader, ProcedureTrace& trace,
                      FeedContext& context);

} // namespace tremor
