#include "map/page_values.h"

#include "core/conversions.h"

#include <fmt/format.h>

#include <algorithm>

namespace tremor {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isPlainAddressCharacter(char c) {
    return isDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("-._~:/[]@").find(c) != std::string_view::npos;
}

bool isDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, isDigit);
}

// "010" is none: a script takes it for octal.
bool isPlainNumber(std::string_view text) {
    const std::size_t dot = text.find('.');
    const std::string_view whole = text.substr(0, dot);
    if (!isDigits(whole) || (whole.size() > 1 && whole.front() == '0'))
        return false;
    return dot == std::string_view::npos || isDigits(text.substr(dot + 1));
}

std::string overHttp(std::string_view host) {
    const std::size_t scheme = host.find("://");
    const std::string_view name = scheme == std::string_view::npos ? host : host.substr(scheme + 3);
    return fmt::format("http://{}", name);
}

} // namespace

PageValues pageValues(const AppSettings& settings, const Hosts& hosts, const NumberLocale& locale,
                      std::string_view lastEpicPath) {
    PageValues values;
    values.CenterLatitude = doubleToText(settings.CenterLatitude, NumberLocale::point());
    values.CenterLongitude = doubleToText(settings.CenterLongitude, NumberLocale::point());
    values.Zoom = std::to_string(settings.Zoom);
    values.LastEventMapZoomLevel = zoomLiteral(settings.LastEventMapZoomLevel, locale);
    values.SaveInKml = settings.SaveInKml;
    values.SaveInCsv = settings.SaveInCsv;
    values.mapsApi = percentEncoded(hosts.MapsApi);
    values.mapsApiHttp = overHttp(values.mapsApi);
    values.webHost = percentEncoded(hosts.WebHost);
    values.jsonProxy = percentEncoded(hosts.JsonProxy);
    values.lastEpic = percentEncoded(lastEpicPath);
    return values;
}

std::string percentEncoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        if (isPlainAddressCharacter(c))
            encoded += c;
        else
            encoded += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return encoded;
}

std::string zoomLiteral(std::string_view text, const NumberLocale& locale) {
    constexpr std::string_view usualZoom = "8";
    if (isPlainNumber(text))
        return std::string(text);
    if (!isNumericText(text, locale))
        return std::string(usualZoom);
    return doubleToText(textToDouble(text, locale), NumberLocale::point());
}

} // namespace tremor
