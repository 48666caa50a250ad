#include "map/csv_script.h"

#include "map/bridge_script.h"

#include <fmt/format.h>

#include <array>

namespace tremor {
namespace {

// Colour of a circle by depth in km. A depth between two rows keeps the colour of the circle
// before it.
struct DepthColour {
    std::string_view low;
    std::string_view high;
    std::string_view colour;
};

constexpr auto depthColours = std::to_array<DepthColour>({
    {"0", "4.99", "#FF9900"},
    {"5", "9.99", "yellow"},
    {"10", "19.99", "#33FF00"},
    {"20", "49.99", "#0033FF"},
    {"50", "99.99", "#9933FF"},
    {"100", "9999", "#FF0000"},
});

} // namespace

void JS_Listeners_Web(PageText& page) {
    page.lines(R"(google.maps.event.addListener(map, 'dragend', function(){
document.getElementById('getDataMap').click();
});
google.maps.event.addListener(map, 'drag', function(){
document.getElementById('getDataMap').click();
});
google.maps.event.addListener(map, 'zoom_changed', function(){
document.getElementById('getDataMap').click();
});
document.getElementById('getDataMap').onclick = function(){
importCsv();
}
)");
}

void JS_Function_importCsv(PageText& page, std::string_view jsonProxy, std::string_view webHost) {
    page.line("function importCsv(){");
    page.line(fmt::format("$.getJSON('{}/get?url=' + "
                          "encodeURIComponent('{}/TremorLedger/last24H.csv') + "
                          "'&callback=?', function(data){{",
                          jsonProxy, webHost));
    page.lines(R"(content = data.contents;
parsingEvents();
});
}
)");
}

void JS_Function_parsingEvents(PageText& page) {
    page.lines(R"(function parsingEvents(){
parsed = Papa.parse(content);
if (linee != parsed.meta.lines - 2){
linee = parsed.meta.lines - 2;
remove();
handleFileSelect();
}
}
)");
}

void JS_Function_handleFileSelect(PageText& page) {
    page.lines(R"(function handleFileSelect(){
circles();
for(var f = 1 ; f < linee ; f++){
latLng[f] = new google.maps.LatLng(parsed.data[f][1],parsed.data[f][2]);
mkr[f] = new google.maps.Marker({
position: latLng[f],
map:map,
icon: circle[f],
title: parsed.data[f][0] + ' Mg: ' + parsed.data[f][4] ,
info: f
});
dmarker.push(mkr[f]);
}
}
document.getElementById('markers').onclick = function(){
handleFileSelect();
}
)");
}

void JS_Function_checkRange(PageText& page) {
    page.lines(R"(function checkRange(val, n, m){
if (val >= n && val <= m) { return val; }
else { return !val; }
}
)");
}

void JS_Function_circlesWeb(PageText& page) {
    page.lines(R"(function circles(){
for (var f = 1; f < linee; f++){
var cScale;
if (parseFloat((parsed.data[f][4] * 3)) == 0){
cScale = 1;
} else {
cScale = parseFloat(parsed.data[f][4] * 3);
}
var X = parseFloat(parsed.data[f][3]);
var colorEv;
switch (X){
)");
    for (const DepthColour& row : depthColours) {
        page.line(fmt::format("case checkRange(X, {}, {}):", row.low, row.high));
        page.line(fmt::format("colorEv = '{}';", row.colour));
        page.line("break;");
    }
    page.lines(R"(}
colorEv = colorEv.toString();
circle[f] = {
path: google.maps.SymbolPath.CIRCLE,
scale: cScale,
strokeWeight: 1,
fillColor : colorEv,
fillOpacity : 1
};
}
}
)");
    arrowSymbol(page);
    emptyLine(page);
}

} // namespace tremor
