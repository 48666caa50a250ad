#include "map/bridge_script.h"

#include <fmt/format.h>

namespace tremor {

// Lists come as one text with an apostrophe before, between and after the values, so the first and
// the last element of a split are empty and the loops below run from 1 to length - 2.

void JS_Function_splitter(PageText& page) {
    page.lines(R"(function splitter(){
if (mkr.length > 0){
remove();
}
lt = document.getElementById('markers').LATITUDE;
ln = document.getElementById('markers').LONGITUDE;
k = document.getElementById('markers').EUTC;
eventsimage = document.getElementById('markers').EVENTSCOLOR;
if (lt != null){
latitudine = lt.split("'");
longitudine = ln.split("'");
keystaz = k.split("'");
colorsDepth = eventsimage.split("'");
m = document.getElementById('markers').MAGNITUDE;
magnitudeM = m.split("'");
d = document.getElementById('markers').DEPTH;
DepthM = d.split("'");
}
}
)");
}

void JS_Map_Listeners(PageText& page) {
    page.lines(R"(google.maps.event.addListener(map, 'tilesloaded', function(){
document.getElementById('MapClick').VALORE = 3;
getDataMap();
});
google.maps.event.addListener(map, 'click', function(point){
document.getElementById('Cursore').value = (parseFloat(point.latLng.lat())) + ' | ' + (parseFloat(point.latLng.lng()));
document.getElementById('MapClick').VALORE = 78;
document.getElementById('Cursore').click();
});
)");
    for (const std::string_view event : {"dragend", "drag", "zoom_changed"}) {
        page.line(fmt::format("google.maps.event.addListener(map, '{}', function(){{", event));
        page.lines(R"(document.getElementById('MapClick').VALORE = 3;
document.getElementById('getDataMap').click();
});
)");
    }
    for (const std::string_view event : {"mouseover", "mousemove"}) {
        page.line(fmt::format("google.maps.event.addListener(map, '{}', function(point){{", event));
        page.lines(
            R"(document.getElementById('Cursore').value = (parseFloat(point.latLng.lat())).toFixed(5) + ' | ' + (parseFloat(point.latLng.lng())).toFixed(5);
document.getElementById('MapClick').VALORE = 77;
document.getElementById('Cursore').click();
});
)");
    }
}

void JS_Function_switchIcon(PageText& page, std::string_view lastEpic) {
    if (lastEpic.empty())
        return;
    page.lines(R"(document.getElementById('UltimoEvento').onclick = switchIcon;
function switchIcon(){
var UTCLastEv = document.getElementById('UltimoEvento').UTC;
for (var f = 1; f < mkr.length - 1 ; f++){
if (UTCLastEv == mkr[f].title.slice(0, 23)){
mkr[f].setIcon(lastEvent);
}
}
}
var lastEvent = {
)");
    page.line(fmt::format("url: '{}',", lastEpic));
    page.lines(R"(scaledSize: new google.maps.Size(90,90),
anchor: new google.maps.Point(45,45)
};
)");
}

void JS_Function_getDataMap(PageText& page) {
    page.lines(R"(document.getElementById('getDataMap').onclick = getDataMap;
function getDataMap(){
document.getElementById('selection').CLAT = map.getCenter().lat();
document.getElementById('selection').CLNG = map.getCenter().lng();
document.getElementById('selection').ZOOM = map.getZoom();
document.getElementById('selection').BLAT = map.getBounds().getSouthWest().lat();
document.getElementById('selection').BLNG = map.getBounds().getSouthWest().lng();
document.getElementById('selection').TLNG = map.getBounds().getNorthEast().lng();
document.getElementById('selection').TLAT = map.getBounds().getNorthEast().lat();
)");
    // Metres per pixel of the Web Mercator projection at zoom 0 on the equator: 2 pi 6378137 / 256.
    page.lines(
        R"(var scalCalc = 156543.03392 * Math.cos(parseFloat(document.getElementById('selection').CLAT) * Math.PI / 180) / Math.pow(2, parseFloat(document.getElementById('selection').ZOOM));
document.getElementById('selection').SCALE = scalCalc;
}
)");
}

void JS_Function_Workspace(PageText& page) {
    page.lines(R"(document.getElementById('Workspace').onclick = Workspace;
function Workspace(){
var latw = document.getElementById('Workspace').CLAT;
var lngw = document.getElementById('Workspace').CLNG;
var zoomw = parseInt(document.getElementById('Workspace').ZOOM);
var latlngw = new google.maps.LatLng(latw, lngw);
map.setCenter(latlngw);
map.setZoom(zoomw);
}
)");
}

void JS_Function_Faglie(PageText& page, std::string_view webHost) {
    page.lines(R"(document.getElementById('faglie').onclick = faglie;
function faglie(){
var flagL = document.getElementById('faglie').FLAG;
if (flagL == 1){
if (layerfaglia.length == 0){
var layerOpt = {
preserveViewport : true
};
)");
    page.line(fmt::format(
        "ctaLayer = new google.maps.KmlLayer('{}/TremorLedger/prova.kmz.txt', layerOpt);",
        webHost));
    page.lines(R"(ctaLayer.setMap(map);
layerfaglia.push(ctaLayer);
}
} else {
if (layerfaglia.length != 0){
ctaLayer.setMap(null);
layerfaglia.length = 0;
}
}
}
)");
}

void JS_Function_addRemoveStations(PageText& page) {
    page.lines(R"(document.getElementById('stazioni').onclick = addRemoveStations;
function addRemoveStations(){
if ((document.getElementById('stazioni').CHECK) == 1){
splitterST();
for(var f = 1; f < codeST.length - 1 ; f++){
latLngST[f] = new google.maps.LatLng(latST[f], lonST[f]);
mkrST[f] = new google.maps.Marker({
position: latLngST[f],
map: map,
title: codeST[f]
});
}
} else {
latLngST.length = 0;
for(var f = 1; f < codeST.length - 1 ; f++){
mkrST[f].setMap(null);
}
}
}
function splitterST(){
latST = document.getElementById('stazioni').LATITUDE.split("'");
lonST = document.getElementById('stazioni').LONGITUDE.split("'");
codeST = document.getElementById('stazioni').STATIONCODE.split("'");
}
)");
}

void JS_Function_ripopola(PageText& page) {
    page.lines(R"(document.getElementById("eventi").onclick = ripopola;
function ripopola(){
splitter();
addmarkers();
}
)");
}

namespace {

void newMarkers(PageText& page) {
    page.lines(R"(function addmarkers(){
circles();
for(var f = 1; f < keystaz.length - 1; f++){
latLng[f] = new google.maps.LatLng(latitudine[f], longitudine[f]);
if ((document.getElementById('markers').PINSMODE) == 1){
mkr[f] = new google.maps.Marker({
position: latLng[f],
map:map,
icon: circle[f],
title: keystaz[f] + ' Mg: ' + magnitudeM[f] ,
info: f
});
} else {
mkr[f] = new google.maps.Marker({
position: latLng[f],
map:map,
icon: {
)");
    page.line("url: document.getElementById('markers').URLPIN + colorsDepth[f] ");
    page.lines(R"(},
title: keystaz[f] + ' Mg: ' + magnitudeM[f] ,
info: f
});
}
marker[f] = mkr[f].title;
dmarker.push(mkr[f]);
)");
}

} // namespace

void JS_Function_addmarkers(PageText& page, bool followsMarkers) {
    newMarkers(page);
    if (followsMarkers)
        page.line("map.setCenter(mkr[f].getPosition());");
    page.lines(R"(google.maps.event.addListener(mkr[f], 'click', function(){
this.setZIndex(9999);
var mapbounds = map.getBounds();
if ((document.getElementById('SelezioneMar').ZOOM) != ''){
var zoomSelected = parseInt(document.getElementById('SelezioneMar').ZOOM);
map.setCenter(this.position);
map.setZoom(zoomSelected);
} else {
map.setCenter(this.position);
}
document.getElementById('markers').MARSEL = this.title;
document.getElementById('MapClick').VALORE = 2;
});
document.getElementById('MapClick').VALORE = 99;
}
}
)");
}

// The variable is overwritten by the marker, so that no later marker is found.
void JS_Function_lista(PageText& page) {
    page.lines(R"(document.getElementById('SelezioneMar').onclick = lista;
function lista(){
var marker_clicked = document.getElementById('SelezioneMar').UTC;
for (var f = 1; f < marker.length ; f++){
if (marker_clicked == mkr[f].title.slice(0, marker_clicked.length)){
marker_clicked = mkr[f];
google.maps.event.trigger(marker_clicked, 'click');
}
}
}
)");
}

void JS_Function_remove(PageText& page) {
    page.lines(R"(document.getElementById('removeAll').onclick = remove;
function remove(){
latLng.length = 0;
for(var f = 0 ; f < dmarker.length ; f++){
dmarker[f].setMap(null);
}
dmarker.length = 0;
}
)");
}

// DEPTH, and with it DepthM, carries the list of colours.
void JS_Function_circles(PageText& page) {
    page.lines(R"(function circles(){
var scaleF = document.getElementById('markers').PINSCALE;
for (var f = 0; f < keystaz.length - 1; f++){
var cScale;
if (parseFloat((magnitudeM[f] * scaleF)) == 0){
cScale = (2 * scaleF);
} else {
cScale = parseFloat(magnitudeM[f] * scaleF);
}
circle[f] = {
path: google.maps.SymbolPath.CIRCLE,
scale: cScale,
strokeWeight: 1,
fillColor: '' + DepthM[f] + '',
fillOpacity : 1
};
}
}
)");
    arrowSymbol(page);
    page.lines(R"(//var trial = new google.maps.Marker({
//position : new google.maps.LatLng(42,13),
//map: map,
//icon: forward_closed_arrow
//});
)");
    emptyLine(page);
}

void arrowSymbol(PageText& page) {
    page.lines(R"(var forward_closed_arrow = {
path: google.maps.SymbolPath.FORWARD_CLOSED_ARROW
};
)");
}

void emptyLine(PageText& page) {
    page.lines(R"(var line = new google.maps.Polyline({
icons: [{
icon: forward_closed_arrow,
offset: '100%'
}],
map: map,
visible: true
});
)");
}

} // namespace tremor
