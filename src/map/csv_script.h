#pragma once

#include "map/page_text.h"

#include <string_view>

// The functions of the web page that polls last24H.csv: a header line, then UTC, latitude,
// longitude, depth and magnitude. Local to the page's initialize().
namespace tremor {

void JS_Listeners_Web(PageText& page);
// The file is fetched from `webHost` by a proxy that wraps it in JSON.
void JS_Function_importCsv(PageText& page, std::string_view jsonProxy, std::string_view webHost);
void JS_Function_parsingEvents(PageText& page);
void JS_Function_handleFileSelect(PageText& page);
void JS_Function_checkRange(PageText& page);
void JS_Function_circlesWeb(PageText& page);

} // namespace tremor
