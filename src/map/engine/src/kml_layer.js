// A KML or KMZ file on the map. What goes wrong shows in getStatus() and the event "status_changed"; the
// map itself goes on.
import L from "leaflet";
import { MVCObject, event } from "./events.js";
import { plainDescription, readKml } from "./kml_document.js";
import { loadBytes, openKml } from "./kml_file.js";
import { LatLng, LatLngBounds } from "./lat_lng.js";
import { Marker } from "./marker.js";
import { clamp, finiteOr } from "./numbers.js";
import { ScreenOverlay } from "./screen_overlay.js";

export const KmlLayerStatus = Object.freeze({
    UNKNOWN: "UNKNOWN",
    OK: "OK",
    DOCUMENT_NOT_FOUND: "DOCUMENT_NOT_FOUND",
    INVALID_DOCUMENT: "INVALID_DOCUMENT",
});

const pictureTypes = { png: "image/png", jpg: "image/jpeg", jpeg: "image/jpeg", gif: "image/gif", bmp: "image/bmp" };
const longestDescription = 4000;

// The addresses of the pictures that a document names: those in its KMZ, else relative to the document,
// from the web only.
class Pictures {
    #files;
    #base;
    #made = new globalThis.Map(); // name in the KMZ -> address

    constructor(files, base) {
        this.#files = files;
        this.#base = base;
    }

    // Null for what is not to be shown.
    address(href) {
        const name = href.replace(/^\.\//, "");
        if (Object.hasOwn(this.#files, name)) {
            if (!this.#made.has(name)) {
                const type = pictureTypes[name.split(".").pop().toLowerCase()] ?? "";
                this.#made.set(name, URL.createObjectURL(new Blob([this.#files[name]], { type })));
            }
            return this.#made.get(name);
        }
        try {
            const url = new URL(href, this.#base);
            return ["http:", "https:", new URL(this.#base).protocol].includes(url.protocol) ? url.href : null;
        } catch {
            return null;
        }
    }

    release() {
        this.#made.forEach((address) => URL.revokeObjectURL(address));
        this.#made.clear();
    }
}

function pathStyle(style) {
    return {
        color: style.stroke ?? "#ffffff",
        opacity: clamp(finiteOr(style["stroke-opacity"], 1), 0, 1),
        weight: clamp(finiteOr(style["stroke-width"], 1), 0, 100),
        fillColor: style.fill ?? "#ffffff",
        fillOpacity: clamp(finiteOr(style["fill-opacity"], 0.5), 0, 1),
        bubblingMouseEvents: false,
    };
}

function popupContent(placemark) {
    const box = document.createElement("div");
    box.className = "tremor-popup";
    const heading = document.createElement("strong");
    heading.textContent = placemark.name.slice(0, 300);
    const text = document.createElement("p");
    text.textContent = plainDescription(placemark.description).slice(0, longestDescription);
    box.append(heading, text);
    return box;
}

const swapped = (positions) => positions.map(([longitude, latitude]) => [latitude, longitude]);

export class KmlLayer extends MVCObject {
    #map = null;
    #request = 0; // answers to earlier requests are dropped
    #status = KmlLayerStatus.UNKNOWN;
    #drawn = []; // everything on the map, each with remove()
    #bounds = new LatLngBounds();

    // KmlLayer(url, options) or KmlLayer({url, …}); options: {map, preserveViewport,
    // suppressInfoWindows, screenOverlays}.
    constructor(url, options = {}) {
        super();
        const { map = null, ...rest } = (url !== null && typeof url === "object" ? url : { ...options, url }) ?? {};
        Object.assign(this, rest);
        this.setMap(map);
    }

    getUrl() {
        return this.url;
    }

    setUrl(url) {
        this.set("url", url);
        this.setMap(this.#map);
    }

    getStatus() {
        return this.#status;
    }

    getDefaultViewport() {
        return this.#bounds;
    }

    getMap() {
        return this.#map;
    }

    setMap(map) {
        this.#clear();
        this.#map = map?.leaflet ? map : null;
        if (this.#map !== null) {
            this.#load();
        }
    }

    #clear() {
        this.#request += 1;
        this.#drawn.forEach((part) => part.remove());
        this.#drawn = [];
        this.#bounds = new LatLngBounds();
    }

    async #load() {
        const request = this.#request;
        let status = KmlLayerStatus.DOCUMENT_NOT_FOUND;
        try {
            const address = new URL(this.url, document.baseURI).href;
            const bytes = await loadBytes(address);
            if (request !== this.#request) {
                return;
            }
            status = KmlLayerStatus.INVALID_DOCUMENT;
            const { text, files } = openKml(bytes);
            this.#draw(readKml(text), new Pictures(files, address));
            status = KmlLayerStatus.OK;
        } catch (error) {
            console.warn(`KML layer ${this.url}: ${error.message}`);
        }
        if (request === this.#request) {
            this.#status = status;
            event.trigger(this, "status_changed");
        }
    }

    #draw(content, pictures) {
        this.#drawn.push({ remove: () => pictures.release() });
        content.images.forEach((image) => this.#drawImage(image, pictures));
        content.placemarks.forEach((placemark) => this.#drawPlacemark(placemark, pictures));
        if (this.screenOverlays !== false) {
            content.screen.forEach((overlay) => this.#drawScreenOverlay(overlay, pictures));
        }
        event.trigger(this, "defaultviewport_changed");
        if (!this.preserveViewport && !this.#bounds.isEmpty()) {
            this.#map.fitBounds(this.#bounds);
        }
    }

    #drawImage({ bounds: [west, south, east, north], href }, pictures) {
        const url = pictures.address(href);
        if (url !== null) {
            this.#include([[west, south], [east, north]]);
            this.#drawn.push(L.imageOverlay(url, [[south, west], [north, east]]).addTo(this.#map.leaflet));
        }
    }

    #drawScreenOverlay(overlay, pictures) {
        const url = pictures.address(overlay.href);
        if (url !== null) {
            this.#drawn.push(new ScreenOverlay(overlay, url, this.#map.getDiv()));
        }
    }

    #drawPlacemark(placemark, pictures) {
        const style = pathStyle(placemark.style);
        for (const line of placemark.lines) {
            this.#include(line);
            this.#drawPath(L.polyline(swapped(line), style), placemark);
        }
        for (const rings of placemark.polygons) {
            this.#include(rings[0]);
            this.#drawPath(L.polygon(rings.map(swapped), style), placemark);
        }
        for (const point of placemark.points) {
            this.#include([point]);
            this.#drawPoint(point, placemark, pictures);
        }
    }

    #include(positions) {
        positions.forEach(([longitude, latitude]) => this.#bounds.extend(new LatLng(latitude, longitude)));
    }

    #drawPath(path, placemark) {
        path.on("click", ({ latlng }) => this.#clicked(placemark, new LatLng(latlng.lat, latlng.lng)));
        this.#drawn.push(path.addTo(this.#map.leaflet));
    }

    #drawPoint([longitude, latitude], placemark, pictures) {
        const { icon, "icon-scale": scale, "icon-offset": offset, "icon-offset-units": units } = placemark.style;
        const url = icon ? pictures.address(icon) : null;
        const fractions = units?.every((unit) => unit === "fraction") && offset.every(Number.isFinite);
        const marker = new Marker({
            position: new LatLng(latitude, longitude),
            title: placemark.name,
            icon: url && { url, scale, anchorFraction: fractions ? [offset[0], 1 - offset[1]] : null },
            map: this.#map,
        });
        marker.addListener("click", () => this.#clicked(placemark, marker.position));
        this.#drawn.push({ remove: () => marker.setMap(null) });
    }

    #clicked(placemark, latLng) {
        const featureData = { name: placemark.name, description: plainDescription(placemark.description) };
        event.trigger(this, "click", { latLng, featureData });
        if (this.suppressInfoWindows !== true && this.#map !== null) {
            const place = [latLng.lat(), latLng.lng()];
            L.popup({ autoPan: false }).setLatLng(place).setContent(popupContent(placemark)).openOn(this.#map.leaflet);
        }
    }
}
