#pragma once

#include "core/error_report.h"
#include "core/hosts.h"
#include "core/number_locale.h"
#include "core/ports.h"
#include "core/settings.h"
#include "map/map_page.h"
#include "map/web_browser.h"

#include <span>
#include <string>
#include <string_view>

namespace tremor {

// One window of the all-workspaces view.
struct WorkspacePage {
    std::string name;              // the workspace's name, and that of the page's file
    WebBrowser* browser = nullptr; // null: the window has been closed
};

// Writes the map pages into the program's folder and shows them. The settings go into a page as
// they are at that moment. A file is replaced in one step and ends in one empty line (CR LF). When
// it cannot be written the operator is asked; after Ignore the browser shows what stands there.
class JSMaps {
  public:
    struct Environment {
        std::string applicationPath; // folder of the executable, no "/" at its end
        Hosts hosts;
        NumberLocale locale;
    };

    JSMaps(const AppSettings& settings, Environment environment, PageBrowsers browsers, Log& log,
           ErrorReport& errors);

    // default.css, which every page links.
    void generaDefaultCSS();

    // TremorLedger.html in WebBrowser1, and the same text as last_event.html in wbr_last, so that
    // the smaller map stands before MapsLastEvent has run.
    void Maps();

    // last_event.html with its own centre and zoom, in wbr_last.
    void MapsLastEvent();

    // SavingWrkS.html in wbrSaveMaps.
    void MapsSavingWrkS();

    // TremorLedgerWEB.html for a web site that shows tremorledger.kml or last24H.csv. Not shown;
    // whichever is written last stays.
    void MapsWebKml();
    void MapsWebCsv();

    // A page for each workspace, named like it, without an extension. A name that is no name of a
    // page of its own is passed over with a line in the log, a closed window without one.
    void MapsWorkspaces(std::span<const WorkspacePage> pages);

  private:
    std::string path(std::string_view file) const;
    PageValues values() const;
    std::string bridgePage(const PageVariant& variant); // logs when the last event has no image
    void write(ProcedureTrace& trace, std::string_view file, std::string_view text) const;
    void writeAndShow(ProcedureTrace& trace, std::string_view file, std::string_view text,
                      WebBrowser& browser) const;

    const AppSettings& settings_;
    Environment environment_;
    PageBrowsers browsers_;
    Log& log_;
    ErrorReport& errors_;
};

} // namespace tremor
