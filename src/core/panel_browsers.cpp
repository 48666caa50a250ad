#include "core/panel_browsers.h"

#include "ingest/qt_site_browser.h"
#include "map/qt_web_browser.h"

#include <utility>

namespace tremor {

QtBrowserMaker::QtBrowserMaker(Hosts hosts, std::string applicationPath, QtClock& clock)
    : hosts_(std::move(hosts)), applicationPath_(std::move(applicationPath)), clock_(clock) {}

std::unique_ptr<WebBrowser> QtBrowserMaker::makeBrowser(QWidget& frame, Log& log,
                                                        const AppSettings& settings) {
    const auto report = [&log](std::string_view line) { log.addLogToList(line); };
    if (!site_)
        site_ = std::make_unique<MapSite>(MapSite::Environment{
            hosts_, applicationPath_, [&settings] { return settings.PathPins; }, report});
    return std::make_unique<QtWebBrowser>(frame, *site_, clock_, report);
}

std::unique_ptr<SiteBrowser> QtBrowserMaker::makeSiteBrowser() {
    return std::make_unique<QtSiteBrowser>(clock_);
}

} // namespace tremor
