// The map of the events on the maps engine.
import { depthClass, radius } from "./event_looks.js";
import { titleText } from "./event_texts.js";
import { boundsOf, nearestEvent } from "./map_view.js";

const closestFirstZoom = 8;
const fingerReach = 22; // pixels
const ringGap = 5; // pixels between a marker and the ring around the chosen one

function circle(event) {
    return {
        path: window.google.maps.SymbolPath.CIRCLE,
        scale: radius(event.magnitude),
        fillColor: depthClass(event.depth).colour,
        fillOpacity: 0.9,
        strokeColor: getComputedStyle(document.documentElement).getPropertyValue("--outline"),
        strokeWeight: 1,
    };
}

function ring(event) {
    return {
        path: window.google.maps.SymbolPath.CIRCLE,
        scale: radius(event.magnitude) + ringGap,
        fillOpacity: 0,
        strokeColor: "#d6006c",
        strokeWeight: 3,
    };
}

function positionOf({ latitude, longitude }) {
    return { lat: latitude, lng: longitude };
}

export class EventMap {
    #api = window.google.maps;
    #map;
    #select;
    #events = [];
    #markers = [];
    #ring;
    #fitted = false;

    // view: {latitude, longitude, zoom} until there are events; select: called with the event that is
    // clicked or touched.
    constructor(div, view, select) {
        this.#map = new this.#api.Map(div, { center: positionOf(view), zoom: view.zoom });
        this.#select = select;
        this.#ring = new this.#api.Marker({ clickable: false, zIndex: 1 });
        this.#api.event.addListener(this.#map, "click", ({ latLng }) => this.#touched(latLng));
    }

    // The first events decide what the map shows; afterwards the visitor does.
    show(events) {
        this.#events = events;
        this.#markers.forEach((marker) => marker.setMap(null));
        this.#markers = events.map((event) => this.#marker(event));
        const bounds = boundsOf(events);
        if (!this.#fitted && bounds !== null) {
            this.#fitted = true;
            const { LatLng, LatLngBounds } = this.#api;
            this.#map.fitBounds(new LatLngBounds(new LatLng(bounds.south, bounds.west), new LatLng(bounds.north, bounds.east)));
            this.#map.setZoom(Math.min(this.#map.getZoom(), closestFirstZoom));
        }
    }

    // event: null for none.
    choose(event, { move }) {
        this.#ring.setMap(null);
        if (event === null) {
            return;
        }
        this.#ring.setPosition(positionOf(event));
        this.#ring.setIcon(ring(event));
        this.#ring.setMap(this.#map);
        if (move) {
            this.#map.panTo(positionOf(event));
        }
    }

    #marker(event) {
        const marker = new this.#api.Marker({
            position: positionOf(event),
            map: this.#map,
            icon: circle(event),
            title: titleText(event),
            zIndex: -radius(event.magnitude), // small ones in front
        });
        this.#api.event.addListener(marker, "click", () => this.#select(event));
        return marker;
    }

    // A finger seldom meets a small circle.
    #touched(latLng) {
        const position = { latitude: latLng.lat(), longitude: latLng.lng() };
        const event = nearestEvent(this.#events, position, this.#map.getZoom(), fingerReach);
        if (event !== null) {
            this.#select(event);
        }
    }
}
