#include "map/js_maps.h"

#include "core/files.h"
#include "map/workspace_page_name.h"

#include <fmt/format.h>

#include <utility>

namespace tremor {
namespace {

constexpr std::string_view module = "Module - JSMaps";

constexpr std::string_view mainMap = "TremorLedger.html";
constexpr std::string_view lastEventMap = "last_event.html";
constexpr std::string_view webPage = "TremorLedgerWEB.html";
constexpr std::string_view lastEpic = "Img/lastepic.gif";

} // namespace

JSMaps::JSMaps(const AppSettings& settings, Environment environment, PageBrowsers browsers,
               Log& log, ErrorReport& errors)
    : settings_(settings),
      environment_(std::move(environment)),
      browsers_(browsers),
      log_(log),
      errors_(errors) {}

void JSMaps::generaDefaultCSS() {
    ProcedureTrace trace(errors_, module, "generaDefaultCSS");
    write(trace, "default.css", defaultCss());
}

void JSMaps::Maps() {
    ProcedureTrace trace(errors_, module, "Maps");
    const std::string page = bridgePage({});
    writeAndShow(trace, mainMap, page, browsers_.WebBrowser1);
    writeAndShow(trace, lastEventMap, page, browsers_.wbr_last);
}

void JSMaps::MapsLastEvent() {
    ProcedureTrace trace(errors_, module, "MapsLastEvent");
    writeAndShow(trace, lastEventMap, bridgePage({.bLastEventPage = true}), browsers_.wbr_last);
}

void JSMaps::MapsSavingWrkS() {
    ProcedureTrace trace(errors_, module, "MapsSavingWrkS");
    writeAndShow(trace, "SavingWrkS.html", bridgePage({}), browsers_.wbrSaveMaps);
}

void JSMaps::MapsWebKml() {
    ProcedureTrace trace(errors_, module, "MapsWebKml");
    write(trace, webPage, mapPage({.bWebPage = true}, values()));
}

void JSMaps::MapsWebCsv() {
    ProcedureTrace trace(errors_, module, "MapsWebCsv");
    write(trace, webPage, csvWebPage(values()));
}

void JSMaps::MapsWorkspaces(std::span<const WorkspacePage> pages) {
    ProcedureTrace trace(errors_, module, "MapsWorkspaces");
    for (const WorkspacePage& page : pages) {
        if (page.browser == nullptr)
            continue;
        if (!mayNameWorkspacePage(environment_.applicationPath, page.name)) {
            log_.addLogToList(fmt::format(
                "Warning: workspace \"{}\" has no map: its name cannot be that of a page.",
                page.name));
            continue;
        }
        writeAndShow(trace, page.name, bridgePage({.bWorkspacePage = true}), *page.browser);
    }
}

std::string JSMaps::path(std::string_view file) const {
    return fmt::format("{}/{}", environment_.applicationPath, file);
}

PageValues JSMaps::values() const {
    const std::string image = path(lastEpic);
    return pageValues(settings_, environment_.hosts, environment_.locale,
                      FileExists(image) ? image : "");
}

std::string JSMaps::bridgePage(const PageVariant& variant) {
    const PageValues given = values();
    if (given.lastEpic.empty())
        log_.addLogToList(
            fmt::format("Warning: {}\\Img\\lastepic.gif not found.", environment_.applicationPath));
    return mapPage(variant, given);
}

void JSMaps::write(ProcedureTrace& trace, std::string_view file, std::string_view text) const {
    trace.step([&] { writeFileAtomically(path(file), fmt::format("{}\r\n", text), false); });
}

void JSMaps::writeAndShow(ProcedureTrace& trace, std::string_view file, std::string_view text,
                          WebBrowser& browser) const {
    write(trace, file, text);
    browser.Navigate(path(file));
}

} // namespace tremor
