#pragma once

#include "map/page_text.h"

#include <string_view>

// The functions of a page by which program and page talk through the hidden elements. All of them
// are local to the page's initialize() and use its `map`.
namespace tremor {

void JS_Function_splitter(PageText& page);
void JS_Map_Listeners(PageText& page);
// `lastEpic`: address of the image for the newest event; empty writes nothing.
void JS_Function_switchIcon(PageText& page, std::string_view lastEpic);
void JS_Function_getDataMap(PageText& page);
void JS_Function_Workspace(PageText& page);
// `webHost`: where the overlay of the faults lies.
void JS_Function_Faglie(PageText& page, std::string_view webHost);
void JS_Function_addRemoveStations(PageText& page);
void JS_Function_ripopola(PageText& page);
// `followsMarkers`: the map moves to each marker that is drawn.
void JS_Function_addmarkers(PageText& page, bool followsMarkers);
void JS_Function_lista(PageText& page);
void JS_Function_remove(PageText& page);
void JS_Function_circles(PageText& page);

// The lines behind the circles, which draw nothing that is seen: an arrow and an empty line.
void arrowSymbol(PageText& page);
void emptyLine(PageText& page);

} // namespace tremor
