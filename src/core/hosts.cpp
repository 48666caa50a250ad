#include "core/hosts.h"

#include "core/common_text.h"
#include "core/error_report.h"
#include "core/files.h"

#include <array>
#include <charconv>
#include <utility>

namespace tremor {

namespace {

constexpr std::array<std::pair<std::string_view, std::string Hosts::*>, 16> textKeys = {{
    {"InternetProbe", &Hosts::InternetProbe},
    {"Ingv", &Hosts::Ingv},
    {"Usgs", &Hosts::Usgs},
    {"Emsc", &Hosts::Emsc},
    {"Iside", &Hosts::Iside},
    {"Telegram", &Hosts::Telegram},
    {"TelegramHelp", &Hosts::TelegramHelp},
    {"GeoNames", &Hosts::GeoNames},
    {"StaticMap", &Hosts::StaticMap},
    {"MapsApi", &Hosts::MapsApi},
    {"MapsEngine", &Hosts::MapsEngine},
    {"TileUrl", &Hosts::TileUrl},
    {"TileAttribution", &Hosts::TileAttribution},
    {"WebHost", &Hosts::WebHost},
    {"JsonProxy", &Hosts::JsonProxy},
    {"CaFile", &Hosts::CaFile},
}};

void setUnattendedAnswerSeconds(Hosts& hosts, std::string_view value) {
    int seconds = 0;
    const char* const end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, seconds);
    if (error == std::errc() && last == end && seconds >= 0 && seconds <= longestUnattendedAnswer)
        hosts.UnattendedAnswerSeconds = seconds;
}

void setHost(Hosts& hosts, std::string_view key, std::string_view value) {
    if (key == "UnattendedAnswerSeconds") {
        setUnattendedAnswerSeconds(hosts, value);
        return;
    }
    if (value.ends_with('/'))
        value.remove_suffix(1);
    for (const auto& [name, field] : textKeys) {
        if (name == key && !value.empty())
            hosts.*field = value;
    }
}

} // namespace

Hosts parseHosts(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // written by some editors
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());

    Hosts hosts;
    bool inHosts = false;
    for (std::string_view line : split(text, '\n')) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        line = trim(line);
        const std::size_t equals = line.find('=');
        if (line.starts_with('['))
            inHosts = line == "[HOSTS]";
        else if (inHosts && equals != std::string_view::npos)
            setHost(hosts, trim(line.substr(0, equals)), trim(line.substr(equals + 1)));
    }
    return hosts;
}

Hosts readHosts(std::string_view path) {
    constexpr std::uint64_t largestFile = 1U << 20;
    try {
        return FileExists(path) ? parseHosts(readWholeFile(path, largestFile)) : Hosts{};
    } catch (const RuntimeError&) {
        return {};
    }
}

} // namespace tremor
