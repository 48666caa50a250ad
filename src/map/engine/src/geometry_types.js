// Small value types and constants of the API.
import { finiteOr } from "./numbers.js";

export class Point {
    constructor(x, y) {
        this.x = finiteOr(x, 0);
        this.y = finiteOr(y, 0);
    }
}

export class Size {
    constructor(width, height) {
        this.width = finiteOr(width, 0);
        this.height = finiteOr(height, 0);
    }
}

export const SymbolPath = Object.freeze({
    CIRCLE: 0,
    FORWARD_CLOSED_ARROW: 1,
    FORWARD_OPEN_ARROW: 2,
    BACKWARD_CLOSED_ARROW: 3,
    BACKWARD_OPEN_ARROW: 4,
});

// There is one base map; the types are accepted and remembered.
export const MapTypeId = Object.freeze({
    HYBRID: "hybrid",
    ROADMAP: "roadmap",
    SATELLITE: "satellite",
    TERRAIN: "terrain",
});
