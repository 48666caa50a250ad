#include "map/map_page.h"

#include "map/bridge_script.h"
#include "map/csv_script.h"
#include "map/page_text.h"

#include <fmt/format.h>

namespace tremor {
namespace {

void JS_Intestazione(PageText& page) {
    page.add(pageOpening);
    page.lines(R"(<meta name="viewport" content="initial-scale=1.0, user-scalable=no">
<meta charset="utf-8">
<link href="default.css" rel="stylesheet">
)");
}

// What a web page has of the attributes of `markers`.
constexpr std::string_view webMarkers =
    R"(<input type="HIDDEN" Id="markers" LATITUDE="" LONGITUDE="" EUTC="" DEPTH="" MAGNITUDE="")"
    R"( EVENTSCOLOR="" MARSEL='' PINSMODE='' PINSCALE=''>)";

// The hidden elements of a page with a bridge, in the main page as in that for a web site.
void bridgeElements(PageText& page, bool bWebPage) {
    if (bWebPage)
        page.line(webMarkers);
    else
        page.line(R"(<input type="HIDDEN" Id="markers" LATITUDE="" LONGITUDE="" EUTC="" DEPTH="")"
                  R"( MAGNITUDE="" EVENTSCOLOR="" MARSEL='' PINSMODE='' PINSCALE='' URLPIN='')"
                  R"( GIFLAST=''>)");
    page.lines(R"(<input type="HIDDEN" Id="eventi">
<input type='HIDDEN' Id='stazioni' LATITUDE='' LONGITUDE='' CHECK='' STATIONCODE=''>
<input type='HIDDEN' Id='removeAll'>
)");
    page.line(fmt::format("<input type='HIDDEN' Id='selection' BLAT='' BLNG='' TLAT='' TLNG='' "
                          "CLAT='' CLNG='' ZOOM=''{}>",
                          bWebPage ? " SCALE=''" : ""));
    page.lines(R"(<input type='HIDDEN' Id='MapClick' VALORE=''>
<input type='HIDDEN' Id='SelezioneMar' UTC='' ZOOM=''>
<input type='HIDDEN' Id='faglie' FLAG=''>
<input type='HIDDEN' Id='getDataMap'>
<input type='HIDDEN' Id='Workspace' CLAT='' CLNG='' ZOOM=''>
<input type='HIDDEN' Id='UltimoEvento' UTC=''>
<input type='HIDDEN' Id='Cursore'>
)");
    if (!bWebPage)
        page.line("<input type='HIDDEN' Id='Legenda' BOL=''>");
}

// With both kinds of publication on, a web page holds some ids twice; a browser finds the first.
void JS_Input_Hidden(PageText& page, const PageVariant& variant, const PageValues& values) {
    if (variant.bWebPage && values.SaveInCsv == 1) {
        page.line("<input type='HIDDEN' Id='getDataMap'>");
        page.line(webMarkers);
        page.line("<input type='HIDDEN' Id='removeAll'>");
    }
    if (!variant.bWebPage || values.SaveInKml == 1)
        bridgeElements(page, variant.bWebPage);
}

// Of two `src` attributes a browser takes the first.
void JS_Script_Tags(PageText& page, const PageVariant& variant, const PageValues& values) {
    if (variant.bWebPage && values.SaveInCsv == 1) {
        page.line(R"(<script src="./papaparse.min.js"></script>)");
        page.line(R"(<script src="./jquery-2.1.1.min.js"></script>)");
    }
    page.line(fmt::format(R"(<script type="text/javascript" )"
                          R"(src="{}/maps/api/js?v=3.18&sensor=false&libraries=drawing")",
                          values.mapsApi));
    page.line(fmt::format(R"(src="{}/maps/api/js?sensor=false">)", values.mapsApiHttp));
    page.line("</script>");
    page.line("<script>");
}

void JS_Variabili(PageText& page, const PageVariant& variant, const PageValues& values) {
    if (variant.bWebPage && values.SaveInCsv == 1)
        page.lines(R"(var content;
var parsed;
var linee;
var latLng = new Array();
var mkr = new Array();
var dmarker = new Array();
var circle = new Array();
)");
    if (variant.bWebPage && values.SaveInKml != 1)
        return;
    page.lines(R"(var latLng = new Array();
var mkr = new Array();
var colorsDepth = new Array();
var rectangles = new Array();
var layerfaglia = new Array();
var marker = new Array();
var dmarker = new Array();
var circle = new Array();
var lt;
var ln;
var k;
var latitudine;
var longitudine;
var keystaz;
var eventsimage;
var ctaLayer;
var m;
var magnitudeM;
var d;
var DepthM;
var asd;
//VARIABILI DELLE STAZIONI
var stations = new Array();
var latLngST = new Array();
var mkrST = new Array();
var latST;
var lonST;
var codeST;
)");
}

void kmlLayer(PageText& page, std::string_view variable, const PageValues& values,
              std::string_view file, std::string_view options) {
    page.line(fmt::format("var {} = new google.maps.KmlLayer('{}/TremorLedger/{}', {});", variable,
                          values.webHost, file, options));
}

void optionsKeepingTheView(PageText& page, std::string_view variable) {
    page.line(fmt::format("var {} = {{", variable));
    page.line("preserveViewport : true");
    page.line("};");
}

void legendHandler(PageText& page) {
    page.lines(R"(document.getElementById('Legenda').onclick = legendZ;
function legendZ(){
if ((document.getElementById('Legenda').BOL) == 1){
legendLayer1.setMap(map);
} else {
legendLayer1.setMap(null);
}
}
)");
}

void logoAndLegend(PageText& page, const PageVariant& variant, const PageValues& values) {
    constexpr std::string_view legend = "LegendZ.kmz.txt";
    optionsKeepingTheView(page, "layerOptLogo");
    kmlLayer(page, "legendLayer", values, "OrvaLogo.kmz.txt", "layerOptLogo");
    page.line("legendLayer.setMap(map);");
    kmlLayer(page, "legendLayer1", values, legend, "layerOptLogo");
    if (variant.bWebPage)
        page.line("legendLayer1.setMap(map);");
    if (variant.bWorkspacePage)
        page.line("legendLayer1.setMap(map);");
    else
        legendHandler(page);
    if (variant.bWebPage && values.SaveInCsv == 0) {
        optionsKeepingTheView(page, "layerMarkers");
        kmlLayer(page, "tremorLedgerKml", values, "tremorledger.kml", "layerMarkers");
        page.line("tremorLedgerKml.setMap(map);");
        kmlLayer(page, "legendLayer1", values, legend, "layerOptLogo");
        page.line("legendLayer1.setMap(map);");
    }
}

void JS_Map_Property(PageText& page, const PageVariant& variant, const PageValues& values) {
    page.line("var mapOptions = {");
    if (variant.bLastEventPage) {
        page.line("center: new google.maps.LatLng(42, 12),");
        page.line(fmt::format("zoom:{},", values.LastEventMapZoomLevel));
    } else {
        page.line(fmt::format("center: new google.maps.LatLng({} , {} ),", values.CenterLatitude,
                              values.CenterLongitude));
        page.line(fmt::format("zoom:{},", values.Zoom));
    }
    page.lines(R"(mapTypeId: google.maps.MapTypeId.HYBRID,
zoomControl: false,
streetViewControl: false,
rotateControl: false,
zoomControl: false,
panControl: false,
mapTypeControl: false,
draggable: true
};
var map = new google.maps.Map(document.getElementById('map_canvas'), mapOptions);
)");
    if (!variant.bLastEventPage)
        logoAndLegend(page, variant, values);
}

// initialize() stays open until JS_Chiusura.
void JS_Initialize(PageText& page, const PageVariant& variant, const PageValues& values) {
    page.line("function initialize() {");
    if (!variant.bWebPage) {
        JS_Function_splitter(page);
        page.line("splitter();");
    }
    JS_Map_Property(page, variant, values);
    if (variant.bWebPage)
        return;
    JS_Map_Listeners(page);
    JS_Function_switchIcon(page, values.lastEpic);
    JS_Function_getDataMap(page);
    JS_Function_Workspace(page);
    JS_Function_Faglie(page, values.webHost);
    JS_Function_addRemoveStations(page);
    JS_Function_ripopola(page);
    JS_Function_addmarkers(page, variant.bLastEventPage);
    JS_Function_lista(page);
    JS_Function_remove(page);
    JS_Function_circles(page);
}

void JS_Initialize_Web(PageText& page, const PageVariant& variant, const PageValues& values) {
    page.line("function initialize() {");
    JS_Map_Property(page, variant, values);
    JS_Listeners_Web(page);
    JS_Function_importCsv(page, values.jsonProxy, values.webHost);
    JS_Function_parsingEvents(page);
    JS_Function_handleFileSelect(page);
    JS_Function_remove(page);
    JS_Function_checkRange(page);
    JS_Function_circlesWeb(page);
}

void endOfPage(PageText& page) {
    page.lines(R"(google.maps.event.addDomListener(window, 'load', initialize);
</script>
</head>
<body>
<div id="map_canvas"></div>
</body>
</html>
)");
}

void JS_Chiusura(PageText& page, const PageVariant& variant) {
    page.line("google.maps.event.addListenerOnce(map, 'tilesloaded', function(){");
    if (!variant.bWebPage)
        page.lines(R"(circles();
addmarkers();
google.maps.event.addListenerOnce(map, 'tilesloaded', function(){
document.getElementById('MapClick').VALORE = 99;
document.getElementById('MapClick').click();
document.getElementById('MapClick').VALORE = '';
});
)");
    page.line("});");
    page.line("}");
    if (variant.bWebPage)
        page.line("}");
    endOfPage(page);
}

// The file is looked at every 10 seconds.
void JS_Chiusura_Web(PageText& page) {
    page.lines(R"(google.maps.event.addListenerOnce(map, 'tilesloaded', function(){
});
}
window.setInterval(function() {document.getElementById('getDataMap').click()}, 10000);
)");
    endOfPage(page);
}

void openPage(PageText& page, const PageVariant& variant, const PageValues& values) {
    JS_Intestazione(page);
    JS_Input_Hidden(page, variant, values);
    JS_Script_Tags(page, variant, values);
    JS_Variabili(page, variant, values);
}

} // namespace

std::string defaultCss() {
    PageText sheet;
    sheet.lines(R"(html, body {
height: 100%;
margin: 0;
padding: 0;
}
#map_canvas {
height: 100%;
}
@media print {
html, body {
height: auto;
}
#map_canvas {
height: 650px;
}
}
)");
    return sheet.text();
}

std::string mapPage(const PageVariant& variant, const PageValues& values) {
    PageText page;
    openPage(page, variant, values);
    JS_Initialize(page, variant, values);
    JS_Chiusura(page, variant);
    return page.text();
}

std::string csvWebPage(const PageValues& values) {
    constexpr PageVariant variant{.bWebPage = true};
    PageText page;
    openPage(page, variant, values);
    JS_Initialize_Web(page, variant, values);
    JS_Chiusura_Web(page);
    return page.text();
}

} // namespace tremor
