// The map of the API on Leaflet.
import L from "leaflet";
import worldData from "world-data";
import { BaseMap } from "./base_map.js";
import { MVCObject, event } from "./events.js";
import { MapTypeId } from "./geometry_types.js";
import { GraticuleLabels } from "./graticule_labels.js";
import { ImageStore } from "./images.js";
import { LatLng, LatLngBounds, toLatLng } from "./lat_lng.js";
import { MarkerLayer } from "./marker_layer.js";
import { maxLatitude, wrapLongitude } from "./mercator.js";
import { clamp, finiteOr, toNumber } from "./numbers.js";
import { Settling } from "./settling.js";
import { Tip } from "./tip.js";
import { World } from "./world.js";

const lastZoom = 20;
const world = new World(worldData);
const images = new ImageStore();

function zoomOr(value, otherwise) {
    const zoom = toNumber(value);
    return Number.isFinite(zoom) ? clamp(Math.round(zoom), 0, lastZoom) : otherwise;
}

function plainText(text) {
    const box = document.createElement("div");
    box.textContent = String(text);
    return box.innerHTML;
}

// Raster tiles that the host offers: window.TREMOR_MAP_OPTIONS = {tileUrl, tileAttribution}.
function rasterTiles() {
    const { tileUrl, tileAttribution } = window.TREMOR_MAP_OPTIONS ?? {};
    if (typeof tileUrl !== "string" || tileUrl === "") {
        return null;
    }
    return L.tileLayer(tileUrl, { maxZoom: lastZoom, attribution: plainText(tileAttribution ?? "") });
}

function leafletOptions(options) {
    return {
        attributionControl: false,
        zoomControl: options.zoomControl !== false && options.disableDefaultUI !== true,
        dragging: options.draggable !== false,
        scrollWheelZoom: options.scrollwheel !== false,
        keyboard: options.keyboardShortcuts !== false,
        doubleClickZoom: options.disableDoubleClickZoom !== true,
        // The view that "dragend" reports is the one that stays.
        inertia: false,
        fadeAnimation: false,
        preferCanvas: true,
        trackResize: false,
        minZoom: 0,
        maxZoom: lastZoom,
    };
}

export class Map extends MVCObject {
    #div;
    #tip;
    #settling;
    #zoom;
    #hovered = null;

    // options: {center, zoom, mapTypeId, disableDefaultUI, zoomControl, draggable, scrollwheel,
    // keyboardShortcuts, disableDoubleClickZoom}; others are accepted without effect.
    constructor(div, options = {}) {
        super();
        const given = options ?? {};
        this.#div = div instanceof HTMLElement ? div : document.createElement("div");
        this.#div.classList.add("tremor-map");
        this.mapTypeId = given.mapTypeId ?? MapTypeId.HYBRID;
        this.leaflet = L.map(this.#div, leafletOptions(given));
        this.#listen();
        this.#zoom = zoomOr(given.zoom, 0);
        this.#show(toLatLng(given.center) ?? new LatLng(0, 0), this.#zoom);
        this.markerLayer = new MarkerLayer(images).addTo(this.leaflet);
        this.#tip = new Tip(this.#div);
        const layers = [new BaseMap(world), rasterTiles()].filter((layer) => layer !== null);
        this.#settling = new Settling(this, layers);
        L.control.attribution({ prefix: false }).addTo(this.leaflet);
        layers.forEach((layer) => layer.addTo(this.leaflet));
        new GraticuleLabels().addTo(this.leaflet);
        L.control.scale({ imperial: false, maxWidth: 120 }).addTo(this.leaflet);
        this.#followSize();
        this.#settling.begin();
    }

    getDiv() {
        return this.#div;
    }

    getCenter() {
        const { lat, lng } = this.leaflet.getCenter();
        return new LatLng(lat, lng);
    }

    setCenter(center) {
        const position = toLatLng(center);
        if (position !== null) {
            this.#show(position, this.leaflet.getZoom());
        }
    }

    panTo(center) {
        this.setCenter(center);
    }

    panBy(x, y) {
        this.leaflet.panBy([finiteOr(x, 0), finiteOr(y, 0)], { animate: false });
    }

    getZoom() {
        return this.leaflet.getZoom();
    }

    setZoom(zoom) {
        this.#show(this.getCenter(), zoomOr(zoom, this.getZoom()));
    }

    // West above east: the view crosses 180°. A view as wide as the world goes from -180 to 180.
    getBounds() {
        const bounds = this.leaflet.getBounds();
        const all = bounds.getEast() - bounds.getWest() >= 360;
        const west = all ? -180 : wrapLongitude(bounds.getWest());
        const east = all ? 180 : wrapLongitude(bounds.getEast());
        return new LatLngBounds(new LatLng(bounds.getSouth(), west), new LatLng(bounds.getNorth(), east));
    }

    fitBounds(bounds) {
        const [southWest, northEast] = [bounds?.getSouthWest?.(), bounds?.getNorthEast?.()].map(toLatLng);
        if (!southWest || !northEast) {
            return;
        }
        const east = northEast.lng() + (northEast.lng() < southWest.lng() ? 360 : 0);
        const corners = [[southWest.lat(), southWest.lng()], [northEast.lat(), east]];
        this.leaflet.fitBounds(corners, { animate: false, maxZoom: 15 });
    }

    getMapTypeId() {
        return this.mapTypeId;
    }

    setMapTypeId(mapTypeId) {
        this.set("mapTypeId", mapTypeId);
        event.trigger(this, "maptypeid_changed");
    }

    setOptions(options = {}) {
        const given = options ?? {};
        this.#show(toLatLng(given.center) ?? this.getCenter(), zoomOr(given.zoom, this.getZoom()));
        if (given.mapTypeId !== undefined) {
            this.setMapTypeId(given.mapTypeId);
        }
    }

    #show(center, zoom) {
        const latitude = clamp(center.lat(), -maxLatitude, maxLatitude);
        const { lat, lng } = this.leaflet._loaded ? this.leaflet.getCenter() : {};
        if (lat !== latitude || lng !== center.lng() || this.leaflet.getZoom() !== zoom) {
            // A reset, because panning goes by whole pixels and would not end exactly there.
            this.leaflet.setView([latitude, center.lng()], zoom, { reset: true });
        }
    }

    // The order of Leaflet's own events within one change of the view: zoomend, moveend.
    #listen() {
        this.leaflet
            .on("move", () => this.#tell("center_changed", "bounds_changed"))
            .on("zoomend", () => this.#zoomEnded())
            .on("moveend", () => this.#moveEnded())
            .on("dragstart drag dragend", ({ type }) => this.#tell(type))
            .on("click dblclick contextmenu", (mouse) => this.#clicked(mouse))
            .on("mousemove", (mouse) => this.#pointed(mouse))
            .on("mouseover mouseout", (mouse) => this.#crossedEdge(mouse));
    }

    #tell(...names) {
        this.#tip?.hide();
        names.forEach((name) => event.trigger(this, name));
    }

    #zoomEnded() {
        if (this.leaflet.getZoom() !== this.#zoom) {
            this.#zoom = this.leaflet.getZoom();
            this.#tell("zoom_changed");
        }
    }

    // The pages cannot do with a centre beyond the projection's edge, to which a drag may lead.
    #moveEnded() {
        const { lat, lng } = this.leaflet.getCenter();
        if (Math.abs(lat) > maxLatitude) {
            this.#show(new LatLng(lat, lng), this.leaflet.getZoom());
        }
        this.#settling?.begin();
    }

    #mouseEvent(mouse) {
        const { lat, lng } = mouse.latlng;
        return { latLng: new LatLng(lat, lng), pixel: mouse.containerPoint, domEvent: mouse.originalEvent };
    }

    // A click on a marker is the marker's; either way the browser's own click goes on to the document.
    #clicked(mouse) {
        const name = mouse.type === "contextmenu" ? "rightclick" : mouse.type;
        const marker = this.#markerAt(mouse);
        event.trigger(marker ?? this, name, this.#mouseEvent(mouse));
    }

    #markerAt(mouse) {
        const marker = this.markerLayer.markerAt(mouse.layerPoint);
        return marker?.clickable === false ? null : marker;
    }

    #pointed(mouse) {
        const marker = this.#markerAt(mouse);
        const pointed = this.#mouseEvent(mouse);
        if (marker !== this.#hovered) {
            event.trigger(this.#hovered, "mouseout", pointed);
            event.trigger(marker, "mouseover", pointed);
            this.#hovered = marker;
            this.#div.style.cursor = marker === null ? "" : "pointer";
        }
        this.#tip.show(marker?.title, mouse.containerPoint);
        event.trigger(this, "mousemove", pointed);
    }

    #crossedEdge(mouse) {
        if (mouse.type === "mouseout") {
            this.#hovered = null;
            this.#tip.hide();
        }
        event.trigger(this, mouse.type, this.#mouseEvent(mouse));
    }

    #followSize() {
        new ResizeObserver(() => {
            const { x, y } = this.leaflet.getSize();
            if (this.#div.clientWidth !== x || this.#div.clientHeight !== y) {
                const centre = this.getCenter();
                this.leaflet.invalidateSize({ pan: false });
                this.#show(centre, this.leaflet.getZoom());
                event.trigger(this, "resize");
                this.#tell("bounds_changed");
                this.#settling.begin();
            }
        }).observe(this.#div);
    }
}
