#pragma once

#include "core/hosts.h"
#include "core/panel_map.h"
#include "core/qt_clock.h"
#include "map/map_site.h"

#include <memory>
#include <string>

namespace tremor {

// Makes browsers on Qt WebEngine; those of the maps share what their pages are given. It outlives
// them.
class QtBrowserMaker : public BrowserMaker {
  public:
    // `applicationPath` is the folder of the executable, no "/" at its end.
    QtBrowserMaker(Hosts hosts, std::string applicationPath, QtClock& clock);

    std::unique_ptr<WebBrowser> makeBrowser(QWidget& frame, Log& log,
                                            const AppSettings& settings) override;
    std::unique_ptr<SiteBrowser> makeSiteBrowser() override;

  private:
    Hosts hosts_;
    std::string applicationPath_;
    QtClock& clock_;
    std::unique_ptr<MapSite> site_; // made with the first browser, whose log and settings it uses
};

} // namespace tremor
