#pragma once

#include "map/page_values.h"

#include <string>
#include <string_view>

// The text of the pages that show a map. A page is one HTML file with hidden <input> elements, by
// which the program drives it, and a script for the maps API; it holds no events. Every line ends
// in CR LF.
namespace tremor {

// At most one of them is true; none gives the main map.
struct PageVariant {
    bool bLastEventPage = false; // its own centre and zoom, no logo and legend, follows each marker
    bool bWebPage = false;       // for a web site: nothing that answers the program
    bool bWorkspacePage = false; // the legend is always on
};

// What every page begins with.
inline constexpr std::string_view pageOpening = "<!DOCTYPE html>\r\n"
                                                "<html>\r\n"
                                                "<head>\r\n"
                                                "<title>TremorLedger</title>\r\n";

// The style sheet that every page links.
std::string defaultCss();

// The map pages, and with bWebPage the page for a web site that shows tremorledger.kml. Its script
// closes one brace more than it opens and is refused by current browsers; its text is fixed.
std::string mapPage(const PageVariant& variant, const PageValues& values);

// The page for a web site that polls last24H.csv. Its script stops at the handler of the element
// `Legenda`, which a page for a web site does not have; its text is fixed too.
std::string csvWebPage(const PageValues& values);

} // namespace tremor
