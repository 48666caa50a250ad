// The degrees at the upper and left edge of the map, where meridians and parallels leave it.
import L from "leaflet";
import { degreeText, graticuleLines, graticuleStep } from "./graticule.js";
import { wrapLongitude } from "./mercator.js";

const cornerRoom = 34; // pixels from the corner that stay free, so that labels do not meet

export const GraticuleLabels = L.Layer.extend({
    onAdd(map) {
        this._box = L.DomUtil.create("div", "tremor-graticule", map.getContainer());
        this._box.setAttribute("aria-hidden", "true");
        this._update();
    },

    onRemove() {
        this._box.remove();
    },

    getEvents() {
        return { move: this._update, zoomend: this._update, resize: this._update, zoomanim: this._clear };
    },

    _clear() {
        this._box.replaceChildren();
    },

    _update() {
        const map = this._map;
        const size = map.getSize();
        const bounds = map.getBounds();
        const step = graticuleStep(map.getZoom());
        const labels = [];
        for (const longitude of graticuleLines(bounds.getWest(), bounds.getEast(), step)) {
            const { x } = map.latLngToContainerPoint([map.getCenter().lat, longitude]);
            if (x > cornerRoom && x < size.x - cornerRoom) {
                labels.push(this._label("meridian", degreeText(wrapLongitude(longitude), step, "E", "W"), "left", x));
            }
        }
        const south = Math.max(-85, bounds.getSouth());
        for (const latitude of graticuleLines(south, Math.min(85, bounds.getNorth()), step)) {
            const { y } = map.latLngToContainerPoint([latitude, map.getCenter().lng]);
            if (y > cornerRoom && y < size.y - cornerRoom) {
                labels.push(this._label("parallel", degreeText(latitude, step, "N", "S"), "top", y));
            }
        }
        this._box.replaceChildren(...labels);
    },

    _label(kind, text, side, at) {
        const label = document.createElement("span");
        label.className = `tremor-${kind}`;
        label.textContent = text;
        label.style[side] = `${Math.round(at)}px`;
        return label;
    },
});
