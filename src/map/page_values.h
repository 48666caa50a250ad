#pragma once

#include "core/hosts.h"
#include "core/number_locale.h"
#include "core/settings.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tremor {

// What the pages take from settings, hosts.ini and the program's folder, in the form in which it
// goes into their text: number literals, and addresses that end neither a script string nor an
// attribute.
struct PageValues {
    std::string CenterLatitude;        // "42.5"
    std::string CenterLongitude;       // "13.25"
    std::string Zoom;                  // "7"
    std::string LastEventMapZoomLevel; // "8"
    std::int32_t SaveInKml = 0;
    std::int32_t SaveInCsv = 0;
    std::string mapsApi;     // "https://maps.example"
    std::string mapsApiHttp; // the same host over http
    std::string webHost;     // "https://web.example"; empty: the host of the page itself
    std::string jsonProxy;   // as webHost
    std::string lastEpic;    // "/opt/tremorledger/Img/lastepic.gif"; empty: there is no such file
};

// `lastEpicPath` is the file's path, empty when there is none.
PageValues pageValues(const AppSettings& settings, const Hosts& hosts, const NumberLocale& locale,
                      std::string_view lastEpicPath);

// Letters, digits and the marks of a plain address ("-._~:/[]@") as they stand, every other byte
// as "%27".
std::string percentEncoded(std::string_view text);

// The text of a setting as a number literal. A plain dot number ("8", "7.5") stays as it is,
// another number of the locale ("7,5", " 08") becomes one, and what is no number is 8.
std::string zoomLiteral(std::string_view text, const NumberLocale& locale);

} // namespace tremor
