// Tells when a map has come to rest after a change of its view: "idle", then "tilesloaded".
//
// Pages wait for the second "tilesloaded" with what they do when the map is ready, because the public
// API fires it several times while it starts. So the first rest counts as two.
import { event } from "./events.js";

const patience = 3000; // milliseconds for raster tiles that do not come
const recheck = 60; // milliseconds

export class Settling {
    #map;
    #layers;
    #timer = null;
    #deadline = 0;
    #restsToTell = 2;

    // layers: grid layers, the base map first; the others are waited for with patience.
    constructor(map, layers) {
        this.#map = map;
        this.#layers = layers;
    }

    // The view has changed.
    begin() {
        this.#deadline = Date.now() + patience;
        this.#restsToTell = Math.max(1, this.#restsToTell);
        this.#check(0);
    }

    #check(delay) {
        clearTimeout(this.#timer);
        this.#timer = setTimeout(() => this.#tell(), delay);
    }

    #tell() {
        if (this.#layers.some((layer) => layer.isLoading()) && Date.now() < this.#deadline) {
            this.#check(recheck);
            return;
        }
        this.#restsToTell -= 1;
        if (this.#restsToTell > 0) {
            this.#check(recheck);
        }
        event.trigger(this.#map, "idle");
        event.trigger(this.#map, "tilesloaded");
    }
}
