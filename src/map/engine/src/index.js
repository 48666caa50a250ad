// Puts the API where the pages look for it.
import L from "leaflet";
import style from "leaflet/dist/leaflet.css";
import ownStyle from "./style.css";
import { MVCObject, event } from "./events.js";
import { MapTypeId, Point, Size, SymbolPath } from "./geometry_types.js";
import { KmlLayer, KmlLayerStatus } from "./kml_layer.js";
import { LatLng, LatLngBounds } from "./lat_lng.js";
import { Map } from "./map.js";
import { Marker } from "./marker.js";
import { Polyline } from "./polyline.js";

// Not a <style> element, which a page's content security policy may forbid. Leaflet's own pictures
// belong to controls that are not used.
const sheet = new CSSStyleSheet();
sheet.replaceSync(style.replace(/url\([^)]*\)/g, "none") + ownStyle);
document.adoptedStyleSheets = [sheet, ...document.adoptedStyleSheets];
L.noConflict();

window.google = window.google ?? {};
window.google.maps = {
    KmlLayer,
    KmlLayerStatus,
    LatLng,
    LatLngBounds,
    MVCObject,
    Map,
    MapTypeId,
    Marker,
    Point,
    Polyline,
    Size,
    SymbolPath,
    event,
};
