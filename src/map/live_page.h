#pragma once

#include "core/error_report.h"
#include "core/settings.h"

#include <string>
#include <string_view>
#include <vector>

// The page for the operator's web site that shows last24H.csv and tremorledger.kml in any current
// browser. It stands beside them and needs nothing but static files:
//
//     TremorLedgerLive.html
//     TremorLedgerLive/     its style sheet and scripts, with the base map
namespace tremor {

// The page as it comes from the program itself (src/map/engine/live).
struct LivePageFiles {
    struct Part {
        std::string name; // in the folder, "live_page.js"
        std::string text;
    };
    // Has "{LATITUDE}", "{LONGITUDE}" and "{ZOOM}" where the operator's view goes, and the parts'
    // version in their addresses.
    std::string page;
    std::vector<Part> parts;
};

class LivePage {
  public:
    // `applicationPath`: the program's folder, without a "/" at its end.
    LivePage(const AppSettings& settings, std::string applicationPath, ErrorReport& errors);

    // Puts the files there. Until there are events the page shows the view that the settings hold
    // now. A file with the same text already is left alone, so that what mirrors the folder to a
    // web host has nothing to send; any other is replaced in one step, the page after its parts.
    // When one cannot be written the operator is asked as for the other pages.
    void write(const LivePageFiles& files) const;

  private:
    std::string pageText(std::string_view page) const;

    const AppSettings& settings_;
    std::string applicationPath_;
    ErrorReport& errors_;
};

} // namespace tremor
