#include "map/workspace_page_name.h"

#include "core/error_report.h"
#include "core/files.h"
#include "map/map_page.h"

#include <algorithm>
#include <array>
#include <string>

namespace tremor {
namespace {

// What the program and its operators keep in the folder, whether it stands there yet or not.
constexpr auto ownNames = std::to_array<std::string_view>({
    "DB.csv",
    "History",
    "Img",
    "SavingWrkS.html",
    "TremorLedger",
    "TremorLedger.html",
    "TremorLedgerLive",
    "TremorLedgerLive.html",
    "TremorLedgerWEB.html",
    "default.css",
    "hosts.ini",
    "last24H.csv",
    "last_event.html",
    "logs",
    "settings.ini",
    "tremorledger.kml",
});

bool isOnePathComponent(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string_view::npos;
}

bool isMapPage(const std::string& path) {
    constexpr std::uint64_t largestPage = 1U << 20U;
    try {
        return readWholeFile(path, largestPage).starts_with(pageOpening);
    } catch (const RuntimeError&) {
        return false;
    }
}

} // namespace

bool mayNameWorkspacePage(std::string_view applicationPath, std::string_view name) {
    if (!isOnePathComponent(name) || std::ranges::find(ownNames, name) != ownNames.end())
        return false;
    const std::string path = std::string(applicationPath).append("/").append(name);
    return !PathExists(path) || isMapPage(path);
}

} // namespace tremor
