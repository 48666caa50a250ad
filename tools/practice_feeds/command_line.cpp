#include "practice_feeds/command_line.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace tremor::practice {

namespace {

template <class Number>
Number numberOf(std::string_view option, std::string_view text, Number lowest, Number highest) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() ||
        !(value >= lowest && value <= highest))
        throw std::invalid_argument(fmt::format("{} takes a number from {} to {}, not \"{}\"",
                                                option, lowest, highest, text));
    return value;
}

} // namespace

CommandLine parseCommandLine(const std::vector<std::string_view>& words) {
    constexpr double aYear = 366.0 * 24 * 3600;
    CommandLine line;
    double every = 180;
    double speed = 1;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view option = words[i];
        const auto value = [&]() {
            if (i + 1 == words.size())
                throw std::invalid_argument(fmt::format("{} wants a value", option));
            return words[++i];
        };
        if (option == "--help")
            line.help = true;
        else if (option == "--fixed")
            line.server.catalogue.fixed = true;
        else if (option == "--port")
            line.server.port = numberOf(option, value(), 0, 65535);
        else if (option == "--data")
            line.server.dataFolder = value();
        else if (option == "--every")
            every = numberOf(option, value(), 0.0, aYear);
        else if (option == "--speed")
            speed = numberOf(option, value(), 0.001, 1e6);
        else if (option == "--seed")
            line.server.catalogue.seed = numberOf<std::uint32_t>(option, value(), 0, UINT32_MAX);
        else if (option == "--seiscomp")
            line.server.seisCompFolder = value();
        else if (option == "--liveloc")
            line.server.livelocFolder = value();
        else if (option == "--pagerlink")
            line.server.pagerlinkPort = numberOf(option, value(), 0, 65535);
        else if (option == "--hosts-ini")
            line.hostsIniFile = value();
        else
            throw std::invalid_argument(fmt::format("unknown option {}", option));
    }
    if (!line.help && line.server.dataFolder.empty())
        throw std::invalid_argument("--data FOLDER is missing");
    line.server.catalogue.every =
        std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(1000 * every / speed)));
    return line;
}

std::string_view helpText() {
    return R"(practice_feeds --data FOLDER [OPTIONS]

Stands in for the remote services on 127.0.0.1 until it gets SIGTERM or SIGINT.

  --data FOLDER      the documents to serve; holds ingv/... and geonames/...
  --port N           port to listen on; 0, the default, takes any free one
  --every SECONDS    time between two new events; 180 by default, 0 for none
  --speed X          new events come X times as often; 1 by default
  --seed N           decides the sequence of new events; 1 by default
  --fixed            serve INGV's document byte for byte and whole, whatever a request selects;
                     no new events anywhere but those of /practice/add
  --seiscomp FOLDER  write events there as SeisComP does: evNNNN/last
  --liveloc FOLDER   write events there as a locator with a SEISAN database does
  --pagerlink PORT   stand in for a Pagerlink server on that UDP port; 0 takes any free one
  --hosts-ini FILE   write a hosts.ini that points the program here
  --help             this text

Services:
  /fdsnws/event/1/query                 INGV, text format
  /usgs/fdsnws/event/1/query            USGS, QuakeML
  /service/rss/rss.php                  EMSC, RSS
  /bot1:practice/METHOD                 Telegram's Bot API: getMe, getUpdates, sendMessage,
                                        sendLocation
  /iside/standard/index.jsp             the ISIDE site; operator@example.org, secret
  /geonames/export/dump/                GeoNames: index page, countryInfo.txt, AD.zip,
                                        FR.zip
  /                                     200, for the Internet probe
Control, by GET or POST:
  /practice/fault?kind=KIND[&count=N]   404, 204, 500, cut, stall, garbage, slow or none,
                                        for the next N requests or for all
  /practice/add[?source=NAME][&age=MINUTES][&at=LATITUDE,LONGITUDE]
                                        one new event now, or one of that origin that comes late;
                                        ingv (the default), usgs, emsc, iside, seiscomp or
                                        liveloc
  /practice/relocate                    another solution for SeisComP's newest event
  /practice/served[?source=NAME]        the whole current catalogue of a service
  /practice/given[?source=NAME]         each line of the documents given without a fault, once
  /practice/hold                        no new events and relocations until /practice/go
  /practice/last                        the last document given without a fault
  /practice/log                         the requests received so far
  /practice/pagerlink                   Pagerlink's port and the datagrams received so far
  /practice/pagerlink/fault?kind=KIND   silent, refusing, garbage, foreign, late or none
  /practice/pagerlink/users?names=A%20B who is connected
  /practice/pagerlink/clear             forget the datagrams
  /practice/geonames/fault?kind=KIND[&count=N]
                                        as /practice/fault, for GeoNames alone
  /practice/iside                       the ISIDE site's last export
  /practice/iside/fault?kind=KIND       login-stalls, login-refused, form-changed, search-stalls,
                                        export-dropped, export-empty, expired or none
  /practice/telegram                    the messages that the bot has sent so far
  /practice/telegram/write?id=N&first_name=NAME[&last_name=NAME][&text=TEXT]
                                        somebody writes to the bot
  /practice/telegram/block?id=N         somebody blocks it; unblock lets it in again
  /practice/telegram/clear              forget the messages
  /practice/telegram/fault?kind=KIND[&count=N]   as above, for Telegram alone
)";
}

} // namespace tremor::practice
