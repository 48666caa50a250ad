#include "map/kml_writer.h"

#include "core/code_pages.h"
#include "core/common_text.h"
#include "core/files.h"
#include "map/marker_colours.h"
#include "map/marker_list.h"
#include "map/page_text.h"

#include <fmt/format.h>

#include <array>
#include <utility>
#include <vector>

namespace tremor {

namespace {

constexpr std::string_view styleNames =
    "b_14,b_18,b_23,b_28,b_34,b_44,b_50,b_58,g_14,g_18,g_23,g_28,g_34,g_44,g_50,g_58,"
    "o_14,o_18,o_23,o_28,o_34,o_44,o_50,o_58,v_14,v_18,v_23,v_28,v_34,v_44,v_50,v_58,"
    "y_14,y_18,y_23,y_28,y_34,y_44,y_50,y_58";

// Wider classes than those of the pins on the map.
constexpr std::array depthBounds = {10.0, 20.0, 60.0, 300.0, 800.0}; // km
constexpr std::string_view depthLetters = "oygbv";

std::string validUtf8(std::string_view bytes) {
    return isValidUtf8(bytes) ? std::string(bytes) : EncodeUTF8(DecodeUTF8(bytes));
}

// The characters of XML 1.0: no control codes but tab and line ends, not U+FFFE and U+FFFF.
void dropForbiddenCharacters(std::string& utf8) {
    std::erase_if(utf8, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
    });
    for (const std::string_view noCharacter : {"\xEF\xBF\xBE", "\xEF\xBF\xBF"})
        if (utf8.find(noCharacter) != std::string::npos)
            utf8 = replaceAll(utf8, noCharacter, "");
}

// A value for the text of an element. Inside CDATA, where the description is HTML, the same
// escapes keep it text, and without ">" it cannot end the section.
std::string xmlText(std::string_view value) {
    std::string utf8 = validUtf8(value);
    dropForbiddenCharacters(utf8);
    std::string text;
    text.reserve(utf8.size());
    for (const char c : utf8) {
        if (c == '&')
            text += "&amp;";
        else if (c == '<')
            text += "&lt;";
        else if (c == '>')
            text += "&gt;";
        else
            text += c;
    }
    return text;
}

void addHead(PageText& kml) {
    kml.line("<?xml version='1.0' encoding='UTF-8'?>");
    kml.line("<kml xmlns='http://earth.google.com/kml/2.1'>");
    kml.line("<Document>");
    kml.line("<name>ORVA, TremorLedger</name>");
    kml.line("<open>1</open>");
}

void addStyle(PageText& kml, std::string_view name, std::string_view webHost) {
    kml.line(fmt::format("<StyleMap id='{}'>", name));
    for (const std::string_view key : {"normal", "highlight"})
        kml.line(fmt::format("<Pair><key>{}</key><styleUrl>#{}Act</styleUrl></Pair>", key, name));
    kml.line("</StyleMap>");
    kml.line(fmt::format("<Style id='{}Act'>", name));
    kml.line("<IconStyle>");
    kml.line(fmt::format("<Icon><href>{}/TremorLedger/Img/{}.png</href></Icon>", xmlText(webHost),
                         name));
    kml.line("</IconStyle>");
    kml.line("<LabelStyle><scale>1</scale></LabelStyle>");
    kml.line("</Style>");
}

// One event, in dot texts.
struct KmlEvent {
    std::string_view utc;
    std::string_view latitude;
    std::string_view longitude;
    std::string_view magnitude;
    std::string_view depth;
    std::string_view source;
};

// Leaves the style alone outside the classes.
void chooseStyle(std::string& style, const KmlEvent& event, const NumberLocale& locale) {
    const auto letter = classOf(ParseDotDouble(event.depth, locale), depthBounds);
    const auto number = pinNumber(ParseDotDouble(event.magnitude, locale));
    if (letter && number)
        style = fmt::format("#{}_{}", depthLetters[*letter], *number);
}

void addPlacemark(PageText& kml, const KmlEvent& event, std::string_view style) {
    const std::string utc = xmlText(event.utc);
    const std::string magnitude = xmlText(event.magnitude);
    kml.line("<Placemark>");
    kml.line(fmt::format("<name>{} Mg: {}</name>", utc, magnitude));
    kml.line(fmt::format("<styleUrl>{}</styleUrl>", style));
    kml.line("<description><![CDATA[");
    kml.line(fmt::format("<ul><li>UTC: {}</li>", utc));
    kml.line(fmt::format("<li>Depth: {}</li>", xmlText(event.depth)));
    kml.line(fmt::format("<li>Magnitude: {}</li>", magnitude));
    kml.line(fmt::format("<li>Source: {}</li>", xmlText(event.source)));
    kml.line("</ul>");
    kml.line("]]>");
    kml.line("</description>");
    kml.line("<Style><IconStyle><scale>1</scale></IconStyle></Style>");
    kml.line("<Point>");
    kml.line(fmt::format("<coordinates>{},{}, 0</coordinates>", xmlText(event.longitude),
                         xmlText(event.latitude)));
    kml.line("</Point>");
    kml.line("</Placemark>");
}

// The elements of a split list; the values stand between the first and the last one.
class ListElements {
  public:
    explicit ListElements(std::string_view list) : parts_(split(list, MarkerList::separator)) {}

    std::size_t size() const { return parts_.size(); }
    std::string_view operator[](std::size_t index) const {
        if (index + 1 >= parts_.size())
            throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
        return parts_[index];
    }

  private:
    std::vector<std::string_view> parts_;
};

void addPlacemarks(PageText& kml, const KmlLists& lists, const NumberLocale& locale) {
    const ListElements utc(lists.utc);
    const ListElements latitude(lists.latitude);
    const ListElements longitude(lists.longitude);
    const ListElements magnitude(lists.magnitude);
    const ListElements depth(lists.depth);
    const ListElements source(lists.source);
    std::string style;
    for (std::size_t i = 1; i + 1 < utc.size(); ++i) {
        const KmlEvent event{utc[i], latitude[i], longitude[i], magnitude[i], depth[i], source[i]};
        chooseStyle(style, event, locale);
        addPlacemark(kml, event, style);
    }
}

} // namespace

std::string kmlDocument(const KmlLists& lists, std::string_view webHost,
                        const NumberLocale& locale) {
    PageText kml;
    addHead(kml);
    for (const std::string_view name : split(styleNames, ','))
        addStyle(kml, name, webHost);
    kml.line("<Folder>");
    addPlacemarks(kml, lists, locale);
    kml.line("</Folder>");
    kml.line("</Document>");
    kml.line("</kml>");
    return kml.text();
}

KmlWriter::KmlWriter(std::string applicationPath, std::string webHost, NumberLocale locale,
                     ErrorReport& errors)
    : applicationPath_(std::move(applicationPath)),
      webHost_(std::move(webHost)),
      locale_(std::move(locale)),
      errors_(errors) {}

void KmlWriter::KmlGenerator(std::string_view utc, std::string_view latitude,
                             std::string_view longitude, std::string_view magnitude,
                             std::string_view /*colours*/, std::string_view depth,
                             std::string_view source) const {
    ProcedureTrace trace(errors_, "Form - panel", "KmlGenerator");
    std::string text;
    const bool complete = trace.step([&] {
        text = kmlDocument({utc, latitude, longitude, magnitude, depth, source}, webHost_, locale_);
    });
    if (!complete)
        return;
    text += "\r\n"; // as a text printed to a file ends
    trace.step([&] { writeFileAtomically(applicationPath_ + "/tremorledger.kml", text, false); });
}

} // namespace tremor
