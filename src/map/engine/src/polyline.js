// A line of the API. Symbols along it are accepted and not drawn.
import L from "leaflet";
import { MVCObject } from "./events.js";
import { toLatLng } from "./lat_lng.js";
import { clamp, finiteOr } from "./numbers.js";

export class Polyline extends MVCObject {
    #map = null;
    #line = L.polyline([], { interactive: false });

    // options: {path, map, strokeColor, strokeOpacity, strokeWeight, visible, …}; a line needs no path.
    constructor(options = {}) {
        super();
        const { map = null, path = [], ...rest } = options ?? {};
        Object.assign(this, rest);
        this.setPath(path);
        this.setMap(map);
    }

    getPath() {
        return this.path;
    }

    setPath(path) {
        this.path = Array.isArray(path) ? path : [];
        let before = null;
        this.#line.setLatLngs(
            this.path
                .map(toLatLng)
                .filter((position) => position !== null)
                .map((position) => {
                    // The shorter way round, also across 180°.
                    const turns = before === null ? 0 : Math.round((before - position.lng()) / 360);
                    before = position.lng() + 360 * turns;
                    return [position.lat(), before];
                }),
        );
    }

    getVisible() {
        return this.visible !== false;
    }

    setVisible(visible) {
        this.set("visible", Boolean(visible));
        this.setMap(this.#map);
    }

    setOptions(options = {}) {
        const { map = this.#map, path = this.path, ...rest } = options ?? {};
        Object.assign(this, rest);
        this.setPath(path);
        this.setMap(map);
    }

    getMap() {
        return this.#map;
    }

    setMap(map) {
        this.#line.remove();
        this.#map = map?.leaflet ? map : null;
        const color = String(this.strokeColor ?? "");
        this.#line.setStyle({
            color: CSS.supports("color", color) ? color : "#000",
            opacity: clamp(finiteOr(this.strokeOpacity, 1), 0, 1),
            weight: clamp(finiteOr(this.strokeWeight, 3), 0, 100),
        });
        if (this.#map !== null && this.getVisible()) {
            this.#line.addTo(this.#map.leaflet);
        }
    }
}
