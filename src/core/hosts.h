#pragma once

#include <string>
#include <string_view>

namespace tremor {

// Addresses of the services. They are no settings of the operator: hosts.ini beside the program is
// optional, read once at start ("key=value" lines below "[HOSTS]"), and a missing key keeps its
// default. A value is scheme, host and optional port without a closing slash.
struct Hosts {
    std::string InternetProbe = "https://www.wikipedia.org";
    std::string Ingv = "https://webservices.ingv.it";
    std::string Usgs = "https://earthquake.usgs.gov";
    std::string Emsc = "https://www.emsc-csem.org";
    std::string Iside = "http://iside.rm.ingv.it";
    std::string Telegram = "https://api.telegram.org";
    std::string TelegramHelp = "https://core.telegram.org/bots";
    std::string GeoNames = "https://download.geonames.org";
    std::string StaticMap = "embedded";
    std::string MapsApi = "https://maps.googleapis.com";
    std::string MapsEngine = "embedded"; // or "online"
    std::string TileUrl;
    std::string TileAttribution;
    std::string WebHost;
    std::string JsonProxy;
    std::string CaFile;
    int UnattendedAnswerSeconds = 60; // 0: a runtime-error box waits for ever
};

inline constexpr int longestUnattendedAnswer = 86400; // seconds

// Reads the text of a hosts.ini. Lines that are no "key=value", unknown keys, empty values and
// numbers that are none or lie outside 0 to longestUnattendedAnswer are passed over; blanks around
// key and value and a closing "/" are cut; keys outside [HOSTS] do not count; a later line wins.
Hosts parseHosts(std::string_view text);

// The same from a file; the defaults when it is missing, cannot be read or exceeds 1 MiB.
Hosts readHosts(std::string_view path);

} // namespace tremor
