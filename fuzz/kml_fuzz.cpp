// Any bytes as six lists of events: the KML text is well-formed XML with one placemark an event, or
// the lists are refused for their lengths.
#include "core/common_text.h"
#include "core/error_report.h"
#include "map/kml_writer.h"
#include "map/marker_list.h"

#include <libxml/parser.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

namespace {

using namespace tremor;

constexpr char listEnd = '\0';

std::size_t countOf(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + word.size()))
        ++count;
    return count;
}

std::size_t countOfPlacemarks(const xmlNode* node) {
    std::size_t count = 0;
    for (; node != nullptr; node = node->next) {
        const std::string_view name =
            node->name == nullptr ? "" : reinterpret_cast<const char*>(node->name);
        count += (name == "Placemark" ? 1U : 0U) + countOfPlacemarks(node->children);
    }
    return count;
}

void require(bool condition) {
    if (!condition)
        std::abort();
}

void check(const KmlLists& lists) {
    std::string text;
    try {
        text = kmlDocument(lists, "https://maps.example.org", NumberLocale::comma());
    } catch (const RuntimeError&) {
        return;
    }
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), "kml", nullptr,
                      XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE),
        xmlFreeDoc);
    require(document != nullptr);
    const std::size_t values = countOf(lists.utc, "'");
    require(countOfPlacemarks(xmlDocGetRootElement(document.get())) ==
            (values < 2 ? 0 : values - 1));
}

} // namespace

// The first byte tells whether the rest is one value in every place, with apostrophes as the marker
// lists write them, or six raw lists that end in zero bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 2 == 0) {
        MarkerList list;
        list.Add(bytes);
        list.Add("42.7");
        const std::string_view text = list.text();
        check({text, text, text, text, text, text});
        return 0;
    }
    const auto parts = split(bytes, listEnd);
    std::array<std::string_view, 6> lists{};
    for (std::size_t i = 0; i < lists.size() && i < parts.size(); ++i)
        lists.at(i) = parts[i];
    check({lists[0], lists[1], lists[2], lists[3], lists[4], lists[5]});
    return 0;
}
