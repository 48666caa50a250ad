// A marker of the API. Its options stay readable as properties (title, position, and whatever the page
// adds), as the pages use them.
import { MVCObject, event } from "./events.js";
import { iconLook } from "./icons.js";
import { toLatLng } from "./lat_lng.js";
import { finiteOr } from "./numbers.js";

export class Marker extends MVCObject {
    #map = null;
    #look = null;

    // options: {position, map, icon, title, zIndex, visible, clickable, …}.
    constructor(options = {}) {
        super();
        const { map = null, ...rest } = options ?? {};
        Object.assign(this, rest);
        this.#look = iconLook(this.icon);
        this.setMap(map);
    }

    getPosition() {
        return this.position;
    }

    setPosition(position) {
        this.set("position", position);
        this.#refresh();
    }

    getIcon() {
        return this.icon;
    }

    setIcon(icon) {
        this.#look = iconLook(icon);
        this.set("icon", icon);
        this.#refresh();
    }

    getTitle() {
        return this.title;
    }

    setTitle(title) {
        this.set("title", title);
    }

    getZIndex() {
        return this.zIndex;
    }

    setZIndex(zIndex) {
        this.set("zIndex", zIndex);
        this.#refresh();
    }

    getVisible() {
        return this.visible !== false;
    }

    setVisible(visible) {
        this.set("visible", Boolean(visible));
        this.#refresh();
    }

    getMap() {
        return this.#map;
    }

    // Anything but a map takes the marker off.
    setMap(map) {
        const layer = map?.markerLayer ?? null;
        if (this.#map !== null && this.#map !== map) {
            this.#map.markerLayer.take(this);
        }
        this.#map = layer === null ? null : map;
        this.#refresh();
        event.trigger(this, "map_changed");
    }

    // What the layer draws; asked for only while there is a position.
    placed() {
        return { position: toLatLng(this.position), look: this.#look, order: finiteOr(this.zIndex, 0) };
    }

    #refresh() {
        if (this.#map === null) {
            return;
        }
        if (this.getVisible() && toLatLng(this.position) !== null) {
            this.#map.markerLayer.put(this);
        } else {
            this.#map.markerLayer.take(this);
        }
    }
}
