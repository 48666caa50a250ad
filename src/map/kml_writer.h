#pragma once

#include "core/error_report.h"
#include "core/number_locale.h"

#include <string>
#include <string_view>

// The markers of the main map as a KML 2.1 file for the web site
// (https://developers.google.com/kml/documentation/kml_21tutorial).
namespace tremor {

// The events of a document as marker lists ("'v1'v2'", see MarkerList).
struct KmlLists {
    std::string_view utc;
    std::string_view latitude;
    std::string_view longitude;
    std::string_view magnitude;
    std::string_view depth; // km
    std::string_view source;
};

// The text of the file: forty styles, one for each pin image below `webHost` (scheme and host
// without a closing slash), and a placemark an event. Lines end in CR LF; the text is UTF-8. A
// depth outside 0 to 800 km or a magnitude outside 0 to 10 repeats the style of the placemark
// before. Error 9 when a list has fewer values than `utc`.
//
// Values never become markup: "&", "<" and ">" are escaped, characters that XML does not allow are
// left out, and bytes that are no UTF-8 are taken for Windows-1252.
std::string kmlDocument(const KmlLists& lists, std::string_view webHost,
                        const NumberLocale& locale);

// Writes `tremorledger.kml` into the program's folder.
class KmlWriter {
  public:
    KmlWriter(std::string applicationPath, std::string webHost, NumberLocale locale,
              ErrorReport& errors);

    // Replaces the file in one step, so that whoever uploads it never sees half of one. The styles
    // are worked out anew, so `colours` is not looked at.
    void KmlGenerator(std::string_view utc, std::string_view latitude, std::string_view longitude,
                      std::string_view magnitude, std::string_view colours, std::string_view depth,
                      std::string_view source) const;

  private:
    std::string applicationPath_;
    std::string webHost_;
    NumberLocale locale_;
    ErrorReport& errors_;
};

} // namespace tremor
