#include "practice_feeds/usgs_feed.h"

#include "practice_feeds/fdsn_selection.h"

#include <fmt/format.h>

#include <cctype>
#include <stdexcept>
#include <utility>

namespace tremor::practice {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view queryPath = "/fdsnws/event/1/query";
constexpr std::string_view publicHost = "quakeml:earthquake.usgs.gov";

// "2018-06-04T01:50:48.520Z"
std::string zuluTime(UtcTime time) {
    return formatUtc(time).substr(0, std::string_view("2018-06-04T01:50:48.520").size()) + "Z";
}

std::string percentEncoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || c == '-' || c == '.' || c == '_')
            encoded += c;
        else
            encoded += fmt::format("%{:02X}", byte);
    }
    return encoded;
}

std::string creationInfo(UtcTime time) {
    return fmt::format("<creationInfo><agencyID>us</agencyID><creationTime>{}</creationTime>"
                       "</creationInfo>",
                       zuluTime(time));
}

// Attributes of everything that a data centre contributes; `more` stands between source and event.
std::string catalogAttributes(const std::string& id, const std::string& more) {
    return fmt::format("catalog:datasource=\"us\"{} catalog:eventsource=\"us\" "
                       "catalog:eventid=\"{}\"",
                       more, id);
}

std::string originElement(const FdsnEvent& event, const std::string& attributes,
                          const std::string& publicId, UtcTime reviewed) {
    return fmt::format(
        "<origin {} publicID=\"{}\"><time><value>{}</value></time><longitude><value>{:.4f}</value>"
        "</longitude><latitude><value>{:.4f}</value></latitude><depth><value>{:.0f}</value>"
        "<uncertainty>1800</uncertainty></depth><originUncertainty><horizontalUncertainty>7900"
        "</horizontalUncertainty><preferredDescription>horizontal uncertainty"
        "</preferredDescription></originUncertainty><quality><usedPhaseCount>54</usedPhaseCount>"
        "<standardError>0.97</standardError><azimuthalGap>75</azimuthalGap><minimumDistance>3.837"
        "</minimumDistance></quality><evaluationMode>manual</evaluationMode>{}</origin>",
        attributes, publicId, zuluTime(event.time), event.longitude, event.latitude,
        1000 * event.depth(), creationInfo(reviewed));
}

std::string magnitudeElement(const FdsnEvent& event, const std::string& attributes,
                             const std::string& originId, UtcTime reviewed) {
    return fmt::format("<magnitude {0} publicID=\"{1}#magnitude\"><mag><value>{2:.1f}</value>"
                       "<uncertainty>0.071</uncertainty></mag><type>{3}</type><stationCount>19"
                       "</stationCount><originID>{1}</originID><evaluationMode>manual"
                       "</evaluationMode>{4}</magnitude>",
                       attributes, originId, event.magnitude, event.magnitudeType(),
                       creationInfo(reviewed));
}

std::string eventLine(const FdsnEvent& event) {
    const UtcTime reviewed = event.time + 20min;
    const std::string id = "us" + event.id;
    const std::string origin = fmt::format("{}/archive/product/origin/{}/us/{}/product.xml",
                                           publicHost, id, reviewed.time_since_epoch() / 1ms);
    const std::string attributes =
        catalogAttributes(event.id, fmt::format(" catalog:dataid=\"{}\"", id));
    return fmt::format("<event {} publicID=\"{}{}?eventid={}&amp;format=quakeml\"><description>"
                       "<type>earthquake name</type><text>{}</text></description>{}{}"
                       "<preferredOriginID>{}</preferredOriginID><preferredMagnitudeID>{}#magnitude"
                       "</preferredMagnitudeID><type>earthquake</type>{}</event>\n",
                       catalogAttributes(event.id, ""), publicHost, queryPath, id, event.place(),
                       originElement(event, attributes, origin, reviewed),
                       magnitudeElement(event, attributes, origin, reviewed), origin, origin,
                       creationInfo(reviewed + 10min));
}

} // namespace

UsgsFeed::UsgsFeed(GrowingCatalogue catalogue) : catalogue_(std::move(catalogue)) {}

std::vector<std::string> UsgsFeed::paths() const {
    return {std::string(prefix).append(queryPath)};
}

Answer UsgsFeed::answer(const Request& request) {
    const std::lock_guard lock(mutex_);
    Selection selection;
    try {
        selection = readSelection(request, "quakeml", "quakeml");
    } catch (const std::invalid_argument& error) {
        return badRequest(request, error.what(), catalogue_.now());
    }
    catalogue_.advance();
    const std::vector<FdsnEvent> selected = selection.of(catalogue_.events());
    if (selected.empty())
        return {204};
    return {200, document(selected, request), "application/xml;charset=UTF-8"};
}

std::string UsgsFeed::addEvent(const EventWish& wish) {
    const std::lock_guard lock(mutex_);
    return eventLine(catalogue_.addEvent(wish));
}

std::string UsgsFeed::served() {
    const std::lock_guard lock(mutex_);
    catalogue_.advance();
    return document(Selection().of(catalogue_.events()), {});
}

// No line feed closes the document.
std::string UsgsFeed::document(const std::vector<FdsnEvent>& events, const Request& request) const {
    std::string query;
    for (const auto& [key, value] : request.query)
        query += fmt::format("{}{}={}", query.empty() ? "?" : "&amp;", percentEncoded(key),
                             percentEncoded(value));
    std::string text = fmt::format("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<q:quakeml xmlns=\"http://quakeml.org/xmlns/bed/1.2\" "
                                   "xmlns:anss=\"http://anss.org/xmlns/event/0.1\" "
                                   "xmlns:catalog=\"http://anss.org/xmlns/catalog/0.1\" "
                                   "xmlns:q=\"http://quakeml.org/xmlns/quakeml/1.2\">\n"
                                   "<eventParameters publicID=\"{}{}{}\">\n",
                                   publicHost, queryPath, query);
    for (const FdsnEvent& event : events)
        text += eventLine(event);
    return text + fmt::format("<creationInfo><creationTime>{}</creationTime></creationInfo>\n"
                              "</eventParameters></q:quakeml>",
                              zuluTime(catalogue_.now()));
}

} // namespace tremor::practice
